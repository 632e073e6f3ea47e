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


def rows(work, contenders, measure=None):
    """Lines of the table for one piece of work, and whether each met its target: a multiple of `measure`'s median."""
    for contender in contenders:
        base = contender.beside or measure
        wall = statistics.median(contender.walls)
        ratio = wall / statistics.median(base.walls) if base else None
        met = not contender.target or ratio <= contender.target
        yield (
            f"| {work} | {contender.name} | {wall:.3f} ({min(contender.walls):.3f} - {max(contender.walls):.3f}) "
            f"| {statistics.median(contender.processors):.3f} "
            f"| {_median_text(contender.inner)} | {_ratio_text(contender, ratio)} "
            f"| {f'<= {contender.target:g}' if contender.target else ''}{'' if met else ' MISSED'} |",
            met,
        )


def _ratio_text(contender, ratio):
    whose = f" of {contender.beside.name}" if contender.beside else ""
    return f"{ratio:.2f}{whose}" if ratio else ""


def _median_text(values):
    return f"{statistics.median(values):.4f}" if values else ""


HEAD = (
    "| work | by | wall s, median (min - max) | processor s | one operation s | x curl | target |\n"
    "|---|---|---|---|---|---|---|"
)
