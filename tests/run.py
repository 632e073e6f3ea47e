#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""run.py [PRESET...] [-- CTEST ARGUMENT...]: builds the presets (default: all) and runs their tests.

Root can name "user", too: the linux preset as an ordinary user, on a checkout of what is committed. In CI (CI=true) it
belongs to all.

Ends with one line "N passed, N failed" over all of them, with ", N skipped" where tests were. A GoogleTest program
counts with each of its cases, any other test as one. A preset that does not build, a program that dies, and a run of no
test at all are failures.
"""

import collections
import fcntl
import os
import shlex
import subprocess
import sys
import time
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from counting import SKIP_REASON, TOTAL, Count, count_output
from ordinary_user import run_as_ordinary_user

ROOT = Path(__file__).resolve().parent.parent
PRESETS = ["linux", "windows", "linux-asan", "linux-tsan", "package"]
WINE_PRESETS = {"windows", "package"}
USER = "user"


def run(*command, quiet=False):
    """True if the command succeeds. A quiet one shows its output only if it does not."""
    print("+", shlex.join(map(str, command)), flush=True)
    result = subprocess.run(command, cwd=ROOT, stdin=subprocess.DEVNULL, check=False,
                            stdout=subprocess.PIPE if quiet else None)
    if quiet and result.returncode:
        sys.stdout.buffer.write(result.stdout)
    return result.returncode == 0


def build(preset):
    return (run("cmake", "--preset", preset, "--log-level=WARNING", quiet=True)
            and run("cmake", "--build", "--preset", preset))


def count_entry(entry):
    """Counts one ctest entry from its element in the JUnit file."""
    skip = entry.find("skipped")
    skips = skip is not None and skip.get("message", "").startswith("SKIP_RETURN_CODE")
    if entry.get("status") in ("disabled", "notrun") and not skips:
        return Count(failed=1)
    return count_output(entry.findtext("system-out") or "", entry.get("status") == "run" or skips, skips)


def test(preset, arguments):
    """Runs ctest and counts; the whole output of each program goes to the file that is counted from."""
    report = ROOT / "build" / preset / "ctest.xml"
    report.unlink(missing_ok=True)
    good = run("ctest", "--preset", preset, "--output-on-failure", "--output-junit", report,
               "--test-output-size-passed", "10000000", "--test-output-size-failed", "10000000", *arguments)
    count = Count()
    reasons = collections.Counter()
    if report.exists():
        for entry in ElementTree.parse(report).getroot().iter("testcase"):
            count += count_entry(entry)
            reasons.update(SKIP_REASON.findall(entry.findtext("system-out") or ""))
    for reason, times in reasons.items():
        print(f"test: {preset} skipped {times}: {reason}", flush=True)
    if count.passed + count.failed == 0:
        print(f"test: {preset} ran no test", flush=True)
        count.failed += 1
    elif not good and count.failed == 0:
        print(f"test: ctest of {preset} failed as a whole", flush=True)
        count.failed += 1
    return count


def start_wine_server():
    """Lets Wine's services come up before the tests ask for them all at once."""
    run("tools/wine-runner", "cmd", "/c", "exit", quiet=True)


def end_wine_server():
    """Ends the Wine server that the tests started, unless somebody else's program still uses it."""
    subprocess.run(["bash", "-c", '. tools/wine-env && flock -n "$WINEPREFIX.lock" "$WINESERVER" -k'],
                   cwd=ROOT, env={"root": str(ROOT), "PATH": "/usr/bin:/bin"}, check=False)


def seconds(since):
    return f"{time.monotonic() - since:.1f} s"


def build_and_test(preset, arguments):
    """(count, line for the table)"""
    began = time.monotonic()
    built = build(preset)
    build_time, began = seconds(began), time.monotonic()
    if preset in WINE_PRESETS:
        start_wine_server()
    count = test(preset, arguments) if built else Count(failed=1)
    note = "" if built else "  (does not build)"
    return count, f"{preset:<12} build {build_time:>8}  tests {seconds(began):>8}  {count}{note}"


def test_as_user(arguments):
    """(count, line for the table) from the last line of a run of this program's, made by an ordinary user."""
    began = time.monotonic()
    try:
        count = count_total(*run_as_ordinary_user(ROOT, ["tools/test", "linux", "--", *arguments]))
    except (OSError, subprocess.CalledProcessError) as error:
        print(f"test: {error}", flush=True)
        count = Count(failed=1)
    return count, f"{USER:<12} linux, as an ordinary user {seconds(began):>8}  {count}"


def count_total(code, line):
    """Counts a run of this program from its exit code and its last line."""
    total = TOTAL.match(line)
    count = Count(*(int(number or 0) for number in total.groups())) if total else Count(failed=1)
    if code and not count.failed:
        count.failed += 1
    return count


def default_runs(is_root, in_ci):
    return [PRESETS[0], USER, *PRESETS[1:]] if is_root and in_ci else PRESETS


def parse(arguments):
    split = arguments.index("--") if "--" in arguments else len(arguments)
    presets = arguments[:split] or default_runs(os.geteuid() == 0, os.environ.get("CI") == "true")
    unknown = [name for name in presets if name not in [*PRESETS, USER]]
    if unknown:
        sys.exit(f"{__doc__}\nunknown preset: {' '.join(unknown)} (known: {' '.join(PRESETS)})")
    return presets, arguments[split + 1:]


def main():
    presets, ctest_arguments = parse(sys.argv[1:])
    start = time.monotonic()
    lock = open(ROOT / "build" / "test.lock", "w")
    fcntl.flock(lock, fcntl.LOCK_EX)

    lines, total = [], Count()
    for preset in presets:
        count, line = test_as_user(ctest_arguments) if preset == USER else build_and_test(preset, ctest_arguments)
        lines.append(line)
        print(line, flush=True)
        total += count
    if WINE_PRESETS & set(presets):
        end_wine_server()

    print("\n" + "\n".join(lines) + f"\ntotal {seconds(start)}\n\n{total}")
    sys.exit(1 if total.failed else 0)


if __name__ == "__main__":
    main()
