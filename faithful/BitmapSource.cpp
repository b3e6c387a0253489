// Source bitmaps of the bit-block records.
#include "faithful/BitmapSource.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "byteorder/RecordReader.h"
#include "faithful/DeviceContext.h"
#include "faithful/PatternBitmap.h"
#include "svg/DibDecoder.h"

namespace faithful {

namespace {

enum : uint32_t { BI_RGB = 0, BI_RLE8 = 1, BI_RLE4 = 2, BI_BITFIELDS = 3, BI_JPEG = 4, BI_PNG = 5 };
const uint32_t kInfoHeader = 40;
const uint32_t kLargestHeader = 124;
// A run-length bitmap may not claim more pixels than this many per byte of its bits (a run of
// two bytes draws at most 255, a delta of four skips at most 255 rows) ...
const uint64_t kRlePixelsPerByte = 256;
// ... nor more than this many in all.
const uint64_t kMostPixels = (uint64_t)1 << 24;

uint32_t Le32(const unsigned char* p) {
    return (uint32_t)p[0] | (uint32_t)p[1] << 8 | (uint32_t)p[2] << 16 | (uint32_t)p[3] << 24;
}

uint16_t Le16(const unsigned char* p) {
    return (uint16_t)(p[0] | p[1] << 8);
}

QRgb TableColour(const dib::DibSource& dib, size_t index) {
    if (!records::Fits((uint64_t)index * 4, 4, dib.colourBytes)) return 0xFF000000u;
    const unsigned char* q = dib.colours + index * 4;
    return 0xFF000000u | (QRgb)q[2] << 16 | (QRgb)q[1] << 8 | q[0];
}

// Run-length bitmaps (8 or 4 bits per pixel). Pixels that no run sets stay transparent: the
// drawing system leaves the destination there.
QImage DecodeRle(const dib::DibSource& dib, bool four) {
    const int64_t w = dib.header.biWidth, hs = dib.header.biHeight;
    const int64_t h = hs < 0 ? -hs : hs;
    if (w <= 0 || h <= 0 || w > INT_MAX || h > INT_MAX || !dib.bits) return QImage();
    const uint64_t pixels = (uint64_t)w * (uint64_t)h;
    if (pixels > kMostPixels || pixels > kRlePixelsPerByte * dib.bitsBytes + 65536) return QImage();
    QImage image((int)w, (int)h, QImage::Format_ARGB32);
    if (image.isNull()) return image;
    image.fill(0);
    QRgb table[256];
    for (int i = 0; i < 256; ++i) table[i] = TableColour(dib, (size_t)i);
    const unsigned char* b = dib.bits;
    const size_t n = dib.bitsBytes;
    size_t pos = 0;
    int64_t x = 0, y = 0;  // y counts rows from the bitmap's first
    auto put = [&](unsigned index) {
        if (x < w && y < h) {
            const int row = (int)(hs > 0 ? h - 1 - y : y);
            reinterpret_cast<QRgb*>(image.scanLine(row))[x] = table[index & 0xFF];
        }
        ++x;
    };
    while (pos + 2 <= n && y < h) {
        const unsigned count = b[pos], value = b[pos + 1];
        pos += 2;
        if (count > 0) {  // a run
            for (unsigned i = 0; i < count && x < w; ++i)
                put(four ? ((i & 1) ? value & 0x0F : value >> 4) : value);
            continue;
        }
        if (value == 0) {  // end of line
            x = 0;
            ++y;
        } else if (value == 1) {  // end of bitmap
            break;
        } else if (value == 2) {  // delta
            if (pos + 2 > n) break;
            x += b[pos];
            y += b[pos + 1];
            pos += 2;
        } else {  // literal pixels, padded to a 16-bit boundary
            const size_t bytes = four ? (value + 1) / 2 : value;
            if (bytes > n - pos) break;
            for (unsigned i = 0; i < value && x < w; ++i)
                put(four ? ((i & 1) ? b[pos + i / 2] & 0x0F : b[pos + i / 2] >> 4) : b[pos + i]);
            pos += (bytes + 1) / 2 * 2;
        }
    }
    return image;
}

// The shift and width of a channel mask.
void MaskShape(uint32_t mask, int& shift, uint32_t& max) {
    shift = 0;
    if (!mask) {
        max = 0;
        return;
    }
    while (!(mask >> shift & 1)) ++shift;
    max = mask >> shift;
}

// 16- and 32-bit pixels by their channel masks; `alphaMask` (32 bits only) gives a
// premultiplied alpha.
QImage DecodeMasked(const dib::DibSource& dib, const uint32_t masks[3], uint32_t alphaMask) {
    const int64_t w = dib.header.biWidth, hs = dib.header.biHeight;
    const int64_t h = hs < 0 ? -hs : hs;
    const unsigned bytes = dib.header.biBitCount / 8;
    if (w <= 0 || h <= 0 || w > INT_MAX || h > INT_MAX || !dib.bits) return QImage();
    const uint64_t rowBytes = (uint64_t)w * bytes, stride = (rowBytes + 3) / 4 * 4;
    if (rowBytes > dib.bitsBytes || (uint64_t)(h - 1) > (dib.bitsBytes - rowBytes) / stride)
        return QImage();
    QImage image((int)w, (int)h,
                 alphaMask ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.isNull()) return image;
    int shift[4];
    uint32_t max[4];
    for (int c = 0; c < 3; ++c) MaskShape(masks[c], shift[c], max[c]);
    MaskShape(alphaMask, shift[3], max[3]);
    auto channel = [&](uint32_t v, int c) -> uint32_t {
        if (max[c] == 255) return (v >> shift[c]) & 255;  // eight bits: no scaling
        return max[c] ? ((v >> shift[c]) & max[c]) * 255 / max[c] : 0;
    };
    for (int64_t y = 0; y < h; ++y) {
        const unsigned char* src = dib.bits + stride * (uint64_t)y;
        auto* dst = reinterpret_cast<QRgb*>(image.scanLine((int)(hs > 0 ? h - 1 - y : y)));
        for (int64_t x = 0; x < w; ++x, src += bytes) {
            const uint32_t v = bytes == 2 ? Le16(src) : Le32(src);
            const uint32_t a = alphaMask ? channel(v, 3) : 255;
            dst[x] = qRgba((int)std::min(channel(v, 0), a), (int)std::min(channel(v, 1), a),
                           (int)std::min(channel(v, 2), a), (int)a);
        }
    }
    return image;
}

bool AllTransparent(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(row[x])) return false;
    }
    return true;
}

QImage DecodeUncompressed(const dib::DibSource& dib, bool alpha) {
    const uint16_t bits = dib.header.biBitCount;
    const bool fields = dib.header.biCompression == BI_BITFIELDS;
    if ((bits == 16 || bits == 32) && (fields || (alpha && bits == 32))) {
        uint32_t masks[3] = {0x00FF0000u, 0x0000FF00u, 0x000000FFu};
        if (bits == 16) {
            masks[0] = 0x7C00;
            masks[1] = 0x03E0;
            masks[2] = 0x001F;
        }
        if (fields && dib.colourBytes >= 12)
            for (int c = 0; c < 3; ++c) masks[c] = Le32(dib.colours + 4 * c);
        const uint32_t alphaMask =
            alpha && bits == 32 ? ~(masks[0] | masks[1] | masks[2]) & 0xFF000000u : 0;
        QImage image = DecodeMasked(dib, masks, alphaMask);
        // Pixels whose alpha is all 0 were written without one: drawn opaque.
        if (alphaMask && !image.isNull() && AllTransparent(image))
            image = DecodeMasked(dib, masks, 0);
        return image;
    }
    if (dib.header.biCompression != BI_RGB && dib.header.biCompression != BI_BITFIELDS)
        return QImage();
    const std::shared_ptr<const QImage> decoded = DecodeDibPattern(dib);
    return decoded ? *decoded : QImage();
}

}  // namespace

bool DecodeDib(const unsigned char* r, size_t size, uint64_t headerOffset, uint64_t bitsOffset,
               uint64_t bitsBytes, bool alpha, SourceBitmap& out, uint32_t scans) {
    dib::DibSource dib;
    if (!dib::LocateBitmap(r, size, headerOffset, bitsOffset, dib)) return false;
    tagBITMAPINFOHEADER& h = dib.header;
    // The larger headers keep the first one's fields; their colour table follows them.
    if (h.biSize < kInfoHeader || h.biSize > kLargestHeader) return false;
    const uint32_t extra = h.biSize - kInfoHeader;
    if (extra) {
        if (extra > dib.colourBytes) return false;
        dib.colours += extra;
        dib.colourBytes -= extra;
    }
    if (bitsBytes && bitsBytes < dib.bitsBytes) dib.bitsBytes = (size_t)bitsBytes;
    if (scans > 0) {
        const int64_t rows = h.biHeight < 0 ? -(int64_t)h.biHeight : h.biHeight;
        if ((int64_t)scans < rows) h.biHeight = h.biHeight < 0 ? -(int32_t)scans : (int32_t)scans;
    }
    if (h.biWidth <= 0 || h.biHeight == 0 || h.biHeight == INT_MIN || !dib.bits) return false;
    out.width = h.biWidth;
    out.height = h.biHeight < 0 ? -h.biHeight : h.biHeight;
    out.bitCount = h.biBitCount;
    out.bottomUp = h.biHeight > 0;
    QImage image;
    switch (h.biCompression) {
        case BI_JPEG:
        case BI_PNG: {
            size_t length = dib.bitsBytes;
            if (h.biSizeImage && h.biSizeImage < length) length = h.biSizeImage;
            static const unsigned char kPng[4] = {0x89, 'P', 'N', 'G'};
            const bool jpeg = h.biCompression == BI_JPEG;
            if (length < 4 || (jpeg ? !(dib.bits[0] == 0xFF && dib.bits[1] == 0xD8)
                                    : std::memcmp(dib.bits, kPng, 4) != 0))
                return false;
            out.compressed = std::make_shared<const QByteArray>(
                reinterpret_cast<const char*>(dib.bits), (int)std::min<size_t>(length, INT_MAX));
            out.jpeg = jpeg;
            return true;
        }
        case BI_RLE8:
        case BI_RLE4:
            image = DecodeRle(dib, h.biCompression == BI_RLE4);
            break;
        default:
            image = DecodeUncompressed(dib, alpha);
            break;
    }
    if (image.isNull()) return false;
    out.image = std::make_shared<const QImage>(std::move(image));
    return true;
}

bool DecodePackedDib(const unsigned char* r, size_t size, uint64_t offset, SourceBitmap& out,
                     uint32_t scans) {
    dib::DibSource dib;
    if (!dib::LocateBitmap(r, size, offset, offset, dib)) return false;
    const tagBITMAPINFOHEADER& h = dib.header;
    uint64_t table = 0;
    if (h.biClrUsed)
        table = (uint64_t)h.biClrUsed * 4;
    else if (h.biBitCount <= 8)
        table = (uint64_t)4 << h.biBitCount;
    else if (h.biCompression == BI_BITFIELDS && h.biSize == kInfoHeader)
        table = 12;
    return DecodeDib(r, size, offset, offset + h.biSize + table, 0, false, out, scans);
}

bool DecodeDdb(const unsigned char* r, size_t size, uint64_t offset, SourceBitmap& out) {
    if (!records::Fits(offset, 10, size)) return false;
    const unsigned char* p = r + offset;
    const int width = (int16_t)Le16(p + 2), height = (int16_t)Le16(p + 4);
    const int rowBytes = (int16_t)Le16(p + 6);
    const int planes = p[8], bits = p[9];
    const unsigned char* data = p + 10;
    const size_t available = size - (size_t)offset - 10;
    if (planes != 1 || width <= 0 || height <= 0 || rowBytes <= 0) return false;
    out.width = width;
    out.height = height;
    out.bitCount = bits;
    if (bits == 1) {
        out.image = DecodeMonochromeDdb(width, height, rowBytes, data, available);
        return out.image != nullptr;
    }
    if (bits != 24 && bits != 32) return false;
    const unsigned bytes = (unsigned)bits / 8;
    if ((uint64_t)rowBytes < (uint64_t)width * bytes ||
        (uint64_t)rowBytes * (uint64_t)height > available)
        return false;
    QImage image(width, height, QImage::Format_RGB32);
    if (image.isNull()) return false;
    for (int y = 0; y < height; ++y) {
        const unsigned char* src = data + (size_t)y * (size_t)rowBytes;
        auto* dst = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x, src += bytes) dst[x] = qRgb(src[2], src[1], src[0]);
    }
    out.image = std::make_shared<const QImage>(std::move(image));
    return true;
}

void UseAsSource(const SourceBitmap& s, bool monochrome, BitmapBlt& b) {
    b.bitmap = s.image;
    b.compressed = s.compressed;
    b.jpeg = s.jpeg;
    b.width = s.width;
    b.height = s.height;
    b.monochrome = monochrome && s.bitCount == 1;
}

}  // namespace faithful
