// The device context's bit blocks: the source rectangle cropped to the bitmap and mapped onto
// its destination, the raster operations turned into an image with transparency, and the
// blocks that combine on one destination (a mask and its image) drawn as one image.
//
// A raster operation that reads the destination cannot be drawn over a picture that is not
// known: each block (or sequence of blocks on one destination) is evaluated twice, over a
// black and over a white destination. A pixel that comes out the same on both is drawn
// opaque in that colour; one that leaves both as they were (white over white, black over
// black) is transparent; any other is drawn as it comes out over white (a white page), or
// over black when it would vanish on white. So SRCCOPY and NOTSRCCOPY draw the (inverted)
// source; SRCAND draws all but its white pixels, SRCPAINT and SRCINVERT all but their black
// ones; a mask drawn with SRCAND followed by its image drawn with SRCPAINT or SRCINVERT (or
// the reverse pair SRCPAINT then SRCAND, or the XOR-AND-XOR trio) draws the image where the
// mask lets it through and nothing elsewhere.
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "faithful/DeviceContext.h"

namespace faithful {

namespace {

// Qt converts and scales large images on threads of its own pool, whose synchronisation the
// thread sanitizer cannot see and which a conversion running on a host's thread need not use:
// images are converted in bands small enough for Qt to convert on the calling thread, and
// scaled here.
const int kBandPixels = (1 << 17) - 1;

QImage Argb32(const QImage& image) {
    if (image.format() == QImage::Format_ARGB32) return image;
    const int w = image.width(), h = image.height();
    if ((int64_t)w * h <= kBandPixels) return image.convertToFormat(QImage::Format_ARGB32);
    QImage out(w, h, QImage::Format_ARGB32);
    if (out.isNull()) return out;
    const int rows = std::max(1, kBandPixels / std::max(1, w));
    for (int y = 0; y < h; y += rows) {
        const int n = std::min(rows, h - y);
        const QImage band = image.copy(0, y, w, n).convertToFormat(QImage::Format_ARGB32);
        if (band.isNull()) return QImage();
        for (int k = 0; k < n; ++k)
            std::memcpy(out.scanLine(y + k), band.constScanLine(k), (size_t)w * 4);
    }
    return out;
}

// `image` (ARGB32) stretched to w x h, each pixel taking the source pixel under its centre.
QImage ScaledNearest(const QImage& image, int w, int h) {
    QImage out(w, h, QImage::Format_ARGB32);
    if (out.isNull() || image.isNull()) return QImage();
    const int64_t sw = image.width(), sh = image.height();
    for (int y = 0; y < h; ++y) {
        const auto* src =
            reinterpret_cast<const QRgb*>(image.constScanLine((int)(((2 * y + 1) * sh) / (2 * h))));
        auto* dst = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < w; ++x) dst[x] = src[((2 * x + 1) * sw) / (2 * w)];
    }
    return out;
}

const uint32_t kSrcCopy = 0x00CC0020;
const int HALFTONE = 4;
// At most this many blocks on one destination are combined.
const size_t kMostPending = 3;
// Blocks combine when their destinations' corners agree to this many device units.
const double kSameCorner = 0.5;
// Source coordinates past this many pixels name no pixel of any bitmap.
const double kFarthest = 1e9;

// The operation's index byte: bit (p << 2 | s << 1 | d) is the result for those inputs.
uint8_t RopIndex(uint32_t rop) {
    return (uint8_t)(rop >> 16);
}

bool ReadsSource(uint32_t rop) {
    const uint8_t i = RopIndex(rop);
    return ((i >> 2) & 0x33) != (i & 0x33);
}

bool ReadsDestination(uint32_t rop) {
    const uint8_t i = RopIndex(rop);
    return ((i >> 1) & 0x55) != (i & 0x55);
}

// The ternary raster operation on 24-bit colours with its pattern fixed: for each source and
// destination bit pair (s << 1 | d), the result bits where the pattern's bit picks them.
struct Rop3WithPattern {
    uint32_t k[4];
    Rop3WithPattern(uint8_t index, uint32_t p) {
        for (int c = 0; c < 4; ++c) {
            k[c] = ((index >> (4 | c) & 1) ? p : 0) | ((index >> c & 1) ? ~p : 0);
        }
    }
    uint32_t operator()(uint32_t s, uint32_t d) const {
        return ((k[3] & s & d) | (k[2] & s & ~d) | (k[1] & ~s & d) | (k[0] & ~s & ~d)) & 0xFFFFFF;
    }
};

// What a pixel over an unknown destination is drawn as (see the file's comment): `overWhite`
// and `overBlack` are its results over a white and a black destination.
QRgb Resolve(uint32_t overWhite, uint32_t overBlack) {
    if (overWhite == overBlack) return 0xFF000000u | overWhite;
    if (overWhite == 0xFFFFFF && overBlack == 0) return 0;
    return 0xFF000000u | (overWhite != 0xFFFFFF ? overWhite : overBlack);
}

bool Finite(const Matrix& m) {
    return std::isfinite(m.m11) && std::isfinite(m.m12) && std::isfinite(m.m21) &&
           std::isfinite(m.m22) && std::isfinite(m.dx) && std::isfinite(m.dy);
}

// The device corners of an image's pixels (0, 0), (w, 0), (0, h).
void Corners(const QImage& image, const Matrix& m, PointF out[3]) {
    out[0] = m.Map({0, 0});
    out[1] = m.Map({(double)image.width(), 0});
    out[2] = m.Map({0, (double)image.height()});
}

bool SameDestination(const QImage& a, const Matrix& ma, const QImage& image, const Matrix& m) {
    PointF ca[3], cb[3];
    Corners(a, ma, ca);
    Corners(image, m, cb);
    for (int i = 0; i < 3; ++i)
        if (std::fabs(ca[i].x - cb[i].x) > kSameCorner ||
            std::fabs(ca[i].y - cb[i].y) > kSameCorner)
            return false;
    return true;
}

// The source's pixels in the rectangle [x0, x1) x [y0, y1); a monochrome source takes the text
// and background colours. As 32-bit colours with alpha when `argb`; otherwise in the source's
// format (a copy keeps the size of the bitmap, at most).
QImage SourcePixels(const BitmapBlt& blt, int x0, int y0, int x1, int y1, Rgb text, Rgb back,
                    bool argb) {
    QImage part = blt.bitmap->copy(x0, y0, x1 - x0, y1 - y0);
    if (part.isNull()) return part;
    if (part.format() == QImage::Format_Mono && part.width() % 8) {
        // The bits past the last pixel of each row are left as the copy made them: cleared,
        // so that the same pixels always encode to the same bytes.
        const uchar keep = (uchar)(0xFF << (8 - part.width() % 8));
        for (int y = 0; y < part.height(); ++y) part.scanLine(y)[part.width() / 8] &= keep;
    }
    if (blt.monochrome && part.format() == QImage::Format_Mono)
        part.setColorTable({0xFF000000u | text, 0xFF000000u | back});
    return argb ? Argb32(part) : part;
}

// Pixels of `mask` (1-bit) at (x, y), 0 outside it.
int MaskBit(const QImage& mask, int x, int y) {
    if (x < 0 || y < 0 || x >= mask.width() || y >= mask.height()) return 0;
    return (mask.constScanLine(y)[x >> 3] >> (7 - (x & 7))) & 1;
}

}  // namespace

void FitSourceToBitmap(BitmapBlt& blt) {
    RectF& s = blt.src;
    if (s.right > 0 && s.left >= 0 && s.left < blt.width && s.left + s.right > blt.width)
        s.right = blt.width - s.left;
    if (s.bottom > 0 && s.top >= 0 && s.top < blt.height && s.top + s.bottom > blt.height)
        s.bottom = blt.height - s.top;
}

void DeviceContext::DrawBitmap(const BitmapBlt& blt) {
    const bool ropBlend = blt.blend == BitmapBlt::Blend::Rop;
    if (ropBlend && !ReadsSource(blt.rop) && !blt.mask) {
        // A pattern block over the destination's bounding rectangle (logical).
        const double x = std::min({blt.dest[0].x, blt.dest[1].x, blt.dest[2].x});
        const double y = std::min({blt.dest[0].y, blt.dest[1].y, blt.dest[2].y});
        const double r = std::max(blt.dest[1].x, blt.dest[2].x + blt.dest[1].x - blt.dest[0].x);
        const double b = std::max(blt.dest[2].y, blt.dest[1].y + blt.dest[2].y - blt.dest[0].y);
        return PatBlt({x, y, std::max(r, blt.dest[0].x) - x, std::max(b, blt.dest[0].y) - y},
                      blt.rop);
    }
    const RectF& s = blt.src;
    if (!(s.right != 0 && s.bottom != 0) || !(std::fabs(s.left) < kFarthest) ||
        !(std::fabs(s.top) < kFarthest) || !(std::fabs(s.right) < kFarthest) ||
        !(std::fabs(s.bottom) < kFarthest))
        return;
    // Source pixels to logical units: the source rectangle's corners onto the destination's.
    const PointF* d = blt.dest;
    Matrix m;
    m.m11 = (d[1].x - d[0].x) / s.right;
    m.m12 = (d[1].y - d[0].y) / s.right;
    m.m21 = (d[2].x - d[0].x) / s.bottom;
    m.m22 = (d[2].y - d[0].y) / s.bottom;
    m.dx = d[0].x - s.left * m.m11 - s.top * m.m21;
    m.dy = d[0].y - s.left * m.m12 - s.top * m.m22;
    const Matrix toDevice = m.Then(LogicalToDevice());
    if (!toDevice.IsInvertible()) return;
    const bool smooth = m_state.stretchMode == HALFTONE;

    if (blt.compressed) {
        FlushBitmaps();
        ImageOp op;
        op.compressed = blt.compressed;
        op.jpeg = blt.jpeg;
        op.width = blt.width;
        op.height = blt.height;
        op.toDevice = toDevice;
        op.smooth = smooth;
        m_sink.DrawImage(op);
        return;
    }
    if (!blt.bitmap || blt.bitmap->isNull()) return;

    // The source rectangle cropped to the bitmap, in whole pixels.
    const double W = blt.bitmap->width(), H = blt.bitmap->height();
    const double left = std::max(0.0, std::floor(std::min(s.left, s.left + s.right)));
    const double top = std::max(0.0, std::floor(std::min(s.top, s.top + s.bottom)));
    const double right = std::min(W, std::ceil(std::max(s.left, s.left + s.right)));
    const double bottom = std::min(H, std::ceil(std::max(s.top, s.top + s.bottom)));
    if (!(right > left && bottom > top)) return;
    const int x0 = (int)left, y0 = (int)top, x1 = (int)right, y1 = (int)bottom;
    const Rgb text = RgbFromColorRef(m_state.textColor), back = RgbFromColorRef(m_state.bkColor);
    const bool copy = ropBlend && !blt.mask && blt.rop == kSrcCopy;
    QImage pixels = SourcePixels(blt, x0, y0, x1, y1, text, back, !copy);
    if (pixels.isNull()) return;
    const Matrix partToDevice = Matrix::Translate(x0, y0).Then(toDevice);
    if (!Finite(partToDevice)) return;

    if (blt.mask) {
        // Pixels whose operation keeps the destination are transparent.
        const bool keepFore = RopIndex(blt.rop) == 0xAA;
        const bool keepBack = RopIndex(blt.backgroundRop) == 0xAA;
        const int mx = (int)blt.maskOrigin.x - (int)s.left, my = (int)blt.maskOrigin.y - (int)s.top;
        for (int y = 0; y < pixels.height(); ++y) {
            auto* row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
            for (int x = 0; x < pixels.width(); ++x) {
                const bool fore = MaskBit(*blt.mask, x + x0 + mx, y + y0 + my) != 0;
                if (fore ? keepFore : keepBack) row[x] = 0;
            }
        }
    }

    if (!ropBlend) {
        FlushBitmaps();
        ImageOp op;
        op.toDevice = partToDevice;
        op.smooth = smooth;
        if (blt.blend == BitmapBlt::Blend::Alpha) {
            op.opacity = blt.constantAlpha / 255.0;
            if (blt.sourceAlpha && blt.bitmap->hasAlphaChannel())
                pixels = Argb32(blt.bitmap->copy(x0, y0, x1 - x0, y1 - y0));
        } else {
            const QRgb key = 0xFF000000u | RgbFromColorRef(blt.key);
            for (int y = 0; y < pixels.height(); ++y) {
                auto* row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
                for (int x = 0; x < pixels.width(); ++x)
                    if (row[x] == key) row[x] = 0;
            }
        }
        op.image = std::make_shared<const QImage>(std::move(pixels));
        m_sink.DrawImage(op);
        return;
    }

    // Operations that read the destination wait for the blocks that may follow on it.
    PendingBlt p;
    p.toDevice = partToDevice;
    p.rop = blt.mask ? kSrcCopy : blt.rop;
    p.pattern = RgbFromColorRef(m_state.brush.color);
    p.smooth = smooth;
    const bool joins = !m_pendingBlts.empty() &&
                       SameDestination(*m_pendingBlts.back().image, m_pendingBlts.back().toDevice,
                                       pixels, partToDevice);
    if (!joins || m_pendingBlts.size() >= kMostPending || !ReadsDestination(p.rop)) FlushBitmaps();
    p.image = std::make_shared<const QImage>(std::move(pixels));
    m_pendingBlts.push_back(std::move(p));
    // A block that does not read the destination is drawn at once.
    if (!ReadsDestination(m_pendingBlts.back().rop)) FlushBitmaps();
}

void DeviceContext::FlushBitmaps() {
    if (m_pendingBlts.empty()) return;
    // What waits is used up even when its drawing passes the output limit.
    struct Clear {
        std::vector<PendingBlt>& blts;
        ~Clear() { blts.clear(); }
    } clear{m_pendingBlts};
    ResolveBlts();
}

void DeviceContext::ResolveBlts() {
    // The blocks' pixels on the grid of the largest, unless that grid would be far larger than
    // the blocks themselves.
    const PendingBlt& first = m_pendingBlts.front();
    ImageOp op;
    op.smooth = first.smooth;
    if (m_pendingBlts.size() == 1 && first.rop == kSrcCopy) {
        op.image = first.image;
        op.toDevice = first.toDevice;
        m_sink.DrawImage(op);
        return;
    }
    int W = 0, H = 0;
    uint64_t pixels = 0;
    for (const PendingBlt& p : m_pendingBlts) {
        W = std::max(W, p.image->width());
        H = std::max(H, p.image->height());
        pixels += (uint64_t)p.image->width() * (uint64_t)p.image->height();
    }
    if ((uint64_t)W * (uint64_t)H > 4 * pixels) {
        // Drawn one by one.
        std::vector<PendingBlt> blts;
        blts.swap(m_pendingBlts);
        for (PendingBlt& p : blts) {
            m_pendingBlts.assign(1, p);
            ResolveBlts();
        }
        m_pendingBlts.clear();
        return;
    }
    std::vector<QImage> grid;
    for (const PendingBlt& p : m_pendingBlts) {
        QImage im = Argb32(*p.image);
        grid.push_back(im.width() == W && im.height() == H ? im : ScaledNearest(im, W, H));
        if (grid.back().isNull()) return;
    }
    QImage out(W, H, QImage::Format_ARGB32);
    if (out.isNull()) return;
    const size_t n = m_pendingBlts.size();
    std::vector<Rop3WithPattern> rops;
    rops.reserve(n);
    for (const PendingBlt& p : m_pendingBlts) rops.emplace_back(RopIndex(p.rop), p.pattern);
    std::vector<const QRgb*> rows(n);
    for (int y = 0; y < H; ++y) {
        auto* dst = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (size_t i = 0; i < n; ++i)
            rows[i] = reinterpret_cast<const QRgb*>(grid[i].constScanLine(y));
        for (int x = 0; x < W; ++x) {
            uint32_t overWhite = 0xFFFFFF, overBlack = 0;
            for (size_t i = 0; i < n; ++i) {
                const QRgb src = rows[i][x];
                if (qAlpha(src) == 0) continue;  // a masked-out pixel keeps the destination
                const uint32_t s = src & 0xFFFFFF;
                overWhite = rops[i](s, overWhite);
                overBlack = rops[i](s, overBlack);
            }
            dst[x] = Resolve(overWhite, overBlack);
        }
    }
    op.toDevice = Matrix::Scale((double)first.image->width() / W, (double)first.image->height() / H)
                      .Then(first.toDevice);
    op.image = std::make_shared<const QImage>(std::move(out));
    m_sink.DrawImage(op);
}

}  // namespace faithful
