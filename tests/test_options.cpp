// The options API: versioned options, mode dispatch, the diagnostic name and the C form's
// output (each repair flag alone: test_cli.cpp).
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "faithful/Faithful.h"
#include "svg/SvgRepair.h"
#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

namespace {

using basic_logging::Level;

// Both forms of svgmodule_convert, over options of every shape a host may pass (as a host
// built against a longer header passes them: `extra` follows the fields this library knows):
// the status, the document (or the caller's bytes; no document in the C form) and the one
// warning line a refusal or a size mismatch writes, which starts with the diagnostic name.
TEST(OptionsApi, VersionsModesRepairsAndDiagnosticName) {
    const QByteArray emf = mfb::Emf().build(), cut = emf.left(emf.size() - 4);
    const QByteArray exact = testutil::EmptyDocument(100, 100).toUtf8();
    const QByteArray kept("caller's bytes"), none;
    QByteArray faithful;
    const int faithfulStatus = faithful::Convert(
        reinterpret_cast<const unsigned char*>(emf.constData()), emf.size(), faithful);
    if (faithfulStatus != 1 && faithfulStatus != 2) faithful = kept;

    struct {
        svgmodule_options known;
        char extra[8];
    } options;
    const size_t known = sizeof options.known, newer = sizeof options,
                 repairsAt = offsetof(svgmodule_options, repairs);
    const unsigned all = SVGMODULE_REPAIR_ALL;
    const struct {
        const char* what;
        const QByteArray& in;
        size_t size;  // SIZE_MAX: null options
        int mode;
        unsigned repairs;
        const char* name;
        char extra;
        int status;
        QByteArray out;
        const char* warning;  // the warning line's start, or null for none
    } cases[] = {
        {"null options: the defaults", emf, SIZE_MAX, 0, all, "x", 0, 1, exact, nullptr},
        {"the defaults", emf, known, 0, 0, nullptr, 0, 1, exact, nullptr},
        {"every repair", emf, known, 0, all, nullptr, 0, 1, RepairSvg(exact), nullptr},
        {"an older host's size", emf, repairsAt, 0, 99, "x", 0, 1, exact, nullptr},
        {"a field half covered", emf, repairsAt + 2, 0, all, nullptr, 0, 1, exact, nullptr},
        {"a newer host's defaults", emf, newer, 0, 1, nullptr, 0, 1, RepairSvg(exact, 1), nullptr},
        {"a newer host's option set", emf, newer, 0, 0, "x", 1, 0, kept, "x: Convert\t"},
        {"size 0: options not initialized", emf, 0, 0, 0, "x", 0, 0, kept, "Convert\t"},
        {"size under its field", emf, sizeof(size_t) - 1, 0, 0, "x", 0, 0, kept, "Convert\t"},
        {"size of garbage", emf, 4097, 0, 0, "x", 0, 0, kept, "Convert\t"},
        {"unknown mode", emf, known, 2, 0, "a.emf", 0, 0, kept, "a.emf: Convert\t"},
        {"unknown repair", emf, known, 0, 8, nullptr, 0, 0, kept, "Convert\t"},
        {"a warning named", cut, known, 0, 0, "d/cut.emf", 0, -2, kept, "d/cut.emf: SVGTool\t"},
        {"an empty name is none", cut, known, 0, 0, "", 0, -2, kept, "SVGTool\t"},
        {"faithful", emf, known, SVGMODULE_MODE_FAITHFUL, 0, nullptr, 0, faithfulStatus, faithful,
         nullptr},
        {"empty input", none, known, 0, 0, nullptr, 0, 0, kept, nullptr},
    };
    for (const auto& c : cases) {
        std::memset(&options, 0, sizeof options);
        options.known = {c.size, c.mode, c.repairs, c.name};
        options.extra[7] = c.extra;
        const svgmodule_options* given = c.size == SIZE_MAX ? nullptr : &options.known;
        for (const bool cForm : {false, true}) {
            SCOPED_TRACE(std::string(c.what) + (cForm ? " (C)" : " (Qt)"));
            testutil::LogCapture log;
            QByteArray out = kept;
            if (cForm) {
                char* svg = out.data();  // must be replaced
                size_t length = 1;
                EXPECT_EQ(svgmodule_convert(c.in.constData(), c.in.size(), given, &svg, &length),
                          c.status);
                EXPECT_EQ(svg ? QByteArray(svg, (int)length + 1) : kept + '\0', c.out + '\0');
                EXPECT_EQ(length == 0, svg == nullptr);
                svgmodule_free(svg);
            } else {
                EXPECT_EQ(svgmodule_convert(c.in, out, given), c.status);
                EXPECT_EQ(out, c.out);
            }
            const auto warnings = log.at(Level::Warn);
            ASSERT_EQ(warnings.size(), c.warning ? 1u : 0u);
            if (c.warning) EXPECT_EQ(warnings[0].rfind(c.warning, 0), 0u) << warnings[0];
        }
    }
    // The name ends with its call; the C form needs a place for the document, not its length.
    testutil::LogCapture log;
    QByteArray out;
    EXPECT_EQ(ConvertMetaFileToSVG(cut, out), -2);
    EXPECT_EQ(log.at(Level::Warn).at(0).rfind("SVGTool\t", 0), 0u);
    char* svg = nullptr;
    EXPECT_EQ(svgmodule_convert(nullptr, 100, nullptr, &svg, nullptr), 0);
    EXPECT_EQ(svgmodule_convert(emf.constData(), emf.size(), nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(svgmodule_convert(emf.constData(), emf.size(), nullptr, &svg, nullptr), 1);
    EXPECT_EQ(QByteArray(svg), exact);
    svgmodule_free(svg);
}

}  // namespace
