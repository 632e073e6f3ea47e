#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""mirror_oddities_test.py QXFTP...: what a mirror does where the two sides are not what it hoped for."""

import os
import subprocess

from program import COMMAND, WINDOWS, ProgramCase, files_in, main

LONG_AGO = 1_000_000_000  # what the servers have is newer


class Oddities(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.start()
        self.site = self.address(self.server, "/site")
        self.source, self.target = self.folder / "source", self.folder / "target"

    def put(self, files):
        self.server.ask("put", files={"/site" + path: node for path, node in files.items()})

    def write_source(self, **files):
        for name, content in files.items():
            self.write(f"source/{name.replace('__', '/')}", content, mtime=LONG_AGO)

    def mirror_up(self, code, *options):
        return self.fail_with(code, "mirror", self.local(self.source), self.site, *options)

    def mirror_down(self, code, *options):
        return self.fail_with(code, "mirror", self.site, self.local(self.target), *options)

    def exists(self, path):
        return self.server.ask("stat", path="/site" + path)["exists"]

    def size(self, path):
        return self.server.ask("stat", path="/site" + path).get("size")

    def start_mirror(self, *paths):
        arguments = [*COMMAND, "--retries", "0", "mirror", *map(str, paths)]
        process = subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, encoding="utf-8", errors="replace")
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def hold(self, verb, path):
        """The first file waits with its transfer until the gate is opened."""
        self.server.ask("reconfigure", script={
            "rules": [{"on": verb, "argument": "/site" + path, "first": 1, "do": [{"gate": "go"}, "normal"]}]})

    def ended(self, process, code):
        self.server.ask("release", gate="go")
        output, errors = process.communicate(timeout=600)
        self.assertEqual(process.returncode, code, output + errors)
        return errors


class InTheWay(Oddities):
    def setUp(self):
        super().setUp()
        self.put({"/a/in": "server's", "/b": "server's", "/c": "c"})
        self.write_source(a="mine", b__in="mine", c="c", d="d")
        for path in ("a", "b/in", "c"):
            self.write(f"target/{path}", "mine")

    def test_is_left_alone_upwards(self):
        told = self.mirror_up(3)
        self.assertRegex(told, "a: a folder of this name is in the way")
        self.assertRegex(told, "b: a file of this name is in the way")
        self.assertEqual((self.size("/a/in"), self.size("/b"), self.size("/d")), (8, 8, 1))

    def test_is_left_alone_downwards(self):
        self.put({"/d": "d"})
        told = self.mirror_down(3)
        self.assertRegex(told, "a: a file of this name is in the way")
        self.assertRegex(told, "b: a folder of this name is in the way")
        self.assertEqual(files_in(self.target), {"a": b"mine", "b": None, "b/in": b"mine", "c": b"c", "d": b"d"})

    def test_goes_upwards_when_things_may_go(self):
        self.mirror_up(0, "--delete", "--yes")
        self.assertEqual((self.size("/a"), self.size("/b/in"), self.size("/c")), (4, 4, 1))

    def test_goes_downwards_when_things_may_go(self):
        self.mirror_down(0, "--delete", "--yes")
        self.assertEqual(files_in(self.target), {"a": None, "a/in": b"server's", "b": b"server's", "c": b"c"})

    def test_stays_with_what_is_in_it_and_not_listed(self):
        """A name that begins with a dot is left out of mirrors, so it does not go, and its folder stays with it."""
        self.write("target/b/.mine", "mine")
        self.mirror_down(3, "--delete", "--yes")
        self.assertEqual((self.target / "b/.mine").read_text(), "mine")
        self.put({"/a/.mine": "mine"})
        self.mirror_up(3, "--delete", "--yes")
        self.assertTrue(self.exists("/a/.mine"))


class WhileItRuns(Oddities):
    def test_the_servers_files_may_change(self):
        self.put({f"/{name}": name for name in ("a", "gone", "grown", "now a folder", "z")})
        self.write("target/gone", "mine")
        self.hold("RETR", "/a")
        process = self.start_mirror(self.site, self.local(self.target))
        self.server.wait(waiting="go")
        self.server.ask("reconfigure", script={"tree": {"/site/gone": None, "/site/now a folder": None}})
        self.put({"/grown": "it is longer by now", "/now a folder/in": "in"})
        told = self.ended(process, 3)
        self.assertIn("/site/gone:", told)
        self.assertIn("/site/now%20a%20folder:", told)
        self.assertEqual(files_in(self.target),
                         {"a": b"a", "gone": b"mine", "grown": b"it is longer by now", "z": b"z"})
        self.mirror_down(0)
        self.assertEqual((self.target / "now a folder/in").read_text(), "in")

    def test_the_files_here_may_change(self):
        self.write_source(**{name: name for name in ("a", "gone", "grown", "now_a_folder", "z")})
        self.hold("STOR", "/a")
        process = self.start_mirror(self.local(self.source), self.site)
        self.server.wait(waiting="go")
        for name in ("gone", "now_a_folder"):
            (self.source / name).unlink()
        self.write("source/grown", "it is longer by now")
        self.write("source/now_a_folder/in", "in")
        told = self.ended(process, 3)
        self.assertRegex(told, "gone: .*nothing was sent")
        self.assertRegex(told, "now_a_folder: .*nothing was sent")
        self.assertEqual((self.size("/a"), self.size("/grown"), self.size("/z")), (1, 19, 1))
        self.assertFalse(self.exists("/gone") or self.exists("/now_a_folder"))
        self.mirror_up(0)
        self.assertEqual(self.size("/now_a_folder/in"), 2)


class Emptiness(Oddities):
    def test_goes_both_ways_and_takes_the_place_of_content(self):
        self.write_source(empty="", emptied="")
        self.put({"/emptied": "content"})
        self.mirror_up(0)
        self.assertEqual((self.size("/empty"), self.size("/emptied")), (0, 0))
        self.write("target/emptied", "content")
        self.mirror_down(0)
        self.assertEqual(files_in(self.target), {"empty": b"", "emptied": b""})
        self.assertIn("2 files are the same", self.succeed("mirror", self.site, self.local(self.target)))

    def test_that_the_server_does_not_take_is_a_failure(self):
        self.write_source(emptied="")
        self.put({"/emptied": "content"})
        self.server.ask("reconfigure", script={"rules": [{"on": "STOR", "do": [{"reply": "553 Not yours"}]}]})
        self.assertIn("emptied", self.mirror_up(1))
        self.assertEqual(self.size("/emptied"), 7)


class ServersLinks(Oddities):
    def test_come_as_what_they_lead_to(self):
        self.put({"/kept/f": "f", "/folder": {"link": "kept"}, "/file": {"link": "kept/f"}})
        self.mirror_down(0)
        self.assertEqual(files_in(self.target), {"file": b"f", "folder": None, "folder/f": b"f",
                                                 "kept": None, "kept/f": b"f"})

    def test_to_nowhere_are_failures_and_take_nothing_along(self):
        self.put({"/nowhere": {"link": "none"}, "/a": "a"})
        self.write("target/nowhere", "mine")
        self.assertIn("/nowhere", self.mirror_down(3, "--delete", "--yes"))
        self.assertEqual(files_in(self.target), {"a": b"a", "nowhere": b"mine"})

    def test_go_alone(self):
        """All that a link led to was removed where the link had gone at the source."""
        self.put({"/kept/f": "f", "/link": {"link": "kept"},
                  "/old/deep/f": "f", "/old/deep/link": {"link": "/site/kept"}})
        self.write_source(kept__f="f")
        self.mirror_up(0, "--delete", "--yes")
        self.assertEqual(self.server.ask("list", path="/site")["names"], ["kept"])
        self.assertTrue(self.exists("/kept/f"))

    def test_stay_with_all_they_lead_to_where_nobody_can_tell(self):
        """A server that breaks off instead of an answer has not said that it is no link."""
        self.put({"/kept/f": "f", "/link": {"link": "kept"}})
        self.write_source(kept__f="f")
        self.server.ask("reconfigure", script={
            "rules": [{"on": "DELE", "argument": "/site/link", "do": ["close"]}]})
        self.assertIn("link", self.mirror_up(1, "--delete", "--yes"))
        self.assertTrue(self.exists("/kept/f") and self.exists("/link"))


class LinksHere(Oddities):
    def setUp(self):
        super().setUp()
        self.write("elsewhere/mine", "mine")
        self.target.mkdir()
        for name in ("gone", "taken"):
            (self.target / name).symlink_to("../elsewhere")
        self.put({"/taken/f": "f", "/a": "a"})

    def tearDown(self):
        self.assertEqual(files_in(self.folder / "elsewhere"), {"mine": b"mine"})

    def test_are_not_gone_through(self):
        self.assertIn("taken: a link of this name is in the way", self.mirror_down(3))

    def test_go_alone(self):
        self.mirror_down(0, "--delete", "--yes")
        self.assertEqual(files_in(self.target), {"a": b"a", "taken": None, "taken/f": b"f"})


class NothingToReadFrom(Oddities):
    def test_removes_nothing(self):
        """A folder that is not there is no empty one."""
        self.put({"/kept": "x"})
        self.assertIn("source: ", self.mirror_up(1, "--delete", "--yes"))
        self.assertTrue(self.exists("/kept"))
        self.write("target/kept", "x")
        there = self.address(self.server, "/none")
        self.fail_with(1, "mirror", there, self.local(self.target), "--delete", "--yes")
        self.assertEqual(files_in(self.target), {"kept": b"x"})


class NamesOfOthers(Oddities):
    ODD = ("CON", "a:b", "dot.", "Gr\u00fc\u00df", "gr\u00dc\u00df", "README", "readme")

    def test_that_cannot_be_here_are_told_and_the_rest_comes(self):
        self.put({f"/{name}": "x" for name in (*self.ODD, "ok", "\u4e2d\u6587/gr\u00fc\u00df")})
        self.write("target/ReadMe.", "mine") if not WINDOWS else self.write("target/dot", "mine")
        told = self.mirror_down(3 if WINDOWS else 0, "--delete", "--yes")
        here = set(files_in(self.target))
        self.assertLessEqual({"ok", "\u4e2d\u6587/gr\u00fc\u00df"}, here)
        self.assertEqual(len(here & set(self.ODD)), 2 if WINDOWS else 7)
        if WINDOWS:
            for name in ("CON", "a:b", "dot."):
                self.assertIn(f"{name}: ", told)
            self.assertEqual(told.count("in case alone"), 2, told)
        again = self.run_program("mirror", self.site, self.local(self.target)).stdout
        self.assertIn("0 files to move", again)

    def test_that_are_one_here_are_two_on_the_server(self):
        """The one that is here was compared with the other one, and sent in its place again and again."""
        self.put({"/README": "longer", "/readme": "x"})
        self.write_source(readme="x")
        told = self.succeed("mirror", self.local(self.source), self.site)
        self.assertIn("0 files to move", told)


class Rights(Oddities):
    def run_program(self, *arguments, command=COMMAND):
        """Without the rights that root has over all files."""
        bounded = ["setpriv", "--bounding-set=-all", "--inh-caps=-all"] if os.geteuid() == 0 else []
        return super().run_program(*arguments, command=[*bounded, *command])

    def close(self, path, mode=0):
        path.chmod(mode)
        self.addCleanup(path.chmod, 0o755)

    def test_a_file_that_cannot_be_read_is_told_and_the_rest_goes(self):
        self.write_source(a="a", mine="mine", z="z")
        self.close(self.source / "mine")
        self.put({"/mine": "server's"})
        self.assertIn("mine: ", self.mirror_up(3))
        self.assertEqual((self.size("/a"), self.size("/mine"), self.size("/z")), (1, 8, 1))

    def test_nothing_goes_where_a_folder_here_cannot_be_read(self):
        self.write_source(closed__f="f", a="a")
        self.close(self.source / "closed")
        self.put({"/closed/f": "f", "/gone": "gone"})
        told = self.mirror_up(3, "--delete", "--yes")
        self.assertIn("closed: Permission denied", told)
        self.assertIn("nothing is removed", told)
        self.assertTrue(self.exists("/closed/f") and self.exists("/gone") and self.exists("/a"))

    def test_a_folder_that_cannot_be_changed_is_told_and_the_rest_comes(self):
        self.put({"/closed/f": "f", "/closed/new/g": "g", "/z": "z"})
        self.write("target/closed/mine", "mine")
        self.close(self.target / "closed", 0o555)
        told = self.mirror_down(3, "--delete", "--yes")
        self.assertIn("closed/f: ", told)
        self.assertEqual(files_in(self.target), {"closed": None, "closed/mine": b"mine", "z": b"z"})


class LinksAtServers(ProgramCase):
    """One of them lists links as what they lead to."""

    def try_server(self, kind):
        server = self.start(kind)
        server.ask("put", files={"/pub/site/kept/f": "f", "/pub/site/link": {"link": "kept"},
                                 "/pub/site/old/f": "f", "/pub/site/old/link": {"link": "../kept"}})
        self.write("source/kept/f", "f", mtime=LONG_AGO)
        self.succeed("mirror", self.folder / "source", self.address(server, "/pub/site"), "--delete", "--yes")
        self.assertEqual(server.ask("list", path="/pub/site")["names"], ["kept"])
        self.assertEqual(server.ask("list", path="/pub/site/kept")["names"], ["f"])

    def test_vsftpd(self):
        self.try_server("vsftpd")

    def test_proftpd(self):
        self.try_server("proftpd")

    def test_pyftpdlib(self):
        self.try_server("pyftpdlib")


if WINDOWS:  # the same code, but for names; Wine knows no rights of files
    del InTheWay, LinksAtServers, LinksHere, Rights, ServersLinks


if __name__ == "__main__":
    main()
