// The conformance suite: what every export owes its callers, checked for
// every export the library has, driven by the export table.  A new family
// joins by existing.
//
//   - argument checks in the order of the member's frame, nothing written
//     on a failed check;
//   - MXCSR and the x87 control word exactly restored, and results of the
//     guarded members independent of the caller's state;
//   - a status that is one of the member's warnings, the last one written;
//   - in-place calls, arrays at every legal misalignment, and no access
//     outside the arrays (each array against a PROT_NONE page at its end,
//     and at its start);
//   - results that depend on an element's value, not on where it stands,
//     unless the member's record says why and by how much;
//   - equal bits from the members that are one computation.
#include <gtest/gtest.h>
#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <random>

#include "exports.h"
#include "measure.h"
#include "records.h"
#include "testing.h"

namespace orvtest {
namespace {

// ---- Inputs -------------------------------------------------------------

// Ordinary values of the member (from its recorded ordinary range) mixed
// with the special values of its type: zeros, denormals, limits, infinities
// and NaN, so that blocks pass and fail their screens.
std::vector<Sample> mixedInputs(const ExportInfo& e, int count, uint64_t seed) {
    std::vector<Sample> ordinary;
    if (const AccuracyRecord* r = findRecord(e.name))
        ordinary = sampleRange(e, r->ranges[0], count, seed);
    else
        ordinary.assign(count, Sample{{1.5, 0.75, 1.25, -0.5}});
    std::vector<Sample> specials = specialSamples(e);
    std::mt19937 rng{uint32_t(seed)};
    std::vector<Sample> out(count);
    for (int i = 0; i < count; ++i) {
        out[i] = ordinary[i];
        if (rng() % 4 == 0) {
            const Sample& s = specials[rng() % specials.size()];
            // Keep the K constant of the call: only the source varies.
            int n = e.shape == Shape::K ? e.inputComponents() / 2 : e.inputComponents();
            for (int c = 0; c < n; ++c) out[i].in[c] = s.in[c];
        }
    }
    if (e.shape == Shape::K)
        for (Sample& s : out)
            for (int c = e.inputComponents() / 2; c < e.inputComponents(); ++c) s.in[c] = out[0].in[c];
    return out;
}

using Bytes = std::vector<unsigned char>;

// What a call produced: its status and the bytes of its destinations.
struct Outcome {
    OrvStatus status;
    Bytes dst1, dst2;
    bool operator==(const Outcome&) const = default;
};

// Runs the member on the samples with every array copied to the places
// given (each must hold its array), and collects the outcome.
Outcome runAt(const ExportInfo& e, const std::vector<Sample>& s, unsigned char* src[2], unsigned char* dst[2]) {
    const int n = int(s.size());
    CallArgs a;
    // Destinations first: in an in-place call they are the sources.
    const size_t dbytes = n * e.dstElemSize();
    for (int k = 0; k < e.destinationCount(); ++k) std::memset(dst[k], 0xA5, dbytes);
    for (int k = 0; k < e.sourceCount(); ++k) {
        Bytes b = sourceBytes(e, s, k);
        std::memcpy(src[k], b.data(), b.size());
    }
    a.src1 = src[0];
    a.src2 = src[1];
    a.dst1 = dst[0];
    a.dst2 = dst[1];
    a.len = n;
    setConstant(e, s, a);
    Outcome o;
    o.status = invoke(e, a);
    o.dst1.assign(dst[0], dst[0] + dbytes);
    if (e.destinationCount() == 2) o.dst2.assign(dst[1], dst[1] + dbytes);
    return o;
}

// Plain heap arrays, 16-byte aligned, plus a misalignment.
struct Arrays {
    std::vector<unsigned char> store[4];
    unsigned char* src[2];
    unsigned char* dst[2];
    Arrays(const ExportInfo& e, size_t n, const size_t offset[4] = nullptr) {
        for (int k = 0; k < 4; ++k) {
            store[k].assign(n * 16 + 64, 0);
            auto base = reinterpret_cast<uintptr_t>(store[k].data());
            unsigned char* p = store[k].data() + ((16 - base % 16) % 16) + (offset ? offset[k] : 0);
            (k < 2 ? src[k] : dst[k - 2]) = p;
        }
        (void)e;
    }
};

Outcome runPlain(const ExportInfo& e, const std::vector<Sample>& s) {
    Arrays a(e, s.size());
    return runAt(e, s, a.src, a.dst);
}

// The call alone runs in the given caller state: the arrays are filled and
// read outside it, so the test's own conversions follow the defaults.
Outcome runInState(const ExportInfo& e, const std::vector<Sample>& s, uint32_t mxcsr, uint16_t x87,
                   uint32_t* mxcsrAfter = nullptr, uint16_t* x87After = nullptr) {
    Arrays arr(e, s.size());
    Outcome o = runAt(e, s, arr.src, arr.dst);  // fills the sources
    CallArgs a;
    a.src1 = arr.src[0];
    a.src2 = arr.src[1];
    a.dst1 = arr.dst[0];
    a.dst2 = arr.dst[1];
    a.len = int32_t(s.size());
    setConstant(e, s, a);
    const size_t dbytes = s.size() * e.dstElemSize();
    for (int k = 0; k < e.destinationCount(); ++k) std::memset(arr.dst[k], 0xA5, dbytes);
    {
        FpEnvScope scope(mxcsr, x87);
        o.status = invoke(e, a);
        if (mxcsrAfter) *mxcsrAfter = readMxcsr();
        if (x87After) *x87After = readX87();
    }
    o.dst1.assign(arr.dst[0], arr.dst[0] + dbytes);
    if (e.destinationCount() == 2) o.dst2.assign(arr.dst[1], arr.dst[1] + dbytes);
    return o;
}

class Conformance : public ::testing::TestWithParam<std::string> {
protected:
    const ExportInfo& member() const { return *findExport(GetParam()); }
};
// The suites below hold only the members a property applies to.
class GuardedConformance : public Conformance {};
class OrderedWarnings : public Conformance {};
class InPlace : public Conformance {};
class PositionIndependence : public Conformance {};
class SameComputation : public Conformance {};

// ---- Argument checks ----------------------------------------------------

TEST_P(Conformance, ArgumentChecksInFrameOrder) {
    const ExportInfo& e = member();
    auto s = mixedInputs(e, 8, 1);
    Arrays arr(e, 8);
    Bytes b = sourceBytes(e, s, 0);
    std::memcpy(arr.src[0], b.data(), b.size());
    if (e.sourceCount() == 2) std::memcpy(arr.src[1], sourceBytes(e, s, 1).data(), b.size());
    const size_t dbytes = 8 * e.dstElemSize();

    // The pointer slots of this shape, in argument order.
    std::vector<int> slots = {0};
    if (e.sourceCount() == 2) slots.push_back(1);
    slots.push_back(2);
    if (e.destinationCount() == 2) slots.push_back(3);

    auto call = [&](int nullSlot, int32_t len) {
        CallArgs a;
        a.src1 = nullSlot == 0 ? nullptr : arr.src[0];
        a.src2 = nullSlot == 1 ? nullptr : arr.src[1];
        a.dst1 = nullSlot == 2 ? nullptr : arr.dst[0];
        a.dst2 = nullSlot == 3 ? nullptr : arr.dst[1];
        a.len = len;
        setConstant(e, s, a);
        for (int k = 0; k < 2; ++k) std::memset(arr.dst[k], 0x5A, dbytes);
        OrvStatus st = invoke(e, a);
        for (int k = 0; k < e.destinationCount(); ++k)
            for (size_t i = 0; i < dbytes; ++i)
                if (arr.dst[k][i] != 0x5A) {
                    ADD_FAILURE() << "a failed check wrote to the destination";
                    break;
                }
        return st;
    };
    for (int slot : slots) EXPECT_EQ(call(slot, 8), orvStatusNullPointer) << "null pointer in slot " << slot;
    EXPECT_EQ(call(-1, 0), orvStatusBadLength);
    EXPECT_EQ(call(-1, -1), orvStatusBadLength);
    EXPECT_EQ(call(-1, INT32_MIN), orvStatusBadLength);
    const OrvStatus both = e.frame == Frame::PointersFirst ? orvStatusNullPointer : orvStatusBadLength;
    for (int slot : slots) EXPECT_EQ(call(slot, 0), both) << "null pointer in slot " << slot << " and len 0";
}

// ---- Floating-point control state ----------------------------------------

struct CallerState {
    uint32_t mxcsr;
    uint16_t x87;
};
const CallerState kCallerStates[] = {
    {kMxcsrDefault | kMxcsrRoundUp, kX87Default},
    {kMxcsrDefault | kMxcsrFtz | kMxcsrDaz, kX87Default},
    {kMxcsrDefault | kMxcsrRoundToZero | kMxcsrFtz | kMxcsrDaz, kX87Single},
    {kMxcsrDefault | kMxcsrRoundDown, kX87Double},
    {kMxcsrDefault, kX87Single | 0x0800},  // 24-bit precision, rounding up
    {kMxcsrDefault | kMxcsrRoundUp, kX87Default | 0x0800},    // x87 rounding up
    {kMxcsrDefault | kMxcsrRoundDown, kX87Default | 0x0400},  // x87 rounding down
    {kMxcsrDefault, kX87Double | 0x0C00},                     // 53-bit, toward zero
};

// mixedInputs followed by random bit patterns of the whole type (finite,
// for the most part far outside the ordinary range), where rarer paths
// such as extended-precision element paths show what state they follow.
std::vector<Sample> stateInputs(const ExportInfo& e, uint64_t seed) {
    std::vector<Sample> s = mixedInputs(e, 101, seed);
    std::mt19937_64 rng{seed};
    int n = e.shape == Shape::K ? e.inputComponents() / 2 : e.inputComponents();
    for (int i = 0; i < 200; ++i) {
        Sample x = s[0];
        for (int c = 0; c < n; ++c) {
            uint64_t r = rng();
            x.in[c] = e.is64() ? f64(r) : double(f32(uint32_t(r)));
        }
        s.push_back(x);
    }
    return s;
}

// Whether a guard of this mode rewrites MXCSR on entry from this state.
bool mxcsrGuardWrites(MxcsrGuard g, uint32_t mxcsr) {
    switch (g) {
        case MxcsrGuard::None:
            return false;
        case MxcsrGuard::NearestKeepDaz:
            return (mxcsr & 0xE000) != 0;
        case MxcsrGuard::Nearest:
            return (mxcsr & 0xE040) != 0;
        case MxcsrGuard::Down:
            return (mxcsr & 0xE040) != kMxcsrRoundDown;
        case MxcsrGuard::Up:
            return (mxcsr & 0xE040) != kMxcsrRoundUp;
        case MxcsrGuard::TowardZero:
            return (mxcsr & 0xE040) != kMxcsrRoundToZero;
    }
    return false;
}

TEST_P(Conformance, RestoresMxcsrAndX87ControlWord) {
    const ExportInfo& e = member();
    auto s = mixedInputs(e, 37, 2);
    for (const CallerState& state : kCallerStates) {
        uint32_t mxcsrAfter;
        uint16_t x87After;
        runInState(e, s, state.mxcsr, state.x87, &mxcsrAfter, &x87After);
        EXPECT_EQ(x87After, state.x87);
        EXPECT_EQ(mxcsrAfter & ~kMxcsrFlags, state.mxcsr) << std::hex << "MXCSR was 0x" << state.mxcsr;
        // Where the guard rewrote MXCSR, leaving restores the value of entry,
        // sticky flags included.
        if (mxcsrGuardWrites(e.mxcsrGuard, state.mxcsr)) {
            EXPECT_EQ(mxcsrAfter & kMxcsrFlags, 0u) << "flags raised inside the guard leaked out";
        }
    }
}

// A guarded member computes the same bits whatever the caller's rounding,
// flush-to-zero, denormals-are-zero (unless the member keeps it) and x87
// precision and rounding, whether the x87 word is guarded by the frame or
// only by the stretch of code that uses the x87.
TEST_P(GuardedConformance, ResultsIgnoreCallerState) {
    const ExportInfo& e = member();
    auto s = stateInputs(e, 3);
    const Outcome want = runPlain(e, s);
    for (const CallerState& state : kCallerStates) {
        uint32_t mxcsr = kMxcsrDefault;
        if (e.mxcsrGuard != MxcsrGuard::None) {
            mxcsr = state.mxcsr;
            if (e.mxcsrGuard == MxcsrGuard::NearestKeepDaz) mxcsr &= ~kMxcsrDaz;
        }
        EXPECT_TRUE(runInState(e, s, mxcsr, state.x87) == want)
            << std::hex << "MXCSR 0x" << mxcsr << ", x87 0x" << state.x87;
    }
}

// No member follows the caller's x87 word, guarded or not: those without a
// guard follow MXCSR only.
TEST_P(Conformance, ResultsIgnoreCallersX87Word) {
    const ExportInfo& e = member();
    auto s = stateInputs(e, 4);
    const Outcome want = runPlain(e, s);
    for (const CallerState& state : kCallerStates)
        EXPECT_TRUE(runInState(e, s, kMxcsrDefault, state.x87) == want) << std::hex << "x87 0x" << state.x87;
}

// ---- Status ---------------------------------------------------------------

bool allowed(const ExportInfo& e, OrvStatus st) {
    if (st == orvStatusOk) return true;
    for (OrvStatus w : e.warnings)
        if (w == st) return true;
    return false;
}

TEST_P(Conformance, StatusIsOneOfTheMembersWarnings) {
    const ExportInfo& e = member();
    for (const Sample& one : specialSamples(e)) {
        std::vector<Sample> s(1, one);
        OrvStatus st = runPlain(e, s).status;
        EXPECT_TRUE(allowed(e, st)) << "status " << st << " for input " << formatValue(one.in[0], e.is64());
    }
}

TEST_P(OrderedWarnings, LastWarningWrittenWins) {
    const ExportInfo& e = member();
    // One input for each warning the member can give, and a quiet one.
    std::vector<std::pair<OrvStatus, Sample>> warn;
    Sample quiet;
    bool haveQuiet = false;
    for (const Sample& one : specialSamples(e)) {
        OrvStatus st = runPlain(e, std::vector<Sample>(1, one)).status;
        if (st == orvStatusOk && !haveQuiet) quiet = one, haveQuiet = true;
        bool seen = st == orvStatusOk;
        for (auto& w : warn) seen |= w.first == st;
        if (!seen) warn.push_back({st, one});
    }
    ASSERT_TRUE(haveQuiet) << "no special value gives orvStatusOk";
    ASSERT_GE(warn.size(), 2u) << "the special values give fewer than two of the member's warnings";
    for (int len : {2, 7, 40, 130})
        for (int p = 0; p < len; p += 3)
            for (int q = p + 1; q < len; q += 5)
                for (size_t a = 0; a < warn.size(); ++a)
                    for (size_t b = 0; b < warn.size(); ++b) {
                        if (a == b) continue;
                        std::vector<Sample> s(len, quiet);
                        s[p] = warn[a].second;
                        s[q] = warn[b].second;
                        ASSERT_EQ(runPlain(e, s).status, warn[b].first)
                            << "len " << len << ": " << warn[a].first << " at " << p << ", " << warn[b].first
                            << " at " << q;
                    }
}

// ---- Memory ---------------------------------------------------------------

TEST_P(InPlace, EqualsSeparateArrays) {
    const ExportInfo& e = member();
    for (int len : {1, 5, 8, 16, 37, 130}) {
        auto s = mixedInputs(e, len, 4 + len);
        const Outcome want = runPlain(e, s);
        for (int k = 0; k < e.sourceCount(); ++k)
            for (int d = 0; d < e.destinationCount(); ++d) {
                Arrays arr(e, len);
                arr.dst[d] = arr.src[k];
                Bytes other = sourceBytes(e, s, 1 - k);
                Outcome got = runAt(e, s, arr.src, arr.dst);
                EXPECT_EQ(got.status, want.status);
                EXPECT_TRUE((d == 0 ? got.dst1 : got.dst2) == (d == 0 ? want.dst1 : want.dst2))
                    << "len " << len << ", destination " << d << " on source " << k;
                if (e.sourceCount() == 2) {  // the source dst does not alias is left alone
                    EXPECT_EQ(std::memcmp(arr.src[1 - k], other.data(), other.size()), 0);
                }
            }
    }
}

TEST_P(Conformance, EveryLegalMisalignment) {
    const ExportInfo& e = member();
    const size_t step = e.realSize();
    const int arrays = e.sourceCount() + e.destinationCount();
    int combos = 1;
    for (int k = 0; k < arrays; ++k) combos *= int(16 / step);
    for (int len : {37, 100}) {
        auto s = mixedInputs(e, len, 5 + len);
        const Outcome want = runPlain(e, s);
        for (int c = 0; c < combos; ++c) {
            size_t offset[4] = {0, 0, 0, 0};
            int rest = c;
            for (int k = 0; k < arrays; ++k) {
                int slot = k < e.sourceCount() ? k : 2 + (k - e.sourceCount());
                offset[slot] = (rest % (16 / step)) * step;
                rest /= int(16 / step);
            }
            Arrays arr(e, len, offset);
            ASSERT_TRUE(runAt(e, s, arr.src, arr.dst) == want)
                << "offsets " << offset[0] << " " << offset[1] << " " << offset[2] << " " << offset[3];
        }
    }
}

// Each array in a region of its own between two PROT_NONE pages.
class GuardedRegion {
public:
    static constexpr size_t kDataPages = 8;
    GuardedRegion() {
        page_ = size_t(sysconf(_SC_PAGESIZE));
        base_ = static_cast<unsigned char*>(
            mmap(nullptr, (kDataPages + 2) * page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(base_, page_, PROT_NONE);
        mprotect(base_ + (kDataPages + 1) * page_, page_, PROT_NONE);
    }
    ~GuardedRegion() { munmap(base_, (kDataPages + 2) * page_); }
    unsigned char* atStart() const { return base_ + page_; }
    unsigned char* endingAtGuard(size_t bytes) const { return base_ + (kDataPages + 1) * page_ - bytes; }
    size_t capacity() const { return kDataPages * page_; }

private:
    size_t page_;
    unsigned char* base_;
};

sigjmp_buf gFaultJump;
void onFault(int) { siglongjmp(gFaultJump, 1); }

// runAt, turning a segmentation fault into a false return.
bool runCatchingFaults(const ExportInfo& e, const std::vector<Sample>& s, unsigned char* src[2],
                       unsigned char* dst[2], Outcome& out) {
    if (sigsetjmp(gFaultJump, 1)) return false;
    out = runAt(e, s, src, dst);
    return true;
}

TEST_P(Conformance, NoAccessOutsideTheArrays) {
    const ExportInfo& e = member();
    GuardedRegion regions[4];
    struct sigaction fault = {}, saved[2];
    fault.sa_handler = onFault;
    sigaction(SIGSEGV, &fault, &saved[0]);
    sigaction(SIGBUS, &fault, &saved[1]);
    std::vector<int> lengths;
    for (int len = 1; len <= 64; ++len) lengths.push_back(len);
    lengths.push_back(1001);
    for (int len : lengths) {
        auto s = mixedInputs(e, len, 6 + len);
        const Outcome want = runPlain(e, s);
        ASSERT_LE(size_t(len) * 16, regions[0].capacity());
        for (bool atEnd : {true, false}) {
            unsigned char* src[2];
            unsigned char* dst[2];
            for (int k = 0; k < 2; ++k) {
                src[k] = atEnd ? regions[k].endingAtGuard(len * e.srcElemSize()) : regions[k].atStart();
                dst[k] = atEnd ? regions[2 + k].endingAtGuard(len * e.dstElemSize()) : regions[2 + k].atStart();
            }
            Outcome got;
            if (!runCatchingFaults(e, s, src, dst, got)) {
                ADD_FAILURE() << "access outside the arrays, len " << len
                              << (atEnd ? ", arrays ending at a guard page" : ", arrays starting after a guard page");
                continue;
            }
            EXPECT_TRUE(got == want) << "len " << len;
        }
    }
    sigaction(SIGSEGV, &saved[0], nullptr);
    sigaction(SIGBUS, &saved[1], nullptr);
}

// ---- Position ---------------------------------------------------------------

// Ordinary values of the member, uniform by value over its recorded
// ordinary range, so that a block of them passes its screen and runs the
// block path; for the K shape, one constant for the whole call.
std::vector<Sample> ordinaryInputs(const ExportInfo& e, int count, uint64_t seed) {
    std::vector<Sample> s = sampleValues(e, recordOf(e).ranges[0], count, seed);
    if (e.shape == Shape::K)
        for (Sample& x : s)
            for (int c = e.inputComponents() / 2; c < e.inputComponents(); ++c) x.in[c] = s[0].in[c];
    return s;
}

// The results of each element computed alone, as a call of length one: the
// tail, which takes the ElementPath.
Outcome eachAlone(const ExportInfo& e, const std::vector<Sample>& s) {
    Outcome all{orvStatusOk, Bytes(s.size() * e.dstElemSize()), Bytes()};
    if (e.destinationCount() == 2) all.dst2.resize(all.dst1.size());
    Arrays arr(e, 1);
    const size_t out = e.dstElemSize();
    for (size_t i = 0; i < s.size(); ++i) {
        const Outcome one = runAt(e, std::vector<Sample>(1, s[i]), arr.src, arr.dst);
        std::memcpy(&all.dst1[i * out], one.dst1.data(), out);
        if (e.destinationCount() == 2) std::memcpy(&all.dst2[i * out], one.dst2.data(), out);
    }
    return all;
}

// Distance in units in the last place of the member's real type between
// two results, counted over the representable values (NaN to anything but
// NaN is infinitely far).
double ulpDistance(double a, double b, bool is64) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b) ? 0 : INFINITY;
    // Keys in the order of the values, adjacent values one apart.
    auto key = [is64](double v) -> int64_t {
        if (is64) {
            int64_t k;
            std::memcpy(&k, &v, 8);
            return k < 0 ? -(k & INT64_MAX) : k;
        }
        float f = float(v);
        int32_t k;
        std::memcpy(&k, &f, 4);
        return k < 0 ? -int64_t(k & INT32_MAX) : k;
    };
    const __int128 d = __int128(key(a)) - key(b);
    return double(d < 0 ? -d : d);
}

// How far each element's result inside a call lies from its result alone:
// the largest distance, and how many elements differ in any bit.
struct Difference {
    double maxUlp = 0;
    long differing = 0;
    std::string first;
};
Difference compareWithAlone(const ExportInfo& e, const std::vector<Sample>& s, const Outcome& inCall,
                            const Outcome& alone) {
    Difference d;
    const int n = int(s.size()), oc = e.outputComponents();
    const size_t out = e.dstElemSize();
    std::vector<double> got(n * oc), want(n * oc);
    decodeResults(e, inCall.dst1.data(), inCall.dst2.data(), n, got.data());
    decodeResults(e, alone.dst1.data(), alone.dst2.data(), n, want.data());
    for (int i = 0; i < n; ++i) {
        bool same = std::memcmp(&inCall.dst1[i * out], &alone.dst1[i * out], out) == 0;
        if (e.destinationCount() == 2) same &= std::memcmp(&inCall.dst2[i * out], &alone.dst2[i * out], out) == 0;
        if (same) continue;
        if (d.differing++ == 0)
            d.first = "input " + formatValue(s[i].in[0], e.is64()) + (e.inputComponents() > 1 ? ", ..." : "") +
                      " at position " + std::to_string(i);
        for (int c = 0; c < oc; ++c) d.maxUlp = std::max(d.maxUlp, ulpDistance(got[i * oc + c], want[i * oc + c], e.is64()));
    }
    return d;
}

// Each element's result inside a call against its result alone: among
// ordinary neighbours (passing blocks, the block path) at every offset
// into the blocks, and among special values (rejected blocks).  A member
// whose record declares no position dependence must give the same bits;
// one that declares it must stay within its recorded difference, and show
// some difference, or the declaration is void.
TEST_P(PositionIndependence, ResultDependsOnlyOnTheElementOrAsRecorded) {
    const ExportInfo& e = member();
    const AccuracyRecord& record = recordOf(e);
    const std::vector<Sample> ordinary = ordinaryInputs(e, 1 << 16, 7);
    const std::vector<Sample> mixed = mixedInputs(e, 1 << 12, 8);
    Difference worst;
    for (const auto* inputs : {&ordinary, &mixed}) {
        const Outcome alone = eachAlone(e, *inputs);
        for (int shift : {0, 1, 2, 3, 5}) {
            const std::vector<Sample> s(inputs->begin() + shift, inputs->end());
            Outcome aloneShifted = alone;
            const size_t out = e.dstElemSize();
            aloneShifted.dst1.erase(aloneShifted.dst1.begin(), aloneShifted.dst1.begin() + shift * out);
            if (e.destinationCount() == 2)
                aloneShifted.dst2.erase(aloneShifted.dst2.begin(), aloneShifted.dst2.begin() + shift * out);
            const Difference d = compareWithAlone(e, s, runPlain(e, s), aloneShifted);
            if (!record.positionDependent()) {
                ASSERT_EQ(d.differing, 0) << d.differing << " of " << s.size() << " results differ from the element "
                                          << "alone (by up to " << d.maxUlp << " ulp), first the " << d.first;
            }
            if (d.maxUlp > worst.maxUlp) worst = d;
            worst.differing = std::max(worst.differing, d.differing);
        }
    }
    if (record.positionDependent()) {
        EXPECT_LE(worst.maxUlp, record.positionMaxUlp) << worst.first;
        EXPECT_GT(worst.differing, 0) << "declared position-dependent (" << record.positionWhy
                                      << "), but every result equals the element's alone";
        RecordProperty("position_max_ulp", std::to_string(worst.maxUlp));
        std::printf("position %s: up to %.6g ulp, %ld results differ\n", e.name.c_str(), worst.maxUlp,
                    worst.differing);
    }
}

// ---- One computation under several names --------------------------------

// Members recorded as one computation give the same bits and statuses on
// the same inputs: ordinary values mixed with special ones, and each
// special value alone.
TEST_P(SameComputation, EqualBitsAndStatuses) {
    const ExportInfo& e = member();
    const ExportInfo* other = findExport(recordOf(e).sameAs);
    ASSERT_TRUE(other && other->symbol()) << recordOf(e).sameAs << " is not a member the library has";
    ASSERT_TRUE(other->type == e.type && other->shape == e.shape) << "one computation on different arrays";
    for (int len : {1, 7, 64, 1001}) {
        const auto s = mixedInputs(e, len, 10 + len);
        EXPECT_TRUE(runPlain(e, s) == runPlain(*other, s)) << "len " << len;
    }
    for (const Sample& one : specialSamples(e)) {
        const std::vector<Sample> s(1, one);
        EXPECT_TRUE(runPlain(e, s) == runPlain(*other, s)) << "input " << formatValue(one.in[0], e.is64());
    }
}

template <class Pred>
std::vector<std::string> implementedNames(Pred keep) {
    std::vector<std::string> names;
    for (const ExportInfo* e : implementedExports())
        if (keep(*e)) names.push_back(e->name);
    return names;
}

const auto kName = [](const auto& info) { return info.param; };
INSTANTIATE_TEST_SUITE_P(Exports, Conformance,
                         ::testing::ValuesIn(implementedNames([](const ExportInfo&) { return true; })), kName);
INSTANTIATE_TEST_SUITE_P(Exports, GuardedConformance,
                         ::testing::ValuesIn(implementedNames([](const ExportInfo& e) { return e.hasGuard(); })),
                         kName);
INSTANTIATE_TEST_SUITE_P(Exports, OrderedWarnings, ::testing::ValuesIn(implementedNames([](const ExportInfo& e) {
                             // Group passes write a rejected block's warnings by kind.
                             const AccuracyRecord* r = findRecord(e.name);
                             return e.warnings.size() >= 2 && !(r && r->warningsByKind);
                         })),
                         kName);
INSTANTIATE_TEST_SUITE_P(Exports, InPlace, ::testing::ValuesIn(implementedNames([](const ExportInfo& e) {
                             return e.shape != Shape::M && e.shape != Shape::P;
                         })),
                         kName);
INSTANTIATE_TEST_SUITE_P(Exports, PositionIndependence,
                         ::testing::ValuesIn(implementedNames([](const ExportInfo&) { return true; })), kName);
INSTANTIATE_TEST_SUITE_P(Exports, SameComputation, ::testing::ValuesIn(implementedNames([](const ExportInfo& e) {
                             const AccuracyRecord* r = findRecord(e.name);
                             return r && !r->sameAs.empty();
                         })),
                         kName);
// A suite may be empty while no member of its kind is built.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GuardedConformance);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OrderedWarnings);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SameComputation);

}  // namespace
}  // namespace orvtest
