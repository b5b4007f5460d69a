"""Shared pieces of the package's tests: the library's exports read from
the header and the export table (independently of the package's own
generator), direct calls of any export through ctypes on the shared
library, and input data per element type."""
import ctypes
import os
import re

import hypothesis
import numpy as np
import pytest

SOURCE = os.environ.get("ORVVM_SOURCE_DIR", os.path.join(os.path.dirname(__file__), "..", ".."))
LIBRARY = os.environ.get("ORVVM_LIBRARY")

# Reproducible property runs in the test set.  For longer runs:
# ORVVM_HYPOTHESIS_EXAMPLES=5000 pytest --hypothesis-seed=N (random streams).
hypothesis.settings.register_profile("orvvm", max_examples=int(os.environ.get("ORVVM_HYPOTHESIS_EXAMPLES", 150)),
                                     deadline=None, database=None,
                                     derandomize="ORVVM_HYPOTHESIS_EXAMPLES" not in os.environ)
hypothesis.settings.load_profile("orvvm")

DTYPES = {"32f": np.float32, "64f": np.float64, "32fc": np.complex64, "64fc": np.complex128}
REAL = {"32f": "32f", "64f": "64f", "32fc": "32f", "64fc": "64f"}
LEVEL_OF_TIER = {"A24": "highest", "A53": "highest", "A21": "middle", "A50": "middle",
                 "A11": "lowest", "A26": "lowest"}


class _C32(ctypes.Structure):
    _fields_ = [("re", ctypes.c_float), ("im", ctypes.c_float)]


class _C64(ctypes.Structure):
    _fields_ = [("re", ctypes.c_double), ("im", ctypes.c_double)]


_BY_VALUE = {"32f": ctypes.c_float, "64f": ctypes.c_double, "32fc": _C32, "64fc": _C64}


def _read_exports():
    header = open(os.path.join(SOURCE, "include", "orvvm.h")).read()
    declared = set(re.findall(r"\bOrvStatus\s+(orvs\w+)\s*\(", header))
    rows = {}
    with open(os.path.join(SOURCE, "tests", "exports.tsv")) as f:
        head = f.readline().rstrip("\n").split("\t")
        for line in f:
            row = dict(zip(head, line.rstrip("\n").split("\t")))
            if row["name"] in declared:
                rows[row["name"]] = row
    assert set(rows) == declared, "declared but not in the export table: %s" % (declared - set(rows))
    return rows


EXPORTS = _read_exports()


def operand_types(row):
    """The element types of the member's inputs and outputs, inputs first
    (the K shape's constant as the second input)."""
    t, r = row["type"], REAL[row["type"]]
    return {"U": ([t], [t]), "B": ([t, t], [t]), "K": ([t, t], [t]), "S": ([t], [t, t]),
            "M": ([t], [r]), "P": ([r], [t])}[row["shape"]]


@pytest.fixture(scope="session")
def lib():
    assert LIBRARY, "ORVVM_LIBRARY names the shared library under test"
    return ctypes.CDLL(LIBRARY)


def direct(lib, name, *inputs):
    """Calls export `name` once on contiguous copies of `inputs` (the K
    shape's constant a scalar) and returns (status, outputs), outputs in the
    order of the C arguments."""
    row = EXPORTS[name]
    ins, outs = operand_types(row)
    args, keep, n = [], [], None
    for i, (x, t) in enumerate(zip(inputs, ins)):
        if row["shape"] == "K" and i == 1:
            c = np.asarray(x, DTYPES[t]).reshape(())[()]
            args.append(_BY_VALUE[t](c.real, c.imag) if t.endswith("c") else _BY_VALUE[t](c))
        else:
            a = np.ascontiguousarray(x, DTYPES[t])
            n = a.size
            keep.append(a)
            args.append(a.ctypes.data_as(ctypes.c_void_p))
    results = [np.empty(n, DTYPES[t]) for t in outs]
    args += [r.ctypes.data_as(ctypes.c_void_p) for r in results] + [ctypes.c_int32(n)]
    f = getattr(lib, name)
    f.restype = ctypes.c_int32
    status = f(*args)
    return status, results


def bits(a):
    """The raw bit patterns of an array, so that NaN payloads and signed
    zeros compare too."""
    a = np.ascontiguousarray(a)
    part = a.itemsize // 2 if a.dtype.kind == "c" else a.itemsize
    return a.view({4: np.uint32, 8: np.uint64}[part])


SPECIALS = [0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 2.0, 3.0, -3.0, 0.75, 10.0, -10.0, 100.0, -100.0, 1000.0,
            -1000.0, 1e30, -1e30, 1e-30, 1e-42, -1e-42, np.inf, -np.inf, np.nan, 1e300, -1e300, 1e-310,
            3.4028235e38, 1.1754944e-38]


def sample(t, n, rng, specials=True):
    """n elements of type t: ordinary values of several scales, with the
    special values of the type mixed in when `specials`."""
    dtype = DTYPES[t]
    real = np.float32 if REAL[t] == "32f" else np.float64

    def part():
        with np.errstate(over="ignore"):
            x = np.where(rng.random(n) < 0.5, rng.uniform(-4, 4, n), rng.uniform(0.25, 0.75, n))
            if specials:
                pick = rng.random(n) < 0.3
                x = np.where(pick, rng.choice(np.array(SPECIALS), n), x)
            return x.astype(real)

    if t.endswith("c"):
        z = np.empty(n, dtype)
        z.real, z.imag = part(), part()
        return z
    return part()


def benign(t, n, rng):
    """Values that every member's blocks take without leaving for the
    element path: (0.25, 0.75), both parts for complex types."""
    dtype = DTYPES[t]
    x = rng.uniform(0.25, 0.75, n)
    if t.endswith("c"):
        x = x + 1j * rng.uniform(0.25, 0.75, n)
    return x.astype(dtype)
