// Prints src/tables/erfc_tables.h: the rows of G(a) = exp(a^2) erfc(a),
// a = |x|, for orvsErfc_32f_A21/A24 and orvsErfc_64f_A26/A50/A53, and the
// powers of two split into head and tail for A53.
//
// Each row is a fit of G over one band (gen_fit_common.h: Chebyshev
// interpolation at 160 bits, then rounding to the slots), and the relative
// error its rounded coefficients reach on the band is printed next to it.
// Rows the design fixes (rows 0 and 1 of A21, row 1 of A24, A26 and A53)
// are taken as they stand and only measured.  Row 0 of every table has
// d0 = 1 and d1 = -2/sqrt(pi), G's own first two Taylor coefficients, so
// that erfc(x) for tiny x is 1 - 2x/sqrt(pi) as it should be; the other
// coefficients of row 0 are fitted to what remains.
//
//   A21   150 rows  d0..d3, cubic in a itself; 16 bands per binade from
//                   2^-6 up to the zero point 10.0541954; row 0 below
//                   2^-6 is G's Taylor polynomial.
//   A24    23 rows  d0..d6 and the centre, degree 6 in t = a - centre,
//                   the centre the band's lower edge; 4 bands per binade
//                   from 0.25 up to the zero point 10.0541945.
//   A26/A50  28 rows  d0..d12 and three zero words, degree 12 in
//                   t = a - centre; the centres in kErfcCentres, the last
//                   band up to the zero point 27.226017.
//   A53    28 rows  d0 tail, d0 head, d1 tail, d1 head, d2..d13: degree
//                   13 in t; d0 and d1 as a head of 20 significant bits
//                   (cut toward zero) and the double nearest to the rest.
//   kErfcExp2Split  2^(j/128) as a head of 27 significant bits (nearest)
//                   and the double nearest to the rest.
//
// Usage: gen_erfc_tables > src/tables/erfc_tables.h
#include "gen_fit_common.h"

namespace {

using fit::Big;
using fit::fromBits;

Big scaledErfc(const Big& a) {
    Big e, s;
    mpfr_erfc(e.get(), a.get(), MPFR_RNDN);
    mpfr_sqr(s.get(), a.get(), MPFR_RNDN);
    mpfr_exp(s.get(), s.get(), MPFR_RNDN);
    return e * s;
}
Big twoOverSqrtPi() {
    Big pi, r;
    mpfr_const_pi(pi.get(), MPFR_RNDN);
    mpfr_sqrt(r.get(), pi.get(), MPFR_RNDN);
    return Big(2.0) / r;
}

constexpr double kZeroPoint32A21 = 10.054195404052734;  // the float 0x4120DDFC
constexpr double kZeroPoint32A24 = 10.054194450378418;  // the float 0x4120DDFB
constexpr uint64_t kZeroPoint64 = 0x403B39DC41E48BFD;   // 27.226017...
constexpr double kCentres[28] = {0,    0.25, 0.3125, 0.375, 0.4375, 0.5, 0.625, 0.75, 0.875, 1,
                                 1.25, 1.5,  1.75,   2,     2.5,    3,   3.5,   4,    5,     6,
                                 7,    8,    10,     12,    14,     16,  20,    24};

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

void table21() {
    const std::vector<uint64_t> given[2] = {
        {0x3FF0000000000000, 0xBFF20DD750429B6D, 0x3FF0000000000000, 0xBFE812746B0379E7},
        {0x3FEFFFFFEE9B5096, 0xBFF20DCEDB24785B, 0x3FEFF9D27F94B1CA, 0xBFE710BE147F4F30}};
    double worst = -999;
    std::printf("alignas(16) inline constexpr double kErfcRows21[150][4] = {\n");
    for (int r = 0; r < 150; ++r) {
        double lo, hi;
        if (r == 0) {
            lo = 0, hi = 0x1p-6;
        } else {
            int e = -6 + (r - 1) / 16, m = (r - 1) % 16;
            double step = std::ldexp(1.0, e) / 16;
            lo = std::ldexp(1.0, e) + m * step;
            hi = std::min(lo + step, kZeroPoint32A21);
        }
        std::vector<double> c;
        if (r <= 1)
            for (uint64_t b : given[r]) c.push_back(fromBits(b));
        else
            c = rounded(fit::chebyshevFit(scaledErfc, lo, hi, 3));
        char comment[96];
        noteError(fit::log2RelativeError(scaledErfc, exactly(c), lo, hi), worst, comment, sizeof comment, lo,
                  hi, r <= 1);
        fit::printRow(c, comment);
    }
    closeTable("kErfcRows21", worst);
}

// Rows in t = a - centre.  Row 0 is fitted with d0 = 1 and d1 = the given
// value held; d1 is then stored rounded, a relative error of at most 2^-53
// near 0 that no other coefficient could make up for anyway.
struct CentredFit {
    std::vector<Big> coefficients;  // at full precision
    double lo, hi, centre;
    fit::Function inT;
};
CentredFit centredFit(int r, int degree, double top, const Big& d1) {
    CentredFit f;
    f.centre = kCentres[r];
    f.lo = r == 0 ? 0.0 : kCentres[r];
    f.hi = r + 1 < 28 ? std::min(kCentres[r + 1], top) : top;
    if (r == 0) f.hi = 0.25;
    double centre = f.centre;
    f.inT = [centre](const Big& t) { return scaledErfc(t + Big(centre)); };
    if (r == 0)
        f.coefficients = fit::fitWithFixed(f.inT, 0.0, f.hi, degree, {Big(1.0), d1});
    else
        f.coefficients = fit::chebyshevFit(f.inT, f.lo - centre, f.hi - centre, degree);
    return f;
}

void table24() {
    const uint64_t row1[8] = {0x3FE8A6ADCDA2EA24, 0xBFE7C857B9B0D5CD, 0x3FE2B497DC3CBDD6, 0xBFD979956DBC9269,
                              0x3FCF09FAECE3FF8B, 0xBFC13372E05C4D0F, 0x3FB00A95E62788C3, 0x3FD0000000000000};
    double worst = -999;
    Big d1 = Big() - twoOverSqrtPi();
    std::printf("alignas(16) inline constexpr double kErfcRows24[23][8] = {\n");
    for (int r = 0; r < 23; ++r) {
        CentredFit f = centredFit(r, 6, kZeroPoint32A24, d1);
        std::vector<double> c;
        if (r == 1)
            for (int k = 0; k < 7; ++k) c.push_back(fromBits(row1[k]));
        else
            c = rounded(f.coefficients);
        char comment[96];
        noteError(fit::log2RelativeError(f.inT, exactly(c), f.lo - f.centre, f.hi - f.centre), worst, comment,
                  sizeof comment, f.lo, f.hi, r == 1);
        c.push_back(f.centre);
        fit::printRow(c, comment);
    }
    closeTable("kErfcRows24", worst);
}

void table50() {
    const uint64_t row1[13] = {0x3FE8A6ADCDA2EA92, 0xBFE7C857B9B3C191, 0x3FE2B497DF35FA2E, 0xBFD97997AD330408,
                               0x3FCF0AC9D31F3350, 0xBFC146985BD8E066, 0x3FB1D0C27D6E67A8, 0xBFA132DB7ACB637B,
                               0x3F8F54CDB1D0F4F4, 0xBF7B1807A32FA8E0, 0x3F6658E54554F04D, 0xBF5182BE73F6869D,
                               0x3F372A1D51BC2F81};
    double worst = -999;
    Big d1 = Big() - twoOverSqrtPi();
    std::printf("alignas(16) inline constexpr double kErfcRows50[28][16] = {\n");
    for (int r = 0; r < 28; ++r) {
        CentredFit f = centredFit(r, 12, fromBits(kZeroPoint64), d1);
        std::vector<double> c;
        if (r == 1)
            for (uint64_t b : row1) c.push_back(fromBits(b));
        else
            c = rounded(f.coefficients);
        char comment[96];
        noteError(fit::log2RelativeError(f.inT, exactly(c), f.lo - f.centre, f.hi - f.centre), worst, comment,
                  sizeof comment, f.lo, f.hi, r == 1);
        c.resize(16, 0.0);
        fit::printRow(c, comment);
    }
    closeTable("kErfcRows50", worst);
}

void table53() {
    const uint64_t row1[16] = {0x3EACDA2EA91E4C1A, 0x3FE8A6AC00000000, 0xBEAB9B3C19130FBA, 0xBFE7C85600000000,
                               0x3FE2B497DF35FA2E, 0xBFD97997AD330408, 0x3FCF0AC9D31F3359, 0xBFC146985BD8E471,
                               0x3FB1D0C27D709EC2, 0xBFA132DB7B9B1404, 0x3F8F54CE19C83BFD, 0xBF7B18197B6A1756,
                               0x3F665AF62B182C81, 0xBF51AA38937D0FC0, 0x3F3A98431ADC5DF5, 0xBF20DF29668A70AE};
    double worst = -999;
    double d1Head, d1Tail;
    fit::split(Big() - twoOverSqrtPi(), 20, d1Head, d1Tail);
    std::printf("alignas(16) inline constexpr double kErfcRows53[28][16] = {\n");
    for (int r = 0; r < 28; ++r) {
        CentredFit f = centredFit(r, 13, fromBits(kZeroPoint64), Big(d1Head) + Big(d1Tail));
        std::vector<double> slots(16);
        if (r == 1) {
            for (int k = 0; k < 16; ++k) slots[k] = fromBits(row1[k]);
        } else {
            if (r == 0) {
                slots[0] = 0.0, slots[1] = 1.0, slots[2] = d1Tail, slots[3] = d1Head;
            } else {
                fit::split(f.coefficients[0], 20, slots[1], slots[0]);
                fit::split(f.coefficients[1], 20, slots[3], slots[2]);
            }
            for (int k = 2; k <= 13; ++k) slots[k + 2] = fit::nearest(f.coefficients[k]);
        }
        std::vector<Big> exact = {Big(slots[0]) + Big(slots[1]), Big(slots[2]) + Big(slots[3])};
        for (int k = 4; k < 16; ++k) exact.push_back(Big(slots[k]));
        char comment[96];
        noteError(fit::log2RelativeError(f.inT, exact, f.lo - f.centre, f.hi - f.centre), worst, comment,
                  sizeof comment, f.lo, f.hi, r == 1);
        fit::printRow(slots, comment);
    }
    closeTable("kErfcRows53", worst);
}

void centres() {
    std::printf("alignas(16) inline constexpr double kErfcCentres[28] = {\n");
    for (int r = 0; r < 28; ++r)
        std::printf("%sdoubleFromBits(0x%016llX),%s", r % 4 == 0 ? "    " : "",
                    (unsigned long long)fit::bitsOf(kCentres[r]), r % 4 == 3 ? "\n" : " ");
    std::printf("};\n\n");
}

void exp2Split() {
    std::printf("alignas(16) inline constexpr double kErfcExp2Split[128][2] = {\n");
    for (int j = 0; j < 128; ++j) {
        Big exact, x = Big(double(j)) / Big(128.0);
        mpfr_exp2(exact.get(), x.get(), MPFR_RNDN);
        mpfr_t head;
        mpfr_init2(head, 27);
        mpfr_set(head, exact.get(), MPFR_RNDN);
        double h = mpfr_get_d(head, MPFR_RNDN);
        double t = (exact - Big(h)).toDouble();
        mpfr_clear(head);
        std::printf("    {doubleFromBits(0x%016llX), doubleFromBits(0x%016llX)},\n",
                    (unsigned long long)fit::bitsOf(h), (unsigned long long)fit::bitsOf(t));
    }
    std::printf("};\n\n");
}

}  // namespace

int main() {
    std::printf(
        "// Generated by src/tables/gen_erfc_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// Band-wise polynomial rows of G(a) = exp(a^2) erfc(a); the comment of a row gives its\n"
        "// band and the largest relative error of its rounded coefficients there.  The generator\n"
        "// states the layouts and how the rows are fitted.\n"
        "#pragma once\n\n#include \"frame/bits.h\"\n\nnamespace orv::tables {\n\n");
    exp2Split();
    centres();
    table21();
    table24();
    table50();
    table53();
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
