// Cbrt, InvCbrt, Pow2o3 and Pow3o2: what the generic suites cannot see.
// The special values and warnings as one table, alone and inside a block
// of ordinary values; exact powers giving exact results in every binade,
// through the block, the denormal scaling and the far ends of Pow3o2; and
// Pow3o2 rounding once where x sqrt(x) would round twice, for large x and
// into the denormals.
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "testing.h"

using namespace orvtest;

namespace {

template <class T>
using Fn = OrvStatus (*)(const T*, T*, int32_t);

enum Family { Cbrt, InvCbrt, Pow2o3, Pow3o2 };

template <class T>
struct Member {
    const char* name;
    Family family;
    Fn<T> fn;
    bool top;  // a tier that rounds exact powers exactly
};

const Member<float> k32[] = {
    {"Cbrt 32f A11", Cbrt, orvsCbrt_32f_A11, false},       {"Cbrt 32f A21", Cbrt, orvsCbrt_32f_A21, true},
    {"Cbrt 32f A24", Cbrt, orvsCbrt_32f_A24, true},        {"InvCbrt 32f A11", InvCbrt, orvsInvCbrt_32f_A11, false},
    {"InvCbrt 32f A21", InvCbrt, orvsInvCbrt_32f_A21, true}, {"InvCbrt 32f A24", InvCbrt, orvsInvCbrt_32f_A24, true},
    {"Pow2o3 32f A11", Pow2o3, orvsPow2o3_32f_A11, false}, {"Pow2o3 32f A21", Pow2o3, orvsPow2o3_32f_A21, true},
    {"Pow2o3 32f A24", Pow2o3, orvsPow2o3_32f_A24, true},  {"Pow3o2 32f A11", Pow3o2, orvsPow3o2_32f_A11, false},
    {"Pow3o2 32f A21", Pow3o2, orvsPow3o2_32f_A21, true},  {"Pow3o2 32f A24", Pow3o2, orvsPow3o2_32f_A24, true},
};
const Member<double> k64[] = {
    {"Cbrt 64f A26", Cbrt, orvsCbrt_64f_A26, true},          {"Cbrt 64f A50", Cbrt, orvsCbrt_64f_A50, true},
    {"Cbrt 64f A53", Cbrt, orvsCbrt_64f_A53, true},          {"InvCbrt 64f A26", InvCbrt, orvsInvCbrt_64f_A26, true},
    {"InvCbrt 64f A50", InvCbrt, orvsInvCbrt_64f_A50, true}, {"InvCbrt 64f A53", InvCbrt, orvsInvCbrt_64f_A53, true},
    {"Pow2o3 64f A26", Pow2o3, orvsPow2o3_64f_A26, false},   {"Pow2o3 64f A50", Pow2o3, orvsPow2o3_64f_A50, true},
    {"Pow2o3 64f A53", Pow2o3, orvsPow2o3_64f_A53, true},    {"Pow3o2 64f A26", Pow3o2, orvsPow3o2_64f_A26, true},
    {"Pow3o2 64f A50", Pow3o2, orvsPow3o2_64f_A50, true},    {"Pow3o2 64f A53", Pow3o2, orvsPow3o2_64f_A53, true},
};

template <class T>
std::vector<T> run(Fn<T> fn, const std::vector<T>& x, OrvStatus* status) {
    std::vector<T> y(x.size());
    *status = fn(x.data(), y.data(), int32_t(x.size()));
    return y;
}

bool sameBits(double a, double b) { return std::isnan(a) ? std::isnan(b) : bits(a) == bits(b); }
bool sameBits(float a, float b) { return std::isnan(a) ? std::isnan(b) : bits(a) == bits(b); }

// The special values of each family: the result (NaN: any NaN) and the
// warning; last, one ordinary exact value, which only the tiers that round
// exact powers exactly are held to.
struct Special {
    double x, result;
    OrvStatus status;
};
std::vector<Special> specials(Family f, bool is64) {
    const double inf = INFINITY, nan = NAN;
    const double tiny = is64 ? 0x1p-1074 : 0x1p-149;
    switch (f) {
        case Cbrt:
            return {{0.0, 0.0, 0}, {-0.0, -0.0, 0}, {inf, inf, 0}, {-inf, -inf, 0}, {nan, nan, 0}, {-8.0, -2.0, 0}};
        case InvCbrt:
            return {{0.0, inf, orvStatusSingularity},  {-0.0, -inf, orvStatusSingularity}, {inf, 0.0, 0},
                    {-inf, -0.0, 0},                   {nan, nan, 0},                       {-0.125, -2.0, 0}};
        case Pow2o3:
            return {{0.0, 0.0, 0}, {-0.0, 0.0, 0}, {inf, inf, 0}, {-inf, inf, 0}, {nan, nan, 0}, {-8.0, 4.0, 0}};
        case Pow3o2:
            return {{0.0, 0.0, 0},   {-0.0, 0.0, 0},   {inf, inf, 0},
                    {-inf, inf, 0},  {nan, nan, 0},    {-1.0, nan, orvStatusDomain},
                    {-tiny, nan, orvStatusDomain},     {4.0, 8.0, 0}};
    }
    return {};
}

// Each special value alone, then each at every place of a run of
// ordinary values (blocks and tail), whose results must not change.
template <class T, size_t K>
void checkSpecials(const Member<T> (&members)[K]) {
    const bool is64 = sizeof(T) == 8;
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        std::vector<T> ordinary(19);
        for (size_t i = 0; i < ordinary.size(); ++i) ordinary[i] = T(1.5 + 0.37 * double(i));
        OrvStatus quiet;
        const std::vector<T> plain = run(m.fn, ordinary, &quiet);
        EXPECT_EQ(quiet, orvStatusOk);
        std::vector<Special> table = specials(m.family, is64);
        if (!m.top) table.pop_back();
        for (const Special& s : table) {
            SCOPED_TRACE(s.x);
            OrvStatus status;
            T y = run(m.fn, {T(s.x)}, &status)[0];
            EXPECT_EQ(status, s.status);
            EXPECT_TRUE(sameBits(y, T(s.result))) << y;
            for (size_t at = 0; at < ordinary.size(); ++at) {
                std::vector<T> x = ordinary;
                x[at] = T(s.x);
                std::vector<T> out = run(m.fn, x, &status);
                EXPECT_EQ(status, s.status) << "at " << at;
                for (size_t i = 0; i < x.size(); ++i)
                    EXPECT_TRUE(sameBits(out[i], i == at ? T(s.result) : plain[i])) << "at " << at << ", element " << i;
            }
        }
    }
}

TEST(RationalPowers, SpecialValuesAndWarnings32) { checkSpecials(k32); }
TEST(RationalPowers, SpecialValuesAndWarnings64) { checkSpecials(k64); }

// A warning in front of a passing block is kept: Pow3o2 and InvCbrt write
// it and nothing clears it.
TEST(RationalPowers, WarningSurvivesLaterBlocks) {
    std::vector<double> x(13, 2.0);
    x[0] = -3.0;
    OrvStatus status;
    run(orvsPow3o2_64f_A53, x, &status);
    EXPECT_EQ(status, orvStatusDomain);
    std::vector<float> y(21, 5.0f);
    y[2] = 0.0f;
    run(orvsInvCbrt_32f_A21, y, &status);
    EXPECT_EQ(status, orvStatusSingularity);
}

// x^(p/b) where it is exact: k^b 2^(b e) -> k^p 2^(p e) for small k, in
// binades spread over the whole range and with both signs where the
// function is defined for them.  The k^b must be exact in T.
template <class T, size_t K>
void checkExactPowers(const Member<T> (&members)[K], const std::vector<int>& binades) {
    const int digits = std::numeric_limits<T>::digits;
    for (const auto& m : members) {
        if (!m.top) continue;
        SCOPED_TRACE(m.name);
        const int b = m.family == Pow3o2 ? 2 : 3;
        std::vector<T> x, want;
        for (int e : binades)
            for (int k = 1; k <= 40; ++k) {
                double kb = std::pow(double(k), b);
                if (kb >= std::ldexp(1.0, digits)) continue;
                double in = std::ldexp(kb, b * e);
                if (!std::isfinite(in) || std::ldexp(in, -b * e) != kb) continue;  // overflowed, or rounded
                double out = m.family == Cbrt      ? std::ldexp(double(k), e)
                             : m.family == InvCbrt ? std::ldexp(1.0 / k, -e)
                             : m.family == Pow2o3  ? std::ldexp(double(k) * k, 2 * e)
                                                   : std::ldexp(double(k) * k * k, 3 * e);
                if (m.family == InvCbrt && (k & (k - 1)) != 0) continue;  // 1/k not exact
                if (T(in) != in || T(out) != out || std::isinf(T(out)) || T(out) == 0) continue;
                if (std::fabs(T(out)) < std::numeric_limits<T>::min() && m.family != Pow3o2) continue;
                x.push_back(T(in));
                want.push_back(T(out));
                if (m.family != Pow3o2) {
                    x.push_back(T(-in));
                    want.push_back(m.family == Pow2o3 ? T(out) : T(-out));
                }
            }
        ASSERT_GT(x.size(), 100u);
        OrvStatus status;
        std::vector<T> y = run(m.fn, x, &status);
        EXPECT_EQ(status, orvStatusOk);
        int wrong = 0;
        for (size_t i = 0; i < x.size(); ++i)
            if (!sameBits(y[i], want[i]) && ++wrong <= 5)
                ADD_FAILURE() << "x = " << std::hexfloat << x[i] << ": got " << y[i] << ", want " << want[i];
        EXPECT_EQ(wrong, 0);
    }
}

TEST(RationalPowers, ExactPowersAreExact32) { checkExactPowers(k32, {-48, -45, -20, -3, 0, 1, 5, 17, 30, 38}); }
// The 64f binades reach the denormal arguments (2^-1071 and below), the
// denormal results of Pow3o2 (x near 2^-700) and its top (x near 2^680).
TEST(RationalPowers, ExactPowersAreExact64) {
    checkExactPowers(k64, {-357, -355, -350, -345, -230, -200, -1, 0, 1, 2, 100, 226, 227, 300, 339, 340});
}

// Pow3o2 64f A53 against x^(3/2) in extended precision: one rounding
// everywhere, where x * sqrt(x) in double rounds twice (its error reaches
// 0.8 ulp and more).  Beyond the last rounding the kernel's own error is
// below 0.03 ulp (the roundings of z and 1/c, 0.012 ulp each at most, and
// of hi P, with the fit's 2^-69), so 0.52 is its bound with room.  Over
// large arguments, ordinary ones, the top of the range, and the arguments
// whose result is a denormal (measured in denormal ulps).
double ulpsOff(double y, long double exact) {
    const long double a = std::fabs(exact);
    int e;
    std::frexp(double(a), &e);
    const long double ulp = std::ldexp(1.0L, std::max(e, -1021) - 53);
    return double(std::fabs((long double)y - exact) / ulp);
}
TEST(RationalPowers, Pow3o2RoundsOnce) {
    std::mt19937_64 rng(20);
    struct Span {
        double lo, hi;
    };
    const Span spans[] = {{1, 2}, {1e3, 1e6}, {1e100, 1e200}, {0x1p680, 0x1.9p682}, {0x1p-700, 0x1p-681}, {0x1p-1074, 0x1p-1000}};
    for (const Span& s : spans) {
        std::vector<double> x(4000);
        std::uniform_real_distribution<double> u(std::log2(s.lo), std::log2(s.hi));
        for (double& v : x) v = std::exp2(u(rng));
        OrvStatus status;
        std::vector<double> y = run(orvsPow3o2_64f_A53, x, &status);
        double worst = 0, worstPlain = 0;
        for (size_t i = 0; i < x.size(); ++i) {
            long double xl = x[i];
            long double exact = xl * sqrtl(xl);  // 2^-63 relative, far below the bound
            if (std::isinf(double(exact))) {
                EXPECT_TRUE(std::isinf(y[i]));
                continue;
            }
            worst = std::max(worst, ulpsOff(y[i], exact));
            worstPlain = std::max(worstPlain, ulpsOff(x[i] * std::sqrt(x[i]), exact));
        }
        EXPECT_LT(worst, 0.52) << "over [" << s.lo << ", " << s.hi << "]";
        if (s.lo >= 1 && s.hi <= 1e200) {
            EXPECT_GT(worstPlain, 0.6);  // the double rounding this avoids
        }
    }
}

}  // namespace
