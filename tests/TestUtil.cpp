#include "tests/TestUtil.h"

#include <QDir>
#include <QSysInfo>
#include <gtest/gtest.h>
#include <mutex>

#include "byteorder/BEndTools.h"
#include "svgmodule.h"

namespace testutil {

namespace {
std::mutex g_linesMutex;
std::vector<std::pair<basic_logging::Level, std::string>> g_lines;
}  // namespace

Result Convert(const QByteArray& metafile) {
    Result r;
    QByteArray out;
    r.status = ConvertMetaFileToSVG(metafile, out);
    r.svg = QString::fromUtf8(out.constData(), out.size());
    return r;
}

QString Header(int width, int height) {
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?> <svg width=\"%1\" height=\" %2\" "
               "version=\"1.1\" xmlns=\"http://www.w3.org/2000/svg\" xml:space=\"preserve\" >\n")
        .arg(width)
        .arg(height);
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

LogCapture::LogCapture(const std::string& level) {
    m_oldLevel = CLogSystem::theRootInstance->getLevel();
    {
        std::lock_guard<std::mutex> lock(g_linesMutex);
        g_lines.clear();
    }
    CLogSystem::theRootInstance->setLevel(level);
    CLogSystem::theRootInstance->setSink([](basic_logging::Level l, const std::string& line) {
        std::lock_guard<std::mutex> lock(g_linesMutex);
        g_lines.emplace_back(l, line);
    });
}

LogCapture::~LogCapture() {
    CLogSystem::theRootInstance->setSink(nullptr);
    CLogSystem::theRootInstance->setLevel(m_oldLevel);
}

const std::vector<std::pair<basic_logging::Level, std::string>>& LogCapture::lines() const {
    return g_lines;
}

std::vector<std::string> LogCapture::at(basic_logging::Level level) const {
    std::vector<std::string> out;
    for (const auto& l : g_lines)
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
    QDir dir(QStringLiteral(SVGMODULE_CORPUS_DIR) + QLatin1Char('/') + folder);
    QStringList out;
    if (!dir.exists()) return out;
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) {
        if (name.endsWith(QLatin1String(".md"))) continue;
        out << dir.filePath(name);
    }
    return out;
}

}  // namespace testutil
