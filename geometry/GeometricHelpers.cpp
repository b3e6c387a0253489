#define TRACE_FILE "GeometricHelpers"
#include "geometry/GeometricHelpers.h"

#include <cmath>

#include "api/Trace.h"
#include "geometry/Numeric.h"

using geometry::Add32;
using geometry::HalfSpan;
using geometry::Mul32;
using geometry::Sub32;

namespace {

const double kPi = 3.141592653589793;

// Truncates toward zero; a value that is not a number gives `fallback`.
int32_t TruncOr(long double v, int32_t fallback) {
    return std::isnan(v) ? fallback : numeric::TruncToInt((double)v);
}

}  // namespace

bool GetPointOnEllipse(tagRECT box, tagPOINT p, tagPOINT& out) {
    TRACE_ENTER();
    const int32_t a = HalfSpan(box.left, box.right);
    const int32_t b = HalfSpan(box.top, box.bottom);
    const int32_t cx = Add32(box.left, a), cy = Add32(box.top, b);
    const int32_t dx = Sub32(p.x, cx), dy = Sub32(p.y, cy);
    int32_t x = 0, y = 0;
    if (dx == 0) {
        // Straight above or below: the ray meets the ellipse at the end of its vertical axis;
        // the centre itself stands for angle 0.
        if (dy == 0)
            x = a;
        else
            y = dy > 0 ? b : -b;
    } else {
        const long double k = (long double)dy / (long double)dx;
        const long double s = (long double)Mul32(a, a) * k * k + (long double)Mul32(b, b);
        // A flat box (b = 0) met along its own axis has its end there; any other quotient that
        // is not a number (half-axes whose squares wrap to nothing) gives the centre.
        x = (b == 0 && dy == 0) ? a : TruncOr((long double)Mul32(a, b) / std::sqrt(s), 0);
        if (dx < 0) x = Sub32(0, x);  // wraps at the int32 minimum, as the other sums do
        y = TruncOr((long double)x * k, 0);
    }
    out.x = Add32(cx, x);
    out.y = Add32(cy, y);
    TRACE_RETURN(true);
}

namespace {

// The pie's angle of p about (cx, cy): the arc tangent of the slope, moved by pi when negative
// and again when p lies left of the centre.
double PieAngle(tagPOINT p, int cx, int cy) {
    const long double q = (long double)Sub32(p.y, cy) / (long double)Sub32(p.x, cx);
    double theta = std::atan((double)q);
    if (theta < 0) theta += kPi;
    if (cx > p.x) theta += kPi;
    return theta;
}

}  // namespace

bool IsBigArc(tagPOINT p1, tagPOINT p2, int cx, int cy) {
    TRACE_ENTER();
    TRACE_RETURN(PieAngle(p1, cx, cy) > PieAngle(p2, cx, cy));
}

namespace geometry {

tagPOINT AngleArcPoint(int32_t cx, int32_t cy, int32_t r, float angle) {
    const double a = angle;
    return tagPOINT{TruncOr(cx + r * std::cos(a), cx), TruncOr(cy - r * std::sin(a), cy)};
}

}  // namespace geometry
