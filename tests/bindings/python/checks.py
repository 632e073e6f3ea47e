# SPDX-License-Identifier: MIT
"""checks.py PROBE PORT PORT-OF-BYTES FOLDER: the cases of the binding for Python.

tests/bindings/driver.py has the servers.
"""

import ctypes
import os
import signal
import sys
import threading
import time
from datetime import datetime
from pathlib import Path

import qxclient
import slot_calls
from qxclient import Client, Library, QXCancelled, QXError

STALL = 300000  # where /pub/stalled rests
SOON_MS = 10000  # far below the 30 s after which the library gives a silent server up

CASES = []
library = Library()
probe, port, bytes_port, folder = ctypes.CDLL(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3]), Path(sys.argv[4])


def case(function):
    CASES.append(function)
    return function


def check(good, *why):
    if not good:
        raise AssertionError(*why)


def same(found, expected):
    check(found == expected, f"{found!r} in place of {expected!r}")


def failure(kind, function, *arguments):
    """What the call raises, which has to be of that kind."""
    try:
        answer = function(*arguments)
    except kind as error:
        return error
    raise AssertionError(f"answers {answer!r}")


def make(at=port):
    client = Client(library)
    client.set_login("127.0.0.1", "me", "secret", at)
    return client


def of_probe(name, kind=ctypes.c_char_p):
    function = getattr(probe, name)
    function.restype = kind
    return function()


@case
def layout():
    lines = []
    slot_calls.layout(lambda name, number: lines.append(f"{name} {number}\n"))
    same("".join(lines).encode(), of_probe("QXProbeLayout"))


@case
def slots():
    lines = []
    client = qxclient.QXClientObject.from_address(of_probe("QXProbeClient", ctypes.c_void_p))
    slot_calls.calls(client, lambda result: lines.append(of_probe("QXProbeSeen") + b"-> %x\n" % (result or 0)))
    same(b"".join(lines), of_probe("QXProbeExpected"))


@case
def lists():
    with make() as client:
        entries = {entry.name: entry for entry in client.list("/pub")}
        same(set(entries), {"a.txt", "empty", "large", "stalled", "sub"})
        same(entries["large"][1:3], (False, 700000))
        check(entries["sub"].is_directory)
        same(entries["a.txt"].modified, datetime(2024, 2, 29, 12, 34, 56))
        same([entry.name for entry in client.list("/pub", "a*")], ["a.txt"])
        same(client.list("/none"), [])


@case
def tells_entries():
    with make() as client:
        names = []
        client.use(entry=lambda entry: names.append(entry.name))
        client.list("/pub")
        same(set(names), {"a.txt", "empty", "large", "stalled"})


@case
def downloads_with_progress():
    with make() as client:
        seen = []

        def poll(progress):
            if progress.transferred and not seen:
                print("moving", flush=True)
                seen.append(progress)

        client.use(poll=poll)
        client.download("/pub/large", folder / "large")
        same((folder / "large").stat().st_size, 700000)
        check(seen[0].is_known)
        same(seen[0].total, 700000)


@case
def uploads():
    with make() as client:
        client.download("/pub/large", folder / "mine")
        client.upload(folder / "mine", "/pub/sub/mine")
        same(client.size("/pub/sub/mine"), 700000)


@case
def broken_upload():
    with make() as client:
        check(failure(QXError, client.upload, folder / "mine", "/pub/full").report.text)


@case
def tells_no_from_not_known():
    with make() as client:
        check(client.file_exists("/pub/a.txt") and not client.file_exists("/pub/none"))
        check(client.directory_exists("/pub/sub") and not client.directory_exists("/pub/none"))
        same(client.size("/pub/empty"), 0)
        failure(QXError, client.size, "/pub/none")
        same(failure(QXError, client.file_exists, "/pub/a\n").report.number, 87)


@case
def moves_content():
    with make() as client:
        client.write("/pub/sub/bindings.txt", b"first")
        client.append("/pub/sub/bindings.txt", b", second")
        same(client.read("/pub/sub/bindings.txt"), b"first, second")
        same(client.read("/pub/empty"), b"")
        failure(QXError, client.read, "/pub/none")
        failure(QXError, client.write, "/pub/sub/bindings.txt", b"")


@case
def changes_the_server():
    with make() as client:
        client.create_directory("/pub/new/inner")
        same(client.create_new_directory("/pub", "new"), "/pub/new (1)")
        client.copy("/pub/sub/bindings.txt", "/pub/new/b")
        client.move("/pub/new/b", "/pub/new/c")
        client.rename("/pub/new/c", "/pub/new/d")
        same(client.count("/pub/new"), (1, 1))
        client.remove("/pub/new/d")
        client.remove_directory("/pub/new/inner")
        same(client.list("/pub/new"), [])


@case
def keeps_the_record():
    with make() as client:
        error = failure(QXError, client.connect, "127.0.0.1", "me", "wrong", port)
        same(error.report.number, qxclient.QX_ERROR_INCORRECT_PASSWORD)
        check("password" in error.report.text and "password" in str(error), error.report.text)
        same(error.report.message, "TQXIP::FTPConnect - OUT: Failed!")
        client.connect("127.0.0.1", "me", "secret", port)
        check(not client.report.is_set)
        client.disconnect()


@case
def keeps_the_report_of_a_success():
    with make() as client:
        errors = []
        client.use(error=lambda number, text: errors.append((number, text)))
        client.retries = 1
        same(client.read("/pub/a.txt"), b"hello")
        same(client.report.number, qxclient.QX_ERROR_REFUSED)
        same([number for number, _ in errors], [qxclient.QX_ERROR_REFUSED])
        check("451" in errors[0][1], errors)


@case
def tells_the_protocol():
    with make() as client:
        lines, events = [], []
        client.use(line=lines.append, connected=lambda: events.append(1), disconnected=lambda: events.append(0))
        client.connect("127.0.0.1", "me", "secret", port)
        check(client.object.m_bConnected, "the library's own part is done as well")
        client.disconnect()
        check("> PASS ****" in lines, lines)
        same((events[0], events[-1]), (1, 0))


def milliseconds_to_end(client, ask, kind=QXCancelled):
    """From the moment that `ask`, called when the download rests, has had its way, to the end of the operation."""
    asked = []

    def poll(progress):
        if progress.transferred < STALL // 4096 * 4096 or asked:
            return False
        asked.append(time.perf_counter())
        return ask()

    client.use(poll=poll)
    error = failure(kind, client.download, "/pub/stalled", folder / "stalled")
    took = (time.perf_counter() - asked[0]) * 1000
    print(f"measured {took:.1f} ms")
    check(took < SOON_MS, took)
    same(client.size("/pub/large"), 700000)
    return error


@case
def cancels_a_stall():
    with make() as client:
        check(milliseconds_to_end(client, lambda: True).report.is_cancelled)


@case
def cancels_from_a_thread():
    with make() as client:
        thread = threading.Thread(target=client.cancel)
        milliseconds_to_end(client, thread.start)
        thread.join()


@case
def cancels_by_the_keyboard():
    with make() as client:
        # While the library waits: Python notices the signal when it calls, before a hook of the host's runs.
        rests = threading.Event()
        thread = threading.Thread(target=lambda: rests.wait() and os.kill(os.getpid(), signal.SIGINT))
        thread.start()
        milliseconds_to_end(client, rests.set, KeyboardInterrupt)
        thread.join()
        check(signal.getsignal(signal.SIGINT) is signal.default_int_handler)


def raise_error():
    raise ZeroDivisionError("mine")


@case
def raises_from_poll():
    with make() as client:
        same(str(milliseconds_to_end(client, raise_error, ZeroDivisionError)), "mine")


@case
def raises_from_a_worker():
    with make() as client:
        threads = set()

        def line(text):
            threads.add(threading.get_ident())
            if "RETR" in text:
                raise_error()

        client.use(line=line)
        failure(ZeroDivisionError, client.download, "/pub/stalled", folder / "stalled")
        check(threads - {threading.get_ident()}, "no other thread")


@case
def keeps_names():
    with make() as client:
        names = sorted(entry.name for entry in client.list("/names"))
        same(names, ["gr\u00fcn", "\u00fc \u65e5\u672c"])
        for name in names:
            same(client.read(f"/names/{name}"), b"text")
        client.download(f"/names/{names[0]}", folder / "\u00fc")
        same((folder / "\u00fc").read_bytes(), b"text")


@case
def keeps_bytes():
    with Client(library) as client:
        client.set_login("127.0.0.1", port=bytes_port)
        same([entry.name for entry in client.list("/names")], ["gr\udcfcn"])
        same(client.read("/names/gr\udcfcn"), b"text")
        same(client.read(b"/names/gr\xfcn"), b"text")


@case
def keeps_texts_of_a_code_page():
    # In the code page, which lacks the next two, and which would show the last one as UTF-8 of another.
    text, data = "/gr\u00fcn/\u65e5\u672c/\u00c3\u00bc", b"/gr\xfcn/\xe6\x97\xa5\xe6\x9c\xac/\xc3\x83\xc2\xbc"
    qxclient.CODE_PAGE = "cp1252"
    try:
        same(qxclient.to_bytes(text), data)
        same(qxclient.to_text(data), text)
        failure(UnicodeEncodeError, qxclient.local_path, "/\u65e5")
    finally:
        qxclient.CODE_PAGE = None


@case
def refuses_nul():
    with make() as client:
        failure(ValueError, client.remove, "/pub/large\0.txt")
        failure(ValueError, client.remove, b"/pub/large\0.txt")
        check(client.file_exists("/pub/large"))


@case
def ends_in_a_hook():
    client = make()
    client.use(poll=lambda progress: client.close())
    failure(QXError, client.download, "/pub/stalled", folder / "stalled")
    failure(QXError, client.size, "/pub/large")


@case
def ends_on_another_thread():
    client, waits = make(), threading.Event()
    client.use(line=lambda line: line == "> USER nobody" and waits.set())
    thread = threading.Thread(target=lambda: waits.wait() and client.close())
    thread.start()
    began = time.perf_counter()
    failure(QXError, client.connect, "127.0.0.1", "nobody", "", port)
    check((time.perf_counter() - began) * 1000 < SOON_MS)
    thread.join()


@case
def finds_the_library_beside_itself():
    same(qxclient.default_path(str(folder)), qxclient.LIBRARY_NAME)
    (folder / qxclient.LIBRARY_NAME).touch()
    same(qxclient.default_path(str(folder)), str(folder / qxclient.LIBRARY_NAME))


@case
def leaves_nothing():
    library.DllAddRef()
    same(library.DllRelease(), 0)


def run(function):
    try:
        function()
        print(f"ok {function.__name__}", flush=True)
        return True
    except Exception as error:
        print(f"failed {function.__name__}: {error!r}", flush=True)
        return False


sys.exit(0 if all([run(function) for function in CASES]) else 1)
