#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Measures the library against curl and others on the same servers in one run: whole files down and up, a copy in
small pieces, a download from a web server, a long listing, questions, files over encrypted connections, many small
files, round trips on a long line, cancels and memory. Whole processes are timed, interleaved; the table has medians and
ratios to curl's, or to what is named. The exit code is 1 when a target is missed."""

import argparse
import dataclasses
import json
import os
import pathlib
import shutil
import signal
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "examples"))

import longline  # noqa: E402  (beside this file)
import plots  # noqa: E402
import targets  # noqa: E402
from cancels import cancels  # noqa: E402
from conditions import conditions, show  # noqa: E402
from measure import HEAD, RULE, cells, line  # noqa: E402
from memory import memory  # noqa: E402
from operations import OPERATIONS  # noqa: E402
from queries import listing, queries  # noqa: E402
from servers import Build, Server, run_under_fixture  # noqa: E402  (found through the path above)
from small import small  # noqa: E402
from stage import Stage  # noqa: E402
from transfers import copy, download, encrypted, http, upload  # noqa: E402
from trips import trips  # noqa: E402

WORK = {work.__name__: work for work in
        (download, upload, copy, http, listing, queries, encrypted, small, trips, cancels, memory)}
# The kind of server makes no difference to them.
ONCE = ("http", "trips", "cancels", "memory")
# For those who work on this tool, and for its test: it tells nothing of speed.
QUICK = {"size": 64 << 10, "entries": 20, "count": 3, "cancels": 2, "runs": 1, "rtt": 0.01,
         "operations": ["download", "exists"]}


def parse_size(text):
    unit = {"K": 10, "M": 20, "G": 30}.get(text[-1:].upper())
    return int(text[:-1]) << unit if unit else int(text)


def choose_scratch(arguments):
    """Memory, when it has room for the server's file, the source and the copies; else the build tree's disk."""
    memory_disk = pathlib.Path("/dev/shm")
    needed = arguments.size * 4 + (1 << 30)
    if memory_disk.is_dir() and shutil.disk_usage(memory_disk).free > needed:
        return memory_disk
    return ROOT / "build"


def parser():
    made = argparse.ArgumentParser(description=__doc__)
    made.add_argument("--size", type=parse_size, default=512 << 20, help="of the files, default 512M")
    made.add_argument("--entries", type=int, default=100_000, help="of the listing, default 100000")
    made.add_argument("--count", type=int, default=1000, help="of small files and of questions, default 1000")
    made.add_argument("--cancels", type=int, default=50, help="of each operation, default 50")
    made.add_argument("--rtt", type=float, default=0.1, help="seconds of the long line's round trip, default 0.1")
    made.add_argument("--runs", type=int, default=7, help="default 7; of what takes long at most 3")
    made.add_argument("--server", action="append", choices=["vsftpd", "pyftpdlib"], help="default: both")
    made.add_argument("--build", action="append", help="folders below build/, default: linux and windows")
    made.add_argument("--work", action="append", choices=list(WORK), help="default: all")
    made.add_argument("--operations", action="append", choices=list(OPERATIONS), help="of trips, default: all")
    made.add_argument("--quick", action="store_true", help="everything on tiny sizes, and no target")
    made.add_argument("--json", type=pathlib.Path, metavar="FILE", help="write the figures there as well")
    made.add_argument("--plots", type=pathlib.Path, metavar="FILE",
                      help="measure nothing; fill docs/performance.md and its pictures from that file")
    made.add_argument("--check", action="store_true", help="with --plots: write nothing, tell what differs")
    return made


def parse_arguments():
    arguments = parser().parse_args()
    if arguments.quick:
        vars(arguments).update(QUICK)
    arguments.work = arguments.work or list(WORK)
    arguments.operations = arguments.operations or list(OPERATIONS)
    arguments.server = arguments.server or ["vsftpd", "pyftpdlib"]
    arguments.build = arguments.build or ["linux", "windows"]
    return arguments


def works_at(kind, arguments):
    return [work for work in arguments.work if work not in ONCE or kind == arguments.server[0]]


def measured(stage, works):
    """The rows of these works, each shown as soon as it is known."""
    stage.prepare()
    for work in works:
        for row in WORK[work](stage):
            print(line(cells(row, ", ".join(target.text() for target in judged(row, stage.arguments)))), flush=True)
            yield row


def judged(row, arguments):
    return [] if arguments.quick else targets.of(row, arguments.entries)


def long_line(arguments):
    missing = longline.why_not()
    return f"counted at a scripted server: {missing}" if missing else (
        f"vsftpd behind a relay between two network namespaces, round trip {arguments.rtt * 1000:g} ms")


def measure_all(arguments, scratch):
    rows = []
    for kind in arguments.server:
        builds = [Build(name) for name in arguments.build]
        with Server(kind) as server, tempfile.TemporaryDirectory(prefix="qx-bench-", dir=scratch) as folder:
            rows += measured(Stage(server, builds, arguments, pathlib.Path(folder)), works_at(kind, arguments))
    return rows


def report(rows, arguments):
    """Tells what is missed: the exit code."""
    if arguments.quick:
        print("\ntiny sizes: no target is judged")
        return 0
    missed = [target for row in rows for target in judged(row, arguments) if not target.met]
    print(f"\ntargets missed: {len(missed)}" if missed else "\nevery target is met")
    for target in missed:
        print(f"  {target.row.work}, {target.row.by}: {target.text()}")
    return 1 if missed else 0


def forget_proxies():
    """Some of the programs would go through them."""
    for name in [name for name in os.environ if name.lower().endswith("_proxy")]:
        del os.environ[name]


def main():
    arguments = parse_arguments()
    if arguments.plots:
        return plots.main(arguments.plots, arguments.check)
    scratch = choose_scratch(arguments)
    forget_proxies()
    run_under_fixture(scratch)
    # What was begun is put away, also when the fixture hands on a Ctrl-C.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(128 + signal.SIGTERM))
    lines = conditions(arguments, scratch, long_line(arguments))
    show(lines)
    print(line(HEAD), RULE, sep="\n")
    rows = measure_all(arguments, scratch)
    if arguments.json:
        figures = {"conditions": lines, "rows": [dataclasses.asdict(row) for row in rows]}
        arguments.json.write_text(json.dumps(figures, indent=1) + "\n")
    return report(rows, arguments)


if __name__ == "__main__":
    sys.exit(main())
