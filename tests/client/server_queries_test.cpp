// SPDX-License-Identifier: MIT
// The queries at a server: over a connection of their own, and with the object's finders.
#include "tests/client/ServerTest.h"

namespace {

constexpr const char* kTree =
    R"("tree": {"/a/x": "four", "/pub/x/": {}, "/pub/Data/": {}, "/big": {"size": 5000000000, "zeros": true}})";

std::string script(const std::string& more) {
  return std::string("{") + kTree + (more.empty() ? "" : ", " + more) + "}";
}

// A server with MLST, and one that has only LIST and SIZE; and each with and without FTPConnect before.
struct Setting {
  const char* name;
  const char* script;
  bool connected;
};

class ServerQueries : public ServerTest, public testing::WithParamInterface<Setting> {
 protected:
  const fixture::ScriptedFtp server{script(GetParam().script)};

  void SetUp() override {
    if (GetParam().connected) {
      ASSERT_EQ(connectTo(server), 1);
    } else {
      loginAt(server);
    }
  }
  bool dirExists(const char* path) { return client.FTPDirExist(path, 0, 0, 0) != 0; }
  bool fileExists(const char* path) { return client.FTPFileExists(path, 0, 0, 0) != 0; }
};

TEST_P(ServerQueries, AFileIsAFileAndNoDirectory) {
  EXPECT_TRUE(fileExists("/a/x"));
  EXPECT_FALSE(dirExists("/a/x"));
}

TEST_P(ServerQueries, ADirectoryIsADirectoryAndNoFile) {
  EXPECT_TRUE(dirExists("/pub/x"));
  EXPECT_FALSE(fileExists("/pub/x"));
}

// The first entry of a directory passed for the directory where it is called the same.
TEST_P(ServerQueries, ADirectoryIsNoFileThoughItHoldsOneOfItsOwnName) {
  server.put(R"({"/opt/app/app": "x"})");
  EXPECT_FALSE(fileExists("/opt/app"));
  EXPECT_TRUE(fileExists("/opt/app/app"));
}

// "250 Okay" alone made a file of size 0 of whatever was asked for.
TEST_P(ServerQueries, AnAnswerToMlstWithoutAFactIsNone) {
  server.reconfigure(R"({"rules": [{"on": "MLST", "do": [{"reply": "250 Okay"}]}]})");
  EXPECT_FALSE(fileExists("/none"));
  EXPECT_TRUE(fileExists("/a/x"));
  EXPECT_EQ(client.FTPFileSize("/a/x", 0, 0, 0), 4u);
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_EQ(client.FTPFileSize("/none", 0, 0, 0), 0u);
  EXPECT_GT(client.count("OnIPError"), 0u) << "a size that cannot be told is a failure";
}

TEST_P(ServerQueries, TheSpellingOfAPathDoesNotMatter) {
  for (const char* path : {"/pub", "/pub/", "\\pub", "/PUB", "/pub/data", "\\pub\\DATA\\"}) {
    EXPECT_TRUE(dirExists(path)) << path;
  }
}

TEST_P(ServerQueries, WhatIsMissingIsNotThereAndNoFailureOfTheWorker) {
  EXPECT_FALSE(dirExists("/none"));
  EXPECT_FALSE(dirExists("/none/x"));
  EXPECT_FALSE(fileExists("/none"));
  EXPECT_FALSE(fileExists("/none/x"));
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_P(ServerQueries, SizesAreModuloTwoToThe32AndZeroForMissingFiles) {
  EXPECT_EQ(client.FTPFileSize("/a/x", 0, 0, 0), 4u);
  EXPECT_EQ(client.FTPFileSize("/big", 0, 0, 0), 705'032'704u);
  EXPECT_EQ(client.FTPFileSize("/none", 0, 0, 0), 0u);
}

TEST_P(ServerQueries, TheRootNeedsNoListing) {
  for (const char* root : {"/", "\\", "//"}) EXPECT_TRUE(dirExists(root)) << root;
  for (const char* verb : {"LIST", "MLSD", "MLST", "NLST", "CWD"})
    EXPECT_EQ(server.commandCount(verb), 0) << verb;
}

TEST_P(ServerQueries, AQueryOpensAConnectionOfItsOwnExactlyWhereTheObjectHasNone) {
  EXPECT_TRUE(fileExists("/a/x"));
  EXPECT_TRUE(dirExists("/pub"));
  EXPECT_EQ(client.FTPFileSize("/a/x", 0, 0, 0), 4u);
  if (GetParam().connected) {
    EXPECT_EQ(server.connections().size(), 1u);
    EXPECT_NE(client.m_pFTPFileFind, nullptr);
    EXPECT_EQ(client.m_bConnected, 1);
  } else {
    server.waitFor(R"({"connections": 3, "open": 0})");
    for (const int connection : {1, 2, 3}) expectQuit(server, connection);
    EXPECT_EQ(client.m_pFTPFileFind, nullptr);
  }
}

TEST_P(ServerQueries, PathsThatMayNotGoToAServerDoNot) {
  const auto before = server.commands();
  for (const std::string& path :
       {std::string(4096, 'a'), std::string(5'000, 'a'), std::string("/a\r\nDELE /a/x"), std::string("/a\n"),
        std::string("/\x7f")}) {
    EXPECT_FALSE(dirExists(path.c_str()));
    EXPECT_FALSE(fileExists(path.c_str()));
    EXPECT_EQ(client.FTPFileSize(path.c_str(), 0, 0, 0), 0u);
  }
  EXPECT_EQ(server.commands(), before);
  EXPECT_EQ(server.connections().size(), GetParam().connected ? 1u : 0u);
}

TEST_P(ServerQueries, APathOf255CharactersIsAskedFor) {
  const std::string name(254, 'n');
  server.put("{\"/" + name + "\": \"12345\"}");
  EXPECT_TRUE(fileExists(("/" + name).c_str()));
  EXPECT_EQ(client.FTPFileSize(("/" + name).c_str(), 0, 0, 0), 5u);
}

// A name that no path of the client can hold was taken for an empty one, and the root has that, too.
TEST_P(ServerQueries, TheRootIsNoFileWhateverItsFirstEntryIsCalled) {
  for (const std::size_t length : {1u, 255u, 256u, 259u, 260u, 261u, 3000u}) {
    const std::string name(length, 'n');
    server.reconfigure(
        R"({"rules": [{"on": "LIST", "do": [{"normal": {"lines": ["-rw-r--r-- 1 r r 7 Jan 12 2024 )" + name +
        R"("]}}]}, {"on": "MLSD", "do": [{"normal": {"lines": ["type=file;size=7; )" + name + R"("]}}]}]})");
    for (const char* root : {"/", "\\"}) EXPECT_FALSE(fileExists(root)) << length;
    EXPECT_FALSE(fileExists("/pub")) << length;
    EXPECT_FALSE(dirExists("/none")) << length;
    EXPECT_EQ(client.FTPFileSize("/", 0, 0, 0), 7u) << length;
  }
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Settings, ServerQueries,
    testing::Values(Setting{"OwnConnectionMlst", "", false},
                    Setting{"OwnConnectionList", R"("features": ["size", "epsv"])", false},
                    Setting{"ObjectsFindersMlst", "", true},
                    Setting{"ObjectsFindersList", R"("features": ["size", "epsv"])", true}),
    [](const auto& instance) { return instance.param.name; });

class QueryAfterConnect : public ServerTest {};

TEST_F(QueryAfterConnect, OpensAConnectionOfItsOwnWhereTheFindersAreGone) {
  const fixture::ScriptedFtp server(script(""));
  const fixture::RefusedPort nobody;
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(connectTo(nobody), 0);
  loginAt(server);
  EXPECT_EQ(client.FTPFileExists("/a/x", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPDirExist("/pub/x", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPFileSize("/a/x", 0, 0, 0), 4u);
  server.waitFor(R"({"connections": 4, "open": 0})");
}

// Failures of the connection that a query makes for itself.
class QueryFailure : public ServerTest {
 protected:
  void expectAttempts(const fixture::ScriptedFtp& server, int count) {
    server.waitFor("{\"connections\": " + std::to_string(count) + ", \"open\": 0}");
    EXPECT_EQ(server.connections().size(), static_cast<std::size_t>(count));
  }
};

using RefusedLogin = QueryFailure;

constexpr const char* kRefusesLogin = R"({"password": "another"})";

TEST_F(RefusedLogin, EachRetryOfAQueryIsOneMoreConnection) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server(kRefusesLogin);
    loginAt(server);
    EXPECT_EQ(client.FTPDirExist("/pub", retries, 0, 0), 0);
    expectAttempts(server, static_cast<int>(retries) + 1);
  }
}

TEST_F(RefusedLogin, TheThreeQueriesAllRetry) {
  const fixture::ScriptedFtp server(kRefusesLogin);
  loginAt(server);
  EXPECT_EQ(client.FTPDirExist("/pub", 1, 0, 0), 0);
  EXPECT_EQ(client.FTPFileExists("/pub", 1, 0, 0), 0);
  EXPECT_EQ(client.FTPFileSize("/pub", 1, 0, 0), 0u);
  expectAttempts(server, 6);
}

TEST_F(RefusedLogin, OnIPErrorHearsOfItOncePerAttemptWithoutACounter) {
  const fixture::ScriptedFtp server(kRefusesLogin);
  loginAt(server);
  EXPECT_EQ(client.FTPFileExists("/pub", 2, 0, 0), 0);
  EXPECT_EQ(client.count("OnIPError 12014"), 3u);
  EXPECT_EQ(client.count("OnIPError"), 3u);
  for (const std::string& call : client.calls()) EXPECT_EQ(call.find(" retries "), std::string::npos) << call;
  EXPECT_EQ(record.nError, 12014u);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[12014 QXIP 1187]"));
}

TEST_F(QueryFailure, NobodyListens) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(client.FTPDirExist("/pub", 0, 0, 0), 0);
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDirExist '/pub' failed!");
}

TEST_F(QueryFailure, WithoutLoginDataThereIsNobodyToAsk) {
  EXPECT_EQ(client.FTPDirExist("/pub", 0, 0, 0), 0);
  EXPECT_EQ(client.count("OnIPError"), 1u);
  EXPECT_EQ(record.bSet, 1u);
}

TEST_F(QueryFailure, AServerThatHangsUpInAListingIsHeardOfAs12030WithTheCounter) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "MLSD", "do": ["close"]}]})");
  loginAt(server);
  EXPECT_EQ(client.FTPDirExist("/pub", 2, 0, 0), 0);
  EXPECT_EQ(client.count("OnIPError 12030"), 6u);
  EXPECT_EQ(record.nError, 12030u);
  expectAttempts(server, 1 + 2 + 3);
}

TEST_F(QueryFailure, AVeryLongTextOfTheServerReachesOnIPErrorCutTo1023Characters) {
  const std::string text = "226 Output truncated " + std::string(3000, 'x');
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/": {}}, "rules": [{"on": "MLSD", "do": [{"normal": {"final": ")" + text +
      R"("}}]}]})");
  loginAt(server);
  EXPECT_EQ(client.FTPDirExist("/pub", 0, 0, 0), 0);
  EXPECT_EQ(client.count("OnIPError 12003 " + text.substr(0, 1023) + " retries 0"), 1u);
}

TEST_F(QueryFailure, AServerThatStallsInAListingIsHeardOfAs12002) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "MLSD", "do": ["silent"]}]})");
  loginAt(server);
  shortenTimeouts();
  EXPECT_EQ(client.FTPDirExist("/pub", 1, 0, 0), 0);
  EXPECT_EQ(client.count("OnIPError 12002"), 3u);
  EXPECT_EQ(record.nError, 12002u);
  expectAttempts(server, 1 + 1 + 1);
}

TEST_F(QueryFailure, AServerThatStallsInAFileQueryIsHeardOfAs12002) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "MLST", "do": ["silent"]}]})");
  loginAt(server);
  shortenTimeouts();
  EXPECT_EQ(client.FTPFileExists("/pub", 0, 0, 0), 0);
  EXPECT_EQ(client.FTPFileSize("/pub", 0, 0, 0), 0u);
  EXPECT_EQ(client.count("OnIPError 12002"), 4u);
  expectAttempts(server, 2 * (1 + 1));
}

TEST_F(QueryFailure, AServerThatHangsUpOnceIsAskedAgain) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/": {}}, "rules": [{"on": "MLSD", "nth": 1, "do": ["close"]}]})");
  loginAt(server);
  EXPECT_EQ(client.FTPDirExist("/pub", 1, 0, 0), 1);
  expectAttempts(server, 2);
}

// Each run that it is granted logs in anew.
TEST_F(QueryFailure, AHangUpOnTheObjectsOwnConnectionLeavesTheClientConnected) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "MLSD", "do": ["close"]}]})");
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(client.FTPDirExist("/pub", 0, 0, 0), 0);
  EXPECT_EQ(client.m_bConnected, 1);
  EXPECT_EQ(client.count("OnIPError 12030"), 1u + 3u);
  EXPECT_EQ(client.count("OnDisconnect"), 0u);
  EXPECT_EQ(server.connections().size(), 1u + 3u);
}

TEST_F(QueryFailure, AStallOfTheObjectsOwnConnectionIsFollowedByOneRun) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "MLSD", "do": ["silent"]}]})");
  shortenTimeouts();
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(client.FTPDirExist("/pub", 0, 0, 0), 0);
  EXPECT_EQ(record.nError, 12002u);
  EXPECT_EQ(client.m_bConnected, 1);
  EXPECT_EQ(client.count("OnIPError 12002"), 1u + 1u);
  EXPECT_EQ(server.connections().size(), 1u + 1u);
}

TEST_F(QueryFailure, ARefusalOfTheListingIsAMissingPathNotAFailure) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": ["MLSD", "MLST"], "do": [{"reply": "550 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(client.FTPDirExist("/pub", 3, 0, 0), 0);
  EXPECT_EQ(client.FTPFileExists("/pub", 3, 0, 0), 0);
  EXPECT_EQ(client.count("OnIPError"), 0u);
  expectAttempts(server, 2);
}

TEST_F(QueryFailure, ARefusalOfTheSizeQueryIsAFailureOfTheWorker) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(client.FTPFileSize("/none", 2, 0, 0), 0u);
  EXPECT_EQ(client.count("OnIPError"), 3u);
  for (const char* left : {"2", "1", "0"}) {
    EXPECT_EQ(client.count(std::string("OnIPError 18 FTP-Error! retries ") + left), 1u) << left;
  }
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 18));
  expectAttempts(server, 3);
}

}  // namespace
