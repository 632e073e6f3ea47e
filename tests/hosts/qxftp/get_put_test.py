#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""get_put_test.py QXFTP...: get and put at a scripted server."""

import os

from program import COMMAND, WINDOWS, ProgramCase, files_in, main

TREE = {"/pub/a.txt": {"text": "hello", "mtime": "20240229123456"}, "/pub/b.txt": "bb", "/pub/c.doc": "c",
        "/pub/sub/deep/d": "d", "/pub/sub/empty/": {}, "/pub/sub/e": ""}


class Get(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.start(tree=TREE)
        self.pub = self.address(self.server)
        self.target = self.folder / "target"

    def test_a_file_comes_with_its_time(self):
        self.succeed("get", f"{self.pub}/a.txt", self.local(self.target))
        self.assertEqual(self.target.read_text(), "hello")
        self.assertEqual(self.target.stat().st_mtime, 1709210096)

    def test_files_go_into_a_folder(self):
        self.target.mkdir()
        self.succeed("get", f"{self.pub}/a.txt", f"{self.pub}/c.doc", self.local(self.target))
        self.assertEqual(files_in(self.target), {"a.txt": b"hello", "c.doc": b"c"})

    def test_wildcards_stand_for_files_and_make_the_folder(self):
        self.succeed("get", f"{self.pub}/*.txt", self.local(self.target))
        self.assertEqual(files_in(self.target), {"a.txt": b"hello", "b.txt": b"bb"})

    def test_a_folder_comes_with_all_that_is_in_it(self):
        self.succeed("get", "-r", f"{self.pub}/sub", self.local(self.target))
        self.assertEqual(files_in(self.target), {"deep": None, "deep/d": b"d", "empty": None, "e": b""})

    def test_a_folder_comes_that_no_listing_tells(self):
        """It was taken for a file, which is not there."""
        self.server.ask("put", files={"/pub/.hidden/f": "f"})
        self.assertIn("-r", self.fail_with(1, "get", f"{self.pub}/.hidden", self.local(self.target)))
        self.succeed("get", "-r", f"{self.pub}/.hidden", self.local(self.target))
        self.assertEqual(files_in(self.target), {"f": b"f"})

    def test_a_folder_alone_is_a_failure(self):
        self.assertIn("-r", self.fail_with(1, "get", f"{self.pub}/sub", self.local(self.target)))
        self.assertFalse(self.target.exists())

    def test_what_is_there_is_replaced_or_kept(self):
        self.write("target", "mine")
        self.succeed("get", "--no-overwrite", f"{self.pub}/a.txt", self.local(self.target))
        self.assertEqual(self.target.read_text(), "mine")
        self.succeed("get", f"{self.pub}/a.txt", self.local(self.target))
        self.assertEqual(self.target.read_text(), "hello")

    def test_one_that_fails_does_not_stop_the_others(self):
        self.target.mkdir()
        told = self.fail_with(3, "get", f"{self.pub}/none", f"{self.pub}/a.txt", self.local(self.target))
        self.assertIn("/pub/none", told)
        self.assertEqual(files_in(self.target), {"a.txt": b"hello"})

    def test_a_listing_of_lies_leads_nowhere_else(self):
        entry = "type=file;size=1;modify=20240101000000; "
        lines = [entry + name for name in ("../escape", "/etc/escape", "..", "good", "x\\..\\..\\escape")]
        self.server.ask("put", files={"/pub/lies/good": "g"})
        self.server.ask("reconfigure", script={
            "rules": [{"on": "MLSD", "argument": "/pub/lies", "do": [{"normal": {"lines": lines}}]}]})
        self.run_program("get", "-r", f"{self.pub}/lies", self.local(self.target / "in"))
        self.assertEqual(files_in(self.folder), {"target": None, "target/in": None, "target/in/good": b"g"})

    def test_names_that_windows_cannot_have(self):
        self.server.ask("put", files={"/odd/CON": "x", "/odd/a:b": "x", "/odd/dot.": "x", "/odd/ok": "x"})
        done = self.run_program("get", "-r", self.address(self.server, "/odd"), self.local(self.target))
        if WINDOWS:
            self.assertEqual(files_in(self.target), {"ok": b"x"})
            self.assertEqual(done.returncode, 3, done.stderr)
            for name in ("CON", "a:b", "dot."):
                self.assertIn(name.replace(":", "%3A") + ":", done.stderr.replace("a:b", "a%3Ab"))
        else:
            self.assertEqual(sorted(files_in(self.target)), ["CON", "a:b", "dot.", "ok"])

    def test_a_transfer_that_breaks_leaves_the_old_file(self):
        self.server.ask("reconfigure", script={
            "rules": [{"on": "RETR", "do": [{"normal": {"close_after": 2, "final": "426 Broken"}}]}]})
        self.write("target", "mine")
        told = self.fail_with(1, "--retries", "0", "get", f"{self.pub}/a.txt", self.local(self.target))
        self.assertIn("is as it was", told)
        self.assertEqual(files_in(self.folder), {"target": b"mine"})

    def test_json_tells_each_file(self):
        document = self.results("get", f"{self.pub}/a.txt", f"{self.pub}/none", self.local(self.target) + "/")
        by_name = {result["path"].rsplit("/", 1)[1]: result for result in document["results"]}
        self.assertTrue(by_name["a.txt"]["ok"])
        self.assertEqual(by_name["a.txt"]["bytes"], 5)
        self.assertFalse(by_name["none"]["ok"])

    def test_a_full_disk_is_told_and_nothing_is_lost(self):
        """The disk is full where a file may have no more than 100,000 bytes."""
        if WINDOWS:
            self.skipTest("Wine's files have no limit of their own")
        self.server.ask("put", files={"/pub/large": {"size": 300000}})
        self.write("target", "mine")
        limited = ["bash", "-c", "trap '' XFSZ; ulimit -f 100; exec \"$@\"", "bash", *COMMAND]
        done = self.run_program("get", f"{self.pub}/large", f"{self.pub}/b.txt", f"{self.target}s/", command=limited)
        self.assertEqual(done.returncode, 1)
        self.assertIn("the disk is full", done.stderr)
        self.assertIn("not tried", done.stderr)
        self.assertEqual(files_in(self.folder / "targets"), {})
        self.assertEqual(self.target.read_text(), "mine")


class Put(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.start(tree=TREE)
        self.pub = self.address(self.server)

    def names(self, path):
        return sorted(self.server.ask("list", path=path)["names"])

    def test_a_file_gets_a_new_name_or_goes_into_a_folder(self):
        path = self.local(self.write("mine", "content"))
        self.succeed("put", path, f"{self.pub}/new")
        self.succeed("put", path, f"{self.pub}/sub")
        self.assertEqual(self.server.ask("stat", path="/pub/new")["size"], 7)
        self.assertEqual(self.names("/pub/sub"), ["deep", "e", "empty", "mine"])

    def test_a_folder_goes_with_all_that_is_in_it(self):
        for name in ("site/a", "site/sub/.htaccess", "site/sub/b"):
            self.write(name, name)
        (self.folder / "site/empty").mkdir()
        self.succeed("put", "-r", self.local(self.folder / "site"), f"{self.pub}/")
        self.assertEqual(self.names("/pub/site"), ["a", "empty", "sub"])
        self.assertEqual(self.names("/pub/site/sub"), [".htaccess", "b"])

    def test_what_is_there_is_replaced_or_kept(self):
        path = self.local(self.write("a.txt", "longer than before"))
        self.succeed("put", "-n", path, f"{self.pub}/")
        self.assertEqual(self.server.ask("stat", path="/pub/a.txt")["size"], 5)
        self.succeed("put", path, f"{self.pub}/")
        self.assertEqual(self.server.ask("stat", path="/pub/a.txt")["size"], 18)

    def test_an_upload_is_believed_only_when_the_size_agrees(self):
        self.server.ask("reconfigure", script={
            "rules": [{"on": "STOR", "do": [{"normal": {"close_after": 3, "final": "226 Done"}}]}]})
        mine = self.local(self.write("mine", "content" * 1000))
        told = self.fail_with(1, "--retries", "0", "put", mine, f"{self.pub}/new")
        self.assertIn("the server has 3 bytes as /pub/new", told)

    def test_what_is_no_file_is_told_and_the_rest_goes(self):
        here = self.local(self.write("mine", "content"))
        told = self.fail_with(3, "put", self.local(self.folder / "none"), here, f"{self.pub}/")
        self.assertIn("none", told)
        self.assertIn("mine", self.names("/pub"))

    def test_links_are_followed_but_not_round_and_round(self):
        if WINDOWS:
            self.skipTest("links want rights on Windows")
        self.write("site/a", "a")
        os.symlink("a", self.folder / "site/link")
        os.symlink(".", self.folder / "site/round")
        self.assertIn("round", self.fail_with(3, "put", "-r", self.folder / "site", f"{self.pub}/"))
        self.assertEqual(self.names("/pub/site"), ["a", "link", "round"])

    def test_wildcards_on_windows(self):
        self.write("one.txt", "1"), self.write("two.txt", "2"), self.write("three.doc", "3")
        if not WINDOWS:
            self.skipTest("a shell has done it")
        self.succeed("put", self.local(self.folder) + "\\*.txt", f"{self.pub}/sub/")
        self.assertEqual(self.names("/pub/sub"), ["deep", "e", "empty", "one.txt", "two.txt"])

    def test_the_last_path_is_an_address(self):
        self.fail_with(2, "put", self.local(self.write("mine", "x")), self.local(self.folder))
        self.fail_with(2, "put", self.local(self.folder / "mine"))


if __name__ == "__main__":
    main()
