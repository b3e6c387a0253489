#define TRACE_FILE "BEndTools"
#include "byteorder/EmfNormalisers.h"

#include "api/Trace.h"
#include "byteorder/BEndTools.h"

using byteorder::SwapAll;

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
