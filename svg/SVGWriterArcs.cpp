// Elliptic arcs, chords and pies as paths with the SVG arc command. The interpreters compute
// the end points, radii and flags; the writer formats them, the arc's end relative to its
// start. Only the arc-to moves the current position.
#define TRACE_FILE "SVGWriter"
#include "api/Trace.h"
#include "geometry/GeometricHelpers.h"
#include "svg/SVGWriter.h"

using geometry::Sub32;

void CMySVGWriter::WriteArcData(int x1, int y1, bool spaced, int rx, int ry, int rotation,
                                int large, int sweep, int x2, int y2) {
    m_out.Write("<path d=\"M");
    m_out.AppendPoint(x1, y1);
    if (spaced) m_out.Append(' ');
    m_out.Write('a', rx, ',', ry, ' ', rotation, ' ', large, ',', sweep, ' ');
    m_out.AppendPoint(Sub32(x2, x1), Sub32(y2, y1));
}

bool CMySVGWriter::DrawArc(int x1, int y1, int rx, int ry, int rotation, int large, int sweep,
                           int x2, int y2, const QByteArray& style) {
    TRACE_ENTER();
    WriteArcData(x1, y1, true, rx, ry, rotation, large, sweep, x2, y2);
    m_out.Write("\" ", EffectiveStyle(style), "/>\n");
    TRACE_RETURN(true);
}

// The arc, then the line from the current position to the arc's start; the current position
// ends at the arc's end.
bool CMySVGWriter::DrawArcTo(int x1, int y1, int rx, int ry, int rotation, int large, int sweep,
                             int x2, int y2, const QByteArray& style) {
    TRACE_ENTER();
    DrawArc(x1, y1, rx, ry, rotation, large, sweep, x2, y2, style);
    DrawLineTo(x1, y1, QByteArray());
    MoveTo(x2, y2);
    TRACE_RETURN(true);
}

bool CMySVGWriter::DrawChord(int x1, int y1, int rx, int ry, int rotation, int large, int sweep,
                             int x2, int y2, const QByteArray& style) {
    TRACE_ENTER();
    WriteArcData(x1, y1, false, rx, ry, rotation, large, sweep, x2, y2);
    m_out.Write(" z \" ", EffectiveStyle(style), "/>\n");
    TRACE_RETURN(true);
}

// The arc, a line from its end to the centre, and the close back to its start.
bool CMySVGWriter::DrawPie(int x1, int y1, int rx, int ry, int rotation, int large, int sweep,
                           int x2, int y2, int cx, int cy, const QByteArray& style) {
    TRACE_ENTER();
    WriteArcData(x1, y1, false, rx, ry, rotation, large, sweep, x2, y2);
    m_out.Write('l');
    m_out.AppendPoint(Sub32(cx, x2), Sub32(cy, y2));
    m_out.Write(" z \" ", EffectiveStyle(style), "/>\n");
    TRACE_RETURN(true);
}
