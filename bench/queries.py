# SPDX-License-Identifier: MIT
"""Long listings, single questions, and many of them."""

from measure import Contender, interleave, rows
from stage import MANY, SMALL, SMALL_TEXT

# In one process, one after the other: what an operation costs a host that is running already.
_ALONE = 100


def listing(stage):
    raw = Contender("curl", stage.curl.list(MANY))
    return stage.measure("listing", [raw, *(stage.ours(build, "list", MANY, stage.arguments.entries)
                                            for build in stage.builds)])


def queries(stage):
    made = []
    for operation, words in {"exists": (SMALL,), "size": (SMALL, len(SMALL_TEXT))}.items():
        contenders = [Contender("curl", stage.curl.query(SMALL))]
        contenders += [stage.ours(build, operation, *words) for build in stage.builds]
        made += stage.measure(operation, contenders)
        if operation == "exists":
            made += _in_a_row(stage, operation, words)
    return made


def _in_a_row(stage, operation, words):
    times = min(_ALONE, stage.arguments.count)
    alone = [stage.ours(build, operation, *words, times=times) for build in stage.builds]
    interleave(alone, stage.few(), warm_up=False)
    times = stage.arguments.count
    peers = [stage.curl, *stage.others("query")]
    connected = [Contender(peer.name, peer.query(SMALL, times), times=times) for peer in peers]
    connected += [stage.ours(build, f"connected:{operation}", *words, times=times) for build in stage.builds]
    return [*rows(stage.named(f"{operation} in a row"), alone),
            *stage.measure(f"{operation} in a row, connected", connected, stage.few(), warm_up=False)]
