// Div (complex): dst[i] = src1[i] / src2[i], with a + bi = src1[i] and
// c + di = src2[i]:
//   (a + bi)/(c + di) = ((ac + bd) + (bc - ad)i) / (c^2 + d^2).
//
// Method.  Each tier is the route of the complex products (Mul) with a
// denominator and a division added, refined as far as its tier needs:
//   32fc A11  binary32: q = c^2 + d^2, r = rcpps(q) (about 12 bits), and
//             (ac + bd) r, (bc - ad) r.  Four elements per round, re and im
//             parted by shuffles.  The screen keeps every term normal:
//             each component zero or of magnitude in [2^-31, 2^31), and
//             the divisor not zero.  Guard nearest, keeping the caller's
//             denormals-are-zero.
//   32fc A21 = A24  binary64 on the widened components: the products and
//             the squares of binary32 values are exact there, so the
//             numerators are one rounding each whatever their
//             cancellation, and nothing overflows or underflows (squares
//             of binary32 values lie within 2^-298 .. 2^256).  r = 1/q by
//             one division shared by both components; the quotient carries
//             four roundings of 2^-53 before its one narrowing to binary32.
//             The screen only keeps out non-finite components and a zero
//             divisor.  Guard x87 double (the arithmetic is SSE binary64).
//   64fc A26  binary64: the formula of A11 with r = 1/q by division, two
//             elements per round.  Screen: each component zero or of
//             magnitude in [2^-250, 2^250), the divisor not zero.  Guard
//             nearest, keeping the caller's denormals-are-zero.
//   64fc A50 = A53  the numerators as exact sums of products, hi + lo
//             pairs from Dekker's products (Veltkamp halves) and Knuth's
//             two-sum, and the denominator likewise c^2 + d^2 = Qh + Ql.
//             Then q0 = Nh * r with r = 1/Qh, the remainder Nh - q0*Qh
//             exactly (the product's error by the same splitting), and the
//             quotient q0 + ((Nh - q0 Qh - e) + (Nl - q0 Ql)) r.  The terms left out are a few
//             2^-100 of the quotient, so it is within 0.5 ulp plus that, the
//             numerator's cancellation included.  Screen: every component
//             of magnitude in [2^-200, 2^200) (high words 0x33700000 ..
//             0x4C700000), so that every partial product, remainder and
//             quotient stays in the normal range.  Guard x87 extended.
//
// Element path, for a rejected round and the tail (ascending order):
//   - an element that passes the round's screen takes the block formula on
//     lane 0, so its result does not depend on its position;
//   - finite components and a nonzero divisor: A11 and the 32fc A21/A24
//     take the binary64 formula of A21 and narrow it; A26, A50 and A53 the
//     exact scheme in x87 extended precision, whose exponent range holds
//     every term (numerators by Veltkamp-split exact products, c^2 + d^2
//     and the quotient rounded to 64 bits, then once to binary64: within
//     0.5 ulp plus 2^-10).  A26's frame guards MXCSR only, so this
//     stretch sets the x87 word itself, for the stretch alone;
//   - an infinite or NaN component or a zero divisor: the formula in the
//     wide type (binary64 for 32fc, x87 extended for 64fc), and where both
//     parts come out NaN, the recovery of C99 Annex G: a nonzero or
//     infinite numerator over zero gives infinities signed as
//     copysign(inf, c) times a and b; an infinite numerator over a finite
//     divisor gives infinities in the directions of the plain formula
//     applied to the numerator's signs; a finite numerator over an
//     infinite divisor gives zeros signed likewise.
//
// Every completed call returns orvStatusOk; overflow, underflow and
// division by zero raise their flags through the arithmetic only.
#include "arith/exact_products.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

using namespace exact;

// ---- Constants ----------------------------------------------------------

// A11: each component zero or of magnitude bits in [kLow11, kLow11 + kSpan11).
constexpr uint32_t kLow11 = 0x30000000;   // 2^-31
constexpr uint32_t kSpan11 = 0x1F000000;  // up to 0x4F000000 = 2^31
// The 32fc A21 screen: magnitude bits below those of infinity.
constexpr uint32_t kInf32 = 0x7F800000;
// A26, on high words: zero or in [2^-250, 2^250).
constexpr uint32_t kLow26 = 0x20500000;   // 2^-250
constexpr uint32_t kSpan26 = 0x3E400000;  // up to 0x5E900000 = 2^250
// A50 and A53, on high words: in [2^-200, 2^200), zero not allowed.
constexpr uint32_t kLow53 = 0x33700000;   // 2^-200
constexpr uint32_t kSpan53 = 0x19000000;  // up to 0x4C700000 = 2^200
constexpr uint64_t kExponent64 = 0x7FF0000000000000;

// ---- Screens ------------------------------------------------------------------

// Lanes (32-bit words) whose magnitude is neither zero (when allowed) nor in
// [low, low + span): word - low, signed, outside [0, span).
template <bool kZeroPasses>
inline int rangeScreen(I32x4 words, uint32_t low, uint32_t span) {
    I32x4 m = words & splat32(kAbs32);
    I32x4 shifted = sub32(m, splat32(low));
    I32x4 out = cmpGt32(shifted, splat32(span - 1)) | cmpLt32(shifted, splat32(0));
    if (kZeroPasses) out = andNot(out, cmpEq32(m, splat32(0)));
    return signMask32(out);
}
template <bool kZeroPasses>
inline bool inRange(uint32_t word, uint32_t low, uint32_t span) {
    uint32_t m = word & kAbs32;
    return (kZeroPasses && m == 0) || m - low < span;
}

// ---- The formula on separated parts ------------------------------------------

template <class V>
struct Parts {
    V re, im;
};

// ac + bd and bc - ad over c^2 + d^2, given the reciprocal's form.
template <class V, class Reciprocal>
inline Parts<V> plainQuotient(V a, V b, V c, V d, Reciprocal reciprocal) {
    V r = reciprocal(c * c + d * d);
    return {(a * c + b * d) * r, (b * c - a * d) * r};
}
inline F32x4 rcpOf(F32x4 q) { return rcp(q); }
inline F64x2 inverseOf(F64x2 q) { return splat(1.0) / q; }

// ---- Annex G: the special cases, in a wide type ----------------------------------
// T is double for 32fc, Extended for 64fc; both hold every product of the
// element type without overflow, so the formula needs no scaling.
template <class T>
inline Parts<T> specialQuotient(T a, T b, T c, T d) {
    const T inf = __builtin_inf();
    T q = c * c + d * d;
    T x = (a * c + b * d) / q, y = (b * c - a * d) / q;
    if (!(__builtin_isnan(x) && __builtin_isnan(y))) return {x, y};
    auto unit = [](T v) { return __builtin_copysignl(__builtin_isinf(v) ? 1.0L : 0.0L, v); };
    bool finiteNumerator = __builtin_isfinite(a) && __builtin_isfinite(b);
    bool finiteDivisor = __builtin_isfinite(c) && __builtin_isfinite(d);
    if (q == 0 && (!__builtin_isnan(a) || !__builtin_isnan(b))) {
        T signedInf = T(__builtin_copysignl(inf, c));
        return {signedInf * a, signedInf * b};
    }
    if ((__builtin_isinf(a) || __builtin_isinf(b)) && finiteDivisor) {
        T ua = T(unit(a)), ub = T(unit(b));
        return {inf * (ua * c + ub * d), inf * (ub * c - ua * d)};
    }
    if ((__builtin_isinf(c) || __builtin_isinf(d)) && finiteNumerator) {
        T uc = T(unit(c)), ud = T(unit(d));
        return {T(0) * (a * uc + b * ud), T(0) * (b * uc - a * ud)};
    }
    return {x, y};
}

// ---- 32fc ---------------------------------------------------------------------------
inline const float* reals(const Orv32fc* p) { return &p->re; }
inline float* reals(Orv32fc* p) { return &p->re; }
inline const double* reals(const Orv64fc* p) { return &p->re; }
inline double* reals(Orv64fc* p) { return &p->re; }

// Four elements as re and im vectors, and back.
struct Four32 {
    F32x4 a, b, c, d;
    F32x4 x0, x1, y0, y1;  // the raw loads, for the screens
};
inline Four32 loadFour(const Orv32fc* src1, const Orv32fc* src2) {
    F32x4 x0 = load(reals(src1)), x1 = load(reals(src1 + 2));
    F32x4 y0 = load(reals(src2)), y1 = load(reals(src2 + 2));
    return {evenLanes(x0, x1), oddLanes(x0, x1), evenLanes(y0, y1), oddLanes(y0, y1), x0, x1, y0, y1};
}
inline void storeFour(Orv32fc* dst, F32x4 re, F32x4 im) {
    store(reals(dst), unpackLo(re, im));
    store(reals(dst + 2), unpackHi(re, im));
}

// The binary64 route of A21 on two elements' parts.
inline Parts<F64x2> widenedQuotient(F64x2 a, F64x2 b, F64x2 c, F64x2 d) {
    return plainQuotient(a, b, c, d, inverseOf);
}

// The ElementPath of the 32fc members beyond their screen: binary64, with
// Annex G's recovery, narrowed once.  The ordinary case runs the block's
// vector formula on lane 0.
inline Orv32fc widenedElement(float a, float b, float c, float d) {
    bool finite = passesMagnitude(bitsOf(a), kInf32) && passesMagnitude(bitsOf(b), kInf32) &&
                  passesMagnitude(bitsOf(c), kInf32) && passesMagnitude(bitsOf(d), kInf32);
    double cd = c, dd = d;
    if (finite && cd * cd + dd * dd != 0) {
        Parts<F64x2> q = widenedQuotient(splat(double(a)), splat(double(b)), splat(cd), splat(dd));
        return {float(lane0(q.re)), float(lane0(q.im))};
    }
    Parts<double> q = specialQuotient<double>(a, b, c, d);
    return {float(q.re), float(q.im)};
}

bool block11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst) {
    Four32 v = loadFour(src1, src2);
    Parts<F32x4> q = plainQuotient(v.a, v.b, v.c, v.d, rcpOf);
    int rejected = rangeScreen<true>(bitsOf(v.x0), kLow11, kSpan11) | rangeScreen<true>(bitsOf(v.x1), kLow11, kSpan11) |
                   rangeScreen<true>(bitsOf(v.y0), kLow11, kSpan11) | rangeScreen<true>(bitsOf(v.y1), kLow11, kSpan11) |
                   signMask(cmpEq(v.c * v.c + v.d * v.d, zeroF32x4()));
    if (rejected) return false;
    storeFour(dst, q.re, q.im);
    return true;
}

Orv32fc element11(Orv32fc x, Orv32fc y) {
    bool inScreen = inRange<true>(bitsOf(x.re), kLow11, kSpan11) && inRange<true>(bitsOf(x.im), kLow11, kSpan11) &&
                    inRange<true>(bitsOf(y.re), kLow11, kSpan11) && inRange<true>(bitsOf(y.im), kLow11, kSpan11);
    if (inScreen) {
        F32x4 c = splat(y.re), d = splat(y.im);
        if (lane0(c * c + d * d) != 0) {
            Parts<F32x4> q = plainQuotient(splat(x.re), splat(x.im), c, d, rcpOf);
            return {lane0(q.re), lane0(q.im)};
        }
    }
    return widenedElement(x.re, x.im, y.re, y.im);
}

bool block21(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst) {
    Four32 v = loadFour(src1, src2);
    F64x2 c0 = widenLow(v.c), c1 = widenHigh(v.c), d0 = widenLow(v.d), d1 = widenHigh(v.d);
    Parts<F64x2> q0 = widenedQuotient(widenLow(v.a), widenLow(v.b), c0, d0);
    Parts<F64x2> q1 = widenedQuotient(widenHigh(v.a), widenHigh(v.b), c1, d1);
    F64x2 zero = zeroF64x2();
    int rejected = magnitudeScreen(v.x0, kInf32) | magnitudeScreen(v.x1, kInf32) | magnitudeScreen(v.y0, kInf32) |
                   magnitudeScreen(v.y1, kInf32) | signMask(cmpEq(c0 * c0 + d0 * d0, zero)) |
                   signMask(cmpEq(c1 * c1 + d1 * d1, zero));
    if (rejected) return false;
    storeFour(dst, narrow(q0.re, q1.re), narrow(q0.im, q1.im));
    return true;
}

Orv32fc element21(Orv32fc x, Orv32fc y) { return widenedElement(x.re, x.im, y.re, y.im); }

// ---- 64fc -------------------------------------------------------------------------------

struct Two64 {
    F64x2 a, b, c, d;
    F64x2 x0, x1, y0, y1;
};
inline Two64 loadTwo(const Orv64fc* src1, const Orv64fc* src2) {
    F64x2 x0 = load(reals(src1)), x1 = load(reals(src1 + 1));
    F64x2 y0 = load(reals(src2)), y1 = load(reals(src2 + 1));
    return {unpackLo(x0, x1), unpackHi(x0, x1), unpackLo(y0, y1), unpackHi(y0, y1), x0, x1, y0, y1};
}
inline void storeTwo(Orv64fc* dst, F64x2 re, F64x2 im) {
    store(reals(dst), unpackLo(re, im));
    store(reals(dst + 1), unpackHi(re, im));
}

inline bool finite(double x) { return (bitsOf(x) & kExponent64) != kExponent64; }

// The x87 element form of the 64-bit members: exact numerators, the
// quotient in extended precision, one rounding to binary64; the special
// cases by Annex G in extended precision.
inline Orv64fc extendedElement(double a, double b, double c, double d) {
    Extended xc = extend(c), xd = extend(d);
    Extended q = xc * xc + xd * xd;
    if (finite(a) && finite(b) && finite(c) && finite(d) && q != 0) {
        Extended re = extendedSumOfProducts(a, c, b, d), im = extendedSumOfProducts(b, c, -a, d);
        return {roundToDouble(re / q), roundToDouble(im / q)};
    }
    Parts<Extended> s = specialQuotient<Extended>(extend(a), extend(b), xc, xd);
    return {roundToDouble(s.re), roundToDouble(s.im)};
}

// A26's frame guards MXCSR alone, so its x87 stretch sets the x87 word
// itself (64-bit precision, nearest) for that stretch only, with the
// operands pinned after the write and the results before the restore.
inline Orv64fc extendedElementInOwnMode(double a, double b, double c, double d) {
    FpStateGuard guard;
    guard.enter<FpModes{kMxcsrNone, kX87Extended}>();
    Orv64fc q = extendedElement(opaque(a), opaque(b), opaque(c), opaque(d));
    q = {opaque(q.re), opaque(q.im)};
    guard.leave<RestoreOrder::X87First>();
    return q;
}

bool block26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst) {
    Two64 v = loadTwo(src1, src2);
    Parts<F64x2> q = plainQuotient(v.a, v.b, v.c, v.d, inverseOf);
    int rejected = rangeScreen<true>(highWords(v.x0, v.x1), kLow26, kSpan26) |
                   rangeScreen<true>(highWords(v.y0, v.y1), kLow26, kSpan26) |
                   signMask(cmpEq(v.c * v.c + v.d * v.d, zeroF64x2()));
    if (rejected) return false;
    storeTwo(dst, q.re, q.im);
    return true;
}

Orv64fc element26(Orv64fc x, Orv64fc y) {
    bool inScreen = inRange<true>(highWord(x.re), kLow26, kSpan26) && inRange<true>(highWord(x.im), kLow26, kSpan26) &&
                    inRange<true>(highWord(y.re), kLow26, kSpan26) && inRange<true>(highWord(y.im), kLow26, kSpan26);
    if (inScreen) {
        F64x2 c = splat(y.re), d = splat(y.im);
        if (lane0(c * c + d * d) != 0) {
            Parts<F64x2> q = plainQuotient(splat(x.re), splat(x.im), c, d, inverseOf);
            return {lane0(q.re), lane0(q.im)};
        }
    }
    return extendedElementInOwnMode(x.re, x.im, y.re, y.im);
}

// ---- The exact tiers' arithmetic: Dekker's products -------------------------------
// A factor split by Veltkamp's method into a head of 26 bits and a tail of
// 27 (with its sign): the products of the halves of two factors are exact.
// The screen keeps |f| below 2^200, so f times the constant cannot
// overflow, and above 2^-200, so the smallest half products stay normal.
constexpr double kVeltkamp53 = doubleFromBits(0x41A0000002000000);  // 2^27 + 1
struct Halves {
    F64x2 h, l;
};
inline Halves split(F64x2 f) {
    F64x2 t = f * splat(kVeltkamp53);
    F64x2 h = t - (t - f);
    return {h, f - h};
}
// p = f*g rounded, and its exact error.
struct Product {
    F64x2 p, e;
};
inline Product twoProduct(F64x2 f, Halves fs, F64x2 g, Halves gs) {
    F64x2 p = f * g;
    return {p, ((fs.h * gs.h - p) + fs.h * gs.l + fs.l * gs.h) + fs.l * gs.l};
}
// x + y as s and its exact error, whatever their order (Knuth's two-sum).
struct Sum {
    F64x2 s, e;
};
inline Sum twoSum(F64x2 x, F64x2 y) {
    F64x2 s = x + y;
    F64x2 v = s - x;
    return {s, (x - (s - v)) + (y - v)};
}
// f1*g1 + f2*g2 as hi + lo, within a few 2^-106 of the larger product.
struct Pair {
    F64x2 hi, lo;
};
inline Pair sumOfTwoProducts(Product p1, Product p2) {
    Sum s = twoSum(p1.p, p2.p);
    return {s.s, s.e + (p1.e + p2.e)};
}

// The quotient of the exact tiers on two lanes.  The numerators N and the
// divisor Q = c^2 + d^2 as hi + lo pairs; q0 = Nh * (1/Qh) is within an ulp
// or two of Nh/Qh, so q0*Qh lies within a few ulps of Nh and Nh - q0*Qh is
// exact; with the product's own error the remainder N - q0 Q is known to a
// few 2^-106 of N, and q0 + remainder/Qh is the quotient to a few 2^-100.
inline Parts<F64x2> exactQuotient(F64x2 a, F64x2 b, F64x2 c, F64x2 d) {
    Halves as = split(a), bs = split(b), cs = split(c), ds = split(d);
    Product ac = twoProduct(a, as, c, cs), bd = twoProduct(b, bs, d, ds);
    Product bc = twoProduct(b, bs, c, cs), ad = twoProduct(a, as, d, ds);
    Pair nRe = sumOfTwoProducts(ac, bd);
    Pair nIm = sumOfTwoProducts(bc, {ad.p * splat(kMinusOne), ad.e * splat(kMinusOne)});
    Pair q = sumOfTwoProducts(twoProduct(c, cs, c, cs), twoProduct(d, ds, d, ds));
    Halves qs = split(q.hi);
    F64x2 r = splat(1.0) / q.hi;
    auto divide = [&](Pair n) {
        F64x2 q0 = n.hi * r;
        Product m = twoProduct(q0, split(q0), q.hi, qs);
        F64x2 remainder = ((n.hi - m.p) - m.e) + (n.lo - q0 * q.lo);
        return q0 + remainder * r;
    };
    return {divide(nRe), divide(nIm)};
}

bool block53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst) {
    Two64 v = loadTwo(src1, src2);
    Parts<F64x2> q = exactQuotient(v.a, v.b, v.c, v.d);
    int rejected = rangeScreen<false>(highWords(v.x0, v.x1), kLow53, kSpan53) |
                   rangeScreen<false>(highWords(v.y0, v.y1), kLow53, kSpan53);
    if (rejected) return false;
    storeTwo(dst, q.re, q.im);
    return true;
}

Orv64fc element53(Orv64fc x, Orv64fc y) {
    if (inRange<false>(highWord(x.re), kLow53, kSpan53) && inRange<false>(highWord(x.im), kLow53, kSpan53) &&
        inRange<false>(highWord(y.re), kLow53, kSpan53) && inRange<false>(highWord(y.im), kLow53, kSpan53)) {
        Parts<F64x2> q = exactQuotient(splat(x.re), splat(x.im), splat(y.re), splat(y.im));
        return {lane0(q.re), lane0(q.im)};
    }
    return extendedElement(x.re, x.im, y.re, y.im);
}

// ---- Members ------------------------------------------------------------------------------

// Rounds of N with WholeBlockFallback; an element is read whole before its
// result is stored, so dst may be a source.
template <int N, FpModes kGuard, class C, class Block, class Element>
inline OrvStatus divide(const C* src1, const C* src2, C* dst, int32_t len, Block block, Element element) {
    return lengthFirstFrame<kGuard>({src1, src2, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<N>(
            len, [&](int32_t i) { return block(src1 + i, src2 + i, dst + i); },
            [&](int32_t i) { dst[i] = element(src1[i], src2[i]); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsDiv_32fc_A11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len) {
    return divide<4, kGuardNearestKeepDaz>(src1, src2, dst, len, block11, element11);
}
ORV_EXPORT OrvStatus orvsDiv_32fc_A21(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len) {
    return divide<4, kGuardX87Double>(src1, src2, dst, len, block21, element21);
}
ORV_EXPORT OrvStatus orvsDiv_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsDiv_32fc_A21")));
ORV_EXPORT OrvStatus orvsDiv_64fc_A26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len) {
    return divide<2, kGuardNearestKeepDaz>(src1, src2, dst, len, block26, element26);
}
ORV_EXPORT OrvStatus orvsDiv_64fc_A50(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len) {
    return divide<2, kGuardX87Extended>(src1, src2, dst, len, block53, element53);
}
ORV_EXPORT OrvStatus orvsDiv_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsDiv_64fc_A50")));

#else
#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// Where the plain tiers hold their tier: boxes in which neither component's
// two products come within a factor of 16 of cancelling (|a| at least 64
// times |b|, |c| and |d| within a factor of 4), so that each component keeps
// all but a few bits of its roundings.  Under closer cancellation A11 and
// A26 lose a component's bits as the plain formula does, by design; the
// family tests pin that.  The second box mirrors the signs, the third moves
// the magnitudes far apart.
const Box kApart{Interval{64, 1e3}, Interval{-1, 1}, Interval{1, 4}, Interval{-4, -1}};
const Box kApartMirrored{Interval{-1e3, -64}, Interval{-1, 1}, Interval{-4, -1}, Interval{1, 4}};
const Box kApartWide32{Interval{0x1p46, 0x1p50}, Interval{-0x1p40, 0x1p40}, Interval{0x1p-50, 0x1p-48},
                       Interval{-0x1p-48, -0x1p-50}};
const Box kApartWide64{Interval{0x1p500, 0x1p510}, Interval{-0x1p494, 0x1p494}, Interval{0x1p-600, 0x1p-598},
                       Interval{-0x1p-598, -0x1p-600}};
// Close parts, where one numerator component cancels.
const Box kClose = repeated(Interval{1, 2}, 4);

}  // namespace

ORV_RECORDS(
    // Measured on 300000 inputs per box (ORVVM_ACCURACY_SAMPLES) besides the
    // special values, whose results are those of C99 Annex G.  A11 follows
    // the processor's rcpps: its record is the estimate's architectural
    // bound, 1.5 * 2^-12 relative, plus six roundings of 2^-24, which is
    // 6150 ulp or 11.41 correct bits; the worst input is the build machine's.
    // The widened 32fc tiers: four roundings of 2^-53 and one narrowing, 0.5
    // ulp plus 2^-27 at most.  A26: about six roundings of 2^-53.  The
    // exact tiers: 0.5 ulp plus a few 2^-100 relative in the block, plus
    // 2^-10 ulp in the x87 element form.
    {.member = "orvsDiv_32fc_A11",
     .maxUlp = 6150,
     .worst = {879.555237f, 0.401018739f, 1.14252436f, -2.56731653f},
     .ranges = {kApart, kApartMirrored, kApartWide32}},
    {.member = "orvsDiv_32fc_A21",
     .maxUlp = 0.5000001,
     .worst = {-0x1.c617c6p-112, -0x1.fff8ccp-83, 0x1.2c368ap-20, 0x1.abcd9ap+9},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4), kClose}},
    {.member = "orvsDiv_32fc_A24",
     .maxUlp = 0.5000001,
     .worst = {0x1.e5f5ap+8, 0x1.805ea4p+8, -0x1.ea22ap+9, 0x1.575f24p+9},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4), kClose},
     .sameAs = "orvsDiv_32fc_A21"},
    {.member = "orvsDiv_64fc_A26",
     .maxUlp = 3.59,
     .worst = {552.81982003562268, 0.71750085319416579, 3.8519212380829817, -1.3453085885874128},
     .ranges = {kApart, kApartMirrored, kApartWide64}},
    {.member = "orvsDiv_64fc_A50",
     .maxUlp = 0.5008,
     .worst = {4.0646209057021462e+121, 4.8326375854201484e+286, -5.4171737738582076e-136, -1.3823938385224111e+246},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4), kClose}},
    {.member = "orvsDiv_64fc_A53",
     .maxUlp = 0.5008,
     .worst = {1.5193680335919686e-25, -5.0800689483121106e+42, 1.8302109020428919e+68, 6.6517320024374648e-168},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4), kClose},
     .sameAs = "orvsDiv_64fc_A50"})
}  // namespace orv
#endif
