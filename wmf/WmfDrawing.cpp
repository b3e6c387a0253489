// WMF line-art records: lines, polylines, polygons, rectangles, ellipses and pattern blits.
//
// Each handler maps its logical coordinates with MapX/MapY and draws with the writer's
// current style. Point counts are never trusted: only the points inside the record are drawn.
#define TRACE_FILE "Wmf2SVG"
#include <algorithm>
#include <vector>

#include "api/Trace.h"
#include "byteorder/WmfNormalisers.h"
#include "wmf/Wmf2SVG.h"

tagRECT WMF2SVGConverter::MapEdges(const tagWMRELLIPSE& record) {
    tagRECT box;
    box.left = MapX(record.LeftRect);
    box.top = MapY(record.TopRect);
    box.right = MapX(record.RightRect);
    box.bottom = MapY(record.BottomRect);
    return box;
}

// META_POLYLINE and META_POLYGON: the points are mapped in a private copy of the record and
// drawn from there. A record without points draws an empty list.
void WMF2SVGConverter::DrawMappedPolyLine(const unsigned char* record, unsigned int size,
                                          bool closed) {
    // The copy holds the record's bytes; on a big-endian host the normaliser rewrites them in
    // host order.
    records::ScratchCopy copy(record, size);
    auto* poly = reinterpret_cast<tagWMRPOLYLINE*>(copy.data());
    InitWMRPOLYLINE(poly, record, size);
    const uint32_t count = WmfPolyLinePoints(*poly, size);
    auto* points = reinterpret_cast<tagPOINTS*>(copy.data() + kWmfPolyLinePointsOffset);
    for (uint32_t i = 0; i < count; ++i) {
        points[i].x = MapX(points[i].x);
        points[i].y = MapY(points[i].y);
    }
    m_writer.DrawPolyLine(points, count, closed, false, QByteArray());
}

int WMF2SVGConverter::OnMetaMove(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMRLINETO r = ReadWmfRecord(record, InitWMRLINETO);
    m_writer.MoveTo(MapX(r.x), MapY(r.y));
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaLineTo(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMRLINETO r = ReadWmfRecord(record, InitWMRLINETO);
    m_writer.DrawLineTo(MapX(r.x), MapY(r.y), QByteArray());
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaPolyLine(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    DrawMappedPolyLine(record, size, false);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaPolygon(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    DrawMappedPolyLine(record, size, true);
    TRACE_RETURN(1);
}

// The polygons are drawn as far as the record's points go: a polygon whose points run out is
// cut short there and the ones after it get none, so the counts handed to the writer always
// match the points. A record whose polygon counts run past its end draws nothing.
int WMF2SVGConverter::OnMetaPolyPolygon(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    records::ScratchCopy copy(record, size);
    InitWMRPOLYPOLYLINE(reinterpret_cast<tagWMRPOLYPOLYLINE*>(copy.data()), record, size);
    const WmfPolyPolygonLayout layout = GetWmfPolyPolygonLayout(copy.data(), size);
    // A record whose polygon counts run past its end is skipped.
    if (layout.counts < reinterpret_cast<const tagWMRPOLYPOLYLINE*>(copy.data())->NumberOfPolygons)
        TRACE_RETURN(1);
    const auto* declared =
        reinterpret_cast<const uint16_t*>(copy.data() + kWmfPolyPolygonCountsOffset);
    const auto* source = reinterpret_cast<const tagPOINTS*>(copy.data() + layout.pointsOffset);

    std::vector<unsigned short> counts;
    std::vector<tagPOINT> points;
    points.reserve(layout.points);
    counts.reserve(layout.counts);
    for (uint32_t i = 0; i < layout.counts; ++i) {
        const uint32_t left = layout.points - (uint32_t)points.size();
        const uint32_t count = std::min<uint32_t>(declared[i], left);
        counts.push_back((unsigned short)count);
        for (uint32_t j = 0; j < count; ++j) {
            const tagPOINTS& p = source[points.size()];
            points.push_back(tagPOINT{MapX(p.x), MapY(p.y)});
        }
    }
    m_writer.DrawPolyPolygon(points.data(), counts.data(), (unsigned int)counts.size(),
                             QByteArray());
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaRectangle(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagRECT box = MapEdges(ReadWmfRecord(record, InitWMRELLIPSE));
    m_writer.DrawRect(box.left, box.top, box.right - box.left, box.bottom - box.top, QByteArray(),
                      0, 0);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaEllipse(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagRECT box = MapEdges(ReadWmfRecord(record, InitWMRELLIPSE));
    const int rx = (box.right - box.left) / 2;
    const int ry = (box.bottom - box.top) / 2;
    const int cx = box.left + rx;
    const int cy = box.top + ry;
    if (rx == ry)
        m_writer.DrawCircle(cx, cy, rx, QByteArray());
    else
        m_writer.DrawEllipse(cx, cy, rx, ry, QByteArray());
    TRACE_RETURN(1);
}

// The width and height go through the position mapping, window origin included.
int WMF2SVGConverter::OnMetaPatBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMRPATBLT r = ReadWmfRecord(record, InitWMRPATBLT);
    m_writer.PatBlt(MapX(r.XLeft), MapY(r.YLeft), MapX(r.Width), MapY(r.Height));
    TRACE_RETURN(1);
}

// Arcs are accepted and not drawn.
int WMF2SVGConverter::OnMetaArc(unsigned char*, unsigned int) {
    return 1;
}
