// EMF decoders of the bit-block records: BITBLT, STRETCHBLT, MASKBLT, PLGBLT, TRANSPARENTBLT,
// ALPHABLEND, STRETCHDIBITS and SETDIBITSTODEVICE.
#include <cmath>
#include <cstring>

#include "byteorder/EmfNormalisers.h"
#include "faithful/BitmapSource.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

template <class T>
T& As(unsigned char* record) {
    return *reinterpret_cast<T*>(record);
}

const uint32_t DIB_PAL_COLORS = 1;
// BLENDFUNCTION's AC_SRC_ALPHA.
const uint8_t AC_SRC_ALPHA = 1;

// Fields of EMR_PLGBLT and EMR_SETDIBITSTODEVICE.
const size_t kPlgPoints = 24, kPlgSrc = 48, kPlgXform = 64, kPlgUsage = 92, kPlgBmi = 96,
             kPlgBits = 104, kPlgMask = 112, kPlgMaskBmi = 124, kPlgMaskBits = 132;
const size_t kMask = 100, kMaskBmi = 112, kMaskBits = 120;
const size_t kSetDest = 24, kSetSrc = 32, kSetBmi = 48, kSetBits = 56, kSetUsage = 64,
             kSetStart = 68, kSetScans = 72;

float FieldFloat(const unsigned char* r, size_t offset) {
    const uint32_t v = Field32(r, offset);
    float f;
    std::memcpy(&f, &v, sizeof f);
    return f;
}

// The source rectangle (x, y, width, height in the source's logical units) in the source
// bitmap's pixels: through the source's transform when it only scales and moves.
RectF SourcePixels(double x, double y, double w, double h, const tagXFORM& t) {
    const bool usable = t.eM12 == 0 && t.eM21 == 0 && std::isfinite(t.eM11) &&
                        std::isfinite(t.eM22) && std::isfinite(t.eDx) && std::isfinite(t.eDy) &&
                        t.eM11 != 0 && t.eM22 != 0;
    if (!usable) return {x, y, w, h};
    return {x * t.eM11 + t.eDx, y * t.eM22 + t.eDy, w * t.eM11, h * t.eM22};
}

// The destination corners of a rectangle x, y, width, height (logical).
void DestRect(BitmapBlt& b, double x, double y, double w, double h) {
    b.dest[0] = {x, y};
    b.dest[1] = {x + w, y};
    b.dest[2] = {x, y + h};
}

// The record's bitmap into `b`; false when it has none that decodes. A 1-bit bitmap of a bit
// block takes the text and background colours.
bool TakeBitmap(BitmapBlt& b, const unsigned char* r, uint32_t size, uint32_t bmi, uint32_t bits,
                uint32_t bitsBytes, uint32_t usage, bool alpha, bool monochrome,
                SourceBitmap* decoded = nullptr, uint32_t scans = 0) {
    SourceBitmap s;
    if (!DecodeDib(r, size, bmi, bits, bitsBytes, alpha, s, scans)) return false;
    if (usage == DIB_PAL_COLORS && s.bitCount <= 8) return false;  // no palette to read
    UseAsSource(s, monochrome, b);
    if (decoded) *decoded = s;
    return true;
}

// The mask of a masked block: a 1-bit bitmap.
std::shared_ptr<const QImage> TakeMask(const unsigned char* r, uint32_t size, uint32_t bmi,
                                       uint32_t bits, uint32_t bitsBytes) {
    SourceBitmap s;
    if (!bmi || !DecodeDib(r, size, bmi, bits, bitsBytes, false, s) || s.bitCount != 1 ||
        !s.image || s.image->format() != QImage::Format_Mono)
        return nullptr;
    return s.image;
}

}  // namespace

void EmfPlayer::OnBitBlt(unsigned char* r, uint32_t size) {
    // EMR_BITBLT, EMR_STRETCHBLT, EMR_MASKBLT, EMR_TRANSPARENTBLT and EMR_ALPHABLEND share
    // their first fields.
    tagEMRBITBLT& b = As<tagEMRBITBLT>(r);
    InitEMRBITBLT(b);
    double cxSrc = b.cxDest, cySrc = b.cyDest;
    if (m_type == emr::STRETCHBLT || m_type == emr::TRANSPARENTBLT || m_type == emr::ALPHABLEND) {
        cxSrc = SignedField32(r, sizeof(tagEMRBITBLT));
        cySrc = SignedField32(r, sizeof(tagEMRBITBLT) + 4);
    }
    BitmapBlt blt;
    DestRect(blt, b.xDest, b.yDest, b.cxDest, b.cyDest);
    blt.src = SourcePixels(b.xSrc, b.ySrc, cxSrc, cySrc, b.xformSrc);
    blt.rop = b.dwRop;
    if (m_type == emr::ALPHABLEND) {
        blt.blend = BitmapBlt::Blend::Alpha;
        blt.constantAlpha = (uint8_t)(b.dwRop >> 16);
        blt.sourceAlpha = ((b.dwRop >> 24) & AC_SRC_ALPHA) != 0;
    } else if (m_type == emr::TRANSPARENTBLT) {
        blt.blend = BitmapBlt::Blend::Transparent;
        blt.key = b.dwRop;
    } else if (m_type == emr::MASKBLT) {
        // The background operation's index is the high byte.
        blt.rop = b.dwRop & 0x00FFFFFF;
        blt.backgroundRop = (b.dwRop >> 24 & 0xFF) << 16;
        blt.mask = TakeMask(r, size, Field32(r, kMaskBmi), Field32(r, kMaskBits),
                            Field32(r, kMaskBits + 4));
        blt.maskOrigin = {(double)SignedField32(r, kMask), (double)SignedField32(r, kMask + 4)};
    }
    const bool needsSource = blt.blend != BitmapBlt::Blend::Rop || b.offBmiSrc != 0;
    if (needsSource && !TakeBitmap(blt, r, size, b.offBmiSrc, b.offBitsSrc, b.cbBitsSrc,
                                   b.iUsageSrc, blt.blend == BitmapBlt::Blend::Alpha, true))
        return;
    if (m_type == emr::BITBLT || m_type == emr::MASKBLT) FitSourceToBitmap(blt);
    m_dc.DrawBitmap(blt);
}

void EmfPlayer::OnPlgBlt(unsigned char* r, uint32_t size) {
    BitmapBlt blt;
    for (int i = 0; i < 3; ++i)
        blt.dest[i] = {(double)SignedField32(r, kPlgPoints + 8 * i),
                       (double)SignedField32(r, kPlgPoints + 8 * i + 4)};
    tagXFORM t;
    float* f = &t.eM11;
    for (int i = 0; i < 6; ++i) f[i] = FieldFloat(r, kPlgXform + 4 * i);
    blt.src = SourcePixels(SignedField32(r, kPlgSrc), SignedField32(r, kPlgSrc + 4),
                           SignedField32(r, kPlgSrc + 8), SignedField32(r, kPlgSrc + 12), t);
    blt.mask = TakeMask(r, size, Field32(r, kPlgMaskBmi), Field32(r, kPlgMaskBits),
                        Field32(r, kPlgMaskBits + 4));
    blt.maskOrigin = {(double)SignedField32(r, kPlgMask), (double)SignedField32(r, kPlgMask + 4)};
    if (!TakeBitmap(blt, r, size, Field32(r, kPlgBmi), Field32(r, kPlgBits),
                    Field32(r, kPlgBits + 4), Field32(r, kPlgUsage), false, true))
        return;
    m_dc.DrawBitmap(blt);
}

void EmfPlayer::OnStretchDIBits(unsigned char* r, uint32_t size) {
    tagEMRSTRETCHDIBITS& s = As<tagEMRSTRETCHDIBITS>(r);
    InitEMRSTRETCHDIBITS(s);
    BitmapBlt blt;
    DestRect(blt, s.xDest, s.yDest, s.cxDest, s.cyDest);
    blt.rop = s.dwRop;
    SourceBitmap bitmap;
    if (s.offBmiSrc != 0 && !TakeBitmap(blt, r, size, s.offBmiSrc, s.offBitsSrc, s.cbBitsSrc,
                                        s.iUsageSrc, false, false, &bitmap)) {
        return;
    }
    // The source's y counts from the bottom row of a bottom-up bitmap.
    double y = s.ySrc;
    if (bitmap.bottomUp) y = bitmap.height - (double)s.ySrc - s.cySrc;
    blt.src = {(double)s.xSrc, y, (double)s.cxSrc, (double)s.cySrc};
    m_dc.DrawBitmap(blt);
}

void EmfPlayer::OnSetDIBitsToDevice(unsigned char* r, uint32_t size) {
    BitmapBlt blt;
    const double x = SignedField32(r, kSetDest), y = SignedField32(r, kSetDest + 4);
    const double xs = SignedField32(r, kSetSrc), ys = SignedField32(r, kSetSrc + 4);
    const double cx = SignedField32(r, kSetSrc + 8), cy = SignedField32(r, kSetSrc + 12);
    DestRect(blt, x, y, cx, cy);
    SourceBitmap bitmap;
    const uint32_t start = Field32(r, kSetStart), scans = Field32(r, kSetScans);
    if (!TakeBitmap(blt, r, size, Field32(r, kSetBmi), Field32(r, kSetBits),
                    Field32(r, kSetBits + 4), Field32(r, kSetUsage), false, false, &bitmap, scans))
        return;
    // The bits hold the scan lines from `start` (counted from the bottom of a bottom-up
    // bitmap), and the source's y counts the same way.
    double top = ys;
    if (bitmap.bottomUp) top = bitmap.height - (ys - start) - cy;
    blt.src = {xs, top, cx, cy};
    m_dc.DrawBitmap(blt);
}

}  // namespace faithful
