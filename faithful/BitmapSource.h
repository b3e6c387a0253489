// The source bitmaps of the bit-block records of both formats, decoded into images: the
// device-independent bitmaps (every bit count; run-length and bit-field compression; JPEG and
// PNG kept as their bytes) and the old device-dependent bitmaps of WMF.
//
// Every decoder reads only the record's bytes and knows before it allocates that the record
// holds what the image needs: an uncompressed bitmap's rows must lie in the record, and a
// run-length bitmap may not claim more pixels than its bytes can describe.
#ifndef SVGMODULE_FAITHFUL_BITMAPSOURCE_H
#define SVGMODULE_FAITHFUL_BITMAPSOURCE_H

#include <QByteArray>
#include <QImage>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace faithful {

struct SourceBitmap {
    std::shared_ptr<const QImage> image;  // top-down
    // A JPEG or PNG bitmap: its bytes as they are.
    std::shared_ptr<const QByteArray> compressed;
    bool jpeg = false;
    int width = 0, height = 0;  // pixels
    int bitCount = 0;
    bool bottomUp = false;  // rows stored from the bottom (the header's height is positive)
};

struct BitmapBlt;
// Makes `s` the source of `b`. A 1-bit bitmap of a bit-block record (`monochrome`) is drawn in
// the text and background colours.
void UseAsSource(const SourceBitmap& s, bool monochrome, BitmapBlt& b);

// The bitmap whose header lies at `headerOffset` of the record (`size` bytes) and whose bits
// lie at `bitsOffset`, at most `bitsBytes` of them (0: up to the record's end). `alpha`: the
// fourth byte of 32-bit pixels is a premultiplied alpha (the image is then premultiplied
// ARGB, unless every alpha is 0). `scans`, when positive: the bits hold only that many rows.
// False when nothing decodes.
bool DecodeDib(const unsigned char* record, size_t size, uint64_t headerOffset, uint64_t bitsOffset,
               uint64_t bitsBytes, bool alpha, SourceBitmap& out, uint32_t scans = 0);

// A packed bitmap (header, colour table, bits) at `offset` of a WMF record.
// `scans` as for DecodeDib.
bool DecodePackedDib(const unsigned char* record, size_t size, uint64_t offset, SourceBitmap& out,
                     uint32_t scans = 0);

// An old device-dependent bitmap at `offset` of a WMF record: type, width, height, bytes per
// row, planes and bits per pixel (10 bytes), then the rows from the top. One plane of 1 bit
// (a 1-bit image), 24 or 32 bits decode; the others have no colours to read.
bool DecodeDdb(const unsigned char* record, size_t size, uint64_t offset, SourceBitmap& out);

}  // namespace faithful

#endif
