// Every binary32 input of every unary 32f member (or of the members named on
// the command line), but those its accuracy record excludes, against the family's function evaluated in double by
// the C library: far below a float ulp from the exact value, and fast enough
// for 2^32 inputs.  Holds each member to its tier and its recorded maximum.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "exports.h"
#include "records.h"

using namespace orvtest;

namespace {

using RefFn = double (*)(double);

const std::map<std::string, RefFn>& doubleReferences() {
    static const std::map<std::string, RefFn> refs = {
        {"Exp", [](double x) { return std::exp(x); }},
        {"Expm1", [](double x) { return std::expm1(x); }},
        {"Ln", [](double x) { return std::log(x); }},
        {"Log10", [](double x) { return std::log10(x); }},
        {"Log1p", [](double x) { return std::log1p(x); }},
        {"Sqrt", [](double x) { return std::sqrt(x); }},
        {"InvSqrt", [](double x) { return x == 0 ? std::copysign(INFINITY, x) : 1 / std::sqrt(x); }},
        {"Cbrt", [](double x) { return std::cbrt(x); }},
        {"InvCbrt", [](double x) { return 1 / std::cbrt(x); }},
        {"Inv", [](double x) { return 1 / x; }},
        {"Sqr", [](double x) { return x * x; }},
        {"Abs", [](double x) { return std::fabs(x); }},
        {"Sin", [](double x) { return std::sin(x); }},
        {"Cos", [](double x) { return std::cos(x); }},
        {"Tan", [](double x) { return std::tan(x); }},
        {"Asin", [](double x) { return std::asin(x); }},
        {"Acos", [](double x) { return std::acos(x); }},
        {"Atan", [](double x) { return std::atan(x); }},
        {"Sinh", [](double x) { return std::sinh(x); }},
        {"Cosh", [](double x) { return std::cosh(x); }},
        {"Tanh", [](double x) { return std::tanh(x); }},
        {"Asinh", [](double x) { return std::asinh(x); }},
        {"Acosh", [](double x) { return std::acosh(x); }},
        {"Atanh", [](double x) { return std::atanh(x); }},
        {"Erf", [](double x) { return std::erf(x); }},
        {"Erfc", [](double x) { return std::erfc(x); }},
        {"CdfNorm", [](double x) { return 0.5 * std::erfc(-x / std::sqrt(2.0)); }},
        {"Ceil", [](double x) { return std::ceil(x); }},
        {"Floor", [](double x) { return std::floor(x); }},
        {"Trunc", [](double x) { return std::trunc(x); }},
        {"Round", [](double x) { return std::round(x); }},
        {"Rint", [](double x) { return std::nearbyint(x); }},
        {"NearbyInt", [](double x) { return std::nearbyint(x); }},
        {"Pow2o3", [](double x) { return std::cbrt(x * x); }},
        {"Pow3o2", [](double x) { return x == -INFINITY ? INFINITY : x < 0 ? NAN : x * std::sqrt(x); }},
    };
    return refs;
}

// Error of a float result against a double reference, in float ulps of the
// reference's binade (2^-149 below the normal range).
double ulpError(float y, double ref) {
    if (std::isnan(ref) || std::isnan(y)) return std::isnan(ref) && std::isnan(y) ? 0 : INFINITY;
    float cr = float(ref);  // one rounding: the reference is the exact value to ~2^-29 ulp
    if (std::isinf(y) || std::isinf(ref)) return y == cr ? 0 : INFINITY;
    if (y == cr && std::signbit(y) == std::signbit(cr)) return std::min(0.5, std::fabs(double(y) - ref) / std::ldexp(1.0, std::max(std::ilogb(ref), -126) - 23));
    if (ref == 0) return std::fabs(double(y)) / 0x1p-149;
    return std::fabs(double(y) - ref) / std::ldexp(1.0, std::max(std::ilogb(ref), -126) - 23);
}

struct Worst {
    double ulp = 0;
    double bits = INFINITY;
    uint32_t input = 0;
    long inexact = 0;
};

Worst checkRange(const ExportInfo& e, RefFn ref, uint64_t from, uint64_t to) {
    const AccuracyRecord* record = findRecord(e.name);
    constexpr int kChunk = 1 << 16;
    std::vector<float> in(kChunk), out(kChunk);
    Worst w;
    for (uint64_t base = from; base < to; base += kChunk) {
        for (int k = 0; k < kChunk; ++k) {
            uint32_t b = uint32_t(base + k);
            std::memcpy(&in[k], &b, 4);
        }
        CallArgs a;
        a.src1 = in.data();
        a.dst1 = out.data();
        a.len = kChunk;
        invoke(e, a);
        for (int k = 0; k < kChunk; ++k) {
            const double x = in[k];
            if (record && record->excludes(&x)) continue;
            double r = ref(in[k]);
            double err = ulpError(out[k], r);
            if (float(r) != out[k] && !(std::isnan(r) && std::isnan(out[k]))) ++w.inexact;
            double rel = err == 0 ? INFINITY
                         : std::isinf(err) ? -INFINITY
                                           : -std::log2(std::fabs(double(out[k]) - r) /
                                                        std::max(std::fabs(r), 0x1p-126));
            w.bits = std::min(w.bits, rel);
            if (err > w.ulp) {
                w.ulp = err;
                w.input = uint32_t(base + k);
            }
        }
    }
    return w;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<const ExportInfo*> members;
    for (const ExportInfo* e : implementedExports()) {
        bool named = argc < 2;
        for (int i = 1; i < argc; ++i) named |= e->name == argv[i];
        if (named && e->type == ElemType::F32 && e->shape == Shape::U &&
            doubleReferences().count(e->family))
            members.push_back(e);
    }
    int failures = 0;
    for (const ExportInfo* e : members) {
        RefFn ref = doubleReferences().at(e->family);
        const unsigned threads = std::max(1u, std::thread::hardware_concurrency());
        std::vector<Worst> part(threads);
        std::vector<std::thread> pool;
        const uint64_t step = (1ull << 32) / threads;
        for (unsigned t = 0; t < threads; ++t)
            pool.emplace_back([&, t] {
                part[t] = checkRange(*e, ref, t * step, t + 1 == threads ? 1ull << 32 : (t + 1) * step);
            });
        for (auto& th : pool) th.join();
        Worst w;
        for (const Worst& p : part) {
            if (p.ulp > w.ulp) w.ulp = p.ulp, w.input = p.input;
            w.bits = std::min(w.bits, p.bits);
            w.inexact += p.inexact;
        }
        const TierBound bound = tierBound(*e);
        const AccuracyRecord* record = findRecord(e->name);
        bool ok = record && w.ulp <= record->maxUlp;
        if (bound.kind == TierBound::Exact) ok &= w.inexact == 0;
        if (bound.kind == TierBound::UlpBelow) ok &= w.ulp < bound.value;
        if (bound.kind == TierBound::BitsAtLeast) ok &= w.bits >= bound.value;
        std::printf("%-24s max %.4f ulp at 0x%08x, %.2f bits, %ld not correctly rounded; tier %s, recorded %g: %s\n",
                    e->name.c_str(), w.ulp, w.input, w.bits, w.inexact, bound.describe().c_str(),
                    record ? record->maxUlp : -1.0, ok ? "ok" : "FAILED");
        std::fflush(stdout);
        failures += !ok;
    }
    std::printf("%d passed, %d failed\n", int(members.size()) - failures, failures);
    return failures != 0;
}
