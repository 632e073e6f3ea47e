// SPDX-License-Identifier: MIT
// Operations at a server that has too many connections for a moment.
#include <atomic>
#include <memory>

#include "framework/internet/FtpConnection.h"
#include "tests/client/TransferTest.h"

namespace {

constexpr std::chrono::hours kForEver{1};

class CrowdedServer : public TransferTest {
 protected:
  // Of the private connections.
  static void pauseFor(std::chrono::milliseconds pause) {
    internet::Timeouts timeouts;
    timeouts.crowdedPause = pause;
    internet::setTimeoutsForTesting(timeouts);
  }
  static std::string refusing(const std::string& which) {
    return R"({"tree": {"/a": "four"}, "rules": [{"on": "CONNECT", )" + which +
           R"(, "do": [{"reply": "421 There are too many connected users, please try later."}, "close"]}]})";
  }
};

TEST_F(CrowdedServer, LetsAnOperationInAfterAWhile) {
  const fixture::ScriptedFtp server(refusing(R"("nth": [1, 2])"));
  pauseFor(std::chrono::milliseconds(1));
  loginAt(server);
  EXPECT_EQ(download(), 1);
  EXPECT_EQ(content(), "four");
  EXPECT_EQ(server.connections().size(), 3u);
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_F(CrowdedServer, FailsAnAttemptThatIsNeverLetIn) {
  const fixture::ScriptedFtp server(refusing(R"("first": 100)"));
  pauseFor(std::chrono::milliseconds(1));
  loginAt(server);
  EXPECT_EQ(download("/a", 1), 0);
  EXPECT_EQ(server.connections().size(), 8u) << "four of each attempt";
  EXPECT_EQ(client.count("OnIPError 12030"), 2u);
  EXPECT_EQ(record.nError, 12030u);
}

TEST_F(CrowdedServer, FailsAConnectAtOnce) {
  const fixture::ScriptedFtp server(refusing(R"("nth": 1)"));
  pauseFor(kForEver);
  EXPECT_EQ(connectTo(server), 0);
  EXPECT_EQ(server.connections().size(), 1u);
}

TEST_F(CrowdedServer, IsNotWaitedForByWhoCancels) {
  const fixture::ScriptedFtp server(refusing(R"("first": 100)"));
  pauseFor(kForEver);
  loginAt(server);
  std::atomic<bool> refused = false;
  client.disconnected = [&] { refused = true; };
  int polls = 0;
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    polls += refused ? 1 : 0;
    return polls > 10 ? 1 : 0;
  };
  void* data = nullptr;
  std::uint32_t size = 0;
  EXPECT_EQ(client.FTPReadFile("/a", &data, &size, 0, 0, 0, 0), 0);
  EXPECT_GT(polls, 10) << "it is asked while the pause lasts";
  EXPECT_EQ(server.connections().size(), 1u);
}

// A real server that takes one connection of an address, which another client has just then.
TEST_F(CrowdedServer, OfAnAddressLetsTheNextOneInWhenTheFirstHasLeft) {
  const fixture::RealServer server("pyftpdlib", R"({"most": 1})");
  server.putText("/pub/a", "four");
  client.FTPSetLogin(server.host().c_str(), server.user().c_str(), server.password().c_str(), server.port(),
                     1);
  CInternetSession session;
  const std::unique_ptr<CFtpConnection> other(session.GetFtpConnection(
      server.host().c_str(), server.user().c_str(), server.password().c_str(), server.port(), true));
  client.disconnected = [&] { other->Close(); };
  EXPECT_EQ(download("/pub/a"), 1);
  EXPECT_EQ(content(), "four");
  EXPECT_GE(server.connectionCount(), 2);
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

}  // namespace
