// Prints src/tables/erf_tables.h: the band-wise polynomial rows of erf for
// orvsErf_32f_A21/A24 and orvsErf_64f_A26/A50/A53.
//
// Each row is a fit of erf over one band of |x| (gen_fit_common.h:
// Chebyshev interpolation at 160 bits, then rounding to the slots), and
// the relative error its rounded coefficients reach on the band is printed
// next to it.  Rows the design fixes (row 0 and row 112 of A21, row 0 of
// A24, row 1 of A26 and A53) are taken as they stand and only measured.
// The last row of each table is the saturation row: erf is 1.0 to within
// half an ulp from there on.
//
//   A21  114 rows  c0..c3, cubic in |x| itself; 16 bands per binade from
//                  2^-5; row 0 below 2^-5; saturation from 4.
//   A24   22 rows  c0..c6 and a zero word, degree 6 in |x|; 4 bands per
//                  binade from 2^-3; saturation from 4.
//   A26   24 rows  c0..c7, six zero words, offset o, scale s: degree 7 in
//                  t = |x| s - o, o the band's midpoint, s = 1; row 0 odd
//                  with o = 0 and c1 = 2/sqrt(pi) rounded; 4 bands per binade from 2^-3; saturation
//                  from 6 with s = 0.
//   A50   24 rows  c0..c13, o, s: the same bands, degree 13.
//   A53   46 rows  c0 tail, c0 head, c1..c10, negated centre, three zero
//                  words: degree 10 in u = |x| - centre, the midpoint of
//                  the band; 8 bands per binade from 2^-3; c0 as a double-
//                  double; row 0 has c0 = 0, centre 0, c1 = 2/sqrt(pi)
//                  rounded and c2..c10 fitted to (erf(x) - c1 x)/x^2,
//                  nearly odd; saturation from 6.
//
// Usage: gen_erf_tables > src/tables/erf_tables.h
#include "gen_fit_common.h"

namespace {

using fit::Big;
using fit::fromBits;

// 2/sqrt(pi), the slope of erf at 0.  Row 0 fits the rest of erf with c1
// held at it, and then stores c1 as the double nearest to it (off by
// 2^-56 relative): a c1 fitted freely could be off by up to half its ulp,
// which costs up to half an ulp of the result near 0, where no other
// coefficient can make up for it.
Big slopeAtZero() {
    Big pi, r;
    mpfr_const_pi(pi.get(), MPFR_RNDN);
    mpfr_sqrt(r.get(), pi.get(), MPFR_RNDN);
    return Big(2.0) / r;
}

Big erfAt(const Big& x) {
    Big r;
    mpfr_erf(r.get(), x.get(), MPFR_RNDN);
    return r;
}

struct Band {
    double lo, hi;
};
// Band r >= 1 of a table with `perBinade` bands per binade starting at 2^e0.
Band bandOf(int r, int perBinade, int e0) {
    int e = e0 + (r - 1) / perBinade, m = (r - 1) % perBinade;
    double step = std::ldexp(1.0, e) / perBinade;
    double lo = std::ldexp(1.0, e) + m * step;
    return {lo, lo + step};
}

std::vector<double> rounded(const std::vector<Big>& c) {
    std::vector<double> d;
    for (const Big& x : c) d.push_back(fit::nearest(x));
    return d;
}
std::vector<Big> exactly(const std::vector<double>& d) {
    std::vector<Big> c;
    for (double x : d) c.push_back(Big(x));
    return c;
}

// Polynomials in |x| itself (A21, A24).
void plainTable(const char* name, int rows, int width, int degree, int perBinade, int e0,
                const std::vector<std::pair<int, std::vector<uint64_t>>>& given) {
    double worst = -999;
    std::printf("alignas(16) inline constexpr double %s[%d][%d] = {\n", name, rows, width);
    for (int r = 0; r < rows; ++r) {
        std::vector<double> c;
        char comment[96];
        if (r == rows - 1) {
            c.assign(degree + 1, 0.0);
            c[0] = 1.0;
            std::snprintf(comment, sizeof comment, "saturation");
        } else {
            Band b = r == 0 ? Band{0.0, std::ldexp(1.0, e0)} : bandOf(r, perBinade, e0);
            const std::vector<uint64_t>* fixed = nullptr;
            for (auto& g : given)
                if (g.first == r) fixed = &g.second;
            if (fixed) {
                for (uint64_t bits : *fixed) c.push_back(fromBits(bits));
            } else {
                c = rounded(fit::chebyshevFit(erfAt, b.lo, b.hi, degree));
            }
            double err = fit::log2RelativeError(erfAt, exactly(c), r == 0 ? b.hi / 4096 : b.lo, b.hi);
            worst = std::max(worst, err);
            std::snprintf(comment, sizeof comment, "[%.9g, %.9g): 2^%.1f%s", b.lo, b.hi, err,
                          fixed ? ", given" : "");
        }
        c.resize(width, 0.0);
        fit::printRow(c, comment);
    }
    std::printf("};\n// %s: largest relative error of a fit 2^%.1f\n\n", name, worst);
}

// Polynomials in t = |x| - midpoint with an offset and a scale slot (A26,
// A50): row 0 odd with o = 0.
void centredTable(const char* name, int degree,
                  const std::vector<std::pair<int, std::vector<uint64_t>>>& given) {
    const int rows = 24;
    double worst = -999;
    std::printf("alignas(16) inline constexpr double %s[%d][16] = {\n", name, rows);
    for (int r = 0; r < rows; ++r) {
        std::vector<double> slots(16, 0.0);
        char comment[96];
        if (r == rows - 1) {
            slots[0] = 1.0;  // o = 0 and s = 0 as well
            std::snprintf(comment, sizeof comment, "saturation");
        } else {
            Band b = r == 0 ? Band{0.0, 0.125} : bandOf(r, 4, -3);
            double o = r == 0 ? 0.0 : (b.lo + b.hi) / 2;
            fit::Function inT = [o](const Big& t) { return erfAt(t + Big(o)); };
            const std::vector<uint64_t>* fixed = nullptr;
            for (auto& g : given)
                if (g.first == r) fixed = &g.second;
            std::vector<double> c;
            if (fixed)
                for (int k = 0; k <= degree; ++k) c.push_back(fromBits((*fixed)[k]));
            else if (r == 0)
                c = rounded(fit::oddFit(erfAt, b.hi, degree, slopeAtZero()));
            else
                c = rounded(fit::chebyshevFit(inT, b.lo - o, b.hi - o, degree));
            double err = fit::log2RelativeError(inT, exactly(c), r == 0 ? b.hi / 4096 : b.lo - o, b.hi - o);
            worst = std::max(worst, err);
            for (int k = 0; k <= degree; ++k) slots[k] = c[k];
            slots[14] = o;
            slots[15] = 1.0;
            std::snprintf(comment, sizeof comment, "[%.9g, %.9g): 2^%.1f%s", b.lo, b.hi, err,
                          fixed ? ", given" : "");
        }
        fit::printRow(slots, comment);
    }
    std::printf("};\n// %s: largest relative error of a fit 2^%.1f\n\n", name, worst);
}

// A53: c0 as tail and head, c1..c10, the negated centre.
void table53(const std::vector<uint64_t>& row1) {
    const int rows = 46, degree = 10;
    double worst = -999;
    std::printf("alignas(16) inline constexpr double kErfRows53[%d][16] = {\n", rows);
    for (int r = 0; r < rows; ++r) {
        std::vector<double> slots(16, 0.0);
        char comment[96];
        if (r == rows - 1) {
            slots[1] = 1.0;
            std::snprintf(comment, sizeof comment, "saturation");
        } else {
            Band b = r == 0 ? Band{0.0, 0.125} : bandOf(r, 8, -3);
            double centre = r == 0 ? 0.0 : (b.lo + b.hi) / 2;
            fit::Function inU = [centre](const Big& u) { return erfAt(u + Big(centre)); };
            std::vector<Big> exact;  // c0 .. c10 as the table holds them, c0 = head + tail
            if (r == 1) {
                for (int k = 0; k < 12; ++k) slots[k] = fromBits(row1[k]);
                slots[12] = fromBits(row1[12]);
                exact.push_back(Big(slots[0]) + Big(slots[1]));
                for (int k = 2; k < 12; ++k) exact.push_back(Big(slots[k]));
            } else {
                std::vector<Big> c = r == 0 ? fit::fitWithFixed(erfAt, 0.0, b.hi, degree, {Big(), slopeAtZero()})
                                            : fit::chebyshevFit(inU, b.lo - centre, b.hi - centre, degree);
                double head = fit::nearest(c[0]);
                double tail = (c[0] - Big(head)).toDouble();
                slots[0] = tail;
                slots[1] = head;
                exact.push_back(Big(head) + Big(tail));
                for (int k = 1; k <= degree; ++k) {
                    slots[k + 1] = fit::nearest(c[k]);
                    exact.push_back(Big(slots[k + 1]));
                }
                slots[12] = r == 0 ? 0.0 : -centre;
            }
            double err = fit::log2RelativeError(inU, exact, r == 0 ? b.hi / 4096 : b.lo - centre, b.hi - centre);
            worst = std::max(worst, err);
            std::snprintf(comment, sizeof comment, "[%.9g, %.9g): 2^%.1f%s", b.lo, b.hi, err,
                          r == 1 ? ", given" : "");
        }
        fit::printRow(slots, comment);
    }
    std::printf("};\n// kErfRows53: largest relative error of a fit 2^%.1f\n\n", worst);
}

}  // namespace

int main() {
    std::printf(
        "// Generated by src/tables/gen_erf_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// Band-wise polynomial rows of erf(|x|); the comment of a row gives its band and the\n"
        "// largest relative error of its rounded coefficients there.  The generator states the\n"
        "// layouts and how the rows are fitted.\n"
        "#pragma once\n\n#include \"frame/bits.h\"\n\nnamespace orv::tables {\n\n");
    plainTable("kErfRows21", 114, 4, 3, 16, -5,
               {{0, {0x0000000000000000, 0x3FF20DD75219A6F2, 0xBECB2F12984E1F1F, 0xBFD80F2DA9B2F44B}},
                {112, {0x3FEFFED3E74EFF52, 0x3F1B9A61E1B98E36, 0xBEFB1BDE66DDD273, 0x3EC1C3FFBBACED77}}});
    plainTable("kErfRows24", 22, 8, 6, 4, -3,
               {{0, {0x0000000000000000, 0x3FF20DD75045FEAD, 0xBE5E800F127E5583, 0xBFD812694AE6167A,
                     0xBF17C198EA9C0C06, 0x3FBD3EBD3A77A98E, 0xBF847870EF12A536}}});
    centredTable("kErfRows26", 7,
                 {{1, {0x3FC42D7FC2F64959, 0x3FF1B357141D95D5, 0xBFC3E9C1F6A14540, 0xBFD6AAD45897F446,
                       0x3FB3A68D05F5F629, 0x3FBA186D4FEA9F46, 0xBF99D9B1A3E22724, 0xBF97D11BBFDE9CB6}}});
    centredTable("kErfRows50", 13, {});
    table53({0x3C39587FFB20C7E1, 0x3FC311FC15F56D14, 0x3FF1BD07CDD189AC, 0xBFC2D8D84AAEA247,
             0xBFD6D11B7F1E51B6, 0x3FB2A01B7F8DCF39, 0x3FBA6405EF5DA631, 0xBF988A5C3FC74EC8,
             0xBF9833EA26C21EA1, 0x3F783FC6728C6713, 0x3F721BB4F0ED7FA3, 0xBF532A26D86DF1CF,
             0xBFC1000000000000});
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
