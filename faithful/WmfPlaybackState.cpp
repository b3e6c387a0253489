// WMF decoders of the mapping and state records. WMF stores a point's y before its x, and the
// scale records their y pair before their x pair, each denominator before its numerator.
#include "faithful/WmfPlayback.h"

namespace faithful {

void WmfPlayer::OnSetMapMode(unsigned char* r, uint32_t) {
    m_dc.SetMapMode((uint16_t)Param16(r, 0));
}

void WmfPlayer::OnWindowOrViewport(unsigned char* r, uint32_t) {
    const double y = Param16(r, 0), x = Param16(r, 1);
    switch (RecordFunction(r)) {
        case meta::SETWINDOWORG:
            return m_dc.SetWindowOrg(x, y);
        case meta::SETWINDOWEXT:
            return m_dc.SetWindowExt(x, y);
        case meta::SETVIEWPORTORG:
            return m_dc.SetViewportOrg(x, y);
        case meta::SETVIEWPORTEXT:
            return m_dc.SetViewportExt(x, y);
        case meta::OFFSETWINDOWORG:
            return m_dc.OffsetWindowOrg(x, y);
        case meta::OFFSETVIEWPORTORG:
            return m_dc.OffsetViewportOrg(x, y);
        default:
            return;
    }
}

void WmfPlayer::OnScaleExt(unsigned char* r, uint32_t) {
    const double yDenom = Param16(r, 0), yNum = Param16(r, 1);
    const double xDenom = Param16(r, 2), xNum = Param16(r, 3);
    if (RecordFunction(r) == meta::SCALEWINDOWEXT)
        m_dc.ScaleWindowExt(xNum, xDenom, yNum, yDenom);
    else
        m_dc.ScaleViewportExt(xNum, xDenom, yNum, yDenom);
}

void WmfPlayer::OnSaveDC(unsigned char*, uint32_t) {
    m_dc.SaveDC();
}

void WmfPlayer::OnRestoreDC(unsigned char* r, uint32_t) {
    m_dc.RestoreDC(Param16(r, 0));
}

void WmfPlayer::OnSetMode(unsigned char* r, uint32_t) {
    const uint16_t v = (uint16_t)Param16(r, 0);
    switch (RecordFunction(r)) {
        case meta::SETBKMODE:
            return m_dc.SetBkMode(v);
        case meta::SETPOLYFILLMODE:
            return m_dc.SetPolyFillMode(v);
        case meta::SETROP2:
            return m_dc.SetRop2(v);
        case meta::SETSTRETCHBLTMODE:
            return m_dc.SetStretchBltMode(v);
        case meta::SETTEXTALIGN:
            return m_dc.SetTextAlign(v);
        default:
            return;
    }
}

void WmfPlayer::OnSetColor(unsigned char* r, uint32_t) {
    if (RecordFunction(r) == meta::SETTEXTCOLOR)
        m_dc.SetTextColor(Param32(r, 0));
    else
        m_dc.SetBkColor(Param32(r, 0));
}

}  // namespace faithful
