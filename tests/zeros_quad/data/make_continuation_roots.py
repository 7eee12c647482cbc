#!/usr/bin/env python3
"""Reference zeros for the continuation zero finders (c05awf, c05axf), from mpmath at 50 digits.

Writes continuation_roots.txt beside this script:

    eq NAME X0 ZERO     a test equation, the starting point given to the routine and the zero it should reach
    aps INDEX ZERO      the zero in [a, b] of the INDEX-th Alefeld-Potra-Shi problem, in the order of
                        tests/zeros_quad/aps_problems.h (ACM TOMS 21, 1995, table I), written here again

Each zero is found by bisection to 2^-200 of a bracket where the function changes sign, then printed to 25
digits (0 when it is below 1e-40). The equations are classic cases where Newton's method from the given start diverges or cycles (atan,
tanh and ln far out, x^3 - 2x + 2 from 0, x^20 - 1 from 0.5) beside smooth ones and a triple zero.

    python3 make_continuation_roots.py
"""
from pathlib import Path

import mpmath as mp

mp.mp.dps = 50
HERE = Path(__file__).resolve().parent


def bisect(f, a, b):
    a, b = mp.mpf(a), mp.mpf(b)
    fa = f(a)
    assert fa * f(b) <= 0, (a, b)
    for _ in range(200):
        m = (a + b) / 2
        fm = f(m)
        if fm == 0:
            return m
        if (fm > 0) == (fa > 0):
            a, fa = m, fm
        else:
            b = m
    return (a + b) / 2


# name: (function, start, bracket of the zero meant)
EQUATIONS = {
    "atan": (mp.atan, 3.0, (-1, 1.5)),
    "tanh": (mp.tanh, 2.0, (-1, 1.5)),
    "log": (mp.log, 5.0, (0.5, 2)),
    "brent_cubic": (lambda x: x**3 - 2 * x - 5, 3.0, (2, 3)),
    "power20": (lambda x: x**20 - 1, 0.5, (0.5, 2)),
    "cos_minus_x": (lambda x: mp.cos(x) - x, 0.0, (0, 1)),
    "kepler": (lambda x: x - mp.mpf("0.9") * mp.sin(x) - 1, 0.0, (0, 3)),
    "exp_minus_ten_thousand": (lambda x: mp.exp(x) - 10000, 0.0, (5, 15)),
    "triple": (lambda x: (x - 1)**3, 0.0, (0, 3)),
}


def aps():
    """The 167 instances, each (function, a, b)."""
    p = []
    pi = mp.pi
    p.append((lambda x: mp.sin(x) - x / 2, pi / 2, pi))
    for n in range(1, 11):
        p.append((lambda x: -2 * mp.fsum((2 * i - 5)**2 / (x - i * i)**3 for i in range(1, 21)),
                  n * n + mp.mpf("1e-9"), (n + 1)**2 - mp.mpf("1e-9")))
    for a, b in ((-40, -1), (-100, -2), (-200, -3)):
        p.append((lambda x, a=a, b=b: a * x * mp.exp(b * x), -9, 31))
    for a in (mp.mpf("0.2"), mp.mpf(1)):
        for n in range(4, 13, 2):
            p.append((lambda x, a=a, n=n: x**n - a, 0, 5))
    for n in range(8, 15, 2):
        p.append((lambda x, n=n: x**n - 1, mp.mpf("-0.95"), mp.mpf("4.05")))
    p.append((lambda x: mp.sin(x) - mp.mpf("0.5"), 0, mp.mpf("1.5")))
    for n in (1, 2, 3, 4, 5, 20, 40, 60, 80, 100):
        p.append((lambda x, n=n: 2 * x * mp.exp(-n) - 2 * mp.exp(-n * x) + 1, 0, 1))
    for n in (5, 10, 20):
        p.append((lambda x, n=n: (1 + (1 - n)**2) * x - (1 - n * x)**2, 0, 1))
    for n in (2, 5, 10, 15, 20):
        p.append((lambda x, n=n: x**2 - (1 - x)**n, 0, 1))
    for n in (1, 2, 4, 5, 8, 15, 20):
        p.append((lambda x, n=n: (1 + (1 - n)**4) * x - (1 - n * x)**4, 0, 1))
    for n in (1, 5, 10, 15, 20):
        p.append((lambda x, n=n: mp.exp(-n * x) * (x - 1) + x**n, 0, 1))
    for n in (2, 5, 15, 20):
        p.append((lambda x, n=n: (n * x - 1) / ((n - 1) * x), mp.mpf("0.01"), 1))
    for n in range(2, 34):
        p.append((lambda x, n=n: mp.root(x, n) - mp.root(n, n), 1, 100))
    p.append((lambda x: 0 if x == 0 else x / mp.exp(1 / (x * x)), -1, 4))
    for n in range(1, 41):
        p.append((lambda x, n=n: n / mp.mpf(20) * (x / mp.mpf("1.5") + mp.sin(x) - 1) if x >= 0 else -n / mp.mpf(20),
                  -10000, pi / 2))
    for n in list(range(20, 41)) + list(range(100, 1001, 100)):
        def f15(x, n=n):
            if x > mp.mpf("2e-3") / (1 + n):
                return mp.e - mp.mpf("1.859")
            if x < 0:
                return mp.mpf("-0.859")
            return mp.exp((n + 1) * x / 2 * 1000) - mp.mpf("1.859")
        p.append((f15, -10000, mp.mpf("1e-4")))
    return p


def text(z):
    """25 digits; a zero found to below 1e-40 of 0 is 0."""
    return "0" if abs(z) < mp.mpf("1e-40") else mp.nstr(z, 25)


def main():
    rows = []
    for name, (f, x0, (a, b)) in EQUATIONS.items():
        rows.append(f"eq {name} {x0!r} {text(bisect(f, a, b))}")
    problems = aps()
    assert len(problems) == 167
    for k, (f, a, b) in enumerate(problems):
        rows.append(f"aps {k} {text(bisect(f, a, b))}")
    (HERE / "continuation_roots.txt").write_text(
        "# Made by make_continuation_roots.py (beside this file): mpmath bisection at 50 digits.\n"
        + "\n".join(rows) + "\n")


if __name__ == "__main__":
    main()
