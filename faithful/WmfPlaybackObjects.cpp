// WMF decoders of the object records. Every record that creates an object takes the lowest
// free slot of the object table, whatever the object is (palettes, regions and the bitmaps of
// old files too), so that the indices of the records after it name what their writer meant.
#include <cstdlib>

#include "byteorder/EmfNormalisers.h"
#include "byteorder/WmfNormalisers.h"
#include "faithful/PatternBitmap.h"
#include "faithful/WmfPlayback.h"

namespace faithful {

namespace {

// META_CREATEPATTERNBRUSH: a 14-byte bitmap description (type, width, height, bytes per row,
// planes, bits per pixel, a pointer), 18 reserved bytes, then the rows.
const size_t kDdbPlanesOffset = sizeof(tagWMR) + 8;
const size_t kDdbBitsOffset = sizeof(tagWMR) + 14 + 18;
// META_DIBCREATEPATTERNBRUSH: style, colour usage, then the packed bitmap.
const size_t kDibOffset = sizeof(tagWMR) + 4;
const uint16_t kDibRgbColors = 0;
const uint32_t kBiBitfields = 3;

// The colour table's bytes of a bitmap with this header (colour usage DIB_RGB_COLORS).
uint64_t ColourTableBytes(const tagBITMAPINFOHEADER& h) {
    if (h.biClrUsed) return (uint64_t)h.biClrUsed * 4;
    if (h.biBitCount <= 8) return (uint64_t)4 << h.biBitCount;
    return h.biCompression == kBiBitfields ? 12 : 0;
}

}  // namespace

void WmfPlayer::OnCreatePen(unsigned char* r, uint32_t) {
    const tagWMRCREATEPEN p = ReadWmfRecord(r, InitWMRCREATEPEN);
    GdiObject o;
    o.kind = GdiObject::Kind::Pen;
    o.pen.style = p.pen.lopnStyle;
    o.pen.width = std::abs((int)p.pen.lopnWidth.x);
    o.pen.color = p.pen.lopnColor;
    m_dc.CreateObjectInFreeSlot(o);
}

void WmfPlayer::OnCreateBrush(unsigned char* r, uint32_t) {
    const tagWMRCREATEBRUSHINDIRECT b = ReadWmfRecord(r, InitWMRCREATEBRUSHINDIRECT);
    GdiObject o;
    o.kind = GdiObject::Kind::Brush;
    o.brush.style = b.brush.lbStyle;
    o.brush.color = b.brush.lbColor;
    o.brush.hatch = b.brush.lbHatch;
    m_dc.CreateObjectInFreeSlot(o);
}

void WmfPlayer::OnCreateFont(unsigned char* r, uint32_t size) {
    const tagWMREXTCREATEFONTINDIRECT f = ReadWmfRecord(r, InitWMREXTCREATEFONTINDIRECT);
    const FONTSPEC& lf = f.font;
    GdiObject o;
    o.kind = GdiObject::Kind::Font;
    o.font.height = lf.Height;
    o.font.width = lf.Width;
    o.font.escapement = lf.Escapement;
    o.font.orientation = lf.Orientation;
    o.font.weight = lf.Weight;
    o.font.italic = lf.Italic != 0;
    o.font.underline = lf.Underline != 0;
    o.font.strikeOut = lf.StrikeOut != 0;
    o.font.charSet = lf.CharSet;
    o.font.pitchAndFamily = lf.PitchAndFamily;
    // The face name ends at its NUL, at 32 bytes or with the record.
    const size_t inRecord = size > offsetof(tagWMREXTCREATEFONTINDIRECT, font.Facename)
                                ? size - offsetof(tagWMREXTCREATEFONTINDIRECT, font.Facename)
                                : 0;
    int length = 0;
    while (length < 32 && (size_t)length < inRecord && lf.Facename[length]) ++length;
    o.font.faceName = QString::fromLatin1(lf.Facename, length);
    m_dc.CreateObjectInFreeSlot(o);
}

void WmfPlayer::OnCreatePatternBrush(unsigned char* r, uint32_t size) {
    GdiObject o;
    o.kind = GdiObject::Kind::Brush;
    o.brush.style = gdi::BS_PATTERN;
    const int width = Param16(r, 1), height = Param16(r, 2), rowBytes = Param16(r, 3);
    // Monochrome bitmaps only (one plane of one bit per pixel); a colour device-dependent
    // bitmap has no colours to read and paints nothing.
    const bool mono = r[kDdbPlanesOffset] == 1 && r[kDdbPlanesOffset + 1] == 1;
    if (mono && size > kDdbBitsOffset) {
        o.brush.pattern =
            DecodeMonochromeDdb(width, height, rowBytes, r + kDdbBitsOffset, size - kDdbBitsOffset);
        o.brush.monochrome = true;
    }
    m_dc.CreateObjectInFreeSlot(o);
}

void WmfPlayer::OnDibCreatePatternBrush(unsigned char* r, uint32_t size) {
    GdiObject o;
    o.kind = GdiObject::Kind::Brush;
    o.brush.style = gdi::BS_DIBPATTERNPT;
    // Colour tables of palette indices name no colours here: such a brush paints nothing.
    dib::DibSource dib;
    if ((uint16_t)Param16(r, 1) == kDibRgbColors &&
        dib::LocateBitmap(r, size, kDibOffset, kDibOffset, dib)) {
        const uint64_t bits =
            kDibOffset + sizeof(tagBITMAPINFOHEADER) + ColourTableBytes(dib.header);
        if (dib.header.biSize == sizeof(tagBITMAPINFOHEADER) &&
            dib::LocateBitmap(r, size, kDibOffset, bits, dib))
            o.brush.pattern = DecodeDibPattern(dib);
    }
    m_dc.CreateObjectInFreeSlot(o);
}

void WmfPlayer::OnCreateOther(unsigned char* r, uint32_t) {
    GdiObject o;
    switch (RecordFunction(r)) {
        case meta::CREATEPALETTE:
            o.kind = GdiObject::Kind::Palette;
            break;
        case meta::CREATEREGION:
            o.kind = GdiObject::Kind::Region;
            break;
        default:
            o.kind = GdiObject::Kind::Other;
            break;
    }
    m_dc.CreateObjectInFreeSlot(o);
}

void WmfPlayer::OnSelectObject(unsigned char* r, uint32_t) {
    m_dc.SelectObject((uint16_t)Param16(r, 0));
}

void WmfPlayer::OnDeleteObject(unsigned char* r, uint32_t) {
    m_dc.DeleteObject((uint16_t)Param16(r, 0));
}

}  // namespace faithful
