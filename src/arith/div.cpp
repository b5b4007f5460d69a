// Div (real): dst[i] = src1[i] / src2[i].
//
// Method.  A division is the dearest operation of the target, so the lower
// tiers avoid it:
//   A11  y = rcpps(b), result y*a.  12-bit seed, one rounding on top.
//   A21  y = rcpps(b), result (y*(2 - b*y))*a: one Newton step.
//   A24  the vector hardware division a/b, four at a time.
//   A26, A50 (one function)  one x87 division for four quotients: with
//        p = b0*b1, q = b2*b3 and r = 1/(p*q), the reciprocals are
//        1/b0 = b1*(q*r), 1/b1 = b0*(q*r), 1/b2 = b3*(p*r), 1/b3 = b2*(p*r).
//        All of it runs at 64-bit precision in the x87 stack, whose wide
//        exponent holds the product of four binary64 values; only the
//        final quotient is rounded to binary64.
//   A53  the vector hardware division a/b, two at a time.
//
// Accuracy, measured on random pairs over the whole binary32 or binary64
// range, with normal, huge, tiny and denormal quotients (the maxima are in
// the records).  A11 and A21 depend on the processor's rcpps; on the build
// machine its relative error is at most 3.15e-4 (2^-11.63), so A11 keeps
// 11.6 bits, and the Newton step's at most 2.06e-7, which A21 turns into
// at most 2.06e-7 * 2^24 + 0.5 = 3.96 ulp once the product with a is
// rounded.  The x87 route's error before its final rounding is a few
// 2^-64, so A26/A50 round almost correctly.
//
// Screens and special cases.
//   A11, A21  the divisor must be normal with a normal reciprocal (see
//        division.h); a block that holds any other divisor drains through
//        the ElementPath, whose special path is the hardware division.  The
//        round stores its first four quotients before the screen's verdict
//        (StoreAheadBlock), so an in-place block is put back before the
//        drain.  The ElementPath's limit test differs from the block's at
//        one magnitude: a divisor of exactly +-2^126 passes the block's
//        test and goes to the special path in the ElementPath.
//   A26, A50  the product p*q of the block's four divisors, rounded to
//        binary32, must be neither zero nor infinite nor NaN: one conversion
//        catches a zero, infinite or NaN divisor among the four.  The range
//        it also imposes (about 2^-150 .. 2^128 for p*q) is far narrower
//        than the x87 needs.  A rejected block goes element by element
//        through b^2 and b^4, the same route in the same precision.
//   A24, A53  no screen: divide, store, then look for zero divisors.
//
// Singularity (18) is the only warning, and its condition differs by member:
//   32f, all tiers   b is +-0 and a is not NaN (0/0 and inf/0 warn)
//   64f A26, A50     b is +-0, whatever a is (NaN/0 warns)
//   64f A53          b is +-0 and a is finite (inf/0 and NaN/0 do not); it
//                    also raises the divide-by-zero flag by raiseFpFlags64.
// The results of a zero divisor are those of IEEE division.
#include "arith/division.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/x87.h"

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

using division::isNaN;
using division::isNonFinite;
using division::isZero;

// ---- 32f ----------------------------------------------------------------
using Reciprocal32 = F32x4 (*)(F32x4);

// The hardware division, which is the special path of the seed tiers and
// the whole of A24's tail.
float divideWithRule32(float a, float b, StatusVar& status) {
    float q = a / b;
    if (isZero(b) && !isNaN(a)) status.write(orvStatusSingularity);
    return q;
}

// One StoreAheadBlock round of 8 of the seed tiers: the first four
// quotients are stored before the verdict on the divisors is known.
// Inlined into both forms of the driver's loop (aliased or not).
template <Reciprocal32 kReciprocal>
[[gnu::always_inline]] inline bool seedBlock(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t i) {
    F32x4 a0 = load(src1 + i), a1 = load(src1 + i + 4);
    F32x4 b0 = load(src2 + i), b1 = load(src2 + i + 4);
    int rejected = division::seedScreen(b0) | division::seedScreen(b1);
    store(dst + i, kReciprocal(b0) * a0);
    if (rejected) return false;
    store(dst + i + 4, kReciprocal(b1) * a1);
    return true;
}

template <Reciprocal32 kReciprocal>
float seedElement(float a, float b, StatusVar& status) {
    if (!division::passesSeedLimit(b)) return divideWithRule32(a, b, status);
    return division::scalarReciprocal<kReciprocal>(b) * a;
}

template <Reciprocal32 kReciprocal>
OrvStatus divideBySeed(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar& status) {
        storeAheadBlock<8>(
            len, dst, {src1, src2},
            [&](int32_t i) { return seedBlock<kReciprocal>(src1, src2, dst, i); },
            [&](int32_t i) { dst[i] = seedElement<kReciprocal>(src1[i], src2[i], status); });
    });
}

// A24: divide four, store, then test the divisors held in registers (an
// in-place call has overwritten the arrays by then).  Every zero lane with
// a non-NaN numerator writes the same code, so one write stands for the
// walk over the lanes.
void divideRound24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t i,
                   StatusVar& status) {
    F32x4 a = load(src1 + i), b = load(src2 + i);
    store(dst + i, a / b);
    if (signMask(cmpEq(b, zeroF32x4()) & division::notNaN(a)))
        status.write(orvStatusSingularity);
}

// ---- 64f A26, A50: one x87 division per four quotients ------------------
// The round's screen: p*q rounded to binary32 must be a nonzero finite
// value (a binary32 denormal passes).  So |p*q| lies within about
// 2^-150 .. 2^128, r = 1/(p*q) does too, and nothing in the round comes
// near the limits of the x87 range; only the final rounding to binary64
// can overflow or underflow, where the true quotient does.
bool productInFloatRange(Extended m) {
    uint32_t word = bitsOf(roundToFloat(m));
    return (word & kAbs32) != 0 && (word & kInfinity32) != kInfinity32;
}

// Error: every step is rounded at 64-bit precision.  In b1*(q*r) the
// rounding of q cancels against the same q inside p*q; those of p, p*q, r,
// q*r, the product with b1 and the one with a0 remain: six of at most
// 2^-64 relative, under 0.003 ulp of binary64 on top of the final
// rounding's half ulp.
bool sharedX87Block(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t i) {
    Extended b0 = src2[i], b1 = src2[i + 1], b2 = src2[i + 2], b3 = src2[i + 3];
    Extended a0 = src1[i], a1 = src1[i + 1], a2 = src1[i + 2], a3 = src1[i + 3];
    Extended p = b0 * b1, q = b2 * b3, m = p * q;
    if (!productInFloatRange(m)) return false;
    Extended r = 1.0L / m;
    Extended invP = q * r, invQ = p * r;
    storeRounded(dst + i + 2, (b3 * invQ) * a2);
    storeRounded(dst + i + 3, (b2 * invQ) * a3);
    storeRounded(dst + i, (b1 * invP) * a0);
    storeRounded(dst + i + 1, (b0 * invP) * a1);
    return true;
}

// The element form: the same route through the fourth power, 1/b =
// (1/b^4)*b^2*b, so that its error has the shape of the block's; b^4 of
// any finite nonzero binary64 is inside the x87 range.  A zero, infinite
// or NaN divisor takes the plain quotient.
Extended x87Quotient(double a, double b) {
    Extended x = a, y = b;
    if (isZero(b) || isNonFinite(b)) return x / y;
    Extended t = y * y, u = t * t;
    return (((1.0L / u) * t) * y) * x;
}

double sharedX87Element(double a, double b, StatusVar& status) {
    double q = roundToDouble(x87Quotient(a, b));
    if (isZero(b)) status.write(orvStatusSingularity);
    return q;
}

OrvStatus divideSharedX87(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardX87Extended>({src1, src2, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<4>(
            len, [&](int32_t i) { return sharedX87Block(src1, src2, dst, i); },
            [&](int32_t i) { dst[i] = sharedX87Element(src1[i], src2[i], status); });
    });
}

// ---- 64f A53 --------------------------------------------------------------
// The divisor is tested with a floating compare, like the division itself:
// under the caller's denormals-are-zero (which this member keeps) a
// denormal divisor reads as zero in both, gives an infinite quotient and
// warns.
void warnForZero53(double a, double b, StatusVar& status) {
    if (!isNonFinite(a) && b == 0.0) {
        status.write(orvStatusSingularity);
        raiseFpFlags64(orvStatusSingularity);
    }
}

void divideRound53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t i,
                   StatusVar& status) {
    F64x2 a = load(src1 + i), b = load(src2 + i);
    store(dst + i, a / b);
    warnForZero53(lane0(a), lane0(b), status);
    warnForZero53(lane1(a), lane1(b), status);
}

double divideElement53(double a, double b, StatusVar& status) {
    double q = a / b;
    warnForZero53(a, b, status);
    return q;
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsDiv_32f_A11(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return divideBySeed<division::reciprocal11>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsDiv_32f_A21(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return divideBySeed<division::reciprocal21>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsDiv_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar& status) {
        plainRounds<4>(
            len, [&](int32_t i) { divideRound24(src1, src2, dst, i, status); },
            [&](int32_t i) { dst[i] = divideWithRule32(src1[i], src2[i], status); });
    });
}
// One function under two names: the two symbols have the same address.
ORV_EXPORT OrvStatus orvsDiv_64f_A26(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return divideSharedX87(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsDiv_64f_A50(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsDiv_64f_A26")));
ORV_EXPORT OrvStatus orvsDiv_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardNearestKeepDaz>({src1, src2, dst}, len, [&](StatusVar& status) {
        plainRounds<2>(
            len, [&](int32_t i) { divideRound53(src1, src2, dst, i, status); },
            [&](int32_t i) { dst[i] = divideElement53(src1[i], src2[i], status); });
    });
}

#else
#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The top of the seed tiers' screen, 2^126, and the float above it.
constexpr double kSeedLimit = floatFromBits(division::kSeedBias + division::kSeedSpan);
constexpr double kAboveSeedLimit = floatFromBits(division::kSeedBias + division::kSeedSpan + 1);
constexpr const char* kSeedFlushes =
    "2^126 passes the block's screen, and a processor whose rcpps flushes the tiny reciprocal gives 0 there";
// By design of A26 and A50, a quotient depends on its neighbours.
constexpr const char* kSharedDivision =
    "one x87 division serves four quotients: in a block a quotient comes through the product of the four "
    "divisors, alone through its own divisor's fourth power";

}  // namespace

ORV_RECORDS(
    // Measured on random pairs: the ordinary range, the whole finite range by
    // value and by bit pattern (huge, tiny and denormal quotients, overflow and
    // underflow), and denormal divisors.  A11 and A21 are the build machine's
    // rcpps; their worst cases were found by running every divisor significand
    // against many numerators.  Their bounds hold except at a divisor of
    // magnitude exactly 2^126 in a passing block, where a processor whose rcpps
    // flushes the tiny reciprocal gives 0 (and NaN for an infinite numerator).
    // A11 records the seed's architectural bound, 1.5 * 2^-12 relative plus the
    // product's rounding, and the worst input of the build machine; both leave
    // out the divisors of magnitude 2^126.
    {.member = "orvsDiv_32f_A11",
     .maxUlp = 6145,
     .worst = {0x1.ed85e4p-91, -0x1.f95e7ep-107},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), {Interval{-1e30, 1e30}, kBelowNormal32}},
     .exclusions = {excludeMagnitudes({kAllMagnitudes, {kSeedLimit, kAboveSeedLimit}}, kSeedFlushes)}},
    {.member = "orvsDiv_32f_A21",
     .maxUlp = 3.96,
     .worst = {-0x1.eb176ap-73, 0x1.eb7afcp-51},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), {Interval{-1e30, 1e30}, kBelowNormal32}},
     .exclusions = {excludeMagnitudes({kAllMagnitudes, {kSeedLimit, kAboveSeedLimit}}, kSeedFlushes)}},
    {.member = "orvsDiv_32f_A24",
     .maxUlp = 0.5,
     .worst = {0x1p-149, 0x1p+1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), {Interval{-1e30, 1e30}, kBelowNormal32}}},
    {.member = "orvsDiv_64f_A26",
     .maxUlp = 0.502,
     .worst = {0x1.78db8b637fbc2p-92, -0x0.4c2b3d26fb689p-1022},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), {kFinite64, kBelowNormal64}},
     .position = {kSharedDivision, 1}},
    {.member = "orvsDiv_64f_A50",
     .maxUlp = 0.502,
     .worst = {-0x1.a03c87052a03p+5, -0x1.b8f2eb3c1e7cep+9},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), {kFinite64, kBelowNormal64}},
     .position = {kSharedDivision, 1},
     .sameAs = "orvsDiv_64f_A26"},
    {.member = "orvsDiv_64f_A53",
     .maxUlp = 0.5,
     .worst = {0x0.0000000000001p-1022, 0x1p+1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), {kFinite64, kBelowNormal64}}}
)
}  // namespace orv
#endif
