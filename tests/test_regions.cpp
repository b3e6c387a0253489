// Region outlines and rectangle-list conversions.

#include <climits>
#include <list>
#include <random>

#include "geometry/RgnPathUtil.h"
#include "tests/TestUtil.h"

using namespace mfb;
using namespace testutil;

namespace {

// Segments as "x1,y1-x2,y2" each followed by a space.
std::string Listed(const std::list<CLine>& lines) {
    std::string s;
    for (const CLine& l : lines)
        s += QString::asprintf("%d,%d-%d,%d ", l.x1, l.y1, l.x2, l.y2).toStdString();
    return s;
}

std::string Outline(const std::vector<tagRECT>& rects, int count = INT_MAX) {
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

std::string EveryPairOutline(const std::vector<tagRECT>& rects) {
    std::list<CHLine> h;
    std::list<CVLine> v;
    for (const tagRECT& r : rects)
        for (bool far : {false, true})
            v.push_back(GetVLine(&r, far)), h.push_back(GetHLine(&r, far));
    EveryPairPass(h, HSplitIfOverlap);
    EveryPairPass(v, VSplitIfOverlap);
    std::list<CLine> out(h.begin(), h.end());
    out.insert(out.end(), v.begin(), v.end());
    for (CLine& l : out) l.ArrangeInOrder();
    return Listed(out);
}

// The rectangles of a region as "left,top,right,bottom" each followed by a space.
std::string Union(const QRegion& region) {
    tagRECT* rects = nullptr;
    const int n = GetRects(region, &rects);
    std::string s;
    for (const tagRECT* r = rects; r < rects + n; ++r)
        s += QString::asprintf("%d,%d,%d,%d ", r->left, r->top, r->right, r->bottom).toStdString();
    delete[] rects;
    return s;
}

// n vertical strips, then n horizontal ones, crossing each other.
std::vector<tagRECT> Strips(int n) {
    std::vector<tagRECT> strips;
    for (int i = 0; i < 2 * n; ++i)
        strips.push_back(i < n ? tagRECT{2 * i, 0, 2 * i + 1, 2 * n}
                               : tagRECT{0, 2 * (i - n), 2 * n, 2 * (i - n) + 1});
    return strips;
}

const QString kRedFill = "stroke=\"none\" stroke-width=\"1\" fill=\"#ff0000\"\n";
const QString kClipRect = R"(stroke="none" fill="none" stroke-width="1" )";

QString RectOf(const tagRECT& r, const QString& style) {
    const char* f = "<rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" rx=\"0\" ry=\"0\" ";
    return QString::asprintf(f, r.left, r.top, r.right - r.left, r.bottom - r.top) + style + "/>\n";
}
// The outline of the two touching rectangles below, horizontal segments styled `h`, vertical
// ones `v`.
QString TouchingOutline(const QString& h, const QString& v) {
    return Line(0, 0, 10, 0, h) + Line(0, 10, 10, 10, h) + Line(10, 0, 20, 0, h) +
           Line(10, 5, 20, 5, h) + Line(0, 0, 0, 10, v) + Line(20, 0, 20, 5, v) +
           Line(10, 5, 10, 10, v);
}
QString ClipDef(int id, const QString& content) {
    return "\n<defs><clipPath id= \"ClPath" + QString::number(id) + "\">" + content +
           "</clipPath></defs>";
}

const tagRECT kTouching[] = {{0, 0, 10, 10}, {10, 0, 20, 5}};

// A fill record's payload, or with the stroke sizes a frame record's.
Bytes Fill(uint32_t brush, const Bytes& region, const Bytes& stroke = Bytes()) {
    return Bytes().zeros(16).u32(region.size()).u32(brush).append(stroke).append(region);
}
Bytes Clip(uint32_t mode, const Bytes& region) {
    return Bytes().u32(region.size()).u32(mode).append(region);
}

}  // namespace

// Worked outlines. Two rectangles touching along x = 10 (seven segments, the top in two pieces)
// are EmfRegions.FillAndFrameRecords' outline.
TEST(RegionOutline, WorkedOutlines) {
    const std::vector<std::pair<std::vector<tagRECT>, std::string>> cases = {
        // One rectangle: its four edges.
        {{{0, 0, 10, 10}}, "0,0-10,0 0,10-10,10 0,0-0,10 10,0-10,10 "},
        // Stacked with overlapping x ranges: the shared edges become their remainders.
        {{{0, 0, 10, 5}, {5, 5, 20, 10}},
         "0,0-10,0 5,10-20,10 0,5-5,5 10,5-20,5 0,0-0,5 10,0-10,5 5,5-5,10 20,5-20,10 "},
        // Inverted: edges run from the smaller to the larger coordinate.
        {{{10, 10, 0, 0}}, "0,10-10,10 0,0-10,0 10,0-10,10 0,0-0,10 "},
        // A whole shared edge of the same extent is kept twice.
        {{{0, 0, 10, 10}, {0, 10, 10, 20}},
         "0,0-10,0 0,10-10,10 0,10-10,10 0,20-10,20 0,0-0,10 10,0-10,10 0,10-0,20 10,10-10,20 "},
        // A point edge inside another cuts it in two.
        {{{5, 0, 5, 3}, {0, 0, 10, 3}},
         "0,0-5,0 5,0-10,0 0,3-5,3 5,3-10,3 5,0-5,3 5,0-5,3 0,0-0,3 10,0-10,3 "},
    };
    for (const auto& [rects, expected] : cases) EXPECT_EQ(Outline(rects), expected);
    EXPECT_EQ(Outline({{0, 0, 1, 1}}, 0) + Outline({{0, 0, 1, 1}}, -3), "");
    // Equal segments split into nothing (0), touching ones not at all (-1).
    CHLine a(0, 0, 10, 0), b(0, 0, 10, 0), c(10, 0, 20, 0);
    std::list<CHLine> h;
    EXPECT_EQ(HSplitIfOverlap(a, b, h) * 10 + HSplitIfOverlap(a, c, h), -1);
    EXPECT_TRUE(h.empty());
}

// The pass against every-pair comparison. Few distinct coordinates make long lines of
// overlapping, equal, point and inverted edges; wide ranges make short lines; a band of
// rectangles side by side (some repeated) makes long lines whose edges never split.
TEST(RegionOutline, SameSegmentsInTheSameOrderAsComparingEveryPair) {
    std::mt19937 random(7);
    for (int trial = 0; trial < 300; ++trial) {
        const int span = trial % 3 == 0 ? 1000 : 4 + trial % 13;
        std::vector<tagRECT> rects;
        for (int i = 0, count = (int)(random() % 120); i < count; ++i) {
            const auto c = [&] { return (int32_t)(random() % span); };
            if (trial % 3 != 1) rects.push_back(tagRECT{c(), c(), c(), c()});
            if (trial % 3 == 1) rects.push_back(tagRECT{10 * i, 0, 10 * i + 1 + c() % 10, 5});
            if (trial % 3 == 1 && c() % 8 == 0) rects.push_back(rects.back());
        }
        ASSERT_EQ(Outline(rects), EveryPairOutline(rects)) << "trial " << trial;
    }
}

TEST(RegionConversion, UnionAndRectanglesOfARegion) {
    // Sides that fit in int keep their coordinates (but -2^31); longer ones are cut to
    // +-(2^30 - 1).
    const std::vector<std::pair<std::vector<tagRECT>, std::string>> unions = {
        {{{0, 0, 10, 10}, {10, 0, 20, 10}}, "0,0,20,10 "},
        {{{INT_MIN, INT_MIN, INT_MAX, INT_MAX}}, "-1073741823,-1073741823,1073741823,1073741823 "},
        {{{0, INT_MIN, INT_MAX, -1}}, "0,-2147483647,2147483647,-1 "},
        {{{INT_MIN + 5, 0, 6, 1}}, "-1073741823,0,6,1 "},
    };
    for (const auto& [rects, expected] : unions)
        EXPECT_EQ(Union(CreateQRegionFromRects((int)rects.size(), rects.data())), expected);

    // Crossing strips: a grid of n x n rectangles, refused beyond a million.
    for (int n : {300, 1000}) {
        const std::vector<tagRECT> strips = Strips(n);
        bool tooComplex = false;
        const QRegion grid = CreateQRegionFromRects((int)strips.size(), strips.data(), &tooComplex);
        EXPECT_EQ(tooComplex ? -1 : grid.rectCount(), n == 300 ? 300 * 301 : -1);
    }

    // Any list, and a list already in the region's own form (which is set directly), give
    // the union made one rectangle at a time. A combination with the previous trial's region
    // never makes more rectangles than its count, which takes each of the two at least once.
    std::mt19937 random(11);
    QRegion previous;
    for (int trial = 0; trial < 3000; ++trial) {
        const int span = 3 + trial % 30;
        std::vector<tagRECT> rects((size_t)(random() % 14));
        QRegion oneByOne;
        for (tagRECT& r : rects) {
            const auto c = [&] { return (int32_t)(random() % span) - 2; };
            r = tagRECT{c(), c(), c(), c()};
            oneByOne |= QRegion(QRect(r.left, r.top, r.right - r.left, r.bottom - r.top));
        }
        ASSERT_EQ(Union(CreateQRegionFromRects((int)rects.size(), rects.data())), Union(oneByOne));
        tagRECT* own = nullptr;
        const int n = GetRects(oneByOne, &own);
        ASSERT_EQ(Union(CreateQRegionFromRects(n, own)), Union(oneByOne));
        delete[] own;
        const uint64_t count = CombinationCount(previous, oneByOne, UINT64_MAX);
        ASSERT_GE(count, (uint64_t)previous.rectCount() + oneByOne.rectCount());
        for (const QRegion& made : {previous & oneByOne, previous | oneByOne, previous ^ oneByOne})
            ASSERT_LE((uint64_t)made.rectCount(), count) << "trial " << trial;
        previous = oneByOne;
    }
}

// Fill and frame rectangles are mapped, the stroke sizes not (vertical segments as wide as the
// width, horizontal ones the height); without a brush entry there is no colour. Counts beyond
// the record are cut to the rectangles inside it, counts with the top bit set give none; the
// rectangles may start anywhere after the header.
TEST(EmfRegions, FillAndFrameRecords) {
    const std::vector<Rect> touching = {{0, 0, 20, 20}, {20, 0, 40, 10}};
    Emf e = Halved().bounds(0, 0, 100, 50);
    e.record(EMR_CREATEBRUSHINDIRECT, Bytes().u32(1).u32(0).u32(0xFF).u32(0))
        .record(EMR_FILLRGN, Fill(1, RegionData(touching)))
        .record(EMR_FRAMERGN, Fill(1, RegionData(touching), Bytes().u32(2).u32(3)))
        .record(EMR_FRAMERGN, Fill(9, RegionData(touching), Bytes().u32(4).u32(5)))
        .record(EMR_FILLRGN, Fill(9, RegionData({{0, 0, 20, 20}})))
        .record(EMR_FILLRGN, Fill(1, RegionData({{0, 0, 20, 20}}, 5)))
        .record(EMR_FILLRGN, Fill(1, RegionData(touching, 0x80000000u)))
        .record(EMR_FILLRGN, Fill(1, RegionData(touching, 0)))
        .record(EMR_FILLRGN, Fill(1, RegionData({{20, 0, 40, 10}}, -1, 34)))
        .record(
            EMR_FILLRGN,
            Fill(1, Bytes().u32(0xFFFFFFF0u).u32(1).u32(1).zeros(20).append(RegionData(touching))));
    EXPECT_EQ(BothOrders(e), RectOf(kTouching[0], kRedFill) + RectOf(kTouching[1], kRedFill) +
                                 TouchingOutline("stroke=\"#ff0000\"\nstroke-width=\"3\" ",
                                                 "stroke=\"#ff0000\"\nstroke-width=\"2\" ") +
                                 TouchingOutline("stroke-width=\"5\" ", "stroke-width=\"4\" ") +
                                 RectOf(kTouching[0], R"(stroke="none" stroke-width="1" )") +
                                 RectOf(kTouching[0], kRedFill) + RectOf(kTouching[1], kRedFill));
}

// The clip region starts as the header's bounds; AND, OR and XOR records combine their
// rectangles into it unmapped, other modes leave it, and every record with region data makes
// the result the clip. A clip path from a bracket then clips pen-styled elements too, and the
// rectangles of a region clip defined while it is selected; the next clip path drops it first.
// A grid of 360,000 rectangles from a file of 20 kB is beyond the file's budget and skipped.
TEST(EmfRegions, ClipRegionsAccumulate) {
    std::vector<Rect> strips;
    for (const tagRECT& r : Strips(600)) strips.push_back({r.left, r.top, r.right, r.bottom});
    Emf e = Halved().bounds(0, 0, 100, 50);
    e.record(EMR_EXTSELECTCLIPRGN, Clip(1, RegionData(strips)))
        .record(EMR_EXTSELECTCLIPRGN, Clip(1, RegionData({{10, 10, 30, 30}})))
        .record(EMR_EXTSELECTCLIPRGN, Clip(1, RegionData({{20, 0, 60, 20}})))
        .record(EMR_EXTSELECTCLIPRGN, Clip(2, RegionData({{0, 40, 10, 50}})))
        .record(EMR_EXTSELECTCLIPRGN, Clip(5, RegionData({{0, 0, 5, 5}})))
        .record(EMR_EXTSELECTCLIPRGN, Clip(3, RegionData({{20, 10, 25, 20}})))
        .record(EMR_EXTSELECTCLIPRGN, Bytes().u32(0).u32(1).append(RegionData({})))
        .record(EMR_INTERSECTCLIPRECT, Bytes().i32(0).i32(0).i32(1).i32(1))
        .record(EMR_LINETO, Bytes().i32(8).i32(8))
        .record(EMR_BEGINPATH, Bytes())
        .record(EMR_POLYGON16,
                Bytes().zeros(16).u32(3).append(Points16({{0, 0}, {10, 0}, {10, 10}})))
        .record(EMR_ENDPATH, Bytes())
        .record(EMR_SELECTCLIPPATH, Bytes().u32(5))
        .record(EMR_POLYLINE16, Bytes().zeros(16).u32(2).append(Points16({{2, 2}, {4, 4}})))
        .record(EMR_EXTSELECTCLIPRGN, Clip(2, RegionData({{0, 40, 4, 44}})))
        .record(EMR_SELECTCLIPPATH, Bytes().u32(5));
    const QString clipped6 = "clip-path=\"url(#ClPath6)\"", noPen = kNoPen;
    const auto def = [](int id, std::vector<tagRECT> rects, const QString& clip = "") {
        QString content;
        for (const tagRECT& r : rects) content += RectOf(r, kClipRect + clip);
        return ClipDef(id, content);
    };
    EXPECT_EQ(
        BothOrders(e),
        def(1, {{10, 10, 30, 30}}) + def(2, {{20, 10, 30, 20}}) +
            def(3, {{20, 10, 30, 20}, {0, 40, 10, 50}}) +
            def(4, {{20, 10, 30, 20}, {0, 40, 10, 50}}) +
            def(5, {{25, 10, 30, 20}, {0, 40, 10, 50}}) +
            Line(0, 0, 4, 4,
                 R"x(stroke="black" stroke-width="1" fill="none" clip-path="url(#ClPath5)")x") +
            ClipDef(6, "\n<path d = \" M0,0  L5,0  L5,5  Z\" " + noPen + "/>\n") +
            "<polyline points=\"1,1 2,2 \n\" " + noPen + clipped6 + "/>\n" +
            def(7, {{25, 10, 30, 20}, {0, 40, 10, 50}}, clipped6) +
            ClipDef(8, "\n<path d = \"\" " + noPen + "/>\n"));
}

// The bounds meant for hostile files cut no honest one: a file of 6 kB restating a region of
// 101 rectangles 70 times writes more than 64 bytes of clip paths per byte, and all of them;
// 725 rectangles (a band of 363, then 362 bands of one) intersected with the bounds are
// combined (their bands times their widths are far above the file's budget); a clip
// rectangle 2^31 - 1 wide keeps its width.
TEST(EmfRegions, HonestClipsAreWrittenWhole) {
    std::vector<Rect> strips, comb;
    for (int i = 0; i < 100; ++i) strips.push_back({200 + 2 * i, 100, 201 + 2 * i, 101});
    for (int i = 0; i < 363; ++i) comb.push_back({2 * i, 0, 2 * i + 1, 1});
    for (int j = 1; j < 363; ++j) comb.push_back({0, j, 1 + j % 2, j + 1});
    Emf restated = Emf().bounds(0, 0, 100, 50);
    restated.record(EMR_EXTSELECTCLIPRGN, Clip(2, RegionData(strips)));
    for (int i = 0; i < 70; ++i)
        restated.record(EMR_EXTSELECTCLIPRGN, Clip(5, RegionData({{0, 0, 1, 1}})));
    const struct {
        Emf file;
        int clips, rects, leastPerByte;
        QString text;
    } cases[] = {
        {restated, 71, 71 * 101, 64, ""},
        {Emf().bounds(0, 0, 1000, 1000).record(EMR_EXTSELECTCLIPRGN, Clip(1, RegionData(comb))), 1,
         725, 0, ""},
        {Emf()
             .bounds(0, 0, 100, 50)
             .record(EMR_EXTSELECTCLIPRGN, Clip(2, RegionData({{0, 60, INT_MAX, 70}}))),
         1, 2, 0, R"(x="0" y="60" width="2147483647" height="10")"},
    };
    for (const auto& c : cases) {
        const QByteArray in = c.file.build();
        const Result out = Convert(in);
        EXPECT_EQ(out.status, 1);
        EXPECT_EQ(out.svg.count("<clipPath"), c.clips);
        EXPECT_EQ(out.svg.count("<rect"), c.rects);
        EXPECT_GT(out.svg.size(), c.leastPerByte * in.size());
        EXPECT_TRUE(out.svg.contains(c.text));
    }
}
