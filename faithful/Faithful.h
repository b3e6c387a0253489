// The faithful interpreter: plays a metafile (EMF, or WMF with or without the placeable
// header) the way the drawing system that recorded it would, and writes what it draws as SVG.
//
// It shares the file-format layer with the contract interpreters (record walks and bounds
// checks, byte-order normalisers, published structures, DIB decoding, output buffer, escaping)
// and nothing of their drawing rules.
#ifndef SVGMODULE_FAITHFUL_H
#define SVGMODULE_FAITHFUL_H

#include <QByteArray>
#include <cstdint>

namespace faithful {

// Converts the metafile of `size` bytes at `data`. Returns the library's status codes: 1 (EMF
// converted), 2 (WMF converted), 0 (nothing converted), -1 (an exception ended it), -2 (the
// EMF header's byte count differs from `size`), -3 (the WMF header was refused). `out`
// receives the document (UTF-8) only when 1 or 2 is returned.
int Convert(const unsigned char* data, uint64_t size, QByteArray& out);

}  // namespace faithful

#endif
