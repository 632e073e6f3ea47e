# SPDX-License-Identifier: MIT
"""The programs that the library is measured against: how each is told to carry one file down or up."""

import shutil


class Peer:
    """`server` has host, port, user and password. Paths on the server begin with /pub."""

    def __init__(self, server):
        self._server = server
        self._address = f"ftp://{server.host}:{server.port}"

    def download(self, remote, local):
        raise NotImplementedError

    def upload(self, local, remote):
        """None where the program only downloads."""


class Curl(Peer):
    name = "curl"

    def _command(self, remote, *options):
        login = f"{self._server.user}:{self._server.password}"
        encryption = ["--ssl-reqd", "--cacert", self._server.authority] if self._server.encrypted else []
        return ["curl", "-s", "-S", "-u", login, *encryption, *options, self._address + remote]

    def download(self, remote, local):
        return self._command(remote, "-o", str(local))

    def upload(self, local, remote):
        return self._command(remote, "-T", str(local))

    def query(self, remote):
        """Size and time, without fetching."""
        return self._command(remote, "-I", "-o", "/dev/null")


class Wget(Peer):
    name = "wget"

    def download(self, remote, local):
        login = [f"--ftp-user={self._server.user}", f"--ftp-password={self._server.password}"]
        return ["wget", "-q", *login, "-O", str(local), self._address + remote]


class Lftp(Peer):
    name = "lftp"

    def _command(self, command):
        settings = "set ftp:ssl-allow no; set cmd:fail-exit yes; set xfer:clobber yes"
        login = f"{self._server.user},{self._server.password}"
        return ["lftp", "-e", f"{settings}; {command}; bye", "-u", login, self._address]

    def download(self, remote, local):
        return self._command(f"get {remote} -o {local}")

    def upload(self, local, remote):
        return self._command(f"put {local} -o {remote}")


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


def others(server):
    """Those of them that are installed, beside curl."""
    programs = {"wget": Wget, "lftp": Lftp, "ncftpget": Ncftp}
    return [peer(server) for program, peer in programs.items() if shutil.which(program)]
