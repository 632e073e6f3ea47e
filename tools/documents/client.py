# SPDX-License-Identifier: MIT
"""The built library for the tools that write documents: its operations by their slots, as any host calls them."""

import ctypes
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

_SLOT = re.compile(r"(\w+)[ *]*\(QX_CALL\* (\w+)\)\(TQXIPIFInt\* pClient")
_RESULTS = {"QXBool": ctypes.c_bool, "uint32_t": ctypes.c_uint32}
_ERROR_TEXT = 12  # its place in the error record
_ERROR_RECORD = 4112


def slots():
    """(number, type of the result) of each operation, by its name, from the table that hosts in C see."""
    table = (ROOT / "include/QXClientTable.h").read_text()
    return {name: (number, _RESULTS.get(result)) for number, (result, name) in enumerate(_SLOT.findall(table))}


def _argument(value):
    """A number takes a whole register, or a whole place on the stack, however wide it is."""
    if isinstance(value, str):
        return ctypes.c_char_p(value.encode())
    return ctypes.c_void_p(value) if value is None or isinstance(value, int) else value


class Client:
    """client.FTPRmvFile(...) calls the slot of that name. The client ends with `with`."""

    def __init__(self, library):
        self._library = ctypes.CDLL(str(library))
        self._record = ctypes.create_string_buffer(_ERROR_RECORD)
        self._library.CreateQXIPIFInstance.restype = ctypes.c_void_p
        self._object = ctypes.c_void_p(self._library.CreateQXIPIFInstance(self._record))
        self._slots = slots()

    def __getattr__(self, name):
        number, result = self._slots[name]
        table = ctypes.cast(self._object, ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p)))[0]
        operation = ctypes.CFUNCTYPE(result)(table[number])
        return lambda *arguments: operation(self._object, *map(_argument, arguments))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._library.FreeQXIPIFInstance(self._object)

    def failure(self):
        """What the error record tells."""
        return self._record.raw[_ERROR_TEXT:].partition(b"\0")[0].decode()
