// Byte-order primitives, and whole conversions of byte-swapped files on a big-endian host.
#include <gtest/gtest.h>

#include <QSysInfo>

#include "byteorder/BEndTools.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

// The probe tells the host's order. Floats are read in file order on any host; everything else
// swaps only while the byte-order test answers "big-endian", and then swapped EMF and
// placeable WMF headers convert as the little-endian files do (the plain WMF header runs
// swapped in the WMF record tests).
TEST(ByteOrder, SwappingHappensOnlyOnABigEndianHost) {
    const mfb::Emf emf = mfb::Emf().frame(0, 0, 21000, 29700).bounds(0, 0, 671, 949);
    const mfb::Wmf wmf = mfb::Wmf().placeable(0, 0, 2880, 1440, 1440);
    const QString emfSvg = testutil::Convert(emf.build()).svg;
    const QString wmfSvg = testutil::Convert(wmf.build()).svg;
    const unsigned char one[4] = {0x00, 0x00, 0x80, 0x3F}, minusTwo[4] = {0x00, 0x00, 0x00, 0xC0};
    EXPECT_EQ(IsBigEndian(), QSysInfo::ByteOrder == QSysInfo::BigEndian);
    // A prefix whose fields are stored reversed from host order.
    const tagWMR reversed{0x45230100u, 0x1302};
    for (bool big : {false, true}) {
        SetByteOrderOverride(true, big);
        EXPECT_EQ(GetFloatFromBLOB(one), 1.0f);
        EXPECT_EQ(GetFloatFromBLOB(minusTwo), -2.0f);
        EXPECT_EQ(LE2BE_Word(0xAABB), big ? 0xBBAA : 0);
        EXPECT_EQ(LE2BE_DWord(0x11223344u), big ? 0x44332211u : 0u);
        tagWMR wmr{};
        EXPECT_EQ(InitMETARECORD(&wmr, reinterpret_cast<const unsigned char*>(&reversed)), big);
        if (!big) continue;
        // All 32 bits of the size are converted.
        EXPECT_EQ(wmr.rdSize, 0x00012345u);
        EXPECT_EQ(wmr.rdFunction, 0x0213);
    }
    SetByteOrderOverride(false, false);
    testutil::ForceBigEndian swapped;
    EXPECT_EQ(testutil::Convert(emf.build(true, true)).svg, emfSvg);
    EXPECT_EQ(testutil::Convert(wmf.build(true, true)).svg, wmfSvg);
}
