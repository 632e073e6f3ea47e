# SPDX-License-Identifier: MIT
"""The packages that tools/package made, as somebody who fetched them has them: unpacked, somewhere."""

import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tarfile
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
CONSUMER = pathlib.Path(__file__).resolve().parent / "consumer"
MADE = ROOT / "build/package"
RUNNER = str(ROOT / "tools/wine-runner")

sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))
sys.path.insert(0, str(ROOT / "examples"))

from packaging.releases import RELEASES  # noqa: E402,F401  (found through the path above)
from servers import Server  # noqa: E402

NAMES = ["folder", "one.txt", "two.bin"]
TREE = {"/pub/one.txt": "one", "/pub/two.bin": {"size": 2000}, "/pub/folder/": {}}


def archive(system):
    return next(MADE / (release.title + release.suffix) for release in RELEASES if release.system == system)


def unpack(system, folder):
    """The package's own folder in `folder`, which is moved afterwards: no package knows where it is."""
    path = archive(system)
    if path.suffix == ".zip":
        with zipfile.ZipFile(path) as packed:
            packed.extractall(folder / "first")
    else:
        with tarfile.open(path) as packed:
            packed.extractall(folder / "first")
    moved = folder / "moved here"
    (folder / "first").rename(moved)
    (tree,) = moved.iterdir()
    return tree


class Scratch:
    """A folder outside the tree with one unpacked package. It knows how to run tools there, through the cache."""

    def __init__(self, system):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="qx-package-"))
        self.package = unpack(system, self.folder)
        self.consumer = self.folder / "consumer"
        shutil.copytree(CONSUMER, self.consumer)
        self._environment = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
        self._environment.update(CCACHE_BASEDIR=str(self.folder), CCACHE_NOHASHDIR="1")

    def remove(self):
        shutil.rmtree(self.folder)

    def run(self, *command, **environment):
        """What the command prints. Its failure is one of the test's."""
        done = subprocess.run([str(word) for word in command], cwd=self.folder, stdin=subprocess.DEVNULL, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False,
                              env={**self._environment, **environment})
        if done.returncode:
            raise AssertionError(f"{shlex.join(map(str, command))} ends with {done.returncode}:\n{done.stdout}")
        return done.stdout

    def build(self, source, name, *settings):
        """Configures and builds a project; its folder."""
        out = self.folder / name
        launchers = [f"-DCMAKE_{language}_COMPILER_LAUNCHER=ccache" for language in ("C", "CXX")]
        self.run("cmake", "-G", "Ninja", "-S", source, "-B", out, *launchers, *settings)
        self.run("cmake", "--build", out)
        return out


def names_in(output):
    return sorted(output.split())


def start_server():
    """A real server that has the entries of NAMES in /pub."""
    server = Server("pyftpdlib")
    server.ask("put", files=TREE)
    return server
