"""The hostile-input sweep's table: one descriptor per declared routine, made from its declaration.

For every `routine` (user routines and the linear-algebra names alike) it writes into one C++ source

- the argument table: name, intent, type, shape and, for an array, its length as a function of the call's
  integer scalars (the declared `[EXPR]`, evaluated in saturating 128-bit arithmetic, sweep::Len);
- a baseline: scalar values that pass every declared check (a small search over candidate values, the checks
  evaluated here as the generated worker evaluates them), or, for a routine without checks, values chosen by
  the argument's conventional name (LDA 4, LWORK 256, UPLO 'U' ...);
- the IFAIL values its messages declare, and for an INFO routine the argument count;
- a thunk calling the exported entry `xxxxxf_` with the addresses the runner prepared, and for each user
  function an implementation whose behaviour (plain, NaN, infinity ...) the runner chooses per call.

The runner (tests/sweep/) builds the hostile calls from these tables; nothing here knows about any routine
by name, so a routine joins the sweep by being declared, and an array joins the full sweep when its length is
declared.
"""
from __future__ import annotations

import math
import re

from .checks import tokens
from .model import Arg, Routine

BASE_CODE = {"int": "I", "logical": "L", "real": "R", "single": "S", "complex": "Z", "scomplex": "C",
             "char": "H"}
ENTRY_TYPES = {"int": "int64_t", "logical": "int64_t", "real": "double", "single": "float",
               "complex": "vek_complex", "scomplex": "vek_scomplex", "char": "char"}
# Arrays the library only passes on to the user's function: a few elements are always enough.
USER_WORKSPACE = ("IUSER", "RUSER")

INT_CANDIDATES = [3, 1, 2, 0, 4, 10, 100, 1000, -1, 5]
REAL_CANDIDATES = [1.0, 0.5, 2.0, 0.0, -1.0, 1e-8, 10.0, 3.0, 0.25]
TEXT_BASELINE = "SWEEP"
CHAR_RECORD = 8  # the hidden length of a character array's records in the baseline call (runner: cases.cpp)
# Baselines by conventional argument name, for routines without declared checks (the LAPACK names).
NAME_INTS = [(r"^LD", 4), (r"^L.*WORK$", 256), (r"^INC", 1), (r"^K[LUDAB]$", 1), (r"^ILO$", 1), (r"^IHI$", 3),
             (r"^IL$", 1), (r"^IU$", 2), (r"^ITYPE$", 1)]
NAME_REALS = [(r"^VL$", -10.0), (r"^VU$", 10.0), (r"^ABSTOL$", 0.0)]
NAME_LETTERS = [(r"^UPLO", "U"), (r"^SIDE$", "L"), (r"^NORM$", "1"), (r"^RANGE$", "A"), (r"^DIRECT$", "F"),
                (r"^STOREV$", "C"), (r"^HOWMNY$", "A"), (r"^VECT$", "Q"), (r"^TYPE$", "G"), (r"^PIVOT$", "V"),
                (r"^ORDER$", "B"), (r"^ID$", "I"), (r"^CMACH$", "E")]


def by_name(table, name, default):
    return next((v for pat, v in table if re.search(pat, name)), default)


class Text(str):
    """A character argument inside a check: `in {...}` compares its first letter, upper-cased; len() is its
    length."""

    def __hash__(self):
        return hash(self[:1].upper())

    def __eq__(self, other):
        return self[:1].upper() == str(other)[:1].upper()


class CInt(int):
    """An integer in a check: C's division, which truncates."""

    def _wrap(self, v):
        return CInt(v) if isinstance(v, int) else v

    def __add__(self, o): return self._wrap(int(self) + o)
    def __radd__(self, o): return self._wrap(o + int(self))
    def __sub__(self, o): return self._wrap(int(self) - o)
    def __rsub__(self, o): return self._wrap(o - int(self))
    def __mul__(self, o): return self._wrap(int(self) * o)
    def __rmul__(self, o): return self._wrap(o * int(self))
    def __neg__(self): return CInt(-int(self))

    def __truediv__(self, o):
        if isinstance(o, int):
            q = abs(int(self)) // abs(o)
            return CInt(q if (int(self) >= 0) == (o >= 0) else -q)
        return int(self) / o


def check_to_python(expr: str) -> str:
    out = []
    for kind, tok in tokens(expr, "sweep"):
        if kind == "op":
            out.append({"&&": " and ", "||": " or ", "!": " not ", "{": "{", "}": "}"}.get(tok, f" {tok} "))
        elif kind == "num":
            out.append(f"CInt({tok})" if re.fullmatch(r"\d+", tok) else tok)
        else:
            out.append(f" {tok} ")
    return "".join(out)


def check_holds(expr: str, values: dict) -> bool:
    env = dict(values, CInt=CInt, max=max, min=min, abs=abs, len=len, eps=2.0**-53)
    named = [n for n in re.findall(r"[A-Z][A-Z0-9_]*", expr) if n in values]
    if any(isinstance(values[n], float) and math.isnan(values[n]) for n in named):
        return False
    try:
        return bool(eval(check_to_python(expr), {"__builtins__": {}}, env))
    except (ZeroDivisionError, TypeError, NameError, SyntaxError):
        return False


def option_letters(r: Routine) -> dict[str, list[str]]:
    """The letters each option argument's checks accept."""
    letters = {}
    for c in r.checks:
        for name, body in re.findall(r"([A-Z][A-Z0-9_]*)\s+in\s+\{([^}]*)\}", c.expr):
            found = re.findall(r"'(.)'", body)
            if found:
                letters.setdefault(name, found)
    return letters


def candidates(a: Arg, letters: dict) -> list:
    if a.base in ("int", "logical"):
        first = by_name(NAME_INTS, a.name, None)
        return ([first] if first is not None else []) + INT_CANDIDATES
    if a.base in ("real", "single", "complex", "scomplex"):
        first = by_name(NAME_REALS, a.name, None)
        return ([first] if first is not None else []) + REAL_CANDIDATES
    if a.name in letters:
        return [Text(x) for x in letters[a.name]]
    return [Text(by_name(NAME_LETTERS, a.name, "N" if len(a.name) > 1 and is_option_name(a.name) else TEXT_BASELINE))]


def is_option_name(name: str) -> bool:
    return bool(re.match(r"^(TRANS|DIAG|JOB|COMP|FACT|EQUED|SORT|SENSE|BALANC|UPLO|SIDE|NORM|RANGE|DIRECT|STOREV|"
                         r"HOWMNY|VECT|TYPE|PIVOT|ORDER|ID|CMACH|MATRIX|SORDER|CONJ)", name))


def baseline(r: Routine) -> dict:
    """Scalar values passing every declared check: each failing check in turn changes one of the scalars it
    names to the first candidate that makes it and every earlier check hold."""
    letters = option_letters(r)
    scalars = [a for a in r.args if a.is_scalar]
    cands = {a.name: candidates(a, letters) for a in scalars}
    values = {n: (CInt(c[0]) if isinstance(c[0], int) else c[0]) for n, c in cands.items()}
    # A character array's records have the runner's baseline length, which len() in a check reads.
    values.update({a.name: Text("X" * CHAR_RECORD) for a in r.args if a.base == "char" and a.length is not None})
    for _ in range(4 * len(r.checks) + 1):
        failing = next((k for k, c in enumerate(r.checks) if not check_holds(c.expr, values)), None)
        if failing is None:
            break
        named = [n for n in re.findall(r"[A-Z][A-Z0-9_]*", r.checks[failing].expr) if n in values]
        fixed = False
        for n in named:
            keep = values[n]
            for cand in cands[n]:
                values[n] = CInt(cand) if isinstance(cand, int) else cand
                if all(check_holds(c.expr, values) for c in r.checks[:failing + 1]):
                    fixed = True
                    break
            if fixed:
                break
            values[n] = keep
        if not fixed:
            break
    return values


def length_code(expr: str, index: dict[str, int]) -> str | None:
    """The declared length as C++ over sweep::Len values s[k]; None if it names anything but integer scalars."""
    out, pos = [], 0
    for m in re.finditer(r"[A-Za-z_][A-Za-z0-9_]*|\d+", expr):
        out.append(expr[pos:m.start()])
        tok = m.group(0)
        if tok.isdigit():
            out.append(f"Len({tok})")
        elif tok in ("max", "min", "abs"):
            out.append(f"l{tok}")
        elif tok in index:
            out.append(f"s[{index[tok]}]")
        else:
            return None
        pos = m.end()
    return "".join(out) + expr[pos:]


def c_string(s: str) -> str:
    return '"' + s.replace("\\", "\\\\").replace('"', '\\"') + '"'


def c_real(v: float) -> str:
    return repr(float(v))


class SweepEmitter:
    def __init__(self):
        self.defs: list[str] = []
        self.entries: list[str] = []

    def routine(self, r: Routine, published: str):
        key = r.name
        scalar_index = {a.name: k for k, a in enumerate(r.args) if a.is_scalar and a.base in ("int", "logical")}
        base = baseline(r)
        args = []
        for k, a in enumerate(r.args):
            shape, len_fn, len_text = 0, "nullptr", ""
            if a.callback:
                shape = 3
            elif a.length is not None:
                len_text = a.length
                code = length_code(a.length, scalar_index) if a.length != "*" else None
                if a.name in USER_WORKSPACE:
                    shape = 4
                elif code is None:
                    shape = 2
                else:
                    shape = 1
                    len_fn = f"len_{key}_{k}"
                    self.defs.append(f"static Len {len_fn}([[maybe_unused]] const Len* s) {{ return {code}; }}")
            b = base.get(a.name)
            ival = int(b) if isinstance(b, int) else 0
            rval = float(b) if isinstance(b, (int, float)) and not isinstance(b, bool) else 0.0
            text = str(b) if isinstance(b, str) else ""
            letters = "".join(option_letters(r).get(a.name, []))
            intent = {"in": "'i'", "out": "'o'", "inout": "'b'"}[a.intent]
            args.append(f"{{{c_string(a.name)}, {intent}, '{BASE_CODE[a.base] if not a.callback else 'F'}', {shape}, "
                        f"{len_fn}, {c_string(len_text)}, {ival}LL, {c_real(rval)}, {c_string(text)}, "
                        f"{c_string(letters)}}}")
        self.defs.append(f"static const ArgDesc args_{key}[] = {{\n  " + ",\n  ".join(args) + "\n};")
        ifails = sorted({m.ierr for m in r.messages})
        self.defs.append(f"static const int64_t ifails_{key}[] = {{{', '.join(map(str, ifails)) or '0'}}};")
        cbs = self.callbacks(r, scalar_index)
        self.defs.append(self.thunk(r, cbs))
        info = next((k for k, a in enumerate(r.args) if a.name == "INFO" and a.base == "int" and a.is_scalar), -1)
        ifail = {None: 0, "standard": 1, "two-digit": 2}[r.ifail]
        ret = BASE_CODE.get(r.returns, "V") if r.returns else "V"
        self.entries.append(
            f"{{{c_string(r.name)}, {c_string(r.chapter)}, {c_string(published)}, {ifail}, '{ret}', "
            f"args_{key}, {len(r.args)}, ifails_{key}, {len(ifails)}, {info}, call_{key}, "
            f"{c_string(r.flag or '')}, {1 if r.checks else 0}}}")

    def callbacks(self, r: Routine, scalar_index) -> dict[str, str]:
        """One implementation per user function, handing its arguments to the runner's behaviour."""
        names = {}
        for k, a in enumerate(r.args):
            if not a.callback:
                continue
            cb, fn = a.callback, f"cb_{r.name}_{a.param}"
            params = []
            for j, p in enumerate(cb.params):
                code = length_code(p.length, scalar_index) if p.length not in (None, "*") else None
                len_fn = "nullptr"
                if code is not None:
                    len_fn = f"cblen_{r.name}_{a.param}_{j}"
                    self.defs.append(f"static Len {len_fn}([[maybe_unused]] const Len* s) {{ return {code}; }}")
                intent = {"in": "'i'", "out": "'o'", "inout": "'b'"}[p.intent]
                shape = 0 if p.length is None else (1 if code else 2)
                params.append(f"{{{c_string(p.name)}, {intent}, '{BASE_CODE[p.base]}', {shape}, {len_fn}, "
                              f"{c_string(p.length or '')}, 0LL, 0.0, \"\", \"\"}}")
            ret = BASE_CODE.get(cb.returns, "V") if cb.returns else "V"
            self.defs.append(f"static const ArgDesc cbargs_{r.name}_{a.param}[] = {{\n  " + ",\n  ".join(params)
                             + "\n};")
            self.defs.append(f"static const CallbackDesc cbdesc_{r.name}_{a.param} = {{{c_string(a.name)}, '{ret}', "
                             f"cbargs_{r.name}_{a.param}, {len(cb.params)}}};")
            decl = ", ".join(f"{'const ' if p.intent == 'in' else ''}{ENTRY_TYPES[p.base]}* p{j}"
                             for j, p in enumerate(cb.params))
            ptrs = ", ".join(f"(void*)p{j}" for j in range(len(cb.params)))
            rtype = "void" if not cb.returns else ENTRY_TYPES[cb.returns]
            result = {"void": "", "double": "return sweep::callback_result(r).real;",
                      "int64_t": "return sweep::callback_result(r).integer;"}[rtype]
            self.defs.append(f"static {rtype} {fn}({decl}) {{\n  void* p[] = {{{ptrs}}};\n"
                             f"  [[maybe_unused]] auto r = sweep::callback_act(cbdesc_{r.name}_{a.param}, p);\n"
                             f"  {result}\n}}")
            names[a.name] = fn
        return names

    def thunk(self, r: Routine, cbs: dict[str, str]) -> str:
        types = {"int": "int64_t", "logical": "int64_t", "real": "double", "single": "float",
                 "complex": "vek_complex", "scomplex": "vek_scomplex", "char": "char"}
        names = []
        for k, a in enumerate(r.args):
            names.append(f"&{cbs[a.name]}" if a.callback else f"static_cast<{types[a.base]}*>(c.p[{k}])")
        if r.ifail:
            names.append("c.ifail")
        names += [f"c.hidden[{k}]" for k, a in enumerate(r.args) if a.base == "char"]
        call = f"{r.name}_({', '.join(names)})"
        store = {None: f"{call};", "real": f"c.result.real = {call};", "int": f"c.result.integer = {call};",
                 "logical": f"c.result.integer = {call};", "single": f"c.result.real = {call};",
                 "complex": f"{{ vek_complex z = {call}; c.result.real = z.re; c.result.imag = z.im; }}",
                 "scomplex": f"{{ vek_scomplex z = {call}; c.result.real = z.re; c.result.imag = z.im; }}"}
        return f"static void call_{r.name}([[maybe_unused]] Call& c) {{ {store[r.returns]} }}"


def emit_sweep(chapters) -> str:
    published = {}
    for ch in chapters:
        for p in ch.published:
            published.setdefault(p.target, p.name)
    em = SweepEmitter()
    skipped = []
    for ch in chapters:
        for r in ch.routines:
            if r.kind != "routine":
                skipped.append(r.name)
                continue
            em.routine(r, published.get(r.name + "n", ""))
    return ("// Generated by tools/sweepgen.py from src/exports/*.decl. Do not edit.\n"
            "#include \"sweep_table.h\"\n#include \"vek.h\"\n\nnamespace sweep {\nnamespace {\n"
            + "\n".join(em.defs) + "\n}  // namespace\n\n"
            "const RoutineDesc routine_table[] = {\n  " + ",\n  ".join(em.entries) + "\n};\n"
            f"const std::size_t routine_count = {len(em.entries)};\n"
            f"const char* const internal_routines = {c_string(' '.join(skipped))};\n"
            "}  // namespace sweep\n")
