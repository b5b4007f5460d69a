"""The ufuncs give the bits of a direct call of the library on the same
data, whatever the layout NumPy hands them: contiguous, strided, reversed,
broadcast, two-dimensional, out= (strided or in place), a K-shaped
constant broadcast or varying, and runs split into several calls.

A few members' results depend on an element's neighbours in its block and
on where the call ends, so the reference is one call per run that NumPy
hands the loop: the package gathers a strided run whole, and splits a long
one only at whole 128-element blocks, which the tests with benign values
(where every block passes its screen) hold to the bits of one call."""
import zlib

import hypothesis.extra.numpy as hnp
import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import orvvm
from orvvm import _orvvm
from conftest import DTYPES, EXPORTS, benign, bits, direct, operand_types, sample

# One loop per export: the ufunc at a level that reaches it.
LOOP_OF = {}
for _name, _level, _family, _dtypes, _member in orvvm.members():
    LOOP_OF.setdefault(_member, (getattr(getattr(orvvm, _level), _name), _dtypes))
NAMES = sorted(EXPORTS)


def numpy_order(name, outputs):
    """The C results in the ufunc's order: modf gives the fractional part
    first, as NumPy's does."""
    return outputs[::-1] if EXPORTS[name]["family"] == "Modf" else outputs


def expect(lib, name, *inputs):
    status, outputs = direct(lib, name, *inputs)
    assert status >= 0
    return numpy_order(name, outputs)


def as_tuple(r):
    return r if isinstance(r, tuple) else (r,)


def assert_same_bits(got, want, name):
    got = as_tuple(got)
    assert len(got) == len(want)
    for g, w in zip(got, want):
        assert g.dtype == w.dtype, name
        assert np.array_equal(bits(np.ravel(g)), bits(np.ravel(w))), name


def inputs_for(name, n, rng, make=sample):
    ins, _ = operand_types(EXPORTS[name])
    xs = [make(t, n, rng) for t in ins]
    if EXPORTS[name]["shape"] == "K":
        xs[1] = xs[1][0]
    return xs


def rng_for(name, salt):
    return np.random.default_rng(zlib.crc32(f"{name}/{salt}".encode()))


def quiet():
    return np.errstate(all="ignore")


@pytest.mark.parametrize("name", NAMES)
def test_one_dimensional_layouts(lib, name):
    ufunc, _ = LOOP_OF[name]
    shape = EXPORTS[name]["shape"]
    rng = rng_for(name, "1d")
    n = 301
    xs = inputs_for(name, 3 * n, rng)
    arrays = [i for i, x in enumerate(xs) if np.ndim(x)]
    with quiet():
        # Contiguous.
        assert_same_bits(ufunc(*xs), expect(lib, name, *xs), name)
        # Strided and reversed: every array input taken with step 3, -1, -2.
        # Strided and reversed.  Results go to a given forward array: NumPy
        # may walk operands that all run backwards in memory order, and for
        # the members whose results depend on their neighbours that would
        # be another call.
        for step in (3, -1, -2):
            ys = [x[::step] if i in arrays else x for i, x in enumerate(xs)]
            want = expect(lib, name, *ys)
            assert_same_bits(ufunc(*ys, out=tuple(np.empty_like(w) for w in want)), want, name)
        # Broadcast: one input a single element at stride 0; for two
        # inputs also as a one-element array and a scalar.
        for i in arrays:
            ys = list(xs)
            ys[i] = np.broadcast_to(xs[i][5:6], xs[i].shape)
            assert_same_bits(ufunc(*ys), expect(lib, name, *ys), name)
            if shape == "B":
                for single in (xs[i][5:6], xs[i][5]):
                    zs = list(ys)
                    zs[i] = single
                    assert_same_bits(ufunc(*zs), expect(lib, name, *ys), name)
        # out=: contiguous, strided, and in place over the first input when
        # it has the result's type.
        want = expect(lib, name, *xs)
        outs = tuple(np.empty_like(w) for w in want)
        r = ufunc(*xs, out=outs)
        assert all(a is b for a, b in zip(as_tuple(r), outs))
        assert_same_bits(outs, want, name)
        big = tuple(np.zeros(2 * w.size, w.dtype) for w in want)
        ufunc(*xs, out=tuple(b[::2] for b in big))
        assert_same_bits(tuple(b[::2] for b in big), want, name)
        assert all(np.all(b[1::2] == 0) for b in big)
        if xs[0].dtype == want[0].dtype:
            x0 = xs[0].copy()
            ufunc(x0, *xs[1:], out=(x0,) + outs[1:])
            assert_same_bits((x0,) + outs[1:], want, name)


def assert_runs_match(lib, name, ufunc, operands, rows):
    """NumPy hands a two-dimensional operation to the loop row by row, or,
    when it buffers or the rows join up, as one run in C order: the
    reference is one call per run the loop was given."""
    before = _orvvm._call_count()
    got = as_tuple(ufunc(*operands))
    calls = _orvvm._call_count() - before
    assert calls in (1, rows)
    shape = got[0].shape
    full = [np.broadcast_to(g, shape) if np.ndim(g) else g for g in operands]
    runs = [[g[i] if np.ndim(g) else g for g in full] for i in range(rows)] if calls == rows else \
        [[g.ravel() if np.ndim(g) else g for g in full]]
    parts = [expect(lib, name, *run) for run in runs]
    assert_same_bits(got, tuple(np.concatenate([p[k] for p in parts]) for k in range(len(got))), name)


@pytest.mark.parametrize("name", NAMES)
def test_two_dimensional_layouts(lib, name):
    ufunc, _ = LOOP_OF[name]
    rng = rng_for(name, "2d")
    xs = inputs_for(name, 7 * 80, rng)
    with quiet():
        # Rows of 37 elements at step 2, 80 apart: no single stride covers
        # them.
        assert_runs_match(lib, name, ufunc, [x.reshape(7, 80)[:, 1:75:2] if np.ndim(x) else x for x in xs], 7)
        if EXPORTS[name]["shape"] == "B":
            assert_runs_match(lib, name, ufunc, [xs[0][:7, None], xs[1][None, :37]], 7)


@pytest.mark.parametrize("name", [n for n in NAMES if EXPORTS[n]["shape"] == "K"])
def test_varying_constant_goes_in_stretches(lib, name):
    ufunc, _ = LOOP_OF[name]
    rng = rng_for(name, "k")
    x = inputs_for(name, 200, rng)[0]
    values = inputs_for(name, 5, rng)[0][:5]
    lengths = [1, 60, 3, 100, 36]
    c = np.repeat(values, lengths)
    with quiet():
        want = np.concatenate([expect(lib, name, part, v)[0]
                               for part, v in zip(np.split(x, np.cumsum(lengths)[:-1]), values)])
        before = _orvvm._call_count()
        got = ufunc(x, c)
        assert _orvvm._call_count() - before == len(lengths)
    assert_same_bits(got, (want,), name)


class CallLength:
    """The most elements one library call takes, set for a test."""

    def __init__(self, n):
        self.n = n

    def __enter__(self):
        self.old = _orvvm._set_max_call_length(self.n)

    def __exit__(self, *exc):
        _orvvm._set_max_call_length(self.old)


def test_call_length_setting():
    assert _orvvm._set_max_call_length(2 ** 31 - 1) == 2 ** 31 - 1
    for bad in (0, -1, 2 ** 31):
        with pytest.raises(ValueError):
            _orvvm._set_max_call_length(bad)
    assert _orvvm._set_max_call_length(2 ** 31 - 1) == 2 ** 31 - 1


@pytest.mark.parametrize("name", NAMES)
def test_long_runs_split_into_calls(lib, name):
    """The split that keeps a call's count within 2**31 - 1, seen with a
    small stand-in: 1000 elements in pieces of 256 (a limit of 300 rounded
    down to whole 128-element rounds) or 128 give the bits of one call."""
    ufunc, _ = LOOP_OF[name]
    rng = rng_for(name, "long")
    xs = inputs_for(name, 1000, rng, make=benign)
    want = expect(lib, name, *xs)
    for limit, calls in ((300, 4), (128, 8)):
        with CallLength(limit):
            before = _orvvm._call_count()
            got = ufunc(*xs)
            assert _orvvm._call_count() - before == calls
            assert_same_bits(got, want, name)
            # Strided: gathered blocks no longer than a call may be.
            ys = [np.repeat(x, 2)[::2] if np.ndim(x) else x for x in xs]
            before = _orvvm._call_count()
            assert_same_bits(ufunc(*ys), want, name)
            assert _orvvm._call_count() - before == calls


def test_reduce_and_accumulate_run_in_order():
    x = np.array([1.0, 2.0, 3.0, 4.0, 5.0, 6.0])
    assert orvvm.add.reduce(x) == 21.0
    assert np.array_equal(orvvm.multiply.accumulate(x), np.cumprod(x))
    assert np.array_equal(orvvm.subtract.accumulate(x), np.subtract.accumulate(x))


@st.composite
def layouts(draw):
    name = draw(st.sampled_from(NAMES))
    ins, _ = operand_types(EXPORTS[name])
    n = draw(st.integers(1, 512))
    step = draw(st.sampled_from([1, 1, 2, 3, -1, -2]))
    offset = draw(st.integers(0, 3))
    xs = []
    for i, t in enumerate(ins):
        dtype = np.dtype(DTYPES[t])
        constant = EXPORTS[name]["shape"] == "K" and i == 1
        size = 1 if constant else n
        elems = (st.complex_numbers(width=dtype.itemsize * 8, allow_nan=True, allow_infinity=True)
                 if dtype.kind == "c" else st.floats(width=dtype.itemsize * 8))
        a = draw(hnp.arrays(dtype, offset + abs(step) * size, elements=elems))
        view = a[offset::step] if step > 0 else a[::-1][offset::-step]
        xs.append(view[0] if constant else view[:size])
    return name, xs


@given(layouts())
def test_any_layout_gives_the_bits_of_a_direct_call(lib, case):
    name, xs = case
    ufunc, _ = LOOP_OF[name]
    with quiet():
        assert_same_bits(ufunc(*xs), expect(lib, name, *xs), name)
