# SPDX-License-Identifier: MIT
"""What the page about the wire shows: each operation that has to do with a server, in the situations that matter."""

import ctypes
import dataclasses
import typing

TREE = {"/pub/": {}, "/pub/file": "content", "/pub/empty": "", "/pub/folder/": {}, "/pub/full/inside": "more"}
NO_MLST = {"features": ["utf8", "epsv", "eprt", "size", "mdtm", "rest"]}
BARE = {"features": []}
# Four of the seven bytes of a file come, then the whole connection ends.
BREAKS = {"rules": [{"on": "RETR", "first": 1, "do": [{"normal": {"close_after": 4, "final": None}}, "close"]}]}


@dataclasses.dataclass
class Case:
    """`call(client, place)` is the operation, and `answer` what it has to answer."""

    operation: str
    situation: str
    call: typing.Callable
    answer: object = True
    script: dict = dataclasses.field(default_factory=dict)  # of the server, beside its files
    is_passive: bool = True
    calls_before: int = 0  # of the same kind, which are not shown


@dataclasses.dataclass
class Place:
    """Where the client works: the server, and a local file that is there and one that is not."""

    host: str
    port: int
    file: str
    none: str

    def login(self, is_passive=True, password="password"):
        return self.host, "user", password, self.port, int(is_passive)


def _count():
    return ctypes.byref(ctypes.c_uint32())


def _on_path(operation, path, situation, answer=True, **more):
    """An operation of a path, a retry count and the two values for OnPoll."""
    return Case(operation, situation, lambda client, place: getattr(client, operation)(path, 0, 0, 0), answer, **more)


def _listing(situation="the directory is there", path="/pub", **more):
    return Case("FTPGetDirectory", situation,
                lambda client, place: client.FTPGetDirectory(path, None, _count(), "*.*", 0), **more)


def _download(situation, retries=0, **more):
    return Case("FTPDownloadFile", situation,
                lambda client, place: client.FTPDownloadFile("/pub/file", place.none, retries), **more)


def _copies(operation):
    def case(situation, source, target):
        return Case(operation, situation, lambda client, place: getattr(client, operation)(
            source(place), target(place), None, 0, 0, 0))

    return [
        case("from the server", lambda place: "/pub/file", lambda place: f"Z:{place.none}"),
        case("to the server", lambda place: f"Z:{place.file}", lambda place: "/pub/new"),
        case("from the server to the server", lambda place: "/pub/file", lambda place: "/pub/new"),
    ]


def _write(situation, appends, path, **more):
    return Case("FTPWriteFile", situation,
                lambda client, place: client.FTPWriteFile(path, "more", 4, appends, 0, 0, 0, 0), **more)


def _read(situation, path):
    def call(client, place):
        block, size = ctypes.c_void_p(), ctypes.c_uint32()
        answer = client.FTPReadFile(path, ctypes.byref(block), ctypes.byref(size), 0, 0, 0, 0)
        client.FTPFreeFileAPI(block)
        return answer

    return Case("FTPReadFile", situation, call)


def _connect(situation, answer=True, encryption="", password="password", **more):
    return Case("FTPConnect", situation, lambda client, place: client.FTPConnect(
        encryption.format(place.host), *place.login(password=password)[1:], 0, None), answer, **more)


def _rename(situation, path, answer=True):
    return Case("FTPRenameFile", situation, lambda client, place: client.FTPRenameFile(path, "/pub/new", 0), answer)


CONNECTING = [
    _connect("plain", encryption="{}"),
    _connect("encrypted from AUTH TLS on", encryption="ftpes://{};verify=no", script={"tls": {}}),
    _connect("encrypted from AUTH TLS on, at a known server", encryption="ftpes://{};verify=no", script={"tls": {}},
             calls_before=2),
    _connect("encrypted from the first byte", encryption="ftps://{};verify=no", script={"tls": {"implicit": True}}),
    _connect("the password is wrong", False, "{}", "wrong", script={"user": "user", "password": "password"}),
]

OPERATIONS = [
    _listing(),
    _listing("the directory is missing", "/pub/none"),
    _listing("a server without MLST", script=NO_MLST),
    _listing("a server without any extension", script=BARE),
    _listing("the server connects for data", is_passive=False),
    _download("the file is there"),
    _download("the connection breaks, one retry", retries=1, script=BREAKS),
    _download("a server without any extension", script=BARE),
    _download("the server connects for data", is_passive=False),
    Case("FTPDownloadFile", "the file is missing",
         lambda client, place: client.FTPDownloadFile("/pub/none", place.none, 0), False),
    Case("FTPDownloadFile", "the local file is there",
         lambda client, place: client.FTPDownloadFile("/pub/file", place.file, 0), False),
    Case("FTPUploadFile", "also over a file that is there",
         lambda client, place: client.FTPUploadFile("/pub/new", place.file, 0)),
    Case("FTPHasSubDir", "always", lambda client, place: client.FTPHasSubDir("/pub", 0)),
    Case("FTPCountFolderItems", "always",
         lambda client, place: client.FTPCountFolderItems("/pub", _count(), _count(), 0)),
    _on_path("FTPDirExist", "/pub/folder", "the directory is there"),
    _on_path("FTPDirExist", "/pub/none", "it is missing", False),
    _on_path("FTPDirExist", "/none/none", "the one above is missing, too", False),
    _on_path("FTPDirExist", "/", "of the root"),
    _on_path("FTPDirExist", "/pub/folder", "a server without MLST", script=NO_MLST),
    _on_path("FTPFileExists", "/pub/file", "the file is there"),
    _on_path("FTPFileExists", "/pub/none", "it is missing", False),
    _on_path("FTPFileExists", "/pub/file", "a server without MLST", script=NO_MLST),
    *_copies("FTPCpyFile"),
    *_copies("FTPMovFile"),
    Case("FTPRmvFile", "the file is there", lambda client, place: client.FTPRmvFile("/pub/file", 0, 0, 0, 0)),
    Case("FTPRmvFile", "it is missing", lambda client, place: client.FTPRmvFile("/pub/none", 0, 0, 0, 0), False),
    _on_path("FTPRmvDir", "/pub/folder", "the directory is empty"),
    _on_path("FTPRmvDir", "/pub/full", "it is not empty", False),
    _on_path("FTPRmvDir", "/pub/none", "it is missing"),
    _on_path("FTPCreateDir", "/pub/new", "the directory is missing"),
    _on_path("FTPCreateDir", "/pub/new/below", "the one above is missing, too"),
    _on_path("FTPCreateDir", "/pub/folder", "it is there"),
    Case("FTPCreateNewDir", "the name is free", lambda client, place: client.FTPCreateNewDir(
        "/pub", ctypes.create_string_buffer(256), "new", 0)),
    Case("FTPCreateNewDir", "the name is taken", lambda client, place: client.FTPCreateNewDir(
        "/pub", ctypes.create_string_buffer(256), "folder", 0)),
    _on_path("FTPIsDirectory", "/pub/folder", "the directory is there"),
    _on_path("FTPFileSize", "/pub/file", "the file is there", len(TREE["/pub/file"])),
    _on_path("FTPFileSize", "/pub/none", "it is missing", 0),
    _write("in place of what is there", 0, "/pub/file"),
    _write("behind what is there", 1, "/pub/file"),
    _read("the file is there", "/pub/file"),
    _read("it is empty", "/pub/empty"),
    _read("it is missing", "/pub/none"),
    _rename("the file is there", "/pub/file"),
    _rename("it is missing", "/pub/none", False),
]

# Operations from which one might expect something on the wire, at a connected client.
SILENT = {
    "FTPSetLogin": lambda client, place: client.FTPSetLogin(*place.login()),
    "FTPSetFirewall": lambda client, place: client.FTPSetFirewall(0, 0, 0),
    "FTPSetProxy": lambda client, place: client.FTPSetProxy("proxy", 0),
    "FTPReConnect": lambda client, place: client.FTPReConnect(0, 0),
    "GetFinder": lambda client, place: client.GetFinder(0, "m_pFTPFileFind"),
    "FTPDestroyFileContent": lambda client, place: client.FTPDestroyFileContent("/pub/file", 1, 0, 0, 0),
    "WipeWith": lambda client, place: client.WipeWith("/pub/file", 0, 0),
    "Wipe": lambda client, place: client.Wipe("/pub/file"),
    "FTPFreeFileAPI": lambda client, place: client.FTPFreeFileAPI(None),
    "FTPDisconnect": lambda client, place: client.FTPDisconnect(),
}

PAGE = {"body": {"text": "<html></html>"}}
REQUESTS = {
    "the page is there": [PAGE],
    "it has moved": [{"status": "302 Found", "headers": ["Location: http://127.0.0.1:{port}/moved"]}, PAGE],
}
