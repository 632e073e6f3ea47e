# SPDX-License-Identifier: MIT
"""The files of the tree and their code without comments and texts."""

import re
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
CORPUS = "tests/fuzz/corpus"  # data of any form
FOLDERS = ["include", "module", "Src", "dialogs", "support", "framework", "tests", "bench", "bindings", "examples",
           "hosts", "tools", "cmake", "docs", "packaging"]

# A comment, a raw text, a text or a character, whatever comes first.
NOT_CODE = re.compile(
    r"""//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])*'""", re.S)


@dataclass(frozen=True)
class Finding:
    path: str
    line: int
    text: str

    def __str__(self):
        return f"{self.path}:{self.line}: {self.text}"


@dataclass(frozen=True)
class File:
    path: Path  # below the root

    @property
    def room(self):
        return self.path.parts[0]

    @property
    def is_cpp(self):
        return self.path.suffix in (".c", ".cpp", ".h")

    @property
    def is_script(self):
        """A program or a sourced file without a suffix."""
        return not self.path.suffix and not self.path.name.isupper()

    @cached_property
    def lines(self):
        return (ROOT / self.path).read_text(encoding="utf-8").splitlines()

    @cached_property
    def code(self):
        """The lines with comments and texts blanked."""
        return NOT_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), "\n".join(self.lines)).split("\n")

    def finding(self, line, text):
        return Finding(str(self.path), line, text)


def all_files():
    paths = [path for folder in FOLDERS for path in sorted((ROOT / folder).rglob("*"))]
    paths += [ROOT / "CMakeLists.txt", ROOT / ".ci/run"]
    files = [File(path.relative_to(ROOT)) for path in paths if path.is_file() and "__pycache__" not in path.parts]
    return [file for file in files if not file.path.is_relative_to(CORPUS)]
