#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The built library from outside: it exports its functions and nothing else, needs only what every system has, and the
shipped import libraries offer the same functions; each of its own units was compiled with the protections of code that
reads from the network. With --windres it is a DLL, whose resources are read too.
"""

import argparse
import pathlib
import re
import subprocess
import sys

from checks import CLIENT_EXPORTS, DIALOG_EXPORTS, check, exit_code, same

WINDOWS_EXPORTS = CLIENT_EXPORTS + DIALOG_EXPORTS
WINDOWS_LIBRARIES = {
    name + ".dll" for name in ("kernel32", "msvcrt", "ws2_32", "user32", "comctl32", "advapi32", "shell32", "ole32",
                               "comdlg32")
}
LINUX_LIBRARIES = {"libc.so.6", "libdl.so.2", "libpthread.so.0", "libgcc_s.so.1", "ld-linux-x86-64.so.2"}
OLDEST_GLIBC = (2, 31)
PROTECTIONS = {"-fstack-protector-strong", "-ftrivial-auto-var-init=zero"}
LINUX_PROTECTIONS = {"-fstack-clash-protection", "-fcf-protection=full"}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def check_dll(arguments):
    text = run(arguments.objdump, "-p", arguments.library)
    table = text.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    same(re.findall(r"^\s*\[\s*\d+\].*?(\S+)$", table, re.M), WINDOWS_EXPORTS, "exports")
    needed = [name.lower() for name in re.findall(r"DLL Name: (\S+)", text)]
    check(needed and set(needed) <= WINDOWS_LIBRARIES, f"needs Windows' own libraries only: {sorted(needed)}")
    check("DYNAMIC_BASE" in text and "NX_COMPAT" in text, "may be loaded anywhere, its data is not executable")
    check_resources(run(arguments.windres, "-J", "coff", "-O", "rc", arguments.library))
    check_protections(arguments, PROTECTIONS)
    symbols = run(arguments.nm, arguments.library)
    check(re.search(r" T __stack_chk_fail$", symbols, re.M), "brings what ends a program with a broken stack")


def check_protections(arguments, flags):
    """From the debug information, where the compiler writes down for each unit how it was called."""
    text = run(arguments.objdump, "--dwarf=info", "--dwarf-depth=1", arguments.debug_file or arguments.library)
    units = re.findall(r"DW_AT_producer.*(GNU C\+\+20 .*)", text)
    bare = [unit for unit in units if not flags <= set(unit.split())]
    check(units and not bare, f"{len(units)} units are protected by {sorted(flags)}; not so: {bare[:1]}")


def check_resources(text):
    manifest = re.search(r"^2 (RT_MANIFEST|24)\b(.*)", text, re.M | re.S)
    check(manifest, "a manifest as resource 2")
    check(manifest and "Microsoft.Windows.Common-Controls" in manifest[2], "asks for common controls 6")
    check("requestedExecutionLevel" not in text, "has no trust level")


def check_shared_object(arguments):
    text = run(arguments.objdump, "-p", arguments.library)
    path = pathlib.Path(arguments.library)
    same(re.findall(r"SONAME\s+(\S+)", text), [path.name], "own name")
    check(path.with_suffix("").resolve() == path.resolve(), "is found without the number in its name, too")
    symbols = run(arguments.nm, "-D", "--defined-only", arguments.library).split("\n")
    same([line.split()[2] for line in symbols if line], CLIENT_EXPORTS, "exports")
    needed = re.findall(r"NEEDED\s+(\S+)", text)
    if not arguments.sanitized:
        check(needed and set(needed) <= LINUX_LIBRARIES, f"needs libraries of every system only: {sorted(needed)}")
        check_protections(arguments, PROTECTIONS | LINUX_PROTECTIONS)
        check_loading(arguments, text)
        check_age(text)
    check(not re.search(r"RPATH|RUNPATH", text), "looks for libraries nowhere else")


def check_age(headers):
    """The C library of 2020 does, though the machine that builds has a newer one."""
    versions = re.findall(r" GLIBC_([\d.]+)$", headers, re.M)
    newest = max((tuple(map(int, version.split("."))) for version in versions), default=None)
    check(newest and newest <= OLDEST_GLIBC, f"needs {newest} of the C library, no more than {OLDEST_GLIBC}")


def check_loading(arguments, headers):
    early = re.search(r"^\s*FLAGS_1\s+0x0*1$", headers, re.M)
    check("RELRO" in headers and early, "tables are bound early, then read-only")
    check(re.search(r"STACK.*\n.*flags rw-$", headers, re.M), "the stack is not executable")
    used = run(arguments.nm, "-D", "--undefined-only", arguments.library)
    check("__stack_chk_fail" in used, "watches the stack")
    check("__memcpy_chk" in used, "uses the C library's checked functions")


def check_import_library(arguments, path):
    lines = run(arguments.nm, path).split("\n")
    functions = {line.split()[-1] for line in lines if " T " in line}
    same(functions - {".text"}, WINDOWS_EXPORTS, pathlib.Path(path).name)
    imports = {line.split()[-1] for line in lines if " __imp_" in line}
    same({name.removeprefix("__imp_") for name in imports}, WINDOWS_EXPORTS, pathlib.Path(path).name + " (imports)")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("library")
    parser.add_argument("--objdump", required=True)
    parser.add_argument("--nm", required=True)
    parser.add_argument("--windres")
    parser.add_argument("--debug-file", help="where the debug information is, if not in the library")
    parser.add_argument("--import-library", action="append", default=[])
    parser.add_argument("--sanitized", action="store_true", help="a sanitizer's libraries are needed, too")
    arguments = parser.parse_args()
    (check_dll if arguments.windres else check_shared_object)(arguments)
    for path in arguments.import_library:
        check_import_library(arguments, path)
    return exit_code()


if __name__ == "__main__":
    sys.exit(main())
