// Rounding to an integral value: Ceil, Floor, Trunc, Round, Rint,
// NearbyInt and Modf, for binary32 and binary64.  The results stay in the
// floating-point type and are exact; no member warns.
//
// Method.  One idea in all of them: adding the shifter S (2^23 for binary32,
// 2^52 for binary64) to a value of magnitude at most S pushes its fraction
// bits out of the significand, and the processor's rounding mode decides
// which way they go; subtracting S gives the rounded value back exactly.
// No integer conversion takes place, so the range is not limited.  The
// guard picks the mode: up for Ceil, down for Floor, toward zero for Trunc
// and Modf, nearest for Round; Rint and NearbyInt (one computation) have no
// guard and round in the caller's mode.  With x the element, s its sign
// bit and a = |x|:
//   Ceil      t = S with sign s; ((x + t) - t) or s.  In round-up mode
//             (t - t) is +0, so the OR gives -0 for x in (-1, 0).
//   Floor     m = magnitude mask or x (all ones for a negative x, the
//             magnitude mask for a positive one); t = -S and m, which is -S
//             or S; ((x + t) - t) and m.  The OR of Ceil would not do: in
//             round-down mode (t - t) is -0, and the AND clears that sign
//             for a positive x and keeps it for a negative one.
//   Trunc     ((a + S) - S) or s.
//   Round     r = (a + S) - S rounds a to nearest with ties to even; d =
//             a - r lies in [-1/2, 1/2] and equals +1/2 exactly for the ties
//             that went down, which get One added: half away from zero.
//             The compare is on the raw bits of d (for binary64 on 32-bit
//             pieces: no value in range has the high word of 1/2 and a
//             nonzero low word, so the high piece decides).  Then r or s.
//   Rint      t = S with sign s; (((x + t) - t) and magnitude mask) or s.
//             The rounded value already has the sign s unless it is zero,
//             and a zero made in the caller's round-down mode would be -0
//             for a positive x: clearing the sign before the OR gives every
//             mode the zero of the argument's sign.  The inexact flag is not
//             held back.
//   Modf      r = (a + S) - S in round-toward-zero; dstInt = r or s and
//             dstFrac = (a - r) or s, a - r being exact (r <= a < r + 1).
//             So the fraction of an integer is a zero with the sign of x.
// Every member keeps the sign of zero: -0 gives -0.
//
// Screen, on raw bits: binary32 passes magnitude bits up to 0x4B000000 (so
// 2^23 itself passes), binary64 passes high words whose exponent field is at
// most 0x43200000 (so 2^52 is rejected); both keep NaN and infinities out.
// Rounds of 8 (binary32) or 4 (binary64) elements; a rejected round and the
// tail go element by element (WholeBlockFallback):
//   exponent field all ones   x + x (an infinity, or the NaN made quiet;
//                             a signalling NaN raises invalid).  Modf: an
//                             infinity gives dstInt = x and dstFrac = zero
//                             with the sign of x; a NaN gives x + x in both.
//   |x| >= 2^23 or 2^52       x has no fraction: x copied as raw bits;
//                             Modf writes x and a zero with the sign of x.
//   otherwise                 the block formula on the one element.
// PointersFirstFrame; every completed call returns orvStatusOk.
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"

namespace orv {
namespace {

// ---- Constants ----------------------------------------------------------

// binary32: shifter 2^23 and its negative, and the pieces of the formulas.
constexpr uint32_t kShifter32 = 0x4B000000;     // 2^23 = 8388608
constexpr uint32_t kNegShifter32 = 0xCB000000;  // -2^23
constexpr uint32_t kHalf32 = 0x3F000000;        // 0.5
constexpr uint32_t kOne32 = 0x3F800000;         // 1.0
constexpr uint32_t kExponent32 = 0x7F800000;
// Magnitude bits above the shifter's are rejected: 2^23 itself passes.
constexpr uint32_t kScreen32 = kShifter32 + 1;

// binary64: shifter 2^52.
constexpr uint64_t kShifter64 = 0x4330000000000000;     // 2^52
constexpr uint64_t kNegShifter64 = 0xC330000000000000;  // -2^52
constexpr uint64_t kHalf64 = 0x3FE0000000000000;        // 0.5
constexpr uint64_t kOne64 = 0x3FF0000000000000;         // 1.0
constexpr uint32_t kExponentHigh64 = 0x7FF00000;
constexpr uint32_t kShifterHigh64 = 0x43300000;
// Exponent fields above that of 2^51 are rejected: high-word magnitudes
// below that of 2^52 pass, and 2^52 itself does not.
constexpr uint32_t kScreenHigh64 = kShifterHigh64;

}  // namespace
}  // namespace orv

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// ---- The two element types --------------------------------------------------

// What the formulas need of a type: its vector, its constants as vectors
// and its raw-bit tests.  N is the block size; each round is two vectors.
struct Binary32 {
    using T = float;
    using V = F32x4;
    static constexpr int kLanes = 4;
    static constexpr int N = 8;
    static V shifter() { return splatBits32(kShifter32); }
    static V negShifter() { return splatBits32(kNegShifter32); }
    static V half() { return splatBits32(kHalf32); }
    static V one() { return splatBits32(kOne32); }
    static V signMask() { return splatBits32(kSign32); }
    static V magnitudeMask() { return splatBits32(kAbs32); }
    // Lanes whose bits equal those of b (a mask).
    static V sameBits(V a, V b) { return asF32x4(cmpEq32(bitsOf(a), bitsOf(b))); }
    static int screen(V x) { return magnitudeScreen(x, kScreen32); }
    static bool nonFinite(float x) { return (bitsOf(x) & kExponent32) == kExponent32; }
    static bool noFraction(float x) { return (bitsOf(x) & kAbs32) >= kShifter32; }
    static float signedZero(float x) { return floatFromBits(bitsOf(x) & kSign32); }
    static bool isInf(float x) { return (bitsOf(x) & kAbs32) == kExponent32; }
};

struct Binary64 {
    using T = double;
    using V = F64x2;
    static constexpr int kLanes = 2;
    static constexpr int N = 4;
    static V shifter() { return splatBits64(kShifter64); }
    static V negShifter() { return splatBits64(kNegShifter64); }
    static V half() { return splatBits64(kHalf64); }
    static V one() { return splatBits64(kOne64); }
    static V signMask() { return splatBits64(kSign64); }
    static V magnitudeMask() { return splatBits64(kAbs64); }
    // Compared in 32-bit pieces (SSE2 has no 64-bit compare): only used
    // for d against 1/2, where the high piece decides (see the header).
    static V sameBits(V a, V b) { return asF64x2(cmpEq32(bitsOf(a), bitsOf(b))); }
    static int screen(V x) { return magnitudeScreen(x, kScreenHigh64); }
    static bool nonFinite(double x) { return (highWord(x) & kExponentHigh64) == kExponentHigh64; }
    static bool noFraction(double x) { return (highWord(x) & kAbs32) >= kShifterHigh64; }
    static double signedZero(double x) { return doubleFromBits(bitsOf(x) & kSign64); }
    static bool isInf(double x) { return (bitsOf(x) & kAbs64) == (uint64_t(kExponentHigh64) << 32); }
};

// ---- Block formulas ---------------------------------------------------------
// Each takes a vector of elements and gives the rounded vector; the sums
// round in the mode the member's guard (or the caller) has set.

template <class Ty>
struct CeilOp {
    using V = typename Ty::V;
    static V apply(V x) {
        V s = x & Ty::signMask();
        V t = Ty::shifter() | s;
        return ((x + t) - t) | s;
    }
};

template <class Ty>
struct FloorOp {
    using V = typename Ty::V;
    static V apply(V x) {
        V m = Ty::magnitudeMask() | x;
        V t = Ty::negShifter() & m;
        return ((x + t) - t) & m;
    }
};

template <class Ty>
struct TruncOp {
    using V = typename Ty::V;
    static V apply(V x) {
        V s = x & Ty::signMask();
        V a = andNot(x, Ty::signMask());
        return ((a + Ty::shifter()) - Ty::shifter()) | s;
    }
};

template <class Ty>
struct RoundOp {
    using V = typename Ty::V;
    static V apply(V x) {
        V s = x & Ty::signMask();
        V a = andNot(x, Ty::signMask());
        V r = (a + Ty::shifter()) - Ty::shifter();
        V d = a - r;
        r = r + (Ty::one() & Ty::sameBits(d, Ty::half()));
        return r | s;
    }
};

template <class Ty>
struct RintOp {
    using V = typename Ty::V;
    static V apply(V x) {
        V s = x & Ty::signMask();
        V t = Ty::shifter() | s;
        return (((x + t) - t) & Ty::magnitudeMask()) | s;
    }
};

// Modf: the integral part and the fraction together.
template <class Ty>
struct ModfParts {
    typename Ty::V whole, fraction;
};
template <class Ty>
inline ModfParts<Ty> modfApply(typename Ty::V x) {
    using V = typename Ty::V;
    V s = x & Ty::signMask();
    V a = andNot(x, Ty::signMask());
    V r = (a + Ty::shifter()) - Ty::shifter();
    return {r | s, (a - r) | s};
}

// ---- Rounds and ElementPaths ---------------------------------------------------

// A round of N elements: both vectors computed, then the screen's verdict.
template <class Ty, class Op>
inline bool roundingBlock(const typename Ty::T* src, typename Ty::T* dst) {
    using V = typename Ty::V;
    V x0 = load(src), x1 = load(src + Ty::kLanes);
    V y0 = Op::apply(x0), y1 = Op::apply(x1);
    if ((Ty::screen(x0) | Ty::screen(x1)) != 0) return false;
    store(dst, y0);
    store(dst + Ty::kLanes, y1);
    return true;
}

// ElementPath of the rounding families.
template <class Ty, class Op>
inline typename Ty::T roundingElement(typename Ty::T x) {
    if (Ty::nonFinite(x)) return x + x;
    if (Ty::noFraction(x)) return x;
    return lane0(Op::apply(splat(x)));
}

template <class Ty>
inline bool modfBlock(const typename Ty::T* src, typename Ty::T* dstInt, typename Ty::T* dstFrac) {
    using V = typename Ty::V;
    V x0 = load(src), x1 = load(src + Ty::kLanes);
    ModfParts<Ty> p0 = modfApply<Ty>(x0), p1 = modfApply<Ty>(x1);
    if ((Ty::screen(x0) | Ty::screen(x1)) != 0) return false;
    store(dstInt, p0.whole);
    store(dstInt + Ty::kLanes, p1.whole);
    store(dstFrac, p0.fraction);
    store(dstFrac + Ty::kLanes, p1.fraction);
    return true;
}

// Modf's ElementPath.  The source is read once, before either store, so
// that either destination may be the source.
template <class Ty>
inline void modfElement(typename Ty::T x, typename Ty::T& whole, typename Ty::T& fraction) {
    if (Ty::nonFinite(x) && !Ty::isInf(x)) {
        whole = fraction = x + x;
    } else if (Ty::nonFinite(x) || Ty::noFraction(x)) {
        whole = x;
        fraction = Ty::signedZero(x);
    } else {
        ModfParts<Ty> p = modfApply<Ty>(splat(x));
        whole = lane0(p.whole);
        fraction = lane0(p.fraction);
    }
}

template <class Ty, FpModes kGuard, template <class> class Op>
inline OrvStatus roundingFamily(const typename Ty::T* src, typename Ty::T* dst, int32_t len) {
    return pointersFirstFrame<kGuard>({src, dst}, len, [&](StatusVar&) {
        wholeBlockFallback<Ty::N>(
            len, [&](int32_t i) { return roundingBlock<Ty, Op<Ty>>(src + i, dst + i); },
            [&](int32_t i) { dst[i] = roundingElement<Ty, Op<Ty>>(src[i]); });
    });
}

template <class Ty>
inline OrvStatus modf(const typename Ty::T* src, typename Ty::T* dstInt, typename Ty::T* dstFrac,
                      int32_t len) {
    return pointersFirstFrame<kGuardTowardZero>({src, dstInt, dstFrac}, len, [&](StatusVar&) {
        wholeBlockFallback<Ty::N>(
            len, [&](int32_t i) { return modfBlock<Ty>(src + i, dstInt + i, dstFrac + i); },
            [&](int32_t i) {
                typename Ty::T whole, fraction;
                modfElement<Ty>(src[i], whole, fraction);
                dstInt[i] = whole;
                dstFrac[i] = fraction;
            });
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsCeil_32f(const Orv32f* src, Orv32f* dst, int32_t len) {
    return roundingFamily<Binary32, kGuardUp, CeilOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsCeil_64f(const Orv64f* src, Orv64f* dst, int32_t len) {
    return roundingFamily<Binary64, kGuardUp, CeilOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsFloor_32f(const Orv32f* src, Orv32f* dst, int32_t len) {
    return roundingFamily<Binary32, kGuardDown, FloorOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsFloor_64f(const Orv64f* src, Orv64f* dst, int32_t len) {
    return roundingFamily<Binary64, kGuardDown, FloorOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsTrunc_32f(const Orv32f* src, Orv32f* dst, int32_t len) {
    return roundingFamily<Binary32, kGuardTowardZero, TruncOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsTrunc_64f(const Orv64f* src, Orv64f* dst, int32_t len) {
    return roundingFamily<Binary64, kGuardTowardZero, TruncOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsRound_32f(const Orv32f* src, Orv32f* dst, int32_t len) {
    return roundingFamily<Binary32, kGuardNearest, RoundOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsRound_64f(const Orv64f* src, Orv64f* dst, int32_t len) {
    return roundingFamily<Binary64, kGuardNearest, RoundOp>(src, dst, len);
}
// Rint and NearbyInt are one function under two names.
ORV_EXPORT OrvStatus orvsRint_32f(const Orv32f* src, Orv32f* dst, int32_t len) {
    return roundingFamily<Binary32, kGuardNone, RintOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsNearbyInt_32f(const Orv32f* src, Orv32f* dst, int32_t len)
    __attribute__((alias("orvsRint_32f")));
ORV_EXPORT OrvStatus orvsRint_64f(const Orv64f* src, Orv64f* dst, int32_t len) {
    return roundingFamily<Binary64, kGuardNone, RintOp>(src, dst, len);
}
ORV_EXPORT OrvStatus orvsNearbyInt_64f(const Orv64f* src, Orv64f* dst, int32_t len)
    __attribute__((alias("orvsRint_64f")));
ORV_EXPORT OrvStatus orvsModf_32f(const Orv32f* src, Orv32f* dstInt, Orv32f* dstFrac, int32_t len) {
    return modf<Binary32>(src, dstInt, dstFrac, len);
}
ORV_EXPORT OrvStatus orvsModf_64f(const Orv64f* src, Orv64f* dstInt, Orv64f* dstFrac, int32_t len) {
    return modf<Binary64>(src, dstInt, dstFrac, len);
}

#else
#include "frame/record.h"

namespace orv {
namespace {
using namespace records;

// The ordinary range of the arithmetic members; twice the shifters: values
// that pass the screen and the rejected ones above them; the finite line;
// and the values around zero and one.
const Box kShifted32 = symmetric(2 * double(floatFromBits(kShifter32)));
const Box kShifted64 = symmetric(2 * doubleFromBits(kShifter64));
const Box kNearZero = symmetric(2);
// Every result is exact, so no input is worse than another: a tie, where
// the modes part, stands for them.
constexpr double kTie = 2.5;

}  // namespace

ORV_RECORDS(
    // Exact: the shifter's sums lose nothing but the fraction the mode
    // decides on, and the rejected elements are copied.  Measured against
    // MPFR on the special values and the ranges, and over all 2^32 inputs
    // for the 32f members (the long exhaustive check).  NearbyInt is Rint
    // under a second name (one function), which the records of two families
    // do not state as a trait.
    {.member = "orvsCeil_32f", .worst = {kTie}, .ranges = {kOrdinary, kShifted32, kFinite32, kNearZero}, .exact = true},
    {.member = "orvsCeil_64f", .worst = {kTie}, .ranges = {kOrdinary, kShifted64, kFinite64, kNearZero}, .exact = true},
    {.member = "orvsFloor_32f", .worst = {kTie}, .ranges = {kOrdinary, kShifted32, kFinite32, kNearZero}, .exact = true},
    {.member = "orvsFloor_64f", .worst = {kTie}, .ranges = {kOrdinary, kShifted64, kFinite64, kNearZero}, .exact = true},
    {.member = "orvsTrunc_32f", .worst = {kTie}, .ranges = {kOrdinary, kShifted32, kFinite32, kNearZero}, .exact = true},
    {.member = "orvsTrunc_64f", .worst = {kTie}, .ranges = {kOrdinary, kShifted64, kFinite64, kNearZero}, .exact = true},
    {.member = "orvsRound_32f", .worst = {kTie}, .ranges = {kOrdinary, kShifted32, kFinite32, kNearZero}, .exact = true},
    {.member = "orvsRound_64f", .worst = {kTie}, .ranges = {kOrdinary, kShifted64, kFinite64, kNearZero}, .exact = true},
    {.member = "orvsRint_32f", .worst = {kTie}, .ranges = {kOrdinary, kShifted32, kFinite32, kNearZero}, .exact = true},
    {.member = "orvsRint_64f", .worst = {kTie}, .ranges = {kOrdinary, kShifted64, kFinite64, kNearZero}, .exact = true},
    {.member = "orvsNearbyInt_32f", .worst = {kTie}, .ranges = {kOrdinary, kShifted32, kFinite32, kNearZero}, .exact = true},
    {.member = "orvsNearbyInt_64f", .worst = {kTie}, .ranges = {kOrdinary, kShifted64, kFinite64, kNearZero}, .exact = true},
    {.member = "orvsModf_32f", .worst = {kTie}, .ranges = {kOrdinary, kShifted32, kFinite32, kNearZero}, .exact = true},
    {.member = "orvsModf_64f", .worst = {kTie}, .ranges = {kOrdinary, kShifted64, kFinite64, kNearZero}, .exact = true})
}  // namespace orv
#endif
