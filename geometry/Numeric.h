// Float-to-integer conversions that stay defined for any input. Metafile values can make
// quotients that are infinite, not a number or beyond the integer range; these helpers give
// the nearest representable integer instead (0 for not-a-number).
#ifndef SVGMODULE_NUMERIC_H
#define SVGMODULE_NUMERIC_H

#include <cmath>
#include <cstdint>
#include <limits>

namespace numeric {

// Truncates toward zero, saturating at the limits of int32.
inline int32_t TruncToInt(double v) {
    if (std::isnan(v)) return 0;
    if (v >= 2147483647.0) return std::numeric_limits<int32_t>::max();
    if (v <= -2147483648.0) return std::numeric_limits<int32_t>::min();
    return (int32_t)v;
}

// Truncates toward zero to 16 bits; a value outside -32768..32767 (or not a number) gives
// -32768, as the 16-bit truncation of the WMF mapping defines.
inline int16_t TruncToShort(double v) {
    if (!(v > -32769.0 && v < 32768.0)) return -32768;
    return (int16_t)(int32_t)v;
}

// The low 16 bits of a 32-bit value, as a signed 16-bit value.
inline int16_t Low16(int32_t v) {
    return (int16_t)(uint16_t)(uint32_t)v;
}

// Difference of two 32-bit values, wrapping as 32-bit arithmetic does.
inline int32_t Diff32(int32_t a, int32_t b) {
    return (int32_t)((uint32_t)a - (uint32_t)b);
}

// Divides when the divisor is finite and not zero; otherwise returns `fallback`.
inline float SafeRatio(float num, float den, float fallback) {
    float r = num / den;
    return (den != 0.0f && std::isfinite(r)) ? r : fallback;
}

}  // namespace numeric

#endif
