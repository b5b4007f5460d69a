// Pieces shared by the extended-precision routines (src/complex/ext_*.cpp):
// the classification of an extended value by its bits, exact sums and
// products in the manner of Dekker and Knuth, scaling by a power of two,
// and the inner routines that more than one file stands on.  Internal to
// the routines; the complex kernels use extended.h.
#pragma once

#include <cstdint>

#include "complex/extended.h"

namespace orv::ext {

// ---- Classification -----------------------------------------------------------
constexpr uint16_t kExponentMask = 0x7FFF;  // 0x7FFF: infinity or NaN
constexpr uint16_t kSignBit = 0x8000;
constexpr uint16_t kBias = 0x3FFF;          // exponent field of 1.0
constexpr uint64_t kLeadBit = 0x8000000000000000;

inline uint16_t exponentField(Extended x) { return extendedBits(x).signExponent & kExponentMask; }
inline bool signBit(Extended x) { return extendedBits(x).signExponent & kSignBit; }
inline bool isSpecial(Extended x) { return exponentField(x) == kExponentMask; }  // infinity or NaN
inline bool isNan(Extended x) { return isSpecial(x) && (extendedBits(x).significand << 1) != 0; }
inline bool isZero(Extended x) { return extendedBits(x).significand == 0 && exponentField(x) != kExponentMask; }
// The top 32 bits of |x| as one pattern: exponent field and the first 16
// significand bits (the leading one included), for thresholds that are not
// powers of two.
inline uint32_t topPattern(Extended x) {
    const ExtendedBits b = extendedBits(x);
    return uint32_t(b.signExponent & kExponentMask) << 16 | uint32_t(b.significand >> 48);
}
inline Extended withSignOf(Extended magnitude, bool negative) { return negative ? -magnitude : magnitude; }

// 2^n for a normal exponent (-16382 <= n <= 16383).
inline Extended powerOfTwo(int n) { return extendedFromBits(kLeadBit, uint16_t(kBias + n)); }
// x * 2^n for any n whose result is representable or beyond: two exact
// steps and at most one rounding (into the subnormal range or to infinity).
inline Extended scaleByPowerOfTwo(Extended x, int n) {
    if (n > 16383 || n < -16382) {
        const int half = n / 2;
        return x * powerOfTwo(half) * powerOfTwo(n - half);
    }
    return x * powerOfTwo(n);
}

// ---- Exact sums and products -------------------------------------------------------
struct Pair {
    Extended hi;
    Extended lo;
};
// a + b = hi + lo exactly, hi the rounded sum; needs |a| >= |b| or a = 0.
inline Pair fastTwoSum(Extended a, Extended b) {
    const Extended s = a + b;
    return {s, (a - s) + b};
}
// The same for any a, b (Knuth's six operations).
inline Pair twoSum(Extended a, Extended b) {
    const Extended s = a + b;
    const Extended bb = s - a;
    return {s, (a - (s - bb)) + (b - bb)};
}
// Veltkamp's split: a = hi + lo, each of at most 32 significant bits, so
// that the products of two halves are exact.
inline Pair split(Extended a) {
    constexpr Extended kSplitter = 4294967297.0L;  // 2^32 + 1
    const Extended c = a * kSplitter;
    const Extended hi = c - (c - a);
    return {hi, a - hi};
}
// a * b = hi + lo exactly, hi the rounded product (Dekker).
inline Pair twoProduct(Extended a, Extended b) {
    const Pair x = split(a), y = split(b);
    const Extended p = a * b;
    return {p, ((x.hi * y.hi - p) + x.hi * y.lo + x.lo * y.hi) + x.lo * y.lo};
}

// Nearest integer of |v| < 2^62 by the shifter 1.5 * 2^63: the sum keeps no
// fraction bit under a 64-bit significand.
inline Extended nearestInteger(Extended v) {
    constexpr Extended kShifter = 13835058055282163712.0L;  // 1.5 * 2^63
    return (v + kShifter) - kShifter;
}

// 1/n!, rounded once (n! is exact in the extended format up to n = 25).
constexpr Extended inverseFactorial(int n) {
    Extended f = 1;
    for (int i = 2; i <= n; ++i) f *= i;
    return 1 / f;
}

// ---- Inner routines -----------------------------------------------------------
// e^x * 2^scale for finite x (ext_exp.cpp).
Extended expScaled(Extended x, int scale);
// ln(s + c) for finite s > 0 and a correction |c| <= ulp(s)/2 (ext_log.cpp).
Extended logOfSum(Extended s, Extended c);
// atan(num/den) as hi + lo for finite 0 <= num <= den, den > 0 (ext_atan.cpp).
Pair atanRatio(Extended num, Extended den);
// x - q pi/2 as hi + lo for finite x, |hi| <= pi/4 and a little; returns
// q mod 4 (ext_trig.cpp).
int reduceQuarterTurns(Extended x, Pair* r);

}  // namespace orv::ext
