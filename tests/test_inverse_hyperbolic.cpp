// Asinh, Acosh and Atanh, real members: what the generic suites cannot see.
// The special values with their statuses and flags, the group passes of
// Atanh's rejected blocks, oddness bit for bit, the neighbourhoods of 0
// (asinh, atanh) and 1 (acosh) where a careless formula cancels, and the
// top of the range where the 64f members leave the block screen.
#include <cfloat>
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
    double bound;  // ulps allowed against the extended-precision value
};
const Member<float> kAsinh32[] = {
    {"Asinh A11", orvsAsinh_32f_A11, 8192}, {"Asinh A21", orvsAsinh_32f_A21, 4}, {"Asinh A24", orvsAsinh_32f_A24, 1}};
const Member<double> kAsinh64[] = {
    {"Asinh A26", orvsAsinh_64f_A26, 1 << 27}, {"Asinh A50", orvsAsinh_64f_A50, 4}, {"Asinh A53", orvsAsinh_64f_A53, 1}};
const Member<float> kAcosh32[] = {
    {"Acosh A11", orvsAcosh_32f_A11, 8192}, {"Acosh A21", orvsAcosh_32f_A21, 4}, {"Acosh A24", orvsAcosh_32f_A24, 1}};
const Member<double> kAcosh64[] = {
    {"Acosh A26", orvsAcosh_64f_A26, 1 << 27}, {"Acosh A50", orvsAcosh_64f_A50, 4}, {"Acosh A53", orvsAcosh_64f_A53, 1}};
const Member<float> kAtanh32[] = {
    {"Atanh A11", orvsAtanh_32f_A11, 8192}, {"Atanh A21", orvsAtanh_32f_A21, 4}, {"Atanh A24", orvsAtanh_32f_A24, 1}};
const Member<double> kAtanh64[] = {
    {"Atanh A26", orvsAtanh_64f_A26, 1 << 27}, {"Atanh A50", orvsAtanh_64f_A50, 4}, {"Atanh A53", orvsAtanh_64f_A53, 1}};

constexpr OrvStatus kOk = orvStatusOk, kPole = orvStatusSingularity, kDomain = orvStatusDomain;

template <class T>
std::vector<T> run(Fn<T> fn, const std::vector<T>& x, OrvStatus* status = nullptr) {
    std::vector<T> y(x.size());
    OrvStatus s = fn(x.data(), y.data(), int32_t(x.size()));
    if (status) *status = s;
    return y;
}

// |y - exact| in ulps of the exact value, the exact value in x87 extended
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
    double result;  // NaN: the default NaN (or the input made quiet, for a NaN input)
    OrvStatus status;
};

// Each special value alone: its result bit for bit, its status, and the
// flags: invalid only where the member raises it for a domain error
// (raisesInvalid), never divide-by-zero (the poles store a constant).
template <class T, size_t K>
void checkSpecials(const Member<T> (&members)[K], const std::vector<Special>& specials, Fn<T> raisesInvalid) {
    const T defaultNaN = -std::numeric_limits<T>::quiet_NaN();
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        for (const Special& s : specials) {
            SCOPED_TRACE(s.x);
            FpEnvScope env(kMxcsrDefault);
            OrvStatus status;
            T y = run(m.fn, {T(s.x)}, &status)[0];
            EXPECT_EQ(status, s.status);
            if (std::isnan(s.x))
                EXPECT_SAME_BITS(y, T(s.x) + T(s.x));
            else if (std::isnan(s.result))
                EXPECT_SAME_BITS(y, defaultNaN);
            else
                EXPECT_SAME_BITS(y, T(s.result));
            uint32_t invalid = (s.status == kDomain && m.fn == raisesInvalid) ? kMxcsrInvalid : 0;
            EXPECT_EQ(flags() & (kMxcsrInvalid | kMxcsrDivideByZero), invalid);
        }
    }
}

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

TEST(InverseHyperbolicSpecialValues, AsinhEveryMember) {
    std::vector<Special> s = {{0.0, 0.0, kOk},  {-0.0, -0.0, kOk}, {kInf, kInf, kOk},
                              {-kInf, -kInf, kOk}, {kNaN, kNaN, kOk}, {-kNaN, kNaN, kOk}};
    checkSpecials(kAsinh32, s, Fn<float>(nullptr));
    checkSpecials(kAsinh64, s, Fn<double>(nullptr));
}
TEST(InverseHyperbolicSpecialValues, AcoshEveryMember) {
    // acosh 1 = +0; below 1, zeros and -inf included, is the domain error.
    std::vector<Special> s = {{1.0, 0.0, kOk},         {kInf, kInf, kOk},       {kNaN, kNaN, kOk},
                              {0.99999, kNaN, kDomain}, {0.0, kNaN, kDomain},    {-0.0, kNaN, kDomain},
                              {-1.0, kNaN, kDomain},    {-kInf, kNaN, kDomain}, {-3.0, kNaN, kDomain}};
    checkSpecials(kAcosh32, s, Fn<float>(nullptr));
    checkSpecials(kAcosh64, s, Fn<double>(orvsAcosh_64f_A53));
}
TEST(InverseHyperbolicSpecialValues, AtanhEveryMember) {
    std::vector<Special> s = {{0.0, 0.0, kOk},        {-0.0, -0.0, kOk},      {1.0, kInf, kPole},
                              {-1.0, -kInf, kPole},   {1.5, kNaN, kDomain},   {-2.0, kNaN, kDomain},
                              {kInf, kNaN, kDomain},  {-kInf, kNaN, kDomain}, {kNaN, kNaN, kOk}};
    checkSpecials(kAtanh32, s, Fn<float>(nullptr));
    checkSpecials(kAtanh64, s, Fn<double>(nullptr));
}

// The signalling NaN comes back quiet with its payload and sign.
TEST(InverseHyperbolicSpecialValues, SignallingNaNsMadeQuiet) {
    for (auto fn : {orvsAsinh_32f_A24, orvsAcosh_32f_A11, orvsAtanh_32f_A21}) {
        OrvStatus s;
        EXPECT_EQ(bits(run(fn, {f32(0xFFA00001)}, &s)[0]), 0xFFE00001u);
        EXPECT_EQ(s, kOk);
    }
    for (auto fn : {orvsAsinh_64f_A53, orvsAcosh_64f_A26, orvsAtanh_64f_A53}) {
        OrvStatus s;
        EXPECT_EQ(bits(run(fn, {f64(0x7FF4000000000001)}, &s)[0]), 0x7FFC000000000001u);
        EXPECT_EQ(s, kOk);
    }
}

// Atanh's rejected blocks are finished as one group: the domain warnings
// of the block first, then its singularities, so a pole anywhere in a
// block wins over a domain error anywhere in it; in the tail, and in every
// block of orvsAtanh_64f_A53, the later element wins.  Across blocks the
// last block with a warning wins.
template <class T>
void checkGroups(Fn<T> fn, int n, bool byKind) {
    for (bool poleFirst : {false, true}) {
        std::vector<T> x(size_t(n), T(0.25));
        x[1] = poleFirst ? T(-1) : T(3);
        x[n - 2] = poleFirst ? T(3) : T(-1);
        OrvStatus s;
        std::vector<T> y = run(fn, x, &s);
        EXPECT_EQ(s, byKind ? kPole : (poleFirst ? kDomain : kPole)) << "block, pole first " << poleFirst;
        EXPECT_TRUE(std::isinf(y[poleFirst ? 1 : n - 2]) && std::isnan(y[poleFirst ? n - 2 : 1]));
        EXPECT_SAME_BITS(y[0], run(fn, {T(0.25)})[0]);
        // The same two in the tail, behind one whole block of ordinary values.
        std::vector<T> t(size_t(n), T(0.25));
        t.push_back(poleFirst ? T(1) : T(-2));
        t.push_back(poleFirst ? T(-2) : T(1));
        run(fn, t, &s);
        EXPECT_EQ(s, poleFirst ? kDomain : kPole) << "tail, pole first " << poleFirst;
    }
    // A pole in the first block, a domain error in the second.
    std::vector<T> x(size_t(2 * n), T(-0.5));
    x[n - 1] = T(1);
    x[n] = T(-7);
    OrvStatus s;
    run(fn, x, &s);
    EXPECT_EQ(s, kDomain);
}
TEST(InverseHyperbolicStatus, AtanhGroupPasses) {
    for (const auto& m : kAtanh32) {
        SCOPED_TRACE(m.name);
        checkGroups<float>(m.fn, 8, true);
    }
    for (const auto& m : kAtanh64) {
        SCOPED_TRACE(m.name);
        checkGroups<double>(m.fn, 4, m.fn != orvsAtanh_64f_A53);
    }
}

// Acosh's domain error anywhere in a call is returned, the ordinary
// elements beside it keep their results.
TEST(InverseHyperbolicStatus, AcoshDomainInBlocksAndTail) {
    for (const auto& m : kAcosh64) {
        std::vector<double> x(11, 2.0);
        x[5] = 0.5;
        OrvStatus s;
        std::vector<double> y = run(m.fn, x, &s);
        EXPECT_EQ(s, kDomain) << m.name;
        EXPECT_SAME_BITS(y[4], run(m.fn, {2.0})[0]) << m.name;
        x[5] = 2.0;
        run(m.fn, x, &s);
        EXPECT_EQ(s, kOk) << m.name;
    }
    for (const auto& m : kAcosh32) {
        std::vector<float> x(13, 3.0f);
        x[12] = -0.0f;
        OrvStatus s;
        run(m.fn, x, &s);
        EXPECT_EQ(s, kDomain) << m.name;
    }
}

// asinh(-x) = -asinh(x) and atanh(-x) = -atanh(x) bit for bit, in blocks
// and in the tail, over magnitudes spread across the binades: only |x|
// enters the arithmetic and the sign is ORed on at the end.
template <class T, size_t K>
void checkOdd(const Member<T> (&members)[K], double lowExp, double highExp) {
    std::mt19937_64 rng(141);
    std::vector<T> x(1003), minus(x.size());
    for (size_t i = 0; i < x.size(); ++i) {
        double u = std::uniform_real_distribution<double>(0, 1)(rng);
        x[i] = T(std::exp2(lowExp + u * (highExp - lowExp)));
        if (x[i] >= T(1) && highExp <= 0) x[i] = T(0.5);
        minus[i] = -x[i];
    }
    for (const auto& m : members) {
        std::vector<T> y = run(m.fn, x), ym = run(m.fn, minus);
        for (size_t i = 0; i < x.size(); ++i) ASSERT_SAME_BITS(ym[i], -y[i]) << m.name << " x = " << x[i];
    }
}
TEST(InverseHyperbolicIdentities, OddBitForBit) {
    checkOdd(kAsinh32, -140, 127);
    checkOdd(kAsinh64, -1070, 1023);
    checkOdd(kAtanh32, -140, 0);
    checkOdd(kAtanh64, -1070, 0);
}

// Every input within its bound, in a block and alone (the ElementPath,
// which must give the same bits).
template <class T, size_t K>
void checkAround(const Member<T> (&members)[K], const std::vector<T>& x, long double (*exact)(long double)) {
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        OrvStatus status;
        std::vector<T> y = run(m.fn, x, &status);
        EXPECT_EQ(status, kOk);
        for (size_t i = 0; i < x.size(); ++i) {
            EXPECT_LE(ulpError(y[i], exact(x[i])), m.bound) << x[i];
            EXPECT_SAME_BITS(run(m.fn, {x[i]})[0], y[i]) << x[i];
        }
    }
}
// x and values just off it: (1 + k 2^-p) x for k = -3..3, p the format's
// precision less one.
template <class T>
std::vector<T> around(std::initializer_list<T> edges) {
    std::vector<T> x;
    for (T e : edges)
        for (int k = -3; k <= 3; ++k) x.push_back(e + T(k) * e * std::numeric_limits<T>::epsilon() / 2);
    return x;
}

// Next to 0 asinh x and atanh x are x (1 -+ x^2/6 or + x^2/3): any absolute
// error of an ulp of 1 in the argument of the logarithm would show here as
// thousands of ulps.  Below 2^-27 (2^-13 for floats), and for subnormals,
// the result is x itself.
TEST(InverseHyperbolicCancellation, AsinhAndAtanhNextToZero) {
    std::vector<double> x64;
    std::vector<float> x32;
    for (int k = 1; k <= 60; ++k) {
        x64.push_back(std::ldexp(1.0 + k / 61.0, -k));
        x64.push_back(-std::ldexp(1.0 - k / 97.0, -k));
        if (k <= 30) {
            x32.push_back(std::ldexp(1.0f + k / 31.0f, -k));
            x32.push_back(-std::ldexp(1.0f - k / 37.0f, -k));
        }
    }
    checkAround(kAsinh64, x64, asinhl);
    checkAround(kAtanh64, x64, atanhl);
    checkAround(kAsinh32, x32, asinhl);
    checkAround(kAtanh32, x32, atanhl);

    std::vector<double> tiny64 = {0x1p-28, 0x1.fffffffffffffp-29, 0x1p-600, DBL_MIN, 0x1p-1074, 0x1.23456789p-1050};
    std::vector<float> tiny32 = {0x1p-13f, 0x1.fffffep-14f, 0x1p-70f, FLT_MIN, 0x1p-149f, 0x1.2345p-140f};
    for (size_t i = 0, n = tiny64.size(); i < n; ++i) tiny64.push_back(-tiny64[i]);
    for (size_t i = 0, n = tiny32.size(); i < n; ++i) tiny32.push_back(-tiny32[i]);
    for (const auto* set : {&kAsinh64, &kAtanh64})
        for (const auto& m : *set) {
            std::vector<double> y = run(m.fn, tiny64);
            for (size_t i = 0; i < y.size(); ++i) EXPECT_SAME_BITS(y[i], tiny64[i]) << m.name << " " << tiny64[i];
        }
    for (const auto* set : {&kAsinh32, &kAtanh32})
        for (const auto& m : *set) {
            std::vector<float> y = run(m.fn, tiny32);
            for (size_t i = 0; i < y.size(); ++i) EXPECT_SAME_BITS(y[i], tiny32[i]) << m.name << " " << tiny32[i];
        }
}

// Next to 1 acosh(1 + d) ~ sqrt(2d): x^2 - 1 cancels to d's few bits if it
// is formed carelessly, and u ~ 1 + sqrt(2d) must keep the bits below the
// ulp of 1.  The doubles and floats just above 1, and 1 + 2^-k for all k.
// Atanh next to 1, where 1 - x is exact but small, goes the same way.
TEST(InverseHyperbolicCancellation, AcoshNextToOneAndAtanhNextToOne) {
    std::vector<double> x64, t64;
    std::vector<float> x32, t32;
    for (int k = 1; k <= 40; ++k) {
        x64.push_back(1.0 + k * 0x1p-52);
        t64.push_back(1.0 - k * 0x1p-53);
        if (k <= 20) {
            x32.push_back(1.0f + float(k) * 0x1p-23f);
            t32.push_back(-(1.0f - float(k) * 0x1p-24f));
        }
    }
    for (int k = 1; k <= 52; ++k) x64.push_back(1.0 + std::ldexp(1.0, -k));
    for (int k = 1; k <= 23; ++k) x32.push_back(1.0f + std::ldexp(1.0f, -k));
    checkAround(kAcosh64, x64, acoshl);
    checkAround(kAcosh32, x32, acoshl);
    checkAround(kAtanh64, t64, atanhl);
    checkAround(kAtanh32, t32, atanhl);
}

// The top of the range: the 64f block screens stop at 2^511 (where x^2
// would leave the doubles) and the ElementPath takes ln x + ln 2 above; the
// two meet without a step.  Up to DBL_MAX and FLT_MAX.
TEST(InverseHyperbolicLimits, TopOfRange) {
    std::vector<double> x64 = around<double>({0x1p511, 0x1p26, 0x1p300, 0x1p700});
    x64.push_back(DBL_MAX);
    x64.push_back(0x1.fffffffffffffp510);
    checkAround(kAsinh64, x64, asinhl);
    checkAround(kAcosh64, x64, acoshl);
    std::vector<double> neg(x64);
    for (double& v : neg) v = -v;
    checkAround(kAsinh64, neg, asinhl);
    std::vector<float> x32 = around<float>({0x1p13f, 0x1p64f, 0x1p120f});
    x32.push_back(FLT_MAX);
    checkAround(kAsinh32, x32, asinhl);
    checkAround(kAcosh32, x32, acoshl);
    // Consecutive doubles across the screen's edge keep their order.
    for (const auto* set : {&kAsinh64, &kAcosh64})
        for (const auto& m : *set) {
            std::vector<double> y = run(m.fn, {std::nextafter(0x1p511, 0.0), 0x1p511, std::nextafter(0x1p511, 1e308)});
            EXPECT_LE(y[0], y[1]) << m.name;
            EXPECT_LE(y[1], y[2]) << m.name;
        }
}

}  // namespace
