"""orvvm: element-wise vector mathematics as NumPy ufuncs.

    import numpy as np, orvvm
    orvvm.exp(np.linspace(0, 1, 5))

Every family of the library is one ufunc, named as NumPy names it where
NumPy has the function (exp, log, log10, sqrt, hypot, arctan2, power,
divide, ...) and after the family otherwise (erf, erfinv, cdfnorm, invsqrt,
cis, sincos, powx, ...).  The ufuncs broadcast, take out=, where=, dtype=
and casting= as NumPy's do, and dispatch on float32, float64, complex64 and
complex128 to the library's member of that type; other inputs are cast as
NumPy casts them (integers to float64), and a type the family has no member
for (complex erf, say) raises TypeError.  Any strides are accepted.

Accuracy levels.  Each ufunc exists at three levels, as a namespace:

    orvvm.highest   (the default: orvvm.exp is orvvm.highest.exp)
                    float32 A24, float64 A53: below 1 ulp
    orvvm.middle    float32 A21, float64 A50: below 4 ulp
    orvvm.lowest    float32 A11, float64 A26: at least 11 or 26 correct
                    bits (a relative error below 2**-11 or 2**-26)

Complex members take the level of their real base.  Exact operations (add,
subtract, real multiply, square, conjugate, real absolute value) and the
rounding functions have one member, which every level uses.  The docstring
of each ufunc lists the member per type and its bound.

Errors.  The statuses of the calls go to NumPy's floating-point error
handling: overflow to 'over', underflow to 'under', singularity (a pole) to
'divide', domain to 'invalid', so np.errstate and np.seterr work as with
NumPy's own functions (by default a warning, except underflow, which NumPy
ignores).  Every kind among the elements is reported, not only the last one
a status names.  Complex members tell of their special cases by the IEEE
flags their arithmetic raises, which NumPy reads the same way.

Layout.  Strided operands are gathered into contiguous buffers, and a run
longer than a call's 32-bit count is split at multiples of 128 elements;
the GIL is released during every call.  A few members' results depend on an
element's neighbours in its block (their records in the library say so, and
by how much at most); for those, the bits follow how NumPy hands the array
to the loop, which a contiguous array hands over whole.

sincos returns (sin, cos); modf returns (fractional, integral), as NumPy's
modf does; powx(x, c) raises x to the power c, a constant per call of the
library (an array of exponents is taken in stretches of equal values).
"""
import sys
import types

from . import _orvvm

LEVELS = ("highest", "middle", "lowest")

# What each level guarantees, by element type of the result.
BOUNDS = {
    "highest": {"float32": "below 1 ulp (A24)", "float64": "below 1 ulp (A53)"},
    "middle": {"float32": "below 4 ulp (A21)", "float64": "below 4 ulp (A50)"},
    "lowest": {"float32": "at least 11 correct bits (A11)", "float64": "at least 26 correct bits (A26)"},
}

# Second names NumPy also gives these functions.
_ALIASES = {"absolute": "abs", "conjugate": "conj", "divide": "true_divide"}

__version__ = "6.1"
library_version = _orvvm.library_version


def _namespace(level):
    module = types.ModuleType(f"{__name__}.{level}",
                              f"orvvm's ufuncs at the {level} accuracy level: " + ", ".join(
                                  f"{t} {b}" for t, b in BOUNDS[level].items()) + ".")
    for name, ufunc in _orvvm.ufuncs.get(level, {}).items():
        setattr(module, name, ufunc)
        if name in _ALIASES:
            setattr(module, _ALIASES[name], ufunc)
    module.__all__ = sorted(n for n in vars(module) if not n.startswith("_"))
    sys.modules[module.__name__] = module
    return module


highest = _namespace("highest")
middle = _namespace("middle")
lowest = _namespace("lowest")

for _name in highest.__all__:
    globals()[_name] = getattr(highest, _name)

__all__ = list(highest.__all__) + ["highest", "middle", "lowest", "LEVELS", "BOUNDS", "members"]


def members():
    """Every loop of every ufunc: (ufunc name, level, family, dtypes, member),
    dtypes being the loop's inputs then outputs."""
    return list(_orvvm.members)


del _name
