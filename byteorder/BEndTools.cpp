#define TRACE_FILE "BEndTools"
#include "byteorder/BEndTools.h"

#include <algorithm>

#include "api/Trace.h"
#include "byteorder/RecordReader.h"

namespace {
int g_orderOverride = -1;  // -1 probe the host, 0 little-endian, 1 big-endian
}

void SetByteOrderOverride(bool enabled, bool bigEndian) {
    g_orderOverride = enabled ? (bigEndian ? 1 : 0) : -1;
}

bool IsBigEndian() {
    TRACE_ENTER();
    if (g_orderOverride >= 0) TRACE_RETURN(g_orderOverride == 1);
    const unsigned short probe = 0xAABB;
    unsigned char first;
    std::memcpy(&first, &probe, 1);
    TRACE_RETURN(first == 0xAA);
}

unsigned short LE2BE_Word(unsigned short v) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    TRACE_RETURN((unsigned short)(((v & 0xFF) << 8) | ((v & 0xFF00) >> 8)));
}

unsigned int LE2BE_DWord(unsigned int v) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    const unsigned int low = LE2BE_Word((unsigned short)(v & 0xFFFF));
    const unsigned int high = LE2BE_Word((unsigned short)(v >> 16));
    TRACE_RETURN((low << 16) | high);
}

unsigned short Call_LE2BE_Word(unsigned short v) {
    return LE2BE_Word(v);
}

unsigned int Call_LE2BE_DWord(unsigned int v) {
    return LE2BE_DWord(v);
}

float GetFloatFromBLOB(const unsigned char* p) {
    TRACE_ENTER();
    const uint32_t bits =
        (uint32_t)p[0] | ((uint32_t)p[1] << 8) | ((uint32_t)p[2] << 16) | ((uint32_t)p[3] << 24);
    float f;
    std::memcpy(&f, &bits, 4);
    TRACE_RETURN(f);
}

namespace byteorder {
void SwapWideString(WCHAR16* text, unsigned int capacity) {
    for (unsigned int i = 0; i < capacity; ++i) {
        text[i] = LE2BE_Word(text[i]);
        if (text[i] == 0) break;
    }
}
}  // namespace byteorder

namespace byteorder {
namespace {

// Calls visit(offset, width) for each field of a layout string, in order; returns their size.
template <class Visit>
size_t ForEachField(const char* fields, Visit visit) {
    size_t at = 0;
    for (const char* c = fields; *c != 0;) {
        const char letter = *c++;
        if (letter == ' ') continue;
        unsigned count = 0;
        while (*c >= '0' && *c <= '9') count = count * 10 + (unsigned)(*c++ - '0');
        const unsigned width = letter == 'b' ? 1 : letter == 'w' ? 2 : 4;  // d, f: 4
        for (unsigned i = 0; i < (count ? count : 1); ++i, at += width) visit(at, width);
    }
    return at;
}

void SwapFields(unsigned char* p, const char* fields) {
    ForEachField(fields, [p](size_t at, unsigned width) {
        if (width > 1) std::reverse(p + at, p + at + width);
    });
}

// The host-order value of the 16- or 32-bit field at `p`.
uint32_t ReadField(const unsigned char* p, unsigned width) {
    if (width == 2) {
        uint16_t v;
        std::memcpy(&v, p, 2);
        return v;
    }
    uint32_t v = 0;
    if (width == 4) std::memcpy(&v, p, 4);
    return v;
}

// Converts the elements of a trailing array, `declared` of them from byte `at`, that lie inside
// the record's `size` bytes. Returns the sum of their values when they are single fields.
uint64_t SwapArray(unsigned char* record, size_t size, uint64_t at, uint64_t declared,
                   const char* element) {
    if (at >= size) return 0;
    const size_t width = FieldsSize(element);
    const uint32_t n = records::FitCount(declared, (size_t)at, width, size);
    uint64_t sum = 0;
    for (uint32_t i = 0; i < n; ++i) {
        unsigned char* e = record + at + (size_t)i * width;
        SwapFields(e, element);
        if (width <= 4) sum += ReadField(e, (unsigned)width);
    }
    return sum;
}

}  // namespace

size_t FieldsSize(const char* fields) {
    return ForEachField(fields, [](size_t, unsigned) {});
}

unsigned FieldWidthAt(const char* fields, size_t offset) {
    unsigned found = 0;
    ForEachField(fields, [&](size_t at, unsigned width) {
        if (at == offset) found = width;
    });
    return found;
}

int Normalise(void* record, const Layout& layout, size_t size) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(1);
    auto* p = static_cast<unsigned char*>(record);
    SwapFields(p, layout.fields);
    if (layout.element) {
        const uint32_t count =
            ReadField(p + layout.countAt, FieldWidthAt(layout.fields, layout.countAt));
        const uint64_t listed = SwapArray(p, size, layout.arrayAt, count, layout.element);
        if (layout.point) {
            // Poly-lists: the points follow all the declared counts.
            const uint64_t declared =
                layout.declaredPointsAt
                    ? ReadField(p + layout.declaredPointsAt,
                                FieldWidthAt(layout.fields, layout.declaredPointsAt))
                    : 0;
            SwapArray(p, size, layout.arrayAt + (uint64_t)count * FieldsSize(layout.element),
                      std::max(declared, listed), layout.point);
        }
    }
    TRACE_RETURN(1);
}

int NormaliseCopy(void* dst, const unsigned char* src, size_t size, const Layout& layout) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    auto* p = static_cast<unsigned char*>(dst);
    std::memcpy(p, src, size);
    const size_t fixed = FieldsSize(layout.fields);
    if (size < fixed) std::memset(p + size, 0, fixed - size);
    TRACE_RETURN(Normalise(p, layout, size));
}

}  // namespace byteorder

using byteorder::Swap;
using byteorder::SwapAll;

int InitRECT(tagRECT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(r.left, r.top, r.right, r.bottom);
    TRACE_RETURN(1);
}

int InitRECTL(tagRECT& r) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(r.left, r.top, r.right, r.bottom);
    TRACE_RETURN(1);
}

int InitPOINT(tagPOINT& p) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(p.x, p.y);
    TRACE_RETURN(1);
}

int InitPOINTL(tagPOINT& p) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(p.x, p.y);
    TRACE_RETURN(1);
}

int InitPOINTS(tagPOINTS& p) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(p.x, p.y);
    TRACE_RETURN(1);
}

int InitSIZEL(tagSIZE& s) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(s.cx, s.cy);
    TRACE_RETURN(1);
}

int InitXFORM(tagXFORM& x) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(x.eM11, x.eM12, x.eM21, x.eM22, x.eDx, x.eDy);
    TRACE_RETURN(1);
}

int InitRECT16(tagRECT16& r) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(r.left, r.top, r.right, r.bottom);
    TRACE_RETURN(1);
}

int InitEnhMetaHeader(tagENHMETAHEADER& h) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(1);
    SwapAll(h.iType, h.nSize);
    InitRECTL(h.rclBounds);
    InitRECTL(h.rclFrame);
    SwapAll(h.dSignature, h.nVersion, h.nBytes, h.nRecords, h.nHandles, h.sReserved, h.nDescription,
            h.offDescription, h.nPalEntries);
    InitSIZEL(h.szlDevice);
    InitSIZEL(h.szlMillimeters);
    TRACE_RETURN(1);
}

int InitEMR(tagEMR& r) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(r.iType, r.nSize);
    TRACE_RETURN(1);
}

int InitEMRMETARECORD(tagEMR& r) {
    TRACE_ENTER();
    if (IsBigEndian()) SwapAll(r.iType, r.nSize);
    TRACE_RETURN(1);
}

int InitWindowsMetaHeader(_WindowsMetaHeader& h) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        // Packed fields are copied out, converted and stored back.
        uint16_t type = h.mtType, headerSize = h.mtHeaderSize, version = h.mtVersion;
        uint32_t size = h.mtSize, maxRecord = h.mtMaxRecord;
        uint16_t objects = h.mtNoObjects, parameters = h.mtNoParameters;
        SwapAll(type, headerSize, version, size, objects, maxRecord, parameters);
        h.mtType = type;
        h.mtHeaderSize = headerSize;
        h.mtVersion = version;
        h.mtSize = size;
        h.mtNoObjects = objects;
        h.mtMaxRecord = maxRecord;
        h.mtNoParameters = parameters;
    }
    TRACE_RETURN(1);
}

int InitPlaceableMetaHeader(_PlaceableMetaHeader& h) {
    TRACE_ENTER();
    if (IsBigEndian()) {
        uint32_t key = h.Key, reserved = h.Reserved;
        uint16_t hmf = h.Hmf, inch = h.Inch, checksum = h.Checksum;
        tagRECT16 box = h.BoundingBox;
        SwapAll(key, reserved, hmf, inch, checksum);
        InitRECT16(box);
        h.Key = key;
        h.Reserved = reserved;
        h.Hmf = hmf;
        h.Inch = inch;
        h.Checksum = checksum;
        h.BoundingBox = box;
    }
    TRACE_RETURN(1);
}

namespace {
// Reads a WMF record prefix from file bytes into host order.
void ReadWmfPrefix(tagWMR* dst, const unsigned char* src) {
    uint32_t size;
    uint16_t function;
    std::memcpy(&size, src, 4);
    std::memcpy(&function, src + 4, 2);
    Swap(size);
    Swap(function);
    dst->rdSize = size;
    dst->rdFunction = function;
}
}  // namespace

int InitWMR(tagWMR* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    ReadWmfPrefix(dst, src);
    TRACE_RETURN(1);
}

int InitMETARECORD(tagWMR* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    ReadWmfPrefix(dst, src);
    TRACE_RETURN(1);
}
