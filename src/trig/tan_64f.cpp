// Tan, real members on doubles: orvsTan_64f_A26, _A50, _A53.
//
// Method.  On a = |x|: a = k pi/2 + r, k = round(a 2/pi) by the shifter
// 2^52 (whose low word is then k), |r| <= about pi/4, and
//   tan a = tan r (k even),  -cot r = -1/tan r (k odd),
// tan r ~ r N(z) / D(z), z = r^2, the quotient N/D or D/N chosen by masks
// from the lowest bit of k and one division done; the sign of x and the
// minus of -cot r (the same lowest bit) are put into the quotient last.
//   A26: pi/2 in 3 parts, N and D of 3 terms each (their constant terms
//        1.15590341789 and 1.15590341786, not 1); relative error of the
//        function 2^-35.4.
//   A50: pi/2 in 4 parts (half_pi_reduction.h), subtracted with the
//        roundings of the middle two carried to the last; N and D of 4
//        terms, with N(0) = D(0) = 1, relative error 2^-54.1; N formed as
//        r + (r z) P(z), rounded once.
//   A53: two stages over batches of up to 768 elements, their values kept
//        in a work area on the stack.  The first reduces four elements a
//        round in double: pi/2 = -P1 - P2 + P3 (the double kernel's three
//        parts of pi/32, times 16), a + k P1 exact, the addition of k P2
//        (exact) with its rounding error recovered by a two-sum, k P3
//        subtracted from that error, so that r = rh + rl to about 2^-105
//        absolute.  The second evaluates the same form as A50 in the x87
//        unit with 64-bit significands on R = rh + rl: its coefficients of
//        z^2 and z^3 are A50's doubles, those of z^0 and z^1 refitted in
//        extended precision, for a relative error of 2^-55.4, and the
//        quotient is rounded once to double.
// (The errors are stated and the constants printed by fit_tan64.sollya.)
//
// Screens, on the high word of |x|: the blocks pass up to 0x40FF4000 (|x|
// below 128001).  A26 and A50 run blocks of 2; a block with an element
// beyond, an infinity or a NaN goes whole to the ElementPath, where each
// element takes the double kernel tanKernel64: an element beside a
// rejected neighbour may get other bits than alone (up to A26's and A50's
// own errors; measured in the records).  The tail repeats the block's
// arithmetic.  A53 screens element by element in its first stage and its
// second sends just the elements beyond to the ElementPath ("dTan_HA"),
// in order, so its results depend on the element alone.
//
// No pole is ever hit exactly (no double lies on one) and values near the
// poles come out large and finite: no warning but orvStatusDomain for
// +-inf (default NaN 0xFFF8000000000000, invalid raised); a NaN comes back
// quiet; tan(+-0) = +-0.  orvsTan_64f_A53 runs in the frame that checks len
// first, with the x87 word set to extended precision and MXCSR to nearest
// with the caller's denormals-are-zero kept (which, when set, reads
// denormal arguments as zero in the first stage).
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "frame/x87.h"
#include "trig/half_pi_reduction.h"
#include "trig/trig_kernels.h"

namespace orv {
namespace {

// ---- Constants --------------------------------------------------------------

constexpr uint32_t kLimit = 0x40FF4000;  // high word of |x|: the blocks pass at or below

// A26: pi/2 in three parts, the first two those of A50.
constexpr double kHalfPi26[] = {trig::kHalfPi50[0], trig::kHalfPi50[1], doubleFromBits(0x3CF8469898CC5170)};

// A53's reduction: pi/2 = -kP1 - kP2 + kP3.
constexpr double kP1 = doubleFromBits(0xBFF921FB54400000);  // -16 kPiBy32C1
constexpr double kP2 = doubleFromBits(0xBDD0B4611A600000);  // -16 kPiBy32C2
constexpr double kP3 = doubleFromBits(0x3BA3198A2E037073);  // 16 kPiBy32C3

constexpr int kBatch = 768;

// ---- begin fit_tan64
// tan r ~ r N(z) / D(z), z = r^2, on |r| <= pi/4, from the top term.
// A26: N(0) and D(0) differ slightly; relative error 2.21e-11 = 2^-35.4.
constexpr double kA26N2 = doubleFromBits(0x3F545C936ED9193A);  //  0.0012427749419586368
constexpr double kA26N1 = doubleFromBits(0xBFC079FF5BF6A4DF);  // -0.12872306814578047
constexpr double kA26N0 = doubleFromBits(0x3FF27E949512AA02);  //  1.155903417888681
constexpr double kA26D2 = doubleFromBits(0x3F92E825CC67D220);  //  0.018463698006558116
constexpr double kA26D1 = doubleFromBits(0xBFE072E2E400EC37);  // -0.5140242055125616
constexpr double kA26D0 = doubleFromBits(0x3FF27E949510E8DE);  //  1.1559034178631502
// A50: N(0) = D(0) = 1; relative error 5.26e-17 = 2^-54.08.
constexpr double kA50N3 = doubleFromBits(0xBEDF637DEA7C0B2C);  // -7.483634966612065e-6
constexpr double kA50N2 = doubleFromBits(0x3F66FC6FE2982A7B);  //  0.002805918241169989
constexpr double kA50N1 = doubleFromBits(0xBFC06B97BF03648A);  // -0.12828347040957438
constexpr double kA50D3 = doubleFromBits(0xBF2B525B10D0A168);  // -0.00020844804422038708
constexpr double kA50D2 = doubleFromBits(0x3F97E7B68D9A55F3);  //  0.02334485282206873
constexpr double kA50D1 = doubleFromBits(0xBFDD8B2134D70767);  // -0.46161680374290487
// A53: A50's z^3 and z^2 terms, N(0), N's z and D's z refitted in extended
// precision, D(0) = 1; relative error 1.89e-17 = 2^-55.56.
constexpr double kA53N3 = kA50N3;
constexpr double kA53N2 = kA50N2;
constexpr Extended kA53N1 = -0x835CBDF81B24501Ap-66L;
constexpr Extended kA53N0 = 0x80000000000000AEp-63L;
constexpr double kA53D3 = kA50D3;
constexpr double kA53D2 = kA50D2;
constexpr Extended kA53D1 = -0xEC5909A6B83B3A49p-65L;
// ---- end fit_tan64

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// ---- A26 and A50 ------------------------------------------------------------

struct Reduced {
    F64x2 r, shifted, sign;
};

// A26 subtracts its parts plainly, A50 with the roundings carried (which
// keeps A50 well inside its 4 ulps where |r| is near pi/4).
template <bool Carried, size_t Parts>
inline Reduced reduce(F64x2 x, const double (&parts)[Parts]) {
    const F64x2 sign = x & splatBits64(kSign64);
    const F64x2 a = x ^ sign;
    const F64x2 shifted = trig::shiftedQuadrants(a);
    const F64x2 k = trig::quadrantsOf(shifted);
    if constexpr (Carried)
        return {trig::subtractPartsCarried(a, k, parts), shifted, sign};
    else
        return {trig::subtractParts(a, k, parts), shifted, sign};
}

// The quotient N/D or D/N, and its sign.
inline F64x2 turnOver(const Reduced& red, F64x2 N, F64x2 D) {
    const F64x2 even = trig::evenQuadrants(red.shifted);
    const F64x2 sign = asF64x2(shl64<63>(bitsOf(red.shifted))) ^ red.sign;
    return (select(even, N, D) / select(even, D, N)) ^ sign;
}

inline F64x2 tan26(F64x2 x) {
    const Reduced red = reduce<false>(x, kHalfPi26);
    const F64x2 z = red.r * red.r;
    const F64x2 N = red.r * ((splat(kA26N2) * z + splat(kA26N1)) * z + splat(kA26N0));
    const F64x2 D = (splat(kA26D2) * z + splat(kA26D1)) * z + splat(kA26D0);
    return turnOver(red, N, D);
}

inline F64x2 tan50(F64x2 x) {
    const Reduced red = reduce<true>(x, trig::kHalfPi50);
    const F64x2 z = red.r * red.r;
    // r (1 + z P(z)) as r + (r z) P(z), so that N is rounded once at the
    // end and the roundings inside the small term count for little: the
    // member's error stays well inside its 4 ulps.
    const F64x2 N = red.r + (red.r * z) * ((splat(kA50N3) * z + splat(kA50N2)) * z + splat(kA50N1));
    const F64x2 D = ((splat(kA50D3) * z + splat(kA50D2)) * z + splat(kA50D1)) * z + splat(1.0);
    return turnOver(red, N, D);
}

inline double element(double x, StatusVar& status) { return trig::element64<trig::tanKernel64>(x, status); }

constexpr uint32_t kFails = kLimit + 1;

template <F64x2 (*Kernel)(F64x2)>
inline void loop2(const double* src, double* dst, int32_t len, StatusVar& status) {
    blockRounds<2>(
        len,
        [&](int32_t i) {
            // Screened before the arithmetic, which on an infinity would
            // raise flags of its own.
            const F64x2 x = load(src + i);
            if (magnitudeScreen(x, kFails) != 0) return false;
            store(dst + i, Kernel(x));
            return true;
        },
        [&](int32_t i) {
            dst[i] = element(src[i], status);
            dst[i + 1] = element(src[i + 1], status);
        },
        [&](int32_t i) {
            const double x = src[i];
            dst[i] = passesMagnitude(highWord(x), kFails) ? lane0(Kernel(splat(x))) : element(x, status);
        });
}

// ---- A53 --------------------------------------------------------------------

// What the first stage leaves for the second, element by element.
struct Work {
    double rh[kBatch];
    double rl[kBatch];
    uint32_t flags[kBatch];  // kOdd, kBeyond, and the sign of x in kSignFlag
};
constexpr uint32_t kOdd = 1;
constexpr uint32_t kBeyond = 2;
constexpr uint32_t kSignFlag = kSign32;

// s + e = a + b exactly (Knuth's two-sum, for any order of magnitudes).
inline void twoSum(F64x2 a, F64x2 b, F64x2& s, F64x2& e) {
    s = a + b;
    const F64x2 bb = s - a;
    e = (a - (s - bb)) + (b - bb);
}

// The first stage on two elements: remainders and the parity of k.
inline void reduce53(F64x2 x, F64x2& rh, F64x2& rl, F64x2& shifted) {
    const F64x2 a = andNot(x, splatBits64(kSign64));
    shifted = trig::shiftedQuadrants(a);
    const F64x2 k = trig::quadrantsOf(shifted);
    const F64x2 u0 = a + k * splat(kP1);  // exact
    F64x2 e;
    twoSum(u0, k * splat(kP2), rh, e);
    rl = e - k * splat(kP3);
}

// Four elements from i: the remainders, and flags from the parities, the
// signs and the screen.
inline void stage1Round(const double* src, Work& w, int32_t i) {
    const F64x2 x0 = load(src + i), x1 = load(src + i + 2);
    F64x2 rh0, rl0, t0, rh1, rl1, t1;
    reduce53(x0, rh0, rl0, t0);
    reduce53(x1, rh1, rl1, t1);
    store(w.rh + i, rh0);
    store(w.rh + i + 2, rh1);
    store(w.rl + i, rl0);
    store(w.rl + i + 2, rl1);
    const I32x4 high = highWords(x0, x1);
    const I32x4 beyond = cmpGt32(high & splat32(kAbs32), splat32(kLimit)) & splat32(kBeyond);
    const I32x4 odd = lowWords(t0, t1) & splat32(kOdd);
    storeI(w.flags + i, (high & splat32(kSignFlag)) | beyond | odd);
}

// The tail of a batch, one element at a time, by the same arithmetic.
inline void stage1One(const double* src, Work& w, int32_t i) {
    const double x = src[i];
    F64x2 rh, rl, t;
    reduce53(splat(x), rh, rl, t);
    w.rh[i] = lane0(rh);
    w.rl[i] = lane0(rl);
    const uint32_t high = highWord(x);
    w.flags[i] = (high & kSignFlag) | ((high & kAbs32) > kLimit ? kBeyond : 0) | (lowWord(lane0(t)) & kOdd);
}

// The second stage on one element, in extended precision.
inline void stage2One(const Work& w, int32_t i, double* out) {
    const Extended R = extend(w.rh[i]) + extend(w.rl[i]);
    const Extended z = R * R;
    const Extended N = R * (((Extended(kA53N3) * z + Extended(kA53N2)) * z + kA53N1) * z + kA53N0);
    const Extended D = ((Extended(kA53D3) * z + Extended(kA53D2)) * z + kA53D1) * z + 1.0L;
    const uint32_t odd = w.flags[i] & kOdd;
    const Extended both[2] = {N, D};
    const Extended q = both[odd] / both[odd ^ 1];
    // -cot r for an odd k, and the sign of x: one flip for each.
    const Extended signs[2] = {q, -q};
    storeRounded(out, signs[odd ^ (w.flags[i] >> 31)]);
}

inline void tan53(const double* src, double* dst, int32_t len, StatusVar& status) {
    Work w;
    for (int32_t start = 0; start < len; start += kBatch) {
        const int32_t n = len - start < kBatch ? len - start : kBatch;
        const double* s = src + start;
        int32_t i = 0;
        for (; i + 4 <= n; i += 4) stage1Round(s, w, i);
        for (; i < n; ++i) stage1One(s, w, i);
        for (i = 0; i < n; ++i) {
            if (w.flags[i] & kBeyond)
                dst[start + i] = element(s[i], status);
            else
                stage2One(w, i, dst + start + i);
        }
    }
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsTan_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { loop2<tan26>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsTan_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { loop2<tan50>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsTan_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87ExtendedThenNearestKeepDaz>(
        {src, dst}, len, [&](StatusVar& status) { tan53(src, dst, len, status); });
}

#else
#include "frame/record.h"

namespace orv {
namespace {
constexpr const char* kRejectedBlock =
    "a block with an element beyond the screen, an infinity or a NaN goes whole to the double "
    "kernel, whose result may differ from the block's";
constexpr double kOrdinary = doubleFromBits(uint64_t(kLimit) << 32);  // 128000
}  // namespace

// Measured against MPFR on the harness's samples and on 3*10^6 more
// arguments (A50, A53; 10^5 for A26), uniform and log-uniform over the
// block's range (sampled); the doubles nearest each pole are checked by the
// family test; glibc's hard cases too.  A26's error is largest where tan x
// is x or near 1 and its significand near 2: N(0)/D(0) = 1 + 2.2e-11 bounds
// it there by 198945 ulps (tan(pi/4) measures 198943.4).  Position (A26, A50): the largest difference measured
// between an element in a passing block and in a rejected one.
ORV_RECORDS(
    {.member = "orvsTan_64f_A26",
     .maxUlp = 198945,
     .worst = {0x1.921fb54442d18p-1},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 198945},
     .peerVectors = "tan"},
    {.member = "orvsTan_64f_A50",
     .maxUlp = 3.3395,
     .worst = {73935.026104255361},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 3},
     .peerVectors = "tan"},
    {.member = "orvsTan_64f_A53",
     .maxUlp = 0.66945,
     .worst = {1.1889544034295014e-07},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite64},
     .peerVectors = "tan"})
}  // namespace orv
#endif
