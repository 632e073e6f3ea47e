#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""harm_test.py QXFTP...: what the program must leave alone, whatever it was asked for."""

import os
import stat

from program import COMMAND, WINDOWS, ProgramCase, files_in, main

TREE = {"/pub/a": "hello", "/pub/sub/a": "there", "/other": "other"}


class Harm(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.start(tree=TREE)
        self.pub = self.address(self.server)
        self.host = ["--host", "127.0.0.1:{}".format(self.server.address[1]), "--no-netrc"]

    def names(self, path):
        return set(self.server.ask("list", path=path)["names"])

    def size(self, path):
        return self.server.ask("stat", path=path).get("size")


class OtherFiles(Harm):
    def test_paths_begin_at_the_root_in_every_command(self):
        """A copy to "d/x" went to "/x", for to the library "d/" was a drive."""
        self.server.ask("put", files={"/d/x": "x"})
        self.succeed(*self.host, "copy", "pub/a", "d/b")
        self.succeed("copy", f"{self.pub}/a", "d/c")
        self.succeed(*self.host, "put", self.local(self.write("mine", "mine")), "d/e")
        self.assertEqual((self.names("/d"), self.names("/")), ({"x", "b", "c", "e"}, {"pub", "other", "d"}))
        self.assertEqual(self.succeed(*self.host, "ls", "-1", "d/[bc]"), "b\nc\n")

    def test_a_server_that_is_another_one_is_found_before_anything_is_copied(self):
        """The files of the first server had been copied by then."""
        second = self.address(self.start(tree=TREE))
        self.fail_with(2, "copy", f"{self.pub}/a", f"{second}/a", f"{self.pub}/sub/")
        self.assertEqual(self.size("/pub/sub/a"), len("there"))
        self.assertNotIn("STOR /pub/sub/a", self.server.ask("log")["commands"])

    def test_an_empty_name_is_none(self):
        """It was taken for the folder."""
        self.assertIn("empty", self.fail_with(2, "rename", f"{self.pub}/a", ""))

    def test_a_folder_is_not_taken_for_the_first_file_in_it(self):
        """A copy onto a folder was done where a file in that had as many bytes."""
        for command in ("copy", "move"):
            self.assertIn("/pub/sub is a directory", self.fail_with(1, command, f"{self.pub}/a", f"{self.pub}/sub"))
        self.assertIn("is a directory", self.fail_with(1, "size", f"{self.pub}/sub"))
        self.assertEqual(self.size("/pub/a"), len("hello"))


class Moves(Harm):
    def move(self, target):
        return self.fail_with(1, "move", f"{self.pub}/a", target)

    def test_through_a_link_leave_the_file(self):
        """The copy went over the file, and then both went."""
        self.server = self.start("pyftpdlib")
        self.pub = self.address(self.server)
        self.server.ask("put", files={"/pub/a": "hello", "/link": {"link": "pub"}, "/a": {"link": "pub/a"}})
        for target in ("/link/a", "/a", "/pub/../pub/a"):
            self.assertTrue(self.move(target).endswith("both paths lead to one file, which is where it was\n"))
            self.assertEqual((self.names("/pub"), self.size("/pub/a")), ({"a"}, 5))

    def test_that_may_not_remove_leave_the_file_under_its_name(self):
        self.server.ask("reconfigure", script={"rules": [{"on": "DELE", "do": [{"reply": "550 Not you"}]}]})
        self.assertIn("550 Not you", self.move("/pub/moved"))
        self.assertEqual(self.names("/pub"), {"a", "sub", "moved"})

    def test_that_may_not_rename_leave_both(self):
        self.server.ask("reconfigure", script={"rules": [{"on": "RNFR", "do": [{"reply": "550 Not you"}]}]})
        self.assertIn("it was copied, but it is still there, too", self.move("/pub/moved"))
        self.assertEqual(self.names("/pub"), {"a", "sub", "moved"})

    def test_leave_nothing_behind(self):
        self.succeed("move", f"{self.pub}/a", "/pub/moved")
        self.assertEqual((self.names("/pub"), self.size("/pub/moved")), ({"sub", "moved"}, 5))


class Here(Harm):
    def test_names_of_files_are_no_paths_at_the_server(self):
        """Of "in\\a" the server got "in/a"."""
        for name, reason in (("sub\\a", "a backslash"), ("two\nlines", "control character")):
            self.assertIn(reason, self.fail_with(1, "put", self.write(name, "mine"), f"{self.pub}/"))
        self.assertEqual((self.names("/pub"), self.size("/pub/sub/a")), ({"a", "sub"}, 5))

    def test_a_pipe_stays_one(self):
        """A file took its place; of /dev/null, too."""
        pipe, link = self.folder / "pipe", self.folder / "link"
        os.mkfifo(pipe)
        link.symlink_to(pipe)
        for target in (pipe, link):
            self.assertIn("is no file; it is as it was", self.fail_with(1, "get", f"{self.pub}/a", target))
        self.assertTrue(pipe.is_fifo() and link.is_symlink())

    def test_a_file_that_others_may_not_read_stays_so(self):
        """It had the rights of a new file."""
        private, program = self.write("private", "mine"), self.write("program", "mine")
        for file, rights in ((private, 0o600), (program, 0o555)):
            file.chmod(rights)
            self.succeed("get", f"{self.pub}/a", file)
            self.assertEqual((file.read_text(), stat.S_IMODE(file.stat().st_mode)), ("hello", rights))

    def test_a_file_is_as_it_was_when_the_web_sends_half_of_the_new_one(self):
        """It had that half."""
        web = self.start("http-script", answers=[{"body": {"size": 100000}, "cut_after": 50000}])
        page = self.write("page", "mine")
        address = f"http://127.0.0.1:{web.address[1]}/x"
        self.assertIn("page is as it was", self.fail_with(1, "http", address, page))
        self.assertIn("nothing is left here", self.fail_with(1, "http", address, self.folder / "new"))
        self.assertEqual(files_in(self.folder), {"page": b"mine"})

    def test_the_web_comes_through_pipes(self):
        web = self.start("http-script", answers=[{"body": {"text": "page"}}])
        through = ["sh", "-c", '"$@" | cat', "sh", *COMMAND]
        address = f"http://127.0.0.1:{web.address[1]}/x"
        self.assertEqual(self.run_program("http", address, "/dev/stdout", command=through).stdout, "page")


class StandardStreams(Harm):
    """The socket or the file that was opened next got the number of one that was closed."""

    def run_closed(self, streams, *words):
        closed = ["sh", "-c", f'exec "$@" {streams}', "sh", *COMMAND]
        return self.run_program(*words, command=closed).returncode

    def test_that_are_closed_send_the_server_nothing(self):
        for streams in ("2>&-", "1>&- 2>&-", "0<&- 1>&- 2>&-"):
            target = self.folder / "a"
            self.assertEqual(self.run_closed(streams, "--verbose", "get", f"{self.pub}/a", target), 0, streams)
            self.assertEqual(target.read_text(), "hello")
        lines = self.server.ask("log")["commands"]
        self.assertEqual([line for line in lines if line[:1] in "*<>"], [])

    def test_that_are_closed_cannot_be_written(self):
        self.assertEqual(self.run_closed("1>&-", "ls", self.pub), 1)


if WINDOWS:  # what is of Linux, or the same code on both
    del Here, Moves, StandardStreams


if __name__ == "__main__":
    main()
