# SPDX-License-Identifier: MIT
"""listing.py PORT USER PASSWORD LIBRARY: the same listing by the package's binding for Python."""

import sys

from qxclient import Client, Library

port, user, password, library = sys.argv[1:]
with Client(Library(library)) as client:
    client.set_login("127.0.0.1", user, password, int(port))
    for entry in client.list("/pub"):
        print(entry.name)
