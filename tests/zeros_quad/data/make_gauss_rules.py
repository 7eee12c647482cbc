#!/usr/bin/env python3
"""Reference Gauss rules for d01bcf and d01baf from mpmath at 40 digits.

Legendre rules come from mpmath's own Gauss-Legendre nodes (mpmath.calculus.quadrature.GaussLegendre, the
rules of 3 * 2^(k-1) points that mp.quad uses; the one of 384 points takes a minute). The other families by the method of Golub and Welsch carried
out in 40-digit arithmetic: the eigenvalues and eigenvectors of the Jacobi matrix (mp.eigsy), the weights mu0
times the squared first components, with the recurrence coefficients of Gautschi (2004, Table 1.1). Writes
gauss_rules.txt beside this script:

    ITYPE A B C D N         then N lines: ABSCISSA WEIGHT   (increasing abscissae; ITYPE < 0: adjusted weights)

    python3 make_gauss_rules.py
"""
from pathlib import Path

import mpmath as mp
from mpmath.calculus.quadrature import GaussLegendre

mp.mp.dps = 40
HERE = Path(__file__).resolve().parent


def jacobi_coefficients(n, a, b):
    a, b = mp.mpf(a), mp.mpf(b)
    alpha = [(b - a) / (a + b + 2)]
    for k in range(1, n):
        m = 2 * k + a + b
        alpha.append((b * b - a * a) / (m * (m + 2)))
    beta = [None, 4 * (a + 1) * (b + 1) / ((a + b + 2) ** 2 * (a + b + 3))]
    for k in range(2, n):
        m = 2 * k + a + b
        beta.append(4 * k * (k + a) * (k + b) * (k + a + b) / (m * m * (m + 1) * (m - 1)))
    mu0 = 2 ** (a + b + 1) * mp.beta(a + 1, b + 1)
    return alpha, beta, mu0


def laguerre_coefficients(n, c):
    c = mp.mpf(c)
    return [2 * k + c + 1 for k in range(n)], [None] + [k * (k + c) for k in range(1, n)], mp.gamma(c + 1)


def hermite_coefficients(n):
    return [mp.mpf(0)] * n, [None] + [mp.mpf(k) / 2 for k in range(1, n)], mp.sqrt(mp.pi)


def golub_welsch(alpha, beta, mu0):
    n = len(alpha)
    j = mp.matrix(n, n)
    for i in range(n):
        j[i, i] = alpha[i]
        if i + 1 < n:
            j[i, i + 1] = j[i + 1, i] = mp.sqrt(beta[i + 1])
    e, q = mp.eigsy(j)
    return [(e[i], mu0 * q[0, i] ** 2) for i in range(n)]


def legendre_standard(n):
    degree = {3: 1, 6: 2, 12: 3, 24: 4, 48: 5, 96: 6, 192: 7, 384: 8}[n]
    nodes = GaussLegendre(mp.mp).calc_nodes(degree, mp.mp.prec)
    return [(x, w) for x, w in nodes]


def rule(itype, a, b, c, d, n):
    """(abscissa, weight) pairs of the rule, weights adjusted when itype < 0, as d01bcf defines them."""
    fam = abs(itype)
    a, b, c, d = mp.mpf(a), mp.mpf(b), mp.mpf(c), mp.mpf(d)
    out = []
    if fam == 1:
        for t, w in legendre_standard(n):
            out.append(((a + b) / 2 + (b - a) / 2 * t, (b - a) / 2 * w, mp.mpf(1)))
    elif fam == 2:
        for t, w in golub_welsch(*jacobi_coefficients(n, 0, c - 2)):
            u = (1 + t) / 2
            out.append(((a + b) / u - b, (a + b) ** (1 - c) * 2 ** (1 - c) * w, ((a + b) / u) ** (-c)))
    elif fam == 3:
        for t, w in golub_welsch(*laguerre_coefficients(n, c)):
            out.append((a + t / b, w / b ** (c + 1), (t / b) ** c * mp.exp(-t)))
    elif fam == 4:
        for t, w in golub_welsch(*hermite_coefficients(n)):
            out.append((a + t / mp.sqrt(b), w / mp.sqrt(b), mp.exp(-t * t)))
    else:
        for t, w in golub_welsch(*jacobi_coefficients(n, c, d)):
            half = (b - a) / 2
            out.append((a + half * (1 + t), half ** (c + d + 1) * w, (half * (1 - t)) ** c * (half * (1 + t)) ** d))
    out.sort(key=lambda r: r[0])
    return [(x, w / wf if itype < 0 else w) for x, w, wf in out]


CASES = [
    (1, 0, 1, 0, 0, 3), (1, -1, 1, 0, 0, 6), (1, -3, 7, 0, 0, 12), (1, 0, 1, 0, 0, 48), (1, -1, 1, 0, 0, 192),
    (1, -2, 3, 0, 0, 384),
    (2, 1, 0.5, 2, 0, 5), (2, 0, 1, 3.5, 0, 12), (-2, 2, -1, 2.5, 0, 8),
    (3, 0, 1, 0, 0, 6), (3, 1, 2.5, 1.5, 0, 20), (3, 0, 1, -0.5, 0, 40), (-3, 0, 1, 0, 0, 30),
    (4, 0, 1, 0, 0, 5), (4, 2, 0.5, 0, 0, 20), (4, 0, 1, 0, 0, 60), (-4, 0, 1, 0, 0, 31),
    (5, 0, 2, 0.5, -0.5, 7), (5, -1, 1, 2.5, 1.5, 30), (5, 0, 1, -0.7, 0.3, 16), (-5, 0, 1, 0.5, 0.5, 9),
]


def main():
    lines = [f"# Written by {Path(__file__).name}: ITYPE A B C D N, then N lines ABSCISSA WEIGHT (mpmath, 40 digits)"]
    for itype, a, b, c, d, n in CASES:
        lines.append(f"{itype} {a!r} {b!r} {c!r} {d!r} {n}")
        for x, w in rule(itype, a, b, c, d, n):
            lines.append(f"{mp.nstr(x, 25, min_fixed=1, max_fixed=0)} {mp.nstr(w, 25, min_fixed=1, max_fixed=0)}")
    (HERE / "gauss_rules.txt").write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
