// System-log lines: the trace convention, and the unconditional info lines.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <map>

#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using basic_logging::Level;

// Traced functions write "prefix\tline\t Enter function " on entry and a matching Exit line
// before each return, at TRACE only. From INFO down, setting up the WMF tables writes two info
// lines.
TEST(Trace, LinesOfEachLevel) {
    std::vector<std::string> traces;
    for (const std::string level : {"TRACE", "INFO", "WARN", "FATAL", "trace-ish"}) {
        testutil::LogCapture log(level);
        testutil::Convert(mfb::Emf().record(mfb::EMR_SETMAPMODE, mfb::Bytes().u32(8)).build());
        testutil::Convert(
            mfb::Wmf().record(mfb::META_SETWINDOWORG, mfb::Bytes().i16(0).i16(0)).build());
        EXPECT_EQ(log.at(Level::Trace).empty(), level != "TRACE") << level;
        if (level == "TRACE") traces = log.at(Level::Trace);
        const auto info = log.at(Level::Info);
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
