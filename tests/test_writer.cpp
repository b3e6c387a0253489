// Writer output for shapes, paths, curves, poly-draw lists and object records.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "svg/SVGWriter.h"

class WriterTestPeer {
  public:
    static void SelectClip(CMySVGWriter& w) { w.m_clipSelected = true; }
};

namespace {

struct Case {
    const char* name;
    std::function<void(CMySVGWriter&)> draw;
    std::string expected;
};

const std::string kDefault = R"( stroke="black" stroke-width="1" fill="none")";
// The style manager's pen and brush texts while nothing is selected.
const std::string kPen = R"(stroke="none" stroke-width="1"  fill="none" )";
const std::string kBrush = R"(" fill="white" stroke="none" stroke-width="0" )";
const QString kRed = QStringLiteral(" stroke=\"red\"");
// The 999 point lies beyond every count used with this list and must never be read.
const tagPOINT kP[] = {{0, 0}, {5, 0}, {5, 5}, {1, 2}, {3, 4}, {999, 999}};

std::string Out(CMySVGWriter& w) {
    return w.GetSVGOutput().toStdString();
}

// One line of output.
std::string L(const std::string& text) {
    return text + "\n";
}

// The line that DrawLineTo(0, 0, kRed) writes from (x, y): shows the current position.
std::string LineFrom(int x, int y) {
    return L("<line x1=\"" + std::to_string(x) + "\" y1 = \"" + std::to_string(y) +
             R"(" x2 ="0" y2="0"  stroke="red"/>)");
}

void RunCases(const std::vector<Case>& cases) {
    for (const auto& c : cases) {
        CMySVGWriter w;
        c.draw(w);
        EXPECT_EQ(Out(w), c.expected) << c.name;
    }
}

}  // namespace

TEST(WriterShapes, Elements) {
    const unsigned short counts[] = {3, 3};
    const tagPOINT tri[] = {{0, 0}, {10, 0}, {0, 10}, {20, 20}, {30, 20}, {20, 30}};
    RunCases({
        {"line", [](CMySVGWriter& w) { w.DrawLine(10, 20, 30, 40, QString()); },
         L(R"(<line x1="10" y1 = "20" x2 ="30" y2="40" )" + kDefault + "/>")},
        {"line-to moves",
         [](CMySVGWriter& w) {
             w.MoveTo(3, 4);
             w.DrawLineTo(-1, 5, kRed);
             w.DrawLineTo(0, 0, kRed);
         },
         L(R"(<line x1="3" y1 = "4" x2 ="-1" y2="5"  stroke="red"/>)") + LineFrom(-1, 5)},
        {"polygon", [](CMySVGWriter& w) { w.DrawPolyLine(kP, 2, true, false, kRed); },
         L("<polygon points=\"0,0 5,0 \n\"  stroke=\"red\"/>")},
        {"polyline: the pen style, not the argument",
         [](CMySVGWriter& w) { w.DrawPolyLine(kP + 3, 1, false, false, kRed); },
         L("<polyline points=\"1,2 \n\" " + kPen + "/>")},
        {"poly-line-to",
         [](CMySVGWriter& w) {
             const tagPOINTS p[] = {{5, 5}, {9, -32768}};
             w.DrawPolyLine(p, 2, false, true, kRed);
             w.DrawLineTo(0, 0, kRed);
         },
         L("<polyline points=\"5,5 9,-32768 \n\" " + kPen + "/>") +
             L(R"(<line x1="0" y1 = "0" x2 ="5" y2="5" )" + kDefault + "/>") + LineFrom(9, -32768)},
        {"poly-polygon", [&](CMySVGWriter& w) { w.DrawPolyPolygon(tri, counts, 2, kRed); },
         L(R"(<path d=" M0,0  L10,0  L0,10  Z M20,20  L30,20  L20,30  Z" fill-rule="evenodd")"
           R"( stroke="red"/>)")},
        {"poly-polygon: a style without leading space gets one",
         [&](CMySVGWriter& w) { w.DrawPolyPolygon(tri, counts, 1, "fill=\"red\""); },
         L(R"(<path d=" M0,0  L10,0  L0,10  Z" fill-rule="evenodd" fill="red"/>)")},
        {"circle and ellipse",
         [](CMySVGWriter& w) {
             w.DrawCircle(5, -6, 7, kRed);
             w.DrawEllipse(5, 6, 7, 8, kRed);
         },
         L(R"(<circle cx="5" cy = "-6" r="7"  stroke="red"/>)") +
             L(R"(<ellipse cx="5" cy = "6" rx = "7" ry = "8 "  stroke="red"/>)")},
    });
}

TEST(WriterShapes, RectTakesTheClipOnlyWhileAClipPathIsSelected) {
    const QString red = QStringLiteral(" stroke=\"red\" ");
    CMySVGWriter w;
    w.StyleManager().ExtSetClipRgn(QStringLiteral("ClPath1"));
    w.DrawRect(0, 0, 5, 5, red, 1, 2);
    WriterTestPeer::SelectClip(w);
    w.DrawRect(0, 0, 5, 5, red, 1, 2);
    w.DrawRect(0, 0, 5, 5, QStringLiteral(" clip-path=\"url(#X)\" "), 1, 2);
    w.StartPath();  // drops the clip
    w.DrawRect(0, 0, 5, 5, red, 1, 2);
    const std::string r = R"(<rect x="0" y="0" width="5" height="5" rx="1" ry="2" )";
    EXPECT_EQ(Out(w), L(r + R"( stroke="red" />)") +
                          L(r + R"x( stroke="red" clip-path="url(#ClPath1)"/>)x") +
                          L(r + R"x( clip-path="url(#X)" />)x") + L(r + R"( stroke="red" />)"));
}

TEST(WriterPaths, BracketsAndCurves) {
    RunCases({
        {"fill a bracket, then fill again with nothing collected",
         [](CMySVGWriter& w) {
             w.StartPath();
             w.DrawPolyLine(kP, 3, true, false, kRed);
             w.EndPath();
             w.FillPath();
             w.FillPath();
         },
         L("\n<path d = \" M0,0  L5,0  L5,5  Z" + kBrush + "/>") +
             L("\n<path d = \"" + kBrush + "/>")},
        {"stroke with the default pen: one space after the quote",
         [](CMySVGWriter& w) {
             w.AddToPath(QStringLiteral("M1,1"));
             w.StrokePath();
         },
         L("\n<path d = \"M1,1\" " + kPen + "/>")},
        {"stroke with a record pen",
         [](CMySVGWriter& w) {
             w.CreatePen(1, 0x200, 2, 0xFF, nullptr, 0);
             w.SelectObject(1);
             w.AddToPath(QStringLiteral("M1,1"));
             w.StrokePath();
         },
         L("\n<path d = \"M1,1\" stroke=\"#ff0000\" stroke-width=\"2\" \n "
           "stroke-linecap = \"butt\" stroke-linejoin = \"round\"  fill=\"none\" />")},
        {"data outlives its bracket until consumed; abort drops it",
         [](CMySVGWriter& w) {
             w.StartPath();
             w.DrawPolyLine(kP, 1, false, true, kRed);
             w.EndPath();
             w.StartPath();
             w.DrawPolyLine(kP + 1, 1, true, false, kRed);
             w.FillPath();
             w.DrawPolyLine(kP, 2, true, false, kRed);
             w.AbortPath();
             w.FillPath();
         },
         L("\n<path d = \" M0,0  Z M5,0  Z" + kBrush + "/>") + L("\n<path d = \"" + kBrush + "/>")},
        {"poly-Bézier", [](CMySVGWriter& w) { w.DrawPolyBeziers(kP, 4, false, kRed); },
         L(R"(<path d="M0,0 C5,0 5,5 1,2"  stroke="red"/>)")},
        {"poly-Bézier-to from the current position",
         [](CMySVGWriter& w) {
             const tagPOINTS p[] = {{4, 5}, {6, 7}, {8, -9}};
             w.MoveTo(2, 3);
             w.DrawPolyBeziers(p, 3, true, QString());
             w.DrawLineTo(0, 0, kRed);
         },
         L(R"(<path d="M2,3 C4,5 6,7 8,-9" )" + kDefault + "/>") + LineFrom(8, -9)},
        {"curves in a bracket and close figure",
         [](CMySVGWriter& w) {
             const tagPOINT p[] = {{3, 7}, {1, 2}, {3, 4}, {5, 6}};
             w.StartPath();
             w.DrawPolyBeziers(p, 4, false, kRed);
             w.DrawPolyBeziers(p + 1, 3, true, kRed);  // the figure still starts at (3, 7)
             w.CloseFigure();
             w.CloseFigure();
             w.StrokePath();
         },
         L("\n<path d = \"M3,7 C1,2 3,4 5,6M0,0 C1,2 3,4 5,6 L3,7  L0,7 \" " + kPen + "/>")},
    });
    CMySVGWriter w;
    const tagPOINT six[] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}, {9, 10}, {11, 12}};
    EXPECT_EQ(w.GetBzrCurveData(six, 6).toStdString(), "C1,2 3,4 5,6C7,8 9,10 11,12");
}

TEST(WriterPaths, PolyDrawTypes) {
    const std::vector<std::pair<std::vector<unsigned char>, std::string>> cases = {
        {{6, 2, 3}, " M0,0 L5,0 L5,5 Z "},
        {{6, 4, 0, 0}, " M0,0 C5,0 5,5 1,2"},  // the types after a curve type are not read
        {{6, 5, 9, 9, 2}, " M0,0 C5,0 5,5 1,2 Z  L3,4"},
        {{7, 0, 1, 8, 6}, " M3,4"},    // move-to with close, and unknown types, add nothing
        {{6, 2, 4, 4}, " M0,0 L5,0"},  // a curve type short of its two points ends the walk
    };
    for (const auto& c : cases) {
        CMySVGWriter w;
        w.DrawMixedPoly(kP, c.first.data(), static_cast<unsigned int>(c.first.size()), kRed);
        EXPECT_EQ(Out(w), "<path d=\"" + c.second + "\"   stroke=\"red\"/>") << c.second;
    }
}

TEST(WriterPaths, EmptyAndShortLists) {
    RunCases({
        {"no points: elements without a connecting line, no move, no figure start",
         [](CMySVGWriter& w) {
             w.MoveTo(7, 8);
             w.DrawPolyLine(kP, 0, false, true, kRed);
             w.DrawPolyLine(static_cast<const tagPOINTS*>(nullptr), 5, true, true, kRed);
             w.DrawPolyBeziers(kP, 0, true, kRed);
             w.DrawPolyBeziers(kP, 0, false, kRed);
             w.DrawLineTo(0, 0, kRed);
             w.CloseFigure();
             w.StrokePath();
         },
         L("<polyline points=\"\n\" " + kPen + "/>") +
             L("<polygon points=\"\n\"  stroke=\"red\"/>") + LineFrom(7, 8) +
             L("\n<path d = \" L0,0 \" " + kPen + "/>")},
        {"only whole curve groups", [](CMySVGWriter& w) { w.DrawPolyBeziers(kP, 3, false, kRed); },
         L(R"(<path d="M0,0 "  stroke="red"/>)")},
        {"poly-polygon with an empty polygon",
         [](CMySVGWriter& w) {
             const unsigned short counts[] = {0, 2};
             w.DrawPolyPolygon(kP, counts, 2, kRed);
         },
         L(R"(<path d=" M0,0  L5,0  Z" fill-rule="evenodd" stroke="red"/>)")},
    });
    CMySVGWriter w;
    EXPECT_EQ(w.GetPathString(kP, 0).toStdString(), "");
    EXPECT_EQ(w.GetBzrCurveData(kP, 5).toStdString(), "C0,0 5,0 5,5");
}

// Selection refreshes the writer's current style; deletion leaves it as it was.
TEST(WriterObjects, HatchedBrushWritesItsPatternOnceAtCreation) {
    CMySVGWriter w;
    w.CreateBrushI(5, 2, 3, 0x0000FF);
    const std::string pattern = w.StyleManager().GetPatternDef(5).toStdString();
    ASSERT_FALSE(pattern.empty());
    EXPECT_EQ(Out(w), pattern);
    w.SelectObject(5);
    w.DeleteObject(5);
    w.DrawRect(0, 0, 1, 1, QString(), 0, 0);
    EXPECT_EQ(Out(w).find(pattern, 1), std::string::npos);
    EXPECT_NE(Out(w).find("fill=\"url(#BRUSH_1)\"", pattern.size()), std::string::npos);
}

TEST(WriterObjects, GeometricPenWidthGoesThroughTheWorldTransform) {
    struct {
        unsigned int style, width;
        float eM11, eDx;
        const char* expected;
    } const cases[] = {
        {0x10000, 3, 1.5f, 0, "4"},            // 4.5 cut toward zero
        {0x10000, 2, 2.0f, 10, "14"},          // translation included
        {0x10000, 3, -1.0f, 0, "4294967293"},  // mirrored: -3 as an unsigned width
        {0x00000, 3, 1.5f, 10, "3"},           // cosmetic pens keep their width
    };
    for (const auto& c : cases) {
        CMySVGWriter w;
        w.SetWorldTransform(c.eM11, 0, 0, 1, c.eDx, 0);
        w.CreatePen(1, c.style, c.width, 0, nullptr, 0);
        w.SelectObject(1);
        const QString width = QStringLiteral("stroke-width=\"%1\"").arg(c.expected);
        EXPECT_TRUE(w.StyleManager().GetCurrPenStyle().contains(width)) << c.expected;
    }
}
