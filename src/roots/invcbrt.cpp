// InvCbrt: dst[i] = 1/cbrt(src[i]), all six members.
//
// Method.  The rational-power kernel of root_kernel.h with p/b = -1/3 on
// |x|, the sign of x ORed back.  A positive normal double
// x = 2^(3(q - 341)) 2^r m (r = 0, 1, 2) has
//   x^(-1/3) = 2^(341 - q) * (2^r c)^(-1/3) * (1 + z)^(-1/3),
// c the centre of the 128th of [1, 2) that holds m, z = (m - c)/c, |z| <=
// 2^-8, (2^r c)^(-1/3) from the table, (1 + z)^(-1/3) - 1 a polynomial P.
// No division anywhere: the reciprocal is in the table.
//   64f A53:        P of degree 6 (2^-65.3), the table's hi + lo:
//                   hi + (lo + hi P), then the power of two.
//   64f A26 = A50:  one computation: P of degree 5 (2^-55.9), with lo too.
//   32f, in binary32 on float rows: A24 P of degree 3 (2^-35.6) and A21
//   degree 2 (2^-28.5), hi + (lo + hi P); A11 the first Taylor term -z/3
//   (2^-18.2), hi + hi P.
// The bounds in parentheses are those of the fits below; the rest of the
// error budget is in root_kernel.h.  Where 1/cbrt(x) is a double (x = 8,
// 1/64, -2^-300) every tier but A11 returns it exactly.
//
// Screens (raw bits): the normal floats and the normal doubles of either
// sign.  Blocks of 8 floats or 4 doubles, WholeBlockFallback.
// ElementPath:
//   NaN: x + x (quiet), no status.
//   +-0: +-inf, orvStatusSingularity (a stored constant, no flag).
//   +-inf: +-0.
//   32f denormal: the double kernel (A50's) on the widened float, rounded
//   once to float.
//   64f denormal: (x 2^54)^(-1/3) 2^18, both scalings exact.
//   Everything else: the block formula.
//
// Tables: kInvCbrtRows, kInvCbrtLo, kInvCbrtRows32 of src/tables/root_tables.h
// (gen_root_tables.cpp); fits: fit_invcbrt.sollya.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "roots/root_kernel.h"

namespace orv {
namespace {
using namespace roots;

// ---- Constants ------------------------------------------------------------

// ---- begin fit_invcbrt
// (1 + z)^(-1/3): P(z) ~ (1 + z)^a - 1 on |z| <= 2^-8, coefficients of z^1 .. z^n.
// A53: degree 6, 1 + P differs from (1 + z)^a by 2.25e-20 = 2^-65.27 relative.
constexpr double kPolyA53[6] = {
    doubleFromBits(0xBFD5555555555556),  // -0.33333333333333337
    doubleFromBits(0x3FCC71C71C71C720),  //  0.22222222222222232
    doubleFromBits(0xBFC61F9ADD31093C),  // -0.1728395061528064
    doubleFromBits(0x3FC26FABB84B4F6D),  //  0.1440329217790536
    doubleFromBits(0xBFBFF4EFE512C43B),  // -0.12483119337663677
    doubleFromBits(0x3FBC67FD39E7B88B),  //  0.11096174873066127
};
// A50 and A26, and the 32f element paths: degree 5, 1 + P differs from (1 + z)^a by 1.52e-17 = 2^-55.87 relative.
constexpr double kPolyA50[5] = {
    doubleFromBits(0xBFD5555555555556),  // -0.33333333333333337
    doubleFromBits(0x3FCC71C71C6BA8CE),  //  0.22222222221109295
    doubleFromBits(0xBFC61F9ADD2FEDBB),  // -0.172839506150792
    doubleFromBits(0x3FC26FBF7EB64578),  //  0.14403527915105108
    doubleFromBits(0xBFBFF4F26EBBB7FC),  // -0.1248313446373856
};
// A24: degree 3, 1 + P differs from (1 + z)^a by 1.9e-11 = 2^-35.62 relative.
constexpr float kPolyA24[3] = {
    floatFromBits(0xBEAAAAAB),  // -0.3333333432674408
    floatFromBits(0x3E638EB3),  //  0.22222404181957245
    floatFromBits(0xBE302F49),  // -0.17205537855625153
};
// A21: degree 2, 1 + P differs from (1 + z)^a by 2.59e-9 = 2^-28.53 relative.
constexpr float kPolyA21[2] = {
    floatFromBits(0xBEAAAAED),  // -0.3333353102207184
    floatFromBits(0x3E638ECC),  //  0.2222244143486023
};
// A11 (Taylor): degree 1, 1 + P differs from (1 + z)^a by 3.4e-6 = 2^-18.17 relative.
constexpr float kPolyA11[1] = {
    floatFromBits(0xBEAAAAAB),  // -0.3333333432674408
};
// ---- end fit_invcbrt

using Tier53 = RootTier<kPolyA53, true>;
using Tier50 = RootTier<kPolyA50, true>;
using Tier24 = RootTier<kPolyA24, true>;
using Tier21 = RootTier<kPolyA21, true>;
using Tier11 = RootTier<kPolyA11, false>;

constexpr double kDenormalUnscale = 0x1p18;  // (2^54)^(1/3)

#ifndef ORVVM_RECORDS
// ---- Family -----------------------------------------------------------------

struct InvCbrtFamily {
    using Power = InvCbrtPower;
    using WideTier = Tier50;
    static constexpr bool kOdd = true;
    static int screen32(F32x4 x) { return normalScreen(x); }
    static int screen64(F64x2 a, F64x2 b) { return normalScreen(a, b); }

    template <class Tier>
    static float element32(float x, StatusVar& status) {
        uint32_t b = bitsOf(x), magnitude = b & kAbs32;
        if (magnitude > kInfinity32) return x + x;
        if (magnitude == 0) {
            status.write(orvStatusSingularity);
            return floatFromBits((b & kSign32) | kInfinity32);
        }
        if (magnitude == kInfinity32) return floatFromBits(b & kSign32);
        if (magnitude < kSmallestNormal32) return familyFloatWide<InvCbrtFamily>(x);
        return familyFloat<InvCbrtFamily, Tier>(x);
    }
    template <class Tier>
    static double element64(double x, StatusVar& status) {
        uint64_t b = bitsOf(x), magnitude = b & kAbs64;
        if (magnitude > kInfinity64) return x + x;
        if (magnitude == 0) {
            status.write(orvStatusSingularity);
            return doubleFromBits((b & kSign64) | kInfinity64);
        }
        if (magnitude == kInfinity64) return doubleFromBits(b & kSign64);
        if (magnitude < kSmallestNormal64)
            return familyDouble<InvCbrtFamily, Tier>(x * kDenormalScale64) * kDenormalUnscale;
        return familyDouble<InvCbrtFamily, Tier>(x);
    }
};

}  // namespace
}  // namespace orv

using namespace orv;
ORV_EXPORT OrvStatus orvsInvCbrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<InvCbrtFamily, Tier11>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInvCbrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<InvCbrtFamily, Tier21>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInvCbrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return rootMember32<InvCbrtFamily, Tier24>(src, dst, len);
}
// A26 and A50 are one computation.
ORV_EXPORT OrvStatus orvsInvCbrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<InvCbrtFamily, Tier50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInvCbrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<InvCbrtFamily, Tier50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInvCbrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return rootMember64<InvCbrtFamily, Tier53>(src, dst, len);
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
    {.member = "orvsInvCbrt_32f_A11", .maxUlp = 56.76, .worst = {-0x1.01ffe4p-114f}, .ranges = kRanges32},
    {.member = "orvsInvCbrt_32f_A21", .maxUlp = 0.5424, .worst = {-0x1.048748p+9f}, .ranges = kRanges32},
    {.member = "orvsInvCbrt_32f_A24", .maxUlp = 0.5025, .worst = {0x1.002ep+126f}, .ranges = kRanges32},
    {.member = "orvsInvCbrt_64f_A26", .maxUlp = 0.6357, .worst = {-0x0.86f36990f6127p-1022}, .ranges = kRanges64, .sameAs = "orvsInvCbrt_64f_A50"},
    {.member = "orvsInvCbrt_64f_A50", .maxUlp = 0.6357, .worst = {-0x0.86f36990f6127p-1022}, .ranges = kRanges64},
    {.member = "orvsInvCbrt_64f_A53", .maxUlp = 0.5034, .worst = {-0x1.07c8c579cbe54p+9}, .ranges = kRanges64})
}  // namespace orv
#endif
