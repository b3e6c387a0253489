// EMF bit-block records: their bitmaps become image elements, a PATCOPY blit a rectangle.
//
// The whole bitmap is drawn into the destination rectangle: source offsets and sizes, the
// source transform, the background colour and the masks of EMR_MASKBLT are not used. A record
// whose bitmap header lies outside it, or that gives 0 for the offset of its header or bits,
// draws nothing.
#define TRACE_FILE "Emf2SVG"
#include <climits>

#include "api/Trace.h"
#include "byteorder/EmfNormalisers.h"
#include "emf/Emf2SVG.h"
#include "svg/DibDecoder.h"

namespace {

const uint32_t kPatCopy = 0x00F00021;

// Bytes after each row of packed pixels of a 4-bit EMR_STRETCHDIBITS bitmap:
// (cbBits - width * height / 2) / height in wrapping 32-bit arithmetic; 0 for other bit counts
// and for a height of 0.
int FourBitPadding(const tagBITMAPINFOHEADER& h, uint32_t cbBits) {
    if (h.biBitCount != 4 || h.biHeight == 0) return 0;
    const int32_t area = (int32_t)((uint32_t)h.biWidth * (uint32_t)h.biHeight);
    const int32_t left = (int32_t)(cbBits - (uint32_t)(area / 2));
    return (int32_t)(uint32_t)((int64_t)left / h.biHeight);
}

}  // namespace

Emf2SvgConverter::BitmapPlacement Emf2SvgConverter::Placement(const tagEMRBITBLT& b, int op) {
    return BitmapPlacement{
        b.xDest, b.yDest, b.cxDest, b.cyDest, b.offBmiSrc, b.offBitsSrc, op, /*stretchDib=*/false,
        0};
}

void Emf2SvgConverter::DrawBitmap(const unsigned char* record, unsigned int size,
                                  const BitmapPlacement& at) {
    dib::DibSource bitmap;
    if (!dib::LocateBitmap(record, size, at.offBmi, at.offBits, bitmap)) return;
    const int pad = at.stretchDib ? FourBitPadding(bitmap.header, at.cbBits) : 0;
    const QByteArray text = m_writer.OnRasterOperation(bitmap, at.op, pad);
    if (text.isEmpty()) return;
    m_writer.WriteBlt(MapX(at.x, 1), MapY(at.y, 1), MapX(at.cx, 0), MapY(at.cy, 0), text);
}

int Emf2SvgConverter::OnBitBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRBITBLT r = FixedCopy<tagEMRBITBLT>(record);
    InitEMRBITBLT(r);
    if (r.dwRop == kPatCopy)
        m_writer.PatBlt(MapX(r.xDest, 1), MapY(r.yDest, 1), MapX(r.cxDest, 0), MapY(r.cyDest, 0));
    else
        DrawBitmap(record, size, Placement(r, -1));
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnStretchBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRSTRETCHBLT r = FixedCopy<tagEMRSTRETCHBLT>(record);
    InitEMRSTRETCHBLT(r);
    DrawBitmap(record, size, Placement(r.blt, -1));
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnMaskBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRMASKBLT r = FixedCopy<tagEMRMASKBLT>(record);
    InitEMRMASKBLT(r);
    DrawBitmap(record, size, Placement(r.blt, -1));
    TRACE_RETURN(1);
}

// The transparent colour stands where the other blits keep their raster operation.
int Emf2SvgConverter::OnTransparentBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRTRANSPARENTBLT r = FixedCopy<tagEMRTRANSPARENTBLT>(record);
    InitEMRTRANSPARENTBLT(r);
    DrawBitmap(record, size, Placement(r.blt, (int)r.blt.dwRop));
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnStretchDIB(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMRSTRETCHDIBITS r = FixedCopy<tagEMRSTRETCHDIBITS>(record);
    InitEMRSTRETCHDIBITS(r);
    DrawBitmap(record, size,
               BitmapPlacement{r.xDest, r.yDest, r.cxDest, r.cyDest, r.offBmiSrc, r.offBitsSrc,
                               (int)r.dwRop, /*stretchDib=*/true, r.cbBitsSrc});
    TRACE_RETURN(1);
}

// Parallelogram blits are accepted and not drawn.
int Emf2SvgConverter::OnPlgBlt(unsigned char*, unsigned int) {
    return 1;
}
