// Acosh, real members: dst[i] = acosh src[i] for orvsAcosh_32f_A11/A21/A24
// and orvsAcosh_64f_A26/A50/A53.
//
// Method.  For x >= 1,
//   acosh x = ln(x + sqrt(x^2 - 1)),
// the logarithm of a pair u + c >= 1 (see inverse_hyperbolic.h).  Next to
// x = 1 + d, acosh x ~ sqrt(2d): the result is far larger than d, but
// x^2 - 1 must be formed without cancellation, and u ~ 1 + sqrt(2d) must
// keep the bits of sqrt(2d) below the ulp of 1, which c holds.
//   32f tiers, in double: x^2 - 1 = (x - 1)(x + 1), x - 1 exact, the
//        product and the square root rounded (s within 1.5 2^-53), and
//        u = x + s rounded: its error, 2^-53 absolute, is 2^-42 of the
//        smallest result, acosh(1 + 2^-23) ~ 2^-11, so no c; the logarithm on
//        the one-double table with Taylor terms to
//        A11: r^2 (2^-21.6)   A21: r^3 (2^-32)   A24: r^4 (2^-42.3),
//        rounded once to float.  x^2 cannot overflow a double.
//   64f: x^2 as an exact pair, less 1 by a fast two-sum (exact), its
//        square root as a pair and x added exactly (acoshPair), good to
//        2^-100 next to 1 as elsewhere; the logarithm on the head-tail table,
//        Taylor to r^6; A26 = A50 (one routine) adds uh + ul at once
//        (A = (uh + ul) + (e H + Th)), A53 keeps ul among the small terms
//        but where the table's tail is 0 (next to u = 1) and ul is exact.
// acosh 1 = +0: x^2 - 1 = 0, its square root 0 (its remainder's divisor
// held off 0), u = 1, c = 0, and the logarithm of 1 is +0.
//
// Tiers: the maximum errors, measured with MPFR by the accuracy test and
// by denser sampling of the worst neighbourhoods, and their inputs are in
// the records at the end.  They lie next to x - 1 ~ 2^-21 (A11: 2^-20),
// where the result sqrt(2(x - 1)) is about the reduced argument r of the
// logarithm and r is largest (|r| ~ 2^-10 at the rows' edges): the dropped
// series terms (A11), the rounding of uh + ul at the result's scale
// (A26 = A50), the last rounding (the others).
//
// Screen (raw bits): x in [1, +inf) for 32f, [1, 2^511) for 64f, where x^2
// stays finite: the bits (or the high word) less the pattern of 1.0 and
// 2^31, compared as signed integers with the width of the range less 1
// and 2^31, so that everything below 1 (negative numbers too) wraps above
// it; blocks of 8 floats or 4 doubles.  ElementPath:
//   NaN: x + x (quiet), no status.  +inf: +inf.
//   64f, 2^511 <= x < inf: acosh x = ln 2x - 1/(4x^2) - ..., so ln x + ln 2,
//        the logarithm of the pair x + 0 with its exponent moved up by one.
//   x < 1 (zeros and -inf too): the default NaN (0xFFC00000,
//        0xFFF8000000000000) and orvStatusDomain; orvsAcosh_64f_A53 raises
//        the invalid flag with raiseFpFlags64, the other members store the
//        constant and raise nothing.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "hyperbolic/inverse_hyperbolic.h"

namespace orv {
namespace {
using namespace ahyp;

// ---- Constants ----------------------------------------------------------

// The screen: int32(bits - kBias) <= int32(kLimit) passes [1, top).
constexpr uint32_t kOne32 = 0x3F800000;
constexpr uint32_t kTop32 = 0x7F800000;  // +inf
constexpr uint32_t kBias32 = kOne32 + kSign32;
constexpr uint32_t kLimit32 = kTop32 - kOne32 - 1 + kSign32;
constexpr uint32_t kOneHigh64 = 0x3FF00000;
constexpr uint32_t kTopHigh64 = 0x5FE00000;  // 2^511: x^2 below 2^1022
constexpr uint32_t kBias64 = kOneHigh64 + kSign32;
constexpr uint32_t kLimit64 = kTopHigh64 - kOneHigh64 - 1 + kSign32;
constexpr double kScreenTop64 = 0x1p511;

constexpr uint32_t kDomainNaN32 = 0xFFC00000;
constexpr uint64_t kDomainNaN64 = 0xFFF8000000000000;

#ifndef ORVVM_RECORDS
// ---- Screens ----------------------------------------------------------------

// The lanes (bit k for lane k) whose words fail int32(w - bias) <= int32(limit).
inline int rangeScreen(I32x4 words, uint32_t bias, uint32_t limit) {
    return signMask32(cmpGt32(sub32(words, splat32(bias)), splat32(limit)));
}
inline bool passesRange(uint32_t word, uint32_t bias, uint32_t limit) {
    return int32_t(word - bias) <= int32_t(limit);
}

// ---- Kernels --------------------------------------------------------------

template <int kTerms>
inline F64x2 acoshHalf32(F64x2 x) {
    return lnOf26<kTerms>(x + sqrt((x - lanes(1.0)) * (x + lanes(1.0))));
}
template <int kTerms>
inline F32x4 acoshFloat4(F32x4 x) {
    return narrow(acoshHalf32<kTerms>(widenLow(x)), acoshHalf32<kTerms>(widenHigh(x)));
}

template <bool kTop>
inline F64x2 acoshDouble2(F64x2 x) {
    Pair u = acoshPair(x);
    return lnPair53<kTop>(u.u, u.c, zeroF64x2());
}

// ---- Blocks and ElementPaths ---------------------------------------------------

template <int kTerms>
inline bool acoshBlock32(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    if ((rangeScreen(bitsOf(x0), kBias32, kLimit32) | rangeScreen(bitsOf(x1), kBias32, kLimit32)) != 0)
        return false;
    store(dst, acoshFloat4<kTerms>(x0));
    store(dst + 4, acoshFloat4<kTerms>(x1));
    return true;
}
template <int kTerms>
inline float acoshElement32(float x, StatusVar& status) {
    uint32_t b = bitsOf(x);
    if (passesRange(b, kBias32, kLimit32)) return lane0(acoshFloat4<kTerms>(splat(x)));
    if ((b & kAbs32) > kInfinity32) return x + x;
    if (b == kInfinity32) return x;
    status.write(orvStatusDomain);
    return floatFromBits(kDomainNaN32);
}

template <bool kTop>
inline bool acoshBlock64(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    if (rangeScreen(highWords(x0, x1), kBias64, kLimit64) != 0) return false;
    store(dst, acoshDouble2<kTop>(x0));
    store(dst + 2, acoshDouble2<kTop>(x1));
    return true;
}
// kRaise: the domain warning comes with the invalid flag (A53).
template <bool kTop, bool kRaise>
inline double acoshElement64(double x, StatusVar& status) {
    uint64_t b = bitsOf(x);
    if (passesRange(highWord(x), kBias64, kLimit64)) return lane0(acoshDouble2<kTop>(splat(x)));
    if ((b & kAbs64) > kInfinity64) return x + x;
    if (b == kInfinity64) return x;
    if ((b & kSign64) == 0 && highWord(x) >= kTopHigh64)  // ln x + ln 2, x finite and at least 2^511
        return lane0(lnPair53<kTop>(splat(x), zeroF64x2(), lanes(1.0)));
    status.write(orvStatusDomain);
    if constexpr (kRaise) raiseFpFlags64(orvStatusDomain);
    return doubleFromBits(kDomainNaN64);
}

template <int kTerms>
inline OrvStatus acoshMember32(const float* src, float* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return acoshBlock32<kTerms>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = acoshElement32<kTerms>(src[i], status); });
    });
}
template <bool kTop, bool kRaise>
inline OrvStatus acoshMember64(const double* src, double* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return acoshBlock64<kTop>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = acoshElement64<kTop, kRaise>(src[i], status); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsAcosh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return acoshMember32<1>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAcosh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return acoshMember32<2>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAcosh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return acoshMember32<3>(src, dst, len);
}
// A26 and A50 are one routine: the head-tail logarithm summed plainly.
ORV_EXPORT OrvStatus orvsAcosh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return acoshMember64<false, false>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAcosh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsAcosh_64f_A26")));
ORV_EXPORT OrvStatus orvsAcosh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return acoshMember64<true, true>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include <algorithm>

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range, the neighbourhood of 1, large arguments (up to the
// 64f screen's limit), and the whole finite line (domain errors below 1).
std::vector<Box> acoshRanges(Interval finite) {
    return {Interval{1.0, 10.0}, Interval{1.0, 1.001}, Interval{10.0, std::min(finite.hi, kScreenTop64)}, finite};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsAcosh_32f_A11", .maxUlp = 4.667, .worst = {0x1.000008p+0}, .ranges = acoshRanges(kFinite32),
     .peerVectors = "acosh"},
    {.member = "orvsAcosh_32f_A21", .maxUlp = 0.5001, .worst = {0x1.5e598p+0}, .ranges = acoshRanges(kFinite32),
     .peerVectors = "acosh"},
    {.member = "orvsAcosh_32f_A24", .maxUlp = 0.5, .worst = {0x1.5e598p+0}, .ranges = acoshRanges(kFinite32),
     .peerVectors = "acosh"},
    {.member = "orvsAcosh_64f_A26", .maxUlp = 1.68, .worst = {0x1.000007fe90b23p+0}, .ranges = acoshRanges(kFinite64),
     .peerVectors = "acosh"},
    {.member = "orvsAcosh_64f_A50", .maxUlp = 1.68, .worst = {0x1.000007fe90b23p+0}, .ranges = acoshRanges(kFinite64),
     .sameAs = "orvsAcosh_64f_A26", .peerVectors = "acosh"},
    {.member = "orvsAcosh_64f_A53", .maxUlp = 0.5006, .worst = {0x1.00000cea72d7dp+0}, .ranges = acoshRanges(kFinite64),
     .peerVectors = "acosh"})
}  // namespace orv
#endif
