# SPDX-License-Identifier: MIT
"""The commands that documents tell people to type exist: tools, their options, presets, targets and packages."""

import json
import re
import shlex
from functools import cache

from . import documents, sources

TREE = "tools/"
SPAN = re.compile(r"`(tools/[\w-]+(?: [^`]*)?)`")
OPTION = re.compile(r"--[a-z][\w-]*")
# Where one command ends and the next begins, in the notation of usages as well.
BETWEEN = ("&&", "||", ";", "&", "|")
PRESET = re.compile(r"--preset (\S+)|\bbuild/([\w-]+)/")
TARGET = re.compile(r"--target (\S+)|/bin/([\w-]+)")
# What is not of this tree.
SYSTEM = {"apt-get", "cat", "cd", "cmake", "cp", "ctest", "dpkg-deb", "echo", "export", "fpc", "grep", "head", "ldd",
          "ls", "mcs", "mkdir", "mono", "openssl", "pkg-config", "python3", "rm", "sha256sum", "tar", "timeout",
          "unzip", "wine"}


@cache
def text_of(path):
    """A tool's text, with that of the program that it ends in."""
    text = (sources.ROOT / path).read_text(encoding="utf-8")
    following = re.search(r"^exec (\S+/\S+\.py)", text, re.M)
    return text + (text_of(following[1]) if following else "")


@cache
def presets():
    made = json.loads((sources.ROOT / "CMakePresets.json").read_text(encoding="utf-8"))
    return {preset["name"] for preset in made["configurePresets"]}


@cache
def targets():
    text = "".join((sources.ROOT / file.path).read_text(encoding="utf-8") for file in sources.all_files()
                   if file.path.name == "CMakeLists.txt")
    return set(re.findall(r"(?:add_executable|add_library|qx_test|qx_example)\(\s*(?:NAME )?([\w-]+)", text))


def trouble_with_tool(words):
    path = sources.ROOT / words[0]
    if not path.is_file() or not path.stat().st_mode & 0o100:
        return [f"{words[0]} is no tool"]
    known = OPTION.findall(text_of(words[0]))
    return [f"{words[0]} has no {option}" for option in OPTION.findall(" ".join(words)) if option not in known]


def trouble_with_command(words):
    if words[0].startswith(TREE):
        return trouble_with_tool(words)
    return [] if words[0] in SYSTEM else [f"{words[0]} is no command"]


def commands_in(line):
    """The words of each command of a line."""
    words = shlex.shlex(line.replace("\\|", "|"), posix=True, punctuation_chars=True)
    words.whitespace_split = True
    command = []
    for word in [*words, ";"]:
        if word not in BETWEEN:
            command.append(word)
        elif command:
            yield command
            command = []


def named(pattern, line):
    """What one of the groups of the pattern has found."""
    return ["".join(found) for found in pattern.findall(line)]


def check_line(line):
    found = [text for words in commands_in(line) for text in trouble_with_command(words)]
    line = " ".join(line.split(" # ")[0].split())
    found += [f"{preset} is no preset" for preset in named(PRESET, line) if preset not in presets()]
    found += [f"{target} is no target" for target in named(TARGET, line) if target not in targets()]
    return found


def check(files=None):
    found = []
    for file in files or documents.all_documents():
        for block in documents.blocks_of(file):
            if block.language == "sh" and str(file.path) != documents.FOLLOWED:
                lines = enumerate(block.text.splitlines())
                found += [block.finding(text, at) for at, line in lines for text in check_line(line)]
        for number, line in documents.prose_of(file):
            found += [file.finding(number, text) for span in SPAN.findall(line) for text in check_line(span)]
    return found
