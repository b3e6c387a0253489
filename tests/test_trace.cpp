// System-log lines: the trace convention, and the unconditional info lines.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <map>

#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using basic_logging::Level;

namespace {

struct TraceCount {
    int enter = 0;
    int exit = 0;
};

// "prefix:function" -> Enter/Exit counts, checking the shape of every line on the way.
std::map<std::string, TraceCount> CountTraces(const testutil::LogCapture& log) {
    static const QRegularExpression shape(
        QStringLiteral("^(\\w+)\\t(\\d+)\\t (Enter|Exit) (\\w+) $"));
    std::map<std::string, TraceCount> counts;
    for (const std::string& line : log.at(Level::Trace)) {
        const auto m = shape.match(QString::fromStdString(line));
        EXPECT_TRUE(m.hasMatch()) << line;
        if (!m.hasMatch()) continue;
        TraceCount& c = counts[(m.captured(1) + QLatin1Char(':') + m.captured(4)).toStdString()];
        (m.captured(3) == QLatin1String("Enter") ? c.enter : c.exit)++;
    }
    return counts;
}

QByteArray SampleEmf() {
    return mfb::Emf()
        .record(mfb::EMR_SETMAPMODE, mfb::Bytes().u32(8))
        .record(mfb::EMR_SETWINDOWEXTEX, mfb::Bytes().i32(100).i32(100))
        .record(mfb::EMR_SETROP2, mfb::Bytes().u32(13))
        .build();
}

}  // namespace

TEST(Trace, EveryTracedFunctionEntersAndExitsOnce) {
    std::map<std::string, TraceCount> counts;
    {
        testutil::LogCapture log("TRACE");
        EXPECT_EQ(testutil::Convert(SampleEmf()).status, 1);
        EXPECT_EQ(testutil::Convert(
                      mfb::Wmf().record(mfb::META_SETWINDOWORG, mfb::Bytes().i16(0).i16(0)).build())
                      .status,
                  2);
        counts = CountTraces(log);
    }
    for (const auto& c : counts) EXPECT_EQ(c.second.enter, c.second.exit) << c.first;

    const struct {
        const char* function;
        const char* prefix;
    } expected[] = {
        {"ConvertMetaFileToSVG", "SVGTool"},
        {"ConvertEMFToSVG", "SVGTool"},
        {"HandleEnhMetaRecordData", "Emf2SVG"},
        {"OnSetMapMode", "Emf2SVG"},
        {"InitEMFText", "Emf2SVG"},
        {"CreateXML", "SVGWriter"},
        {"Close", "SVGWriter"},
        {"IsBigEndian", "BEndTools"},
        {"InitEnhMetaHeader", "BEndTools"},
        {"HandleWMFRecordData", "Wmf2SVG"},
        {"OnMetaSetWinOrg", "Wmf2SVG"},
        {"InitializeCoordinates", "Wmf2SVG"},
        {"ConvertWMFToSVG", "SVGTool"},
        {"ConvertWMFToSVG", "Wmf2SVG"},
    };
    for (const auto& e : expected) {
        const std::string key = std::string(e.prefix) + ":" + e.function;
        EXPECT_GE(counts[key].enter, 1) << key;
    }
    // Functions that do not trace.
    for (const auto& c : counts) {
        const std::string function = c.first.substr(c.first.find(':') + 1);
        for (const char* quiet : {"GetOutSVG", "GetSVGOutput", "SetBkMode", "MapPoint",
                                  "OnSetViewPortOrgEx", "WalkRecords", "SetupPicture", "WMFToSVG"})
            EXPECT_NE(function, quiet);
    }
}

TEST(Trace, OtherLevelsWriteNoTraceLines) {
    for (const char* level : {"INFO", "WARN", "FATAL", "trace-ish"}) {
        testutil::LogCapture log(level);
        testutil::Convert(SampleEmf());
        EXPECT_TRUE(log.at(Level::Trace).empty()) << level;
    }
}

TEST(Trace, WmfTableSetUpWritesInfoLines) {
    testutil::LogCapture log("INFO");
    testutil::Convert(mfb::Wmf().build());
    const auto info = log.at(Level::Info);
    ASSERT_EQ(info.size(), 2u);
    EXPECT_NE(info[0].find("\t Setup WMF record names buffer "), std::string::npos) << info[0];
    EXPECT_NE(info[1].find("\t Setup WMF record handlers "), std::string::npos) << info[1];
    EXPECT_EQ(info[0].rfind("Wmf2SVG\t", 0), 0u);
}
