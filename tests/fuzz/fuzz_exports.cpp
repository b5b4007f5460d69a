// A libFuzzer target over every export the library has, driven by the
// export table.  One input picks a member, a length, where each array sits
// against an inaccessible page, an in-place call or not, the caller's MXCSR
// and x87 control word, and the elements: raw bit patterns, or special
// values (zeros, subnormals, limits, infinities, NaNs with random payloads)
// near ordinary values of the member's range.  Then it asserts what any
// caller may rely on:
//   - no access outside the arrays (inaccessible pages on both sides, and
//     untouched bytes around each destination), sources unchanged;
//   - each element's result and status the same as for the element alone
//     (len = 1) in the same state, unless the member's record declares
//     that its results depend on their neighbours;
//   - the status the last warning of the elements computed alone (the
//     members that write warnings by kind: one of those warnings);
//   - for a guarded member, the same results whatever the caller's state
//     in the registers its guard covers, and that state put back.
// Any failure aborts with a description of the call.
#include <fuzzer/FuzzedDataProvider.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <random>
#include <vector>

#include "exports.h"
#include "measure.h"
#include "records.h"
#include "testing.h"

namespace orvtest {
namespace {

constexpr int kMaxLen = 300;

[[noreturn]] void fail(const ExportInfo& e, const char* what, int len, int index = -1, const std::string& detail = "") {
    std::fprintf(stderr, "fuzz_exports: %s: %s (len %d, element %d)%s\n", e.name.c_str(), what, len, index,
                 detail.c_str());
    std::abort();
}

// The element's inputs, the caller's state and two results' bytes, for a
// failure message.
std::string describe(const Sample& x, int components, uint32_t mxcsr, uint16_t x87, const unsigned char* a,
                     const unsigned char* b, size_t width) {
    std::string out = "\n  input";
    char buf[64];
    for (int c = 0; c < components; ++c) {
        std::snprintf(buf, sizeof buf, " %a", x.in[c]);
        out += buf;
    }
    std::snprintf(buf, sizeof buf, "\n  MXCSR 0x%04X, x87 0x%04X", unsigned(mxcsr), unsigned(x87));
    out += buf;
    for (const unsigned char* r : {a, b}) {
        out += "\n  bytes";
        for (size_t k = 0; k < width; ++k) {
            std::snprintf(buf, sizeof buf, " %02X", r[k]);
            out += buf;
        }
    }
    return out;
}

// An array between two inaccessible pages, flush against one of them, the
// rest of its pages filled with a pattern that must survive the call.
class GuardedArray {
public:
    static constexpr unsigned char kPattern = 0xA5;

    GuardedArray(size_t bytes, bool flushEnd) : bytes_(bytes) {
        const size_t page = size_t(sysconf(_SC_PAGESIZE));
        inner_ = (bytes + page - 1) / page * page;
        if (inner_ == 0) inner_ = page;
        void* p = mmap(nullptr, inner_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (p == MAP_FAILED) std::abort();
        base_ = static_cast<unsigned char*>(p);
        mprotect(base_ + page, inner_, PROT_READ | PROT_WRITE);
        page_ = page;
        std::memset(base_ + page, kPattern, inner_);
        data_ = flushEnd ? base_ + page + inner_ - bytes : base_ + page;
    }
    ~GuardedArray() { munmap(base_, inner_ + 2 * page_); }
    GuardedArray(const GuardedArray&) = delete;
    GuardedArray& operator=(const GuardedArray&) = delete;

    unsigned char* data() { return data_; }
    // Whether every byte of the accessible pages outside the array still
    // holds the pattern.
    bool surroundingsIntact() const {
        for (const unsigned char* p = base_ + page_; p < base_ + page_ + inner_; ++p)
            if ((p < data_ || p >= data_ + bytes_) && *p != kPattern) return false;
        return true;
    }

private:
    unsigned char* base_ = nullptr;
    unsigned char* data_ = nullptr;
    size_t bytes_ = 0, inner_ = 0, page_ = 0;
};

struct CallerState {
    uint32_t mxcsr;
    uint16_t x87;
};
constexpr CallerState kStates[] = {
    {kMxcsrDefault, kX87Default},
    {kMxcsrDefault | kMxcsrRoundUp, kX87Default | 0x0800},
    {kMxcsrDefault | kMxcsrRoundDown | kMxcsrDaz, kX87Single | 0x0400},
    {kMxcsrDefault | kMxcsrRoundToZero | kMxcsrFtz | kMxcsrDaz, kX87Double | 0x0C00},
    {kMxcsrDefault | kMxcsrFtz, kX87Single},
};

// The part of the caller's state that a guarded member must ignore: the
// whole x87 word, and MXCSR where the guard covers it (but for
// denormals-are-zero in the guards that keep it).  Members without a guard
// follow the caller, as plain arithmetic does.
CallerState guardedView(const ExportInfo& e, CallerState s) {
    if (e.mxcsrGuard == MxcsrGuard::None) s.mxcsr = kMxcsrDefault;
    if (e.mxcsrGuard == MxcsrGuard::NearestKeepDaz) s.mxcsr &= ~kMxcsrDaz;
    return s;
}

// The draws of one input: from the fuzzer's bytes while they last, then
// from a generator seeded by them, so that even a short input fills a long
// array with a rich mix.
class Draws {
public:
    explicit Draws(FuzzedDataProvider& in) : in_(in), rng_(in.ConsumeIntegral<uint64_t>()) {}
    template <class T>
    T integral(T lo, T hi) {
        if (in_.remaining_bytes() > 0) return in_.ConsumeIntegralInRange<T>(lo, hi);
        return T(lo + T(rng_() % (uint64_t(hi - lo) + 1)));
    }
    uint64_t bits() { return in_.remaining_bytes() > 0 ? in_.ConsumeIntegral<uint64_t>() : rng_(); }
    bool flip() { return integral(0, 1) == 1; }

private:
    FuzzedDataProvider& in_;
    std::mt19937_64 rng_;
};

// One real component: a raw bit pattern, a special value with a random
// payload or sign, or an ordinary value of the member.
double component(Draws& d, const ExportInfo& e, double ordinary) {
    const bool is64 = e.is64();
    switch (d.integral(0, 5)) {
        case 0: {
            uint64_t b = d.bits();
            return is64 ? f64(b) : double(f32(uint32_t(b)));
        }
        case 1: {  // NaN, quiet or signalling, any payload and sign
            uint64_t payload = d.bits();
            if (is64) return f64(0x7FF0000000000000u | (payload & 0x800FFFFFFFFFFFFFu) | 1);
            return double(f32(0x7F800000u | (uint32_t(payload) & 0x807FFFFFu) | 1));
        }
        case 2: {  // subnormal or zero
            uint64_t frac = d.bits();
            if (is64) return f64(frac & 0x800FFFFFFFFFFFFFu);
            return double(f32(uint32_t(frac) & 0x807FFFFFu));
        }
        case 3: {  // an extreme: infinities, the largest finite, the smallest normal, one
            const double v[] = {INFINITY, is64 ? 0x1.fffffffffffffp+1023 : double(0x1.fffffep+127f),
                                is64 ? 0x1p-1022 : 0x1p-126, 1.0};
            double x = v[d.integral(0, 3)];
            return d.flip() ? -x : x;
        }
        default:
            return ordinary;
    }
}

void fuzzOne(FuzzedDataProvider& in) {
    static const std::vector<const ExportInfo*> members = implementedExports();
    Draws d(in);
    const ExportInfo& e = *members[in.ConsumeIntegralInRange<size_t>(0, members.size() - 1)];
    const AccuracyRecord* record = findRecord(e.name);
    const int len = in.ConsumeIntegralInRange(1, kMaxLen);
    const CallerState state = kStates[in.ConsumeIntegralInRange<size_t>(0, std::size(kStates) - 1)];
    const bool sameSize = e.srcElemSize() == e.dstElemSize();
    const int inPlace = sameSize ? in.ConsumeIntegralInRange(0, e.destinationCount()) : 0;  // dst k-1 = src

    // The samples; the K shape's constant is one for the call.
    std::vector<Sample> s = record ? sampleRange(e, record->ranges[0], len, d.bits())
                                   : std::vector<Sample>(len, Sample{{1.5, 0.75, 1.25, -0.5}});
    const int nc = e.inputComponents();
    const int varying = e.shape == Shape::K ? nc / 2 : nc;
    for (Sample& x : s)
        for (int c = 0; c < varying; ++c) x.in[c] = component(d, e, x.in[c]);
    for (int c = varying; c < nc; ++c) {
        const double k = component(d, e, s[0].in[c]);
        for (Sample& x : s) x.in[c] = k;
    }

    // The arrays, each against a guard page on the side the input picks.
    const size_t sbytes = size_t(len) * e.srcElemSize(), dbytes = size_t(len) * e.dstElemSize();
    GuardedArray src1(sbytes, d.flip()), src2(sbytes, d.flip());
    GuardedArray dst1(dbytes, d.flip()), dst2(dbytes, d.flip());
    const std::vector<unsigned char> bytes1 = sourceBytes(e, s, 0), bytes2 = sourceBytes(e, s, 1);
    std::memcpy(src1.data(), bytes1.data(), bytes1.size());
    if (!bytes2.empty()) std::memcpy(src2.data(), bytes2.data(), bytes2.size());
    CallArgs a;
    a.src1 = src1.data();
    a.src2 = e.sourceCount() == 2 ? src2.data() : nullptr;
    a.dst1 = inPlace == 1 ? src1.data() : dst1.data();
    a.dst2 = e.destinationCount() == 2 ? (inPlace == 2 ? src1.data() : dst2.data()) : nullptr;
    a.len = len;
    setConstant(e, s, a);

    OrvStatus status;
    uint32_t mxcsrAfter;
    uint16_t x87After;
    {
        FpEnvScope scope(state.mxcsr, state.x87);
        status = invoke(e, a);
        mxcsrAfter = readMxcsr() & ~kMxcsrFlags;
        x87After = readX87();
    }
    if (mxcsrAfter != state.mxcsr || x87After != state.x87) fail(e, "control state not restored", len);
    if (!dst1.surroundingsIntact() || !dst2.surroundingsIntact() || !src1.surroundingsIntact() ||
        !src2.surroundingsIntact())
        fail(e, "wrote outside an array", len);
    if (inPlace == 0 && std::memcmp(src1.data(), bytes1.data(), bytes1.size()) != 0) fail(e, "source 1 modified", len);
    if (!bytes2.empty() && std::memcmp(src2.data(), bytes2.data(), bytes2.size()) != 0) fail(e, "source 2 modified", len);

    // Each element alone, in the same state; and for a guarded member, alone
    // in the default state and in the caller's state as its guard sees it.
    const unsigned char* out1 = static_cast<const unsigned char*>(a.dst1);
    const unsigned char* out2 = static_cast<const unsigned char*>(a.dst2);
    const size_t width = e.dstElemSize();
    const bool positionDependent = record && record->positionDependent();
    struct Alone {
        OrvStatus status;
        alignas(16) unsigned char r1[16], r2[16];
    };
    auto alone = [&](const Sample& x, CallerState in) {
        std::vector<Sample> one(1, x);
        const std::vector<unsigned char> b1 = sourceBytes(e, one, 0), b2 = sourceBytes(e, one, 1);
        Alone r{};
        CallArgs o;
        o.src1 = b1.data();
        o.src2 = b2.empty() ? nullptr : b2.data();
        o.dst1 = r.r1;
        o.dst2 = r.r2;
        o.len = 1;
        setConstant(e, one, o);
        FpEnvScope scope(in.mxcsr, in.x87);
        r.status = invoke(e, o);
        return r;
    };
    auto sameResult = [&](const Alone& x, const unsigned char* p1, const unsigned char* p2) {
        return std::memcmp(x.r1, p1, width) == 0 && (!p2 || std::memcmp(x.r2, p2, width) == 0);
    };
    OrvStatus lastWarning = orvStatusOk;
    std::string warnings;  // the elements that warn alone, for a failure message
    for (int i = 0; i < len; ++i) {
        const Alone here = alone(s[i], state);
        if (here.status != orvStatusOk) {
            lastWarning = here.status;
            char buf[96];
            std::snprintf(buf, sizeof buf, "\n  element %d (%a) alone: %d", i, s[i].in[0], int(here.status));
            warnings += buf;
        }
        if (!positionDependent && !sameResult(here, out1 + i * width, out2 ? out2 + i * width : nullptr))
            fail(e, "element differs from the element alone", len, i,
                 describe(s[i], nc, state.mxcsr, state.x87, here.r1, out1 + i * width, width));
        if (e.hasGuard()) {
            const Alone guarded = alone(s[i], guardedView(e, state));
            const Alone plain = alone(s[i], kStates[0]);
            if (guarded.status != plain.status || !sameResult(guarded, plain.r1, out2 ? plain.r2 : nullptr))
                fail(e, "guarded result depends on the caller's state", len, i,
                     describe(s[i], nc, state.mxcsr, state.x87, guarded.r1, plain.r1, width));
        }
    }
    if (record && (record->warningsByKind || !record->quietBlocksWhy.empty())) {
        if (status != orvStatusOk && lastWarning == orvStatusOk) fail(e, "a warning no element gives alone", len);
    } else if (!positionDependent && status != lastWarning) {
        char buf[96];
        std::snprintf(buf, sizeof buf, "\n  call status %d, MXCSR 0x%04X, x87 0x%04X", int(status),
                      unsigned(state.mxcsr), unsigned(state.x87));
        fail(e, "status is not the last warning of the elements", len, -1, buf + warnings);
    }
}

}  // namespace
}  // namespace orvtest

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    orvtest::fuzzOne(in);
    return 0;
}
