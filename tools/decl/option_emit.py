"""The C++ and the reference section of the options blocks (tools/decl/options.py)."""
from __future__ import annotations

from .option_expr import cpp_string
from .options import OptionSet

# -- emitted C++ ----------------------------------------------------------------------------------------------
def second_code(s: OptionSet, second: str) -> str:
    if second.startswith("*"):
        return {"*any": "vek::optim::kAnySecond", "*blank": "vek::optim::kBlankSecond",
                "*number": "vek::optim::kNumberSecond"}[second]
    return str([w for w, _ in s.seconds].index(second) + 1)


def keyword_index(s: OptionSet, word: str) -> int:
    return [w for w, _ in s.keywords].index(word) + 1


def emit_header_block(s: OptionSet) -> list[str]:
    ns = f"vek::optim::{s.name}"
    out = ["", f"// Options {s.name}: {s.purpose}", f"namespace {ns} {{", "",
           "// What the solver supplies at start (the start rules and the listing use them)."]
    out.append("struct Inputs {")
    for i in s.inputs:
        out.append(f"  {'int64_t' if i.type == 'int' else 'double'} {i.name};" + (f"  // {i.comment}" if i.comment else ""))
    out += ["};", "", "// The named parameters: a view over the family's save areas.",
            "class Store : public vek::optim::Areas {", " public:", "  using Areas::Areas;"]
    for p in s.params:
        ctype, accessor = ("int64_t", "iwsav") if p.type == "int" else ("double", "rwsav")
        keys = "; ".join(" ".join(x for x in (k.main, k.second, k.doc) if x) + (f" = {k.constant}" if k.constant else "")
                         for k in p.keys)
        out.append(f"  {ctype}& {p.name}() const {{ return {accessor}({p.element}); }}  // {p.comment}"
                   f"{'; ' if p.comment else ''}{keys}")
    out += ["};", "", "// The keyword table and the second-keyword table, sorted; an alias names its target.",
            "inline constexpr vek::optim::Keyword keywords[] = {"]
    out += [f"    {{{cpp_string(w)}, {cpp_string(t)}}}," for w, t in s.keywords]
    out += ["};", "inline constexpr vek::optim::Keyword seconds[] = {"]
    out += [f"    {{{cpp_string(w)}, {cpp_string(t)}}}," for w, t in s.seconds]
    out += ["};", "// What each keyword stores, grouped by keyword: named second keywords, a number, nothing, anything.",
            "inline constexpr vek::optim::Case cases[] = {"]
    for c in s.cases:
        fields = [str(keyword_index(s, c.keyword)), second_code(s, c.second), f"vek::optim::Action::{c.action}"]
        if c.param is not None:
            fields.append(str(c.param.element))
            if c.constant is not None:
                fields += ["true", c.constant if c.param.type == "real" else f"{c.constant}.0"]
        note = c.keyword + ("" if c.second.startswith("*") else " " + c.second) + \
            (f" ({c.second[1:]})" if c.second in ("*blank", "*number") else "") + \
            (f": {c.param.name}" if c.param else "")
        out.append(f"    {{{', '.join(fields)}}},  // {note}")
    out += ["};", "inline constexpr vek::optim::Family family{keywords, seconds, cases};", "",
            "// Replaces, in the store given (the solver's copy), every unset or out-of-range parameter by its default.",
            "void apply_defaults(Store s, const Inputs& in);",
            "// The listing of the parameters in force, one record at a time." if s.title else None,
            "void list_parameters(Store s, const Inputs& in, const vek::optim::RecordSink& sink);" if s.title else None,
            f"}}  // namespace {ns}"]
    return [x for x in out if x is not None]


def emit_header(options: list[OptionSet]) -> str:
    if not options:
        return ""
    out = ["", "#ifdef __cplusplus", "#include \"optim/option_family.h\"", "#include \"optim/option_store.h\""]
    for s in options:
        out += emit_header_block(s)
    out.append("#endif")
    return "\n".join(out) + "\n"


def emit_source(options: list[OptionSet]) -> str:
    if not options:
        return ""
    out = ["", "// Start rules and parameter listings of the chapter's option sets.", "#include <cmath>",
           "#include \"optim/option_listing.h\""]
    for s in options:
        ns = f"vek::optim::{s.name}"
        unused = "" if any("in." in x for x in s.defaults_cpp) else "[[maybe_unused]] "
        out += ["", f"void {ns}::apply_defaults(Store s, {unused}const Inputs& in) {{", *s.defaults_cpp, "}"]
        if s.title:
            unused = "" if any("in." in x for x in s.listing_cpp) else "[[maybe_unused]] "
            out += [f"void {ns}::list_parameters(Store s, {unused}const Inputs& in, const vek::optim::RecordSink& sink) {{",
                    *s.listing_cpp, "}"]
    return "\n".join(out) + "\n"


# -- the reference --------------------------------------------------------------------------------------------
def cell(text: str) -> str:
    return text.replace("|", "\\|")


def emit_doc(options: list[OptionSet]) -> str:
    out = []
    for s in options:
        out += ["", f"## Optional parameters `{s.name}`", "", s.purpose, "",
                "Keywords in table order. Any unambiguous prefix is accepted; the value is the first number after "
                "the keyword; words in parentheses may be written and are ignored.", "",
                "| keyword | second keyword | sets |", "|---|---|---|"]
        for word, target in s.keywords:
            if target:
                out.append(f"| `{word}` | | synonym of `{target}` |")
                continue
            for c in (c for c in s.cases if c.keyword == word):
                if c.param is None:
                    action = next(a for a in s.actions if a.word == word)
                    out.append(f"| `{word}` | | {cell(action.comment or action.kind)} |")
                    continue
                second = {"*any": "", "*blank": "(nothing)", "*number": "(a number)"}.get(c.second, f"`{c.second}`")
                sets = f"`{c.param.name}`" + (f" = {c.constant}" if c.constant is not None else "")
                out.append(f"| `{word}` | {cell(f'{second} {c.doc}'.strip())} | {sets} |")
        seconds = ", ".join(f"`{w}`" + (f" (= `{t}`)" if t else "") for w, t in s.seconds)
        out += ["", f"Second keywords: {seconds}.", "",
                "Parameters, in the order the solver gives them their defaults at start (a parameter is unset "
                "while it holds -11111):", "", "| parameter | element | meaning | default at solver start |",
                "|---|---|---|---|"]
        for p in s.params:
            rule = ""
            if p.rule:
                rule = f"`{p.rule.value}`" + (f" {'unless' if p.rule.negate else 'if'} `{p.rule.cond}`"
                                              if p.rule.cond else " always")
            out.append(f"| `{p.name}` | {p.place} | {cell(p.comment)} | {cell(rule)} |")
        if s.inputs:
            inputs = ", ".join(f"`{i.name}` ({i.comment})" if i.comment else f"`{i.name}`" for i in s.inputs)
            out += ["", f"Supplied by the solver at start: {inputs}; `eps` is the machine precision."]
    return "\n".join(out) + ("\n" if out else "")
