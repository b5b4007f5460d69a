// CdfNorm, members on doubles: dst[i] = Phi(src[i]), the standard normal
// distribution function, for orvsCdfNorm_64f_A26, orvsCdfNorm_64f_A50 and
// orvsCdfNorm_64f_A53.
//
// Method.  With a = |x|, Phi(-a) = exp(-a^2 / 2) G(a), where
// G(a) = exp(a^2 / 2) erfc(a / sqrt 2) / 2 is smooth and falls only like
// 1/(a sqrt(2 pi)), so that a polynomial for G keeps its relative accuracy
// down to the subnormal results of the lower tail.  Phi(x) = 1 - Phi(-x)
// for x >= 0: the exponential carries the sign of x, C is 1 where x >= 0
// (both zeros included) and 0 where x < 0, and Phi(x) = C - E G.  E is
// positive for both zeros, so that Phi(+-0) = 1 - G(0) = 1/2.
//
// G: a polynomial in t = a - centre, the centre being the lower edge of the
// band (30 rows: row 0 below 0.25, then 4 bands per binade up to 38.49);
// the row comes from the high word of |x| with no branch: mask, subtract
// the base, shift, and an index that is negative or past the last row
// reads row 0.
//   A26: m = -x^2 / 2 in one double (its rounding costs at most 2^-43
//        relative), E = P(r) 2^(k >> 7) 2^((k mod 128)/128) with P of
//        degree 4 and the power of two a normal number; G of degree 6.
//   A50: -x^2 = h + e, h of 26 bits, both halved (exactly), so that the
//        reduction r = ((h/2 - n L1) - n L2) + e/2 keeps exp(-x^2 / 2) to
//        about 2^-65; E = T + P T with T = 2^(j/128) and P = e^r - 1 of
//        degree 5; the power of two S (with the sign of x) is built 154
//        binades up and scaled back, so that it may be subnormal, and is
//        applied last: (E G) S rounds once into the subnormal results.  G
//        of degree 12.
//   A53: the same exponential with T = T0 + T1 (a 27-bit head), G of
//        degree 13 with the last two Horner steps in double-double and g0,
//        g1 in head and tail, G = gh + gl (gh of 26 bits).  The product is
//        kept as W + Wt, W = gh T0 S (gh T0 exact), Wt = (gl T0 + (gh El +
//        gl El)) S with El = P (T0 + T1) + T1, and the result is the
//        compensated v + (((C - v) - W) - Wt), v = C - W; below x = -36,
//        where W S or Wt S may be subnormal, it is C - (gh T0 + Wt/S) S
//        instead, so that the result is rounded into the subnormals once.
//        (gaussian.h holds the pieces this shares with Erfc.)
//
// Limits.  Above HI = 8.29236108 Phi(x) rounds to 1.0.  Below LO the
// product is zeroed too, so the result is +0: LO = -38.4854083 in A50 and
// A53, where Phi(x) falls below half the smallest subnormal, and
// LO = -37.5193793 in A26, whose power of two is a normal number: there
// Phi(x) is still 2.9e-308, and from there down A26 gives +0.  A mask of
// (x > HI) or (x < LO) zeroes the product, infinities included; a NaN fails
// both compares and comes out through the arithmetic.  There is no screen:
// blocks of 4 always stand, and the tail goes one element at a time
// through the same arithmetic.
//
// Warning: in A50 and A53 every finite element below LO writes
// orvStatusUnderflow and raises the underflow flag through raiseFpFlags64,
// in element order (-infinity does not: its Phi is 0).  A26 has no warning.
//
// The x87 word is guarded (53-bit precision, nearest) as the frame of this
// family does; MXCSR is left as the caller set it.
//
// Tables: kCdfNormRows26, kCdfNormRows50 and kCdfNormRows53 of
// src/tables/cdfnorm_tables.h, fitted by src/tables/gen_cdfnorm_tables.cpp;
// 2^(j/128) whole from src/tables/exp2_tables.h and split from
// kErfcExp2Split of src/tables/erfc_tables.h.
#include <cstdint>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "special/gaussian.h"
#include "tables/cdfnorm_tables.h"
#include "tables/erfc_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

constexpr double kHigh = doubleFromBits(0x402095B059D67C4C);   // 8.2923610758135951
constexpr double kLow26 = doubleFromBits(0xC042C27B05BF1A0A);  // -37.519379347144493
constexpr double kLow50 = doubleFromBits(0xC0433E21DC3F3BD7);  // -38.485408335567335, A50 and A53
// Below -36 (Phi(x) < 2^-940) A53 scales its sum once: Phi(x) is the
// smallest normal double at A26's LO, and W S or Wt S (some 2^-26 of the
// result) may be subnormal from a little above it.
constexpr double kScaledSumBelow = -36.0;
static_assert(kScaledSumBelow > kLow26);
constexpr double kMinusHalf = -0.5;
constexpr double kHalf = 0.5;

// G's rows from the high word of |x|: mask, base, shift; 30 rows.
constexpr uint32_t kBandMask = 0x7FFC0000, kBandBase = 0x3FCC0000;
constexpr int kBandShift = 18;
constexpr uint32_t kRows = 30;
static_assert(sizeof tables::kCdfNormRows26 / sizeof tables::kCdfNormRows26[0] == kRows);
static_assert(sizeof tables::kCdfNormRows50 / sizeof tables::kCdfNormRows50[0] == kRows);
static_assert(sizeof tables::kCdfNormRows53 / sizeof tables::kCdfNormRows53[0] == kRows);
// The last row starts at 32 and serves |x| up to |LO|.
static_assert(((0x40400000u & kBandMask) - kBandBase) >> kBandShift == kRows - 1);
// A row: the centre, then the coefficients (A53: g0 tail, g0 head, g1 tail,
// g1 head, g2 .. g13).
constexpr int kCentre = 0, kG0 = 1;
constexpr int kG0Tail = 1, kG0Head = 2, kG1Tail = 3, kG1Head = 4, kG2 = 5;

#ifndef ORVVM_RECORDS

// ---- Kernels ----------------------------------------------------------------

inline F64x2 absolute(F64x2 x) { return andNot(x, splatBits64(kSign64)); }
inline F64x2 slot(const double* a, const double* b, int k) { return setLanes(a[k], b[k]); }

template <int Width>
struct Rows {
    const double* a;
    const double* b;
};
template <int Width>
inline Rows<Width> rowsOf(F64x2 x, const double (*table)[Width]) {
    I32x4 d = sub32(highWords(x) & splat32(kBandMask), splat32(kBandBase));
    d = andNot(d, sar32<31>(d));
    d = shr32<kBandShift>(d);
    d = andNot(d, cmpGt32(d, splat32(kRows - 1)));
    return {table[lane0(d)], table[laneAt<1>(d)]};
}

// What every tier shares: C, the sign bits E carries, and the mask of the
// lanes beyond the limits.
struct Sides {
    F64x2 c, sign, outside;
};
inline Sides sides(F64x2 x, double low) {
    F64x2 negative = cmpLt(x, zeroF64x2());
    return {andNot(splat(1.0), negative), negative & splatBits64(kSign64),
            cmpLt(splat(kHigh), x) | cmpLt(x, splat(low))};
}

// A26.
inline F64x2 cdfNorm26(F64x2 x) {
    Rows<8> row = rowsOf(x, tables::kCdfNormRows26);
    Sides s = sides(x, kLow26);
    F64x2 e = gauss::expSigned((x * splat(kMinusHalf)) * x, s.sign);
    F64x2 t = absolute(x) - slot(row.a, row.b, kCentre);
    F64x2 g = slot(row.a, row.b, kG0 + 6);
    for (int k = 5; k >= 0; --k) g = g * t + slot(row.a, row.b, kG0 + k);
    // E first, so that a NaN comes out as x's own.
    return s.c - andNot(mulOrdered(e, g), s.outside);
}

// exp(-x^2 / 2) in parts, from -x^2 = h + e halved.
inline gauss::ExpParts negHalfSquareExp(F64x2 x, F64x2 sign) {
    gauss::HeadTail m = gauss::negSquare(x);
    return gauss::expParts(m.h * splat(kHalf), m.e * splat(kHalf), sign);
}

// A50: C - ((T + P T) G) S.
inline F64x2 cdfNorm50(F64x2 x) {
    Rows<14> row = rowsOf(x, tables::kCdfNormRows50);
    Sides s = sides(x, kLow50);
    F64x2 t = absolute(x) - slot(row.a, row.b, kCentre);
    F64x2 g = slot(row.a, row.b, kG0 + 12);
    for (int k = 11; k >= 0; --k) g = g * t + slot(row.a, row.b, kG0 + k);
    gauss::ExpParts ex = negHalfSquareExp(x, s.sign);
    F64x2 table = setLanes(gauss::kPow2.v[ex.j[0]], gauss::kPow2.v[ex.j[1]]);
    F64x2 e = ex.p * table + table;
    return s.c - andNot(mulOrdered(e, g) * ex.s, s.outside);
}

// A53: C - (W + Wt), compensated.
inline F64x2 cdfNorm53(F64x2 x) {
    Rows<17> row = rowsOf(x, tables::kCdfNormRows53);
    Sides s = sides(x, kLow50);
    F64x2 t = absolute(x) - slot(row.a, row.b, kCentre);
    F64x2 q = slot(row.a, row.b, kG2 + 11);
    for (int k = 10; k >= 0; --k) q = q * t + slot(row.a, row.b, kG2 + k);
    q = q * t;
    gauss::HeadTail g = gauss::lastTwoSteps(q, t, slot(row.a, row.b, kG1Head), slot(row.a, row.b, kG1Tail),
                                            slot(row.a, row.b, kG0Head), slot(row.a, row.b, kG0Tail));
    gauss::ExpParts ex = negHalfSquareExp(x, s.sign);
    F64x2 t0 = setLanes(tables::kErfcExp2Split[ex.j[0]][0], tables::kErfcExp2Split[ex.j[1]][0]);
    F64x2 t1 = setLanes(tables::kErfcExp2Split[ex.j[0]][1], tables::kErfcExp2Split[ex.j[1]][1]);
    F64x2 el = ex.p * (t0 + t1) + t1;
    // gh T0 is exact (26 bits times 27 bits); gh first, so that a NaN comes
    // out as x's own.
    F64x2 w0 = mulOrdered(g.h, t0);
    F64x2 wt0 = g.e * t0 + (g.h * el + g.e * el);
    F64x2 w = andNot(w0 * ex.s, s.outside);
    F64x2 wt = andNot(wt0 * ex.s, s.outside);
    F64x2 v = s.c - w;
    F64x2 compensated = v + (((s.c - v) - w) - wt);
    // Far down the lower tail W S or Wt S would round into the subnormals
    // and the sum round again (up to 1 ulp): there the sum is scaled once,
    // after a rounding to 53 bits that costs at most 1/4 of a subnormal
    // ulp.  With C = 0 and both scalings exact the two forms are the same
    // rounding of the same sum, so they differ only where that helps.
    F64x2 scaledSum = s.c - andNot((w0 + wt0) * ex.s, s.outside);
    return select(cmpLt(x, splat(kScaledSumBelow)), scaledSum, compensated);
}

// ---- Warnings -----------------------------------------------------------------

// One underflow per finite element below LO, in element order.
inline void warnUnderflows(F64x2 x, StatusVar& status) {
    int below = signMask(cmpLt(x, splat(kLow50)) & cmpLt(splat(-__builtin_inf()), x));
    for (; below != 0; below &= below - 1) {
        status.write(orvStatusUnderflow);
        raiseFpFlags64(orvStatusUnderflow);
    }
}

// ---- Rounds and the tail ------------------------------------------------------

struct Tier26 {
    static F64x2 kernel(F64x2 x) { return cdfNorm26(x); }
    static constexpr bool kWarns = false;
};
struct Tier50 {
    static F64x2 kernel(F64x2 x) { return cdfNorm50(x); }
    static constexpr bool kWarns = true;
};
struct Tier53 {
    static F64x2 kernel(F64x2 x) { return cdfNorm53(x); }
    static constexpr bool kWarns = true;
};

template <class Tier>
inline void cdfNormLoop(const double* src, double* dst, int32_t len, StatusVar& status) {
    plainRounds<4>(
        len,
        [&](int32_t i) {
            F64x2 x0 = load(src + i), x1 = load(src + i + 2);
            store(dst + i, Tier::kernel(x0));
            store(dst + i + 2, Tier::kernel(x1));
            if constexpr (Tier::kWarns) {
                warnUnderflows(x0, status);
                warnUnderflows(x1, status);
            }
        },
        [&](int32_t i) {
            F64x2 x = setLanes(src[i], 0.0);
            dst[i] = lane0(Tier::kernel(x));
            if constexpr (Tier::kWarns) warnUnderflows(x, status);
        });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsCdfNorm_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len,
                                             [&](StatusVar& status) { cdfNormLoop<Tier26>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsCdfNorm_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len,
                                             [&](StatusVar& status) { cdfNormLoop<Tier50>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsCdfNorm_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len,
                                             [&](StatusVar& status) { cdfNormLoop<Tier53>(src, dst, len, status); });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// The ordinary range runs from LO to HI; the second range is the lower tail
// with its subnormal results and, below LO, +0.
Interval ordinary(double low) { return {low, kHigh}; }
Interval lowerTail() { return {kLow50 - 1.0, -36.0}; }
}  // namespace

// The largest errors found on the harness's samples and on 1.2 10^5 more
// per member (sampled).
ORV_RECORDS(
    // m = -x^2/2 rounded once and G of degree 6: about 28 correct bits.
    {.member = "orvsCdfNorm_64f_A26",
     .maxUlp = 2.71e7,
     .worst = {doubleFromBits(0xC03340F137322C65)},  // -19.253680658101434
     .ranges = {ordinary(kLow26), lowerTail(), kFinite64},
     .exclusions = {excludeMagnitudes({{-kLow26, -kLow50}},
                                      "below LO = -37.519 the result is +0 by design (the power of two is kept "
                                      "normal), where Phi(x) falls from the smallest normal double to half the "
                                      "smallest subnormal")}},
    {.member = "orvsCdfNorm_64f_A50",
     .maxUlp = 2.84,
     .worst = {doubleFromBits(0xC001736478FAB320)},  // -2.1813439799792746
     .ranges = {ordinary(kLow50), lowerTail(), kFinite64}},
    // The largest error is at the top of the subnormal results, where the
    // scaled sum rounds twice, to 53 bits and then to the subnormal's
    // precision; about 0.55 ulp on normal results.
    {.member = "orvsCdfNorm_64f_A53",
     .maxUlp = 0.75,
     .worst = {doubleFromBits(0xC042C2DD5B05C755)},  // -37.522380235501863
     .ranges = {ordinary(kLow50), lowerTail(), kFinite64}})
}  // namespace orv
#endif
