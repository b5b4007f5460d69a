// Every member the library has, measured against its MPFR reference over
// its recorded ranges, the special values of its type and glibc's hard
// cases, and held both to the bound of its tier and to the maximum recorded
// next to its code.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "exports.h"
#include "measure.h"
#include "records.h"
#include "reference.h"

namespace orvtest {
namespace {

std::vector<std::string> implementedNames() {
    std::vector<std::string> names;
    for (const ExportInfo* e : implementedExports()) names.push_back(e->name);
    return names;
}

// An input as the record writes it: exact hexadecimal literals.
std::string literal(const ExportInfo& e, const Sample& s) {
    std::string out;
    for (int c = 0; c < e.inputComponents(); ++c) {
        char buf[40];
        std::snprintf(buf, sizeof buf, "%a", s.in[c]);
        out += (c ? ", " : "") + std::string(buf);
    }
    return out;
}

class Accuracy : public ::testing::TestWithParam<std::string> {
protected:
    const ExportInfo& member() const { return *findExport(GetParam()); }
};

TEST_P(Accuracy, HasRecordAndReference) {
    EXPECT_NE(findRecord(member().name), nullptr) << "no record next to the code";
    EXPECT_TRUE(referenceFor(member())) << "no MPFR reference for family " << member().family;
}

TEST_P(Accuracy, WithinTierAndRecordedBound) {
    const ExportInfo& e = member();
    const AccuracyRecord* record = findRecord(e.name);
    if (!record || !referenceFor(e)) GTEST_FAIL() << "no record or reference";

    std::vector<Sample> samples;
    for (const auto& group : accuracySamples(e, *record, samplesPerRange(1 << 13)))
        samples.insert(samples.end(), group.begin(), group.end());

    ErrorStats st = measureErrors(e, samples, runMember(e, samples));
    ASSERT_EQ(st.count, long(samples.size()));
    const TierBound bound = tierBound(e);
    EXPECT_EQ(st.classMismatches, 0) << st.worst;
    switch (bound.kind) {
        case TierBound::Exact:
            EXPECT_EQ(st.inexact, 0) << "an exact operation was not exact: " << st.worst;
            break;
        case TierBound::UlpBelow:
            EXPECT_LT(st.maxUlp, bound.value) << st.worst;
            break;
        case TierBound::BitsAtLeast:
            EXPECT_GE(st.minBits, bound.value) << st.worst;
            break;
    }
    EXPECT_LE(st.maxUlp, record->maxUlp) << "above the recorded maximum: " << st.worst;
    RecordProperty("max_ulp", std::to_string(st.maxUlp));
    std::printf("measured %s %.7g ulp at {%s}\n", e.name.c_str(), st.maxUlp, literal(e, st.worstInput).c_str());

    // The recorded worst input is within the record, and no sample is
    // worse.  It is taken alone and in a block of copies of itself, which
    // reproduces the maxima that come from the block path.
    ASSERT_EQ(int(record->worst.size()), e.inputComponents()) << "no worst input recorded";
    ErrorStats atWorst;
    for (int copies : {1, 64}) {
        std::vector<Sample> worst(copies);
        for (Sample& s : worst) std::copy(record->worst.begin(), record->worst.end(), s.in);
        atWorst.merge(measureErrors(e, worst, runMember(e, worst)));
    }
    EXPECT_LE(atWorst.maxUlp, record->maxUlp) << atWorst.worst;
    EXPECT_GE(atWorst.maxUlp, st.maxUlp) << "the recorded worst input gives less than a sample: " << atWorst.worst
                                         << "; the sample: " << st.worst;
}

// The references themselves, checked against glibc's correctly rounded
// vectors: the same inputs must round to the same values.
class GlibcVectors : public Accuracy {};

TEST_P(GlibcVectors, ReferenceAgreesWithThem) {
    const ExportInfo& e = member();
    PeerVectors peers = peerVectors(e);
    if (!peers.available) GTEST_SKIP() << peers.file << " is not present";
    ASSERT_FALSE(peers.cases.empty()) << peers.file;
    std::vector<Sample> samples;
    for (const PeerCase& c : peers.cases) samples.push_back(c.sample);
    std::vector<double> cr = correctlyRounded(e, samples);
    const int oc = e.outputComponents();
    for (size_t i = 0; i < peers.cases.size(); ++i)
        for (int k = 0; k < oc; ++k) {
            double want = peers.cases[i].expected[k], got = cr[i * oc + k];
            bool same = std::isnan(want) ? std::isnan(got)
                        : peers.cases[i].ignoreZeroInfSign && (want == 0 || std::isinf(want))
                            ? std::fabs(want) == std::fabs(got)
                            : want == got && std::signbit(want) == std::signbit(got);
            EXPECT_TRUE(same) << e.name << " input " << formatValue(samples[i].in[0], e.is64())
                              << " component " << k << ": glibc " << formatValue(want, e.is64())
                              << ", reference " << formatValue(got, e.is64());
        }
}

INSTANTIATE_TEST_SUITE_P(Members, Accuracy, ::testing::ValuesIn(implementedNames()),
                         [](const auto& info) { return info.param; });

// The members of the families glibc has vectors for.
std::vector<std::string> namesWithGlibcVectors() {
    std::vector<std::string> names;
    for (const std::string& n : implementedNames())
        if (!peerVectors(*findExport(n)).file.empty()) names.push_back(n);
    return names;
}
INSTANTIATE_TEST_SUITE_P(Members, GlibcVectors, ::testing::ValuesIn(namesWithGlibcVectors()),
                         [](const auto& info) { return info.param; });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GlibcVectors);

// Every member the library has, exactly one record; every record, a member
// the library has.
TEST(MemberRecords, OnePerImplementedMember) {
    for (const AccuracyRecord& r : accuracyRecords()) {
        const ExportInfo* e = findExport(r.member);
        ASSERT_NE(e, nullptr) << r.member;
        EXPECT_NE(e->symbol(), nullptr) << r.member << " has a record (" << r.file << ") but is not in the library";
    }
    for (const ExportInfo* e : implementedExports()) {
        int records = 0;
        for (const AccuracyRecord& r : accuracyRecords()) records += r.member == e->name;
        EXPECT_EQ(records, 1) << e->name;
    }
}

// The traits hold together: an exact member is within half an ulp, a
// position dependence has its reason and its measured size, and a member
// is one computation with another member of the same arrays.
TEST(MemberRecords, TraitsAreConsistent) {
    for (const AccuracyRecord& r : accuracyRecords()) {
        const ExportInfo& e = *findExport(r.member);
        if (r.exact) {
            EXPECT_LE(r.maxUlp, 0.5) << r.member;
        }
        EXPECT_EQ(r.positionDependent(), r.positionMaxUlp > 0) << r.member << ": a reason without a size, or the reverse";
        if (r.warningsByKind) {
            EXPECT_GE(e.warnings.size(), 2u) << r.member;
        }
        if (r.sameAs.empty()) continue;
        const AccuracyRecord* other = findRecord(r.sameAs);
        ASSERT_NE(other, nullptr) << r.member << " is one computation with " << r.sameAs << ", which has no record";
        EXPECT_NE(r.sameAs, r.member);
        const ExportInfo& o = *findExport(r.sameAs);
        EXPECT_TRUE(o.type == e.type && o.shape == e.shape && o.family == e.family) << r.member << " and " << r.sameAs;
        EXPECT_EQ(r.positionDependent(), other->positionDependent()) << r.member << " and " << r.sameAs;
    }
}

}  // namespace
}  // namespace orvtest
