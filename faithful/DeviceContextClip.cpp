// The device context's clipping and regions: the clip (a set of device pixels kept with the
// saved states), the meta region, and the regions drawn.
#include <algorithm>
#include <cmath>
#include <vector>

#include "faithful/DeviceContext.h"
#include "faithful/Region.h"
#include "geometry/RgnPathUtil.h"

namespace faithful {

namespace {

bool AxisAligned(const Matrix& m) {
    return m.m12 == 0 && m.m21 == 0;
}

std::shared_ptr<const Clip> MakeClip(const QRegion& region) {
    std::shared_ptr<Clip> clip = std::make_shared<Clip>();
    clip->region = region;
    return clip;
}

// A rectangle in device pixels from two corners in device units (either order).
tagRECT PixelRect(PointF a, PointF b) {
    const int x1 = region::Edge(a.x), x2 = region::Edge(b.x);
    const int y1 = region::Edge(a.y), y2 = region::Edge(b.y);
    return tagRECT{std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
}

}  // namespace

bool DeviceContext::Charge(uint64_t units) {
    if (units > m_regionBudget) return false;
    m_regionBudget -= units;
    return true;
}

// A region's rectangles come from the file and may span more than an int: their edges are
// read as they are (left to right + 1), never through QRect's width and height.
bool DeviceContext::DeviceRegion(const QRegion& logical, QRegion& out) {
    const Matrix m = LogicalToDevice();
    if (!Charge((uint64_t)logical.rectCount() + 1)) return false;
    if (!AxisAligned(m)) {
        // Rotated or sheared: the pixels of the rectangles' outlines.
        Path path;
        for (const QRect& r : logical)
            shapes::Rectangle(
                path, m,
                {(double)r.left(), (double)r.top(), (double)r.right() + 1, (double)r.bottom() + 1});
        return region::Rasterise(path, FillRule::NonZero, m_regionBudget, out);
    }
    std::vector<tagRECT> rects;
    rects.reserve((size_t)logical.rectCount());
    for (const QRect& r : logical)
        rects.push_back(PixelRect(m.Map({(double)r.left(), (double)r.top()}),
                                  m.Map({(double)r.right() + 1, (double)r.bottom() + 1})));
    bool tooComplex = false;
    out = CreateQRegionFromRects((int)rects.size(), rects.data(), &tooComplex);
    return !tooComplex;
}

bool DeviceContext::CombineClip(const QRegion& region, int mode) {
    const Clip* current = m_state.clip.get();
    if (mode == gdi::RGN_COPY || (mode == gdi::RGN_AND && !current)) {
        SetClipRegion(region);
        return true;
    }
    if (mode == gdi::RGN_OR && !current) return true;  // everything stays everything
    if (mode < gdi::RGN_AND || mode > gdi::RGN_DIFF) return false;
    const QRegion base = current ? current->region : QRegion(region::Everything(m_deviceSize));
    const uint64_t count = CombinationCount(base, region, kMaxRegionRects);
    if (count > kMaxRegionRects || !Charge(count)) return false;
    switch (mode) {
        case gdi::RGN_AND:
            SetClipRegion(base.intersected(region));
            break;
        case gdi::RGN_OR:
            SetClipRegion(base.united(region));
            break;
        case gdi::RGN_XOR:
            SetClipRegion(base.xored(region));
            break;
        default:
            SetClipRegion(base.subtracted(region));
            break;
    }
    return true;
}

void DeviceContext::SetClipRegion(const QRegion& region) {
    m_state.clip = MakeClip(region);
    ClipChanged();
}

void DeviceContext::ClipChanged() {
    std::shared_ptr<const Clip> effective = m_state.clip;
    if (m_metaClip) {
        effective = m_metaClip;
        if (m_state.clip) {
            const QRegion& a = m_metaClip->region;
            const QRegion& b = m_state.clip->region;
            const uint64_t count = CombinationCount(a, b, kMaxRegionRects);
            // Past the budget, the smaller of the two stands for their intersection.
            if (count <= kMaxRegionRects && Charge(count))
                effective = MakeClip(a.intersected(b));
            else if (b.rectCount() < a.rectCount())
                effective = m_state.clip;
        }
    }
    if (effective == m_effectiveClip) return;
    // Bit blocks waiting for their partner were drawn under the clip they met.
    if (!m_pendingBlts.empty()) FlushBitmaps();
    m_effectiveClip = effective;
    m_sink.SetClip(effective);
}

bool DeviceContext::BoxRegion(const RectF& box, QRegion& out) {
    const Matrix m = LogicalToDevice();
    if (AxisAligned(m)) {
        out = QRegion(
            RectToQRect(PixelRect(m.Map({box.left, box.top}), m.Map({box.right, box.bottom}))));
        return true;
    }
    Path path;  // rotated or sheared: the pixels of its outline
    shapes::Rectangle(path, m, box);
    return region::Rasterise(path, FillRule::NonZero, m_regionBudget, out);
}

void DeviceContext::IntersectClipRect(const RectF& box) {
    QRegion device;
    if (BoxRegion(box, device)) CombineClip(device, gdi::RGN_AND);
}

void DeviceContext::ExcludeClipRect(const RectF& box) {
    QRegion device;
    if (BoxRegion(box, device)) CombineClip(device, gdi::RGN_DIFF);
}

void DeviceContext::SelectClipRegion(const QRegion* region, int mode) {
    if (!region) {
        if (mode == gdi::RGN_COPY && m_state.clip) {
            m_state.clip.reset();
            ClipChanged();
        }
        return;
    }
    if (Charge((uint64_t)region->rectCount() + 1)) CombineClip(*region, mode);
}

void DeviceContext::OffsetClipRgn(double dx, double dy) {
    if (!m_state.clip) return;
    const PointF d = LogicalToDevice().MapVector({dx, dy});
    const int x = region::Edge(d.x), y = region::Edge(d.y);
    if ((x == 0 && y == 0) || !Charge((uint64_t)m_state.clip->region.rectCount() + 1)) return;
    // Moved, and cut to the extent regions keep to.
    SetClipRegion(
        m_state.clip->region.translated(x, y).intersected(region::Everything(m_deviceSize)));
}

void DeviceContext::SetMetaRgn() {
    if (!m_state.clip) return;
    m_metaClip = m_effectiveClip;  // the meta region and the clip, intersected
    m_state.clip.reset();
    ClipChanged();
}

void DeviceContext::SelectClipPath(int mode) {
    if (m_inBracket) EndPath();
    // A widened path's outline is not computed: its clip is left out.
    QRegion region;
    if (m_pathReady && !m_widened &&
        region::Rasterise(m_path, PolyFillRule(), m_regionBudget, region))
        CombineClip(region, mode);
    AbortPath();
}

// --- regions drawn -------------------------------------------------------------------------

void DeviceContext::DrawRegion(const QRegion& device, const Fill& fill) {
    DrawOp op;
    op.path = region::PathOf(device);
    op.fill = fill;
    Send(op);
}

void DeviceContext::FillRegion(const QRegion& region, const LogBrush& brush) {
    QRegion device;
    if (DeviceRegion(region, device)) DrawRegion(device, BrushFill(brush));
}

void DeviceContext::PaintRegion(const QRegion& region) {
    FillRegion(region, m_state.brush);
}

void DeviceContext::InvertRegion(const QRegion& region) {
    QRegion device;
    if (!DeviceRegion(region, device)) return;
    Fill black;
    black.kind = Fill::Kind::Solid;
    DrawRegion(device, black);
}

void DeviceContext::FrameRegion(const QRegion& region, const LogBrush& brush, double width,
                                double height) {
    QRegion device;
    if (!DeviceRegion(region, device)) return;
    // The frame is what the region loses when it shrinks by the frame's width and height: the
    // pixels whose neighbour that far to the left, right, top or bottom lies outside it.
    const Matrix m = LogicalToDevice();
    const PointF w = m.MapVector({width, 0}), h = m.MapVector({0, height});
    const int fw = std::max(1, region::Edge(std::hypot(w.x, w.y)));
    const int fh = std::max(1, region::Edge(std::hypot(h.x, h.y)));
    QRegion inner = device;
    const QPoint shifts[4] = {{fw, 0}, {-fw, 0}, {0, fh}, {0, -fh}};
    for (const QPoint& s : shifts) {
        const QRegion moved = device.translated(s);
        const uint64_t count = CombinationCount(inner, moved, kMaxRegionRects);
        if (count > kMaxRegionRects || !Charge(count)) return;
        inner = inner.intersected(moved);
    }
    const uint64_t count = CombinationCount(device, inner, kMaxRegionRects);
    if (count > kMaxRegionRects || !Charge(count)) return;
    DrawRegion(device.subtracted(inner), BrushFill(brush));
}

}  // namespace faithful
