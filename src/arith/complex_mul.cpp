// Mul (complex) and MulByConj: with a + bi = src1[i] and c + di = src2[i],
//   Mul        dst[i] = (ac - bd) + (ad + bc)i
//   MulByConj  dst[i] = (ac + bd) + (bc - ad)i = src1[i] * conj(src2[i]).
// MulByConj is Mul with d negated: the products are the same up to sign, so
// every tier computes it by flipping the sign of d (an exclusive or, or the
// multiplier -1.0 in the exact tiers) and running Mul's arithmetic.
//
// Method.  The tiers differ in how much of the cancellation in a component
// they survive; one component of every product cancels when ac and bd (or
// ad and bc) are close with the signs that subtract them.
//   A11, A26  the plain formula in the element's precision.  A component
//             whose two products cancel keeps only what their roundings
//             left: it may lose all its bits.  Mul: (c, c) times (a, b) and
//             (d, d) times (b, a) joined by one add-subtract, two elements
//             per vector for 32fc (with a peel that aligns dst), one for
//             64fc.  MulByConj: the re and im parts of four elements
//             separated by shuffles, then ac + bd and bc - ad lane-wise.
//             Guard nearest, keeping the caller's denormals-are-zero.
//   32fc A21 = A24  each component widened exactly to binary64, where the
//             product of two binary32 values is exact; a*c + (-b)*d and
//             a*d + b*c are each one rounding, then one narrowing to
//             binary32.  So a component is within 0.5 ulp plus the double
//             rounding (2^-29 ulp), whatever the cancellation, and nothing
//             overflows or underflows before the narrowing.  Guard x87
//             double (the arithmetic itself is SSE binary64).
//   64fc A50 = A53  the exact rounding error of every product is folded
//             in.  Per component, with the two products p1 = f1*g1 and
//             p2 = f2*g2 (Mul re: a*c and (-b)*d; im: a*d and b*c):
//               1. order the two by magnitude with masks (no branch);
//               2. split each factor by truncation into h (26 bits), m (26
//                  bits) and l (the last bit or two): every product of two
//                  parts is exact, and e = (fh*gh - p) + (fh*gm + fm*gh) +
//                  (fh*gl + fm*gm + fl*gh) + (fm*gl + fl*gm) + fl*gl is the
//                  rounding error of p = f*g, up to roundings far below
//                  2^-100 of p;
//               3. s = pL + pS with its error err (fast two-sum, pL the
//                  larger), and the result s + ((err + eL) + eS).
//             The exact sum is pL + pS + eL + eS; what the last line loses
//             is the rounding of (err + eL) + eS, a few 2^-106 of |pL|, so
//             the result is within 0.5 ulp plus that (the records).
//             Guard x87 extended.
//
// Screen and element path of the exact tiers.  A half-round of two elements
// passes when every component's high word (sign cleared) lies in
// [0x21B00000, 0x5FE00000], magnitudes about 2^-484 to 2^511: every partial
// product then stays clear of overflow and, but for the two smallest parts,
// of underflow.  Zeros, denormals, infinities and NaN are rejected.  Each
// element of a rejected half takes the element form, chosen on the element:
//   - all four components in the same range (as 64-bit integers, magnitude
//     in [0x21B0000000000000, 0x5FE0000000000000)): the block's scheme on
//     lane 0, so the result is the block's;
//   - all four finite and nonzero: the same scheme in x87 extended
//     precision, whose exponent range holds every product of binary64
//     values; factors split by Veltkamp's method with 2^33 + 1, so their
//     parts' products are exact in the 64-bit significand, and the final
//     extended value rounded once to binary64;
//   - a zero, an infinity or a NaN among them: the plain formula in x87
//     extended, rounded once to binary64 (infinities give the plain
//     formula's result, which may be NaN, as a C loop would).
// The other tiers have no screen: their arithmetic is the same for every
// value.
//
// Every completed call returns orvStatusOk; overflow and underflow raise
// their flags through the arithmetic only.
#include "arith/exact_products.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

using namespace exact;

// ---- Constants ----------------------------------------------------------

// Sign of the im part of each complex pair: d's sign flip for MulByConj.
constexpr uint64_t kImSigns32 = 0x8000000000000000;  // (re, im) pair of binary32

// The exact tiers' half-round screen, on high words with the sign cleared:
// word - kExactScreenBias, as a signed integer, above kExactScreenSpan
// rejects; so words 0x21B00000 .. 0x5FE00000 pass.
constexpr uint32_t kExactScreenBias = 0xA1B00000;
constexpr uint32_t kExactScreenSpan = 0xBE300000;
// The element form's range test on whole magnitudes: |x| + kExactRangeBias
// below kExactRangeSpan (unsigned) is |x| in [2^-484, 2^511).
constexpr uint64_t kExactRangeBias = 0xDE50000000000000;
constexpr uint64_t kExactRangeSpan = 0x3E30000000000000;
constexpr uint64_t kExponent64 = 0x7FF0000000000000;

// ---- A11 and A26: the plain formula ---------------------------------------------

// (ac - bd, bc + ad) for each complex pair: x holds (a, b), y holds (c, d).
// The products keep x's part first, so where both factors are NaN the
// result is the first operand's NaN in every copy of this formula (GCC may
// otherwise swap the factors differently in the rounds and in the tail).
inline F32x4 plainProduct(F32x4 x, F32x4 y) {
    return addSub(mulOrdered(x, duplicateEven(y)), mulOrdered(swapPairs(x), duplicateOdd(y)));
}
inline F64x2 plainProduct(F64x2 x, F64x2 y) {
    return addSub(mulOrdered(x, unpackLo(y, y)), mulOrdered(swapLanes(x), unpackHi(y, y)));
}

// MulByConj on separated parts: (ac + bd, bc - ad), lane-wise.
template <class V>
struct Parts {
    V re, im;
};
template <class V>
inline Parts<V> plainConjProduct(V a, V b, V c, V d) {
    return {addOrdered(mulOrdered(a, c), mulOrdered(b, d)), mulOrdered(b, c) - mulOrdered(a, d)};
}

// 32fc Mul A11: the loop with a peel to align dst.  dst at 8 modulo 16 peels
// one element; at any other address not a multiple of 16, or with too few
// elements, every element takes the scalar form.  Rounds of 4 as two vectors
// of two elements, stores aligned, src1 read unaligned, src2 aligned or not
// by a choice made once.  The scalar form is the vector formula on one pair.
inline const float* reals(const Orv32fc* p) { return &p->re; }
inline float* reals(Orv32fc* p) { return &p->re; }
inline const double* reals(const Orv64fc* p) { return &p->re; }
inline double* reals(Orv64fc* p) { return &p->re; }

inline void plainElement32(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst) {
    storePair(reals(dst), plainProduct(loadPair(reals(src1)), loadPair(reals(src2))));
}

template <bool kSrc2Aligned>
inline void plainRounds32(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t from,
                          int32_t to) {
    for (int32_t i = from; i < to; i += 4)
        for (int g = 0; g < 4; g += 2) {
            F32x4 x = load(reals(src1 + i + g));
            F32x4 y = kSrc2Aligned ? loadAligned(reals(src2 + i + g)) : load(reals(src2 + i + g));
            storeAligned(reals(dst + i + g), plainProduct(x, y));
        }
}

inline void mulLoop11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len) {
    auto scalar = [&](int32_t from, int32_t to) {
        for (int32_t i = from; i < to; ++i) plainElement32(src1 + i, src2 + i, dst + i);
    };
    uintptr_t offset = reinterpret_cast<uintptr_t>(dst) % 16;
    int32_t peel = offset == 0 ? 0 : offset == 8 ? 1 : -1;
    if (peel < 0 || len < peel + 4) return scalar(0, len);
    int32_t v = len - ((len - peel) & 3);
    scalar(0, peel);
    if (reinterpret_cast<uintptr_t>(src2 + peel) % 16 == 0)
        plainRounds32<true>(src1, src2, dst, peel, v);
    else
        plainRounds32<false>(src1, src2, dst, peel, v);
    scalar(v, len);
}

// 64fc Mul A26: one element per round, no peel.
inline void mulLoop26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len) {
    for (int32_t i = 0; i < len; ++i)
        store(reals(dst + i), plainProduct(load(reals(src1 + i)), load(reals(src2 + i))));
}

// MulByConj A11: rounds of 8 as two halves of 4 elements; each half parts
// the re and im of its four elements, computes, and interleaves them back.
// The tail repeats the formula per element, on lane 0.
inline void conjHalf11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst) {
    F32x4 x0 = load(reals(src1)), x1 = load(reals(src1 + 2));
    F32x4 y0 = load(reals(src2)), y1 = load(reals(src2 + 2));
    Parts<F32x4> r = plainConjProduct(evenLanes(x0, x1), oddLanes(x0, x1), evenLanes(y0, y1), oddLanes(y0, y1));
    store(reals(dst), unpackLo(r.re, r.im));
    store(reals(dst + 2), unpackHi(r.re, r.im));
}
// MulByConj A26: rounds of 4 as two halves of 2 elements.
inline void conjHalf26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst) {
    F64x2 x0 = load(reals(src1)), x1 = load(reals(src1 + 1));
    F64x2 y0 = load(reals(src2)), y1 = load(reals(src2 + 1));
    Parts<F64x2> r = plainConjProduct(unpackLo(x0, x1), unpackHi(x0, x1), unpackLo(y0, y1), unpackHi(y0, y1));
    store(reals(dst), unpackLo(r.re, r.im));
    store(reals(dst + 1), unpackHi(r.re, r.im));
}

template <class C>
inline void conjElementPlain(const C* src1, const C* src2, C* dst) {
    auto r = plainConjProduct(splat(src1->re), splat(src1->im), splat(src2->re), splat(src2->im));
    C out{lane0(r.re), lane0(r.im)};
    *dst = out;
}

template <int kHalf, class C, class Half>
inline void conjLoop(const C* src1, const C* src2, C* dst, int32_t len, Half half) {
    int32_t i = 0;
    for (; i <= len - 2 * kHalf; i += 2 * kHalf) {
        half(src1 + i, src2 + i, dst + i);
        half(src1 + i + kHalf, src2 + i + kHalf, dst + i + kHalf);
    }
    for (; i < len; ++i) conjElementPlain(src1 + i, src2 + i, dst + i);
}

// ---- 32fc A21 = A24: binary64 products ----------------------------------------

// Four elements: each (a, b) and (c, d) widened to binary64, the plain
// formula there (its products exact), and the four results narrowed once.
template <bool kConj>
inline void widenedRound(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst) {
    const F32x4 flip = kConj ? asF32x4(splat64(kImSigns32)) : zeroF32x4();
    for (int g = 0; g < 4; g += 2) {
        F32x4 x = load(reals(src1 + g)), y = load(reals(src2 + g)) ^ flip;
        F64x2 lo = plainProduct(widenLow(x), widenLow(y));
        F64x2 hi = plainProduct(widenHigh(x), widenHigh(y));
        store(reals(dst + g), narrow(lo, hi));
    }
}

// Rounds of 4; the tail is copied to a scratch pad (spare slots repeat the
// first remaining element), runs as one round, and only real elements are
// stored.
template <int N, class C, class Round>
inline void roundsWithPad(const C* src1, const C* src2, C* dst, int32_t len, Round round) {
    int32_t i = 0;
    for (; i <= len - N; i += N) round(src1 + i, src2 + i, dst + i);
    int32_t rest = len - i;
    if (rest == 0) return;
    alignas(16) C a[N], b[N], out[N];
    for (int k = 0; k < N; ++k) {
        a[k] = src1[i + (k < rest ? k : 0)];
        b[k] = src2[i + (k < rest ? k : 0)];
    }
    round(a, b, out);
    for (int k = 0; k < rest; ++k) dst[i + k] = out[k];
}

// ---- 64fc A50 = A53: exact products -----------------------------------------

// (a + bi)(c + di) on separated parts; MulByConj passes d times -1.0.
inline Parts<F64x2> exactProduct(F64x2 a, F64x2 b, F64x2 c, F64x2 d) {
    F64x2 minusB = b * splat(kMinusOne);
    return {exactComponent(a, c, minusB, d), exactComponent(a, d, b, c)};
}

// Mask of the high words (four components of two elements) that fail.
inline int exactScreen(I32x4 highWords4) {
    I32x4 shifted = sub32(highWords4 & splat32(kAbs32), splat32(kExactScreenBias));
    return signMask32(cmpGt32(shifted, splat32(kExactScreenSpan)));
}

inline bool inExactRange(double x) { return (bitsOf(x) & kAbs64) + kExactRangeBias < kExactRangeSpan; }
inline bool finiteNonzero(double x) {
    return (bitsOf(x) & kAbs64) != 0 && (bitsOf(x) & kExponent64) != kExponent64;
}

// The element form of the exact tiers, on one element (d already negated
// for MulByConj).
inline Orv64fc exactElement(double a, double b, double c, double d) {
    if (inExactRange(a) && inExactRange(b) && inExactRange(c) && inExactRange(d)) {
        Parts<F64x2> r = exactProduct(splat(a), splat(b), splat(c), splat(d));
        return {lane0(r.re), lane0(r.im)};
    }
    if (finiteNonzero(a) && finiteNonzero(b) && finiteNonzero(c) && finiteNonzero(d))
        return {roundToDouble(extendedSumOfProducts(a, c, -b, d)),
                roundToDouble(extendedSumOfProducts(a, d, b, c))};
    Extended xa = extend(a), xb = extend(b), xc = extend(c), xd = extend(d);
    return {roundToDouble(xa * xc - xb * xd), roundToDouble(xa * xd + xb * xc)};
}

// A half-round of two elements: all inputs read, both results computed and
// the screen's verdict taken before any store; a rejected half sends its
// two elements through the element form.
template <bool kConj>
inline void exactHalf(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst) {
    F64x2 x0 = load(reals(src1)), x1 = load(reals(src1 + 1));
    F64x2 y0 = load(reals(src2)), y1 = load(reals(src2 + 1));
    F64x2 d = unpackHi(y0, y1);
    if (kConj) d = d * splat(kMinusOne);
    Parts<F64x2> r = exactProduct(unpackLo(x0, x1), unpackHi(x0, x1), unpackLo(y0, y1), d);
    if ((exactScreen(highWords(x0, x1)) | exactScreen(highWords(y0, y1))) == 0) {
        store(reals(dst), unpackLo(r.re, r.im));
        store(reals(dst + 1), unpackHi(r.re, r.im));
        return;
    }
    for (int k = 0; k < 2; ++k) {
        Orv64fc x = src1[k], y = src2[k];
        dst[k] = exactElement(x.re, x.im, y.re, kConj ? lane0(splat(y.im) * splat(kMinusOne)) : y.im);
    }
}

template <bool kConj>
inline void exactRound(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst) {
    exactHalf<kConj>(src1, src2, dst);
    exactHalf<kConj>(src1 + 2, src2 + 2, dst + 2);
}

// ---- Members ----------------------------------------------------------------------

template <bool kConj>
inline OrvStatus widenedMember(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src1, src2, dst}, len, [&](StatusVar&) {
        roundsWithPad<4>(src1, src2, dst, len, widenedRound<kConj>);
    });
}

template <bool kConj>
inline OrvStatus exactMember(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src1, src2, dst}, len, [&](StatusVar&) {
        roundsWithPad<4>(src1, src2, dst, len, exactRound<kConj>);
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsMul_32fc_A11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardNearestKeepDaz>({src1, src2, dst}, len,
                                                  [&](StatusVar&) { mulLoop11(src1, src2, dst, len); });
}
ORV_EXPORT OrvStatus orvsMul_32fc_A21(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len) {
    return widenedMember<false>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsMul_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsMul_32fc_A21")));
ORV_EXPORT OrvStatus orvsMul_64fc_A26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardNearestKeepDaz>({src1, src2, dst}, len,
                                                  [&](StatusVar&) { mulLoop26(src1, src2, dst, len); });
}
ORV_EXPORT OrvStatus orvsMul_64fc_A50(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len) {
    return exactMember<false>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsMul_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsMul_64fc_A50")));

ORV_EXPORT OrvStatus orvsMulByConj_32fc_A11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst,
                                            int32_t len) {
    return lengthFirstFrame<kGuardNearestKeepDaz>({src1, src2, dst}, len, [&](StatusVar&) {
        conjLoop<4>(src1, src2, dst, len, conjHalf11);
    });
}
ORV_EXPORT OrvStatus orvsMulByConj_32fc_A21(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst,
                                            int32_t len) {
    return widenedMember<true>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsMulByConj_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst,
                                            int32_t len) __attribute__((alias("orvsMulByConj_32fc_A21")));
ORV_EXPORT OrvStatus orvsMulByConj_64fc_A26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst,
                                            int32_t len) {
    return lengthFirstFrame<kGuardNearestKeepDaz>({src1, src2, dst}, len, [&](StatusVar&) {
        conjLoop<2>(src1, src2, dst, len, conjHalf26);
    });
}
ORV_EXPORT OrvStatus orvsMulByConj_64fc_A50(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst,
                                            int32_t len) {
    return exactMember<true>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsMulByConj_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst,
                                            int32_t len) __attribute__((alias("orvsMulByConj_64fc_A50")));

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
// Close parts, where one component of every product cancels.
const Box kClose = repeated(Interval{1, 2}, 4);

}  // namespace

ORV_RECORDS(
    // Measured on 300000 inputs per box (ORVVM_ACCURACY_SAMPLES) besides the
    // special values.  The widened 32fc tiers round a binary64 sum of exact
    // products to binary32: 0.5 ulp plus the double rounding, at most 2^-29
    // ulp.  The exact 64fc tiers: 0.5 ulp plus the lost roundings of the
    // tails, largest at results near the subnormal range.
    {.member = "orvsMul_32fc_A11",
     .maxUlp = 1.46,
     .worst = {164.031448f, -0.896149218f, 1.57754755f, -3.64528131f},
     .ranges = {kApart, kApartMirrored, kApartWide32}},
    {.member = "orvsMul_32fc_A21",
     .maxUlp = 0.5000001,
     .worst = {0x1.5dcf3p-81, -0x1.ba4bc2p-34, -0x1.8e111cp-82, -0x1.bbc42p-85},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4), kClose}},
    {.member = "orvsMul_32fc_A24",
     .maxUlp = 0.5000001,
     .worst = {0x1.08p+8, 0x1.fbb13cp+8, -0x1.56cedep+9, -0x1.745036p+6},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4), kClose},
     .sameAs = "orvsMul_32fc_A21"},
    {.member = "orvsMul_64fc_A26",
     .maxUlp = 1.49,
     .worst = {957.53429280650039, 0.9392689046805005, 3.0558345604362658, -2.1410746122805882},
     .ranges = {kApart, kApartMirrored, kApartWide64}},
    {.member = "orvsMul_64fc_A50",
     .maxUlp = 0.5003,
     .worst = {1.1157293229783459e-207, 1.655409291041763e-203, -7.0142965918507291e-280, 2.8191625671302334e-101},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4), kClose}},
    {.member = "orvsMul_64fc_A53",
     .maxUlp = 0.5003,
     .worst = {-1.1025161302678953e+151, 8.3748353094552096e-257, -8.4861881972604679e-173, 2.9208894110444995e-145},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4), kClose},
     .sameAs = "orvsMul_64fc_A50"},
    {.member = "orvsMulByConj_32fc_A11",
     .maxUlp = 1.48,
     .worst = {1.15566052e+14f, 1.07272667e+12f, 2.1802861e-15f, -2.91284932e-15f},
     .ranges = {kApart, kApartMirrored, kApartWide32}},
    {.member = "orvsMulByConj_32fc_A21",
     .maxUlp = 0.5000001,
     .worst = {0x1.7a1aacp+8, 0x1.8015eap+9, -0x1.6738c2p+9, 0x1.83f5d2p+9},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4), kClose}},
    {.member = "orvsMulByConj_32fc_A24",
     .maxUlp = 0.5000001,
     .worst = {-0x1.6590b6p-44, -0x1.79720cp-27, -0x1.aca09cp-98, -0x1.3e6746p-12},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4), kClose},
     .sameAs = "orvsMulByConj_32fc_A21"},
    {.member = "orvsMulByConj_64fc_A26",
     .maxUlp = 1.45,
     .worst = {285.59114702983226, -0.59385131485117304, 2.1635151209661103, -3.5862400954629243},
     .ranges = {kApart, kApartMirrored, kApartWide64}},
    {.member = "orvsMulByConj_64fc_A50",
     .maxUlp = 0.5003,
     .worst = {-1.2411744632193072e-113, -1.7778855946960484e-81, 3.6784356428414237e-65, 1.7842945082026293e-252},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4), kClose}},
    {.member = "orvsMulByConj_64fc_A53",
     .maxUlp = 0.5003,
     .worst = {0x1.b3b979285859bp-358, -0x1.1c82f32d0d71dp+638, -0x1.142cfa1885716p-289, 0x1.35e4b2dc9779dp+245},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4), kClose},
     .sameAs = "orvsMulByConj_64fc_A50"})
}  // namespace orv
#endif
