#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The black-box programs of the preset `windows` on the DLL as it ships, which is compiled and stripped otherwise than
the one that they know."""

import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
DLL = ROOT / "build" / "windows-release" / "bin" / "ZRM_QXKT32x64.dll"
PROGRAMS = ("dll_test", "dll_server_test")


def build():
    """In a run of all presets they are there."""
    for command in (["cmake", "--preset", "windows", "--log-level=WARNING"],
                    ["cmake", "--build", "--preset", "windows", "--target", *PROGRAMS]):
        subprocess.run(command, cwd=ROOT, check=True, stdout=subprocess.DEVNULL)


def run(program):
    environment = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
    environment["QX_LIBRARY"] = f"Z:{DLL}"
    path = ROOT / "build" / "windows" / "tests" / "bin" / f"{program}.exe"
    return subprocess.run([ROOT / "tests/fixture/run-with-fixture", ROOT / "tools/wine-runner", path], env=environment,
                          check=False).returncode


def main():
    build()
    return int(any([run(program) for program in PROGRAMS]))


if __name__ == "__main__":
    sys.exit(main())
