// WMF decoders of the bit-block records: BITBLT and STRETCHBLT (an old device-dependent
// bitmap, or none), DIBBITBLT and DIBSTRETCHBLT (a packed bitmap, or none), STRETCHDIB and
// SETDIBTODEV. Parameters come in reverse order, the destination's last.
#include "faithful/BitmapSource.h"
#include "faithful/WmfPlayback.h"

namespace faithful {

namespace {

const uint16_t DIB_PAL_COLORS = 1;

void DestRect(BitmapBlt& b, double x, double y, double w, double h) {
    b.dest[0] = {x, y};
    b.dest[1] = {x + w, y};
    b.dest[2] = {x, y + h};
}

// Sets the source of `b` from a decoded bitmap; false when there is none.
bool Take(BitmapBlt& b, const SourceBitmap& s, bool decoded, bool monochrome) {
    if (!decoded) return false;
    UseAsSource(s, monochrome, b);
    return true;
}

}  // namespace

void WmfPlayer::OnBitBlt(unsigned char* r, uint32_t size) {
    // The form without a bitmap is exactly (function >> 8) + 3 words long and has a reserved
    // word before the destination; the form with one has the bitmap after the destination.
    const uint16_t function = RecordFunction(r);
    const bool stretch = function == meta::STRETCHBLT || function == meta::DIBSTRETCHBLT;
    const bool withBitmap = size != ((uint32_t)(function >> 8) + 3) * 2;
    const size_t dest = (stretch ? 6 : 4) + (withBitmap ? 0 : 1);  // the destination's height
    BitmapBlt blt;
    blt.rop = Param32(r, 0);
    const double h = Param16(r, dest), w = Param16(r, dest + 1);
    DestRect(blt, Param16(r, dest + 3), Param16(r, dest + 2), w, h);
    const size_t src = stretch ? 4 : 2;  // the source's y
    blt.src = {(double)Param16(r, src + 1), (double)Param16(r, src), w, h};
    if (stretch) {
        blt.src.right = Param16(r, 3);
        blt.src.bottom = Param16(r, 2);
    }
    if (withBitmap) {
        const size_t at = sizeof(tagWMR) + 2 * (dest + 4);
        SourceBitmap s;
        const bool dib = function == meta::DIBBITBLT || function == meta::DIBSTRETCHBLT;
        if (!Take(blt, s, dib ? DecodePackedDib(r, size, at, s) : DecodeDdb(r, size, at, s), true))
            return;
        if (!stretch) FitSourceToBitmap(blt);
    }
    m_dc.DrawBitmap(blt);
}

void WmfPlayer::OnStretchDib(unsigned char* r, uint32_t size) {
    // META_STRETCHDIB: raster operation, colour usage, source height, width, y, x, destination
    // height, width, y, x, then the bitmap. META_SETDIBTODEV: colour usage, scan count, first
    // scan, source y, x, height, width, destination y, x, then the bitmap.
    const bool stretch = RecordFunction(r) == meta::STRETCHDIB;
    BitmapBlt blt;
    SourceBitmap s;
    uint16_t usage;
    double ys, xs, cxs, cys;
    uint32_t start = 0, scans = 0;
    if (stretch) {
        blt.rop = Param32(r, 0);
        usage = (uint16_t)Param16(r, 2);
        cys = Param16(r, 3);
        cxs = Param16(r, 4);
        ys = Param16(r, 5);
        xs = Param16(r, 6);
        DestRect(blt, Param16(r, 10), Param16(r, 9), Param16(r, 8), Param16(r, 7));
    } else {
        usage = (uint16_t)Param16(r, 0);
        scans = (uint16_t)Param16(r, 1);
        start = (uint16_t)Param16(r, 2);
        ys = Param16(r, 3);
        xs = Param16(r, 4);
        cys = Param16(r, 5);
        cxs = Param16(r, 6);
        DestRect(blt, Param16(r, 8), Param16(r, 7), cxs, cys);
    }
    const size_t at = sizeof(tagWMR) + (stretch ? 22 : 18);
    if (!Take(blt, s, DecodePackedDib(r, size, at, s, scans), false)) return;
    if (usage == DIB_PAL_COLORS && s.bitCount <= 8) return;  // no palette to read
    // The source's y counts from the bottom row of a bottom-up bitmap.
    double top = ys - start;
    if (s.bottomUp) top = s.height - (ys - start) - cys;
    blt.src = {xs, top, cxs, cys};
    m_dc.DrawBitmap(blt);
}

}  // namespace faithful
