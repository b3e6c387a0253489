// The device context's text: character sets, fonts and the placement of a text record's
// characters in device space.
//
// Font metrics are approximated from the em size, the same for every face: a cell of 1.12 em
// (so a positive, cell height gives an em of height / 1.12), an ascent of 0.9 em, a descent of
// 0.22 em and an average character width of 0.44 em (what condensed and expanded widths are
// measured against). Characters are placed at the advances the record gives; without them the
// text flows as the viewer's font places it.
#include <QtGlobal>
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QStringDecoder>
#else
#include <QTextCodec>
#endif
#include <algorithm>
#include <cmath>
#include <memory>

#include "faithful/DeviceContext.h"

namespace faithful {

namespace {

const uint32_t ETO_OPAQUE = 0x0002, ETO_CLIPPED = 0x0004, ETO_GLYPH_INDEX = 0x0010;
const uint32_t TA_UPDATECP = 1, TA_RIGHT = 2, TA_CENTER = 6, TA_BOTTOM = 8, TA_BASELINE = 24;
const uint8_t SYMBOL_CHARSET = 2;

const double kCell = 1.12, kAscent = 0.9, kDescent = 0.22, kAverageWidth = 0.44;
// The em of a font of height 0, in pixels (1/96 inch).
const double kDefaultEmPixels = 13;
const double kPi = 3.14159265358979323846;

// The code page of a font's character set; null for the symbol set (bytes are glyph codes).
const char* CodecName(uint8_t charSet) {
    switch (charSet) {
        case SYMBOL_CHARSET:
            return nullptr;
        case 77:
            return "macintosh";
        case 128:
            return "Shift_JIS";
        case 129:
            return "windows-949";
        case 134:
            return "GBK";
        case 136:
            return "Big5";
        case 161:
            return "windows-1253";
        case 162:
            return "windows-1254";
        case 163:
            return "windows-1258";
        case 177:
            return "windows-1255";
        case 178:
            return "windows-1256";
        case 186:
            return "windows-1257";
        case 204:
            return "windows-1251";
        case 222:
            return "windows-874";
        case 238:
            return "windows-1250";
        case 255:
            return "IBM437";
        default:
            return "windows-1252";
    }
}

// Windows-1252's characters 0x80 to 0x9F, for when no converter is there (0: unassigned).
const uint16_t k1252High[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// A converter fed one byte at a time: Push returns the characters completed by the byte.
class ByteDecoder {
  public:
    explicit ByteDecoder(const char* name) {
        if (!name) return;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        m_decoder.reset(new QStringDecoder(name));
        if (!m_decoder->isValid()) m_decoder.reset();
#else
        if (QTextCodec* codec = QTextCodec::codecForName(name))
            m_decoder.reset(codec->makeDecoder());
#endif
    }
    QString Push(unsigned char byte) {
        const char c = (char)byte;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        if (m_decoder) return m_decoder->decode(QByteArrayView(&c, 1));
#else
        if (m_decoder) return m_decoder->toUnicode(&c, 1);
#endif
        // The symbol set and the fallback: the byte itself, or Windows-1252 for 0x80 to 0x9F.
        const uint16_t u =
            byte >= 0x80 && byte < 0xA0 && k1252High[byte - 0x80] ? k1252High[byte - 0x80] : byte;
        return QString(QChar(u));
    }

  private:
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    std::unique_ptr<QStringDecoder> m_decoder;
#else
    std::unique_ptr<QTextDecoder> m_decoder;
#endif
};

// The Symbol font's glyphs 0x20 to 0xFF as Unicode (0: the byte as it is).
const uint16_t kSymbol[224] = {
    0x0020, 0x0021, 0x2200, 0x0023, 0x2203, 0x0025, 0x0026, 0x220B, 0x0028, 0x0029, 0x2217, 0x002B,
    0x002C, 0x2212, 0x002E, 0x002F, 0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037,
    0x0038, 0x0039, 0x003A, 0x003B, 0x003C, 0x003D, 0x003E, 0x003F, 0x2245, 0x0391, 0x0392, 0x03A7,
    0x0394, 0x0395, 0x03A6, 0x0393, 0x0397, 0x0399, 0x03D1, 0x039A, 0x039B, 0x039C, 0x039D, 0x039F,
    0x03A0, 0x0398, 0x03A1, 0x03A3, 0x03A4, 0x03A5, 0x03C2, 0x03A9, 0x039E, 0x03A8, 0x0396, 0x005B,
    0x2234, 0x005D, 0x22A5, 0x005F, 0x203E, 0x03B1, 0x03B2, 0x03C7, 0x03B4, 0x03B5, 0x03C6, 0x03B3,
    0x03B7, 0x03B9, 0x03D5, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BF, 0x03C0, 0x03B8, 0x03C1, 0x03C3,
    0x03C4, 0x03C5, 0x03D6, 0x03C9, 0x03BE, 0x03C8, 0x03B6, 0x007B, 0x007C, 0x007D, 0x223C, 0,
    // 0x80 to 0x9F: unassigned
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    // 0xA0
    0x20AC, 0x03D2, 0x2032, 0x2264, 0x2044, 0x221E, 0x0192, 0x2663, 0x2666, 0x2665, 0x2660, 0x2194,
    0x2190, 0x2191, 0x2192, 0x2193, 0x00B0, 0x00B1, 0x2033, 0x2265, 0x00D7, 0x221D, 0x2202, 0x2022,
    0x00F7, 0x2260, 0x2261, 0x2248, 0x2026, 0x23D0, 0x23AF, 0x21B5, 0x2135, 0x2111, 0x211C, 0x2118,
    0x2297, 0x2295, 0x2205, 0x2229, 0x222A, 0x2283, 0x2287, 0x2284, 0x2282, 0x2286, 0x2208, 0x2209,
    0x2220, 0x2207, 0x00AE, 0x00A9, 0x2122, 0x220F, 0x221A, 0x22C5, 0x00AC, 0x2227, 0x2228, 0x21D4,
    0x21D0, 0x21D1, 0x21D2, 0x21D3, 0x25CA, 0x2329, 0x00AE, 0x00A9, 0x2122, 0x2211, 0x239B, 0x239C,
    0x239D, 0x23A1, 0x23A2, 0x23A3, 0x23A7, 0x23A8, 0x23A9, 0x23AA, 0x0020, 0x232A, 0x222B, 0x2320,
    0x23AE, 0x2321, 0x239E, 0x239F, 0x23A0, 0x23A4, 0x23A5, 0x23A6, 0x23AB, 0x23AC, 0x23AD, 0};

// Wingdings glyphs whose Unicode characters are known; the others keep the private-use
// code the font answers to.
const struct {
    uint8_t glyph;
    uint16_t unicode;
} kWingdings[] = {{0x4A, 0x263A}, {0x4C, 0x2639}, {0x6C, 0x25CF}, {0x6E, 0x25A0}, {0x6F, 0x25A1},
                  {0x71, 0x2751}, {0x75, 0x25C6}, {0x76, 0x2756}, {0x9F, 0x2022}, {0xA7, 0x25AA},
                  {0xA8, 0x25FB}, {0xD8, 0x27A2}, {0xFB, 0x2718}, {0xFC, 0x2714}};

enum class SymbolFont { None, Symbol, Wingdings };

SymbolFont SymbolFontOf(const LogFont& font) {
    const QString face = font.faceName.trimmed();
    if (face.compare(QLatin1String("Symbol"), Qt::CaseInsensitive) == 0) return SymbolFont::Symbol;
    if (face.startsWith(QLatin1String("Wingdings"), Qt::CaseInsensitive))
        return SymbolFont::Wingdings;
    return SymbolFont::None;
}

// A code unit of a symbol font as the character its glyph shows.
uint16_t MapSymbol(SymbolFont kind, uint16_t c) {
    // Symbol fonts answer to their glyph codes and to the same codes at 0xF000.
    const uint16_t glyph = c >= 0xF020 && c <= 0xF0FF ? (uint16_t)(c - 0xF000) : c;
    if (glyph < 0x20 || glyph > 0xFF) return c;
    if (kind == SymbolFont::Symbol) return kSymbol[glyph - 0x20] ? kSymbol[glyph - 0x20] : glyph;
    for (const auto& w : kWingdings)
        if (w.glyph == glyph) return w.unicode;
    return (uint16_t)(0xF000 + glyph);
}

bool AllowedInXml(uint32_t c) {
    return (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c < 0xD800) || (c >= 0xE000 && c < 0xFFFE) ||
           c >= 0x10000;
}

bool Contains(const QString& face, const char* word) {
    return face.contains(QLatin1String(word), Qt::CaseInsensitive);
}

// The generic family of a font: by the family bits of its pitch and family, else by its name.
const char* GenericFamily(const LogFont& font) {
    switch (font.pitchAndFamily & 0xF0) {
        case 0x10:
            return "serif";
        case 0x20:
            return "sans-serif";
        case 0x30:
            return "monospace";
        case 0x40:
            return "cursive";
        case 0x50:
            return "fantasy";
    }
    const QString& f = font.faceName;
    for (const char* w : {"courier", "mono", "consol", "console", "fixedsys", "terminal"})
        if (Contains(f, w)) return "monospace";
    if (Contains(f, "sans")) return "sans-serif";
    for (const char* w : {"times", "roman", "serif", "georgia", "garamond", "book", "palatino",
                          "cambria", "century", "symbol", "mincho", "song", "ming"})
        if (Contains(f, w)) return "serif";
    if ((font.pitchAndFamily & 3) == 1) return "monospace";
    return "sans-serif";
}

}  // namespace

namespace {

// Faces of the recording systems and the faces with the same advance widths that viewers
// elsewhere have, tried before the generic family (whose own face could be much wider).
const struct {
    const char* face;
    const char* sameMetrics;
} kMetricFaces[] = {
    {"times new roman", "'Liberation Serif', 'Nimbus Roman', 'Tinos'"},
    {"times", "'Liberation Serif', 'Nimbus Roman', 'Tinos'"},
    {"arial", "'Liberation Sans', 'Nimbus Sans', 'Arimo'"},
    {"helvetica", "'Liberation Sans', 'Nimbus Sans', 'Arimo'"},
    {"arial narrow", "'Liberation Sans Narrow', 'Nimbus Sans Narrow'"},
    {"courier new", "'Liberation Mono', 'Nimbus Mono PS', 'Cousine'"},
    {"courier", "'Liberation Mono', 'Nimbus Mono PS', 'Cousine'"},
    {"calibri", "'Carlito'"},
    {"cambria", "'Caladea'"},
    {"bookman old style", "'URW Bookman'"},
    {"century schoolbook", "'C059'"},
    {"book antiqua", "'P052'"},
    {"palatino linotype", "'P052'"},
    {"century gothic", "'URW Gothic'"},
};

// The font-family list of a logical font: its face (only letters, digits, spaces and
// "-_." kept, so it needs no escaping), faces of the same metrics, then the generic family.
QString FontFamily(const LogFont& font) {
    QString face;
    for (QChar c : font.faceName.left(32))
        if (c.isLetterOrNumber() || c == QLatin1Char(' ') || c == QLatin1Char('-') ||
            c == QLatin1Char('_') || c == QLatin1Char('.'))
            face.append(c);
    face = face.trimmed();
    const QString generic = QLatin1String(GenericFamily(font));
    if (face.isEmpty()) return generic;
    QString list = QLatin1Char('\'') + face + QLatin1String("', ");
    for (const auto& m : kMetricFaces)
        if (face.compare(QLatin1String(m.face), Qt::CaseInsensitive) == 0)
            list += QLatin1String(m.sameMetrics) + QLatin1String(", ");
    return list + generic;
}

}  // namespace

void DeviceContext::DecodeAnsi(const unsigned char* bytes, size_t count, const PointF* advances,
                               TextCall& call) const {
    call.text.clear();
    call.advances.clear();
    ByteDecoder decoder(CodecName(m_state.font.charSet));
    PointF pending;  // the advances of the bytes of a character not yet complete
    for (size_t i = 0; i < count; ++i) {
        if (advances) {
            pending.x += advances[i].x;
            pending.y += advances[i].y;
        }
        const QString done = decoder.Push(bytes[i]);
        for (int k = 0; k < done.size(); ++k) {
            call.text.append(done[k]);
            if (advances) call.advances.push_back(k == 0 ? pending : PointF{});
        }
        if (!done.isEmpty()) pending = {};
    }
}

void DeviceContext::DrawTextCells(const TextOp& op, double left, double right, double baseline) {
    const double rad = op.angle * kPi / 180, c = std::cos(rad), s = std::sin(rad);
    const double top = baseline - kAscent * op.size, bottom = baseline + kDescent * op.size;
    DrawOp cells;
    const double corners[4][2] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    for (int i = 0; i < 4; ++i) {
        const double x = corners[i][0] * op.stretch, y = corners[i][1];
        const PointF p{op.origin.x + x * c - y * s, op.origin.y + x * s + y * c};
        if (i == 0)
            cells.path.MoveTo(p);
        else
            cells.path.LineTo(p);
    }
    cells.path.Close();
    cells.fill.kind = Fill::Kind::Solid;
    cells.fill.color = RgbFromColorRef(m_state.bkColor);
    Send(cells);
}

void DeviceContext::ExtTextOut(const TextCall& call) {
    if (call.options & ETO_OPAQUE) FillRect(call.rect, m_state.bkColor);
    // Glyph indices name no characters; text in a path bracket would add outlines to it.
    if ((call.options & ETO_GLYPH_INDEX) || m_inBracket || call.text.isEmpty()) return;
    const Matrix toDevice = LogicalToDevice();
    const LogFont& font = m_state.font;
    const uint32_t align = m_state.textAlign;
    const bool updateCp = (align & TA_UPDATECP) != 0;
    const PointF reference = updateCp ? m_state.position : call.reference;

    // The baseline and the direction across it in logical space, y down: the escapement
    // turns the line counter-clockwise. Both map to the device with the logical space, so a
    // mapping with y up turns the line the other way, as the drawing system does.
    const double esc = (font.escapement % 3600) / 10.0 * kPi / 180;
    const PointF along{std::cos(esc), -std::sin(esc)};
    const PointF across{std::sin(esc), std::cos(esc)};
    // What turns the line and its glyphs: the whole mapping, or in the compatible mode the
    // page mapping scaled by the world transform's mean scale.
    Matrix orient = toDevice, inverseWorld;
    if (call.compatible && m_state.world.Invert(inverseWorld)) {
        const double k = std::sqrt(std::fabs(m_state.world.Determinant()));
        orient = Matrix::Scale(k, k).Then(inverseWorld.Then(toDevice));
    }
    const PointF alongDev = orient.MapVector(along), acrossDev = orient.MapVector(across);
    const double alongScale = std::hypot(alongDev.x, alongDev.y);
    const double acrossScale = std::hypot(acrossDev.x, acrossDev.y);
    if (!(alongScale > 0) || !(acrossScale > 0) || !std::isfinite(alongScale * acrossScale)) return;
    // Text space: x along the mapped baseline, y a quarter turn clockwise from it, so the
    // glyphs are never mirrored.
    const PointF xAxis{alongDev.x / alongScale, alongDev.y / alongScale};
    const PointF yAxis{-xAxis.y, xAxis.x};

    TextOp op;
    op.angle = std::atan2(xAxis.y, xAxis.x) * 180 / kPi;
    op.origin = toDevice.Map(reference);
    const double height = std::fabs((double)font.height);
    op.size = font.height == 0 ? kDefaultEmPixels * PixelWidth()
                               : (font.height < 0 ? height : height / kCell) * acrossScale;
    if (font.width != 0) {
        const double stretch =
            std::fabs((double)font.width) * alongScale / (kAverageWidth * op.size);
        if (std::fabs(stretch - 1) > 0.1) op.stretch = std::max(0.05, std::min(20.0, stretch));
    }
    op.family = FontFamily(font);
    op.weight =
        font.weight <= 0 ? 400 : (std::min(900, std::max(100, font.weight)) + 50) / 100 * 100;
    op.italic = font.italic;
    op.underline = font.underline;
    op.strikeOut = font.strikeOut;
    op.color = RgbFromColorRef(m_state.textColor);
    if (!std::isfinite(op.size) || op.size <= 0 || !std::isfinite(op.origin.x) ||
        !std::isfinite(op.origin.y))
        return;

    // The characters XML allows, each at the sum of the advances before it (text space).
    const SymbolFont symbol = SymbolFontOf(font);
    const bool placed = call.advances.size() == (size_t)call.text.size();
    PointF sum;
    const int n = call.text.size();
    for (int i = 0; i < n; ++i) {
        uint32_t c = call.text[i].unicode();
        PointF at = sum;
        if (placed) {
            sum.x += call.advances[i].x;
            sum.y += call.advances[i].y;
        }
        if (symbol != SymbolFont::None) c = MapSymbol(symbol, (uint16_t)c);
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < n && call.text[i + 1].isLowSurrogate()) {
            op.text.append(QChar((ushort)c));
            op.text.append(call.text[++i]);
            if (placed) {
                sum.x += call.advances[i].x;
                sum.y += call.advances[i].y;
            }
        } else if (AllowedInXml(c)) {
            op.text.append(QChar((ushort)c));
        } else {
            continue;
        }
        if (placed) {
            // The advances so far, logical (along the line, and along y), in text space.
            const PointF v = orient.MapVector({along.x * at.x, along.y * at.x + at.y});
            op.positions.push_back(
                {(v.x * xAxis.x + v.y * xAxis.y) / op.stretch, v.x * yAxis.x + v.y * yAxis.y});
        }
    }
    const double total = sum.x * alongScale / op.stretch;

    // Alignment: the start moves back by the line's advance, or the anchor moves.
    double shiftX = 0, shiftY = 0;
    if (!updateCp && (align & TA_CENTER) == TA_CENTER)
        shiftX = -total / 2;
    else if (!updateCp && (align & TA_RIGHT))
        shiftX = -total;
    if ((align & TA_BASELINE) == TA_BASELINE)
        shiftY = 0;
    else if (align & TA_BOTTOM)
        shiftY = -kDescent * op.size;
    else
        shiftY = kAscent * op.size;
    if (!placed && !updateCp)
        op.anchor = (align & TA_CENTER) == TA_CENTER ? TextOp::Anchor::Middle
                    : (align & TA_RIGHT)             ? TextOp::Anchor::End
                                                     : TextOp::Anchor::Start;
    for (PointF& p : op.positions) {
        p.x += shiftX;
        p.y += shiftY;
    }
    if (!placed) {
        // Flowing text starts at the reference point moved across the line.
        op.positions.clear();
        const double rad = op.angle * kPi / 180;
        op.origin = {op.origin.x - std::sin(rad) * shiftY, op.origin.y + std::cos(rad) * shiftY};
    }

    if (call.options & ETO_CLIPPED) shapes::Rectangle(op.clip, toDevice, call.rect);
    // The opaque background mode fills the text cells (known from the advances).
    if (m_state.bkMode == gdi::OPAQUE && !(call.options & ETO_OPAQUE) && placed && total != 0) {
        DrawTextCells(op, std::min(shiftX, shiftX + total), std::max(shiftX, shiftX + total),
                      shiftY);
    }
    if (!op.text.isEmpty()) {
        if (!m_pendingBlts.empty()) FlushBitmaps();
        m_sink.DrawText(op);
    }

    if (updateCp) {
        // The current position moves along the line by the advances (estimated without them).
        const double advance = placed ? sum.x : 0.5 * op.size / acrossScale * n;
        m_state.position = {reference.x + along.x * advance, reference.y + along.y * advance};
    }
}

}  // namespace faithful
