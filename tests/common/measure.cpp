#include "measure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>

#include "reference.h"

namespace orvtest {
namespace {

// ---- Values of the member's real type -------------------------------------

double toType(double v, bool is64) { return is64 ? v : double(float(v)); }

// Totally ordered integer keys of the finite values, so that a uniform key
// between two bounds is uniform over the representable values between them.
int64_t orderedKey(double v, bool is64) {
    if (is64) {
        int64_t b;
        std::memcpy(&b, &v, 8);
        return b < 0 ? int64_t(0x8000000000000000ull) - b - 1 : b;
    }
    float f = float(v);
    int32_t b;
    std::memcpy(&b, &f, 4);
    return b < 0 ? int64_t(INT32_MIN) - b - 1 : b;
}
double fromKey(int64_t k, bool is64) {
    if (is64) {
        int64_t b = k < 0 ? int64_t(0x8000000000000000ull) - k - 1 : k;
        double v;
        std::memcpy(&v, &b, 8);
        return v;
    }
    int32_t b = int32_t(k < 0 ? int64_t(INT32_MIN) - k - 1 : k);
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}

// ---- Layout of the arrays of one call ---------------------------------------

void putReal(unsigned char* p, double v, bool is64) {
    if (is64)
        std::memcpy(p, &v, 8);
    else {
        float f = float(v);
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

// Components of each argument value: complex values have two.
int componentsPerValue(const ExportInfo& e) { return e.isComplex() && e.shape != Shape::P ? 2 : 1; }

void runBatch(const ExportInfo& e, const Sample* s, int n, double* out) {
    const std::vector<Sample> samples(s, s + n);
    std::vector<unsigned char> src1 = sourceBytes(e, samples, 0), src2 = sourceBytes(e, samples, 1);
    std::vector<unsigned char> dst1(n * e.dstElemSize() + 16), dst2(n * e.dstElemSize() + 16);
    CallArgs a;
    a.src1 = src1.data();
    a.src2 = src2.data();
    a.dst1 = dst1.data();
    a.dst2 = dst2.data();
    a.len = n;
    setConstant(e, samples, a);
    invoke(e, a);
    decodeResults(e, dst1.data(), dst2.data(), n, out);
}

// ---- Errors -----------------------------------------------------------------

struct Format {
    int precision;       // significand bits
    mpfr_exp_t emin;     // MPFR exponent of the smallest subnormal
    mpfr_exp_t emax;     // MPFR exponent of the largest finite value
    mpfr_exp_t eminNormal;  // MPFR exponent of the smallest normal
};
Format formatOf(bool is64) {
    return is64 ? Format{53, -1073, 1024, -1021} : Format{24, -148, 128, -125};
}

double roundToFormat(mpfr_srcptr x, bool is64) {
    const Format f = formatOf(is64);
    mpfr_t r;
    mpfr_init2(r, f.precision);
    int t = mpfr_set(r, x, MPFR_RNDN);
    const mpfr_exp_t savedMin = mpfr_get_emin(), savedMax = mpfr_get_emax();
    mpfr_set_emin(f.emin);
    mpfr_set_emax(f.emax);
    t = mpfr_check_range(r, t, MPFR_RNDN);
    mpfr_subnormalize(r, t, MPFR_RNDN);
    double v = is64 ? mpfr_get_d(r, MPFR_RNDN) : double(mpfr_get_flt(r, MPFR_RNDN));
    mpfr_set_emin(savedMin);
    mpfr_set_emax(savedMax);
    mpfr_clear(r);
    return v;
}

bool sameValue(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

struct ComponentError {
    double ulp;
    double bits;
    bool exact;
    bool classMismatch;
};

ComponentError errorOf(double y, mpfr_srcptr exact, bool is64) {
    const Format f = formatOf(is64);
    const double inf = std::numeric_limits<double>::infinity();
    const double cr = roundToFormat(exact, is64);
    const bool isExact = sameValue(y, cr);
    if (mpfr_nan_p(exact) || std::isnan(y) || mpfr_inf_p(exact) || std::isinf(y)) {
        // Classes must agree; an infinite result is right only where the
        // correctly rounded result overflows to it.
        if (isExact || (!mpfr_nan_p(exact) && std::isinf(y) && y == cr)) return {0, inf, true, false};
        return {inf, -inf, false, true};
    }
    if (mpfr_zero_p(exact)) {
        if (y == 0) return {0, inf, isExact, false};
        double ulps = std::ldexp(std::fabs(y), f.precision - int(f.eminNormal));
        return {ulps, std::log2(std::ldexp(1.0, int(f.eminNormal) - 1) / std::fabs(y)), false, false};
    }
    mpfr_t d;
    mpfr_init2(d, mpfr_get_prec(exact) + 64);
    mpfr_set_d(d, y, MPFR_RNDN);
    mpfr_sub(d, d, exact, MPFR_RNDN);
    mpfr_abs(d, d, MPFR_RNDN);
    const mpfr_exp_t e = std::max(mpfr_get_exp(exact), f.eminNormal);
    // In ulps of the exact result's binade, the subnormal ulp below it.
    mpfr_mul_2si(d, d, f.precision - e, MPFR_RNDN);
    double ulps = mpfr_get_d(d, MPFR_RNDU);
    // Relative error, measured against the smallest normal for results
    // below it.
    mpfr_mul_2si(d, d, e - f.precision, MPFR_RNDN);
    mpfr_t m;
    mpfr_init2(m, 64);
    mpfr_abs(m, exact, MPFR_RNDN);
    if (mpfr_get_exp(m) < f.eminNormal) mpfr_set_ui_2exp(m, 1, f.eminNormal - 1, MPFR_RNDN);
    mpfr_div(d, d, m, MPFR_RNDN);
    double bits = mpfr_zero_p(d) ? inf : -std::log2(mpfr_get_d(d, MPFR_RNDN));
    mpfr_clears(d, m, (mpfr_ptr)0);
    return {isExact ? std::min(ulps, 0.5) : ulps, bits, isExact, false};
}

// Evaluates the reference of one sample into out[0..oc).
class ReferenceEvaluator {
public:
    explicit ReferenceEvaluator(const ExportInfo& e) : e_(e), ref_(referenceFor(e)) {
        for (auto& v : in_) mpfr_init2(v, e.is64() ? 53 : 24);
        for (auto& v : out_) mpfr_init2(v, ref_.precision ? ref_.precision : 64);
    }
    ~ReferenceEvaluator() {
        for (auto& v : in_) mpfr_clear(v);
        for (auto& v : out_) mpfr_clear(v);
    }
    bool valid() const { return bool(ref_); }
    void evaluate(const Sample& s) {
        mpfr_srcptr ins[4];
        mpfr_ptr outs[2];
        for (int c = 0; c < 4; ++c) {
            mpfr_set_d(in_[c], s.in[c], MPFR_RNDN);
            // A NaN input keeps its sign bit (mpfr_set_d leaves the sign
            // of the variable's previous value): MPC gives some special
            // values the sign of a NaN part, as csqrt(-inf + i NaN).
            if (std::isnan(s.in[c])) mpfr_setsign(in_[c], in_[c], std::signbit(s.in[c]), MPFR_RNDN);
            ins[c] = in_[c];
        }
        for (int c = 0; c < 2; ++c) outs[c] = out_[c];
        ref_.fn(outs, ins);
    }
    mpfr_srcptr result(int c) const { return out_[c]; }

private:
    const ExportInfo& e_;
    Reference ref_;
    mpfr_t in_[4];
    mpfr_t out_[2];
};

std::string describe(const ExportInfo& e, const Sample& s, const double* y, mpfr_srcptr exact, double ulps) {
    std::ostringstream os;
    os << "input (";
    for (int c = 0; c < e.inputComponents(); ++c) os << (c ? ", " : "") << formatValue(s.in[c], e.is64());
    os << ") gave";
    for (int c = 0; c < e.outputComponents(); ++c) os << " " << formatValue(y[c], e.is64());
    char buf[64];
    std::snprintf(buf, sizeof buf, "; exact %.17g; error %.4g ulp", mpfr_get_d(exact, MPFR_RNDN), ulps);
    return os.str() + buf;
}

bool parseHex(const std::string& text, bool is64, double* values, int count) {
    std::stringstream ss(text);
    std::string item;
    for (int c = 0; c < count; ++c) {
        if (!std::getline(ss, item, ',')) return false;
        if (item == "plus_infty" || item == "minus_infty") {
            values[c] = item[0] == 'p' ? INFINITY : -INFINITY;
            continue;
        }
        unsigned long long b = std::strtoull(item.c_str(), nullptr, 16);
        if (is64) {
            std::memcpy(&values[c], &b, 8);
        } else {
            uint32_t b32 = uint32_t(b);
            float f;
            std::memcpy(&f, &b32, 4);
            values[c] = f;
        }
    }
    return true;
}

}  // namespace

std::vector<unsigned char> sourceBytes(const ExportInfo& e, const std::vector<Sample>& s, int k) {
    const int cv = componentsPerValue(e);
    std::vector<unsigned char> b(s.size() * e.srcElemSize());
    if (k >= e.sourceCount()) return b;
    for (size_t i = 0; i < s.size(); ++i)
        for (int c = 0; c < cv; ++c) putReal(&b[(i * cv + c) * e.realSize()], s[i].in[k * cv + c], e.is64());
    return b;
}

void decodeResults(const ExportInfo& e, const unsigned char* dst1, const unsigned char* dst2, int n,
                   double* out) {
    const bool is64 = e.is64();
    const size_t rs = e.realSize();
    const int oc = e.outputComponents();
    for (size_t i = 0; i < size_t(n); ++i)
        for (int c = 0; c < oc; ++c) {
            if (e.shape == Shape::S)
                out[i * oc + c] = getReal(c == 0 ? &dst1[i * rs] : &dst2[i * rs], is64);
            else
                out[i * oc + c] = getReal(&dst1[(i * oc + c) * rs], is64);
        }
}

void setConstant(const ExportInfo& e, const std::vector<Sample>& s, CallArgs& a) {
    if (e.shape != Shape::K || s.empty()) return;
    const int cv = componentsPerValue(e);
    for (int c = 0; c < cv; ++c) putReal(a.constant + c * e.realSize(), s[0].in[cv + c], e.is64());
}

void ErrorStats::merge(const ErrorStats& o) {
    if (o.maxUlp > maxUlp || (o.classMismatches && !classMismatches)) worst = o.worst;
    if (o.maxUlp > maxUlp) worstInput = o.worstInput;
    count += o.count;
    maxUlp = std::max(maxUlp, o.maxUlp);
    minBits = std::min(minBits, o.minBits);
    inexact += o.inexact;
    classMismatches += o.classMismatches;
}

std::string formatValue(double v, bool is64) {
    char buf[64];
    if (is64) {
        uint64_t b;
        std::memcpy(&b, &v, 8);
        std::snprintf(buf, sizeof buf, "%.17g [0x%016llx]", v, (unsigned long long)b);
    } else {
        float f = float(v);
        uint32_t b;
        std::memcpy(&b, &f, 4);
        std::snprintf(buf, sizeof buf, "%.9g [0x%08x]", v, b);
    }
    return buf;
}

int samplesPerRange(int defaultCount) {
    const char* scale = std::getenv("ORVVM_ACCURACY_SAMPLES");
    if (scale && *scale) return std::max(1, std::atoi(scale));
    return defaultCount;
}

std::vector<Sample> sampleRange(const ExportInfo& e, const Range& r, int count, uint64_t seed) {
    std::mt19937_64 rng(seed);
    const bool is64 = e.is64();
    std::vector<Sample> out(count);
    const int nc = r.components();
    for (int i = 0; i < count; ++i)
        for (int c = 0; c < nc; ++c) {
            const double lo = r.lo(c), hi = r.hi(c);
            double v;
            if (i % 2 == 0) {
                v = lo + (hi - lo) * std::uniform_real_distribution<double>(0, 1)(rng);
            } else {
                std::uniform_int_distribution<int64_t> key(orderedKey(lo, is64), orderedKey(hi, is64));
                v = fromKey(key(rng), is64);
            }
            out[i].in[c] = toType(std::min(std::max(v, lo), hi), is64);
        }
    // The K shape's constant is one value per call: hold it for runs of 64.
    if (e.shape == Shape::K)
        for (int i = 0; i < count; ++i)
            for (int c = nc / 2; c < nc; ++c) out[i].in[c] = out[i - i % 64].in[c];
    return out;
}

std::vector<Sample> sampleValues(const ExportInfo& e, const Range& r, int count, uint64_t seed) {
    std::mt19937_64 rng(seed);
    std::vector<Sample> out(count);
    for (int i = 0; i < count; ++i)
        for (int c = 0; c < r.components(); ++c) {
            const double v = r.lo(c) + (r.hi(c) - r.lo(c)) * std::uniform_real_distribution<double>(0, 1)(rng);
            out[i].in[c] = toType(std::min(std::max(v, r.lo(c)), r.hi(c)), e.is64());
        }
    return out;
}

std::vector<Sample> specialSamples(const ExportInfo& e) {
    const bool is64 = e.is64();
    const double minSub = is64 ? 0x1p-1074 : 0x1p-149;
    const double maxSub = is64 ? 0x1.ffffffffffffep-1023 : double(0x1.fffffcp-127f);
    const double minNormal = is64 ? 0x1p-1022 : 0x1p-126;
    const double maxFinite = is64 ? 0x1.fffffffffffffp+1023 : double(0x1.fffffep+127f);
    const double base[] = {0.0, minSub, maxSub, minNormal, 0.5, 1.0, 2.0, 10.0, maxFinite, INFINITY};
    std::vector<double> values;
    for (double v : base) {
        values.push_back(v);
        values.push_back(-v);
    }
    values.push_back(NAN);
    const int nc = e.inputComponents();
    std::vector<Sample> out;
    // Every value in every component, the others at 1 and -0.5; and every
    // pair of values for two-component inputs.
    for (double other : {1.0, -0.5})
        for (int c = 0; c < nc; ++c)
            for (double v : values) {
                Sample s;
                for (int k = 0; k < nc; ++k) s.in[k] = k == c ? v : other;
                out.push_back(s);
            }
    if (nc == 2)
        for (double a : values)
            for (double b : values) out.push_back(Sample{{a, b}});
    if (e.shape == Shape::K) {
        // The constant is one value per call, and members may take paths of
        // their own for some of its values (small integers multiplied out,
        // a NaN or infinite constant sent through the ElementPath): beyond
        // the special values above, odd and even integers of both signs,
        // half-integers and ordinary fractions, each against every special
        // value of the source.
        const double constants[] = {3.0, 4.0, -2.0, -3.0, 1.5, -2.5, 0.25, 3.7, -1.3, 1e-3};
        const int cv = nc / 2;
        for (double k : constants)
            for (double v : values) {
                Sample s;
                for (int c = 0; c < cv; ++c) s.in[c] = c == 0 ? v : 0.0;
                for (int c = cv; c < nc; ++c) s.in[c] = c == cv ? toType(k, is64) : 0.0;
                out.push_back(s);
            }
        // Group by constant so that one call holds one constant.
        std::stable_sort(out.begin(), out.end(), [&](const Sample& a, const Sample& b) {
            return orderedKey(a.in[nc - 1], is64) < orderedKey(b.in[nc - 1], is64) ||
                   (std::isnan(b.in[nc - 1]) && !std::isnan(a.in[nc - 1]));
        });
    }
    return out;
}

PeerVectors peerVectors(const ExportInfo& e) {
    PeerVectors p;
    const AccuracyRecord* record = findRecord(e.name);
    if (!record || record->peerVectors.empty() || e.shape == Shape::K) return p;
    const std::string& name = record->peerVectors;
    p.file = std::string(ORVVM_PEER_VECTORS_DIR) + "/" + name + ".tsv";
    std::ifstream in(p.file);
    if (!in) return p;
    p.available = true;
    const bool is64 = e.is64();
    const std::string fmt = is64 ? "f64" : "f32";
    const int cv = componentsPerValue(e);
    const int inputs = e.inputComponents() / cv;
    const int outputs = e.outputComponents() / (e.shape == Shape::S ? 1 : cv);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        std::stringstream ss(line);
        for (std::string item; std::getline(ss, item, '\t');) f.push_back(item);
        if (f.size() != size_t(2 + inputs + outputs) || f[0] != fmt) continue;
        PeerCase c;
        bool ok = true;
        for (int k = 0; k < inputs; ++k) ok &= parseHex(f[1 + k], is64, c.sample.in + k * cv, cv);
        double outs[2];
        for (int k = 0; k < outputs; ++k) ok &= parseHex(f[1 + inputs + k], is64, outs + k * cv, cv);
        if (!ok) continue;
        c.expected[0] = outs[0];
        c.expected[1] = e.outputComponents() > 1 ? outs[1] : 0;
        c.ignoreZeroInfSign = f.back().find("ignore-zero-inf-sign") != std::string::npos;
        p.cases.push_back(c);
    }
    return p;
}

std::vector<std::vector<Sample>> accuracySamples(const ExportInfo& e, const AccuracyRecord& r, int perRange) {
    std::vector<std::vector<Sample>> groups = {specialSamples(e)};
    uint64_t seed = std::hash<std::string>{}(e.name);
    for (const Range& range : r.ranges) groups.push_back(sampleRange(e, range, perRange, seed++));
    groups.emplace_back();
    for (const PeerCase& c : peerVectors(e).cases) groups.back().push_back(c.sample);
    for (auto& g : groups) std::erase_if(g, [&](const Sample& s) { return r.excludes(s.in); });
    return groups;
}

std::vector<double> runMember(const ExportInfo& e, const std::vector<Sample>& samples) {
    const int oc = e.outputComponents();
    std::vector<double> out(samples.size() * oc);
    if (e.shape != Shape::K) {
        if (!samples.empty()) runBatch(e, samples.data(), int(samples.size()), out.data());
        return out;
    }
    const int last = e.inputComponents() - 1;
    for (size_t i = 0; i < samples.size();) {
        size_t j = i + 1;
        while (j < samples.size() && sameValue(samples[j].in[last], samples[i].in[last]) &&
               (e.inputComponents() < 4 || sameValue(samples[j].in[2], samples[i].in[2])))
            ++j;
        runBatch(e, &samples[i], int(j - i), &out[i * oc]);
        i = j;
    }
    return out;
}

ErrorStats measureErrors(const ExportInfo& e, const std::vector<Sample>& samples,
                         const std::vector<double>& results) {
    ErrorStats st;
    ReferenceEvaluator ref(e);
    if (!ref.valid()) return st;
    const int oc = e.outputComponents();
    for (size_t i = 0; i < samples.size(); ++i) {
        ref.evaluate(samples[i]);
        ++st.count;
        for (int c = 0; c < oc; ++c) {
            ComponentError err = errorOf(results[i * oc + c], ref.result(c), e.is64());
            if (!err.exact) ++st.inexact;
            if (err.classMismatch) ++st.classMismatches;
            if (err.ulp > st.maxUlp || (err.classMismatch && st.classMismatches == 1) || st.worst.empty())
                st.worst = describe(e, samples[i], &results[i * oc], ref.result(c), err.ulp);
            if (err.ulp > st.maxUlp) st.worstInput = samples[i];
            st.maxUlp = std::max(st.maxUlp, err.ulp);
            st.minBits = std::min(st.minBits, err.bits);
        }
    }
    return st;
}

std::vector<SampleError> sampleErrors(const ExportInfo& e, const std::vector<Sample>& samples,
                                      const std::vector<double>& results) {
    std::vector<SampleError> out(samples.size());
    ReferenceEvaluator ref(e);
    if (!ref.valid()) return out;
    const int oc = e.outputComponents();
    for (size_t i = 0; i < samples.size(); ++i) {
        ref.evaluate(samples[i]);
        out[i].bits = std::numeric_limits<double>::infinity();
        for (int c = 0; c < oc; ++c) {
            ComponentError err = errorOf(results[i * oc + c], ref.result(c), e.is64());
            out[i].ulp = std::max(out[i].ulp, err.ulp);
            out[i].bits = std::min(out[i].bits, err.bits);
        }
    }
    return out;
}

bool withinTier(const ExportInfo& e, const ErrorStats& stats) {
    if (stats.classMismatches != 0) return false;
    const TierBound bound = tierBound(e);
    switch (bound.kind) {
        case TierBound::Exact:
            return stats.inexact == 0;
        case TierBound::UlpBelow:
            return stats.maxUlp < bound.value;
        case TierBound::BitsAtLeast:
            return stats.minBits >= bound.value;
    }
    return false;
}

std::vector<double> correctlyRounded(const ExportInfo& e, const std::vector<Sample>& samples) {
    ReferenceEvaluator ref(e);
    const int oc = e.outputComponents();
    std::vector<double> out(samples.size() * oc, std::numeric_limits<double>::quiet_NaN());
    if (!ref.valid()) return out;
    for (size_t i = 0; i < samples.size(); ++i) {
        ref.evaluate(samples[i]);
        for (int c = 0; c < oc; ++c) out[i * oc + c] = roundToFormat(ref.result(c), e.is64());
    }
    return out;
}

}  // namespace orvtest
