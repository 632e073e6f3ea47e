// SPDX-License-Identifier: MIT
// FTPKeepAlive: blocks while the connection is up and keeps the caller's messages flowing.
#include "Src/OperationGuard.h"
#include "Src/OperationRunner.h"
#include "Src/QXIP.h"
#include "Src/SharedFlag.h"
#include "Src/WorkerFrame.h"
#include "framework/internet/FtpConnection.h"
#include "framework/platform/message_queue.h"
#include "framework/platform/stop_token.h"

namespace {

constexpr std::chrono::milliseconds kTurn{100};
constexpr std::uint32_t kRetries = 3;

// Waits one turn at the connection, so that a server which closes it is noticed at once.
void waitOneTurn(TQXIP& client) {
  CFtpConnection* connection = client.m_pFtpConnection;
  if (connection == nullptr) {
    platform::stoppableSleep(kTurn);
  } else if (connection->WaitIdle(kTurn)) {
    // Without an error record the notifications do not reach the client, and it would wait for ever.
    client.OnDisconnect();
  }
}

void FTPKeepAliveThr(void* argument) {
  if (argument == nullptr) return;
  auto& record = *static_cast<QXFtpThread*>(argument);
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  const DoneFlag done(record);
  TQXIP& client = *record.pQXIP;
  while (IsSet(client.m_bInitialized) && IsSet(client.m_bConnected)) {
    waitOneTurn(client);
    platform::dispatchOneMessage(nullptr, 0, 0);
  }
  platform::throwIfStopped();
  record.bResult = 1;
}

}  // namespace

void TQXIP::FTPKeepAlive() {
  GuardOperation([&] {
    if (!IsSet(m_bInitialized)) return;
    std::uint32_t retries = kRetries;
    QXFtpThread record;
    FillRecord(record, *this, retries, nullptr);
    static_cast<void>(RunAndWait({.client = *this,
                                  .record = record,
                                  .worker = &FTPKeepAliveThr,
                                  .polling = Polling::whileInitialized}));
  });
}
