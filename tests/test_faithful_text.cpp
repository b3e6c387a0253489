// The faithful interpreter's text: placement, alignment, rotation, character sets and hostile
// text records.
#include <gtest/gtest.h>

#include "faithful/DeviceContext.h"
#include "faithful/Faithful.h"
#include "tests/MetafileBuilder.h"

using namespace faithful;

namespace {

struct TextCapture : DrawSink {
    std::vector<TextOp> texts;
    void Draw(const DrawOp&) override {}
    void DrawText(const TextOp& op) override { texts.push_back(op); }
};

LogFont Font(int32_t height, const char* face = "Arial", uint8_t charSet = 0, int esc = 0) {
    LogFont f;
    f.height = height;
    f.faceName = QString::fromLatin1(face);
    f.charSet = charSet;
    f.escapement = esc;
    return f;
}

void Select(DeviceContext& dc, const LogFont& f) {
    GdiObject font;
    font.kind = GdiObject::Kind::Font;
    font.font = f;
    dc.CreateObjectAt(1, font);
    dc.SelectObject(1);
}

QString Convert(const QByteArray& file) {
    QByteArray out;
    faithful::Convert(reinterpret_cast<const unsigned char*>(file.constData()), file.size(), out);
    return QString::fromUtf8(out);
}

}  // namespace

// What a text operation holds: "text|x...|y|angle|size|anchor".
QString Describe(const TextOp& op) {
    QString xs, y = QStringLiteral("-");
    for (const PointF& p : op.positions) {
        xs += QString::number(p.x) + QLatin1Char(' ');
        y = QString::number(p.y);
    }
    return QStringLiteral("%1|%2|%3|%4|%5|%6")
        .arg(op.text, xs.trimmed(), y)
        .arg(op.angle)
        .arg(op.size)
        .arg((int)op.anchor);
}

// One record through the device context: what is drawn, where and in which font.
TEST(FaithfulText, Placement) {
    const std::vector<PointF> ab{{10, 0}, {12, 0}},
        six{{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}};
    const QString symbol = QString::fromUtf16(u"a\xF070");
    const struct {
        const char* name;
        LogFont font;
        uint32_t align;
        QString text;
        std::vector<PointF> advances;
        bool yUpHalved;
        const char* drawn;
    } rows[] = {
        {"advances, baseline", Font(-10), 24, "AB", ab, false, "AB|0 10|0|0|10|0"},
        {"right aligned, top", Font(-10), 2, "AB", ab, false, "AB|-22 -12|9|0|10|0"},
        {"centred flow, cell height", Font(112), 6 | 8, "AB", {}, false, "AB||-|0|100|1"},
        {"escapement", Font(-10, "Arial", 0, 900), 24, "A", {}, false, "A||-|-90|10|0"},
        {"y-up mapping stays upright", Font(-20), 24, "AB", ab, true, "AB|0 5|0|0|10|0"},
        {"hostile characters dropped with their places", Font(-10), 24,
         QString::fromUtf16(u"a\x01<&\xFFFE\xD800"), six, false, "a<&|0 3 6|0|0|10|0"},
        {"symbol font", Font(-10, "Symbol", 2), 24, symbol, {}, false, "\u03B1\u03C0||-|0|10|0"},
    };
    for (const auto& row : rows) {
        TextCapture sink;
        DeviceContext dc(sink);
        dc.SetBkMode(gdi::TRANSPARENT);
        if (row.yUpHalved) {
            dc.SetMapMode(gdi::MM_ANISOTROPIC);
            dc.SetWindowExt(200, -200);
            dc.SetViewportExt(100, 100);
        }
        Select(dc, row.font);
        dc.SetTextAlign(row.align);
        DeviceContext::TextCall call;
        call.reference = {40, 60};
        call.text = row.text;
        call.advances = row.advances;
        dc.ExtTextOut(call);
        ASSERT_EQ(sink.texts.size(), 1u) << row.name;
        EXPECT_EQ(Describe(sink.texts[0]), QString::fromUtf8(row.drawn)) << row.name;
    }
}

// 8-bit text by the font's character set; the advances of a character's bytes add up.
TEST(FaithfulText, CharacterSets) {
    const struct {
        uint8_t charSet;
        QByteArray bytes;
        std::vector<PointF> perByte;
        const char* decoded;  // "text|advances"
    } rows[] = {
        {0, "\x80\xE9", {{1, 0}, {2, 0}}, "\u20AC\u00E9|1 2"},
        {204, "\xC0", {{1, 0}}, "\u0410|1"},
        {238, "\x8A", {{1, 0}}, "\u0160|1"},
        {128, "\x82\xA0\x41", {{1, 0}, {2, 0}, {4, 0}}, "\u3042A|3 4"},
        {2, "\x61", {{1, 0}}, "a|1"},
    };
    for (const auto& row : rows) {
        TextCapture sink;
        DeviceContext dc(sink);
        Select(dc, Font(-10, "Arial", row.charSet));
        DeviceContext::TextCall call;
        dc.DecodeAnsi(reinterpret_cast<const unsigned char*>(row.bytes.constData()),
                      row.bytes.size(), row.perByte.data(), call);
        QString advances;
        for (const PointF& p : call.advances) advances += QString::number(p.x) + QLatin1Char(' ');
        EXPECT_EQ(call.text + QLatin1Char('|') + advances.trimmed(), QString::fromUtf8(row.decoded))
            << (int)row.charSet;
    }
}

// Whole records: escaping, clipping, arrays cut to the record, hostile fonts.
TEST(FaithfulText, Records) {
    using namespace mfb;
    // EMR_EXTTEXTOUTW with `declared` characters at 76, advances after them (offDx 0: none).
    const auto extText = [](uint32_t declared, const QString& text, uint32_t options,
                            const std::vector<int32_t>& dx) {
        const uint32_t offDx = dx.empty() ? 0 : 76 + 2 * ((text.size() + 1) & ~1);
        Bytes b = U32s({0, 0, 0, 0, 1}).f32(1).f32(1).append(I32s({10, 20}));
        b.u32(declared).u32(76).u32(options).append(I32s({0, 0, 30, 30})).u32(offDx);
        b.utf16(text, (text.size() + 1) & ~1);
        for (int32_t d : dx) b.i32(d);
        return b;
    };
    // The text record drawn in the font, in the transparent background mode.
    const auto inFont = [](const Bytes& logFont, const Bytes& text) {
        return Emf()
            .record(EMR_SETBKMODE, U32s({1}))
            .record(82, U32s({1}).append(logFont))
            .record(EMR_SELECTOBJECT, U32s({1}))
            .record(EMR_EXTTEXTOUTW, text)
            .build();
    };
    const struct {
        const char* name;
        QByteArray file;
        std::vector<const char*> fragments;
    } rows[] = {
        {"escaped, placed, clipped",
         inFont(LogFontW(-12, 0, 700, "A&B<\"'"), extText(3, "<&>", 4, {5, 6, 7})),
         {"font-family=\"'AB', sans-serif\" font-size=\"12\" font-weight=\"bold\"",
          "<clipPath id=\"t1\"><path d=\"M0 0H30V30H0Z\"/></clipPath>",
          "<text clip-path=\"url(#t1)\" x=\"10 15 21\" y=\"30.8\" "
          "xml:space=\"preserve\">&lt;&amp;&gt;</text>"}},
        {"rotated line",
         inFont(LogFontW(-12, 900, 400, "Arial"), extText(2, "ab", 0, {5, 6})),
         {"<text transform=\"translate(10 20) rotate(-90)\" x=\"0 5\" y=\"10.8\""}},
        {"hostile font: no face, extreme height, escapement and weight",
         inFont(LogFontW(INT32_MIN, INT32_MIN, INT32_MAX, ""),
                extText(2, "ab", 0, {INT32_MAX, INT32_MAX})),
         {"font-family=\"sans-serif\"", "font-weight=\"900\"", ">ab</text>"}},
        {"turned world, compatible mode: the glyphs stay upright",
         Emf()
             .record(35, Bytes().f32(0).f32(1).f32(-1).f32(0).f32(0).f32(0))
             .record(EMR_EXTTEXTOUTW, extText(2, "ab", 0, {5, 6}))
             .build(),
         {"<text x=\"-20 -15\" y=\"21.7\""}},
        {"characters past the record, advances cut",
         Emf().record(EMR_EXTTEXTOUTW, extText(1000000, "abcd", 0, {1, 2})).build(),
         {"<g fill=\"#fff\">", "x=\"10 11\"", ">ab</text>"}},
        {"wmf text out, no face",
         Wmf()
             .record(META_CREATEFONTINDIRECT, Bytes().i16(-10).zeros(16))
             .record(META_SELECTOBJECT, Bytes().u16(0))
             .record(0x0521, Bytes().u16(3).latin1("x\xE9y", 4).i16(7).i16(5))
             .build(),
         {"font-family=\"sans-serif\" font-size=\"10\"",
          "x=\"5\" y=\"16\" xml:space=\"preserve\">x\u00E9y</text>"}},
    };
    for (const auto& row : rows) {
        const QString svg = Convert(row.file);
        EXPECT_TRUE(svg.endsWith("</svg>\n")) << row.name;
        for (const char* f : row.fragments)
            EXPECT_TRUE(svg.contains(QString::fromUtf8(f))) << row.name << "\n"
                                                            << svg.toStdString();
    }
}
