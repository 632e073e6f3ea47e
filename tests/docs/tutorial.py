#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""tutorial.py ARCHIVE: does what docs/tutorial.md says, word by word, with the package for Linux.

Commands are typed, files are saved under the names that stand in their first lines, and what commands print has to be
what stands behind them: in any order of lines, and some of the percentages may have passed unseen. Only packages are
not installed, and the server's port is any free one.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent.parent / "tools"))

from rules import documents, sources  # noqa: E402

PAGE = sources.File(Path("docs/tutorial.md"))
PORT = "2121"
STARTED = re.compile(r"starting FTP server on \S+:(\d+)")
PERCENTAGE = re.compile(r"\d+ %")
NAMED = re.compile(r"(?://|#) (\S+)\n")
END = "-- that was all --\n"
PATIENCE = 120


class Wrong(Exception):
    pass


class Reader:
    """Somebody who has the page, the archive, a terminal and an empty folder."""

    def __init__(self, folder, archive):
        self._folder, self._archive = folder / "first", archive
        self._port = PORT
        self._printed = ""
        self._shell = subprocess.Popen(
            ["bash", "-e"], cwd=folder, env=os.environ | {"PATH": "/usr/bin:/bin"}, text=True,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._shell.communicate("kill $(jobs -p) 2>/dev/null || true\n")

    def do(self, block):
        text = block.text.replace(PORT, self._port)
        if block.language == "text":
            self._compare(text)
        elif block.language == "sh":
            self._type(text)
        else:
            (self._folder / NAMED.match(text)[1]).write_text(text, encoding="utf-8")

    def _type(self, text):
        if "apt-get" in text:
            return
        if "tar " in text:
            shutil.copy(self._archive, self._folder)
        starts = f"--port={PORT}" in text
        text = text.replace(f"--port={PORT}", "--port=0")
        self._shell.stdin.write(f"{{\n{text}}} </dev/null\necho '{END.strip()}'\n")
        self._shell.stdin.flush()
        self._printed = self._output()
        if starts:
            self._port = self._port_of_server()

    def _output(self):
        lines = []
        for line in self._shell.stdout:
            if line == END:
                return "".join(lines)
            lines.append(line)
        raise Wrong("these commands fail:\n" + "".join(lines))

    def _port_of_server(self):
        log = self._folder / "server.log"
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            if log.exists() and (started := STARTED.search(log.read_text(encoding="utf-8"))):
                return started[1]
            time.sleep(0.02)
        raise Wrong("the server does not start")

    def _compare(self, text):
        expected, printed = text.splitlines(), self._printed.splitlines()
        unseen = [line for line in expected if PERCENTAGE.fullmatch(line) and line not in printed]
        if sorted(printed + unseen) != sorted(expected):
            raise Wrong(f"these commands print:\n{self._printed}")


def main():
    archive = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as folder, Reader(Path(folder), archive) as reader:
        for block in documents.blocks_of(PAGE):
            try:
                reader.do(block)
            except Wrong as wrong:
                sys.exit(str(block.finding(wrong)))
    print("it all works as the page says")


if __name__ == "__main__":
    main()
