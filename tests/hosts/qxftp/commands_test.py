#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""commands_test.py QXFTP...: the commands for single paths, at a scripted server."""

import base64

from program import WINDOWS, ProgramCase, chosen, main

TREE = {"/pub/a.txt": {"text": "hello", "mtime": "20240229123456"}, "/pub/b.txt": "bb", "/pub/README": "r",
        "/pub/sub/": {}, "/pub/film": {"size": 5 << 30, "zeros": True}, "/pub/odd/50% gr\u00fc\u00df.txt": "odd",
        "/pub/empty/": {}}

# What goes through files, code pages and connections of Windows. Starting Wine costs more than all the rest.
ON_WINDOWS = ("test_json_has_addresses", "test_questions", "test_options_name", "test_write_append", "test_http",
              "test_copies_and_moves")


class Commands(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.start(tree=TREE)
        self.pub = self.address(self.server)

    def names(self, path="/pub"):
        return set(self.server.ask("list", path=path)["names"])

    def content(self, path):
        return base64.b64decode(self.server.ask("content", path=path)["base64"])

    def rule(self, verb, *steps):
        self.server.ask("reconfigure", script={"rules": [{"on": verb, "do": list(steps)}]})


class Looking(Commands):
    def test_ls_lists_a_directory_a_file_and_a_pattern(self):
        lines = self.succeed("ls", self.pub).splitlines()
        self.assertEqual(len(lines), 7)
        self.assertIn("-              5  2024-02-29 12:34:56  a.txt", lines)
        self.assertRegex(lines[-1], r"^d              -  .* sub/$")
        self.assertEqual(self.succeed("ls", "-1", f"{self.pub}/*.txt", f"{self.pub}/README"), "a.txt\nb.txt\nREADME\n")
        self.assertEqual(self.succeed("ls", f"{self.pub}/empty"), "")

    def test_a_directory_that_is_not_there_is_a_failure(self):
        """The library lists it as an empty one."""
        for command in ("ls", "count", "rmdir"):
            self.assertIn("there is no such", self.fail_with(1, command, f"{self.pub}/none"))
        self.assertIn("nothing has such a name", self.fail_with(1, "ls", f"{self.pub}/*.none"))

    def test_json_has_addresses_that_find_the_file_again(self):
        (entry,) = self.results("ls", f"{self.pub}/odd")["results"][0]["entries"]
        self.assertEqual(entry["size"], 3)
        self.assertTrue(entry["url"].endswith("/pub/odd/50%25%20gr%C3%BC%C3%9F.txt") or WINDOWS, entry["url"])
        self.assertEqual(self.succeed("read", entry["url"]), "odd")

    def test_what_would_move_the_cursor_is_not_shown_as_it_is(self):
        self.server.ask("put", files={"/turned/a\u202etxt.exe": "x"})
        turned = self.address(self.server, "/turned")
        self.assertEqual(self.succeed("ls", "-1", turned), "a\\xe2\\x80\\xaetxt.exe\n")
        self.assertEqual(self.results("ls", turned)["results"][0]["entries"][0]["name"], "a\u202etxt.exe")
        self.rule("DELE", {"reply": "550 no \x1b[2J"})
        self.assertNotIn("\x1b", self.fail_with(1, "--verbose", "rm", f"{self.pub}/a.txt"))

    def test_questions_have_an_exit_code_for_no(self):
        self.assertIn("a.txt is a file", self.succeed("exists", f"{self.pub}/a.txt"))
        self.assertIn("sub is a directory", self.succeed("exists", f"{self.pub}/sub"))
        self.assertEqual(self.fail_with(5, "exists", f"{self.pub}/none"), "")
        self.assertEqual(self.fail_with(5, "isdir", f"{self.pub}/a.txt"), "")
        self.succeed("isdir", f"{self.pub}/sub")

    def test_sizes_have_64_bits(self):
        self.assertEqual(self.succeed("size", f"{self.pub}/film", f"{self.pub}/a.txt"), f"{5 << 30}\n5\n")

    def test_count(self):
        self.assertEqual(self.succeed("count", self.pub), "4 files, 3 directories\n")

    def test_options_name_the_server_of_paths(self):
        host, port = self.server.address
        self.assertEqual(self.succeed("--host", host, "--port", port, "--user", "me", "--password-file", self.secret(),
                                      "ls", "-1", "/pub/*.txt"), "a.txt\nb.txt\n")
        self.assertIn("USER me", self.server.ask("log")["commands"])
        self.assertIn("connected to", self.succeed("--host", f"ftp://{host}:{port}", "connect"))

    def secret(self):
        path = self.write("secret", "pass\n")
        path.chmod(0o600)
        return self.local(path)


class Contents(Commands):
    def test_write_append_and_read(self):
        note = self.local(self.write("note", "one\n"))
        self.succeed("write", note, f"{self.pub}/note")
        self.succeed("append", note, f"{self.pub}/note")
        self.assertEqual(self.content("/pub/note"), b"one\none\n")
        self.assertEqual(self.succeed("read", f"{self.pub}/note", f"{self.pub}/b.txt"), "one\none\nbb")
        self.succeed("read", f"{self.pub}/note", "--output", self.local(self.folder / "back"))
        self.assertEqual((self.folder / "back").read_bytes(), b"one\none\n")

    def test_an_empty_content_is_refused(self):
        self.assertIn("empty", self.fail_with(1, "write", self.local(self.write("none", "")), f"{self.pub}/a.txt"))
        self.assertEqual(self.content("/pub/a.txt"), b"hello")

    def test_an_append_that_the_server_refuses_is_a_failure(self):
        """The library answers "done"."""
        self.rule("STOR", {"normal": {"close_after": 3, "final": "552 Disk full"}})
        note = self.local(self.write("note", "one\n"))
        self.fail_with(1, "--retries", "0", "append", note, f"{self.pub}/a.txt")

    def test_http(self):
        web = self.start("http-script", answers=[{"body": {"text": "page"}}])
        page = self.folder / "page.html"
        self.succeed("http", f"http://127.0.0.1:{web.address[1]}/x?a=b;c", self.local(page))
        self.assertEqual(page.read_text(), "page")
        self.assertIn("GET /x?a=b;c HTTP", web.ask("log")["requests"][0]["raw"])


class Changes(Commands):
    def test_copies_and_moves(self):
        self.succeed("copy", f"{self.pub}/*.txt", "/pub/sub/")
        self.assertEqual(self.names("/pub/sub"), {"a.txt", "b.txt"})
        self.succeed("move", f"{self.pub}/sub/a.txt", "/pub/moved")
        self.assertEqual((self.names("/pub/sub"), self.content("/pub/moved")), ({"b.txt"}, b"hello"))

    def test_paths_that_look_local_are_on_the_server(self):
        """Copies take such paths for local ones, and answer "done" without doing anything where both are."""
        server = self.start(tree={"/x": "x"})
        self.succeed("--host", "127.0.0.1:{}".format(server.address[1]), "--user", "ftp", "copy", "x", "c:y")
        self.assertTrue(server.ask("stat", path="/c:y")["exists"])

    def test_a_copy_that_the_server_refuses_is_a_failure(self):
        """The library answers "done" to half a copy, and "done" to a move that leaves the source."""
        self.rule("STOR", {"normal": {"close_after": 3, "final": "552 Disk full"}})
        self.assertIn("552 Disk full", self.fail_with(1, "--retries", "0", "copy", f"{self.pub}/a.txt", "/pub/c"))
        self.fail_with(1, "--retries", "0", "move", f"{self.pub}/a.txt", "/pub/d")
        self.assertIn("a.txt", self.names())

    def test_rename_stays_in_the_directory(self):
        self.succeed("rename", f"{self.pub}/a.txt", "z.txt")
        self.succeed("rename", f"{self.pub}/b.txt", "/pub/sub/b2.txt")
        self.assertEqual((self.names() & {"a.txt", "z.txt"}, self.names("/pub/sub")), ({"z.txt"}, {"b2.txt"}))

    def test_rm_removes_what_matches_and_nothing_else(self):
        """Servers and Windows take "*.*" for every name."""
        self.succeed("rm", f"{self.pub}/*.*")
        self.assertEqual(self.names(), {"README", "film", "sub", "odd", "empty"})

    def test_rm_goes_on_behind_a_failure(self):
        told = self.fail_with(3, "rm", f"{self.pub}/none", f"{self.pub}/a.txt", f"{self.pub}/x*")
        self.assertIn("/pub/none: ", told)
        self.assertIn("/pub/x%2A: nothing has such a name", told)
        self.assertNotIn("a.txt", self.names())

    def test_literal_wildcards(self):
        self.server.ask("put", files={"/pub/[x]": "x"})
        self.succeed("--literal", "rm", f"{self.pub}/[x]")
        self.assertNotIn("[x]", self.names())

    def test_directories(self):
        self.succeed("mkdir", f"{self.pub}/new/deep")
        self.assertEqual(self.succeed("mknew", f"{self.pub}/new", "deep"), "/pub/new/deep (1)\n")
        self.fail_with(3, "rmdir", f"{self.pub}/new", f"{self.pub}/new/deep", f"{self.pub}/a.txt")
        self.assertEqual(self.names("/pub/new"), {"deep (1)"})


    def test_a_new_directory_that_the_server_refuses_is_a_failure(self):
        """It was tried for ever."""
        self.rule("MKD", {"reply": "550 Not here"})
        self.assertIn("550 Not here", self.fail_with(1, "mknew", self.pub, "new"))
        self.assertIn("there is no such directory", self.fail_with(1, "mknew", f"{self.pub}/none", "new"))
        self.assertIn("a slash", self.fail_with(1, "mknew", self.pub, "new/deep"))


def load_tests(loader, tests, _pattern):
    return chosen(tests, ON_WINDOWS) if WINDOWS else tests


if __name__ == "__main__":
    main()
