#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""check_code.py CXX CC: the code in the documents is what compilers take.

A block of C or C++ that has a main() is a program; any other is a fragment, which stands in a function that
fragment.cpp and fragment.c show. Blocks of languages that no compiler here knows are parts of files of the tree that
tests build: line by line in the same order, with "..." for what is left out. Blocks that are no code are "text".
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent.parent / "tools"))

from rules import documents, sources  # noqa: E402

INCLUDE = re.compile(r"^#include .*\n", re.M)
MAIN = re.compile(r"^int main\(", re.M)
GAP = re.compile(r"\W*\.\.\.\W*")
# Within a namespace a main() has to say what it returns, and examples name what nobody uses.
WARNINGS = ["-Wall", "-Wextra", "-Werror", "-Wno-return-type", "-Wno-unused"]
COMPILED = {"cpp": (".cpp", ["-std=c++20"]), "c": (".c", ["-std=c99", "-pedantic-errors"])}
EXCERPTS = {"cmake": ("CMakeLists.txt", ".cmake"), "pascal": (".pas", ".lpr"), "csharp": (".cs",)}
CHECKED_ELSEWHERE = {"text", "sh"}  # tools/rules/commands.py looks at commands


def wrapped(block, frame):
    """The includes of a block, and the rest of it in a place where its names are nobody else's."""
    includes = "".join(INCLUDE.findall(block.text))
    place = f'#line {block.line} "{block.file.path}"\n'
    body = place + INCLUDE.sub("\n", block.text)
    if not MAIN.search(block.text):
        body = frame.replace("  // BLOCK", "  {\n" + body + "  }")
    return includes, body


def unit(blocks, language):
    """One text for the compiler. What C has no namespaces for gets names of its own."""
    frame = (HERE / f"fragment.{language}").read_text(encoding="utf-8")
    heads, bodies = "".join(INCLUDE.findall(frame)), ""
    frame = INCLUDE.sub("", frame)
    for number, block in enumerate(blocks):
        includes, body = wrapped(block, frame)
        heads += includes
        if language == "cpp":
            bodies += f"namespace block_{number} {{\n{body}}}\n"
        else:
            for name in ("main", "fragment"):
                bodies += f"#undef {name}\n#define {name} {name}_{number}\n"
            bodies += body
    return heads + bodies


def compile_blocks(compiler, language, blocks):
    """What the compiler says; nothing where it is content."""
    suffix, options = COMPILED[language]
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder) / f"blocks{suffix}"
        source.write_text(unit(blocks, language), encoding="utf-8")
        done = subprocess.run([compiler, *options, *WARNINGS, "-fsyntax-only", f"-I{sources.ROOT / 'include'}", source],
                              capture_output=True, text=True, check=False)
    return done.stderr if done.returncode else ""


def is_part(lines, text):
    """Whether the text has these lines in this order; lines without a gap between them follow each other."""
    there = [line.strip() for line in text.splitlines() if line.strip()]
    parts = "\n".join("\0" if GAP.fullmatch(line) else line for line in lines).split("\0")
    at = 0
    for part in (part.strip("\n").split("\n") for part in parts if part.strip()):
        places = [place for place in range(at, len(there)) if there[place:place + len(part)] == part]
        if not places:
            return False
        at = places[0] + len(part)
    return True


def trouble_with_excerpt(block):
    lines = [line.strip() for line in block.text.splitlines() if line.strip()]
    files = [file for file in sources.all_files() if file.path.name.endswith(EXCERPTS[block.language])]
    if not any(is_part(lines, documents.text_of(file)) for file in files):
        yield block.finding("is no part of a file of the tree")


def trouble_with_python(block):
    try:
        compile(block.text, str(block.file.path), "exec")
    except SyntaxError as error:
        yield block.finding(error.msg, (error.lineno or 1) - 1)


def trouble_with(block):
    if block.language in EXCERPTS and str(block.file.path) != documents.FOLLOWED:
        return trouble_with_excerpt(block)
    if block.language == "python":
        return trouble_with_python(block)
    known = block.language in (*COMPILED, *EXCERPTS) or block.language in CHECKED_ELSEWHERE
    return [] if known else [block.finding(f"'{block.language}' is no language that is checked")]


def main():
    blocks = [block for file in documents.all_documents() for block in documents.blocks_of(file)]
    found = [str(finding) for block in blocks for finding in trouble_with(block)]
    for language, compiler in zip(COMPILED, sys.argv[1:3], strict=True):
        compiled = [block for block in blocks if block.language == language]
        print(f"{len(compiled)} blocks of {language}")
        found += compile_blocks(compiler, language, compiled).splitlines()
    print("\n".join(found))
    return 1 if found or not blocks else 0


if __name__ == "__main__":
    sys.exit(main())
