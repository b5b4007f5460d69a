// Every export called from several threads at once, each thread in its own
// floating-point control state, on sources that all threads share and that
// no one may write (they sit on read-only pages).  A call must behave as it
// does alone in the same state: same results, same status, and the thread's
// MXCSR and x87 control word as they were.  Under ThreadSanitizer this also
// proves that no call touches shared mutable data.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "exports.h"
#include "measure.h"
#include "records.h"
#include "testing.h"

namespace orvtest {
namespace {

// The control states of the threads: the default, directed rounding with
// flush modes and a short x87 precision, so that guarded and unguarded
// members both meet states they must ignore or follow.
struct ThreadState {
    uint32_t mxcsr;
    uint16_t x87;
};
constexpr ThreadState kStates[] = {
    {kMxcsrDefault, kX87Default},
    {kMxcsrDefault | kMxcsrRoundUp | kMxcsrFtz, kX87Single | 0x0800},
    {kMxcsrDefault | kMxcsrRoundDown | kMxcsrDaz, kX87Double | 0x0400},
    {kMxcsrDefault | kMxcsrRoundToZero | kMxcsrFtz | kMxcsrDaz, kX87Default | 0x0C00},
};
constexpr int kThreads = int(std::size(kStates));
constexpr int kLen = 203;      // blocks, a rejected block or two, and a tail
constexpr int kRounds = 6;     // calls per member and thread

struct Outcome {
    OrvStatus status = orvStatusOk;
    std::vector<unsigned char> dst1, dst2;
    uint32_t mxcsrAfter = 0;
    uint16_t x87After = 0;
    bool operator==(const Outcome&) const = default;
};

// One call in the given state, with private destinations; the state is set
// and read back around the call alone.
Outcome callInState(const ExportInfo& e, const unsigned char* src1, const unsigned char* src2,
                    const std::vector<Sample>& samples, const ThreadState& state) {
    Outcome o;
    const size_t bytes = size_t(kLen) * e.dstElemSize();
    o.dst1.assign(bytes, 0xA5);
    o.dst2.assign(bytes, 0xA5);
    CallArgs a;
    a.src1 = src1;
    a.src2 = src2;
    a.dst1 = o.dst1.data();
    a.dst2 = o.dst2.data();
    a.len = kLen;
    setConstant(e, samples, a);
    FpEnvScope scope(state.mxcsr, state.x87);
    o.status = invoke(e, a);
    o.mxcsrAfter = readMxcsr() & ~kMxcsrFlags;
    o.x87After = readX87();
    return o;
}

// Ordinary values of the member with a few special ones among them, the K
// shape's constant the same for all.
std::vector<Sample> inputs(const ExportInfo& e) {
    const AccuracyRecord* r = findRecord(e.name);
    std::vector<Sample> s = r ? sampleRange(e, r->ranges[0], kLen, 11) : std::vector<Sample>(kLen, Sample{{1.5, 0.75, 1.25, -0.5}});
    const std::vector<Sample> specials = specialSamples(e);
    const int n = e.shape == Shape::K ? e.inputComponents() / 2 : e.inputComponents();
    for (int i = 5; i < kLen; i += 37)
        for (int c = 0; c < n; ++c) s[i].in[c] = specials[(i * 7) % specials.size()].in[c];
    return s;
}

TEST(Threads, EveryExportAloneAndConcurrentAgree) {
    struct Case {
        const ExportInfo* e;
        std::vector<Sample> samples;
        std::unique_ptr<ReadOnlyCopy<unsigned char>> src1, src2;
        Outcome alone[kThreads];
    };
    std::vector<Case> cases;
    for (const ExportInfo* e : implementedExports()) {
        Case c{e, inputs(*e), nullptr, nullptr, {}};
        c.src1 = std::make_unique<ReadOnlyCopy<unsigned char>>(sourceBytes(*e, c.samples, 0));
        c.src2 = std::make_unique<ReadOnlyCopy<unsigned char>>(sourceBytes(*e, c.samples, 1));
        for (int t = 0; t < kThreads; ++t)
            c.alone[t] = callInState(*e, c.src1->data(), c.src2->data(), c.samples, kStates[t]);
        cases.push_back(std::move(c));
    }
    ASSERT_FALSE(cases.empty());

    // mismatches[t] counts the calls of thread t that differed from the
    // call made alone in the same state; the first is described.
    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::string> first(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round)
                for (size_t k = 0; k < cases.size(); ++k) {
                    // Threads walk the members from different starting points,
                    // so that different members overlap in time.
                    const Case& c = cases[(k + t * cases.size() / kThreads) % cases.size()];
                    Outcome o = callInState(*c.e, c.src1->data(), c.src2->data(), c.samples, kStates[t]);
                    if (!(o == c.alone[t]) && mismatches[t]++ == 0) first[t] = c.e->name;
                }
        });
    for (std::thread& th : threads) th.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(mismatches[t], 0) << "thread " << t << " first differed in " << first[t];

    // The states themselves: each call left its thread's registers as set.
    for (const Case& c : cases)
        for (int t = 0; t < kThreads; ++t) {
            EXPECT_EQ(c.alone[t].mxcsrAfter, kStates[t].mxcsr) << c.e->name;
            EXPECT_EQ(c.alone[t].x87After, kStates[t].x87) << c.e->name;
        }
}

}  // namespace
}  // namespace orvtest
