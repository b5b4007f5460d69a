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
    const int32_t period = int32_t(tile.size());
    const int32_t pool = std::max(len, period);
    const size_t srcBytes = size_t(pool) * e.srcElemSize(), dstBytes = size_t(len) * e.dstElemSize();
    src1_ = allocate(srcBytes);
    if (e.shape == Shape::B) src2_ = allocate(srcBytes);
    dst1_ = allocate(dstBytes);
    if (e.shape == Shape::S) dst2_ = allocate(dstBytes);

    // The tile in the harness's encoding, repeated to fill the pool.
    const size_t periodBytes = size_t(period) * e.srcElemSize();
    for (int k = 0; k < e.sourceCount(); ++k) {
        unsigned char* dst = (k == 0 ? src1_ : src2_).get();
        const std::vector<unsigned char> bytes = orvtest::sourceBytes(e, tile, k);
        for (size_t done = 0; done < srcBytes; done += periodBytes)
            std::memcpy(dst + done, bytes.data(), std::min(periodBytes, srcBytes - done));
    }
    // The K shape's constant is one value per call: the first sample's.
    orvtest::CallArgs args;
    orvtest::setConstant(e, tile, args);
    std::memcpy(constant_, args.constant, sizeof constant_);
    len_ = len;
    const size_t lenBytes = size_t(len) * e.srcElemSize();
    windowStep_ = (lenBytes + kWindowAlign - 1) / kWindowAlign * kWindowAlign;
    windows_ = int32_t((srcBytes - lenBytes) / windowStep_ + 1);
}

OrvBenchArrays Workload::arrays(int32_t k) const {
    const size_t offset = size_t(k % windows_) * windowStep_;
    const unsigned char* s2 = src2_ ? src2_.get() + offset : nullptr;
    return {src1_.get() + offset, s2, dst1_.get(), dst2_.get(), constant_, len_};
}

Workload Workload::sampled(const ExportInfo& e, const Range& range, int32_t len, double specialFraction,
                           uint64_t seed) {
    // The harness's sampler gives every other sample uniform in value and
    // the others uniform over the bit patterns; the latter crowd the tiny
    // magnitudes (half of them below 1e-19 for a range like [-1e3, 1e3]),
    // which is what an accuracy test wants and what ordinary data is not:
    // their products underflow to denormals, which the processor handles
    // slowly.  The arrays take the samples uniform in value.
    const int32_t distinct = kDistinct;
    const std::vector<Sample> drawn = orvtest::sampleRange(e, range, 2 * distinct, seed);
    std::vector<Sample> tile;
    tile.reserve(distinct);
    for (int32_t i = 0; i < distinct; ++i) tile.push_back(drawn[2 * size_t(i)]);
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
    std::vector<double> out(size_t(len()) * e_->outputComponents());
    orvtest::decodeResults(*e_, dst1_.get(), dst2_.get(), len(), out.data());
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
