// extAbs: |x| of an extended value.
//
// The magnitude is x times +1.0 or -1.0, picked from a table by the sign
// bit: a multiplication, not a cleared bit, so that a signalling NaN comes
// out quiet (and raises invalid) as every other routine's NaN does.  A NaN
// keeps its payload; its sign is cleared afterwards, since the product
// keeps the sign of the NaN operand.  Exact for every other value.
#ifndef ORVVM_RECORDS

#include "complex/extended.h"

namespace orv {

namespace {
alignas(16) constexpr Extended kSignFactor[2] = {1.0L, -1.0L};
constexpr uint16_t kSignBit = 0x8000;
}  // namespace

void extAbs(Extended* r, const Extended* x) {
    const ExtendedBits b = extendedBits(*x);
    const Extended m = *x * kSignFactor[b.signExponent >> 15];
    const ExtendedBits mb = extendedBits(m);
    *r = extendedFromBits(mb.significand, uint16_t(mb.signExponent & ~kSignBit));
}

}  // namespace orv

#endif  // ORVVM_RECORDS
