// Hostile files convert, in both modes, to closed documents within the output budget and a fixed
// multiple of their size in heap, plus what the budgets' floors allow a small file. Each family is
// built to 16 KiB, where the floors rule, and to 1 MiB; bench_scale --adversarial measures the same
// files at growing sizes for time.
#include <gtest/gtest.h>

#include <QByteArray>
#include <algorithm>
#include <string>

#include "CLogSystem.h"
#include "svgmodule.h"
#include "tests/AdversarialFiles.h"
#include "bench/HeapCount.h"

namespace {

const int kSizes[] = {16 << 10, 1 << 20};
// Output: at most 64 bytes for each input byte but never less than 4 MiB, then the closing
// tag. Heap: the output, the path being collected, the object tables and the clip regions
// together stay under twice 64 bytes per input byte, plus 32 MiB for the floors of the output,
// clip-region and outline budgets.
const long long kOutputPerByte = 64, kOutputFloor = 4 << 20;
const long long kHeapPerByte = 128, kHeapFloor = 32 << 20;
const char kFooter[] = "</svg>\n";

}  // namespace

TEST(Adversarial, FilesConvertWithinBounds) {
    CLogSystem::theRootInstance->setLevel("OFF");
    for (const adversarial::Family& family : adversarial::Families()) {
        for (int bytes : kSizes) {
            const QByteArray in = family.build(bytes);
            for (int mode : {SVGMODULE_MODE_CONTRACT, SVGMODULE_MODE_FAITHFUL}) {
                SCOPED_TRACE(std::string(family.name) + " " + std::to_string(bytes) + " mode " +
                             std::to_string(mode));
                svgmodule_options options = SVGMODULE_OPTIONS_INIT;
                options.mode = mode;
                QByteArray out;
                int status = 0;
                const long long peak =
                    heap::Peak([&] { status = svgmodule_convert(in, out, &options); });
                EXPECT_EQ(status, family.name[0] == 'w' ? 2 : 1);
                const long long budget = std::max(kOutputPerByte * in.size(), kOutputFloor);
                EXPECT_LE(out.size(), budget + (long long)sizeof kFooter);
                // A walk ended by the budget drops the element it was writing: the document closes
                // after whole elements.
                ASSERT_TRUE(out.endsWith(kFooter));
                const QByteArray body = out.chopped((int)sizeof kFooter - 1);
                EXPECT_TRUE(body.trimmed().endsWith('>')) << body.right(80).constData();
                if (heap::Available()) EXPECT_LE(peak, kHeapPerByte * in.size() + kHeapFloor);
            }
        }
    }
}
