#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""packaging/ for vcpkg, Conan and NuGet, as far as it can be tried without these."""

import json
import pathlib
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from packages import RELEASES, ROOT, Scratch, archive

PACKAGING = ROOT / "packaging"
NUSPEC = "{http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd}"

# What the port calls of vcpkg's.
VCPKG = """
function(vcpkg_extract_source_archive tree)
  cmake_parse_arguments(PARSE_ARGV 1 of "" ARCHIVE "")
  file(ARCHIVE_EXTRACT INPUT "${of_ARCHIVE}" DESTINATION "${BUILD}")
  file(GLOB unpacked "${BUILD}/*")
  set(${tree} "${unpacked}" PARENT_SCOPE)
endfunction()
function(vcpkg_cmake_config_fixup)
  cmake_parse_arguments(PARSE_ARGV 0 of "" "PACKAGE_NAME;CONFIG_PATH" "")
  if(NOT EXISTS "${CURRENT_PACKAGES_DIR}/${of_CONFIG_PATH}/${of_PACKAGE_NAME}Config.cmake")
    message(FATAL_ERROR "no configuration in ${of_CONFIG_PATH}")
  endif()
endfunction()
function(vcpkg_install_copyright)
  cmake_parse_arguments(PARSE_ARGV 0 of "" "" FILE_LIST)
  file(INSTALL ${of_FILE_LIST} DESTINATION "${CURRENT_PACKAGES_DIR}/share")
endfunction()
include("${CMAKE_CURRENT_LIST_DIR}/portfile.cmake")
"""


class Vcpkg(unittest.TestCase):
    port = PACKAGING / "vcpkg/zrm-qxkt32x64"

    def installed(self, release):
        """What the port installs, with stand-ins for vcpkg's functions."""
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "portfile.cmake").symlink_to(self.port / "portfile.cmake")
            (folder / archive(release.system).name).symlink_to(archive(release.system))
            (folder / "run.cmake").write_text(VCPKG)
            settings = {"VERSION": release.version, "VCPKG_TARGET_IS_WINDOWS": release.system == "windows",
                        "BUILD": folder / "build", "CURRENT_PACKAGES_DIR": folder / "installed"}
            subprocess.run(["cmake", *(f"-D{key}={value}" for key, value in settings.items()), "-P", "run.cmake"],
                           cwd=folder, check=True, stdout=subprocess.DEVNULL)
            return {str(path.relative_to(folder / "installed")) for path in (folder / "installed").rglob("*")}

    def test_the_port_installs_what_hosts_need(self):
        libraries = {"linux": {"lib/libZRM_QXKT32x64.so"},
                     "windows": {"bin/ZRM_QXKT32x64.dll", "lib/msvc/ZRM_QXKT32x64.lib",
                                 "lib/mingw/libZRM_QXKT32x64.dll.a"}}
        for release in RELEASES:
            wanted = {"include/QXExports.h", "share/LICENSE", *libraries[release.system]}
            self.assertEqual(wanted - self.installed(release), set())

    def test_the_port_is_of_this_version(self):
        manifest = json.loads((self.port / "vcpkg.json").read_text())
        self.assertEqual(manifest["version"], RELEASES[0].version)


class Conan(unittest.TestCase):
    def test_the_recipe_compiles(self):
        path = PACKAGING / "conan/conanfile.py"
        compile(path.read_text(), path, "exec")


class NuGet(unittest.TestCase):
    folder = PACKAGING / "nuget"

    @classmethod
    def setUpClass(cls):
        scratch = Scratch("windows")
        cls.addClassCleanup(scratch.remove)
        cls.tree = scratch.package
        cls.files = [(file.get("src").replace("\\", "/"), file.get("target").replace("\\", "/")) for file in
                     ElementTree.parse(cls.folder / "ZRM_QXKT32x64.nuspec").iter(f"{NUSPEC}file")]

    def found(self, source):
        """Paths of the files that a `src` means."""
        in_tree = source.startswith("$tree$/")
        return list((self.tree if in_tree else self.folder).glob(source.removeprefix("$tree$/")))

    def test_every_file_is_in_the_package(self):
        self.assertGreater(len(self.files), 5)
        self.assertEqual([source for source, _ in self.files if not self.found(source)], [])

    def test_the_targets_find_what_the_package_has(self):
        text = (self.folder / "ZRM_QXKT32x64.targets").read_text()
        ElementTree.fromstring(text)
        used = {path.replace("\\", "/") for path in re.findall(r"\$\(MSBuildThisFileDirectory\)([\w\\.]+)", text)}
        there = {f"{target}/{path.name}" for source, target in self.files for path in self.found(source)}
        there |= {target for _, target in self.files}
        self.assertEqual({f"build/native/{path}" for path in used} - there, set())


if __name__ == "__main__":
    unittest.main()
