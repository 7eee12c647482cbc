#!/usr/bin/env python3
"""Reference values of the bivariate normal far in its lower orthant, for relative-accuracy tests.

bivariate_tail.txt: x y rho P(X <= x, Y <= y), probabilities from about 1e-8 down to 1e-300, by quadrature
of phi(t) Phi((y - rho t)/sqrt(1 - rho^2)) over t up to x at 40 digits (tanh-sinh on pieces that follow the
scale 1/|x| of phi near x and the width sqrt(1 - rho^2)/|rho| of Phi's step), checked against the same
integral taken over the other variable.

    python3 make_bivariate_tail_table.py
"""
import random
from pathlib import Path

import mpmath as mp

from make_summary_tables import fmt

HERE = Path(__file__).resolve().parent


def bivariate(x, y, rho):
    with mp.workdps(40):
        x, y, rho = mp.mpf(x), mp.mpf(y), mp.mpf(rho)
        s = mp.sqrt((1 - rho) * (1 + rho))
        g = lambda t: mp.npdf(t) * mp.ncdf((y - rho * t) / s)
        scale = 1 / max(abs(x), 1)
        pts = {x - scale * 2 ** j for j in range(-6, 12)}
        if rho != 0:
            t0, w = y / rho, s / abs(rho)
            pts |= {t0 + c * w for c in (-64, -16, -8, -4, -2, -1, -0.5, 0, 0.5, 1, 2, 4, 8, 16, 64)}
        pts = sorted(p for p in pts if p < x) + [x]
        # quad's tolerance is absolute: the integrand is scaled to order 1 at its largest value on the pieces.
        norm = 1 / max(g(p) for p in pts)
        f = lambda t: norm * g(t)
        return mp.quad(f, [-mp.inf] + pts, maxdegree=10) / norm


def main():
    rng = random.Random(20261124)
    rhos = [0.0, 0.3, -0.3, 0.7, -0.7, 0.95, -0.95, 0.999, -0.999, 0.999999, -0.9999]
    points = [(-10.0, -10.0), (-8.0, -12.0), (-20.0, -20.0), (-30.0, -25.0), (-7.0, -9.5), (-12.0, 3.0), (-25.0, -2.0)]
    rows = [(x, y, r) for x, y in points for r in rhos]
    while len(rows) < 150:
        x, y, r = -rng.uniform(6, 37), -rng.uniform(3, 37), rng.uniform(-1, 1)
        rows.append((x, y, r) if rng.random() < 0.5 else (y, x, r))
    with open(HERE / "bivariate_tail.txt", "w") as f:
        f.write("# x y rho P(X <= x, Y <= y) (mpmath, 40 digits)\n")
        for x, y, r in rows:
            p = bivariate(x, y, r)
            if not mp.mpf("1e-300") < p < mp.mpf("1e-8"):
                continue
            q = bivariate(y, x, r)
            assert abs(p / q - 1) < mp.mpf(10) ** -25, (x, y, r, p, q)
            f.write("%s %s %s %s\n" % (fmt(x), fmt(y), fmt(r), mp.nstr(p, 25)))


if __name__ == "__main__":
    main()
