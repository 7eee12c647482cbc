"""Completes the parsed declarations: expands groups into routines, types every message value, checks that
every message fits the error buffer and that every check names what it reports, and that lengths and state
fields stay within their arrays."""
from __future__ import annotations

import copy
import re

from .checks import length_code, translate
from .model import Chapter, Check, DeclError, Illegal, Message, Routine, Use, Value

CPP_KEYWORDS = set("""alignas alignof and and_eq asm auto bitand bitor bool break case catch char char8_t char16_t
char32_t class compl concept const consteval constexpr constinit const_cast continue co_await co_return co_yield
decltype default delete do double dynamic_cast else enum explicit export extern false float for friend goto if
inline int long mutable namespace new noexcept not not_eq nullptr operator or or_eq private protected public
register reinterpret_cast requires return short signed sizeof static static_assert static_cast struct switch
template this thread_local throw true try typedef typeid typename union unsigned using virtual void volatile
wchar_t while xor xor_eq""".split())
ERRBUF_LENGTH = 200
MAX_VALUES = 9        # the parser of the error buffer keeps 12 fields: IFAIL, number, count and 9 values
LINE_LENGTH = 80      # a field longer than a message line is cut
VALUE_RE = re.compile(r"\{([^}]*)\}")
VALUE_SPEC_RE = re.compile(r"^([A-Za-z_][A-Za-z0-9_]*|len\(([A-Z][A-Z0-9_]*)\))(?::(int|real|letter|char(\d+)?))?$")


def expand(items: list, groups: dict, where_used: str, seen: tuple = ()) -> list:
    out = []
    for item in items:
        if isinstance(item, Use):
            group = groups.get(item.group)
            if group is None:
                raise DeclError(f"{item.where}: no group named '{item.group}'")
            if item.group in seen:
                raise DeclError(f"{item.where}: group '{item.group}' uses itself")
            out += expand(group.items, groups, where_used, seen + (item.group,))
        else:
            out.append(copy.deepcopy(item))
    return out


def value_of(field: str, r: Routine, where: str) -> Value:
    m = VALUE_SPEC_RE.match(field)
    if not m:
        raise DeclError(f"{where}: '{{{field}}}' is not {{NAME}} or {{NAME:TYPE}} (int, real, letter, char, charN)")
    name, of, kind, limit = m.group(1), m.group(2), m.group(3), m.group(4)
    if of is not None:
        if r.arg(of) is None or r.arg(of).base != "char" or kind not in (None, "int"):
            raise DeclError(f"{where}: {{{field}}}: len() of a character argument, an integer")
        return Value(name, "int")
    if kind is None:
        a = r.arg(name)
        if a is None or not a.is_scalar or a.base not in ("int", "logical", "real", "char"):
            raise DeclError(f"{where}: value {{{name}}} is not a scalar argument of {r.name.upper()}: give its type "
                            f"as {{{name}:int}}, {{{name}:real}}, {{{name}:char}} ...")
        kind = {"logical": "int"}.get(a.base, a.base)
    if kind.startswith("char"):
        n = int(limit) if limit else LINE_LENGTH
        if not 1 <= n <= LINE_LENGTH:
            raise DeclError(f"{where}: {{{field}}} shows 1 to {LINE_LENGTH} characters")
        return Value(name, "char", n)
    return Value(name, kind)


def resolve_message(m: Message, r: Routine):
    values: dict[str, Value] = {}
    for rec in m.records:
        for field in VALUE_RE.findall(rec):
            v = value_of(field, r, m.where)
            if v.name in values and (values[v.name].kind, values[v.name].limit) != (v.kind, v.limit):
                raise DeclError(f"{m.where}: value {{{v.name}}} given two types")
            values.setdefault(v.name, v)
    m.values = list(values.values())
    if len(m.values) > MAX_VALUES:
        raise DeclError(f"{m.where}: message {m.name} has {len(m.values)} values; at most {MAX_VALUES} fit")
    # The buffer holds 0x01, IFAIL in 5, 0x01, number in 5, 0x01, the count, 0x01, then each value and 0x01.
    need = 4 + 5 + 5 + len(str(len(m.values))) + sum(v.width + 1 for v in m.values)
    if need > ERRBUF_LENGTH:
        shown = ", ".join(f"{v.name} {v.width}" for v in m.values)
        raise DeclError(f"{m.where}: message {m.name} needs {need} characters of the {ERRBUF_LENGTH}-character error "
                        f"buffer at worst ({shown}); show fewer values or cut texts with charN")


def resolve_routine(r: Routine, groups: dict):
    items = expand(r.items, groups, r.where)
    r.messages = [i for i in items if isinstance(i, Message)]
    r.checks = [i for i in items if isinstance(i, Check)]
    reports = [i for i in items if isinstance(i, Illegal)]
    if reports and (r.ifail or len(reports) > 1):
        raise DeclError(f"{reports[-1].where}: one 'illegal' report, for a routine without IFAIL")
    r.illegal = reports[0].records if reports else []
    if r.messages and not r.ifail:
        raise DeclError(f"{r.messages[0].where}: messages need an ifail routine")
    if r.checks and not (r.ifail or r.illegal):
        raise DeclError(f"{r.checks[0].where}: checks need an ifail routine or an 'illegal' report")
    if (r.checks or r.illegal) and (r.kind != "routine" or r.forwards):
        raise DeclError(f"{r.where}: checks belong to a routine with a hand-written body, not a forwarded one")
    names, pairs = set(), set()
    for m in r.messages:
        if m.name in names:
            raise DeclError(f"{m.where}: message {m.name} declared twice in {r.name}")
        if (m.ierr, m.msgno) in pairs:
            raise DeclError(f"{m.where}: pair ({m.ierr}, {m.msgno}) declared twice in {r.name}")
        if m.name in ("run",) or any(s.array.lower() + "_state" == m.name for s in r.states):
            raise DeclError(f"{m.where}: message name {m.name} is taken")
        names.add(m.name)
        pairs.add((m.ierr, m.msgno))
        resolve_message(m, r)
    by_name = {m.name: m for m in r.messages}
    for c in r.checks:
        translate(c.expr, r, c.where)  # rejects what it cannot read
        words = c.target.split()
        if words[0] == "illegal":
            if not r.illegal:
                raise DeclError(f"{c.where}: 'else illegal' needs the routine's 'illegal' records")
            a = r.arg(words[1].upper()) if len(words) == 2 else None
            if a is None or not a.is_scalar or a.base not in ("int", "logical"):
                raise DeclError(f"{c.where}: 'else illegal ARGUMENT' names an integer scalar argument")
            continue
        if len(words) != 1 or words[0] not in by_name:
            raise DeclError(f"{c.where}: check fails with '{c.target}', which is no message of {r.name}")
        for v in by_name[words[0]].values:
            if not (v.name.startswith("len(") or r.arg(v.name) and r.arg(v.name).is_scalar):
                raise DeclError(f"{c.where}: message {words[0]} shows {{{v.name}}}, which a check cannot supply "
                                f"(not a scalar argument); raise it from the body")


def check_names(r: Routine):
    """Every parameter and local name of the generated layers and of the body is distinct and no C++ keyword."""
    taken = {"trace_level": "the trace wrapper", "trace_rec": "the trace wrapper", "trace_value": "the trace wrapper"}
    if r.ifail:
        taken.update({n: "the IFAIL layers" for n in ("ifail", "errbuf", "ierr", "errbuf_len", "err")})
        if r.returns:
            taken["value"] = "the entry of an IFAIL function"
    if r.returns == "char":
        taken.update({"result": "the character result", "result_len": "the character result"})
    for a in r.args:
        for name in [a.param] + [f"{a.param}_len"] * (a.base == "char") + [f"{a.param}_adapter"] * bool(a.callback):
            if name in CPP_KEYWORDS:
                raise DeclError(f"{a.where}: argument {a.name} of {r.name} is a C++ keyword")
            if name in taken:
                raise DeclError(f"{a.where}: argument {a.name} of {r.name} gives the name '{name}', taken by "
                                f"{taken[name]}")
            taken[name] = f"argument {a.name}"
        for p in a.callback.params if a.callback else []:
            if p.param in CPP_KEYWORDS:
                raise DeclError(f"{p.where}: parameter {p.name} of {a.name} is a C++ keyword")


def check_lengths(r: Routine):
    for a in r.args:
        if a.length not in (None, "*"):
            length_code(a.length, r, a.where)


def resolve(chapters: list[Chapter]):
    groups = {}
    for ch in chapters:
        for g in ch.groups:
            if g.name in groups:
                raise DeclError(f"{g.where}: group {g.name} declared twice")
            groups[g.name] = g
    for ch in chapters:
        for r in ch.routines:
            check_names(r)
            check_lengths(r)
            resolve_routine(r, groups)
