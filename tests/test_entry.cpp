// Entry points: format detection, status codes, refusals and the document frame.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using testutil::Convert;
using testutil::Document;

namespace {

const QByteArray kUntouched("caller's bytes");

QByteArray Repeat(char c, int n) {
    return QByteArray(n, c);
}

}  // namespace

TEST(EntryPoints, EmptyMetafilesAreHeaderAndFooter) {
    const auto emf = Convert(mfb::Emf().build());
    EXPECT_EQ(emf.status, 1);
    EXPECT_EQ(emf.svg, Document(100, 100, QString()));

    const auto wmf = Convert(mfb::Wmf().build());
    EXPECT_EQ(wmf.status, 2);
    EXPECT_EQ(wmf.svg, Document(1024, 768, QString()));

    const auto placeable = Convert(mfb::Wmf().placeable(0, 0, 2880, 1440, 1440).build());
    EXPECT_EQ(placeable.status, 2);
    EXPECT_EQ(placeable.svg, Document(192, 96, QString()));
}

TEST(EntryPoints, RefusalsLeaveTheOutputUntouched) {
    QByteArray trailing = mfb::Emf().build();
    trailing.append('\0');
    QByteArray truncated = mfb::Emf().build();
    truncated.chop(4);
    QByteArray badWmfHeader = mfb::Wmf().build();
    badWmfHeader[2] = 8;  // mtHeaderSize
    QByteArray wmfWithParameters = mfb::Wmf().build();
    wmfWithParameters[16] = 1;  // mtNoParameters

    const struct {
        const char* what;
        QByteArray input;
        int status;
    } cases[] = {
        {"empty", QByteArray(), 0},
        {"shorter than a WMF header", Repeat('\1', 17), 0},
        {"short input is taken as WMF", Repeat('\1', 40), -3},
        {"random bytes without EMF signature", Repeat('\x5a', 300), -3},
        {"EMF with a trailing byte", trailing, -2},
        {"EMF shorter than its nBytes", truncated, -2},
        {"WMF header size not 9", badWmfHeader, -3},
        {"WMF with parameters", wmfWithParameters, -3},
    };
    for (const auto& c : cases) {
        QByteArray out = kUntouched;
        EXPECT_EQ(ConvertMetaFileToSVG(c.input, out), c.status) << c.what;
        EXPECT_EQ(out, kUntouched) << c.what;
    }
}

TEST(EntryPoints, SizeMismatchWritesTheWarning) {
    testutil::LogCapture log;
    QByteArray emf = mfb::Emf().build();
    emf.append('\0');
    QByteArray out;
    EXPECT_EQ(ConvertEMFToSVG(emf.constData(), out, (unsigned long)emf.size()), -2);
    const auto warnings = log.at(basic_logging::Level::Warn);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].substr(0, 8), "SVGTool\t");
    EXPECT_NE(warnings[0].find("\t Invalid EMF data "), std::string::npos);
}

TEST(EntryPoints, RawPointerEntriesRefuseWhatCannotBeRead) {
    const QByteArray emf = mfb::Emf().build();
    QByteArray out = kUntouched;
    EXPECT_EQ(ConvertEMFToSVG(emf.constData(), out, 87), 0);
    EXPECT_EQ(ConvertEMFToSVG(nullptr, out, 200), 0);
    EXPECT_EQ(ConvertWMFToSVG(nullptr, out), 0);
    EXPECT_EQ(out, kUntouched);

    const QByteArray wmf = mfb::Wmf().placeable(0, 0, 2880, 1440, 1440).build();
    EXPECT_EQ(ConvertWMFToSVG(wmf.constData(), out), 2);
    EXPECT_EQ(QString::fromUtf8(out), Document(192, 96, QString()));
}

TEST(EntryPoints, EmfPictureSize) {
    const struct {
        const char* what;
        mfb::Emf emf;
        int width, height;
    } cases[] = {
        {"A4 frame at 3.2 units per mm",
         mfb::Emf()
             .bounds(0, 0, 671, 949)
             .frame(0, 0, 21000, 29700)
             .device(1024, 768)
             .millimeters(320, 240),
         672, 950},
        {"halves round up", mfb::Emf().frame(0, 0, 25, 75).device(2, 2).millimeters(1, 1), 1, 2},
        {"no millimetre size: 96 dpi", mfb::Emf().frame(0, 0, 2540, 5080).millimeters(0, 0), 96,
         192},
        {"zero-size bounds", mfb::Emf().bounds(5, 5, 5, 5).frame(0, 0, 3125, 3125), 100, 100},
        {"empty frame", mfb::Emf().frame(10, 10, 10, 10), 0, 0},
        {"huge frame saturates",
         mfb::Emf().frame(0, 0, 2147483647, 100).device(2147483647, 1).millimeters(1, 1),
         2147483647, 1},
    };
    for (const auto& c : cases) {
        const auto r = Convert(c.emf.build());
        EXPECT_EQ(r.status, 1) << c.what;
        EXPECT_EQ(r.svg, Document(c.width, c.height, QString())) << c.what;
    }
}

TEST(EntryPoints, ShortWmfInputsGoTheWmfWay) {
    // An 18-byte WMF, a header without records, converts.
    QByteArray wmf = mfb::Wmf().build(false);
    ASSERT_EQ(wmf.size(), 18);
    EXPECT_EQ(Convert(wmf).status, 2);

    // A header that declares more than was supplied converts what is present.
    QByteArray longer = mfb::Wmf().build();
    longer[6] = (char)200;
    EXPECT_EQ(Convert(longer).status, 2);
}

TEST(EntryPoints, FileEntryReadsBothFormats) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString emfPath = dir.filePath(QStringLiteral("a.emf"));
    const QString wmfPath = dir.filePath(QStringLiteral("a.wmf"));
    for (const auto& f : {std::make_pair(emfPath, mfb::Emf().build()),
                          std::make_pair(wmfPath, mfb::Wmf().build())}) {
        QFile file(f.first);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(f.second);
    }
    QByteArray out;
    EXPECT_EQ(WMFToSVG(emfPath, out), 1);
    EXPECT_EQ(WMFToSVG(wmfPath, out), 2);
    out = kUntouched;
    EXPECT_EQ(WMFToSVG(dir.filePath(QStringLiteral("missing.wmf")), out), 0);
    EXPECT_EQ(out, kUntouched);
}

TEST(EntryPoints, HostFindsThePlainNamesWithDlopen) {
    void* lib = dlopen(SVGMODULE_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    auto convert = reinterpret_cast<ConvertMetaFileToSVGFn>(dlsym(lib, "ConvertMetaFileToSVG"));
    auto fromFile = reinterpret_cast<WMFToSVGFn>(dlsym(lib, "WMFToSVG"));
    ASSERT_NE(convert, nullptr);
    ASSERT_NE(fromFile, nullptr);
    EXPECT_EQ(dlsym(lib, "ConvertEMFToSVG"), nullptr);  // exported under its C++ name only

    QByteArray out;
    EXPECT_EQ(convert(mfb::Emf().build(), out), 1);
    EXPECT_EQ(QString::fromUtf8(out), Document(100, 100, QString()));
    EXPECT_EQ(fromFile(QStringLiteral("/nonexistent/file.emf"), out), 0);
    dlclose(lib);
}
