# SPDX-License-Identifier: MIT
"""The operations whose round trips are told: what they work on, and how each program is told to do them."""

import collections
import itertools
import pathlib

from measure import Contender
from stage import SMALL_TEXT

# Of each kind of file that an operation uses up.
_SUPPLY = 100
_FEW = 10

# By the names of qxbench, with its arguments; # is a number that comes once.
OPERATIONS = {
    "download": ("/pub/file.txt", "{folder}/file#"),
    "upload": ("{folder}/up.txt", "/pub/up.txt"),
    "exists": ("/pub/file.txt",),
    "size": ("/pub/file.txt", len(SMALL_TEXT)),
    "list": ("/pub/few", _FEW),
    "rename": ("/old/file#", "/old/renamed#"),
    "remove": ("/removed/file#",),
    "mkdir": ("/made/folder#/one/two",),
    "rmdir": ("/empty/folder#",),
}
# They use the connection of FTPConnect where there is one.
CONNECTED = ("exists", "size", "list")


def tree():
    """Folders so short that a listing of them does not wait for the line's window to grow."""
    numbers = [f"{number:06}" for number in range(_SUPPLY)]
    return {"/pub/file.txt": SMALL_TEXT, **{f"/pub/few/file{number}": "" for number in range(_FEW)},
            **{f"/{folder}/file{number}": "" for folder in ("old", "removed") for number in numbers},
            **{f"/empty/folder{number}": {"dir": True} for number in numbers}, "/made/": {}}


def _as_peers_take_them(operation, words):
    """They are not told what the answer has to be, and some make one folder after the other."""
    if operation == "mkdir":
        path = pathlib.PurePosixPath(words[0])
        return [str(folder) for folder in (path.parent.parent, path.parent, path)]
    if operation == "download":
        return [words[0], pathlib.Path(words[1])]
    return words[:1] if operation in ("size", "list") else words


class Commands:
    """As contenders, at the server of a stage. No two of their commands work on the same file where that is gone
    then."""

    def __init__(self, stage):
        self._stage = stage
        self._numbers = collections.defaultdict(itertools.count)
        (stage.folder / "up.txt").write_text(SMALL_TEXT)

    def _words(self, operation):
        return [str(word).format(folder=self._stage.folder) for word in OPERATIONS[operation]]

    def ours(self, build, operation, times, connected=False):
        name = f"connected:{operation}" if connected else operation

        def command():
            first, *_ = (next(self._numbers[operation]) for _ in range(times))
            return self._stage.ours(build, name, *self._words(operation), times=f"{first}+{times}").command

        return Contender(build.name, command, reports=True)

    def by_peer(self, peer, operation, times=1):
        often = {"times": times} if times > 1 else {}

        def command():
            number = f"{next(self._numbers[operation]):06}"
            words = [word.replace("#", number) for word in self._words(operation)]
            return getattr(peer, operation)(*_as_peers_take_them(operation, words), **often)

        # ncftp keeps the file's own name, and fetches no file that it has.
        fetched = self._stage.folder / pathlib.PurePosixPath(OPERATIONS["download"][0]).name
        return Contender(peer.name, command, before=lambda: fetched.unlink(missing_ok=True))
