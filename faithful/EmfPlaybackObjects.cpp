// EMF decoders of the object records: pens, brushes, fonts, palettes and colour spaces, and
// their selection and deletion.
#include <memory>

#include "byteorder/EmfNormalisers.h"
#include "faithful/EmfPlayback.h"
#include "faithful/PatternBitmap.h"
#include "svg/DibDecoder.h"

namespace faithful {

namespace {

template <class T>
T& As(unsigned char* record) {
    return *reinterpret_cast<T*>(record);
}

// Offsets of the fields of EMR_CREATEDIBPATTERNBRUSHPT and EMR_CREATEMONOBRUSH.
const size_t kBrushIndex = 8, kBrushBmi = 16, kBrushBits = 24;

// The image of a pattern brush's bitmap; null when it has none that decodes.
std::shared_ptr<const QImage> DecodePattern(const unsigned char* r, uint32_t size) {
    dib::DibSource dib;
    if (!dib::LocateBitmap(r, size, Field32(r, kBrushBmi), Field32(r, kBrushBits), dib))
        return nullptr;
    return DecodeDibPattern(dib);
}

}  // namespace

void EmfPlayer::OnCreatePen(unsigned char* r, uint32_t) {
    tagEMRCREATEPEN& p = As<tagEMRCREATEPEN>(r);
    InitEMRCREATEPEN(p);
    GdiObject o;
    o.kind = GdiObject::Kind::Pen;
    o.pen.style = p.lopn.lopnStyle;
    o.pen.width = p.lopn.lopnWidth.x;
    o.pen.color = p.lopn.lopnColor;
    m_dc.CreateObjectAt(p.ihPen, o);
}

void EmfPlayer::OnExtCreatePen(unsigned char* r, uint32_t size) {
    tagEMREXTCREATEPEN& p = As<tagEMREXTCREATEPEN>(r);
    InitEMREXTCREATEPEN(p, size);
    GdiObject o;
    o.kind = GdiObject::Kind::Pen;
    o.pen.extended = true;
    o.pen.style = p.elp.elpPenStyle;
    // A pen whose brush paints nothing draws nothing; other brushes draw in their colour.
    if (p.elp.elpBrushStyle == gdi::BS_NULL)
        o.pen.style = (o.pen.style & ~gdi::PS_STYLE_MASK) | gdi::PS_NULL;
    o.pen.width = p.elp.elpWidth;
    o.pen.color = p.elp.elpColor;
    const uint32_t entries =
        records::FitCount(p.elp.elpNumEntries, EMR_EXTCREATEPEN_ENTRIES_OFFSET, 4, size);
    const uint32_t* styles = reinterpret_cast<const uint32_t*>(r + EMR_EXTCREATEPEN_ENTRIES_OFFSET);
    for (uint32_t i = 0; i < entries && i < 16; ++i) o.pen.userStyle.push_back(styles[i]);
    m_dc.CreateObjectAt(p.ihPen, o);
}

void EmfPlayer::OnCreateBrush(unsigned char* r, uint32_t) {
    tagEMRCREATEBRUSHINDIRECT& b = As<tagEMRCREATEBRUSHINDIRECT>(r);
    InitEMRCREATEBRUSHINDIRECT(b);
    GdiObject o;
    o.kind = GdiObject::Kind::Brush;
    o.brush.style = b.lb.lbStyle;
    o.brush.color = b.lb.lbColor;
    o.brush.hatch = b.lb.lbHatch;
    m_dc.CreateObjectAt(b.ihBrush, o);
}

void EmfPlayer::OnCreatePatternBrush(unsigned char* r, uint32_t size) {
    GdiObject o;
    o.kind = GdiObject::Kind::Brush;
    o.brush.style = gdi::BS_DIBPATTERNPT;
    o.brush.pattern = DecodePattern(r, size);
    // A monochrome brush takes the text and background colours when it is drawn.
    o.brush.monochrome = m_type == emr::CREATEMONOBRUSH;
    m_dc.CreateObjectAt(Field32(r, kBrushIndex), o);
}

void EmfPlayer::OnCreateFont(unsigned char* r, uint32_t) {
    tagEMREXTCREATEFONTINDIRECTW& f = As<tagEMREXTCREATEFONTINDIRECTW>(r);
    InitEMREXTCREATEFONTINDIRECTW(f);
    const tagLOGFONTW& lf = f.elfw.elfLogFont;
    GdiObject o;
    o.kind = GdiObject::Kind::Font;
    o.font.height = lf.lfHeight;
    o.font.width = lf.lfWidth;
    o.font.escapement = lf.lfEscapement;
    o.font.orientation = lf.lfOrientation;
    o.font.weight = lf.lfWeight;
    o.font.italic = lf.lfItalic != 0;
    o.font.underline = lf.lfUnderline != 0;
    o.font.strikeOut = lf.lfStrikeOut != 0;
    o.font.charSet = lf.lfCharSet;
    o.font.pitchAndFamily = lf.lfPitchAndFamily;
    int length = 0;
    while (length < 32 && lf.lfFaceName[length]) ++length;
    o.font.faceName = QString(reinterpret_cast<const QChar*>(lf.lfFaceName), length);
    m_dc.CreateObjectAt(f.ihFont, o);
}

void EmfPlayer::OnCreateOther(unsigned char* r, uint32_t) {
    GdiObject o;
    o.kind = m_type == emr::CREATEPALETTE ? GdiObject::Kind::Palette : GdiObject::Kind::ColorSpace;
    m_dc.CreateObjectAt(Field32(r, 8), o);
}

void EmfPlayer::OnSelectObject(unsigned char* r, uint32_t) {
    tagEMRSELECTOBJECT& s = As<tagEMRSELECTOBJECT>(r);
    InitEMRSELECTOBJECT(s);
    m_dc.SelectObject(s.ihObject);
}

void EmfPlayer::OnDeleteObject(unsigned char* r, uint32_t) {
    tagEMRDELETEOBJECT& d = As<tagEMRDELETEOBJECT>(r);
    InitEMRDELETEOBJECT(d);
    m_dc.DeleteObject(d.ihObject);
}

}  // namespace faithful
