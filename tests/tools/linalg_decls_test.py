#!/usr/bin/env python3
"""The committed declarations src/exports/f06.decl, f07.decl and f08.decl are what tools/linalg_import.py
makes of src/linalg/published_names.txt, lapack.h and the LAPACK manual pages now: the import is run into OUT (a folder of the build
tree) and each file compared with the committed one.
  linalg_decls_test.py OUT"""
import difflib
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
CHAPTERS = ("f06", "f07", "f08")


def main(out: Path) -> int:
    run = subprocess.run([sys.executable, str(ROOT / "tools/linalg_import.py"), "--out", str(out)],
                         capture_output=True, text=True)
    if run.returncode != 0:
        print(run.stdout + run.stderr)
        return 1
    stale = []
    for chapter in CHAPTERS:
        committed, fresh = ROOT / "src/exports" / f"{chapter}.decl", out / f"{chapter}.decl"
        if committed.read_text() != fresh.read_text():
            stale.append(committed.relative_to(ROOT).as_posix())
            diff = difflib.unified_diff(committed.read_text().splitlines(), fresh.read_text().splitlines(),
                                        f"committed {chapter}.decl", f"imported {chapter}.decl", lineterm="")
            print("\n".join(list(diff)[:40]))
    if stale:
        verb = "differs" if len(stale) == 1 else "differ"
        print(f"stale: {', '.join(stale)} {verb} from what tools/linalg_import.py makes of "
              "src/linalg/published_names.txt and lapack.h: run python3 tools/linalg_import.py and commit the result")
        return 1
    print(f"{', '.join(f'{c}.decl' for c in CHAPTERS)} are current")
    return 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        raise SystemExit(__doc__)
    sys.exit(main(Path(sys.argv[1])))
