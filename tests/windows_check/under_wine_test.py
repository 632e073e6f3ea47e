#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""under_wine_test.py BUILD: what the zip for a real Windows has in it, in an empty folder and run under Wine.

Some of each kind of test are in it, and three more that fail, vanish and hang: what it tells of them is looked at.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tests")]

from packaging import windows_check  # noqa: E402  (found through the path)

from counting import TOTAL  # noqa: E402

# A program by itself, one of a library, one of dialogs, one that asks for servers that are not there, one of another
# code page, one that is judged by what it says, and one that cannot go along. The watchdog's
# program is borrowed.
CHOSEN = ("unit_support", "dll_test", "dialog_driver_test", "client_real_limits", "unit_two_byte_paths",
          "watchdog_test", "qxftp_help", "library_file_test")
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()


def stamp(program):
    """The time that the linker or another tool has left in a program."""
    content = program.read_bytes()
    header = int.from_bytes(content[0x3C:0x40], "little")
    return content[header + 8 : header + 12]


class UnderWine(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        chosen = f"^({'|'.join(CHOSEN)})$"
        cls.root = windows_check.stage(BUILD, folder.name, chosen)
        cls.list = cls.root / "tests.json"
        cls.listed = json.loads(cls.list.read_text())
        # Without a package of Debian's: a Windows has none of them.
        settings = {name: value for name, value in os.environ.items() if not name.startswith("QX_")}
        command = [sys.executable, "-S", "-E", str(cls.root / "check.py"), "--through", str(ROOT / "tools/wine-runner")]
        cls.add_trouble()
        done = subprocess.run(command, capture_output=True, text=True, check=False, cwd="/",
                              env={**settings, "LOCPATH": str(BUILD / "locale")})
        cls.code, cls.output, cls.report = done.returncode, done.stdout, (cls.root / "report.txt").read_text()
        if done.stderr:
            raise AssertionError(done.stderr)

    @classmethod
    def add_trouble(cls):
        [hanging] = [each for each in cls.listed["tests"] if each["name"] == "watchdog_test"]
        cls.listed["tests"].remove(hanging)
        for name, case, seconds in (("fails", "No.Such", 60), ("crashes", "Ending.Crashes", 60),
                                    ("hangs", "Hanging.InTheMainThread", 3)):
            command = [hanging["command"][-1], f"--gtest_filter={case}"]
            more = {"name": name, "command": command, "python": False, "timeout": seconds}
            cls.listed["tests"].append({**hanging, **more})
        cls.list.write_text(json.dumps(cls.listed))

    def line_of(self, name):
        [line] = [line for line in self.report.splitlines() if line.startswith(f"{name} ")]
        return line

    def test_it_names_nothing_of_this_machine(self):
        self.assertNotIn(str(ROOT), self.list.read_text())

    def test_packing_leaves_no_time_in_programs(self):
        for name in ("bin/ZRM_QXKT32x64.dll", "tests/bin/unit_support.exe"):
            self.assertEqual(stamp(self.root / name), stamp(BUILD / name), name)
            self.assertLess((self.root / name).stat().st_size, (BUILD / name).stat().st_size, name)

    def test_what_passes_here_passes_there(self):
        for name in set(CHOSEN) - {"client_real_limits", "library_file_test", "watchdog_test"}:
            told = self.report.partition(f"\n===== {name} =====\n")[2].partition("\n=====")[0]
            self.assertRegex(self.line_of(name), r" s  [1-9]\d* passed, 0 failed$", told)

    def test_trouble_is_told(self):
        self.assertEqual(self.code, 1)
        for name in ("fails", "crashes", "hangs"):
            self.assertRegex(self.line_of(name), r" s  0 passed, 1 failed$")
        self.assertIn("check: ended after 3 s", self.report)
        told = re.findall(r"^===== (\w+) =====$", self.report, re.M)
        self.assertEqual(sorted(told), ["crashes", "fails", "hangs"])

    def test_real_servers_are_skipped_by_name(self):
        self.assertRegex(self.line_of("client_real_limits"), r", 0 failed, [1-9]\d* skipped$")
        self.assertRegex(self.report, r"skipped \d+: \S+ is not among the servers here\n    client_real_limits \w+")

    def test_what_stays_is_skipped_by_name(self):
        self.assertIn("left out 1: library_file_test (needs x86_64-w64-mingw32-objdump)\n", self.report)

    def test_the_last_line_is_the_sum(self):
        lines = [line.split(" s  ")[1] for line in self.report.splitlines() if " s  " in line]
        sums = [sum(int(TOTAL.match(line)[which] or 0) for line in lines) for which in (1, 2, 3)]
        total = f"{sums[0]} passed, {sums[1]} failed, {sums[2] + 1} skipped"
        self.assertEqual(self.output.splitlines()[-1], total)
        self.assertTrue(self.report.endswith(f"\n{total}\n"))

    def test_the_windows_is_named(self):
        for fact in (r"^Windows: Microsoft Windows \d", r"^code page: \d+$", r"^locale: \w+-\w+$", r"^time zone: \w"):
            with self.subTest(fact):
                self.assertRegex("\n".join(self.report.splitlines()[:12]), f"(?m){fact}")

    def test_nothing_stays_behind(self):
        self.assertEqual(list(self.root.glob("work-*")), [])


if __name__ == "__main__":
    unittest.main()
