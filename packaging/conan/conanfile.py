# SPDX-License-Identifier: MIT
"""ZRM_QXKT32x64 as it is shipped, for Conan 2: the library is one for all compilers, so nothing is built.

    ZRM_QXKT32x64_PACKAGE=FOLDER conan create . --version=VERSION    # FOLDER: the unpacked archive of that system
"""

import os

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.files import copy

FOLDER = "ZRM_QXKT32x64_PACKAGE"


class ZrmQxkt32x64(ConanFile):
    name = "zrm_qxkt32x64"
    license = "MIT"
    description = "Blocking FTP client for host programs in any language, with dialogs on Windows"
    package_type = "shared-library"
    settings = "os", "arch", "compiler"

    def validate(self):
        if self.settings.arch != "x86_64" or self.settings.os not in ("Windows", "Linux"):
            raise ConanInvalidConfiguration("there are packages for Windows x64 and Linux x64")

    def package(self):
        shipped = os.environ[FOLDER]
        for folder in ("include", "lib", "bin", "cmake"):
            copy(self, "*", os.path.join(shipped, folder), os.path.join(self.package_folder, folder))
        for paper in ("LICENSE", "THIRD-PARTY.txt"):
            copy(self, paper, shipped, os.path.join(self.package_folder, "licenses"))

    def package_id(self):
        del self.info.settings.compiler

    def package_info(self):
        self.cpp_info.libs = ["ZRM_QXKT32x64"]
        if self.settings.os == "Windows":
            mingw = self.settings.get_safe("compiler") == "gcc"
            self.cpp_info.libdirs = [os.path.join("lib", "mingw" if mingw else "msvc")]
        self.cpp_info.set_property("cmake_file_name", "ZRM_QXKT32x64")
        self.cpp_info.set_property("cmake_target_name", "ZRM_QXKT32x64::ZRM_QXKT32x64")
        self.cpp_info.set_property("pkg_config_name", "ZRM_QXKT32x64")
