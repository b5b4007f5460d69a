// The reduction of the binary64 logarithms that Ln, Log10 and Log1p share:
// the row of a 513-row table from the top ten fraction bits rounded to
// nine, the fraction as a number in [1, 2), and the exponent relative to an
// edge, as a double.
#pragma once

#include <cstdint>

#include "explog/log_common.h"

namespace orv::logs64 {

inline constexpr uint64_t kFraction64 = 0x000FFFFFFFFFFFFF;
inline constexpr uint64_t kOneBits64 = 0x3FF0000000000000;  // 1.0

// High word at which the exponent moves up by one: fraction 0x7FC00, the
// first whose row is 256.
inline constexpr uint32_t kMovedExponentEdge = 0x3FE7FC00;
inline constexpr uint32_t kPlainExponentEdge = 0x3FF00000;

// Top ten fraction bits of the high word rounded to nine: the row 0..512,
// as the byte offset of the row in a table of Row.
template <class Row>
inline logs::RowPair rowOf512(I32x4 bits) {
    static_assert(sizeof(Row) == 16 || sizeof(Row) == 32);
    constexpr int kShift = sizeof(Row) == 16 ? 7 : 6;  // 11 less log2 of the row size
    return logs::rowNumbers(
        shr32<kShift>(add32(bits & splat32(0x000FFC00), splat32(0x400)) & splat32(0x001FF800)));
}
// The exponent of the high word relative to an edge, as a double.
inline F64x2 exponentFrom(I32x4 bits, uint32_t edge) {
    return logs::highWordIntToDouble(sar32<20>(sub32(bits, splat32(edge))));
}
// m: x with the exponent field of 1.0, in [1, 2).
inline I32x4 fractionAsOne(I32x4 bits) {
    return (bits & splat64(kFraction64)) | splat64(kOneBits64);
}

}  // namespace orv::logs64
