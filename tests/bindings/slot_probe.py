#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""slot_probe.py FOLDER: writes a stand-in for the library in C, and in each language of bindings/ what calls all of it.

The stand-in's functions have the types that the C compiler checks against the public headers; each notes what it was
given. The calls are made with the types of the binding: what arrives tells whether both agree, and so do the offsets of
all fields.
"""

import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))

from languages import csharp, pascal, python  # noqa: E402  (found through the path above)
from languages.description import TABLE, describe  # noqa: E402

ADDRESS = 0x7EDC << 48
TEXTS = ("const char*", "char*")
RESULTS = {"void": lambda slot: 0, "QXBool": lambda slot: slot + 100, "uint32_t": lambda slot: 0xFFFF0000 + slot}


def value_of(kind, slot, index):
    """A number that no other argument has, as wide as its type."""
    if kind.name in ("QXBool", "uint32_t"):
        return (0x80 if kind.name == "QXBool" else 0x80000000) + (slot << 4 if kind.name == "uint32_t" else 0) + index
    return ADDRESS + (slot << 8) + index


def result_of(function, slot):
    return RESULTS.get(function.result.name, lambda slot: ADDRESS + slot)(slot)


def arguments(function, slot):
    """(type, value or text) of each argument behind the client."""
    for index, parameter in enumerate(function.parameters[1:], 1):
        is_text = parameter.type.name in TEXTS
        yield parameter.type, f"{slot}.{index}" if is_text else value_of(parameter.type, slot, index)


def shown(value):
    return value if isinstance(value, str) else f"{value:x}"


def expected(description):
    """What is noted of all calls, one after the other, each with the result that the caller has got."""
    return "".join(" ".join([function.name, *(shown(value) for _, value in arguments(function, slot)),
                             f"-> {result_of(function, slot):x}"]) + "\n"
                   for slot, function in enumerate(description.slots))


def fields(description):
    return [(record.name, member.name) for record in description.records for member in record.fields]


# In C

C_HEAD = '''\
#include <stdio.h>

#include "QXExports.h"
#include "QXHooks.h"

static char g_seen[200];

static void note(const char* text) { snprintf(g_seen + strlen(g_seen), sizeof g_seen - strlen(g_seen), "%s ", text); }
static void noteNumber(uint64_t value) {
  char text[20];
  snprintf(text, sizeof text, "%llx", (unsigned long long)value);
  note(text);
}

// What was noted since the last question.
const char* QXProbeSeen(void) {
  static char answer[sizeof g_seen];
  memcpy(answer, g_seen, sizeof answer);
  g_seen[0] = '\\0';
  return answer;
}
'''


def c_function(function, slot):
    parameters = ", ".join(f"{member.type.name} {member.name}" for member in function.parameters)
    yield f"static {function.result.name} QX_CALL probe_{function.name}({parameters}) {{"
    yield f'  (void){function.parameters[0].name};\n  note("{function.name}");'
    for member in function.parameters[1:]:
        yield f"  note({member.name});" if member.type.name in TEXTS else f"  noteNumber((uint64_t){member.name});"
    if function.result.name != "void":
        yield f"  return ({function.result.name}){result_of(function, slot):#x};"
    yield "}"


def c_text(name, text):
    lines = "\n".join(f'      "{line}\\n"' for line in text.splitlines())
    return f"const char* {name}(void) {{\n  return\n{lines};\n}}"


def c_source(description):
    lines = [C_HEAD]
    for slot, function in enumerate(description.slots):
        lines += c_function(function, slot)
    lines.append("static const QXClientTable g_table = {")
    lines += [f"    .{function.name} = &probe_{function.name}," for function in description.slots]
    lines.append("};\nstatic QXClientObject g_client = {.pTable = &g_table};")
    lines.append("QXClientObject* QXProbeClient(void) { return &g_client; }")
    lines.append(c_text("QXProbeExpected", expected(description)))
    places = [f'  printf("{record}.{field} %zu\\n", offsetof({record}, {field}));'
              for record, field in fields(description)]
    sizes = [f'  printf("{record.name} %zu\\n", sizeof({record.name}));' for record in description.records]
    lines += ["const char* QXProbeLayout(void) {", "  static char answer[20000];", "  answer[0] = '\\0';"]
    lines += [line.replace("printf(", "snprintf(answer + strlen(answer), 100, ") for line in places + sizes]
    return "\n".join([*lines, "  return answer;", "}", ""])


# In Python

def python_value(kind, value):
    if isinstance(value, str):
        name = python.type_text(kind)
        return f'b"{value}"' if name == "c_char_p" else f'create_string_buffer(b"{value}")'
    is_number = not kind.name.endswith("*") and kind.name != "QXProgress"
    return hex(value) if is_number else f"cast({value:#x}, {python.type_text(kind)})"


def python_source(description):
    lines = ["from ctypes import *", "from qxclient import *", "", "", "def calls(client, noted):"]
    for slot, function in enumerate(description.slots):
        values = ", ".join(["addressof(client)", *(python_value(*argument) for argument in arguments(function, slot))])
        lines.append(f"    noted(client.pTable.contents.{function.name}({values}))")
    lines += ["", "", "def layout(tell):"]
    lines += [f'    tell("{record}.{field}", {record}.{field}.offset)' for record, field in fields(description)]
    lines += [f'    tell("{record.name}", sizeof({record.name}))' for record in description.records]
    return "\n".join([*lines, ""])


# In C#

def csharp_value(kind, value):
    if isinstance(value, str):
        return f'Text("{value}")'
    name = csharp.type_text(kind)
    if name in ("IntPtr", "UIntPtr"):
        return f"new {name}(unchecked(({'long' if name == 'IntPtr' else 'ulong'}){value:#x}))"
    return f"({'Raw.' if name.startswith('QX') else ''}{name}){value:#x}"


def csharp_call(function, slot):
    values = ", ".join(["client", *(csharp_value(*argument) for argument in arguments(function, slot))])
    call = f"Of<Raw.{function.name}>(client->pTable->{function.name})({values})"
    return f"{call}; noted(0);" if function.result.name == "void" else f"noted((ulong){call});"


def csharp_place(record, member):
    is_many = member.type.count is not None
    if is_many and member.type.name.endswith("*"):
        return f"&at->{member.name}0"
    return f"at->{member.name}" if is_many else f"&at->{member.name}"


CSHARP_HEAD = """\
using System;
using System.Runtime.InteropServices;
using QX;

static unsafe class SlotCalls {
    static T Of<T>(IntPtr address) {
        return (T)(object)Marshal.GetDelegateForFunctionPointer(address, typeof(T));
    }
    static byte* Text(string text) { return (byte*)Marshal.StringToHGlobalAnsi(text); }
    public static void All(Raw.QXClientObject* client, Action<ulong> noted) {
"""


def csharp_source(description):
    lines = [CSHARP_HEAD]
    lines += [f"        {csharp_call(function, slot)}" for slot, function in enumerate(description.slots)]
    lines += ["    }", "    public static void Layout(Action<string, long> tell) {"]
    for record in description.records:
        lines.append(f"        {{ var at = (Raw.{record.name}*)0x10000;")
        lines += [f'        tell("{record.name}.{member.name}", (byte*){csharp_place(record, member)} - (byte*)at);'
                  for member in record.fields]
        lines.append("        }")
    lines += [f'        tell("{record.name}", sizeof(Raw.{record.name}));' for record in description.records]
    return "\n".join([*lines, "    }", "}", ""])


# In Pascal

def pascal_value(kind, value):
    if isinstance(value, str):
        return f"'{value}'"
    name = pascal.type_text(kind)
    return f"${value:x}" if name in ("Byte", "Cardinal", "NativeUInt") else f"{name}(NativeUInt(${value:x}))"


def pascal_call(function, slot):
    values = ", ".join(["Client", *(pascal_value(*argument) for argument in arguments(function, slot))])
    call = f"Client^.pTable^.{function.name}({values})"
    return f"{call}; Noted(0);" if function.result.name == "void" else f"Noted(NativeUInt({call}));"


def pascal_source(description):
    lines = ["procedure CallAll(Client: PQXClientObject);", "begin"]
    lines += [f"  {pascal_call(function, slot)}" for slot, function in enumerate(description.slots)]
    lines += ["end;", "procedure TellLayout;", "begin"]
    lines += [f"  Tell('{record}.{field}', NativeUInt({'@@' if record == TABLE else '@'}P{record}(nil)^.{field}));"
              for record, field in fields(description)]  # one @ gives the function that such a field holds
    lines += [f"  Tell('{record.name}', SizeOf(T{record.name}));" for record in description.records]
    return "\n".join([*lines, "end;", ""])


def main(folder):
    description = describe(ROOT)
    for name, source in (("slot_probe.c", c_source), ("slot_calls.py", python_source), ("SlotCalls.cs", csharp_source),
                         ("slotcalls.inc", pascal_source)):
        (Path(folder) / name).write_text(source(description), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
