#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The rules of documents find links, names and commands that lead nowhere."""

import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent.parent / "tools"))

from rules import commands, documents, links  # noqa: E402
from rules.sources import File  # noqa: E402


class Page(File):
    """A document that exists only here."""

    def __init__(self, text):
        super().__init__(Path("docs/probe.md"))
        self.__dict__["lines"] = text.split("\n")


def findings(rule, text):
    return [finding.text for finding in rule.check([Page(text)])]


class Blocks(unittest.TestCase):
    PAGE = "a\n\n    make\n\n    test\n\nb\n\n```c\n  int x;\n\n    y\n```\nc\n    no code\n"

    def test_fenced_and_indented_code_is_read(self):
        blocks = [(block.line, block.language, block.text) for block in documents.blocks_of(Page(self.PAGE))]
        self.assertEqual(blocks, [(3, "sh", "make\n\ntest\n"), (10, "c", "  int x;\n\n    y\n")])

    def test_prose_keeps_its_lines(self):
        lines = [(number, line) for number, line in documents.prose_of(Page(self.PAGE)) if line]
        self.assertEqual(lines, [(1, "a"), (7, "b"), (14, "c"), (15, "    no code")])


class Links(unittest.TestCase):
    def assert_fine(self, text):
        self.assertEqual(findings(links, text), [], text)

    def assert_refused(self, text, count=1):
        self.assertEqual(len(findings(links, text)), count, text)

    def test_files_that_are_linked_are_there(self):
        self.assert_fine("[a](guide.md) ![b](pictures/pick.png) [c](https://example.org/x) [d](../examples/qxdialogs)")
        self.assert_refused("[a](none.md)")
        self.assert_refused("![a](none.png) and [b](README.md)", 2)
        self.assert_refused("[a](../../elsewhere.md)")
        self.assert_fine("`[a](none.md)`")
        self.assert_fine("```text\n[a](none.md)\n```")

    def test_pages_link_what_a_package_has(self):
        self.assert_refused("[a](../README.md)")
        self.assert_refused("[a](../tests/fixture/README.md)")

    def test_headings_that_are_linked_are_there(self):
        self.assert_fine("# One `two`: three\n[a](#one-two-three)")
        self.assert_fine("# Same\n# Same\n[a](#same-1)")
        self.assert_fine("[a](security.md#what-is-checked)")
        self.assert_refused("# One\n[a](#two)")
        self.assert_refused("```text\n# One\n```\n[a](#one)")
        self.assert_refused("[a](security.md#what-is-not)")

    def test_files_that_are_named_are_there(self):
        self.assert_fine("`include/QXHooks.h`, `internet/net/Dialer.h`, `net/Dialer.h`, `bin/any.dll`")
        self.assert_refused("`include/QXNone.h`, `et/Dialer.h`", 2)


class Commands(unittest.TestCase):
    def assert_fine(self, line):
        self.assertEqual(findings(commands, f"```sh\n{line}\n```"), [], line)

    def assert_refused(self, line):
        self.assertEqual(len(findings(commands, f"```sh\n{line}\n```")), 1, line)

    def test_tools_and_their_options(self):
        self.assert_fine("tools/test linux -- -R ftp    # --that-is-a-comment")
        self.assert_fine("tools/bench --work listing && tools/check --fix | head")
        self.assert_refused("tools/none")
        self.assert_refused("tools/bench --listing")
        self.assert_refused("cd tools && tools/check --none")
        self.assert_refused("frobnicate")

    def test_presets_and_targets(self):
        self.assert_fine("cmake --preset linux && cmake --build --preset linux --target qxbench")
        self.assert_fine("tools/wine-runner build/windows/bin/qxftp.exe ls")
        self.assert_refused("cmake --preset none")
        self.assert_refused("ctest --preset none")
        self.assert_refused("cmake --build --preset linux --target none")
        self.assert_refused("tools/wine-runner build/windows/bin/none.exe")
        self.assert_refused("tools/wine-runner build/none/bin/qxftp.exe")

    def test_commands_in_prose(self):
        self.assertEqual(findings(commands, "`tools/bench [--work WORK]` of `tools/rules/links.py`"), [])
        self.assertEqual(len(findings(commands, "`tools/bench --none`")), 1)
        self.assertEqual(findings(commands, "- a list that\n    tools/none\n"), [], "goes on")
        self.assertEqual(len(findings(commands, "\n\n    tools/none\n")), 1)


if __name__ == "__main__":
    unittest.main()
