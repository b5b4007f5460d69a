// The double-precision element kernels of the sine, cosine, joint
// sine-cosine and tangent families, the argument reduction they stand on,
// and the per-tier element routines that put them behind an ElementPath.
//
// Every real member of Sin, Cos, Tan, SinCos (and the phasor CIS) sends the
// elements its block path does not hold here, whatever its tier: an element
// that leaves a block is computed to about one ulp of a double, and rounded
// once more to float in the 32-bit members.
//
//   trigReduce(x, out)  any finite double with |x| >= 2^17 (12800 from the
//                       tangent): quadrant q in 0..3 and a remainder out[0]
//                       + out[1], |out[0]| <= about pi/4, with
//                       x = (q + 4m) pi/2 + out[0] + out[1] to about 2^-80
//                       absolute.  Three ranges: |x| < 2^23 by four parts
//                       of pi/4, < 2^30 by five shorter parts, and above a
//                       Payne-Hanek product with 1225 bits of 4/pi.
//   sinKernel64, cosKernel64, sinCosKernel64, tanKernel64: the functions of
//                       every double, special values included.
//
// The kernels' shared constants are named here, since the vector blocks of
// the 64-bit members repeat the kernel's arithmetic on them.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/frame.h"

namespace orv::trig {

// ---- Constants shared by the kernels and the 64-bit blocks -----------------

constexpr double kThirtyTwoOverPi = doubleFromBits(0x40245F306DC9C883);  // 10.185916357881302
constexpr double kShifter52 = doubleFromBits(0x4338000000000000);        // 1.5*2^52
// pi/32 in three parts: C1 has 31 significant bits and C2 32, so k C1 and
// k C2 are exact for the |k| < 2^21 of |x| < 2^17 (and of a reduced x').
constexpr double kPiBy32C1 = doubleFromBits(0x3FB921FB54400000);
constexpr double kPiBy32C2 = doubleFromBits(0x3D90B4611A600000);
constexpr double kPiBy32C3 = doubleFromBits(0x3B63198A2E037073);
// Taylor coefficients of sin r - r (odd, from r^3) and cos r - 1 (even,
// from r^2) on |r| <= pi/64: the first term left out, r^11/11!, is below
// 2^-100 of r.
constexpr double kSinA3 = doubleFromBits(0xBFC5555555555555);  // -1/3!
constexpr double kSinA5 = doubleFromBits(0x3F81111111111111);  // 1/5!
constexpr double kSinA7 = doubleFromBits(0xBF2A01A01A01A01A);  // -1/7!
constexpr double kSinA9 = doubleFromBits(0x3EC71DE3A556C734);  // 1/9!
constexpr double kCosB2 = -0.5;
constexpr double kCosB4 = doubleFromBits(0x3FA5555555555555);  // 1/4!
constexpr double kCosB6 = doubleFromBits(0xBF56C16C16C16C17);  // -1/6!
constexpr double kCosB8 = doubleFromBits(0x3EFA01A01A01A01A);  // 1/8!

// The short kernel of the 64-bit A26 sine and joint sine-cosine blocks:
// pi/32 in three parts, the first pi/32 rounded to a double (so k C1 is
// not exact: the A26 error grows with |x|), no low word, and
// sin r = r (1 + z (-1/6 + z/120)), cos r = 1 + z (-1/2 + z/24).
constexpr double kShortC1 = doubleFromBits(0x3FB921FB54442D18);
constexpr double kShortC2 = doubleFromBits(0x3C51A62633145C06);
constexpr double kShortC3 = doubleFromBits(0x390C1CD129024E09);
constexpr double kShortS5 = doubleFromBits(0x3F81111111111111);  // 1/120
constexpr double kShortS3 = doubleFromBits(0xBFC5555555555555);  // -1/6
constexpr double kShortC4 = doubleFromBits(0x3FA5555555555555);  // 1/24
constexpr double kShortCos2 = -0.5;

// Exponent fields at which the kernels change course.
constexpr uint32_t kTinyField = 0x303;    // |x| < 2^-252: sin x = x, cos x = 1
constexpr uint32_t kReduceField = 0x410;  // |x| >= 2^17: trigReduce first
constexpr uint32_t kSpecialField = 0x7FF;
// The tangent reduces from 12800 on (top 16 bits of |x| at least 0x40C9).
constexpr uint32_t kTanReduceTop16 = 0x40C9;

// ---- Reduction and kernels -------------------------------------------------

int trigReduce(double x, double out[2]);

double sinKernel64(double x);
double cosKernel64(double x);
void sinCosKernel64(double x, double* sinOut, double* cosOut);
double tanKernel64(double x);

// ---- Element routines ------------------------------------------------------
//
// One routine for each kernel and element type.  The tiers of a family
// ("sSin_A11", "sSin_LA", "sSin_HA"; "dSin_LA", "dSin_HA"; and so for Cos,
// Tan and SinCos) all take the same steps on the same kernel, so one
// routine serves them all.  An infinity gives the default NaN, writes
// orvStatusDomain and raises the invalid flag; a NaN comes back quiet with
// no status; every finite value gets the kernel.

constexpr uint64_t kInf64 = 0x7FF0000000000000;
constexpr uint32_t kInf32 = 0x7F800000;
constexpr uint32_t kDefaultNan32 = 0xFFC00000;

template <double (*Kernel)(double)>
inline double element64(double x, StatusVar& status) {
    if ((bitsOf(x) & kAbs64) < kInf64) return Kernel(x);
    double y = x - x;  // the default NaN from an infinity, the quiet NaN from a NaN
    if ((bitsOf(x) & kAbs64) == kInf64) {
        status.write(orvStatusDomain);
        raiseFpFlags64(orvStatusDomain);
    }
    return y;
}

template <double (*Kernel)(double)>
inline float element32(float x, StatusVar& status) {
    if ((bitsOf(x) & kAbs32) == kInf32) {
        status.write(orvStatusDomain);
        raiseFpFlags32(orvStatusDomain);
        return floatFromBits(kDefaultNan32);
    }
    return float(Kernel(double(x)));  // a NaN comes through the kernel's x*x quiet
}

// The joint routines write both results.
inline void sinCosElement64(double x, double* sinOut, double* cosOut, StatusVar& status) {
    if ((bitsOf(x) & kAbs64) < kInf64) return sinCosKernel64(x, sinOut, cosOut);
    double y = x - x;
    *sinOut = y;
    *cosOut = y;
    if ((bitsOf(x) & kAbs64) == kInf64) {
        status.write(orvStatusDomain);
        raiseFpFlags64(orvStatusDomain);
    }
}
inline void sinCosElement32(float x, float* sinOut, float* cosOut, StatusVar& status) {
    if ((bitsOf(x) & kAbs32) == kInf32) {
        *sinOut = floatFromBits(kDefaultNan32);
        *cosOut = floatFromBits(kDefaultNan32);
        status.write(orvStatusDomain);
        raiseFpFlags32(orvStatusDomain);
        return;
    }
    double s, c;
    sinCosKernel64(double(x), &s, &c);
    *sinOut = float(s);
    *cosOut = float(c);
}

}  // namespace orv::trig
