// Regions and clipping: filled regions as rectangles, framed regions as their traced outline,
// and clip regions and clip paths as numbered <clipPath> definitions that the style manager's
// clip attribute refers to in what follows.
#define TRACE_FILE "SVGWriter"
#include "svg/SVGWriter.h"

#include <list>

#include "api/Trace.h"
#include "geometry/Numeric.h"
#include "geometry/RgnPathUtil.h"

void CMySVGWriter::DrawRects(unsigned int count, const tagRECT* rects, const QByteArray& style) {
    for (int i = 0; i < (int)count; ++i) {
        const tagRECT& r = rects[i];
        DrawRect(r.left, r.top, numeric::Diff32(r.right, r.left), numeric::Diff32(r.bottom, r.top),
                 style, 0, 0);
    }
}

void CMySVGWriter::OpenClip() {
    m_out.Write("\n<defs><clipPath id= \"ClPath", m_clipId, "\">");
}

void CMySVGWriter::CloseClip() {
    m_out.Write("</clipPath></defs>");
    SvgBuffer id;
    id.Write("ClPath", m_clipId);
    m_styleMgr.ExtSetClipRgn(id.Text());
    m_currStyleStale = true;
    ++m_clipId;
}

// Without a brush entry the rectangles carry no fill attribute, and SVG fills them black.
bool CMySVGWriter::FillRgn(unsigned int count, const tagRECT* rects, unsigned int brush) {
    TRACE_ENTER();
    QByteArray style("stroke=\"none\" stroke-width=\"1\" ");
    const QByteArray fill = m_styleMgr.EmfGetBrush(brush);
    if (!fill.isEmpty()) style += "fill" + fill;
    DrawRects(count, rects, style);
    TRACE_RETURN(true);
}

// Vertical segments are stroked `width` wide, horizontal ones `height`.
bool CMySVGWriter::FrameRgn(unsigned int count, const tagRECT* rects, unsigned int brush,
                            unsigned int width, unsigned int height) {
    TRACE_ENTER();
    std::list<CLine> segments;
    ConvertRgnDataToPath((int)count, rects, segments);
    const QByteArray colour = m_styleMgr.EmfGetBrush(brush);
    SvgBuffer vertical, horizontal;
    if (!colour.isEmpty()) {
        vertical.Write("stroke", colour);
        horizontal.Write("stroke", colour);
    }
    vertical.Write("stroke-width=\"", width, "\" ");
    horizontal.Write("stroke-width=\"", height, "\" ");
    const QByteArray verticalStyle = vertical.Text(), horizontalStyle = horizontal.Text();
    for (const CLine& s : segments)
        DrawLine(s.x1, s.y1, s.x2, s.y2, s.x1 == s.x2 ? verticalStyle : horizontalStyle);
    TRACE_RETURN(true);
}

// The clip path replaces the clip attribute in force; m_clipSelected keeps its value, so while
// a clip path is selected the rectangles of the definition carry its attribute too.
bool CMySVGWriter::SetExtClipRgn(unsigned int count, const tagRECT* rects) {
    TRACE_ENTER();
    OpenClip();
    DrawRects(count, rects, QByteArray("stroke=\"none\" fill=\"none\" stroke-width=\"1\" "));
    CloseClip();
    TRACE_RETURN(true);
}

// The collected path data becomes the clip, whatever the mode.
bool CMySVGWriter::SelectClipPath(unsigned int mode) {
    if (m_clipSelected) {
        m_styleMgr.ExtSetClipRgn(QByteArray());
        m_currStyleStale = true;
    }
    OpenClip();
    m_out.Write("\n<path d = \"");
    m_out.Append(m_pathData);
    m_out.Write("\" ", m_styleMgr.GetCurrPenStyle(), "/>\n");
    CloseClip();
    m_pathData.Clear();
    m_clipSelected = true;
    return true;
}
