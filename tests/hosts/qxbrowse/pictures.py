#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""pictures.py PROGRAM READER LIBRARY FOLDER: takes the pictures of qxbrowse for the documents, at a server made for
them. For tools/pictures; runs under run-with-fixture."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "examples"))
from screen import ROOT, Browser, Screen, wait_for, windows_path  # noqa: E402
from screen_test import SERVER, Morning  # noqa: E402
from servers import Started  # noqa: E402

HELD = 30_000_000
TREE = {
    "/pub/photos/": {},
    "/pub/recordings/": {},
    "/pub/harbour.mov": {"size": 48_000_000, "seed": 1, "mtime": "20260714183000"},
    "/pub/lighthouse.jpg": {"size": 3_400_000, "seed": 2, "mtime": "20260715091500"},
    "/pub/market.jpg": {"size": 2_900_000, "seed": 3, "mtime": "20260715102200"},
    "/pub/notes.txt": "What to do next.\n" * 40,
    "/pub/report.pdf": {"size": 640_000, "seed": 4, "mtime": "20260902140000"},
}
SCRIPT = {
    "host": "127.0.0.1",
    "tls": {"certificate": "self-signed"},
    "tree": TREE,
    "rules": [{"on": "RETR", "argument": "/pub/harbour.mov", "do": [
        {"normal": {"stall_after": HELD, "gate": "held", "pace": {"bytes": 1_000_000, "ms": 60}}}]}],
}
LOCAL_FILES = {"budget.ods": 41_000, "cover letter.odt": 23_500, "holiday plan.txt": 1_200, "report.pdf": 610_000,
               "todo.txt": 310}


class Album:
    def __init__(self, screen, folder):
        self._environment = dict(os.environ, DISPLAY=screen.display)
        self._folder = pathlib.Path(folder)

    def _run(self, *command):
        return subprocess.run(command, env=self._environment, check=True, capture_output=True, text=True).stdout

    def take(self, name, moves=False):
        """Two equal pictures in a row: everything is drawn. One will do of what `moves`."""
        file = str(self._folder / f"{name}.png")
        seen = []

        def is_at_rest():
            self._run("import", "-window", "root", file)
            seen.append(self._run("identify", "-format", "%#", file))
            return moves or seen[-1:] == seen[-2:-1]

        wait_for(f"{name} to be drawn", is_at_rest)
        self._run("mogrify", "-trim", "+repage", "-strip", "+dither", "-colors", "64", file)
        print(f"pictures: {file} {os.path.getsize(file)} bytes", flush=True)


def show(server, screen, browser, album):
    user = Morning(server, screen, browser, None, None)
    browser.main()
    screen.key("ctrl+n")
    browser.dialog("Connect to a server", "Photographs")
    album.take("browse-connect")
    screen.key("Return")
    browser.dialog("The server's certificate")
    album.take("browse-certificate")
    screen.key("alt+o")
    user.wait_for_names(SERVER, *sorted(name.removeprefix("/pub/").rstrip("/") for name in TREE if name.endswith("/")),
                        *sorted(name.removeprefix("/pub/") for name in TREE if not name.endswith("/")))
    album.take("browse")
    user.choose(SERVER, "report.pdf")
    screen.key("F5")
    browser.dialog("Replace a file?", "report.pdf")
    album.take("browse-replace")
    screen.key("Escape")
    browser.main()
    user.choose(SERVER, "harbour.mov")
    screen.key("shift+Down", "shift+Down", "shift+Down", "F5")
    assert server.ask("wait", **{"for": {"waiting": "held"}})["met"]
    browser.wait("a rate", lambda seen: user.queue(seen) and user.queue(seen)[0][4])
    album.take("browse-queue", moves=True)
    screen.key("shift+Escape")
    user.wait_for_queue("notes.txt", "ancelled")
    screen.key("alt+F4")
    browser.ended()


def main():
    program, reader, library, album = sys.argv[1:]
    letters = ROOT / "build/wine/drive_c/letters"
    shutil.rmtree(letters, ignore_errors=True)
    letters.mkdir()
    for name, size in LOCAL_FILES.items():
        (letters / name).write_bytes(b"x" * size)
    with tempfile.TemporaryDirectory() as scratch, Started("ftp-script", SCRIPT) as server, Screen() as screen:
        sites = pathlib.Path(scratch) / "sites.ini"
        sites.write_text(f"[Photographs]\nhost=localhost\nport={server.port}\nuser=anna\nencryption=ftpes\n"
                         "localFolder=C:\\letters\nremoteFolder=/pub\n\n[Backup]\nhost=backup.example.org\n")
        arguments = ["--sites", windows_path(sites), "--library", windows_path(library)]
        with Browser(screen, program, reader, arguments) as browser:
            show(server, screen, browser, Album(screen, album))
    shutil.rmtree(letters)


if __name__ == "__main__":
    main()
