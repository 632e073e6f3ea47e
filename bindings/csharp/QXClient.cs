// SPDX-License-Identifier: MIT
// The FTP client of ZRM_QXKT32x64 for C#: this one file (compiled with -unsafe) and the library, under .NET and Mono.
//
//   using (var client = new QX.Client()) {
//       client.SetLogin("ftp.example.org");
//       foreach (QX.Entry entry in client.List("/pub")) Console.WriteLine(entry.Name + " " + entry.Size);
//       client.Poll = progress => { Console.WriteLine(progress.Transferred); return false; };
//       client.Download("/pub/file", "file");
//   }
//
// The operations are those of include/QXIPInt.h, which tells what they do. What differs:
//  - A failure throws a ClientException, whose Report is the library's error record; a cancel throws a
//    CancelledException. client.Report is that of the latest operation, also after a success, which can have one, too:
//    of an attempt that was repeated.
//  - A name that is no text comes with lone surrogates and goes back as the bytes that it was. A NUL in a text is an
//    ArgumentException.
//  - One thread at a time uses a client.
//  - Cancel(), the token in Cancellation and a hook that throws end an operation that asks the library's OnPoll, within
//    moments: Read, Write, Append, Copy, Download, Upload, Move, Remove and RemoveDirectory. All others end by
//    themselves, in 30 s for each word that a server owes. What a hook has thrown leaves the operation that called it.
//  - Dispose(), from another thread or in a hook, ends whatever operation runs.
//  - Hooks start no operation of their client. They are set between operations. Poll and Listed come on the thread
//    that called the operation, the other hooks perhaps on one of the library's.
//  - A client ends by Dispose(), or with the object. Nothing that C# gets is the library's memory.
//  - The runtime looks for the library where it looks for others: beside the program, on PATH or in LD_LIBRARY_PATH.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;

namespace QX {

// The names and types of include/. Texts are bytes with a NUL behind them: see Texts.
public static unsafe class Raw {
    public const string LIBRARY = "ZRM_QXKT32x64";  // and what the system puts around a library's name

    // The raw part begins: written by tools/bindings.
    public const int QX_ERROR_BUSY = 12110;
    public const int QX_ERROR_CANNOT_CONNECT = 12029;
    public const int QX_ERROR_CERTIFICATE_AUTHORITY = 12045;
    public const int QX_ERROR_CERTIFICATE_DATE = 12037;
    public const int QX_ERROR_CERTIFICATE_INVALID = 12169;
    public const int QX_ERROR_CERTIFICATE_NAME = 12038;
    public const int QX_ERROR_CERTIFICATE_REVOKED = 12170;
    public const int QX_ERROR_CLIENT_CERTIFICATE = 12044;
    public const int QX_ERROR_CONNECTION_ABORTED = 12030;
    public const int QX_ERROR_CONNECTION_RESET = 12031;
    public const int QX_ERROR_INCORRECT_PASSWORD = 12014;
    public const int QX_ERROR_LOGIN_FAILURE = 12015;
    public const int QX_ERROR_NAME_NOT_RESOLVED = 12007;
    public const int QX_ERROR_REFUSED = 12003;
    public const int QX_ERROR_SECURE_CHANNEL = 12157;
    public const int QX_ERROR_TIMEOUT = 12002;
    public const int QX_FOLDER_SIZE = 261;
    public const int QX_LIST_FILES = 2;
    public const int QX_LIST_FOLDERS = 3;
    public const int QX_PATH_SIZE = 256;
    public const int QX_SLOT_COUNT = 51;
    public const int QX_SLOT_DESTRUCTOR = 3;
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte QXProgress(byte* pszPath, uint nPercent, uint nReserved);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FillWipePattern(QXClientObject* pClient, uint nValue, uint nCount);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte WipeWith(QXClientObject* pClient, byte* pszPath, uint nPattern, uint nRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte Wipe(QXClientObject* pClient, byte* pszPath);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void* DeletingDestructor(QXClientObject* pClient, uint nFlags);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate uint AddRef(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate uint Release(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte OnBeforeDisconnect(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte OnAfterDisconnect(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnIPError(QXClientObject* pClient, uint nError, byte* pszText, uint* pRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnAuthenticationFailed(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnAuthenticationNeeded(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnConnect(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnDisconnect(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnFailure(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnSuccess(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnTransactionStart(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnTransactionStop(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnStatus(QXClientObject* pClient, byte* pszText);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnNotify(QXClientObject* pClient, UIntPtr nValue);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte OnPoll(QXClientObject* pClient, UIntPtr nPollArg1, UIntPtr nPollArg2,
        UIntPtr nTransfer, byte* pbReconnect);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnStatusCallback(QXClientObject* pClient, uint nContext, uint nStatus,
        void* pInformation);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate uint HTTPDownloadFile(QXClientObject* pClient, byte* pszServer, byte* pszObject,
        uint nPort, byte* pszLocalFile, ulong* pnLength, UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void OnStatusText(QXClientObject* pClient, byte* pszText);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPSetFirewall(QXClientObject* pClient, uint nKind, byte bFlag, UIntPtr nValue);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPSetProxy(QXClientObject* pClient, byte* pszProxy, uint nValue);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPSetLogin(QXClientObject* pClient, byte* pszHost, byte* pszUser, byte* pszPassword,
        uint nPort, byte bPassive);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPConnect(QXClientObject* pClient, byte* pszHost, byte* pszUser, byte* pszPassword,
        uint nPort, byte bPassive, uint nValue, void* pSession);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPReConnect(QXClientObject* pClient, uint nRetries, UIntPtr nValue);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPDisconnect(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void FTPKeepAlive(QXClientObject* pClient);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void* GetFinder(QXClientObject* pClient, UIntPtr nReserved, byte* pszName);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPGetDirectory(QXClientObject* pClient, byte* pszPath, QXDirEntry* pEntries,
        uint* pnCount, byte* pszPattern, uint nRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPDownloadFile(QXClientObject* pClient, byte* pszRemote, byte* pszLocal,
        uint nRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPUploadFile(QXClientObject* pClient, byte* pszRemote, byte* pszLocal,
        uint nRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPHasSubDir(QXClientObject* pClient, byte* pszPath, uint nRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPCountFolderItems(QXClientObject* pClient, byte* pszPath, uint* pnFiles,
        uint* pnDirectories, uint nRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPDirExist(QXClientObject* pClient, byte* pszPath, uint nRetries, UIntPtr nPollArg1,
        UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPFileExists(QXClientObject* pClient, byte* pszPath, uint nRetries,
        UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPDestroyFileContent(QXClientObject* pClient, byte* pszPath, uint nMethod,
        uint nRetries, UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPCpyFile(QXClientObject* pClient, byte* pszSource, byte* pszDestination,
        IntPtr pfnProgress, uint nRetries, UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPMovFile(QXClientObject* pClient, byte* pszSource, byte* pszDestination,
        IntPtr pfnProgress, uint nRetries, UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPRmvFile(QXClientObject* pClient, byte* pszPath, uint nWipePasses, uint nRetries,
        UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPRmvDir(QXClientObject* pClient, byte* pszPath, uint nRetries, UIntPtr nPollArg1,
        UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPCreateDir(QXClientObject* pClient, byte* pszPath, uint nRetries,
        UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPCreateNewDir(QXClientObject* pClient, byte* pszParent, byte* pszCreated,
        byte* pszBaseName, uint nRetries);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPIsDirectory(QXClientObject* pClient, byte* pszPath, uint nRetries,
        UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate uint FTPFileSize(QXClientObject* pClient, byte* pszPath, uint nRetries, UIntPtr nPollArg1,
        UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPWriteFile(QXClientObject* pClient, byte* pszPath, void* pData, uint nSize,
        byte bAppend, uint nReserved, uint nRetries, UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPReadFile(QXClientObject* pClient, byte* pszPath, void** ppData, uint* pnSize,
        uint nReserved, uint nRetries, UIntPtr nPollArg1, UIntPtr nPollArg2);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPFreeFileAPI(QXClientObject* pClient, void* pData);
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate byte FTPRenameFile(QXClientObject* pClient, byte* pszOld, byte* pszNew, uint nRetries);
    [StructLayout(LayoutKind.Sequential)]
    public struct QXFileTime {
        public uint nLow;
        public uint nHigh;
    }
    [StructLayout(LayoutKind.Sequential)]
    public struct QXDirEntry {
        public byte bIsDirectory;
        public fixed byte szPath[259];
        public uint dwAttributes;
        public QXFileTime ftCreationTime;
        public QXFileTime ftLastAccessTime;
        public QXFileTime ftLastWriteTime;
        public uint nFileSizeHigh;
        public uint nFileSizeLow;
        public fixed byte aReserved[8];
        public fixed byte szName[276];
    }
    [StructLayout(LayoutKind.Sequential)]
    public struct QXErrorInfo {
        public uint bSet;
        public uint nCode;
        public uint nError;
        public fixed byte szText[4100];
    }
    [StructLayout(LayoutKind.Sequential)]
    public struct QXTransfer {
        public byte bValid;
        public ulong nTransferred;
        public ulong nTotal;
    }
    [StructLayout(LayoutKind.Sequential)]
    public struct QXClientTable {
        public IntPtr FillWipePattern;
        public IntPtr WipeWith;
        public IntPtr Wipe;
        public IntPtr DeletingDestructor;
        public IntPtr AddRef;
        public IntPtr Release;
        public IntPtr OnBeforeDisconnect;
        public IntPtr OnAfterDisconnect;
        public IntPtr OnIPError;
        public IntPtr OnAuthenticationFailed;
        public IntPtr OnAuthenticationNeeded;
        public IntPtr OnConnect;
        public IntPtr OnDisconnect;
        public IntPtr OnFailure;
        public IntPtr OnSuccess;
        public IntPtr OnTransactionStart;
        public IntPtr OnTransactionStop;
        public IntPtr OnStatus;
        public IntPtr OnNotify;
        public IntPtr OnPoll;
        public IntPtr OnStatusCallback;
        public IntPtr HTTPDownloadFile;
        public IntPtr OnStatusText;
        public IntPtr FTPSetFirewall;
        public IntPtr FTPSetProxy;
        public IntPtr FTPSetLogin;
        public IntPtr FTPConnect;
        public IntPtr FTPReConnect;
        public IntPtr FTPDisconnect;
        public IntPtr FTPKeepAlive;
        public IntPtr GetFinder;
        public IntPtr FTPGetDirectory;
        public IntPtr FTPDownloadFile;
        public IntPtr FTPUploadFile;
        public IntPtr FTPHasSubDir;
        public IntPtr FTPCountFolderItems;
        public IntPtr FTPDirExist;
        public IntPtr FTPFileExists;
        public IntPtr FTPDestroyFileContent;
        public IntPtr FTPCpyFile;
        public IntPtr FTPMovFile;
        public IntPtr FTPRmvFile;
        public IntPtr FTPRmvDir;
        public IntPtr FTPCreateDir;
        public IntPtr FTPCreateNewDir;
        public IntPtr FTPIsDirectory;
        public IntPtr FTPFileSize;
        public IntPtr FTPWriteFile;
        public IntPtr FTPReadFile;
        public IntPtr FTPFreeFileAPI;
        public IntPtr FTPRenameFile;
    }
    [StructLayout(LayoutKind.Sequential)]
    public struct QXClientObject {
        public QXClientTable* pTable;
        public uint m_nRefCount;
        public uint m_nWipeSize;
        public uint m_nWipeBlock;
        public uint* m_pWipePattern;
        public byte m_bOption;
        public QXTransfer m_Transfer;
        public QXDirEntry* m_pFileBuffer;
        public fixed byte m_RemoteSystem[33];
        public fixed byte m_UserName[65];
        public fixed byte m_Password[258];
        public uint m_nPort;
        public byte m_bPassive;
        public fixed byte m_szMessage[4144];
        public byte m_bCreated;
        public byte m_bInitialized;
        public byte m_bConnected;
        public byte m_bSpare;
        public void* m_pFTPFileFind;
        public void* m_pFTPDirFind;
        public void* m_pFTPGetDir;
        public void* m_pFTPFileSize;
        public void* m_pFtpConnection;
        public void* m_pInternetSession;
        public QXErrorInfo* m_pErrorInfo;
    }
    [StructLayout(LayoutKind.Sequential)]
    public struct QXHooks {
        public void* aInFront0;
        public void* aInFront1;
        public QXClientTable Table;
        public QXHooks* pSelf;
        public QXClientTable* pOriginal;
        public void* pContext;
        public byte bEnded;
    }
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern QXClientObject* CreateQXIPIFInstance(QXErrorInfo* pErrorInfo);
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern byte FreeQXIPIFInstance(QXClientObject* pInstance);
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern byte DoFTPConnect(QXClientObject* pInstance, byte* pszHost, byte* pszUser,
        byte* pszPassword, uint nPort, byte bPassive, uint nValue, void* pSession);
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern uint DllAddRef();
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern uint DllRelease();
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern byte DoOpenFileDialog(void* pReserved1, void* pReserved2, void* pReserved3,
        byte* pszPath, void* pUnused, uint nFlags, byte** ppPathList, uint* pnCount, void** ppDialog,
        byte* pbCancelled);
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern byte DoOpenDirFileDialog(byte* pszTitle, byte* pszOkText, void* pReserved,
        byte* pszPath, byte bFiles, byte bOpen, uint nMode, uint nFlags, byte** ppPathList, uint* pnCount,
        void** ppDialog, byte* pbCancelled);
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern byte DoFreeDirFileDialog(void* pDialog);
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern byte QXSelectFolder(byte* pszPath);
    [DllImport(LIBRARY, CallingConvention = CallingConvention.Cdecl)]
    public static extern byte DoHtmlHelp(void* hWindow, byte* pszFile, uint nCommand, uint nData);
    // The raw part ends.
}

// How far a transfer is, in bytes.
public struct Progress {
    public bool IsKnown;  // false: no data has moved yet
    public ulong Transferred;
    public ulong Total;
}

// What the library reported of one operation.
public sealed class Report {
    public bool IsSet;        // it wrote into the error record
    public bool IsCancelled;
    public uint Number;       // of the system, or from 12000 on (QX_ERROR_...); 0 in reports of the operation itself
    public string Text = "";  // of the record
    public string Message = "";  // the client's latest line
}

// One entry of a listing.
public sealed class Entry {
    public string Name;
    public bool IsDirectory;
    public long Size;           // 0 for a directory
    public DateTime? Modified;  // as the server tells it; null where it tells none
    public uint Attributes;
}

// A failure, with its report; the message is the record's text.
public class ClientException : Exception {
    public ClientException(Report report) : base(report.Text.Length > 0 ? report.Text : report.Message) {
        Report = report;
    }
    public Report Report { get; }
}

public sealed class CancelledException : ClientException {
    public CancelledException(Report report) : base(report) {}
}

// A client of a server, which it reaches anew for each operation, or over one connection after Connect().
public sealed unsafe class Client : IDisposable {
    public Client() {
        m_memory = Marshal.AllocHGlobal(sizeof(Memory));
        *Block = new Memory();
        m_client = (IntPtr)Raw.CreateQXIPIFInstance(&Block->Record);
        if (m_client == IntPtr.Zero) {
            LeaveMemory();
            throw new OutOfMemoryException("the library makes no client");
        }
        m_onPoll = OnPoll;
        m_onStatus = OnStatus;
        m_onNotify = OnNotify;
        m_onIPError = OnIPError;
        m_onConnect = OnConnect;
        m_onDisconnect = OnDisconnect;
        InstallHooks();
    }

    ~Client() { End(); }

    // Ends the client and what it does.
    public void Dispose() {
        End();
        GC.SuppressFinalize(this);
    }

    // How often a failed attempt is repeated.
    public uint Retries { get; set; }
    public Report Report { get; private set; } = new Report();
    public CancellationToken Cancellation { get; set; }

    // The client's object, for what this class lacks.
    public Raw.QXClientObject* Object {
        get {
            if (m_client == IntPtr.Zero) throw new ObjectDisposedException("QX.Client");
            return (Raw.QXClientObject*)m_client;
        }
    }

    // An operation by the name of its slot, with the types of the headers and without a report:
    // client.Slot<Raw.FTPDirExist>()(client.Object, ...).
    public T Slot<T>() where T : class { return InTable<T>(Object->pTable); }

    // The hooks. Again and again while an operation waits: true cancels.
    public Func<Progress, bool> Poll { get; set; }
    // The protocol, line by line; no password is ever in it.
    public Action<string> Line {
        get { return m_line; }
        set { m_line = value; Hook<Raw.OnStatus>(value, m_onStatus); }
    }
    // Each file of a listing.
    public Action<Entry> Listed {
        get { return m_listed; }
        set { m_listed = value; Hook<Raw.OnNotify>(value, m_onNotify); }
    }
    // Each internet error, also of attempts that are repeated.
    public Action<uint, string> Error {
        get { return m_error; }
        set { m_error = value; Hook<Raw.OnIPError>(value, m_onIPError); }
    }
    // A connection is being made, or closed.
    public Action Connected {
        get { return m_connected; }
        set { m_connected = value; Hook<Raw.OnConnect>(value, m_onConnect); }
    }
    public Action Disconnected {
        get { return m_disconnected; }
        set { m_disconnected = value; Hook<Raw.OnDisconnect>(value, m_onDisconnect); }
    }

    // Cancels the operation that runs, from a hook or another thread; does nothing where none runs.
    public void Cancel() { m_cancelled = true; }

    // The login of the operations that follow. QXIPInt.h (slot 25) tells what `host` may say of encryption.
    public void SetLogin(string host, string user = "anonymous", string password = "anonymous@", uint port = 21,
                         bool passive = true) {
        Do(texts => Slot<Raw.FTPSetLogin>()(Object, texts.Of(host), texts.Of(user), texts.Of(password), port,
                                            Flag(passive)));
    }

    // Logs in, once for the queries and listings that follow.
    public void Connect(string host, string user = "anonymous", string password = "anonymous@", uint port = 21,
                        bool passive = true) {
        Do(texts => Slot<Raw.FTPConnect>()(Object, texts.Of(host), texts.Of(user), texts.Of(password), port,
                                           Flag(passive), 0, null));
    }

    public void Disconnect() { Do(texts => Slot<Raw.FTPDisconnect>()(Object)); }

    // The entries of a folder. One that is not there, or that the server refuses, has none.
    public List<Entry> List(string folder, string pattern = "*.*") {
        List<Entry> entries = Run(texts => Listing(texts.Of(folder), texts.Of(pattern)));
        Need(entries != null);
        return entries;
    }

    // How many files and folders there are.
    public void Count(string folder, out uint files, out uint folders) {
        uint* counts = stackalloc uint[2];
        var address = (IntPtr)counts;  // lambdas have no stack of ours
        Do(texts => Slot<Raw.FTPCountFolderItems>()(Object, texts.Of(folder), (uint*)address, (uint*)address + 1,
                                                    Retries));
        files = counts[0];
        folders = counts[1];
    }

    // No is an answer; not to know is a failure.
    public bool FileExists(string path) {
        return Ask(texts => Slot<Raw.FTPFileExists>()(Object, texts.Of(path), Retries, NONE, NONE));
    }

    public bool DirectoryExists(string path) {
        return Ask(texts => Slot<Raw.FTPDirExist>()(Object, texts.Of(path), Retries, NONE, NONE));
    }

    // Bytes modulo 2^32.
    public uint Size(string path) {
        uint size = Run(texts => Slot<Raw.FTPFileSize>()(Object, texts.Of(path), Retries, NONE, NONE));
        Need(path != "" && (size != 0 || !Report.IsSet));
        return size;
    }

    // A remote file over a local one. A failure leaves in that what has come.
    public void Download(string remote, string local) {
        Copy(texts => texts.Of(remote), texts => texts.OfLocal(local));
    }

    // A local file over a remote one. The server is asked in the end whether it has all of it.
    public void Upload(string local, string remote) {
        long size = new FileInfo(local).Length;
        Copy(texts => texts.OfLocal(local), texts => texts.Of(remote));
        if (size == 0 || Size(remote) == unchecked((uint)size)) return;
        Report.Text = "the server has not got the whole file";
        Need(false);
    }

    // A remote file over another one, through this machine. That the server took all of it nobody knows.
    public void Copy(string source, string destination) {
        Copy(texts => texts.Of(source), texts => texts.Of(destination));
    }

    // A remote file. It can be that the source stays: see FTPMovFile.
    public void Move(string source, string destination) {
        Do(texts => Slot<Raw.FTPMovFile>()(Object, texts.Of(source), texts.Of(destination), IntPtr.Zero, Retries,
                                           NONE, NONE));
    }

    public void Rename(string from, string to) {
        Do(texts => Slot<Raw.FTPRenameFile>()(Object, texts.Of(from), texts.Of(to), Retries));
    }

    public void Remove(string path) {
        Do(texts => Slot<Raw.FTPRmvFile>()(Object, texts.Of(path), 0, Retries, NONE, NONE));
    }

    // An empty one, or none: that is no failure. Not to know whether there is one is a failure.
    public void RemoveDirectory(string path) {
        byte removed = Run(texts => Slot<Raw.FTPRmvDir>()(Object, texts.Of(path), Retries, NONE, NONE));
        Need(removed != 0 && Report.Number == 0);
    }

    // With those above it. One that is there already is no failure.
    public void CreateDirectory(string path) {
        Do(texts => Slot<Raw.FTPCreateDir>()(Object, texts.Of(path), Retries, NONE, NONE));
    }

    // The path of a directory that was not there: `name`, or "name (1)" and so on.
    public string CreateNewDirectory(string parent, string name) {
        byte* created = stackalloc byte[Raw.QX_PATH_SIZE];
        var address = (IntPtr)created;
        Do(texts => Slot<Raw.FTPCreateNewDir>()(Object, texts.Of(parent), (byte*)address, texts.Of(name), Retries));
        return Texts.ToText(created);
    }

    // A remote file's content. One that is missing is a failure.
    public byte[] Read(string path) {
        byte[] content = Run(texts => Content(texts.Of(path)));
        Need(content != null && (content.Length > 0 || !Report.IsSet));
        return content;
    }

    // Makes or replaces a remote file. No content is a failure.
    public void Write(string path, byte[] content) { Write(path, content, false); }

    public void Append(string path, byte[] content) { Write(path, content, true); }

    // What the library knows the addresses of. The client gets a copy of its table, as include/QXHooks.h has it.
    struct Memory {
        public Raw.QXErrorInfo Record;
        public Raw.QXHooks Hooks;
    }

    static readonly UIntPtr NONE = UIntPtr.Zero;

    Memory* Block { get { return (Memory*)m_memory; } }

    static byte Flag(bool value) { return (byte)(value ? 1 : 0); }

    static IntPtr* Place<T>(Raw.QXClientTable* table) {
        return (IntPtr*)((byte*)table + (int)Marshal.OffsetOf(typeof(Raw.QXClientTable), typeof(T).Name));
    }

    static T InTable<T>(Raw.QXClientTable* table) where T : class {
        return (T)(object)Marshal.GetDelegateForFunctionPointer(*Place<T>(table), typeof(T));
    }

    void InstallHooks() {
        Raw.QXHooks* hooks = &Block->Hooks;
        Raw.QXClientTable* original = Object->pTable;
        hooks->aInFront0 = ((void**)original)[-2];
        hooks->aInFront1 = ((void**)original)[-1];
        hooks->Table = *original;
        hooks->pOriginal = original;
        Object->pTable = &hooks->Table;
        Hook<Raw.OnPoll>(m_onPoll, m_onPoll);
    }

    // Without a hook of the host's the library's own function stays in the table.
    void Hook<T>(Delegate wanted, T own) where T : class {
        *Place<T>(Object->pTable) = wanted == null
            ? *Place<T>(Block->Hooks.pOriginal)
            : Marshal.GetFunctionPointerForDelegate((Delegate)(object)own);
    }

    void End() {
        IntPtr client = Interlocked.Exchange(ref m_client, IntPtr.Zero);
        if (client == IntPtr.Zero) return;
        Raw.FreeQXIPIFInstance((Raw.QXClientObject*)client);
        LeaveMemory();
    }

    // The client uses it until it has ended, in a hook perhaps or on another thread, and an operation until it is over.
    void LeaveMemory() {
        if (Interlocked.Decrement(ref m_users) == 0) Marshal.FreeHGlobal(m_memory);
    }

    // What `operation` answers; Report is that of this call afterwards.
    T Run<T>(Func<Texts, T> operation) {
        T answer;
        Begin();
        try {
            using (var texts = new Texts()) answer = operation(texts);
        } finally {
            Report = MakeReport();
            LeaveMemory();
        }
        if (m_thrown != null) ExceptionDispatchInfo.Capture(m_thrown).Throw();
        return answer;
    }

    void Begin() {
        Object->m_Transfer = new Raw.QXTransfer();
        Object->m_szMessage[0] = 0;
        Block->Record = new Raw.QXErrorInfo();
        m_cancelled = false;
        m_thrown = null;
        Interlocked.Increment(ref m_users);
    }

    Report MakeReport() {
        Raw.QXErrorInfo* record = &Block->Record;
        var client = (Raw.QXClientObject*)m_client;
        return new Report {
            IsSet = (record->bSet & 0xFF) != 0, IsCancelled = m_cancelled, Number = record->nError,
            Text = Texts.ToText(record->szText), Message = client != null ? Texts.ToText(client->m_szMessage) : ""
        };
    }

    void Need(bool good) {
        if (good && m_client != IntPtr.Zero) return;
        throw Report.IsCancelled ? new CancelledException(Report) : new ClientException(Report);
    }

    void Do(Func<Texts, byte> operation) { Need(Run(operation) != 0); }

    bool Ask(Func<Texts, byte> question) {
        bool yes = Run(question) != 0;
        Need(yes || Report.Number == 0);
        return yes;
    }

    delegate byte* Path(Texts texts);

    void Copy(Path source, Path destination) {
        Do(texts => Slot<Raw.FTPCpyFile>()(Object, source(texts), destination(texts), IntPtr.Zero, Retries,
                                           NONE, NONE));
    }

    List<Entry> Listing(byte* folder, byte* pattern) {
        uint count = 0;
        if (Slot<Raw.FTPGetDirectory>()(Object, folder, null, &count, pattern, Retries) == 0) return null;
        var records = new Raw.QXDirEntry[count + 1];
        fixed (Raw.QXDirEntry* first = records) {
            if (Slot<Raw.FTPGetDirectory>()(Object, folder, first, &count, pattern, 0) == 0) return null;
            var entries = new List<Entry>();
            for (uint i = 0; i < count; ++i) entries.Add(ToEntry(first + i));
            return entries;
        }
    }

    byte[] Content(byte* path) {
        void* data = null;
        uint size = 0;
        byte good = Slot<Raw.FTPReadFile>()(Object, path, &data, &size, 0, Retries, NONE, NONE);
        byte[] content = good != 0 ? new byte[size] : null;
        if (data == null) return content;
        if (content != null) Marshal.Copy((IntPtr)data, content, 0, content.Length);
        Slot<Raw.FTPFreeFileAPI>()(Object, data);
        return content;
    }

    void Write(string path, byte[] content, bool isAppend) {
        fixed (byte* data = content) {
            var address = (IntPtr)data;
            Do(texts => Slot<Raw.FTPWriteFile>()(Object, texts.Of(path), (void*)address, (uint)content.Length,
                                                 Flag(isAppend), 0, Retries, NONE, NONE));
        }
    }

    static Entry ToEntry(Raw.QXDirEntry* record) {
        long ticks = (long)record->ftLastWriteTime.nHigh << 32 | record->ftLastWriteTime.nLow;
        return new Entry {
            Name = Texts.ToText(record->szName), IsDirectory = record->bIsDirectory != 0,
            Size = (long)record->nFileSizeHigh << 32 | record->nFileSizeLow,
            Modified = ticks != 0 ? new DateTime(1601, 1, 1).AddTicks(ticks) : (DateTime?)null,
            Attributes = record->dwAttributes
        };
    }

    // No exception goes through the library: the first one is kept until the operation is over.
    void Tell(Action call) {
        try {
            call();
        } catch (Exception error) {
            Interlocked.CompareExchange(ref m_thrown, error, null);
        }
    }

    bool IsToStop(UIntPtr transfer) {
        if (m_cancelled || m_thrown != null || Cancellation.IsCancellationRequested) return true;
        return Poll != null && Poll(ProgressAt((Raw.QXTransfer*)transfer));
    }

    static Progress ProgressAt(Raw.QXTransfer* counters) {
        if (counters == null) return new Progress();
        return new Progress {
            IsKnown = counters->bValid != 0, Transferred = counters->nTransferred, Total = counters->nTotal
        };
    }

    byte OnPoll(Raw.QXClientObject* client, UIntPtr first, UIntPtr second, UIntPtr transfer, byte* reconnect) {
        bool isToStop = false;
        Tell(() => isToStop = IsToStop(transfer));
        if (isToStop) m_cancelled = true;
        return Flag(m_cancelled);
    }

    void OnStatus(Raw.QXClientObject* client, byte* text) { Tell(() => m_line(Texts.ToText(text))); }

    void OnNotify(Raw.QXClientObject* client, UIntPtr entry) {
        Tell(() => m_listed(ToEntry((Raw.QXDirEntry*)entry)));
    }

    void OnIPError(Raw.QXClientObject* client, uint number, byte* text, uint* retries) {
        InTable<Raw.OnIPError>(Block->Hooks.pOriginal)(client, number, text, retries);
        Tell(() => m_error(number, Texts.ToText(text)));
    }

    void OnConnect(Raw.QXClientObject* client) {
        InTable<Raw.OnConnect>(Block->Hooks.pOriginal)(client);
        Tell(() => m_connected());
    }

    void OnDisconnect(Raw.QXClientObject* client) {
        InTable<Raw.OnDisconnect>(Block->Hooks.pOriginal)(client);
        Tell(() => m_disconnected());
    }

    IntPtr m_memory;
    IntPtr m_client;
    int m_users = 1;  // of the memory
    volatile bool m_cancelled;
    Exception m_thrown;
    Action<string> m_line;
    Action<Entry> m_listed;
    Action<uint, string> m_error;
    Action m_connected;
    Action m_disconnected;
    // The table has their addresses: they live as long as the object.
    readonly Raw.OnPoll m_onPoll;
    readonly Raw.OnStatus m_onStatus;
    readonly Raw.OnNotify m_onNotify;
    readonly Raw.OnIPError m_onIPError;
    readonly Raw.OnConnect m_onConnect;
    readonly Raw.OnDisconnect m_onDisconnect;
}

// The texts that one call takes, and those that the library gives: each part of a path is UTF-8 where that is what its
// bytes say, else of the code page (Windows), or no text at all.
public sealed unsafe class Texts : IDisposable {
    public byte* Of(string text) { return Keep(ToBytes(text)); }

    // A path of this system's, as FTPCpyFile knows it for a local one. Throws where the code page lacks a character.
    public byte* OfLocal(string path) {
        string full = Path.GetFullPath(path);
        byte[] bytes = ON_WINDOWS ? InCodePage(full) : InUtf8("Z:" + full);
        if (bytes == null) throw new ArgumentException("the code page lacks a character of " + path);
        return Keep(bytes);
    }

    public void Dispose() {
        foreach (IntPtr block in m_blocks) Marshal.FreeHGlobal(block);
        m_blocks.Clear();
    }

    public static byte[] ToBytes(string text) {
        var bytes = new List<byte>();
        foreach (string part in text.Split('/')) {
            bytes.AddRange(PartToBytes(part));
            bytes.Add((byte)'/');
        }
        bytes.RemoveAt(bytes.Count - 1);
        return bytes.ToArray();
    }

    public static string ToText(byte[] bytes) {
        var parts = new List<string>();
        for (int first = 0, end; first <= bytes.Length; first = end + 1) {
            end = Array.IndexOf(bytes, (byte)'/', first);
            if (end < 0) end = bytes.Length;
            parts.Add(PartToText(bytes.Skip(first).Take(end - first).ToArray()));
        }
        return string.Join("/", parts);
    }

    // Empty for null.
    public static string ToText(byte* text) {
        int length = 0;
        while (text != null && text[length] != 0) ++length;
        var bytes = new byte[length];
        if (length > 0) Marshal.Copy((IntPtr)text, bytes, 0, length);
        return ToText(bytes);
    }

    static readonly bool ON_WINDOWS = Path.DirectorySeparatorChar == '\\';
    static readonly Encoding UTF8 = new UTF8Encoding(false, true);
    const char ESCAPED = '\uDC00';  // and the byte

    byte* Keep(byte[] bytes) {
        if (bytes.Contains((byte)0)) throw new ArgumentException("a NUL in a text");
        IntPtr block = Marshal.AllocHGlobal(bytes.Length + 1);
        m_blocks.Add(block);
        Marshal.Copy(bytes, 0, block, bytes.Length);
        ((byte*)block)[bytes.Length] = 0;
        return (byte*)block;
    }

    static byte[] PartToBytes(string part) {
        byte[] inCodePage = ON_WINDOWS ? InCodePage(part) : null;
        return inCodePage == null || FromUtf8(inCodePage) != null ? InUtf8(part) : inCodePage;
    }

    static string PartToText(byte[] part) {
        string text = FromUtf8(part);
        if (text != null) return text;
        if (!ON_WINDOWS) return string.Concat(part.Select(b => b < 0x80 ? (char)b : (char)(ESCAPED + b)));
        fixed (byte* bytes = part) return Marshal.PtrToStringAnsi((IntPtr)bytes, part.Length);
    }

    // Null for what is none.
    static string FromUtf8(byte[] bytes) {
        try {
            return UTF8.GetString(bytes);
        } catch (ArgumentException) {
            return null;
        }
    }

    static byte[] InUtf8(string text) {
        var bytes = new List<byte>();
        for (int i = 0, length; i < text.Length; i += length) {
            length = char.IsSurrogatePair(text, i) ? 2 : 1;
            if (text[i] >= ESCAPED + 0x80 && text[i] <= ESCAPED + 0xFF) bytes.Add((byte)(text[i] - ESCAPED));
            else bytes.AddRange(UTF8.GetBytes(text.Substring(i, length)));
        }
        return bytes.ToArray();
    }

    // Null where the code page lacks a character.
    static byte[] InCodePage(string text) {
        IntPtr ansi = Marshal.StringToHGlobalAnsi(text);
        try {
            if (Marshal.PtrToStringAnsi(ansi) != text) return null;
            int length = 0;
            while (((byte*)ansi)[length] != 0) ++length;
            var bytes = new byte[length];
            Marshal.Copy(ansi, bytes, 0, length);
            return bytes;
        } finally {
            Marshal.FreeHGlobal(ansi);
        }
    }

    readonly List<IntPtr> m_blocks = new List<IntPtr>();
}

}
