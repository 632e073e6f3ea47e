// SPDX-License-Identifier: MIT
// FTPCreateNewDir: the free-name rule.
#include <cstring>

#include "Src/RunningOperations.h"
#include "support/BoundedText.h"
#include "tests/client/ChangeTest.h"
#include "tests/client/ScriptedFinder.h"

namespace {

class NewDirectory : public ChangeTest {
 protected:
  static constexpr int kLine = 7560;
  char created[256] = "untouched";

  QXBool create(const char* parent = "/pub", const char* base = "New", std::uint32_t retries = 0) {
    return client.FTPCreateNewDir(parent, created, base, retries);
  }
  QXBool createAtHost(const char* parent = "/pub", const char* base = "New", std::uint32_t retries = 0) {
    return host.FTPCreateNewDir(parent, created, base, retries);
  }
};

TEST_F(NewDirectory, TakesTheBaseNameWhereItIsFree) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/": {}}})");
  loginAt(server);
  EXPECT_EQ(create(), 1);
  EXPECT_STREQ(created, "/pub/New");
  EXPECT_EQ(server.names("/pub"), Names{"New"});
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPCreateNewDir '/pub/New' failed!");
}

TEST_F(NewDirectory, TakesTheFirstNumberThatIsFree) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/New/": {}, "/pub/New (1)/": {}, "/pub/New (3)/": {}}})");
  loginAt(server);
  EXPECT_EQ(create("/pub/"), 1);
  EXPECT_STREQ(created, "/pub/New (2)");
  EXPECT_TRUE(server.exists("/pub/New (2)"));
  EXPECT_EQ(create("\\pub"), 1);
  EXPECT_STREQ(created, "/pub/New (4)");
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPCreateNewDir '/pub/New (4)' failed!");
}

TEST_F(NewDirectory, NamesThatDifferInCaseAloneAreTaken) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/NEW/": {}}})");
  loginAt(server);
  EXPECT_EQ(create(), 1);
  EXPECT_STREQ(created, "/pub/New (1)");
}

TEST_F(NewDirectory, BelowTheRootTheNumberedNamesHaveTwoSlashes) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  for (const char* path : {"/New", "//New (1)", "//New (2)"}) {
    EXPECT_EQ(create("/"), 1);
    EXPECT_STREQ(created, path);
  }
  EXPECT_EQ(server.names("/"), (Names{"New", "New (1)", "New (2)"}));
}

TEST_F(NewDirectory, TakesNamesAsTheyAre) {
  for (const std::string& name : kOddNames) {
    const fixture::ScriptedFtp server(R"({"tree": {"/pub/": {}}})");
    loginAt(server);
    EXPECT_EQ(create("/pub", name.c_str()), 1) << name;
    EXPECT_EQ(create("/pub", name.c_str()), 1) << name;
    EXPECT_EQ(server.names("/pub"), (Names{name, name + " (1)"}));
  }
}

TEST_F(NewDirectory, AMissingParentIsAFailureAtOnce) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(create(), 0);
  EXPECT_EQ(server.connections().size(), 1u);
  EXPECT_EQ(changes(server), Names{});
  EXPECT_STREQ(created, "untouched");
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPCreateNewDir '' failed!");
}

TEST_F(NewDirectory, AMissingParentIsLookedForAsOftenAsTheRetriesSayTenMillisecondsApart) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    std::vector<std::uint32_t> counts;
    host.dirExist = [&](const char*, std::uint32_t left) -> QXBool {
      counts.push_back(left);
      return 0;
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(createAtHost("/pub", "New", retries), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * retries);
    ASSERT_EQ(counts.size(), retries + 1);
    EXPECT_EQ(counts.front(), retries);
    EXPECT_EQ(counts.back(), 0u);
    EXPECT_FALSE(host.hostValuesWereGiven);
  }
}

TEST_F(NewDirectory, OfARetryThatSucceedsTheLastLineIsThatOfTheFirstRun) {
  int looks = 0;
  host.dirExist = [&](const char*, std::uint32_t) -> QXBool { return ++looks == 2 ? 1 : 0; };
  host.createDir = [&](const char*, std::uint32_t) -> QXBool { return 1; };
  EXPECT_EQ(createAtHost("/pub", "New", 2), 1);
  EXPECT_STREQ(created, "/pub/New");
  EXPECT_STREQ(host.m_szMessage, "TQXIP::FTPCreateNewDir '' failed!");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(NewDirectory, TheLastNumberThatIsTakenIs999) {
  host.dirExist = [&](const char* path, std::uint32_t) -> QXBool {
    return std::strcmp(path, "/pub/New (999)") != 0;
  };
  host.createDir = [&](const char*, std::uint32_t) -> QXBool { return 1; };
  EXPECT_EQ(createAtHost(), 1);
  EXPECT_STREQ(created, "/pub/New (999)");
}

TEST_F(NewDirectory, AThousandNamesAreTriedAndTheNumber1000IsOnlyNamed) {
  Names tried;
  host.dirExist = [&](const char* path, std::uint32_t) -> QXBool {
    tried.emplace_back(path);
    return 1;
  };
  EXPECT_EQ(createAtHost(), 0);
  ASSERT_EQ(tried.size(), 1u + 1000u);
  EXPECT_EQ(tried[0], "/pub");
  EXPECT_EQ(tried[1], "/pub/New");
  EXPECT_EQ(tried[2], "/pub/New (1)");
  EXPECT_EQ(tried.back(), "/pub/New (999)");
  EXPECT_STREQ(created, "untouched");
  EXPECT_STREQ(host.m_szMessage, "TQXIP::FTPCreateNewDir '/pub/New (1000)' failed!");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPCreateNewDir '/pub/New (1000)' failed!", kLine));
}

TEST_F(NewDirectory, AThousandOccupiedNamesAreAFailure) {
  std::vector<Found> names{{.name = "New", .isDirectory = true}};
  for (int number = 1; number < 1000; ++number) {
    names.push_back({.name = "New (" + std::to_string(number) + ")", .isDirectory = true});
  }
  ScriptedFinder finder;
  finder.answer = [&](const std::string& directory) -> std::vector<Found> {
    return directory == "/pub" ? names : std::vector<Found>{{.name = "pub", .isDirectory = true}};
  };
  client.finder = &finder;
  EXPECT_EQ(create(), 0);
  EXPECT_EQ(finder.patterns.size(), 1u + 1000u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPCreateNewDir '/pub/New (1000)' failed!");
}

TEST_F(NewDirectory, ARefusedCreationIsTriedAgainWithTheSameNameUntilItSucceeds) {
  const fixture::ScriptedFtp server(
      R"x({"tree": {"/pub/New/": {}}, "rules": [
          {"on": "MKD", "argument": "/pub/New (1)", "first": 5, "do": [{"reply": "550 Not yet"}]}]})x");
  loginAt(server);
  EXPECT_EQ(create("/pub", "New", 0), 1);
  EXPECT_STREQ(created, "/pub/New (1)");
  EXPECT_EQ(lineCount(server, "MKD /pub/New (1)"), 6);
  EXPECT_EQ(lineCount(server, "MKD /pub/New (2)"), 0);
}

// Thousands of them in a second were more than a server deserves.
TEST_F(NewDirectory, RefusedCreationsAreTenMillisecondsApart) {
  constexpr int kRefusals = 8;
  int creations = 0;
  host.dirExist = [&](const char* path, std::uint32_t) -> QXBool { return std::strcmp(path, "/pub") == 0; };
  host.createDir = [&](const char*, std::uint32_t) -> QXBool { return ++creations > kRefusals; };
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(createAtHost(), 1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10) * kRefusals);
  EXPECT_EQ(creations, kRefusals + 1);
}

TEST_F(NewDirectory, ACreationWhoseConnectionIsLostIsTriedAgainWithTheSameName) {
  shortenTimeouts();
  for (const char* loss : {"close", "reset", "silent"}) {
    const fixture::ScriptedFtp server(std::string_view(std::string(R"({"tree": {"/pub/": {}}, "rules": [
          {"on": "MKD", "argument": "/pub/New", "first": 2, "do": [")") +
                                                       loss + "\"]}]}"));
    loginAt(server);
    EXPECT_EQ(create(), 1) << loss;
    EXPECT_STREQ(created, "/pub/New");
    EXPECT_EQ(lineCount(server, "MKD /pub/New"), 3);
    EXPECT_EQ(server.names("/pub"), Names{"New"});
  }
}

TEST_F(NewDirectory, TheCreationHasTheRetriesAndNoHostValues) {
  std::string asked;
  host.dirExist = [&](const char* path, std::uint32_t) -> QXBool { return std::strcmp(path, "/pub") == 0; };
  host.createDir = [&](const char* path, std::uint32_t retries) -> QXBool {
    asked = std::string(path) + " " + std::to_string(retries);
    return 1;
  };
  EXPECT_EQ(createAtHost("/pub", "New", 7), 1);
  EXPECT_EQ(asked, "/pub/New 7");
  EXPECT_FALSE(host.hostValuesWereGiven);
}

TEST_F(NewDirectory, WithoutItsArgumentsOrAClientThatIsUpNothingIsAsked) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/": {}}})");
  loginAt(server);
  const auto expectFailure = [&](const char* parent, char* output, const char* base) {
    record = {};
    EXPECT_EQ(client.FTPCreateNewDir(parent, output, base, 2), 0);
    EXPECT_THAT(record, ReportsLastError("TQXIP::FTPCreateNewDir '' failed!", 87u, kLine));
  };
  expectFailure(nullptr, created, "New");
  expectFailure("", created, "New");
  expectFailure("/pub", nullptr, "New");
  expectFailure("/pub", created, nullptr);
  record = {};
  client.m_bInitialized = 0;
  EXPECT_EQ(create(), 0);
  client.m_bInitialized = 1;
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPCreateNewDir '' failed!", kLine));
  EXPECT_TRUE(server.connections().empty());
}

TEST_F(NewDirectory, ParentsThatMayNotGoToAServerDoNot) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  for (const std::string& path : kBadPaths) {
    record = {};
    EXPECT_EQ(create(path.c_str()), 0);
    EXPECT_THAT(record, ReportsLastError("TQXIP::FTPCreateNewDir '' failed!", 87u, kLine));
  }
  EXPECT_TRUE(server.connections().empty());
}

// Names that may not go to a server fail: tried like others they would be refused without end.
TEST_F(NewDirectory, BadNamesFailInsteadOfBeingTriedForEver) {
  int looks = 0;
  host.dirExist = [&](const char*, std::uint32_t) -> QXBool { return ++looks > 0; };
  for (const std::string& name : {std::string("a\nb"), std::string(251, 'n'), std::string(100000, 'n')}) {
    looks = 0;
    record = {};
    EXPECT_EQ(createAtHost("/pub", name.c_str()), 0);
    EXPECT_EQ(looks, 1) << "the parent alone";
    EXPECT_EQ(record.bSet, 1u);
  }
}

TEST_F(NewDirectory, TheLastNameThatFits) {
  const std::string name(250, 'n');
  Names tried;
  host.dirExist = [&](const char* path, std::uint32_t) -> QXBool {
    tried.emplace_back(path);
    return 1;
  };
  EXPECT_EQ(createAtHost("/pub", name.c_str()), 0);
  EXPECT_EQ(tried, (Names{"/pub", "/pub/" + name}));
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPCreateNewDir '' failed!", 87u, kLine));
}

TEST_F(NewDirectory, WhereNobodyListensTheParentIsMissing) {
  const fixture::RefusedPort nobody;
  loginAt(nobody);
  EXPECT_EQ(create("/pub", "New", 1), 0);
  EXPECT_EQ(client.count("OnIPError 12029"), 3u) << "two attempts of the first look, one of the second";
  EXPECT_EQ(record.nError, 12029u);
}

TEST_F(NewDirectory, AClientThatGoesEndsTheRepeatsAndIsNotTouchedAgain) {
  host.dirExist = [&](const char* path, std::uint32_t) -> QXBool { return std::strcmp(path, "/pub") == 0; };
  int refused = 0;
  host.createDir = [&](const char*, std::uint32_t) -> QXBool {
    if (++refused == 3) RunningOperation::Abandon(host);
    return 0;
  };
  std::memcpy(host.m_szMessage, "the host's", sizeof "the host's");
  EXPECT_EQ(createAtHost("/pub", "New", 5), 0);
  EXPECT_EQ(refused, 3);
  EXPECT_STREQ(host.m_szMessage, "the host's");
  EXPECT_TRUE(IsBlank(record));
}

struct Caller {
  TQXIP& client;
  QXBool answer = 1;
};

void createFromAWorker(void* argument) {
  auto& caller = *static_cast<Caller*>(argument);
  char created[256] = "";
  caller.answer = caller.client.FTPCreateNewDir("/pub", created, "New", 0xFFFFFFFF);
}

TEST_F(NewDirectory, AWorkerThatIsStoppedLeavesTheRepeats) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/pub/": {}}, "rules": [{"on": "MKD", "do": [{"reply": "550 No"}]}]})");
  loginAt(server);
  Caller caller{client};
  RunningOperation outer(client);
  ASSERT_TRUE(outer.Start(&createFromAWorker, &caller));
  server.waitForCommand("MKD", 10);
  outer.Kill();
  EXPECT_EQ(caller.answer, 0);
}

}  // namespace
