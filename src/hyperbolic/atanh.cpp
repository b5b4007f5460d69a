// Atanh, real members: dst[i] = atanh src[i] for orvsAtanh_32f_A11/A21/A24
// and orvsAtanh_64f_A26/A50/A53.
//
// Method.  atanh is odd, so the work is on a = |x| and the sign of x is
// ORed onto the result (bit for bit odd, -0 gives -0).  For a below 1,
//   atanh a = ln((1 + a)/(1 - a)) / 2 = ln(1 + t) / 2,   t = 2a/(1 - a),
// and ln(1 + t) is the logarithm of the pair u + c = 1 + t (two-sum, see
// inverse_hyperbolic.h), which keeps t to full relative accuracy next to
// a = 0, where atanh a ~ a.  Next to a = 1, 1 - a is exact (Sterbenz) and
// t grows to 2^54 without harm.  The halving is exact but for results
// below the smallest normal, and there t = 2a and the logarithm returns t
// exactly.
//   32f tiers: in double, t = 2a/(1 - a) rounded (1 - a is exact from a =
//        2^-29 on and within 2^-53 below), u + c = 1 + t exactly, the
//        logarithm on the one-double table with Taylor terms to
//        A11: r^2 (2^-21.6)   A21: r^3 (2^-32)   A24: r^4 (2^-42.3),
//        halved and rounded once to float.
//   64f: t as a pair from one reciprocal and the exact product th (1 - a)
//        (atanhPair); the logarithm on the head-tail table,
//        Taylor to r^6; A26 = A50 (one routine) adds uh + ul at once
//        (A = (uh + ul) + (e H + Th)), A53 keeps ul among the small terms
//        but where the table's tail is 0 (next to u = 1) and ul is exact.
//
// Tiers: the maximum errors, measured with MPFR by the accuracy test and
// by denser sampling of the worst neighbourhoods, and their inputs are in
// the records at the end.  They lie next to |x| just below 2^-11 (A11 2^-12),
// where the result is about the reduced argument r of the logarithm and r
// is largest (|r| ~ 2^-10 at the rows' edges): the dropped series terms
// (A11), the rounding of uh + ul at the result's scale (A26 = A50), the
// last rounding (the others).
//
// Screen (raw bits): |x| below 1.0, on the float or the double's high word
// (0x3F800000, 0x3FF00000); blocks of 8 floats or 4 doubles.  NaN and
// |x| >= 1 leave the block.  ElementPath:
//   NaN: x + x (quiet), no status.
//   x = +-1: +-inf, orvStatusSingularity.
//   |x| > 1, +-inf: the default NaN (0xFFC00000, 0xFFF8000000000000),
//        orvStatusDomain.
// Both are constant results: no flag is raised for them.  A rejected
// block of every member but orvsAtanh_64f_A53 is finished as one group:
// all its elements through ElementPath, then the domain warnings of its
// lanes, then the singularity warnings, so within such a block a
// singularity wins wherever it stands.  orvsAtanh_64f_A53 runs its
// rejected blocks element by element, its warnings in element order, under
// the x87 extended-then-nearest guard (its kernels are SSE only; the x87
// word is held at 64-bit precision for the call as the export table asks).
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "hyperbolic/inverse_hyperbolic.h"

namespace orv {
namespace {
using namespace ahyp;

// ---- Constants ----------------------------------------------------------

constexpr uint32_t kOne32 = 0x3F800000;      // the screen's limit: |x| below 1.0
constexpr uint32_t kOneHigh64 = 0x3FF00000;  // the same on the high word
constexpr uint64_t kOne64 = 0x3FF0000000000000;
constexpr uint32_t kDomainNaN32 = 0xFFC00000;
constexpr uint64_t kDomainNaN64 = 0xFFF8000000000000;

#ifndef ORVVM_RECORDS
// ---- Kernels --------------------------------------------------------------

// atanh a for a = |x| of two floats in double.
template <int kTerms>
inline F64x2 atanhHalf32(F64x2 a) {
    F64x2 t = (a + a) / (lanes(1.0) - a);
    Pair u = twoSum(lanes(1.0), t);
    return lanes(0.5) * lnPair26<kTerms>(u.u, u.c);
}
template <int kTerms>
inline F32x4 atanhFloat4(F32x4 x) {
    F32x4 a = andNot(x, splatBits32(kSign32));
    return withSignOf(narrow(atanhHalf32<kTerms>(widenLow(a)), atanhHalf32<kTerms>(widenHigh(a))), x);
}

template <bool kTop>
inline F64x2 atanhDouble2(F64x2 x) {
    Pair u = atanhPair(magnitude(x));
    return withSignOf(lanes(0.5) * lnPair53<kTop>(u.u, u.c, zeroF64x2()), x);
}

// ---- Blocks -------------------------------------------------------------------

template <int kTerms>
inline bool atanhBlock32(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    if ((magnitudeScreen(x0, kOne32) | magnitudeScreen(x1, kOne32)) != 0) return false;
    store(dst, atanhFloat4<kTerms>(x0));
    store(dst + 4, atanhFloat4<kTerms>(x1));
    return true;
}
template <bool kTop>
inline bool atanhBlock64(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    if (magnitudeScreen(x0, x1, kOneHigh64) != 0) return false;
    store(dst, atanhDouble2<kTop>(x0));
    store(dst + 2, atanhDouble2<kTop>(x1));
    return true;
}

// ---- ElementPath ----------------------------------------------------------------
// The result of one element, and in code the warning it gives (left alone
// when there is none): the caller writes it, at once or in a group pass.

template <int kTerms>
inline float atanhElement32(float x, OrvStatus& code) {
    uint32_t b = bitsOf(x), mag = b & kAbs32;
    if (mag < kOne32) return lane0(atanhFloat4<kTerms>(splat(x)));
    if (mag > kInfinity32) return x + x;
    if (mag == kOne32) {
        code = orvStatusSingularity;
        return floatFromBits((b & kSign32) | kInfinity32);
    }
    code = orvStatusDomain;
    return floatFromBits(kDomainNaN32);
}
template <bool kTop>
inline double atanhElement64(double x, OrvStatus& code) {
    uint64_t b = bitsOf(x), mag = b & kAbs64;
    if (passesMagnitude(highWord(x), kOneHigh64)) return lane0(atanhDouble2<kTop>(splat(x)));
    if (mag > kInfinity64) return x + x;
    if (mag == kOne64) {
        code = orvStatusSingularity;
        return doubleFromBits((b & kSign64) | kInfinity64);
    }
    code = orvStatusDomain;
    return doubleFromBits(kDomainNaN64);
}

// ---- Loops ------------------------------------------------------------------------

// A rejected round as one group: every element through ElementPath, then
// a pass writing the domain warning for each lane that has one, then a
// pass for the singularities.  The tail goes element by element.
template <int N, class T, class Block, class Element>
inline void groupRounds(const T* src, T* dst, int32_t len, StatusVar& status, Block&& block,
                        Element&& element) {
    blockRounds<N>(
        len, [&](int32_t i) { return block(src + i, dst + i); },
        [&](int32_t i) {
            unsigned domain = 0, pole = 0;
            for (int k = 0; k < N; ++k) {
                OrvStatus code = orvStatusOk;
                dst[i + k] = element(src[i + k], code);
                domain |= unsigned(code == orvStatusDomain) << k;
                pole |= unsigned(code == orvStatusSingularity) << k;
            }
            for (unsigned m = domain; m != 0; m &= m - 1) status.write(orvStatusDomain);
            for (unsigned m = pole; m != 0; m &= m - 1) status.write(orvStatusSingularity);
        },
        [&](int32_t i) {
            OrvStatus code = orvStatusOk;
            dst[i] = element(src[i], code);
            if (code != orvStatusOk) status.write(code);
        });
}

template <int kTerms>
inline OrvStatus atanhMember32(const float* src, float* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        groupRounds<8>(src, dst, len, status, atanhBlock32<kTerms>, atanhElement32<kTerms>);
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsAtanh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return atanhMember32<1>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAtanh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return atanhMember32<2>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAtanh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return atanhMember32<3>(src, dst, len);
}
// A26 and A50 are one routine: the head-tail logarithm summed plainly.
ORV_EXPORT OrvStatus orvsAtanh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        groupRounds<4>(src, dst, len, status, atanhBlock64<false>, atanhElement64<false>);
    });
}
ORV_EXPORT OrvStatus orvsAtanh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsAtanh_64f_A26")));
ORV_EXPORT OrvStatus orvsAtanh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardX87ExtendedThenNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return atanhBlock64<true>(src + i, dst + i); },
            [&](int32_t i) {
                OrvStatus code = orvStatusOk;
                dst[i] = atanhElement64<true>(src[i], code);
                if (code != orvStatusOk) status.write(code);
            });
    });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range, the neighbourhood of 0, the approach to +-1, and the
// whole finite line (domain errors beyond +-1).
std::vector<Box> atanhRanges(Interval finite) {
    return {symmetric(0.9), symmetric(1e-3), Interval{0.9, 1.0}, Interval{-1.0, -0.9}, finite};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsAtanh_32f_A11", .maxUlp = 5.669, .worst = {-0x1.ffc036p-12}, .ranges = atanhRanges(kFinite32),
     .warningsByKind = true, .peerVectors = "atanh"},
    {.member = "orvsAtanh_32f_A21", .maxUlp = 0.5011, .worst = {0x1.70f50ep-12}, .ranges = atanhRanges(kFinite32),
     .warningsByKind = true, .peerVectors = "atanh"},
    {.member = "orvsAtanh_32f_A24", .maxUlp = 0.5001, .worst = {-0x1.713744p-12}, .ranges = atanhRanges(kFinite32),
     .warningsByKind = true, .peerVectors = "atanh"},
    {.member = "orvsAtanh_64f_A26", .maxUlp = 1.923, .worst = {-0x1.ffd47624685bap-12}, .ranges = atanhRanges(kFinite64),
     .warningsByKind = true, .peerVectors = "atanh"},
    {.member = "orvsAtanh_64f_A50", .maxUlp = 1.923, .worst = {-0x1.ffd47624685bap-12}, .ranges = atanhRanges(kFinite64),
     .warningsByKind = true, .sameAs = "orvsAtanh_64f_A26", .peerVectors = "atanh"},
    {.member = "orvsAtanh_64f_A53", .maxUlp = 0.5012, .worst = {-0x1.e96cfa277d818p-12}, .ranges = atanhRanges(kFinite64),
     .peerVectors = "atanh"})
}  // namespace orv
#endif
