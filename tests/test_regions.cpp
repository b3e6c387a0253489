// Region outlines and rectangle-list conversions.
#include <gtest/gtest.h>

#include <climits>
#include <list>
#include <random>
#include <tuple>
#include <vector>

#include "geometry/RgnPathUtil.h"

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

// The indexed pass against every-pair comparison: few distinct coordinates make long lines of
// overlapping, equal, point and inverted edges; wide ranges make short lines.
TEST(RegionOutline, SameSegmentsInTheSameOrderAsComparingEveryPair) {
    std::mt19937 random(7);
    for (int trial = 0; trial < 300; ++trial) {
        const int span = trial % 3 == 0 ? 1000 : 4 + trial % 13;
        const int count = (int)(random() % 120);
        std::vector<tagRECT> rects;
        for (int i = 0; i < count; ++i) {
            const auto c = [&] { return (int32_t)(random() % span); };
            rects.push_back(tagRECT{c(), c(), c(), c()});
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
