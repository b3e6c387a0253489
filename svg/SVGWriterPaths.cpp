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

QString CMySVGWriter::BezierSegment(const tagPOINT* first) {
    return QLatin1Char('C') + PointText(first[0].x, first[0].y) + QLatin1Char(' ') +
           PointText(first[1].x, first[1].y) + QLatin1Char(' ') + PointText(first[2].x, first[2].y);
}

QString CMySVGWriter::SeparatedStyle(const QString& style) {
    if (style.isEmpty() || style.at(0).isSpace()) return style;
    return QLatin1Char(' ') + style;
}

bool CMySVGWriter::StartPath() {
    TRACE_ENTER();
    m_inPath = true;
    m_clipSelected = false;
    m_styleMgr.ExtSetClipRgn(QString());
    m_currStyle = m_styleMgr.GetCurrentStyle();
    TRACE_RETURN(true);
}

bool CMySVGWriter::EndPath() {
    TRACE_ENTER();
    m_inPath = false;
    TRACE_RETURN(true);
}

bool CMySVGWriter::AbortPath() {
    m_clipSelected = false;
    m_pathData.clear();
    return true;
}

QString CMySVGWriter::AddToPath(const tagPOINT* points, unsigned int count) {
    TRACE_ENTER();
    m_pathData += GetPathString(points, count);
    TRACE_RETURN(m_pathData);
}

QString CMySVGWriter::AddToPath(const QString& data) {
    TRACE_ENTER();
    m_pathData += data;
    TRACE_RETURN(m_pathData);
}

// A closed subpath through the points; no points give no subpath at all.
QString CMySVGWriter::GetPathString(const tagPOINT* points, unsigned int count) {
    TRACE_ENTER();
    QString text;
    if (!points || count == 0) TRACE_RETURN(text);
    text = QStringLiteral(" M") + PointText(points[0].x, points[0].y) + QLatin1Char(' ');
    for (unsigned int i = 1; i < count; ++i)
        text += QStringLiteral(" L") + PointText(points[i].x, points[i].y) + QLatin1Char(' ');
    text += QStringLiteral(" Z");
    TRACE_RETURN(text);
}

bool CMySVGWriter::CloseFigure() {
    TRACE_ENTER();
    AddToPath(QStringLiteral(" L") + PointText(m_figStartX, m_figStartY) + QLatin1Char(' '));
    m_figStartX = 0;
    TRACE_RETURN(true);
}

bool CMySVGWriter::StrokePath() {
    TRACE_ENTER();
    m_stream << '\n'
             << "<path d = \"" << m_pathData << "\"" << SeparatedStyle(m_styleMgr.GetCurrPenStyle())
             << "/>" << '\n';
    m_pathData.clear();
    TRACE_RETURN(true);
}

// The brush style opens with the quote that closes the d attribute.
bool CMySVGWriter::FillPath() {
    TRACE_ENTER();
    m_stream << '\n'
             << "<path d = \"" << m_pathData << m_styleMgr.GetCurrBrushStyle() << "/>" << '\n';
    m_pathData.clear();
    TRACE_RETURN(true);
}

// One "C" command per complete group of three points; one or two points left over at the end
// are not drawn.
QString CMySVGWriter::GetBzrCurveData(const tagPOINT* points, unsigned int count) {
    TRACE_ENTER();
    QString text;
    if (!points) TRACE_RETURN(text);
    for (unsigned int i = 0; count - i >= 3; i += 3) text += BezierSegment(points + i);
    TRACE_RETURN(text);
}

// Without points there is no start (or, from the current position, no end): nothing is drawn
// and neither the current position nor the figure start changes.
bool CMySVGWriter::DrawPolyBeziers(const tagPOINT* points, unsigned int count, bool fromCurrent,
                                   const QString& style) {
    TRACE_ENTER();
    if (!points || count == 0) TRACE_RETURN(true);
    const tagPOINT start = fromCurrent ? tagPOINT{m_curX, m_curY} : points[0];
    const tagPOINT* curve = fromCurrent ? points : points + 1;
    const unsigned int curveCount = fromCurrent ? count : count - 1;
    if (m_figStartX == 0) {
        m_figStartX = start.x;
        m_figStartY = start.y;
    }
    const QString data = QLatin1Char('M') + PointText(start.x, start.y) + QLatin1Char(' ') +
                         GetBzrCurveData(curve, curveCount);
    if (m_inPath) {
        AddToPath(data);
    } else {
        m_stream << "<path d=\"" << data << "\" " << EffectiveStyle(style) << "/>" << '\n';
    }
    if (fromCurrent) MoveTo(points[count - 1].x, points[count - 1].y);
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawPolyBeziers(const tagPOINTS* points, unsigned int count, bool fromCurrent,
                                   const QString& style) {
    TRACE_ENTER();
    const std::vector<tagPOINT> wide = WidenPoints(points, count);
    DrawPolyBeziers(wide.data(), static_cast<unsigned int>(wide.size()), fromCurrent, style);
    TRACE_RETURN(true);
}

// A Bézier type needs the two points after it; when the list ends before them the walk stops
// there. Types outside the published set add nothing.
unsigned int CMySVGWriter::AppendPolyDrawPoint(QString& data, const tagPOINT* points,
                                               const unsigned char* types, unsigned int index,
                                               unsigned int count) {
    const tagPOINT& p = points[index];
    switch (types[index]) {
        case kMoveTo:
            data += QStringLiteral(" M") + PointText(p.x, p.y);
            return 1;
        case kLineTo:
            data += QStringLiteral(" L") + PointText(p.x, p.y);
            return 1;
        case kLineToClose:
            data += QStringLiteral(" L") + PointText(p.x, p.y) + QStringLiteral(" Z ");
            return 1;
        case kBezierTo:
        case kBezierToClose:
            if (count - index < 3) return 0;
            data += QLatin1Char(' ') + BezierSegment(points + index);
            if (types[index] == kBezierToClose) data += QStringLiteral(" Z ");
            return 3;
        default:
            return 1;
    }
}

bool CMySVGWriter::DrawMixedPoly(const tagPOINT* points, const unsigned char* types,
                                 unsigned int count, const QString& style) {
    TRACE_ENTER();
    QString data;
    if (!points || !types) count = 0;
    unsigned int i = 0;
    while (i < count) {
        const unsigned int taken = AppendPolyDrawPoint(data, points, types, i, count);
        if (taken == 0) break;
        i += taken;
    }
    m_stream << "<path d=\"" << data << "\"  " << EffectiveStyle(style) << "/>";
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawMixedPoly(const tagPOINTS* points, const unsigned char* types,
                                 unsigned int count, const QString& style) {
    TRACE_ENTER();
    const std::vector<tagPOINT> wide = WidenPoints(points, count);
    DrawMixedPoly(wide.data(), types, static_cast<unsigned int>(wide.size()), style);
    TRACE_RETURN(true);
}
