#include "records.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

#define ORVVM_RECORDS
#include "frame/record.h"

namespace orv::records {
namespace {

// The records as the family sources hand them over, with their file.  A
// function's static, since the registrations run while the program starts.
std::vector<std::pair<std::string, Member>>& registered() {
    static std::vector<std::pair<std::string, Member>> all;
    return all;
}

}  // namespace

Registration::Registration(const char* file, std::initializer_list<Member> members) {
    for (const Member& m : members) registered().emplace_back(file, m);
}

}  // namespace orv::records

namespace orvtest {
namespace {

std::string underSrc(const std::string& path) {
    const size_t at = path.rfind("/src/");
    return at == std::string::npos ? path : path.substr(at + 5);
}

Range boxRange(const orv::records::Box& box) {
    Range r;
    for (const orv::records::Interval& i : box.components) {
        r.bounds.push_back(i.lo);
        r.bounds.push_back(i.hi);
    }
    return r;
}

Exclusion exclusionRange(const orv::records::Exclusion& x) {
    Exclusion r;
    r.reason = x.reason ? x.reason : "";
    if (x.kind == orv::records::Exclusion::Point) {
        r.kind = Range::ExcludedPoint;
        r.bounds = x.point;
    } else {
        r.kind = Range::ExcludedMagnitudes;
        for (const orv::records::Interval& i : x.magnitudes) {
            r.bounds.push_back(i.lo);
            r.bounds.push_back(i.hi);
        }
    }
    return r;
}

// What a record must hold to be read at all; whether it is right is the
// business of the tests.
void check(const AccuracyRecord& r) {
    const ExportInfo* e = findExport(r.member);
    if (!e) throw std::runtime_error(r.file + ": record of an unknown export " + r.member);
    const int nc = e->inputComponents();
    if (r.ranges.empty()) throw std::runtime_error(r.member + " has no ordinary range");
    for (const Range& range : r.ranges)
        if (range.components() != nc) throw std::runtime_error("a range of " + r.member + " has the wrong number of components");
    for (const Exclusion& x : r.exclusions) {
        if (x.components() != nc) throw std::runtime_error("an exclusion of " + r.member + " has the wrong number of components");
        if (x.reason.empty()) throw std::runtime_error("an exclusion of " + r.member + " gives no reason");
    }
    if (!r.worst.empty() && int(r.worst.size()) != nc)
        throw std::runtime_error("the worst input of " + r.member + " has the wrong number of components");
}

std::vector<AccuracyRecord> load() {
    std::vector<AccuracyRecord> records;
    for (const auto& [file, m] : orv::records::registered()) {
        AccuracyRecord r;
        r.member = m.member ? m.member : "";
        r.file = underSrc(file);
        r.maxUlp = m.maxUlp;
        r.worst = m.worst;
        for (const orv::records::Box& b : m.ranges) r.ranges.push_back(boxRange(b));
        for (const orv::records::Exclusion& x : m.exclusions) r.exclusions.push_back(exclusionRange(x));
        r.exact = m.exact;
        if (m.position.why) r.positionWhy = m.position.why;
        r.positionMaxUlp = m.position.maxUlp;
        r.warningsByKind = m.warningsByKind;
        if (m.sameAs) r.sameAs = m.sameAs;
        if (m.peerVectors) r.peerVectors = m.peerVectors;
        if (m.quietBlocks) r.quietBlocksWhy = m.quietBlocks;
        check(r);
        r.indexExclusions();
        records.push_back(std::move(r));
    }
    // In the order of the export table, whatever the order of linking.
    auto index = [](const AccuracyRecord& r) { return findExport(r.member) - allExports().data(); };
    std::stable_sort(records.begin(), records.end(),
                     [&](const AccuracyRecord& a, const AccuracyRecord& b) { return index(a) < index(b); });
    return records;
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

void AccuracyRecord::indexExclusions() {
    if (exclusions.empty() || exclusions.front().components() != 1) return;
    for (const Exclusion& x : exclusions) {
        if (x.kind == Range::ExcludedPoint) {
            excludedPoints.push_back(x.bounds[0]);
        } else {
            excludedMagnitudes.push_back({x.lo(0), x.hi(0)});
            widestMagnitude = std::max(widestMagnitude, x.hi(0) - x.lo(0));
        }
    }
    std::sort(excludedPoints.begin(), excludedPoints.end());
    std::sort(excludedMagnitudes.begin(), excludedMagnitudes.end());
}

bool AccuracyRecord::excludes(const double* in) const {
    if (exclusions.empty()) return false;
    if (exclusions.front().components() != 1) {
        for (const Exclusion& x : exclusions)
            if (x.contains(in)) return true;
        return false;
    }
    // One component: the boxes whose lo lies within the widest box below
    // |x| are the only ones that can hold it.
    const double x = in[0], m = std::fabs(x);
    if (!std::isnan(x) && std::binary_search(excludedPoints.begin(), excludedPoints.end(), x)) return true;
    auto first = std::lower_bound(excludedMagnitudes.begin(), excludedMagnitudes.end(),
                                  std::pair<double, double>{m - widestMagnitude, -INFINITY});
    for (auto it = first; it != excludedMagnitudes.end() && it->first <= m; ++it)
        if (m < it->second || std::isinf(it->second)) return true;
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

const AccuracyRecord& recordOf(const ExportInfo& e) {
    const AccuracyRecord* r = findRecord(e.name);
    if (!r) throw std::runtime_error(e.name + " has no record next to its code");
    return *r;
}

TierBound tierBound(const ExportInfo& e) {
    // Exact: what the record says, and the untiered members (integer
    // rounding), which have no other bound to meet.
    if (const AccuracyRecord* r = findRecord(e.name); r && r->exact) return {TierBound::Exact, 0};
    if (e.tier == "-") return {TierBound::Exact, 0};
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
