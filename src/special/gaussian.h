// The pieces shared by Erfc and CdfNorm: the Gaussian exponential exp(m)
// for m = -x^2 (Erfc) or m = -x^2 / 2 (CdfNorm), with the sign of x carried
// on the result so that one product gives both sides of the function; and
// the last two Horner steps of the top tiers' polynomials in double-double.
//
// m = (k/128) ln 2 + r, k = round(m 128 / ln 2) by the shifter 1.5 2^52
// (the integer k lands in the low bits of y = m 128/ln 2 + 1.5 2^52), and
// exp(m) = 2^(k >> 7) 2^(j/128) e^r with j = k mod 128 and |r| <= ln2/256.
//
// Two forms.
//   expSigned(m, sign): m one double, e^r by its Taylor polynomial of
//     degree 4, the power of two built straight in the exponent field (a
//     normal number: m above -1022 ln 2).  Used where m is exact or its
//     rounding is below the tier (floats squared in double, A26).
//   expParts(h, e, sign): m = h + e with h of 26 bits and e the rest,
//     r = ((h - n L1) - n L2) + e with ln2/128 = L1 + L2 and n L1 exact,
//     P = e^r - 1 to degree 5, and the power of two S built 154 binades up
//     and scaled back by one product, so that it may be subnormal.  The
//     caller forms T[j] (1 + P) in its own precision.
//   negSquare(x): -x^2 = h + e for that form: x cut into 26-bit halves so
//     that the head's square is exact, then h cut to 26 bits.
//
// Tables: 2^(j/128) whole, from kExp2Fraction64 of src/tables/
// exp2_tables.h; the head and tail split is kErfcExp2Split of
// src/tables/erfc_tables.h.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/simd.h"
#include "tables/exp2_tables.h"

namespace orv::gauss {

// k = round(m 128/ln 2) by the shifter 1.5 2^52; ln2/128 whole and as
// L1 + L2 (L1 with trailing zeros, so that n L1 is exact).
inline constexpr double kInvLn2x128 = doubleFromBits(0x40671547652B82FE);
inline constexpr double kNegShifter = doubleFromBits(0xC338000000000000);  // -1.5 2^52
inline constexpr double kLn2by128 = doubleFromBits(0x3F762E42FEFA39EF);
inline constexpr double kL1 = doubleFromBits(0x3F762E4300000000);
inline constexpr double kL2 = doubleFromBits(0xBDB05C610CA86C39);
inline constexpr uint32_t kIndexMask = 127;
// The power of two: the shifted k masked to the exponent field, plus the
// pattern of 1 (or of 2^154, scaled back by 2^-154).
inline constexpr uint64_t kExponentField = 0xFFF0000000000000;
inline constexpr uint64_t kOneField = 0x3FF0000000000000;
inline constexpr uint64_t kRaisedOne = 0x4990000000000000;  // 2^154
inline constexpr double kTwoToMinus154 = doubleFromBits(0x3650000000000000);
// e^r: 1, 1, 1/2, 1/6, 1/24 (expSigned); e^r - 1 = r (1 + r (1/2 + r (1/6
// + r (1/24 + r/120)))) (expParts).
inline constexpr double kTaylor4[5] = {1.0, 1.0, 0.5, doubleFromBits(0x3FC5555555555555),
                                       doubleFromBits(0x3FA5555555555555)};
inline constexpr double kTaylor5[5] = {doubleFromBits(0x3FF0000000000000), doubleFromBits(0x3FE0000000000000),
                                       doubleFromBits(0x3FC5555555555555), doubleFromBits(0x3FA5555555555555),
                                       doubleFromBits(0x3F81111111111111)};
// -x^2 = h + e: 26-bit heads.
inline constexpr uint64_t kSplitMask = 0xFFFFFFFFF8000000;
inline constexpr uint64_t kAbsSplitMask = 0x7FFFFFFFF8000000;

// 2^(j/128), whole.
struct Pow2Table {
    double v[128];
};
constexpr Pow2Table pow2Table() {
    Pow2Table t{};
    for (int j = 0; j < 128; ++j) t.v[j] = doubleFromBits(kOneField | tables::kExp2Fraction64[j]);
    return t;
}
alignas(16) inline constexpr Pow2Table kPow2 = pow2Table();

inline F64x2 highHalf(F64x2 v) { return v & splatBits64(kSplitMask); }

// exp(m) with the sign bits `sign` ORed on: P(r) S T[j].
inline F64x2 expSigned(F64x2 m, F64x2 sign) {
    F64x2 y = m * splat(kInvLn2x128) - splat(kNegShifter);
    F64x2 n = y + splat(kNegShifter);
    F64x2 r = m - n * splat(kLn2by128);
    I32x4 yBits = bitsOf(y);
    F64x2 scale = asF64x2(add64(shl64<45>(yBits) & splat64(kExponentField), splat64(kOneField))) | sign;
    F64x2 p = splat(kTaylor4[4]);
    for (int k = 3; k >= 0; --k) p = p * r + splat(kTaylor4[k]);
    uint64_t j0 = lane0of64(yBits) & kIndexMask, j1 = lane1of64(yBits) & kIndexMask;
    return p * scale * setLanes(kPow2.v[j0], kPow2.v[j1]);
}

// -x^2 as a 26-bit head h and the rest e.
struct HeadTail {
    F64x2 h, e;
};
inline HeadTail negSquare(F64x2 x) {
    F64x2 ah = x & splatBits64(kAbsSplitMask);
    F64x2 al = andNot(x, splatBits64(kSign64)) - ah;
    F64x2 minusAh = ah | splatBits64(kSign64);
    F64x2 mh = minusAh * ah;  // exact: 26 bits squared
    F64x2 e1 = splat(2.0) * (minusAh * al) - al * al;
    F64x2 h = highHalf(mh);
    return {h, (mh - h) + e1};
}

// exp(h + e) in parts: S = +-2^(k >> 7) with the sign bits `sign`, the
// table index j, and P = e^r - 1.
struct ExpParts {
    F64x2 s, p;
    uint64_t j[2];
};
inline ExpParts expParts(F64x2 h, F64x2 e, F64x2 sign) {
    F64x2 y = h * splat(kInvLn2x128) - splat(kNegShifter);
    F64x2 n = y + splat(kNegShifter);
    F64x2 r = ((h - n * splat(kL1)) - n * splat(kL2)) + e;
    I32x4 yBits = bitsOf(y);
    F64x2 raised = asF64x2(add64(shl64<45>(yBits) & splat64(kExponentField), splat64(kRaisedOne)));
    F64x2 s = (raised | sign) * splat(kTwoToMinus154);
    F64x2 p = splat(kTaylor5[4]);
    for (int k = 3; k >= 0; --k) p = p * r + splat(kTaylor5[k]);
    p = p * r;
    return {s, p, {lane0of64(yBits) & kIndexMask, lane1of64(yBits) & kIndexMask}};
}

// Knuth's two-sum: s + e = a + b exactly.
struct Sum2 {
    F64x2 s, e;
};
inline Sum2 twoSum(F64x2 a, F64x2 b) {
    F64x2 s = a + b;
    F64x2 bb = s - a;
    return {s, (a - (s - bb)) + (b - bb)};
}

// The last two Horner steps of a polynomial d0 + d1 t + q, q = (d2 + ...) t,
// with d0 and d1 held as head and tail, in double-double: the sum is
// returned as a 26-bit head gh (so that gh times a 27-bit head is exact)
// and the rest gl.
inline HeadTail lastTwoSteps(F64x2 q, F64x2 t, F64x2 d1Head, F64x2 d1Tail, F64x2 d0Head, F64x2 d0Tail) {
    Sum2 h = twoSum(d1Head, q);
    F64x2 hh = highHalf(h.s), hl = h.s - hh;
    F64x2 ht = (h.e + d1Tail) + hl;  // d1 + q = hh + ht
    F64x2 th = highHalf(t), tl = t - th;
    F64x2 ph = hh * th;  // exact
    F64x2 pl = (ht * tl + tl * hh) + th * ht;
    Sum2 r = twoSum(d0Head, ph);
    F64x2 low = (r.e + pl) + d0Tail;
    F64x2 gh = highHalf(r.s);
    return {gh, (r.s - gh) + low};  // r.s - gh is exact
}

}  // namespace orv::gauss
