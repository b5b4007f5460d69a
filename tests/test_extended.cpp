// The extended-precision routines under the complex kernels, each against
// MPFR on its own domain: the error of every sampled result measured in
// units of the 64-bit significand (the ulp of the exact value's binade),
// held to the bound declared next to the routine, and the special values at
// entry checked bit for bit.  Everything runs under the x87 word the complex
// wrappers set: 64-bit significand, rounding to nearest.
#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <vector>

#include "complex/extended.h"
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
// significand, so that every binade of the range is visited equally.
class Sampler {
public:
    explicit Sampler(uint64_t seed) : rng_(seed) {}
    Extended magnitude(Extended lo, Extended hi) {
        const int elo = extendedBits(lo).signExponent & 0x7FFF;
        const int ehi = extendedBits(hi).signExponent & 0x7FFF;
        for (;;) {
            const int e = std::uniform_int_distribution<int>(elo, ehi)(rng_);
            const Extended x = extendedFromBits(rng_() | kLeadBit, uint16_t(e));
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

}  // namespace
