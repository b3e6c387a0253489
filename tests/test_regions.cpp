// Region outlines and rectangle-list conversions.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <list>
#include <random>
#include <tuple>
#include <vector>

#include "geometry/RgnPathUtil.h"
#include "svg/SVGWriter.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

namespace {

using Segments = std::vector<std::tuple<int, int, int, int>>;

Segments Listed(const std::list<CLine>& lines) {
    Segments s;
    for (const CLine& l : lines) s.emplace_back(l.x1, l.y1, l.x2, l.y2);
    return s;
}

Segments Outline(const std::vector<tagRECT>& rects, int count = INT_MAX) {
    std::list<CLine> out;
    EXPECT_EQ(ConvertRgnDataToPath(std::min(count, (int)rects.size()), rects.data(), out), 1);
    return Listed(out);
}

// The cancelling pass comparing every pair, as the outline rule states it: after a removal
// the scan goes on at the element that followed the removed cursor.
template <class L, class Split>
void EveryPairPass(std::list<L>& list, Split split) {
    auto i = list.begin();
    while (i != list.end() && std::next(i) != list.end()) {
        auto j = std::next(i);
        while (j != list.end() && split(*i, *j, list) <= 0) ++j;
        if (j == list.end()) {
            ++i;
            continue;
        }
        const auto resume = std::next(i) == j ? std::next(j) : std::next(i);
        list.erase(j);
        list.erase(i);
        i = resume;
    }
}

Segments EveryPairOutline(const std::vector<tagRECT>& rects) {
    std::list<CHLine> h;
    std::list<CVLine> v;
    for (const tagRECT& r : rects) {
        v.push_back(GetVLine(&r, false));
        v.push_back(GetVLine(&r, true));
        h.push_back(GetHLine(&r, false));
        h.push_back(GetHLine(&r, true));
    }
    EveryPairPass(h, HSplitIfOverlap);
    EveryPairPass(v, VSplitIfOverlap);
    std::list<CLine> out(h.begin(), h.end());
    out.insert(out.end(), v.begin(), v.end());
    for (CLine& l : out) l.ArrangeInOrder();
    return Listed(out);
}

std::vector<tagRECT> Union(const QRegion& region) {
    tagRECT* rects = nullptr;
    const int n = GetRects(region, &rects);
    std::vector<tagRECT> out(rects, rects + n);
    delete[] rects;
    return out;
}

}  // namespace

inline bool operator==(const tagRECT& a, const tagRECT& b) {
    return std::tie(a.left, a.top, a.right, a.bottom) == std::tie(b.left, b.top, b.right, b.bottom);
}

TEST(RegionOutline, SplitsOfCollinearSegments) {
    // a, b as (from, to) on line 0 unless given; the result and the pieces.
    const std::tuple<int, int, int, int, int, int, Segments> cases[] = {
        {0, 0, 10, 5, 20, 2, {{0, 0, 5, 0}, {10, 0, 20, 0}}},
        {0, 0, 20, 5, 10, 2, {{0, 0, 5, 0}, {10, 0, 20, 0}}},
        {0, 0, 10, 0, 4, 1, {{4, 0, 10, 0}}},
        {0, 0, 10, 0, 10, 0, {}},                            // equal: both stay
        {0, 0, 10, 10, 20, -1, {}},                          // touching end to end
        {0, 0, 10, 11, 20, -1, {}},                          // apart
        {1, 0, 10, 5, 20, -1, {}},                           // different lines
        {0, 5, 5, 0, 10, 2, {{0, 0, 5, 0}, {5, 0, 10, 0}}},  // a point inside cuts the other
    };
    for (const auto& [line, a1, a2, b1, b2, result, pieces] : cases) {
        CHLine ha(a1, line, a2, line), hb(b1, 0, b2, 0);
        CVLine va(line, a1, line, a2), vb(0, b1, 0, b2);
        std::list<CHLine> hl;
        std::list<CVLine> vl;
        EXPECT_EQ(HSplitIfOverlap(ha, hb, hl), result) << a1 << " " << b1;
        EXPECT_EQ(VSplitIfOverlap(va, vb, vl), result) << a1 << " " << b1;
        EXPECT_EQ(Listed(std::list<CLine>(hl.begin(), hl.end())), pieces);
        Segments swapped;
        for (const CVLine& v : vl) swapped.emplace_back(v.y1, v.x1, v.y2, v.x2);
        EXPECT_EQ(swapped, pieces);
    }
}

TEST(RegionOutline, WorkedOutlines) {
    const std::vector<std::tuple<const char*, std::vector<tagRECT>, Segments>> cases = {
        {"one rectangle: its four edges",
         {{0, 0, 10, 10}},
         {{0, 0, 10, 0}, {0, 10, 10, 10}, {0, 0, 0, 10}, {10, 0, 10, 10}}},
        {"touching along x = 10: seven segments, the top in two pieces",
         {{0, 0, 10, 10}, {10, 0, 20, 5}},
         {{0, 0, 10, 0},
          {0, 10, 10, 10},
          {10, 0, 20, 0},
          {10, 5, 20, 5},
          {0, 0, 0, 10},
          {20, 0, 20, 5},
          {10, 5, 10, 10}}},
        {"stacked with overlapping x ranges: the shared edges become their remainders",
         {{0, 0, 10, 5}, {5, 5, 20, 10}},
         {{0, 0, 10, 0},
          {5, 10, 20, 10},
          {0, 5, 5, 5},
          {10, 5, 20, 5},
          {0, 0, 0, 5},
          {10, 0, 10, 5},
          {5, 5, 5, 10},
          {20, 5, 20, 10}}},
        {"inverted: edges run from the smaller to the larger coordinate",
         {{10, 10, 0, 0}},
         {{0, 10, 10, 10}, {0, 0, 10, 0}, {10, 0, 10, 10}, {0, 0, 0, 10}}},
        {"a whole shared edge of the same extent is kept twice",
         {{0, 0, 10, 10}, {0, 10, 10, 20}},
         {{0, 0, 10, 0},
          {0, 10, 10, 10},
          {0, 10, 10, 10},
          {0, 20, 10, 20},
          {0, 0, 0, 10},
          {10, 0, 10, 10},
          {0, 10, 0, 20},
          {10, 10, 10, 20}}},
    };
    for (const auto& [name, rects, expected] : cases) EXPECT_EQ(Outline(rects), expected) << name;
    EXPECT_TRUE(Outline({{0, 0, 1, 1}}, 0).empty());
    EXPECT_TRUE(Outline({{0, 0, 1, 1}}, -3).empty());
}

// The pass against every-pair comparison. Few distinct coordinates make long lines of
// overlapping, equal, point and inverted edges; wide ranges make short lines; a band of
// rectangles side by side (some repeated) makes long lines whose edges never split.
TEST(RegionOutline, SameSegmentsInTheSameOrderAsComparingEveryPair) {
    std::mt19937 random(7);
    for (int trial = 0; trial < 300; ++trial) {
        const int span = trial % 3 == 0 ? 1000 : 4 + trial % 13;
        const int count = (int)(random() % 120);
        std::vector<tagRECT> rects;
        for (int i = 0; i < count; ++i) {
            const auto c = [&] { return (int32_t)(random() % span); };
            if (trial % 3 != 1) rects.push_back(tagRECT{c(), c(), c(), c()});
            if (trial % 3 == 1) rects.push_back(tagRECT{10 * i, 0, 10 * i + 1 + c() % 10, 5});
            if (trial % 3 == 1 && c() % 8 == 0) rects.push_back(rects.back());
        }
        ASSERT_EQ(Outline(rects), EveryPairOutline(rects)) << "trial " << trial;
    }
}

TEST(RegionConversion, UnionAndRectanglesOfARegion) {
    EXPECT_EQ(Union(CreateQRegionFromRects(
                  2, std::vector<tagRECT>{{0, 0, 10, 10}, {10, 0, 20, 10}}.data())),
              (std::vector<tagRECT>{{0, 0, 20, 10}}));
    EXPECT_TRUE(Union(CreateQRegionFromRects(0, nullptr)).empty());
    const tagRECT huge = {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
    const int32_t limit = (1 << 30) - 1;
    EXPECT_EQ(Union(CreateQRegionFromRects(1, &huge)),
              (std::vector<tagRECT>{{-limit, -limit, limit, limit}}));

    // Any list, and a list already in the region's own form (which is set directly), give
    // the union made one rectangle at a time.
    std::mt19937 random(11);
    for (int trial = 0; trial < 3000; ++trial) {
        const int span = 3 + trial % 30;
        std::vector<tagRECT> rects((size_t)(random() % 14));
        QRegion oneByOne;
        for (tagRECT& r : rects) {
            const auto c = [&] { return (int32_t)(random() % span) - 2; };
            r = tagRECT{c(), c(), c(), c()};
            oneByOne =
                oneByOne.united(QRegion(QRect(r.left, r.top, r.right - r.left, r.bottom - r.top)));
        }
        const std::vector<tagRECT> expected = Union(oneByOne);
        ASSERT_EQ(Union(CreateQRegionFromRects((int)rects.size(), rects.data())), expected);
        ASSERT_EQ(Union(CreateQRegionFromRects((int)expected.size(), expected.data())), expected);
    }
}

namespace {

using Draw = std::function<void(CMySVGWriter&)>;

const std::string kNoPen = R"(stroke="none" stroke-width="1"  fill="none" )";
const std::string kRedFill = "stroke=\"none\" stroke-width=\"1\" fill=\"#ff0000\"\n";
const std::string kClipRect = R"(stroke="none" fill="none" stroke-width="1" )";

std::string Rect(const tagRECT& r, const std::string& style) {
    return QString::asprintf(
               "<rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" rx=\"0\" ry=\"0\" ", r.left,
               r.top, r.right - r.left, r.bottom - r.top)
               .toStdString() +
           style + "/>\n";
}
std::string Line(int x1, int y1, int x2, int y2, const std::string& style) {
    return QString::asprintf("<line x1=\"%d\" y1 = \"%d\" x2 =\"%d\" y2=\"%d\" ", x1, y1, x2, y2)
               .toStdString() +
           style + "/>\n";
}
// The outline of the two touching rectangles below, horizontal segments styled `h`, vertical
// ones `v`.
std::string TouchingOutline(const std::string& h, const std::string& v) {
    return Line(0, 0, 10, 0, h) + Line(0, 10, 10, 10, h) + Line(10, 0, 20, 0, h) +
           Line(10, 5, 20, 5, h) + Line(0, 0, 0, 10, v) + Line(20, 0, 20, 5, v) +
           Line(10, 5, 10, 10, v);
}
std::string ClipDef(int id, const std::string& content) {
    return "\n<defs><clipPath id= \"ClPath" + std::to_string(id) + "\">" + content +
           "</clipPath></defs>";
}
std::string Clipped(int id) {
    return R"(stroke="black" stroke-width="1" fill="none" clip-path="url(#ClPath)" +
           std::to_string(id) + ")\"";
}

const tagRECT kTouching[] = {{0, 0, 10, 10}, {10, 0, 20, 5}};

}  // namespace

TEST(RegionWriter, FillsFramesAndClipDefinitions) {
    const tagPOINT triangle[] = {{0, 0}, {5, 0}, {5, 5}};
    const std::vector<std::tuple<const char*, Draw, std::string>> cases = {
        {"fill: a rectangle each in the brush colour, none without a brush or a positive count",
         [](CMySVGWriter& w) {
             w.CreateBrushI(1, 0, 0, 0xFF);
             w.FillRgn(2, kTouching, 1);
             w.FillRgn(1, kTouching, 9);
             w.FillRgn(0, kTouching, 1);
             w.FillRgn(0x80000000u, kTouching, 1);
         },
         Rect(kTouching[0], kRedFill) + Rect(kTouching[1], kRedFill) +
             Rect(kTouching[0], R"(stroke="none" stroke-width="1" )")},
        {"frame: the outline, vertical segments as wide as the width, horizontal ones the height",
         [](CMySVGWriter& w) {
             w.CreateBrushI(1, 0, 0, 0xFF);
             w.FrameRgn(2, kTouching, 1, 2, 3);
             w.FrameRgn(2, kTouching, 9, 4, 5);
         },
         TouchingOutline("stroke=\"#ff0000\"\nstroke-width=\"3\" ",
                         "stroke=\"#ff0000\"\nstroke-width=\"2\" ") +
             TouchingOutline("stroke-width=\"5\" ", "stroke-width=\"4\" ")},
        {"clip regions: numbered definitions, each the clip of what is drawn in the current style",
         [](CMySVGWriter& w) {
             const tagRECT r = {0, 0, 50, 40};
             w.SetExtClipRgn(1, &r);
             w.DrawLine(1, 2, 3, 4, QByteArray());
             w.SetExtClipRgn(0, nullptr);
             w.DrawLine(1, 2, 3, 4, QByteArray());
         },
         ClipDef(1, Rect({0, 0, 50, 40}, kClipRect)) + Line(1, 2, 3, 4, Clipped(1)) +
             ClipDef(2, "") + Line(1, 2, 3, 4, Clipped(2))},
        {"clip paths: the bracket's data; a second first drops the clip of the first; closing "
         "numbers from 1 again",
         [&](CMySVGWriter& w) {
             w.StartPath();
             w.DrawPolyLine(triangle, 3, true, false, QByteArray());
             w.EndPath();
             w.SelectClipPath(5);
             w.DrawRect(1, 2, 3, 4, QByteArray(" stroke=\"red\" "), 0, 0);
             w.SetExtClipRgn(1, kTouching);  // its rectangle keeps the path clip
             w.SelectClipPath(1);
             w.Close();
             w.SetExtClipRgn(0, nullptr);
         },
         ClipDef(1, "\n<path d = \" M0,0  L5,0  L5,5  Z\" " + kNoPen + "/>\n") +
             Rect({1, 2, 4, 6}, R"x( stroke="red" clip-path="url(#ClPath1)")x") +
             ClipDef(2, Rect(kTouching[0], kClipRect + R"x(clip-path="url(#ClPath1)")x")) +
             ClipDef(3, "\n<path d = \"\" " + kNoPen + "/>\n") + "</svg>\n" + ClipDef(1, "")},
    };
    for (const auto& [name, draw, expected] : cases) {
        CMySVGWriter w;
        draw(w);
        EXPECT_EQ(w.GetSVGOutput().toStdString(), expected) << name;
    }
}

namespace {

using mfb::Bytes;
using mfb::RegionData;

// The body of the file's document, which the byte-swapped file read as on a big-endian host
// must reproduce.
std::string BothOrders(const mfb::Emf& e) {
    const auto little = testutil::Convert(e.build());
    EXPECT_EQ(little.status, 1);
    testutil::ForceBigEndian bigEndian;
    EXPECT_EQ(testutil::Convert(e.build(true, true)).svg, little.svg);
    return testutil::Body(little.svg).toStdString();
}

// MM_ANISOTROPIC with every coordinate halved.
mfb::Emf Halved() {
    mfb::Emf e;
    e.bounds(0, 0, 100, 50)
        .record(mfb::EMR_SETMAPMODE, Bytes().u32(8))
        .record(mfb::EMR_SETWINDOWEXTEX, Bytes().i32(1000).i32(1000))
        .record(mfb::EMR_SETVIEWPORTEXTEX, Bytes().i32(500).i32(500));
    return e;
}

Bytes Fill(uint32_t brush, const Bytes& region) {
    return Bytes().zeros(16).u32(region.size()).u32(brush).append(region);
}
Bytes Clip(uint32_t mode, const Bytes& region) {
    return Bytes().u32(region.size()).u32(mode).append(region);
}

}  // namespace

// Fill and frame rectangles are mapped, the stroke sizes not. Counts beyond the record are cut
// to the rectangles inside it, counts with the top bit set give none; the rectangles may start
// anywhere after the header.
TEST(EmfRegions, FillAndFrameRecords) {
    const std::vector<mfb::Rect> touching = {{0, 0, 20, 20}, {20, 0, 40, 10}};
    mfb::Emf e = Halved();
    e.record(mfb::EMR_CREATEBRUSHINDIRECT, Bytes().u32(1).u32(0).u32(0xFF).u32(0))
        .record(mfb::EMR_FILLRGN, Fill(1, RegionData(touching)))
        .record(mfb::EMR_FRAMERGN,
                Bytes().zeros(16).u32(0).u32(1).u32(2).u32(3).append(RegionData(touching)))
        .record(mfb::EMR_FILLRGN, Fill(1, RegionData({{0, 0, 20, 20}}, 5)))
        .record(mfb::EMR_FILLRGN, Fill(1, RegionData(touching, 0x80000000u)))
        .record(mfb::EMR_FILLRGN, Fill(1, RegionData(touching, 0)))
        .record(mfb::EMR_FILLRGN, Fill(1, RegionData({{20, 0, 40, 10}}, -1, 34)))
        .record(
            mfb::EMR_FILLRGN,
            Fill(1, Bytes().u32(0xFFFFFFF0u).u32(1).u32(1).zeros(20).append(RegionData(touching))));
    EXPECT_EQ(BothOrders(e), Rect(kTouching[0], kRedFill) + Rect(kTouching[1], kRedFill) +
                                 TouchingOutline("stroke=\"#ff0000\"\nstroke-width=\"3\" ",
                                                 "stroke=\"#ff0000\"\nstroke-width=\"2\" ") +
                                 Rect(kTouching[0], kRedFill) + Rect(kTouching[1], kRedFill));
}

// The clip region starts as the header's bounds; AND, OR and XOR records combine their
// rectangles into it unmapped, other modes leave it, and every record with region data makes
// the result the clip.
TEST(EmfRegions, ClipRegionsAccumulate) {
    mfb::Emf e = Halved();
    e.record(mfb::EMR_EXTSELECTCLIPRGN, Clip(1, RegionData({{10, 10, 30, 30}})))
        .record(mfb::EMR_EXTSELECTCLIPRGN, Clip(1, RegionData({{20, 0, 60, 20}})))
        .record(mfb::EMR_EXTSELECTCLIPRGN, Clip(2, RegionData({{0, 40, 10, 50}})))
        .record(mfb::EMR_EXTSELECTCLIPRGN, Clip(5, RegionData({{0, 0, 5, 5}})))
        .record(mfb::EMR_EXTSELECTCLIPRGN, Clip(3, RegionData({{20, 10, 25, 20}})))
        .record(mfb::EMR_EXTSELECTCLIPRGN, Bytes().u32(0).u32(1).append(RegionData({})))
        .record(mfb::EMR_INTERSECTCLIPRECT, Bytes().i32(0).i32(0).i32(1).i32(1))
        .record(mfb::EMR_LINETO, Bytes().i32(8).i32(8));
    const auto def = [](int id, std::vector<tagRECT> rects) {
        std::string content;
        for (const tagRECT& r : rects) content += Rect(r, kClipRect);
        return ClipDef(id, content);
    };
    EXPECT_EQ(BothOrders(e), def(1, {{10, 10, 30, 30}}) + def(2, {{20, 10, 30, 20}}) +
                                 def(3, {{20, 10, 30, 20}, {0, 40, 10, 50}}) +
                                 def(4, {{20, 10, 30, 20}, {0, 40, 10, 50}}) +
                                 def(5, {{25, 10, 30, 20}, {0, 40, 10, 50}}) +
                                 Line(0, 0, 4, 4, Clipped(5)));
}

// A clip path clips what follows, pen-styled elements included.
TEST(EmfRegions, ClipPathFromTheBracket) {
    mfb::Emf e;
    e.record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYGON16,
                Bytes().zeros(16).u32(3).append(mfb::Points16({{0, 0}, {5, 0}, {5, 5}})))
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_SELECTCLIPPATH, Bytes().u32(5))
        .record(mfb::EMR_POLYLINE16,
                Bytes().zeros(16).u32(2).append(mfb::Points16({{1, 1}, {2, 2}})));
    EXPECT_EQ(BothOrders(e), ClipDef(1, "\n<path d = \" M0,0  L5,0  L5,5  Z\" " + kNoPen + "/>\n") +
                                 "<polyline points=\"1,1 2,2 \n\" " + kNoPen +
                                 "clip-path=\"url(#ClPath1)\"/>\n");
}
