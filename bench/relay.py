#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""relay.py SECONDS DEVICE DEVICE: hands the packets of two TUN devices, open as these descriptors, on to each other
SECONDS later. Prints a line when it begins, and ends when its standard input does."""

import collections
import os
import select
import sys
import time

_PACKET = 65536


def _take(device, waiting, due):
    try:
        while True:
            waiting.append((due, os.read(device, _PACKET)))
    except BlockingIOError:
        pass


def _deliver(device, waiting):
    """What is due, and the seconds until more is; none while nothing waits."""
    while waiting:
        left = waiting[0][0] - time.monotonic()
        if left > 0:
            return left
        try:
            os.write(device, waiting.popleft()[1])
        except OSError:
            pass  # as on any line, a packet may be lost
    return None


def relay(delay, first, second):
    print(flush=True)
    ways = {first: (second, collections.deque()), second: (first, collections.deque())}
    while True:
        pauses = [pause for pause in (_deliver(*way) for way in ways.values()) if pause is not None]
        ready, _, _ = select.select([sys.stdin, first, second], [], [], min(pauses, default=None))
        if sys.stdin in ready:
            return
        for device in ready:
            _take(device, ways[device][1], time.monotonic() + delay)


if __name__ == "__main__":
    relay(float(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3]))
