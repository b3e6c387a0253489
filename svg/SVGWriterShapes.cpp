// Basic shapes: lines, poly-lines, polygons, rectangles, circles and ellipses, and the current
// position that line-to and poly-line-to records draw from.
#define TRACE_FILE "SVGWriter"
#include "svg/SVGWriter.h"

#include "api/Trace.h"

QString CMySVGWriter::PointText(int x, int y) {
    return QString::number(x) + QLatin1Char(',') + QString::number(y);
}

std::vector<tagPOINT> CMySVGWriter::WidenPoints(const tagPOINTS* points, unsigned int count) {
    std::vector<tagPOINT> wide;
    if (!points) return wide;
    wide.reserve(count);
    for (unsigned int i = 0; i < count; ++i) wide.push_back(tagPOINT{points[i].x, points[i].y});
    return wide;
}

bool CMySVGWriter::MoveTo(int x, int y) {
    TRACE_ENTER();
    m_curX = x;
    m_curY = y;
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawLine(int x1, int y1, int x2, int y2, const QString& style) {
    TRACE_ENTER();
    m_stream << "<line x1=\"" << x1 << "\" y1 = \"" << y1 << "\" x2 =\"" << x2 << "\" y2=\"" << y2
             << "\" " << EffectiveStyle(style) << "/>" << '\n';
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawLineTo(int x, int y, const QString& style) {
    TRACE_ENTER();
    DrawLine(m_curX, m_curY, x, y, style);
    MoveTo(x, y);
    TRACE_RETURN(true);
}

// A poly-line-to with no points draws neither the connecting line nor moves: there is no
// first or last point to use. Inside a path bracket the points become a closed subpath.
bool CMySVGWriter::DrawPolyLine(const tagPOINT* points, unsigned int count, bool closed,
                                bool fromCurrent, const QString& style) {
    TRACE_ENTER();
    if (!points) count = 0;
    if (m_inPath) {
        AddToPath(points, count);
        TRACE_RETURN(true);
    }
    const QString pointsText = GetPointsString(points, count);
    if (closed) {
        m_stream << "<polygon points=\"" << pointsText << "\" " << EffectiveStyle(style) << "/>"
                 << '\n';
    } else {
        m_stream << "<polyline points=\"" << pointsText << "\" " << m_styleMgr.GetCurrPenStyle()
                 << "/>" << '\n';
    }
    if (fromCurrent && count > 0) {
        DrawLine(m_curX, m_curY, points[0].x, points[0].y, QString());
        MoveTo(points[count - 1].x, points[count - 1].y);
    }
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawPolyLine(const tagPOINTS* points, unsigned int count, bool closed,
                                bool fromCurrent, const QString& style) {
    TRACE_ENTER();
    const std::vector<tagPOINT> wide = WidenPoints(points, count);
    DrawPolyLine(wide.data(), static_cast<unsigned int>(wide.size()), closed, fromCurrent, style);
    TRACE_RETURN(true);
}

QString CMySVGWriter::GetPointsString(const tagPOINT* points, unsigned int count) {
    TRACE_ENTER();
    QString text;
    if (points) {
        for (unsigned int i = 0; i < count; ++i)
            text += PointText(points[i].x, points[i].y) + QLatin1Char(' ');
    }
    text += QLatin1Char('\n');
    TRACE_RETURN(text);
}

// The counts must not address more points than the caller holds; a polygon of no points adds
// nothing to the data.
bool CMySVGWriter::DrawPolyPolygon(const tagPOINT* points, const unsigned short* counts,
                                   unsigned int polygons, const QString& style) {
    TRACE_ENTER();
    QString data;
    if (points && counts) {
        size_t offset = 0;
        for (unsigned int i = 0; i < polygons; ++i) {
            data += GetPathString(points + offset, counts[i]);
            offset += counts[i];
        }
    }
    m_stream << "<path d=\"" << data << "\" fill-rule=\"evenodd\""
             << SeparatedStyle(EffectiveStyle(style)) << "/>" << '\n';
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawRect(int x, int y, int width, int height, const QString& style, int rx,
                            int ry) {
    TRACE_ENTER();
    QString effective = EffectiveStyle(style);
    if (m_clipSelected && !effective.contains(QLatin1String("clip-path"), Qt::CaseSensitive))
        effective += m_styleMgr.GetClipPath();
    m_stream << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << width << "\" height=\""
             << height << "\" rx=\"" << rx << "\" ry=\"" << ry << "\" " << effective << "/>"
             << '\n';
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawCircle(int cx, int cy, int r, const QString& style) {
    TRACE_ENTER();
    m_stream << "<circle cx=\"" << cx << "\" cy = \"" << cy << "\" r=\"" << r << "\" "
             << EffectiveStyle(style) << "/>" << '\n';
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawEllipse(int cx, int cy, int rx, int ry, const QString& style) {
    TRACE_ENTER();
    m_stream << "<ellipse cx=\"" << cx << "\" cy = \"" << cy << "\" rx = \"" << rx << "\" ry = \""
             << ry << " \" " << EffectiveStyle(style) << "/>" << '\n';
    TRACE_RETURN(true);
}

// A pattern blit fills the rectangle with the current brush, in the current style.
bool CMySVGWriter::PatBlt(int x, int y, int width, int height) {
    TRACE_ENTER();
    DrawRect(x, y, width, height, QString(), 0, 0);
    TRACE_RETURN(true);
}
