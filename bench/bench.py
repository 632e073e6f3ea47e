#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Measures the library against curl on the same servers in one run: whole files down and up, a long listing, and
single queries. Whole processes are timed, interleaved; the table has medians and ratios to curl's. The exit code is 1
when a target is missed."""

import argparse
import os
import pathlib
import platform
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "examples"))

from measure import HEAD, Contender, interleave, rows  # noqa: E402  (beside this file)
from servers import Build, Server, file_matches, run_under_fixture, write_pattern  # noqa: E402

DOWN_SEED, UP_SEED = 3, 4
TARGETS = {
    "download": {"linux": 0.9, "windows": 1.5},
    "upload": {"linux": 0.9, "windows": 1.5},
    "listing": {"linux": 1.5},
}
SMALL = "/pub/small.txt"
# In one process, one after the other: what an operation costs a host that is running already.
IN_A_ROW = 100


class Bench:
    def __init__(self, server, builds, arguments, folder):
        self._server = server
        self._builds = builds
        self._arguments = arguments
        self._folder = folder
        self._login = f"{server.user}:{server.password}"

    def _curl(self, path, *options):
        url = f"ftp://{self._server.host}:{self._server.port}/{path}"
        return ["curl", "-s", "-S", "-u", self._login, *options, url]

    def _ours(self, build, operation, times, *arguments):
        login = [self._server.host, str(self._server.port), self._server.user, self._server.password]
        library = build.local(build.library)
        return [*build.command("qxbench"), library, *login, operation, str(times), *map(str, arguments)]

    def _measure(self, work, curl, ours):
        """`ours` makes the contender of a build."""
        contenders = [curl, *map(ours, self._builds)]
        for contender in contenders[1:]:
            contender.target = TARGETS.get(work, {}).get(contender.name)
        interleave(contenders, self._arguments.runs)
        return list(rows(f"{work}, {self._server.kind}", contenders, curl))

    def download(self):
        size = self._arguments.size

        def contender(name, command, path):
            def check():
                if path.stat().st_size != size:
                    raise RuntimeError(f"{name}: wrong size")

            return Contender(name, command, before=lambda: path.unlink(missing_ok=True), after=check)

        def ours(build):
            path = self._folder / build.name
            command = self._ours(build, "download", 1, "/pub/large", build.local(path))
            return contender(build.name, command, path)

        by_curl = self._folder / "curl"
        result = self._measure(
            "download", contender("curl", self._curl("pub/large", "-o", str(by_curl)), by_curl), ours
        )
        for name in ["curl", *(build.name for build in self._builds)]:
            if not file_matches(self._folder / name, DOWN_SEED, size):
                raise RuntimeError(f"{name}: wrong content")
            (self._folder / name).unlink()
        return result

    def upload(self):
        size = self._arguments.size
        source = self._folder / "source"
        write_pattern(source, UP_SEED, size)

        # All into the same file, over what the one before has left: the memory that new files of this size take costs
        # more or less by the system's whim.
        target = "/pub/upload"
        compared = set()

        def contender(name, command):
            def check():
                if self._server.ask("stat", path=target).get("size") != size:
                    raise RuntimeError(f"{name}: wrong size")
                if name not in compared and not self._server.matches(target, UP_SEED, size):
                    raise RuntimeError(f"{name}: wrong content")
                compared.add(name)

            return Contender(name, command, after=check)

        def ours(build):
            return contender(build.name, self._ours(build, "upload", 1, build.local(source), target))

        result = self._measure("upload", contender("curl", self._curl(target[1:], "-T", str(source))), ours)
        self._server.ask("put", files={target: ""})
        source.unlink()
        return result

    def listing(self):
        entries = self._arguments.entries
        raw = Contender("curl", self._curl("pub/many/", "-o", "/dev/null"))
        return self._measure(
            "listing", raw, lambda build: Contender(build.name, self._ours(build, "list", 1, "/pub/many", entries))
        )

    def queries(self):
        result = []
        for operation, words in {"exists": (SMALL,), "size": (SMALL, 5)}.items():

            def ours(build, times=1, operation=operation, words=words):
                return Contender(build.name, self._ours(build, operation, times, *words))

            # curl asks for size and time without fetching.
            result += self._measure(operation, Contender("curl", self._curl(SMALL, "-I", "-o", "/dev/null")), ours)
            in_a_row = [ours(build, IN_A_ROW) for build in self._builds]
            interleave(in_a_row, self._arguments.runs)
            result += rows(f"{operation} x {IN_A_ROW}, {self._server.kind}", in_a_row)
        return result

    def run(self):
        tree = {"/pub/large": {"size": self._arguments.size, "seed": DOWN_SEED}, SMALL: "small"}
        self._server.ask("put", files={**tree, "/pub/many/": {"many": {"count": self._arguments.entries}}})
        for work in (self.download, self.upload, self.listing, self.queries):
            for line, met in work():
                print(line, flush=True)
                yield met


def first_line(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()[0]
    except (OSError, subprocess.CalledProcessError):
        return "not found"


def processor():
    lines = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    return next((line.partition(":")[2].strip() for line in lines if line.startswith("model name")), "unknown")


def print_conditions(arguments, scratch):
    """What a reader needs to judge the figures."""
    print(f"machine: {processor()}, {os.cpu_count()} processors, {platform.platform()}")
    print(f"load before: {os.getloadavg()[0]:.2f}")
    print(f"builds: {', '.join(arguments.build)} (RelWithDebInfo, -O2); {first_line('g++', '--version')}")
    wine = first_line("/usr/lib/wine/wine64", "--version")
    print(f"curl: {first_line('curl', '--version').split(' (')[0]}; wine: {wine}")
    print(f"servers: {', '.join(arguments.server)}, native, on loopback, passive mode")
    print(f"files: {arguments.size} bytes; listing: {arguments.entries} entries; all files below {scratch}")
    print(
        f"{arguments.runs} runs each after one to warm up, interleaved. Wall is that of the whole process, the start\n"
        "of Wine's program included; \"one operation\" is timed by the host itself. curl's listing is raw text, not\n"
        "parsed; its query asks for size and time.\n",
        flush=True,
    )


def parse_size(text):
    unit = {"K": 10, "M": 20, "G": 30}.get(text[-1:].upper())
    return int(text[:-1]) << unit if unit else int(text)


def choose_scratch(arguments):
    """Memory, when it has room for the server's file, the source and the copies; else the build tree's disk."""
    memory = pathlib.Path("/dev/shm")
    needed = arguments.size * (3 + len(arguments.build)) + (1 << 30)
    if memory.is_dir() and shutil.disk_usage(memory).free > needed:
        return memory
    return ROOT / "build"


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--size", type=parse_size, default=1 << 30, help="of the files, default 1G")
    parser.add_argument("--entries", type=int, default=100_000, help="of the listing, default 100000")
    parser.add_argument("--runs", type=int, default=5, help="default 5")
    parser.add_argument("--server", action="append", choices=["vsftpd", "pyftpdlib"], help="default: both")
    parser.add_argument("--build", action="append", choices=["linux", "windows"], help="default: both")
    arguments = parser.parse_args()
    arguments.server = arguments.server or ["vsftpd", "pyftpdlib"]
    arguments.build = arguments.build or ["linux", "windows"]
    return arguments


def main():
    arguments = parse_arguments()
    scratch = choose_scratch(arguments)
    run_under_fixture(scratch)
    print_conditions(arguments, scratch)
    print(HEAD)
    met = []
    for kind in arguments.server:
        builds = [Build(name) for name in arguments.build]
        with Server(kind) as server, tempfile.TemporaryDirectory(prefix="qx-bench-", dir=scratch) as folder:
            met += Bench(server, builds, arguments, pathlib.Path(folder)).run()
    missed = met.count(False)
    print(f"\n{missed} targets missed" if missed else "\nevery target is met")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
