#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The rules of tools/check find what breaks them and leave the rest alone."""

import sys
import unittest
from pathlib import Path
from unittest import mock

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent.parent / "tools"))

from rules import banned, lengths, licence, rooms  # noqa: E402
from rules.sources import File  # noqa: E402


class Source(File):
    """A file that exists only here."""

    def __init__(self, path, text):
        super().__init__(Path(path))
        self.__dict__["lines"] = text.split("\n")


def findings(rule, text, path="Src/Probe.cpp"):
    return [finding.text for finding in rule.check([Source(path, text)])]


class Rooms(unittest.TestCase):
    def assert_refused(self, path, text):
        self.assertEqual(len(findings(rooms, text, path)), 1, f"{path}: {text}")

    def assert_fine(self, path, text):
        self.assertEqual(findings(rooms, text, path), [], f"{path}: {text}")

    def test_arrows_point_down(self):
        self.assert_fine("Src/Probe.cpp", '#include "support/Paths.h"')
        self.assert_fine("support/Probe.cpp", '#include "framework/File.h"')
        self.assert_fine("Src/Probe.cpp", '#include "QXIPInt.h"')
        self.assert_refused("support/Probe.cpp", '#include "Src/QXIP.h"')
        self.assert_refused("framework/Probe.cpp", '#include "support/Paths.h"')
        self.assert_refused("framework/Probe.cpp", '#include "QXIPInt.h"')
        self.assert_refused("examples/Probe.cpp", '# include "Src/QXIP.h"')

    def test_the_rooms_of_the_internet_layer_know_what_is_below_them(self):
        self.assert_fine("framework/internet/Probe.cpp", '#include "framework/internet/ftp/FtpControl.h"')
        self.assert_fine("framework/internet/ftp/Probe.cpp", '#include "framework/internet/listing/FtpListing.h"')
        self.assert_fine("framework/internet/ftp/Probe.cpp", '#include "framework/internet/net/Sock.h"')
        self.assert_fine("framework/internet/http/Probe.cpp", '#include "framework/internet/net/Sock.h"')
        self.assert_fine("framework/internet/net/Probe.cpp", '#include "framework/platform/socket.h"')
        self.assert_fine("framework/internet/listing/Probe.cpp", '#include "framework/text/AsciiText.h"')
        self.assert_fine("Src/Probe.cpp", '#include "framework/internet/FtpConnection.h"')
        self.assert_fine("Src/Probe.cpp", '#include "framework/internet/net/InternetErrors.h"')
        self.assert_fine("tests/probe.cpp", '#include "framework/internet/ftp/FtpControl.h"')
        self.assert_refused("framework/internet/ftp/Probe.cpp", '#include "framework/internet/FtpConnection.h"')
        self.assert_refused("framework/internet/http/Probe.cpp", '#include "framework/internet/ftp/FtpControl.h"')
        self.assert_refused("framework/internet/net/Probe.cpp", '#include "framework/internet/ftp/FtpControl.h"')
        self.assert_refused("framework/internet/listing/Probe.cpp", '#include "framework/internet/net/Failure.h"')
        self.assert_refused("framework/internet/listing/Probe.cpp", '#include "framework/platform/file.h"')
        self.assert_refused("framework/Probe.cpp", '#include "framework/internet/net/Sock.h"')
        self.assert_refused("Src/Probe.cpp", '#include "framework/internet/net/Sock.h"')

    def test_what_is_included_exists(self):
        self.assert_refused("Src/Probe.cpp", '#include "support/Nowhere.h"')

    def test_platform_headers_stay_with_the_platform(self):
        self.assert_fine("framework/posix/probe.cpp", "#include <unistd.h>")
        self.assert_fine("framework/windows/probe.cpp", "#include <ws2tcpip.h>")
        self.assert_fine("framework/windows/windows_api.h", "#include <windows.h>")
        self.assert_fine("tests/probe.cpp", "#include <windows.h>")
        self.assert_fine("include/Probe.h", "#include <stdint.h>")
        self.assert_fine("include/QXLibrary.h", "#include <windows.h>")
        self.assert_refused("include/Probe.h", "#include <windows.h>")
        self.assert_refused("support/Probe.h", "#include <stdint.h>")
        self.assert_fine("framework/ui/probe.cpp", "#include <commdlg.h>")
        self.assert_fine("dialogs/probe.cpp", "#include <shlobj.h>")
        self.assert_fine("dialogs/Probe.h", '#include "framework/ui/Wnd.h"')
        self.assert_fine("framework/ui/Probe.h", '#include "framework/windows/windows_api.h"')
        self.assert_fine("module/windows/probe.cpp", '#include "dialogs/FolderDlg.h"')
        self.assert_refused("framework/windows/probe.cpp", "#include <windows.h>")
        self.assert_refused("framework/windows/probe.cpp", "#include <winsock2.h>")
        self.assert_refused("framework/internet/probe.cpp", "#include <unistd.h>")
        self.assert_refused("module/Probe.cpp", "#include <windows.h>")
        self.assert_refused("dialogs/probe.cpp", "#include <windows.h>")
        self.assert_refused("dialogs/probe.cpp", '#include "Src/QXIP.h"')
        self.assert_refused("Src/Probe.cpp", '#include "framework/ui/Wnd.h"')
        self.assert_refused("module/Probe.cpp", '#include "dialogs/FolderDlg.h"')
        self.assert_refused("module/windows/probe.cpp", '#include "framework/ui/Wnd.h"')
        self.assert_refused("framework/Probe.cpp", '#include "framework/ui/Wnd.h"')
        self.assert_refused("framework/Probe.cpp", '#include "framework/windows/windows_api.h"')
        self.assert_refused("framework/posix/probe.cpp", '#include "framework/windows/windows_api.h"')

    def test_platform_conditions_stay_below(self):
        self.assert_fine("framework/Probe.h", "#ifdef _WIN32")
        self.assert_fine("include/Probe.h", "#if defined(_MSC_VER)")
        self.assert_refused("support/Probe.h", "#ifdef _WIN32")
        self.assert_refused("Src/Probe.cpp", "#elif defined(__linux__)")
        self.assert_refused("module/Probe.cpp", "#  ifndef _WIN32")


class Banned(unittest.TestCase):
    def test_calls_are_found(self):
        for code in ("strcpy(a, b);", "std::strcat(a, b);", "x = atoi (a);", "std::this_thread::sleep_for(1s);"):
            self.assertEqual(len(findings(banned, code)), 1, code)

    def test_other_uses_are_not(self):
        for code in ("// strcpy(a, b)", 'print("strcpy(a, b)");', "my_strcpy(a, b);", "clock->Sleep(1);",
                     "s.system(1);", "/* atoi(a)\n   atoi(b) */", "int strcpy = 1;", 'R"(atoi(a))";',
                     "long big = 1'000; char c = '\"';"):
            self.assertEqual(findings(banned, code), [], code)

    def test_code_behind_a_text_counts(self):
        self.assertEqual(len(findings(banned, "f(\"a\\\"b\", '\\'', 1'000, atoi(c));")), 1)

    def test_exemption_needs_a_reason_and_a_use(self):
        self.assertEqual(findings(banned, "// allowed: atoi: digits only\natoi(a);"), [])
        self.assertEqual(findings(banned, "atoi(a);  // allowed: atoi: digits only"), [])
        self.assertEqual(len(findings(banned, "// allowed: atoi\natoi(a);")), 1)
        self.assertEqual(len(findings(banned, "// allowed: atoi: digits only\nx();")), 1)
        self.assertEqual(len(findings(banned, "// allowed: atol: digits only\natoi(a);")), 2)


class Lengths(unittest.TestCase):
    def test_files_and_lines(self):
        self.assertEqual(lengths.check_lines(Source("Src/Probe.cpp", "\n" * 449)), [])
        self.assertEqual(len(lengths.check_lines(Source("Src/Probe.cpp", "\n" * 450))), 1)
        self.assertEqual(lengths.check_lines(Source("Src/Probe.cpp", "x" * 120)), [])
        self.assertEqual(len(lengths.check_lines(Source("Src/Probe.cpp", "x" * 121))), 1)

    def test_a_binding_is_one_file(self):
        self.assertEqual(lengths.check_lines(Source("bindings/csharp/Probe.cs", "\n" * 1000)), [])
        self.assertEqual(len(findings(lengths, "x" * 121, "bindings/csharp/Probe.cs")), 1)
        self.assertEqual(len(findings(lengths, "x" * 121, "bindings/pascal/Probe.pas")), 1)

    def test_functions_of_the_tree_are_seen(self):
        names = {name for _, name, _, _ in lengths.functions([File(Path("support/Paths.cpp"))])}
        self.assertIn("ToFtpPath", names)

    def test_long_functions_are_found(self):
        with mock.patch.object(lengths, "FUNCTION_LINES", 1):
            self.assertTrue(lengths.check_functions([File(Path("support/Paths.cpp"))]))


class Licence(unittest.TestCase):
    def test_first_line(self):
        self.assertEqual(findings(licence, "// SPDX-License-Identifier: MIT\nx"), [])
        self.assertEqual(findings(licence, "#!/bin/sh\n# SPDX-License-Identifier: MIT", "tools/probe"), [])
        self.assertEqual(len(findings(licence, "int x;")), 1)
        self.assertEqual(len(findings(licence, "#!/bin/sh\nx", "tools/probe")), 1)
        for name in ("bindings/csharp/Probe.cs", "bindings/pascal/Probe.pas"):
            self.assertEqual(len(findings(licence, "x", name)), 1)


if __name__ == "__main__":
    unittest.main()
