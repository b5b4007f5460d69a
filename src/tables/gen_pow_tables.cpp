// Prints src/tables/pow_tables.h: the tables of the real powers x^y that
// are not already tables of the exponential, each entry derived with MPFR
// at 256 bits and then rounded or cut once, as its rule says.
//
//   kPowLog32[257]     binary32 powers, rows for 1 + i/256, i = 0..256:
//                      t = the double nearest to ln(1 + i/256), rcp = the
//                      double nearest to 1/(1 + i/256).
//   kPowLog2Row53[1025], kPowLog2Row50[65]
//                      binary64 powers, rows for 1 + i/N with N = 1024 (A26,
//                      A53) or N = 64 (A50):
//                      R = C/(1 + i/N) rounded to nearest with 22 fraction
//                      bits, C = 0x3FF7154740000000 (log2 e cut to 22
//                      fraction bits), so that R has 23 significant bits and
//                      a 26-bit head of the fraction times R is exact.  With q = R/C, v = -log2 q, less 1 from row N/2
//                      on (the kernels move the exponent up by one there);
//                      th = v cut toward zero to a double whose low 32 bits
//                      are 0, tt = the double nearest to v - th.
//   kPowLog2Value26[1025]
//                      A26: the same v as one double, rounded to nearest.
//   kPowExp2Tail[128]  the double nearest to 2^(j/128) - Th, where Th is the
//                      double nearest to 2^(j/128): the head itself is the
//                      exponential's kExp2Fraction64 under the exponent of
//                      1.0 (src/tables/exp2_tables.h).
//
// Usage: gen_pow_tables > src/tables/pow_tables.h
#include <mpfr.h>

#include <cstdint>
#include <cstdio>

#include "gen_log_common.h"

namespace {

using gen::kWork;

unsigned long long doubleBits(double d) {
    uint64_t b;
    __builtin_memcpy(&b, &d, 8);
    return b;
}

struct Scratch {
    mpfr_t v;
    Scratch() { mpfr_init2(v, kWork); }
    ~Scratch() { mpfr_clear(v); }
};

void log32() {
    std::printf("// ln(1 + i/256) and 1/(1 + i/256), i = 0..256.\n");
    std::printf("alignas(16) inline constexpr PowLogRow32 kPowLog32[257] = {\n");
    Scratch base, value;
    for (int i = 0; i <= 256; ++i) {
        mpfr_set_si(base.v, 256 + i, MPFR_RNDN);
        mpfr_div_2ui(base.v, base.v, 8, MPFR_RNDN);  // exact
        mpfr_log(value.v, base.v, MPFR_RNDN);
        double t = mpfr_get_d(value.v, MPFR_RNDN);
        mpfr_ui_div(value.v, 1, base.v, MPFR_RNDN);
        double rcp = mpfr_get_d(value.v, MPFR_RNDN);
        std::printf("    {doubleFromBits(0x%016llX), doubleFromBits(0x%016llX)},  // %d\n", doubleBits(t),
                    doubleBits(rcp), i);
    }
    std::printf("};\n\n");
}

// One row of a binary64 table: R, the exact v and its split.
struct Log2Row {
    double r, th, tt, value;
};

Log2Row log2Row(int i, int n) {
    Scratch c, r, q, v, rest;
    mpfr_set_d(c.v, 0x1.7154740000000p+0, MPFR_RNDN);  // C, exact
    mpfr_set_si(r.v, n, MPFR_RNDN);
    mpfr_div_si(r.v, r.v, n + i, MPFR_RNDN);
    mpfr_mul(r.v, r.v, c.v, MPFR_RNDN);
    mpfr_prec_round(r.v, 23, MPFR_RNDN);  // 22 fraction bits
    mpfr_div(q.v, r.v, c.v, MPFR_RNDN);
    mpfr_log2(v.v, q.v, MPFR_RNDN);
    mpfr_neg(v.v, v.v, MPFR_RNDN);
    if (2 * i >= n) mpfr_sub_ui(v.v, v.v, 1, MPFR_RNDN);
    Log2Row row;
    row.r = mpfr_get_d(r.v, MPFR_RNDN);  // exact: 23 bits at most
    row.value = mpfr_get_d(v.v, MPFR_RNDN);
    // The head: v cut toward zero to 21 significant bits (the low 32 bits
    // of the double are then 0); zero stays zero.
    mpfr_t head;
    mpfr_init2(head, 21);
    mpfr_set(head, v.v, MPFR_RNDZ);
    row.th = mpfr_get_d(head, MPFR_RNDN);
    mpfr_sub(rest.v, v.v, head, MPFR_RNDN);
    row.tt = mpfr_get_d(rest.v, MPFR_RNDN);
    mpfr_clear(head);
    return row;
}

void log2Rows(const char* name, int n) {
    std::printf("// R = C/(1 + i/%d) with 22 fraction bits; th + tt = -log2(R/C)%s.\n", n,
                ", less 1 from the middle row on");
    std::printf("alignas(16) inline constexpr PowLog2Row %s[%d] = {\n", name, n + 1);
    for (int i = 0; i <= n; ++i) {
        Log2Row row = log2Row(i, n);
        std::printf("    {doubleFromBits(0x%016llX), doubleFromBits(0x%016llX), doubleFromBits(0x%016llX), 0},  // %d\n",
                    doubleBits(row.r), doubleBits(row.th), doubleBits(row.tt), i);
    }
    std::printf("};\n\n");
}

void log2Value26() {
    std::printf("// A26: -log2(R/C) of the 1025 rows above, less 1 from row 512 on, as one double.\n");
    std::printf("alignas(16) inline constexpr double kPowLog2Value26[1025] = {\n");
    for (int i = 0; i <= 1024; ++i) {
        Log2Row row = log2Row(i, 1024);
        std::printf("%sdoubleFromBits(0x%016llX),%s", i % 3 == 0 ? "    " : "", doubleBits(row.value),
                    i % 3 == 2 || i == 1024 ? "\n" : " ");
    }
    std::printf("};\n\n");
}

void exp2Tail() {
    std::printf("// 2^(j/128) - Th, Th the double nearest to 2^(j/128), rounded to nearest.\n");
    std::printf("alignas(16) inline constexpr double kPowExp2Tail[128] = {\n");
    Scratch exact, rest;
    for (int j = 0; j < 128; ++j) {
        mpfr_set_si(exact.v, j, MPFR_RNDN);
        mpfr_div_2ui(exact.v, exact.v, 7, MPFR_RNDN);
        mpfr_exp2(exact.v, exact.v, MPFR_RNDN);
        double head = mpfr_get_d(exact.v, MPFR_RNDN);
        mpfr_sub_d(rest.v, exact.v, head, MPFR_RNDN);  // exact at this precision
        std::printf("%sdoubleFromBits(0x%016llX),%s", j % 3 == 0 ? "    " : "",
                    doubleBits(mpfr_get_d(rest.v, MPFR_RNDN)), j % 3 == 2 || j == 127 ? "\n" : " ");
    }
    std::printf("};\n\n");
}

}  // namespace

int main() {
    std::printf(
        "// Generated by src/tables/gen_pow_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// Tables of the real powers: the binary32 logarithm rows, the binary64 base-2 logarithm\n"
        "// rows of the three tiers and the tails of 2^(j/128).  The rules are stated in the\n"
        "// generator.\n"
        "#pragma once\n\n#include <cstdint>\n\n#include \"frame/bits.h\"\n\nnamespace orv::tables {\n\n"
        "struct PowLogRow32 {\n    double t;    // ln(1 + i/256)\n    double rcp;  // 1/(1 + i/256)\n};\n"
        "struct PowLog2Row {\n    double r;    // C/(1 + i/N), 22 fraction bits\n"
        "    double th;   // head of -log2(R/C), low 32 bits 0\n    double tt;   // its tail\n"
        "    double pad;  // zero: fills the row to 32 bytes\n};\n\n");
    log32();
    log2Rows("kPowLog2Row53", 1024);
    log2Rows("kPowLog2Row50", 64);
    log2Value26();
    exp2Tail();
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
