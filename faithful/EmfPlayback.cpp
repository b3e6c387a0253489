// The EMF player: reference device, record walk, decoder table and the document's page.
#include "faithful/EmfPlayback.h"

#include <array>
#include <cmath>
#include <cstring>

#include "byteorder/BEndTools.h"
#include "svg/SvgBuffer.h"

namespace faithful {

namespace {

// CSS pixels per millimetre.
const double kPxPerMm = 96.0 / 25.4;
// The header's optional szlMicrometers field, and the header size that holds it.
const size_t kMicrometersOffset = 100;
// The work the region operations may do, beyond four units per byte of the input.
const uint64_t kRegionWork = uint64_t(1) << 22;

bool Positive(double v) {
    return std::isfinite(v) && v > 0;
}

RectF NormalisedRect(double l, double t, double r, double b) {
    return {std::min(l, r), std::min(t, b), std::max(l, r), std::max(t, b)};
}

bool HasArea(const RectF& r) {
    return Positive(r.right - r.left) && Positive(r.bottom - r.top);
}

}  // namespace

uint32_t Field32(const unsigned char* record, size_t offset) {
    uint32_t v;
    std::memcpy(&v, record + offset, sizeof v);
    return IsBigEndian() ? LE2BE_DWord(v) : v;
}

EmfPlayer::EmfPlayer() : m_dc(m_writer) {}

QByteArray EmfPlayer::Play(const unsigned char* data, uint64_t size) {
    tagENHMETAHEADER header;
    std::memcpy(&header, data, sizeof header);
    InitEnhMetaHeader(header);
    SetupDevice(header, data, size);
    m_writer.SetLimit(OutputBudget(size));
    m_dc.SetRegionBudget(kRegionWork + 4 * size);
    Walk(data, size, header);
    // The bit blocks that still wait for a partner are drawn at the end of the records.
    DrawWithinLimit(m_writer, [this] { m_dc.FlushBitmaps(); });
    return Finish(header);
}

void EmfPlayer::SetupDevice(const tagENHMETAHEADER& h, const unsigned char* data, uint64_t size) {
    double mmX = h.szlMillimeters.cx, mmY = h.szlMillimeters.cy;
    // The micrometre size, when the header holds one that agrees with the millimetres.
    if (h.nSize >= kMicrometersOffset + 8 && records::Fits(kMicrometersOffset, 8, size)) {
        const double umX = SignedField32(data, kMicrometersOffset) / 1000.0;
        const double umY = SignedField32(data, kMicrometersOffset + 4) / 1000.0;
        const auto agrees = [](double um, double mm) {
            return Positive(um) && (!Positive(mm) || (um > mm / 2 && um < mm * 2));
        };
        if (agrees(umX, mmX) && agrees(umY, mmY)) {
            mmX = umX;
            mmY = umY;
        }
    }
    m_dc.SetReferenceDevice(h.szlDevice.cx, h.szlDevice.cy, mmX, mmY);
}

void EmfPlayer::Walk(const unsigned char* data, uint64_t end, const tagENHMETAHEADER& header) {
    if (header.nRecords == 0) return;
    uint64_t pos = header.nSize;
    uint32_t count = 0;
    while (records::Fits(pos, sizeof(tagEMR), end)) {
        tagEMR emr;
        std::memcpy(&emr, data + pos, sizeof emr);
        InitEMR(emr);
        if (emr.nSize < sizeof(tagEMR) || !records::Fits(pos, emr.nSize, end)) break;
        if (emr.iType == emr::EOF_) break;
        if (const Entry* entry = EntryFor(emr.iType)) {
            unsigned char* copy = m_copy.Fill(data + pos, emr.nSize, entry->fixed);
            const DeviceSvg::Mark mark = m_writer.GetMark();
            m_type = emr.iType;
            try {
                (this->*(entry->decode))(copy, emr.nSize);
            } catch (const OutputLimitReached&) {
                // The record that passed the output budget is undone and ends the drawing.
                m_writer.Rewind(mark);
                return;
            }
        }
        if (++count == header.nRecords) break;
        pos += emr.nSize;
    }
}

QByteArray EmfPlayer::Finish(const tagENHMETAHEADER& h) {
    const PointF perMm = m_dc.DeviceUnitsPerMm();
    // The frame (0.01 mm); failing that the bounds (device units); failing that what was
    // drawn.
    const RectF frameMm = NormalisedRect(h.rclFrame.left / 100.0, h.rclFrame.top / 100.0,
                                         h.rclFrame.right / 100.0, h.rclFrame.bottom / 100.0);
    RectF box;
    if (HasArea(frameMm)) {
        box = {frameMm.left * perMm.x, frameMm.top * perMm.y, frameMm.right * perMm.x,
               frameMm.bottom * perMm.y};
    } else {
        box = NormalisedRect(h.rclBounds.left, h.rclBounds.top, h.rclBounds.right,
                             h.rclBounds.bottom);
        if (!HasArea(box) && (!m_writer.DrawnBounds(box) || !HasArea(box))) box = {0, 0, 1, 1};
    }
    const double widthPx = (box.right - box.left) / perMm.x * kPxPerMm;
    const double heightPx = (box.bottom - box.top) / perMm.y * kPxPerMm;
    return m_writer.Finish(widthPx, heightPx, box);
}

const EmfPlayer::Entry* EmfPlayer::EntryFor(uint32_t type) {
    using P = EmfPlayer;
    static const struct {
        uint32_t type;
        Decoder decode;
        size_t fixed;
    } kTable[] = {
        {emr::POLYBEZIER, &P::OnPointList, sizeof(tagEMRPOLYLINE)},
        {emr::POLYGON, &P::OnPointList, sizeof(tagEMRPOLYLINE)},
        {emr::POLYLINE, &P::OnPointList, sizeof(tagEMRPOLYLINE)},
        {emr::POLYBEZIERTO, &P::OnPointList, sizeof(tagEMRPOLYLINE)},
        {emr::POLYLINETO, &P::OnPointList, sizeof(tagEMRPOLYLINE)},
        {emr::POLYPOLYLINE, &P::OnPolyPoly, sizeof(tagEMRPOLYPOLYLINE)},
        {emr::POLYPOLYGON, &P::OnPolyPoly, sizeof(tagEMRPOLYPOLYLINE)},
        {emr::SETWINDOWEXTEX, &P::OnSetWindowExt, sizeof(tagEMRSETVIEWPORTEXTEX)},
        {emr::SETWINDOWORGEX, &P::OnSetWindowOrg, sizeof(tagEMRSETVIEWPORTORGEX)},
        {emr::SETVIEWPORTEXTEX, &P::OnSetViewportExt, sizeof(tagEMRSETVIEWPORTEXTEX)},
        {emr::SETVIEWPORTORGEX, &P::OnSetViewportOrg, sizeof(tagEMRSETVIEWPORTORGEX)},
        {emr::SETBRUSHORGEX, &P::OnSetBrushOrg, 16},
        {emr::SETPIXELV, &P::OnSetPixel, 20},
        {emr::SETMAPMODE, &P::OnSetMapMode, sizeof(tagEMRSETMAPMODE)},
        {emr::SETBKMODE, &P::OnSetMode, sizeof(tagEMRSETBKMODE)},
        {emr::SETPOLYFILLMODE, &P::OnSetMode, sizeof(tagEMRSETBKMODE)},
        {emr::SETROP2, &P::OnSetMode, sizeof(tagEMRSETBKMODE)},
        {emr::SETSTRETCHBLTMODE, &P::OnSetMode, sizeof(tagEMRSETBKMODE)},
        {emr::SETTEXTALIGN, &P::OnSetMode, sizeof(tagEMRSETTEXTALIGN)},
        {emr::SETARCDIRECTION, &P::OnSetMode, sizeof(tagEMRSETBKMODE)},
        {emr::SETTEXTCOLOR, &P::OnSetColor, sizeof(tagEMRSETTEXTCOLOR)},
        {emr::SETBKCOLOR, &P::OnSetColor, sizeof(tagEMRSETBKCOLOR)},
        {emr::MOVETOEX, &P::OnMoveTo, sizeof(tagEMRMOVETOEX)},
        {emr::SCALEVIEWPORTEXTEX, &P::OnScaleViewportExt, 24},
        {emr::SCALEWINDOWEXTEX, &P::OnScaleWindowExt, 24},
        {emr::SAVEDC, &P::OnSaveDC, sizeof(tagEMR)},
        {emr::RESTOREDC, &P::OnRestoreDC, 12},
        {emr::SETWORLDTRANSFORM, &P::OnSetWorldTransform, sizeof(tagEMRSETWORLDTRANSFORM)},
        {emr::MODIFYWORLDTRANSFORM, &P::OnModifyWorldTransform, sizeof(tagEMRMODIFYWORLDTRANSFORM)},
        {emr::SELECTOBJECT, &P::OnSelectObject, sizeof(tagEMRSELECTOBJECT)},
        {emr::CREATEPEN, &P::OnCreatePen, sizeof(tagEMRCREATEPEN)},
        {emr::CREATEBRUSHINDIRECT, &P::OnCreateBrush, sizeof(tagEMRCREATEBRUSHINDIRECT)},
        {emr::DELETEOBJECT, &P::OnDeleteObject, sizeof(tagEMRDELETEOBJECT)},
        {emr::ANGLEARC, &P::OnAngleArc, sizeof(tagEMRANGLEARC)},
        {emr::ELLIPSE, &P::OnBox, sizeof(tagEMRELLIPSE)},
        {emr::RECTANGLE, &P::OnBox, sizeof(tagEMRRECTANGLE)},
        {emr::ROUNDRECT, &P::OnRoundRect, sizeof(tagEMRROUNDRECT)},
        {emr::ARC, &P::OnArc, sizeof(tagEMRARC)},
        {emr::CHORD, &P::OnArc, sizeof(tagEMRARC)},
        {emr::PIE, &P::OnArc, sizeof(tagEMRARC)},
        {emr::CREATEPALETTE, &P::OnCreateOther, 12},
        {emr::LINETO, &P::OnLineTo, sizeof(tagEMRLINETO)},
        {emr::ARCTO, &P::OnArc, sizeof(tagEMRARC)},
        {emr::POLYDRAW, &P::OnPolyDraw, sizeof(tagEMRPOLYLINE)},
        {emr::SETMITERLIMIT, &P::OnSetMiterLimit, 12},
        {emr::BEGINPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::ENDPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::CLOSEFIGURE, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::FILLPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::STROKEANDFILLPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::STROKEPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::FLATTENPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::WIDENPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::SELECTCLIPPATH, &P::OnPathRecord, sizeof(tagEMRSELECTCLIPPATH)},
        {emr::ABORTPATH, &P::OnPathRecord, sizeof(tagEMR)},
        {emr::BITBLT, &P::OnBitBlt, sizeof(tagEMRBITBLT)},
        {emr::STRETCHBLT, &P::OnBitBlt, sizeof(tagEMRSTRETCHBLT)},
        {emr::MASKBLT, &P::OnBitBlt, sizeof(tagEMRMASKBLT)},
        {emr::PLGBLT, &P::OnPlgBlt, 140},
        {emr::SETDIBITSTODEVICE, &P::OnSetDIBitsToDevice, 76},
        {emr::STRETCHDIBITS, &P::OnStretchDIBits, sizeof(tagEMRSTRETCHDIBITS)},
        {emr::EXTCREATEFONTINDIRECTW, &P::OnCreateFont, sizeof(tagEMREXTCREATEFONTINDIRECTW)},
        {emr::EXTTEXTOUTA, &P::OnExtTextOut, sizeof(tagEMREXTTEXTOUTA)},
        {emr::EXTTEXTOUTW, &P::OnExtTextOut, sizeof(tagEMREXTTEXTOUTW)},
        {emr::POLYBEZIER16, &P::OnPointList16, sizeof(tagEMRPOLYLINE16)},
        {emr::POLYGON16, &P::OnPointList16, sizeof(tagEMRPOLYLINE16)},
        {emr::POLYLINE16, &P::OnPointList16, sizeof(tagEMRPOLYLINE16)},
        {emr::POLYBEZIERTO16, &P::OnPointList16, sizeof(tagEMRPOLYLINE16)},
        {emr::POLYLINETO16, &P::OnPointList16, sizeof(tagEMRPOLYLINE16)},
        {emr::POLYPOLYLINE16, &P::OnPolyPoly16, sizeof(tagEMRPOLYPOLYLINE16)},
        {emr::POLYPOLYGON16, &P::OnPolyPoly16, sizeof(tagEMRPOLYPOLYLINE16)},
        {emr::POLYDRAW16, &P::OnPolyDraw16, sizeof(tagEMRPOLYDRAW16)},
        {emr::CREATEMONOBRUSH, &P::OnCreatePatternBrush, 32},
        {emr::CREATEDIBPATTERNBRUSHPT, &P::OnCreatePatternBrush, 32},
        {emr::EXTCREATEPEN, &P::OnExtCreatePen, sizeof(tagEMREXTCREATEPEN)},
        {emr::CREATECOLORSPACE, &P::OnCreateOther, 12},
        {emr::GRADIENTFILL, &P::OnGradientFill, 36},
        {emr::CREATECOLORSPACEW, &P::OnCreateOther, 12},
        {emr::ALPHABLEND, &P::OnBitBlt, sizeof(tagEMRSTRETCHBLT)},
        {emr::TRANSPARENTBLT, &P::OnBitBlt, sizeof(tagEMRSTRETCHBLT)},
        {emr::OFFSETCLIPRGN, &P::OnOffsetClipRgn, 16},
        {emr::SETMETARGN, &P::OnSetMetaRgn, 8},
        {emr::EXCLUDECLIPRECT, &P::OnClipRect, 24},
        {emr::INTERSECTCLIPRECT, &P::OnClipRect, 24},
        {emr::FILLRGN, &P::OnDrawRegion, 40},
        {emr::FRAMERGN, &P::OnDrawRegion, 40},
        {emr::INVERTRGN, &P::OnDrawRegion, 40},
        {emr::PAINTRGN, &P::OnDrawRegion, 40},
        {emr::EXTSELECTCLIPRGN, &P::OnExtSelectClipRgn, 16},
        {emr::POLYTEXTOUTA, &P::OnPolyTextOut, 40},
        {emr::POLYTEXTOUTW, &P::OnPolyTextOut, 40},
        {emr::SMALLTEXTOUT, &P::OnSmallTextOut, sizeof(tagEMRSMALLTEXTOUT)},
    };
    static const std::array<Entry, 128> table = [] {
        std::array<Entry, 128> entries{};
        for (const auto& e : kTable) entries[e.type] = Entry{e.decode, e.fixed};
        return entries;
    }();
    if (type >= table.size() || !table[type].decode) return nullptr;
    return &table[type];
}

}  // namespace faithful
