// extAtan, extAtan2, extAsin, extAcos: the inverse circular functions of
// extended values.
//
// All of them come down to atan(num/den) for 0 <= num <= den, without
// forming the quotient first.  j = round(128 num/den) picks c = j/128, and
//   atan(num/den) = atan c + atan t,   t = (num - c den)/(den + c num),
// |t| <= 2^-8.  The two are scaled first so that den lies in [1, 2) (exact,
// and num, at least den/256 when j > 0, stays normal); num and den are
// split in two 32-bit halves so that c den and c num are exact in two
// pieces, num - c den loses nothing (Sterbenz's lemma for the first piece),
// and the quotient is refined once with its residual.  atan c comes from
// kExtAtanTable in two extended parts, and
//   atan t = t - t^3/3 + t^5/5 - t^7/7 + t^9/9
// (the first omitted term is below 2^-80 relative).  For j = 0, t is the
// quotient itself, refined once by its residual.  The result stays a pair hi + lo, so that pi/2 - it and
// pi - it are formed with pi/2 and pi as a 32-bit head (6.0771005e-11 and
// 1.2154201e-10 the tails) and a two-sum.
//   atan x: atan(|x|/1) or pi/2 - atan(1/|x|), with the sign of x.
//   atan2(y, x): the ratio of the smaller of |y|, |x| to the larger, pi/2 -
//     it when |y| > |x|, pi - that when x < 0, the sign of y.
//   asin x, acos x: below 2^-5 the odd series of asin, x + x^3/6 + 3x^5/40
//     + 5x^7/112 + 35x^9/1152 + 63x^11/2816 (the first omitted term is
//     below 2^-65.8 relative), acos = pi/2 - it; otherwise the angle of
//     (sqrt(1 - x^2), |x|) by the ratio above, the root from extSqrt on
//     1 - x^2 formed exactly (2w - w^2 with w = 1 - a from a = 1/2 on) and
//     refined by its residual into a pair; its low part moves the angle
//     by a times it, the point lying on the unit circle.
// Measured errors (tests/test_extended.cpp): see the bounds in extended.h.
//
// Special values at entry: NaN gives x + x (atan2: y + x).  atan(+-inf) =
// +-pi/2, atan keeps +-0.  atan2 follows C99 Annex F: atan2(+-0, x) is +-0
// for x > 0 or x = +0 and +-pi for x < 0 or x = -0; atan2(y, +-0) is
// +-pi/2 for y != 0; +-pi/4, +-3pi/4 for two infinities; +-pi/2 for an
// infinite y; +-0 or +-pi for an infinite x.  asin and acos of |x| > 1
// (infinities included) give the default NaN with invalid; asin keeps +-0,
// acos(1) = +0, acos(-1) = pi.
#ifndef ORVVM_RECORDS

#include "complex/ext_parts.h"
#include "tables/ext_tables.h"

namespace orv {

namespace ext {
namespace {
constexpr Extended kSteps = 128;
constexpr Extended kStep = 1.0L / 128;
constexpr uint16_t kRefinedQuotientField = 64;  // quotients from 2^-16319 on are refined

// atan t - t for |t| <= 2^-8.
Extended atanSeriesTail(Extended t) {
    constexpr Extended a3 = -1.0L / 3, a5 = 0.2L, a7 = -1.0L / 7, a9 = 1.0L / 9;
    const Extended z = t * t;
    return t * z * (a3 + z * (a5 + z * (a7 + z * a9)));
}
}  // namespace

Pair atanRatio(Extended num, Extended den) {
    const Extended quotient = num / den;
    const Extended j = nearestInteger(quotient * kSteps);
    const int scale = int(kBias) - int(exponentField(den));  // den * 2^scale in [1, 2)
    if (j == 0) {
        // The quotient itself, refined once by its exact residual where it
        // is far enough from the subnormal range for the scaled num to stay
        // normal.
        Extended low = 0;
        if (exponentField(quotient) > kRefinedQuotientField) {
            const Extended n = scaleByPowerOfTwo(num, scale), d = scaleByPowerOfTwo(den, scale);
            const Pair p = twoProduct(quotient, d);
            low = ((n - p.hi) - p.lo) / d;
        }
        return {quotient, low + atanSeriesTail(quotient)};
    }
    const Extended n = scaleByPowerOfTwo(num, scale), d = scaleByPowerOfTwo(den, scale);
    const Extended c = j * kStep;
    // Numerator and denominator as pairs (the products with the 8-bit c of
    // 32-bit halves are exact), then the quotient with one correction by
    // its residual.
    const Pair dh = split(d), nh = split(n);
    const Pair num2 = twoSum(n - c * dh.hi, -(c * dh.lo));
    const Pair den1 = twoSum(d, c * nh.hi);
    const Pair den2 = {den1.hi, den1.lo + c * nh.lo};
    const Extended t0 = num2.hi / den2.hi;
    const Pair p = twoProduct(t0, den2.hi);
    const Extended t = t0 + ((((num2.hi - p.hi) - p.lo) + num2.lo) - t0 * den2.lo) / den2.hi;
    const tables::ExtHiLo& a = tables::kExtAtanTable[int(j)];
    return {a.hi, a.lo + (t + atanSeriesTail(t))};
}

}  // namespace ext

using namespace ext;

namespace {
using tables::kExtPiBy2Head;
using tables::kExtPiBy2Tail;
using tables::kExtPiHead;
using tables::kExtPiTail;

constexpr uint16_t kAsinSeriesField = 0x3FFA;  // |x| < 2^-5

// head + tail - p, as a pair.
Pair fromConstant(Extended head, Extended tail, const Pair& p) {
    const Pair d = twoSum(head, -p.hi);
    return {d.hi, (d.lo + tail) - p.lo};
}
Extended value(const Pair& p) { return p.hi + p.lo; }

// The angle of the point (x, y) with x, y >= 0, not both 0, finite.
Pair firstQuadrantAngle(Extended y, Extended x) {
    if (y <= x) return atanRatio(y, x);
    return fromConstant(kExtPiBy2Head, kExtPiBy2Tail, atanRatio(x, y));
}

// asin x - x for |x| < 2^-5.
Extended asinSeriesTail(Extended x) {
    constexpr Extended s3 = 1.0L / 6, s5 = 3.0L / 40, s7 = 5.0L / 112, s9 = 35.0L / 1152, s11 = 63.0L / 2816;
    const Extended z = x * x;
    return x * z * (s3 + z * (s5 + z * (s7 + z * (s9 + z * s11))));
}

// sqrt(1 - a^2) for 2^-5 <= a <= 1 as hi + lo: 1 - a^2 as an exact pair
// (from a = 1/2 on as 2w - w^2 with w = 1 - a, exact there), its root by
// extSqrt and the low part from the root's exact residual.
Pair complement(Extended a) {
    Pair d;
    if (a < 0.5L) {
        const Pair aa = twoProduct(a, a);
        const Pair s = twoSum(1, -aa.hi);
        d = {s.hi, s.lo - aa.lo};
    } else {
        const Extended w = 1 - a;
        const Pair ww = twoProduct(w, w);
        const Pair s = twoSum(2 * w, -ww.hi);
        d = {s.hi, s.lo - ww.lo};
    }
    Extended b;
    extSqrt(&b, &d.hi);
    if (b == 0) return {0, 0};
    const Pair bb = twoProduct(b, b);
    return {b, (((d.hi - bb.hi) - bb.lo) + d.lo) / (2 * b)};
}

// The default NaN for |x| > 1 (infinities included), with invalid.
Extended outOfDomain(Extended x) { return isSpecial(x) ? x - x : (x - x) / (x - x); }
}  // namespace

void extAtan(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    const bool negative = signBit(x);
    if (isNan(x)) {
        *r = x + x;
        return;
    }
    if (isSpecial(x)) {
        *r = withSignOf(kExtPiBy2Head + kExtPiBy2Tail, negative);
        return;
    }
    if (isZero(x)) {
        *r = x;
        return;
    }
    const Extended a = negative ? -x : x;
    *r = withSignOf(value(firstQuadrantAngle(a, 1)), negative);
}

void extAtan2(Extended* r, const Extended* yp, const Extended* xp) {
    const Extended y = *yp, x = *xp;
    if (isNan(y) || isNan(x)) {
        *r = y + x;
        return;
    }
    const bool yNegative = signBit(y), xNegative = signBit(x);
    const Extended piBy2 = kExtPiBy2Head + kExtPiBy2Tail;
    const Extended pi = kExtPiHead + kExtPiTail;
    if (isZero(y)) {
        *r = xNegative ? withSignOf(pi, yNegative) : y;
        return;
    }
    if (isSpecial(y)) {
        Extended angle = piBy2;
        if (isSpecial(x)) angle = xNegative ? 0.75L * kExtPiHead + 0.75L * kExtPiTail : 0.5L * piBy2;
        *r = withSignOf(angle, yNegative);
        return;
    }
    if (isZero(x)) {
        *r = withSignOf(piBy2, yNegative);
        return;
    }
    if (isSpecial(x)) {
        *r = withSignOf(xNegative ? pi : 0.0L, yNegative);
        return;
    }
    Pair angle = firstQuadrantAngle(yNegative ? -y : y, xNegative ? -x : x);
    if (xNegative) angle = fromConstant(kExtPiHead, kExtPiTail, angle);
    *r = withSignOf(value(angle), yNegative);
}

void extAsin(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isNan(x)) {
        *r = x + x;
        return;
    }
    if (isZero(x)) {
        *r = x;
        return;
    }
    const bool negative = signBit(x);
    const Extended a = negative ? -x : x;
    if (isSpecial(x) || a > 1) {
        *r = outOfDomain(x);
        return;
    }
    if (exponentField(x) < kAsinSeriesField) {
        *r = x + asinSeriesTail(x);
        return;
    }
    // The angle of (b, a), b = sqrt(1 - a^2) = b.hi + b.lo: the low part
    // moves it by -a b.lo (the point lies on the unit circle).
    const Pair b = complement(a);
    const Pair angle = firstQuadrantAngle(a, b.hi);
    *r = withSignOf(angle.hi + (angle.lo - a * b.lo), negative);
}

void extAcos(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isNan(x)) {
        *r = x + x;
        return;
    }
    const bool negative = signBit(x);
    const Extended a = negative ? -x : x;
    if (isSpecial(x) || a > 1) {
        *r = outOfDomain(x);
        return;
    }
    if (exponentField(x) < kAsinSeriesField) {  // pi/2 - asin x; zeros included
        *r = value(fromConstant(kExtPiBy2Head, kExtPiBy2Tail, {x, asinSeriesTail(x)}));
        return;
    }
    // The angle of (a, b): the low part of b moves it by a b.lo.
    const Pair b = complement(a);
    Pair angle = firstQuadrantAngle(b.hi, a);
    angle.lo += a * b.lo;
    if (negative) angle = fromConstant(kExtPiHead, kExtPiTail, angle);
    *r = value(angle);
}

}  // namespace orv

#endif  // ORVVM_RECORDS
