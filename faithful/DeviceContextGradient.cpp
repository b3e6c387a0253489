// The device context's gradient fills: rectangles and triangles blended between the colours of
// their vertices, resolved into device-space linear gradients.
#include <algorithm>
#include <cmath>
#include <vector>

#include "faithful/DeviceContext.h"

namespace faithful {

namespace {

// A colour with a real value per channel (0 to 255), for blends.
struct Colour {
    double c[3];
};

Colour ColourOf(Rgb rgb) {
    return {{(double)(rgb >> 16 & 0xFF), (double)(rgb >> 8 & 0xFF), (double)(rgb & 0xFF)}};
}

Rgb RgbOf(const Colour& c) {
    Rgb out = 0;
    for (double v : c.c) out = out << 8 | (Rgb)std::lround(std::max(0.0, std::min(255.0, v)));
    return out;
}

Colour Mix(const Colour& a, const Colour& b) {
    return {{(a.c[0] + b.c[0]) / 2, (a.c[1] + b.c[1]) / 2, (a.c[2] + b.c[2]) / 2}};
}

double Dot(const Colour& a, const Colour& b) {
    return a.c[0] * b.c[0] + a.c[1] * b.c[1] + a.c[2] * b.c[2];
}

Colour Minus(const Colour& a, const Colour& b) {
    return {{a.c[0] - b.c[0], a.c[1] - b.c[1], a.c[2] - b.c[2]}};
}

PointF Mid(PointF a, PointF b) {
    return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}

// A triangle's colours blended along one direction: `a` and `b` name its two most different
// colours, `along` the share of b's colour (0 to 1) nearest the third one's, and `off` how far
// (in levels) that nearest blend is from the third colour.
struct Blend {
    int a = 0, b = 1;
    double along = 0, off = 0;
};

Blend BlendOf(const Colour (&c)[3]) {
    Blend best;
    double widest = -1;
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const Colour d = Minus(c[j], c[i]);
        if (Dot(d, d) > widest) {
            widest = Dot(d, d);
            best.a = i;
            best.b = j;
        }
    }
    const Colour& third = c[3 - best.a - best.b];
    const Colour ab = Minus(c[best.b], c[best.a]), at = Minus(third, c[best.a]);
    best.along = widest > 0 ? std::max(0.0, std::min(1.0, Dot(at, ab) / widest)) : 0;
    Colour miss = at;
    for (int k = 0; k < 3; ++k) miss.c[k] -= best.along * ab.c[k];
    best.off = std::sqrt(Dot(miss, miss));
    return best;
}

// How many times a triangle whose blend is `off` levels away is cut in four.
int Cuts(double off) {
    return off <= 3 ? 0 : off <= 24 ? 1 : 2;
}

}  // namespace

void DeviceContext::GradientRect(PointF a, Rgb ca, PointF b, Rgb cb, bool vertical) {
    const Matrix m = LogicalToDevice();
    DrawOp op;
    shapes::Rectangle(op.path, m, {a.x, a.y, b.x, b.y});
    // The colours run from a to the corner across from it on the blend's axis; they stay
    // constant along the image of the other axis, so the gradient's vector is the normal to
    // that image.
    const PointF from = m.Map(a), across = m.Map(vertical ? PointF{a.x, b.y} : PointF{b.x, a.y});
    const PointF level = m.MapVector(vertical ? PointF{1, 0} : PointF{0, 1});
    const double norm = std::hypot(level.x, level.y);
    if (!(norm > 0)) return;
    const PointF n{-level.y / norm, level.x / norm};
    const double t = (across.x - from.x) * n.x + (across.y - from.y) * n.y;
    if (!(std::fabs(t) > 1e-9)) return;  // no width along the blend: nothing is filled
    op.fill.kind = Fill::Kind::LinearGradient;
    op.fill.color = ca;
    op.fill.color2 = cb;
    op.fill.from = from;
    op.fill.to = {from.x + t * n.x, from.y + t * n.y};
    Send(op);
}

void DeviceContext::GradientTriangle(const PointF (&v)[3], const Rgb (&c)[3], size_t maxPieces) {
    const Matrix m = LogicalToDevice();
    PointF d[3];
    Colour k[3];
    for (int i = 0; i < 3; ++i) {
        d[i] = m.Map(v[i]);
        k[i] = ColourOf(c[i]);
    }
    int cuts = Cuts(BlendOf(k).off);
    while (cuts > 0 && ((size_t)1 << (2 * cuts)) > maxPieces) --cuts;
    // Pieces still to draw: corners, colours and the cuts left.
    struct Piece {
        PointF p[3];
        Colour k[3];
        int cuts;
    };
    std::vector<Piece> todo{{{d[0], d[1], d[2]}, {k[0], k[1], k[2]}, cuts}};
    while (!todo.empty()) {
        const Piece t = todo.back();
        todo.pop_back();
        if (t.cuts > 0) {
            const PointF p01 = Mid(t.p[0], t.p[1]), p12 = Mid(t.p[1], t.p[2]),
                         p20 = Mid(t.p[2], t.p[0]);
            const Colour k01 = Mix(t.k[0], t.k[1]), k12 = Mix(t.k[1], t.k[2]),
                         k20 = Mix(t.k[2], t.k[0]);
            const int n = t.cuts - 1;
            todo.push_back({{t.p[0], p01, p20}, {t.k[0], k01, k20}, n});
            todo.push_back({{p01, t.p[1], p12}, {k01, t.k[1], k12}, n});
            todo.push_back({{p20, p12, t.p[2]}, {k20, k12, t.k[2]}, n});
            todo.push_back({{p01, p12, p20}, {k01, k12, k20}, n});
            continue;
        }
        const Blend blend = BlendOf(t.k);
        // The gradient's vector g: g.(pb - pa) = 1 and g.(pc - pa) = along.
        const PointF pa = t.p[blend.a], u{t.p[blend.b].x - pa.x, t.p[blend.b].y - pa.y};
        const PointF pc = t.p[3 - blend.a - blend.b], w{pc.x - pa.x, pc.y - pa.y};
        const double det = u.x * w.y - u.y * w.x;
        if (!(std::fabs(det) > 1e-12)) continue;  // no area
        const PointF g{(w.y - blend.along * u.y) / det, (blend.along * u.x - w.x) / det};
        const double g2 = g.x * g.x + g.y * g.y;
        DrawOp op;
        op.path.MoveTo(t.p[0]);
        op.path.LineTo(t.p[1]);
        op.path.LineTo(t.p[2]);
        op.path.Close();
        op.fill.color = RgbOf(t.k[blend.a]);
        op.fill.color2 = RgbOf(t.k[blend.b]);
        if (op.fill.color == op.fill.color2 || !(g2 > 0) || !std::isfinite(g2)) {
            op.fill.kind = Fill::Kind::Solid;
        } else {
            op.fill.kind = Fill::Kind::LinearGradient;
            op.fill.from = pa;
            op.fill.to = {pa.x + g.x / g2, pa.y + g.y / g2};
        }
        Send(op);
    }
}

}  // namespace faithful
