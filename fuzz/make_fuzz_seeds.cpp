// Writes small seed metafiles for the fuzzer into a folder: make_fuzz_seeds DIR
//
// Random mutation seldom makes a record whose sizes and offsets agree with each other, and the
// corpus files, cut to the fuzzer's input length, keep few whole bitmap or region records. The
// seeds hold them ready: every bitmap record of EMF and WMF with a bitmap of each bit count
// (a monochrome mask first, then bitmaps drawn with SRCAND), and the region records with
// every combination mode.
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstdio>

#include "tests/MetafileBuilder.h"

namespace {

using mfb::Bytes;

const uint32_t kSrcCopy = 0x00CC0020, kSrcAnd = 0x008800C6;
const uint16_t kBitCounts[] = {1, 4, 8, 16, 24, 32};

// A 3 x 2 bitmap: header, colour table (up to 16 entries) and rows padded to whole words.
struct Dib {
    Bytes header, bits;
};
Dib SmallDib(uint16_t bitCount) {
    std::vector<uint32_t> colours;
    for (uint32_t i = 0; bitCount <= 8 && i < (1u << std::min<uint16_t>(bitCount, 4)); ++i)
        colours.push_back(0x00102030u * (i + 1));
    Dib d{mfb::BitmapInfo(3, 2, bitCount, colours), Bytes()};
    const int row = (3 * bitCount + 31) / 32 * 4;
    for (int i = 0; i < 2 * row; ++i) d.bits.u8((uint8_t)(i * 37 + 11));
    return d;
}
// The mask comes first; the bitmaps of 4 to 16 bits take it with SRCAND.
uint32_t RopFor(uint16_t bitCount) {
    return bitCount >= 4 && bitCount <= 16 ? kSrcAnd : kSrcCopy;
}

QByteArray EmfBitmaps(uint32_t type) {
    mfb::Emf emf;
    for (uint16_t b : kBitCounts) {
        const Dib d = SmallDib(b);
        emf.record(type, type == mfb::EMR_STRETCHDIBITS
                             ? mfb::EmfStretchDib(10, 10, 30, 20, RopFor(b), d.header, d.bits)
                             : mfb::EmfBlt(type, 10, 10, 30, 20, RopFor(b), d.header, d.bits));
    }
    return emf.build();
}

// WMF bitmap records: raster operation, the source fields the record has (`skip` bytes),
// destination size and corner, then the bitmap.
QByteArray WmfBitmaps(uint16_t function, int skip) {
    mfb::Wmf wmf;
    for (uint16_t b : kBitCounts) {
        const Dib d = SmallDib(b);
        wmf.record(function, Bytes()
                                 .u32(RopFor(b))
                                 .zeros(skip)
                                 .i16(20)
                                 .i16(30)
                                 .i16(10)
                                 .i16(10)
                                 .append(d.header)
                                 .append(d.bits));
    }
    return wmf.build();
}

QByteArray Regions() {
    const Bytes region = mfb::RegionData({{0, 0, 40, 20}, {10, 20, 50, 40}, {60, 0, 70, 40}});
    mfb::Emf emf;
    emf.record(mfb::EMR_CREATEBRUSHINDIRECT, mfb::U32s({1, 0, 0x0000FF, 0}))
        .record(mfb::EMR_FILLRGN, Bytes().zeros(16).u32(region.size()).u32(1).append(region))
        .record(mfb::EMR_FRAMERGN,
                Bytes().zeros(16).u32(region.size()).u32(1).u32(2).u32(3).append(region));
    for (uint32_t mode = 1; mode <= 5; ++mode)
        emf.record(mfb::EMR_EXTSELECTCLIPRGN, Bytes().u32(region.size()).u32(mode).append(region));
    return emf.build();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_fuzz_seeds DIR\n");
        return 2;
    }
    const QDir dir(QString::fromLocal8Bit(argv[1]));
    if (!dir.mkpath(QStringLiteral("."))) return 1;
    const struct {
        const char* name;
        QByteArray bytes;
    } seeds[] = {
        {"bitblt.emf", EmfBitmaps(mfb::EMR_BITBLT)},
        {"stretchblt.emf", EmfBitmaps(mfb::EMR_STRETCHBLT)},
        {"maskblt.emf", EmfBitmaps(mfb::EMR_MASKBLT)},
        {"transparentblt.emf", EmfBitmaps(mfb::EMR_TRANSPARENTBLT)},
        {"stretchdibits.emf", EmfBitmaps(mfb::EMR_STRETCHDIBITS)},
        {"dibbitblt.wmf", WmfBitmaps(0x0940, 4)},
        {"bitblt.wmf", WmfBitmaps(0x0922, 4)},
        {"dibstretchblt.wmf", WmfBitmaps(0x0B41, 8)},
        {"stretchdib.wmf", WmfBitmaps(0x0F43, 10)},
        {"stretchblt.wmf", WmfBitmaps(0x0B23, 10)},
        {"regions.emf", Regions()},
    };
    for (const auto& s : seeds) {
        QFile file(dir.filePath(QLatin1String(s.name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(s.bytes) != s.bytes.size()) return 1;
    }
    return 0;
}
