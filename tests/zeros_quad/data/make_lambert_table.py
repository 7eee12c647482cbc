#!/usr/bin/env python3
"""Reference values of the Lambert W function from mpmath (lambertw at 60 digits), for c05baf and c05bbf.

Writes lambert_w.txt (real) and lambert_w_complex.txt beside this script, one point per line:

    REGION BRANCH OFFSET X W                    (real)
    REGION BRANCH OFFSET XRE XIM WRE WIM        (complex)

OFFSET is 1 when the argument is -1/e + X (X the double given), 0 when it is X. The points are spread
log-uniformly over each region from a fixed seed, so the files are the same on every run. Complex arguments
have a nonzero imaginary part, so the side of a branch cut never depends on the sign of a zero.

    python3 make_lambert_table.py
"""
import random
from pathlib import Path

import mpmath as mp

mp.mp.dps = 60
HERE = Path(__file__).resolve().parent


def log_uniform(rng, lo, hi):
    return float(mp.mpf(10) ** rng.uniform(lo, hi))


def main():
    rng = random.Random(20261124)
    rows = []

    def add(region, branch, offset, x):
        z = -mp.exp(-1) + mp.mpf(x) if offset else mp.mpf(x)
        w = mp.lambertw(z, branch)
        rows.append(f"{region} {branch} {int(offset)} {x!r} {mp.nstr(w.real, 25)}")

    for _ in range(40):
        add("p_offset_tiny", 0, True, log_uniform(rng, -300, -20))
        add("p_offset", 0, True, log_uniform(rng, -20, 0.5))
        add("m_offset_tiny", -1, True, log_uniform(rng, -300, -20))
        add("m_offset", -1, True, log_uniform(rng, -20, -0.44))
        add("p_near_zero", 0, False, log_uniform(rng, -300, -3) * rng.choice([-1, 1]))
        add("p_negative", 0, False, -rng.uniform(0.0, 0.3678794411714423))
        add("p_moderate", 0, False, log_uniform(rng, -3, 3))
        add("p_large", 0, False, log_uniform(rng, 3, 308))
        add("m_moderate", -1, False, -rng.uniform(0.001, 0.3678794411714423))
        add("m_small", -1, False, -log_uniform(rng, -323, -3))
    for x in (-0.36787944117144233, -0.3678794411714423, -0.1, 1.0, 1.7976931348623157e308):
        add("p_exact", 0, False, x)
    for x in (-0.3678794411714423, -0.1, -5e-324):
        add("m_exact", -1, False, x)
    (HERE / "lambert_w.txt").write_text("# Made by make_lambert_table.py (beside this file): mpmath lambertw.\n"
                                        + "\n".join(rows) + "\n")

    crows = []

    def cadd(region, branch, offset, x):
        z = -mp.exp(-1) + mp.mpc(x) if offset else mp.mpc(x)
        w = mp.lambertw(z, branch)
        crows.append(f"{region} {branch} {int(offset)} {x.real!r} {x.imag!r} {mp.nstr(w.real, 25)} "
                     f"{mp.nstr(w.imag, 25)}")

    def polar(lo, hi):
        r = log_uniform(rng, lo, hi)
        t = rng.uniform(-3.1, 3.1)
        return complex(r * float(mp.cos(t)), r * float(mp.sin(t)))

    for _ in range(30):
        for k in (-3, -2, -1, 0, 1, 2, 3):
            cadd("c_general", k, False, polar(-6, 6))
        for k in (-1, 0, 1):
            cadd("c_branch_point", k, True, polar(-12, -0.6))
        for k in (-5, 0, 5):
            cadd("c_large", k, False, polar(6, 250))
            cadd("c_huge", k, False, polar(250, 308))
        for k in (-2, 0, 2):
            cadd("c_small", k, False, polar(-300, -6))
    (HERE / "lambert_w_complex.txt").write_text(
        "# Made by make_lambert_table.py (beside this file): mpmath lambertw.\n" + "\n".join(crows) + "\n")


if __name__ == "__main__":
    main()
