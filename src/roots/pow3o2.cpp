// Pow3o2: dst[i] = x^(3/2), all six members.
//
// Method.  x sqrt(x) would round twice (the root, then the product), and
// its error would reach an ulp; instead the rational-power kernel of
// root_kernel.h with p/b = 3/2 gives x^(3/2) with one rounding of
// consequence.  A positive normal double x = 2^(2(q - 511)) 2^(r - 1) m
// (r = 0, 1) has
//   x^(3/2) = 2^(3(q - 511)) * (2^(r - 1) c)^(3/2) * (1 + z)^(3/2),
// c the centre of the 128th of [1, 2) that holds m, z = (m - c)/c, |z| <=
// 2^-8, (2^(r - 1) c)^(3/2) from the table, (1 + z)^(3/2) - 1 a polynomial P.
//   64f A53:        P of degree 6 (2^-69.0), the table's hi + lo:
//                   hi + (lo + hi P), then the power of two.
//   64f A26 = A50:  one computation: P of degree 5 (2^-59.9), with lo too.
//   32f, in binary32 on float rows: A24 P of degree 3 (2^-39.9) and A21
//   degree 2 (2^-30.0), hi + (lo + hi P); A11 the first Taylor term 3z/2
//   (2^-17.4), hi + hi P.
// The bounds in parentheses are those of the fits below; the rest of the
// error budget is in root_kernel.h.  Exact results (4 -> 8, 2.25 -> 3.375,
// 2^-600 -> 2^-900) come out exactly from every tier but A11.
//
// Screens (raw bits): the floats from 2^-83 up to 2^85 (kBandLow32 ..
// kBandHigh32) and the doubles from 2^-680 up to 2^682 (high words
// kBandLow .. kBandHigh), where the result and its power of two are normal
// and finite.  Blocks of 8 floats or 4 doubles, WholeBlockFallback.
// ElementPath:
//   NaN: x + x (quiet), no status.  +-0: +0.  +inf and -inf: +inf, as
//   pow(x, 1.5).  Negative, not zero, finite: 0xFFC00000 or
//   0xFFF8000000000000, orvStatusDomain (a stored constant, no flag).
//   32f outside the band: the double kernel (A50's) on the widened float,
//   rounded once to float, which makes the overflow to +inf and the
//   denormal results one rounding.
//   64f at or above 2^682: (x 2^-400)^(3/2) 2^600, the last product exact
//   or overflowing to +inf with the IEEE flags of that overflow.
//   64f below 2^-680 (denormals included): the result is at most 2^-1020,
//   near or below the smallest normal; the kernel's value for x 2^700 as
//   an unrounded pair, scaled by 2^-1050 and rounded once into the
//   denormals (a plain product would round twice).
//   Everything else: the block formula.
//
// Tables: kPow3o2Rows, kPow3o2Lo, kPow3o2Rows32 of src/tables/root_tables.h
// (gen_root_tables.cpp); fits: fit_pow3o2.sollya.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "roots/root_kernel.h"

namespace orv {
namespace {
using namespace roots;

// ---- Constants ------------------------------------------------------------

// ---- begin fit_pow3o2
// (1 + z)^(3/2): P(z) ~ (1 + z)^a - 1 on |z| <= 2^-8, coefficients of z^1 .. z^n.
// A53: degree 6, 1 + P differs from (1 + z)^a by 1.67e-21 = 2^-69.02 relative.
constexpr double kPolyA53[6] = {
    doubleFromBits(0x3FF8000000000000),  //  1.5
    doubleFromBits(0x3FD8000000000000),  //  0.375
    doubleFromBits(0xBFAFFFFFFFFED193),  // -0.062499999999462784
    doubleFromBits(0x3F97FFFFFFFE1A3D),  //  0.023437499999568557
    doubleFromBits(0xBF88000D80211171),  // -0.01171885058659747
    doubleFromBits(0x3F7C0013C786FCD5),  //  0.006836011184019959
};
// A50 and A26, and the 32f element paths: degree 5, 1 + P differs from (1 + z)^a by 9.43e-19 = 2^-59.88 relative.
constexpr double kPolyA50[5] = {
    doubleFromBits(0x3FF8000000000000),  //  1.5
    doubleFromBits(0x3FD7FFFFFFFFCFC1),  //  0.3749999999993144
    doubleFromBits(0xBFAFFFFFFFFED00B),  // -0.062499999999460064
    doubleFromBits(0x3F980009BEFC271E),  //  0.023437645227239227
    doubleFromBits(0xBF88000D5DFE9405),  // -0.011718849593146183
};
// A24: degree 3, 1 + P differs from (1 + z)^a by 9.53e-13 = 2^-39.93 relative.
constexpr float kPolyA24[3] = {
    floatFromBits(0x3FC00000),  //  1.5
    floatFromBits(0x3EC0000A),  //  0.3750002980232239
    floatFromBits(0xBD800013),  // -0.06250014156103134
};
// A21: degree 2, 1 + P differs from (1 + z)^a by 9.37e-10 = 2^-29.99 relative.
constexpr float kPolyA21[2] = {
    floatFromBits(0x3FBFFFFA),  //  1.4999992847442627
    floatFromBits(0x3EC0000C),  //  0.37500035762786865
};
// A11 (Taylor): degree 1, 1 + P differs from (1 + z)^a by 5.76e-6 = 2^-17.41 relative.
constexpr float kPolyA11[1] = {
    floatFromBits(0x3FC00000),  //  1.5
};
// ---- end fit_pow3o2

using Tier53 = RootTier<kPolyA53, true>;
using Tier50 = RootTier<kPolyA50, true>;
using Tier24 = RootTier<kPolyA24, true>;
using Tier21 = RootTier<kPolyA21, true>;
using Tier11 = RootTier<kPolyA11, false>;

// The block's band of doubles: 2^-680 <= x < 2^682, so that x^(3/2) lies
// in [2^-1020, 2^1023).
constexpr uint32_t kBandLow = 0x15700000;   // high word of 2^-680
constexpr uint32_t kBandHigh = 0x6A900000;  // high word of 2^682
// The binary32 kernel's band: 2^-83 <= x < 2^85, so that x^(3/2) lies in
// [2^-124.5, 2^127.5), normal and finite.
constexpr uint32_t kBandLow32 = 0x16000000;   // 2^-83
constexpr uint32_t kBandHigh32 = 0x6A000000;  // 2^85
constexpr double kLargeScale = 0x1p-400;  // into the band, 2^282 .. 2^624
constexpr double kLargeUnscale = 0x1p600;
constexpr double kSmallScale = 0x1p700;
constexpr double kSmallUnscale = 0x1p-1050;
// The way back up from a denormal result, in two exact steps (2^1050 is
// beyond the doubles), and half a denormal ulp seen from there.
constexpr double kSmallRescaleHalf = 0x1p525;
constexpr double kHalfDenormalUlpUp = 0x1p-25;
constexpr double kDenormalUlp = 0x1p-1074;
constexpr uint32_t kDefaultNaN32 = 0xFFC00000;
constexpr uint64_t kDefaultNaN64 = 0xFFF8000000000000;

#ifndef ORVVM_RECORDS
// ---- Family -----------------------------------------------------------------

// x^(3/2) of a positive double below 2^-680, rounded once: v = (x 2^700)^(3/2)
// is found as hi + tail and turned into the pair yh + yl (Fast2Sum, as
// |tail| < hi); t = yh 2^-1050 rounds once onto the denormal grid, and the
// part of v it dropped, (yh - t 2^1050) + yl, exact in its first
// difference, moves t by one denormal ulp where it exceeds half of one.
template <class Tier>
inline double smallPow3o2(double x) {
    F64x2 v = splat(x * kSmallScale);
    Reduced red = reduce<Pow3o2Power>(v, v);
    Parts parts = rootParts<Pow3o2Power, Tier>(red);
    double scale = lane0(red.scale0);
    double hi = lane0(parts.hi0), tail = lane0(parts.tail0);
    double yh = hi + tail;
    double yl = (hi - yh) + tail;
    yh *= scale;
    yl *= scale;
    double t = yh * kSmallUnscale;
    if (t >= doubleFromBits(kSmallestNormal64)) return t;
    double dropped = (yh - t * kSmallRescaleHalf * kSmallRescaleHalf) + yl;
    if (dropped > kHalfDenormalUlpUp) return t + kDenormalUlp;
    if (dropped < -kHalfDenormalUlpUp) return t - kDenormalUlp;
    return t;
}

struct Pow3o2Family {
    using Power = Pow3o2Power;
    using WideTier = Tier50;
    static constexpr bool kOdd = false;
    static int screen32(F32x4 x) { return bandScreen<kBandLow32, kBandHigh32>(bitsOf(x)); }
    static int screen64(F64x2 a, F64x2 b) { return bandScreen<kBandLow, kBandHigh>(highWords(a, b)); }

    template <class Tier>
    static float element32(float x, StatusVar& status) {
        uint32_t b = bitsOf(x), magnitude = b & kAbs32;
        if (magnitude > kInfinity32) return x + x;
        if (magnitude == 0 || magnitude == kInfinity32) return floatFromBits(magnitude);
        if (b & kSign32) {
            status.write(orvStatusDomain);
            return floatFromBits(kDefaultNaN32);
        }
        if (!passesBand<kBandLow32, kBandHigh32>(b)) return familyFloatWide<Pow3o2Family>(x);
        return familyFloat<Pow3o2Family, Tier>(x);
    }
    template <class Tier>
    static double element64(double x, StatusVar& status) {
        uint64_t b = bitsOf(x), magnitude = b & kAbs64;
        if (magnitude > kInfinity64) return x + x;
        if (magnitude == 0 || magnitude == kInfinity64) return doubleFromBits(magnitude);
        if (b & kSign64) {
            status.write(orvStatusDomain);
            return doubleFromBits(kDefaultNaN64);
        }
        uint32_t high = highWord(x);
        if (high >= kBandHigh) return familyDouble<Pow3o2Family, Tier>(x * kLargeScale) * kLargeUnscale;
        if (high < kBandLow) return smallPow3o2<Tier>(x);
        return familyDouble<Pow3o2Family, Tier>(x);
    }
};

}  // namespace
}  // namespace orv

using namespace orv;
ORV_EXPORT OrvStatus orvsPow3o2_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<Pow3o2Family, Tier11>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow3o2_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<Pow3o2Family, Tier21>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow3o2_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<Pow3o2Family, Tier24>(src, dst, len);
}
// A26 and A50 are one computation.
ORV_EXPORT OrvStatus orvsPow3o2_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<Pow3o2Family, Tier50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow3o2_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<Pow3o2Family, Tier50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow3o2_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<Pow3o2Family, Tier53>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

const std::vector<Box> kRanges32 = {Interval{0, 1e3}, kPositiveFinite32, Interval{0, 1e-30}, kBelowNormal32,
                                    kFinite32};
const std::vector<Box> kRanges64 = {Interval{0, 1e3}, kPositiveFinite64, Interval{0, 1e-200},
                                    Interval{0, doubleFromBits(uint64_t(kBandLow) << 32)}, kBelowNormal64, kFinite64};

}  // namespace

ORV_RECORDS(
    {.member = "orvsPow3o2_32f_A11", .maxUlp = 68.49, .worst = {0x1.000078p+9f}, .ranges = kRanges32},
    {.member = "orvsPow3o2_32f_A21", .maxUlp = 0.5227, .worst = {0x1.423588p+7f}, .ranges = kRanges32},
    {.member = "orvsPow3o2_32f_A24", .maxUlp = 0.5104, .worst = {0x1.0ffb8p-5f}, .ranges = kRanges32},
    {.member = "orvsPow3o2_64f_A26", .maxUlp = 0.5173, .worst = {0x1.31fd8e098b9bp+9}, .ranges = kRanges64, .sameAs = "orvsPow3o2_64f_A50"},
    {.member = "orvsPow3o2_64f_A50", .maxUlp = 0.5173, .worst = {0x1.31fd8e098b9bp+9}, .ranges = kRanges64},
    {.member = "orvsPow3o2_64f_A53", .maxUlp = 0.5129, .worst = {0x1.2412bcca948d6p+9}, .ranges = kRanges64})
}  // namespace orv
#endif
