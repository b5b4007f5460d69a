// Exp, real members: tables, special values and limits per tier, statuses,
// the independence of a result from the element's position, the A53
// put-back, and the caller's flush modes.
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "testing.h"
#include "tables/exp2_tables.h"

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

// Ordinary arguments: inside every tier's block screen, with both ends of
// the screened range.
template <class T>
std::vector<T> ordinaryValues(int count, unsigned seed) {
    const T edge = sizeof(T) == 4 ? std::nextafter(T(87.25), T(0)) : T(708.39);
    std::mt19937 gen(seed);
    std::uniform_real_distribution<T> wide(-edge, edge), narrow(T(-1), T(1));
    std::vector<T> v;
    for (int i = 0; i < count; ++i) v.push_back(i % 3 == 0 ? narrow(gen) : wide(gen));
    v[0] = edge;
    v[1] = -edge;
    v[2] = T(0);
    return v;
}

float floatAbove(float x) { return std::nextafter(x, INFINITY); }
double doubleAbove(double x) { return std::nextafter(x, INFINITY); }

}  // namespace

TEST(ExpTables, SampleRowsAndFirstEntries) {
    using namespace orv::tables;
    EXPECT_EQ(bits(kExp2HeadTail32[1].head), 0x3F80B1EDu);
    EXPECT_EQ(bits(kExp2HeadTail32[1].tail), 0x331ED669u);
    EXPECT_EQ(bits(kExp2HeadTail64[1].head), 0x3FF02C9A3E778000u);
    EXPECT_EQ(bits(kExp2HeadTail64[1].tail), 0x3D183B9BDF2B293Eu);
    EXPECT_EQ(kExp2Fraction64[1], 0x0000163DA9FB3335u);
    EXPECT_EQ(kExp2Fraction32[1], 0x0000B1EDu);
    EXPECT_EQ(kExp2Fraction32[0], 0u);
    EXPECT_EQ(kExp2Fraction64[0], 0u);
    EXPECT_EQ(kExp2HeadTail32[0].head, 1.0f);
    EXPECT_EQ(kExp2HeadTail32[0].tail, 0.0f);
    EXPECT_EQ(kExp2HeadTail64[0].head, 1.0);
    EXPECT_EQ(kExp2HeadTail64[0].tail, 0.0);
    // The 64-bit heads are cut to 44 fraction bits and their tails are
    // never negative; the 32-bit heads are cut too.
    for (const auto& row : kExp2HeadTail64) {
        EXPECT_EQ(bits(row.head) & 0xFF, 0u);
        EXPECT_GE(row.tail, 0.0);
    }
    for (const auto& row : kExp2HeadTail32) EXPECT_GE(row.tail, 0.0f);
}

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
    checkZerosAndInfinities(k32, f32(0x00000001));
    checkZerosAndInfinities(k32, f32(0x007FFFFF));
    checkZerosAndInfinities(k64, f64(1));
    checkZerosAndInfinities(k64, f64(0x000FFFFFFFFFFFFF));
}

TEST(ExpSpecialValues, NaNsPerTier) {
    const float sNaN32 = f32(0x7FA00001), negQNaN32 = f32(0xFFC00002);
    OrvStatus s;
    EXPECT_EQ(bits(expOne(orvsExp_32f_A11, sNaN32, &s)), 0x7FA00001u);  // unchanged, still signalling
    EXPECT_EQ(s, orvStatusOk);
    EXPECT_EQ(bits(expOne(orvsExp_32f_A11, negQNaN32)), 0xFFC00002u);
    for (auto fn : {orvsExp_32f_A21, orvsExp_32f_A24}) {
        EXPECT_EQ(bits(expOne(fn, sNaN32, &s)), 0x7FE00001u);  // quieted
        EXPECT_EQ(s, orvStatusOk);
        EXPECT_EQ(bits(expOne(fn, negQNaN32)), 0xFFC00002u);
    }
    const double sNaN64 = f64(0x7FF4000000000001), negQNaN64 = f64(0xFFF8000000000002);
    for (auto fn : {orvsExp_64f_A26, orvsExp_64f_A50}) {
        EXPECT_EQ(bits(expOne(fn, sNaN64, &s)), 0x7FFC000000000001u);
        EXPECT_EQ(s, orvStatusOk);
        EXPECT_EQ(bits(expOne(fn, negQNaN64)), 0xFFF8000000000002u);
    }
    EXPECT_EQ(bits(expOne(orvsExp_64f_A53, sNaN64, &s)), 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(s, orvStatusOk);
    EXPECT_EQ(bits(expOne(orvsExp_64f_A53, negQNaN64)), 0xFFFFFFFFFFFFFFFFu);
}

// The overflow limit is the first value whose exponential rounds to +inf;
// the value just below it is the largest finite result, reached through the
// two-step scaling (n = 128 or 1024).
TEST(ExpLimits, OverflowEdge) {
    const float limit32 = f32(0x42B17218);  // 88.72283935546875
    const float below32 = f32(0x42B17217);
    const double exact32 = std::exp(double(below32));
    for (const auto& m : k32) {
        SCOPED_TRACE(m.name);
        OrvStatus s;
        EXPECT_SAME_BITS(expOne(m.fn, limit32, &s), INFINITY);
        EXPECT_EQ(s, orvStatusOverflow);
        float y = expOne(m.fn, below32, &s);
        EXPECT_EQ(s, orvStatusOk);
        EXPECT_TRUE(std::isfinite(y));
        EXPECT_NEAR(y / exact32, 1.0, std::string(m.name) == "A11" ? 1e-3 : 3e-7);
    }
    const double limit64 = f64(0x40862E42FEFA39F0);  // 709.7827128933841
    for (const auto& m : k64) {
        SCOPED_TRACE(m.name);
        OrvStatus s;
        EXPECT_SAME_BITS(expOne(m.fn, limit64, &s), double(INFINITY));
        EXPECT_EQ(s, orvStatusOverflow);
        EXPECT_SAME_BITS(expOne(m.fn, 709.79, &s), double(INFINITY));
        EXPECT_EQ(s, orvStatusOverflow);
        const double tol = std::string(m.name) == "A26" ? 1e-7 : 1e-15;
        for (double x : {709.78, f64(0x40862E37E7D8BA72), 709.7, 709.0}) {
            double y = expOne(m.fn, x, &s);
            EXPECT_EQ(s, orvStatusOk) << x;
            EXPECT_NEAR(y / std::exp(x), 1.0, tol) << x;
        }
    }
}

// At the last double below the overflow limit A26's one-term reduction
// gives r = 0 exactly, and its top scaling 2 * 2^1023 overflows with no
// status; the finer reductions of A50 and A53 give the finite result.
TEST(ExpLimits, LastDoubleBelowOverflow) {
    const double x = f64(0x40862E42FEFA39EF);
    OrvStatus s;
    EXPECT_SAME_BITS(expOne(orvsExp_64f_A26, x, &s), double(INFINITY));
    EXPECT_EQ(s, orvStatusOk);
    const uint64_t exact = 0x7FEFFFFFFFFFFF2A;  // e^x correctly rounded
    for (auto fn : {orvsExp_64f_A50, orvsExp_64f_A53}) {
        const uint64_t got = bits(expOne(fn, x, &s));
        EXPECT_LE(got > exact ? got - exact : exact - got, fn == orvsExp_64f_A53 ? 1u : 3u);
        EXPECT_EQ(s, orvStatusOk);
    }
}

TEST(ExpLimits, UnderflowAndZeroLimits) {
    const float smallest = f32(1);
    OrvStatus s;
    // A24 flushes where e^x lies between 2^-150 and 2^-149; A21 rounds.
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A24, -103.5f, &s), 0.0f);
    EXPECT_EQ(s, orvStatusUnderflow);
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A21, -103.5f, &s), smallest);
    EXPECT_EQ(s, orvStatusUnderflow);
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A24, f32(0xC2CE8ED1), &s), 0.0f);
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A24, f32(0xC2CE8ED0), &s), smallest);
    EXPECT_EQ(s, orvStatusUnderflow);
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A21, f32(0xC2CFF1B5), &s), 0.0f);
    EXPECT_EQ(s, orvStatusUnderflow);
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A21, f32(0xC2CFF1B4), &s), smallest);
    // A11 saturates only below -160; the wide path rounds to zero before.
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A11, -120.0f, &s), 0.0f);
    EXPECT_EQ(s, orvStatusUnderflow);
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A11, -1e30f, &s), 0.0f);
    EXPECT_EQ(s, orvStatusUnderflow);
    EXPECT_SAME_BITS(expOne(orvsExp_32f_A11, 1e30f, &s), INFINITY);
    EXPECT_EQ(s, orvStatusOverflow);

    // Subnormal float results are rounded once from double.
    for (const auto& m : k32) {
        SCOPED_TRACE(m.name);
        for (float x : {-87.3365478515625f, -88.0f, -90.5f, -95.123f, -100.0f, -102.9f}) {
            EXPECT_SAME_BITS(expOne(m.fn, x, &s), float(std::exp(double(x)))) << x;
            EXPECT_EQ(s, orvStatusUnderflow);
        }
        // The first value above the limit gives a normal result, no status.
        float y = expOne(m.fn, floatAbove(-87.3365478515625f), &s);
        EXPECT_EQ(s, orvStatusOk);
        EXPECT_GE(y, f32(0x00800000));
    }

    const double zeroLimit = f64(0xC0874910D52D3052), subLimit = f64(0xC086232BDD7ABCD3);
    for (const auto& m : k64) {
        SCOPED_TRACE(m.name);
        EXPECT_SAME_BITS(expOne(m.fn, zeroLimit, &s), 0.0);
        EXPECT_EQ(s, orvStatusUnderflow);
        EXPECT_SAME_BITS(expOne(m.fn, doubleAbove(zeroLimit), &s), f64(1));
        EXPECT_EQ(s, orvStatusUnderflow);
        double y = expOne(m.fn, subLimit, &s);
        EXPECT_EQ(s, orvStatusUnderflow);
        EXPECT_LT(y, 0x1p-1022);
        EXPECT_GE(expOne(m.fn, doubleAbove(subLimit), &s), 0x1p-1022);
        EXPECT_EQ(s, orvStatusOk);
        // Subnormal results: within the tier's relative error, or one
        // subnormal ulp deep down where that is larger.
        const double rel = std::string(m.name) == "A26" ? 0x1p-26 : std::string(m.name) == "A50" ? 0x1p-50 : 0x1p-53;
        for (double x : {-709.0, -720.5, -730.25, -740.0, -744.5}) {
            double exact = std::exp(x);
            EXPECT_LE(std::fabs(expOne(m.fn, x, &s) - exact), std::max(rel * exact, 0x1p-1074)) << x;
            EXPECT_EQ(s, orvStatusUnderflow);
        }
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

// The last warning written wins, in element order, whether the two
// elements share a block, sit in different blocks or in the tail.
template <class T, size_t K>
void checkStatusOrder(const Member<T> (&members)[K], T over, T under) {
    const T fill = T(0.5);
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        const int len = 3 * m.n + 3;
        const int placements[][2] = {{1, m.n - 2}, {m.n - 1, m.n}, {2, 3 * m.n + 1}, {3 * m.n, 3 * m.n + 2}};
        for (const auto& p : placements) {
            for (int order = 0; order < 2; ++order) {
                std::vector<T> x(len, fill);
                x[p[0]] = order == 0 ? over : under;
                x[p[1]] = order == 0 ? under : over;
                const OrvStatus expected = order == 0 ? orvStatusUnderflow : orvStatusOverflow;
                OrvStatus s;
                expAll(m.fn, x, &s);
                EXPECT_EQ(s, expected) << "positions " << p[0] << ", " << p[1];
                EXPECT_EQ(m.fn(x.data(), x.data(), len), expected) << "in place, positions " << p[0] << ", " << p[1];
            }
        }
    }
}
TEST(ExpStatus, LastWarningWins) {
    checkStatusOrder(k32, 100.0f, -100.0f);
    checkStatusOrder(k32, f32(0x42B17218), f32(0xC2AEAC50));  // the limits themselves
    checkStatusOrder(k64, f64(0x40862E42FEFA39F0), f64(0xC086232BDD7ABCD3));
    checkStatusOrder(k32, 89.0f, -88.0f);
    checkStatusOrder(k64, 710.0, -720.0);
    checkStatusOrder(k64, 1e300, -1e300);
}

// Values at the edges of the screens, at each position of a block, give the
// result and the status that they give alone (where the ElementPath takes
// them), so no lane of the screen lets a value through that it must stop.
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
                std::vector<T> y = expAll(m.fn, x, &s);
                EXPECT_EQ(bits(y[p]), bits(expected)) << v << " at " << p;
                EXPECT_EQ(s, alone) << v << " at " << p;
            }
        }
    }
}
TEST(ExpPosition, ScreenEdgesAtEveryPosition) {
    checkScreenEdges(k32, {f32(0xC2AEAC50), f32(0xC2AEAC4F), f32(0x42AEAC50), f32(0xC2AE8000), f32(0x42AE8000),
                           f32(0xC2AE7FFF)});
    checkScreenEdges(k64, {f64(0xC086232B00000000), f64(0xC086232AFFFFFFFF), f64(0x4086232B00000000),
                           f64(0xC086232BDD7ABCD3)});
}

// An ordinary value gives the same bits through a clean block, the tail
// and a rejected block: one NaN at each position leaves every other result
// as in the clean array, out of place and in place (where A53 must put back
// the inputs it overwrote ahead of the verdict).
template <class T, size_t K>
void checkPositionIndependence(const Member<T> (&members)[K]) {
    const T nan = std::numeric_limits<T>::quiet_NaN();
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        std::vector<T> x = ordinaryValues<T>(4 * m.n + 3, 11);
        OrvStatus cleanStatus;
        const std::vector<T> clean = expAll(m.fn, x, &cleanStatus);
        EXPECT_EQ(cleanStatus, orvStatusOk);
        for (size_t i = 0; i < x.size(); ++i) EXPECT_EQ(bits(expOne(m.fn, x[i])), bits(clean[i])) << "tail, x = " << x[i];
        for (int p = 0; p < int(x.size()); ++p) {
            std::vector<T> withNaN = x;
            withNaN[p] = nan;
            OrvStatus s;
            std::vector<T> out = expAll(m.fn, withNaN, &s);
            std::vector<T> inPlace = withNaN;
            OrvStatus sInPlace = m.fn(inPlace.data(), inPlace.data(), int32_t(inPlace.size()));
            EXPECT_EQ(s, orvStatusOk);
            EXPECT_EQ(sInPlace, orvStatusOk);
            for (int i = 0; i < int(x.size()); ++i) {
                if (i == p) {
                    EXPECT_TRUE(std::isnan(out[i]) && std::isnan(inPlace[i]));
                    continue;
                }
                EXPECT_EQ(bits(out[i]), bits(clean[i])) << "NaN at " << p << ", element " << i;
                EXPECT_EQ(bits(inPlace[i]), bits(clean[i])) << "in place, NaN at " << p << ", element " << i;
            }
        }
    }
}
TEST(ExpPosition, BlockTailAndRejectedBlockAgree) {
    checkPositionIndependence(k32);
    checkPositionIndependence(k64);
}

// A53 stores half a block before the screen's verdict.  A source that dst
// does not alias must never be written, so a read-only source with a
// rejected block must not fault, and the results must be right.
TEST(ExpPosition, A53LeavesAReadOnlySourceAlone) {
    const size_t page = size_t(sysconf(_SC_PAGESIZE));
    void* mem = mmap(nullptr, page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(mem, MAP_FAILED);
    double* src = static_cast<double*>(mem);
    std::vector<double> x = ordinaryValues<double>(21, 3);
    x[6] = std::numeric_limits<double>::quiet_NaN();  // second half of block 0
    x[12] = 800.0;                                     // block 1
    std::memcpy(src, x.data(), x.size() * sizeof(double));
    ASSERT_EQ(mprotect(mem, page, PROT_READ), 0);
    std::vector<double> y(x.size());
    EXPECT_EQ(orvsExp_64f_A53(src, y.data(), int32_t(x.size())), orvStatusOverflow);
    for (size_t i = 0; i < x.size(); ++i) EXPECT_EQ(bits(y[i]), bits(expOne(orvsExp_64f_A53, x[i]))) << i;
    munmap(mem, page);
}

// Flush-to-zero, denormals-are-zero and a directed rounding set by the
// caller change nothing: subnormal results and denormal arguments survive.
template <class T, size_t K>
void checkCallerModes(const Member<T> (&members)[K], const std::vector<T>& x, uint32_t mxcsr) {
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        std::vector<T> plain = expAll(m.fn, x), modes;
        {
            FpEnvScope env(mxcsr);
            modes = expAll(m.fn, x);
        }
        for (size_t i = 0; i < x.size(); ++i) EXPECT_EQ(bits(modes[i]), bits(plain[i])) << x[i];
        EXPECT_GT(plain[0], T(0));  // a subnormal result
    }
}
TEST(ExpModes, CallerModesDoNotChangeResults) {
    checkCallerModes(k32,
                     {-100.0f, -90.0f, f32(5), 1.5f, -87.5f, 10.0f, -103.0f, 88.7f, -95.0f, 3.0f, -88.0f,
                      2.0f, -99.0f, 0.1f, -89.0f, -92.0f, -97.0f},
                     kMxcsrDefault | kMxcsrFtz | kMxcsrDaz | kMxcsrRoundUp);
    checkCallerModes(k64, {-720.0, -709.0, f64(5), 1.5, -740.0, 10.0, -708.5, 709.7, -730.0},
                     kMxcsrDefault | kMxcsrFtz | kMxcsrDaz | kMxcsrRoundToZero);
}
