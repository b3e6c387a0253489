// Byte-order primitives, and whole conversions of byte-swapped files on a big-endian host.
#include <gtest/gtest.h>

#include <QSysInfo>
#include <cstring>

#include "byteorder/BEndTools.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

// The probe tells the host's order, and a little-endian record prefix reads alike on either
// host. Whatever the host, the swapping functions work only while the test says "big-endian".
TEST(ByteOrder, SwappingHappensOnlyOnABigEndianHost) {
    EXPECT_EQ(IsBigEndian(), QSysInfo::ByteOrder == QSysInfo::BigEndian);
    const unsigned char file[6] = {0x45, 0x23, 0x01, 0x00, 0x13, 0x02};
    tagWMR wmr{};
    if (!InitWMR(&wmr, file)) std::memcpy(&wmr, file, sizeof wmr);
    EXPECT_EQ(wmr.rdSize, 0x00012345u);
    EXPECT_EQ(wmr.rdFunction, 0x0213);

    SetByteOrderOverride(true, false);
    EXPECT_EQ(LE2BE_Word(0xAABB), 0);
    EXPECT_EQ(LE2BE_DWord(0x11223344u), 0u);
    tagEMR emr{1, 2};
    EXPECT_EQ(InitEMR(emr), 1);
    EXPECT_EQ(emr.iType, 1u);
    EXPECT_EQ(InitWMR(&wmr, file), 0);  // copying form: the caller copies

    SetByteOrderOverride(true, true);
    EXPECT_EQ(LE2BE_Word(0xAABB), 0xBBAA);
    EXPECT_EQ(LE2BE_DWord(0x11223344u), 0x44332211u);
    // A prefix whose fields are stored reversed from host order reads back with all 32 bits
    // of its size.
    const tagWMR reversed{0x45230100u, 0x1302};
    EXPECT_EQ(InitMETARECORD(&wmr, reinterpret_cast<const unsigned char*>(&reversed)), 1);
    EXPECT_EQ(wmr.rdSize, 0x00012345u);
    EXPECT_EQ(wmr.rdFunction, 0x0213);
    SetByteOrderOverride(false, false);
}

TEST(ByteOrder, FloatsAreReadInFileOrder) {
    const unsigned char one[4] = {0x00, 0x00, 0x80, 0x3F};
    const unsigned char minusTwo[4] = {0x00, 0x00, 0x00, 0xC0};
    EXPECT_EQ(GetFloatFromBLOB(one), 1.0f);
    EXPECT_EQ(GetFloatFromBLOB(minusTwo), -2.0f);
}

TEST(ByteOrder, SwappedHeadersConvertAlike) {
    const QByteArray files[] = {
        mfb::Emf().frame(0, 0, 21000, 29700).bounds(0, 0, 671, 949).build(),
        mfb::Wmf().build(),
        mfb::Wmf().placeable(0, 0, 2880, 1440, 1440).build(),
    };
    const QByteArray swapped[] = {
        mfb::Emf().frame(0, 0, 21000, 29700).bounds(0, 0, 671, 949).build(true, true),
        mfb::Wmf().build(true, true),
        mfb::Wmf().placeable(0, 0, 2880, 1440, 1440).build(true, true),
    };
    for (int i = 0; i < 3; ++i) {
        const auto little = testutil::Convert(files[i]);
        testutil::ForceBigEndian bigEndian;
        const auto big = testutil::Convert(swapped[i]);
        EXPECT_EQ(big.status, little.status) << i;
        EXPECT_EQ(big.svg, little.svg) << i;
    }
}
