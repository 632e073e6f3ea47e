# SPDX-License-Identifier: MIT
"""example.py HOST PORT FILE LOCAL [SECONDS]: lists the folder of a remote file and downloads the file.

Shows how far that is, and cancels it when nothing has come for so long (10 s). Ctrl+C cancels it, too. The library is
where the system's loader looks for it.
"""

import sys
import time

from qxclient import Client, QXCancelled, QXError


class Display:
    """Shows the progress of a download, and gives it up when it rests for too long."""

    def __init__(self, patience):
        self._patience = patience
        self._transferred = 0
        self._changed = time.monotonic()
        self.gave_up = None

    def poll(self, progress):
        now = time.monotonic()
        if progress.transferred != self._transferred:
            self._transferred, self._changed = progress.transferred, now
            print(f"\r{100 * progress.transferred // progress.total:3} %  {progress.transferred} of {progress.total}",
                  end="", flush=True)
        if now - self._changed < self._patience:
            return False
        self.gave_up = now
        return True


def download(client, remote, local, patience):
    display = Display(patience)
    client.use(poll=display.poll)
    try:
        client.download(remote, local)
    except QXCancelled:
        if display.gave_up is None:
            raise
        print(f"\nnothing came any more: cancelled within {(time.monotonic() - display.gave_up) * 1000:.0f} ms")
        return 1
    print("\ndone")
    return 0


def main(host, port, remote, local, seconds=10):
    with Client() as client:
        client.set_login(host, port=int(port))
        try:
            for entry in client.list(remote.rpartition("/")[0] or "/"):
                print(f"{'folder' if entry.is_directory else entry.size:>12}  {entry.name}")
            return download(client, remote, local, float(seconds))
        except QXError as error:
            print(f"\n{error}", file=sys.stderr)
            return 1


if __name__ == "__main__":
    if not 5 <= len(sys.argv) <= 6:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
