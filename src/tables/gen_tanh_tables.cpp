// Prints src/tables/tanh_tables.h: the piecewise polynomials of Tanh, one
// row per interval of |x|, fitted with MPFR at 256 bits.
//
// Intervals.  A row is picked from the high bits of x (the float's bits, or
// the double's high word): mask, subtract the base, clamp to [0, limit],
// shift.  Row 0 covers [0, v(base + step)), row i covers [v(base + i step),
// v(base + (i+1) step)), the last row everything from v(base + limit) (the
// top: 10 for 32f, 20 for 64f) on, where the row is c0 = 1 and nothing else.
//
// Fit.  Each row's free coefficients first interpolate tanh at the Chebyshev
// nodes of its interval, and then a few exchange steps (Remez) bring them to
// the best fit for relative error on a grid of 600 points: in the
// uncentred tiers (A11 degree 1, A21 degree 3, A24 degree 6) the polynomial
// is in a = |x|; in the centred ones (A26 = A50 degree 13, A53 degree 10)
// it is in t = a - o, o the interval's centre, with c0 = tanh o fixed (in
// A53 as a head, the nearest double, and a tail, the double nearest to the
// rest).  In row 0 the polynomial is fitted for relative error: c0 = 0 is
// fixed (and c1 = 1 in the centred tiers) and the rest interpolates
// (tanh a - c0 - c1 a) / a^s.  The coefficients are then rounded to doubles;
// the error printed for each tier is the largest relative difference
// between those rounded polynomials, evaluated exactly, and tanh, over 64
// points per row and the row's ends.
//
// Layout per row, in memory order (doubles):
//   A11: c0, c1.              A21: c0 .. c3.          A24: c0 .. c6, 0.
//   A50: c0 .. c13, o, 1.0 (the scale of t = a 1.0 - o).
//   A53: c0 tail, c0 head, c1 .. c10, -o, 1.0, 0, 0.
//
// Usage: gen_tanh_tables > src/tables/tanh_tables.h
#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr mpfr_prec_t kPrec = 256;

unsigned long long doubleBits(double d) {
    uint64_t b;
    std::memcpy(&b, &d, 8);
    return b;
}
double valueOf32(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}
double valueOf64High(uint32_t h) {
    uint64_t b = uint64_t(h) << 32;
    double d;
    std::memcpy(&d, &b, 8);
    return d;
}

struct Tier {
    const char* name;
    bool high64;          // the row comes from a double's high word
    uint32_t base, step, limit;
    int degree;
    bool centred;
    int width;            // doubles per row
    bool headTail;        // A53 layout
};

struct Mp {
    mpfr_t v;
    Mp() { mpfr_init2(v, kPrec); }
    Mp(const Mp& o) {
        mpfr_init2(v, kPrec);
        mpfr_set(v, o.v, MPFR_RNDN);
    }
    Mp& operator=(const Mp& o) {
        mpfr_set(v, o.v, MPFR_RNDN);
        return *this;
    }
    ~Mp() { mpfr_clear(v); }
};

// Solves the n x n system m c = r in place (Gaussian elimination with
// partial pivoting, at kPrec bits).
void solve(std::vector<std::vector<Mp>>& m, std::vector<Mp>& r) {
    int n = int(r.size());
    Mp f, t;
    for (int k = 0; k < n; ++k) {
        int p = k;
        for (int i = k + 1; i < n; ++i)
            if (mpfr_cmpabs(m[i][k].v, m[p][k].v) > 0) p = i;
        std::swap(m[k], m[p]);
        std::swap(r[k], r[p]);
        for (int i = k + 1; i < n; ++i) {
            mpfr_div(f.v, m[i][k].v, m[k][k].v, MPFR_RNDN);
            for (int j = k; j < n; ++j) {
                mpfr_mul(t.v, f.v, m[k][j].v, MPFR_RNDN);
                mpfr_sub(m[i][j].v, m[i][j].v, t.v, MPFR_RNDN);
            }
            mpfr_mul(t.v, f.v, r[k].v, MPFR_RNDN);
            mpfr_sub(r[i].v, r[i].v, t.v, MPFR_RNDN);
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        for (int j = k + 1; j < n; ++j) {
            mpfr_mul(t.v, m[k][j].v, r[j].v, MPFR_RNDN);
            mpfr_sub(r[k].v, r[k].v, t.v, MPFR_RNDN);
        }
        mpfr_div(r[k].v, r[k].v, m[k][k].v, MPFR_RNDN);
    }
}

// Remez exchange for relative error on coefficients c[s..d] of the
// polynomial in t on [tlo, thi] (c[0..s-1] fixed): reference points at the
// alternating extrema of the error on a grid, then the system with the
// levelled error E solved again.  Stops when the extrema no longer
// alternate enough (the interpolant is then kept as it stands).
void remez(std::vector<Mp>& c, int s, int d, double centre, double tlo, double thi) {
    const int n = d + 1 - s, grid = 600;
    std::vector<Mp> ts(grid + 1), fs(grid + 1);
    Mp x, y, t, p;
    for (int k = 0; k <= grid; ++k) {
        mpfr_set_d(ts[k].v, tlo, MPFR_RNDN);
        mpfr_set_d(x.v, (thi - tlo) / grid, MPFR_RNDN);
        mpfr_mul_ui(x.v, x.v, k == 0 && tlo == 0 ? 1 : k, MPFR_RNDN);  // row 0: not at t = 0
        if (k == 0 && tlo == 0) mpfr_div_ui(x.v, x.v, 64, MPFR_RNDN);
        mpfr_add(ts[k].v, ts[k].v, x.v, MPFR_RNDN);
        mpfr_add_d(x.v, ts[k].v, centre, MPFR_RNDN);
        mpfr_tanh(fs[k].v, x.v, MPFR_RNDN);
    }
    for (int iter = 0; iter < 8; ++iter) {
        std::vector<double> e(grid + 1);
        for (int k = 0; k <= grid; ++k) {
            mpfr_set_ui(p.v, 0, MPFR_RNDN);
            for (int i = d; i >= 0; --i) {
                mpfr_mul(p.v, p.v, ts[k].v, MPFR_RNDN);
                mpfr_add(p.v, p.v, c[i].v, MPFR_RNDN);
            }
            mpfr_sub(p.v, fs[k].v, p.v, MPFR_RNDN);
            mpfr_div(p.v, p.v, fs[k].v, MPFR_RNDN);
            e[k] = mpfr_get_d(p.v, MPFR_RNDN);
        }
        std::vector<int> ext;  // the largest |e| of each run of one sign
        for (int k = 0; k <= grid; ++k) {
            if (!ext.empty() && (e[k] < 0) == (e[ext.back()] < 0)) {
                if (std::fabs(e[k]) > std::fabs(e[ext.back()])) ext.back() = k;
            } else {
                ext.push_back(k);
            }
        }
        if (int(ext.size()) < n + 1) return;
        while (int(ext.size()) > n + 1) {
            if (std::fabs(e[ext.front()]) < std::fabs(e[ext.back()]))
                ext.erase(ext.begin());
            else
                ext.pop_back();
        }
        std::vector<std::vector<Mp>> m(n + 1, std::vector<Mp>(n + 1));
        std::vector<Mp> r(n + 1);
        for (int i = 0; i <= n; ++i) {
            const Mp& ti = ts[ext[i]];
            mpfr_set(r[i].v, fs[ext[i]].v, MPFR_RNDN);
            mpfr_set_ui(t.v, 1, MPFR_RNDN);
            for (int j = 0; j <= d; ++j) {
                if (j < s) {
                    mpfr_mul(y.v, c[j].v, t.v, MPFR_RNDN);
                    mpfr_sub(r[i].v, r[i].v, y.v, MPFR_RNDN);
                } else {
                    mpfr_set(m[i][j - s].v, t.v, MPFR_RNDN);
                }
                mpfr_mul(t.v, t.v, ti.v, MPFR_RNDN);
            }
            mpfr_set(m[i][n].v, fs[ext[i]].v, MPFR_RNDN);
            if (i % 2) mpfr_neg(m[i][n].v, m[i][n].v, MPFR_RNDN);
        }
        solve(m, r);
        for (int j = 0; j < n; ++j) mpfr_set(c[s + j].v, r[j].v, MPFR_RNDN);
    }
}

struct Row {
    double lo, hi, centre;
    std::vector<double> c;  // c0 .. c_degree (c0 is the head in A53)
    double c0Tail = 0;
};

// Fits one row: coefficients s.. of the polynomial in t = a - centre.
Row fitRow(const Tier& tier, double lo, double hi, bool first) {
    Row row{lo, hi, tier.centred && !first ? (lo + hi) / 2 : 0.0, {}, 0};
    int d = tier.degree;
    std::vector<Mp> c(d + 1);
    int s = 0;
    Mp x, y, t;
    if (first) {
        mpfr_set_ui(c[0].v, 0, MPFR_RNDN);
        s = 1;
        if (tier.centred) {
            mpfr_set_ui(c[1].v, 1, MPFR_RNDN);
            s = 2;
        }
    } else if (tier.centred) {
        mpfr_set_d(x.v, row.centre, MPFR_RNDN);
        mpfr_tanh(c[0].v, x.v, MPFR_RNDN);
        s = 1;
    }
    int n = d + 1 - s;
    double tlo = lo - row.centre, thi = hi - row.centre;
    std::vector<std::vector<Mp>> m(n, std::vector<Mp>(n));
    std::vector<Mp> r(n);
    Mp pi, node;
    mpfr_const_pi(pi.v, MPFR_RNDN);
    for (int k = 0; k < n; ++k) {
        // node = mid + half cos((2k+1) pi / 2n)
        mpfr_mul_ui(node.v, pi.v, 2 * k + 1, MPFR_RNDN);
        mpfr_div_ui(node.v, node.v, 2 * n, MPFR_RNDN);
        mpfr_cos(node.v, node.v, MPFR_RNDN);
        mpfr_mul_d(node.v, node.v, (thi - tlo) / 2, MPFR_RNDN);
        mpfr_add_d(node.v, node.v, (thi + tlo) / 2, MPFR_RNDN);
        // The middle node of an odd count is t = 0 (cos pi/2 comes out as a
        // rounding residue): there g is its limit, tanh'(o) = 1 - tanh^2 o
        // (only the centred rows, where s = 1, have such a node).
        if (mpfr_get_exp(node.v) < -kPrec / 2) {
            mpfr_set_ui(node.v, 0, MPFR_RNDN);
            mpfr_sqr(y.v, c[0].v, MPFR_RNDN);
            mpfr_ui_sub(r[k].v, 1, y.v, MPFR_RNDN);
            for (int j = 0; j < n; ++j) mpfr_set_ui(m[k][j].v, j == 0 ? 1 : 0, MPFR_RNDN);
            continue;
        }
        // g(t) = (tanh(centre + t) - sum_{i<s} c_i t^i) / t^s
        mpfr_add_d(x.v, node.v, row.centre, MPFR_RNDN);
        mpfr_tanh(y.v, x.v, MPFR_RNDN);
        mpfr_set_ui(t.v, 1, MPFR_RNDN);
        for (int i = 0; i < s; ++i) {
            Mp term;
            mpfr_mul(term.v, c[i].v, t.v, MPFR_RNDN);
            mpfr_sub(y.v, y.v, term.v, MPFR_RNDN);
            mpfr_mul(t.v, t.v, node.v, MPFR_RNDN);
        }
        mpfr_div(r[k].v, y.v, t.v, MPFR_RNDN);
        mpfr_set_ui(t.v, 1, MPFR_RNDN);
        for (int j = 0; j < n; ++j) {
            mpfr_set(m[k][j].v, t.v, MPFR_RNDN);
            mpfr_mul(t.v, t.v, node.v, MPFR_RNDN);
        }
    }
    solve(m, r);
    for (int j = 0; j < n; ++j) mpfr_set(c[s + j].v, r[j].v, MPFR_RNDN);
    remez(c, s, d, row.centre, tlo, thi);
    for (int i = 0; i <= d; ++i) row.c.push_back(mpfr_get_d(c[i].v, MPFR_RNDN));
    if (tier.headTail) {
        Mp rest;
        mpfr_sub_d(rest.v, c[0].v, row.c[0], MPFR_RNDN);
        row.c0Tail = mpfr_get_d(rest.v, MPFR_RNDN);
    }
    return row;
}

// Largest relative error of the rounded row against tanh.
double rowError(const Row& row) {
    double worst = 0;
    Mp x, t, p, term, exact;
    for (int k = 0; k <= 64; ++k) {
        double a = row.lo + (row.hi - row.lo) * k / 64.0;
        if (a == 0) continue;
        if (k == 64) a = std::nextafter(row.hi, 0.0);
        mpfr_set_d(x.v, a, MPFR_RNDN);
        mpfr_sub_d(t.v, x.v, row.centre, MPFR_RNDN);
        mpfr_set_ui(p.v, 0, MPFR_RNDN);
        for (int i = int(row.c.size()) - 1; i >= 0; --i) {
            mpfr_mul(p.v, p.v, t.v, MPFR_RNDN);
            mpfr_add_d(p.v, p.v, row.c[i], MPFR_RNDN);
        }
        mpfr_add_d(p.v, p.v, row.c0Tail, MPFR_RNDN);
        mpfr_tanh(exact.v, x.v, MPFR_RNDN);
        mpfr_sub(p.v, p.v, exact.v, MPFR_RNDN);
        mpfr_div(p.v, p.v, exact.v, MPFR_RNDN);
        worst = std::fmax(worst, std::fabs(mpfr_get_d(p.v, MPFR_RNDN)));
    }
    return worst;
}

void printTier(const Tier& tier) {
    int rows = int(tier.limit / tier.step) + 1;
    std::vector<Row> all;
    double worst = 0;
    auto v = [&](uint32_t b) { return tier.high64 ? valueOf64High(b) : valueOf32(b); };
    for (int i = 0; i < rows - 1; ++i) {
        double lo = i == 0 ? 0.0 : v(tier.base + uint32_t(i) * tier.step);
        double hi = v(tier.base + uint32_t(i + 1) * tier.step);
        all.push_back(fitRow(tier, lo, hi, i == 0));
        worst = std::fmax(worst, rowError(all.back()));
    }
    Row last{v(tier.base + tier.limit), INFINITY, 0, std::vector<double>(tier.degree + 1, 0.0), 0};
    last.c[0] = 1.0;
    all.push_back(last);
    std::printf("// %s: %d rows of %d doubles, degree %d; fitted rows within %.3g = 2^%.2f relative of tanh.\n",
                tier.name, rows, tier.width, tier.degree, worst, std::log2(worst));
    std::printf("alignas(16) inline constexpr double kTanh%s[%d][%d] = {\n", tier.name, rows, tier.width);
    for (const Row& row : all) {
        std::vector<double> out;
        if (tier.headTail) {
            out.push_back(row.c0Tail);
            for (double c : row.c) out.push_back(c);
            out.push_back(-row.centre);
            out.push_back(1.0);
        } else {
            out = row.c;
            if (tier.centred) {
                out.push_back(row.centre);
                out.push_back(1.0);
            }
        }
        while (int(out.size()) < tier.width) out.push_back(0.0);
        std::printf("    {");
        for (size_t i = 0; i < out.size(); ++i)
            std::printf("%sdoubleFromBits(0x%016llX)", i == 0 ? "" : i % 2 == 0 ? ",\n     " : ", ",
                        doubleBits(out[i]));
        std::printf("},\n");
    }
    std::printf("};\n\n");
}

}  // namespace

int main() {
    std::printf(
        "// Generated by src/tables/gen_tanh_tables.cpp (no arguments); do not edit by hand.\n"
        "//\n"
        "// Tanh as a piecewise polynomial in |x|, one row per interval of the high bits; the\n"
        "// intervals, the fit and the layouts are stated in the generator.\n"
        "#pragma once\n\n#include \"frame/bits.h\"\n\nnamespace orv::tables {\n\n");
    const Tier tiers[] = {
        {"A11", false, 0x3CF80000, 0x00080000, 0x04280000, 1, false, 2, false},
        {"A21", false, 0x3CF80000, 0x00080000, 0x04280000, 3, false, 4, false},
        {"A24", false, 0x3DE00000, 0x00200000, 0x03400000, 6, false, 8, false},
        {"A50", true, 0x3FBC0000, 0x00040000, 0x00780000, 13, true, 16, false},
        {"A53", true, 0x3FBE0000, 0x00020000, 0x00760000, 10, true, 16, true},
    };
    for (const Tier& t : tiers) printTier(t);
    std::printf("}  // namespace orv::tables\n");
    return 0;
}
