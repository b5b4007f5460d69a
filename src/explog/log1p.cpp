// Log1p: dst[i] = ln(1 + src[i]), all six members.
//
// Method.  u = 1 + x is formed in double together with its rounding error
// c (TwoSum, exact for every x), so 1 + x = u + c exactly, and
//   ln(1 + x) = ln u + ln(1 + c/u) ~ ln u + c/u,
// the dropped (c/u)^2/2 being below 2^-106 of the result.  ln u is the
// logarithm of the binary64 members of Ln on the 513-row tables of
// src/tables/log_tables_64f.h: u = 2^E m, row i from the top fraction bits,
// r = m rcp_i - 1 with |r| <= 2^-10, the exponent moved up by one from row
// 256 on (where the rows hold their logarithm less ln 2), and
//   ln u = e ln2 + T_i + ln(1 + r).
// The correction enters r: c/u = c 2^-E rcp_i / (m rcp_i), so c 2^-E rcp_i
// joins the small part of r.  Next to x = 0, u lies next to 1, e = 0 and
// the row is 0 or 512, whose term is 0: the result is ln(1 + r) with r
// holding x to full relative accuracy (for tiny and subnormal x, r = x and
// the result is x).  ln(1 + r) = r + r^2 q(r) with q the Taylor series
// -1/2 + r/3 - r^2/4 + ..., cut and rounded.
//
// 32f tiers work in double on the one-double table (Ln 26: rcp, T):
// r = (rcp m - 1) + c 2^-E rcp, result (e H + T) + p rounded once to float:
//   A11: q = -1/2                 (dropped r^3/3: 2^-21.6 relative)
//   A21: q to r/3                 (2^-32)
//   A24: q to -r^2/4              (2^-42.3)
// 64f:
//   A26: as A21, in double.
//   A50: head-tail table (Ln 53: rcp, Th, Tt); m = mh + ml with mh of 21
//        bits so mh rcp - 1 = uh is exact; ul = ml rcp, cr = c 2^-E rcp
//        kept apart (next to x = 0 uh + ul is exact and cr is far below
//        it); A = (uh + ul) + (e H + Th), B = e L + Tt; q to r^4/5
//        (2^-52.6); result ((w + B) + cr) + A with w = r^2 q.
//   A53: as A50 with q to -r^5/6 (2^-62.8); A = uh + (e H + Th) and ul
//        stays among the small terms, (((w + B) + cr) + ul) + A, but where
//        B is exactly 0 (x next to 0) ul joins A first, as in Ln.
// ln(1 + x) has the sign of x: it is ORed in, which keeps -0.
//
// Screen (raw bits): x in (-1, +inf), that is |x| below 1.0 for negative x
// and below +inf for positive x: the limit is the infinity pattern less
// 0x40000000 where the sign is set.  The ElementPath handles the rest:
//   NaN: x + x (quiet), no status.  +inf: +inf.
//   x = -1: -inf, orvStatusSingularity; x < -1 and -inf: the default NaN
//   (0xFFC00000, 0xFFF8000000000000), orvStatusDomain; both with their IEEE
//   flags raised by raiseFpFlags32/64.
// The guard holds the x87 control word at double precision for the call;
// the kernels use SSE only, so MXCSR stays as the caller set it.
#include "explog/log64_reduction.h"
#include "explog/log_common.h"

namespace orv {
namespace {
using namespace logs;
using namespace logs64;

// ---- Constants ----------------------------------------------------------

constexpr uint32_t kPosInf32 = 0x7F800000;
constexpr uint32_t kMinusOne32 = 0xBF800000;
constexpr uint32_t kDomainNaN32 = 0xFFC00000;
constexpr uint64_t kPosInf64 = 0x7FF0000000000000;
constexpr uint64_t kMinusOne64 = 0xBFF0000000000000;
constexpr uint64_t kDomainNaN64 = 0xFFF8000000000000;
// The screen's limit is lowered by this much for a negative x: from the
// infinity pattern to the pattern of 1.0, in either width.
constexpr uint32_t kNegativeDrop = 0x40000000;
constexpr uint32_t kScreenHigh64 = 0x7FF00000;

// 2^-E from the exponent field of u: (2046 - (E + 1023)) << 52.
constexpr uint64_t kTwiceOneBits = 0x7FE0000000000000;
constexpr uint64_t kExponentMask64 = 0x7FF0000000000000;

// ln 2 for the exponent term: one double with its low 11 fraction bits 0
// (A26 and the 32f tiers), or that head and a tail (A50, A53); e H is exact.
constexpr double kLn2Hi = doubleFromBits(0x3FE62E42FEFA3800);  // 0.6931471805598903
constexpr double kLn2Lo = doubleFromBits(0x3D2EF35793C76730);  // 5.497923018708371e-14

// Taylor coefficients of (ln(1 + r) - r)/r^2 = -1/2 + r/3 - r^2/4 + ...
constexpr double kA2 = -0.5;
constexpr double kA3 = doubleFromBits(0x3FD5555555555555);  //  1/3
constexpr double kA4 = -0.25;
constexpr double kA5 = doubleFromBits(0x3FC999999999999A);  //  1/5
constexpr double kA6 = doubleFromBits(0xBFC5555555555555);  // -1/6

constexpr uint64_t kMantissaHigh21 = 0x7FFFFFFF00000000;  // m cut to 20 fraction bits

#ifndef ORVVM_RECORDS
// ---- Kernels --------------------------------------------------------------

// u + c = 1 + x exactly (TwoSum), and the correction c 2^-E, E the
// exponent of u.
struct OnePlus {
    F64x2 u, cScaled;
    I32x4 bits;
};
inline OnePlus onePlus(F64x2 x) {
    F64x2 u = lanes(1.0) + x;
    F64x2 b = u - lanes(1.0);
    F64x2 c = (lanes(1.0) - (u - b)) + (x - b);
    I32x4 bits = bitsOf(u);
    F64x2 inverseScale = asF64x2(sub64(splat64(kTwiceOneBits), bits & splat64(kExponentMask64)));
    return {u, c * inverseScale, bits};
}

// q(r) by the number of Taylor terms.
template <int kTerms>
inline F64x2 series(F64x2 r) {
    if constexpr (kTerms == 1) return lanes(kA2);
    if constexpr (kTerms == 2) return lanes(kA3) * r + lanes(kA2);
    if constexpr (kTerms == 3) return (lanes(kA4) * r + lanes(kA3)) * r + lanes(kA2);
    if constexpr (kTerms == 4) return ((lanes(kA5) * r + lanes(kA4)) * r + lanes(kA3)) * r + lanes(kA2);
    if constexpr (kTerms == 5)
        return (((lanes(kA6) * r + lanes(kA5)) * r + lanes(kA4)) * r + lanes(kA3)) * r + lanes(kA2);
}

// The one-double table: 32f tiers and A26.
template <int kTerms>
inline F64x2 log1pKernel26(F64x2 x) {
    OnePlus o = onePlus(x);
    Rows26 row = gatherRows(kLnTable26, rowOf512<LogRow26>(o.bits));
    F64x2 e = exponentFrom(o.bits, kMovedExponentEdge);
    F64x2 m = asF64x2(fractionAsOne(o.bits));
    F64x2 r = (row.rcp * m - lanes(1.0)) + o.cScaled * row.rcp;
    F64x2 p = r + (r * r) * series<kTerms>(r);
    return (e * lanes(kLn2Hi) + row.t) + p;
}

// The head-tail table: A50 (kTerms 4) and A53 (kTerms 5, with ul moved
// into A where B is 0).
template <int kTerms>
inline F64x2 log1pKernel53(F64x2 x) {
    OnePlus o = onePlus(x);
    Rows53 row = gatherRows(kLnTable53, rowOf512<LogRow53>(o.bits));
    F64x2 e = exponentFrom(o.bits, kMovedExponentEdge);
    I32x4 mbits = fractionAsOne(o.bits);
    F64x2 m = asF64x2(mbits);
    F64x2 mh = asF64x2(mbits & splat64(kMantissaHigh21));
    F64x2 uh = mh * row.rcp - lanes(1.0);  // exact: 21 by 24 bits, then Sterbenz
    F64x2 ul = (m - mh) * row.rcp;
    F64x2 cr = o.cScaled * row.rcp;
    F64x2 r = (ul + cr) + uh;
    F64x2 b = e * lanes(kLn2Lo) + row.tt;
    F64x2 w = (r * r) * series<kTerms>(r);
    if constexpr (kTerms == 5) {
        // Next to x = 0 (B = 0: e = 0, row 0 or 512) ul is exact (rcp is 1
        // or 1/2) and uh + ul = m rcp - 1 exactly, so ul joins the leading
        // part A and only the correction and the series stay small.  A is
        // never -0, so adding a masked +0 changes nothing elsewhere.
        F64x2 a = uh + (e * lanes(kLn2Hi) + row.th);
        F64x2 tailZero = cmpEq(b, zeroF64x2());
        a = a + (ul & tailZero);
        ul = andNot(ul, tailZero);
        return (((w + b) + cr) + ul) + a;
    } else {
        // A50: uh + ul first, exact next to x = 0 and within 2^-64 elsewhere,
        // where the result is at least ln(1 + 1/1024).
        F64x2 a = (uh + ul) + (e * lanes(kLn2Hi) + row.th);
        return ((w + b) + cr) + a;
    }
}

// ln(1 + x) has the sign of x: OR it in (this keeps -0).
inline F64x2 withSignOf(F64x2 y, F64x2 x) { return y | (x & asF64x2(splat64(kSign64))); }
inline F32x4 withSignOf(F32x4 y, F32x4 x) { return y | (x & splatBits32(kSign32)); }

// ---- Screens ---------------------------------------------------------------

// x in (-1, +inf): |x| below the infinity pattern, less kNegativeDrop for a
// negative x.  Returns the lanes that fail.
inline int screenWords(I32x4 words, uint32_t infinity) {
    I32x4 limit = sub32(splat32(infinity), sar32<31>(words) & splat32(kNegativeDrop));
    return signMask32(cmpGt32(limit, words & splat32(kAbs32))) ^ 0xF;
}
inline bool passesScreen(uint32_t word, uint32_t infinity) {
    uint32_t limit = infinity - ((word & kSign32) ? kNegativeDrop : 0);
    return (word & kAbs32) < limit;
}

// ---- 32f ------------------------------------------------------------------

template <int kTerms>
inline F32x4 log1pFloat4(F32x4 x) {
    F64x2 lo = log1pKernel26<kTerms>(widenLow(x));
    F64x2 hi = log1pKernel26<kTerms>(widenHigh(x));
    return withSignOf(narrow(lo, hi), x);
}

template <int kTerms>
inline bool log1pBlock32(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = log1pFloat4<kTerms>(x0), y1 = log1pFloat4<kTerms>(x1);
    if ((screenWords(bitsOf(x0), kPosInf32) | screenWords(bitsOf(x1), kPosInf32)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}

template <int kTerms>
inline float log1pElement32(float x, StatusVar& status) {
    uint32_t b = bitsOf(x);
    if (passesScreen(b, kPosInf32)) return lane0(log1pFloat4<kTerms>(splat(x)));
    if ((b & kAbs32) > kPosInf32) return x + x;
    if (b == kPosInf32) return x;
    if (b == kMinusOne32) {
        status.write(orvStatusSingularity);
        raiseFpFlags32(orvStatusSingularity);
        return floatFromBits(kPosInf32 | kSign32);
    }
    status.write(orvStatusDomain);
    raiseFpFlags32(orvStatusDomain);
    return floatFromBits(kDomainNaN32);
}

// ---- 64f ------------------------------------------------------------------

template <F64x2 (*kernel)(F64x2)>
inline bool log1pBlock64(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    F64x2 y0 = withSignOf(kernel(x0), x0), y1 = withSignOf(kernel(x1), x1);
    if (screenWords(highWords(x0, x1), kScreenHigh64) != 0) return false;
    store(dst, y0);
    store(dst + 2, y1);
    return true;
}

template <F64x2 (*kernel)(F64x2)>
inline double log1pElement64(double x, StatusVar& status) {
    uint64_t b = bitsOf(x);
    if (passesScreen(highWord(x), kScreenHigh64)) return lane0(withSignOf(kernel(splat(x)), splat(x)));
    if ((b & kAbs64) > kPosInf64) return x + x;
    if (b == kPosInf64) return x;
    if (b == kMinusOne64) {
        status.write(orvStatusSingularity);
        raiseFpFlags64(orvStatusSingularity);
        return doubleFromBits(kPosInf64 | kSign64);
    }
    status.write(orvStatusDomain);
    raiseFpFlags64(orvStatusDomain);
    return doubleFromBits(kDomainNaN64);
}

template <int kTerms>
inline OrvStatus log1pMember32(const float* src, float* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return log1pBlock32<kTerms>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = log1pElement32<kTerms>(src[i], status); });
    });
}
template <F64x2 (*kernel)(F64x2)>
inline OrvStatus log1pMember64(const double* src, double* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return log1pBlock64<kernel>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = log1pElement64<kernel>(src[i], status); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsLog1p_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return log1pMember32<1>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsLog1p_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return log1pMember32<2>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsLog1p_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return log1pMember32<3>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsLog1p_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return log1pMember64<log1pKernel26<2>>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsLog1p_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return log1pMember64<log1pKernel53<4>>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsLog1p_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return log1pMember64<log1pKernel53<5>>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range, the neighbourhood of 0 where the result is small,
// the approach to -1, and the whole finite line.
std::vector<Box> log1pRanges(Interval finite) {
    return {Interval{-0.9, 1e3}, Interval{-1e-3, 1e-3}, Interval{-1.0, -0.9}, finite};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsLog1p_32f_A11", .maxUlp = 5.83, .worst = {floatFromBits(0x3a7ffe00)}, .ranges = log1pRanges(kFinite32),
     .peerVectors = "log1p"},
    {.member = "orvsLog1p_32f_A21", .maxUlp = 0.504, .worst = {floatFromBits(0x3a7ff753)}, .ranges = log1pRanges(kFinite32),
     .peerVectors = "log1p"},
    {.member = "orvsLog1p_32f_A24", .maxUlp = 0.5001, .worst = {floatFromBits(0x3a788dca)}, .ranges = log1pRanges(kFinite32),
     .peerVectors = "log1p"},
    {.member = "orvsLog1p_64f_A26", .maxUlp = 2.1e6, .worst = {0x1.ffb7c36c7286p-11}, .ranges = log1pRanges(kFinite64),
     .peerVectors = "log1p"},
    {.member = "orvsLog1p_64f_A50", .maxUlp = 3.31, .worst = {0x1.00123e275042ap-10}, .ranges = log1pRanges(kFinite64),
     .peerVectors = "log1p"},
    {.member = "orvsLog1p_64f_A53", .maxUlp = 0.56, .worst = {0x1.53ce494de8bfbp-53}, .ranges = log1pRanges(kFinite64),
     .peerVectors = "log1p"})
}  // namespace orv
#endif
