// WMF decoders of the text records: META_TEXTOUT and META_EXTTEXTOUT (with its optional
// rectangle and advance array). Characters are read only as far as the record holds them; an
// advance array shorter than the characters is not used.
#include "faithful/WmfPlayback.h"

namespace faithful {

namespace {

const uint32_t ETO_OPAQUE = 0x0002, ETO_CLIPPED = 0x0004;
// META_EXTTEXTOUT: the rectangle or the string after the four fixed parameters.
const size_t kExtRest = sizeof(tagWMR) + 8;

}  // namespace

void WmfPlayer::OnTextOut(unsigned char* r, uint32_t size) {
    const size_t offset = sizeof(tagWMR) + 2;
    const uint32_t declared = (uint16_t)Param16(r, 0);
    const uint32_t count = records::FitCount(declared, offset, 1, size);
    // The reference point follows the string, padded to a whole word.
    const size_t point = offset + ((declared + 1) & ~1u);
    if (!records::Fits(point, 4, size)) return;
    DeviceContext::TextCall call;
    const size_t index = (point - sizeof(tagWMR)) / 2;
    call.reference = {(double)Param16(r, index + 1), (double)Param16(r, index)};
    m_dc.DecodeAnsi(r + offset, count, nullptr, call);
    m_dc.ExtTextOut(call);
}

void WmfPlayer::OnExtTextOut(unsigned char* r, uint32_t size) {
    DeviceContext::TextCall call;
    call.reference = {(double)Param16(r, 1), (double)Param16(r, 0)};
    const uint32_t declared = (uint16_t)Param16(r, 2);
    call.options = (uint16_t)Param16(r, 3);
    size_t offset = kExtRest;
    if (call.options & (ETO_OPAQUE | ETO_CLIPPED)) {
        if (!records::Fits(offset, 8, size)) return;
        const size_t i = (offset - sizeof(tagWMR)) / 2;
        call.rect = {(double)Param16(r, i), (double)Param16(r, i + 1), (double)Param16(r, i + 2),
                     (double)Param16(r, i + 3)};
        offset += 8;
    }
    const uint32_t count = records::FitCount(declared, offset, 1, size);
    // The advances, one 16-bit value per byte, follow the string padded to a whole word.
    const size_t dx = offset + ((count + 1) & ~1u);
    std::vector<PointF> advances;
    if (count > 0 && records::FitCount(count, dx, 2, size) == count) {
        const size_t first = (dx - sizeof(tagWMR)) / 2;
        for (uint32_t i = 0; i < count; ++i) advances.push_back({(double)Param16(r, first + i), 0});
    }
    m_dc.DecodeAnsi(r + offset, count, advances.empty() ? nullptr : advances.data(), call);
    m_dc.ExtTextOut(call);
}

}  // namespace faithful
