// ErfcInv: dst[i] = erfcinv(src[i]) for orvsErfcInv_32f_A11/A21/A24 and
// orvsErfcInv_64f_A26/A50/A53.
//
// Method (erfinv_kernel.h): erfcinv(x) = erfinv(1 - x) = (x - 1) (-Q(w)),
// with w = x below 1 and 2 - x from 1 on, both exact, and Q the function
// of ErfInv: the tables are ErfInv's with every value negated, in the same
// tiers (A11 linear, 16 bands per binade; A21 cubic and A24 degree 5 in
// head and tail, 8 per binade; A26 cubic, 16 per binade; A50 degree 11 and
// A53 degree 14 in head and tail, 4 per binade).  At x = 1 the row and the
// reduced argument are 0 and the result is +0.
//
// Screen: 2^-24 <= x < 2 (floats), 2^-53 <= x < 2 by the high word
// (doubles).  Blocks of 16 (A21, A24) or 8 (the others) are computed whole,
// lanes out of range on +0, and those lanes are redone by the element
// rules, in order:
//   0 < x < 2          erfcInvTail(x) (the range below the table; floats
//                      through double)
//   x = +-0            +infinity (+1 / +0), orvStatusSingularity
//   x = 2              -infinity (-1 / +0), orvStatusSingularity
//   NaN                x * x, no status
//   otherwise          (x < 0, x > 2, infinities) the default NaN (inf * 0),
//                      orvStatusDomain
// Warnings raise their IEEE flags through raiseFpFlags32/64.  erfcInvTail
// (erfinv_tail.cpp) works on 1 / sqrt(-ln x), down to the smallest
// subnormal, where erfcinv is about 27.2.
//
// Tables: kErfcInvRows* of src/tables/erfinv_tables.h, generated with the
// rest by src/tables/gen_erfinv_tables.cpp.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "special/erfinv_kernel.h"

namespace orv {
namespace {

using erfinv::Fn;

// ---- Constants ----------------------------------------------------------
constexpr uint32_t kTwo32 = 0x40000000;
constexpr uint64_t kTwo64 = 0x4000000000000000;
constexpr float kBelowTable32 = 0x1p-24f;
constexpr double kBelowTable64 = 0x1p-53;

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
    if (erfinv::inRange(b, erfinv::kScreen32<Fn::ErfcInv>)) return erfinv::oneLane(x, kernel);
    if (b >= 1 && b < kTwo32) return float(erfinv::erfcInvTail(double(x)));
    if ((b & kAbs32) == 0) return warn(1.0f, orvStatusSingularity, status);
    if (b == kTwo32) return warn(-1.0f, orvStatusSingularity, status);
    if ((b & kAbs32) > kInfinity32) return x * x;
    return warn(0.0f, orvStatusDomain, status);
}

template <class Kernel>
inline double element64(double x, StatusVar& status, Kernel&& kernel) {
    uint64_t b = bitsOf(x);
    if (erfinv::inRange(uint32_t(b >> 32), erfinv::kScreen64<Fn::ErfcInv>)) return erfinv::oneLane(x, kernel);
    if (b >= 1 && b < kTwo64) return erfinv::erfcInvTail(x);
    if ((b & kAbs64) == 0) return warn(1.0, orvStatusSingularity, status);
    if (b == kTwo64) return warn(-1.0, orvStatusSingularity, status);
    if ((b & kAbs64) > kInfinity64) return x * x;
    return warn(0.0, orvStatusDomain, status);
}

// ---- The loops ----------------------------------------------------------------

template <int N, const erfinv::Bands32& B, class L>
inline OrvStatus run32(const float* src, float* dst, int32_t len, const float* table) {
    return erfinv::loop32<Fn::ErfcInv, N, B, L>(
        src, dst, len, table, [](float x, StatusVar& status, auto& kernel) { return element32(x, status, kernel); });
}

template <int N, const erfinv::Bands64& B, class L>
inline OrvStatus run64(const double* src, double* dst, int32_t len, const double* table) {
    return erfinv::loop64<Fn::ErfcInv, N, B, L>(
        src, dst, len, table, [](double x, StatusVar& status, auto& kernel) { return element64(x, status, kernel); });
}

#endif

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS

using namespace orv;
using erfinv::Layout;

ORV_EXPORT OrvStatus orvsErfcInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<kBlock11, erfinv::kBands11, Layout<1, false>>(src, dst, len, &tables::kErfcInvRows11[0][0]);
}
ORV_EXPORT OrvStatus orvsErfcInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<kBlock21, erfinv::kBands21, Layout<3, false>>(src, dst, len, &tables::kErfcInvRows21[0][0]);
}
ORV_EXPORT OrvStatus orvsErfcInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<kBlock24, erfinv::kBands21, Layout<5, true>>(src, dst, len, &tables::kErfcInvRows24[0][0]);
}
ORV_EXPORT OrvStatus orvsErfcInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock26, erfinv::kBands26, Layout<3, false>>(src, dst, len, &tables::kErfcInvRows26[0][0]);
}
ORV_EXPORT OrvStatus orvsErfcInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock50, erfinv::kBands50, Layout<11, false>>(src, dst, len, &tables::kErfcInvRows50[0][0]);
}
ORV_EXPORT OrvStatus orvsErfcInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock53, erfinv::kBands50, Layout<14, true>>(src, dst, len, &tables::kErfcInvRows53[0][0]);
}

#else

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// The ordinary range (0, 2); the far tail below the tables; the
// neighbourhood of 2, where w = 2 - x has few bits.
constexpr Interval kOpen = {0.0, 2.0};
constexpr Interval kTail32 = {0.0, kBelowTable32};
constexpr Interval kTail64 = {0.0, kBelowTable64};
constexpr Interval kNearTwo32 = {2.0 - 0x1p-12, 2.0};
constexpr Interval kNearTwo64 = {2.0 - 0x1p-30, 2.0};
}  // namespace

// The largest errors the accuracy harness found on its samples (8192 per
// range, and the special values), against the MPFR references; no
// exhaustive run of the 32f members yet.
ORV_RECORDS(
    {.member = "orvsErfcInv_32f_A11", .maxUlp = 1080, .worst = {0x1p-1}, .ranges = {kOpen, kTail32, kNearTwo32}},
    {.member = "orvsErfcInv_32f_A21", .maxUlp = 3.08, .worst = {0.50003647804260254}, .ranges = {kOpen, kTail32, kNearTwo32}},
    {.member = "orvsErfcInv_32f_A24", .maxUlp = 0.501, .worst = {0x1.472a02p-1}, .ranges = {kOpen, kTail32, kNearTwo32}},
    {.member = "orvsErfcInv_64f_A26", .maxUlp = 6.39e+07, .worst = {0x1p-1}, .ranges = {kOpen, kTail64, kNearTwo64}},
    {.member = "orvsErfcInv_64f_A50", .maxUlp = 2.43, .worst = {0x1.e53a3e89db03ap-3}, .ranges = {kOpen, kTail64, kNearTwo64}},
    {.member = "orvsErfcInv_64f_A53", .maxUlp = 0.5, .worst = {0x1.fffffffe14f92p+0}, .ranges = {kOpen, kTail64, kNearTwo64}})
}  // namespace orv
#endif
