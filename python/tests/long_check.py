#!/usr/bin/python3
"""The long check of the Python package: one ufunc call on more elements
than a library call's 32-bit count can take (2**31 + 200 float32 elements,
8 GiB, in place), split into two calls.

    PYTHONPATH=build/python /usr/bin/python3 python/tests/long_check.py

Part of `cmake --build build --target long_checks`; the test set checks the
same split with a small stand-in limit."""
import numpy as np

import orvvm
from orvvm import _orvvm

n = 2 ** 31 + 200
x = np.empty(n, np.float32)
x[:] = 1.5
marks = {0: -2.0, 2 ** 31 - 129: 3.0, 2 ** 31 - 128: 4.0, n - 1: -5.0}
for i, v in marks.items():
    x[i] = v
before = _orvvm._call_count()
orvvm.square(x, out=x)
calls = _orvvm._call_count() - before
assert calls == 2, calls
for i, v in marks.items():
    assert x[i] == v * v, (i, x[i])
assert x[1] == 2.25 and x[2 ** 31 - 1] == 2.25 and x[n - 2] == 2.25
# The elements between the marks, a stretch at a time.
step = 1 << 26
for start in range(0, n, step):
    part = x[start:start + step]
    assert np.count_nonzero(part != np.float32(2.25)) == sum(start <= i < start + step for i in marks)
print(f"orvvm.square over {n} float32 elements in place: {calls} calls, every element right")
