// The accuracy records of the members (ORV_ACCURACY lines next to their
// code) and the bound of each accuracy tier.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "exports.h"

namespace orvtest {

// A box of inputs: a low and a high bound for each real input component.
// An exclusion names inputs that the member's arithmetic, as designed,
// takes outside its tier: one input (a value per component), or a box of
// magnitudes (|x| in [lo, hi) for each component).  The measurement leaves
// them out, and the family's own tests pin what the member does there.
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

struct AccuracyRecord {
    std::string member;
    double maxUlp;  // the largest error measured, in ulps, as recorded
    std::vector<Range> ranges;  // the first is the ordinary range
    // Whether an input (its real components) lies in one of the exclusions.
    bool excludes(const double* in) const;
};

const std::vector<AccuracyRecord>& accuracyRecords();
const AccuracyRecord* findRecord(std::string_view member);

// What a tier promises.
struct TierBound {
    enum Kind { Exact, UlpBelow, BitsAtLeast } kind;
    double value;
    std::string describe() const;
};
TierBound tierBound(const ExportInfo& e);

}  // namespace orvtest
