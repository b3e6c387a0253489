// Writer output for shapes, paths, curves, poly-draw lists and object records.

#include <cmath>
#include <iterator>

#include <QTextStream>

#include "tests/TestUtil.h"

namespace {

using namespace testutil;
const QString kPen = kNoPen;
// The style manager's brush text while nothing is selected.
const QString kBrush = R"(" fill="white" stroke="none" stroke-width="0" )";
const char kRed[] = R"( stroke="red")";
// The 999 point lies beyond every count used with this list and must never be read.
const tagPOINT kP[] = {{0, 0}, {5, 0}, {5, 5}, {1, 2}, {3, 4}, {999, 999}};

}  // namespace

// Each case draws on a fresh writer.
TEST(WriterOutput, PathsCurvesAndClips) {
    const QByteArray red(" stroke=\"red\" ");
    const QString rect = R"(<rect x="1" y="2" width="3" height="4" rx="5" ry="6" )";
    const std::pair<std::function<void(CMySVGWriter&)>, QString> cases[] = {
        // Line-to, poly-line-to and poly-Bézier-to move the current position, to the last point
        // of the list; a poly-Bézier does not; one or two points short of a curve are not drawn.
        {[](CMySVGWriter& w) {
             const tagPOINTS p[] = {{5, 5}, {9, -32768}};
             const tagPOINTS q[] = {{4, 5}, {6, 7}, {8, -9}, {1, 1},
                                    {2, 2}, {3, 3}, {7, 7},  {9, 9}};
             w.MoveTo(3, 4);
             w.DrawPolyLine(p, 2, false, true, kRed);
             w.DrawLineTo(-1, 5, kRed);
             w.DrawPolyBeziers(kP, 5, false, kRed);
             w.DrawPolyBeziers(q, 8, true, QByteArray());
             w.DrawLineTo(0, 0, kRed);
         },
         "<polyline points=\"5,5 9,-32768 \n\" " + kPen + "/>\n" + Line(3, 4, 5, 5) +
             Line(9, -32768, -1, 5, kRed) + R"(<path d="M0,0 C5,0 5,5 1,2"  stroke="red"/>)" +
             "\n<path d=\"M-1,5 C4,5 6,7 8,-9C1,1 2,2 3,3\" " + kDefaultStyle + "/>\n" +
             Line(9, 9, 0, 0, kRed)},
        // A rect takes the clip only while a clip path is selected and the style has none.
        {[&](CMySVGWriter& w) {
             w.SetExtClipRgn(0, nullptr);  // a region clip: in the current style only
             w.DrawRect(1, 2, 3, 4, red, 5, 6);
             w.SelectClipPath(0);  // its outline keeps the region clip of the pen style
             w.DrawRect(1, 2, 3, 4, red, 5, 6);
             w.DrawRect(1, 2, 3, 4, QByteArray(" clip-path=\"url(#X)\" "), 5, 6);
             w.StartPath();  // drops the clip
             w.DrawRect(1, 2, 3, 4, red, 5, 6);
         },
         "\n<defs><clipPath id= \"ClPath1\"></clipPath></defs>" + rect + " stroke=\"red\" />\n" +
             "\n<defs><clipPath id= \"ClPath2\">\n<path d = \"\" " + kPen +
             R"x(clip-path="url(#ClPath1)"/>)x" + "\n</clipPath></defs>" + rect +
             R"x( stroke="red" clip-path="url(#ClPath2)"/>)x" + "\n" + rect +
             R"x( clip-path="url(#X)" />)x" + "\n" + rect + " stroke=\"red\" />\n"},
        // Bracket data waits for a fill, a second fill has none; curves and close figure.
        {[](CMySVGWriter& w) {
             const tagPOINT p[] = {{3, 7}, {1, 2}, {3, 4}, {5, 6}};
             w.StartPath();
             w.DrawPolyLine(kP, 1, false, true, kRed);
             w.EndPath();
             w.StartPath();
             w.DrawPolyLine(kP + 1, 2, true, false, kRed);
             w.FillPath();
             w.FillPath();
             w.DrawPolyBeziers(p, 4, false, kRed);
             w.DrawPolyBeziers(p + 1, 3, true, kRed);  // the figure still starts at (3, 7)
             w.CloseFigure();
             w.CloseFigure();
             w.StrokePath();  // the default pen: one space after the quote
         },
         "\n<path d = \" M0,0  Z M5,0  L5,5  Z" + kBrush + "/>\n\n<path d = \"" + kBrush +
             "/>\n\n<path d = \"M3,7 C1,2 3,4 5,6M0,0 C1,2 3,4 5,6 L3,7  L0,7 \" " + kPen + "/>\n"},
        // No points: elements without a connecting line, no move, no figure start.
        {[](CMySVGWriter& w) {
             w.MoveTo(7, 8);
             w.DrawPolyLine(kP, 0, false, true, kRed);
             w.DrawPolyLine(static_cast<const tagPOINTS*>(nullptr), 5, true, true, kRed);
             w.DrawPolyBeziers(kP, 0, true, kRed);
             w.DrawLineTo(0, 0, kRed);
             w.CloseFigure();
             w.StrokePath();
         },
         "<polyline points=\"\n\" " + kPen + "/>\n<polygon points=\"\n\"  stroke=\"red\"/>\n" +
             Line(7, 8, 0, 0, kRed) + "\n<path d = \" L0,0 \" " + kPen + "/>\n"},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        CMySVGWriter w;
        cases[i].first(w);
        EXPECT_EQ(w.GetSVGOutput(), cases[i].second) << "case " << i;
    }
}

TEST(WriterOutput, PolyDrawTypes) {
    const std::vector<std::pair<std::vector<unsigned char>, std::string>> cases = {
        {{6, 5, 9, 9, 2}, " M0,0 C5,0 5,5 1,2 Z  L3,4"},
        {{7, 0, 1, 8, 6}, " M3,4"},    // move-to with close, and unknown types, add nothing
        {{6, 2, 4, 4}, " M0,0 L5,0"},  // a curve type short of its two points ends the walk
    };
    for (const auto& [types, data] : cases) {
        CMySVGWriter w;
        w.DrawMixedPoly(kP, types.data(), static_cast<unsigned int>(types.size()), kRed);
        EXPECT_EQ(w.GetSVGOutput().toStdString(), "<path d=\"" + data + "\"   stroke=\"red\"/>");
    }
}

TEST(WriterObjects, GeometricPenWidthGoesThroughTheWorldTransform) {
    // Pen style, width, eM11, eDx, the stroke width.
    const std::tuple<unsigned int, unsigned int, float, float, unsigned int> cases[] = {
        {0x10000, 3, 1.6f, 10, 14},  // 14.8: translated, then cut toward zero
        {0x10000, 3, -1.5f, 0, 4},   // mirrored: the magnitude of -4.5 cut toward zero
        {0x00000, 3, 1.5f, 10, 3},   // cosmetic pens keep their width
        {0x10000, 3000000000u, 1, 0, 3000000000u},  // wider than int32, unsigned as cosmetic ones
        {0x00000, 3000000000u, 1, 0, 3000000000u},
        {0x10000, 3000000000u, -1, 0, 3000000000u},
        {0x10000, 3, 1e30f, 0, 4294967295u},  // stops at the unsigned limit
    };
    for (const auto& [style, width, eM11, eDx, expected] : cases) {
        CMySVGWriter w;
        w.SetWorldTransform(eM11, 0, 0, 1, eDx, 0);
        w.CreatePen(1, style, width, 0, nullptr, 0);
        w.SelectObject(1);
        EXPECT_TRUE(w.StyleManager().GetCurrPenStyle().contains(
            "stroke-width=\"" + QByteArray::number(expected) + "\""))
            << expected;
    }
}

// Numbers print as a text stream prints them: integers plain, reals with six significant
// digits, halves away from zero, no negative zero.
TEST(WriterOutput, NumbersPrintAsATextStreamDoes) {
    SvgBuffer out;
    out.Write(0, ' ', -7, ' ', INT64_MIN, ' ', UINT64_MAX, ' ', 3000000000u, ' ', 'x');
    EXPECT_EQ(out.Text().toStdString(),
              "0 -7 -9223372036854775808 18446744073709551615 3000000000 x");
    const double reals[] = {0.0,        -0.0,   0.5,       1e-05,     123456.7,   1234567.0,
                            -3.25,      1e21,   3959.125f, 734512.5f, 8612105.0f, 0.1f,
                            -78998.25f, 1e-300, INFINITY,  -INFINITY, NAN,        -NAN};
    for (double v : reals) {
        QString expected;
        QTextStream(&expected) << v;
        SvgBuffer real;
        real.AppendReal(v);
        EXPECT_EQ(real.Text(), expected.toLatin1()) << v;
    }
}

// A limited buffer refuses the write that would pass its limit and keeps the text before it;
// truncating and lifting the limit let it be closed.
TEST(WriterOutput, LimitedBufferStopsAtTheWriteThatPassesIt) {
    SvgBuffer out;
    out.SetLimit(300);
    for (int i = 0; i < 29; ++i) out.Write("<a/>", i % 10, "\n");  // 6 bytes each: 174
    const size_t mark = out.size();
    EXPECT_THROW(out.Write(QByteArray(200, 'x')), OutputLimitReached);
    EXPECT_EQ(out.size(), mark);
    EXPECT_THROW(for (;;) out.Write("<b/>\n"), OutputLimitReached);
    EXPECT_LE(out.size(), 300u);
    out.Truncate(mark);
    out.SetLimit(SvgBuffer::kNoLimit);
    out.Write("</svg>\n");
    EXPECT_TRUE(out.Text().endsWith("<a/>8\n</svg>\n"));
}
