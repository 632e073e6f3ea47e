#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The notices name the owner of every file of others that the linker is given for the library, and of the
headers that hosts are made with."""

import pathlib
import re
import shlex
import subprocess
import unittest

from packages import RELEASES, ROOT

from packaging.third_party import HOST_PARTS, PARTS

LIBRARY = {"linux": "bin/libZRM_QXKT32x64.so.1", "windows": "bin/ZRM_QXKT32x64.dll"}


def lines_of(*command, folder=None):
    done = subprocess.run(command, cwd=folder, check=True, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.stdout.splitlines()


def link_command(release):
    """How the build links the library, as words."""
    commands = lines_of("ninja", "-t", "commands", LIBRARY[release.system], folder=release.build_folder)
    (link,) = (part for part in commands[-1].split(" && ") if " -shared " in part)
    return shlex.split(link)


def files_given(release):
    """What the compiler's driver hands to the linker, but the project's own: files of this system."""
    compiler, *rest = link_command(release)
    lines = lines_of(compiler, "-###", *rest, folder=release.build_folder)
    words = next(words for words in map(shlex.split, lines) if words and words[0].endswith("/collect2"))
    libraries = {f"lib{word[2:]}.a" for word in words if word.startswith("-l")}
    found = [lines_of(compiler, f"-print-file-name={library}")[0] for library in sorted(libraries)]
    given = [word for word in words if word.endswith((".a", ".o", ".obj"))]
    return sorted({path.resolve() for path in map(pathlib.Path, found + given) if path.is_absolute()})


def owners(paths):
    return {line.split(":")[0] for line in lines_of("dpkg", "-S", *paths)}


class ThirdParty(unittest.TestCase):
    def check(self, release):
        files = files_given(release)
        self.assertIn("libstdc++.a", {path.name for path in files})
        named = {package for part in PARTS[release.system] for package in part.packages}
        self.assertEqual(owners(files), named)

    def test_headers_of_hosts(self):
        headers = re.findall(r"^qx_header_only\(\S+ (\S+)\)", (ROOT / "hosts/qxftp/CMakeLists.txt").read_text(), re.M)
        self.assertEqual(owners(f"/usr/include/{header}" for header in headers),
                         {package for part in HOST_PARTS for package in part.packages})

    def test_linux(self):
        self.check(RELEASES[0])

    def test_windows(self):
        self.check(RELEASES[1])


if __name__ == "__main__":
    unittest.main()
