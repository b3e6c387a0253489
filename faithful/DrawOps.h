// What the device context hands to a writer: drawing operations in device space, every
// coordinate, width, dash and pattern already resolved from the logical state.
#ifndef SVGMODULE_FAITHFUL_DRAWOPS_H
#define SVGMODULE_FAITHFUL_DRAWOPS_H

#include <QByteArray>
#include <QImage>
#include <QRegion>
#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

#include "faithful/Geometry.h"

namespace faithful {

// A colour as 0x00RRGGBB (not the metafile's 0x00BBGGRR).
using Rgb = uint32_t;

// The metafile's COLORREF (0x00BBGGRR, high byte ignored) as Rgb.
inline Rgb RgbFromColorRef(uint32_t c) {
    return ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF);
}

enum class FillRule : uint8_t { NonZero, EvenOdd };

struct Fill {
    enum class Kind : uint8_t { None, Solid, Hatch, Image, LinearGradient };
    Kind kind = Kind::None;
    Rgb color = 0;  // Solid: the colour; Hatch: the lines' colour
    // Hatch: the style (0 horizontal, 1 vertical, 2 forward diagonal "\", 3 backward
    // diagonal "/", 4 cross, 5 diagonal cross), drawn as a tile of 8 x 8 pixels.
    uint32_t hatch = 0;
    // Hatch: the tile's background is filled with `background` (opaque background mode);
    // false leaves it empty (transparent background mode).
    bool hatchBackground = false;
    Rgb background = 0xFFFFFF;
    // Image: the tile. When `monochrome`, a 1-bit tile drawn with `color` where its index is 0
    // and `background` where it is 1.
    std::shared_ptr<const QImage> image;
    bool monochrome = false;
    // Hatch and Image: where a tile's top-left corner lies (the brush origin, device units),
    // and the size of one of the tile's pixels in device units.
    PointF origin;
    double pixel = 1;
    FillRule rule = FillRule::NonZero;
    // LinearGradient: `color` at `from`, `color2` at `to` (device units), blended along the
    // line through them and padded beyond its ends.
    PointF from, to;
    Rgb color2 = 0;
};

struct Stroke {
    enum class Cap : uint8_t { Round, Square, Flat };
    enum class Join : uint8_t { Round, Bevel, Miter };
    bool visible = false;
    Rgb color = 0;
    double width = 1;            // device units, at least 1
    std::vector<double> dashes;  // on, off, on, ... in device units; empty for solid
    Cap cap = Cap::Round;
    Join join = Join::Round;
    double miterLimit = 10;
};

// One drawing: the path is filled first, then stroked.
struct DrawOp {
    Path path;
    Fill fill;
    Stroke stroke;
};

// One image: its pixels (any format; transparency already applied) or, for a
// bitmap that the metafile carries compressed, its JPEG or PNG bytes; the affine map from
// image pixels (0,0)-(width,height) to device units; whether stretched pixels are smoothed;
// and the opacity the whole image is drawn with.
struct ImageOp {
    std::shared_ptr<const QImage> image;
    std::shared_ptr<const QByteArray> compressed;  // when set, drawn instead of `image`
    bool jpeg = false;                             // the compressed bytes are JPEG, else PNG
    int width = 0, height = 0;                     // pixels of the compressed image
    Matrix toDevice;
    bool smooth = false;
    double opacity = 1;
};

// The clip in force: the device pixels drawing may touch, as whole device units (a pixel at
// (x, y) covers x to x + 1). An empty region lets nothing be drawn.
struct Clip {
    QRegion region;
};

// One line of text, placed in its own text space: x along the baseline, y down across it, the
// reference point at the origin. Text space maps to device space by the font's horizontal
// `stretch`, then a rotation by `angle` degrees (clockwise as seen, y down), then a move to
// `origin`.
struct TextOp {
    enum class Anchor : uint8_t { Start, Middle, End };
    QString text;  // only characters XML allows
    // One position per character (a surrogate pair counts once), in text space; empty: the
    // text flows from the origin as the viewer's font places it.
    std::vector<PointF> positions;
    PointF origin;
    double angle = 0;
    double stretch = 1;
    Anchor anchor = Anchor::Start;  // for text that flows
    double size = 12;               // the em, in text-space units
    QString family;                 // a CSS font-family list, quoted as CSS needs
    int weight = 400;               // 100 to 900
    bool italic = false, underline = false, strikeOut = false;
    Rgb color = 0;
    Path clip;  // device space; empty: not clipped
};

// Where a device context sends what it draws.
class DrawSink {
  public:
    virtual ~DrawSink() = default;
    virtual void Draw(const DrawOp& op) = 0;
    virtual void DrawImage(const ImageOp&) {}
    // The clip of everything drawn from now on; null: none. Called whenever it changes.
    virtual void SetClip(std::shared_ptr<const Clip> clip) { (void)clip; }
    virtual void DrawText(const TextOp&) {}
};

}  // namespace faithful

#endif
