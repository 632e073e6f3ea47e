# SPDX-License-Identifier: MIT
"""Sums of files, and the list that sha256sum -c reads."""

import hashlib


def digest(path, algorithm="sha256"):
    return hashlib.new(algorithm, path.read_bytes()).hexdigest()


def write_sums(folder, paths):
    """SHA256SUMS in `folder`, of paths below it."""
    lines = [f"{digest(path)}  {path.relative_to(folder)}\n" for path in sorted(paths)]
    (folder / "SHA256SUMS").write_text("".join(lines), encoding="utf-8")
