// Text records: the characters as UTF-8, escaped alike from UTF-16 and Latin-1.
#include <gtest/gtest.h>

#include <QString>
#include <vector>

#include "svg/SvgBuffer.h"
#include "svg/TextRun.h"

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
