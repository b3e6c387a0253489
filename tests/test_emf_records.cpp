// EMF object and state records, line, polygon and Bézier records and the path bracket, run
// end to end; every file is converted in both byte orders, which must agree.

#include "tests/TestUtil.h"

using namespace mfb;
using namespace testutil;
using Points = std::vector<std::pair<int, int>>;

namespace {

// A point-list or poly-list payload: bounds, `counts` (the point count; or the polygon count,
// point count and each polygon's count), the points.
Bytes Payload(std::initializer_list<uint32_t> counts, const Points& pts, bool wide) {
    Bytes b = Bytes().zeros(16).append(U32s(counts));
    for (const auto& p : pts) wide ? b.i32(p.first).i32(p.second) : b.i16(p.first).i16(p.second);
    return b;
}
Bytes PointList(const Points& pts, bool wide) {
    return Payload({(uint32_t)pts.size()}, pts, wide);
}

// Records whose fields the converter does not read (the path bracket), written without them.
Emf& Bare(Emf& e, std::initializer_list<uint32_t> types) {
    for (uint32_t type : types) e.record(type, Bytes());
    return e;
}

// Point lists as the writer prints them, `pts` giving each point followed by a space.
QString Polyline(const char* pts, const QString& pen = kNoPen) {
    return QString("<polyline points=\"%1\n\" %2/>\n").arg(pts, pen);
}
QString Polygon(const char* pts) {
    return QString("<polygon points=\"%1\n\" %2/>\n").arg(pts, kDefaultStyle);
}
QString Curve(const char* d) {
    return QString("<path d=\"") + d + "\" " + kDefaultStyle + "/>\n";
}
// The pen text of a red, round-capped pen, `dash` following the join.
QString RedPen(int width, const char* dash = "") {
    return QString::asprintf(
        " stroke=\"#ff0000\" stroke-width=\"%d\" \n stroke-linecap = \"round\" "
        "stroke-linejoin = \"round\" %s fill=\"none\" ",
        width, dash);
}

}  // namespace

// x is divided by 2 and y by 4: a pen width is a length on x, a font height one on y, both
// rounded half up and free of the window origin. Only the dash entries inside the record are
// used.
TEST(EmfObjects, PenWidthFontHeightAndDashes) {
    Emf e = Halved(1000, 2000);
    e.record(EMR_SETWINDOWORGEX, U32s({7, 7}))
        .record(EMR_CREATEPEN, U32s({1, 0, 3, 99, 0xFF}))  // the width's y is unused
        // PS_USERSTYLE, width 5, red, 1000 dash entries declared and 3 present.
        .record(EMR_EXTCREATEPEN, U32s({2, 0, 0, 0, 0, 7, 5, 0, 0xFF, 0, 1000, 3, 1, 2}))
        .record(EMR_EXTCREATEFONTINDIRECTW, Bytes().u32(4).append(LogFontW(15, 0, 700, "Courier")))
        .record(EMR_SELECTOBJECT, U32s({4}))
        .record(EMR_SETTEXTCOLOR, U32s({0x00FF0000}))
        .record(EMR_EXTTEXTOUTW,
                U32s({0, 0, 40, 16, 1, 0, 0, 0, 0, 1, 76, 0, 0, 0, 0, 0, 0}).utf16("x", 1));
    for (uint32_t pen : {1, 2})
        e.record(EMR_SELECTOBJECT, U32s({pen}))
            .record(EMR_POLYLINE, PointList({{0, 0}, {1, 1}}, true));
    const QString body = BothOrders(e);
    EXPECT_TRUE(body.contains(R"(font-family="Courier"  font-weight="700" )"
                              "\n fill=\"#0000ff\"  font-size=\"4\" "));
    EXPECT_TRUE(body.endsWith(Polyline("0,0 1,1 ", RedPen(2)) +
                              Polyline("0,0 1,1 ", RedPen(3, "stroke-dasharray=\" 3,1,2\" "))));
}

// Style, hatch and colour reach the writer in that order: a red cross hatch on the background
// colour. A monochrome brush and a deleted pen select as objects that do not exist.
TEST(EmfObjects, BrushArgumentsSelectionAndDeletion) {
    Emf created, missing;
    created.record(EMR_CREATEMONOBRUSH, U32s({7, 0, 0, 0, 0, 0}))
        .record(EMR_CREATEPEN, U32s({8, 0, 4, 0, 0xFF}))
        .record(EMR_DELETEOBJECT, U32s({8}));
    for (Emf* e : {&created, &missing})
        e->record(EMR_SETBKCOLOR, U32s({0x00FF0000}))
            .record(EMR_CREATEBRUSHINDIRECT, U32s({3, 2, 0xFF, 4}))
            .record(EMR_SELECTOBJECT, U32s({3}))
            .record(EMR_SELECTOBJECT, U32s({7}))
            .record(EMR_SELECTOBJECT, U32s({8}))
            .record(EMR_POLYGON, PointList({{0, 0}, {4, 0}, {4, 4}}, true));
    const QString body = BothOrders(missing);
    EXPECT_EQ(BothOrders(created), body);
    for (const char* text : {"id=\"BACKGROUND\" fill=\"#0000ff\"", "id=\"HATCH_CROSS\"",
                             "stroke=\"#ff0000\"", "fill=\"url(#BRUSH_1)\""})
        EXPECT_TRUE(body.contains(text)) << text;
}

// From (5, 5), under a divisor of 2 and a world rotation by 90 degrees: the 32-bit records
// other than EMR_POLYBEZIER pass their points unmapped, EMR_POLYLINE16 and EMR_POLYGON16 apply
// the world transform, the other 16-bit records and EMR_POLYBEZIER map with the origins only.
// A declared count is cut to the points the record holds; cut to none, the list is empty,
// which the writer draws for lines and polygons only.
TEST(EmfPointLists, EachRecordHasItsOwnMappingAndWriterCall) {
    const Points pts = {{10, 20}, {30, 40}, {50, 60}, {70, 80}};
    const std::pair<uint32_t, QString> cases[] = {
        {EMR_POLYLINE, Polyline("10,20 30,40 50,60 ")},
        {EMR_POLYGON, Polygon("10,20 30,40 50,60 ")},
        {EMR_POLYLINETO, Polyline("10,20 30,40 50,60 ") + Line(5, 5, 10, 20)},
        {EMR_POLYBEZIER, Curve("M5,10 C15,20 25,30 35,40")},
        {EMR_POLYBEZIERTO, Curve("M5,5 C10,20 30,40 50,60")},
        {EMR_POLYLINE16, Polyline("-10,5 -20,15 -30,25 ")},
        {EMR_POLYGON16, Polygon("-10,5 -20,15 -30,25 ")},
        {EMR_POLYLINETO16, Polyline("5,10 15,20 25,30 ") + Line(5, 5, 5, 10)},
        {EMR_POLYBEZIER16, Curve("M5,10 C15,20 25,30 35,40")},
        {EMR_POLYBEZIERTO16, Curve("M5,5 C5,10 15,20 25,30")},
    };
    for (const auto& [type, expected] : cases) {
        const bool wide = type < 85, bezier = type == 2 || type == 85;
        const bool curve = bezier || type == 5 || type == 88, polygon = type == 3 || type == 86;
        const Points used(pts.begin(), pts.end() - !bezier);
        const auto body = [&, type = type](const Bytes& list) {
            Emf e = Halved();
            e.record(EMR_SETWORLDTRANSFORM, Bytes().f32(0).f32(1).f32(-1).f32(0).f32(0).f32(0))
                .record(EMR_MOVETOEX, U32s({10, 10}))
                .record(type, list);
            return BothOrders(e);
        };
        EXPECT_EQ(body(PointList(used, wide)), expected) << type;
        EXPECT_EQ(body(Payload({0x40000000}, used, wide)), expected) << type;
        EXPECT_EQ(body(Payload({1000}, {}, wide)), curve     ? QString()
                                                   : polygon ? Polygon("")
                                                             : Polyline(""))
            << type;
    }
}

// A mapped 16-bit coordinate keeps its low 16 bits (40000 and -40000 wrap); a 32-bit one
// does not.
TEST(EmfPointLists, SixteenBitCoordinatesWrapAround) {
    Emf e;
    e.record(EMR_SETWINDOWORGEX, Bytes().i32(-10000).i32(10000))
        .record(EMR_MOVETOEX, Bytes().i32(30000).i32(-30000))
        .record(EMR_POLYLINE16, PointList({{30000, -30000}}, false))
        .record(EMR_POLYBEZIER16, PointList({{30000, -30000}}, false))
        .record(EMR_LINETO, U32s({0, 0}));
    EXPECT_EQ(BothOrders(e), Polyline("-25536,25536 ") + Curve("M-25536,25536 ") +
                                 Line(40000, -40000, 10000, -10000));
}

// Each polygon is cut to the points that remain in the record; a record whose polygon counts
// or poly-draw types would lie outside it draws nothing.
TEST(EmfPolyLists, OneWriterCallPerPolygonInsideTheRecord) {
    Emf e = Halved();
    e.record(EMR_POLYPOLYGON16,
             Payload({2, 7, 3, 4}, {{0, 0}, {8, 0}, {8, 8}, {20, 20}, {40, 20}, {40, 40}, {20, 40}},
                     false))
        .record(EMR_POLYPOLYLINE, Payload({2, 4, 2, 2}, {{0, 0}, {8, 8}, {20, 20}, {40, 40}}, true))
        // Counts summing to less than 0 as signed values map no point.
        .record(EMR_POLYPOLYLINE16, Payload({2, 2, 2, 0xFFFFFFF0}, {{8, 8}, {4, 4}}, false))
        .record(EMR_POLYPOLYGON, Payload({2, 3, 0, 3}, {{8, 8}, {4, 4}, {4, 8}}, true))
        .record(EMR_POLYPOLYGON16, Payload({0, 0}, {}, false))
        .record(EMR_POLYPOLYLINE, Payload({1000, 2, 2, 2}, {{0, 0}, {1, 1}}, true))
        .record(EMR_POLYPOLYGON16, Payload({2, 5, 3, 100}, {{0, 0}, {2, 0}, {2, 2}, {6, 6}}, false))
        // Poly-draw maps its points in place and passes its point types on.
        .record(EMR_POLYDRAW16,
                PointList({{0, 0}, {10, 0}, {10, 10}, {20, 20}, {20, 0}, {40, 0}, {40, 20}}, false)
                    .append(Bytes().u8(6).u8(2).u8(3).u8(6).u8(4).u8(0).u8(0)))
        .record(EMR_POLYDRAW16, PointList({{0, 0}, {2, 2}}, false));  // no types
    EXPECT_EQ(BothOrders(e),
              Polygon("0,0 4,0 4,4 ") + Polygon("10,10 20,10 20,20 10,20 ") + Polyline("0,0 8,8 ") +
                  Polyline("20,20 40,40 ") + Polyline("8,8 4,4 ") + Polyline("") + Polygon("") +
                  Polygon("8,8 4,4 4,8 ") + Polygon("0,0 1,0 1,1 ") + Polygon("3,3 ") +
                  "<path d=\" M0,0 L5,0 L5,5 Z  M10,10 C10,0 20,0 20,10\"  " + kDefaultStyle +
                  "/>");
}

TEST(EmfPaths, BracketCollectsFiguresUntilFilledStrokedOrAborted) {
    const Bytes square = PointList({{0, 0}, {4, 0}, {4, 4}}, false);
    const QString fill = " fill=\"white\" stroke=\"none\" stroke-width=\"0\" />\n";
    Emf e;
    e.record(EMR_CREATEPEN, U32s({1, 0, 1, 0, 0xFF})).record(EMR_SELECTOBJECT, U32s({1}));
    Bare(e, {EMR_BEGINPATH})
        .record(EMR_POLYGON16, square)
        .record(EMR_POLYBEZIER, PointList({{3, 7}, {4, 4}, {5, 5}, {6, 6}}, true));
    Bare(e, {EMR_CLOSEFIGURE, EMR_ENDPATH, EMR_STROKEPATH, EMR_BEGINPATH})
        .record(EMR_POLYLINE, PointList({{1, 1}, {2, 2}}, true));
    Bare(e, {EMR_ENDPATH, EMR_FILLPATH, EMR_BEGINPATH}).record(EMR_POLYGON16, square);
    Bare(e, {EMR_ENDPATH, EMR_ABORTPATH, EMR_FILLPATH});
    EXPECT_EQ(BothOrders(e), "\n<path d = \" M0,0  L4,0  L4,4  ZM3,7 C4,4 5,5 6,6 L3,7 \"" +
                                 RedPen(1) + "/>\n\n<path d = \" M1,1  L2,2  Z\"" + fill +
                                 "\n<path d = \"\"" + fill);
}

// Records of every type, shorter than their layout or filled with noise, are read as far as
// they go and no further.
TEST(EmfMalformed, ShortAndNoisyRecordsAreSurvived) {
    uint32_t seed = 12345;
    for (uint32_t type = 2; type <= 108; ++type) {
        for (int length = 0; length <= 96; length += 4) {
            Bytes noise;
            for (int i = 0; i < length; ++i, seed = seed * 1103515245u + 12345u)
                noise.u8((uint8_t)(seed >> 16));
            Emf e;
            e.record(type, noise).record(EMR_POLYLINE, PointList({{1, 1}}, true));
            const auto r = Convert(e.build());
            EXPECT_TRUE(r.status == 1 && r.svg.endsWith("</svg>\n")) << type << " " << length;
        }
    }
}
