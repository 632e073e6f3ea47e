#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""check_headers.py INCLUDE {C_COMPILER CXX_COMPILER}...: each public header compiles as the first one of a program,
without a warning, in all languages that it is for."""

import pathlib
import re
import subprocess
import sys

from checks import check, exit_code

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wsign-conversion", "-Werror"]
C = ["c99", "c11", "c17", "gnu2x"]
CXX = ["c++11"]  # the newer standard is that of the headers around them
NEWER_CXX = ["c++20"]


def headers_in_c(include):
    """Those that QXTypes.h names as C's."""
    introduction = (include / "QXTypes.h").read_text().partition("#pragma")[0].partition("Conventions")[0]
    return ["QXTypes.h"] + re.findall(r"QX\w+\.h", introduction.partition("C99")[0])


def standards(name, in_c):
    """Of C, and of C++."""
    if name in in_c:
        return C, CXX
    return [], CXX if name == "QXIPInt.h" else NEWER_CXX


def refused(compiler, options, standards_of_it, include, name):
    """The standards in which the header does not compile."""
    source = f'#include "{name}"\n#include "{name}"\nint main(void) {{ return 0; }}\n'
    found = []
    for standard in standards_of_it:
        command = [compiler, "-std=" + standard, "-fsyntax-only", *WARNINGS, *options, "-I", include, "-"]
        done = subprocess.run(command, input=source, text=True, stderr=subprocess.PIPE)
        print(done.stderr, end="")
        found += [standard] if done.returncode else []
    return found


def main():
    include, *compilers = sys.argv[1:]
    in_c = headers_in_c(pathlib.Path(include))
    names = sorted(path.name for path in pathlib.Path(include).glob("*.h"))
    check(set(in_c) < set(names) and len(in_c) > 5, f"the headers of C: {in_c}")
    for c_compiler, cxx_compiler in zip(compilers[::2], compilers[1::2]):
        for name in names:
            c, cxx = standards(name, in_c)
            failed = refused(c_compiler, ["-x", "c", "-Wstrict-prototypes"], c, include, name)
            failed += refused(cxx_compiler, ["-x", "c++", "-Wold-style-cast"], cxx, include, name)
            check(not failed, f"{pathlib.Path(cxx_compiler).name}, {name}: {failed or 'compiles'}")
    return exit_code()


if __name__ == "__main__":
    sys.exit(main())
