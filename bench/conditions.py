# SPDX-License-Identifier: MIT
"""What a reader needs to judge the figures."""

import datetime
import os
import pathlib
import platform
import shlex
import subprocess
import sys

from servers import ROOT

_PEERS = ["curl", "wget", "lftp", "ncftp"]


def _first_line(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()[0]
    except (OSError, subprocess.CalledProcessError):
        return "not found"


def _processor():
    lines = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    return next((line.partition(":")[2].strip() for line in lines if line.startswith("model name")), "unknown")


def conditions(arguments, scratch, line):
    """`line` is how round trips are measured."""
    peers = [_first_line("dpkg-query", "-W", "-f", "${Package} ${Version}", name) for name in _PEERS]
    return {
        "date": datetime.date.today().isoformat(),
        "command": shlex.join(["tools/bench", *sys.argv[1:]]),
        "source": _first_line("git", "-C", str(ROOT), "describe", "--always", "--dirty"),
        "machine": f"{_processor()}, {os.cpu_count()} processors, {platform.platform()}",
        "load before": f"{os.getloadavg()[0]:.2f}",
        "builds": f"{', '.join(arguments.build)} (RelWithDebInfo, -O2); {_first_line('g++', '--version')}",
        "peers": "; ".join(peers),
        "Wine": _first_line("/usr/lib/wine/wine64", "--version"),
        "servers": f"{', '.join(arguments.server)}, native, on loopback, passive mode",
        "files": f"{arguments.size} bytes; listing: {arguments.entries} entries; small files: {arguments.count}; "
                 f"all below {scratch.relative_to(ROOT) if scratch.is_relative_to(ROOT) else scratch}",
        "runs": f"{arguments.runs} each after one to warm up, interleaved; at most 3 of what takes long",
        "round trips": line,
    }


def show(lines):
    for name, text in lines.items():
        print(f"{name}: {text}")
    print(
        "Wall is that of the whole process, the start of Wine's program included; \"one operation\" is timed by the\n"
        "host itself. curl's listing is raw text, not parsed; its query asks for size and time.\n",
        flush=True,
    )
