"""The declarations as data: routines, their arguments, messages, checks and communication state."""
from __future__ import annotations

import re
from dataclasses import dataclass, field
from pathlib import Path

C_TYPES = {"int": "int64_t", "logical": "int64_t", "real": "double", "single": "float",
           "complex": "vek_complex", "scomplex": "vek_scomplex", "char": "char"}
INTENTS = ("in", "out", "inout")
# A value in a message record: {NAME}, {NAME:TYPE} or {len(CH)}, the length of a character argument.
VALUE_RE = re.compile(r"\{([A-Za-z_][A-Za-z0-9_]*|len\([A-Z][A-Z0-9_]*\))(?::[a-z0-9]+)?\}")


class DeclError(Exception):
    """A malformed declaration; the text starts with the file and line."""


@dataclass
class Callback:
    returns: str | None
    adapter: str  # the adapter is the exported symbol <routine>_<adapter>_
    params: list["Arg"] = field(default_factory=list)


@dataclass
class Arg:
    name: str
    intent: str
    base: str
    length: str | None  # None: scalar; "*": array of unknown length; else a C++ expression over arguments
    owner: str = ""     # the routine, for the names of a callback's types
    callback: Callback | None = None
    where: str = ""     # file:line of its declaration

    @property
    def param(self) -> str:
        return self.name.lower()

    @property
    def fn_type(self) -> str:
        return f"vek_{self.owner}_{self.param}_fn"

    @property
    def adapter_type(self) -> str:
        return f"vek_{self.owner}_{self.param}_adapter"

    # The adapter's own parameter for the user function: a name no argument takes, since user functions
    # commonly have a parameter F.
    ADAPTER_FN = "vek_user_fn"

    @property
    def adapter_symbol(self) -> str:
        return f"{self.owner}_{self.callback.adapter}_"

    @property
    def is_scalar(self) -> bool:
        return self.length is None and self.callback is None

    def decl(self) -> str:
        if self.callback:
            return f"{self.fn_type} {self.param}"
        const = "const " if self.intent == "in" else ""
        return f"{const}{C_TYPES[self.base]}* {self.param}"

    def worker_decls(self) -> list[str]:
        """A user function reaches the worker as its adapter followed by the function itself."""
        if self.callback:
            return [f"{self.adapter_type} {self.param}_adapter", self.decl()]
        return [self.decl()]

    def worker_names(self, from_entry: bool) -> list[str]:
        if self.callback:
            return [self.adapter_symbol if from_entry else f"{self.param}_adapter", self.param]
        return [self.param]


@dataclass
class Value:
    """One value of a message: its name in the records and how it is written into the error buffer."""
    name: str
    kind: str        # "int", "real", "char" or "letter"
    limit: int = 0   # for "char": the characters shown at most

    @property
    def width(self) -> int:
        """The most characters the value can take in the error buffer."""
        return {"int": 20, "real": 24, "letter": 1}.get(self.kind, self.limit)

    @property
    def tag(self) -> str:
        return {"int": "vek::frame::IntValue", "real": "vek::frame::RealValue",
                "letter": "vek::frame::LetterValue"}.get(self.kind, f"vek::frame::TextValue<{self.limit}>")


@dataclass
class Message:
    name: str
    ierr: int
    msgno: int
    records: list[str]        # as declared, with {NAME} or {NAME:TYPE}
    where: str
    values: list[Value] = field(default_factory=list)  # in order of first appearance, filled by resolve

    def numbered_records(self) -> list[str]:
        """The records with each value written {k}, k its position in the error buffer."""
        index = {v.name: k for k, v in enumerate(self.values, 1)}
        return [VALUE_RE.sub(lambda m: f"{{{index[m.group(1)]}}}", r) for r in self.records]

    def shown_records(self) -> list[str]:
        """The records as the reference shows them: {NAME} without a type."""
        return [VALUE_RE.sub(r"{\1}", r) for r in self.records]


@dataclass
class Check:
    expr: str        # as declared, over the upper-case argument names
    target: str      # the message it fails with, or the argument reported as illegal
    where: str


@dataclass
class Field:
    name: str
    first: int       # one-based element of the communication array
    last: int        # == first for a single element
    comment: str = ""


@dataclass
class State:
    """A caller-owned communication array and the meaning of its elements."""
    array: str
    where: str
    length: int      # the array's declared length
    fields: list[Field] = field(default_factory=list)


@dataclass
class Illegal:
    """The records reporting an illegal argument of a routine without IFAIL."""
    records: list[str]
    where: str


@dataclass
class Use:
    group: str
    where: str


@dataclass
class Group:
    """Messages and checks declared once and used by several routines."""
    name: str
    where: str
    items: list = field(default_factory=list)  # Message, Check, Use in order


@dataclass
class Routine:
    name: str
    kind: str  # "routine" or "internal"
    chapter: str
    where: str
    ifail: str | None = None  # None, "standard" or "two-digit"
    gated: bool = True        # the generated worker consults the licence gate
    returns: str | None = None
    purpose: str = ""
    forwards: str | None = None  # the worker passes its arguments unchanged to this symbol of a dependency
    guard: list[str] = field(default_factory=list)  # a forwarding worker first asks this guard (emit_guard.py)
    flag: str | None = None      # reverse communication: the argument that is 0 on the final return
    illegal: list[str] = field(default_factory=list)  # records reporting an illegal argument (after resolve)
    args: list[Arg] = field(default_factory=list)
    items: list = field(default_factory=list)     # Message, Check, Illegal, Use in declared order
    messages: list[Message] = field(default_factory=list)  # after resolve
    checks: list[Check] = field(default_factory=list)      # after resolve
    states: list[State] = field(default_factory=list)

    @property
    def char_args(self):
        return [a for a in self.args if a.base == "char"]

    @property
    def has_body(self) -> bool:
        """The worker is generated (licence gate, declared checks) and calls the hand-written body."""
        return self.kind == "routine" and not self.forwards and (self.ifail is not None or bool(self.illegal))

    def arg(self, name: str) -> Arg | None:
        return next((a for a in self.args if a.name == name), None)

    def worker_params(self) -> list[str]:
        params = [d for a in self.args for d in a.worker_decls()]
        if self.ifail:
            params += ["char* errbuf", "int64_t* ierr"]
        params += [f"int64_t {a.param}_len" for a in self.char_args]
        if self.ifail:
            params.append("int64_t errbuf_len")
        if self.returns == "char":
            params = ["char* result", "int64_t result_len"] + params
        return params

    def worker_call(self, errbuf="errbuf", ierr="ierr", errbuf_len="errbuf_len", from_entry=False) -> str:
        names = [n for a in self.args for n in a.worker_names(from_entry)]
        if self.ifail:
            names += [errbuf, ierr]
        names += [f"{a.param}_len" for a in self.char_args]
        if self.ifail:
            names.append(errbuf_len)
        if self.returns == "char":
            names = ["result", "result_len"] + names
        return ", ".join(names)

    def standard_params(self) -> list[str]:
        """The published argument list (a published name's entry, a forwarded dependency routine): a user
        function as itself, without the adapter the worker takes."""
        return [a.decl() for a in self.args] + [f"int64_t {a.param}_len" for a in self.char_args]

    def body_params(self) -> list[str]:
        """The hand-written body: the error buffer (IFAIL routines), the arguments, the hidden lengths."""
        params = ["vek::frame::ErrorBuffer& err"] if self.ifail else []
        params += [d for a in self.args for d in a.worker_decls()]
        return params + [f"int64_t {a.param}_len" for a in self.char_args]

    def body_call(self) -> str:
        names = ["err"] if self.ifail else []
        names += [n for a in self.args for n in a.worker_names(False)]
        return ", ".join(names + [f"{a.param}_len" for a in self.char_args])

    def entry_params(self) -> list[str]:
        params = [a.decl() for a in self.args]
        if self.ifail:
            params.append("int64_t* ifail")
        params += [f"int64_t {a.param}_len" for a in self.char_args]
        if self.returns == "char":
            params = ["char* result", "int64_t result_len"] + params
        return params

    def ret_type(self) -> str:
        if self.returns is None or self.returns == "char":
            return "void"
        return C_TYPES[self.returns]


@dataclass
class Published:
    name: str
    target: str
    where: str


@dataclass
class Chapter:
    name: str
    path: Path
    routines: list[Routine] = field(default_factory=list)
    published: list[Published] = field(default_factory=list)
    groups: list[Group] = field(default_factory=list)
    options: list = field(default_factory=list)  # option sets (tools/decl/options.py)
