// Text: the characters as UTF-8, escaped alike from UTF-16 and Latin-1; the writer's text
// output; the EMF and WMF text records end to end.
#include <gtest/gtest.h>

#include <QString>
#include <algorithm>
#include <vector>

#include "svg/SVGWriter.h"
#include "svg/SvgBuffer.h"
#include "svg/TextRun.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using mfb::Bytes;

namespace {

// What the escaping of a QString followed by toUtf8 gives.
QByteArray ViaQString(QString s) {
    s.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;");
    return s.toUtf8();
}

}  // namespace

// Every unit as QString::toUtf8 converts it, lone surrogates included; blank means what
// QString::trimmed leaves empty.
TEST(TextRun, EncodesAsQStringDoes) {
    const std::vector<std::vector<char16_t>> cases = {
        {},
        {'a', '<', 'b', '&', 'c', '>', '"', '\''},
        {0xE9, 0x20AC, 0xD83D, 0xDE00},            // two- to four-byte forms
        {0xD800, 'a', 0xDC00, 0xDC00, 0xD800},     // lone and reversed surrogates
        {'x', 0xD800, 0xD800, 0xDC00, 0xDBFF},     // a pair after a lone high one; high at the end
        {0, 1, 0x1F, 0x7F, 0x85, 0xFFFE, 0xFFFF},  // control characters and non-characters stay
        {' ', '\t', 0xA0, 0x3000, 0x2028},         // blank
        {' ', 0x200B, ' '},                        // a zero-width space is not white space
    };
    for (const auto& units : cases) {
        const QString s = QString::fromUtf16(units.data(), (int)units.size());
        SvgBuffer out;
        out.Write("prefix");
        const TextRun run{reinterpret_cast<const unsigned char*>(units.data()), units.size(), true};
        AppendXmlText(out, run);
        EXPECT_EQ(out.Text(), "prefix" + ViaQString(s)) << s.toStdString();
        EXPECT_EQ(IsBlankText(run), s.trimmed().isEmpty()) << s.toStdString();
    }
    QByteArray latin1;
    for (int c = 1; c < 256; ++c) latin1 += (char)c;
    SvgBuffer out;
    AppendXmlText(out, {reinterpret_cast<const unsigned char*>(latin1.constData()),
                        (size_t)latin1.size(), false});
    EXPECT_EQ(out.Text(), ViaQString(QString::fromLatin1(latin1)));
}

namespace {

const QString kBox = QStringLiteral("fill=\"none\" stroke=\"none\" fill-opacity=\"0\" />\n");
const QString kFill = QStringLiteral(" fill=\"black\"");

QString Text(int x, int y, const QString& text, const QString& style = kFill,
             const char* size = " font-size=\"14\"  >") {
    return QString::asprintf("<text x=\"%d\" y=\"%d\"", x, y) + style + size + text + "</text>\n";
}
QString SmallText(int x, int y, const QString& text) {
    return Text(x, y, text, kFill, " font-size=\"14\" >");
}
QString Box(int x, int y, int w, int h, const QString& style = kBox) {
    return QString::asprintf(
               "<rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" rx=\"0\" ry=\"0\" ", x, y, w,
               h) +
           style;
}

Bytes U32s(std::initializer_list<uint32_t> values) {
    Bytes b;
    for (uint32_t v : values) b.u32(v);
    return b;
}

// EMR_EXTTEXTOUTW with bounds (0, 0, 40, 16) at (100, 50); `chars` units declared, the text
// at `offset` (76: right after the fixed fields).
Bytes ExtText(const QString& text, int x = 100, int y = 50, uint32_t chars = ~0u,
              uint32_t offset = 76, uint32_t options = 0) {
    return U32s({0, 0, 40, 16, 1, 0, 0})
        .i32(x)
        .i32(y)
        .u32(chars == ~0u ? (uint32_t)text.size() : chars)
        .u32(offset)
        .u32(options)
        .append(U32s({0, 0, 0, 0, 0}))
        .utf16(text, text.size());
}
// EMR_SMALLTEXTOUT at (100, 50) with `options`; 8-bit characters with ETO_SMALL_CHARS.
Bytes SmallText(const QString& text, uint32_t options, uint32_t chars = ~0u) {
    Bytes b = U32s({100, 50, chars == ~0u ? (uint32_t)text.size() : chars, options, 1, 0, 0});
    if (!(options & 0x100)) b.append(U32s({1, 2, 3, 4}));
    return options & 0x200 ? b.latin1(text.toLatin1(), text.size()) : b.utf16(text, text.size());
}

}  // namespace

// Alignment moves the point by the text rectangle and the descent (3), turned with the font;
// unknown alignments leave it.
TEST(TextOutput, ReferencePointFollowsAlignmentAndRotation) {
    const struct {
        int align, escapement;  // escapement in degrees
        int x, y;
    } cases[] = {
        {0, 0, 100, 63},  {256, 0, 100, 63}, {24, 0, 100, 50}, {6, 0, 80, 63},    {2, 0, 59, 63},
        {258, 0, 59, 63}, {8, 0, 100, 47},   {10, 0, 59, 47},  {14, 0, 80, 47},   {26, 0, 59, 50},
        {30, 0, 80, 50},  {262, 0, 100, 50}, {1, 0, 100, 50},  {0, 90, 62, 50},   {0, -90, 138, 50},
        {2, 90, 62, 34},  {0, 180, 100, 37}, {8, 45, 102, 48}, {6, 270, 138, 58}, {0, 450, 62, 50},
    };
    for (const auto& c : cases) {
        CMySVGWriter w;
        tagLOGFONTW font{};
        font.lfEscapement = -10 * c.escapement;
        w.CreateFont(1, font);
        w.SetTextAlign(c.align);
        tagPOINT p{100, 50};
        w.GetPointOfReference(p, tagRECT{0, 0, 41, 16});
        EXPECT_EQ(p.x, c.x) << c.align << " " << c.escapement;
        EXPECT_EQ(p.y, c.y) << c.align << " " << c.escapement;
    }
}

// The three text operations: the opaque background box (only for EMF text), the font size
// (not for WMF text, whose font carries its own), escaping, the rotation group.
TEST(TextOutput, WriterTextElements) {
    const QByteArray chars("a<b\0cd", 6);
    const TextRun run{reinterpret_cast<const unsigned char*>(chars.constData()), 6, false};
    CMySVGWriter w;
    w.TextOut(run.UpToZero(), {10, 20}, {5, 6, 15, 26}, {});
    w.SetBkMode(1);
    w.TextOut(run.UpToZero(), {10, 20}, {5, 6, 15, 26}, " fill=\"red\"");
    w.MetaTextOut(run, {1, 2}, nullptr, {});
    w.SmallTextOut(run, {3, 4});
    tagLOGFONTW font{};
    font.lfEscapement = -450;
    w.CreateFont(1, font);
    w.MetaTextOut(TextRun{}, {1, 2}, nullptr, {});
    w.DrawLine(0, 0, 1, 1, {});
    EXPECT_EQ(w.GetSVGOutput(),
              Box(5, 6, 10, 20) + Text(10, 20, "a&lt;b") + Text(10, 20, "a&lt;b", " fill=\"red\"") +
                  Text(1, 2, QString::fromUtf8("a&lt;b\0cd", 9), kFill, " >") +
                  SmallText(3, 4, "a&lt;b") + "<g transform=\"rotate(45 1 2)\">" +
                  Text(1, 2, "", kFill, " >") +
                  "</g><line x1=\"0\" y1 = \"0\" x2 =\"1\" y2=\"1\"  stroke=\"black\" "
                  "stroke-width=\"1\" fill=\"none\"/>\n");
}

// EMF text records end to end in both byte orders: where the point lands, what is drawn from
// the characters the record holds, and the state the text takes from earlier records.
TEST(EmfText, RecordsDrawTheirCharacters) {
    using mfb::Emf;
    const struct {
        const char* what;
        std::vector<std::pair<uint32_t, Bytes>> records;
        QString expected;
    } cases[] = {
        {"viewport origin added after scaling; baseline alignment keeps the point",
         {{mfb::EMR_SETTEXTALIGN, U32s({24})},
          {mfb::EMR_SETWINDOWORGEX, U32s({100, 100})},
          {mfb::EMR_SETVIEWPORTORGEX, U32s({10, 20})},
          {mfb::EMR_EXTTEXTOUTW, ExtText("Hi", 150, 150)},
          {mfb::EMR_SMALLTEXTOUT, SmallText("Hi", 0x300)}},
         Box(-100, -100, 40, 16) + Text(160, 170, "Hi") + SmallText(110, 70, "Hi")},
        {"without a viewport origin the window origin is subtracted",
         {{mfb::EMR_SETTEXTALIGN, U32s({24})},
          {mfb::EMR_SETWINDOWORGEX, U32s({100, 100})},
          {mfb::EMR_EXTTEXTOUTW, ExtText("Hi", 150, 150)}},
         Box(-100, -100, 40, 16) + Text(50, 50, "Hi")},
        {"top alignment; blank text is not drawn, spaces around other text are kept",
         {{mfb::EMR_EXTTEXTOUTW, ExtText(" \t ")},
          {mfb::EMR_EXTTEXTOUTW, ExtText(" a&b ")},
          {mfb::EMR_SMALLTEXTOUT, SmallText(" ", 0x100)}},
         Box(0, 0, 40, 16) + Text(100, 63, " a&amp;b ") + SmallText(100, 50, " ")},
        {"small text after its clipping rectangle; 8-bit text ends at a zero byte",
         {{mfb::EMR_SMALLTEXTOUT, SmallText("xy", 0)},
          {mfb::EMR_SMALLTEXTOUT, SmallText(QString::fromLatin1("\xe9\0z", 3), 0x200)}},
         SmallText(100, 50, "xy") + SmallText(100, 50, QString::fromUtf8("\xc3\xa9"))},
        {"characters beyond the record are not read; glyph indices stay UTF-16; zero units stay",
         {{mfb::EMR_EXTTEXTOUTW, ExtText("ab", 100, 50, 1000)},
          {mfb::EMR_EXTTEXTOUTW, ExtText("ab", 100, 50, 2, 1000)},
          {mfb::EMR_EXTTEXTOUTW, ExtText("", 100, 50, 0)},
          {mfb::EMR_EXTTEXTOUTW,
           ExtText(QString::fromUtf16(u"c\0\xd800", 3), 100, 50, 3, 76, 0x10)},
          {mfb::EMR_SMALLTEXTOUT, SmallText("ab", 0x100, 1000)},
          {mfb::EMR_SMALLTEXTOUT, SmallText("", 0x300, 5)}},
         Box(0, 0, 40, 16) + Text(100, 63, "ab") + Box(0, 0, 40, 16) +
             Text(100, 63, QString::fromUtf8("c\0?", 3)) + SmallText(100, 50, "ab") +
             SmallText(100, 50, "")},
        {"colours, background mode, a rotated font: the point turns with it",
         {{mfb::EMR_EXTCREATEFONTINDIRECTW,
           Bytes().u32(1).append(mfb::LogFontW(-20, 900, 400, "Courier"))},
          {mfb::EMR_SELECTOBJECT, U32s({1})},
          {mfb::EMR_SETTEXTCOLOR, U32s({0x0000FF00})},
          {mfb::EMR_SETBKCOLOR, U32s({0x000000FF})},
          {mfb::EMR_EXTTEXTOUTW, ExtText("Hi")},
          {mfb::EMR_SETBKMODE, U32s({1})},
          {mfb::EMR_EXTTEXTOUTW, ExtText("Hi")}},
         Box(0, 0, 40, 16, "fill=\"#ff0000\" stroke=\"none\" fill-opacity=\"0\" />\n") +
             "<g transform=\"rotate(-90 137 50)\">" +
             Text(137, 50, "Hi",
                  " font-family=\"Courier\"  font-weight=\"400\" \n fill=\"#00ff00\" ",
                  " font-size=\"20\"  >") +
             "</g><g transform=\"rotate(-90 137 50)\">" +
             Text(137, 50, "Hi",
                  " font-family=\"Courier\"  font-weight=\"400\" \n fill=\"#00ff00\" ",
                  " font-size=\"20\"  >") +
             "</g>"},
    };
    for (const auto& c : cases) {
        Emf e;
        for (const auto& [type, payload] : c.records) e.record(type, payload);
        // The viewport origin is read in file order, unswapped, so only the stored order holds.
        const bool viewport = std::any_of(c.records.begin(), c.records.end(),
                                          [](const auto& r) { return r.first == 12; });
        EXPECT_EQ(viewport ? testutil::Body(testutil::Convert(e.build()).svg)
                           : testutil::BodyInBothByteOrders(e.build(), e.build(true, true), 1),
                  c.expected)
            << c.what;
    }
}

// META_EXTTEXTOUT: Latin-1 characters from their fixed place, up to a zero byte, the string
// length or the record's end; a clipping rectangle announced by the options is read as text.
TEST(WmfText, ExtTextOutDrawsLatin1Characters) {
    const auto text = [](uint16_t length, uint16_t options, const QByteArray& chars) {
        return Bytes().i16(151).i16(150).u16(length).u16(options).latin1(chars, chars.size());
    };
    mfb::Wmf wmf;
    wmf.record(mfb::META_EXTTEXTOUT, text(5, 0, "Hello"))
        .record(mfb::META_EXTTEXTOUT, text(5, 0, QByteArray("He\0lo", 5)))
        .record(mfb::META_EXTTEXTOUT, text(2, 4, "ABCDEFGHxy"))
        .record(mfb::META_EXTTEXTOUT, text(200, 0, "\xe9<"))
        .record(mfb::META_CREATEFONTINDIRECT,
                Bytes().i16(210).zeros(8).zeros(8).latin1("Arial", 32))
        .record(mfb::META_SELECTOBJECT, Bytes().u16(0))
        .record(mfb::META_EXTTEXTOUT, text(0, 0, ""));
    EXPECT_EQ(
        testutil::BodyInBothByteOrders(wmf.build(), wmf.build(true, true), 2),
        Text(10, 10, "Hello", kFill, " >") + Text(10, 10, "He", kFill, " >") +
            Text(10, 10, "AB", kFill, " >") +
            Text(10, 10, QString::fromUtf8("\xc3\xa9&lt;"), kFill, " >") +
            Text(10, 10, "", " font-family=\"Arial\" font-size=\"0\"  fill=\"black\" ", " >"));
}
