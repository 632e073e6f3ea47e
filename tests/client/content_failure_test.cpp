// SPDX-License-Identifier: MIT
// What goes wrong with an attempt to move content, how often it is tried again, and what the host hears of
// it.
#include <chrono>

#include "tests/client/ContentOperation.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kPause{10};  // before each retry
constexpr const char* kRefuses = R"({"reply": "550 No"})";

class ContentFailure : public ContentOperationTest {};

TEST_P(ContentFailure, AClientThatIsNotInitialisedAsksNobody) {
  const fixture::ScriptedFtp server(script(""));
  loginAt(server);
  client.m_bInitialized = 0;
  client.poll = [](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    ADD_FAILURE() << "no worker, no poll";
    return 1;
  };
  if (operation.verb == std::string("STOR")) {
    EXPECT_EQ(run(3), 0);
  } else {
    void* data = nullptr;
    std::uint32_t size = 0;
    const bool reads = operation.function == std::string("FTPReadFile");
    EXPECT_EQ(reads ? client.FTPReadFile("/a", &data, &size, 0, 3, 0, 0) : run(3), 0);
  }
  client.m_bInitialized = 1;
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_TRUE(client.calls().empty());
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_THAT(record, ReportsFrom(failedLine, operation.line));
}

TEST_P(ContentFailure, ARefusedLoginIsTriedAsOftenAsTheRetriesSay) {
  expectRefusedLogins(failedLine, [&](std::uint32_t retries) { return run(retries); });
}

TEST_P(ContentFailure, NobodyListens) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(run(1), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 2u);
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_EQ(client.m_szMessage, failedLine);
}

TEST_P(ContentFailure, ARefusedTransferIsTriedAsOftenAsTheRetriesSay) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server(script(rule("", kRefuses)));
    loginAt(server);
    client.forget();
    const auto start = steady_clock::now();
    EXPECT_EQ(run(retries), 0);
    EXPECT_GE(steady_clock::now() - start, kPause * retries);
    EXPECT_EQ(transfers(server), static_cast<int>(retries) + 1);
    EXPECT_EQ(client.count("OnIPError 12003"), retries + 1);
    EXPECT_EQ(record.nError, 12003u);
    EXPECT_THAT(record, ShowsError(12003));
    EXPECT_EQ(client.m_szMessage, failedLine);
    EXPECT_TRUE(server.matches("/a", kContentSeed, kContentSize));
    EXPECT_FALSE(server.exists("/b"));
  }
}

// A write is granted three runs more. The others have asked for the size meanwhile: the end of that
// connection has ended the client's being connected.
TEST_P(ContentFailure, AServerThatHangsUpIsTriedAsOftenAsTheRetriesSay) {
  const int runs = operation.function == std::string("FTPWriteFile") ? 1 + 2 + 3 : 1 + 2;
  const fixture::ScriptedFtp server(script(rule("", "\"close\"")));
  loginAt(server);
  EXPECT_EQ(run(2), 0);
  EXPECT_EQ(transfers(server), runs);
  EXPECT_EQ(client.count("OnIPError 12030"), static_cast<std::size_t>(runs));
  EXPECT_EQ(record.nError, 12030u);
}

TEST_P(ContentFailure, OnIPErrorOfATransferGetsTheCounter) {
  const fixture::ScriptedFtp server(script(rule("", kRefuses)));
  loginAt(server);
  EXPECT_EQ(run(2), 0);
  std::string counters;
  for (const std::string& call : client.calls()) {
    if (call.starts_with("OnIPError 12003")) counters += call.substr(call.rfind(" retries "));
  }
  EXPECT_EQ(counters, " retries 2 retries 1 retries 0");
}

TEST_P(ContentFailure, ARetryThatSucceedsIsASuccessThatStillReportsTheFailedAttempt) {
  const fixture::ScriptedFtp server(script(rule(R"("nth": 1)", kRefuses)));
  loginAt(server);
  EXPECT_EQ(run(3), 1);
  EXPECT_TRUE(arrived(server));
  EXPECT_EQ(transfers(server), 2);
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_EQ(record.nError, 12003u);
}

TEST_P(ContentFailure, EveryAttemptClosesItsConnections) {
  const fixture::ScriptedFtp server(script(rule("", kRefuses)));
  loginAt(server);
  EXPECT_EQ(run(1), 0);
  server.waitUntilAllClosed();
  const auto connections = server.connections();
  for (const auto& connection : connections) EXPECT_EQ(connection.commands.back(), "QUIT");
}

TEST_P(ContentFailure, WithoutAnErrorRecordAFailureChangesTheMessageAlone) {
  const fixture::ScriptedFtp server(script(rule("", kRefuses)));
  RecordingClient silent;
  silent.FTPSetLogin("127.0.0.1", "u", "p", server.port(), 1);
  EXPECT_EQ(operation.run(silent, {target, 1}), 0);
  EXPECT_EQ(silent.m_szMessage, failedLine);
}

TEST_P(ContentFailure, AStallIsGivenUp) {
  const fixture::ScriptedFtp server(
      script(rule("", R"({"normal": {"stall_after": 5000, "gate": "never"}})")));
  loginAt(server);
  shortenTimeouts();
  EXPECT_EQ(run(), 0);
  EXPECT_THAT(record, ShowsError(12002));
  EXPECT_EQ(client.m_szMessage, failedLine);
}

TEST_P(ContentFailure, AStallInOneAttemptIsMadeUpForByTheNext) {
  const fixture::ScriptedFtp server(
      script(rule(R"("nth": 1)", R"({"normal": {"stall_after": 5000, "gate": "never"}})")));
  loginAt(server);
  shortenTimeouts();
  EXPECT_EQ(run(1), 1);
  EXPECT_TRUE(arrived(server));
}

INSTANTIATE_TEST_SUITE_P(Operations, ContentFailure, testing::ValuesIn(kContentOperations), nameOfOperation);

}  // namespace
