#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""cmake/old_glibc.py: what is linked with its libraries asks for nothing that an older C library lacks."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]

# Each is an undefined reference in a shared object of nothing else.
THREADS = "pthread_create"  # in a library of its own then
LOADER = "dlopen"
COPIES = "memcpy"  # newer than the first C library, older than 2.31
NEW = "arc4random"  # since 2.36
CALLED_BY_NAME = "__xstat"  # since ever, though no header has it any more


class OldGlibc(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.folder = pathlib.Path(scratch.name)
        subprocess.run([ROOT / "cmake/old_glibc.py", "--version", "2.31", "--compiler", "g++", cls.folder], check=True)

    def link(self, name):
        """The headers of a shared object that asks for the name; None where it is not linked."""
        source, made = self.folder / "object.s", self.folder / "object.so"
        source.write_text(f".data\n.quad {name}\n.section .note.GNU-stack\n")
        result = subprocess.run(["g++", "-shared", "-nostartfiles", "-Wl,--no-undefined", f"-L{self.folder}", source,
                                 "-o", made], check=False, capture_output=True, text=True)
        if result.returncode:
            self.assertIn(f"undefined reference to `{name}'", result.stderr)
            return None
        return subprocess.run(["objdump", "-p", "-T", made], check=True, capture_output=True, text=True).stdout

    def assert_asks_for(self, name, version, library):
        headers = self.link(name)
        self.assertRegex(headers, rf"\*UND\*.*GLIBC_{version}\)? {name}\n")
        self.assertRegex(headers, rf"NEEDED +{library}\n")

    def test_a_name_is_asked_for_in_the_form_that_it_had(self):
        self.assert_asks_for(COPIES, "2.14", "libc.so.6")
        self.assert_asks_for(CALLED_BY_NAME, "2.2.5", "libc.so.6")

    def test_threads_and_the_loader_are_found_where_they_were(self):
        self.assert_asks_for(THREADS, "2.2.5", "libpthread.so.0")
        self.assert_asks_for(LOADER, "2.2.5", "libdl.so.2")

    def test_what_came_later_is_not_linked(self):
        self.assertIsNone(self.link(NEW))


if __name__ == "__main__":
    sys.exit(unittest.main())
