// SPDX-License-Identifier: MIT
// TQXIP, the one implementation of the client interface. What it keeps besides the fields that hosts know
// lies behind them. Operations that touch the server are written as a few lines on the shared mechanisms:
// OperationRunner (the caller's side of an operation with a worker), WorkerFrame (the worker's side),
// PrivateConnection, SlotRetry.
#pragma once

#include "QXIPInt.h"
#include "Src/LoginText.h"

// The texts that a client logs in with.
struct LoginTexts {
  const char* host;
  const char* user;
  const char* password;
};

class TQXIP : public TQXIPIFInt {
 public:
  explicit TQXIP(QXErrorInfo* pErrorInfo, QXBool bOption = 0);

  QXBool FillWipePattern(std::uint32_t nValue, std::uint32_t nCount) override;
  QXBool WipeWith(const char* pszPath, std::uint32_t nPattern, std::uint32_t nRetries) override;
  QXBool Wipe(const char* pszPath) override;
  void* DeletingDestructor(std::uint32_t nFlags) override;
  std::uint32_t AddRef() override;
  std::uint32_t Release() override;

  QXBool OnBeforeDisconnect() override;
  QXBool OnAfterDisconnect() override;
  void OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) override;
  void OnAuthenticationFailed() override;
  void OnAuthenticationNeeded() override;
  void OnConnect() override;
  void OnDisconnect() override;
  void OnFailure() override;
  void OnSuccess() override;
  void OnTransactionStart() override;
  void OnTransactionStop() override;
  void OnStatus(const char* pszText) override;
  void OnNotify(QXHostValue nValue) override;
  QXBool OnPoll(QXHostValue nPollArg1, QXHostValue nPollArg2, QXHostValue nTransfer,
                QXBool* pbReconnect) override;
  void OnStatusCallback(std::uint32_t nContext, std::uint32_t nStatus, const void* pInformation) override;
  std::uint32_t HTTPDownloadFile(const char* pszServer, const char* pszObject, std::uint32_t nPort,
                                 const char* pszLocalFile, std::uint64_t* pnLength, QXHostValue nPollArg1,
                                 QXHostValue nPollArg2) override;
  void OnStatusText(const char* pszText) override;

  QXBool FTPSetFirewall(std::uint32_t nKind, QXBool bFlag, QXHostValue nValue) override;
  QXBool FTPSetProxy(const char* pszProxy, std::uint32_t nValue) override;
  QXBool FTPSetLogin(const char* pszHost, const char* pszUser, const char* pszPassword, std::uint32_t nPort,
                     QXBool bPassive) override;
  QXBool FTPConnect(const char* pszHost, const char* pszUser, const char* pszPassword, std::uint32_t nPort,
                    QXBool bPassive, std::uint32_t nValue, TInternetSession* pSession) override;
  QXBool FTPReConnect(std::uint32_t nRetries, QXHostValue nValue) override;
  QXBool FTPDisconnect() override;
  void FTPKeepAlive() override;
  CFtpFileFind* GetFinder(QXHostValue nReserved, const char* pszName) override;

  QXBool FTPGetDirectory(const char* pszPath, QXDirEntry* pEntries, std::uint32_t* pnCount,
                         const char* pszPattern, std::uint32_t nRetries) override;
  QXBool FTPDownloadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) override;
  QXBool FTPUploadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) override;
  QXBool FTPHasSubDir(const char* pszPath, std::uint32_t nRetries) override;
  QXBool FTPCountFolderItems(const char* pszPath, std::uint32_t* pnFiles, std::uint32_t* pnDirectories,
                             std::uint32_t nRetries) override;
  QXBool FTPDirExist(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                     QXHostValue nPollArg2) override;
  QXBool FTPFileExists(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                       QXHostValue nPollArg2) override;
  QXBool FTPDestroyFileContent(const char* pszPath, std::uint32_t nMethod, std::uint32_t nRetries,
                               QXHostValue nPollArg1, QXHostValue nPollArg2) override;
  QXBool FTPCpyFile(const char* pszSource, const char* pszDestination, QXProgress pfnProgress,
                    std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) override;
  QXBool FTPMovFile(const char* pszSource, const char* pszDestination, QXProgress pfnProgress,
                    std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) override;
  QXBool FTPRmvFile(const char* pszPath, std::uint32_t nWipePasses, std::uint32_t nRetries,
                    QXHostValue nPollArg1, QXHostValue nPollArg2) override;
  QXBool FTPRmvDir(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                   QXHostValue nPollArg2) override;
  QXBool FTPCreateDir(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                      QXHostValue nPollArg2) override;
  QXBool FTPCreateNewDir(const char* pszParent, char* pszCreated, const char* pszBaseName,
                         std::uint32_t nRetries) override;
  QXBool FTPIsDirectory(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                        QXHostValue nPollArg2) override;
  std::uint32_t FTPFileSize(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                            QXHostValue nPollArg2) override;
  QXBool FTPWriteFile(const char* pszPath, const void* pData, std::uint32_t nSize, QXBool bAppend,
                      std::uint32_t nReserved, std::uint32_t nRetries, QXHostValue nPollArg1,
                      QXHostValue nPollArg2) override;
  QXBool FTPReadFile(const char* pszPath, void** ppData, std::uint32_t* pnSize, std::uint32_t nReserved,
                     std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) override;
  QXBool FTPFreeFileAPI(void* pData) override;
  QXBool FTPRenameFile(const char* pszOld, const char* pszNew, std::uint32_t nRetries) override;

  [[nodiscard]] LoginTexts Login() const noexcept;
  // False while a login text is missing because it was too long. A host that writes the field itself has
  // mended it.
  [[nodiscard]] bool LoginFits() const noexcept;

 protected:
  ~TQXIP();  // clients end through Release or slot 3

 private:
  void ShutDown() noexcept;
  void DeleteFinders() noexcept;
  void MakeFinders();
  void ReleaseConnection() noexcept;
  void StoreLogin(const char* pszHost, const char* pszUser, const char* pszPassword, std::uint32_t nPort,
                  QXBool bPassive) noexcept;
  void OpenConnection(TInternetSession& session);

  bool m_ending = false;  // destroyed once, whatever the reference count does meanwhile
  LoginText m_hostText{m_RemoteSystem, 255};
  LoginText m_userText{m_UserName, 255};
  LoginText m_passwordText{m_Password, 1023};
};
