# SPDX-License-Identifier: MIT
"""What a piece of work is measured on: a server with its files, the builds, and a folder for local ones."""

import dataclasses
import pathlib

from measure import Contender, interleave, rows
from peers import Curl, others
from servers import file_matches, write_pattern

DOWN_SEED, UP_SEED = 3, 4
LARGE, SMALL, UPLOADED, MANY = "/pub/large", "/pub/small.txt", "/pub/upload", "/pub/many"
SMALL_TEXT = "small"


@dataclasses.dataclass
class Stage:
    server: object
    builds: list
    arguments: object
    folder: pathlib.Path

    @property
    def curl(self):
        return Curl(self.server)

    def others(self, operation):
        return [peer for peer in others(self.server) if peer.can(operation)]

    def prepare(self):
        tree = {SMALL: SMALL_TEXT, f"{MANY}/": {"many": {"count": self.arguments.entries}}}
        self.server.ask("put", files={**self.large(), **tree})

    def large(self):
        return {LARGE: {"size": self.arguments.size, "seed": DOWN_SEED}}

    def ours(self, build, operation, *words, times=1, login=None, **details):
        """The contender of a build."""
        login = login or [self._host(build), str(self.server.port), self.server.user, self.server.password]
        library = build.local(build.library)
        command = [*build.command("qxbench"), library, *login, operation, str(times), *map(str, words)]
        return Contender(build.name, command, reports=True, times=times, **details)

    def _host(self, build):
        if not self.server.encrypted:
            return self.server.host
        # The authority of the tests is none of Wine's.
        return f"ftpes://{self.server.host}{';verify=no' if build.windows else ''}"

    def named(self, work):
        return f"{work}, {self.server.kind}"

    def measure(self, work, contenders, runs=None, warm_up=True):
        """The rows of contenders. The first, usually curl, is what the others are compared with."""
        interleave(contenders, runs or self.arguments.runs, warm_up)
        return rows(self.named(work), contenders, contenders[0])

    def brings(self, target):
        """Details of a contender that brings the large file to `target`; its first result is compared in full."""
        first = [True]

        def check():
            if target.stat().st_size != self.arguments.size:
                raise RuntimeError(f"{target}: wrong size")
            if first and not file_matches(target, DOWN_SEED, self.arguments.size):
                raise RuntimeError(f"{target}: wrong content")
            first.clear()

        return {"before": lambda: target.unlink(missing_ok=True), "after": check}

    def sends(self):
        """Details of a contender that carries a file up; the first result is compared in full.

        All into the same file, over what the one before has left: the memory that new files of this size take costs
        more or less by the system's whim.
        """
        first = [True]

        def check():
            if self.server.size(UPLOADED) != self.arguments.size:
                raise RuntimeError("uploaded: wrong size")
            if first and not self.server.matches(UPLOADED, UP_SEED, self.arguments.size):
                raise RuntimeError("uploaded: wrong content")
            first.clear()

        return {"after": check}

    def source(self):
        """The local file that goes up."""
        path = self.folder / "upload"
        write_pattern(path, UP_SEED, self.arguments.size)
        return path

    def few(self):
        """Rounds of work that takes long."""
        return min(3, self.arguments.runs)
