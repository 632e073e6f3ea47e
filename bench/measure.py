# SPDX-License-Identifier: MIT
"""Times whole processes, interleaved, and tells their medians."""

import dataclasses
import os
import statistics
import subprocess
import time


@dataclasses.dataclass
class Contender:
    """One way to do a piece of work. `before` runs before each process and `after` behind it, both untimed."""

    name: str
    command: list
    target: float = None  # the most that its median may be, as a multiple of curl's
    beside: object = None  # another contender, which stands in for curl there
    before: object = None
    after: object = None
    walls: list = dataclasses.field(default_factory=list)
    processors: list = dataclasses.field(default_factory=list)
    inner: list = dataclasses.field(default_factory=list)  # what the program itself measured

    def run_once(self):
        """Wall and processor seconds of the process, and the seconds that it printed."""
        if self.before:
            self.before()
        start = time.perf_counter()
        process = subprocess.Popen(self.command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        output = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.perf_counter() - start
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            raise RuntimeError(f"{self.name} failed with {process.returncode}")
        if self.after:
            self.after()
        return wall, usage.ru_utime + usage.ru_stime, [float(line) for line in output.split()]

    def note(self, wall, processor, inner):
        self.walls.append(wall)
        self.processors.append(processor)
        self.inner += inner


def interleave(contenders, runs):
    """Every contender once to warm up, then `runs` rounds, each beginning with another contender."""
    for contender in contenders:
        contender.run_once()
    for number in range(runs):
        first = number % len(contenders)
        for contender in contenders[first:] + contenders[:first]:
            contender.note(*contender.run_once())


@dataclasses.dataclass
class Row:
    """What one contender took for one piece of work, in seconds. `ratio` is to `beside`, or to curl."""

    work: str
    by: str
    wall: float
    least: float
    most: float
    processor: float
    one: float = None
    ratio: float = None
    beside: str = None
    target: float = None

    @property
    def met(self):
        return not self.target or self.ratio <= self.target

    def cells(self):
        """As a table shows it under HEAD."""
        ratio = f"{self.ratio:.2f}{f' of {self.beside}' if self.beside else ''}" if self.ratio else ""
        target = f"<= {self.target:g}{'' if self.met else ' MISSED'}" if self.target else ""
        return [self.work, self.by, f"{self.wall:.3f} ({self.least:.3f} - {self.most:.3f})", f"{self.processor:.3f}",
                f"{self.one:.4f}" if self.one else "", ratio, target]


def rows(work, contenders, measure=None):
    """A row for each contender. Its target is a multiple of the median of `measure`, or of what it has beside it."""
    for contender in contenders:
        base = contender.beside or measure
        wall = statistics.median(contender.walls)
        yield Row(work, contender.name, wall, min(contender.walls), max(contender.walls),
                  statistics.median(contender.processors),
                  statistics.median(contender.inner) if contender.inner else None,
                  wall / statistics.median(base.walls) if base else None,
                  contender.beside.name if contender.beside else None, contender.target)


def line(cells):
    return f"| {' | '.join(cells)} |"


HEAD = ["work", "by", "wall s, median (min - max)", "processor s", "one operation s", "x curl", "target"]
RULE = "|" + "---|" * len(HEAD)
