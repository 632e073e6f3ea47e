#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What tests/run.py counts as passed, failed and skipped, and what it runs by itself."""

import pathlib
import sys
import unittest
import xml.etree.ElementTree as ElementTree

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))

from run import PRESETS, USER, Count, count_entry, count_total, default_runs  # noqa: E402  (found through the path)

SKIPPED = '<skipped message="SKIP_RETURN_CODE=77"/>'


def entry(status, output="", more=""):
    text = f'<testcase name="x" status="{status}">{more}<system-out>{output}</system-out></testcase>'
    return count_entry(ElementTree.fromstring(text))


class Entries(unittest.TestCase):
    def test_a_plain_program_is_one_test(self):
        self.assertEqual(entry("run"), Count(passed=1))
        self.assertEqual(entry("fail"), Count(failed=1))

    def test_cases_count_one_by_one(self):
        self.assertEqual(entry("run", "[  PASSED  ] 12 tests."), Count(passed=12))
        output = "[  PASSED  ] 12 tests.\n[  FAILED  ] 2 tests, listed below:"
        self.assertEqual(entry("fail", output), Count(passed=12, failed=2))

    def test_a_program_that_dies_behind_its_cases_failed(self):
        self.assertEqual(entry("fail", "[  PASSED  ] 12 tests."), Count(passed=12, failed=1))

    def test_a_program_without_a_case_failed(self):
        self.assertEqual(entry("run", "[  PASSED  ] 0 tests."), Count(failed=1))

    def test_what_did_not_run_failed(self):
        self.assertEqual(entry("notrun"), Count(failed=1))
        self.assertEqual(entry("disabled"), Count(failed=1))
        self.assertEqual(entry("notrun", more='<skipped message="Required Files Missing"/>'), Count(failed=1))

    def test_skipped_cases_are_neither_passed_nor_failed(self):
        output = "[  PASSED  ] 12 tests.\n[  SKIPPED ] 3 tests, listed below:"
        self.assertEqual(entry("notrun", output, SKIPPED), Count(passed=12, skipped=3))
        output = "[  PASSED  ] 0 tests.\n[  SKIPPED ] 3 tests, listed below:"
        self.assertEqual(entry("notrun", output, SKIPPED), Count(skipped=3))

    def test_a_plain_program_that_skips_is_skipped(self):
        self.assertEqual(entry("notrun", "OK (skipped=4)", SKIPPED), Count(skipped=1))


class OtherRuns(unittest.TestCase):
    def test_the_last_line_counts(self):
        self.assertEqual(count_total(0, "17 passed, 0 failed"), Count(passed=17))
        self.assertEqual(count_total(1, "17 passed, 2 failed, 3 skipped"), Count(17, 2, 3))
        self.assertEqual(str(Count(17, 2, 3)), "17 passed, 2 failed, 3 skipped")

    def test_a_run_without_a_sum_failed(self):
        self.assertEqual(count_total(0, "setup: needs root for packages; an administrator runs: x"), Count(failed=1))
        self.assertEqual(count_total(1, "17 passed, 0 failed"), Count(passed=17, failed=1))

    def test_root_in_ci_tests_as_an_ordinary_user_too(self):
        self.assertEqual(default_runs(is_root=True, in_ci=True), [PRESETS[0], USER, *PRESETS[1:]])
        for is_root, in_ci in ((True, False), (False, True), (False, False)):
            self.assertEqual(default_runs(is_root, in_ci), PRESETS)


if __name__ == "__main__":
    unittest.main()
