// Polynomial fits for the table generators, in MPFR at 160 bits.
//
// A fit is Chebyshev interpolation: the polynomial of degree n through the
// n+1 Chebyshev nodes of [a, b], which for the smooth functions fitted here
// is within a small factor of the minimax polynomial.  It is expanded into
// monomials of the table's own variable at full precision and only then
// rounded, coefficient by coefficient, to the slots of the table.  The
// error a row reaches is measured afterwards on the rounded coefficients,
// exactly, at many points of its band, and printed next to the row.
#pragma once

#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <vector>

namespace fit {

constexpr mpfr_prec_t kPrec = 160;

// An MPFR number that frees itself.
class Big {
public:
    Big() { mpfr_init2(v_, kPrec); mpfr_set_zero(v_, 1); }
    Big(double d) { mpfr_init2(v_, kPrec); mpfr_set_d(v_, d, MPFR_RNDN); }
    Big(const Big& o) { mpfr_init2(v_, kPrec); mpfr_set(v_, o.v_, MPFR_RNDN); }
    Big& operator=(const Big& o) { mpfr_set(v_, o.v_, MPFR_RNDN); return *this; }
    ~Big() { mpfr_clear(v_); }
    mpfr_ptr get() { return v_; }
    mpfr_srcptr get() const { return v_; }
    double toDouble() const { return mpfr_get_d(v_, MPFR_RNDN); }

private:
    mpfr_t v_;
};

inline Big operator+(const Big& a, const Big& b) { Big r; mpfr_add(r.get(), a.get(), b.get(), MPFR_RNDN); return r; }
inline Big operator-(const Big& a, const Big& b) { Big r; mpfr_sub(r.get(), a.get(), b.get(), MPFR_RNDN); return r; }
inline Big operator*(const Big& a, const Big& b) { Big r; mpfr_mul(r.get(), a.get(), b.get(), MPFR_RNDN); return r; }
inline Big operator/(const Big& a, const Big& b) { Big r; mpfr_div(r.get(), a.get(), b.get(), MPFR_RNDN); return r; }

using Function = std::function<Big(const Big&)>;

inline uint64_t bitsOf(double d) {
    uint64_t b;
    __builtin_memcpy(&b, &d, 8);
    return b;
}
inline double fromBits(uint64_t b) {
    double d;
    __builtin_memcpy(&d, &b, 8);
    return d;
}

// The coefficients, lowest power first, of the degree-n polynomial in t
// that interpolates g at the Chebyshev nodes of [a, b].
inline std::vector<Big> chebyshevFit(const Function& g, double a, double b, int n) {
    Big mid = (Big(a) + Big(b)) / Big(2.0), half = (Big(b) - Big(a)) / Big(2.0);
    Big pi;
    mpfr_const_pi(pi.get(), MPFR_RNDN);
    std::vector<Big> u(n + 1), y(n + 1);
    for (int i = 0; i <= n; ++i) {
        Big angle = pi * Big(2.0 * i + 1) / Big(2.0 * (n + 1));
        mpfr_cos(u[i].get(), angle.get(), MPFR_RNDN);
        y[i] = g(mid + half * u[i]);
    }
    // Coefficients of p(u) = sum a_k T_k(u), with T_k as monomials in u.
    std::vector<std::vector<Big>> T(n + 1, std::vector<Big>(n + 1));
    T[0][0] = Big(1.0);
    if (n >= 1) T[1][1] = Big(1.0);
    for (int k = 2; k <= n; ++k)
        for (int j = 0; j <= k; ++j) {
            Big next = j > 0 ? Big(2.0) * T[k - 1][j - 1] : Big();
            T[k][j] = next - T[k - 2][j];
        }
    std::vector<Big> inU(n + 1);
    for (int k = 0; k <= n; ++k) {
        Big sum;
        for (int i = 0; i <= n; ++i) {
            // T_k(u_i) by the recurrence on the value.
            Big t0(1.0), t1 = u[i], tk = k == 0 ? t0 : t1;
            for (int m = 2; m <= k; ++m) {
                tk = Big(2.0) * u[i] * t1 - t0;
                t0 = t1;
                t1 = tk;
            }
            sum = sum + y[i] * tk;
        }
        Big ak = sum * Big(2.0) / Big(double(n + 1));
        if (k == 0) ak = ak / Big(2.0);
        for (int j = 0; j <= k; ++j) inU[j] = inU[j] + ak * T[k][j];
    }
    // u = (t - mid) / half: expand sum c_j u^j in powers of t.
    std::vector<Big> inT(n + 1);
    for (int j = 0; j <= n; ++j) {
        // c_j ((t - mid)/half)^j = c_j half^-j sum_i binom(j, i) t^i (-mid)^(j-i)
        Big scale = inU[j];
        for (int m = 0; m < j; ++m) scale = scale / half;
        Big binom(1.0);
        for (int i = 0; i <= j; ++i) {
            Big power(1.0);
            for (int m = 0; m < j - i; ++m) power = power * (Big() - mid);
            inT[i] = inT[i] + scale * binom * power;
            binom = binom * Big(double(j - i)) / Big(double(i + 1));
        }
    }
    return inT;
}

// A fit whose coefficients below power `fixedUpTo` are given: the rest fits
// (g(t) - fixed part) / t^fixedUpTo.
inline std::vector<Big> fitWithFixed(const Function& g, double a, double b, int n,
                                     const std::vector<Big>& fixed) {
    int m = int(fixed.size());
    Function rest = [&](const Big& t) {
        Big v = g(t), power(1.0);
        for (int k = 0; k < m; ++k) {
            v = v - fixed[k] * power;
            power = power * t;
        }
        return v / power;
    };
    std::vector<Big> tail = chebyshevFit(rest, a, b, n - m);
    std::vector<Big> all(fixed);
    all.insert(all.end(), tail.begin(), tail.end());
    return all;
}

// An odd fit of degree n (odd) on [0, b] with c1 given: (g(t)/t - c1)/t^2
// is fitted as a polynomial in s = t^2, so c0, c2, ... are exactly 0.
inline std::vector<Big> oddFit(const Function& g, double b, int n, const Big& c1) {
    Function inS = [&](const Big& s) {
        Big t;
        mpfr_sqrt(t.get(), s.get(), MPFR_RNDN);
        return (g(t) / t - c1) / s;
    };
    std::vector<Big> even = chebyshevFit(inS, 0.0, b * b, (n - 3) / 2);
    std::vector<Big> all(n + 1);
    all[1] = c1;
    for (size_t k = 0; k < even.size(); ++k) all[2 * k + 3] = even[k];
    return all;
}

// The largest relative error of sum c_k t^k against g on [a, b], on `points`
// evenly spaced points and the two ends, as log2 (so -60 means 2^-60).  The
// coefficients are exact (already rounded to what the table holds).
inline double log2RelativeError(const Function& g, const std::vector<Big>& c, double a, double b,
                                int points = 256) {
    Big worst;
    for (int i = 0; i <= points; ++i) {
        Big t = Big(a) + (Big(b) - Big(a)) * Big(double(i)) / Big(double(points));
        Big p;
        for (size_t k = c.size(); k-- > 0;) p = p * t + c[k];
        Big exact = g(t);
        if (mpfr_zero_p(exact.get())) continue;
        Big rel = (p - exact) / exact;
        mpfr_abs(rel.get(), rel.get(), MPFR_RNDN);
        if (mpfr_cmp(rel.get(), worst.get()) > 0) worst = rel;
    }
    if (mpfr_zero_p(worst.get())) return -999.0;
    Big l;
    mpfr_log2(l.get(), worst.get(), MPFR_RNDN);
    return std::ceil(l.toDouble() * 10.0) / 10.0;  // one decimal, rounded toward the larger error
}

// Round to a double; and split into a head of `headBits` significant bits
// cut toward zero and the double nearest to the rest.
inline double nearest(const Big& x) { return x.toDouble(); }
inline void split(const Big& x, int headBits, double& head, double& tail) {
    mpfr_t h;
    mpfr_init2(h, headBits);
    mpfr_set(h, x.get(), MPFR_RNDZ);
    head = mpfr_get_d(h, MPFR_RNDN);
    Big rest = x - Big(head);
    tail = rest.toDouble();
    mpfr_clear(h);
}

// Rows are printed as doubleFromBits(...) of their 64-bit patterns.
inline void printRow(const std::vector<double>& slots, const char* comment) {
    std::printf("    {");
    for (size_t k = 0; k < slots.size(); ++k) {
        if (k > 0) std::printf(k % 4 == 0 ? ",\n     " : ", ");
        std::printf("doubleFromBits(0x%016llX)", (unsigned long long)bitsOf(slots[k]));
    }
    std::printf("},  // %s\n", comment);
}

}  // namespace fit
