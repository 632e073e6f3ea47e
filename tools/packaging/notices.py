# SPDX-License-Identifier: MIT
"""Texts of licences, from what Debian installs beside the parts that they are about."""

import re
from pathlib import Path

DOCUMENTS = Path("/usr/share/doc")
LICENCES = Path("/usr/share/common-licenses")


class NoSuchText(Exception):
    pass


def copyright_of(package):
    return (DOCUMENTS / package / "copyright").read_text(encoding="utf-8")


def common_licence(name):
    return (LICENCES / name).read_text(encoding="utf-8").strip("\n")


def passage(package, first, last):
    """From the line that begins with `first` to the one that ends in `last`."""
    found = re.search(rf"^{re.escape(first)}.*?{re.escape(last)}$", copyright_of(package), re.M | re.S)
    if not found:
        raise NoSuchText(f"{package}: no passage from '{first}' to '{last}'")
    return found.group()


def _paragraphs(text):
    """The paragraphs of Debian's machine-readable form, as fields."""
    for paragraph in re.split(r"\n\s*\n", text):
        fields = re.findall(r"^([A-Z][\w-]*): *(.*(?:\n[ \t].*)*)", paragraph, re.M)
        yield dict(fields)


def _plain(body):
    """A field's further lines without their indent, and blank where they are a single dot."""
    lines = [re.sub(r"^\s\.?$|^ ", "", line) for line in body.split("\n")]
    return "\n".join("" if line == "." else line.rstrip() for line in lines)


def notices(package, prefix, leave_out=("/include/",)):
    """The copyrights and licences of the package as a whole and of the files below `prefix`, each text once."""
    paragraphs = list(_paragraphs(copyright_of(package)))
    texts = {}  # licences have them with the first file that they are for, or on their own
    for paragraph in paragraphs:
        name, _, text = paragraph.get("License", "").partition("\n")
        if text:
            texts.setdefault(name, _plain(text))
    holders = {}
    of_prefix = 0
    for paragraph in paragraphs:
        files = [file for file in paragraph.get("Files", "").split()
                 if prefix and file.startswith(prefix) and not any(part in file for part in leave_out)]
        of_prefix += len(files)
        if files or paragraph.get("Files") == "*":
            name = paragraph["License"].partition("\n")[0]
            holders.setdefault(name, []).append(_plain(paragraph["Copyright"]))
    if not holders or (prefix and not of_prefix):
        raise NoSuchText(f"{package}: nothing about {prefix}")
    named = {part for name in holders for part in name.split(" and ")}
    copyrights = [f"{name}: {'; '.join(' '.join(who.split()) for who in people)}" for name, people in holders.items()]
    return "\n".join(copyrights) + "".join(f"\n\n[{name}]\n{texts[name]}" for name in sorted(named))
