// Small helpers for the family tests: raw bits, scopes that set the
// caller's floating-point control state and put it back, and read-only
// sources.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "orvvm.h"

namespace orvtest {

inline uint32_t bits(float x) { return std::bit_cast<uint32_t>(x); }
inline uint64_t bits(double x) { return std::bit_cast<uint64_t>(x); }
inline float f32(uint32_t b) { return std::bit_cast<float>(b); }
inline double f64(uint64_t b) { return std::bit_cast<double>(b); }

// MXCSR fields.
inline constexpr uint32_t kMxcsrDefault = 0x1F80;  // all exceptions masked, nearest
inline constexpr uint32_t kMxcsrFlags = 0x003F;    // sticky flags IE DE ZE OE UE PE
inline constexpr uint32_t kMxcsrInvalid = 0x0001;
inline constexpr uint32_t kMxcsrDivideByZero = 0x0004;
inline constexpr uint32_t kMxcsrOverflow = 0x0008;
inline constexpr uint32_t kMxcsrUnderflow = 0x0010;
inline constexpr uint32_t kMxcsrInexact = 0x0020;
inline constexpr uint32_t kMxcsrDaz = 0x0040;
inline constexpr uint32_t kMxcsrRoundDown = 0x2000;
inline constexpr uint32_t kMxcsrRoundUp = 0x4000;
inline constexpr uint32_t kMxcsrRoundToZero = 0x6000;
inline constexpr uint32_t kMxcsrFtz = 0x8000;
// x87 control word: 0x037F is the default (64-bit precision, nearest).
inline constexpr uint16_t kX87Default = 0x037F;
inline constexpr uint16_t kX87Single = 0x007F;  // 24-bit precision
inline constexpr uint16_t kX87Double = 0x027F;  // 53-bit precision

inline uint32_t readMxcsr() {
    uint32_t v;
    asm volatile("stmxcsr %0" : "=m"(v)::"memory");
    return v;
}
inline void writeMxcsr(uint32_t v) { asm volatile("ldmxcsr %0" ::"m"(v) : "memory"); }
inline uint16_t readX87() {
    uint16_t v;
    asm volatile("fnstcw %0" : "=m"(v)::"memory");
    return v;
}
inline void writeX87(uint16_t v) { asm volatile("fldcw %0" ::"m"(v) : "memory"); }
inline void clearFlags() { writeMxcsr(readMxcsr() & ~kMxcsrFlags); }
inline uint32_t flags() { return readMxcsr() & kMxcsrFlags; }

// Sets MXCSR (flags cleared) and the x87 word for the life of the scope.
class FpEnvScope {
public:
    explicit FpEnvScope(uint32_t mxcsr, uint16_t x87 = kX87Default)
        : savedMxcsr_(readMxcsr()), savedX87_(readX87()) {
        writeMxcsr(mxcsr);
        writeX87(x87);
    }
    ~FpEnvScope() {
        writeMxcsr(savedMxcsr_);
        writeX87(savedX87_);
    }
    FpEnvScope(const FpEnvScope&) = delete;
    FpEnvScope& operator=(const FpEnvScope&) = delete;

private:
    uint32_t savedMxcsr_;
    uint16_t savedX87_;
};

// A copy of values on a page of its own that only reads: a member that
// writes a source dst does not alias faults on it.
template <class T>
class ReadOnlyCopy {
public:
    // Whole pages, at least one, so that an empty or long array fits too.
    explicit ReadOnlyCopy(const std::vector<T>& values) {
        const size_t page = size_t(sysconf(_SC_PAGESIZE));
        size_ = std::max<size_t>(1, (values.size() * sizeof(T) + page - 1) / page) * page;
        page_ = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        std::memcpy(page_, values.data(), values.size() * sizeof(T));
        mprotect(page_, size_, PROT_READ);
    }
    ~ReadOnlyCopy() { munmap(page_, size_); }
    ReadOnlyCopy(const ReadOnlyCopy&) = delete;
    ReadOnlyCopy& operator=(const ReadOnlyCopy&) = delete;
    const T* data() const { return static_cast<const T*>(page_); }

private:
    size_t size_;
    void* page_;
};

}  // namespace orvtest

// Bit-for-bit comparison of floating-point values, with the bits printed.
#define EXPECT_SAME_BITS(a, b) EXPECT_EQ(orvtest::bits(a), orvtest::bits(b))
#define ASSERT_SAME_BITS(a, b) ASSERT_EQ(orvtest::bits(a), orvtest::bits(b))
