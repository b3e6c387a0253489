// The bundled examples are the generator's output and convert.
#include <gtest/gtest.h>

#include <QFile>

#include "tools/ExampleMetafiles.h"
#include "tests/TestUtil.h"

TEST(Examples, BundledFilesMatchTheGeneratorAndConvert) {
    const struct {
        const char* file;
        QByteArray bytes;
        int status;
    } cases[] = {{"example.emf", examples::ExampleEmf(), 1},
                 {"example.wmf", examples::ExampleWmf(), 2}};
    for (const auto& c : cases) {
        QFile file(QStringLiteral(SVGMODULE_SOURCE_DIR "/examples/") + QLatin1String(c.file));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << c.file;
        EXPECT_EQ(file.readAll(), c.bytes) << c.file << ": regenerate with make_examples examples";
        const auto r = testutil::Convert(c.bytes);
        EXPECT_EQ(r.status, c.status) << c.file;
        EXPECT_TRUE(r.svg.startsWith(testutil::Header(400, 450))) << c.file;
        EXPECT_TRUE(r.svg.endsWith(QStringLiteral("</svg>\n"))) << c.file;
    }
}
