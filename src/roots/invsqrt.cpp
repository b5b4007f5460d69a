// InvSqrt (real): 1/sqrt(x) from the reciprocal square root seed
// (rsqrt_seed.h), refined by multiplications only.
//
// binary32, seed y0 = rsqrtps(x) (12 bits):
//   A11  y0.
//   A21  (-0.5*y0) * (x*y0*y0 - 3): one Newton step.
//   A24  y = y0 cut to 9 bits, so y*y is exact and e = x*y*y - 1 rounds
//        once; three series terms; y + p*y.
// binary64, the integer-built seed y (21 bits), e = x*y*y - 1, y*y exact:
//   A26 = A50  four series terms, y + p*y: one computation, two names.
//   A53        e from x split at its low word, e = (xh*y*y - 1) + xl*y*y
//              (the head's product near 1 first, the tail's added to the
//              exact difference); five terms; y + p*y.
//
// The maxima (in the records) of binary32 are over all 2^32 arguments
// against 1/sqrt in binary64; the binary64 ones over 14 million arguments
// (every binade, binade edges, denormals, the top and bottom binades)
// against MPFR.
//
// Paths.
// A11 and A21 work in groups of 4, two to a round of 8 (PairedGroups).  Their screen,
// int32(bits + 0x7F800000) <= int32(0xFEFFF001), passes 0x00800000 to
// 0x7F7FF001: positive normals short of the top of the range.  The first
// group of a round is stored before the verdict; its inputs stay in a
// register, so a rejected group is recomputed from them even when dst is
// src.  After the rounds one more group takes 4 elements if 4 remain, and
// the last 1 to 3 are padded with 3.0 to a group of 4 and go the same way,
// only the real lanes being stored.  A rejected group is recomputed whole
// by the group form: zero, denormal and negative lanes take x * 2^126 and
// give their result times 2^63 (exact for denormals); a zero becomes
// infinity of its sign, +infinity becomes +0, a negative lane keeps the
// NaN of rsqrtps.  Then its lanes, ascending, write 19 if negative, 18 if
// zero.
// A24 screens for positive normal arguments in rounds of 8.  A rejected
// round is computed by the slow route, sqrt(x)/x in binary64, narrowed
// (zeros made infinite, +infinity made +0), and then writes 18 for each
// zero lane and after that 19 for each negative lane: within a rejected
// round a negative element wins over a zero wherever it stands.  Tail
// elements take the block formula or the slow route one at a time.
// binary64: positive normal screen on the high word, rejected rounds and the
// tail through the ElementPath: +-0 give +-infinity and 18, a negative or
// -infinity the default NaN and 19, +infinity +0, NaN itself made quiet; a
// positive denormal takes seed and e from x * 2^54 and its result times
// 2^27.
// PointersFirstFrame, guard nearest.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "roots/rsqrt_seed.h"

namespace orv {
namespace {

using namespace roots;

// ---- binary32 ---------------------------------------------------------------
constexpr uint32_t kShort32 = 0xFFFF8000;                      // keeps 9 significant bits
constexpr float kThree = floatFromBits(0x40400000);            // 3.0, also the padding
constexpr float kMinusHalf = floatFromBits(0xBF000000);        // -0.5
constexpr uint32_t kGroupBias = 0x7F800000;
constexpr uint32_t kGroupLimit = 0xFEFFF001;
constexpr uint32_t kLargestDenormal32 = 0x007FFFFF;
constexpr float kGroupScale = floatFromBits(0x7E800000);       // 2^126
constexpr float kGroupUnscale = floatFromBits(0x5F000000);     // 2^63

#ifndef ORVVM_RECORDS
F32x4 invSqrtA11(F32x4 x) { return rsqrt(x); }

// Newton's step for 1/sqrt: y0 * (3 - x*y0^2) / 2.
F32x4 invSqrtA21(F32x4 x) {
    F32x4 y0 = rsqrt(x);
    return (splat(kMinusHalf) * y0) * ((x * y0) * y0 - splat(kThree));
}

F32x4 invSqrtA24(F32x4 x) {
    F32x4 y = rsqrt(x) & splatBits32(kShort32);
    F32x4 e = x * (y * y) - splat(1.0f);
    return y + series3(e) * y;
}

// Fails the lanes outside 0x00800000 .. 0x7F7FF001.
inline int groupScreen(F32x4 x) {
    return signMask32(cmpGt32(add32(bitsOf(x), splat32(kGroupBias)), splat32(kGroupLimit)));
}

// Lane masks of the two warnings: x < 0 (not -0, not NaN) and x == +-0.
inline int negativeLanes(F32x4 x) { return signMask(cmpLt(x, zeroF32x4())); }
inline int zeroLanes(F32x4 x) { return signMask(cmpEq(x, zeroF32x4())); }

// The group form of a rejected group.  Lanes with bits above the largest
// denormal as signed integers (positive normals, +infinity, positive NaN)
// run unscaled; the others are multiplied by 2^126, which brings every
// positive denormal into the normal range, and their result by 2^63.  The
// factor is 1.0 in the other lanes, so nothing there can overflow.
template <F32x4 (*Formula)(F32x4)>
F32x4 groupForm(F32x4 x) {
    F32x4 normal = asF32x4(cmpGt32(bitsOf(x), splat32(kLargestDenormal32)));
    F32x4 xs = x * select(normal, splat(1.0f), splat(kGroupScale));
    F32x4 r = Formula(xs) * select(normal, splat(1.0f), splat(kGroupUnscale));
    F32x4 infinity = splatBits32(kInfinity32);
    r = select(cmpEq(xs, zeroF32x4()), (x & splatBits32(kSign32)) | infinity, r);
    return andNot(r, cmpEq(xs, infinity));
}

template <F32x4 (*Formula)(F32x4)>
void rejectedGroup(F32x4 x, float* out, StatusVar& status) {
    store(out, groupForm<Formula>(x));
    int negative = negativeLanes(x), zero = zeroLanes(x);
    for (int k = 0; k < 4; ++k) {
        if (negative >> k & 1) status.write(orvStatusDomain);
        if (zero >> k & 1) status.write(orvStatusSingularity);
    }
}

template <F32x4 (*Formula)(F32x4)>
OrvStatus invSqrtGroups32(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        pairedGroups(
            src, dst, len, kThree, [](F32x4 x) { return Formula(x); }, [](F32x4 x) { return groupScreen(x); },
            [&](F32x4 x, float* out) { rejectedGroup<Formula>(x, out, status); });
    });
}

// The slow route of A24: sqrt(x)/x with each lane widened exactly to
// binary64 and the quotient rounded back to binary32.  Zeros would give
// 0/0 and +infinity inf/inf; those lanes take +-infinity and +0.  Negative
// lanes keep the NaN of the square root, NaN lanes their own made quiet.
F32x4 slowRoute(F32x4 x) {
    F64x2 low = widenLow(x);
    F64x2 high = widenHigh(x);
    F32x4 r = narrow(sqrt(low) / low, sqrt(high) / high);
    F32x4 infinity = splatBits32(kInfinity32);
    r = select(cmpEq(x, zeroF32x4()), (x & splatBits32(kSign32)) | infinity, r);
    return andNot(r, cmpEq(x, infinity));
}

// A rejected round's two passes: singularities first, then domain errors.
void groupPasses(F32x4 first, F32x4 second, StatusVar& status) {
    int zero = zeroLanes(first) | zeroLanes(second) << 4;
    int negative = negativeLanes(first) | negativeLanes(second) << 4;
    for (int k = 0; k < 8; ++k)
        if (zero >> k & 1) status.write(orvStatusSingularity);
    for (int k = 0; k < 8; ++k)
        if (negative >> k & 1) status.write(orvStatusDomain);
}

float invSqrtElementA24(float x, StatusVar& status) {
    if (passesPositiveNormal32(bitsOf(x))) return lane0(invSqrtA24(splat(x)));
    float r = lane0(slowRoute(splat(x)));
    if (x == 0.0f) status.write(orvStatusSingularity);
    if (x < 0.0f) status.write(orvStatusDomain);
    return r;
}

// ---- binary64 ---------------------------------------------------------------
constexpr uint64_t kDefaultNaN64 = 0xFFF8000000000000;

using Kernel64 = F64x2 (*)(F64x2 x, F64x2 y);

[[gnu::always_inline]] inline F64x2 invSqrtA50(F64x2 x, F64x2 y) {
    F64x2 e = x * (y * y) - splat(1.0);
    return y + series4(e) * y;
}
[[gnu::always_inline]] inline F64x2 invSqrtA53(F64x2 x, F64x2 y) {
    F64x2 q = y * y;
    F64x2 xh = headOf(x);
    F64x2 e = (xh * q - splat(1.0)) + (x - xh) * q;
    return y + series5(e) * y;
}

template <Kernel64 K>
inline F64x2x2 evaluate64(F64x2x2 x) {
    F64x2x2 y = rsqrtSeed64(x);
    return {K(x.a, y.a), K(x.b, y.b)};
}
template <Kernel64 K>
inline double evaluate64(double x) {
    return lane0(evaluate64<K>(F64x2x2{splat(x), splat(x)}).a);
}

template <Kernel64 K>
double invSqrtElement64(double x, StatusVar& status) {
    uint64_t b = bitsOf(x);
    if (passesPositiveNormal64(highWord(x))) return evaluate64<K>(x) * 1.0;
    if ((b & kAbs64) == 0) {                                  // +-0
        status.write(orvStatusSingularity);
        return doubleFromBits((b & kSign64) | kInfinity64);
    }
    if ((b & kAbs64) > kInfinity64) return x * 1.0;           // NaN, made quiet
    if (b & kSign64) {                                        // negative, -infinity
        status.write(orvStatusDomain);
        return doubleFromBits(kDefaultNaN64);
    }
    if (b == kInfinity64) return 0.0;                         // +infinity
    // Positive denormal: 1/sqrt(x * 2^54) * 2^27, both scalings exact.
    return evaluate64<K>(x * kDenormalScale64) * kDenormalUnscale64;
}

template <Kernel64 K>
OrvStatus invSqrt64(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len,
            [&](int32_t i) {
                F64x2x2 x{load(src + i), load(src + i + 2)};
                if (positiveNormalScreen(x.a, x.b)) return false;
                F64x2x2 r = evaluate64<K>(x);
                store(dst + i, r.a);
                store(dst + i + 2, r.b);
                return true;
            },
            [&](int32_t i) { dst[i] = invSqrtElement64<K>(src[i], status); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsInvSqrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return invSqrtGroups32<invSqrtA11>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInvSqrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return invSqrtGroups32<invSqrtA21>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInvSqrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        blockRounds<8>(
            len,
            [&](int32_t i) {
                F32x4 a = load(src + i), b = load(src + i + 4);
                if (positiveNormalScreen(a) | positiveNormalScreen(b)) return false;
                store(dst + i, invSqrtA24(a));
                store(dst + i + 4, invSqrtA24(b));
                return true;
            },
            [&](int32_t i) {
                F32x4 a = load(src + i), b = load(src + i + 4);
                store(dst + i, slowRoute(a));
                store(dst + i + 4, slowRoute(b));
                groupPasses(a, b, status);
            },
            [&](int32_t i) { dst[i] = invSqrtElementA24(src[i], status); });
    });
}
// A26 and A50 are one computation: four series terms reach 50 bits, and
// two would save too little to be worth a second code path.
ORV_EXPORT OrvStatus orvsInvSqrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return invSqrt64<invSqrtA50>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInvSqrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsInvSqrt_64f_A26")));
ORV_EXPORT OrvStatus orvsInvSqrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return invSqrt64<invSqrtA53>(src, dst, len);
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range, the positive normals below and above it, and the
// positive denormals.
std::vector<Box> ranges32() {
    return {Interval{1e-4, 1e4}, Interval{FLT_MIN, 1e-4}, Interval{1e4, FLT_MAX}, kPositiveDenormal32};
}
std::vector<Box> ranges64() {
    return {Interval{1e-4, 1e4}, Interval{DBL_MIN, 1e-4}, Interval{1e4, DBL_MAX}, kPositiveDenormal64};
}

}  // namespace

ORV_RECORDS(
    // A11 stops at the seed, whose bits differ between processor makers: its
    // record is the seed's architectural bound, a relative error of 1.5 * 2^-12
    // (6144 ulp just below a power of two), and its worst input the one of the
    // AMD machine of our runs, over all 2^32 inputs.
    {.member = "orvsInvSqrt_32f_A11",
     .maxUlp = 6145,
     .worst = {0x1.10cf9cp+56},
     .ranges = ranges32()},
    {.member = "orvsInvSqrt_32f_A21",
     .maxUlp = 2.63,
     .worst = {0x1.0541c6p-14},
     .ranges = ranges32()},
    {.member = "orvsInvSqrt_32f_A24",
     .maxUlp = 0.979,
     .worst = {0x1.072942p+4},
     .ranges = ranges32(),
     .position = {"a rejected block of eight is computed whole by the slow route, sqrt(x)/x in binary64: "
                  "an ordinary element beside a special one gets the slow route's result, alone the block formula's",
                  1},
     .warningsByKind = true},
    {.member = "orvsInvSqrt_64f_A26",
     .maxUlp = 0.999,
     .worst = {0x1.0f2eb4642e6f8p+4},
     .ranges = ranges64()},
    {.member = "orvsInvSqrt_64f_A50",
     .maxUlp = 0.999,
     .worst = {0x1.090f10889c8b1p+10},
     .ranges = ranges64(),
     .sameAs = "orvsInvSqrt_64f_A26"},
    {.member = "orvsInvSqrt_64f_A53",
     .maxUlp = 0.501,
     .worst = {0x1.b0b879c49d5c9p-509},
     .ranges = ranges64()}
)
}  // namespace orv
#endif
