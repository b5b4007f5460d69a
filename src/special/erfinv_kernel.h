// The kernel shared by ErfInv, ErfcInv and CdfNormInv.
//
// All three inverses are s Q(w): w is the distance of the argument from the
// function's pole, in (0, 1], s a scale that carries the sign, and Q a
// smooth function of w that grows only like sqrt(-ln w) toward the pole:
//
//   ErfInv      w = 1 - |x|                     s = x       Q(w) = erfinv(1 - w) / (1 - w)
//   ErfcInv     w = x (x < 1), 2 - x (x >= 1)   s = x - 1   -Q(w)
//   CdfNormInv  w = 2p (p < 0.5), 2 - 2p        s = 2p - 1  sqrt(2) Q(w)
//
// Q is tabulated band by band, the bands picked from the exponent and the
// first mantissa bits of w: B bands per binade, so that the table spreads
// evenly over ln w and stays accurate right up to the pole.  The row of w
// is K - (bits(w) >> shift) (row 0 is the band just below w = 1), and the
// reduced argument is m = (the mantissa bits below the band bits, under the
// exponent of 1.0) - centre, centre = 1 + 1/(2B), so |m| <= 1/(2B).
//
//   A11, A21, A26, A50: Q = Horner of the row in m; result Q s.
//   A24, A53: Q as head h and tail u, the product with s in two parts,
//     with no Newton or Halley step: m splits into mh (m0 masked to 12 or
//     26 bits) and ml; the row's linear coefficient has a head C1 short
//     enough that C1 mh is exact, and constant and linear tails r0, r1
//     join the Horner sum A of the other coefficients.  ErfInv's w = 1 - |x|
//     is rounded: its exact tail t = (1 - w) - |x| enters m as t 2^-e.
//     The last product is h sh + (h sl + u s) with sh = s masked, exact in
//     its first term.  In ErfcInv and CdfNormInv, s = x - 1 (or 2p - 1) is
//     rounded below x = 1/2 (p = 1/4), by up to half an ulp of s, which
//     would cost up to one ulp of the result: its exact error
//     x - (s + 1) (Fast2Sum, |x| < 1) joins the small term as h times it.
//
// Lanes outside the screened range (below the table, poles, the domain's
// outside, NaN) are computed with their input masked to +0 and recomputed
// by the family's element rules afterwards; the mask of those lanes comes
// back from the kernel.  Below the table only ErfcInv and CdfNormInv have
// inputs left; they go to erfcInvTail / cdfNormInvTail, which work on
// r = 1 / sqrt(-ln y) (erfinv_tail.cpp).
//
// The rows: src/tables/erfinv_tables.h, fitted by
// src/tables/gen_erfinv_tables.cpp.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/erfinv_tables.h"

namespace orv::erfinv {

enum class Fn { ErfInv, ErfcInv, CdfNormInv };

// ---- Screens ----------------------------------------------------------------
// In range when limit > bits + add as signed numbers (the high word for
// doubles; ErfInv on the magnitude).  The addition wraps the lowest valid
// pattern to the most negative number, so one compare bounds both ends.
struct Screen {
    uint32_t add, limit;
};
template <Fn F>
constexpr Screen kScreen32 = F == Fn::ErfInv    ? Screen{0x4C800000, 0x8C000000}   // 2^-24 <= |x| < 1
                             : F == Fn::ErfcInv ? Screen{0x4C800000, 0x8C800000}   // 2^-24 <= x < 2
                                                : Screen{0x4D000000, 0x8C800000};  // 2^-25 <= p < 1
template <Fn F>
constexpr Screen kScreen64 = F == Fn::ErfInv    ? Screen{0x43600000, 0x83500000}   // 2^-53 <= |x| < 1
                             : F == Fn::ErfcInv ? Screen{0x43600000, 0x83600000}   // 2^-53 <= x < 2
                                                : Screen{0x43700000, 0x83600000};  // 2^-54 <= p < 1

inline bool inRange(uint32_t word, Screen s) { return int32_t(s.limit) > int32_t(word + s.add); }

// ---- Bands ------------------------------------------------------------------
struct Bands32 {
    uint32_t K;
    int shift;
    uint32_t mantissa;
    float centre;
};
struct Bands64 {
    uint64_t K;
    int shift;  // of the high word
    uint64_t mantissa;
    double centre;
};
constexpr Bands32 kBands11 = {0x7EF, 19, 0x0007FFFF, 1.03125f};  // 16 per binade
constexpr Bands32 kBands21 = {0x3F7, 20, 0x000FFFFF, 1.0625f};   // 8 per binade, A21 and A24
constexpr Bands64 kBands26 = {0x3FEF, 16, 0x0000FFFFFFFFFFFF, 1.03125};  // 16 per binade
constexpr Bands64 kBands50 = {0xFFB, 18, 0x0003FFFFFFFFFFFF, 1.125};     // 4 per binade, A50 and A53

// The heads of A24 and A53: 12 and 26 significant bits.
constexpr uint32_t kHeadMask24 = 0xFFFFF000;
constexpr uint64_t kHeadMask53 = 0xFFFFFFFFF8000000;
// 2^-e for w in the binade 2^e, by integer subtraction of w's exponent bits.
constexpr uint32_t kScaleBase32 = 0x7F000000, kExponentBits32 = 0x3F800000;
constexpr uint64_t kScaleBase64 = 0x7FE0000000000000, kExponentBits64 = 0x3FF0000000000000;
constexpr uint32_t kOne32 = 0x3F800000;
constexpr uint64_t kOne64 = 0x3FF0000000000000;

// Row layouts (widths in elements): polynomial rows c0 .. cn, and the split
// rows r0 .. rn, C0, C1.
template <int Degree, bool Split>
struct Layout {
    static constexpr int kDegree = Degree;
    static constexpr bool kSplit = Split;
    static constexpr int kWidth = Degree + 1 + (Split ? 2 : 0);
};

// ---- 32f --------------------------------------------------------------------

// Coefficient k of four rows, lane by lane.
template <int W>
inline void gather(const float* const (&row)[4], F32x4 (&c)[W]) {
    if constexpr (W % 4 == 0) {
        for (int k = 0; k < W; k += 4) {
            F32x4 a = load(row[0] + k), b = load(row[1] + k), d = load(row[2] + k), e = load(row[3] + k);
            transpose(a, b, d, e);
            c[k] = a, c[k + 1] = b, c[k + 2] = d, c[k + 3] = e;
        }
    } else {
        for (int k = 0; k < W; ++k) c[k] = setLanes(row[0][k], row[1][k], row[2][k], row[3][k]);
    }
}

// s Q(w) on four lanes; `fail` gets the mask of the lanes out of range.
template <Fn F, const Bands32& Bands, class L>
inline F32x4 kernel32(F32x4 x, const float* table, int& fail) {
    constexpr Screen screen = kScreen32<F>;
    I32x4 bits = bitsOf(x);
    I32x4 tested = F == Fn::ErfInv ? bits & splat32(kAbs32) : bits;
    I32x4 in = cmpGt32(splat32(screen.limit), add32(tested, splat32(screen.add)));
    fail = signMask32(in) ^ 0xF;
    F32x4 xs = x & asF32x4(in);
    F32x4 one = splat(1.0f), two = splat(2.0f);
    F32x4 a, w, s, sTail = zeroF32x4();
    if constexpr (F == Fn::ErfInv) {
        a = andNot(xs, splatBits32(kSign32));
        w = one - a;
        s = xs;
    } else if constexpr (F == Fn::ErfcInv) {
        w = select(cmpLt(xs, one), xs, two - xs);
        s = xs - one;
        if constexpr (L::kSplit) sTail = xs - (s + one);
    } else {
        F32x4 p2 = xs + xs;
        w = select(cmpLt(xs, splat(0.5f)), p2, two - p2);
        s = p2 - one;
        if constexpr (L::kSplit) sTail = p2 - (s + one);
    }
    // The row, 0 for lanes out of range and for w = 1 (x = 1 in ErfcInv, p = 1/2
    // in CdfNormInv), whose reduced argument is 0 too.
    I32x4 v = bitsOf(w);
    I32x4 index = sub32(splat32(Bands.K), shr32<Bands.shift>(v));
    I32x4 valid = andNot(in, sar32<31>(index));
    index = index & valid;
    F32x4 m0 = asF32x4((v & splat32(Bands.mantissa)) | splat32(kOne32)) - splat(Bands.centre);
    if constexpr (F != Fn::ErfInv) m0 = m0 & asF32x4(valid);
    alignas(16) uint32_t idx[4];
    storeI(idx, index);
    const float* row[4];
    for (int l = 0; l < 4; ++l) row[l] = table + idx[l] * L::kWidth;
    F32x4 c[L::kWidth];
    gather<L::kWidth>(row, c);
    F32x4 result;
    if constexpr (!L::kSplit) {
        F32x4 q = c[L::kDegree];
        for (int k = L::kDegree - 1; k >= 0; --k) q = q * m0 + c[k];
        result = q * s;
    } else {
        F32x4 m = m0;
        if constexpr (F == Fn::ErfInv) {
            F32x4 t = (one - w) - a;  // exact: w + t = 1 - |x|
            F32x4 scale = asF32x4(sub32(splat32(kScaleBase32), v & splat32(kExponentBits32)));
            m = m0 + t * scale;
        }
        F32x4 mask = splatBits32(kHeadMask24);
        F32x4 mh = m0 & mask, ml = m - mh;
        const F32x4 C0 = c[L::kDegree + 1], C1 = c[L::kDegree + 2];
        F32x4 A = c[L::kDegree];
        for (int k = L::kDegree - 1; k >= 0; --k) A = A * m + c[k];
        F32x4 ph = C1 * mh, pl = C1 * ml;
        F32x4 h = (((A + pl) + ph) + C0) & mask;
        F32x4 u = ((C0 - h) + ph) + (A + pl);
        F32x4 sh = s & mask, sl = s - sh;
        if constexpr (F == Fn::ErfInv)
            result = h * sh + (h * sl + u * s);
        else
            result = h * sh + (h * sl + (u * s + h * sTail));
    }
    // +0 at w = 1 whatever the sign of the table there.
    if constexpr (F != Fn::ErfInv) result = result & asF32x4(valid | andNot(splat32(~0u), in));
    return result;
}

// ---- 64f --------------------------------------------------------------------

template <int W>
inline void gather(const double* r0, const double* r1, F64x2 (&c)[W]) {
    int k = 0;
    for (; k + 1 < W; k += 2) {
        F64x2 a = load(r0 + k), b = load(r1 + k);
        c[k] = unpackLo(a, b);
        c[k + 1] = unpackHi(a, b);
    }
    if (k < W) c[k] = setLanes(r0[k], r1[k]);
}

template <Fn F, const Bands64& Bands, class L>
inline F64x2 kernel64(F64x2 x, const double* table, int& fail) {
    constexpr Screen screen = kScreen64<F>;
    I32x4 bits = bitsOf(x);
    I32x4 tested = F == Fn::ErfInv ? bits & splat64(kAbs64) : bits;
    I32x4 in = repeatHighWords(cmpGt32(splat32(screen.limit), add32(tested, splat32(screen.add))));
    fail = signMask64(in) ^ 0x3;
    F64x2 xs = x & asF64x2(in);
    F64x2 one = splat(1.0), two = splat(2.0);
    F64x2 a, w, s, sTail = zeroF64x2();
    if constexpr (F == Fn::ErfInv) {
        a = andNot(xs, splatBits64(kSign64));
        w = one - a;
        s = xs;
    } else if constexpr (F == Fn::ErfcInv) {
        w = select(cmpLt(xs, one), xs, two - xs);
        s = xs - one;
        if constexpr (L::kSplit) sTail = xs - (s + one);
    } else {
        F64x2 p2 = xs + xs;
        w = select(cmpLt(xs, splat(0.5)), p2, two - p2);
        s = p2 - one;
        if constexpr (L::kSplit) sTail = p2 - (s + one);
    }
    I32x4 v = bitsOf(w);
    I32x4 index = sub64(splat64(Bands.K), shr64<32 + Bands.shift>(v));
    I32x4 valid = andNot(in, repeatHighWords(sar32<31>(index)));
    index = index & valid;
    F64x2 m0 = asF64x2((v & splat64(Bands.mantissa)) | splat64(kOne64)) - splat(Bands.centre);
    if constexpr (F != Fn::ErfInv) m0 = m0 & asF64x2(valid);
    const double* r0 = table + lane0of64(index) * L::kWidth;
    const double* r1 = table + lane1of64(index) * L::kWidth;
    F64x2 c[L::kWidth];
    gather<L::kWidth>(r0, r1, c);
    F64x2 result;
    if constexpr (!L::kSplit) {
        F64x2 q = c[L::kDegree];
        for (int k = L::kDegree - 1; k >= 0; --k) q = q * m0 + c[k];
        result = q * s;
    } else {
        F64x2 m = m0;
        if constexpr (F == Fn::ErfInv) {
            F64x2 t = (one - w) - a;
            F64x2 scale = asF64x2(sub64(splat64(kScaleBase64), v & splat64(kExponentBits64)));
            m = m0 + t * scale;
        }
        F64x2 mask = splatBits64(kHeadMask53);
        F64x2 mh = m0 & mask, ml = m - mh;
        const F64x2 C0 = c[L::kDegree + 1], C1 = c[L::kDegree + 2];
        F64x2 A = c[L::kDegree];
        for (int k = L::kDegree - 1; k >= 0; --k) A = A * m + c[k];
        F64x2 ph = C1 * mh, pl = C1 * ml;
        F64x2 h = (C0 + ph) & mask;
        F64x2 u = (((C0 - h) + ph) + pl) + A;
        F64x2 sh = s & mask, sl = s - sh;
        if constexpr (F == Fn::ErfInv)
            result = h * sh + (h * sl + u * s);
        else
            result = h * sh + (h * sl + (u * s + h * sTail));
    }
    if constexpr (F != Fn::ErfInv) result = result & asF64x2(valid | andNot(splat32(~0u), in));
    return result;
}

// ---- Blocks -----------------------------------------------------------------
// N elements from `in` to `out`; the mask of the lanes out of range, bit k
// for element k.
template <int N, class Kernel>
inline unsigned block32(const float* in, float* out, Kernel&& kernel) {
    unsigned mask = 0;
    for (int g = 0; g < N; g += 4) {
        int fail;
        store(out + g, kernel(load(in + g), fail));
        mask |= unsigned(fail) << g;
    }
    return mask;
}
template <int N, class Kernel>
inline unsigned block64(const double* in, double* out, Kernel&& kernel) {
    unsigned mask = 0;
    for (int g = 0; g < N; g += 2) {
        int fail;
        store(out + g, kernel(load(in + g), fail));
        mask |= unsigned(fail) << g;
    }
    return mask;
}

// The kernel on one element, in lane 0: the element path's value for an
// element in range, bit for bit that of a block.
template <class Kernel>
inline float oneLane(float x, Kernel&& kernel) {
    int fail;
    return lane0(kernel(setLanes(x, 0.0f, 0.0f, 0.0f), fail));
}
template <class Kernel>
inline double oneLane(double x, Kernel&& kernel) {
    int fail;
    return lane0(kernel(setLanes(x, 0.0), fail));
}

// ---- The loops ----------------------------------------------------------------
// Every member of the three families: blocks of N through the kernel of F
// with band set B and row layout L, and each lane the block's screen fails
// through the family's element path, element(x, status, kernel).
template <Fn F, int N, const Bands32& B, class L, class Element>
inline OrvStatus loop32(const float* src, float* dst, int32_t len, const float* table, Element&& element) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar& status) {
        auto kernel = [table](F32x4 x, int& fail) { return kernel32<F, B, L>(x, table, fail); };
        laneFixup<N>(
            src, dst, len, [&](const float* in, float* out) { return block32<N>(in, out, kernel); },
            [&](float x) { return element(x, status, kernel); });
    });
}
template <Fn F, int N, const Bands64& B, class L, class Element>
inline OrvStatus loop64(const double* src, double* dst, int32_t len, const double* table, Element&& element) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar& status) {
        auto kernel = [table](F64x2 x, int& fail) { return kernel64<F, B, L>(x, table, fail); };
        laneFixup<N>(
            src, dst, len, [&](const double* in, double* out) { return block64<N>(in, out, kernel); },
            [&](double x) { return element(x, status, kernel); });
    });
}

// ---- Tails ------------------------------------------------------------------
// erfcinv(y) for 0 < y < 2^-53 (every y below ErfcInv's tables), and the
// normal quantile for 0 < p < 2^-54; in erfinv_tail.cpp.
double erfcInvTail(double y);
double cdfNormInvTail(double p);

}  // namespace orv::erfinv
