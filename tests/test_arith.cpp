// The plain arithmetic loops: what their overlap test, peel and tails must
// get right, and the few places where the exact operations have visible
// choices (Abs by multiplication, Conj by exclusive or, no guard).
#include <cmath>
#include <cstring>
#include <vector>

#include "testing.h"

using namespace orvtest;

namespace {

// An overlapping call behaves as the ascending scalar loop: with dst one
// element above src1 each result feeds the next element.
TEST(PlainLoops, OverlapRunsAsAscendingScalarLoop) {
    std::vector<float> buf(101);
    for (int i = 0; i < 101; ++i) buf[i] = float(i % 7) + 0.5f;
    std::vector<float> want = buf, two(100, 2.0f);
    for (int i = 0; i < 100; ++i) want[i + 1] = want[i] + two[i];
    ASSERT_EQ(orvsAdd_32f_A24(buf.data(), two.data(), buf.data() + 1, 100), orvStatusOk);
    for (int i = 0; i < 101; ++i) EXPECT_EQ(buf[i], want[i]) << i;

    // And one element below: each element reads its neighbour before that
    // neighbour is overwritten.
    std::vector<double> d(101), wantD;
    for (int i = 0; i < 101; ++i) d[i] = 1.0 + i;
    wantD = d;
    for (int i = 0; i < 100; ++i) wantD[i] = wantD[i + 1] * wantD[i + 1];
    ASSERT_EQ(orvsSqr_64f_A53(d.data() + 1, d.data(), 100), orvStatusOk);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(d[i], wantD[i]) << i;
}

TEST(PlainLoops, OperandOrderAndEveryLength) {
    for (int len = 1; len <= 40; ++len) {
        std::vector<double> a(len), b(len), sub(len), mul(len);
        for (int i = 0; i < len; ++i) a[i] = 3.0 * i + 1, b[i] = 0.5 * i - 7;
        ASSERT_EQ(orvsSub_64f_A53(a.data(), b.data(), sub.data(), len), orvStatusOk);
        ASSERT_EQ(orvsMul_64f_A53(a.data(), b.data(), mul.data(), len), orvStatusOk);
        for (int i = 0; i < len; ++i) {
            EXPECT_EQ(sub[i], a[i] - b[i]) << len << " " << i;
            EXPECT_EQ(mul[i], a[i] * b[i]) << len << " " << i;
        }
    }
}

// A destination that can never reach 16-byte alignment (4 mod 8 for
// doubles) takes the scalar loop, with the same results.
TEST(PlainLoops, DestinationOffByHalfAnElement) {
    std::vector<double> a(64), b(64);
    alignas(16) unsigned char raw[64 * 8 + 16];
    auto* dst = reinterpret_cast<double*>(raw + 4);
    for (int i = 0; i < 64; ++i) a[i] = i * 1.25, b[i] = 1.0 / (i + 1);
    ASSERT_EQ(orvsAdd_64f_A53(a.data(), b.data(), dst, 64), orvStatusOk);
    for (int i = 0; i < 64; ++i) {
        double got;
        std::memcpy(&got, raw + 4 + 8 * i, 8);
        EXPECT_EQ(got, a[i] + b[i]) << i;
    }
}

// No guard: the arithmetic follows the caller's rounding and flush modes.
TEST(PlainLoops, FollowCallersRoundingAndFlush) {
    std::vector<float> one(20, 1.0f), tiny(20, 0x1p-30f), out(20);
    {
        FpEnvScope up(kMxcsrDefault | kMxcsrRoundUp);
        orvsAdd_32f_A24(one.data(), tiny.data(), out.data(), 20);
    }
    for (float v : out) EXPECT_EQ(v, 1.0f + 0x1p-23f);
    std::vector<double> m(20, 0x1p-1022), half(20, 0.5), prod(20);
    {
        FpEnvScope ftz(kMxcsrDefault | kMxcsrFtz);
        orvsMul_64f_A53(m.data(), half.data(), prod.data(), 20);
    }
    for (double v : prod) EXPECT_EQ(v, 0.0);
    orvsMul_64f_A53(m.data(), half.data(), prod.data(), 20);
    for (double v : prod) EXPECT_EQ(v, 0x1p-1023);
}

// Abs multiplies by 1.0 carrying the sign: a NaN keeps its sign and is
// quieted (a signalling one raises invalid), -0 gives +0, and under the
// caller's denormals-are-zero a denormal reads as zero.
TEST(Abs, IsAProductNotASignClear) {
    // 9 elements: a round of 8 and a scratch-pad tail.
    const uint32_t in[9] = {0xFFC00001, 0xFF800001, 0x80000000, 0xBF800000, 0x00000001,
                            0x80000001, 0x7F800000, 0xFF800000, 0x7FA00000};
    const uint32_t want[9] = {0xFFC00001, 0xFFC00001, 0x00000000, 0x3F800000, 0x00000001,
                              0x00000001, 0x7F800000, 0x7F800000, 0x7FE00000};
    float src[9], dst[9];
    for (int round = 0; round < 2; ++round) {
        // The same values through the round (first pass) and through the tail.
        for (int i = 0; i < 9; ++i) src[i] = f32(in[(i + round) % 9]);
        clearFlags();
        ASSERT_EQ(orvsAbs_32f_A24(src, dst, 9), orvStatusOk);
        EXPECT_TRUE(flags() & kMxcsrInvalid) << "a signalling NaN raises invalid";
        for (int i = 0; i < 9; ++i) EXPECT_EQ(bits(dst[i]), want[(i + round) % 9]) << i;
    }
    {
        FpEnvScope daz(kMxcsrDefault | kMxcsrDaz);
        double d[3] = {-0x1p-1070, 0x1p-1060, -2.5}, r[3];
        ASSERT_EQ(orvsAbs_64f_A53(d, r, 3), orvStatusOk);
        EXPECT_EQ(bits(r[0]), 0u);
        EXPECT_EQ(bits(r[1]), 0u);
        EXPECT_EQ(r[2], 2.5);
    }
}

// Conj is an exclusive or on the sign of im: NaN payloads survive, no flag
// rises, re is untouched bit for bit.
TEST(Conj, FlipsOnlyTheImaginarySign) {
    Orv64fc z[3] = {{f64(0x7FF4000000000001), f64(0x7FF0000000000123)},
                    {-0.0, 0.0},
                    {1.5, f64(0xFFF8000000000000)}};
    Orv64fc w[3];
    clearFlags();
    ASSERT_EQ(orvsConj_64fc_A53(z, w, 3), orvStatusOk);
    EXPECT_EQ(flags(), 0u);
    EXPECT_EQ(bits(w[0].re), 0x7FF4000000000001u);
    EXPECT_EQ(bits(w[0].im), 0xFFF0000000000123u);
    EXPECT_EQ(bits(w[1].re), 0x8000000000000000u);
    EXPECT_EQ(bits(w[1].im), 0x8000000000000000u);
    EXPECT_EQ(bits(w[2].im), 0x7FF8000000000000u);

    Orv32fc c[7], d[7];
    for (int i = 0; i < 7; ++i) c[i] = {float(i), float(-i) - 0.5f};
    ASSERT_EQ(orvsConj_32fc_A24(c, d, 7), orvStatusOk);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(d[i].re, float(i));
        EXPECT_EQ(d[i].im, float(i) + 0.5f);
    }
}

TEST(ComplexAddSub, ComponentwiseAtEveryLength) {
    for (int len = 1; len <= 21; ++len) {
        std::vector<Orv32fc> a(len), b(len), s(len), d(len);
        for (int i = 0; i < len; ++i) a[i] = {1.0f + i, -2.0f * i}, b[i] = {0.25f * i, 3.0f};
        ASSERT_EQ(orvsAdd_32fc_A24(a.data(), b.data(), s.data(), len), orvStatusOk);
        ASSERT_EQ(orvsSub_32fc_A24(a.data(), b.data(), d.data(), len), orvStatusOk);
        for (int i = 0; i < len; ++i) {
            EXPECT_EQ(s[i].re, a[i].re + b[i].re);
            EXPECT_EQ(s[i].im, a[i].im + b[i].im);
            EXPECT_EQ(d[i].re, a[i].re - b[i].re);
            EXPECT_EQ(d[i].im, a[i].im - b[i].im);
        }
    }
}

}  // namespace
