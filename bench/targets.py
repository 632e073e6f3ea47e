# SPDX-License-Identifier: MIT
"""What the library has to reach: by work and contender the most that figures of a row may be."""

import dataclasses

_MEBIBYTE = 1 << 20

# What a figure is called where it is printed, and in which unit.
FIGURES = {
    "ratio": ("wall x {beside}", 1),
    "processor_ratio": ("processor x {beside}", 1),
    "inside": ("one operation x {beside}", 1),
    "one": ("one operation, ms", 0.001),
    "own_memory": ("own memory, MiB", _MEBIBYTE),
    "trips": ("round trips", 1),
}

_TRANSFER = {"own_memory": 6 * _MEBIBYTE}
TARGETS = {
    ("download", "linux"): {"ratio": 0.55, **_TRANSFER},
    ("upload", "linux"): {"ratio": 0.85, "processor_ratio": 0.6, **_TRANSFER},
    ("copy", "linux"): {"ratio": 0.75, "processor_ratio": 1.0, **_TRANSFER},
    ("http", "linux"): {"ratio": 0.7, **_TRANSFER},
    ("listing", "linux"): {"ratio": 1.15},
    ("download", "windows"): {"inside": 1.0},
    ("upload", "windows"): {"inside": 0.9},
    ("copy", "windows"): {"inside": 1.0},
    ("http", "windows"): {"inside": 7.0},
    ("listing", "windows"): {"inside": 1.3},
    ("encrypted download", "linux"): {"ratio": 1.0, **_TRANSFER},
    ("encrypted upload", "linux"): {"ratio": 1.0, **_TRANSFER},
    # Of what the same takes in plain text.
    ("encrypted download", "windows"): {"ratio": 4.0},
    ("encrypted upload", "windows"): {"ratio": 4.0},
    ("exists in a row, connected", "linux"): {"one": 0.0003},
    ("memory of a download", "linux"): _TRANSFER,
    ("memory of an upload", "linux"): _TRANSFER,
}
# On a connection of its own to a host that is new, to one that is known, and on the connection of FTPConnect.
_TRIPS = {
    "download": (9, 7.5, None),
    "upload": (10, 8, None),
    "exists": (8, 6, 1.2),
    "size": (8, 6, 1.2),
    "list": (10, 8, 4),
    "mkdir": (36, 24, None),
    "rmdir": (26, 18, None),
}
for _name, _most in _TRIPS.items():
    for _way, _trips in zip(("first", "known", "connected"), _most):
        if _trips is not None:
            TARGETS[(f"round trips of {_name}", f"linux, {_way}")] = {"trips": _trips}
# Beside lftp, where it does the same: it makes and removes folders without a look at what is there.
_AHEAD = 1.0
# On a connection that is there both may wait once, and be no more than noise apart.
_LEVEL = 1.1
_NOT_THE_SAME = ("mkdir", "rmdir")


@dataclasses.dataclass(frozen=True)
class Target:
    row: object
    figure: str
    most: float

    @property
    def met(self):
        return getattr(self.row, self.figure) <= self.most

    def text(self):
        name, unit = FIGURES[self.figure]
        missed = "" if self.met else f" MISSED by {getattr(self.row, self.figure) / unit:.3g}"
        return f"{name.format(beside=self.row.beside or 'curl')} <= {self.most / unit:g}{missed}"


def listing_memory(entries, entry_size=580):
    """The most that a listing of so many entries may take: they, and a little beside them."""
    return entries * entry_size + 4 * _MEBIBYTE


def of(row, entries):
    """The targets that are set for a row and that it has figures for."""
    work = row.work.rpartition(", ")[0]
    most = dict(TARGETS.get((work, row.by), {}))
    if (work, row.by) == ("memory of a listing", "linux"):
        most["own_memory"] = listing_memory(entries)
    if work.startswith("round trips") and row.beside and not work.endswith(_NOT_THE_SAME):
        most["ratio"] = _LEVEL if row.by.endswith("connected") else _AHEAD
    return [Target(row, figure, value) for figure, value in most.items() if getattr(row, figure) is not None]
