// The x87 vocabulary: the extended value, its loads, stores and arithmetic,
// and the scoped x87 mode that pins the precision and rounding of one
// stretch of x87 code.
//
// Extended value.  The x87 80-bit format (64-bit significand with an
// explicit leading bit, 15-bit exponent, sign) in a 16-byte slot.  On
// x86-64 GCC's long double is exactly that, and its + - * / compile to the
// x87's fadd, fsub, fmul and fdiv, so ordinary long double arithmetic is the
// vocabulary wherever the operation is all that matters.  Inline assembly
// appears only where the instruction itself matters: the square root
// (GCC's sqrtl keeps a library call for negative arguments unless errno is
// given up, which the library flags do not do) and the rounding store that
// goes straight to memory.
//
// The x87 rounds every operation to the precision and in the direction of
// its control word; a store to binary32 or binary64 rounds once more, in
// that direction, to the destination format.  So x87 code gives the bits it
// was written for only under a known control word: either the member's
// frame guards the word (an x87 guard, for members that run on the x87
// throughout), or a stretch of x87 code inside an SSE member runs in
// inX87Mode, which sets the word for that stretch only.
//
// Barriers.  The compiler does not treat the control word as an input of
// x87 arithmetic, and -frounding-math does not keep it from moving that
// arithmetic across an fldcw.  inX87Mode therefore hands its body arguments
// that went through opaque() after the word was set, and passes the body's
// result through opaque() before the word is restored: the arithmetic
// cannot rise above the entry nor sink below the exit.
#pragma once

#include <cfloat>
#include <cstdint>
#include <cstring>

#include "frame/bits.h"
#include "frame/fpstate.h"

namespace orv {

using Extended = long double;
static_assert(sizeof(Extended) == 16 && alignof(Extended) == 16, "extended value in a 16-byte slot");
static_assert(LDBL_MANT_DIG == 64 && LDBL_MAX_EXP == 16384, "long double is the x87 80-bit format");

// ---- Bits ------------------------------------------------------------------
// The 64-bit significand (leading bit explicit) and the 16-bit word of sign
// and biased exponent (bias 0x3FFF, 0x7FFF for infinities and NaN); the six
// padding bytes of the slot are not part of the value.
struct ExtendedBits {
    uint64_t significand;
    uint16_t signExponent;
};
inline ExtendedBits extendedBits(Extended x) {
    unsigned char slot[16];
    std::memcpy(slot, &x, sizeof slot);
    ExtendedBits b;
    std::memcpy(&b.significand, slot, 8);
    std::memcpy(&b.signExponent, slot + 8, 2);
    return b;
}
inline Extended extendedFromBits(uint64_t significand, uint16_t signExponent) {
    unsigned char slot[16] = {};
    std::memcpy(slot, &significand, 8);
    std::memcpy(slot + 8, &signExponent, 2);
    Extended x;
    std::memcpy(&x, slot, sizeof slot);
    return x;
}

// ---- Loads and stores -------------------------------------------------------
// Loads from binary32 and binary64 are exact (fld), whatever the control
// word: every such value is an extended value.
inline Extended extend(float x) { return Extended(x); }
inline Extended extend(double x) { return Extended(x); }

// One rounding to the destination format, in the control word's direction
// (its precision field plays no part in a store).
inline float roundToFloat(Extended x) { return float(x); }
inline double roundToDouble(Extended x) { return double(x); }
// The same rounding done by the store itself (fstps, fstpl), with no detour
// through the stack and an SSE register: where results go straight to an
// array, this saves the round a store-forwarding stall.
inline void storeRounded(float* p, Extended x) { asm("fstps %0" : "=m"(*p) : "t"(x) : "st"); }
inline void storeRounded(double* p, Extended x) { asm("fstpl %0" : "=m"(*p) : "t"(x) : "st"); }

// ---- Arithmetic ---------------------------------------------------------------
// + - * / are the long double operators.  The square root is fsqrt, one
// rounding at the control word's precision (a named function, not an
// overload of sqrt, so that a double argument never slips into it).
inline Extended sqrtX87(Extended x) {
    asm("fsqrt" : "+t"(x));
    return x;
}

// ---- Scoped x87 mode -----------------------------------------------------------
// body(args...) runs with the precision and rounding fields of the control
// word set to M (the exception masks kept), and the caller's word is back
// on return; the word is written, and restored, only when the caller's
// differs.  Each argument is pinned after the write and the result before
// the restore (see Barriers above), so the body may take its operands as
// extended values and compute freely.  Meant for an ElementPath's stretch
// of x87 code inside a member whose frame guards MXCSR only: the block path
// pays nothing.
template <X87Mode M, class Body, class... Args>
inline auto inX87Mode(Body&& body, Args... args) {
    static_assert(M.target != 0, "a scoped mode sets the word");
    FpStateGuard guard;
    guard.enter<FpModes{kMxcsrNone, M}>();
    auto result = opaque(body(opaque(args)...));
    guard.leave<RestoreOrder::X87First>();
    return result;
}

}  // namespace orv
