# SPDX-License-Identifier: MIT
"""What of a test's output counts as passed, failed and skipped."""

import re
from dataclasses import dataclass

PASSED = re.compile(r"^\[  PASSED  \] (\d+) tests?\.", re.M)
FAILED = re.compile(r"^\[  FAILED  \] (\d+) tests?, listed below", re.M)
SKIPPED = re.compile(r"^\[  SKIPPED \] (\d+) tests?, listed below", re.M)
SKIP_REASON = re.compile(r": Skipped\n(.+)$", re.M)
SKIPPED_CASE = re.compile(r": Skipped\n(.+)\n(?:(?!\[ ).*\n)*\[  SKIPPED \] (\S+) \(", re.M)
TOTAL = re.compile(r"^(\d+) passed, (\d+) failed(?:, (\d+) skipped)?$")


@dataclass
class Count:
    passed: int = 0
    failed: int = 0
    skipped: int = 0

    def __iadd__(self, other):
        self.passed += other.passed
        self.failed += other.failed
        self.skipped += other.skipped
        return self

    def __str__(self):
        skipped = f", {self.skipped} skipped" if self.skipped else ""
        return f"{self.passed} passed, {self.failed} failed{skipped}"


def count_output(output, good, skips):
    """Counts one test: each case of a GoogleTest program, else the test itself. `good`: it ended well, or said by its
    exit code that something is skipped (`skips`)."""
    number = lambda pattern: sum(map(int, pattern.findall(output)))
    if not PASSED.search(output):
        return Count(skipped=1) if skips else Count(passed=int(good), failed=int(not good))
    count = Count(number(PASSED), number(FAILED), number(SKIPPED))
    ran_none = count.passed + count.failed + count.skipped == 0
    if ran_none or (not good and count.failed == 0):
        count.failed += 1
    return count


def skipped_cases(output):
    """(case, reason) of each."""
    return [(case, reason) for reason, case in SKIPPED_CASE.findall(output)]
