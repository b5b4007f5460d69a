// Hyperbolic functions, real members: what the generic suites cannot see.
// Sinh and Cosh: the special values of each tier, the overflow limits with
// their neighbours and the statuses, the symmetries bit for bit (one
// reduction on |x|, the sign ORed on), and the change of scale at the top
// of the range.
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "testing.h"

using namespace orvtest;

namespace {

template <class T>
using Fn = OrvStatus (*)(const T*, T*, int32_t);

template <class T>
struct Member {
    const char* name;
    Fn<T> fn;
};
const Member<float> kCosh32[] = {{"Cosh A11", orvsCosh_32f_A11}, {"Cosh A21", orvsCosh_32f_A21}, {"Cosh A24", orvsCosh_32f_A24}};
const Member<float> kSinh32[] = {{"Sinh A11", orvsSinh_32f_A11}, {"Sinh A21", orvsSinh_32f_A21}, {"Sinh A24", orvsSinh_32f_A24}};
const Member<double> kCosh64[] = {{"Cosh A26", orvsCosh_64f_A26}, {"Cosh A50", orvsCosh_64f_A50}, {"Cosh A53", orvsCosh_64f_A53}};
const Member<double> kSinh64[] = {{"Sinh A26", orvsSinh_64f_A26}, {"Sinh A50", orvsSinh_64f_A50}, {"Sinh A53", orvsSinh_64f_A53}};

template <class T>
std::vector<T> run(Fn<T> fn, const std::vector<T>& x, OrvStatus* status = nullptr) {
    std::vector<T> y(x.size());
    OrvStatus s = fn(x.data(), y.data(), int32_t(x.size()));
    if (status) *status = s;
    return y;
}
template <class T>
T one(Fn<T> fn, T x, OrvStatus* status = nullptr) {
    return run(fn, std::vector<T>{x}, status)[0];
}

// One input and the result and status it must give, as bit patterns.
template <class T, class U>
struct Case {
    Fn<T> fn;
    U x, y;
    OrvStatus status;
};
template <class T, class U>
void expectCases(std::initializer_list<Case<T, U>> cases) {
    for (const auto& c : cases) {
        OrvStatus s;
        EXPECT_EQ(bits(one(c.fn, std::bit_cast<T>(c.x), &s)), c.y) << std::hex << c.x;
        EXPECT_EQ(s, c.status) << std::hex << c.x;
    }
}
constexpr OrvStatus kOk = orvStatusOk, kOver = orvStatusOverflow;

}  // namespace

// Zeros and denormals: cosh gives exactly 1 and sinh gives x, with no
// status; +-inf give +inf (cosh) and x (sinh).
template <class T, size_t K>
void checkZerosAndInfinities(const Member<T> (&cosh)[K], const Member<T> (&sinh)[K], T denormal) {
    const T inf = std::numeric_limits<T>::infinity();
    const std::vector<T> x = {T(0), -T(0), denormal, -denormal, inf, -inf};
    for (size_t m = 0; m < K; ++m) {
        OrvStatus s;
        std::vector<T> c = run(cosh[m].fn, x, &s);
        EXPECT_EQ(s, kOk) << cosh[m].name;
        for (int i = 0; i < 4; ++i) EXPECT_SAME_BITS(c[i], T(1)) << cosh[m].name << " " << i;
        EXPECT_SAME_BITS(c[4], inf) << cosh[m].name;
        EXPECT_SAME_BITS(c[5], inf) << cosh[m].name;
        std::vector<T> y = run(sinh[m].fn, x, &s);
        EXPECT_EQ(s, kOk) << sinh[m].name;
        for (int i = 0; i < 6; ++i) EXPECT_SAME_BITS(y[i], x[i]) << sinh[m].name << " " << i;
    }
}
TEST(SinhCoshSpecialValues, ZerosDenormalsAndInfinities) {
    checkZerosAndInfinities(kCosh32, kSinh32, f32(0x007FFFFF));
    checkZerosAndInfinities(kCosh64, kSinh64, f64(1));
}

// NaNs: A53 gives all 64 bits set; Sinh A26/A50 the input bit for bit (a
// signalling NaN too); the others quiet it, Sinh keeping its sign.
TEST(SinhCoshSpecialValues, NaNsPerTier) {
    expectCases<float, uint32_t>({{orvsCosh_32f_A11, 0x7FA00001, 0x7FE00001, kOk},
                                  {orvsCosh_32f_A24, 0xFFA00001, 0x7FE00001, kOk},
                                  {orvsSinh_32f_A21, 0xFFA00001, 0xFFE00001, kOk},
                                  {orvsSinh_32f_A24, 0x7FA00001, 0x7FE00001, kOk}});
    expectCases<double, uint64_t>({{orvsCosh_64f_A26, 0x7FF4000000000001, 0x7FFC000000000001, kOk},
                                   {orvsSinh_64f_A50, 0xFFF4000000000001, 0xFFF4000000000001, kOk},
                                   {orvsCosh_64f_A53, 0x7FF8000000000002, 0xFFFFFFFFFFFFFFFF, kOk},
                                   {orvsSinh_64f_A53, 0xFFF4000000000001, 0xFFFFFFFFFFFFFFFF, kOk}});
}

// Overflow limits with their neighbours.  64f: 1025 ln2 =
// 0x408633CE8FB9F87E overflows, the double below is finite (close to
// DBL_MAX), in every tier, and 709 gives about 4.1e307.  32f: above
// 0x42B2D4FC (89.4159851) overflows; at it A21 and A24 are finite, and A11,
// whose error carries that result past FLT_MAX, gives +inf with no status.
TEST(SinhCoshLimits, OverflowAndNeighbours) {
    for (const auto* set : {&kCosh64, &kSinh64})
        for (const auto& m : *set) {
            SCOPED_TRACE(m.name);
            OrvStatus s;
            EXPECT_SAME_BITS(one(m.fn, f64(0x408633CE8FB9F87E), &s), HUGE_VAL);
            EXPECT_EQ(s, kOver);
            double below = one(m.fn, f64(0x408633CE8FB9F87D), &s);
            EXPECT_EQ(s, kOk);
            EXPECT_TRUE(std::isfinite(below) && below > 1.79e308) << below;
            EXPECT_NEAR(one(m.fn, 709.0) / 4.109203730777486e307, 1.0, 1e-14);  // cosh 709 = sinh 709
        }
    for (const auto* set : {&kCosh32, &kSinh32})
        for (const auto& m : *set) {
            SCOPED_TRACE(m.name);
            OrvStatus s;
            EXPECT_SAME_BITS(one(m.fn, f32(0x42B2D4FD), &s), HUGE_VALF);
            EXPECT_EQ(s, kOver);
            EXPECT_SAME_BITS(one(m.fn, f32(0x7F7FFFFF), &s), HUGE_VALF);
            EXPECT_EQ(s, kOver);
            float at = one(m.fn, f32(0x42B2D4FC), &s);
            EXPECT_EQ(s, kOk);
            if (m.fn == orvsCosh_32f_A11 || m.fn == orvsSinh_32f_A11)
                EXPECT_SAME_BITS(at, HUGE_VALF);
            else
                EXPECT_TRUE(std::isfinite(at) && at > 3.4e38f) << at;
        }
    // Sinh keeps the sign of x through the overflow.
    OrvStatus s;
    EXPECT_SAME_BITS(one(orvsSinh_64f_A53, -800.0, &s), -HUGE_VAL);
    EXPECT_EQ(s, kOver);
    EXPECT_SAME_BITS(one(orvsSinh_32f_A21, -90.0f, &s), -HUGE_VALF);
    EXPECT_EQ(s, kOver);
}

// The status is the last warning written: an overflow anywhere in a call
// is returned whatever follows it, and ordinary data returns orvStatusOk.
TEST(SinhCoshLimits, StatusOfMixedArrays) {
    std::vector<double> x(11, 1.5);
    x[2] = 711.0;
    x[9] = -711.0;
    for (const auto* set : {&kCosh64, &kSinh64})
        for (const auto& m : *set) {
            OrvStatus s;
            std::vector<double> y = run(m.fn, x, &s);
            EXPECT_EQ(s, kOver) << m.name;
            EXPECT_TRUE(std::isinf(y[2]) && std::isinf(y[9]) && std::isfinite(y[10])) << m.name;
        }
    std::vector<float> xf(13, -2.0f);
    for (const auto* set : {&kCosh32, &kSinh32})
        for (const auto& m : *set) {
            OrvStatus s;
            run(m.fn, xf, &s);
            EXPECT_EQ(s, kOk) << m.name;
            xf[12] = 100.0f;
            run(m.fn, xf, &s);
            EXPECT_EQ(s, kOver) << m.name;
            xf[12] = -2.0f;
        }
}

// cosh(-x) = cosh(x) and sinh(-x) = -sinh(x), bit for bit, in blocks and in
// the tail, over the whole range up to the overflow limit: only |x| enters
// the arithmetic and the sign is ORed on at the end.
template <class T, size_t K>
void checkSymmetry(const Member<T> (&cosh)[K], const Member<T> (&sinh)[K], double top) {
    std::mt19937_64 rng(14);
    std::vector<T> x(1001), minus(x.size());
    for (size_t i = 0; i < x.size(); ++i) {
        // Magnitudes spread over the binades from 2^-30 up to the top.
        double u = std::uniform_real_distribution<double>(0, 1)(rng);
        x[i] = T(std::exp2(-30 + u * (30 + std::log2(top))));
        minus[i] = -x[i];
    }
    for (size_t m = 0; m < K; ++m) {
        std::vector<T> c = run(cosh[m].fn, x), cm = run(cosh[m].fn, minus);
        std::vector<T> s = run(sinh[m].fn, x), sm = run(sinh[m].fn, minus);
        for (size_t i = 0; i < x.size(); ++i) {
            ASSERT_SAME_BITS(cm[i], c[i]) << cosh[m].name << " x = " << x[i];
            ASSERT_SAME_BITS(sm[i], -s[i]) << sinh[m].name << " x = " << x[i];
        }
    }
}
TEST(SinhCoshIdentities, SymmetryBitForBit) {
    checkSymmetry(kCosh32, kSinh32, 89.41);
    checkSymmetry(kCosh64, kSinh64, 710.47);
}

// Cosh A53 changes its scaling twice near the top (e^-a dropped from
// 708.4018337446123, the unscaled row times 2^1023 times 2 from
// 710.4704448615958); across each change consecutive doubles keep the
// ratio of e^dx.
TEST(SinhCoshLimits, TopOfRangeScalesJoin) {
    for (uint64_t edge : {0x40862336F49C3C50ull, 0x408633C378987900ull})
        for (const auto* m : {&kCosh64[2], &kSinh64[2], &kCosh64[0], &kSinh64[0]}) {
            std::vector<double> x;
            for (int d = -3; d <= 3; ++d) x.push_back(f64(edge + d));
            std::vector<double> y = run(m->fn, x);
            for (size_t i = 1; i < x.size(); ++i)
                EXPECT_NEAR(y[i] / y[i - 1], std::exp(x[i] - x[i - 1]), 1e-15) << m->name << " " << i;
        }
}
