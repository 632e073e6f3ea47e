// SPDX-License-Identifier: MIT
// FTPRenameFile, on the caller's thread.
#include <chrono>

#include "tests/client/ContentTest.h"
#include "tests/client/NoTurns.h"
#include "tests/client/SlotHost.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kLine = 9357;

class Rename : public ContentTest {
 protected:
  QXBool rename(const std::string& from = "/a", const std::string& to = "/b", std::uint32_t retries = 0) {
    return client.FTPRenameFile(from.c_str(), to.c_str(), retries);
  }
  static std::string failedLine(const std::string& from = "/a", const std::string& to = "/b") {
    return "TQXIP::FTPRenameFile from '" + from + "' to '" + to + "' failed!";
  }
};

TEST_F(Rename, GivesTheFileItsNewName) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  expectNoTurns(client, [&] { EXPECT_EQ(rename(), 1); });
  EXPECT_EQ(server.names("/"), Names{"b"});
  EXPECT_EQ(server.content("/b"), "one");
  EXPECT_EQ(client.m_szMessage, failedLine());
  EXPECT_TRUE(IsBlank(record));
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPRenameFile - IN: From '/a' to '/b'");
  expectAttempts(server, 1);
}

TEST_F(Rename, MovesBetweenFolders) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one", "/pub/": {}}})");
  loginAt(server);
  EXPECT_EQ(rename("/a", "/pub/b"), 1);
  EXPECT_EQ(server.content("/pub/b"), "one");
}

TEST_F(Rename, NormalisesBothPathsOnce) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(rename("\\pub\\a/", "\\pub\\b\\"), 1);
  EXPECT_EQ(rename("//pub/b", "//pub/c"), 1);
  EXPECT_EQ(rename("///pub/c", "///pub/d"), 1);
  Names sent;
  for (const std::string& line : server.commands()) {
    if (line.starts_with("RN")) sent.push_back(line);
  }
  EXPECT_EQ(sent, (Names{"RNFR /pub/a", "RNTO /pub/b", "RNFR /pub/b", "RNTO /pub/c", "RNFR //pub/c",
                         "RNTO //pub/d"}));
}

TEST_F(Rename, OddNamesAreNamesLikeOthers) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/start": "one"}})");
  loginAt(server);
  std::string from = "/d/start";
  for (const std::string& name : kOddNames) {
    const std::string to = "/d/" + name;
    EXPECT_EQ(rename(from, to), 1) << name;
    EXPECT_EQ(server.names("/d"), Names{name});
    from = to;
  }
}

TEST_F(Rename, WorksOnAClientThatIsNotInitialised) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  client.m_bInitialized = 0;
  EXPECT_EQ(rename(), 1);
  client.m_bInitialized = 1;
  EXPECT_TRUE(server.exists("/b"));
}

TEST_F(Rename, NeverUsesTheConnectionOfFTPConnect) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(rename(), 1);
  EXPECT_EQ(server.connections().size(), 2u);
  EXPECT_NE(client.m_pFtpConnection, nullptr);
}

TEST_F(Rename, AMissingFileIsTriedAsOftenAsTheRetriesSay) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server;
    loginAt(server);
    const auto start = steady_clock::now();
    EXPECT_EQ(rename("/a", "/b", retries), 0);
    EXPECT_GE(steady_clock::now() - start, milliseconds(10) * retries);
    EXPECT_EQ(server.commandCount("RNFR"), static_cast<int>(retries) + 1);
    EXPECT_EQ(server.commandCount("RNTO"), 0);
    expectAttempts(server, retries + 1);
  }
  EXPECT_EQ(client.m_szMessage, failedLine());
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_THAT(record, ReportsFrom(failedLine(), kLine));
  EXPECT_THAT(record, ShowsError(12003));
}

TEST_F(Rename, ARefusedNewNameIsAFailure) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": "one"}, "rules": [{"on": "RNTO", "do": [{"reply": "553 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(rename("/a", "/b", 1), 0);
  EXPECT_EQ(server.names("/"), Names{"a"});
  EXPECT_EQ(server.commandCount("RNTO"), 2);
  EXPECT_THAT(record, ReportsFrom(failedLine(), kLine));
}

TEST_F(Rename, ARetryThatSucceedsIsASuccessWithoutReport) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": "one"}, "rules": [{"on": "RNFR", "nth": 1, "do": [{"reply": "450 Busy"}]}]})");
  loginAt(server);
  EXPECT_EQ(rename("/a", "/b", 3), 1);
  EXPECT_EQ(server.commandCount("RNFR"), 2);
  EXPECT_TRUE(IsBlank(record));
}

struct Loss {
  const char* name;
  const char* step;
  int error;
};

class RenameLoss : public Rename, public testing::WithParamInterface<Loss> {};

TEST_P(RenameLoss, OfTheConnectionIsAFailure) {
  const fixture::ScriptedFtp server(std::string_view(
      std::string(R"({"tree": {"/a": "one"}, "rules": [{"on": "RNTO", "do": [)") + GetParam().step + "]}]}"));
  loginAt(server);
  if (GetParam().error == 12002) shortenTimeouts();
  EXPECT_EQ(rename("/a", "/b", 1), 0);
  EXPECT_EQ(server.commandCount("RNTO"), 2);
  EXPECT_THAT(record, ReportsFrom(failedLine(), kLine));
  EXPECT_THAT(record, ShowsError(GetParam().error));
}

INSTANTIATE_TEST_SUITE_P(Ends, RenameLoss,
                         testing::Values(Loss{"Closed", "\"close\"", 12030},
                                         Loss{"Reset", "\"reset\"", 12031},
                                         Loss{"Silent", "\"silent\"", 12002}),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(Rename, ARefusedLoginIsTriedAsOftenAsTheRetriesSay) {
  expectRefusedLogins(failedLine(), [&](std::uint32_t retries) { return rename("/a", "/b", retries); });
}

TEST_F(Rename, NobodyListens) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(rename(), 0);
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_EQ(client.m_szMessage, failedLine());
}

TEST_F(Rename, NullOrEmptyPathsFailOnTheOpenedConnection) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(client.FTPRenameFile(nullptr, "/b", 0), 0);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPRenameFile - IN: 'NULL'");
  EXPECT_EQ(client.m_szMessage, failedLine("(null)"));
  EXPECT_THAT(record, ReportsLastError(failedLine("(null)"), 87u, kLine));
  EXPECT_EQ(client.FTPRenameFile("/a", nullptr, 0), 0);
  EXPECT_EQ(rename("", "/b"), 0);
  EXPECT_EQ(rename("/a", ""), 0);
  expectAttempts(server, 4);
  EXPECT_EQ(server.commandCount("RNFR"), 0);
}

TEST_F(Rename, PathsThatMayNotGoToAServerDoNot) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  for (const std::string& path : kBadPaths) {
    record = {};
    EXPECT_EQ(rename(path, "/b", 1), 0);
    EXPECT_EQ(rename("/a", path, 1), 0);
    EXPECT_THAT(std::string(record.szText), testing::EndsWith("[87 QXIP 9357]"));
  }
  EXPECT_EQ(server.connections().size(), 0u);
}

TEST_F(Rename, EachRetryGoesThroughTheSlotAndEndsWithItsOwnLine) {
  const fixture::ScriptedFtp server;
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.takesReports = true;
  EXPECT_EQ(host.FTPRenameFile("/a", "/b", 2), 0);
  EXPECT_EQ(host.calls(), (Names{"FTPRenameFile /a /b 2", "FTPRenameFile /a /b 1", "FTPRenameFile /a /b 0"}));
  EXPECT_EQ(host.messagesAfter, Names(3, failedLine()));
  EXPECT_EQ(host.reports.size(), 3u);
}

TEST_F(Rename, WithoutAnErrorRecordAFailureChangesTheMessageAlone) {
  const fixture::ScriptedFtp server;
  RecordingClient silent;
  silent.FTPSetLogin("127.0.0.1", "u", "p", server.port(), 1);
  EXPECT_EQ(silent.FTPRenameFile("/a", "/b", 0), 0);
  EXPECT_EQ(silent.m_szMessage, failedLine());
}

}  // namespace
