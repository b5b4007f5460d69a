// Pow and Powx, real members: the table of special values with its bits,
// statuses and flags, alone and inside blocks of ordinary values; Powx's
// fast paths; and the hard cases of accuracy (x next to 1 with |y| large,
// results next to the overflow and underflow thresholds, exact powers).
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "measure.h"
#include "records.h"
#include "testing.h"

using namespace orvtest;

namespace {

const char* const kMembers[] = {"orvsPow_32f_A11",  "orvsPow_32f_A21",  "orvsPow_32f_A24",  "orvsPow_64f_A26",
                                "orvsPow_64f_A50",  "orvsPow_64f_A53",  "orvsPowx_32f_A11", "orvsPowx_32f_A21",
                                "orvsPowx_32f_A24", "orvsPowx_64f_A26", "orvsPowx_64f_A50", "orvsPowx_64f_A53"};

// One call on x[i], y[i]: for Powx every y must be the same, the constant.
struct Outcome {
    OrvStatus status;
    std::vector<double> out;
    uint32_t flags;
};
Outcome call(const ExportInfo& e, const std::vector<double>& x, const std::vector<double>& y) {
    std::vector<Sample> s(x.size());
    for (size_t i = 0; i < x.size(); ++i) s[i] = Sample{{x[i], y[i]}};
    std::vector<unsigned char> src1 = sourceBytes(e, s, 0), src2 = sourceBytes(e, s, 1);
    std::vector<unsigned char> dst(x.size() * e.dstElemSize());
    CallArgs a;
    a.src1 = src1.data();
    a.src2 = src2.data();
    a.dst1 = dst.data();
    a.len = int32_t(x.size());
    setConstant(e, s, a);
    Outcome o;
    {
        FpEnvScope scope(kMxcsrDefault);
        o.status = invoke(e, a);
        o.flags = flags();
    }
    o.out.resize(x.size());
    decodeResults(e, dst.data(), nullptr, int(x.size()), o.out.data());
    return o;
}

// The bits of a value in the member's type (a double holding a float is
// narrowed exactly, a NaN with its payload).
uint64_t typeBits(const ExportInfo& e, double v) {
    if (e.is64()) return bits(v);
    return bits(float(v));
}

// ---- Special values ---------------------------------------------------------

// NaNs with payloads, so that "x, bit for bit" can be told from a quieted
// or a default NaN.
const double kSignallingX64 = f64(0x7FF4000000000123);
const double kQuietNegY64 = f64(0xFFF8000000000456);
const double kSignallingX32 = double(f32(0x7FA00123));  // widening keeps it signalling
const double kQuietNegY32 = double(f32(0xFFC00456));
constexpr double kInf = INFINITY;

enum Result { kOne, kX, kY, kPosInf, kNegInf, kPosZero, kNegZero, kDomainNaN, kValue };
struct Row {
    int rule;
    double x, y;
    Result result;
    double value;  // for kValue
    bool domain;
};
// x = NaN marks the signalling x, y = NaN the negative quiet y, of the type.
const Row kRows[] = {
    {1, NAN, 0.0, kOne, 0, false},        {1, NAN, -0.0, kOne, 0, false},       {1, -3.0, 0.0, kOne, 0, false},
    {2, -1.0, kInf, kOne, 0, false},      {2, -1.0, -kInf, kOne, 0, false},     {3, 1.0, NAN, kOne, 0, false},
    {3, 1.0, -kInf, kOne, 0, false},      {3, 1.0, 7.5, kOne, 0, false},        {4, NAN, 3.5, kX, 0, false},
    {4, NAN, NAN, kX, 0, false},          {5, 2.0, NAN, kY, 0, false},          {5, -kInf, NAN, kY, 0, false},
    {6, 0.0, -kInf, kPosInf, 0, true},    {6, -0.0, -kInf, kPosInf, 0, true},   {7, 3.0, -kInf, kPosZero, 0, false},
    {7, -kInf, -kInf, kPosZero, 0, false}, {8, -3.0, kInf, kPosInf, 0, false},  {8, kInf, kInf, kPosInf, 0, false},
    {9, 0.5, kInf, kPosZero, 0, false},   {9, -0.0, kInf, kPosZero, 0, false},  {9, 0.0, kInf, kPosZero, 0, false},
    {10, -0.5, -kInf, kPosInf, 0, false}, {11, -kInf, 5.0, kNegInf, 0, false},  {12, -kInf, 6.0, kPosInf, 0, false},
    {12, -kInf, 0.5, kPosInf, 0, false},  {13, -kInf, -5.0, kNegZero, 0, false}, {14, -kInf, -6.0, kPosZero, 0, false},
    {14, -kInf, -2.5, kPosZero, 0, false}, {15, -8.0, 1.0 / 3, kDomainNaN, 0, true}, {15, -2.0, 2.5, kDomainNaN, 0, true},
    {15, -0.75, -1.5, kDomainNaN, 0, true}, {16, -2.0, 5.0, kValue, -32.0, false},
    {16, -2.0, 6.0, kValue, 64.0, false}, {16, -2.0, -5.0, kValue, -1.0 / 32, false}, {16, -0.5, -3.0, kValue, -8.0, false},
    {16, -2.0, 0x1p60, kPosInf, 0, false}, {17, -0.0, -5.0, kNegInf, 0, true},   {18, -0.0, -6.0, kPosInf, 0, true},
    {18, -0.0, -2.5, kPosInf, 0, true},   {19, -0.0, 5.0, kNegZero, 0, false},  {20, -0.0, 6.0, kPosZero, 0, false},
    {20, -0.0, 2.5, kPosZero, 0, false},  {21, kInf, 2.5, kPosInf, 0, false},   {22, kInf, -2.5, kPosZero, 0, false},
    {23, 0.0, 5.0, kPosZero, 0, false},   {24, 0.0, -5.0, kPosInf, 0, true},    {24, 0.0, -0.5, kPosInf, 0, true},
    {25, 2.0, 5.0, kValue, 32.0, false},  {25, 4.0, -1.5, kValue, 0.125, false},
};

double rowX(const ExportInfo& e, const Row& r) {
    return std::isnan(r.x) ? (e.is64() ? kSignallingX64 : kSignallingX32) : r.x;
}
double rowY(const ExportInfo& e, const Row& r) {
    if (std::isnan(r.y)) return e.is64() ? kQuietNegY64 : kQuietNegY32;
    return e.is64() ? r.y : double(float(r.y));
}
uint64_t expectedBits(const ExportInfo& e, const Row& r) {
    switch (r.result) {
        case kOne: return typeBits(e, 1.0);
        case kX: return typeBits(e, rowX(e, r));
        case kY: return typeBits(e, rowY(e, r));
        case kPosInf: return typeBits(e, kInf);
        case kNegInf: return typeBits(e, -kInf);
        case kPosZero: return typeBits(e, 0.0);
        case kNegZero: return typeBits(e, -0.0);
        case kDomainNaN: return e.is64() ? 0xFFF8000000000000 : 0xFFC00000;
        case kValue: return typeBits(e, r.value);
    }
    return 0;
}

class PowMember : public ::testing::TestWithParam<const char*> {
protected:
    const ExportInfo& member() const { return *findExport(GetParam()); }
};

// Every row alone (the tail), with its bits, its status and, for a domain
// row, the invalid flag.
TEST_P(PowMember, SpecialValueTable) {
    const ExportInfo& e = member();
    for (const Row& r : kRows) {
        const Outcome o = call(e, {rowX(e, r)}, {rowY(e, r)});
        EXPECT_EQ(typeBits(e, o.out[0]), expectedBits(e, r)) << "rule " << r.rule << ", x " << r.x << ", y " << r.y;
        EXPECT_EQ(o.status, r.domain ? orvStatusDomain : orvStatusOk) << "rule " << r.rule << ", x " << r.x;
        if (r.domain) {
            EXPECT_TRUE(o.flags & kMxcsrInvalid) << "rule " << r.rule;
        }
    }
}

// The same rows inside arrays of ordinary values, at the start, the middle
// and the end of a block and in the tail: the screen must send them to the
// ElementPath, and their neighbours must keep their own results.
TEST_P(PowMember, SpecialValuesInsideBlocks) {
    const ExportInfo& e = member();
    const int len = 37;
    for (const Row& r : kRows) {
        const double y = rowY(e, r);
        std::vector<double> xs(len), ys(len);
        for (int i = 0; i < len; ++i) {
            xs[i] = 0.75 + i / 16.0;
            ys[i] = e.shape == Shape::K ? y : 1.5 - i / 8.0;
        }
        const Outcome clean = call(e, xs, ys);
        ASSERT_EQ(clean.status, orvStatusOk);
        for (int p : {0, 5, 15, 19, 36}) {
            std::vector<double> x2 = xs, y2 = ys;
            x2[p] = rowX(e, r);
            y2[p] = y;
            const Outcome o = call(e, x2, y2);
            EXPECT_EQ(typeBits(e, o.out[p]), expectedBits(e, r)) << "rule " << r.rule << " at " << p;
            EXPECT_EQ(o.status, r.domain ? orvStatusDomain : orvStatusOk) << "rule " << r.rule << " at " << p;
            for (int i = 0; i < len; ++i) {
                if (i == p) continue;
                ASSERT_EQ(typeBits(e, o.out[i]), typeBits(e, clean.out[i])) << "rule " << r.rule << ", neighbour " << i;
            }
        }
    }
}

// A denormal x takes the ElementPath and gives the power of the scaled value.
TEST_P(PowMember, DenormalBase) {
    const ExportInfo& e = member();
    const double tiny = e.is64() ? 0x1.8p-1060 : 0x1.8p-140;
    for (double y : {0.5, 1.0 / 16, -1.0 / 64}) {
        std::vector<Sample> s = {Sample{{tiny, e.is64() ? y : double(float(y))}}};
        const ErrorStats st = measureErrors(e, s, runMember(e, s));
        EXPECT_TRUE(withinTier(e, st)) << st.worst;
    }
}

INSTANTIATE_TEST_SUITE_P(Members, PowMember, ::testing::ValuesIn(kMembers),
                         [](const auto& info) { return std::string(info.param); });

// ---- Powx fast paths -----------------------------------------------------

TEST(PowxFastPaths, MultiplyWithNoSpecialValueLogic) {
    // y = 2 in all members but 64f A26: a NaN goes through, a zero base
    // with its sign squares to +0, and nothing warns.
    for (const char* name : {"orvsPowx_32f_A11", "orvsPowx_32f_A21", "orvsPowx_32f_A24", "orvsPowx_64f_A50",
                             "orvsPowx_64f_A53"}) {
        const ExportInfo& e = *findExport(name);
        const Outcome o = call(e, {NAN, -0.0, 3.0, 1e300, -kInf}, {2, 2, 2, 2, 2});
        EXPECT_TRUE(std::isnan(o.out[0])) << name;
        EXPECT_EQ(typeBits(e, o.out[1]), typeBits(e, 0.0)) << name;
        EXPECT_EQ(o.out[2], 9.0) << name;
        EXPECT_EQ(o.out[4], kInf) << name;
        EXPECT_EQ(o.status, orvStatusOk) << name;
    }
    // y = 3: (x x) x, so -0 gives -0 (as the kernel also would) and a large
    // base overflows silently; y = 4 squares twice.
    for (const char* name : {"orvsPowx_32f_A11", "orvsPowx_32f_A21", "orvsPowx_64f_A50"}) {
        const ExportInfo& e = *findExport(name);
        const Outcome o3 = call(e, {-0.0, 3.0, 1e300, NAN}, {3, 3, 3, 3});
        EXPECT_EQ(typeBits(e, o3.out[0]), typeBits(e, -0.0)) << name;
        EXPECT_EQ(o3.out[1], 27.0) << name;
        EXPECT_EQ(o3.out[2], kInf) << name;
        EXPECT_EQ(o3.status, orvStatusOk) << name;
        const Outcome o4 = call(e, {1.1, -3.0}, {4, 4});
        const double sq = e.is64() ? 1.1 * 1.1 : double(float(1.1f) * float(1.1f));
        EXPECT_EQ(o4.out[0], e.is64() ? sq * sq : double(float(sq) * float(sq))) << name;
        EXPECT_EQ(o4.out[1], 81.0) << name;
    }
    // Where there is no fast path the kernel's ElementPath sees the special
    // values: x = 0, y = -1 warns in every member; and A24, A53 take y = 3
    // through the kernel, so -0 cubed warns nothing but a zero base with
    // a negative exponent does.
    for (const char* name : kMembers) {
        const ExportInfo& e = *findExport(name);
        if (e.shape != Shape::K) continue;
        EXPECT_EQ(call(e, {0.0, 2.0}, {-1, -1}).status, orvStatusDomain) << name;
    }
    const Outcome nanSquared = call(*findExport("orvsPowx_64f_A26"), {NAN}, {2});
    EXPECT_TRUE(std::isnan(nanSquared.out[0]));
}

// ---- Hard cases of accuracy ------------------------------------------------

// Measures a member on samples, leaving out what its record excludes, and
// holds it to its tier and its recorded maximum.
void expectWithinRecord(const ExportInfo& e, std::vector<Sample> s, const char* what) {
    const AccuracyRecord* record = findRecord(e.name);
    ASSERT_NE(record, nullptr);
    std::erase_if(s, [&](const Sample& x) { return record->excludes(x.in); });
    ASSERT_FALSE(s.empty());
    const ErrorStats st = measureErrors(e, s, runMember(e, s));
    EXPECT_TRUE(withinTier(e, st)) << what << ": " << st.worst;
    EXPECT_LE(st.maxUlp, record->maxUlp) << what << ": " << st.worst;
}

// For Powx the samples are sorted by y, so that runs of one constant form
// whole calls.
std::vector<Sample> byConstant(std::vector<Sample> s) {
    std::stable_sort(s.begin(), s.end(), [](const Sample& a, const Sample& b) { return a.in[1] < b.in[1]; });
    return s;
}

double inType(const ExportInfo& e, double v) { return e.is64() ? v : double(float(v)); }

TEST_P(PowMember, ExactPowers) {
    const ExportInfo& e = member();
    std::vector<Sample> s;
    const int maxTenth = e.is64() ? 22 : 10;  // 10^k exact while 5^k fits the significand
    for (int k = -60; k <= 60; ++k) s.push_back(Sample{{2.0, double(k)}});
    for (int k = 1; k <= maxTenth; ++k) s.push_back(Sample{{10.0, double(k)}});
    for (int n = 2; n <= 60; ++n)
        for (int p : {2, 3}) s.push_back(Sample{{double(n), double(p)}});
    for (int n = 2; n <= 40; ++n) s.push_back(Sample{{double(n * n), 0.5}});
    s = byConstant(s);
    const std::vector<double> got = runMember(e, s);
    const std::vector<double> exact = correctlyRounded(e, s);
    const bool top = e.tier == "A24" || e.tier == "A53";
    for (size_t i = 0; i < s.size(); ++i) {
        if (top) {
            EXPECT_EQ(got[i], exact[i]) << s[i].in[0] << "^" << s[i].in[1];
        }
    }
    expectWithinRecord(e, s, "exact powers");
}

// x next to 1 on both sides with |y| large, so that |y ln x| runs up to the
// overflow and underflow thresholds: errors in ln x are multiplied by y.
std::vector<Sample> nearOne(const ExportInfo& e) {
    std::vector<Sample> s;
    const double limit = e.is64() ? 700.0 : 85.0;
    for (int k = 1; k <= 40; ++k)
        for (double side : {1.0, -1.0}) {
            const double x = inType(e, 1.0 + side * std::ldexp(1.0 + k / 41.0, -4 - k % 30));
            for (double t : {limit / 8, limit / 2, limit}) {
                const double y = inType(e, t / std::log(x));
                s.push_back(Sample{{x, y}});
                s.push_back(Sample{{x, -y}});
            }
        }
    return byConstant(s);
}

TEST_P(PowMember, NextToOneWithLargeExponents) {
    const ExportInfo& e = member();
    expectWithinRecord(e, nearOne(e), "x next to 1");
}

// Inputs that the record of a member excludes: the logarithm's polynomial
// errs by up to 2^-38 (32f) or 2^-65 (64f A50) absolute at the edges of its
// rows, and a large |y| multiplies that.  What the member gives there is
// pinned here, from the bound of that error.
TEST(PowExcludedRegions, LogarithmErrorTimesLargeExponent) {
    struct Pinned {
        const char* name;
        double maxUlp;
    };
    for (const Pinned& p : {Pinned{"orvsPow_32f_A24", 3.3}, Pinned{"orvsPowx_32f_A24", 3.3},
                            Pinned{"orvsPow_64f_A50", 14.0}, Pinned{"orvsPowx_64f_A50", 14.0}}) {
        const ExportInfo& e = *findExport(p.name);
        const AccuracyRecord* record = findRecord(e.name);
        std::vector<Sample> s = nearOne(e);
        // The edges of the rows next to 1, where the error is largest.
        const double edge = e.is64() ? 0x1p-7 : 0x1p-9;
        for (int k = 0; k < 200; ++k)
            for (double side : {1.0, -1.0}) {
                const double x = inType(e, 1.0 + side * edge * (0.9 + k / 2000.0));
                const double t = (e.is64() ? 700.0 : 86.0) * (k % 2 ? 1 : -1);
                s.push_back(Sample{{x, inType(e, t / std::log(x))}});
            }
        std::erase_if(s, [&](const Sample& x) { return !record->excludes(x.in); });
        ASSERT_GT(s.size(), 100u) << p.name;
        s = byConstant(s);
        const ErrorStats st = measureErrors(e, s, runMember(e, s));
        EXPECT_EQ(st.classMismatches, 0) << p.name << ": " << st.worst;
        EXPECT_LT(st.maxUlp, p.maxUlp) << p.name << ": " << st.worst;
    }
}

// Results next to the overflow threshold, the smallest normal and the
// smallest denormal, from both sides, for x = 2, 10 and 0.3.
TEST_P(PowMember, NextToOverflowAndUnderflow) {
    const ExportInfo& e = member();
    const double top = e.is64() ? 1024 : 128, normal = e.is64() ? -1022 : -126, bottom = e.is64() ? -1075 : -150;
    std::vector<Sample> s;
    for (double x : {2.0, 10.0, 0.3}) {
        const double lx = std::log2(inType(e, x));
        for (double edge : {top, normal, bottom})
            for (int k = -8; k <= 8; ++k) {
                const double y = inType(e, edge / lx * (1 + k * (e.is64() ? 1e-15 : 1e-7)));
                s.push_back(Sample{{x, y}});
                s.push_back(Sample{{x, edge / lx + k * 0.25}});
            }
    }
    for (Sample& x : s) x.in[1] = inType(e, x.in[1]);
    const Outcome overflow = call(e, {10.0}, {e.is64() ? 400.0 : 40.0});
    EXPECT_EQ(overflow.out[0], kInf);
    EXPECT_EQ(overflow.status, orvStatusOk) << "overflow gives no status";
    const Outcome underflow = call(e, {10.0}, {e.is64() ? -400.0 : -50.0});
    EXPECT_EQ(typeBits(e, underflow.out[0]), typeBits(e, 0.0));
    EXPECT_EQ(underflow.status, orvStatusOk) << "underflow gives no status";
    expectWithinRecord(e, byConstant(s), "next to the thresholds");
}

// The three 32f Pow tiers are one routine, and Powx 32f A11 and A21.
TEST(PowSharedRoutines, EqualBits) {
    std::vector<double> x, y;
    for (int i = 0; i < 4000; ++i) {
        x.push_back(std::ldexp(1.0 + (i * 7919 % 1000) / 1000.0, i % 60 - 30) * (i % 13 == 0 ? -1 : 1));
        y.push_back((i % 97) / 3.0 - 16.0);
    }
    const Outcome a = call(*findExport("orvsPow_32f_A11"), x, y);
    for (const char* other : {"orvsPow_32f_A21", "orvsPow_32f_A24"}) {
        const Outcome b = call(*findExport(other), x, y);
        for (size_t i = 0; i < x.size(); ++i) ASSERT_EQ(bits(float(a.out[i])), bits(float(b.out[i]))) << other << " " << i;
    }
    for (double c : {-16.0, 0.5, 3.7, -1.3}) {
        std::vector<double> yc(x.size(), c);
        const Outcome p = call(*findExport("orvsPowx_32f_A11"), x, yc);
        const Outcome q = call(*findExport("orvsPowx_32f_A21"), x, yc);
        const Outcome r = call(*findExport("orvsPow_32f_A24"), x, yc);
        for (size_t i = 0; i < x.size(); ++i) {
            ASSERT_EQ(bits(float(p.out[i])), bits(float(q.out[i]))) << i;
            ASSERT_EQ(bits(float(p.out[i])), bits(float(r.out[i]))) << "Powx and Pow differ at " << i;
        }
    }
}

}  // namespace
