"""The chapter reference: for each routine its purpose, call, arguments, the checks in the order they are
made and the IFAIL table with the exact records, all from the declarations."""
from __future__ import annotations

from .emit_layers import HEADER_NOTE
from .model import C_TYPES, Chapter, Routine


def cell(text: str) -> str:
    return text.replace("|", "\\|")


def checks_table(r: Routine) -> list[str]:
    by_name = {m.name: m for m in r.messages}
    out = ["", "Argument checks, made in this order (the first that fails ends the call):", "",
           "| condition | on failure |", "|---|---|"]
    for c in r.checks:
        words = c.target.split()
        if words[0] == "illegal":
            result = f"illegal-argument report for {words[1].upper()}"
        else:
            m = by_name[words[0]]
            result = f"IFAIL = {m.ierr} ({m.msgno})"
        out.append(f"| `{cell(c.expr)}` | {result} |")
    return out


def routine_doc(r: Routine) -> list[str]:
    out = [f"## {r.name.upper()}", "", r.purpose, ""]
    result = f"{C_TYPES[r.returns]} " if r.returns else ""
    names = [a.name for a in r.args] + (["IFAIL"] if r.ifail else [])
    out += [f"`{result}{r.name}_({', '.join(names)})`", "", "| argument | intent | type | traced length |",
            "|---|---|---|---|"]
    for a in r.args:
        out.append(f"| {a.name} | {a.intent} | {a.base} | {cell(a.length or '')} |")
    if r.ifail:
        out.append("| IFAIL | inout | int | |")
    for a in r.args:
        if a.callback:  # its arguments, which the argument table does not show
            ret = f" returns {a.callback.returns}" if a.callback.returns else ""
            params = ", ".join(f"{p.intent} {p.name} {p.base}{'' if p.length is None else f'[{p.length}]'}"
                               for p in a.callback.params)
            out += ["", f"User function `{a.name}({', '.join(p.name for p in a.callback.params)})`{ret}, called "
                        f"through the adapter `{a.adapter_symbol}`: {params}."]
    if r.flag:
        out += ["", f"Reverse communication: {r.flag} = 0 on return means finished (successfully or with IFAIL "
                    "set: every failure sets it to 0); any other value asks the caller to evaluate and call "
                    f"again. The trace shows only {r.flag} on the intermediate returns."]
    for s in r.states:
        out += ["", f"Communication array {s.array}, kept by the caller between calls:", "",
                "| element | field | meaning |", "|---|---|---|"]
        for f in s.fields:
            where = f"{s.array}({f.first})" if f.first == f.last else f"{s.array}({f.first}:{f.last})"
            out.append(f"| {where} | {f.name} | {cell(f.comment)} |")
    if r.checks:
        out += checks_table(r)
    if r.illegal:
        out += ["", "An illegal argument is reported on the error unit, the routine returning without computing:",
                "", *[f"    {rec}" for rec in r.illegal]]
    if r.ifail:
        form = " (two-digit form: the units digit of IFAIL on entry chooses hard (0) or soft, the tens digit " \
               "silent (0) or printed)" if r.ifail == "two-digit" else ""
        out += ["", f"IFAIL on exit{form}:", "", "| IFAIL | message | records |", "|---|---|---|"]
        for m in r.messages:
            recs = "<br>".join(f"` {cell(x)}`" for x in m.shown_records())
            out.append(f"| {m.ierr} | {m.msgno} | {recs} |")
        out += ["| -99 | | ` ** Unexpected error (` ierr `,` msgno `)` |",
                "| -399 | | the licence-refusal record |",
                "| -999 | | ` ** Dynamic memory allocation failed.` |"]
    out.append("")
    return out


def emit_doc(ch: Chapter) -> str:
    out = [f"# Chapter {ch.name.upper()}", "", f"<!-- {HEADER_NOTE} -->", ""]
    for r in ch.routines:
        if r.kind == "routine":
            out += routine_doc(r)
    return "\n".join(out)
