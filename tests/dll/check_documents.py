#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""check_documents.py ROOT: the slots and exports say the same in the public headers of C and C++, the documents, the
export lists and the tests, and the guide says of answers what those try."""

import pathlib
import re
import sys

from checks import CLIENT_EXPORTS, DIALOG_EXPORTS, check, exit_code, same


def header_slots(text):
    """The virtual functions in order. The destructor is declared twice there, for two families of compilers."""
    text = re.sub(r"#if defined\(_MSC_VER\)\n.*?#else\n", "", text, count=1, flags=re.S)
    return re.findall(r"virtual [^;(]*?(\w+)\(", re.sub(r"//.*", "", text))


def table_slots(text):
    """The functions of the table that hosts in C see, in order."""
    return re.findall(r"\(QX_CALL\* (\w+)\)\(TQXIPIFInt\* pClient", text)


def document_slots(text):
    rows = re.findall(r"^\| (\d+) \| `?(\w+)`? \|", text.partition("| slot |")[2].partition("\n\n")[0], re.M)
    return [(int(number), name) for number, name in rows]


def test_slots(text):
    return [(int(number), name) for number, name in re.findall(r"^QX_SLOT\((\d+), (\w+),", text, re.M)]


def check_slots(root):
    slots = list(enumerate(header_slots((root / "include/QXIPInt.h").read_text())))
    check(len(slots) == 51, f"the header has {len(slots)} slots")
    check(slots[3] == (3, "DeletingDestructor"), "slot 3 is the destructor")
    table = (root / "include/QXClientTable.h").read_text()
    check(list(enumerate(table_slots(table))) == slots, "the table's slots")
    slots[3] = (3, "destructor")
    check(document_slots((root / "docs/binary-interface.md").read_text()) == slots, "the document's slots")
    del slots[3]
    check(test_slots((root / "tests/dll/slots.inc").read_text()) == slots, "the slots that tests call")


def stated_rows(text, begin, names):
    """What the header's table says of each operation, and what tests try: lists of words."""
    rows = [re.split(r"[\s,]+", row.rstrip(")")) for row in re.findall(rf"^{begin}(\w.*)$", text, re.M)]
    return [row for row in rows if row[0] in names and row[1].isdigit()]


def check_statements(root):
    header = (root / "include/QXIPInt.h").read_text()
    slots = header_slots(header)
    stated = stated_rows(header, "//   ", slots)
    tried = stated_rows((root / "tests/stated/operations.inc").read_text(), r"QX_OPERATION\(", slots)
    check(len(stated) > 20 and stated == tried, "the header's table of all operations is the one that is tried")
    check(all(slots[int(row[1])] == row[0] for row in tried), "the slots in that table")


def header_exports(path, expected):
    declared = re.findall(r"^(?:QX_EXPORT )?\w[\w:]*\*? QX_CALL (\w+)\(", path.read_text(), re.M)
    check(declared == expected, f"{path.name} declares {declared}")


def check_exports(root):
    header_exports(root / "include/QXExports.h", CLIENT_EXPORTS)
    header_exports(root / "include/QXDialogs.h", DIALOG_EXPORTS)
    definition = (root / "module/ZRM_QXKT32x64.def").read_text().partition("EXPORTS")[2]
    check(re.findall(r"\w+", definition) == CLIENT_EXPORTS + DIALOG_EXPORTS, "the .def file's exports")
    script = (root / "module/exports.map").read_text().partition("global:")[2].partition("local:")[0]
    check(re.findall(r"\w+", script) == CLIENT_EXPORTS, "the version script's exports")
    document = (root / "docs/binary-interface.md").read_text()
    tables = [table.partition("\n\n")[0] for table in document.split("| export |")[1:]]
    names = [re.findall(r"^\| `(\w+)`", table, re.M) for table in tables]
    check(names == [CLIENT_EXPORTS, DIALOG_EXPORTS], f"the document's exports: {names}")


# The waits of the guide's table, by their names in the list of limits.
WAITS = {"for a connection, all addresses of the server together": "connect", "for one reply": "reply",
         "for the next byte of data": "data", "for the reply that ends a transfer": "finalReply",
         "neither a final reply nor a byte of data": "progress"}


def check_waits(root):
    limits = (root / "framework/internet/net/InternetLimits.h").read_text()
    guide = (root / "docs/guide.md").read_text()
    for wait, name in WAITS.items():
        seconds = int(re.search(rf"milliseconds {name}{{([\d']+)}}", limits)[1].replace("'", "")) // 1000
        check(f"\n| {wait} | {seconds} s |" in guide, f"the guide has {seconds} s {wait}")


def check_kinds(root):
    """The guide sorts operations by what the header's table says of messages and OnPoll, which tests try."""
    header = (root / "include/QXIPInt.h").read_text()
    rows = re.findall(r"^//   (\w+) +\d+ +\w+ +\w+ +(dispatched|left) +(\w+) ", header, re.M)
    _, _, table = (root / "docs/guide.md").read_text().partition("\n| operations | messages | `OnPoll` |\n")
    cells = re.findall(r"^\| (`.*`) \| (\w+) \| (\w+) \|$", table.partition("\n\n")[0], re.M)
    told = [(name, messages, poll) for names, messages, poll in cells for name in re.findall(r"\w+", names)]
    check(rows, f"the header's table has {len(rows)} operations")
    same(told, [(name, messages, "no" if poll == "no" else "asked") for name, messages, poll in rows],
         "what the guide says of messages and OnPoll")


def check_answers(root):
    _, _, section = (root / "docs/guide.md").read_text().partition("\n## What a true answer can hide\n")
    cells = re.findall(r"^\| (`.*?) \|", section.partition("\n## ")[0], re.M)
    told = {name for cell in cells for name in re.findall(r"`(\w+)`", cell)}
    tests = re.findall(r"^TEST_F\(Answers, (\w+)\)", (root / "tests/dll/answers_test.cpp").read_text(), re.M)
    check(told, "the guide tells what answers hide")
    for name in sorted(told):
        check(any(test.startswith(name) for test in tests), f"what an answer of {name} hides is tried")


def main():
    root = pathlib.Path(sys.argv[1])
    check_slots(root)
    check_statements(root)
    check_exports(root)
    check_kinds(root)
    check_answers(root)
    check_waits(root)
    return exit_code()


if __name__ == "__main__":
    sys.exit(main())
