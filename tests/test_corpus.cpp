// Every real-world file of the corpus ends in a defined result (skipped without it), and so
// does every input that once made the converter misbehave, kept in tests/regress/ (mostly
// fuzzer findings, minimised); in the sanitizer build those also show that the fault stays
// fixed.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include "svgmodule.h"
#include "tests/TestUtil.h"
#include "svg/SvgRepair.h"

// Intact files convert, or are refused for a size field that disagrees with the file; damaged
// ones end in one of the status codes. A converted document is complete, and the command
// line's repaired form of it parses with namespaces.
TEST(Corpus, EveryFileEndsInADefinedResult) {
    int files = 0;
    for (const char* folder : {"emf", "emf-extra", "emf-corrupted", "mixed", "wmf"}) {
        const bool damaged = QLatin1String(folder) == QLatin1String("emf-corrupted");
        for (const QString& path : testutil::CorpusFiles(QLatin1String(folder))) {
            ++files;
            QByteArray out;
            const int status = WMFToSVG(path, out);
            const std::string name = QFileInfo(path).fileName().toStdString();
            const bool converted = status == 1 || status == 2;
            EXPECT_TRUE(damaged ? status >= -3 && status <= 2 : converted || status == -2)
                << name << " " << status;
            if (!converted) continue;
            EXPECT_TRUE(out.startsWith("<?xml") && out.endsWith("</svg>\n")) << name;
            QXmlStreamReader xml(RepairSvg(out));
            while (!xml.atEnd()) xml.readNext();
            EXPECT_FALSE(xml.hasError()) << name << ": " << xml.errorString().toStdString();
        }
    }
    if (files == 0)
        GTEST_SKIP() << "corpus absent: no metafiles at " << testutil::CorpusDir().toStdString();
}

// Each regress file converts to its status in each mode with a complete document.
TEST(Regress, HostileFilesConvertToTheirStatus) {
    const struct {
        const char* file;
        int contract, faithful;
    } cases[] = {
        {"chord-point-at-int-min.emf", 1, 1},  // the arc's end point lands on the int32 minimum
        // Fuzzer findings whose header's byte count is not the file's: the faithful mode draws
        // them. A region rectangle wider than an int; a clip polygon too tall for Qt's scan
        // converter (it leaked).
        {"region-wider-than-int.emf", -2, 1},
        {"clip-taller-than-scan-converter.emf", -2, 1},
        // A rotated clip path 21,525 pixels tall: Qt's scan conversion took seconds.
        {"clip-path-slow-to-scan.emf", -2, 1},
    };
    const QDir dir(QStringLiteral(SVGMODULE_SOURCE_DIR "/tests/regress"));
    QStringList listed;
    for (const auto& c : cases) {
        QFile file(dir.filePath(QLatin1String(c.file)));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << c.file;
        const QByteArray bytes = file.readAll();
        const auto r = testutil::Convert(bytes);
        EXPECT_EQ(r.status, c.contract) << c.file;
        if (r.status > 0) EXPECT_TRUE(r.svg.endsWith(QStringLiteral("</svg>\n"))) << c.file;
        svgmodule_options options = SVGMODULE_OPTIONS_INIT;
        options.mode = SVGMODULE_MODE_FAITHFUL;
        QByteArray svg;
        EXPECT_EQ(svgmodule_convert(bytes, svg, &options), c.faithful) << c.file;
        if (c.faithful > 0) EXPECT_TRUE(svg.endsWith("</svg>\n")) << c.file;
        listed << QLatin1String(c.file);
    }
    // A file added to the folder without a line in the table is not forgotten.
    for (const QString& name : dir.entryList(QDir::Files))
        EXPECT_TRUE(listed.contains(name)) << name.toStdString() << " has no case";
}
