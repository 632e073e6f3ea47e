#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The same sources give the same bytes: what the presets that ship have built, beside a second build of the sources in
another folder, at another time, in another time zone and language, and without the compiler's cache.

The second build is kept, so that the next run compiles only what has changed since.
"""

import os
import pathlib
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
ELSEWHERE = ROOT / "build" / "second" / "a folder of another name"
UNUSED = ("tests/", "bench/", "docs/", "bindings/")
MADE = {
    "linux": ["libZRM_QXKT32x64.so.1", "libZRM_QXKT32x64.so.1.debug"],
    "windows-release": ["ZRM_QXKT32x64.dll", "ZRM_QXKT32x64.dll.debug", "ZRM_QXKT32x64.pdb", "ZRM_QXKT32x64.lib",
                        "libZRM_QXKT32x64.dll.a", "qxftp.exe", "qxdialogs.exe"],
}


def source_names():
    command = ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
    names = subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\0")
    return {name for name in names if name and not name.startswith(UNUSED) and (ROOT / name).is_file()}


def mirror_sources():
    """Files that are the same keep their times, so that only those that changed are compiled again."""
    names = source_names()
    for path in [path for path in ELSEWHERE.rglob("*") if path.is_file()]:
        name = path.relative_to(ELSEWHERE)
        if name.parts[0] != "build" and str(name) not in names:
            path.unlink()
    for name in names:
        source, copy = ROOT / name, ELSEWHERE / name
        if not copy.is_file() or copy.read_bytes() != source.read_bytes():
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.write_bytes(source.read_bytes())
        copy.chmod(source.stat().st_mode)


def run(*command):
    environment = dict(os.environ, TZ="Pacific/Auckland", LC_ALL="C.UTF-8", CCACHE_DISABLE="1")
    result = subprocess.run(["nice", *command], cwd=ELSEWHERE, env=environment, check=False, capture_output=True,
                            text=True)
    if result.returncode:
        raise AssertionError(f"{command}:\n{result.stdout}{result.stderr}")


def build_elsewhere(preset):
    run("cmake", "--preset", preset, "-DQX_BUILD_TESTS=OFF", "-DQX_BUILD_BENCH=OFF", "-DQX_CCACHE=")
    run("cmake", "--build", "--preset", preset, "--target", "qx_release")


class SecondBuild(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        mirror_sources()

    def compare(self, preset):
        build_elsewhere(preset)
        first, second = (folder / "build" / preset / "bin" for folder in (ROOT, ELSEWHERE))
        different = [name for name in MADE[preset] if (first / name).read_bytes() != (second / name).read_bytes()]
        self.assertEqual(different, [])

    def test_linux(self):
        self.compare("linux")

    def test_windows(self):
        self.compare("windows-release")


if __name__ == "__main__":
    sys.exit(unittest.main())
