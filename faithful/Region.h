// Regions of the faithful interpreter: sets of whole device pixels held as QRegion, the paths
// that draw them and the pixels a path covers.
#ifndef SVGMODULE_FAITHFUL_REGION_H
#define SVGMODULE_FAITHFUL_REGION_H

#include <QRegion>
#include <cstdint>

#include "faithful/DrawOps.h"
#include "faithful/Geometry.h"

namespace faithful {
namespace region {

// Device coordinates of regions stay within +-kExtent.
const int kExtent = 1 << 24;
// The region "everything" (the complement of no clip) for a device of this size: far around
// the device, yet small enough for renderers that keep coordinates in 24 bits.
QRect Everything(PointF deviceSize);

// A device coordinate as a pixel edge: rounded, within +-kExtent; 0 when not finite.
int Edge(double v);

// The path of the region: one closed figure per rectangle (they never overlap).
Path PathOf(const QRegion& region);

// The pixels `path` covers under `rule` (figures closed, curves flattened). The work (scanlines
// crossed by the edges) is taken from `budget`; false, leaving `out` alone, when the budget
// cannot pay for it.
bool Rasterise(const Path& path, FillRule rule, uint64_t& budget, QRegion& out);

}  // namespace region
}  // namespace faithful

#endif
