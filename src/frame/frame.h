// The two call frames every export runs in, and the call's status.
//
//   PointersFirstFrame: pointers, last argument first, then len; the guard;
//                       the body; MXCSR restored before the x87 word.
//   LengthFirstFrame:   len, then pointers, first argument first; the guard;
//                       the body; the x87 word restored before MXCSR.
//
// So a null pointer together with a bad length gives orvStatusNullPointer
// from the first and orvStatusBadLength from the second.  A failed check
// returns before anything is read, written or changed.
//
// An export reads:
//
//   ORV_EXPORT OrvStatus orvsFoo_32f_A21(const Orv32f* src, Orv32f* dst, int32_t len) {
//       return pointersFirstFrame<kGuardNearest>({src, dst}, len, [&](StatusVar& status) {
//           wholeBlockFallback<8>(len, block, element);
//       });
//   }
//
// with the pointers listed in argument order whatever the frame.
//
// The guard's register accesses are memory barriers, so nothing read from
// the arrays is read before the guard is in place and nothing is stored
// after it has gone.  But arithmetic on values that never pass through
// memory (a by-value constant argument, or a product of two literals made
// for its rounding or its flags) may still be moved across them by the
// compiler: such operands go through opaque() inside the body.
#pragma once

#include <initializer_list>

#include "frame/bits.h"
#include "frame/fpstate.h"
#include "orvvm.h"

#define ORV_EXPORT extern "C" ORVVM_API

namespace orv {

// The call's single status.  It starts at orvStatusOk; an element that
// warns writes its code unconditionally, so the last warning written wins.
// Nothing reads it back before the frame returns it.
class StatusVar {
public:
    void write(OrvStatus code) { value_ = code; }
    OrvStatus value() const { return value_; }

private:
    OrvStatus value_ = orvStatusOk;
};

// Raise the IEEE flags that go with a warning by one binary64 operation:
// 0/0 for orvStatusDomain (invalid), 1/0 for orvStatusSingularity (divide
// by zero), the largest double squared for orvStatusOverflow, and the
// double above the smallest normal squared for orvStatusUnderflow.  Any
// other code does nothing.  They never touch the status; the 32 and 64
// forms differ only in who calls them.
void raiseFpFlags32(OrvStatus code);
void raiseFpFlags64(OrvStatus code);

inline bool anyNull(std::initializer_list<const void*> pointers) {
    for (const void* p : pointers)
        if (p == nullptr) return true;
    return false;
}

template <FpModes M, class Body>
inline OrvStatus pointersFirstFrame(std::initializer_list<const void*> pointers, int32_t len,
                                    Body&& body) {
    // Last argument first: all pointer checks give the same code, and no
    // element is touched before all of them have passed.
    for (auto p = pointers.end(); p != pointers.begin();)
        if (*--p == nullptr) return orvStatusNullPointer;
    if (len <= 0) return orvStatusBadLength;
    StatusVar status;
    FpStateGuard guard;
    guard.enter<M>();
    body(status);
    guard.leave<RestoreOrder::MxcsrFirst>();
    return status.value();
}

template <FpModes M, class Body>
inline OrvStatus lengthFirstFrame(std::initializer_list<const void*> pointers, int32_t len,
                                  Body&& body) {
    if (len <= 0) return orvStatusBadLength;
    if (anyNull(pointers)) return orvStatusNullPointer;
    StatusVar status;
    FpStateGuard guard;
    guard.enter<M>();
    body(status);
    guard.leave<RestoreOrder::X87First>();
    return status.value();
}

}  // namespace orv
