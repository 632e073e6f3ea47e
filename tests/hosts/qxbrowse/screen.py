# SPDX-License-Identifier: MIT
"""qxbrowse on a screen of its own: Xvfb with a window manager, real keys by xdotool, and what its windows show, told
by screen_reader.exe. Everything that is waited for is looked at again and again, and has one long limit."""

import contextlib
import json
import os
import pathlib
import shutil
import socket
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[3]
PROGRAMS = ("Xvfb", "openbox", "xdotool")
LIMIT = 120  # s, for what takes a moment
PAUSE = 0.02


def missing():
    """The programs that this needs and the machine lacks."""
    return [program for program in PROGRAMS if shutil.which(program) is None]


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class TooLate(AssertionError):
    pass


def wait_for(what, look):
    """The first true answer of `look`."""
    end = time.monotonic() + LIMIT
    while True:
        found = look()
        if found:
            return found
        if time.monotonic() > end:
            raise TooLate(f"waited in vain for {what}")
        time.sleep(PAUSE)


class Screen:
    """A screen that nobody sees, with a window manager: without one, Wine waits two seconds for each window that
    closes. It ends with `with`."""

    def __init__(self, size="1280x900"):
        self._started = []
        reading, writing = os.pipe()
        # Only errors of its own are of interest, and those are seen by what fails then.
        self._start(["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{size}x24", "-nolisten", "tcp"], (writing,))
        os.close(writing)
        with os.fdopen(reading) as number:
            self.display = ":" + number.readline().strip()
        self._start(["openbox"])

    def _start(self, command, files=()):
        environment = dict(os.environ, DISPLAY=getattr(self, "display", ""))
        self._started.append(subprocess.Popen(command, env=environment, pass_fds=files, stdin=subprocess.DEVNULL,
                                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self._started):
            process.kill()
            process.wait()

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *arguments], env=dict(os.environ, DISPLAY=self.display), check=True,
                       stdout=subprocess.DEVNULL)

    def active_title(self):
        """Of the window that gets the keys; "" where there is none for a moment."""
        return subprocess.run(["xdotool", "getactivewindow", "getwindowname"], text=True, capture_output=True,
                              env=dict(os.environ, DISPLAY=self.display)).stdout.rstrip("\n")

    def key(self, *keys):
        self.xdotool("key", "--clearmodifiers", "--delay", "5", *keys)

    def write(self, text):
        self.xdotool("type", "--clearmodifiers", "--delay", "5", text)


class Window:
    """A top-level window as it was when it was looked at."""

    def __init__(self, shown):
        self._shown = shown
        self.title = shown["text"]
        self.children = shown["children"]

    def __str__(self):
        return "\n ".join([f"[{self.title}]", *(json.dumps(each) for each in self.children)])

    @property
    def is_dialog(self):
        return self._shown["class"] == "#32770"

    def child(self, **wanted):
        """The first child with these properties (class, id, text), or None."""
        names = {"type": "class"}
        fits = (each for each in self.children if all(each[names.get(key, key)] == wanted[key] for key in wanted))
        return next(fits, None)

    def of_class(self, name):
        return [each for each in self.children if each["class"] == name]

    @property
    def focused(self):
        return next((each for each in self.children if each["focused"]), None)

    @property
    def texts(self):
        return "\n".join(each["text"] for each in self.children)


class Browser:
    """The program, on a screen. `with` ends it by force where it has not ended."""

    def __init__(self, screen, program, reader, arguments):
        self.screen = screen
        with socket.create_server(("127.0.0.1", 0)) as server:
            command = [windows_path(reader), str(server.getsockname()[1]), windows_path(program), *arguments]
            # A desktop of Wine's own, which draws, in the prefix of all tests, whose desktop draws nothing.
            self._process = subprocess.Popen(
                [ROOT / "tools/wine-runner", "explorer", "/desktop=root,,x11", *command],
                env=dict(os.environ, QX_DISPLAY=screen.display), stdin=subprocess.DEVNULL)
            server.settimeout(LIMIT)
            self._line = server.accept()[0]
        self._line.settimeout(LIMIT)
        self._answers = self._line.makefile("r", encoding="utf-8")
        self.exit_code = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        with contextlib.suppress(OSError):
            self._line.shutdown(socket.SHUT_RDWR)
        self._answers.close()
        self._line.close()
        self._process.wait(LIMIT)

    def look(self):
        """What all its windows show now; `exit_code` is set when it has ended."""
        self._line.sendall(b"\n")
        answer = json.loads(self._answers.readline())
        self.exit_code = answer.get("ended")
        self.handles = (answer.get("user"), answer.get("gdi"))
        return [Window(each) for each in answer.get("windows", [])]

    def wait(self, what, holds):
        """Looks until `holds(windows)` answers something, and answers that."""
        seen = []

        def look():
            seen[:] = self.look()
            return holds(seen)

        try:
            return wait_for(what, look)
        except TooLate as late:
            raise TooLate("\n".join([f"{late}; the windows:", *map(str, seen)])) from None

    def wait_for_keys_of(self, window):
        """Until the window gets what is typed: the screen's focus comes a moment after the window."""
        wait_for(f"the keys to go to '{window.title}'", lambda: self.screen.active_title() == window.title)
        return window

    def main(self):
        """The main window, once no dialog is in front of it."""
        return self.wait_for_keys_of(self.wait("the main window alone", lambda seen: (
            seen[0] if len(seen) == 1 and not seen[0].is_dialog else None)))

    def dialog(self, title, *texts):
        """Waits for the dialog of this title whose controls show these texts."""
        def fits(each):
            return each.is_dialog and each.title == title and all(text in each.texts for text in texts)

        return self.wait_for_keys_of(self.wait(f"the dialog '{title}' with {texts}",
                                               lambda seen: next((each for each in seen if fits(each)), None)))

    def ended(self):
        wait_for("the end", lambda: self.look() == [] and self.exit_code is not None)
        return self.exit_code
