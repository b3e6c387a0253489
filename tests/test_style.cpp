// Style manager: object table, selection, attribute texts, fonts, clipping and hatch patterns.

#include <cstring>

#include "tests/TestUtil.h"

namespace {

const QString kRoundCapJoin = "stroke-linecap = \"round\" stroke-linejoin = \"round\" ";
// The pen text before any pen is selected.
const QString kFreshPen = "stroke=\"none\" stroke-width=\"1\" ";

// A font whose face name (UTF-8 here) is stored as UTF-16 code units.
tagLOGFONTW LogFont(const char* face, int height, int weight, int escapement = 0) {
    tagLOGFONTW lf{};
    lf.lfHeight = height, lf.lfWeight = weight, lf.lfEscapement = escapement;
    const QString units = QString::fromUtf8(face);
    for (int i = 0; i < 32 && i < units.size(); ++i) lf.lfFaceName[i] = units[i].unicode();
    return lf;
}

}  // namespace

// A clip id follows the current and pen styles, not the brush style, and outlives selections;
// an empty id drops it.
TEST(StyleText, ClipFollowsTheCurrentAndPenStyles) {
    CStyleManager sm;
    sm.ExtSetClipRgn("c1");
    sm.ExtSetClipRgn("c2");
    const QString clip = "clip-path=\"url(#c2)\"";
    EXPECT_EQ(sm.GetCurrentStyle(), "stroke=\"black\" stroke-width=\"1\" fill=\"none\" " + clip);
    EXPECT_EQ(sm.GetCurrPenStyle(), kFreshPen + " fill=\"none\" " + clip);
    EXPECT_EQ(sm.GetCurrBrushStyle(), "\" fill=\"white\" stroke=\"none\" stroke-width=\"0\" ");
    sm.EmfSelectObject(0x80000000);
    EXPECT_EQ(sm.GetCurrentStyle(), kFreshPen + "  fill=\"white\" " + clip);
    sm.ExtSetClipRgn("");
    EXPECT_EQ(sm.GetClipPath(), "");
    EXPECT_EQ(sm.GetCurrentStyle(), kFreshPen + "  fill=\"white\" ");
}

TEST(StyleText, CapJoinAndDashTexts) {
    CStyleManager sm;
    const std::tuple<int, int, QString> cases[] = {
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
    for (const auto& [width, style, text] : cases)
        EXPECT_EQ(sm.GetDashArray(width, style, nullptr, 0), text) << std::hex << style;
    // User styles read only `count` entries, and none without entries.
    const unsigned int user[] = {3, 1, 2, 9};
    EXPECT_EQ(sm.GetDashArray(1, 7, user, 3), kRoundCapJoin + "stroke-dasharray=\" 3,1,2\" ");
    EXPECT_EQ(sm.GetDashArray(1, 7, user, 0), kRoundCapJoin);
    EXPECT_EQ(sm.GetDashArray(1, 7, nullptr, 3), kRoundCapJoin);
}

// One manager through a sequence of selections. The current style is the pen text, a space and
// the brush text; stock pens set the stroke through the brush slot, which drops the pen's own
// stroke colour until a brush is selected again.
TEST(StyleObjects, SelectionSequence) {
    CStyleManager sm;
    sm.EmfCreatePen(1, 1, 2, 0x00FF0000, nullptr, 0);       // dashed, width 2, blue
    sm.EmfCreateBrush(2, 0, 0, 0x000000FF);                 // solid red
    EXPECT_EQ(sm.EmfCreatePen(3, 5, 1, 0, nullptr, 0), 1);  // PS_NULL, colour 0: black
    sm.EmfCreatePen(4, 0x3300, 4000000000u, 0x00010203, nullptr, 0);
    sm.EmfCreateBrush(5, 0, 0, 0);  // a solid brush of colour 0 keeps the colour
    sm.EmfCreateBrush(6, 1, 0, 0);  // null and pattern brushes fill with none
    sm.EmfCreateBrush(7, 3, 0, 0);
    const QString dashed =
        " stroke-width=\"2\" \n " + kRoundCapJoin + "stroke-dasharray=\" 8 , 4\" ";
    const QString blue = " stroke=\"#0000ff\"" + dashed, red = "  fill=\"#ff0000\"\n";
    const std::pair<unsigned long, QString> steps[] = {
        // Unknown handles and stock objects without an effect still merge, once.
        {0xFFFFFFFF, kFreshPen + " fill=\"white\""},
        {0x8000000E, kFreshPen + " fill=\"white\""},  // DEVICE_DEFAULT_FONT, no EMF font yet
        {0x80000001, kFreshPen + "  fill=\"lightgray\" "},
        {0x80000002, kFreshPen + "  fill=\"gray\" "},
        {5, kFreshPen + "  fill=\"#000000\"\n"},
        {0x80000003, kFreshPen + "  fill=\"darkgray\" "},
        {6, kFreshPen + "  fill=\"none\" "},
        {0x80000004, kFreshPen + "  fill=\"black\" "},
        {7, kFreshPen + "  fill=\"none\" "},
        {0x80000000, kFreshPen + "  fill=\"white\" "},
        {0x80000005, kFreshPen + "  fill=\"none\" "},
        {1, blue + "  fill=\"none\" "},
        {2, blue + red},
        {0x80000007, " " + dashed + "  stroke=\"black\" "},  // BLACK_PEN
        {0x80000006, " " + dashed + "  stroke=\"white\" "},  // WHITE_PEN
        {2, blue + red},
        {3, " stroke=\"black\" stroke-width=\"1\" \n " + kRoundCapJoin + red},
        {4, " stroke=\"#030201\" stroke-width=\"4000000000\" \n" + red},
        {0x80000008, " stroke=\"none\" " + red},  // NULL_PEN
    };
    for (const auto& [handle, current] : steps) {
        sm.EmfSelectObject(handle);
        EXPECT_EQ(sm.GetCurrentStyle(), current) << std::hex << handle;
    }
    // A brush re-created under a used handle changes the selection only when reselected.
    EXPECT_EQ(sm.EmfGetBrush(2), "=\"#ff0000\"\n");
    EXPECT_EQ(sm.EmfGetBrush(1), "");  // a pen
    sm.EmfCreateBrush(2, 0, 0, 0xFF0000);
    const QString nullPen = " stroke=\"none\" ", blueFill = "  fill=\"#0000ff\"\n";
    EXPECT_EQ(sm.GetCurrentStyle(), nullPen + red);
    sm.EmfSelectObject(2);
    EXPECT_EQ(sm.GetCurrentStyle(), nullPen + blueFill);
    // Deleting resets the escapement and leaves the selection; the handle then selects nothing.
    sm.EmfCreateFont(8, LogFont("Tahoma", 10, 400, 900));
    EXPECT_EQ(sm.EmfDeleteObject(2), 0);
    EXPECT_EQ(sm.GetEscapement(), 0);
    EXPECT_EQ(sm.GetCurrentStyle(), nullPen + blueFill);
    sm.EmfSelectObject(0x80000005);
    sm.EmfSelectObject(2);
    EXPECT_EQ(sm.GetCurrentStyle(), nullPen + "  fill=\"none\" ");
}

// EMF fonts set the escapement when made; WMF fonts leave it, and read their 16-bit height and
// weight unsigned and their face name (Latin-1) up to 32 bytes. DEVICE_DEFAULT_FONT selects the
// latest EMF font. Face names default to Arial in EMF only; WMF fonts write their size, not
// strike-out. The texts are UTF-8.
TEST(StyleFonts, TextsHeightsAndEscapement) {
    const struct {
        bool wmf;
        const char* face;
        int height, italic, underline, strikeOut, weight, tenths, degrees, selectedHeight;
        const char* text;
    } cases[] = {
        {false, "", -20, 0, 0, 0, 400, 900, -90, 20,
         " font-family=\"Arial\"  font-weight=\"400\" \n"},
        {false, "A", 12, 1, 1, 0, -5, -450, 45, 12,
         " font-family=\"A\"  font-style=\"italic\"  text-decoration=\"underline\"  "
         "font-weight=\"-5\" \n"},
        {false, "\xce\xa9", 12, 0, 1, 1, 0, 15, -1, 12,  // a face name beyond Latin-1
         " font-family=\"\xce\xa9\"  text-decoration=\"underline line-through\" "},
        {false, "A", INT32_MIN, 0, 0, 2, 0, -9, 0, INT32_MAX,
         " font-family=\"A\"  text-decoration=\"line-through\" "},
        {false, "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345", 12, 0, 0, 0, 0, INT32_MIN, 214748364, 12,
         " font-family=\"ABCDEFGHIJKLMNOPQRSTUVWXYZ012345\" "},
        {true, "Caf\xe9", -12, 1, 1, 1, -1, 0, 7, 65524,
         " font-family=\"Caf\xc3\xa9\" font-size=\"65524\"  font-style=\"italic\"  "
         "text-decoration=\"underline\"  font-weight=\"65535\" \n"},
        {true, "", 9, 0, 0, 1, 0, 0, 7, 9, " font-family=\"\" font-size=\"9\" "},
        {true, "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", 0, 0, 0, 0, 0, 0, 7, 0,  // no NUL in the field
         " font-family=\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\" font-size=\"0\" "},
    };
    for (const auto& c : cases) {
        CStyleManager sm;
        sm.EmfCreateFont(1, LogFont("Earlier", 30, 0, -70));
        if (c.wmf) {
            FONTSPEC f = {};
            f.Height = (int16_t)c.height, f.Weight = (int16_t)c.weight;
            f.Italic = c.italic, f.Underline = c.underline, f.StrikeOut = c.strikeOut;
            std::strncpy(f.Facename, c.face, sizeof f.Facename);
            EXPECT_EQ(sm.MetaCreateFont(8, f), 0);
        } else {
            tagLOGFONTW lf = LogFont(c.face, c.height, c.weight, c.tenths);
            lf.lfItalic = c.italic, lf.lfUnderline = c.underline, lf.lfStrikeOut = c.strikeOut;
            EXPECT_EQ(sm.EmfCreateFont(8, lf), 0);
        }
        EXPECT_EQ(sm.GetEscapement(), c.degrees) << c.tenths;
        sm.EmfSelectObject(8);
        EXPECT_EQ(sm.GetCurrTextStyle(), QString::fromUtf8(c.text) + " fill=\"black\" ");
        EXPECT_EQ(sm.GetCurrentFontHeight(), c.selectedHeight) << c.face;
        EXPECT_EQ(sm.GetCurrentFontDescent(), 3);
        sm.EmfSelectObject(0x8000000E);
        EXPECT_EQ(sm.GetCurrentFontFamily(), c.wmf ? "Earlier" : c.face[0] ? c.face : "Arial");
    }
}

// Red brushes of each hatch style in one manager. The templates differ in the separator after
// <defs>, the background stroke, and the hatch id, fill and path; the background colour is
// the one set when the brush is made, and every pattern takes the next number.
TEST(StyleHatch, DefinitionsNumbersAndBackground) {
    const QString format =
        "<defs>%1<polygon id=\"BACKGROUND\" fill=\"%6\" stroke=\"%2\" "
        "points=\"0 0, 8 0, 8 8, 0 8, 0 0\" /> \t\t<path id=\"HATCH_%3\" stroke-width=\"1.0\" "
        "fill=\"%4\" stroke=\"#ff0000\" fill-opacity=\"1.0\" d=\"%5\" /> \t\t<pattern "
        "id=\"BRUSH_%7\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" > \t\t<g><g><use "
        "x=\"0\" y=\"0\" xlink:href=\"#BACKGROUND\" /><use x=\"0\" y=\"0\" "
        "xlink:href=\"#HATCH_%3\"/> \t\t</g></g></pattern></defs>\n";
    const char* const cases[][5] = {
        {" \t\t", "white", "HORIZONTAL", "#000000", "m0,8 l8,0"},
        {" \t\t", "none", "VERTICAL", "#000000", "m4,0 l0,8"},
        {" \t\t", "white", "FDIAGONAL", "#000000", "m0,0 l8,8"},
        {" \t\t", "white", "BDIAGONAL", "#000000", "m0,8 l8,-8"},
        {" \t\t", "white", "CROSS", "#000000", "m8,0 l0,16 m-8,-8 l16,0"},
        {"\t\t", "white", "DICROSS", "white", "m0,0 l8,8 m-8,0 l8,-8"},
    };
    const auto expected = [&](unsigned int hatch, const char* background, int number) {
        const auto& c = cases[hatch];
        return format.arg(c[0], c[1], c[2], c[3], c[4], background, QString::number(number));
    };
    CStyleManager sm;
    EXPECT_EQ(sm.EmfCreateBrush(20, 0, 0, 0xFF), 0);  // solid brushes take no number
    EXPECT_EQ(sm.GetPatternDef(20), "");
    for (unsigned int hatch = 0; hatch < 6; ++hatch) {
        if (hatch == 3) EXPECT_EQ(sm.SetBkgColor(0x00102030), "#302010");
        EXPECT_EQ(sm.EmfCreateBrush(hatch, 2, hatch, 0x000000FF), CStyleManager::kPatternMade);
        EXPECT_EQ(sm.GetPatternDef(hatch),
                  expected(hatch, hatch < 3 ? "none" : "#302010", hatch + 1));
    }
    EXPECT_EQ(sm.GetPatternDef(0), expected(0, "none", 1));
    // A used handle gets a new number; a hatch without a template defines nothing and names
    // the latest number (0 before any pattern).
    sm.EmfCreateBrush(0, 2, 1, 0x000000FF);
    EXPECT_EQ(sm.GetPatternDef(0), expected(1, "#302010", 7));
    EXPECT_EQ(sm.EmfCreateBrush(12, 2, 6, 0), CStyleManager::kPatternMade);
    EXPECT_EQ(sm.GetPatternDef(12), "");
    EXPECT_EQ(sm.EmfGetBrush(12), "=\"url(#BRUSH_7)\" \n");
    CStyleManager fresh;
    fresh.EmfCreateBrush(1, 2, 0xFFFFFFFF, 0);
    EXPECT_EQ(fresh.EmfGetBrush(1), "=\"url(#BRUSH_0)\" \n");
}
