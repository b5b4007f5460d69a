// SinCos and CIS: sin x and cos x of each element from one reduction.
// orvsSinCos_32f_A11, _A21, _A24 and orvsSinCos_64f_A26, _A50, _A53 write
// them to two arrays (dstSin, dstCos); orvsCIS_32fc_* and orvsCIS_64fc_*
// write the phasor cos x + i sin x of a real array into a complex one.
// The three CIS tiers of a type are one computation, the best kernel of
// SinCos for that type.
//
// Method.
//   By pi/2 (SinCos 32f A11, A21, the 32-bit double kernel of SinCos 32f
//   A24 and CIS 32fc, SinCos 64f A50): x = k pi/2 + r, k = round(x 2/pi)
//   by a shifter whose low bits give n = k mod 4, |r| <= about pi/4, and
//   S = r + r z Ps(z) ~ sin r, C = 1 + z Pc(z) ~ cos r, z = r^2.  Then with
//   p = n mod 2 the sine is C where p is set and S otherwise, the cosine
//   the other one; the sine takes the sign of bit 1 of n - p and the
//   cosine that of bit 1 of n + p (n = 1: C, -S; 2: -S, -C; 3: -C, S): all
//   by masks, no branch.
//     A11: pi/2 in 3 single parts, degrees 5 and 4 in single.
//     A21: pi/2 in 4 single parts, degrees 7 and 8 in single.
//     A24, CIS 32fc: k found in single, r and the polynomials (degrees 7
//          and 8) in double, each result rounded once to single.
//     64f A50: on |x|, k by the shifter 2^52, pi/2 in 4 parts, degrees 13
//          and 14; the sign of x goes into the sine at the end.
//   By pi/32 (SinCos 64f A26): the short kernel of orvsSin_64f_A26 once for
//   both results: sin x = C sin a + S cos a on the row a = j pi/32 of
//   kShortPhaseTable, and cos x the same on the row j + 16.
//   By pi/64 (SinCos 64f A53, CIS 64fc): x = k pi/64 + r + rl, the rows
//   {cosTail, sinHi, sinLo, cosBase} of kFinePhaseTable for a = j pi/64 and
//   a + pi/2 (row j + 32), and the phase sum of the double sine kernel
//   (trig_kernels.cpp) on each, sharing sin r - r and cos r - 1.  The finer
//   table halves |r| (at most pi/128) against the kernel's and saves a term
//   of each polynomial: Taylor to r^7 and r^6, whose first neglected terms
//   are below 2^-70 of the result.
//
// Screens, on the pattern of |x| (the high word in 64f): 32f passes |x| up
// to 10000 (0x461C4000), 64f A26 up to the high word 0x40F60000, A50 up to
// 0x40FF4000 (about 128000), A53 and CIS 64fc below 0x40F60000 (90112).  A
// block (8 floats, 4 doubles, 2 in A50) with an element beyond goes whole,
// element by element, to the double kernel sinCosKernel64: an element's
// bits may then depend on its neighbours (measured in the records).  The
// tail (len mod N) repeats the block's arithmetic one element at a time,
// with the same screen.
//
// Special values.  SinCos: +-inf gives the default NaN in both arrays
// (0xFFC00000, 0xFFF8000000000000), orvStatusDomain and the invalid flag;
// a NaN comes back quiet in both.  CIS never warns: +-inf gives the default
// NaN in both parts with no status and no flag, a NaN both parts quiet.
// sin(-0) is +0 from the blocks (a positive zero is added to it) but in
// SinCos 64f A50, which works on |x| and gives -0; cos(+-0) is 1.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/trig_tables.h"
#include "trig/half_pi_reduction.h"
#include "trig/trig_kernels.h"

namespace orv {
namespace {

// ---- Constants --------------------------------------------------------------

// Screens: the block passes at or below these patterns of |x| (32f) or high
// words of |x| (64f A26, A50), and strictly below kLimit53.
constexpr uint32_t kLimit32 = 0x461C4000;  // 10000.0
constexpr uint32_t kLimit26 = 0x40F60000;  // |x| < 90112.0625
constexpr uint32_t kLimit50 = 0x40FF4000;  // |x| < 128001
constexpr uint32_t kLimit53 = 0x40F60000;  // |x| < 90112

// Polynomials, from the lowest coefficient up: S = r + r z Ps(z), C = 1 +
// z Pc(z).  Minimax fits for |r| <= pi/4.
constexpr float kSin11[] = {floatFromBits(0xBE2AA214), floatFromBits(0x3C05BF49)};
constexpr float kCos11[] = {floatFromBits(0xBEFFE09E), floatFromBits(0x3D25B7C3)};
constexpr float kSin21[] = {floatFromBits(0xBE2AAAA3), floatFromBits(0x3C08839D), floatFromBits(0xB94CA1F0)};
constexpr float kCos21[] = {-0.5f, floatFromBits(0x3D2AAAA5), floatFromBits(0xBAB6061A),
                            floatFromBits(0x37CCF5CE)};
constexpr double kSin24[] = {doubleFromBits(0xBFC55554527AF340), doubleFromBits(0x3F811073AFCE563F),
                             doubleFromBits(0xBF29943E0FBEA90A)};
constexpr double kCos24[] = {-0.5, doubleFromBits(0x3FA55554A115B568), doubleFromBits(0xBF56C0C33A81BD97),
                             doubleFromBits(0x3EF99EB9C49F772E)};
constexpr double kSin50[] = {doubleFromBits(0xBFC5555555555549), doubleFromBits(0x3F8111111110F8A6),
                             doubleFromBits(0xBF2A01A019C161D5), doubleFromBits(0x3EC71DE357B1FE7D),
                             doubleFromBits(0xBE5AE5E68A2B9CEB), doubleFromBits(0x3DE5D93A5ACFD57C)};
constexpr double kCos50[] = {-0.5,
                             doubleFromBits(0x3FA555555555554C),
                             doubleFromBits(0xBF56C16C16C15177),
                             doubleFromBits(0x3EFA01A019CB1590),
                             doubleFromBits(0xBE927E4F809C52AD),
                             doubleFromBits(0x3E21EE9EBDB4B1C4),
                             doubleFromBits(0xBDA8FAE9BE8838D4)};

// A24 and CIS 32fc: pi/2 = -kNegHalfPiHi + kHalfPiLo.
constexpr double kNegHalfPiHi = -trig::kHalfPiHi;  // 0xBFF921FB54440000

// The fine table: 64/pi, and pi/64 in three parts (31 and 32 significant
// bits in the first two, so k C1 and k C2 are exact for |k| < 2^21).
constexpr double kSixtyFourOverPi = doubleFromBits(0x40345F306DC9C883);  // 20.371832715762604
constexpr double kPiBy64C1 = doubleFromBits(0x3FA921FB54400000);
constexpr double kPiBy64C2 = doubleFromBits(0x3D80B4611A600000);
constexpr double kPiBy64C3 = doubleFromBits(0x3B53198A2E037073);
constexpr uint64_t kFineRows = 127;
constexpr uint64_t kFineQuarterTurn = 32;
// The short table of A26.
constexpr uint64_t kShortRows = 63;
constexpr uint64_t kShortQuarterTurn = 16;

// CIS's parts for an infinity: the default NaN (trig::kDefaultNan32 for
// floats), stored as a constant so that no flag is raised.
constexpr uint64_t kDefaultNan64 = 0xFFF8000000000000;

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// ---- Kernels ------------------------------------------------------------------

template <class V, class S, size_t P>
inline V horner(V z, const S (&c)[P]) {
    V p = splat(c[P - 1]);
    for (size_t i = P - 1; i-- > 0;) p = p * z + splat(c[i]);
    return p;
}

template <class V>
struct Pair {
    V sin, cos;
};

// The quadrant logic of the kernels by pi/2 on four floats: n is the pattern
// of the shifted sum, whose low bits are k's.
inline Pair<F32x4> quadrant(F32x4 shifted, F32x4 S, F32x4 C) {
    const I32x4 n = bitsOf(shifted);
    const I32x4 p = n & splat32(1);
    const F32x4 even = trig::evenQuadrants(shifted);
    const F32x4 sinSign = asF32x4(shl32<30>(sub32(n, p)) & splat32(kSign32));
    const F32x4 cosSign = asF32x4(shl32<30>(add32(n, p)) & splat32(kSign32));
    return {select(even, S, C) ^ sinSign, select(even, C, S) ^ cosSign};
}

// The same on two doubles, with k in the low word of the shifted sum.
inline Pair<F64x2> quadrant(F64x2 shifted, F64x2 S, F64x2 C) {
    const I32x4 n = bitsOf(shifted);
    const I32x4 p = n & splat64(1);
    const F64x2 even = trig::evenQuadrants(shifted);
    const F64x2 sinSign = asF64x2(shl64<62>(sub64(n, p)) & splat64(kSign64));
    const F64x2 cosSign = asF64x2(shl64<62>(add64(n, p)) & splat64(kSign64));
    return {select(even, S, C) ^ sinSign, select(even, C, S) ^ cosSign};
}

// A11 and A21: all in single.
template <size_t Parts, size_t SinTerms, size_t CosTerms>
inline Pair<F32x4> bySingleHalfPi(F32x4 x, const float (&parts)[Parts], const float (&sinP)[SinTerms],
                                  const float (&cosP)[CosTerms]) {
    const F32x4 shifted = trig::shiftedQuadrants(x);
    const F32x4 r = trig::subtractParts(x, trig::quadrantsOf(shifted), parts);
    const F32x4 z = r * r;
    const F32x4 S = r + (r * z) * horner(z, sinP);
    const F32x4 C = splat(1.0f) + z * horner(z, cosP);
    return quadrant(shifted, S, C);
}

inline Pair<F32x4> sinCos11(F32x4 x) { return bySingleHalfPi(x, trig::kHalfPi3, kSin11, kCos11); }
inline Pair<F32x4> sinCos21(F32x4 x) { return bySingleHalfPi(x, trig::kHalfPi4, kSin21, kCos21); }

// The 32-bit double kernel: k in single, r and the polynomials on two
// widened lanes, rounded to single before the quadrant logic (which only
// moves and flips signs, so it commutes with the rounding).
inline Pair<F64x2> polynomials24(F64x2 x, F64x2 k) {
    const F64x2 r = (k * splat(kNegHalfPiHi) + x) - k * splat(trig::kHalfPiLo);
    const F64x2 z = r * r;
    return {r + (r * z) * horner(z, kSin24), splat(1.0) + z * horner(z, kCos24)};
}

inline Pair<F32x4> sinCos24(F32x4 x) {
    const F32x4 shifted = trig::shiftedQuadrants(x);
    const F32x4 k = trig::quadrantsOf(shifted);
    const Pair<F64x2> lo = polynomials24(widenLow(x), widenLow(k));
    const Pair<F64x2> hi = polynomials24(widenHigh(x), widenHigh(k));
    return quadrant(shifted, narrow(lo.sin, hi.sin), narrow(lo.cos, hi.cos));
}

// 64f A50: on |x|, the sign of x put into the sine last.
inline Pair<F64x2> sinCos50(F64x2 x) {
    const F64x2 sign = x & splatBits64(kSign64);
    const F64x2 a = x ^ sign;
    const F64x2 shifted = trig::shiftedQuadrants(a);
    const F64x2 r = trig::subtractParts(a, trig::quadrantsOf(shifted), trig::kHalfPi50);
    const F64x2 z = r * r;
    const F64x2 S = r + (r * z) * horner(z, kSin50);
    const F64x2 C = splat(1.0) + z * horner(z, kCos50);
    Pair<F64x2> y = quadrant(shifted, S, C);
    return {y.sin ^ sign, y.cos};
}

// Row indices of the two lanes: the low bits of the shifted sums.
inline uint64_t row0(F64x2 T) { return lane0of64(bitsOf(T)); }
inline uint64_t row1(F64x2 T) { return lane1of64(bitsOf(T)); }

// 64f A26: the short kernel, one reduction, two rows.
inline Pair<F64x2> sinCos26(F64x2 x) {
    const F64x2 T = x * splat(trig::kThirtyTwoOverPi) + splat(trig::kShifter52);
    const F64x2 k = T - splat(trig::kShifter52);
    const F64x2 r = ((x - k * splat(trig::kShortC1)) - k * splat(trig::kShortC2)) - k * splat(trig::kShortC3);
    const F64x2 z = r * r;
    const F64x2 S = ((z * splat(trig::kShortS5) + splat(trig::kShortS3)) * z + splat(1.0)) * r;
    const F64x2 C = (z * splat(trig::kShortC4) + splat(trig::kShortCos2)) * z + splat(1.0);
    auto phase = [&](uint64_t turn) {
        const auto& a = tables::kShortPhaseTable[(row0(T) + turn) & kShortRows];
        const auto& b = tables::kShortPhaseTable[(row1(T) + turn) & kShortRows];
        const F64x2 rowA = load(&a.cosine), rowB = load(&b.cosine);
        return C * unpackHi(rowA, rowB) + S * unpackLo(rowA, rowB);
    };
    return {phase(0), phase(kShortQuarterTurn)};
}

// sin(a + r + rl) on the rows of the two lanes, in the steps and the order
// of the double kernel's phase sum; Sp = sin r - r, Cp = cos r - 1.
inline F64x2 finePhase(const tables::PhaseRow& a, const tables::PhaseRow& b, F64x2 r, F64x2 rl, F64x2 Sp,
                       F64x2 Cp) {
    const F64x2 a01 = load(&a.cosTail), b01 = load(&b.cosTail);
    const F64x2 a23 = load(&a.sinLo), b23 = load(&b.sinLo);
    const F64x2 cosTail = unpackLo(a01, b01), sinHi = unpackHi(a01, b01);
    const F64x2 sinLo = unpackLo(a23, b23), cosBase = unpackHi(a23, b23);
    const F64x2 c = cosTail + cosBase;
    const F64x2 p1 = cosTail * r;
    const F64x2 p2 = sinHi + cosBase * r;
    const F64x2 hi = p1 + p2;
    const F64x2 lo = (((Sp * c + Cp * sinHi) + (rl * (c - r * sinHi) + sinLo)) + (cosBase * r + (sinHi - p2))) +
                     (p1 + (p2 - hi));
    return hi + lo;
}

// 64f A53 and CIS 64fc.
inline Pair<F64x2> sinCos53(F64x2 x) {
    const F64x2 T = x * splat(kSixtyFourOverPi) + splat(trig::kShifter52);
    const F64x2 k = T - splat(trig::kShifter52);
    const F64x2 u0 = x - k * splat(kPiBy64C1);
    const F64x2 r = u0 - k * splat(kPiBy64C2);
    const F64x2 rl = ((u0 - r) - k * splat(kPiBy64C2)) - k * splat(kPiBy64C3);
    const F64x2 z = r * r;
    const F64x2 Sp = ((splat(trig::kSinA7) * z + splat(trig::kSinA5)) * z + splat(trig::kSinA3)) * z * r;
    const F64x2 Cp = ((splat(trig::kCosB6) * z + splat(trig::kCosB4)) * z + splat(trig::kCosB2)) * z;
    const uint64_t j0 = row0(T), j1 = row1(T);
    const tables::PhaseRow* rows = tables::kFinePhaseTable;
    return {finePhase(rows[j0 & kFineRows], rows[j1 & kFineRows], r, rl, Sp, Cp),
            finePhase(rows[(j0 + kFineQuarterTurn) & kFineRows], rows[(j1 + kFineQuarterTurn) & kFineRows], r,
                      rl, Sp, Cp)};
}

// ---- Element paths ------------------------------------------------------------

// CIS: the kernel's values with no status and no flag for an infinity.
inline void cisElement(float x, Orv32fc* out) {
    if ((bitsOf(x) & kAbs32) == kInfinity32) {
        out->re = out->im = floatFromBits(trig::kDefaultNan32);
        return;
    }
    double s, c;
    trig::sinCosKernel64(double(x), &s, &c);
    out->re = float(c);
    out->im = float(s);
}
inline void cisElement(double x, Orv64fc* out) {
    if ((bitsOf(x) & kAbs64) == kInfinity64) {
        out->re = out->im = doubleFromBits(kDefaultNan64);
        return;
    }
    trig::sinCosKernel64(x, &out->im, &out->re);
}

// ---- Stores -------------------------------------------------------------------

// Two arrays, or one array of {cos, sin} pairs.
inline void storeTwo(float* s, float* c, Pair<F32x4> y) {
    store(s, y.sin);
    store(c, y.cos);
}
inline void storeTwo(double* s, double* c, Pair<F64x2> y) {
    store(s, y.sin);
    store(c, y.cos);
}
inline void storePhasors(Orv32fc* d, Pair<F32x4> y) {
    float* p = &d->re;
    store(p, unpackLo(y.cos, y.sin));
    store(p + 4, unpackHi(y.cos, y.sin));
}
inline void storePhasors(Orv64fc* d, Pair<F64x2> y) {
    double* p = &d->re;
    store(p, unpackLo(y.cos, y.sin));
    store(p + 2, unpackHi(y.cos, y.sin));
}

// ---- Loops --------------------------------------------------------------------

// 32f: blocks of 8 up to the last multiple of 8; Limit is the first
// pattern of |x| that fails.  Write(i, pair) stores 4 lanes from element
// i; Element(i) is the ElementPath; a tail element runs the kernel alone.
template <Pair<F32x4> (*Kernel)(F32x4), class Write, class Element>
inline void loop32(const float* src, int32_t len, Write&& write, Element&& element) {
    constexpr uint32_t kFails = kLimit32 + 1;
    blockRounds<8>(
        len,
        [&](int32_t i) {
            // Screened first: an infinity never meets the arithmetic, whose
            // invalid flag CIS must not raise.
            const F32x4 x0 = load(src + i), x1 = load(src + i + 4);
            if ((magnitudeScreen(x0, kFails) | magnitudeScreen(x1, kFails)) != 0) return false;
            write(i, Kernel(x0));
            write(i + 4, Kernel(x1));
            return true;
        },
        [&](int32_t i) {
            for (int32_t j = i; j < i + 8; ++j) element(j);
        },
        [&](int32_t i) {
            if (!passesMagnitude(bitsOf(src[i]), kFails)) return element(i);
            const Pair<F32x4> y = Kernel(splat(src[i]));
            write(i, y, 1);
        });
}

// 64f: blocks of N = 2 (one vector) or 4 (two), passing below PassBelow
// on the high word of |x|.
template <int N, Pair<F64x2> (*Kernel)(F64x2), uint32_t PassBelow, class Write, class Element>
inline void loop64(const double* src, int32_t len, Write&& write, Element&& element) {
    blockRounds<N>(
        len,
        [&](int32_t i) {
            if constexpr (N == 2) {
                const F64x2 x0 = load(src + i);
                if (magnitudeScreen(x0, PassBelow) != 0) return false;
                write(i, Kernel(x0));
            } else {
                const F64x2 x0 = load(src + i), x1 = load(src + i + 2);
                if (magnitudeScreen(x0, x1, PassBelow) != 0) return false;
                write(i, Kernel(x0));
                write(i + 2, Kernel(x1));
            }
            return true;
        },
        [&](int32_t i) {
            for (int32_t j = i; j < i + N; ++j) element(j);
        },
        [&](int32_t i) {
            if (!passesMagnitude(highWord(src[i]), PassBelow)) return element(i);
            write(i, Kernel(splat(src[i])), 1);
        });
}

// The writers: all lanes of a vector, or its first `lanes`.
struct SinCosWriter32 {
    float *s, *c;
    void operator()(int32_t i, Pair<F32x4> y, int lanes = 4) const {
        if (lanes == 4) return storeTwo(s + i, c + i, y);
        s[i] = lane0(y.sin);
        c[i] = lane0(y.cos);
    }
};
struct SinCosWriter64 {
    double *s, *c;
    void operator()(int32_t i, Pair<F64x2> y, int lanes = 2) const {
        if (lanes == 2) return storeTwo(s + i, c + i, y);
        s[i] = lane0(y.sin);
        c[i] = lane0(y.cos);
    }
};
struct PhasorWriter32 {
    Orv32fc* d;
    void operator()(int32_t i, Pair<F32x4> y, int lanes = 4) const {
        if (lanes == 4) return storePhasors(d + i, y);
        d[i].re = lane0(y.cos);
        d[i].im = lane0(y.sin);
    }
};
struct PhasorWriter64 {
    Orv64fc* d;
    void operator()(int32_t i, Pair<F64x2> y, int lanes = 2) const {
        if (lanes == 2) return storePhasors(d + i, y);
        d[i].re = lane0(y.cos);
        d[i].im = lane0(y.sin);
    }
};

template <Pair<F32x4> (*Kernel)(F32x4)>
inline OrvStatus sinCos32(const float* src, float* dstSin, float* dstCos, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dstSin, dstCos}, len, [&](StatusVar& status) {
        loop32<Kernel>(src, len, SinCosWriter32{dstSin, dstCos},
                       [&](int32_t i) { trig::sinCosElement32(src[i], dstSin + i, dstCos + i, status); });
    });
}

inline void cis32(const float* src, Orv32fc* dst, int32_t len) {
    loop32<sinCos24>(src, len, PhasorWriter32{dst}, [&](int32_t i) { cisElement(src[i], dst + i); });
}

inline void cis64(const double* src, Orv64fc* dst, int32_t len) {
    loop64<4, sinCos53, kLimit53>(src, len, PhasorWriter64{dst}, [&](int32_t i) { cisElement(src[i], dst + i); });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsSinCos_32f_A11(const Orv32f* src, Orv32f* dstSin, Orv32f* dstCos, int32_t len) {
    return sinCos32<sinCos11>(src, dstSin, dstCos, len);
}

ORV_EXPORT OrvStatus orvsSinCos_32f_A21(const Orv32f* src, Orv32f* dstSin, Orv32f* dstCos, int32_t len) {
    return sinCos32<sinCos21>(src, dstSin, dstCos, len);
}

ORV_EXPORT OrvStatus orvsSinCos_32f_A24(const Orv32f* src, Orv32f* dstSin, Orv32f* dstCos, int32_t len) {
    return sinCos32<sinCos24>(src, dstSin, dstCos, len);
}

ORV_EXPORT OrvStatus orvsSinCos_64f_A26(const Orv64f* src, Orv64f* dstSin, Orv64f* dstCos, int32_t len) {
    return lengthFirstFrame<kGuardX87Double>({src, dstSin, dstCos}, len, [&](StatusVar& status) {
        loop64<4, sinCos26, kLimit26 + 1>(src, len, SinCosWriter64{dstSin, dstCos}, [&](int32_t i) {
            trig::sinCosElement64(src[i], dstSin + i, dstCos + i, status);
        });
    });
}

ORV_EXPORT OrvStatus orvsSinCos_64f_A50(const Orv64f* src, Orv64f* dstSin, Orv64f* dstCos, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dstSin, dstCos}, len, [&](StatusVar& status) {
        loop64<2, sinCos50, kLimit50 + 1>(src, len, SinCosWriter64{dstSin, dstCos}, [&](int32_t i) {
            trig::sinCosElement64(src[i], dstSin + i, dstCos + i, status);
        });
    });
}

ORV_EXPORT OrvStatus orvsSinCos_64f_A53(const Orv64f* src, Orv64f* dstSin, Orv64f* dstCos, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dstSin, dstCos}, len, [&](StatusVar& status) {
        loop64<4, sinCos53, kLimit53>(src, len, SinCosWriter64{dstSin, dstCos}, [&](int32_t i) {
            trig::sinCosElement64(src[i], dstSin + i, dstCos + i, status);
        });
    });
}

// CIS: one routine for the three tiers of each type.
ORV_EXPORT OrvStatus orvsCIS_32fc_A24(const Orv32f* src, Orv32fc* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) { cis32(src, dst, len); });
}
ORV_EXPORT OrvStatus orvsCIS_32fc_A11(const Orv32f* src, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsCIS_32fc_A24")));
ORV_EXPORT OrvStatus orvsCIS_32fc_A21(const Orv32f* src, Orv32fc* dst, int32_t len)
    __attribute__((alias("orvsCIS_32fc_A24")));

ORV_EXPORT OrvStatus orvsCIS_64fc_A53(const Orv64f* src, Orv64fc* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) { cis64(src, dst, len); });
}
ORV_EXPORT OrvStatus orvsCIS_64fc_A26(const Orv64f* src, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsCIS_64fc_A53")));
ORV_EXPORT OrvStatus orvsCIS_64fc_A50(const Orv64f* src, Orv64fc* dst, int32_t len)
    __attribute__((alias("orvsCIS_64fc_A53")));

#else
#include "frame/record.h"

namespace orv {
namespace {
constexpr const char* kRejectedBlock =
    "a block with an element beyond the screen, an infinity or a NaN goes whole to the double "
    "kernel, whose result may differ from the block's";
constexpr double kOrdinary32 = double(floatFromBits(kLimit32));
constexpr double kOrdinary53 = doubleFromBits(uint64_t(kLimit53) << 32);  // 90112
constexpr double kOrdinary50 = doubleFromBits(uint64_t(kLimit50) << 32);  // 128000
constexpr const char* kNearMultipleOfHalfPi26 =
    "pi/32 rounded to a double as the first part of the reduction makes k C1 inexact: an "
    "absolute error up to 2^-53 |x|, below 26 correct bits where x lies within about 2^-26 |x| "
    "of a multiple of pi/2 and the sine or the cosine is as small";
}  // namespace

// Measured against MPFR on the harness's samples and on 10^5 more arguments
// of each member, uniform and log-uniform over the block's range (sampled,
// not exhaustive).  Position: the largest difference measured between an
// element in a passing block and the same element in a rejected one, over
// 4*10^5 arguments and the conformance suite's (which gave A26's, where a
// result next to zero can change sign).
ORV_RECORDS(
    {.member = "orvsSinCos_32f_A11",
     .maxUlp = 231.45,
     .worst = {7618.00342f},
     .ranges = {symmetric(kOrdinary32), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 232},
     .peerVectors = "sincos"},
    {.member = "orvsSinCos_32f_A21",
     .maxUlp = 2.259,
     .worst = {-8515.03613f},
     .ranges = {symmetric(kOrdinary32), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 3},
     .peerVectors = "sincos"},
    {.member = "orvsSinCos_32f_A24",
     .maxUlp = 0.56063,
     .worst = {9175.27148f},
     .ranges = {symmetric(kOrdinary32), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 1},
     .peerVectors = "sincos"},
    {.member = "orvsSinCos_64f_A26",
     .maxUlp = 3.4603e7,
     .worst = {79318.930515382963},
     .ranges = {symmetric(kOrdinary53), Interval{1e6, 1e20}, kFinite64},
     .exclusions = {excludePoint({55131.809481130156}, kNearMultipleOfHalfPi26),
                    excludePoint({-86147.182898129016}, kNearMultipleOfHalfPi26)},
     .position = {kRejectedBlock, 1.34e10},
     .peerVectors = "sincos"},
    {.member = "orvsSinCos_64f_A50",
     .maxUlp = 2.1105,
     .worst = {126880.82115737633},
     .ranges = {symmetric(kOrdinary50), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 2},
     .peerVectors = "sincos"},
    {.member = "orvsSinCos_64f_A53",
     .maxUlp = 0.5249,
     .worst = {34.583302269202498},
     .ranges = {symmetric(kOrdinary53), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1},
     .peerVectors = "sincos"},
    {.member = "orvsCIS_32fc_A11",
     .maxUlp = 0.5624,
     .worst = {-0.251528949f},
     .ranges = {symmetric(kOrdinary32), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 1},
     .sameAs = "orvsCIS_32fc_A24"},
    {.member = "orvsCIS_32fc_A21",
     .maxUlp = 0.5624,
     .worst = {-0.251528949f},
     .ranges = {symmetric(kOrdinary32), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 1},
     .sameAs = "orvsCIS_32fc_A24"},
    {.member = "orvsCIS_32fc_A24",
     .maxUlp = 0.5624,
     .worst = {-0.251528949f},
     .ranges = {symmetric(kOrdinary32), Interval{1e6, 1e20}, kFinite32},
     .position = {kRejectedBlock, 1}},
    {.member = "orvsCIS_64fc_A26",
     .maxUlp = 0.5283,
     .worst = {-0.024461064860557973},
     .ranges = {symmetric(kOrdinary53), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1},
     .sameAs = "orvsCIS_64fc_A53"},
    {.member = "orvsCIS_64fc_A50",
     .maxUlp = 0.5283,
     .worst = {-0.024461064860557973},
     .ranges = {symmetric(kOrdinary53), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1},
     .sameAs = "orvsCIS_64fc_A53"},
    {.member = "orvsCIS_64fc_A53",
     .maxUlp = 0.5283,
     .worst = {-0.024461064860557973},
     .ranges = {symmetric(kOrdinary53), Interval{1e6, 1e20}, kFinite64},
     .position = {kRejectedBlock, 1}})
}  // namespace orv
#endif
