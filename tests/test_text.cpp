// Text: characters as UTF-8, escaped as QString would be; the reference point; the EMF and
// WMF text records end to end in both byte orders.

#include <QPoint>

#include "tests/TestUtil.h"

using namespace mfb;

namespace {

// A text element: EMF text (its font size, then "  >"), small text (" >") or WMF text (no size).
enum Form { kEmf, kSmall, kWmf };
QString T(int x, int y, const QString& text, Form form = kEmf,
          const QString& style = " fill=\"black\"", int size = 14) {
    QString s = QString::asprintf("<text x=\"%d\" y=\"%d\"", x, y) + style;
    if (form != kWmf) s += QString::asprintf(" font-size=\"%d\" ", size);
    return s + (form == kSmall ? ">" : " >") + text + "</text>\n";
}
// The background box of EMF text in the default colours, or with another fill.
QString Box(int x, int y, const char* fill = "none") {
    return QString::asprintf(
        "<rect x=\"%d\" y=\"%d\" width=\"40\" height=\"16\" rx=\"0\" ry=\"0\" "
        "fill=\"%s\" stroke=\"none\" fill-opacity=\"0\" />\n",
        x, y, fill);
}

// EMR_EXTTEXTOUTW with bounds (0, 0, 40, 16); `chars` units declared, the text at `offset`.
Bytes ExtText(const QString& text, int x = 100, int y = 50, uint32_t chars = ~0u,
              uint32_t offset = 76, uint32_t options = 0) {
    const uint32_t n = chars == ~0u ? (uint32_t)text.size() : chars;
    return U32s({0, 0, 40, 16, 1, 0, 0, (uint32_t)x, (uint32_t)y, n, offset, options})
        .append(U32s({0, 0, 0, 0, 0}))
        .utf16(text, text.size());
}
// EMR_SMALLTEXTOUT at (100, 50); 8-bit characters with ETO_SMALL_CHARS (0x200), no clipping
// rectangle with ETO_NO_RECT (0x100).
Bytes SmallText(const QString& text, uint32_t options, uint32_t chars = ~0u) {
    Bytes b = U32s({100, 50, chars == ~0u ? (uint32_t)text.size() : chars, options, 1, 0, 0});
    if (!(options & 0x100)) b.append(U32s({1, 2, 3, 4}));
    return options & 0x200 ? b.latin1(text.toLatin1(), text.size()) : b.utf16(text, text.size());
}

}  // namespace

// Every unit as ConvertToValidXML and QString::toUtf8 give it, lone surrogates included;
// blank is what QString::trimmed leaves empty.
TEST(TextRun, EncodesAsQStringDoes) {
    const std::vector<std::vector<char16_t>> cases = {
        {},
        {'a', '<', 'b', '&', 'c', '>', '"', '\''},
        {0xE9, 0x7FF, 0x800, 0x20AC, 0xD83D, 0xDE00},  // two- to four-byte forms
        {0xD800, 'a', 0xDC00, 0xDC00, 0xD800},         // lone and reversed surrogates
        {'x', 0xD800, 0xD800, 0xDC00, 0xDBFF},     // a pair after a lone high one; high at the end
        {0, 1, 0x1F, 0x7F, 0x85, 0xFFFE, 0xFFFF},  // control characters and non-characters stay
        {' ', '\t', 0xA0, 0x3000, 0x2028},         // blank
        {' ', 0x200B, ' '},                        // a zero-width space is not white space
    };
    QByteArray latin1;
    for (int c = 1; c < 256; ++c) latin1 += (char)c;
    for (int i = 0; i <= (int)std::size(cases); ++i) {
        const bool wide = i < (int)std::size(cases);
        QString s = wide ? QString::fromUtf16(cases[i].data(), (int)cases[i].size())
                         : QString::fromLatin1(latin1);
        const TextRun run{wide ? reinterpret_cast<const unsigned char*>(cases[i].data())
                               : reinterpret_cast<const unsigned char*>(latin1.constData()),
                          wide ? cases[i].size() : (size_t)latin1.size(), wide};
        SvgBuffer out;
        AppendXmlText(out, run);
        EXPECT_EQ(IsBlankText(run), s.trimmed().isEmpty()) << i;
        CMySVGWriter().ConvertToValidXML(s);
        EXPECT_EQ(out.Text(), s.toUtf8()) << i;
    }
}

// The alignment moves the point by the text rectangle (41 x 16) and the descent (3), turned
// with the font, exactly at right angles; a font turned by an odd number of right angles swaps
// the rectangle's width and height. Unknown alignments leave the point.
TEST(TextOutput, ReferencePointFollowsAlignmentAndRotation) {
    const int cases[][4] = {
        // Alignment, escapement in degrees, the point.
        {0, 0, 100, 63},  {256, 0, 100, 63}, {24, 0, 100, 50}, {6, 0, 80, 63},    {2, 0, 59, 63},
        {258, 0, 59, 63}, {8, 0, 100, 47},   {10, 0, 59, 47},  {14, 0, 80, 47},   {26, 0, 59, 50},
        {30, 0, 80, 50},  {262, 0, 100, 50}, {1, 0, 100, 50},  {0, 90, 62, 50},   {0, -90, 138, 50},
        {2, 90, 62, 34},  {0, 180, 100, 37}, {8, 45, 102, 48}, {6, 270, 138, 58}, {0, 450, 62, 50},
    };
    for (const auto& c : cases) {
        CMySVGWriter w;
        tagLOGFONTW font{};
        font.lfEscapement = -10 * c[1];
        w.CreateFont(1, font);
        w.SetTextAlign(c[0]);
        tagPOINT p{100, 50};
        w.GetPointOfReference(p, tagRECT{0, 0, 41, 16});
        EXPECT_EQ(QPoint(p.x, p.y), QPoint(c[2], c[3])) << c[0] << " " << c[1];
    }
}

// Where the point lands, what is drawn of the characters the record holds, and the state the
// text takes from earlier records.
TEST(EmfText, RecordsDrawTheirCharacters) {
    const QString courier = " font-family=\"Courier\"  font-weight=\"400\" \n fill=\"#00ff00\" ";
    const QString turned = "<g transform=\"rotate(-90 137 50)\">";
    const std::pair<std::vector<std::pair<uint32_t, Bytes>>, QString> cases[] = {
        // Bottom alignment lifts the point by the descent. The window origin is subtracted;
        // once a viewport origin is set, it is added after scaling instead.
        {{{EMR_SETTEXTALIGN, U32s({8})},
          {EMR_SETWINDOWORGEX, U32s({100, 100})},
          {EMR_EXTTEXTOUTW, ExtText("Hi", 150, 150)},
          {EMR_SETVIEWPORTORGEX, U32s({10, 20})},
          {EMR_EXTTEXTOUTW, ExtText("Hi", 150, 150)},
          {EMR_SMALLTEXTOUT, SmallText("Hi", 0x300)}},
         Box(-100, -100) + T(50, 47, "Hi") + Box(-100, -100) + T(160, 167, "Hi") +
             T(110, 70, "Hi", kSmall)},
        // Top alignment; blank text is not drawn, small text is; spaces around text stay.
        {{{EMR_EXTTEXTOUTW, ExtText(" \t ")},
          {EMR_EXTTEXTOUTW, ExtText(" a&b ")},
          {EMR_SMALLTEXTOUT, SmallText(" ", 0x100)}},
         Box(0, 0) + T(100, 63, " a&amp;b ") + T(100, 50, " ", kSmall)},
        // Small text after its clipping rectangle; 8-bit text ends at a zero byte. Characters
        // past the record's end are not read; an offset past it leaves none. Glyph indices and
        // zero units are kept; a lone surrogate is written as "?".
        {{{EMR_SMALLTEXTOUT, SmallText("xy", 0)},
          {EMR_SMALLTEXTOUT, SmallText(QString::fromLatin1("\xe9\0z", 3), 0x200)},
          {EMR_SMALLTEXTOUT, SmallText("ab", 0x300, 1000)},
          {EMR_EXTTEXTOUTW, ExtText("cd", 100, 50, 1000)},
          {EMR_EXTTEXTOUTW, ExtText("ef", 100, 50, 2, 1000)},
          {EMR_EXTTEXTOUTW, ExtText(QString::fromUtf16(u"g\0\xd800", 3), 100, 50, 3, 76, 0x10)}},
         T(100, 50, "xy", kSmall) + T(100, 50, QString::fromUtf8("\xc3\xa9"), kSmall) +
             T(100, 50, "ab", kSmall) + Box(0, 0) + T(100, 63, "cd") + Box(0, 0) +
             T(100, 63, QString::fromUtf8("g\0?", 3))},
        // Font, colours and background mode; the font turned by -90 degrees turns the point.
        {{{EMR_EXTCREATEFONTINDIRECTW, Bytes().u32(1).append(LogFontW(-20, 900, 400, "Courier"))},
          {EMR_SELECTOBJECT, U32s({1})},
          {EMR_SETTEXTCOLOR, U32s({0x0000FF00})},
          {EMR_SETBKCOLOR, U32s({0x000000FF})},
          {EMR_EXTTEXTOUTW, ExtText("Hi")},
          {EMR_SETBKMODE, U32s({1})},
          {EMR_EXTTEXTOUTW, ExtText("Hi")}},
         Box(0, 0, "#ff0000") + turned + T(137, 50, "Hi", kEmf, courier, 20) + "</g>" + turned +
             T(137, 50, "Hi", kEmf, courier, 20) + "</g>"},
    };
    for (const auto& [records, expected] : cases) {
        Emf e;
        for (const auto& [type, payload] : records) e.record(type, payload);
        EXPECT_EQ(testutil::BothOrders(e), expected);
    }
}

// META_EXTTEXTOUT: Latin-1 characters from their fixed place, up to a zero byte, the string
// length or the record's end; a clipping rectangle announced by the options is read as text.
// META_ARC draws nothing.
TEST(WmfText, ExtTextOutDrawsLatin1Characters) {
    const auto text = [](uint16_t length, uint16_t options, const QByteArray& chars) {
        return Bytes().i16(151).i16(150).u16(length).u16(options).latin1(chars, chars.size());
    };
    Wmf wmf;
    wmf.record(META_EXTTEXTOUT, text(5, 0, "Hello"))
        .record(META_EXTTEXTOUT, text(5, 0, QByteArray("He\0lo", 5)))
        .record(META_EXTTEXTOUT, text(2, 4, "ABCDEFGHxy"))
        .record(META_EXTTEXTOUT, text(200, 0, "\xe9<"))
        .record(META_ARC, Bytes().zeros(16))
        .record(META_CREATEFONTINDIRECT, Bytes().i16(210).zeros(16).latin1("Arial", 32))
        .record(META_SELECTOBJECT, Bytes().u16(0))
        .record(META_EXTTEXTOUT, text(0, 0, ""));
    EXPECT_EQ(testutil::BothOrders(wmf),
              T(10, 10, "Hello", kWmf) + T(10, 10, "He", kWmf) + T(10, 10, "AB", kWmf) +
                  T(10, 10, QString::fromUtf8("\xc3\xa9&lt;"), kWmf) +
                  T(10, 10, "", kWmf, " font-family=\"Arial\" font-size=\"0\"  fill=\"black\" "));
}
