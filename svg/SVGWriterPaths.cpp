// Path brackets, path data and Bézier curves.
//
// Between StartPath and EndPath, poly-lines and poly-Béziers add to m_pathData instead of
// writing elements; StrokePath and FillPath write the collected data as one <path> and empty
// it. Path data uses absolute "M", "L", "C" and "Z" commands with integer coordinates.
#define TRACE_FILE "SVGWriter"
#include "svg/SVGWriter.h"

#include "api/Trace.h"

namespace {

// Point types of EMR_POLYDRAW and EMR_POLYDRAW16, with PT_CLOSEFIGURE (1) folded in.
enum PolyDrawType {
    kLineTo = 2,
    kLineToClose = 3,
    kBezierTo = 4,
    kBezierToClose = 5,
    kMoveTo = 6,
};

}  // namespace

void CMySVGWriter::WriteBezierSegment(SvgBuffer& out, const tagPOINT* first) {
    out.Append('C');
    out.AppendPoint(first[0].x, first[0].y);
    out.Append(' ');
    out.AppendPoint(first[1].x, first[1].y);
    out.Append(' ');
    out.AppendPoint(first[2].x, first[2].y);
}

void CMySVGWriter::WriteSeparatedStyle(const QByteArray& style) {
    const char first = style.isEmpty() ? ' ' : style.at(0);
    if (!QChar::isSpace((unsigned char)first)) m_out.Append(' ');
    m_out.Append(style);
}

bool CMySVGWriter::StartPath() {
    TRACE_ENTER();
    m_inPath = true;
    m_clipSelected = false;
    m_styleMgr.ExtSetClipRgn(QByteArray());
    m_currStyleStale = true;
    TRACE_RETURN(true);
}

bool CMySVGWriter::EndPath() {
    TRACE_ENTER();
    m_inPath = false;
    TRACE_RETURN(true);
}

bool CMySVGWriter::AbortPath() {
    m_clipSelected = false;
    m_pathData.Clear();
    return true;
}

bool CMySVGWriter::AddToPath(const tagPOINT* points, unsigned int count) {
    TRACE_ENTER();
    GetPathString(points, count, m_pathData);
    TRACE_RETURN(true);
}

bool CMySVGWriter::AddToPath(const QByteArray& data) {
    TRACE_ENTER();
    m_pathData.Append(data);
    TRACE_RETURN(true);
}

bool CMySVGWriter::AddToPath(const SvgBuffer& data) {
    TRACE_ENTER();
    m_pathData.Append(data);
    TRACE_RETURN(true);
}

QByteArray CMySVGWriter::GetPathString(const tagPOINT* points, unsigned int count) {
    SvgBuffer text;
    GetPathString(points, count, text);
    return text.Take();
}

// A closed subpath through the points; no points give no subpath at all.
void CMySVGWriter::GetPathString(const tagPOINT* points, unsigned int count, SvgBuffer& out) {
    TRACE_ENTER();
    if (!points || count == 0) TRACE_RETURN();
    out.Write(" M");
    out.AppendPoint(points[0].x, points[0].y);
    out.Append(' ');
    for (unsigned int i = 1; i < count; ++i) {
        out.Write(" L");
        out.AppendPoint(points[i].x, points[i].y);
        out.Append(' ');
    }
    out.Write(" Z");
    TRACE_RETURN();
}

bool CMySVGWriter::CloseFigure() {
    TRACE_ENTER();
    SvgBuffer line;
    line.Write(" L", m_figStartX, ',', m_figStartY, ' ');
    AddToPath(line);
    m_figStartX = 0;
    TRACE_RETURN(true);
}

bool CMySVGWriter::StrokePath() {
    TRACE_ENTER();
    m_out.Write("\n<path d = \"");
    m_out.Append(m_pathData);
    m_out.Append('"');
    WriteSeparatedStyle(m_styleMgr.GetCurrPenStyle());
    m_out.Write("/>\n");
    m_pathData.Clear();
    TRACE_RETURN(true);
}

// The brush style opens with the quote that closes the d attribute.
bool CMySVGWriter::FillPath() {
    TRACE_ENTER();
    m_out.Write("\n<path d = \"");
    m_out.Append(m_pathData);
    m_out.Write(m_styleMgr.GetCurrBrushStyle(), "/>\n");
    m_pathData.Clear();
    TRACE_RETURN(true);
}

QByteArray CMySVGWriter::GetBzrCurveData(const tagPOINT* points, unsigned int count) {
    SvgBuffer text;
    GetBzrCurveData(points, count, text);
    return text.Take();
}

// One "C" command per complete group of three points; one or two points left over at the end
// are not drawn.
void CMySVGWriter::GetBzrCurveData(const tagPOINT* points, unsigned int count, SvgBuffer& out) {
    TRACE_ENTER();
    if (!points) TRACE_RETURN();
    for (unsigned int i = 0; count - i >= 3; i += 3) WriteBezierSegment(out, points + i);
    TRACE_RETURN();
}

void CMySVGWriter::WriteBezierPath(SvgBuffer& out, const tagPOINT& start, const tagPOINT* curve,
                                   unsigned int count) {
    out.Append('M');
    out.AppendPoint(start.x, start.y);
    out.Append(' ');
    GetBzrCurveData(curve, count, out);
}

// Without points there is no start (or, from the current position, no end): nothing is drawn
// and neither the current position nor the figure start changes.
bool CMySVGWriter::DrawPolyBeziers(const tagPOINT* points, unsigned int count, bool fromCurrent,
                                   const QByteArray& style) {
    TRACE_ENTER();
    if (!points || count == 0) TRACE_RETURN(true);
    const tagPOINT start = fromCurrent ? tagPOINT{m_curX, m_curY} : points[0];
    const tagPOINT* curve = fromCurrent ? points : points + 1;
    const unsigned int curveCount = fromCurrent ? count : count - 1;
    if (m_figStartX == 0) {
        m_figStartX = start.x;
        m_figStartY = start.y;
    }
    if (m_inPath) {
        SvgBuffer data;
        WriteBezierPath(data, start, curve, curveCount);
        AddToPath(data);
    } else {
        m_out.Write("<path d=\"");
        WriteBezierPath(m_out, start, curve, curveCount);
        m_out.Write("\" ", EffectiveStyle(style), "/>\n");
    }
    if (fromCurrent) MoveTo(points[count - 1].x, points[count - 1].y);
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawPolyBeziers(const tagPOINTS* points, unsigned int count, bool fromCurrent,
                                   const QByteArray& style) {
    TRACE_ENTER();
    const std::vector<tagPOINT> wide = WidenPoints(points, count);
    DrawPolyBeziers(wide.data(), static_cast<unsigned int>(wide.size()), fromCurrent, style);
    TRACE_RETURN(true);
}

// A Bézier type needs the two points after it; when the list ends before them the walk stops
// there. Types outside the published set add nothing.
unsigned int CMySVGWriter::WritePolyDrawPoint(SvgBuffer& out, const tagPOINT* points,
                                              const unsigned char* types, unsigned int index,
                                              unsigned int count) {
    const tagPOINT& p = points[index];
    switch (types[index]) {
        case kMoveTo:
            out.Write(" M");
            out.AppendPoint(p.x, p.y);
            return 1;
        case kLineTo:
            out.Write(" L");
            out.AppendPoint(p.x, p.y);
            return 1;
        case kLineToClose:
            out.Write(" L");
            out.AppendPoint(p.x, p.y);
            out.Write(" Z ");
            return 1;
        case kBezierTo:
        case kBezierToClose:
            if (count - index < 3) return 0;
            out.Append(' ');
            WriteBezierSegment(out, points + index);
            if (types[index] == kBezierToClose) out.Write(" Z ");
            return 3;
        default:
            return 1;
    }
}

bool CMySVGWriter::DrawMixedPoly(const tagPOINT* points, const unsigned char* types,
                                 unsigned int count, const QByteArray& style) {
    TRACE_ENTER();
    if (!points || !types) count = 0;
    m_out.Write("<path d=\"");
    unsigned int i = 0;
    while (i < count) {
        const unsigned int taken = WritePolyDrawPoint(m_out, points, types, i, count);
        if (taken == 0) break;
        i += taken;
    }
    m_out.Write("\"  ", EffectiveStyle(style), "/>");
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawMixedPoly(const tagPOINTS* points, const unsigned char* types,
                                 unsigned int count, const QByteArray& style) {
    TRACE_ENTER();
    const std::vector<tagPOINT> wide = WidenPoints(points, count);
    DrawMixedPoly(wide.data(), types, static_cast<unsigned int>(wide.size()), style);
    TRACE_RETURN(true);
}
