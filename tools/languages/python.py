# SPDX-License-Identifier: MIT
"""The headers as Python's ctypes."""

from .description import TABLE
from .text import wrapped

PATH = "bindings/python/qxclient.py"

TYPES = {
    "void": "None", "QXBool": "c_uint8", "uint8_t": "c_uint8", "char": "c_char", "uint32_t": "c_uint32",
    "uint64_t": "c_uint64", "QXHostValue": "c_size_t", "const char*": "c_char_p", "char*": "POINTER(c_char)",
    "char**": "POINTER(c_void_p)", "void**": "POINTER(c_void_p)", "QXBool*": "POINTER(c_uint8)",
    "uint32_t*": "POINTER(c_uint32)", "uint64_t*": "POINTER(c_uint64)", "QXDirEntry*": "POINTER(QXDirEntry)",
    "QXErrorInfo*": "POINTER(QXErrorInfo)", "const QXClientTable*": "POINTER(QXClientTable)",
}


def type_text(kind):
    """What the table above does not have is an address, or has the same name in Python."""
    name = TYPES.get(kind.name, "c_void_p" if kind.name.endswith("*") else kind.name)
    return name if kind.count is None else f"{name} * {kind.count}"


def signature(function):
    types = [function.result, *(parameter.type for parameter in function.parameters)]
    return ", ".join(map(type_text, types))


def function_type(function):
    return wrapped(f"{function.name} = CFUNCTYPE({signature(function)})")


def field(member):
    return f'        ("{member.name}", {type_text(member.type)}),'


def record(described, slots):
    if described.name == TABLE:
        yield from map(function_type, slots)
        yield from ("", "")
    yield from (f"class {described.name}(Structure):", "    _fields_ = [")
    yield from map(field, described.fields)
    yield from ("    ]", "", "")


def exports(name, functions):
    yield f"{name} = {{"
    for function in functions:
        yield wrapped(f'    "{function.name}": CFUNCTYPE({signature(function)}),')
    yield "}"


def raw(description):
    lines = [f"{name} = {value}" for name, value in description.numbers.items()]
    lines += [*map(function_type, description.callbacks), "", ""]
    for described in description.records:
        lines += record(described, description.slots)
    return [*lines, *exports("EXPORTS", description.exports), *exports("DIALOG_EXPORTS", description.dialog_exports)]
