#include "tests/MetafileBuilder.h"

#include <algorithm>
#include <cstring>

namespace mfb {

Bytes& Bytes::u8(uint8_t v) {
    m_data.push_back(v);
    return *this;
}

Bytes& Bytes::put(uint32_t v, int width) {
    m_fields.emplace_back((int)m_data.size(), width);
    for (int i = 0; i < width; ++i) m_data.push_back((uint8_t)(v >> (8 * i)));
    return *this;
}

Bytes& Bytes::f32(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    return put(bits, 4);
}

Bytes& Bytes::utf16(const QString& text, int units) {
    for (int i = 0; i < units; ++i) u16(i < text.size() ? text.at(i).unicode() : 0);
    return *this;
}

Bytes& Bytes::latin1(const QByteArray& text, int count) {
    for (int i = 0; i < count; ++i) u8(i < text.size() ? (uint8_t)text.at(i) : 0);
    return *this;
}

Bytes& Bytes::zeros(int count) {
    m_data.insert(m_data.end(), (size_t)count, 0);
    return *this;
}

Bytes& Bytes::append(const Bytes& other) {
    const int base = (int)m_data.size();
    m_data.insert(m_data.end(), other.m_data.begin(), other.m_data.end());
    for (const auto& f : other.m_fields) m_fields.emplace_back(base + f.first, f.second);
    return *this;
}

QByteArray Bytes::toByteArray(bool swapped) const {
    std::vector<uint8_t> out = m_data;
    if (swapped)
        for (const auto& f : m_fields)
            std::reverse(out.begin() + f.first, out.begin() + f.first + f.second);
    return QByteArray(reinterpret_cast<const char*>(out.data()), (int)out.size());
}

Bytes Points16(std::initializer_list<std::pair<int, int>> points) {
    Bytes b;
    for (const auto& p : points) b.i16((int16_t)p.first).i16((int16_t)p.second);
    return b;
}

Bytes RegionData(const std::vector<Rect>& rects, int64_t count, uint32_t headerSize) {
    const uint32_t n = (uint32_t)rects.size();
    Bytes b;
    b.u32(headerSize).u32(1).u32(count < 0 ? n : (uint32_t)count).u32(16 * n).zeros(16);
    b.zeros(headerSize > 32 ? (int)headerSize - 32 : 0);
    for (const Rect& r : rects) b.i32(r[0]).i32(r[1]).i32(r[2]).i32(r[3]);
    return b;
}

Bytes BitmapInfo(int32_t width, int32_t height, uint16_t bitCount,
                 const std::vector<uint32_t>& colours) {
    Bytes b = Bytes().u32(40).i32(width).i32(height).u16(1).u16(bitCount).zeros(24);
    for (uint32_t c : colours) b.u8(c & 0xFF).u8(c >> 8 & 0xFF).u8(c >> 16 & 0xFF).u8(0);
    return b;
}

Bytes EmfBlt(uint32_t type, int x, int y, int cx, int cy, uint32_t rop, const Bytes& header,
             const Bytes& bits) {
    const uint32_t fixed = type == EMR_MASKBLT ? 128 : type == EMR_BITBLT ? 100 : 108;
    const uint32_t at = header.size() ? fixed : 0,
                   bitsAt = header.size() ? fixed + header.size() : 0;
    Bytes b = Bytes().zeros(16).i32(x).i32(y).i32(cx).i32(cy).u32(rop).zeros(40);
    b.u32(at).u32(header.size()).u32(bitsAt).u32(bits.size());
    return b.zeros(fixed - 100).append(header).append(bits);
}

Bytes EmfStretchDib(int x, int y, int cx, int cy, uint32_t rop, const Bytes& header,
                    const Bytes& bits) {
    Bytes b = Bytes().zeros(16).i32(x).i32(y).zeros(16).u32(80).u32(header.size());
    b.u32(80 + header.size()).u32(bits.size()).u32(0).u32(rop).i32(cx).i32(cy);
    return b.append(header).append(bits);
}

Bytes U32s(std::initializer_list<uint32_t> values) {
    Bytes b;
    for (uint32_t v : values) b.u32(v);
    return b;
}

Bytes I32s(std::initializer_list<int32_t> values) {
    Bytes b;
    for (int32_t v : values) b.i32(v);
    return b;
}

Bytes LogFontW(int32_t height, int32_t escapement, int32_t weight, const QString& face) {
    return Bytes().i32(height).i32(0).i32(escapement).i32(0).i32(weight).zeros(8).utf16(face, 32);
}

// --- EMF -----------------------------------------------------------------------------------

QByteArray Emf::build(bool eof, bool swapped) const {
    Bytes body = m_body;
    int records = m_records;
    if (eof) {
        body.u32(EMR_EOF).u32(20).u32(0).u32(16).u32(20);
        ++records;
    }
    const uint32_t total = 88 + (uint32_t)body.size();
    Bytes header;
    header.u32(EMR_HEADER).u32(88);
    for (int32_t v : m_bounds) header.i32(v);
    for (int32_t v : m_frame) header.i32(v);
    header.u32(0x464D4520).u32(0x10000).u32(total);
    header.u32(m_recordCount >= 0 ? (uint32_t)m_recordCount : (uint32_t)(records + 1));
    header.u16(0).u16(0).u32(0).u32(0).u32(0);
    header.i32(m_device[0]).i32(m_device[1]).i32(m_mm[0]).i32(m_mm[1]);
    header.append(body);
    return header.toByteArray(swapped);
}

// --- WMF -----------------------------------------------------------------------------------

Wmf& Wmf::recordWithSize(uint16_t function, uint32_t words, const Bytes& params) {
    m_body.u32(words).u16(function).append(params);
    if (params.size() % 2) m_body.u8(0);
    m_largest = std::max(m_largest, words);
    return *this;
}

QByteArray Wmf::build(bool eof, bool swapped) const {
    Bytes body = m_body;
    if (eof) body.u32(3).u16(META_EOF);
    Bytes file;
    if (m_placeable) {
        file.u32(0x9AC6CDD7).u16(0);
        for (int16_t v : m_box) file.i16(v);
        file.u16(m_inch).u32(0).u16(0);
    }
    const uint32_t words = (uint32_t)(18 + body.size()) / 2;
    file.u16(1).u16(9).u16(0x0300).u32(words).u16(m_objects);
    file.u32(m_maxRecord >= 0 ? (uint32_t)m_maxRecord : m_largest).u16(0);
    file.append(body);
    return file.toByteArray(swapped);
}

}  // namespace mfb
