#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""old_glibc.py --version 2.31 --compiler PROGRAM FOLDER: what to link with for systems with an older C library.

Writes into the folder what -lc then finds there: libraries without any code that offer what this machine's C library
has offered since that version or longer, each name in the form that it had then. A program that is linked with them
needs no more than that; one that uses something newer is not linked at all.
"""

import argparse
import collections
import pathlib
import re
import subprocess

Symbol = collections.namedtuple("Symbol", "name version is_default is_data")

# `objdump -T`: address, flags, section, size, version (in brackets: only for programs linked long ago), name.
ROW = re.compile(r"^[0-9a-f]+ .{5}(?P<kind>..) (?P<section>\S+)\s+[0-9a-f]+\s+"
                 r"(?P<old>\()?GLIBC_(?P<version>[\d.]+)\)?\s+(?P<name>\w+)$", re.M)

# Until 2.34 these libraries stood beside the C library, which has had their functions since then.
MOVED = {"libpthread.so.0": re.compile(r"_*(pthread|sem)_"), "libdl.so.2": re.compile(r"dl")}
C_LIBRARY = "libc.so.6"


def number(version):
    return tuple(map(int, version.split(".")))


def symbols_of(library):
    text = subprocess.run(["objdump", "-T", library], check=True, capture_output=True, text=True).stdout
    return [Symbol(row["name"], row["version"], not row["old"], row["kind"][1] == "O")
            for row in ROW.finditer(text) if row["section"] not in ("*UND*", "*ABS*")]


def library_of(forms, newest):
    """Where a name with these forms was found then; None for one that cannot be linked with."""
    if forms[0].is_default:
        return C_LIBRARY
    if any(form.is_default and number(form.version) > newest for form in forms):
        return next((library for library, names in MOVED.items() if names.match(forms[0].name)), None)
    return None


def libraries(symbols, newest):
    """library -> version -> symbols"""
    forms_of = collections.defaultdict(list)
    for symbol in symbols:
        forms_of[symbol.name].append(symbol)
    found = {library: collections.defaultdict(list) for library in (C_LIBRARY, *MOVED)}
    for forms in forms_of.values():
        # The form to take comes first: the newest of those that are old enough.
        forms.sort(key=lambda form: (number(form.version) <= newest, number(form.version)), reverse=True)
        library = library_of(forms, newest) if number(forms[0].version) <= newest else None
        if library:
            found[library][forms[0].version].append(forms[0])
    return found


def assembly(versions):
    lines = ['.section .note.GNU-stack,"",@progbits', ".data"]
    for symbol in sorted(symbol for symbols in versions.values() for symbol in symbols):
        kind = "object" if symbol.is_data else "function"
        lines.append(f".globl {symbol.name}\n.type {symbol.name}, @{kind}\n{symbol.name}: .byte 0")
    return "\n".join(lines) + "\n"


def version_script(versions):
    nodes = []
    for version in sorted(versions, key=number):
        names = "".join(f" {symbol.name};" for symbol in sorted(versions[version]))
        nodes.append(f"GLIBC_{version} {{ global:{names} }};\n")
    return "".join(nodes)


def write_library(compiler, folder, name, versions):
    (folder / f"{name}.s").write_text(assembly(versions))
    (folder / f"{name}.map").write_text(version_script(versions))
    subprocess.run([compiler, "-shared", "-nostdlib", "-o", folder / name, folder / f"{name}.s", f"-Wl,-soname,{name}",
                    f"-Wl,--version-script,{folder / name}.map"], check=True)


def path_of(compiler, library):
    command = [compiler, f"-print-file-name={library}"]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--version", required=True, help="the newest that programs may need")
    parser.add_argument("--compiler", required=True)
    parser.add_argument("folder", type=pathlib.Path)
    arguments = parser.parse_args()
    arguments.folder.mkdir(parents=True, exist_ok=True)
    found = libraries(symbols_of(path_of(arguments.compiler, C_LIBRARY)), number(arguments.version))
    for name, versions in found.items():
        write_library(arguments.compiler, arguments.folder, name, versions)
    # As in the C library's own libc.so.
    own = path_of(arguments.compiler, "libc_nonshared.a")
    beside = " ".join([*MOVED, path_of(arguments.compiler, "ld-linux-x86-64.so.2")])
    (arguments.folder / "libc.so").write_text(f"GROUP({C_LIBRARY} {own} AS_NEEDED({beside}))\n")


if __name__ == "__main__":
    main()
