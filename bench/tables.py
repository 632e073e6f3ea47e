# SPDX-License-Identifier: MIT
"""The tables of docs/performance.md. `panels` are (title, rows)."""

NAMES = {"linux": "this library, Linux", "windows": "this library, Wine"}


def is_ours(row):
    return row.by.partition(", ")[0] in NAMES


def name(row):
    by, comma, rest = row.by.partition(", ")
    return NAMES.get(by, by) + comma + rest


def _line(cells):
    return "|" + "".join(f" {cell} |" if cell else " |" for cell in cells)


def _table(head, lines):
    """The first columns of `head` are words, what follows None are figures."""
    words = head.index(None)
    titles = [title for title in head if title is not None]
    rule = "|" + "---|" * words + "--:|" * (len(titles) - words)
    return "\n".join([_line(titles), rule, *map(_line, lines)])


def _rows(panels, cells):
    for title, rows in panels:
        for row in rows:
            yield [title, name(row), *cells(row)]
            title = ""


def _figure(value, unit, digits):
    return f"{value / unit:.{digits}f}" if value is not None else ""


def _ms(value, digits=0):
    return _figure(value, 0.001, digits)


def _mebibytes(value):
    return _figure(value, 1 << 20, 1)


def _ratio(value, row):
    return f"{value:.2f}{f' of {row.beside}' if row.beside else ''}" if value else ""


def times(panels):
    """In milliseconds and MiB."""

    def cells(row):
        return [_ms(row.wall), f"{_ms(row.least)} - {_ms(row.most)}", _ms(row.processor), _mebibytes(row.memory),
                _ms(row.one, 2 if row.one and row.one < 0.1 else 0), _ms(row.own_processor),
                _mebibytes(row.own_memory), _ratio(row.ratio, row), _ratio(row.processor_ratio, row)]

    return _table(["", "by", None, "median", "least - most", "processor", "peak MiB", "one operation", "of the host",
                   "added MiB", "x curl", "processor x curl"], _rows(panels, cells))


def cancels(panels):
    """In milliseconds."""
    return _table(["", "by", None, "median", "99 of 100", "most"],
                  _rows(panels, lambda row: [_ms(row.one, 2), _ms(row.one_late, 2), _ms(row.one_most, 2)]))


def memory(panels):
    return _table(["", "by", None, "added MiB", "peak MiB"],
                  _rows(panels, lambda row: [_mebibytes(row.own_memory), _mebibytes(row.memory)]))


def _by_contender(panels, told, text):
    """A column for each contender of whom there is something `told`."""
    names = list(dict.fromkeys(name(row) for _, rows in panels for row in rows if told(row) is not None))

    def cells(rows):
        found = {name(row): text(told(row)) for row in rows}
        return [found.get(one, "") for one in names]

    lines = [[title.rpartition(", ")[0].removeprefix("round trips of "), *cells(rows)] for title, rows in panels]
    return _table(["", None, *names], lines) if names else ""


def trips(panels):
    """And what the processes took of the processor, where it was measured, in milliseconds."""
    counts = _by_contender(panels, lambda row: row.trips, lambda value: _figure(value, 1, 1))
    processors = _by_contender(panels, lambda row: row.processor, _ms)
    return "\n\n".join([counts, *(["Of the processor, in milliseconds:", processors] if processors else [])])


# By the parts of the document; the others have `times`.
KINDS = {"cancels": cancels, "memory": memory, "round-trips": trips}
