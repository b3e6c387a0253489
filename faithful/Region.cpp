// Regions: the path of a region and the pixels of a path.
#include "faithful/Region.h"

#include <QPolygon>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace faithful {
namespace region {

namespace {

// A cubic is flattened into more segments the longer its control polygon, within these.
const int kLeastSteps = 2, kMostSteps = 64;

int Steps(PointF p0, PointF c1, PointF c2, PointF p3) {
    const double length = std::hypot(c1.x - p0.x, c1.y - p0.y) +
                          std::hypot(c2.x - c1.x, c2.y - c1.y) +
                          std::hypot(p3.x - c2.x, p3.y - c2.y);
    if (!std::isfinite(length)) return kLeastSteps;
    return std::max(kLeastSteps, std::min(kMostSteps, (int)std::ceil(std::sqrt(length))));
}

PointF CubicAt(PointF p0, PointF c1, PointF c2, PointF p3, double t) {
    const double u = 1 - t, a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
    return {a * p0.x + b * c1.x + c * c2.x + d * p3.x, a * p0.y + b * c1.y + c * c2.y + d * p3.y};
}

}  // namespace

QRect Everything(PointF deviceSize) {
    const double side = std::max(deviceSize.x, deviceSize.y) * 8;
    const int half =
        std::isfinite(side) ? (int)std::max(65536.0, std::min(4194304.0, side)) : 65536;
    return QRect(-half, -half, 2 * half, 2 * half);
}

int Edge(double v) {
    if (!std::isfinite(v)) return 0;
    return (int)std::llround(std::max<double>(-kExtent, std::min<double>(kExtent, v)));
}

Path PathOf(const QRegion& region) {
    Path path;
    for (const QRect& r : region) {
        const double l = r.x(), t = r.y(), right = l + r.width(), b = t + r.height();
        path.MoveTo({l, t});
        path.LineTo({right, t});
        path.LineTo({right, b});
        path.LineTo({l, b});
        path.Close();
    }
    return path;
}

namespace {
const int64_t kTallestPolygon = 100000;
// Budget units per squared scanline of Qt's merging (about 0.3 microseconds a unit).
const uint64_t kMergeDivisor = 32;
}  // namespace

bool Rasterise(const Path& path, FillRule rule, uint64_t& budget, QRegion& out) {
    // The figures become one polygon: each closed and followed by the polygon's first point,
    // so that the edges joining the figures run there and back and cancel under either rule.
    QPolygon polygon;
    std::vector<PointF> figure;
    const auto endFigure = [&] {
        if (figure.size() >= 3) {
            for (const PointF& p : figure) polygon.append(QPoint(Edge(p.x), Edge(p.y)));
            polygon.append(QPoint(Edge(figure[0].x), Edge(figure[0].y)));
            polygon.append(polygon.first());
        }
        figure.clear();
    };
    const std::vector<PointF>& pts = path.points();
    size_t i = 0;
    for (Path::Verb v : path.verbs()) {
        switch (v) {
            case Path::Verb::Move:
                endFigure();
                figure.push_back(pts[i++]);
                break;
            case Path::Verb::Line:
                figure.push_back(pts[i++]);
                break;
            case Path::Verb::Cubic: {
                const PointF p0 = figure.empty() ? pts[i] : figure.back();
                if (figure.empty()) figure.push_back(p0);
                const int n = Steps(p0, pts[i], pts[i + 1], pts[i + 2]);
                for (int k = 1; k <= n; ++k)
                    figure.push_back(CubicAt(p0, pts[i], pts[i + 1], pts[i + 2], (double)k / n));
                i += 3;
                break;
            }
            case Path::Verb::Close:
                endFigure();
                break;
        }
    }
    endFigure();
    // The scan conversion visits every scanline of the polygon and every edge on each, and
    // Qt merges the scanlines' rectangles into the region in time that grows with the square
    // of the polygon's height (a rotated square 21,525 pixels tall takes 1.5 s).
    uint64_t cost = 1;
    if (!polygon.isEmpty()) {
        const QRect box = polygon.boundingRect();
        const uint64_t height = (uint64_t)box.height();
        cost += height + height * height / kMergeDivisor;
        for (int k = 0; k < polygon.size(); ++k) {
            const int next = k + 1 < polygon.size() ? k + 1 : 0;
            cost += (uint64_t)std::llabs((long long)polygon[next].y() - polygon[k].y()) + 1;
        }
    }
    if (cost > budget) return false;
    budget -= cost;
    if (polygon.size() >= 3) {
        // Qt gives up on a polygon more than 100,000 scanlines tall, leaking its edge table.
        // Such a polygon is taken only when it is a rectangle along the axes.
        const QRect box = polygon.boundingRect();
        if ((int64_t)box.bottom() - box.top() > kTallestPolygon) {
            for (const QPoint& p : polygon)
                if ((p.x() != box.left() && p.x() != box.right()) ||
                    (p.y() != box.top() && p.y() != box.bottom()))
                    return false;
            out =
                QRegion(box.left(), box.top(), box.right() - box.left(), box.bottom() - box.top());
            return true;
        }
    }
    out = polygon.size() >= 3
              ? QRegion(polygon, rule == FillRule::EvenOdd ? Qt::OddEvenFill : Qt::WindingFill)
              : QRegion();
    return true;
}

}  // namespace region
}  // namespace faithful
