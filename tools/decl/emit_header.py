"""Generated headers: the chapter's layer prototypes with each routine's messages, body and state views (for
the library's own sources), the public header, the forwarded-routine prototypes and the export map."""
from __future__ import annotations

from .emit_layers import HEADER_NOTE
from .model import C_TYPES, Arg, Chapter, Routine


def prototype(ret: str, symbol: str, params: list[str]) -> str:
    return f"VEK_API {ret} {symbol}({', '.join(params) if params else 'void'});"


def emit_state_view(r: Routine, state) -> list[str]:
    """A typed view over a communication array: one accessor per declared field, so that no body writes an
    offset by hand."""
    a = r.arg(state.array)
    elem = ("const " if a.intent == "in" else "") + C_TYPES[a.base]
    cls = f"{a.param}_state"
    out = [f"  // The fields of {a.name}({a.length}), kept by the caller between calls.",
           f"  class {cls} {{", "   public:", f"    explicit {cls}({elem}* base) : base_(base) {{}}"]
    for f in state.fields:
        note = f"  // {f.comment}" if f.comment else ""
        if f.first == f.last:
            out.append(f"    {elem}& {f.name}() const {{ return base_[{f.first - 1}]; }}{note}")
        else:
            n = f.last - f.first + 1
            out.append(f"    std::span<{elem}, {n}> {f.name}() const {{ return std::span<{elem}, {n}>(base_ + "
                       f"{f.first - 1}, {n}); }}{note}")
    out += ["   private:", f"    {elem}* base_;", "  };"]
    return out


def emit_routine_struct(r: Routine) -> list[str]:
    """The routine's C++ face for its body: its messages as typed constants, its state views and the body."""
    out = [f"struct {r.name} {{"]
    for m in r.messages:
        tags = ", ".join(v.tag for v in m.values)
        out.append(f"  static constexpr vek::frame::Msg<{tags}> {m.name}{{{m.ierr}, {m.msgno}}};")
    for s in r.states:
        out += emit_state_view(r, s)
    if r.has_body:
        out.append(f"  static {r.ret_type()} run({', '.join(r.body_params())});")
    out.append("};")
    return out


def emit_layers_header(ch: Chapter) -> str:
    out = [f"// {HEADER_NOTE}", f"// Prototypes of every layer of the chapter {ch.name} routines, for the library's "
           "own sources:", "// a worker's .cpp includes its chapter's header, so its signature is checked.",
           "#pragma once", '#include "vek.h"', "", '#ifdef __cplusplus', 'extern "C" {', "#endif"]
    for r in ch.routines:
        if r.kind == "internal":
            continue  # in the public header already
        for layer in "tvn":
            out.append(prototype(r.ret_type(), f"{r.name}{layer}_", r.worker_params()))
    out += ["", "#ifdef __cplusplus", "}"]
    faces = [r for r in ch.routines if r.kind == "routine" and (r.messages or r.states or r.has_body)]
    if faces:
        out += ["", "#include <span>", '#include "frame/error_buffer.h"', "",
                "// Each routine's messages (err.fail(msg, values...) checks their count and types), state views",
                "// and the hand-written body that its generated worker calls after the declared checks.",
                "namespace vek::routines {"]
        for r in faces:
            out += emit_routine_struct(r)
        out.append("}  // namespace vek::routines")
    out += ["#endif"]
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
        lines.append(" *   inout IFAIL      int" + ("  (two-digit form)" if r.ifail == "two-digit" else ""))
        for m in r.messages:
            lines.append(f" *   IFAIL = {m.ierr} ({m.msgno}): " + " / ".join(m.shown_records()))
    lines.append(" */")
    return lines


def emit_callback_types(a: Arg) -> list[str]:
    ret = C_TYPES[a.callback.returns] if a.callback.returns else "void"
    params = [p.decl() for p in a.callback.params]
    with_fn = [f"{a.fn_type} {Arg.ADAPTER_FN}"] + params
    return [f"typedef {ret} (*{a.fn_type})({', '.join(params) or 'void'});",
            f"typedef {ret} (*{a.adapter_type})({', '.join(with_fn)});",
            f"VEK_API {ret} {a.adapter_symbol}({', '.join(with_fn)});"]


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
            params = r.entry_params() if r.kind == "routine" else r.worker_params()
            out.append(prototype(r.ret_type(), f"{r.name}_", params))
        for p in ch.published:
            t = routines_by_symbol[p.target]
            out.append(prototype(t.ret_type(), f"{p.name}_", t.standard_params()))
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


def emit_forwarded_header(chapters: list[Chapter]) -> str:
    out = [f"// {HEADER_NOTE}", "// The routines of privately linked dependencies that workers forward to (hidden from users).",
           "#pragma once", '#include "vek.h"', "", 'extern "C" {']
    seen = set()
    for ch in chapters:
        for r in ch.routines:
            if r.forwards and r.forwards not in seen:
                seen.add(r.forwards)
                out.append(f"{r.ret_type()} {r.forwards}_({', '.join(r.standard_params()) or 'void'});")
    out.append('}  // extern "C"')
    return "\n".join(out) + "\n"


def emit_published_table(chapters: list[Chapter]) -> str:
    """Rows {"DGETRF", "F07ADF"}: each published name and its library routine, sorted by published name."""
    pairs = sorted((p.name.upper(), p.target[:5].upper() + "F") for ch in chapters for p in ch.published)
    return f"// {HEADER_NOTE}\n" + "".join(f'{{"{p}", "{l}"}},\n' for p, l in pairs)


def emit_message_pairs(chapters: list[Chapter]) -> str:
    """Every declared message of every routine: ROUTINE IFAIL NUMBER NAME, one per line."""
    rows = [f"{r.name.upper()} {m.ierr} {m.msgno} {m.name}" for ch in chapters for r in ch.routines
            for m in r.messages]
    return "".join(row + "\n" for row in rows)
