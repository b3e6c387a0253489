// The tiles of pattern brushes, decoded from the bitmaps their records carry (both formats).
#ifndef SVGMODULE_FAITHFUL_PATTERNBITMAP_H
#define SVGMODULE_FAITHFUL_PATTERNBITMAP_H

#include <QImage>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "svg/DibDecoder.h"

namespace faithful {

// The image of a device-independent bitmap, uncompressed or with bit-field masks; null when
// it has no rows that decode.
std::shared_ptr<const QImage> DecodeDibPattern(const dib::DibSource& dib);

// A monochrome device-dependent bitmap: `height` rows of `rowBytes` bytes from the top, of
// which the first `width` bits each are pixels, read from the `available` bytes at `bits`. A
// 1-bit image (its index 0 drawn in the text colour, 1 in the background colour); null when
// the rows do not fit or the sizes are not positive.
std::shared_ptr<const QImage> DecodeMonochromeDdb(int width, int height, int rowBytes,
                                                  const unsigned char* bits, size_t available);

}  // namespace faithful

#endif
