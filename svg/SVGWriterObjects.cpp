// Object and drawing-state records forwarded to the style manager: pens, brushes, fonts,
// their selection and deletion, text alignment and colours. The writer keeps its cached
// styles (m_currStyle, m_textFill, m_bkColor) in step with the style manager.
#define TRACE_FILE "SVGWriter"
#include "svg/SVGWriter.h"

#include "api/Trace.h"
#include <cmath>

namespace {

// Pens with this style bit have a width in world units rather than device units.
const unsigned int kPsGeometric = 0x00010000;

// The magnitude of `v` cut toward zero, at most 4294967295; 0 for not-a-number.
unsigned int UnsignedMagnitude(double v) {
    const double m = std::fabs(v);
    if (std::isnan(m)) return 0;
    return m < 4294967296.0 ? static_cast<unsigned int>(m) : 0xFFFFFFFFu;
}

}  // namespace

bool CMySVGWriter::SetTextAlign(int flags) {
    TRACE_ENTER();
    m_textAlign = flags;
    TRACE_RETURN(true);
}

bool CMySVGWriter::SetTextColor(unsigned int colour) {
    TRACE_ENTER();
    m_styleMgr.SetTextColor(colour);
    m_textFill = m_styleMgr.GetCurrTextStyle();
    TRACE_RETURN(true);
}

bool CMySVGWriter::SetBkgMode(float opacity) {
    TRACE_ENTER();
    m_styleMgr.SetBkgMode(opacity);
    TRACE_RETURN(true);
}

bool CMySVGWriter::SetBkgColor(unsigned int colour) {
    TRACE_ENTER();
    m_bkColor = m_styleMgr.SetBkgColor(colour);
    TRACE_RETURN(true);
}

bool CMySVGWriter::CreateFont(unsigned int handle, tagLOGFONTW font) {
    TRACE_ENTER();
    m_styleMgr.EmfCreateFont(handle, font);
    TRACE_RETURN(true);
}

bool CMySVGWriter::MetaCreateFont(unsigned int handle, FONTSPEC font) {
    TRACE_ENTER();
    m_styleMgr.MetaCreateFont(handle, font);
    TRACE_RETURN(true);
}

bool CMySVGWriter::SelectObject(unsigned long handle) {
    TRACE_ENTER();
    m_styleMgr.EmfSelectObject(handle);
    m_currStyleStale = true;
    m_textFill = m_styleMgr.GetCurrTextStyle();
    TRACE_RETURN(true);
}

// The cached styles keep their values: deleting a selected object does not change what is
// drawn.
bool CMySVGWriter::DeleteObject(unsigned int handle) {
    TRACE_ENTER();
    m_styleMgr.EmfDeleteObject(handle);
    TRACE_RETURN(true);
}

// A geometric pen's width is mapped like the x coordinate of a point, translation included,
// and cut toward zero. A mirroring transform maps widths negative; the stroke keeps the
// magnitude. Widths stay unsigned, as a cosmetic pen's do: up to 4294967295, where larger
// ones stop.
bool CMySVGWriter::CreatePen(unsigned int handle, unsigned int style, unsigned int width,
                             unsigned int colour, const unsigned int* entries, unsigned int count) {
    TRACE_ENTER();
    if (style & kPsGeometric) {
        const float mapped = static_cast<float>(width) * m_xform.eM11 + m_xform.eDx;
        width = UnsignedMagnitude(mapped);
    }
    m_styleMgr.EmfCreatePen(handle, style, width, colour, entries, count);
    TRACE_RETURN(true);
}

// A hatched brush's pattern definition goes into the document when the brush is made, so it
// precedes every element that refers to it.
bool CMySVGWriter::CreateBrushI(unsigned int handle, unsigned int style, unsigned int hatch,
                                unsigned int colour) {
    TRACE_ENTER();
    if (m_styleMgr.EmfCreateBrush(handle, style, hatch, colour) == CStyleManager::kPatternMade)
        m_out.Append(m_styleMgr.GetPatternDef(handle));
    TRACE_RETURN(true);
}
