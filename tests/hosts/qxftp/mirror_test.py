#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""mirror_test.py QXFTP...: mirror at real servers, both ways, again, after changes, interrupted and continued."""

import os
import re
import time

from program import WINDOWS, ProgramCase, Terminal, files_in, main

HOUR = 3600
# (folders, files in each) of the tree for a server: a small one unless the whole is asked for, which takes minutes.
ALL_AT_ALL = (50, 40)
EACH = ALL_AT_ALL if "QX_MIRROR" in os.environ else (2, 5)
MOVED = re.compile(r"(\d+) files? to move, (\d+) folders? to make, (\d+) to remove, (\d+) files? (?:is|are) the same")


class Mirror(ProgramCase):
    def tree(self, folders, each):
        """A folder with so many files; one folder more is empty, and there are a folder and a file in a folder."""
        for folder in range(folders):
            for number in range(each):
                self.write(f"source/folder {folder:02}/f{number}.txt", f"{folder}/{number} " * (1 + number % 9))
        (self.folder / "source/empty").mkdir()
        self.write("source/folder 00/gr\u00fc\u00df/\u4e2d\u6587.txt", "deep")
        self.write("source/folder 00/empty.txt", "")
        self.many = folders * each + 2
        self.source, self.target = self.local(self.folder / "source"), self.local(self.folder / "target")

    def mirror(self, source, target, *options):
        """(files moved, folders made, removed, the same)"""
        told = self.succeed("mirror", source, target, *options)
        return tuple(map(int, MOVED.search(told).groups()))

    def connections(self, server):
        return server.ask("log")["connections"]

    def changed_here(self, folder):
        return {path: os.stat(path).st_ctime_ns for path in folder.rglob("*")}

    def move_all(self, source, target):
        folders = len([path for path in (self.folder / "source").rglob("*") if path.is_dir()])
        self.assertEqual(self.mirror(source, target), (self.many, folders, 0, 0))

    def move_all_at_the_second_attempt(self, source, target):
        """Ctrl-C interrupts the first one. With thousands of files it comes long before the end."""
        terminal = Terminal(["mirror", source, target])
        terminal.wait_for(rf"(\d+)/{self.many} ", lambda match: int(match[1]) >= 100)
        terminal.type("\x03")
        self.assertEqual(terminal.exit_code(), 130, terminal.output[-500:])
        self.assertIn("cancelled", terminal.output)
        moved, _, _, same = self.mirror(source, target)
        self.assertEqual(moved + same, self.many)
        self.assertGreaterEqual(same, 100)

    def both_ways(self, server, scheme, move_all):
        site = self.address(server, "/pub/site", scheme)
        move_all(self.source, site)
        move_all(site, self.target)
        self.assertEqual(files_in(self.folder / "target"), files_in(self.folder / "source"))
        self.times_are_the_servers(server)
        self.nothing_moves_again(server, site)
        self.only_changes_move(server, site)

    def times_are_the_servers(self, server):
        """As exactly as listings tell them."""
        for name in ("folder 00/gr\u00fc\u00df/\u4e2d\u6587.txt", "folder 01/f3.txt"):
            there = server.ask("stat", path=f"/pub/site/{name}")["mtime"]
            self.assertIn(there - os.stat(self.folder / "target" / name).st_mtime, range(60), name)

    def nothing_moves_again(self, server, site):
        logins, here = self.connections(server), self.changed_here(self.folder / "target")
        self.assertEqual(self.mirror(self.source, site), (0, 0, 0, self.many))
        self.assertEqual(self.mirror(site, self.target, "--delete", "--yes"), (0, 0, 0, self.many))
        self.assertEqual(self.connections(server), logins + 2, "each has listed over one connection")
        self.assertEqual(self.changed_here(self.folder / "target"), here)

    def only_changes_move(self, server, site):
        """Upwards: one has grown, one is newer, one is new, one is gone. Then all of that downwards."""
        self.write("source/folder 00/f0.txt", "now it is longer than it has been before")
        server.ask("put", files={"/pub/site/folder 00/f1.txt": {"text": "0/1 " * 2, "mtime": "20240229123456"}})
        self.write("source/folder 00/f1.txt", "0+1 " * 2)
        self.write("source/new/file", "new")
        (self.folder / "source/folder 01/f0.txt").unlink()
        self.assertEqual(self.mirror(self.source, site, "--delete", "--yes"), (3, 1, 1, self.many - 3))
        # What has changed within a listing's minute cannot be seen to be newer.
        server.ask("put", files={"/pub/site/folder 00/f1.txt": {"text": "0+1 " * 2, "mtime": "20240301123456"}})
        time_here = time.time() - 100 * 24 * HOUR  # of a file that was not touched on the server
        os.utime(self.folder / "target/folder 01/f1.txt", (time_here, time_here))
        self.assertEqual(self.mirror(site, self.target, "--delete", "--yes"), (4, 1, 1, self.many - 4))
        self.assertEqual(files_in(self.folder / "target"), files_in(self.folder / "source"))


class AtServers(Mirror):
    seconds = 3600

    def try_server(self, kind, scheme="ftp", size=EACH):
        self.tree(*size)
        script = {} if scheme == "ftp" else {"tls": {"reuse": False, "implicit": scheme == "ftps"}}
        move_all = self.move_all_at_the_second_attempt if size == ALL_AT_ALL else self.move_all
        self.both_ways(self.start(kind, **script), scheme, move_all)

    def test_vsftpd(self):
        self.try_server("vsftpd")

    def test_vsftpd_encrypted(self):
        self.try_server("vsftpd", "ftpes")

    def test_proftpd(self):
        self.try_server("proftpd")

    def test_proftpd_encrypted(self):
        self.try_server("proftpd", "ftps")

    def test_pyftpdlib_encrypted(self):
        self.try_server("pyftpdlib", "ftpes")

    def test_pyftpdlib_with_two_thousand_files(self):
        self.try_server("pyftpdlib", size=ALL_AT_ALL)


class OtherClocks(Mirror):
    def test_a_server_that_shows_another_zone_gets_nothing_twice(self):
        """This server tells the time of a file in its own zone, too, so that nothing shows how far that is off."""
        server = self.start("vsftpd", extra=["use_localtime=YES"])
        an_hour_ago = time.time() - HOUR
        for name in ("a", "b"):
            self.write(f"source/{name}", name, mtime=an_hour_ago)
        site = self.address(server, "/pub/site")
        source, target = self.folder / "source", self.folder / "target"
        self.assertEqual(self.mirror(source, site), (2, 0, 0, 0))
        self.assertEqual(self.mirror(source, site), (0, 0, 0, 2))
        self.assertEqual(server.ask("list", path="/pub/site")["names"], ["a", "b"], "what asked the clock is gone")
        self.assertEqual(self.mirror(site, target), (2, 0, 0, 0))
        self.assertEqual(self.mirror(site, target), (0, 0, 0, 2))


if WINDOWS:  # the same code; a part of it tells whether files and names come along
    del AtServers, OtherClocks

    class UnderWine(Mirror):
        def test_pyftpdlib(self):
            self.tree(10, 10)
            self.both_ways(self.start("pyftpdlib"), "ftp", self.move_all)


if __name__ == "__main__":
    main()
