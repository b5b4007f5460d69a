// extExp, extSinhCosh, extSinh, extCosh, extTanh: the exponential and the
// hyperbolic functions of an extended value.
//
// Exponential.  k = round(x 256/ln 2) (the shifter 1.5 2^63 rounds in one
// addition), r = x - k ln2/256 with ln2/256 split into a 32-bit head
// (k head is exact for |k| < 2^32, and x - k head exact by Sterbenz's
// lemma) and an extended tail, so |r| <= ln2/512 + 2^-80.  Then
//   e^x = 2^(k >> 8) 2^((k & 255)/256) e^r,
// with 2^(j/256) from the table kExtExp2Table in two extended parts and
//   e^r - 1 = r + r^2 (1/2 + r (1/6 + r (1/24 + r (1/120 + r/720)))),
// whose first omitted term r^7/5040 is below 2^-79.  The sum
// T.hi + (T.lo + T.hi p + T.lo p) leaves one rounding that counts, and the
// power of two comes last, in two exact steps where the exponent runs out
// of range (so a subnormal result is rounded once).  Arguments beyond
// +-12000 are clamped there: the result has long overflowed or underflowed.
//
// Hyperbolic functions, with a = |x|:
//   a < 2^-18 (exponent field below 0x3FED): sinh x = x + x^3/6 and
//     cosh x = 1 + x^2/2; the omitted terms are below 2^-72 relative.
//   a < 1: the Taylor series in x^2, sinh to x^21/21! and cosh to
//     x^22/22! (the omitted terms below 2^-73).
//   a up to 26.17 (the pattern 0x4003D154 of exponent and leading bits):
//     E = e^a/2, sinh = E - 1/(4E), cosh = E + 1/(4E); from a = 1 on the
//     difference loses less than a bit.
//   beyond: e^-a is below 2^-75 of e^a, sinh = +-E and cosh = E, where
//     E = e^a/2 is formed with the half inside the exponent, so that it
//     overflows only when the result does.
//   tanh: an odd series x - x^3/3 + 2x^5/15 - 17x^7/315 below 2^-8 (the
//     omitted 62x^9/2835 is below 2^-69 relative), sinh/cosh of the series
//     below 1, 1 - 2/(e^2a + 1) up to 23, and +-1 beyond (e^-2a < 2^-66).
// Measured errors (tests/test_extended.cpp): see the bounds in extended.h.
//
// Special values at entry: NaN gives x + x; e^+inf = +inf, e^-inf = +0;
// sinh keeps +-0 and +-inf, cosh gives 1 and +inf; tanh keeps +-0 and gives
// +-1 at +-inf.
#ifndef ORVVM_RECORDS

#include "complex/ext_parts.h"
#include "tables/ext_tables.h"

namespace orv {

namespace ext {
namespace {
using tables::kExt256OverLn2;
using tables::kExtLn2By256Head;
using tables::kExtLn2By256Tail;

constexpr Extended kExpClamp = 12000;  // e^12000 and e^-12000 are beyond the extended range
constexpr int kTableBits = 8;
constexpr int kTableMask = 255;

// e^r - 1 for |r| <= ln2/512.
Extended expSeries(Extended r) {
    constexpr Extended c2 = 0.5L, c3 = inverseFactorial(3), c4 = inverseFactorial(4), c5 = inverseFactorial(5),
                       c6 = inverseFactorial(6);
    return r + r * r * (c2 + r * (c3 + r * (c4 + r * (c5 + r * c6))));
}
}  // namespace

// e^x = (hi + lo) 2^n for |x| <= kExpClamp, hi the table's head: the
// unrounded sum, for the callers that subtract from it.
Pair expParts(Extended x, int* n) {
    const Extended k = nearestInteger(x * kExt256OverLn2);
    const Extended r = (x - k * kExtLn2By256Head) - k * kExtLn2By256Tail;
    const long long ki = (long long)k;
    const tables::ExtHiLo& t = tables::kExtExp2Table[ki & kTableMask];
    const Extended p = expSeries(r);
    *n = int(ki >> kTableBits);
    return {t.hi, t.lo + (t.hi * p + t.lo * p)};
}

Extended expScaled(Extended x, int scale) {
    if (x > kExpClamp) x = kExpClamp;
    if (x < -kExpClamp) x = -kExpClamp;
    int n;
    const Pair v = expParts(x, &n);
    return scaleByPowerOfTwo(v.hi + v.lo, n + scale);
}

}  // namespace ext

using namespace ext;

namespace {
constexpr uint16_t kShortSeriesField = 0x3FED;  // |x| < 2^-18
constexpr uint16_t kTanhSeriesField = 0x3FF7;   // |x| < 2^-8
constexpr uint32_t kOneExpPattern = 0x3FFF8000;  // |x| < 1: the Taylor series
constexpr uint32_t kLargePattern = 0x4003D154;   // |x| > 26.17: e^-|x| is lost
constexpr Extended kTanhOne = 23;                // tanh x = +-1 beyond

// Taylor coefficients 1/n!: odd n from 3 to 21 for sinh, even n from 4 to
// 22 for cosh.
struct InverseFactorials {
    Extended odd[10];
    Extended even[10];
};
constexpr InverseFactorials makeInverseFactorials() {
    InverseFactorials c{};
    for (int i = 0; i < 10; ++i) {
        c.odd[i] = inverseFactorial(2 * i + 3);
        c.even[i] = inverseFactorial(2 * i + 4);
    }
    return c;
}
alignas(16) constexpr InverseFactorials kTaylor = makeInverseFactorials();

// sinh x - x and cosh x - 1 from their Taylor series for |x| < 1.
void hyperbolicSeries(Extended x, Extended* shm, Extended* chm1) {
    const Extended z = x * x;
    if (exponentField(x) < kShortSeriesField) {
        *shm = x * z * kTaylor.odd[0];
        *chm1 = z * 0.5L;
        return;
    }
    Extended s = kTaylor.odd[9], c = kTaylor.even[9];
    for (int i = 8; i >= 0; --i) {
        s = kTaylor.odd[i] + z * s;
        c = kTaylor.even[i] + z * c;
    }
    *shm = x * z * s;
    *chm1 = z * 0.5L + z * z * c;
}

// Both functions of a finite x.
void hyperbolic(Extended x, Extended* sh, Extended* ch) {
    const uint32_t top = topPattern(x);
    if (top < kOneExpPattern) {
        Extended shm, chm1;
        hyperbolicSeries(x, &shm, &chm1);
        *sh = x + shm;
        *ch = 1 + chm1;
        return;
    }
    const bool negative = signBit(x);
    const Extended a = negative ? -x : x;
    if (top > kLargePattern) {
        const Extended e = expScaled(a, -1);  // e^a / 2
        *sh = withSignOf(e, negative);
        *ch = e;
        return;
    }
    // e^a/2 = hi + lo, unrounded (the scaling is exact in this range), and
    // e^-a/2 = 1/(4 (hi + lo)): the one rounding that counts is the last.
    int n;
    const Pair v = expParts(a, &n);
    const Extended scale = powerOfTwo(n - 1);
    const Extended hi = v.hi * scale, lo = v.lo * scale;
    const Extended inverse = 0.25L / (hi + lo);
    const Pair d = twoSum(hi, -inverse), s = twoSum(hi, inverse);
    *sh = withSignOf(d.hi + (d.lo + lo), negative);
    *ch = s.hi + (s.lo + lo);
}
}  // namespace

void extExp(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isSpecial(x)) {
        *r = isNan(x) ? x + x : signBit(x) ? 0.0L : x;
        return;
    }
    if (isZero(x)) {
        *r = 1;
        return;
    }
    *r = expScaled(x, 0);
}

void extSinhCosh(Extended* sh, Extended* ch, const Extended* xp) {
    const Extended x = *xp;
    if (isSpecial(x)) {
        *sh = x + x;
        *ch = isNan(x) ? x + x : signBit(x) ? -x : x;  // +inf for either infinity
        return;
    }
    if (isZero(x)) {
        *sh = x;
        *ch = 1;
        return;
    }
    hyperbolic(x, sh, ch);
}

void extSinh(Extended* r, const Extended* x) {
    Extended ch;
    extSinhCosh(r, &ch, x);
}

void extCosh(Extended* r, const Extended* x) {
    Extended sh;
    extSinhCosh(&sh, r, x);
}

void extTanh(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isSpecial(x)) {
        *r = isNan(x) ? x + x : withSignOf(1.0L, signBit(x));
        return;
    }
    if (isZero(x)) {
        *r = x;
        return;
    }
    const bool negative = signBit(x);
    const Extended a = negative ? -x : x;
    if (exponentField(x) < kTanhSeriesField) {
        constexpr Extended t3 = -1.0L / 3, t5 = 2.0L / 15, t7 = -17.0L / 315;
        const Extended z = x * x;
        *r = x + x * z * (t3 + z * (t5 + z * t7));
        return;
    }
    if (topPattern(x) < kOneExpPattern) {
        // t0 = sinh/cosh, then one correction with the residual
        // x + v - t0 (1 + w), v = sinh - x, w = cosh - 1: x - t0 is exact
        // (Sterbenz: t0/x lies in [0.76, 1]) and t0 w is split exactly.
        Extended v, w;
        hyperbolicSeries(x, &v, &w);
        const Extended ch = 1 + w;
        const Extended t0 = (x + v) / ch;
        const Pair tw = twoProduct(t0, w);
        const Extended residual = (((x - t0) + v) - tw.hi) - tw.lo;
        *r = t0 + residual / ch;
        return;
    }
    if (a > kTanhOne) {
        *r = withSignOf(1 - opaque(0x1p-100L), negative);  // rounds to 1, inexact
        return;
    }
    const Extended e2 = expScaled(2 * a, 0);
    *r = withSignOf(1 - 2 / (e2 + 1), negative);
}

}  // namespace orv

#endif  // ORVVM_RECORDS
