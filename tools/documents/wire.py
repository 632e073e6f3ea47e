#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Writes the tables and conversations of docs/wire.md from what the scripted server of the tests records while a host
calls the operations of the built library."""

import argparse
import itertools
import pathlib
import sys
import tempfile
import threading

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "examples"))

import blocks  # noqa: E402  (beside this file)
from client import Client  # noqa: E402
from conversation import Conversation  # noqa: E402
from servers import Started, run_under_fixture  # noqa: E402
from wire_cases import CONNECTING, OPERATIONS, REQUESTS, SILENT, TREE, Place  # noqa: E402

TOOL = "tools/wire"
DOCUMENT = ROOT / "docs/wire.md"
WAYS = ["first", "known", "connected"]


class Stage:
    """A server of its own for one client, so that nothing is known of it before."""

    def __init__(self, library, folder, script=None):
        self.rules = (script or {}).get("rules", [])
        self.server = Started("ftp-script", {"tree": TREE, **(script or {})})
        self.client = Client(library)
        files = [str(pathlib.Path(folder) / name) for name in ("file", "none")]
        self.place = Place(self.server.host, self.server.port, *files)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        with self.server, self.client:
            pass

    def reset(self):
        """Files and rules as they were at first."""
        pathlib.Path(self.place.file).write_text("content")
        pathlib.Path(self.place.none).unlink(missing_ok=True)
        self.server.ask("reconfigure", script={"tree": {"/pub": None, **TREE}, "rules": self.rules})

    def record(self, call, connections_left, answer=True):
        """What `call` makes the server see. As many of its control connections stay open in the end."""
        before = len(self.events())
        got = call(self.client, self.place)
        if got != answer:
            raise RuntimeError(f"answered {got}, not {answer}: {self.client.failure()}")
        if not self.server.ask("wait", **{"for": {"open": connections_left}})["met"]:
            raise RuntimeError("a connection stays open")
        return Conversation(self.events()[before:])

    def events(self):
        return self.server.ask("log", events=True)["events"]


def observe(case, library, folder):
    """The conversations of an operation: at a server that is new to the client, at one that it knows as well as it can,
    and over the connection of FTPConnect."""
    with Stage(library, folder, case.script) as stage:
        stage.client.FTPSetLogin(*stage.place.login(case.is_passive))
        yield _once(stage, case, 0)
        _once(stage, case, 0)
        yield _once(stage, case, 0)
        stage.client.FTPConnect(*stage.place.login(case.is_passive), 0, None)
        _once(stage, case, 1)
        yield _once(stage, case, 1)


def _once(stage, case, connections_left):
    stage.reset()
    return stage.record(case.call, connections_left, case.answer)


def observe_connecting(case, library, folder):
    with Stage(library, folder, case.script) as stage:
        for _ in range(case.calls_before):
            stage.record(case.call, 1)
        return stage.record(case.call, 1 if case.answer else 0, case.answer)


def check_silence(library, folder):
    """The operations of a connected client that send nothing."""
    with Stage(library, folder) as stage:
        stage.client.FTPConnect(*stage.place.login(), 0, None)
        before = len(stage.events())
        for call in SILENT.values():
            call(stage.client, stage.place)
        stage.client.FTPConnect(*stage.place.login(), 0, None)
        _keep_alive(stage)
        sent = [event["line"] for event in stage.events()[before:] if event["event"] == "command"]
    if [line.split()[0] for line in sent] != ["QUIT", "USER", "PASS"]:
        raise RuntimeError(f"silent operations have sent {sent}")
    return [*SILENT, "FTPKeepAlive"]


def _keep_alive(stage):
    waiting = threading.Thread(target=stage.client.FTPKeepAlive)
    waiting.start()
    stage.server.ask("disconnect")
    waiting.join()


def request_text(answers, library, folder):
    with Started("http-script", {"answers": answers}) as server, Client(library) as client:
        local = pathlib.Path(folder) / "page"
        client.HTTPDownloadFile(server.host, "/page", server.port, str(local), None, 0, 0)
        if not local.exists():
            raise RuntimeError("the page has not come")
        log = server.ask("log")
    heads = [f"{one['connection']}  " + one["raw"].strip().replace("\r\n", "\n   ") for one in log["requests"]]
    return "\n".join(heads).replace(f":{server.port}\n", ":port\n")


def fenced(text):
    return f"```text\n{text}\n```" if text else "Nothing is sent."


def sentence(text):
    return text[0].upper() + text[1:]


def titled(title, text):
    return f"{sentence(title)}:\n\n{fenced(text)}\n"


def by_operation(seen):
    return itertools.groupby(seen, key=lambda entry: entry[0].operation)


def table(seen):
    rows = [f"| operation | situation | {' | '.join(WAYS)} |", "|---|---|---|---|---|"]
    for operation, cases in by_operation(seen):
        name = f"[`{operation}`](#{operation.lower()})"
        for case, ways in cases:
            rows.append(f"| {name} | {case.situation} | {' | '.join(way.size() for way in ways)} |")
            name = ""
    sums = [sum(ways[i].count() for _, ways in seen) for i in range(len(WAYS))]
    rows.append(f"| all of them | turns | {' | '.join(map(str, sums))} |")
    return "\n".join(rows)


def worth_showing(first, known, connected):
    """A first time that differs by what is asked of any new server is not."""
    if first.essence() != known.essence():
        yield "first", first
    if connected.essence() == known.essence():
        yield "", known
    else:
        yield "known", known
        yield "connected", connected


def conversation_texts(seen):
    for operation, cases in by_operation(seen):
        yield f"### {operation}\n"
        for case, ways in cases:
            for name, way in worth_showing(*ways):
                yield titled(f"{case.situation}{f', {name}' if name else ''}", way.text())


def make_parts(library, folder):
    seen = [(case, list(observe(case, library, folder))) for case in OPERATIONS]
    connecting = [(case.situation, observe_connecting(case, library, folder)) for case in CONNECTING]
    requests = [(name, request_text(answers, library, folder)) for name, answers in REQUESTS.items()]
    return {
        "turns": table(seen),
        "connecting": "\n".join(titled(name, way.text(folds_logins=False)) for name, way in connecting),
        "conversations": "\n".join(conversation_texts(seen)),
        "silent": "\n".join(f"- `{name}`" for name in check_silence(library, folder)),
        "http": "\n".join(titled(name, text) for name, text in requests),
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--check", action="store_true", help="write nothing, fail where the page tells something else")
    parser.add_argument("--library", type=pathlib.Path, default=ROOT / "build/linux/bin/libZRM_QXKT32x64.so")
    arguments = parser.parse_args()
    run_under_fixture()
    with tempfile.TemporaryDirectory() as folder:
        same = blocks.update(DOCUMENT, TOOL, make_parts(arguments.library, folder), arguments.check)
    return 1 if arguments.check and not same else 0


if __name__ == "__main__":
    sys.exit(main())
