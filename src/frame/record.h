// Member records: what the tests, the benchmarks and the report know of a
// member, written once, in the member's own file, after its exports, from
// the file's own named constants.
//
// A family file is compiled twice.  The library compiles it without
// ORVVM_RECORDS and gets the code and no record; the test support compiles
// it with ORVVM_RECORDS and gets the records and no code.  So a family file
// ends:
//
//   #ifndef ORVVM_RECORDS
//   ... screens, kernels, element path, exports ...
//   #else
//   namespace orv {
//   ORV_RECORDS(
//       {.member = "orvsExp_32f_A21",
//        .maxUlp = 1.97, .worst = {-87.1234f},
//        .ranges = {symmetric(floatFromBits(kScreen21)), Interval{-104.0, -87.3}}},
//       {.member = "orvsExp_32f_A24", ...})
//   }  // namespace orv
//   #endif
//
// Everything above the #ifndef (includes, named constants) is seen by
// both, so a record names the limits the code uses instead of restating
// them as decimals.  The family's includes of frame headers stay outside
// the #ifndef; record.h itself is included in the #else branch.  Nothing
// here is ever part of the library binary.
//
// The fields of a Member, in the order a designated initializer takes them:
//
//   member      the exported name.
//   maxUlp      the largest error the accuracy test measured, in ulps of
//               the correctly rounded result (0.5 for one IEEE rounding, 0
//               for an exact operation).  The tests assert it on top of the
//               tier's bound.  Stated only here.
//   worst       the input (one value per real input component, in argument
//               order, the K shape's constant last) where it was measured.
//   ranges      input boxes to sample, one Interval per real input
//               component; the first is the member's ordinary range, which
//               the benchmarks, the report and the position check use too.
//               A Box converts from a single Interval for unary members.
//   exclusions  inputs where the member's arithmetic, as designed, leaves
//               its tier, each with its reason; the measurement leaves them
//               out and the family's tests pin what the member does there.
//   exact       the member must give the correctly rounded result exactly
//               (one IEEE operation, or an exact one).
//   position    why, and by how much at most, an element's result may
//               depend on its neighbours; empty for the members whose
//               result depends only on the element (all but a few).
//   warningsByKind  a rejected block writes its warnings in group passes,
//               by kind rather than by element.
//   sameAs      another member that is one computation with this one: the
//               suites hold the two to equal bits.
//   peerVectors the C function whose correctly rounded test vectors (glibc's
//               file of that name) check the member's reference, if any.
//   quietBlocks why a block that passes the screen may report no warning
//               for an element that warns alone (the results are the same
//               in every path; only the status is not written there).
#pragma once

#ifndef ORVVM_RECORDS
#error "member records are compiled into the test support only"
#endif

#include <cfloat>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "frame/bits.h"

namespace orv::records {

struct Interval {
    double lo, hi;
};

// [-a, a], the usual shape of an ordinary range around a screen limit.
constexpr Interval symmetric(double a) { return {-a, a}; }

// Shared named ranges: the whole finite line of each type, and its
// positive half.  The ranges of a family's own limits are built from its
// named constants, as symmetric(floatFromBits(kScreen21)).
inline constexpr Interval kFinite32{-FLT_MAX, FLT_MAX};
inline constexpr Interval kFinite64{-DBL_MAX, DBL_MAX};
inline constexpr Interval kPositiveFinite32{0.0, FLT_MAX};
inline constexpr Interval kPositiveFinite64{0.0, DBL_MAX};

// The ordinary range of the arithmetic members, and the values below the
// smallest normal (denormals, zeros) of each type, both signs or positive.
inline constexpr Interval kOrdinary{-1e3, 1e3};
inline constexpr Interval kBelowNormal32 = symmetric(FLT_MIN);
inline constexpr Interval kBelowNormal64 = symmetric(DBL_MIN);
inline constexpr Interval kPositiveNormal32{FLT_MIN, FLT_MAX};
inline constexpr Interval kPositiveNormal64{DBL_MIN, DBL_MAX};
inline constexpr Interval kPositiveDenormal32{FLT_TRUE_MIN, FLT_MIN};
inline constexpr Interval kPositiveDenormal64{DBL_TRUE_MIN, DBL_MIN};
// Every magnitude, infinity included: for a component an exclusion does
// not restrict.
inline constexpr Interval kAllMagnitudes{0.0, __builtin_inf()};

// One interval per real input component.
struct Box {
    std::vector<Interval> components;
    Box(Interval unary) : components{unary} {}
    Box(std::initializer_list<Interval> all) : components(all) {}
};

// The same interval in each of n components: both operands of a binary
// member, or both parts of a complex argument.
inline Box repeated(Interval each, int n) {
    Box box(each);
    box.components.assign(n, each);
    return box;
}

// An input left out of the measurement: one point (a value per component),
// or a box of magnitudes (|x| in [lo, hi) per component).
struct Exclusion {
    enum Kind { Point, Magnitudes };
    Kind kind;
    std::vector<double> point;
    std::vector<Interval> magnitudes;
    const char* reason;
};
inline Exclusion excludePoint(std::initializer_list<double> point, const char* reason) {
    return {Exclusion::Point, point, {}, reason};
}
inline Exclusion excludeMagnitudes(std::initializer_list<Interval> magnitudes, const char* reason) {
    return {Exclusion::Magnitudes, {}, magnitudes, reason};
}

// Why an element's result may depend on its neighbours, and the largest
// difference in ulps measured between the element alone and inside a
// passing block.
struct PositionDependence {
    const char* why = nullptr;
    double maxUlp = 0;
};

struct Member {
    const char* member;
    double maxUlp = 0;
    std::vector<double> worst;
    std::vector<Box> ranges;
    std::vector<Exclusion> exclusions;
    bool exact = false;
    PositionDependence position;
    bool warningsByKind = false;
    const char* sameAs = nullptr;
    const char* peerVectors = nullptr;
    const char* quietBlocks = nullptr;
};

// Hands a file's records to the test support (defined there).
struct Registration {
    Registration(const char* file, std::initializer_list<Member> members);
};

}  // namespace orv::records

// The records of one family file.
#define ORV_RECORDS(...)                                                                         \
    namespace {                                                                                  \
    using namespace ::orv::records;                                                              \
    const ::orv::records::Registration orvRecordsOfThisFile{__FILE__, {__VA_ARGS__}};            \
    }
