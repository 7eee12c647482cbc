#!/usr/bin/env python3
"""Reference tables for the distribution functions, computed with mpmath (50 digits or more).

One file per distribution, one point a line: a region name, the arguments (17 significant digits, so they
read back to the doubles used), then the references (25 digits): the lower and the upper tail, each computed
directly (never as 1 minus the other), and for the continuous ones the density at the point (which the
deviate round trips use for their conditioning). t.txt also has the central and significance tails.

    t.txt               region t df lower upper central significance density
    chisq.txt           region x df lower upper density
    gamma.txt           region g a b lower upper density
    f.txt               region f df1 df2 lower upper density
    beta.txt            region x a b lower upper density
    lognormal.txt       region x mu sigma lower upper density
    poisson.txt         region k lambda lower upper               (lower P(X <= k), upper P(X > k))
    binomial.txt        region k n p lower upper
    hypergeometric.txt  region k n l m lower upper                (l drawn from n, m marked)
    normal_log.txt      region x  ln lower, ln upper, ln central, ln significance
    gamma_log.txt       region g a b  ln lower, ln upper

Rows whose smaller tail is below 1e-300 are left out, except in the two tables of logarithms of tails, which
reach far beyond the underflow. The incomplete gamma function for large shapes and the
discrete tails are summed term by term here (mpmath's hypergeometric series stall there).

    python3 make_distribution_tables.py
"""
import math
import random
from pathlib import Path

import mpmath as mp

mp.mp.dps = 50
HERE = Path(__file__).resolve().parent
FLOOR = mp.mpf("1e-300")


def s(v):
    return mp.nstr(v, 25, min_fixed=-5, max_fixed=5) if v != 0 else "0"


def betainc(a, b, x):
    return mp.betainc(a, b, 0, x, regularized=True)


def lgam(a, x):
    return mp.gammainc(a, 0, x, regularized=True)


def ugam(a, x):
    return mp.gammainc(a, x, mp.inf, regularized=True)


def gamma_series_p(a, x):
    """P(a, x) = x^a e^-x / Gamma(a + 1) * sum x^k / ((a+1)...(a+k)), for large a."""
    with mp.workdps(60):
        term, total, k = mp.mpf(1), mp.mpf(1), 0
        while True:
            k += 1
            term *= x / (a + k)
            total += term
            if term < total * mp.mpf(10) ** -55:
                break
        return mp.exp(a * mp.log(x) - x - mp.loggamma(a + 1)) * total


def gamma_density(a, x):
    return mp.exp((a - 1) * mp.log(x) - x - mp.loggamma(a))


def keep(*tails):
    return min(tails) >= FLOOR


def discrete_tails(log_point, ratio_down, ratio_up, k, lo, hi, mode):
    """P(X <= k) and P(X > k) by summing the point probabilities outward (recurrences between them)."""
    def walk(start, step, ratio, last):
        if (step < 0 and start < last) or (step > 0 and start > last):
            return mp.mpf(0)
        term = mp.exp(log_point(start))
        total, j = mp.mpf(0), start
        while True:
            total += term
            if j == last:
                break
            past_mode = (j < mode) if step < 0 else (j > mode)
            if past_mode and term < total * mp.mpf(10) ** -45:
                break
            term *= ratio(j)
            j += step
        return total
    return walk(k, -1, ratio_down, lo), walk(k + 1, 1, ratio_up, hi)


def write(name, header, rows):
    with open(HERE / name, "w") as f:
        f.write("# " + header + "  (mpmath)\n")
        for r in rows:
            f.write(" ".join(r) + "\n")


def t_rows(rng):
    rows = []
    pts = [("t_central", 10 ** rng.uniform(-1, 3), rng.uniform(-6, 6)) for _ in range(60)]
    pts += [("t_tails", 10 ** rng.uniform(-0.3, 1.7), rng.choice([-1, 1]) * 10 ** rng.uniform(0.5, 150))
            for _ in range(100)]
    pts += [("t_large_df", df, rng.uniform(-38, 38)) for df in [1e6, 1e8, 1e10] for _ in range(12)]
    pts += [("t_large_df", 10 ** rng.uniform(4, 10), rng.uniform(-30, 30)) for _ in range(20)]
    for region, df, t in pts:
        m, n = mp.mpf(t), mp.mpf(df)
        with mp.workdps(80):
            x, y = n / (n + m * m), m * m / (n + m * m)
            beyond, within = betainc(n / 2, mp.mpf(0.5), x), betainc(mp.mpf(0.5), n / 2, y)
            upper = beyond / 2 if t >= 0 else mp.mpf(0.5) + within / 2
            lower = beyond / 2 if t <= 0 else mp.mpf(0.5) + within / 2
            dens = mp.exp(mp.loggamma((n + 1) / 2) - mp.loggamma(n / 2) - mp.log(n * mp.pi) / 2 -
                          (n + 1) / 2 * mp.log1p(m * m / n))
        if keep(lower, upper, within):
            rows.append([region, "%.17g" % t, "%.17g" % df] + [s(v) for v in (lower, upper, within, beyond, dens)])
    return rows


def gamma_rows(rng):
    """(region, g, a, b) with references from the double g / b exactly."""
    rows = []
    pts = [("gamma_central", a, b, a * b * rng.uniform(0.05, 3)) for a, b in
           [(10 ** rng.uniform(-2, 3), 10 ** rng.uniform(-2, 2)) for _ in range(60)]]
    for _ in range(50):
        a = 10 ** rng.uniform(-1, 2.5)
        if rng.random() < 0.5:
            x = a + 10 ** rng.uniform(1.5, 2.87)            # upper tail down to about 1e-300
        else:
            x = 10 ** rng.uniform(-300 / max(a, 1) + 1, 0) * a / 4   # lower tail
        pts.append(("gamma_tails", a, 1.0, x))
    for a in [1e6, 1e8]:
        for _ in range(10):
            pts.append(("gamma_large_shape", a, rng.choice([1.0, 2.0, 0.5]), 0.0))
    out = []
    for region, a, b, g in pts:
        A = mp.mpf(a)
        if region == "gamma_large_shape":
            x = a + rng.uniform(-9, 9) * math.sqrt(a)
            g = x * b
            X = mp.mpf(g) / mp.mpf(b)
            lower = gamma_series_p(A, X)
            upper = 1 - lower
        else:
            X = mp.mpf(g) / mp.mpf(b)
            lower, upper = lgam(A, X), ugam(A, X)
        dens = gamma_density(A, X) / mp.mpf(b)
        if keep(lower, upper):
            out.append([region, "%.17g" % g, "%.17g" % a, "%.17g" % b] + [s(v) for v in (lower, upper, dens)])
    return out


def chisq_rows(rng):
    rows = []
    pts = [("chisq_central", df, df * rng.uniform(0.05, 3)) for df in [10 ** rng.uniform(-1, 3) for _ in range(50)]]
    pts += [("chisq_tails", df, df + 10 ** rng.uniform(1.5, 3.1)) for df in [10 ** rng.uniform(-1, 2) for _ in range(25)]]
    pts += [("chisq_tails", df, 10 ** rng.uniform(-600 / max(df, 2), 0) * df / 4)
            for df in [10 ** rng.uniform(-1, 2) for _ in range(25)]]
    for region, df, x in pts:
        a, X = mp.mpf(df) / 2, mp.mpf(x) / 2
        lower, upper = lgam(a, X), ugam(a, X)
        if keep(lower, upper):
            rows.append([region, "%.17g" % x, "%.17g" % df] + [s(v) for v in (lower, upper, gamma_density(a, X) / 2)])
    return rows


def beta_family(a, b, x, y):
    return betainc(a, b, x), betainc(b, a, y)


def f_rows(rng):
    rows = []
    pts = [("f_central", 10 ** rng.uniform(-0.5, 2), 10 ** rng.uniform(-0.5, 2), 10 ** rng.uniform(-2, 2)) for _ in range(60)]
    pts += [("f_tails", 10 ** rng.uniform(-0.5, 1), 10 ** rng.uniform(-0.5, 1), 10 ** rng.uniform(-150, 150)) for _ in range(60)]
    for region, d1, d2, f in pts:
        m, n, F = mp.mpf(d1), mp.mpf(d2), mp.mpf(f)
        with mp.workdps(100):
            x, y = m * F / (m * F + n), n / (m * F + n)
            lower, upper = beta_family(m / 2, n / 2, x, y)
            dens = mp.exp((m / 2) * mp.log(m * F / (m * F + n)) + (n / 2) * mp.log(n / (m * F + n)) - mp.log(F) -
                          mp.log(mp.beta(m / 2, n / 2)))
        if keep(lower, upper):
            rows.append([region, "%.17g" % f, "%.17g" % d1, "%.17g" % d2] + [s(v) for v in (lower, upper, dens)])
    return rows


def beta_rows(rng):
    rows = []
    pts = [("beta_central", 10 ** rng.uniform(-1, 1.7), 10 ** rng.uniform(-1, 1.7), rng.uniform(0, 1)) for _ in range(60)]
    pts += [("beta_tails", 10 ** rng.uniform(-0.5, 1.3), 10 ** rng.uniform(-0.5, 1.3), 10 ** rng.uniform(-120, -2))
            for _ in range(30)]
    pts += [("beta_tails", 10 ** rng.uniform(-0.5, 1.3), 10 ** rng.uniform(-0.5, 1.3), 1 - 10 ** rng.uniform(-15, -2))
            for _ in range(30)]
    for region, a, b, x in pts:
        A, B, X = mp.mpf(a), mp.mpf(b), mp.mpf(x)
        with mp.workdps(100):
            lower, upper = beta_family(A, B, X, 1 - X)
            dens = mp.exp((A - 1) * mp.log(X) + (B - 1) * mp.log(1 - X) - mp.log(mp.beta(A, B)))
        if keep(lower, upper):
            rows.append([region, "%.17g" % x, "%.17g" % a, "%.17g" % b] + [s(v) for v in (lower, upper, dens)])
    return rows


def lognormal_rows(rng):
    rows = []
    for _ in range(100):
        mu, sigma, z = rng.uniform(-5, 5), 10 ** rng.uniform(-1, 0.5), rng.uniform(-37, 37)
        x = math.exp(mu + sigma * z)
        if x == 0 or math.isinf(x):
            continue
        zz = (mp.log(mp.mpf(x)) - mu) / sigma
        lower, upper = mp.ncdf(zz), mp.ncdf(-zz)
        dens = mp.npdf(zz) / (sigma * mp.mpf(x))
        if keep(lower, upper):
            rows.append(["lognormal", "%.17g" % x, "%.17g" % mu, "%.17g" % sigma] + [s(v) for v in (lower, upper, dens)])
    return rows


def poisson_rows(rng):
    rows = []
    pts = [("poisson_central", lam, max(0, int(lam + rng.uniform(-4, 4) * math.sqrt(lam))))
           for lam in [10 ** rng.uniform(-1, 6) for _ in range(50)]]
    pts += [("poisson_tails", lam, int(rng.uniform(10, 150) * max(lam, 1))) for lam in [10 ** rng.uniform(-1, 0.5) for _ in range(25)]]
    pts += [("poisson_tails", lam, int(lam * rng.uniform(0, 0.3))) for lam in [10 ** rng.uniform(2, 2.8) for _ in range(25)]]
    for region, lam, k in pts:
        L = mp.mpf(lam)
        log_point = lambda j: -L + j * mp.log(L) - mp.loggamma(j + 1)
        lower, upper = discrete_tails(log_point, lambda j: j / L, lambda j: L / (j + 1), k, 0, 10 ** 18, int(lam))
        if keep(lower, upper):
            rows.append([region, "%d" % k, "%.17g" % lam, s(lower), s(upper)])
    return rows


def binomial_rows(rng):
    rows = []
    pts = [("binomial_central", n, rng.uniform(0, 1)) for n in [int(10 ** rng.uniform(0, 3)) for _ in range(50)]]
    pts += [("binomial_tails", 1000, 0.5), ("binomial_tails", 1000, rng.uniform(0.01, 0.3))] * 10
    pts += [("binomial_large_n", 10 ** 12, p) for p in [1e-9, 3e-8, 1e-6] for _ in range(6)]
    for region, n, p in pts:
        mean, sd = n * p, math.sqrt(n * p * (1 - p))
        if region == "binomial_tails":
            k = int(rng.uniform(0, 0.06) * n) if rng.random() < 0.5 else int(n - rng.uniform(0, 0.3) * n)
        else:
            k = min(n, max(0, int(mean + rng.uniform(-6, 6) * sd)))
        N, P = mp.mpf(n), mp.mpf(p)
        log_point = lambda j: (mp.loggamma(N + 1) - mp.loggamma(j + 1) - mp.loggamma(N - j + 1) + j * mp.log(P) +
                               (N - j) * mp.log1p(-P))
        lower, upper = discrete_tails(log_point, lambda j: j * (1 - P) / ((N - j + 1) * P),
                                      lambda j: (N - j) * P / ((j + 1) * (1 - P)), k, 0, n, int(mean))
        if keep(lower, upper):
            rows.append([region, "%d" % k, "%d" % n, "%.17g" % p, s(lower), s(upper)])
    return rows


def hypergeometric_rows(rng):
    rows = []
    pts = []
    for _ in range(60):
        n = int(10 ** rng.uniform(0.5, 4))
        pts.append(("hypergeometric_central", n, rng.randint(0, n), rng.randint(0, n)))
    for _ in range(30):
        n = int(10 ** rng.uniform(3, 9))
        pts.append(("hypergeometric_tails", n, rng.randint(200, 2000), int(n * rng.uniform(0.05, 0.95))))
    for region, n, l, m in pts:
        lo, hi = max(0, l + m - n), min(l, m)
        mode = int((l + 1) * (m + 1) / (n + 2))
        if region == "hypergeometric_tails":
            k = lo + int((mode - lo) * rng.uniform(0, 0.3)) if rng.random() < 0.5 else hi - int((hi - mode) * rng.uniform(0, 0.3))
        else:
            k = rng.randint(lo, hi)
        N, L, M = mp.mpf(n), mp.mpf(l), mp.mpf(m)
        lc = lambda a, b: mp.loggamma(a + 1) - mp.loggamma(b + 1) - mp.loggamma(a - b + 1)
        log_point = lambda j: lc(M, j) + lc(N - M, L - j) - lc(N, L)
        lower, upper = discrete_tails(log_point, lambda j: j * (N - M - L + j) / ((M - j + 1) * (L - j + 1)),
                                      lambda j: (M - j) * (L - j) / ((j + 1) * (N - M - L + j + 1)), k, lo, hi, mode)
        if keep(lower, upper):
            rows.append([region, "%d" % k, "%d" % n, "%d" % l, "%d" % m, s(lower), s(upper)])
    return rows


def log_pair(lower, upper):
    """ln of both tails, the larger as log1p of minus the smaller (its ln would round to 0 at 1 - 1e-100)."""
    return [mp.log(lower) if lower <= upper else mp.log1p(-upper),
            mp.log(upper) if upper <= lower else mp.log1p(-lower)]


def log_rows(rng):
    normal, gamma = [], []
    xs = [("normal_log", rng.uniform(-38, 38)) for _ in range(40)]
    xs += [("normal_log_far", rng.choice([-1, 1]) * 10 ** rng.uniform(1.6, 150)) for _ in range(40)]
    for region, x in xs:
        m = mp.mpf(x)
        with mp.workdps(60):
            lo, up = log_pair(mp.ncdf(m), mp.ncdf(-m))
            cen, sig = log_pair(mp.erf(abs(m) / mp.sqrt(2)), mp.erfc(abs(m) / mp.sqrt(2)))
            normal.append([region, "%.17g" % x] + [s(v) for v in (lo, up, cen, sig)])
    for _ in range(30):
        a = 10 ** rng.uniform(-1, 2)
        g = a + 10 ** rng.uniform(1, 4) if rng.random() < 0.5 else 10 ** rng.uniform(-300, -1)
        b = rng.choice([1.0, 2.0, 0.25])
        A, X = mp.mpf(a), mp.mpf(g * b) / mp.mpf(b)
        with mp.workdps(60):
            gamma.append(["gamma_log", "%.17g" % (g * b), "%.17g" % a, "%.17g" % b]
                         + [s(v) for v in log_pair(lgam(A, X), ugam(A, X))])
    return normal, gamma


def main():
    rng = random.Random(20261124)
    write("t.txt", "region t df lower upper central significance density", t_rows(rng))
    write("chisq.txt", "region x df lower upper density", chisq_rows(rng))
    write("gamma.txt", "region g a b lower upper density", gamma_rows(rng))
    write("f.txt", "region f df1 df2 lower upper density", f_rows(rng))
    write("beta.txt", "region x a b lower upper density", beta_rows(rng))
    write("lognormal.txt", "region x mu sigma lower upper density", lognormal_rows(rng))
    write("poisson.txt", "region k lambda lower upper", poisson_rows(rng))
    write("binomial.txt", "region k n p lower upper", binomial_rows(rng))
    write("hypergeometric.txt", "region k n l m lower upper", hypergeometric_rows(rng))
    normal, gamma = log_rows(rng)
    write("normal_log.txt", "region x ln-lower ln-upper ln-central ln-significance", normal)
    write("gamma_log.txt", "region g a b ln-lower ln-upper", gamma)


if __name__ == "__main__":
    main()
