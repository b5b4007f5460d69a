// CdfNorm: the tables' fixed rows, the limits with the underflow warning
// placed where each tier puts it (in a block and in the tail, neighbours
// untouched), the lower tail's subnormal results and the band edges within
// the tier, and Phi(x) + Phi(-x) = 1.
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "measure.h"
#include "tables/cdfnorm_tables.h"
#include "testing.h"

using namespace orvtest;

namespace {

template <class T>
using Fn = OrvStatus (*)(const T*, T*, int32_t);

template <class T>
struct Member {
    const char* name;
    Fn<T> fn;
    double relative;  // the tier's bound as a relative error
    T low, high;      // LO and HI
    bool warns;
};
constexpr float kLow32 = -14.170185089111328f, kHigh32 = 5.41998291015625f;
const double kLow26 = f64(0xC042C27B05BF1A0A), kLow50 = f64(0xC0433E21DC3F3BD7), kHigh64 = f64(0x402095B059D67C4C);

const Member<float> k32[] = {
    {"orvsCdfNorm_32f_A11", orvsCdfNorm_32f_A11, 0x1p-11, kLow32, kHigh32, true},
    {"orvsCdfNorm_32f_A21", orvsCdfNorm_32f_A21, 0x1p-22, kLow32, kHigh32, true},
    {"orvsCdfNorm_32f_A24", orvsCdfNorm_32f_A24, 0x1p-24, kLow32, kHigh32, true}};
const Member<double> k64[] = {
    {"orvsCdfNorm_64f_A26", orvsCdfNorm_64f_A26, 0x1p-26, kLow26, kHigh64, false},
    {"orvsCdfNorm_64f_A50", orvsCdfNorm_64f_A50, 0x1p-51, kLow50, kHigh64, true},
    {"orvsCdfNorm_64f_A53", orvsCdfNorm_64f_A53, 0x1p-53, kLow50, kHigh64, true}};

// Measures a member on the inputs against the MPFR reference and holds it
// to its tier.
template <class T>
void expectWithinTier(const Member<T>& m, const std::vector<double>& inputs) {
    const ExportInfo& e = *findExport(m.name);
    std::vector<Sample> samples;
    for (double x : inputs) samples.push_back(Sample{{x}});
    ErrorStats st = measureErrors(e, samples, runMember(e, samples));
    EXPECT_TRUE(withinTier(e, st)) << m.name << ": " << st.worst;
}

template <class T>
bool sameBits(T a, T b) {
    return bits(a) == bits(b);
}

// One special value x at each position of a block of 4 and in the tail of
// a call of 7, among ordinary neighbours: its result, the call's status,
// the underflow flag, and the neighbours' bits against a call without it.
template <class T>
void expectAlone(const Member<T>& m, T x, T want, bool warning) {
    const std::vector<T> clean = {T(0.5), T(-1.25), T(2), T(-0.75), T(3), T(-2.5), T(0.125)};
    std::vector<T> cleanOut(clean.size());
    ASSERT_EQ(m.fn(clean.data(), cleanOut.data(), int32_t(clean.size())), orvStatusOk);
    for (size_t at : {size_t(0), size_t(2), size_t(3), size_t(4), size_t(6)}) {
        std::vector<T> in = clean, out(in.size());
        in[at] = x;
        OrvStatus st;
        uint32_t raised;
        {
            FpEnvScope scope(kMxcsrDefault);
            st = m.fn(in.data(), out.data(), int32_t(in.size()));
            raised = flags();
        }
        if (std::isnan(want))
            EXPECT_TRUE(std::isnan(out[at])) << m.name << " x = " << x;
        else
            EXPECT_TRUE(sameBits(out[at], want)) << m.name << " x = " << x << " at " << at << ": " << out[at];
        EXPECT_EQ(st, warning ? orvStatusUnderflow : orvStatusOk) << m.name << " x = " << x << " at " << at;
        if (warning) {
            EXPECT_NE(raised & kMxcsrUnderflow, 0u) << m.name << " x = " << x;
        }
        for (size_t k = 0; k < in.size(); ++k) {
            if (k != at) {
                EXPECT_TRUE(sameBits(out[k], cleanOut[k])) << m.name << " neighbour " << k << " of " << at;
            }
        }
    }
}

template <class T>
void expectLimitsAndSpecials(const Member<T>& m) {
    const T inf = std::numeric_limits<T>::infinity();
    const T belowLow = std::nextafter(m.low, -inf), aboveHigh = std::nextafter(m.high, inf);
    expectAlone(m, belowLow, T(0), m.warns);
    expectAlone(m, T(-1000), T(0), m.warns);
    expectAlone(m, -std::numeric_limits<T>::max(), T(0), m.warns);
    expectAlone(m, -inf, T(0), false);
    expectAlone(m, aboveHigh, T(1), false);
    expectAlone(m, std::numeric_limits<T>::max(), T(1), false);
    expectAlone(m, inf, T(1), false);
    expectAlone(m, T(0), T(0.5), false);
    expectAlone(m, T(-0.0), T(0.5), false);
    expectAlone(m, std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::quiet_NaN(), false);
    // LO itself still comes from the arithmetic: a value that is not 0,
    // with no warning, and within the tier.
    T atLow;
    EXPECT_EQ(m.fn(&m.low, &atLow, 1), orvStatusOk) << m.name;
    EXPECT_GT(atLow, T(0)) << m.name;
    expectWithinTier(m, {double(m.low), double(m.high), double(std::nextafter(m.high, T(0)))});
}

}  // namespace

TEST(CdfNormTables, FixedRowsAndRowZero) {
    using namespace orv::tables;
    const uint64_t slope = 0xBFD9884533D43651;  // -1/sqrt(2 pi)
    const uint64_t row21[5] = {0x3F90000000000000, 0x3FDF9ADCCE797BD0, 0xBFD909D9C0983170, 0x3FCF36B4DAC35BE5,
                               0xBFC083BF89A7B5B3};
    const uint64_t row26[8] = {0x3FD0000000000000, 0x3FDA7F808169E563, 0xBFD2E86513796446, 0x3FC5C5673BD6D7F7,
                               0xBFB594F5075F2FD2, 0x3FA312978341649F, 0xBF8EA54578A30B3D, 0x3F7533D56AE37979};
    const uint64_t row53[17] = {0x3FD0000000000000, 0x3E802D3CAE0990B2, 0x3FDA7F8000000000, 0xBE91379BCF479EE6,
                                0xBFD2E86400000000, 0x3FC5C5673C8B7633, 0xBFB594F58FE0683D, 0x3FA312C88A8F692B,
                                0xBF8EB760CA7D91BF, 0x3F76DF18A7DF69FB, 0xBF5FD646864A57CC, 0x3F44E1B43F4570D3,
                                0xBF29FAB8CB038063, 0x3F0ED006E3F34C8B, 0xBEF17D9B76ED285A, 0x3ED2FBBC82F8FECB,
                                0xBEB1F5C3151E22A0};
    for (int k = 0; k < 5; ++k) EXPECT_EQ(bits(kCdfNormRows21[1][k]), row21[k]) << "A21 row 1 slot " << k;
    for (int k = 0; k < 8; ++k) EXPECT_EQ(bits(kCdfNormRows26[1][k]), row26[k]) << "A26 row 1 slot " << k;
    for (int k = 0; k < 17; ++k) EXPECT_EQ(bits(kCdfNormRows53[1][k]), row53[k]) << "A53 row 1 slot " << k;
    // Row 0: centre 0, g0 = 1/2, g1 = -1/sqrt(2 pi), g2 = 1/4 (A53: g0 and
    // g1 as head plus tail).
    for (const double* row : {kCdfNormRows21[0], kCdfNormRows26[0], kCdfNormRows50[0]}) {
        EXPECT_EQ(row[0], 0.0);
        EXPECT_EQ(row[1], 0.5);
        EXPECT_EQ(bits(row[2]), slope);
        EXPECT_EQ(row[3], 0.25);
    }
    EXPECT_EQ(kCdfNormRows53[0][2] + kCdfNormRows53[0][1], 0.5);
    EXPECT_EQ(bits(kCdfNormRows53[0][4] + kCdfNormRows53[0][3]), slope);
    EXPECT_EQ(kCdfNormRows53[0][5], 0.25);
    // The last rows reach past |LO|.
    EXPECT_EQ(kCdfNormRows21[158][0], 14.5);
    EXPECT_EQ(kCdfNormRows26[24][0], 14.0);
    EXPECT_EQ(kCdfNormRows26[29][0], 32.0);
    EXPECT_EQ(kCdfNormRows50[29][0], 32.0);
    EXPECT_EQ(kCdfNormRows53[29][0], 32.0);
}

TEST(CdfNorm, LimitsUnderflowWarningAndSpecialValues) {
    for (const auto& m : k32) expectLimitsAndSpecials(m);
    for (const auto& m : k64) expectLimitsAndSpecials(m);
    // A26's lower limit lies above the others': from there down it gives
    // +0 with no warning, where A50 still gives a normal value.
    double x = -38.0, y26, y50;
    EXPECT_EQ(orvsCdfNorm_64f_A26(&x, &y26, 1), orvStatusOk);
    EXPECT_EQ(orvsCdfNorm_64f_A50(&x, &y50, 1), orvStatusOk);
    EXPECT_EQ(y26, 0.0);
    EXPECT_GT(y50, 0.0);
}

// Each finite element below LO writes the warning, wherever it stands; a
// call whose only low element is -infinity has none.
TEST(CdfNorm, EveryLowElementWarns) {
    std::vector<double> in(11, 1.0), out(in.size());
    for (size_t at = 0; at < in.size(); ++at) {
        std::fill(in.begin(), in.end(), 1.0);
        in[at] = -40.0;
        EXPECT_EQ(orvsCdfNorm_64f_A53(in.data(), out.data(), int32_t(in.size())), orvStatusUnderflow) << at;
        EXPECT_EQ(orvsCdfNorm_64f_A26(in.data(), out.data(), int32_t(in.size())), orvStatusOk) << at;
        in[at] = -std::numeric_limits<double>::infinity();
        EXPECT_EQ(orvsCdfNorm_64f_A50(in.data(), out.data(), int32_t(in.size())), orvStatusOk) << at;
    }
    std::vector<float> f(9, -20.0f), g(f.size());
    EXPECT_EQ(orvsCdfNorm_32f_A21(f.data(), g.data(), int32_t(f.size())), orvStatusUnderflow);
    for (float y : g) EXPECT_SAME_BITS(y, 0.0f);
}

// The lower tail: the float members' subnormal results from -12.5 down to
// LO, and the double members' down to theirs, within the tier.
TEST(CdfNorm, LowerTailWithinTier) {
    for (const auto& m : k32) {
        std::vector<double> in;
        for (float x = -12.5f; x >= m.low; x -= 0.00731f) in.push_back(x);
        expectWithinTier(m, in);
    }
    for (const auto& m : k64) {
        std::vector<double> in;
        for (double x = -36.0; x >= m.low; x -= 0.000913) in.push_back(x);
        expectWithinTier(m, in);
    }
}

// Every band edge (4 per binade from 0.25, 16 per binade from 2^-6 in A11
// and A21) and the value below it, on both sides: a row with a wrong centre
// or wrong coefficients shows at its edges.
TEST(CdfNorm, BandEdgesWithinTier) {
    auto edges = [](int perBinade, double from, double top, bool isFloat) {
        std::vector<double> in;
        for (double edge = from; edge < top; edge += std::ldexp(1.0, std::ilogb(edge)) / perBinade) {
            double below = isFloat ? double(std::nextafter(float(edge), 0.0f)) : std::nextafter(edge, 0.0);
            for (double v : {edge, below}) {
                in.push_back(v);
                in.push_back(-v);
            }
        }
        return in;
    };
    expectWithinTier(k32[0], edges(16, 0x1p-6, 15.0, true));
    expectWithinTier(k32[1], edges(16, 0x1p-6, 15.0, true));
    expectWithinTier(k32[2], edges(4, 0.25, 15.0, true));
    for (const auto& m : k64) expectWithinTier(m, edges(4, 0.25, 38.4, false));
}

// Phi(x) + Phi(-x) = 1: a wrong reflection constant or a sign carried the
// wrong way breaks it at once.  Each result is within its tier, so the sum
// is within twice the bound of 1 (Phi(-x) <= 1/2 weighs at most half).
TEST(CdfNorm, ReflectionSumsToOne) {
    std::mt19937_64 rng(16);
    auto check = [&](const auto& m, auto type) {
        using T = decltype(type);
        std::uniform_real_distribution<double> u(0.0, double(m.high));
        std::vector<T> x(203), minus(x.size()), p(x.size()), q(x.size());
        for (size_t i = 0; i < x.size(); ++i) x[i] = T(u(rng)), minus[i] = -x[i];
        m.fn(x.data(), p.data(), int32_t(x.size()));
        m.fn(minus.data(), q.data(), int32_t(x.size()));
        for (size_t i = 0; i < x.size(); ++i) {
            long double sum = (long double)p[i] + (long double)q[i];
            EXPECT_LE(std::fabs(sum - 1.0L), 2.0L * m.relative) << m.name << " x = " << x[i];
        }
    };
    for (const auto& m : k32) check(m, float());
    for (const auto& m : k64) check(m, double());
}
