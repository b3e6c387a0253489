#include "tests/AdversarialFiles.h"

#include <climits>
#include <cstdint>

#include "tests/MetafileBuilder.h"

namespace adversarial {
namespace {

using mfb::Bytes;
using mfb::I32s;
using mfb::U32s;

// EMF record types beyond the builder's list.
const uint32_t kSaveDc = 33, kRestoreDc = 34, kStretchDib = 81;
// WMF functions beyond the builder's list.
const uint16_t kMetaStretchDib = 0x0F43;

const uint32_t kPsUserStyle = 7, kBsHatched = 2;

// Deterministic noise, so every run converts the same files.
struct Noise {
    uint32_t state = 12345;
    uint32_t next() { return state = state * 1103515245u + 12345u; }
    uint8_t byte() { return (uint8_t)(next() >> 16); }
};

Bytes Rect(int32_t l, int32_t t, int32_t r, int32_t b) {
    return I32s({l, t, r, b});
}

// Records appended by `add` until the file reaches `bytes`; `add` returns the bytes it added.
template <class Add>
QByteArray EmfOf(int bytes, Add add, mfb::Emf emf = mfb::Emf()) {
    for (int size = 128; size < bytes;) size += add(emf);
    return emf.build();
}
template <class Add>
QByteArray WmfOf(int bytes, Add add) {
    mfb::Wmf wmf;
    wmf.placeable(0, 0, 1000, 1000, 1440);
    for (int size = 64; size < bytes;) size += add(wmf);
    return wmf.build();
}

// One record type, repeated: a million of them in a file of 16 MB.
QByteArray EmfManyRecords(int bytes) {
    int i = 0;
    return EmfOf(bytes, [&](mfb::Emf& e) {
        e.record(mfb::EMR_LINETO, I32s({i % 1000, (i * 7) % 1000}));
        ++i;
        return 16;
    });
}

// Point, polygon, character and rectangle counts far beyond what the records hold.
QByteArray EmfHugeCounts(int bytes) {
    const Bytes bounds = Rect(0, 0, 100, 100);
    return EmfOf(bytes, [&](mfb::Emf& e) {
        e.record(mfb::EMR_POLYLINE, Bytes(bounds).u32(0xFFFFFFFF).append(I32s({1, 2, 3, 4})))
            .record(mfb::EMR_POLYPOLYGON16,
                    Bytes(bounds).u32(0xFFFFFFFF).u32(0xFFFFFFFF).u32(3).u32(0xFFFF))
            .record(mfb::EMR_POLYPOLYLINE16, Bytes(bounds).u32(2).u32(0x7FFFFFFF).u32(2).u32(1))
            .record(mfb::EMR_POLYDRAW16, Bytes(bounds).u32(0xFFFFFFFF).i16(1).i16(2).u8(2))
            .record(mfb::EMR_EXTTEXTOUTW,
                    U32s({0, 0, 40, 16, 1, 0, 0, 5, 5, 0xFFFFFFFF, 76, 0, 0, 0, 0, 0, 0}))
            .record(mfb::EMR_FILLRGN, Bytes(bounds).u32(48).u32(1).append(
                                          mfb::RegionData({{0, 0, 1, 1}}, 0x7FFFFFFF)));
        return 316;
    });
}

// Objects under handles all over the 32-bit range, selections and deletions of handles that
// were never made.
QByteArray EmfHugeHandles(int bytes) {
    Noise noise;
    return EmfOf(bytes, [&](mfb::Emf& e) {
        e.record(mfb::EMR_CREATEPEN, U32s({noise.next(), 0, 1, 0, 0xFF}))
            .record(mfb::EMR_SELECTOBJECT, U32s({noise.next()}))
            .record(mfb::EMR_SELECTOBJECT, U32s({noise.next() | 0x80000000u}))
            .record(mfb::EMR_DELETEOBJECT, U32s({noise.next()}))
            .record(mfb::EMR_LINETO, I32s({1, 2}));
        return 28 + 12 * 3 + 16;
    });
}

// Saves nested as deep as the file allows, then restores, with transforms between them.
QByteArray EmfDeepSaveRestore(int bytes) {
    const int depth = bytes / 2 / 40;
    mfb::Emf e;
    for (int i = 0; i < depth; ++i)
        e.record(kSaveDc, Bytes())
            .record(mfb::EMR_SETWORLDTRANSFORM, Bytes().f32(2).f32(0).f32(0).f32(2).f32(1).f32(1));
    for (int i = 0; i < depth; ++i)
        e.record(kRestoreDc, I32s({-1})).record(mfb::EMR_LINETO, I32s({i, i}));
    return e.build();
}

// Extreme bounds, window and viewport extents, transforms and coordinates.
QByteArray EmfHugeExtents(int bytes) {
    mfb::Emf emf;
    emf.bounds(INT_MIN, INT_MIN, INT_MAX, INT_MAX).frame(INT_MIN, 0, INT_MAX, 1);
    emf.record(mfb::EMR_SETMAPMODE, U32s({8}))
        .record(mfb::EMR_SETWINDOWEXTEX, I32s({1, 1}))
        .record(mfb::EMR_SETVIEWPORTEXTEX, I32s({INT_MAX, INT_MIN}));
    return EmfOf(
        bytes,
        [&](mfb::Emf& e) {
            e.record(mfb::EMR_SETWORLDTRANSFORM,
                     Bytes().f32(3e38f).f32(-3e38f).f32(1e-38f).f32(3e38f).f32(3e38f).f32(-3e38f))
                .record(mfb::EMR_LINETO, I32s({INT_MAX, INT_MIN}))
                .record(mfb::EMR_ELLIPSE, Rect(INT_MIN, INT_MIN, INT_MAX, INT_MAX))
                .record(mfb::EMR_ARC,
                        Rect(INT_MIN, 0, INT_MAX, 1).append(I32s({INT_MAX, 0, INT_MIN, 0})))
                .record(mfb::EMR_ANGLEARC, I32s({INT_MAX, INT_MIN, -1}).f32(1e30f).f32(-1e30f))
                .record(mfb::EMR_ROUNDRECT,
                        Rect(INT_MAX, INT_MAX, INT_MIN, INT_MIN).append(I32s({INT_MAX, INT_MIN})));
            return 32 + 16 + 24 + 40 + 28 + 32;
        },
        emf);
}

// An extended pen with user dashes taking half the file: dash texts grow with the entry
// count and are repeated in every element drawn with the pen.
Bytes LongDashPen(uint32_t handle, int entries) {
    Bytes b = U32s({handle, 0, 0, 0, 0, kPsUserStyle, 1, 0, 0xFF, 0, (uint32_t)entries});
    for (int i = 0; i < entries; ++i) b.u32(1 + i % 9);
    return b;
}

QByteArray EmfDashPenDrawn(int bytes) {
    mfb::Emf emf;
    emf.record(mfb::EMR_EXTCREATEPEN, LongDashPen(1, bytes / 8))
        .record(mfb::EMR_SELECTOBJECT, U32s({1}));
    int i = 0;
    return EmfOf(
        bytes,
        [&](mfb::Emf& e) {
            e.record(mfb::EMR_LINETO, I32s({++i % 100, 5}));
            return 16;
        },
        emf);
}

// Two pens selected in turn, clipped and opening paths in between, drawing nothing.
QByteArray EmfDashPenSelected(int bytes) {
    mfb::Emf emf;
    emf.record(mfb::EMR_EXTCREATEPEN, LongDashPen(1, bytes / 8))
        .record(mfb::EMR_CREATEPEN, U32s({2, 0, 1, 0, 0xFF}));
    return EmfOf(
        bytes,
        [&](mfb::Emf& e) {
            e.record(mfb::EMR_SELECTOBJECT, U32s({1}))
                .record(mfb::EMR_INTERSECTCLIPRECT, Rect(0, 0, 50, 50))
                .record(mfb::EMR_BEGINPATH, Bytes())
                .record(mfb::EMR_SELECTOBJECT, U32s({2}));
            return 12 + 24 + 8 + 12;
        },
        emf);
}

QByteArray EmfHatchedBrushes(int bytes) {
    uint32_t i = 0;
    return EmfOf(bytes, [&](mfb::Emf& e) {
        e.record(mfb::EMR_CREATEBRUSHINDIRECT, U32s({i, kBsHatched, 0xFF00, i % 6}))
            .record(mfb::EMR_SELECTOBJECT, U32s({i}))
            .record(mfb::EMR_RECTANGLE, Rect(0, 0, 10, 10));
        ++i;
        return 24 + 12 + 24;
    });
}

// EMR_STRETCHDIBITS: destination, source offsets, raster operation, then the bitmap.
Bytes StretchDib(int cx, int cy, const Bytes& header, const Bytes& bits) {
    Bytes b = Bytes().zeros(16).i32(0).i32(0).zeros(16).u32(80).u32(header.size());
    b.u32(80 + header.size()).u32(bits.size()).u32(0).u32(0xCC0020).i32(cx).i32(cy);
    return b.append(header).append(bits);
}

Bytes NoiseBits(int count) {
    Noise noise;
    Bytes bits;
    for (int i = 0; i < count; ++i) bits.u8(noise.byte());
    return bits;
}

// Bitmaps that claim far more pixels than they carry.
QByteArray EmfBitmapClaims(int bytes) {
    return EmfOf(bytes, [&](mfb::Emf& e) {
        e.record(kStretchDib,
                 StretchDib(INT_MAX, INT_MAX, mfb::BitmapInfo(65535, -65535, 32), NoiseBits(16)))
            .record(kStretchDib,
                    StretchDib(1, 1, mfb::BitmapInfo(INT_MAX, 1, 1, {0, 0xFFFFFF}), NoiseBits(16)));
        return 2 * (88 + 40 + 16) + 8;
    });
}

// 16 colours of random pixels: the drawn bitmap whose image grows most (a monochrome one is
// kept as a mask, not drawn).
const int kNoiseWidth = 4096;
Bytes NoiseHeader(int height) {
    std::vector<uint32_t> colours;
    for (uint32_t c = 0; c < 16; ++c) colours.push_back(c * 0x111111u);
    return mfb::BitmapInfo(kNoiseWidth, height, 4, colours);
}

QByteArray EmfBitmapNoise(int bytes) {
    const int height = (bytes - 400) * 2 / kNoiseWidth;
    mfb::Emf e;
    e.record(kStretchDib, StretchDib(kNoiseWidth, height, NoiseHeader(height),
                                     NoiseBits(kNoiseWidth / 2 * height)));
    return e.build();
}

// A checkerboard of one-unit squares: no two rectangles merge.
Bytes Checkerboard(int count) {
    std::vector<mfb::Rect> rects;
    const int columns = 512;
    for (int i = 0; i < count; ++i) {
        const int row = i / (columns / 2), column = 2 * (i % (columns / 2)) + row % 2;
        rects.push_back({column, row, column + 1, row + 1});
    }
    return mfb::RegionData(rects);
}

// A solid brush, then the region filled (EMR_FILLRGN) or framed one unit wide (EMR_FRAMERGN).
QByteArray RegionDrawn(uint32_t type, const Bytes& region) {
    Bytes payload = Bytes().zeros(16).u32(region.size()).u32(1);
    if (type == mfb::EMR_FRAMERGN) payload.u32(1).u32(1);
    mfb::Emf e;
    e.record(mfb::EMR_CREATEBRUSHINDIRECT, U32s({1, 0, 0xFF, 0}))
        .record(type, payload.append(region));
    return e.build();
}

QByteArray EmfRegionFill(int bytes) {
    return RegionDrawn(mfb::EMR_FILLRGN, Checkerboard((bytes - 300) / 16));
}

QByteArray EmfRegionFrame(int bytes) {
    return RegionDrawn(mfb::EMR_FRAMERGN, Checkerboard((bytes - 300) / 16));
}

// Wide rectangles on three rows, overlapping at random: edges that all split each other.
QByteArray EmfRegionOverlap(int bytes) {
    std::vector<mfb::Rect> rects;
    Noise noise;
    for (int i = 0; i < (bytes - 300) / 16; ++i) {
        const int x = (int)(noise.next() % 1000000), y = (int)(noise.next() % 3);
        rects.push_back({x, y, x + 1 + (int)(noise.next() % 1000000), y + 1});
    }
    return RegionDrawn(mfb::EMR_FRAMERGN, mfb::RegionData(rects));
}

// A large clip region, then clip rectangles and lines that each restate it.
QByteArray EmfRegionClip(int bytes) {
    const Bytes region = Checkerboard(bytes / 2 / 16);
    mfb::Emf emf;
    emf.record(mfb::EMR_EXTSELECTCLIPRGN, Bytes().u32(region.size()).u32(5).append(region));
    return EmfOf(
        bytes,
        [&](mfb::Emf& e) {
            e.record(mfb::EMR_INTERSECTCLIPRECT, Rect(0, 0, 4096, 4096))
                .record(mfb::EMR_LINETO, I32s({1, 1}));
            return 40;
        },
        emf);
}

// Clip regions of crossing strips, combined again and again: each combination makes a grid
// of the square of their number, until the clip budget is spent.
QByteArray EmfClipCrossing(int bytes) {
    std::vector<mfb::Rect> columns, rows;
    for (int i = 0; i < 256; ++i) {
        columns.push_back({2 * i, 0, 2 * i + 1, 512});
        rows.push_back({0, 2 * i, 512, 2 * i + 1});
    }
    const Bytes comb = mfb::RegionData(columns), grid = mfb::RegionData(rows);
    return EmfOf(bytes, [&](mfb::Emf& e) {
        e.record(mfb::EMR_EXTSELECTCLIPRGN, Bytes().u32(comb.size()).u32(2).append(comb))
            .record(mfb::EMR_EXTSELECTCLIPRGN, Bytes().u32(grid.size()).u32(3).append(grid));
        return 2 * (16 + comb.size());
    });
}

// Text of characters that each need escaping, in one record and in many.
QByteArray EmfLongStrings(int bytes) {
    const int chars = (bytes / 2 - 200) / 2;
    const auto text = [](int n) {
        return U32s({0, 0, 40, 16, 1, 0, 0, 5, 5, (uint32_t)n, 76, 0, 0, 0, 0, 0, 0})
            .utf16(QString(n, QLatin1Char('&')), n);
    };
    mfb::Emf emf;
    emf.record(mfb::EMR_EXTTEXTOUTW, text(chars));
    return EmfOf(
        bytes,
        [&](mfb::Emf& e) {
            e.record(mfb::EMR_EXTTEXTOUTW, text(2));
            return 8 + 68 + 4;
        },
        emf);
}

// A path of many lines, stroked, filled and made the clip again and again.
QByteArray EmfPaths(int bytes) {
    const int count = bytes / 2 / 4;
    Bytes lines = Rect(0, 0, 9, 9).u32((uint32_t)count);
    for (int i = 0; i < count; ++i) lines.i16((int16_t)(i % 100)).i16((int16_t)(i % 77));
    mfb::Emf emf;
    emf.record(mfb::EMR_BEGINPATH, Bytes())
        .record(mfb::EMR_POLYLINETO16, lines)
        .record(mfb::EMR_ENDPATH, Bytes())
        .record(mfb::EMR_SELECTCLIPPATH, U32s({5}));
    return EmfOf(
        bytes,
        [&](mfb::Emf& e) {
            e.record(mfb::EMR_STROKEPATH, Rect(0, 0, 1, 1))
                .record(mfb::EMR_FILLPATH, Rect(0, 0, 1, 1))
                .record(mfb::EMR_SELECTCLIPPATH, U32s({5}));
            return 24 + 24 + 12;
        },
        emf);
}

QByteArray WmfManyRecords(int bytes) {
    int i = 0;
    return WmfOf(bytes, [&](mfb::Wmf& w) {
        ++i;
        w.record(mfb::META_LINETO, Bytes().i16((int16_t)(i % 1000)).i16((int16_t)(i % 900)));
        return 10;
    });
}

QByteArray WmfHugeCounts(int bytes) {
    return WmfOf(bytes, [&](mfb::Wmf& w) {
        w.record(mfb::META_POLYLINE, Bytes().i16(0x7FFF).i16(1).i16(2))
            .record(mfb::META_POLYGON, Bytes().i16(-1).i16(1).i16(2))
            .record(mfb::META_POLYPOLYGON, Bytes().u16(0xFFFF).u16(0xFFFF).u16(3))
            .record(mfb::META_EXTTEXTOUT, Bytes().i16(1).i16(1).u16(0xFFFF).u16(4).zeros(2));
        return 12 + 12 + 12 + 16;
    });
}

// Objects filling the whole slot table, and selections and deletions of any slot.
QByteArray WmfObjects(int bytes) {
    Noise noise;
    return WmfOf(bytes, [&](mfb::Wmf& w) {
        w.record(mfb::META_CREATEPENINDIRECT, Bytes().u16(0).i16(3).i16(0).u32(0xFF))
            .record(mfb::META_SELECTOBJECT, Bytes().u16((uint16_t)noise.next()))
            .record(mfb::META_DELETEOBJECT, Bytes().u16((uint16_t)(noise.next() % 3)))
            .record(mfb::META_LINETO, Bytes().i16(5).i16(5));
        return 16 + 8 + 8 + 10;
    });
}

QByteArray WmfHatchedBrushes(int bytes) {
    uint16_t i = 0;
    return WmfOf(bytes, [&](mfb::Wmf& w) {
        w.record(mfb::META_CREATEBRUSHINDIRECT, Bytes().u16(2).u32(0xFF).u16(i % 6))
            .record(mfb::META_SELECTOBJECT, Bytes().u16(i))
            .record(mfb::META_RECTANGLE, Bytes().i16(10).i16(10).i16(0).i16(0));
        ++i;
        return 14 + 8 + 14;
    });
}

QByteArray WmfLongStrings(int bytes) {
    const int chars = (bytes - 200) / 2;
    const auto text = [](int n) {
        return Bytes().i16(5).i16(5).u16((uint16_t)n).u16(0).latin1(QByteArray(n, '<'), n);
    };
    return WmfOf(bytes, [&](mfb::Wmf& w) {
        const int n = chars < 0x7FFF ? chars : 0x7FFF;
        w.record(mfb::META_EXTTEXTOUT, text(n)).record(mfb::META_EXTTEXTOUT, text(1));
        return 14 + n + 16;
    });
}

QByteArray WmfBitmapNoise(int bytes) {
    const int height = (bytes - 300) * 2 / kNoiseWidth;
    mfb::Wmf w;
    w.placeable(0, 0, 1000, 1000, 1440)
        .record(kMetaStretchDib, Bytes()
                                     .u32(0xCC0020)
                                     .zeros(10)
                                     .u16((uint16_t)height)
                                     .u16((uint16_t)kNoiseWidth)
                                     .i16(0)
                                     .i16(0)
                                     .append(NoiseHeader(height))
                                     .append(NoiseBits(kNoiseWidth / 2 * height)));
    return w.build();
}

QByteArray WmfHugeExtents(int bytes) {
    mfb::Wmf wmf;
    wmf.placeable(-32768, -32768, 32767, 32767, 1)
        .record(mfb::META_SETWINDOWEXT, Bytes().i16(1).i16(1))
        .record(mfb::META_SETWINDOWORG, Bytes().i16(-32768).i16(32767));
    for (int size = 100; size < bytes; size += 10 + 14 + 14) {
        wmf.record(mfb::META_LINETO, Bytes().i16(-32768).i16(32767))
            .record(mfb::META_ELLIPSE, Bytes().i16(32767).i16(32767).i16(-32768).i16(-32768))
            .record(mfb::META_RECTANGLE, Bytes().i16(-32768).i16(32767).i16(32767).i16(-32768));
    }
    return wmf.build();
}

}  // namespace

const std::vector<Family>& Families() {
    static const std::vector<Family> families = {
        {"emf-many-records", EmfManyRecords},
        {"emf-huge-counts", EmfHugeCounts},
        {"emf-huge-handles", EmfHugeHandles},
        {"emf-deep-save-restore", EmfDeepSaveRestore},
        {"emf-huge-extents", EmfHugeExtents},
        {"emf-dash-pen-drawn", EmfDashPenDrawn},
        {"emf-dash-pen-selected", EmfDashPenSelected},
        {"emf-hatched-brushes", EmfHatchedBrushes},
        {"emf-bitmap-claims", EmfBitmapClaims},
        {"emf-bitmap-noise", EmfBitmapNoise},
        {"emf-region-fill", EmfRegionFill},
        {"emf-region-frame", EmfRegionFrame},
        {"emf-region-overlap", EmfRegionOverlap},
        {"emf-region-clip", EmfRegionClip},
        {"emf-clip-crossing", EmfClipCrossing},
        {"emf-long-strings", EmfLongStrings},
        {"emf-paths", EmfPaths},
        {"wmf-many-records", WmfManyRecords},
        {"wmf-huge-counts", WmfHugeCounts},
        {"wmf-objects", WmfObjects},
        {"wmf-hatched-brushes", WmfHatchedBrushes},
        {"wmf-long-strings", WmfLongStrings},
        {"wmf-bitmap-noise", WmfBitmapNoise},
        {"wmf-huge-extents", WmfHugeExtents},
    };
    return families;
}

}  // namespace adversarial
