#include "tests/AdversarialFiles.h"

#include <climits>
#include <cstdint>

#include "tests/MetafileBuilder.h"

namespace adversarial {
namespace {

using namespace mfb;

// EMF record types beyond the builder's list.
const uint32_t kSaveDc = 33, kRestoreDc = 34;
// WMF functions beyond the builder's list.
const uint16_t kMetaStretchDib = 0x0F43;

const uint32_t kPsUserStyle = 7, kBsHatched = 2;

// Deterministic noise, so every run converts the same files.
struct Noise {
    uint32_t state = 12345;
    uint32_t next() { return state = state * 1103515245u + 12345u; }
    uint8_t byte() { return (uint8_t)(next() >> 16); }
};

// Records appended by `add` until the file reaches `bytes`.
template <class Add, class File = Emf>
QByteArray FileOf(int bytes, Add add, File file = File()) {
    while (file.size() < bytes) add(file);
    return file.build();
}
template <class Add>
QByteArray WmfOf(int bytes, Add add) {
    return FileOf(bytes, add, Wmf().placeable(0, 0, 1000, 1000, 1440));
}

// One record type, repeated: a million of them in a file of 16 MB.
QByteArray EmfManyRecords(int bytes) {
    int i = 0;
    return FileOf(bytes, [&](Emf& e) {
        e.record(EMR_LINETO, I32s({i % 1000, (i * 7) % 1000}));
        ++i;
    });
}

// Point, polygon, character and rectangle counts far beyond what the records hold.
QByteArray EmfHugeCounts(int bytes) {
    const Bytes bounds = I32s({0, 0, 100, 100});
    return FileOf(bytes, [&](Emf& e) {
        e.record(EMR_POLYLINE, Bytes(bounds).u32(0xFFFFFFFF).append(I32s({1, 2, 3, 4})))
            .record(EMR_POLYPOLYGON16,
                    Bytes(bounds).u32(0xFFFFFFFF).u32(0xFFFFFFFF).u32(3).u32(0xFFFF))
            .record(EMR_POLYPOLYLINE16, Bytes(bounds).u32(2).u32(0x7FFFFFFF).u32(2).u32(1))
            .record(EMR_POLYDRAW16, Bytes(bounds).u32(0xFFFFFFFF).i16(1).i16(2).u8(2))
            .record(EMR_EXTTEXTOUTW,
                    U32s({0, 0, 40, 16, 1, 0, 0, 5, 5, 0xFFFFFFFF, 76, 0, 0, 0, 0, 0, 0}))
            .record(EMR_FILLRGN,
                    Bytes(bounds).u32(48).u32(1).append(RegionData({{0, 0, 1, 1}}, 0x7FFFFFFF)));
    });
}

// Objects under handles all over the 32-bit range, selections and deletions of handles that
// were never made.
QByteArray EmfHugeHandles(int bytes) {
    Noise noise;
    return FileOf(bytes, [&](Emf& e) {
        e.record(EMR_CREATEPEN, U32s({noise.next(), 0, 1, 0, 0xFF}))
            .record(EMR_SELECTOBJECT, U32s({noise.next()}))
            .record(EMR_SELECTOBJECT, U32s({noise.next() | 0x80000000u}))
            .record(EMR_DELETEOBJECT, U32s({noise.next()}))
            .record(EMR_LINETO, I32s({1, 2}));
    });
}

// Saves nested as deep as the file allows, then restores, with transforms between them.
QByteArray EmfDeepSaveRestore(int bytes) {
    const int depth = bytes / 2 / 40;
    Emf e;
    for (int i = 0; i < depth; ++i)
        e.record(kSaveDc, Bytes())
            .record(EMR_SETWORLDTRANSFORM, Bytes().f32(2).f32(0).f32(0).f32(2).f32(1).f32(1));
    for (int i = 0; i < depth; ++i)
        e.record(kRestoreDc, I32s({-1})).record(EMR_LINETO, I32s({i, i}));
    return e.build();
}

// Extreme bounds, window and viewport extents, transforms and coordinates.
QByteArray EmfHugeExtents(int bytes) {
    return FileOf(
        bytes,
        [&](Emf& e) {
            e.record(EMR_SETWORLDTRANSFORM,
                     Bytes().f32(3e38f).f32(-3e38f).f32(1e-38f).f32(3e38f).f32(3e38f).f32(-3e38f))
                .record(EMR_LINETO, I32s({INT_MAX, INT_MIN}))
                .record(EMR_ELLIPSE, I32s({INT_MIN, INT_MIN, INT_MAX, INT_MAX}))
                .record(EMR_ARC,
                        I32s({INT_MIN, 0, INT_MAX, 1}).append(I32s({INT_MAX, 0, INT_MIN, 0})))
                .record(EMR_ANGLEARC, I32s({INT_MAX, INT_MIN, -1}).f32(1e30f).f32(-1e30f))
                .record(
                    EMR_ROUNDRECT,
                    I32s({INT_MAX, INT_MAX, INT_MIN, INT_MIN}).append(I32s({INT_MAX, INT_MIN})));
        },
        Emf()
            .bounds(INT_MIN, INT_MIN, INT_MAX, INT_MAX)
            .frame(INT_MIN, 0, INT_MAX, 1)
            .record(EMR_SETMAPMODE, U32s({8}))
            .record(EMR_SETWINDOWEXTEX, I32s({1, 1}))
            .record(EMR_SETVIEWPORTEXTEX, I32s({INT_MAX, INT_MIN})));
}

// An extended pen with user dashes taking half the file: dash texts grow with the entry
// count and are repeated in every element drawn with the pen.
Bytes LongDashPen(uint32_t handle, int entries) {
    Bytes b = U32s({handle, 0, 0, 0, 0, kPsUserStyle, 1, 0, 0xFF, 0, (uint32_t)entries});
    for (int i = 0; i < entries; ++i) b.u32(1 + i % 9);
    return b;
}

QByteArray EmfDashPenDrawn(int bytes) {
    int i = 0;
    return FileOf(
        bytes,
        [&](Emf& e) {
            e.record(EMR_LINETO, I32s({++i % 100, 5}));
        },
        Emf()
            .record(EMR_EXTCREATEPEN, LongDashPen(1, bytes / 8))
            .record(EMR_SELECTOBJECT, U32s({1})));
}

// Two pens selected in turn, clipped and opening paths in between, drawing nothing.
QByteArray EmfDashPenSelected(int bytes) {
    return FileOf(
        bytes,
        [&](Emf& e) {
            e.record(EMR_SELECTOBJECT, U32s({1}))
                .record(EMR_INTERSECTCLIPRECT, I32s({0, 0, 50, 50}))
                .record(EMR_BEGINPATH, Bytes())
                .record(EMR_SELECTOBJECT, U32s({2}));
        },
        Emf()
            .record(EMR_EXTCREATEPEN, LongDashPen(1, bytes / 8))
            .record(EMR_CREATEPEN, U32s({2, 0, 1, 0, 0xFF})));
}

QByteArray EmfHatchedBrushes(int bytes) {
    uint32_t i = 0;
    return FileOf(bytes, [&](Emf& e) {
        e.record(EMR_CREATEBRUSHINDIRECT, U32s({i, kBsHatched, 0xFF00, i % 6}))
            .record(EMR_SELECTOBJECT, U32s({i}))
            .record(EMR_RECTANGLE, I32s({0, 0, 10, 10}));
        ++i;
    });
}

// EMR_STRETCHDIBITS at (0, 0) copying the bitmap.
Bytes StretchDib(int cx, int cy, const Bytes& header, const Bytes& bits) {
    return EmfStretchDib(0, 0, cx, cy, 0xCC0020, header, bits);
}

Bytes NoiseBits(int count) {
    Noise noise;
    Bytes bits;
    for (int i = 0; i < count; ++i) bits.u8(noise.byte());
    return bits;
}

// Bitmaps that claim far more pixels than they carry.
QByteArray EmfBitmapClaims(int bytes) {
    return FileOf(bytes, [&](Emf& e) {
        e.record(EMR_STRETCHDIBITS,
                 StretchDib(INT_MAX, INT_MAX, BitmapInfo(65535, -65535, 32), NoiseBits(16)))
            .record(EMR_STRETCHDIBITS,
                    StretchDib(1, 1, BitmapInfo(INT_MAX, 1, 1, {0, 0xFFFFFF}), NoiseBits(16)));
    });
}

// 16 colours of random pixels: the drawn bitmap whose image grows most (a monochrome one is
// kept as a mask, not drawn).
const int kNoiseWidth = 4096;
Bytes NoiseHeader(int height) {
    std::vector<uint32_t> colours;
    for (uint32_t c = 0; c < 16; ++c) colours.push_back(c * 0x111111u);
    return BitmapInfo(kNoiseWidth, height, 4, colours);
}

QByteArray EmfBitmapNoise(int bytes) {
    const int height = (bytes - 400) * 2 / kNoiseWidth;
    return Emf()
        .record(EMR_STRETCHDIBITS, StretchDib(kNoiseWidth, height, NoiseHeader(height),
                                              NoiseBits(kNoiseWidth / 2 * height)))
        .build();
}

// A checkerboard of one-unit squares: no two rectangles merge.
Bytes Checkerboard(int count) {
    std::vector<Rect> rects;
    const int columns = 512;
    for (int i = 0; i < count; ++i) {
        const int row = i / (columns / 2), column = 2 * (i % (columns / 2)) + row % 2;
        rects.push_back({column, row, column + 1, row + 1});
    }
    return RegionData(rects);
}

// A solid brush, then the region filled (EMR_FILLRGN) or framed one unit wide (EMR_FRAMERGN).
QByteArray RegionDrawn(uint32_t type, const Bytes& region) {
    Bytes payload = Bytes().zeros(16).u32(region.size()).u32(1);
    if (type == EMR_FRAMERGN) payload.u32(1).u32(1);
    return Emf()
        .record(EMR_CREATEBRUSHINDIRECT, U32s({1, 0, 0xFF, 0}))
        .record(type, payload.append(region))
        .build();
}
template <uint32_t type>
QByteArray EmfRegion(int bytes) {
    return RegionDrawn(type, Checkerboard((bytes - 300) / 16));
}

// Wide rectangles on three rows, overlapping at random: edges that all split each other.
QByteArray EmfRegionOverlap(int bytes) {
    std::vector<Rect> rects;
    Noise noise;
    for (int i = 0; i < (bytes - 300) / 16; ++i) {
        const int x = (int)(noise.next() % 1000000), y = (int)(noise.next() % 3);
        rects.push_back({x, y, x + 1 + (int)(noise.next() % 1000000), y + 1});
    }
    return RegionDrawn(EMR_FRAMERGN, RegionData(rects));
}

// A large clip region, then clip rectangles and lines that each restate it.
QByteArray EmfRegionClip(int bytes) {
    const Bytes region = Checkerboard(bytes / 2 / 16);
    return FileOf(
        bytes,
        [&](Emf& e) {
            e.record(EMR_INTERSECTCLIPRECT, I32s({0, 0, 4096, 4096}))
                .record(EMR_LINETO, I32s({1, 1}));
        },
        Emf().record(EMR_EXTSELECTCLIPRGN, Bytes().u32(region.size()).u32(5).append(region)));
}

// Clip regions of crossing strips, combined again and again: each combination makes a grid
// of the square of their number, until the clip budget is spent.
QByteArray EmfClipCrossing(int bytes) {
    std::vector<Rect> columns, rows;
    for (int i = 0; i < 256; ++i) {
        columns.push_back({2 * i, 0, 2 * i + 1, 512});
        rows.push_back({0, 2 * i, 512, 2 * i + 1});
    }
    const Bytes comb = RegionData(columns), grid = RegionData(rows);
    return FileOf(bytes, [&](Emf& e) {
        e.record(EMR_EXTSELECTCLIPRGN, Bytes().u32(comb.size()).u32(2).append(comb))
            .record(EMR_EXTSELECTCLIPRGN, Bytes().u32(grid.size()).u32(3).append(grid));
    });
}

// Text of characters that each need escaping, in one record and in many.
QByteArray EmfLongStrings(int bytes) {
    const int chars = (bytes / 2 - 200) / 2;
    const auto text = [](int n) {
        return U32s({0, 0, 40, 16, 1, 0, 0, 5, 5, (uint32_t)n, 76, 0, 0, 0, 0, 0, 0})
            .utf16(QString(n, QLatin1Char('&')), n);
    };
    return FileOf(
        bytes, [&](Emf& e) { e.record(EMR_EXTTEXTOUTW, text(2)); },
        Emf().record(EMR_EXTTEXTOUTW, text(chars)));
}

// A path of many lines, stroked, filled and made the clip again and again.
QByteArray EmfPaths(int bytes) {
    const int count = bytes / 2 / 4;
    Bytes lines = I32s({0, 0, 9, 9}).u32((uint32_t)count);
    for (int i = 0; i < count; ++i) lines.i16((int16_t)(i % 100)).i16((int16_t)(i % 77));
    return FileOf(
        bytes,
        [&](Emf& e) {
            e.record(EMR_STROKEPATH, I32s({0, 0, 1, 1}))
                .record(EMR_FILLPATH, I32s({0, 0, 1, 1}))
                .record(EMR_SELECTCLIPPATH, U32s({5}));
        },
        Emf()
            .record(EMR_BEGINPATH, Bytes())
            .record(EMR_POLYLINETO16, lines)
            .record(EMR_ENDPATH, Bytes())
            .record(EMR_SELECTCLIPPATH, U32s({5})));
}

QByteArray WmfManyRecords(int bytes) {
    int i = 0;
    return WmfOf(bytes, [&](Wmf& w) {
        ++i;
        w.record(META_LINETO, Bytes().i16((int16_t)(i % 1000)).i16((int16_t)(i % 900)));
    });
}

QByteArray WmfHugeCounts(int bytes) {
    return WmfOf(bytes, [&](Wmf& w) {
        w.record(META_POLYLINE, Bytes().i16(0x7FFF).i16(1).i16(2))
            .record(META_POLYGON, Bytes().i16(-1).i16(1).i16(2))
            .record(META_POLYPOLYGON, Bytes().u16(0xFFFF).u16(0xFFFF).u16(3))
            .record(META_EXTTEXTOUT, Bytes().i16(1).i16(1).u16(0xFFFF).u16(4).zeros(2));
    });
}

// Objects filling the whole slot table, and selections and deletions of any slot.
QByteArray WmfObjects(int bytes) {
    Noise noise;
    return WmfOf(bytes, [&](Wmf& w) {
        w.record(META_CREATEPENINDIRECT, Bytes().u16(0).i16(3).i16(0).u32(0xFF))
            .record(META_SELECTOBJECT, Bytes().u16((uint16_t)noise.next()))
            .record(META_DELETEOBJECT, Bytes().u16((uint16_t)(noise.next() % 3)))
            .record(META_LINETO, Bytes().i16(5).i16(5));
    });
}

QByteArray WmfHatchedBrushes(int bytes) {
    uint16_t i = 0;
    return WmfOf(bytes, [&](Wmf& w) {
        w.record(META_CREATEBRUSHINDIRECT, Bytes().u16(2).u32(0xFF).u16(i % 6))
            .record(META_SELECTOBJECT, Bytes().u16(i))
            .record(META_RECTANGLE, Bytes().i16(10).i16(10).i16(0).i16(0));
        ++i;
    });
}

QByteArray WmfLongStrings(int bytes) {
    const int chars = (bytes - 200) / 2;
    const auto text = [](int n) {
        return Bytes().i16(5).i16(5).u16((uint16_t)n).u16(0).latin1(QByteArray(n, '<'), n);
    };
    return WmfOf(bytes, [&](Wmf& w) {
        const int n = chars < 0x7FFF ? chars : 0x7FFF;
        w.record(META_EXTTEXTOUT, text(n)).record(META_EXTTEXTOUT, text(1));
    });
}

QByteArray WmfBitmapNoise(int bytes) {
    const int height = (bytes - 300) * 2 / kNoiseWidth;
    Bytes b = Bytes().u32(0xCC0020).zeros(10).u16((uint16_t)height).u16(kNoiseWidth).zeros(4);
    b.append(NoiseHeader(height)).append(NoiseBits(kNoiseWidth / 2 * height));
    return Wmf().placeable(0, 0, 1000, 1000, 1440).record(kMetaStretchDib, b).build();
}

QByteArray WmfHugeExtents(int bytes) {
    return FileOf(
        bytes,
        [](Wmf& w) {
            w.record(META_LINETO, Bytes().i16(-32768).i16(32767))
                .record(META_ELLIPSE, Bytes().i16(32767).i16(32767).i16(-32768).i16(-32768))
                .record(META_RECTANGLE, Bytes().i16(-32768).i16(32767).i16(32767).i16(-32768));
        },
        Wmf()
            .placeable(-32768, -32768, 32767, 32767, 1)
            .record(META_SETWINDOWEXT, Bytes().i16(1).i16(1))
            .record(META_SETWINDOWORG, Bytes().i16(-32768).i16(32767)));
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
        {"emf-region-fill", EmfRegion<EMR_FILLRGN>},
        {"emf-region-frame", EmfRegion<EMR_FRAMERGN>},
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
