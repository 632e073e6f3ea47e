# SPDX-License-Identifier: MIT
"""A function fits a screen, a file has one idea, a line fits the window."""

import json
import subprocess

from .sources import ROOT, File, all_files

FUNCTION_LINES = 80
FILE_LINES = 450
COLUMNS = 120  # clang-format holds code to 110, except a text or a link that has no place to break
SUFFIXES = (".c", ".cpp", ".h", ".py", ".cs", ".pas", ".cmake", ".txt")
ONE_FILE = "bindings"  # a binding is one file, however long, that a host copies


def functions(files):
    """(file, name, first line, last line) of each function, by ctags."""
    by_path = {str(file.path): file for file in files}
    command = ["ctags", "--output-format=json", "--languages=C++", "--langmap=C++:.cpp.h", "--kinds-C++=f",
               "--fields=+ne", "--sort=no", "-o", "-", "-L", "-"]
    output = subprocess.run(command, cwd=ROOT, input="\n".join(by_path), capture_output=True, text=True, check=True)
    for line in output.stdout.splitlines():
        tag = json.loads(line)
        if "end" in tag:
            yield by_path[tag["path"]], tag["name"], tag["line"], tag["end"]


def check_functions(files):
    return [file.finding(first, f"{name} has {last - first + 1} lines, more than {FUNCTION_LINES}")
            for file, name, first, last in functions(files) if last - first + 1 > FUNCTION_LINES]


def check_lines(file):
    findings = [file.finding(number, f"{len(line)} columns, more than {COLUMNS}")
                for number, line in enumerate(file.lines, 1) if len(line) > COLUMNS]
    if len(file.lines) > FILE_LINES and file.room != ONE_FILE:
        findings.append(file.finding(1, f"{len(file.lines)} lines, more than {FILE_LINES}"))
    return findings


def check(files=None):
    files = files or all_files()
    findings = check_functions([file for file in files if file.is_cpp])
    for file in files:
        if file.path.suffix in SUFFIXES or file.is_script:
            findings += check_lines(file)
    return findings
