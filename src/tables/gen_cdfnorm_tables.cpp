// Prints src/tables/cdfnorm_tables.h: the rows of
// G(a) = exp(a^2 / 2) erfc(a / sqrt 2) / 2, a = |x|, for orvsCdfNorm_32f_*
// and orvsCdfNorm_64f_*.  Phi(-a) = exp(-a^2 / 2) G(a), and G falls only like
// 1/(a sqrt(2 pi)), so a polynomial for G keeps its relative accuracy far
// into the lower tail.
//
// Each row is a fit of G over one band in t = a - centre, the centre being
// the band's lower edge (gen_fit_common.h: Chebyshev interpolation at 160
// bits, then rounding to the slots); the relative error its rounded
// coefficients reach on the band is printed next to it.  Row 0 serves the
// band from 0 and holds G's own first Taylor coefficients g0 = 1/2,
// g1 = -1/sqrt(2 pi), g2 = 1/4 (row 0 of A21 is G's cubic Taylor polynomial),
// so that Phi(x) = 1/2 + x/sqrt(2 pi) + ... for tiny x; the other
// coefficients of row 0 are fitted to what remains.  Rows the design fixes
// (row 1 of A21, A26 and A53) are taken as they stand and only measured.
//
//   kCdfNormRows21  159 rows  centre, g0..g3: cubic in t, 16 bands per
//                   binade from 2^-6 (row 0 below 2^-6), up to 15, past
//                   the lower limit -14.170185 of the float members.
//                   A11 and A21.
//   kCdfNormRows26  30 rows   centre, g0..g6: degree 6, 4 bands per binade
//                   from 0.25, the last band [32, 38.485408]; A24 reads
//                   its first 25 rows (up to 16), A26 all 30.
//   kCdfNormRows50  30 rows   centre, g0..g12: degree 12, the same bands.
//   kCdfNormRows53  30 rows   centre, g0 tail, g0 head, g1 tail, g1 head,
//                   g2..g13: degree 13; g0 and g1 as a head of 20
//                   significant bits (cut toward zero) and the double
//                   nearest to the rest.
//
// Usage: gen_cdfnorm_tables > src/tables/cdfnorm_tables.h
#include "gen_fit_common.h"

namespace {

using fit::Big;
using fit::fromBits;

Big halfScaledErfc(const Big& a) {
    Big z, e, s;
    mpfr_sqrt_ui(z.get(), 2, MPFR_RNDN);
    z = a / z;
    mpfr_erfc(e.get(), z.get(), MPFR_RNDN);
    mpfr_sqr(s.get(), z.get(), MPFR_RNDN);
    mpfr_exp(s.get(), s.get(), MPFR_RNDN);
    return e * s / Big(2.0);
}
// -1/sqrt(2 pi), G'(0).
Big slopeAtZero() {
    Big pi, r;
    mpfr_const_pi(pi.get(), MPFR_RNDN);
    pi = pi * Big(2.0);
    mpfr_sqrt(r.get(), pi.get(), MPFR_RNDN);
    return Big() - Big(1.0) / r;
}

// |x| beyond which the 64-bit members give +0: the magnitude of the lower
// limit of A50 and A53, the largest in use.
constexpr uint64_t kLowerLimit64 = 0xC0433E21DC3F3BD7;  // -38.485408335567335
constexpr double kCentres[30] = {0,    0.25, 0.3125, 0.375, 0.4375, 0.5, 0.625, 0.75, 0.875, 1,
                                 1.25, 1.5,  1.75,   2,     2.5,    3,   3.5,   4,    5,     6,
                                 7,    8,    10,     12,    14,     16,  20,    24,   28,    32};

std::vector<Big> exactly(const std::vector<double>& d) {
    std::vector<Big> c;
    for (double x : d) c.push_back(Big(x));
    return c;
}
std::vector<double> rounded(const std::vector<Big>& c) {
    std::vector<double> d;
    for (const Big& x : c) d.push_back(fit::nearest(x));
    return d;
}
void noteError(double err, double& worst, char* comment, size_t size, double lo, double hi, bool given) {
    worst = std::max(worst, err);
    std::snprintf(comment, size, "[%.9g, %.9g): 2^%.1f%s", lo, hi, err, given ? ", given" : "");
}
void closeTable(const char* name, double worst) {
    std::printf("};\n// %s: largest relative error of a fit 2^%.1f\n\n", name, worst);
}

// The band of row r and G as a function of t = a - centre there.
struct Band {
    double lo, hi, centre;
    fit::Function inT;
};
Band band21(int r) {
    Band b;
    if (r == 0) {
        b.lo = 0, b.hi = 0x1p-6;
    } else {
        int e = -6 + (r - 1) / 16, m = (r - 1) % 16;
        double step = std::ldexp(1.0, e) / 16;
        b.lo = std::ldexp(1.0, e) + m * step;
        b.hi = b.lo + step;
    }
    b.centre = b.lo;
    double centre = b.centre;
    b.inT = [centre](const Big& t) { return halfScaledErfc(t + Big(centre)); };
    return b;
}
Band band30(int r) {
    Band b;
    b.centre = b.lo = kCentres[r];
    b.hi = r + 1 < 30 ? kCentres[r + 1] : -fromBits(kLowerLimit64);
    double centre = b.centre;
    b.inT = [centre](const Big& t) { return halfScaledErfc(t + Big(centre)); };
    return b;
}
// A row in t of the given degree; row 0 with g0, g1 and g2 held.
std::vector<Big> fitRow(const Band& b, int r, int degree, const Big& g1) {
    if (r == 0) return fit::fitWithFixed(b.inT, 0.0, b.hi, degree, {Big(0.5), g1, Big(0.25)});
    return fit::chebyshevFit(b.inT, b.lo - b.centre, b.hi - b.centre, degree);
}

void table21() {
    const uint64_t row1[4] = {0x3FDF9ADCCE797BD0, 0xBFD909D9C0983170, 0x3FCF36B4DAC35BE5, 0xBFC083BF89A7B5B3};
    double worst = -999;
    std::printf("alignas(16) inline constexpr double kCdfNormRows21[159][5] = {\n");
    for (int r = 0; r < 159; ++r) {
        Band b = band21(r);
        std::vector<double> c;
        if (r == 0) {
            // 1/2 - a/sqrt(2 pi) + a^2/4 - a^3/(3 sqrt(2 pi)).
            Big g1 = slopeAtZero();
            c = {0.5, g1.toDouble(), 0.25, (g1 / Big(3.0)).toDouble()};
        } else if (r == 1) {
            for (uint64_t bits : row1) c.push_back(fromBits(bits));
        } else {
            c = rounded(fit::chebyshevFit(b.inT, 0.0, b.hi - b.centre, 3));
        }
        char comment[96];
        noteError(fit::log2RelativeError(b.inT, exactly(c), b.lo - b.centre, b.hi - b.centre), worst, comment,
                  sizeof comment, b.lo, b.hi, r == 1);
        c.insert(c.begin(), b.centre);
        fit::printRow(c, comment);
    }
    closeTable("kCdfNormRows21", worst);
}

// Degree 6 (A24, A26) or 12 (A50): centre, then g0 .. g_degree.
void tableWhole(const char* name, int degree, const std::vector<uint64_t>& row1) {
    double worst = -999;
    Big g1 = slopeAtZero();
    std::printf("alignas(16) inline constexpr double %s[30][%d] = {\n", name, degree + 2);
    for (int r = 0; r < 30; ++r) {
        Band b = band30(r);
        std::vector<double> c;
        if (r == 1 && !row1.empty())
            for (uint64_t bits : row1) c.push_back(fromBits(bits));
        else
            c = rounded(fitRow(b, r, degree, g1));
        char comment[96];
        noteError(fit::log2RelativeError(b.inT, exactly(c), b.lo - b.centre, b.hi - b.centre), worst, comment,
                  sizeof comment, b.lo, b.hi, r == 1 && !row1.empty());
        c.insert(c.begin(), b.centre);
        fit::printRow(c, comment);
    }
    closeTable(name, worst);
}

void table53() {
    const uint64_t row1[16] = {0x3E802D3CAE0990B2, 0x3FDA7F8000000000, 0xBE91379BCF479EE6, 0xBFD2E86400000000,
                               0x3FC5C5673C8B7633, 0xBFB594F58FE0683D, 0x3FA312C88A8F692B, 0xBF8EB760CA7D91BF,
                               0x3F76DF18A7DF69FB, 0xBF5FD646864A57CC, 0x3F44E1B43F4570D3, 0xBF29FAB8CB038063,
                               0x3F0ED006E3F34C8B, 0xBEF17D9B76ED285A, 0x3ED2FBBC82F8FECB, 0xBEB1F5C3151E22A0};
    double worst = -999;
    double g1Head, g1Tail;
    fit::split(slopeAtZero(), 20, g1Head, g1Tail);
    std::printf("alignas(16) inline constexpr double kCdfNormRows53[30][17] = {\n");
    for (int r = 0; r < 30; ++r) {
        Band b = band30(r);
        std::vector<double> slots(16);
        if (r == 1) {
            for (int k = 0; k < 16; ++k) slots[k] = fromBits(row1[k]);
        } else {
            std::vector<Big> c = fitRow(b, r, 13, Big(g1Head) + Big(g1Tail));
            if (r == 0) {
                slots[0] = 0.0, slots[1] = 0.5, slots[2] = g1Tail, slots[3] = g1Head;
            } else {
                fit::split(c[0], 20, slots[1], slots[0]);
                fit::split(c[1], 20, slots[3], slots[2]);
            }
            for (int k = 2; k <= 13; ++k) slots[k + 2] = fit::nearest(c[k]);
        }
        std::vector<Big> exact = {Big(slots[0]) + Big(slots[1]), Big(slots[2]) + Big(slots[3])};
        for (int k = 4; k < 16; ++k) exact.push_back(Big(slots[k]));
        char comment[96];
        noteError(fit::log2RelativeError(b.inT, exact, b.lo - b.centre, b.hi - b.centre), worst, comment,
                  sizeof comment, b.lo, b.hi, r == 1);
        slots.insert(slots.begin(), b.centre);
        fit::printRow(slots, comment);
    }
    closeTable("kCdfNormRows53", worst);
}

}  // namespace

int main() {
    std::printf(
        "// Generated by src/tables/gen_cdfnorm_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// Band-wise polynomial rows of G(a) = exp(a^2 / 2) erfc(a / sqrt 2) / 2; the comment of\n"
        "// a row gives its band and the largest relative error of its rounded coefficients there.\n"
        "// The generator states the layouts and how the rows are fitted.\n"
        "#pragma once\n\n#include \"frame/bits.h\"\n\nnamespace orv::tables {\n\n");
    table21();
    tableWhole("kCdfNormRows26", 6,
               {0x3FDA7F808169E563, 0xBFD2E86513796446, 0x3FC5C5673BD6D7F7, 0xBFB594F5075F2FD2, 0x3FA312978341649F,
                0xBF8EA54578A30B3D, 0x3F7533D56AE37979});
    tableWhole("kCdfNormRows50", 12, {});
    table53();
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
