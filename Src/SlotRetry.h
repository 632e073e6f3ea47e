// SPDX-License-Identifier: MIT
// The retry rule of the operations without a worker: a failed run is followed by a call of the operation
// through its own slot with one retry less. Where no host has replaced the slot that call is just another
// run.
#pragma once

#include <chrono>
#include <cstddef>
#include <new>
#include <optional>

#include "Src/HostCall.h"
#include "Src/MessageLines.h"
#include "Src/NestedRuns.h"
#include "Src/RetryLimit.h"
#include "framework/platform/last_error.h"

enum class Slot : std::size_t {
  OnStatus = 17,
  OnPoll = 19,
  FTPGetDirectory = 31,
  FTPDownloadFile = 32,
  FTPUploadFile = 33,
  FTPHasSubDir = 34,
  FTPCountFolderItems = 35,
  FTPCpyFile = 39,
  FTPMovFile = 40,
  FTPRmvFile = 41,
  FTPRmvDir = 42,
  FTPCreateDir = 43,
  FTPCreateNewDir = 44,
  FTPWriteFile = 47,
  FTPReadFile = 48,
  FTPRenameFile = 50
};

// True while the client's slot is the library's own function.
[[nodiscard]] bool HasOwnSlot(const TQXIP& client, Slot slot) noexcept;

// Remembers the library's own table; called by the constructor of the client, whose table it is at that
// moment.
void NoteOwnTable(const TQXIP& client) noexcept;

// A host's function in a slot, while it runs as a retry. The library's function that it calls goes on with
// the limit of the call that it retries: each would have granted runs of its own else, one inside the other.
class SlotCall {
 public:
  SlotCall(const TQXIP& client, Slot slot, const RetryLimit& limit) noexcept;
  ~SlotCall();
  SlotCall(const SlotCall&) = delete;
  SlotCall& operator=(const SlotCall&) = delete;

  // The limit of the call of this thread that the slot's function is a retry of; null when it is none.
  [[nodiscard]] static const RetryLimit* LimitAround(const TQXIP& client, Slot slot) noexcept;

 private:
  const TQXIP& m_client;
  const Slot m_slot;
  const RetryLimit& m_limit;
  const SlotCall* const m_outer;
};

struct RetryRule {
  Slot slot;
  std::chrono::milliseconds pause{10};
  bool failedRunStaysFailed = false;  // a run whose retry succeeds still reports its own failure
};

struct SlotRun {
  bool ok = false;
  bool connectionLost = false;  // of a failed run: the object's, for good (RetryLimit.h)
  bool byHost = false;          // a host's function made it, and its lines with it
};

// `work` makes one run and answers by a bool or a SlotRun; one that gets no memory has failed.
// `again(retries)` calls the slot. `end(failed)` writes a run's last lines. Returns the outcome that the
// caller sees.
template <typename Work, typename Again, typename End>
bool RetryThroughSlot(TQXIP& client, std::uint32_t& retries, const RetryRule& rule, Work&& work,
                      Again&& again, End&& end) {
  RetryLimit limit(retries, SlotCall::LimitAround(client, rule.slot));
  const auto attempt = [&]() -> SlotRun {
    try {
      return {work()};
    } catch (const std::bad_alloc&) {
      platform::setLastError(platform::kErrorNotEnoughMemory);
      return {};
    }
  };
  const auto ownRun = [&] {
    const SlotRun run = attempt();
    platform::throwIfStopped();
    return run;
  };
  const auto hostsRun = [&] {
    const SlotCall call(client, rule.slot, limit);
    const bool ok = HostCall([&] { return again(retries); });
    return SlotRun{.ok = ok, .byHost = true};
  };
  const auto next = [&](const SlotRun& failed) -> std::optional<SlotRun> {
    // A host's function has made all the runs behind it.
    if (failed.byHost || !limit.TakeRun(retries, {platform::lastError(), failed.connectionLost}))
      return std::nullopt;
    platform::stoppableSleep(rule.pause);
    return HasOwnSlot(client, rule.slot) ? ownRun() : hostsRun();
  };
  const auto endRun = [&](const SlotRun& run, const SlotRun& last) {
    if (!run.byHost) end(!last.ok || (rule.failedRunStaysFailed && !run.ok));
  };
  return RunNested(ownRun(), next, endRun).ok;
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
