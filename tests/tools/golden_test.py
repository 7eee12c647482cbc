#!/usr/bin/env python3
"""Golden files of the routine generator: what tools/vekgen.py makes of golden/*.decl (one routine of each
kind) must equal golden/expected/, file for file. The build also compiles the expected layers and public
header (extra.cmake), so the golden text is known to be valid C++ and C.

After a deliberate change of the generated code, refresh the expected files and review the difference:
  python3 tests/tools/golden_test.py --refresh && git diff tests/tools/golden/expected
"""
import difflib
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GOLDEN = Path(__file__).resolve().parent / "golden"
EXPECTED = GOLDEN / "expected"
sys.path.insert(0, str(ROOT / "tools"))

import vekgen  # noqa: E402


def generate(out: Path) -> int:
    rc = vekgen.main(["--out", str(out), *(str(p) for p in sorted(GOLDEN.glob("*.decl")))])
    (out / "generated.stamp").unlink(missing_ok=True)  # the build's time stamp, empty
    return rc


def files(folder: Path) -> set[str]:
    return {p.relative_to(folder).as_posix() for p in folder.rglob("*") if p.is_file()}


class GoldenFiles(unittest.TestCase):
    def test_generated_files_equal_the_expected_ones(self):
        with tempfile.TemporaryDirectory() as tmp:
            out = Path(tmp)
            self.assertEqual(generate(out), 0)
            self.assertEqual(files(out), files(EXPECTED), "the generator writes other files than expected/ holds")
            for name in sorted(files(EXPECTED)):
                with self.subTest(file=name):
                    got, want = (out / name).read_text(), (EXPECTED / name).read_text()
                    if got != want:
                        diff = difflib.unified_diff(want.splitlines(), got.splitlines(), f"expected/{name}",
                                                    f"generated/{name}", lineterm="")
                        self.fail("generated text differs (refresh with --refresh if intended):\n" +
                                  "\n".join(list(diff)[:60]))

    def test_generation_is_repeatable(self):
        """A second run over the same output writes nothing new (the build relies on unchanged times)."""
        with tempfile.TemporaryDirectory() as tmp:
            out = Path(tmp)
            self.assertEqual(generate(out), 0)
            times = {name: (out / name).stat().st_mtime_ns for name in files(out)}
            self.assertEqual(generate(out), 0)
            self.assertEqual({name: (out / name).stat().st_mtime_ns for name in files(out)}, times)


def refresh():
    shutil.rmtree(EXPECTED, ignore_errors=True)
    EXPECTED.mkdir(parents=True)
    if generate(EXPECTED) != 0:
        raise SystemExit("golden declarations do not generate")
    print(f"refreshed {len(files(EXPECTED))} files in {EXPECTED.relative_to(ROOT)}")


if __name__ == "__main__":
    if sys.argv[1:] == ["--refresh"]:
        refresh()
    else:
        unittest.main()
