# SPDX-License-Identifier: MIT
"""The two packages: from which preset each comes, and its tree with all papers in it."""

import re
import shutil
import subprocess
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

from .archives import write_tar_xz, write_zip
from .bill import bill
from .sums import write_sums
from .third_party import paper

ROOT = Path(__file__).resolve().parent.parent.parent
NAME = "ZRM_QXKT32x64"
BILL = f"{NAME}.spdx.json"
SUMS = "SHA256SUMS"


def version_of(build_folder):
    cache = (build_folder / "CMakeCache.txt").read_text(encoding="utf-8")
    return re.search(r"^CMAKE_PROJECT_VERSION:\w+=(.+)$", cache, re.M).group(1)


@dataclass(frozen=True)
class Release:
    system: str
    preset: str
    suffix: str
    write_archive: Callable[[Path, Path, int], None]

    @property
    def build_folder(self):
        return ROOT / "build" / self.preset

    @property
    def version(self):
        return version_of(self.build_folder)

    @property
    def title(self):
        return f"{NAME}-{self.version}-{self.system}-x64"


RELEASES = (Release("linux", "linux", ".tar.xz", write_tar_xz),
            Release("windows", "windows-release", ".zip", write_zip))


def run(*command):
    subprocess.run(command, cwd=ROOT, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


def build(release):
    run("cmake", "--preset", release.preset, "--log-level=WARNING")
    subprocess.run(["cmake", "--build", "--preset", release.preset, "--target", "qx_release"], cwd=ROOT, check=True,
                   stdin=subprocess.DEVNULL)


def stage(release, folder, moment):
    """The tree of the package in the new folder `folder`/title."""
    tree = folder / release.title
    shutil.rmtree(tree, ignore_errors=True)
    run("cmake", "--install", release.build_folder, "--prefix", tree)
    (tree / "THIRD-PARTY.txt").write_text(paper(NAME, release.system), encoding="utf-8")
    document = bill(tree, release.system, NAME, release.version, moment, left_out=(BILL, SUMS))
    (tree / BILL).write_text(document, encoding="utf-8")
    write_sums(tree, [path for path in tree.rglob("*") if path.is_file()])
    return tree


def package(release, folder, moment):
    """Builds the release; its archive, in `folder`."""
    build(release)
    tree = stage(release, folder / "stage", moment)
    archive = folder / (release.title + release.suffix)
    release.write_archive(tree, archive, moment)
    return archive
