// Hatched brushes as SVG patterns.
//
// A hatched brush has no SVG counterpart: it becomes an 8 x 8 <pattern> that paints a
// background square and the hatch lines, and the brush fills with url(#BRUSH_n). The square and
// the lines are defined inside <defs> next to the pattern, under fixed ids.
#define TRACE_FILE "StyleMgr"
#include "style/HatchPatterns.h"

#include "api/Trace.h"
#include "style/StyleMgr.h"

namespace {

// Separator between the elements of a template.
#define HATCH_SEP " \t\t"

// One template: name N, separator S after <defs>, background stroke G, hatch fill F and hatch
// path data D.
#define HATCH_TEMPLATE(N, S, G, F, D)                                                    \
    "<defs>" S "<polygon id=\"BACKGROUND\" fill=\"%1\" stroke=\"" G                      \
    "\" points=\"0 0, 8 0, 8 8, 0 8, 0 0\" />" HATCH_SEP "<path id=\"HATCH_" N           \
    "\" stroke-width=\"1.0\" fill=\"" F "\" stroke=\"%2\" fill-opacity=\"1.0\" d=\"" D   \
    "\" />" HATCH_SEP                                                                    \
    "<pattern id=\"BRUSH_%3\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" " \
    ">" HATCH_SEP                                                                        \
    "<g><g><use x=\"0\" y=\"0\" xlink:href=\"#BACKGROUND\" /><use x=\"0\" y=\"0\" "      \
    "xlink:href=\"#HATCH_" N "\"/>" HATCH_SEP "</g></g></pattern></defs>"

const char* const kTemplates[hatch::kStyleCount] = {
    HATCH_TEMPLATE("HORIZONTAL", HATCH_SEP, "white", "#000000", "m0,8 l8,0"),
    HATCH_TEMPLATE("VERTICAL", HATCH_SEP, "none", "#000000", "m4,0 l0,8"),
    HATCH_TEMPLATE("FDIAGONAL", HATCH_SEP, "white", "#000000", "m0,0 l8,8"),
    HATCH_TEMPLATE("BDIAGONAL", HATCH_SEP, "white", "#000000", "m0,8 l8,-8"),
    HATCH_TEMPLATE("CROSS", HATCH_SEP, "white", "#000000", "m8,0 l0,16 m-8,-8 l16,0"),
    HATCH_TEMPLATE("DICROSS", "\t\t", "white", "white", "m0,0 l8,8 m-8,0 l8,-8"),
};

#undef HATCH_TEMPLATE
#undef HATCH_SEP

}  // namespace

const char* hatch::Template(unsigned int style) {
    return style < static_cast<unsigned int>(kStyleCount) ? kTemplates[style] : nullptr;
}

// Makes the pattern of a hatched brush and returns the brush's fill attribute. A hatch style
// without a template makes no pattern; the fill then names the latest pattern number.
QByteArray CStyleManager::GetPattern(unsigned int handle, unsigned int hatchStyle,
                                     unsigned int colour) {
    TRACE_ENTER();
    const QByteArray colourText = GetColorString(colour);
    if (hatchStyle < static_cast<unsigned int>(hatch::kStyleCount)) {
        ++m_patternCounter;
        QByteArray definition(m_hatchTemplates[hatchStyle]);
        definition.replace("%1", m_bkgColor);
        definition.replace("%2", colourText);
        definition.replace("%3", QByteArray::number(m_patternCounter));
        definition += '\n';
        m_patterns[static_cast<int>(handle)] = definition;
    }
    TRACE_RETURN(" fill=\"url(#BRUSH_" + QByteArray::number(m_patternCounter) + ")\" \n");
}

QByteArray CStyleManager::GetPatternDef(unsigned int handle) {
    const auto it = m_patterns.find(static_cast<int>(handle));
    return it == m_patterns.end() ? QByteArray() : it->second;
}
