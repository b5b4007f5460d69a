#!/usr/bin/python3
"""orvvm.exp against numpy.exp on a million elements: time and accuracy.

    /usr/bin/python3 examples/python/exp_vs_numpy.py

Times are the best of several runs.  Errors are in ulps of the result,
against exp computed in a wider type (binary64 for float32 inputs, the x87
80-bit long double for float64 inputs), so the reference's own error is
far below what is measured.
"""
import time

import numpy as np

import orvvm


def best_time(f, x, repeats=7):
    out = np.empty_like(x)
    best = float("inf")
    for _ in range(repeats):
        start = time.perf_counter()
        f(x, out=out)
        best = min(best, time.perf_counter() - start)
    return best


def ulp_errors(y, reference):
    """|y - reference| in ulps of the reference rounded to y's type."""
    exact = reference.astype(y.dtype)
    ulp = np.spacing(np.abs(exact)).astype(reference.dtype)
    return np.abs(y.astype(reference.dtype) - reference) / ulp


def main():
    rng = np.random.default_rng(1)
    n = 1_000_000
    print(f"exp on {n} elements in (-80, 80) (float32) and (-700, 700) (float64)\n")
    print(f"{'':28} {'time (ms)':>10} {'max ulp':>10} {'mean ulp':>10}")
    for dtype, wide, limit in ((np.float32, np.float64, 80.0), (np.float64, np.longdouble, 700.0)):
        x = rng.uniform(-limit, limit, n).astype(dtype)
        reference = np.exp(x.astype(wide))
        rows = [("numpy.exp", np.exp)] + [(f"orvvm.{level}.exp", getattr(orvvm, level).exp)
                                          for level in orvvm.LEVELS]
        for label, f in rows:
            e = ulp_errors(f(x), reference)
            print(f"{label + ' ' + np.dtype(dtype).name:28} {1e3 * best_time(f, x):10.3f} "
                  f"{e.max():10.3f} {e.mean():10.4f}")
        print()


if __name__ == "__main__":
    main()
