# SPDX-License-Identifier: MIT
"""What the public headers say in C99: numbers, records, the table's functions and the exports, by a parser of C."""

import re
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

from pycparser import c_ast, c_parser

HEADERS = ("QXHooks.h", "QXExports.h", "QXDialogs.h")
TABLE = "QXClientTable"
CLIENT = "QXClientObject"

# In place of the system's headers, of which the parser has no need to know more.
BASIC_TYPES = """\
typedef unsigned char uint8_t;
typedef unsigned int uint32_t;
typedef unsigned long long uint64_t;
typedef unsigned long long uintptr_t;
typedef unsigned long long size_t;
void* memcpy(void*, const void*, size_t);
"""


@dataclass(frozen=True)
class Type:
    """`name` is as the headers have it, "const char*" or "uint32_t"; `count` elements, or None where it is no array."""

    name: str
    count: int | None = None


@dataclass(frozen=True)
class Member:
    """A field of a record or a parameter of a function."""

    name: str
    type: Type


@dataclass(frozen=True)
class Function:
    name: str
    result: Type
    parameters: tuple[Member, ...]


@dataclass(frozen=True)
class Record:
    name: str
    fields: tuple[Member, ...]


@dataclass(frozen=True)
class Description:
    numbers: dict[str, int]
    callbacks: tuple[Function, ...]
    records: tuple[Record, ...]  # each behind those that it holds; a field of the table has its slot's name for a type
    slots: tuple[Function, ...]
    exports: tuple[Function, ...]
    dialog_exports: tuple[Function, ...]


def preprocess(root, *options):
    source = "\n".join(f'#include "{header}"' for header in HEADERS)
    with tempfile.TemporaryDirectory() as folder:
        for name in ("stddef.h", "stdint.h", "string.h"):
            (Path(folder) / name).write_text("")
        command = ["gcc", "-E", "-x", "c", "-std=c99", "-nostdinc", "-I", folder, "-I", root / "include", *options, "-"]
        return subprocess.run(command, input=source, capture_output=True, text=True, check=True).stdout


def numbers(root):
    """The macros that stand for a number."""
    found = re.findall(r"^#define (QX_\w+) (\d+)$", preprocess(root, "-dM"), re.M)
    return {name: int(value) for name, value in sorted(found)}


def type_of(node):
    """The type of a declaration's node; a function's pointer is known by its typedef alone."""
    if isinstance(node, c_ast.ArrayDecl):
        return Type(type_of(node.type).name, int(node.dim.value))
    if isinstance(node, c_ast.PtrDecl):
        return Type(type_of(node.type).name + "*")
    const = "const " if "const" in node.quals else ""
    inner = node.type
    name = inner.name if isinstance(inner, c_ast.Struct) else " ".join(inner.names)
    return Type(const + name)


def function_of(name, node):
    listed = node.args.params if node.args else []
    parameters = [Member(parameter.name, type_of(parameter.type)) for parameter in listed]
    if [parameter.type for parameter in parameters] == [Type("void")]:
        parameters = []
    return Function(name, type_of(node.type), tuple(parameters))


def is_function_pointer(node):
    return isinstance(node, c_ast.PtrDecl) and isinstance(node.type, c_ast.FuncDecl)


def field_of(declaration):
    is_slot = is_function_pointer(declaration.type)
    return Member(declaration.name, Type(declaration.name) if is_slot else type_of(declaration.type))


def structures(tree):
    """The members of each structure that has some, in order."""
    for declaration in tree.ext:
        if isinstance(declaration, c_ast.Typedef) and isinstance(declaration.type.type, c_ast.Struct):
            if declaration.type.type.decls:
                yield declaration.name, declaration.type.type.decls


def declared(tree, header):
    """The functions without a body that the header declares."""
    for node in tree.ext:
        if isinstance(node, c_ast.Decl) and isinstance(node.type, c_ast.FuncDecl) and node.coord.file.endswith(header):
            yield function_of(node.name, node.type)


def describe(root):
    tree = c_parser.CParser().parse(BASIC_TYPES + preprocess(root))
    found = dict(structures(tree))
    callbacks = [function_of(node.name, node.type.type) for node in tree.ext
                 if isinstance(node, c_ast.Typedef) and is_function_pointer(node.type)
                 and not node.name.startswith("Pfn")]
    return Description(
        numbers=numbers(root),
        callbacks=tuple(callbacks),
        records=tuple(Record(name, tuple(map(field_of, fields))) for name, fields in found.items()),
        slots=tuple(function_of(slot.name, slot.type.type) for slot in found[TABLE]),
        exports=tuple(declared(tree, "QXExports.h")),
        dialog_exports=tuple(declared(tree, "QXDialogs.h")))
