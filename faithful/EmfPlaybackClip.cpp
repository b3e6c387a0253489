// EMF decoders of the clip and region records. The region data of a clip record is in device
// units; that of a drawn region (FILLRGN, FRAMERGN, INVERTRGN, PAINTRGN) in logical units.
#include <vector>

#include "faithful/EmfPlayback.h"
#include "geometry/RgnPathUtil.h"

namespace faithful {

namespace {

// Region data: a 32-byte header (its size, type, rectangle count, buffer size, bounds), then
// the rectangles.
const size_t kRgnHeader = 32, kRgnCountOffset = 8;
// Where the region data starts in each record, and where its byte count is.
const size_t kClipRgnData = 16, kClipRgnBytes = 8, kClipRgnMode = 12;
const size_t kDrawnRgnBytes = 24, kBrushIndex = 28, kFrameSize = 32;
const size_t kFillRgnData = 32, kFrameRgnData = 40, kPaintRgnData = 28;

RectF RectAt(const unsigned char* r, size_t offset) {
    return {(double)SignedField32(r, offset), (double)SignedField32(r, offset + 4),
            (double)SignedField32(r, offset + 8), (double)SignedField32(r, offset + 12)};
}

// The region data at `offset` of `bytes` bytes (cut to the record); false when there is none.
bool ReadRegion(const unsigned char* r, uint32_t size, size_t offset, uint32_t bytes,
                QRegion& out) {
    if (bytes < kRgnHeader || !records::Fits(offset, kRgnHeader, size)) return false;
    const size_t end = (uint64_t)offset + bytes < size ? offset + bytes : size;
    const uint32_t count = records::FitCount(Field32(r, offset + kRgnCountOffset),
                                             offset + kRgnHeader, sizeof(tagRECT), end);
    std::vector<tagRECT> rects(count);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t at = offset + kRgnHeader + (size_t)i * sizeof(tagRECT);
        rects[i] = tagRECT{SignedField32(r, at), SignedField32(r, at + 4), SignedField32(r, at + 8),
                           SignedField32(r, at + 12)};
    }
    bool tooComplex = false;
    out = CreateQRegionFromRects((int)count, rects.data(), &tooComplex);
    return !tooComplex;
}

}  // namespace

void EmfPlayer::OnClipRect(unsigned char* r, uint32_t) {
    const RectF box = RectAt(r, 8);
    if (m_type == emr::INTERSECTCLIPRECT)
        m_dc.IntersectClipRect(box);
    else
        m_dc.ExcludeClipRect(box);
}

void EmfPlayer::OnOffsetClipRgn(unsigned char* r, uint32_t) {
    m_dc.OffsetClipRgn(SignedField32(r, 8), SignedField32(r, 12));
}

void EmfPlayer::OnSetMetaRgn(unsigned char*, uint32_t) {
    m_dc.SetMetaRgn();
}

void EmfPlayer::OnExtSelectClipRgn(unsigned char* r, uint32_t size) {
    const int mode = (int)Field32(r, kClipRgnMode);
    QRegion region;
    if (ReadRegion(r, size, kClipRgnData, Field32(r, kClipRgnBytes), region))
        m_dc.SelectClipRegion(&region, mode);
    else if (Field32(r, kClipRgnBytes) < kRgnHeader)  // no region data: no region
        m_dc.SelectClipRegion(nullptr, mode);
}

void EmfPlayer::OnDrawRegion(unsigned char* r, uint32_t size) {
    const uint32_t bytes = Field32(r, kDrawnRgnBytes);
    const size_t offset = m_type == emr::FILLRGN    ? kFillRgnData
                          : m_type == emr::FRAMERGN ? kFrameRgnData
                                                    : kPaintRgnData;
    QRegion region;
    if (!ReadRegion(r, size, offset, bytes, region)) return;
    LogBrush brush;
    const bool haveBrush = m_dc.BrushAt(Field32(r, kBrushIndex), brush);
    switch (m_type) {
        case emr::FILLRGN:
            if (haveBrush) m_dc.FillRegion(region, brush);
            return;
        case emr::FRAMERGN:
            if (haveBrush)
                m_dc.FrameRegion(region, brush, SignedField32(r, kFrameSize),
                                 SignedField32(r, kFrameSize + 4));
            return;
        case emr::INVERTRGN:
            return m_dc.InvertRegion(region);
        default:
            return m_dc.PaintRegion(region);
    }
}

}  // namespace faithful
