// Points on an ellipse for the arc records.
//
// An EMF arc is given by the bounding box of its ellipse and two radial points that need not
// lie on it; SVG needs the end points themselves and a large-arc flag. All arithmetic on the
// record's values wraps as 32-bit integers do, so any box and point give a defined result.
#ifndef SVGMODULE_GEOMETRICHELPERS_H
#define SVGMODULE_GEOMETRICHELPERS_H

#include "MetafileStructs.h"

// The point of the ellipse inscribed in `box` on the ray from the box's centre through `p`,
// each coordinate cut toward the centre. The centre is (left + half width, top + half height),
// the halves truncated. A point straight above or below the centre gives the top or bottom of
// the ellipse; the centre itself gives the right end of the ellipse's horizontal axis (angle
// 0). A box whose half-axes are zero, or so large that their squares overflow, gives points on
// its axes or the centre. Always returns true.
bool GetPointOnEllipse(tagRECT box, tagPOINT p, tagPOINT& out);

// True when p1's angle about (cx, cy) is greater than p2's, angles measured from the positive
// x axis toward the positive y axis, each folded into [0, 2 pi) by the arc-tangent rule of the
// pie output (a point straight above or below the centre is at pi/2; the centre itself is not
// greater and not smaller than anything).
bool IsBigArc(tagPOINT p1, tagPOINT p2, int cx, int cy);

namespace geometry {

// The end point of an angle-arc at `angle` radians from (cx, cy) with radius r:
// (cx + r cos a, cy - r sin a), each coordinate truncated toward zero. An angle that is not
// finite has no point; the centre stands for it.
tagPOINT AngleArcPoint(int32_t cx, int32_t cy, int32_t r, float angle);

// 32-bit two's-complement arithmetic on record values, without overflow.
inline int32_t Add32(int32_t a, int32_t b) {
    return (int32_t)((uint32_t)a + (uint32_t)b);
}
inline int32_t Sub32(int32_t a, int32_t b) {
    return (int32_t)((uint32_t)a - (uint32_t)b);
}
inline int32_t Mul32(int32_t a, int32_t b) {
    return (int32_t)((uint32_t)a * (uint32_t)b);
}
// Half of the 32-bit difference b - a, truncated toward zero.
inline int32_t HalfSpan(int32_t a, int32_t b) {
    return Sub32(b, a) / 2;
}

}  // namespace geometry

#endif
