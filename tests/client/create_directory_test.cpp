// SPDX-License-Identifier: MIT
// FTPCreateDir.
#include "Src/RunningOperations.h"
#include "tests/client/ChangeTest.h"

namespace {

constexpr int kLine = 7454;
constexpr int kWorkerLine = 7275;
constexpr const char* kFailed = "TQXIP::FTPCreateDir '/a' failed!";
constexpr const char* kWorkerFailed = "TQXIP::FTPCreateDirThr '/a' failed!";
constexpr const char* kNotFound = "TQXIP::FTPDirExist '/a' failed!";
constexpr int kNotFoundLine = 4746;
constexpr const char* kRefusesA =
    R"({"rules": [{"on": "MKD", "argument": "/a", "do": [{"reply": "550 No"}]}]})";

QXBool notThere(const char*, std::uint32_t) { return 0; }

class CreateDirectory : public ChangeTest {
 protected:
  QXBool create(const char* path = "/a", std::uint32_t retries = 0) {
    return client.FTPCreateDir(path, retries, 0, 0);
  }
};

TEST_F(CreateDirectory, MakesTheMissingDirectoriesAboveAsWell) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a/": {}}})");
  loginAt(server);
  EXPECT_EQ(create("/a/b/c"), 1);
  EXPECT_TRUE(server.exists("/a/b/c"));
  EXPECT_EQ(changes(server), (Names{"MKD /", "MKD /a", "MKD /a/b", "MKD /a/b/c"}));
  server.waitFor(R"({"connections": 4, "open": 0})");
  for (const int connection : {1, 2, 3, 4}) expectQuit(server, connection);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPCreateDir '/a/b/c' failed!");
}

TEST_F(CreateDirectory, ASuccessLeavesTheReportThatTheDirectoryWasNotFound) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(create(), 1);
  EXPECT_THAT(record, ReportsFrom(kNotFound, kNotFoundLine));
}

TEST_F(CreateDirectory, TheEntryLinesNameTheOperationAndThenItsWorker) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(create(), 1);
  EXPECT_EQ(client.messageAt("GetFinder"), "TQXIP::FTPCreateDir - IN: '/a'");
  const Names messages = client.messages();
  EXPECT_THAT(messages, testing::Contains("TQXIP::FTPCreateDirThr - IN: '/a'"));
}

TEST_F(CreateDirectory, AnExistingDirectoryIsASuccessWithoutAWorker) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a/b/c/": {}}})");
  loginAt(server);
  for (const char* path : {"/a/b/c", "\\a\\b\\c\\", "/a/b/C"}) EXPECT_EQ(create(path, 3), 1) << path;
  EXPECT_EQ(changes(server), Names{});
  EXPECT_EQ(server.connections().size(), 3u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPCreateDir '/a/b/C' failed!");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(CreateDirectory, TheRootIsAlwaysThere) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(create("/"), 1);
  EXPECT_EQ(changes(server), Names{});
}

TEST_F(CreateDirectory, IsThereAlreadyWhenTheWorkerLooks) {
  const fixture::ScriptedFtp server;
  loginHostAt(server);
  int looks = 0;
  host.dirExist = [&](const char*, std::uint32_t) -> QXBool { return ++looks == 2 ? 1 : 0; };
  EXPECT_EQ(host.FTPCreateDir("/a/b", 0, 0, 0), 1);
  EXPECT_EQ(changes(server), Names{});
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(CreateDirectory, IsThereOnceTheDirectoriesAboveAreMade) {
  const fixture::ScriptedFtp server;
  loginHostAt(server);
  int looks = 0;
  host.dirExist = [&](const char*, std::uint32_t) -> QXBool { return ++looks == 3 ? 1 : 0; };
  EXPECT_EQ(host.FTPCreateDir("/a/b", 0, 0, 0), 1);
  EXPECT_EQ(changes(server), (Names{"MKD /", "MKD /a"}));
}

// Which directories are made for a path as it is written.
struct Walk {
  const char* path;
  std::vector<std::string> commands;
};

class CreateWalk : public CreateDirectory, public testing::WithParamInterface<Walk> {};

TEST_P(CreateWalk, MakesTheseDirectories) {
  const fixture::ScriptedFtp server(R"({"home": "/home", "tree": {"/home/": {}}})");
  loginHostAt(server);
  host.dirExist = &notThere;
  EXPECT_EQ(host.FTPCreateDir(GetParam().path, 0, 0, 0), 1);
  EXPECT_EQ(changes(server), GetParam().commands);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, CreateWalk,
    testing::Values(Walk{"/pub", {"MKD /", "MKD /pub"}}, Walk{"/pub/", {"MKD /", "MKD /pub"}},
                    Walk{"/pub/x/", {"MKD /", "MKD /pub", "MKD /pub/x"}},
                    // A relative path is walked from the root and then made where the server stands.
                    Walk{"new", {"MKD new"}}, Walk{"new/", {"MKD new"}},
                    // Backslashes make nothing above.
                    Walk{"\\new", {"MKD /new"}}, Walk{"new\\", {"MKD new"}},
                    // The dropped first character shifts the letters.
                    Walk{"//new", {"MKD /", "MKD /", "MKD /new"}},
                    // Of three first characters one is dropped.
                    Walk{"///new", {"MKD /", "MKD /", "MKD /", "MKD //new"}}));

// As above, where the last command is refused because a directory above is missing.
class RefusedWalk : public CreateDirectory, public testing::WithParamInterface<Walk> {};

TEST_P(RefusedWalk, AsksForTheseDirectories) {
  const fixture::ScriptedFtp server(R"({"home": "/home", "tree": {"/home/": {}}})");
  loginHostAt(server);
  host.dirExist = &notThere;
  EXPECT_EQ(host.FTPCreateDir(GetParam().path, 0, 0, 0), 0);
  EXPECT_EQ(changes(server), GetParam().commands);
}

INSTANTIATE_TEST_SUITE_P(Paths, RefusedWalk,
                         testing::Values(Walk{"\\pub\\x\\y", {"MKD /pub/x/y"}},
                                         Walk{"/pub\\x/y", {"MKD /", "MKD /pub/x", "MKD /pub/x/y"}},
                                         Walk{"//pub/x", {"MKD /", "MKD /", "MKD /ub/", "MKD /pub/x"}},
                                         Walk{"pub/x/y", {"MKD /pub", "MKD /pub/x", "MKD pub/x/y"}}));

TEST_F(CreateDirectory, ARelativePathOf255CharactersIsWalkedWhole) {
  const std::string path = std::string(127, 'a') + "/" + std::string(127, 'b');
  const fixture::ScriptedFtp server(R"({"home": "/home", "tree": {"/home/": {}}})");
  loginHostAt(server);
  host.dirExist = &notThere;
  EXPECT_EQ(host.FTPCreateDir(path.c_str(), 0, 0, 0), 0);
  EXPECT_EQ(changes(server), (Names{"MKD /" + std::string(127, 'a'), "MKD " + path}));
}

TEST_F(CreateDirectory, TakesNamesAsTheyAre) {
  for (const std::string& name : kOddNames) {
    const fixture::ScriptedFtp server(R"({"tree": {"/pub/": {}}})");
    loginAt(server);
    const std::string path = "/pub/" + name + "/x";
    EXPECT_EQ(create(path.c_str()), 1) << name;
    EXPECT_TRUE(server.exists(path)) << name;
    EXPECT_EQ(server.names("/pub"), Names{name});
  }
}

TEST_F(CreateDirectory, ARefusalIsReportedFirstByTheLookThatDidNotFindTheDirectory) {
  const fixture::ScriptedFtp server(kRefusesA);
  loginAt(server);
  EXPECT_EQ(create(), 0);
  EXPECT_STREQ(client.m_szMessage, kFailed);
  EXPECT_THAT(record, ReportsFrom(kNotFound, kNotFoundLine));
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

// What the server does instead of making the directory.
struct Trouble {
  const char* name;
  const char* step;
  std::uint32_t error;
};

class CreateTrouble : public CreateDirectory, public testing::WithParamInterface<Trouble> {};

TEST_P(CreateTrouble, IsReportedByTheWorkerWithItsNumberAndTriedAgain) {
  const auto& [name, step, error] = GetParam();
  const fixture::ScriptedFtp server(std::string(R"({"rules": [{"on": "MKD", "argument": "/a", "do": [)") +
                                    step + "]}]}");
  loginHostAt(server);
  shortenTimeouts();
  host.dirExist = &notThere;
  EXPECT_EQ(host.FTPCreateDir("/a", 1, 0, 0), 0);
  EXPECT_EQ(lineCount(server, "MKD /a"), 2);
  EXPECT_THAT(record, ReportsLastError(kWorkerFailed, error, kWorkerLine));
}

INSTANTIATE_TEST_SUITE_P(Steps, CreateTrouble,
                         testing::Values(Trouble{"Refusal", R"({"reply": "550 No"})", 12003},
                                         Trouble{"LostConnection", "\"close\"", 12030},
                                         Trouble{"Silence", "\"silent\"", 12002}),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(CreateDirectory, AConnectionThatBreaksForADirectoryAboveFailsTheCreation) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "MKD", "argument": "/a", "do": ["close"]}]})");
  loginHostAt(server);
  host.dirExist = &notThere;
  EXPECT_EQ(host.FTPCreateDir("/a/b", 0, 0, 0), 0);
  EXPECT_EQ(changes(server), (Names{"MKD /", "MKD /a"}));
}

TEST_F(CreateDirectory, ARefusedCreationIsTriedAsOftenAsTheRetriesSayTenMillisecondsApart) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server(kRefusesA);
    loginAt(server);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(create("/a", retries), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * retries);
    EXPECT_EQ(lineCount(server, "MKD /a"), static_cast<int>(retries) + 1);
  }
}

TEST_F(CreateDirectory, EachLookHasTheRetriesThatAreLeftAndNoHostValues) {
  const fixture::ScriptedFtp server(kRefusesA);
  loginHostAt(server);
  std::vector<std::uint32_t> counts;
  host.dirExist = [&](const char*, std::uint32_t retries) -> QXBool {
    counts.push_back(retries);
    return 0;
  };
  EXPECT_EQ(host.FTPCreateDir("/a", 1, 11, 22), 0);
  EXPECT_EQ(counts, (std::vector<std::uint32_t>{1, 1, 1, 0, 0}));
}

TEST_F(CreateDirectory, ARetryThatSucceedsIsASuccess) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "MKD", "argument": "/a", "nth": 1, "do": [{"reply": "450 Busy"}]}]})");
  loginAt(server);
  EXPECT_EQ(create("/a", 3), 1);
  EXPECT_EQ(lineCount(server, "MKD /a"), 2);
  EXPECT_TRUE(server.exists("/a"));
}

TEST_F(CreateDirectory, OnPollIsNeverAsked) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  int polls = 0;
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool { return ++polls > 0; };
  EXPECT_EQ(client.FTPCreateDir("/a/b", 0, 11, 22), 1);
  EXPECT_EQ(polls, 0);
}

TEST_F(CreateDirectory, WhereNobodyListensOnIPErrorHearsOfTheLookAndOfEachAttemptWithoutACounter) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(create("/a", 0), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 2u);
  for (const std::string& call : client.calls()) EXPECT_EQ(call.find(" retries "), std::string::npos) << call;
  EXPECT_EQ(record.nError, 12029u);
  EXPECT_STREQ(client.m_szMessage, kFailed);
}

TEST_F(CreateDirectory, WithoutAPathOrAClientThatIsUpNothingIsAsked) {
  ExpectChecksItsArguments("FTPCreateDir", kLine, [&](const char* path) { return create(path, 3); });
}

TEST_F(CreateDirectory, PathsThatMayNotGoToAServerDoNot) {
  ExpectRefusesBadPaths([&](const char* path) { return create(path, 3); });
}

TEST_F(CreateDirectory, AClientThatGoesDuringTheFirstLookIsNotTouchedAgain) {
  host.dirExist = [&](const char*, std::uint32_t) -> QXBool {
    RunningOperation::Abandon(host);
    return 0;
  };
  EXPECT_EQ(host.FTPCreateDir("/a", 3, 0, 0), 0);
  EXPECT_STREQ(host.m_szMessage, "TQXIP::FTPCreateDir - IN: '/a'");
  EXPECT_TRUE(IsBlank(record));
}

}  // namespace
