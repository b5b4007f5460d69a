// Atan2 and Arg: dst[i] = the angle of the point (x, y), for
// orvsAtan2_<32f|64f>_<tier> (src1 holds y, src2 holds x) and
// orvsArg_<32fc|64fc>_<tier> (y = im, x = re of each complex element).  The
// two families are one kernel per type and tier; Arg only splits the
// interleaved pairs on load.
//
// Method.  In the first quadrant atan2(y, x) = atan(|y|/|x|), and the
// other quadrants follow from it: for a negative x the angle is
// pi - atan(|y|/|x|), and the sign of y goes on last.  The block kernels
// hold only operands of ordinary size, where no square or product of the
// kernel can overflow or underflow; a block with anything else goes whole
// to atan2Element.
//   32f A11: the ratio below 1 (num/den or -den/num and pi/2), rcpps and
//        one Newton step, degree 7; A21: a true division and degree 17.
//   32f A24: five intervals of the ratio (centres 0, 1/2, 1, 2 and the
//        reciprocal branch) chosen by comparing |x| with multiples of |y|;
//        numerator and denominator are exact in double, the quotient comes
//        from rcpps and two Newton steps in double, with its residual as a
//        low part; degree 9 in single on the high part; the sum in double,
//        rounded once to float.
//   64f: five intervals as in Atan (centres 0, 0.5, 1, 1.5 and the
//        reciprocal), on the ratio, chosen in integer registers by comparing
//        the high words of limit*|x| and |y|; the numerator is made exact
//        from split operands.  A26: one division and degree 11.  A50 = A53:
//        the quotient from an rcpps seed refined in double, with the
//        residual of the exact numerator and denominator as its low part,
//        degree 23, and the sum in double-double.
//
// atan2Element: an almost correctly rounded double-double routine with the
// quadrant and signed-zero table of C99 atan2:
//   NaN: y + x.  (+-inf, +inf): +-pi/4; (+-inf, -inf): +-3pi/4; (+-inf,
//   finite): +-pi/2; (+-0, x >= +0 or +inf) and (finite, +inf): a zero with
//   the sign of y; (+-0, x <= -0 or -inf) and (finite, -inf): +-pi;
//   (finite, +-0): +-pi/2.  Otherwise from d = the difference of the
//   exponent fields: a ratio below 2^-53 gives t (1 + t) or pi (the
//   square t^2, made in the element's format, raises underflow for a
//   subnormal result); a ratio above 2^53 gives pi/2 - x/|y|.  In between,
//   both operands are scaled by one power of two, the quotient is formed
//   to about 78 bits, and atan of it comes from the series at 0 (quotient
//   below 1/8) or from atan2Table's nearest point c_j and
//   atan((A - c B)/(B + c A)), whose numerator and denominator are exact
//   pairs; pi is added for a negative x with its low word, and the sum is
//   rounded once to the element's format.
//
// Tiers, maximum error measured against MPFR: see each member's record.
// The element routine is within 0.5 ulp and a few millionths for 64f.
//
// Positions: an ordinary element beside an extreme one is computed by
// atan2Element, whose value differs from the block kernel's within the
// tier; so in A11, A21, A24, A26 and A50 the last bits of a result may
// depend on its neighbours (recorded per member).
//
// Tables: kAtan2Table and kAtan2IntervalColumns of src/tables/atan_tables.h,
// made with MPFR by gen_atan_tables.cpp.  The single-precision hi and lo
// words of A24 sum to atan of each centre.
#include <cstdint>

#include "frame/bits.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/atan_tables.h"

namespace orv {
namespace atan2_constants {

// Screens.  32f A11 and A24: a block passes when every |x| and |y| has a
// pattern above kLow32 (2^-125) and below kHigh32 (2^123).
constexpr uint32_t kLow32 = 0x01000000;
constexpr uint32_t kHigh32 = 0x7D000000;
// 32f A21: the product of a half block's eight operands (or ((x y)^2)^2 of
// a tail element) must be neither 0 nor beyond the finite range.
constexpr uint32_t kInf32 = 0x7F800000;
// 64f: high words of |x| and |y| from kLow64 to kHigh64.
constexpr uint32_t kLow64 = 0x00300000;
constexpr uint32_t kHigh64 = 0x7DFFFFFF;

constexpr uint32_t kPiOver2_32 = 0x3FC90FDB;  // 1.57079637
constexpr uint32_t kPi32 = 0x40490FDB;        // 3.14159274

// A11: atan q ~ q (c1 + c3 z + c5 z^2 + c7 z^3) on |q| <= 1.
constexpr uint32_t kA11C1 = 0x3F7FF145;
constexpr uint32_t kA11C3 = 0xBEA6A8A3;
constexpr uint32_t kA11C5 = 0x3E1E481B;
constexpr uint32_t kA11C7 = 0xBD324820;
// A21: atan q ~ q (1 + d3 z + ... + d17 z^8) on |q| <= 1.
constexpr uint32_t kA21D[8] = {0xBEAAAA49, 0x3E4CB79F, 0xBE1161F8, 0x3DD96474,
                               0xBD987629, 0x3D2BC384, 0xBC7F2631, 0x3B322CC0};  // d3 .. d17

// A24: the interval limits, as multiples of |y| that |x| is compared with.
constexpr float kLimits24[4] = {2.6875f, 1.75f, 0.72f, 0.375f};
// atan of the centres 1/2, 1, 2 and of the reciprocal branch (pi/2) as a
// float hi and lo; each lo is the float nearest to atan(c) - hi.
constexpr uint32_t kHi24[4] = {0x3EED6338, 0x3F490FD8, 0x3F8DB710, 0x3FC90FD8};
constexpr uint32_t kLo24[4] = {0x31AC3768, 0x34288858, 0xB4DA2880, 0x34A88858};
// atan t - t ~ t (q3 z + q5 z^2 + q7 z^3 + q9 z^4) on |t| <= 0.375.
constexpr uint32_t kA24Q[4] = {0xBEAAAA6C, 0x3E4CAA3B, 0xBE0F4E4E, 0x3DAE1329};
constexpr uint32_t kPiHi24 = 0x40490FE0;
constexpr uint32_t kPiLo24 = 0xB5ABBBD3;
// The high part of a double that is exact as a float (24 significant bits).
constexpr uint64_t kFloatHead = 0xFFFFFFFFE0000000;

// 64f: the interval limits on the ratio, and the split of the operands into
// 26-bit heads for exact products with the centres.
constexpr double kLimits64[4] = {doubleFromBits(0x3FDC000000000000), doubleFromBits(0x3FE6000000000000),
                                 doubleFromBits(0x3FF3000000000000), doubleFromBits(0x4003800000000000)};
constexpr uint64_t kHead27 = 0xFFFFFFFFF8000000;
// A26: atan t - t ~ t (e1 z + ... + e9 z^5), as in Atan.
constexpr uint64_t kA26E[5] = {0xBFD555540DA51CB9, 0x3FC998D8BCC8FE69, 0xBFC23687C538BDA2,
                               0x3FBAD831BD486D98, 0xBFADBCA6813CEB52};
constexpr uint64_t kPiLo26 = 0x3CA1A64000000000;
// A50, A53: atan t - t ~ t (h3 z + h5 z^2 + ... + h23 z^11) on |t| <= 0.4375,
// the reach of the five intervals: the coefficients of Atan's A50 and A53,
// fitted for that range.  (A degree-23 set fitted to |t| <= 0.22 would
// leave 2^-37 at |t| = 0.4375, which the rows 0 and 4 reach.)
constexpr uint64_t kA53H[11] = {0xBFD5555555555509, 0x3FC999999998E492, 0xBFC2492491FDFC9C,
                                0x3FBC71C6FD40E520, 0xBFB745CDAE905490, 0x3FB3B0F1459B9FD4,
                                0xBFB10D58403897A0, 0x3FADDD7216B6A1B8, 0xBFA9785816AC714D,
                                0x3FA2AD8F0C29B3CB, 0xBF90A0140B247B6E};
// The exponent field, its value for 2^0 doubled (2^-e from 2046 - e), and
// the mantissa of a double.
constexpr uint64_t kExponent64 = 0x7FF0000000000000;
constexpr uint64_t kMantissa64 = 0x000FFFFFFFFFFFFF;
constexpr uint64_t kOneBits64 = 0x3FF0000000000000;
constexpr uint64_t kTwiceBias64 = 0x7FE0000000000000;

// atan2Element.
constexpr double kPi = doubleFromBits(0x400921FB54442D18);
constexpr double kPiLo = doubleFromBits(0x3CA1A62633145C07);
constexpr double kPiOver2 = doubleFromBits(0x3FF921FB54442D18);
constexpr double kPiOver2Lo = doubleFromBits(0x3C91A62633145C07);  // 6.123233995736766e-17
constexpr double kPiOver4 = doubleFromBits(0x3FE921FB54442D18);
constexpr double kPiOver4Lo = doubleFromBits(0x3C81A62633145C07);
constexpr double k3PiOver4 = doubleFromBits(0x4002D97C7F3321D2);
constexpr double k3PiOver4Lo = doubleFromBits(0x3C9A79394C9E8A0A);
constexpr double kSplit = doubleFromBits(0x41A0000002000000);  // 2^27 + 1, Dekker's split
constexpr double kScaleUp = doubleFromBits(0x7FD0000000000000);    // 2^1022
constexpr double kScaleDown = doubleFromBits(0x0010000000000000);  // 2^-1022
constexpr double kSeriesLimit = 0.125;
constexpr uint32_t kTableBase = 0x3FC00000;  // high word of 0.125
constexpr uint32_t kTableLastRow = 113;
constexpr uint32_t kPointKeep = 0xFFF80000;  // sign, exponent, top mantissa bit
constexpr uint32_t kPointBit = 0x00040000;   // the next bit: 1.25 or 1.75
// atan t - t ~ t (c3 z + ... + c15 z^7) for |t| < 1/8.
constexpr uint64_t kSeriesC[7] = {0xBFD5555555555555, 0x3FC99999999991BB, 0xBFC2492492382A27,
                                  0x3FBC71C6F9B157D3, 0xBFB745BE69CCA475, 0x3FB3AB7C1048AFD1,
                                  0xBFB029BD34239994};  // c3 .. c15
// Exponent differences of the quick paths.
constexpr int kTinyRatio = -53;  // below: t (1 + t), or pi
constexpr int kHugeRatio = 54;   // from here: pi/2 - x/|y|
constexpr int kFlatRatio = 74;   // from here: pi/2

}  // namespace atan2_constants
}  // namespace orv

#ifndef ORVVM_RECORDS

namespace orv {
namespace {

using namespace atan2_constants;

inline F32x4 k32(uint32_t bits) { return splatBits32(bits); }
inline F64x2 k64(uint64_t bits) { return splatBits64(bits); }
inline F64x2 k64(double v) { return splat(v); }

// ---- Double-double arithmetic, scalar or two lanes -------------------------

inline double dsplat(double c, double) { return c; }
inline F64x2 dsplat(double c, F64x2) { return splat(c); }

template <class V>
struct Pair {
    V hi, lo;
};
// a + b = s + e exactly, for any a and b.
template <class V>
inline Pair<V> twoSum(V a, V b) {
    V s = a + b;
    V bb = s - a;
    return {s, (a - (s - bb)) + (b - bb)};
}
// The same when |a| >= |b| or a = 0.
template <class V>
inline Pair<V> fastTwoSum(V a, V b) {
    V s = a + b;
    return {s, b - (s - a)};
}
// v = hi + lo, hi with 26 significant bits, so products of heads are exact.
template <class V>
inline Pair<V> split(V v) {
    V t = v * dsplat(kSplit, v);
    V hi = t - (t - v);
    return {hi, v - hi};
}
// a b = p + e exactly.
template <class V>
inline Pair<V> twoProd(V a, V b) {
    Pair<V> as = split(a), bs = split(b);
    V p = a * b;
    return {p, (((as.hi * bs.hi - p) + as.hi * bs.lo) + as.lo * bs.hi) + as.lo * bs.lo};
}

// ---- atan2Element -----------------------------------------------------------

// (nh + nl)/(dh + dl) to about 78 bits: the reciprocal of the denominator's
// head corrected by the residual e to second order, the quotient's main
// term exact.
inline Pair<double> quotient(double nh, double nl, double dh, double dl) {
    Pair<double> b = split(dh);
    double bl = b.lo + dl;
    double rh = split(1.0 / b.hi).hi;
    double e = (1.0 - b.hi * rh) - bl * rh;
    double r2 = (e + 1.0) * e * rh;
    Pair<double> a = split(nh);
    double al = a.lo + nl;
    double main = a.hi * rh;
    double tail = al * rh + (a.hi * r2 + al * r2);
    return fastTwoSum(main, tail);
}

inline double seriesP(double z) {
    double p = doubleFromBits(kSeriesC[6]);
    for (int k = 5; k >= 0; --k) p = p * z + doubleFromBits(kSeriesC[k]);
    return p * z;
}

// atan(t) = t + t P as a pair, with t = (hi, lo).
inline Pair<double> atanSeries(Pair<double> t, double p) {
    Pair<double> prod = twoProd(t.hi, p);
    Pair<double> s = fastTwoSum(t.hi, prod.hi);
    return {s.hi, s.lo + (prod.lo + t.lo * (1.0 + p))};
}

// A NaN operand: y + x, with y's NaN when both are, as addss gives it.
template <class T>
inline T nanSum(T y, T x) {
    return y != y ? opaque(y) + x : x + opaque(y);
}

// |v| = the magnitude of a result, with the sign of y, in T.
template <class T>
inline T withSign(double v, uint64_t signY) {
    return T(doubleFromBits(bitsOf(v) | signY));
}

template <class T>
T atan2Element(T yIn, T xIn) {
    if (yIn != yIn || xIn != xIn) return nanSum(yIn, xIn);
    const double y = yIn, x = xIn;
    const uint64_t by = bitsOf(y), bx = bitsOf(x);
    const uint64_t signY = by & kSign64;
    const bool negX = (bx & kSign64) != 0;
    double a = doubleFromBits(by & kAbs64), b = doubleFromBits(bx & kAbs64);
    const bool yInf = a == __builtin_inf(), xInf = b == __builtin_inf();
    if (yInf) {
        if (xInf) return withSign<T>(negX ? k3PiOver4 + k3PiOver4Lo : kPiOver4 + kPiOver4Lo, signY);
        return withSign<T>(kPiOver2 + kPiOver2Lo, signY);
    }
    if (a == 0 || xInf) return negX ? withSign<T>(kPi + kPiLo, signY) : withSign<T>(0.0, signY);
    if (b == 0) return withSign<T>(kPiOver2 + kPiOver2Lo, signY);

    const int fieldY = int(by >> 52 & 0x7FF), fieldX = int(bx >> 52 & 0x7FF);
    const int d = fieldY - fieldX;
    if (d < kTinyRatio) {
        if (negX) return withSign<T>(kPi + kPiLo, signY);
        double t = a / b;
        if constexpr (sizeof(T) == 4) {
            float tf = float(t);
            if ((bitsOf(tf) & 0x7F800000) == 0) return float(doubleFromBits(bitsOf(double(tf + opaque(tf) * tf)) | signY));
        } else {
            if ((bitsOf(t) & kExponent64) == 0) return doubleFromBits(bitsOf(t + opaque(t) * t) | signY);
        }
        return withSign<T>(t * (1.0 + t), signY);
    }
    if (d >= kFlatRatio) return withSign<T>(kPiOver2 + kPiOver2Lo, signY);
    if (d >= kHugeRatio) return withSign<T>((kPiOver2Lo - x / a) + kPiOver2, signY);

    const double q = a / b;
    // One power of two brings a to [1, 2) (or as near as the range allows),
    // so that the splits and products below neither overflow nor underflow.
    const double scale = fieldY == 0 ? kScaleUp
                         : fieldY >= 2046 ? kScaleDown
                                          : doubleFromBits(uint64_t(2046 - fieldY) << 52);
    a *= scale;
    b *= scale;
    Pair<double> s;  // the angle in the first quadrant
    if (q < kSeriesLimit) {
        s = atanSeries(quotient(a, 0.0, b, 0.0), seriesP(q * q));
    } else {
        // c: q cut after its top mantissa bit, with the next bit set; it
        // has three significant bits, so c times a 26-bit head is exact.
        const uint32_t hq = highWord(q);
        uint32_t row = (hq - kTableBase) >> 19;
        if (row > kTableLastRow) row = kTableLastRow;
        const double c = doubleFromWords((hq & kPointKeep) | kPointBit, 0);
        Pair<double> as = split(a), bs = split(b);
        Pair<double> num = twoSum(a - c * bs.hi, -(c * bs.lo));  // a - c b.hi is exact
        Pair<double> den = twoSum(b, c * as.hi);
        den.lo += c * as.lo;
        Pair<double> t = quotient(num.hi, num.lo, den.hi, den.lo);
        Pair<double> at = atanSeries(t, seriesP(t.hi * t.hi));
        const auto& entry = tables::kAtan2Table[row];
        Pair<double> sum = twoSum(entry.hi, at.hi);
        s = {sum.hi, sum.lo + (at.lo + entry.lo)};
    }
    if (negX) {
        Pair<double> r = twoSum(kPi, -s.hi);
        s = {r.hi, ((r.lo - s.lo) + kPiLo)};
    }
    return withSign<T>(s.hi + s.lo, signY);
}

// ---- Block kernels, 32f -----------------------------------------------------

struct Signs32 {
    F32x4 ax, ay, signX, signY, negX;
};
inline Signs32 signs(F32x4 y, F32x4 x) {
    F32x4 sx = x & k32(kSign32), sy = y & k32(kSign32);
    return {x ^ sx, y ^ sy, sx, sy, asF32x4(sar32<31>(bitsOf(x)))};
}
// The first-quadrant angle t to the full angle: pi - t for a negative x,
// then the sign of y.
inline F32x4 quadrant32(F32x4 t, const Signs32& s) {
    return ((t | s.signX) + (s.negX & k32(kPi32))) | s.signY;
}

// A11, A21: the ratio below 1 in magnitude: ay/ax, or -ax/ay plus pi/2.
struct Below1 {
    F32x4 num, den, base;
};
inline Below1 below1(const Signs32& s) {
    F32x4 m = cmpLe(s.ax, s.ay);
    return {select(m, s.ax | k32(kSign32), s.ay), select(m, s.ay, s.ax), m & k32(kPiOver2_32)};
}

inline F32x4 atan2Kernel11(F32x4 y, F32x4 x) {
    Signs32 s = signs(y, x);
    Below1 r = below1(s);
    F32x4 seed = rcp(r.den);
    F32x4 q = r.num * (seed * (splat(2.0f) - r.den * seed));
    F32x4 z = q * q, w = z * z;
    F32x4 p = (k32(kA11C5) * w + k32(kA11C1)) + (k32(kA11C7) * w + k32(kA11C3)) * z;
    return quadrant32(p * q + r.base, s);
}

inline F32x4 atan2Kernel21(F32x4 y, F32x4 x) {
    Signs32 s = signs(y, x);
    Below1 r = below1(s);
    F32x4 q = r.num / r.den;
    F32x4 z = q * q, w = z * z;
    const uint32_t* d = kA21D;  // d3, d5, ..., d17
    F32x4 p = ((((k32(d[7]) * w + k32(d[5])) * w + k32(d[3])) * w + k32(d[1])) * w + splat(1.0f)) +
              (((k32(d[6]) * w + k32(d[4])) * w + k32(d[2])) * w + k32(d[0])) * z;
    return quadrant32(p * q + r.base, s);
}

// A24 on two lanes in double: t = num/den and its residual, the polynomial
// on t's float head, the sum rounded once.
struct Interval24 {
    F32x4 u, c, hi, lo;
};
inline F64x2 atan2Half24(F64x2 ax, F64x2 ay, F64x2 u, F64x2 c, F64x2 hi, F64x2 lo, F64x2 negX) {
    // Intervals 0-3: (ay - c ax)/(ax + c ay) with c = 0, 1/2, 1, 2;
    // interval 4: -ax/ay (u = 0, c = 1).  Both exact in double.
    F64x2 num = u * ay - c * ax, den = u * ax + c * ay;
    F64x2 r = widenLow(rcp(narrow(den)));
    r = r * (splat(2.0) - den * r);
    r = r * (splat(2.0) - den * r);
    F64x2 t = num * r;
    F64x2 th = t & k64(kFloatHead);
    F64x2 tl = (num - th * den) * r;  // th den is exact, and so is the difference
    F32x4 tf = narrow(th), z = tf * tf;
    F32x4 p = (((k32(kA24Q[3]) * z + k32(kA24Q[2])) * z + k32(kA24Q[1])) * z + k32(kA24Q[0])) * z * tf;
    F64x2 small = th + (tl + (widenLow(p) + lo));
    // pi - (hi + small) with pi as a float pair; pi.hi - hi is exact.
    F64x2 piHi = splat(double(floatFromBits(kPiHi24))), piLo = splat(double(floatFromBits(kPiLo24)));
    return select(negX, (piHi - hi) + (piLo - small), hi + small);
}

inline F32x4 atan2Kernel24(F32x4 y, F32x4 x) {
    Signs32 s = signs(y, x);
    // The interval from |x| against multiples of |y|, on the patterns.
    I32x4 bx = bitsOf(s.ax);
    F32x4 g[4];
    for (int k = 0; k < 4; ++k) g[k] = asF32x4(cmpGt32(bx, bitsOf(splat(kLimits24[k]) * s.ay)));
    // g[0]: interval 0; g[1]: 0-1; g[2]: 0-2; g[3]: 0-3.
    F32x4 c = select(g[0], zeroF32x4(), select(g[1], splat(0.5f), select(g[2], splat(1.0f), select(g[3], splat(2.0f), splat(1.0f)))));
    F32x4 u = g[3] & splat(1.0f);
    F32x4 hi = andNot(select(g[1], k32(kHi24[0]), select(g[2], k32(kHi24[1]), select(g[3], k32(kHi24[2]), k32(kHi24[3])))), g[0]);
    F32x4 lo = andNot(select(g[1], k32(kLo24[0]), select(g[2], k32(kLo24[1]), select(g[3], k32(kLo24[2]), k32(kLo24[3])))), g[0]);
    F64x2 negLow = cmpLt(widenLow(x), zeroF64x2()), negHigh = cmpLt(widenHigh(x), zeroF64x2());
    F64x2 r0 = atan2Half24(widenLow(s.ax), widenLow(s.ay), widenLow(u), widenLow(c), widenLow(hi), widenLow(lo), negLow);
    F64x2 r1 = atan2Half24(widenHigh(s.ax), widenHigh(s.ay), widenHigh(u), widenHigh(c), widenHigh(hi), widenHigh(lo), negHigh);
    return narrow(r0, r1) | s.signY;
}

// ---- Block kernels, 64f -----------------------------------------------------

// The row of the ratio |y|/|x|: 4 minus the limits L for which the high
// word of L |x| lies below that of |y|, in integer registers.
inline uint32_t ratioRow(double ax, double ay) {
    const uint32_t hy = highWord(ay);
    uint32_t row = 4;
    for (double limit : kLimits64) row -= highWord(limit * ax) < hy;
    return row;
}

struct Reduced64 {
    F64x2 ax, ay, a, b, hi, lo, negX, signY;
    // num = (y AND B) - A x as the exact head difference and a tail.
    F64x2 numHead, numTail;
};
inline Reduced64 reduce64(F64x2 y, F64x2 x) {
    Reduced64 r;
    r.signY = y & k64(kSign64);
    r.negX = cmpLt(x, zeroF64x2());
    r.ax = andNot(x, k64(kSign64));
    r.ay = y ^ r.signY;
    const auto& t = tables::kAtan2IntervalColumns;
    uint32_t i0 = ratioRow(lane0(r.ax), lane0(r.ay)), i1 = ratioRow(lane1(r.ax), lane1(r.ay));
    r.a = setLanes(t.a[i0], t.a[i1]);
    r.b = asF64x2(setLanes64(t.b[i0], t.b[i1]));
    r.hi = setLanes(t.hi[i0], t.hi[i1]);
    r.lo = setLanes(t.lo[i0], t.lo[i1]);
    F64x2 xh = r.ax & k64(kHead27), xl = r.ax - xh;
    F64x2 yh = r.ay & k64(kHead27), yl = r.ay - yh;
    r.numHead = (yh & r.b) - r.a * xh;
    r.numTail = (yl & r.b) - r.a * xl;
    return r;
}

inline F64x2 atan2Kernel26(F64x2 y, F64x2 x) {
    Reduced64 r = reduce64(y, x);
    F64x2 den = r.a * r.ay + (r.ax & r.b);
    F64x2 t = (r.numHead + r.numTail) / den;
    F64x2 z = t * t, w = z * z;
    F64x2 p = ((k64(kA26E[4]) * w + k64(kA26E[2])) * w + k64(kA26E[0])) * z + (k64(kA26E[3]) * w + k64(kA26E[1])) * w;
    F64x2 small = (t * p + r.lo) + t;
    F64x2 angle = select(r.negX, (splat(kPi) - r.hi) + (k64(kPiLo26) - small), r.hi + small);
    return angle | r.signY;
}

// A50, A53: 1/den from an rcpps seed on den's mantissa, scaled by the power
// of two of its exponent (den is normal here), and two Newton steps.
inline F64x2 reciprocal53(F64x2 den) {
    I32x4 bits = bitsOf(den);
    F64x2 mantissa = asF64x2((bits & splat64(kMantissa64)) | splat64(kOneBits64));
    F64x2 scale = asF64x2(sub64(splat64(kTwiceBias64), bits & splat64(kExponent64)));
    F64x2 r = widenLow(rcp(narrow(mantissa))) * scale;
    r = r * (splat(2.0) - den * r);
    return r * (splat(2.0) - den * r);
}

inline F64x2 atan2Kernel53(F64x2 y, F64x2 x) {
    Reduced64 r = reduce64(y, x);
    // den = A y + (x AND B) as a pair: A times the head and tail of y is exact.
    F64x2 yh = r.ay & k64(kHead27);
    Pair<F64x2> den = twoSum(r.a * yh, r.ax & r.b);
    den.lo = den.lo + r.a * (r.ay - yh);
    den = fastTwoSum(den.hi, den.lo);
    F64x2 recip = reciprocal53(den.hi);
    F64x2 th = (r.numHead + r.numTail) * recip;
    Pair<F64x2> prod = twoProd(th, den.hi);
    F64x2 residual = (((r.numHead - prod.hi) - prod.lo) + r.numTail) - th * den.lo;
    // t = th + tl to about 2^-90; the polynomial needs t to the last bit.
    Pair<F64x2> t = fastTwoSum(th, residual * recip);
    th = t.hi;
    F64x2 tl = t.lo;
    F64x2 z = th * th, w = z * z;
    F64x2 odd = k64(kA53H[10]), even = k64(kA53H[9]);
    for (int k = 8; k >= 0; k -= 2) odd = odd * w + k64(kA53H[k]);
    for (int k = 7; k >= 1; k -= 2) even = even * w + k64(kA53H[k]);
    F64x2 p = odd * z + even * w;
    Pair<F64x2> s = twoSum(r.hi, th);
    F64x2 low = s.lo + ((th * p + r.lo) + tl);
    // A negative x: pi - (s.hi + low), pi with its low word.
    F64x2 flip = r.negX & k64(kSign64);
    Pair<F64x2> q = twoSum(r.negX & splat(kPi), s.hi ^ flip);
    F64x2 angle = q.hi + ((q.lo + (low ^ flip)) + (r.negX & splat(kPiLo)));
    return angle | r.signY;
}

// ---- Screens ----------------------------------------------------------------

// Lanes whose |x| or |y| lies outside (kLow32, kHigh32).
inline int extremeLanes32(F32x4 v) {
    I32x4 m = bitsOf(v) & splat32(kAbs32);
    return signMask32(cmpGt32(splat32(kLow32 + 1), m) | cmpGt32(m, splat32(kHigh32 - 1)));
}
inline bool ordinary32(float v) {
    uint32_t m = bitsOf(v) & kAbs32;
    return m > kLow32 && m < kHigh32;
}
// A21: the product is a zero, an infinity or a NaN.
inline bool productFails(float p) {
    uint32_t m = bitsOf(p) & kAbs32;
    return m == 0 || m >= kInf32;
}
inline int extremeLanes64(F64x2 a, F64x2 b) {
    I32x4 m = highWords(a, b) & splat32(kAbs32);
    return signMask32(cmpGt32(splat32(kLow64), m) | cmpGt32(m, splat32(kHigh64)));
}
inline bool ordinary64(double v) {
    uint32_t m = highWord(v) & kAbs32;
    return m >= kLow64 && m <= kHigh64;
}

// ---- Sources: two arrays, or interleaved complex pairs ---------------------

struct Arrays32 {
    const float* y;
    const float* x;
    void load4(int32_t i, F32x4& yv, F32x4& xv) const {
        yv = load(y + i);
        xv = load(x + i);
    }
    float yAt(int32_t i) const { return y[i]; }
    float xAt(int32_t i) const { return x[i]; }
};
struct Complex32 {
    const float* c;  // re, im, re, im, ...
    void load4(int32_t i, F32x4& yv, F32x4& xv) const {
        F32x4 c01 = load(c + 2 * i), c23 = load(c + 2 * i + 4);
        xv = evenLanes(c01, c23);
        yv = oddLanes(c01, c23);
    }
    float yAt(int32_t i) const { return c[2 * i + 1]; }
    float xAt(int32_t i) const { return c[2 * i]; }
};
struct Arrays64 {
    const double* y;
    const double* x;
    void load2(int32_t i, F64x2& yv, F64x2& xv) const {
        yv = load(y + i);
        xv = load(x + i);
    }
    double yAt(int32_t i) const { return y[i]; }
    double xAt(int32_t i) const { return x[i]; }
};
struct Complex64 {
    const double* c;
    void load2(int32_t i, F64x2& yv, F64x2& xv) const {
        F64x2 c0 = load(c + 2 * i), c1 = load(c + 2 * i + 2);
        xv = unpackLo(c0, c1);
        yv = unpackHi(c0, c1);
    }
    double yAt(int32_t i) const { return c[2 * i + 1]; }
    double xAt(int32_t i) const { return c[2 * i]; }
};

// ---- Loops --------------------------------------------------------------------

// The tiers as kernels and screens.
struct Tier11 {
    static F32x4 kernel(F32x4 y, F32x4 x) { return atan2Kernel11(y, x); }
    static bool blockFails(const F32x4 (&y)[2], const F32x4 (&x)[2]) {
        return (extremeLanes32(y[0]) | extremeLanes32(y[1]) | extremeLanes32(x[0]) | extremeLanes32(x[1])) != 0;
    }
    static bool elementPasses(float y, float x) { return ordinary32(y) && ordinary32(x); }
};
struct Tier24 : Tier11 {
    static F32x4 kernel(F32x4 y, F32x4 x) { return atan2Kernel24(y, x); }
};
// A21's screen: in each half of the block, the product of its four x and
// its four y, in scalar single precision: one test finds a zero, an
// infinity, a NaN, and an overflow or underflow of ordinary values.
struct Tier21 {
    static F32x4 kernel(F32x4 y, F32x4 x) { return atan2Kernel21(y, x); }
    static bool blockFails(const F32x4 (&y)[2], const F32x4 (&x)[2]) {
        alignas(16) float v[16];
        store(v, x[0]);
        store(v + 4, y[0]);
        store(v + 8, x[1]);
        store(v + 12, y[1]);
        bool fails = false;
        for (int h = 0; h < 16; h += 8) {
            float p = v[h];
            for (int k = 1; k < 8; ++k) p = opaque(p) * v[h + k];
            fails |= productFails(p);
        }
        return fails;
    }
    static bool elementPasses(float y, float x) {
        float p = x * y;
        p = p * p;
        return !productFails(p * p);
    }
};

template <class Tier, class Source>
inline void atan2Loop32(Source src, float* dst, int32_t len) {
    wholeBlockFallback<8>(
        len,
        [&](int32_t i) {
            F32x4 y[2], x[2];
            src.load4(i, y[0], x[0]);
            src.load4(i + 4, y[1], x[1]);
            F32x4 r0 = Tier::kernel(y[0], x[0]), r1 = Tier::kernel(y[1], x[1]);
            if (Tier::blockFails(y, x)) return false;
            store(dst + i, r0);
            store(dst + i + 4, r1);
            return true;
        },
        [&](int32_t i) { dst[i] = atan2Element<float>(src.yAt(i), src.xAt(i)); },
        [&](int32_t i) {
            float y = src.yAt(i), x = src.xAt(i);
            dst[i] = Tier::elementPasses(y, x) ? lane0(Tier::kernel(splat(y), splat(x))) : atan2Element<float>(y, x);
        });
}

// 64f: rounds of four up to the last multiple of 16, then up to 15 tail
// elements one at a time with the same screen.
template <F64x2 (*Kernel)(F64x2, F64x2), class Source>
inline void atan2Loop64(Source src, double* dst, int32_t len) {
    const int32_t rounds = len & ~15;
    blockRounds<4>(
        rounds,
        [&](int32_t i) {
            F64x2 y0, x0, y1, x1;
            src.load2(i, y0, x0);
            src.load2(i + 2, y1, x1);
            F64x2 r0 = Kernel(y0, x0), r1 = Kernel(y1, x1);
            if ((extremeLanes64(y0, y1) | extremeLanes64(x0, x1)) != 0) return false;
            store(dst + i, r0);
            store(dst + i + 2, r1);
            return true;
        },
        [&](int32_t i) {
            for (int32_t j = i; j < i + 4; ++j) dst[j] = atan2Element<double>(src.yAt(j), src.xAt(j));
        },
        [](int32_t) {});
    for (int32_t i = rounds; i < len; ++i) {
        double y = src.yAt(i), x = src.xAt(i);
        dst[i] = ordinary64(y) && ordinary64(x) ? lane0(Kernel(splat(y), splat(x))) : atan2Element<double>(y, x);
    }
}

}  // namespace
}  // namespace orv

using namespace orv;

#define ORV_ATAN2_32(tier, Tier)                                                                                 \
    ORV_EXPORT OrvStatus orvsAtan2_32f_##tier(const Orv32f* src1, const Orv32f* src2, Orv32f* dst,           \
                                              int32_t len) {                                                 \
        return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar&) {                   \
            atan2Loop32<Tier>(Arrays32{src1, src2}, dst, len);                                         \
        });                                                                                                  \
    }                                                                                                        \
    ORV_EXPORT OrvStatus orvsArg_32fc_##tier(const Orv32fc* src, Orv32f* dst, int32_t len) {                 \
        return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {                          \
            atan2Loop32<Tier>(Complex32{reinterpret_cast<const float*>(src)}, dst, len);               \
        });                                                                                                  \
    }
ORV_ATAN2_32(A11, Tier11)
ORV_ATAN2_32(A21, Tier21)
ORV_ATAN2_32(A24, Tier24)

#define ORV_ATAN2_64(tier, kernel)                                                                           \
    ORV_EXPORT OrvStatus orvsAtan2_64f_##tier(const Orv64f* src1, const Orv64f* src2, Orv64f* dst,           \
                                              int32_t len) {                                                 \
        return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar&) {                   \
            atan2Loop64<kernel>(Arrays64{src1, src2}, dst, len);                                             \
        });                                                                                                  \
    }                                                                                                        \
    ORV_EXPORT OrvStatus orvsArg_64fc_##tier(const Orv64fc* src, Orv64f* dst, int32_t len) {                 \
        return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {                          \
            atan2Loop64<kernel>(Complex64{reinterpret_cast<const double*>(src)}, dst, len);                  \
        });                                                                                                  \
    }
ORV_ATAN2_64(A26, atan2Kernel26)
ORV_ATAN2_64(A50, atan2Kernel53)
ORV_ATAN2_64(A53, atan2Kernel53)

#else  // ORVVM_RECORDS

#include "frame/record.h"

namespace orv {
namespace {
using records::Interval;
// Components in argument order: Atan2 (y, x), Arg (re, im).  Ordinary
// operands, the whole line, and ratios far from 1 either way.
constexpr Interval kOrdinary{-4.0, 4.0};
constexpr Interval kSmall{-1e-6, 1e-6};
constexpr const char* kNeighbours =
    "a block holding a zero, an infinity, a NaN or an extreme operand (and in A21 a block whose "
    "product of operands overflows or underflows) is computed whole by the double-double element "
    "routine, whose value differs from the block kernel's within the tier";
}  // namespace
ORV_RECORDS(
    {.member = "orvsAtan2_32f_A11", .maxUlp = 3773.5, .worst = {0x1.dc5fe2p-22, 0x1.dc6d34p+98},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite32, kFinite32}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 3774}},
    {.member = "orvsAtan2_32f_A21", .maxUlp = 3.447, .worst = {-0x1.5ee24ep+1, 0x1.6e9fb8p+1},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite32, kFinite32}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 3.95}},
    {.member = "orvsAtan2_32f_A24", .maxUlp = 0.6845, .worst = {0x1.301a68p+0, 0x1.f3012ep+1},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite32, kFinite32}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 1.2}},
    {.member = "orvsArg_32fc_A11", .maxUlp = 3773.5, .worst = {0x1.dc6d34p+98, 0x1.dc5fe2p-22},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite32, kFinite32}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 3774}},
    {.member = "orvsArg_32fc_A21", .maxUlp = 3.447, .worst = {0x1.6e9fb8p+1, -0x1.5ee24ep+1},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite32, kFinite32}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 3.95}},
    {.member = "orvsArg_32fc_A24", .maxUlp = 0.6845, .worst = {0x1.f3012ep+1, 0x1.301a68p+0},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite32, kFinite32}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 1.2}},
    {.member = "orvsAtan2_64f_A26", .maxUlp = 9.66e6, .worst = {0x1.dacd19b8908ep-3, 0x1.118ed000dc954p+0},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite64, kFinite64}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 9.66e6}},
    {.member = "orvsAtan2_64f_A50", .maxUlp = 0.7846, .worst = {doubleFromBits(0x80387A997AFFF4EB), doubleFromBits(0x250B01DF932B1557)},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite64, kFinite64}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 1.3},
     .sameAs = "orvsAtan2_64f_A53"},
    {.member = "orvsAtan2_64f_A53", .maxUlp = 0.7846, .worst = {doubleFromBits(0x80387A997AFFF4EB), doubleFromBits(0x250B01DF932B1557)},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite64, kFinite64}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 1.3}},
    {.member = "orvsArg_64fc_A26", .maxUlp = 9.66e6, .worst = {0x1.118ed000dc954p+0, 0x1.dacd19b8908ep-3},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite64, kFinite64}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 9.66e6}},
    {.member = "orvsArg_64fc_A50", .maxUlp = 0.7846, .worst = {doubleFromBits(0x250B01DF932B1557), doubleFromBits(0x80387A997AFFF4EB)},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite64, kFinite64}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 1.3},
     .sameAs = "orvsArg_64fc_A53"},
    {.member = "orvsArg_64fc_A53", .maxUlp = 0.7846, .worst = {doubleFromBits(0x250B01DF932B1557), doubleFromBits(0x80387A997AFFF4EB)},
     .ranges = {Box{kOrdinary, kOrdinary}, Box{kFinite64, kFinite64}, Box{kOrdinary, kSmall}, Box{kSmall, kOrdinary}},
     .position = {kNeighbours, 1.3}})
}  // namespace orv

#endif  // ORVVM_RECORDS
