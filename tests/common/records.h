// The member records (ORV_RECORDS next to each member's code, see
// src/frame/record.h) as the tests, the benchmarks and the report read
// them, and the bound of each accuracy tier.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "exports.h"

namespace orvtest {

// A box of inputs: a low and a high bound for each real input component.
// An exclusion names inputs that the member's arithmetic, as designed,
// takes outside its tier: one input (a value per component), or a box of
// magnitudes (|x| in [lo, hi) for each component), with the reason.  The
// measurement leaves them out, and the family's own tests pin what the
// member does there.
struct Range {
    enum Kind { Sampled, ExcludedPoint, ExcludedMagnitudes };
    std::vector<double> bounds;
    Kind kind = Sampled;
    bool excluded() const { return kind != Sampled; }
    int components() const { return int(kind == ExcludedPoint ? bounds.size() : bounds.size() / 2); }
    bool contains(const double* x) const;  // for exclusions
    double lo(int c) const { return bounds[2 * c]; }
    double hi(int c) const { return bounds[2 * c + 1]; }
};

struct Exclusion : Range {
    std::string reason;
};

struct AccuracyRecord {
    std::string member;
    std::string file;           // the family source that holds it, under src/
    double maxUlp = 0;          // the largest error measured, in ulps
    std::vector<double> worst;  // the input where it was measured
    std::vector<Range> ranges;  // sampled boxes; the first is the ordinary range
    std::vector<Exclusion> exclusions;
    bool exact = false;
    // Why, and by how much at most, a result may depend on its neighbours;
    // empty for the members whose result depends on the element alone.
    std::string positionWhy;
    double positionMaxUlp = 0;
    bool warningsByKind = false;  // group passes write a rejected block's warnings by kind
    // Why a passing block may leave out a warning that its elements give
    // alone; empty for the members whose status is the last warning of the
    // elements computed alone.
    std::string quietBlocksWhy;
    std::string sameAs;           // a member that is one computation with this one
    std::string peerVectors;      // the C function of glibc's test vectors for the reference

    bool positionDependent() const { return !positionWhy.empty(); }
    // Whether an input (its real components) lies in one of the exclusions.
    bool excludes(const double* in) const;

    // For unary members, the exclusions sorted for a binary search: the
    // exhaustive check asks about 2^32 inputs, and a record may exclude a
    // band of thousands of points or boxes.
    std::vector<double> excludedPoints;                        // sorted
    std::vector<std::pair<double, double>> excludedMagnitudes;  // [lo, hi), sorted by lo
    double widestMagnitude = 0;                                // the largest hi - lo among them
    void indexExclusions();
};

// Every record, in the order of the export table.
const std::vector<AccuracyRecord>& accuracyRecords();
const AccuracyRecord* findRecord(std::string_view member);
// The record of an implemented member; fails loudly when it has none.
const AccuracyRecord& recordOf(const ExportInfo& e);

// What a tier promises.
struct TierBound {
    enum Kind { Exact, UlpBelow, BitsAtLeast } kind;
    double value;
    std::string describe() const;
};
TierBound tierBound(const ExportInfo& e);

}  // namespace orvtest
