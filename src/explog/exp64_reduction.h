// The reduction of the 64-bit exponential, e^x = 2^n 2^(j/2^L) e^r, shared by
// Exp (orvsExp_64f_*) and by Sinh and Cosh, which run it once on |x| for
// both e^|x| and e^-|x|: the shifter, 2^L/ln2, ln2/2^L in one or two parts,
// and the polynomials for e^r - 1 of the A50 and A53 tiers.  The tables of
// 2^(j/2^L) are kExp2Fraction64 and kExp2HeadTail64 (tables/exp2_tables.h).
#pragma once

#include <cstdint>

#include "frame/bits.h"

namespace orv::exp64 {

constexpr double kShifter = doubleFromBits(0x4338000000000000);  // 6755399441055744 = 1.5*2^52

// A26, A50: L = 7.
constexpr double kInvLn2x128 = doubleFromBits(0x40671547652B82FE);  // 184.6649652337873 = 128/ln 2
constexpr uint64_t kBias128 = 0x1FF80;  // 1023*128: (k + bias) << 45 puts n + 1023 in the field
constexpr uint64_t kIndexMask128 = 127;
constexpr double kLn2by128 = doubleFromBits(0x3F762E42FEFA39EF);    // 0.0054152123481245725
constexpr double kLn2by128Hi = doubleFromBits(0x3F762E42FEE00000);  // 0.00541521234663378
constexpr double kLn2by128Lo = doubleFromBits(0x3D7A39EF35793C76);  // 1.4907929134926466e-12
// ---- begin fit_exp64_a50: printed by fit_exp64_a50.sollya; edit the script, not here
// A50: e^r - 1 ~ (((c4 r + c3) r + c2) r) r + r on |r| <= ln2/256; 1 + p
// differs from e^r by 3.04e-16 = 2^-51.55 relative.
constexpr double kA50C2 = doubleFromBits(0x3FDFFFFFFFFFFEB0);  // 0.49999999999998135
constexpr double kA50C3 = doubleFromBits(0x3FC55555B7BAE976);  // 0.16666671248624326
constexpr double kA50C4 = doubleFromBits(0x3FA55555C2A9C0FA);  // 0.041666679394326736
// ---- end fit_exp64_a50

// A53: L = 6.
constexpr double kInvLn2x64 = doubleFromBits(0x40571547652B82FE);  // 92.33248261689366 = 64/ln 2
constexpr uint64_t kBias64 = 0xFFC0;  // 1023*64: (k + bias) << 46 puts n + 1023 in the field
constexpr uint64_t kIndexMask64 = 63;
constexpr double kLn2by64Hi = doubleFromBits(0x3F862E42FEF00000);  // 0.010830424695086549
constexpr double kLn2by64Lo = doubleFromBits(0x3D7473DE6AF278ED);  // 1.162596423439437e-12
// ---- begin fit_exp64_a53: printed by fit_exp64_a53.sollya; edit the script, not here
// e^r - 1 ~ r + (((c5 r + c4) r + c3) r + c2) r^2 on |r| <= ln2/128; 1 + p
// differs from e^r by 1.49e-18 = 2^-59.22 relative.
constexpr double kA53C2 = doubleFromBits(0x3FDFFFFFFFFFD97C);  // 0.49999999999945266
constexpr double kA53C3 = doubleFromBits(0x3FC55555555542A1);  // 0.16666666666653376
constexpr double kA53C4 = doubleFromBits(0x3FA555574BC3A1BE);  // 0.04166672515731616
constexpr double kA53C5 = doubleFromBits(0x3F81111276409C2C);  // 0.008333343728805863
// ---- end fit_exp64_a53

}  // namespace orv::exp64
