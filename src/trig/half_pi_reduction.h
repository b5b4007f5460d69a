// Reduction by pi/2 for the block paths of SinCos and Tan: x = k pi/2 + r
// with k the integer nearest x 2/pi, found by adding a shifter whose low
// bits then hold k, and pi/2 cut into parts so that the first products
// k p1, k p2 are exact for the k the screens allow.
//
//   single, 3 parts (SinCos and Tan A11) and 4 parts (A21): |x| <= 10000,
//       so |k| <= 6367 < 2^13; p1 = 1.5703125 has 8 significant bits and
//       k p1 is exact; the parts sum to pi/2 within 2^-49 (3 parts) or
//       2^-63 (4 parts), so r is off by at most k times that, plus the
//       roundings of the later products.
//   double, 2 parts (SinCos A24 and CIS 32fc, Tan A24): k from the float
//       product, pi/2 = p1 + p2 with p1 of 33 significant bits, so k p1 is
//       exact; the two parts sum to pi/2 within 2^-92.
//   double, 4 parts (SinCos and Tan 64f A50, the first two of Tan A26):
//       |x| below about 128000, |k| < 2^17; the first three parts have at
//       most 25 significant bits, so k p1, k p2, k p3 are exact, and each
//       subtraction of them is exact where r is small (Sterbenz); the parts
//       sum to pi/2 within 2^-126 and only the last product rounds, so r is
//       good to about 2^-107 absolute.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/simd.h"

namespace orv::trig {

constexpr float kTwoOverPi32 = floatFromBits(0x3F22F983);        // 0.636619747
constexpr float kShifter23 = floatFromBits(0x4B400000);          // 1.5*2^23
constexpr double kTwoOverPi64 = doubleFromBits(0x3FE45F306DC9C883);  // 0.63661977236758138
constexpr double kShifter2p52 = doubleFromBits(0x4330000000000000);  // 2^52, for |x| >= 0

// pi/2 in single parts, subtracted in this order.
constexpr float kHalfPi3[] = {floatFromBits(0x3FC90000), floatFromBits(0x39FDA000),
                              floatFromBits(0x33A22169)};
constexpr float kHalfPi4[] = {floatFromBits(0x3FC90000), floatFromBits(0x39FDA000),
                              floatFromBits(0x33A22000), floatFromBits(0x2C34611A)};
// pi/2 in two double parts, for a k found in single.
constexpr double kHalfPiHi = doubleFromBits(0x3FF921FB54440000);  // 1.5707963267923333
constexpr double kHalfPiLo = doubleFromBits(0x3D868C234C4C6629);  // 2.563344151594519e-12
// pi/2 in four double parts.
constexpr double kHalfPi50[] = {doubleFromBits(0x3FF921FB40000000), doubleFromBits(0x3E74442D00000000),
                                doubleFromBits(0x3CF8469880000000), doubleFromBits(0x3B78CC51701B839A)};

// r = x - k p1 - k p2 - ..., part by part, left to right.
template <class V, class S, size_t P>
inline V subtractParts(V x, V k, const S (&parts)[P]) {
    V r = x;
    for (S p : parts) r = r - k * splat(p);
    return r;
}

// s + e = a - b exactly (Knuth's two-sum on a and -b, for any order of
// magnitudes): the rounding error of s = a - b.
template <class V>
inline V differenceError(V a, V b, V s) {
    const V bb = s - a;
    return (a - (s - bb)) - (b + bb);
}

// The four parts subtracted left to right as above, but with the roundings
// of the second and third subtractions carried and put back with the last
// part.  Where r is small those subtractions are exact (Sterbenz), the
// carries are zero and r is that of subtractParts; where |r| is near pi/4
// they save up to an ulp of r, which the tangent doubles there.
template <class V, class S>
inline V subtractPartsCarried(V x, V k, const S (&parts)[4]) {
    const V r0 = x - k * splat(parts[0]);
    const V b1 = k * splat(parts[1]);
    const V r1 = r0 - b1;
    const V e1 = differenceError(r0, b1, r1);
    const V b2 = k * splat(parts[2]);
    const V r2 = r1 - b2;
    const V e2 = differenceError(r1, b2, r2);
    // r2 + ((e1 + e2) - k p4), written so that x = -0 keeps its sign.
    return r2 - (k * splat(parts[3]) - (e1 + e2));
}

// The shifted sum x 2/pi + 1.5*2^23, whose low bits hold k (with its sign:
// the low bits of 1.5*2^23 + k are k mod 2^22), and k itself.
inline F32x4 shiftedQuadrants(F32x4 x) { return x * splat(kTwoOverPi32) + splat(kShifter23); }
inline F32x4 quadrantsOf(F32x4 shifted) { return shifted - splat(kShifter23); }

// The same for a = |x| in double: a 2/pi + 2^52, whose low word is k.
inline F64x2 shiftedQuadrants(F64x2 a) { return a * splat(kTwoOverPi64) + splat(kShifter2p52); }
inline F64x2 quadrantsOf(F64x2 shifted) { return shifted - splat(kShifter2p52); }

// Masks of the lanes whose k is even, from the shifted sums: the two lowest
// bits of k moved to the top of the lane and compared, as a float, with
// 0.0.  Bit 0 lands on an exponent bit and makes the value non-zero; bit 1
// alone is the sign of a zero, which still compares equal.
inline F32x4 evenQuadrants(F32x4 shifted) {
    return cmpEq(asF32x4(shl32<30>(bitsOf(shifted))), zeroF32x4());
}
inline F64x2 evenQuadrants(F64x2 shifted) {
    return cmpEq(asF64x2(shl64<62>(bitsOf(shifted))), zeroF64x2());
}

}  // namespace orv::trig
