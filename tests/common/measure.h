// Running a member over many inputs and measuring its error against the
// MPFR reference: the core of the accuracy tests and of the report.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "exports.h"
#include "records.h"

namespace orvtest {

// One element's real input components, in argument order (for K the
// constant comes last).  Values are exactly representable in the member's
// real type.
struct Sample {
    double in[4] = {};
};

// Uniform samples of a range: half uniform in value, half uniform over the
// bit patterns between the bounds (so every binade gets its share).
std::vector<Sample> sampleRange(const ExportInfo& e, const Range& r, int count, uint64_t seed);
// Samples uniform in value only, all of them ordinary values when the range
// is the member's ordinary range (no tiny ones, as bit patterns would give).
std::vector<Sample> sampleValues(const ExportInfo& e, const Range& r, int count, uint64_t seed);
// Zeros, denormals, the normal limits, one, the largest finite values,
// infinities and NaN, in every component.
std::vector<Sample> specialSamples(const ExportInfo& e);

// The inputs the accuracy of a member is measured on, in groups: its
// special values, each sampled range of its record (perRange samples, the
// seeds fixed by the member's name), and glibc's hard cases; the inputs the
// record excludes are left out.
std::vector<std::vector<Sample>> accuracySamples(const ExportInfo& e, const AccuracyRecord& r, int perRange);

// glibc's correctly rounded test vectors for the member's family and type,
// when ../shared/peer-vectors/glibc is present: inputs and the expected
// outputs as the member's real type.  `available` is false when the folder
// is absent.
struct PeerCase {
    Sample sample;
    double expected[2] = {};
    bool ignoreZeroInfSign = false;
};
struct PeerVectors {
    bool available = false;
    std::string file;
    std::vector<PeerCase> cases;
};
PeerVectors peerVectors(const ExportInfo& e);

// The bytes of source array k (0 or 1) of a call on the samples (empty
// values for a source the shape lacks), and the K shape's constant, taken
// from the first sample.
std::vector<unsigned char> sourceBytes(const ExportInfo& e, const std::vector<Sample>& s, int k);
void setConstant(const ExportInfo& e, const std::vector<Sample>& s, CallArgs& a);

// The results in a call's destination arrays, outputComponents() values
// per element.
void decodeResults(const ExportInfo& e, const unsigned char* dst1, const unsigned char* dst2, int n,
                   double* out);

// Calls the member on the samples (as few calls as the shape allows, so
// blocks, rejected blocks and tails are all exercised) and returns the
// results, outputComponents() per sample.
std::vector<double> runMember(const ExportInfo& e, const std::vector<Sample>& samples);

struct ErrorStats {
    long count = 0;
    double maxUlp = 0;          // largest error in ulps of the exact result
    double minBits = 1e9;       // fewest correct bits (relative error)
    long inexact = 0;           // results not equal to the correctly rounded value
    long classMismatches = 0;   // NaN or infinity where the reference has none, or the reverse
    std::string worst;          // the input and output of the worst case, for messages
    Sample worstInput;          // the input of the largest error in ulps

    void merge(const ErrorStats& o);
};

// Errors of the results of runMember against the member's reference.
ErrorStats measureErrors(const ExportInfo& e, const std::vector<Sample>& samples,
                         const std::vector<double>& results);

// The error of each sample, the largest over its output components: in ulps
// of the exact result (infinite for a NaN or infinity where the reference
// has none, or the reverse) and in correct bits.  For plots of the error
// across a domain.
struct SampleError {
    double ulp = 0;
    double bits = 0;
};
std::vector<SampleError> sampleErrors(const ExportInfo& e, const std::vector<Sample>& samples,
                                      const std::vector<double>& results);

// Whether measured errors meet the member's tier: no class mismatch, and
// the tier's bound (exact results, an ulp bound or a number of correct
// bits).
bool withinTier(const ExportInfo& e, const ErrorStats& stats);

// The correctly rounded value of the reference for each output component
// of each sample.
std::vector<double> correctlyRounded(const ExportInfo& e, const std::vector<Sample>& samples);

// Default number of samples per range, scaled by ORVVM_ACCURACY_SAMPLES.
int samplesPerRange(int defaultCount);

std::string formatValue(double v, bool is64);

}  // namespace orvtest
