// Basic shapes: lines, poly-lines, polygons, rectangles, circles and ellipses, and the current
// position that line-to and poly-line-to records draw from.
#define TRACE_FILE "SVGWriter"
#include "svg/SVGWriter.h"

#include "api/Trace.h"

std::vector<tagPOINT> CMySVGWriter::WidenPoints(const tagPOINTS* points, unsigned int count) {
    std::vector<tagPOINT> wide;
    if (!points) return wide;
    wide.resize(count);
    for (unsigned int i = 0; i < count; ++i) wide[i] = tagPOINT{points[i].x, points[i].y};
    return wide;
}

bool CMySVGWriter::MoveTo(int x, int y) {
    TRACE_ENTER();
    m_curX = x;
    m_curY = y;
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawLine(int x1, int y1, int x2, int y2, const QByteArray& style) {
    TRACE_ENTER();
    m_out.Write("<line x1=\"", x1, "\" y1 = \"", y1, "\" x2 =\"", x2, "\" y2=\"", y2, "\" ",
                EffectiveStyle(style), "/>\n");
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawLineTo(int x, int y, const QByteArray& style) {
    TRACE_ENTER();
    DrawLine(m_curX, m_curY, x, y, style);
    MoveTo(x, y);
    TRACE_RETURN(true);
}

// A poly-line-to with no points draws neither the connecting line nor moves: there is no
// first or last point to use. Inside a path bracket the points become a closed subpath.
bool CMySVGWriter::DrawPolyLine(const tagPOINT* points, unsigned int count, bool closed,
                                bool fromCurrent, const QByteArray& style) {
    TRACE_ENTER();
    if (!points) count = 0;
    if (m_inPath) {
        AddToPath(points, count);
        TRACE_RETURN(true);
    }
    if (closed) {
        m_out.Write("<polygon points=\"");
        GetPointsString(points, count, m_out);
        m_out.Write("\" ", EffectiveStyle(style), "/>\n");
    } else {
        m_out.Write("<polyline points=\"");
        GetPointsString(points, count, m_out);
        m_out.Write("\" ", m_styleMgr.GetCurrPenStyle(), "/>\n");
    }
    if (fromCurrent && count > 0) {
        DrawLine(m_curX, m_curY, points[0].x, points[0].y, QByteArray());
        MoveTo(points[count - 1].x, points[count - 1].y);
    }
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawPolyLine(const tagPOINTS* points, unsigned int count, bool closed,
                                bool fromCurrent, const QByteArray& style) {
    TRACE_ENTER();
    const std::vector<tagPOINT> wide = WidenPoints(points, count);
    DrawPolyLine(wide.data(), static_cast<unsigned int>(wide.size()), closed, fromCurrent, style);
    TRACE_RETURN(true);
}

QByteArray CMySVGWriter::GetPointsString(const tagPOINT* points, unsigned int count) {
    SvgBuffer text;
    GetPointsString(points, count, text);
    return text.Take();
}

void CMySVGWriter::GetPointsString(const tagPOINT* points, unsigned int count, SvgBuffer& out) {
    TRACE_ENTER();
    if (points) {
        for (unsigned int i = 0; i < count; ++i) {
            out.AppendPoint(points[i].x, points[i].y);
            out.Append(' ');
        }
    }
    out.Append('\n');
    TRACE_RETURN();
}

// The counts must not address more points than the caller holds; a polygon of no points adds
// nothing to the data.
bool CMySVGWriter::DrawPolyPolygon(const tagPOINT* points, const unsigned short* counts,
                                   unsigned int polygons, const QByteArray& style) {
    TRACE_ENTER();
    m_out.Write("<path d=\"");
    if (points && counts) {
        size_t offset = 0;
        for (unsigned int i = 0; i < polygons; ++i) {
            GetPathString(points + offset, counts[i], m_out);
            offset += counts[i];
        }
    }
    m_out.Write("\" fill-rule=\"evenodd\"");
    WriteSeparatedStyle(EffectiveStyle(style));
    m_out.Write("/>\n");
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawRect(int x, int y, int width, int height, const QByteArray& style, int rx,
                            int ry) {
    TRACE_ENTER();
    const QByteArray& effective = EffectiveStyle(style);
    m_out.Write("<rect x=\"", x, "\" y=\"", y, "\" width=\"", width, "\" height=\"", height,
                "\" rx=\"", rx, "\" ry=\"", ry, "\" ", effective);
    if (m_clipSelected && !effective.contains("clip-path")) m_out.Write(m_styleMgr.GetClipPath());
    m_out.Write("/>\n");
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawCircle(int cx, int cy, int r, const QByteArray& style) {
    TRACE_ENTER();
    m_out.Write("<circle cx=\"", cx, "\" cy = \"", cy, "\" r=\"", r, "\" ", EffectiveStyle(style),
                "/>\n");
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawEllipse(int cx, int cy, int rx, int ry, const QByteArray& style) {
    TRACE_ENTER();
    m_out.Write("<ellipse cx=\"", cx, "\" cy = \"", cy, "\" rx = \"", rx, "\" ry = \"", ry, " \" ",
                EffectiveStyle(style), "/>\n");
    TRACE_RETURN(true);
}

// A pattern blit fills the rectangle with the current brush, in the current style.
bool CMySVGWriter::PatBlt(int x, int y, int width, int height) {
    TRACE_ENTER();
    DrawRect(x, y, width, height, QByteArray(), 0, 0);
    TRACE_RETURN(true);
}
