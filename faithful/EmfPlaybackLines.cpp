// EMF decoders of lines and curves: the current position, point lists of 32- and 16-bit
// points, poly lists and poly-draw records.
#include "byteorder/EmfNormalisers.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

template <class T>
T& As(unsigned char* record) {
    return *reinterpret_cast<T*>(record);
}

// The distance between a 32-bit point-list type and its 16-bit twin.
const uint32_t k16BitTypes = emr::POLYBEZIER16 - emr::POLYBEZIER;

template <class P>
void ReadPoints(const unsigned char* at, uint32_t count, std::vector<PointF>& out) {
    const P* p = reinterpret_cast<const P*>(at);
    out.resize(count);
    for (uint32_t i = 0; i < count; ++i) out[i] = {(double)p[i].x, (double)p[i].y};
}

// Reads a poly list (EMR_POLYPOLYLINE ... EMR_POLYPOLYGON16) of points of type P from a
// normalised copy: false when its polygon counts run past the record.
template <class P>
bool ReadPolyList(const unsigned char* r, uint32_t size, std::vector<uint32_t>& counts,
                  std::vector<PointF>& points) {
    const tagEMRPOLYPOLYLINE& l = *reinterpret_cast<const tagEMRPOLYPOLYLINE*>(r);
    const uint32_t polys = records::FitCount(l.nPolys, EMR_POLYPOLY_COUNTS_OFFSET, 4, size);
    if (polys != l.nPolys) return false;
    const uint32_t* c = reinterpret_cast<const uint32_t*>(r + EMR_POLYPOLY_COUNTS_OFFSET);
    counts.assign(c, c + polys);
    const size_t offset = EMR_POLYPOLY_COUNTS_OFFSET + 4 * (size_t)polys;
    ReadPoints<P>(r + offset, records::FitCount(l.cptl, offset, sizeof(P), size), points);
    return true;
}

}  // namespace

void EmfPlayer::OnMoveTo(unsigned char* r, uint32_t) {
    tagEMRMOVETOEX& m = As<tagEMRMOVETOEX>(r);
    InitEMRMOVETO(m);
    m_dc.MoveTo({(double)m.ptl.x, (double)m.ptl.y});
}

void EmfPlayer::OnLineTo(unsigned char* r, uint32_t) {
    tagEMRLINETO& l = As<tagEMRLINETO>(r);
    InitLINETO(l);
    m_dc.LineTo({(double)l.ptl.x, (double)l.ptl.y});
}

void EmfPlayer::DrawPoints(uint32_t type, const std::vector<PointF>& points) {
    const PointF* p = points.data();
    const size_t n = points.size();
    switch (type > k16BitTypes + 1 ? type - k16BitTypes : type) {
        case emr::POLYBEZIER:
            return m_dc.PolyBezier(p, n);
        case emr::POLYGON:
            return m_dc.Polygon(p, n);
        case emr::POLYLINE:
            return m_dc.Polyline(p, n);
        case emr::POLYBEZIERTO:
            return m_dc.PolyBezierTo(p, n);
        case emr::POLYLINETO:
            return m_dc.PolylineTo(p, n);
        default:
            return;
    }
}

void EmfPlayer::OnPointList(unsigned char* r, uint32_t size) {
    tagEMRPOLYLINE& l = As<tagEMRPOLYLINE>(r);
    InitEMRPOLYGON(l, size);
    const uint32_t n = records::FitCount(l.cptl, EMR_POLY_POINTS_OFFSET, sizeof(tagPOINT), size);
    ReadPoints<tagPOINT>(r + EMR_POLY_POINTS_OFFSET, n, m_points);
    DrawPoints(m_type, m_points);
}

void EmfPlayer::OnPointList16(unsigned char* r, uint32_t size) {
    tagEMRPOLYLINE16& l = As<tagEMRPOLYLINE16>(r);
    InitEMRPOLYGON16(l, size);
    const uint32_t n = records::FitCount(l.cpts, EMR_POLY_POINTS_OFFSET, sizeof(tagPOINTS), size);
    ReadPoints<tagPOINTS>(r + EMR_POLY_POINTS_OFFSET, n, m_points);
    DrawPoints(m_type, m_points);
}

void EmfPlayer::OnPolyPoly(unsigned char* r, uint32_t size) {
    records::ScratchCopy copy(r, size);
    InitEMRPOLYPOLYGON(reinterpret_cast<tagEMRPOLYPOLYGON*>(copy.data()), r, size);
    std::vector<uint32_t> counts;
    if (!ReadPolyList<tagPOINT>(copy.data(), size, counts, m_points)) return;
    if (m_type == emr::POLYPOLYGON)
        m_dc.PolyPolygon(m_points.data(), m_points.size(), counts.data(), counts.size());
    else
        m_dc.PolyPolyline(m_points.data(), m_points.size(), counts.data(), counts.size());
}

void EmfPlayer::OnPolyPoly16(unsigned char* r, uint32_t size) {
    records::ScratchCopy copy(r, size);
    InitEMRPOLYPOLYGON16(reinterpret_cast<tagEMRPOLYPOLYGON16*>(copy.data()), r, size);
    std::vector<uint32_t> counts;
    if (!ReadPolyList<tagPOINTS>(copy.data(), size, counts, m_points)) return;
    if (m_type == emr::POLYPOLYGON16)
        m_dc.PolyPolygon(m_points.data(), m_points.size(), counts.data(), counts.size());
    else
        m_dc.PolyPolyline(m_points.data(), m_points.size(), counts.data(), counts.size());
}

namespace {

// The points of a poly-draw record whose types also lie inside it: the types follow all
// declared points, so a list that runs past the record draws nothing.
uint32_t PolyDrawCount(uint32_t declared, size_t pointSize, uint32_t size) {
    const uint32_t n = records::FitCount(declared, EMR_POLY_POINTS_OFFSET, pointSize, size);
    if (n != declared) return 0;
    return records::FitCount(n, EMR_POLY_POINTS_OFFSET + pointSize * (size_t)n, 1, size);
}

}  // namespace

void EmfPlayer::OnPolyDraw(unsigned char* r, uint32_t size) {
    tagEMRPOLYLINE& l = As<tagEMRPOLYLINE>(r);  // the same fixed fields and points
    InitEMRPOLYGON(l, size);
    const uint32_t n = PolyDrawCount(l.cptl, sizeof(tagPOINT), size);
    ReadPoints<tagPOINT>(r + EMR_POLY_POINTS_OFFSET, n, m_points);
    m_dc.PolyDraw(m_points.data(), r + EMR_POLY_POINTS_OFFSET + sizeof(tagPOINT) * (size_t)n, n);
}

void EmfPlayer::OnPolyDraw16(unsigned char* r, uint32_t size) {
    tagEMRPOLYDRAW16& l = As<tagEMRPOLYDRAW16>(r);
    InitEMRPOLYDRAW16(l, size);
    const uint32_t n = PolyDrawCount(l.cpts, sizeof(tagPOINTS), size);
    ReadPoints<tagPOINTS>(r + EMR_POLY_POINTS_OFFSET, n, m_points);
    m_dc.PolyDraw(m_points.data(), r + EMR_POLY_POINTS_OFFSET + sizeof(tagPOINTS) * (size_t)n, n);
}

}  // namespace faithful
