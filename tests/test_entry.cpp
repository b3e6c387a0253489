// Entry points: format detection, status codes, refusals and the document frame; the bundled
// examples.
#include <dlfcn.h>

#include <QFile>

#include "svgmodule.h"
#include "tests/TestUtil.h"
#include "tools/ExampleMetafiles.h"

using namespace mfb;
using namespace testutil;

// Each entry's status, what it leaves in the caller's array and whether it warns. Metafiles
// without drawing records convert to the header and footer at the picture size of their
// headers; a refusal leaves the caller's bytes as they were, and only a size mismatch warns.
TEST(EntryPoints, StatusOutputAndWarnings) {
    using Entry = std::function<int(QByteArray&)>;
    const auto detect = [](const QByteArray& in) {
        return Entry([in](QByteArray& out) { return ConvertMetaFileToSVG(in, out); });
    };
    const auto patched = [](QByteArray b, int at, char v) { return b.replace(at, 1, &v, 1); };
    const auto empty = EmptyDocument;
    const QString kept = QStringLiteral("caller's bytes");
    const QByteArray emf = Emf().build(), wmf = Wmf().build();
    const QByteArray placeable = Wmf().placeable(0, 0, 2880, 1440, 1440).build();
    const std::tuple<const char*, Entry, int, QString> cases[] = {
        {"A4 frame at the default 3.2 units per mm",
         detect(Emf().bounds(0, 0, 671, 949).frame(0, 0, 21000, 29700).build()), 1,
         empty(672, 950)},
        {"halves round up",
         detect(Emf().frame(0, 0, 25, 75).device(2, 2).millimeters(1, 1).build()), 1, empty(1, 2)},
        {"no millimetre size: 96 dpi",
         detect(Emf().frame(0, 0, 2540, 5080).millimeters(0, 0).build()), 1, empty(96, 192)},
        {"zero-size bounds", detect(Emf().bounds(5, 5, 5, 5).frame(0, 0, 3125, 3125).build()), 1,
         empty(100, 100)},
        {"empty frame", detect(Emf().frame(10, 10, 10, 10).build()), 1, empty(0, 0)},
        {"huge frame saturates",
         detect(Emf().frame(0, 0, 2147483647, 100).device(2147483647, 1).millimeters(1, 1).build()),
         1, empty(2147483647, 1)},
        {"WMF of 18 bytes, without records", detect(Wmf().build(false)), 2, empty(1024, 768)},
        {"WMF declaring more than supplied", detect(patched(wmf, 6, (char)200)), 2,
         empty(1024, 768)},
        {"placeable WMF", detect(placeable), 2, empty(192, 96)},
        {"placeable WMF by pointer",
         [&](QByteArray& out) { return ConvertWMFToSVG(placeable.constData(), out); }, 2,
         empty(192, 96)},
        {"empty", detect(QByteArray()), 0, kept},
        {"shorter than a WMF header", detect(QByteArray(17, '\1')), 0, kept},
        {"short input is taken as WMF", detect(QByteArray(40, '\1')), -3, kept},
        {"random bytes without EMF signature", detect(QByteArray(300, '\x5a')), -3, kept},
        {"EMF with a trailing byte", detect(emf + '\0'), -2, kept},
        {"EMF shorter than its nBytes", detect(emf.left(emf.size() - 4)), -2, kept},
        {"WMF header size not 9", detect(patched(wmf, 2, 8)), -3, kept},
        {"WMF with parameters", detect(patched(wmf, 16, 1)), -3, kept},
        {"EMF pointer shorter than a header",
         [&](QByteArray& out) { return ConvertEMFToSVG(emf.constData(), out, 87); }, 0, kept},
        {"EMF null pointer", [](QByteArray& out) { return ConvertEMFToSVG(nullptr, out, 200); }, 0,
         kept},
        {"WMF null pointer", [](QByteArray& out) { return ConvertWMFToSVG(nullptr, out); }, 0,
         kept},
        {"missing file",
         [](QByteArray& out) { return WMFToSVG(QStringLiteral("/nonexistent/a.wmf"), out); }, 0,
         kept},
    };
    for (const auto& [what, entry, status, output] : cases) {
        LogCapture log;
        QByteArray out = kept.toUtf8();
        EXPECT_EQ(entry(out), status) << what;
        EXPECT_EQ(QString::fromUtf8(out), output) << what;
        const auto warnings = log.at(basic_logging::Level::Warn);
        ASSERT_EQ(warnings.size(), status == -2 ? 1u : 0u) << what;
        if (status != -2) continue;
        EXPECT_EQ(warnings[0].substr(0, 8), "SVGTool\t");
        EXPECT_NE(warnings[0].find("\t Invalid EMF data "), std::string::npos);
    }
}

// A host resolves the plain names with dlopen and converts bytes and files.
TEST(EntryPoints, HostCallsThePlainNamesThroughDlopen) {
    void* lib = dlopen(SVGMODULE_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    auto convert = reinterpret_cast<ConvertMetaFileToSVGFn>(dlsym(lib, "ConvertMetaFileToSVG"));
    auto fromFile = reinterpret_cast<WMFToSVGFn>(dlsym(lib, "WMFToSVG"));
    ASSERT_TRUE(convert && fromFile);
    QByteArray out;
    EXPECT_EQ(convert(Emf().build(), out), 1);
    EXPECT_EQ(QString::fromUtf8(out), EmptyDocument(100, 100));
    // The whole file, as the library converts its bytes.
    EXPECT_EQ(fromFile(QStringLiteral(SVGMODULE_SOURCE_DIR "/examples/example.wmf"), out), 2);
    EXPECT_EQ(out, Convert(examples::ExampleWmf()).svg.toUtf8());
    dlclose(lib);
}

// The bundled examples are the generator's output and convert.
TEST(Examples, BundledFilesMatchTheGeneratorAndConvert) {
    const std::tuple<const char*, QByteArray, int> cases[] = {
        {"example.emf", examples::ExampleEmf(), 1}, {"example.wmf", examples::ExampleWmf(), 2}};
    for (const auto& [name, bytes, status] : cases) {
        QFile file(QStringLiteral(SVGMODULE_SOURCE_DIR "/examples/") + QLatin1String(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        EXPECT_EQ(file.readAll(), bytes) << name << ": regenerate with make_examples examples";
        const auto r = Convert(bytes);
        EXPECT_EQ(r.status, status) << name;
        EXPECT_TRUE(r.svg.startsWith(Header(400, 450)) && r.svg.endsWith("</svg>\n")) << name;
    }
}
