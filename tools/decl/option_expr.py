"""Expressions of the options blocks (start rules and listing conditions), read into C++.

Numbers, names (the block's parameters and inputs), `eps` (the machine precision), `+ - * /` (no division of
two integers), comparisons, `&& || !`, `c ? a : b`, `max(a, b)`, `min(a, b)`, `pow(a, b)`, `unset(NAME)` (the
parameter holds the marker), `NAME in [a, b)` with any pair of brackets, and `NAME in {v, ...}`. Integers are
computed 128 bits wide, so that no 64-bit input can overflow a rule; the generated code saturates the result
to 64 bits when it stores it."""
from __future__ import annotations

import re

from .model import DeclError

TOKEN_RE = re.compile(r"\s*(?:(?P<num>(?:\d+\.\d*|\.\d+|\d+)(?:[eE][-+]?\d+)?)|(?P<id>[A-Za-z_][A-Za-z0-9_]*)"
                      r"|(?P<op>>=|<=|==|!=|&&|\|\||[<>!+\-*/(),{}\[\]?:]))")


class Expr:
    """A recursive-descent reader of a start rule or a listing condition. Each operand is (C++, type, wide):
    the type "int", "real" or "bool"; wide when the C++ is a 128-bit integer (integer arithmetic is done wide,
    so that no 64-bit input can overflow it). `names` maps each usable name to (C++ value, type)."""

    def __init__(self, text: str, names: dict, where: str):
        self.text, self.names, self.where = text, names, where
        self.toks, pos = [], 0
        text = text.rstrip()
        while pos < len(text):
            m = TOKEN_RE.match(text, pos)
            if not m or m.end() == pos:
                raise DeclError(f"{where}: cannot read '{text[pos:].strip()}' in '{self.text}'")
            self.toks.append((m.lastgroup, m.group(m.lastgroup)))
            pos = m.end()
        self.i = 0
        self.used: set[str] = set()

    def fail(self, what: str):
        raise DeclError(f"{self.where}: {what} in '{self.text}'")

    def peek(self, value: str | None = None) -> bool:
        return self.i < len(self.toks) and (value is None or self.toks[self.i][1] == value)

    def take(self, value: str):
        if not self.peek(value):
            self.fail(f"'{value}' expected")
        self.i += 1

    def parse(self):
        if not self.toks:
            self.fail("an expression is missing")
        out = self.conditional()
        if self.i != len(self.toks):
            self.fail(f"unexpected '{self.toks[self.i][1]}'")
        return out

    def conditional(self):
        cond = self.logical("||")
        if not self.peek("?"):
            return cond
        self.want(cond, "the condition of '?'")
        self.take("?")
        a = self.conditional()
        self.take(":")
        b = self.conditional()
        self.number(a, "'?'")
        self.number(b, "'?'")
        t = "real" if "real" in (a[1], b[1]) else "int"
        wide = t == "int" and (a[2] or b[2])
        return f"({cond[0]} ? {convert(a, t, wide)} : {convert(b, t, wide)})", t, wide

    def logical(self, op):
        inner = (lambda: self.logical("&&")) if op == "||" else self.negation
        left = inner()
        while self.peek(op):
            self.i += 1
            right = inner()
            self.want(left, f"'{op}'")
            self.want(right, f"'{op}'")
            left = (f"({left[0]} {op} {right[0]})", "bool", False)
        return left

    def negation(self):
        if self.peek("!"):
            self.i += 1
            inner = self.negation()
            self.want(inner, "'!'")
            return f"!{inner[0]}", "bool", False
        return self.comparison()

    def comparison(self):
        left = self.sum()
        if self.peek("in"):
            self.i += 1
            return self.membership(left)
        for op in ("<=", ">=", "==", "!=", "<", ">"):
            if self.peek(op):
                self.i += 1
                right = self.sum()
                self.number(left, op)
                self.number(right, op)
                return f"({left[0]} {op} {right[0]})", "bool", False
        return left

    def membership(self, subject):
        self.number(subject, "'in'")
        if self.peek("{"):
            self.i += 1
            values = [self.sum()]
            while self.peek(","):
                self.i += 1
                values.append(self.sum())
            self.take("}")
            for v in values:
                self.number(v, "'in {...}'")
            return "(" + " || ".join(f"{subject[0]} == {v[0]}" for v in values) + ")", "bool", False
        if not (self.peek("[") or self.peek("(")):
            self.fail("'in' takes [a, b], [a, b), (a, b], (a, b) or {v, ...}")
        low_op = ">=" if self.toks[self.i][1] == "[" else ">"
        self.i += 1
        low = self.sum()
        self.take(",")
        high = self.sum()
        if not (self.peek("]") or self.peek(")")):
            self.fail("an interval closes with ']' or ')'")
        high_op = "<=" if self.toks[self.i][1] == "]" else "<"
        self.i += 1
        self.number(low, "an interval")
        self.number(high, "an interval")
        return f"({subject[0]} {low_op} {low[0]} && {subject[0]} {high_op} {high[0]})", "bool", False

    def sum(self):
        left = self.product()
        while self.peek("+") or self.peek("-"):
            op = self.toks[self.i][1]
            self.i += 1
            left = self.arith(left, op, self.product())
        return left

    def product(self):
        left = self.unary()
        while self.peek("*") or self.peek("/"):
            op = self.toks[self.i][1]
            self.i += 1
            right = self.unary()
            if op == "/" and left[1] == right[1] == "int":
                self.fail("integer division is not allowed (write a real number)")
            left = self.arith(left, op, right)
        return left

    def arith(self, left, op, right):
        self.number(left, f"'{op}'")
        self.number(right, f"'{op}'")
        if "real" in (left[1], right[1]):
            return f"({left[0]} {op} {right[0]})", "real", False
        return f"({widen(left)} {op} {widen(right)})", "int", True

    def unary(self):
        if self.peek("-"):
            self.i += 1
            inner = self.unary()
            self.number(inner, "'-'")
            return f"(-{inner[0]})", inner[1], inner[2]
        return self.atom()

    def atom(self):
        if self.i >= len(self.toks):
            self.fail("the expression ends early")
        kind, text = self.toks[self.i]
        self.i += 1
        if kind == "num":
            return text, ("real" if re.search(r"[.eE]", text) else "int"), False
        if kind == "op" and text == "(":
            inner = self.conditional()
            self.take(")")
            return f"({inner[0]})", inner[1], inner[2]
        if kind != "id":
            self.fail(f"unexpected '{text}'")
        if text == "eps":
            return "vek::constants::eps()", "real", False
        if text in ("max", "min", "pow"):
            self.take("(")
            a = self.conditional()
            self.take(",")
            b = self.conditional()
            self.take(")")
            self.number(a, text)
            self.number(b, text)
            if text == "pow":
                return f"std::pow({convert(a, 'real')}, {convert(b, 'real')})", "real", False
            t = "real" if "real" in (a[1], b[1]) else "int"
            wide = t == "int" and (a[2] or b[2])
            return f"vek::frame::check_{text}({convert(a, t, wide)}, {convert(b, t, wide)})", t, wide
        if text == "unset":
            self.take("(")
            name = self.toks[self.i][1] if self.peek() and self.toks[self.i][0] == "id" else None
            if name is None:
                self.fail("unset() takes a parameter")
            self.i += 1
            self.take(")")
            value, t = self.name(name)
            if value.startswith("in."):
                self.fail(f"unset() takes a parameter, not the input {name}")
            marker = "vek::optim::kMarker" if t == "int" else "vek::optim::kRealMarker"
            return f"({value} == {marker})", "bool", False
        value, t = self.name(text)
        return value, t, False

    def name(self, text):
        if text not in self.names:
            self.fail(f"unknown name '{text}'")
        self.used.add(text)
        return self.names[text]

    def number(self, operand, what):
        if operand[1] == "bool":
            self.fail(f"{what} takes numbers, not a condition")

    def want(self, operand, what):
        if operand[1] != "bool":
            self.fail(f"{what} takes a condition")


def widen(operand) -> str:
    return operand[0] if operand[2] else f"vek::frame::Wide{{{operand[0]}}}"


def convert(operand, t: str, wide: bool = False) -> str:
    """The operand as a value of type t (a wide integer when `wide`)."""
    if t == "real" and operand[1] == "int":
        return f"static_cast<double>({operand[0]})"
    return widen(operand) if wide else operand[0]


def cpp_string(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def cpp_real(literal: str) -> str:
    """A real literal as C++ writes it (with a point or an exponent)."""
    text = repr(float(literal))
    return text if re.search(r"[.eE]", text) else text + ".0"
