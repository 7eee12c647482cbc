#!/usr/bin/env python3
"""Malformed declarations: each one is refused by tools/vekgen.py with exit status 1 and a single message
"vekgen: FILE:LINE: text" naming the line at fault, never a traceback, never generated code that does not
compile. One row per fault: the declaration files, the file and line expected, a fragment of the message."""
import contextlib
import io
import re
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))

import vekgen  # noqa: E402

# A valid routine (lines 1-5) that most rows extend from line 6 on.
HEAD = """routine t09aaf ifail
  purpose A routine for the error tests.
  in N int
  in X real[N]
  in C char
"""
MSG = '  message m 1 99999 "** On entry, N = {N}."\n'  # line 6 after HEAD
STATE = """routine t09baf ifail
  inout W real[4]
  inout IND int
"""
ILLEGAL = """routine t09caf
  in N int
  in T real
  illegal "** On entry to {ROUTINE}, parameter number {NUMBER}" "** had the illegal value of {VALUE}"
"""
TEXT80 = "x" * 80

# (name, {file: text} or the text of t09.decl, (file, line), fragment of the message)
CASES = [
    # ---- lines and blocks
    ("unknown keyword", HEAD + "  frobnicate N\n", 6, "unknown keyword 'frobnicate'"),
    ("unknown type", HEAD + "  in Y double\n", 6, "unknown type 'double'"),
    ("unknown result type", "routine t09aaf ifail returns quad\n", 1, "unknown result type 'quad'"),
    ("char result of a routine", "routine t09aaf returns char\n", 1, "only internal routines may return char"),
    ("routine option", "routine t09aaf fast\n", 1, "unexpected 'fast'"),
    ("two-digit without ifail", "routine t09aaf two-digit\n", 1, "unexpected 'two-digit'"),
    ("ungated without ifail", "routine t09aaf ungated\n  in N int\n", 1, "'ungated' concerns the licence gate"),
    ("routine name", "routine t09-aaf\n", 1, "needs a name"),
    ("argument outside a routine", "in N int\n", 1, "'in' belongs to a routine"),
    ("argument name", HEAD + "  in 2N int\n", 6, "argument name '2N' is not a Fortran name"),
    ("duplicate argument", HEAD + "  in N real\n", 6, "argument N declared twice"),
    ("duplicate callback", HEAD + "  callback N adapter nh\n", 6, "argument N declared twice"),
    ("argument named as a keyword", HEAD + "  in FOR int\n", 6, "argument FOR of t09aaf is a C++ keyword"),
    ("argument clashing with a hidden length", HEAD + "  in C_LEN int\n", 6,
     "gives the name 'c_len', taken by argument C"),
    ("argument clashing with IFAIL", HEAD + "  in IFAIL int\n", 6, "'ifail', taken by the IFAIL layers"),
    ("argument clashing with the result", "routine t09aaf ifail returns real\n  in VALUE real\n", 2,
     "'value', taken by the entry of an IFAIL function"),
    ("argument clashing with the body's buffer", HEAD + "  in ERR int\n", 6, "'err', taken by the IFAIL layers"),
    ("argument clashing with an adapter", HEAD + "  callback G adapter gh\n  in G_ADAPTER int\n", 7,
     "'g_adapter', taken by argument G"),
    ("argument clashing with the trace", "routine t09aaf\n  in TRACE_REC int\n", 2,
     "'trace_rec', taken by the trace wrapper"),
    ("unquoted record", HEAD + '  message m 1 99999 "** On entry\n', 6, "No closing quotation"),
    ("param without callback", HEAD + "  param in X real\n", 6, "'param INTENT NAME TYPE' follows a callback"),
    ("callback syntax", HEAD + "  callback F returns\n", 6, "'callback NAME [returns TYPE] adapter SUFFIX'"),
    ("callback returning char", HEAD + "  callback F returns char adapter fh\n", 6,
     "a user function returns a number or nothing"),
    ("callback char parameter", HEAD + "  callback F adapter fh\n    param in S char\n", 7,
     "user functions take no character arguments"),
    ("callback parameter twice", HEAD + "  callback G adapter gh\n    param in Y real\n    param in Y int\n", 8,
     "parameter Y declared twice"),
    ("callback parameter named as a keyword", HEAD + "  callback G adapter gh\n    param in DO real\n", 7,
     "parameter DO of G is a C++ keyword"),
    ("adapter suffix", HEAD + "  callback G adapter g-h\n", 6, "adapter suffix 'g-h' is not an identifier"),
    ("array length over an unknown name", "routine t09aaf\n  in X real[Q]\n", 2,
     "'Q' in a length is not a scalar argument"),
    ("array length over a real", "routine t09aaf\n  in T real\n  in X real[T]\n", 3,
     "is not an integer expression"),
    ("array length syntax", "routine t09aaf\n  in N int\n  in X real[N+]\n", 3, "length 'N+': ends too early"),
    ("choice on a number", "routine t09aaf\n  in N int\n  in X real[N ? 1 : 2]\n", 3,
     "'?' takes conditions (relations), not a number"),
    ("choice of a condition", "routine t09aaf\n  in N int\n  in X real[N > 1 ? N > 2 : 1]\n", 3,
     "'?' takes numbers, not a condition"),
    ("choice without its second branch", "routine t09aaf\n  in N int\n  in X real[N > 1 ? N]\n", 3,
     "expected ':' after the first choice of '?'"),
    ("choice of an integer or a real", "routine t09aaf\n  in N int\n  in T real\n  in X real[N > 1 ? N : T]\n", 4,
     "both choices of '?' are integers, or both are reals"),
    ("purpose outside a routine", "purpose Nothing.\n", 1, "'purpose' belongs to a routine"),
    ("published syntax", HEAD + "published dfoo\n", 6, "'published NAME TARGET'"),
    ("published to nothing", HEAD + "published dfoo t09zzfn\n", 6,
     "target t09zzfn is not a declared worker or internal routine"),
    ("routine declared twice", HEAD + HEAD, 6, "t09aaf_ is declared twice"),
    ("routine in two files", {"t09.decl": HEAD, "t10.decl": HEAD}, ("t10.decl", 1), "t09aaf_ is declared twice"),
    ("published name taken", HEAD + "published t09aaf t09aafn\n", 6, "t09aaf_ is declared twice"),
    ("guard without forwards", HEAD + "  guard dot N X\n", 6, "'guard NAME ...' follows 'forwards'"),
    ("guard of an unknown argument", HEAD + "  forwards vekob_foo\n  guard dot N Y\n", 7,
     "guard: 'Y' is not an argument of t09aaf"),
    ("guard region", HEAD + "  in INFO int\n  forwards vekob_foo\n  guard screen N disc(X,N)\n", 8,
     "guard: 'disc(X,N)' is not a region"),
    ("guard require syntax", HEAD + "  forwards vekob_foo\n  guard require N>=0\n", 7,
     "'guard require @NAME nan|info|none CONDITION...'"),
    ("forwarding routine with checks", HEAD + "  forwards vekob_foo\n" + MSG + "  check N >= 1 else m\n", 1,
     "checks belong to a routine with a hand-written body"),
    # ---- messages
    ("message syntax", HEAD + "  message m 1 99999\n", 6, "'message NAME IFAIL MSGNO \"record\" ...'"),
    ("message name", HEAD + '  message Big 1 99999 "x"\n', 6, "message name 'Big' is not a lower-case identifier"),
    ("message IFAIL not a number", HEAD + '  message m one 99999 "x"\n', 6, "IFAIL 'one' is not an integer"),
    ("message IFAIL zero", HEAD + '  message m 0 99999 "x"\n', 6, "IFAIL 0 is not a failure of its own"),
    ("message IFAIL reserved", HEAD + '  message m -999 99999 "x"\n', 6, "IFAIL -999 is not a failure of its own"),
    ("message IFAIL too wide", HEAD + '  message m 100000 99999 "x"\n', 6, "IFAIL 100000 is not a failure"),
    ("message number too wide", HEAD + '  message m 1 123456 "x"\n', 6, "message number 123456 lies outside"),
    ("duplicate message name", HEAD + MSG + '  message m 2 99998 "y"\n', 7, "message m declared twice in t09aaf"),
    ("duplicate message pair", HEAD + MSG + '  message n 1 99999 "y"\n', 7,
     "pair (1, 99999) declared twice in t09aaf"),
    ("message name taken", HEAD + '  message run 1 99999 "x"\n', 6, "message name run is taken"),
    ("messages without ifail", "routine t09aaf\n  in N int\n" + MSG.replace("{N}", "1"), 3,
     "messages need an ifail routine"),
    ("value neither argument nor typed", HEAD + '  message m 1 99999 "K = {K}."\n', 6,
     "value {K} is not a scalar argument of T09AAF: give its type"),
    ("value of an array", HEAD + '  message m 1 99999 "X = {X}."\n', 6, "value {X} is not a scalar argument"),
    ("value type", HEAD + '  message m 1 99999 "{K:float}"\n', 6, "'{K:float}' is not {NAME} or {NAME:TYPE}"),
    ("value given two types", HEAD + '  message m 1 99999 "{K:int} {K:real}"\n', 6, "value {K} given two types"),
    ("text value of no length", HEAD + '  message m 1 99999 "{S:char0}"\n', 6, "{S:char0} shows 1 to 80"),
    ("text value longer than a line", HEAD + '  message m 1 99999 "{S:char81}"\n', 6, "{S:char81} shows 1 to 80"),
    ("len of a number", HEAD + '  message m 1 99999 "{len(N)}"\n', 6, "len() of a character argument"),
    ("nine integers", HEAD + '  message m 1 99999 "' + "".join(f"{{I{k}:int}}" for k in range(9)) + '"\n', 6,
     "needs 204 characters of the 200-character error buffer"),
    ("eight reals", HEAD + '  message m 1 99999 "' + "".join(f"{{R{k}:real}}" for k in range(8)) + '"\n', 6,
     "needs 215 characters of the 200-character error buffer"),
    ("three texts of 80", HEAD + '  message m 1 99999 "{S1:char80}" "{S2:char80}" "{S3:char80}"\n', 6,
     "needs 258 characters of the 200-character error buffer"),
    ("ten values", HEAD + '  message m 1 99999 "' + "".join(f"{{L{k}:letter}}" for k in range(10)) + '"\n', 6,
     "has 10 values; at most 9 fit"),
    ("record too long", HEAD + f'  message m 1 99999 "{TEXT80}"\n', 6, "has 80 characters without its values"),
    ("lone brace", HEAD + '  message m 1 99999 "N = {N"\n', 6, "has a brace that encloses no value"),
    # ---- checks
    ("check syntax", HEAD + MSG + "  check N >= 1\n", 7, "'check CONDITION else MESSAGE'"),
    ("check naming an unknown message", HEAD + MSG + "  check N >= 1 else nothing\n", 7,
     "check fails with 'nothing', which is no message of t09aaf"),
    ("check over an array", HEAD + MSG + "  check X >= 1 else m\n", 7, "'X' in a check is not a scalar argument"),
    ("check over an unknown argument", HEAD + MSG + "  check Q >= 1 else m\n", 7,
     "'Q' in a check is not a scalar argument"),
    ("check comparing a text", HEAD + MSG + "  check C >= 1 else m\n", 7, "C (char) is compared only as 'NAME in"),
    ("check with a lower-case name", HEAD + MSG + "  check n >= 1 else m\n", 7, "unknown name 'n'"),
    ("check unreadable", HEAD + MSG + "  check N = 1 else m\n", 7, "cannot read the check from '= 1'"),
    ("check ending early", HEAD + MSG + "  check N >= else m\n", 7, "check 'N >=': ends too early"),
    ("check parenthesis", HEAD + MSG + "  check (N >= 1 else m\n", 7, "expected ')' to close '('"),
    ("check trailing token", HEAD + MSG + "  check N >= 1) else m\n", 7, "unexpected ')'"),
    ("check is a number", HEAD + MSG + "  check N else m\n", 7, "is a number, not a condition"),
    ("check relations chained", HEAD + MSG + "  check 1 <= N <= 9 else m\n", 7, "relations do not chain"),
    ("check 'and' of numbers", HEAD + MSG + "  check N && N >= 1 else m\n", 7, "'&&' takes conditions"),
    ("check 'not' of a number", HEAD + MSG + "  check !N else m\n", 7, "'!' takes conditions"),
    ("check sum of a condition", HEAD + MSG + "  check (N >= 1) + 1 >= 1 else m\n", 7, "'+' takes numbers"),
    ("check max arity", HEAD + MSG + "  check N >= max(1) else m\n", 7, "max() takes 2 arguments, not 1"),
    ("check abs arity", HEAD + MSG + "  check abs(N, 1) >= 1 else m\n", 7, "abs() takes 1 argument, not 2"),
    ("check function not called", HEAD + MSG + "  check abs >= 1 else m\n", 7, "'abs' is a function"),
    ("check len of a number", HEAD + MSG + "  check len(N) >= 1 else m\n", 7, "len() takes a character argument"),
    ("check len syntax", HEAD + MSG + "  check len(C >= 1 else m\n", 7, "'len(NAME)' of a character argument"),
    ("check integer division by an argument", HEAD + MSG + "  check 10 / N >= 1 else m\n", 7,
     "an integer is divided only by a non-zero number, not by 'N'"),
    ("check integer division by zero", HEAD + MSG + "  check N / 0 >= 1 else m\n", 7,
     "divided only by a non-zero number, not by '0'"),
    ("check overflowing 128 bits", HEAD + MSG + "  in M int\n  check N * M * N >= 1 else m\n", 8,
     "'N * M * N' may overflow the 128-bit integers"),
    ("check literal beyond 64 bits", HEAD + MSG + "  check N >= 9223372036854775808 else m\n", 7,
     "does not fit 64 bits"),
    ("check letter outside 'in'", HEAD + MSG + "  check C == 'A' else m\n", 7, "C (char) is compared only"),
    ("check braces outside 'in'", HEAD + MSG + "  check {1} else m\n", 7, "braces belong to 'NAME in {...}'"),
    ("'in' without a list", HEAD + MSG + "  check N in else m\n", 7, "'NAME in {a, b, ...}'"),
    ("'in' of nothing", HEAD + MSG + "  check N in {} else m\n", 7, "'N in {}' lists nothing"),
    ("'in' unclosed", HEAD + MSG + "  check N in {1, 2 else m\n", 7, "'NAME in {a, b, ...}'"),
    ("'in' of letters for an integer", HEAD + MSG + "  check N in {'A'} else m\n", 7,
     "N is tested against integers"),
    ("'in' of integers for a text", HEAD + MSG + "  check C in {1} else m\n", 7,
     "C is tested against upper-case letters"),
    ("'in' of lower-case letters", HEAD + MSG + "  check C in {'a'} else m\n", 7,
     "C is tested against upper-case letters"),
    ("'in' for a real", "routine t09aaf ifail\n  in T real\n  message m 1 99999 \"x\"\n  check T in {1} else m\n", 4,
     "'in' tests an integer or character argument"),
    ("check message shows a computed value", HEAD + '  message m 1 99999 "J = {J:int}"\n  check N >= 1 else m\n', 7,
     "message m shows {J}, which a check cannot supply"),
    ("checks without ifail or report", "routine t09aaf\n  in N int\n  check N >= 1 else m\n", 3,
     "checks need an ifail routine or an 'illegal' report"),
    # ---- illegal-argument reports
    ("illegal record with an unknown name", ILLEGAL.replace("{VALUE}", "{WHAT}"), 4,
     "shows {ROUTINE}, {NUMBER} or {VALUE}, not {WHAT}"),
    ("illegal report in an ifail routine", HEAD + '  illegal "** {ROUTINE}"\n', 6, "one 'illegal' report"),
    ("two illegal reports", ILLEGAL + '  illegal "** {ROUTINE}"\n', 5, "one 'illegal' report"),
    ("else illegal of a real", ILLEGAL + "  check T >= 0.0 else illegal T\n", 5,
     "'else illegal ARGUMENT' names an integer scalar argument"),
    ("else illegal of nothing", ILLEGAL + "  check N >= 0 else illegal\n", 5,
     "'else illegal ARGUMENT' names an integer scalar argument"),
    ("else illegal without records", "routine t09aaf ifail\n  in N int\n  check N >= 0 else illegal N\n", 3,
     "'else illegal' needs the routine's 'illegal' records"),
    # ---- groups
    ("unknown group", HEAD + "  use nogroup\n", 6, "no group named 'nogroup'"),
    ("group using itself", "group g\n  message m 1 99999 \"x\"\n  use g\nend\n" + HEAD.replace("t09aaf", "t09zzf")
     + "  use g\n", 3, "group 'g' uses itself"),
    ("group without end", "group g\n  message m 1 99999 \"x\"\n", 1, "group g has no 'end'"),
    ("routine inside a group", "group g\n  message m 1 99999 \"x\"\n" + HEAD, 3, "group g has no 'end'"),
    ("empty group", "group g\nend\n", 2, "group g declares nothing"),
    ("group name", "group G1\n", 1, "'group NAME' with a lower-case name"),
    ("group declared twice", {"t09.decl": "group g\n  message m 1 99999 \"x\"\nend\n",
                              "t10.decl": "group g\n  message n 2 99998 \"y\"\nend\n"}, ("t10.decl", 1),
     "group g declared twice"),
    ("group value the user lacks", "group g\n  message m 1 99999 \"K = {K}\"\nend\n"
     "routine t09aaf ifail\n  in N int\n  use g\n", 2, "value {K} is not a scalar argument of T09AAF"),
    ("end without a block", "end\n", 1, "'end' without a group or state"),
    # ---- reverse communication
    ("flag of a real", STATE + "  inout T real\n  flag T\n", 5, "flag T is not an inout integer scalar"),
    ("flag of an input", "routine t09baf ifail\n  in IND int\n  flag IND\n", 3, "is not an inout integer scalar"),
    ("two flags", STATE + "  inout J int\n  flag IND\n  flag J\n", 6, "t09baf has a flag already (IND)"),
    ("flag in a group", "group g\n  flag IND\nend\n", 2, "'flag' belongs to a routine"),
    ("state without end", STATE + "  state W\n    field a 1\n", 4, "state W has no 'end'"),
    ("state of a scalar", STATE + "  state IND\n", 4, "state IND is not an array argument of known length"),
    ("state of an array of unknown length", "routine t09baf ifail\n  inout W real[*]\n  state W\n", 3,
     "state W is not an array argument of known length"),
    ("state of an array of computed length", "routine t09baf ifail\n  in N int\n  inout W real[N]\n  state W\n",
     4, "state W[N]: declare the array with a literal length"),
    ("state declared twice", STATE + "  state W\n    field a 1\n  end\n  state W\n", 7, "state W declared twice"),
    ("state without fields", STATE + "  state W\n  end\n", 5, "state W declares no field"),
    ("state holding other lines", STATE + "  state W\n    in N int\n", 5, "a state block holds 'field' lines"),
    ("field beyond the array", STATE + "  state W\n    field a 5\n  end\n", 5, "field a (5:5) lies outside W[4]"),
    ("field range beyond the array", STATE + "  state W\n    field a 3:6\n  end\n", 5, "field a (3:6) lies outside"),
    ("field range reversed", STATE + "  state W\n    field a 3:2\n  end\n", 5, "field elements 3:2 are not a range"),
    ("field element zero", STATE + "  state W\n    field a 0\n  end\n", 5, "are not a range from 1 up"),
    ("field declared twice", STATE + "  state W\n    field a 1\n    field a 2\n  end\n", 6, "field a declared twice"),
    ("fields overlapping", STATE + "  state W\n    field a 1:2\n    field b 2\n  end\n", 6,
     "field b (2:2) overlaps field a (1:2)"),
    ("field outside a state", HEAD + "  field a 1\n", 6, "'field' outside a state block"),
    ("message name taken by a state", STATE + "  state W\n    field a 1\n  end\n  message w_state 1 99999 \"x\"\n",
     7, "message name w_state is taken"),
]


def run(files: dict[str, str]) -> tuple[int, str, Path]:
    with tempfile.TemporaryDirectory() as tmp:
        folder = Path(tmp)
        for name, text in files.items():
            (folder / name).write_text(text)
        err = io.StringIO()
        with contextlib.redirect_stderr(err):
            rc = vekgen.main(["--out", str(folder / "gen"), *(str(folder / n) for n in sorted(files))])
        return rc, err.getvalue().replace(str(folder) + "/", ""), folder


class MalformedDeclarations(unittest.TestCase):
    def test_the_base_declarations_are_valid(self):
        """The rows fail because of what they add, not because of what they start from."""
        for text in (HEAD, HEAD + MSG + "  check N >= 1 else m\n", STATE + "  state W\n    field a 1\n  end\n",
                     ILLEGAL + "  check N >= 0 else illegal N\n"):
            with self.subTest(text=text):
                rc, err, _ = run({"t09.decl": text})
                self.assertEqual((rc, err), (0, ""))

    def test_each_fault_is_reported_at_its_line(self):
        for name, files, where, fragment in CASES:
            with self.subTest(case=name):
                files = files if isinstance(files, dict) else {"t09.decl": files}
                file, line = where if isinstance(where, tuple) else ("t09.decl", where)
                rc, err, _ = run(files)
                self.assertEqual(rc, 1, f"accepted: {files}")
                self.assertRegex(err, rf"^vekgen: {re.escape(file)}:{line}: [^\n]+\n$")
                self.assertIn(fragment, err)

    def test_the_rows_are_distinct(self):
        self.assertEqual(len({c[0] for c in CASES}), len(CASES))


if __name__ == "__main__":
    unittest.main()
