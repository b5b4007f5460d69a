// The frame vocabulary on its own: the guard's tests, written values and
// restores in every mode, the x87 vocabulary and its scoped mode, the
// raising of flags, and the visiting order of the block-path drivers that
// every family builds on.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "frame/blockpath.h"
#include "frame/frame.h"
#include "frame/x87.h"
#include "testing.h"

using namespace orv;
using orvtest::FpEnvScope;
using orvtest::kMxcsrDaz;
using orvtest::kMxcsrDefault;
using orvtest::kMxcsrFlags;
using orvtest::kMxcsrFtz;
using orvtest::kMxcsrRoundDown;
using orvtest::kMxcsrRoundUp;
using orvtest::kMxcsrRoundToZero;

namespace {

struct Seen {
    uint32_t mxcsr;
    uint16_t x87;
    uint8_t restoreFlags;
};

template <FpModes M>
Seen insideGuard(uint32_t callerMxcsr, uint16_t callerX87, uint32_t* after = nullptr, uint16_t* x87After = nullptr) {
    FpEnvScope scope(callerMxcsr, callerX87);
    FpStateGuard g;
    g.enter<M>();
    Seen s{orvtest::readMxcsr(), orvtest::readX87(), g.restoreFlags()};
    g.leave<RestoreOrder::MxcsrFirst>();
    if (after) *after = orvtest::readMxcsr();
    if (x87After) *x87After = orvtest::readX87();
    return s;
}

TEST(FpStateGuard, WritesOnlyWhenItsTestFails) {
    const uint16_t x87 = orvtest::kX87Default;
    // Already right: nothing written, nothing to restore.
    EXPECT_EQ(insideGuard<kGuardNearest>(kMxcsrDefault, x87).restoreFlags, 0);
    EXPECT_EQ(insideGuard<kGuardDown>(kMxcsrDefault | kMxcsrRoundDown, x87).restoreFlags, 0);
    EXPECT_EQ(insideGuard<kGuardNearestKeepDaz>(kMxcsrDefault | kMxcsrDaz, x87).restoreFlags, 0);
    EXPECT_EQ(insideGuard<kGuardX87Extended>(kMxcsrDefault, x87).restoreFlags, 0);
    EXPECT_EQ(insideGuard<kGuardX87Double>(kMxcsrDefault, 0x027F).restoreFlags, 0);

    const uint32_t messy = kMxcsrDefault | kMxcsrRoundUp | kMxcsrFtz | kMxcsrDaz;
    struct {
        Seen seen;
        uint32_t want;
    } cases[] = {
        {insideGuard<kGuardNearest>(messy, x87), kMxcsrDefault},
        {insideGuard<kGuardDown>(messy, x87), kMxcsrDefault | kMxcsrRoundDown},
        {insideGuard<kGuardUp>(messy, x87), kMxcsrDefault | kMxcsrRoundUp},
        {insideGuard<kGuardTowardZero>(messy, x87), kMxcsrDefault | kMxcsrRoundToZero},
        {insideGuard<kGuardNearestKeepDaz>(messy, x87), kMxcsrDefault | kMxcsrDaz},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.seen.mxcsr & ~kMxcsrFlags, c.want);
        EXPECT_EQ(c.seen.restoreFlags, FpStateGuard::kRestoreMxcsr);
    }
    // Exception masks are kept: unmask invalid and check it stays unmasked.
    EXPECT_EQ(insideGuard<kGuardNearest>((messy & ~0x80u), x87).mxcsr & ~kMxcsrFlags, kMxcsrDefault & ~0x80u);

    // The x87 word: precision and rounding set, exception masks kept.
    Seen d = insideGuard<kGuardX87Double>(kMxcsrDefault, 0x0C7E);
    EXPECT_EQ(d.x87, 0x027E);
    EXPECT_EQ(d.restoreFlags, FpStateGuard::kRestoreX87);
    Seen both = insideGuard<kGuardX87ExtendedThenNearest>(messy, 0x007F);
    EXPECT_EQ(both.x87, 0x037F);
    EXPECT_EQ(both.mxcsr & ~kMxcsrFlags, kMxcsrDefault);
    EXPECT_EQ(both.restoreFlags, FpStateGuard::kRestoreMxcsr | FpStateGuard::kRestoreX87);
}

TEST(FpStateGuard, RestoresTheValuesOfEntry) {
    uint32_t after;
    uint16_t x87After;
    const uint32_t messy = kMxcsrDefault | kMxcsrRoundToZero | kMxcsrFtz | 0x0004;  // a sticky flag set
    insideGuard<kGuardX87ExtendedThenNearestKeepDaz>(messy, 0x0A7F, &after, &x87After);
    EXPECT_EQ(after, messy);
    EXPECT_EQ(x87After, 0x0A7F);
}

// Work inside a frame is rounded in the guard's mode.  Operands read from
// the arrays cannot be read before the guard's write (a memory barrier);
// operands that live in registers (a by-value constant) are pinned inside
// by opaque(), without which GCC computes the quotient before the guard.
double __attribute__((noinline)) thirdOfArray(const double* x) {
    double r = 0;
    pointersFirstFrame<kGuardNearest>({x, &r}, 1, [&](StatusVar&) { r = x[0] / x[1]; });
    return r;
}
double __attribute__((noinline)) thirdOfConstants(double one, double three) {
    double r = 0;
    pointersFirstFrame<kGuardNearest>({&r}, 1, [&](StatusVar&) { r = opaque(one) / opaque(three); });
    return r;
}
TEST(FpStateGuard, ArithmeticStaysInsideTheGuard) {
    const double x[2] = {1.0, 3.0};
    FpEnvScope up(kMxcsrDefault | kMxcsrRoundUp);
    EXPECT_EQ(thirdOfArray(x), 0x1.5555555555555p-2);  // nearest, not up (...556p-2)
    EXPECT_EQ(thirdOfConstants(1.0, 3.0), 0x1.5555555555555p-2);
}

// The extended value's layout, its one-rounding stores, and a scoped mode
// that computes at 64-bit precision and to nearest whatever the caller's
// word, puts that word back and keeps the arithmetic between its writes.
TEST(X87, ExtendedValuesAndTheScopedMode) {
    ExtendedBits one = extendedBits(extend(1.0));
    EXPECT_EQ(one.significand, 0x8000000000000000u);
    EXPECT_EQ(one.signExponent, 0x3FFF);
    EXPECT_EQ(extendedFromBits(0xC000000000000000, 0xC000), -3.0L);
    EXPECT_EQ(extendedBits(sqrtX87(extend(2.0))).significand, 0xB504F333F9DE6484u);

    // 1 + 2^-40 + 2^-60 is exact at 64 bits, lost at 53 and 24; the sum
    // below the half-ulp of binary64 shows the store's direction.
    auto body = [](double a, double b, double c) {
        Extended s = extend(a) + extend(b) + extend(c);
        return roundToDouble(s - extend(a));
    };
    const double want = 0x1p-40 + 0x1p-60;
    for (uint16_t word : {0x037F, 0x007F, 0x027F, 0x077F, 0x0B7F, 0x0F7F}) {
        FpEnvScope scope(kMxcsrDefault, word);
        EXPECT_EQ(inX87Mode<kX87Extended>(body, 1.0, 0x1p-40, 0x1p-60), want) << std::hex << word;
        EXPECT_EQ(orvtest::readX87(), word);
        float f;
        inX87Mode<kX87Extended>([&](double x) { storeRounded(&f, extend(x)); return 0.0; }, 1.0 + 0x1p-30);
        EXPECT_EQ(f, 1.0f);
        EXPECT_EQ(inX87Mode<kX87Extended>([](double x) { return roundToFloat(extend(x)); }, 1.0 - 0x1p-40),
                  1.0f);
    }
    // Outside a scope the word rules: 24-bit precision loses the small terms.
    FpEnvScope single(kMxcsrDefault, 0x007F);
    EXPECT_EQ(body(opaque(1.0), 0x1p-40, 0x1p-60), 0.0);
}

TEST(Frames, CheckOrder) {
    float a = 0, b = 0;
    auto body = [](StatusVar& s) { s.write(orvStatusUnderflow); };
    EXPECT_EQ(pointersFirstFrame<kGuardNone>({&a, nullptr}, 0, body), orvStatusNullPointer);
    EXPECT_EQ(lengthFirstFrame<kGuardNone>({&a, nullptr}, 0, body), orvStatusBadLength);
    EXPECT_EQ(lengthFirstFrame<kGuardNone>({nullptr, &b}, 3, body), orvStatusNullPointer);
    EXPECT_EQ(pointersFirstFrame<kGuardNone>({&a, &b}, -2, body), orvStatusBadLength);
    EXPECT_EQ(pointersFirstFrame<kGuardNone>({&a, &b}, 2, body), orvStatusUnderflow);
}

TEST(RaiseFpFlags, RaisesTheFlagsOfEachWarning) {
    const struct {
        OrvStatus code;
        uint32_t flags;
    } cases[] = {{orvStatusDomain, orvtest::kMxcsrInvalid},
                 {orvStatusSingularity, orvtest::kMxcsrDivideByZero},
                 {orvStatusOverflow, orvtest::kMxcsrOverflow | orvtest::kMxcsrInexact},
                 {orvStatusUnderflow, orvtest::kMxcsrUnderflow | orvtest::kMxcsrInexact},
                 {orvStatusOk, 0},
                 {orvStatusNullPointer, 0}};
    for (auto raise : {raiseFpFlags32, raiseFpFlags64})
        for (const auto& c : cases) {
            orvtest::clearFlags();
            raise(c.code);
            EXPECT_EQ(orvtest::flags(), c.flags) << "code " << c.code;
        }
}

// ---- Block-path drivers ------------------------------------------------------

// Records which elements went where: 'B' through a passing block, 'E'
// through the ElementPath, 'T' through the tail.
struct Trace {
    std::vector<char> how;
    std::vector<int> order;
    explicit Trace(int len) : how(len, '.') {}
    void mark(int i, char c) {
        how[i] = c;
        order.push_back(i);
    }
    std::string str() const { return std::string(how.begin(), how.end()); }
};

TEST(BlockPath, WholeBlockFallbackRedoesTheBlockInOrder) {
    Trace t(21);
    wholeBlockFallback<8>(
        21,
        [&](int32_t i) {
            if (i == 8) return false;
            for (int k = 0; k < 8; ++k) t.mark(i + k, 'B');
            return true;
        },
        [&](int32_t i) { t.mark(i, 'E'); }, [&](int32_t i) { t.mark(i, 'T'); });
    EXPECT_EQ(t.str(), "BBBBBBBBEEEEEEEETTTTT");
    EXPECT_TRUE(std::is_sorted(t.order.begin(), t.order.end()));
}

TEST(BlockPath, DrainFallbackTakesLenModNThenShifts) {
    // len 20, N 8: the block at 0 is rejected; 20 mod 8 = 4 elements drain,
    // then blocks resume at 4 and 12.
    Trace t(20);
    std::vector<int> starts;
    drainFallback<8>(
        20,
        [&](int32_t i) {
            starts.push_back(i);
            if (i == 0) return false;
            for (int k = 0; k < 8; ++k) t.mark(i + k, 'B');
            return true;
        },
        [&](int32_t i) { t.mark(i, 'E'); });
    EXPECT_EQ(starts, (std::vector<int>{0, 4, 12}));
    EXPECT_EQ(t.str(), "EEEEBBBBBBBBBBBBBBBB");
    // With len a multiple of N the drain is exactly the rejected block, and
    // it stops when nothing is left.
    Trace u(16);
    drainFallback<8>(16, [&](int32_t i) { return i != 8 && (u.mark(i, 'B'), true); },
                     [&](int32_t i) { u.mark(i, 'E'); });
    EXPECT_EQ(u.str(), "B.......EEEEEEEE");
}

// A block that stores its first half before failing: the driver must put
// the aliased inputs back and never write a source that dst does not alias.
TEST(BlockPath, StoreAheadPutsBackOnlyAliasedSources) {
    const long page = sysconf(_SC_PAGESIZE);
    auto* ro = static_cast<float*>(mmap(nullptr, page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    for (int i = 0; i < 16; ++i) ro[i] = float(i + 1);
    mprotect(ro, page, PROT_READ);
    auto run = [&](const float* a, const float* b, float* dst) {
        storeAheadBlock<8>(
            16, dst, {a, b},
            [&](int32_t i) {
                float r[8];
                for (int k = 0; k < 8; ++k) r[k] = a[i + k] * b[i + k];
                for (int k = 0; k < 4; ++k) dst[i + k] = r[k];  // stored ahead
                if (i == 0) return false;                       // then the verdict
                for (int k = 4; k < 8; ++k) dst[i + k] = r[k];
                return true;
            },
            [&](int32_t i) { dst[i] = -a[i] * b[i]; });
    };
    std::vector<float> b(16, 2.0f), dst(16);
    run(ro, b.data(), dst.data());  // would fault on a write to ro
    for (int i = 0; i < 16; ++i) EXPECT_EQ(dst[i], (i < 8 ? -2.0f : 2.0f) * float(i + 1)) << i;
    std::vector<float> inPlace(ro, ro + 16);
    run(ro, inPlace.data(), inPlace.data());
    for (int i = 0; i < 16; ++i) EXPECT_EQ(inPlace[i], (i < 8 ? -1.0f : 1.0f) * float(i + 1) * float(i + 1)) << i;
    munmap(ro, page);
}

TEST(BlockPath, LaneFixupRecomputesFlaggedLanesFromTheInputs) {
    std::vector<float> x = {1, 2, -3, 4, -5, 6, 7, 8, 9, -10};
    std::vector<int> order;
    auto block = [](const float* in, float* out) {
        unsigned mask = 0;
        for (int k = 0; k < 4; ++k) {
            out[k] = in[k] * 10;
            if (in[k] < 0) mask |= 1u << k;
        }
        return mask;
    };
    auto element = [&](float v) {
        order.push_back(int(v));
        return v * 100;
    };
    laneFixup<4>(x.data(), x.data(), 10, block, element);  // in place
    EXPECT_EQ(x, (std::vector<float>{10, 20, -300, 40, -500, 60, 70, 80, 900, -1000}));
    EXPECT_EQ(order, (std::vector<int>{-3, -5, 9, -10}));
}

TEST(Screens, RawBitLimits) {
    EXPECT_EQ(magnitudeScreen(setLanes(1.0f, -87.0f, 88.0f, NAN), 0x42AEAC50), 0b1100);
    EXPECT_EQ(positiveNormalScreen(setLanes(0x1p-126f, 0x1p-127f, -1.0f, 0x1.fffffep127f)), 0b0110);
    EXPECT_EQ(positiveNormalScreen(setLanes(INFINITY, 0.0f, 1.0f, 2.0f)), 0b0011);
    EXPECT_EQ(positiveNormalScreen(setLanes(0x1p-1022, 0x1p-1023), setLanes(-1.0, 0x1.fffffffffffffp1023)), 0b0110);
    EXPECT_EQ(magnitudeScreen(setLanes(708.0, -709.0), setLanes(1.0, NAN), 0x4086232B), 0b1010);
    EXPECT_TRUE(passesPositiveNormal32(0x00800000));
    EXPECT_FALSE(passesPositiveNormal32(0x7F800000));
    EXPECT_TRUE(passesPositiveNormal64(0x7FEFFFFF));
    EXPECT_FALSE(passesPositiveNormal64(0x000FFFFF));
}

}  // namespace
