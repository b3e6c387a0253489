// Rectangles, ellipses, arcs, chords, pies and angle-arcs: the writer's arc output, and the
// EMF records converted end to end in both byte orders, as drawn and under a divisor of 2 with
// a window origin.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "svg/SVGWriter.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using mfb::Bytes;
using mfb::Emf;

namespace {

const QString kStyle = QStringLiteral(" stroke=\"black\" stroke-width=\"1\" fill=\"none\"/>\n");

Bytes I32s(std::initializer_list<int32_t> values) {
    Bytes b;
    for (int32_t v : values) b.i32(v);
    return b;
}

QString Rect(int x, int y, int w, int h, int rx = 0, int ry = 0) {
    return QString::asprintf(
               "<rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" rx=\"%d\" ry=\"%d\" ", x, y, w,
               h, rx, ry) +
           kStyle;
}
QString Path(const char* d, const char* end = "\" ") {
    return QStringLiteral("<path d=\"") + d + end + kStyle;
}
QString Line(int x1, int y1, int x2, int y2) {
    return QString::asprintf("<line x1=\"%d\" y1 = \"%d\" x2 =\"%d\" y2=\"%d\" ", x1, y1, x2, y2) +
           kStyle;
}

QString BodyBothOrders(const Emf& e) {
    return testutil::BodyInBothByteOrders(e.build(), e.build(true, true), 1);
}

struct Record {
    uint32_t type;
    Bytes payload;
};

// A box (0, 0, 200, 100) whose radial points (200, 100) and (0, 0) lie on the ellipse at
// (170, 85) and (30, 15).
const Bytes kArc = I32s({0, 0, 200, 100, 200, 100, 0, 0});
const Bytes kPie = I32s({0, 0, 200, 100, 0, 0, 200, 100});
Bytes AngleArc(float start, float sweep, int32_t radius = 50) {
    return I32s({100, 100, radius}).f32(start).f32(sweep);
}
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const float kInf = std::numeric_limits<float>::infinity();

}  // namespace

// Arc, chord and pie data per operation; only the arc-to draws the connecting line and moves.
TEST(ArcOutput, WriterFormatsEachOperation) {
    CMySVGWriter w;
    w.MoveTo(5, 5);
    w.DrawChord(0, 10, 10, 10, 0, 1, 0, 10, 0, {});
    w.DrawPie(0, 10, 10, 10, 0, 1, 0, 10, 0, 0, 0, {});
    w.DrawArc(10, 20, 10, 10, 0, 0, 1, 30, 20, {});
    w.DrawArcTo(0, 10, 10, 10, 0, 0, 1, 20, -5, {});
    w.DrawLineTo(1, 1, {});
    EXPECT_EQ(w.GetSVGOutput(),
              Path("M0,10a10,10 0 1,0 10,-10 z ") + Path("M0,10a10,10 0 1,0 10,-10l-10,0 z ") +
                  Path("M10,20 a10,10 0 0,1 20,0") + Path("M0,10 a10,10 0 0,1 20,-15") +
                  Line(5, 5, 0, 10) + Line(20, -5, 1, 1));
}

// Each record maps its positions and sizes (MX: divided, window origin subtracted and cut
// toward zero; mx: divided and rounded) and passes its radii as it finds them.
TEST(EmfShapes, EachRecordMapsItsOwnValues) {
    const struct {
        const char* what;
        std::vector<Record> records;
        QString drawn, halved;
    } cases[] = {
        {"rectangle",
         {{mfb::EMR_RECTANGLE, I32s({10, 20, 110, 70})}},
         Rect(10, 20, 100, 50),
         Rect(-5, 0, 50, 25)},
        {"mirrored rectangle: negative sizes",
         {{mfb::EMR_RECTANGLE, I32s({110, 70, 10, 20})}},
         Rect(110, 70, -100, -50),
         Rect(45, 25, -50, -25)},
        {"rounded rectangle: half the corner, not mapped",
         {{mfb::EMR_ROUNDRECT, I32s({10, 20, 110, 70, 15, -15})}},
         Rect(10, 20, 100, 50, 7, -7),
         Rect(-5, 0, 50, 25, 7, -7)},
        {"ellipse whose half sizes truncate alike: a circle",
         {{mfb::EMR_ELLIPSE, I32s({0, 0, 101, 100})}},
         "<circle cx=\"50\" cy = \"50\" r=\"50\" " + kStyle,
         "<circle cx=\"15\" cy = \"15\" r=\"25\" " + kStyle},
        {"ellipse that becomes a circle once mapped",
         {{mfb::EMR_ELLIPSE, I32s({0, 0, 100, 98})}},
         "<ellipse cx=\"50\" cy = \"49\" rx = \"50\" ry = \"49 \" " + kStyle,
         "<circle cx=\"15\" cy = \"14\" r=\"25\" " + kStyle},
        {"empty ellipse",
         {{mfb::EMR_ELLIPSE, I32s({10, 10, 10, 10})}},
         "<circle cx=\"10\" cy = \"10\" r=\"0\" " + kStyle,
         "<circle cx=\"-5\" cy = \"-5\" r=\"0\" " + kStyle},
        {"arc: end points on the logical ellipse, mapped; logical radii; flags 0",
         {{mfb::EMR_ARC, kArc}},
         Path("M170,85 a100,50 0 0,0 -140,-70"),
         Path("M75,32 a100,50 0 0,0 -70,-34")},
        {"chord",
         {{mfb::EMR_CHORD, kArc}},
         Path("M170,85a100,50 0 0,0 -140,-70 z "),
         Path("M75,32a100,50 0 0,0 -70,-34 z ")},
        {"arc-to: the line from the current position, which moves to the end",
         {{mfb::EMR_ARCTO, kArc}, {mfb::EMR_LINETO, I32s({0, 0})}},
         Path("M170,85 a100,50 0 0,0 -140,-70") + Line(0, 0, 170, 85) + Line(30, 15, 0, 0),
         Path("M75,32 a100,50 0 0,0 -70,-34") + Line(0, 0, 75, 32) + Line(5, -2, -10, -10)},
        {"pie: end points on the mapped ellipse, the large-arc flag from their angles",
         {{mfb::EMR_PIE, kPie}},
         Path("M30,15a100,50 0 1,0 140,70l-70,-35 z "),
         Path("M5,-2a100,50 0 1,0 70,34l-35,-17 z ")},
        {"angle-arc: end points from the logical centre, mapped; the radius is not",
         {{mfb::EMR_ANGLEARC, AngleArc(0, 90)}},
         Path("M150,100 a50,50 0 0,0 -51,-50") + Line(0, 0, 150, 100),
         Path("M65,40 a50,50 0 0,0 -26,-25") + Line(0, 0, 65, 40)},
        {"angle-arc turning clockwise: sweep 1, and never large",
         {{mfb::EMR_ANGLEARC, AngleArc(0, -270)}},
         Path("M150,100 a50,50 0 0,1 -50,-50") + Line(0, 0, 150, 100),
         Path("M65,40 a50,50 0 0,1 -25,-25") + Line(0, 0, 65, 40)},
        {"angle-arc over half a turn, negative radius",
         {{mfb::EMR_ANGLEARC, AngleArc(90, 400, -50)}},
         Path("M100,149 a-50,-50 0 1,0 32,-11") + Line(0, 0, 100, 149),
         Path("M40,64 a-50,-50 0 1,0 16,-5") + Line(0, 0, 40, 64)},
    };
    for (const auto& c : cases) {
        Emf drawn, halved;
        halved.record(mfb::EMR_SETMAPMODE, I32s({8}))
            .record(mfb::EMR_SETWINDOWEXTEX, I32s({1000, 1000}))
            .record(mfb::EMR_SETVIEWPORTEXTEX, I32s({500, 500}))
            .record(mfb::EMR_SETWINDOWORGEX, I32s({10, 10}));
        for (const auto& r : c.records) {
            drawn.record(r.type, r.payload);
            halved.record(r.type, r.payload);
        }
        EXPECT_EQ(BodyBothOrders(drawn), c.drawn) << c.what;
        EXPECT_EQ(BodyBothOrders(halved), c.halved) << c.what;
    }
}

// Angles that are not finite have no end point: the centre stands for it. Radial points at
// the centre or straight above it, and empty boxes, still give points of the ellipse.
TEST(EmfShapes, DegenerateArcsStayDefined) {
    const std::pair<Record, QString> cases[] = {
        {{mfb::EMR_ANGLEARC, AngleArc(kNaN, 90)}, Path("M100,100 a50,50 0 0,0 0,0")},
        {{mfb::EMR_ANGLEARC, AngleArc(0, kInf)}, Path("M150,100 a50,50 0 1,0 -50,0")},
        {{mfb::EMR_ANGLEARC, AngleArc(3e38f, 3e38f)}, Path("M136,133 a50,50 0 1,0 -32,16")},
        {{mfb::EMR_ARC, I32s({0, 0, 200, 100, 100, 50, 100, -7})},
         Path("M200,50 a100,50 0 0,0 -100,-50")},
        {{mfb::EMR_PIE, I32s({10, 10, 10, 10, 0, 0, 20, 20})}, Path("M10,10a0,0 0 0,0 0,0l0,0 z ")},
    };
    for (const auto& [record, expected] : cases) {
        Emf e;
        e.record(record.type, record.payload);
        const QString body = BodyBothOrders(e);
        EXPECT_TRUE(body.startsWith(expected)) << body.toStdString();
    }
}

TEST(WmfShapes, ArcDrawsNothing) {
    const auto r = testutil::Convert(
        mfb::Wmf()
            .record(mfb::META_ARC,
                    Bytes().i16(0).i16(0).i16(10).i16(10).i16(0).i16(0).i16(10).i16(10))
            .build());
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(testutil::Body(r.svg), QString());
}
