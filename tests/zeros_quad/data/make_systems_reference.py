#!/usr/bin/env python3
"""Reference runs of the hybrid method on the More-Garbow-Hillstrom systems (mgh_systems.h), for the c05q*/c05r*
tests: MINPACK's hybrd and hybrj (through SciPy's fsolve, Debian's python3-scipy) with the settings of each
tested routine, and each root the run converged to refined by mpmath's Newton iteration at 40 digits.

Writes systems.txt beside this script, one run per line:

    KIND PROBLEM N SCALE IFAIL NFEV NJEV ROOT_1 ... ROOT_N      (ROOT '-' when the run does not converge)

SCALE is 1, 10 or 100: the run starts from SCALE times the standard point, or from SCALE in every component when
the standard point is 0 (as the MINPACK test drivers do).

KIND says which routine and settings the run stands for: easy (c05qbf: differences, DIAG = 1, FACTOR = 100,
MAXFEV = 200*(N+1)), easy_jac (c05rbf: the same with the Jacobian), scaled (c05qcf with MODE = 1, ML = MU = N-1,
EPSFCN = 0, FACTOR = 100, MAXFEV = 200*(N+1)), banded (as scaled with ML = 5, MU = 1) and scaled_jac (c05rcf with
MODE = 1, FACTOR = 100, MAXFEV = 200*(N+1)); XTOL = 1e-10 throughout. IFAIL is MINPACK's INFO as the routines
report it (1 -> 0, 2 -> 2, 3 -> 3, 4 and 5 -> 4). The counts are MINPACK's: the tests compare them with the
library's, which follows the same arithmetic.

    python3 make_systems_reference.py
"""
import math
from pathlib import Path

import mpmath as mp
import numpy as np
from scipy.optimize import fsolve

mp.mp.dps = 40
HERE = Path(__file__).resolve().parent
XTOL = 1e-10
BAND = (5, 1)


def const(m, text):
    """A decimal constant: exact in mpmath, the nearest double otherwise."""
    return m.mpf(text) if m is mp else float(text)


# Each function follows the operation order of its C++ twin, so that the double runs agree to the last bit.
def rosenbrock(x, m):
    return [1 - x[0], 10 * (x[1] - x[0] * x[0])]


def powell_singular(x, m):
    return [x[0] + 10 * x[1], m.sqrt(5) * (x[2] - x[3]), (x[1] - 2 * x[2]) ** 2, m.sqrt(10) * (x[0] - x[3]) ** 2]


def powell_badly_scaled(x, m):
    return [10000 * x[0] * x[1] - 1, m.exp(-x[0]) + m.exp(-x[1]) - const(m, "1.0001")]


def wood(x, m):
    t1, t2 = x[1] - x[0] * x[0], x[3] - x[2] * x[2]
    c4, c5 = const(m, "20.2"), const(m, "19.8")
    return [-200 * x[0] * t1 - (1 - x[0]), 200 * t1 + c4 * (x[1] - 1) + c5 * (x[3] - 1),
            -180 * x[2] * t2 - (1 - x[2]), 180 * t2 + c4 * (x[3] - 1) + c5 * (x[1] - 1)]


def helical_valley(x, m):
    tpi = 8 * m.atan(1)
    theta = 0.25 if x[1] >= 0 else -0.25
    if x[0] > 0:
        theta = m.atan(x[1] / x[0]) / tpi
    if x[0] < 0:
        theta = m.atan(x[1] / x[0]) / tpi + const(m, "0.5")
    return [10 * (x[2] - 10 * theta), 10 * (m.sqrt(x[0] * x[0] + x[1] * x[1]) - 1), x[2]]


def watson(x, m):
    n = len(x)
    f = [0] * n
    for i in range(1, 30):
        ti = const(m, i) / 29
        sum1, t = 0, 1
        for j in range(1, n):
            sum1 += j * t * x[j]
            t *= ti
        sum2, t = 0, 1
        for j in range(n):
            sum2 += t * x[j]
            t *= ti
        t1, t2 = sum1 - sum2 * sum2 - 1, 2 * ti * sum2
        t = 1 / ti
        for k in range(n):
            f[k] += t * (k - t2) * t1
            t *= ti
    t = x[1] - x[0] * x[0] - 1
    f[0] += x[0] * (1 - 2 * t)
    f[1] += t
    return f


def chebyquad(x, m):
    n = len(x)
    f = [0] * n
    for xj in x:
        t1, t2 = 1, 2 * xj - 1
        t = 2 * t2
        for i in range(n):
            f[i] += t2
            t1, t2 = t2, t * t2 - t1
    dx = 1 / const(m, n)
    return [f[k] * dx + (1 / (const(m, k + 1) ** 2 - 1) if k % 2 else 0) for k in range(n)]


def brown_almost_linear(x, m):
    n = len(x)
    s, prod = -const(m, n + 1), 1
    for v in x:
        s += v
        prod *= v
    return [x[k] + s for k in range(n - 1)] + [prod - 1]


def grid(n, m):
    h = 1 / const(m, n + 1)
    return h, [(k + 1) * h for k in range(n)]


def discrete_bvp(x, m):
    n = len(x)
    h, t = grid(n, m)
    return [2 * x[k] - (x[k - 1] if k > 0 else 0) - (x[k + 1] if k + 1 < n else 0) + (x[k] + t[k] + 1) ** 3 * h * h / 2
            for k in range(n)]


def discrete_integral(x, m):
    n = len(x)
    h, t = grid(n, m)
    f = []
    for k in range(n):
        sum1, sum2 = 0, 0
        for j in range(k + 1):
            sum1 += t[j] * (x[j] + t[j] + 1) ** 3
        for j in range(k + 1, n):
            sum2 += (1 - t[j]) * (x[j] + t[j] + 1) ** 3
        f.append(x[k] + h * ((1 - t[k]) * sum1 + t[k] * sum2) / 2)
    return f


def trigonometric(x, m):
    n = len(x)
    c = [m.cos(v) for v in x]
    s = 0
    for v in c:
        s += v
    return [(n + k + 1) - m.sin(x[k]) - s - (k + 1) * c[k] for k in range(n)]


def variably_dimensioned(x, m):
    s = 0
    for j in range(len(x)):
        s += (j + 1) * (x[j] - 1)
    t = s * (1 + 2 * s * s)
    return [x[k] - 1 + (k + 1) * t for k in range(len(x))]


def broyden_tridiagonal(x, m):
    n = len(x)
    return [(3 - 2 * x[k]) * x[k] - (x[k - 1] if k > 0 else 0) - 2 * (x[k + 1] if k + 1 < n else 0) + 1
            for k in range(n)]


def broyden_banded(x, m):
    n = len(x)
    lo, up = BAND
    f = []
    for k in range(n):
        t = 0
        for j in range(max(0, k - lo), min(k + up, n - 1) + 1):
            if j != k:
                t += x[j] * (1 + x[j])
        f.append(x[k] * (2 + 5 * x[k] * x[k]) + 1 - t)
    return f


def starts(name, n):
    h = 1.0 / (n + 1)
    return {
        "rosenbrock": [-1.2, 1.0], "powell_singular": [3.0, -1.0, 0.0, 1.0], "powell_badly_scaled": [0.0, 1.0],
        "wood": [-3.0, -1.0, -3.0, -1.0], "helical_valley": [-1.0, 0.0, 0.0], "watson": [0.0] * n,
        "chebyquad": [(j + 1) * h for j in range(n)], "brown_almost_linear": [0.5] * n,
        "discrete_bvp": [(j + 1) * h * ((j + 1) * h - 1) for j in range(n)],
        "discrete_integral": [(j + 1) * h * ((j + 1) * h - 1) for j in range(n)], "trigonometric": [1.0 / n] * n,
        "variably_dimensioned": [1.0 - (j + 1) / n for j in range(n)], "broyden_tridiagonal": [-1.0] * n,
        "broyden_banded": [-1.0] * n,
    }[name]


# Exact roots where the iteration converges linearly (a singular Jacobian) or the root is known in closed form.
# (Wood's gradient has a second zero, a saddle point, which is where the runs from the standard start end.)
EXACT = {"rosenbrock": 1, "powell_singular": 0, "variably_dimensioned": 1}

PROBLEMS = {f.__name__: f for f in (rosenbrock, powell_singular, powell_badly_scaled, wood, helical_valley, watson,
                                    chebyquad, brown_almost_linear, discrete_bvp, discrete_integral, trigonometric,
                                    variably_dimensioned, broyden_tridiagonal, broyden_banded)}
SIZES = [("rosenbrock", 2), ("powell_singular", 4), ("powell_badly_scaled", 2), ("wood", 4), ("helical_valley", 3),
         ("watson", 6), ("watson", 9), ("chebyquad", 5), ("chebyquad", 6), ("chebyquad", 7), ("chebyquad", 8),
         ("chebyquad", 9), ("brown_almost_linear", 10), ("discrete_bvp", 10), ("discrete_integral", 10),
         ("trigonometric", 10), ("variably_dimensioned", 10), ("broyden_tridiagonal", 10), ("broyden_banded", 10)]
# Problems with a Jacobian written out in mgh_systems.h.
WITH_JACOBIAN = {"rosenbrock", "powell_singular", "powell_badly_scaled", "wood", "helical_valley",
                 "brown_almost_linear", "discrete_bvp", "discrete_integral", "trigonometric", "variably_dimensioned",
                 "broyden_tridiagonal", "broyden_banded"}


class Overflowed(Exception):
    """f overflowed: MINPACK's arithmetic with infinities is not the library's (a failed step), so no reference."""


def numeric(f):
    def value(x):
        try:
            v = np.array([float(t) for t in f(list(x), math)])
        except OverflowError:
            raise Overflowed from None
        if not np.all(np.isfinite(v)):
            raise Overflowed
        return v
    return value


def jacobian(f, n):
    """The Jacobian of f at a double point by mpmath's differentiation at 40 digits, rounded to doubles."""
    def jac(x):
        xm = [mp.mpf(float(v)) for v in x]
        return np.array([[float(mp.diff(lambda t: f(xm[:j] + [t] + xm[j + 1:], mp)[i], xm[j])) for j in range(n)]
                         for i in range(n)])
    return jac


def refine(name, f, x):
    if name in EXACT:
        return [mp.mpf(EXACT[name])] * len(x)
    try:
        root = mp.findroot(lambda *v: f(list(v), mp), [mp.mpf(float(v)) for v in x], tol=mp.mpf(10) ** -30)
    except (ValueError, ZeroDivisionError):
        return None  # MINPACK stopped at a point that is not near a root
    return [root[i] for i in range(len(x))]


def start(name, n, scale):
    x0 = np.array(starts(name, n))
    if scale == 1:
        return x0
    return scale * x0 if np.any(x0 != 0) else np.full(n, float(scale))


def run(kind, name, n, scale):
    f = PROBLEMS[name]
    x0 = start(name, n, scale)
    user_jacobian = kind.endswith("_jac")
    options = dict(xtol=XTOL, maxfev=200 * (n + 1), factor=100, full_output=True, epsfcn=0.0)
    if kind.startswith("easy"):
        options["diag"] = np.ones(n)
    if kind == "banded":
        options["band"] = BAND
    if user_jacobian:
        options["fprime"] = jacobian(f, n)
    try:
        x, info, ier, _ = fsolve(numeric(f), x0, **options)
    except Overflowed:
        return None
    ifail = {1: 0, 2: 2, 3: 3, 4: 4, 5: 4}[ier]
    root = refine(name, f, x) if ifail == 0 else None
    if ifail == 0 and root is None:
        ifail = "0?"  # a false convergence: the library reports IFAIL 4 there
    root = [mp.nstr(v, 17) if abs(v) > mp.mpf(10) ** -300 else "0" for v in root] if root else ["-"] * n
    return f"{kind} {name} {n} {scale} {ifail} {info['nfev']} {info.get('njev', 0)} " + " ".join(root)


def main():
    rows = ["# Made by make_systems_reference.py (beside this file): MINPACK hybrd/hybrj through SciPy's fsolve, roots"
            " refined by mpmath."]
    for scale in (1, 10, 100):
        for name, n in SIZES:
            kinds = ["easy", "scaled"] + (["banded"] if name == "broyden_banded" else []) + \
                (["easy_jac", "scaled_jac"] if name in WITH_JACOBIAN else [])
            rows.extend(row for row in (run(kind, name, n, scale) for kind in kinds) if row)
    (HERE / "systems.txt").write_text("\n".join(rows) + "\n")


if __name__ == "__main__":
    main()
