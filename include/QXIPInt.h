// SPDX-License-Identifier: MIT
// TQXIPIFInt, the client that CreateQXIPIFInstance hands to a host: 51 operations in fixed slots, then the
// object's fields. The common rules stand here, what differs at each operation. One thread at a time uses an
// object. 0 is a failure, except where the slot says otherwise; some failures are answered by 1, for hosts
// rely on that, and their slots say which.
//
// Who waits. An operation blocks its caller until it is over. What holds meanwhile, and what it leaves:
//
//   operation             slot  thread  connection  messages    OnPoll    tries  m_szMessage
//   HTTPDownloadFile      21    caller  web         dispatched  asked     1      kept
//   FTPConnect            26    caller  made        left        no        1      told
//   FTPKeepAlive          29    caller  object      dispatched  no        1      kept
//   FTPGetDirectory       31    caller  object      left        no        3      told
//   FTPDownloadFile       32    caller  own         left        no        3      failed
//   FTPUploadFile         33    caller  own         left        no        3      failed
//   FTPHasSubDir          34    caller  object      left        no        6      failed
//   FTPCountFolderItems   35    caller  object      left        no        6      failed
//   FTPDirExist           36    worker  object      dispatched  no        3      failed
//   FTPFileExists         37    worker  object      dispatched  no        3      failed
//   FTPCpyFile            39    worker  own         dispatched  counters  3      failed
//   FTPMovFile            40    worker  own         dispatched  counters  6      failed
//   FTPRmvFile            41    worker  own         dispatched  asked     3      failed
//   FTPRmvDir             42    worker  own         dispatched  asked     3      failed
//   FTPCreateDir          43    worker  own         dispatched  no        6      failed
//   FTPCreateNewDir       44    worker  own         dispatched  no        6      failed
//   FTPIsDirectory        45    worker  object      dispatched  no        3      failed
//   FTPFileSize           46    worker  object      dispatched  no        3      kept
//   FTPWriteFile          47    worker  own         dispatched  counters  3      failed
//   FTPReadFile           48    worker  own         dispatched  counters  3      failed
//   FTPRenameFile         50    caller  own         left        no        3      failed
//
//   thread       where its hooks come: on the caller's, or on that of a worker; OnPoll and OnNotify always
//                come on the caller's
//   connection   own: each attempt makes one, which ends with it; object: that of FTPConnect where there is
//                one, else as own; made: the object's own is made; web: a request of HTTP
//   messages     of the calling thread: dispatched one by one, or left lying
//   OnPoll       asked on every turn, with the address of the counters or without; a host may replace it
//                (QXHooks.h) to cancel. no: never asked
//   tries        so often it logs in at a server that refuses each login, where nRetries is 2 (1: it never
//                repeats; 6: it repeats one that repeats itself)
//   m_szMessage  failed: ends with the line that titles its failures, after a success too; told: says whether
//                it was one; kept: no line of its own, though a failure can leave one of OnIPError's
//
// All others return at once, but for the end of a client (slots 3 and 5), which stops what runs. What asks
// OnPoll ends within moments of its cancel, whatever the server does, answers 0 and reports that as any other
// failure; the rest ends by itself, but for slots 29 and 44: a server has 30 s to take a connection, for each
// reply, and for the next byte of data (12002).
//
// Arguments of the same name mean the same. pszPath is a path on the server. nRetries says how often a failed
// attempt is repeated (0 = one attempt), after a pause of 10 ms; without one in slots 36, 37 and 45, and
// where slots 34 and 35 repeat their listing. OnIPError may grant further attempts: in one call of an
// operation three at most, one of them after a time-out; none where the object's connection is dead and
// logging in again has failed. nPollArg1 and nPollArg2 go to OnPoll unchanged; what never asks it has no use
// for them, and nothing has one for nReserved.
//
// Login data is all that operations need (slot 25). FTPConnect spares those that work on its connection their
// logins. Where a server has too many logins for a moment (421 or 530, and a text that says so), an
// operation's own connection tries again within the attempt, after 250 ms, 500 ms and 1 s; FTPConnect fails
// at once.
//
// m_szMessage holds the latest line. Slots 26, 31 to 33, 39, 41 to 43, 47, 48 and 50 begin with one
// like "TQXIP::FTPRmvFile - IN: '/path'"; the line of a failure is "TQXIP::FTPRmvFile '/path' failed!".
//
// The error record (QXErrorInfo.h) keeps the first failure, but an internet error replaces it (slot 8). A
// success can leave a record: of an attempt that was repeated, or of a look that found nothing (slots 42 to
// 44, and what their comments tell). So a host zeroes it before an operation, and asks the answer first.
// nError is the number that OnIPError was told; it is 0 in most other reports, which have a number in their
// text alone: "[87 QXIP 9357]". Without a record there are no reports, and OnConnect, OnDisconnect and
// OnSuccess do not follow connections.
//
// A client may be freed (slots 5 and 3) at any moment: in each hook and callback, on the caller's thread or
// on a worker's, in a message that an operation dispatched, and from another thread. Its operations are
// stopped then and answer 0 without a line or a report; none of them touches the client once the freeing call
// has returned. Two rules for hosts: who has freed the client touches it no more on the way back (a hook, a
// function in another slot), and no call that the library made waits for the thread that frees the client,
// because that one waits for it. A client that ends is not kept by AddRef, and ends once.
//
// Remote paths: backslashes count as slashes, one trailing slash is dropped. A path of 4096 bytes or more, or
// with a control character, makes the operation fail before anything is sent (87). So does one of 256 bytes
// or more where its result has to fit the host: in slot 31, whose entries name the directory, and in slot 44.
// Local paths are those of the operating system, of up to 4095 bytes (Windows: above 259 characters too,
// without any prefix); on Linux "Z:/dir/file" (any letter) names "/dir/file". A message line that is longer
// than m_szMessage is cut between two characters.
//
// Characters outside ASCII, on Windows, at a server that speaks UTF-8 (FEAT offers UTF8, or OPTS UTF8 ON is
// taken): each component of a remote path is sent as it is when it is valid UTF-8, else it is taken for a
// text of the process's ANSI code page and sent as UTF-8. Names from the server come in the code page when it
// has all their characters; a name that it lacks, or that would look like UTF-8 there, comes in UTF-8. Either
// form names the same file when it is passed back. The server's words in reports come in the code page, too,
// where that can be. A server that does not speak UTF-8 gets and gives bytes; so does every server on Linux,
// and in a process whose code page is UTF-8. A name that is no UTF-8 comes as its bytes from any server; from
// one that speaks UTF-8 it cannot be passed back unless the code page is UTF-8.
//
// Appends, and copies from the server to the server, go through a file of the same name in the folder FTP
// below the user's temporary folder (Linux: $TMPDIR, else /tmp/zrm-qxkt-UID). On Linux the folder is the
// user's alone; where it is a link or somebody else's, they fail with 5. A name has one such file at a time,
// in all processes: a second operation that needs it fails its attempt with 32, and retries as its count
// allows.
//
// A name lookup cannot be broken off: one that an operation has given up goes on in the system. Until it
// ends, a library that the host unloads stays in memory; whatever else the library has started is over when
// its clients are gone.
#pragma once

#include "QXClientTable.h"
#include "QXDirEntry.h"
#include "QXErrorInfo.h"
#include "QXTypes.h"

class TQXIPIFInt {
 public:
  // Slots 0 to 2, and 38: content destruction, for hosts that put functions of their own here. The library's
  // own touch no file. No lines, no reports.
  // Fills m_pWipePattern[0 .. nCount) with nValue (1 = random values), on the caller's thread. The array is
  // the host's and must hold nCount values; null: nothing is filled. Always 1.
  virtual QXBool FillWipePattern(std::uint32_t nValue, std::uint32_t nCount) = 0;
  // Does nothing. Always 1.
  virtual QXBool WipeWith(const char* pszPath, std::uint32_t nPattern, std::uint32_t nRetries) = 0;
  // Calls WipeWith six times, with the patterns 0 and 0xFFFFFFFF in turn, and then with 1; one retry each. 0
  // for a null path and at the first call that fails, else the answer of the last one.
  virtual QXBool Wipe(const char* pszPath) = 0;

  // Slot 3: the destructor as Microsoft's x64 ABI has it: bit 0 of the flags frees the memory with the
  // library's allocator, the result is the object. A host of that ABI writes `delete p`; others use Release.
  // The end calls FTPDisconnect where m_bInitialized is not 0, whatever the count of references is, and
  // closes what is open.
#if defined(_MSC_VER)
  virtual ~TQXIPIFInt();
#else
  virtual void* DeletingDestructor(std::uint32_t nFlags) = 0;
#endif

  // Slots 4 and 5: the new count. At 0 Release destroys the object through slot 3; where the count is 0
  // already it answers 0 and does nothing.
  virtual std::uint32_t AddRef() = 0;
  virtual std::uint32_t Release() = 0;

  // Slots 6 to 20: event hooks. The library calls them; a host may, too. They come on the thread that does
  // the work, the caller's or a worker's. Where nothing else is said the library's own do nothing.
  // Slots 6 and 7 come around FTPDisconnect, which the end of the object calls, and around the freeing of a
  // block (slot 49); 7 also before OnIPError grants an attempt and behind a copy to a local file. Their
  // answer, 1, does not count.
  virtual QXBool OnBeforeDisconnect() = 0;
  virtual QXBool OnAfterDisconnect() = 0;
  // Reports an internet error: writes the line "TQXIP::OnIPError: 'text' (number)" and replaces the error
  // record. nError is a number from 12000 on or one of the system's; pszText, of up to 1023 bytes, lives for
  // the call alone and may be null. After a time-out (12002) or an aborted connection (12030) of a connected
  // object it raises *pRetries to at least 1. pRetries, the operation's counter, is null where none is
  // concerned, as for a login of an operation's own. A connection that has broken counts as connected still:
  // OnDisconnect comes when it is given up.
  virtual void OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) = 0;
  // Slots 9, 10 and 13 write a line and a report under it. The library calls none of them.
  virtual void OnAuthenticationFailed() = 0;
  virtual void OnAuthenticationNeeded() = 0;
  // A control connection is being made, an operation's own as well; FTPConnect calls it once more behind its
  // login. Sets m_bConnected, deletes the four finders and makes new ones on the object's connection, if any:
  // a finder that the host has got from GetFinder under one of their names is gone.
  virtual void OnConnect() = 0;
  // A control connection is closing, and again when it is closed. Clears m_bConnected.
  virtual void OnDisconnect() = 0;
  virtual void OnFailure() = 0;
  // A name was resolved, or a request has been answered.
  virtual void OnSuccess() = 0;
  // Never called by the library.
  virtual void OnTransactionStart() = 0;
  virtual void OnTransactionStop() = 0;
  // The protocol, line by line, for a host that puts a function of its own here: "> USER name", "> PASS
  // ****", "< 230 Welcome", "* connected to 192.0.2.1:21". pszText lives for the call alone. On the thread
  // that does the work, the caller's or one of the library's; lines that come while data moves are told when
  // it rests. No password is ever in them. What the library itself does here: nothing.
  virtual void OnStatus(const char* pszText) = 0;
  // A listing's files (slot 31): nValue is the address of a QXDirEntry.
  virtual void OnNotify(QXHostValue nValue) = 0;
  // Asked by the waiting caller's thread on every turn. Not 0 cancels the operation: the worker is stopped,
  // its connections close, and the operation answers 0. *pbReconnect = 1 abandons the worker and runs the
  // operation once more, with one retry; a cancel counts before it. The answer is 1 then only where the
  // abandoned worker had succeeded, too. In HTTPDownloadFile pbReconnect is null. nTransfer is the address of
  // m_Transfer in slots 39, 47 and 48, else 0. The library's own answers 0.
  virtual QXBool OnPoll(QXHostValue nPollArg1, QXHostValue nPollArg2, QXHostValue nTransfer,
                        QXBool* pbReconnect) = 0;
  // Hands the text of a status code to OnStatusText, "Unknown status: 7" of others; behind those of 10 and 11
  // is pInformation, a text or null; 40 and 70 have none. nContext has no use. Never called by the library.
  virtual void OnStatusCallback(std::uint32_t nContext, std::uint32_t nStatus, const void* pInformation) = 0;

  // Slot 21: one GET of pszObject from pszServer (a name or an address, one of IPv6 also in brackets; behind
  // "https://" the request is encrypted, port 0 means 443, and the options of slot 25 may follow) into
  // pszLocalFile, or, with pnLength, only the available length. Runs on the caller's thread. OnPoll is asked
  // and the caller's messages are dispatched for each 4096 bytes of the body, and after 50 ms at the latest
  // when fewer come; what has come is in the file by then. Where OnPoll is the library's own, a queue that
  // was empty is looked at again a millisecond later. A server that keeps the caller waiting before that
  // (name lookup, connecting, the head, and the length) has them asked and dispatched every 50 ms as well. A
  // cancel deletes the file once the body has begun; before that it leaves alone what has its name. Failures
  // of the network are shown in a message box; neither m_szMessage nor the error record is written. The one
  // operation whose result (1 or 0) has 32 bits. Works without login data. Any other status than 200, behind
  // one redirect (301 to 303), is a 0 in silence. Server and object count up to 255 bytes, a null object is
  // "/"; nPort modulo 65536, 0 is 80. The length is what has come of the body when it is asked. Where the
  // local file cannot be made or written, the call throws the library's file exception, a pointer to a class
  // that hosts cannot name, by a C++ runtime that is the library's own: std::uncaught_exceptions() of the
  // host counts wrong from then on. Make sure of the folder before.
  //   Proxies: as in slot 25, but an HTTP proxy gets the request with the whole address unless the server is
  // "https://"; a login that it wants and does not get (407) is a failure of the network.
  virtual std::uint32_t HTTPDownloadFile(const char* pszServer, const char* pszObject, std::uint32_t nPort,
                                         const char* pszLocalFile, std::uint64_t* pnLength,
                                         QXHostValue nPollArg1, QXHostValue nPollArg2) = 0;
  // Slot 22. pszText lives for the call alone.
  virtual void OnStatusText(const char* pszText) = 0;

  // Slots 23 to 30: connection. The first two write a line and a report, too.
  virtual QXBool FTPSetFirewall(std::uint32_t nKind, QXBool bFlag,
                                QXHostValue nValue) = 0;  // not supported: 0
  // Not supported: 0. The proxies that the system's settings name are used in any case (slot 25).
  virtual QXBool FTPSetProxy(const char* pszProxy, std::uint32_t nValue) = 0;
  // Stores login data; null user or password keeps what is stored. The host is a name or an address, perhaps
  // behind "ftp://"; an address of IPv6 may stand in brackets ("[::1]", "[fe80::1%eth0]").
  // Behind "ftpes://" the connection is encrypted before the login (AUTH TLS), behind "ftps://" from its
  // first byte (port 21 means 990 then); control and data alike, or the operation fails. Behind the name may
  // follow, each once, ";fingerprint=sha256:" and 64 hex digits (the certificate that the server must show,
  // in place of every other check), ";verify=no" (any certificate will do) and ";tls=1.2" (nothing newer):
  // "ftpes://ftp.example.org;tls=1.2". Any other option fails with 87 when a connection is made. Failures of
  // the encryption: 12037 (date), 12038 (name), 12044 (a client's certificate is wanted), 12045 (authority),
  // 12157 (handshake or record), 12169 (fingerprint, or invalid), 12170 (revoked), with a text that tells
  // what the certificate says. docs/security.md has more. Texts of at most 255 characters (host, user) and
  // 1023 (password) are kept whole. Where a field is too short for its text it shows the beginning, up to a
  // whole character, and the whole counts for as long as the field is left alone; the field itself, given
  // here again, stands for the whole. What a host writes into a field counts from then on. A longer text
  // leaves its field empty, and until the text is replaced no operation logs in: each fails with 87.
  //   ";progress=uploads" behind a name, also a plain one, has uploads move m_Transfer, too (QXTransfer).
  //   Proxies: where the system's settings name one for the host (Linux: ftp_proxy, all_proxy, no_proxy in
  // the environment; Windows: the user's Internet settings), every connection goes through it, by SOCKS 5 or
  // by CONNECT of an HTTP proxy. It resolves the host's name, and all data connections are passive then,
  // whatever bPassive says. What it refuses fails with 12029, one without an address with 12007, a silent one
  // with 12002, each with a text that names the proxy. docs/proxies.md has more.
  // Always 1.
  virtual QXBool FTPSetLogin(const char* pszHost, const char* pszUser, const char* pszPassword,
                             std::uint32_t nPort, QXBool bPassive) = 0;
  // Stores login data as slot 25 does and connects, after closing the connection that there was. nPort counts
  // modulo 65536. nValue is not used. A refused password is 12014, any other refusal at login 12015; no
  // answer is 12002, 12007 (name) or 12029, each through OnIPError with a null counter. The login data stays
  // after a failure. The message is "TQXIP::FTPConnect - OUT: OK!" or "... Failed!" in the end. pSession: a
  // session to use for this call instead of the object's own, or null. Fails, without connecting, when a
  // login text is too long (slot 25). Finders work on this connection, those of the queries and listings and
  // a host's own. Where the server has closed it, for its idleness for one, they log in again, once in a
  // search and without events, and go on; a log-in that fails is the failure of the search.
  virtual QXBool FTPConnect(const char* pszHost, const char* pszUser, const char* pszPassword,
                            std::uint32_t nPort, QXBool bPassive, std::uint32_t nValue,
                            TInternetSession* pSession) = 0;
  // Does nothing: 1. OnIPError asks it whether an attempt may follow; a host's own may answer 0.
  virtual QXBool FTPReConnect(std::uint32_t nRetries, QXHostValue nValue) = 0;
  // Forgets the login data of a connected object. Its connection stays, but nobody logs in on it again. Calls
  // slots 6, 12 (when connected) and 7. Writes no line. 0, with a report, where m_bInitialized is 0.
  virtual QXBool FTPDisconnect() = 0;
  // Blocks while m_bConnected is set, dispatching the caller's messages, in which the host may work with the
  // object. Ends when the server closes the connection, and when a message calls FTPDisconnect or frees the
  // client. No lines, no reports. It keeps the caller, not the connection: nothing is sent.
  virtual void FTPKeepAlive() = 0;
  // One of the object's four finders by the name of its field (any case); for another name a new finder on
  // the object's connection, which the caller owns; null for a null name and without a connection. nReserved
  // is not used. The object's own live until the next OnConnect.
  virtual CFtpFileFind* GetFinder(QXHostValue nReserved, const char* pszName) = 0;

  // Slot 31: a listing, by two calls. pszPattern: "*" and "*.*" are everything, ? is one character. *pnCount:
  // entries, 0 after a failure. A directory that is missing or that the server refuses lists as empty: 1 with
  // count 0; slot 36 tells. A listing that breaks off is a failure, never a shorter directory.
  //   With a null pEntries lists pszPath, keeps the entries and stores their number; with pEntries
  // copies *pnCount entries out and forgets them; it fails when asked for more than there are. Names that
  // begin with a dot are left out. OnNotify gets the QXDirEntry of each file, valid during that call, on this
  // thread, when the whole listing has come. The message is "TQXIP::FTPGetDirectory - IN: 'OK!'" or "...
  // 'Failed'" in the end. One listing at a time: in a hook that a listing calls, this and slots 34 and 35
  // fail with 12110.
  //   Links: an entry is what its link leads to, a file of size 0 where that is nowhere; its times are the
  // link's. Where the server does not tell, it is asked; of one listing about the first 64 links, the others
  // stay files of size 0. So for slots 34 to 36. A host that removes a whole tree calls FTPRmvDir for each
  // directory before it goes into it, and FTPRmvFile where that has failed: one of them removes a link, and
  // what it leads to stays. Some servers tell nobody that there is a link, and delete it as a file alone.
  //   Times: UTC where the server tells them so (MLSD, EPLF). A listing by LIST shows clocks of the server's
  // own zone: the time of one file is asked (MDTM), once for each server, login and process, and tells the
  // zone's present distance from UTC for all. Where it does not, and where only days are shown, times are as
  // the server shows them. MVS tells the day of the last reference.
  //   Sizes in other units than bytes: those of OpenVMS are whole blocks of 512 bytes; MVS's data sets and
  // members have size 0. Of several versions of a file (OpenVMS) the newest has the plain name.
  virtual QXBool FTPGetDirectory(const char* pszPath, QXDirEntry* pEntries, std::uint32_t* pnCount,
                                 const char* pszPattern, std::uint32_t nRetries) = 0;
  // Slots 32 and 33: whole files. What they lack in messages and OnPoll slot 39 has.
  // Where the server's last word on a transfer is lost its size decides: with all bytes there it is done.
  // An existing local file is not overwritten: 0, or 1 with the file as it was when the remote file is
  // missing, or its size cannot be told or is 0. A failure leaves no file of its own making. With nRetries >
  // 0 an attempt whose connection broke (12002, 12030, 12031) is followed by one that goes on behind what has
  // come, if the remote file's size and time are what they were; one that went on and brought nothing is
  // followed by one from the start. Until the call returns the local file is there in part.
  virtual QXBool FTPDownloadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) = 0;
  // Replaces the remote file. 1 also when the server refuses, breaks or stalls the upload of a file that has
  // content; an unreachable server, a refused login and a missing local file are failures.
  // FTPFileSize tells whether it has arrived. With nRetries > 0 a broken connection is followed by another
  // one, for a retry each, which goes on behind what the server has. The server's word that it has the file
  // is believed, but for two cases in which its size has to agree: the file came in parts, or the connection
  // of its data was reset.
  virtual QXBool FTPUploadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) = 0;
  // Slots 34 and 35, by both calls of slot 31; an earlier listing of the host's is forgotten. Names that
  // begin with a dot do not count. Slot 34 answers 1 where there is a directory, 0 also on every failure.
  // Slot 35: either count may be null, both are 0 after a failure.
  virtual QXBool FTPHasSubDir(const char* pszPath, std::uint32_t nRetries) = 0;
  virtual QXBool FTPCountFolderItems(const char* pszPath, std::uint32_t* pnFiles,
                                     std::uint32_t* pnDirectories, std::uint32_t nRetries) = 0;
  // Slots 36 and 37: 0 also on every failure. "Not there" is reported like one, but with nError 0; a question
  // that could not be asked leaves its number there. Names are compared without regard to the case of ASCII
  // letters. Slot 36 asks the parent's listing, the root is always there; slot 37 asks for the file itself.
  virtual QXBool FTPDirExist(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                             QXHostValue nPollArg2) = 0;
  virtual QXBool FTPFileExists(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                               QXHostValue nPollArg2) = 0;

  // Slots 38 to 44: changes on the server.
  // The library's own destroys nothing, like WipeWith and Wipe: 1. FTPRmvFile with wipe passes calls it
  // first, with them as nMethod.
  virtual QXBool FTPDestroyFileContent(const char* pszPath, std::uint32_t nMethod, std::uint32_t nRetries,
                                       QXHostValue nPollArg1, QXHostValue nPollArg2) = 0;
  // Slots 39 and 40: a file from one path to another, which it replaces. A path is local when it begins with
  // a drive letter and a colon or with two backslashes, or has one character (but "/"). Counters go up with
  // each 4096 bytes that come; an upload moves none unless the login asks for that (slot 25). pfnProgress may
  // be null. The callback runs on the worker's thread after every 4096 bytes that come from the server, and
  // before an upload; what it is told of is in the local file. 1 also when the callback has stopped the copy,
  // when the server has refused the upload (slot 33), and between two local paths, where nothing is copied.
  // Between two remote paths the content goes through a temporary file.
  // With nRetries > 0 a copy from the server goes on after a broken connection as slot 32 does. The
  // callback's figures go on with it: none is told twice, but where the copy begins anew they do so, too. A
  // failed copy leaves what has come in the local file.
  virtual QXBool FTPCpyFile(const char* pszSource, const char* pszDestination, QXProgress pfnProgress,
                            std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) = 0;
  // Slot 40 repeats both parts, the copy after a cancel as well while nRetries lasts.
  // A copy through slot 39, then the removal of the source, a remote one through slot 41. The source stays,
  // whatever the answer, when the copy is not known to be whole (those that are listed above), when the size
  // or the time of a local source has changed meanwhile, or when both remote paths may name one file: they
  // differ in slashes, "." and "..", or the case of letters alone. What a host's own function in slot 33 or
  // 39 calls done is taken for whole.
  virtual QXBool FTPMovFile(const char* pszSource, const char* pszDestination, QXProgress pfnProgress,
                            std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) = 0;
  // Slot 41. nWipePasses above 0: slot 38 is called first, on the worker's thread, and must not answer 0.
  virtual QXBool FTPRmvFile(const char* pszPath, std::uint32_t nWipePasses, std::uint32_t nRetries,
                            QXHostValue nPollArg1, QXHostValue nPollArg2) = 0;
  // Empty directories only. What FTPDirExist does not find counts as removed: 1 for a file, too, and where
  // nobody listens; the record tells. OnPoll is asked from the removal on, not during the first look. Of a
  // link to a directory the link is removed, where the server lists it as a link and lets it be deleted;
  // never what it leads to.
  virtual QXBool FTPRmvDir(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                           QXHostValue nPollArg2) = 0;
  // Makes the directories above as well. 1 also when the directory is there already.
  virtual QXBool FTPCreateDir(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                              QXHostValue nPollArg2) = 0;
  // Slot 44, through slots 36 and 43. Fails where pszParent is not there and when all names are taken.
  // nRetries goes to each of their calls, and repeats the whole. Takes the base name or the first of
  // "Name (1)" to "Name (999)" that is free. A name that is free but that
  // the server refuses is tried again, 10 ms later each time, until the server takes it: freeing the
  // client is the one way to end that. pszCreated receives the new directory's path: at least 256 characters;
  // a failure leaves it alone.
  virtual QXBool FTPCreateNewDir(const char* pszParent, char* pszCreated, const char* pszBaseName,
                                 std::uint32_t nRetries) = 0;

  // Slots 45 and 46. 0 without a line or a report for a null or empty path and where m_bInitialized is 0.
  // The answer of slot 36, to which it goes.
  virtual QXBool FTPIsDirectory(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                                QXHostValue nPollArg2) = 0;
  // Bytes modulo 2^32; 0 also on every failure and for a missing file, which leave a record. Writes no line
  // of its own, and does not look at what kind of thing the path names.
  virtual std::uint32_t FTPFileSize(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                                    QXHostValue nPollArg2) = 0;

  // Slots 47 and 48 move 4096 bytes each 20 ms, at most 200 KB a second; an append moves its file by slots 32
  // and 33.
  // With bAppend the data goes behind the content, which is fetched and sent again as a whole. The file is
  // opened for writing first: a server that lacks SIZE or REST empties it then, and the append fails, as it
  // does for a file that is missing or empty. An append of which the server refuses the upload answers 1.
  // nSize 0: 0. Without bAppend the file is replaced. pData is not changed and is read until the call
  // returns. The last chunk shows its own size in m_Transfer, not the sum; an append shows
  // nothing there unless the login asks for uploads (slot 25).
  virtual QXBool FTPWriteFile(const char* pszPath, const void* pData, std::uint32_t nSize, QXBool bAppend,
                              std::uint32_t nReserved, std::uint32_t nRetries, QXHostValue nPollArg1,
                              QXHostValue nPollArg2) = 0;
  // A file that is empty or missing, or whose size cannot be told, reads as empty: 1, *pnSize 0; the record
  // tells. One that has grown since reads as long as it was, one that ends early is a failure.
  // *ppData receives a block of *pnSize + 1 bytes, the last of which is not set (where it is the only one, it
  // is 0); give it back with FTPFreeFileAPI. Null after a failure, with one exception: after a reconnect that
  // OnPoll asked for, *ppData is what the second run left there, and the result can be 0 although that is a
  // block. So give back whatever is not null.
  virtual QXBool FTPReadFile(const char* pszPath, void** ppData, std::uint32_t* pnSize,
                             std::uint32_t nReserved, std::uint32_t nRetries, QXHostValue nPollArg1,
                             QXHostValue nPollArg2) = 0;
  // Gives a block of slot 48 back, whatever client made it, between calls of slots 6 and 7. Null is allowed;
  // always 1. No line, no report.
  virtual QXBool FTPFreeFileAPI(void* pData) = 0;
  // Slot 50, also into another directory. What becomes of a file that has the new name is the server's rule.
  virtual QXBool FTPRenameFile(const char* pszOld, const char* pszNew, std::uint32_t nRetries) = 0;

  // Fields. A host may read them between operations, and m_Transfer in OnPoll.
  std::uint32_t m_nRefCount;
  std::uint32_t m_nWipeSize;  // this and the next have no use here
  std::uint32_t m_nWipeBlock;
  std::uint32_t* m_pWipePattern;  // the host's array for FillWipePattern; null at first
  QXBool m_bOption;               // 1: listings search the bare pattern in the server's current directory
  QXTransfer m_Transfer;          // of slots 39, 47 and 48, also of 33 if asked for
  QXDirEntry* m_pFileBuffer;      // a pending listing; the library's
  char m_RemoteSystem[33];  // host name without scheme; this and the next two may show a beginning (slot 25)
  char m_UserName[65];
  char m_Password[258];
  std::uint32_t m_nPort;   // 21 at first; counts modulo 65536
  QXBool m_bPassive;       // 0 at first: the server connects for data
  char m_szMessage[4144];  // the latest message line
  QXBool m_bCreated;
  QXBool m_bInitialized;  // 0: the sockets did not start. What has a worker fails, and FTPConnect
  QXBool m_bConnected;    // of slots 11 and 12, so of an operation's own connections as well
  QXBool m_bSpare;
  CFtpFileFind* m_pFTPFileFind;  // four finders on the object's connection; null without one
  CFtpFileFind* m_pFTPDirFind;
  CFtpFileFind* m_pFTPGetDir;
  CFtpFileFind* m_pFTPFileSize;
  CFtpConnection* m_pFtpConnection;      // of FTPConnect
  TInternetSession* m_pInternetSession;  // the object's own
  QXErrorInfo* m_pErrorInfo;             // the host's, which outlives the object; null: no reports

 protected:
  // Only the library makes clients.
  TQXIPIFInt(QXErrorInfo* pErrorInfo, QXBool bOption);
#if !defined(_MSC_VER)
  ~TQXIPIFInt();
#endif
  TQXIPIFInt(const TQXIPIFInt&) = delete;
  TQXIPIFInt& operator=(const TQXIPIFInt&) = delete;
};

// offsetof needs a standard-layout type; the compilers this builds with compute it for this class all the
// same.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif
static_assert(offsetof(TQXIPIFInt, m_nRefCount) == 8 && offsetof(TQXIPIFInt, m_pWipePattern) == 24 &&
                  offsetof(TQXIPIFInt, m_bOption) == 32 && offsetof(TQXIPIFInt, m_Transfer) == 40 &&
                  offsetof(TQXIPIFInt, m_pFileBuffer) == 64 && offsetof(TQXIPIFInt, m_RemoteSystem) == 72 &&
                  offsetof(TQXIPIFInt, m_UserName) == 105 && offsetof(TQXIPIFInt, m_Password) == 170 &&
                  offsetof(TQXIPIFInt, m_nPort) == 428 && offsetof(TQXIPIFInt, m_bPassive) == 432 &&
                  offsetof(TQXIPIFInt, m_szMessage) == 433 && offsetof(TQXIPIFInt, m_bCreated) == 4577 &&
                  offsetof(TQXIPIFInt, m_bInitialized) == 4578 &&
                  offsetof(TQXIPIFInt, m_bConnected) == 4579 && offsetof(TQXIPIFInt, m_bSpare) == 4580 &&
                  offsetof(TQXIPIFInt, m_pFTPFileFind) == 4584 &&
                  offsetof(TQXIPIFInt, m_pFtpConnection) == 4616 &&
                  offsetof(TQXIPIFInt, m_pInternetSession) == 4624 &&
                  offsetof(TQXIPIFInt, m_pErrorInfo) == 4632 && sizeof(TQXIPIFInt) == 4640,
              "hosts read the fields by offset");
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
