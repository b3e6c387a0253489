// EMF decoders of the text records: EMR_EXTTEXTOUTA/W, EMR_POLYTEXTOUTA/W (several EMRTEXT
// structures in one record) and EMR_SMALLTEXTOUT. Characters and advances are read only as
// far as the record holds them; when the advance array is shorter than the characters, the
// characters past it are dropped.
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

const uint32_t ETO_PDY = 0x2000, ETO_NO_RECT = 0x100, ETO_SMALL_CHARS = 0x200;
// Where the EMRTEXT of EMR_EXTTEXTOUT lies, the count and first EMRTEXT of
// EMR_POLYTEXTOUT, and the size of one EMRTEXT.
const size_t kEmrText = 36, kPolyCount = 36, kPolyTexts = 40, kEmrTextSize = 40;
// EMR_SMALLTEXTOUT's fields.
const size_t kSmallCount = 16, kSmallOptions = 20, kSmallRect = 36;
// The graphics mode of every text record, and its compatible mode.
const size_t kGraphicsMode = 24;
const uint32_t GM_COMPATIBLE = 1;

RectF RectAt(const unsigned char* r, size_t offset) {
    return {(double)SignedField32(r, offset), (double)SignedField32(r, offset + 4),
            (double)SignedField32(r, offset + 8), (double)SignedField32(r, offset + 12)};
}

// Reads `count` characters (8-bit or UTF-16) from `offset` into the call; `advances` per
// character or null.
void ReadCharacters(const DeviceContext& dc, const unsigned char* r, size_t offset, uint32_t count,
                    bool wide, const std::vector<PointF>* advances, DeviceContext::TextCall& call) {
    if (!wide) {
        dc.DecodeAnsi(r + offset, count, advances ? advances->data() : nullptr, call);
        return;
    }
    call.text.resize((int)count);
    for (uint32_t i = 0; i < count; ++i)
        call.text[(int)i] = QChar((ushort)(r[offset + 2 * i] | r[offset + 2 * i + 1] << 8));
    if (advances) call.advances = *advances;
}

}  // namespace

void EmfPlayer::DrawEmrText(const unsigned char* r, uint32_t size, size_t at, bool wide) {
    DeviceContext::TextCall call;
    call.reference = {(double)SignedField32(r, at), (double)SignedField32(r, at + 4)};
    call.options = Field32(r, at + 16);
    call.rect = RectAt(r, at + 20);
    call.compatible = Field32(r, kGraphicsMode) == GM_COMPATIBLE;
    const uint32_t declared = Field32(r, at + 8), offString = Field32(r, at + 12),
                   offDx = Field32(r, at + 36);
    uint32_t count = records::FitCount(declared, offString, wide ? 2 : 1, size);
    std::vector<PointF> advances;
    if (offDx != 0 && count > 0) {
        const bool pdy = (call.options & ETO_PDY) != 0;
        count = records::FitCount(count, offDx, pdy ? 8 : 4, size);
        advances.reserve(count);
        for (uint32_t i = 0; i < count; ++i)
            advances.push_back(pdy ? PointF{(double)SignedField32(r, offDx + 8 * (size_t)i),
                                            (double)SignedField32(r, offDx + 8 * (size_t)i + 4)}
                                   : PointF{(double)SignedField32(r, offDx + 4 * (size_t)i), 0});
    }
    ReadCharacters(m_dc, r, offString, count, wide, offDx != 0 ? &advances : nullptr, call);
    m_dc.ExtTextOut(call);
}

void EmfPlayer::OnExtTextOut(unsigned char* r, uint32_t size) {
    DrawEmrText(r, size, kEmrText, m_type == emr::EXTTEXTOUTW);
}

void EmfPlayer::OnPolyTextOut(unsigned char* r, uint32_t size) {
    const uint32_t count =
        records::FitCount(Field32(r, kPolyCount), kPolyTexts, kEmrTextSize, size);
    for (uint32_t i = 0; i < count; ++i)
        DrawEmrText(r, size, kPolyTexts + kEmrTextSize * (size_t)i, m_type == emr::POLYTEXTOUTW);
}

void EmfPlayer::OnSmallTextOut(unsigned char* r, uint32_t size) {
    DeviceContext::TextCall call;
    call.reference = {(double)SignedField32(r, 8), (double)SignedField32(r, 12)};
    call.options = Field32(r, kSmallOptions);
    call.compatible = Field32(r, kGraphicsMode) == GM_COMPATIBLE;
    size_t offset = kSmallRect;
    if (!(call.options & ETO_NO_RECT)) {
        if (!records::Fits(offset, 16, size)) return;
        call.rect = RectAt(r, offset);
        offset += 16;
    } else {
        call.options &= ~(uint32_t)0x0006;  // no rectangle to fill or clip to
    }
    const bool wide = !(call.options & ETO_SMALL_CHARS);
    const uint32_t count = records::FitCount(Field32(r, kSmallCount), offset, wide ? 2 : 1, size);
    ReadCharacters(m_dc, r, offset, count, wide, nullptr, call);
    m_dc.ExtTextOut(call);
}

}  // namespace faithful
