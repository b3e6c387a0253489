// World-transform updates shared by the EMF interpreter and the writer.
#ifndef SVGMODULE_TRANSFORM_H
#define SVGMODULE_TRANSFORM_H

#include "MetafileStructs.h"

namespace geometry {

// Changes `m` by the EMF world-transform mode: 1 identity, 2 left-multiply, 3 right-multiply,
// 4 set. In modes 2 and 3 the translation is replaced by the given one, not composed. Any
// other mode leaves `m` unchanged and returns false.
bool ApplyWorldTransform(tagXFORM& m, const tagXFORM& x, unsigned long mode);

// The point (x, y) through `m`, each coordinate computed in 32-bit floating point and
// truncated toward zero (saturating at the limits of int32).
tagPOINT TransformPoint(const tagXFORM& m, int x, int y);

}  // namespace geometry

#endif
