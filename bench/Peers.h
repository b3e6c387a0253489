// The open-source converters compare_peers measures this library against, behind a plain
// interface (their headers define macros that clash with Qt's).
#ifndef SVGMODULE_BENCH_PEERS_H
#define SVGMODULE_BENCH_PEERS_H

#include <cstddef>

namespace peers {

struct Result {
    bool converted;
    size_t outBytes;
};

// libemf2svg with its default options: plain EMF records only (no EMF+), size from the file.
Result Emf2svg(const char* data, size_t size);

// libwmf's SVG device into a memory stream, the picture sized from a scan at 72 dpi, images
// inline. Creating and destroying the library's context is part of every conversion.
Result Libwmf(const char* data, size_t size);

}  // namespace peers

#endif
