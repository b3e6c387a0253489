#include "tests/TestUtil.h"

#include <QDir>
#include <QSysInfo>
#include <gtest/gtest.h>

#include "byteorder/BEndTools.h"
#include "svgmodule.h"

namespace testutil {

Result Convert(const QByteArray& metafile) {
    QByteArray out;
    const int status = ConvertMetaFileToSVG(metafile, out);
    // With its length: text records may put a zero byte into a document.
    return {status, QString::fromUtf8(out.constData(), out.size())};
}

QString Header(int width, int height) {
    return QString::asprintf(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?> <svg width=\"%d\" height=\" %d\" "
        "version=\"1.1\" xmlns=\"http://www.w3.org/2000/svg\" xml:space=\"preserve\" >\n",
        width, height);
}

QString Document(int width, int height, const QString& body) {
    return Header(width, height) + body + QStringLiteral("</svg>\n");
}

QString Body(const QString& svg) {
    const int start = svg.indexOf(QLatin1Char('\n'));
    const int end = svg.lastIndexOf(QStringLiteral("</svg>\n"));
    if (start < 0 || end < start) return QString();
    return svg.mid(start + 1, end - start - 1);
}

QString BodyInBothByteOrders(const QByteArray& stored, const QByteArray& swapped, int status) {
    const Result little = Convert(stored);
    EXPECT_EQ(little.status, status);
    ForceBigEndian bigEndian;
    EXPECT_EQ(Convert(swapped).svg, little.svg);
    return Body(little.svg);
}

LogCapture::LogCapture(const std::string& level)
    : m_oldLevel(CLogSystem::theRootInstance->getLevel()) {
    CLogSystem::theRootInstance->setLevel(level);
    CLogSystem::theRootInstance->setSink(
        [this](basic_logging::Level l, const std::string& line) { m_lines.emplace_back(l, line); });
}

LogCapture::~LogCapture() {
    CLogSystem::theRootInstance->setSink(nullptr);
    CLogSystem::theRootInstance->setLevel(m_oldLevel);
}

std::vector<std::string> LogCapture::at(basic_logging::Level level) const {
    std::vector<std::string> out;
    for (const auto& l : m_lines)
        if (l.first == level) out.push_back(l.second);
    return out;
}

ForceBigEndian::ForceBigEndian() {
    SetByteOrderOverride(true, QSysInfo::ByteOrder == QSysInfo::LittleEndian);
}
ForceBigEndian::~ForceBigEndian() {
    SetByteOrderOverride(false, false);
}

QStringList CorpusFiles(const QString& folder) {
    const QDir dir(QStringLiteral(SVGMODULE_CORPUS_DIR "/") + folder);
    QStringList out;
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name))
        if (!name.endsWith(QLatin1String(".md"))) out << dir.filePath(name);
    return out;
}

}  // namespace testutil
