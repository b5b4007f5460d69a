// Exp, real members on doubles: dst[i] = e^src[i] for orvsExp_64f_A26,
// orvsExp_64f_A50 and orvsExp_64f_A53.
//
// Method.  x = k ln2/2^L + r, k = round(x 2^L/ln2) by adding the shifter
// 1.5*2^52, which leaves k in two's complement in the sum's low bits:
// j = k mod 2^L indexes a table of 2^(j/2^L) and n = k div 2^L goes into
// the exponent field by integer arithmetic.  e^x = 2^n 2^(j/2^L) e^r.
//   A26: L = 7, r = x - kf C in one term (C = ln2/128 rounded; for |k| up
//        to 2^17 the product's rounding costs about 2^-44 relative),
//        e^r - 1 ~ (0.5 r) r + r; S = 2^n 2^(j/128) from one OR of the
//        exponent field with the rounded table fraction; result S + S p.
//   A50: as A26 with ln2/128 in two parts (the high part has its low 20
//        fraction bits zero, so kf hi is exact) and a degree-4 polynomial.
//   A53: L = 6, ln2/64 in two parts, a degree-5 polynomial, and 2^(j/64) as
//        a short head Th (44 fraction bits) plus an absolute tail Tt: the
//        sum ((Th + Tt) p + Tt) + Th adds the small terms first, so Th + ...
//        is the one large rounding, and the scaling by 2^n is exact.
//
// Tiers, measured (maxima and worst inputs in the records) with MPFR on 12.4 million inputs per
// member (random bit patterns over the whole finite line and over
// |x| < 746, uniform values over the ordinary range, near overflow, over
// the subnormal results and the zero limit, and 400 001 consecutive doubles
// around each limit), plus targeted searches where the analysis puts the
// worst cases (r at the ends of the reduction interval for every table
// index, the top binade of the subnormal results):
//   A26: about 28 correct bits, set by the dropped r^3/6 at |r| = ln2/256.  The one-term reduction has one
//        failure: at x = 0x40862E42FEFA39EF (709.782712893384, the last
//        double below the overflow limit) 131072 C is x itself, so r = 0,
//        u = 1 and the top scaling gives +inf with no status, where
//        e^x = 0x1.fffffffffff2ap+1023 is finite.
//   A50: the polynomial's own
//        error reaches 1.37 2^-52 relative at r = -ln2/256, which is 2.7 ulp
//        when 2^(j/128) e^r lies near the top of its binade (j = 125); the
//        table entry's rounding and the last addition add up to 1 ulp more,
//        a first-order bound of 3.65 ulp.
//   A53: its largest errors are on subnormal results: u is rounded at 53 bits, a quarter of a
//        subnormal ulp at most in the top subnormal binade, before the
//        rounding into the subnormal range.
//
// Outside the block screen each element takes ElementPath, which repeats
// the block arithmetic for ordinary values, so a result does not depend on
// the element's position.  All its tests are on the raw bits, high word
// first and the low word only on a tie:
//   NaN: A26, A50 give x + x (quiet); A53 gives all 64 bits set.
//   +inf -> +inf, -inf -> +0, with no status.
//   x >= 709.7827128933841 (first double above ln DBL_MAX): +inf,
//     orvStatusOverflow, a stored constant (no flag).
//   n = 1024, which the exponent field cannot hold: u 2^1023 then times 2,
//     where u is the value with the exponent still apart.
//   x <= -708.3964185322642 (ln 2^-1022): the bias is added twice, so u is
//     scaled exactly by 2^(n+1022) and then by 2^-1022, the one rounding
//     into the subnormal range; orvStatusUnderflow.
//   x <= -745.1332191019412 (ln 2^-1075): +0, orvStatusUnderflow, a stored
//     constant (no flag).
//
// Tables: kExp2Fraction64 (A26, A50) and kExp2HeadTail64 (A53) of
// src/tables/exp2_tables.h, generated with MPFR by gen_exp2_tables.cpp from
// the rule 2^(j/2^L).
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "explog/exp64_reduction.h"
#include "tables/exp2_tables.h"

namespace orv {
namespace {
using namespace expReduction;

// ---- Constants ----------------------------------------------------------

// Screen on the high word of |x|: below 708.39599609375, n stays inside
// [-1022, 1022] and every result is a normal double.
constexpr uint32_t kScreenHigh = 0x4086232B;

// Limits of ElementPath, as whole bit patterns.
constexpr uint64_t kOverflowLimit = 0x40862E42FEFA39F0;  // 709.7827128933841
constexpr uint64_t kSubnormalLimit = 0xC086232BDD7ABCD3;  // -708.3964185322642
constexpr uint64_t kZeroLimit = 0xC0874910D52D3052;  // -745.1332191019412
constexpr uint64_t kPosInf64 = 0x7FF0000000000000;
constexpr uint64_t kNegInf64 = 0xFFF0000000000000;
constexpr uint64_t kAllOnes64 = 0xFFFFFFFFFFFFFFFF;
constexpr uint64_t kOne64 = 0x3FF0000000000000;
constexpr int kTopN = 1024;
constexpr double kTwoTo1023 = doubleFromBits(0x7FE0000000000000);
constexpr double kTwoToMinus1022 = doubleFromBits(0x0010000000000000);
constexpr double kTwo64 = 2.0;


// A26, A50: L = 7.
// ---- begin fit_exp64_a50: printed by fit_exp64_a50.sollya; edit the script, not here
// A50: e^r - 1 ~ (((c4 r + c3) r + c2) r) r + r on |r| <= ln2/256; 1 + p
// differs from e^r by 3.04e-16 = 2^-51.55 relative.
constexpr double kA50C2 = doubleFromBits(0x3FDFFFFFFFFFFEB0);  // 0.49999999999998135
constexpr double kA50C3 = doubleFromBits(0x3FC55555B7BAE976);  // 0.16666671248624326
constexpr double kA50C4 = doubleFromBits(0x3FA55555C2A9C0FA);  // 0.041666679394326736
// ---- end fit_exp64_a50

// A53: L = 6.
// ---- begin fit_exp64_a53: printed by fit_exp64_a53.sollya; edit the script, not here
// e^r - 1 ~ r + (((c5 r + c4) r + c3) r + c2) r^2 on |r| <= ln2/128; 1 + p
// differs from e^r by 1.49e-18 = 2^-59.22 relative.
constexpr double kA53C2 = doubleFromBits(0x3FDFFFFFFFFFD97C);  // 0.49999999999945266
constexpr double kA53C3 = doubleFromBits(0x3FC55555555542A1);  // 0.16666666666653376
constexpr double kA53C4 = doubleFromBits(0x3FA555574BC3A1BE);  // 0.04166672515731616
constexpr double kA53C5 = doubleFromBits(0x3F81111276409C2C);  // 0.008333343728805863
// ---- end fit_exp64_a53

#ifndef ORVVM_RECORDS
// ---- Screen -------------------------------------------------------------

// High word of |x| minus the limit for every element, ANDed: the block
// passes when the sign bit survives in every lane.
inline I32x4 screenDifferences(F64x2 a, F64x2 b) {
    return sub32(highWords(a, b) & splat32(kAbs32), splat32(kScreenHigh));
}
inline bool passes(I32x4 differences) { return signMask32(differences) == 0xF; }

// ---- Kernels --------------------------------------------------------------

// A26 and A50: p ~ e^r - 1, the shifted sum, and the table fraction.
struct Parts128 {
    F64x2 p;
    I32x4 sumBits;
    I32x4 fraction;
};
inline I32x4 fraction128(I32x4 sumBits) {
    using tables::kExp2Fraction64;
    return gather64(kExp2Fraction64, lane0of64(sumBits) & kIndexMask128,
                    lane1of64(sumBits) & kIndexMask128);
}
inline Parts128 kernel26(F64x2 x) {
    F64x2 sum = x * splat(kInvLn2x128) + splat(kShifter);
    F64x2 kf = sum - splat(kShifter);
    F64x2 r = x - kf * splat(kLn2by128);
    F64x2 p = (splat(0.5) * r) * r + r;
    return {p, bitsOf(sum), fraction128(bitsOf(sum))};
}
inline Parts128 kernel50(F64x2 x) {
    F64x2 sum = x * splat(kInvLn2x128) + splat(kShifter);
    F64x2 kf = sum - splat(kShifter);
    F64x2 r = (x - kf * splat(kLn2by128Hi)) - kf * splat(kLn2by128Lo);
    F64x2 p = (((splat(kA50C4) * r + splat(kA50C3)) * r + splat(kA50C2)) * r) * r + r;
    return {p, bitsOf(sum), fraction128(bitsOf(sum))};
}
// S = 2^n 2^(j/128) in one OR, then S + S p.
inline F64x2 finish128(const Parts128& p) {
    I32x4 field = shl64<45>(add64(p.sumBits, splat64(kBias128))) & splat64(kExponentMask64);
    F64x2 s = asF64x2(field | p.fraction);
    return s + s * p.p;
}
// The same with the table value at exponent 0: 2^(j/128) e^r.
inline double unscaled128(const Parts128& p) {
    double t = doubleFromBits(lane0of64(p.fraction) | kOne64);
    return t + t * lane0(p.p);
}

// A53: u ~ 2^(j/64) e^r, and the shifted sum.
struct Parts64 {
    F64x2 u;
    I32x4 sumBits;
};
inline Parts64 kernel53(F64x2 x) {
    F64x2 sum = x * splat(kInvLn2x64) + splat(kShifter);
    F64x2 kf = sum - splat(kShifter);
    F64x2 r = (x - kf * splat(kLn2by64Hi)) - kf * splat(kLn2by64Lo);
    F64x2 p = ((splat(kA53C5) * r + splat(kA53C4)) * r + splat(kA53C3)) * r + splat(kA53C2);
    p = r + p * (r * r);
    using tables::kExp2HeadTail64;
    I32x4 sumBits = bitsOf(sum);
    F64x2 row0 = load(&kExp2HeadTail64[lane0of64(sumBits) & kIndexMask64].head);
    F64x2 row1 = load(&kExp2HeadTail64[lane1of64(sumBits) & kIndexMask64].head);
    F64x2 th = unpackLo(row0, row1), tt = unpackHi(row0, row1);
    return {((th + tt) * p + tt) + th, sumBits};
}
inline F64x2 finish53(const Parts64& p) {
    I32x4 field = shl64<46>(add64(p.sumBits, splat64(kBias64))) & splat64(kExponentMask64);
    return p.u * asF64x2(field);
}

// ---- ElementPath --------------------------------------------------------

// x at or above limit, on the bits: high words first, low words on a tie.
inline bool atOrAbove(uint64_t bits, uint64_t limit) {
    uint32_t high = uint32_t(bits >> 32), limitHigh = uint32_t(limit >> 32);
    if (high != limitHigh) return high > limitHigh;
    return uint32_t(bits) >= uint32_t(limit);
}

// What the tiers do differently in the ElementPath.
struct Tier26 {
    static constexpr int kLogTable = 7;
    static Parts128 kernel(F64x2 x) { return kernel26(x); }
    static double finish(const Parts128& p) { return lane0(finish128(p)); }
    static double unscaled(const Parts128& p) { return unscaled128(p); }
    static double nan(double x) { return x + x; }
};
struct Tier50 : Tier26 {
    static Parts128 kernel(F64x2 x) { return kernel50(x); }
};
struct Tier53 {
    static constexpr int kLogTable = 6;
    static Parts64 kernel(F64x2 x) { return kernel53(x); }
    static double finish(const Parts64& p) { return lane0(finish53(p)); }
    static double unscaled(const Parts64& p) { return lane0(p.u); }
    static double nan(double) { return doubleFromBits(kAllOnes64); }
};

// n = k div 2^L, from the sum's low word (two's complement k).
template <class Tier, class Parts>
inline int32_t exponentOf(const Parts& p) {
    return int32_t(uint32_t(lane0of64(p.sumBits))) >> Tier::kLogTable;
}

// ElementPath of the 64-bit tiers.  Values that pass the block screen take
// the block's arithmetic on lane 0, so the result matches the block's bit
// for bit.
template <class Tier>
inline double expElement(double x, StatusVar& status) {
    uint64_t b = bitsOf(x);
    if (passesMagnitude(highWord(x), kScreenHigh)) return Tier::finish(Tier::kernel(splat(x)));
    if ((b & kAbs64) > kPosInf64) return Tier::nan(x);
    if (b == kPosInf64) return x;
    if (b == kNegInf64) return 0.0;
    if ((b & kSign64) == 0) {
        if (atOrAbove(b, kOverflowLimit)) {
            status.write(orvStatusOverflow);
            return doubleFromBits(kPosInf64);
        }
        auto parts = Tier::kernel(splat(x));
        if (exponentOf<Tier>(parts) == kTopN) return Tier::unscaled(parts) * kTwoTo1023 * kTwo64;
        return Tier::finish(parts);
    }
    if (atOrAbove(b, kZeroLimit)) {
        status.write(orvStatusUnderflow);
        return 0.0;
    }
    auto parts = Tier::kernel(splat(x));
    if (!atOrAbove(b, kSubnormalLimit)) return Tier::finish(parts);
    status.write(orvStatusUnderflow);
    // Bias added twice, less one: 2^(n + 1022) is a normal double for every
    // n down to the zero limit, so this product is exact.
    int32_t n = exponentOf<Tier>(parts);
    double scale = doubleFromBits(uint64_t(n + 2 * 1023 - 1) << 52);
    return Tier::unscaled(parts) * scale * kTwoToMinus1022;
}

// ---- Blocks -----------------------------------------------------------------

// A26 and A50: two pairs, screened together.
template <Parts128 (*kernel)(F64x2)>
inline bool expBlock128(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    F64x2 y0 = finish128(kernel(x0)), y1 = finish128(kernel(x1));
    if (!passes(screenDifferences(x0, x1))) return false;
    store(dst, y0);
    store(dst + 2, y1);
    return true;
}

// A53, software-pipelined: elements 0, 1, 4, 5 are computed and stored
// before the screen's verdict, then 2, 3, 6, 7.  A rejected block puts the
// four inputs it kept back where an in-place call has overwritten them;
// a source that dst does not alias is never written (it may be read-only),
// and there the stored-ahead results are simply recomputed.
inline bool expBlock53(const double* src, double* dst) {
    F64x2 x01 = load(src), x45 = load(src + 4);
    store(dst, finish53(kernel53(x01)));
    store(dst + 4, finish53(kernel53(x45)));
    F64x2 x23 = load(src + 2), x67 = load(src + 6);
    F64x2 y23 = finish53(kernel53(x23)), y67 = finish53(kernel53(x67));
    if (passes(screenDifferences(x01, x23) & screenDifferences(x45, x67))) {
        store(dst + 2, y23);
        store(dst + 6, y67);
        return true;
    }
    if (src == dst) {
        store(dst, x01);
        store(dst + 4, x45);
    }
    return false;
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsExp_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return expBlock128<kernel26>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = expElement<Tier26>(src[i], status); });
    });
}

ORV_EXPORT OrvStatus orvsExp_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return expBlock128<kernel50>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = expElement<Tier50>(src[i], status); });
    });
}

// The stored-ahead block drains like every store-ahead member: after a
// rejection the ElementPath runs until the count left is a multiple of 8.
ORV_EXPORT OrvStatus orvsExp_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        drainFallback<8>(
            len, [&](int32_t i) { return expBlock53(src + i, dst + i); },
            [&](int32_t i) { dst[i] = expElement<Tier53>(src[i], status); });
    });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// Every member samples its screened ordinary range, the overflow edge, the
// subnormal results down past the zero limit, and the finite line.
std::vector<Box> expRanges() {
    const double limit = doubleFromBits(uint64_t(kScreenHigh) << 32);
    const double pastZeroLimit = doubleFromBits(kZeroLimit) - 1;
    return {symmetric(limit), Interval{limit, doubleFromBits(kOverflowLimit)}, Interval{pastZeroLimit, -limit},
            kFinite64};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsExp_64f_A26",
     .maxUlp = 2.98e7,
     .worst = {0x1.62e3d73b22475p+9},
     .ranges = expRanges(),
     .exclusions = {excludePoint({doubleFromBits(kOverflowLimit - 1)},
                                 "the last double below the overflow limit is 131072 C itself, so r = 0 and the top "
                                 "scaling gives +inf with no status")},
     .peerVectors = "exp"},
    {.member = "orvsExp_64f_A50",
     .maxUlp = 3.66,
     .worst = {675.79954781112031},
     .ranges = expRanges(),
     .peerVectors = "exp"},
    {.member = "orvsExp_64f_A53",
     .maxUlp = 0.76,
     .worst = {-708.45663944213027},
     .ranges = expRanges(),
     .peerVectors = "exp"})
}  // namespace orv
#endif
