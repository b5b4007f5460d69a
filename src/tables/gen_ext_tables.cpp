// Prints src/tables/ext_tables.h: the tables and split constants of the
// extended-precision routines under the complex kernels.  Every value is
// computed with MPFR at 320 bits and rounded once, to the format and the
// number of significant bits its rule says; a "rest" is the exact value
// minus the parts before it, rounded once.
//
//   kExtRsqrtSeed[512]   double nearest to 1/sqrt(m) at the midpoint m of
//                        cell i: i = 256 p + k, m in 2^p [1 + k/256,
//                        1 + (k+1)/256) (p = 1 for an odd exponent).
//   kExtLogTable[256]    ln(1 + j/256): hi the extended value nearest, lo
//                        the extended value nearest to the rest.
//   kExtExp2Table[256]   2^(j/256), hi and lo as above.
//   kExtAtanTable[129]   atan(j/128), hi and lo as above.
//   kExtTwoOverPi[260]   the bits of 2/pi after the binary point, 64 to a
//                        word, most significant first (cut, not rounded).
//   Split constants      a head of few significant bits (so that its
//                        products with small integers are exact), then
//                        tails, as named below.
//
// Usage: gen_ext_tables > src/tables/ext_tables.h
#include <mpfr.h>

#include <cstdint>
#include <cstdio>

namespace {

constexpr mpfr_prec_t kPrec = 320;

unsigned long long doubleBits(double d) {
    uint64_t b;
    __builtin_memcpy(&b, &d, 8);
    return b;
}

// An extended value as an exact hexadecimal literal.
void printExtended(long double v) { std::printf("%LaL", v); }

// hi, lo of an exact value: hi the extended value nearest, lo the extended
// value nearest to the rest.
void hiLo(mpfr_t exact, long double& hi, long double& lo) {
    mpfr_t rest;
    mpfr_init2(rest, kPrec);
    hi = mpfr_get_ld(exact, MPFR_RNDN);
    mpfr_set_ld(rest, hi, MPFR_RNDN);
    mpfr_sub(rest, exact, rest, MPFR_RNDN);
    lo = mpfr_get_ld(rest, MPFR_RNDN);
    mpfr_clear(rest);
}

void printHiLoRow(mpfr_t exact, const char* comment, int j) {
    long double hi, lo;
    hiLo(exact, hi, lo);
    std::printf("    {");
    printExtended(hi);
    std::printf(", ");
    printExtended(lo);
    std::printf("},  // %s %d\n", comment, j);
}

void rsqrtSeed() {
    mpfr_t m;
    mpfr_init2(m, kPrec);
    std::printf("alignas(16) inline constexpr double kExtRsqrtSeed[512] = {\n");
    for (int i = 0; i < 512; ++i) {
        const int p = i >> 8, k = i & 0xFF;
        mpfr_set_si(m, 2 * k + 1, MPFR_RNDN);  // midpoint 1 + (k + 1/2)/256
        mpfr_div_2ui(m, m, 9, MPFR_RNDN);
        mpfr_add_ui(m, m, 1, MPFR_RNDN);
        mpfr_mul_2ui(m, m, p, MPFR_RNDN);
        mpfr_rec_sqrt(m, m, MPFR_RNDN);
        std::printf("%sdoubleFromBits(0x%016llX),%s", i % 2 == 0 ? "    " : "", doubleBits(mpfr_get_d(m, MPFR_RNDN)),
                    i % 2 == 1 ? "\n" : " ");
    }
    std::printf("};\n\n");
    mpfr_clear(m);
}

void logTable() {
    mpfr_t v;
    mpfr_init2(v, kPrec);
    std::printf("alignas(16) inline constexpr ExtHiLo kExtLogTable[256] = {\n");
    for (int j = 0; j < 256; ++j) {
        mpfr_set_si(v, 256 + j, MPFR_RNDN);
        mpfr_div_2ui(v, v, 8, MPFR_RNDN);
        mpfr_log(v, v, MPFR_RNDN);
        printHiLoRow(v, "ln(1 + j/256), j =", j);
    }
    std::printf("};\n\n");
    mpfr_clear(v);
}

void exp2Table() {
    mpfr_t v;
    mpfr_init2(v, kPrec);
    std::printf("alignas(16) inline constexpr ExtHiLo kExtExp2Table[256] = {\n");
    for (int j = 0; j < 256; ++j) {
        mpfr_set_si(v, j, MPFR_RNDN);
        mpfr_div_2ui(v, v, 8, MPFR_RNDN);
        mpfr_exp2(v, v, MPFR_RNDN);
        printHiLoRow(v, "2^(j/256), j =", j);
    }
    std::printf("};\n\n");
    mpfr_clear(v);
}

void atanTable() {
    mpfr_t v;
    mpfr_init2(v, kPrec);
    std::printf("alignas(16) inline constexpr ExtHiLo kExtAtanTable[129] = {\n");
    for (int j = 0; j <= 128; ++j) {
        mpfr_set_si(v, j, MPFR_RNDN);
        mpfr_div_2ui(v, v, 7, MPFR_RNDN);
        mpfr_atan(v, v, MPFR_RNDN);
        printHiLoRow(v, "atan(j/128), j =", j);
    }
    std::printf("};\n\n");
    mpfr_clear(v);
}

void twoOverPi() {
    mpfr_t v;
    mpfr_init2(v, 64 * 262);
    mpfr_const_pi(v, MPFR_RNDN);
    mpfr_ui_div(v, 2, v, MPFR_RNDN);
    std::printf("alignas(16) inline constexpr uint64_t kExtTwoOverPi[260] = {\n");
    for (int w = 0; w < 260; ++w) {
        mpfr_mul_2ui(v, v, 64, MPFR_RNDN);  // exact: only the exponent moves
        mpfr_t word;
        mpfr_init2(word, 64 * 262);
        mpfr_trunc(word, v);
        mpfr_sub(v, v, word, MPFR_RNDN);  // exact
        std::printf("%s0x%016llXull,%s", w % 3 == 0 ? "    " : "", (unsigned long long)mpfr_get_ui(word, MPFR_RNDN),
                    w % 3 == 2 || w == 259 ? "\n" : " ");
        mpfr_clear(word);
    }
    std::printf("};\n\n");
    mpfr_clear(v);
}

// Splits exact into count pieces: each but the last rounded to headBits
// significant bits from what is left, the last an extended value (or a
// double, when lastIsDouble is set).  Prints named constants.
void split(const char* what, mpfr_t exact, const char* const names[], int count, int headBits, bool lastIsDouble) {
    mpfr_t left, piece;
    mpfr_init2(left, kPrec);
    mpfr_set(left, exact, MPFR_RNDN);
    std::printf("// %s\n", what);
    for (int i = 0; i < count; ++i) {
        const bool last = i == count - 1;
        mpfr_init2(piece, last ? (lastIsDouble ? 53 : 64) : headBits);
        mpfr_set(piece, left, MPFR_RNDN);
        mpfr_sub(left, left, piece, MPFR_RNDN);  // exact
        if (last && lastIsDouble) {
            std::printf("inline constexpr double %s = doubleFromBits(0x%016llX);  // %.8g\n", names[i],
                        doubleBits(mpfr_get_d(piece, MPFR_RNDN)), mpfr_get_d(piece, MPFR_RNDN));
        } else {
            std::printf("inline constexpr Extended %s = ", names[i]);
            printExtended(mpfr_get_ld(piece, MPFR_RNDN));
            std::printf(";  // %.8g\n", mpfr_get_d(piece, MPFR_RNDN));
        }
        mpfr_clear(piece);
    }
    std::printf("\n");
    mpfr_clear(left);
}

void splitConstants() {
    mpfr_t v;
    mpfr_init2(v, kPrec);

    // ln 2: head of 32 bits (times any exponent, exact), a double tail, an
    // extended rest.
    mpfr_const_log2(v, MPFR_RNDN);
    const char* ln2[] = {"kExtLn2Head", "kExtLn2Tail", "kExtLn2Rest"};
    split("ln 2 = head + tail + rest", v, ln2, 3, 32, false);

    // ln 2 / 256: head of 32 bits (times any step count up to 2^32, exact)
    // and an extended tail.
    mpfr_const_log2(v, MPFR_RNDN);
    mpfr_div_2ui(v, v, 8, MPFR_RNDN);
    const char* step[] = {"kExtLn2By256Head", "kExtLn2By256Tail"};
    split("ln 2 / 256 = head + tail", v, step, 2, 32, false);

    // pi/4 in five pieces of 32 bits, the last an extended value.
    mpfr_const_pi(v, MPFR_RNDN);
    mpfr_div_2ui(v, v, 2, MPFR_RNDN);
    const char* quarter[] = {"kExtPiBy4Piece1", "kExtPiBy4Piece2", "kExtPiBy4Piece3", "kExtPiBy4Piece4",
                             "kExtPiBy4Piece5"};
    split("pi/4 = piece1 + ... + piece5, pieces of 32 bits", v, quarter, 5, 32, false);

    // pi/2 and pi: heads of 32 bits, extended tails (sums and differences
    // with an angle below pi/2 are then exact in the head).
    mpfr_const_pi(v, MPFR_RNDN);
    mpfr_div_2ui(v, v, 1, MPFR_RNDN);
    const char* half[] = {"kExtPiBy2Head", "kExtPiBy2Tail"};
    split("pi/2 = head + tail", v, half, 2, 32, false);
    mpfr_const_pi(v, MPFR_RNDN);
    const char* pi[] = {"kExtPiHead", "kExtPiTail"};
    split("pi = head + tail", v, pi, 2, 32, false);

    // pi/2 as the nearest extended value and the rest, for the product with
    // a fraction of a quarter turn.
    mpfr_const_pi(v, MPFR_RNDN);
    mpfr_div_2ui(v, v, 1, MPFR_RNDN);
    const char* full[] = {"kExtPiBy2Hi", "kExtPiBy2Lo"};
    split("pi/2 = hi + lo, hi the extended value nearest", v, full, 2, 64, false);

    // 2/pi and 256/ln 2, rounded once: only the nearest integer of a
    // product is taken from them.
    mpfr_const_pi(v, MPFR_RNDN);
    mpfr_ui_div(v, 2, v, MPFR_RNDN);
    std::printf("inline constexpr Extended kExtTwoOverPiRounded = ");
    printExtended(mpfr_get_ld(v, MPFR_RNDN));
    std::printf(";\n");
    mpfr_const_log2(v, MPFR_RNDN);
    mpfr_ui_div(v, 256, v, MPFR_RNDN);
    std::printf("inline constexpr Extended kExt256OverLn2 = ");
    printExtended(mpfr_get_ld(v, MPFR_RNDN));
    std::printf(";  // %.8g\n\n", mpfr_get_d(v, MPFR_RNDN));
    mpfr_clear(v);
}

}  // namespace

int main() {
    std::printf(
        "// Generated by src/tables/gen_ext_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// Tables and split constants of the extended-precision routines (src/complex/ext_*.cpp).\n"
        "// The rules are stated in the generator.\n"
        "#pragma once\n\n#include <cstdint>\n\n#include \"frame/bits.h\"\n#include \"frame/x87.h\"\n\n"
        "namespace orv::tables {\n\n"
        "struct ExtHiLo {\n    Extended hi;\n    Extended lo;\n};\n\n");
    splitConstants();
    rsqrtSeed();
    logTable();
    exp2Table();
    atanTable();
    twoOverPi();
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
