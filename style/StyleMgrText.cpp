// Attribute texts of pens, brushes and fonts, and the composed styles the writer draws with.
//
// Every text is a fragment of SVG attribute text with its own leading and trailing spaces;
// pens, solid brushes and fonts with a weight end in a line feed. The fragments are pasted into
// elements as they are.
#define TRACE_FILE "StyleMgr"
#include <cstdint>
#include <initializer_list>

#include "api/Trace.h"
#include "style/StyleMgr.h"

namespace {

// Pen style fields.
const unsigned int kEndCapMask = 0xF00;
const unsigned int kJoinMask = 0xF000;
const unsigned int kDashMask = 0xF;
enum DashStyle { kDash = 1, kDot = 2, kDashDot = 3, kDashDotDot = 4, kUserStyle = 7 };

const char* EndCapText(unsigned int style) {
    switch (style & kEndCapMask) {
        case 0x000:
            return "stroke-linecap = \"round\" ";
        case 0x100:
            return "stroke-linecap = \"square\" ";
        case 0x200:
            return "stroke-linecap = \"butt\" ";
        default:
            return "";
    }
}

const char* JoinText(unsigned int style) {
    switch (style & kJoinMask) {
        case 0x0000:
            return "stroke-linejoin = \"round\" ";
        case 0x1000:
            return "stroke-linejoin = \"bevel\" ";
        case 0x2000:
            return "stroke-linejoin = \"miter\" ";
        default:
            return "";
    }
}

// k * w in 32-bit two's complement, as the signed pen width multiplies.
int Times(int k, int w) {
    return static_cast<int32_t>(static_cast<uint32_t>(k) * static_cast<uint32_t>(w));
}

// A dash array of multiples of the pen width: " a , b , c".
void AppendDashMultiples(QByteArray& text, int w, std::initializer_list<int> factors) {
    text += "stroke-dasharray=\"";
    const char* separator = " ";
    for (int factor : factors) {
        text += separator;
        text += QByteArray::number(Times(factor, w));
        separator = " , ";
    }
    text += "\" ";
}

// The caller's entries, at most `count` of them, comma separated.
void AppendUserDashes(QByteArray& text, const unsigned int* entries, int count) {
    if (entries == nullptr || count <= 0) return;
    text += "stroke-dasharray=\" ";
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += ',';
        text += QByteArray::number(entries[i]);
    }
    text += "\" ";
}

void AppendDashes(QByteArray& text, int w, unsigned int style, const unsigned int* entries,
                  int count) {
    switch (style & kDashMask) {
        case kDash:
            return AppendDashMultiples(text, w, {4, 2});
        case kDot:
            return AppendDashMultiples(text, w, {1, 1});
        case kDashDot:
            return AppendDashMultiples(text, w, {4, 2, 1, 2});
        case kDashDotDot:
            return AppendDashMultiples(text, w, {4, 2, 1, 2, 1, 2});
        case kUserStyle:
            return AppendUserDashes(text, entries, count);
        default:
            return;
    }
}

// ` name="value" `
QByteArray Attribute(const char* name, const QByteArray& value) {
    QByteArray text(" ");
    text += name;
    text += "=\"";
    text += value;
    text += "\" ";
    return text;
}

QByteArray DecorationText(bool underline, bool strikeOut) {
    if (!strikeOut) return underline ? Attribute("text-decoration", "underline") : QByteArray();
    return Attribute("text-decoration", underline ? "underline line-through" : "line-through");
}

QByteArray WeightText(const QByteArray& weight) {
    return Attribute("font-weight", weight) + '\n';
}

const char kHexDigits[] = "0123456789abcdef";

}  // namespace

QByteArray CStyleManager::GetColorString(unsigned int colour) {
    TRACE_ENTER();
    char text[7] = {'#'};
    for (int i = 0; i < 3; ++i) {
        const unsigned int c = (colour >> (8 * i)) & 0xFF;
        text[1 + 2 * i] = kHexDigits[c >> 4];
        text[2 + 2 * i] = kHexDigits[c & 0xF];
    }
    TRACE_RETURN(QByteArray(text, 7));
}

QByteArray CStyleManager::GetDashArray(int width, int penStyle, const unsigned int* entries,
                                       int count) {
    TRACE_ENTER();
    const unsigned int style = static_cast<unsigned int>(penStyle);
    QByteArray text(EndCapText(style));
    text += JoinText(style);
    AppendDashes(text, width, style, entries, count);
    TRACE_RETURN(text);
}

const QByteArray& CStyleManager::GetCurrPenStyle() {
    TRACE_ENTER();
    if (m_penStale) RebuildPenStyle();
    TRACE_RETURN(m_penComposed);
}

const QByteArray& CStyleManager::GetCurrBrushStyle() {
    TRACE_ENTER();
    if (m_brushStale) RebuildBrushStyle();
    TRACE_RETURN(m_brushComposed);
}

const QByteArray& CStyleManager::GetCurrTextStyle() {
    TRACE_ENTER();
    TRACE_RETURN(m_textComposed);
}

void CStyleManager::RebuildPenStyle() {
    m_penStale = false;
    m_penComposed = m_penStyle + " fill=\"none\" " + m_clipAttr;
}

void CStyleManager::RebuildBrushStyle() {
    m_brushStale = false;
    m_brushComposed = "\" " + m_brushStyle + " stroke=\"none\" stroke-width=\"0\" ";
}

void CStyleManager::RebuildTextStyle() {
    m_textComposed = m_fontStyle + Attribute("fill", m_textColor);
}

QByteArray CStyleManager::PenText(unsigned int style, unsigned int width, unsigned int colour,
                                  const unsigned int* entries, unsigned int count) {
    QByteArray text =
        Attribute("stroke", colour == 0 ? QByteArray("black") : GetColorString(colour));
    text += "stroke-width=\"";
    text += QByteArray::number(width);
    text += "\" \n";
    // The entry count has been clipped to the record by the caller; it fits an int.
    const int entryCount = count > 0x7FFFFFFFu ? 0x7FFFFFFF : static_cast<int>(count);
    const QByteArray dash =
        GetDashArray(static_cast<int>(width), static_cast<int>(style), entries, entryCount);
    if (!dash.isEmpty()) {
        text += ' ';
        text += dash;
    }
    return text;
}

QByteArray CStyleManager::SolidBrushText(unsigned int colour) {
    return " fill=\"" + GetColorString(colour) + "\"\n";
}

QByteArray CStyleManager::EmfFontText(const QByteArray& family, const tagLOGFONTW& lf) {
    QByteArray text = Attribute("font-family", family);
    if (lf.lfItalic != 0) text += Attribute("font-style", "italic");
    text += DecorationText(lf.lfUnderline != 0, lf.lfStrikeOut != 0);
    if (lf.lfWeight != 0) text += WeightText(QByteArray::number(lf.lfWeight));
    return text;
}

QByteArray CStyleManager::WmfFontText(const QByteArray& family, const FONTSPEC& wmfFont) {
    const uint16_t height = static_cast<uint16_t>(wmfFont.Height);
    const uint16_t weight = static_cast<uint16_t>(wmfFont.Weight);
    QByteArray text = Attribute("font-family", family);
    text += "font-size=\"";
    text += QByteArray::number(height);
    text += "\" ";
    if (wmfFont.Italic != 0) text += Attribute("font-style", "italic");
    if (wmfFont.Underline != 0) text += Attribute("text-decoration", "underline");
    if (weight != 0) text += WeightText(QByteArray::number(weight));
    return text;
}
