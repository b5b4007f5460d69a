// CdfNorm, members on floats: dst[i] = Phi(src[i]), the standard normal
// distribution function, for orvsCdfNorm_32f_A11, orvsCdfNorm_32f_A21 and
// orvsCdfNorm_32f_A24.
//
// Method.  With a = |x|, Phi(-a) = exp(-a^2 / 2) G(a), where
// G(a) = exp(a^2 / 2) erfc(a / sqrt 2) / 2 is smooth and falls only like
// 1/(a sqrt(2 pi)): a polynomial for G keeps its relative accuracy into the
// far lower tail.  Phi(x) = 1 - Phi(-x) for x >= 0, so one product serves
// both sides: the exponential E carries the sign of x, C is 1 where
// x >= 0 (both zeros included) and 0 where x < 0, and Phi(x) = C - E G.
// E is positive for both zeros, so that Phi(+-0) = 1 - G(0) = 1/2.
//
// All arithmetic is in double, where a float squares exactly:
// m = -x^2 / 2 is exact, E = exp(m) by k = round(m 128 / ln 2),
// E = P(r) 2^(k >> 7) 2^((k mod 128)/128), P the Taylor polynomial of
// degree 4 on |r| <= ln2/256 (src/special/gaussian.h).  G is the row's
// polynomial in t = a - centre, by Horner; the row comes from the bits of
// |x| with no branch: mask, subtract the base, shift, and an index that is
// negative or past the last row reads row 0.
//   A11, A21: one computation: G a cubic, 16 bands per binade from 2^-6
//             (159 rows, row 0 below 2^-6).
//   A24:      G of degree 6, 4 bands per binade from 0.25 (25 rows).
// The result rounds once, converting to float.
//
// Limits.  Above HI = 5.41998291 Phi(x) rounds to 1.0 and below
// LO = -14.1701851 it is below half the smallest subnormal float: a mask of
// (x > HI) or (x < LO) zeroes the product, so the result is exactly C there
// (1.0 above HI, +0 below LO), infinities included, and the values the
// arithmetic made of such an x never show.  A NaN fails both compares and
// comes out through the arithmetic as the NaN of x made quiet.  There is no
// screen: blocks of 4 always stand, and the tail goes one element at a time
// through the same arithmetic.
//
// Warning: every finite element below LO (a result of +0 for a true value
// that is not 0) writes orvStatusUnderflow and raises the underflow flag
// through raiseFpFlags32, in element order; -infinity does not (its Phi is
// 0).  Between LO and about -13 the results are subnormal floats, as
// computed, with no warning.
//
// The x87 word is guarded (53-bit precision, nearest) as the frame of this
// family does; MXCSR is left as the caller set it.
//
// Tables: kCdfNormRows21 and kCdfNormRows26 (the first 25 rows) of
// src/tables/cdfnorm_tables.h, fitted by src/tables/gen_cdfnorm_tables.cpp.
#include <cstdint>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "special/gaussian.h"
#include "tables/cdfnorm_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// HI and LO; both are floats, so the compares on the widened x agree with
// compares on the float.
constexpr double kHigh = doubleFromBits(0x4015AE1000000000);  // 5.41998291015625
constexpr double kLow = doubleFromBits(0xC02C572280000000);   // -14.170185089111328
static_assert(double(float(kHigh)) == kHigh && double(float(kLow)) == kLow);
constexpr float kLow32 = float(kLow);
constexpr float kMinusInfinity32 = -__builtin_inff();
constexpr double kMinusHalf = -0.5;

// G's rows: (bits & mask) - base, shifted right, is the row; an index that
// is negative as a signed number, or at or past the table's end, is 0.
struct Bands {
    uint32_t mask, base;
    int shift;
    uint32_t rows;
};
constexpr Bands kBands21 = {0x7FF80000, 0x3C780000, 19, 159};
constexpr Bands kBands24 = {0x7FE00000, 0x3E600000, 21, 25};
static_assert(sizeof tables::kCdfNormRows21 / sizeof tables::kCdfNormRows21[0] == kBands21.rows);
static_assert(sizeof tables::kCdfNormRows26 / sizeof tables::kCdfNormRows26[0] >= kBands24.rows);
// The rows reach past |LO|: the last row of A21 starts at 14.5, row 24 of
// A24 at 8 (up to 16).
static_assert(((0x41680000u & kBands21.mask) - kBands21.base) >> kBands21.shift == kBands21.rows - 1);
static_assert(((0x41000000u & kBands24.mask) - kBands24.base) >> kBands24.shift == 21);
constexpr int kCentreSlot = 0, kG0Slot = 1;

#ifndef ORVVM_RECORDS

// ---- Kernel -----------------------------------------------------------------

template <Bands B>
inline void rowIndices(F32x4 x, uint32_t (&row)[4]) {
    I32x4 d = sub32(bitsOf(x) & splat32(B.mask), splat32(B.base));
    d = andNot(d, sar32<31>(d));
    d = shr32<B.shift>(d);
    d = andNot(d, cmpGt32(d, splat32(B.rows - 1)));
    alignas(16) uint32_t lanes[4];
    storeI(lanes, d);
    for (int l = 0; l < 4; ++l) row[l] = lanes[l];
}

inline F64x2 slot(const double* a, const double* b, int k) { return setLanes(a[k], b[k]); }

// C - E G on two elements widened to double, ra and rb their rows.
template <int Degree>
inline F64x2 cdfNormPair(F64x2 x, const double* ra, const double* rb) {
    F64x2 negative = cmpLt(x, zeroF64x2());
    F64x2 c = andNot(splat(1.0), negative);
    F64x2 m = (x * splat(kMinusHalf)) * x;  // exact for a float
    F64x2 e = gauss::expSigned(m, negative & splatBits64(kSign64));
    F64x2 t = andNot(x, splatBits64(kSign64)) - slot(ra, rb, kCentreSlot);
    F64x2 g = slot(ra, rb, kG0Slot + Degree);
    for (int k = Degree - 1; k >= 0; --k) g = g * t + slot(ra, rb, kG0Slot + k);
    F64x2 outside = cmpLt(splat(kHigh), x) | cmpLt(x, splat(kLow));
    // E first, so that a NaN comes out as x's own.
    return c - andNot(mulOrdered(e, g), outside);
}

struct Tier21 {
    static constexpr int kDegree = 3;
    static const double* row(uint32_t r) { return tables::kCdfNormRows21[r]; }
    static void rows(F32x4 x, uint32_t (&r)[4]) { rowIndices<kBands21>(x, r); }
};
struct Tier24 {
    static constexpr int kDegree = 6;
    static const double* row(uint32_t r) { return tables::kCdfNormRows26[r]; }
    static void rows(F32x4 x, uint32_t (&r)[4]) { rowIndices<kBands24>(x, r); }
};

template <class Tier>
inline F32x4 cdfNorm(F32x4 x) {
    uint32_t r[4];
    Tier::rows(x, r);
    F64x2 lo = cdfNormPair<Tier::kDegree>(widenLow(x), Tier::row(r[0]), Tier::row(r[1]));
    F64x2 hi = cdfNormPair<Tier::kDegree>(widenHigh(x), Tier::row(r[2]), Tier::row(r[3]));
    return narrow(lo, hi);
}

// ---- Warnings -----------------------------------------------------------------

// One underflow per finite element below LO, in element order.
inline void warnUnderflows(F32x4 x, StatusVar& status) {
    int below = signMask(cmpLt(x, splat(kLow32)) & cmpLt(splat(kMinusInfinity32), x));
    for (; below != 0; below &= below - 1) {
        status.write(orvStatusUnderflow);
        raiseFpFlags32(orvStatusUnderflow);
    }
}

// ---- Rounds and the tail ------------------------------------------------------

template <class Tier>
inline void cdfNormLoop(const float* src, float* dst, int32_t len, StatusVar& status) {
    plainRounds<4>(
        len,
        [&](int32_t i) {
            F32x4 x = load(src + i);
            store(dst + i, cdfNorm<Tier>(x));
            warnUnderflows(x, status);
        },
        [&](int32_t i) {
            F32x4 x = setLanes(src[i], 0.0f, 0.0f, 0.0f);
            dst[i] = lane0(cdfNorm<Tier>(x));
            warnUnderflows(x, status);
        });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsCdfNorm_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len,
                                             [&](StatusVar& status) { cdfNormLoop<Tier21>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsCdfNorm_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len,
                                             [&](StatusVar& status) { cdfNormLoop<Tier21>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsCdfNorm_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len,
                                             [&](StatusVar& status) { cdfNormLoop<Tier24>(src, dst, len, status); });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// The ordinary range runs from LO to HI; the second range is the lower tail
// where the results are subnormal floats or +0 with a warning.
Interval ordinary() { return {kLow, kHigh}; }
Interval lowerTail() { return {kLow - 1.0, -12.5}; }
}  // namespace

// The largest errors found on the harness's samples and on 1.2 10^5 more
// per member (sampled, not exhaustive); A11 and A21 are one computation and
// share the larger figure.  The largest errors lie in the lower tail near
// -8, where G's cubic fits reach 2^-23.4.
ORV_RECORDS(
    {.member = "orvsCdfNorm_32f_A11",
     .maxUlp = 1.69,
     .worst = {floatFromBits(0xC10389D9)},  // -8.22115421
     .ranges = {ordinary(), lowerTail(), kFinite32},
     .sameAs = "orvsCdfNorm_32f_A21"},
    {.member = "orvsCdfNorm_32f_A21",
     .maxUlp = 1.69,
     .worst = {floatFromBits(0xC10389D9)},
     .ranges = {ordinary(), lowerTail(), kFinite32}},
    {.member = "orvsCdfNorm_32f_A24",
     .maxUlp = 0.53,
     .worst = {floatFromBits(0xC1129068)},  // -9.16025543
     .ranges = {ordinary(), lowerTail(), kFinite32}})
}  // namespace orv
#endif
