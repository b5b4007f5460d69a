// The alternatives that the benchmarks time compute the functions they
// stand for (a wrong signature, a swapped output or a mistyped name would
// make a ratio meaningless), and the timed arrays hold what they should.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "alternatives.h"
#include "exports.h"
#include "measure.h"
#include "records.h"
#include "reference.h"
#include "workload.h"

namespace orvbench {
namespace {

using orvtest::ExportInfo;

// A domain where every family's function is finite and not tiny.
Range domainOf(const ExportInfo& e) {
    double lo = 0.1, hi = 0.9;
    if (e.family == "Acosh") lo = 1.1, hi = 4.0;
    static const std::set<std::string> kRounding = {"Ceil", "Floor", "Round", "Trunc", "Rint", "NearbyInt", "Modf"};
    if (kRounding.count(e.family)) lo = -5.5, hi = 5.5;
    Range r;
    for (int c = 0; c < e.inputComponents(); ++c) r.bounds.insert(r.bounds.end(), {lo, hi});
    return r;
}

// 37 elements: whole vectors and a tail.
constexpr int kCount = 37;

TEST(Alternatives, ComputeTheFunctionOfTheirMember) {
    int checked = 0;
    for (const ExportInfo& e : orvtest::allExports()) {
        const std::vector<Alternative> alternatives = alternativesFor(e);
        if (alternatives.empty()) continue;
        ASSERT_TRUE(orvtest::referenceFor(e)) << e.name;
        const std::vector<orvtest::Sample> samples = orvtest::sampleRange(e, domainOf(e), kCount, 7);
        const std::vector<double> want = orvtest::correctlyRounded(e, samples);
        // Scalar libm and SLEEF's u35 are within a few ulps; a wrong
        // function or lane is off by far more.
        const double tol = e.is64() ? 1e-13 : 4e-6;
        for (const Alternative& a : alternatives) {
            if (a.kind == "copy") continue;
            Workload w(e, samples);
            a.run(w.arrays());
            const std::vector<double> got = w.results();
            const int oc = e.outputComponents();
            for (size_t i = 0; i < got.size(); ++i) {
                // Relative to the element's largest component: a complex
                // product's small component carries the error of the large.
                double scale = 1e-3;
                for (int c = 0; c < oc; ++c) scale = std::max(scale, std::fabs(want[i / oc * oc + c]));
                ASSERT_LE(std::fabs(got[i] - want[i]), tol * scale)
                    << e.name << " " << a.kind << ":" << a.label << " element " << i / oc << " component " << i % oc
                    << " input " << samples[i / oc].in[0];
            }
            ++checked;
        }
    }
    EXPECT_GT(checked, 390);
}

TEST(Alternatives, ScalarTableNamesExistingFamiliesAndTypes) {
    for (int i = 0; i < orvScalarFamilyCount; ++i) {
        const OrvScalarFamily& f = orvScalarFamilies[i];
        for (int t = 0; t < 4; ++t) {
            if (!f.types[t].loop) continue;
            bool exists = false;
            for (const ExportInfo& e : orvtest::allExports())
                exists |= e.family == f.family && int(e.type) == t;
            EXPECT_TRUE(exists) << f.family << " has a loop for a type the family lacks: " << f.types[t].label;
        }
    }
    // Every member has its scalar loop, but where glibc has no such function.
    std::set<std::string> without;
    for (const ExportInfo& e : orvtest::allExports()) {
        auto alts = alternativesFor(e);
        if (std::none_of(alts.begin(), alts.end(), [](const Alternative& a) { return a.kind == "scalar"; }))
            without.insert(e.family);
    }
    EXPECT_EQ(without, (std::set<std::string>{"CdfNormInv", "ErfInv", "ErfcInv"}));
}

std::string labelOf(const char* member, const std::string& kind) {
    for (const Alternative& a : alternativesFor(*orvtest::findExport(member)))
        if (a.kind == kind) return a.label;
    return "";
}

TEST(Alternatives, VectorFunctionsMatchTheTier) {
    if (!dlopen("libsleef.so.3", RTLD_NOW) || !dlopen("libmvec.so.1", RTLD_NOW))
        GTEST_SKIP() << "libsleef or libmvec is not installed";
    EXPECT_EQ(labelOf("orvsExp_32f_A24", "libmvec"), "_ZGVbN4v_expf");
    EXPECT_EQ(labelOf("orvsExp_64f_A53", "libmvec"), "_ZGVbN2v_exp");
    EXPECT_EQ(labelOf("orvsExp_32f_A24", "sleef-sse2"), "Sleef_expf4_u10sse2");
    EXPECT_EQ(labelOf("orvsExp_32f_A21", "sleef-sse2"), "Sleef_expf4_u10sse2");  // SLEEF has no u35 exp
    EXPECT_EQ(labelOf("orvsLn_32f_A21", "sleef-sse2"), "Sleef_logf4_u35sse2");
    EXPECT_EQ(labelOf("orvsLn_64f_A53", "sleef-sse2"), "Sleef_logd2_u10sse2");
    EXPECT_EQ(labelOf("orvsSqrt_32f_A24", "sleef-sse2"), "Sleef_sqrtf4_u05sse2");
    EXPECT_EQ(labelOf("orvsSqrt_64f_A26", "sleef-sse2"), "Sleef_sqrtd2_u35sse2");
    EXPECT_EQ(labelOf("orvsHypot_32f_A24", "libmvec"), "_ZGVbN4vv_hypotf");
    EXPECT_EQ(labelOf("orvsCeil_64f", "sleef-sse2"), "Sleef_ceild2_sse2");
    EXPECT_EQ(labelOf("orvsDiv_32f_A24", "libmvec"), "");
    EXPECT_EQ(labelOf("orvsAdd_32f_A24", "copy"), "memcpy");
    EXPECT_EQ(labelOf("orvsExp_32f_A24", "copy"), "");
    if (__builtin_cpu_supports("sse4.1")) {
        EXPECT_EQ(labelOf("orvsExp_32f_A24", "sleef-sse4"), "Sleef_expf4_u10sse4");
    }
}

// The timed arrays: the ordinary range, and the asked fraction of special
// elements, all outside it; a short array slides over a pool of distinct
// values.  Read back through the copy of Sqr.
TEST(Workload, OrdinaryRangeWithTheAskedFractionOfSpecials) {
    const ExportInfo& e = *orvtest::findExport("orvsSqr_32f_A24");
    const Range range{{-3.0, 5.0}};
    for (int32_t len : {1000, 3 * Workload::kDistinct + 5}) {
        Workload w = Workload::sampled(e, range, len, 0.01, 99);
        const auto copies = alternativesFor(e);
        auto copy = std::find_if(copies.begin(), copies.end(), [](const Alternative& a) { return a.kind == "copy"; });
        ASSERT_NE(copy, copies.end());
        long outside = 0, seen = 0;
        bool negative = false, positive = false;
        std::vector<double> first;
        for (int32_t k = 0; k < w.windows(); ++k) {
            copy->run(w.arrays(k));
            const std::vector<double> v = w.results();
            ASSERT_EQ(v.size(), size_t(len));
            if (k == 0) first = v;
            if (k == 1) {
                EXPECT_NE(v, first) << "the second window repeats the first";
            }
            for (double x : v) {
                if (std::isnan(x) || x < -3.0 || x > 5.0)
                    ++outside;
                else
                    (x < 0 ? negative : positive) = true;
            }
            seen += len;
        }
        // The windows cover nearly the whole pool of kDistinct values.
        EXPECT_GE(seen, Workload::kDistinct - len) << len;
        EXPECT_NEAR(double(outside) / seen, 0.01, len < Workload::kDistinct ? 1.5e-3 : 1e-4) << len;
        EXPECT_TRUE(negative && positive);
    }
    EXPECT_FALSE(specialsOutside(e, range).empty());
}

}  // namespace
}  // namespace orvbench
