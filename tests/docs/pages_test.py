#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The web pages of the documents: that they can be made, lead everywhere, and come out the same each time."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tools/documents"))
sys.dont_write_bytecode = True

import page_hooks  # noqa: E402  (found through the path above)
import page_links  # noqa: E402
import page_sources  # noqa: E402


def files(folder):
    return {path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


class TestCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()

    def put(self, path, text):
        there = self.folder / path
        there.parent.mkdir(parents=True, exist_ok=True)
        there.write_text(text)


class ThePages(TestCase):
    def made(self, name):
        made = subprocess.run([ROOT / "tools/documents/pages.py", self.folder / name], capture_output=True, text=True)
        self.assertEqual(made.returncode, 0, made.stdout + made.stderr)
        return files(self.folder / name)

    def test_they_lead_everywhere_and_are_the_same_each_time(self):
        pages = self.made("first")
        self.assertEqual(pages, self.made("second"))
        names = {str(path) for path in pages}
        self.assertGreaterEqual(names, {"index.html", "docs/security.html", "include/QXIPInt.h.html", "sections.js"})
        self.assertNotIn(b"://cdn", b"".join(pages.values()).lower())


class Links(TestCase):
    def faults_of(self, body):
        self.put("docs/page.html", f'<h2 id="here"></h2>{body}')
        self.put("other.html", '<h2 id="there"></h2>')
        return list(page_links.faults(self.folder))

    def test_what_leads_somewhere_is_no_fault(self):
        for link in ("#here", "../other.html", "../other.html#there", "https://example.org/", "page.html"):
            self.assertEqual(self.faults_of(f'<a href="{link}"></a>'), [])

    def test_what_leads_nowhere_is_one(self):
        for link in ("#there", "other.html", "../other.html#here", ".."):
            self.assertEqual(self.faults_of(f'<a href="{link}"></a>'), [f"docs/page.html: {link} leads nowhere"])
        self.assertEqual(self.faults_of('<img src="none.png">'), ["docs/page.html: none.png leads nowhere"])

    def test_a_part_of_a_page_that_lies_elsewhere_is_one(self):
        for part in ("https://example.org/a.css", "//example.org/a.css"):
            self.assertIn(f"docs/page.html: {part} is elsewhere", self.faults_of(f'<link href="{part}">'))

    def test_an_anchor_that_is_there_twice_is_one(self):
        self.assertEqual(self.faults_of('<p id="here">'), ["docs/page.html: the anchor here is there twice"])


class Sources(TestCase):
    def setUp(self):
        super().setUp()
        self.addCleanup(setattr, page_sources, "ROOT", page_sources.ROOT)
        page_sources.ROOT = self.folder / "tree"

    def made(self, tree, *paths):
        for path, text in tree.items():
            self.put(f"tree/{path}", text)
        pages = page_sources.Pages(self.folder / "pages")
        for path in paths:
            pages.add(pathlib.Path(path))
        return {str(path): content.decode() for path, content in files(self.folder / "pages").items()}

    def test_a_linked_source_has_a_page_and_the_link_leads_there(self):
        pages = self.made({"docs/a.md": "# A\n[code](../src/b.h#x)", "src/b.h": "int b;\n"}, "docs/a.md")
        self.assertEqual(pages["docs/a.md"], "# A\n[code](../src/b.h.md#x)")
        self.assertEqual(pages["src/b.h.md"], "# src/b.h\n\n```cpp\nint b;\n```\n")

    def test_a_linked_folder_has_a_page_of_its_files_or_its_own(self):
        pages = self.made({"a.md": "# A\n[one](one) [two](two)", "one/c.py": "c", "two/README.md": "# Two"}, "a.md")
        self.assertEqual(pages["a.md"], "# A\n[one](one/index.md) [two](two/README.md)")
        self.assertEqual(pages["one/index.md"], "# one\n\n- [c.py](c.py.md)\n")
        self.assertIn("one/c.py.md", pages)

    def test_code_is_left_as_it_is(self):
        text = "# A\n\n```c\na[0](b)\n```\n"
        self.assertEqual(self.made({"a.md": text}, "a.md")["a.md"], text)

    def test_a_public_header_that_is_named_is_a_link(self):
        header = page_sources.HEADERS[0]
        pages = self.made({"docs/a.md": f"# A\n`{header}` `{header.name}` `QXNone.h`", str(header): ""}, "docs/a.md")
        page = f"(../{header}.md)"
        self.assertEqual(pages["docs/a.md"], f"# A\n[`{header}`]{page} [`{header.name}`]{page} `QXNone.h`")

    def test_what_is_not_there_cannot_be_linked(self):
        with self.assertRaises(FileNotFoundError):
            self.made({"a.md": "# A\n[b](b.md)"}, "a.md")


class Anchors(unittest.TestCase):
    def test_they_are_those_of_the_documents_on_github(self):
        self.assertEqual(page_hooks.anchor("What is checked"), "what-is-checked")
        self.assertEqual(page_hooks.anchor("The DLL, or .so?"), "the-dll-or-so")
        self.assertEqual(page_hooks.anchor("One - two"), "one---two")


if __name__ == "__main__":
    unittest.main()
