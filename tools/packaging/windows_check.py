# SPDX-License-Identifier: MIT
"""The check for a real Windows: the Windows test programs with all that they need beside Python, in one zip.

What is run is ctest's own list of the windows preset. What of it needs tools of Linux is left out, by name.
"""

import json
import re
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from .archives import write_zip
from .releases import NAME, ROOT, version_of

PRESET = "windows"
FIXTURE = ROOT / "tests/fixture"
HERE = "{root}"

# Beside what the tests name themselves; the example hosts are for the steps of docs/windows-check.md.
ALWAYS = {
    **{name: ROOT / "tests/windows_check" / name for name in ("check.cmd", "check.py", "serve.py", "windows.py")},
    "counting.py": ROOT / "tests/counting.py",
    "windows-check.md": ROOT / "docs/windows-check.md",
    "LICENSE": ROOT / "LICENSE",
}
BUILT = ("bin/ZRM_QXKT32x64.dll", "bin/qxftp.exe", "bin/qxdialogs.exe")
# The fixture without its own tests and without what needs more than Python.
NOT_ONLY_PYTHON = ("real_servers", "inetd_servers", "proxy_programs", "pyftpdlib_program", "pyftpdlib_server",
                   "disk_tree", "tls_renegotiation")
NOT_SHIPPED = ("test_*.py", "testcase.py", "selftest.py", "README.md", "run-with-fixture",
               *(f"{name}.py" for name in NOT_ONLY_PYTHON))
# Runs the rest of a command under Linux.
RUNNERS = ("run-with-fixture", "wine-runner")
LINUX_SETTINGS = ("LOCPATH", "ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS")
# What a Windows calls the code pages that tests ask for.
LOCALES = {"932": "ja-JP", "1252": "en-US", "65001": "UTF-8"}
MANIFEST = """\
<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly manifestVersion="1.0" xmlns="urn:schemas-microsoft-com:asm.v1">
  <application><windowsSettings>
    <activeCodePage xmlns="http://schemas.microsoft.com/SMI/2019/WindowsSettings">{}</activeCodePage>
  </windowsSettings></application>
</assembly>
"""


class LeftOut(Exception):
    """A test that cannot leave this machine; the text says why."""


class Packer:
    """Collects the files of the zip while it turns ctest's entries into those of the zip's own list."""

    def __init__(self, build):
        self.build = Path(build).resolve()
        self.files = {}
        self.texts = {}
        for name, path in ALWAYS.items():
            self.files[name] = path
        for name in BUILT:
            self._add(self.build / name)
        for path in FIXTURE.iterdir():
            if path.is_file() and not any(path.match(pattern) for pattern in NOT_SHIPPED):
                self._add(path)

    def _add(self, path):
        """Where the file or the folder is in the zip."""
        base = self.build if path.is_relative_to(self.build) else ROOT
        for one in sorted(path.rglob("*")) if path.is_dir() else [path]:
            if one.is_file():
                self.files[one.relative_to(base).as_posix()] = one
        return f"{HERE}/{path.relative_to(base).as_posix()}"

    def _local(self, text):
        """An argument or a setting as the zip has it, and with it the file that it names."""
        path = Path(text.removeprefix("Z:"))
        if not path.is_absolute():
            return text
        if path in (ROOT, self.build) or not path.is_relative_to(ROOT):
            raise LeftOut(f"needs {path.name}" if not path.is_relative_to(ROOT) else "needs the sources")
        return self._add(path)

    def entry(self, test):
        """Of the zip's list, from ctest's."""
        properties = {each["name"]: each["value"] for each in test["properties"]}
        words = [Path(word).name for word in test["command"]]
        command = [word for word, name in zip(test["command"], words) if name not in RUNNERS]
        python = Path(command[0]).name == "python3"
        labels = properties.get("LABELS", [])
        if "screen" in labels:
            raise LeftOut("needs a screen of Linux")
        settings = dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))
        entry = {
            "name": test["name"],
            "command": [self._local(word) for word in command[python:]],
            "python": python,
            "fixture": "run-with-fixture" in words,
            "timeout": properties.get("TIMEOUT", 600),
            "alone": properties.get("RUN_SERIAL", False),
            "labels": labels,
            "environment": {name: self._local(value) for name, value in settings.items() if name not in LINUX_SETTINGS},
            "skip_code": properties.get("SKIP_RETURN_CODE"),
            "expects": properties.get("PASS_REGULAR_EXPRESSION"),
        }
        self._beside(command[python], labels)
        return entry

    def _beside(self, program, labels):
        """What a program finds in its own folder: libraries, and the code page that it is to have."""
        for library in Path(program).parent.glob("*.dll"):
            self._add(library)
        for page in (label.removeprefix("code-page-") for label in labels if label.startswith("code-page-")):
            name = Path(program).relative_to(self.build).as_posix()
            self.texts[f"{name}.manifest"] = MANIFEST.format(LOCALES[page])

    def entries(self, tests):
        """(those of the zip, those that stay here with the reason)"""
        shipped, left_out = [], []
        for test in tests:
            try:
                shipped.append(self.entry(test))
            except LeftOut as reason:
                left_out.append({"name": test["name"], "why": str(reason)})
        return shipped, left_out


def listed_tests(build, chosen):
    """ctest's own list."""
    command = ["ctest", "--show-only=json-v1", "-R", chosen]
    found = json.loads(subprocess.run(command, cwd=build, capture_output=True, text=True, check=True).stdout)["tests"]
    if not found:
        raise SystemExit(f"package: {build} has no test like {chosen!r}")
    return found


def kinds_left_out():
    """Servers of the fixture that the zip lacks."""
    text = (FIXTURE / "kinds.py").read_text()
    return [kind for kind, module in re.findall(r'^    "(\S+)": \("(\w+)", "\w+"\),$', text, re.M)
            if module in NOT_ONLY_PYTHON]


def put(source, target):
    """Copies a file; a program without what only a debugger reads, which is most of it. GNU's strip would put the time
    into it."""
    if source.suffix in (".exe", ".dll"):
        subprocess.run(["llvm-strip-14", "-o", str(target), str(source)], check=True)
    else:
        shutil.copyfile(source, target)


def stage(build, folder, chosen="."):
    """The tree of the zip, in a new folder below `folder`: the tests whose names are like `chosen`."""
    version = version_of(build)
    tree = Path(folder) / f"{NAME}-{version}-windows-check"
    shutil.rmtree(tree, ignore_errors=True)
    packer = Packer(build)
    shipped, left_out = packer.entries(listed_tests(build, chosen))
    told = {"version": version, "tests": shipped, "left_out": left_out, "servers_left_out": kinds_left_out()}
    packer.texts["tests.json"] = json.dumps(told, indent=1)
    for parent in {(tree / name).parent for name in (*packer.files, *packer.texts)}:
        parent.mkdir(parents=True, exist_ok=True)
    with ThreadPoolExecutor() as pool:
        list(pool.map(put, packer.files.values(), (tree / name for name in packer.files)))
    for name, text in packer.texts.items():
        (tree / name).write_text(text, encoding="utf-8")
    return tree


def package(folder, moment):
    """Builds the programs; the zip of them all, in `folder`."""
    for command in (["cmake", "--preset", PRESET, "--log-level=WARNING"], ["cmake", "--build", "--preset", PRESET]):
        subprocess.run(command, cwd=ROOT, check=True, stdin=subprocess.DEVNULL)
    tree = stage(ROOT / "build" / PRESET, folder / "stage")
    archive = folder / f"{tree.name}.zip"
    write_zip(tree, archive, moment)
    return archive
