// Exp, complex members: dst[i] = e^z = e^x (cos y + i sin y) for
// z = x + iy.
//
// Kernel complexExp, the ElementPath of every tier, in x87 extended with
// extExp, extSin, extCos and extSinCos, rounded once to double per part;
// F(v) is the 11-bit exponent field:
//   x, y finite and not 0, F(x) < 1034 (|x| < 2048): cos y e^x + i sin y e^x
//       from one extSinCos; beyond, e^x is replaced by c, the square in
//       double of the largest finite double (x > 0) or of the smallest
//       subnormal (x < 0), which overflows or underflows to the right
//       infinity or zero: cos y c + i sin y c (c y when y is subnormal).
//   y = +-0: e^x + i y, any x.
//   x NaN, y infinite or NaN: x x + i y (x x).
//   x = -inf, y infinite or NaN: +0 + i 0 (the zero with the sign of an
//       infinite y, +0 beside a NaN).
//   x = +inf, y infinite or NaN: +inf + i sin y (NaN, invalid raised).
//   x finite, y infinite or NaN: sin y + i sin y (NaN; invalid raised by an
//       infinite y).
//   otherwise (x infinite, NaN or 0 with y finite and not 0):
//       cos y e^x + i sin y e^x, or e^x y where y is subnormal and x is not 0.
// A part of the result that is a subnormal double squares the smallest
// normal double, which raises underflow.
//
// Block paths.
//   32fc A11 = A21  blocks of 16 in binary32.  A lane whose |re| bits exceed
//       0x42AEAC50 (87.3365479, where e^re leaves the normal floats) or whose
//       |im| bits exceed 0x461C4000 (10000) goes to the kernel.
//       Exponential: k = round(re 128/ln2) by the shifter 1.375 2^23,
//       r = re - k (ln2/128 as a 10-bit head and a tail), e^r - 1 ~ r + r^2/2
//       (the r^3/6 left out is 2^-28 relative at |r| = ln2/256), times
//       2^(j/128) (kExp2Fraction32) and the power of two 2^(k >> 7).
//       Circular: q = round(im 2/pi) by the shifter 1.5 2^23, v = im - q pi/2
//       with pi/2 in four pieces, sine and cosine polynomials on v, the
//       quadrant from the two low bits of q.  Result: e cos + i e sin.
//       Both products are one rounding of parts within a few ulps each;
//       the reduction by the four pieces has a rounding of q times the second
//       piece above |im| = 4096, about 2^-23 absolute, which is what a part
//       near a zero of cos or sin loses (the records' ranges).
//   32fc A24 and 64fc A26 = A50 = A53  rounds of 8 elements in x87 extended
//       (the frame's word): e^x = 2^n 2^(j/64) e^r with k = round(x 64/ln2),
//       r = x - k ln2/64 (ln2/64 as 0x3F862E42FEFA0000 and
//       0x3D1CF79ABC9E3B3A), e^r by its Taylor series to r^7/7! (2^-65
//       relative at |r| = ln2/128), 2^(j/64) as the head and tail of
//       kExp2HeadTail64; and with m = round(y 32/pi), v = y - m pi/32 (pi/32
//       in three pieces, the first two exact in their products for |m| <
//       2^20), sin v to v^9/9! and cos v to v^8/8! about a = m pi/32 from
//       kTrigPhaseTable (the sine of row m mod 64 as head and tail, and the
//       cosine as the sine of row 16 - m): sin y = sin a cos v + cos a sin v,
//       cos y = cos a cos v - sin a sin v.  The parts are e cos y and
//       e sin y in extended, each
//       rounded once (to double, or to float for 32fc A24).  A lane whose |x|
//       reaches 1024 or whose |y| reaches 65536 goes to the kernel; within,
//       the extended exponent holds every intermediate, and the one rounding
//       gives overflow to infinity and gradual underflow.  An imaginary part
//       of +-0 is kept as it stands.
// An element that passes its screen gets the block's arithmetic also in the
// tail, so its bits do not depend on its position.  Guard: the x87 word at
// 64-bit precision and round to nearest; MXCSR is the caller's (the binary32
// block runs in its modes).  Status always orvStatusOk.
#include "complex/extended.h"
#include "complex/kernel_support.h"
#include "complex/wrapper.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "frame/x87.h"
#include "tables/exp2_tables.h"
#include "tables/trig_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// Kernel: exponent field from which e^x is beyond every double.
constexpr int kHugeExponentField = 1034;
constexpr double kLargestDouble = doubleFromBits(0x7FEFFFFFFFFFFFFF);
constexpr double kSmallestSubnormal = doubleFromBits(0x0000000000000001);

// 32fc A11/A21 screen: |re| and |im| bits at most these.
constexpr uint32_t kReLimit21 = 0x42AEAC50;  // 87.3365479
constexpr uint32_t kImLimit21 = 0x461C4000;  // 10000

// Extended rounds: |x| below 1024 and |y| below 65536 (high words).
constexpr uint32_t kXLimitHigh = 0x40900000;
constexpr uint32_t kYLimitHigh = 0x40F00000;
// As binary32 bits, for the 32fc A24 screen.
constexpr uint32_t kXLimit32 = 0x44800000;
constexpr uint32_t kYLimit32 = 0x47800000;

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {
using namespace complexparts;

// Binary32 exponential: 128/ln2, the shifter, ln2/128 in two parts.
constexpr float kInvLn2x128f = floatFromBits(0x4338AA3B);
constexpr float kShifter128 = floatFromBits(0x4B300000);  // 1.375 2^23
constexpr float kLn2by128Hi = floatFromBits(0x3BB18000);
constexpr float kLn2by128Lo = floatFromBits(0xB5DE8083);
// Binary32 circular part: 2/pi, the shifter, pi/2 in four pieces, and the
// sine and cosine coefficients on |v| <= pi/4.
constexpr float kTwoOverPi = floatFromBits(0x3F22F983);
constexpr float kShifterQ = floatFromBits(0x4B400000);  // 1.5 2^23
constexpr float kPio2Piece1 = floatFromBits(0x3FC90000);
constexpr float kPio2Piece2 = floatFromBits(0x39FDA000);
constexpr float kPio2Piece3 = floatFromBits(0x33A22000);
constexpr float kPio2Piece4 = floatFromBits(0x2C34611A);
constexpr float kSin3 = floatFromBits(0xBE2AAAA3);
constexpr float kSin5 = floatFromBits(0x3C08839D);
constexpr float kSin7 = floatFromBits(0xB94CA1F0);
constexpr float kCos4 = floatFromBits(0x3D2AAAA5);
constexpr float kCos6 = floatFromBits(0xBAB6061A);
constexpr float kCos8 = floatFromBits(0x37CCF5CE);

// Extended rounds: 64/ln2 and the shifter 1.5 2^52 (in binary64), ln2/64
// in two parts, pi/32 in three, 32/pi.
constexpr double kInvLn2x64 = doubleFromBits(0x40571547652B82FE);
constexpr double kShifter52 = doubleFromBits(0x4338000000000000);
constexpr double kLn2by64Hi = doubleFromBits(0x3F862E42FEFA0000);
constexpr double kLn2by64Lo = doubleFromBits(0x3D1CF79ABC9E3B3A);
constexpr double kThirtyTwoOverPi = doubleFromBits(0x40245F306DC9C883);
constexpr double kPiBy32Piece1 = doubleFromBits(0x3FB921FB54400000);
constexpr double kPiBy32Piece2 = doubleFromBits(0x3D90B4611A600000);
constexpr double kPiBy32Piece3 = doubleFromBits(0x3B63198A2E037073);
// 1/n! in extended.
constexpr Extended kInvFactorial2 = 0.5L;
constexpr Extended kInvFactorial3 = 0.166666666666666666666666666666666667L;
constexpr Extended kInvFactorial4 = 0.0416666666666666666666666666666666667L;
constexpr Extended kInvFactorial5 = 0.00833333333333333333333333333333333333L;
constexpr Extended kInvFactorial6 = 0.00138888888888888888888888888888888889L;
constexpr Extended kInvFactorial7 = 0.000198412698412698412698412698412698413L;
constexpr Extended kInvFactorial8 = 0.0000248015873015873015873015873015873016L;
constexpr Extended kInvFactorial9 = 0.00000275573192239858906525573192239858907L;

// ---- Kernel ---------------------------------------------------------------------

struct ExtendedParts {
    Extended re, im;
};

inline Orv64fc rounded(Extended re, Extended im) {
    Orv64fc r{roundToDouble(re), roundToDouble(im)};
    signalSubnormal(r.re, r.im);
    return r;
}

inline Extended sinOf(double y) {
    Extended ey = extend(y), s;
    extSin(&s, &ey);
    return s;
}

}  // namespace

void complexExp(Orv64fc* result, const Orv64fc* z) {
    const double x = z->re, y = z->im;
    if (y == 0) {
        // e^x + i y, any x (a NaN x gives its NaN quiet).
        Extended ex = extend(x), e;
        extExp(&e, &ex);
        *result = rounded(e, extend(y));
        return;
    }
    if (!isFinite(y)) {
        if (isNan(x)) {
            double xx = x * x;
            *result = {xx, y * xx};
        } else if (isInf(x) && x < 0) {
            *result = {0.0, isInf(y) ? withSignOf(0.0, y) : 0.0};
        } else if (isInf(x)) {
            *result = {kInfinity, roundToDouble(sinOf(y))};
        } else {
            double s = roundToDouble(sinOf(y));
            *result = {s, s};
        }
        return;
    }
    // y finite and not 0.
    Extended ey = extend(y), s, c;
    extSinCos(&s, &c, &ey);
    if (isFinite(x) && x != 0 && exponentField(x) >= kHugeExponentField) {
        const double root = x > 0 ? kLargestDouble : kSmallestSubnormal;
        const double big = opaque(root) * opaque(root);
        const Extended e = extend(big);
        *result = rounded(c * e, isSubnormal(y) ? e * ey : s * e);
        return;
    }
    Extended ex = extend(x), e;
    extExp(&e, &ex);
    const bool byY = isSubnormal(y) && x != 0;
    *result = rounded(c * e, byY ? e * ey : s * e);
}

namespace {

// ---- 32fc A11 = A21: binary32 lanes ---------------------------------------------

inline int rejected21(F32x4 re, F32x4 im) {
    I32x4 a = bitsOf(re) & splat32(kAbs32), b = bitsOf(im) & splat32(kAbs32);
    return signMask32(cmpGt32(a, splat32(kReLimit21)) | cmpGt32(b, splat32(kImLimit21)));
}

// e^re for |re| <= 87.3365479: 2^n 2^(j/128) (1 + p).
inline F32x4 exp21(F32x4 re) {
    F32x4 sum = re * splat(kInvLn2x128f) + splat(kShifter128);
    F32x4 kf = sum - splat(kShifter128);
    F32x4 r = (re - kf * splat(kLn2by128Hi)) - kf * splat(kLn2by128Lo);
    F32x4 p = r + (r * r) * splat(0.5f);
    I32x4 k = sub32(bitsOf(sum), bitsOf(splat(kShifter128)));
    I32x4 j = k & splat32(127);
    using tables::kExp2Fraction32;
    I32x4 fraction = setLanes32(kExp2Fraction32[laneAt<0>(j)], kExp2Fraction32[laneAt<1>(j)],
                                kExp2Fraction32[laneAt<2>(j)], kExp2Fraction32[laneAt<3>(j)]);
    F32x4 t = asF32x4(fraction | splat32(0x3F800000));
    F32x4 scale = asF32x4(shl32<23>(add32(sar32<7>(k), splat32(127))));
    return (t + t * p) * scale;
}

// cos im and sin im for |im| <= 10000.
struct Circular {
    F32x4 cos, sin;
};
inline Circular circular21(F32x4 im) {
    F32x4 sum = im * splat(kTwoOverPi) + splat(kShifterQ);
    F32x4 qf = sum - splat(kShifterQ);
    F32x4 v = ((im - qf * splat(kPio2Piece1)) - qf * splat(kPio2Piece2)) - qf * splat(kPio2Piece3);
    v = v - qf * splat(kPio2Piece4);
    F32x4 u = v * v;
    F32x4 sine = v * (splat(1.0f) + u * (splat(kSin3) + u * (splat(kSin5) + u * splat(kSin7))));
    F32x4 cosine = splat(1.0f) + u * (splat(-0.5f) + u * (splat(kCos4) + u * (splat(kCos6) + u * splat(kCos8))));
    // Quadrant q mod 4: odd q swaps the two, q = 1, 2 negate the cosine,
    // q = 2, 3 the sine.
    I32x4 q = bitsOf(sum);
    F32x4 swap = asF32x4(cmpEq32(q & splat32(1), splat32(1)));
    F32x4 cosSign = asF32x4(shl32<30>(add32(q, splat32(1)) & splat32(2)));
    F32x4 sinSign = asF32x4(shl32<30>(q & splat32(2)));
    return {select(swap, sine, cosine) ^ cosSign, select(swap, cosine, sine) ^ sinSign};
}

struct Lanes32 {
    F32x4 re, im;
};
inline Lanes32 formula21(F32x4 re, F32x4 im) {
    F32x4 e = exp21(re);
    Circular c = circular21(im);
    return {e * c.cos, e * c.sin};
}

// Four groups of four elements.
inline bool block21(const Orv32fc* src, Orv32fc* dst) {
    F32x4 re[4], im[4];
    int reject = 0;
    for (int g = 0; g < 4; ++g) {
        F32x4 v0 = load(reals(src + 4 * g)), v1 = load(reals(src + 4 * g + 2));
        re[g] = evenLanes(v0, v1);
        im[g] = oddLanes(v0, v1);
        reject |= rejected21(re[g], im[g]);
    }
    if (reject != 0) return false;
    for (int g = 0; g < 4; ++g) {
        Lanes32 r = formula21(re[g], im[g]);
        store(reals(dst + 4 * g), unpackLo(r.re, r.im));
        store(reals(dst + 4 * g + 2), unpackHi(r.re, r.im));
    }
    return true;
}

inline void element21(const Orv32fc* z, Orv32fc* out) {
    F32x4 re = splat(z->re), im = splat(z->im);
    if (rejected21(re, im) & 1) return kernelElement<complexExp>(z, out);
    Lanes32 r = formula21(re, im);
    *out = {lane0(r.re), lane0(r.im)};
}

// ---- Extended rounds: 32fc A24 and 64fc ----------------------------------------

inline bool passesExtended(double x, double y) {
    return (highWord(x) & kAbs32) < kXLimitHigh && (highWord(y) & kAbs32) < kYLimitHigh;
}

// e^z in extended parts, for |x| < 1024 and |y| < 65536.
inline ExtendedParts formulaExtended(double x, double y) {
    // k = round(x 64/ln2), m = round(y 32/pi), by the shifter in binary64.
    const double kSum = x * kInvLn2x64 + kShifter52, kf = kSum - kShifter52;
    const double mSum = y * kThirtyTwoOverPi + kShifter52, mf = mSum - kShifter52;
    const int64_t k = int64_t(bitsOf(kSum) - bitsOf(kShifter52));
    const uint32_t m = uint32_t(bitsOf(mSum) - bitsOf(kShifter52));

    const Extended r = (extend(x) - extend(kf) * kLn2by64Hi) - extend(kf) * kLn2by64Lo;
    const Extended expR =
        1.0L + r * (1.0L + r * (kInvFactorial2 +
                                r * (kInvFactorial3 +
                                     r * (kInvFactorial4 +
                                          r * (kInvFactorial5 + r * (kInvFactorial6 + r * kInvFactorial7))))));
    const tables::Exp2HeadTail64& t = tables::kExp2HeadTail64[k & 63];
    const Extended scale = extendedFromBits(uint64_t(1) << 63, uint16_t((k >> 6) + 0x3FFF));
    const Extended e = ((extend(t.head) + extend(t.tail)) * expR) * scale;

    const Extended v = ((extend(y) - extend(mf) * kPiBy32Piece1) - extend(mf) * kPiBy32Piece2) -
                       extend(mf) * kPiBy32Piece3;
    const Extended u = v * v;
    const Extended sinV =
        v + v * u * (-kInvFactorial3 + u * (kInvFactorial5 + u * (-kInvFactorial7 + u * kInvFactorial9)));
    const Extended cosV =
        1.0L + u * (-kInvFactorial2 + u * (kInvFactorial4 + u * (-kInvFactorial6 + u * kInvFactorial8)));
    // cos a is read as sin(pi/2 - a), from the row 16 - m: the sine's head
    // and tail carry about 77 bits, where the cosine's base and tail carry
    // 55 bits absolute, too few next to a zero of cos y.
    const tables::PhaseRow& row = tables::kTrigPhaseTable[m & 63];
    const tables::PhaseRow& complement = tables::kTrigPhaseTable[(16 - m) & 63];
    const Extended sinA = extend(row.sinHi) + extend(row.sinLo);
    const Extended cosA = extend(complement.sinHi) + extend(complement.sinLo);
    const Extended sinY = sinA * cosV + cosA * sinV;
    const Extended cosY = cosA * cosV - sinA * sinV;
    // A zero y keeps its sign in the imaginary part: e +-0.
    return {e * cosY, y == 0 ? extend(y) : e * sinY};
}

inline void element64(const Orv64fc* z, Orv64fc* out) {
    if (!passesExtended(z->re, z->im)) return kernelElement<complexExp>(z, out);
    ExtendedParts p = formulaExtended(z->re, z->im);
    double re = roundToDouble(p.re), im = roundToDouble(p.im);
    *out = {re, im};
}
inline void element24(const Orv32fc* z, Orv32fc* out) {
    if (!passesExtended(z->re, z->im)) return kernelElement<complexExp>(z, out);
    ExtendedParts p = formulaExtended(z->re, z->im);
    float re = roundToFloat(p.re), im = roundToFloat(p.im);
    *out = {re, im};
}

// Rounds of 8: the screen on all eight first, then the formula per element
// (no branch on the values inside the round).
template <class C, class Element>
inline bool blockExtended(const C* src, C* dst, Element element) {
    bool pass = true;
    for (int k = 0; k < 8; ++k) pass &= passesExtended(src[k].re, src[k].im);
    if (!pass) return false;
    C results[8];
    for (int k = 0; k < 8; ++k) element(src + k, results + k);
    for (int k = 0; k < 8; ++k) dst[k] = results[k];
    return true;
}

}  // namespace
}  // namespace orv

using namespace orv;

// ---- Exports --------------------------------------------------------------------------

ORV_EXPORT OrvStatus orvsExp_32fc_A11(const Orv32fc* src, Orv32fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<16>(
            len, [&](int32_t i) { return block21(src + i, dst + i); },
            [&](int32_t i) { element21(src + i, dst + i); });
    });
}
ORV_EXPORT OrvStatus orvsExp_32fc_A21(const Orv32fc* src, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsExp_32fc_A11")));
ORV_EXPORT OrvStatus orvsExp_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return blockExtended(src + i, dst + i, element24); },
            [&](int32_t i) { element24(src + i, dst + i); });
    });
}
ORV_EXPORT OrvStatus orvsExp_64fc_A26(const Orv64fc* src, Orv64fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return blockExtended(src + i, dst + i, element64); },
            [&](int32_t i) { element64(src + i, dst + i); });
    });
}
ORV_EXPORT OrvStatus orvsExp_64fc_A50(const Orv64fc* src, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsExp_64fc_A26")));
ORV_EXPORT OrvStatus orvsExp_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsExp_64fc_A26")));

#else
#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
const Box kBlock21{symmetric(floatFromBits(kReLimit21)), symmetric(floatFromBits(kImLimit21))};
const Box kModerate{Interval{-80, 80}, Interval{-100, 100}};
const Box kWide32{kFinite32, symmetric(1e4)};
const Box kBlock64{symmetric(700), symmetric(6e4)};
const Box kWide64{kFinite64, symmetric(1e6)};
}  // namespace

ORV_RECORDS(
    // Measured by the accuracy test (8192 samples per range besides the
    // special values).  The binary32 block's largest errors are parts near a
    // zero of cos or sin at large |im|, where the reduction's rounding of
    // q times the second piece of pi/2 weighs most; the extended rounds are
    // one rounding of a value within a few 2^-64 of each part.
    {.member = "orvsExp_32fc_A11",
     .maxUlp = 3.31,
     .worst = {0x1.69c77p+5, -0x1.18143cp+13},
     .ranges = {kModerate, kBlock21, kWide32}},
    {.member = "orvsExp_32fc_A21",
     .maxUlp = 3.2,
     .worst = {0x1.d5fbp+0, -0x1.e80b48p+1},
     .ranges = {kModerate, kBlock21, kWide32},
     .sameAs = "orvsExp_32fc_A11"},
    {.member = "orvsExp_32fc_A24",
     .maxUlp = 0.5,
     .worst = {-0x1.37abb8p+4, 0x1.86e646p-17},
     .ranges = {kModerate, kBlock21, kWide32}},
    {.member = "orvsExp_64fc_A26",
     .maxUlp = 0.501,
     .worst = {-0x1.376d58ba824acp+7, 0x1.be93697b9403p+12},
     .ranges = {kModerate, kBlock64, kWide64}},
    {.member = "orvsExp_64fc_A50",
     .maxUlp = 0.501,
     .worst = {0x1.3f0edc6d1240cp+6, 0x1.57c7a341f62ap+4},
     .ranges = {kModerate, kBlock64, kWide64},
     .sameAs = "orvsExp_64fc_A26"},
    {.member = "orvsExp_64fc_A53",
     .maxUlp = 0.501,
     .worst = {-0x1.83e6e996c4188p+6, 0x1.af2fbd46acb28p+15},
     .ranges = {kModerate, kBlock64, kWide64},
     .sameAs = "orvsExp_64fc_A26"})
}  // namespace orv
#endif
