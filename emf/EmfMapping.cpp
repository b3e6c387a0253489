// Coordinate mapping: logical units to output units, and the records that change it.
#define TRACE_FILE "Emf2SVG"
#include <cmath>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "byteorder/EmfNormalisers.h"
#include "emf/Emf2SVG.h"
#include "geometry/Numeric.h"
#include "geometry/Transform.h"

namespace {
const uint32_t kMapModeAnisotropic = 8;
}

// A length in output units: rounded half up, floor(v + 0.5).
int Emf2SvgConverter::MapLength(float v) {
    if (v >= 0.0f) return numeric::TruncToInt((double)v + 0.5);
    const double t = std::trunc((double)v - 1.0);
    return numeric::TruncToInt(std::trunc((double)v - t + 0.5) + t);
}

// One axis: divide, then (for positions) subtract the window and picture origins in output
// units and truncate; lengths round half up.
int Emf2SvgConverter::MapAxis(int v, float divisor, int32_t windowOrg, int origin, int withOrigin) {
    float r = (float)((double)v / divisor);
    if (!withOrigin) return MapLength(r);
    r = (float)((double)r - windowOrg);
    r = (float)((double)r - origin);
    return numeric::TruncToInt(r);
}

int Emf2SvgConverter::MapX(int x, int withOrigin) {
    TRACE_ENTER();
    const float divisor = m_anisotropic ? m_frameScaleX : m_vpScaleX;
    TRACE_RETURN(MapAxis(x, divisor, m_windowOrgX, m_originX, withOrigin));
}

int Emf2SvgConverter::MapY(int y, int withOrigin) {
    TRACE_ENTER();
    const float divisor = m_anisotropic ? m_frameScaleY : m_vpScaleY;
    TRACE_RETURN(MapAxis(y, divisor, m_windowOrgY, m_originY, withOrigin));
}

int Emf2SvgConverter::MapPoint(const tagPOINTS& in, tagPOINTS& out) {
    const tagPOINT p = geometry::TransformPoint(m_worldXform, in.x, in.y);
    out.x = numeric::Low16(MapX(p.x, 1));
    out.y = numeric::Low16(MapY(p.y, 1));
    return 1;
}

int Emf2SvgConverter::OnSetMapMode(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRSETMAPMODE& r = *reinterpret_cast<tagEMRSETMAPMODE*>(record);
    InitEMRMAPMODE(r);
    if (r.iMode == kMapModeAnisotropic) m_anisotropic = 1;
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnSetWindowOrgEx(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRSETVIEWPORTORGEX& r = *reinterpret_cast<tagEMRSETVIEWPORTORGEX*>(record);
    InitEMRORIGIN(r);
    m_windowOrgX = r.ptlOrigin.x;
    m_windowOrgY = r.ptlOrigin.y;
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnSetWindowsExt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRSETVIEWPORTEXTEX& r = *reinterpret_cast<tagEMRSETVIEWPORTEXTEX*>(record);
    InitEMREXT(r);
    m_windowExtX = r.szlExtent.cx;
    m_windowExtY = r.szlExtent.cy;
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnSetViewPortOrgEx(unsigned char* record, unsigned int size) {
    if (size == 0) return 0;
    // Stored for the text records. Normalised like the window origin: read as stored, a
    // big-endian host would place the text at byte-reversed positions.
    tagEMRSETVIEWPORTORGEX& r = *reinterpret_cast<tagEMRSETVIEWPORTORGEX*>(record);
    InitEMRORIGIN(r);
    m_viewportOrgX = r.ptlOrigin.x;
    m_viewportOrgY = r.ptlOrigin.y;
    return 1;
}

int Emf2SvgConverter::OnSetViewPortEx(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRSETVIEWPORTEXTEX& r = *reinterpret_cast<tagEMRSETVIEWPORTEXTEX*>(record);
    InitEMREXT(r);
    m_viewportExtX = r.szlExtent.cx;
    m_viewportExtY = r.szlExtent.cy;
    if (!m_anisotropic) TRACE_RETURN(1);
    // The divisors change only when both extents of an axis are known and non-zero.
    if (m_viewportExtX != 0 && m_windowExtX != 0)
        m_vpScaleX = m_frameScaleX = (float)((double)m_windowExtX / m_viewportExtX);
    if (m_viewportExtY != 0 && m_windowExtY != 0)
        m_vpScaleY = m_frameScaleY = (float)((double)m_windowExtY / m_viewportExtY);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnSetWorldTransform(unsigned char* record, unsigned int size) {
    if (size == 0) return 0;
    tagEMRSETWORLDTRANSFORM& r = *reinterpret_cast<tagEMRSETWORLDTRANSFORM*>(record);
    InitEMRSETWORLDTRANSFORM(r);
    m_worldXform = r.xform;
    const tagXFORM& x = r.xform;
    return m_writer.SetWorldTransform(x.eM11, x.eM12, x.eM21, x.eM22, x.eDx, x.eDy) ? 1 : 0;
}

int Emf2SvgConverter::OnModifyWorldTransform(unsigned char* record, unsigned int size) {
    if (size == 0) return 0;
    tagEMRMODIFYWORLDTRANSFORM& r = *reinterpret_cast<tagEMRMODIFYWORLDTRANSFORM*>(record);
    InitEMRMODIFYWORLDTRANSFORM(r);
    geometry::ApplyWorldTransform(m_worldXform, r.xform, r.iMode);
    const tagXFORM& x = r.xform;
    return m_writer.ModifyWorldTransform(x.eM11, x.eM12, x.eM21, x.eM22, x.eDx, x.eDy, r.iMode) ? 1
                                                                                                : 0;
}
