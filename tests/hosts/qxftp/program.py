# SPDX-License-Identifier: MIT
"""qxftp as tests run it: with pipes, or on a terminal of its own."""

import fcntl
import json
import os
import pathlib
import pty
import re
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "fixture"))

from testcase import ControllerClient, Server  # noqa: E402  (found through the path above)

COMMAND = sys.argv[1:]  # the program, under Wine behind what runs it
WINDOWS = len(COMMAND) > 1
SECONDS = 120  # for what has to come; a machine may be busy
BEFORE_TIMEOUTS = 20  # every time-out of the library is longer


class Terminal:
    """The program as the foreground of a terminal of some columns."""

    def __init__(self, arguments, columns=80, command=COMMAND, patience=SECONDS):
        self._patience = patience
        self._process, self._master = pty.fork()
        if self._process == 0:
            os.execvp(command[0], [*command, *map(str, arguments)])
        fcntl.ioctl(self._master, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        self.output = ""

    def _read(self):
        """Whether there was more."""
        if not select.select([self._master], [], [], self._patience)[0]:
            raise AssertionError(f"silent behind {self.output[-400:]!r}")
        try:
            piece = os.read(self._master, 65536)
        except OSError:  # the other side has ended
            piece = b""
        self.output += piece.decode(errors="replace")
        return bool(piece)

    def wait_for(self, pattern, test=lambda match: True):
        while not any(map(test, re.finditer(pattern, self.output))):
            if not self._read():
                raise AssertionError(f"no {pattern} in {self.output[-1000:]!r}")

    def type(self, text):
        os.write(self._master, text.encode())

    def type_until_the_end(self, text):
        """Two signals of one kind that come at once are one to the program."""
        while self._is_open():
            self.type(text)

    def _is_open(self):
        return not select.select([self._master], [], [], 0.05)[0] or self._read()

    def exit_code(self):
        while self._read():
            pass
        os.close(self._master)
        return os.waitstatus_to_exitcode(os.waitpid(self._process, 0)[1])

    def lines(self):
        """What was drawn, each drawing as a line."""
        return [line for line in re.split(r"[\r\n]+", self.output) if line.strip()]


class ProgramCase(unittest.TestCase):
    seconds = 600  # that a run may take at most

    def setUp(self):
        self.controller = ControllerClient()
        self.addCleanup(self.controller.close)
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=os.environ["QX_FIXTURE_DIR"]))
        self.addCleanup(shutil.rmtree, self.folder)

    def start(self, kind="ftp-script", **script):
        return Server(self.controller, kind, **script)

    @staticmethod
    def address(server, path="/pub", scheme="ftp"):
        login = "{user}:{password}@".format(**server.answer) if "user" in server.answer else ""
        options = "" if scheme == "ftp" else ";verify=no"
        return f"{scheme}://{login}127.0.0.1:{server.address[1]}{options}{path}"

    @staticmethod
    def local(path):
        return f"Z:{path}" if WINDOWS else str(path)

    def run_program(self, *arguments, command=COMMAND):
        return subprocess.run([*command, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", errors="replace", timeout=self.seconds,
                              check=False)

    def succeed(self, *arguments):
        """The standard output of a run without a word on the other one."""
        done = self.run_program(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout[-500:])
        return done.stdout

    def fail_with(self, code, *arguments):
        """What a run says that ends with this exit code."""
        done = self.run_program(*arguments)
        self.assertEqual(done.returncode, code, done.stdout + done.stderr)
        return done.stderr

    def results(self, *arguments):
        return json.loads(self.run_program("--json", *arguments).stdout)

    def write(self, name, content, mtime=None):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content.encode())
        if mtime is not None:
            os.utime(path, (mtime, mtime))
        return path


def files_in(folder):
    """{relative path: content}, folders as None."""
    return {str(path.relative_to(folder)): path.read_bytes() if path.is_file() else None
            for path in folder.rglob("*")}


def commands(server, verb):
    """The arguments that a scripted server has got with a verb."""
    lines = [line.split(" ", 1) for line in server.ask("log")["commands"]]
    return [line[1] if len(line) > 1 else "" for line in lines if line[0] == verb]


def chosen(tests, beginnings):
    """Those of the tests whose names begin so."""
    cases = [case for suite in tests for case in suite]
    return unittest.TestSuite(case for case in cases if case.id().rsplit(".", 1)[1].startswith(beginnings))


def main():
    sys.exit(unittest.main(module="__main__", argv=sys.argv[:1]))
