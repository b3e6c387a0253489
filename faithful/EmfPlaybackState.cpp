// EMF decoders of the mapping and state records.
#include <cmath>
#include <cstring>

#include "byteorder/BEndTools.h"
#include "byteorder/EmfNormalisers.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

template <class T>
T& As(unsigned char* record) {
    return *reinterpret_cast<T*>(record);
}

Matrix MatrixOf(const tagXFORM& x) {
    return {x.eM11, x.eM12, x.eM21, x.eM22, x.eDx, x.eDy};
}

// The four 32-bit values of EMR_SCALEVIEWPORTEXTEX and EMR_SCALEWINDOWEXTEX: x numerator,
// x denominator, y numerator, y denominator.
void ReadScale(const unsigned char* r, double v[4]) {
    for (int i = 0; i < 4; ++i) v[i] = SignedField32(r, 8 + 4 * i);
}

}  // namespace

void EmfPlayer::OnSetMapMode(unsigned char* r, uint32_t) {
    InitEMRMAPMODE(As<tagEMRSETMAPMODE>(r));
    m_dc.SetMapMode((int)As<tagEMRSETMAPMODE>(r).iMode);
}

void EmfPlayer::OnSetWindowExt(unsigned char* r, uint32_t) {
    tagEMRSETVIEWPORTEXTEX& e = As<tagEMRSETVIEWPORTEXTEX>(r);
    InitEMREXT(e);
    m_dc.SetWindowExt(e.szlExtent.cx, e.szlExtent.cy);
}

void EmfPlayer::OnSetViewportExt(unsigned char* r, uint32_t) {
    tagEMRSETVIEWPORTEXTEX& e = As<tagEMRSETVIEWPORTEXTEX>(r);
    InitEMREXT(e);
    m_dc.SetViewportExt(e.szlExtent.cx, e.szlExtent.cy);
}

void EmfPlayer::OnSetWindowOrg(unsigned char* r, uint32_t) {
    tagEMRSETVIEWPORTORGEX& o = As<tagEMRSETVIEWPORTORGEX>(r);
    InitEMRORIGIN(o);
    m_dc.SetWindowOrg(o.ptlOrigin.x, o.ptlOrigin.y);
}

void EmfPlayer::OnSetViewportOrg(unsigned char* r, uint32_t) {
    tagEMRSETVIEWPORTORGEX& o = As<tagEMRSETVIEWPORTORGEX>(r);
    InitEMRORIGIN(o);
    m_dc.SetViewportOrg(o.ptlOrigin.x, o.ptlOrigin.y);
}

void EmfPlayer::OnScaleViewportExt(unsigned char* r, uint32_t) {
    double v[4];
    ReadScale(r, v);
    m_dc.ScaleViewportExt(v[0], v[1], v[2], v[3]);
}

void EmfPlayer::OnScaleWindowExt(unsigned char* r, uint32_t) {
    double v[4];
    ReadScale(r, v);
    m_dc.ScaleWindowExt(v[0], v[1], v[2], v[3]);
}

void EmfPlayer::OnSetBrushOrg(unsigned char* r, uint32_t) {
    m_dc.SetBrushOrg(SignedField32(r, 8), SignedField32(r, 12));
}

void EmfPlayer::OnSaveDC(unsigned char*, uint32_t) {
    m_dc.SaveDC();
}

void EmfPlayer::OnRestoreDC(unsigned char* r, uint32_t) {
    m_dc.RestoreDC(SignedField32(r, 8));
}

void EmfPlayer::OnSetWorldTransform(unsigned char* r, uint32_t) {
    tagEMRSETWORLDTRANSFORM& t = As<tagEMRSETWORLDTRANSFORM>(r);
    InitEMRSETWORLDTRANSFORM(t);
    m_dc.SetWorldTransform(MatrixOf(t.xform));
}

void EmfPlayer::OnModifyWorldTransform(unsigned char* r, uint32_t) {
    tagEMRMODIFYWORLDTRANSFORM& t = As<tagEMRMODIFYWORLDTRANSFORM>(r);
    InitEMRMODIFYWORLDTRANSFORM(t);
    m_dc.ModifyWorldTransform(MatrixOf(t.xform), (int)t.iMode);
}

void EmfPlayer::OnSetMode(unsigned char* r, uint32_t) {
    tagEMRSETBKMODE& m = As<tagEMRSETBKMODE>(r);
    InitEMRSETBKMODE(m);
    const int v = (int)m.iMode;
    switch (m_type) {
        case emr::SETBKMODE:
            return m_dc.SetBkMode(v);
        case emr::SETPOLYFILLMODE:
            return m_dc.SetPolyFillMode(v);
        case emr::SETROP2:
            return m_dc.SetRop2(v);
        case emr::SETSTRETCHBLTMODE:
            return m_dc.SetStretchBltMode(v);
        case emr::SETTEXTALIGN:
            return m_dc.SetTextAlign(m.iMode);
        case emr::SETARCDIRECTION:
            return m_dc.SetArcDirection(v);
        default:
            return;
    }
}

void EmfPlayer::OnSetColor(unsigned char* r, uint32_t) {
    tagEMRSETTEXTCOLOR& c = As<tagEMRSETTEXTCOLOR>(r);
    InitEMRCOLOR(c);
    if (m_type == emr::SETTEXTCOLOR)
        m_dc.SetTextColor(c.crColor);
    else
        m_dc.SetBkColor(c.crColor);
}

void EmfPlayer::OnSetMiterLimit(unsigned char* r, uint32_t) {
    // Files hold the limit as a 32-bit float or as a 32-bit integer; the integer's bits read
    // as a float are far below 1, and a float's bits read as an integer far above any limit.
    const uint32_t bits = Field32(r, 8);
    float f;
    std::memcpy(&f, &bits, sizeof f);
    m_dc.SetMiterLimit(std::isfinite(f) && f >= 1 && f < 1e6f ? (double)f : (double)bits);
}

}  // namespace faithful
