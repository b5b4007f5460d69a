// The arrays one timed call works on: inputs drawn from a member's ordinary
// range (the first range of its accuracy record, sampled by the accuracy
// harness's own sampler), optionally with a fraction of special elements,
// laid out in the member's shape.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "exports.h"
#include "loops.h"
#include "measure.h"
#include "records.h"

namespace orvbench {

using orvtest::ExportInfo;
using orvtest::Range;
using orvtest::Sample;

class Workload {
public:
    // The samples laid out one per element (len = samples.size()).
    Workload(const ExportInfo& e, const std::vector<Sample>& samples);

    // len elements from `range`: at most kDistinct samples drawn with the
    // harness's sampler (its samples uniform in value) and repeated to fill
    // the arrays (drawing a million
    // MPFR-free samples would cost more than timing them; the repetition
    // period is far beyond anything a branch predictor learns).  A
    // `specialFraction` of the drawn elements, at random places, is
    // replaced by special values that lie outside `range` (NaN, infinities,
    // zeros, denormals, huge values, from the harness's special samples).
    static Workload sampled(const ExportInfo& e, const Range& range, int32_t len, double specialFraction,
                            uint64_t seed);
    static constexpr int32_t kDistinct = 1 << 16;

    // Pointers into this workload, valid while it lives (also after a move).
    OrvBenchArrays arrays() const {
        return {src1_.get(), src2_.get(), dst1_.get(), dst2_.get(), constant_, len_};
    }
    int32_t len() const { return len_; }
    // The results of the last call, outputComponents() per element.
    std::vector<double> results() const;

private:
    struct Free {
        void operator()(unsigned char* p) const { std::free(p); }
    };
    using Buffer = std::unique_ptr<unsigned char[], Free>;
    explicit Workload(const ExportInfo& e) : e_(&e) {}
    static Buffer allocate(size_t bytes);
    void layOut(const std::vector<Sample>& tile, int32_t len);

    const ExportInfo* e_;
    Buffer src1_, src2_, dst1_, dst2_;
    alignas(16) unsigned char constant_[16] = {};
    int32_t len_ = 0;
};

// The special samples of a member that lie outside `range` in some input
// component (NaN counts as outside); the constant of a K shape is left out.
std::vector<Sample> specialsOutside(const ExportInfo& e, const Range& range);

}  // namespace orvbench
