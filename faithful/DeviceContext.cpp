// The device context's state: reference device, mapping, world transform, saved states,
// modes and the object tables.
#include <algorithm>
#include <cmath>

#include "faithful/DeviceContext.h"

namespace faithful {

namespace {

// Saved states kept; saves past it are counted but keep nothing.
const size_t kMaxSavedStates = 1024;

bool Positive(double v) {
    return std::isfinite(v) && v > 0;
}

bool IsotropicOrAnisotropic(int mode) {
    return mode == gdi::MM_ISOTROPIC || mode == gdi::MM_ANISOTROPIC;
}

// Logical units per millimetre of the metric map modes (0 for the others).
double MetricUnitsPerMm(int mode) {
    switch (mode) {
        case gdi::MM_LOMETRIC:
        case gdi::MM_ISOTROPIC:  // starts from the low-metric extents
            return 10;
        case gdi::MM_HIMETRIC:
            return 100;
        case gdi::MM_LOENGLISH:
            return 100 / 25.4;
        case gdi::MM_HIENGLISH:
            return 1000 / 25.4;
        case gdi::MM_TWIPS:
            return 1440 / 25.4;
        default:
            return 0;
    }
}

LogBrush SolidBrush(uint32_t color) {
    LogBrush b;
    b.color = color;
    return b;
}

LogPen StockPen(uint32_t style, uint32_t color) {
    LogPen p;
    p.style = style;
    p.color = color;
    return p;
}

LogFont StockFont(const char* face) {
    LogFont f;
    f.faceName = QString::fromLatin1(face);
    return f;
}

// The stock object n (WHITE_BRUSH = 0 ... DC_PEN = 19); false for numbers that name none.
bool StockObject(uint32_t n, GdiObject& o) {
    static const uint32_t kBrushColors[] = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0};
    static const char* const kFonts[] = {"Terminal", "Courier", "MS Sans Serif", "System",
                                         "System"};
    if (n <= 4) {
        o.kind = GdiObject::Kind::Brush;
        o.brush = SolidBrush(kBrushColors[n]);
    } else if (n == 5) {
        o.kind = GdiObject::Kind::Brush;
        o.brush.style = gdi::BS_NULL;
    } else if (n >= 6 && n <= 8) {
        o.kind = GdiObject::Kind::Pen;
        o.pen = n == 8 ? StockPen(gdi::PS_NULL, 0) : StockPen(gdi::PS_SOLID, n == 6 ? 0xFFFFFF : 0);
    } else if (n >= 10 && n <= 14) {
        o.kind = GdiObject::Kind::Font;
        o.font = StockFont(kFonts[n - 10]);
    } else if (n == 15) {
        o.kind = GdiObject::Kind::Palette;
    } else if (n == 16 || n == 17) {
        o.kind = GdiObject::Kind::Font;
        o.font = StockFont(n == 16 ? "Fixedsys" : "MS Shell Dlg");
    } else if (n == 18) {  // DC_BRUSH: white until set, and no record sets it
        o.kind = GdiObject::Kind::Brush;
        o.brush = SolidBrush(0xFFFFFF);
    } else if (n == 19) {  // DC_PEN
        o.kind = GdiObject::Kind::Pen;
        o.pen = StockPen(gdi::PS_SOLID, 0);
    } else {
        return false;
    }
    return true;
}

}  // namespace

DeviceContext::DeviceContext(DrawSink& sink) : m_sink(sink) {
    m_state.font = StockFont("System");
}

// --- reference device ------------------------------------------------------------------

void DeviceContext::SetReferenceDevice(double widthUnits, double heightUnits, double widthMm,
                                       double heightMm) {
    if (!Positive(widthUnits) || !Positive(heightUnits) || !Positive(widthMm) ||
        !Positive(heightMm))
        return;
    const PointF perMm{widthUnits / widthMm, heightUnits / heightMm};
    if (!Positive(perMm.x) || !Positive(perMm.y)) return;
    m_deviceSize = {widthUnits, heightUnits};
    m_unitsPerMm = perMm;
}

PointF DeviceContext::DeviceUnitsPerMm() const {
    return m_unitsPerMm;
}

// --- mapping -----------------------------------------------------------------------------

void DeviceContext::SetMapMode(int mode) {
    if (mode < gdi::MM_TEXT || mode > gdi::MM_ANISOTROPIC) return;
    DcState& s = m_state;
    if (mode == s.mapMode && IsotropicOrAnisotropic(mode)) return;
    s.mapMode = mode;
    if (mode == gdi::MM_TEXT) {
        s.windowExt = s.viewportExt = {1, 1};
    } else if (const double perMm = MetricUnitsPerMm(mode)) {
        // The window spans the reference device in logical units, the viewport in device
        // units; y grows upwards.
        s.windowExt = {m_deviceSize.x / m_unitsPerMm.x * perMm,
                       m_deviceSize.y / m_unitsPerMm.y * perMm};
        s.viewportExt = {m_deviceSize.x, -m_deviceSize.y};
        if (mode == gdi::MM_ISOTROPIC) FixIsotropic();
    }
}

void DeviceContext::FixIsotropic() {
    DcState& s = m_state;
    // Millimetres per logical unit on each axis; the larger one shrinks to the smaller.
    const double xmm = std::fabs(s.viewportExt.x / m_unitsPerMm.x / s.windowExt.x);
    const double ymm = std::fabs(s.viewportExt.y / m_unitsPerMm.y / s.windowExt.y);
    if (!Positive(xmm) || !Positive(ymm)) return;
    if (xmm > ymm)
        s.viewportExt.x *= ymm / xmm;
    else if (ymm > xmm)
        s.viewportExt.y *= xmm / ymm;
}

void DeviceContext::SetWindowOrg(double x, double y) {
    m_state.windowOrg = {x, y};
}

void DeviceContext::SetViewportOrg(double x, double y) {
    m_state.viewportOrg = {x, y};
}

void DeviceContext::SetWindowExt(double cx, double cy) {
    SetExtent(m_state.windowExt, cx, cy);
}

void DeviceContext::SetViewportExt(double cx, double cy) {
    SetExtent(m_state.viewportExt, cx, cy);
}

void DeviceContext::SetExtent(PointF& extent, double cx, double cy) {
    if (!IsotropicOrAnisotropic(m_state.mapMode)) return;
    if (cx == 0 || cy == 0 || !std::isfinite(cx) || !std::isfinite(cy)) return;
    extent = {cx, cy};
    if (m_state.mapMode == gdi::MM_ISOTROPIC) FixIsotropic();
}

void DeviceContext::OffsetWindowOrg(double dx, double dy) {
    m_state.windowOrg = {m_state.windowOrg.x + dx, m_state.windowOrg.y + dy};
}

void DeviceContext::OffsetViewportOrg(double dx, double dy) {
    m_state.viewportOrg = {m_state.viewportOrg.x + dx, m_state.viewportOrg.y + dy};
}

void DeviceContext::ScaleWindowExt(double xNum, double xDenom, double yNum, double yDenom) {
    if (xDenom == 0 || yDenom == 0) return;
    const PointF& e = m_state.windowExt;
    SetExtent(m_state.windowExt, e.x * xNum / xDenom, e.y * yNum / yDenom);
}

void DeviceContext::ScaleViewportExt(double xNum, double xDenom, double yNum, double yDenom) {
    if (xDenom == 0 || yDenom == 0) return;
    const PointF& e = m_state.viewportExt;
    SetExtent(m_state.viewportExt, e.x * xNum / xDenom, e.y * yNum / yDenom);
}

void DeviceContext::SetWorldTransform(const Matrix& m) {
    if (m.IsInvertible()) m_state.world = m;
}

void DeviceContext::ModifyWorldTransform(const Matrix& m, int mode) {
    Matrix result;
    switch (mode) {
        case gdi::MWT_IDENTITY:
            m_state.world = Matrix();
            return;
        case gdi::MWT_LEFTMULTIPLY:
            result = m.Then(m_state.world);
            break;
        case gdi::MWT_RIGHTMULTIPLY:
            result = m_state.world.Then(m);
            break;
        case gdi::MWT_SET:
            result = m;
            break;
        default:
            return;
    }
    if (result.IsInvertible()) m_state.world = result;
}

Matrix DeviceContext::LogicalToDevice() const {
    const DcState& s = m_state;
    const double sx = s.viewportExt.x / s.windowExt.x, sy = s.viewportExt.y / s.windowExt.y;
    const Matrix page{
        sx, 0, 0, sy, s.viewportOrg.x - s.windowOrg.x * sx, s.viewportOrg.y - s.windowOrg.y * sy};
    return s.world.Then(page);
}

// --- saved states ------------------------------------------------------------------------

void DeviceContext::SaveDC() {
    if (m_saved.size() < kMaxSavedStates && m_savesDropped == 0)
        m_saved.push_back(m_state);
    else if (m_savesDropped < INT32_MAX)
        ++m_savesDropped;
}

void DeviceContext::RestoreDC(int level) {
    const int64_t kept = (int64_t)m_saved.size(), depth = kept + m_savesDropped;
    // The number of the save to return to, counted from 1.
    const int64_t target = level < 0 ? depth + 1 + (int64_t)level : (int64_t)level;
    if (level == 0 || target < 1 || target > depth) return;
    if (target > kept) {  // a save that kept nothing: the state stays
        m_savesDropped = (int)(target - 1 - kept);
        return;
    }
    const std::shared_ptr<const Clip> clip = m_state.clip;
    m_state = m_saved[(size_t)(target - 1)];
    m_saved.resize((size_t)(target - 1));
    m_savesDropped = 0;
    if (m_state.clip != clip) ClipChanged();
}

int DeviceContext::SaveDepth() const {
    return (int)m_saved.size() + m_savesDropped;
}

// --- modes and colours -------------------------------------------------------------------

void DeviceContext::SetBkMode(int mode) {
    if (mode == gdi::TRANSPARENT || mode == gdi::OPAQUE) m_state.bkMode = mode;
}

void DeviceContext::SetBkColor(uint32_t colorRef) {
    m_state.bkColor = colorRef;
}

void DeviceContext::SetTextColor(uint32_t colorRef) {
    m_state.textColor = colorRef;
}

void DeviceContext::SetPolyFillMode(int mode) {
    if (mode == gdi::ALTERNATE || mode == gdi::WINDING) m_state.polyFillMode = mode;
}

void DeviceContext::SetArcDirection(int direction) {
    if (direction == gdi::AD_COUNTERCLOCKWISE || direction == gdi::AD_CLOCKWISE)
        m_state.arcDirection = direction;
}

void DeviceContext::SetRop2(int rop) {
    if (rop >= gdi::R2_BLACK && rop <= gdi::R2_WHITE) m_state.rop2 = rop;
}

void DeviceContext::SetMiterLimit(double limit) {
    if (std::isfinite(limit) && limit >= 1) m_state.miterLimit = limit;
}

void DeviceContext::SetBrushOrg(double x, double y) {
    if (std::isfinite(x) && std::isfinite(y)) m_state.brushOrigin = {x, y};
}

void DeviceContext::SetTextAlign(uint32_t align) {
    m_state.textAlign = align;
}

void DeviceContext::SetStretchBltMode(int mode) {
    m_state.stretchMode = mode;
}

// --- objects -----------------------------------------------------------------------------

void DeviceContext::CreateObjectAt(uint32_t index, const GdiObject& object) {
    if (index == 0 || (index & gdi::kStockObject)) return;
    m_objects[index] = object;
    m_freeSlots.erase(index);
}

int DeviceContext::CreateObjectInFreeSlot(const GdiObject& object) {
    uint32_t slot;
    if (!m_freeSlots.empty()) {
        slot = *m_freeSlots.begin();
        m_freeSlots.erase(m_freeSlots.begin());
    } else {
        if ((m_slotLimit && m_nextSlot >= m_slotLimit) || m_nextSlot >= (uint32_t)INT32_MAX)
            return -1;
        slot = m_nextSlot++;
    }
    m_objects[slot] = object;
    return (int)slot;
}

void DeviceContext::SetObjectTableSize(uint32_t count) {
    m_slotLimit = count;
}

const GdiObject* DeviceContext::Lookup(uint32_t index, GdiObject& stock) const {
    if (!(index & gdi::kStockObject)) return ObjectAt(index);
    return StockObject(index & ~gdi::kStockObject, stock) ? &stock : nullptr;
}

bool DeviceContext::BrushAt(uint32_t index, LogBrush& out) const {
    GdiObject stock;
    const GdiObject* o = Lookup(index, stock);
    if (!o || o->kind != GdiObject::Kind::Brush) return false;
    out = o->brush;
    return true;
}

void DeviceContext::SelectObject(uint32_t index) {
    GdiObject stock;
    const GdiObject* o = Lookup(index, stock);
    if (!o) return;
    switch (o->kind) {
        case GdiObject::Kind::Pen:
            m_state.pen = o->pen;
            break;
        case GdiObject::Kind::Brush:
            m_state.brush = o->brush;
            break;
        case GdiObject::Kind::Font:
            m_state.font = o->font;
            break;
        case GdiObject::Kind::Region: {  // selecting a region selects it as the clip
            const QRegion region = o->region;
            SelectClipRegion(&region, gdi::RGN_COPY);
            break;
        }
        default:
            break;
    }
}

void DeviceContext::DeleteObject(uint32_t index) {
    if (index & gdi::kStockObject) return;
    if (m_objects.erase(index) && index < m_nextSlot) m_freeSlots.insert(index);
}

const GdiObject* DeviceContext::ObjectAt(uint32_t index) const {
    const auto it = m_objects.find(index);
    return it == m_objects.end() ? nullptr : &it->second;
}

}  // namespace faithful
