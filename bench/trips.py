# SPDX-License-Identifier: MIT
"""How long operations take on a line with a long round trip, in round trips.

Where no such line can be made (longline.py) the scripted server of the tests counts what it is asked.
"""

import statistics
import sys

from longline import Line, why_not
from measure import Row, interleave, run
from operations import CONNECTED, Commands, tree
from peers import Curl
from servers import ROOT, Started
from stage import Stage

sys.path.insert(0, str(ROOT / "tools/documents"))

from conversation import Conversation  # noqa: E402  (found through the path above)

_KIND = "vsftpd"
# What a process does behind its first operation, which is not counted.
_MORE = 3
# Other programs that carry out several operations over one connection.
_CONNECTED_PEERS = ("curl", "lftp")
# The least that a difference of two times can be.
_INSTANT = 0.001


class Journey:
    """The operations at the server of a stage, over a line with this round trip."""

    def __init__(self, stage, seconds):
        self._stage = stage
        self._seconds = seconds
        self._commands = Commands(stage)

    def _row(self, operation, name, seconds, beside=None):
        row = Row(f"round trips of {operation}, {self._stage.server.kind}", name, statistics.median(seconds),
                  min(seconds), max(seconds))
        row.trips = row.wall / self._seconds
        if beside:
            row.beside, row.ratio = beside.by, row.wall / beside.wall
        return row

    def _whole(self, operation, contender):
        row = self._row(operation, contender.name, [sample.wall for sample in contender.samples])
        row.processor, row.memory = contender.median("processor"), contender.median("memory")
        return row

    def rows(self, operation):
        """Of whole processes, of our own later operations, and of those on a connection that is there."""
        peers = [peer for peer in (Curl(self._stage.server), *self._stage.others(operation)) if peer.can(operation)]
        alone = [self._commands.by_peer(peer, operation) for peer in peers]
        alone += [self._commands.ours(build, operation, 1) for build in self._stage.builds]
        later = [self._commands.ours(build, operation, 1 + _MORE) for build in self._stage.builds]
        interleave(alone, self._stage.few(), warm_up=False)
        interleave(later, 1, warm_up=False)
        first = {one.name: self._whole(operation, one) for one in alone}
        made = [*first.values(), *(self._row(operation, f"{one.name}, known", _behind_first(one), first.get("lftp"))
                                   for one in later)]
        made += self._connected(operation, first, peers) if operation in CONNECTED else []
        for build in self._stage.builds:
            first[build.name].by += ", first"
        return made

    def _connected(self, operation, first, peers):
        """What one more operation takes."""
        many = [self._commands.by_peer(peer, operation, 1 + _MORE) for peer in peers if peer.name in _CONNECTED_PEERS]
        ours = [self._commands.ours(build, operation, 1 + _MORE, connected=True) for build in self._stage.builds]
        interleave([*many, *ours], self._stage.few(), warm_up=False)
        made = {one.name: self._row(operation, f"{one.name}, connected", _more_than(first[one.name].wall, one))
                for one in many}
        return [*made.values(), *(self._row(operation, f"{one.name}, connected", _behind_first(one), made.get("lftp"))
                                  for one in ours)]


def _behind_first(contender):
    return [value for sample in contender.samples for value in sample.seconds[1:]]


def _more_than(alone, contender):
    return [max(_INSTANT, sample.wall - alone) / _MORE for sample in contender.samples]


def _measured(stage):
    rtt = stage.arguments.rtt
    with Line(rtt) as line, line.server(_KIND) as server, line.near():
        server.ask("put", files=tree())
        journey = Journey(Stage(server, stage.builds, stage.arguments, stage.folder), rtt)
        return [row for operation in stage.arguments.operations for row in journey.rows(operation)]


def _counted(stage):
    """Of our own builds. What the second of two operations adds is that at a host that is known."""
    for operation in stage.arguments.operations:
        for build in stage.builds:
            ways = {"first": _count(stage, build, operation, 1)}
            ways["known"] = _count(stage, build, operation, 2) - ways["first"]
            if operation in CONNECTED:
                once, twice = (_count(stage, build, operation, times, connected=True) for times in (1, 2))
                ways["connected"] = twice - once
            for way, trips in ways.items():
                yield Row(f"round trips of {operation}, counted", f"{build.name}, {way}", 0, 0, 0, trips=trips)


def _count(stage, build, operation, times, connected=False):
    """Turns, logins and data connections: each is a round trip."""
    with Started("ftp-script", {"tree": tree()}) as server:
        server.encrypted, server.user, server.password = False, "user", "password"
        commands = Commands(Stage(server, [build], stage.arguments, stage.folder))
        run(build.name, commands.ours(build, operation, times, connected).command())
        server.ask("wait", **{"for": {"open": 0}})
        conversation = Conversation(server.ask("log", events=True)["events"])
        return conversation.count() + conversation.connections + conversation.data


def trips(stage):
    """Of Linux alone: the builds send the same."""
    linux = [build for build in stage.builds if not build.windows]
    here = Stage(stage.server, linux, stage.arguments, stage.folder)
    missing = why_not()
    if missing:
        print(f"Round trips are counted, not measured: {missing}.")
    return list(_counted(here)) if missing else _measured(here)
