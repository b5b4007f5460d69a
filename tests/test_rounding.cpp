// Rounding: each family against the C library's rounding of the same value
// on the hard cases (ties of both signs, the largest non-integers, values at
// and above the shifters, zeros, infinities and NaN), in a passing block, in
// a rejected one and in the tail; Rint and NearbyInt under every caller
// rounding mode; Modf's two outputs; and a signalling NaN.
#include <cfenv>
#include <cmath>
#include <limits>
#include <vector>

#include "testing.h"

namespace {

using orvtest::bits;
using orvtest::f32;
using orvtest::f64;

template <class T>
using Unary = OrvStatus (*)(const T*, T*, int32_t);

template <class T>
std::vector<T> hardCases() {
    const T shifter = std::is_same_v<T, float> ? T(0x1p23) : T(0x1p52);
    const T inf = std::numeric_limits<T>::infinity();
    std::vector<T> v = {T(0.5), T(1.5), T(2.5), T(3.5), T(0.49999997), T(0.75), T(1), T(0),
                        std::nextafter(T(0.5), T(0)), std::nextafter(T(1), T(0)),
                        shifter - T(0.5), shifter / 2 - T(0.5), shifter / 2 + T(0.5), shifter - 1,
                        shifter, shifter + 1, 2 * shifter, std::numeric_limits<T>::max(),
                        std::numeric_limits<T>::denorm_min(), std::numeric_limits<T>::min(), inf};
    for (size_t i = 0, n = v.size(); i < n; ++i) v.push_back(-v[i]);
    return v;
}

// Every hard case at every position of a passing block (ordinary
// neighbours), beside a NaN (a rejected block), and alone (the tail).
template <class T, class Expected>
void checkFamily(Unary<T> fn, Expected expected, const char* name) {
    constexpr int N = std::is_same_v<T, float> ? 8 : 4;
    for (T x : hardCases<T>())
        for (T neighbour : {T(0.25), std::numeric_limits<T>::quiet_NaN()})
            for (int p = 0; p < N; ++p)
                for (int len : {N, 1}) {
                    std::vector<T> src(N, neighbour), dst(N);
                    src[len == 1 ? 0 : p] = x;
                    ASSERT_EQ(fn(src.data(), dst.data(), len), orvStatusOk);
                    const T want = expected(x);
                    EXPECT_EQ(bits(dst[len == 1 ? 0 : p]), bits(want)) << name << " of " << x << " gave " << dst[p];
                }
}

// Half away from zero, as the C library's round.
template <class T>
T roundAway(T x) { return std::round(x); }

TEST(Rounding, DirectedFamiliesAndRoundMatchTheCLibrary) {
    checkFamily<float>(orvsCeil_32f, [](float x) { return std::ceil(x); }, "Ceil 32f");
    checkFamily<double>(orvsCeil_64f, [](double x) { return std::ceil(x); }, "Ceil 64f");
    checkFamily<float>(orvsFloor_32f, [](float x) { return std::floor(x); }, "Floor 32f");
    checkFamily<double>(orvsFloor_64f, [](double x) { return std::floor(x); }, "Floor 64f");
    checkFamily<float>(orvsTrunc_32f, [](float x) { return std::trunc(x); }, "Trunc 32f");
    checkFamily<double>(orvsTrunc_64f, [](double x) { return std::trunc(x); }, "Trunc 64f");
    checkFamily<float>(orvsRound_32f, roundAway<float>, "Round 32f");
    checkFamily<double>(orvsRound_64f, roundAway<double>, "Round 64f");
}

// Rint follows the caller's rounding mode, ties to even in the default one;
// a zero result keeps the sign of the argument in every mode.
TEST(Rounding, RintFollowsEveryCallerMode) {
    const struct {
        int cMode;
        uint32_t mxcsr;
    } modes[] = {{FE_TONEAREST, orvtest::kMxcsrDefault},
                 {FE_UPWARD, orvtest::kMxcsrDefault | orvtest::kMxcsrRoundUp},
                 {FE_DOWNWARD, orvtest::kMxcsrDefault | orvtest::kMxcsrRoundDown},
                 {FE_TOWARDZERO, orvtest::kMxcsrDefault | orvtest::kMxcsrRoundToZero}};
    for (const auto& m : modes) {
        auto expected32 = [&](float x) {
            std::fesetround(m.cMode);
            float r = std::nearbyint(x);
            std::fesetround(FE_TONEAREST);
            return r;
        };
        auto expected64 = [&](double x) {
            std::fesetround(m.cMode);
            double r = std::nearbyint(x);
            std::fesetround(FE_TONEAREST);
            return r;
        };
        // The expectations are taken before the caller's mode is set.
        for (auto fn : {orvsRint_32f, orvsNearbyInt_32f})
            for (float x : hardCases<float>()) {
                float want = expected32(x), got[8], src[8] = {x, x, x, x, x, x, x, x};
                {
                    orvtest::FpEnvScope scope(m.mxcsr);
                    fn(src, got, 8);
                }
                EXPECT_EQ(bits(got[3]), bits(want)) << "mode " << m.cMode << ", x " << x;
            }
        for (auto fn : {orvsRint_64f, orvsNearbyInt_64f})
            for (double x : hardCases<double>()) {
                double want = expected64(x), got[4], src[4] = {x, x, x, x};
                {
                    orvtest::FpEnvScope scope(m.mxcsr);
                    fn(src, got, 4);
                }
                EXPECT_EQ(bits(got[1]), bits(want)) << "mode " << m.cMode << ", x " << x;
            }
    }
}

template <class T>
void checkModf(OrvStatus (*fn)(const T*, T*, T*, int32_t)) {
    constexpr int N = std::is_same_v<T, float> ? 8 : 4;
    for (T x : hardCases<T>())
        for (int len : {N, 1}) {
            std::vector<T> src(N, x), whole(N), fraction(N);
            ASSERT_EQ(fn(src.data(), whole.data(), fraction.data(), len), orvStatusOk);
            T wantWhole;
            T wantFraction = std::modf(x, &wantWhole);
            EXPECT_EQ(bits(whole[0]), bits(wantWhole)) << x;
            EXPECT_EQ(bits(fraction[0]), bits(wantFraction)) << x;
        }
}

// Modf: -3.75 gives -3 and -0.75; the fraction of an integer or an infinity
// is a zero of the argument's sign (2^60 gives +0, -infinity -0).
TEST(Rounding, ModfSplitsAsTheCLibrary) {
    checkModf<float>(orvsModf_32f);
    checkModf<double>(orvsModf_64f);
    const float x[2] = {-3.75f, -std::numeric_limits<float>::infinity()};
    float whole[2], fraction[2];
    ASSERT_EQ(orvsModf_32f(x, whole, fraction, 2), orvStatusOk);
    EXPECT_EQ(whole[0], -3.0f);
    EXPECT_EQ(fraction[0], -0.75f);
    EXPECT_EQ(bits(fraction[1]), 0x80000000u);
}

// A signalling NaN comes out quiet from every family.  Round and Rint leave
// MXCSR alone in the default state, so the invalid flag their sum raises
// reaches the caller; the directed guards restore the flags of entry.
TEST(Rounding, SignallingNaNIsMadeQuiet) {
    const float s32 = f32(0x7FA00000);
    const double s64 = f64(0x7FF4000000000000);
    for (auto fn : {orvsCeil_32f, orvsFloor_32f, orvsTrunc_32f, orvsRound_32f, orvsRint_32f}) {
        float src[3] = {1.5f, s32, 2.5f}, dst[3];
        orvtest::clearFlags();
        fn(src, dst, 3);
        EXPECT_EQ(bits(dst[1]), 0x7FE00000u);
        if (fn == orvsRound_32f || fn == orvsRint_32f) {
            EXPECT_NE(orvtest::flags() & orvtest::kMxcsrInvalid, 0u);
        }
    }
    for (auto fn : {orvsCeil_64f, orvsFloor_64f, orvsTrunc_64f, orvsRound_64f, orvsRint_64f}) {
        double src[1] = {s64}, dst[1];
        orvtest::clearFlags();
        fn(src, dst, 1);
        EXPECT_EQ(bits(dst[0]), 0x7FFC000000000000u);
        if (fn == orvsRound_64f || fn == orvsRint_64f) {
            EXPECT_NE(orvtest::flags() & orvtest::kMxcsrInvalid, 0u);
        }
    }
    float whole, fraction;
    ASSERT_EQ(orvsModf_32f(&s32, &whole, &fraction, 1), orvStatusOk);
    EXPECT_EQ(bits(whole), 0x7FE00000u);
    EXPECT_EQ(bits(fraction), 0x7FE00000u);
}

}  // namespace
