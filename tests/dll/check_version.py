#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""One version everywhere: that of the public header. Looks at those of the project, of the library and of qxftp."""

import argparse
import pathlib
import re
import subprocess
import sys

from checks import check, exit_code


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def header_version(path):
    text = path.read_text()
    return ".".join(re.search(rf"^#define QXIP_VERSION_{part} (\d+)$", text, re.M)[1]
                    for part in ("MAJOR", "MINOR", "PATCH"))


def check_resources(text, version):
    numbers = re.findall(r"^\s*(FILE|PRODUCT)VERSION\s+([\d, ]+)", text, re.M)
    check(len(numbers) == 2, "the resources have the versions of file and product")
    for name, found in numbers:
        check(re.split(r", ?", found.strip()) == [*version.split("."), "0"], f"{name} version: {found}")
    texts = re.findall(r'VALUE "(\w+Version)", "([^"\\]*)', text)
    check(sorted(texts) == [("FileVersion", version), ("ProductVersion", version)], f"version texts: {texts}")
    check(f'name="ZRM_QXKT32x64" version="{version}.0"' in text.replace('""', '"').replace('\\"', '"'),
          "version of the manifest")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("header", type=pathlib.Path)
    parser.add_argument("library", type=pathlib.Path)
    parser.add_argument("--project", required=True, help="what CMake takes the project's for")
    parser.add_argument("--windres", help="reads a DLL's resources")
    parser.add_argument("--host", nargs="+", help="how to call qxftp")
    arguments = parser.parse_args()

    version = header_version(arguments.header)
    check(re.fullmatch(r"\d+\.\d+\.\d+", version), f"version of the header: {version}")
    check(arguments.project == version, f"version of the project: {arguments.project}")
    if arguments.host:
        said = run(*arguments.host, "--version").strip()
        check(said == f"qxftp {version}", f"the host says: {said}")
    if arguments.windres:
        check_resources(run(arguments.windres, "-J", "coff", "-O", "rc", arguments.library), version)
    else:
        name = arguments.library.name
        check(name.endswith(".so." + version.partition(".")[0]), f"number in the library's name: {name}")
    return exit_code()


if __name__ == "__main__":
    sys.exit(main())
