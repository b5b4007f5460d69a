// Sin and Cos, real members on floats: orvsSin_32f_A11, _A21, _A24 and
// orvsCos_32f_A11, _A21, _A24.
//
// Method.  No table: x = n pi + r with n = round(x/pi) by the shifter
// 1.5*2^23 (the lowest bit of the shifted sum is the parity of n), and
// sin x = (-1)^n sin r on |r| <= pi/2, the parity moved into the sign bit
// of r.  The cosine is the same sine a quarter turn on: n = round((x +
// pi/2)/pi) and x = (n - 1/2) pi + r, cos x = (-1)^n sin r.
//   A11: pi in 2 parts (Sin) or 3 (Cos), odd minimax polynomial of degree 7.
//   A21: pi in 4 parts, degree 9.
//   A24: n found in float and converted to an integer, the reduction and a
//        degree-9 polynomial in double (pi in two parts, the first with 33
//        significant bits), one rounding to float at the end.
// The polynomials are minimax fits for sin on [-pi/2, pi/2].
//
// Screens: |x| above 4000 (orvsSin_32f_A11) or above 10000 (the others)
// sends the block to the ElementPath, where every element, in range or
// not, takes the double kernel of trig_kernels.h rounded once to float.
// So an element in a block with a rejected neighbour may get other bits
// than alone or among ordinary neighbours: up to the block's own error in
// A11 and A21, one ulp in A24 (measured in the records).  The tail (the
// last len mod 8 elements; in A24 the last 1 to 16, as blocks run only
// while more than 16 elements remain) repeats the block's arithmetic one
// element at a time with the same screen, so a value gets the same bits
// alone as in a passing block.
//
// Tiers: each member meets its own over every float (the records below),
// but for one exception from the arithmetic as designed: orvsSin_32f_A11's
// two-part pi with its rounded second product leaves an absolute error
// growing with n in r, which next to n pi, where sin x is as small, leaves
// fewer than 11 bits; its record excludes that band.
//
// Special values: +-inf gives the default NaN 0xFFC00000, orvStatusDomain
// and the invalid flag; a NaN comes back quiet with no status.  sin(-0) is
// +0 in A11 and A21 (the block adds a positive zero), -0 in A24.  cos(0)
// comes from the polynomial at r = pi/2: 0x3F7FF60F in A11, not 1.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "trig/trig_kernels.h"

namespace orv {
namespace {

// ---- Constants --------------------------------------------------------------

// Screens: pass when the pattern of |x| is at or below the limit.
constexpr uint32_t kSinLimit11 = 0x457A0000;  // 4000.0
constexpr uint32_t kLimit = 0x461C4000;       // 10000.0

constexpr float kInvPi = floatFromBits(0x3EA2F983);      // 0.318309873
constexpr float kShifter23 = floatFromBits(0x4B400000);  // 1.5*2^23
constexpr float kHalfPi = floatFromBits(0x3FC90FDB);     // 1.57079637

// Parts of pi, in the order they are subtracted.  The first has 8
// significant bits, so n p1 is exact for the |n| < 2^15 the screens allow.
constexpr float kPiA = floatFromBits(0x40490000);  // 3.140625
constexpr float kSinPi11[] = {kPiA, floatFromBits(0x3A7DAA22)};
constexpr float kCosPi11[] = {kPiA, floatFromBits(0x3A7DA000), floatFromBits(0x34222169)};
constexpr float kPi21[] = {kPiA, floatFromBits(0x3A7DA000), floatFromBits(0x34222000),
                           floatFromBits(0x2CB4611A)};

// Odd minimax polynomials for sin r on [-pi/2, pi/2]: r + c3 r^3 + ...
constexpr float kC3_11 = floatFromBits(0xBE2AAAA6);
constexpr float kC5_11 = floatFromBits(0x3C08876A);
constexpr float kC7_11 = floatFromBits(0xB94FB7FF);
constexpr float kC3_21 = floatFromBits(0xBE2AAAA5);
constexpr float kC5_21 = floatFromBits(0x3C088773);
constexpr float kC7_21 = floatFromBits(0xB94FBAF1);
constexpr float kC9_21 = floatFromBits(0x362F0519);

// A24, in double: pi = -kNegPiHi + kPiLo, and sin r to degree 9.
constexpr double kNegPiHi = doubleFromBits(0xC00921FB54440000);  // -3.1415926535846666
constexpr double kPiLo = doubleFromBits(0x3D968C234C4C6629);     // 5.1266883031890378e-12
constexpr double kQ1 = doubleFromBits(0x3FF000000089705F);
constexpr double kQ3 = doubleFromBits(0xBFC55554AE8BA1BD);
constexpr double kQ5 = doubleFromBits(0x3F8110EE64CD0933);
constexpr double kQ7 = doubleFromBits(0xBF29F75E2C166F94);
constexpr double kQ9 = doubleFromBits(0x3EC5E0A329A17541);

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// ---- Screens ----------------------------------------------------------------

inline int failsScreen(F32x4 x, uint32_t limit) { return magnitudeScreen(x, limit + 1); }

// ---- Kernels ----------------------------------------------------------------

// The parity of n in the sign bit.
inline F32x4 paritySign(F32x4 shifted) { return asF32x4(shl32<31>(bitsOf(shifted))); }

template <size_t P>
inline F32x4 subtractParts(F32x4 x, F32x4 n, const float (&parts)[P]) {
    F32x4 r = x;
    for (float p : parts) r = r - n * splat(p);
    return r;
}

// A11 and A21 share the reduction; Cos starts a quarter turn on and
// reduces by n - 1/2.
template <bool Cosine, size_t P>
inline void reduceByPi(F32x4 x, const float (&parts)[P], F32x4& r, F32x4& sign) {
    F32x4 start = Cosine ? x + splat(kHalfPi) : x;
    F32x4 T = start * splat(kInvPi) + splat(kShifter23);
    F32x4 n = T - splat(kShifter23);
    if (Cosine) n = n - splat(0.5f);
    r = subtractParts(x, n, parts);
    sign = paritySign(T);
}

inline F32x4 sin11(F32x4 x) {
    F32x4 r, sign;
    reduceByPi<false>(x, kSinPi11, r, sign);
    F32x4 rs = r ^ sign, z = r * r;
    F32x4 P = (splat(kC7_11) * z + splat(kC5_11)) * z + splat(kC3_11);
    return P * (rs * z) + rs;
}

inline F32x4 cos11(F32x4 x) {
    F32x4 r, sign;
    reduceByPi<true>(x, kCosPi11, r, sign);
    F32x4 rs = r ^ sign, z = r * r;
    return (((splat(kC7_11) * z + splat(kC5_11)) * z + splat(kC3_11)) * z + splat(1.0f)) * rs;
}

template <bool Cosine>
inline F32x4 sinCos21(F32x4 x) {
    F32x4 r, sign;
    reduceByPi<Cosine>(x, kPi21, r, sign);
    F32x4 rs = r ^ sign, z = r * r;
    F32x4 P = ((splat(kC9_21) * z + splat(kC7_21)) * z + splat(kC5_21)) * z + splat(kC3_21);
    return (P * z) * rs + rs;
}

// A24 on two widened lanes: k = n (or n - 1/2) as a double.
inline F64x2 poly24(F64x2 xd, F64x2 k) {
    F64x2 r = (k * splat(kNegPiHi) + xd) - k * splat(kPiLo);
    F64x2 z = r * r;
    return ((((splat(kQ9) * z + splat(kQ7)) * z + splat(kQ5)) * z + splat(kQ3)) * z + splat(kQ1)) * r;
}

template <bool Cosine>
inline F32x4 sinCos24(F32x4 x) {
    F32x4 start = Cosine ? x + splat(kHalfPi) : x;
    I32x4 n = roundToInt32(start * splat(kInvPi));
    F64x2 kLo = int32LowToF64x2(n), kHi = int32HighToF64x2(n);
    if (Cosine) {
        kLo = kLo - splat(0.5);
        kHi = kHi - splat(0.5);
    }
    F32x4 y = narrow(poly24(widenLow(x), kLo), poly24(widenHigh(x), kHi));
    return y ^ asF32x4(shl32<31>(n));
}

// ---- Blocks and tails ----------------------------------------------------------

// Eight elements: all computed, then one screen for the block.
template <F32x4 (*Kernel)(F32x4), uint32_t Limit>
inline bool block8(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = Kernel(x0), y1 = Kernel(x1);
    if ((failsScreen(x0, Limit) | failsScreen(x1, Limit)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}

// Sixteen elements, with a hint to fetch the next 64 bytes of the source.
template <F32x4 (*Kernel)(F32x4)>
inline bool block16(const float* src, float* dst) {
    F32x4 x[4], y[4];
    for (int g = 0; g < 4; ++g) x[g] = load(src + 4 * g);
    prefetchNonTemporal(src + 16);
    int fails = 0;
    for (int g = 0; g < 4; ++g) {
        y[g] = Kernel(x[g]);
        fails |= failsScreen(x[g], kLimit);
    }
    if (fails != 0) return false;
    for (int g = 0; g < 4; ++g) store(dst + 4 * g, y[g]);
    return true;
}

// A tail element: the block's arithmetic on one lane, or the ElementPath
// if it fails the same screen.
template <F32x4 (*Kernel)(F32x4), uint32_t Limit, double (*Double)(double)>
inline float tail(float x, StatusVar& status) {
    if (passesMagnitude(bitsOf(x), Limit + 1)) return lane0(Kernel(splat(x)));
    return trig::element32<Double>(x, status);
}

// The loops.  A11 and A21: blocks of 8 up to the last multiple of 8.  A24:
// blocks of 16 while more than 16 elements remain, so the last 1 to 16 are
// always the tail.
template <F32x4 (*Kernel)(F32x4), uint32_t Limit, double (*Double)(double)>
inline void loop8(const float* src, float* dst, int32_t len, StatusVar& status) {
    blockRounds<8>(
        len, [&](int32_t i) { return block8<Kernel, Limit>(src + i, dst + i); },
        [&](int32_t i) {
            for (int32_t j = i; j < i + 8; ++j) dst[j] = trig::element32<Double>(src[j], status);
        },
        [&](int32_t i) { dst[i] = tail<Kernel, Limit, Double>(src[i], status); });
}

template <F32x4 (*Kernel)(F32x4), double (*Double)(double)>
inline void loop16(const float* src, float* dst, int32_t len, StatusVar& status) {
    auto element = [&](int32_t i) { dst[i] = tail<Kernel, kLimit, Double>(src[i], status); };
    // Rounds over the first len - 1 elements hold every block that leaves
    // more than 16 behind; the last element is always tail.
    blockRounds<16>(
        len - 1, [&](int32_t i) { return block16<Kernel>(src + i, dst + i); },
        [&](int32_t i) {
            for (int32_t j = i; j < i + 16; ++j) dst[j] = trig::element32<Double>(src[j], status);
        },
        element);
    element(len - 1);
}

}  // namespace
}  // namespace orv

using namespace orv;
using trig::cosKernel64;
using trig::sinKernel64;

ORV_EXPORT OrvStatus orvsSin_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop8<sin11, kSinLimit11, sinKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsSin_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop8<sinCos21<false>, kLimit, sinKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsSin_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop16<sinCos24<false>, sinKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsCos_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop8<cos11, kLimit, cosKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsCos_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop8<sinCos21<true>, kLimit, cosKernel64>(src, dst, len, status);
    });
}

ORV_EXPORT OrvStatus orvsCos_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        loop16<sinCos24<true>, cosKernel64>(src, dst, len, status);
    });
}


#else
#include <cmath>

#include "frame/record.h"

namespace orv {
namespace {
constexpr const char* kRejectedBlock =
    "a block with an element beyond the screen, an infinity or a NaN goes whole to the double "
    "kernel, whose result, rounded to float, may differ from the block's";

// orvsSin_32f_A11 reduces by pi in two float parts, kPiA + kSinPi11[1], and
// the product n kSinPi11[1] is rounded: the reduced r carries an absolute
// error up to n |pi - kPiA - kSinPi11[1]| + 2^-24 n kSinPi11[1].  Within
// 2^12 times that of n pi, where sin x is that small, fewer than 11 bits
// can be right (down to none, 2023.18567 being the worst).  One box of
// magnitudes for each n = 1 to 1273, 5202 floats in all: they hold all 940
// floats where the member measures below 11 bits.
std::vector<records::Exclusion> nearMultiplesOfPi11() {
    constexpr double kPi = 3.14159265358979323846;
    const double piError = kPi - double(kPiA) - double(kSinPi11[1]);
    std::vector<records::Exclusion> band;
    for (int n = 1; n * kPi <= double(floatFromBits(kSinLimit11)); ++n) {
        const double width = 4096 * (n * piError + std::ldexp(n * double(kSinPi11[1]), -24));
        band.push_back(records::excludeMagnitudes(
            {records::Interval{n * kPi - width, std::nextafter(n * kPi + width, INFINITY)}},
            "within 2^12 times the reduction's error of a multiple of pi, where |sin x| is as small"));
    }
    return band;
}
}  // namespace

// Measured over every float: in the block's range against sin and cos in
// double, beyond it the double kernel rounded once (within 0.51 ulp of a
// double).  Position: the block's largest error, and half an ulp, bounds
// the difference from the kernel's result.
ORV_RECORDS(
    {.member = "orvsSin_32f_A11",
     .maxUlp = 2551.11,
     .worst = {3903.4292f},
     .ranges = {symmetric(floatFromBits(kSinLimit11)), Interval{1e6, 1e20}, kFinite32},
     .exclusions = nearMultiplesOfPi11(),
     .position = {kRejectedBlock, 7.36e6},
     .peerVectors = "sin"},
    {.member = "orvsSin_32f_A21",
     .maxUlp = 2.474,
     .worst = {9201.47461f},
     .ranges = {symmetric(floatFromBits(kLimit)), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 3},
     .peerVectors = "sin"},
    {.member = "orvsSin_32f_A24",
     .maxUlp = 0.8011,
     .worst = {10.9488859f},
     .ranges = {symmetric(floatFromBits(kLimit)), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 1},
     .peerVectors = "sin"},
    {.member = "orvsCos_32f_A11",
     .maxUlp = 2563.99,
     .worst = {9720.08887f},
     .ranges = {symmetric(floatFromBits(kLimit)), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 2565},
     .peerVectors = "cos"},
    {.member = "orvsCos_32f_A21",
     .maxUlp = 2.402,
     .worst = {8986.77637f},
     .ranges = {symmetric(floatFromBits(kLimit)), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 3},
     .peerVectors = "cos"},
    {.member = "orvsCos_32f_A24",
     .maxUlp = 0.8012,
     .worst = {3.18800306f},
     .ranges = {symmetric(floatFromBits(kLimit)), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 1},
     .peerVectors = "cos"})
}  // namespace orv
#endif
