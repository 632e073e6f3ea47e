// SPDX-License-Identifier: MIT
// FTPDownloadFile.
#include <chrono>

#include "tests/client/NoTurns.h"
#include "tests/client/SlotHost.h"
#include "tests/client/TransferTest.h"

namespace {

constexpr int kLine = 3841;

class Download : public TransferTest {
 protected:
  [[nodiscard]] std::string failedLine(const std::string& remote = "/a") const {
    return "TQXIP::FTPDownloadFile from '" + remote + "'to '" + local + "' failed!";
  }
};

class DownloadSizes : public Download, public testing::WithParamInterface<std::tuple<std::uint64_t, bool>> {};

TEST_P(DownloadSizes, BringsEveryByte) {
  const auto [size, passive] = GetParam();
  const fixture::ScriptedFtp server("{\"tree\": {\"/a\": {\"size\": " + std::to_string(size) +
                                    ", \"seed\": 5}}}");
  loginAt(server, passive);
  EXPECT_EQ(download(), 1);
  EXPECT_TRUE(testing_support::Pattern(5).matchesFile(local, size));
  EXPECT_EQ(client.m_szMessage, failedLine());
  EXPECT_TRUE(IsBlank(record));
  EXPECT_EQ(server.dataConnections().at(0).mode, passive ? "passive" : "active");
  server.waitUntilAllClosed();
  expectQuit(server, 1);
}

INSTANTIATE_TEST_SUITE_P(Sizes, DownloadSizes,
                         testing::Combine(testing::Values(0u, 1u, 4095u, 4096u, 4097u, 1u << 20),
                                          testing::Bool()),
                         [](const auto& instance) {
                           return std::to_string(std::get<0>(instance.param)) +
                                  (std::get<1>(instance.param) ? "Passive" : "Active");
                         });

TEST_F(Download, NormalisesTheRemotePathTwice) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one"}})");
  loginAt(server);
  for (const char* remote : {"\\pub\\a", "///pub/a", "/pub/a//"}) {
    EXPECT_EQ(download(remote), 1) << remote;
    std::filesystem::remove(local);
  }
  EXPECT_THAT(server.commands(), testing::Contains("RETR /pub/a").Times(3)) << "with one slash in front";
}

TEST_F(Download, OddNamesAreNamesLikeOthers) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/": {}}})");
  loginAt(server);
  for (const std::string& name : kOddNames) {
    server.putText("/d/" + name, "of " + name);
    EXPECT_EQ(download(("/d/" + name).c_str()), 1) << name;
    EXPECT_EQ(content(), "of " + name);
    std::filesystem::remove(local);
  }
}

TEST_F(Download, AsksNobodyAndDispatchesNothingOnItsWay) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": {"size": 1048576}}})");
  loginAt(server);
  expectNoTurns(client, [&] { EXPECT_EQ(download(), 1); });
}

TEST_F(Download, WorksOnAClientThatIsNotInitialised) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  client.m_bInitialized = 0;
  EXPECT_EQ(download(), 1);
  EXPECT_EQ(content(), "one");
  client.m_bInitialized = 1;
}

TEST_F(Download, NeverUsesTheConnectionOfFTPConnect) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(download(), 1);
  EXPECT_EQ(server.connections().size(), 2u);
  EXPECT_EQ(server.dataConnections().at(0).connection, 2);
  EXPECT_NE(client.m_pFtpConnection, nullptr);
  EXPECT_EQ(client.m_bConnected,
            0);  // any session's notifications move the flag, and the last one was a close
}

TEST_F(Download, TheEntryLineNamesBothPaths) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(download(), 1);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPDownloadFile - IN: From '/a' to '" + local + "'");
}

TEST_F(Download, AnExistingLocalFileIsNotOverwritten) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "remote"}})");
  loginAt(server);
  write("local");
  EXPECT_EQ(download(), 0);
  EXPECT_EQ(content(), "local");
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_EQ(client.m_szMessage, failedLine());
  EXPECT_THAT(record, ReportsLastError(failedLine(), 80u, kLine));
}

TEST_F(Download, AnExistingLocalFileCountsAsTheDownloadOfAnEmptyRemoteFile) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": ""}})");
  loginAt(server);
  write("local");
  EXPECT_EQ(download(), 1);
  EXPECT_EQ(content(), "local");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Download, AnExistingLocalFileCountsAsTheDownloadOfAMissingRemoteFile) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("local");
  EXPECT_EQ(download("/none"), 1);
  EXPECT_EQ(content(), "local");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Download, AnsweringByAnExistingLocalFileForgetsAnEarlierReport) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("local");
  client.OnFailure();
  EXPECT_EQ(download("/none"), 1);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Download, AMissingRemoteFileFailsAndLeavesNoLocalFile) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  client.OnFailure();  // an earlier report, which is forgotten here too
  EXPECT_EQ(download("/none"), 0);
  EXPECT_FALSE(exists());
  EXPECT_THAT(record, ReportsFrom(failedLine("/none"), kLine));
}

TEST_F(Download, AMissingRemoteFileIsAskedForOnceMoreThanTheRetriesSay) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server;
    loginAt(server);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(download("/none", retries), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * retries);
    EXPECT_EQ(server.commandCount("RETR"), static_cast<int>(retries) + 1);
  }
}

TEST_F(Download, TheSizeIsAskedForThroughTheSlotWithTheNormalisedPathAndOneRetry) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one"}})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.size = [] { return 3u; };
  write("mine");
  EXPECT_EQ(host.FTPDownloadFile("\\pub\\a", local.c_str(), 0), 0);
  EXPECT_EQ(host.calls(), (Names{"FTPDownloadFile \\pub\\a " + local + " 0", "FTPFileSize /pub/a 1 0 0"}));
  EXPECT_EQ(content(), "mine");
}

TEST_F(Download, EveryAttemptReports) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": "one"}, "rules": [{"on": "RETR", "do": [{"reply": "550 No"}]}]})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.takesReports = true;
  EXPECT_EQ(host.FTPDownloadFile("/a", local.c_str(), 3), 0);
  EXPECT_EQ(host.reports.size(), 4u);
  for (const std::string& report : host.reports)
    EXPECT_THAT(report, testing::StartsWith(failedLine())) << "and [12003 QXIP 3841]";
}

TEST_F(Download, NobodyListens) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(download("/a", 1), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 2u);
  EXPECT_EQ(client.count("OnIPError"), 2u);
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_EQ(client.m_szMessage, failedLine());
  EXPECT_FALSE(exists());
}

TEST_F(Download, ARetryThatSucceedsIsASuccess) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": "one"}, "rules": [{"on": "RETR", "nth": 1, "do": [{"reply": "450 Busy"}]}]})");
  loginAt(server);
  EXPECT_EQ(download("/a", 1), 1);
  EXPECT_EQ(content(), "one");
  EXPECT_EQ(client.m_szMessage, failedLine());
}

TEST_F(Download, ARefusedLoginIsTriedAsOftenAsTheRetriesSay) {
  expectRefusedLogins(failedLine(), [&](std::uint32_t retries) { return download("/a", retries); });
  EXPECT_EQ(client.messageAt("OnIPError"), "TQXIP::FTPDownloadFile - IN: From '/a' to '" + local + "'");
  EXPECT_FALSE(exists());
}

TEST_F(Download, EveryAttemptClosesItsConnection) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(download("/none", 1), 0);
  server.waitUntilAllClosed();
  const std::size_t connections = server.connections().size();
  for (std::size_t i = 1; i <= connections; ++i) expectQuit(server, static_cast<int>(i));
}

TEST_F(Download, NullOrEmptyPathsFailOnTheOpenedConnection) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(client.FTPDownloadFile(nullptr, local.c_str(), 0), 0);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPDownloadFile - IN: 'NULL'");
  const std::string title = "TQXIP::FTPDownloadFile from '(null)'to '" + local + "' failed!";
  EXPECT_EQ(client.m_szMessage, title);
  EXPECT_THAT(record, ReportsLastError(title, 87u, kLine));
  EXPECT_EQ(client.FTPDownloadFile("/a", nullptr, 0), 0);
  EXPECT_EQ(client.FTPDownloadFile("", local.c_str(), 0), 0);
  EXPECT_EQ(client.FTPDownloadFile("/a", "", 0), 0);
  EXPECT_EQ(server.connections().size(), 4u);
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_FALSE(exists());
}

TEST_F(Download, PathsThatMayNotGoToAServerDoNot) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  for (const std::string& remote :
       {std::string(4096, 'a'), std::string(5'000, 'a'), std::string("/a\r\nDELE b"), std::string("/\x7f")}) {
    EXPECT_EQ(download(remote.c_str(), 1), 0);
  }
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[87 QXIP 3841]"));
}

TEST_F(Download, AShortFileIsNeverASuccess) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 100000}}, "rules": [{"on": "RETR", "do": [{"normal": {"close_after": 40000}}]}]})");
  loginAt(server);
  EXPECT_EQ(download("/a", 1), 0);
  EXPECT_FALSE(exists());
  EXPECT_EQ(server.commandCount("RETR"), 2);
  EXPECT_THAT(record, ReportsFrom(failedLine(), kLine));
}

TEST_F(Download, ABrokenTransferIsBroughtWholeByTheNextAttempt) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 100000, "seed": 9}},
          "rules": [{"on": "RETR", "nth": 1, "do": [{"normal": {"reset_after": 50000}}]}]})");
  loginAt(server);
  EXPECT_EQ(download("/a", 1), 1);
  EXPECT_TRUE(testing_support::Pattern(9).matchesFile(local, 100000));
}

TEST_F(Download, AStallIsGivenUp) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 100000}},
          "rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 10, "gate": "never"}}]}]})");
  loginAt(server);
  shortenTimeouts();
  EXPECT_EQ(download(), 0);
  EXPECT_FALSE(exists());
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[12002 QXIP 3841]"));
}

TEST_F(Download, IntoAFolderThatIsNotThereFails) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  const std::string nowhere = folder.file("none") + "/x";
  EXPECT_EQ(client.FTPDownloadFile("/a", nowhere.c_str(), 0), 0);
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[3 QXIP 3841]"));
}

TEST_F(Download, TheReportHasTheNumberOfTheTransferNotOfWhatIsAskedAfterwards) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "RETR", "do": [{"reply": "425 No data"}]}]})");
  loginAt(server);
  EXPECT_EQ(download("/none"), 0);
  EXPECT_THAT(record, ReportsLastError(failedLine("/none"), 12029u, kLine));
}

TEST_F(Download, WithoutAnErrorRecordAFailureChangesTheMessageAlone) {
  const fixture::ScriptedFtp server;
  RecordingClient silent;
  silent.FTPSetLogin("127.0.0.1", "u", "p", server.port(), 1);
  EXPECT_EQ(silent.FTPDownloadFile("/none", local.c_str(), 0), 0);
  EXPECT_EQ(silent.m_szMessage, failedLine("/none"));
  EXPECT_EQ(silent.m_bConnected, 0);
}

}  // namespace
