// SPDX-License-Identifier: MIT
// The caller's side of every operation with a worker: it starts the worker and, until that is done, keeps the
// caller's messages flowing and asks OnPoll whether to go on. The wait has no time limit; it spins, but for a
// moment's sleep where others keep the processors busy (platform/turns.h).
#pragma once

#include "Src/FtpThread.h"
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/RunningOperations.h"

// What the wait asks on every turn.
enum class Polling {
  none,              // nothing: it waits for the worker however long that takes
  whileInitialized,  // whether the client is still up
  always,            // OnPoll
  unlessUpdating     // OnPoll, but not while the worker writes the transfer counters that OnPoll may read
};

enum class WaitEnd {
  done,       // the worker has finished
  failed,     // no worker could be started
  cancelled,  // OnPoll asked to stop, or the client was shut down
  reconnect,  // OnPoll asked to abandon the worker and to run the operation once more
  abandoned   // the client is gone, or the waiting thread is itself a worker that has to stop: leave at once
};

struct WorkerCall {
  TQXIP& client;
  QXFtpThread& record;
  platform::WorkerThread::Entry worker;
  Polling polling = Polling::none;
  QXHostValue nPollArg1 = 0;
  QXHostValue nPollArg2 = 0;
  QXHostValue nTransfer = 0;  // third argument of OnPoll
  // With whileInitialized: called on every turn, between two messages. What the host does with the client in
  // a message has ended then.
  void (*eachTurn)(QXFtpThread& record, const RunningOperation& running) = nullptr;
};

// Fills the members that every operation fills alike. `retries` is the operation's own argument.
void FillRecord(QXFtpThread& record, TQXIP& client, std::uint32_t& retries, const char* name) noexcept;

// The call of an operation that moves data: OnPoll gets the transfer counters.
[[nodiscard]] WorkerCall TransferCall(TQXIP& client, QXFtpThread& record,
                                      platform::WorkerThread::Entry worker, QXHostValue nPollArg1,
                                      QXHostValue nPollArg2) noexcept;

// Starts the worker and waits. When it returns the worker has ended and nothing uses the record any more.
WaitEnd RunAndWait(const WorkerCall& call);

// Runs a checked operation: `checked` is the outcome of its argument checks, `rerun` calls it again through
// its own slot with retry count 1. The first worker's answer decides even after a rerun. *pAbandoned: touch
// nothing more.
template <typename Rerun>
bool RunOperation(const WorkerCall& call, bool checked, Rerun&& rerun, bool& abandoned) {
  if (!checked) return false;
  const WaitEnd end = RunAndWait(call);
  abandoned = end == WaitEnd::abandoned;
  switch (end) {
    case WaitEnd::done:
      return call.record.bResult != 0;
    case WaitEnd::reconnect: {
      const RunningOperation running(call.client);
      const bool ok = rerun();
      abandoned = running.IsOrphaned() || platform::stopRequested();
      return ok && call.record.bResult != 0;
    }
    default:
      return false;
  }
}

// The same between an operation's lines: the entry line before it (where the operation has one), the failed
// line and the failure report after it.
struct OperationLines {
  const FailureSite& site;
  LinePaths paths;
};

template <typename Rerun>
QXBool RunReportedOperation(const WorkerCall& call, const OperationLines& lines, bool checked,
                            Rerun&& rerun) {
  bool abandoned = false;
  const bool ok = RunOperation(call, checked, rerun, abandoned);
  if (abandoned) return 0;
  EndWithReport(call.client, lines.site, lines.paths, !ok);
  return ok ? 1 : 0;
}
