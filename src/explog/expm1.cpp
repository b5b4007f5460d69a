// Expm1: dst[i] = e^src[i] - 1, all six members.
//
// Method.  The reduction of Exp on doubles (explog/exp64_reduction.h):
// x = k ln2/2^L + r, j = k mod 2^L, n = k div 2^L, and
//   e^x - 1 = (2^n T_j - 1) + 2^n T_j (e^r - 1),   T_j = 2^(j/2^L).
// For k = 0 the first term is exactly 0 and r = x exactly, so the result is
// the polynomial p ~ e^r - 1 = r + r^2 q(r) itself, with full relative
// accuracy down to the subnormals: there is no cancellation against 1.  For
// k != 0, |x| >= ln2/2^(L+1) and the result is at least that large, while
// 2^n T_j - 1 and 2^n T_j p differ in magnitude by the factor
// |2^(k/2^L) - 1| / |e^r - 1| >= 2 at least; what cancels is known exactly
// where it matters.  q is the Taylor series of (e^r - 1 - r)/r^2, cut and
// rounded; with |r| <= ln2/2^(L+1) the first dropped term bounds the error.
//
// 32f tiers work in double (the float is widened exactly, the double result
// is rounded once to float), L = 7, the fraction table of 2^(j/128) and a
// one-term step; S = 2^n T_j comes from one OR, and the result is
// (S - 1) + S p, S rounded at 53 bits:
//   A11: q = 1/2            (dropped r^3/6: 2^-19.6 relative)
//   A21: q = 1/2 + r/6      (2^-30.6)
//   A24: q to r^2/24        (2^-41.8), so the float rounding is nearly the only one.
// 64f:
//   A26: as the 32f tiers with q = 1/2 + r/6, the result in double.
//   A50: L = 6, two-part step, head-tail table of 2^(j/64) (head Th with 44
//        fraction bits, absolute tail Tt); q to r^4/720 (2^-57.6);
//        hi = 2^n Th - 1, exact for -9 <= n <= 44 (Th has 44 fraction bits),
//        lo = 2^n (Th p + (Tt + Tt p)); result hi + lo.
//   A53: as A50, q to r^5/5040 (2^-68), with the leading part kept exact:
//        r = rh + rl and its rounding error re (Fast2Sum); ph = r cut to 8
//        significant bits, so Th ph is exact (45 + 8 bits); 2^n Th - 1 by
//        TwoSum and its sum with 2^n Th ph by Fast2Sum; everything else is
//        below 2^-7 of the result and goes into one tail.  One rounding
//        remains of consequence, the last addition.
// The sign of x is ORed into the result: e^x - 1 has the sign of x, and
// this keeps -0 (which the polynomial would turn into +0).
//
// Screens (magnitude, raw bits): 32f |x| < 88, where every result is a
// finite float and the double kernel's 2^n is normal; 64f |x| < 708.39
// (the screen of Exp), where 2^n is normal.  Outside, the ElementPath:
//   NaN: x + x (quiet), no status.  +inf: +inf; -inf: -1.
//   x at or above the overflow limit (32f 0x42B17218 = 88.72283935546875,
//     64f 0x40862E42FEFA39F0 = 709.7827128933841): +inf, orvStatusOverflow,
//     with the IEEE flags raised by raiseFpFlags32/64.
//   32f: 88 <= x below the limit: the block formula (the double kernel still
//     holds); x <= -88: -1.  64f: x below the limit with n = 1024: the value
//     scaled by 2^1023 and then by 2 (the -1 is far below its ulp); x <=
//     -708.39: -1, the correctly rounded value (e^x < 2^-1000).
// The guard holds the x87 control word at double precision for the call;
// the kernels use SSE only, so MXCSR stays as the caller set it: k is
// forced to 0 where |x 2^L/ln2| < 1/2, which round to nearest does anyway,
// so that a directed rounding mode cannot move x next to 0 off the k = 0
// path into a cancellation.
//
// Tables: kExp2Fraction64 and kExp2HeadTail64 of src/tables/exp2_tables.h
// (gen_exp2_tables.cpp), shared with Exp.
#include "explog/exp64_reduction.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/exp2_tables.h"

namespace orv {
namespace {
using namespace exp64;

// ---- Constants ----------------------------------------------------------

constexpr uint32_t kScreen32 = 0x42B00000;            // 88.0
constexpr uint32_t kOverflow32 = 0x42B17218;          // 88.72283935546875
constexpr uint32_t kScreen64 = 0x4086232B;            // high word of 708.39599609375
constexpr uint64_t kOverflow64 = 0x40862E42FEFA39F0;  // 709.7827128933841
constexpr uint64_t kPosInf64 = 0x7FF0000000000000;
constexpr uint32_t kPosInf32 = 0x7F800000;
constexpr uint64_t kOne64 = 0x3FF0000000000000;
constexpr int kTopN = 1024;
constexpr double kTwoTo1023 = doubleFromBits(0x7FE0000000000000);

// Taylor coefficients of (e^r - 1 - r)/r^2 = 1/2 + r/6 + r^2/24 + ...,
// rounded to double (their rounding costs below 2^-60 of the result).
constexpr double kC2 = 0.5;
constexpr double kC3 = doubleFromBits(0x3FC5555555555555);  // 1/6
constexpr double kC4 = doubleFromBits(0x3FA5555555555555);  // 1/24
constexpr double kC5 = doubleFromBits(0x3F81111111111111);  // 1/120
constexpr double kC6 = doubleFromBits(0x3F56C16C16C16C17);  // 1/720
constexpr double kC7 = doubleFromBits(0x3F2A01A01A01A01A);  // 1/5040

// r cut to 8 significant bits (sign, exponent, 7 fraction bits): the
// product with a 45-bit table head is exact.
constexpr uint64_t kCut8Bits = 0xFFFFE00000000000;

#ifndef ORVVM_RECORDS
// ---- Kernels --------------------------------------------------------------

// 2^n from the shifted sum: (k + bias) shifted so n + 1023 lands in the
// exponent field, the index bits falling off below.
template <int kShift>
inline F64x2 powerOfTwo(I32x4 sumBits, uint64_t bias) {
    return asF64x2(shl64<kShift>(add64(sumBits, splat64(bias))) & splat64(kInfinity64));
}

// The shifted sum x 2^L/ln2 + 1.5*2^52, with k forced to 0 where
// |x 2^L/ln2| < 1/2.  In round to nearest the addition gives k = 0 there
// anyway, so this changes no result; in the caller's directed rounding
// modes (MXCSR is not guarded here) it would give k = +-1 for x next to 0,
// and the result would cancel against 1.  So next to 0 the result stays
// the polynomial in r = x, in every mode.
inline F64x2 shiftedSum(F64x2 t) {
    F64x2 nearZero = cmpLt(andNot(t, asF64x2(splat64(kSign64))), splat(0.5));
    return select(nearZero, splat(kShifter), t + splat(kShifter));
}

// L = 7 kernels (32f tiers and A26): q by degree.
template <int kDegree>
inline F64x2 q128(F64x2 r) {
    if constexpr (kDegree == 2) return splat(kC2);
    if constexpr (kDegree == 3) return splat(kC3) * r + splat(kC2);
    if constexpr (kDegree == 4) return (splat(kC4) * r + splat(kC3)) * r + splat(kC2);
}
template <int kDegree>
inline F64x2 expm1Kernel128(F64x2 x) {
    F64x2 sum = shiftedSum(x * splat(kInvLn2x128));
    F64x2 kf = sum - splat(kShifter);
    F64x2 r = x - kf * splat(kLn2by128);
    F64x2 p = r + (r * r) * q128<kDegree>(r);
    I32x4 sumBits = bitsOf(sum);
    using tables::kExp2Fraction64;
    I32x4 fraction = gather64(kExp2Fraction64, lane0of64(sumBits) & kIndexMask128,
                              lane1of64(sumBits) & kIndexMask128);
    F64x2 s = asF64x2(bitsOf(powerOfTwo<45>(sumBits, kBias128)) | fraction);
    return (s - splat(1.0)) + s * p;
}

// L = 6: the reduction to rh + rl, the table row and 2^n.
struct Reduced64 {
    F64x2 rh, rl, th, tt, scale;
    I32x4 sumBits;
};
inline Reduced64 reduce64(F64x2 x) {
    F64x2 sum = shiftedSum(x * splat(kInvLn2x64));
    F64x2 kf = sum - splat(kShifter);
    F64x2 rh = x - kf * splat(kLn2by64Hi);
    F64x2 rl = zeroF64x2() - kf * splat(kLn2by64Lo);
    I32x4 sumBits = bitsOf(sum);
    using tables::kExp2HeadTail64;
    F64x2 row0 = load(&kExp2HeadTail64[lane0of64(sumBits) & kIndexMask64].head);
    F64x2 row1 = load(&kExp2HeadTail64[lane1of64(sumBits) & kIndexMask64].head);
    return {rh, rl, unpackLo(row0, row1), unpackHi(row0, row1), powerOfTwo<46>(sumBits, kBias64),
            sumBits};
}

inline F64x2 q50(F64x2 r) {
    return (((splat(kC6) * r + splat(kC5)) * r + splat(kC4)) * r + splat(kC3)) * r + splat(kC2);
}
inline F64x2 q53(F64x2 r) {
    return ((((splat(kC7) * r + splat(kC6)) * r + splat(kC5)) * r + splat(kC4)) * r + splat(kC3)) * r +
           splat(kC2);
}

// A50: hi + lo, the parts being found apart so the cases of the element
// path can reuse them.
struct Parts50 {
    F64x2 p;
    Reduced64 red;
};
inline Parts50 parts50(F64x2 x) {
    Reduced64 red = reduce64(x);
    F64x2 r = red.rh + red.rl;
    return {r + (r * r) * q50(r), red};
}
inline F64x2 finish50(const Parts50& a) {
    const Reduced64& d = a.red;
    F64x2 hi = d.th * d.scale - splat(1.0);
    F64x2 lo = (d.th * a.p + (d.tt + d.tt * a.p)) * d.scale;
    return hi + lo;
}
// T_j e^r, unscaled, for the top of the range.
inline double unscaled50(const Parts50& a) {
    double th = lane0(a.red.th), tt = lane0(a.red.tt), p = lane0(a.p);
    return th + (th * p + (tt + tt * p));
}

// A53: the same sum kept exact in its leading part.
struct Parts53 {
    F64x2 r, re;
    Reduced64 red;
};
inline Parts53 parts53(F64x2 x) {
    Reduced64 red = reduce64(x);
    F64x2 r = red.rh + red.rl;
    F64x2 re = (red.rh - r) + red.rl;  // Fast2Sum: |rh| >= |rl|
    return {r, re, red};
}
inline F64x2 finish53(const Parts53& a) {
    const Reduced64& d = a.red;
    F64x2 r = a.r;
    F64x2 ph = r & asF64x2(splat64(kCut8Bits));
    F64x2 pl = (r - ph) + (a.re + (r * r) * q53(r));
    F64x2 s = d.th * d.scale;
    // TwoSum(s, -1): s1 + e1 = 2^n Th - 1 exactly, whatever the order of size.
    F64x2 s1 = s - splat(1.0);
    F64x2 b = s1 - s;
    F64x2 e1 = (s - (s1 - b)) + (splat(-1.0) - b);
    // Fast2Sum(s1, 2^n Th ph): |s1| >= |2^n Th ph| since |2^(k/64) - 1| >=
    // 2 |e^r - 1| for k != 0, and s1 = 0 for k = 0.
    F64x2 a2 = (d.th * ph) * d.scale;
    F64x2 s2 = s1 + a2;
    F64x2 e2 = (s1 - s2) + a2;
    F64x2 tail = (e1 + e2) + (d.th * pl + (d.tt + d.tt * r)) * d.scale;
    return s2 + tail;
}
inline double unscaled53(const Parts53& a) {
    double th = lane0(a.red.th), tt = lane0(a.red.tt), r = lane0(a.r), re = lane0(a.re);
    double p = r + (re + (r * r) * lane0(q53(splat(r))));
    return th + (th * p + (tt + tt * p));
}

// e^x - 1 has the sign of x: OR it in (this keeps -0).
inline F64x2 withSignOf(F64x2 y, F64x2 x) { return y | (x & asF64x2(splat64(kSign64))); }
inline F32x4 withSignOf(F32x4 y, F32x4 x) { return y | (x & splatBits32(kSign32)); }

// ---- 32f ------------------------------------------------------------------

template <int kDegree>
inline F32x4 expm1Float4(F32x4 x) {
    F64x2 lo = expm1Kernel128<kDegree>(widenLow(x));
    F64x2 hi = expm1Kernel128<kDegree>(widenHigh(x));
    return withSignOf(narrow(lo, hi), x);
}

template <int kDegree>
inline bool expm1Block32(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = expm1Float4<kDegree>(x0), y1 = expm1Float4<kDegree>(x1);
    if ((magnitudeScreen(x0, kScreen32) | magnitudeScreen(x1, kScreen32)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}

template <int kDegree>
inline float expm1Element32(float x, StatusVar& status) {
    uint32_t b = bitsOf(x);
    uint32_t magnitude = b & kAbs32;
    if (magnitude > kPosInf32) return x + x;
    if ((b & kSign32) == 0) {
        if (b >= kOverflow32) {
            if (b == kPosInf32) return x;
            status.write(orvStatusOverflow);
            raiseFpFlags32(orvStatusOverflow);
            return floatFromBits(kPosInf32);
        }
    } else if (magnitude >= kScreen32) {
        return -1.0f;
    }
    return lane0(expm1Float4<kDegree>(splat(x)));
}

// ---- 64f ------------------------------------------------------------------

inline I32x4 screenDifferences(F64x2 a, F64x2 b) {
    return sub32(highWords(a, b) & splat32(kAbs32), splat32(kScreen64));
}
inline bool passes(I32x4 differences) { return signMask32(differences) == 0xF; }

struct Tier26 {
    static F64x2 value(F64x2 x) { return withSignOf(expm1Kernel128<3>(x), x); }
    // Near overflow only (x at or above the screen, which the block never
    // takes): 2^n T_j (1 + p), ln2/128 in two parts here, since the one-term
    // step's rounded C makes r = 0 at the last double below the overflow
    // limit (131072 C is x itself) and the result would overflow.
    static double top(double x) {
        F64x2 v = splat(x);
        F64x2 sum = v * splat(kInvLn2x128) + splat(kShifter);
        F64x2 kf = sum - splat(kShifter);
        F64x2 r = (v - kf * splat(kLn2by128Hi)) - kf * splat(kLn2by128Lo);
        double p = lane0(r + (r * r) * q128<3>(r));
        double t = doubleFromBits(tables::kExp2Fraction64[lane0of64(bitsOf(sum)) & kIndexMask128] | kOne64);
        int32_t n = int32_t(uint32_t(lane0of64(bitsOf(sum)))) >> 7;
        return n == kTopN ? (t + t * p) * kTwoTo1023 * 2.0 : lane0(value(v));
    }
};
struct Tier50 {
    static F64x2 value(F64x2 x) { return withSignOf(finish50(parts50(x)), x); }
    static double top(double x) {
        Parts50 a = parts50(splat(x));
        int32_t n = int32_t(uint32_t(lane0of64(a.red.sumBits))) >> 6;
        return n == kTopN ? unscaled50(a) * kTwoTo1023 * 2.0 : lane0(value(splat(x)));
    }
};
struct Tier53 {
    static F64x2 value(F64x2 x) { return withSignOf(finish53(parts53(x)), x); }
    static double top(double x) {
        Parts53 a = parts53(splat(x));
        int32_t n = int32_t(uint32_t(lane0of64(a.red.sumBits))) >> 6;
        return n == kTopN ? unscaled53(a) * kTwoTo1023 * 2.0 : lane0(value(splat(x)));
    }
};

inline bool atOrAbove(uint64_t bits, uint64_t limit) {
    uint32_t high = uint32_t(bits >> 32), limitHigh = uint32_t(limit >> 32);
    if (high != limitHigh) return high > limitHigh;
    return uint32_t(bits) >= uint32_t(limit);
}

template <class Tier>
inline double expm1Element64(double x, StatusVar& status) {
    uint64_t b = bitsOf(x);
    if (passesMagnitude(highWord(x), kScreen64)) return lane0(Tier::value(splat(x)));
    if ((b & kAbs64) > kPosInf64) return x + x;
    if (b & kSign64) return -1.0;  // e^x < 2^-1021: -1 is the rounded value, -inf included
    if (b == kPosInf64) return x;
    if (atOrAbove(b, kOverflow64)) {
        status.write(orvStatusOverflow);
        raiseFpFlags64(orvStatusOverflow);
        return doubleFromBits(kPosInf64);
    }
    return Tier::top(x);
}

template <class Tier>
inline bool expm1Block64(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    F64x2 y0 = Tier::value(x0), y1 = Tier::value(x1);
    if (!passes(screenDifferences(x0, x1))) return false;
    store(dst, y0);
    store(dst + 2, y1);
    return true;
}

template <int kDegree>
inline OrvStatus expm1Member32(const float* src, float* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return expm1Block32<kDegree>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = expm1Element32<kDegree>(src[i], status); });
    });
}
template <class Tier>
inline OrvStatus expm1Member64(const double* src, double* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return expm1Block64<Tier>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = expm1Element64<Tier>(src[i], status); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsExpm1_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return expm1Member32<2>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsExpm1_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return expm1Member32<3>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsExpm1_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return expm1Member32<4>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsExpm1_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return expm1Member64<Tier26>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsExpm1_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return expm1Member64<Tier50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsExpm1_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return expm1Member64<Tier53>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

std::vector<Box> expm1Ranges32() {
    const double screen = floatFromBits(kScreen32);
    return {symmetric(screen), Interval{-1e-3, 1e-3}, Interval{screen, floatFromBits(kOverflow32)}, kFinite32};
}
std::vector<Box> expm1Ranges64() {
    const double screen = doubleFromBits(uint64_t(kScreen64) << 32);
    return {symmetric(screen), Interval{-1e-3, 1e-3}, Interval{screen, doubleFromBits(kOverflow64)}, kFinite64};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsExpm1_32f_A11", .maxUlp = 14.78, .worst = {floatFromBits(0x3b3172d9)}, .ranges = expm1Ranges32(),
     .peerVectors = "expm1"},
    {.member = "orvsExpm1_32f_A21", .maxUlp = 0.5097, .worst = {floatFromBits(0x3b31a5a7)}, .ranges = expm1Ranges32(),
     .peerVectors = "expm1"},
    {.member = "orvsExpm1_32f_A24", .maxUlp = 0.5001, .worst = {floatFromBits(0x3b3140ca)}, .ranges = expm1Ranges32(),
     .peerVectors = "expm1"},
    {.member = "orvsExpm1_64f_A26", .maxUlp = 3.3e6, .worst = {0x1.3d16fa93cbf9cp-9}, .ranges = expm1Ranges64(),
     .peerVectors = "expm1"},
    {.member = "orvsExpm1_64f_A50", .maxUlp = 1.48, .worst = {-0x1.c16505928867ap-8}, .ranges = expm1Ranges64(),
     .peerVectors = "expm1"},
    {.member = "orvsExpm1_64f_A53", .maxUlp = 0.52, .worst = {0x1.fc9d667c7c809p-8}, .ranges = expm1Ranges64(),
     .peerVectors = "expm1"})
}  // namespace orv
#endif
