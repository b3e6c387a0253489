#include "tools/ExampleMetafiles.h"

#include <cstdlib>

#include "tests/MetafileBuilder.h"

namespace examples {

using mfb::Bytes;

namespace {

const uint32_t kRed = 0x000000FF, kGreen = 0x00008000, kBlue = 0x00FF0000;
const uint32_t kYellow = 0x0080FFFF, kNullBrush = 0x80000005;

Bytes Bounds() {
    return Bytes().i32(0).i32(0).i32(400).i32(450);
}

Bytes Box(int32_t l, int32_t t, int32_t r, int32_t b) {
    return Bytes().i32(l).i32(t).i32(r).i32(b);
}

// EMR_EXTTEXTOUTW: the text at (x, y), top-left aligned, in a box of w x h.
Bytes Text(int32_t x, int32_t y, int32_t w, int32_t h, const char* text) {
    const QString chars = QString::fromLatin1(text);
    return Box(x, y, x + w, y + h)
        .u32(1)
        .f32(0)
        .f32(0)
        .i32(x)
        .i32(y)
        .u32((uint32_t)chars.size())
        .u32(76)
        .u32(0)
        .append(Box(x, y, x + w, y + h))
        .u32(0)
        .utf16(chars, chars.size());
}

// A WMF font: height (divided by the Inch of the header for the text size), weight, italic,
// face name.
Bytes WmfFont(int16_t height, int16_t weight, uint8_t italic, const char* face) {
    return Bytes().i16(height).i16(0).i16(0).i16(0).i16(weight).u8(italic).zeros(7).latin1(face,
                                                                                           32);
}

// META_EXTTEXTOUT: the text at (x, y) in twips.
Bytes WmfText(int16_t x, int16_t y, const QByteArray& text) {
    return Bytes().i16(y).i16(x).u16((uint16_t)text.size()).u16(0).latin1(text, text.size());
}

Bytes Poly16(std::initializer_list<std::pair<int, int>> points) {
    return Bounds().u32((uint32_t)points.size()).append(mfb::Points16(points));
}

Bytes Pen(uint32_t handle, uint32_t style, int32_t width, uint32_t colour) {
    return Bytes().u32(handle).u32(style).i32(width).i32(0).u32(colour);
}

Bytes Brush(uint32_t handle, uint32_t style, uint32_t colour, uint32_t hatch) {
    return Bytes().u32(handle).u32(style).u32(colour).u32(hatch);
}

Bytes Region(const std::vector<mfb::Rect>& rects) {
    return mfb::RegionData(rects);
}

// In a row above the curve: a green filled and a red framed L-shaped region; a blue and
// yellow triangle clipped by a rectangular region; a hatched square clipped by a diamond
// path. An empty path bracket at the end drops the clip.
void AddRegionsAndClips(mfb::Emf& emf) {
    const Bytes filled = Region({{210, 128, 240, 138}, {210, 138, 220, 162}});
    const Bytes framed = Region({{250, 128, 278, 138}, {250, 138, 260, 162}});
    const Bytes window = Region({{288, 130, 318, 166}});
    emf.record(mfb::EMR_CREATEBRUSHINDIRECT, Brush(20, 0, kGreen, 0))
        .record(mfb::EMR_CREATEBRUSHINDIRECT, Brush(21, 0, kRed, 0))
        .record(mfb::EMR_FILLRGN, Bounds().u32(filled.size()).u32(20).append(filled))
        .record(mfb::EMR_FRAMERGN,
                Bounds().u32(framed.size()).u32(21).i32(2).i32(2).append(framed));
    emf.record(mfb::EMR_EXTSELECTCLIPRGN, Bytes().u32(window.size()).u32(1).append(window))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(1))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(2))
        .record(mfb::EMR_POLYGON16, Poly16({{276, 170}, {303, 120}, {330, 170}}));
    emf.record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYGON16, Poly16({{340, 128}, {356, 148}, {340, 168}, {324, 148}}))
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_SELECTCLIPPATH, Bytes().u32(5))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(3))
        .record(mfb::EMR_POLYGON16, Poly16({{322, 126}, {358, 126}, {358, 170}, {322, 170}}))
        .record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_ABORTPATH, Bytes());
}

// --- bitmaps: 8 x 8 pixels, drawn 32 x 32 in a column at the right ----------------------

const int kSide = 8;
const uint32_t kSrcCopy = 0x00CC0020, kSrcAnd = 0x008800C6;

// 8-bit: index x + 8y into a table of 64 colours, red across and green down.
Bytes Indexed8() {
    std::vector<uint32_t> colours;
    for (int i = 0; i < kSide * kSide; ++i)
        colours.push_back((uint32_t)(i % kSide * 36) << 16 | (uint32_t)(i / kSide * 36) << 8 |
                          0x80);
    Bytes b = mfb::BitmapInfo(kSide, kSide, 8, colours);
    for (int row = kSide - 1; row >= 0; --row)  // bottom-up
        for (int x = 0; x < kSide; ++x) b.u8((uint8_t)(x + kSide * row));
    return b;
}

// 24-bit: blue fading across, green rising down.
Bytes Rgb24() {
    Bytes b = mfb::BitmapInfo(kSide, kSide, 24);
    for (int row = kSide - 1; row >= 0; --row)
        for (int x = 0; x < kSide; ++x)
            b.u8((uint8_t)(255 - 32 * x)).u8((uint8_t)(32 * row)).u8(64);
    return b;
}

// 1-bit: a diamond, white inside; its black corners make the next SRCAND bitmap transparent.
Bytes Diamond() {
    Bytes b = mfb::BitmapInfo(kSide, kSide, 1, {0x000000, 0xFFFFFF});
    for (int row = 0; row < kSide; ++row) {
        uint8_t bits = 0;
        for (int x = 0; x < kSide; ++x)
            if (std::abs(2 * x - 7) + std::abs(2 * row - 7) <= 8) bits |= (uint8_t)(0x80 >> x);
        b.u8(bits).zeros(3);
    }
    return b;
}

// EMR_STRETCHDIBITS of `bitmap` (header, colour table and bits) with this raster operation.
Bytes StretchDib(int x, int y, uint32_t rop, const Bytes& bitmap, int tableEntries) {
    const uint32_t bits = 80 + 40 + 4 * (uint32_t)tableEntries;
    Bytes b = Bounds().i32(x).i32(y).i32(0).i32(0).i32(kSide).i32(kSide);
    b.u32(80).u32(bits - 80).u32(bits).u32((uint32_t)bitmap.size() - (bits - 80)).u32(0);
    return b.u32(rop).i32(32).i32(32).append(bitmap);
}

void AddBitmaps(mfb::Emf& emf) {
    emf.record(81, StretchDib(360, 130, kSrcCopy, Indexed8(), kSide * kSide));
    // EMR_STRETCHBLT of the 24-bit bitmap.
    emf.record(77, Bounds()
                       .i32(360)
                       .i32(175)
                       .i32(32)
                       .i32(32)
                       .u32(kSrcCopy)
                       .zeros(40)
                       .u32(108)
                       .u32(40)
                       .u32(148)
                       .u32((uint32_t)Rgb24().size() - 40)
                       .i32(kSide)
                       .i32(kSide)
                       .append(Rgb24()));
    // The diamond is not drawn: it masks the 8-bit bitmap drawn with SRCAND after it.
    emf.record(81, StretchDib(0, 0, kSrcCopy, Diamond(), 2))
        .record(81, StretchDib(360, 220, kSrcAnd, Indexed8(), kSide * kSide));
}

// The corner is in logical units, the size in output units. The colour table of a WMF bitmap
// is read from its bits, so the 8-bit bitmap comes out in other colours than in the EMF file.
void AddBitmaps(mfb::Wmf& wmf) {
    const auto at = [](int x, int y) { return Bytes().i16((int16_t)y).i16((int16_t)x); };
    // META_STRETCHDIB and META_DIBSTRETCHBLT.
    wmf.record(
           0x0F43,
           Bytes().u32(kSrcCopy).zeros(10).u16(32).u16(32).append(at(5400, 1950)).append(Rgb24()))
        .record(0x0B41, Bytes()
                            .u32(kSrcCopy)
                            .zeros(8)
                            .u16(32)
                            .u16(32)
                            .append(at(5400, 2625))
                            .append(Indexed8()));
}

}  // namespace

QByteArray ExampleEmf() {
    mfb::Emf emf;
    emf.bounds(0, 0, 400, 450).frame(0, 0, 12500, 14063);
    // A blue outlined, yellow filled triangle.
    emf.record(mfb::EMR_CREATEPEN, Pen(1, 0, 3, kBlue))
        .record(mfb::EMR_CREATEBRUSHINDIRECT, Brush(2, 0, kYellow, 0))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(1))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(2))
        .record(mfb::EMR_POLYGON16, Poly16({{20, 120}, {110, 20}, {200, 120}}));
    // A red cross-hatched square.
    emf.record(mfb::EMR_CREATEBRUSHINDIRECT, Brush(3, 2, kRed, 5))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(3))
        .record(mfb::EMR_POLYGON16, Poly16({{230, 20}, {380, 20}, {380, 120}, {230, 120}}));
    // A dashed green zigzag and a Bézier curve.
    emf.record(mfb::EMR_EXTCREATEPEN, Bytes()
                                          .u32(4)
                                          .u32(0)
                                          .u32(0)
                                          .u32(0)
                                          .u32(0)
                                          .u32(0x00002201)
                                          .u32(2)
                                          .u32(0)
                                          .u32(kGreen)
                                          .u32(0)
                                          .u32(0))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(4))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(kNullBrush))
        .record(mfb::EMR_POLYLINE16,
                Poly16({{20, 160}, {60, 200}, {100, 160}, {140, 200}, {180, 160}}))
        .record(mfb::EMR_POLYBEZIER16, Poly16({{220, 200}, {260, 140}, {340, 260}, {380, 180}}));
    // Two squares as one poly-polygon in the stock null brush.
    emf.record(mfb::EMR_SELECTOBJECT, Bytes().u32(1))
        .record(mfb::EMR_POLYPOLYGON16,
                Bounds()
                    .u32(2)
                    .u32(8)
                    .u32(4)
                    .u32(4)
                    .append(mfb::Points16({{20, 220}, {80, 220}, {80, 280}, {20, 280}}))
                    .append(mfb::Points16({{100, 220}, {160, 220}, {160, 280}, {100, 280}})));
    // A filled path.
    emf.record(mfb::EMR_SELECTOBJECT, Bytes().u32(2))
        .record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYGON16, Poly16({{200, 230}, {260, 290}, {320, 230}, {260, 250}}))
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_FILLPATH, Bounds());
    // A rounded rectangle, an arc (in the null brush), a chord and a pie in the blue pen over
    // the yellow brush.
    emf.record(mfb::EMR_SELECTOBJECT, Bytes().u32(1))
        .record(mfb::EMR_ROUNDRECT, Box(20, 310, 120, 370).i32(30).i32(30))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(kNullBrush))
        .record(mfb::EMR_ARC, Box(140, 310, 220, 370).i32(220).i32(310).i32(140).i32(310))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(2))
        .record(mfb::EMR_CHORD, Box(230, 310, 310, 370).i32(310).i32(310).i32(230).i32(370))
        .record(mfb::EMR_PIE, Box(320, 310, 390, 370).i32(390).i32(340).i32(355).i32(300));
    // Red bold text turned by 10 degrees, on a transparent background; blue text in a second
    // font over an opaque yellow background.
    emf.record(mfb::EMR_EXTCREATEFONTINDIRECTW,
               Bytes().u32(5).append(mfb::LogFontW(-24, 100, 700, "Arial")))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(5))
        .record(mfb::EMR_SETTEXTCOLOR, Bytes().u32(kRed))
        .record(mfb::EMR_SETBKMODE, Bytes().u32(1))
        .record(mfb::EMR_EXTTEXTOUTW, Text(20, 395, 190, 28, "Metafile to SVG"))
        .record(mfb::EMR_EXTCREATEFONTINDIRECTW,
                Bytes().u32(6).append(mfb::LogFontW(-20, 0, 400, "Courier New")))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(6))
        .record(mfb::EMR_SETTEXTCOLOR, Bytes().u32(kBlue))
        .record(mfb::EMR_SETBKMODE, Bytes().u32(2))
        .record(mfb::EMR_SETBKCOLOR, Bytes().u32(kYellow))
        .record(mfb::EMR_EXTTEXTOUTW, Text(230, 410, 160, 24, "text & shapes"));
    AddRegionsAndClips(emf);
    AddBitmaps(emf);
    return emf.build();
}

QByteArray ExampleWmf() {
    // 6000 x 6750 twips: a 400 x 450 picture.
    mfb::Wmf wmf;
    wmf.placeable(0, 0, 6000, 6750, 1440)
        .record(mfb::META_SETWINDOWORG, Bytes().i16(0).i16(0))
        .record(mfb::META_SETWINDOWEXT, Bytes().i16(6750).i16(6000));
    // Slot 0: a blue pen; slot 1: a yellow brush; a rectangle and an ellipse.
    wmf.record(mfb::META_CREATEPENINDIRECT, Bytes().u16(0).i16(45).i16(0).u32(kBlue))
        .record(mfb::META_CREATEBRUSHINDIRECT, Bytes().u16(0).u32(kYellow).u16(0))
        .record(mfb::META_SELECTOBJECT, Bytes().u16(0))
        .record(mfb::META_SELECTOBJECT, Bytes().u16(1))
        .record(mfb::META_RECTANGLE, Bytes().i16(1800).i16(2700).i16(300).i16(300))
        .record(mfb::META_ELLIPSE, Bytes().i16(1800).i16(5700).i16(300).i16(3300));
    // Slot 2: a green cross-hatched brush for a polygon.
    wmf.record(mfb::META_CREATEBRUSHINDIRECT, Bytes().u16(2).u32(kGreen).u16(4))
        .record(mfb::META_SELECTOBJECT, Bytes().u16(2))
        .record(mfb::META_POLYGON,
                Bytes().u16(3).append(mfb::Points16({{300, 4200}, {1500, 2400}, {2700, 4200}})));
    // Slot 3: a red pen for a polyline and a line.
    wmf.record(mfb::META_CREATEPENINDIRECT, Bytes().u16(0).i16(30).i16(0).u32(kRed))
        .record(mfb::META_SELECTOBJECT, Bytes().u16(3))
        .record(mfb::META_POLYLINE, Bytes().u16(4).append(mfb::Points16(
                                        {{3300, 2400}, {3900, 3600}, {4500, 2400}, {5100, 3600}})))
        .record(mfb::META_MOVETO, Bytes().i16(4200).i16(3300))
        .record(mfb::META_LINETO, Bytes().i16(4200).i16(5700));
    // An arc, which the converter accepts without drawing it.
    wmf.record(
        mfb::META_ARC,
        Bytes().i16(4650).i16(3300).i16(4650).i16(6000).i16(5550).i16(6000).i16(4650).i16(300));
    // Slots 4 and 5: text in a bold and an italic font (their heights divided by the Inch of
    // the header give sizes 20 and 15).
    wmf.record(mfb::META_CREATEFONTINDIRECT, WmfFont(28800, 700, 0, "Arial"))
        .record(mfb::META_SELECTOBJECT, Bytes().u16(4))
        .record(mfb::META_EXTTEXTOUT, WmfText(300, 5250, "Metafile to SVG"))
        .record(mfb::META_CREATEFONTINDIRECT, WmfFont(21600, 400, 1, "Courier New"))
        .record(mfb::META_SELECTOBJECT, Bytes().u16(5))
        .record(mfb::META_EXTTEXTOUT, WmfText(3450, 5850, "text & shapes"));
    AddBitmaps(wmf);
    return wmf.build();
}

}  // namespace examples
