// SPDX-License-Identifier: MIT
// FTPRmvDir.
#include "Src/RunningOperations.h"
#include "tests/client/ChangeTest.h"

namespace {

constexpr int kLine = 7059;
constexpr int kWorkerLine = 6880;
constexpr const char* kFailed = "TQXIP::FTPRemoveDir '/e' failed!";
constexpr const char* kWorkerFailed = "TQXIP::FTPRmvDirThr '/e' failed!";
constexpr const char* kNotFound = "TQXIP::FTPDirExist '/e' failed!";
constexpr int kNotFoundLine = 4746;

std::string withRule(const std::string& rule) { return R"({"tree": {"/e/": {}}, "rules": [)" + rule + "]}"; }

class RemoveDirectory : public ChangeTest {
 protected:
  QXBool remove(const char* path = "/e", std::uint32_t retries = 0) {
    return client.FTPRmvDir(path, retries, 0, 0);
  }
};

TEST_F(RemoveDirectory, RemovesAnEmptyDirectoryOverAConnectionOfItsOwn) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/e/": {}, "/pub/f/": {}}})");
  loginAt(server);
  EXPECT_EQ(remove("/pub/e"), 1);
  EXPECT_EQ(server.names("/pub"), Names{"f"});
  EXPECT_EQ(changes(server), (Names{"PWD", "RMD /pub/e"}));
  server.waitFor(R"({"connections": 3, "open": 0})");  // looked, removed, looked again
  for (const int connection : {1, 2, 3}) expectQuit(server, connection);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPRemoveDir '/pub/e' failed!");
}

TEST_F(RemoveDirectory, ASuccessLeavesTheReportThatTheDirectoryIsNotFoundAnyMore) {
  const fixture::ScriptedFtp server(withRule(""));
  loginAt(server);
  EXPECT_EQ(remove(), 1);
  EXPECT_THAT(record, ReportsFrom(kNotFound, kNotFoundLine));
}

TEST_F(RemoveDirectory, TheEntryLinesNameTheOperationAndThenItsWorker) {
  const fixture::ScriptedFtp server(withRule(""));
  loginAt(server);
  EXPECT_EQ(remove(), 1);
  EXPECT_EQ(client.messageAt("GetFinder"), "TQXIP::FTPRmvDir - IN: '/e'");
  Names connected;
  for (std::size_t i = 0; i < client.calls().size(); ++i) {
    if (client.calls()[i] == "OnConnect") connected.push_back(client.messages()[i]);
  }
  ASSERT_EQ(connected.size(), 3u);
  EXPECT_EQ(connected[1], "TQXIP::FTPRmvDirThr - IN: '/e'");
}

TEST_F(RemoveDirectory, AMissingDirectoryCountsAsRemovedWithoutAWorker) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(remove("/e", 3), 1);
  EXPECT_EQ(server.connections().size(), 1u);
  EXPECT_EQ(changes(server), Names{});
  EXPECT_STREQ(client.m_szMessage, kFailed);
  EXPECT_THAT(record, ReportsFrom(kNotFound, kNotFoundLine));
}

TEST_F(RemoveDirectory, AFileIsNoDirectoryAndSoCountsAsRemoved) {
  const fixture::ScriptedFtp server(R"({"tree": {"/e": "file"}})");
  loginAt(server);
  EXPECT_EQ(remove(), 1);
  EXPECT_TRUE(server.exists("/e"));
}

TEST_F(RemoveDirectory, WhereNobodyListensTheDirectoryIsNotFoundAndSoCountsAsRemoved) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(remove(), 1);
  EXPECT_EQ(record.nError, 12029u);
}

TEST_F(RemoveDirectory, ADirectoryWithContentStays) {
  const fixture::ScriptedFtp server(R"({"tree": {"/e/file": "x", "/e/sub/": {}}})");
  loginAt(server);
  EXPECT_EQ(remove(), 0);
  EXPECT_EQ(server.names("/e"), (Names{"file", "sub"}));
  EXPECT_EQ(changes(server), (Names{"PWD", "RMD /e"}));
  EXPECT_STREQ(client.m_szMessage, kFailed);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 12003u, kWorkerLine));
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_F(RemoveDirectory, TheReplyToTheRemovalDoesNotCountWhatIsThereDoes) {
  const fixture::ScriptedFtp lies(withRule(R"({"on": "RMD", "do": [{"reply": "250 Removed"}]})"));
  loginAt(lies);
  EXPECT_EQ(remove(), 0);
  EXPECT_TRUE(lies.exists("/e"));

  // The directory goes on another way while the server refuses: here with the second look at it.
  const fixture::ScriptedFtp refuses(withRule(R"({"on": "RMD", "do": [{"reply": "550 No"}]})"));
  loginHostAt(refuses);
  int looks = 0;
  host.dirExist = [&](const char*, std::uint32_t) -> QXBool { return ++looks == 1 ? 1 : 0; };
  EXPECT_EQ(host.FTPRmvDir("/e", 0, 0, 0), 1);
}

TEST_F(RemoveDirectory, NormalisesThePath) {
  for (const char* path : {"\\pub\\e\\", "/pub/e/", "//pub/e"}) {
    const fixture::ScriptedFtp server(R"({"tree": {"/pub/e/": {}}})");
    loginAt(server);
    EXPECT_EQ(remove(path), 1) << path;
    EXPECT_EQ(changes(server), (Names{"PWD", "RMD /pub/e"})) << path;
  }
}

TEST_F(RemoveDirectory, NormalisesThePathOnce) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/e/": {}}})");
  loginHostAt(server);
  host.dirExist = [looks = 0](const char*, std::uint32_t) mutable -> QXBool { return ++looks == 1 ? 1 : 0; };
  EXPECT_EQ(host.FTPRmvDir("///pub/e", 0, 0, 0), 1);
  EXPECT_EQ(changes(server), (Names{"PWD", "RMD //pub/e"}));
}

TEST_F(RemoveDirectory, LeavesARelativePathToTheServer) {
  const fixture::ScriptedFtp server(R"({"home": "/pub", "tree": {"/pub/sub/e/": {}}})");
  loginAt(server);
  EXPECT_EQ(remove("sub/e"), 1);
  EXPECT_EQ(changes(server), (Names{"PWD", "RMD sub/e"}));
  EXPECT_FALSE(server.exists("/pub/sub/e"));
}

TEST_F(RemoveDirectory, TakesNamesAsTheyAre) {
  for (const std::string& name : kOddNames) {
    const std::string path = "/pub/" + name;
    const fixture::ScriptedFtp server(treeWith(path + "/"));
    loginAt(server);
    EXPECT_EQ(remove(path.c_str()), 1) << name;
    EXPECT_FALSE(server.exists(path)) << name;
  }
}

TEST_F(RemoveDirectory, TheCurrentDirectoryIsNotLeftForItsOwnRemoval) {
  const fixture::ScriptedFtp server(R"({"home": "/pub/e", "tree": {"/pub/e/": {}}})");
  loginAt(server);
  EXPECT_EQ(remove("/pub/e"), 1);
  EXPECT_EQ(changes(server), (Names{"PWD", "RMD /pub/e"}));
}

TEST_F(RemoveDirectory, AServerThatDoesNotTellItsDirectoryRemovesNone) {
  for (const std::string& reply : {std::string("550 No"), R"(257 \"/)" + std::string(4095, 'a') + R"(\")"}) {
    const fixture::ScriptedFtp server(withRule(R"({"on": "PWD", "do": [{"reply": ")" + reply + R"("}]})"));
    loginAt(server);
    record = {};
    EXPECT_EQ(remove(), 0) << reply;
    EXPECT_EQ(changes(server), Names{"PWD"}) << reply;
    EXPECT_THAT(record, ReportsFrom(kWorkerFailed, kWorkerLine));
  }
}

TEST_F(RemoveDirectory, ARefusedRemovalIsTriedAsOftenAsTheRetriesSayTenMillisecondsApart) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server(withRule(R"({"on": "RMD", "do": [{"reply": "550 No"}]})"));
    loginAt(server);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(remove("/e", retries), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * retries);
    EXPECT_EQ(server.commandCount("RMD"), static_cast<int>(retries) + 1);
    EXPECT_EQ(server.connections().size(), 1 + 2 * (retries + 1));
  }
}

TEST_F(RemoveDirectory, EachLookHasTheRetriesThatAreLeftAndNoHostValues) {
  const fixture::ScriptedFtp server(withRule(""));
  loginHostAt(server);
  std::vector<std::uint32_t> counts;
  host.dirExist = [&](const char* path, std::uint32_t retries) -> QXBool {
    EXPECT_STREQ(path, counts.empty() ? "\\e" : "/e");
    counts.push_back(retries);
    return 1;
  };
  EXPECT_EQ(host.FTPRmvDir("\\e", 2, 11, 22), 0);
  EXPECT_EQ(counts, (std::vector<std::uint32_t>{2, 2, 1, 0}));
  EXPECT_FALSE(host.hostValuesWereGiven);
}

TEST_F(RemoveDirectory, TheReportHasTheNumberOfTheRemovalNotOfTheLookBehindIt) {
  const fixture::ScriptedFtp server(withRule(R"({"on": "RMD", "do": [{"reply": "550 Not empty"}]})"));
  loginHostAt(server);
  host.dirExist = [](const char*, std::uint32_t) {
    platform::setLastError(6);
    return QXBool{1};
  };
  EXPECT_EQ(host.FTPRmvDir("/e", 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 12003u, kWorkerLine));
}

TEST_F(RemoveDirectory, ARetryThatSucceedsIsASuccess) {
  const fixture::ScriptedFtp server(withRule(R"({"on": "RMD", "nth": 1, "do": [{"reply": "450 Busy"}]})"));
  loginAt(server);
  EXPECT_EQ(remove("/e", 1), 1);
  EXPECT_FALSE(server.exists("/e"));
}

TEST_F(RemoveDirectory, AConnectionThatBreaksInTheCommandIsReportedAs12030) {
  const fixture::ScriptedFtp server(withRule(R"({"on": "RMD", "do": ["close"]})"));
  loginAt(server);
  EXPECT_EQ(remove(), 0);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, 12030u, kWorkerLine));
}

TEST_F(RemoveDirectory, AWorkerThatIsNotLetInIsHeardOfByOnIPErrorWithoutACounter) {
  const fixture::ScriptedFtp server(withRule(R"({"on": "PASS", "after": 1, "do": [{"reply": "530 No"}]})"));
  loginAt(server);
  EXPECT_EQ(remove("/e", 1), 0);
  EXPECT_EQ(client.count("OnIPError 12014"), 2u);
  for (const std::string& call : client.calls()) EXPECT_EQ(call.find(" retries "), std::string::npos) << call;
  EXPECT_EQ(record.nError, 12014u);
  EXPECT_TRUE(server.exists("/e"));
}

TEST_F(RemoveDirectory, WithoutAPathOrAClientThatIsUpNothingIsAsked) {
  ExpectChecksItsArguments("FTPRemoveDir", kLine, [&](const char* path) { return remove(path, 3); });
}

TEST_F(RemoveDirectory, PathsThatMayNotGoToAServerAreAFailureNotAMissingDirectory) {
  ExpectRefusesBadPaths([&](const char* path) { return remove(path, 3); });
}

TEST_F(RemoveDirectory, AClientThatGoesDuringTheFirstLookIsNotTouchedAgain) {
  host.dirExist = [&](const char*, std::uint32_t) -> QXBool {
    RunningOperation::Abandon(host);
    return 1;
  };
  EXPECT_EQ(host.FTPRmvDir("/e", 3, 0, 0), 0);
  EXPECT_STREQ(host.m_szMessage, "TQXIP::FTPRmvDir - IN: '/e'");
  EXPECT_TRUE(IsBlank(record));
}

}  // namespace
