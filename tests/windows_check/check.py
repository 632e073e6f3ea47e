#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the test programs beside this file and ends with one line "N passed, N failed[, N skipped]".

What did not pass stands in report.txt, with the Windows that it was on. Everything that is written is written below
this file's folder. Python 3.11 is enough; no package is needed, and none is used.
"""

import argparse
import collections
import concurrent.futures
import contextlib
import json
import os
import platform
import queue
import re
import shutil
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent
FIXTURE = ROOT / "tests" / "fixture"
if sys.version_info < (3, 11):
    sys.exit(f"check: Python 3.11 or later is needed, this is {platform.python_version()}")
sys.dont_write_bytecode = True
sys.path[:0] = [str(ROOT), str(FIXTURE)]

import controller_process  # noqa: E402  (found through the path)
import serve  # noqa: E402
import windows  # noqa: E402
from counting import Count, count_output, skipped_cases  # noqa: E402

# The fixture's servers are to be the same whatever a machine's Python has besides.
PYTHON = [sys.executable, "-B", "-E", "-s", "-S"]
LABEL_OF_DIALOGS = "dialog"
# Behind it in a label stands the code page that a program has to find itself in.
CODE_PAGE = "code-page-"


@dataclass
class Result:
    name: str
    count: Count
    output: str
    seconds: float = 0.0


@contextlib.contextmanager
def fixture(scratch, environment):
    """The environment of a program that runs beside a controller of servers."""
    folder = tempfile.mkdtemp(dir=scratch)
    environment = {**environment, "QX_FIXTURE_DIR": folder}
    try:
        command = [*PYTHON, str(FIXTURE / "controller.py")]
        with controller_process.running(command, env=environment) as port:
            yield {**environment, "QX_FIXTURE_PORT": port}
    finally:
        shutil.rmtree(folder, ignore_errors=True)


class Check:
    def __init__(self, system, scratch, settings):
        self._system = system
        self._scratch = scratch
        self._settings = {**settings, **system.settings()}

    def run(self, entry):
        began = time.monotonic()
        try:
            code, output = self._ended(entry)
        except Exception as error:  # whatever it is, it must not keep the others from being told
            return Result(entry["name"], Count(failed=1), f"check: {error}")
        skips = code is not None and code == entry["skip_code"]
        good = code == 0 or skips
        if code is not None and entry["expects"]:
            good = any(re.search(wanted, output, re.S) for wanted in entry["expects"])
        if code is None:
            output += f"\ncheck: ended after {entry['timeout']} s\n"
        return Result(entry["name"], count_output(output, good, skips), output, time.monotonic() - began)

    def _ended(self, entry):
        """(exit code or None where it took too long, output)"""
        environment = self._environment(entry)
        if not entry["fixture"]:
            return self._output(entry, environment)
        with fixture(self._scratch, environment) as environment:
            return self._output(entry, environment)

    def _output(self, entry, environment):
        # A file: of a pipe nobody knows when its last writer ends.
        with tempfile.TemporaryFile(dir=self._scratch) as file:
            with subprocess.Popen(self._command(entry), cwd=self._scratch, env=environment, stdin=subprocess.DEVNULL,
                                  stdout=file, stderr=subprocess.STDOUT, **self._system.options) as process:
                try:
                    code = process.wait(entry["timeout"])
                except subprocess.TimeoutExpired:
                    self._system.end(process)
                    code = None
            file.seek(0)
            return code, file.read().decode(errors="replace").replace("\r\n", "\n")

    def _command(self, entry):
        """With the runner of Windows programs, if there is one, in front of the program."""
        words = [word.replace("{root}", str(ROOT)) for word in entry["command"]]
        place = next(place for place, word in enumerate(words) if word.endswith(".exe"))
        return [*(PYTHON if entry["python"] else []), *words[:place], *self._system.command(*words[place:])]

    def _environment(self, entry):
        root = self._system.named(ROOT)
        wanted = {name: value.replace("{root}", root) for name, value in entry["environment"].items()}
        pages = [label.removeprefix(CODE_PAGE) for label in entry["labels"] if label.startswith(CODE_PAGE)]
        outside = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
        settings = {**outside, **wanted, **{"QX_CODE_PAGE": page for page in pages}, **self._settings}
        return {name: value for name, value in settings.items() if value is not None}


def lanes(entries):
    """Lists of tests, each of which runs beside the others: dialogs, which want the focus, one after the other."""
    dialogs = [entry for entry in entries if LABEL_OF_DIALOGS in entry["labels"]]
    return [dialogs, *([entry] for entry in entries if entry not in dialogs)]


def run_all(entries, run, jobs):
    """Gives each result as it comes; those that must run alone at the end."""
    beside = [entry for entry in entries if not entry["alone"]]
    results = queue.SimpleQueue()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for lane in lanes(beside):
            pool.submit(lambda lane: [results.put(run(entry)) for entry in lane], lane)
        yield from (results.get() for _ in beside)
    yield from (run(entry) for entry in entries if entry["alone"])


class Report:
    """What is told of a run: a line for each test as it ends, and the file."""

    def __init__(self, listed, entries):
        self.total = Count()
        self._listed = listed
        self._left_out = listed["left_out"]
        self._number_of_all = len(entries)
        self._failed = []
        self._skipped = collections.defaultdict(list)
        self._lines = []

    def add(self, result):
        self.total += result.count
        self._lines.append(f"{result.name:<28} {result.seconds:7.1f} s  {result.count}")
        print(f"{len(self._lines):>3}/{self._number_of_all} {self._lines[-1]}", flush=True)
        if result.count.failed:
            self._failed.append(result)
        cases = skipped_cases(result.output)
        for case, reason in cases:
            self._skipped[reason].append(f"{result.name} {case}")
        if result.count.skipped and not cases:
            lines = result.output.strip().splitlines()
            self._skipped[lines[-1] if lines else "without a reason"].append(result.name)

    def leave_out(self):
        """Counts what the zip lacks, which is no pass."""
        self.total += Count(skipped=len(self._left_out))

    def not_run(self):
        """Lines about what was skipped or is not here, by name and number."""
        for reason, names in sorted(self._skipped.items()):
            yield f"skipped {len(names)}: {reason}"
            yield from (f"    {name}" for name in names)
        for each in self._left_out:
            yield f"left out 1: {each['name']} ({each['why']})"
        servers = self._listed["servers_left_out"]
        yield f"servers that are not here {len(servers)}: {', '.join(servers)}"

    def write(self, path, facts):
        head = [f"{name}: {value}" for name, value in facts]
        failed = [line for each in self._failed for line in (f"\n===== {each.name} =====", each.output)]
        parts = [*head, "", *sorted(self._lines), "", *self.not_run(), *failed, "", str(self.total), ""]
        path.write_text("\n".join(parts), encoding="utf-8")

    def failures(self):
        return [each.name for each in self._failed]


def parse():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--through", metavar="PROGRAM", help="runs Windows programs where this system is none")
    parser.add_argument("--only", metavar="REGEX", default="", help="tests with such names alone")
    parser.add_argument("--jobs", type=int, default=min(4, os.cpu_count() or 1), help="so many at a time")
    parser.add_argument("--serve", action="store_true", help="tests nothing: servers to try the example hosts on")
    parser.add_argument("--report", type=Path, default=ROOT / "report.txt")
    arguments = parser.parse_args()
    if not arguments.through and os.name != "nt":
        parser.error("this is no Windows: --through names the program that runs Windows programs")
    return arguments


def serve_person(system, scratch):
    with system.trust(scratch) as settings, fixture(scratch, {**os.environ, **settings}) as environment:
        serve.serve(environment["QX_FIXTURE_PORT"], Path("bin", "qxftp.exe"))


def check(system, scratch, arguments):
    """Runs the tests, tells of them, and gives what they come to."""
    listed = json.loads((ROOT / "tests.json").read_text(encoding="utf-8"))
    entries = [entry for entry in listed["tests"] if re.search(arguments.only, entry["name"])]
    python = f"{sys.version} on {platform.platform()}"
    facts = [("version", listed["version"]), *windows.facts(system), ("Python", python)]
    print("\n".join(f"{name}: {value}" for name, value in facts), flush=True)

    report = Report(listed, entries)
    with system.trust(scratch) as settings:
        for result in run_all(entries, Check(system, scratch, settings).run, arguments.jobs):
            report.add(result)
    report.leave_out()
    if not report.total.passed + report.total.failed:
        report.add(Result("no test ran", Count(failed=1), ""))
    report.write(arguments.report, facts)
    print("\n".join(["", *report.not_run()]))
    for name in report.failures():
        print(f"failed: {name}")
    print(f"{arguments.report} tells more\n\n{report.total}")
    return report.total


def main():
    arguments = parse()
    system = windows.Through(arguments.through) if arguments.through else windows.Windows()
    with tempfile.TemporaryDirectory(prefix="work-", dir=ROOT, ignore_cleanup_errors=True) as scratch:
        if arguments.serve:
            serve_person(system, Path(scratch))
        elif check(system, Path(scratch), arguments).failed:
            sys.exit(1)


if __name__ == "__main__":
    main()
