// Byte-order normalisers of the EMF records (see BEndTools.h for the two forms).
//
// Normalisers of records with trailing arrays take the record's size in bytes and convert only
// the elements that lie inside the record, whatever count the record declares.
#ifndef SVGMODULE_EMFNORMALISERS_H
#define SVGMODULE_EMFNORMALISERS_H

#include "MetafileStructs.h"

// Mapping state.
int InitEMRMAPMODE(tagEMRSETMAPMODE& r);
int InitEMRORIGIN(tagEMRSETVIEWPORTORGEX& r);
int InitEMREXT(tagEMRSETVIEWPORTEXTEX& r);
int InitEMRSETWORLDTRANSFORM(tagEMRSETWORLDTRANSFORM& r);
int InitEMRMODIFYWORLDTRANSFORM(tagEMRMODIFYWORLDTRANSFORM& r);

// Objects embedded in records.
int InitEMRLOGPEN(tagLOGPEN& p);
int InitEXTLOGPEN(tagEXTLOGPEN& p);
int InitLOGBRUSH(tagLOGBRUSH& b);
int InitLOGFONTW(tagLOGFONTW& f);
int InitEXTLOGFONTW(tagEXTLOGFONTW& f);

// Object and state records (in place).
int InitEMRCREATEPEN(tagEMRCREATEPEN& r);
int InitEMREXTCREATEPEN(tagEMREXTCREATEPEN& r, unsigned int size);
int InitEMRCREATEBRUSHINDIRECT(tagEMRCREATEBRUSHINDIRECT& r);
int InitEMREXTCREATEFONTINDIRECTW(tagEMREXTCREATEFONTINDIRECTW& r);
int InitEMRSELECTOBJECT(tagEMRSELECTOBJECT& r);
int InitEMRDELETEOBJECT(tagEMRDELETEOBJECT& r);
int InitEMRSETBKMODE(tagEMRSETBKMODE& r);
int InitEMRCOLOR(tagEMRSETTEXTCOLOR& r);
int InitEMRSETTEXTALIGN(tagEMRSETTEXTALIGN& r);

// Shape, arc and text records (in place, but for the copying InitEMRANGLEARC, whose `dst`
// receives the 28 bytes of the record in host order).
int InitEMRRECTANGLE(tagEMRRECTANGLE& r);
int InitEMRELLIPSE(tagEMRELLIPSE& r);
int InitEMRROUNDRECT(tagEMRROUNDRECT& r);
int InitEMRARC(tagEMRARC& r);
int InitEMRANGLEARC(tagEMRANGLEARC* dst, const unsigned char* src);
int InitEMRTEXT(tagEMRTEXT& t);
int InitEMREXTTEXTOUTA(tagEMREXTTEXTOUTA& r);
int InitEMRSMALLTEXTOUT(tagEMRSMALLTEXTOUT& r);

// Line, polygon and Bézier records (in place).
int InitEMRMOVETO(tagEMRMOVETOEX& r);
int InitLINETO(tagEMRLINETO& r);
int InitEMRPOLYGON(tagEMRPOLYGON& r, unsigned int size);
int InitEMRPOLYGON16(tagEMRPOLYGON16& r, unsigned int size);
int InitEMRPOLYDRAW16(tagEMRPOLYDRAW16& r, unsigned int size);

// Region and clip records (in place): the fixed fields and the region header; the handlers
// convert each rectangle with InitRECT.
int InitEMRFILLRGN(tagEMRFILLRGN& r);
int InitEMRFRAMERGN(tagEMRFRAMERGN& r);
int InitEMREXTSELECTCLIPRGN(tagEMREXTSELECTCLIPRGN& r);
int Init_RGNDATAHEADER(_RGNDATAHEADER& h);
int Init_RGNDATA(_RGNDATA& d);

// Poly-polygon and poly-polyline records (copying form): `dst` is a record buffer of `size`
// bytes followed by records::kRecordPadding zero bytes; on a big-endian host it receives the
// whole record with its fields in host order.
int InitEMRPOLYPOLYGON(tagEMRPOLYPOLYGON* dst, const unsigned char* src, unsigned int size);
int InitEMRPOLYPOLYGON16(tagEMRPOLYPOLYGON16* dst, const unsigned char* src, unsigned int size);

// Bitmap records (in place). The bitmap header is converted on its own; its colour table and
// pixel bits are bytes (16-bit pixels are converted as they are decoded).
int InitBITMAPINFO(tagBITMAPINFOHEADER& h);
int InitEMRBITBLT(tagEMRBITBLT& r);
int InitEMRSTRETCHBLT(tagEMRSTRETCHBLT& r);
int InitEMRTRANSPARENTBLT(tagEMRTRANSPARENTBLT& r);
int InitEMRMASKBLT(tagEMRMASKBLT& r);
int InitEMRSTRETCHDIBITS(tagEMRSTRETCHDIBITS& r);

#endif
