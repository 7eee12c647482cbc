#!/usr/bin/env python3
"""The default tolerances of the E04UCF option set, as its parameter listing shows them (1PE10.2), computed
independently of the library with mpmath at 50 digits. eps = 2**-53 (the machine precision).

Run: python3 tests/optim/data/listing_values.py   (the output is pasted into start_of_solve_test.cpp)."""
from mpmath import mp, mpf

mp.dps = 50
eps = mpf(2) ** -53


def e10_2(x) -> str:
    """1PE10.2: one digit before the point, two after, two-digit exponent, right-aligned in 10."""
    e = int(mp.floor(mp.log10(x)))
    m = mp.nint(x / mpf(10) ** e * 100)  # three significant digits, as an integer
    if m >= 1000:
        m, e = mp.nint(m / 10), e + 1
    m = int(m)
    return f"{m // 100}.{m % 100:02d}E{e:+03d}".rjust(10)


eps_r = eps ** mpf("0.9")
values = {
    "function precision eps^0.9": eps_r,
    "optimality tolerance eps_R^0.8": eps_r ** mpf("0.8"),
    "feasibility eps^0.5": eps ** mpf("0.5"),
    "nonlinear feasibility (levels 0, 1) eps^0.33": eps ** mpf("0.33"),
    "condition bound eps^-0.5": eps ** mpf("-0.5"),
    "central interval eps_R^0.33": eps_r ** mpf("0.33"),
    "infinite bound 9.9999e19": mpf("9.9999e19"),
    "optimality tolerance for eps_R = 0.5: 0.5^0.8": mpf("0.5") ** mpf("0.8"),
}
for name, v in values.items():
    print(f"{e10_2(v)!r}  {name} = {mp.nstr(v, 12)}")
