// trigReduce: any finite double, |x| >= pi/4, brought down to a quadrant
// and a two-word remainder of at most about pi/4:
//
//   x = (q + 4m) pi/2 + out[0] + out[1],  q in 0..3, m an integer,
//
// with out[0] + out[1] good to about 2^-80 absolute and out[1] below an ulp
// of out[0].  All the work is on |x|; the sign comes back at the end, the
// remainder negated and the quadrant (-h) mod 4, so sin(-x) = -sin x and
// cos(-x) = cos x hold bit for bit for reduced arguments.  No loop and no
// branch on the size of x but the range: the cost does not grow with |x|.
//
// Ranges A and B (|x| < 2^30): n = trunc(|x| 4/pi), rounded up to the even
// m = n + (n & 1) of eighth-turns, and |x| - m pi/4 by a Cody-Waite chain of
// parts of pi/4 whose products with m are exact; each subtraction's error
// is recovered by an error-free transformation.  Below 2^23 (m < 2^25) four
// parts of 27, 28 and 27 bits carry pi/4 to about 2^-135 relative; up to
// 2^30 (m < 2^31) five parts of about 20 bits each.
//
// Range C (|x| >= 2^30): a Payne-Hanek product of |x| 2^-200 = yh + yl
// (26 + 27 bits) with the window of kFourOverPiChunks that its exponent
// selects.  Chunks of 25 bits make every product yh C[k] and yl C[k] exact
// in a double.  The part of the product above the eighth-turn count's low
// three bits is a multiple of 8 and is dropped: yh C[0] not formed at all,
// and the high bits of the first partial sum cleared; what remains is
// summed with compensated additions, nine chunks deep (about 150 bits past
// the binary point of the count: the closest a double comes to a multiple
// of pi/4 is about 2^-61 relative, so 2^-80 absolute holds), and the
// fraction of an eighth-turn is multiplied by pi/4 in two words.
#ifndef ORVVM_RECORDS
#include "tables/trig_tables.h"
#include "trig/trig_kernels.h"

namespace orv::trig {
namespace {

constexpr double kFourOverPi = doubleFromBits(0x3FF45F306DC9C883);  // 1.2732395447351628

// Exponent fields of the range boundaries: 2^23 and 2^30.
constexpr uint32_t kRangeBField = 0x416;
constexpr uint32_t kRangeCField = 0x41D;

// Range A: pi/4 in four parts (27, 28, 27 significant bits, and the rest).
constexpr double kP1 = doubleFromBits(0x3FE921FB54000000);
constexpr double kP2 = doubleFromBits(0x3E010B4612000000);
constexpr double kP3 = doubleFromBits(0xBC2676733C000000);
constexpr double kP4 = doubleFromBits(0x3A61701B839A2520);

// Range B: pi/4 in five parts (20, 21, 20, 20 bits, and the rest), short
// enough that m Q1 .. m Q4 are exact for m < 2^31.
constexpr double kQ1 = doubleFromBits(0x3FE921FA00000000);
constexpr double kQ2 = doubleFromBits(0x3EA5444300000000);
constexpr double kQ3 = doubleFromBits(0xBD373DCA00000000);
constexpr double kQ4 = doubleFromBits(0xBBF3B39A00000000);
constexpr double kQ5 = doubleFromBits(0x3A845C06E0E68948);

// Range C.
constexpr int kExponentOffset = 1052;      // e = E - 1052, from 1 at 2^30
constexpr uint64_t kScaleDown200 = uint64_t(200) << 52;
constexpr uint64_t kLow27Bits = (uint64_t(1) << 27) - 1;
constexpr int kWindowMultiplier = 83886;   // 0x147AE, 2^21/25 truncated
constexpr int kWindowShift = 21;
constexpr int kChunkBits = 25;
constexpr int kTopClearBase = 38;          // clear the low 38 - rem bits
constexpr double kSplitter = doubleFromBits(0x4198000000000000);  // 3*2^25
// pi/4 in two words, the high one of 23 bits so that rh PH is exact.
constexpr double kPiBy4Hi = doubleFromBits(0x3FE921FB40000000);
constexpr double kPiBy4Lo = doubleFromBits(0x3E64442D18469899);

struct Remainder {
    double hi, lo;
};

// |x| - m pi/4 for |x| < 2^23.
inline Remainder rangeA(double ax, double m) {
    double r0 = ax - m * kP1;
    double a = m * kP2;
    double r1 = r0 - a;
    double e1 = (r0 - r1) - a;
    double b = m * kP3;
    double r2 = r1 - b;
    double e2 = (r1 - r2) - b;
    return {r2, (e1 + e2) - m * kP4};
}

// |x| - m pi/4 for 2^23 <= |x| < 2^30.
inline Remainder rangeB(double ax, double m) {
    double r0 = ax - m * kQ1;
    double a = m * kQ2;
    double r1 = r0 - a;
    double e1 = (r0 - r1) - a;
    double b = m * kQ3;
    double r2 = r1 - b;
    double e2 = (r1 - r2) - b;
    double e = e1 + e2;
    double r3 = r2 + e;
    double e3 = (r2 - r3) + e;
    double c = m * kQ4;
    double r4 = r3 - c;
    double e4 = (r3 - r4) - c;
    return {r4, (e3 + e4) - m * kQ5};
}

// A running compensated sum (S, E0) += w.
inline void accumulate(double& s, double& e, double w) {
    double t = s + w;
    e = (w + (s - t)) + e;
    s = t;
}

// |x| >= 2^30: the remainder and the count h of half-pi steps from |x|.
inline Remainder rangeC(uint64_t absBits, uint32_t field, int& h) {
    const int e = int(field) - kExponentOffset;
    const double y = doubleFromBits(absBits - kScaleDown200);
    const double yh = doubleFromBits(bitsOf(y) & ~kLow27Bits);
    const double yl = y - yh;
    const int i = (e * kWindowMultiplier) >> kWindowShift;
    const int rem = e - kChunkBits * i;  // 1 .. 25
    const double* C = tables::kFourOverPiChunks + i;

    double a = yl * C[0];
    double b = yh * C[1];
    double s = a + b;
    double eb = b + (a - s);
    // The bits of s above 2^(rem - 38 + ulp) weigh multiples of 8
    // eighth-turns: whole turns, dropped.
    const uint64_t clear = (uint64_t(1) << (kTopClearBase - rem)) - 1;
    double top = doubleFromBits(bitsOf(s + eb) & ~clear);
    double s1 = s - top;
    double c = yl * C[1];
    double s2 = s1 + c;
    double e1 = (c + (s1 - s2)) + eb;
    double d = yh * C[2];
    double s3 = s2 + d;
    double e2 = (d + (s2 - s3)) + e1;
    double f = yl * C[2];
    double g = yh * C[3];
    double v = ((s3 + e2) + f) + g;

    // The count of eighth-turns; only its low three bits matter.
    const int64_t n = int64_t(v);
    const double V = double(n);
    h = (int32_t(n) + 1) >> 1;
    double r = s3 - V;
    double r2 = r + e2;
    double er = (r - r2) + e2;
    double S = r2 + ((n & 1) ? -1.0 : 0.0);  // up to an even count
    double E0 = er;
    accumulate(S, E0, f);
    accumulate(S, E0, g);
    accumulate(S, E0, yl * C[3]);
    accumulate(S, E0, yh * C[4]);
    accumulate(S, E0, yl * C[4]);
    accumulate(S, E0, yh * C[5]);
    accumulate(S, E0, yl * C[5] + yh * C[6]);
    accumulate(S, E0, yl * C[6] + yh * C[7]);
    double w = yl * C[7] + yh * C[8];
    double r12 = S + w;

    // Split the fraction of an eighth-turn (in -1 .. 1) so that rh PH is
    // exact, then times pi/4 in two words.
    double cs = r12 * kSplitter;
    double rh = (r12 + cs) - cs;
    double rl = (w + (S - rh)) + E0;
    double lo = kPiBy4Hi * rl + (rh + rl) * kPiBy4Lo;
    double hi = rh * kPiBy4Hi;
    double res = hi + lo;
    return {res, (hi - res) + lo};
}

}  // namespace

int trigReduce(double x, double out[2]) {
    const uint64_t bits = bitsOf(x);
    const bool negative = (bits >> 63) != 0;
    const uint64_t absBits = bits & kAbs64;
    const uint32_t field = uint32_t(absBits >> 52);
    const double ax = doubleFromBits(absBits);
    const double g = negative ? -1.0 : 1.0;
    int h;
    if (field >= kRangeCField) {
        Remainder r = rangeC(absBits, field, h);
        out[0] = g * r.hi;
        out[1] = g * r.lo;
    } else {
        const int32_t n = int32_t(kFourOverPi * ax);  // truncation; below 2^31
        const double m = double(n + (n & 1));
        h = (n + 1) >> 1;
        Remainder r = field < kRangeBField ? rangeA(ax, m) : rangeB(ax, m);
        double H = g * r.hi, L = g * r.lo;
        out[0] = H + L;
        out[1] = L + (H - out[0]);
    }
    return (negative ? -h : h) & 3;
}

}  // namespace orv::trig
#endif
