// The table of all 390 exports (tests/exports.tsv), and calling any export
// that the library has through a pointer of its shape.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "orvvm.h"

namespace orvtest {

enum class ElemType { F32, F64, C32, C64 };
enum class Shape { U, B, K, S, M, P };
enum class Frame { PointersFirst, LengthFirst };
enum class MxcsrGuard { None, Nearest, Down, Up, TowardZero, NearestKeepDaz };
enum class X87Guard { None, Double, Extended };

struct ExportInfo {
    std::string name, family, typeTag, tier, shapeTag, frameTag, guardTag, warningsTag;
    ElemType type;
    Shape shape;
    Frame frame;
    MxcsrGuard mxcsrGuard;
    X87Guard x87Guard;
    std::vector<OrvStatus> warnings;  // the warnings a call may return

    bool isComplex() const { return type == ElemType::C32 || type == ElemType::C64; }
    bool is64() const { return type == ElemType::F64 || type == ElemType::C64; }
    size_t realSize() const { return is64() ? 8 : 4; }
    size_t elemSize() const { return realSize() * (isComplex() ? 2 : 1); }
    // Bytes per element of the source and destination arrays.
    size_t srcElemSize() const { return shape == Shape::P ? realSize() : elemSize(); }
    size_t dstElemSize() const { return shape == Shape::M ? realSize() : elemSize(); }
    int sourceCount() const { return shape == Shape::B ? 2 : 1; }
    int destinationCount() const { return shape == Shape::S ? 2 : 1; }
    // Real components per element: of all inputs together, and of one result.
    int inputComponents() const;
    int outputComponents() const;
    // Significand bits of the real base type: 24 or 53.
    int precision() const { return is64() ? 53 : 24; }
    bool hasGuard() const { return mxcsrGuard != MxcsrGuard::None || x87Guard != X87Guard::None; }

    // The library's symbol, or null when the library does not have it.
    void* symbol() const;
};

// The library under test (dlopen handle).
void* libraryHandle();

const std::vector<ExportInfo>& allExports();
std::vector<const ExportInfo*> implementedExports();
const ExportInfo* findExport(std::string_view name);

// Arguments of one call, whatever the shape: src1 is src for the one-source
// shapes, dst1 is dst for the one-destination shapes, and constant holds
// the K shape's by-value argument in the member's element type.
struct CallArgs {
    const void* src1 = nullptr;
    const void* src2 = nullptr;
    void* dst1 = nullptr;
    void* dst2 = nullptr;
    alignas(16) unsigned char constant[16] = {};
    int32_t len = 0;
};

OrvStatus invoke(const ExportInfo& e, const CallArgs& args);

}  // namespace orvtest
