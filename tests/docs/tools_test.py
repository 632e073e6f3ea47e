#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The tools that write parts of documents, against examples."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tools/documents"))
sys.dont_write_bytecode = True

import blocks  # noqa: E402  (found through the path above)
import wire_cases  # noqa: E402
from client import slots  # noqa: E402
from conversation import Conversation  # noqa: E402

DOCUMENT = """Text
<!-- by tools/some: one -->
old
<!-- end -->
<!-- by tools/other: one -->
theirs
<!-- end -->
"""


class Blocks(unittest.TestCase):
    def test_a_part_takes_its_place_and_no_other(self):
        filled = blocks.filled(DOCUMENT, "tools/some", {"one": "new \\1\n"})
        self.assertEqual(filled, DOCUMENT.replace("old\n", "\nnew \\1\n\n"))
        self.assertEqual(blocks.filled(filled, "tools/some", {"one": "new \\1"}), filled)

    def test_a_part_without_a_place_and_a_place_without_a_part_are_failures(self):
        for parts in ({}, {"two": ""}, {"one": "", "two": ""}):
            with self.assertRaises(ValueError):
                blocks.filled(DOCUMENT, "tools/some", parts)

    def test_a_check_shows_what_differs_and_writes_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "document.md"
            path.write_text(DOCUMENT)
            with contextlib.redirect_stdout(io.StringIO()) as output:
                self.assertFalse(blocks.update(path, "tools/some", {"one": "new"}, only_check=True))
            self.assertIn("-old\n", output.getvalue())
            self.assertIn("+new\n", output.getvalue())
            self.assertEqual(path.read_text(), DOCUMENT)
            self.assertFalse(blocks.update(path, "tools/some", {"one": "new"}, only_check=False))
            self.assertTrue(blocks.update(path, "tools/some", {"one": "new"}, only_check=True))


def sent(line, connection=1):
    return {"event": "command", "connection": connection, "line": line, "verb": line.split()[0]}


def got(text, connection=1):
    return {"event": "reply", "connection": connection, "text": text}


def login(connection=1):
    return [{"event": "accept", "connection": connection}, got("220 Hello", connection),
            sent("USER me", connection), got("331 And?", connection),
            sent("PASS word", connection), got("230 In", connection)]


class Conversations(unittest.TestCase):
    def shown(self, *events):
        conversation = Conversation(list(events))
        return conversation.count(), [(number, line, " ".join(codes)) for number, line, codes in conversation.rows()]

    def test_a_login_is_three_turns(self):
        self.assertEqual(self.shown(*login()), (3, [(1, "(login)", "220 331 230")]))

    def test_a_login_that_fails_is_shown_in_full(self):
        count, rows = self.shown(*login()[:-1], got("530 No"))
        self.assertEqual((count, [row[1] for row in rows]), (3, ["(connects)", "USER me", "PASS word"]))

    def test_lines_of_one_packet_are_one_turn_and_have_their_own_replies(self):
        self.assertEqual(self.shown(sent("TYPE I"), sent("SIZE /a"), got("200 Ok"), got("213 5")),
                         (1, [(1, "TYPE I", "200"), ("", "SIZE /a", "213")]))

    def test_a_transfer_is_two_turns_also_where_its_last_word_is_lost(self):
        self.assertEqual(self.shown(sent("RETR /a"), got("150 Now"), got("226 Done")), (2, [(1, "RETR /a", "150 226")]))
        self.assertEqual(self.shown(sent("RETR /a"), got("150 Now")), (2, [(1, "RETR /a", "150")]))

    def test_connections_are_numbered_as_they_come_up(self):
        talk = [("A", 7), ("B", 9), ("C", 7)]
        events = [event for line, number in talk for event in (sent(line, number), got("200", number))]
        self.assertEqual(self.shown(*events), (3, [(1, "A", "200"), (2, "B", "200"), (1, "C", "200")]))

    def test_the_way_back_from_a_directory_is_no_turn_whether_it_has_been_answered_or_not(self):
        visit = [sent("CWD /a"), got("250 Ok"), sent("LIST"), got("150 Now"), got("226 Done"), sent("CWD /")]
        for events in (visit, [*visit, got("250 Ok")], [*visit, sent("QUIT"), got("250 Ok"), got("221 Bye")]):
            count, rows = self.shown(*events)
            self.assertEqual((count, rows[-1]), (3, (1, "CWD /", "(not waited for)")))

    def test_a_directory_that_is_refused_has_been_waited_for(self):
        self.assertEqual(self.shown(sent("CWD /a"), got("550 No")), (1, [(1, "CWD /a", "550")]))

    def test_what_differs_from_run_to_run_is_left_out(self):
        self.assertEqual(self.shown(sent("EPRT |1|127.0.0.1|4711|"), got("200"))[1][0][1], "EPRT |1|127.0.0.1|port|")
        self.assertEqual(self.shown(sent("PORT 127,0,0,1,18,103"), got("200"))[1][0][1], "PORT 127,0,0,1,port")


class WireCases(unittest.TestCase):
    def test_every_operation_is_shown_or_known_to_be_silent(self):
        shown = {case.operation for case in [*wire_cases.CONNECTING, *wire_cases.OPERATIONS]}
        hooks = [name for name, (number, _) in slots().items() if 6 <= number <= 20 or number == 22]
        life = ["FillWipePattern", "DeletingDestructor", "AddRef", "Release"]
        all_known = [*shown, *wire_cases.SILENT, "FTPKeepAlive", "HTTPDownloadFile", *hooks, *life]
        self.assertEqual(sorted(all_known), sorted(slots()))


if __name__ == "__main__":
    unittest.main()
