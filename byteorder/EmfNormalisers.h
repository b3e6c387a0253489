// Byte-order normalisers of the EMF records (see BEndTools.h for the two forms, and Layouts.h
// for the fields each converts).
//
// Normalisers of records with trailing arrays take the record's size in bytes and convert only
// the elements that lie inside the record, whatever count the record declares.
#ifndef SVGMODULE_EMFNORMALISERS_H
#define SVGMODULE_EMFNORMALISERS_H

#include "MetafileStructs.h"
#include "byteorder/BEndTools.h"

// Mapping state.
inline constexpr auto& InitEMRMAPMODE = byteorder::InPlace<tagEMRSETMAPMODE>;
inline constexpr auto& InitEMRORIGIN = byteorder::InPlace<tagEMRSETVIEWPORTORGEX>;
inline constexpr auto& InitEMREXT = byteorder::InPlace<tagEMRSETVIEWPORTEXTEX>;
inline constexpr auto& InitEMRSETWORLDTRANSFORM = byteorder::InPlace<tagEMRSETWORLDTRANSFORM>;
inline constexpr auto& InitEMRMODIFYWORLDTRANSFORM = byteorder::InPlace<tagEMRMODIFYWORLDTRANSFORM>;

// Objects embedded in records.
inline constexpr auto& InitEMRLOGPEN = byteorder::InPlace<tagLOGPEN>;
inline constexpr auto& InitEXTLOGPEN = byteorder::InPlace<tagEXTLOGPEN>;
inline constexpr auto& InitLOGBRUSH = byteorder::InPlace<tagLOGBRUSH>;
inline constexpr auto& InitLOGFONTW = byteorder::InPlace<tagLOGFONTW>;
inline constexpr auto& InitEXTLOGFONTW = byteorder::InPlace<tagEXTLOGFONTW>;

// Object and state records (in place).
inline constexpr auto& InitEMRCREATEPEN = byteorder::InPlace<tagEMRCREATEPEN>;
inline constexpr auto& InitEMREXTCREATEPEN = byteorder::InPlaceArray<tagEMREXTCREATEPEN>;
inline constexpr auto& InitEMRCREATEBRUSHINDIRECT = byteorder::InPlace<tagEMRCREATEBRUSHINDIRECT>;
inline constexpr auto& InitEMREXTCREATEFONTINDIRECTW =
    byteorder::InPlace<tagEMREXTCREATEFONTINDIRECTW>;
inline constexpr auto& InitEMRSELECTOBJECT = byteorder::InPlace<tagEMRSELECTOBJECT>;
inline constexpr auto& InitEMRDELETEOBJECT = byteorder::InPlace<tagEMRDELETEOBJECT>;
inline constexpr auto& InitEMRSETBKMODE = byteorder::InPlace<tagEMRSETBKMODE>;
inline constexpr auto& InitEMRCOLOR = byteorder::InPlace<tagEMRSETTEXTCOLOR>;
inline constexpr auto& InitEMRSETTEXTALIGN = byteorder::InPlace<tagEMRSETTEXTALIGN>;

// Shape, arc and text records (in place, but for the copying InitEMRANGLEARC, whose `dst`
// receives the 28 bytes of the record in host order).
inline constexpr auto& InitEMRRECTANGLE = byteorder::InPlace<tagEMRRECTANGLE>;
inline constexpr auto& InitEMRELLIPSE = byteorder::InPlace<tagEMRELLIPSE>;
inline constexpr auto& InitEMRROUNDRECT = byteorder::InPlace<tagEMRROUNDRECT>;
inline constexpr auto& InitEMRARC = byteorder::InPlace<tagEMRARC>;
inline constexpr auto& InitEMRANGLEARC = byteorder::Copy<tagEMRANGLEARC>;
inline constexpr auto& InitEMRTEXT = byteorder::InPlace<tagEMRTEXT>;
inline constexpr auto& InitEMREXTTEXTOUTA = byteorder::InPlace<tagEMREXTTEXTOUTA>;
inline constexpr auto& InitEMRSMALLTEXTOUT = byteorder::InPlace<tagEMRSMALLTEXTOUT>;

// Line, polygon and Bézier records (in place).
inline constexpr auto& InitEMRMOVETO = byteorder::InPlace<tagEMRMOVETOEX>;
inline constexpr auto& InitLINETO = byteorder::InPlace<tagEMRLINETO>;
inline constexpr auto& InitEMRPOLYGON = byteorder::InPlaceArray<tagEMRPOLYGON>;
inline constexpr auto& InitEMRPOLYGON16 = byteorder::InPlaceArray<tagEMRPOLYGON16>;
inline constexpr auto& InitEMRPOLYDRAW16 = byteorder::InPlaceArray<tagEMRPOLYDRAW16>;

// Region and clip records (in place): the fixed fields and the region header; the handlers
// convert each rectangle with InitRECT.
inline constexpr auto& InitEMRFILLRGN = byteorder::InPlace<tagEMRFILLRGN>;
inline constexpr auto& InitEMRFRAMERGN = byteorder::InPlace<tagEMRFRAMERGN>;
inline constexpr auto& InitEMREXTSELECTCLIPRGN = byteorder::InPlace<tagEMREXTSELECTCLIPRGN>;
inline constexpr auto& Init_RGNDATAHEADER = byteorder::InPlace<_RGNDATAHEADER>;
inline constexpr auto& Init_RGNDATA = byteorder::InPlace<_RGNDATA>;

// Poly-polygon and poly-polyline records (copying form): `dst` is a record buffer of `size`
// bytes followed by records::kRecordPadding bytes; on a big-endian host it receives the whole
// record with its fields in host order.
inline constexpr auto& InitEMRPOLYPOLYGON = byteorder::CopyArray<tagEMRPOLYPOLYGON>;
inline constexpr auto& InitEMRPOLYPOLYGON16 = byteorder::CopyArray<tagEMRPOLYPOLYGON16>;

// Bitmap records (in place). The bitmap header is converted on its own; its colour table and
// pixel bits are bytes (16-bit pixels are converted as they are decoded).
inline constexpr auto& InitBITMAPINFO = byteorder::InPlace<tagBITMAPINFOHEADER>;
inline constexpr auto& InitEMRBITBLT = byteorder::InPlace<tagEMRBITBLT>;
inline constexpr auto& InitEMRSTRETCHBLT = byteorder::InPlace<tagEMRSTRETCHBLT>;
inline constexpr auto& InitEMRTRANSPARENTBLT = byteorder::InPlace<tagEMRTRANSPARENTBLT>;
inline constexpr auto& InitEMRMASKBLT = byteorder::InPlace<tagEMRMASKBLT>;
inline constexpr auto& InitEMRSTRETCHDIBITS = byteorder::InPlace<tagEMRSTRETCHDIBITS>;

#endif
