// Sine and cosine, and the shared pieces under them: the tables' telling
// rows, trigReduce against MPFR on the hard cases of reduction, the four
// double kernels at huge arguments, and what the generic suites cannot see
// of the twelve exports (sign and quadrant rules, the screens' edges, which
// elements a rejected block hands to the kernels).
#include <mpfr.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "tables/trig_tables.h"
#include "testing.h"
#include "trig/trig_kernels.h"

using namespace orvtest;
using orv::trig::cosKernel64;
using orv::trig::sinCosKernel64;
using orv::trig::sinKernel64;
using orv::trig::tanKernel64;
using orv::trig::trigReduce;
namespace tables = orv::tables;

namespace {

constexpr mpfr_prec_t kPrec = 2400;  // holds x/(pi/2) exactly enough for x up to 2^1024

// ---- MPFR helpers -----------------------------------------------------------

struct Mp {
    mpfr_t v;
    Mp() { mpfr_init2(v, kPrec); }
    ~Mp() { mpfr_clear(v); }
    operator mpfr_ptr() { return v; }
};

enum class Fn { Sin, Cos, Tan };

// Error of y in ulps of the exact f(x) (the ulp of its binade as a double).
double ulpError(double y, double x, Fn f) {
    Mp ex, diff;
    mpfr_set_d(ex, x, MPFR_RNDN);
    if (f == Fn::Sin) mpfr_sin(ex, ex, MPFR_RNDN);
    if (f == Fn::Cos) mpfr_cos(ex, ex, MPFR_RNDN);
    if (f == Fn::Tan) mpfr_tan(ex, ex, MPFR_RNDN);
    mpfr_sub_d(diff, ex, y, MPFR_RNDN);
    long e = mpfr_get_exp(ex);  // ex in [2^(e-1), 2^e)
    mpfr_mul_2si(diff, diff, 53 - e, MPFR_RNDN);
    return std::fabs(mpfr_get_d(diff, MPFR_RNDN));
}

// Checks trigReduce(x) against the exact x - N pi/2, N the integer of the
// returned quadrant nearest x/(pi/2): the remainder to about 2^-80
// absolute, |out[0]| at most pi/4 and a bit, out[1] below an ulp of out[0].
// Below 2^30 the bound is 2^-80 itself.  From 2^30 on the last step
// multiplies the fraction of an eighth-turn by pi/4 in two words, whose
// low word is itself rounded (pi/4 to about 2^-78): there the bound is
// 2^-76, three roundings of 2^-78 and the rest.  Relative to the remainder
// the error stays near 2^-75, so the tiny remainders of the hard cases
// keep far more than a double's precision.
void expectReduced(double x) {
    double out[2];
    int q = trigReduce(x, out);
    ASSERT_GE(q, 0);
    ASSERT_LE(q, 3);
    Mp halfPi, y, n, exact, err;
    mpfr_const_pi(halfPi, MPFR_RNDN);
    mpfr_div_2ui(halfPi, halfPi, 1, MPFR_RNDN);
    mpfr_set_d(y, x, MPFR_RNDN);
    mpfr_div(y, y, halfPi, MPFR_RNDN);
    // N = 4 floor((y - q + 2) / 4) + q: the integer = q mod 4 nearest y.
    mpfr_sub_si(n, y, q - 2, MPFR_RNDN);
    mpfr_div_2ui(n, n, 2, MPFR_RNDN);
    mpfr_floor(n, n);
    mpfr_mul_2ui(n, n, 2, MPFR_RNDN);
    mpfr_add_si(n, n, q, MPFR_RNDN);
    mpfr_mul(exact, n, halfPi, MPFR_RNDN);
    mpfr_d_sub(exact, x, exact, MPFR_RNDN);
    mpfr_sub_d(err, exact, out[0], MPFR_RNDN);
    mpfr_sub_d(err, err, out[1], MPFR_RNDN);
    const double absErr = std::fabs(mpfr_get_d(err, MPFR_RNDN));
    const double remainder = std::fabs(mpfr_get_d(exact, MPFR_RNDN));
    EXPECT_LE(absErr, std::fabs(x) < 0x1p30 ? 0x1p-80 : 0x1p-76) << std::hexfloat << x;
    EXPECT_LE(absErr, 0x1p-70 * remainder) << std::hexfloat << x;
    EXPECT_LE(std::fabs(out[0]), 0.7854) << std::hexfloat << x;
    EXPECT_LE(std::fabs(out[1]), 0x1p-52 * std::fabs(out[0])) << std::hexfloat << x;
}

// The double nearest k pi/2.
double nearestMultiple(double k) {
    Mp v;
    mpfr_const_pi(v, MPFR_RNDN);
    mpfr_mul_d(v, v, k / 2, MPFR_RNDN);
    return mpfr_get_d(v, MPFR_RNDN);
}

// The doubles that come closest to a multiple of pi/2 in the binade of
// 2^e: among the doubles nearest to many multiples, those with the smallest
// remainder relative to their ulp.
std::vector<double> closestInBinade(int e, int tries, std::mt19937_64& rng) {
    std::vector<std::pair<double, double>> scored;
    Mp halfPi, y, frac;
    mpfr_const_pi(halfPi, MPFR_RNDN);
    mpfr_div_2ui(halfPi, halfPi, 1, MPFR_RNDN);
    for (int t = 0; t < tries; ++t) {
        double x = std::ldexp(1.0 + std::uniform_real_distribution<double>(0, 1)(rng), e);
        mpfr_set_d(y, x, MPFR_RNDN);
        mpfr_div(y, y, halfPi, MPFR_RNDN);
        mpfr_frac(frac, y, MPFR_RNDN);
        double f = std::fabs(mpfr_get_d(frac, MPFR_RNDN));
        f = std::min(f, 1 - f);
        scored.push_back({f, x});
    }
    std::sort(scored.begin(), scored.end());
    std::vector<double> best;
    for (int i = 0; i < 4; ++i) best.push_back(scored[i].second);
    return best;
}

// The classic worst case of reduction: the double closest to a multiple of
// pi/2, 6381956970095103 2^797, and the largest double.
const double kWorstCase = std::ldexp(6381956970095103.0, 797);

// ---- Tables -----------------------------------------------------------------------

TEST(TrigTables, TellingRows) {
    EXPECT_EQ(bits(tables::kFourOverPiChunks[0]), 0u);
    EXPECT_EQ(bits(tables::kFourOverPiChunks[1]), 0x4C745F3060000000u);
    EXPECT_EQ(bits(tables::kFourOverPiChunks[2]), 0x4AEB939100000000u);
    EXPECT_EQ(bits(tables::kFourOverPiChunks[3]), 0x494529FC20000000u);
    EXPECT_EQ(bits(tables::kFourOverPiChunks[9]), 0x3FE458EAE0000000u);
    EXPECT_EQ(bits(tables::kFourOverPiChunks[50]), 0u);
    EXPECT_EQ(bits(tables::kFourOverPiChunks[51]), 0u);

    auto row = [](const tables::PhaseRow& r) {
        return std::vector<uint64_t>{bits(r.cosTail), bits(r.sinHi), bits(r.sinLo), bits(r.cosBase)};
    };
    using V = std::vector<uint64_t>;
    EXPECT_EQ(row(tables::kTrigPhaseTable[0]), (V{0, 0, 0, 0x3FF0000000000000}));
    EXPECT_EQ(row(tables::kTrigPhaseTable[1]),
              (V{0xBF73B92E176D6D31, 0x3FB917A6BC29B42C, 0xBC3E2718E0000000, 0x3FF0000000000000}));
    EXPECT_EQ(row(tables::kTrigPhaseTable[16]), (V{0, 0x3FF0000000000000, 0, 0x8000000000000000}));
    EXPECT_EQ(row(tables::kTrigPhaseTable[48]),
              (V{0x8000000000000000, 0xBFF0000000000000, 0, 0x8000000000000000}));
    EXPECT_EQ(row(tables::kFinePhaseTable[1]),
              (V{0xBF53BC390D250439, 0x3FA91F65F10DD814, 0xBC2912BD00000000, 0x3FF0000000000000}));
    EXPECT_EQ(row(tables::kFinePhaseTable[32]), (V{0, 0x3FF0000000000000, 0, 0x8000000000000000}));
    EXPECT_EQ(row(tables::kFinePhaseTable[64]), (V{0, 0, 0, 0xBFF0000000000000}));
    EXPECT_EQ(bits(tables::kShortPhaseTable[1].cosine), 0x3FEFD88DA3D12526u);
    EXPECT_EQ(bits(tables::kShortPhaseTable[1].sine), 0x3FB917A6BC29B42Cu);

    const double bases[64] = {1, 1, 1, 1, 1, 1, 1, 1, .5, .5, .5, .5, .5, .25, .25, .125,
                              -0.0, -.125, -.25, -.25, -.5, -.5, -.5, -.5, -.5, -1, -1, -1, -1, -1, -1, -1,
                              -1, -1, -1, -1, -1, -1, -1, -1, -.5, -.5, -.5, -.5, -.5, -.25, -.25, -.125,
                              -0.0, .125, .25, .25, .5, .5, .5, .5, .5, 1, 1, 1, 1, 1, 1, 1};
    for (int j = 0; j < 64; ++j) {
        const auto& r = tables::kTrigPhaseTable[j];
        EXPECT_EQ(bits(r.cosBase), bits(bases[j])) << "row " << j;
        EXPECT_EQ(bits(r.sinLo) & 0x1FFFFFFF, 0u) << "row " << j;
        // The block copies: the same values, zeros positive; the cosine's
        // rotated a quarter turn.
        const auto& s = tables::kSinPhaseTable[j];
        const auto& c = tables::kCosPhaseTable[j];
        const auto& turned = tables::kTrigPhaseTable[(j + 16) & 63];
        EXPECT_TRUE(s.cosTail == r.cosTail && s.sinHi == r.sinHi && s.sinLo == r.sinLo && s.cosBase == r.cosBase);
        EXPECT_TRUE(c.cosTail == turned.cosTail && c.sinHi == turned.sinHi && c.cosBase == turned.cosBase);
        for (double v : {s.cosTail, s.sinHi, s.sinLo, s.cosBase, c.cosTail, c.sinHi, c.sinLo, c.cosBase})
            EXPECT_FALSE(v == 0 && std::signbit(v)) << "row " << j;
    }

    const double* t0 = tables::kTanPhaseTable[0];
    const double* t8 = tables::kTanPhaseTable[8];
    const double* t16 = tables::kTanPhaseTable[16];
    EXPECT_EQ(bits(t0[5]), 0x3FD5555555555555u);
    EXPECT_EQ(bits(t0[9]), 0x3FC1111111111111u);
    EXPECT_EQ(bits(t0[13]), 0x3FABA1BA1BA1BA1Cu);
    EXPECT_EQ(bits(t0[1]), 0x3F9664F4882C10FAu);
    EXPECT_EQ(t0[16], 1.0);
    for (int p : {0, 2, 3, 6, 7, 10, 11, 14, 15, 17}) EXPECT_EQ(t0[p], 0.0) << p;
    EXPECT_EQ(bits(t16[17]), 0x3FD5555555555555u);
    EXPECT_EQ(bits(t16[5]), 0x3F96C16C16C16C17u);
    EXPECT_EQ(bits(t16[9]), 0x3F61566ABC011567u);
    EXPECT_EQ(t16[14], 0.0);
    EXPECT_EQ(t8[14], 1.0);
    EXPECT_EQ(t8[16], 2.0);
    EXPECT_EQ(bits(t8[3]), 0x4000000000000000u);
    // Mirrors, the pole rows' weight and mask.
    for (int j = 1; j < 32; ++j) {
        const double* a = tables::kTanPhaseTable[j];
        const double* b = tables::kTanPhaseTable[32 - j];
        const int evenPowers[] = {3, 7, 11, 0, 2, 6, 10, 14, 15};
        for (int p = 0; p < 18; ++p) EXPECT_EQ(std::fabs(a[p]), std::fabs(b[p])) << j << " " << p;
        for (int p : evenPowers) {
            if (a[p] != 0) {
                EXPECT_EQ(a[p], -b[p]) << j << " " << p;
            }
        }
        const bool pole = j >= 9 && j <= 23;
        EXPECT_EQ(a[18], pole ? 1.0 : 0.0);
        EXPECT_EQ(bits(a[19]), pole ? 0xFFFFFFF800000000u : 0u);
    }
}

// ---- trigReduce ---------------------------------------------------------------------

TEST(TrigReduce, RangeBoundariesAndWindowEdges) {
    std::vector<double> xs = {0x1p17, 12800.0, 0x1p23, 0x1p30, DBL_MAX, kWorstCase};
    for (double b : {0x1p17, 12800.0, 0x1p23, 0x1p30}) {
        xs.push_back(std::nextafter(b, 0.0));
        xs.push_back(std::nextafter(b, INFINITY));
    }
    // Exponents where e = E - 1052 is a multiple of 25 (the window index is
    // one short and rem is 25), and the ones beside them.
    for (int e = 25; e <= 975; e += 25)
        for (int d : {-1, 0, 1}) xs.push_back(std::ldexp(1.6180339887498949, e + d + 29));
    for (double x : xs) {
        expectReduced(x);
        expectReduced(-x);
    }
}

TEST(TrigReduce, ClosestToMultiplesOfHalfPi) {
    std::mt19937_64 rng(11);
    std::vector<double> xs = {kWorstCase, nearestMultiple(1e22), nearestMultiple(0x1p60), nearestMultiple(355.0 * 2 / 1)};
    for (int e = 17; e < 1024; e += 13)
        for (double x : closestInBinade(e, 400, rng)) xs.push_back(x);
    for (double x : xs) {
        expectReduced(x);
        expectReduced(-x);
    }
}

TEST(TrigReduce, RandomExponentsOverTheWholeRange) {
    std::mt19937_64 rng(5);
    for (int i = 0; i < 3000; ++i) {
        int e = std::uniform_int_distribution<int>(17, 1023)(rng);
        double x = std::ldexp(1.0 + std::uniform_real_distribution<double>(0, 1)(rng), e);
        if (x > DBL_MAX) continue;
        expectReduced(i % 2 ? -x : x);
    }
}

TEST(TrigReduce, NegativeArgumentsMirrorBitForBit) {
    std::mt19937_64 rng(6);
    for (int i = 0; i < 2000; ++i) {
        double x = std::ldexp(1.0 + std::uniform_real_distribution<double>(0, 1)(rng),
                              std::uniform_int_distribution<int>(17, 1023)(rng));
        double a[2], b[2];
        int qa = trigReduce(x, a), qb = trigReduce(-x, b);
        EXPECT_EQ(qb, (4 - qa) & 3);
        EXPECT_EQ(bits(b[0]), bits(-a[0]));
        EXPECT_EQ(bits(b[1]), bits(-a[1]));
        EXPECT_EQ(bits(sinKernel64(-x)), bits(-sinKernel64(x)));
        EXPECT_EQ(bits(cosKernel64(-x)), bits(cosKernel64(x)));
    }
}

// ---- The double kernels --------------------------------------------------------------

// Largest error of the four kernels on xs, per function.
struct KernelErrors {
    double sin = 0, cos = 0, tan = 0;
};
KernelErrors kernelErrors(const std::vector<double>& xs) {
    KernelErrors m;
    for (double x : xs) {
        double s, c;
        sinCosKernel64(x, &s, &c);
        EXPECT_EQ(bits(s), bits(sinKernel64(x))) << std::hexfloat << x;
        EXPECT_EQ(bits(c), bits(cosKernel64(x))) << std::hexfloat << x;
        m.sin = std::max(m.sin, ulpError(s, x, Fn::Sin));
        m.cos = std::max(m.cos, ulpError(c, x, Fn::Cos));
        m.tan = std::max(m.tan, ulpError(tanKernel64(x), x, Fn::Tan));
    }
    return m;
}

TEST(TrigKernels, WithinOneUlpAtHugeArguments) {
    std::mt19937_64 rng(12);
    std::vector<double> xs = {1e22, std::ldexp(1.9, 1023), DBL_MAX, kWorstCase, 0x1p30, 0x1p17, 12800.0};
    for (int e = 17; e < 1024; e += 29)
        for (double x : closestInBinade(e, 200, rng)) xs.push_back(x);
    // Floats nearest k pi/2 for large k, as the 32-bit element routines see them.
    for (double k : {1e5, 3e7, 1e9, 7.7e12, 2.5e20, 1e30, 1.5e37}) xs.push_back(double(float(nearestMultiple(k))));
    for (int i = 0; i < 1500; ++i)
        xs.push_back(std::ldexp(1.0 + std::uniform_real_distribution<double>(0, 1)(rng),
                                std::uniform_int_distribution<int>(-30, 1023)(rng)));
    const size_t n = xs.size();
    for (size_t i = 0; i < n; ++i) xs.push_back(-xs[i]);
    KernelErrors m = kernelErrors(xs);
    EXPECT_LT(m.sin, 1.0);
    EXPECT_LT(m.cos, 1.0);
    EXPECT_LT(m.tan, 1.0);
    RecordProperty("sin_ulp", std::to_string(m.sin));
    RecordProperty("cos_ulp", std::to_string(m.cos));
    RecordProperty("tan_ulp", std::to_string(m.tan));
}

TEST(TrigKernels, OrdinaryArgumentsAndTheTangentsPoles) {
    std::mt19937_64 rng(13);
    std::vector<double> xs;
    for (int i = 0; i < 3000; ++i) xs.push_back(std::uniform_real_distribution<double>(-2e5, 2e5)(rng));
    // Next to the poles of tan and the zeros of sin and cos.
    for (double k : {1.0, 3.0, 5.0, 1001.0, 8191.0, 8193.0, 81487.0})
        for (int d = -2; d <= 2; ++d) {
            double x = nearestMultiple(k);
            for (int s = 0; s < std::abs(d); ++s) x = std::nextafter(x, d < 0 ? 0.0 : INFINITY);
            xs.push_back(x);
            xs.push_back(nearestMultiple(k + 1));
        }
    KernelErrors m = kernelErrors(xs);
    EXPECT_LT(m.sin, 1.0);
    EXPECT_LT(m.cos, 1.0);
    EXPECT_LT(m.tan, 1.0);
    // The double nearest pi/2: tan through the reciprocal of the distance.
    const double halfPi = nearestMultiple(1.0);
    EXPECT_GT(tanKernel64(halfPi), 1.6e16);
    EXPECT_LT(ulpError(tanKernel64(halfPi), halfPi, Fn::Tan), 1.0);
}

TEST(TrigKernels, SpecialValuesAndTinyArguments) {
    EXPECT_SAME_BITS(sinKernel64(-0.0), -0.0);
    EXPECT_SAME_BITS(sinKernel64(0.0), 0.0);
    EXPECT_SAME_BITS(tanKernel64(-0.0), -0.0);
    EXPECT_SAME_BITS(sinKernel64(0x1p-1074), 0x1p-1074);
    EXPECT_SAME_BITS(sinKernel64(-0x1p-300), -0x1p-300);
    EXPECT_SAME_BITS(tanKernel64(0x1p-260), 0x1p-260);
    for (double x : {0.0, -0.0, 0x1p-1074, -0x1p-253, 0x1p-1022}) EXPECT_SAME_BITS(cosKernel64(x), 1.0);
    double s, c;
    sinCosKernel64(-0.0, &s, &c);
    EXPECT_SAME_BITS(s, -0.0);
    EXPECT_SAME_BITS(c, 1.0);
    for (double inf : {INFINITY, -INFINITY}) {
        clearFlags();
        EXPECT_TRUE(std::isnan(sinKernel64(inf)) && std::isnan(cosKernel64(inf)) && std::isnan(tanKernel64(inf)));
        EXPECT_TRUE(flags() & kMxcsrInvalid);
    }
    const double nan = f64(0x7FF8000000001234);
    EXPECT_EQ(bits(sinKernel64(nan)), 0x7FF8000000001234u);
    EXPECT_EQ(bits(cosKernel64(f64(0x7FF0000000001234))), 0x7FF8000000001234u);  // made quiet
}

// ---- The exports ---------------------------------------------------------------------------

using Fn32 = OrvStatus (*)(const Orv32f*, Orv32f*, int32_t);
using Fn64 = OrvStatus (*)(const Orv64f*, Orv64f*, int32_t);
using Kernel = double (*)(double);

struct Member32 {
    const char* name;
    Fn32 fn;
    Kernel kernel;
    int block;     // N
    float limit;   // largest |x| the block holds
    bool lastAlwaysTail;  // A24: the last 1 to 16 elements are the tail
};
struct Member64 {
    const char* name;
    Fn64 fn;
    Kernel kernel;
    uint32_t passBelow;  // high word of |x| below this stays in the block
};

const Member32 kMembers32[] = {
    {"Sin A11", orvsSin_32f_A11, sinKernel64, 8, 4000.0f, false},
    {"Sin A21", orvsSin_32f_A21, sinKernel64, 8, 10000.0f, false},
    {"Sin A24", orvsSin_32f_A24, sinKernel64, 16, 10000.0f, true},
    {"Cos A11", orvsCos_32f_A11, cosKernel64, 8, 10000.0f, false},
    {"Cos A21", orvsCos_32f_A21, cosKernel64, 8, 10000.0f, false},
    {"Cos A24", orvsCos_32f_A24, cosKernel64, 16, 10000.0f, true},
};
const Member64 kMembers64[] = {
    {"Sin A26", orvsSin_64f_A26, sinKernel64, 0x40F60001},
    {"Sin A50", orvsSin_64f_A50, sinKernel64, 0x40F60000},
    {"Sin A53", orvsSin_64f_A53, sinKernel64, 0x40F60000},
    {"Cos A26", orvsCos_64f_A26, cosKernel64, 0x40F60001},
    {"Cos A50", orvsCos_64f_A50, cosKernel64, 0x40F60000},
    {"Cos A53", orvsCos_64f_A53, cosKernel64, 0x40F60000},
};

template <class T, class F>
std::vector<T> run(F fn, std::vector<T> in, OrvStatus* status = nullptr) {
    std::vector<T> out(in.size());
    OrvStatus st = fn(in.data(), out.data(), int32_t(in.size()));
    if (status) *status = st;
    return out;
}

TEST(SinCosExports, SignOfZeroAndCosOfZero) {
    for (Fn32 f : {orvsSin_32f_A11, orvsSin_32f_A21}) EXPECT_SAME_BITS(run(f, std::vector<float>{-0.0f})[0], 0.0f);
    EXPECT_SAME_BITS(run(orvsSin_32f_A24, std::vector<float>{-0.0f})[0], -0.0f);
    for (const auto& m : kMembers64) {
        if (m.kernel == sinKernel64) {
            EXPECT_SAME_BITS(run(m.fn, std::vector<double>{-0.0})[0], 0.0) << m.name;
        }
    }
    EXPECT_EQ(bits(run(orvsCos_32f_A11, std::vector<float>{0.0f})[0]), 0x3F7FF60Fu);
    // A denormal stays in the 64-bit blocks and comes back itself.
    for (Fn64 f : {orvsSin_64f_A26, orvsSin_64f_A50})
        EXPECT_SAME_BITS(run(f, std::vector<double>(4, 0x1p-1070))[1], 0x1p-1070);
}

TEST(SinCosExports, InfinityAndNaN) {
    for (const auto& m : kMembers32) {
        clearFlags();
        OrvStatus st;
        auto y = run(m.fn, std::vector<float>{1.0f, -INFINITY, f32(0x7FA00001), 2.0f}, &st);
        EXPECT_EQ(st, orvStatusDomain) << m.name;
        EXPECT_EQ(bits(y[1]), 0xFFC00000u) << m.name;
        EXPECT_EQ(bits(y[2]), 0x7FE00001u) << m.name;  // the signalling NaN made quiet
        EXPECT_TRUE(flags() & kMxcsrInvalid) << m.name;
        run(m.fn, std::vector<float>(9, NAN), &st);
        EXPECT_EQ(st, orvStatusOk) << m.name;
    }
    for (const auto& m : kMembers64) {
        clearFlags();
        OrvStatus st;
        auto y = run(m.fn, std::vector<double>{1.0, INFINITY, f64(0x7FF8000000000042)}, &st);
        EXPECT_EQ(st, orvStatusDomain) << m.name;
        EXPECT_EQ(bits(y[1]), 0xFFF8000000000000u) << m.name;
        EXPECT_EQ(bits(y[2]), 0x7FF8000000000042u) << m.name;
        EXPECT_TRUE(flags() & kMxcsrInvalid) << m.name;
    }
}

// Whether the block of a value goes to the kernel: the value in a full
// block among small neighbours, against the kernel's own result.
TEST(SinCosExports, ScreenEdges) {
    for (const auto& m : kMembers32) {
        for (float x : {m.limit, std::nextafter(m.limit, INFINITY), 1e30f, -3.4e38f}) {
            std::vector<float> in(m.lastAlwaysTail ? 17 : m.block, 0.25f);
            in[1] = x;
            float got = run(m.fn, in)[1];
            float alone = run(m.fn, std::vector<float>{x})[0];  // the tail: block arithmetic or kernel
            if (std::fabs(x) > m.limit) {
                EXPECT_SAME_BITS(got, float(m.kernel(x))) << m.name << " " << x;
                EXPECT_SAME_BITS(alone, float(m.kernel(x))) << m.name << " " << x;
            } else {
                EXPECT_SAME_BITS(got, alone) << m.name << " " << x;
            }
        }
    }
    // Sin A11 hands 4000 < |x| <= 10000 to the kernel, Cos A11 keeps it.
    std::vector<float> mid(8, 4500.5f);
    EXPECT_SAME_BITS(run(orvsSin_32f_A11, mid)[3], float(sinKernel64(4500.5)));
    // A high word of 0x40F60000 stays in the A26 block, leaves A50's.
    const double edge = f64(0x40F6000000000123);
    for (const auto& m : kMembers64) {
        std::vector<double> in(4, 0.5);
        in[2] = edge;
        double got = run(m.fn, in)[2];
        if (m.passBelow > 0x40F60000) EXPECT_SAME_BITS(got, run(m.fn, std::vector<double>{edge})[0]) << m.name;
        else EXPECT_SAME_BITS(got, m.kernel(edge)) << m.name;
    }
}

// A NaN in a block sends exactly that block to the kernel: its neighbours
// there get the kernel's bits, every other element the clean run's bits.
TEST(SinCosExports, RejectedBlockTouchesOnlyItsOwnElements) {
    std::mt19937_64 rng(21);
    for (const auto& m : kMembers32) {
        std::vector<float> clean(67);
        for (float& x : clean) x = std::uniform_real_distribution<float>(-3000, 3000)(rng);
        const auto want = run(m.fn, clean);
        for (int p : {0, 9, 20, 47}) {
            auto in = clean;
            in[p] = NAN;
            auto got = run(m.fn, in);
            const int first = p / m.block * m.block;
            const bool inBlock = first + m.block <= int(in.size()) - (m.lastAlwaysTail ? 1 : 0);
            for (int i = 0; i < int(in.size()); ++i) {
                if (i == p) continue;
                const bool kernel = inBlock && i >= first && i < first + m.block;
                EXPECT_SAME_BITS(got[i], kernel ? float(m.kernel(in[i])) : want[i]) << m.name << " " << i;
            }
        }
    }
    for (const auto& m : kMembers64) {
        std::vector<double> clean(19);
        for (double& x : clean) x = std::uniform_real_distribution<double>(-9e4, 9e4)(rng);
        const auto want = run(m.fn, clean);
        auto in = clean;
        in[5] = -INFINITY;
        auto got = run(m.fn, in);
        for (int i = 0; i < 19; ++i) {
            if (i != 5) {
                EXPECT_SAME_BITS(got[i], i >= 4 && i < 8 ? m.kernel(in[i]) : want[i]) << m.name << " " << i;
            }
        }
    }
}

// A24 runs blocks only while more than 16 elements remain: with len 16 a
// NaN sends nobody else to the kernel, with len 17 its fifteen neighbours.
TEST(SinCosExports, A24LeavesTheLastSixteenToTheTail) {
    for (Fn32 f : {orvsSin_32f_A24, orvsCos_32f_A24}) {
        const Kernel kernel = f == orvsSin_32f_A24 ? sinKernel64 : cosKernel64;
        // A value whose block result differs from the kernel's, rounded.
        float v = 1.0f;
        for (float x = 1.0f; x < 3000; x = std::nextafter(x * 1.01f, INFINITY))
            if (run(f, std::vector<float>{x})[0] != float(kernel(x))) {
                v = x;
                break;
            }
        ASSERT_NE(run(f, std::vector<float>{v})[0], float(kernel(v)));
        for (int len : {16, 17}) {
            std::vector<float> in(len, v);
            in[0] = NAN;
            EXPECT_SAME_BITS(run(f, in)[3], len == 16 ? run(f, std::vector<float>{v})[0] : float(kernel(v)));
        }
    }
}

}  // namespace
