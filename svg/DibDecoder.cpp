// Bitmap decoding: one decoder per bit count, the pending mask and the base64 text.
//
// The decoders work a row at a time on the image's own scan lines: whole rows are copied
// where the image format stores the pixels as the bitmap does (1 and 8 bits), and pixels are
// converted in place along the row otherwise.
#define TRACE_FILE "SVGWriter"
#include "svg/DibDecoder.h"

#include <QVector>
#include <algorithm>
#include <climits>
#include <cstring>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "byteorder/EmfNormalisers.h"
#include "byteorder/RecordReader.h"

namespace dib {

namespace {

// Each thread keeps its own pending mask, so conversions on different threads never share one.
thread_local QImage t_pendingMask;

const QRgb kBlack = 0xFF000000u;
const QRgb kWhite = 0xFFFFFFFFu;
const int kBase64Line = 76;

// Where the rows of a bitmap lie and where each lands in the image.
struct Rows {
    int width = 0;
    int count = 0;          // rows in the bitmap and in the image
    bool bottomUp = false;  // the first source row is the image's last
    uint64_t stride = 0;    // bytes from one source row to the next

    int ImageRow(int source) const { return bottomUp ? count - 1 - source : source; }
};

// Plans the rows of a bitmap whose rows are `stride` bytes apart and whose pixels take
// `rowBytes` bytes of each: false when there are no pixels, or when the record's bits cannot
// hold every row (the last row needs no padding after its pixels).
bool PlanRows(const DibSource& dib, uint64_t stride, uint64_t rowBytes, Rows& rows) {
    const int64_t height = dib.header.biHeight;
    const int64_t count = height < 0 ? -height : height;
    if (dib.header.biWidth <= 0 || count == 0 || count > INT_MAX || !dib.bits) return false;
    if (rowBytes > dib.bitsBytes) return false;
    if (count > 1 && (uint64_t)(count - 1) > (dib.bitsBytes - rowBytes) / stride) return false;
    rows.width = dib.header.biWidth;
    rows.count = (int)count;
    rows.bottomUp = height > 0;
    rows.stride = stride;
    return true;
}

// Source row bytes padded to whole 32-bit words, as the DIB format stores rows.
uint64_t WordAligned(uint64_t bytes) {
    return (bytes + 3) / 4 * 4;
}

const unsigned char* SourceRow(const DibSource& dib, const Rows& rows, int row) {
    return dib.bits + rows.stride * (uint64_t)row;
}

// Entry `index` of the colour table as an opaque colour; black when it lies outside the record.
QRgb TableColour(const DibSource& dib, size_t index) {
    if (!records::Fits(index * 4, 4, dib.colourBytes)) return kBlack;
    const unsigned char* q = dib.colours + index * 4;
    return kBlack | (QRgb)q[2] << 16 | (QRgb)q[1] << 8 | q[0];
}

// `size` entries: the first `fromTable` from the colour table, the rest white.
QVector<QRgb> ColourTable(const DibSource& dib, int fromTable, int size) {
    QVector<QRgb> table(size, kWhite);
    for (int i = 0; i < fromTable; ++i) table[i] = TableColour(dib, (size_t)i);
    return table;
}

// An image of the planned size; null when it cannot be allocated.
QImage NewImage(const Rows& rows, QImage::Format format) {
    return QImage(rows.width, rows.count, format);
}

// Copies `rowBytes` bytes of every row into the image's scan lines.
void CopyRows(const DibSource& dib, const Rows& rows, size_t rowBytes, QImage& image) {
    for (int i = 0; i < rows.count; ++i)
        std::memcpy(image.scanLine(rows.ImageRow(i)), SourceRow(dib, rows, i), rowBytes);
}

// Every pixel's colour made opaque (the colour tables hold opaque colours only), as 32-bit
// pixels with alpha that the pending mask can clear.
QImage MaskedCopy(const QImage& image, const QImage& mask) {
    QImage copy = image.convertToFormat(QImage::Format_ARGB32);
    MaskImage(&mask, &copy);
    return copy;
}

// One 5-5-5 channel widened to 8 bits: its low three bits set unless it is 0.
inline QRgb Widen555(uint32_t channel) {
    return channel ? (channel | 7u) : 0u;
}

}  // namespace

QImage& PendingMask() {
    return t_pendingMask;
}

bool LocateBitmap(const unsigned char* record, size_t size, uint64_t headerOffset,
                  uint64_t bitsOffset, DibSource& out) {
    if (headerOffset == 0 || bitsOffset == 0 ||
        !records::Fits(headerOffset, sizeof(tagBITMAPINFOHEADER), size))
        return false;
    std::memcpy(&out.header, record + headerOffset, sizeof out.header);
    InitBITMAPINFO(out.header);
    const uint64_t colours = headerOffset + sizeof(tagBITMAPINFOHEADER);
    out.colours = record + colours;
    out.colourBytes = size - colours;
    out.bits = bitsOffset < size ? record + bitsOffset : nullptr;
    out.bitsBytes = bitsOffset < size ? size - bitsOffset : 0;
    return true;
}

QImage GetQImage(const DibSource& dib, int op, int pad) {
    TRACE_ENTER();
    QImage& pending = PendingMask();
    QImage image;
    switch (dib.header.biBitCount) {
        case 1:
            pending = Handle1Bpp(dib);
            TRACE_RETURN(QImage());
        case 4:
            image = Handle4Bpp(dib, pad);
            if (op == kSrcAnd) image = MaskedCopy(image, pending);
            break;
        case 8:
            image = Handle8Bpp(dib);
            if (op == kSrcAnd) image = MaskedCopy(image, pending);
            break;
        case 16:
            image = Handle16Bpp(dib);
            if (op == kSrcAnd) MaskImage(&pending, &image);
            break;
        case 24:
        case 32:
            image = Handle32Bpp(dib, op);
            break;
        default:
            TRACE_RETURN(QImage());
    }
    pending = QImage();
    TRACE_RETURN(image);
}

QImage Handle1Bpp(const DibSource& dib) {
    const uint64_t rowBytes = ((uint64_t)std::max(dib.header.biWidth, 0) + 7) / 8;
    Rows rows;
    if (!PlanRows(dib, WordAligned(rowBytes), rowBytes, rows)) return QImage();
    QImage image = NewImage(rows, QImage::Format_Mono);
    if (image.isNull()) return image;
    image.setColorTable(ColourTable(dib, 2, 2));
    CopyRows(dib, rows, rowBytes, image);
    return image;
}

// Each byte holds two pixels, the high nibble first. Source rows follow each other with `pad`
// bytes between them (none when pad is 0 or less); each row fills one image row.
QImage Handle4Bpp(const DibSource& dib, int pad) {
    TRACE_ENTER();
    const uint64_t rowBytes = ((uint64_t)std::max(dib.header.biWidth, 0) + 1) / 2;
    Rows rows;
    if (!PlanRows(dib, rowBytes + (uint64_t)std::max(pad, 0), rowBytes, rows))
        TRACE_RETURN(QImage());
    QImage image = NewImage(rows, QImage::Format_Indexed8);
    if (image.isNull()) TRACE_RETURN(image);
    image.setColorTable(ColourTable(dib, 16, 256));
    for (int i = 0; i < rows.count; ++i) {
        const unsigned char* src = SourceRow(dib, rows, i);
        uchar* dst = image.scanLine(rows.ImageRow(i));
        for (int x = 0; x < rows.width; ++x)
            dst[x] = (x & 1) ? (src[x >> 1] & 0x0F) : (src[x >> 1] >> 4);
    }
    TRACE_RETURN(image);
}

QImage Handle8Bpp(const DibSource& dib) {
    TRACE_ENTER();
    const uint64_t rowBytes = (uint64_t)std::max(dib.header.biWidth, 0);
    Rows rows;
    if (!PlanRows(dib, WordAligned(rowBytes), rowBytes, rows)) TRACE_RETURN(QImage());
    QImage image = NewImage(rows, QImage::Format_Indexed8);
    if (image.isNull()) TRACE_RETURN(image);
    image.setColorTable(ColourTable(dib, 256, 256));
    CopyRows(dib, rows, rowBytes, image);
    TRACE_RETURN(image);
}

// 5-5-5 pixels, 16-bit little-endian values; rows are padded to whole 32-bit words.
QImage Handle16Bpp(const DibSource& dib) {
    TRACE_ENTER();
    const uint64_t rowBytes = (uint64_t)std::max(dib.header.biWidth, 0) * 2;
    Rows rows;
    if (!PlanRows(dib, WordAligned(rowBytes), rowBytes, rows)) TRACE_RETURN(QImage());
    QImage image = NewImage(rows, QImage::Format_ARGB32);
    if (image.isNull()) TRACE_RETURN(image);
    const bool swap = IsBigEndian();
    for (int i = 0; i < rows.count; ++i) {
        const unsigned char* src = SourceRow(dib, rows, i);
        auto* dst = reinterpret_cast<QRgb*>(image.scanLine(rows.ImageRow(i)));
        for (int x = 0; x < rows.width; ++x) {
            uint16_t v;
            std::memcpy(&v, src + 2 * x, 2);
            if (swap) v = Call_LE2BE_Word(v);
            dst[x] = kBlack | Widen555((v >> 7) & 0xF8u) << 16 | Widen555((v >> 2) & 0xF8u) << 8 |
                     Widen555((uint32_t)(v << 3) & 0xF8u);
        }
    }
    TRACE_RETURN(image);
}

// Pixels of 3 bytes (blue, green, red; rows padded to whole words) or 4 bytes (blue, green,
// red, reserved). The key 0x00BBGGRR is compared with the pixel as 0xRRGGBB.
QImage Handle32Bpp(const DibSource& dib, int key) {
    TRACE_ENTER();
    const unsigned pixelBytes = dib.header.biBitCount == 24 ? 3 : 4;
    const uint64_t rowBytes = (uint64_t)std::max(dib.header.biWidth, 0) * pixelBytes;
    Rows rows;
    if (!PlanRows(dib, WordAligned(rowBytes), rowBytes, rows)) TRACE_RETURN(QImage());
    QImage image = NewImage(rows, QImage::Format_RGB32);
    if (image.isNull()) TRACE_RETURN(image);
    const uint32_t k = (uint32_t)key;
    const bool keyed = key != 0;
    const QRgb keyColour = (k & 0xFFu) << 16 | (k & 0xFF00u) | (k >> 16 & 0xFFu);
    for (int i = 0; i < rows.count; ++i) {
        const unsigned char* src = SourceRow(dib, rows, i);
        auto* dst = reinterpret_cast<QRgb*>(image.scanLine(rows.ImageRow(i)));
        for (int x = 0; x < rows.width; ++x, src += pixelBytes) {
            const QRgb rgb = (QRgb)src[2] << 16 | (QRgb)src[1] << 8 | src[0];
            dst[x] = (keyed && rgb == keyColour) ? kWhite : (kBlack | rgb);
        }
    }
    TRACE_RETURN(image);
}

bool MaskImage(const QImage* mask, QImage* image) {
    if (!mask || !image || mask->isNull() || image->isNull() || image->depth() != 32) return true;
    // Which of the mask's two pixel values is opaque black.
    const bool black[2] = {mask->color(0) == kBlack, mask->color(1) == kBlack};
    if (!black[0] && !black[1]) return true;
    const int width = std::min(mask->width(), image->width());
    const int height = std::min(mask->height(), image->height());
    for (int y = 0; y < height; ++y) {
        const uchar* bits = mask->constScanLine(y);
        auto* dst = reinterpret_cast<QRgb*>(image->scanLine(y));
        for (int x = 0; x < width; ++x)
            if (black[(bits[x >> 3] >> (7 - (x & 7))) & 1]) dst[x] = 0;
    }
    return true;
}

bool ConvertToBase64(const unsigned char* data, unsigned long length, QByteArray& out) {
    TRACE_ENTER();
    if (!data || length == 0 || length > (unsigned long)INT_MAX / 2) TRACE_RETURN(false);
    const QByteArray text =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), (int)length).toBase64();
    const int size = (int)text.size();
    out.reserve(out.size() + size + size / kBase64Line);
    for (int at = 0; at < size; at += kBase64Line) {
        const int line = std::min(kBase64Line, size - at);
        out.append(text.constData() + at, line);
        if (line == kBase64Line) out.append('\n');
    }
    TRACE_RETURN(true);
}

}  // namespace dib
