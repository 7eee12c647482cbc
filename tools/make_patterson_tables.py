#!/usr/bin/env python3
"""Nodes and weights of the Patterson sequence of the non-adaptive integrator (src/zeros_quad/patterson.h).

Patterson (Math. Comp. 22, 1968) extends the 10-point Gauss-Legendre rule by the 21-point Kronrod rule, that by
22 more nodes to 43 points, and that by 44 more to 87 points. Each extension adds the zeros of the polynomial
E(x) = x^m + ..., m = n + 1, orthogonal to x^k P(x) on [-1, 1] for k = 0..m-1, P being the monic polynomial
whose zeros are the n nodes already present; the new zeros interlace with the old nodes. Everything is
computed with mpmath at 300 digits: E from that linear system in the monomial basis (exact moments 2/(j+1)),
its zeros by bracketing between consecutive old nodes, and the weights of each whole rule from its moment
equations (even moments, the rules being symmetric). The printed doubles are correctly rounded, laid out as
QUADPACK's dqng (Piessens et al. 1983) lays out the same published tables: x1 the positive Gauss nodes, x2,
x3, x4 the positive nodes added by each extension (descending), w10 the Gauss weights, w21a/w21b the 21-point
weights at x1 and at x2 then the centre, w43a/w43b the 43-point weights at x1, x2 and at x3 then the centre,
w87a/w87b the 87-point weights at x1, x2, x3 and at x4 then the centre.

    python3 tools/make_patterson_tables.py
"""
import mpmath as mp

from make_kronrod_tables import evaluate, legendre_coefficients, moment

mp.mp.dps = 300


def monic_from_roots(roots):
    p = [mp.mpf(1)]
    for r in roots:
        q = [mp.mpf(0)] * (len(p) + 1)
        for i, c in enumerate(p):
            q[i + 1] += c
            q[i] -= r * c
        p = q
    return p


def extension(nodes):
    """The zeros of E, degree len(nodes) + 1, orthogonal to x^k prod(x - node)."""
    p = monic_from_roots(nodes)
    m = len(nodes) + 1

    def inner(j, k):
        return mp.fsum(c * moment(i + j + k) for i, c in enumerate(p))

    a = mp.matrix(m, m)
    rhs = mp.matrix(m, 1)
    for k in range(m):
        for j in range(m):
            a[k, j] = inner(j, k)
        rhs[k] = -inner(m, k)
    c = mp.lu_solve(a, rhs)
    e = [c[j] for j in range(m)] + [mp.mpf(1)]
    edges = [mp.mpf(-1)] + sorted(nodes) + [mp.mpf(1)]
    return [mp.findroot(lambda x: evaluate(e, x), (edges[i], edges[i + 1]), solver="anderson") for i in range(m)]


def weights(nodes):
    """The weights of the symmetric interpolatory rule on `nodes`, by node (nonnegative nodes only)."""
    half = sorted(x for x in nodes if x > mp.mpf(10) ** -200)
    has_centre = len(nodes) % 2 == 1
    unknowns = half + ([mp.mpf(0)] if has_centre else [])
    m = len(unknowns)
    v = mp.matrix(m, m)
    rhs = mp.matrix(m, 1)
    for k in range(m):
        for i, x in enumerate(unknowns):
            v[k, i] = (2 if x != 0 else 1) * (x ** (2 * k) if x != 0 else (1 if k == 0 else 0))
        rhs[k] = moment(2 * k)
    w = mp.lu_solve(v, rhs)
    return {unknowns[i]: w[i] for i in range(m)}


def gauss_nodes(n):
    p = legendre_coefficients(n)
    return sorted(mp.re(z) for z in mp.polyroots(list(reversed(p)), maxsteps=500, extraprec=600))


def positive_descending(xs):
    return sorted((x for x in xs if x > mp.mpf(10) ** -200), reverse=True)


def show(name, values):
    body = ", ".join(repr(float(v)) for v in values)
    print(f"  {name} = {{{body}}};")


def main():
    g10 = gauss_nodes(10)
    k21 = extension(g10)
    n21 = g10 + k21
    p43 = extension(n21)
    n43 = n21 + p43
    p87 = extension(n43)
    n87 = n43 + p87
    x1, x2, x3, x4 = (positive_descending(s) for s in (g10, k21, p43, p87))
    w10, w21, w43, w87 = weights(g10), weights(n21), weights(n43), weights(n87)
    centre = mp.mpf(0)
    show("x1", x1)
    show("x2", x2)
    show("x3", x3)
    show("x4", x4)
    show("w10", [w10[x] for x in x1])
    show("w21a", [w21[x] for x in x1])
    show("w21b", [w21[x] for x in x2] + [w21[centre]])
    show("w43a", [w43[x] for x in x1 + x2])
    show("w43b", [w43[x] for x in x3] + [w43[centre]])
    show("w87a", [w87[x] for x in x1 + x2 + x3])
    show("w87b", [w87[x] for x in x4] + [w87[centre]])


if __name__ == "__main__":
    main()
