// extSqrt: the square root of an extended value, without the x87 root.
//
// x = m 2^(2h) with m in [1, 4): the exponent is halved (made even first,
// the odd case moving m into [2, 4)), and sqrt(m) is found from a seed
// y0 of 1/sqrt(m) by the mantissa index (the parity of the exponent and
// the first 8 fraction bits, under the mask 0x1FF: 512 cells, the seed
// taken at each cell's midpoint, so that u = m y0^2 - 1 is below 2^-8.5).
// The reciprocal root follows from the binomial series of (1 + u)^(-1/2),
//   y = y0 (1 - u/2 + 3u^2/8 - 5u^3/16 + 35u^4/128 - 63u^5/256
//           + 231u^6/1024 - 429u^7/2048),
// whose first omitted term, 6435u^8/32768, is below 2^-70.  Then s = m y
// is within about two units of the 64-bit significand, and one correction
// with the exact residual m - s^2 (s split into two 32-bit halves, whose
// products are exact; m - sh^2 is exact by Sterbenz's lemma) leaves the
// final addition as the only rounding that counts:
//   sqrt(m) = s + (m - s^2) y/2 + O((s - sqrt m)^2).
// Measured error (tests/test_extended.cpp): see kExtSqrtBound.
//
// Special values at entry: NaN gives x + x (quieted); +inf and +-0 give x;
// x < 0 and -inf give the default NaN with invalid raised.
#ifndef ORVVM_RECORDS

#include "complex/ext_parts.h"
#include "tables/ext_tables.h"

namespace orv {

namespace {
using namespace ext;

// The seed's index: the parity of the exponent above the first 8 fraction
// bits (the significand shifted right by 55 keeps the leading one at bit 8,
// where the parity takes its place).
constexpr uint32_t kSeedIndexMask = 0x1FF;
constexpr uint32_t kSeedLeadingOne = 0x100;
constexpr int kSeedShift = 55;
constexpr Extended kTwoTo64 = 18446744073709551616.0L;

// (1 + u)^(-1/2) - 1 from its binomial series, to u^7.
Extended rsqrtSeries(Extended u) {
    constexpr Extended k1 = -0.5L, k2 = 0.375L, k3 = -0.3125L, k4 = 35.0L / 128, k5 = -63.0L / 256,
                       k6 = 231.0L / 1024, k7 = -429.0L / 2048;
    return u * (k1 + u * (k2 + u * (k3 + u * (k4 + u * (k5 + u * (k6 + u * k7))))));
}
}  // namespace

void extSqrt(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (isSpecial(x)) {
        *r = signBit(x) && !isNan(x) ? x - x : x + x;  // -inf: inf - inf, the default NaN
        return;
    }
    if (isZero(x)) {
        *r = x;
        return;
    }
    if (signBit(x)) {
        *r = (x - x) / (x - x);  // 0/0: the default NaN, invalid
        return;
    }
    // Subnormal arguments are brought up by 2^64 (an even power).
    Extended v = x;
    int shift = 0;
    if (exponentField(v) == 0) {
        v *= kTwoTo64;
        shift = -64;
    }
    const ExtendedBits b = extendedBits(v);
    const int e = int(b.signExponent) - kBias + shift;
    const int odd = e & 1;
    const int half = (e - odd) / 2;
    const Extended m = extendedFromBits(b.significand, uint16_t(kBias + odd));  // in [1, 4)

    const uint32_t index = ((uint32_t(b.significand >> kSeedShift) ^ kSeedLeadingOne) | uint32_t(odd) << 8) & kSeedIndexMask;
    const Extended y0 = tables::kExtRsqrtSeed[index];
    const Extended u = (m * y0) * y0 - 1;
    const Extended y = y0 + y0 * rsqrtSeries(u);

    const Extended s = m * y;
    const Pair sh = split(s);
    const Extended residual = ((m - sh.hi * sh.hi) - 2 * sh.hi * sh.lo) - sh.lo * sh.lo;
    const Extended root = s + residual * (y * 0.5L);
    *r = root * powerOfTwo(half);
}

}  // namespace orv

#endif  // ORVVM_RECORDS
