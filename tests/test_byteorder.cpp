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

// Fields of `width` bytes from byte `from` up to `end`.
std::vector<Width> Run(size_t from, size_t end, size_t width) {
    std::vector<Width> run;
    for (size_t at = from; at < end; at += width) run.push_back({at, width});
    return run;
}
std::vector<Width> Emf32(size_t end) {
    return Run(0, end, 4);
}
// A WMF record's 32-bit size, then 16-bit fields (the function and parameters).
std::vector<Width> Wmf16(size_t end) {
    std::vector<Width> fields = Run(4, end, 2);
    fields.push_back({0, 4});
    return fields;
}

// The fixed fields of `layout` end at `end`, and a field of each member's width starts at its
// offset: the first and last member of each run of equally wide fields are named.
void ExpectFields(const char* name, const byteorder::Layout& layout, size_t end,
                  std::vector<Width> members) {
    EXPECT_EQ(FieldsSize(layout.fields), end) << name;
    for (const Width& m : members)
        EXPECT_EQ(FieldWidthAt(layout.fields, m.offset), m.width) << name << " at " << m.offset;
}

// Structures of `width`-byte fields only; WMF records with a prefix and, when `params16`,
// 16-bit parameters only.
template <size_t width, class... T>
void ExpectUniform() {
    (ExpectFields(typeid(T).name(), kLayout<T>, sizeof(T), Run(0, sizeof(T), width)), ...);
}
template <bool params16, class... T>
void ExpectWmfRecords() {
    (ExpectFields(typeid(T).name(), kLayout<T>, sizeof(T), Wmf16(params16 ? sizeof(T) : 6)), ...);
}

// A trailing array starts where the fixed fields end and is counted by a 16- or 32-bit field;
// its elements (and a poly-list's points) are as wide as the structure's, and an integer
// element is one field.
void ExpectArray(const char* name, const byteorder::Layout& layout, size_t at,
                 std::vector<Width> fixed, size_t element, bool integer, size_t point) {
    ExpectFields(name, layout, at, fixed);
    EXPECT_EQ(layout.arrayAt, at) << name;
    EXPECT_GE(FieldWidthAt(layout.fields, layout.countAt), 2u) << name;
    EXPECT_EQ(layout.element ? FieldsSize(layout.element) : 0, element) << name;
    if (integer) EXPECT_EQ(FieldWidthAt(layout.element, 0), element) << name;
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
#define UNTIL(T, m) ExpectFields(#T, kLayout<T>, offsetof(T, m), Emf32(offsetof(T, m)))
#define ARRAY(T, m, fixed, point)                                      \
    ExpectArray(#T, kLayout<T>, offsetof(T, m), fixed(offsetof(T, m)), \
                sizeof(((T*)nullptr)->m[0]),                           \
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
    UNTIL(tagEXTLOGPEN, elpStyleEntry);
    UNTIL(tagEMRFILLRGN, RgnData);
    UNTIL(tagEMRFRAMERGN, RgnData);
    UNTIL(tagEMREXTSELECTCLIPRGN, RgnData);
    ARRAY(tagEMREXTCREATEPEN, elp.elpStyleEntry, Emf32, 0);
    ARRAY(tagEMRPOLYLINE, aptl, Emf32, 0);
    ARRAY(tagEMRPOLYLINE16, apts, Emf32, 0);
    ARRAY(tagEMRPOLYDRAW16, apts, Emf32, 0);
    ARRAY(tagEMRPOLYPOLYLINE, aPolyCounts, Emf32, sizeof(tagPOINT));
    ARRAY(tagEMRPOLYPOLYLINE16, aPolyCounts, Emf32, sizeof(tagPOINTS));
    ARRAY(tagWMRPOLYLINE, aPoints, Wmf16, 0);
    ARRAY(tagWMRPOLYPOLYLINE, aPointsPerPolygon, Wmf16, sizeof(tagPOINTS));
#undef WHOLE
#undef UNTIL
#undef ARRAY
#undef W
}
