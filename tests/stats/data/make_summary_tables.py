#!/usr/bin/env python3
"""Reference tables for the quantile, robust-summary, normal-interval and bivariate-normal tests.

quantiles.txt: per sample, a line "data x1 ... xn", then lines "q p v1 ... v9": the quantiles of the nine
Hyndman-Fan types at the probability p, computed in exact rational arithmetic (fractions) from the binary
values of p and the data, then rounded to the nearest double.
robust.txt: lines "data x1 ... xn", then "alpha a median mad trimmed winsorised", exact rationals rounded.
interval.txt: a b P(a <= Z <= b) (mpmath, 80 digits; as a difference of the smaller tails).
bivariate.txt: x y rho P(X <= x, Y <= y) (mpmath quadrature of phi(t) Phi((y - rho t)/sqrt(1 - rho^2))
over t <= x, at 40 digits, split where the integrand turns and scaled so that far tails keep their digits;
each checked against the same integral over the other variable).
Arguments have 17 significant digits (they read back to the double used), references 20.

    python3 make_summary_tables.py
"""
import math
import random
from fractions import Fraction as F
from pathlib import Path

import mpmath as mp

HERE = Path(__file__).resolve().parent


def hyndman_fan(xs, p, t):
    x = sorted(F(v) for v in xs)
    n = len(x)
    p = F(p)
    at = lambda k: x[min(max(k, 1), n) - 1]
    m = {1: 0, 2: 0, 3: F(-1, 2), 4: 0, 5: F(1, 2), 6: p, 7: 1 - p, 8: (p + 1) / 3, 9: p / 4 + F(3, 8)}[t]
    h = n * p + m
    j = math.floor(h)
    g = h - j
    if t == 1:
        return at(j if g == 0 else j + 1)
    if t == 2:
        return (at(j) + at(j + 1)) / 2 if g == 0 else at(j + 1)
    if t == 3:
        return at(j if g == 0 and j % 2 == 0 else j + 1)
    return (1 - g) * at(j) + g * at(j + 1)


def fmt(v):
    return "%.17g" % v


def write_quantiles(rng):
    samples = [[3.0, 1.0, 2.0], [float(v) for v in range(1, 11)], [rng.choice([1, 2, 2, 5, 7.5]) for _ in range(12)],
               [rng.gauss(0, 1) for _ in range(37)], [1e15 + rng.randint(0, 9) * 0.125 for _ in range(20)],
               [-1e308, 1e308, 0.0, 5e307], [42.0], [rng.uniform(-1, 1) * 10 ** rng.randint(-5, 5) for _ in range(101)]]
    ps = [0.0, 1.0, 0.5, 0.25, 0.75, 0.1, 0.3, 0.7, 0.9, 0.05, 1 / 3, 2 / 3, 0.999, 1e-9]
    with open(HERE / "quantiles.txt", "w") as f:
        f.write("# Hyndman-Fan quantiles, types 1 to 9, exact rationals rounded\n")
        for xs in samples:
            f.write("data " + " ".join(fmt(v) for v in xs) + "\n")
            n = len(xs)
            extra = [k / n for k in range(n + 1)] + [(k + 0.5) / n for k in range(n)] if n <= 12 else []
            extra += [rng.random() for _ in range(6)]
            for p in ps + extra:
                f.write("q " + fmt(p) + " " + " ".join(fmt(float(hyndman_fan(xs, p, t))) for t in range(1, 10)) + "\n")


def robust(xs, alpha):
    x = sorted(F(v) for v in xs)
    n = len(x)
    med = hyndman_fan(xs, 0.5, 2)
    mad_data = [abs(v - med) for v in x]
    mad = hyndman_fan([float(v) for v in mad_data], 0.5, 2) if all(F(float(v)) == v for v in mad_data) else None
    if mad is None:  # deviations not representable: median of the exact values
        d = sorted(mad_data)
        mad = d[(n - 1) // 2] if n % 2 else (d[n // 2 - 1] + d[n // 2]) / 2
    k = math.floor(n * F(alpha))
    kept = x[k:n - k]
    trimmed = sum(kept) / len(kept)
    wins = (sum(kept) + k * kept[0] + k * kept[-1]) / n
    return med, mad, trimmed, wins


def write_robust(rng):
    samples = [[float(v) for v in range(1, 11)], [rng.gauss(5, 2) for _ in range(50)] + [1e6, -3e5],
               [1e12 + rng.randint(0, 100) * 0.25 for _ in range(31)], [2.0, 2.0, 2.0, 7.0], [rng.expovariate(1) for _ in range(200)]]
    with open(HERE / "robust.txt", "w") as f:
        f.write("# median, median absolute deviation, trimmed and winsorised means, exact rationals rounded\n")
        for xs in samples:
            f.write("data " + " ".join(fmt(v) for v in xs) + "\n")
            for alpha in [0.0, 0.1, 0.2, 0.25, 0.45, 0.3]:
                f.write("alpha " + fmt(alpha) + " " + " ".join(fmt(float(v)) for v in robust(xs, alpha)) + "\n")


def interval(a, b):
    with mp.workdps(80):
        a, b = mp.mpf(a), mp.mpf(b)
        if a >= 0:
            return mp.ncdf(-a) - mp.ncdf(-b)
        if b <= 0:
            return mp.ncdf(b) - mp.ncdf(a)
        return 1 - mp.ncdf(-b) - mp.ncdf(a)


def write_interval(rng):
    pairs = [(0.0, 1.0), (-1.0, 1.0), (-1e-10, 1e-10), (30.0, 30.5), (-30.5, -30.0), (37.0, 37.1), (8.0, 8.0 + 1e-9),
             (5.0, 100.0), (-3.0, 40.0), (1.0, 1.0 + 2 ** -40), (20.0, 20.1), (20.0, 22.0), (0.5, 2.0), (2.0, 3.1),
             (-38.0, -37.9), (1e-300, 2e-300)]
    for _ in range(120):
        a = rng.uniform(-38, 38)
        w = 10 ** rng.uniform(-12, 1.5)
        pairs.append((a, a + w) if rng.random() < 0.5 else (-a - w, -a))
    for _ in range(40):
        a = rng.uniform(-4, 4)
        pairs.append((a, a + rng.uniform(0, 5)))
    with open(HERE / "interval.txt", "w") as f:
        f.write("# a b P(a <= Z <= b) (mpmath, 80 digits)\n")
        for a, b in pairs:
            f.write("%s %s %s\n" % (fmt(a), fmt(b), mp.nstr(interval(a, b), 20)))


def bivariate(x, y, rho):
    """P(X <= x, Y <= y) by quadrature of phi(t) Phi((y - rho t)/sqrt(1 - rho^2)) over t <= x at 40 digits,
    tanh-sinh on pieces that follow the scale 1/|x| of phi near x and the width sqrt(1 - rho^2)/|rho| of Phi's
    step, the integrand scaled to order 1 (quad's tolerance is absolute), so that far tails keep their digits."""
    with mp.workdps(40):
        x, y, rho = mp.mpf(x), mp.mpf(y), mp.mpf(rho)
        if rho == 1:
            return mp.ncdf(min(x, y))
        if rho == -1:
            return max(mp.mpf(0), mp.ncdf(x) - mp.ncdf(-y))
        s = mp.sqrt((1 - rho) * (1 + rho))
        g = lambda t: mp.npdf(t) * mp.ncdf((y - rho * t) / s)
        scale = 1 / max(abs(x), 1)
        pts = {x - scale * 2 ** j for j in range(-6, 12)}
        if rho != 0:
            t0, w = y / rho, s / abs(rho)
            pts |= {t0 + c * w for c in (-64, -16, -8, -4, -2, -1, -0.5, 0, 0.5, 1, 2, 4, 8, 16, 64)}
        pts = sorted(p for p in pts if p < x) + [x]
        norm = 1 / max(g(p) for p in pts)
        return mp.quad(lambda t: norm * g(t), [-mp.inf] + pts, maxdegree=10) / norm


def write_bivariate(rng):
    rhos = [0.0, 0.2, -0.2, 0.5, -0.5, 0.8, -0.8, 0.9, -0.9, 0.93, -0.93, 0.99, -0.99, 0.999999, -0.999999,
            1 - 1e-12, -1 + 1e-12, 1.0, -1.0]
    points = [(0.0, 0.0), (1.0, -1.0), (-2.0, -3.0), (-5.0, -5.0), (-10.0, -9.0), (3.0, 2.5), (-1.5, 2.0), (4.0, -6.0),
              (-20.0, -20.0), (-8.0, 1.0), (0.5, 0.5000001)]
    rows = [(x, y, r) for x, y in points for r in rhos]
    rows += [(rng.uniform(-6, 6), rng.uniform(-6, 6), rng.uniform(-1, 1)) for _ in range(80)]
    with open(HERE / "bivariate.txt", "w") as f:
        f.write("# x y rho P(X <= x, Y <= y) (mpmath, 40 digits)\n")
        for x, y, r in rows:
            p = bivariate(x, y, r)
            assert p == 0 or abs(p / bivariate(y, x, r) - 1) < mp.mpf(10) ** -25, (x, y, r)
            f.write("%s %s %s %s\n" % (fmt(x), fmt(y), fmt(r), mp.nstr(p, 20)))


def main():
    rng = random.Random(20261124)
    write_quantiles(rng)
    write_robust(rng)
    write_interval(rng)
    write_bivariate(rng)


if __name__ == "__main__":
    main()
