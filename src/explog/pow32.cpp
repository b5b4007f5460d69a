// Pow and Powx, real members on floats: dst[i] = x^y with x = src1[i] (or
// src[i]) and y = src2[i] (or the constant), for orvsPow_32f_A11/A21/A24 and
// orvsPowx_32f_A11/A21/A24.
//
// Method.  x^y = e^(y ln x), with the logarithm carried in double, where a
// float result needs only its head:
//   ln x = E ln2 + ln(mr) + ln(m/mr), m in [1, 2) the fraction of x, mr = m
//   rounded to eight fraction bits (1 + i/256, i = 0..256, a tie going up so
//   that mr and the row agree), and ln(m/mr) = ln(1 + r) with r = (m - mr)
//   rcp, |r| <= 2^-9, by r - r^2/2 + r^3/3 (error below 2^-38 r).  m - mr
//   is exact, so L = ln x is good to about 2^-50 relative, and t = y L to
//   about 2^-52 relative: far below a float ulp even where |t| is 87.
//   Then e^t = 2^n 2^(j/128) e^f with k = round(128 t/ln2) by the shifter,
//   f = t - k ln2/128 in double, narrowed to float (|f| <= ln2/256), and
//   the float tail of the exponential: ((0.5 f^2 + (Tt + f)) Th + Th) 2^n
//   with 2^(j/128) = Th (1 + Tt), Th cut to a float and Tt a relative tail.
//   The block screen keeps |t| below 87.3337, so that 2^n is a normal
//   float; the ElementPath evaluates the exponential of any other t in
//   double, S + g S with S = 2^n 2^(j/128) and g ~ e^f - 1 to degree 3, and
//   rounds the value, times the sign, once to float: overflow to infinity
//   and denormal results come from that one rounding, with no status.
//
// Tiers.  The three Pow tiers are one routine, and Powx's A11 and A21 are
// one routine; Powx A24 differs from them only in its fast paths.  The
// error is the float tail's (0.5 ulp of the final rounding, plus the
// dropped f^3/6 and Tt f terms and the roundings of the tail, about 2^-25
// relative) and the logarithm's share.  That share is set by the cubic in
// r: it errs by up to r^4/4, 2^-38 absolute at the edges of a row, so t
// carries up to |y| 2^-38.  For |y| below 4096 that stays under 2^-26
// relative and every member is below 1 ulp; a larger |y| with a finite,
// nonzero result needs |x| within 0.03 of 1, and there the error reaches
// about 3 ulp (x within 2^-9 of 1, |y ln x| near 87): inside the bounds of
// A11 and A21, and excluded from A24's measurement with its reason.
//
// Powx takes its exponent once: it is widened ahead of the loop, and a NaN
// exponent sends the whole array through the ElementPath.  Fast paths come
// ahead of everything when y equals a small integer bit for bit; they
// multiply with no screen, no special-value logic and no status, so NaN and
// infinities go through by plain arithmetic and overflow is silent:
//   y = 2: x x (all three tiers);  y = 3: (x x) x, y = 4: (x x)(x x) (A11
//   and A21 only; A24 takes the kernel there).
//
// Special values: the table of pow_common.h, in its order; the only warning
// is orvStatusDomain.  A negative x with an integer y runs the ElementPath's
// kernel on |x| with the sign of an odd y; a denormal x is scaled by e^23
// and 23 taken off the logarithm.
//
// Outside the block screen each element takes the ElementPath; an element
// that the screen would pass gets the block's arithmetic there, so a result
// does not depend on the element's position.
//
// Tables: kPowLog32 of src/tables/pow_tables.h (gen_pow_tables.cpp, rows of
// ln(1 + i/256) and 1/(1 + i/256)); the exponential's kExp2HeadTail32 (block)
// and kExp2Fraction64 (ElementPath) of src/tables/exp2_tables.h.
#include <cstdint>

#include "explog/pow_common.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/exp2_tables.h"
#include "tables/pow_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// Block screen on t = y ln x: the high word of |t| at most this
// (|t| <= 87.33374), which keeps 2^n a normal float exponent.
constexpr uint32_t kTScreen = 0x4055D55C;
// ElementPath: beyond this high word of |t| (708.396) the value is 0 or
// infinity; below it the double exponential's 2^n stays normal.
constexpr uint32_t kTSaturate = 0x4086232B;
// Block screen on y: (abs bits - 1), signed, above this is a NaN.
constexpr uint32_t kYNaNScreen = 0x7F7FFFFF;

// Logarithm, in double.
constexpr double kShifter52 = doubleFromBits(0x4338000000000000);  // 1.5*2^52: integers to double
constexpr double kLn2 = doubleFromBits(0x3FE62E42FEFA39EF);        // 0.6931471805599453
// Rounds m to eight fraction bits: the OR sets bits below the rounding
// position so that a tie goes up, then 2^44 + m - 2^44 rounds.
constexpr uint64_t kTieUp = 0x000003FF00000000;
constexpr double kRound8 = doubleFromBits(0x42B0000000000000);  // 2^44
// ln(1 + r) ~ r + c2 r^2 + c3 r^3 on |r| <= 2^-9.
constexpr double kC2 = doubleFromBits(0xBFDFFFFFFFFFCAAE);  // -0.49999999999924227
constexpr double kC3 = doubleFromBits(0x3FD55555555512C8);  // 0.33333333333238757
// A denormal x is scaled by e^23 and 23 taken off the logarithm.
constexpr double kE23 = doubleFromBits(0x420226AF33B1FDC1);  // 9744803446.248903
constexpr double kLnScale = 23.0;

// Exponential: k = round(128 t/ln 2), f = t - k ln2/128 in one term (|k|
// is at most 2^17, so the one product costs about 2^-45 absolute).
constexpr double kInvLn2x128 = doubleFromBits(0x40671547652B82FE);  // 184.6649652337873
constexpr double kLn2by128 = doubleFromBits(0x3F762E42FEFA39EF);    // 0.0054152123481245725
constexpr uint32_t kIndexMask = 0x7F;
constexpr uint32_t kOneField32 = 0x3F800000;
constexpr uint32_t kField32 = 0x7F800000;
constexpr uint64_t kBias64 = 0x3FF;
constexpr double kOneSixth = doubleFromBits(0x3FC5555555555555);
constexpr uint32_t kPosInf32 = 0x7F800000;

// Powx fast paths: y equal to these, bit for bit.
constexpr uint32_t kTwo = 0x40000000, kThree = 0x40400000, kFour = 0x40800000;

#ifndef ORVVM_RECORDS
// ---- Kernels ------------------------------------------------------------

// ln x for a positive normal double x (a widened float, or a denormal float
// scaled up), good to about 2^-50 relative.
inline double log32(double x) {
    const uint64_t b = bitsOf(x);
    const uint32_t h = uint32_t(b >> 32);
    // The top nine fraction bits rounded to eight: row i of 1 + i/256.
    const uint32_t i = ((((h >> 8) & 0xFF8) + 8) & 0x1FF0) >> 4;
    const double m = doubleFromBits((b & 0x000FFFFFFFFFFFFF) | 0x3FF0000000000000);
    // The unbiased exponent, made a double through the shifter.
    const int64_t e = int64_t(h >> 20) - 1023;
    const double ed = doubleFromBits(bitsOf(kShifter52) + uint64_t(e)) - kShifter52;
    const double mr = (doubleFromBits(bitsOf(m) | kTieUp) + kRound8) - kRound8;
    const tables::PowLogRow32& row = tables::kPowLog32[i];
    const double r = (m - mr) * row.rcp;
    const double p = ((kC3 * r + kC2) * r) * r + r;
    return p + (ed * kLn2 + row.t);
}

// k = round(128 t/ln2) from the low word of the shifted sum, and the
// remainder f.
struct Reduced {
    double f;
    int32_t k;
};
inline Reduced reduce(double t) {
    const double s = t * kInvLn2x128 + kShifter52;
    const double kf = s - kShifter52;
    return {t - kf * kLn2by128, int32_t(lowWord(s))};
}

// The block's exponential: f narrowed to float and the float tail of the
// exponential, 2^n built from the low bits of the sum (k shifted left 16
// puts n in the exponent field and j below it, which the AND clears).
inline float expBlock(double t) {
    const Reduced red = reduce(t);
    const float f = float(red.f);
    const tables::Exp2HeadTail32& row = tables::kExp2HeadTail32[uint32_t(red.k) & kIndexMask];
    const float scale = floatFromBits(((uint32_t(red.k) << 16) + kOneField32) & kField32);
    return ((0.5f * (f * f) + (row.tail + f)) * row.head + row.head) * scale;
}

// The ElementPath's exponential, in double, for |t| up to 708.396:
// S = 2^n 2^(j/128) with n from -1022 to 1022, and S + g S.
inline double expDouble(double t) {
    const Reduced red = reduce(t);
    const uint64_t field = uint64_t(int64_t(red.k >> 7) + int64_t(kBias64)) << 52;
    const double s = doubleFromBits(field | tables::kExp2Fraction64[uint32_t(red.k) & kIndexMask]);
    const double g = ((kOneSixth * red.f + 0.5) * red.f) * red.f + red.f;
    return s + g * s;
}

inline bool tPasses(double t) { return (highWord(t) & kAbs32) <= kTScreen; }

// ---- ElementPath --------------------------------------------------------

// yd is y widened, made once by Powx.
inline float powElement(float x, float y, double yd, StatusVar& status) {
    const pow::Special<float> sp = pow::specialValues(x, y, status);
    if (sp.done) return sp.result;
    if (passesPositiveNormal32(bitsOf(x))) {
        const double t = yd * log32(double(x));
        if (tPasses(t)) return expBlock(t);
        if ((highWord(t) & kAbs32) > kTSaturate) return t < 0 ? 0.0f : floatFromBits(kPosInf32);
        return float(expDouble(t));
    }
    // Negative x with an integer y, or a denormal x.
    const float ax = floatFromBits(bitsOf(x) & kAbs32);
    const bool denormal = bitsOf(ax) < 0x00800000;
    double l = log32(denormal ? double(ax) * kE23 : double(ax));
    if (denormal) l = l - kLnScale;
    const double t = yd * l;
    const double sign = sp.sign;
    if ((highWord(t) & kAbs32) > kTSaturate) return float((t < 0 ? 0.0 : double(floatFromBits(kPosInf32))) * sign);
    return float(expDouble(t) * sign);
}

// ---- Blocks -------------------------------------------------------------

// Lanes whose y is a NaN (y = 0 and y = inf pass: t screens them).
inline int yNaNScreen(F32x4 y) {
    return signMask32(cmpGt32(sub32(bitsOf(y) & splat32(kAbs32), splat32(1)), splat32(kYNaNScreen)));
}

// The block's kernel on four lanes, the same operations as the scalar
// kernels above in the same order, so that the bits agree: ln x in double
// on two pairs, t = y ln x, then the float tail of the exponential on all
// four.  Table rows are read by index, two of them per pair.
constexpr uint64_t kFractionMask64 = 0x000FFFFFFFFFFFFF;
constexpr uint64_t kOne64 = 0x3FF0000000000000;

inline F64x2 log32(F64x2 x) {
    const I32x4 b = bitsOf(x);
    // The row numbers, from the high words (32-bit lanes 1 and 3).
    const I32x4 rows = shr32<4>(add32(shr32<8>(b) & splat32(0xFF8), splat32(8)) & splat32(0x1FF0));
    const tables::PowLogRow32& r0 = tables::kPowLog32[lane0of64(rows) >> 32];
    const tables::PowLogRow32& r1 = tables::kPowLog32[lane1of64(rows) >> 32];
    const F64x2 row0 = loadAligned(&r0.t), row1 = loadAligned(&r1.t);
    const F64x2 t = unpackLo(row0, row1), rcp = unpackHi(row0, row1);
    const F64x2 m = asF64x2((b & splat64(kFractionMask64)) | splat64(kOne64));
    // The biased exponent through the shifter, less the bias: exactly e.
    const F64x2 ed = asF64x2(add64(shr64<52>(b), splat64(bitsOf(kShifter52)))) - splat(kShifter52 + 1023.0);
    const F64x2 mr = (asF64x2(bitsOf(m) | splat64(kTieUp)) + splat(kRound8)) - splat(kRound8);
    const F64x2 r = (m - mr) * rcp;
    const F64x2 p = ((splat(kC3) * r + splat(kC2)) * r) * r + r;
    return p + (ed * splat(kLn2) + t);
}

// Four results from two pairs of t; and the lanes whose |t| fails the
// screen.
struct Exp4 {
    F32x4 result;
    int rejected;
};
inline Exp4 expBlock(F64x2 t0, F64x2 t1) {
    const int rejected = signMask32(cmpGt32(highWords(t0, t1) & splat32(kAbs32), splat32(kTScreen)));
    const F64x2 s0 = t0 * splat(kInvLn2x128) + splat(kShifter52), s1 = t1 * splat(kInvLn2x128) + splat(kShifter52);
    const F64x2 f0 = t0 - (s0 - splat(kShifter52)) * splat(kLn2by128);
    const F64x2 f1 = t1 - (s1 - splat(kShifter52)) * splat(kLn2by128);
    const F32x4 f = narrow(f0, f1);
    const I32x4 k = lowWords(s0, s1);
    const I32x4 j = k & splat32(kIndexMask);
    const uint64_t j01 = lane0of64(j), j23 = lane1of64(j);
    using tables::kExp2HeadTail32;
    const F32x4 rows01 = unpackLo(loadPair(&kExp2HeadTail32[uint32_t(j01)].head),
                                  loadPair(&kExp2HeadTail32[uint32_t(j01 >> 32)].head));
    const F32x4 rows23 = unpackLo(loadPair(&kExp2HeadTail32[uint32_t(j23)].head),
                                  loadPair(&kExp2HeadTail32[uint32_t(j23 >> 32)].head));
    const F32x4 th = lowHalves(rows01, rows23), tt = highHalves(rows01, rows23);
    const F32x4 scale = asF32x4(add32(shl32<16>(k), splat32(kOneField32)) & splat32(kField32));
    return {((splat(0.5f) * (f * f) + (tt + f)) * th + th) * scale, rejected};
}

// Eight elements, with y from ys (Pow) or the widened constant (Powx, ys
// null).  All eight results are made with no branch on the values, then the
// screens on x, y and t decide.
inline bool powBlock(const float* src, const float* ys, F64x2 yConstant, float* dst) {
    F32x4 y[2] = {};
    const F32x4 x[2] = {load(src), load(src + 4)};
    int reject = positiveNormalScreen(x[0]) | positiveNormalScreen(x[1]);
    if (ys) {
        y[0] = load(ys);
        y[1] = load(ys + 4);
        reject |= yNaNScreen(y[0]) | yNaNScreen(y[1]);
    }
    F32x4 out[2];
    for (int g = 0; g < 2; ++g) {
        const F64x2 yLow = ys ? widenLow(y[g]) : yConstant, yHigh = ys ? widenHigh(y[g]) : yConstant;
        const Exp4 e = expBlock(yLow * log32(widenLow(x[g])), yHigh * log32(widenHigh(x[g])));
        out[g] = e.result;
        reject |= e.rejected;
    }
    if (reject != 0) return false;
    store(dst, out[0]);
    store(dst + 4, out[1]);
    return true;
}

inline void powArrays(const float* x, const float* y, float* dst, int32_t len, StatusVar& status) {
    wholeBlockFallback<8>(
        len, [&](int32_t i) { return powBlock(x + i, y + i, zeroF64x2(), dst + i); },
        [&](int32_t i) { dst[i] = powElement(x[i], y[i], double(y[i]), status); });
}

// Powx: the fast paths first, then the kernel with y widened once.
template <bool kShortProducts>
inline void powConstant(const float* x, float y, float* dst, int32_t len, StatusVar& status) {
    const uint32_t by = bitsOf(y);
    if (by == kTwo || (kShortProducts && (by == kThree || by == kFour))) {
        int32_t i = 0;
        for (; i <= len - 8; i += 8)
            for (int g = 0; g < 8; g += 4) {
                const F32x4 v = load(x + i + g), sq = v * v;
                store(dst + i + g, by == kTwo ? sq : by == kThree ? sq * v : sq * sq);
            }
        for (; i < len; ++i) {
            const float v = x[i], sq = v * v;
            dst[i] = by == kTwo ? sq : by == kThree ? sq * v : sq * sq;
        }
        return;
    }
    const double yd = y;
    auto element = [&](int32_t i) { dst[i] = powElement(x[i], y, yd, status); };
    if ((by & kAbs32) > kPosInf32) {  // a NaN exponent: every element by the ElementPath
        for (int32_t i = 0; i < len; ++i) element(i);
        return;
    }
    const F64x2 yds = splat(yd);
    wholeBlockFallback<8>(len, [&](int32_t i) { return powBlock(x + i, nullptr, yds, dst + i); }, element);
}

}  // namespace
}  // namespace orv

using namespace orv;

// The three tiers of Pow are one routine.
ORV_EXPORT OrvStatus orvsPow_32f_A11(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len,
                                             [&](StatusVar& status) { powArrays(src1, src2, dst, len, status); });
}
ORV_EXPORT OrvStatus orvsPow_32f_A21(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len,
                                             [&](StatusVar& status) { powArrays(src1, src2, dst, len, status); });
}
ORV_EXPORT OrvStatus orvsPow_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len,
                                             [&](StatusVar& status) { powArrays(src1, src2, dst, len, status); });
}

// The constant is pinned after the guard's entry, so that no arithmetic on
// it moves ahead of the mode change.
ORV_EXPORT OrvStatus orvsPowx_32f_A11(const Orv32f* src, Orv32f constant, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        powConstant<true>(src, opaque(constant), dst, len, status);
    });
}
ORV_EXPORT OrvStatus orvsPowx_32f_A21(const Orv32f* src, Orv32f constant, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        powConstant<true>(src, opaque(constant), dst, len, status);
    });
}
ORV_EXPORT OrvStatus orvsPowx_32f_A24(const Orv32f* src, Orv32f constant, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        powConstant<false>(src, opaque(constant), dst, len, status);
    });
}


#else
}  // namespace
}  // namespace orv

#include <cmath>

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The logarithm's polynomial errs by up to 2^-38 absolute at the edges of
// its rows, and |y| multiplies that: outside these magnitudes |y| < 4096
// keeps the extra error below 2^-26 relative; inside them it reaches 3.0
// ulp (|x| within 2^-9 of 1, |y ln x| near 87).  A24 leaves them out of its
// measurement and the family tests pin them below 3.3 ulp.
constexpr Interval kNearOneX{0.97, 1.03};
constexpr Interval kLargeY{4096, INFINITY};

// The ordinary range, x next to 1 with |y| up to the thresholds, the
// positive line with moderate exponents, and everything finite.
std::vector<Box> powRanges() {
    return {Box{Interval{0, 16}, Interval{-16, 16}}, Box{kNearOneX, Interval{-4000, 4000}},
            Box{Interval{0.997, 1.003}, Interval{-45000, 45000}}, Box{Interval{0.999, 1.001}, Interval{-1e5, 1e5}},
            Box{kPositiveFinite32, Interval{-100, 100}}, Box{kFinite32, kFinite32}};
}
Exclusion nearOneLargeY() {
    return excludeMagnitudes({kNearOneX, kLargeY},
                             "the logarithm's cubic errs by up to 2^-38 absolute at the edges of its rows, times "
                             "|y| up to 44000: up to 3.0 ulp, pinned by the family tests");
}

}  // namespace

// Measured by the accuracy test with 100000 samples a range.  The three Pow
// tiers are one routine, and so are Powx A11 and A21; their figures differ
// only by the inputs sampled and by A24's exclusion.
ORV_RECORDS(
    {.member = "orvsPow_32f_A11",
     .maxUlp = 2.97,
     .worst = {floatFromBits(0x3F8040A2), floatFromBits(0x4729003B)},
     .ranges = powRanges(),
     .peerVectors = "pow"},
    {.member = "orvsPow_32f_A21",
     .maxUlp = 2.73,
     .worst = {floatFromBits(0x3F803EFF), floatFromBits(0x4727A889)},
     .ranges = powRanges(),
     .sameAs = "orvsPow_32f_A11",
     .peerVectors = "pow"},
    {.member = "orvsPow_32f_A24",
     .maxUlp = 0.676,
     .worst = {floatFromBits(0x3F80C033), floatFromBits(0x4572BEFC)},
     .ranges = powRanges(),
     .exclusions = {nearOneLargeY()},
     .sameAs = "orvsPow_32f_A11",
     .peerVectors = "pow"},
    {.member = "orvsPowx_32f_A11",
     .maxUlp = 2.64,
     .worst = {floatFromBits(0x3F80415E), floatFromBits(0x472DDF07)},
     .ranges = powRanges()},
    {.member = "orvsPowx_32f_A21",
     .maxUlp = 2.82,
     .worst = {floatFromBits(0x3F803FD8), floatFromBits(0xC72864C6)},
     .ranges = powRanges(),
     .sameAs = "orvsPowx_32f_A11"},
    {.member = "orvsPowx_32f_A24",
     .maxUlp = 0.658,
     .worst = {floatFromBits(0x3F823AC4), floatFromBits(0xC552F0A1)},
     .ranges = powRanges(),
     .exclusions = {nearOneLargeY()}})
}  // namespace orv
#endif
