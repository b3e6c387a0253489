// Matrices, paths and the Bézier forms of ellipses, arcs and rounded rectangles.
#include "faithful/Geometry.h"

#include <algorithm>
#include <cmath>

namespace faithful {

namespace {

const double kPi = 3.14159265358979323846;

bool Finite(double v) {
    return std::isfinite(v);
}

}  // namespace

// --- Matrix --------------------------------------------------------------------------------

Matrix Matrix::Then(const Matrix& n) const {
    Matrix r;
    r.m11 = m11 * n.m11 + m12 * n.m21;
    r.m12 = m11 * n.m12 + m12 * n.m22;
    r.m21 = m21 * n.m11 + m22 * n.m21;
    r.m22 = m21 * n.m12 + m22 * n.m22;
    r.dx = dx * n.m11 + dy * n.m21 + n.dx;
    r.dy = dx * n.m12 + dy * n.m22 + n.dy;
    return r;
}

bool Matrix::IsInvertible() const {
    if (!Finite(m11) || !Finite(m12) || !Finite(m21) || !Finite(m22) || !Finite(dx) || !Finite(dy))
        return false;
    const double d = Determinant();
    return d != 0 && Finite(d) && Finite(1 / d);
}

bool Matrix::Invert(Matrix& out) const {
    if (!IsInvertible()) return false;
    const double d = Determinant();
    Matrix r;
    r.m11 = m22 / d;
    r.m12 = -m12 / d;
    r.m21 = -m21 / d;
    r.m22 = m11 / d;
    r.dx = -(dx * r.m11 + dy * r.m21);
    r.dy = -(dx * r.m12 + dy * r.m22);
    out = r;
    return true;
}

// --- Path ----------------------------------------------------------------------------------

void Path::MoveTo(PointF p) {
    // A move after a move only moves the figure's start.
    if (!m_verbs.empty() && m_verbs.back() == Verb::Move) {
        m_points.back() = p;
    } else {
        m_verbs.push_back(Verb::Move);
        m_points.push_back(p);
        ++m_figures;
    }
    m_start = m_current = p;
    m_open = true;
}

void Path::LineTo(PointF p) {
    if (!m_open) MoveTo(m_current);
    m_verbs.push_back(Verb::Line);
    m_points.push_back(p);
    m_current = p;
}

void Path::CubicTo(PointF c1, PointF c2, PointF p) {
    if (!m_open) MoveTo(m_current);
    m_verbs.push_back(Verb::Cubic);
    m_points.push_back(c1);
    m_points.push_back(c2);
    m_points.push_back(p);
    m_current = p;
    m_curves = true;
}

void Path::Close() {
    if (!m_open) return;
    m_verbs.push_back(Verb::Close);
    m_current = m_start;
    m_open = false;
}

void Path::Append(const Path& other) {
    size_t pi = 0;
    for (Verb v : other.m_verbs) {
        switch (v) {
            case Verb::Move:
                MoveTo(other.m_points[pi++]);
                break;
            case Verb::Line:
                LineTo(other.m_points[pi++]);
                break;
            case Verb::Cubic:
                CubicTo(other.m_points[pi], other.m_points[pi + 1], other.m_points[pi + 2]);
                pi += 3;
                break;
            case Verb::Close:
                Close();
                break;
        }
    }
}

void Path::Clear() {
    *this = Path();
}

RectF Path::Bounds() const {
    RectF r;
    if (m_points.empty()) return r;
    r.left = r.right = m_points[0].x;
    r.top = r.bottom = m_points[0].y;
    for (const PointF& p : m_points) {
        r.left = std::min(r.left, p.x);
        r.right = std::max(r.right, p.x);
        r.top = std::min(r.top, p.y);
        r.bottom = std::max(r.bottom, p.y);
    }
    return r;
}

// --- shapes --------------------------------------------------------------------------------

namespace shapes {

namespace {

// An ellipse by centre and radii, in logical coordinates.
struct Oval {
    double cx, cy, rx, ry;
    explicit Oval(const RectF& b)
        : cx((b.left + b.right) / 2),
          cy((b.top + b.bottom) / 2),
          rx(std::fabs(b.right - b.left) / 2),
          ry(std::fabs(b.bottom - b.top) / 2) {}
    PointF At(double t) const { return {cx + rx * std::cos(t), cy + ry * std::sin(t)}; }
    // The parameter of the point where the ray from the centre towards `p` meets the ellipse.
    double ParameterOf(PointF p) const {
        const double y = (p.y - cy) * rx, x = (p.x - cx) * ry;
        return (x == 0 && y == 0) ? 0 : std::atan2(y, x);
    }
};

// Appends the arc of `o` from parameter t0 over `sweep` radians (|sweep| <= 2 pi) as cubic
// pieces of at most a quarter turn each. The path's current point is the arc's start.
void AppendArc(Path& path, const Matrix& m, const Oval& o, double t0, double sweep) {
    if (!Finite(t0) || !Finite(sweep) || std::fabs(sweep) > 2 * kPi + 1e-9) return;
    const int pieces = std::max(1, (int)std::ceil(std::fabs(sweep) / (kPi / 2) - 1e-9));
    const double step = sweep / pieces;
    const double k = 4.0 / 3.0 * std::tan(step / 4);
    double a = t0;
    for (int i = 0; i < pieces; ++i) {
        const double b = (i + 1 == pieces) ? t0 + sweep : a + step;
        const double ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
        const PointF c1{o.cx + o.rx * (ca - k * sa), o.cy + o.ry * (sa + k * ca)};
        const PointF c2{o.cx + o.rx * (cb + k * sb), o.cy + o.ry * (sb - k * cb)};
        path.CubicTo(m.Map(c1), m.Map(c2), m.Map(o.At(b)));
        a = b;
    }
}

RectF Normalised(const RectF& b) {
    return {std::min(b.left, b.right), std::min(b.top, b.bottom), std::max(b.left, b.right),
            std::max(b.top, b.bottom)};
}

}  // namespace

void Ellipse(Path& path, const Matrix& m, const RectF& box) {
    const Oval o(box);
    path.MoveTo(m.Map(o.At(0)));
    AppendArc(path, m, o, 0, 2 * kPi);
    path.Close();
}

void Rectangle(Path& path, const Matrix& m, const RectF& box) {
    const RectF b = Normalised(box);
    path.MoveTo(m.Map({b.left, b.top}));
    path.LineTo(m.Map({b.right, b.top}));
    path.LineTo(m.Map({b.right, b.bottom}));
    path.LineTo(m.Map({b.left, b.bottom}));
    path.Close();
}

void RoundRect(Path& path, const Matrix& m, const RectF& box, double cornerW, double cornerH) {
    const RectF b = Normalised(box);
    const double rx = std::min(std::fabs(cornerW), b.right - b.left) / 2;
    const double ry = std::min(std::fabs(cornerH), b.bottom - b.top) / 2;
    if (rx <= 0 || ry <= 0 || !Finite(rx) || !Finite(ry)) return Rectangle(path, m, box);
    // Corners clockwise from the top right; each quarter ellipse sweeps a quarter turn.
    const Oval corners[4] = {
        Oval({b.right - 2 * rx, b.top, b.right, b.top + 2 * ry}),
        Oval({b.right - 2 * rx, b.bottom - 2 * ry, b.right, b.bottom}),
        Oval({b.left, b.bottom - 2 * ry, b.left + 2 * rx, b.bottom}),
        Oval({b.left, b.top, b.left + 2 * rx, b.top + 2 * ry}),
    };
    path.MoveTo(m.Map({b.left + rx, b.top}));
    for (int i = 0; i < 4; ++i) {
        const double t0 = -kPi / 2 + i * kPi / 2;
        path.LineTo(m.Map(corners[i].At(t0)));
        AppendArc(path, m, corners[i], t0, kPi / 2);
    }
    path.Close();
}

PointF EllipticArc(Path& path, const Matrix& m, const RectF& box, PointF start, PointF end,
                   bool clockwise, bool connect, PointF* startOut) {
    const Oval o(box);
    const double t0 = o.ParameterOf(start), t1 = o.ParameterOf(end);
    // Increasing parameters turn from +x towards +y in logical space: clockwise on a y-down
    // device unless the mapping mirrors.
    const bool increasing = clockwise == (m.Determinant() >= 0);
    double sweep = increasing ? t1 - t0 : t0 - t1;
    while (sweep <= 1e-12) sweep += 2 * kPi;
    while (sweep > 2 * kPi + 1e-12) sweep -= 2 * kPi;
    if (!increasing) sweep = -sweep;
    const PointF first = o.At(t0);
    if (connect && path.HasCurrentPoint())
        path.LineTo(m.Map(first));
    else
        path.MoveTo(m.Map(first));
    AppendArc(path, m, o, t0, sweep);
    if (startOut) *startOut = first;
    return o.At(t0 + sweep);
}

PointF AngleArc(Path& path, const Matrix& m, PointF centre, double radius, double startDeg,
                double sweepDeg) {
    const Oval o({centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius});
    // Counter-clockwise with y down is a decreasing parameter.
    const double t0 = -startDeg * kPi / 180;
    const double sweep = -std::max(-360.0, std::min(360.0, sweepDeg)) * kPi / 180;
    const PointF first = o.At(t0);
    if (path.HasCurrentPoint())
        path.LineTo(m.Map(first));
    else
        path.MoveTo(m.Map(first));
    if (sweep != 0) AppendArc(path, m, o, t0, sweep);
    return o.At(t0 + sweep);
}

}  // namespace shapes

}  // namespace faithful
