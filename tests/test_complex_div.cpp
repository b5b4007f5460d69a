// Div (complex): the special values of C99 Annex G as one table for every
// member, quotients of huge and tiny operands whose intermediate terms leave
// the element type, and the cancellation in the numerator.  Expectations
// are exact values or MPC's correctly rounded results.
#include <cmath>
#include <limits>
#include <vector>

#include "measure.h"
#include "testing.h"

namespace {

using orvtest::bits;

const char* const kMembers[] = {"orvsDiv_32fc_A11", "orvsDiv_32fc_A21", "orvsDiv_32fc_A24",
                                "orvsDiv_64fc_A26", "orvsDiv_64fc_A50", "orvsDiv_64fc_A53"};

// One element through the member, at position `at` of a block of ordinary
// neighbours (at 0 with length 1: the tail).
std::vector<double> quotient(const char* member, const double (&in)[4], int at = 0, int len = 1) {
    const orvtest::ExportInfo& e = *orvtest::findExport(member);
    std::vector<orvtest::Sample> s(len, orvtest::Sample{{1.5, -0.25, 0.75, 2.0}});
    s[at] = orvtest::Sample{{in[0], in[1], in[2], in[3]}};
    std::vector<double> out = orvtest::runMember(e, s);
    return {out[2 * at], out[2 * at + 1]};
}

const double inf = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

bool same(double x, double y) {
    if (std::isnan(x) || std::isnan(y)) return std::isnan(x) && std::isnan(y);
    return bits(x) == bits(y);
}

// Annex G: a finite value over an infinity is a zero, an infinity over a
// finite value an infinity, a nonzero value over zero an infinity, with the
// signs of the plain formula applied to the recovered parts.
TEST(ComplexDiv, AnnexGSpecialValues) {
    const struct {
        double in[4];
        double re, im;
    } cases[] = {
        {{1, 1, inf, 0}, 0.0, 0.0},            // finite / infinity
        {{1, -5, inf, 0}, 0.0, -0.0},
        {{-1, 2, inf, inf}, 0.0, 0.0},
        {{3, 4, -inf, 1}, -0.0, -0.0},
        {{inf, 0, 1, 1}, inf, -inf},           // infinity / finite
        {{inf, inf, 1, 0}, inf, inf},
        {{-inf, 2, 0.5, -0.5}, -inf, -inf},
        {{1, 1, 0, 0}, inf, inf},              // division by zero
        {{1, 1, -0.0, 0}, -inf, -inf},
        {{-2, 3, 0, -0.0}, -inf, inf},
        {{1, 0, 0, 0}, inf, nan},
        {{0, 0, 0, 0}, nan, nan},
        {{nan, 1, 1, 1}, nan, nan},
        {{1, 1, nan, 0}, nan, nan},
        {{inf, inf, inf, inf}, nan, nan},
    };
    for (const char* m : kMembers)
        for (const auto& c : cases)
            for (int len : {1, 8}) {
                std::vector<double> z = quotient(m, c.in, len == 1 ? 0 : 5, len);
                EXPECT_TRUE(same(z[0], c.re) && same(z[1], c.im))
                    << m << ": (" << c.in[0] << ", " << c.in[1] << ") / (" << c.in[2] << ", " << c.in[3]
                    << ") gave (" << z[0] << ", " << z[1] << "), length " << len;
            }
}

// (1 + i)/(1 + i/2) = 1.2 + 0.4i at scales where c^2 + d^2, or the
// products of the numerator, overflow or underflow the element type, and
// with parts far apart; all but the rcpps tier round correctly here.
TEST(ComplexDiv, HugeAndTinyOperands) {
    const double cases32[][4] = {{0x1p100, 0x1p100, 0x1p100, 0x1p99},
                                 {0x1p-100, 0x1p-100, 0x1p-100, 0x1p-101},
                                 {0x1p-140, 0x1p-145, 0x1p-149, 0x1p-148},
                                 {0x1p120, 0x1p-120, 0x1p-120, 0x1p120},
                                 {3e38, -3e38, 2e-38, 1e-45}};
    const double cases64[][4] = {{0x1p1000, 0x1p1000, 0x1p1000, 0x1p999},
                                 {0x1p-1000, 0x1p-1000, 0x1p-1000, 0x1p-1001},
                                 {0x1p-1070, 0x1p-1072, 0x1p-1074, 0x1p-1073},
                                 {0x1p1000, 0x1p-1000, 0x1p-1000, 0x1p1000},
                                 {1.7e308, -1.7e308, 2e-308, 5e-324}};
    for (const char* m : kMembers) {
        const orvtest::ExportInfo& e = *orvtest::findExport(m);
        for (const auto& in : e.is64() ? cases64 : cases32)
            for (int len : {1, 8}) {
                std::vector<double> z = quotient(m, in, len == 1 ? 0 : 3, len);
                std::vector<double> want = orvtest::correctlyRounded(e, {orvtest::Sample{{in[0], in[1], in[2], in[3]}}});
                for (int k = 0; k < 2; ++k) {
                    if (e.tier == "A11" && std::isfinite(want[k]))
                        EXPECT_NEAR(z[k], want[k], std::fabs(want[k]) * 0x1p-11) << m << " " << in[0];
                    else
                        EXPECT_TRUE(same(z[k], want[k])) << m << " component " << k << " of " << in[0] << ", "
                                                         << in[1] << ", " << in[2] << ", " << in[3] << ": " << z[k]
                                                         << " for " << want[k];
                }
            }
    }
}

// A numerator whose products cancel to their last bits: the widened and
// exact tiers give the correctly rounded quotient.
TEST(ComplexDiv, CancellingNumerator) {
    const double e32 = 0x1p-12, e64 = 0x1p-52;
    const double in32[4] = {1 + e32, 1 - e32, 1 + e32, -(1 + 2 * e32)};
    const double in64[4] = {1 + e64, 1 + 2 * e64, 1 + e64, -1};
    for (const char* m : {"orvsDiv_32fc_A21", "orvsDiv_32fc_A24", "orvsDiv_64fc_A50", "orvsDiv_64fc_A53"}) {
        const orvtest::ExportInfo& e = *orvtest::findExport(m);
        const double (&in)[4] = e.is64() ? in64 : in32;
        std::vector<double> z = quotient(m, in, 2, 4);
        std::vector<double> want = orvtest::correctlyRounded(e, {orvtest::Sample{{in[0], in[1], in[2], in[3]}}});
        EXPECT_TRUE(same(z[0], want[0]) && same(z[1], want[1])) << m << ": " << z[0] << " for " << want[0];
    }
}

}  // namespace
