/*
 * orvvm: element-wise vector mathematics for x86-64.
 *
 * Every vector operation applies one function to each element of the
 * caller's arrays, writes the results to dst and returns an OrvStatus:
 * negative when the call did nothing (a bad argument), zero or a positive
 * warning when every element was processed.  A warning never stops the
 * loop; when several elements warn, the status returned is that of the
 * last one in ascending element order.
 *
 * Names are orvs<Op>_<type>_<tier>: the type is 32f, 64f, 32fc or 64fc and
 * the tier is the number of significand bits the member is built to get
 * right (A11, A21, A24 for 32-bit bases, A26, A50, A53 for 64-bit bases).
 * Arrays need no alignment beyond that of their element type; dst may be
 * the same array as a source.
 *
 * This header compiles as C99 and as C++.
 */
#ifndef ORVVM_H
#define ORVVM_H

#include <stdint.h>

#if defined(ORVVM_BUILDING_LIBRARY)
#define ORVVM_API __attribute__((visibility("default")))
#else
#define ORVVM_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Element types: IEEE binary32 and binary64, and complex records of two,
   re first, adjacent in memory. */
typedef float Orv32f;
typedef double Orv64f;
typedef struct {
    Orv32f re;
    Orv32f im;
} Orv32fc;
typedef struct {
    Orv64f re;
    Orv64f im;
} Orv64fc;

/* Result of every vector operation. */
typedef int32_t OrvStatus;
enum {
    orvStatusOk = 0,            /* all elements processed, no warning */
    orvStatusBadLength = -6,    /* len <= 0; nothing read or written */
    orvStatusNullPointer = -8,  /* an array pointer is null; nothing read or written */
    orvStatusOverflow = 12,     /* a finite argument gave a result too large */
    orvStatusUnderflow = 17,    /* a finite argument gave a result too small */
    orvStatusSingularity = 18,  /* an argument stood on a pole */
    orvStatusDomain = 19        /* an argument lay outside the domain */
};

/* The library's version record: constant, owned by the library. */
typedef struct {
    int32_t major;
    int32_t minor;
    int32_t buildMajor;
    int32_t buildMinor;
    char processorTag[4];
    const char* fileName;
    const char* versionText;
    const char* buildDate;
} OrvLibraryVersion;

/* Returns the same constant record on every call; never null. */
ORVVM_API const OrvLibraryVersion* orvvmGetLibVersion(void);

/* ---- Plain arithmetic -------------------------------------------------
 * Exact or single correctly rounded operations, highest tier only.  They
 * run with no floating-point guard: results follow the caller's rounding
 * mode, flush-to-zero and denormals-are-zero.  Always orvStatusOk after the
 * argument checks (len first, then pointers). */

/* Add: dst[i] = src1[i] + src2[i].  Shape B.  Real members handle any
   overlap of dst with a source as an ascending scalar loop would. */
ORVVM_API OrvStatus orvsAdd_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAdd_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAdd_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsAdd_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);

/* Sub: dst[i] = src1[i] - src2[i].  Shape B. */
ORVVM_API OrvStatus orvsSub_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSub_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSub_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsSub_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);

/* Mul (real): dst[i] = src1[i] * src2[i].  Shape B. */
ORVVM_API OrvStatus orvsMul_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsMul_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);

/* Sqr: dst[i] = src[i] * src[i].  Shape U. */
ORVVM_API OrvStatus orvsSqr_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSqr_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* Abs (real): dst[i] = |src[i]|, computed as src[i] times 1.0 carrying the
   sign of src[i]: a NaN keeps its sign and comes out quiet, and a denormal
   reads as zero under denormals-are-zero.  Shape U. */
ORVVM_API OrvStatus orvsAbs_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAbs_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* Conj: dst[i] = conjugate of src[i]; the sign bit of im is inverted by an
   exclusive or (no flag, NaN payloads kept).  Shape U. */
ORVVM_API OrvStatus orvsConj_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsConj_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len);

/* ---- Complex products ----------------------------------------------------
 * Mul (complex): dst[i] = src1[i] * src2[i] = (ac - bd) + (ad + bc)i, and
 * MulByConj: dst[i] = src1[i] * conj(src2[i]) = (ac + bd) + (bc - ad)i, with
 * a + bi = src1[i] and c + di = src2[i].  Shape B.  The tiers differ in how
 * well they keep a component whose two products nearly cancel: A11 and A26
 * use the plain formula in the element's precision (such a component may
 * lose all its bits; they keep the caller's denormals-are-zero); the 32fc
 * A21/A24 compute in binary64, where the products are exact, and round
 * once; the 64fc A50/A53 fold in the exact rounding error of every
 * product.  A21 = A24 and A50 = A53.  Overflow and underflow give no
 * warning: every completed call returns orvStatusOk. */
ORVVM_API OrvStatus orvsMul_32fc_A11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMul_32fc_A21(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMul_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMul_64fc_A26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMul_64fc_A50(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMul_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMulByConj_32fc_A11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMulByConj_32fc_A21(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMulByConj_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMulByConj_64fc_A26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMulByConj_64fc_A50(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsMulByConj_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);

/* ---- Rounding -------------------------------------------------------------
 * Round to an integral value, kept in the floating-point type; exact, no
 * tier, no warning.  Shape U, Modf shape S.  Arguments checked from the last
 * pointer to the first, then len.  Ceil rounds up, Floor down, Trunc toward
 * zero, Round to nearest with ties away from zero, whatever the caller's
 * mode; Rint and NearbyInt (one function) round in the caller's current
 * mode and raise inexact when they drop a fraction.  The sign of zero is
 * kept: -0 gives -0, and a result of zero has the sign of the argument.
 * Modf writes the integral part (toward zero) to dstInt and the fraction to
 * dstFrac; the fraction of an integer or an infinity is a zero with the
 * sign of the argument.  NaN gives a quiet NaN (in both Modf outputs). */
ORVVM_API OrvStatus orvsCeil_32f(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCeil_64f(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsFloor_32f(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsFloor_64f(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsTrunc_32f(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsTrunc_64f(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsRound_32f(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsRound_64f(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsRint_32f(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsRint_64f(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsNearbyInt_32f(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsNearbyInt_64f(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsModf_32f(const Orv32f* src, Orv32f* dstInt, Orv32f* dstFrac, int32_t len);
ORVVM_API OrvStatus orvsModf_64f(const Orv64f* src, Orv64f* dstInt, Orv64f* dstFrac, int32_t len);

/* ---- Exponential (real) -----------------------------------------------
 * Exp: dst[i] = e^src[i].  Shape U.  Arguments checked dst, src, then len;
 * results do not depend on the caller's rounding or flush modes (a caller's
 * flush-to-zero still gets subnormal results).
 * Warnings: orvStatusOverflow for a finite argument whose result overflows
 * (at or above 88.72283935546875 for 32f, 709.7827128933841 for 64f; the
 * result is +inf), orvStatusUnderflow for a result below the smallest
 * normal number, subnormal or +0.  A24 returns +0 from -103.27893829345703
 * down, where e^x is just below the smallest subnormal; A21 from
 * -103.97208404541016 down.
 * +inf gives +inf and -inf gives +0, with no warning.  A NaN gives no
 * warning: A11 returns it unchanged (a signalling NaN stays signalling),
 * A21, A24, A26 and A50 return it made quiet, A53 returns the pattern with
 * all 64 bits set, whatever the NaN. */
ORVVM_API OrvStatus orvsExp_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* Exp (complex): dst[i] = e^re (cos im + i sin im).  Arguments checked len,
   then src, dst; status always orvStatusOk.  Special values as C99 cexp:
   a zero imaginary part gives e^re + i im (its sign kept); an infinite or
   NaN imaginary part gives NaN parts (invalid raised for an infinite one),
   except beside re = -inf (+0 + i0) and re = +inf (+inf + i NaN).  The x87
   word is held at 64-bit precision for the call; MXCSR is the caller's.
   32fc A11 and A21 are one routine, and so are the three 64fc tiers. */
ORVVM_API OrvStatus orvsExp_32fc_A11(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_32fc_A21(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_64fc_A26(const Orv64fc* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_64fc_A50(const Orv64fc* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsExp_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len);

/* ---- Exponential minus one ---------------------------------------------
 * Expm1: dst[i] = e^src[i] - 1, with full relative accuracy near 0 (tiny
 * and subnormal x give x).  Shape U.  Arguments checked len, then src, dst;
 * the x87 control word is held at double precision for the call, MXCSR is
 * the caller's.  Warning: orvStatusOverflow, with the IEEE overflow and
 * inexact flags, for a finite x at or above 88.72283935546875 (32f) or
 * 709.7827128933841 (64f); the result is +inf.  Large negative x gives -1,
 * -inf gives -1 and +inf gives +inf, with no warning; -0 gives -0; a NaN
 * gives that NaN made quiet. */
ORVVM_API OrvStatus orvsExpm1_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsExpm1_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsExpm1_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsExpm1_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsExpm1_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsExpm1_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* ---- Roots and norms ---------------------------------------------------
 * Square root, reciprocal square root, hypotenuse and complex magnitude,
 * by multiplications on the processor's 12-bit reciprocal square root
 * estimate.  Round to nearest inside the call whatever the caller's
 * MXCSR.  The A11 members of Sqrt and InvSqrt for 32f are that estimate
 * itself, and the A21 members and the low bits of others follow it: their
 * results may differ between processor makers. */

/* Sqrt (real): dst[i] = sqrt(src[i]).  Shape U.  -0 gives -0; a negative
   argument gives a NaN and orvStatusDomain. */
ORVVM_API OrvStatus orvsSqrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* Sqrt (complex): the principal root, real part >= 0 and imaginary part
   with the sign of Im src[i] (signed zeros included).  Special values as
   C99 csqrt: an infinite imaginary part gives +inf + i that infinity, also
   beside a NaN; -inf + iy gives +0 + i inf, +inf + iy gives +inf + i 0
   with the sign of y (NaN in the other part for a NaN y); a NaN elsewhere
   gives NaN + i NaN.  Arguments checked len, then src, dst; status always
   orvStatusOk.  32fc A11 and A21 are one routine, and so are 64fc A26 and
   A50; the 64fc A26 and A50 members run in the caller's MXCSR modes. */
ORVVM_API OrvStatus orvsSqrt_32fc_A11(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_32fc_A21(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_64fc_A26(const Orv64fc* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_64fc_A50(const Orv64fc* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsSqrt_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len);

/* InvSqrt: dst[i] = 1 / sqrt(src[i]).  Shape U.  +-0 gives +-infinity and
   orvStatusSingularity; a negative argument gives a NaN and
   orvStatusDomain.  In orvsInvSqrt_32f_A24 a block of 8 elements that
   holds a zero, a negative or a denormal element is computed as a whole
   by a slower route, and when it holds both a zero and a negative element
   it returns orvStatusDomain whichever comes last.  orvsInvSqrt_64f_A26
   and orvsInvSqrt_64f_A50 give equal results. */
ORVVM_API OrvStatus orvsInvSqrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvSqrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvSqrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvSqrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvSqrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvSqrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* Hypot: dst[i] = sqrt(src1[i]^2 + src2[i]^2) without intermediate
   overflow or underflow.  Shape B.  An infinite operand gives +infinity
   even beside a NaN.  All tiers of a type give equal results.  Always
   orvStatusOk after the argument checks. */
ORVVM_API OrvStatus orvsHypot_32f_A11(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsHypot_32f_A21(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsHypot_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsHypot_64f_A26(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsHypot_64f_A50(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsHypot_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);

/* Abs (complex): dst[i] = |src[i]| = sqrt(re^2 + im^2), the same
   computation as Hypot of re and im.  Shape M: complex source, real
   destination.  All tiers of a type give equal results.  Always
   orvStatusOk after the argument checks. */
ORVVM_API OrvStatus orvsAbs_32fc_A11(const Orv32fc* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAbs_32fc_A21(const Orv32fc* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAbs_32fc_A24(const Orv32fc* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAbs_64fc_A26(const Orv64fc* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAbs_64fc_A50(const Orv64fc* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAbs_64fc_A53(const Orv64fc* src, Orv64f* dst, int32_t len);

/* ---- Rational powers ----------------------------------------------------
 * Cube root, its reciprocal, x^(2/3) and x^(3/2), from one table-driven
 * kernel: the exponent divided by 3 (or 2), a table of 128 centres per
 * binade and a short polynomial.  Round to nearest inside the call
 * whatever the caller's MXCSR.  Exact powers give exact results in every
 * tier above the lowest (and, for Pow2o3, above A26).  The 64f A26 and A50
 * members of Cbrt, InvCbrt and Pow3o2, and the 64f A50 and A53 members of
 * Pow2o3, give equal results. */

/* Cbrt: dst[i] = cbrt(src[i]), odd in x.  Shape U.  +-0 and +-inf give
   themselves.  Always orvStatusOk after the argument checks. */
ORVVM_API OrvStatus orvsCbrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCbrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCbrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCbrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCbrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCbrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* InvCbrt: dst[i] = 1 / cbrt(src[i]), odd in x.  Shape U.  +-0 gives
   +-infinity and orvStatusSingularity; +-inf gives +-0. */
ORVVM_API OrvStatus orvsInvCbrt_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvCbrt_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvCbrt_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvCbrt_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvCbrt_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsInvCbrt_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* Pow2o3: dst[i] = cbrt(src[i]^2), even in x.  Shape U.  +-0 gives +0,
   +-inf gives +inf.  Always orvStatusOk after the argument checks. */
ORVVM_API OrvStatus orvsPow2o3_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow2o3_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow2o3_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow2o3_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow2o3_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow2o3_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* Pow3o2: dst[i] = src[i]^(3/2), rounded once.  Shape U.  A negative finite
   argument gives a NaN and orvStatusDomain; -0 gives +0 and -inf gives
   +inf, as pow(x, 1.5) does; a result beyond the largest finite value is
   +inf with no warning. */
ORVVM_API OrvStatus orvsPow3o2_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow3o2_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow3o2_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow3o2_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow3o2_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow3o2_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* ---- Logarithms ---------------------------------------------------------
 * Ln: dst[i] = ln(src[i]).  Log10: dst[i] = log10(src[i]).  Shape U.
 * Zero (either sign) gives -inf and orvStatusSingularity; a negative
 * argument, -inf included, gives a NaN and orvStatusDomain; the call
 * returns the warning of the last element that warned.  +inf gives +inf; a
 * NaN gives a NaN (made quiet in the A11 and A21 tiers, kept bit for bit in
 * the others).  The NaN for a negative argument is 0xFFC00000 for 32f,
 * except 0x7FFC0000 from orvsLn_32f_A24, and 0xFFF8000000000000 for 64f.
 * A denormal argument never warns.
 * The 64f A26 members check len first, then the pointers, and run in the
 * caller's MXCSR rounding and denormal modes (their x87 precision is set to
 * 53 bits for the call); the other members check dst, src, then len, and
 * run in round to nearest with denormals honoured whatever the caller set.
 * orvsLn_64f_A50 and orvsLn_64f_A53 are one routine, and so are
 * orvsLog10_64f_A50 and orvsLog10_64f_A53. */
ORVVM_API OrvStatus orvsLn_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLn_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLn_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLn_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsLn_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsLn_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* Log10 (complex): dst[i] = log10|src[i]| + i arg(src[i]) log10(e), the
   argument in [-pi, pi] with the sign of the imaginary part (the cut along
   the negative real axis, a signed zero choosing its side).  0 gives -inf
   (divide-by-zero raised); an infinite part gives +inf; a NaN gives NaN
   parts (+inf beside an infinite other part).  Arguments checked len, then
   src, dst; status always orvStatusOk.  The three tiers of a width are one
   routine. */
ORVVM_API OrvStatus orvsLog10_32fc_A11(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_32fc_A21(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_64fc_A26(const Orv64fc* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_64fc_A50(const Orv64fc* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsLog10_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len);

/* ---- Logarithm of one plus x -------------------------------------------
 * Log1p: dst[i] = ln(1 + src[i]), with full relative accuracy near 0 (tiny
 * and subnormal x give x).  Shape U.  Arguments checked len, then src, dst;
 * the x87 control word is held at double precision for the call, MXCSR is
 * the caller's.  Warnings, each with its IEEE flag: orvStatusSingularity
 * for x = -1 (result -inf), orvStatusDomain for x below -1 or -inf (result
 * the default NaN, 0xFFC00000 or 0xFFF8000000000000).  +inf gives +inf, -0
 * gives -0, a NaN gives that NaN made quiet, with no warning. */
ORVVM_API OrvStatus orvsLog1p_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog1p_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog1p_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog1p_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog1p_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsLog1p_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* ---- Powers ---------------------------------------------------------------
 * Pow: dst[i] = src1[i] raised to src2[i].  Shape B.
 * Powx: dst[i] = src[i] raised to constant.  Shape K.
 * Special values as C99 pow: y = +-0 or x = +1 gives 1.0 even with a NaN
 * partner, and so does x = -1 with y = +-inf; otherwise a NaN operand is
 * returned bit for bit (x's first).  A negative finite x with a finite
 * non-integer y gives a NaN (0xFFC00000, 0xFFF8000000000000) and a zero x
 * with a negative y gives an infinity (-inf for x = -0 and odd y); both warn
 * orvStatusDomain and raise the invalid flag.  That is the only warning:
 * overflow and underflow store the infinity, zero or denormal with no
 * status.  The 64f A26 members check len first, then the pointers, and run
 * in the caller's MXCSR modes; the others check dst, the sources, then len,
 * in round to nearest with denormals honoured.  The three 32f Pow tiers are
 * one routine; so are Powx 32f A11 and A21.  Powx multiplies out y = 2
 * (every member but 64f A26) and y = 3, 4 (32f A11, A21, 64f A50) with no
 * special-value logic and no status. */
ORVVM_API OrvStatus orvsPow_32f_A11(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow_32f_A21(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow_64f_A26(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow_64f_A50(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPow_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPowx_32f_A11(const Orv32f* src, Orv32f constant, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPowx_32f_A21(const Orv32f* src, Orv32f constant, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPowx_32f_A24(const Orv32f* src, Orv32f constant, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsPowx_64f_A26(const Orv64f* src, Orv64f constant, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPowx_64f_A50(const Orv64f* src, Orv64f constant, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsPowx_64f_A53(const Orv64f* src, Orv64f constant, Orv64f* dst, int32_t len);

/* ---- Hyperbolic functions (real) ---------------------------------------
 * Sinh: dst[i] = sinh(src[i]).  Cosh: dst[i] = cosh(src[i]).  Shape U.
 * Arguments checked dst, src, then len; round to nearest inside the call
 * whatever the caller's MXCSR.  Both run one exponential reduction on
 * |src[i]|, so cosh(-x) and cosh(x) are the same bits, and sinh(-x) is
 * -sinh(x) bit for bit.  Warning: orvStatusOverflow for a finite argument
 * whose result overflows (|x| above 89.4159851 for 32f, at or above
 * 710.475860073944 for 64f); the result is infinity (with the sign of x for
 * Sinh).  +-inf gives +inf (Cosh) or x (Sinh), +-0 gives 1.0 (Cosh) or x
 * (Sinh), with no warning.  A NaN gives no warning: the 64f A53 members
 * return the pattern with all 64 bits set, orvsSinh_64f_A26/A50 return it
 * unchanged, the others return it made quiet.  The 64f A26 and A50 members
 * are one routine. */
ORVVM_API OrvStatus orvsCosh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCosh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCosh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCosh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCosh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCosh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSinh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSinh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSinh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSinh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSinh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSinh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* Tanh: dst[i] = tanh(src[i]).  Shape U.  A piecewise polynomial in |x|
 * picked from the high bits of x; tanh(-x) is -tanh(x) bit for bit, -0
 * gives -0.  |x| from 10 (32f) or 20 (64f) on, and +-inf, give 1.0 with the
 * sign of x; a NaN comes back (quiet in 32f).  Never a warning: the status
 * is orvStatusOk after the argument checks.  orvsTanh_64f_A26 and
 * orvsTanh_64f_A50 are one routine. */
ORVVM_API OrvStatus orvsTanh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsTanh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsTanh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsTanh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsTanh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsTanh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* Acosh, Asinh, Atanh (real): dst[i] = acosh, asinh or atanh of src[i].
 * Shape U.  Each is the logarithm of a number built from |x| with its low
 * bits kept, so asinh and atanh keep full relative accuracy next to 0 and
 * acosh next to 1.  asinh and atanh are odd bit for bit (-0 gives -0),
 * acosh(1) is +0, +-inf give +-inf (asinh) and +inf (acosh).  Acosh warns
 * orvStatusDomain for x < 1 (the default NaN; orvsAcosh_64f_A53 also raises
 * invalid).  Atanh warns orvStatusSingularity for x = +-1 (+-inf) and
 * orvStatusDomain for |x| > 1 (the default NaN); within a rejected block of
 * all its members but orvsAtanh_64f_A53 the singularity is written last.
 * A NaN gives that NaN made quiet, no status.  The 64f A26 and A50 members
 * of each family are one routine. */
ORVVM_API OrvStatus orvsAcosh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcosh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcosh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcosh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcosh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcosh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsinh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsinh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsinh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsinh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsinh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsinh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtanh_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtanh_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtanh_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtanh_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtanh_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtanh_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* ---- Division and reciprocal -------------------------------------------
 * Real members.  The lower tiers avoid the hardware division: A11 uses the
 * processor's approximate reciprocal (rcpps, about 12 bits) and A21 adds
 * one Newton step to it, so the bits of their results depend on the
 * processor; A26 and A50 share one division among four or eight elements.
 * A24 and A53 divide outright.  The only warning is orvStatusSingularity
 * (a zero divisor), whose condition depends on the member; results of a
 * zero divisor are those of IEEE division. */

/* Div (real): dst[i] = src1[i] / src2[i].  Shape B.  Warns for a zero
   divisor: in the 32f members when the numerator is not NaN, in
   orvsDiv_64f_A26/A50 always, in orvsDiv_64f_A53 when the numerator is
   finite (that member also raises the divide-by-zero flag, and under the
   caller's denormals-are-zero reads denormal operands as zero).
   orvsDiv_64f_A26 and orvsDiv_64f_A50 are one function. */
ORVVM_API OrvStatus orvsDiv_32f_A11(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_32f_A21(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_64f_A26(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_64f_A50(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);

/* Div (complex): dst[i] = src1[i] / src2[i].  Shape B.  Special values as
   C99 Annex G gives them: a finite value over an infinity is a zero, an
   infinity over a finite value an infinity, a nonzero value over zero an
   infinity, each with the signs of the plain formula.  A11 and A26 work in
   the element's precision with a scaled divisor (they keep the caller's
   denormals-are-zero); the 32fc A21/A24 compute in binary64 and round
   once; the 64fc A50/A53 use exact products and the x87's wide exponent,
   so no intermediate term overflows or underflows where the quotient is
   representable.  A21 = A24 and A50 = A53.  Every completed call returns
   orvStatusOk. */
ORVVM_API OrvStatus orvsDiv_32fc_A11(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_32fc_A21(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_64fc_A26(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_64fc_A50(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsDiv_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst, int32_t len);

/* Inv: dst[i] = 1 / src[i].  Shape U.  Warns for src[i] = +-0 in every
   member; orvsInv_64f_A53 also raises the divide-by-zero flag and, under
   the caller's denormals-are-zero, reads a denormal as zero.
   orvsInv_64f_A26 and orvsInv_64f_A50 give equal results. */
ORVVM_API OrvStatus orvsInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);

/* ---- Sine and cosine (real) ---------------------------------------------
 * Sin, Cos: dst[i] = sin src[i], cos src[i].  Shape U.  Arguments checked
 * dst, src, then len; orvsSin_64f_A26 and orvsCos_64f_A26 check len first,
 * then src and dst.  Results do not depend on the caller's rounding or
 * flush modes.  Every finite argument has a result, however large.
 * Warning: orvStatusDomain for +-inf, whose result is the default NaN
 * (0xFFC00000 for 32f, 0xFFF8000000000000 for 64f), with the invalid flag.
 * A NaN comes back quiet, with no warning.
 * The block paths hold |x| up to 4000 (orvsSin_32f_A11), 10000 (the other
 * 32f members) and 90112 (64f); a block of 8 (32f A11, A21), 16 (32f A24)
 * or 4 (64f) with an element beyond that, or an infinity or NaN, is
 * computed element by element in double precision, so the last bits of an
 * element's result may depend on its neighbours.  sin(-0) is +0 but in
 * orvsSin_32f_A24.  orvsSin_64f_A50 and orvsSin_64f_A53 are one routine,
 * and so are orvsCos_64f_A50 and orvsCos_64f_A53. */
ORVVM_API OrvStatus orvsSin_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSin_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSin_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsSin_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSin_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsSin_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCos_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCos_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCos_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCos_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCos_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCos_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* ---- Joint sine-cosine, unit phasor and tangent (real) ------------------
 * SinCos: dstSin[i] = sin src[i], dstCos[i] = cos src[i].  Shape S.
 * Arguments checked dstCos, dstSin, src, then len; orvsSinCos_64f_A26
 * checks len first, then src, dstSin, dstCos.  Either destination may be
 * src itself.  Warning: orvStatusDomain for +-inf, whose results are the
 * default NaN in both arrays, with the invalid flag.
 * sin(-0) is +0 but in orvsSinCos_64f_A50; cos(+-0) is 1.
 * CIS: dst[i].re = cos src[i], dst[i].im = sin src[i], from a real array.
 * Shape P.  Never warns: +-inf gives the default NaN in both parts, with no
 * flag.  The three tiers of each type are one routine.
 * Tan: dst[i] = tan src[i].  Shape U.  Arguments checked dst, src, then
 * len; orvsTan_64f_A53 checks len first.  Values near the poles come out
 * large and finite, with no warning; orvStatusDomain for +-inf, as Sin.
 * All: every finite argument has a result, however large; a NaN comes back
 * quiet, with no warning.  The block paths hold |x| up to 10000 (32f),
 * 90112 (SinCos 64f A26, A53, CIS 64fc) or 128000 (SinCos 64f A50, Tan
 * 64f); a block with an element beyond that, an infinity or a NaN is
 * computed element by element in double precision, so the last bits of an
 * element's result may depend on its neighbours (not in orvsTan_64f_A53). */
ORVVM_API OrvStatus orvsSinCos_32f_A11(const Orv32f* src, Orv32f* dstSin, Orv32f* dstCos, int32_t len);
ORVVM_API OrvStatus orvsSinCos_32f_A21(const Orv32f* src, Orv32f* dstSin, Orv32f* dstCos, int32_t len);
ORVVM_API OrvStatus orvsSinCos_32f_A24(const Orv32f* src, Orv32f* dstSin, Orv32f* dstCos, int32_t len);
ORVVM_API OrvStatus orvsSinCos_64f_A26(const Orv64f* src, Orv64f* dstSin, Orv64f* dstCos, int32_t len);
ORVVM_API OrvStatus orvsSinCos_64f_A50(const Orv64f* src, Orv64f* dstSin, Orv64f* dstCos, int32_t len);
ORVVM_API OrvStatus orvsSinCos_64f_A53(const Orv64f* src, Orv64f* dstSin, Orv64f* dstCos, int32_t len);
ORVVM_API OrvStatus orvsCIS_32fc_A11(const Orv32f* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsCIS_32fc_A21(const Orv32f* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsCIS_32fc_A24(const Orv32f* src, Orv32fc* dst, int32_t len);
ORVVM_API OrvStatus orvsCIS_64fc_A26(const Orv64f* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsCIS_64fc_A50(const Orv64f* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsCIS_64fc_A53(const Orv64f* src, Orv64fc* dst, int32_t len);
ORVVM_API OrvStatus orvsTan_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsTan_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsTan_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsTan_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsTan_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsTan_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* ---- Error functions -----------------------------------------------------
 * Erf: dst[i] = erf(src[i]).  Shape U.  Never warns.  +-inf gives +-1,
 * +-0 gives +-0, a NaN comes back quiet (A11 gives the NaN of its
 * polynomial, the other 32f members the input quieted, the 64f members the
 * input's bits unchanged).  From |x| = 3 (A11), 4 (A21, A24) or 6 (64f)
 * on the result is +-1.
 * Erfc: dst[i] = erfc(src[i]), to full relative accuracy down into the
 * subnormal results of the far positive tail.  Shape U.  Warns
 * orvStatusUnderflow when an element that a block could not take whole, or
 * one of the last len mod 4 (len mod 8 in A11), gives a result below the
 * smallest normal number: x at or above 9.19454956 in 32f, above
 * 26.543258 in A26 and A50, and from 27.226017 on (a result of +0) in
 * A53.  +inf gives +0, -inf and large negative x give 2.0, +-0 gives 1.0.
 * A NaN comes back unchanged in A11, A26, A50 and as x * 2 (A21, A24) or
 * x * x (A53) otherwise.  orvsErfc_64f_A26 and orvsErfc_64f_A50 give
 * equal results. */
ORVVM_API OrvStatus orvsErf_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErf_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErf_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErf_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErf_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErf_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfc_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfc_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfc_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfc_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfc_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfc_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* CdfNorm: dst[i] = Phi(src[i]), the standard normal distribution function
 * 0.5 * erfc(-x / sqrt 2), to full relative accuracy down into the subnormal
 * results of the lower tail.  Shape U.  Above an upper limit (5.42 for
 * floats, 8.29 for doubles) the result is 1.0; below a lower limit
 * (-14.17 for floats, -38.49 for doubles, -37.52 in orvsCdfNorm_64f_A26)
 * it is +0, and every finite such element warns orvStatusUnderflow and
 * raises the underflow flag (not in orvsCdfNorm_64f_A26, which has no
 * warning).  -inf gives +0, +inf 1.0, +-0 give 0.5, a NaN gives a NaN.
 * The x87 control word is guarded; MXCSR is used as the caller set it.
 * orvsCdfNorm_32f_A11 and orvsCdfNorm_32f_A21 give equal results. */
ORVVM_API OrvStatus orvsCdfNorm_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNorm_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNorm_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNorm_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNorm_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNorm_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* ---- Inverse error functions and the normal quantile -----------------------
 * ErfInv: dst[i] = erfinv(src[i]), -1 < x < 1.  ErfcInv: dst[i] =
 * erfcinv(src[i]), 0 < x < 2.  CdfNormInv: dst[i] = the p-quantile of the
 * standard normal distribution, 0 < p < 1.  Shape U; accurate right up to
 * the poles and, for ErfcInv and CdfNormInv, down to the smallest
 * subnormal arguments.  The poles (ErfInv +-1, ErfcInv 0 and 2, CdfNormInv
 * 0 and 1) give infinities with orvStatusSingularity and the divide-by-zero
 * flag; arguments outside the domain (infinities included) give the
 * default NaN with orvStatusDomain and the invalid flag; the last warning
 * in array order is returned.  A NaN gives x * x, no status.  ErfInv keeps
 * the sign of zero; erfcinv(1) and the quantile of 0.5 are +0.  These
 * members touch neither MXCSR nor the x87 control word: they compute in
 * the caller's rounding mode. */
ORVVM_API OrvStatus orvsErfInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfcInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfcInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfcInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfcInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfcInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsErfcInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNormInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNormInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNormInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNormInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNormInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsCdfNormInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
/* ---- Inverse trigonometric functions ------------------------------------
 * Asin, Acos: the whole domain is handled in the block loop.  +-1 give
 * exact values (Asin: +-pi/2, Acos: 0 and pi); |x| > 1 and the infinities
 * give the default NaN (0xFFC00000, 0xFFF8000000000000) with
 * orvStatusDomain and the invalid flag; a NaN is returned as stored, not
 * made quiet.  orvsAsin_64f_A26 and orvsAsin_64f_A50 are one computation,
 * and so are orvsAcos_64f_A26 and orvsAcos_64f_A50.
 * Atan: no warning; NaN and the infinities take the ordinary arithmetic
 * (+-inf give +-pi/2, a NaN a quiet NaN with its sign).  The A11 and A21
 * tiers use the processor's approximate reciprocal (rcpps), so the bits of
 * their results depend on the processor.  orvsAtan_64f_A50 and
 * orvsAtan_64f_A53 are one computation.
 * Atan2: dst[i] = the angle of the point (x, y) = (src2[i], src1[i]): src1
 * holds y.  Arg: dst[i] = the phase of src[i], Atan2 of (im, re).  No
 * warning; the signed zeros and infinities follow C99 atan2.  A block that
 * holds a zero, an infinity, a NaN or an extreme operand is computed by a
 * double-double routine, so an element's last bits in the lower tiers may
 * depend on its neighbours. */
ORVVM_API OrvStatus orvsAsin_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsin_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsin_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsin_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsin_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAsin_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcos_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcos_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcos_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcos_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcos_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAcos_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan2_32f_A11(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan2_32f_A21(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan2_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan2_64f_A26(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan2_64f_A50(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsAtan2_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsArg_32fc_A11(const Orv32fc* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsArg_32fc_A21(const Orv32fc* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsArg_32fc_A24(const Orv32fc* src, Orv32f* dst, int32_t len);
ORVVM_API OrvStatus orvsArg_64fc_A26(const Orv64fc* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsArg_64fc_A50(const Orv64fc* src, Orv64f* dst, int32_t len);
ORVVM_API OrvStatus orvsArg_64fc_A53(const Orv64fc* src, Orv64f* dst, int32_t len);

#ifdef __cplusplus
}
#endif

#endif /* ORVVM_H */
