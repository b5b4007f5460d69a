// Prints src/tables/trig_tables.h: the constant tables of the sine, cosine
// and tangent kernels, each entry computed with MPFR at 1536 bits and then
// rounded or cut once, as its rule says.
//
//   kFourOverPiChunks[52]   4/pi in runs of 25 bits, scaled by 2^200: entry
//                           k (1 to 49) holds the bits of weights 2^(25-25k)
//                           down to 2^(1-25k), times 2^200, exactly; entries
//                           0, 50 and 51 are 0.  1225 bits of 4/pi in all.
//   kTrigPhaseTable[64]     rows {cosTail, sinHi, sinLo, cosBase} of the
//                           angle a = j pi/32: cosBase is the power of two
//                           (with the sign of cos a) just below |cos a| sqrt2,
//                           or -0.0 where cos a = 0; cosTail = cos a - cosBase
//                           rounded; sinHi = sin a rounded; sinLo = sin a -
//                           sinHi rounded to 24 significant bits.
//   kSinPhaseTable[64]      the same rows with every zero positive (the
//                           copy the vector sine reads).
//   kCosPhaseTable[64]      row j is row (j + 16) mod 64 of kSinPhaseTable:
//                           the quarter turn that makes the sine a cosine.
//   kFinePhaseTable[128]    the rows of kTrigPhaseTable for a = j pi/64.
//   kShortPhaseTable[64]    {cos a, sin a} for a = j pi/32, each rounded.
//   kTanPhaseTable[32]      20 doubles per row, the Taylor expansion about
//                           a = j pi/32 of g(u) = tan(a + u), and for rows 9
//                           to 23 of g(u) = tan(a + u) + 1/(a + u - pi/2),
//                           the pole term taken out: positions 14 and 15
//                           g(0) as a high and a low word, the high word
//                           rounded in rows 9 to 23 to a multiple of the
//                           quantum of the 18-bit reciprocal the kernel
//                           subtracts it from (so that difference is
//                           exact); 16 the exact part
//                           of g'(0) (1, 2 or 0 by the row), 17 the rest
//                           rounded; 3, 5, 7, 9, 11, 13 the coefficients of
//                           u^2 to u^7 and 0, 1, 2, 4, 6, 8, 10, 12 those of
//                           u^8 to u^15, rounded; 18 the weight of the
//                           reciprocal term (1 in rows 9 to 23) and 19 the
//                           mask applied to the reciprocal
//                           (0xFFFFFFF800000000 there), both 0 elsewhere.
//
// Usage: gen_trig_tables > src/tables/trig_tables.h
#include <mpfr.h>

#include <cstdint>
#include <cstdio>
#include <cmath>
#include <cstring>

namespace {

constexpr mpfr_prec_t kPrec = 1536;

unsigned long long doubleBits(double d) {
    uint64_t b;
    std::memcpy(&b, &d, 8);
    return b;
}

struct Mp {
    mpfr_t v;
    Mp() { mpfr_init2(v, kPrec); }
    ~Mp() { mpfr_clear(v); }
    Mp(const Mp&) = delete;
    Mp& operator=(const Mp&) = delete;
    operator mpfr_ptr() { return v; }
};

// a = j pi / steps.
void angle(Mp& out, int j, int steps) {
    mpfr_const_pi(out, MPFR_RNDN);
    mpfr_mul_si(out, out, j, MPFR_RNDN);
    mpfr_div_si(out, out, steps, MPFR_RNDN);
}

void printDouble(double d, const char* sep) { std::printf("doubleFromBits(0x%016llX)%s", doubleBits(d), sep); }

void fourOverPiChunks() {
    Mp fourOverPi, scaled, chunk;
    mpfr_const_pi(fourOverPi, MPFR_RNDN);
    mpfr_ui_div(fourOverPi, 4, fourOverPi, MPFR_RNDN);
    std::printf("alignas(16) inline constexpr double kFourOverPiChunks[52] = {\n");
    for (int k = 0; k < 52; ++k) {
        double entry = 0.0;
        if (k >= 1 && k <= 49) {
            // floor(4/pi 2^(25k-1)) mod 2^25, the bits of weights 2^(25-25k) .. 2^(1-25k).
            mpfr_mul_2si(scaled, fourOverPi, 25 * k - 1, MPFR_RNDN);
            mpfr_floor(scaled, scaled);
            mpfr_div_2si(chunk, scaled, 25, MPFR_RNDN);
            mpfr_floor(chunk, chunk);
            mpfr_mul_2si(chunk, chunk, 25, MPFR_RNDN);
            mpfr_sub(chunk, scaled, chunk, MPFR_RNDN);
            mpfr_mul_2si(chunk, chunk, 201 - 25 * k, MPFR_RNDN);
            entry = mpfr_get_d(chunk, MPFR_RNDN);  // 25 bits: exact
        }
        std::printf("    ");
        printDouble(entry, ",\n");
    }
    std::printf("};\n\n");
}

struct PhaseRow {
    double cosTail, sinHi, sinLo, cosBase;
};

// The row of the angle j pi/steps by the rule above.
PhaseRow phaseRow(int j, int steps) {
    Mp a, s, c, t;
    mpfr_t lo24;
    mpfr_init2(lo24, 24);
    angle(a, j, steps);
    mpfr_sin_cos(s, c, a, MPFR_RNDN);
    PhaseRow row;
    const int quarter = steps / 2;  // j pi/steps = pi/2
    if (j % quarter == 0) {
        // Multiples of pi/2 have exact rows.  cosTail takes the sign that
        // cos has just below the angle: +0 at pi/2, -0 at 3pi/2.
        static const double kCos[4] = {1.0, 0.0, -1.0, 0.0}, kSin[4] = {0.0, 1.0, 0.0, -1.0};
        int k = (j / quarter) % 4;
        row.cosBase = k % 2 ? -0.0 : kCos[k];
        row.cosTail = k == 3 ? -0.0 : 0.0;
        row.sinHi = kSin[k];
        row.sinLo = 0.0;
        mpfr_clear(lo24);
        return row;
    }
    // |cos a| sqrt2 = m 2^e with m in [1/2, 1); the power of two just below
    // it is 2^(e-1), or 2^(e-2) where |cos a| sqrt2 is exactly 2^(e-1)
    // (a = pi/4 mod pi/2, where |cos a| sqrt2 = 1).
    mpfr_abs(t, c, MPFR_RNDN);
    mpfr_sqrt_ui(a, 2, MPFR_RNDN);
    mpfr_mul(t, t, a, MPFR_RNDN);
    long e = mpfr_get_exp(t);
    bool exactPower = (j % quarter) == quarter / 2;
    double base = exactPower ? 0.5 : __builtin_ldexp(1.0, int(e - 1));
    row.cosBase = mpfr_sgn(c.v) < 0 ? -base : base;
    mpfr_sub_d(t, c, row.cosBase, MPFR_RNDN);
    row.cosTail = mpfr_get_d(t, MPFR_RNDN);
    row.sinHi = mpfr_get_d(s, MPFR_RNDN);
    mpfr_sub_d(t, s, row.sinHi, MPFR_RNDN);
    mpfr_set(lo24, t, MPFR_RNDN);
    row.sinLo = mpfr_get_d(lo24, MPFR_RNDN);
    mpfr_clear(lo24);
    return row;
}

double positiveZero(double d) { return d == 0.0 ? 0.0 : d; }

void phaseTable(const char* name, int rows, bool positiveZeros, int rotate) {
    std::printf("alignas(16) inline constexpr PhaseRow %s[%d] = {\n", name, rows);
    for (int j = 0; j < rows; ++j) {
        int steps = rows / 2;
        PhaseRow r = phaseRow((j + rotate) % rows, steps);
        if (positiveZeros)
            r = {positiveZero(r.cosTail), positiveZero(r.sinHi), positiveZero(r.sinLo), positiveZero(r.cosBase)};
        std::printf("    {");
        printDouble(r.cosTail, ", ");
        printDouble(r.sinHi, ", ");
        printDouble(r.sinLo, ", ");
        printDouble(r.cosBase, "},\n");
    }
    std::printf("};\n\n");
}

void shortPhaseTable() {
    Mp a, s, c;
    std::printf("alignas(16) inline constexpr ShortPhaseRow kShortPhaseTable[64] = {\n");
    for (int j = 0; j < 64; ++j) {
        angle(a, j, 32);
        mpfr_sin_cos(s, c, a, MPFR_RNDN);
        double cs = j % 32 == 16 ? 0.0 : mpfr_get_d(c, MPFR_RNDN);
        double sn = j % 32 == 0 ? 0.0 : mpfr_get_d(s, MPFR_RNDN);
        std::printf("    {");
        printDouble(cs, ", ");
        printDouble(sn, "},\n");
    }
    std::printf("};\n\n");
}

constexpr int kTerms = 16;  // coefficients of u^0 .. u^15

// Taylor coefficients of tan(a + u) at u = 0 from tan' = 1 + tan^2:
// (k+1) t[k+1] = [k = 0] + sum t[i] t[k-i].
void tanSeries(Mp (&t)[kTerms], Mp& a) {
    Mp sum, p;
    mpfr_tan(t[0], a, MPFR_RNDN);
    for (int k = 0; k + 1 < kTerms; ++k) {
        mpfr_set_ui(sum, k == 0 ? 1 : 0, MPFR_RNDN);
        for (int i = 0; i <= k; ++i) {
            mpfr_mul(p, t[i], t[k - i], MPFR_RNDN);
            mpfr_add(sum, sum, p, MPFR_RNDN);
        }
        mpfr_div_ui(t[k + 1], sum, k + 1, MPFR_RNDN);
    }
}

// Coefficients of 1/u - cot u = -(u cot u - 1)/u, from u cot u = cos u /
// (sin u / u) by division of the two even series.
void poleSeriesAtHalfPi(Mp (&g)[kTerms]) {
    constexpr int n = kTerms + 2;
    Mp num[n], den[n], q[n], f, p;
    mpfr_set_ui(f, 1, MPFR_RNDN);  // k!
    for (int k = 0; k < n; ++k) {
        if (k > 0) mpfr_mul_ui(f, f, k, MPFR_RNDN);
        mpfr_set_zero(num[k], 1);
        mpfr_set_zero(den[k], 1);
        int sign = (k / 2) % 2 ? -1 : 1;
        if (k % 2 == 0) {  // cos u: (-1)^(k/2)/k!
            mpfr_ui_div(num[k], 1, f, MPFR_RNDN);
            if (sign < 0) mpfr_neg(num[k], num[k], MPFR_RNDN);
        }
        if (k % 2 == 0) {  // sin u / u: (-1)^(k/2)/(k+1)!
            mpfr_mul_ui(p, f, k + 1, MPFR_RNDN);
            mpfr_ui_div(den[k], 1, p, MPFR_RNDN);
            if (sign < 0) mpfr_neg(den[k], den[k], MPFR_RNDN);
        }
    }
    for (int k = 0; k < n; ++k) {  // q = num / den, den[0] = 1
        mpfr_set(q[k], num[k], MPFR_RNDN);
        for (int i = 1; i <= k; ++i) {
            mpfr_mul(p, den[i], q[k - i], MPFR_RNDN);
            mpfr_sub(q[k], q[k], p, MPFR_RNDN);
        }
    }
    for (int k = 0; k < kTerms; ++k) mpfr_neg(g[k], q[k + 1], MPFR_RNDN);
}

void tanPhaseTable() {
    // Position in a row of the coefficient of u^k, for k = 2 .. 15.
    const int positionOf[kTerms] = {-1, -1, 3, 5, 7, 9, 11, 13, 0, 1, 2, 4, 6, 8, 10, 12};
    std::printf("alignas(16) inline constexpr double kTanPhaseTable[32][20] = {\n");
    for (int j = 0; j < 32; ++j) {
        Mp a, d, inv, term, rest;
        Mp g[kTerms];
        const bool pole = j >= 9 && j <= 23;
        angle(a, j, 32);
        if (j == 16) {
            poleSeriesAtHalfPi(g);
        } else {
            tanSeries(g, a);
            if (pole) {
                // + 1/(d + u) = sum (-1)^k u^k / d^(k+1), d = a - pi/2.
                angle(d, 16, 32);
                mpfr_sub(d, a, d, MPFR_RNDN);
                mpfr_ui_div(inv, 1, d, MPFR_RNDN);
                mpfr_set(term, inv, MPFR_RNDN);
                for (int k = 0; k < kTerms; ++k) {
                    if (k % 2) mpfr_sub(g[k], g[k], term, MPFR_RNDN);
                    else mpfr_add(g[k], g[k], term, MPFR_RNDN);
                    mpfr_mul(term, term, inv, MPFR_RNDN);
                }
            }
        }
        double row[20] = {};
        for (int k = 2; k < kTerms; ++k) row[positionOf[k]] = mpfr_get_d(g[k], MPFR_RNDN);
        // Rows 0, 8, 16 and 24 have exact values (0, 1, 0, -1) and exact
        // derivatives (1, 2, 1/3 rounded, 2): their low words are 0.
        const bool exactRow = j % 8 == 0;
        row[14] = j == 16 ? 0.0 : mpfr_get_d(g[0], MPFR_RNDN);
        if (pole && j != 16) {
            // The kernel forms R' - p14 with R' = 1/w cut to 18 bits; with
            // p14 a multiple of R''s smallest quantum on the row that
            // difference is exact.  |w| <= (|16 - j| + 1/2) pi/32, so |R'|
            // >= 2^e with e below; the quantum is 2^(e - 17), one more bit
            // for safety, and the rest of g(0) goes to the low word.
            double wMax = (std::abs(16 - j) + 0.5) * 3.14159265358979 / 32 * 1.001;
            int e = int(std::floor(std::log2(1.0 / wMax)));
            double quantum = std::ldexp(1.0, e - 18);
            row[14] = std::nearbyint(row[14] / quantum) * quantum;
        }
        mpfr_sub_d(rest, g[0], row[14], MPFR_RNDN);
        row[15] = exactRow ? 0.0 : mpfr_get_d(rest, MPFR_RNDN);
        row[16] = pole ? 0.0 : (j == 7 || j == 8 || j == 24 || j == 25) ? 2.0 : 1.0;
        mpfr_sub_d(rest, g[1], row[16], MPFR_RNDN);
        row[17] = mpfr_get_d(rest, MPFR_RNDN);
        row[18] = pole ? 1.0 : 0.0;
        row[19] = pole ? __builtin_bit_cast(double, 0xFFFFFFF800000000ull) : 0.0;
        if (exactRow && j != 16) row[17] = 0.0;
        for (double& x : row) x = positiveZero(x);  // the zeros of odd or even series
        std::printf("    {");
        for (int p = 0; p < 20; ++p) {
            if (p % 4 == 0 && p > 0) std::printf("\n     ");
            printDouble(row[p], p == 19 ? "},\n" : ", ");
        }
    }
    std::printf("};\n\n");
}

}  // namespace

int main() {
    mpfr_set_default_prec(kPrec);
    std::printf(
        "// Generated by src/tables/gen_trig_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// 4/pi in 25-bit chunks for the large-argument reduction; sine and cosine of j pi/32 and\n"
        "// j pi/64 as phase rows {cosTail, sinHi, sinLo, cosBase}; cos and sin of j pi/32 rounded;\n"
        "// and the expansions of tan about j pi/32.  The rules are stated in the generator.\n"
        "#pragma once\n\n#include \"frame/bits.h\"\n\nnamespace orv::tables {\n\n"
        "struct PhaseRow {\n    double cosTail, sinHi, sinLo, cosBase;\n};\n"
        "struct ShortPhaseRow {\n    double cosine, sine;\n};\n\n");
    fourOverPiChunks();
    phaseTable("kTrigPhaseTable", 64, false, 0);
    phaseTable("kSinPhaseTable", 64, true, 0);
    phaseTable("kCosPhaseTable", 64, true, 16);
    phaseTable("kFinePhaseTable", 128, false, 0);
    shortPhaseTable();
    tanPhaseTable();
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
