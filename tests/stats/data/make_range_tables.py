#!/usr/bin/env python3
"""Reference table for the Studentized range tests (mpmath, 40 digits).

studentized_range.txt: q nu k P(Q <= q) P(Q > q) (nu = inf at 40 digits), from the definitions: the range W of k standard normals
has P(W <= w) = k int phi(z) (Phi(z) - Phi(z - w))^(k-1) dz over the whole line, and Q = W / S with
nu S^2 chi-square on nu degrees of freedom; nu = inf: P(W <= q) by quadrature at 40 digits; finite nu with
two groups: Q = sqrt(2) |T|, T Student's t, a closed form (finite nu with more groups: the tests compare
nu = 1e12 with nu = inf). The upper tail is 1 minus the lower at 40 digits.
Lines "deviate p nu k q" give the q with P(Q <= q) = p, found by mpmath's root finder on the same integral.

    python3 make_range_tables.py
"""
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


if __name__ == "__main__":
    main()
