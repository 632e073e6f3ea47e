#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What is in the packages, and what their papers say of it."""

import datetime
import json
import os
import pathlib
import re
import shutil
import tempfile
import unittest

from packages import MADE, RELEASES, ROOT, Scratch, archive

from packaging.releases import BILL, SUMS
from packaging.sums import digest
from packaging.third_party import HOST_PARTS, PARTS

MEGABYTE = 10**6
STAGE = MADE / "stage"
EVERYWHERE = """
    LICENSE CHANGELOG.md README.md THIRD-PARTY.txt SHA256SUMS ZRM_QXKT32x64.spdx.json
    include/QXExports.h include/QXClientTable.h include/QXClient.h
    docs/tutorial.md docs/pictures/open.png docs/html/index.html
    bindings/csharp/QXClient.cs bindings/pascal/QXClient.pas bindings/python/qxclient.py
    docs/qxftp.md examples/CMakeLists.txt examples/qxdialogs/main.cpp hosts/CMakeLists.txt hosts/qxftp/main.cpp
""".split()
OF_SYSTEM = {
    "linux": """
        bin/qxftp lib/libZRM_QXKT32x64.so lib/libZRM_QXKT32x64.so.1 symbols/libZRM_QXKT32x64.so.1.debug
        lib/cmake/ZRM_QXKT32x64/ZRM_QXKT32x64Config.cmake lib/cmake/ZRM_QXKT32x64/ZRM_QXKT32x64ConfigVersion.cmake
        lib/pkgconfig/ZRM_QXKT32x64.pc share/man/man1/qxftp.1 share/bash-completion/completions/qxftp
    """.split(),
    "windows": """
        bin/ZRM_QXKT32x64.dll bin/qxftp.exe bin/qxdialogs.exe
        lib/msvc/ZRM_QXKT32x64.lib lib/mingw/libZRM_QXKT32x64.dll.a def/ZRM_QXKT32x64.def
        symbols/ZRM_QXKT32x64.pdb symbols/ZRM_QXKT32x64.dll.debug
        cmake/ZRM_QXKT32x64Config.cmake cmake/ZRM_QXKT32x64ConfigVersion.cmake pkgconfig/ZRM_QXKT32x64.pc
    """.split(),
}
FOLDERS = {"linux": "bin bindings docs examples hosts include lib share symbols".split(),
           "windows": "bin bindings cmake def docs examples hosts include lib pkgconfig symbols".split()}


def files_of(tree):
    return {str(path.relative_to(tree)) for path in tree.rglob("*") if path.is_file()}


class Package:
    """One of the packages, unpacked."""

    @classmethod
    def setUpClass(cls):
        scratch = Scratch(cls.release.system)
        cls.addClassCleanup(scratch.remove)
        cls.tree = scratch.package
        cls.archive = archive(cls.release.system)
        cls.bill = json.loads((cls.tree / BILL).read_text())


class Contents(Package):
    def test_all_that_belongs_into_them_is_there(self):
        self.assertEqual(set(EVERYWHERE + OF_SYSTEM[self.release.system]) - files_of(self.tree), set())
        headers = {path.name for path in (ROOT / "include").glob("*.h")}
        self.assertEqual({path.name for path in (self.tree / "include").iterdir()}, headers)

    def test_nothing_else_is_at_the_top(self):
        folders = {path.name for path in self.tree.iterdir() if path.is_dir()}
        self.assertEqual(folders, set(FOLDERS[self.release.system]))

    def test_sums_are_of_every_file(self):
        listed = dict(reversed(line.split("  ")) for line in (self.tree / SUMS).read_text().splitlines())
        self.assertEqual(set(listed), files_of(self.tree) - {SUMS})
        self.assertEqual(listed, {name: digest(self.tree / name) for name in listed})

    def test_the_archive_has_a_sum(self):
        self.assertIn(f"{digest(self.archive)}  {self.archive.name}\n", (MADE / SUMS).read_text())

    def test_one_version_everywhere(self):
        version = re.escape(self.release.version)
        self.assertRegex((self.tree / "README.md").read_text(), rf"\A# ZRM_QXKT32x64 {version}\n")
        (config,) = self.tree.rglob("*ConfigVersion.cmake")
        self.assertRegex(config.read_text(), rf'PACKAGE_VERSION "{version}"')
        (pkgconfig,) = self.tree.rglob("*.pc")
        self.assertRegex(pkgconfig.read_text(), rf"(?m)^Version: {version}$")
        self.assertEqual(self.tree.name, f"ZRM_QXKT32x64-{self.release.version}-{self.release.system}-x64")

    def test_no_file_names_the_folder_where_it_was_built(self):
        telling = [name for name in files_of(self.tree) if str(ROOT).encode() in (self.tree / name).read_bytes()]
        self.assertEqual(telling, [])

    def test_the_same_files_make_the_same_archive(self):
        made = datetime.datetime.fromisoformat(self.bill["creationInfo"]["created"])
        with tempfile.TemporaryDirectory() as folder:
            # In another folder, with other times and rights.
            copy = shutil.copytree(STAGE / self.tree.name, pathlib.Path(folder) / self.tree.name, symlinks=True)
            for name in files_of(copy):
                program = os.access(copy / name, os.X_OK)
                os.chmod(copy / name, 0o700 if program else 0o600)
                os.utime(copy / name, (1, 1))
            second = pathlib.Path(folder) / "second"
            self.release.write_archive(copy, second, int(made.timestamp()))
            self.assertEqual(digest(second), digest(self.archive))


class Papers(Package):
    def test_the_bill_lists_every_file_with_its_sums(self):
        listed = {file["fileName"][2:]: {sum["algorithm"]: sum["checksumValue"] for sum in file["checksums"]}
                  for file in self.bill["files"]}
        self.assertEqual(set(listed), files_of(self.tree) - {BILL, SUMS})
        for name, sums in listed.items():
            self.assertEqual(sums, {"SHA1": digest(self.tree / name, "sha1"), "SHA256": digest(self.tree / name)})

    def test_the_bill_is_whole(self):
        self.assertEqual((self.bill["spdxVersion"], self.bill["dataLicense"]), ("SPDX-2.3", "CC0-1.0"))
        elements = [self.bill["SPDXID"], *(item["SPDXID"] for item in self.bill["packages"] + self.bill["files"])]
        self.assertEqual(len(elements), len(set(elements)))
        for element in elements:
            self.assertRegex(element, r"\ASPDXRef-[A-Za-z0-9.-]+\Z")
        for relation in self.bill["relationships"]:
            self.assertLessEqual({relation["spdxElementId"], relation["relatedSpdxElement"]}, set(elements))
        linked = [relation for relation in self.bill["relationships"] if relation["relationshipType"] == "STATIC_LINK"]
        self.assertEqual(len(linked), len(PARTS[self.release.system] + HOST_PARTS))
        named = set(re.findall(r"LicenseRef-[\w.-]+", json.dumps(self.bill["packages"])))
        self.assertEqual(named, {own["licenseId"] for own in self.bill["hasExtractedLicensingInfos"]})

    def test_the_notices_have_the_texts(self):
        texts = {"linux": ["unlimited permission", "GNU LESSER GENERAL PUBLIC LICENSE"],
                 "windows": ["IN NO EVENT SHALL THE COPYRIGHT HOLDERS", "Permission is hereby granted"]}
        notices = (self.tree / "THIRD-PARTY.txt").read_text()
        everywhere = ["GCC RUNTIME LIBRARY EXCEPTION", "GNU GENERAL PUBLIC LICENSE", "University of Cincinnati",
                      "Niels Lohmann"]
        for text in everywhere + texts[self.release.system]:
            self.assertIn(text, notices)


class Linux(Contents, Papers, unittest.TestCase):
    release = RELEASES[0]


class Windows(Contents, Papers, unittest.TestCase):
    release = RELEASES[1]

    def test_sizes(self):
        self.assertLessEqual(self.archive.stat().st_size, 12 * MEGABYTE)
        self.assertLessEqual((self.tree / "bin/ZRM_QXKT32x64.dll").stat().st_size, 1.2 * MEGABYTE)


if __name__ == "__main__":
    unittest.main()
