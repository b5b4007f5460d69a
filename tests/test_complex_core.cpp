// The complex core: Sqrt and Exp on complex arrays.  The generic suites
// check frames, guards, accuracy and position; here: the special values of
// the kernels bit for bit, with the IEEE flags they raise, alone and inside
// a block of ordinary values; the x87 word; the negative real axis of Sqrt;
// the edges of the block screens of Exp.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "testing.h"

namespace orvtest {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

using Unary32 = OrvStatus (*)(const Orv32fc*, Orv32fc*, int32_t);
using Unary64 = OrvStatus (*)(const Orv64fc*, Orv64fc*, int32_t);

struct Members {
    const char* family;
    Unary32 m32[3];
    Unary64 m64[3];
};
const Members kExp{"Exp",
                   {orvsExp_32fc_A11, orvsExp_32fc_A21, orvsExp_32fc_A24},
                   {orvsExp_64fc_A26, orvsExp_64fc_A50, orvsExp_64fc_A53}};
const Members kSqrt{"Sqrt",
                    {orvsSqrt_32fc_A11, orvsSqrt_32fc_A21, orvsSqrt_32fc_A24},
                    {orvsSqrt_64fc_A26, orvsSqrt_64fc_A50, orvsSqrt_64fc_A53}};

// An expected part: a value (bits compared, zero signs included), a NaN of
// any sign and payload, or a zero of either sign.
struct Part {
    enum Kind { Value, AnyNan, AnyZero } kind;
    double value;
};
Part V(double v) { return {Part::Value, v}; }
const Part kAnyNan{Part::AnyNan, 0};
const Part kAnyZero{Part::AnyZero, 0};

struct Case {
    double x, y;
    Part re, im;
    uint32_t flagsRaised;  // FE_* flags the case must raise (others may be)
};

template <class T>
bool matches(T got, Part want) {
    switch (want.kind) {
        case Part::AnyNan:
            return std::isnan(got);
        case Part::AnyZero:
            return got == 0;
        case Part::Value:
            return bits(got) == bits(T(want.value));
    }
    return false;
}

// Runs one case through a member alone (len 1, the tail or element path)
// and at position 5 of 16 ordinary elements (a rejected block), and checks
// the bits and the flags raised by the lone call.
template <class C, class F>
void checkCase(const char* name, F member, const Case& c, C ordinary) {
    using R = decltype(C::re);
    SCOPED_TRACE(std::string(name) + " at (" + std::to_string(c.x) + ", " + std::to_string(c.y) + ")");
    C z{R(c.x), R(c.y)}, out{};
    std::feclearexcept(FE_ALL_EXCEPT);
    ASSERT_EQ(member(&z, &out, 1), orvStatusOk);
    const int raised = std::fetestexcept(FE_ALL_EXCEPT);
    EXPECT_TRUE(matches(out.re, c.re)) << "re " << out.re;
    EXPECT_TRUE(matches(out.im, c.im)) << "im " << out.im;
    EXPECT_EQ(raised & int(c.flagsRaised), int(c.flagsRaised)) << "flags " << raised;

    std::vector<C> block(16, ordinary), results(16);
    block[5] = z;
    ASSERT_EQ(member(block.data(), results.data(), 16), orvStatusOk);
    EXPECT_TRUE(matches(results[5].re, c.re)) << "in a block, re " << results[5].re;
    EXPECT_TRUE(matches(results[5].im, c.im)) << "in a block, im " << results[5].im;
    C alone{};
    member(&ordinary, &alone, 1);
    EXPECT_EQ(bits(results[0].re), bits(alone.re));
    EXPECT_EQ(bits(results[15].im), bits(alone.im));
}

void checkTable(const Members& m, const std::vector<Case>& cases) {
    const char* tiers32[] = {"32fc_A11", "32fc_A21", "32fc_A24"};
    const char* tiers64[] = {"64fc_A26", "64fc_A50", "64fc_A53"};
    for (const Case& c : cases)
        for (int t = 0; t < 3; ++t) {
            checkCase((std::string(m.family) + "_" + tiers32[t]).c_str(), m.m32[t], c, Orv32fc{1.5f, -0.75f});
            checkCase((std::string(m.family) + "_" + tiers64[t]).c_str(), m.m64[t], c, Orv64fc{1.5, -0.75});
        }
}

// ---- Sqrt ---------------------------------------------------------------------

TEST(ComplexSqrt, SpecialValuesInEveryTierAloneAndInBlocks) {
    checkTable(kSqrt, {
                          {kNan, kInf, V(kInf), V(kInf), 0},
                          {-2.0, -kInf, V(kInf), V(-kInf), 0},
                          {-kInf, 2.0, V(0.0), V(kInf), 0},
                          {-kInf, -2.0, V(0.0), V(-kInf), 0},
                          {kInf, 2.0, V(kInf), V(0.0), 0},
                          {kInf, -2.0, V(kInf), V(-0.0), 0},
                          {-kInf, kNan, kAnyNan, V(kInf), 0},
                          {-kInf, -kNan, kAnyNan, V(-kInf), 0},
                          {kInf, kNan, V(kInf), kAnyNan, 0},
                          {kNan, 1.0, kAnyNan, kAnyNan, 0},
                          {1.0, kNan, kAnyNan, kAnyNan, 0},
                          {0.0, 0.0, V(0.0), V(0.0), 0},
                          {-0.0, -0.0, V(0.0), V(-0.0), 0},
                          {0.0, 8.0, V(2.0), V(2.0), 0},
                          {-0.0, -8.0, V(2.0), V(-2.0), 0},
                          {4.0, 0.0, V(2.0), V(0.0), 0},
                          {4.0, -0.0, V(2.0), V(-0.0), 0},
                          {3.0, 4.0, V(2.0), V(1.0), 0},
                          {-3.0, -4.0, V(1.0), V(-2.0), 0},
                      });
}

// The negative real axis: the root is purely imaginary, and the sign of a
// zero imaginary part picks the side of the cut; just off the axis the real
// part is |y| / (2 sqrt|x|).
TEST(ComplexSqrt, NegativeRealAxisWithSignedZeros) {
    // Roots exact in both widths.
    const double xs[] = {-0.25, -1.0, -4.0, -1e6, -0x1p-40, -0x1p100};
    std::vector<Case> cases;
    for (double x : xs) {
        cases.push_back({x, 0.0, V(0.0), V(std::sqrt(-x)), 0});
        cases.push_back({x, -0.0, V(0.0), V(-std::sqrt(-x)), 0});
    }
    checkTable(kSqrt, cases);
    // Off the axis by a tiny imaginary part, in every tier and width.
    for (int t = 0; t < 3; ++t) {
        Orv64fc z64[2] = {{-4.0, 1e-300}, {-4.0, -1e-300}}, r64[2];
        kSqrt.m64[t](z64, r64, 2);
        EXPECT_NEAR(r64[0].re / 2.5e-301, 1.0, 1e-15);
        EXPECT_EQ(r64[0].im, 2.0);
        EXPECT_NEAR(r64[1].re / 2.5e-301, 1.0, 1e-15);
        EXPECT_EQ(r64[1].im, -2.0);
        Orv32fc z32[2] = {{-4.0f, 1e-30f}, {-4.0f, -1e-30f}}, r32[2];
        kSqrt.m32[t](z32, r32, 2);
        EXPECT_NEAR(r32[0].re / 2.5e-31, 1.0, 1e-6);
        EXPECT_EQ(r32[1].im, -2.0f);
    }
}

// Parts of far apart magnitudes and near the ends of the double range take
// the scaled element path in 64fc; its result agrees with the identity
// sqrt(z)^2 = z for the larger part.
TEST(ComplexSqrt, ScaledElementsSquareBack) {
    const Orv64fc inputs[] = {{1e308, 1e308}, {-1e308, 3e-320}, {4e-320, -5e-324}, {-1.7e308, -1e-300},
                              {0x1p-1074, 0x1p-1074}, {1e-200, -1e200}};
    for (int t = 0; t < 3; ++t)
        for (const Orv64fc& z : inputs) {
            Orv64fc r;
            kSqrt.m64[t](&z, &r, 1);
            long double re = r.re, im = r.im;
            long double sre = re * re - im * im, sim = 2 * re * im;
            long double big = std::fmax(std::fabs((long double)z.re), std::fabs((long double)z.im));
            EXPECT_LE(std::fabs(sre - z.re) / big, 1e-15L) << z.re << " " << z.im;
            EXPECT_LE(std::fabs(sim - z.im) / big, 1e-15L) << z.re << " " << z.im;
            EXPECT_GE(r.re, 0.0);
        }
}

// ---- Exp ------------------------------------------------------------------------

TEST(ComplexExp, SpecialValuesInEveryTierAloneAndInBlocks) {
    checkTable(kExp, {
                         {0.0, 0.0, V(1.0), V(0.0), 0},
                         {-0.0, 0.0, V(1.0), V(0.0), 0},
                         {0.0, -0.0, V(1.0), V(-0.0), 0},
                         {-0.0, -0.0, V(1.0), V(-0.0), 0},
                         {kInf, kNan, V(kInf), kAnyNan, 0},
                         {-kInf, kNan, kAnyZero, kAnyZero, 0},
                         {-kInf, kInf, kAnyZero, V(0.0), 0},
                         {-kInf, -kInf, kAnyZero, V(-0.0), 0},
                         {kInf, kInf, V(kInf), kAnyNan, FE_INVALID},
                         {kInf, -kInf, V(kInf), kAnyNan, FE_INVALID},
                         {1.0, kInf, kAnyNan, kAnyNan, FE_INVALID},
                         {-3.0, -kInf, kAnyNan, kAnyNan, FE_INVALID},
                         {1.0, kNan, kAnyNan, kAnyNan, 0},
                         {kNan, 0.0, kAnyNan, V(0.0), 0},
                         {kNan, -0.0, kAnyNan, V(-0.0), 0},
                         {kNan, 1.0, kAnyNan, kAnyNan, 0},
                         {kNan, kInf, kAnyNan, kAnyNan, 0},
                         {kInf, 0.0, V(kInf), V(0.0), 0},
                         {kInf, -0.0, V(kInf), V(-0.0), 0},
                         {-kInf, 0.0, V(0.0), V(0.0), 0},
                         {-kInf, 1.0, V(0.0), V(0.0), 0},
                         {-kInf, 2.0, V(-0.0), V(0.0), 0},
                         {kInf, 2.0, V(-kInf), V(kInf), 0},
                         {kInf, -2.0, V(-kInf), V(-kInf), 0},
                         {3000.0, 1.0, V(kInf), V(kInf), FE_OVERFLOW},
                         {-3000.0, 1.0, V(0.0), V(0.0), 0},
                     });
}

// A part that rounds to a subnormal raises underflow, in the kernel and in
// the blocks alike; the status stays orvStatusOk.
TEST(ComplexExp, SubnormalPartsRaiseUnderflow) {
    for (int t = 0; t < 3; ++t) {
        Orv64fc z64{-740.0, 1.0}, r64;
        std::feclearexcept(FE_ALL_EXCEPT);
        EXPECT_EQ(kExp.m64[t](&z64, &r64, 1), orvStatusOk);
        EXPECT_TRUE(std::fetestexcept(FE_UNDERFLOW));
        EXPECT_TRUE(r64.re > 0 && r64.re < 0x1p-1022);
        Orv32fc z32{-100.0f, 1.0f}, r32;
        std::feclearexcept(FE_ALL_EXCEPT);
        EXPECT_EQ(kExp.m32[t](&z32, &r32, 1), orvStatusOk);
        EXPECT_TRUE(std::fetestexcept(FE_UNDERFLOW));
        EXPECT_TRUE(r32.re > 0 && r32.re < 0x1p-126f);
    }
}

// The edge of the binary32 block's screen: just above 87.3365479 the kernel
// takes the element, and its value is as good as the block's just below;
// both are held against the top tier's value.
TEST(ComplexExp, ScreenEdgeOfTheBinary32Block) {
    const float limit = f32(0x42AEAC50);
    // Below, y = 0 keeps e^x normal; above, y = 0.75 tests both parts.
    for (float x : {limit, std::nextafter(limit, 100.0f), -limit, std::nextafter(-limit, -100.0f)}) {
        const float y = x > 0 ? 0.75f : 0.0f;
        std::vector<Orv32fc> z(16, Orv32fc{x, y}), low(16), top(16);
        orvsExp_32fc_A11(z.data(), low.data(), 16);
        orvsExp_32fc_A24(z.data(), top.data(), 16);
        for (int i : {0, 15}) {
            EXPECT_NEAR(low[i].re / top[i].re, 1.0, 4 * 0x1p-23) << x;
            if (y != 0) {
                EXPECT_NEAR(low[i].im / top[i].im, 1.0, 4 * 0x1p-23) << x;
            }
        }
    }
}

// ---- Log10 ----------------------------------------------------------------------

// The special values of the logarithm, scaled by log10(e) where finite, in
// every tier of both widths: the pole, the cut's signed zeros, infinities
// and NaN.
TEST(ComplexLog10, SpecialValuesAndThePole) {
    using U32 = Unary32;
    using U64 = Unary64;
    const Members log10{"Log10",
                        {U32(orvsLog10_32fc_A11), U32(orvsLog10_32fc_A21), U32(orvsLog10_32fc_A24)},
                        {U64(orvsLog10_64fc_A26), U64(orvsLog10_64fc_A50), U64(orvsLog10_64fc_A53)}};
    const double piLog10e = 0x1.5d47c4cb2fba1p+0;  // pi log10(e), rounded to double
    checkTable(log10, {
                          {0.0, 0.0, V(-kInf), V(0.0), FE_DIVBYZERO},
                          {0.0, -0.0, V(-kInf), V(-0.0), FE_DIVBYZERO},
                          {-0.0, 0.0, V(-kInf), V(piLog10e), FE_DIVBYZERO},
                          {-0.0, -0.0, V(-kInf), V(-piLog10e), FE_DIVBYZERO},
                          {1.0, 0.0, V(0.0), V(0.0), 0},
                          {kNan, kInf, V(kInf), kAnyNan, 0},
                          {kInf, kNan, V(kInf), kAnyNan, 0},
                          {kNan, 1.0, kAnyNan, kAnyNan, 0},
                          {kInf, -0.0, V(kInf), V(-0.0), 0},
                          {10.0, 0.0, V(1.0), V(0.0), 0},
                      });
}

// On the unit circle ln|z| is tiny and comes from the exact residual
// x^2 + y^2 - 1 of the doubles, not from 0.5 ln of a rounded square: here
// the residual is worked out in binary128, where both squares are exact.
TEST(ComplexLog10, NearTheUnitCircleFromTheExactResidual) {
    const Orv64fc points[] = {{0.6, 0.8}, {0.8, -0.6}, {-0.28, 0.96}, {0.7071067811865476, 0.7071067811865476}};
    for (const Orv64fc& z : points)
        for (Unary64 f : {orvsLog10_64fc_A26, orvsLog10_64fc_A53}) {
            Orv64fc r;
            f(&z, &r, 1);
            __float128 x = z.re, y = z.im;
            double residual = double(x * x + y * y - 1);
            ASSERT_NE(residual, 0.0);
            // log10(1 + d) / 2 = d / (2 ln 10) to far below the tolerance.
            EXPECT_NEAR(r.re / (residual / (2 * 2.302585092994046)), 1.0, 1e-12) << z.re << " " << z.im;
        }
}

// ---- The x87 word -----------------------------------------------------------------

// A call made with the x87 word in 24- or 53-bit precision leaves the word
// as it was and gives the bits of a call in 64-bit precision.
template <class C, class F>
void checkX87Word(F member, const std::vector<C>& src) {
    std::vector<C> want(src.size()), got(src.size());
    {
        FpEnvScope env(kMxcsrDefault, kX87Default);
        member(src.data(), want.data(), int32_t(src.size()));
    }
    for (uint16_t word : {kX87Single, kX87Double}) {
        FpEnvScope env(kMxcsrDefault, word);
        member(src.data(), got.data(), int32_t(src.size()));
        EXPECT_EQ(readX87(), word);
        for (size_t i = 0; i < src.size(); ++i) {
            EXPECT_EQ(bits(got[i].re), bits(want[i].re)) << i;
            EXPECT_EQ(bits(got[i].im), bits(want[i].im)) << i;
        }
    }
}

std::vector<Orv64fc> mixed64() {
    std::vector<Orv64fc> v;
    for (int i = 0; i < 37; ++i) v.push_back({std::ldexp(1.0 + i / 37.0, i % 9 - 4) * (i % 3 ? 1 : -1), 0.7 * i - 11});
    v[3] = {kInf, 1.0};
    v[20] = {1e300, -1e-300};
    return v;
}
std::vector<Orv32fc> mixed32() {
    std::vector<Orv32fc> v;
    for (const Orv64fc& z : mixed64()) v.push_back({float(z.re), float(z.im)});
    v[20] = {1e30f, -1e-30f};
    return v;
}

TEST(ComplexX87Word, KeepsTheCallersWordAndItsBits) {
    for (int t = 0; t < 3; ++t) {
        checkX87Word(kExp.m32[t], mixed32());
        checkX87Word(kExp.m64[t], mixed64());
        checkX87Word(kSqrt.m32[t], mixed32());
        checkX87Word(kSqrt.m64[t], mixed64());
    }
}

}  // namespace
}  // namespace orvtest
