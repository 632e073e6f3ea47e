// SPDX-License-Identifier: MIT
// Listings at a server: what reaches it, what comes out, and what a failure leaves behind.
#include <memory>

#include "tests/client/ServerTest.h"

namespace {

class ServerListing : public ServerTest {
 protected:
  std::uint32_t count = 77;

  QXBool list(const char* path, const char* pattern = "*.*", std::uint32_t retries = 0) {
    return client.FTPGetDirectory(path, nullptr, &count, pattern, retries);
  }
  std::vector<QXDirEntry> entries(const char* path, const char* pattern = "*.*") {
    EXPECT_EQ(list(path, pattern), 1);
    std::vector<QXDirEntry> out(count + std::size_t{1});
    EXPECT_EQ(client.FTPGetDirectory(path, out.data(), &count, pattern, 0), 1);
    out.resize(count);
    return out;
  }
  Names names(const char* path, const char* pattern = "*.*") {
    Names result;
    for (const QXDirEntry& entry : entries(path, pattern)) result.emplace_back(entry.szName);
    return result;
  }
};

constexpr const char* kTree =
    R"("tree": {"/pub/a.txt": "one", "/pub/B": "two", "/pub/c.txt": "", "/pub/sub/": {}, "/pub/.profile": "x",
       "/top": "1", "/home/u/mine": "1"})";

std::string script(const std::string& more) { return std::string("{") + kTree + ", " + more + "}"; }

// A server with MLSD and one without; and each with and without FTPConnect before.
struct Setting {
  const char* name;
  const char* features;
  bool connected;
};

class ListingSettings : public ServerListing, public testing::WithParamInterface<Setting> {
 protected:
  const fixture::ScriptedFtp server{script(GetParam().features + std::string(R"(, "home": "/home/u")"))};

  void SetUp() override {
    if (GetParam().connected) {
      ASSERT_EQ(connectTo(server), 1);
    } else {
      loginAt(server);
    }
  }
};

TEST_P(ListingSettings, EverythingInADirectoryButTheDotNames) {
  EXPECT_EQ(names("/pub"), (Names{"B", "a.txt", "c.txt", "sub"}));
  EXPECT_EQ(names("\\pub\\"), (Names{"B", "a.txt", "c.txt", "sub"}));
  EXPECT_EQ(names("/"), (Names{"home", "pub", "top"}));
}

TEST_P(ListingSettings, APatternChooses) {
  EXPECT_EQ(names("/pub", "*.TXT"), (Names{"a.txt", "c.txt"}));
  EXPECT_EQ(names("/pub", "?"), Names{"B"});
  EXPECT_EQ(names("/pub", "none*"), Names{});
}

TEST_P(ListingSettings, WithTheOptionTheServersCurrentDirectoryIsListed) {
  client.m_bOption = 1;
  EXPECT_EQ(names("/pub"), Names{"mine"});
}

TEST_P(ListingSettings, EntriesHaveTheirKindAndSize) {
  const auto out = entries("/pub");
  ASSERT_EQ(out.size(), 4u);
  EXPECT_EQ(out[0].bIsDirectory, 0);
  EXPECT_EQ(out[0].nFileSizeLow, 3u);
  EXPECT_STREQ(out[0].szName, "B");
  EXPECT_EQ(out[0].dwAttributes & 0x10u, 0u);
  EXPECT_STREQ(out[0].szPath, "/pub");
  EXPECT_EQ(out[3].bIsDirectory, 1);
  EXPECT_EQ(out[3].nFileSizeLow, 0u);
  EXPECT_EQ(out[3].dwAttributes & 0x10u, 0x10u);
}

TEST_P(ListingSettings, AMissingDirectoryIsAnEmptySuccess) {
  EXPECT_EQ(list("/none"), 1);
  EXPECT_EQ(count, 0u);
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(ListingSettings, BothCallsTakeOneListing) {
  EXPECT_EQ(names("/pub").size(), 4u);
  EXPECT_EQ(server.connections().size(), 1u);
  EXPECT_EQ(server.dataConnections().size(), 1u);
}

TEST_P(ListingSettings, AConnectionOfItsOwnIsClosed) {
  EXPECT_EQ(list("/pub"), 1);
  if (GetParam().connected) {
    EXPECT_TRUE(server.connections().at(0).open);
  } else {
    server.waitUntilAllClosed();
    expectQuit(server, 1);
  }
}

TEST_P(ListingSettings, SubdirectoriesAndItemsAreCounted) {
  std::uint32_t files = 0;
  std::uint32_t directories = 0;
  EXPECT_EQ(client.FTPCountFolderItems("/pub", &files, &directories, 0), 1);
  EXPECT_EQ(files, 3u);
  EXPECT_EQ(directories, 1u);
  EXPECT_EQ(client.FTPHasSubDir("/pub", 0), 1);
  EXPECT_EQ(client.FTPHasSubDir("/pub/sub", 0), 0);
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(ListingSettings, WhatMayNotGoToAServerDoesNot) {
  const auto before = server.commands();
  EXPECT_EQ(list(std::string(256, 'a').c_str()), 0);
  EXPECT_EQ(list("/pub\r\nDELE top"), 0);
  EXPECT_EQ(list("/pub", "*.*\r\nDELE top"), 0);
  EXPECT_EQ(client.FTPHasSubDir("/pub\nDELE top", 0), 0);
  EXPECT_EQ(client.FTPCountFolderItems("/pub\nDELE top", nullptr, nullptr, 0), 0);
  EXPECT_TRUE(server.exists("/top"));
  for (const std::string& command : server.commands()) EXPECT_EQ(command.find("DELE"), std::string::npos);
  if (GetParam().connected) {
    EXPECT_EQ(server.commands(), before);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Settings, ListingSettings,
    testing::Values(Setting{"OwnConnectionMlsd", R"("features": ["mlst", "size", "epsv", "utf8"])", false},
                    Setting{"OwnConnectionList", R"("features": ["size", "epsv"])", false},
                    Setting{"ObjectsFinderMlsd", R"("features": ["mlst", "size", "epsv", "utf8"])", true},
                    Setting{"ObjectsFinderList", R"("features": ["size", "epsv"])", true}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(ServerListing, AHundredThousandEntriesComeOut) {
  const fixture::ScriptedFtp server(R"({"tree": {"/many/": {"many": {"count": 100000, "size": 7}}}})");
  loginAt(server);
  EXPECT_EQ(list("/many"), 1);
  ASSERT_EQ(count, 100'000u);
  const auto out = std::make_unique<QXDirEntry[]>(count);
  EXPECT_EQ(client.FTPGetDirectory("/many", out.get(), &count, "*.*", 0), 1);
  EXPECT_STREQ(out[0].szName, "file000000.dat");
  EXPECT_STREQ(out[99'999].szName, "file099999.dat");
  EXPECT_EQ(out[99'999].nFileSizeLow, 7u);
}

TEST_F(ServerListing, AFileOfFiveGibibytesHasItsSizeInTwoHalves) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/big": {"size": 5368709120, "zeros": true}}})");
  loginAt(server);
  const auto out = entries("/d");
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].nFileSizeHigh, 1u);
  EXPECT_EQ(out[0].nFileSizeLow, 1'073'741'824u);
}

TEST_F(ServerListing, TheEntryLineStandsInTheMessageMeanwhile) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPGetDirectory - IN: '/pub'");
}

TEST_F(ServerListing, ARefusedLoginIsTriedAsOftenAsTheRetriesSay) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server(R"({"password": "another"})");
    loginAt(server);
    client.forget();
    EXPECT_EQ(list("/pub", "*.*", retries), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(server.connections().size(), retries + 1);
    EXPECT_EQ(client.count("OnIPError 12014 FTP-Error! retries 0"), 1u);
    EXPECT_EQ(client.count("OnIPError 12014"), 2 * (retries + 1));
    EXPECT_THAT(record, ReportsIPError("FTP-Error!", 12014));
  }
}

TEST_F(ServerListing, RunsOfTheTwoUsersListWithTheRetriesThatAreLeft) {
  const fixture::ScriptedFtp server(R"({"password": "another"})");
  loginAt(server);
  EXPECT_EQ(client.FTPHasSubDir("/pub", 2), 0);
  EXPECT_EQ(server.connections().size(), 6u);
  EXPECT_EQ(client.FTPCountFolderItems("/pub", nullptr, nullptr, 1), 0);
  EXPECT_EQ(server.connections().size(), 9u);
}

// The end of the connection was told ahead of the failure, and a client that is not connected gets no second
// run.
TEST_F(ServerListing, AHangUpInTheListingIs12030AndTheNextAttemptSucceedsWithoutBeingAsked) {
  const fixture::ScriptedFtp server(script(R"("rules": [{"on": "MLSD", "nth": 1, "do": ["close"]}])"));
  loginAt(server);
  EXPECT_EQ(list("/pub", "*.*", 0), 1);
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(client.count("OnIPError 12030"), 2u) << "of the listing, and of the run";
  EXPECT_EQ(server.connections().size(), 2u);
}

TEST_F(ServerListing, AStallInTheListingIs12002) {
  const fixture::ScriptedFtp server(script(R"("rules": [{"on": "MLSD", "do": ["silent"]}])"));
  loginAt(server);
  shortenTimeouts();
  EXPECT_EQ(list("/pub"), 0);
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 12002));
}

TEST_F(ServerListing, AListingThatBreaksOffIsAFailureNotAShorterDirectory) {
  const fixture::ScriptedFtp server(
      script(R"("rules": [{"on": "MLSD", "do": [{"normal": {"reset_after": 60}}]}])"));
  RecordingClient silent;  // never counts as connected, so that nothing arms its counter
  silent.FTPSetLogin("127.0.0.1", "u", "p", server.port(), 1);
  EXPECT_EQ(silent.FTPGetDirectory("/pub", nullptr, &count, "*.*", 0), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(silent.count("OnIPError 12030"), 2u);
}

TEST_F(ServerListing, AListingThatBreaksOffWhileTheServerStaysConnectedIsTriedAgainWithoutBeingAsked) {
  const fixture::ScriptedFtp server(
      script(R"("rules": [{"on": "MLSD", "first": 3, "do": [{"normal": {"reset_after": 60}}]}])"));
  loginAt(server);
  EXPECT_EQ(list("/pub", "*.*", 0), 1);
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(server.commandCount("MLSD"), 4);
}

TEST_F(ServerListing, AFailedListingForgetsTheOneBefore) {
  const fixture::ScriptedFtp server(
      script(R"("rules": [{"on": "PASS", "after": 1, "do": [{"reply": "530 No"}]}])"));
  loginAt(server);
  EXPECT_EQ(list("/pub"), 1);
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(list("/pub"), 0);
  EXPECT_EQ(count, 0u);
  QXDirEntry out{};
  count = 1;
  EXPECT_EQ(client.FTPGetDirectory("/pub", &out, &count, "*.*", 0), 0);
}

}  // namespace
