# SPDX-License-Identifier: MIT
"""Whole files: down, up, in small pieces, from a web server, and over encrypted connections."""

from measure import Contender
from servers import Build, Server, WebServer, write_pattern
from stage import DOWN_SEED, LARGE, UPLOADED, Stage

# They end a data connection whose handshake comes before the command, as curl's does.
_REFUSES_CURL_TLS = ["pyftpdlib"]


def _down_by(stage, build, target, operation="download", local=Build.local):
    return stage.ours(build, operation, LARGE, local(build, target), **stage.brings(target))


def _up_by(stage, build, source):
    return stage.ours(build, "upload", build.local(source), UPLOADED, **stage.sends())


def _fetch(stage, work, peers, ours):
    target = stage.folder / "large"
    contenders = [Contender(peer.name, peer.download(LARGE, target), **stage.brings(target)) for peer in peers]
    made = stage.measure(work, contenders + [ours(build, target) for build in stage.builds])
    target.unlink()
    return made


def download(stage):
    return _fetch(stage, "download", [stage.curl, *stage.others("download")],
                  lambda build, target: _down_by(stage, build, target))


def copy(stage):
    # Between a remote and a local path the drive letter makes the difference, on Linux, too.
    return _fetch(stage, "copy", [stage.curl],
                  lambda build, target: _down_by(stage, build, target, "copy", lambda _, path: f"Z:{path}"))


def upload(stage):
    source = stage.source()
    peers = [stage.curl, *stage.others("upload")]
    contenders = [Contender(peer.name, peer.upload(source, UPLOADED), **stage.sends()) for peer in peers]
    made = stage.measure("upload", contenders + [_up_by(stage, build, source) for build in stage.builds])
    stage.server.ask("put", files={UPLOADED: ""})
    source.unlink()
    return made


def http(stage):
    """Once: the FTP server has no part in it."""
    if stage.server.kind != stage.arguments.server[0]:
        return []
    target, served = stage.folder / "fetched", stage.folder / "large"
    write_pattern(served, DOWN_SEED, stage.arguments.size)
    with WebServer(stage.folder) as web:
        login = [web.host, str(web.port), "-", "-"]
        by_curl = ["curl", "-s", "-S", "-o", str(target), f"http://{web.host}:{web.port}/large"]
        contenders = [Contender("curl", by_curl, **stage.brings(target))]
        for build in stage.builds:
            contenders.append(stage.ours(build, "http", "/large", build.local(target), login=login,
                                         **stage.brings(target)))
        made = stage.measure("http", contenders)
    for file in (target, served):
        file.unlink()
    for row in made:
        row.work = "http, http.server"
    return made


def encrypted(stage):
    if stage.server.kind in _REFUSES_CURL_TLS:
        return []
    target, source = stage.folder / "large", stage.source()
    with Server(stage.server.kind, encrypted=True) as server:
        secure = Stage(server, stage.builds, stage.arguments, stage.folder)
        server.ask("put", files=stage.large())
        down = Contender("curl", secure.curl.download(LARGE, target), **secure.brings(target))
        made = _beside(secure, stage, "download", down, lambda on, build: _down_by(on, build, target))
        up = Contender("curl", secure.curl.upload(source, UPLOADED), **secure.sends())
        made += _beside(secure, stage, "upload", up, lambda on, build: _up_by(on, build, source))
    for file in (target, source):
        file.unlink()
    stage.server.ask("put", files={UPLOADED: ""})
    return made


def _beside(secure, plain, work, curl, ours):
    """`ours(stage, build)` is a contender: over the encrypted server, and the plain one."""
    contenders = [curl]
    for build in plain.builds:
        without, within = ours(plain, build), ours(secure, build)
        without.name += ", plain"
        within.beside = without if build.windows else None
        contenders += [without, within]
    return secure.measure(f"encrypted {work}", contenders)
