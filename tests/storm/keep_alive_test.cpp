// SPDX-License-Identifier: MIT
// FTPKeepAlive on a real connection: it stays while that is up and returns soon after it is not.
#include <thread>
#include <utility>

#include "tests/storm/RunnerTest.h"
#include "tests/support/Fixture.h"

namespace storm {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// A look every 100 ms sees it at once; the rest is for a crowded machine. Any time-out is longer.
constexpr auto kSoon = 10s;

constexpr auto kTurn = 100ms;  // from one look of the worker to the next

class KeepAlive : public RunnerTest {
 protected:
  void SetUp() override { Connect(); }

  void Connect() {
    ASSERT_TRUE(client->FTPConnect(server.host().c_str(), "u", "p", server.port(), 1, 0, nullptr))
        << error.szText;
  }

  // Returns with the call; `happening` runs in a message that the call dispatches.
  void KeepAliveUntil(Mailbox::Work happening) {
    TQXIP* const object = client.get();
    bool inside = true;
    happenedAt = {};
    mailbox.post([&, happening = std::move(happening)] {
      EXPECT_TRUE(inside);
      happening();
      happenedAt = Clock::now();
    });
    object->FTPKeepAlive();
    returnedAt = Clock::now();
    inside = false;
    EXPECT_NE(happenedAt, Clock::time_point{}) << "returned too early";
    EXPECT_LE(returnedAt - happenedAt, kSoon);
  }

  fixture::ScriptedFtp server;
  Clock::time_point happenedAt;
  Clock::time_point returnedAt;
};

TEST_F(KeepAlive, ReturnsAfterTheServerHasClosed) {
  KeepAliveUntil([this] { server.disconnect(); });
  EXPECT_EQ(client->m_bConnected, 0);
}

TEST_F(KeepAlive, ReturnsAfterTheServerHasSaidGoodbye) {
  KeepAliveUntil([this] { server.disconnect("421 Idle for too long"); });
}

TEST_F(KeepAlive, ReturnsAfterTheServerHasResetTheConnection) {
  KeepAliveUntil([this] { server.disconnect("", "reset"); });
}

// Without a record the notifications do not reach the client.
TEST_F(KeepAlive, ReturnsAfterTheServerHasClosedThoughThereIsNoErrorRecord) {
  client = makeClient(script, nullptr);
  Connect();
  KeepAliveUntil([this] { server.disconnect(); });
  EXPECT_EQ(client->m_bConnected, 0);
}

TEST_F(KeepAlive, ReturnsWhenAMessageDisconnects) {
  KeepAliveUntil([this] { EXPECT_TRUE(client->FTPDisconnect()); });
}

TEST_F(KeepAlive, ReturnsWhenAMessageFreesTheClient) {
  KeepAliveUntil([this] { client.release()->Release(); });
  server.waitUntilAllClosed();
}

TEST_F(KeepAlive, ReturnsWhenAnotherThreadFreesTheClient) {
  std::thread other;
  KeepAliveUntil([&] { other = std::thread([this] { client.release()->Release(); }); });
  other.join();
  server.waitUntilAllClosed();
}

TEST_F(KeepAlive, ReturnsWhenTheNewsOfTheCloseFreesTheClient) {
  script.onDisconnect = [this] {
    // Freeing disconnects once more.
    if (client) client.release()->Release();
  };
  KeepAliveUntil([this] { server.disconnect(); });
  EXPECT_EQ(client, nullptr);
}

// A host that is kept in FTPKeepAlive has its messages only to work in.
TEST_F(KeepAlive, LeavesTheConnectionToWhatMessagesDoWithIt) {
  server.put(R"({"/pub/there/": {}})");
  KeepAliveUntil([this] {
    for (int i = 0; i < 50; ++i) ASSERT_EQ(client->FTPDirExist("/pub/there", 0, 0, 0), 1) << error.szText;
    client->FTPDisconnect();
  });
  EXPECT_EQ(server.connections().size(), 1u);
}

// The worker looked in the very moment in which the client stood between two connections, and ended.
TEST_F(KeepAlive, GoesOnWithAConnectionThatAMessageHasReplaced) {
  const fixture::ScriptedFtp other;
  bool isBetween = true;
  script.onDisconnect = [&] {
    // Long enough for it to look; a machine that is slower sees less.
    if (std::exchange(isBetween, false)) platform::stoppableSleep(3 * kTurn);
  };
  KeepAliveUntil([&] {
    ASSERT_TRUE(client->FTPConnect(other.host().c_str(), "u", "p", other.port(), 1, 0, nullptr))
        << error.szText;
    mailbox.post([&] { other.disconnect(); });
  });
  EXPECT_EQ(client->m_bConnected, 0) << "it did not stay until the other connection's end";
  dispatchAll();
}

TEST_F(KeepAlive, StaysForSeveralTurnsAndDispatchesMessagesMeanwhile) {
  constexpr auto kTurns = 3 * kTurn + kTurn / 2;
  constexpr int kMessages = 100;
  const auto start = Clock::now();
  int messages = 0;
  Mailbox::Work again = [&] {
    ++messages;
    if (messages < kMessages || Clock::now() - start < kTurns) {
      mailbox.post(again);
    } else {
      server.disconnect();
    }
  };
  mailbox.post(again);
  client->FTPKeepAlive();
  EXPECT_GE(Clock::now() - start, kTurns);
  EXPECT_GE(messages, kMessages);
  EXPECT_EQ(server.connections().size(), 1u);
}

}  // namespace
}  // namespace storm
