// The double kernels of sine, cosine, both at once, and tangent: functions
// of every double, to about one ulp.
//
// Sine and cosine.  Arguments from 2^17 on go through trigReduce first, to
// a quadrant q and x' + tail.  Then x' = k pi/32 + r + rl, k the integer
// nearest x' 32/pi (by the shifter 1.5*2^52, whose low bits give n = k mod
// 2^32), with pi/32 in three parts (k C1 and k C2 exact), |r| <= pi/64.
// With a = (16q + n) pi/32 the row of kTrigPhaseTable,
//
//   sin(a + r + rl) = sin a cos r + cos a sin r + rl (cos a - r sin a)
//
// where cos a = cosBase + cosTail with cosBase a power of two, so that
// cosBase r is exact, and sin a = sinHi + sinLo.  The large terms sinHi +
// cosBase r and cosTail r are summed with their rounding errors recovered,
// the polynomial parts Sp = sin r - r (degree 9) and Cp = cos r - 1 (degree
// 8) join the small terms.  The cosine is the sine a quarter turn further
// on the table: row (16q + n + 16) mod 64.
//
// Tangent.  From 12800 on, trigReduce first.  x' = k pi/32 + u + ul as
// above, row j = (16q + n) mod 32 of kTanPhaseTable, which holds the
// expansion of tan(a + u) to u^15, and for the rows 9 to 23 next to the
// pole at pi/2 that of tan(a + u) + 1/w, w = a + u - pi/2, the distance to
// the pole.  There w is computed afresh from x' (the nearest multiple of
// pi/2 by the shifter 1.5*2^56), 1/w as R = 1/wh with wh w cut to 35 bits,
// and R' = R cut to 18 bits, so that 1 - wh R' is exact and
// 1/w = R' + R ((1 - wh R') - wl R) to about 2^-100 relative.  The row's
// mask and weight drop R from the other rows without a branch.
//
// Special values, as C99 Annex F: sin and tan of +-0 are +-0, cos of +-0 is
// 1; an infinity gives a NaN and the invalid flag (x * 0), a NaN comes back
// quiet (x * x); |x| below 2^-252 gives x (sin, tan, inexact raised unless
// x is 0) or 1 (cos).
#ifndef ORVVM_RECORDS
#include "trig/trig_kernels.h"

#include "tables/trig_tables.h"

namespace orv::trig {
namespace {

// (2^55 x - x) 2^-55 is x with the inexact flag raised.
constexpr double kTwo55 = doubleFromBits(0x4360000000000000);      // 36028797018963968
constexpr double kTwoMinus55 = doubleFromBits(0x3C80000000000000);  // 2.7755575615628914e-17

// Tangent: pi/32 in three parts, k C1 and k C2 exact for |k| < 2^19.
constexpr double kTanC1 = doubleFromBits(0x3FB921FB54440000);
constexpr double kTanC2 = doubleFromBits(0x3D468C234C4C0000);
constexpr double kTanC3 = doubleFromBits(0x3AE98A2E03707345);
// pi/32 again, for the distance to the nearest multiple of pi/2 (k2 a
// multiple of 16), and D2's value beyond its own for the rough w.
constexpr double kPoleD1 = doubleFromBits(0x3FB921FB54444000);
constexpr double kPoleD2 = doubleFromBits(0xBD32E7B967674000);
constexpr double kPoleD3 = doubleFromBits(0x3AA8A2E03707344A);
constexpr double kPoleD2Full = doubleFromBits(0x3D32E7B9676733AF);  // 6.7164665968574641e-14
constexpr double kShifter56 = doubleFromBits(0x4378000000000000);   // 1.5*2^56
constexpr uint64_t kLow18Bits = (uint64_t(1) << 18) - 1;

inline uint32_t exponentField(double x) { return uint32_t(bitsOf(x) >> 52) & 0x7FF; }

// The reduced argument: x' + tail = r + rl + k pi/32, and the row.
struct Reduced {
    double r, rl;
    uint32_t n;  // low 32 bits of k, plus 16 q
};

inline Reduced reduce(double x) {
    int q = 0;
    double xr = x, tail = 0.0;
    if (exponentField(x) >= kReduceField) {
        double out[2];
        q = trigReduce(x, out);
        xr = out[0];
        tail = out[1];
    }
    double T = xr * kThirtyTwoOverPi + kShifter52;
    double k = T - kShifter52;
    uint32_t n = uint32_t(bitsOf(T));
    double u0 = xr - k * kPiBy32C1;
    double r = u0 - k * kPiBy32C2;
    double rl = (((u0 - r) - k * kPiBy32C2) - k * kPiBy32C3) + tail;
    return {r, rl, n + 16u * uint32_t(q)};
}

struct Polynomials {
    double Sp, Cp;  // sin r - r and cos r - 1
};

inline Polynomials polynomials(double r) {
    double z = r * r;
    double Sp = (((kSinA9 * z + kSinA7) * z + kSinA5) * z + kSinA3) * z * r;
    double Cp = (((kCosB8 * z + kCosB6) * z + kCosB4) * z + kCosB2) * z;
    return {Sp, Cp};
}

// sin(a + r + rl) for the row of a.
inline double phase(const tables::PhaseRow& row, double r, double rl, Polynomials p) {
    double c = row.cosTail + row.cosBase;
    double p1 = row.cosTail * r;
    double p2 = row.sinHi + row.cosBase * r;
    double hi = p1 + p2;
    double lo = (((p.Sp * c + p.Cp * row.sinHi) + (rl * (c - r * row.sinHi) + row.sinLo)) +
                 (row.cosBase * r + (row.sinHi - p2))) +
                (p1 + (p2 - hi));
    return hi + lo;
}

constexpr uint32_t kRowMask = 63;
constexpr uint32_t kQuarterTurn = 16;

}  // namespace

double sinKernel64(double x) {
    const uint32_t field = exponentField(x);
    if (field == kSpecialField) return (bitsOf(x) & kAbs64) == kInf64 ? x * 0.0 : x * x;
    if (field < kTinyField) {
        if (x == 0.0) return x;
        return (kTwo55 * x - x) * kTwoMinus55;
    }
    Reduced red = reduce(x);
    return phase(tables::kTrigPhaseTable[red.n & kRowMask], red.r, red.rl, polynomials(red.r));
}

double cosKernel64(double x) {
    const uint32_t field = exponentField(x);
    if (field == kSpecialField) return (bitsOf(x) & kAbs64) == kInf64 ? x * 0.0 : x * x;
    if (field < kTinyField) return 1.0 - doubleFromBits(bitsOf(x) & kAbs64);
    Reduced red = reduce(x);
    return phase(tables::kTrigPhaseTable[(red.n + kQuarterTurn) & kRowMask], red.r, red.rl,
                 polynomials(red.r));
}

void sinCosKernel64(double x, double* sinOut, double* cosOut) {
    const uint32_t field = exponentField(x);
    if (field == kSpecialField) {
        double y = (bitsOf(x) & kAbs64) == kInf64 ? x * 0.0 : x * x;
        *sinOut = y;
        *cosOut = y;
        return;
    }
    if (field < kTinyField) {
        *sinOut = x == 0.0 ? x : (kTwo55 * x - x) * kTwoMinus55;
        *cosOut = 1.0 - doubleFromBits(bitsOf(x) & kAbs64);
        return;
    }
    Reduced red = reduce(x);
    Polynomials p = polynomials(red.r);
    *sinOut = phase(tables::kTrigPhaseTable[red.n & kRowMask], red.r, red.rl, p);
    *cosOut = phase(tables::kTrigPhaseTable[(red.n + kQuarterTurn) & kRowMask], red.r, red.rl, p);
}

double tanKernel64(double x) {
    const uint32_t field = exponentField(x);
    if (field == kSpecialField) return (bitsOf(x) & kAbs64) == kInf64 ? x * 0.0 : x * x;
    if (field < kTinyField) {
        if (x == 0.0) return x;
        return (kTwo55 * x - x) * kTwoMinus55;
    }
    int q = 0;
    double xr = x, tail = 0.0;
    if ((bitsOf(x) & kAbs64) >> 48 >= kTanReduceTop16) {
        double out[2];
        q = trigReduce(x, out);
        xr = out[0];
        tail = out[1];
    }
    const double t = xr * kThirtyTwoOverPi;
    const double T = t + kShifter52;
    const double k = T - kShifter52;
    const uint32_t j = (uint32_t(bitsOf(T)) + 16u * uint32_t(q)) & 31;
    const double k2 = (t + kShifter56) - kShifter56;  // a multiple of 16: the nearest k pi/2

    // u: the distance to the row's point; w: to the nearest multiple of pi/2.
    const double u0 = xr - k * kTanC1;
    const double u = u0 - k * kTanC2;
    const double ul = (((u0 - u) - k * kTanC2) - k * kTanC3) + tail;
    const double w0 = xr - k2 * kPoleD1;
    const double w = w0 - k2 * kPoleD2;
    const double wl0 = (((w0 - w) - k2 * kPoleD2) - k2 * kPoleD3) + tail;
    const double wa = w0 + k2 * kPoleD2Full;
    const double wh = doubleFromBits(bitsOf(wa) & ~kLow18Bits);
    const double R = 1.0 / wh;
    const double wl = (w - wh) + wl0;

    const double* p = tables::kTanPhaseTable[j];
    const double z = u * u, z2 = z * z, z3 = z2 * u, z4 = z2 * z2;
    const double A = (p[5] * u + p[3]) * z + p[7] * z2 + ((p[11] * u + p[9]) + p[13] * z) * z3;
    const double B = ((p[1] * u + p[0]) + (p[4] * u + p[2]) * z + p[6] * z2) +
                     ((p[10] * u + p[8]) + p[12] * z) * z3;
    const double P = A + z4 * B;

    const double Rm = doubleFromBits(bitsOf(R) & bitsOf(p[19]));
    const double q1 = p[16] * u;
    const double q2 = p[17] * u;
    const double sum = q1 + q2;
    const double low = ((q2 + (q1 - sum)) + p[15]) + (p[16] + p[17]) * ul;
    const double s = sum - (Rm - p[14]);
    const double err = sum - ((Rm - p[14]) + s);
    const double corr = p[18] * R * ((1.0 - wh * Rm) - wl * R);
    return s + (((P + low) + err) - corr);
}

}  // namespace orv::trig
#endif
