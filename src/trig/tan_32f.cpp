// Tan, real members on floats: orvsTan_32f_A11, _A21, _A24.
//
// Method.  x = k pi/2 + r, k = round(x 2/pi) by the shifter 1.5*2^23 (A11,
// A21) or by a conversion to an integer (A24), |r| <= about pi/4, and
//   tan x = tan r (k even),  -cot r = -1/tan r (k odd),
// with tan r ~ r N(z) / D(z), z = r^2, one rational function for both: the
// quotient is N/D for an even k and D/N for an odd one, both operands
// chosen by masks from the lowest bit of k, and one division done.  The
// minus sign of -cot r comes from the same bit, moved into the sign of r
// before N is formed.  No table, no branch in the block.
//   A11: pi/2 in 3 single parts, N = 1 + n1 z, D = 1 + d1 z + d2 z^2, in
//        single; relative error of the function 2^-25.1.
//   A21: pi/2 in 4 single parts, subtracted with the roundings of the
//        middle two carried to the last; the same function.
// In both, N = r' + (r' z) n1, rounded once.
//   A24: k from the float product x 2/pi rounded to an integer, then in
//        double: pi/2 in 2 parts, N and D of A11's form with double
//        coefficients (relative error 2^-25.0), the quotient rounded once
//        to single.
// (The errors are stated and the constants printed by fit_tan32.sollya.)
//
// Screens: the block (4 floats) passes |x| up to 10000 (pattern
// 0x461C4000).  A block with an element beyond, an infinity or a NaN goes
// whole to the ElementPath, where every element takes the double kernel
// tanKernel64 of trig_kernels.h rounded once to float: an element beside a
// rejected neighbour may get other bits than alone (measured in the
// records).  A11 runs its blocks of 4 in pairs, up to the last multiple of
// 8, each with its own screen; A21 and A24 up to the last multiple of 4.
// The tail repeats the block's arithmetic one element at a time with the
// same screen (on x itself: the arithmetic is odd in x, so the same bits as
// on |x| with the sign put back).
//
// Near an odd multiple of pi/2 the float remainder r is small and tan x ~
// -1/r large; the quotient keeps the sign of the true value as long as |r|
// is above the error of the reduction, which holds for every float (the
// family tests check the floats nearest each pole).  No pole is ever hit
// exactly: no warning but orvStatusDomain for +-inf (default NaN
// 0xFFC00000, invalid raised); a NaN comes back quiet; tan(+-0) = +-0.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "trig/half_pi_reduction.h"
#include "trig/trig_kernels.h"

namespace orv {
namespace {

// ---- Constants --------------------------------------------------------------

constexpr uint32_t kLimit = 0x461C4000;  // 10000.0: the block passes at or below

// ---- begin fit_tan32
// tan r ~ r N(z) / D(z), z = r^2, N = 1 + n1 z, D = 1 + d1 z + d2 z^2,
// on |r| <= pi/4.  A11 and A21, in single: relative error 2.79e-8 = 2^-25.1.
constexpr float kN1 = floatFromBits(0xBDC433B8);  // -0.09580177068710327
constexpr float kD1 = floatFromBits(0xBEDBB7AF);  // -0.4291357696056366
constexpr float kD2 = floatFromBits(0x3C1F3375);  //  0.00971685815602541
// A24, in double: relative error 2.89e-8 = 2^-25.05.
constexpr double kN1d = doubleFromBits(0xBFB8867706ED6612);  // -0.0958017723
constexpr double kD1d = doubleFromBits(0xBFDB76F5E7F08C11);  // -0.429135777
constexpr double kD2d = doubleFromBits(0x3F83E66EA6AA37F2);  //  0.00971685835
// ---- end fit_tan32

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// ---- Kernels ----------------------------------------------------------------

// A11 and A21 on four floats.  A21 carries the roundings of its
// subtractions (half_pi_reduction.h), which keeps it inside its 4 ulps
// where |r| is near pi/4.
template <size_t Parts>
inline F32x4 tanSingle(F32x4 x, const float (&parts)[Parts]) {
    const F32x4 shifted = trig::shiftedQuadrants(x);
    const F32x4 k = trig::quadrantsOf(shifted);
    F32x4 r;
    if constexpr (Parts == 4)
        r = trig::subtractPartsCarried(x, k, parts);
    else
        r = trig::subtractParts(x, k, parts);
    const F32x4 odd = asF32x4(shl32<31>(bitsOf(shifted)));  // the parity of k as a sign
    const F32x4 z = r * r;
    // r' (1 + n1 z) as r' + (r' z) n1: the small term's roundings count
    // for little, and N takes one rounding of its own instead of two.  N
    // has the sign of r', which the or puts back on r' = -0 (tan -0 = -0).
    const F32x4 rs = r ^ odd;
    const F32x4 N = (rs + (rs * z) * splat(kN1)) | (rs & splatBits32(kSign32));
    const F32x4 D = (splat(kD2) * z + splat(kD1)) * z + splat(1.0f);
    const F32x4 even = trig::evenQuadrants(shifted);
    return select(even, N, D) / select(even, D, N);
}

inline F32x4 tan11(F32x4 x) { return tanSingle(x, trig::kHalfPi3); }
inline F32x4 tan21(F32x4 x) { return tanSingle(x, trig::kHalfPi4); }

// A24 on two widened lanes; kBits holds k in the low word of each 64-bit
// lane, so that its parity moves to the lane's top bits.
inline F64x2 tan24Lanes(F64x2 x, F64x2 k, I32x4 kBits) {
    const F64x2 r = (x - k * splat(trig::kHalfPiHi)) - k * splat(trig::kHalfPiLo);
    const F64x2 odd = asF64x2(shl64<63>(kBits));
    const F64x2 even = cmpEq(asF64x2(shl64<62>(kBits)), zeroF64x2());
    const F64x2 z = r * r;
    const F64x2 N = (r ^ odd) * (splat(kN1d) * z + splat(1.0));
    const F64x2 D = (splat(kD2d) * z + splat(kD1d)) * z + splat(1.0);
    return select(even, N, D) / select(even, D, N);
}

inline F32x4 tan24(F32x4 x) {
    const I32x4 k = roundToInt32(x * splat(trig::kTwoOverPi32));
    const I32x4 zero = splat32(0);
    const F64x2 lo = tan24Lanes(widenLow(x), int32LowToF64x2(k), unpackLo32(k, zero));
    const F64x2 hi = tan24Lanes(widenHigh(x), int32HighToF64x2(k), unpackHi32(k, zero));
    return narrow(lo, hi);
}

// ---- Blocks and tails ----------------------------------------------------------

constexpr uint32_t kFails = kLimit + 1;

// Screened before the arithmetic: a huge argument would make z overflow
// and D/N raise a spurious invalid flag.
template <F32x4 (*Kernel)(F32x4)>
inline bool block4(const float* src, float* dst) {
    const F32x4 x = load(src);
    if (magnitudeScreen(x, kFails) != 0) return false;
    store(dst, Kernel(x));
    return true;
}

inline float element(float x, StatusVar& status) { return trig::element32<trig::tanKernel64>(x, status); }

template <F32x4 (*Kernel)(F32x4)>
inline float tail(float x, StatusVar& status) {
    if (passesMagnitude(bitsOf(x), kFails)) return lane0(Kernel(splat(x)));
    return element(x, status);
}

// Blocks of 4 up to the last multiple of 4 (A21, A24), or in pairs up to
// the last multiple of 8 (A11), each block of 4 screened on its own.
template <int Round, F32x4 (*Kernel)(F32x4)>
inline void loop(const float* src, float* dst, int32_t len, StatusVar& status) {
    auto rejected = [&](int32_t i) {
        for (int32_t j = i; j < i + 4; ++j) dst[j] = element(src[j], status);
    };
    blockRounds<Round>(
        len,
        [&](int32_t i) {
            for (int32_t h = i; h < i + Round; h += 4)
                if (!block4<Kernel>(src + h, dst + h)) rejected(h);
            return true;
        },
        [](int32_t) {}, [&](int32_t i) { dst[i] = tail<Kernel>(src[i], status); });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsTan_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { loop<8, tan11>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsTan_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { loop<4, tan21>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsTan_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { loop<4, tan24>(src, dst, len, status); });
}

#else
#include "frame/record.h"

namespace orv {
namespace {
constexpr const char* kRejectedBlock =
    "a block with an element beyond the screen, an infinity or a NaN goes whole to the double "
    "kernel, whose result, rounded to float, may differ from the block's";
constexpr double kOrdinary = double(floatFromBits(kLimit));
}  // namespace

// Measured against MPFR on the harness's samples and on 10^5 more floats
// of each member, uniform and log-uniform over the block's range; A24 also
// over every float of the block's range (against tan in double, whose
// error is far below a float ulp).  The floats nearest each pole are
// checked by the family test.  Position: the largest difference measured between an element in a
// passing block and in a rejected one, over 4*10^5 floats.
ORV_RECORDS(
    {.member = "orvsTan_32f_A11",
     .maxUlp = 32.53,
     .worst = {-8091.17188f},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 76},
     .peerVectors = "tan"},
    {.member = "orvsTan_32f_A21",
     .maxUlp = 2.704,
     .worst = {2599.41528f},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 4},
     .peerVectors = "tan"},
    {.member = "orvsTan_32f_A24",
     .maxUlp = 0.93560,
     .worst = {3.87709689f},
     .ranges = {symmetric(kOrdinary), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 1},
     .peerVectors = "tan"})
}  // namespace orv
#endif
