// erfcInvTail and cdfNormInvTail: erfcinv(y) for the y below ErfcInv's
// tables (0 < y < 2^-53), and the normal quantile for 0 < p < 2^-54, to
// double accuracy, down to the smallest subnormal (w = -ln y near 744).
//
// Method.  With w = -ln y and r = 1 / sqrt(w), erfcinv(y) / sqrt(w) is a
// smooth function of r that tends to 1 as r -> 0 (erfc(z) ~ exp(-z^2) /
// (z sqrt(pi))); F(r) = -erfcinv(y) / sqrt(w) is tabulated in rows of
// width 1/128 in r, i = 4 .. 31, enough for every y below 2^-24.  So:
//
//  1. ln y = e ln 2 - ln T + ln(M T), M the mantissa, T a short value near
//     1/M from the row of M's top 8 bits; u = M T - 1 is small, its head
//     u0 = Mh T - 1 exact, and ln(1 + u) = u + P(u).  The logarithm comes
//     out as a head G (exact: every addend is short) and a tail Gt.
//  2. w = -ln y as wh + wl; r = 1/sqrt(w) as rh + rl, by the hardware's
//     square root and one correction; sqrt(w) = -(gh + gl) from them.
//  3. F around i/128 in s = r - i/128 = t + rl: its value c0 and a short
//     linear head c1 (so that c1 t is exact) carry the leading bits; the
//     rest E s is a small correction.
//  4. The result F sqrt(w) as ch gh + (ch gl + tail (gh + gl)).
//
// Heads are split by Dekker's rule with the constant 1.5 2^36 + 1: v C -
// v (C - 1) leaves about 17 significant bits of v, so that products of two
// heads, and of a head with a table value, are exact.
//
// cdfNormInvTail is the same routine with ln(2p) in place of ln y (one
// more in the exponent) and F times -sqrt(2) in its rows, so that it
// returns -sqrt(2) erfcinv(2p), a negative number.
//
// Tables: kErfcInvTailLog, kErfcInvTailPoly and kCdfNormInvTailPoly of
// src/tables/erfinv_tables.h (src/tables/gen_erfinv_tables.cpp).
#include <cmath>

#include "frame/bits.h"
#include "special/erfinv_kernel.h"

namespace orv::erfinv {
namespace {

constexpr double kSplitHigh = doubleFromBits(0x4238000000010000);  // 1.5 2^36 + 1
constexpr double kSplitLow = doubleFromBits(0x4238000000000000);   // 1.5 2^36
constexpr uint32_t kSmallestNormalHigh = 0x00100000;
constexpr uint64_t kMantissa = 0x000FFFFFFFFFFFFF;
constexpr int kExponentBias = -1023, kSubnormalBias = -2045;
constexpr double kLn2Head = doubleFromBits(0x3FE62E42FEE00000);  // e kLn2Head is exact
constexpr double kLn2Tail = doubleFromBits(0x3DEA39EF35793C76);
// ln(1 + u) - u for |u| < 2^-8.
constexpr double kC6 = doubleFromBits(0xBFC5555F7BD1FCD4), kC5 = doubleFromBits(0x3FC999A24CDB6ABC),
                 kC4 = doubleFromBits(0xBFCFFFFFFFFE169D), kC3 = doubleFromBits(0x3FD555555554D0DF), kC2 = -0.5;
// Rows of F: i = 4 .. 31 for r = i/128 + s.
constexpr int kFirstRow = 4, kLastRow = 31;
// Slots of a row of F.
constexpr int kA0 = 0, kC0 = 13, kC1 = 14;

#ifndef ORVVM_RECORDS

inline double head(double v) { return v * kSplitHigh - v * kSplitLow; }

template <int Bias, int SubnormalBias>
double inverseTail(double y, const double (*rows)[16]) {
    uint64_t b = bitsOf(y);
    int bias = Bias;
    if ((b >> 32) < kSmallestNormalHigh) {
        // Subnormal: its fraction as a normal number, y 2^1022.
        b = bitsOf(doubleFromBits(b | kOne64) - 1.0);
        bias = SubnormalBias;
    }
    uint32_t high = uint32_t(b >> 32);
    double e = double(int(high >> 20) + bias);
    uint32_t j = (high >> 12) & 0xFF;
    double M = doubleFromBits((b & kMantissa) | kOne64);
    const uint64_t* logRow = tables::kErfcInvTailLog[j];
    double T = doubleFromWords(uint32_t(logRow[0] >> 32), 0);
    double H = doubleFromWords(uint32_t(logRow[0]), 0), L = doubleFromBits(logRow[1]);

    // 1. ln y = G + Gt.
    double Mh = head(M);
    double u1 = (M - Mh) * T;
    double u0 = Mh * T - 1.0;
    double u = u0 + u1;
    double u2 = u * u;
    double P = (((kC6 * u + kC5) * u + kC4) * u2 + (kC3 * u + kC2)) * u2;
    double G = (H + e * kLn2Head) + u0;
    double Gt = (L + e * kLn2Tail) + (u1 + P);

    // 2. w = -ln y = wh + wl; r = 1/sqrt(w) = rh + rl; sqrt(w) = -(gh + gl).
    double Gh = head(G);
    double wh = -Gh, wl = -((G - Gh) + Gt);
    double W = wh + wl;
    double r0 = 1.0 / std::sqrt(W);
    double rh = head(r0), rl0 = r0 - rh;
    double d = rh * rh * wl + (rh * rl0 + rl0 * r0) * W;
    double rl = rl0 + ((1.0 - rh * rh * wh) - d) * r0 * 0.5;
    double gh = -(rh * wh), gl = -(rh * wl + rl * W);

    // 3. F(r) around i/128.
    // Every y below 2^-24 has i in 4 .. 31; the clamp only keeps a y that
    // the caller's denormals-are-zero mode reads as 0 (W infinite, rh 0) from
    // reading outside the table.
    int i = int(rh * 128.0);
    i = i < kFirstRow ? kFirstRow : i > kLastRow ? kLastRow : i;
    const double* row = rows[i - kFirstRow];
    double t = rh - double(i) / 128.0;
    double s = t + rl;
    double c0 = row[kC0], c1 = row[kC1];
    double v = c1 * rl + row[kA0];
    double tc = c1 * t;
    double c = c0 + (tc + v);
    double ch = head(c);
    double s2 = s * s, s4 = s2 * s2, s8 = s4 * s4;
    const double* a = row;
    double E = ((a[12] * s + a[11]) * s2 + (a[10] * s + a[9])) * s8 +
               ((a[8] * s + a[7]) * s2 + (a[6] * s + a[5])) * s4 + ((a[4] * s + a[3]) * s2 + (a[2] * s + a[1]));

    // 4. F sqrt(w).
    return ch * gh + (ch * gl + ((((c0 - ch) + tc) + v) + E * s) * (gh + gl));
}

#endif

}  // namespace

#ifndef ORVVM_RECORDS

double erfcInvTail(double y) { return inverseTail<kExponentBias, kSubnormalBias>(y, tables::kErfcInvTailPoly); }

// ln(2p): one more in the exponent.
double cdfNormInvTail(double p) {
    return inverseTail<kExponentBias + 1, kSubnormalBias + 1>(p, tables::kCdfNormInvTailPoly);
}

#endif

}  // namespace orv::erfinv
