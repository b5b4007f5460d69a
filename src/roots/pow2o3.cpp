// Pow2o3: dst[i] = x^(2/3) = cbrt(x^2), all six members.
//
// Method.  The rational-power kernel of root_kernel.h with p/b = 2/3 on
// |x| (the function is even; x^2 is never formed, so nothing overflows or
// underflows on the way).  A positive normal double x = 2^(3(q - 341)) 2^r m
// (r = 0, 1, 2) has
//   x^(2/3) = 2^(2(q - 341)) * (2^r c)^(2/3) * (1 + z)^(2/3),
// c the centre of the 128th of [1, 2) that holds m, z = (m - c)/c, |z| <=
// 2^-8, (2^r c)^(2/3) from the table, (1 + z)^(2/3) - 1 a polynomial P.
//   64f A50 = A53:  one computation: P of degree 6 (2^-64.6), the table's
//                   hi + lo: hi + (lo + hi P), then the power of two.
//   64f A26:        P of degree 3 (2^-39.7), hi + hi P.
//   32f, in binary32 on float rows: A24 P of degree 3 (2^-35.0) and A21
//   degree 2 (2^-30.3), hi + (lo + hi P); A11 the first Taylor term 2z/3
//   (2^-19.2), hi + hi P.
// The bounds in parentheses are those of the fits below; the rest of the
// error budget is in root_kernel.h.  Exact results (8 -> 4, -27 -> 9,
// 2^-300 -> 2^-200) come out exactly from every tier but A11 and A26.
//
// Screens (raw bits): the normal floats and the normal doubles of either
// sign.  Blocks of 8 floats or 4 doubles, WholeBlockFallback.
// ElementPath:
//   NaN: x + x (quiet), no status.  +-0: +0.  +-inf: +inf.
//   32f denormal: the double kernel (A26's) on the widened float, rounded
//   once to float.
//   64f denormal: (x 2^54)^(2/3) 2^-36, both scalings exact.
//   Everything else: the block formula.
// No warning.
//
// Tables: kPow2o3Rows, kPow2o3Lo, kPow2o3Rows32 of src/tables/root_tables.h
// (gen_root_tables.cpp); fits: fit_pow2o3.sollya.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "roots/root_kernel.h"

namespace orv {
namespace {
using namespace roots;

// ---- Constants ------------------------------------------------------------

// ---- begin fit_pow2o3
// (1 + z)^(2/3): P(z) ~ (1 + z)^a - 1 on |z| <= 2^-8, coefficients of z^1 .. z^n.
// A53 and A50: degree 6, 1 + P differs from (1 + z)^a by 3.49e-20 = 2^-64.64 relative.
constexpr double kPolyA53[6] = {
    doubleFromBits(0x3FE5555555555555),  //  0.6666666666666666
    doubleFromBits(0xBFBC71C71C71C71D),  // -0.11111111111111112
    doubleFromBits(0x3FA948B0FCE52357),  //  0.049382716055851254
    doubleFromBits(0xBF9D7F7926EF3A98),  // -0.028806584359524295
    doubleFromBits(0x3F93AA489F6658F0),  //  0.0192042681970514
    doubleFromBits(0xBF8C67EDA66D66D2),  // -0.013870102540454541
};
// A26, and the 32f element paths: degree 3, 1 + P differs from (1 + z)^a by 1.16e-12 = 2^-39.66 relative.
constexpr double kPolyA26[3] = {
    doubleFromBits(0x3FE555555555142B),  //  0.6666666666648146
    doubleFromBits(0xBFBC71CD386A7B6B),  // -0.1111114752516024
    doubleFromBits(0x3FA948BEE4A989F6),  //  0.04938313046729441
};
// A24: degree 3, 1 + P differs from (1 + z)^a by 2.83e-11 = 2^-35.04 relative.
constexpr float kPolyA24[3] = {
    floatFromBits(0x3F2AAAAB),  //  0.6666666865348816
    floatFromBits(0xBDE38E6A),  // -0.11111147701740265
    floatFromBits(0x3D43D5B5),  //  0.04781122878193855
};
// A21: degree 2, 1 + P differs from (1 + z)^a by 7.73e-10 = 2^-30.27 relative.
constexpr float kPolyA21[2] = {
    floatFromBits(0x3F2AAAB4),  //  0.6666672229766846
    floatFromBits(0xBDE38E74),  // -0.11111155152320862
};
// A11 (Taylor): degree 1, 1 + P differs from (1 + z)^a by 1.71e-6 = 2^-19.16 relative.
constexpr float kPolyA11[1] = {
    floatFromBits(0x3F2AAAAB),  //  0.6666666865348816
};
// ---- end fit_pow2o3

using Tier53 = RootTier<kPolyA53, true>;
using Tier26 = RootTier<kPolyA26, false>;
using Tier24 = RootTier<kPolyA24, true>;
using Tier21 = RootTier<kPolyA21, true>;
using Tier11 = RootTier<kPolyA11, false>;

constexpr double kDenormalUnscale = 0x1p-36;  // (2^54)^(-2/3)

#ifndef ORVVM_RECORDS
// ---- Family -----------------------------------------------------------------

struct Pow2o3Family {
    using Power = Pow2o3Power;
    using WideTier = Tier26;
    static constexpr bool kOdd = false;
    static int screen32(F32x4 x) { return normalScreen(x); }
    static int screen64(F64x2 a, F64x2 b) { return normalScreen(a, b); }

    template <class Tier>
    static float element32(float x, StatusVar&) {
        uint32_t magnitude = bitsOf(x) & kAbs32;
        if (magnitude > kInfinity32) return x + x;
        if (magnitude == 0 || magnitude == kInfinity32) return floatFromBits(magnitude);
        if (magnitude < kSmallestNormal32) return familyFloatWide<Pow2o3Family>(x);
        return familyFloat<Pow2o3Family, Tier>(x);
    }
    template <class Tier>
    static double element64(double x, StatusVar&) {
        uint64_t magnitude = bitsOf(x) & kAbs64;
        if (magnitude > kInfinity64) return x + x;
        if (magnitude == 0 || magnitude == kInfinity64) return doubleFromBits(magnitude);
        if (magnitude < kSmallestNormal64)
            return familyDouble<Pow2o3Family, Tier>(x * kDenormalScale64) * kDenormalUnscale;
        return familyDouble<Pow2o3Family, Tier>(x);
    }
};

}  // namespace
}  // namespace orv

using namespace orv;
ORV_EXPORT OrvStatus orvsPow2o3_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<Pow2o3Family, Tier11>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow2o3_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<Pow2o3Family, Tier21>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow2o3_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<Pow2o3Family, Tier24>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow2o3_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<Pow2o3Family, Tier26>(src, dst, len);
}
// A50 and A53 are one computation.
ORV_EXPORT OrvStatus orvsPow2o3_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<Pow2o3Family, Tier53>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsPow2o3_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<Pow2o3Family, Tier53>(src, dst, len);
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
    {.member = "orvsPow2o3_32f_A11", .maxUlp = 22.84, .worst = {0x1p+1f}, .ranges = kRanges32},
    {.member = "orvsPow2o3_32f_A21", .maxUlp = 0.5132, .worst = {-0x1.fbe11cp+8f}, .ranges = kRanges32},
    {.member = "orvsPow2o3_32f_A24", .maxUlp = 0.5042, .worst = {0x1.1c1788p+8f}, .ranges = kRanges32},
    {.member = "orvsPow2o3_64f_A26", .maxUlp = 10350, .worst = {-0x1.69e892f01a84ep-122}, .ranges = kRanges64},
    {.member = "orvsPow2o3_64f_A50", .maxUlp = 0.5063, .worst = {0x1.22025283a3bd2p+676}, .ranges = kRanges64, .sameAs = "orvsPow2o3_64f_A53"},
    {.member = "orvsPow2o3_64f_A53", .maxUlp = 0.5063, .worst = {0x1.22025283a3bd2p+676}, .ranges = kRanges64})
}  // namespace orv
#endif
