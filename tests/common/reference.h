// Correctly rounded references: each family's function evaluated with MPFR
// (MPC for complex arguments) at a precision far above the element's, so
// that rounding the reference to the element's format gives the correctly
// rounded result and its distance to a computed result gives the error.
#pragma once

#include <mpfr.h>

#include "exports.h"

namespace orvtest {

// in[k]: the member's real input components in argument order (for K the
// constant comes last); out[k]: its output components, initialised by the
// caller at `precision` bits.
using ReferenceFn = void (*)(mpfr_ptr* out, mpfr_srcptr* in);

struct Reference {
    ReferenceFn fn = nullptr;
    mpfr_prec_t precision = 0;
    explicit operator bool() const { return fn != nullptr; }
};

// The reference of a member's family, or an empty one if none is known.
Reference referenceFor(const ExportInfo& e);

}  // namespace orvtest
