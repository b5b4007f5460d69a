// Atan, real members: dst[i] = arctan(src[i]) for orvsAtan_32f_A11/A21/A24
// and orvsAtan_64f_A26/A50/A53.
//
// Method.  The sign of x is taken off first and ORed back into the result
// last, so the arithmetic runs on a = |x| and the function is odd by
// construction.  Each tier maps a onto a short interval around 0 and adds
// back the arctangent of the point it reduced by:
//   A11, A21: two intervals.  Below 1, y = a; from 1 up, y = -1/a and
//        pi/2 is added (atan a = pi/2 - atan(1/a)).  The reciprocal comes
//        from rcpps alone (A11) or rcpps and one Newton step (A21), with the
//        sign carried so that the seed approximates -1/a directly.  Odd
//        polynomials in y of degree 9 (A11) and 17 (A21, leading 1.0), in
//        two chains on z = y^2 and w = z^2.
//   A24: four intervals on the pattern of a (limits 0.4375, 0.72, 2.29),
//        y = (a - c)/(1 + c a) for c = 0.53125 and 1, -1/a above 2.29, by
//        one division; atan c as a short hi and a lo; degree 11 in single,
//        summed from the small terms up: ((P + lo) + y) + hi.
//   64f: five intervals on the high word of a (limits 0.4375, 0.6875,
//        1.1875, 2.4375), centres 0, 0.5, 1, 1.5 and the reciprocal branch,
//        y = ((a AND B) - A)/(A a + (B AND 1)) by one division; the row is
//        chosen in integer registers.  A26: degree 11, (P y + y) + hi.
//        A50, A53: degree 23 and the low word of atan c,
//        ((P y + lo) + y) + hi.  A50 and A53 are one computation.
//
// Where the error comes from (the figures are in the records at the end):
// A11 from the 12-bit seed where |x| >= 1 and from c1 = 0.99997 below;
// A21 from the Newton step's 2^-22 and the float sums; A24 from the last
// two roundings of ((P + lo) + y) + hi; A26 from its degree-11 polynomial;
// A50 = A53 from the rounding of the quotient and of y + small before hi
// is added (the low word is not carried through the last sum).
//
// Special values come out of the ordinary arithmetic; there is no screen
// and no warning:
//   +-inf: the reciprocal branch with y = -0, pi/2 with the sign of x
//     (A21 needs care there: its Newton step would form 0 times infinity,
//     so a block holding an infinity is redone by atanElement32, which
//     returns pi/2 for it and the block's value for the others).
//   NaN: a quiet NaN with the sign of x ORed in.  +-0 and denormals: the
//     same value (y is a, P is 0).
// Every member runs its whole blocks and then the same arithmetic on each
// element of the tail, so a result depends on nothing but its element.
//
// Tables: kAtanIntervalRows of src/tables/atan_tables.h, made with MPFR by
// gen_atan_tables.cpp (atan of each centre, rounded to a double, and the
// rest).  The single-precision hi and lo pairs of A24 are sums chosen to
// give atan c to about 2^-33, with hi short so that y + hi loses little.
#include "frame/bits.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/atan_tables.h"

// ---- Constants ----------------------------------------------------------

namespace orv {
namespace atan_constants {

constexpr float kOne32 = 1.0f;
constexpr float kTwo32 = 2.0f;
constexpr uint32_t kPiOver2_32 = 0x3FC90FDB;  // 1.57079637, pi/2 rounded to a float
constexpr uint32_t kInf32 = 0x7F800000;

// A11: atan y ~ y (c1 + c3 z + c5 z^2 + c7 z^3 + c9 z^4) on |y| <= 1.
constexpr uint32_t kC1 = 0x3F7FFDE4;  // 0.999967813
constexpr uint32_t kC3 = 0xBEA9C8F7;  // -0.331611365
constexpr uint32_t kC5 = 0x3E3D1CD1;  // 0.184680238
constexpr uint32_t kC7 = 0xBDBA3A94;  // -0.0909320414
constexpr uint32_t kC9 = 0x3CBEDCD4;  // 0.0232986584

// A21: atan y ~ y (1 + d3 z + ... + d17 z^8) on |y| <= 1.
constexpr uint32_t kD3 = 0xBEAAAA53;
constexpr uint32_t kD5 = 0x3E4CB974;
constexpr uint32_t kD7 = 0xBE117200;
constexpr uint32_t kD9 = 0x3DD9ED24;
constexpr uint32_t kD11 = 0xBD99B01E;
constexpr uint32_t kD13 = 0x3D2EDD4E;
constexpr uint32_t kD15 = 0xBC83A25C;
constexpr uint32_t kD17 = 0x3B3AC537;

// A24: interval limits on the pattern of a, and the constants by interval.
constexpr uint32_t kLimit24Low = 0x3EE00000;   // 0.4375
constexpr uint32_t kLimit24Mid = 0x3F3851EC;   // 0.72
constexpr uint32_t kLimit24High = 0x40128F5C;  // 2.29
constexpr float kCentre24Low = 0.53125f;       // M1's centre; M2's is 1.0
constexpr uint32_t kHi24M1 = 0x3EF80000;  // 0.484375
constexpr uint32_t kLo24M1 = 0x3B81BA17;  // 0.00395895122; hi + lo = atan 0.53125
constexpr uint32_t kHi24M2 = 0x3F400000;  // 0.75
constexpr uint32_t kLo24M2 = 0x3D10FDAA;  // 0.0353981629; hi + lo = pi/4
constexpr uint32_t kHi24M3 = 0x3FC80000;  // 1.5625
constexpr uint32_t kLo24M3 = 0x3C07ED51;  // 0.00829632673; hi + lo = pi/2
// atan y - y ~ y (p3 z + ... + p11 z^5) on |y| <= 0.44.
constexpr uint32_t kP3 = 0xBEAAAAA1;
constexpr uint32_t kP5 = 0x3E4CC6DC;
constexpr uint32_t kP7 = 0xBE11B5D2;
constexpr uint32_t kP9 = 0x3DD6D79A;
constexpr uint32_t kP11 = 0xBD6E4E11;

// 64f: interval limits on the high word of a (a high word equal to a limit
// stays below it, whatever the low word).
constexpr uint32_t kLimit64[4] = {0x3FDC0000, 0x3FE60000, 0x3FF30000, 0x40038000};  // 0.4375 0.6875 1.1875 2.4375
// A26: atan y - y ~ y (e1 z + ... + e9 z^5).
constexpr uint64_t kE1 = 0xBFD555540DA51CB9;
constexpr uint64_t kE3 = 0x3FC998D8BCC8FE69;
constexpr uint64_t kE5 = 0xBFC23687C538BDA2;
constexpr uint64_t kE7 = 0x3FBAD831BD486D98;
constexpr uint64_t kE9 = 0xBFADBCA6813CEB52;
// A50, A53: atan y - y ~ y (g1 z + g3 z^2 + ... + g21 z^11).
constexpr uint64_t kG[11] = {0xBFD5555555555509, 0x3FC999999998E492, 0xBFC2492491FDFC9C,
                             0x3FBC71C6FD40E520, 0xBFB745CDAE905490, 0x3FB3B0F1459B9FD4,
                             0xBFB10D58403897A0, 0x3FADDD7216B6A1B8, 0xBFA9785816AC714D,
                             0x3FA2AD8F0C29B3CB, 0xBF90A0140B247B6E};

}  // namespace atan_constants
}  // namespace orv

#ifndef ORVVM_RECORDS

namespace orv {
namespace {

using namespace atan_constants;

inline F32x4 k32(uint32_t bits) { return splatBits32(bits); }
inline F64x2 k64(uint64_t bits) { return splatBits64(bits); }

// ---- Kernels --------------------------------------------------------------

// The sign bit of x, and a = |x|.
inline F32x4 signOf(F32x4 x) { return x & k32(kSign32); }
inline F64x2 signOf(F64x2 x) { return x & k64(kSign64); }

// A11 and A21 share the two intervals: below 1 (or NaN) y = a and base 0,
// from 1 up y = the approximate -1/a and base pi/2.
struct TwoIntervals {
    F32x4 y, base;
};
inline TwoIntervals twoIntervals(F32x4 a, F32x4 negRecip) {
    F32x4 reciprocalBranch = cmpLe(splat(kOne32), a);
    return {select(reciprocalBranch, negRecip, a), reciprocalBranch & k32(kPiOver2_32)};
}

inline F32x4 atan11(F32x4 x) {
    F32x4 s = signOf(x), a = x ^ s;
    TwoIntervals t = twoIntervals(a, rcp(a) | k32(kSign32));
    F32x4 z = t.y * t.y, w = z * z;
    F32x4 p = ((k32(kC9) * w + k32(kC5)) * w + k32(kC1)) + (k32(kC7) * w + k32(kC3)) * z;
    return (p * t.y + t.base) | s;
}

// r' = (r a - 2) r ~ -1/a: one Newton step on the seed, with the sign.
inline F32x4 atan21(F32x4 x) {
    F32x4 s = signOf(x), a = x ^ s;
    F32x4 r = rcp(a);
    TwoIntervals t = twoIntervals(a, (r * a - splat(kTwo32)) * r);
    F32x4 z = t.y * t.y, w = z * z;
    F32x4 p = ((((k32(kD17) * w + k32(kD13)) * w + k32(kD9)) * w + k32(kD5)) * w + splat(kOne32)) +
              (((k32(kD15) * w + k32(kD11)) * w + k32(kD7)) * w + k32(kD3)) * z;
    return (p * t.y + t.base) | s;
}
// A block holds an infinity when a lane's magnitude pattern is 0x7F800000.
inline int infinityLanes(F32x4 x) {
    return signMask32(cmpEq32(bitsOf(x) & splat32(kAbs32), splat32(kInf32)));
}

inline F32x4 atan24(F32x4 x) {
    F32x4 s = signOf(x), a = x ^ s;
    I32x4 bits = bitsOf(a);
    F32x4 above1 = asF32x4(cmpGt32(bits, splat32(kLimit24Low)));
    F32x4 above2 = asF32x4(cmpGt32(bits, splat32(kLimit24Mid)));
    F32x4 above3 = asF32x4(cmpGt32(bits, splat32(kLimit24High)));
    // M0: a/1; M1: (a - 0.53125)/(0.53125 a + 1); M2: (a - 1)/(a + 1); M3: -1/a.
    F32x4 centre = select(above2, splat(kOne32), above1 & splat(kCentre24Low));
    F32x4 num = select(above3, splat(-kOne32), a - centre);
    F32x4 den = select(above3, a, centre * a + splat(kOne32));
    F32x4 y = num / den;
    F32x4 hi = select(above3, k32(kHi24M3), select(above2, k32(kHi24M2), above1 & k32(kHi24M1)));
    F32x4 lo = select(above3, k32(kLo24M3), select(above2, k32(kLo24M2), above1 & k32(kLo24M1)));
    F32x4 z = y * y;
    F32x4 p = ((((k32(kP11) * z + k32(kP9)) * z + k32(kP7)) * z + k32(kP5)) * z + k32(kP3)) * z * y;
    return (((p + lo) + y) + hi) | s;
}

// 64f: the row of each lane, from its high word in an integer register:
// 4 minus one for every limit the word exceeds (the sign of limit - h).
inline uint32_t intervalRow(double a) {
    int32_t h = int32_t(highWord(a));
    int32_t row = 4;
    for (uint32_t limit : kLimit64) row += (int32_t(limit) - h) >> 31;
    return uint32_t(row);
}

struct Reduced64 {
    F64x2 y, hi, lo;
};
inline Reduced64 reduce64(F64x2 a) {
    using tables::kAtanIntervalRows;
    const auto& r0 = kAtanIntervalRows[intervalRow(lane0(a))];
    const auto& r1 = kAtanIntervalRows[intervalRow(lane1(a))];
    F64x2 centre = setLanes(r0.a, r1.a);
    F64x2 keep = asF64x2(setLanes64(r0.b, r1.b));
    // Row 0: (0 - 1)/(a + 0) = -1/a; rows 1-3: (a - A)/(A a + 1); row 4: a/1.
    F64x2 y = ((a & keep) - centre) / (centre * a + (keep & splat(1.0)));
    return {y, setLanes(r0.hi, r1.hi), setLanes(r0.lo, r1.lo)};
}

inline F64x2 atan26(F64x2 x) {
    F64x2 s = signOf(x), a = x ^ s;
    Reduced64 r = reduce64(a);
    F64x2 z = r.y * r.y, w = z * z;
    F64x2 p = ((k64(kE9) * w + k64(kE5)) * w + k64(kE1)) * z + (k64(kE7) * w + k64(kE3)) * w;
    return ((p * r.y + r.y) + r.hi) | s;
}

inline F64x2 atan53(F64x2 x) {
    F64x2 s = signOf(x), a = x ^ s;
    Reduced64 r = reduce64(a);
    F64x2 z = r.y * r.y, w = z * z;
    // Odd chain g1, g5, ..., g21 on z; even chain g3, g7, ..., g19 on w.
    F64x2 odd = k64(kG[10]), even = k64(kG[9]);
    for (int k = 8; k >= 0; k -= 2) odd = odd * w + k64(kG[k]);
    for (int k = 7; k >= 1; k -= 2) even = even * w + k64(kG[k]);
    F64x2 p = odd * z + even * w;
    return (((p * r.y + r.lo) + r.y) + r.hi) | s;
}

// ---- Element path ---------------------------------------------------------

// A21's element routine: the block's steps on one element, and pi/2 with
// the sign of x for an infinity.
inline float atanElement32(float x) {
    if ((bitsOf(x) & kAbs32) == kInf32) return floatFromBits(kPiOver2_32 | (bitsOf(x) & kSign32));
    return lane0(atan21(splat(x)));
}

// ---- Loops ------------------------------------------------------------------

// Every element of a round through the kernel, and the tail one element at
// a time through the same kernel.
template <F32x4 (*Kernel)(F32x4)>
inline void atanLoop32(const float* src, float* dst, int32_t len) {
    blockRounds<8>(
        len,
        [&](int32_t i) {
            F32x4 x0 = load(src + i), x1 = load(src + i + 4);
            store(dst + i, Kernel(x0));
            store(dst + i + 4, Kernel(x1));
            return true;
        },
        [](int32_t) {}, [&](int32_t i) { dst[i] = lane0(Kernel(splat(src[i]))); });
}

template <F64x2 (*Kernel)(F64x2)>
inline void atanLoop64(const double* src, double* dst, int32_t len) {
    blockRounds<4>(
        len,
        [&](int32_t i) {
            F64x2 x0 = load(src + i), x1 = load(src + i + 2);
            store(dst + i, Kernel(x0));
            store(dst + i + 2, Kernel(x1));
            return true;
        },
        [](int32_t) {}, [&](int32_t i) { dst[i] = lane0(Kernel(splat(src[i]))); });
}

// A21: a block that holds an infinity is redone element by element; the
// tail always goes through the element routine.
inline bool atanBlock21(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = atan21(x0), y1 = atan21(x1);
    if ((infinityLanes(x0) | infinityLanes(x1)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsAtan_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar&) { atanLoop32<atan11>(src, dst, len); });
}

ORV_EXPORT OrvStatus orvsAtan_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return atanBlock21(src + i, dst + i); },
            [&](int32_t i) { dst[i] = atanElement32(src[i]); });
    });
}

ORV_EXPORT OrvStatus orvsAtan_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar&) { atanLoop32<atan24>(src, dst, len); });
}

ORV_EXPORT OrvStatus orvsAtan_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar&) { atanLoop64<atan26>(src, dst, len); });
}

ORV_EXPORT OrvStatus orvsAtan_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar&) { atanLoop64<atan53>(src, dst, len); });
}

ORV_EXPORT OrvStatus orvsAtan_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar&) { atanLoop64<atan53>(src, dst, len); });
}

#else  // ORVVM_RECORDS

#include "frame/record.h"

namespace orv {
namespace {
using records::Interval;
// The ordinary range holds every interval of every tier; the whole line
// reaches the reciprocal branch far out.
constexpr Interval kOrdinary{-8.0, 8.0};
}  // namespace
ORV_RECORDS(
    {.member = "orvsAtan_32f_A11", .maxUlp = 2934.5, .worst = {0x1.31effep+0}, .ranges = {kOrdinary, kFinite32}},
    {.member = "orvsAtan_32f_A21", .maxUlp = 3.844, .worst = {0x1.05be5ap+0}, .ranges = {kOrdinary, kFinite32}},
    {.member = "orvsAtan_32f_A24", .maxUlp = 0.9517, .worst = {0x1.8c7706p+0}, .ranges = {kOrdinary, kFinite32}},
    {.member = "orvsAtan_64f_A26", .maxUlp = 9.66e6, .worst = {-0x1.bc52ee255c39p-3}, .ranges = {kOrdinary, kFinite64}},
    {.member = "orvsAtan_64f_A50", .maxUlp = 0.7563, .worst = {0x1.75c567212386cp+1}, .ranges = {kOrdinary, kFinite64},
     .sameAs = "orvsAtan_64f_A53"},
    {.member = "orvsAtan_64f_A53", .maxUlp = 0.7563, .worst = {0x1.75c567212386cp+1}, .ranges = {kOrdinary, kFinite64}})
}  // namespace orv

#endif  // ORVVM_RECORDS
