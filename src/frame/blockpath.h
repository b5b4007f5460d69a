// BlockPath: the loops of the screened families, and the raw-bit screens.
//
// A family supplies its block size N and two functions of the element index:
//
//   block(i)    computes elements i .. i+N-1 with no branch on their values,
//               screens them, stores the N results if the round passes and
//               returns whether it passed.  (In storeAheadBlock it stores
//               the first half before the verdict.)
//   element(i)  the ElementPath: computes element i alone, knows every
//               argument class and writes the status for a warning.
//
// Rounds run in ascending order, and the tail (the len mod N elements after
// the last round) goes through element(), or through a separate tail
// function where a family's tail is a scalar copy of its block formula.
// Every driver reads a round's inputs before any of its outputs can destroy
// them, so dst may equal a source.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>

#include "frame/simd.h"

namespace orv {

// Rounds of N; a rejected round is handed whole to rejected(i), which must
// finish elements i .. i+N-1.  The other drivers are built on this one.
template <int N, class Block, class Rejected, class Tail>
inline void blockRounds(int32_t len, Block&& block, Rejected&& rejected, Tail&& tail) {
    static_assert(N >= 2 && N <= 128 && (N & (N - 1)) == 0, "N is a power of two");
    int32_t i = 0;
    for (; i <= len - N; i += N)
        if (!block(i)) rejected(i);
    for (; i < len; ++i) tail(i);
}

// WholeBlockFallback: all N elements of a rejected round go through the
// ElementPath in ascending order; the round's partial results are dropped.
template <int N, class Block, class Element, class Tail>
inline void wholeBlockFallback(int32_t len, Block&& block, Element&& element, Tail&& tail) {
    blockRounds<N>(
        len, block,
        [&](int32_t i) {
            for (int32_t j = i; j < i + N; ++j) element(j);
        },
        tail);
}
template <int N, class Block, class Element>
inline void wholeBlockFallback(int32_t len, Block&& block, Element&& element) {
    wholeBlockFallback<N>(len, block, element, element);
}

// DrainFallback: after a rejected round the ElementPath runs element by
// element until the count still to do is a multiple of N; then rounds
// resume.  With len a multiple of N that is exactly the rejected round;
// otherwise it is len mod N elements, and the rest of the round comes back
// in a shifted position.  The count is tested after each element, so the
// drain stops as soon as nothing is left.
template <int N, class Block, class Element, class Tail>
inline void drainFallback(int32_t len, Block&& block, Element&& element, Tail&& tail) {
    int32_t i = 0;
    int32_t left = len;
    while (left >= N) {
        if (block(i)) {
            i += N;
            left -= N;
            continue;
        }
        do {
            element(i++);
            --left;
        } while (left % N != 0);
    }
    while (left-- > 0) tail(i++);
}
template <int N, class Block, class Element>
inline void drainFallback(int32_t len, Block&& block, Element&& element) {
    drainFallback<N>(len, block, element, element);
}

// StoreAheadBlock: block(i) stores some of its results before the screen's
// verdict is known, to keep the pipeline full: by default the first N/2,
// or the elements whose bits are set in kAhead (bit k for element i + k).
// When dst is one of the sources, an in-place call has then overwritten
// those inputs, so the driver keeps a copy of the span from the first to
// the last of them and puts it back on rejection before draining (the
// span's other elements were not written, so their copy is their value).
// A source that dst does not alias is never written: it may be read-only
// memory.
template <int N, uint32_t kAhead = (1u << (N / 2)) - 1, class T, class Block, class Element>
inline void storeAheadBlock(int32_t len, T* dst, std::initializer_list<const T*> sources,
                            Block&& block, Element&& element) {
    static_assert(kAhead != 0 && kAhead < (1ull << N), "elements of the round");
    constexpr int kFirst = __builtin_ctz(kAhead);
    constexpr int kSpan = 32 - __builtin_clz(kAhead) - kFirst;
    bool aliased = false;
    for (const T* s : sources) aliased |= (s == dst);
    if (!aliased) {
        drainFallback<N>(len, block, element);
        return;
    }
    drainFallback<N>(
        len,
        [&](int32_t i) {
            T kept[kSpan];
            std::memcpy(kept, dst + i + kFirst, sizeof kept);
            if (block(i)) return true;
            std::memcpy(dst + i + kFirst, kept, sizeof kept);
            return false;
        },
        element);
}

// PlainRounds: rounds that always stand, with no screen and no fallback
// (members that divide outright, say): round(i) computes and stores
// elements i .. i+N-1, element(i) does each element of the tail.
template <int N, class Round, class Element>
inline void plainRounds(int32_t len, Round&& round, Element&& element) {
    blockRounds<N>(
        len,
        [&](int32_t i) {
            round(i);
            return true;
        },
        [](int32_t) {}, element);
}

// LaneFixup: the round's results all stand, except the lanes whose screen
// bit is set, which are recomputed by the ElementPath from the lowest set
// bit up.  Here block(in, out) reads N inputs from in, stores N results to
// out and returns the screen's lane mask; element(x) maps one value.  An
// in-place call works from a copy of the round's inputs, since the round
// has overwritten them by the time the fix-up runs.
template <int N, class T, class Block, class Element>
inline void laneFixup(const T* src, T* dst, int32_t len, Block&& block, Element&& element) {
    int32_t i = 0;
    for (; i <= len - N; i += N) {
        T kept[N];
        const T* in = src + i;
        if (src == dst) {
            std::memcpy(kept, in, sizeof kept);
            in = kept;
        }
        for (unsigned mask = block(in, dst + i); mask != 0; mask &= mask - 1)
            dst[i + __builtin_ctz(mask)] = element(in[__builtin_ctz(mask)]);
    }
    for (; i < len; ++i) dst[i] = element(src[i]);
}

// PairedGroups: rounds of two groups of four floats, each group screened
// and rejected on its own.  formula(x) gives a group's results with no
// branch, fails(x) its screen's lane mask, rejected(x, out) finishes a
// rejected group (results and warnings) from its inputs x.  The first
// group's results go out before the verdict; its inputs are kept in a
// register, so a rejected group is recomputed from them even when dst is
// src.  After the rounds, one group of four if four remain; the last 1 to
// 3 elements are padded with `padding` (a value that passes the screen and
// warns of nothing) to a group of four that goes the same way, only the
// real lanes being stored.
template <class Formula, class Fails, class Rejected>
inline void pairedGroups(const float* src, float* dst, int32_t len, float padding, Formula&& formula,
                         Fails&& fails, Rejected&& rejected) {
    auto group = [&](F32x4 x, float* out) {
        if (fails(x))
            rejected(x, out);
        else
            store(out, formula(x));
    };
    int32_t i = 0;
    for (; i <= len - 8; i += 8) {
        F32x4 xa = load(src + i), xb = load(src + i + 4);
        F32x4 rb = formula(xb);
        store(dst + i, formula(xa));
        int failA = fails(xa), failB = fails(xb);
        if ((failA | failB) == 0) {
            store(dst + i + 4, rb);
            continue;
        }
        if (failA) rejected(xa, dst + i);
        if (failB)
            rejected(xb, dst + i + 4);
        else
            store(dst + i + 4, rb);
    }
    if (len - i >= 4) {
        group(load(src + i), dst + i);
        i += 4;
    }
    if (i < len) {
        int32_t count = len - i;
        alignas(16) float lanes[4] = {padding, padding, padding, padding};
        std::memcpy(lanes, src + i, sizeof(float) * count);
        group(loadAligned(lanes), lanes);
        std::memcpy(dst + i, lanes, sizeof(float) * count);
    }
}

// ---- BlockScreen forms ----------------------------------------------------
// Each returns the mask of lanes that FAIL the screen (bit k for lane k), so
// a round passes when the result is zero.

// Magnitude: (bits & 0x7FFFFFFF) < limit passes.  A limit at or below
// 0x7F800000 also keeps NaN and infinities out, since they have the largest
// magnitude patterns.  On doubles the test is on the high word.
inline int magnitudeScreen(I32x4 bits, uint32_t limit) {
    I32x4 magnitude = bits & splat32(0x7FFFFFFF);
    return signMask32(cmpGt32(splat32(limit), magnitude)) ^ 0xF;
}
inline int magnitudeScreen(F32x4 x, uint32_t limit) { return magnitudeScreen(bitsOf(x), limit); }
inline int magnitudeScreen(F64x2 a, F64x2 b, uint32_t highLimit) {
    return magnitudeScreen(highWords(a, b), highLimit);
}
inline int magnitudeScreen(F64x2 a, uint32_t highLimit) {
    return magnitudeScreen(highWords(a), highLimit) & 0x3;
}

// Positive normal, binary32: int32(bits - 0x80800000) <= int32(0xFEFFFFFF)
// passes exactly the positive normal finite numbers, with one subtraction
// and one signed compare.
inline constexpr uint32_t kPositiveNormalBias32 = 0x80800000;
inline constexpr uint32_t kPositiveNormalLimit32 = 0xFEFFFFFF;
inline int positiveNormalScreen(F32x4 x) {
    I32x4 shifted = sub32(bitsOf(x), splat32(kPositiveNormalBias32));
    return signMask32(cmpGt32(shifted, splat32(kPositiveNormalLimit32)));
}

// Positive normal, binary64, on the high word:
// int32(high - 0x80100000) <= int32(0xFFDFFFFF).
inline constexpr uint32_t kPositiveNormalBias64 = 0x80100000;
inline constexpr uint32_t kPositiveNormalLimit64 = 0xFFDFFFFF;
inline int positiveNormalScreen(I32x4 highWords4) {
    I32x4 shifted = sub32(highWords4, splat32(kPositiveNormalBias64));
    return signMask32(cmpGt32(shifted, splat32(kPositiveNormalLimit64)));
}
inline int positiveNormalScreen(F64x2 a, F64x2 b) { return positiveNormalScreen(highWords(a, b)); }
inline int positiveNormalScreen(F64x2 a) { return positiveNormalScreen(highWords(a)) & 0x3; }

// The scalar forms, for ElementPaths and tails that repeat a screen.
inline bool passesMagnitude(uint32_t bits, uint32_t limit) { return (bits & 0x7FFFFFFF) < limit; }
inline bool passesPositiveNormal32(uint32_t bits) {
    return int32_t(bits - kPositiveNormalBias32) <= int32_t(kPositiveNormalLimit32);
}
inline bool passesPositiveNormal64(uint32_t high) {
    return int32_t(high - kPositiveNormalBias64) <= int32_t(kPositiveNormalLimit64);
}

}  // namespace orv
