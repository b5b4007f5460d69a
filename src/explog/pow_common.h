// What the real powers of both widths share: the class of the exponent
// (not an integer, odd, even) and the table of special values that every
// ElementPath applies before its kernel.
//
// The rules, in the order they are tried (the first that fits decides):
//    1  y = +-0, x anything (NaN too)        1.0
//    2  x = -1, y = +-inf                    1.0
//    3  x = +1, y anything (NaN too)         1.0
//    4  x NaN                                x, bit for bit
//    5  y NaN                                y, bit for bit
//    6  x = +-0, y = -inf                    +inf, domain
//    7  |x| > 1, y = -inf                    +0
//    8  |x| > 1, y = +inf                    +inf
//    9  |x| < 1 (zero too), y = +inf         +0
//   10  |x| < 1, not zero, y = -inf          +inf
//   11-14  x = -inf: y > 0 odd -inf, y > 0 otherwise +inf,
//          y < 0 odd -0, y < 0 otherwise +0
//   15  x < 0 finite, y not an integer       NaN, domain
//   16  x < 0 finite, y an integer           sign (-1 for odd y) times |x|^y
//   17-20  x = -0: y < 0 odd -inf (domain), y < 0 otherwise +inf (domain),
//          y > 0 odd -0, y > 0 otherwise +0
//   21-22  x = +inf: +inf for y > 0, +0 for y < 0
//   23-24  x = +0: +0 for y > 0, +inf for y < 0 (domain)
//   25  x > 0 finite, y finite and not zero: the kernel
// A zero base with a negative exponent is a domain case here, not a
// singularity.  Each domain row writes orvStatusDomain and raises the
// invalid flag with one 0/0.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/frame.h"

namespace orv::pow {

enum class IntegerClass { NotInteger, Odd, Even };

// The raw-bit view of one element type.
template <class T>
struct Bits;
template <>
struct Bits<float> {
    using U = uint32_t;
    static constexpr U kSign = kSign32, kAbs = kAbs32, kInf = 0x7F800000, kOne = 0x3F800000;
    static constexpr U kDomainNaN = 0xFFC00000;
    static constexpr int kFractionBits = 23, kBias = 127;
    // |y| at or above 2^24 is an even integer.
    static constexpr U kAllEven = 0x4B800000;
    static U bits(float x) { return bitsOf(x); }
    static float from(U b) { return floatFromBits(b); }
    static void raise(OrvStatus s) { raiseFpFlags32(s); }
};
template <>
struct Bits<double> {
    using U = uint64_t;
    static constexpr U kSign = kSign64, kAbs = kAbs64, kInf = 0x7FF0000000000000, kOne = 0x3FF0000000000000;
    static constexpr U kDomainNaN = 0xFFF8000000000000;
    static constexpr int kFractionBits = 52, kBias = 1023;
    static constexpr U kAllEven = 0x4340000000000000;  // 2^53
    static U bits(double x) { return bitsOf(x); }
    static double from(U b) { return doubleFromBits(b); }
    static void raise(OrvStatus s) { raiseFpFlags64(s); }
};

// Not an integer for |y| < 1 (zero is even) and for infinities and NaN;
// even from 2^24 (2^53) on; otherwise the fraction bits that lie below the
// binary point decide, and the units bit tells odd from even.
template <class T>
inline IntegerClass integerClass(T y) {
    using B = Bits<T>;
    using U = typename B::U;
    const U a = B::bits(y) & B::kAbs;
    if (a == 0) return IntegerClass::Even;
    if (a < B::kOne || a >= B::kInf) return IntegerClass::NotInteger;
    if (a >= B::kAllEven) return IntegerClass::Even;
    // |y| = 2^e (1.f) with 0 <= e < precision - 1: the low (fraction bits
    // - e) bits of f lie below the binary point, and the bit just above
    // them (the implicit bit for e = 0) is the units bit.
    const int below = B::kFractionBits - (int(a >> B::kFractionBits) - B::kBias);
    if ((a & ((U(1) << below) - 1)) != 0) return IntegerClass::NotInteger;
    const bool units = below == B::kFractionBits || ((a >> below) & 1) != 0;
    return units ? IntegerClass::Odd : IntegerClass::Even;
}

// The outcome of the special-value rules: either a final result, or the
// kernel to run on |x| with a sign factor of +1 or -1.
template <class T>
struct Special {
    bool done;
    T result;
    T sign;
};

template <class T>
inline Special<T> domain(StatusVar& status, T result) {
    status.write(orvStatusDomain);
    Bits<T>::raise(orvStatusDomain);
    return {true, result, T(1)};
}

template <class T>
inline Special<T> specialValues(T x, T y, StatusVar& status) {
    using B = Bits<T>;
    using U = typename B::U;
    const U bx = B::bits(x), by = B::bits(y);
    const U ax = bx & B::kAbs, ay = by & B::kAbs;
    const T inf = B::from(B::kInf), one = T(1);
    const bool yNegative = (by & B::kSign) != 0;
    if (ay == 0) return {true, one, one};                                // 1
    if (bx == (B::kOne | B::kSign) && ay == B::kInf) return {true, one, one};  // 2
    if (bx == B::kOne) return {true, one, one};                          // 3
    if (ax > B::kInf) return {true, x, one};                             // 4
    if (ay > B::kInf) return {true, y, one};                             // 5
    if (ay == B::kInf) {
        if (yNegative) {
            if (ax == 0) return domain(status, inf);                     // 6
            return {true, ax > B::kOne ? T(0) : inf, one};               // 7, 10
        }
        return {true, ax > B::kOne ? inf : T(0), one};                   // 8, 9
    }
    const IntegerClass c = integerClass(y);
    const bool odd = c == IntegerClass::Odd;
    if (bx == (B::kInf | B::kSign)) {                                    // 11-14
        if (yNegative) return {true, odd ? -T(0) : T(0), one};
        return {true, odd ? -inf : inf, one};
    }
    if ((bx & B::kSign) != 0 && ax != 0) {
        if (c == IntegerClass::NotInteger) return domain(status, B::from(B::kDomainNaN));  // 15
        return {false, T(0), odd ? -one : one};                          // 16
    }
    if (bx == B::kSign) {                                                // 17-20
        if (yNegative) return domain(status, odd ? -inf : inf);
        return {true, odd ? -T(0) : T(0), one};
    }
    if (bx == B::kInf) return {true, yNegative ? T(0) : inf, one};       // 21, 22
    if (bx == 0) {                                                       // 23, 24
        if (yNegative) return domain(status, inf);
        return {true, T(0), one};
    }
    return {false, T(0), one};                                           // 25
}

}  // namespace orv::pow
