// Div (real) and Inv: the seed tiers' store-ahead round, its put-back and
// its drain, the divisor 2^126 where block and element paths part, the
// shared divisions' screens, and the singularity rule of each member.
// Where a result comes from rcpps, the expectation is computed here with
// the same instruction.
#include <xmmintrin.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "measure.h"
#include "testing.h"

namespace {

using namespace orvtest;

const float kInf32 = std::numeric_limits<float>::infinity();
const double kInf64 = std::numeric_limits<double>::infinity();
const float kTwoTo126 = f32(0x7E800000);  // the divisor where block and element paths part

float seed(float x) { return _mm_cvtss_f32(_mm_rcp_ps(_mm_set1_ps(x))); }
float newton(float x) {
    float y = seed(x);
    return y * (2.0f - x * y);
}

// ulps between two doubles of the same sign.
int64_t ulpDistance(double x, double y) { return std::abs(int64_t(bits(x)) - int64_t(bits(y))); }

// ---- Seed tiers ------------------------------------------------------------

// rcpps of 2^127 is the exact denormal 2^-127, in a round and alone; 2^126
// passes the round's screen and takes the Newton step there.
TEST(SeedTiers, ReciprocalsAtTheTopOfTheRange) {
    const float x[8] = {f32(0x7F000000), 1.5f, 2.5f, -3.5f, 4.5f, 5.5f, 6.5f, 7.5f};
    float dst[8];
    for (auto fn : {orvsInv_32f_A11, orvsInv_32f_A21})
        for (int len : {8, 1}) {
            ASSERT_EQ(fn(x, dst, len), orvStatusOk);
            EXPECT_EQ(bits(dst[0]), 0x00400000u);
        }
    const float y[8] = {kTwoTo126, 1.5f, 2.5f, -3.5f, 4.5f, 5.5f, 6.5f, 7.5f};
    ASSERT_EQ(orvsInv_32f_A21(y, dst, 8), orvStatusOk);
    for (int i = 0; i < 8; ++i) EXPECT_SAME_BITS(dst[i], newton(y[i])) << i;
}

// A rejected round (zero divisor at 6 and 14) puts back the four quotients
// it stored ahead of the verdict only where dst aliases a source: a
// read-only source must never be written.
TEST(SeedTiers, ReadOnlySourceIsNeverWritten) {
    std::vector<float> a, b, expected(16), dst(16);
    for (int i = 0; i < 16; ++i) {
        a.push_back(1.25f + 0.5f * float(i));
        b.push_back(i % 8 == 6 ? 0.0f : 0.75f + 0.375f * float(i));
    }
    ReadOnlyCopy<float> roA(a), roB(b);
    ASSERT_EQ(orvsDiv_32f_A11(a.data(), b.data(), expected.data(), 16), orvStatusSingularity);
    EXPECT_EQ(orvsDiv_32f_A11(roA.data(), roB.data(), dst.data(), 16), orvStatusSingularity);
    EXPECT_EQ(std::memcmp(dst.data(), expected.data(), sizeof(float) * 16), 0);
    EXPECT_EQ(orvsInv_32f_A21(roB.data(), dst.data(), 16), orvStatusSingularity);
    EXPECT_SAME_BITS(dst[15], newton(roB.data()[15]));
}

// With len 13 a rejected first round drains 13 mod 8 = 5 elements, and the
// rounds resume at element 5.  2^126 shows the path each element took: the
// ElementPath divides, a round takes the seed.
TEST(SeedTiers, DrainRunsLenModEightElementsThenRoundsResume) {
    for (bool inPlace : {false, true}) {
        std::vector<float> a(13, 3.0f), b(13, 1.5f), dst(13);
        b[2] = 0.0f;
        b[4] = b[5] = kTwoTo126;
        const std::vector<float> divisors = b;
        float* out = inPlace ? b.data() : dst.data();
        ASSERT_EQ(orvsDiv_32f_A11(a.data(), b.data(), out, 13), orvStatusSingularity);
        EXPECT_EQ(out[2], kInf32);
        EXPECT_SAME_BITS(out[4], 3.0f / kTwoTo126);
        for (int i : {0, 1, 3, 5, 6, 7, 8, 9, 10, 11, 12}) EXPECT_SAME_BITS(out[i], seed(divisors[i]) * 3.0f) << i;
    }
    // The zero in the second round: elements 8..12 drain.
    std::vector<float> x(21, 0.5f), r(21);
    x[8] = -0.0f;
    x[12] = x[13] = kTwoTo126;
    ASSERT_EQ(orvsInv_32f_A21(x.data(), r.data(), 21), orvStatusSingularity);
    EXPECT_EQ(r[8], -kInf32);
    EXPECT_SAME_BITS(r[12], 1.0f / kTwoTo126);
    EXPECT_SAME_BITS(r[13], newton(kTwoTo126));
}

// ---- Singularity -------------------------------------------------------------

// Status of a call whose last element is a over a zero divisor, with len a
// full round, a tail, or both.
template <class T, class Fn>
OrvStatus overZero(Fn fn, T a, int len) {
    std::vector<T> x(len, T(2)), y(len, T(4)), d(len);
    x[len - 1] = a;
    y[len - 1] = T(0);
    return fn(x.data(), y.data(), d.data(), len);
}

// 32f: NaN/0 does not warn, inf/0 and 0/0 do.  64f A26, A50: NaN/0 warns
// too.  64f A53: only a finite a warns.  Inv: every zero warns.
TEST(Singularity, RuleDiffersByMember) {
    const float nan32 = std::numeric_limits<float>::quiet_NaN();
    const double nan64 = std::numeric_limits<double>::quiet_NaN();
    for (auto fn : {orvsDiv_32f_A11, orvsDiv_32f_A21, orvsDiv_32f_A24})
        for (int len : {8, 4, 11}) {
            EXPECT_EQ(overZero(fn, nan32, len), orvStatusOk);
            EXPECT_EQ(overZero(fn, -kInf32, len), orvStatusSingularity);
            EXPECT_EQ(overZero(fn, 0.0f, len), orvStatusSingularity);
        }
    for (int len : {4, 2, 7}) {
        EXPECT_EQ(overZero(orvsDiv_64f_A26, nan64, len), orvStatusSingularity);
        EXPECT_EQ(overZero(orvsDiv_64f_A26, kInf64, len), orvStatusSingularity);
        EXPECT_EQ(overZero(orvsDiv_64f_A53, nan64, len), orvStatusOk);
        EXPECT_EQ(overZero(orvsDiv_64f_A53, kInf64, len), orvStatusOk);
        EXPECT_EQ(overZero(orvsDiv_64f_A53, 0.0, len), orvStatusSingularity);
    }
    // Inv: a zero in a round (len 8) or in the tail (len 9, after a round
    // with a zero) warns.
    const float x32[9] = {1, 2, 3, -0.0f, 5, 6, 7, 8, 0.0f};
    const double x64[9] = {1, 2, 3, -0.0, 5, 6, 7, 8, 0.0};
    float d32[9];
    double d64[9];
    for (int len : {8, 9}) {
        for (auto fn : {orvsInv_32f_A11, orvsInv_32f_A21, orvsInv_32f_A24})
            EXPECT_EQ(fn(x32 + 9 - len, d32, len), orvStatusSingularity);
        for (auto fn : {orvsInv_64f_A26, orvsInv_64f_A50, orvsInv_64f_A53})
            EXPECT_EQ(fn(x64 + 9 - len, d64, len), orvStatusSingularity);
    }
}

// The A53 members keep the caller's denormals-are-zero: a denormal divisor
// then reads as zero, in the division and in the warning alike.
TEST(Singularity, A53ReadsDenormalAsZeroUnderCallersDaz) {
    const double a[2] = {1.0, 1e-10}, b[2] = {2.0, 1e-310};
    const double exact = a[1] / b[1];  // before denormals-are-zero is set
    double d[2];
    FpEnvScope scope(kMxcsrDefault | kMxcsrDaz);
    EXPECT_EQ(orvsDiv_64f_A53(a, b, d, 2), orvStatusSingularity);
    EXPECT_EQ(d[1], kInf64);
    EXPECT_EQ(orvsInv_64f_A53(b, d, 2), orvStatusSingularity);
    EXPECT_EQ(d[1], kInf64);
    EXPECT_EQ(orvsDiv_64f_A26(a, b, d, 2), orvStatusOk);  // the x87 has no such mode
    EXPECT_LE(ulpDistance(d[1], exact), 1);
}

// ---- Shared divisions of the 64f A26/A50 members ------------------------------

// Div: with four equal divisors the round and the element form make the
// same products in the same order (b^2, b^4, 1/b^4, times b^2, times b), so
// a quotient does not depend on where it stands.
TEST(SharedDivision, DivElementFormRepeatsTheRoundForEqualDivisors) {
    std::mt19937_64 rng(3);
    std::uniform_real_distribution<double> mantissa(1.0, 2.0);
    for (int k = 0; k < 2000; ++k) {
        const double b = std::ldexp(mantissa(rng), int(rng() % 60) - 30);  // b^4 inside binary32
        double a[4], d[4] = {b, b, b, b}, inRound[4], alone[4];
        for (double& x : a) x = std::ldexp(mantissa(rng), int(rng() % 400) - 200);
        ASSERT_EQ(orvsDiv_64f_A26(a, d, inRound, 4), orvStatusOk);
        ASSERT_EQ(orvsDiv_64f_A26(a, d, alone, 3), orvStatusOk);
        ASSERT_EQ(orvsDiv_64f_A26(a + 3, d, alone + 3, 1), orvStatusOk);
        for (int i = 0; i < 4; ++i) ASSERT_SAME_BITS(alone[i], inRound[i]) << a[i] << " / " << b;
    }
}

// Inv: beyond the screen's limits (x^4 would leave the normal range: the
// first values beyond each limit, 2^-256, 2^256, 1e-80, a denormal) the
// result is the plain division; up to both limits, within 3 ulps in a round
// and alone.
TEST(SharedDivision, InvScreenLimits) {
    for (double x : {f64(0x2FF6A09EFFFFFFFF), -f64(0x4FEFFFFF00000000), f64(0x2FF0000000000000),
                     -f64(0x4FF0000000000000), 1e-80, 5e-324}) {
        std::vector<double> src(9, x), dst(9);
        ASSERT_EQ(orvsInv_64f_A26(src.data(), dst.data(), 9), orvStatusOk);
        for (double r : dst) EXPECT_SAME_BITS(r, 1.0 / x) << x;
    }
    const double in[8] = {f64(0x2FF6A09F00000000), -f64(0x4FEFFFFEFFFFFFFF), 1.0 / 3.0, -7e76,
                          f64(0x2FF6A09F12345678), f64(0x4FEFFFFE00000001), 1e-70, 3.5};
    double r[8], r50[8];
    for (int len : {8, 7}) {
        ASSERT_EQ(orvsInv_64f_A26(in, r, len), orvStatusOk);
        ASSERT_EQ(orvsInv_64f_A50(in, r50, len), orvStatusOk);
        for (int i = 0; i < len; ++i) {
            EXPECT_LE(ulpDistance(r[i], 1.0 / in[i]), 3) << i;
            EXPECT_SAME_BITS(r50[i], r[i]);  // two functions over one division
        }
    }
}

// When the four lane-mates of a round all lie between 2^254 and the
// screen's limit, M = P*Q reaches 2^1022 and 1/M is a denormal with fewer
// bits: the shared division reaches 4.85 ulp there, above A50's four (its
// record leaves this band out).  Elsewhere A50 stays near 3.1 ulp.
TEST(SharedDivision, InvTopOfTheScreenStaysAtItsMeasuredMaximum) {
    const ExportInfo* e = findExport("orvsInv_64f_A50");
    ASSERT_NE(e, nullptr);
    const double lo = 0x1p254, hi = 0x1.fffffffffffffp255;
    for (Range band : {Range{{lo, hi}}, Range{{-hi, -lo}}}) {
        std::vector<Sample> s = sampleRange(*e, band, 1 << 14, 3);
        ErrorStats st = measureErrors(*e, s, runMember(*e, s));
        EXPECT_LE(st.maxUlp, 4.85) << st.worst;
    }
}

}  // namespace
