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
