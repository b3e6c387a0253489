// The writer's shape, path, Bézier, poly-draw and object operations, on a bare CMySVGWriter.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "svg/SVGWriter.h"

class WriterTestPeer {
  public:
    static void SetClipSelected(CMySVGWriter& w, bool on) { w.m_clipSelected = on; }
};

namespace {

// The writer's own default style, used when an operation gets an empty style.
const std::string kDefaultStyle = R"( stroke="black" stroke-width="1" fill="none")";
// The style manager's pen and brush texts before anything is selected.
const std::string kDefaultPen = R"(stroke="none" stroke-width="1"  fill="none" )";
const std::string kDefaultBrush = R"(" fill="white" stroke="none" stroke-width="0" )";
const QString kRed = QStringLiteral(" stroke=\"red\"");

std::string Out(CMySVGWriter& w) {
    return w.GetSVGOutput().toStdString();
}

std::vector<tagPOINT> Pts(std::initializer_list<tagPOINT> p) {
    return std::vector<tagPOINT>(p);
}

struct OutputCase {
    const char* name;
    std::function<void(CMySVGWriter&)> draw;
    std::string expected;
};

void RunCases(const std::vector<OutputCase>& cases) {
    for (const auto& c : cases) {
        CMySVGWriter w;
        c.draw(w);
        EXPECT_EQ(Out(w), c.expected) << c.name;
    }
}

// The current position as the next line-to sees it.
std::string PositionAfter(CMySVGWriter& w) {
    const auto before = w.GetSVGOutput().size();
    w.DrawLineTo(0, 0, kRed);
    const std::string line = w.GetSVGOutput().mid(before).toStdString();
    const auto end = line.find(" x2");
    return line.substr(0, end);
}

}  // namespace

TEST(WriterShapes, ElementTexts) {
    const auto tri = Pts({{0, 0}, {10, 0}, {0, 10}, {20, 20}, {30, 20}, {20, 30}});
    const unsigned short counts[] = {3, 3};
    RunCases({
        {"line, default style", [](CMySVGWriter& w) { w.DrawLine(10, 20, 30, 40, QString()); },
         R"(<line x1="10" y1 = "20" x2 ="30" y2="40" )" + kDefaultStyle + "/>\n"},
        {"line, given style", [](CMySVGWriter& w) { w.DrawLine(0, 0, 5, 5, kRed); },
         R"(<line x1="0" y1 = "0" x2 ="5" y2="5"  stroke="red"/>)"
         "\n"},
        {"polygon, given style, negative point",
         [](CMySVGWriter& w) {
             const tagPOINT p[] = {{-3, -4}, {7, 8}};
             w.DrawPolyLine(p, 2, true, false, kRed);
         },
         "<polygon points=\"-3,-4 7,8 \n\"  stroke=\"red\"/>\n"},
        {"polyline takes the pen style, not the argument",
         [](CMySVGWriter& w) {
             const tagPOINT p[] = {{1, 2}};
             w.DrawPolyLine(p, 1, false, false, kRed);
         },
         "<polyline points=\"1,2 \n\" " + kDefaultPen + "/>\n"},
        {"16-bit points keep their extremes",
         [](CMySVGWriter& w) {
             const tagPOINTS p[] = {{-32768, 32767}};
             w.DrawPolyLine(p, 1, true, false, QString());
         },
         "<polygon points=\"-32768,32767 \n\" " + kDefaultStyle + "/>\n"},
        {"poly-polygon", [&](CMySVGWriter& w) { w.DrawPolyPolygon(tri.data(), counts, 2, kRed); },
         R"(<path d=" M0,0  L10,0  L0,10  Z M20,20  L30,20  L20,30  Z" fill-rule="evenodd" stroke="red"/>)"
         "\n"},
        {"poly-polygon, style without leading space gets one",
         [&](CMySVGWriter& w) { w.DrawPolyPolygon(tri.data(), counts, 1, "stroke=\"red\""); },
         R"(<path d=" M0,0  L10,0  L0,10  Z" fill-rule="evenodd" stroke="red"/>)"
         "\n"},
        {"rect", [](CMySVGWriter& w) { w.DrawRect(1, 2, 3, 4, kRed, 5, 6); },
         R"(<rect x="1" y="2" width="3" height="4" rx="5" ry="6"  stroke="red"/>)"
         "\n"},
        {"pattern blit is a rect in the current style",
         [](CMySVGWriter& w) { w.PatBlt(1, 2, 3, 4); },
         R"(<rect x="1" y="2" width="3" height="4" rx="0" ry="0" )" + kDefaultStyle + "/>\n"},
        {"circle", [](CMySVGWriter& w) { w.DrawCircle(5, -6, 7, kRed); },
         R"(<circle cx="5" cy = "-6" r="7"  stroke="red"/>)"
         "\n"},
        {"ellipse", [](CMySVGWriter& w) { w.DrawEllipse(5, 6, 7, 8, QString()); },
         R"(<ellipse cx="5" cy = "6" rx = "7" ry = "8 " )" + kDefaultStyle + "/>\n"},
    });
}

TEST(WriterShapes, PolyLineToDrawsTheConnectingLineAndMoves) {
    CMySVGWriter w;
    const tagPOINT p[] = {{5, 5}, {9, 1}};
    w.DrawPolyLine(p, 2, false, true, kRed);
    EXPECT_EQ(Out(w), "<polyline points=\"5,5 9,1 \n\" " + kDefaultPen + "/>\n" +
                          R"(<line x1="0" y1 = "0" x2 ="5" y2="5" )" + kDefaultStyle + "/>\n");
    EXPECT_EQ(PositionAfter(w), R"(<line x1="9" y1 = "1")");
}

TEST(WriterShapes, LineToAndMoveToSetThePosition) {
    CMySVGWriter w;
    w.MoveTo(3, 4);
    w.DrawLine(100, 100, 200, 200, kRed);  // a plain line does not move
    EXPECT_EQ(PositionAfter(w), R"(<line x1="3" y1 = "4")");
    EXPECT_EQ(PositionAfter(w), R"(<line x1="0" y1 = "0")");
}

TEST(WriterShapes, RectGetsTheClipOnlyWhenAClipPathIsSelected) {
    const QString red = QStringLiteral(" stroke=\"red\" ");
    CMySVGWriter w;
    w.StyleManager().ExtSetClipRgn(QStringLiteral("ClPath1"));
    w.DrawRect(0, 0, 5, 5, red, 0, 0);
    WriterTestPeer::SetClipSelected(w, true);
    w.DrawRect(0, 0, 5, 5, red, 0, 0);
    w.DrawRect(0, 0, 5, 5, QStringLiteral(" clip-path=\"url(#X)\" "), 0, 0);
    w.StartPath();  // drops the clip
    w.DrawRect(0, 0, 5, 5, red, 0, 0);
    const std::string rect = R"(<rect x="0" y="0" width="5" height="5" rx="0" ry="0" )";
    EXPECT_EQ(Out(w), rect +
                          R"( stroke="red" />)"
                          "\n" +
                          rect +
                          R"x( stroke="red" clip-path="url(#ClPath1)"/>)x"
                          "\n" +
                          rect +
                          R"x( clip-path="url(#X)" />)x"
                          "\n" +
                          rect +
                          R"( stroke="red" />)"
                          "\n");
}

TEST(WriterPaths, BracketCollectsPolygonsForFillAndStroke) {
    const tagPOINT p[] = {{0, 0}, {4, 0}, {4, 4}};
    const std::string data = R"(" M0,0  L4,0  L4,4  Z)";
    CMySVGWriter w;
    w.StartPath();
    w.DrawPolyLine(p, 3, true, false, QString());
    w.EndPath();
    EXPECT_EQ(Out(w), "");
    w.FillPath();
    w.FillPath();  // the data is consumed by the first
    EXPECT_EQ(Out(w), "\n<path d = " + data + kDefaultBrush + "/>\n" + "\n<path d = \"" +
                          kDefaultBrush + "/>\n");

    // The default pen text has no leading space: one is put after the closing quote.
    CMySVGWriter s;
    s.StartPath();
    s.DrawPolyLine(p, 3, true, false, QString());
    s.EndPath();
    s.StrokePath();
    EXPECT_EQ(Out(s), "\n<path d = " + data + "\" " + kDefaultPen + "/>\n");
}

TEST(WriterPaths, StrokeWithARecordPenUsesItsOwnSpace) {
    CMySVGWriter w;
    w.CreatePen(1, 0, 2, 0x0000FF, nullptr, 0);
    w.SelectObject(1);
    w.AddToPath(QStringLiteral("M1,1"));
    w.StrokePath();
    EXPECT_EQ(Out(w),
              "\n<path d = \"M1,1\" stroke=\"#ff0000\" stroke-width=\"2\" \n "
              "stroke-linecap = \"round\" stroke-linejoin = \"round\"  fill=\"none\" />\n");
}

TEST(WriterPaths, DataLifetime) {
    const tagPOINT p[] = {{1, 1}, {2, 2}};
    CMySVGWriter w;
    w.StartPath();
    w.DrawPolyLine(p, 2, false, true, QString());  // no element, no move
    w.EndPath();
    w.DrawPolyLine(p, 1, true, false, kRed);  // outside the bracket again: an element
    EXPECT_EQ(Out(w), "<polygon points=\"1,1 \n\"  stroke=\"red\"/>\n");
    EXPECT_EQ(PositionAfter(w), R"(<line x1="0" y1 = "0")");
    // Unconsumed data is carried into the next bracket; AbortPath drops it.
    w.StartPath();
    EXPECT_EQ(w.AddToPath(QStringLiteral("+")).toStdString(), " M1,1  L2,2  Z+");
    w.AbortPath();
    EXPECT_EQ(w.AddToPath(QString()).toStdString(), "");
}

TEST(WriterPaths, ElementsOtherThanPolyLinesIgnoreTheBracket) {
    const tagPOINT p[] = {{0, 0}, {1, 1}, {2, 2}};
    const unsigned short count = 3;
    const unsigned char types[] = {6, 2, 2};
    CMySVGWriter w;
    w.StartPath();
    w.DrawPolyPolygon(p, &count, 1, kRed);
    w.DrawRect(0, 0, 1, 1, kRed, 0, 0);
    w.DrawMixedPoly(p, types, 3, kRed);
    EXPECT_NE(Out(w).find("<path d=\" M0,0"), std::string::npos);
    EXPECT_NE(Out(w).find("<rect"), std::string::npos);
    EXPECT_NE(Out(w).find("<path d=\" M0,0 L1,1 L2,2\""), std::string::npos);
    EXPECT_EQ(w.AddToPath(QString()).toStdString(), "");
}

TEST(WriterBeziers, Curves) {
    RunCases({
        {"poly-Bézier",
         [](CMySVGWriter& w) {
             const tagPOINT p[] = {{0, 0}, {1, 2}, {3, 4}, {5, 6}};
             w.DrawPolyBeziers(p, 4, false, kRed);
         },
         R"(<path d="M0,0 C1,2 3,4 5,6"  stroke="red"/>)"
         "\n"},
        {"poly-Bézier-to from the current position, 16-bit",
         [](CMySVGWriter& w) {
             const tagPOINTS p[] = {{4, 5}, {6, 7}, {-8, 9}};
             w.MoveTo(2, 3);
             w.DrawPolyBeziers(p, 3, true, QString());
             w.DrawLineTo(0, 0, kRed);
         },
         R"(<path d="M2,3 C4,5 6,7 -8,9" )" + kDefaultStyle + "/>\n" +
             R"(<line x1="-8" y1 = "9" x2 ="0" y2="0"  stroke="red"/>)"
             "\n"},
        {"inside a bracket",
         [](CMySVGWriter& w) {
             const tagPOINT p[] = {{0, 0}, {1, 2}, {3, 4}, {5, 6}};
             w.StartPath();
             w.DrawPolyBeziers(p, 4, false, kRed);
             w.DrawPolyBeziers(p, 3, true, kRed);
             w.EndPath();
             w.FillPath();
         },
         "\n<path d = \"M0,0 C1,2 3,4 5,6M0,0 C0,0 1,2 3,4" + kDefaultBrush + "/>\n"},
    });
    CMySVGWriter w;
    const tagPOINT six[] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}, {9, 10}, {11, 12}};
    EXPECT_EQ(w.GetBzrCurveData(six, 6).toStdString(), "C1,2 3,4 5,6C7,8 9,10 11,12");
}

TEST(WriterBeziers, CloseFigureReturnsToTheFirstCurveStart) {
    CMySVGWriter w;
    const tagPOINT p[] = {{3, 7}, {1, 1}, {2, 2}, {4, 4}};
    w.StartPath();
    w.DrawPolyBeziers(p, 4, false, QString());
    w.DrawPolyBeziers(p + 1, 3, true, QString());  // the figure start stays at (3, 7)
    w.CloseFigure();
    w.CloseFigure();
    EXPECT_EQ(w.AddToPath(QString()).toStdString(),
              "M3,7 C1,1 2,2 4,4M0,0 C1,1 2,2 4,4 L3,7  L0,7 ");
}

TEST(WriterMixedPoly, PointTypes) {
    const tagPOINT p[] = {{0, 0}, {5, 0}, {5, 5}, {1, 2}, {3, 4}, {6, 7}};
    struct Case {
        std::vector<unsigned char> types;
        std::string data;
    };
    const std::vector<Case> cases = {
        {{6, 2, 3}, " M0,0 L5,0 L5,5 Z "},
        {{6, 4, 0, 0}, " M0,0 C5,0 5,5 1,2"},  // the types after a curve are not read
        {{6, 5, 9, 9, 2}, " M0,0 C5,0 5,5 1,2 Z  L3,4"},
        {{7, 0, 1, 8, 255, 6}, " M6,7"},  // unknown types add nothing
    };
    for (const auto& c : cases) {
        CMySVGWriter w;
        w.DrawMixedPoly(p, c.types.data(), static_cast<unsigned int>(c.types.size()), kRed);
        EXPECT_EQ(Out(w), "<path d=\"" + c.data + "\"   stroke=\"red\"/>") << c.data;
    }
    CMySVGWriter w;
    const tagPOINTS s[] = {{-1, -2}};
    const unsigned char move = 6;
    w.DrawMixedPoly(s, &move, 1, QString());
    EXPECT_EQ(Out(w), "<path d=\" M-1,-2\"  " + kDefaultStyle + "/>");
}

// Short and empty lists: nothing past the count is read (the 999 sentinels), and operations
// that need a first or last point do nothing with none.
TEST(WriterShortLists, NothingBeyondTheCount) {
    const tagPOINT p[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {999, 999}, {999, 999}};
    const unsigned char curveAtEnd[] = {6, 2, 4, 4, 4};
    RunCases({
        {"polygon of no points", [&](CMySVGWriter& w) { w.DrawPolyLine(p, 0, true, false, kRed); },
         "<polygon points=\"\n\"  stroke=\"red\"/>\n"},
        {"poly-line-to of no points: no connecting line",
         [&](CMySVGWriter& w) { w.DrawPolyLine(p, 0, false, true, kRed); },
         "<polyline points=\"\n\" " + kDefaultPen + "/>\n"},
        {"null point list",
         [](CMySVGWriter& w) {
             w.DrawPolyLine(static_cast<const tagPOINTS*>(nullptr), 5, true, true, kRed);
         },
         "<polygon points=\"\n\"  stroke=\"red\"/>\n"},
        {"poly-Bézier of no points draws nothing",
         [&](CMySVGWriter& w) {
             w.DrawPolyBeziers(p, 0, false, kRed);
             w.DrawPolyBeziers(p, 0, true, kRed);
         },
         ""},
        {"incomplete curve groups are dropped",
         [&](CMySVGWriter& w) { w.DrawPolyBeziers(p, 3, false, kRed); },
         R"(<path d="M1,1 "  stroke="red"/>)"
         "\n"},
        {"curve type without its two further points ends the walk",
         [&](CMySVGWriter& w) { w.DrawMixedPoly(p, curveAtEnd, 4, kRed); },
         R"(<path d=" M1,1 L2,2"   stroke="red"/>)"},
        {"poly-polygon with an empty polygon",
         [&](CMySVGWriter& w) {
             const unsigned short counts[] = {0, 2};
             w.DrawPolyPolygon(p, counts, 2, kRed);
         },
         R"(<path d=" M1,1  L2,2  Z" fill-rule="evenodd" stroke="red"/>)"
         "\n"},
    });

    CMySVGWriter w;
    EXPECT_EQ(w.GetPathString(p, 0).toStdString(), "");
    EXPECT_EQ(w.GetPointsString(p, 0).toStdString(), "\n");
    EXPECT_EQ(w.GetBzrCurveData(p, 5).toStdString(), "C1,1 2,2 3,3");
    EXPECT_EQ(w.GetBzrCurveData(p, 2).toStdString(), "");
    w.MoveTo(7, 8);
    w.DrawPolyLine(p, 0, false, true, kRed);
    w.DrawPolyBeziers(p, 0, true, kRed);
    EXPECT_EQ(PositionAfter(w), R"(<line x1="7" y1 = "8")");
    w.CloseFigure();  // no curve set the figure start
    EXPECT_EQ(w.AddToPath(QString()).toStdString(), " L0,0 ");
}

TEST(WriterObjects, SelectionRefreshesTheStyleAndDeletionKeepsIt) {
    CMySVGWriter w;
    w.CreatePen(1, 1, 2, 0x00FF0000, nullptr, 0);
    w.CreateBrushI(2, 0, 0, 0x000000FF);
    EXPECT_EQ(Out(w), "");  // a solid brush writes nothing
    w.SelectObject(1);
    w.SelectObject(2);
    w.DeleteObject(1);
    w.DeleteObject(2);
    w.DrawLine(0, 0, 1, 1, QString());
    EXPECT_EQ(Out(w), R"(<line x1="0" y1 = "0" x2 ="1" y2="1" )"
                      " stroke=\"#0000ff\" stroke-width=\"2\" \n"
                      " stroke-linecap = \"round\" stroke-linejoin = \"round\" "
                      "stroke-dasharray=\" 8 , 4\"   fill=\"#ff0000\"\n/>\n");
}

TEST(WriterObjects, HatchedBrushWritesItsPatternOnceAtCreation) {
    CMySVGWriter w;
    w.CreateBrushI(5, 2, 3, 0x0000FF);
    const std::string pattern = w.StyleManager().GetPatternDef(5).toStdString();
    ASSERT_FALSE(pattern.empty());
    EXPECT_EQ(Out(w), pattern);
    w.SelectObject(5);
    w.DrawRect(0, 0, 1, 1, QString(), 0, 0);
    const std::string out = Out(w);
    EXPECT_EQ(out.find(pattern, 1), std::string::npos);
    EXPECT_NE(out.find("url(#BRUSH_", pattern.size()), std::string::npos);
}

TEST(WriterObjects, GeometricPenWidthGoesThroughTheWorldTransform) {
    struct Case {
        unsigned int style;
        unsigned int width;
        float eM11;
        float eDx;
        const char* strokeWidth;
    };
    const Case cases[] = {
        {0x00010000, 3, 1.5f, 0, "stroke-width=\"4\""},    // 4.5 cut toward zero
        {0x00010000, 2, 2.0f, 10, "stroke-width=\"14\""},  // translation included
        {0x00010000, 3, -1.0f, 0, "stroke-width=\"4294967293\""},
        {0x00000000, 3, 1.5f, 10, "stroke-width=\"3\""},  // cosmetic pens keep their width
    };
    for (const auto& c : cases) {
        CMySVGWriter w;
        w.SetWorldTransform(c.eM11, 0, 0, 1, c.eDx, 0);
        w.CreatePen(1, c.style, c.width, 0, nullptr, 0);
        w.SelectObject(1);
        EXPECT_TRUE(w.StyleManager().GetCurrPenStyle().contains(QLatin1String(c.strokeWidth)))
            << c.strokeWidth;
    }
}
