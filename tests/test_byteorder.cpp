// Byte-order primitives; whole conversions of byte-swapped files run in the record tests.
#include <gtest/gtest.h>

#include <QSysInfo>
#include <cstddef>
#include <typeinfo>
#include <vector>

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

namespace {
using byteorder::FieldsSize;
using byteorder::FieldWidthAt;
using byteorder::kLayout;

struct Width {
    size_t offset, width;
};
#define W(T, m)                                  \
    Width {                                      \
        offsetof(T, m), sizeof(((T*)nullptr)->m) \
    }

// The fixed fields of `layout` end at `end`, and a field of each member's width starts at its
// offset.
void ExpectFields(const char* name, const byteorder::Layout& layout, size_t end,
                  std::vector<Width> members = {}) {
    EXPECT_EQ(FieldsSize(layout.fields), end) << name;
    for (const Width& m : members)
        EXPECT_EQ(FieldWidthAt(layout.fields, m.offset), m.width) << name << " at " << m.offset;
}

template <class... T>
void ExpectWhole() {
    (ExpectFields(typeid(T).name(), kLayout<T>, sizeof(T)), ...);
}

template <class... T>
void ExpectWmfRecords() {
    (ExpectFields(typeid(T).name(), kLayout<T>, sizeof(T), {W(T, wmr.rdFunction)}), ...);
}

// A trailing array starts where the fixed fields end, is counted by a 16- or 32-bit field and
// has elements (and a poly-list's points) as wide as the structure's.
void ExpectArray(const char* name, const byteorder::Layout& layout, size_t at, size_t element,
                 size_t point) {
    ExpectFields(name, layout, at);
    EXPECT_EQ(layout.arrayAt, at) << name;
    EXPECT_GE(FieldWidthAt(layout.fields, layout.countAt), 2u) << name;
    EXPECT_EQ(layout.element ? FieldsSize(layout.element) : 0, element) << name;
    EXPECT_EQ(layout.point ? FieldsSize(layout.point) : 0, point) << name;
}
}  // namespace

// Each layout against its structure: the fixed fields end where the structure's do (or where its
// trailing array or region data starts), and wherever the field width changes, a field of the
// member's width starts at the member's offset.
TEST(ByteOrder, LayoutsMatchThePublishedStructures) {
    ExpectWhole<tagPOINT, tagPOINTS, tagRECT, tagRECT16, tagSIZE, tagXFORM, tagEMR, tagLOGPEN,
                tagLOGBRUSH, tagEMRSELECTCLIPPATH, tagEMRSETTEXTCOLOR, tagEMRSETVIEWPORTORGEX,
                tagEMRSETVIEWPORTEXTEX, tagEMRLINETO, tagEMRSETWORLDTRANSFORM,
                tagEMRMODIFYWORLDTRANSFORM, tagEMRSELECTOBJECT, tagEMRCREATEPEN,
                tagEMRCREATEBRUSHINDIRECT, tagEMREXTCREATEFONTINDIRECTW, tagEMRELLIPSE,
                tagEMRROUNDRECT, tagEMRARC, tagEMRANGLEARC, tagEMRTEXT, tagEMREXTTEXTOUTA,
                tagEMRSMALLTEXTOUT, _RGNDATAHEADER, _RGNDATA, tagEMRBITBLT, tagEMRSTRETCHBLT,
                tagEMRMASKBLT, tagEMRSTRETCHDIBITS>();
    ExpectWmfRecords<tagWMRCREATEPEN, tagWMRCREATEBRUSHINDIRECT, tagWMREXTCREATEFONTINDIRECT,
                     tagWMRSELECTOBJECT, tagWMRSETBKMODE, tagWMRLINETO, tagWMRSETVIEWPORTORGEX,
                     tagWMRELLIPSE, tagWMREXTTEXTOUT, tagWMRPATBLT, tagWMRBITBLT,
                     tagWMRDIBSTRETCHBLT, tagWMRSTRETCHBLT>();
#define WHOLE(T, ...) ExpectFields(#T, kLayout<T>, sizeof(T), {__VA_ARGS__})
#define UNTIL(T, m) ExpectFields(#T, kLayout<T>, offsetof(T, m))
#define ARRAY(T, m, point) \
    ExpectArray(#T, kLayout<T>, offsetof(T, m), sizeof(((T*)nullptr)->m[0]), point)
    using ENH = tagENHMETAHEADER;
    using PMH = _PlaceableMetaHeader;
    using WMH = _WindowsMetaHeader;
    using ELF = tagEXTLOGFONTW;
    WHOLE(ENH, W(ENH, nHandles), W(ENH, nDescription));
    WHOLE(PMH, W(PMH, Key), W(PMH, Hmf), W(PMH, Reserved), W(PMH, Checksum));
    WHOLE(WMH, W(WMH, mtType), W(WMH, mtSize), W(WMH, mtNoObjects), W(WMH, mtMaxRecord),
          W(WMH, mtNoParameters));
    WHOLE(tagWMR, W(tagWMR, rdSize), W(tagWMR, rdFunction));
    WHOLE(tagLOGFONTW, W(tagLOGFONTW, lfItalic), W(tagLOGFONTW, lfFaceName[0]));
    WHOLE(ELF, W(ELF, elfFullName[0]), W(ELF, elfVersion), W(ELF, elfVendorId[0]),
          W(ELF, elfCulture), W(ELF, elfPanose.bytes[0]), W(ELF, padding));
    WHOLE(tagBITMAPINFOHEADER, W(tagBITMAPINFOHEADER, biPlanes),
          W(tagBITMAPINFOHEADER, biCompression));
    WHOLE(tagLOGPEN16, W(tagLOGPEN16, lopnStyle), W(tagLOGPEN16, lopnColor));
    WHOLE(tagLOGBRUSH16, W(tagLOGBRUSH16, lbStyle), W(tagLOGBRUSH16, lbColor),
          W(tagLOGBRUSH16, lbHatch));
    WHOLE(FONTSPEC, W(FONTSPEC, Height), W(FONTSPEC, Italic));
    WHOLE(tagWMRPATBLT, W(tagWMRPATBLT, RasterOperation), W(tagWMRPATBLT, Height));
    WHOLE(tagWMRBITBLT, W(tagWMRBITBLT, RasterOperation), W(tagWMRBITBLT, YSrc));
    WHOLE(tagWMRDIBSTRETCHBLT, W(tagWMRDIBSTRETCHBLT, RasterOperation),
          W(tagWMRDIBSTRETCHBLT, SrcHeight));
    WHOLE(tagWMRSTRETCHBLT, W(tagWMRSTRETCHBLT, RasterOperation), W(tagWMRSTRETCHBLT, ColorUsage));
    UNTIL(tagEXTLOGPEN, elpStyleEntry);
    UNTIL(tagEMRFILLRGN, RgnData);
    UNTIL(tagEMRFRAMERGN, RgnData);
    UNTIL(tagEMREXTSELECTCLIPRGN, RgnData);
    ARRAY(tagEMREXTCREATEPEN, elp.elpStyleEntry, 0);
    ARRAY(tagEMRPOLYLINE, aptl, 0);
    ARRAY(tagEMRPOLYLINE16, apts, 0);
    ARRAY(tagEMRPOLYDRAW16, apts, 0);
    ARRAY(tagEMRPOLYPOLYLINE, aPolyCounts, sizeof(tagPOINT));
    ARRAY(tagEMRPOLYPOLYLINE16, aPolyCounts, sizeof(tagPOINTS));
    ARRAY(tagWMRPOLYLINE, aPoints, 0);
    ARRAY(tagWMRPOLYPOLYLINE, aPointsPerPolygon, sizeof(tagPOINTS));
#undef WHOLE
#undef UNTIL
#undef ARRAY
#undef W
}
