// Helpers shared by the generators of the logarithm tables.
#pragma once

#include <mpfr.h>

namespace gen {

constexpr mpfr_prec_t kWork = 256;  // working precision of every entry

// x rounded to a multiple of 2^-k in the given direction, exactly.
inline void roundToGrid(mpfr_t out, const mpfr_t x, int k, mpfr_rnd_t mode) {
    mpfr_mul_2si(out, x, k, MPFR_RNDN);
    mpfr_rint(out, out, mode);
    mpfr_mul_2si(out, out, -k, MPFR_RNDN);
}

// The natural or the decimal logarithm of y.
inline void logOf(mpfr_t out, const mpfr_t y, bool decimal) {
    if (decimal)
        mpfr_log10(out, y, MPFR_RNDN);
    else
        mpfr_log(out, y, MPFR_RNDN);
}

}  // namespace gen
