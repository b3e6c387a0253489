// The faithful writer's images: each distinct image is encoded once (PNG, or the JPEG or PNG
// bytes the metafile carries) into an image element of the definitions, at one user unit per
// pixel, and every drawing of it is a use element whose transform maps its pixels to device
// units.
#include <QBuffer>
#include <QVector>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "faithful/DeviceSvg.h"

namespace faithful {

namespace {

// A hash of an image's content: its kind, size and bytes. Equal hashes are confirmed by
// comparing the content itself (SameContent).
class ContentHash {
  public:
    void Add(const void* data, size_t size) {
        const auto* p = static_cast<const unsigned char*>(data);
        size_t i = 0;
        for (; i + 8 <= size; i += 8) {
            uint64_t w;
            std::memcpy(&w, p + i, 8);
            Mix(w);
        }
        uint64_t tail = 0;
        for (size_t k = 0; i < size; ++i, ++k) tail |= (uint64_t)p[i] << (8 * k);
        Mix(tail ^ ((uint64_t)size << 56));
    }
    uint64_t value() const { return m_h; }

  private:
    void Mix(uint64_t w) {
        m_h ^= w;
        m_h *= 0x9E3779B97F4A7C15ull;
        m_h ^= m_h >> 29;
    }
    uint64_t m_h = 0xCBF29CE484222325ull;
};

size_t RowBytes(const QImage& im) {
    return (size_t)(((int64_t)im.width() * im.depth() + 7) / 8);
}

uint64_t Hash(const ImageOp& op) {
    ContentHash hash;
    if (op.compressed) {
        hash.Add(op.jpeg ? "jpeg" : "png ", 4);
        hash.Add(op.compressed->constData(), (size_t)op.compressed->size());
        return hash.value();
    }
    const QImage& im = *op.image;
    const int32_t header[3] = {im.width(), im.height(), (int32_t)im.format()};
    hash.Add(header, sizeof header);
    const QVector<QRgb> table = im.colorTable();
    if (!table.isEmpty()) hash.Add(table.constData(), sizeof(QRgb) * (size_t)table.size());
    const size_t rowBytes = RowBytes(im);
    for (int y = 0; y < im.height(); ++y) hash.Add(im.constScanLine(y), rowBytes);
    return hash.value();
}

// True when `a` and `b` hold the same kind, size and bytes.
bool SameContent(const ImageOp& a, const ImageOp& b) {
    if (!a.compressed != !b.compressed) return false;
    if (a.compressed) return a.jpeg == b.jpeg && *a.compressed == *b.compressed;
    if (a.image == b.image) return true;
    const QImage &x = *a.image, &y = *b.image;
    if (x.width() != y.width() || x.height() != y.height() || x.format() != y.format())
        return false;
    if (x.colorTable() != y.colorTable()) return false;
    const size_t rowBytes = RowBytes(x);
    for (int row = 0; row < x.height(); ++row)
        if (std::memcmp(x.constScanLine(row), y.constScanLine(row), rowBytes) != 0) return false;
    return true;
}

// The matrix's linear part needs more than hundredths: a pixel may be a small fraction of a
// device unit.
void AppendScale(SvgBuffer& out, double v) {
    if (!std::isfinite(v) || std::fabs(v) < 1e-9) v = 0;
    out.AppendReal(v);
}

}  // namespace

int DeviceSvg::ImageFor(const ImageOp& op) {
    const uint64_t key = Hash(op);
    for (auto it = m_images.lower_bound(key); it != m_images.end() && it->first == key; ++it)
        if (SameContent(it->second.op, op)) return it->second.id;
    // Encoding costs time in proportion to the pixels: no more is encoded than the document
    // may hold.
    const size_t bytes =
        op.compressed ? (size_t)op.compressed->size() : (size_t)op.image->sizeInBytes();
    if (bytes > m_imageBudget) return -1;
    m_imageBudget -= bytes;
    int width = op.width, height = op.height;
    QByteArray data;
    if (op.compressed) {
        data = op.compressed->toBase64();
    } else {
        QByteArray png;
        QBuffer device(&png);
        device.open(QIODevice::WriteOnly);
        if (!op.image->save(&device, "PNG")) return -1;
        data = png.toBase64();
        width = op.image->width();
        height = op.image->height();
    }
    if (width <= 0 || height <= 0) return -1;
    const int id = m_nextId++;
    const size_t mark = m_body.size();
    try {
        m_body.Write("<defs><image id=\"i", id, "\" width=\"", width, "\" height=\"", height,
                     "\" preserveAspectRatio=\"none\" xlink:href=\"data:image/",
                     op.compressed && op.jpeg ? "jpeg" : "png", ";base64,", data, "\"/></defs>\n");
    } catch (const OutputLimitReached&) {
        // An image the document cannot hold is left out; the drawing goes on.
        m_body.Truncate(mark);
        return -1;
    }
    m_xlink = true;
    ImageOp kept;  // the content only, to confirm later matches
    kept.image = op.compressed ? nullptr : op.image;
    kept.compressed = op.compressed;
    kept.jpeg = op.jpeg;
    m_images.emplace(key, ImageDef{id, std::move(kept)});
    return id;
}

void DeviceSvg::DrawImage(const ImageOp& op) {
    if (!op.compressed && (!op.image || op.image->isNull())) return;
    if (!(op.opacity > 0)) return;
    const Matrix& m = op.toDevice;
    const int id = ImageFor(op);
    if (id < 0) return;
    SvgBuffer style;
    if (!op.smooth) style.Write(" image-rendering=\"optimizeSpeed\"");
    if (op.opacity < 1) {
        style.Write(" opacity=\"");
        AppendScale(style, op.opacity);
        style.Append('"');
    }
    BeginElement(style.Take());
    m_body.Write("<use xlink:href=\"#i", id, "\" transform=\"matrix(");
    AppendScale(m_body, m.m11);
    m_body.Append(' ');
    AppendScale(m_body, m.m12);
    m_body.Append(' ');
    AppendScale(m_body, m.m21);
    m_body.Append(' ');
    AppendScale(m_body, m.m22);
    m_body.Append(' ');
    AppendNumber(m_body, m.dx);
    m_body.Append(' ');
    AppendNumber(m_body, m.dy);
    m_body.Write(")\"/>\n");

    const double w = op.compressed ? op.width : op.image->width();
    const double h = op.compressed ? op.height : op.image->height();
    const PointF c[4] = {m.Map({0, 0}), m.Map({w, 0}), m.Map({0, h}), m.Map({w, h})};
    RectF b{c[0].x, c[0].y, c[0].x, c[0].y};
    for (const PointF& p : c)
        b = {std::min(b.left, p.x), std::min(b.top, p.y), std::max(b.right, p.x),
             std::max(b.bottom, p.y)};
    Extend(b);
}

}  // namespace faithful
