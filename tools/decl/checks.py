"""Argument checks: a declared condition over the routine's scalar arguments, read as C++.

The condition is parsed with C's precedence and every part is typed (integer, real or condition), so that
what the generator accepts always compiles and means what it says:

- integers are compared as 128-bit values; the largest magnitude each integer part can reach is tracked
  (an argument up to 2**63) and a condition that could overflow 128 bits is rejected;
- an integer is divided only by a non-zero number written in the condition (no division by zero);
- relations take numbers, `&&`, `||` and `!` take conditions, and relations do not chain;
- `NAME in {a, b}` tests membership: for a character argument its first letter, upper-cased, against
  letters; `len(NAME)` is a character argument's length; `max`, `min` (two arguments), `abs` (one) and
  `eps` (the machine precision) are known;
- `CONDITION ? A : B` chooses between two numbers (the lowest precedence, as in C).

A condition that is not true (NaN compares false) fails.

An array's length is the same language read as an integer: its arithmetic saturates (vek::frame::Extent)
instead of being bounded, so that any length over 64-bit arguments evaluates without overflow."""
from __future__ import annotations

import re
from dataclasses import dataclass

from .model import DeclError, Routine

TOKEN_RE = re.compile(r"\s*(?:(?P<num>\d+\.?\d*(?:[eE][-+]?\d+)?|\.\d+(?:[eE][-+]?\d+)?)|(?P<id>[A-Za-z_][A-Za-z0-9_]*)"
                      r"|(?P<chr>'[^']')|(?P<op>>=|<=|==|!=|&&|\|\||[<>!+\-*/(),{}?:]))")
FUNCTIONS = {"max": ("vek::frame::check_max", 2), "min": ("vek::frame::check_min", 2),
             "abs": ("vek::frame::check_abs", 1)}
RELATIONS = ("<", "<=", ">", ">=", "==", "!=")
WIDE_LIMIT = 2**127 - 1  # the largest __int128
ARG_BOUND = 2**63        # the largest magnitude of a 64-bit argument


@dataclass
class Term:
    code: str       # C++ over the worker's parameters
    text: str       # as declared, for messages
    kind: str       # "int", "real" or "cond"
    bound: int = 0  # for "int": the largest magnitude it can take


def tokens(expr: str, where: str) -> list[tuple[str, str]]:
    out, pos = [], 0
    expr = expr.rstrip()
    while pos < len(expr):
        m = TOKEN_RE.match(expr, pos)
        if not m or m.end() == pos:
            raise DeclError(f"{where}: cannot read the check from '{expr[pos:].strip()}'")
        kind = m.lastgroup
        out.append((kind, m.group(kind)))
        pos = m.end()
    return out


class CheckParser:
    """Recursive descent over the tokens: or > and > relation > sum > product > unary > primary."""

    def __init__(self, expr: str, r: Routine, where: str, what: str = "check"):
        self.expr, self.r, self.where, self.what = expr, r, where, what
        self.saturating = what == "length"  # integers as vek::frame::Extent, which cannot overflow
        self.toks = tokens(expr, where)
        self.pos = 0

    # -- helpers -------------------------------------------------------------------------------------
    def fail(self, text: str):
        raise DeclError(f"{self.where}: {self.what} '{self.expr}': {text}")

    def peek(self) -> tuple[str, str] | None:
        return self.toks[self.pos] if self.pos < len(self.toks) else None

    def take(self) -> tuple[str, str]:
        tok = self.peek()
        if tok is None:
            self.fail("ends too early")
        self.pos += 1
        return tok

    def expect(self, op: str, what: str):
        tok = self.peek()
        if tok != ("op", op):
            self.fail(f"expected '{op}' {what}, found {repr(tok[1]) if tok else 'the end'}")
        self.pos += 1

    def at_op(self, *ops: str) -> str | None:
        tok = self.peek()
        return tok[1] if tok is not None and tok[0] == "op" and tok[1] in ops else None

    def need(self, t: Term, kind: str, what: str) -> Term:
        if kind == "number" and t.kind == "cond":
            self.fail(f"{what} takes numbers, not a condition")
        if kind == "cond" and t.kind != "cond":
            self.fail(f"{what} takes conditions (relations), not a number")
        return t

    def bounded(self, t: Term) -> Term:
        if t.kind == "int" and t.bound > WIDE_LIMIT and not self.saturating:
            self.fail(f"'{t.text}' may overflow the 128-bit integers of a check")
        return t

    def scalar(self, name: str):
        a = self.r.arg(name)
        if a is None or not a.is_scalar:
            raise DeclError(f"{self.where}: '{name}' in a {self.what} is not a scalar argument of "
                            f"{self.r.name.upper()}")
        return a

    # -- grammar -------------------------------------------------------------------------------------
    def condition(self) -> str:
        t = self.choice()
        if self.peek() is not None:
            self.fail(f"unexpected {repr(self.peek()[1])}")
        if t.kind != "cond":
            self.fail("is a number, not a condition: write a relation such as 'N >= 1'")
        return t.code

    def choice(self) -> Term:
        """CONDITION ? A : B, right-associative; both branches numbers of one kind."""
        test = self.logical()
        if not self.at_op("?"):
            return test
        self.take()
        self.need(test, "cond", "'?'")
        yes = self.need(self.choice(), "number", "'?'")
        self.expect(":", "after the first choice of '?'")
        no = self.need(self.choice(), "number", "':'")
        if yes.kind != no.kind:
            self.fail("both choices of '?' are integers, or both are reals")
        return Term(f"({test.code} ? {yes.code} : {no.code})", f"{test.text} ? {yes.text} : {no.text}", yes.kind,
                    max(yes.bound, no.bound))

    def logical(self) -> Term:
        left = self.conjunction()
        while self.at_op("||"):
            self.take()
            right = self.need(self.conjunction(), "cond", "'||'")
            self.need(left, "cond", "'||'")
            left = Term(f"{left.code} || {right.code}", f"{left.text} || {right.text}", "cond")
        return left

    def conjunction(self) -> Term:
        left = self.relation()
        while self.at_op("&&"):
            self.take()
            right = self.need(self.relation(), "cond", "'&&'")
            self.need(left, "cond", "'&&'")
            left = Term(f"{left.code} && {right.code}", f"{left.text} && {right.text}", "cond")
        return left

    def relation(self) -> Term:
        left = self.sum()
        op = self.at_op(*RELATIONS)
        if op is None:
            return left
        self.take()
        right = self.need(self.sum(), "number", f"'{op}'")
        self.need(left, "number", f"'{op}'")
        if self.at_op(*RELATIONS):
            self.fail("relations do not chain: write 'A <= B && B <= C'")
        return Term(f"{left.code} {op} {right.code}", f"{left.text} {op} {right.text}", "cond")

    def sum(self) -> Term:
        left = self.product()
        while (op := self.at_op("+", "-")) is not None:
            self.take()
            right = self.need(self.product(), "number", f"'{op}'")
            self.need(left, "number", f"'{op}'")
            left = self.arith(left, op, right, left.bound + right.bound)
        return left

    def product(self) -> Term:
        left = self.unary()
        while (op := self.at_op("*", "/")) is not None:
            self.take()
            right = self.need(self.unary(), "number", f"'{op}'")
            self.need(left, "number", f"'{op}'")
            if op == "/" and left.kind == right.kind == "int" and not (right.code.isdigit() and int(right.code)):
                self.fail(f"an integer is divided only by a non-zero number, not by '{right.text}'")
            left = self.arith(left, op, right, left.bound * right.bound if op == "*" else left.bound)
        return left

    def arith(self, left: Term, op: str, right: Term, bound: int) -> Term:
        kind = "int" if left.kind == right.kind == "int" else "real"
        return self.bounded(Term(f"{left.code} {op} {right.code}", f"{left.text} {op} {right.text}", kind,
                                 bound if kind == "int" else 0))

    def unary(self) -> Term:
        if self.at_op("-"):
            self.take()
            t = self.need(self.unary(), "number", "'-'")
            return Term(f"-{t.code}", f"-{t.text}", t.kind, t.bound)
        if self.at_op("!"):
            self.take()
            t = self.need(self.unary(), "cond", "'!'")
            return Term(f"!{t.code}", f"!{t.text}", "cond")
        return self.primary()

    def primary(self) -> Term:
        kind, text = self.take()
        if kind == "num":
            if re.fullmatch(r"\d+", text):
                if int(text) >= ARG_BOUND:
                    self.fail(f"the integer {text} does not fit 64 bits")
                return Term(text, text, "int", int(text))
            return Term(text, text, "real")
        if kind == "op" and text == "(":
            t = self.choice()
            self.expect(")", "to close '('")
            return Term(f"({t.code})", f"({t.text})", t.kind, t.bound)
        if kind == "op" and text in "{}":
            self.fail("braces belong to 'NAME in {...}'")
        if kind == "chr":
            self.fail("letters belong to 'NAME in {...}'")
        if kind != "id":
            self.fail(f"expected a value, found '{text}'")
        if text == "eps":
            return Term("vek::constants::eps()", "eps", "real")
        if text == "len":
            return self.length()
        if text in FUNCTIONS:
            return self.function(text)
        if not text[0].isupper():
            self.fail(f"unknown name '{text}'")
        if self.peek() == ("id", "in"):
            self.take()
            return self.membership(text)
        return self.operand(text)

    def operand(self, name: str) -> Term:
        a = self.scalar(name)
        if a.base in ("int", "logical"):
            if self.saturating:
                return Term(f"vek::frame::Extent(*{a.param})", name, "int", ARG_BOUND)
            return Term(f"vek::frame::wide(*{a.param})", name, "int", ARG_BOUND)
        if a.base in ("real", "single"):
            return Term(f"(*{a.param})", name, "real")
        raise DeclError(f"{self.where}: {name} ({a.base}) is compared only as 'NAME in {{...}}'")

    def length(self) -> Term:
        if self.peek() != ("op", "(") or self.pos + 2 >= len(self.toks) or self.toks[self.pos + 2] != ("op", ")"):
            raise DeclError(f"{self.where}: 'len(NAME)' of a character argument")
        a = self.r.arg(self.toks[self.pos + 1][1])
        if a is None or a.base != "char":
            raise DeclError(f"{self.where}: len() takes a character argument")
        self.pos += 3
        if self.saturating:
            return Term(f"vek::frame::Extent({a.param}_len)", f"len({a.name})", "int", ARG_BOUND)
        return Term(f"vek::frame::wide({a.param}_len)", f"len({a.name})", "int", ARG_BOUND)

    def function(self, name: str) -> Term:
        cpp, arity = FUNCTIONS[name]
        if self.peek() != ("op", "("):
            raise DeclError(f"{self.where}: '{name}' is a function")
        self.take()
        args = [self.need(self.choice(), "number", f"{name}()")]
        while self.at_op(","):
            self.take()
            args.append(self.need(self.choice(), "number", f"{name}()"))
        self.expect(")", f"to close {name}(")
        if len(args) != arity:
            self.fail(f"{name}() takes {arity} argument{'s' if arity > 1 else ''}, not {len(args)}")
        kind = "int" if all(a.kind == "int" for a in args) else "real"
        return Term(f"{cpp}({', '.join(a.code for a in args)})", f"{name}({', '.join(a.text for a in args)})", kind,
                    max(a.bound for a in args))

    def membership(self, name: str) -> Term:
        if not self.at_op("{") or ("op", "}") not in self.toks[self.pos:]:
            raise DeclError(f"{self.where}: 'NAME in {{a, b, ...}}'")
        self.take()
        close = self.toks.index(("op", "}"), self.pos)
        items = self.toks[self.pos:close]
        self.pos = close + 1
        a = self.scalar(name)
        groups, current = [], []
        for tok in items + [("op", ",")]:
            if tok == ("op", ","):
                groups.append(current)
                current = []
            else:
                current.append(tok)
        if groups == [[]]:
            raise DeclError(f"{self.where}: '{name} in {{}}' lists nothing")
        if a.base == "char":
            if any(len(g) != 1 or g[0][0] != "chr" or not (g[0][1][1].isupper() or g[0][1][1].isdigit())
                   for g in groups):
                raise DeclError(f"{self.where}: {name} is tested against upper-case letters such as 'A'")
            subject, values = f"vek::text::option_letter({a.param}, {a.param}_len)", [g[0][1] for g in groups]
        elif a.base in ("int", "logical"):
            values = []
            for g in groups:
                sign = "-" if g[:1] == [("op", "-")] else ""
                digits = g[1:] if sign else g
                if len(digits) != 1 or digits[0][0] != "num" or not digits[0][1].isdigit():
                    raise DeclError(f"{self.where}: {name} is tested against integers")
                values.append(sign + digits[0][1])
            subject = f"*{a.param}"
        else:
            raise DeclError(f"{self.where}: 'in' tests an integer or character argument")
        return Term("(" + " || ".join(f"{subject} == {v}" for v in values) + ")",
                    f"{name} in {{{', '.join(values)}}}", "cond")


def translate(expr: str, r: Routine, where: str) -> str:
    """The condition as C++ over the worker's parameters; a DeclError for anything it cannot vouch for."""
    return CheckParser(expr, r, where).condition()


def length_code(expr: str, r: Routine, where: str) -> str:
    """An array's length: an integer expression over the scalar arguments, as C++ giving a vek::frame::Extent
    (saturating: the length over any 64-bit arguments is computed without overflow)."""
    p = CheckParser(expr, r, where, "length")
    t = p.choice()
    if p.peek() is not None:
        p.fail(f"unexpected {repr(p.peek()[1])}")
    if t.kind != "int":
        p.fail("is not an integer expression over integer arguments")
    return f"vek::frame::Extent({t.code})"
