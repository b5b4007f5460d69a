// Div (real) and Inv: the seed tiers' block and element paths and their
// store-ahead round, the shared divisions' screens, and the singularity
// rule of each member.  Where a result comes from rcpps, the expectation is
// computed here with the same instruction.
#include <sys/mman.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "common/testing.h"

namespace {

using orvtest::bits;
using orvtest::f32;
using orvtest::f64;

using Div32 = OrvStatus (*)(const float*, const float*, float*, int32_t);
using Div64 = OrvStatus (*)(const double*, const double*, double*, int32_t);
using Inv32 = OrvStatus (*)(const float*, float*, int32_t);
using Inv64 = OrvStatus (*)(const double*, double*, int32_t);

const float kInf32 = std::numeric_limits<float>::infinity();
const float kNaN32 = std::numeric_limits<float>::quiet_NaN();
const double kInf64 = std::numeric_limits<double>::infinity();
const double kNaN64 = std::numeric_limits<double>::quiet_NaN();
const float kTwoTo126 = f32(0x7E800000);  // the divisor where block and element paths part

float seed(float x) { return _mm_cvtss_f32(_mm_rcp_ps(_mm_set1_ps(x))); }
float newton(float x) {
    float y = seed(x);
    return y * (2.0f - x * y);
}
// The seed tiers' results, for divisors the block takes.
float blockQuotient11(float a, float b) { return seed(b) * a; }
float blockQuotient21(float a, float b) { return newton(b) * a; }

// ulps between two finite doubles of the same sign.
int64_t ulpDistance(double x, double y) {
    return std::abs(int64_t(bits(x)) - int64_t(bits(y)));
}

// ---- Seed tiers: block formula, special path, and where they part ---------

TEST(DivSeedTiers, BlockAndElementPathsGiveTheSeedFormulaOrTheDivision) {
    const float a[9] = {3.0f, -7.5f, 1e30f, 0.1f, 2.0f, 5.0f, -1.0f, 1e-30f, 3.0f};
    const float b[9] = {1.7f, 3.0f, -1e-20f, 7e25f, kTwoTo126, 0.3f, 9.0f, 1e10f, kTwoTo126};
    struct Member {
        Div32 fn;
        float (*block)(float, float);
    } members[] = {{orvsDiv_32f_A11, blockQuotient11}, {orvsDiv_32f_A21, blockQuotient21}};
    for (const Member& m : members) {
        float dst[9];
        ASSERT_EQ(m.fn(a, b, dst, 9), orvStatusOk);
        // Elements 0..7 form a block that passes, 2^126 included; element 8
        // is the tail, where 2^126 goes to the hardware division.
        for (int i = 0; i < 8; ++i) EXPECT_SAME_BITS(dst[i], m.block(a[i], b[i])) << i;
        EXPECT_SAME_BITS(dst[8], a[8] / b[8]);
    }
}

TEST(InvSeedTiers, HugeValuesTakeTheHardwareDivisionAndItsDenormal) {
    const float twoTo127 = f32(0x7F000000);
    const float x[8] = {twoTo127, 1.5f, 2.5f, 3.5f, 4.5f, 5.5f, 6.5f, 7.5f};
    float dst[8];
    for (Inv32 fn : {orvsInv_32f_A11, orvsInv_32f_A21}) {
        for (int len : {8, 1}) {
            ASSERT_EQ(fn(x, dst, len), orvStatusOk);
            EXPECT_EQ(bits(dst[0]), 0x00400000u);  // 2^-127, denormal, exact
        }
    }
    // 2^126 passes the block: there it is the seed, or the Newton step on it.
    const float y[8] = {kTwoTo126, 1.5f, 2.5f, -3.5f, 4.5f, 5.5f, 6.5f, 7.5f};
    ASSERT_EQ(orvsInv_32f_A11(y, dst, 8), orvStatusOk);
    for (int i = 0; i < 8; ++i) EXPECT_SAME_BITS(dst[i], seed(y[i])) << i;
    ASSERT_EQ(orvsInv_32f_A21(y, dst, 8), orvStatusOk);
    for (int i = 0; i < 8; ++i) EXPECT_SAME_BITS(dst[i], newton(y[i])) << i;
}

// ---- StoreAheadBlock: in place, read-only sources, the drain -------------

struct SeedCase {
    std::vector<float> a, b;
};
SeedCase blockWithZeroSeventhDivisor(int len) {
    SeedCase c;
    for (int i = 0; i < len; ++i) {
        c.a.push_back(1.25f + 0.5f * float(i));
        c.b.push_back(i % 8 == 6 ? 0.0f : 0.75f + 0.375f * float(i));
    }
    return c;
}

TEST(DivSeedTiers, InPlaceRejectedBlockMatchesSeparateArrays) {
    for (Div32 fn : {orvsDiv_32f_A11, orvsDiv_32f_A21}) {
        for (int len : {8, 16, 13}) {
            SeedCase c = blockWithZeroSeventhDivisor(len);
            std::vector<float> separate(len);
            ASSERT_EQ(fn(c.a.data(), c.b.data(), separate.data(), len), orvStatusSingularity);
            std::vector<float> onB = c.b, onA = c.a;
            EXPECT_EQ(fn(c.a.data(), onB.data(), onB.data(), len), orvStatusSingularity);
            EXPECT_EQ(fn(onA.data(), c.b.data(), onA.data(), len), orvStatusSingularity);
            for (int i = 0; i < len; ++i) {
                EXPECT_SAME_BITS(onB[i], separate[i]) << "dst == src2, len " << len << ", i " << i;
                EXPECT_SAME_BITS(onA[i], separate[i]) << "dst == src1, len " << len << ", i " << i;
            }
            EXPECT_EQ(separate[6], kInf32);
        }
    }
}

// A page that only reads: the put-back of a rejected block must not write
// a source that dst does not alias (it would fault here).
class ReadOnlyPage {
public:
    explicit ReadOnlyPage(const std::vector<float>& values) {
        size_ = size_t(sysconf(_SC_PAGESIZE));
        page_ = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        std::memcpy(page_, values.data(), values.size() * sizeof(float));
        mprotect(page_, size_, PROT_READ);
    }
    ~ReadOnlyPage() { munmap(page_, size_); }
    const float* data() const { return static_cast<const float*>(page_); }

private:
    void* page_;
    size_t size_;
};

TEST(DivSeedTiers, ReadOnlySourceIsNeverWritten) {
    SeedCase c = blockWithZeroSeventhDivisor(16);
    ReadOnlyPage a(c.a), b(c.b);
    std::vector<float> expected(16), dst(16), onB = c.b;
    ASSERT_EQ(orvsDiv_32f_A11(c.a.data(), c.b.data(), expected.data(), 16), orvStatusSingularity);
    EXPECT_EQ(orvsDiv_32f_A11(a.data(), b.data(), dst.data(), 16), orvStatusSingularity);
    EXPECT_EQ(orvsDiv_32f_A11(a.data(), onB.data(), onB.data(), 16), orvStatusSingularity);
    for (int i = 0; i < 16; ++i) {
        EXPECT_SAME_BITS(dst[i], expected[i]) << i;
        EXPECT_SAME_BITS(onB[i], expected[i]) << i;
    }
    std::vector<float> x = c.b, inv(16);
    ReadOnlyPage src(x);
    EXPECT_EQ(orvsInv_32f_A21(src.data(), inv.data(), 16), orvStatusSingularity);
    EXPECT_EQ(inv[14], kInf32);
    EXPECT_SAME_BITS(inv[15], newton(x[15]));
}

// With len 13 a rejected first block drains 13 mod 8 = 5 elements, and the
// round resumes at element 5.  2^126 shows the path: the element path
// divides, the block takes the seed.
TEST(DivSeedTiers, DrainRunsLenModEightElementsThenRoundsResume) {
    for (bool inPlace : {false, true}) {
        std::vector<float> a(13, 3.0f), b(13, 1.5f);
        b[2] = 0.0f;
        b[4] = kTwoTo126;
        b[5] = kTwoTo126;
        std::vector<float> dst(13), keptB = b;
        float* out = inPlace ? b.data() : dst.data();
        ASSERT_EQ(orvsDiv_32f_A11(a.data(), b.data(), out, 13), orvStatusSingularity);
        EXPECT_EQ(out[2], kInf32);
        EXPECT_SAME_BITS(out[4], 3.0f / kTwoTo126);
        EXPECT_SAME_BITS(out[5], blockQuotient11(3.0f, kTwoTo126));
        for (int i : {0, 1, 3, 6, 7, 8, 9, 10, 11, 12})
            EXPECT_SAME_BITS(out[i], blockQuotient11(3.0f, keptB[i])) << i;
    }
    // The same with Inv, the zero further in: elements 0..7 pass, element 8
    // rejects the block 8..15 and the drain takes 8..12.
    std::vector<float> x(21, 0.5f), r(21);
    x[8] = -0.0f;
    x[12] = kTwoTo126;
    x[13] = kTwoTo126;
    ASSERT_EQ(orvsInv_32f_A21(x.data(), r.data(), 21), orvStatusSingularity);
    EXPECT_EQ(r[8], -kInf32);
    EXPECT_SAME_BITS(r[12], 1.0f / kTwoTo126);
    EXPECT_SAME_BITS(r[13], newton(kTwoTo126));
    EXPECT_SAME_BITS(r[20], newton(0.5f));
}

// ---- Singularity rules -----------------------------------------------------

// Numerator over a zero divisor, in a full block and in the tail.
template <class T, class Fn>
OrvStatus divideByZero(Fn fn, T a, int len) {
    std::vector<T> x(len, T(2)), y(len, T(4)), d(len);
    x[len - 1] = a;
    y[len - 1] = T(0);
    return fn(x.data(), y.data(), d.data(), len);
}

TEST(DivSingularity, RuleDiffersByMember) {
    struct Row {
        const char* name;
        OrvStatus nanOverZero, infOverZero, zeroOverZero, oneOverZero;
    };
    const Row rows32[] = {{"orvsDiv_32f_A11", 0, 18, 18, 18},
                          {"orvsDiv_32f_A21", 0, 18, 18, 18},
                          {"orvsDiv_32f_A24", 0, 18, 18, 18}};
    const Div32 fns32[] = {orvsDiv_32f_A11, orvsDiv_32f_A21, orvsDiv_32f_A24};
    for (int m = 0; m < 3; ++m)
        for (int len : {8, 4, 3}) {
            EXPECT_EQ(divideByZero(fns32[m], kNaN32, len), rows32[m].nanOverZero) << rows32[m].name;
            EXPECT_EQ(divideByZero(fns32[m], -kInf32, len), rows32[m].infOverZero) << rows32[m].name;
            EXPECT_EQ(divideByZero(fns32[m], 0.0f, len), rows32[m].zeroOverZero) << rows32[m].name;
            EXPECT_EQ(divideByZero(fns32[m], 1.0f, len), rows32[m].oneOverZero) << rows32[m].name;
        }
    const Row rows64[] = {{"orvsDiv_64f_A26", 18, 18, 18, 18},
                          {"orvsDiv_64f_A50", 18, 18, 18, 18},
                          {"orvsDiv_64f_A53", 0, 0, 18, 18}};
    const Div64 fns64[] = {orvsDiv_64f_A26, orvsDiv_64f_A50, orvsDiv_64f_A53};
    for (int m = 0; m < 3; ++m)
        for (int len : {4, 2, 5}) {
            EXPECT_EQ(divideByZero(fns64[m], kNaN64, len), rows64[m].nanOverZero) << rows64[m].name;
            EXPECT_EQ(divideByZero(fns64[m], kInf64, len), rows64[m].infOverZero) << rows64[m].name;
            EXPECT_EQ(divideByZero(fns64[m], 0.0, len), rows64[m].zeroOverZero) << rows64[m].name;
            EXPECT_EQ(divideByZero(fns64[m], -1.0, len), rows64[m].oneOverZero) << rows64[m].name;
        }
}

TEST(DivSingularity, IeeeResultsOfZeroDivisors) {
    const float a[4] = {-2.0f, 0.0f, kInf32, 1.0f}, b[4] = {0.0f, -0.0f, -0.0f, -0.0f};
    float d[4];
    for (Div32 fn : {orvsDiv_32f_A11, orvsDiv_32f_A21, orvsDiv_32f_A24}) {
        ASSERT_EQ(fn(a, b, d, 4), orvStatusSingularity);
        EXPECT_EQ(d[0], -kInf32);
        EXPECT_TRUE(std::isnan(d[1]));
        EXPECT_EQ(d[2], -kInf32);
        EXPECT_EQ(d[3], -kInf32);
    }
    const double a64[4] = {-2.0, 0.0, kInf64, 1.0}, b64[4] = {0.0, -0.0, -0.0, -0.0};
    double d64[4];
    for (Div64 fn : {orvsDiv_64f_A26, orvsDiv_64f_A53}) {
        ASSERT_EQ(fn(a64, b64, d64, 4), orvStatusSingularity);
        EXPECT_EQ(d64[0], -kInf64);
        EXPECT_EQ(bits(d64[1]), 0xFFF8000000000000u);  // the default NaN
        EXPECT_EQ(d64[2], -kInf64);
        EXPECT_EQ(d64[3], -kInf64);
    }
}

// The divide-and-store tiers test the divisors they loaded: in place with
// dst == src2 the zero has been overwritten by infinity before the test.
TEST(DivSingularity, InPlaceZeroDivisorStillWarns) {
    for (int len : {4, 1}) {
        std::vector<float> a(len, 1.0f), b(len, 2.0f);
        b[0] = 0.0f;
        EXPECT_EQ(orvsDiv_32f_A24(a.data(), b.data(), b.data(), len), orvStatusSingularity);
        std::vector<float> x(len, 2.0f);
        x[0] = -0.0f;
        EXPECT_EQ(orvsInv_32f_A24(x.data(), x.data(), len), orvStatusSingularity);
    }
    for (int len : {2, 1}) {
        std::vector<double> a(len, 1.0), b(len, 2.0), x(len, 3.0);
        b[len - 1] = 0.0;
        x[len - 1] = 0.0;
        EXPECT_EQ(orvsDiv_64f_A53(a.data(), b.data(), b.data(), len), orvStatusSingularity);
        EXPECT_EQ(orvsInv_64f_A53(x.data(), x.data(), len), orvStatusSingularity);
    }
}

TEST(InvSingularity, ZeroWarnsInEveryMember) {
    const float x32[9] = {1, 2, 3, -0.0f, 5, 6, 7, 8, 0.0f};
    const double x64[9] = {1, 2, 3, -0.0, 5, 6, 7, 8, 0.0};
    float d32[9];
    double d64[9];
    for (Inv32 fn : {orvsInv_32f_A11, orvsInv_32f_A21, orvsInv_32f_A24})
        for (int len : {8, 9}) {
            ASSERT_EQ(fn(x32, d32, len), orvStatusSingularity);
            EXPECT_EQ(d32[3], -kInf32);
        }
    for (Inv64 fn : {orvsInv_64f_A26, orvsInv_64f_A50, orvsInv_64f_A53})
        for (int len : {8, 9}) {
            ASSERT_EQ(fn(x64, d64, len), orvStatusSingularity);
            EXPECT_EQ(d64[3], -kInf64);
        }
}

// The A53 members keep the caller's denormals-are-zero: a denormal divisor
// then reads as zero, in the division and in the warning alike.
TEST(DivSingularity, A53ReadsDenormalAsZeroUnderCallersDaz) {
    const double a[2] = {1.0, 1e-10}, b[2] = {2.0, 1e-310};
    const double x87Quotient = a[1] / b[1];  // before denormals-are-zero is set
    double d[2];
    orvtest::FpEnvScope scope(orvtest::kMxcsrDefault | orvtest::kMxcsrDaz);
    EXPECT_EQ(orvsDiv_64f_A53(a, b, d, 2), orvStatusSingularity);
    EXPECT_EQ(d[1], kInf64);
    EXPECT_EQ(orvsInv_64f_A53(b, d, 2), orvStatusSingularity);
    EXPECT_EQ(d[1], kInf64);
    // The x87 member has no denormals-are-zero to obey.
    EXPECT_EQ(orvsDiv_64f_A26(a, b, d, 2), orvStatusOk);
    EXPECT_LE(ulpDistance(d[1], x87Quotient), 1);
}

// ---- Shared x87 division of Div 64f A26/A50 -------------------------------

TEST(DivShared, ProductsOutsideFloatRangeTakeTheElementForm) {
    // 1e200^4 and 1e-200^4 are out of binary32 range: the round is rejected
    // and every quotient goes through b^4 in the x87 range.
    for (double b : {1e200, -1e-200, 3e307, 4e-320}) {
        const double a[4] = {3.0, -7e-100, 1e300, 5e-310};
        const double d[4] = {b, b, b, b};
        double q[4];
        ASSERT_EQ(orvsDiv_64f_A26(a, d, q, 4), orvStatusOk);
        for (int i = 0; i < 4; ++i)
            EXPECT_LE(ulpDistance(q[i], a[i] / b), 1) << a[i] << " / " << b;
    }
}

TEST(DivShared, PartialProductsBeyondDoubleRangeStayInTheX87Stack) {
    // Products that binary64 would overflow (1e600), underflow (1e-600) or
    // hold only as a denormal (2.1e-310, some 45 bits) while p*q is well
    // inside binary32: the round passes and must lose nothing.
    const double b[2][4] = {{1e300, 1e300, 1e-300, 1e-300}, {3e-160, 7e-151, 1e150, 3e150}};
    const double a[4] = {1.0, -2.0, 3.0, 4e-300};
    for (const auto& d : b) {
        double q[4];
        ASSERT_EQ(orvsDiv_64f_A26(a, d, q, 4), orvStatusOk);
        for (int i = 0; i < 4; ++i) EXPECT_LE(ulpDistance(q[i], a[i] / d[i]), 1) << a[i] << " / " << d[i];
    }
}

// With four equal divisors the round and the element form make the same
// products in the same order (b^2, b^4, 1/b^4, times b^2, times b), so a
// quotient does not depend on where it stands.
TEST(DivShared, ElementFormRepeatsTheRoundForEqualDivisors) {
    std::mt19937_64 rng(3);
    std::uniform_real_distribution<double> mantissa(1.0, 2.0);
    for (int k = 0; k < 2000; ++k) {
        // |b^4| inside binary32, so that the round passes.
        const double b = std::ldexp(mantissa(rng), int(rng() % 60) - 30);
        double a[4], d[4] = {b, b, b, b}, inBlock[4], alone[4];
        for (double& x : a) x = std::ldexp(mantissa(rng), int(rng() % 400) - 200);
        ASSERT_EQ(orvsDiv_64f_A26(a, d, inBlock, 4), orvStatusOk);
        ASSERT_EQ(orvsDiv_64f_A26(a, d, alone, 3), orvStatusOk);
        ASSERT_EQ(orvsDiv_64f_A26(a + 3, d, alone + 3, 1), orvStatusOk);
        for (int i = 0; i < 4; ++i) ASSERT_SAME_BITS(alone[i], inBlock[i]) << a[i] << " / " << b;
    }
}

TEST(DivShared, ResultDoesNotDependOnTheCallersX87Precision) {
    const double a[5] = {1.0, 2.0, 3.0, 4.0, 5.0}, b[5] = {3.0, 7.0, 11.0, 13.0, 17.0};
    double ref[5], q[5];
    ASSERT_EQ(orvsDiv_64f_A26(a, b, ref, 5), orvStatusOk);
    orvtest::FpEnvScope scope(orvtest::kMxcsrDefault, orvtest::kX87Single);
    ASSERT_EQ(orvsDiv_64f_A26(a, b, q, 5), orvStatusOk);
    for (int i = 0; i < 5; ++i) EXPECT_SAME_BITS(q[i], ref[i]) << i;
    EXPECT_LE(ulpDistance(ref[0], 1.0 / 3.0), 1);
}

// ---- Shared vector division of Inv 64f A26/A50 ----------------------------

TEST(InvShared, OutsideTheScreenItIsThePlainDivision) {
    // x^4 would leave the normal range: 1e-80, the first values beyond
    // each limit, 2^-256 and 2^256 (whose fourth powers, 2^-1024 and
    // 2^1024, make 1/x^4 infinite or zero), and the far ends.
    for (double x : {1e-80, f64(0x2FF6A09EFFFFFFFF), -f64(0x4FEFFFFF00000000), f64(0x2FF0000000000000),
                     -f64(0x4FF0000000000000), 1e300, 5e-324}) {
        std::vector<double> src(8, x), dst(8);
        src.push_back(x);  // and the tail
        dst.resize(9);
        ASSERT_EQ(orvsInv_64f_A26(src.data(), dst.data(), 9), orvStatusOk);
        for (double r : dst) EXPECT_SAME_BITS(r, 1.0 / x) << x;
    }
}

TEST(InvShared, InsideTheScreenWithinThreeUlps) {
    const double edge[8] = {f64(0x2FF6A09F00000000), -f64(0x4FEFFFFEFFFFFFFF), 1.0 / 3.0, -7e76,
                            f64(0x2FF6A09F12345678), f64(0x4FEFFFFE00000001), 1e-70, 3.5};
    double r[9];
    ASSERT_EQ(orvsInv_64f_A26(edge, r, 8), orvStatusOk);
    for (int i = 0; i < 8; ++i) EXPECT_LE(ulpDistance(r[i], 1.0 / edge[i]), 3) << i;
    ASSERT_EQ(orvsInv_64f_A26(edge + 7, r, 1), orvStatusOk);
    EXPECT_LE(ulpDistance(r[0], 1.0 / 3.5), 3);
}

// ---- Members that are one computation -------------------------------------

TEST(SharedMembers, A26AndA50GiveEqualBits) {
    std::mt19937_64 rng(7);
    std::vector<double> a(4099), b(4099), x(4099);
    for (size_t i = 0; i < a.size(); ++i) {
        a[i] = f64(rng());
        b[i] = f64(rng());
        x[i] = i % 3 ? std::ldexp(1.0 + double(rng() % 1000) / 1000, int(rng() % 600) - 300) : b[i];
    }
    b[17] = 0.0;
    a[40] = kNaN64;
    std::vector<double> d26(a.size()), d50(a.size());
    const int32_t n = int32_t(a.size());
    EXPECT_EQ(orvsDiv_64f_A26(a.data(), b.data(), d26.data(), n),
              orvsDiv_64f_A50(a.data(), b.data(), d50.data(), n));
    EXPECT_EQ(std::memcmp(d26.data(), d50.data(), n * sizeof(double)), 0);
    EXPECT_EQ(orvsInv_64f_A26(x.data(), d26.data(), n), orvsInv_64f_A50(x.data(), d50.data(), n));
    EXPECT_EQ(std::memcmp(d26.data(), d50.data(), n * sizeof(double)), 0);
}

}  // namespace
