#include "tools/ExampleMetafiles.h"

#include "tests/MetafileBuilder.h"

namespace examples {

using mfb::Bytes;

namespace {

const uint32_t kRed = 0x000000FF, kGreen = 0x00008000, kBlue = 0x00FF0000;
const uint32_t kYellow = 0x0080FFFF, kNullBrush = 0x80000005;

Bytes Bounds() {
    return Bytes().i32(0).i32(0).i32(400).i32(300);
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

// In the bottom right corner: a green filled and a red framed L-shaped region; a blue and
// yellow triangle clipped by a rectangular region; a hatched square clipped by a diamond
// path. An empty path bracket at the end drops the clip.
void AddRegionsAndClips(mfb::Emf& emf) {
    const Bytes filled = Region({{332, 218, 362, 228}, {332, 228, 342, 252}});
    const Bytes framed = Region({{368, 218, 396, 228}, {368, 228, 378, 252}});
    const Bytes window = Region({{332, 262, 362, 296}});
    emf.record(mfb::EMR_CREATEBRUSHINDIRECT, Brush(20, 0, kGreen, 0))
        .record(mfb::EMR_CREATEBRUSHINDIRECT, Brush(21, 0, kRed, 0))
        .record(mfb::EMR_FILLRGN, Bounds().u32(filled.size()).u32(20).append(filled))
        .record(mfb::EMR_FRAMERGN,
                Bounds().u32(framed.size()).u32(21).i32(2).i32(2).append(framed));
    emf.record(mfb::EMR_EXTSELECTCLIPRGN, Bytes().u32(window.size()).u32(1).append(window))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(1))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(2))
        .record(mfb::EMR_POLYGON16, Poly16({{320, 300}, {347, 250}, {374, 300}}));
    emf.record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYGON16, Poly16({{381, 258}, {396, 277}, {381, 296}, {366, 277}}))
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_SELECTCLIPPATH, Bytes().u32(5))
        .record(mfb::EMR_SELECTOBJECT, Bytes().u32(3))
        .record(mfb::EMR_POLYGON16, Poly16({{364, 256}, {398, 256}, {398, 298}, {364, 298}}))
        .record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_ABORTPATH, Bytes());
}

}  // namespace

QByteArray ExampleEmf() {
    mfb::Emf emf;
    emf.bounds(0, 0, 400, 300).frame(0, 0, 12500, 9375);
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
    AddRegionsAndClips(emf);
    return emf.build();
}

QByteArray ExampleWmf() {
    // 6000 x 4500 twips: a 400 x 300 picture.
    mfb::Wmf wmf;
    wmf.placeable(0, 0, 6000, 4500, 1440)
        .record(mfb::META_SETWINDOWORG, Bytes().i16(0).i16(0))
        .record(mfb::META_SETWINDOWEXT, Bytes().i16(4500).i16(6000));
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
    return wmf.build();
}

}  // namespace examples
