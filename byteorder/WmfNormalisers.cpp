#define TRACE_FILE "BEndTools"
#include "byteorder/WmfNormalisers.h"

#include <cstring>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"

namespace {
// Reads a little-endian 16-bit field at `offset` of the record bytes.
int16_t Read16(const unsigned char* src, unsigned int offset) {
    uint16_t v;
    std::memcpy(&v, src + offset, 2);
    return (int16_t)LE2BE_Word(v);
}
}  // namespace

int InitWMRSETVIEWPORTORGEX(tagWMRSETVIEWPORTORGEX* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(&dst->wmr, src);
    dst->y = Read16(src, 6);
    dst->x = Read16(src, 8);
    TRACE_RETURN(1);
}
