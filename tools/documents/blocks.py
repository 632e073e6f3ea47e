# SPDX-License-Identifier: MIT
"""Parts of a document that a tool writes; the text around them is a person's.

    <!-- by tools/wire: turns -->
    ...
    <!-- end -->
"""

import difflib
import re

_BLOCK = re.compile(r"(?P<begin>^<!-- by (?P<tool>\S+): (?P<name>\S+) -->\n).*?(?P<end>^<!-- end -->$)", re.M | re.S)


def filled(text, tool, parts):
    """The document with all parts of the tool filled in. Each part has one place in it."""
    places = [match["name"] for match in _BLOCK.finditer(text) if match["tool"] == tool]
    if sorted(places) != sorted(parts):
        raise ValueError(f"the document has places for {places}, {tool} makes {sorted(parts)}")

    def fill(match):
        if match["tool"] != tool:
            return match[0]
        return f"{match['begin']}\n{parts[match['name']].strip()}\n\n{match['end']}"

    return _BLOCK.sub(fill, text)


def update(path, tool, parts, only_check):
    """Writes the parts into the document, or prints how they differ from what stands there. True: nothing differs."""
    before = path.read_text()
    after = filled(before, tool, parts)
    if only_check:
        for line in difflib.unified_diff(before.splitlines(), after.splitlines(), str(path.name), tool, lineterm=""):
            print(line)
    else:
        path.write_text(after)
    return before == after
