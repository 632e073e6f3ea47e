# SPDX-License-Identifier: MIT
"""Lines of a binding's source."""

import textwrap

COLUMNS = 110


TOGETHER = "\N{NO-BREAK SPACE}"  # in place of a blank where no line may end


def wrapped(line):
    """A declaration in lines that fit, those behind the first one further in."""
    margin = len(line) - len(line.lstrip())
    lines = textwrap.fill(line, COLUMNS, subsequent_indent=" " * (margin + 4), break_long_words=False,
                          break_on_hyphens=False)
    return lines.replace(TOGETHER, " ")


def with_raw_part(source, raw):
    """The binding's source with this text between its two marks, which are lines of comment."""
    lines = source.splitlines()
    begin, end = (next(number for number, line in enumerate(lines) if mark in line)
                  for mark in ("raw part begins", "raw part ends"))
    return "\n".join(lines[:begin + 1] + raw + lines[end:]) + "\n"
