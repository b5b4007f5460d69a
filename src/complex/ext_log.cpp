// extLog, extLog1p: the natural logarithm of an extended value and of one
// plus it.
//
// ln s.  s = 2^e m with m in [1, 2); the index j = round(256 (m - 1)) picks
// the point t = 1 + j/256 (j = 256 moves to e + 1, j = 0, so that values
// just below a power of two meet the point above them and ln is exact at
// 1), and
//   ln s = e ln 2 + ln t + ln(1 + u),   u = (m - t)/t,   |u| <= 2^-9,
// where m - t is exact (Sterbenz's lemma) and the quotient is the one
// rounding of u.  ln t comes from kExtLogTable in two extended parts, ln 2
// as a 32-bit head (e times it is exact for every exponent), a double tail
// -4.2009151e-11 and an extended rest, and
//   ln(1 + u) = u - u^2/2 + u^3/3 - u^4/4 + u^5/5 + c6 u^6 + c7 u^7,
// c6 and c7 fitted to the rest on |u| <= 2^-9 (fit_ext_log.sollya; the
// polynomial is within 2^-69.4 of ln(1 + u), relative).  The parts are added
// from the smallest up, e ln2 head + ln t hi by a two-sum, so the one
// rounding that counts is the last.
//
// ln(1 + x).  For |x| < 2^-7 the series of ln(1 + x) to degree 11 (the
// first omitted term is below 2^-77 relative).  Otherwise s = 1 + x and its
// rounding error c by a two-sum, and ln(s + c) as above with c/t added to u
// (c is below half an ulp of s, so ln(s + c) = ln s + c/s to far below the
// last bit).
// Measured errors (tests/test_extended.cpp): see the bounds in extended.h.
//
// Special values at entry: NaN gives x + x; ln(+inf) = +inf; ln(+-0) =
// -inf with divide-by-zero (-1/|x|); ln of a negative number or -inf is the
// default NaN with invalid.  ln(1 + x): x = -1, found by its pattern, gives
// -inf with divide-by-zero; +-0 is kept; x < -1 gives the default NaN.
#ifndef ORVVM_RECORDS

#include "complex/ext_parts.h"
#include "tables/ext_tables.h"

namespace orv {

namespace ext {
namespace {
using tables::kExtLn2Head;
using tables::kExtLn2Rest;
using tables::kExtLn2Tail;

constexpr int kIndexShift = 54;  // the leading one and 8 fraction bits, and one more to round on
constexpr int kTableSize = 256;
constexpr Extended kTwoTo64 = 18446744073709551616.0L;

// ln(1 + u) - u for |u| <= 2^-9.
// ---- begin fit_ext_log
// ln(1 + u) ~ u - u^2/2 + u^3/3 - u^4/4 + u^5/5 + c6 u^6 + c7 u^7 on |u| <= 2^-9:
// 1.21e-21 = 2^-69.49 relative (with -1/6 and 1/7: 1.36e-20 = 2^-66).
constexpr Extended kLogC6 = -0x1.55558fa377b576bap-3L;
constexpr Extended kLogC7 = 0x1.24927f2f36d03cb6p-3L;
// ---- end fit_ext_log
Extended logSeriesTail(Extended u) {
    constexpr Extended c2 = -0.5L, c3 = 1.0L / 3, c4 = -0.25L, c5 = 0.2L;
    return u * u * (c2 + u * (c3 + u * (c4 + u * (c5 + u * (kLogC6 + u * kLogC7)))));
}
}  // namespace

Extended logOfSum(Extended s, Extended c) {
    int e = 0;
    if (exponentField(s) == 0) {  // subnormal: up by 2^64
        s *= kTwoTo64;
        c *= kTwoTo64;
        e = -64;
    }
    const ExtendedBits b = extendedBits(s);
    e += int(b.signExponent) - kBias;
    Extended m = extendedFromBits(b.significand, kBias);
    Extended cm = c == 0 ? 0.0L : scaleByPowerOfTwo(c, -e);
    int j = int(((b.significand >> kIndexShift) + 1) >> 1) - kTableSize;
    if (j == kTableSize) {
        j = 0;
        e += 1;
        m *= 0.5L;
        cm *= 0.5L;
    }
    const Extended t = Extended(kTableSize + j) / kTableSize;
    const Extended u = ((m - t) + cm) / t;
    const tables::ExtHiLo& l = tables::kExtLogTable[j];
    const Extended ee = Extended(e);
    const Pair head = fastTwoSum(ee * kExtLn2Head, l.hi);
    const Extended low = ((ee * kExtLn2Rest + ee * kExtLn2Tail) + l.lo) + head.lo;
    return head.hi + (u + (logSeriesTail(u) + low));
}

}  // namespace ext

using namespace ext;

namespace {
constexpr uint16_t kLog1pSeriesField = 0x3FF8;  // |x| < 2^-7
constexpr uint64_t kOneSignificand = 0x8000000000000000;
constexpr uint16_t kMinusOneSignExponent = 0xBFFF;

// ln(1 + x) for |x| < 2^-7: x + x^2 (-1/2 + x (1/3 - ... + x (-1/10 + x/11))).
struct Log1pCoefficients {
    Extended c[10];  // (-1)^(n+1)/n for n = 2 to 11
};
constexpr Log1pCoefficients makeLog1pCoefficients() {
    Log1pCoefficients k{};
    for (int n = 2; n <= 11; ++n) k.c[n - 2] = ((n & 1) ? 1.0L : -1.0L) / n;
    return k;
}
alignas(16) constexpr Log1pCoefficients kLog1p = makeLog1pCoefficients();

Extended log1pSeries(Extended x) {
    Extended p = kLog1p.c[9];
    for (int i = 8; i >= 0; --i) p = kLog1p.c[i] + x * p;
    return x + x * x * p;
}
}  // namespace

void extLog(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isSpecial(x)) {
        *r = signBit(x) && !isNan(x) ? x - x : x + x;  // -inf: inf - inf, the default NaN
        return;
    }
    if (isZero(x)) {
        *r = -1.0L / (signBit(x) ? -x : x);
        return;
    }
    if (signBit(x)) {
        *r = (x - x) / (x - x);
        return;
    }
    *r = logOfSum(x, 0);
}

void extLog1p(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    const ExtendedBits b = extendedBits(x);
    if (isSpecial(x)) {
        *r = signBit(x) && !isNan(x) ? x - x : x + x;
        return;
    }
    if (isZero(x)) {
        *r = x;
        return;
    }
    if (b.signExponent == kMinusOneSignExponent && b.significand == kOneSignificand) {
        *r = -1.0L / opaque(0.0L);
        return;
    }
    if (exponentField(x) < kLog1pSeriesField) {
        *r = log1pSeries(x);
        return;
    }
    if (x < -1) {
        *r = (x - x) / (x - x);
        return;
    }
    const Pair s = twoSum(1, x);
    *r = logOfSum(s.hi, s.lo);
}

}  // namespace orv

#endif  // ORVVM_RECORDS
