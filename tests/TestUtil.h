// Shared helpers for the unit tests; brings the test framework, the metafile builder, the
// writer and the standard containers the tests use.
#ifndef SVGMODULE_TESTS_TESTUTIL_H
#define SVGMODULE_TESTS_TESTUTIL_H

#include <gtest/gtest.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QSysInfo>
#include <functional>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "CLogSystem.h"
#include "byteorder/BEndTools.h"
#include "faithful/DrawOps.h"
#include "svg/SVGWriter.h"
#include "tests/MetafileBuilder.h"

// Failing comparisons show QString values as text.
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

namespace testutil {

struct Result {
    int status;
    QString svg;
};

// Converts through the exported, format-detecting entry point.
Result Convert(const QByteArray& metafile);

// The document header line for a picture of width x height, line feed included.
QString Header(int width, int height);
// What a document of that size without drawing reads.
QString EmptyDocument(int width, int height);
// The text between the header line and the closing "</svg>\n".
QString Body(const QString& svg);
// The body of a file converted as built (status 1 for EMF, 2 for WMF) and, byte-swapped, on a
// host that reads as big-endian; the two documents must agree. No bitmap mask is pending
// before either run.
QString BothOrders(const mfb::Emf& file);
QString BothOrders(const mfb::Wmf& file);

// An EMF in MM_ANISOTROPIC with a viewport extent of 500 on both axes: coordinates are divided
// by the window extent over 500, by default halved.
mfb::Emf Halved(int32_t windowX = 1000, int32_t windowY = 1000);

// The writer's style before any selection, and the pen text polylines take then.
constexpr char kDefaultStyle[] = " stroke=\"black\" stroke-width=\"1\" fill=\"none\"";
constexpr char kNoPen[] = "stroke=\"none\" stroke-width=\"1\"  fill=\"none\" ";
// A line element with `style` before its end.
QString Line(int x1, int y1, int x2, int y2, const QString& style = kDefaultStyle);

// Keeps what the faithful interpreter's device context draws.
struct Capture : faithful::DrawSink {
    std::vector<faithful::DrawOp> ops;
    std::vector<faithful::TextOp> texts;
    std::vector<faithful::ImageOp> images;
    void Draw(const faithful::DrawOp& op) override { ops.push_back(op); }
    void DrawText(const faithful::TextOp& op) override { texts.push_back(op); }
    void DrawImage(const faithful::ImageOp& op) override { images.push_back(op); }
};

// Collects the system-log lines while it lives, at the given level.
class LogCapture {
  public:
    explicit LogCapture(const std::string& level = "WARN");
    ~LogCapture();
    // Lines of one level.
    std::vector<std::string> at(basic_logging::Level level) const;

  private:
    std::string m_oldLevel;
    std::vector<std::pair<basic_logging::Level, std::string>> m_lines;
};

// While it lives, the byte-order test gives the opposite of the host's order, so that the
// converter reverses every field it reads: a metafile built with build(..., swapped = true)
// then reads as a little-endian file does on a big-endian host. On a little-endian host the
// test answers "big-endian"; on a big-endian one it answers "little-endian", since there the
// swapped file is in host order (and the real big-endian path runs on the unswapped files).
// Constructed with `on` false it changes nothing.
class ForceBigEndian {
  public:
    explicit ForceBigEndian(bool on = true) : m_on(on) {
        if (on) SetByteOrderOverride(true, QSysInfo::ByteOrder == QSysInfo::LittleEndian);
    }
    ~ForceBigEndian() {
        if (m_on) SetByteOrderOverride(false, false);
    }

  private:
    bool m_on;
};

// The corpus folder: $SVGMODULE_CORPUS, else the one the build was configured with.
QString CorpusDir();
// Files of the corpus under `folder` ("emf", "wmf", ...); empty when it is absent.
QStringList CorpusFiles(const QString& folder);

}  // namespace testutil

#endif
