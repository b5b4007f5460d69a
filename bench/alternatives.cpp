#include "alternatives.h"

#include <dlfcn.h>
#include <emmintrin.h>

#include <cstring>
#include <string_view>

#include "records.h"

namespace orvbench {
namespace {

using orvtest::ElemType;
using orvtest::ExportInfo;
using orvtest::Shape;

// ---- SSE vectors of each real type --------------------------------------

struct Pair4 {  // SLEEF's Sleef___m128_2
    __m128 x, y;
};
struct Pair2 {  // SLEEF's Sleef___m128d_2
    __m128d x, y;
};

template <class T>
struct Vec;
template <>
struct Vec<float> {
    using V = __m128;
    using Pair = Pair4;
    static constexpr int kLanes = 4;
    static V load(const float* p) { return _mm_loadu_ps(p); }
    static void store(float* p, V v) { _mm_storeu_ps(p, v); }
    static V splat(float x) { return _mm_set1_ps(x); }
    static std::string sleefName(std::string_view base, std::string_view variant, std::string_view isa) {
        return "Sleef_" + std::string(base) + "f4_" + std::string(variant) + std::string(isa);
    }
    static std::string libmvecName(std::string_view params, std::string_view base) {
        return "_ZGVbN4" + std::string(params) + "_" + std::string(base) + "f";
    }
};
template <>
struct Vec<double> {
    using V = __m128d;
    using Pair = Pair2;
    static constexpr int kLanes = 2;
    static V load(const double* p) { return _mm_loadu_pd(p); }
    static void store(double* p, V v) { _mm_storeu_pd(p, v); }
    static V splat(double x) { return _mm_set1_pd(x); }
    static std::string sleefName(std::string_view base, std::string_view variant, std::string_view isa) {
        return "Sleef_" + std::string(base) + "d2_" + std::string(variant) + std::string(isa);
    }
    static std::string libmvecName(std::string_view params, std::string_view base) {
        return "_ZGVbN2" + std::string(params) + "_" + std::string(base);
    }
};

// Runs `body` on whole vectors of the arrays: body(in, out) reads kLanes
// elements at each in[k] and writes kLanes * outStride reals at each
// out[k].  A last partial vector goes through zero-padded copies, so no
// lane reads or writes beyond the caller's arrays.
template <class T, int kIn, int kOut, class Body>
void vectorLoop(const T* const (&in)[kIn], T* const (&out)[kOut], int outStride, int32_t n, Body body) {
    constexpr int N = Vec<T>::kLanes;
    int32_t i = 0;
    for (; i + N <= n; i += N) {
        const T* ip[kIn];
        T* op[kOut];
        for (int k = 0; k < kIn; ++k) ip[k] = in[k] + i;
        for (int k = 0; k < kOut; ++k) op[k] = out[k] + size_t(i) * outStride;
        body(ip, op);
    }
    if (i == n) return;
    const int rest = int(n - i);
    alignas(16) T inPad[kIn][N] = {};
    alignas(16) T outPad[kOut][2 * N] = {};
    const T* ip[kIn];
    T* op[kOut];
    for (int k = 0; k < kIn; ++k) {
        std::memcpy(inPad[k], in[k] + i, rest * sizeof(T));
        ip[k] = inPad[k];
    }
    for (int k = 0; k < kOut; ++k) op[k] = outPad[k];
    body(ip, op);
    for (int k = 0; k < kOut; ++k) std::memcpy(out[k] + size_t(i) * outStride, outPad[k], rest * outStride * sizeof(T));
}

// ---- Forms of the vector functions ---------------------------------------

// How a family maps onto a vector function of one argument (or two).
enum class Form {
    Unary,     // dst = f(src)
    Binary,    // dst = f(src1, src2)
    PowConst,  // dst = f(src, splat(constant))
    SinCos,    // dst1, dst2 = sin, cos
    Cis,       // complex dst = (cos, sin) of a real src
    Modf,      // dst1, dst2 = integral, fractional part
};

template <class T>
Call unaryCall(void* sym) {
    using V = typename Vec<T>::V;
    auto f = reinterpret_cast<V (*)(V)>(sym);
    return [f](const OrvBenchArrays& a) {
        const T* in[1] = {static_cast<const T*>(a.src1)};
        T* out[1] = {static_cast<T*>(a.dst1)};
        vectorLoop<T>(in, out, 1, a.len,
                      [f](const T* const* i, T* const* o) { Vec<T>::store(o[0], f(Vec<T>::load(i[0]))); });
    };
}

template <class T>
Call binaryCall(void* sym) {
    using V = typename Vec<T>::V;
    auto f = reinterpret_cast<V (*)(V, V)>(sym);
    return [f](const OrvBenchArrays& a) {
        const T* in[2] = {static_cast<const T*>(a.src1), static_cast<const T*>(a.src2)};
        T* out[1] = {static_cast<T*>(a.dst1)};
        vectorLoop<T>(in, out, 1, a.len, [f](const T* const* i, T* const* o) {
            Vec<T>::store(o[0], f(Vec<T>::load(i[0]), Vec<T>::load(i[1])));
        });
    };
}

template <class T>
Call powConstCall(void* sym) {
    using V = typename Vec<T>::V;
    auto f = reinterpret_cast<V (*)(V, V)>(sym);
    return [f](const OrvBenchArrays& a) {
        const V c = Vec<T>::splat(*static_cast<const T*>(a.constant));
        const T* in[1] = {static_cast<const T*>(a.src1)};
        T* out[1] = {static_cast<T*>(a.dst1)};
        vectorLoop<T>(in, out, 1, a.len,
                      [f, c](const T* const* i, T* const* o) { Vec<T>::store(o[0], f(Vec<T>::load(i[0]), c)); });
    };
}

// A function returning two vectors.  SLEEF's sincos returns (sin, cos),
// its modf (fractional, integral).
template <class T>
using PairFn = typename Vec<T>::Pair (*)(typename Vec<T>::V);

// libmvec's sincos takes, behind the argument vector, vectors of pointers:
// one destination address per lane, for the sines and then the cosines
// (two __m128i of two addresses each for 4 lanes, one for 2 lanes).
void libmvecSinCos(void* sym, const float* x, float* s, float* c) {
    auto f = reinterpret_cast<void (*)(__m128, __m128i, __m128i, __m128i, __m128i)>(sym);
    auto addr = [](float* p) { return static_cast<long long>(reinterpret_cast<uintptr_t>(p)); };
    f(_mm_loadu_ps(x), _mm_set_epi64x(addr(s + 1), addr(s)), _mm_set_epi64x(addr(s + 3), addr(s + 2)),
      _mm_set_epi64x(addr(c + 1), addr(c)), _mm_set_epi64x(addr(c + 3), addr(c + 2)));
}
void libmvecSinCos(void* sym, const double* x, double* s, double* c) {
    auto f = reinterpret_cast<void (*)(__m128d, __m128i, __m128i)>(sym);
    auto addr = [](double* p) { return static_cast<long long>(reinterpret_cast<uintptr_t>(p)); };
    f(_mm_loadu_pd(x), _mm_set_epi64x(addr(s + 1), addr(s)), _mm_set_epi64x(addr(c + 1), addr(c)));
}

// Sine and cosine of one vector into s and c, through libmvec's pointer
// vectors or SLEEF's pair of vectors.
template <class T, bool kLibmvec>
struct SinCosKernel {
    void* sym;
    void operator()(const T* x, T* s, T* c) const {
        if constexpr (kLibmvec) {
            libmvecSinCos(sym, x, s, c);
        } else {
            const auto r = reinterpret_cast<PairFn<T>>(sym)(Vec<T>::load(x));
            Vec<T>::store(s, r.x);
            Vec<T>::store(c, r.y);
        }
    }
};

template <class T, class Kernel>
Call sinCosCall(Kernel k) {
    return [k](const OrvBenchArrays& a) {
        const T* in[1] = {static_cast<const T*>(a.src1)};
        T* out[2] = {static_cast<T*>(a.dst1), static_cast<T*>(a.dst2)};
        vectorLoop<T>(in, out, 1, a.len, [k](const T* const* i, T* const* o) { k(i[0], o[0], o[1]); });
    };
}

template <class T, class Kernel>
Call cisCall(Kernel k) {
    return [k](const OrvBenchArrays& a) {
        const T* in[1] = {static_cast<const T*>(a.src1)};
        T* out[1] = {static_cast<T*>(a.dst1)};
        vectorLoop<T>(in, out, 2, a.len, [k](const T* const* i, T* const* o) {
            constexpr int N = Vec<T>::kLanes;
            alignas(16) T s[N], c[N];
            k(i[0], s, c);
            for (int j = 0; j < N; ++j) {
                o[0][2 * j] = c[j];
                o[0][2 * j + 1] = s[j];
            }
        });
    };
}

template <class T>
Call modfCall(void* sym) {
    auto f = reinterpret_cast<PairFn<T>>(sym);
    return [f](const OrvBenchArrays& a) {
        const T* in[1] = {static_cast<const T*>(a.src1)};
        T* out[2] = {static_cast<T*>(a.dst1), static_cast<T*>(a.dst2)};
        vectorLoop<T>(in, out, 1, a.len, [f](const T* const* i, T* const* o) {
            const auto r = f(Vec<T>::load(i[0]));
            Vec<T>::store(o[0], r.y);
            Vec<T>::store(o[1], r.x);
        });
    };
}

template <class T>
Call vectorCall(Form form, void* sym, bool libmvec) {
    switch (form) {
        case Form::Unary:
            return unaryCall<T>(sym);
        case Form::Binary:
            return binaryCall<T>(sym);
        case Form::PowConst:
            return powConstCall<T>(sym);
        case Form::SinCos:
            return libmvec ? sinCosCall<T>(SinCosKernel<T, true>{sym}) : sinCosCall<T>(SinCosKernel<T, false>{sym});
        case Form::Cis:
            return libmvec ? cisCall<T>(SinCosKernel<T, true>{sym}) : cisCall<T>(SinCosKernel<T, false>{sym});
        case Form::Modf:
            return modfCall<T>(sym);
    }
    return {};
}

// ---- The table: family -> vector function names ---------------------------

struct VectorFamily {
    const char* family;
    const char* sleef;    // SLEEF's base name, or null
    const char* libmvec;  // libmvec's base name, or null
    Form form;
};

const VectorFamily kVectorFamilies[] = {
    {"Exp", "exp", "exp", Form::Unary},        {"Expm1", "expm1", "expm1", Form::Unary},
    {"Ln", "log", "log", Form::Unary},         {"Log10", "log10", "log10", Form::Unary},
    {"Log1p", "log1p", "log1p", Form::Unary},  {"Sqrt", "sqrt", nullptr, Form::Unary},
    {"Cbrt", "cbrt", "cbrt", Form::Unary},     {"Sin", "sin", "sin", Form::Unary},
    {"Cos", "cos", "cos", Form::Unary},        {"Tan", "tan", "tan", Form::Unary},
    {"Asin", "asin", "asin", Form::Unary},     {"Acos", "acos", "acos", Form::Unary},
    {"Atan", "atan", "atan", Form::Unary},     {"Sinh", "sinh", "sinh", Form::Unary},
    {"Cosh", "cosh", "cosh", Form::Unary},     {"Tanh", "tanh", "tanh", Form::Unary},
    {"Asinh", "asinh", "asinh", Form::Unary},  {"Acosh", "acosh", "acosh", Form::Unary},
    {"Atanh", "atanh", "atanh", Form::Unary},  {"Erf", "erf", "erf", Form::Unary},
    {"Erfc", "erfc", "erfc", Form::Unary},     {"Hypot", "hypot", "hypot", Form::Binary},
    {"Atan2", "atan2", "atan2", Form::Binary}, {"Pow", "pow", "pow", Form::Binary},
    {"Powx", "pow", "pow", Form::PowConst},    {"SinCos", "sincos", "sincos", Form::SinCos},
    {"CIS", "sincos", "sincos", Form::Cis},    {"Abs", "fabs", nullptr, Form::Unary},
    {"Ceil", "ceil", nullptr, Form::Unary},    {"Floor", "floor", nullptr, Form::Unary},
    {"Round", "round", nullptr, Form::Unary},  {"Trunc", "trunc", nullptr, Form::Unary},
    {"Rint", "rint", nullptr, Form::Unary},    {"NearbyInt", "rint", nullptr, Form::Unary},
    {"Modf", "modf", nullptr, Form::Modf},
};

const char* libmvecParams(Form form) {
    switch (form) {
        case Form::Unary:
            return "v";
        case Form::Binary:
        case Form::PowConst:
            return "vv";
        case Form::SinCos:
        case Form::Cis:
            return "vvv";
        case Form::Modf:
            return nullptr;
    }
    return nullptr;
}

// SLEEF's accuracy variants, best match first: the top tiers want at most
// 1 ulp (u10, or the more accurate u05 where that is all there is), the
// others at most 4 ulp (u35, else the more accurate ones).  u15 is SLEEF's
// only erfc.  The empty variant is the suffix-less exact functions (sqrt,
// fabs, the rounding functions).
std::vector<std::string_view> sleefVariants(const ExportInfo& e) {
    if (e.tier == "A24" || e.tier == "A53") return {"u10", "u05", "u15", ""};
    return {"u35", "u10", "u05", "u15", ""};
}

void* libraryHandle(const char* soname) {
    void* h = dlopen(soname, RTLD_NOW | RTLD_LOCAL);
    return h;  // null when absent: its columns are then absent
}
void* libmvec() {
    static void* h = libraryHandle("libmvec.so.1");
    return h;
}
void* sleef() {
    static void* h = libraryHandle("libsleef.so.3");
    return h;
}
void* lookUp(void* handle, const std::string& name) { return handle ? dlsym(handle, name.c_str()) : nullptr; }

template <class T>
void addVectorAlternatives(const ExportInfo& e, const VectorFamily& vf, std::vector<Alternative>& out) {
    if (const char* params = vf.libmvec ? libmvecParams(vf.form) : nullptr) {
        const std::string name = Vec<T>::libmvecName(params, vf.libmvec);
        if (void* sym = lookUp(libmvec(), name)) out.push_back({"libmvec", name, vectorCall<T>(vf.form, sym, true)});
    }
    if (!vf.sleef) return;
    for (std::string_view isa : {"sse2", "sse4"}) {
        if (isa == "sse4" && !__builtin_cpu_supports("sse4.1")) continue;
        for (std::string_view variant : sleefVariants(e)) {
            const std::string name = Vec<T>::sleefName(vf.sleef, variant, isa);
            if (void* sym = lookUp(sleef(), name)) {
                out.push_back({"sleef-" + std::string(isa), name, vectorCall<T>(vf.form, sym, false)});
                break;
            }
        }
    }
}

int typeIndex(ElemType t) { return int(t); }  // 32f, 64f, 32fc, 64fc: the order of the scalar table

// ---- orvvm itself ------------------------------------------------------------

template <class R, class T>
Call boundCall(const ExportInfo& e) {
    void* f = e.symbol();
    switch (e.shape) {
        case Shape::U: {
            auto fn = reinterpret_cast<OrvStatus (*)(const T*, T*, int32_t)>(f);
            return [fn](const OrvBenchArrays& a) { fn(static_cast<const T*>(a.src1), static_cast<T*>(a.dst1), a.len); };
        }
        case Shape::B: {
            auto fn = reinterpret_cast<OrvStatus (*)(const T*, const T*, T*, int32_t)>(f);
            return [fn](const OrvBenchArrays& a) {
                fn(static_cast<const T*>(a.src1), static_cast<const T*>(a.src2), static_cast<T*>(a.dst1), a.len);
            };
        }
        case Shape::K: {
            auto fn = reinterpret_cast<OrvStatus (*)(const T*, T, T*, int32_t)>(f);
            return [fn](const OrvBenchArrays& a) {
                fn(static_cast<const T*>(a.src1), *static_cast<const T*>(a.constant), static_cast<T*>(a.dst1), a.len);
            };
        }
        case Shape::S: {
            auto fn = reinterpret_cast<OrvStatus (*)(const T*, T*, T*, int32_t)>(f);
            return [fn](const OrvBenchArrays& a) {
                fn(static_cast<const T*>(a.src1), static_cast<T*>(a.dst1), static_cast<T*>(a.dst2), a.len);
            };
        }
        case Shape::M: {
            auto fn = reinterpret_cast<OrvStatus (*)(const T*, R*, int32_t)>(f);
            return [fn](const OrvBenchArrays& a) { fn(static_cast<const T*>(a.src1), static_cast<R*>(a.dst1), a.len); };
        }
        case Shape::P: {
            auto fn = reinterpret_cast<OrvStatus (*)(const R*, T*, int32_t)>(f);
            return [fn](const OrvBenchArrays& a) { fn(static_cast<const R*>(a.src1), static_cast<T*>(a.dst1), a.len); };
        }
    }
    return {};
}

}  // namespace

const std::vector<std::string>& alternativeKinds() {
    static const std::vector<std::string> kinds = {"scalar", "scalar-O3", "libmvec", "sleef-sse2", "sleef-sse4",
                                                   "copy"};
    return kinds;
}

std::vector<Alternative> alternativesFor(const ExportInfo& e) {
    std::vector<Alternative> out;
    for (int i = 0; i < orvScalarFamilyCount; ++i) {
        const OrvScalarLoop& s = orvScalarFamilies[i].types[typeIndex(e.type)];
        if (e.family == orvScalarFamilies[i].family && s.loop)
            out.push_back({"scalar", s.label, [loop = s.loop](const OrvBenchArrays& a) { loop(&a); }});
    }
    for (int i = 0; i < orvScalarFamilyCountFast; ++i) {
        const OrvScalarLoop& s = orvScalarFamiliesFast[i].types[typeIndex(e.type)];
        if (e.family == orvScalarFamiliesFast[i].family && s.loop)
            out.push_back({"scalar-O3", s.label, [loop = s.loop](const OrvBenchArrays& a) { loop(&a); }});
    }
    for (const VectorFamily& vf : kVectorFamilies) {
        if (e.family != vf.family) continue;
        // Vector functions of real arrays; CIS's source is real too.
        const bool realBase = vf.form == Form::Cis ? e.shape == Shape::P : !e.isComplex();
        if (!realBase) continue;
        if (e.is64())
            addVectorAlternatives<double>(e, vf, out);
        else
            addVectorAlternatives<float>(e, vf, out);
    }
    // An exact operation per element costs little more than moving the
    // data: a copy of the result array is its ceiling.
    if (orvtest::tierBound(e).kind == orvtest::TierBound::Exact) {
        const size_t elem = e.dstElemSize();
        const bool two = e.shape == Shape::S;
        out.push_back({"copy", "memcpy", [elem, two](const OrvBenchArrays& a) {
                           std::memcpy(a.dst1, a.src1, size_t(a.len) * elem);
                           if (two) std::memcpy(a.dst2, a.src1, size_t(a.len) * elem);
                       }});
    }
    return out;
}

Call orvvmCall(const ExportInfo& e) {
    switch (e.type) {
        case ElemType::F32:
            return boundCall<Orv32f, Orv32f>(e);
        case ElemType::F64:
            return boundCall<Orv64f, Orv64f>(e);
        case ElemType::C32:
            return boundCall<Orv32f, Orv32fc>(e);
        case ElemType::C64:
            return boundCall<Orv64f, Orv64fc>(e);
    }
    return {};
}

}  // namespace orvbench
