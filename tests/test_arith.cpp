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

// With both operands NaN, Add and Mul give src1's NaN, made quiet, in the
// peel, the rounds and the tail alike, in place or not: which NaN comes out
// does not depend on the element's position.
template <class T, class U, class Fn>
void expectFirstNaN(Fn fn, U nan1, U nan2, U quiet1, int components) {
    for (int len = 1; len <= 40; ++len)
        for (int offset = 0; offset < 3; ++offset)  // src2 and dst moved by 0 to 2 elements
            for (int inPlace = 0; inPlace < 2; ++inPlace) {
                const int n = len * components;
                alignas(16) U a[128], b[128 + 2], d[128 + 2];
                for (int i = 0; i < n; ++i) a[i] = nan1, b[offset + i] = nan2;
                U* dst = inPlace ? a : d + offset;
                ASSERT_EQ(fn(reinterpret_cast<const T*>(a), reinterpret_cast<const T*>(b + offset),
                             reinterpret_cast<T*>(dst), len),
                          orvStatusOk);
                for (int i = 0; i < n; ++i)
                    ASSERT_EQ(dst[i], quiet1) << "len " << len << ", offset " << offset
                                              << (inPlace ? ", in place" : "") << ", element " << i;
            }
}

TEST(PlainLoops, FirstOperandsNaNAtEveryPosition) {
    const uint32_t n1 = 0x7FC00001, n2 = 0x7FC00002, s1 = 0x7F800001;
    const uint64_t m1 = 0x7FF8000000000001, m2 = 0xFFF8000000000002, t1 = 0xFFF0000000000001;
    // The reported case first: 16-byte aligned, len 7, 8 and 9.
    alignas(16) float a[9], b[9], d[9];
    for (int len = 7; len <= 9; ++len) {
        for (int i = 0; i < len; ++i) a[i] = f32(n1), b[i] = f32(n2);
        ASSERT_EQ(orvsAdd_32f_A24(a, b, d, len), orvStatusOk);
        for (int i = 0; i < len; ++i) EXPECT_EQ(bits(d[i]), n1) << "len " << len << ", element " << i;
    }
    expectFirstNaN<Orv32f>(orvsAdd_32f_A24, n1, n2, n1, 1);
    expectFirstNaN<Orv32f>(orvsMul_32f_A24, n1, n2, n1, 1);
    expectFirstNaN<Orv32f>(orvsMul_32f_A24, s1, n2, s1 | 0x00400000u, 1);  // signalling, quieted
    expectFirstNaN<Orv64f>(orvsAdd_64f_A53, m1, m2, m1, 1);
    expectFirstNaN<Orv64f>(orvsMul_64f_A53, t1, m1, t1 | 0x0008000000000000u, 1);
    expectFirstNaN<Orv32fc>(orvsAdd_32fc_A24, n1, n2, n1, 2);
    expectFirstNaN<Orv64fc>(orvsAdd_64fc_A53, m1, m2, m1, 2);
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
