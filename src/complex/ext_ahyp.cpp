// extAsinh, extAcosh, extAtanh: the inverse hyperbolic functions of
// extended values, on extLog, extLog1p and extSqrt.
//
// asinh x, a = |x|, the sign of x put back:
//   a < 2^-5: the series a - a^3/6 + 3a^5/40 - 5a^7/112 + 35a^9/1152 -
//     63a^11/2816 (the signs of asin's turned; the first omitted term is
//     below 2^-65.8 relative);
//   a < 2: ln(1 + w), w = a + a^2/(1 + sqrt(1 + a^2)) (w/(1 + w) <= ln(1 + w),
//     so a relative error of w comes through no larger);
//   a < 2^33: ln(a + sqrt(a^2 + 1));
//   beyond: ln a + ln 2 (the omitted 1/(4a^2) is below 2^-68).
// acosh x, x >= 1, with t = x - 1 (exact below 2^64):
//   x < 2: ln(1 + t + sqrt(2t + t^2)), the argument of ln(1 + w) as a pair
//     and its low part added as wl/(1 + wh);
//   x < 2^33: ln(x + sqrt(x^2 - 1));  beyond: ln x + ln 2.
// atanh x, a = |x|:
//   a < 2^-5: the series a + a^3/3 + a^5/5 + ... + a^13/13 (the first
//     omitted term, a^15/15, is below 2^-73 relative);
//   a < 1/2: (ln(1 + a) - ln(1 - a))/2, two terms of opposite signs;
//   a < 1: ln(1 + 2a/(1 - a))/2, 1 - a exact.
// Measured errors (tests/test_extended.cpp): see the bounds in extended.h.
//
// Special values at entry: NaN gives x + x; asinh keeps +-0 and +-inf;
// acosh(1) = +0, acosh(+inf) = +inf, x < 1 and -inf give the default NaN
// with invalid; atanh keeps +-0, atanh(+-1) = +-inf with divide-by-zero,
// |x| > 1 gives the default NaN with invalid.
#ifndef ORVVM_RECORDS

#include "complex/ext_parts.h"
#include "tables/ext_tables.h"

namespace orv {

using namespace ext;

namespace {
constexpr uint16_t kSeriesField = 0x3FFA;     // |x| < 2^-5
constexpr uint16_t kLogOfTwiceField = 0x4020;  // |x| >= 2^33: ln x + ln 2
constexpr Extended kLn2 = tables::kExtLn2Head + tables::kExtLn2Tail;

Extended log(Extended x) {
    Extended r;
    extLog(&r, &x);
    return r;
}
Extended log1p(Extended x) {
    Extended r;
    extLog1p(&r, &x);
    return r;
}
Extended sqrt(Extended x) {
    Extended r;
    extSqrt(&r, &x);
    return r;
}
}  // namespace

void extAsinh(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isSpecial(x) || isZero(x)) {
        *r = x + x;  // NaN quieted; +-0 and +-inf kept
        return;
    }
    const bool negative = signBit(x);
    const Extended a = negative ? -x : x;
    Extended v;
    if (exponentField(x) < kSeriesField) {
        constexpr Extended s3 = -1.0L / 6, s5 = 3.0L / 40, s7 = -5.0L / 112, s9 = 35.0L / 1152,
                           s11 = -63.0L / 2816;
        const Extended z = a * a;
        v = a + a * z * (s3 + z * (s5 + z * (s7 + z * (s9 + z * s11))));
    } else if (a < 2) {
        const Extended z = a * a;
        v = log1p(a + z / (1 + sqrt(1 + z)));
    } else if (exponentField(x) < kLogOfTwiceField) {
        v = log(a + sqrt(a * a + 1));
    } else {
        v = log(a) + kLn2;
    }
    *r = withSignOf(v, negative);
}

void extAcosh(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isNan(x)) {
        *r = x + x;
        return;
    }
    if (isSpecial(x) || x < 1) {
        *r = signBit(x) && isSpecial(x) ? x - x : isSpecial(x) ? x : (x - x) / (x - x);
        return;
    }
    if (x == 1) {
        *r = 0;
        return;
    }
    if (x < 2) {
        // w = t + sqrt(2t + t^2) carried as a pair (the root refined with
        // its exact residual), and ln(1 + wh + wl) = ln(1 + wh) + wl/(1 + wh).
        const Extended t = x - 1;
        const Pair tt = twoProduct(t, t);
        const Pair d = twoSum(2 * t, tt.hi);
        const Extended dl = d.lo + tt.lo;
        const Extended s = sqrt(d.hi);
        const Pair ss = twoProduct(s, s);
        const Extended sl = (((d.hi - ss.hi) - ss.lo) + dl) / (2 * s);
        const Pair w = fastTwoSum(s, t);
        *r = log1p(w.hi) + (w.lo + sl) / (1 + w.hi);
    } else if (exponentField(x) < kLogOfTwiceField) {
        *r = log(x + sqrt(x * x - 1));
    } else {
        *r = log(x) + kLn2;
    }
}

void extAtanh(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isNan(x) || isZero(x)) {
        *r = x + x;  // NaN quieted; +0 + +0 and -0 + -0 keep the zero's sign
        return;
    }
    const bool negative = signBit(x);
    const Extended a = negative ? -x : x;
    if (isSpecial(x) || a > 1) {
        *r = isSpecial(x) ? x - x : (x - x) / (x - x);
        return;
    }
    if (a == 1) {
        *r = x / opaque(0.0L);  // +-inf, divide-by-zero
        return;
    }
    Extended v;
    if (exponentField(x) < kSeriesField) {
        constexpr Extended c3 = 1.0L / 3, c5 = 0.2L, c7 = 1.0L / 7, c9 = 1.0L / 9, c11 = 1.0L / 11,
                           c13 = 1.0L / 13;
        const Extended z = a * a;
        v = a + a * z * (c3 + z * (c5 + z * (c7 + z * (c9 + z * (c11 + z * c13)))));
    } else if (a < 0.5L) {
        v = (log1p(a) - log1p(-a)) * 0.5L;
    } else {
        v = log1p(2 * a / (1 - a)) * 0.5L;
    }
    *r = withSignOf(v, negative);
}

}  // namespace orv

#endif  // ORVVM_RECORDS
