// Abs (real) and Conj.
//
// Abs multiplies x by 1.0 carrying the sign of x, built by keeping the sign
// bit of x and setting the bits of 1.0 into it; it does not clear the sign
// bit.  So a NaN keeps its sign and comes out quiet (a signalling NaN
// raises invalid), -0 gives +0, and under the caller's denormals-are-zero a
// denormal gives zero.  Conj inverts the sign bit of im by an exclusive or:
// no flag, NaN payloads kept, re untouched bit for bit.
//
// Rounds of 16 bytes times two with unaligned accesses, no overlap test and
// no peel; the tail goes through a scratch pad so that it needs no scalar
// form.  LengthFirstFrame, no guard.
#include "arith/plain_loops.h"
#include "frame/frame.h"

#ifndef ORVVM_RECORDS
namespace orv {
namespace {

inline F32x4 absByProduct(F32x4 x) {
    return x * ((x & splatBits32(kSign32)) | splatBits32(0x3F800000));
}
inline F64x2 absByProduct(F64x2 x) {
    return x * ((x & splatBits64(kSign64)) | splatBits64(0x3FF0000000000000));
}

// Rounds: Abs 32f takes 8 elements, Abs 64f 4, Conj 32fc 4; each is two
// 16-byte groups.
void absRound32(const Orv32f* in, Orv32f* out) {
    F32x4 a = load(in), b = load(in + 4);
    store(out, absByProduct(a));
    store(out + 4, absByProduct(b));
}
void absRound64(const Orv64f* in, Orv64f* out) {
    F64x2 a = load(in), b = load(in + 2);
    store(out, absByProduct(a));
    store(out + 2, absByProduct(b));
}
void conjRound32(const Orv32fc* in, Orv32fc* out) {
    const F32x4 imSign = setLanes(0.0f, -0.0f, 0.0f, -0.0f);
    auto* p = reinterpret_cast<const float*>(in);
    auto* q = reinterpret_cast<float*>(out);
    F32x4 a = load(p), b = load(p + 4);
    store(q, a ^ imSign);
    store(q + 4, b ^ imSign);
}
// Conj 64fc: a round is two elements, one 16-byte group each; the last odd
// element is done by itself.
void conjElement64(const Orv64fc* in, Orv64fc* out) {
    const F64x2 imSign = setLanes(0.0, -0.0);
    auto* p = reinterpret_cast<const double*>(in);
    store(reinterpret_cast<double*>(out), load(p) ^ imSign);
}

}  // namespace
}  // namespace orv

using namespace orv;

ORV_EXPORT OrvStatus orvsAbs_32f_A24(const Orv32f* src, Orv32f* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar&) {
        plain::roundsWithPadTail<8>(src, dst, len, absRound32);
    });
}
ORV_EXPORT OrvStatus orvsAbs_64f_A53(const Orv64f* src, Orv64f* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar&) {
        plain::roundsWithPadTail<4>(src, dst, len, absRound64);
    });
}
ORV_EXPORT OrvStatus orvsConj_32fc_A24(const Orv32fc* src, Orv32fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar&) {
        plain::roundsWithPadTail<4>(src, dst, len, conjRound32);
    });
}
ORV_EXPORT OrvStatus orvsConj_64fc_A53(const Orv64fc* src, Orv64fc* dst, int32_t len) {
    return lengthFirstFrame<kGuardNone>({src, dst}, len, [&](StatusVar&) {
        int32_t i = 0;
        for (; i <= len - 2; i += 2) {
            conjElement64(src + i, dst + i);
            conjElement64(src + i + 1, dst + i + 1);
        }
        if (i < len) conjElement64(src + i, dst + i);
    });
}

#else
#include "frame/record.h"

namespace orv {
ORV_RECORDS(
    {.member = "orvsAbs_32f_A24",
     .maxUlp = 0,
     .worst = {0x0p+0},
     .ranges = {kOrdinary, kFinite32},
     .exact = true},
    {.member = "orvsAbs_64f_A53",
     .maxUlp = 0,
     .worst = {0x0p+0},
     .ranges = {kOrdinary, kFinite64},
     .exact = true},
    {.member = "orvsConj_32fc_A24",
     .maxUlp = 0,
     .worst = {0x0p+0, 0x0p+0},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite32, 2)},
     .exact = true},
    {.member = "orvsConj_64fc_A53",
     .maxUlp = 0,
     .worst = {0x0p+0, 0x0p+0},
     .ranges = {repeated(kOrdinary, 2), repeated(kFinite64, 2)},
     .exact = true}
)
}  // namespace orv
#endif
