#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Measures the library against curl and others on the same servers in one run: whole files down and up, a copy in
small pieces, a download from a web server, a long listing, single queries, and files over encrypted connections. Whole
processes are timed, interleaved; the table has medians and ratios to curl's, or to the plain connection's under Wine.
The exit code is 1 when a target is missed."""

import argparse
import dataclasses
import datetime
import json
import os
import pathlib
import platform
import shlex
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "examples"))

import plots  # noqa: E402  (beside this file)
from measure import HEAD, RULE, Contender, interleave, line, rows  # noqa: E402
from peers import Curl, others  # noqa: E402
from servers import Build, Server, WebServer, file_matches, run_under_fixture, write_pattern  # noqa: E402

DOWN_SEED, UP_SEED = 3, 4
TARGETS = {
    "download": {"linux": 0.9, "windows": 1.5},
    "upload": {"linux": 0.9, "windows": 1.5},
    "copy": {"linux": 1.2},
    "http": {"linux": 1.0},
    "listing": {"linux": 1.5},
    "encrypted": {"linux": 1.0, "windows": 4.0},  # of curl's, and of what the same takes in plain text
}
WORK = ["download", "upload", "copy", "http", "listing", "queries", "encrypted"]
# They end a data connection whose handshake comes before the command, as curl's does.
REFUSES_CURL_TLS = ["pyftpdlib"]
SMALL = "/pub/small.txt"
UPLOADED = "/pub/upload"
PEERS = ["curl", "wget", "lftp", "ncftp"]
# In one process, one after the other: what an operation costs a host that is running already.
IN_A_ROW = 100


class Bench:
    def __init__(self, server, builds, arguments, folder):
        self._server = server
        self._builds = builds
        self._arguments = arguments
        self._folder = folder
        self._curl = Curl(server)

    def _ours(self, build, operation, times, *arguments):
        login = [self._host(build), str(self._server.port), self._server.user, self._server.password]
        library = build.local(build.library)
        return [*build.command("qxbench"), library, *login, operation, str(times), *map(str, arguments)]

    def _host(self, build):
        if not self._server.encrypted:
            return self._server.host
        # The authority of the tests is none of Wine's.
        return f"ftpes://{self._server.host}{';verify=no' if build.windows else ''}"

    def _measure(self, work, curl, ours, others=()):
        """`ours` makes the contender of a build; the first of all is curl."""
        builds = [ours(build) for build in self._builds]
        for contender in builds:
            contender.target = TARGETS.get(work, {}).get(contender.name)
        contenders = [curl, *others, *builds]
        interleave(contenders, self._arguments.runs)
        return list(rows(f"{work}, {self._server.kind}", contenders, curl))

    def _fetching(self, name, command, target):
        """A contender whose command brings the large file to `target`; its first result is compared in full."""
        first = [True]

        def check():
            if target.stat().st_size != self._arguments.size:
                raise RuntimeError(f"{name}: wrong size")
            if first and not file_matches(target, DOWN_SEED, self._arguments.size):
                raise RuntimeError(f"{name}: wrong content")
            first.clear()

        return Contender(name, command, before=lambda: target.unlink(missing_ok=True), after=check)

    def _download_by(self, build, target, operation="download", local=Build.local):
        command = self._ours(build, operation, 1, "/pub/large", local(build, target))
        return self._fetching(build.name, command, target)

    def _fetch(self, work, operation, local, others=()):
        target = self._folder / "large"

        def ours(build):
            return self._download_by(build, target, operation, local)

        by_others = [self._fetching(peer.name, peer.download("/pub/large", target), target) for peer in others]
        by_curl = self._fetching("curl", self._curl.download("/pub/large", target), target)
        result = self._measure(work, by_curl, ours, by_others)
        target.unlink()
        return result

    def download(self):
        return self._fetch("download", "download", Build.local, others(self._server))

    def copy(self):
        # Between a remote and a local path the drive letter makes the difference, on Linux, too.
        return self._fetch("copy", "copy", lambda build, path: f"Z:{path}")

    def http(self):
        name = "large"
        write_pattern(self._folder / name, DOWN_SEED, self._arguments.size)
        target = self._folder / "fetched"
        with WebServer(self._folder) as web:

            def ours(build):
                login = [build.local(build.library), web.host, str(web.port), "-", "-"]
                command = [*build.command("qxbench"), *login, "http", "1", "/large", build.local(target)]
                return self._fetching(build.name, command, target)

            by_curl = ["curl", "-s", "-S", "-o", str(target), f"http://{web.host}:{web.port}/{name}"]
            result = self._measure("http", self._fetching("curl", by_curl, target), ours)
        target.unlink()
        (self._folder / name).unlink()
        return result

    def _sending(self, name, command):
        """A contender whose command carries a file up; the first result is compared in full."""
        first = [True]

        # All into the same file, over what the one before has left: the memory that new files of this size take
        # costs more or less by the system's whim.
        def check():
            if self._server.size(UPLOADED) != self._arguments.size:
                raise RuntimeError(f"{name}: wrong size")
            if first and not self._server.matches(UPLOADED, UP_SEED, self._arguments.size):
                raise RuntimeError(f"{name}: wrong content")
            first.clear()

        return Contender(name, command, after=check)

    def _source(self):
        source = self._folder / "upload"
        write_pattern(source, UP_SEED, self._arguments.size)
        return source

    def _upload_by(self, build, source):
        return self._sending(build.name, self._ours(build, "upload", 1, build.local(source), UPLOADED))

    def upload(self):
        source = self._source()
        commands = {peer.name: peer.upload(source, UPLOADED) for peer in others(self._server)}
        by_others = [self._sending(name, command) for name, command in commands.items() if command]
        by_curl = self._sending("curl", self._curl.upload(source, UPLOADED))
        result = self._measure("upload", by_curl, lambda build: self._upload_by(build, source), by_others)
        self._server.ask("put", files={UPLOADED: ""})
        source.unlink()
        return result

    def encrypted(self):
        if self._server.kind in REFUSES_CURL_TLS:
            return []
        target, source = self._folder / "large", self._source()
        with Server(self._server.kind, encrypted=True) as server:
            secure = Bench(server, self._builds, self._arguments, self._folder)
            server.ask("put", files=self._large())
            down = secure._fetching("curl", secure._curl.download("/pub/large", target), target)
            result = secure._beside("download", down, lambda bench, build: bench._download_by(build, target), self)
            up = secure._sending("curl", secure._curl.upload(source, UPLOADED))
            result += secure._beside("upload", up, lambda bench, build: bench._upload_by(build, source), self)
        for file in (target, source):
            file.unlink()
        self._server.ask("put", files={UPLOADED: ""})
        return result

    def _beside(self, work, curl, ours, plain):
        """`ours(bench, build)` is a contender: over this bench's encrypted server, and `plain`'s."""
        contenders = [curl]
        for build in self._builds:
            without, encrypted = ours(plain, build), ours(self, build)
            without.name += ", plain"
            encrypted.target = TARGETS["encrypted"].get(build.name)
            encrypted.beside = without if build.windows else None
            contenders += [without, encrypted]
        interleave(contenders, self._arguments.runs)
        return list(rows(f"encrypted {work}, {self._server.kind}", contenders, curl))

    def listing(self):
        entries = self._arguments.entries
        raw = Contender("curl", self._curl.download("/pub/many/", "/dev/null"))
        return self._measure(
            "listing", raw, lambda build: Contender(build.name, self._ours(build, "list", 1, "/pub/many", entries))
        )

    def queries(self):
        result = []
        for operation, words in {"exists": (SMALL,), "size": (SMALL, 5)}.items():

            def ours(build, times=1, operation=operation, words=words):
                return Contender(build.name, self._ours(build, operation, times, *words))

            result += self._measure(operation, Contender("curl", self._curl.query(SMALL)), ours)
            in_a_row = [ours(build, IN_A_ROW) for build in self._builds]
            interleave(in_a_row, self._arguments.runs)
            result += rows(f"{operation} x {IN_A_ROW}, {self._server.kind}", in_a_row)
        return result

    def _large(self):
        return {"/pub/large": {"size": self._arguments.size, "seed": DOWN_SEED}}

    def run(self):
        tree = {**self._large(), SMALL: "small"}
        self._server.ask("put", files={**tree, "/pub/many/": {"many": {"count": self._arguments.entries}}})
        for work in self._arguments.work:
            for row in getattr(self, work)():
                print(line(row.cells()), flush=True)
                yield row


def first_line(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()[0]
    except (OSError, subprocess.CalledProcessError):
        return "not found"


def processor():
    lines = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    return next((line.partition(":")[2].strip() for line in lines if line.startswith("model name")), "unknown")


def conditions(arguments, scratch):
    """What a reader needs to judge the figures."""
    peers = [first_line("dpkg-query", "-W", "-f", "${Package} ${Version}", name) for name in PEERS]
    return {
        "date": datetime.date.today().isoformat(),
        "command": shlex.join(["tools/bench", *sys.argv[1:]]),
        "source": first_line("git", "-C", str(ROOT), "describe", "--always", "--dirty"),
        "machine": f"{processor()}, {os.cpu_count()} processors, {platform.platform()}",
        "load before": f"{os.getloadavg()[0]:.2f}",
        "builds": f"{', '.join(arguments.build)} (RelWithDebInfo, -O2); {first_line('g++', '--version')}",
        "peers": "; ".join(peers),
        "Wine": first_line("/usr/lib/wine/wine64", "--version"),
        "servers": f"{', '.join(arguments.server)}, native, on loopback, passive mode",
        "files": f"{arguments.size} bytes; listing: {arguments.entries} entries; "
                 f"all below {scratch.relative_to(ROOT) if scratch.is_relative_to(ROOT) else scratch}",
        "runs": f"{arguments.runs} each after one to warm up, interleaved",
    }


def print_conditions(lines):
    for name, text in lines.items():
        print(f"{name}: {text}")
    print(
        "Wall is that of the whole process, the start of Wine's program included; \"one operation\" is timed by the\n"
        "host itself. curl's listing is raw text, not parsed; its query asks for size and time.\n",
        flush=True,
    )


def parse_size(text):
    unit = {"K": 10, "M": 20, "G": 30}.get(text[-1:].upper())
    return int(text[:-1]) << unit if unit else int(text)


def choose_scratch(arguments):
    """Memory, when it has room for the server's file, the source and the copies; else the build tree's disk."""
    memory = pathlib.Path("/dev/shm")
    needed = arguments.size * 4 + (1 << 30)
    if memory.is_dir() and shutil.disk_usage(memory).free > needed:
        return memory
    return ROOT / "build"


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--size", type=parse_size, default=1 << 30, help="of the files, default 1G")
    parser.add_argument("--entries", type=int, default=100_000, help="of the listing, default 100000")
    parser.add_argument("--runs", type=int, default=5, help="default 5")
    parser.add_argument("--server", action="append", choices=["vsftpd", "pyftpdlib"], help="default: both")
    parser.add_argument("--build", action="append", help="folders below build/, default: linux and windows")
    parser.add_argument("--work", action="append", choices=WORK, help="default: all")
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE", help="write the figures there as well")
    parser.add_argument("--plots", type=pathlib.Path, metavar="FILE",
                        help="measure nothing; fill docs/performance.md and its pictures from that file")
    parser.add_argument("--check", action="store_true", help="with --plots: write nothing, tell what differs")
    arguments = parser.parse_args()
    arguments.work = arguments.work or WORK
    arguments.server = arguments.server or ["vsftpd", "pyftpdlib"]
    arguments.build = arguments.build or ["linux", "windows"]
    return arguments


def main():
    arguments = parse_arguments()
    if arguments.plots:
        return plots.main(arguments.plots, arguments.check)
    scratch = choose_scratch(arguments)
    run_under_fixture(scratch)
    lines = conditions(arguments, scratch)
    print_conditions(lines)
    print(line(HEAD), RULE, sep="\n")
    measured = []
    for kind in arguments.server:
        builds = [Build(name) for name in arguments.build]
        with Server(kind) as server, tempfile.TemporaryDirectory(prefix="qx-bench-", dir=scratch) as folder:
            measured += Bench(server, builds, arguments, pathlib.Path(folder)).run()
    if arguments.json:
        figures = {"conditions": lines, "rows": [dataclasses.asdict(row) for row in measured]}
        arguments.json.write_text(json.dumps(figures, indent=1) + "\n")
    missed = sum(not row.met for row in measured)
    print(f"\n{missed} targets missed" if missed else "\nevery target is met")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
