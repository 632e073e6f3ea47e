# SPDX-License-Identifier: MIT
"""The headers as C#: unsafe code, in which every type is what it is in C."""

from .text import TOGETHER, wrapped

PATH = "bindings/csharp/QXClient.cs"

TYPES = {
    "QXBool": "byte", "uint8_t": "byte", "char": "byte", "uint32_t": "uint", "uint64_t": "ulong",
    "QXHostValue": "UIntPtr", "QXProgress": "IntPtr", "TQXIPIFInt": "QXClientObject", "CFtpFileFind": "void",
    "CFtpConnection": "void", "TInternetSession": "void",
}
CALL = "CallingConvention = CallingConvention.Cdecl"


def type_text(kind):
    name = kind.name.removeprefix("const ")
    plain = name.rstrip("*")
    return TYPES.get(plain, plain) + name[len(plain):]


def parameters(function):
    return ", ".join(f"{type_text(parameter.type)}{TOGETHER}{parameter.name}" for parameter in function.parameters)


def delegate(function):
    yield "    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]"
    yield wrapped(f"    public delegate {type_text(function.result)} {function.name}({parameters(function)});")


def field(member, slots):
    """Arrays are of bytes, or of pointers, of which no record of C# can have some: these are single fields."""
    if member.name in slots:
        return [f"        public IntPtr {member.name};"]
    name = type_text(member.type)
    if member.type.count is None:
        return [f"        public {name} {member.name};"]
    if name.endswith("*"):
        return [f"        public {name} {member.name}{number};" for number in range(member.type.count)]
    return [f"        public fixed {name} {member.name}[{member.type.count}];"]


def record(described, slots):
    yield "    [StructLayout(LayoutKind.Sequential)]"
    yield f"    public struct {described.name} {{"
    for member in described.fields:
        yield from field(member, slots)
    yield "    }"


def imported(function):
    yield f"    [DllImport(LIBRARY, {CALL})]"
    yield wrapped(f"    public static extern {type_text(function.result)} {function.name}({parameters(function)});")


def raw(description):
    slots = {slot.name for slot in description.slots}
    lines = [f"    public const int {name} = {value};" for name, value in description.numbers.items()]
    for function in (*description.callbacks, *description.slots):
        lines += delegate(function)
    for described in description.records:
        lines += record(described, slots)
    for function in (*description.exports, *description.dialog_exports):
        lines += imported(function)
    return lines
