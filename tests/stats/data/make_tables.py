#!/usr/bin/env python3
"""Reference tables for the statistics tests, computed with mpmath at 50 digits.

normal.txt, one point a line: x, then P(Z <= x), P(Z >= x), P(-|x| <= Z <= |x|), P(|Z| >= |x|); the points
cover the centre, both tails out to the underflow of the probability, and the erf/erfc break-points.
normal_inverse.txt: p, then the deviates of the four tails for that p (the 'L' deviate is Phi^-1(p)).
Arguments have 17 significant digits (they read back to the double used), references 25.

    python3 make_tables.py
"""
import random
from pathlib import Path

import mpmath as mp

mp.mp.dps = 50
HERE = Path(__file__).resolve().parent


def phi(x):
    return mp.ncdf(x)


def main():
    rng = random.Random(20261124)
    xs = [0.0, 0.46875 * 2 ** 0.5, 4 * 2 ** 0.5, 26.6 * 2 ** 0.5, -6.5 * 2 ** 0.5, 37.5, -37.5, 38.4]
    xs += [rng.uniform(-3, 3) for _ in range(120)]
    xs += [rng.uniform(-38, 38) for _ in range(120)]
    xs += [-(10 ** rng.uniform(-300, -1)) for _ in range(20)] + [10 ** rng.uniform(-300, -1) for _ in range(20)]
    with open(HERE / "normal.txt", "w") as f:
        f.write("# x  lower  upper  central  significance  (mpmath, 50 digits)\n")
        for x in xs:
            m = mp.mpf(x)
            lo, up = phi(m), phi(-m)
            cen, sig = mp.erf(abs(m) / mp.sqrt(2)), mp.erfc(abs(m) / mp.sqrt(2))
            f.write("%.17g %s %s %s %s\n" % (x, *(mp.nstr(v, 25) for v in (lo, up, cen, sig))))
    ps = [0.5, 0.075, 0.925, 1e-300, 1 - 2 ** -53, 2 ** -1074 * 3]
    ps += [rng.uniform(0, 1) for _ in range(150)]
    ps += [10 ** rng.uniform(-300, -1) for _ in range(80)]
    ps += [1 - 10 ** rng.uniform(-15, -1) for _ in range(40)]
    with open(HERE / "normal_inverse.txt", "w") as f:
        f.write("# p  lower  upper  central  significance deviates  (mpmath, 50 digits)\n")
        for p in ps:
            m = mp.mpf(p)
            def inv(q):
                with mp.workdps(700):  # 2q - 1 keeps the digits of a q near 0 or 1
                    return +(mp.sqrt(2) * mp.erfinv(2 * mp.mpf(q) - 1))
            vals = (inv(m), -inv(m), inv(m / 2 + mp.mpf(0.5)), -inv(m / 2))
            f.write("%.17g %s\n" % (p, " ".join(mp.nstr(v, 25) for v in vals)))


if __name__ == "__main__":
    main()
