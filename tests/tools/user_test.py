#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What a run as an ordinary user (tests/ordinary_user.py) leaves behind: nothing. Only root can make such a run."""

import os
import pathlib
import subprocess
import sys
import tempfile
import types
import unittest
import unittest.mock

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))

import ordinary_user  # noqa: E402  (found through the path above)

# Of no account.
DEVELOPER, TESTER = 64321, 64322


class Checkout(unittest.TestCase):
    def setUp(self):
        # Beside the checkout, where links to the repository's files are possible.
        scratch = tempfile.TemporaryDirectory(dir="/var/tmp")
        self.addCleanup(scratch.cleanup)
        os.chmod(scratch.name, 0o755)
        # A copy of the cache comes with the checkout: of none here, it may be gigabytes.
        cache = unittest.mock.patch.dict(os.environ, CCACHE_DIR=f"{scratch.name}/cache")
        cache.start()
        self.addCleanup(cache.stop)
        self.root = pathlib.Path(scratch.name) / "repository"
        self.root.mkdir()
        os.chown(self.root, DEVELOPER, DEVELOPER)
        self.git("init", "--quiet")
        (self.root / "file").write_text("content")
        self.git("add", "file")
        self.git("-c", "user.name=a", "-c", "user.email=a@b", "commit", "--quiet", "--message", "A file")

    def git(self, *arguments):
        subprocess.run(["git", *arguments], cwd=self.root, user=DEVELOPER, env={**os.environ, "HOME": str(self.root)},
                       check=True)

    def test_is_the_users_and_the_repository_stays_its_owners(self):
        """The repository's objects were given to the user with the clone, and one of another owner than root could
        not be cloned."""
        with ordinary_user.home_with_checkout(self.root, types.SimpleNamespace(pw_uid=TESTER, pw_gid=TESTER)) as home:
            file = home / "checkout/file"
            self.assertEqual((file.read_text(), file.stat().st_uid), ("content", TESTER))
            owners = {path.lstat().st_uid for path in (self.root / ".git/objects").rglob("*")}
            self.assertEqual(owners, {DEVELOPER})
        self.assertFalse(home.exists())


class Processes(unittest.TestCase):
    """The account of a run stayed behind where a server of its Wine lived on."""

    def test_that_react_are_ended(self):
        self.end(["sleep", "600"])

    def test_that_do_not_react_are_ended(self):
        self.end(["sh", "-c", "trap '' TERM; echo; while :; do sleep 600; done"], ready=True, seconds=0.5)

    def end(self, command, ready=False, **arguments):
        with subprocess.Popen(command, user=TESTER, stdout=subprocess.PIPE) as process:
            if ready:
                process.stdout.readline()
            ordinary_user.end_processes(TESTER, **arguments)
            self.assertNotEqual(process.wait(), 0)
            self.assertEqual(ordinary_user.processes(TESTER), [])


if __name__ == "__main__":
    if os.geteuid() != 0:
        print("skipped: needs root")
        sys.exit(77)
    unittest.main()
