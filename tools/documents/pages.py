#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""pages.py [FOLDER]: makes web pages of README.md, the other documents and the sources that they link, by MkDocs.
They need neither a server nor the Internet, and the same tree makes the same bytes."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

import page_links  # noqa: E402  (beside this file)
from page_sources import HEADERS, ROOT, Pages, clear, page_of  # noqa: E402

HERE = pathlib.Path(__file__).resolve().parent
# These come first, in this order; the other documents follow by their names.
START = pathlib.Path("README.md")
FIRST = [str(START), *(f"docs/{name}.md" for name in (
    "tutorial", "guide", "qxftp", "bindings", "security", "proxies", "dialogs", "binary-interface", "wire",
    "performance"))]
LAST = ["CHANGELOG.md", "CONTRIBUTING.md", "LICENSE"]


def documents():
    docs = sorted(path.relative_to(ROOT).as_posix() for path in (ROOT / "docs").glob("*.md"))
    middle = [path for path in docs if path not in FIRST]
    return [pathlib.Path(path) for path in [*FIRST, *middle, *LAST] if (ROOT / path).exists()]


def navigation(pages):
    """The documents, the public headers, and the folders that documents link. Other pages are found through these."""
    folders = sorted(page for page in pages.titles if page.name == "index.md")
    more = {"Headers": [page_of(path) for path in HEADERS], "Sources": folders}
    return [_entry(pages, path) for path in documents()] + [
        {title: [_entry(pages, page) for page in group]} for title, group in more.items() if group]


def _entry(pages, document):
    page = page_of(document)
    return {"Overview" if page == START else pages.titles[page]: str(page)}


def configuration(pages, source, target):
    return {
        "site_name": "ZRM_QXKT32x64",
        "docs_dir": str(source),
        "site_dir": str(target),
        "use_directory_urls": False,
        "nav": navigation(pages),
        "theme": {"name": None, "custom_dir": str(HERE / "theme")},
        "plugins": ["search"],
        "hooks": [str(HERE / "page_hooks.py")],
        "markdown_extensions": ["tables", "fenced_code", "sane_lists", {"toc": {"permalink": "#"}},
                                {"codehilite": {"guess_lang": False}}],
    }


def build(scratch, target):
    pages = Pages(scratch / "documents")
    for path in [*documents(), *HEADERS]:
        pages.add(path)
    settings = scratch / "mkdocs.yml"
    settings.write_text(json.dumps(configuration(pages, scratch / "documents", target)))
    subprocess.run(["mkdocs", "build", "--strict", "--quiet", "--config-file", settings], check=True,
                   env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"})


def main():
    target = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/pages").resolve()
    clear(target)
    with tempfile.TemporaryDirectory() as scratch:
        build(pathlib.Path(scratch), target)
    faults = list(page_links.faults(target))
    print("\n".join(faults) or f"pages: {len(list(target.rglob('*.html')))} below {target}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
