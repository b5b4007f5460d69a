// The accuracy records of the members (ORV_ACCURACY lines next to their
// code) and the bound of each accuracy tier.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "exports.h"

namespace orvtest {

// A box of inputs: a low and a high bound for each real input component.
// An excluded range is one input (a value per component) that the member's
// specified arithmetic maps outside its tier, left out of the measurement
// and pinned by the family's own tests instead.
struct Range {
    std::vector<double> bounds;
    bool excluded = false;
    int components() const { return int(excluded ? bounds.size() : bounds.size() / 2); }
    double lo(int c) const { return bounds[2 * c]; }
    double hi(int c) const { return bounds[2 * c + 1]; }
};

struct AccuracyRecord {
    std::string member;
    double maxUlp;  // the largest error measured, in ulps, as recorded
    std::vector<Range> ranges;  // the first is the ordinary range
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
