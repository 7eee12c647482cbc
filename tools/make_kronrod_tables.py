#!/usr/bin/env python3
"""Nodes and weights of the Gauss-Kronrod rules of the adaptive quadrature (src/zeros_quad/gauss_kronrod.h).

For the n-point Gauss-Legendre rule (n = 7, 10 and 30) the Kronrod extension adds the n + 1 zeros of the
Stieltjes polynomial E(x) = x^(n+1) + ..., the polynomial orthogonal to P_n(x) x^k on [-1, 1] for k = 0..n.
Everything is computed with mpmath at 250 digits: E from that linear system in the monomial basis (exact
moments 2/(m+1)), its zeros by bracketing (they interlace with the Gauss nodes), the Kronrod weights from the
moment equations of the whole 2n+1-point rule, the Gauss weights as 2 / ((1 - x^2) P_n'(x)^2). The printed
doubles are the correctly rounded values, listed as the published tables list them: abscissae from the
largest down to 0, the Gauss nodes at the odd positions (counted from 0), the Gauss weights in the order of
their nodes. They agree with the published QUADPACK tables (Piessens et al. 1983) to the last digit.

    python3 tools/make_kronrod_tables.py
"""
import mpmath as mp

mp.mp.dps = 250


def legendre_coefficients(n):
    """P_n as coefficients of x^0..x^n (Bonnet's recurrence)."""
    p0, p1 = [mp.mpf(1)], [mp.mpf(0), mp.mpf(1)]
    if n == 0:
        return p0
    for k in range(1, n):
        nxt = [mp.mpf(0)] * (k + 2)
        for i, c in enumerate(p1):
            nxt[i + 1] += (2 * k + 1) * c / (k + 1)
        for i, c in enumerate(p0):
            nxt[i] -= k * c / (k + 1)
        p0, p1 = p1, nxt
    return p1


def moment(m):
    return mp.mpf(2) / (m + 1) if m % 2 == 0 else mp.mpf(0)


def evaluate(coeffs, x):
    s = mp.mpf(0)
    for c in reversed(coeffs):
        s = s * x + c
    return s


def rule(n):
    p = legendre_coefficients(n)
    dp = [i * c for i, c in enumerate(p)][1:]
    gauss = sorted(mp.polyroots(list(reversed(p)), maxsteps=500, extraprec=500), key=lambda z: mp.re(z))
    gauss = [mp.re(z) for z in gauss]
    # E = x^(n+1) + sum c_j x^j: sum_j c_j <x^j P_n x^k> = -<x^(n+1) P_n x^k>, k = 0..n.
    def inner(j, k):
        return mp.fsum(pi * moment(i + j + k) for i, pi in enumerate(p))
    a = mp.matrix(n + 1, n + 1)
    rhs = mp.matrix(n + 1, 1)
    for k in range(n + 1):
        for j in range(n + 1):
            a[k, j] = inner(j, k)
        rhs[k] = -inner(n + 1, k)
    c = mp.lu_solve(a, rhs)
    e = [c[j] for j in range(n + 1)] + [mp.mpf(1)]
    edges = [mp.mpf(-1)] + gauss + [mp.mpf(1)]
    kronrod = [mp.findroot(lambda x: evaluate(e, x), (edges[i], edges[i + 1]), solver="anderson")
               for i in range(n + 1)]
    nodes = sorted(gauss + kronrod)
    m = len(nodes)
    v = mp.matrix(m, m)
    mom = mp.matrix(m, 1)
    for k in range(m):
        for i, x in enumerate(nodes):
            v[k, i] = x ** k
        mom[k] = moment(k)
    w = mp.lu_solve(v, mom)
    weight_of = {nodes[i]: w[i] for i in range(m)}
    gauss_weight = {x: 2 / ((1 - x * x) * evaluate(dp, x) ** 2) for x in gauss}
    xgk = [x for x in reversed(nodes) if x >= 0]
    wgk = [weight_of[x] for x in xgk]
    wg = [gauss_weight[x] for x in xgk if x in gauss_weight]
    return xgk, wgk, wg


def show(name, values):
    body = ",\n    ".join(repr(float(v)) for v in values)
    print(f"  {name} = {{\n    {body}}};")


def main():
    for n in (7, 10, 30):
        xgk, wgk, wg = rule(n)
        print(f"// {2 * n + 1} points")
        show("nodes", xgk)
        show("kronrod_weights", wgk)
        show("gauss_weights", wg)


if __name__ == "__main__":
    main()
