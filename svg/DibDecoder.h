// Device-independent bitmaps of metafile records, decoded into Qt images for PNG output.
//
// A bitmap is a 40-byte header, a colour table of RGBQUAD entries right after it, and the
// pixel bits. The decoders read only the byte ranges that lie inside the record: a bitmap
// whose rows the record cannot hold decodes to no image, and that is known before any image
// is allocated, so a bitmap never costs more than a small multiple of its record's bytes.
//
// A monochrome bitmap is not drawn: it becomes the pending mask, which the next colour
// bitmap drawn with SRCAND takes as its transparency. The pending mask belongs to the
// calling thread and outlives the conversion that set it.
#ifndef SVGMODULE_DIBDECODER_H
#define SVGMODULE_DIBDECODER_H

#include <QByteArray>
#include <QImage>
#include <cstddef>
#include <cstdint>

#include "MetafileStructs.h"

namespace dib {

// The raster operation that makes a 4-, 8- or 16-bit bitmap take the pending mask.
constexpr int kSrcAnd = 0x008800C6;

// A bitmap inside a record. The colour table and the bits are byte ranges that end with the
// record.
struct DibSource {
    tagBITMAPINFOHEADER header{};            // in host order
    const unsigned char* colours = nullptr;  // the colour table entries
    size_t colourBytes = 0;                  // bytes of them inside the record
    const unsigned char* bits = nullptr;     // the pixel bits; null when the record has none
    size_t bitsBytes = 0;                    // bytes from `bits` to the end of the record
};

// The bitmap of a record of `size` bytes: its header at `headerOffset`, the colour table
// right after the header, the bits at `bitsOffset`. False, with nothing to draw, when either
// offset is 0 or the header does not lie inside the record.
bool LocateBitmap(const unsigned char* record, size_t size, uint64_t headerOffset,
                  uint64_t bitsOffset, DibSource& out);

// The image of a bitmap, null when there is none to draw. `op` selects the pending mask for
// 4-, 8- and 16-bit bitmaps (kSrcAnd) and is the transparent key of 24- and 32-bit ones;
// `pad` is the number of bytes that follow each row of packed pixels of a 4-bit bitmap.
// Updates the pending mask: a 1-bit bitmap replaces it (and gives no image), a bitmap of 4 to
// 32 bits empties it after use, other bit counts leave it alone.
QImage GetQImage(const DibSource& dib, int op, int pad);

// The decoders, one per bit count; each gives a null image when the bits cannot hold the rows.
// Rows are stored bottom-up when biHeight is positive and top-down when it is negative.
QImage Handle1Bpp(const DibSource& dib);
QImage Handle4Bpp(const DibSource& dib, int pad);
QImage Handle8Bpp(const DibSource& dib);
QImage Handle16Bpp(const DibSource& dib);
// 24- and 32-bit pixels; a pixel equal to the key (0x00BBGGRR, any key but 0) becomes white.
QImage Handle32Bpp(const DibSource& dib, int key);

// Makes the pixels of `image` (ARGB32) transparent where `mask` is opaque black. Either may be
// null (or a null image): then nothing happens.
bool MaskImage(const QImage* mask, QImage* image);

// Appends the base64 text of `data` to `out`, a line feed after every 76 characters. False,
// and nothing appended, when there is nothing to encode.
bool ConvertToBase64(const unsigned char* data, unsigned long length, QByteArray& out);

// The calling thread's pending mask; a null image when empty.
QImage& PendingMask();

}  // namespace dib

#endif
