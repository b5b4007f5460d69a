// Expm1 and Log1p: what the generic suites cannot see.  The special values
// and warnings as one table, alone and inside a block of ordinary values,
// with the flags the warnings raise; tiny and subnormal arguments, where the
// result is x itself; the edges where the kernels change table row or
// leave the block screen; and the overflow edge of Expm1.
#include <cmath>
#include <limits>
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
    double bound;  // ulps allowed against the extended-precision value
};
const Member<float> kExpm132[] = {
    {"Expm1 A11", orvsExpm1_32f_A11, 8192}, {"Expm1 A21", orvsExpm1_32f_A21, 4}, {"Expm1 A24", orvsExpm1_32f_A24, 1}};
const Member<double> kExpm164[] = {{"Expm1 A26", orvsExpm1_64f_A26, 1 << 27},
                                   {"Expm1 A50", orvsExpm1_64f_A50, 4},
                                   {"Expm1 A53", orvsExpm1_64f_A53, 1}};
const Member<float> kLog1p32[] = {
    {"Log1p A11", orvsLog1p_32f_A11, 8192}, {"Log1p A21", orvsLog1p_32f_A21, 4}, {"Log1p A24", orvsLog1p_32f_A24, 1}};
const Member<double> kLog1p64[] = {{"Log1p A26", orvsLog1p_64f_A26, 1 << 27},
                                   {"Log1p A50", orvsLog1p_64f_A50, 4},
                                   {"Log1p A53", orvsLog1p_64f_A53, 1}};

template <class T>
std::vector<T> run(Fn<T> fn, const std::vector<T>& x, OrvStatus* status) {
    std::vector<T> y(x.size());
    *status = fn(x.data(), y.data(), int32_t(x.size()));
    return y;
}

// |y - exact| in ulps of the exact value, the exact value from x87 extended
// precision (64 bits, far beyond the bounds checked here).
template <class T>
double ulpError(T y, long double exact) {
    int e;
    std::frexp(double(exact), &e);
    long double ulp = std::ldexp(1.0L, std::max(e, std::numeric_limits<T>::min_exponent) -
                                           std::numeric_limits<T>::digits);
    return double(std::fabs((long double)y - exact) / ulp);
}

struct Special {
    double x;
    double result;  // NaN: the result must be a NaN
    OrvStatus status;
};

// Each special value alone, then all of them spread through a block of
// ordinary values (which must keep their ordinary results), in both orders
// of the warnings: the last warning written wins.
template <class T, size_t K>
void checkSpecials(const Member<T> (&members)[K], const std::vector<Special>& specials, T ordinary,
                   uint32_t flagOf18, uint32_t flagOf19) {
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        for (const Special& s : specials) {
            SCOPED_TRACE(s.x);
            FpEnvScope env(kMxcsrDefault);
            OrvStatus status;
            T y = run(m.fn, {T(s.x)}, &status)[0];
            EXPECT_EQ(status, s.status);
            if (std::isnan(s.result))
                EXPECT_TRUE(std::isnan(y));
            else
                EXPECT_SAME_BITS(y, T(s.result));
            uint32_t expected = s.status == orvStatusOverflow      ? kMxcsrOverflow
                                : s.status == orvStatusSingularity ? flagOf18
                                : s.status == orvStatusDomain      ? flagOf19
                                                                   : 0;
            if (expected) {
                EXPECT_EQ(flags() & expected, expected);
            }
        }
        OrvStatus status;
        T alone = run(m.fn, {ordinary}, &status)[0];
        for (bool reversed : {false, true}) {
            std::vector<T> x;
            for (size_t i = 0; i < specials.size(); ++i) {
                x.push_back(ordinary);
                x.push_back(T(specials[reversed ? specials.size() - 1 - i : i].x));
            }
            std::vector<T> y = run(m.fn, x, &status);
            OrvStatus last = orvStatusOk;
            for (size_t i = 0; i < specials.size(); ++i) {
                const Special& s = specials[reversed ? specials.size() - 1 - i : i];
                EXPECT_SAME_BITS(y[2 * i], alone);
                if (std::isnan(s.result))
                    EXPECT_TRUE(std::isnan(y[2 * i + 1]));
                else
                    EXPECT_SAME_BITS(y[2 * i + 1], T(s.result));
                if (s.status != orvStatusOk) last = s.status;
            }
            EXPECT_EQ(status, last);
        }
    }
}

// Values next to x and below it give x itself, each alone and in a block.
template <class T, size_t K>
void checkTiny(const Member<T> (&members)[K], std::vector<T> tiny) {
    for (T t : std::vector<T>(tiny)) tiny.push_back(-t);
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        OrvStatus status;
        std::vector<T> y = run(m.fn, tiny, &status);
        EXPECT_EQ(status, orvStatusOk);
        for (size_t i = 0; i < tiny.size(); ++i) EXPECT_SAME_BITS(y[i], tiny[i]) << tiny[i];
    }
}

// Every input within its bound, in blocks and alone (the ElementPath).
template <class T, size_t K>
void checkAround(const Member<T> (&members)[K], const std::vector<T>& x, long double (*exact)(long double)) {
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        OrvStatus status;
        std::vector<T> y = run(m.fn, x, &status);
        for (size_t i = 0; i < x.size(); ++i) {
            EXPECT_LE(ulpError(y[i], exact(x[i])), m.bound) << x[i];
            EXPECT_SAME_BITS(run(m.fn, {x[i]}, &status)[0], y[i]) << x[i];
        }
    }
}

// A few neighbours of each edge, both sides.
template <class T>
std::vector<T> around(std::initializer_list<T> edges) {
    std::vector<T> x;
    for (T e : edges) {
        T v = e;
        for (int i = 0; i < 4; ++i) v = std::nextafter(v, T(-INFINITY));
        for (int i = 0; i < 8; ++i, v = std::nextafter(v, T(INFINITY))) x.push_back(v);
    }
    while (x.size() % 8) x.push_back(T(0.25));
    return x;
}

long double expm1Exact(long double x) { return std::expm1(x); }
long double log1pExact(long double x) { return std::log1p(x); }

}  // namespace

TEST(Expm1, SpecialValuesAndOverflow) {
    const double inf = INFINITY, nan = NAN;
    std::vector<Special> s32 = {{nan, nan, orvStatusOk},       {inf, inf, orvStatusOk},
                                {-inf, -1, orvStatusOk},       {0.0, 0.0, orvStatusOk},
                                {-0.0, -0.0, orvStatusOk},     {-200.0, -1, orvStatusOk},
                                {1e30, inf, orvStatusOverflow}, {0x1.62e430p+6, inf, orvStatusOverflow}};
    checkSpecials(kExpm132, s32, 0.75f, 0, 0);
    std::vector<Special> s64 = {{nan, nan, orvStatusOk},           {inf, inf, orvStatusOk},
                                {-inf, -1, orvStatusOk},           {0.0, 0.0, orvStatusOk},
                                {-0.0, -0.0, orvStatusOk},         {-800.0, -1, orvStatusOk},
                                {1e300, inf, orvStatusOverflow},    {0x1.62e42fefa39fp+9, inf, orvStatusOverflow}};
    checkSpecials(kExpm164, s64, 0.75, 0, 0);
}

TEST(Expm1, TinyArgumentsGiveThemselves) {
    checkTiny(kExpm132, {0x1p-149f, 0x1p-130f, 0x1.fffffep-127f, 0x1p-126f, 0x1p-60f, 0x1.234p-30f, 0x1.fffffep-26f});
    checkTiny(kExpm164, {0x1p-1074, 0x1p-1030, 0x1p-1022, 0x1p-300, 0x1.23456789p-60, 0x1.fffffffffffffp-55});
}

// The edges of table index k = 0 (|x| = ln2/256 and ln2/128 in the 64f
// reductions), the block screens, and the overflow limit, from below: the
// largest finite results.
TEST(Expm1, AroundTheEdges) {
    checkAround(kExpm132,
                around<float>({0x1.62e43p-8f, -0x1.62e43p-8f, 0x1.62e43p-9f, -0x1.62e43p-9f, 88.0f, -88.0f,
                               0x1.62e426p+6f, 0x1p-20f, -0.5f, 10.0f}),
                expm1Exact);
    checkAround(kExpm164,
                around<double>({0x1.62e42fefa39efp-8, -0x1.62e42fefa39efp-8, 0x1.62e42fefa39efp-7,
                                -0x1.62e42fefa39efp-7, 0x1.62e42fefa39efp-9, 0x1.628p+9, -0x1.628p+9, 0x1.62e42fefa39ecp+9,
                                0x1p-20, -0.5, 40.0}),
                expm1Exact);
}

TEST(Log1p, SpecialValuesAndWarnings) {
    const double inf = INFINITY, nan = NAN;
    std::vector<Special> s = {{nan, nan, orvStatusOk},           {inf, inf, orvStatusOk},
                              {0.0, 0.0, orvStatusOk},           {-0.0, -0.0, orvStatusOk},
                              {-1.0, -inf, orvStatusSingularity}, {-2.0, nan, orvStatusDomain},
                              {-inf, nan, orvStatusDomain}};
    checkSpecials(kLog1p32, s, 0.75f, kMxcsrDivideByZero, kMxcsrInvalid);
    checkSpecials(kLog1p64, s, 0.75, kMxcsrDivideByZero, kMxcsrInvalid);
    // The domain's NaN is the default one.
    OrvStatus status;
    EXPECT_EQ(bits(run<float>(orvsLog1p_32f_A24, {-3.0f}, &status)[0]), 0xFFC00000u);
    EXPECT_EQ(bits(run<double>(orvsLog1p_64f_A53, {-3.0}, &status)[0]), 0xFFF8000000000000u);
}

TEST(Log1p, TinyArgumentsGiveThemselves) {
    checkTiny(kLog1p32, {0x1p-149f, 0x1p-130f, 0x1p-126f, 0x1p-60f, 0x1.234p-30f, 0x1.fffffep-26f});
    checkTiny(kLog1p64, {0x1p-1074, 0x1p-1030, 0x1p-1022, 0x1p-300, 0x1.23456789p-60, 0x1.fffffffffffffp-55});
}

// Where 1 + x crosses 1 and 2 (row 0 and 512, the exponent step), the row
// 256 edge, next to -1, and huge x, where 1 + x rounds to x.
TEST(Log1p, AroundTheEdges) {
    checkAround(kLog1p32,
                around<float>({0x1p-24f, -0x1p-25f, 0x1p-10f, -0x1p-11f, 1.0f, 0.5f, 0x1.7fcp-1f, -0.5f, -0x1.fffff0p-1f,
                               0x1p60f, 3.0e38f}),
                log1pExact);
    checkAround(kLog1p64,
                around<double>({0x1p-53, -0x1p-54, 0x1p-10, -0x1p-11, 1.0, 0.5, 0x1.7fcp-1, 0x1.ff8p-1, -0.5,
                                -0x1.ffffffffffff0p-1, 0x1p60, 1e308}),
                log1pExact);
}

// The x87 word is the one state these members guard: single precision set
// by the caller changes no result and is back after the call.
TEST(Expm1Log1p, CallersX87PrecisionChangesNothing) {
    const std::vector<double> x = {0.3, -0.7, 1e-5, 700.0, 5.0, -3e-3, 2.5, 1e-300};
    OrvStatus status;
    std::vector<double> a = run(orvsExpm1_64f_A53, x, &status), b = run(orvsLog1p_64f_A53, x, &status);
    FpEnvScope env(kMxcsrDefault, kX87Single);
    EXPECT_EQ(run(orvsExpm1_64f_A53, x, &status), a);
    EXPECT_EQ(run(orvsLog1p_64f_A53, x, &status), b);
    EXPECT_EQ(readX87(), kX87Single);
}
