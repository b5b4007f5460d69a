/* The arrays of one timed call, whatever the shape, and the glibc scalar
 * loops that a user would write instead of calling orvvm.  Shared by the C
 * loops (scalar_loops.c) and the C++ benchmark code, so plain C. */
#ifndef ORVVM_BENCH_LOOPS_H
#define ORVVM_BENCH_LOOPS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* src1 is src for the one-source shapes, dst1 is dst for the
 * one-destination shapes; constant points to the K shape's constant in
 * the element type. */
typedef struct {
    const void* src1;
    const void* src2;
    void* dst1;
    void* dst2;
    const void* constant;
    int32_t len;
} OrvBenchArrays;

typedef void (*OrvBenchLoop)(const OrvBenchArrays* arrays);

/* One family's scalar loops, by element type in the order 32f, 64f, 32fc,
 * 64fc; label names the C expression of the loop body (e.g. "expf",
 * "1/sqrtf"), loop is null where the family lacks the type or glibc has no
 * such function. */
typedef struct {
    const char* label;
    OrvBenchLoop loop;
} OrvScalarLoop;

typedef struct {
    const char* family;
    OrvScalarLoop types[4];
} OrvScalarFamily;

extern const OrvScalarFamily orvScalarFamilies[];
extern const int orvScalarFamilyCount;
/* The same loops built with -O3 -fno-math-errno. */
extern const OrvScalarFamily orvScalarFamiliesFast[];
extern const int orvScalarFamilyCountFast;

#ifdef __cplusplus
}
#endif

#endif
