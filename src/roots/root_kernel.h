// The kernel of the rational powers x^(p/b): Cbrt (1/3), InvCbrt (-1/3),
// Pow2o3 (2/3) and Pow3o2 (3/2), on positive normal doubles, four at a
// time, and the same route in binary32 for the 32f blocks (below); the 32f
// ElementPaths widen what that cannot take (float denormals, the far ends
// of Pow3o2) exactly to doubles and round the result once back to float.
//
// Reduction.  A positive normal double with biased exponent E and
// significand m in [1, 2) is
//   x = 2^(E - 1023) m = 2^(b (q - Q0)) * 2^(r - R0) * m,
// with 1023 = b Q0 + R0 and E = b q + r, 0 <= r < b, so
//   x^(p/b) = 2^(p (q - Q0)) * (2^(r - R0) m)^(p/b).
// For b = 3, q = floor(E/3) comes from one multiplication by 0x5556/2^16;
// for b = 2 it is a shift.
// The top 7 fraction bits of m pick one of 128 pieces of [1, 2); c is its
// centre 1 + (2k + 1)/256, and
//   (2^(r - R0) m)^(p/b) = T * (1 + z)^(p/b),   T = (2^(r - R0) c)^(p/b),
//   z = (m - c) * (1/c).
// m - c is exact (m and c share their exponent and c has 8 fraction bits)
// and |m - c| <= 2^-8, so z carries one rounding of 2^-53 relative, below
// 2^-61 absolute: its effect on the result is 2^-61 |p/b| relative or less.
// Row 128 r + k of the family's table holds T rounded (hi) and 1/c; the lo
// table holds T - hi.  P(z) ~ (1 + z)^(p/b) - 1 is the tier's polynomial
// (fits in the family files), and
//   with lo:      x^(p/b) = 2^(p (q - Q0)) * (hi + (lo + hi P(z)))
//   without:      x^(p/b) = 2^(p (q - Q0)) * (hi + hi P(z))
// (all tiers but Pow2o3 64f A26 and the 32f A11 take lo.)
// The power of two is built in the exponent field and the product with it
// is exact wherever the screens let a block through.  With lo the
// last addition is the one rounding of consequence: hi P is below 2^-7 of
// the result, so its rounding, that of z and the polynomial's error add a
// few hundredths of an ulp.  An exact result (a cube root of a cube) is
// therefore returned exactly by every tier whose error stays below half an
// ulp of the result before the final rounding.
//
// Tables: src/tables/root_tables.h (gen_root_tables.cpp).
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/root_tables.h"

namespace orv::roots {

// ---- Named constants ---------------------------------------------------

constexpr int kExponentBias = 1023;
constexpr uint64_t kFraction64 = 0x000FFFFFFFFFFFFF;
constexpr uint64_t kOneBits64 = 0x3FF0000000000000;
// The top 7 fraction bits (the piece k), and the centre's extra half piece.
constexpr uint64_t kPieceBits64 = 0x000FE00000000000;
constexpr uint64_t kHalfPiece64 = 0x0000100000000000;
constexpr uint32_t kPieceMask = 127;
constexpr int kPieceShift = 13;  // of the high word
// floor(E/3) = (E * 0x5556) >> 16 for 0 <= E < 2^12: 0x5556/2^16 exceeds
// 1/3 by 2^-16/3, so the product's fraction stays below 2/3 + 2^-6 < 1.
constexpr uint32_t kThirdQ16 = 0x5556;

// The four powers: numerator p, denominator b and their tables.
template <int P, int B>
struct RationalPower {
    static constexpr int kP = P;
    static constexpr int kB = B;
    static constexpr int kQ0 = kExponentBias / B;
    static constexpr int kR0 = kExponentBias % B;
    // Exponent field of the result's power of two: p (q - Q0) + 1023.
    static constexpr int kFieldOffset = kExponentBias - P * kQ0;
};
struct CbrtPower : RationalPower<1, 3> {
    static constexpr const tables::RootRow* kRows = tables::kCbrtRows;
    static constexpr const uint64_t* kLo = tables::kCbrtLo;
    static constexpr const tables::RootRow32* kRows32 = tables::kCbrtRows32;
};
struct InvCbrtPower : RationalPower<-1, 3> {
    static constexpr const tables::RootRow* kRows = tables::kInvCbrtRows;
    static constexpr const uint64_t* kLo = tables::kInvCbrtLo;
    static constexpr const tables::RootRow32* kRows32 = tables::kInvCbrtRows32;
};
struct Pow2o3Power : RationalPower<2, 3> {
    static constexpr const tables::RootRow* kRows = tables::kPow2o3Rows;
    static constexpr const uint64_t* kLo = tables::kPow2o3Lo;
    static constexpr const tables::RootRow32* kRows32 = tables::kPow2o3Rows32;
};
struct Pow3o2Power : RationalPower<3, 2> {
    static constexpr const tables::RootRow* kRows = tables::kPow3o2Rows;
    static constexpr const uint64_t* kLo = tables::kPow3o2Lo;
    static constexpr const tables::RootRow32* kRows32 = tables::kPow3o2Rows32;
};

// A tier: its polynomial (coefficients of z^1 .. z^n) and whether the
// table's lo part joins in.
template <const auto& kCoefficients, bool kWithLo>
struct RootTier {
    static constexpr const auto& kC = kCoefficients;
    static constexpr bool kLo = kWithLo;
};

// ---- Screens -------------------------------------------------------------
// Each returns the mask of the lanes that fail.

// Patterns (binary32 bits, or the high words of doubles) from lo up to,
// not including, hi pass: the positive normal screen's one subtraction and
// one signed compare, with other ends.
template <uint32_t kLow, uint32_t kHigh>
inline int bandScreen(I32x4 words) {
    I32x4 shifted = sub32(words, splat32(kLow + 0x80000000u));
    return signMask32(cmpGt32(shifted, splat32(kHigh - kLow - 1 + 0x80000000u)));
}
template <uint32_t kLow, uint32_t kHigh>
inline bool passesBand(uint32_t word) {
    return int32_t(word - (kLow + 0x80000000u)) <= int32_t(kHigh - kLow - 1 + 0x80000000u);
}

// ---- Kernel --------------------------------------------------------------

struct Quad {
    F64x2 v0, v1;  // elements 0, 1 and 2, 3
};

// The reduced argument of four positive normal doubles: z, the rows' hi
// and the scale 2^(p (q - Q0)), and the row indices for the lo parts.
struct Reduced {
    F64x2 z0, z1, hi0, hi1, scale0, scale1;
    uint32_t j0, j1, j2, j3;
};

inline F64x2 reducedZ(F64x2 x, F64x2 inv) {
    I32x4 bits = bitsOf(x);
    F64x2 m = asF64x2((bits & splat64(kFraction64)) | splat64(kOneBits64));
    F64x2 c = asF64x2((bits & splat64(kPieceBits64)) | splat64(kOneBits64 | kHalfPiece64));
    return (m - c) * inv;  // m - c exact
}

// E = b q + r for four biased exponents (of the double format), and p q.
struct ExponentSplit {
    I32x4 q, r, pq;
};
template <class Power>
inline ExponentSplit splitExponent(I32x4 e) {
    ExponentSplit s;
    if constexpr (Power::kB == 3) {
        s.q = mulHigh16(e, splat32(kThirdQ16));
        s.r = sub32(e, add32(add32(s.q, s.q), s.q));
    } else {
        s.q = shr32<1>(e);
        s.r = e & splat32(1);
    }
    if constexpr (Power::kP == 1) s.pq = s.q;
    if constexpr (Power::kP == -1) s.pq = sub32(splat32(0), s.q);
    if constexpr (Power::kP == 2) s.pq = add32(s.q, s.q);
    if constexpr (Power::kP == 3) s.pq = add32(add32(s.q, s.q), s.q);
    return s;
}

template <class Power>
inline Reduced reduce(F64x2 a, F64x2 b) {
    I32x4 high = highWords(a, b);
    ExponentSplit s = splitExponent<Power>(shr32<20>(high));
    I32x4 j = shl32<7>(s.r) | (shr32<kPieceShift>(high) & splat32(kPieceMask));
    I32x4 field = add32(s.pq, splat32(uint32_t(Power::kFieldOffset)));
    I32x4 zero = splat32(0);
    Reduced red;
    red.j0 = laneAt<0>(j);
    red.j1 = laneAt<1>(j);
    red.j2 = laneAt<2>(j);
    red.j3 = laneAt<3>(j);
    F64x2 row0 = load(&Power::kRows[red.j0].hi), row1 = load(&Power::kRows[red.j1].hi);
    F64x2 row2 = load(&Power::kRows[red.j2].hi), row3 = load(&Power::kRows[red.j3].hi);
    red.hi0 = unpackLo(row0, row1);
    red.hi1 = unpackLo(row2, row3);
    red.z0 = reducedZ(a, unpackHi(row0, row1));
    red.z1 = reducedZ(b, unpackHi(row2, row3));
    red.scale0 = asF64x2(shl64<52>(unpackLo32(field, zero)));
    red.scale1 = asF64x2(shl64<52>(unpackHi32(field, zero)));
    return red;
}

// P(z) = z (c1 + z (c2 + ... + z cn)), in doubles or in floats.
template <class Tier, class V>
inline V powerPolynomial(V z) {
    constexpr int n = sizeof(Tier::kC) / sizeof(Tier::kC[0]);
    V s = splat(Tier::kC[n - 1]);
    for (int i = n - 2; i >= 0; --i) s = s * z + splat(Tier::kC[i]);
    return s * z;
}

// The unscaled value hi + tail, the tail being lo + hi P or hi P.
struct Parts {
    F64x2 hi0, tail0, hi1, tail1;
};
template <class Power, class Tier>
inline Parts rootParts(const Reduced& red) {
    F64x2 t0 = red.hi0 * powerPolynomial<Tier>(red.z0);
    F64x2 t1 = red.hi1 * powerPolynomial<Tier>(red.z1);
    if constexpr (Tier::kLo) {
        t0 = asF64x2(gather64(Power::kLo, red.j0, red.j1)) + t0;
        t1 = asF64x2(gather64(Power::kLo, red.j2, red.j3)) + t1;
    }
    return {red.hi0, t0, red.hi1, t1};
}

// x^(p/b) of four positive normal doubles whose result is normal.
template <class Power, class Tier>
inline Quad rootQuad(F64x2 a, F64x2 b) {
    Reduced red = reduce<Power>(a, b);
    Parts s = rootParts<Power, Tier>(red);
    return {(s.hi0 + s.tail0) * red.scale0, (s.hi1 + s.tail1) * red.scale1};
}

// The same of four positive floats, widened (any finite float but zero:
// float denormals are normal doubles), rounded once to float.  The 32f
// ElementPaths take it where the binary32 kernel below cannot go.
template <class Power, class Tier>
inline F32x4 rootFloat4Wide(F32x4 x) {
    Quad y = rootQuad<Power, Tier>(widenLow(x), widenHigh(x));
    return narrow(y.v0, y.v1);
}

// The binary32 kernel: the same reduction on the float's fields, its
// exponent rebased to 1023 so that the rows are those of the doubles, the
// float rows (hi, lo, inv) brought by one load each and transposed, and
//   x^(p/b) = 2^(p (q - Q0)) * (hi + (lo + hi P(z)))     (A21, A24)
//   x^(p/b) = 2^(p (q - Q0)) * (hi + hi P(z))            (A11)
// in binary32.  m - c is exact, z has one rounding (2^-24 relative, 2^-32
// absolute) besides that of inv, hi P is below 2^-7 of the result: the
// last addition's rounding dominates and the rest adds below 0.02 ulp.
// For positive normal floats whose result and power of two are normal
// (the screens see to it).
constexpr uint32_t kFraction32 = 0x007FFFFF;
constexpr uint32_t kOneBits32 = 0x3F800000;
constexpr uint32_t kPieceBits32 = 0x007F0000;
constexpr uint32_t kHalfPiece32 = 0x00008000;
constexpr int kPieceShift32 = 16;
constexpr int kRebase32 = 1023 - 127;

template <class Power, class Tier>
inline F32x4 rootFloat4(F32x4 x) {
    I32x4 bits = bitsOf(x);
    ExponentSplit s = splitExponent<Power>(add32(shr32<23>(bits), splat32(kRebase32)));
    I32x4 j = shl32<7>(s.r) | (shr32<kPieceShift32>(bits) & splat32(kPieceMask));
    F32x4 hi = load(&Power::kRows32[laneAt<0>(j)].hi), lo = load(&Power::kRows32[laneAt<1>(j)].hi);
    F32x4 inv = load(&Power::kRows32[laneAt<2>(j)].hi), unused = load(&Power::kRows32[laneAt<3>(j)].hi);
    transpose(hi, lo, inv, unused);  // rows to columns: hi, lo, inv, zero
    F32x4 m = asF32x4((bits & splat32(kFraction32)) | splat32(kOneBits32));
    F32x4 c = asF32x4((bits & splat32(kPieceBits32)) | splat32(kOneBits32 | kHalfPiece32));
    F32x4 z = (m - c) * inv;  // m - c exact
    F32x4 tail = hi * powerPolynomial<Tier>(z);
    if constexpr (Tier::kLo) tail = lo + tail;
    I32x4 field = add32(s.pq, splat32(uint32_t(Power::kFieldOffset - kRebase32)));
    return (hi + tail) * asF32x4(shl32<23>(field));
}

// ---- Blocks and members ----------------------------------------------------
// A family supplies: Power; kOdd (the result takes the sign of x, the
// kernel working on |x|); screen32(F32x4) and screen64(F64x2, F64x2), the
// lanes that fail; and its ElementPaths element32<Tier> and element64<Tier>.

template <class Family, class Tier>
inline F32x4 familyFloat4(F32x4 x) {
    F32x4 sign = x & splatBits32(kSign32);
    F32x4 y = rootFloat4<typename Family::Power, Tier>(x ^ sign);
    if constexpr (Family::kOdd) y = y | sign;
    return y;
}
template <class Family, class Tier>
inline Quad familyQuad(F64x2 a, F64x2 b) {
    F64x2 signMask = asF64x2(splat64(kSign64));
    F64x2 sa = a & signMask, sb = b & signMask;
    Quad y = rootQuad<typename Family::Power, Tier>(a ^ sa, b ^ sb);
    if constexpr (Family::kOdd) y = {y.v0 | sa, y.v1 | sb};
    return y;
}
// The block formula of one element, for the ElementPaths.
template <class Family, class Tier>
inline float familyFloat(float x) {
    return lane0(familyFloat4<Family, Tier>(splat(x)));
}
template <class Family, class Tier>
inline double familyDouble(double x) {
    return lane0(familyQuad<Family, Tier>(splat(x), splat(x)).v0);
}

template <class Family, class Tier>
inline bool rootBlock32(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = familyFloat4<Family, Tier>(x0), y1 = familyFloat4<Family, Tier>(x1);
    if ((Family::screen32(x0) | Family::screen32(x1)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}
template <class Family, class Tier>
inline bool rootBlock64(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    Quad y = familyQuad<Family, Tier>(x0, x1);
    if (Family::screen64(x0, x1) != 0) return false;
    store(dst, y.v0);
    store(dst + 2, y.v1);
    return true;
}

// PointersFirstFrame, guard nearest; blocks of 8 floats or 4 doubles,
// WholeBlockFallback, the tail through the ElementPath.
template <class Family, class Tier>
inline OrvStatus rootMember32(const float* src, float* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return rootBlock32<Family, Tier>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = Family::template element32<Tier>(src[i], status); });
    });
}
template <class Family, class Tier>
inline OrvStatus rootMember64(const double* src, double* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return rootBlock64<Family, Tier>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = Family::template element64<Tier>(src[i], status); });
    });
}

// Screens of the families whose block takes both signs: the normal floats
// and the normal doubles.
inline int normalScreen(F32x4 x) { return positiveNormalScreen(asF32x4(bitsOf(x) & splat32(kAbs32))); }
inline int normalScreen(F64x2 a, F64x2 b) { return positiveNormalScreen(highWords(a, b) & splat32(kAbs32)); }

// The 32f ElementPaths' route for what the binary32 kernel does not take
// (float denormals, and the far ends of Pow3o2): the double kernel, with
// the sign as the family gives it, one rounding to float.
template <class Family>
inline float familyFloatWide(float x) {
    F32x4 v = splat(x);
    F32x4 sign = v & splatBits32(kSign32);
    F32x4 y = rootFloat4Wide<typename Family::Power, typename Family::WideTier>(v ^ sign);
    if constexpr (Family::kOdd) y = y | sign;
    return lane0(y);
}

// Denormal doubles are scaled by 2^54 into the normal range first; the
// result then takes the factor 2^(-54 p/b), exact.
constexpr double kDenormalScale64 = 0x1p54;
constexpr uint64_t kSmallestNormal64 = 0x0010000000000000;
constexpr uint32_t kSmallestNormal32 = 0x00800000;

}  // namespace orv::roots
