# SPDX-License-Identifier: MIT
"""Archives of a folder that are the same bytes whenever the folder has the same content: sorted names, one time, no
owner, and of the modes only whether a file is a program."""

import os
import tarfile
import time
import zipfile


def _entries(folder):
    """Paths of all files and links below the folder, by their names; the folder's own name is their first part."""
    paths = [path for path in folder.rglob("*") if path.is_symlink() or path.is_file()]
    return sorted((str(path.relative_to(folder.parent)), path) for path in paths)


def _mode(path):
    return 0o755 if os.access(path, os.X_OK) else 0o644


def write_zip(folder, archive, moment):
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as out:
        for name, path in _entries(folder):
            entry = zipfile.ZipInfo(name, time.gmtime(moment)[:6])
            entry.create_system = 3  # of which the upper half of the attributes are a mode
            entry.external_attr = (0o100000 | _mode(path)) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            out.writestr(entry, path.read_bytes())


def write_tar_xz(folder, archive, moment):
    with tarfile.open(archive, "w:xz", format=tarfile.GNU_FORMAT, preset=9) as out:
        for name, path in _entries(folder):
            entry = out.gettarinfo(path, name)
            entry.uid = entry.gid = 0
            entry.uname = entry.gname = ""
            entry.mtime = moment
            entry.mode = 0o777 if entry.issym() else _mode(path)
            if entry.isfile():
                with open(path, "rb") as content:
                    out.addfile(entry, content)
            else:
                out.addfile(entry)
