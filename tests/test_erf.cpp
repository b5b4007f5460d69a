// Erf and Erfc: the tables' fixed rows, band boundaries and saturation of
// every tier, the odd symmetry bit for bit, the far positive tail of Erfc
// with its underflow warning, and the negative side near 2.
#include <cmath>
#include <random>
#include <vector>

#include "tables/erf_tables.h"
#include "tables/erfc_tables.h"
#include "testing.h"

using namespace orvtest;

namespace {

template <class T>
using Fn = OrvStatus (*)(const T*, T*, int32_t);

template <class T>
struct Member {
    const char* name;
    Fn<T> fn;
    double bound;  // ulps
};
const Member<float> kErf32[] = {
    {"A11", orvsErf_32f_A11, 4096}, {"A21", orvsErf_32f_A21, 4}, {"A24", orvsErf_32f_A24, 1}};
const Member<double> kErf64[] = {
    {"A26", orvsErf_64f_A26, 1 << 27}, {"A50", orvsErf_64f_A50, 4}, {"A53", orvsErf_64f_A53, 1}};
const Member<float> kErfc32[] = {
    {"A11", orvsErfc_32f_A11, 8192}, {"A21", orvsErfc_32f_A21, 4}, {"A24", orvsErfc_32f_A24, 1}};
const Member<double> kErfc64[] = {
    {"A26", orvsErfc_64f_A26, 1 << 27}, {"A50", orvsErfc_64f_A50, 4}, {"A53", orvsErfc_64f_A53, 1}};

template <class T>
T one(Fn<T> fn, T x, OrvStatus* status = nullptr) {
    T y;
    OrvStatus s = fn(&x, &y, 1);
    if (status) *status = s;
    return y;
}

// Error in ulps of the result's binade (the subnormal ulp below the
// smallest normal), against erfl/erfcl in x87 extended precision, whose
// own error is far below what is asserted here.
template <class T>
double ulps(T y, long double exact) {
    const int digits = std::numeric_limits<T>::digits;
    long double magnitude = std::fabs(exact);
    int e = magnitude > 0 ? std::ilogb(magnitude) : 0;
    e = std::max(e, std::numeric_limits<T>::min_exponent - 1);
    return double(std::fabs((long double)y - exact) / std::ldexp(1.0L, e - digits + 1));
}

template <class T>
void expectErfNear(const Member<T>& m, T x) {
    EXPECT_LT(ulps(one(m.fn, x), erfl((long double)x)), m.bound) << m.name << " x = " << x;
}
template <class T>
void expectErfcNear(const Member<T>& m, T x) {
    EXPECT_LT(ulps(one(m.fn, x), erfcl((long double)x)), m.bound) << m.name << " x = " << x;
}

// The lower edges of the bands of a table with `perBinade` bands per
// binade from 2^e0 up to `top`.
std::vector<double> bandEdges(int perBinade, int e0, double top) {
    std::vector<double> edges;
    for (int e = e0;; ++e)
        for (int m = 0; m < perBinade; ++m) {
            double edge = std::ldexp(1.0 + double(m) / perBinade, e);
            if (edge >= top) return edges;
            edges.push_back(edge);
        }
}

template <class T, size_t N>
void expectRow(const T (&row)[N], std::initializer_list<uint64_t> expected) {
    size_t k = 0;
    for (uint64_t b : expected) EXPECT_EQ(bits(double(row[k++])), b) << "slot " << k - 1;
}

}  // namespace

TEST(ErfTables, FixedRowsSaturationRowsAndOddRowZero) {
    using namespace orv::tables;
    expectRow(kErfRows21[0], {0, 0x3FF20DD75219A6F2, 0xBECB2F12984E1F1F, 0xBFD80F2DA9B2F44B});
    expectRow(kErfRows21[112], {0x3FEFFED3E74EFF52, 0x3F1B9A61E1B98E36, 0xBEFB1BDE66DDD273, 0x3EC1C3FFBBACED77});
    expectRow(kErfRows24[0], {0, 0x3FF20DD75045FEAD, 0xBE5E800F127E5583, 0xBFD812694AE6167A, 0xBF17C198EA9C0C06,
                              0x3FBD3EBD3A77A98E, 0xBF847870EF12A536, 0});
    expectRow(kErfRows26[1], {0x3FC42D7FC2F64959, 0x3FF1B357141D95D5, 0xBFC3E9C1F6A14540, 0xBFD6AAD45897F446,
                              0x3FB3A68D05F5F629, 0x3FBA186D4FEA9F46, 0xBF99D9B1A3E22724, 0xBF97D11BBFDE9CB6, 0, 0,
                              0, 0, 0, 0, 0x3FC2000000000000, 0x3FF0000000000000});
    expectRow(kErfRows53[1], {0x3C39587FFB20C7E1, 0x3FC311FC15F56D14, 0x3FF1BD07CDD189AC, 0xBFC2D8D84AAEA247,
                              0xBFD6D11B7F1E51B6, 0x3FB2A01B7F8DCF39, 0x3FBA6405EF5DA631, 0xBF988A5C3FC74EC8,
                              0xBF9833EA26C21EA1, 0x3F783FC6728C6713, 0x3F721BB4F0ED7FA3, 0xBF532A26D86DF1CF,
                              0xBFC1000000000000, 0, 0, 0});
    // Saturation rows: c0 (its head in A53) 1, all else 0, s = 0 too.
    auto saturated = [](const double* row, int n, int oneAt) {
        for (int k = 0; k < n; ++k) EXPECT_EQ(row[k], k == oneAt ? 1.0 : 0.0) << "slot " << k;
    };
    saturated(kErfRows21[113], 4, 0);
    saturated(kErfRows24[21], 8, 0);
    saturated(kErfRows26[23], 16, 0);
    saturated(kErfRows50[23], 16, 0);
    saturated(kErfRows53[45], 16, 1);
    // Row 0 of the 64-bit tiers: odd in A26 and A50 (o = 0, s = 1); c0 = 0
    // and centre 0 in A53.
    for (const auto* row : {kErfRows26[0], kErfRows50[0]}) {
        for (int k = 0; k < 14; k += 2) EXPECT_EQ(bits(row[k]), 0u) << "even slot " << k;
        EXPECT_EQ(row[14], 0.0);
        EXPECT_EQ(row[15], 1.0);
    }
    EXPECT_EQ(bits(kErfRows53[0][0]) | bits(kErfRows53[0][1]) | bits(kErfRows53[0][12]), 0u);
}

TEST(ErfcTables, FixedRowsAndRowZero) {
    using namespace orv::tables;
    expectRow(kErfcRows21[0], {0x3FF0000000000000, 0xBFF20DD750429B6D, 0x3FF0000000000000, 0xBFE812746B0379E7});
    expectRow(kErfcRows21[1], {0x3FEFFFFFEE9B5096, 0xBFF20DCEDB24785B, 0x3FEFF9D27F94B1CA, 0xBFE710BE147F4F30});
    expectRow(kErfcRows24[1], {0x3FE8A6ADCDA2EA24, 0xBFE7C857B9B0D5CD, 0x3FE2B497DC3CBDD6, 0xBFD979956DBC9269,
                               0x3FCF09FAECE3FF8B, 0xBFC13372E05C4D0F, 0x3FB00A95E62788C3, 0x3FD0000000000000});
    expectRow(kErfcRows50[1], {0x3FE8A6ADCDA2EA92, 0xBFE7C857B9B3C191, 0x3FE2B497DF35FA2E, 0xBFD97997AD330408,
                               0x3FCF0AC9D31F3350, 0xBFC146985BD8E066, 0x3FB1D0C27D6E67A8, 0xBFA132DB7ACB637B,
                               0x3F8F54CDB1D0F4F4, 0xBF7B1807A32FA8E0, 0x3F6658E54554F04D, 0xBF5182BE73F6869D,
                               0x3F372A1D51BC2F81, 0, 0, 0});
    expectRow(kErfcRows53[1], {0x3EACDA2EA91E4C1A, 0x3FE8A6AC00000000, 0xBEAB9B3C19130FBA, 0xBFE7C85600000000,
                               0x3FE2B497DF35FA2E, 0xBFD97997AD330408, 0x3FCF0AC9D31F3359, 0xBFC146985BD8E471,
                               0x3FB1D0C27D709EC2, 0xBFA132DB7B9B1404, 0x3F8F54CE19C83BFD, 0xBF7B18197B6A1756,
                               0x3F665AF62B182C81, 0xBF51AA38937D0FC0, 0x3F3A98431ADC5DF5, 0xBF20DF29668A70AE});
    // Row 0: G(0) = 1 and G'(0) = -2/sqrt(pi).
    const uint64_t slope = 0xBFF20DD750429B6D;
    EXPECT_EQ(kErfcRows24[0][0], 1.0);
    EXPECT_EQ(bits(kErfcRows24[0][1]), slope);
    EXPECT_EQ(kErfcRows50[0][0], 1.0);
    EXPECT_EQ(bits(kErfcRows50[0][1]), slope);
    EXPECT_EQ(kErfcRows53[0][1] + kErfcRows53[0][0], 1.0);
    EXPECT_EQ(bits(kErfcRows53[0][3] + kErfcRows53[0][2]), slope);
    EXPECT_EQ(kErfcCentres[27], 24.0);
}

// Both sides of every band edge of every tier are within the tier.
TEST(Erf, BandEdgesWithinTier) {
    const std::vector<double> edges21 = bandEdges(16, -5, 4.0), edges24 = bandEdges(4, -3, 4.0),
                              edges26 = bandEdges(4, -3, 6.0), edges53 = bandEdges(8, -3, 6.0);
    const std::vector<double>* edges32[] = {&edges21, &edges21, &edges24};
    const std::vector<double>* edges64[] = {&edges26, &edges26, &edges53};
    for (int t = 0; t < 3; ++t) {
        for (double edge : *edges32[t])
            for (float x : {float(edge), std::nextafter(float(edge), 0.0f)}) expectErfNear(kErf32[t], x);
        for (double edge : *edges64[t])
            for (double x : {edge, std::nextafter(edge, 0.0)}) expectErfNear(kErf64[t], x);
    }
}

// The saturation point of each tier: the value below it still comes from
// the last band, and from it on, up to the largest finite value and the
// infinities, the result is +-1 exactly; a NaN stays a NaN.
TEST(Erf, SaturationInfinitiesAndNaN) {
    const float saturation32[] = {std::nextafter(3.0f, 4.0f), 4.0f, 4.0f};
    for (int t = 0; t < 3; ++t) {
        const auto& m = kErf32[t];
        float below = std::nextafter(saturation32[t], 0.0f);
        expectErfNear(m, below);
        for (float x : {saturation32[t], 5.5f, 1e30f, FLT_MAX, INFINITY}) {
            EXPECT_EQ(one(m.fn, x), 1.0f) << m.name << " " << x;
            EXPECT_EQ(one(m.fn, -x), -1.0f) << m.name << " " << x;
        }
        float nan = f32(0xFFC12345);
        EXPECT_TRUE(std::isnan(one(m.fn, nan))) << m.name;
    }
    // A11 takes 3.0 itself from its polynomial.
    EXPECT_LT(one(orvsErf_32f_A11, 3.0f), 1.0f);
    EXPECT_SAME_BITS(one(orvsErf_32f_A21, f32(0x7F800001)), f32(0x7FC00001));  // quieted, payload kept
    for (const auto& m : kErf64) {
        expectErfNear(m, std::nextafter(6.0, 0.0));
        for (double x : {6.0, 27.0, 1e300, DBL_MAX, double(INFINITY)}) {
            EXPECT_EQ(one(m.fn, x), 1.0) << m.name << " " << x;
            EXPECT_EQ(one(m.fn, -x), -1.0) << m.name << " " << x;
        }
        for (uint64_t nan : {0x7FF0000000000001ull, 0xFFF8000000ABCDEFull})
            EXPECT_EQ(bits(one(m.fn, f64(nan))), nan) << m.name;  // the input's bits unchanged
    }
}

// erf(-x) = -erf(x) bit for bit, zeros keep their sign, and tiny and
// subnormal arguments give 2x/sqrt(pi) (A53 by its tiny rule, rounded
// once).
TEST(Erf, OddSymmetryZerosAndTinyArguments) {
    std::mt19937 gen(15);
    std::vector<float> x32;
    std::vector<double> x64;
    for (int i = 0; i < 4000; ++i) {
        x32.push_back(std::ldexp(std::uniform_real_distribution<float>(1, 2)(gen), int(gen() % 160) - 150));
        x64.push_back(std::ldexp(std::uniform_real_distribution<double>(1, 2)(gen), int(gen() % 1090) - 1075));
    }
    auto run = [](auto fn, auto x) {
        decltype(x) y(x.size());
        fn(x.data(), y.data(), int32_t(x.size()));
        return y;
    };
    auto negated = [](auto x) {
        for (auto& v : x) v = -v;
        return x;
    };
    for (const auto& m : kErf32) {
        auto plus = run(m.fn, x32), minus = run(m.fn, negated(x32));
        for (size_t i = 0; i < x32.size(); ++i) ASSERT_SAME_BITS(minus[i], -plus[i]) << m.name << " " << x32[i];
        EXPECT_SAME_BITS(one(m.fn, -0.0f), -0.0f);
        EXPECT_SAME_BITS(one(m.fn, 0.0f), 0.0f);
    }
    for (const auto& m : kErf64) {
        auto plus = run(m.fn, x64), minus = run(m.fn, negated(x64));
        for (size_t i = 0; i < x64.size(); ++i) ASSERT_SAME_BITS(minus[i], -plus[i]) << m.name << " " << x64[i];
        EXPECT_SAME_BITS(one(m.fn, -0.0), -0.0);
        EXPECT_SAME_BITS(one(m.fn, 0.0), 0.0);
    }
    // A53 around 2^-1015, where row 0 takes over from the tiny rule, and
    // deep in the subnormals.
    const Member<double>& a53 = kErf64[2];
    for (double x : {0x1p-1015, std::nextafter(0x1p-1015, 0.0), 0x1p-1022, std::nextafter(0x1p-1022, 0.0), 0x1p-1030,
                     0x1p-1034, std::nextafter(0x1p-1034, 0.0), 0x1p-1060, 0x1p-1074, 3 * 0x1p-1074}) {
        EXPECT_LE(ulps(one(a53.fn, x), erfl((long double)x)), 0.5001) << x;
        EXPECT_SAME_BITS(one(a53.fn, -x), -one(a53.fn, x));
    }
}

// The far positive tail: subnormal results, their warning only from the
// twin and the tail, and +0 from the zero point on.
TEST(Erfc, UnderflowThresholdAndSubnormalResults) {
    for (const auto& m : kErfc32) {
        OrvStatus s;
        float tail = one(m.fn, 9.5f, &s);
        EXPECT_EQ(s, orvStatusUnderflow) << m.name;
        EXPECT_GT(tail, 0.0f);
        EXPECT_LT(tail, FLT_MIN);
        std::vector<float> block(m.fn == orvsErfc_32f_A11 ? 8 : 4, 1.0f), out(block.size());
        block[1] = 9.5f;
        EXPECT_EQ(m.fn(block.data(), out.data(), int32_t(block.size())), orvStatusOk) << m.name;
        EXPECT_SAME_BITS(out[1], tail);
        // The warning's first argument, and the float below it.
        one(m.fn, f32(0x41131CE0), &s);
        EXPECT_EQ(s, orvStatusUnderflow) << m.name;
        one(m.fn, f32(0x41131CDF), &s);
        EXPECT_EQ(s, orvStatusOk) << m.name;
        EXPECT_EQ(one(m.fn, 10.5f, &s), 0.0f);
        EXPECT_EQ(s, orvStatusUnderflow);
        EXPECT_EQ(one(m.fn, INFINITY, &s), 0.0f);
        EXPECT_EQ(s, orvStatusOk);
        if (m.fn == orvsErfc_32f_A11) continue;
        for (float x = 9.2f; x < 10.05f; x += 0.0173f) expectErfcNear(m, x);
    }
    // A53 gives subnormals below 27.226017 without a warning; A50 warns
    // from 26.543258 on.
    OrvStatus s;
    double at27 = one(orvsErfc_64f_A53, 27.0, &s);
    EXPECT_EQ(s, orvStatusOk);
    EXPECT_GT(at27, 0.0);
    EXPECT_LT(at27, DBL_MIN);
    one(orvsErfc_64f_A50, 27.0, &s);
    EXPECT_EQ(s, orvStatusUnderflow);
    one(orvsErfc_64f_A50, f64(0x403A8B12FC6E4891), &s);
    EXPECT_EQ(s, orvStatusOk);
    one(orvsErfc_64f_A50, f64(0x403A8B12FC6E4892), &s);
    EXPECT_EQ(s, orvStatusUnderflow);
    one(orvsErfc_64f_A53, f64(0x403B39DC41E48BFC), &s);
    EXPECT_EQ(s, orvStatusOk);
    EXPECT_EQ(one(orvsErfc_64f_A53, f64(0x403B39DC41E48BFD), &s), 0.0);
    EXPECT_EQ(s, orvStatusUnderflow);
    for (const auto& m : kErfc64) {
        EXPECT_EQ(one(m.fn, f64(0x403B39DC41E48BFD)), 0.0) << m.name;
        EXPECT_EQ(one(m.fn, double(INFINITY), &s), 0.0);
        EXPECT_EQ(s, orvStatusOk);
        for (double x = 26.0; x < 27.226; x += 0.0131) expectErfcNear(m, x);
    }
}

// Zeros give 1, the negative side approaches 2 and reaches it exactly,
// erfc(-x) + erfc(x) = 2, and NaNs come back as each tier says.
TEST(Erfc, NegativeSideZerosAndNaN) {
    // A11 makes no exception of zero: its one polynomial gives G(0) to its
    // 11 bits, and -0 counts as negative (2 - G(0)).
    expectErfcNear(kErfc32[0], 0.0f);
    expectErfcNear(kErfc32[0], -0.0f);
    for (const auto& m : kErfc32) {
        if (m.fn != orvsErfc_32f_A11) {
            EXPECT_EQ(one(m.fn, 0.0f), 1.0f);
            EXPECT_EQ(one(m.fn, -0.0f), 1.0f);
            EXPECT_EQ(one(m.fn, f32(0xC07547CA)), 2.0f);  // -3.83250666
        }
        for (float x : {3.9f, 5.0f, 10.06f, 1e20f, FLT_MAX, INFINITY}) EXPECT_EQ(one(m.fn, -x), 2.0f) << m.name << x;
        for (float x = 0.01f; x < 3.8f; x *= 1.37f) {
            expectErfcNear(m, -x);
            EXPECT_LE(std::fabs(double(one(m.fn, -x)) + one(m.fn, x) - 2.0), 2 * m.bound * 0x1p-23) << m.name << x;
        }
    }
    for (const auto& m : kErfc64) {
        EXPECT_EQ(one(m.fn, 0.0), 1.0);
        EXPECT_EQ(one(m.fn, -0.0), 1.0);
        for (double x : {6.5, 27.3, 1e300, DBL_MAX, double(INFINITY)}) EXPECT_EQ(one(m.fn, -x), 2.0) << m.name << x;
        for (double x = 0.01; x < 6.0; x *= 1.29) {
            expectErfcNear(m, -x);
            EXPECT_LE(std::fabs(one(m.fn, -x) + one(m.fn, x) - 2.0), 2 * m.bound * 0x1p-52) << m.name << x;
        }
    }
    float snan32 = f32(0x7F812345);
    EXPECT_SAME_BITS(one(orvsErfc_32f_A11, snan32), snan32);
    EXPECT_SAME_BITS(one(orvsErfc_32f_A21, snan32), f32(0x7FC12345));
    EXPECT_SAME_BITS(one(orvsErfc_32f_A24, snan32), f32(0x7FC12345));
    double snan64 = f64(0x7FF0000000012345);
    EXPECT_SAME_BITS(one(orvsErfc_64f_A26, snan64), snan64);
    EXPECT_SAME_BITS(one(orvsErfc_64f_A50, snan64), snan64);
    EXPECT_SAME_BITS(one(orvsErfc_64f_A53, snan64), f64(0x7FF8000000012345));
}
