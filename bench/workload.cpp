#include "workload.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <random>
#include <stdexcept>

namespace orvbench {
namespace {

using orvtest::Shape;

// Real components per argument value: two for complex values.
int componentsPerValue(const ExportInfo& e) { return e.isComplex() && e.shape != Shape::P ? 2 : 1; }

void putReal(unsigned char* p, double v, bool is64) {
    if (is64) {
        std::memcpy(p, &v, 8);
    } else {
        const float f = float(v);
        std::memcpy(p, &f, 4);
    }
}

double getReal(const unsigned char* p, bool is64) {
    if (is64) {
        double v;
        std::memcpy(&v, p, 8);
        return v;
    }
    float f;
    std::memcpy(&f, p, 4);
    return f;
}

}  // namespace

Workload::Buffer Workload::allocate(size_t bytes) {
    // 64-byte aligned, whole cache lines, touched once so that no page
    // fault lands in a timed call.
    const size_t rounded = (bytes + 63) / 64 * 64;
    auto* p = static_cast<unsigned char*>(std::aligned_alloc(64, rounded));
    if (!p) throw std::bad_alloc();
    std::memset(p, 0, rounded);
    return Buffer(p);
}

Workload::Workload(const ExportInfo& e, const std::vector<Sample>& samples) : e_(&e) {
    layOut(samples, int32_t(samples.size()));
}

void Workload::layOut(const std::vector<Sample>& tile, int32_t len) {
    if (tile.empty() || len <= 0) throw std::invalid_argument("a workload needs samples");
    const ExportInfo& e = *e_;
    const bool is64 = e.is64();
    const size_t rs = e.realSize();
    const int cv = componentsPerValue(e);
    const size_t srcBytes = size_t(len) * e.srcElemSize(), dstBytes = size_t(len) * e.dstElemSize();
    src1_ = allocate(srcBytes);
    if (e.shape == Shape::B) src2_ = allocate(srcBytes);
    dst1_ = allocate(dstBytes);
    if (e.shape == Shape::S) dst2_ = allocate(dstBytes);

    // The first tile element by element, then copies of it.
    const int32_t period = std::min<int32_t>(len, int32_t(tile.size()));
    for (int32_t i = 0; i < period; ++i)
        for (int c = 0; c < cv; ++c) {
            putReal(&src1_[(size_t(i) * cv + c) * rs], tile[i].in[c], is64);
            if (src2_) putReal(&src2_[(size_t(i) * cv + c) * rs], tile[i].in[cv + c], is64);
        }
    const size_t periodBytes = size_t(period) * e.srcElemSize();
    for (size_t done = periodBytes; done < srcBytes; done += periodBytes) {
        const size_t n = std::min(periodBytes, srcBytes - done);
        std::memcpy(&src1_[done], &src1_[0], n);
        if (src2_) std::memcpy(&src2_[done], &src2_[0], n);
    }
    // The K shape's constant is one value per call: the first sample's.
    if (e.shape == Shape::K)
        for (int c = 0; c < cv; ++c) putReal(constant_ + c * rs, tile[0].in[cv + c], is64);

    len_ = len;
}

Workload Workload::sampled(const ExportInfo& e, const Range& range, int32_t len, double specialFraction,
                           uint64_t seed) {
    const int32_t distinct = std::min(len, kDistinct);
    std::vector<Sample> tile = orvtest::sampleRange(e, range, distinct, seed);
    const std::vector<Sample> specials = specialsOutside(e, range);
    const int count = int(std::lround(specialFraction * distinct));
    if (count > 0 && !specials.empty()) {
        std::mt19937_64 rng(seed ^ 0x5bd1e995u);
        std::uniform_int_distribution<int32_t> place(0, distinct - 1);
        const int nc = e.shape == Shape::K ? e.inputComponents() / 2 : e.inputComponents();
        std::vector<char> taken(distinct, 0);
        for (int k = 0; k < count && k < distinct; ++k) {
            int32_t i = place(rng);
            while (taken[i]) i = (i + 1) % distinct;
            taken[i] = 1;
            for (int c = 0; c < nc; ++c) tile[i].in[c] = specials[k % specials.size()].in[c];
        }
    }
    Workload w(e);
    w.layOut(tile, len);
    return w;
}

std::vector<double> Workload::results() const {
    const ExportInfo& e = *e_;
    const bool is64 = e.is64();
    const size_t rs = e.realSize();
    const int oc = e.outputComponents();
    std::vector<double> out(size_t(len()) * oc);
    for (int32_t i = 0; i < len(); ++i)
        for (int c = 0; c < oc; ++c) {
            if (e.shape == Shape::S)
                out[size_t(i) * oc + c] = getReal(c == 0 ? &dst1_[i * rs] : &dst2_[i * rs], is64);
            else
                out[size_t(i) * oc + c] = getReal(&dst1_[(size_t(i) * oc + c) * rs], is64);
        }
    return out;
}

std::vector<Sample> specialsOutside(const ExportInfo& e, const Range& range) {
    const int nc = e.shape == Shape::K ? e.inputComponents() / 2 : e.inputComponents();
    std::vector<Sample> out;
    for (const Sample& s : orvtest::specialSamples(e)) {
        bool outside = false;
        for (int c = 0; c < nc; ++c)
            outside |= std::isnan(s.in[c]) || s.in[c] < range.lo(c) || s.in[c] > range.hi(c);
        if (outside) out.push_back(s);
    }
    return out;
}

}  // namespace orvbench
