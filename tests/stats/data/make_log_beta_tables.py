#!/usr/bin/env python3
"""Reference logarithms of the tails of the beta, t and F distributions, computed with mpmath.

One point a line: a region name, the arguments (17 significant digits, read back to the doubles used), then
ln of the tails (25 digits). The incomplete beta I_x(a, b) is summed as its hypergeometric series
x^a y^b / (a B(a, b)) 2F1(a + b, 1; a + 1; x) on the side where the series converges (its terms all positive,
so the sum is exact to the working precision at any size of the result); near the mean mpmath's betainc. The
larger tail is log1p of minus the smaller.

    beta_log.txt   region x a b  ln-lower ln-upper
    t_log.txt      region t df   ln-lower ln-upper ln-central ln-significance
    f_log.txt      region f df1 df2  ln-lower ln-upper

    python3 make_log_beta_tables.py [beta t f]     (all three tables without arguments)
"""
import sys
import random
from pathlib import Path

import mpmath as mp

mp.mp.dps = 60
HERE = Path(__file__).resolve().parent
# The series is summed where the ratio of its terms, from x (a + b) / (a + 1) at the first to x at the last, is below
# this.
RATIO = 0.992


def s(v):
    return mp.nstr(v, 25, min_fixed=-5, max_fixed=5) if v != 0 else "0"


def log_series(a, b, x, y):
    """ln I_x(a, b) by the series, x + y = 1 given separately (both exact)."""
    with mp.workdps(90):
        log_prefix = a * mp.log(x) + b * mp.log(y) - mp.log(a) - (mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b))
        term, total, n = mp.mpf(1), mp.mpf(1), 0
        while True:
            term *= (a + b + n) / (a + 1 + n) * x
            total += term
            n += 1
            if term < total * mp.mpf(10) ** -70:
                break
        return log_prefix + mp.log(total)


def log_fraction(a, b, x, y):
    """ln I_x(a, b) by the continued fraction of Abramowitz and Stegun 26.5.8 (modified Lentz), for x below
    (a + 1)/(a + b + 2), where the series is slow (one parameter far larger than the other near the mean)."""
    with mp.workdps(90):
        tiny, eps = mp.mpf(10) ** -300, mp.mpf(10) ** -75
        log_prefix = a * mp.log(x) + b * mp.log(y) - mp.log(a) - (mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b))
        c, d = mp.mpf(1), 1 - (a + b) * x / (a + 1)
        d = 1 / d
        h, m = d, 0
        while True:
            m += 1
            for coef in (m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m)),
                         -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1))):
                d = 1 + coef * d
                d = 1 / (d if d != 0 else tiny)
                c = 1 + coef / c
                c = c if c != 0 else tiny
                delta = c * d
                h *= delta
            if abs(delta - 1) < eps:
                return log_prefix + mp.log(h)


def log_beta_pair(a, b, x, y):
    """(ln I_x(a, b), ln(1 - I_x(a, b)))."""
    a, b, x, y = mp.mpf(a), mp.mpf(b), mp.mpf(x), mp.mpf(y)
    with mp.workdps(90):
        if max(x, x * (a + b) / (a + 1)) < RATIO:
            lw = log_series(a, b, x, y)
            return lw, mp.log1p(-mp.exp(lw))
        if max(y, y * (a + b) / (b + 1)) < RATIO:
            lw1 = log_series(b, a, y, x)
            return mp.log1p(-mp.exp(lw1)), lw1
        if x < (a + 1) / (a + b + 2) and max(a, b) > 1000:
            lw = log_fraction(a, b, x, y)
            return lw, mp.log1p(-mp.exp(lw))
        if max(a, b) > 1000:
            lw1 = log_fraction(b, a, y, x)
            return mp.log1p(-mp.exp(lw1)), lw1
        # Near the mean of small parameters: betainc at the smaller argument (it is slow at the other), the
        # other side as 1 minus it (neither is small here).
        if x <= y:
            w = mp.betainc(a, b, 0, x, regularized=True)
            return mp.log(w), mp.log1p(-w)
        w1 = mp.betainc(b, a, 0, y, regularized=True)
        return mp.log1p(-w1), mp.log(w1)


def write(name, header, rows):
    with open(HERE / name, "w") as f:
        f.write("# " + header + "  (mpmath)\n")
        for r in rows:
            f.write(" ".join(r) + "\n")


def beta_rows(rng):
    pts = [("beta_log", rng.uniform(0, 1), 10 ** rng.uniform(-0.5, 1.7), 10 ** rng.uniform(-0.5, 1.7)) for _ in range(20)]
    for _ in range(25):  # lower tails from 1e-300 to e^-1e5
        a, b = 10 ** rng.uniform(-1, 3), 10 ** rng.uniform(-1, 3)
        pts.append(("beta_log_tails", 10 ** rng.uniform(-300, -310 / a if a > 1.1 else -1), a, b))
    for _ in range(25):  # upper tails: x = 1 - 10^-k
        b = 10 ** rng.uniform(1.5, 3)
        pts.append(("beta_log_tails", 1 - 10 ** rng.uniform(-16, -1), 10 ** rng.uniform(-1, 2), b))
    for _ in range(25):  # both parameters large, x some way from the mean (Temme's region and beyond)
        a, b = 10 ** rng.uniform(5, 9), 10 ** rng.uniform(5, 9)
        lam = rng.choice([-1, 1]) * rng.uniform(0.01, 0.06) * min(a, b)
        pts.append(("beta_log_large", (a - lam) / (a + b), a, b))
    for _ in range(15):  # one parameter far larger, the lower tail far out
        a, b = 10 ** rng.uniform(4, 9), 10 ** rng.uniform(-1, 1)
        pts.append(("beta_log_skewed", float(mp.exp(-10 ** rng.uniform(2.9, 4) / a)), a, b))
    for _ in range(10):  # a tiny parameter, the other large: the upper tail far out
        pts.append(("beta_log_tiny", 10 ** rng.uniform(-1, -0.01), 10 ** rng.uniform(-9, -6), 10 ** rng.uniform(3, 6)))
    rows = []
    for region, x, a, b in pts:
        lw, lw1 = log_beta_pair(a, b, x, 1 - mp.mpf(x))
        rows.append([region, "%.17g" % x, "%.17g" % a, "%.17g" % b, s(lw), s(lw1)])
    return rows


def t_rows(rng):
    pts = [("t_log", rng.uniform(-8, 8), 10 ** rng.uniform(-0.3, 1.7)) for _ in range(20)]
    pts += [("t_log_tails", rng.choice([-1, 1]) * 10 ** rng.uniform(1, 300), 10 ** rng.uniform(-0.3, 1.7)) for _ in range(30)]
    pts += [("t_log_large_df", rng.choice([-1, 1]) * 10 ** rng.uniform(1.6, 4), 10 ** rng.uniform(3, 7)) for _ in range(20)]
    rows = []
    for region, t, df in pts:
        m, n = mp.mpf(t), mp.mpf(df)
        with mp.workdps(90):
            lb, lw = log_beta_pair(n / 2, mp.mpf(0.5), n / (n + m * m), m * m / (n + m * m))
            near = mp.log1p(-mp.exp(lb) / 2)  # 1 - beyond/2, the one-sided tail holding the centre
            far = lb - mp.log(2)
            lower, upper = (far, near) if t <= 0 else (near, far)
        rows.append([region, "%.17g" % t, "%.17g" % df] + [s(v) for v in (lower, upper, lw, lb)])
    return rows


def f_rows(rng):
    pts = [("f_log", 10 ** rng.uniform(-2, 2), 10 ** rng.uniform(-0.5, 2), 10 ** rng.uniform(-0.5, 2)) for _ in range(20)]
    pts += [("f_log_tails", 10 ** rng.uniform(-300, 300), 10 ** rng.uniform(-0.5, 2), 10 ** rng.uniform(-0.5, 2))
            for _ in range(40)]
    rows = []
    for region, f, d1, d2 in pts:
        m, n, F = mp.mpf(d1), mp.mpf(d2), mp.mpf(f)
        with mp.workdps(90):
            lower, upper = log_beta_pair(m / 2, n / 2, m * F / (m * F + n), n / (m * F + n))
        rows.append([region, "%.17g" % f, "%.17g" % d1, "%.17g" % d2, s(lower), s(upper)])
    return rows


def check_fraction_against_series():
    """The two expansions agree where both converge."""
    for a, b, x in [(3e5, 2e5, 0.55), (50.5, 2000.25, 0.01), (1e7, 1e6, 0.88)]:
        a, b, x, y = mp.mpf(a), mp.mpf(b), mp.mpf(x), 1 - mp.mpf(x)
        assert abs(log_fraction(a, b, x, y) / log_series(a, b, x, y) - 1) < mp.mpf(10) ** -40


def main():
    check_fraction_against_series()
    tables = {"beta": ("beta_log.txt", "region x a b ln-lower ln-upper", beta_rows),
              "t": ("t_log.txt", "region t df ln-lower ln-upper ln-central ln-significance", t_rows),
              "f": ("f_log.txt", "region f df1 df2 ln-lower ln-upper", f_rows)}
    for seed, (key, (name, header, rows)) in enumerate(tables.items()):
        if len(sys.argv) == 1 or key in sys.argv[1:]:
            write(name, header, rows(random.Random(20261124 + seed)))


if __name__ == "__main__":
    main()
