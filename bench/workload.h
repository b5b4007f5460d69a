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

    // len elements from `range`: kDistinct samples drawn with the
    // harness's sampler (its samples uniform in value).  A call takes one
    // window of len elements from a pool of at least kDistinct, so that
    // successive calls on a short array see different values, as a
    // program's successive calls would: replaying the same thousand values
    // lets the branch predictor learn them, and a branchy loop would look
    // several times faster than it is.  An array longer than the pool
    // repeats it (drawing a million MPFR-free samples would cost more than
    // timing them; the period is far beyond anything a predictor learns).
    // A `specialFraction` of the drawn elements, at random places, is
    // replaced by special values that lie outside `range` (NaN,
    // infinities, zeros, denormals, huge values, from the harness's
    // special samples).
    static Workload sampled(const ExportInfo& e, const Range& range, int32_t len, double specialFraction,
                            uint64_t seed);
    static constexpr int32_t kDistinct = 1 << 16;

    // Window k of the pool (k below windows()): pointers into this
    // workload, valid while it lives (also after a move).  Every window
    // writes the same destination.
    OrvBenchArrays arrays(int32_t k = 0) const;
    int32_t windows() const { return windows_; }
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

    // Windows start on whole cache lines and step by the array's length
    // rounded up to them.
    static constexpr int32_t kWindowAlign = 64;

    const ExportInfo* e_;
    Buffer src1_, src2_, dst1_, dst2_;
    alignas(16) unsigned char constant_[16] = {};
    int32_t len_ = 0;
    int32_t windows_ = 1;
    size_t windowStep_ = 0;  // in bytes of the first source
};

// The special samples of a member that lie outside `range` in some input
// component (NaN counts as outside); the constant of a K shape is left out.
std::vector<Sample> specialsOutside(const ExportInfo& e, const Range& range);

}  // namespace orvbench
