# SPDX-License-Identifier: MIT
"""Servers that a person tries the hosts on: the scripted ones of the tests, until Enter is pressed."""

import json
import os
import socket

_TREE = {
    "/hello.txt": "hello\n",
    "/large.bin": {"size": 1 << 30},
    "/slow.bin": {"size": 60 << 20},
    "/folder/": {},
}
# A minute long.
_SLOW = {"on": "RETR", "argument": "/slow.bin", "do": [{"normal": {"pace": {"bytes": 1 << 18, "ms": 250}}}]}
_SERVERS = {
    "ftp": {"tree": _TREE, "rules": [_SLOW]},
    "ftpes": {"tree": _TREE, "tls": {"reuse": "522 Resume the session of the login"}},
}


class Controller:
    def __init__(self, port):
        self._stream = socket.create_connection(("127.0.0.1", int(port))).makefile("rw", encoding="utf-8", newline="\n")

    def ask(self, **request):
        self._stream.write(json.dumps(request) + "\n")
        self._stream.flush()
        return json.loads(self._stream.readline())


def serve(port, name):
    """Tells how to reach each server. `name`: how a Windows program is called from here."""
    controller = Controller(port)
    for scheme, script in _SERVERS.items():
        answer = controller.ask(op="start", kind="ftp-script", script=script)
        if "port" not in answer:
            print(f"{scheme}: {answer.get('unavailable') or answer['error']}")
            continue
        print(f"{scheme}: {name} --host {scheme}://u:p@127.0.0.1:{answer['port']} ls /", flush=True)
    try:
        input(f"Enter ends them.{os.linesep}")
    except EOFError:
        pass
