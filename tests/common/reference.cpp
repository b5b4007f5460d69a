#include "reference.h"

#include <mpc.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace orvtest {
namespace {

constexpr mpfr_rnd_t R = MPFR_RNDN;
// Precision of the references: 192 bits bound the error of a reference far
// below the 2^-80 ulp that could matter when it is rounded to binary64.
// Sums and differences are computed exactly instead: two doubles of far
// apart exponents need up to 2150 bits.
constexpr mpfr_prec_t kPrecision = 192;
constexpr mpfr_prec_t kExactSumPrecision = 2400;

// A scratch complex number at the working precision.
struct Complex {
    mpc_t z;
    explicit Complex(mpfr_prec_t p = kPrecision) { mpc_init2(z, p); }
    Complex(mpfr_srcptr re, mpfr_srcptr im) : Complex() { mpc_set_fr_fr(z, re, im, MPC_RNDNN); }
    ~Complex() { mpc_clear(z); }
    void to(mpfr_ptr* out) const {
        mpfr_set(out[0], mpc_realref(z), R);
        mpfr_set(out[1], mpc_imagref(z), R);
    }
};

struct Scratch {
    mpfr_t v;
    Scratch() { mpfr_init2(v, kPrecision); }
    ~Scratch() { mpfr_clear(v); }
};

// 1/sqrt(x) with rSqrt(-0) = -infinity, as IEEE 754 defines it (MPFR gives +infinity).
void invSqrt(mpfr_ptr* o, mpfr_srcptr* i) {
    if (mpfr_zero_p(i[0]))
        mpfr_set_inf(o[0], mpfr_signbit(i[0]) ? -1 : 1);
    else
        mpfr_rec_sqrt(o[0], i[0], R);
}

// Phi(x) = erfc(-x / sqrt 2) / 2.
void cdfNorm(mpfr_ptr* o, mpfr_srcptr* i) {
    Scratch s;
    mpfr_sqrt_ui(s.v, 2, R);
    mpfr_div(s.v, i[0], s.v, R);
    mpfr_neg(s.v, s.v, R);
    mpfr_erfc(o[0], s.v, R);
    mpfr_div_2ui(o[0], o[0], 1, R);
}

// ---- Inverse error functions and the normal quantile ----------------------
// MPFR has no inverse of erf, so the references solve erf(y) = x or
// erfc(y) = w by Newton's iteration at kInversePrecision bits, above the
// references' 192, from a start good to about 60 bits.  The iteration
// converges quadratically: once a step is below 2^-(P/2 - 8) of the root,
// the error after it is below 2^-(P - 16) or so, and the iteration stops.
// An iteration that does not get there aborts the test run: a reference
// that has not converged must never pass for a correct one.
constexpr mpfr_prec_t kInversePrecision = 224;

struct Wide {
    mpfr_t v;
    Wide() { mpfr_init2(v, kInversePrecision); }
    ~Wide() { mpfr_clear(v); }
};

[[noreturn]] void notConverged(const char* what, mpfr_srcptr arg) {
    std::fprintf(stderr, "reference %s: Newton's iteration did not converge at %.17g\n", what,
                 mpfr_get_d(arg, R));
    std::abort();
}
bool stepSmall(mpfr_srcptr step, mpfr_srcptr y) {
    return mpfr_zero_p(step) || mpfr_get_exp(step) < mpfr_get_exp(y) - (kInversePrecision / 2 - 8);
}

// Starts near the roots, by the same iterations in x87 extended precision,
// which save most of the steps at the working precision.  Any start
// converges: the functions below are concave, so after one step Newton's
// iterates approach the root from one side.
long double startByErf(long double x) {
    long double y = x * 0.886226925452758013649L;
    for (int i = 0; i < 6; ++i) y -= (erfl(y) - x) * 0.886226925452758013649L * expl(y * y);
    return y;
}
long double startByErfc(long double lw) {
    long double y = sqrtl(lw);
    for (int i = 0; i < 8; ++i) {
        long double e = erfcl(y);
        y += (logl(e) + lw) * e * 0.886226925452758013649L * expl(y * y);
    }
    return y;
}

// y > 0 with erf(y) = x, for 0 < x <= 1/2 (exact in x); erf is concave for
// y > 0.
void erfinvByErf(mpfr_ptr y, mpfr_srcptr x) {
    Wide k, f, d, step;
    mpfr_const_pi(k.v, R);
    mpfr_sqrt(k.v, k.v, R);
    mpfr_div_2ui(k.v, k.v, 1, R);  // sqrt(pi)/2 = 1 / erf'(0)
    mpfr_set_ld(y, startByErf(mpfr_get_ld(x, R)), R);
    for (int it = 0; it < 200; ++it) {
        mpfr_erf(f.v, y, R);
        mpfr_sub(f.v, f.v, x, R);
        mpfr_sqr(d.v, y, R);
        mpfr_exp(d.v, d.v, R);
        mpfr_mul(step.v, f.v, d.v, R);
        mpfr_mul(step.v, step.v, k.v, R);  // (erf(y) - x) / erf'(y)
        mpfr_sub(y, y, step.v, R);
        if (stepSmall(step.v, y)) return;
    }
    notConverged("erfinv", x);
}

// y > 0 with erfc(y) = w, for 0 < w <= 1/2, by the iteration on
// ln erfc(y) = ln w (ln erfc is concave).  Working
// on the logarithm keeps every quantity in range down to the smallest
// subnormal w, where y is about 27.2.
void erfcinvByErfc(mpfr_ptr y, mpfr_srcptr w) {
    Wide lw, k, e, le, d, step;
    mpfr_log(lw.v, w, R);
    mpfr_set_ld(y, startByErfc(-mpfr_get_ld(lw.v, R)), R);
    mpfr_const_pi(k.v, R);
    mpfr_sqrt(k.v, k.v, R);
    mpfr_div_2ui(k.v, k.v, 1, R);
    for (int it = 0; it < 200; ++it) {
        mpfr_erfc(e.v, y, R);
        mpfr_log(le.v, e.v, R);
        mpfr_sub(le.v, le.v, lw.v, R);
        // (ln erfc(y) - ln w) / (d/dy ln erfc(y)), d/dy = -exp(-y^2) / (erfc(y) sqrt(pi)/2)
        mpfr_sqr(d.v, y, R);
        mpfr_exp(d.v, d.v, R);
        mpfr_mul(step.v, le.v, e.v, R);
        mpfr_mul(step.v, step.v, d.v, R);
        mpfr_mul(step.v, step.v, k.v, R);
        mpfr_add(y, y, step.v, R);
        if (stepSmall(step.v, y)) return;
    }
    notConverged("erfcinv", w);
}

// erfcinv(x) for any x: the poles, the domain and the two halves.
// erfcinv(x) = erfinv(1 - x), and 1 - x, x and 2 - x are exact where used.
void erfcinvAny(mpfr_ptr o, mpfr_srcptr x) {
    if (mpfr_nan_p(x) || mpfr_cmp_ui(x, 2) > 0 || mpfr_sgn(x) < 0) {
        mpfr_set_nan(o);
        return;
    }
    if (mpfr_zero_p(x)) return mpfr_set_inf(o, 1);
    if (mpfr_cmp_ui(x, 2) == 0) return mpfr_set_inf(o, -1);
    if (mpfr_cmp_ui(x, 1) == 0) return mpfr_set_zero(o, 1);
    Wide y, a;
    bool upper = mpfr_cmp_ui(x, 1) > 0;  // erfcinv(x) = -erfcinv(2 - x)
    if (upper)
        mpfr_ui_sub(a.v, 2, x, R);
    else
        mpfr_set(a.v, x, R);
    if (mpfr_cmp_d(a.v, 0.5) > 0) {
        mpfr_ui_sub(a.v, 1, a.v, R);
        erfinvByErf(y.v, a.v);
    } else {
        erfcinvByErfc(y.v, a.v);
    }
    if (upper) mpfr_neg(y.v, y.v, R);
    mpfr_set(o, y.v, R);
}

void erfInv(mpfr_ptr* o, mpfr_srcptr* i) {
    mpfr_srcptr x = i[0];
    if (mpfr_nan_p(x) || mpfr_cmpabs_ui(x, 1) > 0) return mpfr_set_nan(o[0]);
    if (mpfr_zero_p(x)) {
        mpfr_set(o[0], x, R);
        return;
    }
    if (mpfr_cmpabs_ui(x, 1) == 0) return mpfr_set_inf(o[0], mpfr_sgn(x));
    Wide a, y;
    mpfr_abs(a.v, x, R);
    if (mpfr_cmp_d(a.v, 0.5) <= 0) {
        erfinvByErf(y.v, a.v);
    } else {
        mpfr_ui_sub(a.v, 1, a.v, R);
        erfcinvByErfc(y.v, a.v);
    }
    mpfr_setsign(o[0], y.v, mpfr_signbit(x), R);
}

void erfcInv(mpfr_ptr* o, mpfr_srcptr* i) { erfcinvAny(o[0], i[0]); }

// The normal quantile: Phi^-1(p) = -sqrt(2) erfcinv(2p); 2p is exact.
void cdfNormInv(mpfr_ptr* o, mpfr_srcptr* i) {
    if (mpfr_nan_p(i[0]) || mpfr_sgn(i[0]) < 0 || mpfr_cmp_ui(i[0], 1) > 0) return mpfr_set_nan(o[0]);
    if (mpfr_zero_p(i[0])) return mpfr_set_inf(o[0], -1);
    if (mpfr_cmp_ui(i[0], 1) == 0) return mpfr_set_inf(o[0], 1);
    if (mpfr_cmp_d(i[0], 0.5) == 0) return mpfr_set_zero(o[0], 1);
    Wide p2, y, r;
    mpfr_mul_2ui(p2.v, i[0], 1, R);
    erfcinvAny(y.v, p2.v);
    mpfr_sqrt_ui(r.v, 2, R);
    mpfr_mul(y.v, y.v, r.v, R);
    mpfr_neg(o[0], y.v, R);
}

struct Entry {
    const char* family;
    bool complexMember;
    ReferenceFn fn;
    mpfr_prec_t precision;
};

#define REAL1(fam, expr) {fam, false, [](mpfr_ptr* o, mpfr_srcptr* i) { expr; }, kPrecision}
#define CPLX(fam, expr) {fam, true, [](mpfr_ptr* o, mpfr_srcptr* i) { expr; }, kPrecision}
// A complex unary function of MPC.
#define CPLX1(fam, f) \
    CPLX(fam, Complex z(i[0], i[1]); Complex w; f(w.z, z.z, MPC_RNDNN); w.to(o))

const Entry kEntries[] = {
    // Plain arithmetic.
    {"Add", false, [](mpfr_ptr* o, mpfr_srcptr* i) { mpfr_add(o[0], i[0], i[1], R); }, kExactSumPrecision},
    {"Sub", false, [](mpfr_ptr* o, mpfr_srcptr* i) { mpfr_sub(o[0], i[0], i[1], R); }, kExactSumPrecision},
    REAL1("Mul", mpfr_mul(o[0], i[0], i[1], R)),
    REAL1("Sqr", mpfr_sqr(o[0], i[0], R)),
    REAL1("Abs", mpfr_abs(o[0], i[0], R)),
    REAL1("Div", mpfr_div(o[0], i[0], i[1], R)),
    REAL1("Inv", mpfr_ui_div(o[0], 1, i[0], R)),
    // Rounding.
    REAL1("Ceil", mpfr_ceil(o[0], i[0])),
    REAL1("Floor", mpfr_floor(o[0], i[0])),
    REAL1("Trunc", mpfr_trunc(o[0], i[0])),
    REAL1("Round", mpfr_round(o[0], i[0])),
    REAL1("Rint", mpfr_rint(o[0], i[0], R)),
    REAL1("NearbyInt", mpfr_rint(o[0], i[0], R)),
    REAL1("Modf", mpfr_modf(o[0], o[1], i[0], R)),
    // Roots and norms.
    REAL1("Sqrt", mpfr_sqrt(o[0], i[0], R)),
    {"InvSqrt", false, invSqrt, kPrecision},
    REAL1("Cbrt", mpfr_cbrt(o[0], i[0], R)),
    REAL1("InvCbrt", mpfr_cbrt(o[0], i[0], R); mpfr_ui_div(o[0], 1, o[0], R)),
    REAL1("Pow2o3", mpfr_sqr(o[0], i[0], R); mpfr_cbrt(o[0], o[0], R)),
    REAL1("Pow3o2", Scratch e; mpfr_set_d(e.v, 1.5, R); mpfr_pow(o[0], i[0], e.v, R)),
    REAL1("Hypot", mpfr_hypot(o[0], i[0], i[1], R)),
    // Exponentials, logarithms, powers.
    REAL1("Exp", mpfr_exp(o[0], i[0], R)),
    REAL1("Expm1", mpfr_expm1(o[0], i[0], R)),
    REAL1("Ln", mpfr_log(o[0], i[0], R)),
    REAL1("Log10", mpfr_log10(o[0], i[0], R)),
    REAL1("Log1p", mpfr_log1p(o[0], i[0], R)),
    REAL1("Pow", mpfr_pow(o[0], i[0], i[1], R)),
    REAL1("Powx", mpfr_pow(o[0], i[0], i[1], R)),
    // Hyperbolic.
    REAL1("Sinh", mpfr_sinh(o[0], i[0], R)),
    REAL1("Cosh", mpfr_cosh(o[0], i[0], R)),
    REAL1("Tanh", mpfr_tanh(o[0], i[0], R)),
    REAL1("Asinh", mpfr_asinh(o[0], i[0], R)),
    REAL1("Acosh", mpfr_acosh(o[0], i[0], R)),
    REAL1("Atanh", mpfr_atanh(o[0], i[0], R)),
    // Trigonometric.
    REAL1("Sin", mpfr_sin(o[0], i[0], R)),
    REAL1("Cos", mpfr_cos(o[0], i[0], R)),
    REAL1("Tan", mpfr_tan(o[0], i[0], R)),
    REAL1("SinCos", mpfr_sin_cos(o[0], o[1], i[0], R)),
    REAL1("Asin", mpfr_asin(o[0], i[0], R)),
    REAL1("Acos", mpfr_acos(o[0], i[0], R)),
    REAL1("Atan", mpfr_atan(o[0], i[0], R)),
    REAL1("Atan2", mpfr_atan2(o[0], i[0], i[1], R)),
    // Special functions.
    REAL1("Erf", mpfr_erf(o[0], i[0], R)),
    REAL1("Erfc", mpfr_erfc(o[0], i[0], R)),
    {"CdfNorm", false, cdfNorm, kPrecision},
    {"ErfInv", false, erfInv, kPrecision},
    {"ErfcInv", false, erfcInv, kPrecision},
    {"CdfNormInv", false, cdfNormInv, kPrecision},

    // Complex members.
    {"Add", true, [](mpfr_ptr* o, mpfr_srcptr* i) { mpfr_add(o[0], i[0], i[2], R); mpfr_add(o[1], i[1], i[3], R); }, kExactSumPrecision},
    {"Sub", true, [](mpfr_ptr* o, mpfr_srcptr* i) { mpfr_sub(o[0], i[0], i[2], R); mpfr_sub(o[1], i[1], i[3], R); }, kExactSumPrecision},
    CPLX("Conj", mpfr_set(o[0], i[0], R); mpfr_neg(o[1], i[1], R)),
    CPLX("Abs", Complex z(i[0], i[1]); mpc_abs(o[0], z.z, R)),
    CPLX("Arg", Complex z(i[0], i[1]); mpc_arg(o[0], z.z, R)),
    CPLX("CIS", mpfr_sin_cos(o[1], o[0], i[0], R)),
    CPLX("Mul", Complex a(i[0], i[1]); Complex b(i[2], i[3]); Complex w; mpc_mul(w.z, a.z, b.z, MPC_RNDNN); w.to(o)),
    CPLX("MulByConj", Complex a(i[0], i[1]); Complex b(i[2], i[3]); mpc_conj(b.z, b.z, MPC_RNDNN);
         Complex w; mpc_mul(w.z, a.z, b.z, MPC_RNDNN); w.to(o)),
    CPLX("Div", Complex a(i[0], i[1]); Complex b(i[2], i[3]); Complex w; mpc_div(w.z, a.z, b.z, MPC_RNDNN); w.to(o)),
    CPLX("Pow", Complex a(i[0], i[1]); Complex b(i[2], i[3]); Complex w; mpc_pow(w.z, a.z, b.z, MPC_RNDNN); w.to(o)),
    CPLX("Powx", Complex a(i[0], i[1]); Complex b(i[2], i[3]); Complex w; mpc_pow(w.z, a.z, b.z, MPC_RNDNN); w.to(o)),
    CPLX1("Exp", mpc_exp),
    CPLX1("Ln", mpc_log),
    CPLX1("Log10", mpc_log10),
    CPLX1("Sqrt", mpc_sqrt),
    CPLX1("Sin", mpc_sin),
    CPLX1("Cos", mpc_cos),
    CPLX1("Tan", mpc_tan),
    CPLX1("Sinh", mpc_sinh),
    CPLX1("Cosh", mpc_cosh),
    CPLX1("Tanh", mpc_tanh),
    CPLX1("Asin", mpc_asin),
    CPLX1("Acos", mpc_acos),
    CPLX1("Atan", mpc_atan),
    CPLX1("Asinh", mpc_asinh),
    CPLX1("Acosh", mpc_acosh),
    CPLX1("Atanh", mpc_atanh),
};

}  // namespace

Reference referenceFor(const ExportInfo& e) {
    for (const Entry& entry : kEntries)
        if (e.family == entry.family && e.isComplex() == entry.complexMember)
            return {entry.fn, entry.precision};
    return {};
}

}  // namespace orvtest
