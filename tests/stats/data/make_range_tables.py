#!/usr/bin/env python3
"""Reference table for the Studentized range tests (mpmath, 40 digits).

studentized_range.txt: q nu k P(Q <= q) P(Q > q) (nu = inf at 40 digits), from the definitions: the range W of k standard normals
has P(W <= w) = k int phi(z) (Phi(z) - Phi(z - w))^(k-1) dz over the whole line, and Q = W / S with
nu S^2 chi-square on nu degrees of freedom; nu = inf: P(W <= q) by quadrature at 40 digits; finite nu with
two groups: Q = sqrt(2) |T|, T Student's t, a closed form (finite nu with more groups: the tests compare
nu = 1e12 with nu = inf). The upper tail is 1 minus the lower at 40 digits.
Lines "deviate p nu k q" give the q with P(Q <= q) = p, found by mpmath's root finder on the same integral.
Finite nu with more groups, by a second method in double precision (the double integral over the range and
the density of S by SciPy's adaptive quadrature, good to about 1e-12): lines "double q nu k P(Q <= q)" and
"double_deviate p nu k q" (SciPy's brentq on that integral, to 1e-13 in q).

    python3 make_range_tables.py
"""
import math
from pathlib import Path

import mpmath as mp

mp.mp.dps = 30
HERE = Path(__file__).resolve().parent


def range_cdf(w, k):
    if w <= 0:
        return mp.mpf(0)
    f = lambda z: mp.npdf(z) * (mp.ncdf(z) - mp.ncdf(z - w)) ** (k - 1)
    # Break-points every quarter unit: (...)^(k-1) is narrow for many groups.
    return k * mp.quad(f, [-mp.inf] + mp.linspace(-10, w + 10, int(4 * (w + 20)) + 1) + [mp.inf])


def studentized_cdf(q, nu, k):
    q = mp.mpf(q)
    if nu == mp.inf:
        with mp.workdps(40):  # one integral: cheap at 40 digits, and far tails need them
            return +range_cdf(q, k)
    # Two groups: Q = |Z1 - Z2| / S = sqrt(2) |T| with T Student's t on nu degrees of freedom, so
    # P(Q <= q) = P(|T| <= q/sqrt 2) = I_y(1/2, nu/2), y = x^2/(nu + x^2), x = q/sqrt 2: a closed form
    # for the integral over S.
    assert k == 2
    with mp.workdps(40):
        x2 = q * q / 2
        return +mp.betainc(mp.mpf(1) / 2, mp.mpf(nu) / 2, 0, x2 / (nu + x2), regularized=True)


def range_cdf_double(w, k):
    from scipy import integrate, special
    if w <= 0:
        return 0.0
    f = lambda z: math.exp(-z * z / 2) / math.sqrt(2 * math.pi) * (
        0.5 * (special.erfc(-z / math.sqrt(2)) - special.erfc((w - z) / math.sqrt(2)))) ** (k - 1)
    pts = [-8 + (w + 16) * j / 8 for j in range(9)]
    return k * integrate.quad(f, -12, w + 12, points=pts, epsabs=1e-16, epsrel=1e-13, limit=400)[0]


def studentized_cdf_double(q, nu, k):
    """P(Q <= q) = int f_S(s) P(W <= q s) ds, S = sqrt(chi-square_nu / nu), in double precision."""
    from scipy import integrate
    log_c = math.log(2) + (nu / 2) * math.log(nu / 2) - math.lgamma(nu / 2)
    density = lambda s: math.exp(log_c + (nu - 1) * math.log(s) - nu * s * s / 2) if s > 0 else 0.0
    width = 1 / math.sqrt(2 * nu)  # S peaks at 1 with about this width
    pts = sorted({max(1e-300, 1 + j * width) for j in range(-6, 13)})
    top = max(1 + 40 * width + 60 / math.sqrt(nu), pts[-1] + 1)
    return integrate.quad(lambda s: density(s) * range_cdf_double(q * s, k), 0, top, points=pts, epsabs=1e-16,
                          epsrel=1e-13, limit=400)[0]


def main():
    points = [(0.5, mp.inf, 2), (3.0, mp.inf, 3), (5.5, mp.inf, 10), (1.2, mp.inf, 50), (0.2, mp.inf, 5),
              (7.0, mp.inf, 200), (4.0, 10, 2), (0.3, 5, 2), (2.5, 1, 2), (8.0, 3, 2), (3.5, 1000, 2), (1e-3, 40, 2),
              (30.0, 2.5, 2)]
    deviates = [(0.9, mp.inf, 6, (2, 6)), (0.05, mp.inf, 4, (0.3, 3))]
    with open(HERE / "studentized_range.txt", "w") as f:
        f.write("# q nu k P(Q <= q) P(Q > q) (mpmath, 40 digits); deviate p nu k q\n")
        for q, nu, k in points:
            lo = studentized_cdf(q, nu, k)
            with mp.workdps(40):
                up = 1 - lo
            f.write("%.17g %s %d %s %s\n" % (q, "inf" if nu == mp.inf else "%.17g" % nu, k, mp.nstr(lo, 20), mp.nstr(up, 20)))
        for p, nu, k, bracket in deviates:
            q = mp.findroot(lambda x: studentized_cdf(x, nu, k) - p, bracket, solver="anderson", tol=1e-50)
            f.write("deviate %.17g %s %d %s\n" % (p, "inf" if nu == mp.inf else "%.17g" % nu, k, mp.nstr(q, 20)))
        from scipy.optimize import brentq
        for q, nu, k in [(3.5, 10, 3), (4.0, 5, 4), (5.0, 20, 10), (2.0, 3, 6), (6.0, 60, 20), (1.5, 1, 3)]:
            f.write("double %.17g %.17g %d %.15g\n" % (q, nu, k, studentized_cdf_double(q, nu, k)))
        for p, nu, k in [(0.95, 10, 3), (0.95, 10, 5), (0.99, 20, 10), (0.9, 5, 4), (0.95, 60, 20), (0.5, 3, 50),
                         (0.95, 120, 100)]:
            q = brentq(lambda x: studentized_cdf_double(x, nu, k) - p, 0.1, 40, xtol=1e-14, rtol=1e-13)
            f.write("double_deviate %.17g %.17g %d %.15g\n" % (p, nu, k, q))


if __name__ == "__main__":
    main()
