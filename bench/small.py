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


def _rounds(build):
    """Under Wine a connection takes so long that two thousand of them have to do."""
    return 1 if build.windows else None


def small(stage):
    names = Names(stage.arguments.count)
    for folder in (_REMOTE, _SENT):
        stage.server.ask("put", files={f"{folder}/": {"many": {"count": names.count, "size": _SIZE, "seed": 1}}})
    return _down(stage, names) + _up(stage, names)


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

    details = {"before": before, "after": after, "times": names.count}
    peers = [stage.curl, *stage.others("many_down")]
    contenders = [Contender(peer.name, peer.many_down(names, _REMOTE, target), **details) for peer in peers]
    for build in stage.builds:
        words = f"{_REMOTE}/{names.ours()}", f"{build.local(target)}/{names.ours()}"
        contenders.append(stage.ours(build, "download", *words, rounds=_rounds(build), **details))
    made = stage.measure("small files down", contenders, stage.few(), warm_up=False)
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

    details = {"before": before, "after": after, "times": names.count}
    # Not curl: behind some uploads it waits for a whole second, which would be most of the run.
    contenders = [Contender(peer.name, peer.many_up(names, source, _SENT), **details)
                  for peer in stage.others("many_up")]
    for build in stage.builds:
        words = f"{build.local(source)}/{names.ours()}", f"{_SENT}/{names.ours()}"
        contenders.append(stage.ours(build, "upload", *words, rounds=_rounds(build), **details))
    made = stage.measure("small files up", contenders, stage.few(), warm_up=False)
    shutil.rmtree(source)
    return made
