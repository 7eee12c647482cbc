#!/usr/bin/python3
"""SciPy's errors on the points of the distribution tables, for the comparison column of docs/statistics.md.

Not part of the tests: run by hand where Debian's python3-scipy is installed (/usr/bin/python3). For each
region it prints the largest relative error of SciPy's cdf and sf over both tails, in units of 2^-52 (below
the normal range in units of the subnormal spacing), measured as distributions_test.cpp measures the library,
and the same for its ppf and isf against the table's point (scaled by |x| + P/density); for the tables of
logarithms of tails, logcdf and logsf.

    /usr/bin/python3 scipy_distribution_column.py
"""
import math
from collections import defaultdict
from pathlib import Path

import mpmath as mp
from scipy import stats

HERE = Path(__file__).resolve().parent


def ulps(got, want):
    want = mp.mpf(want)
    if got == want:
        return 0.0
    if not math.isfinite(got):
        return math.inf
    return float(abs(mp.mpf(got) - want) / max(abs(want), mp.mpf(2) ** -1022) / mp.mpf(2) ** -52)


def rows(name):
    for line in open(HERE / name):
        if line.startswith("#"):
            continue
        f = line.split()
        yield f[0], [float(v) for v in f[1:]], f[1:]


def main():
    worst = defaultdict(float)
    tables = {
        "t.txt": (1, lambda v: stats.t(v[1])),
        "chisq.txt": (1, lambda v: stats.chi2(v[1])),
        "gamma.txt": (2, lambda v: stats.gamma(v[1], scale=v[2])),
        "f.txt": (2, lambda v: stats.f(v[1], v[2])),
        "beta.txt": (2, lambda v: stats.beta(v[1], v[2])),
        "lognormal.txt": (2, lambda v: stats.lognorm(v[2], scale=math.exp(v[1]))),
        "poisson.txt": (1, lambda v: stats.poisson(v[1])),
        "binomial.txt": (2, lambda v: stats.binom(int(v[1]), v[2])),
        "hypergeometric.txt": (3, lambda v: stats.hypergeom(int(v[1]), int(v[3]), int(v[2]))),
    }
    for name, (params, make) in tables.items():
        continuous = name not in ("poisson.txt", "binomial.txt", "hypergeometric.txt")
        for region, v, text in rows(name):
            d, x = make(v), v[0]
            lower, upper = text[1 + params], text[2 + params]
            worst[region] = max(worst[region], ulps(float(d.cdf(x)), lower), ulps(float(d.sf(x)), upper))
            if not continuous:
                continue
            density = v[-1]  # 0 where it underflowed: no deviate check there (as in the test)
            for p, inv in ((float(lower), d.ppf), (float(upper), d.isf)):
                if 0.0 < p < 1.0 and density > 0.0:
                    err = abs(float(inv(p)) - x) / ((abs(x) + p / density) * 2.0 ** -52)
                    key = name[:-4] + "_deviate"
                    worst[key] = max(worst[key], err if math.isfinite(err) else math.inf)
    logs = {"normal_log.txt": (0, lambda v: stats.norm()), "gamma_log.txt": (2, lambda v: stats.gamma(v[1], scale=v[2]))}
    for name, (params, make) in logs.items():
        for region, v, text in rows(name):
            d, x = make(v), v[0]
            lower, upper = text[1 + params], text[2 + params]
            worst[region] = max(worst[region], ulps(float(d.logcdf(x)), lower), ulps(float(d.logsf(x)), upper))
    for region in sorted(worst):
        print("%-24s %.3g" % (region, worst[region]))


if __name__ == "__main__":
    main()
