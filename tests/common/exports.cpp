#include "exports.h"

#include <dlfcn.h>

#include <cstring>
#include <stdexcept>

namespace orvtest {
namespace {

struct Row {
    const char* fields[8];
};

const Row kRows[] = {
#define ORV_EXPORT_ROW(...) {{__VA_ARGS__}},
#include "export_rows.inc"
#undef ORV_EXPORT_ROW
};

ElemType parseType(std::string_view t) {
    if (t == "32f") return ElemType::F32;
    if (t == "64f") return ElemType::F64;
    if (t == "32fc") return ElemType::C32;
    if (t == "64fc") return ElemType::C64;
    throw std::runtime_error("bad type " + std::string(t));
}

Shape parseShape(std::string_view s) {
    static const char kShapes[] = "UBKSMP";
    const char* p = std::strchr(kShapes, s.empty() ? '?' : s[0]);
    if (!p || s.size() != 1) throw std::runtime_error("bad shape " + std::string(s));
    return Shape(p - kShapes);
}

void parseGuard(std::string_view g, MxcsrGuard& mx, X87Guard& x87) {
    mx = MxcsrGuard::None;
    x87 = X87Guard::None;
    if (g.find("x87 extended") != g.npos) x87 = X87Guard::Extended;
    if (g.find("x87 double") != g.npos) x87 = X87Guard::Double;
    if (g.find("keep denormals-are-zero") != g.npos)
        mx = MxcsrGuard::NearestKeepDaz;
    else if (g.find("nearest") != g.npos)
        mx = MxcsrGuard::Nearest;
    else if (g == "down")
        mx = MxcsrGuard::Down;
    else if (g == "up")
        mx = MxcsrGuard::Up;
    else if (g == "toward zero")
        mx = MxcsrGuard::TowardZero;
    else if (g != "none" && x87 == X87Guard::None)
        throw std::runtime_error("bad guard " + std::string(g));
}

std::vector<OrvStatus> parseWarnings(std::string_view w) {
    std::vector<OrvStatus> out;
    if (w.find("overflow") != w.npos) out.push_back(orvStatusOverflow);
    if (w.find("underflow") != w.npos) out.push_back(orvStatusUnderflow);
    if (w.find("singularity") != w.npos) out.push_back(orvStatusSingularity);
    if (w.find("domain") != w.npos) out.push_back(orvStatusDomain);
    return out;
}

std::vector<ExportInfo> load() {
    std::vector<ExportInfo> all;
    for (const Row& r : kRows) {
        ExportInfo e;
        e.name = r.fields[0];
        e.family = r.fields[1];
        e.typeTag = r.fields[2];
        e.tier = r.fields[3];
        e.shapeTag = r.fields[4];
        e.frameTag = r.fields[5];
        e.guardTag = r.fields[6];
        e.warningsTag = r.fields[7];
        e.type = parseType(e.typeTag);
        e.shape = parseShape(e.shapeTag);
        e.frame = e.frameTag == "PointersFirstFrame" ? Frame::PointersFirst : Frame::LengthFirst;
        parseGuard(e.guardTag, e.mxcsrGuard, e.x87Guard);
        // Complex members return orvStatusOk on every completed call.
        if (!e.isComplex()) e.warnings = parseWarnings(e.warningsTag);
        all.push_back(std::move(e));
    }
    return all;
}

template <class T>
T constantAs(const CallArgs& a) {
    T c;
    std::memcpy(&c, a.constant, sizeof c);
    return c;
}

// Real base R, element T.
template <class R, class T>
OrvStatus invokeTyped(const ExportInfo& e, const CallArgs& a) {
    void* f = e.symbol();
    switch (e.shape) {
        case Shape::U:
            return reinterpret_cast<OrvStatus (*)(const T*, T*, int32_t)>(f)(
                static_cast<const T*>(a.src1), static_cast<T*>(a.dst1), a.len);
        case Shape::B:
            return reinterpret_cast<OrvStatus (*)(const T*, const T*, T*, int32_t)>(f)(
                static_cast<const T*>(a.src1), static_cast<const T*>(a.src2), static_cast<T*>(a.dst1),
                a.len);
        case Shape::K:
            return reinterpret_cast<OrvStatus (*)(const T*, T, T*, int32_t)>(f)(
                static_cast<const T*>(a.src1), constantAs<T>(a), static_cast<T*>(a.dst1), a.len);
        case Shape::S:
            return reinterpret_cast<OrvStatus (*)(const T*, T*, T*, int32_t)>(f)(
                static_cast<const T*>(a.src1), static_cast<T*>(a.dst1), static_cast<T*>(a.dst2), a.len);
        case Shape::M:
            return reinterpret_cast<OrvStatus (*)(const T*, R*, int32_t)>(f)(
                static_cast<const T*>(a.src1), static_cast<R*>(a.dst1), a.len);
        case Shape::P:
            return reinterpret_cast<OrvStatus (*)(const R*, T*, int32_t)>(f)(
                static_cast<const R*>(a.src1), static_cast<T*>(a.dst1), a.len);
    }
    throw std::runtime_error("bad shape");
}

}  // namespace

int ExportInfo::inputComponents() const {
    int perValue = isComplex() && shape != Shape::P ? 2 : 1;
    return perValue * (shape == Shape::B || shape == Shape::K ? 2 : 1);
}

int ExportInfo::outputComponents() const {
    if (shape == Shape::S) return 2;
    if (shape == Shape::M) return 1;
    return isComplex() ? 2 : 1;
}

// The library under test, opened by its build path: an export is
// implemented when the library has its symbol.
void* libraryHandle() {
    static void* handle = [] {
        void* h = dlopen(ORVVM_LIBRARY_PATH, RTLD_NOW | RTLD_GLOBAL);
        if (!h) throw std::runtime_error(std::string("cannot open the library: ") + dlerror());
        return h;
    }();
    return handle;
}

void* ExportInfo::symbol() const { return dlsym(libraryHandle(), name.c_str()); }

const std::vector<ExportInfo>& allExports() {
    static const std::vector<ExportInfo> all = load();
    return all;
}

std::vector<const ExportInfo*> implementedExports() {
    std::vector<const ExportInfo*> out;
    for (const ExportInfo& e : allExports())
        if (e.symbol()) out.push_back(&e);
    return out;
}

const ExportInfo* findExport(std::string_view name) {
    for (const ExportInfo& e : allExports())
        if (e.name == name) return &e;
    return nullptr;
}

OrvStatus invoke(const ExportInfo& e, const CallArgs& a) {
    switch (e.type) {
        case ElemType::F32:
            return invokeTyped<Orv32f, Orv32f>(e, a);
        case ElemType::F64:
            return invokeTyped<Orv64f, Orv64f>(e, a);
        case ElemType::C32:
            return invokeTyped<Orv32f, Orv32fc>(e, a);
        case ElemType::C64:
            return invokeTyped<Orv64f, Orv64fc>(e, a);
    }
    throw std::runtime_error("bad type");
}

}  // namespace orvtest
