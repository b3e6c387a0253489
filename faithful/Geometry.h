// Geometry of the faithful interpreter: points, affine matrices, device-space paths and the
// Bézier forms of the drawing system's curved shapes.
//
// Curved shapes are built in logical coordinates and mapped to device space point by point:
// an affine map takes a cubic Bézier to the cubic Bézier of the mapped control points, so a
// shape under any world and page transform stays exact.
#ifndef SVGMODULE_FAITHFUL_GEOMETRY_H
#define SVGMODULE_FAITHFUL_GEOMETRY_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace faithful {

struct PointF {
    double x = 0;
    double y = 0;
};

// A rectangle by its edges; not normalised (left may exceed right).
struct RectF {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

// A 2x3 affine matrix in the metafile's XFORM order:
//   x' = x * m11 + y * m21 + dx,   y' = x * m12 + y * m22 + dy.
struct Matrix {
    double m11 = 1, m12 = 0, m21 = 0, m22 = 1, dx = 0, dy = 0;

    static Matrix Scale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    static Matrix Translate(double tx, double ty) { return {1, 0, 0, 1, tx, ty}; }

    // This matrix applied first, then `next`.
    Matrix Then(const Matrix& next) const;
    double Determinant() const { return m11 * m22 - m12 * m21; }
    // False, leaving `out` alone, when the matrix is singular or not finite.
    bool Invert(Matrix& out) const;
    // True when every entry is finite and the determinant is neither zero nor infinite.
    bool IsInvertible() const;
    PointF Map(PointF p) const { return {p.x * m11 + p.y * m21 + dx, p.x * m12 + p.y * m22 + dy}; }
    // The linear part only (for lengths and directions).
    PointF MapVector(PointF v) const { return {v.x * m11 + v.y * m21, v.x * m12 + v.y * m22}; }
};

// A path in device space: figures of straight and cubic segments.
class Path {
  public:
    enum class Verb : uint8_t { Move, Line, Cubic, Close };

    // Starts a figure at `p`.
    void MoveTo(PointF p);
    // A segment from the current point (a figure starts at `p` when there is none).
    void LineTo(PointF p);
    // Room for `points` more points, and as many verbs, without growing.
    void Reserve(size_t points) {
        m_verbs.reserve(m_verbs.size() + points);
        m_points.reserve(m_points.size() + points);
    }
    void CubicTo(PointF c1, PointF c2, PointF p);
    // Closes the open figure; the next segment starts a new one at the figure's start.
    void Close();
    // Appends another path's figures.
    void Append(const Path& other);
    void Clear();

    bool IsEmpty() const { return m_verbs.empty(); }
    // True when a figure is open (a segment may continue it).
    bool HasCurrentPoint() const { return m_open; }
    PointF CurrentPoint() const { return m_current; }
    // Number of figures started.
    size_t FigureCount() const { return m_figures; }
    // True when some segment is a curve.
    bool HasCurves() const { return m_curves; }
    // The smallest rectangle holding every point, control points included; all zero when empty.
    RectF Bounds() const;

    const std::vector<Verb>& verbs() const { return m_verbs; }
    // The points of the verbs in order: one for Move and Line, three for Cubic, none for Close.
    const std::vector<PointF>& points() const { return m_points; }

  private:
    std::vector<Verb> m_verbs;
    std::vector<PointF> m_points;
    PointF m_start;
    PointF m_current;
    bool m_open = false;
    bool m_curves = false;
    size_t m_figures = 0;
};

// Bézier builders. Each appends to `path` the figure of a shape given in logical coordinates,
// its points mapped by `m` to device space. Angles of elliptic arcs are taken on the ellipse
// of the normalised box `box`; `clockwise` is the direction in which the arc is swept as seen
// in device space (y down).
namespace shapes {

// The closed ellipse inscribed in `box`, starting at its right-most point.
void Ellipse(Path& path, const Matrix& m, const RectF& box);
// The closed rectangle; corners clockwise from the top-left in logical space.
void Rectangle(Path& path, const Matrix& m, const RectF& box);
// The closed rectangle with corners rounded by ellipses `cornerW` x `cornerH` (logical).
void RoundRect(Path& path, const Matrix& m, const RectF& box, double cornerW, double cornerH);

// The elliptic arc of the ellipse inscribed in `box` from the ray towards `start` to the ray
// towards `end` (radial points, logical), swept `clockwise` in device space. Start and end on
// the same ray make a whole ellipse. Connects to the path's current point with a line when
// `connect` (a figure starts at the arc's start otherwise). Returns the arc's end point in
// logical coordinates; `startOut` receives its start point.
PointF EllipticArc(Path& path, const Matrix& m, const RectF& box, PointF start, PointF end,
                   bool clockwise, bool connect, PointF* startOut = nullptr);

// The circular arc of AngleArc: centre, radius, start angle and sweep in degrees, counter-
// clockwise positive in logical space with y down (a sweep past 360 degrees draws the circle
// once). Connects to the current point with a line. Returns the end point (logical).
PointF AngleArc(Path& path, const Matrix& m, PointF centre, double radius, double startDeg,
                double sweepDeg);

}  // namespace shapes

}  // namespace faithful

#endif
