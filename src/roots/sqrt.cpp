// Sqrt (real): sqrt(x) by multiplications only, from a reciprocal square
// root seed (rsqrt_seed.h).  sqrt(x) = x * (1/sqrt(x)), so every tier is a
// refined seed y times x; no member divides or uses the hardware root in
// its block.
//
// binary32, seed y0 = rsqrtps(x) (12 bits), result screen on t = x*y0:
//   A11  t = x*y0: the seed itself.                         rounds of 8
//   A21  (y0*t - 3) * (t * -0.5): one Newton step.          rounds of 16
//   A24  split form: y = y0 cut to 9 bits, so y*y is exact; x split into
//        a 9-bit head xh and the exact rest xl; e = (xh*y*y - 1) + xl*y*y
//        (the large product first, the small one added to the difference);
//        three series terms; ((p*y)*x + xl*y) + xh*y, the exact xh*y last.
//                                                           rounds of 8
//   Zero lanes force y to 0, so a zero passes with its sign; rsqrtps gives
//   NaN for negatives and +infinity for denormals, which make t non-finite
//   and send the round to the ElementPath.
//
// binary64, the integer-built seed y (21 bits), e = x*y*y - 1 with y*y
// exact, screen on the argument (positive normal high word):
//   A26  (y + p*y) * x, two series terms: the dropped terms of the series
//        limit it to about 34 correct bits.                 rounds of 8
//   A50  the same with four terms; three roundings after the series.
//                                                           rounds of 8
//   A53  x split at its low word (xh*y exact), five terms,
//        ((p*y)*x + xl*y) + xh*y; its largest errors are on denormal
//        arguments.                                         rounds of 4
// The maximum of each member, and where it lies, is in its record.
//
// The binary32 maxima are over all 2^32 arguments against the root in
// binary64; the binary64 ones over 14 million arguments (every binade,
// binade edges, denormals, the top and bottom binades) against MPFR.
//
// Special values (ElementPath): +-0 give themselves; a negative argument or
// -infinity gives the default NaN and orvStatusDomain; +infinity gives
// itself; a NaN comes back quiet.  A positive denormal is scaled into the
// normal range first (binary32: x * 2^26, result * 2^-13; binary64: seed
// and e from x * 2^54, the final products with x itself, result * 2^27).
// Rounds that fail the screen go whole to the ElementPath; so does the
// tail.  PointersFirstFrame, guard nearest.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "roots/rsqrt_seed.h"

namespace orv {
namespace {

using namespace roots;

// ---- binary32 ---------------------------------------------------------------
constexpr uint32_t kLargestFinite32 = 0x7F7FFFFF;
constexpr uint32_t kShort32 = 0xFFFF8000;                       // keeps 9 significant bits
constexpr float kThree = floatFromBits(0x40400000);             // 3.0
constexpr float kMinusHalf = floatFromBits(0xBF000000);         // -0.5
constexpr float kDenormalScale32 = floatFromBits(0x4C800000);   // 2^26
constexpr float kDenormalUnscale32 = floatFromBits(0x39000000); // 2^-13
constexpr uint32_t kDefaultNaN32 = 0xFFC00000;

#ifndef ORVVM_RECORDS
// A block result and the value t that its screen tests.
struct Root32 {
    F32x4 result;
    F32x4 t;
};

// Fails the lanes whose t is infinite or NaN.
inline int resultScreen32(F32x4 t) {
    return signMask32(cmpGt32(bitsOf(t) & splat32(kAbs32), splat32(kLargestFinite32)));
}

// The seed, with zero lanes forced to 0 so that t = x*y is a zero of the
// sign of x instead of 0 * infinity.
inline F32x4 seedOrZero(F32x4 x, F32x4 y0) { return andNot(y0, cmpEq(x, zeroF32x4())); }

Root32 sqrtA11(F32x4 x) {
    F32x4 t = x * seedOrZero(x, rsqrt(x));
    return {t, t};
}

// One Newton step on the root: r = t * (3 - y0*t) / 2 with t = x*y0 removes
// the seed's first-order error, leaving about 1.5 * err^2 + 2 roundings.
Root32 sqrtA21(F32x4 x) {
    F32x4 y0 = seedOrZero(x, rsqrt(x));
    F32x4 t = x * y0;
    return {(y0 * t - splat(kThree)) * (t * splat(kMinusHalf)), t};
}

// The split form.  y has 9 bits and y*y 18, so q is exact (also when it is
// a denormal, for x near the top of the range: its 18 bits still fit); xh
// has 9 bits, so xh*y is exact; xl = x - xh is exact.  e carries one
// rounding (xh*q near 1), and the result adds the corrections before the
// exact leading term t.  The sign of x is or-ed in for the zeros.
[[gnu::always_inline]] inline Root32 sqrtA24(F32x4 x) {
    F32x4 y = seedOrZero(x, rsqrt(x) & splatBits32(kShort32));
    F32x4 xh = x & splatBits32(kShort32);
    F32x4 xl = x - xh;
    F32x4 t = xh * y;
    F32x4 q = y * y;
    F32x4 e = (xh * q - splat(1.0f)) + xl * q;
    F32x4 p = series3(e);
    F32x4 r = ((p * y) * x + xl * y) + t;
    return {r | (x & splatBits32(kSign32)), t};
}

template <Root32 (*Kernel)(F32x4)>
float sqrtElement32(float x, StatusVar& status) {
    uint32_t b = bitsOf(x);
    if (passesPositiveNormal32(b)) return lane0(Kernel(splat(x)).result) * 1.0f;
    if ((b & kAbs32) == 0) return x;                      // +-0
    if ((b & kAbs32) > kInfinity32) return x * 1.0f;       // NaN, made quiet
    if (b & kSign32) {                                    // negative, -infinity
        status.write(orvStatusDomain);
        return floatFromBits(kDefaultNaN32);
    }
    if (b == kInfinity32) return x;                        // +infinity
    // Positive denormal: the root of x * 2^26, times 2^-13, both exact.
    return lane0(Kernel(splat(x * kDenormalScale32)).result) * kDenormalUnscale32;
}

template <int N, Root32 (*Kernel)(F32x4)>
OrvStatus sqrt32(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<N>(
            len,
            [&](int32_t i) {
                Root32 r[N / 4];
                int fail = 0;
                for (int k = 0; k < N / 4; ++k) {
                    r[k] = Kernel(load(src + i + 4 * k));
                    fail |= resultScreen32(r[k].t);
                }
                if (fail) return false;
                for (int k = 0; k < N / 4; ++k) store(dst + i + 4 * k, r[k].result);
                return true;
            },
            [&](int32_t i) { dst[i] = sqrtElement32<Kernel>(src[i], status); });
    });
}

// ---- binary64 ---------------------------------------------------------------
constexpr uint64_t kDefaultNaN64 = 0xFFF8000000000000;

// A 64-bit tier: xe is the argument of the seed and of e, x the argument of
// the final products, y the seed of xe.  They differ only for a denormal x,
// where xe = x * 2^54 and the result comes out 2^-27 too small.
using Kernel64 = F64x2 (*)(F64x2 xe, F64x2 x, F64x2 y);

[[gnu::always_inline]] inline F64x2 sqrtA26(F64x2 xe, F64x2 x, F64x2 y) {
    F64x2 p = series2(xe * (y * y) - splat(1.0));
    return (y + p * y) * x;
}
[[gnu::always_inline]] inline F64x2 sqrtA50(F64x2 xe, F64x2 x, F64x2 y) {
    F64x2 p = series4(xe * (y * y) - splat(1.0));
    return (y + p * y) * x;
}
// The split: xh*y is exact (21 bits by 21), and so is xl*y for a denormal
// x, whose low word is all it has below the head.  e = (xh*y*y - 1) +
// xl*y*y rounds once in its large part; the result adds the small terms
// first and the exact xh*y last.
[[gnu::always_inline]] inline F64x2 sqrtA53(F64x2 xe, F64x2 x, F64x2 y) {
    F64x2 q = y * y;
    F64x2 xeh = headOf(xe);
    F64x2 e = (xeh * q - splat(1.0)) + (xe - xeh) * q;
    F64x2 p = series5(e);
    F64x2 xh = headOf(x);
    F64x2 xl = x - xh;
    return ((p * y) * x + xl * y) + xh * y;
}

template <Kernel64 K>
inline F64x2x2 evaluate64(F64x2x2 xe, F64x2x2 x) {
    F64x2x2 y = rsqrtSeed64(xe);
    return {K(xe.a, x.a, y.a), K(xe.b, x.b, y.b)};
}

template <Kernel64 K>
double sqrtElement64(double x, StatusVar& status) {
    uint64_t b = bitsOf(x);
    if (passesPositiveNormal64(highWord(x))) {
        F64x2x2 v{splat(x), splat(x)};
        return lane0(evaluate64<K>(v, v).a) * 1.0;
    }
    if ((b & kAbs64) == 0) return x;                          // +-0
    if ((b & kAbs64) > kInfinity64) return x * 1.0;    // NaN, made quiet
    if (b & kSign64) {                                        // negative, -infinity
        status.write(orvStatusDomain);
        return doubleFromBits(kDefaultNaN64);
    }
    if (b == kInfinity64) return x;                    // +infinity
    // Positive denormal: seed and e from x * 2^54, final products with x.
    F64x2x2 xe{splat(x * kDenormalScale64), splat(x * kDenormalScale64)};
    F64x2x2 v{splat(x), splat(x)};
    return lane0(evaluate64<K>(xe, v).a) * kDenormalUnscale64;
}

template <int N, Kernel64 K>
OrvStatus sqrt64(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<N>(
            len,
            [&](int32_t i) {
                F64x2x2 x[N / 4];
                int fail = 0;
                for (int k = 0; k < N / 4; ++k) {
                    x[k] = {load(src + i + 4 * k), load(src + i + 4 * k + 2)};
                    fail |= positiveNormalScreen(x[k].a, x[k].b);
                }
                if (fail) return false;
                for (int k = 0; k < N / 4; ++k) {
                    F64x2x2 r = evaluate64<K>(x[k], x[k]);
                    store(dst + i + 4 * k, r.a);
                    store(dst + i + 4 * k + 2, r.b);
                }
                return true;
            },
            [&](int32_t i) { dst[i] = sqrtElement64<K>(src[i], status); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsSqrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return sqrt32<8, sqrtA11>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsSqrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return sqrt32<16, sqrtA21>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsSqrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return sqrt32<8, sqrtA24>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsSqrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return sqrt64<8, sqrtA26>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsSqrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return sqrt64<8, sqrtA50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsSqrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return sqrt64<4, sqrtA53>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range, the rest of the positive line, and the values below
// the smallest normal.
std::vector<Box> ranges32() { return {Interval{0.0, 1e4}, Interval{1e4, FLT_MAX}, Interval{0.0, FLT_MIN}}; }
std::vector<Box> ranges64() { return {Interval{0.0, 1e4}, Interval{1e4, DBL_MAX}, Interval{0.0, DBL_MIN}}; }

}  // namespace

ORV_RECORDS(
    // A11 stops at the seed, whose bits differ between processor makers: its
    // record is the seed's architectural bound, a relative error of 1.5 * 2^-12
    // (6144 ulp just below a power of two), and its worst input the one of the
    // AMD machine of our runs, over all 2^32 inputs.
    {.member = "orvsSqrt_32f_A11",
     .maxUlp = 6145,
     .worst = {0x1.df2fe8p+127},
     .ranges = ranges32()},
    {.member = "orvsSqrt_32f_A21",
     .maxUlp = 3.27,
     .worst = {0x1.f720f4p-79},
     .ranges = ranges32()},
    {.member = "orvsSqrt_32f_A24",
     .maxUlp = 0.889,
     .worst = {0x1.360f2p-129},
     .ranges = ranges32()},
    {.member = "orvsSqrt_64f_A26",
     .maxUlp = 366077,
     .worst = {0x1.df2febd5414c7p-693},
     .ranges = ranges64()},
    {.member = "orvsSqrt_64f_A50",
     .maxUlp = 1.971,
     .worst = {0x1.fa4ca71e24c4fp+1023},
     .ranges = ranges64()},
    {.member = "orvsSqrt_64f_A53",
     .maxUlp = 0.604,
     .worst = {0x1.864c8b5848b35p+1023},
     .ranges = ranges64()}
)
}  // namespace orv
#endif
