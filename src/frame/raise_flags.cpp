// raiseFpFlags32 and raiseFpFlags64: the IEEE flags that go with a warning,
// raised by one real binary64 operation.  The operands pass through
// opaque() so that the compiler can neither fold the operation nor drop it,
// and the result is stored to a volatile scratch slot so that the processor
// performs it.
#include "frame/frame.h"

namespace orv {
namespace {

inline void raiseFlagsOf(OrvStatus code) {
    double a, b;
    switch (code) {
        case orvStatusDomain:  // 0/0: invalid
            a = 0.0, b = 0.0;
            break;
        case orvStatusSingularity:  // 1/0: divide by zero
            a = 1.0, b = 0.0;
            break;
        case orvStatusOverflow:  // largest double squared: overflow, inexact
            a = b = doubleFromBits(0x7FEFFFFFFFFFFFFF);
            break;
        case orvStatusUnderflow:  // next double above the smallest normal, squared: underflow, inexact
            a = b = doubleFromBits(0x0010000000000001);
            break;
        default:
            return;
    }
    volatile double scratch;
    if (code == orvStatusDomain || code == orvStatusSingularity)
        scratch = opaque(a) / opaque(b);
    else
        scratch = opaque(a) * opaque(b);
    (void)scratch;
}

}  // namespace

void raiseFpFlags32(OrvStatus code) { raiseFlagsOf(code); }
void raiseFpFlags64(OrvStatus code) { raiseFlagsOf(code); }

}  // namespace orv
