# SPDX-License-Identifier: MIT
"""Draws what bench.py has measured, and fills docs/performance.md with it."""

import dataclasses
import json
import pathlib
import sys
from xml.sax.saxutils import escape

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools/documents"))

import blocks  # noqa: E402  (found through the path above)
import tables  # noqa: E402  (beside this file)
from measure import Row  # noqa: E402

TOOL = "tools/bench"
DOCUMENT = ROOT / "docs/performance.md"
PICTURES = "pictures/performance-{}.svg"  # below docs/
# Works that share a part of the document and a table, by how their names begin.
SHARED = {"exists": "queries", "size": "queries", "encrypted": "encrypted", "small files": "small-files",
          "round trips": "round-trips", "cancel": "cancels", "memory": "memory"}
# What is drawn of those that have more than a picture can show, and those that are a matter of tables.
DRAWN_TRIPS = ("download", "upload", "exists", "list")
NOT_DRAWN = ("cancel", "memory")

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


def seconds(value):
    return f"{value:.2f} s" if value >= 1 else f"{value * 1000:.0f} ms"


@dataclasses.dataclass
class Bar:
    """`least` and `most` are the ends of its line."""

    name: str
    is_ours: bool
    value: float
    least: float
    most: float
    text: str


def bar(row):
    if row.trips is None:
        value, least, most, text = row.wall, row.least, row.most, seconds(row.wall)
    else:
        one = row.wall / row.trips if row.wall else 1
        value, least, most, text = row.trips, row.least / one, row.most / one, f"{row.trips:.1f}"
    return Bar(tables.name(row), tables.is_ours(row), value, least, max(value, most), text)


def _drawn(one, top, scale):
    middle, width = top + BAR / 2, one.value * scale
    whose = "ours" if one.is_ours else "theirs"
    end = NAMES_WIDTH + one.most * scale + 8
    yield f'<text x="{NAMES_WIDTH - 10}" y="{middle + 4.5:.1f}" text-anchor="end">{escape(one.name)}</text>'
    yield f'<rect class="{whose}" x="{NAMES_WIDTH}" y="{top}" width="{width:.1f}" height="{BAR}" rx="2"/>'
    yield (f'<path class="range" d="M{NAMES_WIDTH + one.least * scale:.1f} {middle}'
           f'H{NAMES_WIDTH + one.most * scale:.1f}"/>')
    yield f'<text x="{end:.1f}" y="{middle + 4.5:.1f}">{one.text}</text>'


def svg(panels):
    """A picture of bars below each other; `panels` are (title, rows)."""
    panels = [(title, [bar(row) for row in rows]) for title, rows in panels]
    scale = BARS_WIDTH / max(one.most for _, bars in panels for one in bars)
    parts, top = [], 0
    for title, bars in panels:
        parts.append(f'<text class="title" x="{NAMES_WIDTH}" y="{top + 20}">{escape(title)}</text>')
        top += TITLE
        for one in bars:
            parts += _drawn(one, top, scale)
            top += ROW
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {top}" width="{WIDTH}" height="{top}">\n'
            f"<style>{STYLE}</style>\n" + "\n".join(parts) + "\n</svg>\n")


def by_work(rows):
    """The rows of each work in panels: for each server one."""
    works = {}
    for row in rows:
        works.setdefault(row.work.rpartition(", ")[0], {}).setdefault(row.work, []).append(row)
    return {work: list(panels.items()) for work, panels in works.items()}


def block_of(work):
    """The part of the document that a work belongs to."""
    return next((block for begin, block in SHARED.items() if work.startswith(begin)), work)


def pictures(works):
    """The panels of each picture by its name."""
    made = {}
    for work, panels in works.items():
        kind = work.rpartition(" ")[2]
        if work.startswith("round trips"):
            made.setdefault("round trips", []).extend(panels if kind in DRAWN_TRIPS else [])
        elif " in a row" not in work and not work.startswith(NOT_DRAWN):
            made[work] = panels
    return {picture: panels for picture, panels in made.items() if panels}


def _path(picture):
    return PICTURES.format(picture.replace(" ", "-"))


def _quoted(text):
    """A command is code."""
    return f"`{text}`" if text.startswith("tools/") else text


def _part(block, works, drawn):
    unit = "round trips" if block == "round-trips" else "seconds"
    shown = [f"![{picture}: {unit}]({_path(picture)})" for picture in drawn if block_of(picture) == block]
    panels = [panel for work, found in works.items() if block_of(work) == block for panel in found]
    return "\n\n".join([*shown, tables.KINDS.get(block, tables.times)(panels)])


def parts(figures, works):
    """The document's parts by their names."""
    drawn = pictures(works)
    made = {"conditions": "\n".join(f"- {key}: {_quoted(text)}" for key, text in figures["conditions"].items())}
    return made | {block: _part(block, works, drawn) for block in dict.fromkeys(map(block_of, works))}


def write_pictures(works, only_check):
    """True: nothing differs."""
    same = True
    for picture, panels in pictures(works).items():
        path, text = DOCUMENT.parent / _path(picture), svg(panels)
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
