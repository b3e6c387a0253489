// Byte-order primitives; whole conversions of byte-swapped files run in the record tests.
#include <gtest/gtest.h>

#include <QSysInfo>

#include "byteorder/BEndTools.h"

// The probe tells the host's order. Floats are read in file order on any host; everything else
// swaps only while the byte-order test answers "big-endian", a record size with all its 32 bits.
TEST(ByteOrder, SwappingHappensOnlyOnABigEndianHost) {
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
        EXPECT_EQ(wmr.rdSize, 0x00012345u);
        EXPECT_EQ(wmr.rdFunction, 0x0213);
    }
    SetByteOrderOverride(false, false);
}
