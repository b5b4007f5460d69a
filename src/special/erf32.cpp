// Erf, members on floats: dst[i] = erf(src[i]) for orvsErf_32f_A11,
// orvsErf_32f_A21 and orvsErf_32f_A24.
//
// Method.  erf is odd, so A21 and A24 work on |x| and OR the sign of x
// onto the result (-0 gives -0).  |x| picks a row of polynomial
// coefficients straight from its bits, with no branch: mask the bits to the
// exponent and the first mantissa bits, subtract a base one band below the
// first band, clamp the difference to [0, top] and shift it into the byte
// offset of the row.  Row 0 serves every |x| below the first band; the last
// row, reached at 4.0 and by every larger pattern, infinities and NaNs
// included, is the saturation row c0 = 1, all else 0, since erf(4) is
// within 2^-24 of 1.  |x| above 4 is masked to +0 before the polynomial, so
// that a zero coefficient times a huge |x| stays 0.  The polynomial runs in
// double on |x| widened, and one conversion to float rounds the result.
//   A21: cubic in |x|, 16 bands per binade from 2^-5 (114 rows).
//   A24: degree 6 in |x|, 4 bands per binade from 2^-3 (22 rows).
// A11 has no table: erf(x) = x p(x^2), p of degree 7 in single precision,
// and from |x| > 3 on the result is +-1 by a test on the bits.
//
// Tiers, largest error against MPFR (in ulps of the correctly rounded
// result): in the records at the end of the file.
//
// Special values.  +-inf gives +-1 and NaN the NaN quieted (through the
// conversion to double and back in A21, A24; through the polynomial in
// A11), by a selection table of masks: each block tests its elements for
// an exponent field of all ones and, if one has it, finishes all four
// results through the table.  No warning, ever.  Subnormal x gives about
// 2x/sqrt(pi) with the sign of x.
//
// Tables: kErfRows21 and kErfRows24 of src/tables/erf_tables.h, fitted by
// src/tables/gen_erf_tables.cpp.
#include <cstddef>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/erf_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// A11: erf(x) ~ x (k0 + k1 s + ... + k7 s^7), s = x^2, on |x| <= 3.
constexpr float kErf11[8] = {floatFromBits(0x3F906A96), floatFromBits(0xBEBFBD73), floatFromBits(0x3DDF6459),
                             floatFromBits(0xBCBF4D5E), floatFromBits(0x3B64AF55), floatFromBits(0xB9B15ECB),
                             floatFromBits(0x379E229C), floatFromBits(0xB4F3CA91)};
// a + kSaturationBias11 > kSaturationLimit11 (signed), a the sign-free bits:
// true exactly for 3 < |x| <= inf; a NaN wraps negative and fails.
constexpr uint32_t kSaturationBias11 = 0x007FFFFF;
constexpr uint32_t kSaturationLimit11 = 0x40BFFFFF;
constexpr float kPolynomialLimit11 = 3.0f;  // the last |x| of the polynomial
constexpr uint32_t kOne32 = 0x3F800000;

// A21 and A24: the rows' selection on the bits of x.  The mask keeps the
// exponent and 4 (A21) or 2 (A24) mantissa bits; the shift turns a band's
// step into the byte size of a row.
struct BandSelection {
    uint32_t mask, base, top;
};
constexpr BandSelection kBands21 = {0x7FF80000, 0x3CF80000, 0x03880000};
constexpr int kShift21 = 14;  // step 2^19 -> 32 bytes, rows of 4 doubles
constexpr BandSelection kBands24 = {0x7FE00000, 0x3DE00000, 0x02A00000};
constexpr int kShift24 = 15;  // step 2^21 -> 64 bytes, rows of 8 doubles
static_assert(sizeof tables::kErfRows21[0] == 32 && sizeof tables::kErfRows24[0] == 64);
static_assert((kBands21.top >> kShift21) / 32 == 113 && (kBands24.top >> kShift24) / 64 == 21,
              "the top gives the saturation row");

// Where erf is 1 to the float's precision; |x| above it is masked to +0.
constexpr float kSaturation32 = 4.0f;
constexpr uint32_t kInfinity32 = 0x7F800000;

// The selection table: a result is (value AND mask 0) OR (1.0 AND mask 1)
// OR (x AND mask 2), with the masks of the element's case, finite,
// infinite or NaN (in that order inside each group).
constexpr uint64_t kAll64 = ~uint64_t(0);
alignas(16) constexpr uint64_t kSelection[3][3] = {
    {kAll64, 0, 0},        // on the polynomial value
    {0, kAll64, 0},        // on 1.0
    {0, kSign64, kAll64},  // on x
};

#ifndef ORVVM_RECORDS

// ---- Kernels ----------------------------------------------------------------

// A11: four elements.
inline F32x4 erf11(F32x4 x) {
    F32x4 s = x * x;
    F32x4 p = splat(kErf11[7]);
    for (int k = 6; k >= 0; --k) p = p * s + splat(kErf11[k]);
    F32x4 r = p * x;
    I32x4 bits = bitsOf(x);
    I32x4 saturated = cmpGt32(add32(bits & splat32(kAbs32), splat32(kSaturationBias11)), splat32(kSaturationLimit11));
    F32x4 one = asF32x4(splat32(kOne32) | (bits & splat32(kSign32)));
    return select(asF32x4(saturated), one, r);
}

// Byte offsets of the four elements' rows: mask, subtract the base, a
// negative difference to 0, one above the top to the top, shift.
template <int Shift>
inline void rowOffsets(F32x4 x, const BandSelection& bands, uint32_t (&offset)[4]) {
    I32x4 d = sub32(bitsOf(x) & splat32(bands.mask), splat32(bands.base));
    d = andNot(d, sar32<31>(d));
    d = select(cmpGt32(d, splat32(bands.top)), splat32(bands.top), d);
    alignas(16) uint32_t lanes[4];
    storeI(lanes, shr32<Shift>(d));
    for (int l = 0; l < 4; ++l) offset[l] = lanes[l];
}

// Coefficient k and k+1 of two rows, side by side: (c_k of row a, of row
// b) and (c_k+1 of a, of b).
struct CoefficientPair {
    F64x2 k, next;
};
inline CoefficientPair coefficients(const double* a, const double* b, int k) {
    F64x2 ra = load(a + k), rb = load(b + k);
    return {unpackLo(ra, rb), unpackHi(ra, rb)};
}
template <class Row>
inline const double* rowAt(const Row* table, uint32_t byteOffset) {
    return reinterpret_cast<const double*>(reinterpret_cast<const char*>(table) + byteOffset);
}

// |x| with everything above the saturation point masked to +0 (a NaN
// keeps its bits), widened: the two halves of the block.
struct Widened {
    F64x2 lo, hi;
};
inline Widened polynomialArgument(F32x4 x, float saturation) {
    F32x4 a = andNot(x, splatBits32(kSign32));
    a = andNot(a, cmpLt(splat(saturation), a));
    return {widenLow(a), widenHigh(a)};
}

// The A21 sequence: a cubic row in |x| picked by the bits, then the sign.
// It reads its rows and limits from a table description, and so serves
// any odd function that saturates to 1 with rows of this layout (tanh on
// its own table is the same sequence).
struct CubicTable {
    const double (*rows)[4];
    BandSelection bands;
    float saturation;
};
constexpr CubicTable kErfTable21 = {tables::kErfRows21, kBands21, kSaturation32};

inline F64x2 cubicHalf(F64x2 t, const double* ra, const double* rb) {
    CoefficientPair c01 = coefficients(ra, rb, 0), c23 = coefficients(ra, rb, 2);
    return ((c23.next * t + c23.k) * t + c01.next) * t + c01.k;
}
inline Widened bandCubic21(F32x4 x, const CubicTable& table) {
    uint32_t offset[4];
    rowOffsets<kShift21>(x, table.bands, offset);
    Widened t = polynomialArgument(x, table.saturation);
    F64x2 lo = cubicHalf(t.lo, rowAt(table.rows, offset[0]), rowAt(table.rows, offset[1]));
    F64x2 hi = cubicHalf(t.hi, rowAt(table.rows, offset[2]), rowAt(table.rows, offset[3]));
    return {lo, hi};
}

// A24: degree 6 on rows of 8 doubles.
inline F64x2 sextic(F64x2 t, const double* ra, const double* rb) {
    CoefficientPair c01 = coefficients(ra, rb, 0), c23 = coefficients(ra, rb, 2),
                    c45 = coefficients(ra, rb, 4), c67 = coefficients(ra, rb, 6);
    F64x2 p = c67.k * t + c45.next;
    p = p * t + c45.k;
    p = p * t + c23.next;
    p = p * t + c23.k;
    p = p * t + c01.next;
    return p * t + c01.k;
}
inline Widened band24(F32x4 x) {
    uint32_t offset[4];
    rowOffsets<kShift24>(x, kBands24, offset);
    Widened t = polynomialArgument(x, kSaturation32);
    const auto* rows = tables::kErfRows24;
    return {sextic(t.lo, rowAt(rows, offset[0]), rowAt(rows, offset[1])),
            sextic(t.hi, rowAt(rows, offset[2]), rowAt(rows, offset[3]))};
}

// ---- Special elements ---------------------------------------------------

// Lanes with an exponent field of all ones (infinities and NaNs).
inline int nonFinite(F32x4 x) { return magnitudeScreen(x, kInfinity32); }

// The case of one element: 0 finite, 1 infinite, 2 NaN.
inline int caseOf(uint32_t bits) {
    uint32_t a = bits & kAbs32;
    return int(a >= kInfinity32) + int(a > kInfinity32);
}
inline F64x2 selectHalf(F64x2 value, F64x2 x, int caseA, int caseB) {
    auto masks = [&](int group) { return asF64x2(setLanes64(kSelection[group][caseA], kSelection[group][caseB])); };
    return (value & masks(0)) | (splat(1.0) & masks(1)) | (x & masks(2));
}

// The sign of x ORed onto the polynomial values, the twin's selection
// where asked, and one rounding to float.
inline F32x4 finish(F32x4 x, Widened p, bool select) {
    F64x2 xlo = widenLow(x), xhi = widenHigh(x);
    F64x2 sign = splatBits64(kSign64);
    F64x2 lo = p.lo | (xlo & sign), hi = p.hi | (xhi & sign);
    if (select) {
        alignas(16) uint32_t bits[4];
        storeI(bits, bitsOf(x));
        lo = selectHalf(lo, xlo, caseOf(bits[0]), caseOf(bits[1]));
        hi = selectHalf(hi, xhi, caseOf(bits[2]), caseOf(bits[3]));
    }
    return narrow(lo, hi);
}

// ---- Blocks -----------------------------------------------------------------

// Eight elements of A11, with no special case.
inline void erfBlock11(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    store(dst, erf11(x0));
    store(dst + 4, erf11(x1));
}

// Four elements of A21 or A24; a block that holds an infinity or a NaN
// goes on in the twin, which finishes it through the selection table.
template <class Kernel>
inline void erfBlock(const float* src, float* dst, Kernel&& kernel) {
    F32x4 x = load(src);
    Widened p = kernel(x);
    if (nonFinite(x) != 0) {
        store(dst, finish(x, p, true));
        return;
    }
    store(dst, finish(x, p, false));
}
// The tail: the same arithmetic on one element, always through the table.
template <class Kernel>
inline float erfElement(float x, Kernel&& kernel) {
    F32x4 v = setLanes(x, 0.0f, 0.0f, 0.0f);
    return lane0(finish(v, kernel(v), true));
}

inline Widened kernel21(F32x4 x) { return bandCubic21(x, kErfTable21); }
inline Widened kernel24(F32x4 x) { return band24(x); }

// Blocks never reject: the twin is part of the block.
template <int N, class Block, class Tail>
inline void allBlocks(int32_t len, Block&& block, Tail&& tail) {
    blockRounds<N>(
        len, [&](int32_t i) { block(i); return true; }, [](int32_t) {}, tail);
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsErf_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        allBlocks<8>(
            len, [&](int32_t i) { erfBlock11(src + i, dst + i); },
            [&](int32_t i) { dst[i] = lane0(erf11(setLanes(src[i], 0.0f, 0.0f, 0.0f))); });
    });
}

ORV_EXPORT OrvStatus orvsErf_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        allBlocks<4>(
            len, [&](int32_t i) { erfBlock(src + i, dst + i, kernel21); },
            [&](int32_t i) { dst[i] = erfElement(src[i], kernel21); });
    });
}

ORV_EXPORT OrvStatus orvsErf_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        allBlocks<4>(
            len, [&](int32_t i) { erfBlock(src + i, dst + i, kernel24); },
            [&](int32_t i) { dst[i] = erfElement(src[i], kernel24); });
    });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
}  // namespace

// Measured over all 2^32 inputs.
ORV_RECORDS(
    {.member = "orvsErf_32f_A11",
     .maxUlp = 1970.06,
     .worst = {2.9415252208709717},
     .ranges = {symmetric(kPolynomialLimit11), kFinite32}},
    {.member = "orvsErf_32f_A21",
     .maxUlp = 1.493,
     .worst = {2.0000140666961670},
     .ranges = {symmetric(kSaturation32), kFinite32}},
    {.member = "orvsErf_32f_A24",
     .maxUlp = 0.516,
     .worst = {2.0253143310546875},
     .ranges = {symmetric(kSaturation32), kFinite32}})
}  // namespace orv
#endif
