// Hostile files convert to closed documents within the output budget and a fixed multiple of
// their size in heap. Each family is built to 1 MiB; bench_scale --adversarial measures the
// same files at growing sizes for time.
#include <gtest/gtest.h>

#include <QByteArray>

#include "CLogSystem.h"
#include "svgmodule.h"
#include "tests/AdversarialFiles.h"
#include "bench/HeapCount.h"

namespace {

const int kBytes = 1 << 20;
// Output: at most 64 bytes for each input byte, then the closing tag. Heap: the output, the
// path being collected and the object tables together stay under twice that.
const long long kOutputPerByte = 64, kHeapPerByte = 128;
const char kFooter[] = "</svg>\n";

}  // namespace

TEST(Adversarial, FilesConvertWithinBounds) {
    CLogSystem::theRootInstance->setLevel("OFF");
    for (const adversarial::Family& family : adversarial::Families()) {
        SCOPED_TRACE(family.name);
        const QByteArray in = family.build(kBytes);
        QByteArray out;
        int status = 0;
        const long long peak = heap::Peak([&] { status = ConvertMetaFileToSVG(in, out); });
        EXPECT_EQ(status, family.name[0] == 'w' ? 2 : 1);
        EXPECT_LE(out.size(), kOutputPerByte * in.size() + (long long)sizeof kFooter);
        // A walk ended by the budget drops the element it was writing: the document closes
        // after whole elements.
        ASSERT_TRUE(out.endsWith(kFooter));
        const QByteArray body = out.chopped((int)sizeof kFooter - 1);
        EXPECT_TRUE(body.trimmed().endsWith('>')) << body.right(80).constData();
        if (heap::Available()) EXPECT_LE(peak, kHeapPerByte * in.size());
    }
}
