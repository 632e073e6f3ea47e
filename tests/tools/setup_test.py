#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""tools/setup for root, for users who may become root, and for users who may not: on a machine made of stand-ins."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SERVERS = "inetutils-ftpd microsocks proftpd pure-ftpd tinyproxy vsftpd".split()
REAL_PROGRAMS = "bash sh env dirname mkdir flock sed sort comm grep rm mv cat chmod touch true".split()

# Each stand-in finds the machine's state in $MACHINE and writes down what was asked of it as root or to apt-get.
STAND_INS = {
    "id": 'cat "$MACHINE/user"',
    "dpkg-query": 'for package in "$@"; do [ -f "$MACHINE/missing/$package" ] || echo "ii $package"; done',
    "dpkg": 'mkdir -p "$3"',
    "ldd": "exit 0",
    "sudo": """
        echo "sudo $*" >>"$MACHINE/calls"
        [ "$1" = -n ] && [ -f "$MACHINE/trusted" ] || exit 1
        shift
        exec "$@"
    """,
    "apt-get": """
        while case "$1" in -*) ;; *) false ;; esac; do [ "$1" != -o ] || shift; shift; done
        echo "apt-get $*" >>"$MACHINE/calls"
        case "$1" in
          update) touch "$MACHINE/lists" ;;
          install) rm "$MACHINE"/missing/* ;;
          download) [ -f "$MACHINE/lists" ] && touch server.deb ;;
        esac
    """,
}


class Setup(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.machine = pathlib.Path(folder.name)
        self.programs = self.machine / "programs"
        self.checkout = self.machine / "checkout"
        for path in (self.programs, self.machine / "missing", self.checkout / "tools", self.checkout / "build/wine"):
            path.mkdir(parents=True)
        for name in REAL_PROGRAMS:
            (self.programs / name).symlink_to(shutil.which(name))
        for name, body in STAND_INS.items():
            (self.programs / name).write_text(f"#!/bin/sh\n{body}\n")
            (self.programs / name).chmod(0o755)
        for name in ("setup", "wine-env"):
            shutil.copy(ROOT / "tools" / name, self.checkout / "tools")
        (self.checkout / "build/wine/ready").touch()
        self.be_user(1000)

    def be_user(self, number):
        (self.machine / "user").write_text(f"{number}\n")

    def lack(self, *packages):
        for package in packages:
            (self.machine / "missing" / package).touch()

    def have(self, *facts):
        for fact in facts:
            (self.machine / fact).touch()

    def lose_sudo(self):
        (self.programs / "sudo").unlink()

    def run_setup(self):
        """(exit code, lines of output, what was asked of root and apt-get)"""
        done = subprocess.run([self.checkout / "tools/setup"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False, timeout=300,
                              env={"PATH": str(self.programs), "MACHINE": str(self.machine)})
        calls = self.machine / "calls"
        return done.returncode, done.stdout.splitlines(), calls.read_text().splitlines() if calls.exists() else []

    def servers(self):
        return sorted(path.parent.name for path in self.checkout.glob("build/servers/*/start"))

    def test_a_machine_that_has_everything_needs_nobody(self):
        self.have("lists")
        self.run_setup()
        (self.machine / "calls").unlink()
        self.assertEqual(self.run_setup(), (0, [], []))

    def test_servers_come_from_the_lists_that_are_there(self):
        self.have("lists")
        self.lose_sudo()
        code, _, calls = self.run_setup()
        self.assertEqual(code, 0)
        self.assertEqual(self.servers(), SERVERS)
        self.assertEqual({call.split()[1] for call in calls}, {"download"})

    def test_root_installs_by_itself(self):
        self.be_user(0)
        self.lack("valgrind", "curl")
        code, _, calls = self.run_setup()
        self.assertEqual(code, 0)
        self.assertEqual(calls[:2], ["apt-get update", "apt-get install -y --no-install-recommends curl valgrind"])
        self.assertFalse([call for call in calls if call.startswith("sudo")])

    def test_sudo_installs_where_it_asks_for_nothing(self):
        self.have("trusted")
        self.lack("valgrind")
        code, _, calls = self.run_setup()
        self.assertEqual(code, 0)
        self.assertIn("apt-get install -y --no-install-recommends valgrind", calls)
        self.assertEqual([call for call in calls if call.startswith("sudo") and not call.startswith("sudo -n")], [])

    def test_lists_are_fetched_where_those_there_do_not_do(self):
        self.have("trusted")
        code, _, calls = self.run_setup()
        self.assertEqual(code, 0)
        self.assertEqual(calls.count("apt-get update"), 1)
        self.assertEqual(self.servers(), SERVERS)

    def assert_left_to_root(self, command):
        code, lines, calls = self.run_setup()
        self.assertEqual(code, 1)
        self.assertEqual(lines[-1], f"setup: needs root for packages; an administrator runs: {command}")
        self.assertEqual([line for line in lines[:-1] if "root" in line or "not found" in line], [])
        self.assertEqual([call for call in calls if call.startswith("sudo") and call != "sudo -n true"], [])

    def test_without_sudo_one_line_says_what_root_has_to_run(self):
        # It ended with "sudo: command not found".
        self.have("lists")
        self.lack("valgrind", "curl")
        self.lose_sudo()
        self.assert_left_to_root("apt-get update && apt-get install -y --no-install-recommends curl valgrind")
        self.assertEqual(self.servers(), SERVERS)

    def test_sudo_is_never_asked_for_a_password_without_a_terminal(self):
        self.have("lists")
        self.lack("valgrind")
        self.assert_left_to_root("apt-get update && apt-get install -y --no-install-recommends valgrind")

    def test_without_lists_one_line_says_so(self):
        self.lose_sudo()
        self.assert_left_to_root("apt-get update")


if __name__ == "__main__":
    unittest.main()
