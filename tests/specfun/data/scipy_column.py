#!/usr/bin/python3
"""SciPy's errors on the points of the reference tables, for the comparison column of docs/specfun.md.

Not part of the tests: run by hand where Debian's python3-scipy is installed (/usr/bin/python3). For each
function and region it prints the largest and the 99th-percentile error in units in the last place of the
reference value, measured as the accuracy test measures the library (the subnormal spacing below the normal
range; an infinite or NaN disagreement counts as infinite).

    /usr/bin/python3 scipy_column.py
"""
import math
from pathlib import Path

import mpmath as mp
import numpy as np
from scipy import special

mp.mp.dps = 50
HERE = Path(__file__).resolve().parent


def ulp_error(computed, ref):
    ref = mp.mpf(ref)
    if mp.isinf(ref) or math.isnan(computed) or math.isinf(computed):
        return 0.0 if computed == ref else math.inf
    mag = abs(ref)
    exponent = int(mp.floor(mp.log(mag, 2))) if mag >= mp.mpf(2) ** -1022 else -1022
    return float(abs(mp.mpf(computed) - ref) / mp.mpf(2) ** (exponent - 52))


def rows(name, nargs):
    for line in (HERE / f"{name}.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            f = line.split()
            yield f[0], [float(v) for v in f[1:1 + nargs]], [mp.mpf(v) for v in f[1 + nargs:]]


def betainc_complement(a, b, x):
    return special.betainc(b, a, 1.0 - x)  # this SciPy has no betaincc: the mirror with a rounded 1 - x


def inverse_gamma(a, p, q):
    return special.gammaincinv(a, p) if p <= q else special.gammainccinv(a, q)


def inverse_beta(a, b, p, q, want_y):
    if p <= q:
        x = special.betaincinv(a, b, p)
        return 1.0 - x if want_y else x
    y = special.betaincinv(b, a, q)
    return y if want_y else 1.0 - y


FUNCTIONS = [  # (table, argument count, [(name, scipy function of the arguments), ...])
    ("polygamma", 2, [("polygamma", lambda n, x: special.polygamma(int(n), x))]),
    ("digamma", 1, [("digamma", special.digamma)]),
    ("gamma_pq", 2, [("gamma_p", special.gammainc), ("gamma_q", special.gammaincc)]),
    ("gamma_pq_inv", 3, [("gamma_pq_inv", inverse_gamma)]),
    ("beta_inc", 3, [("beta_inc", special.betainc), ("beta_inc_c", betainc_complement)]),
    ("beta_inc_inv", 4, [("beta_inc_inv_x", lambda a, b, p, q: inverse_beta(a, b, p, q, False)),
                         ("beta_inc_inv_y", lambda a, b, p, q: inverse_beta(a, b, p, q, True))]),
    ("faddeeva", 2, [("faddeeva_re", lambda x, y: special.wofz(complex(x, y)).real),
                     ("faddeeva_im", lambda x, y: special.wofz(complex(x, y)).imag)]),
]


def main():
    with np.errstate(all="ignore"):
        for table, nargs, outputs in FUNCTIONS:
            data = list(rows(table, nargs))
            for k, (name, f) in enumerate(outputs):
                errors = {}
                for region, args, refs in data:
                    errors.setdefault(region, []).append(ulp_error(float(f(*args)), refs[k]))
                for region, e in sorted(errors.items()):
                    e.sort()
                    p99 = e[min(len(e) - 1, int(0.99 * len(e)))]
                    print(f"{name:15s} {region:14s} n={len(e):4d}  max {e[-1]:10.3g}  p99 {p99:10.3g}")


if __name__ == "__main__":
    main()
