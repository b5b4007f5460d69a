// The loops around the exact operations: the overlap-checked loop of the
// real sums, differences, products and squares, and the one-pass form the
// complex sums and differences use.
//
// The result of each element is one IEEE operation, so every path gives the
// same bits; what the loops decide is only which path is safe and fast:
//
//   - up to 6 elements, or any overlap of dst with a source, or an anchor
//     that cannot reach 16-byte alignment: the ascending scalar loop, whose
//     semantics an overlapping call gets exactly (each result may feed the
//     next element);
//   - otherwise: a scalar peel up to the anchor's 16-byte boundary, rounds
//     of 8 elements with the anchor's accesses aligned, and a scalar tail.
//
// No guard: the arithmetic follows the caller's rounding mode, flush-to-zero
// and denormals-are-zero.
#pragma once

#include <cstdint>

#include "frame/simd.h"

namespace orv::plain {

template <class T>
struct Lanes;
template <>
struct Lanes<float> {
    using V = F32x4;
    static constexpr int kCount = 4;
};
template <>
struct Lanes<double> {
    using V = F64x2;
    static constexpr int kCount = 2;
};

template <bool kAligned, class T>
inline typename Lanes<T>::V loadAs(const T* p) {
    if constexpr (kAligned)
        return loadAligned(p);
    else
        return load(p);
}
template <bool kAligned, class T>
inline void storeAs(T* p, typename Lanes<T>::V v) {
    if constexpr (kAligned)
        storeAligned(p, v);
    else
        store(p, v);
}

inline uintptr_t address(const void* p) { return reinterpret_cast<uintptr_t>(p); }

// Two arrays of len elements of s bytes are disjoint when their starts lie
// strictly more than len * s bytes apart.
template <class T>
inline bool disjoint(const T* a, const T* dst, int32_t len) {
    uintptr_t x = address(a), y = address(dst);
    uintptr_t distance = x > y ? x - y : y - x;
    return distance > uintptr_t(len) * sizeof(T);
}

// Elements before the anchor's 16-byte boundary, or -1 when the anchor is
// not a multiple of the element size and so can never get there.
template <class T>
inline int32_t peelCount(const T* anchor) {
    uint32_t a = address(anchor) % 16;
    if (a == 0) return 0;
    if (a % sizeof(T) != 0) return -1;
    return int32_t((16 - a) / sizeof(T));
}

inline constexpr int kRound = 8;  // elements per round: two or four vectors

template <class T, class Op>
inline void scalarLoop(const T* src1, const T* src2, T* dst, int32_t from, int32_t to, Op op) {
    for (int32_t i = from; i < to; ++i) dst[i] = op(src1[i], src2[i]);
}

template <bool kSrc2Aligned, class T, class Op>
inline void roundsB(const T* src1, const T* src2, T* dst, int32_t from, int32_t to, Op op) {
    constexpr int L = Lanes<T>::kCount;
    for (int32_t i = from; i < to; i += kRound)
        for (int g = 0; g < kRound; g += L)
            storeAs<true, T>(dst + i + g,
                             op(loadAs<false>(src1 + i + g), loadAs<kSrc2Aligned>(src2 + i + g)));
}

// Steps from the peel on, for shape B with dst as the anchor: the pass that
// both the real loop and each pass of the complex loop run.
template <class T, class Op>
inline void alignedPassB(const T* src1, const T* src2, T* dst, int32_t len, Op op) {
    int32_t p = peelCount(dst);
    if (p < 0 || len < p + kRound) return scalarLoop(src1, src2, dst, 0, len, op);
    int32_t v = len - ((len - p) & (kRound - 1));
    scalarLoop(src1, src2, dst, 0, p, op);
    if (address(src2 + p) % 16 == 0)
        roundsB<true>(src1, src2, dst, p, v, op);
    else
        roundsB<false>(src1, src2, dst, p, v, op);
    scalarLoop(src1, src2, dst, v, len, op);
}

// Real Add, Sub, Mul.
template <class T, class Op>
inline void overlapCheckedLoopB(const T* src1, const T* src2, T* dst, int32_t len, Op op) {
    constexpr int32_t kShort = 6;
    if (len <= kShort || !disjoint(src2, dst, len) || !disjoint(src1, dst, len))
        return scalarLoop(src1, src2, dst, 0, len, op);
    alignedPassB(src1, src2, dst, len, op);
}

// Sqr: shape U, with src as the anchor; the two loop forms differ in
// whether dst allows aligned stores.
template <bool kDstAligned, class T, class Op>
inline void roundsU(const T* src, T* dst, int32_t from, int32_t to, Op op) {
    constexpr int L = Lanes<T>::kCount;
    for (int32_t i = from; i < to; i += kRound)
        for (int g = 0; g < kRound; g += L)
            storeAs<kDstAligned, T>(dst + i + g, op(loadAs<true>(src + i + g)));
}

template <class T, class Op>
inline void overlapCheckedLoopU(const T* src, T* dst, int32_t len, Op op) {
    constexpr int32_t kShort = 6;
    auto scalar = [&](int32_t from, int32_t to) {
        for (int32_t i = from; i < to; ++i) dst[i] = op(src[i]);
    };
    int32_t p = peelCount(src);
    if (len <= kShort || !disjoint(src, dst, len) || p < 0 || len < p + kRound)
        return scalar(0, len);
    int32_t v = len - ((len - p) & (kRound - 1));
    scalar(0, p);
    if (address(dst + p) % 16 == 0)
        roundsU<true>(src, dst, p, v, op);
    else
        roundsU<false>(src, dst, p, v, op);
    scalar(v, len);
}

// Complex Add and Sub: the arrays as 2 * len real values, no overlap test
// and no short-length branch.  A count of 2 * len that would not fit in 32
// bits is done as two passes of len real values.
template <class T, class Op>
inline void complexPassesB(const T* src1, const T* src2, T* dst, int32_t len, Op op) {
    constexpr int32_t kTwoPassFrom = 0x40000000;
    if (len < kTwoPassFrom) return alignedPassB(src1, src2, dst, 2 * len, op);
    alignedPassB(src1, src2, dst, len, op);
    alignedPassB(src1 + len, src2 + len, dst + len, len, op);
}

// Scratch-pad tail: the rest elements after the last round are copied to
// a 32-byte aligned pad, the empty slots take copies of the first of them,
// the pad goes through one round into a second pad, and only the real
// elements reach dst.  So the tail needs no scalar form of the operation
// and touches nothing outside the arrays.
template <int N, class T, class Round>
inline void scratchPadTail(const T* src, T* dst, int32_t rest, Round round) {
    alignas(32) T in[N];
    alignas(32) T out[N];
    for (int k = 0; k < N; ++k) in[k] = src[k < rest ? k : 0];
    round(in, out);
    for (int k = 0; k < rest; ++k) dst[k] = out[k];
}

// Rounds of N elements with unaligned accesses, then the scratch-pad tail.
template <int N, class T, class Round>
inline void roundsWithPadTail(const T* src, T* dst, int32_t len, Round round) {
    int32_t i = 0;
    for (; i <= len - N; i += N) round(src + i, dst + i);
    if (i < len) scratchPadTail<N>(src + i, dst + i, len - i, round);
}

}  // namespace orv::plain
