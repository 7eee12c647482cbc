#!/usr/bin/env python3
"""Reference values of the bivariate normal far in its lower orthant, for relative-accuracy tests.

bivariate_tail.txt: x y rho P(X <= x, Y <= y), probabilities from about 1e-8 down to 1e-300, by the quadrature
of make_summary_tables.py at 40 digits, checked against the same integral taken over the other variable.

    python3 make_bivariate_tail_table.py
"""
import random
from pathlib import Path

import mpmath as mp

from make_summary_tables import bivariate, fmt

HERE = Path(__file__).resolve().parent


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
