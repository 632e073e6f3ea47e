#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""interrupt_test.py QXFTP...: Ctrl-C while a server keeps the program waiting."""

import json
import os
import signal
import subprocess

from program import BEFORE_TIMEOUTS, COMMAND, ProgramCase, Terminal, files_in, main

TREE = {"/pub/a": "aa", "/pub/b": "b", "/pub/sub/": {}}
FEATURES = ["utf8", "epsv", "size"]
QUESTIONS = ["CWD", "SIZE", "LIST"]
# Where the server is silent, what is asked for, and what the program says then. {0} is the folder's address.
SILENT = [
    ("CONNECT", ["ls", "{0}"], "{0}: cancelled"),
    ("PASS", ["connect", "{0}"], "{0}: cancelled"),
    ("LIST", ["ls", "{0}"], "{0}: cancelled"),
    ("LIST", ["count", "{0}"], "{0}: cancelled"),
    ("LIST", ["rm", "{0}/*"], "{0}/%2A: cancelled"),
    ("SIZE", ["size", "{0}/a"], "{0}/a: cancelled"),
    (QUESTIONS, ["exists", "{0}/none"], "{0}/none: cancelled"),
    (QUESTIONS, ["isdir", "{0}/none"], "{0}/none: cancelled"),
    ("DELE", ["rm", "{0}/a"], "{0}/a: cancelled; it may be gone"),
    ("RMD", ["rmdir", "{0}/sub"], "{0}/sub: cancelled; it may be gone"),
    ("MKD", ["mkdir", "{0}/new"], "{0}/new: cancelled; it may have been made, or a part of the path to it"),
    ("MKD", ["mknew", "{0}", "new"], "{0}: cancelled; one may have been made"),
    ("RNTO", ["rename", "{0}/a", "c"], "{0}/a: cancelled; it may be there as /pub/c"),
    ("CONNECT", ["read", "{0}/a"], "{0}/a: cancelled"),
    ("LIST", ["get", "-r", "{0}"], "{0}: cancelled"),
    ("LIST", ["get", "{0}/a", "here"], "{0}/a: cancelled"),
    ("LIST", ["mirror", "{0}", "here"], "{0}: cancelled"),
]


class Silent(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.start(tree=TREE, features=FEATURES)
        self.pub = self.address(self.server)

    def keep_waiting(self, verbs, **which):
        self.server.ask("reconfigure", script={"rules": [{"on": verbs, "do": [{"gate": "never"}], **which}]})

    def arguments(self, words):
        return [self.local(self.folder / word) if word == "here" else word.format(self.pub) for word in words]

    def interrupted(self, *arguments, number=signal.SIGINT, command=COMMAND):
        """What the program says that gets the signal as soon as the server keeps it waiting."""
        with subprocess.Popen([*command, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8") as program:
            self.server.wait(waiting="never")
            program.send_signal(number)
            said, told = program.communicate(timeout=BEFORE_TIMEOUTS)
        self.assertEqual(program.returncode, 130, said + told)
        self.server.wait(open=0)
        return said, told

    def test_one_ctrl_c_ends_whatever_waits(self):
        for verbs, words, text in SILENT:
            with self.subTest(silent=verbs, command=words[0]):
                self.keep_waiting(verbs)
                told = self.interrupted(*self.arguments(words))
                self.assertEqual(told, ("", f"qxftp: {text.format(self.pub)}\n"))
        self.assertEqual(files_in(self.folder), {})

    def test_on_a_terminal(self):
        self.keep_waiting("PASS")
        terminal = Terminal(["ls", self.pub], patience=BEFORE_TIMEOUTS)
        self.server.wait(waiting="never")
        terminal.type("\x03")
        self.assertEqual(terminal.exit_code(), 130, terminal.output)
        self.assertIn(f"{self.pub}: cancelled\r\n", terminal.output)

    def test_an_end_that_is_asked_for_politely_is_the_same(self):
        self.keep_waiting("PASS")
        self.assertIn("cancelled", self.interrupted("ls", self.pub, number=signal.SIGTERM)[1])

    def test_the_end_of_the_terminal_is_the_same_and_leaves_no_part(self):
        """It ended the program at once, and the part of a download stayed."""
        stall = {"normal": {"stall_after": 1, "gate": "never"}}
        self.server.ask("reconfigure", script={"rules": [{"on": "RETR", "do": [stall]}]})
        told = self.interrupted("get", f"{self.pub}/a", self.folder / "a", number=signal.SIGHUP,
                                command=["env", "--default-signal=HUP", *COMMAND])[1]
        self.assertIn("cancelled; nothing is left here", told)
        self.assertEqual(files_in(self.folder), {})

    def test_the_end_of_the_terminal_is_nothing_to_what_shall_outlive_it(self):
        self.server.ask("reconfigure", script={"rules": [{"on": "PASS", "do": [{"gate": "never"}, "normal"]}]})
        with subprocess.Popen(["env", "--ignore-signal=HUP", *COMMAND, "ls", self.pub], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8") as program:
            self.server.wait(waiting="never")
            program.send_signal(signal.SIGHUP)
            self.server.ask("release", gate="never")
            self.assertEqual((program.wait(), program.stdout.read()), (0, self.succeed("ls", self.pub)))

    def test_several_paths_tell_what_is_done_and_what_is_not(self):
        self.keep_waiting("DELE", argument="/pub/b")
        paths = [f"{self.pub}/{name}" for name in ("a", "b", "c", "d", "e")]
        told = self.interrupted("rm", *paths)[1]
        self.assertEqual(told.splitlines(), [f"qxftp: {paths[1]}: cancelled; it may be gone",
                                             f"qxftp: {paths[2]}: cancelled; not tried, and 2 more"])
        self.assertEqual(set(self.server.ask("list", path="/pub")["names"]), {"b", "sub"})

    def test_json_tells_it_too(self):
        self.keep_waiting("DELE", argument="/pub/b")
        said = json.loads(self.interrupted("--json", "rm", *[f"{self.pub}/{name}" for name in "abc"])[0])
        self.assertEqual((said["exitCode"], [result["ok"] for result in said["results"]]), (130, [True, False, False]))
        self.assertEqual([result["error"]["text"] for result in said["results"][1:]],
                         ["cancelled; it may be gone", "cancelled; not tried"])

    def test_any_of_several_servers(self):
        """A thread had one client that could be ended, the one that was made last."""
        other = self.address(self.start(tree=TREE))
        self.keep_waiting("SIZE", argument="/pub/b")
        said, told = self.interrupted("size", f"{self.pub}/a", f"{other}/a", f"{self.pub}/b")
        self.assertEqual((said, told), ("2\n2\n", f"qxftp: {self.pub}/b: cancelled\n"))

    def test_what_is_asked_behind_a_transfer_ends_with_what_is_left(self):
        """The library asks for the size of what it has sent, and hears of no cancel then."""
        self.keep_waiting("SIZE")
        told = self.interrupted("put", self.local(self.write("mine", "mine")), f"{self.pub}/new")[1]
        self.assertTrue(told.endswith("mine: cancelled; a part of it may be on the server as /pub/new\n"), told)

    def test_a_second_ctrl_c_ends_at_once(self):
        """A pipe that nobody writes to is read for ever."""
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        terminal = Terminal(["write", pipe, f"{self.pub}/new"])
        with open(pipe, "wb"):
            terminal.type_until_the_end("\x03")
            self.assertEqual(terminal.exit_code(), 130, terminal.output)
        self.assertNotIn("qxftp:", terminal.output)


if __name__ == "__main__":
    main()
