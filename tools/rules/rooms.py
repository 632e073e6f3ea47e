# SPDX-License-Identifier: MIT
"""Who may include whom, and where a platform may show."""

import re

from .sources import ROOT, all_files

# Each room and the rooms that it may include besides itself. Programs around the product may look anywhere, except
# examples/ and hosts/: a host has include/ alone.
ARROWS = {
    "include": set(),
    "framework": set(),
    "support": {"framework", "include"},
    "Src": {"support", "framework", "include"},
    "dialogs": {"support", "framework", "include"},
    "module": {"Src", "dialogs", "support", "framework", "include"},
    "examples": {"include"},
    "hosts": {"include"},
    "bench": {"examples", "module", "Src", "dialogs", "support", "framework", "include", "tests"},
    "tests": {"examples", "hosts", "module", "Src", "dialogs", "support", "framework", "include"},
}
PRODUCT = {"framework", "support", "Src", "dialogs", "module", "include"}

# The rooms of the internet layer, below the classes that the client sees, and the folders of framework/ that each may
# include besides itself.
INTERNET = "framework/internet"
INTERNET_ARROWS = {
    "net": {"framework/platform", "framework/text"},
    "listing": {"framework/text"},
    "tls": {"framework/platform", "framework/text", f"{INTERNET}/net"},
    "ftp": {"framework/platform", "framework/text", f"{INTERNET}/listing", f"{INTERNET}/net", f"{INTERNET}/tls"},
    "http": {"framework/platform", "framework/text", f"{INTERNET}/net", f"{INTERNET}/tls"},
}
# What the product may include of those rooms: the numbers that hosts know, and AfxParseURL.
INTERNET_OPEN = {f"{INTERNET}/net/FtpErrand.h", f"{INTERNET}/net/InternetErrors.h", f"{INTERNET}/http/HttpUrl.h"}

# The folders that only one platform builds. Their headers are for folders of the same platform: in the product for
# those of the same room, framework/ui/ for dialogs/, which is made of windows throughout, and dialogs/ for the exports.
# qxbrowse is a program of windows.
PLATFORM_FOLDERS = {"windows": "windows", "ui": "windows", "dialogs": "windows", "qxbrowse": "windows",
                    "posix": "posix"}
WINDOW_ROOM = "dialogs"
PLATFORM_TEST_ROOMS = {"framework", "include", "tests", "examples", "bench"}

WINDOWS_WRAPPER = "framework/windows/windows_api.h"
WRAPPED = re.compile(r"windows\.h|winsock2?\.h")

# The public headers that describe memory are C as well, and one is a host's way to load the library.
C_HEADERS = {"stddef.h", "stdint.h", "string.h"}
LOADER = "include/QXLibrary.h"

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
PLATFORM_IF = re.compile(
    r"^\s*#\s*(?:el)?if.*\b(_WIN32|_WIN64|__MINGW\w+|_MSC_VER|__linux__|__unix__|__APPLE__|__CYGWIN__)\b")


def platform_of(path):
    return next((PLATFORM_FOLDERS[part] for part in path.parts[:-1] if part in PLATFORM_FOLDERS), None)


def may_use(file, target):
    """Whether the file may include a header of a platform's folder."""
    if platform_of(file.path) != platform_of(target):
        return False
    return file.room not in PRODUCT or WINDOW_ROOM in (file.room, target.parts[0]) or file.room == target.parts[0]


def internet_room(path):
    """The room of the internet layer that the file is in, or None."""
    folder = path.parent
    return folder.name if str(folder.parent) == INTERNET and folder.name in INTERNET_ARROWS else None


def may_look_into_internet(file, target):
    """Whether the arrow is one that the internet layer's rooms allow."""
    own = internet_room(file.path)
    if own:
        return target.parent == file.path.parent or str(target.parent) in INTERNET_ARROWS[own]
    inside = str(file.path.parent) == INTERNET or file.room not in PRODUCT
    return inside or not internet_room(target) or str(target) in INTERNET_OPEN


def resolve(file, name):
    """The included file below the root, or None."""
    for folder in (file.path.parent, ".", "include"):
        candidate = (ROOT / folder / name).resolve()
        if candidate.is_file():
            return candidate.relative_to(ROOT)
    return None


def check_own_header(file, name):
    target = resolve(file, name)
    if target is None:
        return f'"{name}" is not found from here, from the root or in include/'
    room = target.parts[0]
    if room != file.room and room not in ARROWS[file.room]:
        return f"{file.room}/ must not know {room}/ (\"{name}\")"
    if not may_look_into_internet(file, target):
        return f"{file.path.parent}/ must not know {target.parent}/ (\"{name}\")"
    if platform_of(target) and not may_use(file, target):
        return f'"{name}" belongs to {target.parent}/ alone'
    return None


def check_system_header(file, name):
    """The C++ standard library's headers have no suffix; all others are a platform's."""
    if file.room not in PRODUCT or not name.endswith(".h") or str(file.path) == WINDOWS_WRAPPER:
        return None
    if file.room == "include" and (name in C_HEADERS or str(file.path) == LOADER):
        return None
    if file.room not in ("framework", WINDOW_ROOM) or not platform_of(file.path):
        return f"<{name}> belongs into a platform's folder of framework/"
    return f"<{name}> comes through {WINDOWS_WRAPPER}" if WRAPPED.fullmatch(name) else None


def check_line(file, line):
    include = INCLUDE.match(line)
    if include:
        kind, name = include.groups()
        return check_own_header(file, name) if kind == '"' else check_system_header(file, name)
    if file.room not in PLATFORM_TEST_ROOMS:
        test = PLATFORM_IF.match(line)
        if test:
            return f"{test.group(1)} outside framework/: choose a file by CMake instead"
    return None


def check(files=None):
    findings = []
    for file in files or all_files():
        if not file.is_cpp or file.room not in ARROWS:
            continue
        for number, line in enumerate(file.lines, 1):
            text = check_line(file, line)
            if text:
                findings.append(file.finding(number, text))
    return findings
