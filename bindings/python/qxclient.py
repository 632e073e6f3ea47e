# SPDX-License-Identifier: MIT
"""The FTP client of ZRM_QXKT32x64 for Python 3.8 and newer: this one file and the library.

    from qxclient import Client, Library

    with Client(Library("/opt/zrm/lib/libZRM_QXKT32x64.so.1")) as client:
        client.set_login("ftp.example.org")
        for entry in client.list("/pub"):
            print(entry.name, entry.size)
        client.use(poll=lambda progress: print(progress.transferred, "of", progress.total))
        client.download("/pub/file", "file")

The operations are those of include/QXIPInt.h, which tells what they do. What differs:

- A failure raises QXError, whose `report` is the library's error record; a cancel raises QXCancelled. `client.report`
  is that of the latest operation, also after a success, which can have one, too: of an attempt that was repeated.
- Texts are str. A name that is no text comes with surrogate escapes and goes back as the bytes that it was. bytes are
  passed on as they are. A NUL in a text is a ValueError.
- One thread at a time uses a client. Other Python threads run while an operation waits.
- `cancel`, Ctrl+C and a hook that raises end an operation that asks the library's OnPoll, within moments: read, write,
  append, copy, download, upload, move, remove and remove_directory. All others end by themselves, in 30 s for each
  word that a server owes. What a hook has raised leaves the operation that called it.
- close(), from another thread or in a hook, ends whatever operation runs.
- Hooks start no operation of their client. `poll` and `entry` come on the thread that called the operation, the other
  hooks perhaps on one of the library's.
- A client ends with its `with` block, by close() or with the object. Nothing that Python gets is the library's memory.
"""

import contextlib
import ctypes
import os
import signal
import threading
from ctypes import (CFUNCTYPE, POINTER, Structure, byref, c_char, c_char_p, c_size_t, c_uint8, c_uint32, c_uint64,
                    c_void_p)
from datetime import datetime, timedelta
from typing import NamedTuple, Optional

# The raw part begins: the names and types of include/, written by tools/bindings.
QX_ERROR_BUSY = 12110
QX_ERROR_CANNOT_CONNECT = 12029
QX_ERROR_CERTIFICATE_AUTHORITY = 12045
QX_ERROR_CERTIFICATE_DATE = 12037
QX_ERROR_CERTIFICATE_INVALID = 12169
QX_ERROR_CERTIFICATE_NAME = 12038
QX_ERROR_CERTIFICATE_REVOKED = 12170
QX_ERROR_CLIENT_CERTIFICATE = 12044
QX_ERROR_CONNECTION_ABORTED = 12030
QX_ERROR_CONNECTION_RESET = 12031
QX_ERROR_INCORRECT_PASSWORD = 12014
QX_ERROR_LOGIN_FAILURE = 12015
QX_ERROR_NAME_NOT_RESOLVED = 12007
QX_ERROR_REFUSED = 12003
QX_ERROR_SECURE_CHANNEL = 12157
QX_ERROR_TIMEOUT = 12002
QX_FOLDER_SIZE = 261
QX_LIST_FILES = 2
QX_LIST_FOLDERS = 3
QX_PATH_SIZE = 256
QX_SLOT_COUNT = 51
QX_SLOT_DESTRUCTOR = 3
QXProgress = CFUNCTYPE(c_uint8, c_char_p, c_uint32, c_uint32)


class QXFileTime(Structure):
    _fields_ = [
        ("nLow", c_uint32),
        ("nHigh", c_uint32),
    ]


class QXDirEntry(Structure):
    _fields_ = [
        ("bIsDirectory", c_uint8),
        ("szPath", c_char * 259),
        ("dwAttributes", c_uint32),
        ("ftCreationTime", QXFileTime),
        ("ftLastAccessTime", QXFileTime),
        ("ftLastWriteTime", QXFileTime),
        ("nFileSizeHigh", c_uint32),
        ("nFileSizeLow", c_uint32),
        ("aReserved", c_uint8 * 8),
        ("szName", c_char * 276),
    ]


class QXErrorInfo(Structure):
    _fields_ = [
        ("bSet", c_uint32),
        ("nCode", c_uint32),
        ("nError", c_uint32),
        ("szText", c_char * 4100),
    ]


class QXTransfer(Structure):
    _fields_ = [
        ("bValid", c_uint8),
        ("nTransferred", c_uint64),
        ("nTotal", c_uint64),
    ]


FillWipePattern = CFUNCTYPE(c_uint8, c_void_p, c_uint32, c_uint32)
WipeWith = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_uint32)
Wipe = CFUNCTYPE(c_uint8, c_void_p, c_char_p)
DeletingDestructor = CFUNCTYPE(c_void_p, c_void_p, c_uint32)
AddRef = CFUNCTYPE(c_uint32, c_void_p)
Release = CFUNCTYPE(c_uint32, c_void_p)
OnBeforeDisconnect = CFUNCTYPE(c_uint8, c_void_p)
OnAfterDisconnect = CFUNCTYPE(c_uint8, c_void_p)
OnIPError = CFUNCTYPE(None, c_void_p, c_uint32, c_char_p, POINTER(c_uint32))
OnAuthenticationFailed = CFUNCTYPE(None, c_void_p)
OnAuthenticationNeeded = CFUNCTYPE(None, c_void_p)
OnConnect = CFUNCTYPE(None, c_void_p)
OnDisconnect = CFUNCTYPE(None, c_void_p)
OnFailure = CFUNCTYPE(None, c_void_p)
OnSuccess = CFUNCTYPE(None, c_void_p)
OnTransactionStart = CFUNCTYPE(None, c_void_p)
OnTransactionStop = CFUNCTYPE(None, c_void_p)
OnStatus = CFUNCTYPE(None, c_void_p, c_char_p)
OnNotify = CFUNCTYPE(None, c_void_p, c_size_t)
OnPoll = CFUNCTYPE(c_uint8, c_void_p, c_size_t, c_size_t, c_size_t, POINTER(c_uint8))
OnStatusCallback = CFUNCTYPE(None, c_void_p, c_uint32, c_uint32, c_void_p)
HTTPDownloadFile = CFUNCTYPE(c_uint32, c_void_p, c_char_p, c_char_p, c_uint32, c_char_p, POINTER(c_uint64),
    c_size_t, c_size_t)
OnStatusText = CFUNCTYPE(None, c_void_p, c_char_p)
FTPSetFirewall = CFUNCTYPE(c_uint8, c_void_p, c_uint32, c_uint8, c_size_t)
FTPSetProxy = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32)
FTPSetLogin = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, c_char_p, c_uint32, c_uint8)
FTPConnect = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, c_char_p, c_uint32, c_uint8, c_uint32, c_void_p)
FTPReConnect = CFUNCTYPE(c_uint8, c_void_p, c_uint32, c_size_t)
FTPDisconnect = CFUNCTYPE(c_uint8, c_void_p)
FTPKeepAlive = CFUNCTYPE(None, c_void_p)
GetFinder = CFUNCTYPE(c_void_p, c_void_p, c_size_t, c_char_p)
FTPGetDirectory = CFUNCTYPE(c_uint8, c_void_p, c_char_p, POINTER(QXDirEntry), POINTER(c_uint32), c_char_p,
    c_uint32)
FTPDownloadFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, c_uint32)
FTPUploadFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, c_uint32)
FTPHasSubDir = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32)
FTPCountFolderItems = CFUNCTYPE(c_uint8, c_void_p, c_char_p, POINTER(c_uint32), POINTER(c_uint32), c_uint32)
FTPDirExist = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_size_t, c_size_t)
FTPFileExists = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_size_t, c_size_t)
FTPDestroyFileContent = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_uint32, c_size_t, c_size_t)
FTPCpyFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, QXProgress, c_uint32, c_size_t, c_size_t)
FTPMovFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, QXProgress, c_uint32, c_size_t, c_size_t)
FTPRmvFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_uint32, c_size_t, c_size_t)
FTPRmvDir = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_size_t, c_size_t)
FTPCreateDir = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_size_t, c_size_t)
FTPCreateNewDir = CFUNCTYPE(c_uint8, c_void_p, c_char_p, POINTER(c_char), c_char_p, c_uint32)
FTPIsDirectory = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_size_t, c_size_t)
FTPFileSize = CFUNCTYPE(c_uint32, c_void_p, c_char_p, c_uint32, c_size_t, c_size_t)
FTPWriteFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_void_p, c_uint32, c_uint8, c_uint32, c_uint32,
    c_size_t, c_size_t)
FTPReadFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, POINTER(c_void_p), POINTER(c_uint32), c_uint32, c_uint32,
    c_size_t, c_size_t)
FTPFreeFileAPI = CFUNCTYPE(c_uint8, c_void_p, c_void_p)
FTPRenameFile = CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, c_uint32)


class QXClientTable(Structure):
    _fields_ = [
        ("FillWipePattern", FillWipePattern),
        ("WipeWith", WipeWith),
        ("Wipe", Wipe),
        ("DeletingDestructor", DeletingDestructor),
        ("AddRef", AddRef),
        ("Release", Release),
        ("OnBeforeDisconnect", OnBeforeDisconnect),
        ("OnAfterDisconnect", OnAfterDisconnect),
        ("OnIPError", OnIPError),
        ("OnAuthenticationFailed", OnAuthenticationFailed),
        ("OnAuthenticationNeeded", OnAuthenticationNeeded),
        ("OnConnect", OnConnect),
        ("OnDisconnect", OnDisconnect),
        ("OnFailure", OnFailure),
        ("OnSuccess", OnSuccess),
        ("OnTransactionStart", OnTransactionStart),
        ("OnTransactionStop", OnTransactionStop),
        ("OnStatus", OnStatus),
        ("OnNotify", OnNotify),
        ("OnPoll", OnPoll),
        ("OnStatusCallback", OnStatusCallback),
        ("HTTPDownloadFile", HTTPDownloadFile),
        ("OnStatusText", OnStatusText),
        ("FTPSetFirewall", FTPSetFirewall),
        ("FTPSetProxy", FTPSetProxy),
        ("FTPSetLogin", FTPSetLogin),
        ("FTPConnect", FTPConnect),
        ("FTPReConnect", FTPReConnect),
        ("FTPDisconnect", FTPDisconnect),
        ("FTPKeepAlive", FTPKeepAlive),
        ("GetFinder", GetFinder),
        ("FTPGetDirectory", FTPGetDirectory),
        ("FTPDownloadFile", FTPDownloadFile),
        ("FTPUploadFile", FTPUploadFile),
        ("FTPHasSubDir", FTPHasSubDir),
        ("FTPCountFolderItems", FTPCountFolderItems),
        ("FTPDirExist", FTPDirExist),
        ("FTPFileExists", FTPFileExists),
        ("FTPDestroyFileContent", FTPDestroyFileContent),
        ("FTPCpyFile", FTPCpyFile),
        ("FTPMovFile", FTPMovFile),
        ("FTPRmvFile", FTPRmvFile),
        ("FTPRmvDir", FTPRmvDir),
        ("FTPCreateDir", FTPCreateDir),
        ("FTPCreateNewDir", FTPCreateNewDir),
        ("FTPIsDirectory", FTPIsDirectory),
        ("FTPFileSize", FTPFileSize),
        ("FTPWriteFile", FTPWriteFile),
        ("FTPReadFile", FTPReadFile),
        ("FTPFreeFileAPI", FTPFreeFileAPI),
        ("FTPRenameFile", FTPRenameFile),
    ]


class QXClientObject(Structure):
    _fields_ = [
        ("pTable", POINTER(QXClientTable)),
        ("m_nRefCount", c_uint32),
        ("m_nWipeSize", c_uint32),
        ("m_nWipeBlock", c_uint32),
        ("m_pWipePattern", POINTER(c_uint32)),
        ("m_bOption", c_uint8),
        ("m_Transfer", QXTransfer),
        ("m_pFileBuffer", POINTER(QXDirEntry)),
        ("m_RemoteSystem", c_char * 33),
        ("m_UserName", c_char * 65),
        ("m_Password", c_char * 258),
        ("m_nPort", c_uint32),
        ("m_bPassive", c_uint8),
        ("m_szMessage", c_char * 4144),
        ("m_bCreated", c_uint8),
        ("m_bInitialized", c_uint8),
        ("m_bConnected", c_uint8),
        ("m_bSpare", c_uint8),
        ("m_pFTPFileFind", c_void_p),
        ("m_pFTPDirFind", c_void_p),
        ("m_pFTPGetDir", c_void_p),
        ("m_pFTPFileSize", c_void_p),
        ("m_pFtpConnection", c_void_p),
        ("m_pInternetSession", c_void_p),
        ("m_pErrorInfo", POINTER(QXErrorInfo)),
    ]


class QXHooks(Structure):
    _fields_ = [
        ("aInFront", c_void_p * 2),
        ("Table", QXClientTable),
        ("pSelf", c_void_p),
        ("pOriginal", POINTER(QXClientTable)),
        ("pContext", c_void_p),
        ("bEnded", c_uint8),
    ]


EXPORTS = {
    "CreateQXIPIFInstance": CFUNCTYPE(c_void_p, POINTER(QXErrorInfo)),
    "FreeQXIPIFInstance": CFUNCTYPE(c_uint8, c_void_p),
    "DoFTPConnect": CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_char_p, c_char_p, c_uint32, c_uint8, c_uint32,
        c_void_p),
    "DllAddRef": CFUNCTYPE(c_uint32),
    "DllRelease": CFUNCTYPE(c_uint32),
}
DIALOG_EXPORTS = {
    "DoOpenFileDialog": CFUNCTYPE(c_uint8, c_void_p, c_void_p, c_void_p, POINTER(c_char), c_void_p, c_uint32,
        POINTER(c_void_p), POINTER(c_uint32), POINTER(c_void_p), POINTER(c_uint8)),
    "DoOpenDirFileDialog": CFUNCTYPE(c_uint8, c_char_p, c_char_p, c_void_p, POINTER(c_char), c_uint8, c_uint8,
        c_uint32, c_uint32, POINTER(c_void_p), POINTER(c_uint32), POINTER(c_void_p), POINTER(c_uint8)),
    "DoFreeDirFileDialog": CFUNCTYPE(c_uint8, c_void_p),
    "QXSelectFolder": CFUNCTYPE(c_uint8, POINTER(c_char)),
    "DoHtmlHelp": CFUNCTYPE(c_uint8, c_void_p, c_char_p, c_uint32, c_uint32),
}
# The raw part ends.

ON_WINDOWS = os.name == "nt"
LIBRARY_NAME = "ZRM_QXKT32x64.dll" if ON_WINDOWS else "libZRM_QXKT32x64.so.1"
# The library's narrow texts are of this code page; None: there is none, they are UTF-8 where they are text.
CODE_PAGE = "mbcs" if ON_WINDOWS else None
ESCAPES = "surrogateescape"


class Progress(NamedTuple):
    """How far a transfer is, in bytes."""

    is_known: bool  # False: no data has moved yet
    transferred: int
    total: int


class Report(NamedTuple):
    """What the library reported of one operation."""

    is_set: bool  # it wrote into the error record
    is_cancelled: bool
    number: int  # of the system, or from 12000 on (QX_ERROR_...); 0 in reports of the operation itself
    text: str  # of the record
    message: str  # the client's latest line


class Entry(NamedTuple):
    """One entry of a listing."""

    name: str
    is_directory: bool
    size: int  # 0 for a directory
    modified: Optional[datetime]  # as the server tells it; None where it tells none
    attributes: int


class QXError(Exception):
    """A failure, with its report; the text is the record's."""

    def __init__(self, report):
        super().__init__(report.text or report.message)
        self.report = report


class QXCancelled(QXError):
    """The operation was cancelled."""


def default_path(folder):
    """The library in the folder of this file, else the name for the system's loader, which on Windows ignores PATH."""
    beside = os.path.join(folder, LIBRARY_NAME)
    return beside if os.path.exists(beside) else LIBRARY_NAME


class Library:
    """The loaded library: its exports under their names, with the types of the headers."""

    def __init__(self, path=None):
        """`path`: of the file, or a name that the system's loader finds. Raises OSError where there is none."""
        loaded = ctypes.CDLL(os.fspath(path or default_path(os.path.dirname(os.path.abspath(__file__)))))
        exports = {**EXPORTS, **DIALOG_EXPORTS} if ON_WINDOWS else EXPORTS
        for name, kind in exports.items():
            setattr(self, name, kind((name, loaded)))


class Client:
    """A client of a server, which it reaches anew for each operation, or over one connection after connect()."""

    def __init__(self, library=None):
        self._address = None
        self._library = library or Library()
        self._record = QXErrorInfo()
        self._address = self._library.CreateQXIPIFInstance(byref(self._record))
        if not self._address:
            raise MemoryError("the library makes no client")
        self.retries = 0  # how often a failed attempt is repeated
        self.report = Report(False, False, 0, "", "")
        self._cancelled = False
        self._raised = None
        self._wanted = {}
        self._thunks = {"OnPoll": OnPoll(self._on_poll), "OnStatus": OnStatus(self._on_status),
                        "OnNotify": OnNotify(self._on_notify), "OnIPError": OnIPError(self._on_ip_error),
                        "OnConnect": OnConnect(self._on_connect), "OnDisconnect": OnDisconnect(self._on_disconnect)}
        self._hooks = self._install_hooks()

    def close(self):
        """Ends the client and what it does."""
        address, self._address = self._address, None
        if address:
            self._library.FreeQXIPIFInstance(address)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def __del__(self):
        self.close()

    @property
    def object(self):
        """The client's fields, for what this class lacks: a QXClientObject, valid as long as the client is."""
        return QXClientObject.from_address(self._living())

    def call(self, slot, *arguments):
        """Calls an operation by the name of its slot, with the types of the headers and without a report."""
        return getattr(self._hooks.Table, slot)(self._living(), *arguments)

    def use(self, poll=None, line=None, entry=None, error=None, connected=None, disconnected=None):
        """The hooks from now on; not within one of them.

        poll(progress)       again and again while the operation waits; True cancels
        line(text)           the protocol, line by line; no password is ever in it
        entry(entry)         each file of a listing
        error(number, text)  each internet error, also of attempts that are repeated
        connected(), disconnected()   a connection is being made, or closed
        """
        self._wanted = {"OnPoll": poll, "OnStatus": line, "OnNotify": entry, "OnIPError": error,
                        "OnConnect": connected, "OnDisconnect": disconnected}
        original = self._hooks.pOriginal.contents
        for slot, hook in self._wanted.items():
            own = self._thunks[slot] if hook or slot == "OnPoll" else getattr(original, slot)
            setattr(self._hooks.Table, slot, own)

    def cancel(self):
        """Cancels the operation that runs, from a hook or another thread; does nothing where none runs."""
        self._cancelled = True

    def set_login(self, host, user="anonymous", password="anonymous@", port=21, passive=True):
        """The login of the operations that follow. QXIPInt.h (slot 25) tells what `host` may say of encryption."""
        self._do("FTPSetLogin", to_bytes(host), to_bytes(user), to_bytes(password), port, passive)

    def connect(self, host, user="anonymous", password="anonymous@", port=21, passive=True):
        """Logs in, once for the queries and listings that follow."""
        self._do("FTPConnect", to_bytes(host), to_bytes(user), to_bytes(password), port, passive, 0, None)

    def disconnect(self):
        self._do("FTPDisconnect")

    def list(self, folder, pattern="*.*"):
        """The entries of a folder. One that is not there, or that the server refuses, has none."""
        return self._need(self._run(lambda: self._list(to_bytes(folder), to_bytes(pattern))))

    def count(self, folder):
        """How many (files, folders) there are."""
        files, folders = c_uint32(), c_uint32()
        self._do("FTPCountFolderItems", to_bytes(folder), byref(files), byref(folders), self.retries)
        return files.value, folders.value

    def file_exists(self, path):
        """No is an answer; not to know is a failure."""
        return self._ask("FTPFileExists", path)

    def directory_exists(self, path):
        return self._ask("FTPDirExist", path)

    def size(self, path):
        """Bytes modulo 2^32."""
        size = self._run(lambda: self.call("FTPFileSize", to_bytes(path), self.retries, 0, 0))
        return self._need(size if path and (size or not self.report.is_set) else None)

    def download(self, remote, local):
        """A remote file over a local one. A failure leaves in that what has come."""
        self._copy(to_bytes(remote), local_path(local))

    def upload(self, local, remote):
        """A local file over a remote one. The server is asked in the end whether it has all of it."""
        size = os.path.getsize(local)
        self._copy(local_path(local), to_bytes(remote))
        if size and self.size(remote) != size % 2**32:
            raise QXError(self.report._replace(text="the server has not got the whole file"))

    def copy(self, source, destination):
        """A remote file over another one, through this machine. That the server took all of it nobody knows."""
        self._copy(to_bytes(source), to_bytes(destination))

    def move(self, source, destination):
        """A remote file. It can be that the source stays: see FTPMovFile."""
        self._do("FTPMovFile", to_bytes(source), to_bytes(destination), QXProgress(), self.retries, 0, 0)

    def rename(self, old, new):
        self._do("FTPRenameFile", to_bytes(old), to_bytes(new), self.retries)

    def remove(self, path):
        self._do("FTPRmvFile", to_bytes(path), 0, self.retries, 0, 0)

    def remove_directory(self, path):
        """An empty one, or none: that is no failure. Not to know whether there is one is a failure."""
        removed = self._run(lambda: bool(self.call("FTPRmvDir", to_bytes(path), self.retries, 0, 0)))
        self._need(removed and self.report.number == 0)

    def create_directory(self, path):
        """With those above it. One that is there already is no failure."""
        self._do("FTPCreateDir", to_bytes(path), self.retries, 0, 0)

    def create_new_directory(self, parent, name):
        """The path of a directory that was not there: `name`, or "name (1)" and so on."""
        created = ctypes.create_string_buffer(QX_PATH_SIZE)
        self._do("FTPCreateNewDir", to_bytes(parent), created, to_bytes(name), self.retries)
        return to_text(created.value)

    def read(self, path):
        """A remote file's content, as bytes. One that is missing is a failure."""
        content = self._run(lambda: self._read(to_bytes(path)))
        return self._need(content if content or not self.report.is_set else None)

    def write(self, path, content):
        """Makes or replaces a remote file. No content is a failure."""
        self._write(path, content, False)

    def append(self, path, content):
        self._write(path, content, True)

    def _living(self):
        if not self._address:
            raise QXError(Report(True, False, 0, "there is no client", ""))
        return self._address

    # The client gets a copy of its table, as include/QXHooks.h has it, in which only what is hooked differs.
    def _install_hooks(self):
        hooks, client = QXHooks(), self.object
        original = ctypes.addressof(client.pTable.contents)
        in_front = QXHooks.Table.offset
        ctypes.memmove(byref(hooks), original - in_front, in_front + QXHooks.Table.size)
        hooks.pOriginal = client.pTable
        hooks.Table.OnPoll = self._thunks["OnPoll"]
        client.pTable = ctypes.pointer(hooks.Table)
        return hooks

    # What `operation` answers; self.report is that of this call afterwards.
    def _run(self, operation):
        client = self.object
        ctypes.memset(byref(self._record), 0, ctypes.sizeof(self._record))
        ctypes.memset(byref(client.m_Transfer), 0, ctypes.sizeof(client.m_Transfer))
        client.m_szMessage = b""
        self._cancelled, self._raised = False, None
        with self._interrupt_cancels():
            answer = operation()
        self.report = self._report()
        if self._raised:
            raise self._raised
        return answer

    def _report(self):
        record = self._record
        message = self.object.m_szMessage if self._address else b""
        return Report(bool(record.bSet & 0xFF), self._cancelled, record.nError, to_text(record.szText),
                      to_text(message))

    def _need(self, answer):
        """The answer of an operation, where it has one."""
        if not self._address or answer is None or answer is False:
            raise (QXCancelled if self.report.is_cancelled else QXError)(self.report)
        return answer

    def _do(self, slot, *arguments):
        self._need(self._run(lambda: bool(self.call(slot, *arguments))))

    def _ask(self, slot, path):
        answer = self._run(lambda: bool(self.call(slot, to_bytes(path), self.retries, 0, 0)))
        self._need(answer or self.report.number == 0)
        return answer

    def _copy(self, source, destination):
        self._do("FTPCpyFile", source, destination, QXProgress(), self.retries, 0, 0)

    def _list(self, folder, pattern):
        count = c_uint32()
        if not self.call("FTPGetDirectory", folder, None, byref(count), pattern, self.retries):
            return None
        entries = (QXDirEntry * (count.value + 1))()
        if not self.call("FTPGetDirectory", folder, entries, byref(count), pattern, 0):
            return None
        return [entry_of(entry) for entry in entries[:count.value]]

    def _read(self, path):
        data, size = c_void_p(), c_uint32()
        good = self.call("FTPReadFile", path, byref(data), byref(size), 0, self.retries, 0, 0)
        content = ctypes.string_at(data, size.value) if good and data else None
        if data:
            self.call("FTPFreeFileAPI", data)
        return b"" if good and content is None else content

    def _write(self, path, content, is_append):
        content = bytes(content)
        if len(content) >= 2**32:
            raise ValueError("more than 4 GiB less one byte")
        self._do("FTPWriteFile", to_bytes(path), content, len(content), is_append, 0, self.retries, 0, 0)

    # Python would raise where a hook begins, outside of what catches it, and drop it on the way into the library.
    @contextlib.contextmanager
    def _interrupt_cancels(self):
        is_main = threading.current_thread() is threading.main_thread()
        if not is_main or signal.getsignal(signal.SIGINT) is not signal.default_int_handler:
            yield
            return
        signal.signal(signal.SIGINT, lambda *_: self._keep(KeyboardInterrupt()))
        try:
            yield
        finally:
            signal.signal(signal.SIGINT, signal.default_int_handler)

    # No exception goes through the library: the first one is kept until the operation is over.
    def _keep(self, error):
        self._raised = self._raised or error

    def _tell(self, slot, *arguments):
        try:
            return self._wanted[slot](*arguments)
        except BaseException as error:
            self._keep(error)
            return None

    def _on_poll(self, _client, _first, _second, transfer, _reconnect):
        asks = self._wanted.get("OnPoll") and not (self._raised or self._cancelled)
        if asks and self._tell("OnPoll", progress_at(transfer)) or self._raised:
            self._cancelled = True
        return self._cancelled

    def _on_status(self, _client, text):
        self._tell("OnStatus", to_text(text))

    def _on_notify(self, _client, address):
        self._tell("OnNotify", entry_of(QXDirEntry.from_address(address)))

    def _on_ip_error(self, client, number, text, retries):
        self._hooks.pOriginal.contents.OnIPError(client, number, text, retries)
        self._tell("OnIPError", number, to_text(text or b""))

    def _on_connect(self, client):
        self._hooks.pOriginal.contents.OnConnect(client)
        self._tell("OnConnect")

    def _on_disconnect(self, client):
        self._hooks.pOriginal.contents.OnDisconnect(client)
        self._tell("OnDisconnect")


def progress_at(address):
    if not address:
        return Progress(False, 0, 0)
    counters = QXTransfer.from_address(address)
    return Progress(bool(counters.bValid), counters.nTransferred, counters.nTotal)


def entry_of(record):
    ticks = record.ftLastWriteTime.nHigh << 32 | record.ftLastWriteTime.nLow  # of 100 ns, since 1601
    modified = datetime(1601, 1, 1) + timedelta(microseconds=ticks // 10) if ticks else None
    size = record.nFileSizeHigh << 32 | record.nFileSizeLow
    return Entry(to_text(record.szName), bool(record.bIsDirectory), size, modified, record.dwAttributes)


def to_bytes(text):
    """A text as the library takes it: each part of a path in the code page, or in UTF-8 where that cannot be."""
    data = text if isinstance(text, bytes) else b"/".join(map(part_to_bytes, text.split("/")))
    if b"\0" in data:
        raise ValueError("a NUL in a text")
    return data


def to_text(data):
    """A text of the library's. What is UTF-8 is meant so: see QXIPInt.h."""
    return "/".join(map(part_to_text, data.split(b"/")))


def part_to_bytes(part):
    in_utf8 = part.encode("utf-8", ESCAPES)
    try:
        in_code_page = part.encode(CODE_PAGE or "ascii")
    except UnicodeEncodeError:
        return in_utf8
    return in_utf8 if is_utf8(in_code_page) else in_code_page


def part_to_text(part):
    return part.decode("utf-8", ESCAPES) if CODE_PAGE is None or is_utf8(part) else part.decode(CODE_PAGE, "replace")


def is_utf8(data):
    try:
        data.decode("utf-8")
    except UnicodeDecodeError:
        return False
    return True


def local_path(path):
    """A path of this system's, as FTPCpyFile knows it for a local one. Raises where the code page lacks a character."""
    full = os.path.abspath(os.fspath(path))
    data = full.encode(CODE_PAGE) if CODE_PAGE else b"Z:" + os.fsencode(full)
    if b"\0" in data:
        raise ValueError("a NUL in a path")
    return data
