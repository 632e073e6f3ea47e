#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Shows the library at its main job: qxftp loads it and works on a real FTP server on loopback, first the Linux
library, then the DLL under Wine; last a morning with qxbrowse, by real keys on a screen that nobody sees. Every result
is compared with what is true; a wrong one makes the exit code 1."""

import argparse
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

from servers import ROOT, Build, Server, WebServer, file_matches, run_under_fixture, write_pattern

LARGE = 64 << 20
NOTE = 10_000
DOWN_SEED, UP_SEED = 11, 23
TREE = {
    "/pub/readme.txt": "This tree is made for the demonstration.\n",
    "/pub/empty": "",
    "/pub/docs/guide.txt": "A guide of 28 characters....",
    "/pub/docs/old/": {},
    "/pub/large.bin": {"size": LARGE, "seed": DOWN_SEED},
    "/pub/incoming/": {},
}

wrong = 0


def judge(holds, text):
    global wrong
    wrong += not holds
    print(f"  {'ok   ' if holds else 'WRONG'} {text}\n")


class Client:
    """qxftp of one build with the login data of one server."""

    def __init__(self, build, server):
        self.build = build
        self._server = server

    def run(self, *command, user=None):
        server = self._server
        arguments = ["--host", server.host, "--port", str(server.port), "--user", user or self._server.user, *command]
        print("  $ qxftp " + shlex.join(arguments), flush=True)
        done = subprocess.run(self.build.command("qxftp") + arguments, capture_output=True, text=True, timeout=300,
                              env={**os.environ, "QXFTP_PASSWORD": self._server.password})
        for line in (done.stdout + done.stderr).splitlines():
            print("    " + line)
        return done


def look_around(client):
    done = client.run("--verbose", "connect")
    judge("> PASS ****" in done.stderr, "tells the protocol, without the password")
    judge(done.returncode == 0 and "connected" in done.stdout, "logged in and out")
    done = client.run("ls", "/pub")
    names = {line.split()[-1] for line in done.stdout.splitlines()}
    judge(names == {"readme.txt", "empty", "docs/", "large.bin", "incoming/"}, "lists the five entries of /pub")
    done = client.run("count", "/pub")
    judge(done.stdout.strip() == "3 files, 2 directories", "counts them")
    for path, size in (("/pub/large.bin", LARGE), ("/pub/docs/guide.txt", 28), ("/pub/empty", 0)):
        judge(client.run("size", path).stdout.strip() == str(size), f"{path} has {size} bytes")
    judge("is a file" in client.run("exists", "/pub/docs/guide.txt").stdout, "the guide is a file")
    judge("is a directory" in client.run("exists", "/pub/docs/old").stdout, "docs/old is a directory")
    done = client.run("exists", "/pub/none")
    judge(done.returncode == 5 and "is not there" in done.stdout, "a missing path is missing")


def move_files(client, server, folder):
    down, up = folder / "down.bin", folder / "up.bin"
    done = client.run("get", "/pub/large.bin", client.build.local(down))
    judge(done.returncode == 0 and file_matches(down, DOWN_SEED, LARGE), f"downloaded {LARGE} bytes, all as they are")
    write_pattern(up, UP_SEED, LARGE)
    done = client.run("put", client.build.local(up), "/pub/incoming/up.bin")
    judge(done.returncode == 0 and server.matches("/pub/incoming/up.bin", UP_SEED, LARGE), f"uploaded {LARGE} bytes")


def change_content(client, server, folder):
    local, back = folder / "note.bin", folder / "back.bin"
    write_pattern(local, UP_SEED, NOTE)
    note = "/pub/incoming/note.bin"
    done = client.run("write", client.build.local(local), note)
    judge(done.returncode == 0 and server.matches(note, UP_SEED, NOTE), f"wrote {NOTE} bytes from memory")
    done = client.run("read", note, "--output", client.build.local(back))
    judge(done.returncode == 0 and file_matches(back, UP_SEED, NOTE), "read them back")
    done = client.run("append", client.build.local(local), note)
    judge(done.returncode == 0 and server.size(note) == 2 * NOTE, "appended the same again")
    return note


def change_tree(client, server, folder, note):
    size = server.size(note)
    done = client.run("copy", note, "/pub/incoming/copy.bin")
    judge(done.returncode == 0 and server.size("/pub/incoming/copy.bin") == size, "copied it on the server")
    done = client.run("move", "/pub/incoming/copy.bin", "/pub/docs/moved.bin")
    moved = server.size("/pub/docs/moved.bin") == size and server.size("/pub/incoming/copy.bin") is None
    judge(done.returncode == 0 and moved, "moved the copy")
    done = client.run("rename", "/pub/docs/moved.bin", "/pub/docs/final.bin")
    renamed = server.size("/pub/docs/final.bin") == size and server.size("/pub/docs/moved.bin") is None
    judge(done.returncode == 0 and renamed, "renamed it")
    done = client.run("rm", "/pub/docs/final.bin")
    judge(done.returncode == 0 and server.size("/pub/docs/final.bin") is None, "removed it")
    for name in ("New", "New (1)"):
        done = client.run("mknew", "/pub/docs", "New")
        judge(done.stdout.strip() == f"/pub/docs/{name}" and server.exists(f"/pub/docs/{name}"), f"made {name}")
    done = client.run("mkdir", "/pub/docs/a/b/c")
    judge(done.returncode == 0 and server.exists("/pub/docs/a/b/c"), "made a folder and those above it")
    done = client.run("rmdir", "/pub/docs/a/b")
    judge(done.returncode == 1 and server.exists("/pub/docs/a/b/c"), "a folder with content stays")
    done = client.run("rmdir", "/pub/docs/a/b/c")
    judge(done.returncode == 0 and not server.exists("/pub/docs/a/b/c"), "removed the inner one")


def download_from_the_web(client, folder):
    write_pattern(folder / "web.bin", UP_SEED, LARGE)
    local = folder / "from-web.bin"
    with WebServer(folder) as web:
        address = f"http://{web.host}:{web.port}"
        done = client.run("http", f"{address}/web.bin", client.build.local(local))
        judge(done.returncode == 0 and file_matches(local, UP_SEED, LARGE), "downloaded it from a web server")
        done = client.run("http", f"{address}/none.bin", client.build.local(folder / "none"))
        judge(done.returncode == 1 and not (folder / "none").exists(), "what is not there makes no file")


def be_refused(client):
    done = client.run("connect", user="stranger")
    judge(done.returncode == 4 and re.search("password.* 530 ", done.stderr), "a refused login is told as one")


def demonstrate(build, kind):
    print(f"== {build.name}: {build.library.name} against {kind}\n")
    with Server(kind) as server, tempfile.TemporaryDirectory() as folder:
        server.ask("put", files=TREE)
        client = Client(build, server)
        look_around(client)
        move_files(client, server, pathlib.Path(folder))
        note = change_content(client, server, pathlib.Path(folder))
        change_tree(client, server, pathlib.Path(folder), note)
        download_from_the_web(client, pathlib.Path(folder))
        be_refused(client)


def browse(build):
    print(f"== {build.name}: qxbrowse against a server that encrypts\n", flush=True)
    files = [build.folder / "qxbrowse.exe", build.folder.parent / "tests/bin/screen_reader.exe", build.library]
    done = subprocess.run([ROOT / "tests/hosts/qxbrowse/screen_test.py", *files], timeout=600)
    judge(done.returncode == 0, "each step did what it should")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", action="append", choices=["linux", "windows"], help="default: both")
    parser.add_argument("--server", default="pyftpdlib", choices=["pyftpdlib", "vsftpd"])
    arguments = parser.parse_args()
    run_under_fixture()
    for name in arguments.build or ["linux", "windows"]:
        demonstrate(Build(name), arguments.server)
        if Build(name).windows:
            browse(Build(name))
    print(f"{wrong} results were wrong" if wrong else "every result was right")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
