// Ellipse geometry, and the EMF rectangle, ellipse and arc records end to end in both byte
// orders, as drawn and under a divisor of 2 with a window origin.

#include <QPoint>
#include <limits>

#include "geometry/GeometricHelpers.h"
#include "tests/TestUtil.h"

using namespace mfb;

namespace {

// Expected output, each "|" standing for the writer's default style and the element's end.
QString Out(const char* text) {
    return QString(text).replace('|', " stroke=\"black\" stroke-width=\"1\" fill=\"none\"/>\n");
}

// An angle-arc about (100, 100).
Bytes AngleArc(float start, float sweep, int32_t radius = 50) {
    return I32s({100, 100, radius}).f32(start).f32(sweep);
}

}  // namespace

// Box, radial point, point on the ellipse: the centre is left + half the width truncated
// (-2 for -3..0); straight above and below; the centre itself (angle 0); a mirrored box; an
// empty box; a flat box along its axis and across it; half-axes whose squares wrap to zero.
// Then pairs of points and whether the first one's pie angle about (0, 0) is the greater: pi is
// added twice left of and above the centre, straight above or below is pi/2, the centre
// compares neither greater nor smaller.
TEST(Geometry, PointOnEllipseAndPieAngles) {
    const int points[][8] = {{-3, 0, 0, 10, 5, 5, -1, 5},
                             {0, 0, 100, 60, 50, -10, 50, 0},
                             {0, 0, 100, 60, 50, 900, 50, 60},
                             {0, 0, 100, 60, 50, 30, 100, 30},
                             {100, 0, 0, 100, 200, 50, 0, 50},
                             {10, 10, 10, 10, 20, 20, 10, 10},
                             {0, 10, 100, 10, -5, 10, 0, 10},
                             {0, 10, 100, 10, 70, 20, 50, 10},
                             {0, 0, 131072, 131072, 0, 7, 65536, 65536}};
    for (const auto& c : points) {
        tagPOINT out;
        EXPECT_TRUE(GetPointOnEllipse({c[0], c[1], c[2], c[3]}, {c[4], c[5]}, out));
        EXPECT_EQ(QPoint(out.x, out.y), QPoint(c[6], c[7])) << c[4] << "," << c[5];
    }
    const int angles[][5] = {{10, 0, 0, 10, 0},      {0, 10, 10, 0, 1},      {-10, 10, 10, 10, 1},
                             {10, -10, -10, -10, 0}, {-10, -10, 10, -10, 1}, {0, -10, 0, 10, 0},
                             {0, 0, 10, 10, 0},      {10, 10, 0, 0, 0}};
    for (const auto& c : angles)
        EXPECT_EQ(IsBigArc({c[0], c[1]}, {c[2], c[3]}, 0, 0), c[4] == 1) << c[0] << "," << c[1];
}

// Positions map with the window origin and are cut toward zero, sizes are rounded; radii pass
// as each record finds them. A box (0, 0, 200, 100) meets the rays to (200, 100) and (0, 0) at
// (170, 85) and (30, 15). Angles that are not finite have no end point: the centre stands in.
TEST(EmfShapes, EachRecordMapsItsOwnValues) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Bytes arc = I32s({0, 0, 200, 100, 200, 100, 0, 0});
    // The records, what they draw, and what they draw halved (no halved run when null).
    const std::tuple<std::vector<std::pair<uint32_t, Bytes>>, const char*, const char*> cases[] = {
        {{{EMR_RECTANGLE, I32s({10, 20, 110, 70})}},
         R"(<rect x="10" y="20" width="100" height="50" rx="0" ry="0" |)",
         R"(<rect x="-5" y="0" width="50" height="25" rx="0" ry="0" |)"},
        {{{EMR_RECTANGLE, I32s({110, 70, 10, 20})}},
         R"(<rect x="110" y="70" width="-100" height="-50" rx="0" ry="0" |)",
         nullptr},
        {{{EMR_ROUNDRECT, I32s({10, 20, 110, 70, 15, -15})}},
         R"(<rect x="10" y="20" width="100" height="50" rx="7" ry="-7" |)",
         R"(<rect x="-5" y="0" width="50" height="25" rx="7" ry="-7" |)"},
        {{{EMR_ELLIPSE, I32s({0, 0, 101, 100})}}, R"(<circle cx="50" cy = "50" r="50" |)", nullptr},
        {{{EMR_ELLIPSE, I32s({0, 0, 100, 98})}},
         R"(<ellipse cx="50" cy = "49" rx = "50" ry = "49 " |)",
         R"(<circle cx="15" cy = "14" r="25" |)"},
        {{{EMR_ARC, arc}},
         R"(<path d="M170,85 a100,50 0 0,0 -140,-70" |)",
         R"(<path d="M75,32 a100,50 0 0,0 -70,-34" |)"},
        {{{EMR_CHORD, arc}}, R"(<path d="M170,85a100,50 0 0,0 -140,-70 z " |)", nullptr},
        {{{EMR_ARCTO, arc}, {EMR_LINETO, I32s({0, 0})}},
         R"(<path d="M170,85 a100,50 0 0,0 -140,-70" |<line x1="0" y1 = "0" x2 ="170" y2="85" |)"
         R"(<line x1="30" y1 = "15" x2 ="0" y2="0" |)",
         R"(<path d="M75,32 a100,50 0 0,0 -70,-34" |<line x1="0" y1 = "0" x2 ="75" y2="32" |)"
         R"(<line x1="5" y1 = "-2" x2 ="-10" y2="-10" |)"},
        {{{EMR_PIE, I32s({0, 0, 200, 100, 0, 0, 200, 100})}},
         R"(<path d="M30,15a100,50 0 1,0 140,70l-70,-35 z " |)",
         R"(<path d="M5,-2a100,50 0 1,0 70,34l-35,-17 z " |)"},
        {{{EMR_PIE, I32s({10, 10, 10, 10, 0, 0, 20, 20})}},
         R"(<path d="M10,10a0,0 0 0,0 0,0l0,0 z " |)",
         nullptr},
        {{{EMR_ANGLEARC, AngleArc(0, 90)}},
         R"(<path d="M150,100 a50,50 0 0,0 -51,-50" |<line x1="0" y1 = "0" x2 ="150" y2="100" |)",
         R"(<path d="M65,40 a50,50 0 0,0 -26,-25" |<line x1="0" y1 = "0" x2 ="65" y2="40" |)"},
        {{{EMR_ANGLEARC, AngleArc(0, -270)}},  // clockwise: sweep 1, and never large
         R"(<path d="M150,100 a50,50 0 0,1 -50,-50" |<line x1="0" y1 = "0" x2 ="150" y2="100" |)",
         nullptr},
        {{{EMR_ANGLEARC, AngleArc(90, 400, -50)}},
         R"(<path d="M100,149 a-50,-50 0 1,0 32,-11" |<line x1="0" y1 = "0" x2 ="100" y2="149" |)",
         nullptr},
        {{{EMR_ANGLEARC, AngleArc(nan, 90)}},
         R"(<path d="M100,100 a50,50 0 0,0 0,0" |<line x1="0" y1 = "0" x2 ="100" y2="100" |)",
         nullptr},
        {{{EMR_ANGLEARC, AngleArc(0, std::numeric_limits<float>::infinity())}},
         R"(<path d="M150,100 a50,50 0 1,0 -50,0" |<line x1="0" y1 = "0" x2 ="150" y2="100" |)",
         nullptr},
    };
    for (const auto& [records, drawn, halved] : cases) {
        Emf e, h = testutil::Halved().record(EMR_SETWINDOWORGEX, I32s({10, 10}));
        for (const auto& [type, payload] : records)
            e.record(type, payload), h.record(type, payload);
        EXPECT_EQ(testutil::BothOrders(e), Out(drawn));
        if (halved) EXPECT_EQ(testutil::BothOrders(h), Out(halved));
    }
}
