// Byte-order normalisers of the WMF records (copying form; see BEndTools.h for the contract).
//
// `src` is a handler's record copy, zero-filled up to the fixed fields its handler reads, so
// the fixed fields of a short record read as zero. Normalisers of records with trailing arrays
// also take the record's real size and convert only the elements that lie inside it; their
// `dst` must be a buffer of at least that size plus the padding (a records::ScratchCopy).
#ifndef SVGMODULE_WMFNORMALISERS_H
#define SVGMODULE_WMFNORMALISERS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "MetafileStructs.h"

// Embedded structures; `src` points at the structure itself.
int InitWMRPOINTS(tagPOINTS* dst, const unsigned char* src);
int InitLOGPEN16(tagLOGPEN16* dst, const unsigned char* src);
int InitLOGBRUSH16(tagLOGBRUSH16* dst, const unsigned char* src);
int InitFONTSPEC(FONTSPEC* dst, const unsigned char* src);

// Fixed-layout records; `src` points at the record's size field.
int InitWMRSETVIEWPORTORGEX(tagWMRSETVIEWPORTORGEX* dst, const unsigned char* src);
int InitWMRCREATEPEN(tagWMRCREATEPEN* dst, const unsigned char* src);
int InitWMRCREATEBRUSHINDIRECT(tagWMRCREATEBRUSHINDIRECT* dst, const unsigned char* src);
int InitWMREXTCREATEFONTINDIRECT(tagWMREXTCREATEFONTINDIRECT* dst, const unsigned char* src);
int InitWMRSELECTOBJECT(tagWMRSELECTOBJECT* dst, const unsigned char* src);
int InitWMRSETBKMODE(tagWMRSETBKMODE* dst, const unsigned char* src);
int InitWMRLINETO(tagWMRLINETO* dst, const unsigned char* src);
int InitWMRELLIPSE(tagWMRELLIPSE* dst, const unsigned char* src);
int InitWMRPATBLT(tagWMRPATBLT* dst, const unsigned char* src);
int InitWMRBITBLT(tagWMRBITBLT* dst, const unsigned char* src);
int InitWMRDIBSTRETCHBLT(tagWMRDIBSTRETCHBLT* dst, const unsigned char* src);
int InitWMRSTRETCHBLT(tagWMRSTRETCHBLT* dst, const unsigned char* src);
int InitWMREXTTEXTOUT(tagWMREXTTEXTOUT* dst, const unsigned char* src);

// Records with trailing arrays, `size` bytes long.
int InitWMRPOLYLINE(tagWMRPOLYLINE* dst, const unsigned char* src, unsigned int size);
int InitWMRPOLYPOLYLINE(tagWMRPOLYPOLYLINE* dst, const unsigned char* src, unsigned int size);

// Byte offset of the first point of META_POLYLINE and META_POLYGON.
constexpr size_t kWmfPolyLinePointsOffset = 8;
// Byte offset of the point counts of META_POLYPOLYGON.
constexpr size_t kWmfPolyPolygonCountsOffset = 8;

// The points of a host-order META_POLYLINE or META_POLYGON of `size` bytes that lie inside
// the record: NumberOfPoints, or fewer when the record ends first.
uint32_t WmfPolyLinePoints(const tagWMRPOLYLINE& record, unsigned int size);

// Where the parts of a host-order META_POLYPOLYGON of `size` bytes lie.
struct WmfPolyPolygonLayout {
    uint32_t counts;      // point counts inside the record (at most NumberOfPolygons)
    size_t pointsOffset;  // byte offset of the first point, after all NumberOfPolygons counts
    uint32_t points;      // points inside the record, at most the sum of the counts read
};
WmfPolyPolygonLayout GetWmfPolyPolygonLayout(const unsigned char* record, unsigned int size);

// Reads a fixed-layout record in host order: the normaliser converts it on a big-endian
// host, otherwise the bytes are taken as they are. `record` must hold sizeof(T) bytes, which
// a record copy does when its handler's table entry names at least that size.
template <class T>
T ReadWmfRecord(const unsigned char* record, int (*normalise)(T*, const unsigned char*)) {
    T r;
    if (!normalise(&r, record)) std::memcpy(&r, record, sizeof r);
    return r;
}

#endif
