# SPDX-License-Identifier: MIT
"""What the scripted FTP server has recorded, as the turns of a conversation."""

import copy
import dataclasses
import itertools
import re

# What differs from run to run.
_PORTS = [
    (re.compile(r"(EPRT \|.*\|)\d+\|"), r"\1port|"),
    (re.compile(r"(PORT \d+,\d+,\d+,\d+),\d+,\d+"), r"\1,port"),
]
_LINE_WIDTH = 40


def _shown(line):
    for port, name in _PORTS:
        line = port.sub(name, line)
    return line


@dataclasses.dataclass
class Turn:
    """Lines that the client has sent together, each with the codes of the replies to it. Of a greeting the line is
    empty."""

    connection: int
    lines: list = dataclasses.field(default_factory=list)
    replies: list = dataclasses.field(default_factory=list)
    is_answered: bool = False
    is_waited_for: bool = True
    unused: int = 0  # of its lines, the last ones: the client does not wait for the answers

    def sent(self, line):
        self.lines.append(line)
        self.replies.append([])

    def answered(self, code):
        """A preliminary reply is followed by another one to the same line."""
        next(codes for codes in self.replies if not codes or codes[-1].startswith("1")).append(code)
        self.is_answered = True

    def waits(self):
        """For all of its replies, and once more for what follows a preliminary one."""
        preliminary = sum(code.startswith("1") for codes in self.replies for code in codes)
        return 1 + preliminary if self.is_waited_for else 0

    def is_only(self, verb, code=None):
        return len(self.lines) == 1 and self.lines[0].split()[:1] == [verb] and code in (None, *self.replies[0])

    def enters_a_directory(self):
        return any(line.startswith("CWD ") and "250" in codes for line, codes in zip(self.lines, self.replies))

    def rows(self):
        last = len(self.lines) - (self.unused if self.is_waited_for else len(self.lines))
        return [(line or "(connects)", codes if index < last else ["(not waited for)"])
                for index, (line, codes) in enumerate(zip(self.lines, self.replies))]


def turns(events):
    """In the order of their lines. The good-bye is none: nobody waits for an answer to it."""
    found, latest, leaving = [], {}, set()

    def begin(connection):
        latest[connection] = Turn(connection)
        found.append(latest[connection])

    for event in events:
        connection, kind = event["connection"], event["event"]
        if kind == "accept":
            begin(connection)
            latest[connection].sent("")
        elif kind == "command" and event["verb"] == "QUIT":
            leaving.add(connection)
        elif kind == "command":
            if connection not in latest or latest[connection].is_answered:
                begin(connection)
            latest[connection].sent(_shown(event["line"]))
        elif kind == "reply" and connection in latest.keys() - leaving:
            latest[connection].answered(event["text"][:3])
    _mark_ways_back(found)
    for last in {turn.connection: turn for turn in found}.values():
        _mark_unused(last)
    return found


def _mark_unused(turn):
    """What leads to a port, where no transfer follows."""
    if turn.lines[-1] in ("EPSV", "PASV"):
        prepares = ("OPTS", "TYPE", "MDTM", "SIZE", "EPSV", "PASV")
        turn.unused = sum(1 for _ in itertools.takewhile(lambda line: line.split()[0] in prepares,
                                                         reversed([line for line in turn.lines if line])))


def _mark_ways_back(found):
    """What has entered a directory leaves it in the end, and goes on without waiting."""
    for last in {turn.connection: turn for turn in found}.values():
        entered = [turn for turn in found if turn.connection == last.connection and turn.enters_a_directory()]
        if last.is_only("CWD") and entered and entered[0] is not last:
            last.is_waited_for = False


class Conversation:
    """All that an operation has brought about, on all its connections."""

    def __init__(self, events):
        self.turns = turns(events)
        self.connections = sum(event["event"] == "accept" for event in events)
        self.data = sum(event["event"] == "data-open" for event in events)

    def count(self):
        """How often the client has waited for the server."""
        return sum(turn.waits() for turn in self.turns)

    def size(self):
        """For a table: turns, logins, connections for data."""
        return f"{self.count()}/{self.connections}/{self.data}"

    def rows(self, folds_logins=True):
        """(connection, line, codes) for each line; of those that went together the first alone has a connection."""
        numbers = list(dict.fromkeys(turn.connection for turn in self.turns))
        left = copy.deepcopy(self.turns)
        while left:
            number = numbers.index(left[0].connection) + 1
            if folds_logins and _begins_with_login(left):
                yield number, "(login)", ["220", "331", "230"]
                del left[:3]
                continue
            if folds_logins and _begins_with_packet(left):
                yield number, "(login in one packet)", ["220", "331", "230"]
                del left[0], left[0].lines[:2], left[0].replies[:2]
                number = ""
            for line, codes in left.pop(0).rows():
                yield number, line, codes
                number = ""

    def text(self, folds_logins=True):
        return _text(self.rows(folds_logins))

    def essence(self):
        """Without what is asked at a server once, and said to one that is known."""
        return _text((0, line, codes) for _, line, codes in self.rows() if line not in ("FEAT", "OPTS UTF8 ON"))


def _begins_with_login(left):
    if len(left) < 3 or len({turn.connection for turn in left[:3]}) > 1:
        return False
    greeting, user, password = left[:3]
    is_usual = greeting.rows() == [("(connects)", ["220"])]
    return is_usual and user.is_only("USER", "331") and password.is_only("PASS", "230")


def _begins_with_packet(left):
    if len(left) < 2 or left[0].connection != left[1].connection:
        return False
    greeting, packet = left[:2]
    is_usual = greeting.rows() == [("(connects)", ["220"])]
    return is_usual and [line.split()[0] for line in packet.lines[:2]] == ["USER", "PASS"]


def _text(rows):
    return "\n".join(f"{number!s:2} {line:<{_LINE_WIDTH}} {' '.join(codes)}".rstrip() for number, line, codes in rows)
