#include "svg/TextRun.h"

#include <QChar>
#include <cstring>

#include "svg/SvgBuffer.h"

namespace {

bool IsHighSurrogate(uint32_t u) {
    return u >= 0xD800 && u < 0xDC00;
}
bool IsLowSurrogate(uint32_t u) {
    return u >= 0xDC00 && u < 0xE000;
}

void AppendCodePoint(SvgBuffer& out, uint32_t c) {
    switch (c) {
        case '&':
            out.Write("&amp;");
            return;
        case '<':
            out.Write("&lt;");
            return;
        case '>':
            out.Write("&gt;");
            return;
    }
    if (c < 0x80) {
        out.Append((char)c);
        return;
    }
    char bytes[4];
    int n;
    if (c < 0x800) {
        bytes[0] = (char)(0xC0 | (c >> 6));
        n = 1;
    } else if (c < 0x10000) {
        bytes[0] = (char)(0xE0 | (c >> 12));
        bytes[1] = (char)(0x80 | ((c >> 6) & 0x3F));
        n = 2;
    } else {
        bytes[0] = (char)(0xF0 | (c >> 18));
        bytes[1] = (char)(0x80 | ((c >> 12) & 0x3F));
        bytes[2] = (char)(0x80 | ((c >> 6) & 0x3F));
        n = 3;
    }
    bytes[n] = (char)(0x80 | (c & 0x3F));
    out.Append(bytes, (size_t)n + 1);
}

}  // namespace

uint16_t TextRun::at(size_t i) const {
    if (!wide) return data[i];
    uint16_t unit;
    std::memcpy(&unit, data + 2 * i, sizeof unit);
    return unit;
}

TextRun TextRun::UpToZero() const {
    if (wide || count == 0) return *this;
    const void* zero = std::memchr(data, 0, count);
    return TextRun{data, zero ? (size_t)(static_cast<const unsigned char*>(zero) - data) : count,
                   false};
}

void AppendXmlText(SvgBuffer& out, const TextRun& text) {
    for (size_t i = 0; i < text.count; ++i) {
        uint32_t c = text.at(i);
        if (IsHighSurrogate(c) && i + 1 < text.count && IsLowSurrogate(text.at(i + 1))) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text.at(++i) - 0xDC00);
        } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
            c = '?';
        }
        AppendCodePoint(out, c);
    }
}

bool IsBlankText(const TextRun& text) {
    for (size_t i = 0; i < text.count; ++i)
        if (!QChar::isSpace(text.at(i))) return false;
    return true;
}
