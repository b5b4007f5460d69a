// The reciprocal square root that every root of this library grows from:
// the processor's 12-bit rsqrtps, carried to binary64 by integer steps on
// the exponent, and the binomial series that refines it by multiplications
// only.  Sqrt, InvSqrt and the 64-bit Hypot kernel share these.
//
// Seed.  For a positive normal double x = 2^E * f, rsqrtps is asked for
// 1/sqrt(m) with m the binary32 number 1.f (E odd) or 2 * 1.f (E even), in
// [1, 4), made from the lowest exponent bit and the top 23 fraction bits of
// x.  Its 23-bit fraction is cut to the 20 bits of a double's high word and
// the exponent halved by one shift on the high word of x, so that
//
//   y = rsqrtps(m) * 2^-((E - 1023 - [E even]) / 2)     (low word zero),
//
// 1/sqrt(x) to the seed's 12 bits (|y*sqrt(x) - 1| < 1.5 * 2^-12 on the
// target's rsqrtps, plus 2^-20 from the cut).  y has at most 21 significant
// bits, so y*y is exact in binary64: the products below with y*y round once.
//
// Series.  With e = x*y*y - 1, the exact correction is
//   (1 + e)^(-1/2) - 1 = c1 e + c2 e^2 + c3 e^3 + c4 e^4 + c5 e^5 + ...
// with the binomial coefficients below.  |e| < 2^-10.4, so the first term
// left out weighs (2^-10.4)^(k+1) / 4 or less: 2^-33 after two terms, 2^-54
// after four, 2^-65 after five.  The binary32 members use the first three.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/simd.h"

namespace orv::roots {

inline constexpr double kC1 = doubleFromBits(0xBFE0000000000000);  // -1/2
inline constexpr double kC2 = doubleFromBits(0x3FD8000000000000);  // 3/8
inline constexpr double kC3 = doubleFromBits(0xBFD4000000000000);  // -5/16
inline constexpr double kC4 = doubleFromBits(0x3FD1800000000000);  // 35/128
inline constexpr double kC5 = doubleFromBits(0xBFCF800000000000);  // -63/256
inline constexpr float kC1f = floatFromBits(0xBF000000);           // -1/2
inline constexpr float kC2f = floatFromBits(0x3EC00000);           // 3/8
inline constexpr float kC3f = floatFromBits(0xBEA00000);           // -5/16

// Seed construction on the raw bits.
inline constexpr uint32_t kSeedFieldMask = 0x00FFFFFF;  // lowest exponent bit, 23 fraction bits
inline constexpr uint32_t kSeedParityBit = 0x00800000;  // that exponent bit, as bit 23
inline constexpr uint32_t kSeedOne = 0x3F800000;        // 1.0f: m in [1, 4)
inline constexpr uint32_t kSeedBias = 0x57F00000;       // re-biases the binary32 exponent
inline constexpr uint32_t kExponentUnit = 0x00100000;   // one unit of a high word's exponent
inline constexpr uint32_t kEvenExponent = 0xFFE00000;   // high word's exponent, lowest bit cleared

// A positive denormal times 2^54 is normal, and its root (reciprocal root)
// scales back by 2^27 exactly.
inline constexpr double kDenormalScale64 = doubleFromBits(0x4350000000000000);    // 2^54
inline constexpr double kDenormalUnscale64 = doubleFromBits(0x41A0000000000000);  // 2^27

// Four doubles, the width of one rsqrtps: lanes 0-1 in a, lanes 2-3 in b.
struct F64x2x2 {
    F64x2 a, b;
};

// The seeds of four positive normal doubles from one rsqrtps.
inline F64x2x2 rsqrtSeed64(F64x2x2 x) {
    // Bits 29 to 52 of each double land in the low 32 bits of its lane;
    // gather those four words into one vector.
    I32x4 shiftedA = shr64<29>(bitsOf(x.a));
    I32x4 shiftedB = shr64<29>(bitsOf(x.b));
    I32x4 fields = evenLanes(shiftedA, shiftedB);
    // An odd exponent gives m = 1.f, an even one 2 * 1.f.
    I32x4 m = add32((fields & splat32(kSeedFieldMask)) ^ splat32(kSeedParityBit), splat32(kSeedOne));
    I32x4 s = bitsOf(rsqrt(asF32x4(m)));
    // (E - 1) with its lowest bit cleared, halved in place: the exponent of
    // the root, subtracted from the re-biased exponent of s.
    I32x4 halfExponent = shr32<1>(sub32(highWords(x.a, x.b), splat32(kExponentUnit)) & splat32(kEvenExponent));
    I32x4 high = sub32(add32(shr32<3>(s), splat32(kSeedBias)), halfExponent);
    // Each high word over a zero low word.
    I32x4 zero = splat32(0);
    return {asF64x2(unpackLo32(zero, high)), asF64x2(unpackHi32(zero, high))};
}

// The binomial series, evaluated by Horner's rule from the highest term
// down; each returns p with (1 + e)^(-1/2) ~ 1 + p.
inline F64x2 series2(F64x2 e) { return (splat(kC2) * e + splat(kC1)) * e; }
inline F64x2 series4(F64x2 e) {
    return (((splat(kC4) * e + splat(kC3)) * e + splat(kC2)) * e + splat(kC1)) * e;
}
inline F64x2 series5(F64x2 e) {
    return ((((splat(kC5) * e + splat(kC4)) * e + splat(kC3)) * e + splat(kC2)) * e + splat(kC1)) * e;
}
inline F32x4 series3(F32x4 e) {
    return ((splat(kC3f) * e + splat(kC2f)) * e + splat(kC1f)) * e;
}

// x split into a head of 21 significant bits (low word cleared) and the
// exact rest: the head times a seed is exact.
inline F64x2 headOf(F64x2 x) { return x & splatBits64(0xFFFFFFFF00000000); }

}  // namespace orv::roots
