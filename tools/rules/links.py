# SPDX-License-Identifier: MIT
"""What a document points to is there: linked files, their headings, and files of the tree that it names."""

import re

from . import documents, sources

# A package has the pages of docs/, and of what they may link these.
SHIPPED = ("docs", "include", "examples", "bindings")
SPAN = re.compile(r"`[^`]*`")
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]*)\)")
ELSEWHERE = re.compile(r"(https?|mailto):")
HEADING = re.compile(r"#+ +(.+?)\s*$")
SOURCE = re.compile(r"`((?:[\w.-]+/)+[\w.-]+\.(?:h|hpp|c|cpp|inc|py|cmake|md|pas|cs))`")


def anchors(file):
    """The names by which a document's headings can be linked, as GitHub makes them."""
    found = []
    for _, line in documents.prose_of(file):
        if heading := HEADING.match(line):
            name = re.sub(r"[^\w\- ]", "", LINK.sub("", heading[1]).lower()).replace(" ", "-")
            found.append(f"{name}-{found.count(name)}" if name in found else name)
    return found


def linked(file, path):
    """The file or folder that a document's link leads to, or None."""
    there = (sources.ROOT / file.path.parent / path).resolve()
    if not there.is_relative_to(sources.ROOT) or not there.exists():
        return None
    return sources.File(there.relative_to(sources.ROOT))


def trouble(file, target):
    path, _, anchor = target.partition("#")
    there = linked(file, path) if path else file
    if not there:
        return "is not there"
    if file.room == "docs" and there.room not in SHIPPED:
        return "is not where a package has the page"
    return "has no such heading" if anchor and anchor not in anchors(there) else None


def check_links(file):
    for number, line in documents.prose_of(file):
        for target in LINK.findall(SPAN.sub("``", line)):
            if not ELSEWHERE.match(target) and (what := trouble(file, target)):
                yield file.finding(number, f"{target} {what}")


def check_names(file, paths):
    """A source may be named from any of its folders on."""
    for number, line in documents.prose_of(file):
        for name in SOURCE.findall(line):
            if not any(f"/{path}".endswith(f"/{name}") for path in paths):
                yield file.finding(number, f"{name} is no file of the tree")


def check(files=None):
    paths = [file.path.as_posix() for file in sources.all_files()]
    found = []
    for file in files or documents.all_documents():
        found += check_links(file)
        found += check_names(file, paths)
    return found
