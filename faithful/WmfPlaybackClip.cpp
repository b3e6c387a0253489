// WMF decoders of the clip and region records. A clip region is in device units; a drawn
// region (FILLREGION, FRAMEREGION, INVERTREGION, PAINTREGION) in logical units.
#include <vector>

#include "faithful/WmfPlayback.h"
#include "geometry/RgnPathUtil.h"

namespace faithful {

namespace {

// META_CREATEREGION: after an 8-byte object header, the region's size, its scan count, the
// longest scan and its bounds, then the scans. A scan is a count of x values, its top and
// bottom, the (left, right) pairs, and the count again.
const size_t kScanCountOffset = sizeof(tagWMR) + 10;
const size_t kScansOffset = sizeof(tagWMR) + 22;

}  // namespace

void WmfPlayer::OnCreateRegion(unsigned char* r, uint32_t size) {
    GdiObject o;
    o.kind = GdiObject::Kind::Region;
    std::vector<tagRECT> rects;
    const unsigned scans = (uint16_t)Param16(r, (kScanCountOffset - sizeof(tagWMR)) / 2);
    size_t at = kScansOffset;
    for (unsigned s = 0; s < scans && records::Fits(at, 6, size); ++s) {
        const size_t index = (at - sizeof(tagWMR)) / 2;
        const unsigned values = (uint16_t)Param16(r, index);
        const int top = Param16(r, index + 1), bottom = Param16(r, index + 2);
        const uint32_t pairs = records::FitCount(values / 2, at + 6, 4, size);
        for (uint32_t k = 0; k < pairs; ++k)
            rects.push_back(
                tagRECT{Param16(r, index + 3 + 2 * k), top, Param16(r, index + 4 + 2 * k), bottom});
        at += 6 + 2 * (size_t)values + 2;
    }
    bool tooComplex = false;
    o.region = CreateQRegionFromRects((int)rects.size(), rects.data(), &tooComplex);
    m_dc.CreateObjectInFreeSlot(o);
}

void WmfPlayer::OnClipRect(unsigned char* r, uint32_t) {
    const RectF box{(double)Param16(r, 3), (double)Param16(r, 2), (double)Param16(r, 1),
                    (double)Param16(r, 0)};
    if (RecordFunction(r) == meta::INTERSECTCLIPRECT)
        m_dc.IntersectClipRect(box);
    else
        m_dc.ExcludeClipRect(box);
}

void WmfPlayer::OnOffsetClipRgn(unsigned char* r, uint32_t) {
    m_dc.OffsetClipRgn(Param16(r, 1), Param16(r, 0));
}

void WmfPlayer::OnSelectClipRegion(unsigned char* r, uint32_t) {
    // A slot that holds no region removes the clip.
    const GdiObject* o = m_dc.ObjectAt((uint16_t)Param16(r, 0));
    if (o && o->kind == GdiObject::Kind::Region) {
        const QRegion region = o->region;
        m_dc.SelectClipRegion(&region, gdi::RGN_COPY);
    } else {
        m_dc.SelectClipRegion(nullptr, gdi::RGN_COPY);
    }
}

void WmfPlayer::OnDrawRegion(unsigned char* r, uint32_t) {
    const uint16_t function = RecordFunction(r);
    const GdiObject* o = m_dc.ObjectAt((uint16_t)Param16(r, 0));
    if (!o || o->kind != GdiObject::Kind::Region) return;
    const QRegion region = o->region;
    LogBrush brush;
    const bool haveBrush = m_dc.BrushAt((uint16_t)Param16(r, 1), brush);
    switch (function) {
        case meta::FILLREGION:
            if (haveBrush) m_dc.FillRegion(region, brush);
            return;
        case meta::FRAMEREGION:  // region, brush, height, width
            if (haveBrush) m_dc.FrameRegion(region, brush, Param16(r, 3), Param16(r, 2));
            return;
        case meta::INVERTREGION:
            return m_dc.InvertRegion(region);
        default:
            return m_dc.PaintRegion(region);
    }
}

}  // namespace faithful
