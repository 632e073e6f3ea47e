#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""check_code.py finds what is wrong with the code of documents, and nothing else."""

import sys
import unittest
from pathlib import Path
from unittest import mock

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))

import check_code  # noqa: E402
from rules.documents import Block  # noqa: E402
from rules.sources import File  # noqa: E402


def block(language, text):
    return Block(File(Path("docs/probe.md")), 7, language, text)


class Compiled(unittest.TestCase):
    def test_programs_and_fragments_go_together(self):
        program = "#include <cstdio>\n\nint main() { std::puts(name); }\n"
        blocks = [block("cpp", program.replace("name", '"a"')), block("cpp", program.replace("name", '"b"')),
                  block("cpp", 'client.setLogin({.host = "a"});\n'.replace("client", "auto done = client"))]
        self.assertEqual(check_code.compile_blocks("g++", "cpp", blocks), "")

    def test_faults_are_told_by_the_line_of_the_document(self):
        self.assertIn("docs/probe.md:8", check_code.compile_blocks("g++", "cpp", [block("cpp", "\nnonsense();\n")]))
        program = "#include <stdio.h>\n\nint main(void) {\n  nonsense();\n}\n"
        self.assertIn("docs/probe.md:10", check_code.compile_blocks("gcc", "c", [block("c", program)]))

    def test_c_is_of_1999(self):
        self.assertIn("docs/probe.md:7", check_code.compile_blocks("gcc", "c", [block("c", "auto x = nullptr;\n")]))
        programs = [block("c", "int main(void) { return 0; }\n")] * 2 + [block("c", "pClient->m_nPort = 21;\n")] * 2
        self.assertEqual(check_code.compile_blocks("gcc", "c", programs), "")


class Others(unittest.TestCase):
    def found(self, language, text):
        return [finding.text for finding in check_code.trouble_with(block(language, text))]

    def test_python_is_read(self):
        self.assertEqual(self.found("python", "x = 1\n"), [])
        self.assertEqual(len(self.found("python", "x = \n")), 1)

    def test_other_languages_are_parts_of_files(self):
        text = "one\n  two\n\n  three\nfour\n"
        for lines in (["one"], ["two", "three"], ["one", "...", "four"], ["// ...", "three"]):
            self.assertTrue(check_code.is_part(lines, text), lines)
        for lines in (["five"], ["one", "three"], ["three", "two"], ["four", "...", "one"]):
            self.assertFalse(check_code.is_part(lines, text), lines)

    def test_a_part_of_no_file_is_found(self):
        with mock.patch.object(check_code.sources, "all_files", return_value=[File(Path("CMakeLists.txt"))]):
            self.assertEqual(self.found("cmake", "include(Rooms)\n"), [])
            self.assertEqual(len(self.found("cmake", "include(Nothing)\n")), 1)

    def test_a_language_that_nobody_checks_is_found(self):
        self.assertEqual(self.found("text", "anything\n"), [])
        self.assertEqual(len(self.found("cobol", "")), 1)
        self.assertEqual(len(self.found("", "")), 1)


if __name__ == "__main__":
    unittest.main()
