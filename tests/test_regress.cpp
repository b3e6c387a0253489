// Inputs that once made the converter misbehave, kept in tests/regress/ (mostly fuzzer
// findings, minimised). Each converts to its status with a complete document; in the
// sanitizer build they also show that the fault stays fixed.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "tests/TestUtil.h"

TEST(Regress, HostileFilesConvertToTheirStatus) {
    const struct {
        const char* file;
        int status;
    } cases[] = {
        {"chord-point-at-int-min.emf", 1},  // the arc's end point lands on the int32 minimum
    };
    const QDir dir(QStringLiteral(SVGMODULE_SOURCE_DIR "/tests/regress"));
    QStringList listed;
    for (const auto& c : cases) {
        QFile file(dir.filePath(QLatin1String(c.file)));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << c.file;
        const auto r = testutil::Convert(file.readAll());
        EXPECT_EQ(r.status, c.status) << c.file;
        if (r.status > 0) EXPECT_TRUE(r.svg.endsWith(QStringLiteral("</svg>\n"))) << c.file;
        listed << QLatin1String(c.file);
    }
    // A file added to the folder without a line in the table is not forgotten.
    for (const QString& name : dir.entryList(QDir::Files))
        EXPECT_TRUE(listed.contains(name)) << name.toStdString() << " has no case";
}
