// The device context's drawing: lines, curves, shapes and the path bracket, and the pens and
// brushes resolved into device-space strokes and fills.
#include <algorithm>
#include <cmath>

#include "faithful/DeviceContext.h"

namespace faithful {

namespace {

// Dash patterns of the pen styles PS_DASH ... PS_DASHDOTDOT: device units for cosmetic pens,
// multiples of the width for geometric ones.
const std::vector<double> kCosmeticDashes[] = {{18, 6}, {3, 3}, {9, 6, 3, 6}, {9, 3, 3, 3, 3, 3}};
const std::vector<double> kGeometricDashes[] = {{3, 1}, {1, 1}, {3, 1, 1, 1}, {3, 1, 1, 1, 1, 1}};

// At most this many user-style entries are used (the drawing system's own limit).
const size_t kMaxUserStyle = 16;

Rgb Invert(Rgb c) {
    return ~c & 0xFFFFFF;
}

bool FinitePath(const Path& p) {
    for (const PointF& q : p.points())
        if (!std::isfinite(q.x) || !std::isfinite(q.y)) return false;
    return true;
}

Stroke::Cap CapOf(uint32_t style) {
    switch (style & gdi::PS_ENDCAP_MASK) {
        case gdi::PS_ENDCAP_SQUARE:
            return Stroke::Cap::Square;
        case gdi::PS_ENDCAP_FLAT:
            return Stroke::Cap::Flat;
        default:
            return Stroke::Cap::Round;
    }
}

Stroke::Join JoinOf(uint32_t style) {
    switch (style & gdi::PS_JOIN_MASK) {
        case gdi::PS_JOIN_BEVEL:
            return Stroke::Join::Bevel;
        case gdi::PS_JOIN_MITER:
            return Stroke::Join::Miter;
        default:
            return Stroke::Join::Round;
    }
}

// A dash list that draws something: every entry finite and not negative, one above zero.
bool UsableDashes(const std::vector<double>& d) {
    bool any = false;
    for (double v : d) {
        if (!std::isfinite(v) || v < 0) return false;
        any = any || v > 0;
    }
    return any;
}

}  // namespace

// --- styles --------------------------------------------------------------------------------

double DeviceContext::PixelWidth() const {
    const double perPixel = std::max(m_unitsPerMm.x, m_unitsPerMm.y) * 25.4 / 96;
    return perPixel > 1 ? perPixel : 1;
}

double DeviceContext::DeviceLength(double logical) const {
    const PointF v = LogicalToDevice().MapVector({logical, 0});
    return std::hypot(v.x, v.y);
}

Stroke DeviceContext::CurrentStroke() const {
    Stroke s;
    const LogPen& pen = m_state.pen;
    const uint32_t style = pen.style & gdi::PS_STYLE_MASK;
    if (style == gdi::PS_NULL || m_state.rop2 == gdi::R2_NOP) return s;
    s.visible = true;
    // A pen of CREATEPEN has its width in logical units; an extended pen is cosmetic (one
    // pixel) unless geometric. Nothing is drawn thinner than a pixel.
    const bool geometric = !pen.extended || (pen.style & gdi::PS_GEOMETRIC);
    const double pixel = PixelWidth();
    const double width = geometric ? DeviceLength(pen.width) : pixel;
    s.width = width >= pixel && std::isfinite(width) ? width : pixel;
    // Dash lengths scale with the width of a geometric pen drawn wider than one pixel;
    // the others count in pixels.
    const bool wide = geometric && s.width > pixel;
    if (pen.extended && geometric) {
        s.cap = CapOf(pen.style);
        s.join = JoinOf(pen.style);
    }
    if (style >= gdi::PS_DASH && style <= gdi::PS_DASHDOTDOT) {
        s.dashes = wide ? kGeometricDashes[style - 1] : kCosmeticDashes[style - 1];
        for (double& d : s.dashes) d *= s.width;
    } else if (style == gdi::PS_ALTERNATE) {
        s.dashes = {pixel, pixel};
    } else if (style == gdi::PS_USERSTYLE) {
        const size_t n = std::min(pen.userStyle.size(), kMaxUserStyle);
        for (size_t i = 0; i < n; ++i)
            s.dashes.push_back(geometric ? DeviceLength(pen.userStyle[i])
                                         : pen.userStyle[i] * pixel);
    }
    if (!UsableDashes(s.dashes)) s.dashes.clear();
    // Dashes of a one-unit pen keep their lengths: no caps.
    if (!s.dashes.empty() && !wide) s.cap = Stroke::Cap::Flat;
    s.miterLimit = m_state.miterLimit;
    s.color = RgbFromColorRef(pen.color);
    switch (m_state.rop2) {
        case gdi::R2_BLACK:
        case gdi::R2_NOT:  // the inverse of the white page
            s.color = 0;
            break;
        case gdi::R2_WHITE:
            s.color = 0xFFFFFF;
            break;
        case gdi::R2_NOTCOPYPEN:
            s.color = Invert(s.color);
            break;
        default:
            break;
    }
    return s;
}

Fill DeviceContext::BrushFill(const LogBrush& brush) const {
    Fill f;
    f.origin = m_state.brushOrigin;
    f.pixel = PixelWidth();
    f.color = RgbFromColorRef(brush.color);
    switch (brush.style) {
        case gdi::BS_NULL:
            return f;
        case gdi::BS_HATCHED:
            if (brush.hatch <= 5) {
                f.kind = Fill::Kind::Hatch;
                f.hatch = brush.hatch;
                f.hatchBackground = m_state.bkMode == gdi::OPAQUE;
                f.background = RgbFromColorRef(m_state.bkColor);
                return f;
            }
            f.kind = Fill::Kind::Solid;
            return f;
        case gdi::BS_PATTERN:
        case gdi::BS_DIBPATTERN:
        case gdi::BS_DIBPATTERNPT:
            if (!brush.pattern || brush.pattern->isNull()) return f;
            f.kind = Fill::Kind::Image;
            f.image = brush.pattern;
            if (brush.monochrome && brush.pattern->format() == QImage::Format_Mono) {
                // Index 0 in the text colour, index 1 in the background colour.
                f.monochrome = true;
                f.color = RgbFromColorRef(m_state.textColor);
                f.background = RgbFromColorRef(m_state.bkColor);
            }
            return f;
        default:  // BS_SOLID and the styles that give a plain colour
            f.kind = Fill::Kind::Solid;
            return f;
    }
}

Fill DeviceContext::CurrentFill() const {
    if (m_state.rop2 == gdi::R2_NOP) return Fill();
    Fill f = BrushFill(m_state.brush);
    if (f.kind == Fill::Kind::None) return f;
    const int rop = m_state.rop2;
    if (rop == gdi::R2_BLACK || rop == gdi::R2_NOT || rop == gdi::R2_WHITE) {
        const Rgb c = rop == gdi::R2_WHITE ? 0xFFFFFF : 0;
        f = Fill();
        f.kind = Fill::Kind::Solid;
        f.color = c;
    } else if (rop == gdi::R2_NOTCOPYPEN) {
        f.color = Invert(f.color);
    }
    return f;
}

FillRule DeviceContext::PolyFillRule() const {
    return m_state.polyFillMode == gdi::WINDING ? FillRule::NonZero : FillRule::EvenOdd;
}

// --- emission ------------------------------------------------------------------------------

void DeviceContext::Send(DrawOp& op) {
    if (!m_pendingBlts.empty()) FlushBitmaps();
    if (op.path.IsEmpty() || !FinitePath(op.path)) return;
    if (op.fill.kind == Fill::Kind::None && !op.stroke.visible) return;
    m_sink.Draw(op);
}

void DeviceContext::Emit(Path& path, bool fill, bool stroke, FillRule rule) {
    if (m_inBracket) return;  // the path is the bracket's
    DrawOp op;
    op.path = std::move(path);
    if (fill) {
        op.fill = CurrentFill();
        op.fill.rule = rule;
    }
    if (stroke) op.stroke = CurrentStroke();
    Send(op);
}

void DeviceContext::ContinueFrom(Path& path) const {
    const PointF d = ToDevice(m_state.position);
    if (!path.HasCurrentPoint() || path.CurrentPoint().x != d.x || path.CurrentPoint().y != d.y)
        path.MoveTo(d);
}

RectF DeviceContext::InsideFrame(const RectF& box) const {
    const LogPen& pen = m_state.pen;
    if ((pen.style & gdi::PS_STYLE_MASK) != gdi::PS_INSIDEFRAME) return box;
    if (pen.extended && !(pen.style & gdi::PS_GEOMETRIC)) return box;
    if (!(DeviceLength(pen.width) > PixelWidth())) return box;
    const double h = std::fabs(pen.width) / 2;
    RectF b{std::min(box.left, box.right), std::min(box.top, box.bottom),
            std::max(box.left, box.right), std::max(box.top, box.bottom)};
    const double cx = (b.left + b.right) / 2, cy = (b.top + b.bottom) / 2;
    b.left = std::min(b.left + h, cx);
    b.right = std::max(b.right - h, cx);
    b.top = std::min(b.top + h, cy);
    b.bottom = std::max(b.bottom - h, cy);
    return b;
}

// --- lines and curves ------------------------------------------------------------------------

void DeviceContext::MoveTo(PointF p) {
    m_state.position = p;
    if (m_inBracket) m_path.MoveTo(ToDevice(p));
}

void DeviceContext::LineTo(PointF p) {
    PolylineTo(&p, 1);
}

void DeviceContext::Polyline(const PointF* points, size_t count) {
    if (count < 2) return;
    Path scratch;
    Path& path = Target(scratch);
    if (&path == &scratch) scratch.Reserve(count);
    const Matrix m = LogicalToDevice();
    path.MoveTo(m.Map(points[0]));
    for (size_t i = 1; i < count; ++i) path.LineTo(m.Map(points[i]));
    Emit(scratch, false, true);
}

void DeviceContext::PolylineTo(const PointF* points, size_t count) {
    if (count == 0) return;
    Path scratch;
    Path& path = Target(scratch);
    if (&path == &scratch) scratch.Reserve(count + 1);
    ContinueFrom(path);
    const Matrix m = LogicalToDevice();
    for (size_t i = 0; i < count; ++i) path.LineTo(m.Map(points[i]));
    m_state.position = points[count - 1];
    Emit(scratch, false, true);
}

void DeviceContext::Polygon(const PointF* points, size_t count) {
    const uint32_t n = (uint32_t)std::min<size_t>(count, UINT32_MAX);
    PolyPolygon(points, count, &n, 1);
}

void DeviceContext::PolyPolyline(const PointF* points, size_t count, const uint32_t* counts,
                                 size_t figures) {
    Path scratch;
    Path& path = Target(scratch);
    if (&path == &scratch) scratch.Reserve(count);
    const Matrix m = LogicalToDevice();
    size_t start = 0;
    for (size_t f = 0; f < figures && start < count; ++f) {
        const size_t n = std::min<size_t>(counts[f], count - start);
        if (n >= 2) {
            path.MoveTo(m.Map(points[start]));
            for (size_t i = 1; i < n; ++i) path.LineTo(m.Map(points[start + i]));
        }
        start += n;
    }
    Emit(scratch, false, true);
}

void DeviceContext::PolyPolygon(const PointF* points, size_t count, const uint32_t* counts,
                                size_t figures) {
    Path scratch;
    Path& path = Target(scratch);
    // A close for each figure of two points or more.
    if (&path == &scratch) scratch.Reserve(count + std::min(figures, count / 2));
    const Matrix m = LogicalToDevice();
    size_t start = 0;
    for (size_t f = 0; f < figures && start < count; ++f) {
        const size_t n = std::min<size_t>(counts[f], count - start);
        if (n >= 2) {
            path.MoveTo(m.Map(points[start]));
            for (size_t i = 1; i < n; ++i) path.LineTo(m.Map(points[start + i]));
            path.Close();
        }
        start += n;
    }
    Emit(scratch, true, true, PolyFillRule());
}

void DeviceContext::PolyBezier(const PointF* points, size_t count) {
    if (count < 4) return;
    Path scratch;
    Path& path = Target(scratch);
    if (&path == &scratch) scratch.Reserve(count);
    const Matrix m = LogicalToDevice();
    path.MoveTo(m.Map(points[0]));
    for (size_t i = 1; i + 3 <= count; i += 3)
        path.CubicTo(m.Map(points[i]), m.Map(points[i + 1]), m.Map(points[i + 2]));
    Emit(scratch, false, true);
}

void DeviceContext::PolyBezierTo(const PointF* points, size_t count) {
    if (count < 3) return;
    Path scratch;
    Path& path = Target(scratch);
    ContinueFrom(path);
    const Matrix m = LogicalToDevice();
    size_t i = 0;
    for (; i + 3 <= count; i += 3)
        path.CubicTo(m.Map(points[i]), m.Map(points[i + 1]), m.Map(points[i + 2]));
    m_state.position = points[i - 1];
    Emit(scratch, false, true);
}

void DeviceContext::PolyDraw(const PointF* points, const uint8_t* types, size_t count) {
    if (count == 0) return;
    Path scratch;
    Path& path = Target(scratch);
    ContinueFrom(path);
    const Matrix m = LogicalToDevice();
    for (size_t i = 0; i < count; ++i) {
        const uint8_t type = types[i] & ~gdi::PT_CLOSEFIGURE;
        if (type == gdi::PT_MOVETO) {
            path.MoveTo(m.Map(points[i]));
        } else if (type == gdi::PT_LINETO) {
            path.LineTo(m.Map(points[i]));
        } else if (type == gdi::PT_BEZIERTO && i + 2 < count &&
                   (types[i + 1] & ~gdi::PT_CLOSEFIGURE) == gdi::PT_BEZIERTO &&
                   (types[i + 2] & ~gdi::PT_CLOSEFIGURE) == gdi::PT_BEZIERTO) {
            path.CubicTo(m.Map(points[i]), m.Map(points[i + 1]), m.Map(points[i + 2]));
            i += 2;
        } else {
            break;  // a point of no known type ends the drawing
        }
        m_state.position = points[i];
        if (types[i] & gdi::PT_CLOSEFIGURE && type != gdi::PT_MOVETO) path.Close();
    }
    Emit(scratch, false, true);
}

// --- shapes ----------------------------------------------------------------------------------

void DeviceContext::Rectangle(const RectF& box) {
    Path scratch;
    shapes::Rectangle(Target(scratch), LogicalToDevice(), InsideFrame(box));
    Emit(scratch, true, true);
}

void DeviceContext::RoundRect(const RectF& box, double cornerW, double cornerH) {
    Path scratch;
    shapes::RoundRect(Target(scratch), LogicalToDevice(), InsideFrame(box), cornerW, cornerH);
    Emit(scratch, true, true);
}

void DeviceContext::Ellipse(const RectF& box) {
    Path scratch;
    shapes::Ellipse(Target(scratch), LogicalToDevice(), InsideFrame(box));
    Emit(scratch, true, true);
}

void DeviceContext::Arc(const RectF& box, PointF start, PointF end) {
    Path scratch;
    shapes::EllipticArc(Target(scratch), LogicalToDevice(), box, start, end,
                        m_state.arcDirection == gdi::AD_CLOCKWISE, false);
    Emit(scratch, false, true);
}

void DeviceContext::ArcTo(const RectF& box, PointF start, PointF end) {
    Path scratch;
    Path& path = Target(scratch);
    ContinueFrom(path);
    m_state.position = shapes::EllipticArc(path, LogicalToDevice(), box, start, end,
                                           m_state.arcDirection == gdi::AD_CLOCKWISE, true);
    Emit(scratch, false, true);
}

void DeviceContext::Chord(const RectF& box, PointF start, PointF end) {
    Path scratch;
    Path& path = Target(scratch);
    shapes::EllipticArc(path, LogicalToDevice(), InsideFrame(box), start, end,
                        m_state.arcDirection == gdi::AD_CLOCKWISE, false);
    path.Close();
    Emit(scratch, true, true);
}

void DeviceContext::Pie(const RectF& box, PointF start, PointF end) {
    Path scratch;
    Path& path = Target(scratch);
    const Matrix m = LogicalToDevice();
    const RectF b = InsideFrame(box);
    path.MoveTo(m.Map({(b.left + b.right) / 2, (b.top + b.bottom) / 2}));
    shapes::EllipticArc(path, m, b, start, end, m_state.arcDirection == gdi::AD_CLOCKWISE, true);
    path.Close();
    Emit(scratch, true, true);
}

void DeviceContext::AngleArc(PointF centre, double radius, double startDeg, double sweepDeg) {
    if (!(radius >= 0) || !std::isfinite(radius) || !std::isfinite(startDeg) ||
        !std::isfinite(sweepDeg))
        return;
    Path scratch;
    Path& path = Target(scratch);
    ContinueFrom(path);
    m_state.position =
        shapes::AngleArc(path, LogicalToDevice(), centre, radius, startDeg, sweepDeg);
    Emit(scratch, false, true);
}

void DeviceContext::SetPixel(PointF p, uint32_t colorRef) {
    const PointF d = ToDevice(p);
    const double w = PixelWidth();
    DrawOp op;
    shapes::Rectangle(op.path, Matrix(), {d.x, d.y, d.x + w, d.y + w});
    op.fill.kind = Fill::Kind::Solid;
    op.fill.color = RgbFromColorRef(colorRef);
    Send(op);
}

void DeviceContext::FillRect(const RectF& box, uint32_t colorRef) {
    DrawOp op;
    shapes::Rectangle(op.path, LogicalToDevice(), box);
    op.fill.kind = Fill::Kind::Solid;
    op.fill.color = RgbFromColorRef(colorRef);
    Send(op);
}

void DeviceContext::PatBlt(const RectF& xywh, uint32_t rop) {
    DrawOp op;
    if (rop == gdi::PATCOPY || rop == gdi::PATINVERT) {
        op.fill = BrushFill(m_state.brush);
    } else if (rop == gdi::BLACKNESS || rop == gdi::WHITENESS) {
        op.fill.kind = Fill::Kind::Solid;
        op.fill.color = rop == gdi::WHITENESS ? 0xFFFFFF : 0;
    } else {
        return;
    }
    const RectF box{xywh.left, xywh.top, xywh.left + xywh.right, xywh.top + xywh.bottom};
    shapes::Rectangle(op.path, LogicalToDevice(), box);
    Send(op);
}

// --- path bracket ----------------------------------------------------------------------------

void DeviceContext::BeginPath() {
    m_path.Clear();
    m_inBracket = true;
    m_pathReady = false;
    m_widened = false;
}

void DeviceContext::EndPath() {
    if (!m_inBracket) return;
    m_inBracket = false;
    m_pathReady = true;
}

void DeviceContext::CloseFigure() {
    if (m_inBracket) m_path.Close();
}

void DeviceContext::AbortPath() {
    m_path.Clear();
    m_inBracket = m_pathReady = m_widened = false;
}

void DeviceContext::UsePath(bool fill, bool stroke) {
    // A bracket still open is ended first.
    if (m_inBracket) EndPath();
    if (!m_pathReady) return;
    DrawOp op;
    op.path = std::move(m_path);
    if (m_widened) {
        // The widened path's interior is the pen's stroke: filling it paints that stroke with
        // the brush; stroking it is drawn as the pen's stroke itself.
        op.stroke = CurrentStroke();
        if (fill) {
            const Fill brush = CurrentFill();
            op.stroke.visible = op.stroke.visible && brush.kind != Fill::Kind::None;
            op.stroke.color = brush.kind == Fill::Kind::Solid ? brush.color : op.stroke.color;
        }
    } else {
        if (fill) {
            op.fill = CurrentFill();
            op.fill.rule = PolyFillRule();
        }
        if (stroke) op.stroke = CurrentStroke();
    }
    AbortPath();
    Send(op);
}

void DeviceContext::FillPath() {
    UsePath(true, false);
}

void DeviceContext::StrokePath() {
    UsePath(false, true);
}

void DeviceContext::StrokeAndFillPath() {
    UsePath(true, true);
}

void DeviceContext::FlattenPath() {}

void DeviceContext::WidenPath() {
    if (m_inBracket) EndPath();
    if (m_pathReady) m_widened = true;
}

}  // namespace faithful
