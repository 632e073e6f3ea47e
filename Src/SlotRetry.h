// SPDX-License-Identifier: MIT
// The retry rule of the operations without a worker: a failed run calls the operation again through its own
// slot with one retry less, and the lines of each run come after those of the run inside it. A slot that no
// host has replaced is retried in a loop, so that neither stack nor memory grow with the retry count.
#pragma once

#include <chrono>
#include <cstddef>
#include <new>

#include "Src/MessageLines.h"
#include "Src/RunningOperations.h"
#include "framework/platform/last_error.h"

enum class Slot : std::size_t {
  FTPGetDirectory = 31,
  FTPDownloadFile = 32,
  FTPUploadFile = 33,
  FTPHasSubDir = 34,
  FTPCountFolderItems = 35,
  FTPMovFile = 40,
  FTPCreateNewDir = 44,
  FTPRenameFile = 50
};

// True while the client's slot is the library's own function.
[[nodiscard]] bool HasOwnSlot(const TQXIP& client, Slot slot) noexcept;

// Remembers the library's own table; called by the constructor of the client, whose table it is at that
// moment.
void NoteOwnTable(const TQXIP& client) noexcept;

struct RetryRule {
  Slot slot;
  std::chrono::milliseconds pause{10};
  bool failedRunStaysFailed = false;  // a run whose retry succeeds still reports its own failure
};

// `work` makes one run and answers whether it succeeded; one that gets no memory has failed. `again(retries)`
// calls the slot. `end(failed)` writes a run's last lines. Returns the outcome that the caller sees.
template <typename Run, typename Again, typename End>
bool RetryThroughSlot(TQXIP& client, std::uint32_t& retries, const RetryRule& rule, Run&& work, Again&& again,
                      End&& end) {
  const auto run = [&] {
    try {
      return work();
    } catch (const std::bad_alloc&) {
      platform::setLastError(platform::kErrorNotEnoughMemory);
      return false;
    }
  };
  const RunningOperation running(client);  // a run may call other operations, which dispatch messages
  std::uint64_t failedRuns = 0;
  bool innermostIsOurs = true;
  bool ok = run();
  running.LeaveIfOrphaned();
  while (!ok && retries > 0) {
    platform::stoppableSleep(rule.pause);
    --retries;
    ++failedRuns;
    innermostIsOurs = HasOwnSlot(client, rule.slot);
    ok = innermostIsOurs ? run() : again(retries);
    running.LeaveIfOrphaned();
    if (!innermostIsOurs) break;
  }
  if (innermostIsOurs) end(!ok);
  for (; failedRuns > 0; --failedRuns) end(rule.failedRunStaysFailed || !ok);
  return ok;
}

// An operation on two paths, each of whose runs has an entry line, a failed line and a report of its own.
struct PairOperation {
  TQXIP& client;
  const FailureSite& site;
  LinePaths paths;
  Slot slot;
};

template <typename Run, typename Again>
QXBool RunPairOperation(const PairOperation& operation, std::uint32_t& retries, Run&& run, Again&& again) {
  const auto runWithEntryLine = [&] {
    WriteEntryLine(operation.client, operation.site, operation.paths);
    return run();
  };
  const auto end = [&](bool failed) {
    EndWithReport(operation.client, operation.site, operation.paths, failed);
  };
  return RetryThroughSlot(operation.client, retries, {.slot = operation.slot}, runWithEntryLine, again, end)
             ? 1
             : 0;
}
