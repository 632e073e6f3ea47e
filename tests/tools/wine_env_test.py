#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""How the tools start Wine."""

import pathlib
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
ADDRESSES_ARE_NOT_RANDOM = 0x0040000


class WineEnv(unittest.TestCase):
    def test_programs_start_at_addresses_that_are_not_random(self):
        start = 'root=$PWD; . tools/wine-env; exec "${WINE[@]/#"$WINELOADER"/cat}" /proc/self/personality'
        flags = subprocess.run(["bash", "-euc", start], cwd=ROOT, check=True, stdout=subprocess.PIPE).stdout
        self.assertTrue(int(flags, 16) & ADDRESSES_ARE_NOT_RANDOM, flags)


if __name__ == "__main__":
    if subprocess.run(["setarch", "-R", "true"], check=False, stderr=subprocess.DEVNULL).returncode:
        print("skipped: the system does not let a program choose")
        sys.exit(77)
    unittest.main()
