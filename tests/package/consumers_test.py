#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The packages in the hands of others: small projects outside the tree, which know nothing but an unpacked package,
list a folder of a server. Runs under tests/fixture/run-with-fixture."""

import shlex
import unittest

from packages import NAMES, ROOT, RUNNER, Scratch, names_in, start_server

MINGW = ["-DCMAKE_SYSTEM_NAME=Windows", "-DCMAKE_C_COMPILER=x86_64-w64-mingw32-gcc-posix",
         "-DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix", "-DCMAKE_EXE_LINKER_FLAGS=-static"]


def libraries_of(build_folder):
    """What the programs of a build are linked with."""
    lines = (build_folder / "build.ninja").read_text().splitlines()
    return "\n".join(line for line in lines if "LINK_LIBRARIES" in line)


class Consumers(unittest.TestCase):
    """What both systems have in common. Windows programs run under Wine."""

    system = ""
    runner = []

    @classmethod
    def setUpClass(cls):
        cls.scratch = Scratch(cls.system)
        cls.addClassCleanup(cls.scratch.remove)
        cls.server = start_server()
        cls.addClassCleanup(cls.server.__exit__)

    def login(self):
        return [self.server.port, self.server.user, self.server.password]

    def assert_lists(self, program, *arguments, **environment):
        output = self.scratch.run(*self.runner, program, *self.login(), *arguments, **environment)
        self.assertEqual(names_in(output), NAMES)

    def assert_qxftp_lists(self, program):
        port, user, password = self.login()
        output = self.scratch.run(*self.runner, program, "ls", f"ftp://{user}@127.0.0.1:{port}/pub",
                                  QXFTP_PASSWORD=password)
        for name in NAMES:
            self.assertIn(name, output)

    def compile_by_pkg_config(self, folder, program, *compiler):
        flags = shlex.split(self.scratch.run("pkg-config", "--cflags", "--libs", "ZRM_QXKT32x64",
                                             PKG_CONFIG_LIBDIR=str(self.scratch.package / folder)))
        sources = [self.scratch.consumer / name for name in ("listing.c", "c_main.c")]
        self.scratch.run(*compiler, "-std=c99", "-Wall", "-Werror", *sources, "-o", program, *flags)


class Linux(Consumers):
    system = "linux"

    def test_cmake_with_gcc(self):
        out = self.scratch.build(self.scratch.consumer, "cmake", f"-DCMAKE_PREFIX_PATH={self.scratch.package}")
        self.assert_lists(out / "linked")
        self.assert_lists(out / "c_host")

    def test_pkg_config_with_c99(self):
        program = self.scratch.folder / "by_pkg_config"
        self.compile_by_pkg_config("lib/pkgconfig", program, "gcc", "-pedantic-errors")
        self.assert_lists(program, LD_LIBRARY_PATH=str(self.scratch.package / "lib"))

    def test_loaded_when_it_runs(self):
        program = self.scratch.folder / "loaded"
        self.scratch.run("ccache", "g++", "-std=c++20", "-I", self.scratch.package / "include", "-c",
                         self.scratch.consumer / "loaded.cpp", "-o", "loaded.o")
        self.scratch.run("g++", "loaded.o", "-o", program)
        self.assert_lists(program, self.scratch.package / "lib/libZRM_QXKT32x64.so")

    def test_binding_for_python(self):
        package = self.scratch.package
        output = self.scratch.run("python3", self.scratch.consumer / "listing.py", *self.login(),
                                  package / "lib/libZRM_QXKT32x64.so.1",
                                  PYTHONPATH=str(package / "bindings/python"), PYTHONDONTWRITEBYTECODE="1")
        self.assertEqual(names_in(output), NAMES)

    def test_examples_build_from_their_sources(self):
        out = self.scratch.build(self.scratch.package / "examples", "examples")
        output = self.scratch.run(out / "bin/qxlisting", self.scratch.package / "lib/libZRM_QXKT32x64.so", "127.0.0.1",
                                  *self.login(), "/pub")
        self.assertEqual(set(output.split()), {"folder/", "one.txt", "two.bin"})

    def test_hosts_build_from_their_sources(self):
        out = self.scratch.build(self.scratch.package / "hosts", "hosts")
        self.assert_qxftp_lists(out / "bin/qxftp")

    def test_shipped_host(self):
        self.assert_qxftp_lists(self.scratch.package / "bin/qxftp")


class Windows(Consumers):
    system = "windows"
    runner = [RUNNER]

    def test_cmake_with_mingw(self):
        out = self.scratch.build(self.scratch.consumer, "mingw", f"-DCMAKE_PREFIX_PATH={self.scratch.package}", *MINGW)
        self.assertIn("lib/mingw/libZRM_QXKT32x64.dll.a", libraries_of(out))
        self.assert_lists(out / "linked.exe")
        self.assert_lists(out / "c_host.exe")

    def test_cmake_with_clang_for_microsofts_abi(self):
        kernel = self.scratch.folder / "kernel32.lib"
        self.scratch.run("llvm-dlltool-14", "-m", "i386:x86-64", "-d", ROOT / "tests/dll/kernel32.def", "-l", kernel)
        out = self.scratch.build(self.scratch.consumer, "msvc", f"-DCMAKE_PREFIX_PATH={self.scratch.package}",
                                 "--toolchain", ROOT / "tests/package/bare-msvc.cmake", f"-DKERNEL32={kernel}",
                                 "-DBARE=ON")
        self.assertIn("lib/msvc/ZRM_QXKT32x64.lib", libraries_of(out))
        self.assert_lists(out / "c_host.exe")

    def test_pkg_config_with_mingw(self):
        program = self.scratch.package / "bin/by_pkg_config.exe"  # beside the DLL
        self.compile_by_pkg_config("pkgconfig", program, "x86_64-w64-mingw32-gcc-posix", "-static")
        self.assert_lists(program)

    def test_loaded_when_it_runs(self):
        program = self.scratch.folder / "loaded.exe"
        compiler = "x86_64-w64-mingw32-g++-posix"
        self.scratch.run("ccache", compiler, "-std=c++20", "-I", self.scratch.package / "include", "-c",
                         self.scratch.consumer / "loaded.cpp", "-o", "loaded.obj")
        self.scratch.run(compiler, "-static", "loaded.obj", "-o", program)
        self.assert_lists(program, f"Z:{self.scratch.package}/bin/ZRM_QXKT32x64.dll")

    def test_examples_build_from_their_sources(self):
        out = self.scratch.build(self.scratch.package / "examples", "examples", *MINGW)
        self.assertTrue((out / "bin/qxlisting.exe").exists())
        self.assertTrue((out / "bin/qxdialogs.exe").exists())

    def test_hosts_build_from_their_sources(self):
        out = self.scratch.build(self.scratch.package / "hosts", "hosts", *MINGW)
        self.assert_qxftp_lists(out / "bin/qxftp.exe")

    def test_shipped_host(self):
        self.assert_qxftp_lists(self.scratch.package / "bin/qxftp.exe")


if __name__ == "__main__":
    del Consumers
    unittest.main()
