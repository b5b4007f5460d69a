// Sin and Cos, real members on doubles: orvsSin_64f_A26, _A50, _A53 and
// orvsCos_64f_A26, _A50, _A53.
//
// Method.  x = k pi/32 + r, k = round(x 32/pi) by the shifter 1.5*2^52,
// whose low bits give the row j = k mod 64 of a table of the 64 angles
// a = j pi/32 (the cosine takes row j + 16), and
//   sin x = sin a cos r + cos a sin r.
//   A26: pi/32 in three parts, r alone with no low word, sin r and cos r
//        to degrees 5 and 4, rows of plain cos a and sin a
//        (kShortPhaseTable).  Runs in the frame with the x87 double guard.
//   A50, A53 (one computation): the arithmetic of the double sine kernel
//        (trig_kernels.cpp) with q = 0 and no tail: pi/32 in three parts
//        with a low word rl, degrees 9 and 8, rows {cosTail, sinHi, sinLo,
//        cosBase} with cosBase a power of two so cosBase r is exact, and
//        the rounding errors of the large sums recovered.  The rows come
//        from kSinPhaseTable and kCosPhaseTable, the kernel's rows with
//        positive zeros, the cosine's rotated a quarter turn.  The only
//        difference from the kernel is the order of the final sum of small
//        terms (here the large ones first).
//
// Screens, on the high word of |x|: A26 passes it up to 0x40F60000 (|x|
// below 90112.0625), A50 and A53 below 0x40F60000 (|x| below 90112).  A
// block of 4 with an element beyond goes whole to the ElementPath, which
// takes the double kernel for every finite element, in range or not.  So an
// element beside a rejected neighbour may get other bits than alone or in a
// passing block: up to A26's own error there, and by the other order of the
// last sum in A50 and A53 (measured in the records).  Tail elements repeat
// the block's arithmetic one at a time with the same screen.
//
// Special values: +-inf gives the default NaN 0xFFF8000000000000 (inf -
// inf), orvStatusDomain and the invalid flag; a NaN comes back quiet with no
// status; sin(-0) is +0 (the block adds a positive zero); a denormal x stays
// in the block and gives x, with no status.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/trig_tables.h"
#include "trig/trig_kernels.h"

namespace orv {
namespace {

// ---- Constants --------------------------------------------------------------

// Screens on the high word of |x|.
constexpr uint32_t kLimit26 = 0x40F60000;  // passes at and below: |x| < 90112.0625
constexpr uint32_t kLimit53 = 0x40F60000;  // passes below: |x| < 90112

constexpr uint64_t kRowMask = 63;
constexpr uint64_t kQuarterTurn = 16;

// A26: pi/32 in three parts, the first one pi/32 rounded for the sine (the
// short kernel's, trig_kernels.h); the cosine takes the kernel's parts.
using trig::kShortC1;
using trig::kShortC2;
using trig::kShortC3;
using trig::kShortS5;
using trig::kShortS3;
using trig::kShortC4;
using trig::kShortCos2;

using trig::kShifter52;
using trig::kThirtyTwoOverPi;

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// ---- Kernels ----------------------------------------------------------------

// Row indices of the two lanes: the low bits of the shifted sums.
inline uint64_t row0(F64x2 T) { return lane0of64(bitsOf(T)); }
inline uint64_t row1(F64x2 T) { return lane1of64(bitsOf(T)); }

// A26 on two lanes.
template <bool Cosine>
inline F64x2 kernel26(F64x2 x) {
    constexpr double c1 = Cosine ? trig::kPiBy32C1 : kShortC1;
    constexpr double c2 = Cosine ? trig::kPiBy32C2 : kShortC2;
    constexpr double c3 = Cosine ? trig::kPiBy32C3 : kShortC3;
    F64x2 T = x * splat(kThirtyTwoOverPi) + splat(kShifter52);
    F64x2 k = T - splat(kShifter52);
    F64x2 r = ((x - k * splat(c1)) - k * splat(c2)) - k * splat(c3);
    F64x2 z = r * r;
    F64x2 S = ((z * splat(kShortS5) + splat(kShortS3)) * z + splat(1.0)) * r;
    F64x2 C = (z * splat(kShortC4) + splat(kShortCos2)) * z + splat(1.0);
    const uint64_t turn = Cosine ? kQuarterTurn : 0;
    const auto& a = tables::kShortPhaseTable[(row0(T) + turn) & kRowMask];
    const auto& b = tables::kShortPhaseTable[(row1(T) + turn) & kRowMask];
    F64x2 rowA = load(&a.cosine), rowB = load(&b.cosine);
    F64x2 cosA = unpackLo(rowA, rowB), sinA = unpackHi(rowA, rowB);
    return C * sinA + S * cosA;
}

// A50 and A53 on two lanes: the kernel's steps with q = 0 and tail 0.
template <bool Cosine>
inline F64x2 kernel53(F64x2 x) {
    const tables::PhaseRow* table = Cosine ? tables::kCosPhaseTable : tables::kSinPhaseTable;
    F64x2 T = x * splat(kThirtyTwoOverPi) + splat(kShifter52);
    F64x2 k = T - splat(kShifter52);
    F64x2 u0 = x - k * splat(trig::kPiBy32C1);
    F64x2 r = u0 - k * splat(trig::kPiBy32C2);
    F64x2 rl = ((u0 - r) - k * splat(trig::kPiBy32C2)) - k * splat(trig::kPiBy32C3);
    F64x2 z = r * r;
    F64x2 Sp = (((splat(trig::kSinA9) * z + splat(trig::kSinA7)) * z + splat(trig::kSinA5)) * z +
                splat(trig::kSinA3)) * z * r;
    F64x2 Cp = (((splat(trig::kCosB8) * z + splat(trig::kCosB6)) * z + splat(trig::kCosB4)) * z +
                splat(trig::kCosB2)) * z;
    // Each row as two pairs: {cosTail, sinHi} and {sinLo, cosBase}.
    const tables::PhaseRow& a = table[row0(T) & kRowMask];
    const tables::PhaseRow& b = table[row1(T) & kRowMask];
    F64x2 a01 = load(&a.cosTail), b01 = load(&b.cosTail);
    F64x2 a23 = load(&a.sinLo), b23 = load(&b.sinLo);
    F64x2 cosTail = unpackLo(a01, b01), sinHi = unpackHi(a01, b01);
    F64x2 sinLo = unpackLo(a23, b23), cosBase = unpackHi(a23, b23);
    F64x2 c = cosTail + cosBase;
    F64x2 p1 = cosTail * r;
    F64x2 p2 = sinHi + cosBase * r;
    F64x2 hi = p1 + p2;
    F64x2 lo = ((((cosBase * r + (sinHi - p2)) + (rl * (c - r * sinHi) + sinLo)) + (p1 + (p2 - hi))) +
                Sp * c) + Cp * sinHi;
    return hi + lo;
}

// ---- Blocks and tails ----------------------------------------------------------

// Four elements in two vectors; the screen is one compare of their four
// high words, and nothing is stored unless all four pass.
template <F64x2 (*Kernel)(F64x2), uint32_t PassBelow>
inline bool block4(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    F64x2 y0 = Kernel(x0), y1 = Kernel(x1);
    if (magnitudeScreen(x0, x1, PassBelow) != 0) return false;
    store(dst, y0);
    store(dst + 2, y1);
    return true;
}

template <F64x2 (*Kernel)(F64x2), uint32_t PassBelow, double (*Double)(double)>
inline void loop4(const double* src, double* dst, int32_t len, StatusVar& status) {
    blockRounds<4>(
        len, [&](int32_t i) { return block4<Kernel, PassBelow>(src + i, dst + i); },
        [&](int32_t i) {
            for (int32_t j = i; j < i + 4; ++j) dst[j] = trig::element64<Double>(src[j], status);
        },
        [&](int32_t i) {
            double x = src[i];
            dst[i] = passesMagnitude(highWord(x), PassBelow) ? lane0(Kernel(splat(x)))
                                                             : trig::element64<Double>(x, status);
        });
}

}  // namespace
}  // namespace orv

using namespace orv;
using trig::cosKernel64;
using trig::sinKernel64;

ORV_EXPORT OrvStatus orvsSin_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar& status) {
        loop4<kernel26<false>, kLimit26 + 1, sinKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsSin_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop4<kernel53<false>, kLimit53, sinKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsSin_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsSin_64f_A53")));

ORV_EXPORT OrvStatus orvsCos_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar& status) {
        loop4<kernel26<true>, kLimit26 + 1, cosKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsCos_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop4<kernel53<true>, kLimit53, cosKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsCos_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsCos_64f_A53")));


#else
#include "frame/record.h"

namespace orv {
namespace {
constexpr double kOrdinary = doubleFromBits(uint64_t(kLimit53) << 32);  // 90112
constexpr const char* kRejectedBlock =
    "a block with an element beyond the screen, an infinity or a NaN goes whole to the double "
    "kernel, whose result may differ from the block's";
}  // namespace

// A26 measured on the harness's samples.  A50 and A53: their blocks measure
// 0.507 ulp at most; the maxima are the double kernels', over 6*10^6
// arguments of every exponent against MPFR (sin 0.5139, cos 0.5114).
// Position: the largest difference between the block's result and the
// kernel's over 2^22 ordinary inputs.
ORV_RECORDS(
    {.member = "orvsSin_64f_A26",
     .maxUlp = 1.64e7,
     .worst = {-85300.526757208587},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .exclusions = {excludePoint({80091.763348080422},
                                 "pi/32 rounded to a double as the first part of the reduction makes k C1 "
                                 "inexact: an absolute error up to 2^-53 |x|, below 26 correct bits where "
                                 "x lies within 2^-26 |x| of a multiple of pi")},
     .position = {kRejectedBlock, 2.19e10},
     .peerVectors = "sin"},
    {.member = "orvsSin_64f_A50",
     .maxUlp = 0.5139,
     .worst = {1.2540386458961794e+75},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1},
     .sameAs = "orvsSin_64f_A53",
     .peerVectors = "sin"},
    {.member = "orvsSin_64f_A53",
     .maxUlp = 0.5139,
     .worst = {1.2540386458961794e+75},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1},
     .peerVectors = "sin"},
    {.member = "orvsCos_64f_A26",
     .maxUlp = 249544,
     .worst = {-80052.44393875041},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 2.55e5},
     .peerVectors = "cos"},
    {.member = "orvsCos_64f_A50",
     .maxUlp = 0.5114,
     .worst = {-7.8675992749529382e+189},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1},
     .sameAs = "orvsCos_64f_A53",
     .peerVectors = "cos"},
    {.member = "orvsCos_64f_A53",
     .maxUlp = 0.5114,
     .worst = {-7.8675992749529382e+189},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1},
     .peerVectors = "cos"})
}  // namespace orv
#endif
