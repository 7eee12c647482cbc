#!/usr/bin/env python3
"""Exact values of the integrals of quadinf_gsl.txt (the cases of d01amf, d01aqf, d01apf, d01bdf), for
test_zeros_quad to measure the routines' results and error estimates against: mpmath at 50 digits, with
tanh-sinh quadrature split at every kink, and closed forms where the integrand oscillates over an infinite
range. Principal values as the integral of (f(x) - f(c)) / (x - c) plus f(c) log((b-c)/(c-a)). Writes one line
per case: ROUTINE INTEGRAND ALPHA NPAR PARAMETERS... EXACT RTOL, EXACT "nan" for a divergent integral or one not
computed, RTOL the relative error a result may have beyond its error estimate: 1e-14, or 1e-11 for a pole closer
than 1e-5 of the interval's length to an end, where the forward recurrence of the Chebyshev moments loses digits
that the estimate (the difference of two expansions) does not see.

    python3 make_quadinf_exact.py < quadinf_gsl.txt > quadinf_exact.txt
"""
import sys

import mpmath as mp

mp.mp.dps = 50
PI4 = mp.pi / 4

INTEGRANDS = {
    "power_log": lambda x, a: x ** a * mp.log(1 / x),
    "peak": lambda x, a: mp.mpf(4) ** -a / ((x - PI4) ** 2 + mp.mpf(16) ** -a),
    "cos_sin": lambda x, a: mp.cos(mp.mpf(2) ** a * mp.sin(x)),
    "cos_freq_sin": lambda x, a: mp.cos(a * mp.sin(x)),
    "exp": lambda x, a: mp.exp(a * x),
    "power": lambda x, a: x ** a,
    "step": lambda x, a: 0 if x < a else 1,
    "lorentz": lambda x, a: 1 / ((x - mp.mpf(1) / 2) ** 2 + mp.mpf(10) ** -a),
    "sin": lambda x, a: mp.sin(x) / x ** a,
    "log_lorentz": lambda x, a: mp.log(x) / (1 + 100 * x * x),
    "square_exp": lambda x, a: x * x * mp.exp(-mp.mpf(2) ** -a * x),
    "power_over_square": lambda x, a: x ** (a - 1) / (1 + 10 * x) ** 2,
    "gauss_linear": lambda x, a: mp.exp(-x * x - a * x),
    "cubic_inverse": lambda x, a: 1 / (5 * x ** 3 + 6),
    "log_square": lambda x, a: 1 / (1 + mp.log(x) ** 2) ** 2,
    "cos_lorentz": lambda x, a: mp.cos(a * x) / (1 + x * x),
}


def pieces(lo, hi, kinks, n=1):
    """[lo, ..., hi] with the kinks inside and n equal parts between neighbours."""
    edges = sorted({lo, hi} | {k for k in kinks if lo < k < hi})
    out = [edges[0]]
    for s, t in zip(edges, edges[1:]):
        out += [s + (t - s) * i / n for i in range(1, n + 1)]
    return out


def finite(f, lo, hi, kinks, n):
    return mp.quad(f, pieces(lo, hi, kinks, n), maxdegree=10)


def exact(routine, name, alpha, p):
    g = INTEGRANDS.get(name)
    if g is None or name == "rippled":
        return mp.nan
    f = lambda x: g(x, alpha)
    kinks = [PI4] if name == "peak" else [alpha] if name == "step" else []
    wiggles = 40 if name in ("cos_freq_sin", "cos_sin") else 4
    if routine == "d01amf":
        bound, inf = p[0], int(p[1])
        if name == "cos_lorentz":
            return mp.pi * mp.exp(-abs(alpha))
        if name == "sin":
            return mp.pi / 2
        if name == "power":
            return -mp.power(bound, alpha + 1) / (alpha + 1) if alpha < -1 else mp.nan
        rng = [bound, mp.inf] if inf == 1 else [-mp.inf, bound] if inf == -1 else [-mp.inf, 0, mp.inf]
        return mp.quad(f, rng)
    if routine == "d01aqf":
        a, b, c = p
        lo, hi = min(a, b), max(a, b)
        sign = 1 if a < b else -1
        if not lo < c < hi:
            return sign * finite(lambda x: f(x) / (x - c), lo, hi, kinks, wiggles)
        fc = f(c)
        smooth = finite(lambda x: (f(x) - fc) / (x - c) if x != c else mp.diff(f, c), lo, hi, kinks + [c], wiggles)
        return sign * (smooth + fc * mp.log((hi - c) / (c - lo)))
    if routine == "d01apf":
        a, b, alfa, beta, key = p
        key = int(key)

        # On the left half s = d^(alfa+1)/(alfa+1) with d = x - a, on the right half the like with d = b - x: the
        # power of the near end disappears and only logarithms stay singular.
        m = (a + b) / 2

        def left(s):
            d = ((alfa + 1) * s) ** (1 / (alfa + 1))
            return (b - a - d) ** beta * logs(d, b - a - d) * f(a + d)

        def right(s):
            d = ((beta + 1) * s) ** (1 / (beta + 1))
            return (b - a - d) ** alfa * logs(b - a - d, d) * f(b - d)

        def logs(d_left, d_right):
            v = mp.mpf(1)
            if key in (2, 4):
                v *= mp.log(d_left)
            if key in (3, 4):
                v *= mp.log(d_right)
            return v

        sa, sb = (m - a) ** (alfa + 1) / (alfa + 1), (b - m) ** (beta + 1) / (beta + 1)
        near = [k for k in kinks if a < k < m], [k for k in kinks if m < k < b]
        ka = [(k - a) ** (alfa + 1) / (alfa + 1) for k in near[0]]
        kb = [(b - k) ** (beta + 1) / (beta + 1) for k in near[1]]
        return finite(left, 0, sa, ka, wiggles) + finite(right, 0, sb, kb, wiggles)
    a, b = p
    return finite(f, a, b, kinks, wiggles) if a < b else -finite(f, b, a, kinks, wiggles)


def main():
    for line in sys.stdin:
        t = line.split()
        if not t or line.startswith("#") or not t[0].startswith("d01"):
            continue
        routine, name, alpha, npar = t[0], t[1], mp.mpf(t[2]), int(t[3])
        p = [mp.mpf(v) for v in t[4:4 + npar]]
        value = exact(routine, name, alpha, p)
        rtol = 1e-14
        if routine == "d01aqf" and min(abs(p[2] - p[0]), abs(p[2] - p[1])) < 1e-5 * abs(p[1] - p[0]):
            rtol = 1e-11
        print(" ".join(t[:4 + npar]), mp.nstr(value, 20) if mp.isfinite(value) else "nan", rtol)


if __name__ == "__main__":
    main()
