// Cbrt: dst[i] = cbrt(src[i]), the real cube root, all six members.
//
// Method.  The rational-power kernel of root_kernel.h with p/b = 1/3 on
// |x|, the sign of x ORed back: cbrt(-x) = -cbrt(x).  A positive normal
// double x = 2^(3(q - 341)) 2^r m (r = 0, 1, 2) has
//   cbrt(x) = 2^(q - 341) * cbrt(2^r c) * (1 + z)^(1/3),
// c the centre of the 128th of [1, 2) that holds m, z = (m - c)/c, |z| <=
// 2^-8, cbrt(2^r c) from the table, (1 + z)^(1/3) - 1 a polynomial P.
//   64f A53:        P of degree 6 (2^-65.4), the table's hi + lo:
//                   hi + (lo + hi P), then the power of two.
//   64f A26 = A50:  one computation: P of degree 5 (2^-58.1), with lo too.
//   32f, in binary32 on float rows: A24 P of degree 3 (2^-36.0) and A21
//   degree 2 (2^-30.0), hi + (lo + hi P); A11 the first Taylor term z/3
//   (2^-19.2), hi + hi P.
// The bounds in parentheses are those of the fits below; the rest of the
// error budget is in root_kernel.h.  An exact cube (27, -0.125, 2^-999)
// gets its exact root from every tier but A11, whose error before the last
// rounding can exceed half an ulp.
//
// Screens (raw bits): the normal floats and the normal doubles of either
// sign (the positive normal test on |x|).  Blocks of 8 floats or 4
// doubles, WholeBlockFallback.  ElementPath:
//   NaN: x + x (quiet), no status.  +-0 and +-inf: x itself.
//   32f denormal: the double kernel (A50's) on the widened float, rounded
//   once to float.
//   64f denormal: cbrt(x 2^54) 2^-18, both scalings exact.
//   Everything else: the block formula.
// No warning: cbrt is defined, finite and nonzero on every finite nonzero x.
//
// Tables: kCbrtRows, kCbrtLo, kCbrtRows32 of src/tables/root_tables.h
// (gen_root_tables.cpp); fits: fit_cbrt.sollya.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "roots/root_kernel.h"

namespace orv {
namespace {
using namespace roots;

// ---- Constants ------------------------------------------------------------

// ---- begin fit_cbrt
// (1 + z)^(1/3): P(z) ~ (1 + z)^a - 1 on |z| <= 2^-8, coefficients of z^1 .. z^n.
// A53: degree 6, 1 + P differs from (1 + z)^a by 2.11e-20 = 2^-65.36 relative.
constexpr double kPolyA53[6] = {
    doubleFromBits(0x3FD5555555555555),  //  0.3333333333333333
    doubleFromBits(0xBFBC71C71C71C71E),  // -0.11111111111111113
    doubleFromBits(0x3FAF9ADD3C101109),  //  0.06172839506328571
    doubleFromBits(0xBFA511E8D2A54288),  // -0.041152263368194275
    doubleFromBits(0x3F9EE72234952957),  //  0.030178579768553728
    doubleFromBits(0xBF98093319265974),  // -0.023472593698522684
};
// A50 and A26, and the 32f element paths: degree 5, 1 + P differs from (1 + z)^a by 3.23e-18 = 2^-58.1 relative.
constexpr double kPolyA50[5] = {
    doubleFromBits(0x3FD5555555555556),  //  0.33333333333333337
    doubleFromBits(0xBFBC71C71C6F3073),  // -0.11111111110875686
    doubleFromBits(0x3FAF9ADD3BF57D88),  //  0.06172839505120026
    doubleFromBits(0xBFA511F98E34C944),  // -0.04115276204028587
    doubleFromBits(0x3F9EE749012DCB95),  //  0.03017915792174682
};
// A24: degree 3, 1 + P differs from (1 + z)^a by 1.52e-11 = 2^-35.95 relative.
constexpr float kPolyA24[3] = {
    floatFromBits(0x3EAAAAAB),  //  0.3333333432674408
    floatFromBits(0xBDE38E7F),  // -0.11111163347959518
    floatFromBits(0x3D799F4E),  //  0.060942940413951874
};
// A21: degree 2, 1 + P differs from (1 + z)^a by 9.65e-10 = 2^-29.95 relative.
constexpr float kPolyA21[2] = {
    floatFromBits(0x3EAAAAC2),  //  0.3333340287208557
    floatFromBits(0xBDE38E8E),  // -0.11111174523830414
};
// A11 (Taylor): degree 1, 1 + P differs from (1 + z)^a by 1.71e-6 = 2^-19.16 relative.
constexpr float kPolyA11[1] = {
    floatFromBits(0x3EAAAAAB),  //  0.3333333432674408
};
// ---- end fit_cbrt

using Tier53 = RootTier<kPolyA53, true>;
using Tier50 = RootTier<kPolyA50, true>;
using Tier24 = RootTier<kPolyA24, true>;
using Tier21 = RootTier<kPolyA21, true>;
using Tier11 = RootTier<kPolyA11, false>;

constexpr double kDenormalUnscale = 0x1p-18;  // cbrt(2^-54)

#ifndef ORVVM_RECORDS
// ---- Family -----------------------------------------------------------------

struct CbrtFamily {
    using Power = CbrtPower;
    using WideTier = Tier50;
    static constexpr bool kOdd = true;
    static int screen32(F32x4 x) { return normalScreen(x); }
    static int screen64(F64x2 a, F64x2 b) { return normalScreen(a, b); }

    template <class Tier>
    static float element32(float x, StatusVar&) {
        uint32_t magnitude = bitsOf(x) & kAbs32;
        if (magnitude > kInfinity32) return x + x;
        if (magnitude == 0 || magnitude == kInfinity32) return x;
        if (magnitude < kSmallestNormal32) return familyFloatWide<CbrtFamily>(x);
        return familyFloat<CbrtFamily, Tier>(x);
    }
    template <class Tier>
    static double element64(double x, StatusVar&) {
        uint64_t magnitude = bitsOf(x) & kAbs64;
        if (magnitude > kInfinity64) return x + x;
        if (magnitude == 0 || magnitude == kInfinity64) return x;
        if (magnitude < kSmallestNormal64)
            return familyDouble<CbrtFamily, Tier>(x * kDenormalScale64) * kDenormalUnscale;
        return familyDouble<CbrtFamily, Tier>(x);
    }
};

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsCbrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<CbrtFamily, Tier11>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsCbrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<CbrtFamily, Tier21>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsCbrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<CbrtFamily, Tier24>(src, dst, len);
}
// A26 and A50 are one computation.
ORV_EXPORT OrvStatus orvsCbrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<CbrtFamily, Tier50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsCbrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<CbrtFamily, Tier50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsCbrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<CbrtFamily, Tier53>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

const std::vector<Box> kRanges32 = {kOrdinary, kFinite32, symmetric(1e-30), kBelowNormal32};
const std::vector<Box> kRanges64 = {kOrdinary, kFinite64, symmetric(1e-300), kBelowNormal64};

}  // namespace

ORV_RECORDS(
    {.member = "orvsCbrt_32f_A11", .maxUlp = 22.46, .worst = {0x1.01ff68p+101f}, .ranges = kRanges32, .peerVectors = "cbrt"},
    {.member = "orvsCbrt_32f_A21", .maxUlp = 0.5150, .worst = {0x1.bc2bf4p+53f}, .ranges = kRanges32, .peerVectors = "cbrt"},
    {.member = "orvsCbrt_32f_A24", .maxUlp = 0.5016, .worst = {-0x1.e5f16ep+89f}, .ranges = kRanges32, .peerVectors = "cbrt"},
    {.member = "orvsCbrt_64f_A26", .maxUlp = 0.5291, .worst = {-0x0.7f0688535b0abp-1022}, .ranges = kRanges64, .sameAs = "orvsCbrt_64f_A50",
     .peerVectors = "cbrt"},
    {.member = "orvsCbrt_64f_A50", .maxUlp = 0.5291, .worst = {-0x0.7f0688535b0abp-1022}, .ranges = kRanges64, .peerVectors = "cbrt"},
    {.member = "orvsCbrt_64f_A53", .maxUlp = 0.5022, .worst = {0x1.de358b65b3cb3p+506}, .ranges = kRanges64, .peerVectors = "cbrt"})
}  // namespace orv
#endif
