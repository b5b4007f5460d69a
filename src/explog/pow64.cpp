// Pow and Powx, real members on doubles: dst[i] = x^y for
// orvsPow_64f_A26/A50/A53 (x = src1[i], y = src2[i]) and
// orvsPowx_64f_A26/A50/A53 (x = src[i], y the constant).
//
// Method.  x^y = 2^(y log2 x).
//   log2 x.  With h the high word of x, e is its exponent, moved up by one
//   where the fraction reaches the middle row (whose logarithm the table
//   holds less 1, so that x just below a power of two gives a small result
//   with no cancellation), and the row i = 1 + i/N is the fraction's top
//   bits rounded.  R = C/(1 + i/N) has 23 significant bits, C = log2 e cut
//   to 22 fraction bits, so that with mh the fraction m cut to 26 bits
//   both mh R and (m - mh) R are exact: p0 = m R rounded, u0 = p0 - C
//   (exact, Sterbenz) and ul = (m - mh) R + (mh R - p0), the rounding error
//   of p0, make u = C (m R/C - 1) to about 2^-105.  log2(1 + u/C) is u
//   times (1 + c1) plus a polynomial: c1 = (log2 e - C)/C folds the change
//   of base into the table at no cost.  A53 and A50 carry the sum
//   e + table + u as a head and tail pair Hs + Ls (Fast2Sum steps), A26 as
//   one double.
//   y log2 x.  The head Hs and y are each split at 26 bits (low word ANDed
//   with 0xF8000000), so ph = yh Hh is exact; the products of the tails
//   join the remainder f = (ph - kf) + (e1 + e2), where kf = k/128 is ph
//   rounded to a multiple of 1/128 by the shifter 1.5*2^45.  A26 rounds
//   t = y L once and takes f = t - kf.
//   2^f 2^(j/128) 2^n, |f| <= 1/256.  2^(j/128) = Th + Tt, Th the nearest
//   double.  A53 sums the small terms first and Th last:
//   P = ((((d5 f + d4) f^4 Th + Tt) + (d3 f + d2) f^2 Th) + d1 f Th) + Th.
//   A50 and A26 multiply Th by a polynomial in f of degree 5 and 2.
//
// Tiers and their errors (measured maxima in the records):
//   A53: log2 x as Hs + Ls; its polynomial errs by about 2^-76 absolute
//        (the rounding of its coefficients), which |y| multiplies: at most
//        about 2^-56 in f where |y log2 x| reaches the thresholds.  The
//        product keeps every partial term; 2^f by degree 5 errs by 2^-60.7
//        relative; the last addition of Th is the one large rounding.
//        Below 1 ulp on every input measured, x next to 1 with the
//        largest |y| included.
//   A50: 65 rows, log2 x by degree 8, which errs by up to 2^-65.4 absolute
//        at the edges of a row; the product without yl Hl; 2^f by degree 5
//        with Th alone (2^-53 relative).  The logarithm's error is
//        multiplied by y: for |y| below 8192 the result stays within 4
//        ulp, while x within 0.1 of 1 with a larger |y| reaches about 13
//        ulp, which the record excludes with its reason.
//   A26: 1025 rows, log2 x as one double, t = y L rounded once: the
//        relative error grows with |t| (2^-53 |t| ln 2), about 2^-43 at the
//        overflow edge; 2^f by degree 2 errs by 2^-28.
//
// Powx: the same kernels on a y split once ahead of the loop; y = 0,
// infinity or NaN sends the whole array through the ElementPath.  Fast
// paths ahead of all else, with no screen, no special-value logic and no
// status: y = 2 gives x x (A50, A53), y = 3 and 4 give (x x) x and
// (x x)(x x) (A50).  A26 has none.
//
// ElementPath.  The special values of pow_common.h first; a negative x with
// an integer y takes the kernel on |x| with the sign of an odd y, and a
// denormal x is scaled by 2^52 with 52 taken off e.  Then: the exponent
// sum of y and Hs above 11 gives infinity (same signs) or zero, with the
// sign; n >= 1025 gives infinity, n of 1023 or 1024 doubles the sign factor
// and scales by 2^(n-1), n < -1075 gives zero.  Where the result can be
// subnormal (n <= -1022), head and tail are formed at the scale 2^(n+111),
// exactly, and the one rounding into the subnormal range is made by adding
// them against an anchor at the subnormal grid, 2^-911 at that scale; the
// sign factor carries 2^-111 out again.  Any other n takes the block's own
// arithmetic, so a result does not depend on the element's position.
// Overflow and underflow give no status.
//
// Tables: kPowLog2Row53 (1025 rows, A26 and A53), kPowLog2Row50 (65 rows),
// kPowLog2Value26 and kPowExp2Tail of src/tables/pow_tables.h
// (gen_pow_tables.cpp); the heads of 2^(j/128) are the exponential's
// kExp2Fraction64 of src/tables/exp2_tables.h.
#include <cstdint>

#include "explog/pow_common.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/exp2_tables.h"
#include "tables/pow_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

constexpr double kC = doubleFromBits(0x3FF7154740000000);  // 1.4426949024200439, log2 e cut to 22 bits
// e and the row: the offset takes the exponent up by one at the middle row.
constexpr uint32_t kExponentOffset1024 = 0x3FE7FE00;
constexpr uint32_t kExponentOffset64 = 0x3FE7E000;
// Splitting at 26 significant bits: the low word ANDed with 0xF8000000.
constexpr uint64_t kSplitMask = 0xFFFFFFFFF8000000;
constexpr uint64_t kFractionMask = 0x000FFFFFFFFFFFFF;
constexpr uint64_t kOneBits = 0x3FF0000000000000;

// log2(1 + u/C) - u ~ c1 u + c2 u^2 + ... (c1 = (log2 e - C)/C).
constexpr double kC1 = doubleFromBits(0x3E79C3A6966457EE);  // 9.597935033233511e-08
constexpr double kC2 = doubleFromBits(0xBFD62E4346694107);  // -0.3465736568077919
constexpr double kC3 = doubleFromBits(0x3FC47FD462B3B816);  // 0.16015105075297303
constexpr double kC4 = doubleFromBits(0xBFB550472A8BB463);  // -0.08325619496072671
constexpr double kC5 = doubleFromBits(0x3FA7A334DDFC9F86);  // 0.04616704187202374
constexpr double kC6 = doubleFromBits(0xBF9B4EA0E9419F52);  // -0.026667131649815552
constexpr double kC7 = doubleFromBits(0x3F903950CF599C56);  // 0.015843641906397053
constexpr double kC8 = doubleFromBits(0xBF83AE00F98BCA56);  // -0.009609229674855484 (A50)

// k = round(128 y log2 x) by the shifter 1.5*2^45, whose ulp is 1/128.
constexpr double kShifter45 = doubleFromBits(0x42C8000000000000);
// 2^f ~ 1 + d1 f + ... + d5 f^5 on |f| <= 1/256.
constexpr double kD1 = doubleFromBits(0x3FE62E42FEFA39EF);  // 0.6931471805599453
constexpr double kD2 = doubleFromBits(0x3FCEBFBDFF82C58E);  // 0.2402265069591007
constexpr double kD3 = doubleFromBits(0x3FAC6B08D704A0BF);  // 0.055504108664821576
constexpr double kD4 = doubleFromBits(0x3F83B2AB6FBA4E77);  // 0.009618129107628477
constexpr double kD5 = doubleFromBits(0x3F55D87FE78A6731);  // 0.0013333558146428443
constexpr uint32_t kIndexMask = 127;
constexpr int32_t kBias = 1023;

// Block screens.  y: 0, infinite or NaN is rejected, (abs bits - 1) at or
// above the largest finite pattern.  Product: the biased exponent fields of
// y and Hs, in the high word, summed above this are an exponent sum above
// 11.  Result: k from 1023*128 up, or at or below -964*128.
constexpr uint64_t kYScreen = 0x7FEFFFFFFFFFFFFF;
constexpr uint32_t kExponentField = 0x7FF00000;
constexpr uint32_t kExponentSumLimit = 0x80900000;
constexpr int32_t kKHigh = 0x1FF80;
constexpr int32_t kKLow = int32_t(0xFFFE1E00);

// ElementPath: the range of n.
constexpr int32_t kNInfinite = 1025;
constexpr int32_t kNDoubled = 1023;
constexpr int32_t kNZero = -1075;
constexpr int32_t kNSubnormal = -1022;  // at or below: the result can be subnormal
// Denormal x: scaled by 2^52, 52 taken off e.
constexpr double kTwo52 = doubleFromBits(0x4330000000000000);
constexpr int32_t kScaleBits = 52;
constexpr uint32_t kMinNormalHigh = 0x00100000;
// Subnormal results: formed at 2^(n+111), anchored at 2^-911 (the
// subnormal ulp 2^-1074 at that scale is the ulp of the anchor), and
// brought back by 2^-111.
constexpr int32_t kSubnormalShift = 111;
constexpr double kUnscale = doubleFromBits(0x3900000000000000);  // 2^-111
constexpr double kAnchor = doubleFromBits(0x0700000000000000);   // 2^-911

// Powx fast paths: y equal to these, bit for bit.
constexpr uint64_t kTwo = 0x4000000000000000, kThree = 0x4008000000000000, kFour = 0x4010000000000000;

#ifndef ORVVM_RECORDS
// ---- Kernels ------------------------------------------------------------

inline double cut26(double v) { return doubleFromBits(bitsOf(v) & kSplitMask); }

// log2 x as Hs + Ls (ls = 0 for A26).
struct Log2 {
    double hs, ls;
};
// y, and its split where the tier multiplies in pieces.
struct SplitY {
    double y, yh, yl;
};
inline SplitY splitY(double y) {
    const double yh = cut26(y);
    return {y, yh, y - yh};
}
// The reduced power: f, and k with j in its low 7 bits and n above.
struct Reduced {
    double f;
    int32_t k;
};

// The shared front of the reduction: m, its head, the reciprocal's product
// p0 and its rounding error ul.
struct Front {
    double e, u0, ul;
};
inline Front front(double x, int32_t e, double r) {
    const double m = doubleFromBits((bitsOf(x) & kFractionMask) | kOneBits);
    const double mh = cut26(m);
    const double p0 = m * r;
    return {double(e), p0 - kC, (m - mh) * r + (mh * r - p0)};
}

// e + Th + u as head and tail, then the polynomial added to the tail.
inline Log2 pairLog(const Front& fr, const tables::PowLog2Row& row, double q) {
    const double b = fr.e + row.th;
    const double h = b + fr.u0;
    const double w1 = (b - h) + fr.u0;
    const double h2 = h + fr.ul;
    const double w2 = (h - h2) + fr.ul;
    const double lo = (row.tt + (w1 + w2)) + q;
    const double hs = h2 + lo;
    return {hs, lo - (hs - h2)};
}

inline Reduced shifted(double ph, double rest) {
    const double s = ph + kShifter45;
    const double kf = s - kShifter45;
    return {(ph - kf) + rest, int32_t(lowWord(s))};
}

// 2^(j/128): the head from the exponential's fraction table.
inline double exp2Head(uint32_t j) { return doubleFromBits(kOneBits | tables::kExp2Fraction64[j]); }

struct Tier53 {
    static Log2 log2(double x, int32_t scaled) {
        const uint32_t h = highWord(x);
        const int32_t e = (int32_t(h - kExponentOffset1024) >> 20) - scaled;
        const uint32_t i = ((h & 0xFFE00) + 0x200) >> 10;
        const tables::PowLog2Row& row = tables::kPowLog2Row53[i];
        const Front fr = front(x, e, row.r);
        const double u = fr.u0 + fr.ul;
        const double q = ((((((kC7 * u + kC6) * u + kC5) * u + kC4) * u + kC3) * u + kC2) * u + kC1) * u;
        return pairLog(fr, row, q);
    }
    static Reduced product(const Log2& l, const SplitY& y) {
        const double hh = cut26(l.hs), hl = l.hs - hh;
        const double ph = y.yh * hh;  // exact: 26 by 26 bits
        const double e1 = y.yl * hh + (y.yh * hl + hl * y.yl);
        const double e2 = y.y * l.ls;
        return shifted(ph, e1 + e2);
    }
    // 2^f 2^(j/128) - Th, the small terms summed first.
    static double tail(double f, uint32_t j) {
        const double th = exp2Head(j), tt = tables::kPowExp2Tail[j];
        double a = ((((kD5 * f + kD4) * f) * f) * f) * f * th + tt;
        a = a + (((kD3 * f + kD2) * f) * f) * th;
        return a + (kD1 * f) * th;
    }
    static double value(double f, uint32_t j) { return tail(f, j) + exp2Head(j); }
};

struct Tier50 {
    static Log2 log2(double x, int32_t scaled) {
        const uint32_t h = highWord(x);
        const int32_t e = (int32_t(h - kExponentOffset64) >> 20) - scaled;
        const uint32_t i = ((h & 0xFE000) + 0x2000) >> 14;
        const tables::PowLog2Row& row = tables::kPowLog2Row50[i];
        const Front fr = front(x, e, row.r);
        const double u = fr.u0 + fr.ul;
        const double q =
            (((((((kC8 * u + kC7) * u + kC6) * u + kC5) * u + kC4) * u + kC3) * u + kC2) * u + kC1) * u;
        return pairLog(fr, row, q);
    }
    static Reduced product(const Log2& l, const SplitY& y) {
        const double hh = cut26(l.hs), hl = l.hs - hh;
        const double ph = y.yh * hh;
        const double e1 = y.yl * hh + y.y * hl;
        const double e2 = y.y * l.ls;
        return shifted(ph, e1 + e2);
    }
    static double poly(double f) { return ((((kD5 * f + kD4) * f + kD3) * f + kD2) * f + kD1) * f; }
    static double tail(double f, uint32_t j) { return poly(f) * exp2Head(j); }
    static double value(double f, uint32_t j) { return (poly(f) + 1.0) * exp2Head(j); }
};

struct Tier26 {
    static Log2 log2(double x, int32_t scaled) {
        const uint32_t h = highWord(x);
        const int32_t e = (int32_t(h - kExponentOffset1024) >> 20) - scaled;
        const uint32_t i = ((h & 0xFFE00) + 0x200) >> 10;
        const Front fr = front(x, e, tables::kPowLog2Row53[i].r);
        const double u = fr.u0 + fr.ul;
        const double q = (((kC4 * u + kC3) * u + kC2) * u + kC1) * u;
        return {(((fr.e + tables::kPowLog2Value26[i]) + fr.u0) + fr.ul) + q, 0.0};
    }
    static Reduced product(const Log2& l, const SplitY& y) {
        const double t = y.y * l.hs;
        const double s = t + kShifter45;
        return {t - (s - kShifter45), int32_t(lowWord(s))};
    }
    static double poly(double f) { return (kD2 * f + kD1) * f; }
    static double tail(double f, uint32_t j) { return poly(f) * exp2Head(j); }
    static double value(double f, uint32_t j) { return (poly(f) + 1.0) * exp2Head(j); }
};

inline double scaleOf(int32_t n) { return doubleFromBits(uint64_t(int64_t(n + kBias)) << 52); }

// The ordinary result, (P sign) 2^n, for n from -1021 to 1022.
template <class Tier>
inline double finish(const Reduced& r, double sign, int32_t n) {
    return (Tier::value(r.f, uint32_t(r.k) & kIndexMask) * sign) * scaleOf(n);
}

// n <= -1022: head and tail at 2^(n+111), exact, and one rounding against
// the anchor (Fast2Sum steps: the head is the larger, the anchor larger
// than the sum).
template <class Tier>
inline double finishSubnormal(const Reduced& r, double sign, int32_t n) {
    const uint32_t j = uint32_t(r.k) & kIndexMask;
    const double scale = scaleOf(n + kSubnormalShift) * sign;
    const double head = exp2Head(j) * scale, tail = Tier::tail(r.f, j) * scale;
    const double v = head + tail;
    const double err = (head - v) + tail;
    if ((bitsOf(v) & kAbs64) >= bitsOf(kAnchor)) return v * kUnscale;  // a normal result: exact
    const double anchor = sign < 0 ? -kAnchor : kAnchor;
    const double a = anchor + v;
    const double rest = ((anchor - a) + v) + err;
    return ((a + rest) - anchor) * kUnscale;
}

// Whether the biased exponents of y and Hs sum above 11.
inline bool productTooLarge(double y, double hs) {
    return (highWord(y) & kExponentField) + (highWord(hs) & kExponentField) > kExponentSumLimit;
}

// ---- ElementPath --------------------------------------------------------

template <class Tier>
inline double powElement(double x, const SplitY& y, StatusVar& status) {
    const pow::Special<double> sp = pow::specialValues(x, y.y, status);
    if (sp.done) return sp.result;
    double sign = sp.sign;
    double ax = doubleFromBits(bitsOf(x) & kAbs64);
    int32_t scaled = 0;
    if (highWord(ax) < kMinNormalHigh) {
        ax = ax * kTwo52;
        scaled = kScaleBits;
    }
    const Log2 l = Tier::log2(ax, scaled);
    const double inf = doubleFromBits(0x7FF0000000000000);
    if (productTooLarge(y.y, l.hs)) return ((y.y < 0) == (l.hs < 0) ? inf : 0.0) * sign;
    const Reduced r = Tier::product(l, y);
    int32_t n = r.k >> 7;
    if (n >= kNInfinite) return inf * sign;
    if (n < kNZero) return 0.0 * sign;
    if (n >= kNDoubled) {
        sign = sign * 2.0;
        n = n - 1;
    }
    if (n <= kNSubnormal) return finishSubnormal<Tier>(r, sign, n);
    return finish<Tier>(r, sign, n);
}

// ---- Blocks -------------------------------------------------------------

inline bool yRejected(double y) { return (bitsOf(y) & kAbs64) - 1 >= kYScreen; }

// Four elements; ys[l] is the y of lane l.  All four results are made with
// no branch on the values, then the screens decide.
template <class Tier>
inline bool powBlock(const double* src, const SplitY* ys, bool screenY, double* dst) {
    int reject = positiveNormalScreen(load(src), load(src + 2));
    double out[4];
    bool bad = false;
    for (int l = 0; l < 4; ++l) {
        if (screenY) bad |= yRejected(ys[l].y);
        const Log2 lg = Tier::log2(src[l], 0);
        bad |= productTooLarge(ys[l].y, lg.hs);
        const Reduced r = Tier::product(lg, ys[l]);
        bad |= r.k >= kKHigh || r.k <= kKLow;
        out[l] = Tier::value(r.f, uint32_t(r.k) & kIndexMask) * scaleOf(r.k >> 7);
    }
    if (reject != 0 || bad) return false;
    store(dst, load(out));
    store(dst + 2, load(out + 2));
    return true;
}

template <class Tier>
inline void powArrays(const double* x, const double* y, double* dst, int32_t len, StatusVar& status) {
    wholeBlockFallback<4>(
        len,
        [&](int32_t i) {
            const SplitY ys[4] = {splitY(y[i]), splitY(y[i + 1]), splitY(y[i + 2]), splitY(y[i + 3])};
            return powBlock<Tier>(x + i, ys, true, dst + i);
        },
        [&](int32_t i) { dst[i] = powElement<Tier>(x[i], splitY(y[i]), status); });
}

// Which small integer exponents a Powx member multiplies out.
enum class FastPaths { None, Square, UpToFourth };

template <class Tier, FastPaths kFast>
inline void powConstant(const double* x, double y, double* dst, int32_t len, StatusVar& status) {
    const uint64_t by = bitsOf(y);
    if ((kFast != FastPaths::None && by == kTwo) || (kFast == FastPaths::UpToFourth && (by == kThree || by == kFour))) {
        int32_t i = 0;
        for (; i <= len - 4; i += 4)
            for (int g = 0; g < 4; g += 2) {
                const F64x2 v = load(x + i + g), sq = v * v;
                store(dst + i + g, by == kTwo ? sq : by == kThree ? sq * v : sq * sq);
            }
        for (; i < len; ++i) {
            const double v = x[i], sq = v * v;
            dst[i] = by == kTwo ? sq : by == kThree ? sq * v : sq * sq;
        }
        return;
    }
    const SplitY ys = splitY(y);
    auto element = [&](int32_t i) { dst[i] = powElement<Tier>(x[i], ys, status); };
    if (yRejected(y)) {  // zero, infinite or NaN: every element by the ElementPath
        for (int32_t i = 0; i < len; ++i) element(i);
        return;
    }
    const SplitY all[4] = {ys, ys, ys, ys};
    wholeBlockFallback<4>(len, [&](int32_t i) { return powBlock<Tier>(x + i, all, false, dst + i); }, element);
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsPow_64f_A26(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src1, src2, dst}, len, [&](StatusVar& status) {
        powArrays<Tier26>(src1, src2, dst, len, status);
    });
}
ORV_EXPORT OrvStatus orvsPow_64f_A50(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar& status) {
        powArrays<Tier50>(src1, src2, dst, len, status);
    });
}
ORV_EXPORT OrvStatus orvsPow_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar& status) {
        powArrays<Tier53>(src1, src2, dst, len, status);
    });
}

// The constant is pinned after the guard's entry, so that no arithmetic on
// it moves ahead of the mode change.
ORV_EXPORT OrvStatus orvsPowx_64f_A26(const Orv64f* src, Orv64f constant, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dst}, len, [&](StatusVar& status) {
        powConstant<Tier26, FastPaths::None>(src, opaque(constant), dst, len, status);
    });
}
ORV_EXPORT OrvStatus orvsPowx_64f_A50(const Orv64f* src, Orv64f constant, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        powConstant<Tier50, FastPaths::UpToFourth>(src, opaque(constant), dst, len, status);
    });
}
ORV_EXPORT OrvStatus orvsPowx_64f_A53(const Orv64f* src, Orv64f constant, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        powConstant<Tier53, FastPaths::Square>(src, opaque(constant), dst, len, status);
    });
}


#else
}  // namespace
}  // namespace orv

#include <cfloat>
#include <cmath>

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range, x next to 1 with |y| large, the positive line with
// small exponents, and everything finite.
std::vector<Box> powRanges() {
    return {Box{Interval{0, 16}, Interval{-16, 16}}, Box{Interval{0.9, 1.1}, Interval{-8000, 8000}},
            Box{Interval{0.999, 1.001}, Interval{-1e6, 1e6}}, Box{kPositiveFinite64, Interval{-4, 4}},
            Box{kFinite64, kFinite64}};
}
// A50: the degree-8 logarithm on 65 rows errs by up to 2^-65.4 absolute at
// the row edges, times |y|: from |y| = 8192 on (where |x| must lie within
// 0.1 of 1 for a finite, nonzero result) that passes 1 ulp, and reaches
// 12.8 ulp.  Pinned by the family tests below 14 ulp.
Exclusion a50NearOne() {
    return excludeMagnitudes({Interval{0.9, 1.1}, Interval{8192, INFINITY}},
                             "the degree-8 logarithm on 65 rows errs by up to 2^-65.4 absolute, times |y| up to "
                             "2^16.5: up to 12.8 ulp, pinned by the family tests");
}
// A26: log2 x as one double rounds log2 DBL_MAX to 1024, so x = +-DBL_MAX
// with y = 1 overflows to infinity where the exact power is finite.
std::vector<Exclusion> a26Overflow() {
    const char* why = "log2 x in one double rounds log2 DBL_MAX to 1024, so the power overflows";
    return {excludePoint({DBL_MAX, 1}, why), excludePoint({-DBL_MAX, 1}, why)};
}

}  // namespace

// Measured by the accuracy test with 100000 samples a range.
ORV_RECORDS(
    {.member = "orvsPow_64f_A26",
     .maxUlp = 2.97e7,
     .worst = {0x1.ffe86aaa0e01bp-1, 0x1.b823f7b9e4528p+18},
     .ranges = powRanges(),
     .exclusions = a26Overflow(),
     .peerVectors = "pow"},
    {.member = "orvsPow_64f_A50",
     .maxUlp = 1.993,
     .worst = {0x1.156bdc9aeeb90p+0, -0x1.b760ea4b765bep+12},
     .ranges = powRanges(),
     .exclusions = {a50NearOne()},
     .peerVectors = "pow"},
    {.member = "orvsPow_64f_A53",
     .maxUlp = 0.690,
     .worst = {0x1.002427e17af9fp+0, -0x1.6980890b07324p+19},
     .ranges = powRanges(),
     .peerVectors = "pow"},
    {.member = "orvsPowx_64f_A26",
     .maxUlp = 2.98e7,
     .worst = {0x1.d77a7feba0895p-1, 0x1.67eab2e652544p+12},
     .ranges = powRanges(),
     .exclusions = a26Overflow()},
    {.member = "orvsPowx_64f_A50",
     .maxUlp = 2.163,
     .worst = {0x1.0e0e12f56f3c2p+0, -0x1.8e0fc1185e080p+12},
     .ranges = powRanges(),
     .exclusions = {a50NearOne()}},
    {.member = "orvsPowx_64f_A53",
     .maxUlp = 0.815,
     .worst = {0x1.0021a4fd53a61p+0, -0x1.7f29ab44b40cap+19},
     .ranges = powRanges()})
}  // namespace orv
#endif
