# SPDX-License-Identifier: MIT
"""Many small files down and up, by one client and one after the other."""

import dataclasses
import shutil

from measure import Contender
from servers import file_matches, write_pattern
from stage import UP_SEED

_SIZE = 4096
_REMOTE, _SENT = "/pub/few", "/pub/sent"


@dataclasses.dataclass
class Names:
    """Of files as the servers' trees number them."""

    count: int

    def all(self):
        return [f"file{number:06}.dat" for number in range(self.count)]

    def ours(self):
        return "file#.dat"

    def curl(self, reference=None):
        """As a range of its addresses; `reference` is its number among the ranges."""
        return f"file#{reference}.dat" if reference else f"file[000000-{self.count - 1:06}].dat"


def small(stage):
    names = Names(stage.arguments.count)
    for folder in (_REMOTE, _SENT):
        stage.server.ask("put", files={f"{folder}/": {"many": {"count": names.count, "size": _SIZE, "seed": 1}}})
    return _down(stage, names) + _up(stage, names)


def _peers(stage, operation):
    """The one to compare with, which keeps its connection as the others do, and last curl: behind some files it waits
    for a whole second."""
    return [*sorted(stage.others(operation), key=lambda peer: peer.name != "lftp"), stage.curl]


def _rounds(contender):
    """Once has to do for curl, and under Wine, where connections take long."""
    return 1 if contender in ("curl", "windows") else None


def _measure(stage, work, told, ours, **details):
    """`told` is how peers are told it: their method and its arguments. `ours(build)` are qxbench's words."""
    operation, *words = told
    contenders = [Contender(peer.name, getattr(peer, operation)(*words), **details)
                  for peer in _peers(stage, operation)]
    contenders += [stage.ours(build, *ours(build), **details) for build in stage.builds]
    for contender in contenders:
        contender.rounds = _rounds(contender.name)
    return stage.measure(work, contenders, stage.few(), warm_up=False)


def _down(stage, names):
    target = stage.folder / "small"

    def before():
        shutil.rmtree(target, ignore_errors=True)
        target.mkdir()

    def after():
        numbers = range(names.count)
        wrong = [n for n, name in zip(numbers, names.all()) if not file_matches(target / name, 1 + n, _SIZE)]
        if wrong:
            raise RuntimeError(f"of {names.count} small files {len(wrong)} are wrong")

    def ours(build):
        return "download", f"{_REMOTE}/{names.ours()}", f"{build.local(target)}/{names.ours()}"

    made = _measure(stage, "small files down", ("many_down", names, _REMOTE, target), ours,
                    before=before, after=after, times=names.count)
    shutil.rmtree(target)
    return made


def _up(stage, names):
    source = stage.folder / "small"
    source.mkdir()
    for number, name in enumerate(names.all()):
        write_pattern(source / name, UP_SEED + number, _SIZE)

    def before():
        stage.server.ask("put", files={f"{_SENT}/{name}": "" for name in names.all()})

    def after():
        for number in (0, names.count // 2, names.count - 1):
            if not stage.server.matches(f"{_SENT}/{names.all()[number]}", UP_SEED + number, _SIZE):
                raise RuntimeError(f"small file {number} is wrong on the server")

    def ours(build):
        return "upload", f"{build.local(source)}/{names.ours()}", f"{_SENT}/{names.ours()}"

    made = _measure(stage, "small files up", ("many_up", names, source, _SENT), ours,
                    before=before, after=after, times=names.count)
    shutil.rmtree(source)
    return made
