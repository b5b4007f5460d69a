// Exp, real members: what the generic suites cannot see.  The special
// values and the limits of each tier (overflow, subnormal results, the
// zero limits and A26's documented failure), the flags of the saturated
// results, the screens' edges in every lane, the A53 put-back against a
// read-only source, and subnormal results under the caller's flush modes.
#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "testing.h"

using namespace orvtest;

namespace {

template <class T>
using ExpFn = OrvStatus (*)(const T*, T*, int32_t);

template <class T>
struct Member {
    const char* name;
    ExpFn<T> fn;
    int n;  // block size
};
const Member<float> k32[] = {
    {"A11", orvsExp_32f_A11, 8}, {"A21", orvsExp_32f_A21, 8}, {"A24", orvsExp_32f_A24, 16}};
const Member<double> k64[] = {
    {"A26", orvsExp_64f_A26, 4}, {"A50", orvsExp_64f_A50, 4}, {"A53", orvsExp_64f_A53, 8}};

template <class T>
T expOne(ExpFn<T> fn, T x, OrvStatus* status = nullptr) {
    T y;
    OrvStatus s = fn(&x, &y, 1);
    if (status) *status = s;
    return y;
}
template <class T>
std::vector<T> expAll(ExpFn<T> fn, const std::vector<T>& x, OrvStatus* status = nullptr) {
    std::vector<T> y(x.size());
    OrvStatus s = fn(x.data(), y.data(), int32_t(x.size()));
    if (status) *status = s;
    return y;
}

}  // namespace

// Zeros and denormals of either sign give exactly 1 (denormals are not read
// as zero), the infinities +inf and +0, all with no status.
template <class T, size_t K>
void checkZerosAndInfinities(const Member<T> (&members)[K], T denormal) {
    const T inf = std::numeric_limits<T>::infinity();
    const std::vector<T> x = {T(0), -T(0), denormal, -denormal, inf, -inf};
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        OrvStatus s;
        std::vector<T> y = expAll(m.fn, x, &s);
        EXPECT_EQ(s, orvStatusOk);
        for (int i = 0; i < 4; ++i) EXPECT_SAME_BITS(y[i], T(1));
        EXPECT_SAME_BITS(y[4], inf);
        EXPECT_SAME_BITS(y[5], T(0));
    }
}
TEST(ExpSpecialValues, ZerosDenormalsAndInfinities) {
    checkZerosAndInfinities(k32, f32(0x007FFFFF));
    checkZerosAndInfinities(k64, f64(1));
}

// One input and the result and status it must give, as bit patterns.
template <class T, class U>
struct Case {
    ExpFn<T> fn;
    U x, y;
    OrvStatus status;
};
template <class T, class U>
void expectCases(std::initializer_list<Case<T, U>> cases) {
    for (const auto& c : cases) {
        OrvStatus s;
        EXPECT_EQ(bits(expOne(c.fn, std::bit_cast<T>(c.x), &s)), c.y) << std::hex << c.x;
        EXPECT_EQ(s, c.status) << std::hex << c.x;
    }
}
const auto kA11 = orvsExp_32f_A11, kA21 = orvsExp_32f_A21, kA24 = orvsExp_32f_A24;
const auto kA26 = orvsExp_64f_A26, kA50 = orvsExp_64f_A50, kA53 = orvsExp_64f_A53;
constexpr OrvStatus kOk = orvStatusOk, kOver = orvStatusOverflow, kUnder = orvStatusUnderflow;

// NaNs: A11 returns the input unchanged, also a signalling one; A21, A24,
// A26 and A50 quiet it by x + x; A53 returns all 64 bits set.
TEST(ExpSpecialValues, NaNsPerTier) {
    expectCases<float, uint32_t>({{kA11, 0x7FA00001, 0x7FA00001, kOk},
                                  {kA11, 0xFFC00002, 0xFFC00002, kOk},
                                  {kA21, 0x7FA00001, 0x7FE00001, kOk},
                                  {kA24, 0x7FA00001, 0x7FE00001, kOk},
                                  {kA24, 0xFFC00002, 0xFFC00002, kOk}});
    expectCases<double, uint64_t>({{kA26, 0x7FF4000000000001, 0x7FFC000000000001, kOk},
                                   {kA50, 0xFFF8000000000002, 0xFFF8000000000002, kOk},
                                   {kA53, 0x7FF4000000000001, 0xFFFFFFFFFFFFFFFF, kOk},
                                   {kA53, 0xFFF8000000000002, 0xFFFFFFFFFFFFFFFF, kOk}});
}

// The limits, each with its neighbour on the other side.  Overflow from
// 88.72283935546875 (0x42B17218) and 709.7827128933841; at the last double
// below, A26's one-term reduction gives r = 0 exactly and its top scaling
// 2 * 2^1023 overflows with no status.  Zero limits: A21 from ln 2^-150,
// A24 from ln 2^-149 (it flushes where e^x lies between the two, so at
// -103.5 A21 gives the smallest subnormal and A24 +0), the 64f tiers from
// ln 2^-1075; A11 saturates only beyond +-160, its wide path rounds to zero
// before.  Subnormal results carry orvStatusUnderflow.
TEST(ExpLimits, OverflowUnderflowAndZero) {
    expectCases<float, uint32_t>({{kA11, 0x42B17218, 0x7F800000, kOver},
                                  {kA21, 0x42B17218, 0x7F800000, kOver},
                                  {kA24, 0x42B17218, 0x7F800000, kOver},
                                  {kA21, 0xC2CF0000, 0x00000001, kUnder},  // -103.5
                                  {kA24, 0xC2CF0000, 0x00000000, kUnder},
                                  {kA21, 0xC2CFF1B5, 0x00000000, kUnder},
                                  {kA21, 0xC2CFF1B4, 0x00000001, kUnder},
                                  {kA24, 0xC2CE8ED1, 0x00000000, kUnder},
                                  {kA24, 0xC2CE8ED0, 0x00000001, kUnder},
                                  {kA11, 0xC2F00000, 0x00000000, kUnder},  // -120
                                  {kA11, 0xF149F2CA, 0x00000000, kUnder},  // -1e30
                                  {kA11, 0x7149F2CA, 0x7F800000, kOver}});
    expectCases<double, uint64_t>({{kA26, 0x40862E42FEFA39F0, 0x7FF0000000000000, kOver},
                                   {kA50, 0x40862E42FEFA39F0, 0x7FF0000000000000, kOver},
                                   {kA53, 0x40862E42FEFA39F0, 0x7FF0000000000000, kOver},
                                   {kA26, 0x40862E42FEFA39EF, 0x7FF0000000000000, kOk},
                                   {kA26, 0xC0874910D52D3052, 0, kUnder},
                                   {kA50, 0xC0874910D52D3052, 0, kUnder},
                                   {kA53, 0xC0874910D52D3052, 0, kUnder},
                                   {kA26, 0xC0874910D52D3051, 1, kUnder},
                                   {kA50, 0xC0874910D52D3051, 1, kUnder},
                                   {kA53, 0xC0874910D52D3051, 1, kUnder}});
}

// Near the limits the values themselves: the largest finite results, by
// the two-step scaling (n = 128 or 1024), within each tier (A50 and A53
// also at the last double below the overflow limit, where e^x rounds to
// 0x7FEFFFFFFFFFFF2A); the first subnormal result and the last normal one.
TEST(ExpLimits, ResultsNearTheLimits) {
    OrvStatus s;
    const float below32 = f32(0x42B17217), underflow32 = f32(0xC2AEAC50);
    for (const auto& m : k32) {
        const double tol = std::string(m.name) == "A11" ? 1e-3 : 3e-7;
        EXPECT_NEAR(expOne(m.fn, below32, &s) / std::exp(double(below32)), 1.0, tol) << m.name;
        EXPECT_EQ(s, orvStatusOk);
        // Subnormal results are rounded once from double: the correctly
        // rounded bits, where the tiers' bounds would allow more.
        for (float x : {underflow32, -90.5f, -95.123f, -102.9f}) {
            EXPECT_SAME_BITS(expOne(m.fn, x, &s), float(std::exp(double(x)))) << m.name << " " << x;
            EXPECT_EQ(s, orvStatusUnderflow);
        }
        EXPECT_GE(expOne(m.fn, std::nextafter(underflow32, 0.0f), &s), f32(0x00800000)) << m.name;
        EXPECT_EQ(s, orvStatusOk);
    }
    const double subnormal64 = f64(0xC086232BDD7ABCD3);
    for (const auto& m : k64) {
        const double tol = std::string(m.name) == "A26" ? 1e-7 : 1e-15;
        for (double x : {709.78, f64(0x40862E37E7D8BA72)}) {
            EXPECT_NEAR(expOne(m.fn, x, &s) / std::exp(x), 1.0, tol) << m.name << " " << x;
            EXPECT_EQ(s, orvStatusOk);
        }
        EXPECT_LT(expOne(m.fn, subnormal64, &s), 0x1p-1022) << m.name;
        EXPECT_EQ(s, orvStatusUnderflow);
        EXPECT_GE(expOne(m.fn, std::nextafter(subnormal64, 0.0), &s), 0x1p-1022) << m.name;
        EXPECT_EQ(s, orvStatusOk);
    }
    const uint64_t exact = 0x7FEFFFFFFFFFFF2A;
    for (auto fn : {kA50, kA53}) {
        const uint64_t got = bits(expOne(fn, f64(0x40862E42FEFA39EF), &s));
        EXPECT_LE(got > exact ? got - exact : exact - got, fn == kA53 ? 1u : 3u);
        EXPECT_EQ(s, orvStatusOk);
    }
}

// The 32-bit tiers make +inf and +0 by products, so the flags rise; the
// 64-bit tiers store constants.
TEST(ExpLimits, FlagsOfSaturatedResults) {
    FpEnvScope env(kMxcsrDefault);
    for (auto fn : {orvsExp_32f_A21, orvsExp_32f_A24}) {
        clearFlags();
        expOne(fn, 100.0f);
        EXPECT_TRUE(flags() & kMxcsrOverflow);
        clearFlags();
        expOne(fn, -200.0f);
        EXPECT_TRUE(flags() & kMxcsrUnderflow);
    }
    for (const auto& m : k64) {
        SCOPED_TRACE(m.name);
        clearFlags();
        expOne(m.fn, 800.0);
        expOne(m.fn, -800.0);
        EXPECT_EQ(flags() & (kMxcsrOverflow | kMxcsrUnderflow), 0u);
    }
}

// Values at the edges of the screens, at each position of a block, give the
// result and the status that they give alone, so no lane of a screen (A24
// tests lanes in pairs, with a borrow from the low lane) lets a value
// through that it must stop.
template <class T, size_t K>
void checkScreenEdges(const Member<T> (&members)[K], std::initializer_list<T> edges) {
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        for (T v : edges) {
            OrvStatus alone;
            const T expected = expOne(m.fn, v, &alone);
            for (int p = 0; p < m.n; ++p) {
                std::vector<T> x(m.n, T(0.5));
                x[p] = v;
                OrvStatus s;
                EXPECT_EQ(bits(expAll(m.fn, x, &s)[p]), bits(expected)) << v << " at " << p;
                EXPECT_EQ(s, alone) << v << " at " << p;
            }
        }
    }
}
TEST(ExpScreens, EdgesAtEveryPosition) {
    checkScreenEdges(k32, {f32(0xC2AEAC50), f32(0xC2AEAC4F), f32(0x42AEAC50), f32(0xC2AE8000), f32(0x42AE8000),
                           f32(0xC2AE7FFF)});
    checkScreenEdges(k64, {f64(0xC086232B00000000), f64(0xC086232AFFFFFFFF), f64(0x4086232B00000000),
                           f64(0xC086232BDD7ABCD3)});
}

// A53 stores half a block before the screen's verdict and puts the inputs
// back when the block is rejected.  A source that dst does not alias must
// never be written, so a read-only source with rejected blocks must not
// fault, and the results must be right.
TEST(ExpScreens, A53LeavesAReadOnlySourceAlone) {
    std::vector<double> x(21);
    for (size_t i = 0; i < x.size(); ++i) x[i] = 0.37 * double(i) - 3.0;
    x[6] = std::numeric_limits<double>::quiet_NaN();  // second half of block 0
    x[12] = 800.0;                                     // block 1
    ReadOnlyCopy<double> src(x);
    std::vector<double> y(x.size());
    EXPECT_EQ(orvsExp_64f_A53(src.data(), y.data(), int32_t(x.size())), orvStatusOverflow);
    for (size_t i = 0; i < x.size(); ++i) EXPECT_EQ(bits(y[i]), bits(expOne(orvsExp_64f_A53, x[i]))) << i;
}

// Flush-to-zero, denormals-are-zero and a directed rounding set by the
// caller change nothing on subnormal results, which the generic suites'
// inputs do not reach.
template <class T, size_t K>
void checkCallerModes(const Member<T> (&members)[K], const std::vector<T>& x, uint32_t mxcsr) {
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        std::vector<T> plain = expAll(m.fn, x), modes;
        {
            FpEnvScope env(mxcsr);
            modes = expAll(m.fn, x);
        }
        for (size_t i = 0; i < x.size(); ++i) {
            EXPECT_EQ(bits(modes[i]), bits(plain[i])) << x[i];
            EXPECT_GT(plain[i], T(0)) << x[i];
        }
    }
}
TEST(ExpModes, SubnormalResultsIgnoreCallerModes) {
    checkCallerModes(k32, {-100.0f, -90.0f, -87.5f, -103.0f, -95.0f, -88.0f, -99.0f, -89.0f, -92.0f},
                     kMxcsrDefault | kMxcsrFtz | kMxcsrDaz | kMxcsrRoundUp);
    checkCallerModes(k64, {-720.0, -709.0, -740.0, -708.5, -730.0},
                     kMxcsrDefault | kMxcsrFtz | kMxcsrDaz | kMxcsrRoundToZero);
}
