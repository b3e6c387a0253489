// Style manager: object table, selection, attribute texts, fonts, clipping and hatch patterns.
#include <gtest/gtest.h>

#include <cstring>

#include "TestUtil.h"
#include "style/StyleMgr.h"

namespace {

const QString kRoundCapJoin = "stroke-linecap = \"round\" stroke-linejoin = \"round\" ";
const QString kNoStroke = " stroke=\"none\" stroke-width=\"0\" ";

tagLOGFONTW LogFont(const char* face, int height, int weight, int escapement = 0) {
    tagLOGFONTW lf{};
    lf.lfHeight = height;
    lf.lfWeight = weight;
    lf.lfEscapement = escapement;
    for (int i = 0; i < 32 && face[i] != '\0'; ++i) lf.lfFaceName[i] = face[i];
    return lf;
}

}  // namespace

TEST(StyleText, FreshStylesColoursAndClip) {
    CStyleManager sm;
    EXPECT_EQ(sm.GetCurrentStyle(), "stroke=\"black\" stroke-width=\"1\" fill=\"none\" ");
    EXPECT_EQ(sm.GetCurrPenStyle(), "stroke=\"none\" stroke-width=\"1\"  fill=\"none\" ");
    EXPECT_EQ(sm.GetCurrBrushStyle(), "\" fill=\"white\"" + kNoStroke);
    EXPECT_EQ(sm.GetCurrTextStyle(), "   fill=\"black\" ");
    EXPECT_EQ(sm.GetCurrentFontHeight(), 14);
    EXPECT_EQ(sm.GetCurrentFontDescent(), 3);
    EXPECT_EQ(sm.GetColorString(0x00FF8000), "#0080ff");
    EXPECT_EQ(sm.GetColorString(0x12345678), "#785634");
    // Stock objects without an effect and unknown handles still rebuild the current style.
    for (unsigned long h : {7ul, 0x8000000Aul, 0xFFFFFFFFul, 0x8000000Eul}) sm.EmfSelectObject(h);
    const QString rebuilt = "stroke=\"none\" stroke-width=\"1\"  fill=\"white\"";
    EXPECT_EQ(sm.GetCurrentStyle(), rebuilt);
    // A clip id replaces the previous one in the current and pen styles, not the brush style.
    EXPECT_EQ(sm.ExtSetClipRgn("c1"), 1);
    sm.ExtSetClipRgn("c2");
    EXPECT_EQ(sm.GetCurrentStyle(), rebuilt + "clip-path=\"url(#c2)\"");
    EXPECT_EQ(sm.GetCurrPenStyle(),
              "stroke=\"none\" stroke-width=\"1\"  fill=\"none\" clip-path=\"url(#c2)\"");
    EXPECT_EQ(sm.GetCurrBrushStyle(), "\" fill=\"white\"" + kNoStroke);
    sm.EmfSelectObject(0x80000000);  // a selection keeps the clip
    EXPECT_EQ(sm.GetCurrentStyle(),
              "stroke=\"none\" stroke-width=\"1\"   fill=\"white\" clip-path=\"url(#c2)\"");
    sm.ExtSetClipRgn("");
    EXPECT_EQ(sm.GetClipPath(), "");
    EXPECT_EQ(sm.GetCurrentStyle(), "stroke=\"none\" stroke-width=\"1\"   fill=\"white\" ");
}

TEST(StyleText, CapJoinAndDashTexts) {
    CStyleManager sm;
    const struct {
        int width, style;
        QString text;
    } cases[] = {
        {3, 0x203,
         "stroke-linecap = \"butt\" stroke-linejoin = \"round\" "
         "stroke-dasharray=\" 12 , 6 , 3 , 6\" "},
        {2, 0x1104,
         "stroke-linecap = \"square\" stroke-linejoin = \"bevel\" "
         "stroke-dasharray=\" 8 , 4 , 2 , 4 , 2 , 4\" "},
        {0x20000000, 1, kRoundCapJoin + "stroke-dasharray=\" -2147483648 , 1073741824\" "},
        {1, 0x302, "stroke-linejoin = \"round\" stroke-dasharray=\" 1 , 1\" "},
        {1, 0x2000, "stroke-linecap = \"round\" stroke-linejoin = \"miter\" "},
        {1, 0x3305, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(sm.GetDashArray(c.width, c.style, nullptr, 0), c.text) << std::hex << c.style;
    // User styles read only `count` entries, and none without entries.
    const unsigned int user[] = {3, 1, 2, 9};
    EXPECT_EQ(sm.GetDashArray(1, 7, user, 3), kRoundCapJoin + "stroke-dasharray=\" 3,1,2\" ");
    EXPECT_EQ(sm.GetDashArray(1, 7, user, 0), kRoundCapJoin);
    EXPECT_EQ(sm.GetDashArray(1, 7, nullptr, 3), kRoundCapJoin);
}

TEST(StyleObjects, WorkedSequencePensAndStockPens) {
    CStyleManager sm;
    sm.EmfCreatePen(1, 1, 2, 0x00FF0000, nullptr, 0);  // dashed, width 2, blue
    sm.EmfCreateBrush(2, 0, 0, 0x000000FF);            // solid red
    EXPECT_EQ(sm.EmfCreatePen(3, 5, 1, 0, nullptr, 0), 1);
    sm.EmfCreatePen(4, 0x3300, 4000000000u, 0x00010203, nullptr, 0);
    sm.EmfSelectObject(1);
    sm.EmfSelectObject(2);
    const QString penRest =
        " stroke-width=\"2\" \n " + kRoundCapJoin + "stroke-dasharray=\" 8 , 4\" ";
    const QString worked = " stroke=\"#0000ff\"" + penRest + "  fill=\"#ff0000\"\n";
    EXPECT_EQ(sm.GetCurrentStyle(), worked);
    // Stock pens replace the brush and drop the pen's stroke colour until a brush is selected.
    sm.EmfSelectObject(0x80000007);  // BLACK_PEN
    EXPECT_EQ(sm.GetCurrentStyle(), " " + penRest + "  stroke=\"black\" ");
    sm.EmfSelectObject(0x80000006);  // WHITE_PEN
    EXPECT_EQ(sm.GetCurrentStyle(), " " + penRest + "  stroke=\"white\" ");
    sm.EmfSelectObject(2);
    EXPECT_EQ(sm.GetCurrentStyle(), worked);
    // Colour 0 strokes black, and a null pen keeps its cap and join text.
    sm.EmfSelectObject(3);
    EXPECT_EQ(sm.GetCurrentStyle(),
              " stroke=\"black\" stroke-width=\"1\" \n " + kRoundCapJoin + "  fill=\"#ff0000\"\n");
    sm.EmfSelectObject(4);
    EXPECT_EQ(sm.GetCurrentStyle(),
              " stroke=\"#030201\" stroke-width=\"4000000000\" \n  fill=\"#ff0000\"\n");
    sm.EmfSelectObject(0x80000008);  // NULL_PEN
    EXPECT_EQ(sm.GetCurrentStyle(), " stroke=\"none\"   fill=\"#ff0000\"\n");
}

TEST(StyleObjects, BrushesSelectAsTheirFill) {
    CStyleManager sm;
    sm.EmfCreateBrush(1, 0, 0, 0);  // a solid brush of colour 0 keeps the colour
    sm.EmfCreateBrush(2, 1, 0, 0);  // null and pattern brushes are empty
    sm.EmfCreateBrush(3, 3, 0, 0);
    const struct {
        unsigned int handle;
        const char* fill;
    } cases[] = {{0x80000001, " fill=\"lightgray\" "}, {1, " fill=\"#000000\"\n"},
                 {0x80000002, " fill=\"gray\" "},      {2, " fill=\"none\" "},
                 {0x80000003, " fill=\"darkgray\" "},  {3, " fill=\"none\" "},
                 {0x80000004, " fill=\"black\" "},     {0x80000005, " fill=\"none\" "},
                 {0x80000000, " fill=\"white\" "}};
    for (const auto& c : cases) {
        sm.EmfSelectObject(c.handle);
        EXPECT_EQ(sm.GetCurrBrushStyle(), "\" " + QString(c.fill) + kNoStroke)
            << std::hex << c.handle;
    }
}

TEST(StyleObjects, ReplaceAndDelete) {
    CStyleManager sm;
    sm.EmfCreateBrush(3, 0, 0, 0xFF);
    sm.EmfCreatePen(5, 0, 1, 0xFF, nullptr, 0);
    sm.EmfSelectObject(3);
    EXPECT_EQ(sm.EmfGetBrush(3), "=\"#ff0000\"\n");
    EXPECT_EQ(sm.EmfGetBrush(5), "");  // not a brush
    // Re-creating under a used handle: the selection keeps the old text until reselected.
    sm.EmfCreateBrush(3, 0, 0, 0xFF0000);
    EXPECT_TRUE(sm.GetCurrentStyle().endsWith(" fill=\"#ff0000\"\n"));
    sm.EmfSelectObject(3);
    EXPECT_TRUE(sm.GetCurrentStyle().endsWith(" fill=\"#0000ff\"\n"));
    // Deleting resets the escapement and leaves the selection; the handle then selects nothing.
    sm.EmfCreateFont(6, LogFont("Tahoma", 10, 400, 900));
    EXPECT_EQ(sm.EmfDeleteObject(3), 0);
    EXPECT_EQ(sm.GetEscapement(), 0);
    sm.EmfSelectObject(0x80000005);
    sm.EmfSelectObject(3);
    EXPECT_TRUE(sm.GetCurrentStyle().endsWith(" fill=\"none\" "));
}

TEST(StyleFonts, EmfFontTextsAndEscapement) {
    const struct {
        const char* face;
        int italic, underline, strikeOut, weight, tenths, degrees;
        QString text;
    } cases[] = {
        {"", 0, 0, 0, 400, 900, -90, " font-family=\"Arial\"  font-weight=\"400\" \n"},
        {"A", 1, 1, 0, -5, -450, 45,
         " font-family=\"A\"  font-style=\"italic\"  text-decoration=\"underline\"  "
         "font-weight=\"-5\" \n"},
        {"A", 0, 1, 1, 0, 15, -1,
         " font-family=\"A\"  text-decoration=\"underline line-through\" "},
        {"A", 0, 0, 2, 0, -9, 0, " font-family=\"A\"  text-decoration=\"line-through\" "},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ012345", 0, 0, 0, 0, INT32_MIN, 214748364,
         " font-family=\"ABCDEFGHIJKLMNOPQRSTUVWXYZ012345\" "},
    };
    for (const auto& c : cases) {
        CStyleManager sm;
        tagLOGFONTW lf = LogFont(c.face, 12, c.weight, c.tenths);
        lf.lfItalic = c.italic;
        lf.lfUnderline = c.underline;
        lf.lfStrikeOut = c.strikeOut;
        EXPECT_EQ(sm.EmfCreateFont(8, lf), 0);
        EXPECT_EQ(sm.GetEscapement(), c.degrees) << c.tenths;  // set at creation
        sm.EmfSelectObject(8);
        EXPECT_EQ(sm.GetCurrTextStyle(), c.text + " fill=\"black\" ") << c.face;
    }
}

TEST(StyleFonts, WmfFontsAndSelectedMetrics) {
    CStyleManager sm;
    sm.EmfCreateFont(1, LogFont("Courier", -20, 700));
    sm.EmfCreateFont(2, LogFont("Verdana", INT32_MIN, 300, 450));
    FONTSPEC wmf[3] = {};
    wmf[0].Height = -12;
    wmf[0].Weight = -1;
    wmf[0].Italic = wmf[0].Underline = wmf[0].StrikeOut = 1;
    std::strcpy(wmf[0].Facename, "Caf\xe9");
    wmf[1].Height = 9;                                          // no face name
    std::memset(wmf[2].Facename, 'x', sizeof wmf[2].Facename);  // no NUL in the field
    for (int i = 0; i < 3; ++i) EXPECT_EQ(sm.MetaCreateFont(3 + i, wmf[i]), 0);
    EXPECT_EQ(sm.GetEscapement(), -45);  // WMF fonts leave the escapement alone
    sm.EmfSelectObject(1);
    EXPECT_EQ(sm.GetCurrentFontHeight(), 20);
    EXPECT_EQ(sm.GetCurrentFontDescent(), 3);
    // Heights and weights are unsigned 16-bit; strike-out is not written.
    sm.EmfSelectObject(3);
    EXPECT_EQ(sm.GetCurrTextStyle(),
              QString::fromLatin1(" font-family=\"Caf\xe9\" font-size=\"65524\"  "
                                  "font-style=\"italic\"  text-decoration=\"underline\"  "
                                  "font-weight=\"65535\" \n fill=\"black\" "));
    EXPECT_EQ(sm.GetCurrentFontHeight(), 65524);
    sm.EmfSelectObject(4);
    EXPECT_EQ(sm.GetCurrTextStyle(), " font-family=\"\" font-size=\"9\"  fill=\"black\" ");
    sm.EmfSelectObject(5);
    EXPECT_EQ(sm.GetCurrentFontFamily(), QString(32, QLatin1Char('x')));
    sm.EmfSelectObject(0x8000000E);  // DEVICE_DEFAULT_FONT: the latest EMF font
    EXPECT_EQ(sm.GetCurrTextStyle(),
              " font-family=\"Verdana\"  font-weight=\"300\" \n fill=\"black\" ");
    EXPECT_EQ(sm.GetCurrentFontHeight(), INT32_MAX);
}

TEST(StyleHatch, EachStyleHasItsDefinition) {
    // The first red HS_HORIZONTAL brush with no background colour set; the other styles differ
    // in the separator after <defs>, the background stroke, and the hatch id, fill and path.
    const QString horizontal =
        "<defs> \t\t<polygon id=\"BACKGROUND\" fill=\"none\" stroke=\"white\" "
        "points=\"0 0, 8 0, 8 8, 0 8, 0 0\" /> \t\t<path id=\"HATCH_HORIZONTAL\" "
        "stroke-width=\"1.0\" fill=\"#000000\" stroke=\"#ff0000\" fill-opacity=\"1.0\" "
        "d=\"m0,8 l8,0\" /> \t\t<pattern id=\"BRUSH_1\" width=\"8\" height=\"8\" "
        "patternUnits=\"userSpaceOnUse\" > \t\t<g><g><use x=\"0\" y=\"0\" "
        "xlink:href=\"#BACKGROUND\" /><use x=\"0\" y=\"0\" xlink:href=\"#HATCH_HORIZONTAL\"/>"
        " \t\t</g></g></pattern></defs>\n";
    const struct {
        const char *separator, *background, *id, *fill, *data;
    } cases[] = {
        {" \t\t", "white", "HORIZONTAL", "#000000", "m0,8 l8,0"},
        {" \t\t", "none", "VERTICAL", "#000000", "m4,0 l0,8"},
        {" \t\t", "white", "FDIAGONAL", "#000000", "m0,0 l8,8"},
        {" \t\t", "white", "BDIAGONAL", "#000000", "m0,8 l8,-8"},
        {" \t\t", "white", "CROSS", "#000000", "m8,0 l0,16 m-8,-8 l16,0"},
        {"\t\t", "white", "DICROSS", "white", "m0,0 l8,8 m-8,0 l8,-8"},
    };
    for (unsigned int hatch = 0; hatch < 6; ++hatch) {
        const auto& c = cases[hatch];
        QString expected = horizontal;
        expected.replace("<defs> \t\t", QString("<defs>") + c.separator)
            .replace("stroke=\"white\" points", QString("stroke=\"%1\" points").arg(c.background))
            .replace("HORIZONTAL", c.id)
            .replace("fill=\"#000000\"", QString("fill=\"%1\"").arg(c.fill))
            .replace("m0,8 l8,0", c.data);
        CStyleManager sm;
        sm.EmfCreateBrush(1, 2, hatch, 0x000000FF);
        EXPECT_EQ(sm.GetPatternDef(1), expected) << hatch;
    }
}

TEST(StyleHatch, NumberingAndBackground) {
    CStyleManager sm;
    sm.EmfCreateBrush(9, 2, 1, 0);
    sm.EmfCreateBrush(4, 0, 0, 0xFF);  // solid brushes take no number
    sm.EmfCreateBrush(3, 2, 5, 0);
    EXPECT_TRUE(sm.GetPatternDef(3).contains("id=\"BRUSH_2\""));
    EXPECT_EQ(sm.GetPatternDef(4), "");
    // The background colour is taken when the brush is made; a used handle gets a new number.
    EXPECT_EQ(sm.SetBkgColor(0x00102030), "#302010");
    sm.EmfCreateBrush(9, 2, 2, 0);
    EXPECT_TRUE(sm.GetPatternDef(9).contains("id=\"BACKGROUND\" fill=\"#302010\" "));
    EXPECT_TRUE(sm.GetPatternDef(9).contains("id=\"BRUSH_3\""));
    EXPECT_TRUE(sm.GetPatternDef(3).contains("id=\"BACKGROUND\" fill=\"none\" "));
    // A hatch without a template defines nothing and names the latest number.
    EXPECT_EQ(sm.EmfCreateBrush(12, 2, 6, 0), CStyleManager::kPatternMade);
    EXPECT_EQ(sm.GetPatternDef(12), "");
    EXPECT_EQ(sm.EmfGetBrush(12), "=\"url(#BRUSH_3)\" \n");
    CStyleManager fresh;
    fresh.EmfCreateBrush(1, 2, 0xFFFFFFFF, 0);
    EXPECT_EQ(fresh.EmfGetBrush(1), "=\"url(#BRUSH_0)\" \n");
}
