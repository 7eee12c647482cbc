#!/usr/bin/env python3
"""Message coverage: every declared (routine, IFAIL, message number) is reported at least once through the
exported entries by the test suite. The test programs log the messages they report into a folder of the
build (tests/support/message_log.cpp), one file per process; CTest runs, in this order,

  message_coverage.py reset DIR               before every test program (fixture setup): empties DIR
  message_coverage.py collect DIR             after all of them (fixture cleanup): their union, DIR/reported.txt
  message_coverage.py check DIR PAIRS         compares the union with the declared pairs (gen/message_pairs.txt)

and the check fails listing the pairs never reported."""
import shutil
import sys
from pathlib import Path

UNION = "reported.txt"


def reset(folder: Path) -> int:
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return 0


def collect(folder: Path) -> int:
    lines = set()
    for log in folder.glob("*.log"):
        lines.update(line for line in log.read_text().splitlines() if line.strip())
    (folder / UNION).write_text("".join(line + "\n" for line in sorted(lines)))
    print(f"{len(lines)} distinct messages reported, from {len(list(folder.glob('*.log')))} test processes")
    return 0


def check(folder: Path, pairs: Path) -> int:
    declared = {}
    for line in pairs.read_text().splitlines():
        routine, ierr, msgno, name = line.split()
        declared[(routine, int(ierr), int(msgno))] = name
    union = folder / UNION
    if not union.exists():
        print(f"no {union}: run the whole suite (ctest), whose last tests collect and check the log")
        return 1
    reported = set()
    for line in union.read_text().splitlines():
        routine, ierr, msgno = line.split()
        reported.add((routine, int(ierr), int(msgno)))
    missing = sorted(set(declared) - reported)
    print(f"{len(declared) - len(missing)} of {len(declared)} declared messages reported through the entries")
    if missing:
        print("never reported (add a test that provokes each):")
        for key in missing:
            print(f"  {key[0]} IFAIL = {key[1]} ({key[2]}) {declared[key]}")
        return 1
    return 0


def main(argv: list[str]) -> int:
    if len(argv) == 2 and argv[0] == "reset":
        return reset(Path(argv[1]))
    if len(argv) == 2 and argv[0] == "collect":
        return collect(Path(argv[1]))
    if len(argv) == 3 and argv[0] == "check":
        return check(Path(argv[1]), Path(argv[2]))
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
