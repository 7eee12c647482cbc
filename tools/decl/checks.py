"""Argument checks: a declared condition over the routine's scalar arguments, read as C++.

Integers are compared as 128-bit values, so that sums and products of two 64-bit arguments cannot overflow;
a condition that is not true (NaN compares false) fails. `NAME in {a, b}` tests membership: for a character
argument its first letter, upper-cased, against letters. `len(NAME)` is a character argument's length.
`max`, `min`, `abs` and `eps` (the machine precision) are known."""
from __future__ import annotations

import re

from .model import DeclError, Routine

TOKEN_RE = re.compile(r"\s*(?:(?P<num>\d+\.?\d*(?:[eE][-+]?\d+)?|\.\d+(?:[eE][-+]?\d+)?)|(?P<id>[A-Za-z_][A-Za-z0-9_]*)"
                      r"|(?P<chr>'[^']')|(?P<op>>=|<=|==|!=|&&|\|\||[<>!+\-*/(),{}]))")
FUNCTIONS = {"max": "vek::frame::check_max", "min": "vek::frame::check_min", "abs": "vek::frame::check_abs",
             "len": None}


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


def scalar(r: Routine, name: str, where: str):
    a = r.arg(name)
    if a is None or not a.is_scalar:
        raise DeclError(f"{where}: '{name}' in a check is not a scalar argument of {r.name.upper()}")
    return a


def operand(r: Routine, name: str, where: str) -> str:
    a = scalar(r, name, where)
    if a.base in ("int", "logical"):
        return f"vek::frame::wide(*{a.param})"
    if a.base in ("real", "single"):
        return f"(*{a.param})"
    raise DeclError(f"{where}: {name} ({a.base}) is compared only as 'NAME in {{...}}'")


def membership(r: Routine, name: str, items: list[tuple[str, str]], where: str) -> str:
    a = scalar(r, name, where)
    values = [t for k, t in items if k != "op" or t != ","]
    if not values:
        raise DeclError(f"{where}: '{name} in {{}}' lists nothing")
    if a.base == "char":
        if any(not (v.startswith("'") and v[1].isupper() or v[1].isdigit()) for v in values):
            raise DeclError(f"{where}: {name} is tested against upper-case letters such as 'A'")
        subject = f"vek::text::option_letter({a.param}, {a.param}_len)"
    elif a.base in ("int", "logical"):
        signs = [(k, t) for k, t in items if not (k == "op" and t == ",")]
        values, sign = [], ""
        for k, t in signs:
            if k == "op" and t == "-":
                sign = "-"
            elif k == "num" and t.isdigit():
                values.append(sign + t)
                sign = ""
            else:
                raise DeclError(f"{where}: {name} is tested against integers")
        subject = f"*{a.param}"
    else:
        raise DeclError(f"{where}: 'in' tests an integer or character argument")
    return "(" + " || ".join(f"{subject} == {v}" for v in values) + ")"


def translate(expr: str, r: Routine, where: str) -> str:
    toks = tokens(expr, where)
    out, i = [], 0
    while i < len(toks):
        kind, text = toks[i]
        if kind == "id" and i + 1 < len(toks) and toks[i + 1] == ("id", "in"):
            if i + 2 >= len(toks) or toks[i + 2] != ("op", "{") or ("op", "}") not in toks[i + 3:]:
                raise DeclError(f"{where}: 'NAME in {{a, b, ...}}'")
            close = toks.index(("op", "}"), i + 3)
            out.append(membership(r, text, toks[i + 3:close], where))
            i = close + 1
            continue
        if kind == "id" and text == "len":
            if toks[i + 1:i + 2] != [("op", "(")] or len(toks) < i + 4 or toks[i + 3] != ("op", ")"):
                raise DeclError(f"{where}: 'len(NAME)' of a character argument")
            a = r.arg(toks[i + 2][1])
            if a is None or a.base != "char":
                raise DeclError(f"{where}: len() takes a character argument")
            out.append(f"vek::frame::wide({a.param}_len)")
            i += 4
            continue
        if kind == "id" and text in FUNCTIONS:
            if toks[i + 1:i + 2] != [("op", "(")]:
                raise DeclError(f"{where}: '{text}' is a function")
            out.append(FUNCTIONS[text])
        elif kind == "id" and text == "eps":
            out.append("vek::constants::eps()")
        elif kind == "id" and text[0].isupper():
            out.append(operand(r, text, where))
        elif kind == "id":
            raise DeclError(f"{where}: unknown name '{text}' in a check")
        elif kind == "op" and text in "{}":
            raise DeclError(f"{where}: braces belong to 'NAME in {{...}}'")
        elif kind == "chr":
            raise DeclError(f"{where}: letters belong to 'NAME in {{...}}'")
        else:
            out.append(text)
        i += 1
    text = " ".join(out).replace("( ", "(").replace(" )", ")").replace(" ,", ",")
    return re.sub(r"(\w) \(", r"\1(", text)
