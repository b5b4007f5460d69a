// Accuracy records.  Each member states, next to its code, the largest
// error measured for it and the input ranges to sample:
//
//   ORV_ACCURACY(orvsExp_32f_A21, 1.9, ORV_RANGE(-87.3, 88.7), ORV_RANGE(-104, -87.3));
//
// The number is the maximum error in ulps that the accuracy tests measured
// against a correctly rounded reference (0.5 for an operation that is one
// IEEE rounding, 0 for an exact one); the tests
// assert it, on top of the bound of the member's tier.  The first range is
// the member's ordinary range, which the benchmarks and the report sample
// too; the further ranges reach the rest of the domain.  A range holds a
// low and a high bound for each real input component in argument order:
// one pair for a real unary member, two for a binary one or a complex
// argument, four for a binary complex one.
//
// ORV_EXCLUDE(x...) in place of a range names one input (a value per
// component), and ORV_EXCLUDE_MAGNITUDES(lo, hi, ...) a box of magnitudes
// (|x| in [lo, hi) per component), where the member's arithmetic, as
// designed, falls outside its tier; the measurement leaves them out, and
// the family's tests pin what the member does there.  Each one is explained
// next to the record.
//
// The build collects these lines for the tests, the report and the
// benchmarks; in the library they only check that the member exists, so
// they cost nothing.
#pragma once

#define ORV_ACCURACY(member, maxUlp, ...) \
    static_assert(sizeof(&member) != 0 && (maxUlp) >= 0, "accuracy record of " #member)
