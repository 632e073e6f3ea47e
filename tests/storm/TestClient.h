// SPDX-License-Identifier: MIT
// A client whose hooks run functions of the test, and which has an operation whose worker runs one, too: it
// stands in the slot of FTPRmvFile and goes through the same runner as the library's own operations.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "Src/OperationRunner.h"
#include "Src/QXIP.h"
#include "Src/WorkerFrame.h"

namespace storm {

// The names in the lines of the test operation and of its worker.
inline constexpr FailureSite kOperationSite{"Storm", "Storm", 11};
inline constexpr FailureSite kWorkerSite{"StormThr", "StormThr", 22};

// What a test makes of a client, and what it saw of the operation. Outlives the client.
struct Script {
  // Hooks; empty: only the library's own.
  std::function<bool(QXBool& reconnect)> onPoll = nullptr;  // on the calling thread
  std::function<void(std::uint32_t error, std::uint32_t* pRetries)> onIPError =
      nullptr;                                                           // before the library's own
  std::function<void()> onHasSubDir = nullptr;                           // before the library's own
  std::function<bool(std::uint32_t* pnCount)> onGetDirectory = nullptr;  // instead of the library's own
  std::function<void()> onDisconnect = nullptr;                          // after the library's own

  // The operation.
  std::function<AttemptOutcome(QXFtpThread& record)> attempt = nullptr;  // on the worker's thread
  WorkerShape shape{.failedLine = &kWorkerSite};
  Polling polling = Polling::always;
  bool reports = true;  // has lines and a report of its own, as an operation has; else it only runs and waits

  std::vector<std::uint32_t> calls{};  // the retry count of each call through the slot
  std::vector<QXBool> done{};          // bDone of each call's record, as the calls ended
  WaitEnd end = WaitEnd::failed;       // of the latest call that does not report
};

class TestClient : public TQXIP {
 public:
  TestClient(Script& script, QXErrorInfo* pErrorInfo) : TQXIP(pErrorInfo), m_script(script) {}

  void* DeletingDestructor(std::uint32_t nFlags) override;
  void OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) override;
  void OnDisconnect() override;
  QXBool OnPoll(QXHostValue nPollArg1, QXHostValue nPollArg2, QXHostValue nTransfer,
                QXBool* pbReconnect) override;
  QXBool FTPGetDirectory(const char* pszPath, QXDirEntry* pEntries, std::uint32_t* pnCount,
                         const char* pszPattern, std::uint32_t nRetries) override;
  QXBool FTPHasSubDir(const char* pszPath, std::uint32_t nRetries) override;
  QXBool FTPRmvFile(const char* pszPath, std::uint32_t nWipePasses, std::uint32_t nRetries,
                    QXHostValue nPollArg1, QXHostValue nPollArg2) override;

  // The operation with the path "x".
  bool Run(std::uint32_t retries = 0) { return FTPRmvFile("x", 0, retries, 0, 0) != 0; }

 protected:
  ~TestClient() = default;  // ends through Release

 private:
  Script& m_script;
};

struct Releaser {
  void operator()(TestClient* client) const { client->Release(); }
};
using Client = std::unique_ptr<TestClient, Releaser>;

Client makeClient(Script& script, QXErrorInfo* pErrorInfo);

// Counts the worker bodies that are running; one that is ended in good order leaves the count.
class Presence {
 public:
  explicit Presence(std::atomic<int>& count) : m_count(count) { ++m_count; }
  ~Presence() { --m_count; }
  Presence(const Presence&) = delete;
  Presence& operator=(const Presence&) = delete;

 private:
  std::atomic<int>& m_count;
};

}  // namespace storm
