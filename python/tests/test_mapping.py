"""Every export of the library is reachable from Python, through the ufunc
named for its family, at the right accuracy level, for the right dtype; and
each ufunc computes its family's function, checked against NumPy and SciPy
at the lowest tier's error scale."""
import zlib

import numpy as np
import pytest
import scipy.special as sp

import orvvm
from conftest import DTYPES, EXPORTS, LEVEL_OF_TIER, operand_types

LOOPS = orvvm.members()
LEVEL_RANK = {"highest": 0, "middle": 1, "lowest": 2}


def test_every_export_is_reachable_and_nothing_else():
    assert {loop[4] for loop in LOOPS} == set(EXPORTS)


def test_each_loop_takes_the_member_of_its_dtype_and_level():
    seen = set()
    for name, level, family, dtypes, member in LOOPS:
        row = EXPORTS[member]
        assert row["family"] == family
        ins, outs = operand_types(row)
        assert [d.type for d in dtypes] == [DTYPES[t] for t in ins + outs], (name, member)
        same = [r for r in EXPORTS.values() if r["family"] == family and r["type"] == row["type"]]
        at_level = [r["name"] for r in same if LEVEL_OF_TIER.get(r["tier"]) == level]
        if at_level:
            assert member == at_level[0], (name, level)
        else:
            # No member of this level: the nearest more accurate one (for the
            # exact and untiered families, their only member).
            more = [r for r in same if r["tier"] == "-" or LEVEL_RANK[LEVEL_OF_TIER[r["tier"]]] < LEVEL_RANK[level]]
            assert more, (name, level)
            best = max(more, key=lambda r: -1 if r["tier"] == "-" else LEVEL_RANK[LEVEL_OF_TIER[r["tier"]]])
            assert member == best["name"], (name, level)
        seen.add((family, row["type"], level))
    for row in EXPORTS.values():
        for level in LEVEL_RANK:
            assert (row["family"], row["type"], level) in seen, (row["name"], level)


# NumPy's names (numpy.angle for the phase); other families go by their own
# name in lower case.
NUMPY_NAMES = {
    "Abs": "absolute", "Acos": "arccos", "Acosh": "arccosh", "Add": "add", "Arg": "angle",
    "Asin": "arcsin", "Asinh": "arcsinh", "Atan": "arctan", "Atan2": "arctan2", "Atanh": "arctanh",
    "Cbrt": "cbrt", "Ceil": "ceil", "Conj": "conjugate", "Cos": "cos", "Cosh": "cosh", "Div": "divide",
    "Exp": "exp", "Expm1": "expm1", "Floor": "floor", "Hypot": "hypot", "Inv": "reciprocal", "Ln": "log",
    "Log10": "log10", "Log1p": "log1p", "Modf": "modf", "Mul": "multiply", "Pow": "power", "Rint": "rint",
    "Sin": "sin", "Sinh": "sinh", "Sqr": "square", "Sqrt": "sqrt", "Sub": "subtract", "Tan": "tan",
    "Tanh": "tanh", "Trunc": "trunc",
}


def test_names_levels_and_aliases():
    for family, name in NUMPY_NAMES.items():
        assert hasattr(np, name), name
    for name, level, family, dtypes, member in LOOPS:
        assert name == NUMPY_NAMES.get(family, family.lower()), (family, name)
    for name, level, family, dtypes, member in LOOPS:
        ufunc = getattr(getattr(orvvm, level), name)
        assert isinstance(ufunc, np.ufunc)
        assert member in ufunc.__doc__
        if level == "highest":
            assert getattr(orvvm, name) is ufunc
    assert orvvm.abs is orvvm.absolute and orvvm.lowest.conj is orvvm.lowest.conjugate
    assert orvvm.true_divide is orvvm.divide
    import orvvm.lowest as low
    assert low is orvvm.lowest


def _round_half_away(x):
    t = np.trunc(x)
    return t + np.where(np.abs(x - t) >= 0.5, np.sign(x), 0)


# Family: (reference on float64/complex128 inputs, the inputs' ranges: for
# each input (re, im) interval pairs for complex members, or one interval).
# Ranges stay away from zeros and poles of the result, where a relative
# bound says nothing of which function was computed.
REFERENCES = {
    "Abs": (np.abs, [(-4, 4)]),
    "Acos": (np.arccos, [(-0.9, 0.9)]),
    "Acosh": (np.arccosh, [(1.5, 10)]),
    "Add": (np.add, [(0.5, 4), (0.5, 4)]),
    "Arg": (np.angle, [(0.5, 4)]),
    "Asin": (np.arcsin, [(0.1, 0.9)]),
    "Asinh": (np.arcsinh, [(0.1, 4)]),
    "Atan": (np.arctan, [(0.1, 4)]),
    "Atan2": (np.arctan2, [(0.5, 4), (-4, 4)]),
    "Atanh": (np.arctanh, [(0.1, 0.9)]),
    "Cbrt": (np.cbrt, [(-8, 8)]),
    "CdfNorm": (sp.ndtr, [(-5, 5)]),
    "CdfNormInv": (sp.ndtri, [(0.55, 0.99)]),
    "Ceil": (np.ceil, [(-10, 10)]),
    "CIS": (lambda x: np.exp(1j * x), [(-4, 4)]),
    "Conj": (np.conjugate, [(-4, 4)]),
    "Cos": (np.cos, [(-1.4, 1.4)]),
    "Cosh": (np.cosh, [(-5, 5)]),
    "Div": (np.divide, [(0.5, 4), (0.5, 4)]),
    "Erf": (sp.erf, [(0.1, 3)]),
    "Erfc": (sp.erfc, [(-2, 5)]),
    "ErfcInv": (sp.erfcinv, [(0.01, 0.9)]),
    "ErfInv": (sp.erfinv, [(0.1, 0.99)]),
    "Exp": (np.exp, [(-10, 10)]),
    "Expm1": (np.expm1, [(0.1, 2)]),
    "Floor": (np.floor, [(-10, 10)]),
    "Hypot": (np.hypot, [(-4, 4), (-4, 4)]),
    "Inv": (np.reciprocal, [(0.1, 10)]),
    "InvCbrt": (lambda x: 1 / np.cbrt(x), [(0.1, 8)]),
    "InvSqrt": (lambda x: 1 / np.sqrt(x), [(0.01, 100)]),
    "Ln": (np.log, [(2, 100)]),
    "Log10": (np.log10, [(2, 100)]),
    "Log1p": (np.log1p, [(0.1, 10)]),
    "Modf": (lambda x: np.modf(x), [(-10, 10)]),
    "Mul": (np.multiply, [(0.5, 4), (0.5, 4)]),
    "MulByConj": (lambda a, b: a * np.conj(b), [(0.5, 4), (0.5, 4)]),
    "NearbyInt": (np.rint, [(-10, 10)]),
    "Pow": (np.power, [(0.5, 4), (-3, 3)]),
    "Pow2o3": (lambda x: np.cbrt(x) ** 2, [(0.1, 8)]),
    "Pow3o2": (lambda x: np.sqrt(x) ** 3, [(0.1, 8)]),
    "Powx": (np.power, [(0.5, 4), (1.7, 1.7)]),
    "Rint": (np.rint, [(-10, 10)]),
    "Round": (_round_half_away, [(-10, 10)]),
    "Sin": (np.sin, [(0.1, 3)]),
    "SinCos": (lambda x: (np.sin(x), np.cos(x)), [(0.1, 1.4)]),
    "Sinh": (np.sinh, [(0.1, 5)]),
    "Sqr": (np.square, [(-4, 4)]),
    "Sqrt": (np.sqrt, [(0.01, 100)]),
    "Sub": (np.subtract, [(2, 4), (0.5, 1.5)]),
    "Tan": (np.tan, [(0.1, 1.4)]),
    "Tanh": (np.tanh, [(0.1, 5)]),
    "Trunc": (np.trunc, [(-10, 10)]),
}

# The lowest tiers' bounds: 11 correct bits for a 32-bit base, 26 for a
# 64-bit one, on top of a reference error of a few ulp of binary64.
LOWEST_BOUND = {np.float32: 2.0 ** -11, np.float64: 2.0 ** -26}
REFERENCE_ERROR = 2.0 ** -48


def _inputs(family, dtypes, rng, n=200):
    ranges = REFERENCES[family][1]
    out = []
    for (lo, hi), d in zip(ranges, dtypes):
        x = rng.uniform(lo, hi, n)
        if np.dtype(d).kind == "c":
            x = x * np.exp(1j * rng.uniform(-3, 3, n))
        out.append(x.astype(d))
    if family == "Powx":
        out[1][:] = out[1][0]
    return out


@pytest.mark.parametrize("loop", LOOPS, ids=lambda loop: f"{loop[0]}-{loop[1]}-{loop[3][0]}")
def test_each_ufunc_computes_its_family(loop):
    name, level, _, dtypes, member = loop
    # The family the ufunc's name stands for, whatever the package says.
    family = {v: k for k, v in NUMPY_NAMES.items()}.get(name) or next(f for f in REFERENCES if f.lower() == name)
    nin = getattr(orvvm, name).nin
    rng = np.random.default_rng(zlib.crc32(member.encode()))
    xs = _inputs(family, dtypes[:nin], rng)
    ufunc = getattr(getattr(orvvm, level), name)
    if family == "Powx":
        got = ufunc(xs[0], dtypes[1].type(xs[1][0]))
    else:
        got = ufunc(*xs)
    want = REFERENCES[family][0](*[x.astype(np.complex128 if x.dtype.kind == "c" else np.float64) for x in xs])
    got, want = (got, want) if isinstance(got, tuple) else ((got,), (want,))
    for g, w in zip(got, want):
        assert g.dtype == dtypes[nin].type
        base = np.float32 if g.dtype in (np.float32, np.complex64) else np.float64
        bound = (LOWEST_BOUND[base] + REFERENCE_ERROR) * np.abs(w)
        err = np.abs(g.astype(w.dtype) - w)
        worst = np.argmax(err - bound)
        assert np.all(err <= bound), (member, [x[worst] for x in xs], g[worst], w[worst])
