// Add, Sub, Mul (real) and Sqr, and the complex Add and Sub.
//
// Each result is a single IEEE operation, so every member is exact in the
// sense of IEEE arithmetic: the correctly rounded sum, difference or
// product in the caller's rounding mode.  All the work is in the loop
// around it (plain_loops.h).  LengthFirstFrame with no guard: len, then the
// pointers; the caller's MXCSR governs the arithmetic.  With both operands
// NaN the result is src1's NaN made quiet, as the vector instructions give
// it, in every path of the loop.
#include "arith/plain_loops.h"
#include "frame/frame.h"

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

// One operation for scalars and vectors alike.  The commutative ones keep
// their operand order (simd.h), so that of two NaN operands src1's comes
// out, made quiet, in the peel, the rounds and the tail alike.
struct AddOp {
    template <class V>
    V operator()(V a, V b) const { return addOrdered(a, b); }
};
struct SubOp {
    template <class V>
    V operator()(V a, V b) const { return a - b; }
};
struct MulOp {
    template <class V>
    V operator()(V a, V b) const { return mulOrdered(a, b); }
};
struct SqrOp {
    template <class V>
    V operator()(V a) const { return a * a; }
};

template <class T, class Op>
inline OrvStatus realBinary(const T* src1, const T* src2, T* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src1, src2, dst}, len, [&](StatusVar&) {
        plain::overlapCheckedLoopB(src1, src2, dst, len, Op{});
    });
}

// Complex records are pairs of reals, re first, so the complex sum is the
// real sum of twice as many values.
template <class C, class Op>
inline OrvStatus complexBinary(const C* src1, const C* src2, C* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src1, src2, dst}, len, [&](StatusVar&) {
        using R = decltype(src1->re);
        plain::complexPassesB(reinterpret_cast<const R*>(src1), reinterpret_cast<const R*>(src2),
                              reinterpret_cast<R*>(dst), len, Op{});
    });
}

template <class T>
inline OrvStatus square(const T* src, T* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar&) {
        plain::overlapCheckedLoopU(src, dst, len, SqrOp{});
    });
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsAdd_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return realBinary<Orv32f, AddOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsAdd_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return realBinary<Orv64f, AddOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsSub_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return realBinary<Orv32f, SubOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsSub_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return realBinary<Orv64f, SubOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsMul_32f_A24(const Orv32f* src1, const Orv32f* src2, Orv32f* dst, int32_t len) {
    return realBinary<Orv32f, MulOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsMul_64f_A53(const Orv64f* src1, const Orv64f* src2, Orv64f* dst, int32_t len) {
    return realBinary<Orv64f, MulOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsSqr_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return square(src, dst, len);
}
ORV_EXPORT OrvStatus orvsSqr_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return square(src, dst, len);
}
ORV_EXPORT OrvStatus orvsAdd_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst,
                                      int32_t len) {
    return complexBinary<Orv32fc, AddOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsAdd_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst,
                                      int32_t len) {
    return complexBinary<Orv64fc, AddOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsSub_32fc_A24(const Orv32fc* src1, const Orv32fc* src2, Orv32fc* dst,
                                      int32_t len) {
    return complexBinary<Orv32fc, SubOp>(src1, src2, dst, len);
}
ORV_EXPORT OrvStatus orvsSub_64fc_A53(const Orv64fc* src1, const Orv64fc* src2, Orv64fc* dst,
                                      int32_t len) {
    return complexBinary<Orv64fc, SubOp>(src1, src2, dst, len);
}

#else
#include "frame/record.h"

namespace orv {
ORV_RECORDS(
    // Correctly rounded: each result is one IEEE operation, so the error is at
    // most half an ulp and the result equals the correctly rounded value.  The
    // ranges span the whole finite range of each type; a further range brings
    // operands of close magnitude, where sums cancel.
    {.member = "orvsAdd_32f_A24",
     .maxUlp = 0.5,
     .worst = {0x1.2e644ap+9, 0x1.aba88cp+9},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), {Interval{1, 2}, Interval{-2, -1}}},
     .exact = true},
    {.member = "orvsAdd_64f_A53",
     .maxUlp = 0.5,
     .worst = {-0x1.d821c2234585ap+9, -0x1.e3c97785f3894p+7},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), {Interval{1, 2}, Interval{-2, -1}}},
     .exact = true},
    {.member = "orvsSub_32f_A24",
     .maxUlp = 0.5,
     .worst = {0x1.9a5396p+9, 0x1.e1af4p+3},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2), {Interval{1, 2}, Interval{1, 2}}},
     .exact = true},
    {.member = "orvsSub_64f_A53",
     .maxUlp = 0.5,
     .worst = {-0x1.9572da0624727p+9, 0x1.b7b7f1d0c76ccp+8},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2), {Interval{1, 2}, Interval{1, 2}}},
     .exact = true},
    {.member = "orvsMul_32f_A24",
     .maxUlp = 0.5,
     .worst = {0x1p-149, -0x1p-1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2)},
     .exact = true},
    {.member = "orvsMul_64f_A53",
     .maxUlp = 0.5,
     .worst = {0x0.0000000000001p-1022, -0x1p-1},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2)},
     .exact = true},
    {.member = "orvsSqr_32f_A24",
     .maxUlp = 0.5,
     .worst = {0x1.1abp+9},
     .ranges = {kOrdinary, kFinite32},
     .exact = true},
    {.member = "orvsSqr_64f_A53",
     .maxUlp = 0.5,
     .worst = {-0x1.925677b1fa641p+381},
     .ranges = {kOrdinary, kFinite64},
     .exact = true},
    {.member = "orvsAdd_32fc_A24",
     .maxUlp = 0.5,
     .worst = {-0x1.4e2dep+6, 0x1.ebe224p+8, -0x1.2089b4p+9, 0x1.2eaf48p+9},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4)},
     .exact = true},
    {.member = "orvsAdd_64fc_A53",
     .maxUlp = 0.5,
     .worst = {0x1.78b3b82e6799p+6, -0x1.a45d5b027dfb4p+8, 0x1.31c2dac0be226p+9, -0x1.e3dec6e58659bp+9},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4)},
     .exact = true},
    {.member = "orvsSub_32fc_A24",
     .maxUlp = 0.5,
     .worst = {-0x1.b2736ep+8, -0x1.710cdep+7, -0x1.65f148p+9, -0x1.bfca96p+8},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite32, 4)},
     .exact = true},
    {.member = "orvsSub_64fc_A53",
     .maxUlp = 0.5,
     .worst = {0x1.d401e3032c2f4p+9, -0x1.ef0fa75e990bdp+9, -0x1.70998c16d2ea6p+8, 0x1.17f759f71c4bp+8},
     .ranges = {repeated(kOrdinary, 4), repeated(kFinite64, 4)},
     .exact = true}
)
}  // namespace orv
#endif
