# SPDX-License-Identifier: MIT
"""The programs that the library is measured against: how each is told to carry out an operation.

A method that a program has no way for is not there, and `can` says so. Paths on the server begin with /pub. Where
`times` is given, one process does the same so often, over one connection.
"""

import shutil


class Peer:
    """`server` has host, port, user and password."""

    name = None

    def __init__(self, server):
        self._server = server
        self._address = f"ftp://{server.host}:{server.port}"

    def can(self, operation):
        return hasattr(self, operation)


class Curl(Peer):
    name = "curl"

    def _command(self, *options):
        login = f"{self._server.user}:{self._server.password}"
        encryption = ["--ssl-reqd", "--cacert", self._server.authority] if self._server.encrypted else []
        return ["curl", "-s", "-S", "-u", login, *encryption, *options]

    def download(self, remote, local):
        return self._command("-o", str(local), self._address + remote)

    def upload(self, local, remote):
        return self._command("-T", str(local), self._address + remote)

    def query(self, remote, times=1):
        """Size and time, without fetching."""
        return self._command("-I", *["-o", "/dev/null", self._address + remote] * times)

    exists = size = query

    def list(self, remote, times=1):
        return self._command(*["-o", "/dev/null", f"{self._address}{remote}/"] * times)

    def _quote(self, *commands):
        quotes = [word for command in commands for word in ("-Q", command)]
        return self._command("-I", *quotes, self._address + "/")

    def rename(self, old, new):
        return self._quote(f"RNFR {old}", f"RNTO {new}")

    def remove(self, remote):
        return self._quote(f"DELE {remote}")

    def mkdir(self, *folders):
        return self._quote(*(f"MKD {folder}" for folder in folders))

    def rmdir(self, folder):
        return self._quote(f"RMD {folder}")

    def many_down(self, names, remote, folder):
        return self._command("-o", f"{folder}/{names.curl(1)}", f"{self._address}{remote}/{names.curl()}")

    def many_up(self, names, folder, remote):
        return self._command("-T", f"{folder}/{names.curl()}", f"{self._address}{remote}/")


class Wget(Peer):
    name = "wget"

    def _command(self, *options):
        login = [f"--ftp-user={self._server.user}", f"--ftp-password={self._server.password}"]
        return ["wget", "-q", *login, *options]

    def download(self, remote, local):
        return self._command("-O", str(local), self._address + remote)

    def many_down(self, _, remote, folder):
        """By the server's listing: over one connection, which a list of addresses would not be."""
        return self._command("-nd", "-P", str(folder), f"{self._address}{remote}/*.dat")


class Lftp(Peer):
    """As it comes, but for what makes it quicker: without its pauses for a reply before each command, and without the
    questions that no operation here needs."""

    name = "lftp"
    _SETTINGS = [
        "ftp:ssl-allow no", "cmd:fail-exit yes", "xfer:clobber yes", "cache:enable no", "ftp:sync-mode no",
        "ftp:use-feat no", "ftp:use-site-idle no", "ftp:use-site-utime no", "ftp:use-site-utime2 no",
        "ftp:use-mdtm no", "xfer:use-temp-file no",
    ]

    def _command(self, *commands):
        script = [f"set {setting}" for setting in self._SETTINGS] + [*commands, "bye"]
        return ["lftp", "-e", "; ".join(script), "-u", f"{self._server.user},{self._server.password}", self._address]

    def download(self, remote, local):
        return self._command(f"get {remote} -o {local}")

    def upload(self, local, remote):
        return self._command(f"put {local} -o {remote}")

    def query(self, remote, times=1):
        return self._command(*[f"quote SIZE {remote}"] * times)

    exists = size = query

    def list(self, remote, times=1):
        return self._command(*[f"ls {remote}"] * times)

    def rename(self, old, new):
        return self._command(f"mv {old} {new}")

    def remove(self, remote):
        return self._command(f"rm {remote}")

    def mkdir(self, *folders):
        return self._command(f"mkdir -p {folders[-1]}")

    def rmdir(self, folder):
        return self._command(f"rmdir {folder}")

    def many_down(self, _, remote, folder):
        return self._command(f"mget -O {folder} {remote}/*.dat")

    def many_up(self, _, folder, remote):
        return self._command(f"mput -O {remote} {folder}/*.dat")


class Ncftp(Peer):
    """Keeps the file's own name."""

    name = "ncftp"

    def _command(self, program, *words):
        server = self._server
        return [program, "-V", "-u", server.user, "-p", server.password, "-P", str(server.port), server.host,
                *map(str, words)]

    def download(self, remote, local):
        return self._command("ncftpget", local.parent, remote)

    def upload(self, local, remote):
        return self._command("ncftpput", remote.rpartition("/")[0], local)

    def many_down(self, names, remote, folder):
        return self._command("ncftpget", folder, *(f"{remote}/{name}" for name in names.all()))

    def many_up(self, names, folder, remote):
        return self._command("ncftpput", remote, *(f"{folder}/{name}" for name in names.all()))


def others(server):
    """Those of them that are installed, beside curl."""
    programs = {"wget": Wget, "lftp": Lftp, "ncftpget": Ncftp}
    return [peer(server) for program, peer in programs.items() if shutil.which(program)]
