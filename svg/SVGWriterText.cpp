// Text elements for the three text records: placement by the text alignment, rotation by the
// selected font's escapement, and the background box of opaque mode.
#define TRACE_FILE "SVGWriter"
#include <QPointF>
#include <QTransform>
#include <cmath>
#include <cstdlib>

#include "api/Trace.h"
#include "geometry/GeometricHelpers.h"
#include "geometry/Numeric.h"
#include "svg/SVGWriter.h"

using geometry::Add32;
using geometry::Sub32;

namespace {

const int kTransparent = 1;

// The text alignment flags that move the reference point.
enum : int {
    kLeftTop = 0,
    kRightTop = 2,
    kCentreTop = 6,
    kLeftBottom = 8,
    kRightBottom = 10,
    kCentreBottom = 14,
    kRightBaseline = 26,
    kCentreBaseline = 30,
    kRtlReading = 256,
};

// Rounds to the nearest integer, halves toward positive infinity, within the int32 range.
int32_t RoundHalfUp(double v) {
    return numeric::TruncToInt(std::floor(v + 0.5));
}

}  // namespace

void CMySVGWriter::WriteTextElement(TextForm form, int x, int y, const QByteArray& style,
                                    const TextRun& text) {
    const int escapement = m_styleMgr.GetEscapement();
    if (escapement != 0) m_out.Write("<g transform=\"rotate(", escapement, ' ', x, ' ', y, ")\">");
    m_out.Write("<text x=\"", x, "\" y=\"", y, '"', style);
    if (form != TextForm::Meta)
        m_out.Write(" font-size=\"", m_styleMgr.GetCurrentFontHeight(), "\" ");
    if (form == TextForm::Small)
        m_out.Write('>');
    else
        m_out.Write(" >");
    AppendXmlText(m_out, text);
    m_out.Write("</text>\n");
    if (escapement != 0) m_out.Write("</g>");
}

// In any background mode but transparent a box in the background colour goes behind the text.
bool CMySVGWriter::TextOut(const TextRun& text, tagPOINT position, tagRECT rect,
                           const QByteArray& style) {
    TRACE_ENTER();
    if (m_bkMode != kTransparent) {
        SvgBuffer background;
        background.Write("fill=\"", m_bkColor, "\" stroke=\"none\" fill-opacity=\"",
                         m_styleMgr.GetBkgMode(), "\" ");
        DrawRect(rect.left, rect.top, Sub32(rect.right, rect.left), Sub32(rect.bottom, rect.top),
                 background.Take(), 0, 0);
    }
    WriteTextElement(TextForm::Emf, position.x, position.y, style.isEmpty() ? m_textFill : style,
                     text);
    TRACE_RETURN(true);
}

bool CMySVGWriter::MetaTextOut(const TextRun& text, tagPOINT position, const char*,
                               const QByteArray& style) {
    WriteTextElement(TextForm::Meta, position.x, position.y, style.isEmpty() ? m_textFill : style,
                     text);
    return true;
}

// 8-bit text ends at its first zero byte. The text is not measured, so the point stays where
// the record put it whatever the alignment.
bool CMySVGWriter::SmallTextOut(const TextRun& text, _POINTL position) {
    TRACE_ENTER();
    const TextRun chars = text.UpToZero();
    tagRECT rect{position.x, position.y, position.x, position.y};
    CalculateRect(rect, chars);
    WriteTextElement(TextForm::Small, rect.left, rect.top, m_textFill, chars);
    TRACE_RETURN(true);
}

// Moves the point from where the alignment anchors the text to the left end of its baseline,
// where a text element anchors. A font turned by an odd number of right angles runs
// vertically, so the rectangle's width and height change roles. The offset turns with the
// font, exactly at right angles.
bool CMySVGWriter::GetPointOfReference(tagPOINT& point, tagRECT rect) {
    TRACE_ENTER();
    const int escapement = m_styleMgr.GetEscapement();
    const bool swap = (std::llabs((long long)escapement) / 90) % 2 == 1;
    const int32_t w = Sub32(rect.right, rect.left), h = Sub32(rect.bottom, rect.top);
    const int32_t across = swap ? h : w;
    const int32_t top = Sub32(swap ? w : h, m_styleMgr.GetCurrentFontDescent());
    const int32_t bottom = Sub32(0, m_styleMgr.GetCurrentFontDescent());
    int32_t dx = 0, dy = 0;
    switch (m_textAlign) {
        case kLeftTop:
        case kLeftTop | kRtlReading:
            dy = top;
            break;
        case kRightTop:
        case kRightTop | kRtlReading:
            dx = Sub32(0, across), dy = top;
            break;
        case kCentreTop:
            dx = Sub32(0, across / 2), dy = top;
            break;
        case kLeftBottom:
            dy = bottom;
            break;
        case kRightBottom:
            dx = Sub32(0, across), dy = bottom;
            break;
        case kCentreBottom:
            dx = Sub32(0, across / 2), dy = bottom;
            break;
        case kRightBaseline:
            dx = Sub32(0, across);
            break;
        case kCentreBaseline:
            dx = Sub32(0, across / 2);
            break;
        default:
            TRACE_RETURN(true);
    }
    const QPointF offset = QTransform().rotate(escapement).map(QPointF(dx, dy));
    point.x = Add32(point.x, RoundHalfUp(offset.x()));
    point.y = Add32(point.y, RoundHalfUp(offset.y()));
    TRACE_RETURN(true);
}

// Text is not measured: the sizes keep their values.
bool CMySVGWriter::GetTextDimensions(int&, int&, int&, const TextRun&) {
    TRACE_ENTER();
    TRACE_RETURN(true);
}

// Leaves the rectangle as it is: without measurement its left and top are the text's place.
bool CMySVGWriter::CalculateRect(tagRECT& rect, const TextRun& text) {
    TRACE_ENTER();
    int width = 0, height = 0, descent = 0;
    GetTextDimensions(width, height, descent, text);
    TRACE_RETURN(true);
}
