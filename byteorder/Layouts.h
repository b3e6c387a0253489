// The byte-order layout of every structure the normalisers convert: its fields once, in file
// order, for the one routine that converts any of them (BEndTools.h).
//
// A layout string names each field by its width, a letter optionally followed by how many such
// fields follow one another:
//   d  a 32-bit field            f  a 32-bit float (converted as its bits, like d)
//   w  a 16-bit field, or a UTF-16 code unit
//   b  a byte, which keeps its place
// Spaces only group the fields for the reader, mostly by member: "d2 d4 d" is an EMF record
// header, a RECTL and one 32-bit field. A nested structure is written out in place.
//
// A record with a trailing array also names one element's layout, the fixed field that counts
// the elements and where the first one starts. Poly-list records count lists: their elements
// are the point counts of the lists, and the points follow all of the counts.
#ifndef SVGMODULE_LAYOUTS_H
#define SVGMODULE_LAYOUTS_H

#include <cstddef>

#include "MetafileStructs.h"

namespace byteorder {

struct Layout {
    const char* fields;             // the fixed fields
    const char* element = nullptr;  // one element of the trailing array; none when null
    size_t countAt = 0;             // the fixed field that counts the elements
    size_t arrayAt = 0;             // the first element
    const char* point = nullptr;    // poly-lists: one point; the elements are point counts
    size_t declaredPointsAt = 0;    // poly-lists: the fixed field that counts all points, if any
};

// kLayout<T> is the layout of structure T; a structure without one has none.
template <class T>
inline constexpr Layout kLayout = {nullptr};

// LAYOUT(T, fields...) defines kLayout<T>.
#define LAYOUT(T, ...) \
    template <>        \
    inline constexpr Layout kLayout<T> = {__VA_ARGS__}

// Structures of mixed widths that records hold, written out in the records' layouts.
#define LOGFONTW_FIELDS "d5 b8 w32"
#define EXTLOGFONTW_FIELDS LOGFONTW_FIELDS " w64 w32 d4 b4 d b10 w"
#define LOGPEN16_FIELDS "w w2 d"
#define LOGBRUSH16_FIELDS "w d w"
#define FONTSPEC_FIELDS "w5 b8 b32"

// --- geometry and headers ----------------------------------------------------------------
LAYOUT(tagPOINT, "d2");
LAYOUT(tagPOINTS, "w2");
LAYOUT(tagRECT, "d4");
LAYOUT(tagRECT16, "w4");
LAYOUT(tagSIZE, "d2");
LAYOUT(tagXFORM, "f6");
LAYOUT(tagEMR, "d2");
LAYOUT(tagENHMETAHEADER, "d2 d4 d4 d4 w2 d3 d2 d2");
LAYOUT(_PlaceableMetaHeader, "d w w4 w d w");
LAYOUT(_WindowsMetaHeader, "w3 d w d w");
LAYOUT(tagWMR, "d w");

// --- EMF objects and records -------------------------------------------------------------
LAYOUT(tagLOGPEN, "d d2 d");
LAYOUT(tagEXTLOGPEN, "d6");  // without the style entries
LAYOUT(tagLOGBRUSH, "d3");
LAYOUT(tagLOGFONTW, LOGFONTW_FIELDS);
LAYOUT(tagEXTLOGFONTW, EXTLOGFONTW_FIELDS);
LAYOUT(tagBITMAPINFOHEADER, "d3 w2 d6");

LAYOUT(tagEMRSELECTCLIPPATH, "d2 d");
LAYOUT(tagEMRSETTEXTCOLOR, "d2 d");
LAYOUT(tagEMRSETVIEWPORTORGEX, "d2 d2");
LAYOUT(tagEMRSETVIEWPORTEXTEX, "d2 d2");
LAYOUT(tagEMRLINETO, "d2 d2");
LAYOUT(tagEMRSETWORLDTRANSFORM, "d2 f6");
LAYOUT(tagEMRMODIFYWORLDTRANSFORM, "d2 f6 d");
LAYOUT(tagEMRSELECTOBJECT, "d2 d");
LAYOUT(tagEMRCREATEPEN, "d2 d d d2 d");
LAYOUT(tagEMREXTCREATEPEN, "d2 d5 d6", "d", offsetof(tagEMREXTCREATEPEN, elp.elpNumEntries),
       EMR_EXTCREATEPEN_ENTRIES_OFFSET);
LAYOUT(tagEMRCREATEBRUSHINDIRECT, "d2 d d3");
LAYOUT(tagEMREXTCREATEFONTINDIRECTW, "d2 d " EXTLOGFONTW_FIELDS);
LAYOUT(tagEMRELLIPSE, "d2 d4");
LAYOUT(tagEMRROUNDRECT, "d2 d4 d2");
LAYOUT(tagEMRARC, "d2 d4 d2 d2");
LAYOUT(tagEMRANGLEARC, "d2 d2 d f2");
LAYOUT(tagEMRTEXT, "d2 d3 d4 d");
LAYOUT(tagEMREXTTEXTOUTA, "d2 d4 d f2  d2 d3 d4 d");
LAYOUT(tagEMRSMALLTEXTOUT, "d2 d2 d3 f2");
// Point lists; EMR_POLYDRAW16's point types, after the points, are bytes.
LAYOUT(tagEMRPOLYLINE, "d2 d4 d", kLayout<tagPOINT>.fields, offsetof(tagEMRPOLYLINE, cptl),
       EMR_POLY_POINTS_OFFSET);
LAYOUT(tagEMRPOLYLINE16, "d2 d4 d", kLayout<tagPOINTS>.fields, offsetof(tagEMRPOLYLINE16, cpts),
       EMR_POLY_POINTS_OFFSET);
LAYOUT(tagEMRPOLYDRAW16, "d2 d4 d", kLayout<tagPOINTS>.fields, offsetof(tagEMRPOLYDRAW16, cpts),
       EMR_POLY_POINTS_OFFSET);
// Poly-lists: as many points as the record declares or its counts add up to, whichever is more.
LAYOUT(tagEMRPOLYPOLYLINE, "d2 d4 d2", "d", offsetof(tagEMRPOLYPOLYLINE, nPolys),
       EMR_POLYPOLY_COUNTS_OFFSET, kLayout<tagPOINT>.fields, offsetof(tagEMRPOLYPOLYLINE, cptl));
LAYOUT(tagEMRPOLYPOLYLINE16, "d2 d4 d2", "d", offsetof(tagEMRPOLYPOLYLINE16, nPolys),
       EMR_POLYPOLY_COUNTS_OFFSET, kLayout<tagPOINTS>.fields, offsetof(tagEMRPOLYPOLYLINE16, cpts));
// Region records: the fields before the region data, which is converted on its own.
LAYOUT(_RGNDATAHEADER, "d4 d4");
LAYOUT(_RGNDATA, "d4 d4");
LAYOUT(tagEMRFILLRGN, "d2 d4 d2");
LAYOUT(tagEMRFRAMERGN, "d2 d4 d2 d2");
LAYOUT(tagEMREXTSELECTCLIPRGN, "d2 d2");
// Bitmap records; the bitmaps they carry are converted on their own.
LAYOUT(tagEMRBITBLT, "d2 d4 d7 f6 d6");
LAYOUT(tagEMRSTRETCHBLT, "d2 d4 d7 f6 d6  d2");
LAYOUT(tagEMRMASKBLT, "d2 d4 d7 f6 d6  d7");
LAYOUT(tagEMRSTRETCHDIBITS, "d2 d4 d14");

// --- WMF objects and records (after the prefix "d w") ------------------------------------
LAYOUT(tagLOGPEN16, LOGPEN16_FIELDS);
LAYOUT(tagLOGBRUSH16, LOGBRUSH16_FIELDS);
LAYOUT(FONTSPEC, FONTSPEC_FIELDS);
LAYOUT(tagWMRCREATEPEN, "d w " LOGPEN16_FIELDS);
LAYOUT(tagWMRCREATEBRUSHINDIRECT, "d w " LOGBRUSH16_FIELDS);
LAYOUT(tagWMREXTCREATEFONTINDIRECT, "d w " FONTSPEC_FIELDS);
LAYOUT(tagWMRSELECTOBJECT, "d w w");
LAYOUT(tagWMRSETBKMODE, "d w w2");
LAYOUT(tagWMRLINETO, "d w w2");
LAYOUT(tagWMRSETVIEWPORTORGEX, "d w w2");
LAYOUT(tagWMRELLIPSE, "d w w4");
LAYOUT(tagWMREXTTEXTOUT, "d w w4");
LAYOUT(tagWMRPATBLT, "d w d w4");
LAYOUT(tagWMRBITBLT, "d w d w6");
LAYOUT(tagWMRDIBSTRETCHBLT, "d w d w8");
LAYOUT(tagWMRSTRETCHBLT, "d w d w9");
LAYOUT(tagWMRPOLYLINE, "d w w", kLayout<tagPOINTS>.fields, offsetof(tagWMRPOLYLINE, NumberOfPoints),
       offsetof(tagWMRPOLYLINE, aPoints));
LAYOUT(tagWMRPOLYPOLYLINE, "d w w", "w", offsetof(tagWMRPOLYPOLYLINE, NumberOfPolygons),
       offsetof(tagWMRPOLYPOLYLINE, aPointsPerPolygon), kLayout<tagPOINTS>.fields);

#undef LAYOUT
#undef LOGFONTW_FIELDS
#undef EXTLOGFONTW_FIELDS
#undef LOGPEN16_FIELDS
#undef LOGBRUSH16_FIELDS
#undef FONTSPEC_FIELDS

}  // namespace byteorder

#endif
