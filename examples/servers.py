# SPDX-License-Identifier: MIT
"""Real FTP servers on loopback for the demonstration and the benchmark, through tests/fixture."""

import json
import os
import pathlib
import socket
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FIXTURE = ROOT / "tests/fixture"


def run_under_fixture(scratch=None):
    """Starts the running script anew beside the fixture controller, unless it is there already.

    The servers keep their files below `scratch`.
    """
    if "QX_FIXTURE_PORT" in os.environ:
        return
    if scratch:
        os.environ["TMPDIR"] = str(scratch)
    runner = str(FIXTURE / "run-with-fixture")
    sys.stdout.flush()
    os.execv(runner, [runner, sys.executable, *sys.argv])


class Started:
    """A server that the fixture has started, of any kind and script. It ends with `with`, at the latest with the
    script that asked for it. `controller` is the port of another one than that which the script runs beside."""

    def __init__(self, kind, script, controller=None):
        self._socket = socket.create_connection(("127.0.0.1", controller or int(os.environ["QX_FIXTURE_PORT"])))
        self._answers = self._socket.makefile("r", encoding="utf-8")
        self.started = self._request(op="start", kind=kind, script=script)
        self._number = self.started["id"]
        self.host, self.port = self.started["host"], self.started["port"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._answers.close()
        self._socket.close()

    def _request(self, **request):
        self._socket.sendall(json.dumps(request).encode() + b"\n")
        answer = json.loads(self._answers.readline())
        for refusal in ("error", "unavailable"):
            if refusal in answer:
                raise RuntimeError(answer[refusal])
        return answer

    def ask(self, op, **arguments):
        """One of the requests that tests/fixture/README.md lists."""
        return self._request(op=op, id=self._number, **arguments)


class Server(Started):
    """One server of the kind "pyftpdlib" or "vsftpd".

    Where it is `encrypted` it takes no plain login. Programs that go by the environment for it trust its `authority`.
    """

    def __init__(self, kind, encrypted=False, host="127.0.0.1", controller=None):
        self.kind = kind
        self.encrypted = encrypted
        # Wine's TLS resumes no sessions, as servers usually want it of data connections.
        tls = {"tls": {"reuse": False}} if encrypted else {}
        super().__init__(kind, {"host": host, **tls}, controller)
        self.user, self.password = self.started["user"], self.started["password"]
        self.authority = f"{os.environ['QX_FIXTURE_DIR']}/certificates/authority.pem"
        if encrypted:
            os.environ["SSL_CERT_FILE"] = self.authority

    def exists(self, path):
        return self.ask("stat", path=path)["exists"]

    def size(self, path):
        """None when there is no such file."""
        return self.ask("stat", path=path).get("size")

    def matches(self, path, seed, size):
        """Whether the server's file is exactly the pattern of this seed and size."""
        return self.ask("matches", path=path, seed=seed, size=size)["matches"]


class WebServer:
    """Python's own web server for the files of a folder. It ends with `with`."""

    host = "127.0.0.1"

    def __init__(self, folder):
        command = [sys.executable, "-u", "-m", "http.server", "0", "--bind", self.host, "--directory", str(folder)]
        self._process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        # "Serving HTTP on 127.0.0.1 port 12345 (http://127.0.0.1:12345/) ..."
        self.port = int(self._process.stdout.readline().split(" port ")[1].split()[0])

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.communicate()


def pattern():
    """The module that makes file contents of (seed, size), as the servers do."""
    if str(FIXTURE) not in sys.path:
        sys.path.insert(0, str(FIXTURE))
    import pattern as module

    return module


def write_pattern(path, seed, size):
    with open(path, "wb") as file:
        for piece in pattern().chunks(seed, size):
            file.write(piece)


def file_matches(path, seed, size):
    """Whether the local file is exactly the pattern of this seed and size."""
    with open(path, "rb") as file:
        return pattern().same(iter(lambda: file.read(1 << 20), b""), pattern().chunks(seed, size))


class Build:
    """The programs of one build; a Windows build runs under Wine."""

    def __init__(self, name):
        self.name = name
        self.windows = name.startswith("windows")
        self.folder = ROOT / "build" / name / "bin"
        self.library = self.folder / ("ZRM_QXKT32x64.dll" if self.windows else "libZRM_QXKT32x64.so")

    def command(self, program):
        path = self.folder / (program + ".exe" if self.windows else program)
        if not path.exists():
            sys.exit(f"{path} is not built: cmake --build --preset {self.name}")
        return [str(ROOT / "tools/wine-runner"), str(path)] if self.windows else [str(path)]

    def local(self, path):
        """The name by which the build's programs know a file of this machine."""
        return f"Z:{path}" if self.windows else str(path)
