# SPDX-License-Identifier: MIT
"""What of others is linked into the libraries and the hosts, and the paper that says so."""

import functools
import subprocess
from dataclasses import dataclass
from typing import Callable

from .notices import common_licence, notices, passage

WITH_GCC_EXCEPTION = "GPL-3.0-or-later WITH GCC-exception-3.1"


@dataclass(frozen=True)
class Part:
    name: str
    what: str
    packages: tuple[str, ...]  # of Debian, from which the linker takes it; all are of the first one's version
    home: str
    licence: str  # as SPDX writes it
    holder: str
    text: Callable[[], str]

    @functools.cached_property
    def version(self):
        return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", self.packages[0]],
                              check=True, capture_output=True, text=True).stdout


def gcc_text(package):
    return "\n\n".join([
        passage(package, "GCC is Copyright", "Free Software Foundation, Inc."),
        passage(package, "GCC RUNTIME LIBRARY EXCEPTION", "requirements of the license of GCC."),
        common_licence("GPL-3")])


def gcc(what, packages, text_of):
    return Part("GCC run-time libraries", what, packages, "https://gcc.gnu.org/", WITH_GCC_EXCEPTION,
                "Free Software Foundation, Inc.", lambda: gcc_text(text_of))


def mingw_text(prefix, *leave_out):
    return lambda: notices("mingw-w64-common", prefix, ("/include/", *leave_out))


def glibc_text():
    return ("Copyright (C) 1995-2022 Free Software Foundation, Inc.\n\n"
            "In addition to the permissions in the GNU Lesser General Public License, the Free Software Foundation\n"
            "gives unlimited permission to link the compiled version of these files with other programs, and to\n"
            "distribute those programs without any restriction coming from the use of them.\n\n"
            + common_licence("LGPL-2.1"))


PARTS = {
    "windows": (
        gcc("libstdc++, libgcc and libssp", ("gcc-mingw-w64-x86-64-posix", "g++-mingw-w64-x86-64-posix"),
            "gcc-mingw-w64-base"),
        Part("MinGW-w64 C run time", "start-up code, libmingw32, libmingwex and the import libraries of Windows",
             ("mingw-w64-x86-64-dev",), "https://www.mingw-w64.org/", "ZPL-2.1 AND LicenseRef-MinGW-w64-notices",
             "the mingw-w64 project", mingw_text("mingw-w64-crt/", "/profile/", "/getopt.c", "/testcases/")),
        Part("winpthreads", "threads of the C++ library", ("mingw-w64-x86-64-dev",), "https://www.mingw-w64.org/",
             "MIT AND BSD-3-Clause", "the mingw-w64 project",
             mingw_text("mingw-w64-libraries/winpthreads/", "/tests_pthread/")),
    ),
    "linux": (
        gcc("libstdc++ and libgcc", ("libstdc++-12-dev", "libgcc-12-dev"), "gcc-12-base"),
        Part("glibc start-up files", "crti.o, crtn.o and libc_nonshared.a", ("libc6-dev",),
             "https://www.gnu.org/software/libc/", "LGPL-2.1-or-later", "Free Software Foundation, Inc.", glibc_text),
    ),
}

# Headers that the host qxftp is compiled with, on both systems.
HOST = "bin/qxftp"
HOST_PARTS = (
    Part("CLI11", "the command line of the program qxftp", ("libcli11-dev",), "https://github.com/CLIUtils/CLI11",
         "BSD-3-Clause", "University of Cincinnati", lambda: notices("libcli11-dev", "")),
    Part("JSON for Modern C++", "the JSON output of the program qxftp", ("nlohmann-json3-dev",),
         "https://json.nlohmann.me/", "MIT", "Niels Lohmann", lambda: notices("nlohmann-json3-dev", "include/")),
)


def listed(parts):
    lines = []
    for part in parts:
        lines += [f"  {part.name} ({part.what})", f"    {part.licence}", f"    {part.home}",
                  f"    from Debian's {part.packages[0]} {part.version}", ""]
    return lines


def paper(title, system):
    """The text of THIRD-PARTY.txt."""
    parts = PARTS[system]
    lines = [f"{title} has no third-party code of its own. The compiler's run-time libraries are linked into it:", "",
             *listed(parts), "None of them puts conditions on programs that use the library.", "",
             "The program qxftp, which uses it, is compiled with these as well:", "",
             *listed(HOST_PARTS), "Their texts follow."]
    for part in (*parts, *HOST_PARTS):
        lines += ["", "", "=" * 100, f"{part.name}: {part.what}", "=" * 100, "", part.text()]
    return "\n".join(lines) + "\n"
