// Every real-world file of the shared corpus ends in a defined result (skipped without it).
#include <gtest/gtest.h>

#include <QByteArray>
#include <QFileInfo>

#include "svgmodule.h"
#include "tests/TestUtil.h"

TEST(Corpus, EveryFileEndsInADefinedResult) {
    int files = 0;
    for (const char* folder : {"emf", "emf-extra", "emf-corrupted", "mixed", "wmf"}) {
        const bool damaged = QLatin1String(folder) == QLatin1String("emf-corrupted");
        for (const QString& path : testutil::CorpusFiles(QLatin1String(folder))) {
            ++files;
            QByteArray out;
            const int status = WMFToSVG(path, out);
            const QString name = QFileInfo(path).fileName();
            // Intact files convert, or are refused for a size field that disagrees with the file.
            if (damaged)
                EXPECT_TRUE(status >= -3 && status <= 2) << name.toStdString() << " " << status;
            else
                EXPECT_TRUE(status == 1 || status == 2 || status == -2)
                    << name.toStdString() << " " << status;
            if (status == 1 || status == 2) {
                const QString svg = QString::fromUtf8(out.constData(), out.size());
                EXPECT_TRUE(svg.startsWith(QLatin1String("<?xml"))) << name.toStdString();
                EXPECT_TRUE(svg.endsWith(QLatin1String("</svg>\n"))) << name.toStdString();
            }
        }
    }
    if (files == 0) GTEST_SKIP() << "no corpus at " SVGMODULE_CORPUS_DIR;
}
