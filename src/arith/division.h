// What the real division and reciprocal families share: the reciprocal seed
// of the low 32-bit tiers with its divisor screen, and the bit tests of the
// special values.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/simd.h"

namespace orv::division {

// ---- The rcpps seed of the A11 and A21 tiers --------------------------------
// rcpps is a table lookup good to about 12 bits (relative error below
// 1.5 * 2^-12).  Its result is only usable when both the divisor and its
// reciprocal are normal: the seed reads denormals as zero and may flush a
// tiny result to zero, so the divisor must lie in the range of normal
// numbers whose reciprocal is normal too.
//
// The screen shifts the pattern down by the smallest normal and clears the
// sign: magnitudes 0x00800000 (2^-126) to 0x7E800000 (2^126) map to 0 ..
// 0x7E000000 and pass; zeros and denormals wrap round to 0x7F8xxxxx, and
// values above 2^126, infinities and NaN land above the limit too.  The
// numerator is never screened: y*a of a huge, infinite or NaN a already
// has the right class.
inline constexpr uint32_t kSeedBias = 0x00800000;   // smallest normal, 2^-126
inline constexpr uint32_t kSeedSpan = 0x7E000000;   // 0x7E800000 - 0x00800000

// Mask of the lanes that fail: ((bits - bias) & 0x7FFFFFFF) > span, signed.
inline int seedScreen(F32x4 x) {
    I32x4 shifted = sub32(bitsOf(x), splat32(kSeedBias)) & splat32(kAbs32);
    return signMask32(cmpGt32(shifted, splat32(kSeedSpan)));
}

// The ElementPath's form of the same limit: (magnitude - bias) as unsigned
// at or above the span goes to the special path.  It is not quite the
// block's test: the magnitude 0x7E800000 (2^126) itself passes the block
// and fails here, so that one divisor can give different last bits by
// path.  (On processors whose rcpps flushes the reciprocal of 2^126 to
// zero, the block's result there is zero and the element path's the exact
// smallest normal.)
inline bool passesSeedLimit(float x) {
    return (bitsOf(x) & kAbs32) - kSeedBias < kSeedSpan;
}

// A11: the seed itself.
inline F32x4 reciprocal11(F32x4 x) { return rcp(x); }

// A21: one Newton step on the seed, y * (2 - x*y).  With y = (1 + e)/x,
// x*y = 1 + e is rounded once (error below 2^-24), 2 - x*y is exact
// (Sterbenz), and the step gives (1 - e^2)/x: the seed's 2.25 * 2^-24
// squared error plus three roundings of at most 2^-24 each.
inline constexpr uint32_t kTwoBits32 = 0x40000000;  // 2.0f
inline F32x4 reciprocal21(F32x4 x) {
    F32x4 y = rcp(x);
    return y * (splatBits32(kTwoBits32) - x * y);
}

// The scalar form of a seed formula, for the ElementPath: the same
// instructions on one lane (the other lanes repeat it).
template <F32x4 (*kReciprocal)(F32x4)>
inline float scalarReciprocal(float x) {
    return lane0(kReciprocal(splat(x)));
}

// ---- Bit tests of special values ------------------------------------------

inline bool isZero(float x) { return (bitsOf(x) & kAbs32) == 0; }
inline bool isZero(double x) { return (bitsOf(x) & kAbs64) == 0; }
// NaN: magnitude bits above those of infinity.
inline bool isNaN(float x) { return (bitsOf(x) & kAbs32) > kInfinity32; }
// Infinity or NaN: exponent field all ones.
inline bool isNonFinite(double x) { return (bitsOf(x) & kInfinity64) == kInfinity64; }

// Mask of the lanes whose numerator is not NaN (magnitude bits not above
// those of infinity).
inline F32x4 notNaN(F32x4 a) {
    I32x4 magnitude = bitsOf(a) & splat32(kAbs32);
    return asF32x4(cmpGt32(splat32(kInfinity32 + 1), magnitude));
}

}  // namespace orv::division
