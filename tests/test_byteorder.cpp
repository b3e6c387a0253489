// Byte-order primitives; whole conversions of byte-swapped files run in the record tests.
#include <gtest/gtest.h>

#include <QSysInfo>
#include <cstddef>
#include <type_traits>
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
    Width(size_t at, size_t bytes) : offset(at), width(bytes) {}
    size_t offset, width;
};
#define W(T, m) Width(offsetof(T, m), sizeof(((T*)nullptr)->m))

// The fixed fields of `layout` end at `end`, and a field of each member's width starts at its
// offset: the first and last member of each run of equally wide fields are named.
void ExpectFields(const char* name, const byteorder::Layout& layout, size_t end,
                  std::vector<Width> members) {
    EXPECT_EQ(FieldsSize(layout.fields), end) << name;
    for (const Width& m : members)
        EXPECT_EQ(FieldWidthAt(layout.fields, m.offset), m.width) << name << " at " << m.offset;
}

// The fixed fields end at `end` and are all `width` bytes wide.
void ExpectUniform(const char* name, const byteorder::Layout& layout, size_t end, size_t width) {
    std::vector<Width> all;
    for (size_t at = 0; at < end; at += width) all.push_back({at, width});
    ExpectFields(name, layout, end, all);
}

template <size_t width, class... T>
void ExpectUniform() {
    (ExpectUniform(typeid(T).name(), kLayout<T>, sizeof(T), width), ...);
}

// WMF records: the 32-bit size and the 16-bit function, and with `params16` only 16-bit fields
// after them.
template <bool params16, class... T>
void ExpectWmfRecords() {
    const auto expect = [](const char* name, const byteorder::Layout& layout, size_t end) {
        std::vector<Width> fields{{0, 4}, {4, 2}};
        for (size_t at = 6; params16 && at < end; at += 2) fields.push_back({at, 2});
        ExpectFields(name, layout, end, fields);
    };
    (expect(typeid(T).name(), kLayout<T>, sizeof(T)), ...);
}

// A trailing array starts where the fixed fields end and is counted by a 16- or 32-bit field;
// its elements (and a poly-list's points) are as wide as the structure's, and an integer
// element is one field.
void ExpectArray(const char* name, const byteorder::Layout& layout, size_t at, size_t element,
                 bool integer, size_t point) {
    EXPECT_EQ(FieldsSize(layout.fields), at) << name;
    EXPECT_EQ(layout.arrayAt, at) << name;
    EXPECT_GE(FieldWidthAt(layout.fields, layout.countAt), 2u) << name;
    EXPECT_EQ(layout.element ? FieldsSize(layout.element) : 0, element) << name;
    if (integer) {
        EXPECT_EQ(FieldWidthAt(layout.element, 0), element) << name;
    }
    EXPECT_EQ(layout.point ? FieldsSize(layout.point) : 0, point) << name;
}
}  // namespace

// Each layout against its structure: the fixed fields end where the structure's do (or where its
// trailing array or region data starts), and each field has the width of the member there.
TEST(ByteOrder, LayoutsMatchThePublishedStructures) {
    ExpectUniform<2, tagPOINTS, tagRECT16>();
    ExpectUniform<4, tagPOINT, tagRECT, tagSIZE, tagXFORM, tagEMR, tagLOGPEN, tagLOGBRUSH,
                  tagEMRSELECTCLIPPATH, tagEMRSETTEXTCOLOR, tagEMRSETVIEWPORTORGEX,
                  tagEMRSETVIEWPORTEXTEX, tagEMRLINETO, tagEMRSETWORLDTRANSFORM,
                  tagEMRMODIFYWORLDTRANSFORM, tagEMRSELECTOBJECT, tagEMRCREATEPEN,
                  tagEMRCREATEBRUSHINDIRECT, tagEMRELLIPSE, tagEMRROUNDRECT, tagEMRARC,
                  tagEMRANGLEARC, tagEMRTEXT, tagEMREXTTEXTOUTA, tagEMRSMALLTEXTOUT, _RGNDATAHEADER,
                  _RGNDATA, tagEMRBITBLT, tagEMRSTRETCHBLT, tagEMRMASKBLT, tagEMRSTRETCHDIBITS>();
    ExpectWmfRecords<true, tagWMRSELECTOBJECT, tagWMRSETBKMODE, tagWMRLINETO,
                     tagWMRSETVIEWPORTORGEX, tagWMRELLIPSE, tagWMREXTTEXTOUT>();
    ExpectWmfRecords<false, tagWMRCREATEPEN, tagWMRCREATEBRUSHINDIRECT, tagWMREXTCREATEFONTINDIRECT,
                     tagWMRPATBLT, tagWMRBITBLT, tagWMRDIBSTRETCHBLT, tagWMRSTRETCHBLT>();
#define WHOLE(T, ...) ExpectFields(#T, kLayout<T>, sizeof(T), {__VA_ARGS__})
#define UNTIL(T, m) ExpectUniform(#T, kLayout<T>, offsetof(T, m), 4)
#define ARRAY(T, m, point)                                                   \
    ExpectArray(#T, kLayout<T>, offsetof(T, m), sizeof(((T*)nullptr)->m[0]), \
                std::is_integral_v<std::remove_reference_t<decltype(((T*)nullptr)->m[0])>>, point)
    using ENH = tagENHMETAHEADER;
    using PMH = _PlaceableMetaHeader;
    using WMH = _WindowsMetaHeader;
    using ELF = tagEXTLOGFONTW;
    using BIH = tagBITMAPINFOHEADER;
    WHOLE(ENH, W(ENH, nRecords), W(ENH, nHandles), W(ENH, sReserved), W(ENH, nDescription));
    WHOLE(PMH, W(PMH, Key), W(PMH, Hmf), W(PMH, Inch), W(PMH, Reserved), W(PMH, Checksum));
    WHOLE(WMH, W(WMH, mtVersion), W(WMH, mtSize), W(WMH, mtNoObjects), W(WMH, mtMaxRecord),
          W(WMH, mtNoParameters));
    WHOLE(tagWMR, W(tagWMR, rdSize), W(tagWMR, rdFunction));
    WHOLE(tagLOGFONTW, W(tagLOGFONTW, lfWeight), W(tagLOGFONTW, lfItalic),
          W(tagLOGFONTW, lfPitchAndFamily), W(tagLOGFONTW, lfFaceName[0]));
    WHOLE(ELF, W(ELF, elfFullName[0]), W(ELF, elfStyle[31]), W(ELF, elfVersion),
          W(ELF, elfReserved), W(ELF, elfVendorId[0]), W(ELF, elfVendorId[3]), W(ELF, elfCulture),
          W(ELF, elfPanose.bytes[0]), W(ELF, elfPanose.bytes[9]), W(ELF, padding));
    WHOLE(BIH, W(BIH, biHeight), W(BIH, biPlanes), W(BIH, biBitCount), W(BIH, biCompression));
    WHOLE(tagLOGPEN16, W(tagLOGPEN16, lopnWidth.y), W(tagLOGPEN16, lopnColor));
    WHOLE(tagLOGBRUSH16, W(tagLOGBRUSH16, lbStyle), W(tagLOGBRUSH16, lbColor),
          W(tagLOGBRUSH16, lbHatch));
    WHOLE(FONTSPEC, W(FONTSPEC, Height), W(FONTSPEC, Weight), W(FONTSPEC, Italic));
    WHOLE(tagWMRPATBLT, W(tagWMRPATBLT, RasterOperation), W(tagWMRPATBLT, Height),
          W(tagWMRPATBLT, XLeft));
    WHOLE(tagWMRBITBLT, W(tagWMRBITBLT, RasterOperation), W(tagWMRBITBLT, YSrc),
          W(tagWMRBITBLT, XDest));
    WHOLE(tagWMRDIBSTRETCHBLT, W(tagWMRDIBSTRETCHBLT, RasterOperation),
          W(tagWMRDIBSTRETCHBLT, SrcHeight), W(tagWMRDIBSTRETCHBLT, XDest));
    WHOLE(tagWMRSTRETCHBLT, W(tagWMRSTRETCHBLT, RasterOperation), W(tagWMRSTRETCHBLT, ColorUsage),
          W(tagWMRSTRETCHBLT, XDest));
    ExpectFields("tagWMRPOLYLINE", kLayout<tagWMRPOLYLINE>, 8, {{0, 4}, {4, 2}, {6, 2}});
    ExpectFields("tagWMRPOLYPOLYLINE", kLayout<tagWMRPOLYPOLYLINE>, 8, {{0, 4}, {4, 2}, {6, 2}});
    UNTIL(tagEXTLOGPEN, elpStyleEntry);
    UNTIL(tagEMREXTCREATEPEN, elp.elpStyleEntry);
    UNTIL(tagEMRPOLYLINE, aptl);
    UNTIL(tagEMRPOLYLINE16, apts);
    UNTIL(tagEMRPOLYDRAW16, apts);
    UNTIL(tagEMRPOLYPOLYLINE, aPolyCounts);
    UNTIL(tagEMRPOLYPOLYLINE16, aPolyCounts);
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
