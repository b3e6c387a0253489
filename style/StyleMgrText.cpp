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

QString EndCapText(unsigned int style) {
    switch (style & kEndCapMask) {
        case 0x000:
            return QStringLiteral("stroke-linecap = \"round\" ");
        case 0x100:
            return QStringLiteral("stroke-linecap = \"square\" ");
        case 0x200:
            return QStringLiteral("stroke-linecap = \"butt\" ");
        default:
            return QString();
    }
}

QString JoinText(unsigned int style) {
    switch (style & kJoinMask) {
        case 0x0000:
            return QStringLiteral("stroke-linejoin = \"round\" ");
        case 0x1000:
            return QStringLiteral("stroke-linejoin = \"bevel\" ");
        case 0x2000:
            return QStringLiteral("stroke-linejoin = \"miter\" ");
        default:
            return QString();
    }
}

// k * w in 32-bit two's complement, as the signed pen width multiplies.
int Times(int k, int w) {
    return static_cast<int32_t>(static_cast<uint32_t>(k) * static_cast<uint32_t>(w));
}

// A dash array of multiples of the pen width: " a , b , c".
QString DashMultiples(int w, std::initializer_list<int> factors) {
    QString text = QStringLiteral("stroke-dasharray=\"");
    const char* separator = " ";
    for (int factor : factors) {
        text += QLatin1String(separator) + QString::number(Times(factor, w));
        separator = " , ";
    }
    return text + QStringLiteral("\" ");
}

// The caller's entries, at most `count` of them, comma separated.
QString UserDashes(const unsigned int* entries, int count) {
    if (entries == nullptr || count <= 0) return QString();
    QString text = QStringLiteral("stroke-dasharray=\" ");
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += QLatin1Char(',');
        text += QString::number(entries[i]);
    }
    return text + QStringLiteral("\" ");
}

QString DashText(int w, unsigned int style, const unsigned int* entries, int count) {
    switch (style & kDashMask) {
        case kDash:
            return DashMultiples(w, {4, 2});
        case kDot:
            return DashMultiples(w, {1, 1});
        case kDashDot:
            return DashMultiples(w, {4, 2, 1, 2});
        case kDashDotDot:
            return DashMultiples(w, {4, 2, 1, 2, 1, 2});
        case kUserStyle:
            return UserDashes(entries, count);
        default:
            return QString();
    }
}

// ` name="value" `
QString Attribute(const char* name, const QString& value) {
    return QLatin1Char(' ') + QLatin1String(name) + QStringLiteral("=\"") + value +
           QStringLiteral("\" ");
}

QString DecorationText(bool underline, bool strikeOut) {
    if (!strikeOut)
        return underline ? Attribute("text-decoration", QStringLiteral("underline")) : QString();
    return Attribute("text-decoration", underline ? QStringLiteral("underline line-through")
                                                  : QStringLiteral("line-through"));
}

QString WeightText(const QString& weight) {
    return Attribute("font-weight", weight) + QLatin1Char('\n');
}

}  // namespace

QString CStyleManager::GetColorString(unsigned int colour) {
    TRACE_ENTER();
    const QChar zero(QLatin1Char('0'));
    TRACE_RETURN(QStringLiteral("#%1%2%3")
                     .arg(colour & 0xFF, 2, 16, zero)
                     .arg((colour >> 8) & 0xFF, 2, 16, zero)
                     .arg((colour >> 16) & 0xFF, 2, 16, zero));
}

QString CStyleManager::GetDashArray(int width, int penStyle, const unsigned int* entries,
                                    int count) {
    TRACE_ENTER();
    const unsigned int style = static_cast<unsigned int>(penStyle);
    TRACE_RETURN(EndCapText(style) + JoinText(style) + DashText(width, style, entries, count));
}

QString CStyleManager::GetCurrPenStyle() {
    TRACE_ENTER();
    TRACE_RETURN(m_penStyle + QStringLiteral(" fill=\"none\" ") + m_clipAttr);
}

QString CStyleManager::GetCurrBrushStyle() {
    TRACE_ENTER();
    TRACE_RETURN(QStringLiteral("\" ") + m_brushStyle +
                 QStringLiteral(" stroke=\"none\" stroke-width=\"0\" "));
}

QString CStyleManager::GetCurrTextStyle() {
    TRACE_ENTER();
    TRACE_RETURN(m_fontStyle + Attribute("fill", m_textColor));
}

QString CStyleManager::PenText(unsigned int style, unsigned int width, unsigned int colour,
                               const unsigned int* entries, unsigned int count) {
    const QString colourText = colour == 0 ? QStringLiteral("black") : GetColorString(colour);
    QString text = Attribute("stroke", colourText) + QStringLiteral("stroke-width=\"") +
                   QString::number(width) + QStringLiteral("\" \n");
    // The entry count has been clipped to the record by the caller; it fits an int.
    const int entryCount = count > 0x7FFFFFFFu ? 0x7FFFFFFF : static_cast<int>(count);
    const QString dash =
        GetDashArray(static_cast<int>(width), static_cast<int>(style), entries, entryCount);
    if (!dash.isEmpty()) text += QLatin1Char(' ') + dash;
    return text;
}

QString CStyleManager::SolidBrushText(unsigned int colour) {
    return QStringLiteral(" fill=\"") + GetColorString(colour) + QStringLiteral("\"\n");
}

QString CStyleManager::EmfFontText(const QString& family, const tagLOGFONTW& lf) {
    QString text = Attribute("font-family", family);
    if (lf.lfItalic != 0) text += Attribute("font-style", QStringLiteral("italic"));
    text += DecorationText(lf.lfUnderline != 0, lf.lfStrikeOut != 0);
    if (lf.lfWeight != 0) text += WeightText(QString::number(lf.lfWeight));
    return text;
}

QString CStyleManager::WmfFontText(const QString& family, const FONTSPEC& wmfFont) {
    const uint16_t height = static_cast<uint16_t>(wmfFont.Height);
    const uint16_t weight = static_cast<uint16_t>(wmfFont.Weight);
    QString text = Attribute("font-family", family) + QStringLiteral("font-size=\"") +
                   QString::number(height) + QStringLiteral("\" ");
    if (wmfFont.Italic != 0) text += Attribute("font-style", QStringLiteral("italic"));
    if (wmfFont.Underline != 0) text += Attribute("text-decoration", QStringLiteral("underline"));
    if (weight != 0) text += WeightText(QString::number(weight));
    return text;
}
