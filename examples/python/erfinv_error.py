#!/usr/bin/python3
"""The error of orvvm.erfinv across (-1, 1), beside SciPy's.

    /usr/bin/python3 examples/python/erfinv_error.py [out.png]

Both are measured in ulps of the result against erfinv evaluated with 40
significant digits by mpmath (Debian's python3-mpmath), or, where mpmath is
missing, orvvm's against SciPy's alone.  With matplotlib (Debian's
python3-matplotlib) the errors are plotted to out.png (erfinv_error.png by
default); without it they are printed as a table of the largest error in
each of 20 bands of x.
"""
import sys

import numpy as np
import scipy.special

import orvvm

try:
    import mpmath
except ImportError:
    mpmath = None


def reference(x):
    """erfinv of the float64 inputs to 40 digits: as float64, and what that
    rounding left out."""
    mpmath.mp.dps = 40
    exact = [mpmath.erfinv(mpmath.mpf(float(v))) for v in x]
    return np.array([float(v) for v in exact]), np.array([float(v - mpmath.mpf(float(v))) for v in exact])


def ulps(y, exact, dtype):
    value, low = exact
    ulp = np.spacing(np.abs(value.astype(dtype))).astype(np.float64)
    return (y.astype(np.float64) - value - low) / ulp


def main():
    if not hasattr(orvvm, "erfinv"):
        sys.exit("this build of orvvm has no erfinv")
    out = sys.argv[1] if len(sys.argv) > 1 else "erfinv_error.png"
    # Denser towards the ends, where erfinv grows without bound.
    t = np.linspace(-1, 1, 2001)[1:-1]
    x = np.sign(t) * (1 - (1 - np.abs(t)) ** 3)
    if mpmath is None:
        exact, against = (scipy.special.erfinv(x), np.zeros_like(x)), "SciPy's erfinv"
    else:
        exact, against = reference(x), "erfinv to 40 digits (mpmath)"

    curves = {}
    for dtype in (np.float64, np.float32):
        xs = x.astype(dtype)
        ex = exact if dtype == np.float64 else (scipy.special.erfinv(xs.astype(np.float64)), np.zeros_like(x))
        for level in orvvm.LEVELS:
            with np.errstate(invalid="ignore", divide="ignore"):
                e = ulps(getattr(orvvm, level).erfinv(xs), ex, dtype)
            # Points next to +-1 that round to +-1 in float32 have no finite
            # result to measure.
            e[np.abs(xs) == 1] = np.nan
            curves[f"orvvm.{level} {np.dtype(dtype).name}"] = e
    if mpmath is not None:
        curves["scipy.special.erfinv float64"] = ulps(scipy.special.erfinv(x), exact, np.float64)

    try:
        import matplotlib
        matplotlib.use("Agg")
        import matplotlib.pyplot as plt
    except ImportError:
        plt = None
    if plt is None:
        edges = np.linspace(-1, 1, 21)
        print(f"largest |error| in ulps, against {against}; float32 against SciPy in binary64")
        print("x band           " + " ".join(f"{k:>30}" for k in curves))
        for lo, hi in zip(edges[:-1], edges[1:]):
            band = (x >= lo) & (x < hi)
            print(f"[{lo:5.2f}, {hi:5.2f})  " + " ".join(f"{np.nanmax(np.abs(c[band])):30.3f}" for c in curves.values()))
        return

    # |error| on a log scale: the levels lie decades apart (below 1 ulp,
    # below 4, and 26 or 11 correct bits), so a linear axis shows only the
    # lowest.  Exact results are drawn at 1e-3.
    fig, axes = plt.subplots(2, 1, figsize=(10, 8), sharex=True)
    # SciPy first, so that orvvm's highest level is drawn over it.
    for label, c in sorted(curves.items(), key=lambda kv: not kv[0].startswith("scipy")):
        ax = axes[0] if "float64" in label else axes[1]
        ax.plot(x, np.maximum(np.abs(c), 1e-3), ".", markersize=1.5, label=label)
    axes[0].set_title(f"erfinv |error| in ulps, against {against}")
    axes[1].set_title("float32, against erfinv in binary64")
    for ax in axes:
        ax.set_yscale("log")
        ax.set_ylabel("|error| (ulp)")
        ax.legend(markerscale=6, fontsize=8)
        ax.grid(alpha=0.3)
    axes[1].set_xlabel("x")
    fig.tight_layout()
    fig.savefig(out, dpi=120)
    print(f"wrote {out}")


if __name__ == "__main__":
    main()
