// Asin and Acos, real members: dst[i] = arcsin(src[i]) or arccos(src[i]) for
// orvs<Asin|Acos>_32f_A11/A21/A24 and orvs<Asin|Acos>_64f_A26/A50/A53.
//
// Method.  With a = |x| and the sign s of x, both functions come from one
// series asin(y) = y + y P(y^2), P(z) = c1 z + c2 z^2 + ..., on |y| <= 1/2:
//   a below 1/2 (the branch M off): asin x = s (a + a P(a^2)) and
//     acos x = pi/2 - x - x P(x^2);
//   a from 1/2 up (M on): with w = (1 - a)/2 and y = sqrt(w),
//     asin a = pi/2 - 2 asin(y), acos a = 2 asin(y), acos(-a) = pi - 2 asin(y).
// So z <= 1/4 in every branch.  The choice between the branches is by masks
// only: the factor -2 of Asin is the pattern of 1.0 plus 0x80800000 (or
// 0x8010000000000000) under the mask, and (1 - a)/2 is made by taking one
// from the exponent field.  The tiers differ in the square root and the
// length of P:
//   32f A11: rsqrtps and one Newton step, 2 coefficients.
//   32f A21: the true square root, 5 coefficients.
//   32f A24: rsqrtps, two Newton steps, sqrt(w) = yh + yl with yh of 12
//        significant bits (its square is exact) and yl from the exact
//        residual w - yh^2 by a Newton correction of second order (a head
//        of 8 bits, the pattern's high half, would leave 2^-23 of sqrt(w)
//        after that correction, which the cancellation against pi/2 near
//        a = 0.5 turns into ulps of the result); 5
//        coefficients; pi/4 or pi/2 as a float pair, and the sum
//        F ((b.hi + yh) + (b.lo + yl + P y)) made with one large rounding.
//   64f A26 = A50: the true square root, 12 coefficients (Asin) or 11.
//   64f A53: an rsqrtps seed on w as a float, refined by the binomial series
//        of (1 + e)^(-1/2) to a full double; sqrt(w) as yh (the high word)
//        and yl as in A24; 13 coefficients; the sum as in A24 in double.
//
// Tiers, maximum error measured against MPFR: see each member's record.
//
// Special values: there is no element routine.  Blocks that hold an
// element with a >= 1 or a NaN run a fix-up pass over the block's results:
//   x = +-1: Asin +-pi/2, Acos 0 or pi, exactly rounded;
//   NaN: the element itself, bits unchanged (a signalling NaN stays so);
//   |x| > 1 and +-inf: the default NaN, orvStatusDomain, and the invalid
//     flag from a signalling NaN times 1.0.
// The other elements keep their block values, so a result never depends on
// its neighbours; the tail runs the same code on one element at a time.
// +-0 and denormals: Asin gives x itself, Acos pi/2.
#include <cstdint>

#include "frame/bits.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"

namespace orv {
namespace asin_acos_constants {

// Branch M: a above 0.5 (Asin A11 on the pattern, the 64f Asin tiers) or
// from 0.5 up (Asin A21, A24 and every Acos tier).
constexpr uint32_t kHalfBits32 = 0x3F000000;
constexpr uint32_t kExponentOne32 = 0x00800000;  // taken from a pattern: halves it
constexpr uint32_t kOneBits32 = 0x3F800000;
constexpr uint32_t kTwiceNegative32 = 0x80800000;  // 1.0 + this = -2.0, on the patterns
constexpr uint64_t kOneBits64 = 0x3FF0000000000000;
constexpr uint64_t kTwiceNegative64 = 0x8010000000000000;
// w is kept at least this large, so that the lanes the fix-up pass
// replaces (|x| >= 1) take no square root of a negative number.
constexpr uint32_t kWFloor32 = 0x21800000;          // 2^-60
constexpr uint64_t kWFloor64 = 0x3C30000000000000;  // 2^-60

constexpr uint32_t kPiOver2_32 = 0x3FC90FDB;
constexpr uint32_t kPi32 = 0x40490FDB;
constexpr uint64_t kPiOver2_64 = 0x3FF921FB54442D18;
constexpr uint64_t kPi64 = 0x400921FB54442D18;
constexpr uint32_t kRsqrtScale11 = 0xBF3504F3;  // -0.70710677: A11 Acos, 2 sqrt(v/2) = sqrt 2 sqrt v

// 32f A11, both functions.
constexpr uint32_t kP11[2] = {0x3E2900F6, 0x3DC15217};  // 0.165042728, 0.0943948552
// 32f A21 and A24 of both functions: e1 .. e5.
constexpr uint32_t kP24[5] = {0x3E2AAAE6, 0x3D998079, 0x3D3A4C23, 0x3CC589DB, 0x3D2D33ED};
// 32f Acos A21 takes e1 .. e5 as well: a four-term set (0x3E2AA7C4,
// 0x3D9A712E, 0x3D4D100E, 0x3D23CA80) leaves a relative error of 1.1e-4 at
// z = 1/4, some 1500 ulp, where A21 allows 4.
// 64f Asin A26, A50: a1 .. a12.
constexpr uint64_t kPAsin50[12] = {0x3FC5555555555376, 0x3FB33333333719EB, 0x3FA6DB6DB406320E,
                                   0x3F9F1C72CEB416D5, 0x3F96E89E3100FCF1, 0x3F91C6CEB88CA473,
                                   0x3F8C6E8C410E2125, 0x3F88F4FAF7A28C4A, 0x3F7A6F70A989886B,
                                   0x3F94354494F57A70, 0xBF90F34C39628E27, 0x3FA074CE2CBCC7DF};
// 64f Acos A26, A50: 11 coefficients.
constexpr uint64_t kPAcos50[11] = {0x3FC5555555556E3C, 0x3FB33333330711A8, 0x3FA6DB6DD20120F3,
                                   0x3F9F1C697859C3E2, 0x3F96E9769038BE6D, 0x3F91BA7CBC3F3A91,
                                   0x3F8D59EC6E98BFE2, 0x3F831D56BA773964, 0x3F92D892CC96EFAF,
                                   0xBF8884789EFB5918, 0x3FA03E5B5E516DFB};
// 64f A53, both functions: 13 coefficients.
constexpr uint64_t kP53[13] = {0x3FC5555555555579, 0x3FB333333332DC42, 0x3FA6DB6DB724FE19,
                               0x3F9F1C71A7CEDD43, 0x3F96E8BE19F6199D, 0x3F91C49BD43E63F7,
                               0x3F8CA247EB6664E5, 0x3F8755BDEFC292C9, 0x3F8622CB270118B0,
                               0x3F6D768B20A865AC, 0x3F96825C16316F03, 0xBF95E9019191BE85,
                               0x3FA0D60D1986AEC6};

// A24: pi/4 and pi/2 as float pairs (the sums are doubled in branch M), and
// the head of sqrt(w) with 12 significant bits.
constexpr uint32_t kPiOver4Hi24 = 0x3F490FDA;
constexpr uint32_t kPiOver4Lo24 = 0x33222168;
constexpr uint32_t kPiOver2Hi24 = 0x3FC90FDA;
constexpr uint32_t kPiOver2Lo24 = 0x33A22168;
constexpr uint32_t kHead24 = 0xFFFFF000;
// A53: (1 + e)^(-1/2) - 1 ~ e (b1 + b2 e + ... + b5 e^4), the pi/4 and
// pi/2 pairs, and the head of sqrt(w) (its high word).
constexpr double kBinomial[5] = {-0.5, 0.375, -0.3125, 0.2734375, -0.24609375};
constexpr uint64_t kPiOver4Lo53 = 0x3C81A62633145C07;
constexpr uint64_t kPiOver2Lo53 = 0x3C91A62633145C07;
constexpr uint64_t kPiOver4_64 = 0x3FE921FB54442D18;
constexpr uint64_t kHead53 = 0xFFFFFFFF00000000;

// The fix-up pass: the default NaNs, and signalling NaNs whose product
// with 1.0 raises the invalid flag.
constexpr uint32_t kDefaultNaN32 = 0xFFC00000;
constexpr uint64_t kDefaultNaN64 = 0xFFF8000000000000;
constexpr uint32_t kSignallingNaN32 = 0x7FBFFFFF;
constexpr uint64_t kSignallingNaN64 = 0x7FF7FFFFFFFFFFFF;

}  // namespace asin_acos_constants
}  // namespace orv

#ifndef ORVVM_RECORDS

namespace orv {
namespace {

using namespace asin_acos_constants;

inline F32x4 k32(uint32_t bits) { return splatBits32(bits); }
inline F64x2 k64(uint64_t bits) { return splatBits64(bits); }

// ---- Shared steps -------------------------------------------------------------

// P(z) in two chains on z2 = z^2, the odd-numbered coefficients on z and
// the even-numbered on z2: P = (..(c_odd z2 + ..) z2 + c1) z + (..(c_even z2 + ..) z2 + c2) z2.
template <class V, class K, int n>
inline V polynomial(V z, const K (&c)[n], V (*constant)(K)) {
    V z2 = z * z;
    int top = n - 1;
    int topOdd = (top % 2 == 0) ? top : top - 1;  // index of the last c1, c3, ... (0-based even)
    int topEven = (top % 2 == 1) ? top : top - 1;
    V odd = constant(c[topOdd]);
    for (int k = topOdd - 2; k >= 0; k -= 2) odd = odd * z2 + constant(c[k]);
    V even = constant(c[topEven]);
    for (int k = topEven - 2; k >= 1; k -= 2) even = even * z2 + constant(c[k]);
    return odd * z + even * z2;
}
inline F32x4 c32(uint32_t b) { return k32(b); }
inline F64x2 c64(uint64_t b) { return k64(b); }

// w = (1 - a)/2 by taking one from the exponent field of 1 - a (exact, as
// 1 - a is a normal number for every a in branch M), kept above the floor.
inline F32x4 halfComplement(F32x4 a) {
    F32x4 w = asF32x4(sub32(bitsOf(splat(1.0f) - a), splat32(kExponentOne32)));
    return max(w, k32(kWFloor32));
}
inline F64x2 halfComplement(F64x2 a) { return max((splat(1.0) - a) * splat(0.5), k64(kWFloor64)); }

// The factor of Asin: -2.0 under the mask, 1.0 elsewhere, by integer addition.
inline F32x4 asinFactor(F32x4 m) { return asF32x4(add32(splat32(kOneBits32), bitsOf(m) & splat32(kTwiceNegative32))); }
inline F64x2 asinFactor(F64x2 m) { return asF64x2(add64(splat64(kOneBits64), bitsOf(m) & splat64(kTwiceNegative64))); }

// sqrt(w) = yh + yl: yh is short enough that yh^2 is exact, so w - yh^2 is
// the exact residual R; with r ~ 1/sqrt(w), e = R r/2 is the first Newton
// correction and e + e^2 r/2 the second, which leaves an error of the
// order of (yh's truncation)^2 times e.
inline F32x4 dsplatLike(double c, F32x4) { return splat(float(c)); }
inline F64x2 dsplatLike(double c, F64x2) { return splat(c); }
template <class V>
struct Root {
    V hi, lo;
};
template <class V>
inline Root<V> rootParts(V w, V r, V headMask) {
    V yh = (w * r) & headMask;
    V halfR = r * dsplatLike(0.5, w);
    V e = (w - yh * yh) * halfR;
    return {yh, e + halfR * e * e};
}
// The top tiers' sum, F ((b.hi + yh) + ((b.lo + yl) + P y)), with the error
// of the first addition carried into the small terms (|b.hi| >= |yh| or
// b.hi = 0), so that only the last addition rounds at the result's scale.
template <class V>
inline V sumTop(V bHi, V bLo, V yh, V yl, V p, V factor) {
    V s = bHi + yh;
    V err = yh - (s - bHi);
    return factor * (s + (((bLo + yl) + err) + p * (yh + yl)));
}

// ---- Kernels, 32f -------------------------------------------------------------

struct Split32 {
    F32x4 s, a;
};
inline Split32 split32(F32x4 x) {
    F32x4 s = x & k32(kSign32);
    return {s, x ^ s};
}

inline F32x4 asin11(F32x4 x) {
    Split32 v = split32(x);
    F32x4 m = asF32x4(cmpGt32(bitsOf(v.a), splat32(kHalfBits32)));
    F32x4 w = halfComplement(v.a);
    F32x4 r = rsqrt(w);
    F32x4 root = (w * r * r - splat(3.0f)) * (w * r * splat(-0.5f));
    F32x4 z = select(m, w, v.a * v.a), y = select(m, root, v.a);
    F32x4 p = (k32(kP11[1]) * z + k32(kP11[0])) * z;
    F32x4 t = p * y + y;
    return ((m & k32(kPiOver2_32)) + asinFactor(m) * t) | v.s;
}

inline F32x4 asin21(F32x4 x) {
    Split32 v = split32(x);
    F32x4 m = cmpLe(splat(0.5f), v.a);
    F32x4 w = halfComplement(v.a);
    F32x4 z = select(m, w, v.a * v.a), y = select(m, sqrt(w), v.a);
    F32x4 t = polynomial(z, kP24, c32) * y + y;
    return ((m & k32(kPiOver2_32)) + asinFactor(m) * t) | v.s;
}

// Acos: where M, y = 2 sqrt(w) with the sign of x and base pi (x < 0) or 0;
// elsewhere y = -x and base pi/2.
inline F32x4 acosBase(F32x4 x, F32x4 m) {
    return select(m, asF32x4(sar32<31>(bitsOf(x))) & k32(kPi32), k32(kPiOver2_32));
}

inline F32x4 acos11(F32x4 x) {
    Split32 v = split32(x);
    F32x4 m = cmpLe(splat(0.5f), v.a);
    F32x4 c = max(splat(1.0f) - v.a, k32(kWFloor32));
    F32x4 r = rsqrt(c);
    F32x4 root = ((c * r * r - splat(3.0f)) * (c * r * k32(kRsqrtScale11))) | v.s;
    F32x4 z = select(m, halfComplement(v.a), x * x), y = select(m, root, x ^ k32(kSign32));
    F32x4 p = (k32(kP11[1]) * z + k32(kP11[0])) * z;
    return acosBase(x, m) + (p * y + y);
}

inline F32x4 acos21(F32x4 x) {
    Split32 v = split32(x);
    F32x4 m = cmpLe(splat(0.5f), v.a);
    F32x4 w = halfComplement(v.a);
    F32x4 root = (sqrt(w) * splat(2.0f)) | v.s;
    F32x4 z = select(m, w, x * x), y = select(m, root, x ^ k32(kSign32));
    return acosBase(x, m) + (polynomial(z, kP24, c32) * y + y);
}

// A24's square root: rsqrtps and two Newton steps for r, then the parts.
inline Root<F32x4> root24(F32x4 w) {
    F32x4 r = rsqrt(w);
    r = r * (splat(1.5f) - splat(0.5f) * w * r * r);
    r = r * (splat(1.5f) - splat(0.5f) * w * r * r);
    return rootParts(w, r, k32(kHead24));
}

// asin a = 2 (pi/4 - y - P y) where M, a + P a elsewhere.
inline F32x4 asin24(F32x4 x) {
    Split32 v = split32(x);
    F32x4 m = cmpLe(splat(0.5f), v.a);
    F32x4 w = halfComplement(v.a);
    Root<F32x4> y = root24(w);
    F32x4 z = select(m, w, v.a * v.a);
    F32x4 yh = select(m, y.hi ^ k32(kSign32), v.a), yl = m & (y.lo ^ k32(kSign32));
    F32x4 factor = select(m, splat(2.0f), splat(1.0f));
    F32x4 r = sumTop(m & k32(kPiOver4Hi24), m & k32(kPiOver4Lo24), yh, yl, polynomial(z, kP24, c32), factor);
    return r | v.s;
}

// acos x = 2 (pi/2 [x < 0] + y + P y) with y = sqrt(w) signed like x where
// M, pi/2 - x - P x elsewhere.
inline F32x4 acos24(F32x4 x) {
    Split32 v = split32(x);
    F32x4 m = cmpLe(splat(0.5f), v.a);
    F32x4 w = halfComplement(v.a);
    Root<F32x4> y = root24(w);
    F32x4 z = select(m, w, x * x);
    F32x4 yh = select(m, y.hi ^ v.s, x ^ k32(kSign32)), yl = m & (y.lo ^ v.s);
    F32x4 withBase = select(m, asF32x4(sar32<31>(bitsOf(x))), asF32x4(splat32(0xFFFFFFFF)));
    F32x4 factor = select(m, splat(2.0f), splat(1.0f));
    return sumTop(withBase & k32(kPiOver2Hi24), withBase & k32(kPiOver2Lo24), yh, yl, polynomial(z, kP24, c32), factor);
}

// ---- Kernels, 64f -------------------------------------------------------------

struct Split64 {
    F64x2 s, a;
};
inline Split64 split64(F64x2 x) {
    F64x2 s = x & k64(kSign64);
    return {s, x ^ s};
}

inline F64x2 asin50(F64x2 x) {
    Split64 v = split64(x);
    F64x2 m = cmpLt(splat(0.5), v.a);
    F64x2 w = halfComplement(v.a);
    F64x2 z = select(m, w, v.a * v.a), y = select(m, sqrt(w), v.a);
    F64x2 t = polynomial(z, kPAsin50, c64) * y + y;
    return ((m & k64(kPiOver2_64)) + asinFactor(m) * t) | v.s;
}

inline F64x2 acos50(F64x2 x) {
    Split64 v = split64(x);
    F64x2 m = cmpLe(splat(0.5), v.a);
    F64x2 w = halfComplement(v.a);
    F64x2 root = (sqrt(w) * splat(2.0)) | v.s;
    F64x2 z = select(m, w, x * x), y = select(m, root, x ^ k64(kSign64));
    F64x2 base = select(m, cmpLt(x, zeroF64x2()) & k64(kPi64), k64(kPiOver2_64));
    return base + (polynomial(z, kPAcos50, c64) * y + y);
}

// A53's square root: an rsqrtps seed r0 on w as a float (w lies in
// [2^-60, 0.5] in every lane), e = w r0^2 - 1, and
// r = r0 (1 + e)^(-1/2) by the binomial series to e^5, about 2^-72 short.
inline Root<F64x2> root53(F64x2 w) {
    F64x2 r0 = widenLow(rsqrt(narrow(w)));
    F64x2 e = w * r0 * r0 - splat(1.0);
    F64x2 series = splat(kBinomial[4]);
    for (int k = 3; k >= 0; --k) series = series * e + splat(kBinomial[k]);
    F64x2 r = r0 + r0 * (e * series);
    return rootParts(w, r, k64(kHead53));
}

inline F64x2 asin53(F64x2 x) {
    Split64 v = split64(x);
    F64x2 m = cmpLt(splat(0.5), v.a);
    F64x2 w = halfComplement(v.a);
    Root<F64x2> y = root53(w);
    F64x2 z = select(m, w, v.a * v.a);
    F64x2 yh = select(m, y.hi ^ k64(kSign64), v.a), yl = m & (y.lo ^ k64(kSign64));
    F64x2 factor = select(m, splat(2.0), splat(1.0));
    F64x2 r = sumTop(m & k64(kPiOver4_64), m & k64(kPiOver4Lo53), yh, yl, polynomial(z, kP53, c64), factor);
    return r | v.s;
}

inline F64x2 acos53(F64x2 x) {
    Split64 v = split64(x);
    F64x2 m = cmpLe(splat(0.5), v.a);
    F64x2 w = halfComplement(v.a);
    Root<F64x2> y = root53(w);
    F64x2 z = select(m, w, x * x);
    F64x2 yh = select(m, y.hi ^ v.s, x ^ k64(kSign64)), yl = m & (y.lo ^ v.s);
    F64x2 withBase = select(m, cmpLt(x, zeroF64x2()), asF64x2(splat64(~0ull)));
    F64x2 factor = select(m, splat(2.0), splat(1.0));
    return sumTop(withBase & k64(kPiOver2_64), withBase & k64(kPiOver2Lo53), yh, yl, polynomial(z, kP53, c64),
                  factor);
}

// ---- Fix-up pass --------------------------------------------------------------

// Exact values at +-1.
struct AsinEdges {
    static F32x4 atOne(F32x4 x) { return k32(kPiOver2_32) | (x & k32(kSign32)); }
    static F64x2 atOne(F64x2 x) { return k64(kPiOver2_64) | (x & k64(kSign64)); }
};
struct AcosEdges {
    static F32x4 atOne(F32x4 x) { return asF32x4(sar32<31>(bitsOf(x))) & k32(kPi32); }
    static F64x2 atOne(F64x2 x) { return cmpLt(x, zeroF64x2()) & k64(kPi64); }
};

inline void raiseInvalid32() { forceEval(opaque(floatFromBits(kSignallingNaN32)) * 1.0f); }
inline void raiseInvalid64() { forceEval(opaque(doubleFromBits(kSignallingNaN64)) * 1.0); }

// The lanes with a >= 1 or a NaN (not a < 1) get their own values.
template <class Edges>
inline F32x4 fixUp(F32x4 x, F32x4 result, StatusVar& status) {
    F32x4 a = andNot(x, k32(kSign32));
    F32x4 ordinary = cmpLt(a, splat(1.0f));
    if (signMask(ordinary) == 0xF) return result;
    F32x4 one = cmpEq(a, splat(1.0f)), nan = cmpUnord(x, x);
    F32x4 domain = andNot(andNot(andNot(asF32x4(splat32(0xFFFFFFFF)), ordinary), one), nan);
    result = select(one, Edges::atOne(x), result);
    result = select(nan, x, result);
    result = select(domain, k32(kDefaultNaN32), result);
    if (signMask(domain) != 0) {
        status.write(orvStatusDomain);
        raiseInvalid32();
    }
    return result;
}
template <class Edges>
inline F64x2 fixUp(F64x2 x, F64x2 result, StatusVar& status) {
    F64x2 a = andNot(x, k64(kSign64));
    F64x2 ordinary = cmpLt(a, splat(1.0));
    if (signMask(ordinary) == 0x3) return result;
    F64x2 one = cmpEq(a, splat(1.0)), nan = cmpUnord(x, x);
    F64x2 domain = andNot(andNot(andNot(asF64x2(splat64(~0ull)), ordinary), one), nan);
    result = select(one, Edges::atOne(x), result);
    result = select(nan, x, result);
    result = select(domain, k64(kDefaultNaN64), result);
    if (signMask(domain) != 0) {
        status.write(orvStatusDomain);
        raiseInvalid64();
    }
    return result;
}

// ---- Loops --------------------------------------------------------------------

// Rounds of 8 (32f) or 4 (64f), each group of lanes through the kernel and
// the fix-up; the tail through the same code, one element in lane 0.
template <F32x4 (*Kernel)(F32x4), class Edges>
inline void loop32(const float* src, float* dst, int32_t len, StatusVar& status) {
    auto one = [&](F32x4 x) { return fixUp<Edges>(x, Kernel(x), status); };
    blockRounds<8>(
        len,
        [&](int32_t i) {
            F32x4 x0 = load(src + i), x1 = load(src + i + 4);
            F32x4 r0 = one(x0), r1 = one(x1);
            store(dst + i, r0);
            store(dst + i + 4, r1);
            return true;
        },
        [](int32_t) {}, [&](int32_t i) { dst[i] = lane0(one(splat(src[i]))); });
}
template <F64x2 (*Kernel)(F64x2), class Edges>
inline void loop64(const double* src, double* dst, int32_t len, StatusVar& status) {
    auto one = [&](F64x2 x) { return fixUp<Edges>(x, Kernel(x), status); };
    blockRounds<4>(
        len,
        [&](int32_t i) {
            F64x2 x0 = load(src + i), x1 = load(src + i + 2);
            F64x2 r0 = one(x0), r1 = one(x1);
            store(dst + i, r0);
            store(dst + i + 2, r1);
            return true;
        },
        [](int32_t) {}, [&](int32_t i) { dst[i] = lane0(one(splat(src[i]))); });
}

}  // namespace
}  // namespace orv

using namespace orv;

#define ORV_ASIN_ACOS_32(name, kernel, edges)                                                                \
    ORV_EXPORT OrvStatus name(const Orv32f* src, Orv32f* dst, int32_t len) {                                 \
        return pointersFirstFrame<kGuardNearest>(                                                            \
            {src, dst}, len, [&](StatusVar& status) { loop32<kernel, edges>(src, dst, len, status); });      \
    }
#define ORV_ASIN_ACOS_64(name, kernel, edges)                                                                \
    ORV_EXPORT OrvStatus name(const Orv64f* src, Orv64f* dst, int32_t len) {                                 \
        return pointersFirstFrame<kGuardNearest>(                                                            \
            {src, dst}, len, [&](StatusVar& status) { loop64<kernel, edges>(src, dst, len, status); });      \
    }

ORV_ASIN_ACOS_32(orvsAsin_32f_A11, asin11, AsinEdges)
ORV_ASIN_ACOS_32(orvsAsin_32f_A21, asin21, AsinEdges)
ORV_ASIN_ACOS_32(orvsAsin_32f_A24, asin24, AsinEdges)
ORV_ASIN_ACOS_64(orvsAsin_64f_A26, asin50, AsinEdges)
ORV_ASIN_ACOS_64(orvsAsin_64f_A50, asin50, AsinEdges)
ORV_ASIN_ACOS_64(orvsAsin_64f_A53, asin53, AsinEdges)
ORV_ASIN_ACOS_32(orvsAcos_32f_A11, acos11, AcosEdges)
ORV_ASIN_ACOS_32(orvsAcos_32f_A21, acos21, AcosEdges)
ORV_ASIN_ACOS_32(orvsAcos_32f_A24, acos24, AcosEdges)
ORV_ASIN_ACOS_64(orvsAcos_64f_A26, acos50, AcosEdges)
ORV_ASIN_ACOS_64(orvsAcos_64f_A50, acos50, AcosEdges)
ORV_ASIN_ACOS_64(orvsAcos_64f_A53, acos53, AcosEdges)

#else  // ORVVM_RECORDS

#include "frame/record.h"

namespace orv {
namespace {
using records::Interval;
// The domain, the meeting of the branches at 0.5, the last stretch below 1
// where w is tiny, and beyond the domain (the fix-up pass).
constexpr Interval kDomain{-1.0, 1.0};
constexpr Interval kBranchEdge{0.49, 0.51};
constexpr Interval kNearOne{0.999, 1.0};
}  // namespace
ORV_RECORDS(
    {.member = "orvsAsin_32f_A11", .maxUlp = 626.8, .worst = {0x1.00003ap-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite32}},
    {.member = "orvsAsin_32f_A21", .maxUlp = 2.307, .worst = {0x1.007364p-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite32}},
    {.member = "orvsAsin_32f_A24", .maxUlp = 0.7313, .worst = {0x1.117b0ep-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite32}},
    {.member = "orvsAcos_32f_A11", .maxUlp = 624.7, .worst = {0x1.c1540ep-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite32}},
    {.member = "orvsAcos_32f_A21", .maxUlp = 1.261, .worst = {-0x1.007364p-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite32}},
    {.member = "orvsAcos_32f_A24", .maxUlp = 0.7323, .worst = {0x1.17aa86p-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite32}},
    {.member = "orvsAsin_64f_A26", .maxUlp = 2.204, .worst = {0x1.03b8fc7662a85p-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite64},
     .sameAs = "orvsAsin_64f_A50"},
    {.member = "orvsAsin_64f_A50", .maxUlp = 2.204, .worst = {0x1.03b8fc7662a85p-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite64}},
    {.member = "orvsAsin_64f_A53", .maxUlp = 0.6364, .worst = {0x1.03b151e67642fp-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite64}},
    {.member = "orvsAcos_64f_A26", .maxUlp = 3.165, .worst = {0x1.24c849c5e90ccp-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite64},
     .sameAs = "orvsAcos_64f_A50"},
    {.member = "orvsAcos_64f_A50", .maxUlp = 3.165, .worst = {0x1.24c849c5e90ccp-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite64}},
    {.member = "orvsAcos_64f_A53", .maxUlp = 0.6233, .worst = {0x1.1b525b81a252ep-1},
     .ranges = {kDomain, kBranchEdge, kNearOne, symmetric(2.0), kFinite64}})
}  // namespace orv

#endif  // ORVVM_RECORDS
