"""Statuses and flags as NumPy's floating-point errors under np.errstate,
TypeError for the dtypes a family has no member for, empty arrays, and the
GIL released during the calls."""
import ctypes
import itertools
import re
import threading
import warnings

import numpy as np
import pytest

import orvvm
from orvvm import _orvvm
from conftest import DTYPES, EXPORTS, direct, operand_types

KIND = {12: "over", 17: "under", 18: "divide", 19: "invalid"}
MESSAGE = {"over": "overflow encountered in", "under": "underflow encountered in",
           "divide": "divide by zero encountered in", "invalid": "invalid value encountered in"}

LOOP_OF = {}
for _name, _level, _family, _dtypes, _member in orvvm.members():
    LOOP_OF.setdefault(_member, getattr(getattr(orvvm, _level), _name))

UNARY = [0.0, -0.0, 1.0, -1.0, 2.0, -2.0, 0.5, 1e-3, 100.0, -100.0, 1000.0, -1000.0, 1e30, -1e30, 1e300,
         -1e300, 1e-300, 1e-310, 1e-42, np.inf, -np.inf, np.nan]
BINARY = [0.0, -0.0, 1.0, -1.0, 2.0, 0.5, -2.5, 1000.0, -1000.0, 1e30, np.inf, -np.inf, np.nan]


def cases(row):
    values = UNARY if row["shape"] in ("U", "S") else BINARY
    arity = 2 if row["shape"] in ("B", "K") else 1
    dtype = DTYPES[row["type"]]
    with np.errstate(all="ignore"):
        for combo in itertools.product(values, repeat=arity):
            yield [np.array([v], dtype) for v in combo]


def reported(ufunc, inputs, setting):
    """Calls the ufunc under np.errstate(all=setting) and returns what NumPy
    made of it: the kinds warned, or the exception raised."""
    with warnings.catch_warnings(record=True) as caught, np.errstate(all=setting):
        warnings.simplefilter("always")
        try:
            ufunc(*inputs)
        except FloatingPointError as e:
            return e
    return {kind for kind, text in MESSAGE.items() for w in caught if str(w.message).startswith(text)}


REAL_WARNING = [n for n, r in EXPORTS.items() if r["type"] in ("32f", "64f") and r["warnings"] != "none"]


@pytest.mark.parametrize("name", REAL_WARNING)
def test_real_statuses_go_to_errstate(lib, name):
    """One element at a time: its status, and nothing else (no flag the
    member's arithmetic raised on the way), is what NumPy reports, under
    raise, warn and ignore.  Then two elements of different kinds in one
    call: both are reported, not only the last one, which the status
    names."""
    ufunc = LOOP_OF[name]
    kinds_seen = {}
    for inputs in cases(EXPORTS[name]):
        args = inputs if EXPORTS[name]["shape"] != "K" else [inputs[0], inputs[1][0]]
        status, _ = direct(lib, name, *args)
        assert status in (0, 12, 17, 18, 19)
        raised = reported(ufunc, args, "raise")
        warned = reported(ufunc, args, "warn")
        assert reported(ufunc, args, "ignore") == set()
        if status == 0:
            assert raised == set() and warned == set(), (name, args)
        else:
            kind = KIND[status]
            assert isinstance(raised, FloatingPointError), (name, args, status)
            assert str(raised) == f"{MESSAGE[kind]} {ufunc.__name__}"
            assert warned == {kind}, (name, args, status)
            kinds_seen.setdefault(kind, args)
    assert kinds_seen, name
    if len(kinds_seen) >= 2:
        (k1, a1), (k2, a2) = list(kinds_seen.items())[:2]
        both = [np.concatenate([x, y]) if np.ndim(x) else x for x, y in zip(a1, a2)]
        if EXPORTS[name]["shape"] == "K" and a1[1] != a2[1]:
            both[1] = np.concatenate([np.atleast_1d(a1[1]), np.atleast_1d(a2[1])])
        assert reported(ufunc, both, "warn") == {k1, k2}, (name, both)
        # In place: the elements are traced from the inputs, not from the
        # results that overwrote them.
        if EXPORTS[name]["shape"] != "S":
            with warnings.catch_warnings(record=True) as caught, np.errstate(all="warn"):
                warnings.simplefilter("always")
                x = both[0].copy()
                ufunc(x, *both[1:], out=x)
            assert {k for k, text in MESSAGE.items() for w in caught if str(w.message).startswith(text)} == {k1, k2}
        with np.errstate(all="ignore", **{k1: "raise"}), pytest.raises(FloatingPointError, match=MESSAGE[k1]):
            ufunc(*both)


def test_every_kind_of_status_is_exercised(lib):
    seen = set()
    for name in REAL_WARNING:
        for inputs in cases(EXPORTS[name]):
            args = inputs if EXPORTS[name]["shape"] != "K" else [inputs[0], inputs[1][0]]
            status, _ = direct(lib, name, *args)
            seen.add(status)
    assert {12, 17, 18, 19} <= seen


def test_numpy_defaults_warn_except_underflow():
    with np.errstate(divide="warn", over="warn", under="ignore", invalid="warn"):
        with pytest.warns(RuntimeWarning, match="overflow encountered in exp"):
            orvvm.exp(np.array([1000.0, 1.0]))
        with pytest.warns(RuntimeWarning, match="divide by zero encountered in log"):
            orvvm.log(np.array([0.0]))
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            orvvm.exp(np.array([-1000.0]))


FE_INVALID, FE_DIVBYZERO, FE_OVERFLOW, FE_UNDERFLOW = 0x01, 0x04, 0x08, 0x10
FLAG_KIND = {FE_INVALID: "invalid", FE_DIVBYZERO: "divide", FE_OVERFLOW: "over", FE_UNDERFLOW: "under"}
COMPLEX = [n for n, r in EXPORTS.items() if r["type"] in ("32fc", "64fc")]


@pytest.mark.parametrize("name", COMPLEX)
def test_complex_flags_go_to_errstate(lib, name):
    """Complex members return orvStatusOk and tell of their special cases by
    the IEEE flags they raise: NumPy reports exactly those."""
    libm = ctypes.CDLL("libm.so.6")
    row = EXPORTS[name]
    ufunc = LOOP_OF[name]
    parts = [0.0, 1.0, -1.0, 1e30, 1e-30, np.inf, np.nan]
    # A phasor member (shape P) takes real arguments.
    values = parts if row["shape"] == "P" else [complex(a, b) for a in parts for b in parts]
    source = operand_types(row)[0][0]
    arity = 2 if row["shape"] in ("B", "K") else 1
    rng = np.random.default_rng(7)
    for _ in range(60 if arity == 2 else len(values)):
        picked = [values[i] for i in rng.integers(0, len(values), arity)] if arity == 2 else [values[_]]
        with np.errstate(all="ignore"):
            args = [np.array([v], DTYPES[source]) for v in picked]
        if row["shape"] == "K":
            args[1] = args[1][0]
        libm.feclearexcept(0x3D)
        status, _ = direct(lib, name, *args)
        flags = libm.fetestexcept(0x3D)
        assert status == 0
        kinds = {kind for flag, kind in FLAG_KIND.items() if flags & flag}
        assert reported(ufunc, args, "warn") == kinds, (name, picked)
        assert isinstance(reported(ufunc, args, "raise"), FloatingPointError) == bool(kinds), (name, picked)


def test_dtypes_without_a_member_raise_type_error():
    checked = 0
    for name in orvvm.highest.__all__:
        ufunc = getattr(orvvm, name)
        if not isinstance(ufunc, np.ufunc):
            continue
        loops = [t.split("->")[0] for t in ufunc.types]
        for dtype in (np.float32, np.float64, np.complex64, np.complex128):
            code = np.dtype(dtype).char
            args = [np.ones(3, dtype)] * ufunc.nin
            if any(all(np.can_cast(code, c) for c in loop) for loop in loops):
                with np.errstate(all="ignore"):
                    ufunc(*args)
            else:
                given = ", ".join([np.dtype(dtype).name] * ufunc.nin)
                with pytest.raises(TypeError, match=re.escape(f"orvvm's {name} has no member for "
                                                              + (f"({given})" if ufunc.nin > 1 else given))) as e:
                    ufunc(*args)
                assert isinstance(e.value.__cause__, TypeError)
                checked += 1
    assert checked > 0
    with pytest.raises(TypeError, match=re.escape("orvvm's erf has no member for complex128 (nor for a type it "
                                                  "casts to safely): its members take float32; float64")):
        orvvm.erf(np.array([1j]))
    with pytest.raises(TypeError, match=re.escape("its members take (float32, float32); (float64, float64)")):
        orvvm.arctan2(np.array([1j]), 1.0)
    # Integers are computed in float64, as NumPy computes them.
    assert orvvm.exp(np.arange(3)).dtype == np.float64
    assert orvvm.exp(np.arange(3, dtype=np.int8)).dtype == np.float32


def test_empty_arrays_make_no_call():
    before = _orvvm._call_count()
    assert orvvm.exp(np.array([])).shape == (0,)
    assert orvvm.add(np.zeros((0, 3)), np.zeros(3)).shape == (0, 3)
    assert _orvvm._call_count() == before


def test_calls_run_without_the_gil():
    # Short runs, where NumPy itself keeps the GIL, and long ones.
    for n in (1, 10, 100000):
        orvvm.sin(np.linspace(0, 1, n))
        assert _orvvm._last_call_without_gil()
    # Threads calling at once get what one thread gets.
    x = np.linspace(-50, 50, 200001)
    want = orvvm.exp(x)
    results = [None] * 4

    def work(i):
        results[i] = orvvm.exp(x)

    threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert all(np.array_equal(r, want) for r in results)
