// WMF coordinates: 16-bit logical units to SVG pixels at 96 per inch.
#define TRACE_FILE "Wmf2SVG"
#include <cstring>

#include "api/Trace.h"
#include "byteorder/WmfNormalisers.h"
#include "geometry/Numeric.h"
#include "wmf/Wmf2SVG.h"

namespace {
const int16_t kDefaultInch = 1440;  // twips
}

int WMF2SVGConverter::InitializeCoordinates(int placeable, _PlaceableMetaHeader header) {
    TRACE_ENTER();
    if (!placeable) {
        m_inch = kDefaultInch;
        m_scale = 15.0f;
        m_placeable = 0;
        TRACE_RETURN(0);
    }
    const tagRECT16 box = header.BoundingBox;
    m_picWidth = (int16_t)(box.right - box.left);
    m_picHeight = (int16_t)(box.bottom - box.top);
    // An Inch of 0 would divide every coordinate by zero; it is read as the usual 1440.
    m_inch = header.Inch ? (int16_t)header.Inch : kDefaultInch;
    m_scale = (float)(m_inch / 96.0);
    // Until a window extent arrives the window is taken to match the bounding box.
    m_xFactor = 1.0f;
    m_yFactor = 1.0f;
    m_placeable = 1;
    TRACE_RETURN(1);
}

// One axis: relative to the window origin in 16 bits, divided by the scale, then (placeable
// files) stretched by the window-extent factor; each step truncates to 16 bits.
short WMF2SVGConverter::MapAxis(short v, int16_t windowOrg, float factor) const {
    const int16_t d = (int16_t)(v - windowOrg);
    short r = numeric::TruncToShort(d / (double)m_scale);
    if (m_placeable) r = numeric::TruncToShort(r * (double)factor);
    return r;
}

short WMF2SVGConverter::MapX(short x) {
    TRACE_ENTER();
    TRACE_RETURN(MapAxis(x, m_winOrgX, m_xFactor));
}

short WMF2SVGConverter::MapY(short y) {
    TRACE_ENTER();
    TRACE_RETURN(MapAxis(y, m_winOrgY, m_yFactor));
}

int WMF2SVGConverter::OnMetaSetWinOrg(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagWMRSETVIEWPORTORGEX r;
    if (!InitWMRSETVIEWPORTORGEX(&r, record)) std::memcpy(&r, record, sizeof r);
    m_winOrgY = r.y;
    m_winOrgX = r.x;
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaSetWinExt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagWMRSETVIEWPORTORGEX r;
    if (!InitWMRSETVIEWPORTORGEX(&r, record)) std::memcpy(&r, record, sizeof r);
    m_winExtY = r.y;
    m_winExtX = r.x;
    if (m_winExtX != 0 && m_winExtY != 0) {
        m_xFactor = (float)((double)m_picWidth / m_winExtX);
        m_yFactor = (float)((double)m_picHeight / m_winExtY);
    } else {
        m_xFactor = m_picWidth;
        m_yFactor = m_picHeight;
    }
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaSetMapMode(unsigned char*, unsigned int) {
    return 1;
}
