#!/usr/bin/env python3
"""The sweep emitter's reading of the declarations: checks evaluated as the generated worker evaluates them
(C division, NaN failing, option letters by their first character), baselines that pass every declared check,
and length expressions compiled over the integer scalars."""
import math
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))

from decl.emit_sweep import CInt, Text, baseline, check_holds, length_code  # noqa: E402
from vekgen import load  # noqa: E402


class Checks(unittest.TestCase):
    def test_integer_division_truncates_like_c(self):
        # d02haf: LW >= N*(10*N+14) written as (LW - 14*N)/10 >= N*N; for N = 3 the bound is 132.
        expr = "(LW - 14*N)/10 >= N*N"
        self.assertFalse(check_holds(expr, {"LW": CInt(131), "N": CInt(3)}))
        self.assertTrue(check_holds(expr, {"LW": CInt(132), "N": CInt(3)}))
        self.assertTrue(check_holds("N/2 == -3", {"N": CInt(-7)}))  # C: -7/2 is -3, Python's // gives -4

    def test_nan_fails_every_relation_naming_it(self):
        self.assertFalse(check_holds("A != B", {"A": math.nan, "B": 1.0}))
        self.assertFalse(check_holds("A < B || A > B", {"A": math.nan, "B": 1.0}))

    def test_option_letter_is_its_first_character_in_either_case(self):
        self.assertTrue(check_holds("ORDER in {'A', 'D'}", {"ORDER": Text("descending")}))
        self.assertFalse(check_holds("ORDER in {'A', 'D'}", {"ORDER": Text("x")}))
        self.assertTrue(check_holds("L2 <= len(CH)", {"L2": CInt(8), "CH": Text("X" * 8)}))


class Baselines(unittest.TestCase):
    def test_every_declared_routine_gets_a_baseline_passing_its_checks(self):
        chapters, _ = load(sorted((ROOT / "src" / "exports").glob("*.decl")))
        checked = 0
        for ch in chapters:
            for r in ch.routines:
                if r.kind != "routine" or not r.checks:
                    continue
                values = baseline(r)
                for c in r.checks:
                    self.assertTrue(check_holds(c.expr, values), f"{r.name}: {c.expr} with {values}")
                checked += 1
        self.assertGreater(checked, 20)


class Lengths(unittest.TestCase):
    def test_length_over_integer_scalars(self):
        self.assertEqual(length_code("max(LDA,0)*max(N,0)", {"N": 0, "LDA": 2}),
                         "lmax(s[2],Len(0))*lmax(s[0],Len(0))")
        self.assertEqual(length_code("N > 0 ? 2*N : 1", {"N": 1}), "s[1] > Len(0) ? Len(2)*s[1] : Len(1)")

    def test_length_naming_anything_else_is_unknown(self):
        self.assertIsNone(length_code("max(N,LWORK)", {"N": 0}))


if __name__ == "__main__":
    unittest.main()
