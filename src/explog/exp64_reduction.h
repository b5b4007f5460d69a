// The reduction of e^x on doubles that Exp and Expm1 share:
// x = k ln2/2^L + r with k = round(x 2^L/ln2) found by adding the shifter
// 1.5*2^52, which leaves k in two's complement in the sum's low bits; j = k
// mod 2^L indexes the tables of 2^(j/2^L) (src/tables/exp2_tables.h) and
// n = k div 2^L goes into the exponent field by integer arithmetic.
//   L = 7: one-term step (A26) or a two-part step whose head has its low 20
//          fraction bits zero, so kf times the head is exact (A50 of Exp);
//   L = 6: two-part step, head with 20 low fraction bits zero.
#pragma once

#include <cstdint>

#include "frame/bits.h"

namespace orv::expReduction {

inline constexpr double kShifter = doubleFromBits(0x4338000000000000);  // 6755399441055744 = 1.5*2^52
inline constexpr uint64_t kExponentMask64 = 0x7FF0000000000000;

// L = 7.
inline constexpr double kInvLn2x128 = doubleFromBits(0x40671547652B82FE);  // 184.6649652337873 = 128/ln 2
inline constexpr uint64_t kBias128 = 0x1FF80;  // 1023*128: (k + bias) << 45 puts n + 1023 in the field
inline constexpr uint64_t kIndexMask128 = 127;
inline constexpr double kLn2by128 = doubleFromBits(0x3F762E42FEFA39EF);    // 0.0054152123481245725
inline constexpr double kLn2by128Hi = doubleFromBits(0x3F762E42FEE00000);  // 0.00541521234663378
inline constexpr double kLn2by128Lo = doubleFromBits(0x3D7A39EF35793C76);  // 1.4907929134926466e-12

// L = 6.
inline constexpr double kInvLn2x64 = doubleFromBits(0x40571547652B82FE);  // 92.33248261689366 = 64/ln 2
inline constexpr uint64_t kBias64 = 0xFFC0;  // 1023*64: (k + bias) << 46 puts n + 1023 in the field
inline constexpr uint64_t kIndexMask64 = 63;
inline constexpr double kLn2by64Hi = doubleFromBits(0x3F862E42FEF00000);  // 0.010830424695086549
inline constexpr double kLn2by64Lo = doubleFromBits(0x3D7473DE6AF278ED);  // 1.162596423439437e-12

}  // namespace orv::expReduction
