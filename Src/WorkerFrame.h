// SPDX-License-Identifier: MIT
// The worker's side of every operation: the module state, the lines, the retry rule and the done flag around
// the few lines that make the operation. A worker that is asked to stop leaves by OperationStopped from
// wherever it is and writes nothing more.
#pragma once

#include <chrono>

#include "Src/FailureSites.h"
#include "Src/FtpThread.h"
#include "Src/MessageLines.h"

// How one attempt ended; `error` is the last-error value that goes with a failure.
struct AttemptOutcome {
  bool ok = false;
  std::uint32_t error = 0;
  bool connectionLost = false;  // the object's, for good (RetryLimit.h)
};

using Attempt = AttemptOutcome (*)(QXFtpThread& record);

// The paths that a worker's lines name.
using PathsOf = LinePaths (*)(const QXFtpThread& record);
LinePaths OnePath(const QXFtpThread& record);

struct WorkerShape {
  const FailureSite* entryLine = nullptr;   // none: no entry line
  const FailureSite* failedLine = nullptr;  // none: neither failed line nor report
  PathsOf paths = &OnePath;
  std::chrono::milliseconds pause{0};  // before a retry
  bool storesOutcome = true;           // bResult = the attempt's outcome; else the attempt stores an answer
  bool reportsAttemptError = false;    // the report stores the attempt's error number
};

// Sets bDone as the worker's last act, also when an exception of the host's hooks ends it: the caller would
// wait for ever otherwise. A stopped worker leaves it at 0.
class DoneFlag {
 public:
  explicit DoneFlag(QXFtpThread& record) noexcept : m_record(record) {}
  ~DoneFlag();
  DoneFlag(const DoneFlag&) = delete;
  DoneFlag& operator=(const DoneFlag&) = delete;

 private:
  QXFtpThread& m_record;
};

// Runs `attempt` on the QXFtpThread at `argument` until it succeeds or may run no more (RetryLimit.h), with
// the lines of the attempts in the order of NestedRuns.h.
void RunWorker(void* argument, const WorkerShape& shape, Attempt attempt);

// The usual shape: `site` names the worker in its entry and failed lines, and 10 ms pass before a retry.
void RunReportedWorker(void* argument, const FailureSite& site, Attempt attempt, PathsOf paths = &OnePath);
