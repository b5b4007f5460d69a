// Sinh and Cosh, real members on floats: dst[i] = sinh src[i] or cosh src[i]
// for orvsSinh_32f_A11/A21/A24 and orvsCosh_32f_A11/A21/A24.
//
// Method.  One reduction on a = |x| serves e^a and e^-a: a = k ln2/64 + r,
// k = round(a 64/ln2) by the shifter 1.5*2^23, j = k mod 64, n = k div 64,
// and with S+ = 2^(n-1) and S- = 2^(-n-1) (the one half of the definitions
// lies in the scales)
//   A = 2^(j/64) S+ = e^(a-r)/2,   B = 2^(-j/64) S- = e^(r-a)/2,
//   P = A + B, D = A - B,
//   cosh a = P cosh r + D sinh r,  sinh a = D cosh r + P sinh r.
//   A11: cosh r ~ 1, sinh r ~ r: cosh = P + r D, sinh = P r + D.
//   A21: ln2/64 in two parts, cosh r ~ 1 + c r^2: cosh = (P + c r^2 P) + r D,
//        sinh = r P + (D + c r^2 D); below 0.216, where D cancels, Sinh is
//        the odd polynomial a + a^3 (1/6 + a^2/120).
//        In both, A and B come from the exponential's kExp2Fraction32 (the
//        rounded 2^(j/64) is its row 2j): each is one OR of an exponent
//        field with a table fraction.  B's field is that of -k, so that the
//        row 64 - j and the field of -(n+1) give 2^(-j/64) 2^-n exactly; it
//        is forced to 0 from a = 16 on, where e^-a is below the float's
//        reach next to e^a.
//   A24: Cosh: the short heads and float tails of kCoshPair24 (heads on a
//        2^-17 grid, so every product with a scale is exact), e^r - 1 as
//        o + g, o = r + c3 r^3, g = c2 r^2, and the sum
//        ((((V + Q) - (U + V)(o - g)) + (o + g)(P + Q)) + U) + P, small terms
//        first.  Sinh works in double with no table: a log2 e = n + f,
//        2^f by a degree-7 polynomial in two chains (even, odd), E+ = 2^(n-1),
//        E- = 2^(-n-1), sinh = (E+ - E-) even + (E+ + E-) odd, narrowed once.
//
// Tiers, maximum error measured with MPFR by the accuracy test (the records
// at the end hold the figures and the worst inputs):
//   A11: 294.7 ulp (15 correct bits), at the top of the screen, where r is
//        largest relative to the dropped r^2/2.
//   A21: Cosh 1.69 ulp; Sinh 3.39 ulp just above 0.216, where A - B cancels.
//   A24: Cosh 0.749 ulp just above 1.0; Sinh 0.503 ulp.
//   A11 gives +inf without a status at the one float below the overflow
//   limit, 0x42B2D4FC, whose exact result lies within its error of FLT_MAX.
//
// Outside the block screen each element takes ElementPath, which repeats
// the block arithmetic for ordinary values on lane 0, so a result does not
// depend on the element's position:
//   Near the top of the range, where S+ = 2^128 has no field, A11 and A21
//     lower S+ by four binades and multiply by 16 at the end; Cosh A24 drops
//     e^-a and scales by 2^(n-5) and then 16.
//   |x| above 89.4159851 (0x42B2D4FC) is an overflow: infinity (with the
//     sign of x for Sinh) and orvStatusOverflow, made as a + inf in A11 and
//     A21 and by a product in A24, so the overflow flag rises where the
//     arithmetic makes it.  +-inf gives +inf (Cosh), x (Sinh), no status;
//     a NaN comes back quiet, no status.
//   +-0 and denormals: Cosh 1.0, Sinh x.
//
// Tables: kExp2Fraction32 (src/tables/exp2_tables.h, gen_exp2_tables.cpp)
// and kCoshPair24 (src/tables/hyperbolic_tables.h,
// gen_hyperbolic_tables.cpp), generated with MPFR.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/exp2_tables.h"
#include "tables/hyperbolic_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

constexpr float kShifter = floatFromBits(0x4B400000);      // 1.5*2^23
constexpr float kInvLn2x64 = floatFromBits(0x42B8AA3B);    // 92.3324814 = 64/ln 2
constexpr float kLn2by64 = floatFromBits(0x3C317218);      // A11: ln2/64 in one term
constexpr float kLn2by64Hi = floatFromBits(0x3C316000);    // A21, A24: ln2/64 in two parts,
constexpr float kLn2by64Lo = floatFromBits(0x3690BFBF);    // kf hi exact for |k| < 2^11
constexpr uint32_t kIndexMask = 63;
constexpr uint32_t kBiasHalf = 0x1F80;       // 126*64: ((k + bias) << 17) & field = 2^(n-1)
constexpr uint32_t kBiasTop24 = 0x1E80;      // 122*64: 2^(n-5), Cosh A24 at the top
constexpr uint32_t kExponentField = 0x7F800000;
constexpr uint32_t kMinusScaleSum = 0x7E000000;  // S- = this - S+ as integers: 2^(-n-1)
constexpr float kMinusDropped = 16.0f;        // e^-a left out from here on
constexpr float kA21C2 = floatFromBits(0x3F000015);  // cosh r - 1 ~ c r^2 on |r| <= ln2/128

// Screens and limits, abs bits "not above": pass while below limit + 1.
constexpr uint32_t kScreen21 = 0x42B2D235;        // 89.4105606: S+ at most 2^127
constexpr uint32_t kScreenCosh24 = 0x42B00C6D;    // 88.0242691
constexpr uint32_t kOverflowAbove = 0x42B2D4FC;   // 89.4159851
constexpr uint32_t kTopLowering = 0x02000000;     // four binades off S+
constexpr float kTopScale = 16.0f;
constexpr uint32_t kPosInf32 = 0x7F800000;
// Sinh A21 below 0.216: a + a^3 (s3 + s5 a^2).
constexpr uint32_t kSinhOdd21 = 0x3E5D2F1B;       // 0.216
constexpr uint32_t kSinhScreenBias21 = 0xBE5D2F1B;
constexpr uint32_t kSinhScreenSpan21 = 0x8455A31A;
constexpr float kS3 = floatFromBits(0x3E2AAAAB);
constexpr float kS5 = floatFromBits(0x3C088889);

// Cosh A24: e^r - 1 ~ o + g, o = r + c3 r r^2, g = c2 r^2.
constexpr float kA24C2 = floatFromBits(0x3F00000A);
constexpr float kA24C3 = floatFromBits(0x3E2AAABB);

// Sinh A24, in double: 2^f on |f| <= 1/2, coefficients from the top.
constexpr double kLog2e = doubleFromBits(0x3FF71547652B82FE);
constexpr double kShifter64 = doubleFromBits(0x4338000000000000);
constexpr uint64_t kBiasHalf64 = 0x3FE;
constexpr double kE6 = doubleFromBits(0x3F2446A1FDA04945), kE7 = doubleFromBits(0x3EEFE1783307976F);
constexpr double kE4 = doubleFromBits(0x3F83B29DC40D78FB), kE5 = doubleFromBits(0x3F55D8A7088EC31B);
constexpr double kE2 = doubleFromBits(0x3FCEBFBE0A4BE800), kE3 = doubleFromBits(0x3FAC6B08AAF2E43B);
constexpr double kE0 = doubleFromBits(0x3FEFFFFFFFFABBCE), kE1 = doubleFromBits(0x3FE62E42FF11628F);
constexpr uint32_t kSinhOverflow24 = 0x42B2D4FD;  // at or above: overflow

#ifndef ORVVM_RECORDS
// ---- Reduction, A11 and A21 ---------------------------------------------

inline F32x4 absOf(F32x4 x) { return andNot(x, splatBits32(kSign32)); }
inline F32x4 signOf(F32x4 x) { return x & splatBits32(kSign32); }

struct Terms {
    F32x4 r, plus, minus;  // r, A = e^(a-r)/2, B = e^(r-a)/2
};
inline I32x4 halfField(I32x4 sumBits, uint32_t bias) {
    return shl32<17>(add32(sumBits, splat32(bias))) & splat32(kExponentField);
}
// top: S+ lowered by four binades (ElementPath near the top of the range).
template <bool split>
inline Terms terms(F32x4 a, bool top = false) {
    using tables::kExp2Fraction32;
    F32x4 sum = a * splat(kInvLn2x64) + splat(kShifter);
    F32x4 kf = sum - splat(kShifter);
    F32x4 r = split ? (a - kf * splat(kLn2by64Hi)) - kf * splat(kLn2by64Lo) : a - kf * splat(kLn2by64);
    I32x4 s = bitsOf(sum), ns = sub32(splat32(0), s);
    alignas(16) uint32_t j[4], nj[4];
    storeI(j, s & splat32(kIndexMask));
    storeI(nj, ns & splat32(kIndexMask));
    // Row 2j of the 2^(i/128) fractions is 2^(j/64).
    I32x4 fracPlus = setLanes32(kExp2Fraction32[2 * j[0]], kExp2Fraction32[2 * j[1]], kExp2Fraction32[2 * j[2]],
                                kExp2Fraction32[2 * j[3]]);
    I32x4 fracMinus = setLanes32(kExp2Fraction32[2 * nj[0]], kExp2Fraction32[2 * nj[1]],
                                 kExp2Fraction32[2 * nj[2]], kExp2Fraction32[2 * nj[3]]);
    I32x4 fieldPlus = halfField(s, kBiasHalf);
    if (top) fieldPlus = sub32(fieldPlus, splat32(kTopLowering));
    F32x4 plus = asF32x4(fieldPlus | fracPlus);
    F32x4 minus = asF32x4(halfField(ns, kBiasHalf) | fracMinus);
    minus = andNot(minus, cmpLe(splat(kMinusDropped), a));
    return {r, plus, minus};
}

// ---- Kernels, A11 and A21 -------------------------------------------------

inline F32x4 cosh11(const Terms& t) {
    F32x4 p = t.plus + t.minus, d = t.plus - t.minus;
    return p + t.r * d;
}
inline F32x4 cosh21(const Terms& t) {
    F32x4 p = t.plus + t.minus, d = t.plus - t.minus, r2 = t.r * t.r;
    return (p + splat(kA21C2) * r2 * p) + t.r * d;
}
inline F32x4 sinh11(const Terms& t) {
    F32x4 p = t.plus + t.minus, d = t.plus - t.minus;
    return p * t.r + d;
}
inline F32x4 sinh21(const Terms& t) {
    F32x4 p = t.plus + t.minus, d = t.plus - t.minus, r2 = t.r * t.r;
    return t.r * p + (d + splat(kA21C2) * r2 * d);
}
inline F32x4 sinhOdd21(F32x4 a) {
    F32x4 a2 = a * a;
    return a + a * a2 * (splat(kS3) + splat(kS5) * a2);
}

// ---- Kernels, A24 -----------------------------------------------------------

struct Cosh24 {
    F32x4 value;  // the ordinary formula
    F32x4 top;    // e^-a dropped, scaled by 2^(n-5) (times 16 to finish)
};
inline Cosh24 cosh24(F32x4 a) {
    using tables::kCoshPair24;
    F32x4 sum = a * splat(kInvLn2x64) + splat(kShifter);
    F32x4 kf = sum - splat(kShifter);
    F32x4 r = (a - kf * splat(kLn2by64Hi)) - kf * splat(kLn2by64Lo);
    I32x4 s = bitsOf(sum);
    alignas(16) uint32_t j[4];
    storeI(j, s & splat32(kIndexMask));
    F32x4 row0 = loadAligned(&kCoshPair24[j[0]].tm), row1 = loadAligned(&kCoshPair24[j[1]].tm);
    F32x4 row2 = loadAligned(&kCoshPair24[j[2]].tm), row3 = loadAligned(&kCoshPair24[j[3]].tm);
    // Transpose: tm, tp, hm, hp of the four lanes.
    F32x4 t01 = unpackLo(row0, row1), t23 = unpackLo(row2, row3);  // tm0 tm1 tp0 tp1 ...
    F32x4 h01 = unpackLo(highHalves(row0, row0), highHalves(row1, row1));
    F32x4 h23 = unpackLo(highHalves(row2, row2), highHalves(row3, row3));
    F32x4 tm = lowHalves(t01, t23), tp = highHalves(t01, t23);
    F32x4 hm = lowHalves(h01, h23), hp = highHalves(h01, h23);
    I32x4 fieldPlus = halfField(s, kBiasHalf);
    F32x4 sPlus = asF32x4(fieldPlus);
    F32x4 sMinus = andNot(asF32x4(sub32(splat32(kMinusScaleSum), fieldPlus)), cmpLe(splat(kMinusDropped), a));
    F32x4 p = hp * sPlus, q = tp * sPlus, u = hm * sMinus, v = tm * sMinus;
    F32x4 r2 = r * r;
    F32x4 o = r + splat(kA24C3) * r * r2, g = splat(kA24C2) * r2;
    F32x4 value = ((((v + q) - (u + v) * (o - g)) + (o + g) * (p + q)) + u) + p;
    F32x4 pe = r + r2 * (splat(kA24C2) + splat(kA24C3) * r);
    F32x4 top = ((pe * (hp + tp) + tp) + hp) * asF32x4(halfField(s, kBiasTop24));
    return {value, top};
}

// Sinh A24 on two elements in double: sinh a = (E+ - E-) even + (E+ + E-) odd.
inline F64x2 sinh24(F64x2 a) {
    F64x2 t = a * splat(kLog2e);
    F64x2 sum = t + splat(kShifter64);
    F64x2 f = t - (sum - splat(kShifter64));
    I32x4 s = bitsOf(sum), ns = sub64(splat64(0), s);
    F64x2 ePlus = asF64x2(shl64<52>(add64(s, splat64(kBiasHalf64))));
    F64x2 eMinus = asF64x2(shl64<52>(add64(ns, splat64(kBiasHalf64))));
    F64x2 f2 = f * f;
    F64x2 even = splat(kE0) + f2 * (splat(kE2) + f2 * (splat(kE4) + f2 * splat(kE6)));
    F64x2 odd = f * (splat(kE1) + f2 * (splat(kE3) + f2 * (splat(kE5) + f2 * splat(kE7))));
    return (ePlus - eMinus) * even + (ePlus + eMinus) * odd;
}
inline F32x4 sinh24(F32x4 x) {
    F32x4 a = absOf(x);
    return narrow(sinh24(widenLow(a)), sinh24(widenHigh(a))) | signOf(x);
}

// ---- Screens ------------------------------------------------------------

// Sinh A21: 0.216 <= a <= 89.4105606 in one signed compare of the shifted
// bits (the sign is dropped first).
inline int sinhScreen21(F32x4 x) {
    I32x4 d = sub32(bitsOf(x) & splat32(kAbs32), splat32(kSinhScreenBias21));
    return signMask32(cmpGt32(d, splat32(kSinhScreenSpan21)));
}
inline bool passesSinh21(uint32_t bits) {
    return int32_t((bits & kAbs32) - kSinhScreenBias21) <= int32_t(kSinhScreenSpan21);
}

// ---- ElementPath ----------------------------------------------------------

inline float withSignOf(float v, float x) { return floatFromBits(bitsOf(v) | (bitsOf(x) & kSign32)); }

// A11 and A21 above the screen: near the top S+ lowered and times 16;
// beyond the overflow limit a + inf, which keeps infinities and NaNs (made
// quiet) and makes an overflow of a finite a.
template <bool isSinh, bool split>
inline float elementAbove21(float x, StatusVar& status) {
    uint32_t abits = bitsOf(x) & kAbs32;
    float a = floatFromBits(abits);
    if (abits > kOverflowAbove) {
        float v = a + opaque(floatFromBits(kPosInf32));
        if (abits < kPosInf32) status.write(orvStatusOverflow);
        return isSinh ? withSignOf(v, x) : v;
    }
    Terms t = terms<split>(splat(a), true);
    float v = lane0(isSinh ? (split ? sinh21(t) : sinh11(t)) : (split ? cosh21(t) : cosh11(t))) * kTopScale;
    return isSinh ? withSignOf(v, x) : v;
}

template <bool split>
inline float cosh21Element(float x, StatusVar& status) {
    if (passesMagnitude(bitsOf(x), kScreen21 + 1)) {
        Terms t = terms<split>(absOf(splat(x)));
        return lane0(split ? cosh21(t) : cosh11(t));
    }
    return elementAbove21<false, split>(x, status);
}
inline float sinh11Element(float x, StatusVar& status) {
    if (passesMagnitude(bitsOf(x), kScreen21 + 1)) return lane0(sinh11(terms<false>(absOf(splat(x))))) ;
    return elementAbove21<true, false>(x, status);
}
inline float sinh11ElementSigned(float x, StatusVar& status) { return withSignOf(sinh11Element(x, status), x); }
inline float sinh21Element(float x, StatusVar& status) {
    if (passesSinh21(bitsOf(x))) return withSignOf(lane0(sinh21(terms<true>(absOf(splat(x))))), x);
    if ((bitsOf(x) & kAbs32) < kSinhOdd21) return withSignOf(lane0(sinhOdd21(absOf(splat(x)))), x);
    return elementAbove21<true, true>(x, status);
}

inline float cosh24Element(float x, StatusVar& status) {
    uint32_t abits = bitsOf(x) & kAbs32;
    float a = floatFromBits(abits);
    if (abits <= kScreenCosh24) return lane0(cosh24(splat(a)).value);
    if (abits > kPosInf32) return a + a;
    if (abits == kPosInf32) return a;
    if (abits > kOverflowAbove) {
        status.write(orvStatusOverflow);
        float big = opaque(floatFromBits(0x7F000000));
        return big * big;
    }
    return lane0(cosh24(splat(a)).top) * kTopScale;
}
inline float sinh24Element(float x, StatusVar& status) {
    uint32_t abits = bitsOf(x) & kAbs32;
    if (abits < kSinhOverflow24) return lane0(sinh24(splat(x)));
    if (abits > kPosInf32) return x + x;
    if (abits == kPosInf32) return x;
    status.write(orvStatusOverflow);
    float big = opaque(floatFromBits(0x7F000000));
    return withSignOf(big * big, x);
}

// ---- Blocks -----------------------------------------------------------------

template <bool split>
inline bool coshBlock21(const float* src, float* dst) {
    F32x4 x = load(src);
    Terms t = terms<split>(absOf(x));
    F32x4 y = split ? cosh21(t) : cosh11(t);
    if (magnitudeScreen(x, kScreen21 + 1) != 0) return false;
    store(dst, y);
    return true;
}
inline bool sinhBlock11(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = sinh11(terms<false>(absOf(x0))) | signOf(x0);
    F32x4 y1 = sinh11(terms<false>(absOf(x1))) | signOf(x1);
    if ((magnitudeScreen(x0, kScreen21 + 1) | magnitudeScreen(x1, kScreen21 + 1)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}
inline bool sinhBlock21(const float* src, float* dst) {
    F32x4 x = load(src);
    F32x4 y = sinh21(terms<true>(absOf(x))) | signOf(x);
    if (sinhScreen21(x) != 0) return false;
    store(dst, y);
    return true;
}
inline bool coshBlock24(const float* src, float* dst) {
    F32x4 x = load(src);
    F32x4 y = cosh24(absOf(x)).value;
    if (magnitudeScreen(x, kScreenCosh24 + 1) != 0) return false;
    store(dst, y);
    return true;
}
inline bool sinhBlock24(const float* src, float* dst) {
    F32x4 x = load(src);
    F32x4 y = sinh24(x);
    if (magnitudeScreen(x, kSinhOverflow24) != 0) return false;
    store(dst, y);
    return true;
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsCosh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return coshBlock21<false>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = cosh21Element<false>(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsCosh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return coshBlock21<true>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = cosh21Element<true>(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsCosh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return coshBlock24(src + i, dst + i); },
            [&](int32_t i) { dst[i] = cosh24Element(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsSinh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return sinhBlock11(src + i, dst + i); },
            [&](int32_t i) { dst[i] = sinh11ElementSigned(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsSinh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return sinhBlock21(src + i, dst + i); },
            [&](int32_t i) { dst[i] = sinh21Element(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsSinh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return sinhBlock24(src + i, dst + i); },
            [&](int32_t i) { dst[i] = sinh24Element(src[i], status); });
    });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

std::vector<Box> hyperRanges(uint32_t screen) {
    const double limit = floatFromBits(screen), overflow = floatFromBits(kOverflowAbove);
    return {symmetric(limit), Interval{limit, overflow}, Interval{-overflow, -limit}, symmetric(1.0), kFinite32};
}

// A11: e^r taken as 1 + r falls short by r^2/2, and at the last float below
// the overflow limit the rounding of the products carries the value (about
// FLT_MAX (1 - 1.2e-6), within the tier's error of FLT_MAX) to infinity,
// with no status.
std::vector<Exclusion> lastBelowOverflow11() {
    const double limit = floatFromBits(kOverflowAbove), next = floatFromBits(kOverflowAbove + 1);
    return {excludeMagnitudes({Interval{limit, next}},
                              "the last float below the overflow limit: 1 + r for e^r and the rounding of "
                              "the scaled products carry the value to infinity, with no status")};
}

}  // namespace

ORV_RECORDS(
    {.member = "orvsCosh_32f_A11", .maxUlp = 294.7, .worst = {floatFromBits(0x42B2D235)}, .ranges = hyperRanges(kScreen21),
     .exclusions = lastBelowOverflow11()},
    {.member = "orvsCosh_32f_A21", .maxUlp = 1.69, .worst = {floatFromBits(0xBD95275E)}, .ranges = hyperRanges(kScreen21)},
    {.member = "orvsCosh_32f_A24", .maxUlp = 0.749, .worst = {floatFromBits(0x39DD769F)}, .ranges = hyperRanges(kScreenCosh24)},
    {.member = "orvsSinh_32f_A11", .maxUlp = 294.7, .worst = {floatFromBits(0x42B2D235)}, .ranges = hyperRanges(kScreen21),
     .exclusions = lastBelowOverflow11()},
    {.member = "orvsSinh_32f_A21", .maxUlp = 3.39, .worst = {floatFromBits(0xBE7989AD)}, .ranges = hyperRanges(kScreen21)},
    {.member = "orvsSinh_32f_A24", .maxUlp = 0.503, .worst = {floatFromBits(0xB9E83C99)}, .ranges = hyperRanges(kSinhOverflow24)})
}  // namespace orv
#endif
