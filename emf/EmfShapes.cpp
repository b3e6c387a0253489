// Box-based shapes (rectangle, rounded rectangle, ellipse) and elliptic arcs (arc, arc-to,
// chord, pie, angle-arc).
//
// Positions are mapped with the origins and sizes without; what each record maps differs:
//  - the shapes map their corner (or centre) and their size;
//  - arc, arc-to and chord find their end points on the logical ellipse, map only those, and
//    pass the logical half sizes as radii;
//  - the pie maps its box and radial points first and finds the end points on the mapped
//    ellipse, again with the logical radii;
//  - the angle-arc computes its end points from the logical centre and maps them; its radius
//    passes unmapped.
// Every sum and difference of record values wraps as 32-bit arithmetic does.
#define TRACE_FILE "Emf2SVG"
#include "api/Trace.h"
#include "byteorder/EmfNormalisers.h"
#include "emf/Emf2SVG.h"
#include "geometry/GeometricHelpers.h"

using geometry::Add32;
using geometry::HalfSpan;
using geometry::Sub32;

namespace {

// Pi as the angle-arc record's degrees are converted with it.
const float kPiF = 3.1415927f;

// Degrees to radians, rounded once to a 32-bit float.
float Radians(double degrees) {
    return (float)(degrees / 180.0 * (double)kPiF);
}

}  // namespace

Emf2SvgConverter::EllipseBox Emf2SvgConverter::MapEllipse(const tagRECT& b) {
    EllipseBox e;
    e.rx = HalfSpan(b.left, b.right);
    e.ry = HalfSpan(b.top, b.bottom);
    e.cx = MapX(Add32(b.left, e.rx), 1);
    e.cy = MapY(Add32(b.top, e.ry), 1);
    return e;
}

int Emf2SvgConverter::OnRectangle(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRRECTANGLE& r = *reinterpret_cast<tagEMRRECTANGLE*>(record);
    InitEMRRECTANGLE(r);
    const tagRECT& b = r.rclBox;
    m_writer.DrawRect(MapX(b.left, 1), MapY(b.top, 1), MapX(Sub32(b.right, b.left), 0),
                      MapY(Sub32(b.bottom, b.top), 0), {}, 0, 0);
    TRACE_RETURN(1);
}

// The corner radii are half the corner size, not mapped.
int Emf2SvgConverter::OnRoundedRect(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRROUNDRECT r = FixedCopy<tagEMRROUNDRECT>(record);
    InitEMRROUNDRECT(r);
    const tagRECT& b = r.rclBox;
    m_writer.DrawRect(MapX(b.left, 1), MapY(b.top, 1), MapX(Sub32(b.right, b.left), 0),
                      MapY(Sub32(b.bottom, b.top), 0), {}, r.szlCorner.cx / 2, r.szlCorner.cy / 2);
    TRACE_RETURN(1);
}

// Equal mapped radii make a circle.
int Emf2SvgConverter::OnEllipse(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRELLIPSE r = FixedCopy<tagEMRELLIPSE>(record);
    InitEMRELLIPSE(r);
    const EllipseBox e = MapEllipse(r.rclBox);
    const int rx = MapX(e.rx, 0), ry = MapY(e.ry, 0);
    if (rx == ry)
        m_writer.DrawCircle(e.cx, e.cy, rx, {});
    else
        m_writer.DrawEllipse(e.cx, e.cy, rx, ry, {});
    TRACE_RETURN(1);
}

void Emf2SvgConverter::DrawArcRecord(unsigned char* record, ArcCall call) {
    tagEMRARC r = FixedCopy<tagEMRARC>(record);
    InitEMRARC(r);
    const tagRECT& b = r.rclBox;
    const int32_t rx = HalfSpan(b.left, b.right), ry = HalfSpan(b.top, b.bottom);
    tagPOINT start, end;
    GetPointOnEllipse(b, r.ptlStart, start);
    GetPointOnEllipse(b, r.ptlEnd, end);
    const int x1 = MapX(start.x, 1), y1 = MapY(start.y, 1);
    const int x2 = MapX(end.x, 1), y2 = MapY(end.y, 1);
    switch (call) {
        case ArcCall::Arc:
            m_writer.DrawArc(x1, y1, rx, ry, 0, 0, 0, x2, y2, {});
            break;
        case ArcCall::ArcTo:
            m_writer.DrawArcTo(x1, y1, rx, ry, 0, 0, 0, x2, y2, {});
            break;
        case ArcCall::Chord:
            m_writer.DrawChord(x1, y1, rx, ry, 0, 0, 0, x2, y2, {});
            break;
    }
}

int Emf2SvgConverter::OnArc(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawArcRecord(record, ArcCall::Arc);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnArcTo(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawArcRecord(record, ArcCall::ArcTo);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnChord(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    DrawArcRecord(record, ArcCall::Chord);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnPie(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRARC r = FixedCopy<tagEMRARC>(record);
    InitEMRARC(r);
    const tagRECT& b = r.rclBox;
    const EllipseBox e = MapEllipse(b);
    const tagRECT box{MapX(b.left, 1), MapY(b.top, 1), MapX(b.right, 1), MapY(b.bottom, 1)};
    tagPOINT start, end;
    GetPointOnEllipse(box, tagPOINT{MapX(r.ptlStart.x, 1), MapY(r.ptlStart.y, 1)}, start);
    GetPointOnEllipse(box, tagPOINT{MapX(r.ptlEnd.x, 1), MapY(r.ptlEnd.y, 1)}, end);
    const int large = IsBigArc(start, end, e.cx, e.cy) ? 1 : 0;
    m_writer.DrawPie(start.x, start.y, e.rx, e.ry, 0, large, 0, end.x, end.y, e.cx, e.cy, {});
    TRACE_RETURN(1);
}

// The arc runs counter-clockwise from the start angle by the sweep; a negative sweep turns it
// the other way. The radius passes unmapped.
int Emf2SvgConverter::OnAngleArc(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRANGLEARC r;
    if (!InitEMRANGLEARC(&r, record)) r = FixedCopy<tagEMRANGLEARC>(record);
    const float a0 = Radians(r.eStartAngle);
    const float a1 = Radians((double)r.eStartAngle + (double)r.eSweepAngle);
    const int32_t radius = r.nRadius;
    const tagPOINT start = geometry::AngleArcPoint(r.ptlCenter.x, r.ptlCenter.y, radius, a0);
    const tagPOINT end = geometry::AngleArcPoint(r.ptlCenter.x, r.ptlCenter.y, radius, a1);
    const int large = (double)a1 - (double)a0 > (double)kPiF ? 1 : 0;
    const int sweep = r.eSweepAngle < 0 ? 1 : 0;
    m_writer.DrawArcTo(MapX(start.x, 1), MapY(start.y, 1), radius, radius, 0, large, sweep,
                       MapX(end.x, 1), MapY(end.y, 1), {});
    TRACE_RETURN(1);
}
