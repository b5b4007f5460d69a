// CdfNormInv: dst[i] = the p-quantile of the standard normal distribution,
// Phi^-1(src[i]), for orvsCdfNormInv_32f_A11/A21/A24 and
// orvsCdfNormInv_64f_A26/A50/A53.
//
// Method (erfinv_kernel.h): Phi^-1(p) = sqrt(2) erfinv(2p - 1) =
// (2p - 1) sqrt(2) Q(w), with w = 2p below 1/2 and 2 - 2p from 1/2 on (both
// exact) and Q the function of ErfInv; the tables hold sqrt(2) Q, fitted on
// their own, in the tiers of ErfInv (A11 linear, 16 bands per binade; A21
// cubic and A24 degree 5 in head and tail, 8 per binade; A26 cubic, 16 per
// binade; A50 degree 11 and A53 degree 14 in head and tail, 4 per binade).
// At p = 1/2 the row and the reduced argument are 0 and the result is +0.
//
// Screen: 2^-25 <= p < 1 (floats), 2^-54 <= p < 1 by the high word
// (doubles).  Blocks of 16 (A21, A24) or 8 (the others) are computed whole,
// lanes out of range on +0, and those lanes are redone by the element
// rules, in order:
//   0 < p < 1          cdfNormInvTail(p) (below the table; floats through
//                      double)
//   p = +-0            -infinity (-1 / +0), orvStatusSingularity
//   p = 1              +infinity (+1 / +0), orvStatusSingularity
//   NaN                x * x, no status
//   otherwise          (p < 0, p > 1, infinities) the default NaN (inf * 0),
//                      orvStatusDomain
// Warnings raise their IEEE flags through raiseFpFlags32/64.
// cdfNormInvTail (erfinv_tail.cpp) is erfcInvTail on ln(2p) with its own
// rows, -sqrt(2) times erfcInvTail's, down to the smallest subnormal p.
//
// Tables: kCdfNormInvRows* of src/tables/erfinv_tables.h, fitted by
// src/tables/gen_erfinv_tables.cpp.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "special/erfinv_kernel.h"

namespace orv {
namespace {

using erfinv::Fn;

// ---- Constants ----------------------------------------------------------
constexpr uint32_t kOne32 = 0x3F800000;
constexpr uint64_t kOne64 = 0x3FF0000000000000;
constexpr float kBelowTable32 = 0x1p-25f;
constexpr double kBelowTable64 = 0x1p-54;

constexpr int kBlock11 = 8, kBlock21 = 16, kBlock24 = 16, kBlock26 = 8, kBlock50 = 8, kBlock53 = 8;

#ifndef ORVVM_RECORDS

// ---- Element rules --------------------------------------------------------

// Poles and the outside of the domain, by their result: +-1 / +0 or the
// default NaN.
template <class T>
inline T warn(T numerator, OrvStatus code, StatusVar& status) {
    T r = code == orvStatusDomain ? opaque(T(__builtin_inf())) * opaque(T(0)) : opaque(numerator) / opaque(T(0));
    status.write(code);
    if constexpr (sizeof(T) == 4)
        raiseFpFlags32(code);
    else
        raiseFpFlags64(code);
    return r;
}

template <class Kernel>
inline float element32(float x, StatusVar& status, Kernel&& kernel) {
    uint32_t b = bitsOf(x);
    if (erfinv::inRange(b, erfinv::kScreen32<Fn::CdfNormInv>)) return erfinv::oneLane(x, kernel);
    if (b >= 1 && b < kOne32) return float(erfinv::cdfNormInvTail(double(x)));
    if ((b & kAbs32) == 0) return warn(-1.0f, orvStatusSingularity, status);
    if (b == kOne32) return warn(1.0f, orvStatusSingularity, status);
    if ((b & kAbs32) > kInfinity32) return x * x;
    return warn(0.0f, orvStatusDomain, status);
}

template <class Kernel>
inline double element64(double x, StatusVar& status, Kernel&& kernel) {
    uint64_t b = bitsOf(x);
    if (erfinv::inRange(uint32_t(b >> 32), erfinv::kScreen64<Fn::CdfNormInv>)) return erfinv::oneLane(x, kernel);
    if (b >= 1 && b < kOne64) return erfinv::cdfNormInvTail(x);
    if ((b & kAbs64) == 0) return warn(-1.0, orvStatusSingularity, status);
    if (b == kOne64) return warn(1.0, orvStatusSingularity, status);
    if ((b & kAbs64) > kInfinity64) return x * x;
    return warn(0.0, orvStatusDomain, status);
}

// ---- The loops ----------------------------------------------------------------

template <int N, const erfinv::Bands32& B, class L>
inline OrvStatus run32(const float* src, float* dst, int32_t len, const float* table) {
    return erfinv::loop32<Fn::CdfNormInv, N, B, L>(
        src, dst, len, table, [](float x, StatusVar& status, auto& kernel) { return element32(x, status, kernel); });
}

template <int N, const erfinv::Bands64& B, class L>
inline OrvStatus run64(const double* src, double* dst, int32_t len, const double* table) {
    return erfinv::loop64<Fn::CdfNormInv, N, B, L>(
        src, dst, len, table, [](double x, StatusVar& status, auto& kernel) { return element64(x, status, kernel); });
}

#endif

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS

using namespace orv;
using erfinv::Layout;

ORV_EXPORT OrvStatus orvsCdfNormInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<kBlock11, erfinv::kBands11, Layout<1, false>>(src, dst, len, &tables::kCdfNormInvRows11[0][0]);
}
ORV_EXPORT OrvStatus orvsCdfNormInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<kBlock21, erfinv::kBands21, Layout<3, false>>(src, dst, len, &tables::kCdfNormInvRows21[0][0]);
}
ORV_EXPORT OrvStatus orvsCdfNormInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<kBlock24, erfinv::kBands21, Layout<5, true>>(src, dst, len, &tables::kCdfNormInvRows24[0][0]);
}
ORV_EXPORT OrvStatus orvsCdfNormInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock26, erfinv::kBands26, Layout<3, false>>(src, dst, len, &tables::kCdfNormInvRows26[0][0]);
}
ORV_EXPORT OrvStatus orvsCdfNormInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock50, erfinv::kBands50, Layout<11, false>>(src, dst, len, &tables::kCdfNormInvRows50[0][0]);
}
ORV_EXPORT OrvStatus orvsCdfNormInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock53, erfinv::kBands50, Layout<14, true>>(src, dst, len, &tables::kCdfNormInvRows53[0][0]);
}

#else

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// The ordinary range (0, 1); the far tail below the tables; the
// neighbourhood of 1, where w = 2 - 2p has few bits.
constexpr Interval kOpen = {0.0, 1.0};
constexpr Interval kTail32 = {0.0, kBelowTable32};
constexpr Interval kTail64 = {0.0, kBelowTable64};
constexpr Interval kNearOne32 = {1.0 - 0x1p-12, 1.0};
constexpr Interval kNearOne64 = {1.0 - 0x1p-30, 1.0};
}  // namespace

// The largest errors the accuracy harness found on its samples (8192 per
// range, and the special values), against the MPFR references; no
// exhaustive run of the 32f members yet.
ORV_RECORDS(
    {.member = "orvsCdfNormInv_32f_A11", .maxUlp = 821, .worst = {0x1.6002bep-1}, .ranges = {kOpen, kTail32, kNearOne32}},
    {.member = "orvsCdfNormInv_32f_A21", .maxUlp = 2.36, .worst = {0x1.5781fep-1}, .ranges = {kOpen, kTail32, kNearOne32}},
    {.member = "orvsCdfNormInv_32f_A24", .maxUlp = 0.501, .worst = {0x1.ffebd4p-1}, .ranges = {kOpen, kTail32, kNearOne32}},
    {.member = "orvsCdfNormInv_64f_A26", .maxUlp = 4.44e+07, .worst = {0x1.7edc59885e28bp-1}, .ranges = {kOpen, kTail64, kNearOne64}},
    {.member = "orvsCdfNormInv_64f_A50", .maxUlp = 2.21, .worst = {0x1.73bab8cf6516dp-3}, .ranges = {kOpen, kTail64, kNearOne64}},
    {.member = "orvsCdfNormInv_64f_A53", .maxUlp = 0.501, .worst = {0x1.c181c8e712929p-2}, .ranges = {kOpen, kTail64, kNearOne64}})
}  // namespace orv
#endif
