#!/usr/bin/env python3
"""The options block of the declaration language: a well-formed block gives the tables and code expected,
and every malformed one is refused with its file, its line and the reason. Run by CTest
(optim_options_declarations)."""
import sys
import tempfile
import textwrap
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))

from decl import option_emit  # noqa: E402
from decl.model import DeclError  # noqa: E402
from decl.parse import parse_chapter  # noqa: E402
import vekgen  # noqa: E402

GOOD = """
options demo
  purpose A small option set.
  input n int "Variables.............."
  keyword BEGIN begin
  keyword END end
  keyword DEFAULTS defaults
  keyword IPRMLS subscript int
  alias ITNS ITERATIONS
  second NUMBER
  int iterations 1           # iteration limit
    key ITERATIONS (LIMIT)
    key MAJOR ITERATIONS
    default max(50, 3*n) if iterations < 0
    label "Iterations limit......."
  int mode 31                # mode
    key COLD = 0
    key WARM = 1
    key VERIFY blank = 3
    key VERIFY number
    default 0 unless mode in [0, 3]
    label "Mode..................."
    words COLD WARM
  real tolerance 2           # tolerance
    key TOLERANCE
    key MAJOR TOLERANCE
    default pow(eps, 0.5) unless tolerance in [eps, 1)
    label "Tolerance.............."
  listing Parameters
    row n iterations
    blank
    row mode tolerance if mode > 0
    text "Done." unless unset(tolerance)
  end
end
"""


def parse(text: str):
    with tempfile.TemporaryDirectory() as d:
        path = Path(d) / "demo.decl"
        path.write_text(textwrap.dedent(text))
        return parse_chapter(path)


class GoodBlock(unittest.TestCase):
    def test_tables_and_cases(self):
        s = parse(GOOD).options[0]
        self.assertEqual([w for w, _ in s.keywords],
                         ["BEGIN", "COLD", "DEFAULTS", "END", "IPRMLS", "ITERATIONS", "ITNS", "MAJOR", "TOLERANCE",
                          "VERIFY", "WARM"])
        self.assertEqual(dict(s.keywords)["ITNS"], "ITERATIONS")
        # An alias enters every table holding its target: ITERATIONS is a second keyword too (MAJOR ITERATIONS).
        self.assertEqual(s.seconds, [("ITERATIONS", ""), ("ITNS", "ITERATIONS"), ("NUMBER", ""), ("TOLERANCE", "")])
        verify = [(c.second, c.constant) for c in s.cases if c.keyword == "VERIFY"]
        self.assertEqual(verify, [("*number", None), ("*blank", "3")])
        major = [c.second for c in s.cases if c.keyword == "MAJOR"]
        self.assertEqual(major, ["ITERATIONS", "TOLERANCE"])

    def test_emitted_code(self):
        s = parse(GOOD).options[0]
        header = option_emit.emit_header([s])
        self.assertIn("int64_t& mode() const { return iwsav(31); }", header)
        self.assertIn("double& tolerance() const { return rwsav(2); }", header)
        self.assertIn('{"ITNS", "ITERATIONS"},', header)
        source = option_emit.emit_source([s])
        self.assertIn("if ((s.iterations() < 0)) s.iterations() = vek::optim::saturate(vek::frame::check_max("
                      "vek::frame::Wide{50}, (vek::frame::Wide{3} * vek::frame::Wide{in.n})));", source)
        self.assertIn("if (!(s.tolerance() >= vek::constants::eps() && s.tolerance() < 1)) s.tolerance() = "
                      "std::pow(vek::constants::eps(), 0.5);", source)
        self.assertIn('if (!(s.tolerance() == vek::optim::kRealMarker)) sink(" Done.");', source)
        self.assertIn('vek::optim::word_pair("Mode...................", {"COLD", "WARM"}, s.mode())', source)
        self.assertIn("## Optional parameters `demo`", option_emit.emit_doc([s]))


# Each malformed declaration: a text of GOOD, what replaces it, the reason given and the line reported (None:
# the first line that differs from GOOD).
BAD = [
    ("options demo", "options Demo", "'options NAME' with a lower-case name", None),
    ("keyword END end", "keyword END start", "'keyword WORD ACTION'", None),
    ("IPRMLS subscript int", "IPRMLS subscript", "'keyword WORD subscript int|real'", None),
    ("keyword BEGIN begin", "keyword begin begin", "keyword 'begin' is not an upper-case word", None),
    ("keyword DEFAULTS defaults", "keyword DEFAULTSANDMOREWORDSX defaults", "longer than the 16 characters", None),
    ("alias ITNS ITERATIONS", "alias ITNS MINOR", "alias ITNS stands for MINOR, which is no keyword of demo", None),
    ("alias ITNS ITERATIONS", "alias ITNS ITERATIONS\n  alias ITNS COLD", "alias ITNS is a keyword or alias already",
     None),
    ("alias ITNS ITERATIONS", "alias COLD WARM", "alias COLD is a keyword or alias already", None),
    ("second NUMBER", "second NUMBER TOLERANCE", "second keyword TOLERANCE is declared already", None),
    ("second NUMBER", "second number", "second keyword 'number' is not an upper-case word", None),
    ("int iterations 1 ", "int iterations x ", "'int NAME ELEMENT'", None),
    ("int iterations 1 ", "int iterations 61", "elements run from 1 to 60", None),
    ("int iterations 1 ", "int iterations 31", "mode takes IWSAV(31), already iterations's", 16),
    ("int iterations 1 ", "int eps 1 ", "'eps' cannot name a parameter or input", None),
    ("int iterations 1 ", "int n 1 ", "n declared twice", None),
    ("key ITERATIONS (LIMIT)", "key BEGIN", "BEGIN is the keyword of 'begin', not a parameter's", None),
    ("key MAJOR ITERATIONS\n", "key MAJOR ITERATIONS PRINT\n", "a key has one second keyword", None),
    ("key MAJOR ITERATIONS\n", "key MAJOR ITERATIONS (LIMIT\n", "unbalanced parentheses", None),
    ("key MAJOR ITERATIONS\n", "key MAJOR ITERATIONS\n    key MAJOR ITERATIONS\n",
     "iterations has the key MAJOR ITERATIONS twice", 14),
    ("key WARM = 1", "key WARM = 1.5", "the constant '1.5' of mode is not an integer", None),
    ("key WARM = 1", "key WARM = 1 2", "'key MAIN [SECOND] [(WORDS)] [= CONSTANT]'", None),
    ("key COLD = 0", "key COLD = 0\n    key COLD = 2", "mode has the key COLD twice", None),
    ("if iterations < 0", "if iterations < 0\n    default 5", "iterations has a default already", None),
    ("if iterations < 0", "if iterations < 0 +", "the expression ends early", None),
    ("max(50, 3*n)", "max(50, 3*k)", "unknown name 'k'", None),
    ("default max(50, 3*n) if iterations < 0", "default 0.5", "iterations is an integer and its default '0.5' is real",
     None),
    ("default max(50, 3*n)", "default n / 2", "integer division is not allowed", None),
    ("default max(50, 3*n) if iterations < 0", "default iterations > 2", "is a condition, not a value", None),
    ("if iterations < 0", "if n", "'n' is not a condition", None),
    ("if iterations < 0", "if mode > 1", "uses mode, whose start value is settled later", None),
    ("if iterations < 0", "if iterations in 1..2", "'in' takes [a, b]", None),
    ("if iterations < 0", "if iterations in [1, 2", "an interval closes with ']' or ')'", None),
    ("if iterations < 0", "if unset(n)", "unset() takes a parameter, not the input n", None),
    ("if iterations < 0", "if iterations $ 2", "cannot read '$ 2'", None),
    ("if iterations < 0", "if (iterations < 0", "')' expected", None),
    ("if iterations < 0", "if !iterations", "'!' takes a condition", None),
    ("if iterations < 0", "if iterations < 0 && 2", "'&&' takes a condition", None),
    ("max(50, 3*n)", "max(50, iterations < 2)", "max takes numbers, not a condition", None),
    ('"Iterations limit......."', '"Iterations limit........"', "the label of iterations is longer than 23", None),
    ('n int "Variables.............."', 'n int "Variables..............."', "the label of n is longer than 23", None),
    ('n int "Variables.............."', 'n integer', "'input NAME int|real [\"LABEL\"]'", None),
    ("words COLD WARM", "words", "lists the words of an integer parameter's values", None),
    ("  real tolerance 2           # tolerance", "  real tolerance 2\n    words A",
     "lists the words of an integer parameter's values", 25),
    ("  int mode 31", "  bogus line\n  int mode 31", "'bogus' is not a line of an options block", None),
    ("row n iterations", "row n iterations mode", "a row shows one or two parameters", None),
    ("row n iterations", "row n bogus", "bogus is no parameter or input with a label", None),
    ("row n iterations", "row n if n", "'n' is not a condition", None),
    ('text "Done." unless unset(tolerance)', "text Done.", "'text \"SENTENCE\" [if COND | unless COND]'", None),
    ("    blank", "    nothing", "a listing holds 'row', 'blank' and 'text' lines", None),
    ("  listing Parameters", "  listing Parameters\n  end\n  listing Again", "one listing per options block", 31),
    ("key MAJOR TOLERANCE", "key TOLERANCE", "tolerance has the key TOLERANCE twice", None),
]


def variant(old: str, new: str) -> tuple[str, int]:
    """GOOD with `old` replaced by `new`, and the number of the first line that differs."""
    base = textwrap.dedent(GOOD)
    assert old in base, old
    text = base.replace(old, new, 1)
    first = next(i for i, (a, b) in enumerate(zip(base.split("\n"), text.split("\n")), 1) if a != b)
    return text, first


class BadBlocks(unittest.TestCase):
    def test_each_is_refused_with_file_line_and_reason(self):
        for old, new, reason, line in BAD:
            with self.subTest(new=new):
                text, first = variant(old, new)
                with self.assertRaises(DeclError) as ctx:
                    parse(text)
                self.assertIn(f"demo.decl:{line or first}: ", str(ctx.exception))
                self.assertIn(reason, str(ctx.exception))

    def test_unclosed_block(self):
        with self.assertRaises(DeclError) as ctx:
            parse(GOOD.replace("\nend\n", "\n"))
        self.assertIn("demo.decl:2: options demo has no 'end'", str(ctx.exception))

    def test_twice_in_the_library(self):
        with tempfile.TemporaryDirectory() as d:
            for name in ("a", "b"):
                (Path(d) / f"{name}.decl").write_text(textwrap.dedent(GOOD))
            with self.assertRaises(DeclError) as ctx:
                vekgen.load([Path(d) / "a.decl", Path(d) / "b.decl"])
            self.assertIn("b.decl:2: options demo is declared twice", str(ctx.exception))


if __name__ == "__main__":
    unittest.main()
