# SPDX-License-Identifier: MIT
"""What the generator of the pages does otherwise for them: anchors as GitHub makes them of the same documents, and a
search that works without a server."""

import json
import pathlib
import re
import shutil


def anchor(heading, separator="-"):
    """The name that GitHub gives a heading."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", separator)


def on_config(config):
    config["mdx_configs"].setdefault("toc", {})["slugify"] = anchor
    return config


def on_post_build(config):
    site = pathlib.Path(config["site_dir"])
    entries = json.loads((site / "search/search_index.json").read_text())["docs"]
    (site / "sections.js").write_text(f"window.sections = {json.dumps(_with_pages(entries), indent=0)};\n")
    shutil.rmtree(site / "search")
    for name in ("sitemap.xml", "sitemap.xml.gz"):  # which would want to know a server
        (site / name).unlink(missing_ok=True)


def _with_pages(entries):
    """Each section with the title of its page. Of a page itself its text up to the first heading is kept."""
    titles = {entry["location"]: entry["title"] for entry in entries if "#" not in entry["location"]}
    parts = {entry["location"].partition("#")[0] for entry in entries if "#" in entry["location"]}
    return [{**entry, "page": titles[entry["location"].partition("#")[0]]} for entry in entries
            if entry["location"] not in parts]
