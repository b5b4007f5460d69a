// Hyperbolic functions, real members: what the generic suites cannot see.
// Sinh and Cosh: the special values of each tier, the overflow limits with
// their neighbours and the statuses, the symmetries bit for bit (one
// reduction on |x|, the sign ORed on), and the change of scale at the top
// of the range.  Tanh: the telling rows of its tables, saturation, oddness
// bit for bit, and the masked form of a block holding an infinity or a NaN.
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tables/tanh_tables.h"
#include "testing.h"

using namespace orvtest;

namespace {

template <class T>
using Fn = OrvStatus (*)(const T*, T*, int32_t);

template <class T>
struct Member {
    const char* name;
    Fn<T> fn;
};
const Member<float> kCosh32[] = {{"Cosh A11", orvsCosh_32f_A11}, {"Cosh A21", orvsCosh_32f_A21}, {"Cosh A24", orvsCosh_32f_A24}};
const Member<float> kSinh32[] = {{"Sinh A11", orvsSinh_32f_A11}, {"Sinh A21", orvsSinh_32f_A21}, {"Sinh A24", orvsSinh_32f_A24}};
const Member<double> kCosh64[] = {{"Cosh A26", orvsCosh_64f_A26}, {"Cosh A50", orvsCosh_64f_A50}, {"Cosh A53", orvsCosh_64f_A53}};
const Member<double> kSinh64[] = {{"Sinh A26", orvsSinh_64f_A26}, {"Sinh A50", orvsSinh_64f_A50}, {"Sinh A53", orvsSinh_64f_A53}};

template <class T>
std::vector<T> run(Fn<T> fn, const std::vector<T>& x, OrvStatus* status = nullptr) {
    std::vector<T> y(x.size());
    OrvStatus s = fn(x.data(), y.data(), int32_t(x.size()));
    if (status) *status = s;
    return y;
}
template <class T>
T one(Fn<T> fn, T x, OrvStatus* status = nullptr) {
    return run(fn, std::vector<T>{x}, status)[0];
}

// One input and the result and status it must give, as bit patterns.
template <class T, class U>
struct Case {
    Fn<T> fn;
    U x, y;
    OrvStatus status;
};
template <class T, class U>
void expectCases(std::initializer_list<Case<T, U>> cases) {
    for (const auto& c : cases) {
        OrvStatus s;
        EXPECT_EQ(bits(one(c.fn, std::bit_cast<T>(c.x), &s)), c.y) << std::hex << c.x;
        EXPECT_EQ(s, c.status) << std::hex << c.x;
    }
}
constexpr OrvStatus kOk = orvStatusOk, kOver = orvStatusOverflow;

}  // namespace

// Zeros and denormals: cosh gives exactly 1 and sinh gives x, with no
// status; +-inf give +inf (cosh) and x (sinh).
template <class T, size_t K>
void checkZerosAndInfinities(const Member<T> (&cosh)[K], const Member<T> (&sinh)[K], T denormal) {
    const T inf = std::numeric_limits<T>::infinity();
    const std::vector<T> x = {T(0), -T(0), denormal, -denormal, inf, -inf};
    for (size_t m = 0; m < K; ++m) {
        OrvStatus s;
        std::vector<T> c = run(cosh[m].fn, x, &s);
        EXPECT_EQ(s, kOk) << cosh[m].name;
        for (int i = 0; i < 4; ++i) EXPECT_SAME_BITS(c[i], T(1)) << cosh[m].name << " " << i;
        EXPECT_SAME_BITS(c[4], inf) << cosh[m].name;
        EXPECT_SAME_BITS(c[5], inf) << cosh[m].name;
        std::vector<T> y = run(sinh[m].fn, x, &s);
        EXPECT_EQ(s, kOk) << sinh[m].name;
        for (int i = 0; i < 6; ++i) EXPECT_SAME_BITS(y[i], x[i]) << sinh[m].name << " " << i;
    }
}
TEST(SinhCoshSpecialValues, ZerosDenormalsAndInfinities) {
    checkZerosAndInfinities(kCosh32, kSinh32, f32(0x007FFFFF));
    checkZerosAndInfinities(kCosh64, kSinh64, f64(1));
}

// NaNs: A53 gives all 64 bits set; Sinh A26/A50 the input bit for bit (a
// signalling NaN too); the others quiet it, Sinh keeping its sign.
TEST(SinhCoshSpecialValues, NaNsPerTier) {
    expectCases<float, uint32_t>({{orvsCosh_32f_A11, 0x7FA00001, 0x7FE00001, kOk},
                                  {orvsCosh_32f_A24, 0xFFA00001, 0x7FE00001, kOk},
                                  {orvsSinh_32f_A21, 0xFFA00001, 0xFFE00001, kOk},
                                  {orvsSinh_32f_A24, 0x7FA00001, 0x7FE00001, kOk}});
    expectCases<double, uint64_t>({{orvsCosh_64f_A26, 0x7FF4000000000001, 0x7FFC000000000001, kOk},
                                   {orvsSinh_64f_A50, 0xFFF4000000000001, 0xFFF4000000000001, kOk},
                                   {orvsCosh_64f_A53, 0x7FF8000000000002, 0xFFFFFFFFFFFFFFFF, kOk},
                                   {orvsSinh_64f_A53, 0xFFF4000000000001, 0xFFFFFFFFFFFFFFFF, kOk}});
}

// Overflow limits with their neighbours.  64f: 1025 ln2 =
// 0x408633CE8FB9F87E overflows, the double below is finite (close to
// DBL_MAX), in every tier, and 709 gives about 4.1e307.  32f: above
// 0x42B2D4FC (89.4159851) overflows; at it A21 and A24 are finite, and A11,
// whose error carries that result past FLT_MAX, gives +inf with no status.
TEST(SinhCoshLimits, OverflowAndNeighbours) {
    for (const auto* set : {&kCosh64, &kSinh64})
        for (const auto& m : *set) {
            SCOPED_TRACE(m.name);
            OrvStatus s;
            EXPECT_SAME_BITS(one(m.fn, f64(0x408633CE8FB9F87E), &s), HUGE_VAL);
            EXPECT_EQ(s, kOver);
            double below = one(m.fn, f64(0x408633CE8FB9F87D), &s);
            EXPECT_EQ(s, kOk);
            EXPECT_TRUE(std::isfinite(below) && below > 1.79e308) << below;
            EXPECT_NEAR(one(m.fn, 709.0) / 4.109203730777486e307, 1.0, 1e-14);  // cosh 709 = sinh 709
        }
    for (const auto* set : {&kCosh32, &kSinh32})
        for (const auto& m : *set) {
            SCOPED_TRACE(m.name);
            OrvStatus s;
            EXPECT_SAME_BITS(one(m.fn, f32(0x42B2D4FD), &s), HUGE_VALF);
            EXPECT_EQ(s, kOver);
            EXPECT_SAME_BITS(one(m.fn, f32(0x7F7FFFFF), &s), HUGE_VALF);
            EXPECT_EQ(s, kOver);
            float at = one(m.fn, f32(0x42B2D4FC), &s);
            EXPECT_EQ(s, kOk);
            if (m.fn == orvsCosh_32f_A11 || m.fn == orvsSinh_32f_A11)
                EXPECT_SAME_BITS(at, HUGE_VALF);
            else
                EXPECT_TRUE(std::isfinite(at) && at > 3.4e38f) << at;
        }
    // Sinh keeps the sign of x through the overflow.
    OrvStatus s;
    EXPECT_SAME_BITS(one(orvsSinh_64f_A53, -800.0, &s), -HUGE_VAL);
    EXPECT_EQ(s, kOver);
    EXPECT_SAME_BITS(one(orvsSinh_32f_A21, -90.0f, &s), -HUGE_VALF);
    EXPECT_EQ(s, kOver);
}

// The status is the last warning written: an overflow anywhere in a call
// is returned whatever follows it, and ordinary data returns orvStatusOk.
TEST(SinhCoshLimits, StatusOfMixedArrays) {
    std::vector<double> x(11, 1.5);
    x[2] = 711.0;
    x[9] = -711.0;
    for (const auto* set : {&kCosh64, &kSinh64})
        for (const auto& m : *set) {
            OrvStatus s;
            std::vector<double> y = run(m.fn, x, &s);
            EXPECT_EQ(s, kOver) << m.name;
            EXPECT_TRUE(std::isinf(y[2]) && std::isinf(y[9]) && std::isfinite(y[10])) << m.name;
        }
    std::vector<float> xf(13, -2.0f);
    for (const auto* set : {&kCosh32, &kSinh32})
        for (const auto& m : *set) {
            OrvStatus s;
            run(m.fn, xf, &s);
            EXPECT_EQ(s, kOk) << m.name;
            xf[12] = 100.0f;
            run(m.fn, xf, &s);
            EXPECT_EQ(s, kOver) << m.name;
            xf[12] = -2.0f;
        }
}

// cosh(-x) = cosh(x) and sinh(-x) = -sinh(x), bit for bit, in blocks and in
// the tail, over the whole range up to the overflow limit: only |x| enters
// the arithmetic and the sign is ORed on at the end.
template <class T, size_t K>
void checkSymmetry(const Member<T> (&cosh)[K], const Member<T> (&sinh)[K], double top) {
    std::mt19937_64 rng(14);
    std::vector<T> x(1001), minus(x.size());
    for (size_t i = 0; i < x.size(); ++i) {
        // Magnitudes spread over the binades from 2^-30 up to the top.
        double u = std::uniform_real_distribution<double>(0, 1)(rng);
        x[i] = T(std::exp2(-30 + u * (30 + std::log2(top))));
        minus[i] = -x[i];
    }
    for (size_t m = 0; m < K; ++m) {
        std::vector<T> c = run(cosh[m].fn, x), cm = run(cosh[m].fn, minus);
        std::vector<T> s = run(sinh[m].fn, x), sm = run(sinh[m].fn, minus);
        for (size_t i = 0; i < x.size(); ++i) {
            ASSERT_SAME_BITS(cm[i], c[i]) << cosh[m].name << " x = " << x[i];
            ASSERT_SAME_BITS(sm[i], -s[i]) << sinh[m].name << " x = " << x[i];
        }
    }
}
TEST(SinhCoshIdentities, SymmetryBitForBit) {
    checkSymmetry(kCosh32, kSinh32, 89.41);
    checkSymmetry(kCosh64, kSinh64, 710.47);
}

// Cosh A53 changes its scaling twice near the top (e^-a dropped from
// 708.4018337446123, the unscaled row times 2^1023 times 2 from
// 710.4704448615958); across each change consecutive doubles keep the
// ratio of e^dx.
TEST(SinhCoshLimits, TopOfRangeScalesJoin) {
    for (uint64_t edge : {0x40862336F49C3C50ull, 0x408633C378987900ull})
        for (const auto* m : {&kCosh64[2], &kSinh64[2], &kCosh64[0], &kSinh64[0]}) {
            std::vector<double> x;
            for (int d = -3; d <= 3; ++d) x.push_back(f64(edge + d));
            std::vector<double> y = run(m->fn, x);
            for (size_t i = 1; i < x.size(); ++i)
                EXPECT_NEAR(y[i] / y[i - 1], std::exp(x[i] - x[i - 1]), 1e-15) << m->name << " " << i;
        }
}

// ---- Tanh -------------------------------------------------------------------

namespace {
const Member<float> kTanh32[] = {{"Tanh A11", orvsTanh_32f_A11}, {"Tanh A21", orvsTanh_32f_A21}, {"Tanh A24", orvsTanh_32f_A24}};
const Member<double> kTanh64[] = {{"Tanh A26", orvsTanh_64f_A26}, {"Tanh A50", orvsTanh_64f_A50}, {"Tanh A53", orvsTanh_64f_A53}};
}  // namespace

// The rows that tell whether a table is laid out and fitted on the right
// intervals.  Row 0 has c0 = 0 and c1 close to 1 (exactly 1 in the centred
// tiers); the last row is the constant 1.  The centred tiers' c0 is tanh of
// the centre (in A53 as a head and a tail), and A50's row 1 is centred on 0.140625 with c0 and c1 of
// these bits.  A21's row 1, [0.03125, 0.033203125), is a cubic best fit: it
// agrees with the published fit of that interval to far inside the tier.
TEST(TanhTables, TellingRows) {
    using namespace orv::tables;
    EXPECT_EQ(bits(kTanhA11[0][0]), 0u);
    EXPECT_NEAR(kTanhA11[0][1], f64(0x3FEFFEAA0FCD8264), 1e-6);
    EXPECT_NEAR(kTanhA21[0][1], f64(0x3FF00000022C70EB), 1e-8);
    EXPECT_NEAR(kTanhA24[0][1], f64(0x3FF000000006A31D), 1e-10);
    EXPECT_SAME_BITS(kTanhA50[0][1], 1.0);
    EXPECT_SAME_BITS(kTanhA53[0][2], 1.0);
    EXPECT_SAME_BITS(kTanhA53[0][1], 0.0);
    auto lastIsOne = [](const auto& table, int first) {
        const auto& row = table[std::size(table) - 1];
        EXPECT_SAME_BITS(row[first], 1.0);
        for (int k = first + 1; k < first + 8 && k < int(std::size(row)); ++k) EXPECT_SAME_BITS(row[k], 0.0) << k;
    };
    EXPECT_EQ(std::size(kTanhA11), 134u);
    EXPECT_EQ(std::size(kTanhA24), 27u);
    EXPECT_EQ(std::size(kTanhA50), 31u);
    EXPECT_EQ(std::size(kTanhA53), 60u);
    lastIsOne(kTanhA11, 0);
    lastIsOne(kTanhA21, 0);
    lastIsOne(kTanhA24, 0);
    lastIsOne(kTanhA50, 0);
    lastIsOne(kTanhA53, 1);
    EXPECT_EQ(bits(kTanhA50[1][0]), 0x3FC1E1DD055CD972u);
    EXPECT_EQ(bits(kTanhA50[1][1]), 0x3FEF601CAF83B5D3u);
    EXPECT_SAME_BITS(kTanhA50[1][14], 0.140625);
    EXPECT_SAME_BITS(kTanhA50[1][15], 1.0);
    for (size_t i = 1; i + 1 < std::size(kTanhA53); ++i) {
        // head + tail carries tanh o beyond double precision (checked in
        // x87 extended, good to about 2^-62), the tail below half an ulp.
        double head = kTanhA53[i][1], tail = kTanhA53[i][0];
        long double t = tanhl(-(long double)kTanhA53[i][12]);
        EXPECT_LE(fabsl((long double)head + tail - t), 0x1p-60L * t) << i;
        EXPECT_LE(std::fabs(tail), (std::nextafter(head, 2.0) - head) / 2) << i;
        EXPECT_NE(tail, 0.0) << i;
    }
    const double published[4] = {f64(0xBE53D60CE3E4C297), f64(0x3FF000024177CF5C), f64(0xBF1758BC94A51A25),
                                 f64(0xBFD53EAE67E0D4F0)};
    for (double a = 0.03125; a < 0.033203125; a += 1.0 / 8192) {
        double ours = ((kTanhA21[1][3] * a + kTanhA21[1][2]) * a + kTanhA21[1][1]) * a + kTanhA21[1][0];
        double theirs = ((published[3] * a + published[2]) * a + published[1]) * a + published[0];
        EXPECT_NEAR(ours / theirs, 1.0, 1e-8) << a;
    }
}

// Saturation: from the top of the range (10 for 32f, 20 for 64f) on, and
// for the infinities, exactly 1 with the sign of x; 10.5 and 20 are in it.
// Zeros and denormals give x; oddness holds bit for bit.  Never a status.
TEST(TanhValues, SaturationZerosAndOddness) {
    const std::vector<float> xf = {10.5f, -10.0f, 1e30f, HUGE_VALF, -HUGE_VALF, 0.0f, -0.0f, f32(0x80000001)};
    const std::vector<float> yf = {1.0f, -1.0f, 1.0f, 1.0f, -1.0f, 0.0f, -0.0f, f32(0x80000001)};
    for (const auto& m : kTanh32) {
        OrvStatus s;
        std::vector<float> y = run(m.fn, xf, &s);
        EXPECT_EQ(s, kOk);
        for (size_t i = 0; i < xf.size(); ++i) EXPECT_SAME_BITS(y[i], yf[i]) << m.name << " " << i;
    }
    const std::vector<double> xd = {20.0, -25.0, 1e300, HUGE_VAL, -HUGE_VAL, 0.0, -0.0, f64(0x8000000000000001)};
    const std::vector<double> yd = {1.0, -1.0, 1.0, 1.0, -1.0, 0.0, -0.0, f64(0x8000000000000001)};
    for (const auto& m : kTanh64) {
        OrvStatus s;
        std::vector<double> y = run(m.fn, xd, &s);
        EXPECT_EQ(s, kOk);
        for (size_t i = 0; i < xd.size(); ++i) EXPECT_SAME_BITS(y[i], yd[i]) << m.name << " " << i;
    }
    std::mt19937 rng(5);
    std::vector<double> x(999), minus(x.size());
    for (size_t i = 0; i < x.size(); ++i) {
        x[i] = std::exp2(std::uniform_real_distribution<double>(-30, 4.5)(rng));
        minus[i] = -x[i];
    }
    std::vector<float> xs(x.begin(), x.end()), minusf(minus.begin(), minus.end());
    for (const auto& m : kTanh64) {
        std::vector<double> y = run(m.fn, x), ym = run(m.fn, minus);
        for (size_t i = 0; i < x.size(); ++i) ASSERT_SAME_BITS(ym[i], -y[i]) << m.name << " " << x[i];
    }
    for (const auto& m : kTanh32) {
        std::vector<float> y = run(m.fn, xs), ym = run(m.fn, minusf);
        for (size_t i = 0; i < xs.size(); ++i) ASSERT_SAME_BITS(ym[i], -y[i]) << m.name << " " << xs[i];
    }
}

// A block with an infinity or a NaN takes the masked form: its ordinary
// elements keep the bits they have in an ordinary block, the infinity gives
// +-1, a NaN comes back with its sign and payload (quieted in 32f).
TEST(TanhValues, MaskedBlockKeepsItsOrdinaryElements) {
    const std::vector<float> plain = {0.3f, -2.5f, 7.0f, 0.01f};
    for (const auto& m : kTanh32) {
        std::vector<float> ref = run(m.fn, plain);
        for (uint32_t special : {0x7F800000u, 0xFFA00001u}) {
            for (int lane = 0; lane < 4; ++lane) {
                std::vector<float> x = plain;
                x[lane] = f32(special);
                std::vector<float> y = run(m.fn, x);
                for (int i = 0; i < 4; ++i)
                    if (i != lane) {
                        EXPECT_SAME_BITS(y[i], ref[i]) << m.name << " lane " << lane;
                    }
                EXPECT_EQ(bits(y[lane]), special == 0x7F800000u ? 0x3F800000u : 0xFFE00001u) << m.name;
            }
        }
    }
    const std::vector<double> plaind = {0.3, -2.5, 7.0, 0.01};
    for (const auto& m : kTanh64) {
        std::vector<double> ref = run(m.fn, plaind);
        for (uint64_t special : {0xFFF0000000000000ull, 0x7FF4000000000001ull}) {
            for (int lane = 0; lane < 4; ++lane) {
                std::vector<double> x = plaind;
                x[lane] = f64(special);
                std::vector<double> y = run(m.fn, x);
                for (int i = 0; i < 4; ++i)
                    if (i != lane) {
                        EXPECT_SAME_BITS(y[i], ref[i]) << m.name << " lane " << lane;
                    }
                EXPECT_EQ(bits(y[lane]), special == 0xFFF0000000000000ull ? 0xBFF0000000000000ull : special) << m.name;
            }
        }
    }
}
