// Line-art records: the current position, lines, polylines, polygons, poly-polylines,
// poly-polygons, Bézier splines and the mixed EMR_POLYDRAW16.
//
// The records differ in the width of their points (POINTL or POINTS), in how the points are
// mapped and in the writer call that receives them:
//  - EMR_MOVETOEX, EMR_LINETO and EMR_POLYBEZIER map with the origins (MapX/MapY); the other
//    32-bit records reach the writer in logical units;
//  - every 16-bit record maps with the origins, EMR_POLYLINE16 and EMR_POLYGON16 through the
//    world transform first; mapped 16-bit coordinates keep their low 16 bits.
//
// Declared counts are never trusted: a point list is cut to the points its record holds, and
// each polygon of a poly list to the points that remain; a poly list whose polygon counts run
// past the record is skipped. A list left without points still reaches the writer, as an
// empty list.
#define TRACE_FILE "Emf2SVG"
#include <algorithm>
#include <vector>

#include "api/Trace.h"
#include "byteorder/EmfNormalisers.h"
#include "emf/Emf2SVG.h"
#include "geometry/Numeric.h"

namespace {

// The polygon counts of a poly-list record that lie inside it, and where its points are.
struct PolyListLayout {
    const uint32_t* counts;
    uint32_t polys;
    unsigned char* points;
    uint32_t pointsHeld;
};

PolyListLayout ReadPolyListLayout(unsigned char* list, unsigned int size, size_t pointSize) {
    const uint32_t declared = reinterpret_cast<const tagEMRPOLYPOLYLINE*>(list)->nPolys;
    PolyListLayout l;
    l.counts = reinterpret_cast<const uint32_t*>(list + EMR_POLYPOLY_COUNTS_OFFSET);
    // A record whose polygon counts run past its end is skipped: it draws no polygon.
    const uint32_t fit =
        records::FitCount(declared, EMR_POLYPOLY_COUNTS_OFFSET, sizeof(uint32_t), size);
    l.polys = fit == declared ? declared : 0;
    // The points follow all declared counts; when those overrun the record no point is left.
    const uint64_t offset = EMR_POLYPOLY_COUNTS_OFFSET + 4ull * declared;
    l.pointsHeld =
        offset < size ? records::FitCount(UINT32_MAX, (size_t)offset, pointSize, size) : 0;
    l.points = l.pointsHeld ? list + offset : list;
    return l;
}

// The points of a 16-bit poly list that are mapped: the counts summed as signed 32-bit values
// (a sum of 0 or less maps none), at most the points the record holds.
uint32_t PointsToMap(const PolyListLayout& l) {
    uint32_t sum = 0;
    for (uint32_t i = 0; i < l.polys; ++i) sum += l.counts[i];
    const int32_t signedSum = (int32_t)sum;
    return signedSum > 0 ? std::min((uint32_t)signedSum, l.pointsHeld) : 0;
}

// One writer call per polygon, each starting after the points of the earlier ones and cut to
// the points the record holds (none, once they have run out); nothing joins them.
template <class P>
void DrawPolygons(CMySVGWriter& writer, const PolyListLayout& l, const P* points, bool closed) {
    uint64_t start = 0;
    for (uint32_t i = 0; i < l.polys; ++i) {
        const uint64_t first = std::min<uint64_t>(start, l.pointsHeld);
        const uint32_t count = (uint32_t)std::min<uint64_t>(l.counts[i], l.pointsHeld - first);
        writer.DrawPolyLine(points + first, count, closed, false, QByteArray());
        start += l.counts[i];
    }
}

}  // namespace

template <class P>
void Emf2SvgConverter::EmitPoints(const P* points, uint32_t count, PolyCall call) {
    const QByteArray style;  // the writer's current pen and brush
    switch (call) {
        case PolyCall::Polyline:
            m_writer.DrawPolyLine(points, count, false, false, style);
            break;
        case PolyCall::Polygon:
            m_writer.DrawPolyLine(points, count, true, false, style);
            break;
        case PolyCall::PolylineTo:
            m_writer.DrawPolyLine(points, count, false, true, style);
            break;
        case PolyCall::Bezier:
            m_writer.DrawPolyBeziers(points, count, false, style);
            break;
        case PolyCall::BezierTo:
            m_writer.DrawPolyBeziers(points, count, true, style);
            break;
    }
}

void Emf2SvgConverter::MapInPlace(tagPOINT* points, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        points[i].x = MapX(points[i].x, 1);
        points[i].y = MapY(points[i].y, 1);
    }
}

void Emf2SvgConverter::MapInPlace(tagPOINTS* points, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        points[i].x = numeric::Low16(MapX(points[i].x, 1));
        points[i].y = numeric::Low16(MapY(points[i].y, 1));
    }
}

void Emf2SvgConverter::DrawPointList32(unsigned char* record, unsigned int size, PolyCall call,
                                       PointMapping mapping) {
    tagEMRPOLYGON& r = *reinterpret_cast<tagEMRPOLYGON*>(record);
    InitEMRPOLYGON(r, size);
    const uint32_t count =
        records::FitCount(r.cptl, EMR_POLY_POINTS_OFFSET, sizeof(tagPOINT), size);
    tagPOINT* points = reinterpret_cast<tagPOINT*>(record + EMR_POLY_POINTS_OFFSET);
    if (mapping != PointMapping::None) MapInPlace(points, count);
    EmitPoints(points, count, call);
}

void Emf2SvgConverter::DrawPointList16(unsigned char* record, unsigned int size, PolyCall call,
                                       PointMapping mapping) {
    tagEMRPOLYGON16& r = *reinterpret_cast<tagEMRPOLYGON16*>(record);
    InitEMRPOLYGON16(r, size);
    const uint32_t count =
        records::FitCount(r.cpts, EMR_POLY_POINTS_OFFSET, sizeof(tagPOINTS), size);
    tagPOINTS* points = reinterpret_cast<tagPOINTS*>(record + EMR_POLY_POINTS_OFFSET);
    if (mapping == PointMapping::World) {
        std::vector<tagPOINTS> mapped(count);
        for (uint32_t i = 0; i < count; ++i) MapPoint(points[i], mapped[i]);
        EmitPoints(mapped.data(), count, call);
        return;
    }
    if (mapping == PointMapping::Origin) MapInPlace(points, count);
    EmitPoints(points, count, call);
}

void Emf2SvgConverter::DrawPolyLists32(unsigned char* record, unsigned int size, bool closed) {
    // A normalised copy; the plain copy stands when the normaliser has nothing to convert.
    records::ScratchCopy copy(record, size);
    InitEMRPOLYPOLYGON(reinterpret_cast<tagEMRPOLYPOLYGON*>(copy.data()), record, size);
    const PolyListLayout l = ReadPolyListLayout(copy.data(), size, sizeof(tagPOINT));
    DrawPolygons(m_writer, l, reinterpret_cast<const tagPOINT*>(l.points), closed);
}

void Emf2SvgConverter::DrawPolyLists16(unsigned char* record, unsigned int size, bool closed) {
    records::ScratchCopy copy(record, size);
    InitEMRPOLYPOLYGON16(reinterpret_cast<tagEMRPOLYPOLYGON16*>(copy.data()), record, size);
    const PolyListLayout l = ReadPolyListLayout(copy.data(), size, sizeof(tagPOINTS));
    tagPOINTS* points = reinterpret_cast<tagPOINTS*>(l.points);
    MapInPlace(points, PointsToMap(l));
    DrawPolygons(m_writer, l, points, closed);
}

int Emf2SvgConverter::OnMoveToEx(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRMOVETOEX r = FixedCopy<tagEMRMOVETOEX>(record);
    InitEMRMOVETO(r);
    m_writer.MoveTo(MapX(r.ptl.x, 1), MapY(r.ptl.y, 1));
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnLineTo(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRLINETO r = FixedCopy<tagEMRLINETO>(record);
    InitLINETO(r);
    m_writer.DrawLineTo(MapX(r.ptl.x, 1), MapY(r.ptl.y, 1), QByteArray());
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyLine(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList32(record, size, PolyCall::Polyline, PointMapping::None);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolygon(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList32(record, size, PolyCall::Polygon, PointMapping::None);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyLineTo(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList32(record, size, PolyCall::PolylineTo, PointMapping::None);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyPolyLine(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPolyLists32(record, size, false);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyPolygon(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPolyLists32(record, size, true);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyBezier(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList32(record, size, PolyCall::Bezier, PointMapping::Origin);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyBezierTo(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList32(record, size, PolyCall::BezierTo, PointMapping::None);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyLine16(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList16(record, size, PolyCall::Polyline, PointMapping::World);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolygon16(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList16(record, size, PolyCall::Polygon, PointMapping::World);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyLineTo16(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList16(record, size, PolyCall::PolylineTo, PointMapping::Origin);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyPolyLine16(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPolyLists16(record, size, false);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyPolygon16(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPolyLists16(record, size, true);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyBezier16(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList16(record, size, PolyCall::Bezier, PointMapping::Origin);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyBezierTo16(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawPointList16(record, size, PolyCall::BezierTo, PointMapping::Origin);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPolyDraw(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRPOLYDRAW16& r = *reinterpret_cast<tagEMRPOLYDRAW16*>(record);
    InitEMRPOLYDRAW16(r, size);
    // The type bytes follow all declared points: when points and types do not both fit, the
    // types lie outside the record and nothing is drawn.
    const uint32_t count = r.cpts;
    const uint64_t bytes = (uint64_t)count * (sizeof(tagPOINTS) + 1);
    if (!records::Fits(EMR_POLY_POINTS_OFFSET, bytes, size)) TRACE_RETURN(1);
    tagPOINTS* points = reinterpret_cast<tagPOINTS*>(record + EMR_POLY_POINTS_OFFSET);
    const unsigned char* types = record + EMR_POLY_POINTS_OFFSET + sizeof(tagPOINTS) * count;
    MapInPlace(points, count);
    TRACE_RETURN(m_writer.DrawMixedPoly(points, types, count, QByteArray()) ? 1 : 0);
}
