#!/usr/bin/env python3
"""Reference values of the real Lambert W function from mpmath (lambertw at 60 digits), for c05baf.

Writes lambert_w.txt beside this script, one point per line:

    REGION BRANCH OFFSET X W

OFFSET is 1 when the argument is -1/e + X (X the double given), 0 when it is X. The points are spread
log-uniformly over each region from a fixed seed, so the file is the same on every run.

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


if __name__ == "__main__":
    main()
