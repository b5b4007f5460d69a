// Sqrt and InvSqrt: results that follow rsqrtps are checked against the
// same instruction; the rest against the exact root.  Special values in a
// block and in the tail, the scaling of denormals, the group form of the
// low InvSqrt tiers and the order of their warnings, and the rejected-block
// route of the top binary32 InvSqrt tier.
#include <xmmintrin.h>

#include <cmath>
#include <vector>

#include "testing.h"

namespace {

using orvtest::bits;
using orvtest::f32;
using orvtest::f64;

using Fn32 = OrvStatus (*)(const Orv32f*, Orv32f*, int32_t);
using Fn64 = OrvStatus (*)(const Orv64f*, Orv64f*, int32_t);

constexpr Fn32 kSqrt32[] = {orvsSqrt_32f_A11, orvsSqrt_32f_A21, orvsSqrt_32f_A24};
constexpr Fn64 kSqrt64[] = {orvsSqrt_64f_A26, orvsSqrt_64f_A50, orvsSqrt_64f_A53};
constexpr Fn32 kInvSqrt32[] = {orvsInvSqrt_32f_A11, orvsInvSqrt_32f_A21, orvsInvSqrt_32f_A24};
constexpr Fn64 kInvSqrt64[] = {orvsInvSqrt_64f_A26, orvsInvSqrt_64f_A50, orvsInvSqrt_64f_A53};
// Relative accuracy each tier must reach on ordinary arguments.
constexpr double kRel64[] = {0x1p-26, 0x1p-50, 0x1p-52};

constexpr double kInf = HUGE_VAL;

float rsqrtps(float x) { return _mm_cvtss_f32(_mm_rsqrt_ps(_mm_set1_ps(x))); }

// One call on a copy of v, returning the results and the status.
template <class T, class Fn>
std::vector<T> run(Fn fn, std::vector<T> v, OrvStatus* status = nullptr) {
    std::vector<T> out(v.size());
    OrvStatus s = fn(v.data(), out.data(), int32_t(v.size()));
    if (status) *status = s;
    return out;
}

double relError(double got, double want) { return std::fabs(got - want) / std::fabs(want); }

// ---- Sqrt ---------------------------------------------------------------------

// The low tiers stop at the seed or one Newton step on it, in blocks.
TEST(Roots32, LowTiersFollowRsqrtps) {
    for (float x : {1.0f, 2.0f, 0.3f, 1e-30f, 7.5e30f, f32(0x7F7FF001)}) {
        float y0 = rsqrtps(x), t = x * y0;
        std::vector<float> v(16, x);
        EXPECT_SAME_BITS(run(orvsSqrt_32f_A11, v)[3], t) << x;
        EXPECT_SAME_BITS(run(orvsSqrt_32f_A21, v)[3], (y0 * t - 3.0f) * (t * -0.5f)) << x;
        EXPECT_SAME_BITS(run(orvsInvSqrt_32f_A11, v)[5], y0) << x;
        EXPECT_SAME_BITS(run(orvsInvSqrt_32f_A21, v)[5], (-0.5f * y0) * (x * y0 * y0 - 3.0f)) << x;
    }
}

TEST(Sqrt32, SpecialValuesInBlockAndTail) {
    const float nan = f32(0x7FA00001);  // signalling
    // Ordinary neighbours, so the specials sit in blocks of every size and
    // in the tail after them.
    std::vector<float> v(37, 4.0f);
    v[2] = -0.0f;
    v[5] = 0.0f;
    v[9] = -1.0f;
    v[20] = INFINITY;
    v[33] = -0.0f;
    v[35] = nan;
    for (Fn32 fn : kSqrt32) {
        OrvStatus status;
        std::vector<float> out = run(fn, v, &status);
        EXPECT_EQ(status, orvStatusDomain);
        EXPECT_SAME_BITS(out[2], -0.0f);
        EXPECT_SAME_BITS(out[5], 0.0f);
        EXPECT_EQ(bits(out[9]), 0xFFC00000u);
        EXPECT_SAME_BITS(out[20], INFINITY);
        EXPECT_SAME_BITS(out[33], -0.0f);
        EXPECT_EQ(bits(out[35]), 0x7FE00001u);
    }
}

TEST(Sqrt32, NegativeZeroInPassingBlockWarnsOfNothing) {
    std::vector<float> v(16, 9.0f);
    v[1] = -0.0f;
    for (Fn32 fn : kSqrt32) {
        OrvStatus status;
        EXPECT_SAME_BITS(run(fn, v, &status)[1], -0.0f);
        EXPECT_EQ(status, orvStatusOk);
    }
}

// A denormal is scaled by 2^26 and the result by 2^-13 (A11 stops at the
// seed of the scaled argument); a negative one is a domain error.
TEST(Sqrt32, Denormals) {
    for (uint32_t b : {0x00000001u, 0x00000400u, 0x004D8558u, 0x007FFFFFu}) {
        float scaled = f32(b) * 0x1p26f;
        EXPECT_SAME_BITS(run(orvsSqrt_32f_A11, std::vector<float>(8, f32(b)))[0], scaled * rsqrtps(scaled) * 0x1p-13f);
        for (Fn32 fn : kSqrt32) {
            OrvStatus status;
            EXPECT_EQ(bits(run(fn, std::vector<float>{-f32(b)}, &status)[0]), 0xFFC00000u);
            EXPECT_EQ(status, orvStatusDomain);
        }
    }
}

// The largest double goes through the block, the smallest denormal through
// the ElementPath's scaling; neither warns.
TEST(Sqrt64, ExtremesAndDenormals) {
    std::vector<double> v(4, f64(0x7FEFFFFFFFFFFFFF));
    v.push_back(f64(1));
    for (int t = 0; t < 3; ++t) {
        OrvStatus status;
        std::vector<double> out = run(kSqrt64[t], v, &status);
        EXPECT_EQ(status, orvStatusOk);
        EXPECT_LE(relError(out[0], std::sqrt(v[0])), kRel64[t]) << t;
        EXPECT_LE(relError(out[4], 0x1p-537), kRel64[t]) << t;
    }
    EXPECT_EQ(run(orvsSqrt_64f_A53, v)[4], 0x1p-537);
}

TEST(Sqrt64, SpecialValues) {
    std::vector<double> v = {4.0, -0.0, 0.0, -1.0, kInf, -kInf, f64(0x7FF0000000000001), -f64(1)};
    for (Fn64 fn : kSqrt64) {
        OrvStatus status;
        std::vector<double> out = run(fn, v, &status);
        EXPECT_EQ(status, orvStatusDomain);
        EXPECT_SAME_BITS(out[1], -0.0);
        EXPECT_SAME_BITS(out[2], 0.0);
        EXPECT_EQ(bits(out[3]), 0xFFF8000000000000u);
        EXPECT_SAME_BITS(out[4], kInf);
        EXPECT_EQ(bits(out[5]), 0xFFF8000000000000u);
        EXPECT_EQ(bits(out[6]), 0x7FF8000000000001u);
        EXPECT_EQ(bits(out[7]), 0xFFF8000000000000u);
    }
}

// ---- InvSqrt ------------------------------------------------------------------

TEST(InvSqrt32, GroupFormKeepsTheResultClass) {
    // Above 0x7F7FF001 the screen rejects the group; the group form runs
    // the same formula unscaled.  Denormals run on x * 2^126 and come back
    // times 2^63 (the harness measures the higher tiers on them).
    for (uint32_t b : {0x7F7FF002u, 0x7F7FFFFFu}) {
        std::vector<float> v(4, f32(b));
        EXPECT_SAME_BITS(run(orvsInvSqrt_32f_A11, v)[0], rsqrtps(f32(b)));
    }
    for (uint32_t b : {0x00000001u, 0x00012345u, 0x007FFFFFu}) {
        std::vector<float> v(8, 1.0f);
        v[6] = f32(b);
        float scaled = f32(b) * 0x1p126f;
        EXPECT_SAME_BITS(run(orvsInvSqrt_32f_A11, v)[6], rsqrtps(scaled) * 0x1p63f);
    }
}

TEST(InvSqrt32, SpecialValues) {
    std::vector<float> v = {4.0f, 0.0f, -0.0f, INFINITY, -1.0f, -INFINITY, f32(0x7FA00001), 4.0f, -f32(5)};
    for (Fn32 fn : kInvSqrt32) {
        std::vector<float> out = run(fn, v);
        EXPECT_SAME_BITS(out[1], INFINITY);
        EXPECT_SAME_BITS(out[2], -INFINITY);
        EXPECT_SAME_BITS(out[3], 0.0f);
        EXPECT_TRUE(std::isnan(out[4]) && std::isnan(out[5]) && std::isnan(out[8]));
        EXPECT_EQ(bits(out[6]), 0x7FE00001u);
    }
}

TEST(InvSqrt32, WarningsOfARejectedBlock) {
    // -1 at place 0 and 0 at place 7 of one block of 8.  The low tiers walk
    // the lanes in order, so the later zero wins; the top tier writes all
    // singularities before all domain errors, so the negative wins.
    std::vector<float> v(8, 2.0f);
    v[0] = -1.0f;
    v[7] = 0.0f;
    OrvStatus status;
    run(orvsInvSqrt_32f_A11, v, &status);
    EXPECT_EQ(status, orvStatusSingularity);
    run(orvsInvSqrt_32f_A21, v, &status);
    EXPECT_EQ(status, orvStatusSingularity);
    run(orvsInvSqrt_32f_A24, v, &status);
    EXPECT_EQ(status, orvStatusDomain);
    std::swap(v[0], v[7]);
    for (Fn32 fn : kInvSqrt32) {
        run(fn, v, &status);
        EXPECT_EQ(status, orvStatusDomain);
    }
    // In the tail of the top tier each element writes its own code, so the
    // later one wins.
    std::vector<float> tail(10, 2.0f);
    tail[8] = -1.0f;
    tail[9] = 0.0f;
    run(orvsInvSqrt_32f_A24, tail, &status);
    EXPECT_EQ(status, orvStatusSingularity);
    std::swap(tail[8], tail[9]);
    run(orvsInvSqrt_32f_A24, tail, &status);
    EXPECT_EQ(status, orvStatusDomain);
    // Across blocks the last block with a warning wins.
    std::vector<float> two(16, 2.0f);
    two[3] = -1.0f;
    two[12] = 0.0f;
    run(orvsInvSqrt_32f_A24, two, &status);
    EXPECT_EQ(status, orvStatusSingularity);
}

TEST(InvSqrt32, TopTierRejectedBlockTakesTheSlowRoute) {
    // A zero in the block sends all 8 lanes through sqrt(x)/x in binary64.
    std::vector<float> v = {0.0f, 3.0f, 5.0f, 7.0f, 11.0f, 13.0f, 17.0f, f32(0x00000003)};
    std::vector<float> out = run(orvsInvSqrt_32f_A24, v);
    for (int i = 1; i < 8; ++i) {
        double x = v[i];
        EXPECT_SAME_BITS(out[i], float(std::sqrt(x) / x)) << i;
    }
}

// The one route of the top tier where an element's result depends on its
// neighbours, as its record declares: 0x3E8FDD2D takes the block formula
// alone and among ordinary values, and the slow route beside a zero, a
// negative or a denormal element, one ulp apart.
TEST(InvSqrt32, TopTierNeighbourDependenceStaysWithinOneUlp) {
    const float x = f32(0x3E8FDD2D);
    const float alone = run(orvsInvSqrt_32f_A24, std::vector<float>{x})[0];
    const float slow = float(std::sqrt(double(x)) / double(x));
    EXPECT_EQ(bits(slow), 0x3FF17923u);
    std::vector<float> ordinary(8, 2.0f);
    ordinary[5] = x;
    EXPECT_SAME_BITS(run(orvsInvSqrt_32f_A24, ordinary)[5], alone);
    for (uint32_t other : {0x00000000u, 0xBF800000u, 0x00000001u}) {
        std::vector<float> v = ordinary;
        v[2] = f32(other);
        const float beside = run(orvsInvSqrt_32f_A24, v)[5];
        EXPECT_SAME_BITS(beside, slow) << std::hex << other;
        EXPECT_LE(std::abs(int64_t(bits(beside)) - int64_t(bits(alone))), 1) << std::hex << other;
    }
}

TEST(InvSqrt64, SpecialValuesAndWarnings) {
    std::vector<double> v = {0.25, -0.0, kInf, f64(0x7FF0000000000001), 0.25, -3.0, 0.0, 0.25};
    for (Fn64 fn : kInvSqrt64) {
        OrvStatus status;
        std::vector<double> out = run(fn, v, &status);
        EXPECT_EQ(status, orvStatusSingularity);  // the zero at 6 comes after the -3 at 5
        EXPECT_SAME_BITS(out[1], -kInf);
        EXPECT_SAME_BITS(out[2], 0.0);
        EXPECT_EQ(bits(out[3]), 0x7FF8000000000001u);
        EXPECT_EQ(bits(out[5]), 0xFFF8000000000000u);
        EXPECT_SAME_BITS(out[6], kInf);
    }
}

}  // namespace
