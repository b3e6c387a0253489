// Byte-order normalisers of the WMF records (copying form; see BEndTools.h for the contract).
//
// `src` is a handler's record copy, zero-filled up to the fixed fields its handler reads, so
// the fixed fields of a short record read as zero. Normalisers of records with trailing arrays
// also take the record's real size, copy that many bytes and convert only the elements that
// lie inside it; their `dst` must be a buffer of at least that size plus the padding (a
// records::ScratchCopy).
#ifndef SVGMODULE_WMFNORMALISERS_H
#define SVGMODULE_WMFNORMALISERS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "MetafileStructs.h"
#include "byteorder/BEndTools.h"

// Embedded structures; `src` points at the structure itself.
inline constexpr auto& InitWMRPOINTS = byteorder::Copy<tagPOINTS>;
inline constexpr auto& InitLOGPEN16 = byteorder::Copy<tagLOGPEN16>;
inline constexpr auto& InitLOGBRUSH16 = byteorder::Copy<tagLOGBRUSH16>;
inline constexpr auto& InitFONTSPEC = byteorder::Copy<FONTSPEC>;

// Fixed-layout records; `src` points at the record's size field.
inline constexpr auto& InitWMRSETVIEWPORTORGEX = byteorder::Copy<tagWMRSETVIEWPORTORGEX>;
inline constexpr auto& InitWMRCREATEPEN = byteorder::Copy<tagWMRCREATEPEN>;
inline constexpr auto& InitWMRCREATEBRUSHINDIRECT = byteorder::Copy<tagWMRCREATEBRUSHINDIRECT>;
inline constexpr auto& InitWMREXTCREATEFONTINDIRECT = byteorder::Copy<tagWMREXTCREATEFONTINDIRECT>;
inline constexpr auto& InitWMRSELECTOBJECT = byteorder::Copy<tagWMRSELECTOBJECT>;
inline constexpr auto& InitWMRSETBKMODE = byteorder::Copy<tagWMRSETBKMODE>;
inline constexpr auto& InitWMRLINETO = byteorder::Copy<tagWMRLINETO>;
inline constexpr auto& InitWMRELLIPSE = byteorder::Copy<tagWMRELLIPSE>;
inline constexpr auto& InitWMRPATBLT = byteorder::Copy<tagWMRPATBLT>;
inline constexpr auto& InitWMRBITBLT = byteorder::Copy<tagWMRBITBLT>;
inline constexpr auto& InitWMRDIBSTRETCHBLT = byteorder::Copy<tagWMRDIBSTRETCHBLT>;
inline constexpr auto& InitWMRSTRETCHBLT = byteorder::Copy<tagWMRSTRETCHBLT>;
inline constexpr auto& InitWMREXTTEXTOUT = byteorder::Copy<tagWMREXTTEXTOUT>;

// Records with trailing arrays, `size` bytes long.
inline constexpr auto& InitWMRPOLYLINE = byteorder::CopyArray<tagWMRPOLYLINE>;
inline constexpr auto& InitWMRPOLYPOLYLINE = byteorder::CopyArray<tagWMRPOLYPOLYLINE>;

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
