// What a user could call instead of an orvvm member, on the same arrays:
//
//   scalar      a C loop over glibc's scalar function or the C operator
//               (scalar_loops.c), as plain C is built: -O2, errno kept
//   scalar-O3   the same loop as a user building for speed builds it:
//               -O3 -fno-math-errno, so sqrt and / vectorise
//   libmvec     glibc's vector functions for SSE (_ZGVbN4v_expf, ...)
//   sleef-sse2  SLEEF's SSE2 functions at the member's accuracy
//   sleef-sse4  SLEEF's SSE4.1 functions at the member's accuracy
//   copy        memcpy of the result array: the memory-bandwidth ceiling of
//               the members that compute an exact operation per element
//
// The vector functions are looked up by name in libmvec.so.1 and
// libsleef.so.3 at run time, so that a function (or a library) that is
// missing simply has no column.  SLEEF's accuracy is chosen from the tier:
// the top tiers (A24, A53, below 1 ulp) take u10, the others u35 (below
// 4 ulp), falling back to the closest variant SLEEF has (u05, u15, or the
// suffix-less exact functions).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "exports.h"
#include "loops.h"

namespace orvbench {

using Call = std::function<void(const OrvBenchArrays&)>;

struct Alternative {
    std::string kind;   // scalar, scalar-O3, libmvec, sleef-sse2, sleef-sse4, copy
    std::string label;  // the function called: expf, _ZGVbN4v_expf, Sleef_expf4_u10sse4, memcpy
    Call run;
};

// The kinds in the order the report shows them.
const std::vector<std::string>& alternativeKinds();

std::vector<Alternative> alternativesFor(const orvtest::ExportInfo& e);

// The member itself, through its symbol resolved once (the harness's
// invoke() looks the symbol up on every call, which would show in the
// timing of short arrays).
Call orvvmCall(const orvtest::ExportInfo& e);

}  // namespace orvbench
