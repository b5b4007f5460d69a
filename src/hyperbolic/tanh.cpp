// Tanh, real members: dst[i] = tanh src[i] for orvsTanh_32f_A11/A21/A24 and
// orvsTanh_64f_A26/A50/A53.
//
// Method.  Not built on the exponential: tanh |x| is a piecewise polynomial
// whose row is picked straight from the high bits of x (the float's bits,
// or the double's high word): mask off the sign and the low fraction bits,
// subtract the base, clamp to [0, limit] and shift.  Row 0 covers |x| below
// the first interval (with c0 = 0, fitted for relative error), the last row
// everything from the top of the range (10 for 32f, 20 for 64f) on, where
// it is the constant 1.  The sign of x is ORed onto the value, so tanh is
// odd bit for bit and -0 gives -0.
//   32f tiers: x widened to double, the row's polynomial in a = |x| in
//        double (A11 degree 1 on 134 rows, A21 degree 3 on the same rows,
//        A24 degree 6 on 27 rows), one narrowing to float.  a above 10 is
//        replaced by 0 before the evaluation (the last row is 1 whatever a).
//   A26 = A50: degree 13 in t = a 1.0 - o about the row's centre o, 31 rows.
//   A53: degree 10 in t = a - o, 60 rows, with c0 = tanh o as a head and a
//        tail: w = t (c2 + ... + c10 t^8) by Horner, S = c1 + w with its
//        rounding error kept, S and t cut to 26-bit heads so that S t is
//        exact as a head product plus a correction, and head + S t summed
//        with its rounding error kept, the tail and the corrections last.
// There is no ElementPath and no warning: the block arithmetic covers
// every input.  A block holding an infinity or a NaN takes the masked form:
// an infinity gives 1.0 with the sign of x, a NaN comes back (widened and
// narrowed in 32f, which quiets it, with its sign and payload).  The tail
// runs the block's steps on a group of four with the missing lanes zero.
//
// Tiers, maximum error measured with MPFR by the accuracy test (the records
// at the end hold the figures and the worst inputs):
//   A11: 2730 ulp (12.6 correct bits), row 0's constant c1 against
//        tanh x / x just below a power of two.  A21: 1.006 ulp, the cubic's
//        2^-24.9 and the narrowing.  A24: 0.511 ulp.
//   A26 = A50: 1.35 ulp, the Horner sum's roundings near 0.5.
//   A53: 0.625 ulp; the fits reach 2^-55.9 relative.
//
// Tables: kTanhA11, kTanhA21, kTanhA24, kTanhA50, kTanhA53 of
// src/tables/tanh_tables.h, fitted with MPFR by gen_tanh_tables.cpp, which
// states the intervals, the fit and the error each tier's rows reached.
#include <cstring>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/tanh_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// Row selection: (bits & mask) - base, clamped to [0, limit], >> shift.
struct Rows {
    uint32_t mask, base, limit;
};
constexpr Rows kRows21{0x7FF80000, 0x3CF80000, 0x04280000};  // A11, A21: 4 fraction bits, 134 rows
constexpr int kShift21 = 19;
constexpr Rows kRows24{0x7FE00000, 0x3DE00000, 0x03400000};  // A24: 2 fraction bits, 27 rows
constexpr int kShift24 = 21;
constexpr Rows kRows50{0x7FFC0000, 0x3FBC0000, 0x00780000};  // A26, A50: high word, 2 bits, 31 rows
constexpr int kShift50 = 18;
constexpr Rows kRows53{0x7FFE0000, 0x3FBE0000, 0x00760000};  // A53: high word, 3 bits, 60 rows
constexpr int kShift53 = 17;

constexpr double kTop32 = 10.0;  // 32f: a above it is replaced by 0 (last row: 1)
constexpr uint32_t kInfinity32 = 0x7F800000;
constexpr uint32_t kInfinityHigh64 = 0x7FF00000;
constexpr uint64_t kInfinity64 = 0x7FF0000000000000;
constexpr uint64_t kHeadMask = 0xFFFFFFFFF8000000;  // 26-bit head of a double

#ifndef ORVVM_RECORDS
// ---- Row selection --------------------------------------------------------

template <int shift>
inline I32x4 rowIndex(I32x4 bits, Rows rows) {
    I32x4 d = sub32(bits & splat32(rows.mask), splat32(rows.base));
    d = andNot(d, sar32<31>(d));  // below the base: row 0
    d = select(cmpGt32(d, splat32(rows.limit)), splat32(rows.limit), d);
    return shr32<shift>(d);
}

// Coefficient k of two rows, as the lanes of one vector.
template <int W>
inline F64x2 coefficient(const double (*r0)[W], const double (*r1)[W], int k) {
    return setLanes((*r0)[k], (*r1)[k]);
}

// ---- Kernels on two lanes -------------------------------------------------

// Horner in u from c[degree] down to c[first], on the rows of two lanes.
template <int W>
inline F64x2 horner(const double (*r0)[W], const double (*r1)[W], F64x2 u, int degree, int first = 0) {
    F64x2 p = coefficient(r0, r1, degree);
    for (int k = degree - 1; k >= first; --k) p = p * u + coefficient(r0, r1, k);
    return p;
}

// TwoSum: s = a + b rounded and its exact rounding error.
struct Sum {
    F64x2 s, e;
};
inline Sum twoSum(F64x2 a, F64x2 b) {
    F64x2 s = a + b, bv = s - a, av = s - bv;
    return {s, (a - av) + (b - bv)};
}
inline F64x2 headOf(F64x2 v) { return v & splatBits64(kHeadMask); }

inline F64x2 poly50(const double (*r0)[16], const double (*r1)[16], F64x2 a) {
    F64x2 t = a * coefficient(r0, r1, 15) - coefficient(r0, r1, 14);
    return horner(r0, r1, t, 13);
}
inline F64x2 poly53(const double (*r0)[16], const double (*r1)[16], F64x2 a) {
    F64x2 t = a + coefficient(r0, r1, 12);
    F64x2 w = horner(r0, r1, t, 11, 3) * t;  // c10 .. c2 sit in slots 11 .. 3
    Sum s = twoSum(coefficient(r0, r1, 2), w);
    F64x2 sh = headOf(s.s), sl = s.s - sh;
    F64x2 th = headOf(t), tl = t - th;
    F64x2 e = s.e + sl;
    F64x2 ph = sh * th;  // 26 x 26 bits: exact
    F64x2 pl = (e * tl + tl * sh) + th * e;
    Sum r = twoSum(coefficient(r0, r1, 1), ph);
    return r.s + ((r.e + pl) + coefficient(r0, r1, 0));
}

inline F64x2 absOf(F64x2 x) { return andNot(x, splatBits64(kSign64)); }
inline F64x2 signOf(F64x2 x) { return x & splatBits64(kSign64); }

// The masked form: infinities give 1.0 with the sign of x, NaNs x.
inline F64x2 masked(F64x2 value, F64x2 x) {
    F64x2 isNaN = cmpUnord(x, x);
    F64x2 isInf = cmpEq(absOf(x), splatBits64(kInfinity64));
    F64x2 one = splat(1.0) | signOf(x);
    return select(isNaN, x, select(isInf, one, value));
}

// ---- Blocks of four -----------------------------------------------------------

template <int shift, int W, int degree>
inline F32x4 tanh32(F32x4 x, Rows rows, const double (*table)[W]) {
    alignas(16) uint32_t row[4];
    storeI(row, rowIndex<shift>(bitsOf(x), rows));
    F64x2 x01 = widenLow(x), x23 = widenHigh(x);
    auto half = [&](F64x2 xd, uint32_t i0, uint32_t i1) {
        F64x2 a = absOf(xd);
        a = andNot(a, cmpLt(splat(kTop32), a));
        return horner(&table[i0], &table[i1], a, degree) | signOf(xd);
    };
    F64x2 y01 = half(x01, row[0], row[1]), y23 = half(x23, row[2], row[3]);
    I32x4 special = cmpGt32(bitsOf(x) & splat32(kAbs32), splat32(kInfinity32 - 1));
    if (signMask32(special) != 0) {
        y01 = masked(y01, x01);
        y23 = masked(y23, x23);
    }
    return narrow(y01, y23);
}

template <int shift, F64x2 (*poly)(const double (*)[16], const double (*)[16], F64x2)>
inline void tanh64(F64x2& x01, F64x2& x23, Rows rows, const double (*table)[16]) {
    I32x4 high = highWords(x01, x23);
    alignas(16) uint32_t row[4];
    storeI(row, rowIndex<shift>(high, rows));
    F64x2 y01 = poly(&table[row[0]], &table[row[1]], absOf(x01)) | signOf(x01);
    F64x2 y23 = poly(&table[row[2]], &table[row[3]], absOf(x23)) | signOf(x23);
    I32x4 special = cmpGt32(high & splat32(kAbs32), splat32(kInfinityHigh64 - 1));
    if (signMask32(special) != 0) {
        y01 = masked(y01, x01);
        y23 = masked(y23, x23);
    }
    x01 = y01;
    x23 = y23;
}

// The loop: whole blocks of four, then the tail in one group with the
// missing lanes zero, of which only the existing lanes are stored.
template <class T, class Block>
inline void tanhLoop(const T* src, T* dst, int32_t len, Block&& block) {
    int32_t i = 0;
    for (; i <= len - 4; i += 4) block(src + i, dst + i);
    if (i < len) {
        T in[4] = {}, out[4];
        std::memcpy(in, src + i, sizeof(T) * size_t(len - i));
        block(in, out);
        std::memcpy(dst + i, out, sizeof(T) * size_t(len - i));
    }
}

template <int shift, int W, int degree>
inline void block32(const float* src, float* dst, Rows rows, const double (*table)[W]) {
    store(dst, tanh32<shift, W, degree>(load(src), rows, table));
}
template <int shift, F64x2 (*poly)(const double (*)[16], const double (*)[16], F64x2)>
inline void block64(const double* src, double* dst, Rows rows, const double (*table)[16]) {
    F64x2 x01 = load(src), x23 = load(src + 2);
    tanh64<shift, poly>(x01, x23, rows, table);
    store(dst, x01);
    store(dst + 2, x23);
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsTanh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        tanhLoop(src, dst, len, [](const float* s, float* d) {
            block32<kShift21, 2, 1>(s, d, kRows21, tables::kTanhA11);
        });
    });
}
ORV_EXPORT OrvStatus orvsTanh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        tanhLoop(src, dst, len, [](const float* s, float* d) {
            block32<kShift21, 4, 3>(s, d, kRows21, tables::kTanhA21);
        });
    });
}
ORV_EXPORT OrvStatus orvsTanh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        tanhLoop(src, dst, len, [](const float* s, float* d) {
            block32<kShift24, 8, 6>(s, d, kRows24, tables::kTanhA24);
        });
    });
}
// A26 and A50: one routine, one table.
ORV_EXPORT OrvStatus orvsTanh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        tanhLoop(src, dst, len, [](const double* s, double* d) {
            block64<kShift50, poly50>(s, d, kRows50, tables::kTanhA50);
        });
    });
}
ORV_EXPORT OrvStatus orvsTanh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return orvsTanh_64f_A26(src, dst, len);
}
ORV_EXPORT OrvStatus orvsTanh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        tanhLoop(src, dst, len, [](const double* s, double* d) {
            block64<kShift53, poly53>(s, d, kRows53, tables::kTanhA53);
        });
    });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

std::vector<Box> tanhRanges(double top) { return {symmetric(top), symmetric(0.125), symmetric(1.0), kFinite64}; }
std::vector<Box> tanhRanges32() { return {symmetric(kTop32), symmetric(0.125), symmetric(1.0), kFinite32}; }

}  // namespace

ORV_RECORDS(
    {.member = "orvsTanh_32f_A11", .maxUlp = 2730, .worst = {floatFromBits(0x86FFFCDC)}, .ranges = tanhRanges32()},
    {.member = "orvsTanh_32f_A21", .maxUlp = 1.006, .worst = {floatFromBits(0x40069F27)}, .ranges = tanhRanges32()},
    {.member = "orvsTanh_32f_A24", .maxUlp = 0.511, .worst = {floatFromBits(0x409AD9F8)}, .ranges = tanhRanges32()},
    {.member = "orvsTanh_64f_A26", .maxUlp = 1.35, .worst = {doubleFromBits(0xBFE0813040113FDE)}, .ranges = tanhRanges(20.0)},
    {.member = "orvsTanh_64f_A50", .maxUlp = 1.35, .worst = {doubleFromBits(0xBFE0813040113FDE)}, .ranges = tanhRanges(20.0), .sameAs = "orvsTanh_64f_A26"},
    {.member = "orvsTanh_64f_A53", .maxUlp = 0.625, .worst = {doubleFromBits(0x3FAF94F5D7542798)}, .ranges = tanhRanges(20.0)})
}  // namespace orv
#endif
