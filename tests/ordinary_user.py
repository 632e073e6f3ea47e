# SPDX-License-Identifier: MIT
"""Runs a command as an ordinary user on a checkout of its own, and so finds what only root can do."""

import contextlib
import os
import pathlib
import pwd
import shutil
import signal
import subprocess
import tempfile
import time

NAME = "qx-tests"
# What the command takes over: how the machine reaches the package registry, and how it speaks.
HANDED_ON = ("PATH", "LANG", "LC_ALL", "http_proxy", "https_proxy", "no_proxy")


def account():
    try:
        return pwd.getpwnam(NAME)
    except KeyError:
        return None


def processes(uid):
    """The processes that run with this user's rights."""
    found = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            if folder.stat().st_uid == uid and "\nState:\tZ" not in (folder / "status").read_text():
                found.append(int(folder.name))
    return found


def end_processes(uid, seconds=5):
    """Ends what an account still runs: Wine's server outlives the last program, and no account goes before it."""
    kill_from = time.monotonic() + seconds
    while left := processes(uid):
        number = signal.SIGTERM if time.monotonic() < kill_from else signal.SIGKILL
        for process_id in left:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process_id, number)
        time.sleep(0.1)


@contextlib.contextmanager
def ordinary_user():
    """An account without rights, password and home. One that is there already stays."""
    is_new = account() is None
    if is_new:
        subprocess.run(["useradd", "--no-create-home", "--home-dir", "/nonexistent", NAME], check=True)
    try:
        yield account()
    finally:
        if is_new:
            end_processes(account().pw_uid)
            subprocess.run(["userdel", NAME], check=False)


def clone(root, home):
    """Makes home/checkout, with the rights of the owner of `root`: git trusts nobody else's repository."""
    checkout, owner = home / "checkout", os.stat(root).st_uid
    checkout.mkdir()
    for folder in (home, checkout):
        os.chown(folder, owner, -1)
    # Links would be the repository's own files, which then got another owner, too.
    command = ["git", "clone", "--quiet", "--no-hardlinks", root, checkout]
    subprocess.run(command, user=owner, env={**os.environ, "HOME": str(home)}, check=True)


@contextlib.contextmanager
def home_with_checkout(root, user):
    """A folder with a clone, and with a copy of the compiler cache, which makes building a matter of seconds."""
    home = pathlib.Path(tempfile.mkdtemp(prefix="qx-user-", dir="/var/tmp"))
    try:
        clone(root, home)
        cache = subprocess.run(["ccache", "--get-config", "cache_dir"], capture_output=True, text=True, check=False)
        (home / ".cache").mkdir()
        # Another build may change the cache meanwhile: what is missing from the copy is compiled.
        copy = ["cp", "-r", cache.stdout.strip(), home / ".cache/ccache"]
        subprocess.run(copy, stderr=subprocess.DEVNULL, check=False)
        subprocess.run(["chown", "--recursive", f"{user.pw_uid}:{user.pw_gid}", home], check=True)
        yield home
    finally:
        shutil.rmtree(home, ignore_errors=True)


def run_as_ordinary_user(root, command):
    """(exit code, last line of the output); the output is shown, marked as another's. For root only."""
    with ordinary_user() as user, home_with_checkout(root, user) as home:
        environment = {name: os.environ[name] for name in HANDED_ON if name in os.environ}
        environment |= {"HOME": str(home), "USER": NAME, "LOGNAME": NAME}
        line = ""
        with subprocess.Popen(command, cwd=home / "checkout", env=environment, user=user.pw_uid, group=user.pw_gid,
                              extra_groups=[], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace") as process:
            for line in process.stdout:
                print("|", line, end="", flush=True)
        return process.returncode, line.rstrip("\n")
