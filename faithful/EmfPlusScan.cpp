// The walk that tells EMF+-only files (see EmfPlusScan.h).
#include "faithful/EmfPlusScan.h"

#include <cstring>

#include "MetafileStructs.h"
#include "byteorder/BEndTools.h"
#include "byteorder/RecordReader.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

const uint32_t kComment = 70;
const uint32_t kEmfPlus = 0x2B464D45;  // "EMF+" read as a little-endian 32-bit value
const uint16_t kEmfPlusHeader = 0x4001;
const uint16_t kDualFlag = 0x0001;

// The record types that put something on the device.
bool Draws(uint32_t type) {
    static const uint8_t kTypes[] = {2,  3,  4,  5,  6,  7,  8,  15,  41,  42,  43, 44,
                                     45, 46, 47, 54, 55, 56, 62, 63,  64,  71,  72, 73,
                                     74, 76, 77, 78, 79, 80, 81, 83,  84,  85,  86, 87,
                                     88, 89, 90, 91, 92, 96, 97, 108, 114, 116, 118};
    for (uint8_t t : kTypes)
        if (type == t) return true;
    return false;
}

}  // namespace

bool DrawnOnlyInEmfPlus(const unsigned char* data, uint64_t size) {
    tagENHMETAHEADER header;
    if (!data || size < sizeof header) return false;
    std::memcpy(&header, data, sizeof header);
    InitEnhMetaHeader(header);
    if (header.dSignature != ENHMETA_SIGNATURE || header.nBytes != size) return false;
    bool emfPlus = false, dual = false, draws = false;
    uint64_t pos = header.nSize;
    for (uint32_t count = 0; count < header.nRecords && records::Fits(pos, 8, size); ++count) {
        const uint32_t type = Field32(data + pos, 0), length = Field32(data + pos, 4);
        if (length < 8 || !records::Fits(pos, length, size) || type == emr::EOF_) break;
        draws = draws || Draws(type);
        if (type == kComment && length >= 16 && Field32(data + pos, 12) == kEmfPlus) {
            // The first EMF+ record of the file is its header, whose flags tell a dual file.
            if (!emfPlus && length >= 20 && (Field32(data + pos, 16) & 0xFFFF) == kEmfPlusHeader)
                dual = (Field32(data + pos, 16) >> 16) & kDualFlag;
            emfPlus = true;
        }
        pos += length;
    }
    return emfPlus && (!dual || !draws);
}

}  // namespace faithful
