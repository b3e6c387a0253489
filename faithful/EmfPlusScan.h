// Whether an EMF's drawing is in EMF+ records only. An EMF may carry EMF+ records in comment
// records; neither mode of this library draws them, so a file that draws only through them
// comes out blank, and the host is told (svgmodule_options.notes).
#ifndef SVGMODULE_FAITHFUL_EMFPLUSSCAN_H
#define SVGMODULE_FAITHFUL_EMFPLUSSCAN_H

#include <cstdint>

namespace faithful {

// True for an EMF of `size` bytes (signature and byte count checked) that holds EMF+ records
// (a comment whose data starts with "EMF+") and whose drawing-system records do not draw it:
// the EMF+ header's dual flag is clear, or no record of the walk draws (lines, shapes, fills,
// regions, bit blocks, text or gradients). The walk is bounded like the players' walks.
bool DrawnOnlyInEmfPlus(const unsigned char* data, uint64_t size);

}  // namespace faithful

#endif
