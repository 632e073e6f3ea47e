# SPDX-License-Identifier: MIT
"""What operations add to the memory of a host at most, by the size of what they carry."""

import shutil

from measure import interleave, row
from stage import MANY

_MEBIBYTE = 1 << 20
_HUGE = 10 << 30
_REMOTE, _SENT = "/pub/zeros", "/pub/sent-zeros"


def _text(size):
    """With the largest unit that it is a multiple of."""
    for unit, bits in (("GiB", 30), ("MiB", 20), ("KiB", 10)):
        if size % (1 << bits) == 0:
            return f"{size >> bits} {unit}"
    return f"{size} bytes"


def _sizes(stage):
    """The largest only where there is room for it."""
    has_room = shutil.disk_usage(stage.folder).free > _HUGE + (2 << 30)
    return [_MEBIBYTE, stage.arguments.size, *([_HUGE] if has_room and not stage.arguments.quick else [])]


def _of(stage, work, operation, *words, **details):
    contenders = [stage.ours(build, operation, *words, **details) for build in _linux(stage)]
    interleave(contenders, 1, warm_up=False)
    return [row(work, contender) for contender in contenders]


def _linux(stage):
    return [build for build in stage.builds if not build.windows]


def _down(stage, size):
    target = stage.folder / "zeros"
    stage.server.ask("put", files={_REMOTE: {"size": size, "zeros": True}})
    made = _of(stage, f"memory of a download, {_text(size)}", "download", _REMOTE, target)
    target.unlink()
    return made


def _up(stage, size):
    source = stage.folder / "zeros"
    with open(source, "wb") as file:
        file.truncate(size)
    made = _of(stage, f"memory of an upload, {_text(size)}", "upload", source, _SENT)
    if stage.server.size(_SENT) != size:
        raise RuntimeError(f"the server has not got {_text(size)}")
    stage.server.ask("put", files={_SENT: ""})
    source.unlink()
    return made


def memory(stage):
    made = []
    for size in sorted(set(_sizes(stage))):
        made += _down(stage, size) + _up(stage, size)
    entries = stage.arguments.entries
    return made + _of(stage, f"memory of a listing, {entries} entries", "count", MANY, entries)
