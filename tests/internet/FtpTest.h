// SPDX-License-Identifier: MIT
// What the tests of the FTP classes share: a session that records its notifications, and connections to a
// fixture server that are gone before the server is.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "framework/internet/FtpConnection.h"
#include "framework/internet/InternetException.h"
#include "framework/internet/InternetFile.h"
#include "framework/internet/InternetSession.h"
#include "framework/internet/ftp/FtpTraits.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace internet_tests {

class RecordingSession : public CInternetSession {
 public:
  RecordingSession() : CInternetSession(nullptr, 7) { EnableStatusCallback(); }
  ~RecordingSession() override { Close(); }

  void OnStatusCallback(std::uintptr_t context, std::uint32_t status, void* information,
                        std::uint32_t length) override {
    statuses.push_back(status);
    contexts.push_back(context);
    texts.push_back(information ? static_cast<const char*>(information) : "");
    lengths.push_back(length);
    if (onStatus) onStatus(status);
  }

  // Those recorded since the last call.
  std::vector<std::uint32_t> takeStatuses() { return std::exchange(statuses, {}); }

  std::vector<std::uint32_t> statuses;
  std::vector<std::uintptr_t> contexts;
  std::vector<std::string> texts;
  std::vector<std::uint32_t> lengths;
  std::function<void(std::uint32_t)> onStatus;
};

struct Thrown {
  std::uint32_t error = 0;  // 0 = nothing was thrown
  std::string text;
  bool connectionLost = false;
};

// Runs `work` and takes the CInternetException that it throws.
template <class Work>
Thrown thrownBy(Work work) {
  try {
    work();
  } catch (CInternetException* exception) {
    char text[2048];
    static_cast<void>(exception->GetErrorMessage(text, sizeof text));
    Thrown thrown{exception->m_dwError, text, exception->m_bConnectionLost};
    exception->Delete();
    return thrown;
  }
  return {};
}

// What a refused operation leaves: 0 when it succeeded.
template <class Operation>
std::uint32_t errorOf(Operation operation) {
  platform::setLastError(platform::kErrorSuccess);
  return operation() ? platform::kErrorSuccess : platform::lastError();
}

class FtpTest : public ::testing::Test {
 protected:
  FtpTest() { internet::forgetCachedTraits(); }

  // For what never comes: long enough for a slow machine, short enough for a test.
  static internet::Timeouts shortTimeouts() {
    using std::chrono::milliseconds;
    internet::Timeouts timeouts;
    timeouts.reply = timeouts.data = timeouts.finalReply = milliseconds(2'000);
    timeouts.connect = timeouts.earlyClose = timeouts.dataError = milliseconds(2'000);
    timeouts.epsvProbe = timeouts.endOfData = milliseconds(1'000);
    return timeouts;
  }

  std::unique_ptr<CFtpConnection> connect(const fixture::Server& server, bool passive = true) {
    return std::unique_ptr<CFtpConnection>(
        session.GetFtpConnection(server.host().c_str(), "user", "secret", server.port(), passive));
  }

  static std::unique_ptr<CInternetFile> openToRead(CFtpConnection& connection, const char* path) {
    return std::unique_ptr<CInternetFile>(connection.OpenFile(path, internet::kGenericRead));
  }

  static std::unique_ptr<CInternetFile> openToWrite(CFtpConnection& connection, const char* path) {
    return std::unique_ptr<CInternetFile>(connection.OpenFile(path, internet::kGenericWrite));
  }

  static std::string readToEnd(CInternetFile& file, std::uint32_t block = 4096) {
    std::string content;
    std::vector<char> buffer(block);
    while (const std::uint32_t count = file.Read(buffer.data(), block)) content.append(buffer.data(), count);
    return content;
  }

  // Still in step: it answers for what it is asked.
  static bool works(CFtpConnection& connection) {
    std::string directory;
    return connection.GetCurrentDirectory(directory) && directory == "/";
  }

  RecordingSession session;
};

}  // namespace internet_tests
