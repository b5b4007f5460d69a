// Inverse trigonometry: what the generic suites cannot see.
//   Atan2 and Arg: the quadrant and signed-zero table on every member, alone
//     and inside a block of ordinary values (which the screens must send to
//     the element routine); Arg equal to Atan2 of (im, re); A21's product
//     screen.
//   Asin and Acos: the edges of the domain, the default NaN and its status
//     and flag, NaN kept bit for bit, a block mixing domain errors with
//     ordinary values.
//   Atan: the infinities, and A21's block that holds one.
#include <cmath>
#include <random>
#include <vector>

#include "testing.h"

namespace {

using orvtest::bits;
using orvtest::f32;
using orvtest::f64;

// ---- Atan2 and Arg ----------------------------------------------------------

template <class T>
struct Pair2 {
    using Fn = OrvStatus (*)(const T*, const T*, T*, int32_t);
    struct Complex {
        T re, im;
    };
    using ArgFn = OrvStatus (*)(const Complex*, T*, int32_t);
    const char* tier;
    Fn atan2;
    ArgFn arg;
};
template <class T, class C>
Pair2<T> pair2(const char* tier, OrvStatus (*atan2)(const T*, const T*, T*, int32_t),
               OrvStatus (*arg)(const C*, T*, int32_t)) {
    static_assert(sizeof(C) == 2 * sizeof(T));
    return {tier, atan2, reinterpret_cast<typename Pair2<T>::ArgFn>(arg)};
}
const Pair2<float> k32[] = {pair2("A11", orvsAtan2_32f_A11, orvsArg_32fc_A11),
                            pair2("A21", orvsAtan2_32f_A21, orvsArg_32fc_A21),
                            pair2("A24", orvsAtan2_32f_A24, orvsArg_32fc_A24)};
const Pair2<double> k64[] = {pair2("A26", orvsAtan2_64f_A26, orvsArg_64fc_A26),
                             pair2("A50", orvsAtan2_64f_A50, orvsArg_64fc_A50),
                             pair2("A53", orvsAtan2_64f_A53, orvsArg_64fc_A53)};

// Runs both families of one tier on (y, x) pairs and checks that they agree
// bit for bit; returns Atan2's results.
template <class T>
std::vector<T> runBoth(const Pair2<T>& m, const std::vector<T>& y, const std::vector<T>& x) {
    const int32_t n = int32_t(y.size());
    std::vector<typename Pair2<T>::Complex> z(n);
    for (int32_t i = 0; i < n; ++i) z[i] = {x[i], y[i]};
    std::vector<T> a(n), b(n);
    EXPECT_EQ(m.atan2(y.data(), x.data(), a.data(), n), orvStatusOk) << m.tier;
    EXPECT_EQ(m.arg(z.data(), b.data(), n), orvStatusOk) << m.tier;
    for (int32_t i = 0; i < n; ++i) EXPECT_EQ(bits(a[i]), bits(b[i])) << m.tier << " Arg differs from Atan2 at " << i;
    return a;
}

// The classes of the quadrant table, with a value of each for T.
template <class T>
std::vector<T> classValues() {
    const T tiny = sizeof(T) == 4 ? T(0x1p-140) : T(0x1p-1060);
    const T huge = sizeof(T) == 4 ? T(0x1p126) : T(0x1p1020);
    const T inf = INFINITY;
    return {T(0), T(-0.0), tiny, -tiny, T(1.5), T(-1.5), huge, -huge, inf, -inf, T(NAN)};
}

// What C99 atan2 gives: exact where a zero, an infinity or a NaN is
// involved (the sign of a zero included); with a tiny or a huge operand
// within one ulp of the double reference (the element routine is within a
// few millionths of half an ulp there).
template <class T>
void expectAtan2(T got, T y, T x, const char* tier) {
    const double want = std::atan2(double(y), double(x));
    SCOPED_TRACE(testing::Message() << tier << " y=" << y << " x=" << x << " got " << got);
    if (std::isnan(y) || std::isnan(x)) {
        EXPECT_TRUE(std::isnan(got));
        return;
    }
    const bool special = y == 0 || x == 0 || std::isinf(y) || std::isinf(x);
    if (special) {
        EXPECT_EQ(bits(got), bits(T(want)));
        return;
    }
    EXPECT_EQ(std::signbit(got), std::signbit(want));
    const T w = T(want);
    if (std::fabs(y) == T(1.5) && std::fabs(x) == T(1.5)) {
        // Two ordinary operands alone take the block kernel: the quadrant
        // must be right, the accuracy is the tier's.
        EXPECT_NEAR(double(got), want, 0x1p-10 * std::fabs(want));
        return;
    }
    EXPECT_LE(std::fabs(double(got) - double(w)), double(std::nextafter(std::fabs(w), T(INFINITY)) - std::fabs(w)));
}

template <class T, size_t n>
void quadrantTable(const Pair2<T> (&members)[n]) {
    const std::vector<T> v = classValues<T>();
    for (const auto& m : members)
        for (T y : v)
            for (T x : v) {
                // Alone (the tail) ...
                std::vector<T> alone = runBoth(m, {y}, {x});
                expectAtan2(alone[0], y, x, m.tier);
                // ... and at two places in 40 ordinary pairs, which without it
                // would pass every screen: the same bits.
                std::vector<T> ys(40, T(0.75)), xs(40, T(-1.25));
                for (int i = 0; i < 40; ++i) ys[i] = T(0.5 + 0.03125 * i), xs[i] = T(1.75 - 0.0625 * i);
                for (int p : {3, 21}) {
                    std::vector<T> yy = ys, xx = xs;
                    yy[p] = y;
                    xx[p] = x;
                    std::vector<T> r = runBoth(m, yy, xx);
                    EXPECT_EQ(bits(r[p]), bits(alone[0])) << m.tier << " y=" << y << " x=" << x << " at " << p;
                }
            }
}

TEST(Atan2, QuadrantAndSignedZeroTable32) { quadrantTable(k32); }
TEST(Atan2, QuadrantAndSignedZeroTable64) { quadrantTable(k64); }

// Arg of re + i im is Atan2(im, re): a swap in either family shows on
// pairs that are not symmetric.
template <class T, size_t n>
void argIsAtan2(const Pair2<T> (&members)[n]) {
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> u(-3.0, 3.0);
    std::vector<T> y(53), x(53);
    for (int i = 0; i < 53; ++i) y[i] = T(u(rng)), x[i] = T(u(rng));
    x[7] = 0;  // a rejected block on the way
    for (const auto& m : members) {
        std::vector<T> r = runBoth(m, y, x);
        std::vector<T> swapped = runBoth(m, x, y);
        int different = 0;
        for (int i = 0; i < 53; ++i) different += bits(r[i]) != bits(swapped[i]);
        EXPECT_GT(different, 40) << m.tier;
        EXPECT_NEAR(double(r[0]), std::atan2(double(y[0]), double(x[0])), 1e-3) << m.tier;
    }
}
TEST(Atan2, ArgIsAtan2OfImAndRe) {
    argIsAtan2(k32);
    argIsAtan2(k64);
}

// Arg's named cases.
TEST(Atan2, ArgOfSignedZerosAndNegativeReals) {
    struct C {
        double re, im;
    };
    const C in[] = {{-1.0, 0.0}, {-1.0, -0.0}, {0.0, -0.0}};
    for (const auto& m : k64) {
        double out[3];
        ASSERT_EQ(m.arg(reinterpret_cast<const Pair2<double>::Complex*>(in), out, 3), orvStatusOk);
        EXPECT_EQ(bits(out[0]), bits(M_PI)) << m.tier;
        EXPECT_EQ(bits(out[1]), bits(-M_PI)) << m.tier;
        EXPECT_EQ(bits(out[2]), bits(-0.0)) << m.tier;
    }
}

// A21 tests each half block by the product of its eight operands: ordinary
// values whose product overflows (or underflows) send the block to the
// element routine, which is told apart by its (nearly) correctly rounded
// results where the kernel's differ.
TEST(Atan2, A21ProductScreenSendsExtremeProductsToTheElementRoutine) {
    const auto& m = k32[1];
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> u(0.5f, 2.0f);
    std::vector<float> y(8), x(8);
    std::vector<float> kernel, element;
    bool differs = false;
    for (int attempt = 0; attempt < 1000 && !differs; ++attempt) {
        for (int i = 0; i < 8; ++i) y[i] = u(rng), x[i] = u(rng);
        kernel = runBoth(m, y, x);
        std::vector<float> y2 = y;
        y2[7] = NAN;  // a rejected block: element values for lanes 0..6
        element = runBoth(m, y2, x);
        for (int i = 0; i < 7; ++i) differs |= bits(kernel[i]) != bits(element[i]);
    }
    ASSERT_TRUE(differs) << "no block found where the kernel and the element routine differ";
    for (float scale : {0x1p40f, 0x1p-40f}) {
        std::vector<float> ys = y, xs = x;
        for (int i = 0; i < 8; ++i) ys[i] *= scale, xs[i] *= scale;  // same ratios
        std::vector<float> r = runBoth(m, ys, xs);
        for (int i = 0; i < 7; ++i) EXPECT_EQ(bits(r[i]), bits(element[i])) << "scale " << scale << " lane " << i;
    }
}

// ---- Asin and Acos ------------------------------------------------------------

template <class T>
struct Unary {
    const char* name;
    OrvStatus (*fn)(const T*, T*, int32_t);
};
const Unary<float> kAsin32[] = {{"asin A11", orvsAsin_32f_A11}, {"asin A21", orvsAsin_32f_A21}, {"asin A24", orvsAsin_32f_A24}};
const Unary<float> kAcos32[] = {{"acos A11", orvsAcos_32f_A11}, {"acos A21", orvsAcos_32f_A21}, {"acos A24", orvsAcos_32f_A24}};
const Unary<double> kAsin64[] = {{"asin A26", orvsAsin_64f_A26}, {"asin A50", orvsAsin_64f_A50}, {"asin A53", orvsAsin_64f_A53}};
const Unary<double> kAcos64[] = {{"acos A26", orvsAcos_64f_A26}, {"acos A50", orvsAcos_64f_A50}, {"acos A53", orvsAcos_64f_A53}};

template <class T>
T call1(const Unary<T>& m, T x, OrvStatus* status = nullptr) {
    T out;
    OrvStatus s = m.fn(&x, &out, 1);
    if (status) *status = s;
    return out;
}

// +-1 exactly (no flag), the last values inside, the first outside, the
// infinities, and NaN kept as stored (a signalling one stays signalling).
template <class T, size_t n>
void domainEdges(const Unary<T> (&asin)[n], const Unary<T> (&acos)[n], uint64_t defaultNaN, T sNaN) {
    const T one = 1, below = std::nextafter(one, T(0)), above = std::nextafter(one, T(2));
    for (size_t k = 0; k < n; ++k) {
        const auto& as = asin[k];
        const auto& ac = acos[k];
        OrvStatus s;
        orvtest::clearFlags();
        EXPECT_EQ(bits(call1(as, one, &s)), bits(T(M_PI_2))) << as.name;
        EXPECT_EQ(s, orvStatusOk);
        EXPECT_EQ(bits(call1(as, -one)), bits(T(-M_PI_2))) << as.name;
        EXPECT_EQ(bits(call1(ac, one, &s)), bits(T(0))) << ac.name;
        EXPECT_EQ(s, orvStatusOk);
        EXPECT_EQ(bits(call1(ac, -one)), bits(T(M_PI))) << ac.name;
        EXPECT_EQ(orvtest::flags() & orvtest::kMxcsrInvalid, 0u) << as.name << " raised invalid at +-1";
        // Just inside: close to the limits, no status.
        EXPECT_NEAR(call1(as, below, &s), std::asin(double(below)), 1e-3) << as.name;
        EXPECT_EQ(s, orvStatusOk);
        EXPECT_NEAR(call1(ac, -below, &s), std::acos(-double(below)), 1e-3) << ac.name;
        EXPECT_EQ(s, orvStatusOk);
        // Outside: the default NaN, the status and the invalid flag.
        for (T x : {above, -above, T(INFINITY), T(-INFINITY), T(2.5)})
            for (const auto* m : {&as, &ac}) {
                orvtest::clearFlags();
                T r = call1(*m, x, &s);
                uint64_t b = bits(r);
                EXPECT_EQ(b, defaultNaN) << m->name << " " << x;
                EXPECT_EQ(s, orvStatusDomain) << m->name << " " << x;
                EXPECT_NE(orvtest::flags() & orvtest::kMxcsrInvalid, 0u) << m->name << " " << x;
            }
        for (const auto* m : {&as, &ac}) {
            EXPECT_EQ(bits(call1(*m, sNaN, &s)), bits(sNaN)) << m->name;
            EXPECT_EQ(s, orvStatusOk);
            T negQuiet = -T(NAN);
            EXPECT_EQ(bits(call1(*m, negQuiet)), bits(negQuiet)) << m->name;
        }
    }
}
TEST(AsinAcos, DomainEdges32) { domainEdges(kAsin32, kAcos32, 0xFFC00000u, f32(0x7F800001)); }
TEST(AsinAcos, DomainEdges64) { domainEdges(kAsin64, kAcos64, 0xFFF8000000000000u, f64(0x7FF0000000000001)); }

// A block that mixes domain errors, NaN and +-1 with ordinary values: the
// ordinary elements keep the values they have alone, the status is domain.
template <class T, size_t n>
void mixedBlock(const Unary<T> (&members)[n], uint64_t defaultNaN) {
    std::vector<T> x = {T(0.25), T(3.0), T(-0.6), T(1), T(NAN), T(0.97), T(-1.5), T(-0.1),
                        T(0.5), T(-1), T(0.8), T(INFINITY), T(-0.3), T(0), T(-0.0), T(0.7), T(0.999)};
    for (const auto& m : members) {
        std::vector<T> r(x.size());
        EXPECT_EQ(m.fn(x.data(), r.data(), int32_t(x.size())), orvStatusDomain) << m.name;
        for (size_t i = 0; i < x.size(); ++i) {
            OrvStatus s;
            T alone = call1(m, x[i], &s);
            EXPECT_EQ(bits(r[i]), bits(alone)) << m.name << " at " << i;
            const bool domain = std::fabs(x[i]) > 1;
            EXPECT_EQ(s, domain ? orvStatusDomain : orvStatusOk) << m.name << " at " << i;
            if (domain) {
                EXPECT_EQ(uint64_t(bits(r[i])), defaultNaN);
            }
        }
    }
}
TEST(AsinAcos, MixedBlock32) {
    mixedBlock(kAsin32, 0xFFC00000u);
    mixedBlock(kAcos32, 0xFFC00000u);
}
TEST(AsinAcos, MixedBlock64) {
    mixedBlock(kAsin64, 0xFFF8000000000000u);
    mixedBlock(kAcos64, 0xFFF8000000000000u);
}

// Zeros and denormals: Asin returns x, Acos pi/2.  The two branches meet
// at 0.5 to the tier's accuracy.
TEST(AsinAcos, ZerosDenormalsAndTheBranchPoint) {
    for (const auto& m : kAsin32)
        for (float x : {0.0f, -0.0f, 0x1p-140f, -0x1p-130f}) EXPECT_EQ(bits(call1(m, x)), bits(x)) << m.name;
    for (const auto& m : kAsin64)
        for (double x : {0.0, -0.0, 0x1p-1070, -0x1p-1030}) EXPECT_EQ(bits(call1(m, x)), bits(x)) << m.name;
    for (const auto& m : kAcos32) EXPECT_EQ(call1(m, 0x1p-140f), float(M_PI_2)) << m.name;
    for (const auto& m : kAcos64) EXPECT_EQ(call1(m, -0.0), M_PI_2) << m.name;
    for (const auto& m : kAsin32) {
        float h = 0.5f, lo = std::nextafter(h, 0.0f);
        EXPECT_NEAR(call1(m, lo), call1(m, h), 4e-4 * 0.53) << m.name;
    }
}

// ---- Atan -----------------------------------------------------------------------

TEST(Atan, InfinitiesAndA21BlocksHoldingOne) {
    const Unary<float> a32[] = {{"A11", orvsAtan_32f_A11}, {"A21", orvsAtan_32f_A21}, {"A24", orvsAtan_32f_A24}};
    const uint32_t halfPi[] = {0x3FC90FDB, 0x3FC90FDB, bits(float(f32(0x3FC80000) + f32(0x3C07ED51)))};
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(bits(call1(a32[k], float(INFINITY))), halfPi[k]) << a32[k].name;
        EXPECT_EQ(bits(call1(a32[k], -float(INFINITY))), halfPi[k] | 0x80000000u) << a32[k].name;
        float nan = call1(a32[k], -f32(0x7FC00001));
        EXPECT_TRUE(std::isnan(nan) && std::signbit(nan)) << a32[k].name;
    }
    for (auto fn : {orvsAtan_64f_A26, orvsAtan_64f_A50, orvsAtan_64f_A53}) {
        double x[2] = {-INFINITY, INFINITY}, r[2];
        ASSERT_EQ(fn(x, r, 2), orvStatusOk);
        EXPECT_EQ(bits(r[0]), 0xBFF921FB54442D18u);
        EXPECT_EQ(bits(r[1]), 0x3FF921FB54442D18u);
    }
    // A21: an infinity sends its block of eight to the element routine;
    // the others keep the values they have alone.
    std::vector<float> x = {0.3f, 1.7f, -40.0f, float(INFINITY), 0.99f, 1.0f, -1e30f, 2.5f, 0.1f};
    std::vector<float> r(x.size());
    ASSERT_EQ(orvsAtan_32f_A21(x.data(), r.data(), int32_t(x.size())), orvStatusOk);
    for (size_t i = 0; i < x.size(); ++i) EXPECT_EQ(bits(r[i]), bits(call1(a32[1], x[i]))) << i;
    EXPECT_EQ(bits(r[3]), 0x3FC90FDBu);
}

// The 64f interval choice is on the high word: 0.4375 with a non-zero low
// word stays in the lowest interval, and its neighbours on both sides give
// results within the tier.
TEST(Atan, IntervalLimitsOnTheHighWord) {
    for (auto fn : {orvsAtan_64f_A26, orvsAtan_64f_A53})
        for (uint64_t b : {0x3FDC000000000000u, 0x3FDC000000000001u, 0x3FDBFFFFFFFFFFFFu, 0x3FE6000000000001u,
                           0x3FF3000000000001u, 0x4003800000000001u}) {
            double x = f64(b), r;
            ASSERT_EQ(fn(&x, &r, 1), orvStatusOk);
            EXPECT_NEAR(r, std::atan(x), 2e-8 * std::atan(x)) << std::hexfloat << x;
        }
}

}  // namespace
