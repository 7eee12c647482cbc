#!/usr/bin/env python3
"""Reference tables for the statistics tests, computed with mpmath at 50 digits.

normal.txt, one point a line: x, then P(Z <= x), P(Z >= x), P(-|x| <= Z <= |x|), P(|Z| >= |x|); the points
cover the centre, both tails out to the underflow of the probability, and the erf/erfc break-points.
moments.txt: samples (some after NIST's StRD NumAcc data, large offsets with small spread), each as a line
"data x1 ... xn", a line "weights w1 ... wn" (empty for an unweighted sample), and a line "moments mean sd
skewness kurtosis" with sd^2 = sum w d^2 / (W (n-1)/n), skewness = (sum w d^3/W)/sd^3, kurtosis =
(sum w d^4/W)/sd^4 - 3, n the observations of positive weight.
normal_inverse.txt: p, then the deviates of the four tails for that p (the 'L' deviate is Phi^-1(p)).
Arguments have 17 significant digits (they read back to the double used), references 25.

    python3 make_tables.py
"""
import random
from pathlib import Path

import mpmath as mp

mp.mp.dps = 50
HERE = Path(__file__).resolve().parent


def phi(x):
    return mp.ncdf(x)


def main():
    rng = random.Random(20261124)
    xs = [0.0, 0.46875 * 2 ** 0.5, 4 * 2 ** 0.5, 26.6 * 2 ** 0.5, -6.5 * 2 ** 0.5, 37.5, -37.5, 38.4]
    xs += [rng.uniform(-3, 3) for _ in range(120)]
    xs += [rng.uniform(-38, 38) for _ in range(120)]
    xs += [-(10 ** rng.uniform(-300, -1)) for _ in range(20)] + [10 ** rng.uniform(-300, -1) for _ in range(20)]
    with open(HERE / "normal.txt", "w") as f:
        f.write("# x  lower  upper  central  significance  (mpmath, 50 digits)\n")
        for x in xs:
            m = mp.mpf(x)
            lo, up = phi(m), phi(-m)
            cen, sig = mp.erf(abs(m) / mp.sqrt(2)), mp.erfc(abs(m) / mp.sqrt(2))
            f.write("%.17g %s %s %s %s\n" % (x, *(mp.nstr(v, 25) for v in (lo, up, cen, sig))))
    ps = [0.5, 0.075, 0.925, 1e-300, 1 - 2 ** -53, 2 ** -1074 * 3]
    ps += [rng.uniform(0, 1) for _ in range(150)]
    ps += [10 ** rng.uniform(-300, -1) for _ in range(80)]
    ps += [1 - 10 ** rng.uniform(-15, -1) for _ in range(40)]
    with open(HERE / "normal_inverse.txt", "w") as f:
        f.write("# p  lower  upper  central  significance deviates  (mpmath, 50 digits)\n")
        for p in ps:
            m = mp.mpf(p)
            def inv(q):
                with mp.workdps(700):  # 2q - 1 keeps the digits of a q near 0 or 1
                    return +(mp.sqrt(2) * mp.erfinv(2 * mp.mpf(q) - 1))
            vals = (inv(m), -inv(m), inv(m / 2 + mp.mpf(0.5)), -inv(m / 2))
            f.write("%.17g %s\n" % (p, " ".join(mp.nstr(v, 25) for v in vals)))
    write_moments(rng)


def moments_of(x, w):
    pairs = [(mp.mpf(a), mp.mpf(b)) for a, b in zip(x, w) if b > 0]
    n, W = len(pairs), sum(b for _, b in pairs)
    mean = sum(a * b for a, b in pairs) / W
    d = [(a - mean, b) for a, b in pairs]
    var = sum(b * e ** 2 for e, b in d) / (W * (n - 1) / n)
    sd = mp.sqrt(var)
    skew = sum(b * e ** 3 for e, b in d) / W / sd ** 3
    kurt = sum(b * e ** 4 for e, b in d) / W / sd ** 4 - 3
    return mean, sd, skew, kurt


def write_moments(rng):
    samples = [([10000001, 10000003, 10000002], None),
               ([1e9 + v for v in [0.2] + [0.1, 0.3] * 500], None),
               ([1e13 + rng.choice([0.5, 1.5, 2.5, 3.25]) for _ in range(1001)], None),
               ([rng.gauss(3, 2) ** 3 for _ in range(500)], None),
               ([rng.uniform(-5, 5) for _ in range(300)], [rng.choice([0, 0.25, 1, 3.5]) for _ in range(300)]),
               ([1e8 + rng.expovariate(1) for _ in range(200)], [rng.uniform(0, 1e-3) for _ in range(200)])]
    with open(HERE / "moments.txt", "w") as f:
        f.write("# samples and their weighted moments (mpmath, 50 digits)\n")
        for x, w in samples:
            f.write("data " + " ".join("%.17g" % v for v in x) + "\n")
            f.write("weights " + ("" if w is None else " ".join("%.17g" % v for v in w)) + "\n")
            ref = moments_of(x, w if w is not None else [1] * len(x))
            f.write("moments " + " ".join(mp.nstr(v, 25) for v in ref) + "\n")


if __name__ == "__main__":
    main()
