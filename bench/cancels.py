# SPDX-License-Identifier: MIT
"""How soon operations come back that are cancelled in the middle: of ours from the answer of OnPoll to the return, of
other programs from the signal of Ctrl-C to their end."""

import os
import signal
import subprocess
import time

from measure import Contender, Sample, interleave, row
from servers import WebServer
from stage import Stage

_ZEROS = "/pub/zeros"
_SIZE = 4 << 30  # without taking room; more than any machine carries before it is cancelled
_INTO_IT = 1 << 20
_SECONDS_TO_BEGIN = 60


def cancels(stage):
    stage.server.ask("put", files={_ZEROS: {"size": _SIZE, "zeros": True}})
    source, target = stage.folder / "zeros", stage.folder / "cancelled"
    with open(source, "wb") as file:
        file.truncate(_SIZE)
    sent = "/pub/cancelled"
    made = _rows(stage, "cancel of a copy down", "cancel-copy", _ZEROS, f"Z:{target}",
                 others=_downloads(stage, target))
    made += _rows(stage, "cancel of a copy up", "cancel-copy", f"Z:{source}", sent)
    if target.stat().st_size == _SIZE or stage.server.size(sent) == _SIZE:
        raise RuntimeError("a copy was not cancelled")
    made += _of_http(stage, source, target)
    for file in (source, target):
        file.unlink(missing_ok=True)
    stage.server.ask("put", files={_ZEROS: "", sent: ""})
    return made


def _rows(stage, work, operation, *words, others=(), **details):
    times = stage.arguments.cancels
    ours = [stage.ours(build, operation, *words, times=times, **details) for build in stage.builds]
    interleave(ours, 1, warm_up=False)
    return [row(stage.named(work), contender) for contender in [*others, *ours]]


def _of_http(stage, source, target):
    with WebServer(stage.folder) as web:
        made = []
        for build in stage.builds:
            only = Stage(stage.server, [build], stage.arguments, stage.folder)
            made += _rows(only, "cancel of a web download", "cancel-http", f"/{source.name}", build.local(target),
                          login=[web.host, str(web.port), "-", "-"])
        return made


def _downloads(stage, target):
    peers = [stage.curl, *stage.others("download")]
    # ncftp keeps the file's own name.
    return [_interrupted(peer.name, peer.download(_ZEROS, target), target, stage.arguments.cancels)
            for peer in peers if peer.name != "ncftp"]


def _interrupted(name, command, target, times):
    """A contender whose operations are its cancels."""
    contender = Contender(name, command, reports=True)
    for _ in range(times):
        target.unlink(missing_ok=True)
        seconds = _interrupt(command, target)
        contender.samples.append(Sample(seconds, None, None, [seconds]))
    return contender


def _interrupt(command, target):
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL) as process:
        give_up = time.monotonic() + _SECONDS_TO_BEGIN
        while not target.exists() or target.stat().st_size < _INTO_IT:
            if process.poll() is not None or time.monotonic() > give_up:
                process.kill()
                raise RuntimeError(f"{command[0]} did not begin")
        start = time.perf_counter()
        os.kill(process.pid, signal.SIGINT)
        process.wait()
        return time.perf_counter() - start
