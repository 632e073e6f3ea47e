// SPDX-License-Identifier: MIT
#include "Src/OperationRunner.h"

#include "Src/HostCall.h"
#include "Src/RunningOperations.h"
#include "Src/SharedFlag.h"
#include "framework/platform/message_queue.h"
#include "framework/platform/turns.h"

namespace {

class Wait {
 public:
  explicit Wait(const WorkerCall& call) : m_call(call), m_running(call.client) {}

  WaitEnd Run() {
    if (!m_running.Start(m_call.worker, &m_call.record)) {
      platform::throwIfStopped();
      return WaitEnd::failed;
    }
    m_running.Worker().setNormalPriority();
    while (!m_cancel && !m_reconnect && !IsSet(m_call.record.bDone)) {
      Poll();
      if (m_cancel || m_reconnect) m_running.Kill();
      HostCall(&DispatchOne);
    }
    return Finish();
  }

 private:
  void Poll() {
    const bool ask = m_call.polling == Polling::always ||
                     (m_call.polling == Polling::unlessUpdating && !IsSet(m_call.record.bUpdating));
    if (ask) {
      m_cancel =
          HostCall([&] {
            return m_call.client.OnPoll(m_call.nPollArg1, m_call.nPollArg2, m_call.nTransfer, &m_reconnect);
          }) != 0;
    } else if (m_call.polling == Polling::whileInitialized) {
      m_cancel = !IsSet(m_call.client.m_bInitialized);
      if (!m_cancel && m_call.eachTurn != nullptr) m_call.eachTurn(m_call.record);
    }
  }

  static void DispatchOne() {
    if (platform::messageAfterTurn()) platform::takeAndDispatchMessage();
  }

  // The record lives on the caller's stack: the worker has to be gone, not only done, before the caller goes
  // on.
  WaitEnd Finish() {
    if (m_cancel) return WaitEnd::cancelled;
    if (m_reconnect) return WaitEnd::reconnect;
    while (!m_running.Worker().ended()) HostCall(&DispatchOne);
    m_running.Close();
    return WaitEnd::done;
  }

  const WorkerCall& m_call;
  RunningOperation m_running;  // its destructor ends the worker, however this is left
  bool m_cancel = false;
  QXBool m_reconnect = 0;
};

}  // namespace

void FillRecord(QXFtpThread& record, TQXIP& client, std::uint32_t& retries, const char* name) noexcept {
  record.pQXIP = &client;
  record.pTransfer = &client.m_Transfer;
  record.pRetries = &retries;
  record.pszName = name;
}

WorkerCall TransferCall(TQXIP& client, QXFtpThread& record, platform::WorkerThread::Entry worker,
                        QXHostValue nPollArg1, QXHostValue nPollArg2) noexcept {
  return {.client = client,
          .record = record,
          .worker = worker,
          .polling = Polling::unlessUpdating,
          .nPollArg1 = nPollArg1,
          .nPollArg2 = nPollArg2,
          .nTransfer = reinterpret_cast<QXHostValue>(&client.m_Transfer)};
}

WaitEnd RunAndWait(const WorkerCall& call) {
  Wait wait(call);
  return wait.Run();
}

void PrepareRerun(QXFtpThread& record) noexcept {
  record.bDone = record.bResult = record.bUpdating = 0;
  *record.pRetries = 1;
}
