// Byte-order normalisers of the EMF region and clip records.
#define TRACE_FILE "BEndTools"
#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "byteorder/EmfNormalisers.h"

using byteorder::SwapAll;

int InitEMRFILLRGN(tagEMRFILLRGN& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBounds);
        SwapAll(r.cbRgnData, r.ihBrush);
    }
    TRACE_RETURN(1);
}

int InitEMRFRAMERGN(tagEMRFRAMERGN& r) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        InitRECTL(r.rclBounds);
        SwapAll(r.cbRgnData, r.ihBrush);
        InitSIZEL(r.szlStroke);
    }
    TRACE_RETURN(1);
}

int InitEMREXTSELECTCLIPRGN(tagEMREXTSELECTCLIPRGN& r) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(r.cbRgnData, r.iMode);
    TRACE_RETURN(1);
}

int Init_RGNDATAHEADER(_RGNDATAHEADER& h) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        SwapAll(h.dwSize, h.iType, h.nCount, h.nRgnSize);
        InitRECT(h.rcBound);
    }
    TRACE_RETURN(1);
}

int Init_RGNDATA(_RGNDATA& d) {
    TRACE_ENTER();
    Init_RGNDATAHEADER(d.rdh);
    TRACE_RETURN(1);
}
