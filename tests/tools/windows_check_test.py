#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What the check for a real Windows takes along, and what it makes of tests that fail, hang or vanish."""

import contextlib
import hashlib
import io
import json
import os
import pathlib
import stat
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / folder) for folder in ("tools", "tests", "tests/fixture", "tests/windows_check")]

import certificates  # noqa: E402  (found through the path)
import rights  # noqa: E402
import windows  # noqa: E402
from counting import skipped_cases  # noqa: E402
from packaging.windows_check import HERE, LeftOut, Packer, kinds_left_out  # noqa: E402

# Stands for Wine: the "programs" are scripts.
RUNNER = '#!/bin/sh\nexec sh "$@"\n'


def ctest_entry(*command, **properties):
    return {"name": "x", "command": list(command),
            "properties": [{"name": name, "value": value} for name, value in properties.items()]}


class Entries(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build")
        self.addCleanup(folder.cleanup)
        self.build = pathlib.Path(folder.name)
        (self.build / "tests/bin").mkdir(parents=True)
        for name in ("a.exe", "b.exe", "stub.dll"):
            (self.build / "tests/bin" / name).touch()
        self.packer = Packer(self.build)
        self.program = str(self.build / "tests/bin/a.exe")

    def test_a_program_goes_with_what_lies_beside_it(self):
        entry = self.packer.entry(ctest_entry(f"{ROOT}/tools/wine-runner", self.program, "--help"))
        self.assertEqual(entry["command"], [f"{HERE}/tests/bin/a.exe", "--help"])
        self.assertFalse(entry["fixture"] or entry["python"] or entry["alone"])
        self.assertLessEqual({"tests/bin/a.exe", "tests/bin/stub.dll"}, self.packer.files.keys())
        self.assertNotIn("tests/bin/b.exe", self.packer.files)

    def test_what_settings_name_goes_along(self):
        settings = [f"QX_SEEDS=Z:{ROOT}/tests/fuzz/corpus/mdtm", "TZ=UTC0", "LOCPATH=/x", "ASAN_OPTIONS=x=1"]
        entry = self.packer.entry(ctest_entry(self.program, ENVIRONMENT=settings))
        self.assertEqual(entry["environment"], {"QX_SEEDS": f"{HERE}/tests/fuzz/corpus/mdtm", "TZ": "UTC0"})
        self.assertTrue(any(name.startswith("tests/fuzz/corpus/mdtm/") for name in self.packer.files))

    def test_how_a_test_runs_is_kept(self):
        entry = self.packer.entry(ctest_entry(f"{ROOT}/tests/fixture/run-with-fixture", "wine-runner", self.program,
                                              RUN_SERIAL=True, TIMEOUT=7.0, SKIP_RETURN_CODE=77))
        kept = [entry[name] for name in ("fixture", "alone", "timeout", "skip_code")]
        self.assertEqual(kept, [True, True, 7.0, 77])

    def test_a_code_page_is_asked_for_by_a_manifest(self):
        self.packer.entry(ctest_entry(self.program, LABELS=["unit", "code-page-932"]))
        self.assertIn(">ja-JP</activeCodePage>", self.packer.texts["tests/bin/a.exe.manifest"])

    def test_what_needs_this_machine_stays(self):
        script = f"{ROOT}/tests/dll/check_library.py"
        for argument, why in (("/usr/bin/objdump", "needs objdump"), (str(ROOT), "needs the sources")):
            with self.assertRaisesRegex(LeftOut, why):
                self.packer.entry(ctest_entry("/usr/bin/python3", script, argument))

    def test_real_servers_stay(self):
        self.assertEqual(kinds_left_out(), ["pyftpdlib", "vsftpd", "proftpd", "pure-ftpd", "inetutils-ftpd",
                                            "microsocks", "tinyproxy"])
        self.assertNotIn("tests/fixture/inetd_servers.py", self.packer.files)
        self.assertIn("tests/fixture/ftp_server.py", self.packer.files)


class Skips(unittest.TestCase):
    def test_each_case_has_its_own_reason(self):
        output = ("[ RUN      ] A.b\nx.cpp:1: Skipped\nnot here\n\n[  SKIPPED ] A.b (0 ms)\n"
                  "[ RUN      ] A.c/1\nx.cpp:2: Skipped\nnot now\n\nmore\n[  SKIPPED ] A.c/1 (2 ms)\n"
                  "[  SKIPPED ] 2 tests, listed below:\n[  SKIPPED ] A.b\n[  SKIPPED ] A.c/1\n")
        self.assertEqual(skipped_cases(output), [("A.b", "not here"), ("A.c/1", "not now")])


class Trust(unittest.TestCase):
    """What is asked of a Windows, which is not here, before its programs meet encrypted servers."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.asked = []

    def given(self, *answers):
        """The settings; the system gives these answers to what it is asked."""
        answers = iter(answers)
        certutil = mock.patch.object(windows, "_certutil", lambda *words: self.asked.append(words) or next(answers))
        with certutil, contextlib.redirect_stdout(io.StringIO()) as self.told:
            with windows.trusted_authority(self.folder) as settings:
                return settings["QX_AUTHORITY"]

    def test_an_administrators_store_is_the_first(self):
        authority = self.given(True, True)
        self.assertEqual([words[:2] for words in self.asked], [("-addstore", "Root"), ("-delstore", "Root")])
        added, removed = self.folder / "authority.cer", self.asked[1][2]
        self.assertEqual(hashlib.sha1(added.read_bytes()).hexdigest(), removed)
        self.assertEqual(authority, str(self.folder / "authority.json"))

    def test_a_user_is_asked_else(self):
        self.given(False, True, True)
        self.assertEqual([words[:3] for words in self.asked[1:]],
                         [("-user", "-addstore", "Root"), ("-user", "-delstore", "Root")])

    def test_who_refuses_tests_nothing_encrypted(self):
        with mock.patch.dict(os.environ, {"QX_AUTHORITY": self.given(False, False)}):
            self.assertRaises(rights.Unavailable, certificates.server_context, "good")
        self.assertEqual(len(self.asked), 2)

    def test_what_stays_is_told(self):
        self.given(True, False)
        self.assertIn("still among the trusted roots", self.told.getvalue())

    def test_the_servers_of_all_programs_show_the_one_that_is_trusted(self):
        authority = self.given(True, True)
        program = "import certificates, sys; certificates.files('good'); print(certificates.fingerprint('authority'))"
        environment = {**os.environ, "QX_AUTHORITY": authority, "QX_FIXTURE_DIR": str(self.folder)}
        told = subprocess.run([sys.executable, "-c", program], env=environment, cwd=ROOT / "tests/fixture",
                              capture_output=True, text=True, check=True).stdout.strip()
        self.assertEqual(told, hashlib.sha256((self.folder / "authority.cer").read_bytes()).hexdigest())
        made = self.folder / "certificates"
        subprocess.run(["openssl", "verify", "-CAfile", made / "authority.pem", made / "good.pem"], check=True,
                       stdout=subprocess.DEVNULL)


class Runs(unittest.TestCase):
    """The shipped runner itself, over scripts."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for name, path in Packer(ROOT / "build").files.items():
            if name.endswith(".py"):
                (self.root / name).parent.mkdir(parents=True, exist_ok=True)
                (self.root / name).write_bytes(path.read_bytes())
        self.runner = self.root / "runner"
        self.runner.write_text(RUNNER)
        self.runner.chmod(stat.S_IRWXU)

    def run_tests(self, scripts, left_out=(), **more):
        """(exit code, last line, report)"""
        entries = []
        for name, script in scripts.items():
            (self.root / f"{name}.exe").write_text(script)
            entries.append({"name": name, "command": [f"{HERE}/{name}.exe"], "python": False, "fixture": False,
                            "timeout": 60, "alone": False, "labels": [], "environment": {}, "skip_code": 77,
                            "expects": None, **more})
        told = {"version": "1", "tests": entries, "left_out": list(left_out), "servers_left_out": ["vsftpd"]}
        (self.root / "tests.json").write_text(json.dumps(told))
        command = [sys.executable, str(self.root / "check.py"), "--through", str(self.runner)]
        done = subprocess.run(command, capture_output=True, text=True, check=False, stdin=subprocess.DEVNULL)
        self.assertEqual(done.stderr, "")
        self.assertEqual(list(self.root.glob("work-*")), [], "something stayed behind")
        return done.returncode, done.stdout.splitlines()[-1], (self.root / "report.txt").read_text()

    def test_cases_and_plain_programs_count(self):
        scripts = {"plain": "exit 0", "cases": "echo '[  PASSED  ] 3 tests.'"}
        said = self.run_tests({"says": "echo all is well; exit 3"}, expects=["^all.*well"])
        self.assertEqual(said[:2], (0, "1 passed, 0 failed"))
        self.assertEqual(self.run_tests(scripts)[:2], (0, "4 passed, 0 failed"))

    def test_a_script_judges_a_program(self):
        judge = "import subprocess, sys; sys.exit(subprocess.check_output(sys.argv[1:]) != b'well\\n')"
        (self.root / "judge.py").write_text(judge)
        more = {"python": True, "command": [f"{HERE}/judge.py", f"{HERE}/judged.exe", "well"]}
        self.assertEqual(self.run_tests({"judged": "echo $1"}, **more)[1], "1 passed, 0 failed")
        self.assertEqual(self.run_tests({"judged": "echo badly"}, **more)[1], "0 passed, 1 failed")

    def test_a_failure_is_in_the_report_with_its_output(self):
        code, total, report = self.run_tests({"good": "echo fine", "bad": "echo the reason; exit 1"})
        self.assertEqual((code, total), (1, "1 passed, 1 failed"))
        self.assertIn("===== bad =====\nthe reason\n", report)
        self.assertNotIn("===== good", report)

    def test_a_program_that_dies_failed(self):
        outcome = self.run_tests({"dies": "echo '[  PASSED  ] 3 tests.'; kill -SEGV $$"})
        self.assertEqual(outcome[1], "3 passed, 1 failed")

    def test_a_program_that_hangs_is_ended_and_failed(self):
        code, total, report = self.run_tests({"hangs": "echo begun; sleep 100 & wait"}, timeout=0.5)
        self.assertEqual((code, total), (1, "0 passed, 1 failed"))
        self.assertIn("begun\n\ncheck: ended after 0.5 s", report)

    def test_what_is_skipped_or_left_out_is_named_and_no_pass(self):
        scripts = {"good": "exit 0", "elsewhere": "echo needs code page 932; exit 77"}
        left_out = [{"name": "reads_sources", "why": "needs the sources"}]
        code, total, report = self.run_tests(scripts, left_out)
        self.assertEqual((code, total), (0, "1 passed, 0 failed, 2 skipped"))
        self.assertIn("skipped 1: needs code page 932\n    elsewhere\n", report)
        self.assertIn("left out 1: reads_sources (needs the sources)\n", report)
        self.assertIn("servers that are not here 1: vsftpd\n", report)

    def test_a_run_of_nothing_failed(self):
        self.assertEqual(self.run_tests({})[:2], (1, "0 passed, 1 failed"))

    def test_a_fixture_runs_beside_the_program(self):
        script = 'test -d "$QX_FIXTURE_DIR" && test "$QX_FIXTURE_PORT" -gt 0 && test "$QX_CODE_PAGE" = 1252'
        outcome = self.run_tests({"served": script}, fixture=True, labels=["code-page-1252"])
        self.assertEqual(outcome[1], "1 passed, 0 failed")

    def test_a_person_is_served(self):
        (self.root / "tests.json").write_text("{}")
        command = [sys.executable, str(self.root / "check.py"), "--through", str(self.runner), "--serve"]
        done = subprocess.run(command, capture_output=True, text=True, check=True, input="\n")
        line = r"^ftp: bin/qxftp.exe --host ftp://u:p@127\.0\.0\.1:\d+ ls /\n"
        self.assertRegex(done.stdout, line)


if __name__ == "__main__":
    unittest.main()
