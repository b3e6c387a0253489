// Byte-order primitives, and whole conversions of byte-swapped files on a big-endian host.
#include <gtest/gtest.h>

#include "byteorder/BEndTools.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

// Floats are read in file order on any host; everything else swaps only on a big-endian one,
// where swapped EMF and placeable WMF headers convert as the little-endian files do (the plain
// WMF header runs swapped in the WMF record tests).
TEST(ByteOrder, SwappingHappensOnlyOnABigEndianHost) {
    const mfb::Emf emf = mfb::Emf().frame(0, 0, 21000, 29700).bounds(0, 0, 671, 949);
    const mfb::Wmf wmf = mfb::Wmf().placeable(0, 0, 2880, 1440, 1440);
    const QString emfSvg = testutil::Convert(emf.build()).svg;
    const QString wmfSvg = testutil::Convert(wmf.build()).svg;
    const unsigned char one[4] = {0x00, 0x00, 0x80, 0x3F}, minusTwo[4] = {0x00, 0x00, 0x00, 0xC0};
    EXPECT_EQ(GetFloatFromBLOB(one), 1.0f);
    EXPECT_EQ(GetFloatFromBLOB(minusTwo), -2.0f);
    EXPECT_FALSE(IsBigEndian());
    EXPECT_EQ(LE2BE_Word(0xAABB), 0);
    EXPECT_EQ(LE2BE_DWord(0x11223344u), 0u);

    testutil::ForceBigEndian bigEndian;
    EXPECT_TRUE(IsBigEndian());
    EXPECT_EQ(GetFloatFromBLOB(one), 1.0f);
    EXPECT_EQ(LE2BE_Word(0xAABB), 0xBBAA);
    EXPECT_EQ(LE2BE_DWord(0x11223344u), 0x44332211u);
    // A prefix stored in host (big-endian) order reads back with all 32 bits of its size.
    const unsigned char big[6] = {0x00, 0x01, 0x23, 0x45, 0x02, 0x13};
    tagWMR wmr{};
    EXPECT_EQ(InitMETARECORD(&wmr, big), 1);
    EXPECT_EQ(wmr.rdSize, 0x00012345u);
    EXPECT_EQ(wmr.rdFunction, 0x0213);
    EXPECT_EQ(testutil::Convert(emf.build(true, true)).svg, emfSvg);
    EXPECT_EQ(testutil::Convert(wmf.build(true, true)).svg, wmfSvg);
}
