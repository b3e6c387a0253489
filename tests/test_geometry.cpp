// Points on an ellipse and the pie's large-arc comparison.
#include <gtest/gtest.h>

#include "geometry/GeometricHelpers.h"

TEST(Geometry, PointOnEllipse) {
    const struct {
        tagRECT box;
        tagPOINT p, expected;
    } cases[] = {
        {{0, 0, 200, 100}, {200, 100}, {170, 85}},  // both coordinates cut toward the centre
        {{0, 0, 100, 100}, {100, 50}, {100, 50}},
        {{0, 0, 100, 100}, {0, 50}, {0, 50}},              // left of the centre: x negated
        {{-3, 0, 0, 10}, {5, 5}, {-1, 5}},                 // the centre is left + 1, not -1.5
        {{0, 0, 100, 60}, {50, -10}, {50, 0}},             // straight above the centre
        {{0, 0, 100, 60}, {50, 900}, {50, 60}},            // straight below
        {{0, 0, 100, 60}, {50, 30}, {100, 30}},            // the centre itself: angle 0
        {{100, 0, 0, 100}, {200, 50}, {0, 50}},            // mirrored box: negative half width
        {{10, 10, 10, 10}, {20, 20}, {10, 10}},            // empty box
        {{0, 10, 100, 10}, {-5, 10}, {0, 10}},             // flat box along its axis
        {{0, 10, 100, 10}, {70, 20}, {50, 10}},            // flat box across it
        {{0, 0, 131072, 131072}, {0, 7}, {65536, 65536}},  // squares wrap to zero
    };
    for (const auto& c : cases) {
        tagPOINT out{-1, -1};
        EXPECT_TRUE(GetPointOnEllipse(c.box, c.p, out));
        EXPECT_EQ(out.x, c.expected.x) << c.p.x << "," << c.p.y;
        EXPECT_EQ(out.y, c.expected.y) << c.p.x << "," << c.p.y;
    }
}

// The angle of a point left of and above the centre is moved by pi twice; one straight above
// or below is at pi/2; the centre compares as neither greater nor smaller.
TEST(Geometry, BigArcComparesPieAngles) {
    const struct {
        tagPOINT p1, p2;
        bool big;
    } cases[] = {
        {{10, 0}, {0, 10}, false},      {{0, 10}, {10, 0}, true},      {{-10, 10}, {10, 10}, true},
        {{10, -10}, {-10, -10}, false}, {{-10, -10}, {10, -10}, true}, {{0, -10}, {0, 10}, false},
        {{0, 0}, {10, 10}, false},      {{10, 10}, {0, 0}, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(IsBigArc(c.p1, c.p2, 0, 0), c.big) << c.p1.x << "," << c.p1.y;
}
