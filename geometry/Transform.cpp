#include "geometry/Transform.h"

#include "geometry/Numeric.h"

namespace geometry {

bool ApplyWorldTransform(tagXFORM& m, const tagXFORM& x, unsigned long mode) {
    const tagXFORM old = m;
    switch (mode) {
        case 1:  // MWT_IDENTITY
            m = tagXFORM{1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f};
            break;
        case 2:  // MWT_LEFTMULTIPLY
            m = tagXFORM{x.eM11 * old.eM11 + x.eM12 * old.eM21,
                         x.eM11 * old.eM12 + x.eM12 * old.eM22,
                         x.eM21 * old.eM11 + x.eM22 * old.eM21,
                         x.eM21 * old.eM12 + x.eM22 * old.eM22,
                         x.eDx,
                         x.eDy};
            break;
        case 3:  // MWT_RIGHTMULTIPLY
            m = tagXFORM{old.eM11 * x.eM11 + old.eM12 * x.eM21,
                         old.eM11 * x.eM12 + old.eM12 * x.eM22,
                         old.eM21 * x.eM11 + old.eM22 * x.eM21,
                         old.eM21 * x.eM12 + old.eM22 * x.eM22,
                         x.eDx,
                         x.eDy};
            break;
        case 4:  // MWT_SET
            m = x;
            break;
        default:
            return false;
    }
    return true;
}

tagPOINT TransformPoint(const tagXFORM& m, int x, int y) {
    return tagPOINT{numeric::TruncToInt(x * m.eM11 + y * m.eM21 + m.eDx),
                    numeric::TruncToInt(x * m.eM12 + y * m.eM22 + m.eDy)};
}

}  // namespace geometry
