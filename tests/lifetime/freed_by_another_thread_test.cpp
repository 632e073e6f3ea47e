// SPDX-License-Identifier: MIT
// A client that another thread frees while an operation waits for its server. FTPConnect knew nothing of it,
// and went on with the memory when the reply came.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "tests/lifetime/EndingClient.h"
#include "tests/support/Fixture.h"

namespace lifetime {
namespace {

using Clock = std::chrono::steady_clock;

// Any time-out is longer.
constexpr std::chrono::seconds kSoon{10};

class FreedByAnotherThread : public testing::Test {
 protected:
  // Returns with `call`, whose server never answers behind the gate.
  void free(const fixture::ScriptedFtp& server, const std::function<QXBool(TQXIP& client)>& call) {
    Host host;
    EndingClient& client = host.renew();
    client.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
    Clock::time_point freed;
    std::thread other([&] {
      server.waitAtGate("never");
      freed = Clock::now();
      static_cast<void>(host.finish());
    });
    EXPECT_EQ(call(client), 0);
    const Clock::time_point returned = Clock::now();
    other.join();
    EXPECT_LT(returned - freed, kSoon);
    server.waitUntilAllClosed();
  }
};

constexpr std::string_view kNoWelcome = R"({"rules": [{"on": "CONNECT", "do": [{"gate": "never"}]}]})";
constexpr std::string_view kNoTransfer =
    R"({"rules": [{"on": ["LIST", "MLSD", "RETR", "STOR"], "do": [{"gate": "never"}]}]})";
constexpr std::string_view kNoRename = R"({"rules": [{"on": "RNFR", "do": [{"gate": "never"}]}]})";

TEST_F(FreedByAnotherThread, FTPConnectReturns) {
  const fixture::ScriptedFtp server(kNoWelcome);
  free(server, [&](TQXIP& client) {
    return client.FTPConnect(server.host().c_str(), "user", "secret", server.port(), 1, 0, nullptr);
  });
}

TEST_F(FreedByAnotherThread, FTPGetDirectoryReturns) {
  const fixture::ScriptedFtp server(kNoTransfer);
  std::uint32_t count = 0;
  free(server, [&](TQXIP& client) { return client.FTPGetDirectory("/", nullptr, &count, "*.*", 3); });
}

TEST_F(FreedByAnotherThread, FTPRenameFileReturns) {
  const fixture::ScriptedFtp server(kNoRename);
  free(server, [&](TQXIP& client) { return client.FTPRenameFile("/a", "/b", 3); });
}

TEST_F(FreedByAnotherThread, AnOperationWithAWorkerReturns) {
  const fixture::ScriptedFtp server(kNoTransfer);
  free(server, [&](TQXIP& client) { return client.FTPWriteFile("/a", "x", 1, 0, 0, 3, 0, 0); });
}

}  // namespace
}  // namespace lifetime
