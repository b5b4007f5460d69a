#include "reference.h"

#include <mpc.h>

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
