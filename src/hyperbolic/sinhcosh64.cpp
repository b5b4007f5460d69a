// Sinh and Cosh, real members on doubles: dst[i] = sinh src[i] or cosh
// src[i] for orvsSinh_64f_A26/A50/A53 and orvsCosh_64f_A26/A50/A53.
//
// Method.  One exponential reduction on a = |x| serves both e^a and e^-a:
// a = k ln2/2^L + r with k = round(a 2^L/ln2) by the shifter, j = k mod 2^L,
// n = k div 2^L, exactly as the exponential does it (explog/exp64_reduction.h).
// Then -k = -(n+1) 2^L + (2^L - j), so the row 2^L - j of the same table
// (reached from j by negation and a wrap) with the exponent field of -k
// gives e^-a.  Both exponent fields carry the bias 1022 2^L, so that
//   A = T(j) S+ = e^(a-r)/2,   B = T(2^L - j) S- = e^(r-a)/2,
// the one half of the definitions lying in the scales.  With e^r = 1 + r +
// g + o (g the even terms from r^2 on, o the odd ones from r^3 on),
//   cosh a = A e^r + B e^-r = (A + B)(1 + g) + (A - B)(r + o),
//   sinh a = A e^r - B e^-r = (A - B)(1 + g) + (A + B)(r + o).
//   A26 = A50 (one routine): L = 7, S = exponent field OR the table fraction
//        (kExp2Fraction64, one OR for each of A and B), ln2/128 in two
//        parts.  Cosh takes the exponential's A50 polynomial for g and o;
//        Sinh the Taylor terms to r^5.  Sinh below 0.125, where A - B
//        cancels, leaves the block: sinh(xh + z) = sinh z cosh xh + cosh z
//        sinh xh, with xh = a cut to a multiple of 1/32 and short Taylor
//        series in z < 1/32 (kSinhSmall).
//   A53: L = 6, the head-tail table kExp2HeadTail64 (Th with 44 fraction
//        bits, so every product with a scale is exact), the exponential's
//        A53 polynomial; the small terms are summed first and the heads
//        last.  Sinh below 0.035 is the odd polynomial x + x^3 (s3 + x^2 (s5
//        + x^2 s7)), chosen lane by lane inside the block.
//
// Tiers, maximum error measured with MPFR by the accuracy test (the records
// at the end hold the figures and the worst inputs):
//   A26 = A50: Cosh 3.50 ulp, at the top of the range where e^-a is dropped
//        and the A50 polynomial's 2^-51.55 meets the rounded table entry;
//        Sinh 3.22 ulp just above 0.125 (near 0.245), where A - B loses two
//        bits to cancellation and the table entries' roundings show.
//   A53: Cosh 0.749 ulp just above 1.0, where B + (small terms) is rounded
//        at half the result's ulp before A is added; Sinh 0.632 ulp.
//
// Outside the block screen each element takes ElementPath, which repeats
// the block arithmetic for ordinary values, so a result does not depend on
// the element's position.  Its tests are on the raw bits:
//   NaN: Cosh A26/A50 a quiet NaN through the arithmetic; Sinh A26/A50 x bit
//     for bit; A53 all 64 bits set.  +-inf: Cosh +inf, Sinh x; no status.
//   +-0 and denormals: Cosh 1.0, Sinh x.
//   |x| at or above 1025 ln2 = 710.475860073944: infinity (with the sign of
//     x for Sinh) and orvStatusOverflow, a stored constant (no flag).
//   Top of the range, where the field of S- no longer exists and that of
//     S+ would overflow: e^-a is dropped.  A26/A50 lower the bias of S+ by
//     three (1019 128) and multiply by 8 at the end; A53 from k = 65409 on
//     drops B and B' and from n = 1025 on scales the unscaled value by
//     2^1023 and then by 2.
//
// Tables: kExp2Fraction64 and kExp2HeadTail64 (src/tables/exp2_tables.h,
// gen_exp2_tables.cpp), and kSinhSmall (src/tables/hyperbolic_tables.h,
// gen_hyperbolic_tables.cpp), all generated with MPFR.
#include "explog/exp64_reduction.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/exp2_tables.h"
#include "tables/hyperbolic_tables.h"

namespace orv {
namespace {

using namespace exp64;

// ---- Constants ----------------------------------------------------------

constexpr uint64_t kPosInf64 = 0x7FF0000000000000;
constexpr uint64_t kAllOnes64 = 0xFFFFFFFFFFFFFFFF;
constexpr uint64_t kExponentMask64 = 0x7FF0000000000000;

// |x| at or above 1025 ln2 overflows in both functions.
constexpr uint64_t kOverflowLimit = 0x408633CE8FB9F87E;  // 710.475860073944

// A26, A50.  Screen: below it k <= 130814, so the field of S- stays >= 0
// and that of S+ is at most 1021.
constexpr uint32_t kScreen50 = 0x40862331;           // 708.3837890625
constexpr uint32_t kSinhScreenLow50 = 0x3FC00000;    // 0.125
constexpr uint32_t kSinhScreenSpan50 = kScreen50 - kSinhScreenLow50;  // 0xC62331
constexpr uint64_t kBias1022x128 = 0x1FF00;  // S+ = 2^(n-1), S- = 2^(-n-2) (2^(-n-1) for j = 0)
constexpr uint64_t kBias1019x128 = 0x1FD80;  // top of the range: S+ = 2^(n-4), times 8 at the end
constexpr double kTopScale50 = 8.0;
// Sinh: the Taylor terms of e^r to r^5 (r <= ln2/256: the first one left
// out, r^6/720, is below 2^-61 relative).
constexpr double kHalf = 0.5;
constexpr double kSixth = doubleFromBits(0x3FC5555555555555);
constexpr double kTwentyFourth = doubleFromBits(0x3FA5555555555555);
constexpr double kOneTwentieth = doubleFromBits(0x3F81111111111111);
// Sinh below 0.125: xh = a cut to a multiple of 1/32 by adding 2048 and
// keeping the 16 fraction bits whose weight is at least 2^-5.
constexpr double kCutShifter = 2048.0;
constexpr uint64_t kCutMask = 0x7FFFFFF000000000;
constexpr double kSmallRowScale = 32.0;
constexpr double kInv5040 = 1.0 / 5040.0;
constexpr double kInv720 = 1.0 / 720.0;

// A53.  Screen: below it k <= 65408, so the field of S- stays >= 0.
constexpr uint32_t kScreen53 = 0x40862336;                 // 708.4013671875
constexpr uint64_t kDropMinus53 = 0x40862336F49C3C50;      // 708.4018337446123: k = 65409
constexpr uint64_t kUnscaledTop53 = 0x408633C378987900;    // 710.4704448615958: n = 1025
constexpr uint64_t kBias1022x64 = 0xFF80;
constexpr double kTwoTo1023 = doubleFromBits(0x7FE0000000000000);
constexpr double kTwo = 2.0;
// Sinh 53 below 0.035: odd polynomial; the first term left out, x^9/9!, is
// below 2^-59 relative.
constexpr uint32_t kSinhOdd53 = 0x3FA1EB85;  // 0.035
constexpr double kS3 = doubleFromBits(0x3FC5555555555583);
constexpr double kS5 = doubleFromBits(0x3F81111110E18CA7);
constexpr double kS7 = doubleFromBits(0x3F2A01DB8C52595A);

#ifndef ORVVM_RECORDS
// ---- Reduction ------------------------------------------------------------

inline I32x4 negate64(I32x4 a) { return sub64(splat64(0), a); }
inline I32x4 field(I32x4 sumBits, uint64_t bias, int shiftIs45) {
    I32x4 biased = add64(sumBits, splat64(bias));
    return (shiftIs45 ? shl64<45>(biased) : shl64<46>(biased)) & splat64(kExponentMask64);
}

// A26, A50: r, A = e^(a-r)/2 and B = e^(r-a)/2.
struct Terms128 {
    F64x2 r, plus, minus;
};
inline Terms128 terms128(F64x2 a, uint64_t biasPlus = kBias1022x128) {
    using tables::kExp2Fraction64;
    F64x2 sum = a * splat(kInvLn2x128) + splat(kShifter);
    F64x2 kf = sum - splat(kShifter);
    F64x2 r = (a - kf * splat(kLn2by128Hi)) - kf * splat(kLn2by128Lo);
    I32x4 s = bitsOf(sum), ns = negate64(s);
    I32x4 fracPlus = gather64(kExp2Fraction64, lane0of64(s) & kIndexMask128, lane1of64(s) & kIndexMask128);
    I32x4 fracMinus = gather64(kExp2Fraction64, lane0of64(ns) & kIndexMask128, lane1of64(ns) & kIndexMask128);
    F64x2 plus = asF64x2(field(s, biasPlus, 1) | fracPlus);
    F64x2 minus = asF64x2(field(ns, kBias1022x128, 1) | fracMinus);
    return {r, plus, minus};
}

// ---- Kernels, A26 and A50 -------------------------------------------------

// cosh = (g P + P) + (o + r D) with the exponential's A50 polynomial.
inline F64x2 cosh50(const Terms128& t) {
    F64x2 p = t.plus + t.minus, d = t.plus - t.minus, r = t.r, r2 = r * r;
    F64x2 g = (splat(kA50C4) * r2 + splat(kA50C2)) * r2;
    F64x2 o = (splat(kA50C3) * r2) * (r * d);
    return (g * p + p) + (o + r * d);
}
// sinh = (g D + (o r + r) P) + D with the Taylor terms.
inline F64x2 sinh50(const Terms128& t) {
    F64x2 p = t.plus + t.minus, d = t.plus - t.minus, r = t.r, r2 = r * r;
    F64x2 g = (splat(kTwentyFourth) * r2 + splat(kHalf)) * r2;
    F64x2 o = (splat(kOneTwentieth) * r2 + splat(kSixth)) * r2;
    return (g * d + (o * r + r) * p) + d;
}

inline F64x2 absOf(F64x2 x) { return andNot(x, splatBits64(kSign64)); }
inline F64x2 signOf(F64x2 x) { return x & splatBits64(kSign64); }

// ---- Kernels, A53 -----------------------------------------------------------

struct Terms64 {
    F64x2 r, a, at, b, bt;  // A, A', B, B'
    I32x4 sumBits;
};
inline Terms64 terms64(F64x2 a) {
    using tables::kExp2HeadTail64;
    F64x2 sum = a * splat(kInvLn2x64) + splat(kShifter);
    F64x2 kf = sum - splat(kShifter);
    F64x2 r = (a - kf * splat(kLn2by64Hi)) - kf * splat(kLn2by64Lo);
    I32x4 s = bitsOf(sum), ns = negate64(s);
    F64x2 rowP0 = load(&kExp2HeadTail64[lane0of64(s) & kIndexMask64].head);
    F64x2 rowP1 = load(&kExp2HeadTail64[lane1of64(s) & kIndexMask64].head);
    F64x2 rowM0 = load(&kExp2HeadTail64[lane0of64(ns) & kIndexMask64].head);
    F64x2 rowM1 = load(&kExp2HeadTail64[lane1of64(ns) & kIndexMask64].head);
    F64x2 sPlus = asF64x2(field(s, kBias1022x64, 0)), sMinus = asF64x2(field(ns, kBias1022x64, 0));
    // Th has 45 significant bits and the scales are powers of two: all four
    // products are exact.
    return {r,
            unpackLo(rowP0, rowP1) * sPlus,
            unpackHi(rowP0, rowP1) * sPlus,
            unpackLo(rowM0, rowM1) * sMinus,
            unpackHi(rowM0, rowM1) * sMinus,
            s};
}
struct Poly53 {
    F64x2 g, o;  // the even terms from r^2, the odd ones from r^3
};
inline Poly53 poly53(F64x2 r) {
    F64x2 r2 = r * r;
    return {(splat(kA53C4) * r2 + splat(kA53C2)) * r2, ((splat(kA53C5) * r2 + splat(kA53C3)) * r2) * r};
}
// cosh = (((((g P + o D) + r D) + B') + A') + B) + A: every term is
// positive, the heads come last.
inline F64x2 cosh53(F64x2 a) {
    Terms64 t = terms64(a);
    Poly53 q = poly53(t.r);
    F64x2 ea = t.a + t.at, eb = t.b + t.bt;
    F64x2 p = ea + eb, d = ea - eb;
    return ((((q.g * p + q.o * d) + t.r * d) + t.bt) + t.at) + t.b + t.a;
}
// sinh = ((((g D + o P) + r P) + (A' - B')) + lo) + hi, where hi + lo = A - B
// exactly (A >= B, so the two-sum needs no compare): hi is exact while
// A <= 2B (k <= 32), where A - B cancels, and above it its rounding error
// lo joins the small terms, so the last addition is the one large rounding.
inline F64x2 sinhTable53(F64x2 a) {
    Terms64 t = terms64(a);
    Poly53 q = poly53(t.r);
    F64x2 ea = t.a + t.at, eb = t.b + t.bt;
    F64x2 p = ea + eb, d = ea - eb;
    F64x2 hi = t.a - t.b, lo = (t.a - hi) - t.b;
    return ((((q.g * d + q.o * p) + t.r * p) + (t.at - t.bt)) + lo) + hi;
}
inline F64x2 sinhOdd53(F64x2 a) {
    F64x2 a2 = a * a;
    return a + (a2 * a) * (splat(kS3) + a2 * (splat(kS5) + a2 * splat(kS7)));
}
inline F64x2 sinh53(F64x2 x) {
    F64x2 a = absOf(x);
    F64x2 small = cmpLt(a, splat(doubleFromBits(uint64_t(kSinhOdd53) << 32)));
    return select(small, sinhOdd53(a), sinhTable53(a)) | signOf(x);
}

// ---- Screens --------------------------------------------------------------

// Cosh: high word of |x| below the limit.  Sinh A26/A50: at or above 0.125
// too, by one unsigned compare of (high word - 0.125's) with the span.
inline int sinhScreen50(F64x2 x) {
    I32x4 d = sub32(highWords(x) & splat32(kAbs32), splat32(kSinhScreenLow50));
    I32x4 pass = cmpGt32(splat32(kSinhScreenSpan50 ^ kSign32), d ^ splat32(kSign32));
    return (signMask32(pass) ^ 0xF) & 0x3;
}
inline bool passesSinh50(uint32_t high) { return (high & kAbs32) - kSinhScreenLow50 < kSinhScreenSpan50; }

// ---- ElementPath ----------------------------------------------------------

// |x| at or above limit, on the bits: high words first, low words on a tie.
inline bool atOrAbove(uint64_t absBits, uint64_t limit) { return absBits >= limit; }

inline double withSignOf(double v, double x) { return doubleFromBits(bitsOf(v) | (bitsOf(x) & kSign64)); }

// Values above the screens: what both functions share.  Returns true with
// the result in out when the element is NaN, infinite or overflows.
template <bool isSinh, bool isA53>
inline bool specialElement(double x, StatusVar& status, double& out) {
    uint64_t a = bitsOf(x) & kAbs64;
    if (a > kPosInf64) {
        out = isA53 ? doubleFromBits(kAllOnes64) : (isSinh ? x : x + x);
        return true;
    }
    if (a == kPosInf64) {
        out = isSinh ? x : doubleFromBits(kPosInf64);
        return true;
    }
    if (atOrAbove(a, kOverflowLimit)) {
        status.write(orvStatusOverflow);
        out = isSinh ? withSignOf(doubleFromBits(kPosInf64), x) : doubleFromBits(kPosInf64);
        return true;
    }
    return false;
}

// A26, A50 above the screen: e^-a dropped, S+ three binades lower.
template <bool isSinh>
inline double top50(double a) {
    Terms128 t = terms128(splat(a), kBias1019x128);
    t.minus = zeroF64x2();
    return lane0(isSinh ? sinh50(t) : cosh50(t)) * kTopScale50;
}

// Sinh A26/A50 below 0.125: sinh z cosh xh + cosh z sinh xh.
inline double sinhSmall50(double a) {
    double xh = doubleFromBits(bitsOf(a + kCutShifter) & kCutMask) - kCutShifter;
    double z = a - xh, z2 = z * z;
    const auto& row = tables::kSinhSmall[int(xh * kSmallRowScale)];
    double sz = z + z * z2 * (kSixth + z2 * (kOneTwentieth + z2 * kInv5040));
    double cz = 1.0 + z2 * (kHalf + z2 * (kTwentyFourth + z2 * kInv720));
    return sz * row.coshHead + cz * row.sinhHead;
}

inline double cosh50Element(double x, StatusVar& status) {
    double a = doubleFromBits(bitsOf(x) & kAbs64), out;
    if (passesMagnitude(highWord(x), kScreen50)) return lane0(cosh50(terms128(splat(a))));
    if (specialElement<false, false>(x, status, out)) return out;
    return top50<false>(a);
}
inline double sinh50Element(double x, StatusVar& status) {
    double a = doubleFromBits(bitsOf(x) & kAbs64), out;
    if (passesSinh50(highWord(x))) return withSignOf(lane0(sinh50(terms128(splat(a)))), x);
    if (highWord(a) < kSinhScreenLow50) return withSignOf(sinhSmall50(a), x);
    if (specialElement<true, false>(x, status, out)) return out;
    return withSignOf(top50<true>(a), x);
}

// A53 above the screen: u = ((p (A + A') + A') + A) with B and B' dropped,
// and from n = 1025 on the table row alone, scaled in two steps.
inline double top53(double a) {
    Terms64 t = terms64(splat(a));
    double r = lane0(t.r);
    double p = r + (((kA53C5 * r + kA53C4) * r + kA53C3) * r + kA53C2) * (r * r);
    if (!atOrAbove(bitsOf(a), kUnscaledTop53)) {
        double ah = lane0(t.a), at = lane0(t.at);
        return (p * (ah + at) + at) + ah;
    }
    const auto& row = tables::kExp2HeadTail64[lane0of64(t.sumBits) & kIndexMask64];
    return ((p * (row.head + row.tail) + row.tail) + row.head) * kTwoTo1023 * kTwo;
}
template <bool isSinh>
inline double element53(double x, StatusVar& status) {
    double a = doubleFromBits(bitsOf(x) & kAbs64), out;
    if (passesMagnitude(highWord(x), kScreen53) || !atOrAbove(bitsOf(a), kDropMinus53))
        return isSinh ? lane0(sinh53(splat(x))) : lane0(cosh53(splat(a)));
    if (specialElement<isSinh, true>(x, status, out)) return out;
    return isSinh ? withSignOf(top53(a), x) : top53(a);
}

// ---- Blocks -----------------------------------------------------------------

inline bool cosh50Block(const double* src, double* dst) {
    F64x2 x = load(src);
    F64x2 y = cosh50(terms128(absOf(x)));
    if (magnitudeScreen(x, kScreen50) != 0) return false;
    store(dst, y);
    return true;
}
inline bool sinh50Block(const double* src, double* dst) {
    F64x2 x = load(src);
    F64x2 y = sinh50(terms128(absOf(x))) | signOf(x);
    if (sinhScreen50(x) != 0) return false;
    store(dst, y);
    return true;
}
template <bool isSinh>
inline bool block53(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    F64x2 y0 = isSinh ? sinh53(x0) : cosh53(absOf(x0));
    F64x2 y1 = isSinh ? sinh53(x1) : cosh53(absOf(x1));
    if (magnitudeScreen(x0, x1, kScreen53) != 0) return false;
    store(dst, y0);
    store(dst + 2, y1);
    return true;
}

}  // namespace
}  // namespace orv

using namespace orv;

// A26 and A50 are one routine with two names.
ORV_EXPORT OrvStatus orvsCosh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<2>(
            len, [&](int32_t i) { return cosh50Block(src + i, dst + i); },
            [&](int32_t i) { dst[i] = cosh50Element(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsCosh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return orvsCosh_64f_A26(src, dst, len);
}
ORV_EXPORT OrvStatus orvsCosh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return block53<false>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = element53<false>(src[i], status); });
    });
}

ORV_EXPORT OrvStatus orvsSinh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<2>(
            len, [&](int32_t i) { return sinh50Block(src + i, dst + i); },
            [&](int32_t i) { dst[i] = sinh50Element(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsSinh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return orvsSinh_64f_A26(src, dst, len);
}
ORV_EXPORT OrvStatus orvsSinh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return block53<true>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = element53<true>(src[i], status); });
    });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The screened range, the top of the range up to the overflow limit, and
// the finite line.
std::vector<Box> hyperRanges(uint32_t screen) {
    const double limit = doubleFromBits(uint64_t(screen) << 32);
    const double overflow = doubleFromBits(kOverflowLimit);
    return {symmetric(limit), Interval{limit, overflow}, Interval{-overflow, -limit}, symmetric(1.0), kFinite64};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsCosh_64f_A26", .maxUlp = 3.50, .worst = {doubleFromBits(0xC0862E1C2CE64AB6)}, .ranges = hyperRanges(kScreen50)},
    {.member = "orvsCosh_64f_A50", .maxUlp = 3.50, .worst = {doubleFromBits(0xC0862E1C2CE64AB6)}, .ranges = hyperRanges(kScreen50),
     .sameAs = "orvsCosh_64f_A26"},
    {.member = "orvsCosh_64f_A53", .maxUlp = 0.749, .worst = {doubleFromBits(0x3F458B7C4BF7665B)}, .ranges = hyperRanges(kScreen53)},
    {.member = "orvsSinh_64f_A26", .maxUlp = 3.22, .worst = {doubleFromBits(0x3FCF56E7FF08A7C8)}, .ranges = hyperRanges(kScreen50)},
    {.member = "orvsSinh_64f_A50", .maxUlp = 3.22, .worst = {doubleFromBits(0x3FCF56E7FF08A7C8)}, .ranges = hyperRanges(kScreen50),
     .sameAs = "orvsSinh_64f_A26"},
    {.member = "orvsSinh_64f_A53", .maxUlp = 0.632, .worst = {doubleFromBits(0x3FADC51EF2B0D280)}, .ranges = hyperRanges(kScreen53)})
}  // namespace orv
#endif
