#!/usr/bin/env python3
"""Writes the hostile-input sweep's routine table (tools/decl/emit_sweep.py) from the chapter declarations.

Run by the build of tests/sweep; the output lives in the build tree only."""
import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

from decl.emit_sweep import emit_sweep  # noqa: E402
from decl.model import DeclError  # noqa: E402
from vekgen import load, write_if_changed  # noqa: E402


def main(argv=None) -> int:
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--out", required=True, type=Path)
    ap.add_argument("decls", nargs="+", type=Path)
    args = ap.parse_args(argv)
    try:
        chapters, _ = load(args.decls)
    except DeclError as e:
        print(f"sweepgen: {e}", file=sys.stderr)
        return 1
    write_if_changed(args.out, emit_sweep(chapters))
    return 0


if __name__ == "__main__":
    sys.exit(main())
