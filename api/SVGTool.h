// Internal entry points shared by the exported functions.
#ifndef SVGMODULE_SVGTOOL_H
#define SVGMODULE_SVGTOOL_H

#include <QByteArray>
#include <cstdint>

namespace svgtool {

// Converts a WMF (with or without the placeable header) of which `available` bytes exist
// (UINT64_MAX when the caller gave no length and the header is trusted): the body of the
// exported ConvertWMFToSVG, which the format-detecting entry calls with the input's length.
int ConvertWMFToSVG(const char* data, uint64_t available, QByteArray& out);

}  // namespace svgtool

#endif
