// Raw-bit views of floating-point values, and barriers that keep the
// compiler from folding or moving a floating-point operation whose rounding
// or flags matter.
#pragma once

#include <bit>
#include <cstdint>

namespace orv {

constexpr uint32_t bitsOf(float x) { return std::bit_cast<uint32_t>(x); }
constexpr uint64_t bitsOf(double x) { return std::bit_cast<uint64_t>(x); }
constexpr float floatFromBits(uint32_t b) { return std::bit_cast<float>(b); }
constexpr double doubleFromBits(uint64_t b) { return std::bit_cast<double>(b); }

// The low 32 bits of a double, and a double from its high and low words.
constexpr uint32_t lowWord(double x) { return uint32_t(std::bit_cast<uint64_t>(x)); }
constexpr double doubleFromWords(uint32_t hi, uint32_t lo) { return std::bit_cast<double>(uint64_t(hi) << 32 | lo); }

// The high 32 bits of a double hold its sign, exponent and top 20 fraction
// bits: the word every 64-bit screen and exponent extraction works on.
constexpr uint32_t highWord(double x) { return uint32_t(bitsOf(x) >> 32); }

constexpr uint32_t kSign32 = 0x80000000u;
// +infinity, whose pattern is also the mask of the exponent field: a
// magnitude above it is a NaN, one equal to it an infinity.
constexpr uint32_t kInfinity32 = 0x7F800000u;
constexpr uint64_t kInfinity64 = 0x7FF0000000000000u;
constexpr uint32_t kAbs32 = 0x7FFFFFFFu;
constexpr uint64_t kSign64 = 0x8000000000000000u;
constexpr uint64_t kAbs64 = 0x7FFFFFFFFFFFFFFFu;

// Makes the compiler treat x as unknown at this point: it cannot fold an
// operation on x at compile time nor move it before this point.  Used where
// a product is made for its rounding or its flags (an overflow made by
// squaring a huge constant, say), and by the floating-point guard to pin
// values to their side of a control-register write.
inline float opaque(float x) {
    asm volatile("" : "+x"(x));
    return x;
}
inline double opaque(double x) {
    asm volatile("" : "+x"(x));
    return x;
}
inline long double opaque(long double x) {
    asm volatile("" : "+t"(x));
    return x;
}
inline uint32_t opaque(uint32_t x) {
    asm volatile("" : "+r"(x));
    return x;
}
inline uint64_t opaque(uint64_t x) {
    asm volatile("" : "+r"(x));
    return x;
}

// Forces x to be computed before this point, for a value whose computation
// must happen (for its flags) even though the value itself is not used.
template <class T>
inline void forceEval(T x) {
    asm volatile("" ::"x"(x));
}
inline void forceEval(long double x) { asm volatile("" ::"f"(x)); }

// Keeps the compiler from moving memory accesses across this point: a
// store before it is done before any arithmetic after it that could raise
// a flag (the result is stored, then its flags are made).
inline void memoryBarrier() { asm volatile("" ::: "memory"); }

}  // namespace orv
