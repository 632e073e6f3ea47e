#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What qxftp says of itself: the page in docs/, the manual page and the completion of bash are those of its options."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent.parent
PROGRAM = sys.argv.pop(1)


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=False, **options)


def written(what):
    return run(PROGRAM, f"--write-{what}").stdout


class Texts(unittest.TestCase):
    def test_page_in_docs_is_current(self):
        page = (ROOT / "docs/qxftp.md").read_text()
        self.assertEqual(page, written("page"), "qxftp --write-page > docs/qxftp.md")

    def test_manual_page_is_in_order(self):
        done = run("mandoc", "-T", "lint", "-W", "style", input=written("manual"))
        # A date would change what the same sources make.
        findings = [line for line in done.stdout.splitlines() if "missing date" not in line]
        self.assertEqual(findings, [])

    def test_manual_page_and_help_name_every_command(self):
        manual = run("mandoc", "-T", "ascii", "-O", "width=200", input=written("manual")).stdout
        shown = re.sub(".\x08", "", manual)
        for line in run(PROGRAM, "--help").stdout.split("Subcommands:\n")[1].split("\n\n")[0].splitlines():
            name = line.split()[0].rstrip(",")
            self.assertRegex(shown, rf"(?m)^   {name}$")
            self.assertIn("Example: qxftp", run(PROGRAM, name, "--help").stdout)


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.file = pathlib.Path(cls.folder.name) / "qxftp"
        cls.file.write_text(written("completion"))

    def complete(self, *words):
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _qxftp;'
                  ' printf "%s\\n" "${COMPREPLY[@]}"')
        done = run("bash", "--norc", "-euc", script, "bash", self.file, "qxftp", *words)
        self.assertEqual(done.stderr, "")
        return done.stdout.split()

    def test_commands(self):
        self.assertEqual(self.complete("re"), ["read", "rename"])
        self.assertIn("ls", self.complete(""))

    def test_commands_behind_options(self):
        self.assertEqual(self.complete("--json", "isd"), ["isdir"])
        self.assertEqual(self.complete("--host", "ls", "isd"), ["isdir"])

    def test_options(self):
        self.assertEqual(self.complete("--ver"), ["--version", "--verbose"])
        self.assertEqual(self.complete("ls", "--na"), ["--names"])
        self.assertEqual(self.complete("rm", "--na"), [])

    def test_other_words_are_files(self):
        self.assertEqual(self.complete("write", ""), [])
        self.assertEqual(self.complete("--netrc", ""), [])


if __name__ == "__main__":
    unittest.main()
