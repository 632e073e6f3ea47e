# SPDX-License-Identifier: MIT
"""Draws what bench.py has measured, and fills docs/performance.md with it."""

import itertools
import json
import pathlib
import sys
from xml.sax.saxutils import escape

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools/documents"))

import blocks  # noqa: E402  (found through the path above)
from measure import Row  # noqa: E402  (beside this file)

TOOL = "tools/bench"
DOCUMENT = ROOT / "docs/performance.md"
PICTURES = "pictures/performance-{}.svg"  # below docs/
QUERIES = ("exists", "size")
NAMES = {"linux": "this library, Linux", "windows": "this library, Wine"}

# Pixels, and the share of the widest bar that is left for its figure.
WIDTH, NAMES_WIDTH, BARS_WIDTH, ROW, BAR, TITLE = 720, 200, 400, 26, 16, 34
STYLE = """
text { font: 13px system-ui, "Segoe UI", "DejaVu Sans", sans-serif; fill: #1f2328; }
.title { font-weight: 600; }
.theirs { fill: #b5bec9; }
.ours { fill: #2f7fd1; }
.range { stroke: #59636e; stroke-width: 1.5; }
@media (prefers-color-scheme: dark) {
  text { fill: #dfe5ec; }
  .theirs { fill: #566270; }
  .range { stroke: #c3ccd6; }
}
"""


def name(row):
    by, comma, rest = row.by.partition(", ")
    return NAMES.get(by, by) + comma + rest


def seconds(value):
    return f"{value:.2f} s" if value >= 1 else f"{value * 1000:.0f} ms"


def _bar(row, top, scale):
    middle, width = top + BAR / 2, row.wall * scale
    whose = "ours" if row.by.partition(", ")[0] in NAMES else "theirs"
    end = NAMES_WIDTH + max(width, row.most * scale) + 8
    yield f'<text x="{NAMES_WIDTH - 10}" y="{middle + 4.5:.1f}" text-anchor="end">{escape(name(row))}</text>'
    yield f'<rect class="{whose}" x="{NAMES_WIDTH}" y="{top}" width="{width:.1f}" height="{BAR}" rx="2"/>'
    yield (f'<path class="range" d="M{NAMES_WIDTH + row.least * scale:.1f} {middle}'
           f'H{NAMES_WIDTH + row.most * scale:.1f}"/>')
    yield f'<text x="{end:.1f}" y="{middle + 4.5:.1f}">{seconds(row.wall)}</text>'


def svg(panels):
    """A picture of bars below each other; `panels` are (title, rows)."""
    scale = BARS_WIDTH / max(row.most for _, rows in panels for row in rows)
    parts, top = [], 0
    for title, rows in panels:
        parts.append(f'<text class="title" x="{NAMES_WIDTH}" y="{top + 20}">{escape(title)}</text>')
        top += TITLE
        for row in rows:
            parts += _bar(row, top, scale)
            top += ROW
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {top}" width="{WIDTH}" height="{top}">\n'
            f"<style>{STYLE}</style>\n" + "\n".join(parts) + "\n</svg>\n")


def by_work(rows):
    """The rows of each work in panels: for each server one."""
    works = {}
    for row in rows:
        work, _, server = row.work.partition(", ")
        works.setdefault(work, {}).setdefault(f"{work}, {server}", []).append(row)
    return {work: list(panels.items()) for work, panels in works.items()}


def is_drawn(work):
    """What one process does many times is a matter of tables."""
    return " x " not in work


def picture_of(work):
    return PICTURES.format(work.replace(" ", "-"))


def block_of(work):
    """The part of the document that a work belongs to."""
    kind = work.split()[0]
    return "queries" if kind in QUERIES else kind


def table(panels):
    """All in milliseconds."""
    lines = ["| | by | median | least - most | processor | one operation | x curl |", "|---|---|--:|--:|--:|--:|---|"]
    for title, rows in panels:
        for row in rows:
            ratio = f"{row.ratio:.2f}{f' of {row.beside}' if row.beside else ''}" if row.ratio else ""
            one = f"{row.one * 1000:.1f}" if row.one else ""
            times = f"{_ms(row.wall)} | {_ms(row.least)} - {_ms(row.most)} | {_ms(row.processor)}"
            lines.append(f"| {title} | {name(row)} | {times} | {one} | {ratio} |")
            title = ""
    return "\n".join(lines)


def _ms(value):
    return f"{value * 1000:.0f}"


def _quoted(text):
    """A command is code."""
    return f"`{text}`" if text.startswith("tools/") else text


def parts(figures, works):
    """The document's parts by their names."""
    made = {"conditions": "\n".join(f"- {key}: {_quoted(text)}" for key, text in figures["conditions"].items())}
    for block, names in itertools.groupby(works, key=block_of):
        names = list(names)
        pictures = [f"![{work}: seconds]({picture_of(work)})" for work in names if is_drawn(work)]
        made[block] = "\n\n".join([*pictures, table(panel for work in names for panel in works[work])])
    return made


def write_pictures(works, only_check):
    """True: nothing differs."""
    same = True
    for work in filter(is_drawn, works):
        path, text = DOCUMENT.parent / picture_of(work), svg(works[work])
        if path.exists() and path.read_text() == text:
            continue
        same = False
        if only_check:
            print(f"{path.relative_to(ROOT)} is not what was measured")
        else:
            path.write_text(text)
    return same


def main(file, only_check):
    figures = json.loads(file.read_text())
    works = by_work(Row(**row) for row in figures["rows"])
    same = write_pictures(works, only_check)
    same = blocks.update(DOCUMENT, TOOL, parts(figures, works), only_check) and same
    return 1 if only_check and not same else 0
