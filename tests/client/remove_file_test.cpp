// SPDX-License-Identifier: MIT
// FTPRmvFile.
#include "tests/client/ChangeTest.h"

namespace {

constexpr const char* kOneFile = R"({"tree": {"/a": "one"}})";

class RemoveFile : public ChangeTest {
 protected:
  static constexpr int kLine = 6687;
  static constexpr int kWorkerLine = 6520;
  static constexpr const char* kFailed = "TQXIP::FTPRmvFile '/a' failed!";
  static constexpr const char* kWorkerFailed = "TQXIP::FTPRmvFileThr '/a' failed!";

  QXBool remove(const char* path = "/a", std::uint32_t retries = 0) {
    return client.FTPRmvFile(path, 0, retries, 0, 0);
  }
};

TEST_F(RemoveFile, RemovesTheFileOverAConnectionOfItsOwn) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one", "/pub/b": "two"}})");
  loginAt(server);
  EXPECT_EQ(remove("/pub/a"), 1);
  EXPECT_EQ(server.names("/pub"), Names{"b"});
  EXPECT_EQ(server.commands(), (Names{"USER user", "PASS secret", "DELE /pub/a", "QUIT"}));
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPRmvFile '/pub/a' failed!");
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPRmvFileThr - IN: '/pub/a'");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(RemoveFile, NeverUsesTheConnectionOfFTPConnect) {
  const fixture::ScriptedFtp server(kOneFile);
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(remove(), 1);
  server.waitFor(R"({"connections": 2, "open": 1})");
  EXPECT_EQ(server.commands(2).at(2), "DELE /a");
}

TEST_F(RemoveFile, NormalisesThePathTwice) {
  for (const char* path : {"\\pub\\a", "/pub/a/", "//pub/a", "///pub/a", "/pub/a//"}) {
    const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one"}})");
    loginAt(server);
    EXPECT_EQ(remove(path), 1) << path;
    EXPECT_EQ(changes(server), Names{"DELE /pub/a"}) << path;
  }
}

TEST_F(RemoveFile, LeavesARelativePathToTheServer) {
  const fixture::ScriptedFtp server(R"({"home": "/pub", "tree": {"/pub/sub/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(remove("sub/a"), 1);
  EXPECT_EQ(changes(server), Names{"DELE sub/a"});
  EXPECT_FALSE(server.exists("/pub/sub/a"));
}

TEST_F(RemoveFile, TakesNamesAsTheyAre) {
  for (const std::string& name : kOddNames) {
    const std::string path = "/" + name;
    const fixture::ScriptedFtp server(treeWith(path));
    loginAt(server);
    EXPECT_EQ(remove(path.c_str()), 1) << name;
    EXPECT_FALSE(server.exists(path)) << name;
  }
}

TEST_F(RemoveFile, TakesAPathOf255Characters) {
  const std::string path = "/" + std::string(254, 'n');
  const fixture::ScriptedFtp server(treeWith(path));
  loginAt(server);
  EXPECT_EQ(remove(path.c_str()), 1);
  EXPECT_FALSE(server.exists(path));
}

TEST_F(RemoveFile, ARefusalIsReportedByTheWorkerWithItsNumber) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(remove(), 0);
  EXPECT_STREQ(client.m_szMessage, kFailed);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 12003u, kWorkerLine));
  EXPECT_EQ(client.count("OnIPError"), 0u);
  server.waitUntilAllClosed();
  expectQuit(server, 1);
}

TEST_F(RemoveFile, ADirectoryIsNoFile) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a/": {}}})");
  loginAt(server);
  EXPECT_EQ(remove(), 0);
  EXPECT_TRUE(server.exists("/a"));
}

TEST_F(RemoveFile, ARefusedRemovalIsTriedAsOftenAsTheRetriesSayTenMillisecondsApart) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server;
    loginAt(server);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(remove("/a", retries), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * retries);
    EXPECT_EQ(changes(server), Names(retries + 1, "DELE /a"));
    EXPECT_EQ(server.connections().size(), retries + 1);
  }
}

TEST_F(RemoveFile, ARetryThatSucceedsIsASuccessAndTheFirstAttemptIsReported) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": "x"}, "rules": [{"on": "DELE", "nth": 1, "do": [{"reply": "450 Busy"}]}]})");
  loginAt(server);
  EXPECT_EQ(remove("/a", 3), 1);
  EXPECT_EQ(changes(server), Names(2, "DELE /a"));
  EXPECT_STREQ(client.m_szMessage, kFailed);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 12003u, kWorkerLine));
}

TEST_F(RemoveFile, AConnectionThatBreaksInTheCommandIsReportedAs12030) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "x"}, "rules": [{"on": "DELE", "do": ["close"]}]})");
  loginAt(server);
  EXPECT_EQ(remove("/a", 1), 0);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 12030u, kWorkerLine));
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_EQ(changes(server), Names(2, "DELE /a"));
}

TEST_F(RemoveFile, AServerThatKeepsSilentIsReportedAs12002) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "DELE", "do": ["silent"]}]})");
  loginAt(server);
  shortenTimeouts();
  EXPECT_EQ(remove(), 0);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 12002u, kWorkerLine));
}

TEST_F(RemoveFile, WhereNobodyListensOnIPErrorHearsOfEachAttemptWithoutACounter) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(remove("/a", 2), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 3u);
  EXPECT_EQ(client.count("OnIPError"), 3u);
  for (const std::string& call : client.calls()) EXPECT_EQ(call.find(" retries "), std::string::npos) << call;
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[12029 QXIP 1187]"));
  EXPECT_STREQ(client.m_szMessage, kFailed);
}

TEST_F(RemoveFile, WithoutAPathOrAClientThatIsUpNoWorkerStarts) {
  ExpectChecksItsArguments("FTPRmvFile", kLine, [&](const char* path) { return remove(path, 3); });
}

TEST_F(RemoveFile, PathsThatMayNotGoToAServerDoNot) {
  ExpectRefusesBadPaths([&](const char* path) { return remove(path, 3); });
}

TEST_F(RemoveFile, WithoutAnErrorRecordTheMessageSaysIt) {
  const fixture::ScriptedFtp server;
  RecordingClient silent;
  silent.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
  EXPECT_EQ(silent.FTPRmvFile("/a", 0, 0, 0, 0), 0);
  EXPECT_STREQ(silent.m_szMessage, kFailed);
}

TEST_F(RemoveFile, ACountlessNumberOfRetriesEndsWithTheCancel) {
  client.m_RemoteSystem[0] = '\0';  // nobody to ask: each attempt fails at once
  std::size_t attempts = 0;
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    attempts = client.count("OnIPError");
    return attempts >= 20 ? 1 : 0;
  };
  EXPECT_EQ(remove("/a", 0xFFFFFFFF), 0);
  EXPECT_GE(attempts, 20u);
}

// Content destruction before the removal.
TEST_F(RemoveFile, WipePassesAskForTheDestructionOfTheContentFirst) {
  const fixture::ScriptedFtp server(kOneFile);
  loginHostAt(server);
  std::string asked;
  host.destroyContent = [&](const char* path, std::uint32_t method, std::uint32_t retries) -> QXBool {
    asked = std::string(path) + " " + std::to_string(method) + " " + std::to_string(retries) + " " +
            (server.exists("/a") ? "before" : "after");
    return 1;
  };
  EXPECT_EQ(host.FTPRmvFile("\\a", 7, 5, 11, 22), 1);
  EXPECT_EQ(asked, "\\a 7 5 before");
  EXPECT_FALSE(host.hostValuesWereGiven);
  EXPECT_FALSE(server.exists("/a"));
}

TEST_F(RemoveFile, AFailedDestructionRemovesNothingAndIsRetriedWithTheCountThatIsLeft) {
  const fixture::ScriptedFtp server(kOneFile);
  loginHostAt(server);
  std::vector<std::uint32_t> counts;
  host.destroyContent = [&](const char*, std::uint32_t, std::uint32_t retries) -> QXBool {
    counts.push_back(retries);
    platform::setLastError(5);
    return 0;
  };
  EXPECT_EQ(host.FTPRmvFile("/a", 1, 2, 0, 0), 0);
  EXPECT_EQ(counts, (std::vector<std::uint32_t>{2, 1, 0}));
  EXPECT_EQ(changes(server), Names{});
  EXPECT_TRUE(server.exists("/a"));
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 5u, kWorkerLine));
}

TEST_F(RemoveFile, WithoutWipePassesNothingIsDestroyedFirst) {
  const fixture::ScriptedFtp server(kOneFile);
  loginHostAt(server);
  bool asked = false;
  host.destroyContent = [&](const char*, std::uint32_t, std::uint32_t) -> QXBool { return asked = true; };
  EXPECT_EQ(host.FTPRmvFile("/a", 0, 0, 0, 0), 1);
  EXPECT_FALSE(asked);
}

TEST_F(RemoveFile, TheLibrarysOwnDestructionLetsTheRemovalGoOn) {
  const fixture::ScriptedFtp server(kOneFile);
  loginAt(server);
  EXPECT_EQ(client.FTPRmvFile("/a", 3, 0, 0, 0), 1);
  EXPECT_EQ(changes(server), Names{"DELE /a"});
}

}  // namespace
