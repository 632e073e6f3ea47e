# SPDX-License-Identifier: MIT
"""The documents of the tree: their blocks of code, and the prose around those."""

import re
import textwrap
from dataclasses import dataclass

from .sources import ROOT, File

PLACES = ["*.md", "docs/**/*.md", "tests/**/*.md", "bindings/**/*.md", "packaging/**/*.md"]
FOLLOWED = "docs/tutorial.md"  # word by word, by tests/docs/tutorial.py
BLOCK = re.compile(r"^```(?P<language>[^\n`]*)\n(?P<fenced>.*?)^```$"
                   r"|(?<=\n\n)(?P<indented>(?: {4}[^\n]*\n|\n(?= {4}))+)", re.M | re.S)


@dataclass(frozen=True)
class Block:
    file: File
    line: int  # of its first line of code
    language: str
    text: str

    def finding(self, text, line=0):
        return self.file.finding(self.line + line, text)


def all_documents():
    paths = sorted({path for place in PLACES for path in ROOT.glob(place)})
    return [File(path.relative_to(ROOT)) for path in paths]


def text_of(file):
    return "\n".join(file.lines) + "\n"


def blocks_of(file):
    """The code of a document. What is indented has no language of its own: it is commands."""
    text = text_of(file)
    for match in BLOCK.finditer(text):
        kind = "indented" if match["fenced"] is None else "fenced"
        line = text.count("\n", 0, match.start(kind)) + 1
        if kind == "indented":
            yield Block(file, line, "sh", textwrap.dedent(match[kind]))
        else:
            yield Block(file, line, match["language"], match[kind])


def prose_of(file):
    """(number, line) of what is no code."""
    text = BLOCK.sub(lambda match: "\n" * match.group().count("\n"), text_of(file))
    return list(enumerate(text.split("\n"), 1))
