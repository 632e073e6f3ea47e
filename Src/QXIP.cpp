// SPDX-License-Identifier: MIT
// The life of a client: construction, destruction, reference count, finders.
#include "Src/QXIP.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <utility>

#include "Src/OperationGuard.h"
#include "Src/RunningOperations.h"
#include "Src/SharedFlag.h"
#include "Src/SlotRetry.h"
#include "Src/TInternetSession.h"
#include "framework/WinApp.h"
#include "framework/internet/FtpConnection.h"
#include "framework/internet/FtpFileFind.h"
#include "framework/platform/process.h"
#include "framework/text/Secret.h"
#include "support/Diagnostics.h"
#include "support/Paths.h"

namespace {

// What a host that keeps the memory may look at afterwards: a plain store into an object whose life ends need
// not be made.
template <typename Field>
void clearForGood(Field& field) noexcept {
  std::atomic_ref(field).store(Field{}, std::memory_order_relaxed);
}

}  // namespace

TQXIPIFInt::TQXIPIFInt(QXErrorInfo* pErrorInfo, QXBool bOption)
    : m_nRefCount(1),
      m_nWipeSize(0),
      m_nWipeBlock(0),
      m_pWipePattern(nullptr),
      m_bOption(bOption),
      m_Transfer{},
      m_pFileBuffer(nullptr),
      m_RemoteSystem{},
      m_UserName{},
      m_Password{},
      m_nPort(21),
      m_bPassive(0),
      m_szMessage{},
      m_bCreated(1),
      m_bInitialized(1),
      m_bConnected(0),
      m_bSpare(0),
      m_pFTPFileFind(nullptr),
      m_pFTPDirFind(nullptr),
      m_pFTPGetDir(nullptr),
      m_pFTPFileSize(nullptr),
      m_pFtpConnection(nullptr),
      m_pInternetSession(nullptr),
      m_pErrorInfo(pErrorInfo) {}

TQXIPIFInt::~TQXIPIFInt() {
  SetFlag(m_bInitialized, false);
  SetFlag(m_bConnected, false);
}

TQXIP::TQXIP(QXErrorInfo* pErrorInfo, QXBool bOption) : TQXIPIFInt(pErrorInfo, bOption) {
  DebugTrace("TQXIP::TQXIP");
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  NoteOwnTable(*this);
  platform::initCommonControls();
  AfxWinInit(platform::processModule(), nullptr, "", 0);
  const bool socketsStarted = AfxSocketInit();
  m_pInternetSession = NewSession(*this);
  AddModuleRef();
  SetFlag(m_bInitialized, socketsStarted);
}

TQXIP::~TQXIP() {
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  ShutDown();
  ReleaseConnection();
  delete m_pInternetSession;
  delete[] m_pFileBuffer;
  clearForGood(m_pInternetSession);
  clearForGood(m_pFileBuffer);
  SetFlag(m_bSpare, false);
  secret::wipe(m_Password, sizeof m_Password);
}

// The part of the destruction that calls hooks and ends workers: it runs while the object is still whole.
// A client that is not up has nothing to disconnect and no share in the module's count any more; its
// operations may run all the same.
void TQXIP::ShutDown() noexcept {
  RunningOperation::Abandon(*this);
  const bool isUp = IsSet(m_bInitialized);
  if (isUp) FTPDisconnect();
  SetFlag(m_bInitialized, false);
  RunningOperation::Abandon(*this);  // what was begun meanwhile
  if (isUp) ReleaseModuleRef();
}

void TQXIP::DeleteFinders() noexcept {
  for (CFtpFileFind** finder : {&m_pFTPFileFind, &m_pFTPDirFind, &m_pFTPGetDir, &m_pFTPFileSize}) {
    delete *finder;
    *finder = nullptr;
  }
}

void TQXIP::ReleaseConnection() noexcept {
  DeleteFinders();
  // Closing sends notifications, in which the host may look at the object: it must not find the connection
  // there.
  const std::unique_ptr<CFtpConnection> connection(m_pFtpConnection);
  m_pFtpConnection = nullptr;
  if (connection) connection->Close();
}

void* TQXIP::DeletingDestructor(std::uint32_t nFlags) {
  constexpr std::uint32_t kFreeMemory = 1;
  void* const self = this;
  // Hooks of the host that the end calls may take and release references.
  if (std::exchange(m_ending, true)) return self;
  ShutDown();
  this->~TQXIP();
  if ((nFlags & kFreeMemory) != 0) ::operator delete(this, sizeof(TQXIP));
  return self;
}

std::uint32_t TQXIP::AddRef() { return ++m_nRefCount; }

std::uint32_t TQXIP::Release() {
  if (m_nRefCount == 0) return 0;
  if (--m_nRefCount > 0) return m_nRefCount;
  DeletingDestructor(1);
  return 0;
}

CFtpFileFind* TQXIP::GetFinder(QXHostValue /*nReserved*/, const char* pszName) {
  struct NamedFinder {
    const char* name;
    CFtpFileFind* finder;
  };
  const NamedFinder finders[] = {{"m_pFTPFileFind", m_pFTPFileFind},
                                 {"m_pFTPDirFind", m_pFTPDirFind},
                                 {"m_pFTPGetDir", m_pFTPGetDir},
                                 {"m_pFTPFileSize", m_pFTPFileSize}};
  return GuardOperation(*this, [&]() -> CFtpFileFind* {
    if (pszName == nullptr) return nullptr;
    for (const NamedFinder& candidate : finders) {
      if (EqualNames(candidate.name, pszName)) return candidate.finder;
    }
    return m_pFtpConnection != nullptr ? new CFtpFileFind(m_pFtpConnection, 1) : nullptr;
  });
}
