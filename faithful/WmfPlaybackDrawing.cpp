// WMF decoders of the drawing records. Parameters come in reverse order: a point's y before
// its x, a rectangle's bottom and right before its top and left, the end of an arc before its
// start. Point arrays are (x, y) pairs in order; only the points inside the record are drawn.
#include "faithful/WmfPlayback.h"

namespace faithful {

namespace {

// The first point of META_POLYLINE and META_POLYGON, after the point count; the point counts
// of META_POLYPOLYGON, after the polygon count.
const size_t kPointsOffset = sizeof(tagWMR) + 2;
const size_t kCountsOffset = sizeof(tagWMR) + 2;

// The rectangle whose bottom, right, top and left are the parameters from `first` on.
RectF Edges(const unsigned char* r, size_t first) {
    return {(double)Param16(r, first + 3), (double)Param16(r, first + 2),
            (double)Param16(r, first + 1), (double)Param16(r, first)};
}

// The point whose y and x are the parameters from `first` on.
PointF PointAt(const unsigned char* r, size_t first) {
    return {(double)Param16(r, first + 1), (double)Param16(r, first)};
}

// Reads `count` (x, y) points from byte `offset` of the record.
void ReadPoints(const unsigned char* r, size_t offset, uint32_t count, std::vector<PointF>& out) {
    out.clear();
    out.reserve(count);
    const size_t first = (offset - sizeof(tagWMR)) / 2;
    for (uint32_t i = 0; i < count; ++i)
        out.push_back({(double)Param16(r, first + 2 * (size_t)i),
                       (double)Param16(r, first + 2 * (size_t)i + 1)});
}

}  // namespace

void WmfPlayer::OnMoveTo(unsigned char* r, uint32_t) {
    m_dc.MoveTo(PointAt(r, 0));
}

void WmfPlayer::OnLineTo(unsigned char* r, uint32_t) {
    m_dc.LineTo(PointAt(r, 0));
}

void WmfPlayer::OnPoly(unsigned char* r, uint32_t size) {
    const uint32_t count =
        records::FitCount((uint16_t)Param16(r, 0), kPointsOffset, sizeof(tagPOINTS), size);
    ReadPoints(r, kPointsOffset, count, m_points);
    if (RecordFunction(r) == meta::POLYGON)
        m_dc.Polygon(m_points.data(), m_points.size());
    else
        m_dc.Polyline(m_points.data(), m_points.size());
}

void WmfPlayer::OnPolyPolygon(unsigned char* r, uint32_t size) {
    const uint16_t polygons = (uint16_t)Param16(r, 0);
    // Counts that run past the record leave no room for points: nothing is drawn.
    const uint32_t counts = records::FitCount(polygons, kCountsOffset, sizeof(uint16_t), size);
    if (counts < polygons) return;
    m_counts.clear();
    m_counts.reserve(counts);
    uint64_t declared = 0;
    for (uint32_t i = 0; i < counts; ++i) {
        m_counts.push_back((uint16_t)Param16(r, 1 + (size_t)i));
        declared += m_counts.back();
    }
    const size_t pointsOffset = kCountsOffset + (size_t)polygons * sizeof(uint16_t);
    ReadPoints(r, pointsOffset, records::FitCount(declared, pointsOffset, sizeof(tagPOINTS), size),
               m_points);
    m_dc.PolyPolygon(m_points.data(), m_points.size(), m_counts.data(), m_counts.size());
}

void WmfPlayer::OnBox(unsigned char* r, uint32_t) {
    if (RecordFunction(r) == meta::ELLIPSE)
        m_dc.Ellipse(Edges(r, 0));
    else
        m_dc.Rectangle(Edges(r, 0));
}

void WmfPlayer::OnRoundRect(unsigned char* r, uint32_t) {
    // The corner's height, then its width, then the rectangle.
    m_dc.RoundRect(Edges(r, 2), Param16(r, 1), Param16(r, 0));
}

void WmfPlayer::OnArc(unsigned char* r, uint32_t) {
    const PointF end = PointAt(r, 0), start = PointAt(r, 2);
    const RectF box = Edges(r, 4);
    switch (RecordFunction(r)) {
        case meta::ARC:
            return m_dc.Arc(box, start, end);
        case meta::CHORD:
            return m_dc.Chord(box, start, end);
        case meta::PIE:
            return m_dc.Pie(box, start, end);
        default:
            return;
    }
}

void WmfPlayer::OnSetPixel(unsigned char* r, uint32_t) {
    m_dc.SetPixel(PointAt(r, 2), Param32(r, 0));
}

void WmfPlayer::OnPatBlt(unsigned char* r, uint32_t) {
    // The raster operation, then height, width, y and x.
    m_dc.PatBlt({(double)Param16(r, 5), (double)Param16(r, 4), (double)Param16(r, 3),
                 (double)Param16(r, 2)},
                Param32(r, 0));
}

}  // namespace faithful
