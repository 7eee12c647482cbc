#!/usr/bin/env python3
"""Every failure a body records names a declared message. The typed ErrorBuffer::fail takes only the
generated constants vek::routines::<routine>::<message>; this scan keeps it so: no fail( with a number as
its first argument, and no message constant vek::frame::Msg<...> made anywhere but in frame/error_buffer.h
(its definition) in the library's sources."""
import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SOURCES = ROOT / "src"
NUMBERED_FAIL = re.compile(r"\bfail\s*\(\s*[-+]?\s*(?:\d|\.\d)")
HAND_MADE_MSG = re.compile(r"\bMsg\s*<")
DEFINITION = SOURCES / "frame" / "error_buffer.h"


def offences(pattern: re.Pattern, skip: Path | None = None) -> list[str]:
    out = []
    for path in sorted(SOURCES.rglob("*")):
        if path.suffix not in (".cpp", ".h") or path == skip:
            continue
        for lineno, line in enumerate(path.read_text().splitlines(), 1):
            if pattern.search(line.split("//", 1)[0]):
                out.append(f"{path.relative_to(ROOT)}:{lineno}: {line.strip()}")
    return out


class FailCalls(unittest.TestCase):
    def test_the_patterns_find_what_they_forbid(self):
        for bad in ("err.fail(1, 99999);", "e.fail( -1, n)", "err.fail (3,", "err_.fail(.5)"):
            self.assertRegex(bad, NUMBERED_FAIL)
        for good in ("err.fail(overflow, *x);", "err.fail(R::singular, column)", "err.fail_allocation();",
                     "fail2(1)"):
            self.assertNotRegex(good, NUMBERED_FAIL)
        self.assertRegex("constexpr vek::frame::Msg<IntValue> m{1, 99999};", HAND_MADE_MSG)

    def test_no_failure_is_written_with_a_number(self):
        found = offences(NUMBERED_FAIL)
        self.assertEqual(found, [], "fail() with a number; declare the message and name it:\n" + "\n".join(found))

    def test_no_message_constant_is_made_by_hand(self):
        found = offences(HAND_MADE_MSG, skip=DEFINITION)
        self.assertEqual(found, [], "a message made by hand; declare it in src/exports:\n" + "\n".join(found))


if __name__ == "__main__":
    unittest.main()
