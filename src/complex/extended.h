// The real routines in extended precision that the complex kernels share.
//
// Every routine takes the address of its result first, then the address of
// its argument or arguments, all extended values (the x87 80-bit format in a
// 16-byte slot, src/frame/x87.h).  Every routine assumes that the caller's
// frame has set the x87 control word to a 64-bit significand and rounding to
// nearest; under any other word the results lose what the word takes away.
//
// All are polynomial (no x87 square root, arctangent, logarithm, 2^x or sine
// instruction), handle NaN, infinities and zeros at entry, and are accurate
// to a few units of the 64-bit significand on their whole domain, so that a
// kernel rounding to double at the end stays below one ulp of a double.
// Next to each declaration stands the routine's error bound in units of the
// 64-bit significand (one unit is 2^-63 of the exact result's binade), as
// measured against MPFR by tests/test_extended.cpp, which holds every
// routine to it.
#pragma once

#include "frame/x87.h"

namespace orv {

void extAbs(Extended* r, const Extended* x);  // exact
void extSqrt(Extended* r, const Extended* x);
inline constexpr double kExtSqrtBound = 0.51;
void extLog(Extended* r, const Extended* x);
inline constexpr double kExtLogBound = 1.0;
void extLog1p(Extended* r, const Extended* x);
inline constexpr double kExtLog1pBound = 0.65;
void extExp(Extended* r, const Extended* x);
inline constexpr double kExtExpBound = 0.55;
void extSinhCosh(Extended* sh, Extended* ch, const Extended* x);  // the bounds of extSinh and extCosh
void extSinh(Extended* r, const Extended* x);
inline constexpr double kExtSinhBound = 0.85;
void extCosh(Extended* r, const Extended* x);
inline constexpr double kExtCoshBound = 0.95;
void extTanh(Extended* r, const Extended* x);
inline constexpr double kExtTanhBound = 1.05;
void extSin(Extended* r, const Extended* x);
inline constexpr double kExtSinBound = 0.75;
void extCos(Extended* r, const Extended* x);
inline constexpr double kExtCosBound = 0.75;
void extSinCos(Extended* s, Extended* c, const Extended* x);  // the bounds of extSin and extCos
void extTan(Extended* r, const Extended* x);
inline constexpr double kExtTanBound = 0.95;
// r = x - q (pi/2) with |r| <= pi/4 (to rounding); returns q mod 4.  For any
// finite x, huge ones included.
int extReduce(Extended* r, const Extended* x);
inline constexpr double kExtReduceBound = 0.55;
void extAtan(Extended* r, const Extended* x);
inline constexpr double kExtAtanBound = 1.1;
void extAtan2(Extended* r, const Extended* y, const Extended* x);
inline constexpr double kExtAtan2Bound = 1.1;  // the core of extAtan
void extAsin(Extended* r, const Extended* x);
inline constexpr double kExtAsinBound = 0.85;
void extAcos(Extended* r, const Extended* x);
inline constexpr double kExtAcosBound = 1.25;
void extAsinh(Extended* r, const Extended* x);
inline constexpr double kExtAsinhBound = 1.55;
void extAcosh(Extended* r, const Extended* x);
inline constexpr double kExtAcoshBound = 1.15;
void extAtanh(Extended* r, const Extended* x);
inline constexpr double kExtAtanhBound = 1.15;

}  // namespace orv
