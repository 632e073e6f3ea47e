# SPDX-License-Identifier: MIT
"""How long operations take on a line with a long round trip, in round trips.

Where no such line can be made (longline.py) the scripted server of the tests counts what it is asked.
"""

import collections
import itertools
import pathlib
import statistics
import sys

from longline import Line, why_not
from measure import Contender, Row, interleave, run
from peers import Curl
from servers import ROOT, Started
from stage import SMALL_TEXT, Stage

sys.path.insert(0, str(ROOT / "tools/documents"))

from conversation import Conversation  # noqa: E402  (found through the path above)

KIND = "vsftpd"
# Of each kind of file that an operation uses up.
_SUPPLY = 100
_FEW = 10
# What a process of ours and of others does behind the first operation, which is not counted.
_MORE = 3

# By the names of qxbench, with its arguments; # is a number that comes once.
OPERATIONS = {
    "download": ("/pub/file.txt", "{folder}/file#"),
    "upload": ("{folder}/up.txt", "/pub/up.txt"),
    "exists": ("/pub/file.txt",),
    "size": ("/pub/file.txt", len(SMALL_TEXT)),
    "list": ("/pub/few", _FEW),
    "rename": ("/pub/old#", "/pub/new#"),
    "remove": ("/pub/removed#",),
    "mkdir": ("/pub/made#/one/two",),
    "rmdir": ("/pub/empty#",),
}
# They use the connection of FTPConnect where there is one.
CONNECTED = ("exists", "size", "list")


def _tree():
    numbers = [f"{number:06}" for number in range(_SUPPLY)]
    return {"/pub/file.txt": SMALL_TEXT, **{f"/pub/few/file{number}": "" for number in range(_FEW)},
            **{f"/pub/{kind}{number}": "" for kind in ("old", "removed") for number in numbers},
            **{f"/pub/empty{number}": {"dir": True} for number in numbers}}


def _as_peers_take_them(operation, words):
    """They are not told what the answer has to be, and some make one folder after the other."""
    if operation == "mkdir":
        path = pathlib.PurePosixPath(words[0])
        return [str(folder) for folder in (path.parent.parent, path.parent, path)]
    if operation == "download":
        return [words[0], pathlib.Path(words[1])]
    return words[:1] if operation in ("size", "list") else words


class Journey:
    """The operations at one server."""

    def __init__(self, stage, seconds):
        self._stage = stage
        self._seconds = seconds
        self._numbers = collections.defaultdict(itertools.count)
        (stage.folder / "up.txt").write_text(SMALL_TEXT)

    def _words(self, operation):
        return [str(word).format(folder=self._stage.folder) for word in OPERATIONS[operation]]

    def _ours(self, build, operation, times, connected=False):
        name = f"connected:{operation}" if connected else operation

        def command():
            first, *_ = (next(self._numbers[operation]) for _ in range(times))
            return self._stage.ours(build, name, *self._words(operation), times=f"{first}+{times}").command

        return Contender(build.name, command, reports=True)

    def _by_peer(self, peer, operation, times=1):
        often = {"times": times} if times > 1 else {}

        def command():
            number = f"{next(self._numbers[operation]):06}"
            words = [word.replace("#", number) for word in self._words(operation)]
            return getattr(peer, operation)(*_as_peers_take_them(operation, words), **often)

        # ncftp keeps the file's own name, and fetches no file that it has.
        fetched = self._stage.folder / pathlib.PurePosixPath(OPERATIONS["download"][0]).name
        return Contender(peer.name, command, before=lambda: fetched.unlink(missing_ok=True))

    def _row(self, operation, name, seconds, first=None, beside=None):
        row = Row(f"round trips of {operation}, {self._stage.server.kind}", name, statistics.median(seconds),
                  min(seconds), max(seconds))
        row.trips = row.wall / self._seconds
        if first:
            row.processor, row.memory = first.median("processor"), first.median("memory")
        if beside:
            row.beside, row.ratio = beside.by, row.wall / beside.wall
        return row

    def rows(self, operation):
        stage = self._stage
        peers = [peer for peer in (Curl(stage.server), *stage.others(operation)) if peer.can(operation)]
        firsts = [self._by_peer(peer, operation) for peer in peers]
        firsts += [self._ours(build, operation, 1) for build in stage.builds]
        later = {build.name: self._ours(build, operation, 1 + _MORE) for build in stage.builds}
        interleave([*firsts, *later.values()], stage.few(), warm_up=False)
        alone = {found.name: self._row(operation, found.name, [sample.wall for sample in found.samples], found)
                 for found in firsts}
        connected = self._connected(operation, alone, peers) if operation in CONNECTED else []
        return [*self._named(alone, later, operation), *connected]

    def _named(self, alone, later, operation):
        for name, row in alone.items():
            if name in later:
                row.by += ", first"
            yield row
            if name in later:
                yield self._row(operation, f"{name}, known", _behind_first(later[name]), beside=alone.get("lftp"))

    def _connected(self, operation, alone, peers):
        """What one more operation takes on a connection that is there."""
        many = [self._by_peer(peer, operation, 1 + _MORE) for peer in peers if peer.name in ("curl", "lftp")]
        ours = [self._ours(build, operation, 1 + _MORE, connected=True) for build in self._stage.builds]
        interleave([*many, *ours], self._stage.few(), warm_up=False)
        made = [self._row(operation, f"{found.name}, connected",
                          [max(0.0, sample.wall - alone[found.name].wall) / _MORE for sample in found.samples])
                for found in many]
        beside = next((row for row in made if row.by.startswith("lftp")), None)
        return made + [self._row(operation, f"{found.name}, connected", _behind_first(found), beside=beside)
                       for found in ours]


def _behind_first(contender):
    return [value for sample in contender.samples for value in sample.seconds[1:]]


def _measured(stage):
    rtt = stage.arguments.rtt
    with Line(rtt) as line, line.server(KIND) as server, line.near():
        server.ask("put", files=_tree())
        far = Stage(server, stage.builds, stage.arguments, stage.folder)
        journey = Journey(far, rtt)
        return [row for operation in stage.arguments.operations for row in journey.rows(operation)]


def _counted(stage):
    """Turns, logins and data connections of our own builds: each is a round trip."""
    made = []
    for operation in stage.arguments.operations:
        for build in stage.builds:
            for way in ("first", "known", *(["connected"] if operation in CONNECTED else [])):
                trips = _count(stage, build, operation, way)
                made.append(Row(f"round trips of {operation}, counted", f"{build.name}, {way}", 0, 0, 0, trips=trips))
    return made


def _count(stage, build, operation, way):
    """What the second of two operations adds, unless it is the first."""
    connected = way == "connected"
    more = _trips_of(stage, build, operation, 1 if way == "first" else 2, connected)
    return more - (0 if way == "first" else _trips_of(stage, build, operation, 1, connected))


def _trips_of(stage, build, operation, times, connected):
    with Started("ftp-script", {"tree": _tree()}) as server:
        server.kind, server.encrypted, server.user, server.password = "ftp-script", False, "user", "password"
        journey = Journey(Stage(server, [build], stage.arguments, stage.folder), None)
        run(build.name, journey._ours(build, operation, times, connected).command())
        server.ask("wait", **{"for": {"open": 0}})
        return _trips(Conversation(server.ask("log", events=True)["events"]))


def _trips(conversation):
    return conversation.count() + conversation.connections + conversation.data


def trips(stage):
    """Of Linux alone: the builds send the same."""
    linux = [build for build in stage.builds if not build.windows]
    here = Stage(stage.server, linux, stage.arguments, stage.folder)
    missing = why_not()
    if missing:
        print(f"Round trips are counted, not measured: {missing}.")
    return _counted(here) if missing else _measured(here)
