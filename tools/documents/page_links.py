# SPDX-License-Identifier: MIT
"""Whether made pages lead anywhere: every link and every anchor, and nothing that a page needs is elsewhere."""

import html.parser
import pathlib
import urllib.parse

_ELSEWHERE = ("http:", "https:", "mailto:")


class _Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.anchors, self.links, self.parts = [], [], []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if "id" in values:
            self.anchors.append(values["id"])
        if tag == "a" and "href" in values:
            self.links.append(values["href"])
        elif tag != "a":
            self.parts += [values[name] for name in ("href", "src") if name in values]


def faults(folder):
    pages = {path: _Page(path.read_text()) for path in sorted(pathlib.Path(folder).rglob("*.html"))}
    for path, page in pages.items():
        name = path.relative_to(folder)
        yield from (f"{name}: {fault}" for fault in _faults(path, pages))


def _faults(path, pages):
    page = pages[path]
    yield from (f"the anchor {one} is there twice" for one in set(page.anchors) if page.anchors.count(one) > 1)
    yield from (f"{part} is elsewhere" for part in page.parts if part.startswith((*_ELSEWHERE, "//")))
    yield from (f"{link} leads nowhere" for link in page.links + page.parts if not _leads(link, path, pages))


def _leads(link, path, pages):
    if link.startswith((*_ELSEWHERE, "data:")):
        return True
    where, _, anchor = urllib.parse.unquote(link).partition("#")
    there = (path.parent / where).resolve() if where else path
    if not there.is_file():
        return False
    return not anchor or anchor in pages[there].anchors
