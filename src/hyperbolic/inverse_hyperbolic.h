// What Asinh, Acosh and Atanh share: each is the logarithm of a number
// u >= 1 built from |x|,
//   asinh a = ln(a + sqrt(a^2 + 1)),
//   acosh x = ln(x + sqrt(x^2 - 1)),
//   atanh a = ln(1 + 2a/(1 - a)) / 2,
// and all the care is in handing the logarithm u with enough of its low
// bits.  Next to a = 0 (asinh, atanh) and x = 1 (acosh) the result is small
// while u lies next to 1: an error of one ulp of 1 in u would be an error
// of 2^-53/result relative.  So u comes as a pair u + c, c its exact or
// nearly exact remainder, and the logarithm takes c into its reduced
// argument the way ln(1 + x) does: with u = 2^E m, row i of the 513-row
// tables of src/tables/log_tables_64f.h from m, r = m rcp_i - 1 and
//   ln(u + c) = e ln2 + T_i + ln(1 + r + c 2^-E rcp_i),
// where the row and e = 0 next to u = 1 make T_i = 0: the result is then
// ln(1 + r') with r' holding u - 1 + c to full relative accuracy.
//
// The pieces here: exact sums and products of doubles (two-sum, and a
// square or product with its rounding error from 26-bit heads), the
// logarithm of a pair in two strengths, and the builders of the pairs for
// binary64.  The 32f members build their u in double with plain roundings,
// which leave errors far below a float's ulp; their families say how.
#pragma once

#include <cstdint>

#include "explog/log64_reduction.h"
#include "explog/log_common.h"
#include "frame/bits.h"
#include "frame/simd.h"

namespace orv::ahyp {

using namespace logs;
using namespace logs64;

// ---- Constants ---------------------------------------------------------------

// Taylor coefficients of (ln(1 + r) - r)/r^2 = -1/2 + r/3 - r^2/4 + ...; with
// |r| <= 2^-10 after the reduction, the series cut after the term of r^k
// leaves r^(k+1)/(k+2) relative: 2^-21.6 (one term), 2^-32 (two), 2^-42.3
// (three), 2^-52.6 (four), 2^-62.8 (five).
inline constexpr double kA2 = -0.5;
inline constexpr double kA3 = doubleFromBits(0x3FD5555555555555);  //  1/3
inline constexpr double kA4 = -0.25;
inline constexpr double kA5 = doubleFromBits(0x3FC999999999999A);  //  1/5
inline constexpr double kA6 = doubleFromBits(0xBFC5555555555555);  // -1/6

// ln 2 as a head with its low 11 fraction bits 0 (so e H is exact for any
// exponent e of a double) and a tail.
inline constexpr double kLn2Hi = doubleFromBits(0x3FE62E42FEFA3800);  // 0.6931471805598903
inline constexpr double kLn2Lo = doubleFromBits(0x3D2EF35793C76730);  // 5.497923018708371e-14

// 2^-E from the exponent field of u: (2046 - (E + 1023)) << 52.
inline constexpr uint64_t kTwiceOneBits = 0x7FE0000000000000;
inline constexpr uint64_t kExponentMask64 = 0x7FF0000000000000;
// m cut to 20 fraction bits: the head whose product with rcp (24 bits) is exact.
inline constexpr uint64_t kMantissaHigh21 = 0x7FFFFFFF00000000;
// The head of a double: its top 26 significant bits (the low 27 fraction
// bits cleared).  Two heads multiply exactly, and a head times the rest
// (at most 27 bits) too.
inline constexpr uint64_t kHead26 = 0xFFFFFFFFF8000000;
// The smallest normal double: stands in for sqrt(x^2 - 1) = 0 at x = 1 as
// the divisor of a correction that is then 0 itself.
inline constexpr double kMinNormal64 = doubleFromBits(0x0010000000000000);

#ifndef ORVVM_RECORDS
// ---- Exact sums and products ------------------------------------------------

// A value as a double and a small remainder.
struct Pair {
    F64x2 u, c;
};

// a + b = s + e exactly, whatever the magnitudes.
inline Pair twoSum(F64x2 a, F64x2 b) {
    F64x2 s = a + b;
    F64x2 bv = s - a;
    return {s, (a - (s - bv)) + (b - bv)};
}
// The same for |a| >= |b| (or a = 0), in three operations.
inline Pair fastTwoSum(F64x2 a, F64x2 b) {
    F64x2 s = a + b;
    return {s, b - (s - a)};
}
// The rounding error of p = f g: the products of the heads and the rests
// of f and g, largest first.  fh gh - p is exact (both lie within 2^-24 of
// p), fh gl and fl gh are exact, fl gl (54 bits) is rounded, and the sums
// grow from terms below 2^-50 p, so the error comes within 2^-100 of p's
// (products that underflow lose only what lies below 2^-1074).
inline F64x2 productError(F64x2 p, F64x2 f, F64x2 g) {
    F64x2 head = splatBits64(kHead26);
    F64x2 fh = f & head, gh = g & head;
    F64x2 fl = f - fh, gl = g - gh;
    return (((fh * gh - p) + fh * gl) + fl * gh) + fl * gl;
}
inline Pair square(F64x2 a) {
    F64x2 h = a & splatBits64(kHead26);
    F64x2 l = a - h;
    F64x2 p = a * a;
    return {p, ((h * h - p) + (h + h) * l) + l * l};
}
// sqrt(v + w) for a normalised pair (|w| at most half an ulp of v), as a
// pair: s = sqrt(v) rounded and the first-order remainder
// (v - s^2 + w)/(2s), whose dropped second-order term is below 2^-105 of s.
// The divisor is kept off 0, where v = w = 0 and the remainder is 0.
inline Pair sqrtPair(F64x2 v, F64x2 w) {
    F64x2 s = sqrt(v);
    Pair s2 = square(s);
    F64x2 rest = ((v - s2.u) - s2.c) + w;  // v - s^2 is exact: they lie within 2^-52
    F64x2 twice = max(s, lanes(kMinNormal64));
    return {s, rest / (twice + twice)};
}

// ---- The logarithm of a pair ----------------------------------------------------

// q(r) of ln(1 + r) = r + r^2 q(r), by the number of Taylor terms.
template <int kTerms>
inline F64x2 series(F64x2 r) {
    if constexpr (kTerms == 1) return lanes(kA2);
    if constexpr (kTerms == 2) return lanes(kA3) * r + lanes(kA2);
    if constexpr (kTerms == 3) return (lanes(kA4) * r + lanes(kA3)) * r + lanes(kA2);
    if constexpr (kTerms == 4) return ((lanes(kA5) * r + lanes(kA4)) * r + lanes(kA3)) * r + lanes(kA2);
    if constexpr (kTerms == 5)
        return (((lanes(kA6) * r + lanes(kA5)) * r + lanes(kA4)) * r + lanes(kA3)) * r + lanes(kA2);
}

// c 2^-E for the exponent E of u (u at least 1 and below 2^1022).
inline F64x2 scaledRemainder(F64x2 c, I32x4 bits) {
    return c * asF64x2(sub64(splat64(kTwiceOneBits), bits & splat64(kExponentMask64)));
}

// ln(u + c) on the one-double table (Ln 26: rcp, T) in plain double: for
// the 32f members, whose results are rounded to float.  e ln2 takes only
// the head of ln 2, 2^-44 relative.  lnOf26 is the same without c, where
// u's rounding (2^-53 absolute) lies far below a float's ulp of the result.
template <int kTerms>
inline F64x2 lnReduced26(I32x4 bits, F64x2 t, F64x2 r) {
    F64x2 e = exponentFrom(bits, kMovedExponentEdge);
    F64x2 p = r + (r * r) * series<kTerms>(r);
    return (e * lanes(kLn2Hi) + t) + p;
}
template <int kTerms>
inline F64x2 lnPair26(F64x2 u, F64x2 c) {
    I32x4 bits = bitsOf(u);
    Rows26 row = gatherRows(kLnTable26, rowOf512<LogRow26>(bits));
    F64x2 m = asF64x2(fractionAsOne(bits));
    F64x2 r = (row.rcp * m - lanes(1.0)) + scaledRemainder(c, bits) * row.rcp;
    return lnReduced26<kTerms>(bits, row.t, r);
}
template <int kTerms>
inline F64x2 lnOf26(F64x2 u) {
    I32x4 bits = bitsOf(u);
    Rows26 row = gatherRows(kLnTable26, rowOf512<LogRow26>(bits));
    F64x2 m = asF64x2(fractionAsOne(bits));
    return lnReduced26<kTerms>(bits, row.t, row.rcp * m - lanes(1.0));
}

// ln(u + c) + eShift ln 2 on the head-tail table (Ln 53: rcp, Th, Tt), for
// binary64.  m = mh + ml with mh of 21 bits, so uh = mh rcp - 1 is exact;
// ul = ml rcp and cr = c 2^-E rcp stay apart, with r = (ul + cr) + uh.
// B = e L + Tt, w = r^2 q(r) with Taylor to r^6 (2^-62.8: four terms would
// leave 2^-52.6 of r, more than an ulp where r is most of the result, next
// to the rows' edges at 2^-10), and the result
//   kTop (A53): (((w + B) + cr) + ul) + A with A = uh + (e H + Th), where
//           next to u = 1 (B is exactly 0: e = 0 and row 0) ul is exact and
//           joins A first, so that only the remainder and the series stay
//           small;
//   else (A50): ((w + B) + cr) + ((uh + ul) + (e H + Th)), uh + ul rounded
//           at the result's scale (up to an ulp where e = 0 and Th nearly
//           cancels uh).
// eShift adds whole powers of two to u without touching it (u at the top
// of the range, whose double would overflow).
template <bool kTop>
inline F64x2 lnPair53(F64x2 u, F64x2 c, F64x2 eShift) {
    I32x4 bits = bitsOf(u);
    Rows53 row = gatherRows(kLnTable53, rowOf512<LogRow53>(bits));
    F64x2 e = exponentFrom(bits, kMovedExponentEdge) + eShift;
    I32x4 mbits = fractionAsOne(bits);
    F64x2 m = asF64x2(mbits);
    F64x2 mh = asF64x2(mbits & splat64(kMantissaHigh21));
    F64x2 uh = mh * row.rcp - lanes(1.0);  // exact: 21 by 24 bits, then Sterbenz
    F64x2 ul = (m - mh) * row.rcp;
    F64x2 cr = scaledRemainder(c, bits) * row.rcp;
    F64x2 r = (ul + cr) + uh;
    F64x2 b = e * lanes(kLn2Lo) + row.tt;
    F64x2 w = (r * r) * series<5>(r);
    if constexpr (kTop) {
        F64x2 a = uh + (e * lanes(kLn2Hi) + row.th);
        F64x2 tailZero = cmpEq(b, zeroF64x2());
        a = a + (ul & tailZero);  // a is never -0: adding +0 elsewhere changes nothing
        ul = andNot(ul, tailZero);
        return (((w + b) + cr) + ul) + a;
    } else {
        F64x2 a = (uh + ul) + (e * lanes(kLn2Hi) + row.th);
        return ((w + b) + cr) + a;
    }
}

// ---- The pairs, binary64 ------------------------------------------------------------

// a + sqrt(a^2 + 1) for a = |x| below 2^511: a^2 as a pair, 1 + a^2
// normalised, its square root as a pair, and a added exactly.  For a below
// 2^-511 the square's remainder underflows, far below what 1 + a^2 keeps.
inline Pair asinhPair(F64x2 a) {
    Pair a2 = square(a);
    Pair v = twoSum(lanes(1.0), a2.u);
    Pair vn = fastTwoSum(v.u, v.c + a2.c);
    Pair s = sqrtPair(vn.u, vn.c);
    Pair u = twoSum(a, s.u);
    return {u.u, u.c + s.c};
}

// x + sqrt(x^2 - 1) for x in [1, 2^511): x^2 - 1 is exact as a pair (the
// square's head less 1 by a fast two-sum, then its remainder), so next to
// x = 1 + d it holds 2d + d^2 to full relative accuracy; then its square
// root, and x added (x >= sqrt(x^2 - 1), a fast two-sum).
inline Pair acoshPair(F64x2 x) {
    Pair x2 = square(x);
    Pair v = fastTwoSum(x2.u, lanes(-1.0));
    Pair vn = fastTwoSum(v.u, v.c + x2.c);
    Pair s = sqrtPair(vn.u, vn.c);
    Pair u = fastTwoSum(x, s.u);
    return {u.u, u.c + s.c};
}

// 1 + 2a/(1 - a) for a = |x| below 1: d = 1 - a as a pair, t = 2a/d by one
// reciprocal, th = 2a (1/dh) and tl = (2a - th dh - th dl)/dh from the
// exact product th dh (2a - th dh is exact: th dh lies within 2^-51 of 2a),
// then 1 + th exactly.  Below 2^-53, d = 1 and t = 2a exactly.
inline Pair atanhPair(F64x2 a) {
    Pair d = fastTwoSum(lanes(1.0), zeroF64x2() - a);
    F64x2 inv = lanes(1.0) / d.u;
    F64x2 twoA = a + a;
    F64x2 th = twoA * inv;
    F64x2 p = th * d.u;
    F64x2 rest = ((twoA - p) - productError(p, th, d.u)) - th * d.c;
    Pair u = twoSum(lanes(1.0), th);
    return {u.u, u.c + rest * inv};
}

// The sign of x ORed onto y (y >= 0, or +0): odd functions bit for bit,
// and -0 for -0.
inline F64x2 withSignOf(F64x2 y, F64x2 x) { return y | (x & splatBits64(kSign64)); }
inline F32x4 withSignOf(F32x4 y, F32x4 x) { return y | (x & splatBits32(kSign32)); }
inline F64x2 magnitude(F64x2 x) { return andNot(x, splatBits64(kSign64)); }

#endif

}  // namespace orv::ahyp
