/* The loops a user writes without a vector library: one glibc call or one
 * C operator per element, compiled as ordinary C (-O2, no fast-math, so
 * errno handling and C99 complex semantics stay as a user gets them).
 *
 * One table, family -> loop per element type.  Where glibc has no function
 * of the family (the inverse error functions, the inverse normal
 * distribution) the entry is empty and the report shows no glibc column.
 * Where the family is a composition, the loop writes the composition a user
 * would: 1/sqrtf(x) for InvSqrt, cbrtf(x*x) for Pow2o3, 0.5*erfc(-x/sqrt 2)
 * for CdfNorm, sincosf for CIS.
 *
 * The file is compiled twice: as above, and as a user building for speed
 * would (-O3 -fno-math-errno), where sqrt and division loops become
 * sqrtps/divpd loops; that build defines ORV_SCALAR_FAST and names its
 * table orvScalarFamiliesFast. */
#define _GNU_SOURCE
#include <complex.h>
#include <math.h>

#include "loops.h"

#ifdef ORV_SCALAR_FAST
#define orvScalarFamilies orvScalarFamiliesFast
#define orvScalarFamilyCount orvScalarFamilyCountFast
#endif

typedef float complex Cf;
typedef double complex Cd;

/* dst[i] = expr(x) with x = src[i]; R is the destination type (real for the
 * complex-to-real M shape). */
#define U_LOOP(name, T, R, expr)                                   \
    static void name(const OrvBenchArrays* a) {                    \
        const T* src = (const T*)a->src1;                          \
        R* dst = (R*)a->dst1;                                      \
        for (int32_t i = 0; i < a->len; ++i) {                     \
            const T x = src[i];                                    \
            dst[i] = (expr);                                       \
        }                                                          \
    }

/* dst[i] = expr(x, y) with x = src1[i], y = src2[i]. */
#define B_LOOP(name, T, expr)                                      \
    static void name(const OrvBenchArrays* a) {                    \
        const T* src1 = (const T*)a->src1;                         \
        const T* src2 = (const T*)a->src2;                         \
        T* dst = (T*)a->dst1;                                      \
        for (int32_t i = 0; i < a->len; ++i) {                     \
            const T x = src1[i], y = src2[i];                      \
            dst[i] = (expr);                                       \
        }                                                          \
    }

/* dst[i] = expr(x, y) with x = src[i] and y the constant. */
#define K_LOOP(name, T, expr)                                      \
    static void name(const OrvBenchArrays* a) {                    \
        const T* src = (const T*)a->src1;                          \
        const T y = *(const T*)a->constant;                        \
        T* dst = (T*)a->dst1;                                      \
        for (int32_t i = 0; i < a->len; ++i) {                     \
            const T x = src[i];                                    \
            dst[i] = (expr);                                       \
        }                                                          \
    }

/* Real unary families, and those with all four types. */
#define REAL_U(F, e32, e64) U_LOOP(F##_32f, float, float, e32) U_LOOP(F##_64f, double, double, e64)
#define ALL_U(F, f, d, cf, cd) \
    REAL_U(F, f(x), d(x)) U_LOOP(F##_32fc, Cf, Cf, cf(x)) U_LOOP(F##_64fc, Cd, Cd, cd(x))
#define ALL_B(F, e32, e64) \
    B_LOOP(F##_32f, float, e32) B_LOOP(F##_64f, double, e64) B_LOOP(F##_32fc, Cf, e32) B_LOOP(F##_64fc, Cd, e64)

ALL_U(Acos, acosf, acos, cacosf, cacos)
ALL_U(Acosh, acoshf, acosh, cacoshf, cacosh)
ALL_U(Asin, asinf, asin, casinf, casin)
ALL_U(Asinh, asinhf, asinh, casinhf, casinh)
ALL_U(Atan, atanf, atan, catanf, catan)
ALL_U(Atanh, atanhf, atanh, catanhf, catanh)
ALL_U(Cos, cosf, cos, ccosf, ccos)
ALL_U(Cosh, coshf, cosh, ccoshf, ccosh)
ALL_U(Exp, expf, exp, cexpf, cexp)
ALL_U(Ln, logf, log, clogf, clog)
ALL_U(Log10, log10f, log10, clog10f, clog10)
ALL_U(Sin, sinf, sin, csinf, csin)
ALL_U(Sinh, sinhf, sinh, csinhf, csinh)
ALL_U(Sqrt, sqrtf, sqrt, csqrtf, csqrt)
ALL_U(Tan, tanf, tan, ctanf, ctan)
ALL_U(Tanh, tanhf, tanh, ctanhf, ctanh)

REAL_U(Abs, fabsf(x), fabs(x))
U_LOOP(Abs_32fc, Cf, float, cabsf(x))
U_LOOP(Abs_64fc, Cd, double, cabs(x))
U_LOOP(Arg_32fc, Cf, float, cargf(x))
U_LOOP(Arg_64fc, Cd, double, carg(x))
U_LOOP(Conj_32fc, Cf, Cf, conjf(x))
U_LOOP(Conj_64fc, Cd, Cd, conj(x))
REAL_U(Cbrt, cbrtf(x), cbrt(x))
REAL_U(CdfNorm, 0.5f * erfcf(-x * (float)M_SQRT1_2), 0.5 * erfc(-x * M_SQRT1_2))
REAL_U(Ceil, ceilf(x), ceil(x))
REAL_U(Erf, erff(x), erf(x))
REAL_U(Erfc, erfcf(x), erfc(x))
REAL_U(Expm1, expm1f(x), expm1(x))
REAL_U(Floor, floorf(x), floor(x))
REAL_U(Inv, 1.0f / x, 1.0 / x)
REAL_U(InvCbrt, 1.0f / cbrtf(x), 1.0 / cbrt(x))
REAL_U(InvSqrt, 1.0f / sqrtf(x), 1.0 / sqrt(x))
REAL_U(Log1p, log1pf(x), log1p(x))
REAL_U(NearbyInt, nearbyintf(x), nearbyint(x))
REAL_U(Pow2o3, cbrtf(x * x), cbrt(x * x))
REAL_U(Pow3o2, powf(x, 1.5f), pow(x, 1.5))
REAL_U(Rint, rintf(x), rint(x))
REAL_U(Round, roundf(x), round(x))
REAL_U(Sqr, x * x, x * x)
REAL_U(Trunc, truncf(x), trunc(x))

ALL_B(Add, x + y, x + y)
ALL_B(Sub, x - y, x - y)
ALL_B(Mul, x * y, x * y)
ALL_B(Div, x / y, x / y)
B_LOOP(Pow_32f, float, powf(x, y))
B_LOOP(Pow_64f, double, pow(x, y))
B_LOOP(Pow_32fc, Cf, cpowf(x, y))
B_LOOP(Pow_64fc, Cd, cpow(x, y))
B_LOOP(MulByConj_32fc, Cf, x * conjf(y))
B_LOOP(MulByConj_64fc, Cd, x * conj(y))
B_LOOP(Atan2_32f, float, atan2f(x, y))
B_LOOP(Atan2_64f, double, atan2(x, y))
B_LOOP(Hypot_32f, float, hypotf(x, y))
B_LOOP(Hypot_64f, double, hypot(x, y))

K_LOOP(Powx_32f, float, powf(x, y))
K_LOOP(Powx_64f, double, pow(x, y))
K_LOOP(Powx_32fc, Cf, cpowf(x, y))
K_LOOP(Powx_64fc, Cd, cpow(x, y))

/* Two destinations: sine and cosine, integral and fractional parts. */
static void SinCos_32f(const OrvBenchArrays* a) {
    const float* src = (const float*)a->src1;
    float *s = (float*)a->dst1, *c = (float*)a->dst2;
    for (int32_t i = 0; i < a->len; ++i) sincosf(src[i], &s[i], &c[i]);
}
static void SinCos_64f(const OrvBenchArrays* a) {
    const double* src = (const double*)a->src1;
    double *s = (double*)a->dst1, *c = (double*)a->dst2;
    for (int32_t i = 0; i < a->len; ++i) sincos(src[i], &s[i], &c[i]);
}
static void Modf_32f(const OrvBenchArrays* a) {
    const float* src = (const float*)a->src1;
    float *whole = (float*)a->dst1, *frac = (float*)a->dst2;
    for (int32_t i = 0; i < a->len; ++i) frac[i] = modff(src[i], &whole[i]);
}
static void Modf_64f(const OrvBenchArrays* a) {
    const double* src = (const double*)a->src1;
    double *whole = (double*)a->dst1, *frac = (double*)a->dst2;
    for (int32_t i = 0; i < a->len; ++i) frac[i] = modf(src[i], &whole[i]);
}

/* Real source, complex destination: cos x + i sin x. */
static void CIS_32fc(const OrvBenchArrays* a) {
    const float* src = (const float*)a->src1;
    float* dst = (float*)a->dst1;
    for (int32_t i = 0; i < a->len; ++i) sincosf(src[i], &dst[2 * i + 1], &dst[2 * i]);
}
static void CIS_64fc(const OrvBenchArrays* a) {
    const double* src = (const double*)a->src1;
    double* dst = (double*)a->dst1;
    for (int32_t i = 0; i < a->len; ++i) sincos(src[i], &dst[2 * i + 1], &dst[2 * i]);
}

#define REAL_ROW(F, l32, l64) {#F, {{l32, F##_32f}, {l64, F##_64f}, {0, 0}, {0, 0}}}
#define CPLX_ROW(F, l32c, l64c) {#F, {{0, 0}, {0, 0}, {l32c, F##_32fc}, {l64c, F##_64fc}}}
#define ALL_ROW(F, l32, l64, l32c, l64c) {#F, {{l32, F##_32f}, {l64, F##_64f}, {l32c, F##_32fc}, {l64c, F##_64fc}}}

const OrvScalarFamily orvScalarFamilies[] = {
    ALL_ROW(Abs, "fabsf", "fabs", "cabsf", "cabs"),
    ALL_ROW(Acos, "acosf", "acos", "cacosf", "cacos"),
    ALL_ROW(Acosh, "acoshf", "acosh", "cacoshf", "cacosh"),
    ALL_ROW(Add, "a+b", "a+b", "a+b", "a+b"),
    CPLX_ROW(Arg, "cargf", "carg"),
    ALL_ROW(Asin, "asinf", "asin", "casinf", "casin"),
    ALL_ROW(Asinh, "asinhf", "asinh", "casinhf", "casinh"),
    ALL_ROW(Atan, "atanf", "atan", "catanf", "catan"),
    REAL_ROW(Atan2, "atan2f", "atan2"),
    ALL_ROW(Atanh, "atanhf", "atanh", "catanhf", "catanh"),
    REAL_ROW(Cbrt, "cbrtf", "cbrt"),
    REAL_ROW(CdfNorm, "erfcf(-x/sqrt2)/2", "erfc(-x/sqrt2)/2"),
    REAL_ROW(Ceil, "ceilf", "ceil"),
    CPLX_ROW(CIS, "sincosf", "sincos"),
    CPLX_ROW(Conj, "conjf", "conj"),
    ALL_ROW(Cos, "cosf", "cos", "ccosf", "ccos"),
    ALL_ROW(Cosh, "coshf", "cosh", "ccoshf", "ccosh"),
    ALL_ROW(Div, "a/b", "a/b", "a/b", "a/b"),
    REAL_ROW(Erf, "erff", "erf"),
    REAL_ROW(Erfc, "erfcf", "erfc"),
    ALL_ROW(Exp, "expf", "exp", "cexpf", "cexp"),
    REAL_ROW(Expm1, "expm1f", "expm1"),
    REAL_ROW(Floor, "floorf", "floor"),
    REAL_ROW(Hypot, "hypotf", "hypot"),
    REAL_ROW(Inv, "1/x", "1/x"),
    REAL_ROW(InvCbrt, "1/cbrtf", "1/cbrt"),
    REAL_ROW(InvSqrt, "1/sqrtf", "1/sqrt"),
    ALL_ROW(Ln, "logf", "log", "clogf", "clog"),
    ALL_ROW(Log10, "log10f", "log10", "clog10f", "clog10"),
    REAL_ROW(Log1p, "log1pf", "log1p"),
    REAL_ROW(Modf, "modff", "modf"),
    ALL_ROW(Mul, "a*b", "a*b", "a*b", "a*b"),
    CPLX_ROW(MulByConj, "a*conjf(b)", "a*conj(b)"),
    REAL_ROW(NearbyInt, "nearbyintf", "nearbyint"),
    ALL_ROW(Pow, "powf", "pow", "cpowf", "cpow"),
    REAL_ROW(Pow2o3, "cbrtf(x*x)", "cbrt(x*x)"),
    REAL_ROW(Pow3o2, "powf(x,1.5)", "pow(x,1.5)"),
    ALL_ROW(Powx, "powf", "pow", "cpowf", "cpow"),
    REAL_ROW(Rint, "rintf", "rint"),
    REAL_ROW(Round, "roundf", "round"),
    ALL_ROW(Sin, "sinf", "sin", "csinf", "csin"),
    REAL_ROW(SinCos, "sincosf", "sincos"),
    ALL_ROW(Sinh, "sinhf", "sinh", "csinhf", "csinh"),
    REAL_ROW(Sqr, "x*x", "x*x"),
    ALL_ROW(Sqrt, "sqrtf", "sqrt", "csqrtf", "csqrt"),
    ALL_ROW(Sub, "a-b", "a-b", "a-b", "a-b"),
    ALL_ROW(Tan, "tanf", "tan", "ctanf", "ctan"),
    ALL_ROW(Tanh, "tanhf", "tanh", "ctanhf", "ctanh"),
    REAL_ROW(Trunc, "truncf", "trunc"),
};
const int orvScalarFamilyCount = sizeof orvScalarFamilies / sizeof orvScalarFamilies[0];
