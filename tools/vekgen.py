#!/usr/bin/env python3
"""Routine generator: turns the chapter declarations (src/exports/*.decl) into the routine layers.

For every declared routine it writes the entry layer, the trace wrapper and the dispatch stub, the message
table, the C prototypes of all layers (the workers' .cpp files include them, so a worker's signature is
checked against its declaration), the public header, the linker export map and the chapter reference.
The declaration syntax is described in docs/declarations.md.
"""
import argparse
import re
import shlex
import sys
from dataclasses import dataclass, field
from pathlib import Path

C_TYPES = {"int": "int64_t", "logical": "int64_t", "real": "double", "single": "float",
           "complex": "vek_complex", "scomplex": "vek_scomplex", "char": "char"}
# Trace dumper method for a scalar and for an array of each type.
DUMP_SCALAR = {"int": "integer", "logical": "logical", "real": "real", "single": "single",
               "complex": "complex", "scomplex": "scomplex"}
DUMP_ARRAY = {"int": "integers", "logical": "logicals", "real": "reals", "single": "singles",
              "complex": "complexes", "scomplex": "scomplexes"}
INTENTS = ("in", "out", "inout")
ERRBUF_LENGTH = 200
MAX_VALUES = 9


class DeclError(Exception):
    pass


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

    @property
    def param(self) -> str:
        return self.name.lower()

    @property
    def fn_type(self) -> str:
        return f"vek_{self.owner}_{self.param}_fn"

    @property
    def adapter_type(self) -> str:
        return f"vek_{self.owner}_{self.param}_adapter"

    @property
    def adapter_symbol(self) -> str:
        return f"{self.owner}_{self.callback.adapter}_"

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
class Message:
    ierr: int
    msgno: int
    records: list[str]


@dataclass
class Routine:
    name: str
    kind: str  # "routine" or "internal"
    chapter: str
    where: str
    ifail: bool = False
    returns: str | None = None
    purpose: str = ""
    forwards: str | None = None  # the worker passes its arguments unchanged to this symbol of a dependency
    args: list[Arg] = field(default_factory=list)
    messages: list[Message] = field(default_factory=list)

    @property
    def char_args(self):
        return [a for a in self.args if a.base == "char"]

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


# ----------------------------------------------------------------------------------------------------------
# Parsing

TYPE_RE = re.compile(r"^(int|logical|real|single|complex|scomplex|char)(?:\[(.+)\])?$")
IDENT_RE = re.compile(r"\b[A-Z][A-Z0-9_]*\b")


def parse_type(text: str, where: str):
    m = TYPE_RE.match(text)
    if not m:
        raise DeclError(f"{where}: unknown type '{text}'")
    return m.group(1), m.group(2)


def parse_chapter(path: Path) -> Chapter:
    chapter = Chapter(path.stem, path)
    current: Routine | None = None
    for lineno, raw in enumerate(path.read_text().splitlines(), 1):
        where = f"{path}:{lineno}"
        head = raw.split(None, 1)
        if head and head[0] == "purpose":  # free text to the end of the line, quotes and all
            if current is None:
                raise DeclError(f"{where}: 'purpose' outside a routine")
            current.purpose = head[1].strip() if len(head) > 1 else ""
            continue
        try:
            words = shlex.split(raw, comments=True)
        except ValueError as e:
            raise DeclError(f"{where}: {e}")
        if not words:
            continue
        key, rest = words[0], words[1:]
        if key in ("routine", "internal"):
            if not rest:
                raise DeclError(f"{where}: '{key}' needs a name")
            current = Routine(rest[0].lower(), key, chapter.name, where)
            opts = rest[1:]
            while opts:
                opt = opts.pop(0)
                if opt == "ifail" and key == "routine":
                    current.ifail = True
                elif opt == "returns" and opts:
                    current.returns = opts.pop(0)
                    if current.returns not in C_TYPES:
                        raise DeclError(f"{where}: unknown result type '{current.returns}'")
                    if current.returns == "char" and key != "internal":
                        raise DeclError(f"{where}: only internal routines may return char")
                else:
                    raise DeclError(f"{where}: unexpected '{opt}'")
            chapter.routines.append(current)
        elif key == "published":
            if len(rest) != 2:
                raise DeclError(f"{where}: 'published NAME TARGET'")
            chapter.published.append(Published(rest[0].lower(), rest[1].lower(), where))
            current = None
        elif current is None:
            raise DeclError(f"{where}: '{key}' outside a routine")
        elif key == "callback":
            # callback NAME [returns TYPE] adapter SUFFIX, then its arguments as 'param INTENT NAME TYPE' lines
            if len(rest) < 3 or "adapter" not in rest or rest.index("adapter") + 2 != len(rest):
                raise DeclError(f"{where}: 'callback NAME [returns TYPE] adapter SUFFIX'")
            returns = rest[2] if rest[1] == "returns" else None
            if returns is not None and returns not in C_TYPES or returns == "char":
                raise DeclError(f"{where}: a user function returns a number or nothing")
            name = rest[0].upper()
            if any(a.name == name for a in current.args):
                raise DeclError(f"{where}: argument {name} declared twice")
            current.args.append(Arg(name, "in", "callback", None, current.name, Callback(returns, rest[-1])))
        elif key == "param":
            if not current.args or not current.args[-1].callback or len(rest) != 3 or rest[0] not in INTENTS:
                raise DeclError(f"{where}: 'param INTENT NAME TYPE' follows a callback")
            base, length = parse_type(rest[2], where)
            if base == "char":
                raise DeclError(f"{where}: user functions take no character arguments")
            current.args[-1].callback.params.append(Arg(rest[1].upper(), rest[0], base, length))
        elif key == "forwards":
            if len(rest) != 1:
                raise DeclError(f"{where}: 'forwards SYMBOL'")
            current.forwards = rest[0]
        elif key in INTENTS:
            if len(rest) != 2:
                raise DeclError(f"{where}: '{key} NAME TYPE'")
            name = rest[0].upper()
            if any(a.name == name for a in current.args):
                raise DeclError(f"{where}: argument {name} declared twice")
            base, length = parse_type(rest[1], where)
            current.args.append(Arg(name, key, base, length))
        elif key == "message":
            if len(rest) < 3:
                raise DeclError(f"{where}: 'message IFAIL MSGNO \"record\" ...'")
            if not current.ifail:
                raise DeclError(f"{where}: messages need an ifail routine")
            msg = Message(int(rest[0]), int(rest[1]), rest[2:])
            if any((m.ierr, m.msgno) == (msg.ierr, msg.msgno) for m in current.messages):
                raise DeclError(f"{where}: pair ({msg.ierr}, {msg.msgno}) declared twice")
            for rec in msg.records:
                for k in re.findall(r"\{(\d+)\}", rec):
                    if not 1 <= int(k) <= MAX_VALUES:
                        raise DeclError(f"{where}: value {{{k}}} out of range 1..{MAX_VALUES}")
            current.messages.append(msg)
        else:
            raise DeclError(f"{where}: unknown keyword '{key}'")
    return chapter


def check_lengths(r: Routine):
    names = {a.name: a for a in r.args}
    for a in r.args:
        if a.length in (None, "*"):
            continue
        for ident in IDENT_RE.findall(a.length):
            if ident not in names or names[ident].base not in ("int", "logical") or names[ident].length:
                raise DeclError(f"{r.where}: length of {a.name} uses '{ident}', not an integer scalar argument")


# ----------------------------------------------------------------------------------------------------------
# Emitters

HEADER_NOTE = "Generated by tools/vekgen.py from the declarations in src/exports. Do not edit."


def c_string(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def length_expr(r: Routine, expr: str) -> str:
    names = {a.name for a in r.args}
    out = IDENT_RE.sub(lambda m: f"(*{m.group(0).lower()})" if m.group(0) in names else m.group(0), expr)
    return re.sub(r"\b(max|min)\(", r"vek::trace::\1(", out)


def dump_line(r: Routine, a: Arg) -> str:
    p, label = a.param, c_string(a.name)
    if a.callback:
        return f"trace_rec.address({label}, reinterpret_cast<const void*>({p}));"
    if a.base == "char":
        if a.length is None:
            return f"trace_rec.text({label}, {p}, {p}_len);"
        if a.length == "*":
            return f"trace_rec.address({label}, {p});"
        return f"trace_rec.texts({label}, {p}, {length_expr(r, a.length)}, {p}_len);"
    if a.length is None:
        return f"trace_rec.{DUMP_SCALAR[a.base]}({label}, {p});"
    if a.length == "*":
        return f"trace_rec.address({label}, {p});"
    return f"trace_rec.{DUMP_ARRAY[a.base]}({label}, {p}, {length_expr(r, a.length)});"


def emit_trace_wrapper(r: Routine) -> list[str]:
    """The wrapper tests the level and jumps to the stub; the dumps live in a cold function of their own so
    that the untraced path has no frame to set up."""
    name = r.name
    params = ", ".join(r.worker_params())
    call = f"{name}v_({r.worker_call()})"
    out = [f"[[gnu::noinline, gnu::cold]] static {r.ret_type()} {name}t_traced("
           f"{', '.join(['int64_t trace_level'] + r.worker_params())}) {{",
           f"  vek::trace::Record trace_rec({c_string(name.upper() + 'T')}, trace_level);",
           "  trace_rec.begin(true);"]
    out += ["  " + dump_line(r, a) for a in r.args if a.intent != "out"]
    out.append("  trace_rec.end();")
    if r.returns:
        out.append(f"  const {r.ret_type()} trace_value = {call};")
    else:
        out.append(f"  {call};")
    out.append("  trace_rec.begin(false);")
    out += ["  " + dump_line(r, a) for a in r.args]
    if r.ifail:
        out.append("  trace_rec.text(\"ERRBUF\", errbuf, errbuf_len);")
        out.append("  trace_rec.integer(\"IFAIL\", ierr);")
    if r.returns:
        out.append(f"  trace_rec.{DUMP_SCALAR[r.returns]}({c_string(name.upper())}, &trace_value);")
    out.append("  trace_rec.end();")
    if r.returns:
        out.append("  return trace_value;")
    out.append("}")
    out += [f"{r.ret_type()} {name}t_({params}) {{",
            "  const int64_t trace_level = vek::trace::level();",
            f"  if (trace_level == 0) [[likely]] return {call};",
            f"  return {name}t_traced({', '.join(['trace_level'] + ([r.worker_call()] if r.worker_call() else []))});",
            "}"]
    return out


def callback_signature(a: Arg) -> tuple[str, list[str]]:
    """The user function's result type and parameters."""
    ret = C_TYPES[a.callback.returns] if a.callback.returns else "void"
    return ret, [p.decl() for p in a.callback.params]


def emit_callback_types(a: Arg) -> list[str]:
    ret, params = callback_signature(a)
    with_fn = [f"{a.fn_type} f"] + params
    return [f"typedef {ret} (*{a.fn_type})({', '.join(params) or 'void'});",
            f"typedef {ret} (*{a.adapter_type})({', '.join(with_fn)});",
            f"VEK_API {ret} {a.adapter_symbol}({', '.join(with_fn)});"]


def emit_adapter(a: Arg) -> str:
    """Calls the user function with the remaining arguments shifted down by one; adds nothing else."""
    ret, params = callback_signature(a)
    names = ", ".join(p.param for p in a.callback.params)
    return f"{ret} {a.adapter_symbol}({', '.join([f'{a.fn_type} f'] + params)}) {{ return f({names}); }}"


def emit_entry(r: Routine) -> list[str]:
    name = r.name
    params = ", ".join(r.entry_params())
    if not r.ifail:
        call = f"{name}t_({r.worker_call(from_entry=True)})"
        return [f"{r.ret_type()} {name}_({params}) {{ return {call}; }}"]
    out = [f"{r.ret_type()} {name}_({params}) {{",
           f"  char errbuf[{ERRBUF_LENGTH}];",
           "  int64_t ierr;"]
    call = f"{name}t_({r.worker_call(errbuf='errbuf', ierr='&ierr', errbuf_len=str(ERRBUF_LENGTH), from_entry=True)})"
    if r.returns:
        out.append(f"  const {r.ret_type()} value = {call};")
    else:
        out.append(f"  {call};")
    out.append(f"  *ifail = vek::frame::finish_call(*ifail, ierr, errbuf, {c_string(name.upper())}, "
               f"{name}_messages);")
    if r.returns:
        out.append("  return value;")
    out.append("}")
    return out


def emit_messages(r: Routine) -> list[str]:
    rows = [f"    {{{m.ierr}, {m.msgno}, {c_string(chr(10).join(m.records))}}}," for m in r.messages]
    if not rows:
        return [f"constexpr std::span<const vek::frame::Message> {r.name}_messages{{}};"]
    return [f"constexpr vek::frame::Message {r.name}_messages[] = {{", *rows, "};"]


def emit_layers(chapter: Chapter, routines_by_symbol: dict) -> str:
    out = [f"// {HEADER_NOTE}", f"// Chapter {chapter.name}: entry layers, trace wrappers, dispatch stubs.",
           "#include <cstdint>", "#include <span>", f'#include "layers/{chapter.name}.h"', '#include "forwarded.h"', '#include "frame/entry.h"',
           '#include "frame/trace.h"', ""]
    routines = [r for r in chapter.routines if r.kind == "routine"]
    ifail_routines = [r for r in routines if r.ifail]
    if ifail_routines:
        out.append("namespace {")
        for r in ifail_routines:
            out += emit_messages(r)
        out += ["}  // namespace", ""]
    out.append('extern "C" {')
    for r in chapter.routines:
        if r.forwards:
            worker = f"{r.name}n_" if r.kind == "routine" else f"{r.name}_"
            out.append(f"{r.ret_type()} {worker}({', '.join(r.worker_params())}) "
                       f"{{ return {r.forwards}_({r.worker_call()}); }}")
    for r in routines:
        out.append("")
        out += [emit_adapter(a) for a in r.args if a.callback]
        out += emit_entry(r)
        out += emit_trace_wrapper(r)
        out.append(f"{r.ret_type()} {r.name}v_({', '.join(r.worker_params())}) "
                   f"{{ return {r.name}n_({r.worker_call()}); }}")
    for p in chapter.published:
        t = routines_by_symbol[p.target]
        out.append(f"{t.ret_type()} {p.name}_({', '.join(t.worker_params())}) "
                   f"{{ return {p.target}_({t.worker_call()}); }}")
    out.append('}  // extern "C"')
    return "\n".join(out) + "\n"


def prototype(ret: str, symbol: str, params: list[str]) -> str:
    return f"VEK_API {ret} {symbol}({', '.join(params) if params else 'void'});"


def emit_layers_header(ch: Chapter) -> str:
    out = [f"// {HEADER_NOTE}", f"// Prototypes of every layer of the chapter {ch.name} routines, for the library's "
           "own sources:", "// a worker's .cpp includes its chapter's header, so its signature is checked.",
           "#pragma once", '#include "vek.h"', "", '#ifdef __cplusplus', 'extern "C" {', "#endif"]
    for r in ch.routines:
        if r.kind == "internal":
            continue  # in the public header already
        wp = r.worker_params()
        for layer in "tvn":
            out.append(prototype(r.ret_type(), f"{r.name}{layer}_", wp))
    out += ["", "#ifdef __cplusplus", "}", "#endif"]
    return "\n".join(out) + "\n"


def doc_comment(r: Routine) -> list[str]:
    lines = [f"/* {r.name.upper()}: {r.purpose}" if r.purpose else f"/* {r.name.upper()}"]
    for a in r.args:
        length = "" if a.length is None else f"[{a.length}]"
        lines.append(f" *   {a.intent:<5} {a.name:<10} {a.base}{length}")
        if a.callback:
            for p in a.callback.params:
                plen = "" if p.length is None else f"[{p.length}]"
                lines.append(f" *         {a.name}: {p.intent:<5} {p.name:<10} {p.base}{plen}")
    if r.ifail:
        lines.append(" *   inout IFAIL      int")
        for m in r.messages:
            lines.append(f" *   IFAIL = {m.ierr} ({m.msgno}): " + " / ".join(m.records))
    lines.append(" */")
    return lines


def emit_public_header(chapters: list[Chapter], routines_by_symbol: dict) -> str:
    out = [f"/* {HEADER_NOTE} */", "/* The library's routines: included by vek.h. */",
           "#ifndef VEK_ROUTINES_H", "#define VEK_ROUTINES_H", "", "#ifdef __cplusplus", 'extern "C" {',
           "#endif"]
    for ch in chapters:
        out.append(f"\n/* ---- chapter {ch.name} ---- */")
        for r in ch.routines:
            out += doc_comment(r)
            for a in r.args:
                if a.callback:
                    out += emit_callback_types(a)
            if r.kind == "routine":
                out.append(prototype(r.ret_type(), f"{r.name}_", r.entry_params()))
            else:
                out.append(prototype(r.ret_type(), f"{r.name}_", r.worker_params()))
        for p in ch.published:
            t = routines_by_symbol[p.target]
            out.append(prototype(t.ret_type(), f"{p.name}_", t.worker_params()))
    out += ["", "#ifdef __cplusplus", "}", "#endif", "#endif"]
    return "\n".join(out) + "\n"


def exported_symbols(chapters: list[Chapter]) -> list[str]:
    names = []
    for ch in chapters:
        for r in ch.routines:
            names += [a.adapter_symbol for a in r.args if a.callback]
            if r.kind == "routine":
                names += [f"{r.name}{s}_" for s in ("", "t", "v", "n")]
            else:
                names.append(f"{r.name}_")
        names += [f"{p.name}_" for p in ch.published]
    return names


def emit_map(chapters: list[Chapter]) -> str:
    body = "".join(f"    {s};\n" for s in exported_symbols(chapters))
    return f"/* {HEADER_NOTE} */\n{{\n  global:\n{body}  local: *;\n}};\n"


def emit_doc(ch: Chapter) -> str:
    out = [f"# Chapter {ch.name.upper()}", "", f"<!-- {HEADER_NOTE} -->", ""]
    for r in ch.routines:
        if r.kind != "routine":
            continue
        out += [f"## {r.name.upper()}", "", r.purpose, ""]
        result = f"{C_TYPES[r.returns]} " if r.returns else ""
        names = [a.name for a in r.args] + (["IFAIL"] if r.ifail else [])
        out += [f"`{result}{r.name}_({', '.join(names)})`", "", "| argument | intent | type | traced length |",
                "|---|---|---|---|"]
        for a in r.args:
            out.append(f"| {a.name} | {a.intent} | {a.base} | {a.length or ''} |")
        if r.ifail:
            out.append("| IFAIL | inout | int | |")
            out += ["", "| IFAIL | message | records |", "|---|---|---|"]
            for m in r.messages:
                recs = "<br>".join(f"` {x}`" for x in m.records)
                out.append(f"| {m.ierr} | {m.msgno} | {recs} |")
            out += ["| -99 | | ` ** Unexpected error (` ierr `,` msgno `)` |",
                    "| -399 | | the licence-refusal record |",
                    "| -999 | | ` ** Dynamic memory allocation failed.` |"]
        out.append("")
    return "\n".join(out)


def emit_forwarded_header(chapters: list[Chapter]) -> str:
    out = [f"// {HEADER_NOTE}", "// The routines of privately linked dependencies that workers forward to (hidden from users).",
           "#pragma once", '#include "vek.h"', "", 'extern "C" {']
    seen = set()
    for ch in chapters:
        for r in ch.routines:
            if r.forwards and r.forwards not in seen:
                seen.add(r.forwards)
                out.append(f"{r.ret_type()} {r.forwards}_({', '.join(r.worker_params()) or 'void'});")
    out.append('}  // extern "C"')
    return "\n".join(out) + "\n"


def emit_published_table(chapters: list[Chapter]) -> str:
    """Rows {"DGETRF", "F07ADF"}: each published name and its library routine, sorted by published name."""
    pairs = sorted((p.name.upper(), p.target[:5].upper() + "F") for ch in chapters for p in ch.published)
    return f"// {HEADER_NOTE}\n" + "".join(f'{{"{p}", "{l}"}},\n' for p, l in pairs)


def write_if_changed(path: Path, text: str):
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def main(argv=None) -> int:
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--out", required=True, type=Path)
    ap.add_argument("decls", nargs="+", type=Path)
    args = ap.parse_args(argv)
    try:
        chapters = sorted((parse_chapter(p) for p in args.decls), key=lambda c: c.name)
        taken = set()      # every symbol a declaration creates
        targets = {}       # workers and internal routines, by symbol: what a published name may forward to
        for ch in chapters:
            for r in ch.routines:
                check_lengths(r)
                created = [r.name + s for s in ("", "t", "v", "n")] if r.kind == "routine" else [r.name]
                for s in created:
                    if s in taken:
                        raise DeclError(f"{r.where}: {s}_ is declared twice")
                    taken.add(s)
                targets[created[-1]] = r
            for p in ch.published:
                if p.target not in targets:
                    raise DeclError(f"{p.where}: target {p.target} is not a declared worker or internal routine")
                if p.name in taken:
                    raise DeclError(f"{p.where}: {p.name}_ is declared twice")
                taken.add(p.name)
    except DeclError as e:
        print(f"vekgen: {e}", file=sys.stderr)
        return 1
    out = args.out
    for ch in chapters:
        write_if_changed(out / f"{ch.name}_layers.cpp", emit_layers(ch, targets))
        write_if_changed(out / "docs" / f"{ch.name}.md", emit_doc(ch))
        write_if_changed(out / "layers" / f"{ch.name}.h", emit_layers_header(ch))
    write_if_changed(out / "include" / "vek_routines.h", emit_public_header(chapters, targets))
    write_if_changed(out / "vek.map", emit_map(chapters))
    write_if_changed(out / "forwarded.h", emit_forwarded_header(chapters))
    write_if_changed(out / "published_names.inc", emit_published_table(chapters))
    (out / "generated.stamp").write_text("")
    return 0


if __name__ == "__main__":
    sys.exit(main())
