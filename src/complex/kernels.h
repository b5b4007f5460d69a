// The scalar complex kernels: one complex double in, one complex double
// out, computed inside in x87 extended precision (the exponent range holds
// the square of any double, and the 64-bit significand absorbs the
// roundings of the intermediate steps), rounded to double once per part at
// the end.  One kernel serves every tier and both widths of its operation:
// the 32fc wrappers widen exactly to double before the call and round once
// to single after it.
//
// Every kernel takes the address of its result first, then its argument or
// arguments, 16-byte aligned, and assumes the caller's frame has set the
// x87 control word to 64-bit precision and rounding to nearest (the
// wrappers of wrapper.h run inside that frame).  Kernels keep no state and
// never report a status: a NaN, an infinity, a pole or an overflow shows in
// the result's bits and in the IEEE flags of the arithmetic.  Where a part
// of the result is a subnormal double, the kernel squares the smallest
// normal double and drops the product, so that underflow is raised.
#pragma once

#include "orvvm.h"

namespace orv {

// e^z: e^x (cos y + i sin y).
void complexExp(Orv64fc* result, const Orv64fc* z);
// ln z: ln|z| + i arg z, the cut along the negative real axis, arg in
// [-pi, pi] with the sign of the imaginary part (so -x - i0 gives -i pi).
void complexLn(Orv64fc* result, const Orv64fc* z);
// log10 z: ln z times log10(e), both parts.
void complexLog10(Orv64fc* result, const Orv64fc* z);
// base^exponent = e^(exponent ln base), the product in double.
void complexPow(Orv64fc* result, const Orv64fc* base, const Orv64fc* exponent);
// sqrt z on the principal branch: real part >= 0, imaginary part with the
// sign of Im z (signed zeros included).
void complexSqrt(Orv64fc* result, const Orv64fc* z);

}  // namespace orv
