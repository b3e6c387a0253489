// The faithful interpreter's text: placement, alignment, rotation, character sets and hostile
// text records.
#include <gtest/gtest.h>

#include <functional>

#include "faithful/DeviceContext.h"
#include "faithful/Faithful.h"
#include "tests/MetafileBuilder.h"

using namespace faithful;

namespace {

struct TextCapture : DrawSink {
    std::vector<TextOp> texts;
    int fills = 0;
    void Draw(const DrawOp&) override { ++fills; }
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

QString Convert(const QByteArray& file) {
    QByteArray out;
    faithful::Convert(reinterpret_cast<const unsigned char*>(file.constData()), file.size(), out);
    return QString::fromUtf8(out);
}

}  // namespace

// One record through the device context: what is drawn, where and in which font.
TEST(FaithfulText, Placement) {
    const QString hostile = QString::fromUtf16(u"a\x01<&\xFFFE\xD800");
    const struct {
        const char* name;
        LogFont font;
        uint32_t align;
        QString text;
        std::vector<PointF> advances;
        std::function<void(DeviceContext&)> setup;
        QString drawn;
        std::vector<double> xs;  // expected x (text space) of each character
        double y, angle, size;
        TextOp::Anchor anchor;
    } rows[] = {
        {"advances, baseline",
         Font(-10),
         24,
         "AB",
         {{10, 0}, {12, 0}},
         nullptr,
         "AB",
         {0, 10},
         0,
         0,
         10,
         TextOp::Anchor::Start},
        {"right aligned, top",
         Font(-10),
         2,
         "AB",
         {{10, 0}, {12, 0}},
         nullptr,
         "AB",
         {-22, -12},
         9,
         0,
         10,
         TextOp::Anchor::Start},
        {"centred flow, cell height",
         Font(112),
         6 | 8,
         "AB",
         {},
         nullptr,
         "AB",
         {},
         -2.2,
         0,
         100,
         TextOp::Anchor::Middle},
        {"escapement",
         Font(-10, "Arial", 0, 900),
         24,
         "A",
         {},
         nullptr,
         "A",
         {},
         0,
         -90,
         10,
         TextOp::Anchor::Start},
        {"y-up mapping stays upright, halved",
         Font(-20),
         24,
         "AB",
         {{10, 0}, {10, 0}},
         [](DeviceContext& dc) {
             dc.SetMapMode(gdi::MM_ANISOTROPIC);
             dc.SetWindowExt(200, -200);
             dc.SetViewportExt(100, 100);
         },
         "AB",
         {0, 5},
         0,
         0,
         10,
         TextOp::Anchor::Start},
        {"hostile characters dropped with their places",
         Font(-10),
         24,
         hostile,
         {{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}},
         nullptr,
         "a<&",
         {0, 3, 6},
         0,
         0,
         10,
         TextOp::Anchor::Start},
        {"symbol font",
         Font(-10, "Symbol", 2),
         24,
         QString::fromUtf16(u"a\xF070"),
         {},
         nullptr,
         QString::fromUtf16(u"\x03B1\x03C0"),
         {},
         0,
         0,
         10,
         TextOp::Anchor::Start},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        TextCapture sink;
        DeviceContext dc(sink);
        dc.SetBkMode(gdi::TRANSPARENT);
        if (row.setup) row.setup(dc);
        GdiObject font;
        font.kind = GdiObject::Kind::Font;
        font.font = row.font;
        dc.CreateObjectAt(1, font);
        dc.SelectObject(1);
        dc.SetTextAlign(row.align);
        DeviceContext::TextCall call;
        call.reference = {40, 60};
        call.text = row.text;
        call.advances = row.advances;
        dc.ExtTextOut(call);
        ASSERT_EQ(sink.texts.size(), 1u);
        const TextOp& op = sink.texts[0];
        EXPECT_EQ(op.text, row.drawn);
        EXPECT_NEAR(op.angle, row.angle, 1e-9);
        EXPECT_NEAR(op.size, row.size, 1e-9);
        EXPECT_EQ(op.anchor, row.anchor);
        ASSERT_EQ(op.positions.size(), row.xs.size());
        for (size_t i = 0; i < row.xs.size(); ++i) {
            EXPECT_NEAR(op.positions[i].x, row.xs[i], 1e-9);
            EXPECT_NEAR(op.positions[i].y, row.y, 1e-9);
        }
    }
}

// 8-bit text by the font's character set; the advances of a character's bytes add up.
TEST(FaithfulText, CharacterSets) {
    const struct {
        uint8_t charSet;
        QByteArray bytes;
        std::vector<double> perByte;
        QString text;
        std::vector<double> advances;
    } rows[] = {
        {0, "\x80\xE9", {1, 2}, QString::fromUtf16(u"\x20AC\xE9"), {1, 2}},
        {204, "\xC0", {1}, QString::fromUtf16(u"\x0410"), {1}},
        {238, "\x8A", {1}, QString::fromUtf16(u"\x0160"), {1}},
        {128,
         "\x82\xA0"
         "A",
         {1, 2, 4},
         QString::fromUtf16(u"\x3042"
                            u"A"),
         {3, 4}},
        {2, "\x61", {1}, QStringLiteral("a"), {1}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.charSet);
        TextCapture sink;
        DeviceContext dc(sink);
        GdiObject font;
        font.kind = GdiObject::Kind::Font;
        font.font = Font(-10, "Arial", row.charSet);
        dc.CreateObjectAt(1, font);
        dc.SelectObject(1);
        std::vector<PointF> perByte;
        for (double d : row.perByte) perByte.push_back({d, 0});
        DeviceContext::TextCall call;
        dc.DecodeAnsi(reinterpret_cast<const unsigned char*>(row.bytes.constData()),
                      row.bytes.size(), perByte.data(), call);
        EXPECT_EQ(call.text, row.text);
        ASSERT_EQ(call.advances.size(), row.advances.size());
        for (size_t i = 0; i < row.advances.size(); ++i)
            EXPECT_EQ(call.advances[i].x, row.advances[i]);
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
    const Bytes font = U32s({1}).append(LogFontW(-12, 0, 700, "A&B<\"'"));
    const struct {
        const char* name;
        QByteArray file;
        std::vector<const char*> fragments;
    } rows[] = {
        {"escaped, placed, clipped",
         Emf()
             .record(EMR_SETBKMODE, U32s({1}))
             .record(82, font)
             .record(EMR_SELECTOBJECT, U32s({1}))
             .record(EMR_EXTTEXTOUTW, extText(3, "<&>", 4, {5, 6, 7}))
             .build(),
         {"font-family=\"'AB', sans-serif\" font-size=\"12\" font-weight=\"bold\"",
          "<clipPath id=\"t1\"><path d=\"M0 0H30V30H0Z\"/></clipPath>",
          "<text clip-path=\"url(#t1)\" x=\"10 15 21\" y=\"30.8\" "
          "xml:space=\"preserve\">&lt;&amp;&gt;</text>"}},
        {"rotated line",
         Emf()
             .record(82, U32s({1}).append(LogFontW(-12, 900, 400, "Arial")))
             .record(EMR_SELECTOBJECT, U32s({1}))
             .record(EMR_EXTTEXTOUTW, extText(2, "ab", 0, {5, 6}))
             .build(),
         {"<text transform=\"translate(10 20) rotate(-90)\" x=\"0 5\" y=\"10.8\""}},
        {"hostile font: no face, extreme height, escapement and weight",
         Emf()
             .record(82, U32s({1}).append(LogFontW(INT32_MIN, INT32_MIN, INT32_MAX, "")))
             .record(EMR_SELECTOBJECT, U32s({1}))
             .record(EMR_EXTTEXTOUTW, extText(2, "ab", 0, {INT32_MAX, INT32_MAX}))
             .build(),
         {"font-family=\"sans-serif\"", "font-weight=\"900\"", ">ab</text>"}},
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
          QString::fromUtf16(u"x=\"5\" y=\"16\" xml:space=\"preserve\">x\xE9y</text>")
              .toUtf8()
              .constData()}},
    };
    for (const auto& row : rows) {
        const QString svg = Convert(row.file);
        EXPECT_TRUE(svg.endsWith("</svg>\n")) << row.name;
        for (const char* f : row.fragments)
            EXPECT_TRUE(svg.contains(QString::fromUtf8(f))) << row.name << "\n"
                                                            << svg.toStdString();
    }
}
