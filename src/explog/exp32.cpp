// Exp, real members on floats: dst[i] = e^src[i] for orvsExp_32f_A11,
// orvsExp_32f_A21 and orvsExp_32f_A24.
//
// Method.  A21 and A24 write x = k ln2/128 + r, k = round(x 128/ln2) found
// by adding the shifter 1.375*2^23 (whose low seven fraction bits are 0, so
// the sum's low seven bits are j = k mod 128 and the bits above give
// n = k div 128), with ln2/128 split in two so that kf*hi is exact and
// |r| <= ln2/256 + tiny.  Then e^x = 2^n * 2^(j/128) * e^r, all in float:
//   A21: e^r ~ (0.5 r + 1) r + 1; 2^n * 2^(j/128) comes whole from one OR
//        of the exponent field with the rounded table fraction.
//   A24: 2^(j/128) = Th (1 + Tt) with Th cut to a float and Tt a relative
//        tail, and e^x = 2^n (Th + Th q) with q = 0.5 r^2 + (Tt + r): the
//        small terms meet first and Th is added last, so the last addition
//        is the only large rounding.
// A11 has no table: x = n ln2 + r with n = round(x log2 e), |r| <= ln2/2,
// e^r by a cubic fitted for relative error, 2^n built in the exponent.
//
// Tiers, measured over all 2^32 inputs against the double exponential
// (the maxima are in the records):
//   A11: the cubic sets the error; the subnormal results of the wide path
//        are rounded once from double.
//   A21: the table and the quadratic; subnormal results as A11's.
//   A24: near half an ulp on normal results, but close to one ulp from
//        -103.9720 to -103.2789, where A24 returns +0 although e^x lies
//        between 2^-150 and the smallest subnormal 2^-149.
//
// Outside the block screen each element takes ElementPath, which repeats
// the block arithmetic for ordinary values, so a result does not depend on
// the element's position:
//   NaN: A11 returns it unchanged (also a signalling one); A21, A24 x + x.
//   +inf -> +inf, -inf -> +0, with no status.
//   x >= 88.72283935546875 (finite): +inf, orvStatusOverflow.  A21 and A24
//     square 2^127 to make it, so the overflow flag rises.
//   e^x below FLT_MIN (x <= -87.3365478515625): orvStatusUnderflow; A21
//     and A24 compute such results in double and round once to float, and
//     return +0 (as 2^-126 squared, raising underflow) at and below
//     -103.97208404541016 (A21, ln 2^-150) or -103.27893829345703 (A24).
//   A11's ElementPath evaluates a double "wide" path for every element of a
//   rejected block; elements outside the float path's range keep the wide
//   result, rounded once to float, so overflow and subnormals need no case.
//
// Tables: kExp2Fraction32 (A21) and kExp2HeadTail32 (A24) of
// src/tables/exp2_tables.h, generated with MPFR by gen_exp2_tables.cpp from
// the rule 2^(j/128).
#include <cstddef>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/exp2_tables.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// Screens: the float kernels keep 2^n a normal exponent field below these.
constexpr uint32_t kScreen11 = 0x42AE8000;  // 87.25
constexpr uint32_t kScreen21 = 0x42AEAC50;  // 87.3365478515625, just below -ln FLT_MIN

// Limits of ElementPath, on raw bits.
constexpr uint32_t kOverflowLimit = 0x42B17218;  // 88.72283935546875, first float above ln FLT_MAX
constexpr uint32_t kUnderflowLimit = 0xC2AEAC50;  // -87.3365478515625: e^x < FLT_MIN from here down
constexpr uint32_t kZeroLimit21 = 0xC2CFF1B5;  // -103.97208404541016, first float below ln 2^-150
constexpr uint32_t kZeroLimit24 = 0xC2CE8ED1;  // -103.27893829345703, first float below ln 2^-149
constexpr uint32_t kNegInf32 = 0xFF800000;
// An exponent field above this one is n = 128, which the field cannot hold.
constexpr uint32_t kTopField32 = 0x7F000000;

// Products made for their value and their flag.
constexpr float kTwoTo127 = floatFromBits(0x7F000000);  // squared overflows
constexpr float kTiny32 = floatFromBits(0x00800000);  // 2^-126; squared underflows to +0
constexpr float kTwo32 = 2.0f;

// A21, A24: k = round(x 128/ln2) by the shifter, ln2/128 in two parts.
constexpr float kInvLn2x128 = floatFromBits(0x4338AA3B);  // 184.6649627685547 = 128/ln 2
constexpr float kShifter128 = floatFromBits(0x4B300000);  // 11534336 = 1.375*2^23
// hi has 9 significant bits, so kf*hi is exact for |k| < 2^15.
constexpr float kLn2by128Hi = floatFromBits(0x3BB18000);  // 0.0054168701171875
constexpr float kLn2by128Lo = floatFromBits(0xB5DE8083);  // -1.6577690757912933e-06
constexpr uint32_t kIndexMask128 = 127;
constexpr uint32_t kBias32 = 127;

// A11 float path: n = round(x log2 e) by the shifter 1.5*2^23.
constexpr float kLog2e32 = floatFromBits(0x3FB8AA3B);     // 1.4426950216293335
constexpr float kShifter11 = floatFromBits(0x4B400000);   // 12582912 = 1.5*2^23
constexpr float kNegShifter11 = floatFromBits(0xCB400000);  // -12582912, added back to get nf
constexpr float kLn2_32 = floatFromBits(0x3F317218);      // 0.6931471824645996
// ---- begin fit_exp32_a11: printed by fit_exp32_a11.sollya; edit the script, not here
// e^r ~ ((d3 r + d2) r + d1) r + d0 on |r| <= ln2/2, fitted for relative
// error: 1.79e-4 = 2^-12.46.
constexpr float kD0 = floatFromBits(0x3F800000);  // 1.0
constexpr float kD1 = floatFromBits(0x3F80017A);  // 1.0000450611114502
constexpr float kD2 = floatFromBits(0x3F00F657);  // 0.5037588477134705
constexpr float kD3 = floatFromBits(0x3E2AAA8D);  // 0.16666622459888458
// ---- end fit_exp32_a11

// A11 wide path, in double: n = round(x log2 e), r = x - n ln2 in one term
// (|n| <= 231 here, so the single product costs at most about 2^-45), and
// e^r by a degree-6 polynomial.
constexpr double kLog2e64 = doubleFromBits(0x3FF71547652B82FE);    // 1.4426950408889634
constexpr double kShifter52 = doubleFromBits(0x4338000000000000);  // 6755399441055744 = 1.5*2^52
constexpr double kNegShifter52 = doubleFromBits(0xC338000000000000);
constexpr double kLn2_64 = doubleFromBits(0x3FE62E42FEFA39EF);  // 0.6931471805599453
// ---- begin fit_exp32_wide: printed by fit_exp32_wide.sollya; edit the script, not here
// e^r ~ e0 + e1 r + ... + e6 r^6 on |r| <= ln2/2, relative error
// 1.87e-9 = 2^-29, far inside a float ulp.
constexpr double kE0 = doubleFromBits(0x3FF00000002662E5);  // 1.0000000005585943
constexpr double kE1 = doubleFromBits(0x3FF0000009CEF2EE);  // 1.0000000365391162
constexpr double kE2 = doubleFromBits(0x3FDFFFFFAA729C2F);  // 0.49999992032320767
constexpr double kE3 = doubleFromBits(0x3FC5554092D1E188);  // 0.16666419190347548
constexpr double kE4 = doubleFromBits(0x3FA55589D9BC30D4);  // 0.04166823180102744
constexpr double kE5 = doubleFromBits(0x3F8126DBD49CFE0B);  // 0.008374898363057623
constexpr double kE6 = doubleFromBits(0x3F56AB8CDD691A9D);  // 0.0013836742051737468
// ---- end fit_exp32_wide
constexpr uint64_t kBias64 = 0x3FF;
// The wide path's own saturation, as signed integers on the bits: at or
// above 160.0 gives +inf, below -160.0 gives +0; in between the one
// rounding to float decides.
constexpr uint32_t kWideInfBits = 0x43200000;   // 160.0
constexpr uint32_t kWideZeroBits = 0xC3200000;  // -160.0

// Subnormal float results (A21, A24): e^x = 2^n 2^f with n = round(x log2 e)
// and |f| <= 0.5, 2^f = A + B split into odd-ish and even chains that run
// side by side.  The double result is exact times 2^n and rounds once into
// the float subnormal range.
// ---- begin fit_exp32_subnormal: printed by fit_exp32_subnormal.sollya; edit the script, not here
// 2^f ~ g0 + g1 f + ... + g6 f^6 on |f| <= 1/2, relative error 1.86e-9 = 2^-29.01,
// far below the rounding into the float subnormal range.
constexpr double kG0 = doubleFromBits(0x3FF00000002614FF);  // 1.0000000005541663
constexpr double kG1 = doubleFromBits(0x3FE62E430C7E922C);  // 0.6931472057372665
constexpr double kG2 = doubleFromBits(0x3FCEBFBDADCB0CA8);  // 0.24022646890634758
constexpr double kG3 = doubleFromBits(0x3FAC6AED4B951D00);  // 0.05550328776967639
constexpr double kG4 = doubleFromBits(0x3F83B2DBBC0F45AE);  // 0.009618488957047724
constexpr double kG5 = doubleFromBits(0x3F55F456A8A729EC);  // 0.0013399931218481776
constexpr double kG6 = doubleFromBits(0x3F241D33371366F6);  // 0.00015345812020122585
// ---- end fit_exp32_subnormal

#ifndef ORVVM_RECORDS
// ---- Screens ------------------------------------------------------------

// A24 tests two elements with one 64-bit subtraction: after masking the
// signs, the pair minus 0x42AEAC4F42AEAC50 has its low lane's sign set iff
// the low element is below the limit, and that borrow raises the high
// lane's limit to 0x42AEAC50 as well.  The block passes when all 16 sign
// bits of the ANDed differences are set.
constexpr uint64_t kPairAbs = 0x7FFFFFFF7FFFFFFF;
constexpr uint64_t kPairLimit24 = 0x42AEAC4F42AEAC50;
constexpr uint64_t kPairSigns = 0x8000000080000000;

inline bool passes24(const F32x4 (&x)[4]) {
    I32x4 all = sub64(bitsOf(x[0]) & splat64(kPairAbs), splat64(kPairLimit24));
#pragma GCC unroll 3
    for (int g = 1; g < 4; ++g) all = all & sub64(bitsOf(x[g]) & splat64(kPairAbs), splat64(kPairLimit24));
    return signMask32(cmpEq32(all & splat64(kPairSigns), splat64(kPairSigns))) == 0xF;
}

// ---- Kernels --------------------------------------------------------------

// The shared reduction of A21 and A24: r, and the shifted sum whose bits
// hold j and n.  Both parts of ln2/128 are subtracted in turn, the exact
// product first.
struct Reduced128 {
    F32x4 r;
    I32x4 sumBits;
};
inline Reduced128 reduce128(F32x4 x) {
    F32x4 sum = x * splat(kInvLn2x128) + splat(kShifter128);
    F32x4 kf = sum - splat(kShifter128);
    F32x4 r = (x - kf * splat(kLn2by128Hi)) - kf * splat(kLn2by128Lo);
    return {r, bitsOf(sum)};
}
// (sum >> 7) + 127 shifted into the exponent field; the shifter's own bits
// fall off the top.
inline I32x4 exponentField128(I32x4 sumBits) {
    return shl32<23>(add32(shr32<7>(sumBits), splat32(kBias32)));
}
// j for each lane, in two ways that suit the two kernels (measured): A21
// reads the four indices back from a stored vector, which keeps its short
// chain off the vector-to-integer moves; A24 takes them out two at a time
// as 64-bit integers, which its longer block schedules better.
inline void tableIndices(I32x4 sumBits, uint32_t (&j)[4]) {
    alignas(16) uint32_t lanes[4];
    storeI(lanes, sumBits & splat32(kIndexMask128));
    for (int l = 0; l < 4; ++l) j[l] = lanes[l];
}
inline void tableIndicesByPairs(I32x4 sumBits, uint32_t (&j)[4]) {
    I32x4 masked = sumBits & splat32(kIndexMask128);
    uint64_t pair01 = lane0of64(masked), pair23 = lane1of64(masked);
    j[0] = uint32_t(pair01);
    j[1] = uint32_t(pair01 >> 32);
    j[2] = uint32_t(pair23);
    j[3] = uint32_t(pair23 >> 32);
}

// A21: q ~ e^r (error about r^3/6 < 2^-28), and the table fraction that the
// exponent field completes to 2^n 2^(j/128).
struct Parts21 {
    F32x4 q;
    I32x4 field;
    I32x4 fraction;
};
inline Parts21 kernel21(F32x4 x) {
    Reduced128 red = reduce128(x);
    F32x4 q = (splat(0.5f) * red.r + splat(1.0f)) * red.r + splat(1.0f);
    uint32_t j[4];
    tableIndices(red.sumBits, j);
    using tables::kExp2Fraction32;
    I32x4 fraction = setLanes32(kExp2Fraction32[j[0]], kExp2Fraction32[j[1]],
                                kExp2Fraction32[j[2]], kExp2Fraction32[j[3]]);
    return {q, exponentField128(red.sumBits), fraction};
}
inline F32x4 finish21(const Parts21& p) { return p.q * asF32x4(p.field | p.fraction); }

// A24: u = Th + Th q ~ 2^(j/128) e^r, the exponent still apart.  Dropped
// terms: r^3/6 and Tt r, both below 2^-27 relative.
// A table row is read as one 64-bit (head, tail) pair.
static_assert(sizeof(tables::Exp2HeadTail32) == 8 && offsetof(tables::Exp2HeadTail32, tail) == 4);
struct Parts24 {
    F32x4 u;
    I32x4 field;
};
inline Parts24 kernel24(F32x4 x) {
    Reduced128 red = reduce128(x);
    uint32_t j[4];
    tableIndicesByPairs(red.sumBits, j);
    // Each row (head, tail) in one load; two interleaves and two half moves
    // sort the four rows into the heads and the tails.
    using tables::kExp2HeadTail32;
    F32x4 rows01 = unpackLo(loadPair(&kExp2HeadTail32[j[0]].head), loadPair(&kExp2HeadTail32[j[1]].head));
    F32x4 rows23 = unpackLo(loadPair(&kExp2HeadTail32[j[2]].head), loadPair(&kExp2HeadTail32[j[3]].head));
    F32x4 th = lowHalves(rows01, rows23), tt = highHalves(rows01, rows23);
    F32x4 q = splat(0.5f) * (red.r * red.r) + (tt + red.r);
    return {q * th + th, exponentField128(red.sumBits)};
}
inline F32x4 finish24(const Parts24& p) { return p.u * asF32x4(p.field); }

// A11 float path.
inline F32x4 exp11Float(F32x4 x) {
    F32x4 sum = x * splat(kLog2e32) + splat(kShifter11);
    I32x4 scale = shl32<23>(add32(bitsOf(sum), splat32(kBias32)));
    F32x4 nf = sum + splat(kNegShifter11);
    F32x4 r = x - nf * splat(kLn2_32);
    F32x4 q = ((splat(kD3) * r + splat(kD2)) * r + splat(kD1)) * r + splat(kD0);
    return q * asF32x4(scale);
}

// A11 wide path on two widened elements: w 2^n in double, exact for the
// |x| < 160 that it serves.
inline F64x2 exp11WideHalf(F64x2 xd) {
    F64x2 sum = xd * splat(kLog2e64) + splat(kShifter52);
    I32x4 scale = shl64<52>(add64(bitsOf(sum), splat64(kBias64)));
    F64x2 nf = sum + splat(kNegShifter52);
    F64x2 r = xd - nf * splat(kLn2_64);
    F64x2 w = ((((((splat(kE6) * r + splat(kE5)) * r + splat(kE4)) * r + splat(kE3)) * r +
                 splat(kE2)) * r + splat(kE1)) * r + splat(kE0));
    return w * asF64x2(scale);
}

// ---- ElementPath --------------------------------------------------------

// A11's ElementPath, four elements at a time: both paths for every lane;
// the float path stands where it is valid, the wide result elsewhere, then
// the saturations and NaN (its own bits), the last of them winning.
inline F32x4 exp11Wide(F32x4 x) {
    F32x4 narrowed = narrow(exp11WideHalf(widenLow(x)), exp11WideHalf(widenHigh(x)));
    I32x4 bits = bitsOf(x);
    F32x4 inFloatRange = asF32x4(cmpGt32(splat32(kScreen11), bits & splat32(kAbs32)));
    F32x4 result = select(inFloatRange, exp11Float(x), narrowed);
    F32x4 toInf = asF32x4(cmpGt32(bits, splat32(kWideInfBits - 1)));
    F32x4 toZero = asF32x4(sar32<31>(bits) & cmpGt32(bits, splat32(kWideZeroBits)));
    result = select(toInf, splatBits32(kInfinity32), result);
    result = andNot(result, toZero);
    return select(cmpUnord(x, x), x, result);
}

// A11's statuses, found after the results by scanning the elements in order.
inline void status11(uint32_t b, StatusVar& status) {
    if (b >= kOverflowLimit && b < kInfinity32) status.write(orvStatusOverflow);
    if (b >= kUnderflowLimit && b < kNegInf32) status.write(orvStatusUnderflow);
}

// A rejected A11 block of eight: two groups of four through the wide path.
// The statuses come from the inputs kept in registers, since an in-place
// call has overwritten them by then.
inline void expRejected11(const float* src, float* dst, StatusVar& status) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    store(dst, exp11Wide(x0));
    store(dst + 4, exp11Wide(x1));
    alignas(16) uint32_t b[8];
    storeI(b, bitsOf(x0));
    storeI(b + 4, bitsOf(x1));
    for (uint32_t bits : b) status11(bits, status);
}
inline float expElement11(float x, StatusVar& status) {
    float y = lane0(exp11Wide(splat(x)));
    status11(bitsOf(x), status);
    return y;
}

// Subnormal results of A21 and A24: (A + B) 2^n in double, one rounding to
// float.
inline float expSubnormal32(float x) {
    double xd = x;
    double t = xd * kLog2e64;
    double s = kShifter52 + t;
    double f = t - (s - kShifter52);
    double scale = doubleFromBits((bitsOf(s) + kBias64) << 52);
    double f2 = f * f;
    double a = kG0 + f * (kG1 + f2 * (kG3 + f2 * kG5));
    double b = f2 * (kG2 + f2 * (kG4 + f2 * kG6));
    return float((a + b) * scale);
}

// What A21 and A24 do differently in the ElementPath.
struct Tier21 {
    static constexpr uint32_t kZeroLimit = kZeroLimit21;
    static Parts21 kernel(F32x4 x) { return kernel21(x); }
    static float finish(const Parts21& p) { return lane0(finish21(p)); }
    // n = 128: q 2^127 times 2 2^(j/128), a float of exponent 1.
    static float scaleTop(const Parts21& p) {
        return lane0(p.q) * kTwoTo127 * floatFromBits(lane0(splat32(0x40000000) | p.fraction));
    }
};
struct Tier24 {
    static constexpr uint32_t kZeroLimit = kZeroLimit24;
    static Parts24 kernel(F32x4 x) { return kernel24(x); }
    static float finish(const Parts24& p) { return lane0(finish24(p)); }
    static float scaleTop(const Parts24& p) { return lane0(p.u) * kTwoTo127 * kTwo32; }
};

// ElementPath of A21 and A24.  Values that pass the block screen take the
// block's arithmetic on lane 0, so the result matches the block's bit for
// bit.  All tests are on the raw bits.
template <class Tier>
inline float expElement(float x, StatusVar& status) {
    uint32_t b = bitsOf(x);
    if (passesMagnitude(b, kScreen21)) return Tier::finish(Tier::kernel(splat(x)));
    if ((b & kAbs32) > kInfinity32) return x + x;
    if (b == kInfinity32) return x;
    if (b == kNegInf32) return 0.0f;
    if ((b & kSign32) == 0) {
        if (b >= kOverflowLimit) {
            status.write(orvStatusOverflow);
            float huge = opaque(kTwoTo127);
            return huge * huge;
        }
        auto parts = Tier::kernel(splat(x));
        if (lane0(parts.field) > kTopField32) return Tier::scaleTop(parts);
        return Tier::finish(parts);
    }
    status.write(orvStatusUnderflow);
    if (b >= Tier::kZeroLimit) {
        float tiny = opaque(kTiny32);
        return tiny * tiny;
    }
    return expSubnormal32(x);
}

// ---- Blocks -----------------------------------------------------------------

inline bool expBlock11(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = exp11Float(x0), y1 = exp11Float(x1);
    if ((magnitudeScreen(x0, kScreen11) | magnitudeScreen(x1, kScreen11)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}

inline bool expBlock21(const float* src, float* dst) {
    F32x4 x0 = load(src), x1 = load(src + 4);
    F32x4 y0 = finish21(kernel21(x0)), y1 = finish21(kernel21(x1));
    if ((magnitudeScreen(x0, kScreen21) | magnitudeScreen(x1, kScreen21)) != 0) return false;
    store(dst, y0);
    store(dst + 4, y1);
    return true;
}

// Two groups at a time, so that their independent chains interleave.  The
// whole block is computed before the verdict, also when it is rejected:
// forceEval keeps the compiler from sinking the arithmetic (and the flags
// it raises on out-of-range lanes) past the branch.
inline bool expBlock24(const float* src, float* dst) {
    F32x4 x[4], y[4];
    for (int g = 0; g < 4; ++g) x[g] = load(src + 4 * g);
#pragma GCC unroll 1
    for (int g = 0; g < 4; g += 2) {
        Parts24 p0 = kernel24(x[g]), p1 = kernel24(x[g + 1]);
        y[g] = finish24(p0);
        y[g + 1] = finish24(p1);
    }
    for (int g = 0; g < 4; ++g) forceEval(y[g].v);
    if (!passes24(x)) return false;
    for (int g = 0; g < 4; ++g) store(dst + 4 * g, y[g]);
    return true;
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsExp_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        blockRounds<8>(
            len, [&](int32_t i) { return expBlock11(src + i, dst + i); },
            [&](int32_t i) { expRejected11(src + i, dst + i, status); },
            [&](int32_t i) { dst[i] = expElement11(src[i], status); });
    });
}

ORV_EXPORT OrvStatus orvsExp_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return expBlock21(src + i, dst + i); },
            [&](int32_t i) { dst[i] = expElement<Tier21>(src[i], status); });
    });
}

ORV_EXPORT OrvStatus orvsExp_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<16>(
            len, [&](int32_t i) { return expBlock24(src + i, dst + i); },
            [&](int32_t i) { dst[i] = expElement<Tier24>(src[i], status); });
    });
}

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// Every member samples its screened ordinary range, the overflow edge, the
// subnormal results down past the lower zero limit, and the finite line.
std::vector<Box> expRanges(uint32_t screen) {
    const double limit = floatFromBits(screen);
    const double pastZeroLimits = floatFromBits(kZeroLimit21) - 1;
    return {symmetric(limit), Interval{limit, floatFromBits(kOverflowLimit)}, Interval{pastZeroLimits, -limit},
            kFinite32};
}

}  // namespace

// Measured over all 2^32 inputs.
ORV_RECORDS(
    {.member = "orvsExp_32f_A11",
     .maxUlp = 2160,
     .worst = {floatFromBits(0x428F7B42)},
     .ranges = expRanges(kScreen11),
     .peerVectors = "exp"},
    {.member = "orvsExp_32f_A21",
     .maxUlp = 1.97,
     .worst = {0x1.8d3714p+2},
     .ranges = expRanges(kScreen21),
     .peerVectors = "exp"},
    // The largest error is where A24 flushes to +0 an e^x just below the
    // smallest subnormal; 0.569 ulp elsewhere.
    {.member = "orvsExp_32f_A24",
     .maxUlp = 0.999992,
     .worst = {floatFromBits(kZeroLimit24)},
     .ranges = expRanges(kScreen21),
     .peerVectors = "exp"})
}  // namespace orv
#endif
