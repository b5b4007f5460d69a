#include "records.h"

#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace orvtest {
namespace {

std::vector<AccuracyRecord> load() {
#define ORV_RANGE(...) Range{{__VA_ARGS__}, Range::Sampled}
#define ORV_EXCLUDE(...) Range{{__VA_ARGS__}, Range::ExcludedPoint}
#define ORV_EXCLUDE_MAGNITUDES(...) Range{{__VA_ARGS__}, Range::ExcludedMagnitudes}
#define ORV_ACCURACY(member, maxUlp, ...) AccuracyRecord{#member, double(maxUlp), {__VA_ARGS__}},
    std::vector<AccuracyRecord> records = {
#include "accuracy_records.inc"
    };
#undef ORV_ACCURACY
#undef ORV_RANGE
#undef ORV_EXCLUDE
#undef ORV_EXCLUDE_MAGNITUDES
    for (const AccuracyRecord& r : records) {
        const ExportInfo* e = findExport(r.member);
        if (!e) throw std::runtime_error("accuracy record of an unknown export " + r.member);
        for (const Range& range : r.ranges)
            if (range.components() != e->inputComponents() || (range.kind != Range::ExcludedPoint && range.bounds.size() % 2))
                throw std::runtime_error("range of " + r.member + " has the wrong number of bounds");
        if (r.ranges.empty() || r.ranges[0].excluded())
            throw std::runtime_error("the first range of " + r.member + " must be its ordinary range");
    }
    return records;
}

// Families whose every member computes one IEEE operation or an exact
// operation: they must be exact.
bool isExactFamily(const ExportInfo& e) {
    static const char* const kExact[] = {"Add", "Sub", "Sqr", "Conj", "Ceil", "Floor", "Round",
                                         "Trunc", "Rint", "NearbyInt", "Modf"};
    for (const char* f : kExact)
        if (e.family == f) return true;
    // Real products and real absolute values are exact; complex ones are not.
    return (e.family == "Mul" || e.family == "Abs") && !e.isComplex();
}

}  // namespace

bool Range::contains(const double* x) const {
    for (int c = 0; c < components(); ++c) {
        if (kind == ExcludedPoint && !(x[c] == bounds[c])) return false;
        // An infinite upper bound takes infinity in.
        const double m = std::fabs(x[c]);
        if (kind != ExcludedPoint && !(m >= lo(c) && (m < hi(c) || std::isinf(hi(c))))) return false;
    }
    return true;
}

bool AccuracyRecord::excludes(const double* in) const {
    for (const Range& r : ranges)
        if (r.excluded() && r.contains(in)) return true;
    return false;
}

const std::vector<AccuracyRecord>& accuracyRecords() {
    static const std::vector<AccuracyRecord> records = load();
    return records;
}

const AccuracyRecord* findRecord(std::string_view member) {
    for (const AccuracyRecord& r : accuracyRecords())
        if (r.member == member) return &r;
    return nullptr;
}

TierBound tierBound(const ExportInfo& e) {
    if (isExactFamily(e)) return {TierBound::Exact, 0};
    if (e.tier == "A24" || e.tier == "A53") return {TierBound::UlpBelow, 1.0};
    if (e.tier == "A21" || e.tier == "A50") return {TierBound::UlpBelow, 4.0};
    if (e.tier == "A11") return {TierBound::BitsAtLeast, 11};
    if (e.tier == "A26") return {TierBound::BitsAtLeast, 26};
    throw std::runtime_error("no tier bound for " + e.name);
}

std::string TierBound::describe() const {
    char buf[64];
    switch (kind) {
        case Exact:
            return "exact";
        case UlpBelow:
            std::snprintf(buf, sizeof buf, "< %g ulp", value);
            return buf;
        case BitsAtLeast:
            std::snprintf(buf, sizeof buf, ">= %g correct bits", value);
            return buf;
    }
    return "?";
}

}  // namespace orvtest
