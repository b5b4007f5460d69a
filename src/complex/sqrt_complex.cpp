// Sqrt, complex members: dst[i] = sqrt(src[i]) on the principal branch,
// real part >= 0 and imaginary part with the sign of Im z (signed zeros
// included, so the negative real axis maps to +i or -i by the sign of its
// zero).
//
// Method.  With z = x + iy, a = |x|, b = |y| and h = |z| = sqrt(a^2 + b^2):
//   s = sqrt((a + h) / 2)      the larger part of the root,
//   q = b / (2s)               the smaller one,
// and sqrt z = s + i q sign(y) for x >= 0, q + i s sign(y) for x < 0.  Both
// sums add non-negative terms, so nothing cancels: every step keeps the
// relative error of its operands, and the result's error is a small
// multiple of the arithmetic's rounding (-0 counts as x >= 0, which gives
// the same root).
//
// Tiers:
//   32fc A11 = A21  the formula in binary32.  x^2 + y^2 (1 ulp with both
//             roundings), its root (+0.5 + half of that), a + h, the halving
//             (exact) and the second root, then the quotient: about 2 ulp
//             at most on the largest part and on q.  Blocks of 8 elements;
//             the screen passes parts that are zero or of magnitude in
//             [2^-60, 2^60), where the squares neither overflow nor leave
//             the normal range, and not both zero.
//   32fc A24  the same formula in binary64 on the exactly widened parts
//             (the squares exact, the rest a few 2^-53 relative), rounded
//             once to binary32: half an ulp plus the double rounding.  The
//             screen passes finite parts, not both zero.
//   64fc A26 = A50  the formula in binary64: about 2.5 ulp at most.  Blocks
//             of 4 elements; the screen passes parts that are zero or of
//             magnitude in [2^-450, 2^450), not both zero.
//   64fc A53  the formula carried in double-double: a^2 + b^2 as an exact
//             sum (products with their rounding errors, a two-sum), each
//             root corrected by one Newton step against its double-double
//             square, (a + h) as a two-sum, and q = b / 2s corrected by
//             its exact residual.  Each part is then one rounding of a
//             value within a few 2^-100 relative of the exact part.  Same
//             screen as A26.
//
// ElementPath.  An element that passes its screen takes the block formula
// on lane 0, so that it gets the same bits alone as inside a block.  Other
// elements:
//   32fc  complexSqrt in x87 extended, rounded once to binary32 by the
//         complex wrapper's narrowing (raising underflow if a part is
//         subnormal, which no finite argument gives).
//   64fc  the special values of complexSqrt's rules, then for finite
//         parts outside the screen the tier's formula on the parts scaled
//         by 2^2j (the larger into [1, 4)), the root scaled back by 2^-j
//         and q = (b 2^j) / 2s', where the scaled root s' lies in [0.7, 2):
//         b 2^j is exact unless it is subnormal, where q is subnormal too
//         and the double rounding stays below a quarter of its ulp.
//
// Special values (both widths, all tiers; C99 Annex G):
//   y = +-inf           +inf + i y, whatever x (NaN included)
//   x = -inf, y finite  +0 + i inf sign(y);   y NaN: NaN + i inf sign(y)
//   x = +inf, y finite  +inf + i 0 sign(y);   y NaN: +inf + i NaN
//   x = +-0, y = +-0    +0 + i y
//   x or y NaN otherwise: NaN + i NaN
// Guards as the export table gives them: x87 extended for 32fc (the
// kernel's frame), none for 64fc A26 and A50 (their results follow the
// caller's MXCSR modes), x87 double for 64fc A53.  No status but
// orvStatusOk.
#include <cfloat>

#include "arith/exact_products.h"
#include "complex/extended.h"
#include "complex/kernel_support.h"
#include "complex/wrapper.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "frame/x87.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// Magnitudes the binary32 block takes: [2^-60, 2^60), and zero.
constexpr float kLow21 = floatFromBits(0x21800000);   // 2^-60
constexpr float kHigh21 = floatFromBits(0x5D800000);  // 2^60
// Magnitudes the binary64 blocks take: [2^-450, 2^450), and zero.  The
// partial products of the exact squares stay above 2^-1010.
constexpr double kLow64 = doubleFromBits(0x23D0000000000000);   // 2^-450
constexpr double kHigh64 = doubleFromBits(0x5C10000000000000);  // 2^450
constexpr double kHalf = 0.5;

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// ---- Screens --------------------------------------------------------------
// Each returns the mask of lanes that fail: a part outside the range (NaN
// and infinities included), or both parts zero.

template <class V, class T>
inline int rejected(V x, V y, T low, T high) {
    V zero = splat(T(0));
    V a = andNot(x, splat(-T(0))), b = andNot(y, splat(-T(0)));
    V okA = (cmpLe(splat(low), a) & cmpLt(a, splat(high))) | cmpEq(a, zero);
    V okB = (cmpLe(splat(low), b) & cmpLt(b, splat(high))) | cmpEq(b, zero);
    V bothZero = cmpEq(a, zero) & cmpEq(b, zero);
    V pass = andNot(okA & okB, bothZero);
    return signMask(pass) ^ (sizeof(T) == 4 ? 0xF : 0x3);
}
inline int rejected21(F32x4 x, F32x4 y) { return rejected(x, y, kLow21, kHigh21); }
// Binary32 parts in the binary64 tier: any finite pair but two zeros.
inline int rejected24(F32x4 x, F32x4 y) { return rejected(x, y, 0.0f, floatFromBits(kInfinity32)); }
inline int rejected64(F64x2 x, F64x2 y) { return rejected(x, y, kLow64, kHigh64); }

// ---- Kernels ----------------------------------------------------------------

// s and q of the method, from a, b >= 0 and the numerator of q.
template <class V>
struct Root {
    V s, q;
};

template <class V, class T>
inline Root<V> plainRoot(V a, V b, V numerator) {
    V h = sqrt(a * a + b * b);
    V s = sqrt((a + h) * splat(T(kHalf)));
    return {s, numerator / (s + s)};
}

// Double-double helpers: the exact rounding errors of a sum and of a
// product (products by three-way splits, exact/productError).
struct Pair {
    F64x2 hi, lo;
};
inline Pair twoSum(F64x2 a, F64x2 b) {
    F64x2 s = a + b;
    F64x2 bb = s - a;
    return {s, (a - (s - bb)) + (b - bb)};
}
inline F64x2 productError(F64x2 p, F64x2 f, F64x2 g) {
    using namespace exact;
    Split3 u = split3(f), v = split3(g);
    F64x2 top = u.h * v.h - p;
    F64x2 second = u.h * v.m + u.m * v.h;
    F64x2 third = u.h * v.l + u.m * v.m + u.l * v.h;
    F64x2 rest = (u.m * v.l + u.l * v.m) + u.l * v.l;
    return ((top + second) + third) + rest;
}
// sqrt(hi + lo) as a pair: r = sqrt(hi) and one Newton step on the exact
// residual hi - r^2 (exact by Sterbenz, r^2 within 2^-52 of hi).
inline Pair rootOfPair(Pair v) {
    F64x2 r = sqrt(v.hi);
    F64x2 r2 = r * r;
    F64x2 residual = ((v.hi - r2) - productError(r2, r, r)) + v.lo;
    return {r, residual / (r + r)};
}

inline Root<F64x2> preciseRoot(F64x2 a, F64x2 b, F64x2 numerator) {
    F64x2 a2 = a * a, b2 = b * b;
    Pair z = twoSum(a2, b2);
    z.lo = z.lo + (productError(a2, a, a) + productError(b2, b, b));
    Pair h = rootOfPair(z);
    Pair t = twoSum(a, h.hi);
    t.lo = t.lo + h.lo;
    // Halving is exact: the parts stay far above the subnormal range.
    Pair s = rootOfPair({t.hi * splat(kHalf), t.lo * splat(kHalf)});
    // q = n / (2s): the quotient of the head, then its exact residual
    // n - q0 (2 s.hi) - q0 (2 s.lo) divided once more.
    F64x2 d = s.hi + s.hi, dLow = s.lo + s.lo;
    F64x2 q0 = numerator / d;
    F64x2 p = q0 * d;
    F64x2 residual = ((numerator - p) - productError(p, q0, d)) - q0 * dLow;
    return {s.hi + s.lo, q0 + residual / d};
}

// The parts of the root in place, by the sign of x and of y.
template <class V, class T>
inline Root<V> placed(V x, V y, Root<V> r) {
    V negative = cmpLt(x, splat(T(0)));
    V re = select(negative, r.q, r.s);
    V im = select(negative, r.s, r.q) | (y & splat(-T(0)));
    return {re, im};
}

template <class V, class T, class Core>
inline Root<V> rootOf(V x, V y, Core core) {
    V sign = splat(-T(0));
    V b = andNot(y, sign);
    return placed<V, T>(x, y, core(andNot(x, sign), b, b));
}

inline Root<F32x4> root21(F32x4 x, F32x4 y) { return rootOf<F32x4, float>(x, y, plainRoot<F32x4, float>); }
inline Root<F64x2> root50(F64x2 x, F64x2 y) { return rootOf<F64x2, double>(x, y, plainRoot<F64x2, double>); }
inline Root<F64x2> root53(F64x2 x, F64x2 y) { return rootOf<F64x2, double>(x, y, preciseRoot); }

// ---- Blocks ---------------------------------------------------------------------

// 32fc A21: two groups of four elements, parts separated by shuffles.
inline bool block21(const Orv32fc* src, Orv32fc* dst) {
    F32x4 v0 = load(reals(src)), v1 = load(reals(src + 2));
    F32x4 v2 = load(reals(src + 4)), v3 = load(reals(src + 6));
    F32x4 x0 = evenLanes(v0, v1), y0 = oddLanes(v0, v1);
    F32x4 x1 = evenLanes(v2, v3), y1 = oddLanes(v2, v3);
    if ((rejected21(x0, y0) | rejected21(x1, y1)) != 0) return false;
    Root<F32x4> r0 = root21(x0, y0), r1 = root21(x1, y1);
    store(reals(dst), unpackLo(r0.s, r0.q));
    store(reals(dst + 2), unpackHi(r0.s, r0.q));
    store(reals(dst + 4), unpackLo(r1.s, r1.q));
    store(reals(dst + 6), unpackHi(r1.s, r1.q));
    return true;
}

// 32fc A24: the screen on the binary32 parts of all eight, then pairs of
// elements widened, the root in binary64, and one narrowing per pair.
inline bool block24(const Orv32fc* src, Orv32fc* dst) {
    F32x4 v[4];
    int reject = 0;
    for (int g = 0; g < 4; g += 2) {
        v[g] = load(reals(src + 2 * g));
        v[g + 1] = load(reals(src + 2 * g + 2));
        reject |= rejected24(evenLanes(v[g], v[g + 1]), oddLanes(v[g], v[g + 1]));
    }
    if (reject != 0) return false;
    for (int g = 0; g < 4; ++g) {
        F64x2 first = widenLow(v[g]), second = widenHigh(v[g]);
        Root<F64x2> r = root50(unpackLo(first, second), unpackHi(first, second));
        store(reals(dst + 2 * g), narrow(unpackLo(r.s, r.q), unpackHi(r.s, r.q)));
    }
    return true;
}

// 64fc: two pairs of elements.
template <class Formula>
inline bool block64(const Orv64fc* src, Orv64fc* dst, Formula formula) {
    F64x2 z0 = load(reals(src)), z1 = load(reals(src + 1));
    F64x2 z2 = load(reals(src + 2)), z3 = load(reals(src + 3));
    F64x2 x0 = unpackLo(z0, z1), y0 = unpackHi(z0, z1);
    F64x2 x1 = unpackLo(z2, z3), y1 = unpackHi(z2, z3);
    if ((rejected64(x0, y0) | rejected64(x1, y1)) != 0) return false;
    Root<F64x2> r0 = formula(x0, y0), r1 = formula(x1, y1);
    store(reals(dst), unpackLo(r0.s, r0.q));
    store(reals(dst + 1), unpackHi(r0.s, r0.q));
    store(reals(dst + 2), unpackLo(r1.s, r1.q));
    store(reals(dst + 3), unpackHi(r1.s, r1.q));
    return true;
}

// ---- ElementPath -------------------------------------------------------------------

inline void element21(const Orv32fc* z, Orv32fc* out) {
    F32x4 x = splat(z->re), y = splat(z->im);
    if (rejected21(x, y) & 1) return kernelElement<complexSqrt>(z, out);
    Root<F32x4> r = root21(x, y);
    *out = {lane0(r.s), lane0(r.q)};
}

inline void element24(const Orv32fc* z, Orv32fc* out) {
    if (rejected24(splat(z->re), splat(z->im)) & 1) return kernelElement<complexSqrt>(z, out);
    Root<F64x2> r = root50(splat(double(z->re)), splat(double(z->im)));
    *out = {lane0(narrow(r.s)), lane0(narrow(r.q))};
}

// 2^n for -1022 <= n <= 1023.
inline double twoTo(int n) { return doubleFromBits(uint64_t(n + 1023) << 52); }
constexpr double kTwo64 = 0x1p64;
using namespace complexparts;

// 64fc, any element; Core is the tier's (a, b, numerator) -> (s, q).
template <class Core>
inline Orv64fc element64(double x, double y, Core core) {
    F64x2 vx = splat(x), vy = splat(y);
    if ((rejected64(vx, vy) & 1) == 0) {
        F64x2 b = splat(withSignOf(y, 0.0));
        Root<F64x2> r = placed<F64x2, double>(vx, vy, core(splat(withSignOf(x, 0.0)), b, b));
        return {lane0(r.s), lane0(r.q)};
    }
    if (isInf(y)) return {kInfinity, y};
    if (isNan(x)) return {x + x, x + x};
    if (isInf(x)) {
        if (isNan(y)) return x < 0 ? Orv64fc{y + y, withSignOf(kInfinity, y)} : Orv64fc{kInfinity, y + y};
        return x < 0 ? Orv64fc{0.0, withSignOf(kInfinity, y)} : Orv64fc{kInfinity, withSignOf(0.0, y)};
    }
    if (isNan(y)) return {y + y, y + y};
    double a = withSignOf(x, 0.0), b = withSignOf(y, 0.0);
    if (a == 0 && b == 0) return {0.0, y};
    // Finite parts outside the screen: scaled by 2^2j so that the larger
    // lies in [1, 4), after 2^64 first for a subnormal larger part (whose
    // exponent is then read from a normal number).  Scaling up is exact;
    // scaling down may round only a part too small to count in a^2 + b^2,
    // and the numerator b 2^j only where q is subnormal.
    double larger = a < b ? b : a;
    int pre = 0;
    if (larger < DBL_MIN) {
        a *= kTwo64, b *= kTwo64, larger *= kTwo64;
        pre = 64;
    }
    int j = (1 - (int(highWord(larger) >> 20) - 1023 - pre)) >> 1;
    double first = twoTo(j - pre), second = twoTo(j);
    Root<F64x2> r = core(splat((a * first) * second), splat((b * first) * second), splat(b * first));
    double s = lane0(r.s) * twoTo(-j), q = lane0(r.q);
    return x < 0 ? Orv64fc{q, withSignOf(s, y)} : Orv64fc{s, withSignOf(q, y)};
}

inline Orv64fc element50(Orv64fc z) { return element64(z.re, z.im, plainRoot<F64x2, double>); }
inline Orv64fc element53(Orv64fc z) { return element64(z.re, z.im, preciseRoot); }

}  // namespace

// ---- Kernel -------------------------------------------------------------------------
// complexSqrt, for the binary32 elements the screens send out: the rules in
// order, the first that fits deciding, in extended values.
//   1. y infinite: +inf + i y, also for a NaN x.
//   2. x = -inf: +0 + i inf sign(y) (NaN + i inf sign(y) for a NaN y);
//      x = +inf: +inf + i 0 sign(y) (+inf + i NaN for a NaN y).
//   3. y = 0: x > 0 gives sqrt(x) + i y; x < 0 gives +0 + i sqrt(-x) sign(y).
//   4. x = 0: both parts of magnitude sqrt(|y| / 2), the imaginary part
//      with the sign of y.
//   5. h = |z|; x > 0: s = sqrt(x/2 + h/2), s + i (y/2)/s; otherwise
//      s = sqrt(h/2 - x/2), |(y/2)/s| + i s sign(y) (NaN for a NaN part).
void complexSqrt(Orv64fc* result, const Orv64fc* z) {
    const double x = z->re, y = z->im;
    if (isInf(y)) {
        *result = {kInfinity, y};
        return;
    }
    if (isInf(x)) {
        if (x < 0)
            *result = {isNan(y) ? y + y : 0.0, withSignOf(kInfinity, y)};
        else
            *result = {kInfinity, isNan(y) ? y + y : withSignOf(0.0, y)};
        return;
    }
    const Extended half = 0.5L;
    Extended ex = extend(x), ey = extend(y), root;
    if (y == 0 && x > 0) {
        extSqrt(&root, &ex);
        *result = {roundToDouble(root), y};
        return;
    }
    if (y == 0 && x < 0) {
        Extended minusX = -ex;
        extSqrt(&root, &minusX);
        *result = {0.0, withSignOf(roundToDouble(root), y)};
        return;
    }
    if (x == 0) {
        Extended m = (ey < 0 ? -ey : ey) * half;
        extSqrt(&root, &m);
        double r = roundToDouble(root);
        *result = {withSignOf(r, 0.0), withSignOf(r, y)};
        return;
    }
    Extended squares = ex * ex + ey * ey, h;
    extSqrt(&h, &squares);
    if (x > 0) {
        Extended w = ex * half + h * half;
        extSqrt(&root, &w);
        *result = {roundToDouble(root), roundToDouble(ey * half / root)};
        return;
    }
    Extended w = h * half - ex * half;
    extSqrt(&root, &w);
    Extended q = ey * half / root;
    *result = {roundToDouble(q < 0 ? -q : q), withSignOf(roundToDouble(root), y)};
}

}  // namespace orv

using namespace orv;

// ---- Exports ---------------------------------------------------------------------------

ORV_EXPORT OrvStatus orvsSqrt_32fc_A11(const Orv32fc* src, Orv32fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return block21(src + i, dst + i); },
            [&](int32_t i) { element21(src + i, dst + i); });
    });
}
ORV_EXPORT OrvStatus orvsSqrt_32fc_A21(const Orv32fc* src, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsSqrt_32fc_A11")));
ORV_EXPORT OrvStatus orvsSqrt_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return block24(src + i, dst + i); },
            [&](int32_t i) { element24(src + i, dst + i); });
    });
}
ORV_EXPORT OrvStatus orvsSqrt_64fc_A26(const Orv64fc* src, Orv64fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return block64(src + i, dst + i, root50); },
            [&](int32_t i) { dst[i] = element50(src[i]); });
    });
}
ORV_EXPORT OrvStatus orvsSqrt_64fc_A50(const Orv64fc* src, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsSqrt_64fc_A26")));
ORV_EXPORT OrvStatus orvsSqrt_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return block64(src + i, dst + i, root53); },
            [&](int32_t i) { dst[i] = element53(src[i]); });
    });
}

#else
#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// The negative real axis and its neighbourhood, where the roots swap
// parts; and parts of far apart magnitudes.
const Box kNegativeAxis32{Interval{-1e30, -1e-30}, Interval{-1e-20, 1e-20}};
const Box kNegativeAxis64{Interval{-1e300, -1e-300}, Interval{-1e-200, 1e-200}};
}  // namespace

ORV_RECORDS(
    // Measured by the accuracy test (8192 samples per range besides the
    // special values).  A24: the one rounding of a binary64 root.  A53: the
    // largest errors are subnormal parts, where b 2^j is rounded to the
    // subnormal grid before the quotient is rounded again.
    {.member = "orvsSqrt_32fc_A11",
     .maxUlp = 1.71,
     .worst = {0x1.cb87ccp+9, -0x1.ce513ep+9},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), kNegativeAxis32}},
    {.member = "orvsSqrt_32fc_A21",
     .maxUlp = 1.64,
     .worst = {-0x1.f915dcp+8, 0x1.5f46bep+8},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), kNegativeAxis32},
     .sameAs = "orvsSqrt_32fc_A11"},
    {.member = "orvsSqrt_32fc_A24",
     .maxUlp = 0.5,
     .worst = {0x1p+0, 0x1p-149},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), kNegativeAxis32}},
    {.member = "orvsSqrt_64fc_A26",
     .maxUlp = 1.62,
     .worst = {0x1.79e026a62effp+6, 0x1.08cd3a632412p+5},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), kNegativeAxis64}},
    {.member = "orvsSqrt_64fc_A50",
     .maxUlp = 1.94,
     .worst = {-0x1.ed658445e2becp+7, 0x1.f5549082188p+6},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), kNegativeAxis64},
     .sameAs = "orvsSqrt_64fc_A26"},
    {.member = "orvsSqrt_64fc_A53",
     .maxUlp = 0.812,
     .worst = {-0x1.72341a08ae047p+353, 0x1.39c3ddddfd64ep-846},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), kNegativeAxis64}})
}  // namespace orv
#endif
