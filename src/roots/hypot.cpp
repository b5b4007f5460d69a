// Hypot and Abs (complex): sqrt(a^2 + b^2) with a^2 + b^2 kept as an
// unevaluated sum hi + lo, and the root corrected against that pair by
// multiplications only.  Hypot reads a and b from two arrays, Abs from the
// re and im parts of one; otherwise they are the same kernel.  All tiers of
// a type are one computation, built for the top tier: one function per
// type and shape, with the lower tiers exported as further names of it.
//
// Kernel, with M = max(|a|, |b|) and m = min(|a|, |b|) chosen on the raw
// bits (so that a NaN operand always becomes M and reaches s):
//   Mh, mh   M and m cut to a few bits (binary32: 5, binary64: 7), their
//            squares exact; mh = 0 when m lies more than 4 (binary32) or 6
//            (binary64) binades below M, where its square is lost in the
//            rounding of M^2 anyway.  Within that distance the two short
//            squares add exactly, so hi = Mh^2 + mh^2 is exact.
//   lo       (M - Mh)(M + Mh) + (m - mh)(m + mh): what hi lacks of a^2 + b^2,
//            below 2^-3 of hi (2^-5 in binary64), so its roundings weigh
//            that much less than a rounding of the whole sum would.
//   s        lo + hi: the result screen rejects a round where s is zero,
//            denormal, infinite or NaN in any lane; the arguments are not
//            tested in the block.
//   binary32 root: y0 = rsqrtps(s); r and h = 1/(2r) from one coupled
//            Newton step; then the residual d = r^2 - (hi + lo), built with
//            r cut to 11 bits so that rh*rh and rh*rl are exact, and the
//            result r - h*d.
//   binary64 root: the seed of rsqrt_seed.h for s, e = (hi*y*y - 1) +
//            lo*y*y, five series terms, ((p*y)*s + lo*y) + hi*y with the
//            exact hi*y last.
//
// ElementPath (rejected rounds and the tail): operands whose magnitudes lie
// strictly between 2^-62 and 2^63 (binary32) or whose high words lie
// strictly between those of 2^-500 and 2^511 (binary64) take the kernel
// directly.  Otherwise: an infinite operand gives +infinity even beside a
// NaN; a NaN gives a NaN made quiet (b's when both are NaN; binary32 clears
// its sign); a zero operand gives the magnitude of the other.  Finite
// operands whose s passes the block's screen take the kernel too, so that
// an element gets the same bits alone as inside a passing block.  The rest
// of binary32 is a*a + b*b and its root in x87 extended arithmetic, whose
// exponent range has room for both squares, rounded once to binary32, under
// an x87 mode of its own (64-bit precision, to nearest).  The
// rest of binary64 runs the kernel on operands scaled by a power of two
// (larger magnitude into [1, 2), or by 2^-996 for the top binade, or by
// 2^1022 when both are denormal) and multiplies the two final terms by the
// inverse power before adding them: overflow then happens, and underflow
// rounds gradually, only in that last rounding.
//
// Accuracy, measured against a binary64 (binary32 kernel) or MPFR (binary64
// kernel) reference on random pairs over the whole exponent range, with
// close and distant magnitudes, denormal pairs and overflowing results;
// the maxima are in the records.
//   binary32  the block leaves its top tier when the larger magnitude
//             lies in [2^-64, 2^-62): s is normal and passes the screen
//             while lo and the residual terms are subnormal and lose bits
//             to gradual underflow.  The ElementPath gives the block's
//             bits there too (wherever s passes the screen), so an element
//             loses the same bits alone as in a block.
//   binary64  likewise when the larger magnitude lies in [2^-512,
//             2^-510); and a result in the subnormal range is the sum of
//             two terms each rounded to the subnormal grid, which comes
//             close to one ulp.
// No warnings: every completed call returns orvStatusOk.  PointersFirstFrame,
// guard nearest.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/x87.h"
#include "roots/rsqrt_seed.h"

namespace orv {
namespace {

using namespace roots;

// ---- binary32 kernel --------------------------------------------------------
constexpr uint32_t kSquareSplit32 = 0xFFF80000;     // 5 significant bits
constexpr uint32_t kDistanceLimit32 = 0x02000000;   // 4 binades
constexpr uint32_t kRootSplit32 = 0xFFFFE000;       // 11 significant bits
constexpr uint32_t kKernelLow32 = 0x20800000;       // 2^-62
constexpr uint32_t kKernelHigh32 = 0x5F000000;      // 2^63

#ifndef ORVVM_RECORDS
// The exact squares' pair of a and b, four lanes.
struct SquareSum32 {
    F32x4 hi, lo, s;
};
inline SquareSum32 squareSum(F32x4 a, F32x4 b) {
    I32x4 A = bitsOf(a) & splat32(kAbs32), B = bitsOf(b) & splat32(kAbs32);
    I32x4 aLarger = cmpGt32(A, B);
    I32x4 larger = select(aLarger, A, B), smaller = select(aLarger, B, A);
    F32x4 M = asF32x4(larger), m = asF32x4(smaller);
    F32x4 far = asF32x4(cmpGt32(sub32(larger, smaller), splat32(kDistanceLimit32)));
    F32x4 Mh = M & splatBits32(kSquareSplit32);
    F32x4 mh = andNot(m & splatBits32(kSquareSplit32), far);
    F32x4 hi = Mh * Mh + mh * mh;
    F32x4 lo = (M - Mh) * (M + Mh) + (m - mh) * (m + mh);
    return {hi, lo, lo + hi};
}

// Lanes whose exponent field is all zeros or all ones.
inline int badExponent(I32x4 field, uint32_t allOnes) {
    return signMask32(cmpEq32(field, splat32(0)) | cmpEq32(field, splat32(allOnes)));
}

// The root of hi + lo.  r0 = s*y0 and h0 = y0/2 approximate sqrt(s) and
// 1/(2 sqrt(s)); with e = 1/2 - h0*r0 one coupled Newton step takes both to
// 2 * 12 bits.  The residual d = r^2 - (hi + lo) is formed exactly but for
// the last product (rh*rh and rh*rl are exact, rh*rh - hi is exact by
// Sterbenz), so r - h*d is the root of the pair to about 2^-36 before the
// final rounding.
inline F32x4 root32(SquareSum32 q) {
    F32x4 half = splat(0.5f);
    F32x4 y0 = rsqrt(q.s);
    F32x4 r0 = q.s * y0;
    F32x4 h0 = half * y0;
    F32x4 e = half - h0 * r0;
    F32x4 h = h0 + h0 * e;
    F32x4 r = r0 + r0 * e;
    F32x4 rh = r & splatBits32(kRootSplit32);
    F32x4 rl = r - rh;
    F32x4 d = (((rh * rh - q.hi) + rh * rl) - q.lo) + rl * r;
    return r - h * d;
}

// One group of 4: the results and the mask of lanes that fail the screen.
inline F32x4 hypotGroup32(F32x4 a, F32x4 b, int& fail) {
    SquareSum32 q = squareSum(a, b);
    fail |= badExponent(bitsOf(q.s) & splat32(kInfinity32), kInfinity32);
    return root32(q);
}

inline bool insideKernel32(uint32_t magnitude) {
    return magnitude > kKernelLow32 && magnitude < kKernelHigh32;
}

// Both squares are exact in the x87 format (48 significant bits, exponent
// range far beyond binary32's); the sum and the root round to 64 bits and
// the store to binary32, so the result is within a hair of correct
// rounding and overflows or underflows only in that last rounding.  All of
// it runs under 64-bit precision and rounding to nearest whatever the
// caller left in the x87 word: this member guards MXCSR only, so the word
// is set here, for this path alone.
float x87Hypot(float a, float b) {
    return inX87Mode<kX87Extended>(
        [](float a, float b) {
            Extended A = extend(a), B = extend(b);
            return roundToFloat(sqrtX87(A * A + B * B));
        },
        a, b);
}

float hypotElement32(float a, float b) {
    uint32_t A = bitsOf(a) & kAbs32, B = bitsOf(b) & kAbs32;
    if (insideKernel32(A) && insideKernel32(B)) {
        int unused = 0;
        return lane0(hypotGroup32(splat(a), splat(b), unused));
    }
    float absA = floatFromBits(A), absB = floatFromBits(B);
    if (A >= kInfinity32) {
        if (A == kInfinity32 || B == kInfinity32) return floatFromBits(kInfinity32);
        return B > kInfinity32 ? absB * 1.0f : absA * 1.0f;
    }
    if (B >= kInfinity32) return B == kInfinity32 ? floatFromBits(kInfinity32) : absB * 1.0f;
    if (A == 0) return absB;
    if (B == 0) return absA;
    // Outside the operands' screen the sum of squares may still pass the
    // block's screen (an operand at 2^63 beside a smaller one, or one below
    // 2^-62 beside one above): such an element takes the kernel, as it
    // would in a passing block, so that its result does not depend on
    // where it stands.  Only a sum the block rejects goes the x87 route.
    int fail = 0;
    float r = lane0(hypotGroup32(splat(absA), splat(absB), fail));
    return fail ? x87Hypot(absA, absB) : r;
}

// ---- binary64 kernel --------------------------------------------------------
constexpr uint64_t kSquareSplit64 = 0xFFFFC00000000000;   // 7 significant bits
constexpr uint32_t kDistanceLimit64 = 0x00600000;         // 6 binades: high word of 0x0060000000000000
constexpr uint32_t kExponent64 = 0x7FF00000;              // of a high word
constexpr uint32_t kKernelLow64 = 0x20B00000;             // 2^-500
constexpr uint32_t kKernelHigh64 = 0x5FE00000;            // 2^511
constexpr uint64_t kLargestDenormal64 = 0x000FFFFFFFFFFFFF;
constexpr double kBothDenormalScale64 = doubleFromBits(0x7FD0000000000000);    // 2^1022
constexpr double kBothDenormalUnscale64 = doubleFromBits(0x0010000000000000);  // 2^-1022
constexpr double kTopScale64 = doubleFromBits(0x01B0000000000000);         // 2^-996
constexpr double kTopUnscale64 = doubleFromBits(0x7E30000000000000);       // 2^996

struct SquareSum64 {
    F64x2 hi, lo, s;
};
// SSE3 has no 64-bit integer compare, so the compares of 64-bit patterns
// are made of 32-bit ones: the high words signed (both are non-negative
// here), and on a tie the low words unsigned.
inline SquareSum64 squareSum(F64x2 a, F64x2 b) {
    I32x4 A = bitsOf(a) & splat64(kAbs64), B = bitsOf(b) & splat64(kAbs64);
    I32x4 flip = splat32(kSign32);
    I32x4 highA = repeatHighWords(A), highB = repeatHighWords(B);
    I32x4 aLarger = cmpGt32(highA, highB) |
                    (cmpEq32(highA, highB) & cmpGt32(repeatLowWords(A) ^ flip, repeatLowWords(B) ^ flip));
    I32x4 larger = select(aLarger, A, B), smaller = select(aLarger, B, A);
    // distance > 0x0060000000000000, the distance being non-negative.
    I32x4 distance = sub64(larger, smaller);
    I32x4 distanceHigh = repeatHighWords(distance);
    I32x4 limit = splat32(kDistanceLimit64);
    I32x4 far = cmpGt32(distanceHigh, limit) |
                andNot(cmpEq32(distanceHigh, limit), cmpEq32(repeatLowWords(distance), splat32(0)));
    F64x2 M = asF64x2(larger), m = asF64x2(smaller);
    F64x2 Mh = M & splatBits64(kSquareSplit64);
    F64x2 mh = andNot(m & splatBits64(kSquareSplit64), asF64x2(far));
    F64x2 hi = Mh * Mh + mh * mh;
    F64x2 lo = ((M - Mh) * (M + Mh) + (m - mh) * m) + (m - mh) * mh;
    return {hi, lo, lo + hi};
}

// The root of hi + lo as two terms, the corrections and the exact hi*y, for
// the caller to scale and add.  y*y is exact, e rounds once in hi*y*y, and
// the five terms leave 2^-65.
struct Root64 {
    F64x2 small, large;
};
inline Root64 root64(SquareSum64 q, F64x2 y) {
    F64x2 yy = y * y;
    F64x2 e = (q.hi * yy - splat(1.0)) + q.lo * yy;
    F64x2 p = series5(e);
    return {(p * y) * q.s + q.lo * y, q.hi * y};
}

// Four lanes, the width of one seed: results' two terms and the screen.
struct Hypot64x4 {
    Root64 a, b;
};
// Always inlined: as a call it passes its four vectors in and its four
// results out through memory, which costs more than the kernel itself.
[[gnu::always_inline]] inline Hypot64x4 hypotKernel64(F64x2x2 a, F64x2x2 b, int& fail) {
    SquareSum64 qa = squareSum(a.a, b.a), qb = squareSum(a.b, b.b);
    fail |= badExponent(highWords(qa.s, qb.s) & splat32(kExponent64), kExponent64);
    F64x2x2 y = rsqrtSeed64({qa.s, qb.s});
    return {root64(qa, y.a), root64(qb, y.b)};
}

inline bool insideKernel64(uint32_t highMagnitude) {
    return highMagnitude > kKernelLow64 && highMagnitude < kKernelHigh64;
}

double hypotElement64(double a, double b) {
    uint64_t A = bitsOf(a) & kAbs64, B = bitsOf(b) & kAbs64;
    int fail = 0;
    if (insideKernel64(uint32_t(A >> 32)) && insideKernel64(uint32_t(B >> 32))) {
        Root64 r = hypotKernel64({splat(a), splat(a)}, {splat(b), splat(b)}, fail).a;
        return lane0(r.small + r.large);
    }
    if (A >= kInfinity64) {
        if (A == kInfinity64 || B == kInfinity64) return doubleFromBits(kInfinity64);
        return B > kInfinity64 ? b * 1.0 : a * 1.0;
    }
    if (B >= kInfinity64) return B == kInfinity64 ? doubleFromBits(kInfinity64) : b * 1.0;
    if (A == 0) return doubleFromBits(B);
    if (B == 0) return doubleFromBits(A);
    // A sum of squares that passes the block's screen takes the kernel
    // unscaled, as in a passing block: scaling would keep bits the block
    // loses to subnormal terms near 2^-511, and the result would depend on
    // where its element stands.
    Root64 direct = hypotKernel64({splat(a), splat(a)}, {splat(b), splat(b)}, fail).a;
    if (!fail) return lane0(direct.small + direct.large);
    // Scale by a power of two chosen by the larger magnitude.
    uint64_t larger = A > B ? A : B;
    double scale, unscale;
    if (larger <= kLargestDenormal64) {
        scale = kBothDenormalScale64;
        unscale = kBothDenormalUnscale64;
    } else if ((larger & kInfinity64) == 0x7FE0000000000000) {
        // 2^-1023 has no normal encoding: the top binade goes to 2^27.
        scale = kTopScale64;
        unscale = kTopUnscale64;
    } else {
        // 2^-k from 2^k by integer arithmetic on the exponent field; the
        // borrow sets the sign bit, which the kernel's magnitudes ignore.
        uint64_t exponent = larger & kInfinity64;
        scale = doubleFromBits(kInfinity64 - exponent + kInfinity64);
        unscale = doubleFromBits(exponent);
    }
    double as = a * scale, bs = b * scale;
    Root64 r = hypotKernel64({splat(as), splat(as)}, {splat(bs), splat(bs)}, fail).a;
    return lane0(r.small * splat(unscale) + r.large * splat(unscale));
}

// ---- The two shapes over the two kernels --------------------------------------

// Two groups of 4 real operands each.
inline bool hypotRound32(F32x4 a0, F32x4 b0, F32x4 a1, F32x4 b1, float* out) {
    int fail = 0;
    F32x4 r0 = hypotGroup32(a0, b0, fail);
    F32x4 r1 = hypotGroup32(a1, b1, fail);
    if (fail) return false;
    store(out, r0);
    store(out + 4, r1);
    return true;
}
[[gnu::always_inline]] inline bool hypotRound64(F64x2x2 a, F64x2x2 b, double* out) {
    int fail = 0;
    Hypot64x4 r = hypotKernel64(a, b, fail);
    // The whole kernel runs before the verdict, also for a rejected round
    // (whose lanes may raise flags): keep it from being sunk past the branch.
    forceEval(r.a.small.v);
    forceEval(r.a.large.v);
    forceEval(r.b.small.v);
    forceEval(r.b.large.v);
    if (fail) return false;
    store(out, r.a.small + r.a.large);
    store(out + 2, r.b.small + r.b.large);
    return true;
}

OrvStatus hypot32(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len,
            [&](int32_t i) {
                return hypotRound32(load(src1 + i), load(src2 + i), load(src1 + i + 4),
                                    load(src2 + i + 4), dst + i);
            },
            [&](int32_t i) { dst[i] = hypotElement32(src1[i], src2[i]); });
    });
}

// A round of 8 complex elements is 64 bytes: four whole 16-byte groups,
// the last of which ends at the round's last byte.  The tail goes element
// by element, so nothing past the array is ever read.
OrvStatus abs32fc(const Orv32fc* src, Orv32f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<8>(
            len,
            [&](int32_t i) {
                auto* p = reinterpret_cast<const float*>(src + i);
                F32x4 g0 = load(p), g1 = load(p + 4), g2 = load(p + 8), g3 = load(p + 12);
                return hypotRound32(evenLanes(g0, g1), oddLanes(g0, g1), evenLanes(g2, g3),
                                    oddLanes(g2, g3), dst + i);
            },
            [&](int32_t i) { dst[i] = hypotElement32(src[i].re, src[i].im); });
    });
}

OrvStatus hypot64(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src1, src2, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<4>(
            len,
            [&](int32_t i) {
                return hypotRound64({load(src1 + i), load(src1 + i + 2)},
                                    {load(src2 + i), load(src2 + i + 2)}, dst + i);
            },
            [&](int32_t i) { dst[i] = hypotElement64(src1[i], src2[i]); });
    });
}

// Each 16-byte group is one complex binary64; unpacking pairs of groups
// gives the re and im vectors.
OrvStatus abs64fc(const Orv64fc* src, Orv64f* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<4>(
            len,
            [&](int32_t i) {
                auto* p = reinterpret_cast<const double*>(src + i);
                F64x2 g0 = load(p), g1 = load(p + 2), g2 = load(p + 4), g3 = load(p + 6);
                return hypotRound64({unpackLo(g0, g1), unpackLo(g2, g3)},
                                    {unpackHi(g0, g1), unpackHi(g2, g3)}, dst + i);
            },
            [&](int32_t i) { dst[i] = hypotElement64(src[i].re, src[i].im); });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsHypot_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return hypot32(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsHypot_32f_A21(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len)
    __attribute__((alias("orvsHypot_32f_A24")));
ORV_EXPORT OrvStatus orvsHypot_32f_A11(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len)
    __attribute__((alias("orvsHypot_32f_A24")));

ORV_EXPORT OrvStatus orvsHypot_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return hypot64(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsHypot_64f_A50(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsHypot_64f_A53")));
ORV_EXPORT OrvStatus orvsHypot_64f_A26(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsHypot_64f_A53")));

ORV_EXPORT OrvStatus orvsAbs_32fc_A24(const Orv32fc* src, Orv32f* dst, int32_t len) {
    return abs32fc(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAbs_32fc_A21(const Orv32fc* src, Orv32f* dst, int32_t len)
    __attribute__((alias("orvsAbs_32fc_A24")));
ORV_EXPORT OrvStatus orvsAbs_32fc_A11(const Orv32fc* src, Orv32f* dst, int32_t len)
    __attribute__((alias("orvsAbs_32fc_A24")));

ORV_EXPORT OrvStatus orvsAbs_64fc_A53(const Orv64fc* src, Orv64f* dst, int32_t len) {
    return abs64fc(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAbs_64fc_A50(const Orv64fc* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsAbs_64fc_A53")));
ORV_EXPORT OrvStatus orvsAbs_64fc_A26(const Orv64fc* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsAbs_64fc_A53")));

#else
}  // namespace
}  // namespace orv

#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// Both components ordinary, finite, below the low limit of the kernel (in
// binary64 the two binades of the low band and two more), and below the
// smallest normal.
std::vector<Box> ranges32() {
    return {repeated(kOrdinary, 2), repeated(kFinite32, 2), repeated(symmetric(floatFromBits(kKernelLow32)), 2),
            repeated(kBelowNormal32, 2)};
}
std::vector<Box> ranges64() {
    return {repeated(kOrdinary, 2), repeated(kFinite64, 2), repeated(symmetric(0x1p-508), 2),
            repeated(kBelowNormal64, 2)};
}

// The low band: the larger magnitude in [lo, hi), the two binades below
// the binary32 kernel's low limit, or [2^-512, 2^-510) in binary64.
std::vector<Exclusion> lowBand(double lo, double hi) {
    const char* why =
        "the block's sum passes its screen while its low part and the residual terms are subnormal and lose bits";
    return {excludeMagnitudes({{lo, hi}, {0.0, hi}}, why), excludeMagnitudes({{0.0, hi}, {lo, hi}}, why)};
}
constexpr double kLowLimit32 = floatFromBits(kKernelLow32);

}  // namespace

ORV_RECORDS(
    // One computation per type, so one set of ranges; the maxima differ by
    // name only because the top tiers leave out the low band described at the
    // top, where the tests pin the kernel instead.
    {.member = "orvsHypot_32f_A11",
     .maxUlp = 1.34,
     .worst = {0x1.05f1d6p-63, 0x1.23518cp-67},
     .ranges = ranges32(),
     .sameAs = "orvsHypot_32f_A24",
     .peerVectors = "hypot"},
    {.member = "orvsHypot_32f_A21",
     .maxUlp = 1.34,
     .worst = {0x1.05f1d6p-63, 0x1.23518cp-67},
     .ranges = ranges32(),
     .sameAs = "orvsHypot_32f_A24",
     .peerVectors = "hypot"},
    {.member = "orvsHypot_32f_A24",
     .maxUlp = 0.60,
     .worst = {-0x1.9dd8f8p+9, 0x1.2ae8f2p+9},
     .ranges = ranges32(),
     .exclusions = lowBand(kLowLimit32 / 4, kLowLimit32),
     .peerVectors = "hypot"},
    {.member = "orvsAbs_32fc_A11",
     .maxUlp = 1.34,
     .worst = {0x1.05f1d6p-63, 0x1.23518cp-67},
     .ranges = ranges32(),
     .sameAs = "orvsAbs_32fc_A24"},
    {.member = "orvsAbs_32fc_A21",
     .maxUlp = 1.34,
     .worst = {0x1.05f1d6p-63, 0x1.23518cp-67},
     .ranges = ranges32(),
     .sameAs = "orvsAbs_32fc_A24"},
    {.member = "orvsAbs_32fc_A24",
     .maxUlp = 0.60,
     .worst = {-0x1.dfd3f4p-66, 0x1.162452p-62},
     .ranges = ranges32(),
     .exclusions = lowBand(kLowLimit32 / 4, kLowLimit32)},
    {.member = "orvsHypot_64f_A26",
     .maxUlp = 1.15,
     .worst = {0x1.8683f3d6c3cdcp-512, 0x1.8b6363994426p-512},
     .ranges = ranges64(),
     .sameAs = "orvsHypot_64f_A53",
     .peerVectors = "hypot"},
    {.member = "orvsHypot_64f_A50",
     .maxUlp = 1.15,
     .worst = {0x1.8683f3d6c3cdcp-512, 0x1.8b6363994426p-512},
     .ranges = ranges64(),
     .sameAs = "orvsHypot_64f_A53",
     .peerVectors = "hypot"},
    {.member = "orvsHypot_64f_A53",
     .maxUlp = 0.99999999,
     .worst = {0x1.0357be2bd089cp-510, -0x1.ab74eb7ece09cp-511},
     .ranges = ranges64(),
     .exclusions = lowBand(0x1p-512, 0x1p-510),
     .peerVectors = "hypot"},
    {.member = "orvsAbs_64fc_A26",
     .maxUlp = 1.15,
     .worst = {0x1.8683f3d6c3cdcp-512, 0x1.8b6363994426p-512},
     .ranges = ranges64(),
     .sameAs = "orvsAbs_64fc_A53"},
    {.member = "orvsAbs_64fc_A50",
     .maxUlp = 1.15,
     .worst = {0x1.8683f3d6c3cdcp-512, 0x1.8b6363994426p-512},
     .ranges = ranges64(),
     .sameAs = "orvsAbs_64fc_A53"},
    {.member = "orvsAbs_64fc_A53",
     .maxUlp = 0.99999999,
     .worst = {0x0.4ffd17b34d1e4p-1022, 0x1.aef41c929476dp-1021},
     .ranges = ranges64(),
     .exclusions = lowBand(0x1p-512, 0x1p-510)}
)
}  // namespace orv
#endif
