// Asinh, real members: dst[i] = asinh src[i] for orvsAsinh_32f_A11/A21/A24
// and orvsAsinh_64f_A26/A50/A53.
//
// Method.  asinh is odd, so the work is on a = |x| and the sign of x is
// ORed onto the result (bit for bit odd, -0 gives -0):
//   asinh a = ln(a + sqrt(a^2 + 1)),
// the logarithm of a pair u + c >= 1 (see inverse_hyperbolic.h).  Next to
// a = 0, u = 1 + a + a^2/2 + ..., and the result ~ a keeps its relative
// accuracy only if u carries a and the first bits below it: c holds them.
//   32f tiers, in double:
//     A11, A21: u + c = a + s exactly (two-sum), s = sqrt(1 + a^2) rounded.
//        s is off by at most 2^-52 absolute where it differs from 1, that
//        is for a above 2^-27, where it costs at most 2^-25 relative; below,
//        s = 1 and the dropped a^2/2 is below 2^-28 of a.
//     A24: u + c = 1 + t exactly, t = a + a^2/(1 + s): t within 2^-50.
//     The logarithm on the one-double table with Taylor terms to
//        A11: r^2 (2^-21.6)   A21: r^3 (2^-32)   A24: r^4 (2^-42.3),
//     rounded once to float.  a^2 cannot overflow a double.
//   64f: u + c from a^2 as an exact pair, 1 + a^2 normalised, its square
//        root as a pair and a added exactly (asinhPair), good to 2^-100;
//        the logarithm on the head-tail table,
//        Taylor to r^6; A26 = A50 (one routine) adds uh + ul at once
//        (A = (uh + ul) + (e H + Th)), A53 keeps ul among the small terms
//        but where the table's tail is 0 (next to u = 1) and ul is exact.
//
// Tiers: the maximum errors, measured with MPFR by the accuracy test and
// by denser sampling of the worst neighbourhoods, and their inputs are in
// the records at the end.  They lie next to |x| just below 2^-10 (A11 2^-11),
// where the result is about the reduced argument r of the logarithm and r
// is largest (|r| ~ 2^-10 at the rows' edges): the dropped series terms
// (A11), the rounding of uh + ul at the result's scale (A26 = A50), the
// last rounding (the others).
//
// Screen (raw bits): 32f: |x| finite (below 0x7F800000), blocks of 8;
// 64f: |x| below 2^511 (high word 0x5FE00000), where a^2 stays finite,
// blocks of 4.  ElementPath:
//   NaN: x + x (quiet), no status.  +-inf: x.
//   64f, 2^511 <= |x| < inf: asinh a = ln 2a + 1/(4a^2) - ..., and 1/(4a^2)
//        lies far below the last bit, so ln a + ln 2: the logarithm of the
//        pair a + 0 with its exponent moved up by one.
// No warning is possible.
#include <algorithm>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "hyperbolic/inverse_hyperbolic.h"

namespace orv {
namespace {
using namespace ahyp;

// ---- Constants ----------------------------------------------------------

constexpr uint32_t kScreen32 = 0x7F800000;      // |x| finite
constexpr uint32_t kScreenHigh64 = 0x5FE00000;  // |x| below 2^511: a^2 below 2^1022
constexpr double kScreenTop64 = 0x1p511;

#ifndef ORVVM_RECORDS
// ---- Kernels --------------------------------------------------------------

// A11, A21: u + c = a + sqrt(1 + a^2).
template <int kTerms>
inline F64x2 asinhHalf32(F64x2 a) {
    Pair u = twoSum(a, sqrt(lanes(1.0) + a * a));
    return lnPair26<kTerms>(u.u, u.c);
}
// A24: u + c = 1 + (a + a^2/(1 + sqrt(1 + a^2))).
inline F64x2 asinhHalf32A24(F64x2 a) {
    F64x2 a2 = a * a;
    F64x2 t = a + a2 / (lanes(1.0) + sqrt(lanes(1.0) + a2));
    Pair u = twoSum(lanes(1.0), t);
    return lnPair26<3>(u.u, u.c);
}

template <F64x2 (*half)(F64x2)>
inline F32x4 asinhFloat4(F32x4 x) {
    F32x4 a = andNot(x, splatBits32(kSign32));
    return withSignOf(narrow(half(widenLow(a)), half(widenHigh(a))), x);
}

template <bool kTop>
inline F64x2 asinhDouble2(F64x2 x) {
    Pair u = asinhPair(magnitude(x));
    return withSignOf(lnPair53<kTop>(u.u, u.c, zeroF64x2()), x);
}

// ---- Blocks and ElementPaths ---------------------------------------------------

template <F64x2 (*half)(F64x2)>
inline bool asinhBlock32(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    if ((magnitudeScreen(x0, kScreen32) | magnitudeScreen(x1, kScreen32)) != 0) return false;
    store(dst, asinhFloat4<half>(x0));
    store(dst + 4, asinhFloat4<half>(x1));
    return true;
}
template <F64x2 (*half)(F64x2)>
inline float asinhElement32(float x) {
    if (passesMagnitude(bitsOf(x), kScreen32)) return lane0(asinhFloat4<half>(splat(x)));
    return x + x;  // NaN made quiet; +-inf stays
}

template <bool kTop>
inline bool asinhBlock64(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    if (magnitudeScreen(x0, x1, kScreenHigh64) != 0) return false;
    store(dst, asinhDouble2<kTop>(x0));
    store(dst + 2, asinhDouble2<kTop>(x1));
    return true;
}
template <bool kTop>
inline double asinhElement64(double x) {
    if (passesMagnitude(highWord(x), kScreenHigh64)) return lane0(asinhDouble2<kTop>(splat(x)));
    if ((bitsOf(x) & kAbs64) >= kInfinity64) return x + x;  // NaN made quiet; +-inf stays
    // ln(2a) = ln a + ln 2, a finite and at least 2^511.
    F64x2 v = splat(x);
    return lane0(withSignOf(lnPair53<kTop>(magnitude(v), zeroF64x2(), lanes(1.0)), v));
}

template <F64x2 (*half)(F64x2)>
inline OrvStatus asinhMember32(const float* src, float* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return asinhBlock32<half>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = asinhElement32<half>(src[i]); });
    });
}
template <bool kTop>
inline OrvStatus asinhMember64(const double* src, double* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return asinhBlock64<kTop>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = asinhElement64<kTop>(src[i]); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsAsinh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return asinhMember32<asinhHalf32<1>>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAsinh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return asinhMember32<asinhHalf32<2>>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAsinh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return asinhMember32<asinhHalf32A24>(src, dst, len);
}
// A26 and A50 are one routine: the head-tail logarithm summed plainly.
ORV_EXPORT OrvStatus orvsAsinh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return asinhMember64<false>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAsinh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsAsinh_64f_A26")));
ORV_EXPORT OrvStatus orvsAsinh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return asinhMember64<true>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range, the neighbourhood of 0, large arguments (up to the
// 64f screen's limit and beyond), and the whole finite line.
std::vector<Box> asinhRanges(Interval finite) {
    return {symmetric(10.0), symmetric(1e-3), Interval{10.0, std::min(finite.hi, kScreenTop64)}, finite};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsAsinh_32f_A11", .maxUlp = 5.667, .worst = {-0x1.ffffa6p-11}, .ranges = asinhRanges(kFinite32),
     .peerVectors = "asinh"},
    {.member = "orvsAsinh_32f_A21", .maxUlp = 0.5036, .worst = {0x1.f557cap-11}, .ranges = asinhRanges(kFinite32),
     .peerVectors = "asinh"},
    {.member = "orvsAsinh_32f_A24", .maxUlp = 0.5001, .worst = {-0x1.bc9756p+15}, .ranges = asinhRanges(kFinite32),
     .peerVectors = "asinh"},
    {.member = "orvsAsinh_64f_A26", .maxUlp = 1.965, .worst = {0x1.fffeeb33919f8p-11}, .ranges = asinhRanges(kFinite64),
     .peerVectors = "asinh"},
    {.member = "orvsAsinh_64f_A50", .maxUlp = 1.965, .worst = {0x1.fffeeb33919f8p-11}, .ranges = asinhRanges(kFinite64),
     .sameAs = "orvsAsinh_64f_A26", .peerVectors = "asinh"},
    {.member = "orvsAsinh_64f_A53", .maxUlp = 0.5018, .worst = {0x1.cc46e38a90445p-11}, .ranges = asinhRanges(kFinite64),
     .peerVectors = "asinh"})
}  // namespace orv
#endif
