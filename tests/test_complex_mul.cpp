// Mul (complex) and MulByConj: the cancellations that separate the tiers,
// products whose parts overflow the element type but not the wide form,
// denormal parts in the exact tiers' element form, and which operand
// MulByConj conjugates.  Expectations are exact values or MPC's correctly
// rounded results.
#include <cmath>
#include <limits>
#include <vector>

#include "measure.h"
#include "testing.h"

namespace {

using orvtest::bits;

using Mul32 = OrvStatus (*)(const Orv32fc*, const Orv32fc*, Orv32fc*, int32_t);
using Mul64 = OrvStatus (*)(const Orv64fc*, const Orv64fc*, Orv64fc*, int32_t);

Orv32fc one(Mul32 fn, Orv32fc x, Orv32fc y) {
    Orv32fc z;
    EXPECT_EQ(fn(&x, &y, &z, 1), orvStatusOk);
    return z;
}
Orv64fc one(Mul64 fn, Orv64fc x, Orv64fc y) {
    Orv64fc z;
    EXPECT_EQ(fn(&x, &y, &z, 1), orvStatusOk);
    return z;
}

// MPC's correctly rounded result of a member on one element.
std::vector<double> correctlyRounded(const char* member, double a, double b, double c, double d) {
    orvtest::Sample s{{a, b, c, d}};
    return orvtest::correctlyRounded(*orvtest::findExport(member), {s});
}

// (1 + 2^-12)(1 + 2^-12) - (1 - 2^-12)(1 + 2^-11) = 2^-12 + 3 * 2^-24: in
// binary32 the first product rounds away its last term and A11 keeps 12
// bits of the difference; the widened tiers get it exactly.
TEST(ComplexMul, WidenedTiersSurviveTheCancellationThatA11Loses) {
    const float e = 0x1p-12f;
    const Orv32fc x{1 + e, 1 - e}, y{1 + e, 1 + 2 * e};
    const float exact = 0x1p-12f + 3 * 0x1p-24f;
    EXPECT_EQ(one(orvsMul_32fc_A21, x, y).re, exact);
    EXPECT_EQ(one(orvsMul_32fc_A24, x, y).re, exact);
    EXPECT_EQ(one(orvsMul_32fc_A11, x, y).re, 0x1p-12f + 0x1p-23f);
    // MulByConj of x and conj(y) is the same product.
    const Orv32fc yBar{y.re, -y.im};
    EXPECT_EQ(one(orvsMulByConj_32fc_A21, x, yBar).re, exact);
}

// ac and bd agree in all but the last bit: ac - bd = 2^-104 exactly, which
// the exact tiers give and A26 loses entirely.
TEST(ComplexMul, ExactTiersKeepTheLastBitOfTheProducts) {
    const double e = 0x1p-52;
    const Orv64fc x{1 + e, 1 + 2 * e}, y{1 + e, 1};
    for (Mul64 fn : {orvsMul_64fc_A50, orvsMul_64fc_A53}) {
        Orv64fc z = one(fn, x, y);
        EXPECT_EQ(z.re, 0x1p-104);
        EXPECT_EQ(z.im, correctlyRounded("orvsMul_64fc_A53", x.re, x.im, y.re, y.im)[1]);
    }
    EXPECT_EQ(one(orvsMul_64fc_A26, x, y).re, 0.0);
    for (Mul64 fn : {orvsMulByConj_64fc_A50, orvsMulByConj_64fc_A53})
        EXPECT_EQ(one(fn, x, Orv64fc{y.re, -y.im}).re, 0x1p-104);
}

// Products that overflow the element type while their difference does not:
// the plain tiers give inf - inf, the wide forms the difference.
TEST(ComplexMul, PartsThatOverflowOnlyInTheElementType) {
    const float big = 0x1p65f;
    const Orv32fc x32{big, big}, y32{big, big * (1 - 0x1p-23f)};
    for (Mul32 fn : {orvsMul_32fc_A21, orvsMul_32fc_A24}) {
        Orv32fc z = one(fn, x32, y32);
        EXPECT_EQ(z.re, 0x1p107f);
        EXPECT_EQ(z.im, std::numeric_limits<float>::infinity());
    }
    EXPECT_TRUE(std::isnan(one(orvsMul_32fc_A11, x32, y32).re));
    const double huge = 0x1p515;
    const Orv64fc x64{huge, huge}, y64{huge, huge * (1 - 0x1p-53)};
    for (Mul64 fn : {orvsMul_64fc_A50, orvsMul_64fc_A53}) {
        Orv64fc z = one(fn, x64, y64);
        EXPECT_EQ(z.re, 0x1p977);
        EXPECT_EQ(z.im, std::numeric_limits<double>::infinity());
    }
    EXPECT_TRUE(std::isnan(one(orvsMul_64fc_A26, x64, y64).re));
}

// A denormal component sends its element through the x87 form; its
// neighbours in the half keep the vector scheme, and every element is
// correctly rounded here.
TEST(ComplexMul, DenormalPartsInTheExactTiers) {
    const double d = 0x1.8p-1060, e = 0x1p-52;
    const Orv64fc x[4] = {{1 + e, 1 + 2 * e}, {d, 1 + e}, {3.0, -d}, {0.7, 0.3}};
    const Orv64fc y[4] = {{1 + e, 1}, {0x1p1000 + 0x1p948, 1 - e}, {d, 0x1p-30}, {1.1, -2.3}};
    for (const char* name : {"orvsMul_64fc_A53", "orvsMulByConj_64fc_A53"}) {
        Mul64 fn = reinterpret_cast<Mul64>(orvtest::findExport(name)->symbol());
        Orv64fc z[4];
        ASSERT_EQ(fn(x, y, z, 4), orvStatusOk);
        for (int i = 0; i < 4; ++i) {
            std::vector<double> want = correctlyRounded(name, x[i].re, x[i].im, y[i].re, y[i].im);
            EXPECT_EQ(bits(z[i].re), bits(want[0])) << name << " element " << i;
            EXPECT_EQ(bits(z[i].im), bits(want[1])) << name << " element " << i;
        }
    }
}

// MulByConj conjugates its second operand: (1 + 2i) conj(3 + 4i) = 11 + 2i
// (the first conjugated would give 11 - 2i).  And x conj(x) has an
// imaginary part of exactly zero.
TEST(ComplexMul, MulByConjConjugatesTheSecondOperand) {
    for (Mul32 fn : {orvsMulByConj_32fc_A11, orvsMulByConj_32fc_A21, orvsMulByConj_32fc_A24}) {
        Orv32fc z = one(fn, Orv32fc{1, 2}, Orv32fc{3, 4});
        EXPECT_EQ(z.re, 11.0f);
        EXPECT_EQ(z.im, 2.0f);
        Orv32fc x{0.3f, -1.7f};
        EXPECT_EQ(one(fn, x, x).im, 0.0f);
    }
    for (Mul64 fn : {orvsMulByConj_64fc_A26, orvsMulByConj_64fc_A50, orvsMulByConj_64fc_A53}) {
        Orv64fc z = one(fn, Orv64fc{1, 2}, Orv64fc{3, 4});
        EXPECT_EQ(z.re, 11.0);
        EXPECT_EQ(z.im, 2.0);
        Orv64fc x{0.3, -1.7};
        Orv64fc w = one(fn, x, x);
        EXPECT_EQ(w.im, 0.0);
        EXPECT_NEAR(w.re, 0.3 * 0.3 + 1.7 * 1.7, 1e-15);
    }
}

}  // namespace
