# SPDX-License-Identifier: MIT
"""The first line of each source names the licence; in a script it follows the interpreter's line."""

from .sources import all_files

LINES = ("// SPDX-License-Identifier: MIT", "# SPDX-License-Identifier: MIT")
SUFFIXES = (".c", ".cpp", ".h", ".inc", ".py", ".cs", ".pas", ".cmake")


def concerns(file):
    return file.path.suffix in SUFFIXES or file.is_script or file.path.name == "CMakeLists.txt"


def check(files=None):
    findings = []
    for file in files or all_files():
        if not concerns(file) or not file.lines:
            continue
        first = 1 if file.lines[0].startswith("#!") else 0
        if file.lines[first : first + 1] not in ([LINES[0]], [LINES[1]]):
            findings.append(file.finding(first + 1, "no licence line"))
    return findings
