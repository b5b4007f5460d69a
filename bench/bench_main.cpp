// orvvm_bench: times every member the library has, and beside it, on the
// same arrays in the same process, what a user would call instead (glibc's
// scalar functions, libmvec, SLEEF, a copy).  Members come from the
// harness's export table and the library's symbols; their inputs from the
// first (ordinary) range of their accuracy records.  Nothing here names a
// member, so new families are timed as soon as they exist.
//
// Benchmarks are named  <group>/<size>/<input>/<what>:
//   group  the family and type (Exp_32f); members of one family and type
//          whose ordinary ranges are equal share a group and its data
//   input  "ordinary", or "special" with a fraction of special elements
//          ("range<K>" in place of "ordinary" with --orvvm_range=K)
//   what   the member (orvsExp_32f_A24) or <kind>:<function>
//          (scalar:expf, libmvec:_ZGVbN4v_expf, sleef-sse4:Sleef_expf4_u10sse4)
//
// Timing is interleaved: the benchmarks of one group, size and input (the
// members and their alternatives) race on the same arrays in rounds, A B C
// A B C ..., each round starting one runner later, so that a spell of
// contention on a shared machine slows all of them alike instead of
// whichever happened to run then.  Each runner's share of a round is a
// number of calls fixed once to last about --orvvm_round_ms, timed by the
// thread's CPU clock; a short array slides over a pool of distinct values
// (see workload.h).  The ratio of two runners is taken round by round; the
// median over the rounds is reported with its quartiles, and each member's
// rate (elements per nanosecond) is its median over the rounds.  The table
// is printed, and written as TSV with --orvvm_ratios_out.  Google
// Benchmark's console output shows one line per race (its time is the
// whole race, not a figure to compare).  Options of its own:
//   --orvvm_members=REGEX   only members whose name matches
//   --orvvm_sizes=N,N       array lengths (default 1000,1000000)
//   --orvvm_special=F       fraction of special elements of the "special"
//                           input (default 0.01; 0 leaves that input out)
//   --orvvm_special_sizes=N,N
//                           the lengths timed on special input too (default
//                           the smallest: what a rejected block costs shows
//                           best where the arrays sit in cache)
//   --orvvm_range=K         take the inputs from the K-th range of each
//                           record instead of the first (members with
//                           fewer ranges are left out)
//   --orvvm_range=large     take the inputs from the first range of each
//                           record that holds only large arguments (every
//                           component at least 1e6 in magnitude, as the
//                           trigonometric members' 1e6 to 1e20), and leave
//                           out the members without one; the input is
//                           named "large"
//   --orvvm_ratios_out=FILE the ratio table as TSV
//   --orvvm_rounds=N        rounds per race (default 15)
//   --orvvm_round_ms=T      each runner's share of a round (default 1)
//   --orvvm_progress        one line per benchmark done on stderr
//   --orvvm_list            list the benchmarks as TSV and exit
//   --orvvm_repeat=NAME --orvvm_calls=N
//                           run benchmark NAME's call N times inside
//                           orvvm_bench_measured() and exit, for counting
//                           instructions: valgrind --tool=callgrind
//                           --toggle-collect=orvvm_bench_measured ...
//                           NAME "all": every listed benchmark in turn, one
//                           orvvm_bench_measured() each, with the list on
//                           stdout in that order (callgrind's
//                           --dump-after=orvvm_bench_measured then writes one
//                           count per benchmark)
#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "alternatives.h"
#include "exports.h"
#include "records.h"
#include "workload.h"

using namespace orvbench;
using orvtest::ExportInfo;
using orvtest::Range;

extern "C" __attribute__((noinline)) void orvvm_bench_measured(const Call* call, const OrvBenchArrays* arrays,
                                                                 int calls) {
    for (int i = 0; i < calls; ++i) (*call)(*arrays);
}

namespace {

struct Options {
    std::string members;
    std::vector<int32_t> sizes = {1000, 1000000};
    double special = 0.01;
    std::vector<int32_t> specialSizes;  // empty: the smallest of sizes
    std::string ratiosOut;
    int range = 1;  // which range of the records, from 1
    bool large = false;  // the records' large-argument range instead
    bool progress = false;
    bool list = false;
    std::string repeat;
    int calls = 10;
    int rounds = 15;
    double roundMs = 1.0;
};

// Members of one family and type with one ordinary range: one set of data.
struct Group {
    std::string name;
    Range range;
    std::vector<const ExportInfo*> members;
    std::vector<Alternative> alternatives;  // the union over the members, by function
};

enum class Input { Ordinary, Special };

struct Entry {
    std::string name;
    int group;
    int32_t size;
    Input input;
    std::string kind;   // "orvvm" or the alternative's kind
    std::string label;  // the member, or the alternative's function
    const ExportInfo* member = nullptr;
    Call run;
};

std::vector<Group> groups;
std::vector<Entry> entries;
Options options;

// "ordinary" names the records' first range; another range is "range<K>",
// and the large-argument range "large".
std::string inputName(Input in) {
    if (in == Input::Special) return "special";
    if (options.large) return "large";
    return options.range == 1 ? "ordinary" : "range" + std::to_string(options.range);
}

// A range of large arguments: every component stays at or beyond 1e6 in
// magnitude.  The first such range of a record after its ordinary one, or
// none.
constexpr double kLargeArgument = 1e6;
const Range* largeArgumentRange(const orvtest::AccuracyRecord& record) {
    for (size_t k = 1; k < record.ranges.size(); ++k) {
        const Range& r = record.ranges[k];
        if (r.excluded()) continue;
        bool large = true;
        for (int c = 0; c < r.components(); ++c)
            large &= r.lo(c) >= kLargeArgument || r.hi(c) <= -kLargeArgument;
        if (large) return &r;
    }
    return nullptr;
}

// ---- The groups and the benchmarks -----------------------------------------

// The constants a real K member is timed at.
const double kBenchConstants[] = {2.0, 0.5, 3.7, -1.3};

void addToGroup(const ExportInfo* e, const Range& range);

void buildGroups() {
    std::optional<std::regex> only;
    if (!options.members.empty()) only.emplace(options.members);
    for (const ExportInfo* e : orvtest::implementedExports()) {
        if (only && !std::regex_search(e->name, *only)) continue;
        const orvtest::AccuracyRecord* record = orvtest::findRecord(e->name);
        if (!record || record->ranges.empty()) {
            std::fprintf(stderr, "%s: no accuracy record, so no ordinary range: not timed\n", e->name.c_str());
            continue;
        }
        // A real K member is timed at a few fixed constants, since its cost
        // depends on the constant (small integers may be multiplied out):
        // one group per constant, the source from the ordinary range.
        const Range* picked = nullptr;
        if (options.large)
            picked = largeArgumentRange(*record);
        else if (int(record->ranges.size()) >= options.range && !record->ranges[options.range - 1].excluded())
            picked = &record->ranges[options.range - 1];
        if (!picked) continue;
        const Range& chosen = *picked;
        std::vector<Range> ranges = {chosen};
        if (e->shape == orvtest::Shape::K && !e->isComplex()) {
            ranges.clear();
            for (double c : kBenchConstants) {
                Range r = chosen;
                r.bounds[2] = r.bounds[3] = c;
                ranges.push_back(r);
            }
        }
        for (const Range& range : ranges) {
            addToGroup(e, range);
        }
    }
}

void addToGroup(const ExportInfo* e, const Range& range) {
    Group* g = nullptr;
    int sameKind = 0;
    for (Group& candidate : groups) {
        const ExportInfo& first = *candidate.members.front();
        if (first.family != e->family || first.type != e->type) continue;
        ++sameKind;
        if (candidate.range.bounds == range.bounds) g = &candidate;
    }
    if (!g) {
        std::string name = e->family + "_" + e->typeTag;
        if (e->shape == orvtest::Shape::K && !e->isComplex()) {
            char c[32];
            std::snprintf(c, sizeof c, "_y%g", range.lo(1));
            name += c;
        } else if (sameKind) {
            name += "_r" + std::to_string(sameKind + 1);
        }
        groups.push_back({name, range, {}, {}});
        g = &groups.back();
    }
    g->members.push_back(e);
    for (Alternative& a : alternativesFor(*e)) {
        bool known = false;
        for (const Alternative& b : g->alternatives) known |= b.kind == a.kind && b.label == a.label;
        if (!known) g->alternatives.push_back(std::move(a));
    }
}

void buildEntries() {
    std::vector<int32_t> specialSizes = options.specialSizes;
    if (specialSizes.empty()) specialSizes = {*std::min_element(options.sizes.begin(), options.sizes.end())};
    if (options.special <= 0) specialSizes.clear();
    for (int gi = 0; gi < int(groups.size()); ++gi) {
        const Group& g = groups[gi];
        for (int32_t size : options.sizes)
            for (Input in : {Input::Ordinary, Input::Special}) {
                if (in == Input::Special &&
                    std::find(specialSizes.begin(), specialSizes.end(), size) == specialSizes.end())
                    continue;
                const std::string prefix = g.name + "/" + std::to_string(size) + "/" + inputName(in) + "/";
                for (const ExportInfo* m : g.members)
                    entries.push_back({prefix + m->name, gi, size, in, "orvvm", m->name, m, orvvmCall(*m)});
                for (const Alternative& a : g.alternatives) {
                    // On special data only the scalar loop runs beside
                    // orvvm: it shows what special elements cost a plain
                    // loop, against what a rejected block costs orvvm.
                    if (in == Input::Special && a.kind != "scalar") continue;
                    entries.push_back({prefix + a.kind + ":" + a.label, gi, size, in, a.kind, a.label, nullptr, a.run});
                }
            }
    }
}

// One workload at a time: the benchmarks of a group, size and input run one
// after another, so they all see the same arrays.
const Workload& workloadFor(const Entry& entry) {
    static std::unique_ptr<Workload> current;
    static std::tuple<int, int32_t, Input> key{-1, 0, Input::Ordinary};
    const std::tuple<int, int32_t, Input> wanted{entry.group, entry.size, entry.input};
    if (!current || key != wanted) {
        const Group& g = groups[entry.group];
        current.reset();  // free the old arrays before making the new ones
        const double fraction = entry.input == Input::Special ? options.special : 0.0;
        current = std::make_unique<Workload>(Workload::sampled(*g.members.front(), g.range, entry.size, fraction,
                                                               std::hash<std::string>{}(g.name)));
        key = wanted;
    }
    return *current;
}

// ---- Races ------------------------------------------------------------------

// The runners of one group, size and input, and what each measured: its
// time per element in every round, in nanoseconds.
struct Race {
    std::string name;  // <group>/<size>/<input>
    std::vector<const Entry*> runners;
    std::vector<std::vector<double>> nsPerElement;
};
std::vector<Race> races;

void buildRaces() {
    std::map<std::string, size_t> index;
    for (const Entry& e : entries) {
        const std::string name = e.name.substr(0, e.name.rfind('/'));
        auto [it, fresh] = index.emplace(name, races.size());
        if (fresh) races.push_back({name, {}, {}});
        races[it->second].runners.push_back(&e);
    }
}

// The thread's own CPU time: time the scheduler gives to other processes
// does not count.
double threadSeconds() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

void runRace(benchmark::State& state, Race* race) {
    const Workload& w = workloadFor(*race->runners.front());
    std::vector<OrvBenchArrays> windows;
    for (int32_t k = 0; k < w.windows(); ++k) windows.push_back(w.arrays(k));
    size_t next = 0;
    auto call = [&](const Call& run) {
        run(windows[next]);
        next = next + 1 == windows.size() ? 0 : next + 1;
        benchmark::ClobberMemory();
    };
    // Each runner once (lazy binding, first touch), then its calls per
    // round from the time of a burst of at least 0.1 ms.
    const size_t n = race->runners.size();
    std::vector<int> calls(n);
    for (size_t r = 0; r < n; ++r) {
        const Call& run = race->runners[r]->run;
        call(run);
        double seconds = 0;
        int burst = 1;
        for (;; burst *= 4) {
            const double t0 = threadSeconds();
            for (int c = 0; c < burst; ++c) call(run);
            seconds = threadSeconds() - t0;
            if (seconds >= 1e-4 || burst >= (1 << 20)) break;
        }
        calls[r] = std::clamp(int(options.roundMs * 1e-3 * burst / std::max(seconds, 1e-9)), 1, 1 << 22);
    }
    race->nsPerElement.assign(n, {});
    size_t round = 0;
    for (auto _ : state) {
        for (size_t j = 0; j < n; ++j) {
            const size_t r = (j + round) % n;
            const Call& run = race->runners[r]->run;
            const double t0 = threadSeconds();
            for (int c = 0; c < calls[r]; ++c) call(run);
            const double seconds = threadSeconds() - t0;
            race->nsPerElement[r].push_back(seconds * 1e9 / (double(calls[r]) * w.len()));
        }
        ++round;
    }
    if (options.progress)
        std::fprintf(stderr, "progress %zu/%zu %s\n", size_t(race - races.data()) + 1, races.size(),
                     race->name.c_str());
}

// ---- Ratios ---------------------------------------------------------------

// The q-quantile of v (0.5: the median), by linear interpolation.
double quantile(std::vector<double> v, double q) {
    if (v.empty()) return 0;
    std::sort(v.begin(), v.end());
    const double at = q * double(v.size() - 1);
    const size_t lo = size_t(at);
    const size_t hi = std::min(lo + 1, v.size() - 1);
    return v[lo] + (at - double(lo)) * (v[hi] - v[lo]);
}

// ratio = orvvm's rate / the alternative's rate, round by round: above 1
// orvvm is faster.
void writeRatios() {
    std::ostringstream tsv, table;
    tsv << "member\tfamily\ttype\ttier\tsize\tinput\tkind\tfunction\torvvm_elem_per_ns\telem_per_ns\tratio"
           "\tratio_q1\tratio_q3\trounds\tsame_as\n";
    char line[512];
    std::snprintf(line, sizeof line, "\n%-26s %8s %-8s %9s  %s\n", "member", "size", "input", "elem/ns",
                  "orvvm speed / alternative speed: median over the rounds [quartiles]");
    table << line;
    for (const Race& race : races) {
        auto rateOf = [&](size_t r) { return 1.0 / quantile(race.nsPerElement[r], 0.5); };
        for (size_t m = 0; m < race.runners.size(); ++m) {
            const Entry& e = *race.runners[m];
            if (e.kind != "orvvm" || race.nsPerElement[m].empty()) continue;
            const ExportInfo& info = *e.member;
            const double own = rateOf(m);
            const size_t rounds = race.nsPerElement[m].size();
            const orvtest::AccuracyRecord* record = orvtest::findRecord(info.name);
            const std::string sameAs = record ? record->sameAs : "";
            auto row = [&](const std::string& kind, const std::string& label, double rate, const std::string& rest) {
                tsv << info.name << '\t' << info.family << '\t' << info.typeTag << '\t' << info.tier << '\t'
                    << e.size << '\t' << inputName(e.input) << '\t' << kind << '\t' << label << '\t' << own << '\t'
                    << rate << '\t' << rest << '\t' << rounds << '\t' << sameAs << '\n';
            };
            row("orvvm", info.name, own, "\t\t");
            std::snprintf(line, sizeof line, "%-26s %8d %-8s %9.3f ", info.name.c_str(), e.size,
                          inputName(e.input).c_str(), own);
            table << line;
            for (const Alternative& a : alternativesFor(info)) {
                for (size_t r = 0; r < race.runners.size(); ++r) {
                    const Entry& alt = *race.runners[r];
                    if (alt.kind != a.kind || alt.label != a.label || race.nsPerElement[r].empty()) continue;
                    std::vector<double> ratios;
                    for (size_t k = 0; k < rounds; ++k)
                        ratios.push_back(race.nsPerElement[r][k] / race.nsPerElement[m][k]);
                    const double q1 = quantile(ratios, 0.25), med = quantile(ratios, 0.5),
                                 q3 = quantile(ratios, 0.75);
                    row(a.kind, a.label, rateOf(r),
                        std::to_string(med) + '\t' + std::to_string(q1) + '\t' + std::to_string(q3));
                    std::snprintf(line, sizeof line, " %s %.2fx [%.2f-%.2f]", a.kind.c_str(), med, q1, q3);
                    table << line;
                }
            }
            table << '\n';
        }
    }
    std::fputs(table.str().c_str(), stdout);
    if (!options.ratiosOut.empty()) {
        std::ofstream out(options.ratiosOut);
        out << tsv.str();
        if (!out) {
            std::fprintf(stderr, "cannot write %s\n", options.ratiosOut.c_str());
            std::exit(1);
        }
    }
}

// ---- Options ----------------------------------------------------------------

bool takeOption(const char* arg, const char* name, std::string& value) {
    const size_t n = std::strlen(name);
    if (std::strncmp(arg, name, n) != 0) return false;
    if (arg[n] == '=') {
        value = arg + n + 1;
        return true;
    }
    if (arg[n] == '\0') {
        value = "1";
        return true;
    }
    return false;
}

std::vector<int32_t> parseSizes(const std::string& text) {
    std::vector<int32_t> sizes;
    std::stringstream ss(text);
    for (std::string item; std::getline(ss, item, ',');) {
        const long v = std::strtol(item.c_str(), nullptr, 10);
        if (v <= 0 || v > (1L << 28)) {
            std::fprintf(stderr, "bad size %s\n", item.c_str());
            std::exit(2);
        }
        sizes.push_back(int32_t(v));
    }
    return sizes;
}

// Removes this program's own options from argv.
void parseOptions(int& argc, char** argv) {
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        std::string v;
        if (takeOption(argv[i], "--orvvm_members", v))
            options.members = v;
        else if (takeOption(argv[i], "--orvvm_sizes", v))
            options.sizes = parseSizes(v);
        else if (takeOption(argv[i], "--orvvm_special_sizes", v))
            options.specialSizes = parseSizes(v);
        else if (takeOption(argv[i], "--orvvm_special", v))
            options.special = std::strtod(v.c_str(), nullptr);
        else if (takeOption(argv[i], "--orvvm_range", v)) {
            options.large = v == "large";
            options.range = options.large ? 1 : std::max(1, std::atoi(v.c_str()));
        }
        else if (takeOption(argv[i], "--orvvm_ratios_out", v))
            options.ratiosOut = v;
        else if (takeOption(argv[i], "--orvvm_progress", v))
            options.progress = v != "0" && v != "false";
        else if (takeOption(argv[i], "--orvvm_list", v))
            options.list = v != "0" && v != "false";
        else if (takeOption(argv[i], "--orvvm_repeat", v))
            options.repeat = v;
        else if (takeOption(argv[i], "--orvvm_calls", v))
            options.calls = std::max(1, std::atoi(v.c_str()));
        else if (takeOption(argv[i], "--orvvm_rounds", v))
            options.rounds = std::max(1, std::atoi(v.c_str()));
        else if (takeOption(argv[i], "--orvvm_round_ms", v))
            options.roundMs = std::max(1e-3, std::strtod(v.c_str(), nullptr));
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    if (options.special < 0 || options.special > 0.5) {
        std::fprintf(stderr, "--orvvm_special must lie in [0, 0.5]\n");
        std::exit(2);
    }
}

void repeat(const Entry& e) {
    const OrvBenchArrays arrays = workloadFor(e).arrays();
    e.run(arrays);  // once outside the count: lazy binding, first touch
    orvvm_bench_measured(&e.run, &arrays, options.calls);
    std::printf("%s\tcalls %d\telements %d\n", e.name.c_str(), options.calls, arrays.len);
    std::fflush(stdout);
}

int repeatOne() {
    if (options.repeat == "all") {
        for (const Entry& e : entries) repeat(e);
        return 0;
    }
    for (const Entry& e : entries) {
        if (e.name != options.repeat) continue;
        repeat(e);
        return 0;
    }
    std::fprintf(stderr, "no benchmark named %s (see --orvvm_list)\n", options.repeat.c_str());
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    parseOptions(argc, argv);
    buildGroups();
    buildEntries();
    if (options.list) {
        for (const Entry& e : entries)
            std::printf("%s\t%s\t%d\t%s\t%s\t%s\n", e.name.c_str(), groups[e.group].name.c_str(), e.size,
                        inputName(e.input).c_str(), e.kind.c_str(), e.label.c_str());
        return 0;
    }
    if (!options.repeat.empty()) return repeatOne();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    if (entries.empty()) {
        std::fprintf(stderr, "nothing to time: no implemented member matches\n");
        return 1;
    }
    buildRaces();
    for (Race& race : races)
        benchmark::RegisterBenchmark(race.name.c_str(), runRace, &race)
            ->Iterations(options.rounds)
            ->Repetitions(1)
            ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    writeRatios();
    benchmark::Shutdown();
    return 0;
}
