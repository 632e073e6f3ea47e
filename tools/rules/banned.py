# SPDX-License-Identifier: MIT
"""Functions that the tree does without, each with its reason.

A use that must stay says so in its line or the line above: `// allowed: NAME: why`. One without a reason, or without
such a use, is a finding of its own.
"""

import re

from .sources import all_files

NO_BOUND = "knows no bound of its target"
NO_ERROR = "cannot tell an error from a number: use std::from_chars"
STATIC_RESULT = "gives every thread the same static result"
UNREPEATABLE = "hides its state and its quality: use <random>"
SLEEP = "is no synchronisation: wait for what is to happen"

BANNED = {
    "strcpy": NO_BOUND,
    "strcat": NO_BOUND,
    "stpcpy": NO_BOUND,
    "sprintf": NO_BOUND,
    "vsprintf": NO_BOUND,
    "gets": NO_BOUND,
    "scanf": NO_BOUND,
    "sscanf": NO_BOUND,
    "fscanf": NO_BOUND,
    "lstrcpyA": NO_BOUND,
    "lstrcatA": NO_BOUND,
    "wsprintfA": NO_BOUND,
    "strncpy": "leaves a full target without its NUL",
    "strncat": "takes the room that is left, not the target's size",
    "strtok": STATIC_RESULT,
    "strerror": STATIC_RESULT,
    "gmtime": STATIC_RESULT,
    "localtime": STATIC_RESULT,
    "asctime": STATIC_RESULT,
    "ctime": STATIC_RESULT,
    "inet_ntoa": STATIC_RESULT,
    "gethostbyname": STATIC_RESULT,
    "atoi": NO_ERROR,
    "atol": NO_ERROR,
    "atoll": NO_ERROR,
    "atof": NO_ERROR,
    "rand": UNREPEATABLE,
    "srand": UNREPEATABLE,
    "tmpnam": "names a file that another can make first",
    "mktemp": "names a file that another can make first",
    "alloca": "grows the stack without a check",
    "setjmp": "jumps over destructors",
    "longjmp": "jumps over destructors",
    "usleep": SLEEP,
    "nanosleep": SLEEP,
    "sleep_for": SLEEP,
    "Sleep": SLEEP,
    "TerminateThread": "leaves the thread's locks held",
}

# A test has one thread where it names an error.
PRODUCT_ALONE = {"strerror"}
PRODUCT = {"framework", "support", "Src", "dialogs", "module"}

CALL = re.compile(r"\b(" + "|".join(BANNED) + r")\s*\(")
ALLOWED = re.compile(r"//\s*allowed:\s*(\w+)\s*:?\s*(.*)")


def calls_in(line):
    """Banned names that are called as functions, not as members of an object."""
    return [match.group(1) for match in CALL.finditer(line) if not line[: match.start(1)].endswith(("->", "."))]


def check_file(file):
    permits = {}
    findings = []
    for number, line in enumerate(file.lines, 1):
        permit = ALLOWED.search(line)
        if permit:
            permits[number] = permit.group(1)
            if not permit.group(2).strip():
                findings.append(file.finding(number, f"{permit.group(1)} is allowed without a reason"))
    used = set()
    spared = set() if file.room in PRODUCT else PRODUCT_ALONE
    for number, line in enumerate(file.code, 1):
        for name in calls_in(line):
            if name in spared:
                continue
            place = next((at for at in (number, number - 1) if permits.get(at) == name), None)
            if place:
                used.add(place)
            else:
                advice = f"(if it must stay: // allowed: {name}: why)"
                findings.append(file.finding(number, f"{name}() {BANNED[name]} {advice}"))
    findings += [file.finding(at, f"allows {permits[at]}, which is not called here") for at in permits.keys() - used]
    return findings


def check(files=None):
    return [finding for file in files or all_files() if file.is_cpp for finding in check_file(file)]
