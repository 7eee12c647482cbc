#!/usr/bin/env python3
"""Exact values of the weighted integrals of oscillatory_gsl.txt (and of a few more with larger omega), for the
tests of d01anf and d01asf: mpmath at 30 digits, the integrand of ../oscillatory_integrands.h times cos or sin.
Finite ranges by mpmath.quad over pieces of a quarter period (the end-point singularities at 0 are
integrable); semi-infinite ranges by mpmath.quadosc, except x^(s-1) from 0, whose integrals are
Gamma(s) cos(pi s/2) / omega^s and Gamma(s) sin(pi s/2) / omega^s. One line per case:

    ROUTINE INTEGRAND ALPHA A B OMEGA KEY EXACT        (B is "inf" for d01asf)

    python3 make_oscillatory_exact.py > oscillatory_exact.txt
"""
import mpmath as mp

mp.mp.dps = 30

INTEGRANDS = {
    "log": lambda x, a: mp.log(x),
    "power": lambda x, a: x ** a,
    "decay": lambda x, a: mp.exp(-a * x),
    "lorentz": lambda x, a: 1 / (a * a + x * x),
    "x_over": lambda x, a: x / (1 + x * x),
    "constant": lambda x, a: a,
}

FINITE = [
    ("log", 0, 0, 1, mp.pi * 10, 2), ("log", 0, 0, 1, mp.pi * 10, 1), ("log", 0, 0, 1, 1000, 1),
    ("power", -0.5, 0, 1, 100, 1), ("power", -0.5, 0, 1, 100, 2), ("power", -0.9, 0, 1, 10, 2),
    ("power", -0.5, 0, 1, 1, 1), ("power", -0.5, 0, 1, 6, 1), ("power", 0.5, 0, 1, 3, 2),
    ("decay", 1, 0, 10, 100, 1), ("decay", 1, 0, 10, 1000, 2), ("lorentz", 1, 0, 10, 50, 1),
    ("constant", 1, 0, 1, 200, 2), ("lorentz", 0.01, -1, 1, 30, 1),
    ("log", 0, 0, 1, 1e4, 2), ("decay", 2, 0, 3, 1e5, 1),
]

INFINITE = [
    ("power", -0.5, 0, mp.pi / 2, 1), ("decay", 1, 0, 1, 1), ("decay", 1, 0, 1, 2), ("lorentz", 1, 0, 1, 1),
    ("x_over", 0, 0, 2, 2), ("power", -1, 1, 1, 2), ("power", -0.5, 0, 10.3, 2), ("power", -2, 1, 3, 1),
    ("power", -0.5, 0, 100.5, 1),
]


def weight(key, w):
    return (lambda x: mp.cos(w * x)) if key == 1 else (lambda x: mp.sin(w * x))


def finite(name, alpha, a, b, w, key):
    f, g = INTEGRANDS[name], weight(key, w)
    pieces = int(mp.ceil(abs(w) * (b - a) / (mp.pi / 2))) + 1
    return mp.quad(lambda x: f(x, mp.mpf(alpha)) * g(x), mp.linspace(a, b, min(pieces, 20000) + 1))


def infinite(name, alpha, a, w, key):
    f, g = INTEGRANDS[name], weight(key, w)
    if name == "power" and a == 0:
        s = mp.mpf(alpha) + 1
        trig = mp.cos if key == 1 else mp.sin
        return mp.gamma(s) * trig(mp.pi * s / 2) / mp.mpf(w) ** s
    return mp.quadosc(lambda x: f(x, mp.mpf(alpha)) * g(x), [a, mp.inf], omega=w)


def main():
    for name, alpha, a, b, w, key in FINITE:
        print("d01anf %s %.17g %.17g %.17g %.17g %d %s" % (name, alpha, a, b, w, key,
                                                           mp.nstr(finite(name, alpha, a, b, w, key), 20)))
    for name, alpha, a, w, key in INFINITE:
        print("d01asf %s %.17g %.17g inf %.17g %d %s" % (name, alpha, a, w, key,
                                                         mp.nstr(infinite(name, alpha, a, w, key), 20)))


if __name__ == "__main__":
    main()
