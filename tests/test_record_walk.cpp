// The record walks of both interpreters, the record log and the record-name tables; the
// system-log lines: the trace convention and the unconditional info lines.

#include <QCryptographicHash>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <map>

#include "api/Logger.h"
#include "emf/Emf2SVG.h"
#include "svgmodule.h"
#include "tests/TestUtil.h"
#include "wmf/Wmf2SVG.h"

using namespace testutil;

namespace {

// Converts with the record log switched on twice (the second call reopens the same file) and
// once more with it off, which must add nothing; returns the log's text.
QString RecordLog(const QByteArray& metafile, int* status) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("records.txt"));
    EnableLogging(true, path);
    EnableLogging(true, path);
    *status = Convert(metafile).status;
    EnableLogging(false, QString());
    Convert(metafile);
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

QString EmfLog(const QString& names) {
    return "################# Start Of File ######################\n\n" + names +
           "\n ############### End of File ##############\n\n";
}
QString WmfLog(const QString& names) {
    return "#Start Of File\n\n" + names + "\nEnd of File\n\n";
}

}  // namespace

TEST(RecordLog, DefaultNameIsTheDateInEnglish) {
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(CLogger::DefaultFileName(QDate(2010, 3, 5)), QStringLiteral("5_March_10.txt"));
    EXPECT_EQ(CLogger::DefaultFileName(QDate(2026, 11, 23)), QStringLiteral("23_November_26.txt"));
    QLocale::setDefault(previous);
}

// Each EMF starts with SETROP2 (20), each WMF with SETBKCOLOR; then come the records under
// test, and after them SETICMMODE (98) or SETROP2. The log shows which were visited.
TEST(RecordWalk, StopRules) {
    using namespace mfb;
    const QString rop2 = QStringLiteral("EMR_SETROP2\n"), bk = QStringLiteral("META_SETBKCOLOR \n");
    const Bytes bkColor = Bytes().u32(0), wmfRop2 = Bytes().u16(13), zero = Bytes().u16(0);
    const auto emf = [] { return Emf().record(20, {}); };
    const auto wmf = [&] { return Wmf().record(META_SETBKCOLOR, bkColor); };
    const std::tuple<const char*, QByteArray, QString> cases[] = {
        // Handled records (SETMAPMODE, 17) and types without a name (69) write no line.
        {"EMF: all visited",
         emf().record(17, Bytes().u32(1)).record(69, {}).record(1, {}).record(98, {}).build(),
         EmfLog(rop2 + "EMR_HEADER \nEMR_SETICMMODE         \n")},
        {"EMF: record count ends the walk without EOF",
         Emf().recordCount(1).record(20, {}).record(98, {}).build(false), EmfLog(rop2)},
        {"EMF: after EOF", emf().record(EMR_EOF, Bytes().zeros(12)).record(98, {}).build(false),
         EmfLog(rop2)},
        {"EMF: size 0", emf().recordWithSize(98, 0, {}).record(98, {}).build(), EmfLog(rop2)},
        {"EMF: size below 8", emf().recordWithSize(98, 4, Bytes().u32(0)).build(), EmfLog(rop2)},
        {"EMF: past the end", emf().recordWithSize(98, 4000, {}).build(false), EmfLog(rop2)},
        // META_SETTEXTALIGN has no handler, META_CREATEBITMAP no name; META_SETMAPMODE is handled.
        {"WMF: all visited",
         wmf()
             .record(META_SETTEXTALIGN, zero)
             .record(META_CREATEBITMAP, zero)
             .record(META_SETMAPMODE, zero)
             .record(0x0104, wmfRop2)
             .build(),
         WmfLog(bk + "META_SETTEXTALIGN           \n" + "META_SETROP2    \n")},
        {"WMF: after EOF", wmf().record(META_EOF, {}).record(0x0104, wmfRop2).build(), WmfLog(bk)},
        {"WMF: size 0", wmf().recordWithSize(0x0104, 0, wmfRop2).build(), WmfLog(bk)},
        {"WMF: larger than mtMaxRecord",
         wmf().maxRecord(5).recordWithSize(0x0104, 6, Bytes().zeros(6)).build(), WmfLog(bk)},
        {"WMF: past the end", wmf().recordWithSize(0x0104, 500, wmfRop2).build(false), WmfLog(bk)},
    };
    for (const auto& [what, file, log] : cases) {
        int status = 0;
        EXPECT_EQ(RecordLog(file, &status), log) << what;
        EXPECT_EQ(status, QString(what).startsWith("EMF") ? 1 : 2) << what;
    }
}

// The names reach the record log byte for byte, so each table is pinned whole: every name
// with its padding, in type order, as "type=name|". The message shows the text on a mismatch.
TEST(RecordNames, TablesAreComplete) {
    Emf2SvgConverter emf;
    emf.InitEMFText();
    WMF2SVGConverter wmf;
    wmf.InitWMFText();
    QByteArray names[2];
    for (unsigned int type = 0; type < 0x10000; ++type) {
        for (int i = 0; i < 2; ++i)
            if (const char* name = i ? wmf.RecordName(type) : emf.RecordName(type))
                names[i] += QByteArray::number(type) + '=' + name + '|';
    }
    const char* const md5[] = {"81848c99eae38f08952e97e212e0354d",
                               "21683b1d6afc4af88732a4cf89ba796d"};
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(QCryptographicHash::hash(names[i], QCryptographicHash::Md5).toHex().toStdString(),
                  md5[i])
            << names[i].toStdString();
}

// Traced functions write "prefix\tline\t Enter function " on entry and a matching Exit line
// before each return, at TRACE only. From INFO down, setting up the WMF tables writes two info
// lines.
TEST(Trace, LinesOfEachLevel) {
    std::vector<std::string> traces;
    for (const std::string level : {"TRACE", "INFO", "WARN", "FATAL", "trace-ish"}) {
        LogCapture log(level);
        Convert(mfb::Emf().record(mfb::EMR_SETMAPMODE, mfb::Bytes().u32(8)).build());
        Convert(mfb::Wmf().record(mfb::META_SETWINDOWORG, mfb::Bytes().i16(0).i16(0)).build());
        EXPECT_EQ(log.at(basic_logging::Level::Trace).empty(), level != "TRACE") << level;
        if (level == "TRACE") traces = log.at(basic_logging::Level::Trace);
        const auto info = log.at(basic_logging::Level::Info);
        ASSERT_EQ(info.size(), level == "TRACE" || level == "INFO" ? 2u : 0u) << level;
        if (info.empty()) continue;
        EXPECT_EQ(info[0].rfind("Wmf2SVG\t", 0), 0u);
        EXPECT_NE(info[0].find("\t Setup WMF record names buffer "), std::string::npos) << info[0];
        EXPECT_NE(info[1].find("\t Setup WMF record handlers "), std::string::npos) << info[1];
    }
    static const QRegularExpression shape(
        QStringLiteral("^(\\w+)\\t(\\d+)\\t (Enter|Exit) (\\w+) $"));
    std::map<QString, int> balance, entered;  // "prefix:function"
    for (const std::string& line : traces) {
        const auto m = shape.match(QString::fromStdString(line));
        ASSERT_TRUE(m.hasMatch()) << line;
        const QString key = m.captured(1) + ':' + m.captured(4);
        const bool enter = m.captured(3) == QLatin1String("Enter");
        balance[key] += enter ? 1 : -1;
        entered[key] += enter;
    }
    for (const auto& b : balance) EXPECT_EQ(b.second, 0) << b.first.toStdString();
    // Each traced file, on both formats.
    for (const char* key :
         {"SVGTool:ConvertEMFToSVG", "SVGTool:ConvertWMFToSVG", "Emf2SVG:OnSetMapMode",
          "Wmf2SVG:OnMetaSetWinOrg", "SVGWriter:CreateXML", "BEndTools:IsBigEndian"})
        EXPECT_GE(entered[key], 1) << key;
    // The record walks and the picture set-up run here but do not trace.
    for (const auto& e : entered)
        for (const char* quiet : {"WalkRecords", "SetupPicture"})
            EXPECT_NE(e.first.section(':', 1), quiet);
}
