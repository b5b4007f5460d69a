// Erfc, members on doubles: dst[i] = erfc(src[i]) for orvsErfc_64f_A26,
// orvsErfc_64f_A50 and orvsErfc_64f_A53.
//
// Method.  With a = |x|, erfc(a) = exp(-a^2) G(a), G(a) = exp(a^2) erfc(a)
// a polynomial of degree 12 (A26, A50) or 13 (A53) in t = a - centre, the
// centre being the lower edge of the band (28 rows: row 0 below 0.25, then
// 4 bands per binade; the band's row is picked from the high word with no
// branch).  For x < 0 the result is 2 - erfc(|x|): the power of two S
// carries the sign of x, and C = 2 where the sign bit of x is set, 0
// elsewhere (so -0 gives 2 - 1 = 1).
//
// exp(-a^2): a is split into 26-bit halves ah + al, so that -ah^2 is exact
// and -a^2 = h + e with h cut to 26 bits and e the rest (to about 2^-100
// relative).  Then k = round(h 128/ln 2), r = ((h - n L1) - n L2) + e with
// ln2/128 = L1 + L2 (n L1 exact), and exp(-a^2) = S T[j] (1 + P(r)),
// S = 2^(k >> 7), T[j] = 2^(j/128), P(r) = e^r - 1 to degree 5.  S is
// built in the exponent field 154 binades up and scaled back by one
// product, so that it may be subnormal (erfc underflows from 26.54 on).
//   A26, A50: one computation on one table: (G E) S + C, E = T + P T.
//   A53: T as a 27-bit head T0 and a tail T1, G's last two Horner steps
//        in double-double with d0 and d1 in head and tail, and the product
//        G (T0 + El) formed as an exact head gh T0 plus a tail.  The result
//        is the compensated sum C + W S, rounded once; where it is
//        subnormal (x from 26.543258 on), (W tail + W head) S instead, so
//        that it too is rounded once.
//
// Blocks with every |x| below the screen limit (high word at or below
// 0x403B39DC, |x| < 27.23, in A26/A50; below 0x403A8B12, |x| < 26.54, in
// A53) take the arithmetic alone; others go to the twin, which finishes
// each element with the special selections: +0 from the zero point
// 27.226017 up to +inf, 2.0 from -27.226017 down to -inf, and a NaN
// unchanged (A26, A50) or as x * x (A53); A53 also replaces |x| < 2^-55 by
// +0 (result 1.0) and |x| beyond the zero point by +0 before its
// arithmetic.  The twin and the tail write orvStatusUnderflow where the
// result is below the smallest normal (A26, A50: x above 26.543258) or,
// in A53, is +0 (x above 27.226017).
//
// Tables: kErfcRows50 (A26 and A50), kErfcRows53, kErfcCentres and
// kErfcExp2Split of src/tables/erfc_tables.h, fitted and computed by
// src/tables/gen_erfc_tables.cpp; 2^(j/128) whole from kExp2Fraction64 of
// src/tables/exp2_tables.h.  The exponential and the double-double steps
// are the ones CdfNorm shares (special/gaussian.h).
#include <cstddef>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "special/gaussian.h"
#include "tables/erfc_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// Screens on the sign-free high word.
constexpr uint32_t kScreen50 = 0x403B39DC;   // a block goes to the twin above it
constexpr uint32_t kScreen53 = 0x403A8B12;   // ... at or above it
// The zero point: erfc is below half the smallest subnormal from here on.
constexpr uint64_t kZeroPoint = 0x403B39DC41E48BFD;  // 27.226017...
constexpr uint32_t kZeroPointHigh = 0x403B39DC;
constexpr uint64_t kLastNonZero53 = 0x403B39DC41E48BFC;
// Where the result falls below the smallest normal double.
constexpr uint64_t kSubnormal50 = 0x403A8B12FC6E4891;  // 26.543258...
constexpr uint32_t kSubnormalHigh53 = 0x403A8B12;
constexpr double kSubnormalFrom = doubleFromBits(uint64_t(kSubnormalHigh53) << 32);
// A53's twin replaces |x| < 2^-55 (erfc is 1.0 there) and |x| with a high
// word above the zero point's by +0, and gives +0 from the high word
// 0x403B39DD up.
constexpr double kTiny53 = doubleFromBits(0x3C80000000000000);
constexpr double kBeyondZeroHigh = doubleFromBits(uint64_t(kZeroPointHigh) << 32 | 0xFFFFFFFF);
constexpr double kZeroFrom53 = doubleFromBits(uint64_t(kZeroPointHigh + 1) << 32);
constexpr uint64_t kInfinity64 = 0x7FF0000000000000;

// G's rows: mask the high word, subtract the base, a negative difference
// or one above the top to 0, shift to the row's first slot (row * 16).
constexpr uint32_t kBandMask = 0x7FFC0000, kBandBase = 0x3FCC0000, kBandTop = 0x006C0000;
constexpr int kBandShift = 14;
constexpr int kRowWidth = 16;
static_assert((kBandTop >> kBandShift) / kRowWidth == 27, "the top is the last row");
// A53's row: d0 tail, d0 head, d1 tail, d1 head, d2 .. d13.
constexpr int kD0Tail = 0, kD0Head = 1, kD1Tail = 2, kD1Head = 3, kD2 = 4;

constexpr double kTwo = 2.0;

#ifndef ORVVM_RECORDS

// ---- Kernels ----------------------------------------------------------------

inline F64x2 absolute(F64x2 x) { return andNot(x, splatBits64(kSign64)); }
inline F64x2 slot(const double* a, const double* b, int k) { return setLanes(a[k], b[k]); }

inline void rowIndices(F64x2 x, uint32_t (&index)[2]) {
    I32x4 d = sub32(highWords(x) & splat32(kBandMask), splat32(kBandBase));
    d = andNot(d, sar32<31>(d));
    d = andNot(d, cmpGt32(d, splat32(kBandTop)));
    alignas(16) uint32_t lanes[4];
    storeI(lanes, shr32<kBandShift>(d));
    index[0] = lanes[0];
    index[1] = lanes[1];
}

// The exponential of -x^2, in parts: S with the sign of x, the table index
// j, and r's polynomial P = e^r - 1.
inline gauss::ExpParts negExpSquare(F64x2 x) {
    gauss::HeadTail m = gauss::negSquare(x);
    return gauss::expParts(m.h, m.e, x & splatBits64(kSign64));
}

// C: 2.0 where the sign bit of x is set, 0 elsewhere, as 1 - (1 with the
// sign of x), which is exact.
inline F64x2 reflection(F64x2 x) {
    return splat(1.0) - (splat(1.0) | (x & splatBits64(kSign64)));
}

// A26, A50: (G E) S + C.
inline F64x2 erfc50(F64x2 x) {
    uint32_t row[2];
    rowIndices(x, row);
    const double* ra = tables::kErfcRows50[0] + row[0];
    const double* rb = tables::kErfcRows50[0] + row[1];
    F64x2 t = absolute(x) - setLanes(tables::kErfcCentres[row[0] / kRowWidth], tables::kErfcCentres[row[1] / kRowWidth]);
    F64x2 g = slot(ra, rb, 12);
    for (int k = 11; k >= 0; --k) g = g * t + slot(ra, rb, k);
    gauss::ExpParts ex = negExpSquare(x);
    F64x2 table = setLanes(gauss::kPow2.v[ex.j[0]], gauss::kPow2.v[ex.j[1]]);
    F64x2 e = ex.p * table + table;
    return (g * e) * ex.s + reflection(x);
}

// A53.
inline F64x2 erfc53(F64x2 x) {
    uint32_t row[2];
    rowIndices(x, row);
    const double* ra = tables::kErfcRows53[0] + row[0];
    const double* rb = tables::kErfcRows53[0] + row[1];
    F64x2 t = absolute(x) - setLanes(tables::kErfcCentres[row[0] / kRowWidth], tables::kErfcCentres[row[1] / kRowWidth]);
    // G = gh + gl: Horner of d13 .. d2, then d1 and d0 in double-double.
    F64x2 q = slot(ra, rb, kD2 + 11);
    for (int k = 10; k >= 0; --k) q = q * t + slot(ra, rb, kD2 + k);
    q = q * t;
    gauss::HeadTail g = gauss::lastTwoSteps(q, t, slot(ra, rb, kD1Head), slot(ra, rb, kD1Tail),
                                            slot(ra, rb, kD0Head), slot(ra, rb, kD0Tail));
    F64x2 gh = g.h, gl = g.e;
    // exp(-x^2) = S (T0 + El).
    gauss::ExpParts ex = negExpSquare(x);
    F64x2 t0 = setLanes(tables::kErfcExp2Split[ex.j[0]][0], tables::kErfcExp2Split[ex.j[1]][0]);
    F64x2 t1 = setLanes(tables::kErfcExp2Split[ex.j[0]][1], tables::kErfcExp2Split[ex.j[1]][1]);
    F64x2 el = ex.p * (t0 + t1) + t1;
    F64x2 wHead = gh * t0;  // exact: 26 bits times 27 bits
    F64x2 wTail = (gl * el + gh * el) + gl * t0;
    F64x2 c = reflection(x);
    F64x2 b = wHead * ex.s;
    F64x2 v = c + b;
    F64x2 compensated = (((c - v) + b) + ex.s * wTail) + v;
    F64x2 subnormal = (wTail + wHead) * ex.s;
    // Positive x from 26.543258 on: a subnormal result, rounded once.
    return select(cmpLe(splat(kSubnormalFrom), x), subnormal, compensated);
}

// ---- Twins ------------------------------------------------------------------

// A26, A50: the arithmetic on the true x, then the selections, NaN last.
inline F64x2 twin50(F64x2 x) {
    F64x2 y = erfc50(x) & cmpLt(absolute(x), splat(doubleFromBits(kZeroPoint)));
    y = select(cmpLe(x, splat(-doubleFromBits(kZeroPoint))), splat(kTwo), y);
    return select(cmpUnord(x, x), x, y);
}
// A53: x made safe first (beyond the zero point, or below 2^-55, to +0).
inline F64x2 twin53(F64x2 x) {
    F64x2 magnitude = absolute(x);
    F64x2 replace = cmpLt(splat(kBeyondZeroHigh), magnitude) | cmpLt(magnitude, splat(kTiny53));
    F64x2 y = erfc53(andNot(x, replace));
    y = andNot(y, cmpLe(splat(kZeroFrom53), x));
    y = select(cmpLe(x, splat(-doubleFromBits(kZeroPoint))), splat(kTwo), y);
    return select(cmpUnord(x, x), x * x, y);
}

// ---- Warnings ---------------------------------------------------------------

inline bool underflows50(double x) { return bitsOf(x) > kSubnormal50 && bitsOf(x) < kInfinity64; }
inline bool underflows53(double x) { return bitsOf(x) > kLastNonZero53 && bitsOf(x) < kInfinity64; }

// ---- Blocks -----------------------------------------------------------------

struct Tier50 {
    static constexpr uint32_t kScreenLimit = kScreen50 + 1;  // above kScreen50 fails
    static F64x2 kernel(F64x2 x) { return erfc50(x); }
    static F64x2 twin(F64x2 x) { return twin50(x); }
    static bool underflows(double x) { return underflows50(x); }
};
struct Tier53 {
    static constexpr uint32_t kScreenLimit = kScreen53;  // at or above fails
    static F64x2 kernel(F64x2 x) { return erfc53(x); }
    static F64x2 twin(F64x2 x) { return twin53(x); }
    static bool underflows(double x) { return underflows53(x); }
};

template <class Tier>
inline bool erfcBlock(const double* src, double* dst) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    if (magnitudeScreen(x0, x1, Tier::kScreenLimit) != 0) return false;
    store(dst, Tier::kernel(x0));
    store(dst + 2, Tier::kernel(x1));
    return true;
}
// The twin's statuses come from the inputs kept in registers, since an
// in-place call has overwritten them by then.
template <class Tier>
inline void erfcTwinBlock(const double* src, double* dst, StatusVar& status) {
    F64x2 x0 = load(src), x1 = load(src + 2);
    store(dst, Tier::twin(x0));
    store(dst + 2, Tier::twin(x1));
    for (double x : {lane0(x0), lane1(x0), lane0(x1), lane1(x1)})
        if (Tier::underflows(x)) status.write(orvStatusUnderflow);
}
template <class Tier>
inline double erfcElement(double x, StatusVar& status) {
    double y = lane0(Tier::twin(setLanes(x, 0.0)));
    if (Tier::underflows(x)) status.write(orvStatusUnderflow);
    return y;
}

template <class Tier>
inline void erfcLoop(const double* src, double* dst, int32_t len, StatusVar& status) {
    blockRounds<4>(
        len, [&](int32_t i) { return erfcBlock<Tier>(src + i, dst + i); },
        [&](int32_t i) { erfcTwinBlock<Tier>(src + i, dst + i, status); },
        [&](int32_t i) { dst[i] = erfcElement<Tier>(src[i], status); });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsErfc_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { erfcLoop<Tier50>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsErfc_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { erfcLoop<Tier50>(src, dst, len, status); });
}

ORV_EXPORT OrvStatus orvsErfc_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len,
                                             [&](StatusVar& status) { erfcLoop<Tier53>(src, dst, len, status); });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;
// A block that passes the screen writes no warning, also for an element
// between the underflow threshold and the screen limit; only the twin of a
// rejected block and the tail write orvStatusUnderflow.  The value is the
// same in every path.
constexpr const char* kQuietBlocks =
    "a passing block writes no underflow warning for an element below the screen limit; the twin and the tail do";

// The far positive tail: subnormal results up to the zero point and a
// little beyond.
Interval tailRange() { return {doubleFromBits(kSubnormal50) - 0.5, 28.0}; }
}  // namespace

// The largest errors found on the harness's samples and on 10^5 to 2.6 10^5
// random inputs over the ordinary range (the exhaustive run is still to do).
ORV_RECORDS(
    {.member = "orvsErfc_64f_A26",
     .maxUlp = 3.39,
     .worst = {18.334742401198096},
     .ranges = {symmetric(doubleFromBits(kZeroPoint)), tailRange(), kFinite64},
     .quietBlocks = kQuietBlocks},
    {.member = "orvsErfc_64f_A50",
     .maxUlp = 3.39,
     .worst = {18.334742401198096},
     .ranges = {symmetric(doubleFromBits(kZeroPoint)), tailRange(), kFinite64},
     .sameAs = "orvsErfc_64f_A26",
     .quietBlocks = kQuietBlocks},
    // The largest error is at the top of the subnormal results, where the
    // specified (W tail + W head) S rounds twice, to 53 bits and then to
    // the subnormal's precision; about 0.55 ulp on normal results.
    {.member = "orvsErfc_64f_A53",
     .maxUlp = 0.75,
     .worst = {26.551100817844805},
     .ranges = {symmetric(kSubnormalFrom), tailRange(), kFinite64}})
}  // namespace orv
#endif
