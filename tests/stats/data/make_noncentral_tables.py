#!/usr/bin/env python3
"""Reference tables for the non-central chi-square, F and t tests (mpmath, 40 digits).

noncentral_chi2.txt: x df lambda P(X <= x) P(X >= x), each tail the whole Poisson mixture
    sum_j e^-mu mu^j / j! P(df/2 + j, x/2) (or Q), mu = lambda/2, over every j whose weight exceeds 1e-45
    times the largest, with mpmath's regularised incomplete gamma.
noncentral_f.txt: f df1 df2 lambda lower upper, the same mixture of regularised incomplete betas
    I_y(df1/2 + j, df2/2), y = df1 f/(df1 f + df2), the upper tail as I_(1-y)(df2/2, df1/2 + j).
noncentral_t.txt: t df delta lower upper, by quadrature of the definition T = (Z + delta)/sqrt(S/df):
    P(T <= t) = int_0^inf Phi(t sqrt(s/df) - delta) f_df(s) ds with f_df the chi-square density (and
    Phi(delta - t sqrt(s/df)) for the upper tail), split on a grid in log s where the integrand lives; a
    method independent of the Poisson series the library sums. Where that tail is below 1e-60 on the side of
    delta (t <= delta < 0 lower, t >= delta > 0 upper) the quadrature keeps only about six digits, and the
    series (Lenth's form, all terms, each complement as a direct incomplete beta) is used at 60 digits.
Arguments have 17 significant digits (they read back to the double used), references 20.

    python3 make_noncentral_tables.py [chi2] [f] [t]     (all three tables without arguments)
"""
import random
import sys
from pathlib import Path

import mpmath as mp

mp.mp.dps = 40
HERE = Path(__file__).resolve().parent


def fmt(v):
    return "%.17g" % v


def poisson_range(mu):
    if mu == 0:
        return [(0, mp.mpf(1))]
    top = mp.floor(mu)
    spread = int(mp.ceil(16 * mp.sqrt(mu) + 60))
    js = range(max(0, int(top) - spread), int(top) + spread + 1)
    return [(j, mp.exp(-mu + j * mp.log(mu) - mp.loggamma(j + 1))) for j in js]


def chi2(x, df, lam):
    x, df, lam = mp.mpf(x), mp.mpf(df), mp.mpf(lam)
    lo = up = mp.mpf(0)
    for j, w in poisson_range(lam / 2):
        lo += w * mp.gammainc(df / 2 + j, 0, x / 2, regularized=True)
        up += w * mp.gammainc(df / 2 + j, x / 2, mp.inf, regularized=True)
    return lo, up


def ncf(f, df1, df2, lam):
    f, df1, df2, lam = mp.mpf(f), mp.mpf(df1), mp.mpf(df2), mp.mpf(lam)
    y = df1 * f / (df1 * f + df2)
    lo = up = mp.mpf(0)
    for j, w in poisson_range(lam / 2):
        a, b = df1 / 2 + j, df2 / 2
        lo += w * mp.betainc(a, b, 0, y, regularized=True)
        up += w * mp.betainc(b, a, 0, df2 / (df1 * f + df2), regularized=True)  # direct, never 1 - I
    return lo, up


def nct(t, df, delta):
    t, df, delta = mp.mpf(t), mp.mpf(df), mp.mpf(delta)
    k = df / 2
    logc = -k * mp.log(2) - mp.loggamma(k)
    dens = lambda s: mp.exp(logc + (k - 1) * mp.log(s) - s / 2) if s > 0 else mp.mpf(0)
    lower = lambda s: mp.ncdf(t * mp.sqrt(s / df) - delta) * dens(s)
    upper = lambda s: mp.ncdf(delta - t * mp.sqrt(s / df)) * dens(s)
    return quad_peaked(lower, df), quad_peaked(upper, df)


def nct_series(t, df, delta):
    """The tail of T >= |t| for the non-centrality delta * sign(t), at 60 digits: a sum of positive terms."""
    with mp.workdps(60):
        t, df, delta = mp.mpf(t), mp.mpf(df), mp.mpf(delta)
        if t < 0:
            t, delta = -t, -delta
        mu = delta ** 2 / 2
        z = df / (t * t + df)
        s = mp.mpf(0)
        for j, p in poisson_range(mu):
            q = mp.exp(-mu + (j + mp.mpf(1) / 2) * mp.log(mu) - mp.loggamma(j + mp.mpf(3) / 2))
            s += (p * mp.betainc(df / 2, j + mp.mpf(1) / 2, 0, z, regularized=True) +
                  q * mp.betainc(df / 2, j + 1, 0, z, regularized=True)) / 2
        return s


def quad_peaked(g, df):
    """int_0^inf g(s) ds for g positive and unimodal-ish in log s: the break-points are a grid in log s
    over the region where g is within e^-110 of its largest value, so that far tails, where the product of
    the normal tail and the chi-square density is a narrow peak, are integrated where they live."""
    grid = [mp.log(df) + mp.mpf(i) / 16 for i in range(-480, 160)]
    logs = [mp.log(g(mp.exp(u))) if g(mp.exp(u)) > 0 else -mp.inf for u in grid]
    top = max(logs)
    live = [u for u, v in zip(grid, logs) if v > top - 110]
    pts = [mp.mpf(0)] + [mp.exp(u) for u in live[::4]] + [mp.exp(live[-1]), mp.inf]
    return mp.quad(g, pts)


def main():
    wanted = set(sys.argv[1:]) or {"chi2", "f", "t"}
    rng = random.Random(20261124)
    if "chi2" in wanted:
        write_chi2(rng)
    rng = random.Random(20261125)
    if "f" in wanted:
        write_f(rng)
    rng = random.Random(20261126)
    if "t" in wanted:
        write_t(rng)


def write_chi2(rng):
    with open(HERE / "noncentral_chi2.txt", "w") as f:
        f.write("# x df lambda lower upper (mpmath, 40 digits, Poisson mixture)\n")
        rows = []
        for df in (0.5, 1, 2, 5, 10, 60, 300):
            for lam in (0, 1e-3, 1, 7, 40, 250, 2000):
                mean, sd = df + lam, mp.sqrt(2 * (df + 2 * lam))
                for c in (-6, -2, 0, 1.5, 5, 15):
                    x = float(mean + c * sd)
                    if x > 0 and rng.random() < 0.5:
                        rows.append((x, df, lam))
                rows.append((float(mean) * 1e-3, df, lam))
        rows += [(0.0, 3, 5), (1e-300, 1, 4), (5e4, 2, 1e4), (1.1e4, 4, 1e4), (9e3, 4, 1e4)]
        for x, df, lam in rows:
            lo, up = chi2(x, df, lam)
            f.write("%s %s %s %s %s\n" % (fmt(x), fmt(df), fmt(lam), mp.nstr(lo, 20), mp.nstr(up, 20)))


def write_f(rng):
    with open(HERE / "noncentral_f.txt", "w") as f:
        f.write("# f df1 df2 lambda lower upper (mpmath, 40 digits, Poisson mixture)\n")
        rows = [(0.0, 2, 3, 4), (1e300, 2, 3, 4), (1.2, 300, 900, 1e3)]
        for _ in range(110):
            rows.append((10 ** rng.uniform(-3, 2.5), rng.choice([0.5, 1, 3, 10, 40]), rng.choice([1, 2.5, 7, 30, 800]),
                         rng.choice([0, 0.01, 0.5, 5, 50, 400])))
        for x, d1, d2, lam in rows:
            lo, up = ncf(x, d1, d2, lam)
            f.write("%s %s %s %s %s %s\n" % (fmt(x), fmt(d1), fmt(d2), fmt(lam), mp.nstr(lo, 20), mp.nstr(up, 20)))


def write_t(rng):
    with open(HERE / "noncentral_t.txt", "w") as f:
        f.write("# t df delta lower upper (mpmath, 40 digits, quadrature of the definition)\n")
        rows = [(0.0, 5, 1.5), (1e6, 3, 2), (-1e6, 3, 2), (2.0, 1e5, 1.5), (40.0, 4, 35), (-3.0, 20, 0.0)]
        for _ in range(130):
            df = rng.choice([1, 2.5, 5, 12, 40, 300])
            delta = rng.choice([-1, 1]) * rng.choice([0, 0.1, 0.8, 2, 5, 12, 30])
            t = delta + rng.choice([-1, 1]) * 10 ** rng.uniform(-2, 1.3) * (1 + abs(delta) / 3)
            rows.append((t, df, delta))
        for t, df, delta in rows:
            lo, up = nct(t, df, delta)
            if 0 < delta <= t and up < 1e-60:
                up = nct_series(t, df, delta)
            if t <= delta < 0 and lo < 1e-60:
                lo = nct_series(t, df, delta)
            f.write("%s %s %s %s %s\n" % (fmt(t), fmt(df), fmt(delta), mp.nstr(lo, 20), mp.nstr(up, 20)))


if __name__ == "__main__":
    main()
