#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""terminal_test.py QXFTP: progress, questions and Ctrl-C on a terminal, and what stays quiet without one."""

import os

from program import ProgramCase, Terminal, commands, files_in, main

LARGE = {"size": 700000, "seed": 5}
HALF = {"on": "RETR", "argument": "/pub/large", "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]}


class OnTerminal(ProgramCase):
    def setUp(self):
        super().setUp()
        tree = {f"/pub/many/{n:02}": "x" * n for n in range(20)}
        self.server = self.start(tree={"/pub/large": LARGE, **tree}, rules=[HALF])
        self.pub = self.address(self.server)
        self.target = self.folder / "target"

    def test_a_download_shows_how_far_it_is(self):
        terminal = Terminal(["get", f"{self.pub}/large", self.target], columns=70)
        terminal.wait_for("large .* 42% \\[")
        self.server.ask("release", gate="half")
        self.assertEqual(terminal.exit_code(), 0, terminal.output)
        self.assertRegex(terminal.lines()[-1], r"^1 file, 683\.6 KiB in \d+:\d\d \(.*/s\)$")
        self.assertLess(max(map(len, terminal.lines())), 70)
        self.assertEqual(self.target.stat().st_size, 700000)

    def large_file_to(self, path):
        """More than the system takes of it while the server reads nothing."""
        self.server.ask("reconfigure", script={
            "rules": [{"on": "STOR", "argument": path, "do": [{"normal": {"stall_after": 1000, "gate": "never"}}]}]})
        large = self.folder / "up" / "large"
        large.parent.mkdir()
        large.touch()
        os.truncate(large, 64 << 20)
        return large

    def expect_share(self, terminal, name):
        """A bar with a share between nothing and all, a rate and the time left."""
        terminal.wait_for(rf"{name} .*?(\d+)% \[=*> *\] +\S+ [KM]iB +\S+ \wiB/s +\d+:\d\d",
                          lambda match: 0 < int(match.group(1)) < 100)
        terminal.type("\x03")
        self.assertEqual(terminal.exit_code(), 130, terminal.output)

    def test_an_upload_shows_how_far_it_is(self):
        self.expect_share(Terminal(["put", self.large_file_to("/pub/new"), f"{self.pub}/new"]), "new")

    def test_an_upload_of_many_files_shows_all(self):
        large = self.large_file_to("/pub/up/large")
        self.write("up/a", "x" * 5000)
        self.expect_share(Terminal(["mirror", large.parent, f"{self.pub}/up"]), "1/2 large")

    def test_many_files_have_a_total(self):
        terminal = Terminal(["get", "-r", f"{self.pub}/many", self.target])
        self.assertEqual(terminal.exit_code(), 0, terminal.output)
        self.assertRegex(terminal.output, r"\d+/20 \d\d ")
        self.assertRegex(terminal.lines()[-1], "^20 files, 190 B in")

    def test_without_a_terminal_nothing_is_shown(self):
        self.server.ask("release", gate="half")
        self.assertEqual(self.succeed("get", f"{self.pub}/large", self.target), "")

    def test_with_the_protocol_or_json_nothing_is_drawn(self):
        self.server.ask("release", gate="half")
        for option in ("--verbose", "--json"):
            terminal = Terminal([option, "get", f"{self.pub}/large", self.target])
            self.assertEqual(terminal.exit_code(), 0, terminal.output)
            self.assertNotIn("%", terminal.output)

    def test_ctrl_c_cancels_and_tells_what_is_left(self):
        terminal = Terminal(["get", f"{self.pub}/large", self.target])
        terminal.wait_for("42%")
        terminal.type("\x03")
        self.assertEqual(terminal.exit_code(), 130, terminal.output)
        self.assertIn("cancelled; nothing is left here", terminal.output)
        self.assertEqual(files_in(self.folder), {})

    def test_ctrl_c_during_an_upload_tells_what_the_server_may_have(self):
        self.server.ask("reconfigure", script={
            "rules": [{"on": "STOR", "do": [{"normal": {"stall_after": 1000, "gate": "never"}}]}]})
        terminal = Terminal(["put", self.write("mine", "x" * 1000000), f"{self.pub}/new"])
        self.server.wait(waiting="never")
        terminal.type("\x03")
        self.assertEqual(terminal.exit_code(), 130, terminal.output)
        self.assertIn("a part of it may be on the server as /pub/new", terminal.output)

    def test_an_interrupted_mirror_goes_on_where_it_was(self):
        gate = {"on": "RETR", "argument": "/pub/many/07", "first": 1, "do": [{"gate": "never"}]}
        self.server.ask("reconfigure", script={"rules": [gate]})
        terminal = Terminal(["mirror", f"{self.pub}/many", self.target])
        self.server.wait(waiting="never")
        terminal.type("\x03")
        self.assertEqual(terminal.exit_code(), 130, terminal.output)
        self.assertRegex(terminal.output, "many/08: cancelled; not tried, and 11 more")
        self.assertEqual(sorted(files_in(self.target)), [f"{n:02}" for n in range(7)])
        before = len(commands(self.server, "RETR"))
        self.succeed("mirror", f"{self.pub}/many", self.target)
        self.assertEqual(len(commands(self.server, "RETR")) - before, 13)
        self.assertEqual(len(files_in(self.target)), 20)


class Deleting(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.start(tree={"/pub/a": "a"})
        self.target = self.folder / "target"
        self.write("target/old/b", "b")
        self.command = ["mirror", "--delete", self.address(self.server), self.target]

    def test_asks_and_removes(self):
        terminal = Terminal(self.command)
        terminal.wait_for("to be removed: old/b")
        terminal.wait_for(r"Remove 2 names from .*\? \[y/N\]")
        terminal.type("y\n")
        self.assertEqual(terminal.exit_code(), 0, terminal.output)
        self.assertEqual(files_in(self.target), {"a": b"a"})

    def test_no_is_the_answer_of_who_says_nothing(self):
        for answer in ("\n", "n\n", "what?\n", "\x04"):
            terminal = Terminal(self.command)
            terminal.wait_for(r"\[y/N\]")
            terminal.type(answer)
            self.assertEqual(terminal.exit_code(), 0, terminal.output)
            self.assertEqual(files_in(self.target), {"a": b"a", "old": None, "old/b": b"b"})

    def test_ctrl_c_is_no_answer(self):
        terminal = Terminal(self.command)
        terminal.wait_for(r"\[y/N\]")
        terminal.type("\x03")
        self.assertEqual(terminal.exit_code(), 130, terminal.output)
        self.assertEqual(files_in(self.target), {"old": None, "old/b": b"b"})

    def test_is_refused_where_nobody_can_be_asked(self):
        self.assertIn("--yes", self.fail_with(2, *self.command))
        self.assertEqual(files_in(self.target), {"old": None, "old/b": b"b"})
        self.succeed(*self.command, "--yes")
        self.assertEqual(files_in(self.target), {"a": b"a"})

    def test_a_dry_run_only_tells(self):
        told = self.succeed(*self.command, "--dry-run")
        self.assertEqual(told.splitlines()[:3], ["get a (new)", "rm old/b (gone)", "rmdir old (gone)"])
        self.assertEqual(files_in(self.target), {"old": None, "old/b": b"b"})

    def test_nothing_is_removed_behind_a_listing_that_has_failed(self):
        self.server.ask("put", files={"/pub/old/b": "b", "/pub/old/c": "c"})
        for verbs, how in ((["MLSD", "CWD"], {"reply": "550 Permission denied"}),
                           ("MLSD", {"normal": {"reset_after": 10}})):
            self.server.ask("reconfigure", script={
                "rules": [{"on": verbs, "argument": "/pub/old", "do": [how]}]})
            (self.target / "a").unlink(missing_ok=True)
            told = self.fail_with(3, *self.command, "--yes")
            self.assertIn("nothing is removed", told)
            self.assertIn("old/b", files_in(self.target))


if __name__ == "__main__":
    main()
