"""Forwarding workers with a guard (the 'guard' line of a routine that forwards to a dependency).

  guard screen CODE IN... -> OUT...   non-finite screen of an iterating routine: the worker scans the input
                                      regions IN; on a NaN or infinity it sets them to the identity, forwards
                                      (the dependency makes all its argument checks and runs on a trivial
                                      problem), then fills the regions OUT with NaN and sets INFO = CODE
                                      (at least 1). Regions: full(A,M,N,LDA) tri(A,UPLO,N,LDA)
                                      packed(AP,UPLO,N) band(AB,UPLO,N,KD,LDAB) hess(H,N,LDH) vec(D,LEN,FILL).
  guard NAME ARG...                   vek::linalg::guard::NAME(forward, ARG...) decides: forward, or handle
                                      the case itself.
  guard require @NAME RESULT COND...  the published checks the dependency does not make, in argument order;
                                      COND is an expression that must hold, in which ARG~LETTERS says that
                                      ARG is one of the option letters; the first failing one is reported
                                      with the position of its first argument, and RESULT is returned: nan,
                                      info (INFO = -position) or none.
Arguments of a named guard: a scalar argument by value, an array by its address, &INFO a scalar's address
(the forwarding call sees what the guard writes there), @zgemv the published name (for the argument-error report), =NTC a string.
Expressions are C-like over the scalar arguments, with min() and max(), and the pivot predicates of guards.h
(pivots_ok(IPIV,N), blocks_ok(IBLOCK,M,N), same(FACT,'F') ...); a condition is reported with the position of the
first argument it names.
"""
from __future__ import annotations

import re

from .model import Routine

NS = "vek::linalg::guard::"
QUERY_ARGS = ("LWORK", "LRWORK", "LIWORK")
# Predicates of 'guard require' (guards.h): an option letter, the pivots of a factorisation, the blocks of a
# split tridiagonal matrix, the scale factors of an equilibrated one.
PREDICATES = ("letter_ok", "same", "pivots_ok", "tridiagonal_pivots_ok", "symmetric_pivots_ok", "blocks_ok",
              "splits_ok", "scales_ok", "row_scaled", "column_scaled")


def expression(r: Routine, text: str, wide: bool = False) -> str:
    """The C++ form of `text`; `wide`: integers in 128 bits, so that sums and products of hostile sizes
    compare without overflowing."""
    if text.startswith("&"):  # the argument's address, where the guard needs it rather than its value
        return expression(r, text[1:]).strip("()*")
    if text.startswith("@") or text.startswith("="):  # a published name, a set of option letters
        return '"' + text[1:].upper() + '"'
    def name(m):
        word = m.group(0)
        if word == "nullptr" or word.startswith('"'):
            return word
        if word in ("min", "max"):
            return f"std::{word}<{'__int128' if wide else 'int64_t'}>"
        if word in PREDICATES:
            return NS + word
        a = r.arg(word)
        if a is None:
            raise ValueError(f"guard: '{word}' is not an argument of {r.name}")
        if wide and a.is_scalar and a.base == "int":
            return f"static_cast<__int128>(*{a.param})"
        return a.param if not a.is_scalar else f"(*{a.param})"
    return re.sub(r"\"[^\"]*\"|(?<!')\b[A-Za-z_]\w*\b(?!')", name, text)


def region(r: Routine, text: str) -> str:
    m = re.fullmatch(r"(full|tri|packed|band|hess|vec)\((.*)\)", text)
    if not m:
        raise ValueError(f"guard: '{text}' is not a region full() tri() packed() band() hess() vec()")
    return f"{NS}{m.group(1)}({expression(r, m.group(2))})"


def condition(r: Routine, text: str) -> tuple[int, str]:
    """The argument position a condition reports (its first argument) and its C++ form."""
    first = re.search(r"\b[A-Z]\w*", text)
    if not first or not r.arg(first.group(0)):
        raise ValueError(f"guard: condition '{text}' names no argument")
    position = 1 + [a.name for a in r.args].index(first.group(0))
    text = re.sub(r"\b([A-Z]\w*)~(\w+)", r'letter_ok(\1,"\2")', text)
    return position, f"({expression(r, text, wide=True)})"


def emit_require(r: Routine, rest: list[str]) -> list[str]:
    if len(rest) < 3 or not rest[0].startswith("@") or rest[1] not in ("nan", "info", "none"):
        raise ValueError("'guard require @NAME nan|info|none CONDITION...'")
    published, result, conditions = rest[0], rest[1], rest[2:]
    if result == "info" and not r.arg("INFO"):
        raise ValueError("guard require ... info: the routine has no INFO")
    chain = " : ".join(f"!{c} ? {p}" for p, c in (condition(r, t) for t in conditions))
    failed = {"nan": f"return {NS}nan();", "info": "*info = -bad;\n  return;", "none": "return;"}[result]
    return [f"  const int64_t bad = {chain} : 0;", "  if (bad == 0) return forward();",
            f"  {NS}report({expression(r, published)}, bad);", f"  {failed}"]


def empty_text_check(r: Routine, published: str) -> list[str]:
    """An option text of length 0 holds no letter: reported as an invalid letter is (by position, the first
    such argument), with INFO = -position or a NaN result, and never passed on (the dependency would read
    the letter anyway)."""
    chars = [(1 + r.args.index(a), a.param) for a in r.char_args]
    if not chars:
        return []
    if r.arg("INFO"):
        failed = f"*{r.arg('INFO').param} = -empty;\n    return;"
    elif r.returns == "real":
        failed = f"return {NS}nan();"
    elif r.returns is None:
        failed = "return;"
    else:
        raise ValueError(f"{r.name}: no result for an empty option text")
    chain = " : ".join(f"{param}_len < 1 ? {p}" for p, param in chars)
    return [f"  if (const int64_t empty = {chain} : 0; empty != 0) [[unlikely]] {{",
            f'    {NS}report("{published.upper()}", empty);', f"    {failed}", "  }"]


def emit_guarded_worker(r: Routine, head: str, call: str) -> list[str]:
    """The worker `head` whose forwarding call passes `call` to the dependency, behind the routine's guard; the
    first line opens the body."""
    head = f"{head} {{"
    forward = f"  const auto forward = [&] {{ return {r.forwards}_({call}); }};"
    kind, rest = r.guard[0], r.guard[1:]
    if kind == "require":
        return [head, forward] + emit_require(r, rest) + ["}"]
    if kind != "screen":
        args = ", ".join(expression(r, a) for a in rest)
        return [head, forward, f"  return {NS}{kind}(forward{', ' + args if args else ''});", "}"]
    if not rest or not r.arg("INFO"):
        raise ValueError("'guard screen CODE REGION... -> REGION...' in a routine with INFO")
    code, regions = rest[0], rest[1:]
    arrow = regions.index("->") if "->" in regions else len(regions)
    inputs = [region(r, t) for t in regions[:arrow]]
    outputs = [region(r, t) for t in regions[arrow + 1:]]
    query = " || ".join(f"*{r.arg(n).param} == -1" for n in QUERY_ARGS if r.arg(n)) or "false"
    return [head, forward,
            f"  return {NS}screen(forward, info, {expression(r, code)}, {query},",
            f"                   {{{', '.join(inputs)}}},",
            f"                   {{{', '.join(outputs)}}});", "}"]
