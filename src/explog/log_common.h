// Machinery shared by the real logarithms (Ln and Log10, both widths): the
// table-row gathers, the classes of a non-ordinary argument, the NaN rules
// and the driver that puts a member into its frame.
//
// A member is a struct that names its block size, its kernel (a function of
// one vector, with a variant for an argument that the ElementPath scaled up
// from a denormal), the scaling, its NaN for negative input and its rule for
// NaN input.  The ElementPath of an ordinary argument runs the very kernel
// of the block on a vector filled with that argument, so a result never
// depends on where in the array its element stands.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/bits.h"
#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/simd.h"
#include "tables/log_tables_32f.h"
#include "tables/log_tables_64f.h"

namespace orv::logs {

// ---- Table rows ------------------------------------------------------------

// The rows of four float lanes, read one 16-byte row each and transposed
// into heads, tails and reciprocals.  offsets holds the rows' byte offsets
// (row number times 16), which the row formulas give with one shift less
// than the row numbers and which address the table with no scaling.
struct Rows32 {
    F32x4 th, tt, rcp;
};
// The row whose byte offset is in 32-bit lane `lane` of offsets.
template <int lane>
inline F32x4 rowAt(const LogRow32* table, I32x4 offsets) {
    uint32_t offset = laneAt<lane>(offsets);
    return loadAligned(reinterpret_cast<const float*>(reinterpret_cast<const char*>(table) + offset));
}
inline Rows32 gatherRows(const LogRow32* table, I32x4 offsets) {
    F32x4 r0 = rowAt<0>(table, offsets), r1 = rowAt<1>(table, offsets);
    F32x4 r2 = rowAt<2>(table, offsets), r3 = rowAt<3>(table, offsets);
    transpose(r0, r1, r2, r3);
    return {r0, r1, r2};
}

// Byte offsets of the rows of two double lanes, computed in the high words
// (32-bit lanes 1 and 3).
struct RowPair {
    uint32_t i0, i1;
};
inline RowPair rowNumbers(I32x4 highLanes) {
    return {laneAt<1>(highLanes), laneAt<3>(highLanes)};
}
// The row at a byte offset from the table's start.
template <class Row>
inline const Row& rowAt(const Row* table, uint32_t offset) {
    return *reinterpret_cast<const Row*>(reinterpret_cast<const char*>(table) + offset);
}

struct Rows26 {
    F64x2 rcp, t;
};
inline Rows26 gatherRows(const LogRow26* table, RowPair i) {
    const LogRow26 &r0 = rowAt(table, i.i0), &r1 = rowAt(table, i.i1);
    F64x2 a = loadAligned(&r0.rcp), b = loadAligned(&r1.rcp);
    return {unpackLo(a, b), unpackHi(a, b)};
}

struct Rows53 {
    F64x2 rcp, th, tt;
};
inline Rows53 gatherRows(const LogRow53* table, RowPair i) {
    const LogRow53 &r0 = rowAt(table, i.i0), &r1 = rowAt(table, i.i1);
    F64x2 a = loadAligned(&r0.rcp), b = loadAligned(&r1.rcp);
    F64x2 c = loadAligned(&r0.tt), d = loadAligned(&r1.tt);
    return {unpackLo(a, b), unpackHi(a, b), unpackLo(c, d)};
}

// A small signed integer held in the high word of each double lane (32-bit
// lanes 1 and 3; lanes 0 and 2 are ignored), as a double: added to the high
// word of 1.5*2^20, whose high-word unit is 1, and the constant taken off
// again.  Both steps are exact for |e| < 2^19.
inline constexpr uint64_t kExponentShifter = 0x4138000000000000;  // 1572864.0
inline F64x2 highWordIntToDouble(I32x4 e) {
    I32x4 highOnly = e & splat64(0xFFFFFFFF00000000);
    return asF64x2(add32(splat64(kExponentShifter), highOnly)) - splatBits64(kExponentShifter);
}

// ---- Non-ordinary arguments ------------------------------------------------

// What a NaN argument gives.
enum class NanRule {
    kTimes2p126,       // x*2^126: the NaN made quiet (a signalling one raises invalid)
    kKeep,             // x bit for bit, no flag
    kKeepThenTimesOne  // x bit for bit; then x*1.0, so a signalling NaN raises invalid
};
// What the singularity and the domain warnings come with.
enum class WarnFlags {
    kNone,  // the constant result only
    kRaise  // raiseFpFlags64 with the warning's code
};

// x*1.0 evaluated after the store before it, for its flags only.
template <class T>
inline void timesOneAfterStore(T x) {
    memoryBarrier();
    forceEval(opaque(x) * T(1));
}

// The ElementPath, shared by all members of one width.  M gives:
//   kernel<false>(v)   the block kernel;
//   kernel<true>(v)    the kernel for a denormal scaled up by scaleDenormal,
//                      which takes the scale's logarithm off;
//   scaleDenormal(x)   the scaled argument, normal and positive (or +0 in
//                      A26 when the caller's denormals-are-zero reads x as
//                      zero; the other members run with that mode cleared);
//   kDomainNaN, kNan, kWarnFlags.
template <class M, class T, class Bits>
inline void logElement(const T* in, T* out, StatusVar& status) {
    constexpr int kFractionBits = sizeof(T) == 4 ? 23 : 52;
    constexpr Bits kAbs = ~Bits(0) >> 1;
    constexpr Bits kMinNormal = Bits(1) << kFractionBits;
    constexpr Bits kInf = kAbs & ~(kMinNormal - 1);

    const T x = *in;
    const Bits b = std::bit_cast<Bits>(x);
    const Bits magnitude = b & kAbs;
    auto warn = [&](T result, OrvStatus code) {
        *out = result;
        status.write(code);
        if constexpr (M::kWarnFlags == WarnFlags::kRaise) raiseFpFlags64(code);
    };
    const T minusInf = std::bit_cast<T>(Bits(kInf | ~kAbs));

    if (b - kMinNormal < kInf - kMinNormal) {  // positive normal: the block's formula
        *out = lane0(M::template kernel<false>(splat(x)));
    } else if (magnitude == 0) {  // +0 or -0: the pole
        warn(minusInf, orvStatusSingularity);
    } else if (magnitude > kInf) {  // NaN, either sign
        if constexpr (M::kNan == NanRule::kTimes2p126) {
            *out = opaque(x) * T(0x1p126);
        } else {
            *out = x;
            if constexpr (M::kNan == NanRule::kKeepThenTimesOne) timesOneAfterStore(x);
        }
    } else if (b == kInf) {  // +inf
        *out = x;
    } else if (magnitude != b) {  // negative, finite or -inf
        warn(std::bit_cast<T>(Bits(M::kDomainNaN)), orvStatusDomain);
    } else {  // positive denormal
        T scaled = M::scaleDenormal(x);
        if (scaled == T(0))
            warn(minusInf, orvStatusSingularity);
        else
            *out = lane0(M::template kernel<true>(splat(scaled)));
    }
}

// ---- Blocks ------------------------------------------------------------------

// One round of 4 or 8 floats, or of 4 doubles: read all inputs, screen them,
// and only if all pass compute and store the results.
template <class M>
inline bool logBlock(const float* in, float* out) {
    if constexpr (M::kBlock == 4) {
        F32x4 a = load(in);
        if (positiveNormalScreen(a) != 0) return false;
        store(out, M::template kernel<false>(a));
    } else {
        static_assert(M::kBlock == 8);
        F32x4 a = load(in), b = load(in + 4);
        if ((positiveNormalScreen(a) | positiveNormalScreen(b)) != 0) return false;
        store(out, M::template kernel<false>(a));
        store(out + 4, M::template kernel<false>(b));
    }
    return true;
}
template <class M>
inline bool logBlock(const double* in, double* out) {
    static_assert(M::kBlock == 4);
    F64x2 a = load(in), b = load(in + 2);
    if (M::screen(a, b) != 0) return false;
    store(out, M::template kernel<false>(a));
    store(out + 2, M::template kernel<false>(b));
    return true;
}

// ---- The frames ----------------------------------------------------------------

// Binary32 members: PointersFirstFrame, guard nearest; a rejected round is
// drained element by element until the count left is a multiple of N.
template <class M>
inline OrvStatus logMember(const float* src, float* dst, int32_t len) {
    return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
        drainFallback<M::kBlock>(
            len, [&](int32_t i) { return logBlock<M>(src + i, dst + i); },
            [&](int32_t i) { logElement<M, float, uint32_t>(src + i, dst + i, status); });
    });
}

// Binary64 members: a rejected round goes whole through the ElementPath.
// A50 and A53 run in PointersFirstFrame with the guard nearest; A26 in
// LengthFirstFrame with only the x87 word guarded (53-bit precision, round
// to nearest), the MXCSR left as the caller set it.
template <class M>
inline void logRounds64(const double* src, double* dst, int32_t len, StatusVar& status) {
    wholeBlockFallback<M::kBlock>(
        len, [&](int32_t i) { return logBlock<M>(src + i, dst + i); },
        [&](int32_t i) { logElement<M, double, uint64_t>(src + i, dst + i, status); });
}
template <class M>
inline OrvStatus logMember(const double* src, double* dst, int32_t len) {
    if constexpr (M::kLengthFirstX87Double) {
        return lengthFirstFrame<kGuardX87Double>(
            {src, dst}, len, [&](StatusVar& status) { logRounds64<M>(src, dst, len, status); });
    } else {
        return pointersFirstFrame<kGuardNearest>(
            {src, dst}, len, [&](StatusVar& status) { logRounds64<M>(src, dst, len, status); });
    }
}

}  // namespace orv::logs
