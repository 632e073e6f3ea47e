#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""screen_test.py PROGRAM READER LIBRARY: what a person does with qxbrowse in a morning, on a real screen, by the
keyboard, at a server that encrypts. One program and one server for all steps, each of which begins where the one
before has ended. Judged by what the server and the local folder have, and by what the windows show. Runs under
run-with-fixture."""

import pathlib
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "examples"))
from screen import Browser, Screen, missing, wait_for, windows_path  # noqa: E402
from servers import Started, pattern  # noqa: E402

LARGE = 3_000_000
HELD = 1_000_000  # so many bytes of it come, then none
TREE = {
    "/pub/a.txt": "three",
    "/pub/b.txt": "1",
    "/pub/c.txt": "twenty-two characters.",
    "/pub/large.bin": {"size": LARGE, "seed": 7},
    "/pub/held.bin": {"size": LARGE, "seed": 8},
    "/pub/photos/": {},
}
SCRIPT = {
    "tls": {"certificate": "self-signed"},
    "tree": TREE,
    "rules": [{"on": "RETR", "argument": "/pub/held.bin", "do": [{"normal": {"stall_after": HELD, "gate": "held"}}]}],
}
LOCAL, SERVER, QUEUE = 0, 1, 2
LISTS = ("Local files", "Files on the server", "Queue")


class Morning:
    """The steps, in their order. `folder` is the local one that the site names."""

    def __init__(self, server, screen, browser, folder, sites):
        self.server, self.screen, self.browser = server, screen, browser
        self.folder, self.sites = folder, sites

    def key(self, *keys):
        self.screen.key(*keys)

    @staticmethod
    def names(seen, side):
        """The first column of a list; None where there is no main window."""
        main = next((each for each in seen if not each.is_dialog), None)
        return [row[0] for row in main.of_class("SysListView32")[side]["rows"]] if main else None

    def wait_for_names(self, side, *names):
        self.browser.wait(f"the list {names}", lambda seen: self.names(seen, side) == ["..", *names])

    def wait_for_status(self, text):
        def has(seen):
            return any(text in part for each in seen for bar in each.of_class("msctls_statusbar32")
                       for part in bar["parts"])

        self.browser.wait(f"'{text}' in the status bar", has)

    @staticmethod
    def queue(seen):
        """The rows of the queue."""
        main = next((each for each in seen if not each.is_dialog), None)
        return main.of_class("SysListView32")[QUEUE]["rows"] if main else []

    def wait_for_queue(self, name, state):
        """Until the last entry is about this file and says this of it."""
        def has(seen):
            rows = self.queue(seen)
            return rows and rows[-1][0] == name and state in rows[-1][-1]

        self.browser.wait(f"{name} to be {state}", has)

    def focused(self):
        """The text of the control that has the focus, in whichever window."""
        return next((each.focused["text"] for each in self.browser.look() if each.focused), None)

    def go_to(self, side):
        """Moves the focus to this list, wherever it is."""
        for _ in range(5):
            before = self.focused()
            if before == LISTS[side]:
                return
            self.key("Tab")
            wait_for("the focus to move", lambda: self.focused() not in (None, before))
        raise AssertionError(f"Tab does not come to {LISTS[side]}")

    @staticmethod
    def selected(seen, side):
        """The names of the items that are selected."""
        main = next((each for each in seen if not each.is_dialog), None)
        if main is None:
            return []
        items = main.of_class("SysListView32")[side]
        return [items["rows"][row][0] for row in items["selected"] if row < len(items["rows"])]

    def choose(self, side, name):
        """Selects one item, as a person does who looks at the list."""
        self.go_to(side)
        rows = self.names(self.browser.look(), side)
        self.key("Home")
        for above in rows[: rows.index(name) + 1]:
            self.browser.wait(f"{above} to be selected", lambda seen: self.selected(seen, side) == [above])
            if above != name:
                self.key("Down")

    def find(self, side, beginning, name):
        self.go_to(side)
        self.screen.write(beginning)
        self.browser.wait(f"{name} to be found", lambda seen: self.selected(seen, side) == [name])

    def connect_is_refused_by_the_user(self):
        self.browser.main()
        self.key("ctrl+n")
        self.browser.dialog("Connect to a server", "Tests")
        self.key("Return")
        question = self.browser.dialog("The server's certificate", "CN=localhost", "Valid from")
        assert question.focused["text"] == "&Do not connect", question.focused
        self.key("Return")
        self.browser.main()
        assert "pin=" not in self.sites.read_text()

    def connect_with_a_certificate_that_is_accepted(self):
        self.key("ctrl+n")
        self.browser.dialog("Connect to a server", "Tests")
        self.key("Return")
        self.browser.dialog("The server's certificate")
        self.key("alt+g")
        self.wait_for_names(SERVER, "photos", "a.txt", "b.txt", "c.txt", "held.bin", "large.bin")
        self.wait_for_names(LOCAL, "letter.txt")
        assert self.browser.main().title == "Tests - qxbrowse"
        assert "\npin=" in self.sites.read_text()

    def sort_by_size_and_by_name(self):
        self.go_to(SERVER)
        self.key("ctrl+2")
        self.wait_for_names(SERVER, "photos", "b.txt", "a.txt", "c.txt", "held.bin", "large.bin")
        self.key("ctrl+1")
        self.wait_for_names(SERVER, "photos", "a.txt", "b.txt", "c.txt", "held.bin", "large.bin")

    def upload(self):
        self.choose(LOCAL, "letter.txt")
        self.key("F5")
        self.wait_for_names(SERVER, "photos", "a.txt", "b.txt", "c.txt", "held.bin", "large.bin", "letter.txt")
        assert self.server.ask("stat", path="/pub/letter.txt")["size"] == len("A letter.")

    def download(self):
        self.find(SERVER, "lar", "large.bin")
        self.key("F5")
        self.wait_for_queue("large.bin", "Done")
        self.wait_for_names(LOCAL, "large.bin", "letter.txt")
        assert (self.folder / "large.bin").read_bytes() == b"".join(pattern().chunks(7, LARGE))

    def cancel_a_download(self):
        self.choose(SERVER, "held.bin")
        self.key("F5")
        assert self.server.ask("wait", **{"for": {"waiting": "held"}})["met"]
        self.key("Escape")
        self.wait_for_queue("held.bin", "ancelled")
        assert not (self.folder / "held.bin").exists()

    def rename(self):
        self.choose(SERVER, "a.txt")
        self.key("F2")
        self.browser.wait("a field for the name", lambda seen: any(
            each.focused and each.focused["class"] == "Edit" for each in seen))
        self.key("ctrl+a")
        self.screen.write("new.txt")
        self.key("Return")
        self.wait_for_names(SERVER, "photos", "b.txt", "c.txt", "held.bin", "large.bin", "letter.txt", "new.txt")
        assert self.server.ask("stat", path="/pub/new.txt")["size"] == len("three")

    def make_a_folder(self):
        self.go_to(SERVER)
        self.key("F7")
        self.browser.dialog("qxbrowse", "Name of the new folder:")
        self.screen.write("letters")
        self.key("Return")
        self.wait_for_names(SERVER, "letters", "photos", "b.txt", "c.txt", "held.bin", "large.bin", "letter.txt",
                            "new.txt")
        assert self.server.ask("stat", path="/pub/letters")["kind"] == "dir"

    def delete_when_it_is_confirmed(self):
        for answer in ("Escape", "alt+y"):
            self.choose(SERVER, "photos")
            self.key("Delete")
            self.browser.dialog("qxbrowse", "Delete \"photos\"?")
            self.key(answer)
            self.browser.main()
            if answer == "Escape":
                assert self.server.ask("stat", path="/pub/photos")["exists"]
        self.wait_for_names(SERVER, "letters", "b.txt", "c.txt", "held.bin", "large.bin", "letter.txt", "new.txt")
        assert not self.server.ask("stat", path="/pub/photos")["exists"]

    def lose_the_server(self):
        self.server.ask("stop")
        self.go_to(SERVER)
        self.key("ctrl+r")
        self.wait_for_status("/pub cannot be read")

    def end(self):
        self.key("alt+F4")
        assert self.browser.ended() == 0


STEPS = (
    Morning.connect_is_refused_by_the_user,
    Morning.connect_with_a_certificate_that_is_accepted,
    Morning.sort_by_size_and_by_name,
    Morning.upload,
    Morning.download,
    Morning.cancel_a_download,
    Morning.rename,
    Morning.make_a_folder,
    Morning.delete_when_it_is_confirmed,
    Morning.lose_the_server,
    Morning.end,
)


def prepare(scratch, server):
    """The local folder, and the file of sites with the one that leads to both."""
    folder = scratch / "letters"
    folder.mkdir()
    (folder / "letter.txt").write_text("A letter.")
    sites = scratch / "sites.ini"
    sites.write_text(f"[Tests]\nhost={server.host}\nport={server.port}\nuser=me\nencryption=ftpes\n"
                     f"localFolder={windows_path(folder)}\nremoteFolder=/pub\n")
    return folder, sites


def main():
    if missing():
        print("skipped: there is no", ", ".join(missing()))
        return 77
    program, reader, library = (pathlib.Path(argument) for argument in sys.argv[1:])
    with tempfile.TemporaryDirectory() as scratch, Started("ftp-script", SCRIPT) as server, Screen() as screen:
        folder, sites = prepare(pathlib.Path(scratch), server)
        arguments = ["--sites", windows_path(sites), "--library", windows_path(library)]
        with Browser(screen, program, reader, arguments) as browser:
            morning = Morning(server, screen, browser, folder, sites)
            for step in STEPS:
                browser.main()
                step(morning)
                print("ok", step.__name__, flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
