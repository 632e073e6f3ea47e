// SPDX-License-Identifier: MIT
// FTPUploadFile, with its required answers to a refused upload: a local file with content counts as done, an
// empty one does not.
#include <chrono>

#include "tests/client/NoTurns.h"
#include "tests/client/SlotHost.h"
#include "tests/client/TransferTest.h"

namespace {

constexpr const char* kRefusesUploads = R"({"rules": [{"on": "STOR", "do": [{"reply": "553 No"}]}]})";

class Upload : public TransferTest {
 protected:
  static constexpr int kLine = 4004;
  [[nodiscard]] std::string failedLine() const {
    return "TQXIP::FTPUploadFile from '" + local + "'to '/a' failed!";
  }
};

class UploadSizes : public Upload, public testing::WithParamInterface<std::tuple<std::uint64_t, bool>> {};

TEST_P(UploadSizes, SendsEveryByte) {
  const auto [size, passive] = GetParam();
  const fixture::ScriptedFtp server;
  loginAt(server, passive);
  testing_support::Pattern(6).writeFile(local, size);
  EXPECT_EQ(upload(), 1);
  EXPECT_TRUE(server.matches("/a", 6, size));
  EXPECT_EQ(client.m_szMessage, failedLine());
  EXPECT_TRUE(IsBlank(record));
  EXPECT_EQ(server.dataConnections().at(0).mode, passive ? "passive" : "active");
  server.waitUntilAllClosed();
  expectQuit(server, 1);
}

INSTANTIATE_TEST_SUITE_P(Sizes, UploadSizes,
                         testing::Combine(testing::Values(0u, 1u, 4095u, 4096u, 4097u, 1u << 20),
                                          testing::Bool()),
                         [](const auto& instance) {
                           return std::to_string(std::get<0>(instance.param)) +
                                  (std::get<1>(instance.param) ? "Passive" : "Active");
                         });

TEST_F(Upload, ReplacesARemoteFile) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "a longer old content"}})");
  loginAt(server);
  write("new");
  EXPECT_EQ(upload(), 1);
  EXPECT_EQ(server.content("/a"), "new");
}

TEST_F(Upload, LeavesTheLocalFileAsItIs) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("mine");
  EXPECT_EQ(upload(), 1);
  EXPECT_EQ(content(), "mine");
}

TEST_F(Upload, NormalisesTheRemotePathTwice) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/": {}}})");
  loginAt(server);
  write("x");
  EXPECT_EQ(upload("\\pub\\b"), 1);
  EXPECT_EQ(upload("///pub/c"), 1);
  EXPECT_EQ(server.names("/pub"), (Names{"b", "c"}));
  EXPECT_THAT(server.commands(), testing::IsSupersetOf({"STOR /pub/b", "STOR /pub/c"}));
}

TEST_F(Upload, OddNamesAreNamesLikeOthers) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/": {}}})");
  loginAt(server);
  for (const std::string& name : kOddNames) {
    write("of " + name);
    EXPECT_EQ(upload(("/d/" + name).c_str()), 1) << name;
    ASSERT_TRUE(server.exists("/d/" + name)) << name;
    EXPECT_EQ(server.content("/d/" + name), "of " + name);
  }
}

TEST_F(Upload, CountsInTheTransferBlockWhereTheHostAsksForIt) {
  const fixture::ScriptedFtp server;
  testing_support::Pattern(6).writeFile(local, 300'000);
  loginAt(server);
  EXPECT_EQ(upload(), 1);
  EXPECT_EQ(client.m_Transfer.bValid, 0);
  EXPECT_EQ(client.m_Transfer.nTransferred, 0u);
  EXPECT_EQ(client.m_Transfer.nTotal, 0u);
  client.FTPSetLogin((server.host() + ";progress=uploads").c_str(), "user", "secret", server.port(), 1);
  EXPECT_EQ(upload(), 1);
  EXPECT_EQ(client.m_Transfer.bValid, 1);
  EXPECT_EQ(client.m_Transfer.nTransferred, 300'000u);
  EXPECT_EQ(client.m_Transfer.nTotal, 300'000u);
}

TEST_F(Upload, AsksNobodyAndDispatchesNothingOnItsWay) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  testing_support::Pattern(6).writeFile(local, 1 << 20);
  expectNoTurns(client, [&] { EXPECT_EQ(upload(), 1); });
}

TEST_F(Upload, WorksOnAClientThatIsNotInitialised) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("x");
  client.m_bInitialized = 0;
  EXPECT_EQ(upload(), 1);
  EXPECT_EQ(server.content("/a"), "x");
  client.m_bInitialized = 1;
}

TEST_F(Upload, TheEntryLineNamesTheLocalPathFirst) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("x");
  EXPECT_EQ(upload(), 1);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPUploadFile - IN: From '" + local + "' to '/a'");
}

TEST_F(Upload, ARefusedFileWithContentIsTheRequiredSuccess) {
  const fixture::ScriptedFtp server(kRefusesUploads);
  loginAt(server);
  write("content");
  EXPECT_EQ(upload("/a", 3), 1);
  EXPECT_FALSE(server.exists("/a"));
  EXPECT_EQ(server.commandCount("STOR"), 1);
  EXPECT_EQ(client.m_szMessage, failedLine());
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Upload, ARefusedEmptyFileIsTheRequiredFailure) {
  const fixture::ScriptedFtp server(kRefusesUploads);
  loginAt(server);
  write("");
  EXPECT_EQ(upload(), 0);
  EXPECT_FALSE(server.exists("/a"));
  EXPECT_THAT(record, ReportsFrom(failedLine(), kLine));
}

TEST_F(Upload, ARefusedEmptyFileIsTriedOnceMoreThanTheRetriesSay) {
  const fixture::ScriptedFtp server(kRefusesUploads);
  loginAt(server);
  write("");
  int attempts = 0;
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(upload("/a", retries), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * retries);
    attempts += static_cast<int>(retries) + 1;
    EXPECT_EQ(server.commandCount("STOR"), attempts);
  }
}

TEST_F(Upload, EveryAttemptReports) {
  const fixture::ScriptedFtp server;
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.takesReports = true;
  EXPECT_EQ(host.FTPUploadFile("/a", local.c_str(), 3), 0) << "the local file is missing";
  EXPECT_EQ(host.reports.size(), 4u);
  for (const std::string& report : host.reports) EXPECT_THAT(report, testing::StartsWith(failedLine()));
}

TEST_F(Upload, NobodyListensAndSoItIsNoSuccess) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  write("content");
  EXPECT_EQ(upload("/a", 1), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 2u);
  EXPECT_EQ(client.count("OnIPError"), 2u);
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_EQ(client.m_szMessage, failedLine());
}

TEST_F(Upload, AStallIsGivenUpAndIsTheRequiredSuccessForAFileWithContent) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"final_gate": "never"}}]}]})");
  loginAt(server);
  shortenTimeouts();
  write("content");
  EXPECT_EQ(upload("/a", 3), 1);
  EXPECT_EQ(server.commandCount("STOR"), 1);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(Upload, ATransferThatBreaksOffIsTheRequiredSuccessForAFileWithContent) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"reset_after": 1000}}]}]})");
  loginAt(server);
  testing_support::Pattern(6).writeFile(local, 1 << 20);
  EXPECT_EQ(upload(), 1);
}

TEST_F(Upload, AMissingLocalFileFailsAndNothingIsStored) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(upload("/a", 1), 0);
  EXPECT_EQ(server.commandCount("STOR"), 0);
  EXPECT_EQ(server.connections().size(), 2u);
  EXPECT_FALSE(server.exists("/a"));
  EXPECT_THAT(record, ReportsLastError(failedLine(), 2u, kLine));
}

TEST_F(Upload, NullOrEmptyPathsFailOnTheOpenedConnection) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("x");
  EXPECT_EQ(client.FTPUploadFile(nullptr, local.c_str(), 0), 0);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPUploadFile - IN: 'NULL'");
  const std::string title = "TQXIP::FTPUploadFile from '" + local + "'to '(null)' failed!";
  EXPECT_EQ(client.m_szMessage, title);
  EXPECT_THAT(record, ReportsLastError(title, 87u, kLine));
  EXPECT_EQ(client.FTPUploadFile("/a", nullptr, 0), 0);
  EXPECT_EQ(client.FTPUploadFile("", local.c_str(), 0), 0);
  EXPECT_EQ(client.FTPUploadFile("/a", "", 0), 0);
  EXPECT_EQ(server.connections().size(), 4u);
  EXPECT_EQ(server.commandCount("STOR"), 0);
}

TEST_F(Upload, PathsThatMayNotGoToAServerDoNot) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("x");
  for (const std::string& remote :
       {std::string(4096, 'a'), std::string(5'000, 'a'), std::string("/a\r\nDELE b"), std::string("/\x7f")}) {
    EXPECT_EQ(upload(remote.c_str(), 1), 0);
  }
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[87 QXIP 4004]"));
}

TEST_F(Upload, ARefusedLoginIsTriedAsOftenAsTheRetriesSayAndNoSuccess) {
  write("content");
  expectRefusedLogins(failedLine(), [&](std::uint32_t retries) { return upload("/a", retries); });
}

TEST_F(Upload, TheReportHasTheNumberOfTheTransferNotOfWhatIsTriedAfterwards) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "STOR", "nth": 1, "do": [{"reply": "425 No data"}]}, {"on": "STOR", "do": ["close"]}]})");
  loginAt(server);
  write("");
  EXPECT_EQ(upload(), 0);
  EXPECT_THAT(record, ReportsLastError(failedLine(), 12029u, kLine));
}

TEST_F(Upload, WithoutAnErrorRecordAFailureChangesTheMessageAlone) {
  const fixture::ScriptedFtp server;
  RecordingClient silent;
  silent.FTPSetLogin("127.0.0.1", "u", "p", server.port(), 1);
  EXPECT_EQ(silent.FTPUploadFile("/a", local.c_str(), 0), 0);
  EXPECT_EQ(silent.m_szMessage, failedLine());
}

}  // namespace
