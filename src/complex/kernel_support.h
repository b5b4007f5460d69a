// Raw-bit tests and the underflow signal shared by the complex kernels and
// the element paths of the complex block-path members.
#pragma once

#include <cstdint>

#include "frame/bits.h"

namespace orv::complexparts {

constexpr double kInfinity = __builtin_inf();
// The smallest normal double: its square underflows.
constexpr double kMinNormal64 = doubleFromBits(0x0010000000000000);

inline bool isNan(double v) { return (bitsOf(v) & kAbs64) > kInfinity64; }
inline bool isInf(double v) { return (bitsOf(v) & kAbs64) == kInfinity64; }
inline bool isFinite(double v) { return (bitsOf(v) & kAbs64) < kInfinity64; }
// The 11-bit biased exponent field.
inline int exponentField(double v) { return int((bitsOf(v) >> 52) & 0x7FF); }
inline bool isSubnormal(double v) { return exponentField(v) == 0 && (bitsOf(v) & kAbs64) != 0; }
// |magnitude| with the sign bit of s.
inline double withSignOf(double magnitude, double s) {
    return doubleFromBits((bitsOf(magnitude) & kAbs64) | (bitsOf(s) & kSign64));
}
// Squares the smallest normal double and drops the product when a part of
// a result is subnormal, so that underflow is raised.
inline void signalSubnormal(double re, double im) {
    if (isSubnormal(re) || isSubnormal(im)) forceEval(opaque(kMinNormal64) * opaque(kMinNormal64));
}

}  // namespace orv::complexparts
