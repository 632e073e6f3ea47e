// SPDX-License-Identifier: MIT
// The FTP client of ZRM_QXKT32x64 for Free Pascal and Delphi (x64): this one unit and the library.
//
//   Lib := TQXLibrary.Create('ZRM_QXKT32x64.dll');
//   Client := TQXClient.Create(Lib);
//   Client.SetLogin('ftp.example.org');
//   for Entry in Client.List('/pub') do Writeln(Entry.Name, ' ', Entry.Size);
//   Client.OnPoll := Form.ShowProgress;  // (Sender: TObject; const Position: TQXPosition; var Cancel: Boolean)
//   Client.Download('/pub/file', 'C:\file');
//   Client.Free;
//   Lib.Free;
//
// The operations are those of include/QXIPInt.h, which tells what they do. What differs:
//  - A failure raises EQXError, whose Report is the library's error record; a cancel raises EQXCancelled.
//    Client.Report is that of the latest operation, also after a success, which can have one, too: of an attempt that
//    was repeated.
//  - A name that is no text comes with lone surrogates and goes back as the bytes that it was. A NUL in a text is an
//    EArgumentException.
//  - One thread at a time uses a client.
//  - Cancel and an event that raises end an operation that asks the library's OnPoll, within moments: Read, Write,
//    Append, Copy, Download, Upload, Move, Remove and RemoveDirectory. All others end by themselves, in 30 s for each
//    word that a server owes. What an event has raised leaves the operation that called it.
//  - Events start no operation of their client and do not free it. OnPoll and OnEntry come on the thread that called
//    the operation, the others perhaps on one of the library's: use TThread.Queue or Synchronize for what shows them.
//  - The library outlives its clients. A program on Linux names cthreads, then cwstring before all other units.
unit QXClient;

{$IFDEF FPC}
  {$MODE DELPHI}
  {$PACKRECORDS C}
{$ELSE}
  {$ALIGN 8}
{$ENDIF}

interface

uses
  {$IFDEF MSWINDOWS} Windows, {$ELSE} dynlibs, {$ENDIF} SysUtils;

  // The raw part begins: the names and types of include/, written by tools/bindings.
const
  QX_ERROR_BUSY = 12110;
  QX_ERROR_CANNOT_CONNECT = 12029;
  QX_ERROR_CERTIFICATE_AUTHORITY = 12045;
  QX_ERROR_CERTIFICATE_DATE = 12037;
  QX_ERROR_CERTIFICATE_INVALID = 12169;
  QX_ERROR_CERTIFICATE_NAME = 12038;
  QX_ERROR_CERTIFICATE_REVOKED = 12170;
  QX_ERROR_CLIENT_CERTIFICATE = 12044;
  QX_ERROR_CONNECTION_ABORTED = 12030;
  QX_ERROR_CONNECTION_RESET = 12031;
  QX_ERROR_INCORRECT_PASSWORD = 12014;
  QX_ERROR_LOGIN_FAILURE = 12015;
  QX_ERROR_NAME_NOT_RESOLVED = 12007;
  QX_ERROR_REFUSED = 12003;
  QX_ERROR_SECURE_CHANNEL = 12157;
  QX_ERROR_TIMEOUT = 12002;
  QX_FOLDER_SIZE = 261;
  QX_LIST_FILES = 2;
  QX_LIST_FOLDERS = 3;
  QX_PATH_SIZE = 256;
  QX_SLOT_COUNT = 51;
  QX_SLOT_DESTRUCTOR = 3;
type
  PQXFileTime = ^TQXFileTime;
  PQXDirEntry = ^TQXDirEntry;
  PQXErrorInfo = ^TQXErrorInfo;
  PQXTransfer = ^TQXTransfer;
  PQXClientTable = ^TQXClientTable;
  PQXClientObject = ^TQXClientObject;
  PQXHooks = ^TQXHooks;
  TQXProgress = function(pszPath: PAnsiChar; nPercent, nReserved: Cardinal): Byte; cdecl;
  TQXFileTime = record
    nLow: Cardinal;
    nHigh: Cardinal;
  end;
  TQXDirEntry = record
    bIsDirectory: Byte;
    szPath: array[0..258] of AnsiChar;
    dwAttributes: Cardinal;
    ftCreationTime: TQXFileTime;
    ftLastAccessTime: TQXFileTime;
    ftLastWriteTime: TQXFileTime;
    nFileSizeHigh: Cardinal;
    nFileSizeLow: Cardinal;
    aReserved: array[0..7] of Byte;
    szName: array[0..275] of AnsiChar;
  end;
  TQXErrorInfo = record
    bSet: Cardinal;
    nCode: Cardinal;
    nError: Cardinal;
    szText: array[0..4099] of AnsiChar;
  end;
  TQXTransfer = record
    bValid: Byte;
    nTransferred: UInt64;
    nTotal: UInt64;
  end;
  TQXFillWipePattern = function(pClient: PQXClientObject; nValue, nCount: Cardinal): Byte; cdecl;
  TQXWipeWith = function(pClient: PQXClientObject; pszPath: PAnsiChar; nPattern, nRetries: Cardinal): Byte;
      cdecl;
  TQXWipe = function(pClient: PQXClientObject; pszPath: PAnsiChar): Byte; cdecl;
  TQXDeletingDestructor = function(pClient: PQXClientObject; nFlags: Cardinal): Pointer; cdecl;
  TQXAddRef = function(pClient: PQXClientObject): Cardinal; cdecl;
  TQXRelease = function(pClient: PQXClientObject): Cardinal; cdecl;
  TQXOnBeforeDisconnect = function(pClient: PQXClientObject): Byte; cdecl;
  TQXOnAfterDisconnect = function(pClient: PQXClientObject): Byte; cdecl;
  TQXOnIPError = procedure(pClient: PQXClientObject; nError: Cardinal; pszText: PAnsiChar;
      pRetries: PCardinal); cdecl;
  TQXOnAuthenticationFailed = procedure(pClient: PQXClientObject); cdecl;
  TQXOnAuthenticationNeeded = procedure(pClient: PQXClientObject); cdecl;
  TQXOnConnect = procedure(pClient: PQXClientObject); cdecl;
  TQXOnDisconnect = procedure(pClient: PQXClientObject); cdecl;
  TQXOnFailure = procedure(pClient: PQXClientObject); cdecl;
  TQXOnSuccess = procedure(pClient: PQXClientObject); cdecl;
  TQXOnTransactionStart = procedure(pClient: PQXClientObject); cdecl;
  TQXOnTransactionStop = procedure(pClient: PQXClientObject); cdecl;
  TQXOnStatus = procedure(pClient: PQXClientObject; pszText: PAnsiChar); cdecl;
  TQXOnNotify = procedure(pClient: PQXClientObject; nValue: NativeUInt); cdecl;
  TQXOnPoll = function(pClient: PQXClientObject; nPollArg1, nPollArg2, nTransfer: NativeUInt;
      pbReconnect: PByte): Byte; cdecl;
  TQXOnStatusCallback = procedure(pClient: PQXClientObject; nContext, nStatus: Cardinal;
      pInformation: Pointer); cdecl;
  TQXHTTPDownloadFile = function(pClient: PQXClientObject; pszServer, pszObject: PAnsiChar; nPort: Cardinal;
      pszLocalFile: PAnsiChar; pnLength: PUInt64; nPollArg1, nPollArg2: NativeUInt): Cardinal; cdecl;
  TQXOnStatusText = procedure(pClient: PQXClientObject; pszText: PAnsiChar); cdecl;
  TQXFTPSetFirewall = function(pClient: PQXClientObject; nKind: Cardinal; bFlag: Byte; nValue: NativeUInt):
      Byte; cdecl;
  TQXFTPSetProxy = function(pClient: PQXClientObject; pszProxy: PAnsiChar; nValue: Cardinal): Byte; cdecl;
  TQXFTPSetLogin = function(pClient: PQXClientObject; pszHost, pszUser, pszPassword: PAnsiChar;
      nPort: Cardinal; bPassive: Byte): Byte; cdecl;
  TQXFTPConnect = function(pClient: PQXClientObject; pszHost, pszUser, pszPassword: PAnsiChar;
      nPort: Cardinal; bPassive: Byte; nValue: Cardinal; pSession: Pointer): Byte; cdecl;
  TQXFTPReConnect = function(pClient: PQXClientObject; nRetries: Cardinal; nValue: NativeUInt): Byte; cdecl;
  TQXFTPDisconnect = function(pClient: PQXClientObject): Byte; cdecl;
  TQXFTPKeepAlive = procedure(pClient: PQXClientObject); cdecl;
  TQXGetFinder = function(pClient: PQXClientObject; nReserved: NativeUInt; pszName: PAnsiChar): Pointer;
      cdecl;
  TQXFTPGetDirectory = function(pClient: PQXClientObject; pszPath: PAnsiChar; pEntries: PQXDirEntry;
      pnCount: PCardinal; pszPattern: PAnsiChar; nRetries: Cardinal): Byte; cdecl;
  TQXFTPDownloadFile = function(pClient: PQXClientObject; pszRemote, pszLocal: PAnsiChar; nRetries: Cardinal):
      Byte; cdecl;
  TQXFTPUploadFile = function(pClient: PQXClientObject; pszRemote, pszLocal: PAnsiChar; nRetries: Cardinal):
      Byte; cdecl;
  TQXFTPHasSubDir = function(pClient: PQXClientObject; pszPath: PAnsiChar; nRetries: Cardinal): Byte; cdecl;
  TQXFTPCountFolderItems = function(pClient: PQXClientObject; pszPath: PAnsiChar; pnFiles,
      pnDirectories: PCardinal; nRetries: Cardinal): Byte; cdecl;
  TQXFTPDirExist = function(pClient: PQXClientObject; pszPath: PAnsiChar; nRetries: Cardinal; nPollArg1,
      nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPFileExists = function(pClient: PQXClientObject; pszPath: PAnsiChar; nRetries: Cardinal; nPollArg1,
      nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPDestroyFileContent = function(pClient: PQXClientObject; pszPath: PAnsiChar; nMethod,
      nRetries: Cardinal; nPollArg1, nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPCpyFile = function(pClient: PQXClientObject; pszSource, pszDestination: PAnsiChar;
      pfnProgress: TQXProgress; nRetries: Cardinal; nPollArg1, nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPMovFile = function(pClient: PQXClientObject; pszSource, pszDestination: PAnsiChar;
      pfnProgress: TQXProgress; nRetries: Cardinal; nPollArg1, nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPRmvFile = function(pClient: PQXClientObject; pszPath: PAnsiChar; nWipePasses, nRetries: Cardinal;
      nPollArg1, nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPRmvDir = function(pClient: PQXClientObject; pszPath: PAnsiChar; nRetries: Cardinal; nPollArg1,
      nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPCreateDir = function(pClient: PQXClientObject; pszPath: PAnsiChar; nRetries: Cardinal; nPollArg1,
      nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPCreateNewDir = function(pClient: PQXClientObject; pszParent, pszCreated, pszBaseName: PAnsiChar;
      nRetries: Cardinal): Byte; cdecl;
  TQXFTPIsDirectory = function(pClient: PQXClientObject; pszPath: PAnsiChar; nRetries: Cardinal; nPollArg1,
      nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPFileSize = function(pClient: PQXClientObject; pszPath: PAnsiChar; nRetries: Cardinal; nPollArg1,
      nPollArg2: NativeUInt): Cardinal; cdecl;
  TQXFTPWriteFile = function(pClient: PQXClientObject; pszPath: PAnsiChar; pData: Pointer; nSize: Cardinal;
      bAppend: Byte; nReserved, nRetries: Cardinal; nPollArg1, nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPReadFile = function(pClient: PQXClientObject; pszPath: PAnsiChar; ppData: PPointer; pnSize: PCardinal;
      nReserved, nRetries: Cardinal; nPollArg1, nPollArg2: NativeUInt): Byte; cdecl;
  TQXFTPFreeFileAPI = function(pClient: PQXClientObject; pData: Pointer): Byte; cdecl;
  TQXFTPRenameFile = function(pClient: PQXClientObject; pszOld, pszNew: PAnsiChar; nRetries: Cardinal): Byte;
      cdecl;
  TQXClientTable = record
    FillWipePattern: TQXFillWipePattern;
    WipeWith: TQXWipeWith;
    Wipe: TQXWipe;
    DeletingDestructor: TQXDeletingDestructor;
    AddRef: TQXAddRef;
    Release: TQXRelease;
    OnBeforeDisconnect: TQXOnBeforeDisconnect;
    OnAfterDisconnect: TQXOnAfterDisconnect;
    OnIPError: TQXOnIPError;
    OnAuthenticationFailed: TQXOnAuthenticationFailed;
    OnAuthenticationNeeded: TQXOnAuthenticationNeeded;
    OnConnect: TQXOnConnect;
    OnDisconnect: TQXOnDisconnect;
    OnFailure: TQXOnFailure;
    OnSuccess: TQXOnSuccess;
    OnTransactionStart: TQXOnTransactionStart;
    OnTransactionStop: TQXOnTransactionStop;
    OnStatus: TQXOnStatus;
    OnNotify: TQXOnNotify;
    OnPoll: TQXOnPoll;
    OnStatusCallback: TQXOnStatusCallback;
    HTTPDownloadFile: TQXHTTPDownloadFile;
    OnStatusText: TQXOnStatusText;
    FTPSetFirewall: TQXFTPSetFirewall;
    FTPSetProxy: TQXFTPSetProxy;
    FTPSetLogin: TQXFTPSetLogin;
    FTPConnect: TQXFTPConnect;
    FTPReConnect: TQXFTPReConnect;
    FTPDisconnect: TQXFTPDisconnect;
    FTPKeepAlive: TQXFTPKeepAlive;
    GetFinder: TQXGetFinder;
    FTPGetDirectory: TQXFTPGetDirectory;
    FTPDownloadFile: TQXFTPDownloadFile;
    FTPUploadFile: TQXFTPUploadFile;
    FTPHasSubDir: TQXFTPHasSubDir;
    FTPCountFolderItems: TQXFTPCountFolderItems;
    FTPDirExist: TQXFTPDirExist;
    FTPFileExists: TQXFTPFileExists;
    FTPDestroyFileContent: TQXFTPDestroyFileContent;
    FTPCpyFile: TQXFTPCpyFile;
    FTPMovFile: TQXFTPMovFile;
    FTPRmvFile: TQXFTPRmvFile;
    FTPRmvDir: TQXFTPRmvDir;
    FTPCreateDir: TQXFTPCreateDir;
    FTPCreateNewDir: TQXFTPCreateNewDir;
    FTPIsDirectory: TQXFTPIsDirectory;
    FTPFileSize: TQXFTPFileSize;
    FTPWriteFile: TQXFTPWriteFile;
    FTPReadFile: TQXFTPReadFile;
    FTPFreeFileAPI: TQXFTPFreeFileAPI;
    FTPRenameFile: TQXFTPRenameFile;
  end;
  TQXClientObject = record
    pTable: PQXClientTable;
    m_nRefCount: Cardinal;
    m_nWipeSize: Cardinal;
    m_nWipeBlock: Cardinal;
    m_pWipePattern: PCardinal;
    m_bOption: Byte;
    m_Transfer: TQXTransfer;
    m_pFileBuffer: PQXDirEntry;
    m_RemoteSystem: array[0..32] of AnsiChar;
    m_UserName: array[0..64] of AnsiChar;
    m_Password: array[0..257] of AnsiChar;
    m_nPort: Cardinal;
    m_bPassive: Byte;
    m_szMessage: array[0..4143] of AnsiChar;
    m_bCreated: Byte;
    m_bInitialized: Byte;
    m_bConnected: Byte;
    m_bSpare: Byte;
    m_pFTPFileFind: Pointer;
    m_pFTPDirFind: Pointer;
    m_pFTPGetDir: Pointer;
    m_pFTPFileSize: Pointer;
    m_pFtpConnection: Pointer;
    m_pInternetSession: Pointer;
    m_pErrorInfo: PQXErrorInfo;
  end;
  TQXHooks = record
    aInFront: array[0..1] of Pointer;
    Table: TQXClientTable;
    pSelf: PQXHooks;
    pOriginal: PQXClientTable;
    pContext: Pointer;
    bEnded: Byte;
  end;
  TQXCreateQXIPIFInstance = function(pErrorInfo: PQXErrorInfo): PQXClientObject; cdecl;
  TQXFreeQXIPIFInstance = function(pInstance: PQXClientObject): Byte; cdecl;
  TQXDoFTPConnect = function(pInstance: PQXClientObject; pszHost, pszUser, pszPassword: PAnsiChar;
      nPort: Cardinal; bPassive: Byte; nValue: Cardinal; pSession: Pointer): Byte; cdecl;
  TQXDllAddRef = function: Cardinal; cdecl;
  TQXDllRelease = function: Cardinal; cdecl;
  TQXDoOpenFileDialog = function(pReserved1, pReserved2, pReserved3: Pointer; pszPath: PAnsiChar;
      pUnused: Pointer; nFlags: Cardinal; ppPathList: PPAnsiChar; pnCount: PCardinal; ppDialog: PPointer;
      pbCancelled: PByte): Byte; cdecl;
  TQXDoOpenDirFileDialog = function(pszTitle, pszOkText: PAnsiChar; pReserved: Pointer; pszPath: PAnsiChar;
      bFiles, bOpen: Byte; nMode, nFlags: Cardinal; ppPathList: PPAnsiChar; pnCount: PCardinal;
      ppDialog: PPointer; pbCancelled: PByte): Byte; cdecl;
  TQXDoFreeDirFileDialog = function(pDialog: Pointer): Byte; cdecl;
  TQXSelectFolder = function(pszPath: PAnsiChar): Byte; cdecl;
  TQXDoHtmlHelp = function(hWindow: Pointer; pszFile: PAnsiChar; nCommand, nData: Cardinal): Byte; cdecl;
  TQXExports = record
    CreateQXIPIFInstance: TQXCreateQXIPIFInstance;
    FreeQXIPIFInstance: TQXFreeQXIPIFInstance;
    DoFTPConnect: TQXDoFTPConnect;
    DllAddRef: TQXDllAddRef;
    DllRelease: TQXDllRelease;
    DoOpenFileDialog: TQXDoOpenFileDialog;
    DoOpenDirFileDialog: TQXDoOpenDirFileDialog;
    DoFreeDirFileDialog: TQXDoFreeDirFileDialog;
    QXSelectFolder: TQXSelectFolder;
    DoHtmlHelp: TQXDoHtmlHelp;
  end;
const
  QXExportNames: array[0..9] of PAnsiChar = (
    'CreateQXIPIFInstance', 'FreeQXIPIFInstance', 'DoFTPConnect', 'DllAddRef', 'DllRelease',
        'DoOpenFileDialog', 'DoOpenDirFileDialog', 'DoFreeDirFileDialog', 'QXSelectFolder', 'DoHtmlHelp');
  // The raw part ends.

type
  // How far a transfer is, in bytes.
  TQXPosition = record
    IsKnown: Boolean;  // False: no data has moved yet
    Transferred, Total: UInt64;
  end;

  // What the library reported of one operation.
  TQXReport = record
    IsSet: Boolean;  // it wrote into the error record
    IsCancelled: Boolean;
    Number: Cardinal;  // of the system, or from 12000 on (QX_ERROR_...); 0 in reports of the operation itself
    Text: UnicodeString;  // of the record
    Message: UnicodeString;  // the client's latest line
  end;

  // One entry of a listing.
  TQXEntry = record
    Name: UnicodeString;
    IsDirectory: Boolean;
    Size: Int64;  // 0 for a directory
    Modified: TDateTime;  // as the server tells it; 0 where it tells none
    Attributes: Cardinal;
  end;
  TQXEntries = array of TQXEntry;

  // A failure, with its report; the message is the record's text.
  EQXError = class(Exception)
  private
    FReport: TQXReport;
  public
    constructor Create(const AReport: TQXReport);
    property Report: TQXReport read FReport;
  end;
  EQXCancelled = class(EQXError);

  TQXPollEvent = procedure(Sender: TObject; const Position: TQXPosition; var Cancel: Boolean) of object;
  TQXLineEvent = procedure(Sender: TObject; const Line: UnicodeString) of object;
  TQXEntryEvent = procedure(Sender: TObject; const Entry: TQXEntry) of object;
  TQXErrorEvent = procedure(Sender: TObject; Number: Cardinal; const Text: UnicodeString) of object;
  TQXNotifyEvent = procedure(Sender: TObject) of object;

  // The loaded library.
  TQXLibrary = class
  private
    FHandle: {$IFDEF MSWINDOWS} HMODULE {$ELSE} TLibHandle {$ENDIF};
    FExports: TQXExports;
  public
    // A path, or a name that the system's loader finds. Raises EInOutError where there is no such library.
    constructor Create(const FileName: UnicodeString);
    destructor Destroy; override;
    // Those of the dialogs are nil outside of Windows.
    property Calls: TQXExports read FExports;
  end;

  // A client of a server, which it reaches anew for each operation, or over one connection after Connect.
  TQXClient = class
  private
    FLibrary: TQXLibrary;
    FObject: PQXClientObject;
    FRecord: TQXErrorInfo;
    FHooks: TQXHooks;
    FReport: TQXReport;
    FRetries: Cardinal;
    FCancelled: Boolean;
    FRaised: Pointer;
    FOnPoll: TQXPollEvent;
    FOnLine: TQXLineEvent;
    FOnEntry: TQXEntryEvent;
    FOnError: TQXErrorEvent;
    FOnConnected, FOnDisconnected: TQXNotifyEvent;
    procedure InstallHooks;
    function Start: PQXClientTable;
    procedure Finish;
    procedure Need(Good: Boolean);
    procedure Done(Answer: Byte);
    function Yes(Answer: Byte): Boolean;
    procedure CopyFile(const Source, Destination: TBytes);
    function EntriesIn(Table: PQXClientTable; Folder, Pattern: PAnsiChar; out Entries: TQXEntries): Byte;
    procedure WriteFile(const Path: UnicodeString; const Content: TBytes; IsAppend: Byte);
    procedure Keep;
    function Poll(Transfer: PQXTransfer): Byte;
    procedure TellLine(Text: PAnsiChar);
    procedure TellEntry(Entry: PQXDirEntry);
    procedure TellError(Number: Cardinal; Text: PAnsiChar);
    procedure Tell(const Event: TQXNotifyEvent);
  public
    constructor Create(ALibrary: TQXLibrary);
    // Ends the client and what it does.
    destructor Destroy; override;

    // Cancels the operation that runs, from an event or another thread; does nothing where none runs.
    procedure Cancel;

    // The login of the operations that follow. QXIPInt.h (slot 25) tells what Host may say of encryption.
    procedure SetLogin(const Host: UnicodeString; const User: UnicodeString = 'anonymous';
      const Password: UnicodeString = 'anonymous@'; Port: Cardinal = 21; Passive: Boolean = True);
    // Logs in, once for the queries and listings that follow.
    procedure Connect(const Host: UnicodeString; const User: UnicodeString = 'anonymous';
      const Password: UnicodeString = 'anonymous@'; Port: Cardinal = 21; Passive: Boolean = True);
    procedure Disconnect;

    // The entries of a folder. One that is not there, or that the server refuses, has none.
    function List(const Folder: UnicodeString; const Pattern: UnicodeString = '*.*'): TQXEntries;
    // How many files and folders there are.
    procedure Count(const Folder: UnicodeString; out Files, Folders: Cardinal);
    // No is an answer; not to know is a failure.
    function FileExists(const Path: UnicodeString): Boolean;
    function DirectoryExists(const Path: UnicodeString): Boolean;
    // Bytes modulo 2^32.
    function Size(const Path: UnicodeString): Cardinal;

    // A remote file over a local one. A failure leaves in that what has come.
    procedure Download(const Remote, Local: UnicodeString);
    // A local file over a remote one. The server is asked in the end whether it has all of it.
    procedure Upload(const Local, Remote: UnicodeString);
    // A remote file over another one, through this machine. That the server took all of it nobody knows.
    procedure Copy(const Source, Destination: UnicodeString);
    // A remote file. It can be that the source stays: see FTPMovFile.
    procedure Move(const Source, Destination: UnicodeString);
    procedure Rename(const OldPath, NewPath: UnicodeString);
    procedure Remove(const Path: UnicodeString);
    // An empty one, or none: that is no failure. Not to know whether there is one is a failure.
    procedure RemoveDirectory(const Path: UnicodeString);
    // With those above it. One that is there already is no failure.
    procedure CreateDirectory(const Path: UnicodeString);
    // The path of a directory that was not there: Name, or "Name (1)" and so on.
    function CreateNewDirectory(const Parent, Name: UnicodeString): UnicodeString;

    // A remote file's content. One that is missing is a failure.
    function Read(const Path: UnicodeString): TBytes;
    // Makes or replaces a remote file. No content is a failure.
    procedure Write(const Path: UnicodeString; const Content: TBytes);
    procedure Append(const Path: UnicodeString; const Content: TBytes);

    property Report: TQXReport read FReport;
    property Retries: Cardinal read FRetries write FRetries;  // how often a failed attempt is repeated
    // For what this class lacks: Handle^.pTable^.FTPDirExist(Handle, ...), without a report.
    property Handle: PQXClientObject read FObject;

    // Set these between operations. Again and again while an operation waits; True in Cancel cancels.
    property OnPoll: TQXPollEvent read FOnPoll write FOnPoll;
    // The protocol, line by line; no password is ever in it.
    property OnLine: TQXLineEvent read FOnLine write FOnLine;
    // Each file of a listing.
    property OnEntry: TQXEntryEvent read FOnEntry write FOnEntry;
    // Each internet error, also of attempts that are repeated.
    property OnError: TQXErrorEvent read FOnError write FOnError;
    // A connection is being made, or closed.
    property OnConnected: TQXNotifyEvent read FOnConnected write FOnConnected;
    property OnDisconnected: TQXNotifyEvent read FOnDisconnected write FOnDisconnected;
  end;

// A text as the library takes it, with a NUL behind it: each part of a path in the code page, or in UTF-8 where that
// cannot be.
function QXBytes(const Text: UnicodeString): TBytes;
// A text of the library's; empty for nil.
function QXText(Data: PAnsiChar): UnicodeString;
// A path of this system's, as FTPCpyFile knows it for a local one. Raises where the code page lacks a character.
function QXLocalPath(const Path: UnicodeString): TBytes;

implementation

const
  Escaped = $DC00;  // and the byte: a character that stands for no text

// Texts

function SameBytes(const A, B: RawByteString): Boolean;
begin
  Result := (Length(A) = Length(B)) and CompareMem(Pointer(A), Pointer(B), Length(A));
end;

procedure AddBytes(var Bytes: TBytes; const More: RawByteString);
var
  Before: Integer;
begin
  Before := Length(Bytes);
  SetLength(Bytes, Before + Length(More));
  if Length(More) > 0 then System.Move(More[1], Bytes[Before], Length(More));
end;

function FromUtf8(const Data: RawByteString; out Text: UnicodeString): Boolean;
begin
  Text := UTF8Decode(Data);
  Result := SameBytes(UTF8Encode(Text), Data);
end;

function IsPairAt(const Text: UnicodeString; I: Integer): Boolean;
begin
  Result := (I < Length(Text)) and (Ord(Text[I]) and $FC00 = $D800) and (Ord(Text[I + 1]) and $FC00 = $DC00);
end;

procedure AddInUtf8(var Bytes: TBytes; const Text: UnicodeString);
var
  I, Count: Integer;
begin
  I := 1;
  while I <= Length(Text) do
  begin
    Count := 1 + Ord(IsPairAt(Text, I));
    if (Ord(Text[I]) >= Escaped + $80) and (Ord(Text[I]) <= Escaped + $FF) then
      AddBytes(Bytes, AnsiChar(Ord(Text[I]) - Escaped))
    else
      AddBytes(Bytes, UTF8Encode(System.Copy(Text, I, Count)));
    Inc(I, Count);
  end;
end;

{$IFDEF MSWINDOWS}
function FromCodePage(const Data: RawByteString): UnicodeString;
begin
  SetLength(Result, MultiByteToWideChar(CP_ACP, 0, PAnsiChar(Data), Length(Data), nil, 0));
  MultiByteToWideChar(CP_ACP, 0, PAnsiChar(Data), Length(Data), PWideChar(Result), Length(Result));
end;

// False where the code page lacks a character.
function InCodePage(const Text: UnicodeString; out Data: RawByteString): Boolean;
begin
  SetLength(Data, WideCharToMultiByte(CP_ACP, 0, PWideChar(Text), Length(Text), nil, 0, nil, nil));
  WideCharToMultiByte(CP_ACP, 0, PWideChar(Text), Length(Text), PAnsiChar(Data), Length(Data), nil, nil);
  Result := FromCodePage(Data) = Text;
end;
{$ELSE}
function FromCodePage(const Data: RawByteString): UnicodeString;
var
  I: Integer;
begin
  SetLength(Result, Length(Data));
  for I := 1 to Length(Data) do
    Result[I] := WideChar(Ord(Data[I]) + Escaped * Ord(Data[I] >= #$80));
end;

function InCodePage(const Text: UnicodeString; out Data: RawByteString): Boolean;
begin
  Data := '';
  Result := Text = '';
end;
{$ENDIF}

procedure AddPart(var Bytes: TBytes; const Part: UnicodeString);
var
  Data: RawByteString;
  Other: UnicodeString;
begin
  if InCodePage(Part, Data) and not FromUtf8(Data, Other) then
    AddBytes(Bytes, Data)
  else
    AddInUtf8(Bytes, Part);
end;

function PartText(First: PAnsiChar; Count: Integer): UnicodeString;
var
  Data: RawByteString;
begin
  SetString(Data, First, Count);
  if not FromUtf8(Data, Result) then Result := FromCodePage(Data);
end;

// The end of the part of a path that begins at First.
function EndOfPart(const Text: UnicodeString; First: Integer): Integer;
begin
  Result := First;
  while (Result <= Length(Text)) and (Text[Result] <> '/') do Inc(Result);
end;

procedure RefuseNul(const Text: UnicodeString);
begin
  if Pos(WideChar(#0), Text) > 0 then raise EArgumentException.Create('a NUL in a text');
end;

function QXBytes(const Text: UnicodeString): TBytes;
var
  First, Last: Integer;
begin
  RefuseNul(Text);
  Result := nil;
  First := 1;
  repeat
    Last := EndOfPart(Text, First);
    AddPart(Result, System.Copy(Text, First, Last - First));
    if Last <= Length(Text) then AddBytes(Result, '/');
    First := Last + 1;
  until Last > Length(Text);
  AddBytes(Result, #0);
end;

function QXText(Data: PAnsiChar): UnicodeString;
var
  Last: PAnsiChar;
begin
  Result := '';
  if Data = nil then Exit;
  repeat
    Last := Data;
    while not (Last^ in [#0, '/']) do Inc(Last);
    Result := Result + PartText(Data, Last - Data);
    if Last^ = '/' then Result := Result + '/';
    Data := Last + 1;
  until Last^ = #0;
end;

function QXLocalPath(const Path: UnicodeString): TBytes;
{$IFDEF MSWINDOWS}
var
  Data: RawByteString;
{$ENDIF}
begin
  RefuseNul(Path);
  Result := nil;
  {$IFDEF MSWINDOWS}
  if not InCodePage(ExpandFileName(Path), Data) then
    raise EArgumentException.Create('the code page lacks a character of the path');
  AddBytes(Result, Data);
  {$ELSE}
  AddInUtf8(Result, 'Z:' + ExpandFileName(Path));
  {$ENDIF}
  AddBytes(Result, #0);
end;

// What the table of a client has in place of the library's own functions

function ClientOf(pClient: PQXClientObject): TQXClient;
var
  Hooks: PQXHooks;
begin
  Hooks := PQXHooks(NativeUInt(pClient^.pTable) - NativeUInt(@PQXHooks(nil)^.Table));
  Result := TQXClient(Hooks^.pContext);
end;

function CallPoll(pClient: PQXClientObject; nPollArg1, nPollArg2, nTransfer: NativeUInt; pbReconnect: PByte): Byte;
  cdecl;
begin
  Result := ClientOf(pClient).Poll(PQXTransfer(nTransfer));
end;

procedure CallLine(pClient: PQXClientObject; pszText: PAnsiChar); cdecl;
begin
  ClientOf(pClient).TellLine(pszText);
end;

procedure CallEntry(pClient: PQXClientObject; nValue: NativeUInt); cdecl;
begin
  ClientOf(pClient).TellEntry(PQXDirEntry(nValue));
end;

procedure CallError(pClient: PQXClientObject; nError: Cardinal; pszText: PAnsiChar; pRetries: PCardinal); cdecl;
var
  Client: TQXClient;
begin
  Client := ClientOf(pClient);
  Client.FHooks.pOriginal^.OnIPError(pClient, nError, pszText, pRetries);
  Client.TellError(nError, pszText);
end;

procedure CallConnected(pClient: PQXClientObject); cdecl;
var
  Client: TQXClient;
begin
  Client := ClientOf(pClient);
  Client.FHooks.pOriginal^.OnConnect(pClient);
  Client.Tell(Client.FOnConnected);
end;

procedure CallDisconnected(pClient: PQXClientObject); cdecl;
var
  Client: TQXClient;
begin
  Client := ClientOf(pClient);
  Client.FHooks.pOriginal^.OnDisconnect(pClient);
  Client.Tell(Client.FOnDisconnected);
end;

{ EQXError }

constructor EQXError.Create(const AReport: TQXReport);
begin
  if AReport.Text <> '' then
    inherited Create(string(AReport.Text))
  else
    inherited Create(string(AReport.Message));
  FReport := AReport;
end;

{ TQXLibrary }

constructor TQXLibrary.Create(const FileName: UnicodeString);
var
  I: Integer;
  Addresses: PPointer;
begin
  FHandle := {$IFDEF MSWINDOWS} LoadLibraryW(PWideChar(FileName)) {$ELSE} LoadLibrary(FileName) {$ENDIF};
  if FHandle = 0 then raise EInOutError.Create(string(FileName) + ' cannot be loaded');
  Addresses := @FExports;
  for I := Low(QXExportNames) to High(QXExportNames) do
  begin
    Addresses^ := GetProcAddress(FHandle, QXExportNames[I]);
    Inc(Addresses);
  end;
  if not Assigned(FExports.CreateQXIPIFInstance) or not Assigned(FExports.FreeQXIPIFInstance) then
    raise EInOutError.Create(string(FileName) + ' lacks an export');
end;

destructor TQXLibrary.Destroy;
begin
  if FHandle <> 0 then FreeLibrary(FHandle);
  inherited Destroy;
end;

{ TQXClient }

constructor TQXClient.Create(ALibrary: TQXLibrary);
begin
  FLibrary := ALibrary;
  FObject := FLibrary.Calls.CreateQXIPIFInstance(@FRecord);
  if FObject = nil then raise EOutOfMemory.Create('the library makes no client');
  InstallHooks;
end;

destructor TQXClient.Destroy;
begin
  if FObject <> nil then FLibrary.Calls.FreeQXIPIFInstance(FObject);
  inherited Destroy;
end;

// The client gets a copy of its table, as include/QXHooks.h has it.
procedure TQXClient.InstallHooks;
var
  InFront: PPointer;
begin
  FHooks.pOriginal := FObject^.pTable;
  InFront := PPointer(FHooks.pOriginal);
  Dec(InFront, Length(FHooks.aInFront));
  System.Move(InFront^, FHooks, SizeOf(FHooks.aInFront) + SizeOf(FHooks.Table));
  FHooks.pSelf := @FHooks;
  FHooks.pContext := Self;
  FHooks.Table.OnPoll := @CallPoll;
  FHooks.Table.OnStatus := @CallLine;
  FHooks.Table.OnNotify := @CallEntry;
  FHooks.Table.OnIPError := @CallError;
  FHooks.Table.OnConnect := @CallConnected;
  FHooks.Table.OnDisconnect := @CallDisconnected;
  FObject^.pTable := @FHooks.Table;
end;

procedure TQXClient.Cancel;
begin
  FCancelled := True;
end;

// Before an operation: each one has a report and a progress of its own.
function TQXClient.Start: PQXClientTable;
begin
  FillChar(FRecord, SizeOf(FRecord), 0);
  FillChar(FObject^.m_Transfer, SizeOf(FObject^.m_Transfer), 0);
  FObject^.m_szMessage[0] := #0;
  FCancelled := False;
  Result := @FHooks.Table;
end;

// After it. Raises what an event has raised.
procedure TQXClient.Finish;
var
  Raised: TObject;
begin
  FReport.IsSet := FRecord.bSet and $FF <> 0;
  FReport.IsCancelled := FCancelled;
  FReport.Number := FRecord.nError;
  FReport.Text := QXText(FRecord.szText);
  FReport.Message := QXText(FObject^.m_szMessage);
  Raised := TObject(FRaised);
  FRaised := nil;
  if Raised <> nil then raise Raised;
end;

procedure TQXClient.Need(Good: Boolean);
begin
  if Good then Exit;
  if FReport.IsCancelled then raise EQXCancelled.Create(FReport);
  raise EQXError.Create(FReport);
end;

procedure TQXClient.Done(Answer: Byte);
begin
  Finish;
  Need(Answer <> 0);
end;

function TQXClient.Yes(Answer: Byte): Boolean;
begin
  Finish;
  Result := Answer <> 0;
  Need(Result or (FReport.Number = 0));
end;

procedure TQXClient.SetLogin(const Host, User, Password: UnicodeString; Port: Cardinal; Passive: Boolean);
begin
  Done(Start^.FTPSetLogin(FObject, Pointer(QXBytes(Host)), Pointer(QXBytes(User)), Pointer(QXBytes(Password)), Port,
    Ord(Passive)));
end;

procedure TQXClient.Connect(const Host, User, Password: UnicodeString; Port: Cardinal; Passive: Boolean);
begin
  Done(Start^.FTPConnect(FObject, Pointer(QXBytes(Host)), Pointer(QXBytes(User)), Pointer(QXBytes(Password)), Port,
    Ord(Passive), 0, nil));
end;

procedure TQXClient.Disconnect;
begin
  Done(Start^.FTPDisconnect(FObject));
end;

function EntryOf(const Item: TQXDirEntry): TQXEntry;
var
  Ticks: Int64;  // of 100 ns, since 1601
begin
  Result.Name := QXText(Item.szName);
  Result.IsDirectory := Item.bIsDirectory <> 0;
  Result.Size := Int64(Item.nFileSizeHigh) shl 32 or Item.nFileSizeLow;
  Ticks := Int64(Item.ftLastWriteTime.nHigh) shl 32 or Item.ftLastWriteTime.nLow;
  Result.Modified := 0;
  if Ticks <> 0 then Result.Modified := EncodeDate(1601, 1, 1) + Ticks div 10000000 / SecsPerDay;
  Result.Attributes := Item.dwAttributes;
end;

function TQXClient.EntriesIn(Table: PQXClientTable; Folder, Pattern: PAnsiChar; out Entries: TQXEntries): Byte;
var
  Number: Cardinal;
  Items: array of TQXDirEntry;
  I: Integer;
begin
  Entries := nil;
  Number := 0;
  Result := Table^.FTPGetDirectory(FObject, Folder, nil, @Number, Pattern, FRetries);
  if Result = 0 then Exit;
  SetLength(Items, Number + 1);
  Result := Table^.FTPGetDirectory(FObject, Folder, @Items[0], @Number, Pattern, 0);
  if Result = 0 then Exit;
  SetLength(Entries, Number);
  for I := 0 to High(Entries) do Entries[I] := EntryOf(Items[I]);
end;

function TQXClient.List(const Folder, Pattern: UnicodeString): TQXEntries;
begin
  Done(EntriesIn(Start, Pointer(QXBytes(Folder)), Pointer(QXBytes(Pattern)), Result));
end;

procedure TQXClient.Count(const Folder: UnicodeString; out Files, Folders: Cardinal);
begin
  Done(Start^.FTPCountFolderItems(FObject, Pointer(QXBytes(Folder)), @Files, @Folders, FRetries));
end;

function TQXClient.FileExists(const Path: UnicodeString): Boolean;
begin
  Result := Yes(Start^.FTPFileExists(FObject, Pointer(QXBytes(Path)), FRetries, 0, 0));
end;

function TQXClient.DirectoryExists(const Path: UnicodeString): Boolean;
begin
  Result := Yes(Start^.FTPDirExist(FObject, Pointer(QXBytes(Path)), FRetries, 0, 0));
end;

function TQXClient.Size(const Path: UnicodeString): Cardinal;
begin
  Result := Start^.FTPFileSize(FObject, Pointer(QXBytes(Path)), FRetries, 0, 0);
  Finish;
  Need((Path <> '') and ((Result <> 0) or not FReport.IsSet));
end;

procedure TQXClient.CopyFile(const Source, Destination: TBytes);
begin
  Done(Start^.FTPCpyFile(FObject, Pointer(Source), Pointer(Destination), nil, FRetries, 0, 0));
end;

procedure TQXClient.Download(const Remote, Local: UnicodeString);
begin
  CopyFile(QXBytes(Remote), QXLocalPath(Local));
end;

function SizeOfFile(const Path: UnicodeString): Int64;
var
  Opened: THandle;
begin
  Opened := FileOpen(Path, fmOpenRead or fmShareDenyNone);
  if Opened = THandle(-1) then raise EInOutError.Create(string(Path) + ' cannot be opened');
  Result := FileSeek(Opened, Int64(0), 2);
  FileClose(Opened);
end;

procedure TQXClient.Upload(const Local, Remote: UnicodeString);
var
  Whole: Int64;
begin
  Whole := SizeOfFile(Local);
  CopyFile(QXLocalPath(Local), QXBytes(Remote));
  if (Whole = 0) or (Size(Remote) = Whole and $FFFFFFFF) then Exit;
  FReport.Text := 'the server has not got the whole file';
  Need(False);
end;

procedure TQXClient.Copy(const Source, Destination: UnicodeString);
begin
  CopyFile(QXBytes(Source), QXBytes(Destination));
end;

procedure TQXClient.Move(const Source, Destination: UnicodeString);
begin
  Done(Start^.FTPMovFile(FObject, Pointer(QXBytes(Source)), Pointer(QXBytes(Destination)), nil, FRetries, 0, 0));
end;

procedure TQXClient.Rename(const OldPath, NewPath: UnicodeString);
begin
  Done(Start^.FTPRenameFile(FObject, Pointer(QXBytes(OldPath)), Pointer(QXBytes(NewPath)), FRetries));
end;

procedure TQXClient.Remove(const Path: UnicodeString);
begin
  Done(Start^.FTPRmvFile(FObject, Pointer(QXBytes(Path)), 0, FRetries, 0, 0));
end;

procedure TQXClient.RemoveDirectory(const Path: UnicodeString);
var
  Answer: Byte;
begin
  Answer := Start^.FTPRmvDir(FObject, Pointer(QXBytes(Path)), FRetries, 0, 0);
  Finish;
  Need((Answer <> 0) and (FReport.Number = 0));
end;

procedure TQXClient.CreateDirectory(const Path: UnicodeString);
begin
  Done(Start^.FTPCreateDir(FObject, Pointer(QXBytes(Path)), FRetries, 0, 0));
end;

function TQXClient.CreateNewDirectory(const Parent, Name: UnicodeString): UnicodeString;
var
  Created: array[0..QX_PATH_SIZE - 1] of AnsiChar;
begin
  Created[0] := #0;
  Done(Start^.FTPCreateNewDir(FObject, Pointer(QXBytes(Parent)), Created, Pointer(QXBytes(Name)), FRetries));
  Result := QXText(Created);
end;

function TQXClient.Read(const Path: UnicodeString): TBytes;
var
  Answer: Byte;
  Data: Pointer;
  Number: Cardinal;
begin
  Result := nil;
  Data := nil;
  Number := 0;
  Answer := Start^.FTPReadFile(FObject, Pointer(QXBytes(Path)), @Data, @Number, 0, FRetries, 0, 0);
  if Answer <> 0 then SetLength(Result, Number);
  if Result <> nil then System.Move(Data^, Result[0], Length(Result));
  if Data <> nil then FHooks.Table.FTPFreeFileAPI(FObject, Data);
  Finish;
  Need((Answer <> 0) and ((Result <> nil) or not FReport.IsSet));
end;

procedure TQXClient.WriteFile(const Path: UnicodeString; const Content: TBytes; IsAppend: Byte);
begin
  Done(Start^.FTPWriteFile(FObject, Pointer(QXBytes(Path)), Pointer(Content), Length(Content), IsAppend, 0, FRetries,
    0, 0));
end;

procedure TQXClient.Write(const Path: UnicodeString; const Content: TBytes);
begin
  WriteFile(Path, Content, 0);
end;

procedure TQXClient.Append(const Path: UnicodeString; const Content: TBytes);
begin
  WriteFile(Path, Content, 1);
end;

// No exception goes through the library: one is kept until the operation is over.
procedure TQXClient.Keep;
begin
  if FRaised = nil then FRaised := AcquireExceptionObject;
end;

function PositionAt(Transfer: PQXTransfer): TQXPosition;
begin
  FillChar(Result, SizeOf(Result), 0);
  if Transfer = nil then Exit;
  Result.IsKnown := Transfer^.bValid <> 0;
  Result.Transferred := Transfer^.nTransferred;
  Result.Total := Transfer^.nTotal;
end;

function TQXClient.Poll(Transfer: PQXTransfer): Byte;
var
  Wanted: Boolean;
begin
  Wanted := False;
  try
    if Assigned(FOnPoll) and not FCancelled and (FRaised = nil) then FOnPoll(Self, PositionAt(Transfer), Wanted);
  except
    Keep;
  end;
  if Wanted or (FRaised <> nil) then FCancelled := True;
  Result := Ord(FCancelled);
end;

procedure TQXClient.TellLine(Text: PAnsiChar);
begin
  try
    if Assigned(FOnLine) then FOnLine(Self, QXText(Text));
  except
    Keep;
  end;
end;

procedure TQXClient.TellEntry(Entry: PQXDirEntry);
begin
  try
    if Assigned(FOnEntry) then FOnEntry(Self, EntryOf(Entry^));
  except
    Keep;
  end;
end;

procedure TQXClient.TellError(Number: Cardinal; Text: PAnsiChar);
begin
  try
    if Assigned(FOnError) then FOnError(Self, Number, QXText(Text));
  except
    Keep;
  end;
end;

procedure TQXClient.Tell(const Event: TQXNotifyEvent);
begin
  try
    if Assigned(Event) then Event(Self);
  except
    Keep;
  end;
end;

initialization
  // The library's threads call events, and no unit of this language has started those.
  IsMultiThread := True;
end.
