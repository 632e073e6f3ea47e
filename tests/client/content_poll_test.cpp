// SPDX-License-Identifier: MIT
// Cancelling and reconnecting through OnPoll while content moves.
#include "tests/client/ContentOperation.h"

namespace {

// Stops in the middle of the data, or (an upload vanishes in buffers) before the last reply.
constexpr const char* kStalls =
    R"({"normal": {"stall_after": 5000, "gate": "never", "final_gate": "never"}})";

class ContentPoll : public ContentOperationTest {};

TEST_P(ContentPoll, CancellingAtTheFirstCallEndsTheOperation) {
  const fixture::ScriptedFtp server(script(""));
  loginAt(server);
  int asked = 0;
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    ++asked;
    return 1;
  };
  EXPECT_EQ(run(3), 0);
  EXPECT_EQ(asked, 1);
  EXPECT_FALSE(exists());
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_THAT(record, ReportsFrom(failedLine, operation.line));
}

TEST_P(ContentPoll, CancellingAStalledTransferEndsTheOperationAndItsConnections) {
  const fixture::ScriptedFtp server(script(rule("", kStalls)));
  loginAt(server);
  atGate(server, "never", cancels);
  EXPECT_EQ(run(3), 0);
  server.waitUntilAllClosed();
  EXPECT_EQ(transfers(server), 1);
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_THAT(record, ReportsFrom(failedLine, operation.line));
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_P(ContentPoll, CancellingWhileTheServerHasNotGreetedEndsTheOperation) {
  const fixture::Blackhole server;
  loginAt(server);
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    server.waitFor(R"({"connections": 1})");
    return 1;
  };
  EXPECT_EQ(run(3), 0);
  server.waitFor(R"({"closed": 1})");
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_THAT(record, ReportsFrom(failedLine, operation.line));
}

TEST_P(ContentPoll, CancellingEndsTheRetries) {
  const fixture::ScriptedFtp server(script(rule("", R"({"reply": "550 No"})")));
  loginAt(server);
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    return server.ruleFired(0) > 3 ? 1 : 0;
  };
  EXPECT_EQ(run(4'000'000'000), 0);
  server.waitUntilAllClosed();
  EXPECT_EQ(client.m_szMessage, failedLine);
}

TEST_P(ContentPoll, CancellingWinsOverReconnecting) {
  const fixture::ScriptedFtp server(script(rule("", kStalls)));
  loginAt(server);
  atGate(server, "never", [](QXBool* reconnect) -> QXBool {
    *reconnect = 1;
    return 1;
  });
  EXPECT_EQ(run(3), 0);
  server.waitUntilAllClosed();
  EXPECT_EQ(transfers(server), 1);
}

TEST_P(ContentPoll, ReconnectingRunsTheOperationAgainButTheFirstOutcomeStands) {
  const fixture::ScriptedFtp server(script(rule(R"("nth": 1)", kStalls)));
  loginAt(server);
  atGate(server, "never", reconnects);
  EXPECT_EQ(operation.run(client, {.target = target, .retries = 3, .secondRunSucceeds = true}), 0);
  server.waitUntilAllClosed();
  EXPECT_EQ(transfers(server), 2);
  EXPECT_TRUE(arrived(server));
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_THAT(record, ReportsFrom(failedLine, operation.line));
}

TEST_P(ContentPoll, TheRunAfterAReconnectHasOneRetry) {
  const fixture::ScriptedFtp server(
      script(rule(R"("nth": 1)", kStalls) + ", " + rule("", R"({"reply": "550 No"})")));
  loginAt(server);
  atGate(server, "never", reconnects);
  EXPECT_EQ(run(5), 0);
  EXPECT_EQ(transfers(server), 3);
  EXPECT_EQ(record.nError, 12003u);
}

TEST_P(ContentPoll, EveryCallGetsTheCallersValuesAndTheTransferBlock) {
  const fixture::ScriptedFtp server(script(""));
  loginAt(server);
  std::set<std::vector<QXHostValue>> asked;
  client.poll = [&](QXHostValue first, QXHostValue second, QXHostValue transfer, QXBool*) -> QXBool {
    asked.insert({first, second, transfer});
    return 0;
  };
  EXPECT_EQ(operation.run(client, {target, 0, 11, 22}), 1);
  EXPECT_TRUE(arrived(server));
  const auto block = reinterpret_cast<QXHostValue>(&client.m_Transfer);
  EXPECT_EQ(asked, (std::set<std::vector<QXHostValue>>{{11, 22, block}}));
}

TEST_P(ContentPoll, ASuccessAfterACancelIsWhole) {
  const fixture::ScriptedFtp server(script(rule(R"("nth": 1)", kStalls)));
  loginAt(server);
  atGate(server, "never", cancels);
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(run(), 1);
  EXPECT_TRUE(arrived(server));
}

INSTANTIATE_TEST_SUITE_P(Operations, ContentPoll, testing::ValuesIn(kContentOperations), nameOfOperation);

}  // namespace
