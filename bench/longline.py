# SPDX-License-Identifier: MIT
"""A line with a long round trip on this machine: two network namespaces, and a relay between them that delays every
packet. They have no names and are held open by this process alone, so nothing is left of them however it ends."""

import contextlib
import ctypes
import fcntl
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile

from servers import FIXTURE, Server

sys.path.insert(0, str(FIXTURE))

import controller_process  # noqa: E402  (found through the path above)

NEAR, FAR = "10.99.0.1", "10.99.0.2"
_HERE = pathlib.Path(__file__).resolve().parent
_DEVICE = "/dev/net/tun"
_NEW_NETWORK, _TUNSETIFF, _TUN_WITHOUT_HEADER = 0x40000000, 0x400454CA, 0x1001
_libc = ctypes.CDLL(None, use_errno=True)


def _check(result):
    if result != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))


def _present():
    """The network namespace of this thread, and so of what it starts."""
    return os.open("/proc/thread-self/ns/net", os.O_RDONLY | os.O_CLOEXEC)


@contextlib.contextmanager
def _inside(namespace):
    home = _present()
    _check(_libc.setns(namespace, _NEW_NETWORK))
    try:
        yield
    finally:
        _check(_libc.setns(home, _NEW_NETWORK))
        os.close(home)


def _new_namespace():
    home = _present()
    _check(_libc.unshare(_NEW_NETWORK))
    made = _present()
    _check(_libc.setns(home, _NEW_NETWORK))
    os.close(home)
    return made


def _device(namespace, address):
    """The end of the line that a relay holds; packets for the other address come out of it."""
    with _inside(namespace):
        end = os.open(_DEVICE, os.O_RDWR | os.O_NONBLOCK | os.O_CLOEXEC)
        fcntl.ioctl(end, _TUNSETIFF, struct.pack("16sH22x", b"line", _TUN_WITHOUT_HEADER))
        for words in (f"addr add {address}/24 dev line", "link set line up", "link set lo up"):
            subprocess.run(["ip", *words.split()], check=True)
    return end


def why_not():
    """What is missing for such a line; None where it can be."""
    if os.geteuid() != 0:
        return "it takes root"
    if not os.path.exists(_DEVICE):
        return f"there is no {_DEVICE}"
    if not shutil.which("ip"):
        return "there is no ip"
    try:
        with contextlib.ExitStack() as stack:
            _held(stack, _device(_held(stack, _new_namespace()), NEAR))
    except (OSError, subprocess.CalledProcessError) as error:
        return str(error)
    return None


def _held(stack, descriptor):
    stack.callback(os.close, descriptor)
    return descriptor


class Line:
    """`seconds` is its round trip."""

    def __init__(self, seconds):
        self.seconds = seconds
        self._stack = contextlib.ExitStack()

    def __enter__(self):
        with contextlib.ExitStack() as stack:
            self._near, self._far = (_held(stack, _new_namespace()) for _ in range(2))
            stack.enter_context(self._relay(_device(self._near, NEAR), _device(self._far, FAR)))
            self._stack = stack.pop_all()
        return self

    def __exit__(self, *_):
        self._stack.close()

    @contextlib.contextmanager
    def _relay(self, *ends):
        command = [sys.executable, str(_HERE / "relay.py"), str(self.seconds / 2), *map(str, ends)]
        # A terminal's Ctrl-C is not for it: it ends with its input.
        relay = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, pass_fds=ends,
                                 start_new_session=True)
        for end in ends:
            os.close(end)
        with relay:
            relay.stdout.readline()
            yield

    def near(self):
        """A block whose sockets and processes are at the near end."""
        return _inside(self._near)

    def far(self):
        return _inside(self._far)

    @contextlib.contextmanager
    def server(self, kind):
        """A server of that kind at the far end."""
        with tempfile.TemporaryDirectory(prefix="qx-far-") as folder, contextlib.ExitStack() as stack:
            environment = {**os.environ, "QX_FIXTURE_DIR": f"{folder}/fixture", "QX_FIXTURE_HOST": FAR}
            os.mkdir(environment["QX_FIXTURE_DIR"])
            command = [sys.executable, "-B", str(FIXTURE / "controller.py")]
            with self.far():
                port = stack.enter_context(
                    controller_process.running(command, env=environment, start_new_session=True))
                server = stack.enter_context(Server(kind, host=FAR, controller=int(port)))
            yield server
