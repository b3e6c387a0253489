// The record walks of both interpreters, the record log and the record-name tables.
#include <gtest/gtest.h>

#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include "api/Logger.h"
#include "emf/Emf2SVG.h"
#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"
#include "wmf/Wmf2SVG.h"

using testutil::Convert;
using testutil::Document;

namespace {

// Converts with the record log on and returns the log's text.
class RecordLog {
  public:
    RecordLog() : m_path(m_dir.filePath(QStringLiteral("records.txt"))) {}
    QString convert(const QByteArray& metafile, int* status = nullptr) {
        QFile::remove(m_path);
        EnableLogging(true, m_path);
        const auto r = Convert(metafile);
        EnableLogging(false, QString());
        if (status) *status = r.status;
        QFile file(m_path);
        file.open(QIODevice::ReadOnly);
        return QString::fromLatin1(file.readAll());
    }
    QString path() const { return m_path; }

  private:
    QTemporaryDir m_dir;
    QString m_path;
};

const QString kEmfStart =
    QStringLiteral("################# Start Of File ######################\n\n");
const QString kEmfEnd = QStringLiteral("\n ############### End of File ##############\n\n");
const QString kWmfStart = QStringLiteral("#Start Of File\n\n");
const QString kWmfEnd = QStringLiteral("\nEnd of File\n\n");

// Records without a handler, each named in the log when visited.
mfb::Emf Unhandled(mfb::Emf emf, std::initializer_list<uint32_t> types) {
    for (uint32_t t : types) emf.record(t, mfb::Bytes().u32(0));
    return emf;
}

}  // namespace

TEST(RecordLog, SwitchingOffStopsWritingAndRepeatedOnAppends) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    const QByteArray file = Unhandled(mfb::Emf(), {mfb::EMR_SETROP2}).build();
    EnableLogging(true, path);
    EnableLogging(true, path);
    Convert(file);
    EnableLogging(false, QString());
    Convert(file);
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromLatin1(f.readAll()), kEmfStart + "EMR_SETROP2\n" + kEmfEnd);
}

TEST(RecordLog, DefaultNameIsTheDateInEnglish) {
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(CLogger::DefaultFileName(QDate(2010, 3, 5)), QStringLiteral("5_March_10.txt"));
    EXPECT_EQ(CLogger::DefaultFileName(QDate(2026, 11, 23)), QStringLiteral("23_November_26.txt"));
    QLocale::setDefault(previous);
}

TEST(EmfWalk, StopRules) {
    // Each file holds SETROP2 (20), then the record under test, then SETICMMODE (98);
    // the log shows which records were visited.
    const QString rop2 = QStringLiteral("EMR_SETROP2\n");
    const QString icm = QStringLiteral("EMR_SETICMMODE         \n");
    const struct {
        const char* what;
        QByteArray file;
        QString visited;
    } cases[] = {
        // Handled records (SETMAPMODE) and types without a name (69) write no line.
        {"all visited",
         Unhandled(mfb::Emf().record(mfb::EMR_SETMAPMODE, mfb::Bytes().u32(1)), {20, 69, 1, 98})
             .build(),
         rop2 + "EMR_HEADER \n" + icm},
        {"record count ends the walk without EOF",
         Unhandled(mfb::Emf().recordCount(1), {20, 98}).build(false), rop2},
        {"records after EOF are not read",
         mfb::Emf()
             .record(20, {})
             .record(mfb::EMR_EOF, mfb::Bytes().zeros(12))
             .record(98, {})
             .build(false),
         rop2},
        {"size 0 ends the walk",
         mfb::Emf().record(20, {}).recordWithSize(98, 0, {}).record(98, {}).build(), rop2},
        {"size below 8 ends the walk",
         mfb::Emf().record(20, {}).recordWithSize(98, 4, mfb::Bytes().u32(0)).build(), rop2},
        {"record crossing the end",
         mfb::Emf().record(20, {}).recordWithSize(98, 4000, {}).build(false), rop2},
    };
    for (const auto& c : cases) {
        RecordLog log;
        int status = 0;
        EXPECT_EQ(log.convert(c.file, &status), kEmfStart + c.visited + kEmfEnd) << c.what;
        EXPECT_EQ(status, 1) << c.what;
    }
}

TEST(WmfWalk, StopRules) {
    const QString bk = QStringLiteral("META_SETBKCOLOR \n");
    const QString rop = QStringLiteral("META_SETROP2    \n");
    const auto bkColor = mfb::Bytes().u32(0);
    const auto rop2 = mfb::Bytes().u16(13);
    const struct {
        const char* what;
        QByteArray file;
        QString visited;
    } cases[] = {
        // META_SETTEXTALIGN is not in the handler table; META_CREATEBITMAP has no name;
        // META_SETMAPMODE is handled.
        {"all visited",
         mfb::Wmf()
             .record(mfb::META_SETTEXTALIGN, mfb::Bytes().u16(0))
             .record(mfb::META_CREATEBITMAP, mfb::Bytes().u16(0))
             .record(mfb::META_SETMAPMODE, mfb::Bytes().u16(1))
             .record(0x0201, bkColor)
             .record(0x0104, rop2)
             .build(),
         "META_SETTEXTALIGN           \n" + bk + rop},
        {"records after EOF are not read",
         mfb::Wmf().record(0x0201, bkColor).record(0, {}).record(0x0104, rop2).build(), bk},
        {"size 0 ends the walk",
         mfb::Wmf().record(0x0201, bkColor).recordWithSize(0x0104, 0, rop2).build(), bk},
        {"record larger than the largest record",
         mfb::Wmf()
             .maxRecord(5)
             .record(0x0201, bkColor)
             .recordWithSize(0x0104, 6, mfb::Bytes().u16(13).zeros(4))
             .build(),
         bk},
        {"record crossing the end",
         mfb::Wmf().record(0x0201, bkColor).recordWithSize(0x0104, 500, rop2).build(false), bk},
    };
    for (const auto& c : cases) {
        RecordLog log;
        int status = 0;
        EXPECT_EQ(log.convert(c.file, &status), kWmfStart + c.visited + kWmfEnd) << c.what;
        EXPECT_EQ(status, 2) << c.what;
    }
}

TEST(RecordNames, EmfTableTexts) {
    Emf2SvgConverter c;
    c.InitEMFText();
    const struct {
        unsigned int type;
        const char* name;
    } cases[] = {
        {1, "EMR_HEADER "},
        {2, "EMR_POLYBEZIER      "},
        {10, "EMR_SETWINDOWORGEX"},
        {11, "EMR_SETVIEWPORTEXTEX"},
        {20, "EMR_SETROP2"},
        {21, "EMR_SETSTRETCHBLTMODE  "},
        {30, "EMR_INTERSECTCLIPRECT"},
        {36, "EMR_MODIFYWORLDTRANSFORM  "},
        {77, "EMR_STRETCHBLT"},
        {78, "EMR_MASKBLT             "},
        {80, "EMR_SETDIBITSTODEVICE  "},
        {82, "EMR_EXTCREATEFONTINDIRECTW"},
        {94, "EMR_CREATEDIBPATTERNBRUSHPT"},
        {96, "EMR_POLYTEXTOUTA          "},
        {105, "EMR_RESERVED_105        "},
        {118, "EMR_GRADIENTFILL        "},
        {122, "EMR_CREATECOLORSPACEW   "},
    };
    for (const auto& k : cases) ASSERT_STREQ(c.RecordName(k.type), k.name) << k.type;
    int named = 0;
    for (unsigned int t = 0; t < 20000; ++t) named += c.RecordName(t) != nullptr;
    EXPECT_EQ(named, 120);
    EXPECT_EQ(c.RecordName(69), nullptr);
    EXPECT_EQ(c.RecordName(117), nullptr);
}

TEST(RecordNames, WmfTableTexts) {
    WMF2SVGConverter c;
    c.InitWMFText();
    const struct {
        unsigned int function;
        const char* name;
    } cases[] = {
        {0x0201, "META_SETBKCOLOR "},
        {0x0106, "META_SETPOLYFILLMODE\t\t"},
        {0x0107, "META_SETSTRETCHBLTMODE\t"},
        {0x0108, "META_SETTEXTCHAREXTRA    "},
        {0x0209, "META_SETTEXTCOLOR\t\t   "},
        {0x0213, "META_LINETO                 "},
        {0x06FF, "META_CREATEREGION           "},
    };
    for (const auto& k : cases) ASSERT_STREQ(c.RecordName(k.function), k.name) << k.function;
    int named = 0;
    for (unsigned int f = 0; f < 0x10000; ++f) named += c.RecordName(f) != nullptr;
    EXPECT_EQ(named, 69);
    EXPECT_EQ(c.RecordName(0), nullptr);
}
