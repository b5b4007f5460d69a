// Prints src/tables/erfinv_tables.h: the band rows of the inverse error
// functions and of the normal quantile, and the two tables of their far
// tails.
//
// The three inverses share one shape: result = s Q(w), with w the distance
// of the argument from the pole and
//   ErfInv      Q(w) = erfinv(1 - w) / (1 - w)           (s = x)
//   ErfcInv     the same Q with every value negated     (s = x - 1)
//   CdfNormInv  sqrt(2) Q(w)                            (s = 2p - 1)
// A row is a fit of Q over one band of w, as a polynomial in the reduced
// argument m of that band: with B bands per binade and the band b of the
// binade 2^e, w = 2^e (b/B + centre + m), centre = 1 + 1/(2B), and m runs
// over [-1/(2B), 1/(2B)).  Row 0 is the band just below w = 1; each binade
// of w downward takes the next B rows, 24 binades for floats and 53 for
// doubles.  Fits are Chebyshev interpolation at 160 bits (gen_fit_common.h),
// expanded in powers of m and then rounded to the slots; the comment of a
// row gives its band of w and the largest relative error of its rounded
// coefficients there, measured at 33 points of the band.
//
//   Rows11   384 x {c0, c1}            floats, linear, 16 bands per binade
//   Rows21   192 x {c0 .. c3}          floats, cubic, 8 bands per binade
//   Rows24   192 x {r0 .. r5, C0, C1}  floats, degree 5, 8 bands per binade
//   Rows26   848 x {c0 .. c3}          doubles, cubic, 16 bands per binade
//   Rows50   212 x {c0 .. c11}         doubles, degree 11, 4 bands per binade
//   Rows53   212 x {r0 .. r14, C0, C1} doubles, degree 14, 4 bands per binade
// In Rows24 and Rows53, C0 is the constant coefficient rounded and r0 the
// rounded rest; C1 is the linear coefficient cut toward zero to 12 (floats)
// or 27 (doubles) significant bits, so that its product with an argument
// masked to 12 or 26 bits is exact, and r1 the rounded rest; r2 and up are
// the other coefficients.  Rows 0 and 383 of Rows11 are fixed by the design
// of the erf inverse and taken as they stand (and only measured); the ErfcInv
// rows are those of ErfInv negated, the CdfNormInv rows their own fits.
//
// Tails, below the smallest w of the tables (only ErfcInv and CdfNormInv
// have inputs there): with r = 1 / sqrt(-ln y),
//   kErfcInvTailLog   256 rows {T high word << 32 | H high word, L}: T the
//                     multiple of 2^-10 nearest to 1 / (1 + (j + 0.5)/256),
//                     H + L = -ln T, H with its low word cleared.
//   kErfcInvTailPoly  28 rows, i = 4 .. 31, {a0, a1 .. a12, c0, c1, 0}: a
//                     fit of F(r) = -erfcinv(y) / sqrt(-ln y) in s = r - i/128
//                     over [0, 1/128] of degree 12; c0 = F(i/128) rounded,
//                     a0 the rounded rest of the constant coefficient, c1 the
//                     linear coefficient rounded to 24 significant bits, a1
//                     its rest, a2 .. a12 the others.
//   kCdfNormInvTailPoly  the same for -sqrt(2) F.
//
// Usage: gen_erfinv_tables > src/tables/erfinv_tables.h
#include <cmath>
#include <cstring>
#include <string>

#include "gen_fit_common.h"

namespace {

using fit::Big;
using fit::fromBits;

// ---- The functions ------------------------------------------------------

Big sqrtPiOver2() {
    Big pi, r;
    mpfr_const_pi(pi.get(), MPFR_RNDN);
    mpfr_sqrt(r.get(), pi.get(), MPFR_RNDN);
    return r / Big(2.0);
}

// Newton's iteration stops when a step is below 2^-150 of the root; it must
// get there in 200 steps, or the generator stops.
void converged(int iteration) {
    if (iteration > 200) {
        std::fprintf(stderr, "gen_erfinv_tables: Newton's iteration does not converge\n");
        std::exit(1);
    }
}
bool small(const Big& step, const Big& y) {
    if (mpfr_zero_p(step.get())) return true;
    return mpfr_get_exp(step.get()) < mpfr_get_exp(y.get()) - 150;
}

// y > 0 with erf(y) = x, for 0 < x <= 1/2: erf is concave on y > 0, so
// from a start near the root the steps settle on it from below.
// A start near the root, by the same iteration in x87 extended precision:
// it saves most of the steps at 160 bits.
long double startErf(long double x) {
    long double y = x * 0.886226925452758013649L;
    for (int i = 0; i < 6; ++i) y -= (erfl(y) - x) * 0.886226925452758013649L * expl(y * y);
    return y;
}
long double startErfc(long double lw) {
    long double y = sqrtl(lw);
    for (int i = 0; i < 8; ++i) {
        long double e = erfcl(y);
        y += (logl(e) + lw) * e * 0.886226925452758013649L * expl(y * y);
    }
    return y;
}
Big fromLong(long double v) {
    Big r;
    mpfr_set_ld(r.get(), v, MPFR_RNDN);
    return r;
}

Big erfinvSmall(const Big& x) {
    Big y = fromLong(startErf(mpfr_get_ld(x.get(), MPFR_RNDN))), k = Big(1.0) / sqrtPiOver2();
    for (int it = 0;; ++it) {
        Big f, d;
        mpfr_erf(f.get(), y.get(), MPFR_RNDN);
        mpfr_sqr(d.get(), y.get(), MPFR_RNDN);
        mpfr_neg(d.get(), d.get(), MPFR_RNDN);
        mpfr_exp(d.get(), d.get(), MPFR_RNDN);
        Big step = (f - x) / (k * d);
        y = y - step;
        converged(it);
        if (small(step, y)) return y;
    }
}

// y > 0 with ln erfc(y) = -lw, that is erfc(y) = w = e^-lw, for w < 1/2.
// ln erfc is concave, so the steps settle on the root from above.
Big erfcinvFromLog(const Big& lw) {
    Big y = fromLong(startErfc(mpfr_get_ld(lw.get(), MPFR_RNDN)));
    Big k = Big(1.0) / sqrtPiOver2();
    for (int it = 0;; ++it) {
        Big e, le, d;
        mpfr_erfc(e.get(), y.get(), MPFR_RNDN);
        mpfr_log(le.get(), e.get(), MPFR_RNDN);
        mpfr_sqr(d.get(), y.get(), MPFR_RNDN);
        mpfr_neg(d.get(), d.get(), MPFR_RNDN);
        mpfr_exp(d.get(), d.get(), MPFR_RNDN);
        // d/dy ln erfc(y) = -k e^(-y^2) / erfc(y)
        Big step = (le + lw) * e / (Big() - k * d);
        y = y - step;
        converged(it);
        if (small(step, y)) return y;
    }
}

// Q(w) = erfinv(1 - w) / (1 - w), 0 < w < 1.
Big q(const Big& w) {
    Big x = Big(1.0) - w;
    if (mpfr_cmp_d(w.get(), 0.5) >= 0) return erfinvSmall(x) / x;
    Big lw;
    mpfr_log(lw.get(), w.get(), MPFR_RNDN);
    mpfr_neg(lw.get(), lw.get(), MPFR_RNDN);
    return erfcinvFromLog(lw) / x;
}
Big sqrt2() {
    Big r;
    mpfr_sqrt_ui(r.get(), 2, MPFR_RNDN);
    return r;
}

// ---- Band rows ----------------------------------------------------------

enum class Family { ErfInv, CdfNormInv };

struct Tier {
    const char* name;
    int bands, binades, degree;
    bool isFloat, split;
};

// The function of row r as a function of m, and the band of w it covers.
struct Band {
    double lo, hi;  // of w
    double half;    // m in [-half, half)
    fit::Function g;
};
Band band(const Tier& t, Family f, int r) {
    int e = -1 - r / t.bands, b = t.bands - 1 - r % t.bands;
    double scale = std::ldexp(1.0, e), B = t.bands, centre = 1.0 + 0.5 / B;
    Band out;
    out.lo = scale * (1.0 + b / B);
    out.hi = scale * (1.0 + (b + 1) / B);
    out.half = 0.5 / B;
    Big offset = Big(b / B) + Big(centre);
    bool cdf = f == Family::CdfNormInv;
    out.g = [scale, offset, cdf](const Big& m) {
        Big v = q((offset + m) * Big(scale));
        return cdf ? v * sqrt2() : v;
    };
    return out;
}

double roundTo(const Big& x, bool isFloat) {
    return isFloat ? double(mpfr_get_flt(x.get(), MPFR_RNDN)) : x.toDouble();
}
double cut(const Big& x, int bits) {
    mpfr_t h;
    mpfr_init2(h, bits);
    mpfr_set(h, x.get(), MPFR_RNDZ);
    double d = mpfr_get_d(h, MPFR_RNDN);
    mpfr_clear(h);
    return d;
}

// The slots of a row, in table order, and the exact polynomial they stand for.
void rowSlots(const Tier& t, const std::vector<Big>& c, std::vector<double>& slots, std::vector<Big>& poly) {
    slots.clear();
    poly.clear();
    if (!t.split) {
        for (const Big& x : c) slots.push_back(roundTo(x, t.isFloat));
        for (double d : slots) poly.push_back(Big(d));
        return;
    }
    double C0 = roundTo(c[0], t.isFloat), r0 = roundTo(c[0] - Big(C0), t.isFloat);
    double C1 = cut(c[1], t.isFloat ? 12 : 27), r1 = roundTo(c[1] - Big(C1), t.isFloat);
    slots = {r0, r1};
    for (size_t k = 2; k < c.size(); ++k) slots.push_back(roundTo(c[k], t.isFloat));
    slots.push_back(C0);
    slots.push_back(C1);
    poly = {Big(C0) + Big(r0), Big(C1) + Big(r1)};
    for (size_t k = 2; k < c.size(); ++k) poly.push_back(Big(slots[k]));
}

void printSlots(const Tier& t, const std::vector<double>& slots, const char* comment) {
    if (!t.isFloat) {
        fit::printRow(slots, comment);
        return;
    }
    std::printf("    {");
    for (size_t k = 0; k < slots.size(); ++k) {
        uint32_t b;
        float f = float(slots[k]);
        std::memcpy(&b, &f, 4);
        std::printf("%sfloatFromBits(0x%08X)", k == 0 ? "" : ", ", b);
    }
    std::printf("},  // %s\n", comment);
}

// Rows of ErfInv's Q fixed by the design: row 0 and row 383 of Rows11.
bool givenRow(const Tier& t, Family f, int r, std::vector<double>& slots) {
    if (f != Family::ErfInv || std::string(t.name) != "11") return false;
    uint32_t given[2][2] = {{0x3F62E557, 0xBB6DB3B8}, {0x4075087F, 0xBDFB5BD4}};
    int k = r == 0 ? 0 : r == 383 ? 1 : -1;
    if (k < 0) return false;
    slots.clear();
    for (uint32_t b : given[k]) {
        float v;
        std::memcpy(&v, &b, 4);
        slots.push_back(v);
    }
    return true;
}

// Prints the rows of one tier, and returns them for the negated copy.
std::vector<std::vector<double>> table(const Tier& t, Family f, const char* name) {
    int rows = t.bands * t.binades;
    int width = t.degree + 1 + (t.split ? 2 : 0);  // r0 .. r_degree, C0, C1 when split
    std::printf("alignas(16) inline constexpr %s %s[%d][%d] = {\n", t.isFloat ? "float" : "double", name, rows,
                width);
    std::vector<std::vector<double>> all;
    double worst = -999;
    for (int r = 0; r < rows; ++r) {
        Band bd = band(t, f, r);
        std::vector<double> slots;
        std::vector<Big> poly;
        bool given = givenRow(t, f, r, slots);
        if (given) {
            for (double d : slots) poly.push_back(Big(d));
        } else {
            rowSlots(t, fit::chebyshevFit(bd.g, -bd.half, bd.half, t.degree), slots, poly);
        }
        double err = fit::log2RelativeError(bd.g, poly, -bd.half, bd.half, 32);
        worst = std::max(worst, err);
        char comment[96];
        std::snprintf(comment, sizeof comment, "w in [%.9g, %.9g): 2^%.1f%s", bd.lo, bd.hi, err,
                      given ? ", given" : "");
        printSlots(t, slots, comment);
        all.push_back(slots);
    }
    std::printf("};\n// %s: largest relative error of a row 2^%.1f\n\n", name, worst);
    return all;
}

void negated(const Tier& t, const std::vector<std::vector<double>>& rows, const char* name, const char* of) {
    std::printf("// %s: the rows of %s with every value negated.\n", name, of);
    std::printf("alignas(16) inline constexpr %s %s[%zu][%zu] = {\n", t.isFloat ? "float" : "double", name,
                rows.size(), rows[0].size());
    for (const std::vector<double>& row : rows) {
        std::vector<double> n;
        for (double d : row) n.push_back(-d);
        printSlots(t, n, "");
    }
    std::printf("};\n\n");
}

// ---- Tails --------------------------------------------------------------

void tailLog() {
    std::printf("alignas(16) inline constexpr uint64_t kErfcInvTailLog[256][2] = {\n");
    for (int j = 0; j < 256; ++j) {
        double T = std::nearbyint(1024.0 / (1.0 + (j + 0.5) / 256.0)) / 1024.0;
        Big minusLog;
        Big tb(T);
        mpfr_log(minusLog.get(), tb.get(), MPFR_RNDN);
        mpfr_neg(minusLog.get(), minusLog.get(), MPFR_RNDN);
        uint64_t hBits = fit::bitsOf(minusLog.toDouble()) & 0xFFFFFFFF00000000ull;
        double H = fromBits(hBits), L = (minusLog - Big(H)).toDouble();
        uint64_t word = (fit::bitsOf(T) & 0xFFFFFFFF00000000ull) | (hBits >> 32);
        std::printf("    {0x%016llX, 0x%016llX},  // T = %.10g\n", (unsigned long long)word,
                    (unsigned long long)fit::bitsOf(L), T);
    }
    std::printf("};\n\n");
}

// F(r) = -erfcinv(y) / sqrt(-ln y) with y = exp(-1/r^2), times `factor`.
void tailPoly(const char* name, const Big& factor) {
    std::printf("alignas(16) inline constexpr double %s[28][16] = {\n", name);
    double worst = -999;
    for (int i = 4; i <= 31; ++i) {
        Big ri = Big(double(i)) / Big(128.0);
        fit::Function g = [&](const Big& s) {
            Big r = ri + s;
            Big lw = Big(1.0) / (r * r);
            return Big() - erfcinvFromLog(lw) * r * factor;
        };
        std::vector<Big> c = fit::chebyshevFit(g, 0.0, 1.0 / 128, 12);
        double c0 = g(Big()).toDouble(), a0 = (c[0] - Big(c0)).toDouble();
        mpfr_t h;
        mpfr_init2(h, 24);
        mpfr_set(h, c[1].get(), MPFR_RNDN);
        double c1 = mpfr_get_d(h, MPFR_RNDN);
        mpfr_clear(h);
        double a1 = (c[1] - Big(c1)).toDouble();
        std::vector<double> slots = {a0, a1};
        for (int k = 2; k <= 12; ++k) slots.push_back(c[k].toDouble());
        slots.push_back(c0);
        slots.push_back(c1);
        slots.push_back(0.0);
        std::vector<Big> poly = {Big(c0) + Big(a0), Big(c1) + Big(a1)};
        for (int k = 2; k <= 12; ++k) poly.push_back(Big(slots[k]));
        double err = fit::log2RelativeError(g, poly, 0.0, 1.0 / 128, 32);
        worst = std::max(worst, err);
        char comment[96];
        std::snprintf(comment, sizeof comment, "r in [%d/128, %d/128]: 2^%.1f", i, i + 1, err);
        fit::printRow(slots, comment);
    }
    std::printf("};\n// %s: largest relative error of a row 2^%.1f\n\n", name, worst);
}

}  // namespace

int main() {
    std::printf(
        "// Generated by src/tables/gen_erfinv_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// Band rows of erfinv(1 - w) / (1 - w) (ErfInv, and negated for ErfcInv) and of sqrt(2)\n"
        "// times it (CdfNormInv), and the tables of the far tails; the comment of a row gives its\n"
        "// band and the largest relative error of its rounded coefficients there.  The generator\n"
        "// states the layouts and how the rows are fitted.\n"
        "#pragma once\n\n#include <cstdint>\n\n#include \"frame/bits.h\"\n\nnamespace orv::tables {\n\n");
    const Tier tiers[] = {{"11", 16, 24, 1, true, false}, {"21", 8, 24, 3, true, false},
                          {"24", 8, 24, 5, true, true},   {"26", 16, 53, 3, false, false},
                          {"50", 4, 53, 11, false, false}, {"53", 4, 53, 14, false, true}};
    for (const Tier& t : tiers) {
        std::string erfName = std::string("kErfInvRows") + t.name;
        std::string erfcName = std::string("kErfcInvRows") + t.name;
        std::string cdfName = std::string("kCdfNormInvRows") + t.name;
        auto rows = table(t, Family::ErfInv, erfName.c_str());
        negated(t, rows, erfcName.c_str(), erfName.c_str());
        table(t, Family::CdfNormInv, cdfName.c_str());
    }
    tailLog();
    tailPoly("kErfcInvTailPoly", Big(1.0));
    tailPoly("kCdfNormInvTailPoly", Big() - sqrt2());
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
