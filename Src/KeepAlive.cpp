// SPDX-License-Identifier: MIT
// FTPKeepAlive: blocks while the connection is up and keeps the caller's messages flowing.
#include "Src/HostCall.h"
#include "Src/OperationGuard.h"
#include "Src/OperationRunner.h"
#include "Src/QXIP.h"
#include "Src/RunningOperations.h"
#include "Src/SharedFlag.h"
#include "Src/WorkerFrame.h"
#include "framework/internet/FtpConnection.h"
#include "framework/platform/message_queue.h"
#include "framework/platform/stop_token.h"

namespace {

constexpr std::chrono::milliseconds kTurn{100};
constexpr std::chrono::milliseconds kLook{20};
constexpr std::uint32_t kRetries = 3;

struct KeepAliveThread : QXFtpThread {
  std::chrono::steady_clock::time_point nextLook{};
};

// Sees an idle connection that the server has closed. It is looked at from the caller's thread, because the
// host's messages work with the client there: from any other thread their replies could be taken away.
void lookAtConnection(QXFtpThread& record) {
  auto& nextLook = static_cast<KeepAliveThread&>(record).nextLook;
  TQXIP& client = *record.pQXIP;
  const auto now = std::chrono::steady_clock::now();
  if (client.m_pFtpConnection == nullptr || !IsSet(client.m_bConnected) || now < nextLook) return;
  nextLook = now + kLook;
  const bool closed =
      HostCall([&] { return client.m_pFtpConnection->WaitIdle(std::chrono::milliseconds(0)); });
  // Without an error record the notifications do not reach the client, and it would wait for ever.
  if (closed) HostCall([&] { client.OnDisconnect(); });
}

// A client that stands between two connections goes on to the second one.
bool isUp(const TQXIP& client) {
  if (!IsSet(client.m_bInitialized)) return false;
  return RunningOperation::RunsOr(client, RunningOperation::Kind::connecting,
                                  [](const TQXIP& idle) { return IsSet(idle.m_bConnected); });
}

void FTPKeepAliveThr(void* argument) {
  if (argument == nullptr) return;
  auto& record = *static_cast<QXFtpThread*>(argument);
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  const DoneFlag done(record);
  while (isUp(*record.pQXIP)) {
    platform::stoppableSleep(kTurn);
    platform::dispatchOneMessage(nullptr, 0, 0);
  }
  platform::throwIfStopped();
  record.bResult = 1;
}

}  // namespace

void TQXIP::FTPKeepAlive() {
  GuardOperation(*this, [&] {
    if (!IsSet(m_bInitialized)) return;
    std::uint32_t retries = kRetries;
    KeepAliveThread record;
    FillRecord(record, *this, retries, nullptr);
    static_cast<void>(RunAndWait({.client = *this,
                                  .record = record,
                                  .worker = &FTPKeepAliveThr,
                                  .polling = Polling::whileInitialized,
                                  .eachTurn = &lookAtConnection}));
  });
}
