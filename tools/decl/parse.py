"""Reads the chapter declaration files (syntax in docs/declarations.md) into the model."""
from __future__ import annotations

import re
import shlex
from pathlib import Path

from .model import (C_TYPES, INTENTS, Arg, Callback, Chapter, Check, DeclError, Field, Group, Illegal, Message, Published,
                    Routine, State, Use)
from .emit_guard import emit_guarded_worker
from .options import OptionsParser

TYPE_RE = re.compile(r"^(int|logical|real|single|complex|scomplex|char)(?:\[(.+)\])?$")
NAME_RE = re.compile(r"^[a-z][a-z0-9_]*$")
FIELD_RE = re.compile(r"^(\d+)(?::(\d+))?$")
SYMBOL_RE = re.compile(r"^[a-z_][a-z0-9_]*$")
ARG_RE = re.compile(r"^[A-Z][A-Z0-9_]*$")
RESERVED_IFAIL = (0, -99, -399, -999)
RECORD_LENGTH = 79  # a record is written after one blank in an 80-character line


def parse_type(text: str, where: str):
    m = TYPE_RE.match(text)
    if not m:
        raise DeclError(f"{where}: unknown type '{text}'")
    return m.group(1), m.group(2)


def arg_name(text: str, where: str) -> str:
    name = text.upper()
    if not ARG_RE.match(name):
        raise DeclError(f"{where}: argument name '{text}' is not a Fortran name")
    return name


def check_record(rec: str, where: str):
    """A record's own text (without its values) must fit the line, and braces only enclose values."""
    fixed = re.sub(r"\{[^{}]*\}", "", rec)
    if "{" in fixed or "}" in fixed:
        raise DeclError(f"{where}: record '{rec}' has a brace that encloses no value")
    if len(fixed) > RECORD_LENGTH:
        raise DeclError(f"{where}: record '{rec}' has {len(fixed)} characters without its values; a record holds "
                        f"{RECORD_LENGTH}")


def parse_int(text: str, what: str, where: str) -> int:
    try:
        return int(text)
    except ValueError:
        raise DeclError(f"{where}: {what} '{text}' is not an integer") from None


class Parser:
    """One file, line by line. Blocks: a routine runs to the next routine; group and state run to 'end'."""

    def __init__(self, path: Path):
        self.chapter = Chapter(path.stem, path)
        self.routine: Routine | None = None
        self.group: Group | None = None
        self.state: State | None = None
        self.options: OptionsParser | None = None

    def owner(self, key: str, where: str):
        """The block that takes messages, checks and uses: an open group, else the current routine."""
        if self.group is not None:
            return self.group
        if self.routine is None:
            raise DeclError(f"{where}: '{key}' outside a routine or group")
        return self.routine

    def current(self, key: str, where: str) -> Routine:
        if self.group is not None or self.routine is None:
            raise DeclError(f"{where}: '{key}' belongs to a routine")
        return self.routine

    def line(self, raw: str, where: str):
        if self.options is not None:  # an options block reads its own lines up to its 'end'
            if self.options.line(raw, where):
                self.options = None
            return
        head = raw.split(None, 1)
        if not head or head[0].startswith("#"):
            return
        key = head[0]
        if key == "purpose":  # free text to the end of the line, quotes and all
            self.current(key, where).purpose = head[1].strip() if len(head) > 1 else ""
            return
        if key == "check":  # an expression, read as written
            self.check(head[1] if len(head) > 1 else "", where)
            return
        if self.state is not None and key not in ("field", "end"):
            raise DeclError(f"{where}: a state block holds 'field' lines up to 'end'")
        if key == "field":
            self.field(raw, where)
            return
        if key in INTENTS or key == "param":  # the type runs to the end of the line: a length may hold blanks
            words = raw.split("#", 1)[0].split(None, 3 if key == "param" else 2)
            rest = words[1:]
            if key == "param":
                self.kw_param(rest, where)
            else:
                self.argument(key, rest, where)
            return
        try:
            words = shlex.split(raw, comments=True)
        except ValueError as e:
            raise DeclError(f"{where}: {e}") from None
        if not words:
            return
        key, rest = words[0], words[1:]
        handler = getattr(self, "kw_" + key.replace("-", "_"), None)
        if handler is None:
            if key in INTENTS:
                self.argument(key, rest, where)
                return
            raise DeclError(f"{where}: unknown keyword '{key}'")
        handler(rest, where)

    # -- blocks ----------------------------------------------------------------------------------------
    def kw_routine(self, rest, where, kind="routine"):
        if self.group is not None:
            raise DeclError(f"{where}: group {self.group.name} has no 'end'")
        if not rest or not SYMBOL_RE.match(rest[0].lower()):
            raise DeclError(f"{where}: '{kind}' needs a name (letters, digits, underscores)")
        r = Routine(rest[0].lower(), kind, self.chapter.name, where)
        opts = rest[1:]
        while opts:
            opt = opts.pop(0)
            if opt == "ifail" and kind == "routine":
                r.ifail = "standard"
                if opts and opts[0] == "two-digit":
                    r.ifail = opts.pop(0)
            elif opt == "ungated" and kind == "routine":
                r.gated = False
            elif opt == "returns" and opts:
                r.returns = opts.pop(0)
                if r.returns not in C_TYPES:
                    raise DeclError(f"{where}: unknown result type '{r.returns}'")
                if r.returns == "char" and kind != "internal":
                    raise DeclError(f"{where}: only internal routines may return char")
            else:
                raise DeclError(f"{where}: unexpected '{opt}'")
        if not r.gated and not r.ifail:
            raise DeclError(f"{where}: 'ungated' concerns the licence gate of an ifail routine")
        self.chapter.routines.append(r)
        self.routine = r

    def kw_internal(self, rest, where):
        self.kw_routine(rest, where, kind="internal")

    def kw_published(self, rest, where):
        if len(rest) != 2 or not all(SYMBOL_RE.match(w.lower()) for w in rest):
            raise DeclError(f"{where}: 'published NAME TARGET'")
        self.chapter.published.append(Published(rest[0].lower(), rest[1].lower(), where))
        self.routine = None

    def kw_group(self, rest, where):
        if self.group is not None:
            raise DeclError(f"{where}: group {self.group.name} has no 'end'")
        if len(rest) != 1 or not NAME_RE.match(rest[0]):
            raise DeclError(f"{where}: 'group NAME' with a lower-case name")
        self.group = Group(rest[0], where)
        self.chapter.groups.append(self.group)
        self.routine = None

    def kw_options(self, rest, where):
        if self.group is not None:
            raise DeclError(f"{where}: group {self.group.name} has no 'end'")
        self.options = OptionsParser(rest, where)
        self.chapter.options.append(self.options.set)
        self.routine = None

    def kw_state(self, rest, where):
        r = self.current("state", where)
        if len(rest) != 1:
            raise DeclError(f"{where}: 'state ARRAY'")
        a = r.arg(rest[0].upper())
        if a is None or a.length in (None, "*") or a.callback or a.base in ("char",):
            raise DeclError(f"{where}: state {rest[0]} is not an array argument of known length declared above")
        if not a.length.isdigit():
            raise DeclError(f"{where}: state {a.name}[{a.length}]: declare the array with a literal length")
        if any(s.array == a.name for s in r.states):
            raise DeclError(f"{where}: state {a.name} declared twice")
        self.state = State(a.name, where, int(a.length))
        r.states.append(self.state)

    def kw_end(self, rest, where):
        if rest:
            raise DeclError(f"{where}: 'end' takes nothing")
        if self.state is not None:
            if not self.state.fields:
                raise DeclError(f"{where}: state {self.state.array} declares no field")
            self.state = None
        elif self.group is not None:
            if not self.group.items:
                raise DeclError(f"{where}: group {self.group.name} declares nothing")
            self.group = None
        else:
            raise DeclError(f"{where}: 'end' without a group or state")

    def finish(self, where):
        if self.options is not None:
            raise DeclError(f"{self.options.set.where}: options {self.options.set.name} has no 'end'")
        if self.state is not None:
            raise DeclError(f"{self.state.where}: state {self.state.array} has no 'end'")
        if self.group is not None:
            raise DeclError(f"{self.group.where}: group {self.group.name} has no 'end'")

    # -- routine lines ---------------------------------------------------------------------------------
    def argument(self, intent, rest, where):
        r = self.current(intent, where)
        if len(rest) != 2:
            raise DeclError(f"{where}: '{intent} NAME TYPE'")
        name = arg_name(rest[0], where)
        if r.arg(name):
            raise DeclError(f"{where}: argument {name} declared twice")
        base, length = parse_type(rest[1], where)
        r.args.append(Arg(name, intent, base, length, where=where))

    def kw_callback(self, rest, where):
        # callback NAME [returns TYPE] adapter SUFFIX, then its arguments as 'param INTENT NAME TYPE' lines
        r = self.current("callback", where)
        if len(rest) < 3 or "adapter" not in rest or rest.index("adapter") + 2 != len(rest):
            raise DeclError(f"{where}: 'callback NAME [returns TYPE] adapter SUFFIX'")
        returns = rest[2] if rest[1] == "returns" else None
        if returns is not None and returns not in C_TYPES or returns == "char":
            raise DeclError(f"{where}: a user function returns a number or nothing")
        name = arg_name(rest[0], where)
        if r.arg(name):
            raise DeclError(f"{where}: argument {name} declared twice")
        if not SYMBOL_RE.match(rest[-1]):
            raise DeclError(f"{where}: adapter suffix '{rest[-1]}' is not an identifier")
        r.args.append(Arg(name, "in", "callback", None, r.name, Callback(returns, rest[-1]), where))

    def kw_param(self, rest, where):
        r = self.current("param", where)
        if not r.args or not r.args[-1].callback or len(rest) != 3 or rest[0] not in INTENTS:
            raise DeclError(f"{where}: 'param INTENT NAME TYPE' follows a callback")
        base, length = parse_type(rest[2], where)
        if base == "char":
            raise DeclError(f"{where}: user functions take no character arguments")
        cb = r.args[-1].callback
        name = arg_name(rest[1], where)
        if any(p.name == name for p in cb.params):
            raise DeclError(f"{where}: parameter {name} declared twice")
        cb.params.append(Arg(name, rest[0], base, length, where=where))

    def kw_forwards(self, rest, where):
        if len(rest) != 1:
            raise DeclError(f"{where}: 'forwards SYMBOL'")
        self.current("forwards", where).forwards = rest[0]

    def kw_guard(self, rest, where):
        r = self.current("guard", where)
        if not r.forwards or not rest:
            raise DeclError(f"{where}: 'guard NAME ...' follows 'forwards'")
        r.guard = rest
        try:
            emit_guarded_worker(r, "check", "")  # every name and region resolved now, at this line
        except ValueError as e:
            raise DeclError(f"{where}: {e}") from None

    def kw_flag(self, rest, where):
        r = self.current("flag", where)
        if len(rest) != 1:
            raise DeclError(f"{where}: 'flag ARGUMENT'")
        a = r.arg(rest[0].upper())
        if a is None or a.base != "int" or not a.is_scalar or a.intent != "inout":
            raise DeclError(f"{where}: flag {rest[0]} is not an inout integer scalar declared above")
        if r.flag is not None:
            raise DeclError(f"{where}: {r.name} has a flag already ({r.flag})")
        r.flag = a.name

    def kw_illegal(self, rest, where):
        owner = self.owner("illegal", where)
        if not rest:
            raise DeclError(f"{where}: 'illegal \"record\" ...'")
        for rec in rest:
            check_record(rec, where)
            for name in re.findall(r"\{([^}]*)\}", rec):
                if name not in ("ROUTINE", "NUMBER", "VALUE"):
                    raise DeclError(f"{where}: an illegal-argument record shows {{ROUTINE}}, {{NUMBER}} or "
                                    f"{{VALUE}}, not {{{name}}}")
        owner.items.append(Illegal(rest, where))

    def kw_message(self, rest, where):
        owner = self.owner("message", where)
        if len(rest) < 4:
            raise DeclError(f"{where}: 'message NAME IFAIL MSGNO \"record\" ...'")
        if not NAME_RE.match(rest[0]):
            raise DeclError(f"{where}: message name '{rest[0]}' is not a lower-case identifier")
        ierr, msgno = parse_int(rest[1], "IFAIL", where), parse_int(rest[2], "message number", where)
        if ierr in RESERVED_IFAIL or not -9999 <= ierr <= 99999:
            raise DeclError(f"{where}: IFAIL {ierr} is not a failure of its own: 0 is success, -99, -399 and -999 "
                            "belong to the entry layer, and the error buffer holds 5 columns")
        if not 1 <= msgno <= 99999:
            raise DeclError(f"{where}: message number {msgno} lies outside 1 to 99999 (5 columns)")
        for rec in rest[3:]:
            check_record(rec, where)
        owner.items.append(Message(rest[0], ierr, msgno, rest[3:], where))

    def kw_use(self, rest, where):
        if len(rest) != 1:
            raise DeclError(f"{where}: 'use GROUP'")
        self.owner("use", where).items.append(Use(rest[0], where))

    def check(self, text, where):
        owner = self.owner("check", where)
        expr, sep, target = text.rpartition(" else ")
        if not sep or not expr.strip() or not target.strip():
            raise DeclError(f"{where}: 'check CONDITION else MESSAGE' (or 'else illegal ARGUMENT')")
        owner.items.append(Check(expr.strip(), " ".join(target.split("#")[0].split()), where))

    def field(self, raw, where):
        if self.state is None:
            raise DeclError(f"{where}: 'field' outside a state block")
        text, _, comment = raw.partition("#")
        words = text.split()
        if len(words) != 3 or words[0] != "field" or not NAME_RE.match(words[1].lower()):
            raise DeclError(f"{where}: 'field NAME ELEMENT' or 'field NAME FIRST:LAST'")
        m = FIELD_RE.match(words[2])
        if not m:
            raise DeclError(f"{where}: field element '{words[2]}' is not N or FIRST:LAST")
        first = int(m.group(1))
        last = int(m.group(2) or first)
        if first < 1 or last < first:
            raise DeclError(f"{where}: field elements {words[2]} are not a range from 1 up")
        if last > self.state.length:
            raise DeclError(f"{where}: field {words[1]} ({first}:{last}) lies outside {self.state.array}"
                            f"[{self.state.length}]")
        name = words[1].lower()
        if any(f.name == name for f in self.state.fields):
            raise DeclError(f"{where}: field {name} declared twice")
        for f in self.state.fields:
            if first <= f.last and f.first <= last:
                raise DeclError(f"{where}: field {name} ({first}:{last}) overlaps field {f.name} ({f.first}:{f.last})")
        self.state.fields.append(Field(name, first, last, comment.strip()))


def parse_chapter(path: Path) -> Chapter:
    p = Parser(path)
    lineno = 0
    for lineno, raw in enumerate(path.read_text().splitlines(), 1):
        p.line(raw, f"{path}:{lineno}")
    p.finish(f"{path}:{lineno}")
    return p.chapter
