// SinCos, CIS and Tan: what the generic suites cannot see.  SinCos shares
// its element path with Sin and Cos, and its A26 sine with orvsSin_64f_A26;
// CIS is the best SinCos kernel with its parts in the other order; Tan
// turns its quotient over at odd quadrants, which near the poles must keep
// the sign of the true value and raise no warning; the A11 loop takes its
// blocks in pairs; SinCos may write over its source through either
// destination.
#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "testing.h"

using namespace orvtest;

namespace {

using SinCos32 = OrvStatus (*)(const Orv32f*, Orv32f*, Orv32f*, int32_t);
using SinCos64 = OrvStatus (*)(const Orv64f*, Orv64f*, Orv64f*, int32_t);
using Unary32 = OrvStatus (*)(const Orv32f*, Orv32f*, int32_t);
using Unary64 = OrvStatus (*)(const Orv64f*, Orv64f*, int32_t);

struct Tier32 {
    SinCos32 sinCos;
    Unary32 sin, cos, tan;
};
struct Tier64 {
    SinCos64 sinCos;
    Unary64 sin, cos, tan;
};
const Tier32 kTiers32[] = {
    {orvsSinCos_32f_A11, orvsSin_32f_A11, orvsCos_32f_A11, orvsTan_32f_A11},
    {orvsSinCos_32f_A21, orvsSin_32f_A21, orvsCos_32f_A21, orvsTan_32f_A21},
    {orvsSinCos_32f_A24, orvsSin_32f_A24, orvsCos_32f_A24, orvsTan_32f_A24},
};
const Tier64 kTiers64[] = {
    {orvsSinCos_64f_A26, orvsSin_64f_A26, orvsCos_64f_A26, orvsTan_64f_A26},
    {orvsSinCos_64f_A50, orvsSin_64f_A50, orvsCos_64f_A50, orvsTan_64f_A50},
    {orvsSinCos_64f_A53, orvsSin_64f_A53, orvsCos_64f_A53, orvsTan_64f_A53},
};

// Ordinary values of every quadrant and sign, and some beyond every screen.
template <class T>
std::vector<T> mixedValues(int n, double limit, uint64_t seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> u(-limit, limit);
    std::vector<T> v(n);
    for (T& x : v) x = T(u(rng));
    return v;
}

// ---- SinCos against Sin and Cos --------------------------------------------

// Beyond the screens every tier of all three families takes the same double
// kernels, so SinCos gives Sin's and Cos's bits there; in orvsSinCos_64f_A26
// the sine's block is orvsSin_64f_A26's arithmetic too.
TEST(SinCos, SharesTheElementPathWithSinAndCos) {
    const std::vector<float> big32 = mixedValues<float>(203, 1e30, 1);
    const std::vector<double> big64 = mixedValues<double>(203, 1e300, 2);
    for (const Tier32& t : kTiers32) {
        const int n = int(big32.size());
        std::vector<float> s(n), c(n), s1(n), c1(n);
        ASSERT_EQ(t.sinCos(big32.data(), s.data(), c.data(), n), orvStatusOk);
        t.sin(big32.data(), s1.data(), n);
        t.cos(big32.data(), c1.data(), n);
        for (int i = 0; i < n; ++i) {
            EXPECT_SAME_BITS(s[i], s1[i]) << big32[i];
            EXPECT_SAME_BITS(c[i], c1[i]) << big32[i];
        }
    }
    for (const Tier64& t : kTiers64) {
        const int n = int(big64.size());
        std::vector<double> s(n), c(n), s1(n), c1(n);
        ASSERT_EQ(t.sinCos(big64.data(), s.data(), c.data(), n), orvStatusOk);
        t.sin(big64.data(), s1.data(), n);
        t.cos(big64.data(), c1.data(), n);
        for (int i = 0; i < n; ++i) {
            EXPECT_SAME_BITS(s[i], s1[i]) << big64[i];
            EXPECT_SAME_BITS(c[i], c1[i]) << big64[i];
        }
    }
    const std::vector<double> ordinary = mixedValues<double>(4001, 90000, 3);
    const int n = int(ordinary.size());
    std::vector<double> s(n), c(n), s1(n);
    orvsSinCos_64f_A26(ordinary.data(), s.data(), c.data(), n);
    orvsSin_64f_A26(ordinary.data(), s1.data(), n);
    for (int i = 0; i < n; ++i) EXPECT_SAME_BITS(s[i], s1[i]) << ordinary[i];
}

// Where the blocks differ (the kernels by pi/2 against Sin's by pi, the
// 128-row table against the 64-row one) the top tiers still agree with Sin
// and Cos to within their own errors: one ulp apart at most.
TEST(SinCos, TopTiersAgreeWithSinAndCosWithinAnUlp) {
    const std::vector<double> x = mixedValues<double>(8000, 90000, 4);
    const int n = int(x.size());
    std::vector<double> s(n), c(n), s1(n), c1(n);
    orvsSinCos_64f_A53(x.data(), s.data(), c.data(), n);
    orvsSin_64f_A53(x.data(), s1.data(), n);
    orvsCos_64f_A53(x.data(), c1.data(), n);
    for (int i = 0; i < n; ++i) {
        EXPECT_LE(std::fabs(s[i] - s1[i]), std::fabs(std::nextafter(s1[i], INFINITY) - s1[i])) << x[i];
        EXPECT_LE(std::fabs(c[i] - c1[i]), std::fabs(std::nextafter(c1[i], INFINITY) - c1[i])) << x[i];
    }
    const std::vector<float> y = mixedValues<float>(8000, 10000, 5);
    std::vector<float> sf(n), cf(n), sf1(n), cf1(n);
    orvsSinCos_32f_A24(y.data(), sf.data(), cf.data(), n);
    orvsSin_32f_A24(y.data(), sf1.data(), n);
    orvsCos_32f_A24(y.data(), cf1.data(), n);
    for (int i = 0; i < n; ++i) {
        EXPECT_LE(std::fabs(sf[i] - sf1[i]), std::fabs(std::nextafter(sf1[i], INFINITY) - sf1[i])) << y[i];
        EXPECT_LE(std::fabs(cf[i] - cf1[i]), std::fabs(std::nextafter(cf1[i], INFINITY) - cf1[i])) << y[i];
    }
}

TEST(SinCos, InPlaceThroughEitherDestination) {
    for (int len : {1, 7, 8, 13, 16, 37}) {
        std::vector<float> x = mixedValues<float>(len, 12000, 10 + len);  // some beyond the screen
        std::vector<double> y = mixedValues<double>(len, 140000, 20 + len);
        for (const Tier32& t : kTiers32) {
            std::vector<float> s(len), c(len);
            t.sinCos(x.data(), s.data(), c.data(), len);
            std::vector<float> a = x, other(len);
            t.sinCos(a.data(), a.data(), other.data(), len);
            for (int i = 0; i < len; ++i) EXPECT_SAME_BITS(a[i], s[i]) << x[i];
            std::vector<float> b = x;
            t.sinCos(b.data(), other.data(), b.data(), len);
            for (int i = 0; i < len; ++i) EXPECT_SAME_BITS(b[i], c[i]) << x[i];
        }
        for (const Tier64& t : kTiers64) {
            std::vector<double> s(len), c(len);
            t.sinCos(y.data(), s.data(), c.data(), len);
            std::vector<double> a = y, other(len);
            t.sinCos(a.data(), a.data(), other.data(), len);
            for (int i = 0; i < len; ++i) EXPECT_SAME_BITS(a[i], s[i]) << y[i];
            std::vector<double> b = y;
            t.sinCos(b.data(), other.data(), b.data(), len);
            for (int i = 0; i < len; ++i) EXPECT_SAME_BITS(b[i], c[i]) << y[i];
        }
    }
}

// ---- CIS --------------------------------------------------------------------

// re is the cosine and im the sine, with their signs, of the best SinCos
// kernel of the type, in blocks, rejected blocks and tails alike.
TEST(CIS, PartsAreTheTopSinCosInTheirPlaces) {
    const std::vector<float> x = mixedValues<float>(1003, 20000, 6);
    const int n = int(x.size());
    std::vector<float> s(n), c(n);
    std::vector<Orv32fc> z(n);
    orvsSinCos_32f_A24(x.data(), s.data(), c.data(), n);
    for (auto cis : {orvsCIS_32fc_A11, orvsCIS_32fc_A21, orvsCIS_32fc_A24}) {
        ASSERT_EQ(cis(x.data(), z.data(), n), orvStatusOk);
        for (int i = 0; i < n; ++i) {
            EXPECT_SAME_BITS(z[i].re, c[i]) << x[i];
            EXPECT_SAME_BITS(z[i].im, s[i]) << x[i];
        }
    }
    const std::vector<double> y = mixedValues<double>(1003, 200000, 7);
    std::vector<double> sd(n), cd(n);
    std::vector<Orv64fc> w(n);
    orvsSinCos_64f_A53(y.data(), sd.data(), cd.data(), n);
    for (auto cis : {orvsCIS_64fc_A26, orvsCIS_64fc_A50, orvsCIS_64fc_A53}) {
        ASSERT_EQ(cis(y.data(), w.data(), n), orvStatusOk);
        for (int i = 0; i < n; ++i) {
            EXPECT_SAME_BITS(w[i].re, cd[i]) << y[i];
            EXPECT_SAME_BITS(w[i].im, sd[i]) << y[i];
        }
    }
}

// An infinity: SinCos warns with the invalid flag, CIS gives the same NaN
// parts silently.  A NaN comes back quiet from both, with no status.
TEST(CIS, InfinityIsSilentWhereSinCosWarns) {
    const float inf = INFINITY, nan = f32(0x7FA00000);  // a signalling NaN
    for (int len : {1, 8, 9}) {
        std::vector<float> x(len, 1.0f);
        x[len - 1] = -inf;
        std::vector<Orv32fc> z(len);
        std::vector<float> s(len), c(len);
        {
            FpEnvScope env(kMxcsrDefault);
            EXPECT_EQ(orvsCIS_32fc_A11(x.data(), z.data(), len), orvStatusOk);
            EXPECT_EQ(flags() & kMxcsrInvalid, 0u);
            EXPECT_EQ(bits(z[len - 1].re), 0xFFC00000u);
            EXPECT_EQ(bits(z[len - 1].im), 0xFFC00000u);
        }
        {
            FpEnvScope env(kMxcsrDefault);
            EXPECT_EQ(orvsSinCos_32f_A11(x.data(), s.data(), c.data(), len), orvStatusDomain);
            EXPECT_NE(flags() & kMxcsrInvalid, 0u);
            EXPECT_EQ(bits(s[len - 1]), 0xFFC00000u);
            EXPECT_EQ(bits(c[len - 1]), 0xFFC00000u);
        }
        std::vector<double> y(len, 1.0);
        y[len - 1] = inf;
        std::vector<Orv64fc> w(len);
        {
            FpEnvScope env(kMxcsrDefault);
            EXPECT_EQ(orvsCIS_64fc_A53(y.data(), w.data(), len), orvStatusOk);
            EXPECT_EQ(flags() & kMxcsrInvalid, 0u);
            EXPECT_EQ(bits(w[len - 1].re), 0xFFF8000000000000u);
            EXPECT_EQ(bits(w[len - 1].im), 0xFFF8000000000000u);
        }
        x[len - 1] = nan;
        EXPECT_EQ(orvsCIS_32fc_A24(x.data(), z.data(), len), orvStatusOk);
        EXPECT_EQ(bits(z[len - 1].re), 0x7FE00000u);
        EXPECT_EQ(bits(z[len - 1].im), 0x7FE00000u);
        EXPECT_EQ(orvsSinCos_32f_A24(x.data(), s.data(), c.data(), len), orvStatusOk);
        EXPECT_EQ(bits(s[len - 1]), 0x7FE00000u);
        EXPECT_EQ(bits(c[len - 1]), 0x7FE00000u);
    }
}

// ---- Tan ----------------------------------------------------------------------

struct Mp {
    mpfr_t v;
    Mp() { mpfr_init2(v, 320); }
    ~Mp() { mpfr_clear(v); }
    operator mpfr_ptr() { return v; }
};

// tan x to about 2^-106 relative, as a sum of two doubles: computed once
// for every tier that is checked on it.
struct TanRef {
    double hi, lo;
};
TanRef exactTan(double x) {
    Mp t, d;
    mpfr_set_d(t, x, MPFR_RNDN);
    mpfr_tan(t, t, MPFR_RNDN);
    const double hi = mpfr_get_d(t, MPFR_RNDN);
    mpfr_sub_d(d, t, hi, MPFR_RNDN);
    return {hi, mpfr_get_d(d, MPFR_RNDN)};
}
// The error of y in units of 2^(e-p), e the exponent of tan x (tan x in
// [2^(e-1), 2^e)) and p the precision of the type.
double tanError(double y, TanRef t, int precision) {
    int e;
    std::frexp(t.hi, &e);
    return std::fabs(std::ldexp((y - t.hi) - t.lo, precision - e));
}

// The floats and doubles nearest the odd multiples of pi/2 in the blocks'
// range, and their neighbours: where the quotient is turned over and D/N is
// largest.  Each keeps the sign of the true tangent, stays finite, within
// its tier, and warns of nothing; run as one array, so that the values
// pass through blocks and the tail.
template <class T>
std::vector<T> nearPoles(double limit, int neighbours) {
    std::vector<T> v;
    Mp m;
    for (long k = 1; (k - 0.5) * M_PI <= limit; k += 2) {
        mpfr_const_pi(m, MPFR_RNDN);
        mpfr_mul_si(m, m, k, MPFR_RNDN);
        mpfr_div_2ui(m, m, 1, MPFR_RNDN);
        T nearest = sizeof(T) == 4 ? T(mpfr_get_flt(m, MPFR_RNDN)) : T(mpfr_get_d(m, MPFR_RNDN));
        if (std::fabs(double(nearest)) > limit) break;
        for (int s : {1, -1}) {
            T x = T(s) * nearest;
            v.push_back(x);
            T up = x, down = x;
            for (int j = 0; j < neighbours; ++j) {
                up = std::nextafter(up, T(INFINITY));
                down = std::nextafter(down, T(-INFINITY));
                v.push_back(up);
                v.push_back(down);
            }
        }
    }
    return v;
}

TEST(Tan, NearThePolesTheSignIsRightAndNothingWarns) {
    const std::vector<float> x = nearPoles<float>(10000, 2);
    const int n = int(x.size());
    std::vector<float> y(n);
    std::vector<TanRef> ref32(n);
    for (int i = 0; i < n; ++i) ref32[i] = exactTan(x[i]);
    const double bound32[] = {std::ldexp(1.0, 13), 4, 1};  // 11 bits, 4 and 1 ulp
    for (int t = 0; t < 3; ++t) {
        FpEnvScope env(kMxcsrDefault);
        ASSERT_EQ(kTiers32[t].tan(x.data(), y.data(), n), orvStatusOk);
        EXPECT_EQ(flags() & (kMxcsrInvalid | kMxcsrDivideByZero | kMxcsrOverflow), 0u);
        for (int i = 0; i < n; ++i) {
            ASSERT_TRUE(std::isfinite(y[i])) << x[i];
            EXPECT_EQ(std::signbit(y[i]), std::signbit(ref32[i].hi)) << "tier " << t << " at " << x[i];
            EXPECT_LT(tanError(y[i], ref32[i], 24), bound32[t]) << "tier " << t << " at " << x[i];
        }
    }
    const std::vector<double> z = nearPoles<double>(128000, 1);
    const int m = int(z.size());
    std::vector<double> w(m);
    std::vector<TanRef> ref64(m);
    for (int i = 0; i < m; ++i) ref64[i] = exactTan(z[i]);
    const double bound64[] = {std::ldexp(1.0, 27), 4, 1};
    for (int t = 0; t < 3; ++t) {
        FpEnvScope env(kMxcsrDefault);
        ASSERT_EQ(kTiers64[t].tan(z.data(), w.data(), m), orvStatusOk);
        EXPECT_EQ(flags() & (kMxcsrInvalid | kMxcsrDivideByZero | kMxcsrOverflow), 0u);
        for (int i = 0; i < m; ++i) {
            ASSERT_TRUE(std::isfinite(w[i])) << z[i];
            EXPECT_EQ(std::signbit(w[i]), std::signbit(ref64[i].hi)) << "tier " << t << " at " << z[i];
            EXPECT_LT(tanError(w[i], ref64[i], 53), bound64[t]) << "tier " << t << " at " << z[i];
        }
    }
}

TEST(Tan, ZerosKeepTheirSign) {
    const std::vector<float> x = {0.0f, -0.0f, 0.0f, -0.0f, -0.0f};
    std::vector<float> y(x.size());
    for (const Tier32& t : kTiers32) {
        ASSERT_EQ(t.tan(x.data(), y.data(), int(x.size())), orvStatusOk);
        for (size_t i = 0; i < x.size(); ++i) EXPECT_SAME_BITS(y[i], x[i]);
    }
    const std::vector<double> z = {0.0, -0.0, -0.0, 0.0, -0.0};
    std::vector<double> w(z.size());
    for (const Tier64& t : kTiers64) {
        ASSERT_EQ(t.tan(z.data(), w.data(), int(z.size())), orvStatusOk);
        for (size_t i = 0; i < z.size(); ++i) EXPECT_SAME_BITS(w[i], z[i]);
    }
}

// orvsTan_32f_A11 runs its blocks of 4 up to the last multiple of 8, A21 up
// to the last multiple of 4.  With len 12 and a value beyond the screen at
// index 9, A21 hands the block 8..11 to the double kernel, A11 leaves the
// four elements to the tail, where each is alone.  An ordinary value at
// index 8 shows which: its bits alone differ from the kernel's.
TEST(Tan, A11TakesItsBlocksInPairs) {
    const float probe = 0.7f;
    const std::vector<float> one = {probe}, four = {probe, 3e4f, 1.0f, 2.0f};
    std::vector<float> alone11(1), alone21(1), kernel(4);
    orvsTan_32f_A11(one.data(), alone11.data(), 1);
    orvsTan_32f_A21(one.data(), alone21.data(), 1);
    orvsTan_32f_A21(four.data(), kernel.data(), 4);  // the double kernel, rounded
    ASSERT_NE(bits(alone11[0]), bits(kernel[0])) << "the probe must tell the kernel from the block";
    ASSERT_NE(bits(alone21[0]), bits(kernel[0])) << "the probe must tell the kernel from the block";
    std::vector<float> x(12, 0.5f), y(12);
    x[8] = probe;
    x[9] = 3e4f;
    orvsTan_32f_A11(x.data(), y.data(), 12);
    EXPECT_SAME_BITS(y[8], alone11[0]);
    orvsTan_32f_A21(x.data(), y.data(), 12);
    EXPECT_SAME_BITS(y[8], kernel[0]);
    // Within the pair, each block of 4 is screened on its own.
    std::vector<float> p(12, 0.5f), q(12);
    p[0] = probe;
    p[4] = probe;
    p[5] = 3e4f;
    orvsTan_32f_A11(p.data(), q.data(), 12);
    EXPECT_SAME_BITS(q[0], alone11[0]);
    EXPECT_SAME_BITS(q[4], kernel[0]);
}

// orvsTan_64f_A53 screens element by element: a value's bits do not depend
// on its neighbours.
TEST(Tan, A53ResultsDependOnTheElementAlone) {
    std::vector<double> x = mixedValues<double>(2000, 128000, 8);
    const int n = int(x.size());
    std::vector<double> alone(n), mixed(n);
    for (int i = 0; i < n; ++i) orvsTan_64f_A53(&x[i], &alone[i], 1);
    for (int i = 0; i < n; i += 3) x[i] = (i % 2) ? INFINITY : 1e300;
    EXPECT_EQ(orvsTan_64f_A53(x.data(), mixed.data(), n), orvStatusDomain);
    for (int i = 0; i < n; ++i) {
        if (i % 3 == 0) continue;
        EXPECT_SAME_BITS(mixed[i], alone[i]) << x[i];
    }
}

}  // namespace
