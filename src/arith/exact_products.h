// Products with their exact rounding errors, shared by the exact tiers of
// the complex products and the complex quotient: a sum of two products
// f1*g1 + f2*g2 as a double and a tail, in SSE binary64 for the block paths
// and in x87 extended precision for the element forms, whose exponent range
// holds any product of binary64 values.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/simd.h"
#include "frame/x87.h"

namespace orv::exact {

// ---- SSE binary64 -------------------------------------------------------------

// Truncation to the top 26 significant bits: the low 27 fraction bits go.
inline constexpr uint64_t kSplitMask = 0xFFFFFFFFF8000000;
inline constexpr double kMinusOne = doubleFromBits(0xBFF0000000000000);

// A factor cut into three parts by truncation: h and m of 26 significant
// bits, l the rest (at most two bits); f = h + m + l exactly, and every
// product of two parts is exact.
struct Split3 {
    F64x2 h, m, l;
};
inline Split3 split3(F64x2 f) {
    F64x2 mask = splatBits64(kSplitMask);
    F64x2 h = f & mask;
    F64x2 r = f - h;
    F64x2 m = r & mask;
    return {h, m, r - m};
}

// The rounding error of p = f*g: the nine exact partial products summed
// largest groups first.  fh*gh - p is exact, as both lie within 2^-25 of p
// and their difference needs fewer than 53 bits; the later groups are below
// 2^-50 of the error and their roundings below 2^-100 of p.  Every partial
// product must stay clear of underflow, which the callers' screens ensure.
inline F64x2 productError(F64x2 p, F64x2 f, F64x2 g) {
    Split3 a = split3(f), b = split3(g);
    F64x2 top = a.h * b.h - p;
    F64x2 second = a.h * b.m + a.m * b.h;
    F64x2 third = a.h * b.l + a.m * b.m + a.l * b.h;
    F64x2 rest = (a.m * b.l + a.l * b.m) + a.l * b.l;
    return ((top + second) + third) + rest;
}

// f1*g1 + f2*g2 as hi + lo: the products ordered by magnitude with masks
// (no branch), s = pL + pS by a fast two-sum with its error err, and lo =
// (err + eL) + eS.  hi + lo differs from the exact sum by the roundings of
// lo, a few 2^-106 of |pL|.  hi is s, not renormalised.  Each product's
// error is found before the ordering, which then moves two values per
// product instead of three.
struct SumOfProducts {
    F64x2 hi, lo;
};
inline SumOfProducts sumOfProducts(F64x2 f1, F64x2 g1, F64x2 f2, F64x2 g2) {
    F64x2 p1 = f1 * g1, p2 = f2 * g2;
    F64x2 e1 = productError(p1, f1, g1), e2 = productError(p2, f2, g2);
    F64x2 sign = splatBits64(kSign64);
    F64x2 second = cmpLe(andNot(p1, sign), andNot(p2, sign));  // p2 is the larger
    F64x2 pL = select(second, p2, p1), eL = select(second, e2, e1);
    F64x2 pS = select(second, p1, p2), eS = select(second, e1, e2);
    F64x2 s = pL + pS;
    F64x2 err = pS - (s - pL);
    return {s, (err + eL) + eS};
}
// The same, rounded once to binary64.
inline F64x2 exactComponent(F64x2 f1, F64x2 g1, F64x2 f2, F64x2 g2) {
    SumOfProducts r = sumOfProducts(f1, g1, f2, g2);
    return r.hi + r.lo;
}

// ---- x87 extended ---------------------------------------------------------------
// Extended values of the x87 vocabulary; the callers' guard (or scoped x87
// mode) has set 64-bit precision, round to nearest.

// Veltkamp's constant for 64-bit precision: 2^33 + 1 (significand
// 0x8000000040000000, exponent word 0x4020).  A binary64 value splits into
// a head of at most 31 bits and a tail of at most 22, so the products of
// the parts of two binary64 values fit the 64-bit significand exactly.
inline constexpr Extended kVeltkamp64 = 8589934593.0L;

struct ExtendedProduct {
    Extended p, e;  // f*g rounded to 64 bits, and its exact error
};
inline ExtendedProduct extendedProduct(Extended f, Extended g) {
    Extended tf = kVeltkamp64 * f, tg = kVeltkamp64 * g;
    Extended fh = tf - (tf - f), gh = tg - (tg - g);
    Extended fl = f - fh, gl = g - gh;
    Extended p = f * g;
    return {p, ((fh * gh - p) + (fh * gl + fl * gh)) + fl * gl};
}

// f1*g1 + f2*g2 of finite binary64 values by the same scheme in extended
// precision: within a few 2^-128 of the larger product, not yet rounded to
// binary64.
inline Extended extendedSumOfProducts(double f1, double g1, double f2, double g2) {
    ExtendedProduct q1 = extendedProduct(extend(f1), extend(g1));
    ExtendedProduct q2 = extendedProduct(extend(f2), extend(g2));
    bool secondLarger = __builtin_fabsl(q1.p) <= __builtin_fabsl(q2.p);
    const ExtendedProduct& L = secondLarger ? q2 : q1;
    const ExtendedProduct& S = secondLarger ? q1 : q2;
    Extended s = L.p + S.p;
    Extended err = S.p - (s - L.p);
    return s + ((err + L.e) + S.e);
}

}  // namespace orv::exact
