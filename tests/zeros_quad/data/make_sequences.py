#!/usr/bin/env python3
"""Reference sequences for the zero finders, from a second implementation: the documented algorithm of the
bracketing zero finder and of its driver written out step by step in Python, independently of the library's
C++. Python floats are IEEE doubles and the test functions use only + - * /, so every iterate must agree to
the last bit.

Writes sequences.txt beside this script:

    azf CASE FUNCTION IND X Y TOLX IR     a reverse-communication run started with IND (1, or -1 with
                                          FX = f(X) and C(1) = f(Y) supplied)
    step IND X Y                          after each call: IND, X and Y as returned
    done IFAIL X Y                        the final call's IFAIL (IND = 0)

    ayf CASE FUNCTION A B EPS ETA         a driver run
    eval X                                each point at which F is evaluated, in order
    done IFAIL X

    avf CASE FUNCTION IND X H BOUNDL BOUNDU   a search for a sign change (IND 1, or -1 with FX = f(X))
    step IND X H                          after each call that asks for a value
    done IFAIL X Y C1                     the final call: IFAIL, X, Y and C(1) = f(Y)

    auf CASE FUNCTION X H EPS ETA         a zero near X
    eval X                                each point at which F is evaluated, in order
    done IFAIL X A B

Numbers are written with repr(), which reads back to the same double.

    python3 make_sequences.py
"""
import math
from pathlib import Path

HERE = Path(__file__).resolve().parent
EPS = 2.0 ** -53  # the machine precision of the library (x02ajf)


def divide(u, v):
    """u / v in IEEE arithmetic: a signed infinity for v = 0 (Python raises instead)."""
    if v == 0.0:
        return math.copysign(math.inf, u) * math.copysign(1.0, v)
    return u / v


FUNCTIONS = {
    "square_minus_two": lambda x: x * x - 2.0,
    "brent_cubic": lambda x: x * x * x - 2.0 * x - 5.0,        # Wallis's example, zero near 2.0946
    "triple_root": lambda x: (x - 1.0) * (x - 1.0) * (x - 1.0),  # interpolation keeps failing: bisection
    "reciprocal": lambda x: 1.0 / x - 3.0,                      # zero at 1/3, steep near 0
    "pole": lambda x: divide(1.0, x - 1.0),                     # changes sign at a pole, no zero
    "plus_one_squared": lambda x: x * x + 1.0,                  # never changes sign
}


def same_sign(u, v):
    """Both <= 0 or both > 0 (0 counts as non-positive)."""
    return (u <= 0.0 and v <= 0.0) or (u > 0.0 and v > 0.0)


class Kernel:
    """The reverse-communication kernel. C[1..10] as documented (C[0] unused)."""

    def __init__(self):
        self.C = [0.0] * 11

    def call(self, x, y, fx, tolx, ir, ind):
        """One call: returns (x, y, ind, ifail)."""
        C = self.C
        if ind not in (-1, 1, 2, 3, 4):
            return x, y, 0, 2
        if not tolx > 0.0:
            return x, y, 0, 3
        if ir not in (0, 1, 2):
            return x, y, 0, 3
        if ind == 1:
            C[3] = x
            return x, y, 2, 0
        if ind in (2, -1):
            if fx == 0.0:
                return x, x, 0, 0
            if ind == -1:
                C[3] = x
            C[2] = fx
            C[9] = abs(fx)
            C[10] = 0.0
            x = y
            y = C[3]
            C[4] = x
            if ind == 2:
                return x, y, 3, 0
            second, zero_test = C[1], False
        elif ind == 3:
            second, zero_test = fx, True
        else:  # ind == 4
            if fx == 0.0:
                return x, x, 0, 0
            if C[10] != 0.0:
                return (x, y, 0, 0) if abs(fx) <= C[9] else (x, y, 0, 4)
            a, fa, b, c, fc, d, e = C[3], C[2], C[4], C[7], C[8], C[5], C[6]
            fb = fx
            if same_sign(fb, fc):
                c, fc = a, fa
                d = e = b - a
            return self.iterate(a, fa, b, fb, c, fc, d, e, x, y, tolx, ir)
        # the second starting value
        if zero_test and second == 0.0:
            return x, x, 0, 0
        if same_sign(C[2], second):
            return x, y, 0, 1
        C[9] = max(C[9], abs(second))
        a, fa, b, fb = C[3], C[2], C[4], second
        c, fc = a, fa
        d = e = b - a
        return self.iterate(a, fa, b, fb, c, fc, d, e, x, y, tolx, ir)

    def iterate(self, a, fa, b, fb, c, fc, d, e, x, y, tolx, ir):
        C = self.C
        if abs(fc) < abs(fb):
            a, b, c = b, c, b
            fa, fb, fc = fb, fc, fb
        xm = (c - b) / 2.0
        r, s = {0: (1.0, 1.0), 1: (0.0, 1.0), 2: (1.0, 0.0)}[ir]
        tol = tolx * max(r * abs(b), s)
        if abs(xm) <= tol or fb == 0.0:
            C[10] = 1.0
            return b, c, 4, 0
        if abs(xm) <= EPS * abs(b):
            return x, y, 0, 5
        if abs(e) < tol or abs(fa) <= abs(fb):
            d = e = xm
        else:
            s_ = fb / fa
            if a == c:
                p = 2.0 * xm * s_
                q = 1.0 - s_
            else:
                q_ = fa / fc
                r_ = fb / fc
                p = s_ * (2.0 * xm * q_ * (q_ - r_) - (b - a) * (r_ - 1.0))
                q = (q_ - 1.0) * (r_ - 1.0) * (s_ - 1.0)
            if p > 0.0:
                q = -q
            else:
                p = -p
            if 2.0 * p >= 3.0 * xm * q - abs(tol * q) or p >= abs(e * q / 2.0):
                d = e = xm
            else:
                e = d
                d = p / q
        if abs(d) > tol:
            new = b + d
        else:
            new = b + tol if c > b else b - tol
        C[3], C[2], C[7], C[8], C[5], C[6], C[4] = b, fb, c, fc, d, e, new
        return new, y, 4, 0


def run_azf(out, name, fname, ind, x, y, tolx, ir):
    f = FUNCTIONS[fname]
    out.append(f"azf {name} {fname} {ind} {x!r} {y!r} {tolx!r} {ir}")
    k = Kernel()
    fx = 0.0
    if ind == -1:
        fx = f(x)
        k.C[1] = f(y)
    for _ in range(10000):
        x, y, ind, ifail = k.call(x, y, fx, tolx, ir, ind)
        if ind == 0:
            out.append(f"done {ifail} {x!r} {y!r}")
            return
        out.append(f"step {ind} {x!r} {y!r}")
        fx = f(x)
    raise RuntimeError(f"{name} does not end")


def interval_zero(value, a, b, eps, eta):
    """The driver's search in [a, b]: returns (x, outcome), outcome 0 (zero), 1 (same sign), or the kernel's
    4 (pole) or 5 (EPS too small). A value with |f| < eta or f = 0 ends it at once."""

    def accepted(v):
        return abs(v) < eta or v == 0.0

    fa = value(a)
    if accepted(fa):
        return a, 0
    fb = value(b)
    if accepted(fb):
        return b, 0
    if same_sign(fa, fb):
        return b, 1
    k = Kernel()
    k.C[1] = fa
    x, y, ind, ifail = k.call(b, a, fb, eps, 1, -1)
    while ind != 0:
        fx = value(x)
        if accepted(fx):
            return x, 0
        x, y, ind, ifail = k.call(x, y, fx, eps, 1, ind)
    return x, ifail


def run_ayf(out, name, fname, a, b, eps, eta):
    f = FUNCTIONS[fname]
    out.append(f"ayf {name} {fname} {a!r} {b!r} {eps!r} {eta!r}")

    def value(t):
        out.append(f"eval {t!r}")
        return f(t)

    x, outcome = interval_zero(value, a, b, eps, eta)
    out.append(f"done {({0: 0, 1: 1, 4: 3, 5: 2}[outcome])} {x!r}")


class Search:
    """The outward search for a sign change. C[1..11] as documented (C[0] unused)."""

    def __init__(self, boundl, boundu):
        self.C = [0.0] * 12
        self.lo, self.hi = boundl, boundu

    def positive(self, v):
        return v >= 0.0  # 0 counts as positive in the search

    def step(self, x, h, aware):
        """Step 4: returns (accepted, x, h)."""
        C, lo, hi = self.C, self.lo, self.hi
        if aware:
            if x == lo:
                C[7] = -1.0
                if x + h < lo:
                    h = -h
            if x == hi:
                C[7] = 1.0
                if x + h > hi:
                    h = -h
        t = x + h
        if math.isnan(t):
            return False, x, h
        if t >= hi:
            if C[7] == 1.0 or abs(C[7]) > 1.5:
                return False, x, h
            C[7] = 1.0 if C[7] == 0.0 else 2.0
            t = hi
        elif t <= lo:
            if C[7] == -1.0 or abs(C[7]) > 1.5:
                return False, x, h
            C[7] = -1.0 if C[7] == 0.0 else -2.0
            t = lo
        return True, t, h

    def refine(self, x, y, h):
        """Step 5, and step 6 when the refinements are spent: returns (x, y, h, ind, ifail)."""
        C = self.C
        while C[6] < 3.0:
            C[6] += 1.0
            k = int(C[6])
            h = C[5] / 10.0 ** k if k % 2 == 0 else -C[5] / 10.0 ** k
            if C[3] + h == C[3]:
                break
            y = C[3]
            C[8] = C[10] = C[3]
            C[1] = C[9] = C[11] = C[4]
            C[7] = 0.0
            ok, x, h = self.step(C[3], h, True)
            if ok:
                return x, y, h, 3, 0
        if C[8] <= C[10]:
            C[1] = C[11]
            return C[8], C[10], h, 0, 4
        C[1] = C[9]
        return C[10], C[8], h, 0, 4

    def call(self, x, fx, h, y, ind):
        """One call (checks assumed passed): returns (x, y, h, ind, ifail)."""
        C = self.C
        if ind in (1, -1):
            y = x
            C[3], C[5], C[6], C[7] = x, h, 0.0, 0.0
            C[8] = C[10] = x
            if ind == 1:
                return x, y, h, 2, 0
            ind = 2
        if ind == 2:
            C[1] = C[4] = C[9] = C[11] = fx
            if fx == 0.0:
                return x, x, h, 0, 0
            ok, x, h = self.step(x, h, True)
            return (x, y, h, 3, 0) if ok else self.refine(x, y, h)
        # ind == 3
        if fx == 0.0:
            C[1] = 0.0
            return x, x, h, 0, 0
        C[2] = fx
        if not math.isnan(fx) and not math.isnan(C[1]) and self.positive(fx) != self.positive(C[1]):
            if abs(x - C[8]) <= abs(x - C[10]):
                y, C[1] = C[8], C[9]
            else:
                y, C[1] = C[10], C[11]
            return x, y, h, 0, 0
        if abs(x - self.lo) <= abs(C[8] - self.lo):
            C[8], C[9] = x, fx
        elif abs(x - self.hi) <= abs(C[10] - self.hi):
            C[10], C[11] = x, fx
        if abs(fx) < abs(C[1]):
            h, y, C[1] = 2.0 * h, x, fx
        else:
            h = -2.0 * h
        ok, x, h = self.step(x, h, False)
        return (x, y, h, 3, 0) if ok else self.refine(x, y, h)


def run_avf(out, name, fname, ind, x, h, boundl, boundu):
    f = FUNCTIONS[fname]
    out.append(f"avf {name} {fname} {ind} {x!r} {h!r} {boundl!r} {boundu!r}")
    s = Search(boundl, boundu)
    fx = f(x) if ind == -1 else 0.0
    y = 0.0
    for _ in range(100000):
        x, y, h, ind, ifail = s.call(x, fx, h, y, ind)
        if ind == 0:
            out.append(f"done {ifail} {x!r} {y!r} {s.C[1]!r}")
            return
        out.append(f"step {ind} {x!r} {h!r}")
        fx = f(x)
    raise RuntimeError(f"{name} does not end")


def run_auf(out, name, fname, x, h, eps, eta):
    f = FUNCTIONS[fname]
    out.append(f"auf {name} {fname} {x!r} {h!r} {eps!r} {eta!r}")

    def value(t):
        out.append(f"eval {t!r}")
        return f(t)

    def done(ifail, x, a, b):
        out.append(f"done {ifail} {x!r} {a!r} {b!r}")

    x0 = x
    fx = value(x)
    if abs(fx) <= eta:
        return done(0, x, x, x)
    s = Search(x - 256.0 * abs(h), x + 256.0 * abs(h))
    y = 0.0
    x, y, h, ind, ifail = s.call(x, fx, h, y, -1)
    while ind != 0:
        fx = value(x)
        if abs(fx) <= eta:
            return done(0, x, x, x)
        x, y, h, ind, ifail = s.call(x, fx, h, y, ind)
    if ifail == 4:
        return done(2, x0, s.C[8], s.C[10])
    if y == x:
        return done(0, x, x, x)
    a, b = y, x
    z, code = interval_zero(value, a, b, eps, eta)  # c05ayf on [a, b]
    ifail = {0: 0, 4: 3, 5: 4}[code]
    fz = value(z)
    if abs(fz) <= eta:
        return done(ifail, z, z, z)
    done(ifail, z, min(a, b), max(a, b))


def main():
    out = []
    run_azf(out, "sqrt2_mixed", "square_minus_two", 1, 1.0, 2.0, 1e-10, 0)
    run_azf(out, "sqrt2_given_values", "square_minus_two", -1, 2.0, 0.0, 1e-12, 1)
    run_azf(out, "cubic_absolute", "brent_cubic", 1, 2.0, 3.0, 1e-14, 1)
    run_azf(out, "cubic_reversed", "brent_cubic", 1, 3.0, 2.0, 1e-14, 1)
    run_azf(out, "triple_root_relative", "triple_root", 1, 0.0, 3.0, 1e-9, 2)
    run_azf(out, "reciprocal_mixed", "reciprocal", 1, 0.01, 10.0, 1e-13, 0)
    run_azf(out, "pole", "pole", 1, 0.0, 2.0, 1e-6, 0)
    run_azf(out, "sqrt2_too_tight", "square_minus_two", 1, 0.0, 4.0, 1e-300, 1)
    run_ayf(out, "cubic", "brent_cubic", 2.0, 3.0, 1e-12, 0.0)
    run_ayf(out, "cubic_eta", "brent_cubic", 3.0, 2.0, 1e-12, 1e-6)
    run_ayf(out, "triple_root", "triple_root", 0.0, 3.0, 1e-10, 0.0)
    run_ayf(out, "reciprocal", "reciprocal", 10.0, 0.01, 1e-9, 0.0)
    run_ayf(out, "pole", "pole", 0.0, 2.0, 1e-6, 0.0)
    run_ayf(out, "sqrt2_too_tight", "square_minus_two", 0.0, 4.0, 1e-300, 0.0)
    run_avf(out, "cubic_right", "brent_cubic", 1, 0.0, 0.25, -10.0, 10.0)
    run_avf(out, "cubic_given_value", "brent_cubic", -1, 0.0, -0.25, -10.0, 10.0)
    run_avf(out, "sqrt2_on_lower_bound", "square_minus_two", 1, -1.0, -0.1, -1.0, 10.0)
    run_avf(out, "sqrt2_on_upper_bound", "square_minus_two", 1, 3.0, 0.5, -4.0, 3.0)
    run_avf(out, "reciprocal_bounded", "reciprocal", 1, 5.0, 0.01, 0.05, 8.0)
    run_avf(out, "no_sign_change_refined", "plus_one_squared", 1, 0.5, 0.25, 0.0, 1.0)
    run_auf(out, "cubic", "brent_cubic", 0.0, 0.1, 1e-12, 0.0)
    run_auf(out, "sqrt2_eta", "square_minus_two", 1.0, 0.01, 1e-10, 1e-3)
    run_auf(out, "pole", "pole", 1.1, -0.3, 1e-9, 0.0)
    run_auf(out, "within_eta_at_once", "square_minus_two", 1.4142, 0.1, 1e-10, 1e-3)
    run_auf(out, "no_sign_change", "plus_one_squared", 0.5, 0.001, 1e-10, 0.0)
    run_auf(out, "too_tight", "brent_cubic", 2.0, 0.1, 1e-300, 0.0)
    (HERE / "sequences.txt").write_text("\n".join(["# Made by make_sequences.py (beside this file): a second "
                                                   "implementation of the zero finders."] + out) + "\n")


if __name__ == "__main__":
    main()
