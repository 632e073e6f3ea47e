// SPDX-License-Identifier: MIT
// The client as hosts without C++ see it: a table of 51 functions and the fields of the object, in C99. In C
// a TQXIPIFInt is a QXClientObject, and an operation is called through its table:
//
//   pClient->pTable->FTPDirExist(pClient, "/pub", 0, 0, 0)
//
// QXIPInt.h, which is the same in C++, describes each operation under the same name; its comments are for all
// hosts. Include QXExports.h for the functions that make and free clients, QXHooks.h to put functions of your
// own into the table of a client.
#pragma once

#include "QXDirEntry.h"
#include "QXErrorInfo.h"
#include "QXTypes.h"

// The library's own objects, of which a host knows nothing but their addresses.
#if defined(__cplusplus)
class CFtpConnection;
class CFtpFileFind;
class TInternetSession;
class TQXIPIFInt;
#else
typedef struct CFtpConnection CFtpConnection;
typedef struct CFtpFileFind CFtpFileFind;
typedef struct TInternetSession TInternetSession;
typedef struct QXClientObject TQXIPIFInt;
#endif

// Bytes moved by the latest transfer; written by the thread that moves them, read by the host in OnPoll. The
// library never sets it back: a host that shows progress zeroes m_Transfer before the operation.
//   Uploads (FTPUploadFile, and what FTPCpyFile, FTPMovFile and an append do by it) move it only where the
// login asks for that: "ftp.example.org;progress=uploads" (FTPSetLogin). nTotal is the file's size then, from
// when the server agrees to take the file, an empty one too. nTransferred begins at 0, or where an attempt
// goes on, and counts what the system has taken: the last bytes may be under way still, and never arrive. A
// copy between two paths on the server counts its way down and then its way up. FTPUploadFile asks no OnPoll,
// but another thread may read, each counter as a whole.
typedef struct QXTransfer {
  QXBool bValid;  // set once a chunk was moved, or an upload that tells has begun
  uint64_t nTransferred;
  uint64_t nTotal;
} QXTransfer;

// Called during a copy, on the worker's thread: the remote path, which lives for the call alone (a local one
// before an upload), the percentage (in 32 bits: it wraps above 42 MB), always 0. Not 0 asks the copy to
// stop.
typedef QXBool(QX_CALL* QXProgress)(const char* pszPath, uint32_t nPercent, uint32_t nReserved);

// The number of slots, and that of the one whose function ends the client.
#define QX_SLOT_COUNT 51
#define QX_SLOT_DESTRUCTOR 3

// The table. It belongs to the library, is the same for all clients and never changes.
typedef struct QXClientTable {
  // 0
  QXBool(QX_CALL* FillWipePattern)(TQXIPIFInt* pClient, uint32_t nValue, uint32_t nCount);
  QXBool(QX_CALL* WipeWith)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nPattern, uint32_t nRetries);
  QXBool(QX_CALL* Wipe)(TQXIPIFInt* pClient, const char* pszPath);
  void*(QX_CALL* DeletingDestructor)(TQXIPIFInt* pClient, uint32_t nFlags);
  uint32_t(QX_CALL* AddRef)(TQXIPIFInt* pClient);
  uint32_t(QX_CALL* Release)(TQXIPIFInt* pClient);
  QXBool(QX_CALL* OnBeforeDisconnect)(TQXIPIFInt* pClient);
  QXBool(QX_CALL* OnAfterDisconnect)(TQXIPIFInt* pClient);
  void(QX_CALL* OnIPError)(TQXIPIFInt* pClient, uint32_t nError, const char* pszText, uint32_t* pRetries);
  void(QX_CALL* OnAuthenticationFailed)(TQXIPIFInt* pClient);
  // 10
  void(QX_CALL* OnAuthenticationNeeded)(TQXIPIFInt* pClient);
  void(QX_CALL* OnConnect)(TQXIPIFInt* pClient);
  void(QX_CALL* OnDisconnect)(TQXIPIFInt* pClient);
  void(QX_CALL* OnFailure)(TQXIPIFInt* pClient);
  void(QX_CALL* OnSuccess)(TQXIPIFInt* pClient);
  void(QX_CALL* OnTransactionStart)(TQXIPIFInt* pClient);
  void(QX_CALL* OnTransactionStop)(TQXIPIFInt* pClient);
  void(QX_CALL* OnStatus)(TQXIPIFInt* pClient, const char* pszText);
  void(QX_CALL* OnNotify)(TQXIPIFInt* pClient, QXHostValue nValue);
  QXBool(QX_CALL* OnPoll)(TQXIPIFInt* pClient, QXHostValue nPollArg1, QXHostValue nPollArg2,
                          QXHostValue nTransfer, QXBool* pbReconnect);
  // 20
  void(QX_CALL* OnStatusCallback)(TQXIPIFInt* pClient, uint32_t nContext, uint32_t nStatus,
                                  const void* pInformation);
  uint32_t(QX_CALL* HTTPDownloadFile)(TQXIPIFInt* pClient, const char* pszServer, const char* pszObject,
                                      uint32_t nPort, const char* pszLocalFile, uint64_t* pnLength,
                                      QXHostValue nPollArg1, QXHostValue nPollArg2);
  void(QX_CALL* OnStatusText)(TQXIPIFInt* pClient, const char* pszText);
  QXBool(QX_CALL* FTPSetFirewall)(TQXIPIFInt* pClient, uint32_t nKind, QXBool bFlag, QXHostValue nValue);
  QXBool(QX_CALL* FTPSetProxy)(TQXIPIFInt* pClient, const char* pszProxy, uint32_t nValue);
  QXBool(QX_CALL* FTPSetLogin)(TQXIPIFInt* pClient, const char* pszHost, const char* pszUser,
                               const char* pszPassword, uint32_t nPort, QXBool bPassive);
  QXBool(QX_CALL* FTPConnect)(TQXIPIFInt* pClient, const char* pszHost, const char* pszUser,
                              const char* pszPassword, uint32_t nPort, QXBool bPassive, uint32_t nValue,
                              TInternetSession* pSession);
  QXBool(QX_CALL* FTPReConnect)(TQXIPIFInt* pClient, uint32_t nRetries, QXHostValue nValue);
  QXBool(QX_CALL* FTPDisconnect)(TQXIPIFInt* pClient);
  void(QX_CALL* FTPKeepAlive)(TQXIPIFInt* pClient);
  // 30
  CFtpFileFind*(QX_CALL* GetFinder)(TQXIPIFInt* pClient, QXHostValue nReserved, const char* pszName);
  QXBool(QX_CALL* FTPGetDirectory)(TQXIPIFInt* pClient, const char* pszPath, QXDirEntry* pEntries,
                                   uint32_t* pnCount, const char* pszPattern, uint32_t nRetries);
  QXBool(QX_CALL* FTPDownloadFile)(TQXIPIFInt* pClient, const char* pszRemote, const char* pszLocal,
                                   uint32_t nRetries);
  QXBool(QX_CALL* FTPUploadFile)(TQXIPIFInt* pClient, const char* pszRemote, const char* pszLocal,
                                 uint32_t nRetries);
  QXBool(QX_CALL* FTPHasSubDir)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nRetries);
  QXBool(QX_CALL* FTPCountFolderItems)(TQXIPIFInt* pClient, const char* pszPath, uint32_t* pnFiles,
                                       uint32_t* pnDirectories, uint32_t nRetries);
  QXBool(QX_CALL* FTPDirExist)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nRetries,
                               QXHostValue nPollArg1, QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPFileExists)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nRetries,
                                 QXHostValue nPollArg1, QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPDestroyFileContent)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nMethod,
                                         uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPCpyFile)(TQXIPIFInt* pClient, const char* pszSource, const char* pszDestination,
                              QXProgress pfnProgress, uint32_t nRetries, QXHostValue nPollArg1,
                              QXHostValue nPollArg2);
  // 40
  QXBool(QX_CALL* FTPMovFile)(TQXIPIFInt* pClient, const char* pszSource, const char* pszDestination,
                              QXProgress pfnProgress, uint32_t nRetries, QXHostValue nPollArg1,
                              QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPRmvFile)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nWipePasses,
                              uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPRmvDir)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nRetries,
                             QXHostValue nPollArg1, QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPCreateDir)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nRetries,
                                QXHostValue nPollArg1, QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPCreateNewDir)(TQXIPIFInt* pClient, const char* pszParent, char* pszCreated,
                                   const char* pszBaseName, uint32_t nRetries);
  QXBool(QX_CALL* FTPIsDirectory)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nRetries,
                                  QXHostValue nPollArg1, QXHostValue nPollArg2);
  uint32_t(QX_CALL* FTPFileSize)(TQXIPIFInt* pClient, const char* pszPath, uint32_t nRetries,
                                 QXHostValue nPollArg1, QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPWriteFile)(TQXIPIFInt* pClient, const char* pszPath, const void* pData, uint32_t nSize,
                                QXBool bAppend, uint32_t nReserved, uint32_t nRetries, QXHostValue nPollArg1,
                                QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPReadFile)(TQXIPIFInt* pClient, const char* pszPath, void** ppData, uint32_t* pnSize,
                               uint32_t nReserved, uint32_t nRetries, QXHostValue nPollArg1,
                               QXHostValue nPollArg2);
  QXBool(QX_CALL* FTPFreeFileAPI)(TQXIPIFInt* pClient, void* pData);
  // 50
  QXBool(QX_CALL* FTPRenameFile)(TQXIPIFInt* pClient, const char* pszOld, const char* pszNew,
                                 uint32_t nRetries);
} QXClientTable;

QX_ASSERT_LAYOUT(sizeof(QXClientTable) == QX_SLOT_COUNT * sizeof(void*), "one function for each slot");

// The object. QXIPInt.h tells what the fields are; a host may read them between operations.
typedef struct QXClientObject {
  const QXClientTable* pTable;
  uint32_t m_nRefCount;
  uint32_t m_nWipeSize;
  uint32_t m_nWipeBlock;
  uint32_t* m_pWipePattern;
  QXBool m_bOption;
  QXTransfer m_Transfer;
  QXDirEntry* m_pFileBuffer;
  char m_RemoteSystem[33];
  char m_UserName[65];
  char m_Password[258];
  uint32_t m_nPort;
  QXBool m_bPassive;
  char m_szMessage[4144];
  QXBool m_bCreated;
  QXBool m_bInitialized;
  QXBool m_bConnected;
  QXBool m_bSpare;
  CFtpFileFind* m_pFTPFileFind;
  CFtpFileFind* m_pFTPDirFind;
  CFtpFileFind* m_pFTPGetDir;
  CFtpFileFind* m_pFTPFileSize;
  CFtpConnection* m_pFtpConnection;
  TInternetSession* m_pInternetSession;
  QXErrorInfo* m_pErrorInfo;
} QXClientObject;

QX_ASSERT_LAYOUT(offsetof(QXClientObject, m_nRefCount) == 8 && offsetof(QXClientObject, m_Transfer) == 40 &&
                     offsetof(QXClientObject, m_RemoteSystem) == 72 &&
                     offsetof(QXClientObject, m_szMessage) == 433 &&
                     offsetof(QXClientObject, m_bConnected) == 4579 &&
                     offsetof(QXClientObject, m_pErrorInfo) == 4632 && sizeof(QXClientObject) == 4640,
                 "hosts read the fields by offset");
