// Entry points: format detection, status codes, refusals and the document frame.
#include <gtest/gtest.h>

#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using testutil::Convert;
using testutil::Document;

TEST(EntryPoints, EmptyEmfIsHeaderAndFooter) {
    const auto r = Convert(mfb::Emf().build());
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.svg, Document(100, 100, QString()));
}

TEST(EntryPoints, EmptyWmfIsHeaderAndFooter) {
    const auto r = Convert(mfb::Wmf().build());
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.svg, Document(1024, 768, QString()));
}

TEST(EntryPoints, SwappedFilesConvertAlikeOnABigEndianHost) {
    testutil::ForceBigEndian bigEndian;
    EXPECT_EQ(Convert(mfb::Emf().build(true, true)).svg, Document(100, 100, QString()));
    EXPECT_EQ(Convert(mfb::Wmf().placeable(0, 0, 2880, 1440, 1440).build(true, true)).svg,
              Document(192, 96, QString()));
}
