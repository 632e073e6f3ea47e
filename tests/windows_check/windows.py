# SPDX-License-Identifier: MIT
"""What differs between a Windows and another system that has a way to run Windows programs."""

import contextlib
import ctypes
import hashlib
import os
import re
import signal
import subprocess

import certificates

_NO_BOXES = 0x0001 | 0x0002 | 0x8000  # of SetErrorMode: nothing that waits for somebody to close it
_SECONDS_TO_END = 10


def _certutil(*words):
    """Whether the system has done it."""
    return subprocess.run(["certutil", *words], capture_output=True, check=False).returncode == 0


@contextlib.contextmanager
def trusted_authority(folder):
    """Lets this system trust one new authority while the block runs; gives the settings by which servers have it. Its
    key is in no other place and goes with the folder. An administrator is not asked; others are, by the system, and
    where they refuse, nothing is encrypted."""
    authority = folder / "authority.json"
    certificates.write_shared(authority)
    certificate = authority.with_suffix(".cer")
    number = hashlib.sha1(certificate.read_bytes(), usedforsecurity=False).hexdigest()
    print("Windows may ask twice for a root certificate, Test Authority: to add it now, to remove it at the end.")
    add = ("-addstore", "Root", str(certificate))
    place = next((place for place in ((), ("-user",)) if _certutil(*place, *add)), None)
    try:
        yield {"QX_AUTHORITY": "" if place is None else str(authority)}
    finally:
        if place is not None and not _certutil(*place, "-delstore", "Root", number):
            print(f"The certificate {number} is still among the trusted roots: remove it by certmgr.msc.")


class Windows:
    """This system, which is one."""

    options = {"creationflags": getattr(subprocess, "CREATE_NEW_PROCESS_GROUP", 0)}

    def __init__(self):
        ctypes.windll.kernel32.SetErrorMode(_NO_BOXES)  # programs that are started take it over

    @staticmethod
    def trust(folder):
        """A block in which servers have certificates that this system trusts; gives their settings."""
        return trusted_authority(folder)

    @staticmethod
    def named(path):
        """How a Windows program names the file."""
        return path.as_posix()

    @staticmethod
    def command(program, *arguments):
        return [program, *arguments]

    @staticmethod
    def settings():
        """What a test's environment has here, and what it must not have: the zone is the system's."""
        return {"TZ": None}

    @staticmethod
    def end(process):
        """Ends the process and what it has started."""
        subprocess.run(["taskkill", "/F", "/T", "/PID", str(process.pid)], capture_output=True, check=False)


class Through:
    """Another system, on which `runner` runs Windows programs, as Wine does. The root of its files is drive Z:."""

    options = {"start_new_session": True}

    def __init__(self, runner):
        self._runner = os.path.abspath(runner)

    @staticmethod
    def trust(folder):
        """Here programs may add authorities by themselves."""
        del folder
        return contextlib.nullcontext({})

    @staticmethod
    def named(path):
        return f"Z:{path}"

    def command(self, program, *arguments):
        return [self._runner, program, *arguments]

    @staticmethod
    def settings():
        return {}

    @staticmethod
    def end(process):
        process.terminate()
        with contextlib.suppress(subprocess.TimeoutExpired):
            process.wait(_SECONDS_TO_END)
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)


_NLS = r"HKLM\SYSTEM\CurrentControlSet\Control\Nls\CodePage"
_VERSION = r"HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion"
_FACTS = {
    "Windows": ("cmd", "/c", "ver"),
    "product": ("reg", "query", _VERSION, "/v", "ProductName"),
    "build": ("reg", "query", _VERSION, "/v", "CurrentBuild"),
    "code page": ("reg", "query", _NLS, "/v", "ACP"),
    "code page of consoles": ("reg", "query", _NLS, "/v", "OEMCP"),
    "locale": ("reg", "query", r"HKCU\Control Panel\International", "/v", "LocaleName"),
    "time zone": ("reg", "query", r"HKLM\SYSTEM\CurrentControlSet\Control\TimeZoneInformation", "/v",
                  "TimeZoneKeyName"),
}


def facts(system):
    """(name, value) of what a reader of a report wants to know of the Windows that it comes from."""
    return [(name, _answer(system.command(*command))) for name, command in _FACTS.items()]


def _answer(command):
    done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, check=False, timeout=120)
    text = done.stdout.decode(errors="replace").strip()
    value = re.search(r"\sREG_\w+\s+(.*)", text)
    return (value[1] if value else text).strip() or "unknown"
