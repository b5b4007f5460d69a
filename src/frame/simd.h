// The SSE vocabulary every kernel is written in: value types of four floats,
// two doubles and four 32-bit integers, with overloaded arithmetic, masks,
// selects and raw-bit views.  The target is SSE3, so nothing here may need
// SSE4.1 (no blendv, no pmulld, no roundps, no 64-bit integer compares).
//
// A mask is a vector whose lanes are all ones (true) or all zeros (false),
// as the compares make them; signMask() gathers the lanes' sign bits into
// an int, which is how a block screen turns into one branch.
#pragma once

#include <emmintrin.h>
#include <pmmintrin.h>
#include <xmmintrin.h>

#include <bit>
#include <cstdint>

namespace orv {

struct F32x4 {
    __m128 v;
};
struct F64x2 {
    __m128d v;
};
// Integer lanes: 32-bit or 64-bit operations are chosen by name, since the
// same register holds both views.
struct I32x4 {
    __m128i v;
};

// ---- F32x4 ---------------------------------------------------------------
inline F32x4 load(const float* p) { return {_mm_loadu_ps(p)}; }
inline F32x4 loadAligned(const float* p) { return {_mm_load_ps(p)}; }
inline void store(float* p, F32x4 a) { _mm_storeu_ps(p, a.v); }
inline void storeAligned(float* p, F32x4 a) { _mm_store_ps(p, a.v); }
inline F32x4 splat(float x) { return {_mm_set1_ps(x)}; }
inline F32x4 splatBits32(uint32_t b) { return {_mm_castsi128_ps(_mm_set1_epi32(int(b)))}; }
inline F32x4 zeroF32x4() { return {_mm_setzero_ps()}; }
// Lanes in memory order: lane 0 first.
inline F32x4 setLanes(float a0, float a1, float a2, float a3) {
    return {_mm_setr_ps(a0, a1, a2, a3)};
}

// Two adjacent floats (a table row) into lanes 0 and 1, the others zero:
// one 64-bit load instead of two scalar ones.
inline F32x4 loadPair(const float* p) {
    using PairBits = double __attribute__((may_alias, aligned(4)));
    return {_mm_castpd_ps(_mm_load_sd(reinterpret_cast<const PairBits*>(p)))};
}
// (a0, b0, a1, b1); and the low or the high halves of a and b side by side,
// (a0, a1, b0, b1) and (a2, a3, b2, b3).
inline F32x4 unpackLo(F32x4 a, F32x4 b) { return {_mm_unpacklo_ps(a.v, b.v)}; }
inline F32x4 lowHalves(F32x4 a, F32x4 b) { return {_mm_movelh_ps(a.v, b.v)}; }
inline F32x4 highHalves(F32x4 a, F32x4 b) { return {_mm_movehl_ps(b.v, a.v)}; }
// The even lanes of a then of b, (a0, a2, b0, b2), and the odd ones,
// (a1, a3, b1, b3): the re and the im parts of two groups of interleaved
// complex binary32.
inline F32x4 evenLanes(F32x4 a, F32x4 b) { return {_mm_shuffle_ps(a.v, b.v, _MM_SHUFFLE(2, 0, 2, 0))}; }
inline F32x4 oddLanes(F32x4 a, F32x4 b) { return {_mm_shuffle_ps(a.v, b.v, _MM_SHUFFLE(3, 1, 3, 1))}; }
// Rows of four, transposed in place: lane k of row j becomes lane j of row k.
inline void transpose(F32x4& r0, F32x4& r1, F32x4& r2, F32x4& r3) { _MM_TRANSPOSE4_PS(r0.v, r1.v, r2.v, r3.v); }
// (a2, b2, a3, b3): the high lanes of a and b interleaved.
inline F32x4 unpackHi(F32x4 a, F32x4 b) { return {_mm_unpackhi_ps(a.v, b.v)}; }
// (a0, a0, a2, a2), (a1, a1, a3, a3) and (a1, a0, a3, a2): per pair of lanes,
// the first or the second repeated, or the two swapped.
inline F32x4 duplicateEven(F32x4 a) { return {_mm_moveldup_ps(a.v)}; }
inline F32x4 duplicateOdd(F32x4 a) { return {_mm_movehdup_ps(a.v)}; }
inline F32x4 swapPairs(F32x4 a) { return {_mm_shuffle_ps(a.v, a.v, _MM_SHUFFLE(2, 3, 0, 1))}; }
// Lanes 0 and 1 stored to two adjacent floats: the reverse of loadPair.
inline void storePair(float* p, F32x4 a) {
    _mm_storel_pi(reinterpret_cast<__m64*>(p), a.v);
}

inline F32x4 operator+(F32x4 a, F32x4 b) { return {_mm_add_ps(a.v, b.v)}; }
inline F32x4 operator-(F32x4 a, F32x4 b) { return {_mm_sub_ps(a.v, b.v)}; }
inline F32x4 operator*(F32x4 a, F32x4 b) { return {_mm_mul_ps(a.v, b.v)}; }
inline F32x4 operator/(F32x4 a, F32x4 b) { return {_mm_div_ps(a.v, b.v)}; }
// (a0 - b0, a1 + b1, a2 - b2, a3 + b3): the complex product's last step.
inline F32x4 addSub(F32x4 a, F32x4 b) { return {_mm_addsub_ps(a.v, b.v)}; }
inline F32x4 operator&(F32x4 a, F32x4 b) { return {_mm_and_ps(a.v, b.v)}; }
inline F32x4 operator|(F32x4 a, F32x4 b) { return {_mm_or_ps(a.v, b.v)}; }
inline F32x4 operator^(F32x4 a, F32x4 b) { return {_mm_xor_ps(a.v, b.v)}; }
// a AND NOT m, written with the mask second as it reads: "a without m".
inline F32x4 andNot(F32x4 a, F32x4 m) { return {_mm_andnot_ps(m.v, a.v)}; }
// min and max return the second operand when either is NaN.
inline F32x4 min(F32x4 a, F32x4 b) { return {_mm_min_ps(a.v, b.v)}; }
inline F32x4 max(F32x4 a, F32x4 b) { return {_mm_max_ps(a.v, b.v)}; }
inline F32x4 sqrt(F32x4 a) { return {_mm_sqrt_ps(a.v)}; }
// The processor's 12-bit approximations.  Their low bits differ between
// processor makers; tests that reach them compute the expectation with the
// same instruction.
inline F32x4 rcp(F32x4 a) { return {_mm_rcp_ps(a.v)}; }
inline F32x4 rsqrt(F32x4 a) { return {_mm_rsqrt_ps(a.v)}; }

inline F32x4 cmpLt(F32x4 a, F32x4 b) { return {_mm_cmplt_ps(a.v, b.v)}; }
inline F32x4 cmpLe(F32x4 a, F32x4 b) { return {_mm_cmple_ps(a.v, b.v)}; }
inline F32x4 cmpEq(F32x4 a, F32x4 b) { return {_mm_cmpeq_ps(a.v, b.v)}; }
inline F32x4 cmpUnord(F32x4 a, F32x4 b) { return {_mm_cmpunord_ps(a.v, b.v)}; }
inline int signMask(F32x4 a) { return _mm_movemask_ps(a.v); }
// m ? a : b, lane by lane, for a mask m.
inline F32x4 select(F32x4 m, F32x4 a, F32x4 b) { return (a & m) | andNot(b, m); }

inline float lane0(F32x4 a) { return _mm_cvtss_f32(a.v); }

// ---- Two ways to broadcast a constant ---------------------------------------
// splat(c) is the default: GCC sees the broadcast, hoists it out of loops,
// folds it into a memory operand or shares it between uses as it sees fit.
// lanes(c) hides the broadcast behind an empty asm, so that the 16-byte
// literal is loaded whole, once, and kept or reloaded as a whole.  It pays
// off in long straight-line kernels with many distinct constants (the
// logarithms' polynomials), where GCC otherwise rebuilds a broadcast from a
// scalar load and a shuffle at each use; elsewhere it costs, since GCC can
// no longer fold or hoist the constant.  Measured over every kernel with
// splat written as lanes throughout: 2 to 3% slower in the geometric mean,
// and 18 to 50% slower in InvSqrt 32f A24, InvSqrt 64f A26/A50, Inv 32f
// A24 and Sqrt 64f A50; so lanes() is used by name where it was measured
// to help, and for constants only.
inline F32x4 lanes(float c) {
    __m128i v = _mm_set1_epi32(int(std::bit_cast<uint32_t>(c)));
    asm("" : "+x"(v));
    return {_mm_castsi128_ps(v)};
}
inline F64x2 lanes(double c) {
    __m128i v = _mm_set1_epi64x(int64_t(std::bit_cast<uint64_t>(c)));
    asm("" : "+x"(v));
    return {_mm_castsi128_pd(v)};
}

// ---- F64x2 ---------------------------------------------------------------
inline F64x2 load(const double* p) { return {_mm_loadu_pd(p)}; }
inline F64x2 loadAligned(const double* p) { return {_mm_load_pd(p)}; }
inline void store(double* p, F64x2 a) { _mm_storeu_pd(p, a.v); }
inline void storeAligned(double* p, F64x2 a) { _mm_store_pd(p, a.v); }
inline void storeHigh(double* p, F64x2 a) { _mm_storeh_pd(p, a.v); }
inline F64x2 splat(double x) { return {_mm_set1_pd(x)}; }
inline F64x2 splatBits64(uint64_t b) {
    return {_mm_castsi128_pd(_mm_set1_epi64x(int64_t(b)))};
}
inline F64x2 zeroF64x2() { return {_mm_setzero_pd()}; }
inline F64x2 setLanes(double a0, double a1) { return {_mm_setr_pd(a0, a1)}; }

inline F64x2 operator+(F64x2 a, F64x2 b) { return {_mm_add_pd(a.v, b.v)}; }
inline F64x2 operator-(F64x2 a, F64x2 b) { return {_mm_sub_pd(a.v, b.v)}; }
inline F64x2 operator*(F64x2 a, F64x2 b) { return {_mm_mul_pd(a.v, b.v)}; }
inline F64x2 operator/(F64x2 a, F64x2 b) { return {_mm_div_pd(a.v, b.v)}; }
// (a0 - b0, a1 + b1).
inline F64x2 addSub(F64x2 a, F64x2 b) { return {_mm_addsub_pd(a.v, b.v)}; }
inline F64x2 operator&(F64x2 a, F64x2 b) { return {_mm_and_pd(a.v, b.v)}; }
inline F64x2 operator|(F64x2 a, F64x2 b) { return {_mm_or_pd(a.v, b.v)}; }
inline F64x2 operator^(F64x2 a, F64x2 b) { return {_mm_xor_pd(a.v, b.v)}; }
inline F64x2 andNot(F64x2 a, F64x2 m) { return {_mm_andnot_pd(m.v, a.v)}; }
inline F64x2 min(F64x2 a, F64x2 b) { return {_mm_min_pd(a.v, b.v)}; }
inline F64x2 max(F64x2 a, F64x2 b) { return {_mm_max_pd(a.v, b.v)}; }
inline F64x2 sqrt(F64x2 a) { return {_mm_sqrt_pd(a.v)}; }

inline F64x2 cmpLt(F64x2 a, F64x2 b) { return {_mm_cmplt_pd(a.v, b.v)}; }
inline F64x2 cmpLe(F64x2 a, F64x2 b) { return {_mm_cmple_pd(a.v, b.v)}; }
inline F64x2 cmpEq(F64x2 a, F64x2 b) { return {_mm_cmpeq_pd(a.v, b.v)}; }
inline F64x2 cmpUnord(F64x2 a, F64x2 b) { return {_mm_cmpunord_pd(a.v, b.v)}; }
inline int signMask(F64x2 a) { return _mm_movemask_pd(a.v); }
inline F64x2 select(F64x2 m, F64x2 a, F64x2 b) { return (a & m) | andNot(b, m); }

inline double lane0(F64x2 a) { return _mm_cvtsd_f64(a.v); }
inline double lane1(F64x2 a) { return _mm_cvtsd_f64(_mm_unpackhi_pd(a.v, a.v)); }
// (a0, b0) and (a1, b1): the two ways of pairing the lanes of two vectors.
inline F64x2 unpackLo(F64x2 a, F64x2 b) { return {_mm_unpacklo_pd(a.v, b.v)}; }
inline F64x2 unpackHi(F64x2 a, F64x2 b) { return {_mm_unpackhi_pd(a.v, b.v)}; }
// (a1, a0).
inline F64x2 swapLanes(F64x2 a) { return {_mm_shuffle_pd(a.v, a.v, 1)}; }

// Conversions between the lane widths: the two low floats widened exactly,
// or two doubles rounded to the two low floats (the high two become zero).
inline F64x2 widenLow(F32x4 a) { return {_mm_cvtps_pd(a.v)}; }
inline F32x4 narrow(F64x2 a) { return {_mm_cvtpd_ps(a.v)}; }
// The two high floats widened exactly; and four doubles rounded to four
// floats, lo's lanes first.
inline F64x2 widenHigh(F32x4 a) { return {_mm_cvtps_pd(_mm_movehl_ps(a.v, a.v))}; }
inline F32x4 narrow(F64x2 lo, F64x2 hi) {
    return {_mm_movelh_ps(_mm_cvtpd_ps(lo.v), _mm_cvtpd_ps(hi.v))};
}

// Float lanes to 32-bit integers, rounded in the current mode (nearest in
// every guarded member); and the two low integer lanes widened exactly to
// doubles, or the high two.
inline I32x4 roundToInt32(F32x4 a);
inline F64x2 int32LowToF64x2(I32x4 a);
inline F64x2 int32HighToF64x2(I32x4 a);

// A hint to fetch the 64 bytes at p without keeping them in the caches; it
// never faults, also past the end of an array.
inline void prefetchNonTemporal(const void* p) {
    _mm_prefetch(static_cast<const char*>(p), _MM_HINT_NTA);
}

// ---- I32x4 ---------------------------------------------------------------
inline I32x4 loadI(const void* p) { return {_mm_loadu_si128(static_cast<const __m128i*>(p))}; }
inline void storeI(void* p, I32x4 a) { _mm_storeu_si128(static_cast<__m128i*>(p), a.v); }
inline I32x4 splat32(uint32_t x) { return {_mm_set1_epi32(int(x))}; }
inline I32x4 splat64(uint64_t x) { return {_mm_set1_epi64x(int64_t(x))}; }
// Lanes in memory order, lane 0 first: four 32-bit integers (table entries
// gathered by scalar index).
inline I32x4 setLanes32(uint32_t a0, uint32_t a1, uint32_t a2, uint32_t a3) {
    return {_mm_setr_epi32(int(a0), int(a1), int(a2), int(a3))};
}
// Two 64-bit integers, lane 0 first (table entries gathered by scalar index).
inline I32x4 setLanes64(uint64_t a0, uint64_t a1) { return {_mm_set_epi64x(int64_t(a1), int64_t(a0))}; }

// Two 64-bit table entries loaded straight into the low and high lanes
// (no trip through the integer registers).
inline I32x4 gather64(const uint64_t* table, uint64_t i0, uint64_t i1) {
    using EntryBits = double __attribute__((may_alias));
    __m128d low = _mm_load_sd(reinterpret_cast<const EntryBits*>(table + i0));
    return {_mm_castpd_si128(_mm_loadh_pd(low, reinterpret_cast<const EntryBits*>(table + i1)))};
}

inline I32x4 operator&(I32x4 a, I32x4 b) { return {_mm_and_si128(a.v, b.v)}; }
inline I32x4 operator|(I32x4 a, I32x4 b) { return {_mm_or_si128(a.v, b.v)}; }
inline I32x4 operator^(I32x4 a, I32x4 b) { return {_mm_xor_si128(a.v, b.v)}; }
inline I32x4 andNot(I32x4 a, I32x4 m) { return {_mm_andnot_si128(m.v, a.v)}; }
inline I32x4 add32(I32x4 a, I32x4 b) { return {_mm_add_epi32(a.v, b.v)}; }
inline I32x4 sub32(I32x4 a, I32x4 b) { return {_mm_sub_epi32(a.v, b.v)}; }
inline I32x4 add64(I32x4 a, I32x4 b) { return {_mm_add_epi64(a.v, b.v)}; }
inline I32x4 sub64(I32x4 a, I32x4 b) { return {_mm_sub_epi64(a.v, b.v)}; }
template <int n>
inline I32x4 shl32(I32x4 a) { return {_mm_slli_epi32(a.v, n)}; }
template <int n>
inline I32x4 shr32(I32x4 a) { return {_mm_srli_epi32(a.v, n)}; }  // logical
template <int n>
inline I32x4 sar32(I32x4 a) { return {_mm_srai_epi32(a.v, n)}; }  // arithmetic
template <int n>
inline I32x4 shl64(I32x4 a) { return {_mm_slli_epi64(a.v, n)}; }
template <int n>
inline I32x4 shr64(I32x4 a) { return {_mm_srli_epi64(a.v, n)}; }
// The high 16 bits of the unsigned products of the 16-bit lanes: on 32-bit
// lanes below 2^16 times a factor below 2^16 (the high halves zero), that
// is (a * b) >> 16 per 32-bit lane, a division by a constant.
inline I32x4 mulHigh16(I32x4 a, I32x4 b) { return {_mm_mulhi_epu16(a.v, b.v)}; }
// Signed 32-bit compares: all ones where true.
inline I32x4 cmpGt32(I32x4 a, I32x4 b) { return {_mm_cmpgt_epi32(a.v, b.v)}; }
inline I32x4 cmpLt32(I32x4 a, I32x4 b) { return {_mm_cmplt_epi32(a.v, b.v)}; }
inline I32x4 cmpEq32(I32x4 a, I32x4 b) { return {_mm_cmpeq_epi32(a.v, b.v)}; }
// The 32-bit lanes regrouped: the even lanes of a then of b, (a0, a2, b0,
// b2); and the low or the high pairs of a and b interleaved, (a0, b0, a1,
// b1) and (a2, b2, a3, b3).
inline I32x4 evenLanes(I32x4 a, I32x4 b) {
    return {_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v), _MM_SHUFFLE(2, 0, 2, 0)))};
}
inline I32x4 unpackLo32(I32x4 a, I32x4 b) { return {_mm_unpacklo_epi32(a.v, b.v)}; }
inline I32x4 unpackHi32(I32x4 a, I32x4 b) { return {_mm_unpackhi_epi32(a.v, b.v)}; }
// The high or the low 32-bit word of each 64-bit lane, repeated in both
// halves of that lane, so that 32-bit compares give 64-bit lane masks.
inline I32x4 repeatHighWords(I32x4 a) { return {_mm_shuffle_epi32(a.v, _MM_SHUFFLE(3, 3, 1, 1))}; }
inline I32x4 repeatLowWords(I32x4 a) { return {_mm_shuffle_epi32(a.v, _MM_SHUFFLE(2, 2, 0, 0))}; }
// Integer lanes to float, rounded by the current mode (exact below 2^24).
inline F32x4 toFloat(I32x4 a) { return {_mm_cvtepi32_ps(a.v)}; }

// Sign bits of the four 32-bit lanes, or of the two 64-bit lanes.
inline int signMask32(I32x4 a) { return _mm_movemask_ps(_mm_castsi128_ps(a.v)); }
inline int signMask64(I32x4 a) { return _mm_movemask_pd(_mm_castsi128_pd(a.v)); }
inline I32x4 select(I32x4 m, I32x4 a, I32x4 b) { return (a & m) | andNot(b, m); }

inline uint32_t lane0(I32x4 a) { return uint32_t(_mm_cvtsi128_si32(a.v)); }
// 32-bit lane k, by a shuffle that brings it to lane 0.
template <int k>
inline uint32_t laneAt(I32x4 a) { return uint32_t(_mm_cvtsi128_si32(_mm_shuffle_epi32(a.v, k * 0x55))); }
inline uint64_t lane0of64(I32x4 a) { return uint64_t(_mm_cvtsi128_si64(a.v)); }
inline uint64_t lane1of64(I32x4 a) { return uint64_t(_mm_cvtsi128_si64(_mm_unpackhi_epi64(a.v, a.v))); }

// ---- Operand order of the commutative operations ------------------------------
// With both operands NaN, addps and mulps (and addss, mulss) give the first
// operand's NaN, made quiet.  GCC takes a + b and a * b, scalar or vector,
// as commutative and may swap the operands, so which NaN comes out would
// depend on register allocation, and a scalar twin of a vector formula (a
// peel or a tail) could disagree with it.  Where that choice is visible (a
// member whose both operands come from the caller), these forms fix it: the
// first operand is the instruction's destination.  Operands are taken in
// registers only, since the legacy encodings fault on an unaligned memory
// operand.
inline F32x4 addOrdered(F32x4 a, F32x4 b) {
    asm("addps %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}
inline F64x2 addOrdered(F64x2 a, F64x2 b) {
    asm("addpd %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}
inline F32x4 mulOrdered(F32x4 a, F32x4 b) {
    asm("mulps %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}
inline F64x2 mulOrdered(F64x2 a, F64x2 b) {
    asm("mulpd %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}
inline float addOrdered(float a, float b) {
    asm("addss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline double addOrdered(double a, double b) {
    asm("addsd %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline float mulOrdered(float a, float b) {
    asm("mulss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline double mulOrdered(double a, double b) {
    asm("mulsd %1, %0" : "+x"(a) : "x"(b));
    return a;
}

inline I32x4 roundToInt32(F32x4 a) { return {_mm_cvtps_epi32(a.v)}; }
inline F64x2 int32LowToF64x2(I32x4 a) { return {_mm_cvtepi32_pd(a.v)}; }
inline F64x2 int32HighToF64x2(I32x4 a) { return {_mm_cvtepi32_pd(_mm_unpackhi_epi64(a.v, a.v))}; }

// ---- Raw-bit views -------------------------------------------------------
inline I32x4 bitsOf(F32x4 a) { return {_mm_castps_si128(a.v)}; }
inline I32x4 bitsOf(F64x2 a) { return {_mm_castpd_si128(a.v)}; }
inline F32x4 asF32x4(I32x4 a) { return {_mm_castsi128_ps(a.v)}; }
inline F64x2 asF64x2(I32x4 a) { return {_mm_castsi128_pd(a.v)}; }
inline F64x2 asF64x2(F32x4 a) { return {_mm_castps_pd(a.v)}; }
inline F32x4 asF32x4(F64x2 a) { return {_mm_castpd_ps(a.v)}; }

// The high 32-bit words of two doubles, gathered into lanes 0 and 1 (lanes
// 2 and 3 repeat them): the form the 64-bit screens test.
inline I32x4 highWords(F64x2 a) {
    return {_mm_shuffle_epi32(_mm_castpd_si128(a.v), _MM_SHUFFLE(3, 1, 3, 1))};
}
// High words of four doubles, in element order, in one vector.
inline I32x4 highWords(F64x2 a, F64x2 b) {
    return {_mm_castps_si128(
        _mm_shuffle_ps(_mm_castpd_ps(a.v), _mm_castpd_ps(b.v), _MM_SHUFFLE(3, 1, 3, 1)))};
}

// Low words of four doubles, in element order, in one vector: where the
// shifter tricks leave their integers.
inline I32x4 lowWords(F64x2 a, F64x2 b) {
    return {_mm_castps_si128(
        _mm_shuffle_ps(_mm_castpd_ps(a.v), _mm_castpd_ps(b.v), _MM_SHUFFLE(2, 0, 2, 0)))};
}

}  // namespace orv
