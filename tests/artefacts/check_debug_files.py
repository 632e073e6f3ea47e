#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""check_debug_files.py ROOT LIBRARY: a library as it ships, and what debuggers read in the files beside it.

The library is small and has no debug information; LIBRARY.debug belongs to it and tells sources from the project's
folder on. A DLL has a PDB, too, which it names and which has the names of functions. No file knows where it was built.
"""

import pathlib
import re
import subprocess
import sys
import zlib

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "dll"))

from checks import check, exit_code  # noqa: E402  (found through the path above)

LARGEST = 1_200_000
ROOMS = ("Src", "dialogs", "framework", "module", "support")
A_FUNCTION = "_ZN5TQXIP10FTPConnectEPKcS1_S1_jhjP16TInternetSession"


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, errors="replace").stdout


def sections(path):
    return set(re.findall(r"^\s*\d+ (\S+)", run("objdump", "-h", path), re.M))


def check_library(library):
    size = library.stat().st_size
    check(size <= LARGEST, f"{library.name} has {size} bytes")
    debug = sorted(name for name in sections(library) if name.startswith(".debug"))
    check(not debug, f"it has no debug information: {debug}")
    check("no symbols" in run("objdump", "-t", library), "it has no symbols but those that the system looks for")


def link_to(debug_file):
    """What .gnu_debuglink says of a file: its name and, at the next multiple of 4, its sum."""
    name = debug_file.name.encode() + b"\0"
    return name.ljust((len(name) + 3) // 4 * 4, b"\0") + zlib.crc32(debug_file.read_bytes()).to_bytes(4, "little")


def sources_in(debug_file):
    """The files that its line tables name."""
    return set(re.findall(r"^(\S+\.\w+):$", run("objdump", "--dwarf=decodedline", debug_file), re.M))


def check_debug_file(root, library, debug_file):
    check(link_to(debug_file) in library.read_bytes(), f"it names {debug_file.name} and its sum")
    own = {pathlib.PurePath(name) for name in sources_in(debug_file)
           if pathlib.PurePath(name).parts[0] in ROOMS}
    units = {path for path in own if path.suffix == ".cpp"}
    check(len(units) > 50, f"{len(units)} of the project's .cpp files have line tables")
    missing = [str(path) for path in own if not (root / path).is_file()]
    check(not missing, f"all files of the line tables are found from the project's folder: {missing}")


def pdb_named_by(library):
    """The GUID and the name."""
    text = run("llvm-readobj-14", "--coff-debug-directory", library)
    guid = re.search(r"PDBGUID: \(([0-9A-F ]+)\)", text)
    return guid and bytes.fromhex(guid[1]), re.findall(r"PDBFileName: (\S+)", text)


def guid_of(pdb):
    text = re.search(r"GUID: \{([0-9A-F-]+)\}", run("llvm-pdbutil-14", "dump", "--summary", pdb))[1]
    first, second, third, *rest = text.split("-")
    little = b"".join(bytes.fromhex(part)[::-1] for part in (first, second, third))
    return little + bytes.fromhex("".join(rest))


def check_pdb(library, pdb):
    guid, names = pdb_named_by(library)
    check(names == [pdb.name], f"it names its PDB without a folder: {names}")
    check(guid == guid_of(pdb), f"the PDB is that of this DLL: {guid and guid.hex()}")
    publics = run("llvm-pdbutil-14", "dump", "--publics", pdb)
    check(f"`{A_FUNCTION}`" in publics, "the PDB has the names of functions that are not exported")


def check_no_place(root, path):
    content = path.read_bytes()
    found = [place for place in (root, pathlib.Path.home()) if str(place).encode() in content and len(place.parts) > 1]
    check(not found, f"{path.name} does not know where it was built: {list(map(str, found))}")


def main():
    root, library = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    files = [library, library.with_name(library.name + ".debug")]
    check_library(library)
    check_debug_file(root, library, files[1])
    if library.suffix == ".dll":
        files.append(library.with_suffix(".pdb"))
        check_pdb(library, files[2])
    for path in files:
        check_no_place(root, path)
    return exit_code()


if __name__ == "__main__":
    sys.exit(main())
