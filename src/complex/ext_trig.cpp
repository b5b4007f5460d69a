// extReduce, extSin, extCos, extSinCos, extTan: the circular functions of
// an extended value.
//
// Reduction, x = q pi/2 + r with |r| <= pi/4 (and a rounding), r carried
// as hi + lo:
//   |x| <= pi/4: r = x.
//   exponent field up to 0x401D (|x| < 2^31): q = round(x 2/pi) (the
//     shifter 1.5 2^63), and pi/2 = 2 (p1 + ... + p5) with pi/4 cut into
//     five pieces of 32 bits (0.78539816, 3.0385503e-11, 1.0111331e-21,
//     4.2392138e-32, 1.0335161e-43): 2q times a piece is exact, x - 2q p1
//     is exact by Sterbenz's lemma, the next two subtractions are two-sums,
//     and the remainder holds pi/2 to 2^-170, so that even the nearest
//     approach of a 64-bit x below 2^31 to a multiple of pi/2 keeps r to
//     far below its last bit.
//   larger (extReduce, up to the top of the extended range): Payne and
//     Hanek's product of the 64-bit significand with 384 bits of 2/pi taken
//     from the word the exponent selects (kExtTwoOverPi); the words before
//     it only add multiples of 4.  The product gives q mod 4 and 192 bits of
//     the fraction, normalised and multiplied by pi/2 in two parts with an
//     exact product.
// Kernels on r = hi + lo, with z = hi^2 and the Taylor coefficients 1/n!:
//   sin r = hi + (hi z S(z) + lo (1 - z/2)), S to the term of r^19 (the
//     first omitted, r^21/21!, is below 2^-72 at pi/4);
//   cos r = 1 - z/2 + z^2 C(z) - hi lo, C to the term of r^20, z split
//     exactly so that 1 - z/2 is a two-sum and its error is kept;
//   tan r = sin r / cos r, or -cos r / sin r for odd q, both as pairs
//     divided with one residual correction; below 2^-8 the odd
//     series x + x^3/3 + 2x^5/15 + 17x^7/315 + 62x^9/2835 (the first omitted
//     term is below 2^-67 relative).
// Measured errors (tests/test_extended.cpp): see the bounds in extended.h.
//
// Special values at entry: NaN gives x + x; an infinity gives the default
// NaN (x - x, invalid); sin, tan keep +-0 and cos gives 1.  extReduce of a
// NaN or an infinity gives r = x - x and q = 0.
#ifndef ORVVM_RECORDS

#include "complex/ext_parts.h"
#include "tables/ext_tables.h"

namespace orv {

namespace ext {
namespace {
using tables::kExtPiBy4Piece1;
using tables::kExtPiBy4Piece2;
using tables::kExtPiBy4Piece3;
using tables::kExtPiBy4Piece4;
using tables::kExtPiBy4Piece5;

constexpr uint16_t kCodyWaiteLastField = 0x401D;  // |x| < 2^31
constexpr int kTwoOverPiWords = 6;                // 384 bits of 2/pi in the product
constexpr int kFractionWords = 3;                 // 192 bits of the fraction kept

// The Payne-Hanek reduction of a finite |x| >= 2^31: q mod 4 of the nearest
// q, and x - q pi/2 as hi + lo.
int reduceLarge(Extended x, Pair* r) {
    const ExtendedBits b = extendedBits(x);
    const uint64_t m = b.significand;
    const int e = int(b.signExponent & kExponentMask) - kBias - 63;  // x = m 2^e, e >= -32
    // Words before i0 make multiples of 4 (their lowest weight 2^(e - 64 i0)
    // is at least 4).
    const int i0 = e >= 66 ? (e - 2) / 64 : 0;
    // product = m (w[i0] ... w[i0+5]), 448 bits, least significant word first;
    // bit k weighs 2^(k + e - 64 (i0 + 6)).
    uint64_t product[kTwoOverPiWords + 1] = {};
    unsigned __int128 carry = 0;
    for (int k = kTwoOverPiWords - 1; k >= 0; --k) {
        const unsigned __int128 t = (unsigned __int128)m * tables::kExtTwoOverPi[i0 + k] + carry;
        product[kTwoOverPiWords - 1 - k] = uint64_t(t);
        carry = t >> 64;
    }
    product[kTwoOverPiWords] = uint64_t(carry);
    // The bit of weight 1.
    const int one = 64 * (i0 + kTwoOverPiWords) - e;
    auto bitsAt = [&](int position) {  // 64 bits from position up
        const int w = position >> 6, s = position & 63;
        uint64_t v = product[w] >> s;
        if (s != 0 && w + 1 <= kTwoOverPiWords) v |= product[w + 1] << (64 - s);
        return v;
    };
    unsigned q = unsigned(bitsAt(one)) & 3;
    uint64_t f[kFractionWords];  // the fraction, f[2] most significant
    for (int k = 0; k < kFractionWords; ++k) f[k] = bitsAt(one - 64 * (kFractionWords - k));
    // To the nearest q: a fraction of a half or more is taken as f - 1.
    bool negative = false;
    if (f[2] >> 63) {
        q = (q + 1) & 3;
        negative = true;
        unsigned __int128 borrow = 1;  // negate the 192-bit value: ~f + 1
        for (int k = 0; k < kFractionWords; ++k) {
            const unsigned __int128 t = (unsigned __int128)(~f[k]) + borrow;
            f[k] = uint64_t(t);
            borrow = t >> 64;
        }
    }
    // Normalise: the top 128 bits below the leading one, and its weight.
    int shift = 0;
    while (f[2] == 0 && shift < 128) {
        f[2] = f[1];
        f[1] = f[0];
        f[0] = 0;
        shift += 64;
    }
    const int lead = f[2] == 0 ? 0 : __builtin_clzll(f[2]);
    if (lead != 0) {
        f[2] = f[2] << lead | f[1] >> (64 - lead);
        f[1] = f[1] << lead | f[0] >> (64 - lead);
    }
    shift += lead;
    // |fraction| = (f[2] + f[1] 2^-64) 2^-(64 + shift), both parts exact.
    const Extended scale = powerOfTwo(-64 - shift);
    const Extended hi = Extended(f[2]) * scale, lo = Extended(f[1]) * scale * 0x1p-64L;
    const Pair p = twoProduct(hi, tables::kExtPiBy2Hi);
    const Extended tail = p.lo + (hi * tables::kExtPiBy2Lo + lo * tables::kExtPiBy2Hi);
    Pair v = fastTwoSum(p.hi, tail);
    if (negative) v = {-v.hi, -v.lo};
    if (signBit(x)) {
        v = {-v.hi, -v.lo};
        q = (4 - q) & 3;
    }
    *r = v;
    return int(q);
}
}  // namespace

int reduceQuarterTurns(Extended x, Pair* r) {
    const Extended a = signBit(x) ? -x : x;
    if (a <= kExtPiBy4Piece1) {
        *r = {x, 0};
        return 0;
    }
    if (exponentField(x) > kCodyWaiteLastField) return reduceLarge(x, r);
    const Extended q = nearestInteger(x * tables::kExtTwoOverPiRounded);
    const Extended q2 = 2 * q;
    const Extended t1 = x - q2 * kExtPiBy4Piece1;  // exact
    const Pair a2 = twoSum(t1, -(q2 * kExtPiBy4Piece2));
    const Pair a3 = twoSum(a2.hi, -(q2 * kExtPiBy4Piece3));
    const Extended low = ((a2.lo + a3.lo) - q2 * kExtPiBy4Piece4) - q2 * kExtPiBy4Piece5;
    *r = fastTwoSum(a3.hi, low);
    return int((long long)q & 3);
}

}  // namespace ext

using namespace ext;

namespace {
// Taylor coefficients: (-1)^k/(2k+1)! for sin from k = 1 to 9, and
// (-1)^k/(2k)! for cos from k = 2 to 10.
struct TrigCoefficients {
    Extended sin[9];
    Extended cos[9];
};
constexpr TrigCoefficients makeTrigCoefficients() {
    TrigCoefficients c{};
    for (int k = 1; k <= 9; ++k) c.sin[k - 1] = ((k & 1) ? -1 : 1) * inverseFactorial(2 * k + 1);
    for (int k = 2; k <= 10; ++k) c.cos[k - 2] = ((k & 1) ? -1 : 1) * inverseFactorial(2 * k);
    return c;
}
alignas(16) constexpr TrigCoefficients kTrig = makeTrigCoefficients();

constexpr uint16_t kTanSeriesField = 0x3FF7;  // |x| < 2^-8

// sin r and cos r as unevaluated pairs (the tangent divides them as such).
Pair sinKernel(const Pair& r) {
    const Extended z = r.hi * r.hi;
    Extended s = kTrig.sin[8];
    for (int i = 7; i >= 0; --i) s = kTrig.sin[i] + z * s;
    return {r.hi, r.hi * z * s + r.lo * (1 - z * 0.5L)};
}

Pair cosKernel(const Pair& r) {
    const Pair z = twoProduct(r.hi, r.hi);
    Extended c = kTrig.cos[8];
    for (int i = 7; i >= 0; --i) c = kTrig.cos[i] + z.hi * c;
    const Extended half = z.hi * 0.5L;
    const Extended h = 1 - half;
    const Extended e = (1 - h) - half;  // exact: 1 - h and half are close
    return {h, ((z.hi * z.hi * c - r.hi * r.lo) - z.lo * 0.5L) + e};
}

Extended value(const Pair& p) { return p.hi + p.lo; }

// (a.hi + a.lo)/(b.hi + b.lo): the quotient t0 of the heads, then one
// correction by the residual a - t0 b, with t0 b.hi split exactly.
Extended divide(const Pair& a, const Pair& b) {
    const Extended bv = value(b);
    const Extended t0 = value(a) / bv;
    const Pair p = twoProduct(t0, b.hi);
    const Extended residual = (((a.hi - p.hi) - p.lo) + a.lo) - t0 * b.lo;
    return t0 + residual / bv;
}

// sin and cos of x after the reduction, by the quadrant.
void sinCos(Extended x, Extended* s, Extended* c) {
    Pair r;
    const int q = reduceQuarterTurns(x, &r);
    const Extended sr = value(sinKernel(r)), cr = value(cosKernel(r));
    switch (q) {
        case 0: *s = sr, *c = cr; break;
        case 1: *s = cr, *c = -sr; break;
        case 2: *s = -sr, *c = -cr; break;
        default: *s = -cr, *c = sr; break;
    }
}

// NaN: x + x; infinity: the default NaN; zero: true with *sinOut = x.
bool special(Extended x, Extended* out) {
    if (isSpecial(x)) {
        *out = isNan(x) ? x + x : x - x;
        return true;
    }
    return false;
}
}  // namespace

int extReduce(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (special(x, r)) return 0;
    Pair p;
    const int q = reduceQuarterTurns(x, &p);
    *r = p.hi + p.lo;
    return q;
}

void extSinCos(Extended* s, Extended* c, const Extended* xp) {
    const Extended x = *xp;
    if (special(x, s)) {
        *c = *s;
        return;
    }
    if (isZero(x)) {
        *s = x;
        *c = 1;
        return;
    }
    sinCos(x, s, c);
}

void extSin(Extended* r, const Extended* x) {
    Extended c;
    extSinCos(r, &c, x);
}

void extCos(Extended* r, const Extended* x) {
    Extended s;
    extSinCos(&s, r, x);
}

void extTan(Extended* r, const Extended* xp) {
    const Extended x = *xp;
    if (special(x, r)) return;
    if (isZero(x)) {
        *r = x;
        return;
    }
    if (exponentField(x) < kTanSeriesField) {
        constexpr Extended t3 = 1.0L / 3, t5 = 2.0L / 15, t7 = 17.0L / 315, t9 = 62.0L / 2835;
        const Extended z = x * x;
        *r = x + x * z * (t3 + z * (t5 + z * (t7 + z * t9)));
        return;
    }
    Pair p;
    const int q = reduceQuarterTurns(x, &p);
    const Pair sr = sinKernel(p), cr = cosKernel(p);
    *r = (q & 1) ? -divide(cr, sr) : divide(sr, cr);
}

}  // namespace orv

#endif  // ORVVM_RECORDS
