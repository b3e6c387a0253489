#include "tests/TestUtil.h"

#include <QDir>
#include <gtest/gtest.h>

#include "byteorder/BEndTools.h"
#include "svg/DibDecoder.h"
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

QString EmptyDocument(int width, int height) {
    return Header(width, height) + QStringLiteral("</svg>\n");
}

QString Body(const QString& svg) {
    const int start = svg.indexOf(QLatin1Char('\n'));
    const int end = svg.lastIndexOf(QStringLiteral("</svg>\n"));
    if (start < 0 || end < start) return QString();
    return svg.mid(start + 1, end - start - 1);
}

namespace {
QString BothOrders(const QByteArray& stored, const QByteArray& swapped, int status) {
    dib::PendingMask() = QImage();
    const Result little = Convert(stored);
    EXPECT_EQ(little.status, status);
    dib::PendingMask() = QImage();
    ForceBigEndian bigEndian;
    EXPECT_EQ(Convert(swapped).svg, little.svg);
    return Body(little.svg);
}
}  // namespace

QString BothOrders(const mfb::Emf& file) {
    return BothOrders(file.build(), file.build(true, true), 1);
}
QString BothOrders(const mfb::Wmf& file) {
    return BothOrders(file.build(), file.build(true, true), 2);
}

mfb::Emf Halved(int32_t windowX, int32_t windowY) {
    return mfb::Emf()
        .record(mfb::EMR_SETMAPMODE, mfb::U32s({8}))
        .record(mfb::EMR_SETWINDOWEXTEX, mfb::I32s({windowX, windowY}))
        .record(mfb::EMR_SETVIEWPORTEXTEX, mfb::U32s({500, 500}));
}

QString Line(int x1, int y1, int x2, int y2, const QString& style) {
    return QString::asprintf("<line x1=\"%d\" y1 = \"%d\" x2 =\"%d\" y2=\"%d\" ", x1, y1, x2, y2) +
           style + QStringLiteral("/>\n");
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

QString CorpusDir() {
    const QString dir = qEnvironmentVariable("SVGMODULE_CORPUS");
    return dir.isEmpty() ? QStringLiteral(SVGMODULE_CORPUS_DIR) : dir;
}

QStringList CorpusFiles(const QString& folder) {
    const QDir dir(CorpusDir() + QLatin1Char('/') + folder);
    QStringList out;
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name))
        if (!name.endsWith(QLatin1String(".md"))) out << dir.filePath(name);
    return out;
}

}  // namespace testutil
