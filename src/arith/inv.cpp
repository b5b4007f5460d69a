// Inv: dst[i] = 1 / src[i].
//
// Method.
//   A11  rcpps(x): the processor's 12-bit seed, as it comes.
//   A21  y = rcpps(x), then y*(2 - x*y): one Newton step.
//   A24  the vector hardware division 1/x, four at a time.
//   A26, A50 (one computation)  one vector division for eight reciprocals:
//        with pairs A, B, C, D of elements, P = A*B, Q = C*D and
//        R = 1/(P*Q), then 1/P = Q*R and 1/Q = P*R, and 1/A = B*(1/P),
//        1/B = A*(1/P), 1/C = D*(1/Q), 1/D = C*(1/Q): fourteen
//        multiplications and one division where a plain form pays eight.
//   A53  the vector hardware division 1/x, two at a time.
//
// Accuracy: measured over all 2^32 inputs for binary32 (A11 and A21 depend
// on the processor's rcpps) and on random and directed inputs over the
// whole binary64 range; each member's maximum is in its record.
//
// Error of the shared division.  In B*(Q*R) the rounding of Q cancels;
// those of P, P*Q, R, Q*R and the final product remain.  P and Q*R (about
// 1/P) are a reciprocal pair, as are P*Q and R, and the relative rounding
// errors of such a pair add up to at most 1.5 * 2^-53; so the error is
// below 3 * 2^-53 relative plus the final half ulp, under 3.5 ulp.  That
// holds while R is normal.  When the four elements of one lane group (i,
// i+2, i+4, i+6, or i+1, i+3, ...) are all above about 2^254 in magnitude,
// P*Q reaches 2^1022 and R = 1/(P*Q) is a denormal of as few as 50 bits:
// the error grows to about 5 ulp, for one element just above 2^255 and
// three just below 2^256.  That corner is the one place where
// the A50 member exceeds 4 ulp.  The ElementPath's route through x^4 stays
// below 3.3 ulp.
//
// Screens and special cases.
//   A11, A21  x must be normal with a normal reciprocal (division.h); a
//        block holding any other value drains through the ElementPath,
//        whose special path is the hardware division.  The round stores
//        its first four results before the screen's verdict
//        (StoreAheadBlock).  At |x| = 2^126 exactly the block formula and
//        the ElementPath differ (the block takes the seed, the ElementPath
//        the division).
//   A26, A50  every |x| must lie in 2^-255.5 .. 2^256, so that the product
//        of four of them is normal and finite; a rejected block goes
//        element by element, through x^4 in the same range and by plain
//        division outside it.
//   A24, A53  no screen: divide, store, then look for zeros.
// Singularity (18) for x = +-0 in every member, with the IEEE result
// +-infinity; the A53 member also raises divide-by-zero by raiseFpFlags64.
#include "arith/division.h"
#include "frame/blockpath.h"
#include "frame/frame.h"

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

using division::isZero;

// ---- 32f ----------------------------------------------------------------
using Reciprocal32 = F32x4 (*)(F32x4);

float invertWithRule32(float x, StatusVar& status) {
    float r = 1.0f / x;
    if (isZero(x)) status.write(orvStatusSingularity);
    return r;
}

// One StoreAheadBlock round of 8 of the seed tiers.
// Inlined into both forms of the driver's loop (aliased or not).
template <Reciprocal32 kReciprocal>
[[gnu::always_inline]] inline bool seedBlock(const Orv32f* src, Orv32f* dst, int32_t i) {
    F32x4 x0 = load(src + i), x1 = load(src + i + 4);
    int rejected = division::seedScreen(x0) | division::seedScreen(x1);
    store(dst + i, kReciprocal(x0));
    if (rejected) return false;
    store(dst + i + 4, kReciprocal(x1));
    return true;
}

template <Reciprocal32 kReciprocal>
float seedElement(float x, StatusVar& status) {
    if (!division::passesSeedLimit(x)) return invertWithRule32(x, status);
    return division::scalarReciprocal<kReciprocal>(x);
}

template <Reciprocal32 kReciprocal>
OrvStatus invertBySeed(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        storeAheadBlock<8>(
            len, dst, {src}, [&](int32_t i) { return seedBlock<kReciprocal>(src, dst, i); },
            [&](int32_t i) { dst[i] = seedElement<kReciprocal>(src[i], status); });
    });
}

// A24: divide four, store, then test the values held in registers.
void invertRound24(const Orv32f* src, Orv32f* dst, int32_t i, StatusVar& status) {
    F32x4 x = load(src + i);
    store(dst + i, splat(1.0f) / x);
    if (signMask(cmpEq(x, zeroF32x4()))) status.write(orvStatusSingularity);
}

// ---- 64f A26, A50: one division per eight reciprocals --------------------
// |x| from 0x2FF6A09F (2^-256 * 1.41421, about 2^-255.5) up to, not
// including, 0x4FEFFFFF (just under 2^256), on the high word with the sign
// cleared.  The product of four such values lies between about 2^-1022 and
// 2^1024, and so does its reciprocal.  At the two ends P*Q or R may fall a
// little into the denormal range, costing up to two bits of R there.
inline constexpr uint32_t kSharedLowHigh = 0x2FF6A09F;
inline constexpr uint32_t kSharedHighHigh = 0x4FEFFFFF;

int sharedScreen(F64x2 a, F64x2 b) {
    I32x4 magnitude = highWords(a, b) & splat32(kAbs32);
    return signMask32(cmpLt32(magnitude, splat32(kSharedLowHigh)) |
                      cmpGt32(magnitude, splat32(kSharedHighHigh - 1)));
}
bool passesShared(double x) {
    int32_t magnitude = int32_t(highWord(x) & kAbs32);
    return magnitude >= int32_t(kSharedLowHigh) && magnitude < int32_t(kSharedHighHigh);
}

// The screen is tested before the arithmetic, so that a rejected block
// raises no flag of its own (an overflowing P*Q, say) on top of those of
// the ElementPath.
bool sharedBlock(const Orv64f* src, Orv64f* dst, int32_t i) {
    F64x2 a = load(src + i), b = load(src + i + 2), c = load(src + i + 4), d = load(src + i + 6);
    if (sharedScreen(a, b) | sharedScreen(c, d)) return false;
    F64x2 p = a * b, q = c * d, m = p * q;
    F64x2 r = splat(1.0) / m;
    F64x2 invP = q * r, invQ = p * r;
    store(dst + i, b * invP);
    store(dst + i + 2, a * invP);
    store(dst + i + 4, d * invQ);
    store(dst + i + 6, c * invQ);
    return true;
}

// Within the limits, the block's route for a lone element: 1/x =
// (1/x^4)*x^2*x.  Outside them (x^4 would leave the normal range, or x is
// zero, infinite or NaN), the plain division.
double sharedElement(double x, StatusVar& status) {
    double r;
    if (passesShared(x)) {
        double t = x * x;
        r = ((1.0 / (t * t)) * t) * x;
    } else {
        r = 1.0 / x;
    }
    if (isZero(x)) status.write(orvStatusSingularity);
    return r;
}

OrvStatus invertShared(const Orv64f* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        wholeBlockFallback<8>(
            len, [&](int32_t i) { return sharedBlock(src, dst, i); },
            [&](int32_t i) { dst[i] = sharedElement(src[i], status); });
    });
}

// ---- 64f A53 ---------------------------------------------------------------
// A floating compare, like the division: under the caller's
// denormals-are-zero a denormal reads as zero in both and warns.
void warnForZero53(double x, StatusVar& status) {
    if (x == 0.0) {
        status.write(orvStatusSingularity);
        raiseFpFlags64(orvStatusSingularity);
    }
}

void invertRound53(const Orv64f* src, Orv64f* dst, int32_t i, StatusVar& status) {
    F64x2 x = load(src + i);
    store(dst + i, splat(1.0) / x);
    warnForZero53(lane0(x), status);
    warnForZero53(lane1(x), status);
}

double invertElement53(double x, StatusVar& status) {
    double r = 1.0 / x;
    warnForZero53(x, status);
    return r;
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsInv_32f_A11(const Orv32f* src, Orv32f* dst, int32_t len) {
    return invertBySeed<division::reciprocal11>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInv_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
    return invertBySeed<division::reciprocal21>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInv_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        plainRounds<4>(
            len, [&](int32_t i) { invertRound24(src, dst, i, status); },
            [&](int32_t i) { dst[i] = invertWithRule32(src[i], status); });
    });
}
ORV_EXPORT OrvStatus orvsInv_64f_A26(const Orv64f* src, Orv64f* dst, int32_t len) {
    return invertShared(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInv_64f_A50(const Orv64f* src, Orv64f* dst, int32_t len) {
    return invertShared(src, dst, len);
}
ORV_EXPORT OrvStatus orvsInv_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardNearestKeepDaz>({src, dst}, len, [&](StatusVar& status) {
        plainRounds<2>(
            len, [&](int32_t i) { invertRound53(src, dst, i, status); },
            [&](int32_t i) { dst[i] = invertElement53(src[i], status); });
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
// The limit of the shared division's screen, 2^256.
constexpr double kSharedLimit = 0x1p256;
constexpr const char* kSeedFlushes =
    "2^126 passes the block's screen, and a processor whose rcpps flushes the tiny reciprocal gives 0 there";
// By design of A26 and A50, a reciprocal depends on its neighbours.
constexpr const char* kSharedDivision =
    "one vector division serves eight reciprocals: in a block a reciprocal comes through the product of its "
    "lane-mates, alone through its own fourth power";

}  // namespace

ORV_RECORDS(
    // 32f: all 2^32 inputs, each in a passing block and in the ElementPath.
    // A11 is the seed itself, whose bits differ between processor makers: its
    // maximum is the seed's architectural bound, a relative error of
    // 1.5 * 2^-12, and its worst input the one of the AMD machine of our runs.
    // A21 is that machine's measurement.  64f: random inputs over the whole
    // range, the screen's range and its ends, and a directed search at the top
    // of the screen, where the A26/A50 maximum lies (see above), in a block
    // whose lane-mates are not copies of the worst input.
    {.member = "orvsInv_32f_A11",
     .maxUlp = 6144,
     .worst = {-0x1.04affep-36},
     .ranges = {kOrdinary, kFinite32, kBelowNormal32},
     .exclusions = {excludeMagnitudes({{kSeedLimit, kAboveSeedLimit}}, kSeedFlushes)}},
    {.member = "orvsInv_32f_A21",
     .maxUlp = 2.87,
     .worst = {0x1.03006cp+9},
     .ranges = {kOrdinary, kFinite32, kBelowNormal32},
     .exclusions = {excludeMagnitudes({{kSeedLimit, kAboveSeedLimit}}, kSeedFlushes)}},
    {.member = "orvsInv_32f_A24",
     .maxUlp = 0.5,
     .worst = {0x1.213212p-86},
     .ranges = {kOrdinary, kFinite32, kBelowNormal32}},
    {.member = "orvsInv_64f_A26",
     .maxUlp = 4.85,
     .worst = {0x1.faad014dda79cp+255},
     .ranges = {kOrdinary, kFinite64, symmetric(kSharedLimit), kBelowNormal64},
     .position = {kSharedDivision, 5}},
    {.member = "orvsInv_64f_A50",
     .maxUlp = 3.1,
     .worst = {0x1.04dd285f265fp+7},
     .ranges = {kOrdinary, kFinite64, symmetric(kSharedLimit), kBelowNormal64},
     .exclusions = {excludeMagnitudes({{0x1p254, kSharedLimit}},
                                      "a round whose four lane-mates all lie there has a denormal 1/M and "
                                      "reaches 4.85 ulp")},
     .position = {kSharedDivision, 5},
     .sameAs = "orvsInv_64f_A26"},
    {.member = "orvsInv_64f_A53",
     .maxUlp = 0.5,
     .worst = {0x1.af9699548000dp-816},
     .ranges = {kOrdinary, kFinite64, kBelowNormal64}}
)
}  // namespace orv
#endif
