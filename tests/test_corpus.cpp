// Every real-world file of the corpus ends in a defined result (skipped without it).
#include <gtest/gtest.h>

#include <QByteArray>
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
