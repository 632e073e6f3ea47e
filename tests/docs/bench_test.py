#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The benchmark: what it makes of figures, and all of it once on tiny sizes."""

import argparse
import contextlib
import dataclasses
import io
import json
import pathlib
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools/documents"), str(ROOT / "bench")]
sys.dont_write_bytecode = True

import bench  # noqa: E402  (found through the path above)
import blocks  # noqa: E402
import measure  # noqa: E402
import plots  # noqa: E402
import tables  # noqa: E402
import targets  # noqa: E402
from longline import FAR, Line, why_not  # noqa: E402
from measure import Contender, Row, Sample  # noqa: E402

MEBIBYTE = 1 << 20


def row(work, by, wall, **more):
    return Row(work, by, wall, wall - 0.1, wall + 0.1, wall / 2, 2 * MEBIBYTE, **more)


def contender(name, *walls, **more):
    samples = [Sample(wall, wall / 2, MEBIBYTE, [wall / 4] if "reports" in more else []) for wall in walls]
    return Contender(name, [], samples=samples, **more)


class Measuring(unittest.TestCase):
    def test_memory_is_that_of_the_program_whatever_its_starter_has(self):
        ballast = bytearray(200 * MEBIBYTE)
        sample = measure.run("sh", ["sh", "-c", "echo seconds 1.5; echo memory 7"], reports=True)
        self.assertLess(sample.memory, len(ballast) // 2)
        self.assertEqual((sample.seconds, sample.own_memory, sample.own_processor), ([1.5], 7, None))

    def test_processor_seconds_and_memory_of_what_a_program_starts_count(self):
        script = "import os; b = bytearray(50 << 20)\nwhile sum(os.times()[:2]) < 0.2: pass"
        sample = measure.run("sh", ["sh", "-c", '"$0" -c "$1"; true', sys.executable, script])
        self.assertGreaterEqual(sample.processor, 0.2)
        self.assertGreater(sample.memory, 50 * MEBIBYTE)

    def test_a_program_that_fails_is_a_failure(self):
        with self.assertRaises(RuntimeError):
            measure.run("false", ["false"])

    def test_ratios_are_to_the_first_or_to_what_stands_beside(self):
        curl, plain = contender("curl", 2, 4, 3), contender("windows, plain", 1)
        encrypted = contender("windows", 6, reports=True, beside=plain)
        made = measure.rows("get, one", [curl, contender("linux", 1.5, reports=True), encrypted], curl)
        self.assertEqual([(one.ratio, one.processor_ratio, one.inside, one.beside) for one in made],
                         [(1, 1, None, None), (0.5, 0.5, 0.125, None), (6, 6, 1.5, "windows, plain")])

    def test_all_begin_a_round_in_turn_and_some_take_part_in_the_first_alone(self):
        order = []
        contenders = [Contender(name, ["true"], before=lambda name=name: order.append(name)) for name in "abc"]
        contenders[1].rounds = 1
        measure.interleave(contenders, 3)
        self.assertEqual("".join(order), "abc" "abc" "ca" "ca")
        self.assertEqual([len(one.samples) for one in contenders], [3, 1, 3])

    def test_the_late_ones_of_many_operations_are_told(self):
        many = Contender("linux", [], reports=True, samples=[Sample(1, 1, 1, [n / 100 for n in range(200, 0, -1)])])
        made = measure.row("cancel", many)
        self.assertEqual((made.one, made.one_late, made.one_most), (1.005, 1.98, 2.0))


class Plots(unittest.TestCase):
    def test_bars_are_as_long_as_what_they_show(self):
        rows = [row("get, one", "curl", 1), row("get, one", "linux", 2)]
        picture = ElementTree.fromstring(plots.svg([("get, one", rows)]))
        bars = {bar.get("class"): float(bar.get("width")) for bar in picture.iter("{http://www.w3.org/2000/svg}rect")}
        self.assertAlmostEqual(bars["ours"], 2 * bars["theirs"], delta=0.2)
        self.assertEqual([text.text for text in picture.iter("{http://www.w3.org/2000/svg}text")],
                         ["get, one", "curl", "1.00 s", "this library, Linux", "2.00 s"])

    def test_bars_of_round_trips_count_them(self):
        shown = plots.bar(Row("round trips of get, one", "linux, first", 0.8, 0.7, 1.0, trips=8))
        self.assertEqual((shown.value, shown.text, shown.is_ours), (8, "8.0", True))
        self.assertAlmostEqual(shown.least, 7)
        self.assertAlmostEqual(shown.most, 10)

    def test_each_server_has_a_panel_and_each_work_a_picture(self):
        works = plots.by_work([row("get, one", "curl", 1), row("put, one", "curl", 1), row("get, two", "curl", 1)])
        self.assertEqual([(work, [title for title, _ in panels]) for work, panels in works.items()],
                         [("get", ["get, one", "get, two"]), ("put", ["put, one"])])
        self.assertEqual(list(plots.pictures(works)), ["get", "put"])

    def test_a_block_has_the_pictures_and_the_figures_of_its_works(self):
        works = plots.by_work([row("exists, one", "curl", 1),
                               row("exists in a row, connected, one", "linux", 1, one=0.0123),
                               row("encrypted get, one", "windows", 1, ratio=2.5, beside="windows, plain")])
        made = plots.parts({"conditions": {"command": "tools/bench --runs 3", "runs": "3"}}, works)
        self.assertEqual(list(made), ["conditions", "queries", "encrypted"])
        self.assertEqual(made["conditions"], "- command: `tools/bench --runs 3`\n- runs: 3")
        self.assertEqual(made["queries"].count("performance-exists.svg"), 1)
        self.assertNotIn("in-a-row", made["queries"])
        self.assertIn("| exists in a row, connected, one | this library, Linux | 1000 | 900 - 1100 | 500 | 2.0 | "
                      "12.30 |", made["queries"])
        self.assertIn("| 2.50 of windows, plain |", made["encrypted"])
        self.assertIn("(pictures/performance-encrypted-get.svg)", made["encrypted"])

    def test_round_trips_have_a_column_for_each_contender(self):
        told = [("get", "curl", 12, 0.007), ("get", "linux, known", 8, None), ("exists", "lftp", 7.26, 0.012)]
        works = plots.by_work([Row(f"round trips of {work}, one", by, 1, 1, 1, trips=count, processor=processor)
                               for work, by, count, processor in told])
        lines = tables.trips([panel for panels in works.values() for panel in panels]).splitlines()
        self.assertEqual(lines[:4], ["| | curl | this library, Linux, known | lftp |", "|---|--:|--:|--:|",
                                     "| get | 12.0 | 8.0 | |", "| exists | | | 7.3 |"])
        self.assertEqual(lines[-4:], ["| | curl | lftp |", "|---|--:|--:|", "| get | 7 | |", "| exists | | 12 |"])


class Targets(unittest.TestCase):
    def test_the_run_ends_with_a_list_of_those_that_are_missed(self):
        late, soon = (row("download, one", "linux", 1, ratio=ratio, own_memory=MEBIBYTE) for ratio in (0.7, 0.5))
        self.assertEqual(self.report(late), (1, ["targets missed: 1",
                                                 "download, one, linux: wall x curl <= 0.55 MISSED by 0.7"]))
        self.assertEqual(self.report(soon), (0, ["every target is met"]))

    def report(self, *rows):
        with contextlib.redirect_stdout(io.StringIO()) as output:
            code = bench.report(rows, argparse.Namespace(quick=False, entries=10))
        return code, [line.strip() for line in output.getvalue().splitlines() if line]

    def test_memory_may_grow_with_the_entries_of_a_listing_alone(self):
        entries, beside = 1000, 4 * MEBIBYTE
        found = row("memory of a listing, 1000 entries", "linux", 1, own_memory=entries * 580 + beside)
        self.assertTrue(all(target.met for target in targets.of(found, entries)))
        found.own_memory += 1
        self.assertEqual([target.met for target in targets.of(found, entries)], [False])

    def test_round_trips_are_judged_beside_lftp(self):
        found = Row("round trips of rename, vsftpd", "linux, known", 1, 1, 1, trips=5, ratio=1.1, beside="lftp")
        self.assertEqual([target.met for target in targets.of(found, 0)], [False])
        self.assertEqual(targets.of(dataclasses.replace(found, work="round trips of mkdir, vsftpd"), 0)[1:], [])


class LongLine(unittest.TestCase):
    @unittest.skipIf(why_not(), why_not())
    def test_what_goes_there_and_back_takes_the_round_trip(self):
        devices = pathlib.Path("/proc/net/dev").read_text()
        with Line(0.05) as line:
            with line.far(), socket.create_server((FAR, 0)) as listener, line.near():
                start = time.monotonic()
                with socket.create_connection(listener.getsockname()):
                    self.assertGreaterEqual(time.monotonic() - start, 0.05)
            names = [name.split(":")[0] for name in pathlib.Path("/proc/net/dev").read_text().splitlines()]
            self.assertEqual(names, [name.split(":")[0] for name in devices.splitlines()])


class Quick(unittest.TestCase):
    """One run of everything."""

    @classmethod
    def setUpClass(cls):
        with tempfile.NamedTemporaryFile("r") as figures:
            command = [str(ROOT / "bench/bench.py"), "--quick", "--build", "linux", "--server", "vsftpd", "--json"]
            done = subprocess.run([*command, figures.name], capture_output=True, text=True, check=False)
            if "needs root" in done.stderr:
                raise unittest.SkipTest("the server takes rights that are not to be had here")
            if done.returncode != 0:
                raise RuntimeError(done.stderr)
            cls.figures = json.loads(figures.read())
        cls.rows = [Row(**found) for found in cls.figures["rows"]]

    def found(self, work, by):
        [row] = [row for row in self.rows if row.work.startswith(f"{work}, ") and row.by == by]
        return row

    def test_every_part_of_the_page_is_measured(self):
        page = plots.DOCUMENT.read_text()
        blocks.filled(page, plots.TOOL, plots.parts(self.figures, plots.by_work(self.rows)))

    def test_the_programs_stand_beside_each_other(self):
        beside = {row.by for row in self.rows if row.work == "download, vsftpd"}
        self.assertEqual(beside, {"curl", "wget", "lftp", "ncftp", "linux"})

    def test_what_operations_take_of_the_machine_is_told(self):
        for work in ("download", "upload", "copy", "http", "listing", "exists", "small files down",
                     "encrypted download", "exists in a row, connected"):
            with self.subTest(work):
                row = self.found(work, "linux")
                self.assertGreater(row.memory, MEBIBYTE)
                self.assertTrue(0 <= row.own_memory < row.memory)
                self.assertTrue(0 < row.one <= row.wall)
                self.assertTrue(0 <= row.own_processor <= row.processor + 0.01)

    def test_later_operations_take_fewer_round_trips(self):
        first, known, connected = (self.trips("exists", way) for way in ("first", "known", "connected"))
        self.assertGreater(connected, 0.5)
        self.assertGreater(known, connected + 1)
        self.assertGreater(first, known + 0.5)

    def trips(self, operation, way):
        """Those of the quickest, which the machine has held up least."""
        row = self.found(f"round trips of {operation}", f"linux, {way}")
        return row.trips * row.least / row.wall if row.wall else row.trips

    def test_cancels_are_timed(self):
        for work in ("cancel of a copy down", "cancel of a copy up", "cancel of a web download"):
            row = self.found(work, "linux")
            self.assertTrue(0 < row.one <= row.one_late <= row.one_most < row.wall, work)


if __name__ == "__main__":
    unittest.main()
