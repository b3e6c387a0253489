// Style manager: object table, selection, attribute texts, fonts, clipping and hatch patterns.
#include <gtest/gtest.h>

#include <cstring>

#include "style/StyleMgr.h"

namespace {

const unsigned int kWhiteBrush = 0x80000000;
const unsigned int kNullBrush = 0x80000005;
const unsigned int kWhitePen = 0x80000006;
const unsigned int kBlackPen = 0x80000007;
const unsigned int kNullPen = 0x80000008;
const unsigned int kDeviceDefaultFont = 0x8000000E;

const QString kRoundCapJoin = "stroke-linecap = \"round\" stroke-linejoin = \"round\" ";

tagLOGFONTW LogFont(const char* face, int height, int weight, int escapement = 0) {
    tagLOGFONTW lf;
    std::memset(&lf, 0, sizeof lf);
    lf.lfHeight = height;
    lf.lfWeight = weight;
    lf.lfEscapement = escapement;
    for (int i = 0; i < 32 && face[i] != '\0'; ++i) lf.lfFaceName[i] = face[i];
    return lf;
}

FONTSPEC WmfFont(const char* face, int16_t height, int16_t weight) {
    FONTSPEC wmfFont;
    std::memset(&wmfFont, 0, sizeof wmfFont);
    wmfFont.Height = height;
    wmfFont.Weight = weight;
    std::strncpy(wmfFont.Facename, face, sizeof wmfFont.Facename);
    return wmfFont;
}

// The pen text a fresh manager stores for a pen, seen through the pen style.
QString PenStyleOf(unsigned int style, unsigned int width, unsigned int colour,
                   const unsigned int* entries = nullptr, unsigned int count = 0) {
    CStyleManager sm;
    sm.EmfCreatePen(1, style, width, colour, entries, count);
    sm.EmfSelectObject(1);
    const QString pen = sm.GetCurrPenStyle();
    return pen.left(pen.size() - QString(" fill=\"none\" ").size());
}

}  // namespace

TEST(StyleDefaults, FreshManagerStyles) {
    CStyleManager sm;
    EXPECT_EQ(sm.GetCurrentStyle(), "stroke=\"black\" stroke-width=\"1\" fill=\"none\" ");
    EXPECT_EQ(sm.GetCurrPenStyle(), "stroke=\"none\" stroke-width=\"1\"  fill=\"none\" ");
    EXPECT_EQ(sm.GetCurrBrushStyle(), "\" fill=\"white\" stroke=\"none\" stroke-width=\"0\" ");
    EXPECT_EQ(sm.GetCurrTextStyle(), "   fill=\"black\" ");
    EXPECT_EQ(sm.GetCurrentFontHeight(), 14);
    EXPECT_EQ(sm.GetCurrentFontDescent(), 3);
    EXPECT_FALSE(sm.GetCurrentFontWeight() || sm.GetCurrentFontBold() || sm.GetCurrentFontItalic());
}

TEST(StyleText, ColorString) {
    CStyleManager sm;
    const struct {
        unsigned int colour;
        const char* text;
    } cases[] = {{0x00FF8000, "#0080ff"}, {0x12345678, "#785634"}, {0, "#000000"}};
    for (const auto& c : cases) EXPECT_EQ(sm.GetColorString(c.colour), c.text) << c.colour;
}

TEST(StyleText, DashArray) {
    CStyleManager sm;
    const unsigned int user[] = {3, 1, 2, 9, 9};
    const struct {
        int width;
        int style;
        const unsigned int* entries;
        int count;
        QString text;
    } cases[] = {
        {3, 0x203, nullptr, 0,
         "stroke-linecap = \"butt\" stroke-linejoin = \"round\" "
         "stroke-dasharray=\" 12 , 6 , 3 , 6\" "},
        {2, 0x1104, nullptr, 0,
         "stroke-linecap = \"square\" stroke-linejoin = \"bevel\" "
         "stroke-dasharray=\" 8 , 4 , 2 , 4 , 2 , 4\" "},
        {0, 2, nullptr, 0, kRoundCapJoin + "stroke-dasharray=\" 0 , 0\" "},
        // 4w wraps around in 32 bits.
        {0x20000000, 1, nullptr, 0,
         kRoundCapJoin + "stroke-dasharray=\" -2147483648 , 1073741824\" "},
        {1, 0x302, nullptr, 0, "stroke-linejoin = \"round\" stroke-dasharray=\" 1 , 1\" "},
        {1, 0x2000, nullptr, 0, "stroke-linecap = \"round\" stroke-linejoin = \"miter\" "},
        {1, 0x3305, nullptr, 0, ""},
        // User styles: only `count` entries are read; none without entries.
        {1, 7, user, 3, kRoundCapJoin + "stroke-dasharray=\" 3,1,2\" "},
        {1, 7, user, 0, kRoundCapJoin},
        {1, 7, nullptr, 3, kRoundCapJoin},
    };
    for (const auto& c : cases)
        EXPECT_EQ(sm.GetDashArray(c.width, c.style, c.entries, c.count), c.text)
            << "width " << c.width << " style " << std::hex << c.style;
}

TEST(StyleText, PenTexts) {
    EXPECT_EQ(PenStyleOf(0, 1, 0), " stroke=\"black\" stroke-width=\"1\" \n " + kRoundCapJoin);
    // A null pen keeps its cap and join text.
    EXPECT_EQ(PenStyleOf(5, 1, 0), " stroke=\"black\" stroke-width=\"1\" \n " + kRoundCapJoin);
    EXPECT_EQ(PenStyleOf(0x3300, 4000000000u, 0x00010203),
              " stroke=\"#030201\" stroke-width=\"4000000000\" \n");
}

TEST(StyleObjects, WorkedPenAndBrushSequence) {
    CStyleManager sm;
    EXPECT_EQ(sm.EmfCreatePen(1, 1, 2, 0x00FF0000, nullptr, 0), 1);
    EXPECT_EQ(sm.EmfCreateBrush(2, 0, 0, 0x000000FF), 0);
    sm.EmfSelectObject(1);
    EXPECT_EQ(sm.GetCurrentStyle(), " stroke=\"#0000ff\" stroke-width=\"2\" \n " + kRoundCapJoin +
                                        "stroke-dasharray=\" 8 , 4\"  fill=\"white\"");
    sm.EmfSelectObject(2);
    EXPECT_EQ(sm.GetCurrentStyle(), " stroke=\"#0000ff\" stroke-width=\"2\" \n " + kRoundCapJoin +
                                        "stroke-dasharray=\" 8 , 4\"   fill=\"#ff0000\"\n");
    EXPECT_EQ(sm.GetCurrBrushStyle(), "\"  fill=\"#ff0000\"\n stroke=\"none\" stroke-width=\"0\" ");
}

TEST(StyleObjects, StockPensOverrideTheStrokeThroughTheBrush) {
    CStyleManager sm;
    sm.EmfCreatePen(1, 0x200, 3, 0xFF, nullptr, 0);
    sm.EmfCreateBrush(2, 0, 0, 0xFF00);
    sm.EmfSelectObject(2);
    sm.EmfSelectObject(1);
    const QString penRest =
        " stroke-width=\"3\" \n stroke-linecap = \"butt\" "
        "stroke-linejoin = \"round\" ";
    sm.EmfSelectObject(kBlackPen);
    EXPECT_EQ(sm.GetCurrentStyle(), " " + penRest + "  stroke=\"black\" ");
    sm.EmfSelectObject(kWhitePen);
    EXPECT_EQ(sm.GetCurrentStyle(), " " + penRest + "  stroke=\"white\" ");
    // The next brush selection ends the override.
    sm.EmfSelectObject(2);
    EXPECT_EQ(sm.GetCurrentStyle(), " stroke=\"#ff0000\"" + penRest + "  fill=\"#00ff00\"\n");
    sm.EmfSelectObject(kNullPen);
    EXPECT_EQ(sm.GetCurrentStyle(), " stroke=\"none\"   fill=\"#00ff00\"\n");
    EXPECT_EQ(sm.GetCurrPenStyle(), " stroke=\"none\"  fill=\"none\" ");
}

TEST(StyleObjects, StockAndEmptyBrushes) {
    const struct {
        unsigned int handle;
        const char* brush;
    } stock[] = {{0x80000000, " fill=\"white\" "}, {0x80000001, " fill=\"lightgray\" "},
                 {0x80000002, " fill=\"gray\" "},  {0x80000003, " fill=\"darkgray\" "},
                 {0x80000004, " fill=\"black\" "}, {0x80000005, " fill=\"none\" "}};
    // Other stock objects and unknown handles only rebuild the current style.
    const QString noBrush = "stroke=\"none\" stroke-width=\"1\"  fill=\"white\"";
    for (unsigned long handle : {7ul, 0x8000000Aul, 0xFFFFFFFFul, 0x8000000Eul}) {
        CStyleManager sm;
        sm.EmfSelectObject(handle);
        EXPECT_EQ(sm.GetCurrentStyle(), noBrush) << std::hex << handle;
    }
    for (const auto& s : stock) {
        CStyleManager sm;
        sm.EmfSelectObject(s.handle);
        EXPECT_EQ(sm.GetCurrentStyle(), "stroke=\"none\" stroke-width=\"1\"  " + QString(s.brush));
    }
    // Null, pattern and DIB pattern brushes are empty and select as no fill.
    for (unsigned int style : {1u, 3u}) {
        CStyleManager sm;
        EXPECT_EQ(sm.EmfCreateBrush(4, style, 2, 0xFF), 0);
        sm.EmfSelectObject(4);
        EXPECT_EQ(sm.GetCurrBrushStyle(), "\"  fill=\"none\"  stroke=\"none\" stroke-width=\"0\" ");
        EXPECT_EQ(sm.EmfGetBrush(4), "");
    }
    CStyleManager sm;
    sm.EmfCreateBrush(4, 0, 0, 0);
    sm.EmfSelectObject(4);
    EXPECT_EQ(sm.GetCurrBrushStyle(), "\"  fill=\"#000000\"\n stroke=\"none\" stroke-width=\"0\" ");
}

TEST(StyleObjects, ReplaceDeleteAndRegionBrush) {
    CStyleManager sm;
    sm.EmfCreateBrush(3, 0, 0, 0xFF);
    sm.EmfCreatePen(5, 0, 1, 0xFF, nullptr, 0);
    sm.EmfSelectObject(3);
    EXPECT_EQ(sm.EmfGetBrush(3), "=\"#ff0000\"\n");
    EXPECT_EQ(sm.EmfGetBrush(5), "");
    EXPECT_EQ(sm.EmfGetBrush(99), "");

    // Re-creating under a used handle: the selection keeps the old text until reselected.
    sm.EmfCreateBrush(3, 0, 0, 0xFF0000);
    EXPECT_TRUE(sm.GetCurrentStyle().endsWith(" fill=\"#ff0000\"\n"));
    EXPECT_EQ(sm.EmfGetBrush(3), "=\"#0000ff\"\n");
    sm.EmfSelectObject(3);
    EXPECT_TRUE(sm.GetCurrentStyle().endsWith(" fill=\"#0000ff\"\n"));

    // Deleting leaves the selection alone; the handle then selects nothing.
    sm.EmfCreateFont(6, LogFont("Tahoma", 10, 400, 900));
    EXPECT_EQ(sm.GetEscapement(), -90);
    EXPECT_EQ(sm.EmfDeleteObject(3), 0);
    EXPECT_EQ(sm.GetEscapement(), 0);
    EXPECT_EQ(sm.EmfGetBrush(3), "");
    EXPECT_TRUE(sm.GetCurrentStyle().endsWith(" fill=\"#0000ff\"\n"));
    sm.EmfSelectObject(kNullBrush);
    sm.EmfSelectObject(3);
    EXPECT_TRUE(sm.GetCurrentStyle().endsWith(" fill=\"none\" "));
}

TEST(StyleFonts, EmfFontTexts) {
    const struct {
        const char* face;
        int italic, underline, strikeOut, weight;
        QString text;
    } cases[] = {
        {"Times", 0, 0, 0, 0, " font-family=\"Times\" "},
        {"", 0, 0, 0, 400, " font-family=\"Arial\"  font-weight=\"400\" \n"},
        {"A", 1, 1, 0, -5,
         " font-family=\"A\"  font-style=\"italic\"  text-decoration=\"underline\"  "
         "font-weight=\"-5\" \n"},
        {"A", 0, 1, 1, 0, " font-family=\"A\"  text-decoration=\"underline line-through\" "},
        {"A", 0, 0, 2, 0, " font-family=\"A\"  text-decoration=\"line-through\" "},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ012345", 0, 0, 0, 0,
         " font-family=\"ABCDEFGHIJKLMNOPQRSTUVWXYZ012345\" "},
    };
    for (const auto& c : cases) {
        CStyleManager sm;
        tagLOGFONTW lf = LogFont(c.face, 12, c.weight);
        lf.lfItalic = c.italic;
        lf.lfUnderline = c.underline;
        lf.lfStrikeOut = c.strikeOut;
        EXPECT_EQ(sm.EmfCreateFont(8, lf), 0);
        sm.EmfSelectObject(8);
        EXPECT_EQ(sm.GetCurrTextStyle(), c.text + " fill=\"black\" ") << c.face;
    }
}

TEST(StyleFonts, EscapementIsSetAtCreation) {
    const struct {
        int tenths, degrees;
    } cases[] = {{0, 0}, {900, -90}, {-450, 45}, {15, -1}, {-9, 0}, {INT32_MIN, 214748364}};
    for (const auto& c : cases) {
        CStyleManager sm;
        sm.EmfCreateFont(1, LogFont("A", 10, 0, c.tenths));
        EXPECT_EQ(sm.GetEscapement(), c.degrees) << c.tenths;
    }
}

TEST(StyleFonts, SelectionCopiesMetrics) {
    CStyleManager sm;
    sm.EmfCreateFont(1, LogFont("Courier", -20, 700));
    sm.EmfCreateFont(2, LogFont("Verdana", INT32_MIN, 300));
    EXPECT_EQ(sm.GetCurrentFontHeight(), 14);  // creating selects nothing
    sm.EmfSelectObject(1);
    EXPECT_EQ(sm.GetCurrentFontHeight(), 20);
    EXPECT_EQ(sm.GetCurrentFontDescent(), 3);
    EXPECT_EQ(sm.GetCurrentFontWeight(), 700);
    EXPECT_EQ(sm.GetCurrentFontFamily(), "Courier");
    EXPECT_TRUE(sm.GetCurrentFontBold());
    EXPECT_FALSE(sm.GetCurrentFontItalic());
    // DEVICE_DEFAULT_FONT stands for the latest created EMF font.
    sm.EmfSelectObject(kDeviceDefaultFont);
    EXPECT_EQ(sm.GetCurrentFontFamily(), "Verdana");
    EXPECT_EQ(sm.GetCurrentFontHeight(), INT32_MAX);
    EXPECT_FALSE(sm.GetCurrentFontBold());
    EXPECT_EQ(sm.GetCurrTextStyle(),
              " font-family=\"Verdana\"  font-weight=\"300\" \n fill=\"black\" ");
}

TEST(StyleFonts, WmfFonts) {
    CStyleManager sm;
    sm.EmfCreateFont(1, LogFont("Emf", 10, 0, 450));
    FONTSPEC wmfFont = WmfFont("Caf\xe9", -12, -1);
    wmfFont.Italic = 1;
    wmfFont.Underline = 1;
    wmfFont.StrikeOut = 1;
    EXPECT_EQ(sm.MetaCreateFont(2, wmfFont), 0);
    EXPECT_EQ(sm.GetEscapement(), -45);
    sm.EmfSelectObject(2);
    EXPECT_EQ(sm.GetCurrTextStyle(),
              QString::fromLatin1(" font-family=\"Caf\xe9\" font-size=\"65524\"  "
                                  "font-style=\"italic\"  text-decoration=\"underline\"  "
                                  "font-weight=\"65535\" \n fill=\"black\" "));
    EXPECT_EQ(sm.GetCurrentFontHeight(), 65524);
    EXPECT_TRUE(sm.GetCurrentFontBold() && sm.GetCurrentFontItalic());
    // WMF fonts do not become the device default font.
    sm.EmfSelectObject(kDeviceDefaultFont);
    EXPECT_EQ(sm.GetCurrentFontFamily(), "Emf");

    CStyleManager unnamed;
    FONTSPEC full = WmfFont("", 9, 0);
    std::memset(full.Facename, 'x', sizeof full.Facename);  // no NUL in the field
    unnamed.MetaCreateFont(3, WmfFont("", 9, 0));
    unnamed.MetaCreateFont(4, full);
    EXPECT_EQ(unnamed.SetTextColor(0x00FF00), "#00ff00");
    unnamed.EmfSelectObject(3);
    EXPECT_EQ(unnamed.GetCurrTextStyle(), " font-family=\"\" font-size=\"9\"  fill=\"#00ff00\" ");
    unnamed.EmfSelectObject(4);
    EXPECT_EQ(unnamed.GetCurrentFontFamily(), QString(32, QLatin1Char('x')));
}

TEST(StyleClip, ExtSetClipRgn) {
    CStyleManager sm;
    const QString base = "stroke=\"black\" stroke-width=\"1\" fill=\"none\" ";
    EXPECT_EQ(sm.ExtSetClipRgn("c1"), 1);
    EXPECT_EQ(sm.GetClipPath(), "clip-path=\"url(#c1)\"");
    EXPECT_EQ(sm.GetCurrentStyle(), base + "clip-path=\"url(#c1)\"");
    sm.ExtSetClipRgn("c2");
    EXPECT_EQ(sm.GetCurrentStyle(), base + "clip-path=\"url(#c2)\"");
    EXPECT_EQ(sm.GetCurrPenStyle(),
              "stroke=\"none\" stroke-width=\"1\"  fill=\"none\" clip-path=\"url(#c2)\"");
    EXPECT_EQ(sm.GetCurrBrushStyle(), "\" fill=\"white\" stroke=\"none\" stroke-width=\"0\" ");
    sm.EmfSelectObject(kWhiteBrush);
    EXPECT_EQ(sm.GetCurrentStyle(),
              "stroke=\"none\" stroke-width=\"1\"   fill=\"white\" clip-path=\"url(#c2)\"");
    sm.ExtSetClipRgn("");
    EXPECT_EQ(sm.GetClipPath(), "");
    EXPECT_EQ(sm.GetCurrentStyle(), "stroke=\"none\" stroke-width=\"1\"   fill=\"white\" ");
}

TEST(StyleHatch, FirstHorizontalPatternExactly) {
    CStyleManager sm;
    EXPECT_EQ(sm.EmfCreateBrush(7, 2, 0, 0x000000FF), CStyleManager::kPatternMade);
    EXPECT_EQ(sm.GetPatternDef(7),
              "<defs> \t\t<polygon id=\"BACKGROUND\" fill=\"none\" stroke=\"white\" "
              "points=\"0 0, 8 0, 8 8, 0 8, 0 0\" /> \t\t<path id=\"HATCH_HORIZONTAL\" "
              "stroke-width=\"1.0\" fill=\"#000000\" stroke=\"#ff0000\" fill-opacity=\"1.0\" "
              "d=\"m0,8 l8,0\" /> \t\t<pattern id=\"BRUSH_1\" width=\"8\" height=\"8\" "
              "patternUnits=\"userSpaceOnUse\" > \t\t<g><g><use x=\"0\" y=\"0\" "
              "xlink:href=\"#BACKGROUND\" /><use x=\"0\" y=\"0\" xlink:href=\"#HATCH_HORIZONTAL\"/>"
              " \t\t</g></g></pattern></defs>\n");
    sm.EmfSelectObject(7);
    EXPECT_EQ(sm.GetCurrBrushStyle(),
              "\"  fill=\"url(#BRUSH_1)\" \n stroke=\"none\" stroke-width=\"0\" ");
    EXPECT_EQ(sm.EmfGetBrush(7), "=\"url(#BRUSH_1)\" \n");
}

TEST(StyleHatch, EachStyleHasItsShape) {
    const struct {
        unsigned int hatch;
        const char* start;       // <defs> and its separator
        const char* background;  // stroke of the background square
        const char* id;
        const char* fill;  // fill of the hatch path
        const char* data;
    } cases[] = {
        {0, "<defs> \t\t<polygon", "white", "HORIZONTAL", "#000000", "m0,8 l8,0"},
        {1, "<defs> \t\t<polygon", "none", "VERTICAL", "#000000", "m4,0 l0,8"},
        {2, "<defs> \t\t<polygon", "white", "FDIAGONAL", "#000000", "m0,0 l8,8"},
        {3, "<defs> \t\t<polygon", "white", "BDIAGONAL", "#000000", "m0,8 l8,-8"},
        {4, "<defs> \t\t<polygon", "white", "CROSS", "#000000", "m8,0 l0,16 m-8,-8 l16,0"},
        {5, "<defs>\t\t<polygon", "white", "DICROSS", "white", "m0,0 l8,8 m-8,0 l8,-8"},
    };
    for (const auto& c : cases) {
        CStyleManager sm;
        EXPECT_EQ(sm.SetBkgColor(0x00102030), "#302010");
        sm.EmfCreateBrush(1, 2, c.hatch, 0x00FF00);
        const QString def = sm.GetPatternDef(1);
        const QString id = QString("HATCH_") + c.id;
        EXPECT_TRUE(def.startsWith(c.start)) << c.hatch;
        EXPECT_TRUE(
            def.contains(QString("fill=\"#302010\" stroke=\"") + c.background + "\" points="))
            << c.hatch;
        EXPECT_TRUE(def.contains("<path id=\"" + id + "\" stroke-width=\"1.0\" fill=\"" + c.fill +
                                 "\" stroke=\"#00ff00\" fill-opacity=\"1.0\" d=\"" + c.data +
                                 "\" /> \t\t<pattern id=\"BRUSH_1\" "))
            << c.hatch;
        EXPECT_TRUE(def.endsWith("xlink:href=\"#" + id + "\"/> \t\t</g></g></pattern></defs>\n"))
            << c.hatch;
        EXPECT_FALSE(def.contains('%')) << c.hatch;
    }
}

TEST(StyleHatch, PatternNumbering) {
    CStyleManager sm;
    sm.EmfCreateBrush(9, 2, 1, 0);
    sm.EmfCreateBrush(4, 0, 0, 0xFF);  // solid brushes take no number
    sm.EmfCreateBrush(3, 2, 5, 0);
    EXPECT_TRUE(sm.GetPatternDef(9).contains("id=\"BRUSH_1\""));
    EXPECT_TRUE(sm.GetPatternDef(3).contains("id=\"BRUSH_2\""));
    EXPECT_EQ(sm.GetPatternDef(4), "");

    // The background colour is taken when the brush is made.
    sm.SetBkgColor(0xFFFFFF);
    sm.EmfCreateBrush(9, 2, 2, 0);
    EXPECT_TRUE(sm.GetPatternDef(9).contains("id=\"BRUSH_3\""));
    EXPECT_TRUE(sm.GetPatternDef(9).contains("fill=\"#ffffff\""));
    EXPECT_TRUE(sm.GetPatternDef(3).contains("fill=\"none\""));

    // A hatch without a template defines nothing and names the latest number.
    EXPECT_EQ(sm.EmfCreateBrush(12, 2, 6, 0), CStyleManager::kPatternMade);
    EXPECT_EQ(sm.GetPatternDef(12), "");
    EXPECT_EQ(sm.EmfGetBrush(12), "=\"url(#BRUSH_3)\" \n");
    sm.EmfCreateBrush(13, 2, 0, 0);
    EXPECT_TRUE(sm.GetPatternDef(13).contains("id=\"BRUSH_4\""));

    CStyleManager fresh;
    fresh.EmfCreateBrush(1, 2, 0xFFFFFFFF, 0);
    EXPECT_EQ(fresh.EmfGetBrush(1), "=\"url(#BRUSH_0)\" \n");
    EXPECT_EQ(fresh.GetPatternDef(1), "");
}
