// SPDX-License-Identifier: MIT
#include "Src/WorkerFrame.h"

#include <new>
#include <optional>

#include "Src/MessageLines.h"
#include "Src/NestedRuns.h"
#include "Src/Progress.h"
#include "Src/RetryLimit.h"
#include "Src/SharedFlag.h"
#include "framework/ModuleState.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace {

AttemptOutcome RunOnce(QXFtpThread& record, const WorkerShape& shape, Attempt attempt) {
  if (shape.entryLine != nullptr) WriteEntryLine(*record.pQXIP, *shape.entryLine, shape.paths(record));
  AttemptOutcome outcome;
  try {
    outcome = attempt(record);
  } catch (const std::bad_alloc&) {
    outcome = {.ok = false, .error = platform::kErrorNotEnoughMemory};
  }
  platform::throwIfStopped();
  if (shape.storesOutcome) record.bResult = outcome.ok ? 1 : 0;
  return outcome;
}

void EndRun(QXFtpThread& record, const WorkerShape& shape, const AttemptOutcome& outcome) {
  platform::throwIfStopped();
  if (shape.failedLine != nullptr) {
    TQXIP& client = *record.pQXIP;
    WriteFailedLine(client, *shape.failedLine, shape.paths(record));
    if (!outcome.ok && shape.reportsAttemptError) {
      ReportFailure(client, shape.failedLine->line, client.m_szMessage, outcome.error);
    } else if (!outcome.ok) {
      platform::setLastError(outcome.error);
      ReportFailure(client, shape.failedLine->line, client.m_szMessage);
    }
  }
}

}  // namespace

LinePaths OnePath(const QXFtpThread& record) { return {.first = record.pszName}; }

DoneFlag::~DoneFlag() {
  if (!platform::stopRequested()) SetFlag(m_record.bDone, true);
}

void RunWorker(void* argument, const WorkerShape& shape, Attempt attempt) {
  if (argument == nullptr) return;
  QXFtpThread& record = *static_cast<QXFtpThread*>(argument);
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  const DoneFlag done(record);
  const WorkerOnThread worker(record);
  RetryLimit limit(*record.pRetries);
  const auto next = [&](const AttemptOutcome& failed) -> std::optional<AttemptOutcome> {
    if (!limit.TakeRun(*record.pRetries, {failed.error, failed.connectionLost})) return std::nullopt;
    platform::stoppableSleep(shape.pause);
    return RunOnce(record, shape, attempt);
  };
  RunNested(RunOnce(record, shape, attempt), next,
            [&](const AttemptOutcome& run, const AttemptOutcome&) { EndRun(record, shape, run); });
}

void RunReportedWorker(void* argument, const FailureSite& site, Attempt attempt, PathsOf paths) {
  RunWorker(argument,
            {.entryLine = &site, .failedLine = &site, .paths = paths, .pause = std::chrono::milliseconds(10)},
            attempt);
}
