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

// Converts the metafile of `size` bytes at `data`, EMF or WMF as its header says: the body of
// the exported ConvertMetaFileToSVG, and the contract mode of svgmodule_convert.
int ConvertMetafile(const char* data, uint64_t size, QByteArray& out);

}  // namespace svgtool

#endif
