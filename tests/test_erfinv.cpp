// ErfInv, ErfcInv and CdfNormInv: the tables' telling rows and the ErfcInv
// tables as negations, the poles, the domain's edges and their neighbours,
// the band boundaries, the border between the tables and the tails, the
// smallest subnormal arguments, NaN and the infinities, each inside a block
// of ordinary values (statuses, flags and the neighbours' bits), the order
// of warnings, and the round trip erfinv(erf(x)).
#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <cmath>
#include <random>
#include <vector>

#include "tables/erfinv_tables.h"
#include "testing.h"

using namespace orvtest;

namespace {

template <class T>
using Fn = OrvStatus (*)(const T*, T*, int32_t);

template <class T>
struct Member {
    const char* name;
    Fn<T> fn;
    double bound;  // ulps, against the x87 extended check below
};
const Member<float> kErfInv32[] = {{"ErfInv A11", orvsErfInv_32f_A11, 4096},
                                   {"ErfInv A21", orvsErfInv_32f_A21, 4},
                                   {"ErfInv A24", orvsErfInv_32f_A24, 1}};
const Member<double> kErfInv64[] = {{"ErfInv A26", orvsErfInv_64f_A26, 1 << 27},
                                    {"ErfInv A50", orvsErfInv_64f_A50, 4},
                                    {"ErfInv A53", orvsErfInv_64f_A53, 1}};
const Member<float> kErfcInv32[] = {{"ErfcInv A11", orvsErfcInv_32f_A11, 4096},
                                    {"ErfcInv A21", orvsErfcInv_32f_A21, 4},
                                    {"ErfcInv A24", orvsErfcInv_32f_A24, 1}};
const Member<double> kErfcInv64[] = {{"ErfcInv A26", orvsErfcInv_64f_A26, 1 << 27},
                                     {"ErfcInv A50", orvsErfcInv_64f_A50, 4},
                                     {"ErfcInv A53", orvsErfcInv_64f_A53, 1}};
const Member<float> kCdfInv32[] = {{"CdfNormInv A11", orvsCdfNormInv_32f_A11, 4096},
                                   {"CdfNormInv A21", orvsCdfNormInv_32f_A21, 4},
                                   {"CdfNormInv A24", orvsCdfNormInv_32f_A24, 1}};
const Member<double> kCdfInv64[] = {{"CdfNormInv A26", orvsCdfNormInv_64f_A26, 1 << 27},
                                    {"CdfNormInv A50", orvsCdfNormInv_64f_A50, 4},
                                    {"CdfNormInv A53", orvsCdfNormInv_64f_A53, 1}};

// The tier's bits, from the member's name.
int bitsOf(const char* name) { return std::atoi(std::strrchr(name, 'A') + 1); }

template <class T>
T one(Fn<T> fn, T x, OrvStatus* status = nullptr) {
    T y;
    OrvStatus s = fn(&x, &y, 1);
    if (status) *status = s;
    return y;
}

// A row given by its values to so many digits stands for a polynomial in m
// over its band; ours, fitted by another method, must agree with it over
// the whole band to within the tier's accuracy (2^-bits relative).
template <size_t N>
void expectSamePolynomial(const double* ours, const double (&given)[N], double half, int bits, const char* what) {
    long double worst = 0;
    for (int i = 0; i <= 64; ++i) {
        long double m = -half + 2 * half * i / 64.0L, a = 0, b = 0;
        for (size_t k = N; k-- > 0;) {
            a = a * m + ours[k];
            b = b * m + given[k];
        }
        worst = std::max(worst, std::fabs((a - b) / b));
    }
    EXPECT_LT(double(worst), std::ldexp(1.0, -bits)) << what;
}

// F(r) = -erfcinv(y) / sqrt(-ln y) at y = exp(-1/r^2), in extended
// precision: Newton's iteration on ln erfc, concave, from sqrt(-ln y).
long double tailF(long double r) {
    long double lw = 1 / (r * r), z = std::sqrt(lw);
    for (int i = 0; i < 12; ++i) {
        long double e = erfcl(z);
        z += (logl(e) + lw) * e * 0.886226925452758013649L * expl(z * z);
    }
    return -z * r;
}

// ---- Tables ------------------------------------------------------------------

TEST(ErfInvTables, TellingRows) {
    using namespace orv::tables;
    EXPECT_SAME_BITS(kErfInvRows11[0][0], f32(0x3F62E557));
    EXPECT_SAME_BITS(kErfInvRows11[0][1], f32(0xBB6DB3B8));
    EXPECT_SAME_BITS(kErfInvRows11[383][0], f32(0x4075087F));
    EXPECT_SAME_BITS(kErfInvRows11[383][1], f32(0xBDFB5BD4));
    const double row0[4] = {0.8862835761, -0.003626186848, 0.05805795446, -0.0009977146892};
    const double row400[4] = {3.921154759, -0.06284046327, 0.01548627479, -0.005171140566};
    const double cdf0[4] = {1.253394253, -0.005128202621, 0.0821063466, -0.001410981645};
    expectSamePolynomial(kErfInvRows26[0], row0, 1.0 / 32, 26, "A26 row 0");
    expectSamePolynomial(kErfInvRows26[400], row400, 1.0 / 32, 26, "A26 row 400");
    expectSamePolynomial(kCdfNormInvRows26[0], cdf0, 1.0 / 32, 26, "CdfNormInv A26 row 0");
    // The constant coefficients of those rows, and of A53 row 0 (r0 .. r14,
    // C0, C1), to the digits given.
    EXPECT_NEAR(kErfInvRows26[0][0], 0.8862835761, 5e-11);
    EXPECT_NEAR(kErfInvRows26[400][0], 3.921154759, 5e-10);
    EXPECT_NEAR(kCdfNormInvRows26[0][0], 1.253394253, 5e-10);
    EXPECT_NEAR(kErfInvRows53[0][15], 0.88713518, 5e-9);
    EXPECT_NEAR(kErfInvRows53[0][16], -0.014563386, 5e-10);
    EXPECT_NEAR(kErfInvRows53[0][2], 0.058755796, 5e-10);
    // The tails: the logarithm's row 0, and c0 = F(i/128) in every row of F
    // (slot 13), -sqrt(2) F for the quantile; c1 + a1 (slots 14 and 1) is
    // F's slope there.
    EXPECT_EQ(kErfcInvTailLog[0][0] >> 32, 0x3FEFF000u);
    for (int i = 4; i <= 31; ++i) {
        long double r = i / 128.0L, F = tailF(r), h = 1e-6L;
        long double slope = (tailF(r + h) - tailF(r - h)) / (2 * h);
        EXPECT_NEAR(kErfcInvTailPoly[i - 4][13], double(F), 1e-15) << "row " << i;
        EXPECT_NEAR(kCdfNormInvTailPoly[i - 4][13], double(-F * 1.41421356237309504880L), 2e-15) << "row " << i;
        EXPECT_NEAR(kErfcInvTailPoly[i - 4][14] + kErfcInvTailPoly[i - 4][1], double(slope), 1e-8) << "row " << i;
    }
}

// The heads are short enough for their products to be exact: C1 of A24 in
// 12 bits, of A53 in 27; c1 of the tails in 24.
TEST(ErfInvTables, ShortHeads) {
    using namespace orv::tables;
    auto significantBits = [](double v) {
        uint64_t m = bits(v) & 0x000FFFFFFFFFFFFFull;
        return m == 0 ? 1 : 53 - __builtin_ctzll(m);
    };
    for (const auto* t : {kErfInvRows24, kCdfNormInvRows24})
        for (int r = 0; r < 192; ++r) EXPECT_LE(significantBits(t[r][7]), 12) << "A24 row " << r;
    for (const auto* t : {kErfInvRows53, kCdfNormInvRows53})
        for (int r = 0; r < 212; ++r) EXPECT_LE(significantBits(t[r][16]), 27) << "A53 row " << r;
    for (const auto* t : {kErfcInvTailPoly, kCdfNormInvTailPoly})
        for (int r = 0; r < 28; ++r) EXPECT_LE(significantBits(t[r][14]), 24) << "tail row " << r;
}

template <class T, size_t R, size_t W>
void expectNegated(const T (&a)[R][W], const T (&b)[R][W], const char* name) {
    for (size_t r = 0; r < R; ++r)
        for (size_t k = 0; k < W; ++k) ASSERT_SAME_BITS(b[r][k], -a[r][k]) << name << " row " << r << " slot " << k;
}
TEST(ErfInvTables, ErfcInvRowsAreErfInvRowsNegated) {
    using namespace orv::tables;
    expectNegated(kErfInvRows11, kErfcInvRows11, "A11");
    expectNegated(kErfInvRows21, kErfcInvRows21, "A21");
    expectNegated(kErfInvRows24, kErfcInvRows24, "A24");
    expectNegated(kErfInvRows26, kErfcInvRows26, "A26");
    expectNegated(kErfInvRows50, kErfcInvRows50, "A50");
    expectNegated(kErfInvRows53, kErfcInvRows53, "A53");
}

// ---- Accuracy spot checks in x87 extended precision ---------------------------
// The accuracy harness measures against MPFR; these checks pin the places
// the design makes special (poles, band edges, the border to the tails)
// with erfl/erfcl: y is accepted when erf or erfc of it, in extended
// precision, comes back to the argument within the tier's bound carried
// through the derivative.

// ulps of y the result may be off, from the residual of erfc at y.
template <class T>
double ulpsByErfc(T y, long double w, bool upper) {
    // erfc(y) = w (upper: erfc(y) = 2 - w, y < 0): dy = dw / erfc'(y).
    long double yl = y;
    long double residual = upper ? (2.0L - erfcl(yl)) - w : erfcl(yl) - w;
    long double slope = 1.1283791670955125739L * expl(-yl * yl);
    long double dy = residual / slope;
    int e = std::ilogb(std::fabs(yl) > 0 ? std::fabs(yl) : 1.0L);
    e = std::max(e, std::numeric_limits<T>::min_exponent - 1);
    return double(std::fabs(dy) / std::ldexp(1.0L, e - std::numeric_limits<T>::digits + 1));
}
template <class T>
double ulpsByErf(T y, long double x) {
    long double yl = y;
    long double slope = 1.1283791670955125739L * expl(-yl * yl);
    long double dy = (erfl(yl) - x) / slope;
    int e = std::ilogb(std::fabs(yl) > 0 ? std::fabs(yl) : 1.0L);
    e = std::max(e, std::numeric_limits<T>::min_exponent - 1);
    return double(std::fabs(dy) / std::ldexp(1.0L, e - std::numeric_limits<T>::digits + 1));
}

// The lower edges of the bands of w (B per binade, down to 2^e0), and the
// value below each.
template <class T>
std::vector<T> bandEdgesOfW(int perBinade, int e0) {
    std::vector<T> out;
    for (int e = -1; e >= e0; --e)
        for (int b = 0; b < perBinade; ++b) {
            T edge = T(std::ldexp(1.0 + double(b) / perBinade, e));
            out.push_back(edge);
            out.push_back(std::nextafter(edge, T(0)));
        }
    return out;
}

TEST(ErfInv, BandEdgesNearThePoleAndTinyArguments) {
    const int bands32[] = {16, 8, 8}, bands64[] = {16, 4, 4};
    for (int t = 0; t < 3; ++t) {
        // erfinv(1 - w) through erfc: the residual of erfc at the result.
        for (float w : bandEdgesOfW<float>(bands32[t], -24)) {
            float x = 1.0f - w;
            if (x <= 0.5f) continue;  // w inexact there; the harness covers it
            const auto& m = kErfInv32[t];
            EXPECT_LT(ulpsByErfc(one(m.fn, x), 1.0L - x, false), m.bound) << m.name << " x = " << x;
            EXPECT_SAME_BITS(one(m.fn, -x), -one(m.fn, x)) << m.name;
        }
        for (double w : bandEdgesOfW<double>(bands64[t], -53)) {
            double x = 1.0 - w;
            if (x <= 0.5) continue;
            const auto& m = kErfInv64[t];
            // Extended precision leaves 11 bits beyond double: enough for A26
            // and A50; A53 is measured by the harness against MPFR.
            if (t < 2) {
                EXPECT_LT(ulpsByErfc(one(m.fn, x), 1.0L - x, false), m.bound) << m.name << " x = " << x;
            }
            EXPECT_SAME_BITS(one(m.fn, -x), -one(m.fn, x)) << m.name;
        }
    }
    // Tiny arguments: x sqrt(pi)/2, rounded once, down to the subnormals.
    for (const auto& m : kErfInv32)
        for (float x : {0x1p-149f, 0x1p-126f, 0x1.8p-30f, std::nextafter(0x1p-24f, 0.0f)}) {
            EXPECT_SAME_BITS(one(m.fn, x), float(double(x) * 0.886226925452758013649)) << m.name << " " << x;
            EXPECT_SAME_BITS(one(m.fn, -x), -one(m.fn, x)) << m.name;
        }
    for (const auto& m : kErfInv64) {
        EXPECT_SAME_BITS(one(m.fn, 0x1p-1074), 0x1p-1074) << m.name;  // 0.886 ulp rounds to 1 ulp
        EXPECT_SAME_BITS(one(m.fn, 0x1p-1073), 0x1p-1074 * 2) << m.name;   // 1.77 ulp rounds to 2
        EXPECT_SAME_BITS(one(m.fn, 0x1p-1072), 0x1p-1074 * 4) << m.name;   // 3.54 -> 4
        EXPECT_SAME_BITS(one(m.fn, 0x1p-1070), 0x1p-1074 * 14) << m.name;  // 14.18 -> 14
        for (double x : {0x1.234567p-1060, 0x1.fffffffffffffp-1023, 0x1p-1022, 0x1.5p-700,
                         std::nextafter(0x1p-53, 0.0)}) {
            long double exact = (long double)x * 0.886226925452758013649L;
            double y = one(m.fn, x);
            EXPECT_LE(std::fabs((long double)y - exact), (long double)std::nextafter(y, 1.0) - y) << m.name << " " << x;
            EXPECT_SAME_BITS(one(m.fn, -x), -y) << m.name;
        }
    }
}

TEST(ErfcInv, TableTailBorderAndSmallestSubnormal) {
    for (const auto& m : kErfcInv32) {
        float border = 0x1p-24f, below = std::nextafter(border, 0.0f);
        EXPECT_LT(ulpsByErfc(one(m.fn, border), border, false), m.bound) << m.name;
        EXPECT_LT(ulpsByErfc(one(m.fn, below), below, false), 1.0) << m.name;  // the tail: double, rounded
        EXPECT_GE(one(m.fn, below), one(m.fn, border)) << m.name;
        for (float x : {0x1p-149f, 0x1p-126f, 0x1.8p-100f, 0x1p-60f, 0x1.fffffep-25f})
            EXPECT_LT(ulpsByErfc(one(m.fn, x), x, false), 1.0) << m.name << " " << x;
    }
    for (const auto& m : kErfcInv64) {
        double border = 0x1p-53, below = std::nextafter(border, 0.0);
        double yb = one(m.fn, border), yt = one(m.fn, below);
        EXPECT_GE(yt, yb) << m.name;
        EXPECT_LT(yt - yb, yb * std::ldexp(2.0, -bitsOf(m.name))) << m.name;
        // The smallest subnormal: erfcinv is about 27.2 (26.5 at the
        // smallest normal), through the subnormal branch of the tail.
        double ys = one(m.fn, 0x1p-1074);
        EXPECT_GT(ys, 27.2);
        EXPECT_LT(ys, 27.3);
        for (double x : {0x1p-1074, 0x1.8p-1070, 0x1p-1040, 0x1.fffffffffffffp-1023, 0x1p-1022, 0x1p-700, 0x1p-100,
                         below})
            EXPECT_LT(ulpsByErfc(one(m.fn, x), x, false), 2e-3 * 2048) << m.name << " " << x;
    }
}

TEST(CdfNormInv, TableTailBorderAndSmallestSubnormal) {
    // Phi^-1(p) = -sqrt(2) erfcinv(2p).
    for (const auto& m : kCdfInv32)
        for (float p : {0x1p-149f, 0x1p-126f, 0x1p-60f, std::nextafter(0x1p-25f, 0.0f), 0x1p-25f}) {
            float y = one(m.fn, p);
            EXPECT_LT(y, 0.0f);
            EXPECT_LT(ulpsByErfc(float(-y / 1.41421356237309504880L), 2.0L * p, false), m.bound + 1.0) << m.name << " " << p;
        }
    for (const auto& m : kCdfInv64) {
        double border = 0x1p-54, below = std::nextafter(border, 0.0);
        double yb = one(m.fn, border), yt = one(m.fn, below);
        EXPECT_LE(yt, yb) << m.name;
        EXPECT_LT(yb - yt, -yb * std::ldexp(2.0, -bitsOf(m.name))) << m.name;
        double ys = one(m.fn, 0x1p-1074);
        EXPECT_LT(ys, -38.4);
        EXPECT_GT(ys, -38.5);
    }
}

// With denormals-are-zero set by the caller (these members keep the
// caller's modes), the tails read a subnormal argument as 0: the result
// is whatever that gives, but the tail's row stays inside its table.
TEST(ErfcInv, TailsUnderDenormalsAreZero) {
    FpEnvScope daz(kMxcsrDefault | kMxcsrDaz | kMxcsrFtz);
    for (const auto& m : kErfcInv32) one(m.fn, 0x1p-149f);
    for (const auto& m : kErfcInv64) one(m.fn, 0x1p-1074);
    for (const auto& m : kCdfInv32) one(m.fn, 0x1p-149f);
    for (const auto& m : kCdfInv64) one(m.fn, 0x1p-1074);
    SUCCEED();
}

// ---- Special values inside blocks ---------------------------------------------

struct Special {
    double x;
    enum Kind { Value, PlusInf, MinusInf, DefaultNaN, QuietNaN, PlusZero, MinusZero } kind;
    OrvStatus status;
};

template <class T>
void expectKind(T y, T x, Special::Kind kind, const char* name) {
    switch (kind) {
        case Special::PlusInf: EXPECT_EQ(y, T(INFINITY)) << name << " " << x; break;
        case Special::MinusInf: EXPECT_EQ(y, -T(INFINITY)) << name << " " << x; break;
        case Special::DefaultNaN:
            if constexpr (sizeof(T) == 4)
                EXPECT_EQ(bits(y), 0xFFC00000u) << name << " " << x;
            else
                EXPECT_EQ(bits(y), 0xFFF8000000000000ull) << name << " " << x;
            break;
        case Special::QuietNaN: EXPECT_SAME_BITS(y, x * x) << name; break;
        case Special::PlusZero: EXPECT_SAME_BITS(y, T(0)) << name << " " << x; break;
        case Special::MinusZero: EXPECT_SAME_BITS(y, -T(0)) << name << " " << x; break;
        case Special::Value: EXPECT_TRUE(std::isfinite(y)) << name << " " << x; break;
    }
}

// Each special value alone, and inside a block of ordinary values at every
// position and in the tail: the result, the status, the flags, and the
// neighbours' bits as they come alone.
template <class T>
void expectSpecialsInBlocks(const Member<T>& m, const std::vector<Special>& specials, T ordinaryLo, T ordinaryHi) {
    std::mt19937 gen(7);
    std::uniform_real_distribution<T> ordinary(ordinaryLo, ordinaryHi);
    for (const Special& sp : specials) {
        T x = T(sp.x);
        for (int len : {1, 5, 16, 21, 35})
            for (int pos = 0; pos < len; pos += 3) {
                std::vector<T> src(len), dst(len);
                for (T& v : src) v = ordinary(gen);
                src[pos] = x;
                uint32_t saved = readMxcsr();
                clearFlags();
                OrvStatus s = m.fn(src.data(), dst.data(), len);
                uint32_t raised = flags();
                writeMxcsr(saved);
                EXPECT_EQ(s, sp.status) << m.name << " x = " << x << " len " << len << " at " << pos;
                if (sp.status == orvStatusSingularity) {
                    EXPECT_TRUE(raised & kMxcsrDivideByZero) << m.name;
                }
                if (sp.status == orvStatusDomain) {
                    EXPECT_TRUE(raised & kMxcsrInvalid) << m.name;
                }
                if (sp.status == orvStatusOk) {
                    EXPECT_FALSE(raised & (kMxcsrInvalid | kMxcsrDivideByZero)) << m.name << " " << x;
                }
                expectKind(dst[pos], x, sp.kind, m.name);
                for (int k = 0; k < len; ++k) {
                    if (k == pos) continue;
                    ASSERT_SAME_BITS(dst[k], one(m.fn, src[k])) << m.name << " neighbour " << k << " of " << x;
                }
            }
    }
}

const double kNaN = std::nan(""), kInf = INFINITY;

TEST(ErfInv, SpecialValuesInBlocks) {
    auto specials = [](double beyondOne, double tiny) {
        return std::vector<Special>{{1.0, Special::PlusInf, orvStatusSingularity},
                                    {-1.0, Special::MinusInf, orvStatusSingularity},
                                    {beyondOne, Special::DefaultNaN, orvStatusDomain},
                                    {-beyondOne, Special::DefaultNaN, orvStatusDomain},
                                    {2.0, Special::DefaultNaN, orvStatusDomain},
                                    {kInf, Special::DefaultNaN, orvStatusDomain},
                                    {-kInf, Special::DefaultNaN, orvStatusDomain},
                                    {kNaN, Special::QuietNaN, orvStatusOk},
                                    {0.0, Special::PlusZero, orvStatusOk},
                                    {-0.0, Special::MinusZero, orvStatusOk},
                                    {tiny, Special::Value, orvStatusOk},
                                    {-tiny, Special::Value, orvStatusOk}};
    };
    for (const auto& m : kErfInv32)
        expectSpecialsInBlocks<float>(m, specials(1.0000001192092896, 0x1p-149), -0.99f, 0.99f);
    for (const auto& m : kErfInv64)
        expectSpecialsInBlocks<double>(m, specials(1.0000000000000002, 0x1p-1074), -0.99, 0.99);
    // The last values below the poles are finite and the largest of all.
    for (const auto& m : kErfInv32) {
        float top = one(m.fn, std::nextafter(1.0f, 0.0f));
        EXPECT_GT(top, 3.83f) << m.name;  // erfinv(1 - 2^-24) = 3.8325 ...
        EXPECT_LT(top, 3.84f) << m.name;
    }
    for (const auto& m : kErfInv64) {
        double top = one(m.fn, std::nextafter(1.0, 0.0));
        EXPECT_GT(top, 5.86) << m.name;  // erfinv(1 - 2^-53) = 5.8636...
        EXPECT_LT(top, 5.87) << m.name;
    }
}

TEST(ErfcInv, SpecialValuesInBlocks) {
    auto specials = [](double tiny, double belowTwo, double aboveTwo) {
        return std::vector<Special>{{0.0, Special::PlusInf, orvStatusSingularity},
                                    {-0.0, Special::PlusInf, orvStatusSingularity},
                                    {2.0, Special::MinusInf, orvStatusSingularity},
                                    {aboveTwo, Special::DefaultNaN, orvStatusDomain},
                                    {-tiny, Special::DefaultNaN, orvStatusDomain},
                                    {-1.0, Special::DefaultNaN, orvStatusDomain},
                                    {kInf, Special::DefaultNaN, orvStatusDomain},
                                    {-kInf, Special::DefaultNaN, orvStatusDomain},
                                    {kNaN, Special::QuietNaN, orvStatusOk},
                                    {1.0, Special::PlusZero, orvStatusOk},
                                    {tiny, Special::Value, orvStatusOk},
                                    {belowTwo, Special::Value, orvStatusOk}};
    };
    for (const auto& m : kErfcInv32)
        expectSpecialsInBlocks<float>(m, specials(0x1p-149, 2.0 - 0x1p-23, 2.0 + 0x1p-22), 0.01f, 1.99f);
    for (const auto& m : kErfcInv64)
        expectSpecialsInBlocks<double>(m, specials(0x1p-1074, 2.0 - 0x1p-52, 2.0 + 0x1p-51), 0.01, 1.99);
}

TEST(CdfNormInv, SpecialValuesInBlocks) {
    auto specials = [](double tiny, double belowOne, double aboveOne) {
        return std::vector<Special>{{0.0, Special::MinusInf, orvStatusSingularity},
                                    {-0.0, Special::MinusInf, orvStatusSingularity},
                                    {1.0, Special::PlusInf, orvStatusSingularity},
                                    {aboveOne, Special::DefaultNaN, orvStatusDomain},
                                    {-tiny, Special::DefaultNaN, orvStatusDomain},
                                    {kInf, Special::DefaultNaN, orvStatusDomain},
                                    {-kInf, Special::DefaultNaN, orvStatusDomain},
                                    {kNaN, Special::QuietNaN, orvStatusOk},
                                    {0.5, Special::PlusZero, orvStatusOk},
                                    {tiny, Special::Value, orvStatusOk},
                                    {belowOne, Special::Value, orvStatusOk}};
    };
    for (const auto& m : kCdfInv32)
        expectSpecialsInBlocks<float>(m, specials(0x1p-149, 1.0 - 0x1p-24, 1.0 + 0x1p-23), 0.01f, 0.99f);
    for (const auto& m : kCdfInv64)
        expectSpecialsInBlocks<double>(m, specials(0x1p-1074, 1.0 - 0x1p-53, 1.0 + 0x1p-52), 0.01, 0.99);
    // 1/2 - d and 1/2 + d use the same row with opposite signs of s.
    for (double d : {0x1p-23, 0x1p-10, 0x1.8p-3}) {
        for (const auto& m : kCdfInv32)
            EXPECT_SAME_BITS(one(m.fn, float(0.5 - d)), -one(m.fn, float(0.5 + d))) << m.name << " " << d;
        for (const auto& m : kCdfInv64)
            EXPECT_SAME_BITS(one(m.fn, 0.5 - d), -one(m.fn, 0.5 + d)) << m.name << " " << d;
    }
}

// A singularity then a domain error gives the domain error, and the other
// way round, in one block and across the tail; NaN in between says nothing.
TEST(ErfInv, LastWarningWins) {
    auto check = [](auto fn, auto pole, auto outside, auto ordinary) {
        using T = decltype(pole);
        for (int len : {3, 8, 16, 19}) {
            std::vector<T> src(len, ordinary), dst(len);
            src[0] = pole;
            src[1] = T(kNaN);
            src[len - 1] = outside;
            EXPECT_EQ(fn(src.data(), dst.data(), len), orvStatusDomain) << len;
            std::swap(src[0], src[len - 1]);
            EXPECT_EQ(fn(src.data(), dst.data(), len), orvStatusSingularity) << len;
        }
    };
    for (const auto& m : kErfInv32) check(m.fn, 1.0f, 2.0f, 0.5f);
    for (const auto& m : kErfInv64) check(m.fn, -1.0, 2.0, 0.5);
    for (const auto& m : kErfcInv32) check(m.fn, 2.0f, -1.0f, 0.5f);
    for (const auto& m : kErfcInv64) check(m.fn, 0.0, 3.0, 0.5);
    for (const auto& m : kCdfInv32) check(m.fn, 0.0f, 1.5f, 0.25f);
    for (const auto& m : kCdfInv64) check(m.fn, 1.0, -0.5, 0.25);
}

// ---- Identities ---------------------------------------------------------------

// erfinv(erf(x)) comes back to x within the two tiers' bounds, over
// ordinary x; erfcinv(x) = erfinv(1 - x) where 1 - x is exact; and
// Phi^-1(p) = sqrt(2) erfinv(2p - 1) in the A26 tier against A53.
TEST(ErfInv, RoundTripThroughErf) {
    std::mt19937 gen(16);
    std::vector<double> x64(2000);
    for (double& v : x64) v = std::uniform_real_distribution<double>(-3.0, 3.0)(gen);
    std::vector<float> x32(x64.begin(), x64.end());
    Fn<float> erf32[] = {orvsErf_32f_A11, orvsErf_32f_A21, orvsErf_32f_A24};
    Fn<double> erf64[] = {orvsErf_64f_A26, orvsErf_64f_A50, orvsErf_64f_A53};
    const double bits32[] = {11, 21, 23}, bits64[] = {26, 50, 52};
    for (int t = 0; t < 3; ++t) {
        std::vector<float> e32(x32.size()), back32(x32.size());
        erf32[t](x32.data(), e32.data(), int32_t(x32.size()));
        kErfInv32[t].fn(e32.data(), back32.data(), int32_t(x32.size()));
        std::vector<double> e64(x64.size()), back64(x64.size());
        erf64[t](x64.data(), e64.data(), int32_t(x64.size()));
        kErfInv64[t].fn(e64.data(), back64.data(), int32_t(x64.size()));
        for (size_t i = 0; i < x64.size(); ++i) {
            // d erfinv / d y = sqrt(pi)/2 exp(x^2): the error of erf grows by it.
            double gain32 = 0.886226925 * std::exp(double(x32[i]) * x32[i]);
            double gain64 = 0.886226925 * std::exp(x64[i] * x64[i]);
            double tol32 = (std::fabs(x32[i]) + gain32) * std::ldexp(2.0, -int(bits32[t]));
            double tol64 = (std::fabs(x64[i]) + gain64) * std::ldexp(2.0, -int(bits64[t]));
            if (std::fabs(e32[i]) < 1.0f) {
                EXPECT_NEAR(back32[i], x32[i], tol32) << kErfInv32[t].name << " x = " << x32[i];
            }
            if (std::fabs(e64[i]) < 1.0) {
                EXPECT_NEAR(back64[i], x64[i], tol64) << kErfInv64[t].name << " x = " << x64[i];
            }
        }
    }
}

// Phi^-1(Phi(x)) comes back to x within the two tiers' bounds: a relative
// error e of Phi(x) moves the result by e Phi(x)/phi(x).
TEST(CdfNormInv, RoundTripThroughCdfNorm) {
    std::mt19937 gen(18);
    std::vector<double> x64(2000);
    for (double& v : x64) v = std::uniform_real_distribution<double>(-3.0, 3.0)(gen);
    std::vector<float> x32(x64.begin(), x64.end());
    Fn<float> cdf32[] = {orvsCdfNorm_32f_A11, orvsCdfNorm_32f_A21, orvsCdfNorm_32f_A24};
    Fn<double> cdf64[] = {orvsCdfNorm_64f_A26, orvsCdfNorm_64f_A50, orvsCdfNorm_64f_A53};
    const double bits32[] = {11, 21, 23}, bits64[] = {26, 50, 52};
    auto gain = [](double x) {
        const double phi = 0.398942280401432678 * std::exp(-0.5 * x * x);
        return 0.5 * std::erfc(-x * 0.707106781186547524) / phi;
    };
    for (int t = 0; t < 3; ++t) {
        std::vector<float> p32(x32.size()), back32(x32.size());
        cdf32[t](x32.data(), p32.data(), int32_t(x32.size()));
        kCdfInv32[t].fn(p32.data(), back32.data(), int32_t(x32.size()));
        std::vector<double> p64(x64.size()), back64(x64.size());
        cdf64[t](x64.data(), p64.data(), int32_t(x64.size()));
        kCdfInv64[t].fn(p64.data(), back64.data(), int32_t(x64.size()));
        for (size_t i = 0; i < x64.size(); ++i) {
            double tol32 = (std::fabs(x32[i]) + gain(x32[i])) * std::ldexp(2.0, -int(bits32[t]));
            double tol64 = (std::fabs(x64[i]) + gain(x64[i])) * std::ldexp(2.0, -int(bits64[t]));
            EXPECT_NEAR(back32[i], x32[i], tol32) << kCdfInv32[t].name << " x = " << x32[i];
            EXPECT_NEAR(back64[i], x64[i], tol64) << kCdfInv64[t].name << " x = " << x64[i];
        }
    }
}

TEST(ErfcInv, ReflectsErfInv) {
    std::mt19937 gen(17);
    for (int i = 0; i < 2000; ++i) {
        double x = std::uniform_real_distribution<double>(0.5, 1.5)(gen);
        for (int t = 0; t < 3; ++t) {
            float xf = float(x);
            float a = one(kErfcInv32[t].fn, xf), b = one(kErfInv32[t].fn, 1.0f - xf);
            double c = one(kErfcInv64[t].fn, x), d = one(kErfInv64[t].fn, 1.0 - x);
            // The same rows, negated, with s = x - 1 against 1 - x: equal
            // but for A24/A53, whose reduced arguments differ by w's tail.
            if (t < 2) {
                EXPECT_SAME_BITS(a, b) << kErfcInv32[t].name << " x = " << xf;
                EXPECT_SAME_BITS(c, d) << kErfcInv64[t].name << " x = " << x;
            } else {
                EXPECT_LE(std::fabs(a - b), 2 * (std::nextafter(std::fabs(b), 9.0f) - std::fabs(b)));
                EXPECT_LE(std::fabs(c - d), 2 * (std::nextafter(std::fabs(d), 9.0) - std::fabs(d)));
            }
        }
    }
}

}  // namespace
