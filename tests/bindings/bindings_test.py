#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""tools/bindings finds each binding that says anything else than the headers, and writes what it has to say."""

import pathlib
import shutil
import sys
import tempfile
import unittest
from importlib.machinery import SourceFileLoader

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))
bindings = SourceFileLoader("bindings", str(ROOT / "tools/bindings")).load_module()


class Headers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for name in ("include", "bindings"):
            shutil.copytree(ROOT / name, self.root / name)

    def change(self, path, before, after):
        text = (self.root / path).read_text()
        self.assertEqual(text.count(before), 1, before)
        (self.root / path).write_text(text.replace(before, after))

    def differing(self):
        return {path.parent.name: wanted for path, wanted in bindings.differing(self.root)}

    def assert_all_differ(self):
        found = self.differing()
        self.assertEqual(set(found), {"python", "csharp", "pascal"})
        return found

    def test_what_is_written_agrees(self):
        self.change("include/QXErrorInfo.h", "QX_ERROR_REFUSED 12003", "QX_ERROR_REFUSED 12004")
        found = list(bindings.differing(self.root))
        self.assertEqual(len(found), 3)
        for path, wanted in found:
            path.write_text(wanted)
        self.assertEqual(self.differing(), {})

    def test_the_type_of_an_argument(self):
        self.change("include/QXClientTable.h", "FTPRenameFile)(TQXIPIFInt* pClient, const char* pszOld",
                    "FTPRenameFile)(TQXIPIFInt* pClient, uint32_t pszOld")
        self.assertIn("FTPRenameFile = CFUNCTYPE(c_uint8, c_void_p, c_uint32,", self.assert_all_differ()["python"])

    def test_the_order_of_slots(self):
        self.change("include/QXClientTable.h", "(QX_CALL* OnFailure)", "(QX_CALL* OnSwapped)")
        self.change("include/QXClientTable.h", "(QX_CALL* OnSuccess)", "(QX_CALL* OnFailure)")
        self.change("include/QXClientTable.h", "(QX_CALL* OnSwapped)", "(QX_CALL* OnSuccess)")
        self.assert_all_differ()

    def test_the_size_of_a_field(self):
        self.change("include/QXClientTable.h", "m_UserName[65]", "m_UserName[66]")
        self.assertIn("m_UserName: array[0..65] of AnsiChar;", self.assert_all_differ()["pascal"])

    def test_a_number(self):
        self.change("include/QXErrorInfo.h", "QX_ERROR_REFUSED 12003", "QX_ERROR_REFUSED 12004")
        self.assertIn("public const int QX_ERROR_REFUSED = 12004;", self.assert_all_differ()["csharp"])

    def test_an_export(self):
        self.change("include/QXDialogs.h", "QXBool QX_CALL QXSelectFolder(char* pszPath)",
                    "QXBool QX_CALL QXSelectFolder(char* pszPath, QXBool bNew)")
        self.assert_all_differ()

    def test_what_was_written_by_hand_stays(self):
        self.change("bindings/pascal/QXClient.pas", "  TQXFileTime = record", "  TQXFileTime = packed record")
        self.change("bindings/pascal/QXClient.pas", "{ TQXLibrary }", "{ The library }")
        found = self.differing()
        self.assertEqual(list(found), ["pascal"])
        self.assertIn("{ The library }", found["pascal"])


if __name__ == "__main__":
    unittest.main()
