#define TRACE_FILE "BEndTools"
#include "byteorder/EmfNormalisers.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "byteorder/RecordReader.h"

using byteorder::Swap;
using byteorder::SwapAll;
using byteorder::SwapWideString;

namespace {

const unsigned int kFaceNameUnits = 32;
const unsigned int kFullNameUnits = 64;
const unsigned int kStyleNameUnits = 32;

// Applies `convert` to the elements of a trailing array of `declared` elements starting
// `offset` bytes into the record, as far as the record's `size` bytes hold them.
template <class T, class F>
void ConvertArray(void* record, unsigned int size, uint64_t offset, uint64_t declared, F convert) {
    if (offset >= size) return;
    T* items = reinterpret_cast<T*>(static_cast<unsigned char*>(record) + offset);
    const uint32_t n = records::FitCount(declared, (size_t)offset, sizeof(T), size);
    for (uint32_t i = 0; i < n; ++i) convert(items[i]);
}

// Converts the polygon counts of a poly-list record that lie inside it, then the points: as
// many as the record declares or the counts address, whichever is more, as far as the record
// holds them. The handlers never read a point beyond those.
template <class Point>
void ConvertPolyLists(unsigned char* record, unsigned int size, uint32_t polys,
                      uint32_t declaredPoints, int (*convertPoint)(Point&)) {
    uint32_t* counts = reinterpret_cast<uint32_t*>(record + EMR_POLYPOLY_COUNTS_OFFSET);
    const uint32_t fit = records::FitCount(polys, EMR_POLYPOLY_COUNTS_OFFSET, 4, size);
    uint64_t addressed = 0;
    for (uint32_t i = 0; i < fit; ++i) {
        Swap(counts[i]);
        addressed += counts[i];
    }
    const uint64_t pointsOffset = EMR_POLYPOLY_COUNTS_OFFSET + 4ull * polys;
    ConvertArray<Point>(record, size, pointsOffset, std::max<uint64_t>(declaredPoints, addressed),
                        convertPoint);
}

}  // namespace

int InitEMRMAPMODE(tagEMRSETMAPMODE& r) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(r.iMode);
    TRACE_RETURN(1);
}

int InitEMRORIGIN(tagEMRSETVIEWPORTORGEX& r) {
    TRACE_ENTER();
    if (IsBigEndian()) InitPOINTL(r.ptlOrigin);
    TRACE_RETURN(1);
}

int InitEMREXT(tagEMRSETVIEWPORTEXTEX& r) {
    TRACE_ENTER();
    if (IsBigEndian()) InitSIZEL(r.szlExtent);
    TRACE_RETURN(1);
}

int InitEMRSETWORLDTRANSFORM(tagEMRSETWORLDTRANSFORM& r) {
    TRACE_ENTER();
    if (IsBigEndian()) InitXFORM(r.xform);
    TRACE_RETURN(1);
}

int InitEMRMODIFYWORLDTRANSFORM(tagEMRMODIFYWORLDTRANSFORM& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitXFORM(r.xform);
        SwapAll(r.iMode);
    }
    TRACE_RETURN(1);
}

// --- objects embedded in records ---------------------------------------------------------

int InitEMRLOGPEN(tagLOGPEN& p) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        SwapAll(p.lopnStyle, p.lopnColor);
        InitPOINT(p.lopnWidth);
    }
    TRACE_RETURN(1);
}

int InitEXTLOGPEN(tagEXTLOGPEN& p) {
    TRACE_ENTER();
    if (IsBigEndian())
        SwapAll(p.elpPenStyle, p.elpWidth, p.elpBrushStyle, p.elpColor, p.elpHatch,
                p.elpNumEntries);
    TRACE_RETURN(1);
}

int InitLOGBRUSH(tagLOGBRUSH& b) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(b.lbStyle, b.lbColor, b.lbHatch);
    TRACE_RETURN(1);
}

int InitLOGFONTW(tagLOGFONTW& f) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        SwapAll(f.lfHeight, f.lfWidth, f.lfEscapement, f.lfOrientation, f.lfWeight);
        SwapWideString(f.lfFaceName, kFaceNameUnits);
    }
    TRACE_RETURN(1);
}

int InitEXTLOGFONTW(tagEXTLOGFONTW& f) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitLOGFONTW(f.elfLogFont);
        SwapWideString(f.elfFullName, kFullNameUnits);
        SwapWideString(f.elfStyle, kStyleNameUnits);
        SwapAll(f.elfVersion, f.elfStyleSize, f.elfMatch, f.elfReserved, f.elfCulture);
    }
    TRACE_RETURN(1);
}

// --- object and state records ------------------------------------------------------------

int InitEMRCREATEPEN(tagEMRCREATEPEN& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        Swap(r.ihPen);
        InitEMRLOGPEN(r.lopn);
    }
    TRACE_RETURN(1);
}

int InitEMREXTCREATEPEN(tagEMREXTCREATEPEN& r, unsigned int size) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        SwapAll(r.ihPen, r.offBmi, r.cbBmi, r.offBits, r.cbBits);
        InitEXTLOGPEN(r.elp);
        ConvertArray<uint32_t>(&r, size, EMR_EXTCREATEPEN_ENTRIES_OFFSET, r.elp.elpNumEntries,
                               [](uint32_t& v) { Swap(v); });
    }
    TRACE_RETURN(1);
}

int InitEMRCREATEBRUSHINDIRECT(tagEMRCREATEBRUSHINDIRECT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        Swap(r.ihBrush);
        InitLOGBRUSH(r.lb);
    }
    TRACE_RETURN(1);
}

int InitEMREXTCREATEFONTINDIRECTW(tagEMREXTCREATEFONTINDIRECTW& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitEMR(r.emr);
        Swap(r.ihFont);
        InitEXTLOGFONTW(r.elfw);
    }
    TRACE_RETURN(1);
}

int InitEMRSELECTOBJECT(tagEMRSELECTOBJECT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) Swap(r.ihObject);
    TRACE_RETURN(1);
}

int InitEMRDELETEOBJECT(tagEMRDELETEOBJECT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) Swap(r.ihObject);
    TRACE_RETURN(1);
}

int InitEMRSETBKMODE(tagEMRSETBKMODE& r) {
    if (IsBigEndian()) Swap(r.iMode);
    return 1;
}

int InitEMRCOLOR(tagEMRSETTEXTCOLOR& r) {
    TRACE_ENTER();
    if (IsBigEndian()) Swap(r.crColor);
    TRACE_RETURN(1);
}

int InitEMRSETTEXTALIGN(tagEMRSETTEXTALIGN& r) {
    TRACE_ENTER();
    if (IsBigEndian()) Swap(r.iMode);
    TRACE_RETURN(1);
}

// --- shape, arc and text records --------------------------------------------------------

int InitEMRRECTANGLE(tagEMRRECTANGLE& r) {
    TRACE_ENTER();
    if (IsBigEndian()) InitRECTL(r.rclBox);
    TRACE_RETURN(1);
}

int InitEMRELLIPSE(tagEMRELLIPSE& r) {
    TRACE_ENTER();
    if (IsBigEndian()) InitRECTL(r.rclBox);
    TRACE_RETURN(1);
}

int InitEMRROUNDRECT(tagEMRROUNDRECT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBox);
        InitSIZEL(r.szlCorner);
    }
    TRACE_RETURN(1);
}

int InitEMRARC(tagEMRARC& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBox);
        InitPOINTL(r.ptlStart);
        InitPOINTL(r.ptlEnd);
    }
    TRACE_RETURN(1);
}

int InitEMRANGLEARC(tagEMRANGLEARC* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    std::memcpy(dst, src, sizeof *dst);
    InitPOINTL(dst->ptlCenter);
    SwapAll(dst->nRadius, dst->eStartAngle, dst->eSweepAngle);
    TRACE_RETURN(1);
}

int InitEMRTEXT(tagEMRTEXT& t) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitPOINTL(t.ptlReference);
        SwapAll(t.nChars, t.offString, t.fOptions, t.offDx);
        InitRECTL(t.rcl);
    }
    TRACE_RETURN(1);
}

int InitEMREXTTEXTOUTA(tagEMREXTTEXTOUTA& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBounds);
        SwapAll(r.iGraphicsMode, r.exScale, r.eyScale);
        InitEMRTEXT(r.emrtext);
    }
    TRACE_RETURN(1);
}

int InitEMRSMALLTEXTOUT(tagEMRSMALLTEXTOUT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitPOINTL(r.ptlReference);
        SwapAll(r.cChars, r.fuOptions, r.iGraphicsMode, r.exScale, r.eyScale);
    }
    TRACE_RETURN(1);
}

// --- line, polygon and Bézier records ----------------------------------------------------

int InitEMRMOVETO(tagEMRMOVETOEX& r) {
    TRACE_ENTER();
    if (IsBigEndian()) InitPOINTL(r.ptl);
    TRACE_RETURN(1);
}

int InitLINETO(tagEMRLINETO& r) {
    TRACE_ENTER();
    if (IsBigEndian()) InitPOINTL(r.ptl);
    TRACE_RETURN(1);
}

int InitEMRPOLYGON(tagEMRPOLYGON& r, unsigned int size) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBounds);
        Swap(r.cptl);
        ConvertArray<tagPOINT>(&r, size, EMR_POLY_POINTS_OFFSET, r.cptl, InitPOINTL);
    }
    TRACE_RETURN(1);
}

int InitEMRPOLYGON16(tagEMRPOLYGON16& r, unsigned int size) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBounds);
        Swap(r.cpts);
        ConvertArray<tagPOINTS>(&r, size, EMR_POLY_POINTS_OFFSET, r.cpts, InitPOINTS);
    }
    TRACE_RETURN(1);
}

int InitEMRPOLYDRAW16(tagEMRPOLYDRAW16& r, unsigned int size) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBounds);
        Swap(r.cpts);
        // The point types that follow the points are single bytes.
        ConvertArray<tagPOINTS>(&r, size, EMR_POLY_POINTS_OFFSET, r.cpts, InitPOINTS);
    }
    TRACE_RETURN(1);
}

int InitEMRPOLYPOLYGON(tagEMRPOLYPOLYGON* dst, const unsigned char* src, unsigned int size) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    std::memcpy(dst, src, size);
    InitRECTL(dst->rclBounds);
    SwapAll(dst->nPolys, dst->cptl);
    ConvertPolyLists<tagPOINT>(reinterpret_cast<unsigned char*>(dst), size, dst->nPolys, dst->cptl,
                               InitPOINTL);
    TRACE_RETURN(1);
}

int InitEMRPOLYPOLYGON16(tagEMRPOLYPOLYGON16* dst, const unsigned char* src, unsigned int size) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    std::memcpy(dst, src, size);
    InitRECTL(dst->rclBounds);
    SwapAll(dst->nPolys, dst->cpts);
    ConvertPolyLists<tagPOINTS>(reinterpret_cast<unsigned char*>(dst), size, dst->nPolys, dst->cpts,
                                InitPOINTS);
    TRACE_RETURN(1);
}

// --- bitmap records ----------------------------------------------------------------------

namespace {
// The fields after the record header that the bit-block records share with EMR_BITBLT.
void ConvertBltFields(tagEMRBITBLT& r) {
    InitRECTL(r.rclBounds);
    SwapAll(r.xDest, r.yDest, r.cxDest, r.cyDest, r.dwRop, r.xSrc, r.ySrc);
    InitXFORM(r.xformSrc);
    SwapAll(r.crBkColorSrc, r.iUsageSrc, r.offBmiSrc, r.cbBmiSrc, r.offBitsSrc, r.cbBitsSrc);
}
}  // namespace

int InitBITMAPINFO(tagBITMAPINFOHEADER& h) {
    TRACE_ENTER();
    if (IsBigEndian())
        SwapAll(h.biSize, h.biWidth, h.biHeight, h.biPlanes, h.biBitCount, h.biCompression,
                h.biSizeImage, h.biXPelsPerMeter, h.biYPelsPerMeter, h.biClrUsed, h.biClrImportant);
    TRACE_RETURN(1);
}

int InitEMRBITBLT(tagEMRBITBLT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitEMR(r.emr);
        ConvertBltFields(r);
    }
    TRACE_RETURN(1);
}

int InitEMRSTRETCHBLT(tagEMRSTRETCHBLT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        ConvertBltFields(r.blt);
        SwapAll(r.cxSrc, r.cySrc);
    }
    TRACE_RETURN(1);
}

int InitEMRTRANSPARENTBLT(tagEMRTRANSPARENTBLT& r) {
    TRACE_ENTER();
    InitEMRSTRETCHBLT(r);
    TRACE_RETURN(1);
}

int InitEMRMASKBLT(tagEMRMASKBLT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        ConvertBltFields(r.blt);
        SwapAll(r.xMask, r.yMask, r.iUsageMask, r.offBmiMask, r.cbBmiMask, r.offBitsMask,
                r.cbBitsMask);
    }
    TRACE_RETURN(1);
}

int InitEMRSTRETCHDIBITS(tagEMRSTRETCHDIBITS& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitEMR(r.emr);
        InitRECTL(r.rclBounds);
        SwapAll(r.xDest, r.yDest, r.xSrc, r.ySrc, r.cxSrc, r.cySrc, r.offBmiSrc, r.cbBmiSrc,
                r.offBitsSrc, r.cbBitsSrc, r.iUsageSrc, r.dwRop, r.cxDest, r.cyDest);
    }
    TRACE_RETURN(1);
}
