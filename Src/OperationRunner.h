// SPDX-License-Identifier: MIT
// The caller's side of every operation with a worker: it starts the worker and, until that is done, keeps the
// caller's messages flowing and asks OnPoll whether to go on. The wait has no time limit; it spins, but for a
// moment's sleep where others keep the processors busy (platform/turns.h).
#pragma once

#include "Src/FtpThread.h"
#include "Src/HostCall.h"
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/RunningOperations.h"
#include "Src/SlotRetry.h"

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
  reconnect   // OnPoll asked to give the worker up and to run the operation once more
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
  void (*eachTurn)(QXFtpThread& record) = nullptr;
};

// Fills the members that every operation fills alike. `retries` is the operation's own argument.
void FillRecord(QXFtpThread& record, TQXIP& client, std::uint32_t& retries, const char* name) noexcept;

// The call of an operation that moves data: OnPoll gets the transfer counters.
[[nodiscard]] WorkerCall TransferCall(TQXIP& client, QXFtpThread& record,
                                      platform::WorkerThread::Entry worker, QXHostValue nPollArg1,
                                      QXHostValue nPollArg2) noexcept;

// Starts the worker and waits. When it returns the worker has ended and nothing uses the record any more.
// Leaves by OperationStopped when the client is gone or the calling thread has to stop.
WaitEnd RunAndWait(const WorkerCall& call);

// Makes a record ready for the run that OnPoll has asked for.
void PrepareRerun(QXFtpThread& record) noexcept;

// The runs of one call that OnPoll gave up for another, which it asked for. Each run has its place inside the
// one that it follows: that one's answer stands only where its worker had stored a success before its end.
// They are no RunNested(): there the last run answers for all before it, and here each has to answer for
// itself.
class GivenUpRuns {
 public:
  void Add(bool storedSuccess) noexcept {
    ++m_count;
    m_latestSuccesses = storedSuccess ? m_latestSuccesses + 1 : 0;
  }

  // `end(failed)` for each of them, inside out; `ok` is the answer of the run behind them. The call's answer.
  template <typename End>
  bool EndAll(bool ok, End&& end) const {
    for (std::uint64_t ended = 0; ended < m_count; ++ended) end(!(ok && ended < m_latestSuccesses));
    return ok && m_latestSuccesses == m_count;
  }

 private:
  std::uint64_t m_count = 0;
  std::uint64_t m_latestSuccesses = 0;
};

// What comes before the worker of a run: the entry line (where the operation has one) and the checks.
enum class Entry {
  refused,   // the run has failed
  answered,  // it has succeeded without a worker
  worker     // the worker has to run
};

// A host sees a run that OnPoll asked for as another call, with retry count 1. It is made in a loop where no
// host has replaced the slot: OnPoll may ask again and again.
struct ReportedOperation {
  const WorkerCall& call;
  Slot slot;
  const FailureSite& site;  // of the failed line and the report that end each run
  LinePaths paths;
};

// `enter()` answers an Entry, `rerun()` calls the slot, `take()` is told of the last run's success before any
// line of its end. Leaves as RunAndWait() does.
template <typename Enter, typename Rerun, typename Take>
QXBool RunReportedOperation(const ReportedOperation& operation, Enter&& enter, Rerun&& rerun, Take&& take) {
  const WorkerCall& call = operation.call;
  const auto end = [&](bool failed) { EndWithReport(call.client, operation.site, operation.paths, failed); };
  GivenUpRuns givenUp;
  for (;;) {
    const Entry entry = enter();
    const WaitEnd waited = entry == Entry::worker ? RunAndWait(call) : WaitEnd::failed;
    if (waited != WaitEnd::reconnect) {
      const bool ok = entry == Entry::answered || (waited == WaitEnd::done && call.record.bResult != 0);
      if (ok) take();
      end(!ok);
      return givenUp.EndAll(ok, end) ? 1 : 0;
    }
    givenUp.Add(call.record.bResult != 0);
    if (!HasOwnSlot(call.client, operation.slot)) return givenUp.EndAll(HostCall(rerun), end) ? 1 : 0;
    PrepareRerun(call.record);
  }
}

template <typename Enter, typename Rerun>
QXBool RunReportedOperation(const ReportedOperation& operation, Enter&& enter, Rerun&& rerun) {
  return RunReportedOperation(operation, enter, rerun, [] {});
}
