# SPDX-License-Identifier: MIT
"""The documents as the generator of the pages wants them: whatever one of them links has a page as well."""

import pathlib
import re
import shutil

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

_FENCE = re.compile(r"(^```.*?^```$)", re.M | re.S)
_LINK = re.compile(r"(?<!`)(\[(?:[^\]`]|`[^`]*`)*\]\()([^)\s#:]+)(#[^)\s]*)?\)")
# A public header that the text names is a link as well.
_NAMED = re.compile(r"(?<!\[)`(?:include/)?(QX\w+\.h)`(?!\])")
_PICTURES = {".png", ".svg"}
HEADERS = sorted(path.relative_to(ROOT) for path in (ROOT / "include").glob("*.h"))
_LANGUAGES = {".h": "cpp", ".cpp": "cpp", ".c": "c", ".py": "python", ".cs": "csharp", ".pas": "pascal",
              ".txt": "cmake", ".cmake": "cmake", ".rc": "c"}


class Pages:
    """`titles` has the title of each page by its path, in the order of their finding."""

    def __init__(self, folder):
        self._folder = folder
        self.titles = {}

    def add(self, path):
        """Makes the page of a document, a source or a folder (below ROOT), and those of all that it links."""
        page = page_of(path)
        if page in self.titles:
            return
        linked, text = [], _text_of(path)
        self.titles[page] = _title(text)
        parts = [part if _FENCE.match(part) else self._relinked(path, part, linked) for part in _FENCE.split(text)]
        self._write(page, "".join(parts))
        for other in linked:
            if other.suffix in _PICTURES:
                self._write(other, (ROOT / other).read_bytes())
            else:
                self.add(other)

    def _relinked(self, path, text, linked):
        """With links to the pages of what is linked, which come into `linked`."""
        folder = path if (ROOT / path).is_dir() else path.parent

        def relink(match):
            target = (ROOT / folder / match[2]).resolve().relative_to(ROOT)
            if not (ROOT / target).exists():
                raise FileNotFoundError(f"{path}: {match[2]}")
            linked.append(target)
            page = target if target.suffix in _PICTURES else page_of(target)
            return f"{match[1]}{_relative(page, page_of(path).parent)}{match[3] or ''})"

        return _LINK.sub(relink, _NAMED.sub(lambda match: self._with_link(match, folder), text))

    @staticmethod
    def _with_link(match, folder):
        header = pathlib.Path("include", match[1])
        return f"[{match[0]}]({_relative(header, folder)})" if header in HEADERS else match[0]

    def _write(self, path, content):
        there = self._folder / path
        there.parent.mkdir(parents=True, exist_ok=True)
        there.write_bytes(content.encode() if isinstance(content, str) else content)


def _relative(path, folder):
    common = 0
    while path.parts[:common + 1] == folder.parts[:common + 1] and common < len(folder.parts):
        common += 1
    return "/".join([".."] * (len(folder.parts) - common) + list(path.parts[common:]))


def page_of(path):
    if (ROOT / path).is_dir():
        return path / ("README.md" if (ROOT / path / "README.md").exists() else "index.md")
    return path if path.suffix == ".md" else path.with_name(path.name + ".md")


def _text_of(path):
    there = ROOT / path
    if there.is_dir():
        return _listing(path) if not (there / "README.md").exists() else _text_of(path / "README.md")
    text = there.read_text()
    if path.suffix == ".md":
        return text
    fence = "```" if "```" not in text else "~~~~"
    return f"# {path}\n\n{fence}{_LANGUAGES.get(path.suffix, 'text')}\n{text.rstrip()}\n{fence}\n"


def _listing(path):
    files = sorted(file.relative_to(ROOT / path) for file in (ROOT / path).rglob("*")
                   if file.is_file() and "__pycache__" not in file.parts)
    return f"# {path}\n\n" + "".join(f"- [{file}]({file})\n" for file in files)


def _title(text):
    return re.search(r"^# +(.+)$", text, re.M)[1].replace("`", "")


def clear(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
