// The extended-precision routines under the complex kernels, each against
// MPFR on its own domain: the error of every sampled result measured in
// units of the 64-bit significand (the ulp of the exact value's binade),
// held to the bound declared next to the routine, and the special values at
// entry checked bit for bit.  Everything runs under the x87 word the complex
// wrappers set: 64-bit significand, rounding to nearest.
#include <mpfr.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <vector>

#include "complex/ext_parts.h"
#include "testing.h"

using namespace orvtest;
using orv::Extended;
using orv::ExtendedBits;
using orv::extendedBits;
using orv::extendedFromBits;

namespace {

constexpr mpfr_prec_t kPrec = 192;  // the reference, far beyond the 64 bits measured

struct Mp {
    mpfr_t v;
    Mp() { mpfr_init2(v, kPrec); }
    ~Mp() { mpfr_clear(v); }
    operator mpfr_ptr() { return v; }
};

using Unary = void (*)(Extended*, const Extended*);
using MpfrUnary = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

constexpr Extended kInf = std::numeric_limits<Extended>::infinity();
constexpr uint64_t kQuietBit = 0x4000000000000000;
constexpr uint64_t kLeadBit = 0x8000000000000000;

// Error of got in units of 2^-63 of the exact value's binade: 1.0 is one
// step of the 64-bit significand.  An exact zero asks for a zero result.
double ulpsOff(Extended got, mpfr_srcptr exact) {
    if (mpfr_zero_p(exact)) return got == 0 ? 0.0 : std::numeric_limits<double>::infinity();
    Mp diff;
    mpfr_set_ld(diff, got, MPFR_RNDN);
    mpfr_sub(diff, diff, exact, MPFR_RNDN);
    mpfr_mul_2si(diff, diff, 64 - mpfr_get_exp(exact), MPFR_RNDN);  // exact in [2^(e-1), 2^e)
    return std::fabs(mpfr_get_d(diff, MPFR_RNDN));
}

// x87 word of the complex wrappers for the life of each test.
class ExtendedTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved_ = readX87();
        writeX87(uint16_t((saved_ & 0xF0FF) | 0x0300));
    }
    void TearDown() override { writeX87(saved_); }

private:
    uint16_t saved_ = 0;
};

// Sampling.  magnitude(): log-uniform in [lo, hi] with a full random
// significand, so that every binade of the range (the subnormal one
// included) is visited equally.
class Sampler {
public:
    explicit Sampler(uint64_t seed) : rng_(seed) {}
    Extended magnitude(Extended lo, Extended hi) {
        const int elo = extendedBits(lo).signExponent & 0x7FFF;
        const int ehi = extendedBits(hi).signExponent & 0x7FFF;
        for (;;) {
            const int e = std::uniform_int_distribution<int>(elo, ehi)(rng_);
            // Exponent field 0: a subnormal, whose leading bit is clear.
            const uint64_t significand = e == 0 ? rng_() & ~kLeadBit : rng_() | kLeadBit;
            const Extended x = extendedFromBits(significand, uint16_t(e));
            if (x >= lo && x <= hi) return x;
        }
    }
    Extended uniform(Extended lo, Extended hi) {
        const Extended t = Extended(rng_() >> 1) * 0x1p-63L;
        return lo + (hi - lo) * t;
    }
    bool coin() { return rng_() & 1; }

private:
    std::mt19937_64 rng_;
};

struct Worst {
    double ulps = 0;
    Extended at = 0;
    void take(double u, Extended x) {
        if (!(u <= ulps)) ulps = u, at = x;  // a NaN error is the worst
    }
};

void report(const char* name, const Worst& w) {
    std::printf("  %-12s max %.3f ulp64 at %.21Lg\n", name, w.ulps, w.at);
}

// Measures f against ref over n magnitudes in [lo, hi], each with a random
// sign when signed is set.
Worst sweep(Unary f, MpfrUnary ref, Extended lo, Extended hi, bool sign, int n, uint64_t seed) {
    Sampler s(seed);
    Worst w;
    Mp x, exact;
    for (int i = 0; i < n; ++i) {
        Extended a = s.magnitude(lo, hi);
        if (sign && s.coin()) a = -a;
        Extended r;
        f(&r, &a);
        mpfr_set_ld(x, a, MPFR_RNDN);
        ref(exact, x, MPFR_RNDN);
        w.take(ulpsOff(r, exact), a);
    }
    return w;
}

// The same over given arguments.
Worst sweepPoints(Unary f, MpfrUnary ref, const std::vector<Extended>& points) {
    Worst w;
    Mp x, exact;
    for (Extended a : points) {
        Extended r;
        f(&r, &a);
        mpfr_set_ld(x, a, MPFR_RNDN);
        ref(exact, x, MPFR_RNDN);
        w.take(ulpsOff(r, exact), a);
    }
    return w;
}
// c + d for n random d of magnitude in [lo, hi] and either sign, rounded.
std::vector<Extended> around(Extended c, Extended lo, Extended hi, int n, uint64_t seed) {
    Sampler s(seed);
    std::vector<Extended> v;
    for (int i = 0; i < n; ++i) v.push_back(c + (s.coin() ? 1 : -1) * s.magnitude(lo, hi));
    return v;
}
void keepWorse(Worst& w, const Worst& other) {
    if (!(other.ulps <= w.ulps)) w = other;
}

// Bit patterns of the results at special arguments.
bool sameBits(Extended a, Extended b) {
    const ExtendedBits x = extendedBits(a), y = extendedBits(b);
    return x.significand == y.significand && x.signExponent == y.signExponent;
}
bool isQuietNan(Extended a) {
    const ExtendedBits b = extendedBits(a);
    return (b.signExponent & 0x7FFF) == 0x7FFF && (b.significand & kQuietBit) && (b.significand << 1);
}
Extended call(Unary f, Extended x) {
    Extended r;
    f(&r, &x);
    return r;
}
const Extended kSignallingNan = extendedFromBits(kLeadBit | 0x1234, 0x7FFF);
const Extended kQuietNan = extendedFromBits(kLeadBit | kQuietBit | 0x5678, 0xFFFF);

// ---- extAbs -------------------------------------------------------------------

TEST_F(ExtendedTest, AbsIsExactAndQuietsNans) {
    Sampler s(1);
    for (int i = 0; i < 2000; ++i) {
        const Extended a = s.magnitude(0x1p-16445L, 0x1p16383L);
        EXPECT_TRUE(sameBits(call(orv::extAbs, a), a));
        EXPECT_TRUE(sameBits(call(orv::extAbs, -a), a));
    }
    EXPECT_TRUE(sameBits(call(orv::extAbs, -0.0L), 0.0L));
    EXPECT_TRUE(sameBits(call(orv::extAbs, -kInf), kInf));
    // A NaN keeps its payload, comes out quiet, and loses its sign.
    const Extended q = call(orv::extAbs, kQuietNan);
    EXPECT_EQ(extendedBits(q).significand, extendedBits(kQuietNan).significand);
    EXPECT_EQ(extendedBits(q).signExponent, 0x7FFF);
    const Extended sq = call(orv::extAbs, -kSignallingNan);
    EXPECT_EQ(extendedBits(sq).significand, extendedBits(kSignallingNan).significand | kQuietBit);
    EXPECT_EQ(extendedBits(sq).signExponent, 0x7FFF);
}

// ---- extSqrt ------------------------------------------------------------------

TEST_F(ExtendedTest, SqrtAgainstMpfr) {
    // The whole range, subnormal extended values included, and the
    // binades around 1 where the seed cells are tested densely.
    Worst w = sweep(orv::extSqrt, mpfr_sqrt, 0x1p-16445L, 0x1p16383L, false, 100000, 11);
    const Worst near = sweep(orv::extSqrt, mpfr_sqrt, 1.0L, 4.0L, false, 100000, 12);
    if (near.ulps > w.ulps) w = near;
    report("extSqrt", w);
    EXPECT_LE(w.ulps, orv::kExtSqrtBound) << "at " << double(w.at);
    // Squares of integers come out exact.
    Sampler s(13);
    for (int i = 0; i < 1000; ++i) {
        const Extended k = Extended(uint64_t(s.magnitude(1.0L, 0x1p32L)));
        EXPECT_TRUE(sameBits(call(orv::extSqrt, k * k), k));
    }
}

TEST_F(ExtendedTest, SqrtSpecialValues) {
    EXPECT_TRUE(sameBits(call(orv::extSqrt, 0.0L), 0.0L));
    EXPECT_TRUE(sameBits(call(orv::extSqrt, -0.0L), -0.0L));
    EXPECT_TRUE(sameBits(call(orv::extSqrt, kInf), kInf));
    EXPECT_TRUE(isQuietNan(call(orv::extSqrt, -kInf)));
    EXPECT_TRUE(isQuietNan(call(orv::extSqrt, -0x1p-16445L)));
    EXPECT_TRUE(isQuietNan(call(orv::extSqrt, -2.0L)));
    EXPECT_TRUE(isQuietNan(call(orv::extSqrt, kSignallingNan)));
    EXPECT_EQ(extendedBits(call(orv::extSqrt, kQuietNan)).significand, extendedBits(kQuietNan).significand);
    EXPECT_TRUE(sameBits(call(orv::extSqrt, 0x1p-16444L), 0x1p-8222L));  // an even subnormal power
    EXPECT_TRUE(sameBits(call(orv::extSqrt, 0x1p16382L), 0x1p8191L));
}

// ---- extExp and the hyperbolic functions ---------------------------------------------

// Largest x with e^x finite; e^-11355 is still normal.
constexpr Extended kExpMax = 11356.5L;

void sinhOnly(Extended* r, const Extended* x) {
    Extended c;
    orv::extSinhCosh(r, &c, x);
}
void coshOnly(Extended* r, const Extended* x) {
    Extended s;
    orv::extSinhCosh(&s, r, x);
}

TEST_F(ExtendedTest, ExpAgainstMpfr) {
    Worst w = sweep(orv::extExp, mpfr_exp, 0x1p-70L, 11355.0L, true, 100000, 21);
    for (const Worst& edge : {sweep(orv::extExp, mpfr_exp, 11000.0L, 11355.0L, true, 20000, 22),
                              sweep(orv::extExp, mpfr_exp, 11355.0L, kExpMax, false, 5000, 24)})
        if (edge.ulps > w.ulps) w = edge;
    report("extExp", w);
    EXPECT_LE(w.ulps, orv::kExtExpBound) << "at " << double(w.at);
}

TEST_F(ExtendedTest, ExpSpecialValuesAndRangeEnds) {
    EXPECT_TRUE(sameBits(call(orv::extExp, 0.0L), 1.0L));
    EXPECT_TRUE(sameBits(call(orv::extExp, -0.0L), 1.0L));
    EXPECT_TRUE(sameBits(call(orv::extExp, kInf), kInf));
    EXPECT_TRUE(sameBits(call(orv::extExp, -kInf), 0.0L));
    EXPECT_TRUE(isQuietNan(call(orv::extExp, kSignallingNan)));
    EXPECT_TRUE(sameBits(call(orv::extExp, 11357.3L), kInf));
    EXPECT_TRUE(sameBits(call(orv::extExp, 1e300L), kInf));
    EXPECT_TRUE(sameBits(call(orv::extExp, -1e300L), 0.0L));
    EXPECT_TRUE(sameBits(call(orv::extExp, -11400.0L), 0.0L));
    // Into the subnormal range the result is rounded once more, from a
    // value already within the bound of its 64-bit significand (a unit of
    // which is at most one subnormal unit): against MPFR in units of the
    // smallest subnormal, half a unit and that first error.
    Sampler s(23);
    Mp x, exact, got;
    double worst = 0;
    for (int i = 0; i < 2000; ++i) {
        const Extended a = -s.uniform(11355.2L, 11399.0L);
        mpfr_set_ld(x, a, MPFR_RNDN);
        mpfr_exp(exact, x, MPFR_RNDN);
        mpfr_mul_2si(exact, exact, 16445, MPFR_RNDN);
        mpfr_set_ld(got, call(orv::extExp, a) * 0x1p16000L * 0x1p445L, MPFR_RNDN);  // exact: an integer
        mpfr_sub(got, got, exact, MPFR_RNDN);
        worst = std::max(worst, std::fabs(mpfr_get_d(got, MPFR_RNDN)));
    }
    EXPECT_LE(worst, 0.5 + orv::kExtExpBound);
}

TEST_F(ExtendedTest, HyperbolicAgainstMpfr) {
    struct Case {
        const char* name;
        Unary f;
        MpfrUnary ref;
        double bound;
    } cases[] = {{"extSinh", orv::extSinh, mpfr_sinh, orv::kExtSinhBound},
                 {"extCosh", orv::extCosh, mpfr_cosh, orv::kExtCoshBound},
                 {"sinh pair", sinhOnly, mpfr_sinh, orv::kExtSinhBound},
                 {"cosh pair", coshOnly, mpfr_cosh, orv::kExtCoshBound},
                 {"extTanh", orv::extTanh, mpfr_tanh, orv::kExtTanhBound}};
    for (const Case& c : cases) {
        // Every branch: the short series, the Taylor series, the two
        // exponentials, one exponential, and the ends of the range.
        Worst w = sweep(c.f, c.ref, 0x1p-80L, 11356.0L, true, 60000, 31);
        const Worst middle = sweep(c.f, c.ref, 0.25L, 30.0L, true, 60000, 32);
        if (middle.ulps > w.ulps) w = middle;
        report(c.name, w);
        EXPECT_LE(w.ulps, c.bound) << c.name << " at " << double(w.at);
    }
}

TEST_F(ExtendedTest, HyperbolicSpecialValues) {
    for (Extended z : {0.0L, -0.0L}) {
        Extended s, c;
        orv::extSinhCosh(&s, &c, &z);
        EXPECT_TRUE(sameBits(s, z));
        EXPECT_TRUE(sameBits(c, 1.0L));
        EXPECT_TRUE(sameBits(call(orv::extSinh, z), z));
        EXPECT_TRUE(sameBits(call(orv::extCosh, z), 1.0L));
        EXPECT_TRUE(sameBits(call(orv::extTanh, z), z));
    }
    for (Extended i : {kInf, -kInf}) {
        EXPECT_TRUE(sameBits(call(orv::extSinh, i), i));
        EXPECT_TRUE(sameBits(call(orv::extCosh, i), kInf));
        EXPECT_TRUE(sameBits(call(orv::extTanh, i), i > 0 ? 1.0L : -1.0L));
    }
    EXPECT_TRUE(sameBits(call(orv::extSinh, -11357.3L), -kInf));
    EXPECT_TRUE(sameBits(call(orv::extCosh, -11357.3L), kInf));
    EXPECT_TRUE(sameBits(call(orv::extTanh, -40.0L), -1.0L));
    for (Unary f : {orv::extSinh, orv::extCosh, orv::extTanh}) EXPECT_TRUE(isQuietNan(call(f, kSignallingNan)));
}

// ---- extLog, extLog1p -----------------------------------------------------------

TEST_F(ExtendedTest, LogAgainstMpfr) {
    Worst w = sweep(orv::extLog, mpfr_log, 0x1p-16445L, 0x1p16383L, false, 60000, 41);
    keepWorse(w, sweep(orv::extLog, mpfr_log, 0.25L, 4.0L, false, 60000, 42));
    // Around 1, where the result is u itself, on both sides of the power
    // of two, and around the table's points.
    keepWorse(w, sweepPoints(orv::extLog, mpfr_log, around(1.0L, 0x1p-64L, 0x1p-6L, 30000, 43)));
    keepWorse(w, sweepPoints(orv::extLog, mpfr_log, around(1.0L + 1.0L / 256, 0x1p-70L, 0x1p-9L, 5000, 44)));
    report("extLog", w);
    EXPECT_LE(w.ulps, orv::kExtLogBound) << "at " << double(w.at);
}

TEST_F(ExtendedTest, Log1pAgainstMpfr) {
    Worst w = sweep(orv::extLog1p, mpfr_log1p, 0x1p-80L, 0x1p16383L, false, 60000, 51);
    keepWorse(w, sweep(orv::extLog1p, mpfr_log1p, 0x1p-80L, 0.9999L, true, 60000, 52));
    // Around the series' edge 2^-7, and towards -1.
    keepWorse(w, sweepPoints(orv::extLog1p, mpfr_log1p, around(0x1p-7L, 0x1p-70L, 0x1p-9L, 5000, 53)));
    keepWorse(w, sweepPoints(orv::extLog1p, mpfr_log1p, around(-0x1p-7L, 0x1p-70L, 0x1p-9L, 5000, 54)));
    std::vector<Extended> nearMinusOne = around(-1.0L, 0x1p-64L, 0.5L, 10000, 55);
    for (Extended& v : nearMinusOne) v = v < -1 ? -2 - v : v;
    keepWorse(w, sweepPoints(orv::extLog1p, mpfr_log1p, nearMinusOne));
    report("extLog1p", w);
    EXPECT_LE(w.ulps, orv::kExtLog1pBound) << "at " << double(w.at);
}

TEST_F(ExtendedTest, LogSpecialValues) {
    EXPECT_TRUE(sameBits(call(orv::extLog, 1.0L), 0.0L));
    EXPECT_TRUE(sameBits(call(orv::extLog, 0.0L), -kInf));
    EXPECT_TRUE(sameBits(call(orv::extLog, -0.0L), -kInf));
    EXPECT_TRUE(sameBits(call(orv::extLog, kInf), kInf));
    EXPECT_TRUE(isQuietNan(call(orv::extLog, -kInf)));
    EXPECT_TRUE(isQuietNan(call(orv::extLog, -0x1p-16445L)));
    EXPECT_TRUE(isQuietNan(call(orv::extLog, kSignallingNan)));
    EXPECT_TRUE(sameBits(call(orv::extLog1p, -1.0L), -kInf));
    EXPECT_TRUE(sameBits(call(orv::extLog1p, 0.0L), 0.0L));
    EXPECT_TRUE(sameBits(call(orv::extLog1p, -0.0L), -0.0L));
    EXPECT_TRUE(sameBits(call(orv::extLog1p, kInf), kInf));
    EXPECT_TRUE(sameBits(call(orv::extLog1p, 0x1p-16445L), 0x1p-16445L));
    EXPECT_TRUE(isQuietNan(call(orv::extLog1p, -kInf)));
    EXPECT_TRUE(isQuietNan(call(orv::extLog1p, -1.0L - 0x1p-63L)));
    EXPECT_TRUE(isQuietNan(call(orv::extLog1p, kSignallingNan)));
    // Exact at the powers of two, up to the rounding of e ln 2.
    Mp x, exact;
    for (int e : {-16445, -16382, -1, 1, 64, 16383}) {
        const Extended v = orv::ext::scaleByPowerOfTwo(1.0L, e);
        mpfr_set_ld(x, v, MPFR_RNDN);
        mpfr_log(exact, x, MPFR_RNDN);
        EXPECT_LE(ulpsOff(call(orv::extLog, v), exact), 0.5) << e;
    }
}

// ---- extReduce and the circular functions -----------------------------------------

void sinOnly(Extended* r, const Extended* x) {
    Extended c;
    orv::extSinCos(r, &c, x);
}
void cosOnly(Extended* r, const Extended* x) {
    Extended s;
    orv::extSinCos(&s, r, x);
}

// The extended values nearest to N pi/2 for random N in every step-th
// binade of [2, 2^hiBits): the hardest cases of the reduction are among
// them.
std::vector<Extended> nearQuarterTurns(int hiBits, int step, int perBinade, uint64_t seed) {
    constexpr mpfr_prec_t kWide = 16384 + 512;
    mpfr_t halfPi, v;
    mpfr_inits2(kWide, halfPi, v, (mpfr_ptr)0);
    mpfr_const_pi(halfPi, MPFR_RNDN);
    mpfr_div_2ui(halfPi, halfPi, 1, MPFR_RNDN);
    Sampler s(seed);
    std::vector<Extended> out;
    for (int b = 1; b < hiBits; b += step) {
        for (int i = 0; i < perBinade; ++i) {
            const Extended n = s.magnitude(orv::ext::powerOfTwo(b), orv::ext::powerOfTwo(b + 1) * 0.99L);
            mpfr_set_ld(v, n < 0x1p63L ? Extended(uint64_t(n)) : n, MPFR_RNDN);  // an integer
            mpfr_mul(v, v, halfPi, MPFR_RNDN);
            const Extended x = mpfr_get_ld(v, MPFR_RNDN);
            out.push_back(s.coin() ? x : -x);
        }
    }
    mpfr_clears(halfPi, v, (mpfr_ptr)0);
    return out;
}

TEST_F(ExtendedTest, ReduceAgainstMpfr) {
    // The exact x - N pi/2 for the N nearest x/(pi/2), with pi/2 to 16896
    // bits (enough for every finite extended x); q must be N mod 4.
    constexpr mpfr_prec_t kWide = 16384 + 512;
    mpfr_t halfPi, x, n, exact;
    mpfr_inits2(kWide, halfPi, x, n, exact, (mpfr_ptr)0);
    mpfr_const_pi(halfPi, MPFR_RNDN);
    mpfr_div_2ui(halfPi, halfPi, 1, MPFR_RNDN);
    Sampler s(61);
    std::vector<Extended> points = nearQuarterTurns(16383, 7, 1, 62);
    for (int i = 0; i < 3000; ++i) points.push_back((s.coin() ? 1 : -1) * s.magnitude(0x1p-10L, 0x1p16383L));
    Worst w;
    for (Extended a : points) {
        Extended r;
        const int q = orv::extReduce(&r, &a);
        mpfr_set_ld(x, a, MPFR_RNDN);
        mpfr_div(n, x, halfPi, MPFR_RNDN);
        mpfr_rint(n, n, MPFR_RNDN);
        mpfr_mul(exact, n, halfPi, MPFR_RNDN);
        mpfr_sub(exact, x, exact, MPFR_RNDN);
        mpfr_fmod_ui(n, n, 4, MPFR_RNDN);  // n mod 4, with the sign of n
        const long nm = (mpfr_get_si(n, MPFR_RNDN) + 4) % 4;
        ASSERT_EQ(q, nm) << double(a);
        w.take(ulpsOff(r, exact), a);
    }
    mpfr_clears(halfPi, x, n, exact, (mpfr_ptr)0);
    report("extReduce", w);
    EXPECT_LE(w.ulps, orv::kExtReduceBound) << "at " << double(w.at);
}

TEST_F(ExtendedTest, CircularAgainstMpfr) {
    struct Case {
        const char* name;
        Unary f;
        MpfrUnary ref;
        double bound;
    } cases[] = {{"extSin", orv::extSin, mpfr_sin, orv::kExtSinBound},
                 {"extCos", orv::extCos, mpfr_cos, orv::kExtCosBound},
                 {"sin pair", sinOnly, mpfr_sin, orv::kExtSinBound},
                 {"cos pair", cosOnly, mpfr_cos, orv::kExtCosBound},
                 {"extTan", orv::extTan, mpfr_tan, orv::kExtTanBound}};
    const std::vector<Extended> hard = nearQuarterTurns(200, 1, 20, 71);
    for (const Case& c : cases) {
        Worst w = sweep(c.f, c.ref, 0x1p-80L, 0x1p16383L, true, 5000, 72);
        keepWorse(w, sweep(c.f, c.ref, 0x1p-10L, 0x1p31L, true, 40000, 73));
        keepWorse(w, sweepPoints(c.f, c.ref, hard));
        report(c.name, w);
        EXPECT_LE(w.ulps, c.bound) << c.name << " at " << double(w.at);
    }
}

TEST_F(ExtendedTest, CircularSpecialValues) {
    for (Extended z : {0.0L, -0.0L}) {
        Extended s, c;
        orv::extSinCos(&s, &c, &z);
        EXPECT_TRUE(sameBits(s, z));
        EXPECT_TRUE(sameBits(c, 1.0L));
        EXPECT_TRUE(sameBits(call(orv::extSin, z), z));
        EXPECT_TRUE(sameBits(call(orv::extCos, z), 1.0L));
        EXPECT_TRUE(sameBits(call(orv::extTan, z), z));
    }
    for (Extended v : {kInf, -kInf, kSignallingNan}) {
        for (Unary f : {orv::extSin, orv::extCos, orv::extTan}) EXPECT_TRUE(isQuietNan(call(f, v)));
        Extended r;
        EXPECT_EQ(orv::extReduce(&r, &v), 0);
        EXPECT_TRUE(isQuietNan(r));
    }
    // Tiny and subnormal arguments: sin x = tan x = x.
    for (Extended t : {0x1p-16445L, -0x1p-16400L, 0x1p-40L}) {
        EXPECT_TRUE(sameBits(call(orv::extSin, t), t));
        EXPECT_TRUE(sameBits(call(orv::extTan, t), t));
        EXPECT_TRUE(sameBits(call(orv::extCos, t), 1.0L));
    }
}

// ---- extAtan, extAtan2, extAsin, extAcos -------------------------------------------

// 1 - d and -1 + d for random d in [2^-64, hi]: the ends of asin and acos.
std::vector<Extended> towardOne(Extended hi, int n, uint64_t seed) {
    Sampler s(seed);
    std::vector<Extended> v;
    for (int i = 0; i < n; ++i) {
        const Extended a = 1 - s.magnitude(0x1p-64L, hi);
        v.push_back(s.coin() ? a : -a);
    }
    return v;
}

TEST_F(ExtendedTest, AtanAgainstMpfr) {
    Worst w = sweep(orv::extAtan, mpfr_atan, 0x1p-80L, 0x1p16383L, true, 40000, 81);
    keepWorse(w, sweep(orv::extAtan, mpfr_atan, 0x1p-10L, 0x1p10L, true, 60000, 82));
    report("extAtan", w);
    EXPECT_LE(w.ulps, orv::kExtAtanBound) << "at " << double(w.at);
}

TEST_F(ExtendedTest, Atan2AgainstMpfr) {
    // Points of all four quadrants, with ratios from 2^-70 to 2^70 and, for
    // a part, magnitudes over the whole range.
    Sampler s(91);
    Mp y, x, exact;
    Worst w;
    Extended worstX = 0;
    for (int i = 0; i < 100000; ++i) {
        const Extended base = i % 4 == 0 ? s.magnitude(0x1p-16300L, 0x1p16300L) : s.magnitude(0.5L, 2.0L);
        Extended a = base * s.magnitude(0x1p-70L, 0x1p70L), b = base;
        if (s.coin()) a = -a;
        if (s.coin()) b = -b;
        if (s.coin()) std::swap(a, b);
        Extended r;
        orv::extAtan2(&r, &a, &b);
        mpfr_set_ld(y, a, MPFR_RNDN);
        mpfr_set_ld(x, b, MPFR_RNDN);
        mpfr_atan2(exact, y, x, MPFR_RNDN);
        const double u = ulpsOff(r, exact);
        if (!(u <= w.ulps)) worstX = b;
        w.take(u, a);
    }
    report("extAtan2", w);
    EXPECT_LE(w.ulps, orv::kExtAtan2Bound) << "at y = " << double(w.at) << ", x = " << double(worstX);
}

TEST_F(ExtendedTest, AsinAcosAgainstMpfr) {
    struct Case {
        const char* name;
        Unary f;
        MpfrUnary ref;
        double bound;
    } cases[] = {{"extAsin", orv::extAsin, mpfr_asin, orv::kExtAsinBound},
                 {"extAcos", orv::extAcos, mpfr_acos, orv::kExtAcosBound}};
    const std::vector<Extended> ends = towardOne(0.25L, 20000, 101);
    for (const Case& c : cases) {
        Worst w = sweep(c.f, c.ref, 0x1p-80L, 1.0L, true, 30000, 102);
        keepWorse(w, sweep(c.f, c.ref, 0x1p-6L, 1.0L, true, 40000, 103));
        keepWorse(w, sweepPoints(c.f, c.ref, ends));
        keepWorse(w, sweepPoints(c.f, c.ref, around(0.5L, 0x1p-70L, 0x1p-6L, 5000, 104)));
        report(c.name, w);
        EXPECT_LE(w.ulps, c.bound) << c.name << " at " << double(w.at);
    }
}

TEST_F(ExtendedTest, InverseCircularSpecialValues) {
    Mp pi;
    mpfr_const_pi(pi, MPFR_RNDN);
    const Extended piX = mpfr_get_ld(pi, MPFR_RNDN);
    // The multiples of pi/4 these routines give round pi/2 and pi in two
    // parts: the nearest extended values.
    const Extended halfPi = piX / 2, quarterPi = piX / 4;
    mpfr_mul_ui(pi, pi, 3, MPFR_RNDN);
    mpfr_div_2ui(pi, pi, 2, MPFR_RNDN);
    const Extended threeQuarterPi = mpfr_get_ld(pi, MPFR_RNDN);
    auto atan2 = [](Extended y, Extended x) {
        Extended r;
        orv::extAtan2(&r, &y, &x);
        return r;
    };
    for (Extended sgn : {1.0L, -1.0L}) {
        const Extended zero = sgn * 0.0L;
        EXPECT_TRUE(sameBits(atan2(zero, 0.0L), zero));
        EXPECT_TRUE(sameBits(atan2(zero, 2.0L), zero));
        EXPECT_TRUE(sameBits(atan2(zero, kInf), zero));
        EXPECT_TRUE(sameBits(atan2(zero, -0.0L), sgn * piX));
        EXPECT_TRUE(sameBits(atan2(zero, -2.0L), sgn * piX));
        EXPECT_TRUE(sameBits(atan2(zero, -kInf), sgn * piX));
        EXPECT_TRUE(sameBits(atan2(sgn * 3, 0.0L), sgn * halfPi));
        EXPECT_TRUE(sameBits(atan2(sgn * 3, -0.0L), sgn * halfPi));
        EXPECT_TRUE(sameBits(atan2(sgn * kInf, 5.0L), sgn * halfPi));
        EXPECT_TRUE(sameBits(atan2(sgn * kInf, -5.0L), sgn * halfPi));
        EXPECT_TRUE(sameBits(atan2(sgn * kInf, kInf), sgn * quarterPi));
        EXPECT_TRUE(sameBits(atan2(sgn * kInf, -kInf), sgn * threeQuarterPi));
        EXPECT_TRUE(sameBits(atan2(sgn * 7, kInf), zero));
        EXPECT_TRUE(sameBits(atan2(sgn * 7, -kInf), sgn * piX));
        EXPECT_TRUE(sameBits(call(orv::extAtan, sgn * kInf), sgn * halfPi));
        EXPECT_TRUE(sameBits(call(orv::extAtan, zero), zero));
        EXPECT_TRUE(sameBits(call(orv::extAsin, zero), zero));
        EXPECT_TRUE(sameBits(call(orv::extAcos, zero), halfPi));
        EXPECT_TRUE(sameBits(call(orv::extAsin, sgn), sgn * halfPi));
        for (Extended out : {sgn * kInf, sgn * (1 + 0x1p-63L), sgn * 0x1p16000L}) {
            EXPECT_TRUE(isQuietNan(call(orv::extAsin, out)));
            EXPECT_TRUE(isQuietNan(call(orv::extAcos, out)));
        }
    }
    EXPECT_TRUE(sameBits(call(orv::extAcos, 1.0L), 0.0L));
    EXPECT_TRUE(sameBits(call(orv::extAcos, -1.0L), piX));
    for (Unary f : {orv::extAtan, orv::extAsin, orv::extAcos}) EXPECT_TRUE(isQuietNan(call(f, kSignallingNan)));
    EXPECT_TRUE(isQuietNan(atan2(kSignallingNan, 1.0L)));
    EXPECT_TRUE(isQuietNan(atan2(1.0L, kSignallingNan)));
}

// ---- extAsinh, extAcosh, extAtanh ----------------------------------------------------

TEST_F(ExtendedTest, InverseHyperbolicAgainstMpfr) {
    Worst w = sweep(orv::extAsinh, mpfr_asinh, 0x1p-80L, 0x1p16383L, true, 40000, 111);
    keepWorse(w, sweep(orv::extAsinh, mpfr_asinh, 0x1p-6L, 4.0L, true, 40000, 112));
    report("extAsinh", w);
    EXPECT_LE(w.ulps, orv::kExtAsinhBound) << "at " << double(w.at);

    // acosh from 1 up: 1 + d over the whole range of d, and near 2.
    std::vector<Extended> points;
    Sampler s(113);
    for (int i = 0; i < 40000; ++i) points.push_back(1 + s.magnitude(0x1p-63L, 0x1p16383L));
    for (int i = 0; i < 20000; ++i) points.push_back(1 + s.magnitude(0x1p-63L, 4.0L));
    w = sweepPoints(orv::extAcosh, mpfr_acosh, points);
    keepWorse(w, sweepPoints(orv::extAcosh, mpfr_acosh, around(2.0L, 0x1p-62L, 0.25L, 5000, 114)));
    report("extAcosh", w);
    EXPECT_LE(w.ulps, orv::kExtAcoshBound) << "at " << double(w.at);

    w = sweep(orv::extAtanh, mpfr_atanh, 0x1p-80L, 1.0L, true, 40000, 115);
    keepWorse(w, sweepPoints(orv::extAtanh, mpfr_atanh, towardOne(0.5L, 20000, 116)));
    keepWorse(w, sweepPoints(orv::extAtanh, mpfr_atanh, around(0.5L, 0x1p-70L, 0x1p-6L, 5000, 117)));
    report("extAtanh", w);
    EXPECT_LE(w.ulps, orv::kExtAtanhBound) << "at " << double(w.at);
}

TEST_F(ExtendedTest, InverseHyperbolicSpecialValues) {
    for (Extended sgn : {1.0L, -1.0L}) {
        const Extended zero = sgn * 0.0L;
        EXPECT_TRUE(sameBits(call(orv::extAsinh, zero), zero));
        EXPECT_TRUE(sameBits(call(orv::extAtanh, zero), zero));
        EXPECT_TRUE(sameBits(call(orv::extAsinh, sgn * kInf), sgn * kInf));
        EXPECT_TRUE(sameBits(call(orv::extAtanh, sgn), sgn * kInf));
        EXPECT_TRUE(isQuietNan(call(orv::extAtanh, sgn * (1 + 0x1p-63L))));
        EXPECT_TRUE(isQuietNan(call(orv::extAtanh, sgn * kInf)));
        EXPECT_TRUE(sameBits(call(orv::extAsinh, sgn * 0x1p-16445L), sgn * 0x1p-16445L));
        EXPECT_TRUE(sameBits(call(orv::extAtanh, sgn * 0x1p-16445L), sgn * 0x1p-16445L));
    }
    EXPECT_TRUE(sameBits(call(orv::extAcosh, 1.0L), 0.0L));
    EXPECT_TRUE(sameBits(call(orv::extAcosh, kInf), kInf));
    for (Extended out : {1 - 0x1p-64L, 0.0L, -0.0L, -1.0L, -kInf}) EXPECT_TRUE(isQuietNan(call(orv::extAcosh, out)));
    for (Unary f : {orv::extAsinh, orv::extAcosh, orv::extAtanh}) EXPECT_TRUE(isQuietNan(call(f, kSignallingNan)));
}

}  // namespace
