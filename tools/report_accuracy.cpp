// orvvm_accuracy: the accuracy half of the report.  For every member the
// library has (or those matching --members), measured through the accuracy
// harness against MPFR/MPC on the special values, --samples inputs from
// each range of its record and glibc's hard cases when present (less the
// inputs its record excludes, as in the accuracy test), one TSV line as
// soon as the member is done:
//
//   member family type tier bound verdict max_ulp recorded_ulp min_bits
//   samples planned inexact class_mismatches worst
//
// A member gets at most --budget seconds (default 1.5): the samples are
// taken round-robin from their sources (the special values, each range, the
// hard cases) in small chunks, so that a member whose reference is slow
// (MPC's complex tangent, say, can take minutes on one input with a large
// imaginary part) still gets a share of every source; `samples` says how
// many were measured, `planned` how many there were.  A line "# start
// MEMBER" comes before each member, so that a driver can tell which member
// hangs; --skip N leaves out the first N members of the shard, to go on
// after one.
//
// verdict: pass (within its tier and its recorded maximum), above-record
// (within its tier, above the maximum recorded next to its code), FAIL, or
// no-record / no-reference.  --shard I/K takes every K-th member from the
// I-th, so that K processes share the work.
//
// --errors MEMBER [--points N]: the error of each of N inputs (or as many
// as --budget seconds per range allow) from each range of the member's
// record, less the inputs it excludes, for the plot of its error across its
// domain: lines "range in0 [in1 ...] ulp bits", after "# range" lines
// giving each range's bounds.
//
// --build-info: the compiler and flags of this build, for the report.
//
// --records: the member records as Markdown tables (the figures of
// docs/accuracy.md): each member's recorded maximum and worst input, its
// exclusions with their reasons, and its traits.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "exports.h"
#include "measure.h"
#include "records.h"
#include "reference.h"

using namespace orvtest;

namespace {

struct Options {
    int samples = 1024;
    int shard = 0, shards = 1;
    std::string members;
    std::string errorsOf;
    int points = 4000;
    double budget = 1.5;
    int skip = 0;
    bool buildInfo = false;
    bool records = false;
};

void usage() {
    std::fprintf(stderr,
                 "usage: orvvm_accuracy [--samples N] [--budget SECONDS] [--shard I/K] [--skip N] [--members REGEX]\n"
                 "       orvvm_accuracy --errors MEMBER [--points N] [--budget SECONDS]\n"
                 "       orvvm_accuracy --build-info\n"
                 "       orvvm_accuracy --records\n");
    std::exit(2);
}

Options parse(int argc, char** argv) {
    Options o;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        auto value = [&]() -> std::string {
            if (i + 1 >= argc) usage();
            return argv[++i];
        };
        if (a == "--samples")
            o.samples = std::max(1, std::atoi(value().c_str()));
        else if (a == "--shard") {
            if (std::sscanf(value().c_str(), "%d/%d", &o.shard, &o.shards) != 2 || o.shards < 1 || o.shard < 0 ||
                o.shard >= o.shards)
                usage();
        } else if (a == "--members")
            o.members = value();
        else if (a == "--errors")
            o.errorsOf = value();
        else if (a == "--points")
            o.points = std::max(1, std::atoi(value().c_str()));
        else if (a == "--budget")
            o.budget = std::atof(value().c_str());
        else if (a == "--skip")
            o.skip = std::max(0, std::atoi(value().c_str()));
        else if (a == "--build-info")
            o.buildInfo = true;
        else if (a == "--records")
            o.records = true;
        else
            usage();
    }
    return o;
}

// Tabs and newlines in a message would break the TSV.
std::string oneField(std::string s) {
    for (char& c : s)
        if (c == '\t' || c == '\n') c = ' ';
    return s;
}

// The ranges that are sampled, the ordinary one first.
std::vector<const Range*> sampledRanges(const AccuracyRecord& r) {
    std::vector<const Range*> out;
    for (const Range& x : r.ranges) out.push_back(&x);
    return out;
}

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Chunks small enough that the budget is checked often, large enough that
// the call overhead does not count.
constexpr size_t kChunk = 64;

// Measures the samples of each source round-robin, a chunk at a time, until
// all are done or `budget` seconds have passed.
ErrorStats measureWithinBudget(const ExportInfo& e, const std::vector<std::vector<Sample>>& sources,
                               double budget) {
    const Clock::time_point start = Clock::now();
    ErrorStats total;
    std::vector<size_t> next(sources.size(), 0);
    for (bool left = true; left;) {
        left = false;
        for (size_t k = 0; k < sources.size(); ++k) {
            const std::vector<Sample>& src = sources[k];
            if (next[k] >= src.size()) continue;
            const size_t end = std::min(src.size(), next[k] + kChunk);
            const std::vector<Sample> chunk(src.begin() + next[k], src.begin() + end);
            next[k] = end;
            const ErrorStats st = measureErrors(e, chunk, runMember(e, chunk));
            if (total.count == 0)
                total = st;
            else
                total.merge(st);
            left |= next[k] < src.size();
            if (secondsSince(start) > budget) return total;
        }
    }
    return total;
}

void measureMember(const ExportInfo& e, int perRange, double budget) {
    const AccuracyRecord* record = findRecord(e.name);
    const TierBound bound = tierBound(e);
    auto line = [&](const char* verdict, const ErrorStats* st, long planned, const std::string& worst) {
        std::printf("%s\t%s\t%s\t%s\t%s\t%s\t", e.name.c_str(), e.family.c_str(), e.typeTag.c_str(), e.tier.c_str(),
                    bound.describe().c_str(), verdict);
        if (st)
            std::printf("%.4g\t", st->maxUlp);
        else
            std::printf("\t");
        if (record)
            std::printf("%g\t", record->maxUlp);
        else
            std::printf("\t");
        if (st)
            std::printf("%.3g\t%ld\t%ld\t%ld\t%ld\t", st->minBits, st->count, planned, st->inexact,
                        st->classMismatches);
        else
            std::printf("\t\t\t\t\t");
        std::printf("%s\n", oneField(worst).c_str());
        std::fflush(stdout);
    };
    if (!record) return line("no-record", nullptr, 0, "no record next to the code");
    if (!referenceFor(e)) return line("no-reference", nullptr, 0, "no MPFR reference for family " + e.family);

    // The accuracy test's samples, fewer of them: the same seeds, and the
    // same inputs left out where the record excludes them.
    const std::vector<std::vector<Sample>> sources = accuracySamples(e, *record, perRange);
    long planned = 0;
    for (const auto& s : sources) planned += long(s.size());

    const ErrorStats st = measureWithinBudget(e, sources, budget);
    const bool tier = withinTier(e, st);
    const char* verdict = !tier ? "FAIL" : st.maxUlp > record->maxUlp ? "above-record" : "pass";
    line(verdict, &st, planned, st.worst);
}

int errorsAcrossDomain(const Options& o) {
    const ExportInfo* e = findExport(o.errorsOf);
    if (!e || !e->symbol()) {
        std::fprintf(stderr, "%s is not a member the library has\n", o.errorsOf.c_str());
        return 1;
    }
    const AccuracyRecord* record = findRecord(e->name);
    if (!record || !referenceFor(*e)) {
        std::fprintf(stderr, "%s has no accuracy record or no reference\n", e->name.c_str());
        return 1;
    }
    std::printf("# member %s tier %s bound %s recorded %g inputs %d\n", e->name.c_str(), e->tier.c_str(),
                tierBound(*e).describe().c_str(), record->maxUlp, e->inputComponents());
    const std::vector<const Range*> ranges = sampledRanges(*record);
    for (size_t r = 0; r < ranges.size(); ++r) {
        std::printf("# range %zu", r);
        for (double b : ranges[r]->bounds) std::printf(" %.17g", b);
        std::printf("\n");
    }
    uint64_t seed = std::hash<std::string>{}(e->name) ^ 0x9e3779b97f4a7c15ull;
    for (size_t r = 0; r < ranges.size(); ++r) {
        std::vector<Sample> samples = sampleRange(*e, *ranges[r], o.points, seed++);
        std::erase_if(samples, [&](const Sample& x) { return record->excludes(x.in); });
        const Clock::time_point start = Clock::now();
        for (size_t first = 0; first < samples.size() && secondsSince(start) <= o.budget; first += kChunk) {
            const std::vector<Sample> chunk(samples.begin() + first,
                                            samples.begin() + std::min(samples.size(), first + kChunk));
            const std::vector<SampleError> errors = sampleErrors(*e, chunk, runMember(*e, chunk));
            for (size_t i = 0; i < chunk.size(); ++i) {
                std::printf("%zu", r);
                for (int c = 0; c < e->inputComponents(); ++c) std::printf("\t%.17g", chunk[i].in[c]);
                std::printf("\t%.6g\t%.4g\n", errors[i].ulp, errors[i].bits);
            }
        }
        std::fflush(stdout);
    }
    return 0;
}

std::string input(const std::vector<double>& values, bool is64) {
    std::string out;
    for (double v : values) out += (out.empty() ? "" : ", ") + formatValue(v, is64).substr(0, formatValue(v, is64).find(' '));
    return out;
}

std::string box(const Range& r) {
    std::string out;
    char buf[80];
    for (int c = 0; c < r.components(); ++c) {
        std::snprintf(buf, sizeof buf, "%s[%.4g, %.4g]", c ? " × " : "", r.lo(c), r.hi(c));
        out += buf;
    }
    return out;
}

int printRecords() {
    std::printf("| Member | Tier bound | Recorded maximum (ulp) | Worst input | Ordinary range | Traits | File |\n"
                "|---|---|---|---|---|---|---|\n");
    for (const AccuracyRecord& r : accuracyRecords()) {
        const ExportInfo& e = *findExport(r.member);
        std::string traits;
        auto add = [&](const std::string& t) { traits += (traits.empty() ? "" : "; ") + t; };
        if (r.exact) add("exact");
        if (!r.sameAs.empty()) add("one computation with `" + r.sameAs + "`");
        if (r.positionDependent()) add("position-dependent");
        if (r.warningsByKind) add("warnings by kind");
        if (!r.quietBlocksWhy.empty()) add("no warning from passing blocks");
        std::printf("| `%s` | %s | %.7g | %s | %s | %s | `src/%s` |\n", r.member.c_str(), tierBound(e).describe().c_str(),
                    r.maxUlp, input(r.worst, e.is64()).c_str(), box(r.ranges[0]).c_str(), traits.c_str(), r.file.c_str());
    }
    std::printf("\n| Member | Left out of the measurement | Why |\n|---|---|---|\n");
    for (const AccuracyRecord& r : accuracyRecords())
        for (const Exclusion& x : r.exclusions) {
            std::string where;
            if (x.kind == Range::ExcludedPoint)
                where = "the input " + input(x.bounds, findExport(r.member)->is64());
            else
                where = "magnitudes " + box(x);
            std::printf("| `%s` | %s | %s |\n", r.member.c_str(), where.c_str(), x.reason.c_str());
        }
    std::printf("\n| Member | Why its result depends on its neighbours | Largest difference (ulp) |\n|---|---|---|\n");
    for (const AccuracyRecord& r : accuracyRecords())
        if (r.positionDependent())
            std::printf("| `%s` | %s | %g |\n", r.member.c_str(), r.positionWhy.c_str(), r.positionMaxUlp);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const Options o = parse(argc, argv);
    if (o.buildInfo) {
        std::printf("compiler\t%s\nlibrary_flags\t%s\nbench_flags\t%s\nbuild_type\t%s\nlibrary\t%s\n",
                    ORVVM_COMPILER_TEXT, ORVVM_LIBRARY_FLAGS_TEXT, ORVVM_BENCH_FLAGS_TEXT, ORVVM_BUILD_TYPE_TEXT,
                    ORVVM_LIBRARY_PATH);
        return 0;
    }
    if (!o.errorsOf.empty()) return errorsAcrossDomain(o);
    if (o.records) return printRecords();

    std::optional<std::regex> only;
    if (!o.members.empty()) only.emplace(o.members);
    std::vector<const ExportInfo*> mine;
    int index = 0;
    for (const ExportInfo* e : implementedExports()) {
        if (only && !std::regex_search(e->name, *only)) continue;
        if (index++ % o.shards == o.shard) mine.push_back(e);
    }
    std::printf("# members %zu\n", mine.size());
    std::printf("member\tfamily\ttype\ttier\tbound\tverdict\tmax_ulp\trecorded_ulp\tmin_bits\tsamples\tplanned\t"
                "inexact\tclass_mismatches\tworst\n");
    std::fflush(stdout);
    for (size_t i = size_t(o.skip); i < mine.size(); ++i) {
        std::printf("# start %s\n", mine[i]->name.c_str());
        std::fflush(stdout);
        measureMember(*mine[i], o.samples, o.budget);
    }
    return 0;
}
