#include "tools/ExampleMetafiles.h"

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
    return wmf.build();
}

}  // namespace examples
