# SPDX-License-Identifier: MIT
"""Times whole processes, interleaved, and tells their medians."""

import dataclasses
import pathlib
import statistics
import subprocess
import sys
import tempfile

from servers import Build

_RUNNER = Build("linux")
_PATIENCE = 3


@dataclasses.dataclass
class Sample:
    """One run of a process: its seconds and its peak memory, and what qxbench has printed of itself."""

    wall: float
    processor: float
    memory: int
    seconds: list = dataclasses.field(default_factory=list)
    own_processor: float = None
    own_memory: int = None

    def note(self, line):
        kind, value = line.split()
        if kind == "seconds":
            self.seconds.append(float(value))
        elif kind == "processor":
            self.own_processor = float(value)
        else:
            self.own_memory = int(value)


def run(name, command, reports=False):
    """The sample of a command, of which `reports` are read."""
    with tempfile.NamedTemporaryFile("r") as figures:
        started = [*_RUNNER.command("qxrun"), figures.name, *command]
        done = subprocess.run(started, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, errors="replace",
                              check=False)
        if done.returncode != 0:
            raise RuntimeError(f"{name} failed with {done.returncode}: {' '.join(command)}")
        wall, processor, memory = figures.read().split()
    sample = Sample(float(wall), float(processor), int(memory))
    for line in done.stdout.splitlines() if reports else []:
        sample.note(line)
    return sample


@dataclasses.dataclass
class Contender:
    """One way to do a piece of work. `before` runs before each process and `after` behind it, both untimed."""

    name: str
    command: object  # a list, or what makes one for each run
    beside: object = None  # another contender, which stands in for curl there
    before: object = None
    after: object = None
    reports: bool = False  # qxbench does
    times: int = 1  # how often a process carries the operation out
    rounds: int = None  # at most; for what takes so long that once has to do
    samples: list = dataclasses.field(default_factory=list)

    def run_once(self):
        """Programs of others may fail now and then, which is told; ours may not."""
        for _ in range(0 if self.reports else _PATIENCE):
            try:
                return self._try()
            except RuntimeError as failure:
                print(f"once more: {failure}", file=sys.stderr)
        return self._try()

    def _try(self):
        if self.before:
            self.before()
        command = self.command() if callable(self.command) else self.command
        sample = run(self.name, command, self.reports)
        if self.after:
            self.after()
        return sample

    def median(self, figure):
        """None where the program does not tell it."""
        told = [value for value in (getattr(sample, figure) for sample in self.samples) if value is not None]
        return statistics.median(told) if told else None

    def operations(self):
        """The seconds of each operation. A program that does not tell them takes the same for each."""
        told = [value for sample in self.samples for value in sample.seconds]
        return sorted(told or [sample.wall / self.times for sample in self.samples])


def interleave(contenders, runs, warm_up=True):
    """Every contender once to warm up, then `runs` rounds, each beginning with another contender."""
    for contender in contenders if warm_up else []:
        contender.run_once()
    for number in range(runs):
        first = number % len(contenders)
        for contender in contenders[first:] + contenders[:first]:
            if contender.rounds is None or number < contender.rounds:
                contender.samples.append(contender.run_once())


@dataclasses.dataclass
class Row:
    """What one contender took for one piece of work, in seconds and bytes. The ratios are to `beside`, or to curl;
    `inside` is that of one operation, timed by the host itself."""

    work: str
    by: str
    wall: float
    least: float
    most: float
    processor: float = None
    memory: int = None
    one: float = None
    one_late: float = None  # all but one of a hundred operations are as fast
    one_most: float = None
    own_processor: float = None
    own_memory: int = None
    ratio: float = None
    processor_ratio: float = None
    inside: float = None
    trips: float = None
    beside: str = None


def quantile(ordered, share):
    """The least value that this share of all does not exceed."""
    return ordered[max(0, -int(-share * len(ordered) // 1) - 1)]


def row(work, contender, measure=None):
    """Its ratios are to the medians of `measure`, or of what it has beside it."""
    base = contender.beside or measure
    walls = [sample.wall for sample in contender.samples]
    made = Row(work, contender.name, statistics.median(walls), min(walls), max(walls), contender.median("processor"),
               contender.median("memory"))
    made.own_processor, made.own_memory = contender.median("own_processor"), contender.median("own_memory")
    if contender.reports or contender.times > 1:
        each = contender.operations()
        made.one, made.one_late, made.one_most = statistics.median(each), quantile(each, 0.99), each[-1]
    if base:
        made.ratio = made.wall / base.median("wall")
        made.processor_ratio = made.processor / max(base.median("processor"), 0.001)
        made.inside = made.one / base.median("wall") if contender.reports and contender.times == 1 else None
        made.beside = base.name if base.name != "curl" else None
    return made


def rows(work, contenders, measure=None):
    return [row(work, contender, measure) for contender in contenders]


def _mebibytes(value):
    return f"{value / (1 << 20):.1f}" if value is not None else ""


def cells(found, targets):
    """As a table shows a row under HEAD; `targets` is what it has to reach, as a text."""
    ratio = f"{found.ratio:.2f}{f' of {found.beside}' if found.beside else ''}" if found.ratio else ""
    return [found.work, found.by, f"{found.wall:.3f} ({found.least:.3f} - {found.most:.3f})",
            f"{found.processor:.3f}" if found.processor is not None else "",
            _mebibytes(found.memory), _mebibytes(found.own_memory),
            f"{found.one:.5f}" if found.one is not None else "",
            f"{found.trips:.1f}" if found.trips is not None else "", ratio, targets]


def line(texts):
    return f"| {' | '.join(texts)} |"


HEAD = ["work", "by", "wall s, median (min - max)", "processor s", "peak MiB", "own MiB", "one operation s",
        "round trips", "x curl", "targets"]
RULE = "|" + "---|" * len(HEAD)
