# SPDX-License-Identifier: MIT
"""The names that the library exports. Prints each check and counts those that fail."""

CLIENT_EXPORTS = ["CreateQXIPIFInstance", "FreeQXIPIFInstance", "DoFTPConnect", "DllAddRef", "DllRelease"]
# On Windows alone; in the order of the header.
DIALOG_EXPORTS = ["DoOpenFileDialog", "DoOpenDirFileDialog", "DoFreeDirFileDialog", "QXSelectFolder", "DoHtmlHelp"]

_failed = 0
_made = 0


def check(holds, text):
    global _failed, _made
    _made += 1
    _failed += not holds
    print(("ok      " if holds else "FAILED  ") + text)


def same(found, expected, what):
    """The same elements in any order, none twice."""
    check(sorted(found) == sorted(expected), f"{what}: {sorted(found)}")


def exit_code():
    print(f"{_made - _failed} checks hold, {_failed} failed")
    return 0 if _made and not _failed else 1
