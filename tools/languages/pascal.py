# SPDX-License-Identifier: MIT
"""The headers as Pascal, in the words that Delphi and Free Pascal share."""

from itertools import groupby

from .description import TABLE
from .text import TOGETHER, wrapped

PATH = "bindings/pascal/QXClient.pas"

TYPES = {
    "QXBool": "Byte", "uint8_t": "Byte", "char": "AnsiChar", "uint32_t": "Cardinal", "uint64_t": "UInt64",
    "QXHostValue": "NativeUInt", "char*": "PAnsiChar", "char**": "PPAnsiChar", "void*": "Pointer", "void**": "PPointer",
    "QXBool*": "PByte", "uint32_t*": "PCardinal", "uint64_t*": "PUInt64", "TQXIPIFInt*": "PQXClientObject",
    "CFtpFileFind*": "Pointer", "CFtpConnection*": "Pointer", "TInternetSession*": "Pointer",
}


def type_text(kind):
    name = kind.name.removeprefix("const ")
    plain = name.rstrip("*")
    text = TYPES.get(name) or ("P" if plain != name else "T") + plain
    return text if kind.count is None else f"array[0..{kind.count - 1}] of {text}"


def parameters(function):
    """Those of one type that follow each other share it."""
    for kind, group in groupby(function.parameters, lambda parameter: type_text(parameter.type)):
        yield f"{', '.join(parameter.name for parameter in group)}:{TOGETHER}{kind}"


def function_name(function):
    return "T" + (function.name if function.name.startswith("QX") else f"QX{function.name}")


def function_type(function):
    listed = "; ".join(parameters(function))
    arguments = f"({listed})" if listed else ""
    returns = function.result.name != "void"
    kind = f"function{arguments}: {type_text(function.result)}" if returns else f"procedure{arguments}"
    return wrapped(f"  {function_name(function)} = {kind}; cdecl;")


def addresses(functions):
    return [f"    {function.name}: {function_name(function)};" for function in functions]


def record(described, slots):
    if described.name == TABLE:
        return [*map(function_type, slots), f"  T{TABLE} = record", *addresses(slots), "  end;"]
    members = [f"    {member.name}: {type_text(member.type)};" for member in described.fields]
    return [f"  T{described.name} = record", *members, "  end;"]


def exports(functions):
    """A record of the exports' addresses, and their names in the same order."""
    lines = [*map(function_type, functions), "  TQXExports = record", *addresses(functions)]
    names = ", ".join(f"'{function.name}'" for function in functions)
    return [*lines, "  end;", "const", f"  QXExportNames: array[0..{len(functions) - 1}] of PAnsiChar = (",
            wrapped(f"    {names});")]


def raw(description):
    numbers = [f"  {name} = {value};" for name, value in description.numbers.items()]
    pointers = [f"  P{described.name} = ^T{described.name};" for described in description.records]
    lines = ["const", *numbers, "type", *pointers, *map(function_type, description.callbacks)]
    for described in description.records:
        lines += record(described, description.slots)
    return lines + exports((*description.exports, *description.dialog_exports))
