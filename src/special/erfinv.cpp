// ErfInv: dst[i] = erfinv(src[i]) for orvsErfInv_32f_A11/A21/A24 and
// orvsErfInv_64f_A26/A50/A53.
//
// Method (erfinv_kernel.h): erfinv(x) = x Q(w), w = 1 - |x|, with Q from a
// band of its table picked by the exponent and the first mantissa bits of
// w, so that the accuracy holds right up to the poles at +-1.
//   A11  linear rows, 16 bands per binade of w      (384 rows, floats)
//   A21  cubic rows, 8 bands per binade             (192 rows, floats)
//   A24  degree 5, head and tail, 8 bands per binade (192 rows, floats)
//   A26  cubic rows, 16 bands per binade            (848 rows, doubles)
//   A50  degree 11, 4 bands per binade              (212 rows, doubles)
//   A53  degree 14, head and tail, 4 per binade     (212 rows, doubles)
// A24 and A53 also take the rounding error of w = 1 - |x| into the reduced
// argument, so the small-w rows see the true distance from the pole.
//
// Screen: 2^-24 <= |x| < 1 (floats), 2^-53 <= |x| < 1 by the high word
// (doubles).  Blocks of 16 (floats), 8 (A26, A50) or 4 (A53) are computed
// whole, lanes out of range on +0, and those lanes are then redone by the
// element rules, in order:
//   |x| = 1            +-infinity (+-1 / +0), orvStatusSingularity
//   1 < |x| <= inf     the default NaN (inf * 0), orvStatusDomain
//   NaN                x * x, no status
//   +-0                itself
//   0 < |x| < 2^-24    x sqrt(pi)/2 in double, rounded once to float
//   0 < |x| < 2^-53    x sqrt(pi)/2 with one rounding, also to a subnormal:
//                      x 2^256 times sqrt(pi)/2 as a short head and a tail,
//                      then the sum placed by an addend of 2^-766 so that
//                      the subnormal's bits come out of one rounding.
// Warnings raise their IEEE flags through raiseFpFlags32/64.
//
// Tables: kErfInvRows* of src/tables/erfinv_tables.h, fitted by
// src/tables/gen_erfinv_tables.cpp.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "special/erfinv_kernel.h"

namespace orv {
namespace {

using erfinv::Fn;
using erfinv::Layout;

// ---- Constants ----------------------------------------------------------
constexpr uint32_t kOne32 = 0x3F800000;
constexpr uint64_t kOne64 = 0x3FF0000000000000;
constexpr uint32_t kBelowTable32 = 0x33800000;           // 2^-24
constexpr uint64_t kBelowTable64 = 0x3CA0000000000000;   // 2^-53
// sqrt(pi)/2 for the floats' tiny arguments.
constexpr double kSqrtPiOver2 = doubleFromBits(0x3FEC5BF891B4EF6B);
// The doubles' tiny arguments: x 2^256 times Kh + Kt = sqrt(pi)/2, Kh short.
constexpr double kUp256 = doubleFromBits(0x4FF0000000000000), kDown256 = doubleFromBits(0x2FF0000000000000);
constexpr double kKh = doubleFromBits(0x3FEC5C0000000000), kKt = doubleFromBits(0xBECDB92C4255618F);
constexpr uint32_t kNormalAfterScale = 0x10100000;                  // 2^-766, 2^-1022 scaled back
constexpr uint64_t kSubnormalPlace = 0x1010000000000000;            // 2^-766
constexpr double kUnderflowing = doubleFromBits(0x0170000000000000);  // squared: underflow
constexpr uint64_t kSignAndFraction = 0x800FFFFFFFFFFFFF;

constexpr int kBlock32 = 16, kBlock26 = 8, kBlock50 = 8, kBlock53 = 4;

#ifndef ORVVM_RECORDS

// ---- Element rules --------------------------------------------------------

inline float poleOrDomain32(float x, uint32_t magnitude, StatusVar& status) {
    OrvStatus code;
    float r;
    if (magnitude == kOne32) {
        r = opaque(x) / opaque(0.0f);  // +-1 / +0
        code = orvStatusSingularity;
    } else {
        r = opaque(floatFromBits(kInfinity32)) * opaque(0.0f);
        code = orvStatusDomain;
    }
    status.write(code);
    raiseFpFlags32(code);
    return r;
}

template <class Kernel>
inline float element32(float x, StatusVar& status, Kernel&& kernel) {
    uint32_t magnitude = bitsOf(x) & kAbs32;
    if (erfinv::inRange(magnitude, erfinv::kScreen32<Fn::ErfInv>)) return erfinv::oneLane(x, kernel);
    if (magnitude >= kOne32 && magnitude <= kInfinity32) return poleOrDomain32(x, magnitude, status);
    if (magnitude > kInfinity32) return x * x;
    if (magnitude == 0) return x;
    return float(double(x) * kSqrtPiOver2);
}

// x sqrt(pi)/2 for 0 < |x| < 2^-53, rounded once, to a subnormal as well.
inline double tiny64(double x) {
    double z = x * kUp256;
    double zh = doubleFromBits(bitsOf(z) & erfinv::kHeadMask53), zl = z - zh;
    double a = kKh * zh, b = kKh * zl + kKt * z;
    double v = a + b;
    if ((highWord(v) & kAbs32) >= kNormalAfterScale) return v * kDown256;
    forceEval(opaque(kUnderflowing) * opaque(kUnderflowing));
    // v + B lies in [2^-766, 2^-765), whose ulp is the subnormals' ulp
    // after scaling: the fraction bits of one rounding of a + b + B are the
    // subnormal's bits.
    double B = doubleFromBits(kSubnormalPlace | (bitsOf(x) & kSign64));
    double n = doubleFromBits(bitsOf(v + B) & erfinv::kHeadMask53);
    return doubleFromBits(bitsOf(n + ((a - (n - B)) + b)) & kSignAndFraction);
}

inline double poleOrDomain64(double x, uint64_t magnitude, StatusVar& status) {
    OrvStatus code;
    double r;
    if (magnitude == kOne64) {
        r = opaque(x) / opaque(0.0);
        code = orvStatusSingularity;
    } else {
        r = opaque(doubleFromBits(kInfinity64)) * opaque(0.0);
        code = orvStatusDomain;
    }
    status.write(code);
    raiseFpFlags64(code);
    return r;
}

template <class Kernel>
inline double element64(double x, StatusVar& status, Kernel&& kernel) {
    uint64_t magnitude = bitsOf(x) & kAbs64;
    if (erfinv::inRange(uint32_t(magnitude >> 32), erfinv::kScreen64<Fn::ErfInv>))
        return erfinv::oneLane(x, kernel);
    if (magnitude >= kOne64 && magnitude <= kInfinity64) return poleOrDomain64(x, magnitude, status);
    if (magnitude > kInfinity64) return x * x;
    if (magnitude == 0) return x;
    return tiny64(x);
}

// ---- The loops ----------------------------------------------------------------

template <const erfinv::Bands32& B, class L>
inline OrvStatus run32(const float* src, float* dst, int32_t len, const float* table) {
    return erfinv::loop32<Fn::ErfInv, kBlock32, B, L>(
        src, dst, len, table, [](float x, StatusVar& status, auto& kernel) { return element32(x, status, kernel); });
}

template <int N, const erfinv::Bands64& B, class L>
inline OrvStatus run64(const double* src, double* dst, int32_t len, const double* table) {
    return erfinv::loop64<Fn::ErfInv, N, B, L>(
        src, dst, len, table, [](double x, StatusVar& status, auto& kernel) { return element64(x, status, kernel); });
}

#endif

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS

using namespace orv;
using erfinv::Layout;

ORV_EXPORT OrvStatus orvsErfInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<erfinv::kBands11, Layout<1, false>>(src, dst, len, &tables::kErfInvRows11[0][0]);
}
ORV_EXPORT OrvStatus orvsErfInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<erfinv::kBands21, Layout<3, false>>(src, dst, len, &tables::kErfInvRows21[0][0]);
}
ORV_EXPORT OrvStatus orvsErfInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return run32<erfinv::kBands21, Layout<5, true>>(src, dst, len, &tables::kErfInvRows24[0][0]);
}
ORV_EXPORT OrvStatus orvsErfInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock26, erfinv::kBands26, Layout<3, false>>(src, dst, len, &tables::kErfInvRows26[0][0]);
}
ORV_EXPORT OrvStatus orvsErfInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock50, erfinv::kBands50, Layout<11, false>>(src, dst, len, &tables::kErfInvRows50[0][0]);
}
ORV_EXPORT OrvStatus orvsErfInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return run64<kBlock53, erfinv::kBands50, Layout<14, true>>(src, dst, len, &tables::kErfInvRows53[0][0]);
}

#else

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// The ordinary range: the open interval (-1, 1); the poles and the
// outside are the special values' business.
constexpr Interval kOpen = {-1.0, 1.0};
// Near the poles, where w = 1 - |x| has only a few bits: the last binades
// of the tables.
constexpr Interval kNearOne32 = {1.0 - 0x1p-12, 1.0};
constexpr Interval kNearOne64 = {1.0 - 0x1p-30, 1.0};
constexpr Interval kTiny32 = {-floatFromBits(kBelowTable32), floatFromBits(kBelowTable32)};
constexpr Interval kTiny64 = {-doubleFromBits(kBelowTable64), doubleFromBits(kBelowTable64)};
}  // namespace

// The largest errors the accuracy harness found on its samples (8192 per
// range, and the special values), against the MPFR references; no
// exhaustive run of the 32f members yet.
ORV_RECORDS(
    {.member = "orvsErfInv_32f_A11", .maxUlp = 1080, .worst = {0x1p-1}, .ranges = {kOpen, kNearOne32, kTiny32}},
    {.member = "orvsErfInv_32f_A21", .maxUlp = 3.08, .worst = {-0.49996352195739746}, .ranges = {kOpen, kNearOne32, kTiny32}},
    {.member = "orvsErfInv_32f_A24", .maxUlp = 0.5, .worst = {-0x1.a739f8p-1}, .ranges = {kOpen, kNearOne32, kTiny32}},
    {.member = "orvsErfInv_64f_A26", .maxUlp = 6.39e+07, .worst = {0x1p-1}, .ranges = {kOpen, kNearOne64, kTiny64}},
    {.member = "orvsErfInv_64f_A50", .maxUlp = 1.89, .worst = {0.71549952097503344}, .ranges = {kOpen, kNearOne64, kTiny64}},
    {.member = "orvsErfInv_64f_A53", .maxUlp = 0.501, .worst = {0x1.907e879b29f92p-1}, .ranges = {kOpen, kNearOne64, kTiny64}})
}  // namespace orv
#endif
