// The loops of the complex wrappers, written once for every complex kernel:
// one kernel call per element, in ascending order, with the element copied
// to an aligned slot and the result copied out.
//
//   64fc  the element as it stands; the kernel's doubles are the result.
//   32fc  both parts widened exactly to double, the kernel, both parts
//         rounded once to single; if either rounded part is a subnormal
//         float, the smallest normal float is squared and the product
//         dropped, which raises underflow (the stored result is the one
//         rounding, unchanged).
//
// The wrappers run in LengthFirstFrame with the x87 word at 64-bit
// precision and round to nearest (kGuardX87Extended, or with MXCSR held at
// nearest as well for the members that have block paths of their own);
// the kernels assume that word.  Every completed call returns orvStatusOk:
// the kernels tell of NaN, poles and overflow through their results' bits
// and the IEEE flags only.
#pragma once

#include <cstdint>

#include "complex/kernels.h"
#include "frame/bits.h"
#include "frame/frame.h"

namespace orv {

using UnaryKernel = void (*)(Orv64fc*, const Orv64fc*);
using BinaryKernel = void (*)(Orv64fc*, const Orv64fc*, const Orv64fc*);

// The smallest normal binary32, whose square underflows.
inline constexpr float kMinNormal32 = floatFromBits(0x00800000);

inline bool isSubnormal32(float x) {
    uint32_t magnitude = bitsOf(x) & kAbs32;
    return magnitude != 0 && magnitude < 0x00800000;
}

// The parts of an array of complex values as one array of reals, re first.
inline const float* reals(const Orv32fc* p) { return &p->re; }
inline float* reals(Orv32fc* p) { return &p->re; }
inline const double* reals(const Orv64fc* p) { return &p->re; }
inline double* reals(Orv64fc* p) { return &p->re; }

inline Orv64fc widened(Orv32fc z) { return {double(z.re), double(z.im)}; }

// One rounding per part, and underflow raised for a subnormal part.
inline Orv32fc narrowed(const Orv64fc& w) {
    Orv32fc r{float(w.re), float(w.im)};
    if (isSubnormal32(r.re) || isSubnormal32(r.im)) forceEval(opaque(kMinNormal32) * opaque(kMinNormal32));
    return r;
}

// ---- One element -----------------------------------------------------------
// Also the ElementPath of the block-path members, for the lanes their
// screens send out.

template <UnaryKernel K>
inline void kernelElement(const Orv64fc* z, Orv64fc* out) {
    alignas(16) Orv64fc in = *z;
    alignas(16) Orv64fc r;
    K(&r, &in);
    *out = r;
}
template <UnaryKernel K>
inline void kernelElement(const Orv32fc* z, Orv32fc* out) {
    alignas(16) Orv64fc in = widened(*z);
    alignas(16) Orv64fc r;
    K(&r, &in);
    *out = narrowed(r);
}

template <BinaryKernel K>
inline void kernelElement(const Orv64fc* a, const Orv64fc* b, Orv64fc* out) {
    alignas(16) Orv64fc x = *a, y = *b;
    alignas(16) Orv64fc r;
    K(&r, &x, &y);
    *out = r;
}
template <BinaryKernel K>
inline void kernelElement(const Orv32fc* a, const Orv32fc* b, Orv32fc* out) {
    alignas(16) Orv64fc x = widened(*a), y = widened(*b);
    alignas(16) Orv64fc r;
    K(&r, &x, &y);
    *out = narrowed(r);
}

// ---- Wrappers ------------------------------------------------------------------
// Shape U, B (two arrays) and K (a constant passed by value).  The frame
// tests len, then the pointers in argument order.

template <UnaryKernel K, class C>
inline OrvStatus complexWrapper(const C* src, C* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src, dst}, len, [&](StatusVar&) {
        for (int32_t i = 0; i < len; ++i) kernelElement<K>(src + i, dst + i);
    });
}

template <BinaryKernel K, class C>
inline OrvStatus complexWrapper(const C* src1, const C* src2, C* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src1, src2, dst}, len, [&](StatusVar&) {
        for (int32_t i = 0; i < len; ++i) kernelElement<K>(src1 + i, src2 + i, dst + i);
    });
}

template <BinaryKernel K, class C>
inline OrvStatus complexWrapper(const C* src, C constant, C* dst, int32_t len) {
    return lengthFirstFrame<kGuardX87Extended>({src, dst}, len, [&](StatusVar&) {
        // The constant is read once; widening it is exact in any mode.
        const C c = constant;
        for (int32_t i = 0; i < len; ++i) kernelElement<K>(src + i, &c, dst + i);
    });
}

}  // namespace orv
