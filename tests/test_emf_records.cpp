// EMF object and state records, line, polygon and Bézier records and the path bracket, run
// end to end through the exported entry point.
#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "api/Logger.h"
#include "emf/Emf2SVG.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using mfb::Bytes;
using mfb::Emf;
using Points = std::vector<std::pair<int, int>>;

namespace {

// The writer's style before any selection, and the pen text polylines get before any pen.
const QString kCurrent = QStringLiteral(" stroke=\"black\" stroke-width=\"1\" fill=\"none\"");
const QString kNoPen = QStringLiteral("stroke=\"none\" stroke-width=\"1\"  fill=\"none\" ");

Bytes U32s(std::initializer_list<uint32_t> values) {
    Bytes b;
    for (uint32_t v : values) b.u32(v);
    return b;
}

Bytes PointsOf(const Points& pts, bool wide) {
    Bytes b;
    for (const auto& p : pts) wide ? b.i32(p.first).i32(p.second) : b.i16(p.first).i16(p.second);
    return b;
}

// A point-list record's payload: bounds, the declared count, the points.
Bytes PointList(const Points& pts, bool wide, int64_t declared = -1) {
    const uint32_t n = declared < 0 ? (uint32_t)pts.size() : (uint32_t)declared;
    return Bytes().zeros(16).u32(n).append(PointsOf(pts, wide));
}

// A poly-list record's payload: bounds, polygon count, point count, the counts, the points.
Bytes PolyList(const std::vector<uint32_t>& counts, const Points& pts, bool wide,
               int64_t declaredPolys = -1) {
    Bytes b;
    b.zeros(16).u32(declaredPolys < 0 ? (uint32_t)counts.size() : (uint32_t)declaredPolys);
    b.u32((uint32_t)pts.size());
    for (uint32_t c : counts) b.u32(c);
    return b.append(PointsOf(pts, wide));
}

// EMR_EXTCREATEPEN with PS_USERSTYLE: handle, width, colour, declared count, the entries.
Bytes UserStylePen(uint32_t handle, uint32_t width, uint32_t colour, uint32_t declared,
                   std::initializer_list<uint32_t> entries) {
    return U32s({handle, 0, 0, 0, 0, 7, width, 0, colour, 0, declared}).append(U32s(entries));
}

Bytes Font(uint32_t handle, int32_t height, const QString& face) {
    Bytes b;
    b.u32(handle).i32(height).i32(0).i32(0).i32(0).i32(700).zeros(8).utf16(face, 32);
    return b.utf16(QStringLiteral("Full"), 64).utf16(QStringLiteral("Bold"), 32).zeros(36);
}

// MM_ANISOTROPIC with a viewport extent of 500 on both axes: coordinates are divided by the
// window extent over 500, by default halved.
Emf Halved(int32_t windowX = 1000, int32_t windowY = 1000) {
    Emf e;
    e.record(mfb::EMR_SETMAPMODE, Bytes().u32(8))
        .record(mfb::EMR_SETWINDOWEXTEX, Bytes().i32(windowX).i32(windowY))
        .record(mfb::EMR_SETVIEWPORTEXTEX, Bytes().i32(500).i32(500));
    return e;
}

QString BodyOf(const Emf& e) {
    const auto r = testutil::Convert(e.build());
    EXPECT_EQ(r.status, 1);
    return testutil::Body(r.svg);
}

// Runs a converter directly, for the state that only the style manager shows.
std::unique_ptr<Emf2SvgConverter> RunDirect(QByteArray file) {
    auto conv = std::make_unique<Emf2SvgConverter>();
    EXPECT_EQ(conv->ConvertEMFToSVG(reinterpret_cast<unsigned char*>(file.data()), g_Logger), 1);
    return conv;
}

QString Polyline(const char* pts, const QString& pen = kNoPen) {
    return QString("<polyline points=\"") + pts + " \n\" " + pen + "/>\n";
}
QString Polygon(const char* pts) {
    return QString("<polygon points=\"") + pts + " \n\" " + kCurrent + "/>\n";
}
// Lists that reach the writer without points.
QString EmptyPolyline(const QString& pen = kNoPen) {
    return QString("<polyline points=\"\n\" ") + pen + "/>\n";
}
QString EmptyPolygon() {
    return QString("<polygon points=\"\n\" ") + kCurrent + "/>\n";
}
QString Line(int x1, int y1, int x2, int y2) {
    return QString::asprintf("<line x1=\"%d\" y1 = \"%d\" x2 =\"%d\" y2=\"%d\" ", x1, y1, x2, y2) +
           kCurrent + "/>\n";
}
QString Curve(const char* d) {
    return QString("<path d=\"") + d + "\" " + kCurrent + "/>\n";
}
// The pen text of a red, round-capped pen, `dash` following the join.
QString RedPen(int width, const char* dash = "") {
    return QString::asprintf(
        " stroke=\"#ff0000\" stroke-width=\"%d\" \n stroke-linecap = \"round\" "
        "stroke-linejoin = \"round\" %s fill=\"none\" ",
        width, dash);
}

}  // namespace

// --- objects and state --------------------------------------------------------------------

TEST(EmfObjects, PenWidthIsMappedAsALengthOnX) {
    const struct {
        int32_t windowY;  // the x divisor is 2
        bool extended;
        uint32_t width;
        QString pen;
    } cases[] = {
        {500, false, 3, RedPen(2)},  // 1.5 rounds up
        {500, false, 0, RedPen(0)},
        {500, true, 5, RedPen(3, "stroke-dasharray=\" 3,1,2\" ")},
    };
    for (const auto& c : cases) {
        Emf e = Halved(1000, c.windowY);
        if (c.extended)
            e.record(mfb::EMR_EXTCREATEPEN, UserStylePen(1, c.width, 0xFF, 3, {3, 1, 2}));
        else
            e.record(mfb::EMR_CREATEPEN, U32s({1, 0, c.width, 99, 0xFF}));
        e.record(mfb::EMR_SELECTOBJECT, U32s({1}))
            .record(mfb::EMR_POLYLINE, PointList({{0, 0}, {1, 1}}, true));
        EXPECT_EQ(BodyOf(e), Polyline("0,0 1,1", c.pen)) << c.width;
    }
}

TEST(EmfObjects, BrushesSelectionAndDeletion) {
    const Bytes triangle = PointList({{0, 0}, {4, 0}, {4, 4}}, true);
    const QString polygon =
        "<polygon points=\"0,0 4,0 4,4 \n\" stroke=\"none\" stroke-width=\"1\" ";
    // A solid brush fills; the stock NULL_BRUSH empties the fill again.
    Emf solid;
    solid.record(mfb::EMR_CREATEBRUSHINDIRECT, U32s({2, 0, 0xFF00, 0}))
        .record(mfb::EMR_SELECTOBJECT, U32s({2}))
        .record(mfb::EMR_POLYGON, triangle)
        .record(mfb::EMR_SELECTOBJECT, U32s({0x80000005}))
        .record(mfb::EMR_POLYGON, triangle);
    EXPECT_EQ(BodyOf(solid),
              polygon + "  fill=\"#00ff00\"\n/>\n" + polygon + "  fill=\"none\" />\n");

    // Style, hatch and colour reach the writer in that order: a cross hatch in red, whose
    // background square takes the background colour set before.
    Emf hatched;
    hatched.record(mfb::EMR_SETBKCOLOR, U32s({0x00FF0000}))
        .record(mfb::EMR_CREATEBRUSHINDIRECT, U32s({3, 2, 0xFF, 4}));
    const QString defs = BodyOf(hatched);
    EXPECT_TRUE(defs.startsWith("<defs>") && defs.contains("id=\"BACKGROUND\" fill=\"#0000ff\""));
    EXPECT_TRUE(defs.contains("id=\"HATCH_CROSS\"") && defs.contains("stroke=\"#ff0000\""));

    // A monochrome brush and a deleted pen both select as an object that does not exist.
    Emf missing, mono, deleted;
    missing.record(mfb::EMR_SELECTOBJECT, U32s({7})).record(mfb::EMR_POLYGON, triangle);
    mono.record(mfb::EMR_CREATEMONOBRUSH, U32s({7, 0, 0, 0, 0, 0}))
        .record(mfb::EMR_SELECTOBJECT, U32s({7}))
        .record(mfb::EMR_POLYGON, triangle);
    deleted.record(mfb::EMR_CREATEPEN, U32s({7, 0, 4, 0, 0xFF}))
        .record(mfb::EMR_DELETEOBJECT, U32s({7}))
        .record(mfb::EMR_SELECTOBJECT, U32s({7}))
        .record(mfb::EMR_POLYGON, triangle);
    EXPECT_EQ(BodyOf(mono), BodyOf(missing));
    EXPECT_EQ(BodyOf(deleted), BodyOf(missing));
}

TEST(EmfObjects, FontHeightIsMappedAsALengthOnY) {
    const struct {
        int32_t windowY;  // the x divisor is 1
        int32_t height;
        int expected;
    } cases[] = {{500, -12, 12}, {1000, -12, 6}, {4000, -12, 1}, {1000, 15, 8}};  // halves go up
    for (const auto& c : cases) {
        Emf e = Halved(500, c.windowY);
        e.record(mfb::EMR_EXTCREATEFONTINDIRECTW, Font(4, c.height, QStringLiteral("Courier")))
            .record(mfb::EMR_SELECTOBJECT, U32s({4}))
            .record(mfb::EMR_SETTEXTCOLOR, U32s({0x00FF0000}));
        const auto conv = RunDirect(e.build());
        CStyleManager& style = conv->Writer().StyleManager();
        EXPECT_EQ(style.GetCurrentFontHeight(), c.expected) << c.windowY << " " << c.height;
        EXPECT_EQ(style.GetCurrentFontFamily(), QStringLiteral("Courier"));
        EXPECT_TRUE(style.GetCurrTextStyle().endsWith(" fill=\"#0000ff\" "));
    }
}

// --- point lists ----------------------------------------------------------------------------

// Under a divisor of 2 and a world rotation by 90 degrees: the 32-bit records other than
// EMR_POLYBEZIER pass their points unmapped, EMR_POLYLINE16 and EMR_POLYGON16 apply the
// world transform, the other 16-bit records and EMR_POLYBEZIER map with the origins only.
TEST(EmfPointLists, EachRecordHasItsOwnMappingAndWriterCall) {
    const Points pts = {{10, 20}, {30, 40}, {50, 60}, {70, 80}};
    const struct {
        uint32_t type;
        size_t count;
        QString expected;
    } cases[] = {
        {mfb::EMR_POLYLINE, 3, Polyline("10,20 30,40 50,60")},
        {mfb::EMR_POLYGON, 3, Polygon("10,20 30,40 50,60")},
        {mfb::EMR_POLYLINETO, 3, Polyline("10,20 30,40 50,60") + Line(0, 0, 10, 20)},
        {mfb::EMR_POLYBEZIER, 4, Curve("M5,10 C15,20 25,30 35,40")},
        {mfb::EMR_POLYBEZIERTO, 3, Curve("M0,0 C10,20 30,40 50,60")},
        {mfb::EMR_POLYLINE16, 3, Polyline("-10,5 -20,15 -30,25")},
        {mfb::EMR_POLYGON16, 3, Polygon("-10,5 -20,15 -30,25")},
        {mfb::EMR_POLYLINETO16, 3, Polyline("5,10 15,20 25,30") + Line(0, 0, 5, 10)},
        {mfb::EMR_POLYBEZIER16, 4, Curve("M5,10 C15,20 25,30 35,40")},
        {mfb::EMR_POLYBEZIERTO16, 3, Curve("M0,0 C5,10 15,20 25,30")},
    };
    for (const auto& c : cases) {
        Emf e = Halved();
        e.record(mfb::EMR_SETWORLDTRANSFORM, Bytes().f32(0).f32(1).f32(-1).f32(0).f32(0).f32(0))
            .record(c.type, PointList(Points(pts.begin(), pts.begin() + c.count), c.type < 85));
        EXPECT_EQ(BodyOf(e), c.expected) << c.type;
    }
}

TEST(EmfPointLists, CurrentPositionAndSixteenBitWrapAround) {
    Emf e = Halved();
    e.record(mfb::EMR_MOVETOEX, Bytes().i32(10).i32(10))
        .record(mfb::EMR_POLYLINETO, PointList({{20, 20}, {40, 10}}, true))
        .record(mfb::EMR_LINETO, Bytes().i32(100).i32(100))
        .record(mfb::EMR_POLYBEZIERTO16, PointList({{20, 20}, {40, 40}, {60, 60}}, false))
        .record(mfb::EMR_LINETO, Bytes().i32(0).i32(0));
    EXPECT_EQ(BodyOf(e), Polyline("20,20 40,10") + Line(5, 5, 20, 20) + Line(40, 10, 50, 50) +
                             Curve("M50,50 C10,10 20,20 30,30") + Line(30, 30, 0, 0));
    // A mapped 16-bit coordinate keeps its low 16 bits: 40000 and -40000 wrap.
    Emf wide;
    wide.record(mfb::EMR_SETWINDOWORGEX, Bytes().i32(-10000).i32(10000))
        .record(mfb::EMR_POLYLINE16, PointList({{30000, -30000}}, false))
        .record(mfb::EMR_POLYBEZIER16, PointList({{30000, -30000}}, false));
    EXPECT_EQ(BodyOf(wide), Polyline("-25536,25536") + Curve("M-25536,25536 "));
}

// --- poly lists and poly-draw ---------------------------------------------------------------

TEST(EmfPolyLists, OneWriterCallPerPolygon) {
    Emf e = Halved();
    e.record(
         mfb::EMR_POLYPOLYGON16,
         PolyList({3, 4}, {{0, 0}, {8, 0}, {8, 8}, {20, 20}, {40, 20}, {40, 40}, {20, 40}}, false))
        .record(mfb::EMR_POLYPOLYLINE, PolyList({2, 2}, {{0, 0}, {8, 8}, {20, 20}, {40, 40}}, true))
        // Counts summing to less than 0 as signed values map no point.
        .record(mfb::EMR_POLYPOLYLINE16, PolyList({2, 0xFFFFFFF0}, {{8, 8}, {4, 4}}, false))
        // A polygon without points is an empty list; a record without polygons draws nothing.
        .record(mfb::EMR_POLYPOLYGON, PolyList({0, 3}, {{8, 8}, {4, 4}, {4, 8}}, true))
        .record(mfb::EMR_POLYPOLYGON16, PolyList({}, {}, false))
        // Poly-draw maps its points in place and passes its point types on.
        .record(mfb::EMR_POLYDRAW16,
                PointList({{0, 0}, {10, 0}, {10, 10}, {20, 20}, {20, 0}, {40, 0}, {40, 20}}, false)
                    .append(Bytes().u8(6).u8(2).u8(3).u8(6).u8(4).u8(0).u8(0)));
    EXPECT_EQ(BodyOf(e), Polygon("0,0 4,0 4,4") + Polygon("10,10 20,10 20,20 10,20") +
                             Polyline("0,0 8,8") + Polyline("20,20 40,40") + Polyline("8,8 4,4") +
                             EmptyPolyline() + EmptyPolygon() + Polygon("8,8 4,4 4,8") +
                             "<path d=\" M0,0 L5,0 L5,5 Z  M10,10 C10,0 20,0 20,10\"  " + kCurrent +
                             "/>");
}

// --- the path bracket -----------------------------------------------------------------------

TEST(EmfPaths, BracketCollectsFiguresUntilFilledStrokedOrAborted) {
    const Bytes square = PointList({{0, 0}, {4, 0}, {4, 4}}, false);
    const QString fill = " fill=\"white\" stroke=\"none\" stroke-width=\"0\" />\n";
    Emf e;
    e.record(mfb::EMR_CREATEPEN, U32s({1, 0, 1, 0, 0xFF}))
        .record(mfb::EMR_SELECTOBJECT, U32s({1}))
        .record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYGON16, square)
        .record(mfb::EMR_POLYBEZIER, PointList({{3, 7}, {4, 4}, {5, 5}, {6, 6}}, true))
        .record(mfb::EMR_CLOSEFIGURE, Bytes())
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_STROKEPATH, Bytes().zeros(16))
        .record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYLINE, PointList({{1, 1}, {2, 2}}, true))
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_FILLPATH, Bytes().zeros(16))
        .record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYGON16, square)
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_ABORTPATH, Bytes())
        .record(mfb::EMR_FILLPATH, Bytes().zeros(16));
    EXPECT_EQ(BodyOf(e), "\n<path d = \" M0,0  L4,0  L4,4  ZM3,7 C4,4 5,5 6,6 L3,7 \"" + RedPen(1) +
                             "/>\n\n<path d = \" M1,1  L2,2  Z\"" + fill + "\n<path d = \"\"" +
                             fill);
}

// --- malformed counts -----------------------------------------------------------------------

TEST(EmfMalformed, PointListsAreCutToThePointsTheRecordHolds) {
    const Points pts = {{1, 2}, {3, 4}, {5, 6}, {7, 8}};
    for (uint32_t type : {2, 3, 4, 5, 6, 85, 86, 87, 88, 89}) {
        Emf honest, inflated, empty;
        honest.record(type, PointList(pts, type < 85));
        inflated.record(type, PointList(pts, type < 85, 0x40000000));
        empty.record(type, PointList({}, type < 85, 1000));
        EXPECT_EQ(BodyOf(inflated), BodyOf(honest)) << type;
        // Cut to no points: an empty list, which the writer draws for lines and polygons only.
        const bool bezier = type == 2 || type == 5 || type == 85 || type == 88;
        const bool polygon = type == 3 || type == 86;
        EXPECT_EQ(BodyOf(empty), bezier    ? QString()
                                 : polygon ? EmptyPolygon()
                                           : EmptyPolyline())
            << type;
    }
}

TEST(EmfMalformed, PolyListsPolyDrawAndDashesStayInsideTheRecord) {
    Emf e;
    // The second polygon runs out of points and is cut short.
    e.record(mfb::EMR_POLYPOLYGON16,
             PolyList({3, 100}, {{0, 0}, {1, 0}, {1, 1}, {5, 5}, {6, 6}}, false))
        // Counts that overrun the record: the record is skipped.
        .record(mfb::EMR_POLYPOLYLINE, PolyList({2, 2}, {{0, 0}, {1, 1}}, true, 1000))
        // Types that would follow 1000 points lie outside the record.
        .record(mfb::EMR_POLYDRAW16, PointList({{0, 0}, {1, 1}}, false, 1000).u8(6).u8(2))
        // Only the dash entries inside the record are used.
        .record(mfb::EMR_EXTCREATEPEN, UserStylePen(1, 1, 0xFF, 1000, {3, 1}))
        .record(mfb::EMR_SELECTOBJECT, U32s({1}))
        .record(mfb::EMR_POLYLINE, PointList({{0, 0}}, true));
    const QString expected = Polygon("0,0 1,0 1,1") + Polygon("5,5 6,6") +
                             Polyline("0,0", RedPen(1, "stroke-dasharray=\" 3,1\" "));
    EXPECT_EQ(BodyOf(e), expected);
    testutil::ForceBigEndian bigEndian;  // the normalisers clip the same way
    EXPECT_EQ(testutil::Body(testutil::Convert(e.build(true, true)).svg), expected);
}

// Records of every type, shorter than their layout or filled with noise, are read as far as
// they go and no further.
TEST(EmfMalformed, ShortAndNoisyRecordsAreSurvived) {
    uint32_t seed = 12345;
    for (uint32_t type = 2; type <= 95; ++type) {
        if (type == mfb::EMR_EOF) continue;
        for (int length = 0; length <= 96; length += 4) {
            Bytes noise;
            for (int i = 0; i < length; ++i, seed = seed * 1103515245u + 12345u)
                noise.u8((uint8_t)(seed >> 16));
            Emf e;
            e.record(type, noise).record(mfb::EMR_POLYLINE, PointList({{1, 1}}, true));
            const auto r = testutil::Convert(e.build());
            EXPECT_TRUE(r.status == 1 && r.svg.endsWith("</svg>\n")) << type << " " << length;
        }
    }
}

// --- byte order -----------------------------------------------------------------------------

TEST(EmfByteOrder, SwappedFileConvertsAsTheLittleEndianOne) {
    const Points pts = {{-300, 1000}, {70, -2}, {3, 30000}, {-32768, 32767}};
    Emf e = Halved();
    e.record(mfb::EMR_SETBKMODE, U32s({1}))
        .record(mfb::EMR_SETBKCOLOR, U32s({0x00123456}))
        .record(mfb::EMR_SETTEXTCOLOR, U32s({0x00654321}))
        .record(mfb::EMR_SETTEXTALIGN, U32s({24}))
        .record(mfb::EMR_EXTCREATEFONTINDIRECTW, Font(9, -40, QStringLiteral("Tahoma")))
        .record(mfb::EMR_SELECTOBJECT, U32s({9}))
        .record(mfb::EMR_CREATEPEN, U32s({1, 0x1201, 6, 0, 0x00FF8000}))
        .record(mfb::EMR_EXTCREATEPEN, UserStylePen(2, 4, 0xFF, 2, {300, 70000}))
        .record(mfb::EMR_CREATEBRUSHINDIRECT, U32s({3, 2, 0x0000FF00, 5}))
        .record(mfb::EMR_CREATEMONOBRUSH, U32s({4, 0, 0, 0, 0, 0}))
        .record(mfb::EMR_SELECTOBJECT, U32s({1}))
        .record(mfb::EMR_SELECTOBJECT, U32s({3}))
        .record(mfb::EMR_MOVETOEX, Bytes().i32(-300).i32(70000))
        .record(mfb::EMR_LINETO, Bytes().i32(2000).i32(-4))
        .record(mfb::EMR_SELECTOBJECT, U32s({2}))
        .record(mfb::EMR_DELETEOBJECT, U32s({1}));
    for (uint32_t type : {2, 3, 4, 5, 6, 85, 86, 87, 88, 89})
        e.record(type, PointList(pts, type < 85));
    e.record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYPOLYGON, PolyList({1, 3}, pts, true))
        .record(mfb::EMR_POLYPOLYLINE16, PolyList({3, 1}, pts, false))
        .record(mfb::EMR_CLOSEFIGURE, Bytes())
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_STROKEPATH, Bytes().zeros(16))
        .record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYGON, PointList(pts, true))
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_FILLPATH, Bytes().zeros(16))
        .record(mfb::EMR_ABORTPATH, Bytes())
        .record(mfb::EMR_POLYPOLYLINE, PolyList({2, 2}, pts, true))
        .record(mfb::EMR_POLYPOLYGON16, PolyList({2, 2}, pts, false))
        .record(mfb::EMR_POLYDRAW16, PointList(pts, false).u8(6).u8(4).u8(0).u8(0));

    const auto little = RunDirect(e.build(true, false));
    testutil::ForceBigEndian bigEndian;
    const auto big = RunDirect(e.build(true, true));
    EXPECT_EQ(big->GetOutSVG(), little->GetOutSVG());
    CStyleManager& l = little->Writer().StyleManager();
    CStyleManager& b = big->Writer().StyleManager();
    EXPECT_EQ(b.GetCurrentFontFamily(), QStringLiteral("Tahoma"));
    EXPECT_EQ(b.GetCurrentFontHeight(), l.GetCurrentFontHeight());
    EXPECT_EQ(b.GetCurrTextStyle(), l.GetCurrTextStyle());
}
