// The complex logarithms: the kernels complexLn and complexLog10, and the
// Log10 members, plain wrappers round complexLog10 (one kernel for every
// tier of a width: the 32fc tiers are one computation, and so are the
// 64fc tiers).
//
// complexLn(z), z = x + iy, a = |x|, b = |y|, in x87 extended, each part
// rounded once to double:
//   1. x NaN: re = y x (y y, that is +inf, when y is infinite), im = x x.
//   2. y NaN: re = y y (x x, +inf, when x is infinite), im = y y.
//   3. x or y infinite: re = +inf, im = atan2(y, x) (extAtan2).
//   4. Both finite, zeros included: B = max(a, b), S = min(a, b); the
//      squares B2, S2 and Z = B2 + S2 in extended (where no square of a
//      double overflows or underflows), u = Z - 1.
//      |u| > 0.03: re = ln(Z) / 2 (extLog); at z = 0 this is -inf, with
//      divide-by-zero raised.
//      |u| <= 0.03, near the unit circle, where ln Z is small and Z's own
//      roundings would dominate it: the residual of the squares is made
//      exact.  B and S are split by Veltkamp's constant 2^33 + 1 into
//      halves of 32 bits whose products are exact in the 64-bit
//      significand; eB = ((hi hi - B2) + 2 hi lo) + lo lo is the rounding
//      error of B2 (eS of S2), e that of Z by a two-sum, and
//      d = (Z - 1) + ((eB + eS) + e) holds x^2 + y^2 - 1 to about 2^-120
//      relative to Z; re = ln(1 + d) / 2 (extLog1p).
//   5. im = atan2(y, x) (extAtan2): the cut along the negative real axis,
//      the sign of a zero y choosing between +pi and -pi.
//   6. A subnormal part of the result squares the smallest normal double,
//      which raises underflow.
// complexLog10 takes the same cases and multiplies both parts of a finite
// result in extended by log10(e); where z has an infinite part, the
// imaginary part is a multiple of (pi/2) log10(e) held as an extended
// constant (0, 1/2, 1, 3/2 or 2 times it, as atan2 gives for infinities,
// with the sign of y).
#include "complex/extended.h"
#include "complex/kernel_support.h"
#include "complex/wrapper.h"
#include "frame/frame.h"
#include "frame/x87.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// Where the residual of the squares is made exact: |Z - 1| <= 0.03.
constexpr double kNearUnitCircle = doubleFromBits(0x3F9EB851EB851EB8);
// Veltkamp's splitter for a 64-bit significand: 2^33 + 1.
constexpr double kSplitter = doubleFromBits(0x4200000000080000);

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {
using namespace complexparts;

// log10(e) and (pi/2) log10(e) in extended (significand, sign and exponent).
inline Extended log10OfE() { return extendedFromBits(0xDE5BD8A937287195, 0x3FFD); }
inline Extended halfPiLog10OfE() { return extendedFromBits(0xAEA3E26597DD0587, 0x3FFE); }

inline Orv64fc rounded(Extended re, Extended im) {
    Orv64fc r{roundToDouble(re), roundToDouble(im)};
    signalSubnormal(r.re, r.im);
    return r;
}

// The rounding error of B2 = B*B, exact: B = hi + lo with 32-bit halves.
inline Extended squareError(Extended v, Extended square) {
    const Extended c = v * Extended(kSplitter);
    const Extended hi = c - (c - v);
    const Extended lo = v - hi;
    return ((hi * hi - square) + 2 * hi * lo) + lo * lo;
}

// ln|z| of finite parts (cases 4 and 6 come after).
inline Extended lnMagnitude(double x, double y) {
    Extended a = extend(x), b = extend(y);
    if (a < 0) a = -a;
    if (b < 0) b = -b;
    const Extended big = a < b ? b : a, small = a < b ? a : b;
    const Extended big2 = big * big, small2 = small * small;
    Extended z = big2 + small2;
    // The pole: -inf by a division, which raises divide-by-zero.
    if (z == 0) return -1.0L / opaque(Extended(0));
    const Extended u = z - 1;
    Extended r;
    if (u > Extended(kNearUnitCircle) || u < -Extended(kNearUnitCircle)) {
        extLog(&r, &z);
        return r * 0.5L;
    }
    const Extended bb = z - big2;
    const Extended e = (big2 - (z - bb)) + (small2 - bb);
    Extended d = (z - 1) + ((squareError(big, big2) + squareError(small, small2)) + e);
    extLog1p(&r, &d);
    return r * 0.5L;
}

inline Extended phase(double y, double x) {
    Extended ey = extend(y), ex = extend(x), r;
    extAtan2(&r, &ey, &ex);
    return r;
}

// The NaN cases 1 and 2, shared by both kernels; false if z has no NaN.
inline bool nanCase(double x, double y, Orv64fc* result) {
    if (isNan(x)) {
        *result = {isInf(y) ? y * y : y * x, x * x};
        return true;
    }
    if (isNan(y)) {
        *result = {isInf(x) ? x * x : y * y, y * y};
        return true;
    }
    return false;
}

// The multiple of pi/2 that atan2 gives when x or y is infinite.
inline Extended quartersOfPi(double y, double x) {
    Extended halves;
    if (isInf(y))
        halves = isInf(x) ? (x > 0 ? 0.5L : 1.5L) : 1.0L;
    else
        halves = x > 0 ? 0.0L : 2.0L;
    return (bitsOf(y) & kSign64) ? -halves : halves;
}

}  // namespace

void complexLn(Orv64fc* result, const Orv64fc* z) {
    const double x = z->re, y = z->im;
    if (nanCase(x, y, result)) return;
    if (isInf(x) || isInf(y)) {
        *result = {kInfinity, roundToDouble(phase(y, x))};
        return;
    }
    *result = rounded(lnMagnitude(x, y), phase(y, x));
}

void complexLog10(Orv64fc* result, const Orv64fc* z) {
    const double x = z->re, y = z->im;
    if (nanCase(x, y, result)) return;
    if (isInf(x) || isInf(y)) {
        *result = {kInfinity, roundToDouble(quartersOfPi(y, x) * halfPiLog10OfE())};
        return;
    }
    const Extended scale = log10OfE();
    *result = rounded(lnMagnitude(x, y) * scale, phase(y, x) * scale);
}

}  // namespace orv

using namespace orv;

// ---- Exports ---------------------------------------------------------------------------

ORV_EXPORT OrvStatus orvsLog10_32fc_A11(const Orv32fc* src, Orv32fc* dst, int32_t len) {
    return complexWrapper<complexLog10>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsLog10_32fc_A21(const Orv32fc* src, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsLog10_32fc_A11")));
ORV_EXPORT OrvStatus orvsLog10_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsLog10_32fc_A11")));
ORV_EXPORT OrvStatus orvsLog10_64fc_A26(const Orv64fc* src, Orv64fc* dst, int32_t len) {
    return complexWrapper<complexLog10>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsLog10_64fc_A50(const Orv64fc* src, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsLog10_64fc_A26")));
ORV_EXPORT OrvStatus orvsLog10_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsLog10_64fc_A26")));

#else
#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// Near the unit circle, where the exact residual of the squares matters.
const Box kNearUnit{Interval{0.6, 0.8}, Interval{0.6, 0.8}};
const Box kAcrossCut32{Interval{-1e3, -1e-3}, Interval{-1e-30, 1e-30}};
const Box kAcrossCut64{Interval{-1e3, -1e-3}, Interval{-1e-300, 1e-300}};
}  // namespace

ORV_RECORDS(
    // Measured by the accuracy test (8192 samples per range besides the
    // special values): each part one rounding of an extended value within a
    // few 2^-64 of it; the largest 64fc errors lie near the unit circle.
    {.member = "orvsLog10_32fc_A11",
     .maxUlp = 0.5,
     .worst = {0x1.789cfp-1, 0x1.929efap-1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), kNearUnit, kAcrossCut32}},
    {.member = "orvsLog10_32fc_A21",
     .maxUlp = 0.5,
     .worst = {0x1.0caf76p-20, 0x1.6ca59ap-32},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), kNearUnit, kAcrossCut32},
     .sameAs = "orvsLog10_32fc_A11"},
    {.member = "orvsLog10_32fc_A24",
     .maxUlp = 0.5,
     .worst = {-0x1.2e81d6p+127, -0x1.cd9616p+126},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), kNearUnit, kAcrossCut32},
     .sameAs = "orvsLog10_32fc_A11"},
    {.member = "orvsLog10_64fc_A26",
     .maxUlp = 0.5057,
     .worst = {0x1.6d6b7bd71a8f6p-1, 0x1.72cbfe1c447e5p-1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), kNearUnit, kAcrossCut64}},
    {.member = "orvsLog10_64fc_A50",
     .maxUlp = 0.5054,
     .worst = {0x1.487759394055p-1, 0x1.71cf471ef7b55p-1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), kNearUnit, kAcrossCut64},
     .sameAs = "orvsLog10_64fc_A26"},
    {.member = "orvsLog10_64fc_A53",
     .maxUlp = 0.5074,
     .worst = {0x1.88b68d830084bp-1, 0x1.62665b6c77844p-1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), kNearUnit, kAcrossCut64},
     .sameAs = "orvsLog10_64fc_A26"})
}  // namespace orv
#endif
