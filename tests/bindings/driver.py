#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""driver.py CHECKS... -- EXAMPLE...: runs two programs of one language at scripted servers.

CHECKS prints a line for each of its cases: "ok NAME", or "failed NAME: why". EXAMPLE lists, downloads and cancels. Runs
under tests/fixture/run-with-fixture and ends like a program of GoogleTest. Exits with 1 when a case has failed.
"""

import os
import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "fixture"))

from testcase import ControllerClient, Server  # noqa: E402  (found through the path above)

LARGE = {"size": 700000, "seed": 5}
SCRIPT = {
    "user": "me", "password": "secret",
    "tree": {"/pub/a.txt": {"text": "hello", "mtime": "20240229123456"}, "/pub/empty": "", "/pub/large": LARGE,
             "/pub/stalled": LARGE, "/pub/sub/": {},
             "/names/gr\u00fcn": "text", "/names/\u00fc \u65e5\u672c": "text"},
    "rules": [
        {"on": "USER", "argument": "nobody", "do": ["silent"]},
        {"on": "RETR", "argument": "/pub/large", "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]},
        {"on": "RETR", "argument": "/pub/stalled", "do": [{"normal": {"stall_after": 300000, "gate": "never"}}]},
        {"on": "RETR", "argument": "/pub/a.txt", "first": 1, "do": [{"reply": "451 Not now"}]},
        {"on": "STOR", "argument": "/pub/full", "do": [{"normal": {"close_after": 1000, "final": "552 Disk full"}}]},
    ],
}
# Knows no UTF-8: this name is the byte FC on its way.
BYTES = {"encoding": "latin-1", "features": ["size", "mdtm"], "tree": {"/names/gr\u00fcn": "text"}}
# What a case of each language is called. A language may have more of its own.
CASES = """layout slots lists tells_entries downloads_with_progress uploads broken_upload
tells_no_from_not_known moves_content changes_the_server keeps_the_record
keeps_the_report_of_a_success tells_the_protocol cancels_a_stall cancels_from_a_thread
raises_from_poll raises_from_a_worker keeps_names keeps_bytes refuses_nul leaves_nothing""".split()


class Run:
    def __init__(self):
        self.passed, self.failed = [], []

    def note(self, name, good, why=""):
        (self.passed if good else self.failed).append(name)
        print(f"[ {'      OK' if good else ' FAILED '} ] {name}: {why}", flush=True)

    def finish(self):
        print(f"[  PASSED  ] {len(self.passed)} tests.")
        if self.failed:
            print(f"[  FAILED  ] {len(self.failed)} tests, listed below:\n" + "\n".join(self.failed))
        return 1 if self.failed else 0


def in_program(path):
    """A path as the program sees it, which may run under Wine."""
    return os.environ.get("QX_DRIVE", "") + str(path)


def run_program(command, server, *arguments):
    """The program's exit code and output. The server goes on with /pub/large when the program has seen it move."""
    text = ""
    # Appends go through the folder for temporary files, each name once in all processes.
    with subprocess.Popen([*command, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          env={**os.environ, "TMPDIR": os.environ["QX_FIXTURE_DIR"]}) as program:
        for chunk in iter(lambda: os.read(program.stdout.fileno(), 4096), b""):
            text += chunk.decode("utf-8", "replace")
            if "moving" in text or " %" in text:
                server.ask("release", gate="half")
    print(text, flush=True)
    return program.returncode, text.replace("\r\n", "\n")


def check_cases(run, command, server, others, folder):
    code, text = run_program(command, server, server.address[1], others.address[1], in_program(folder))
    results = dict(re.findall(r"^(?:ok|failed) (\w+)(.*)$", text, re.M))
    for name in [*CASES, *sorted(results.keys() - set(CASES))]:
        line = results.get(name)
        run.note(name, line is not None and f"ok {name}{line}" in text, line if line is not None else "did not run")
    run.note("ends_well", code == 0, f"{code}")
    matches = server.ask("matches", path="/pub/sub/mine", seed=5, size=LARGE["size"])["matches"]
    run.note("arrives", matches, "" if matches else "the server has another file")


def check_example(run, command, server, folder):
    local = folder / "example"
    code, text = run_program(command, server, "127.0.0.1", server.address[1], "/pub/large", in_program(local))
    run.note("example_lists", re.search(r"700000  large\n", text) is not None)
    run.note("example_downloads", code == 0 and "done" in text and " of 700000" in text, f"{code}")
    code, text = run_program(command, server, "127.0.0.1", server.address[1], "/pub/stalled", in_program(local), "0.2")
    cancelled = re.search(r"cancelled within (\d+) ms", text)
    run.note("example_cancels", code == 1 and cancelled is not None, cancelled.group() if cancelled else f"{code}")


def main(arguments):
    split = arguments.index("--")
    folder = pathlib.Path(os.environ["QX_FIXTURE_DIR"])
    controller, run = ControllerClient(), Run()
    server, others = Server(controller, **SCRIPT), Server(controller, **BYTES)
    anyone = Server(controller, **{**SCRIPT, "user": "anonymous", "password": "anonymous@"})
    check_cases(run, arguments[:split], server, others, folder)
    check_example(run, arguments[split + 1:], anyone, folder)
    return run.finish()


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
