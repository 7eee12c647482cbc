#!/usr/bin/env python3
"""Routine generator: turns the chapter declarations (src/exports/*.decl) into the routine layers.

For every declared routine it writes the entry layer, the trace wrapper and the dispatch stub, the message
table, the generated worker of a routine with a body (licence gate and declared checks), the C prototypes of
all layers with each routine's typed messages (the workers' .cpp files include them, so a worker's signature
and every err.fail are checked against the declaration), the public header, the linker export map, the list
of message pairs and the chapter reference; for each options block, its keyword tables, store view, start
rules and listing (tools/decl/options.py). The declaration language is described in docs/declarations.md.
"""
import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

from decl import option_emit  # noqa: E402
from decl.emit_docs import emit_doc  # noqa: E402
from decl.emit_header import (emit_forwarded_header, emit_layers_header, emit_map, emit_message_pairs,  # noqa: E402
                              emit_public_header, emit_published_table)
from decl.emit_layers import emit_layers  # noqa: E402
from decl.model import DeclError  # noqa: E402
from decl.parse import parse_chapter  # noqa: E402
from decl.resolve import resolve  # noqa: E402


def write_if_changed(path: Path, text: str):
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def load(paths: list[Path]):
    """The chapters, resolved, and every worker or internal routine by symbol (what a published name may
    forward to)."""
    chapters = sorted((parse_chapter(p) for p in paths), key=lambda c: c.name)
    resolve(chapters)
    taken, targets = set(), {}
    for ch in chapters:
        for r in ch.routines:
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
    option_sets = [s for ch in chapters for s in ch.options]
    for k, s in enumerate(option_sets):
        if any(o.name == s.name for o in option_sets[:k]):
            raise DeclError(f"{s.where}: options {s.name} is declared twice")
    return chapters, targets


def main(argv=None) -> int:
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--out", required=True, type=Path)
    ap.add_argument("decls", nargs="+", type=Path)
    args = ap.parse_args(argv)
    try:
        chapters, targets = load(args.decls)
    except DeclError as e:
        print(f"vekgen: {e}", file=sys.stderr)
        return 1
    out = args.out
    for ch in chapters:
        write_if_changed(out / f"{ch.name}_layers.cpp", emit_layers(ch, targets) + option_emit.emit_source(ch.options))
        write_if_changed(out / "docs" / f"{ch.name}.md", emit_doc(ch) + option_emit.emit_doc(ch.options))
        write_if_changed(out / "layers" / f"{ch.name}.h", emit_layers_header(ch) + option_emit.emit_header(ch.options))
    write_if_changed(out / "include" / "vek_routines.h", emit_public_header(chapters, targets))
    write_if_changed(out / "vek.map", emit_map(chapters))
    write_if_changed(out / "forwarded.h", emit_forwarded_header(chapters))
    write_if_changed(out / "published_names.inc", emit_published_table(chapters))
    write_if_changed(out / "message_pairs.txt", emit_message_pairs(chapters))
    (out / "generated.stamp").write_text("")
    return 0


if __name__ == "__main__":
    sys.exit(main())
