// SPDX-License-Identifier: MIT
// Servers that cannot take several command lines in one packet serve every operation. The client finds out
// by itself; how long that takes is in tests/internet/ftp_lines_test.cpp.
#include <nlohmann/json.hpp>

#include "tests/client/ServerTest.h"
#include "tests/support/ScratchFolder.h"

namespace {

using nlohmann::json;

// How the server takes a packet, what FEAT offers, and whether the data connections are passive.
struct Setting {
  const char* name;
  const char* packets;
  const char* features;
  bool passive;
};

constexpr char kTree[] = R"({"/pub/a": "four", "/pub/b": "five!", "/pub/d/": {}, "/pub/full/x": ""})";

class SingleLines : public ServerTest, public testing::WithParamInterface<Setting> {
 protected:
  const fixture::ScriptedFtp server{json{{"packets", GetParam().packets},
                                         {"features", json::parse(GetParam().features)},
                                         {"tree", json::parse(kTree)}}};

  void SetUp() override {
    internet::Timeouts timeouts;
    timeouts.followUp = std::chrono::milliseconds(100);
    internet::setTimeoutsForTesting(timeouts);
    client.m_pInternetSession->SetTimeouts(timeouts);
    loginAt(server, GetParam().passive);
  }
  // The client has found out, with the one packet that it takes.
  void TearDown() override { EXPECT_EQ(server.log()["crowded_packets"], 1); }

  std::string read(const char* path) {
    void* block = nullptr;
    std::uint32_t size = 0;
    EXPECT_EQ(client.FTPReadFile(path, &block, &size, 0, 0, 0, 0), 1);
    std::string content(static_cast<const char*>(block), size);
    client.FTPFreeFileAPI(block);
    return content;
  }
};

TEST_P(SingleLines, AreAsked) {
  EXPECT_EQ(client.FTPFileExists("/pub/a", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPFileExists("/pub/none", 0, 0, 0), 0);
  EXPECT_EQ(client.FTPFileSize("/pub/a", 0, 0, 0), 4u);
  EXPECT_EQ(client.FTPDirExist("/pub/d", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPDirExist("/pub/none", 0, 0, 0), 0);
  EXPECT_EQ(client.FTPIsDirectory("/pub/a", 0, 0, 0), 0);
  EXPECT_EQ(client.FTPHasSubDir("/pub", 0), 1);
  std::uint32_t files = 0;
  std::uint32_t directories = 0;
  EXPECT_EQ(client.FTPCountFolderItems("/pub", &files, &directories, 0), 1);
  EXPECT_EQ(files, 2u);
  EXPECT_EQ(directories, 2u);
  std::uint32_t count = 0;
  EXPECT_EQ(client.FTPGetDirectory("/pub", nullptr, &count, "*.*", 0), 1);
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_P(SingleLines, TransferFiles) {
  const testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");
  EXPECT_EQ(client.FTPDownloadFile("/pub/a", local.c_str(), 0), 1);
  EXPECT_EQ(client.FTPUploadFile("/pub/up", local.c_str(), 0), 1);
  EXPECT_EQ(server.content("/pub/up"), "four");
  EXPECT_EQ(read("/pub/b"), "five!");
  EXPECT_EQ(client.FTPWriteFile("/pub/new", "content", 7, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(server.content("/pub/new"), "content");
  EXPECT_EQ(client.FTPCpyFile("/pub/b", "/pub/c", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(server.content("/pub/c"), "five!");
  EXPECT_EQ(client.FTPMovFile("/pub/c", "/pub/d/c", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(server.names("/pub/d"), Names{"c"});
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_P(SingleLines, AreChanged) {
  EXPECT_EQ(client.FTPRenameFile("/pub/a", "/pub/d/a", 0), 1);
  EXPECT_EQ(client.FTPRmvFile("/pub/d/a", 0, 0, 0, 0), 1);
  EXPECT_EQ(client.FTPRmvFile("/pub/b", 1, 0, 0, 0), 1) << "overwritten first";
  EXPECT_EQ(client.FTPRmvDir("/pub/d", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPCreateDir("/pub/x/y", 0, 0, 0), 1);
  char created[256] = "";
  EXPECT_EQ(client.FTPCreateNewDir("/pub", created, "x", 0), 1);
  EXPECT_STREQ(created, "/pub/x (1)");
  EXPECT_EQ(server.names("/pub"), (Names{"full", "x", "x (1)"}));
  EXPECT_EQ(server.names("/pub/x"), Names{"y"});
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_P(SingleLines, AreAskedOverTheObjectsOwnConnection) {
  ASSERT_EQ(connectTo(server, "user", GetParam().passive), 1);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(client.FTPFileExists("/pub/a", 0, 0, 0), 1);
    EXPECT_EQ(client.FTPFileExists("/pub/full", 0, 0, 0), 0);
    EXPECT_EQ(client.FTPDirExist("/pub/full", 0, 0, 0), 1);
    EXPECT_EQ(client.FTPFileSize("/pub/b", 0, 0, 0), 5u);
  }
  EXPECT_EQ(server.connections().size(), 1u);
}

constexpr char kEverything[] = R"(["mlst", "utf8", "epsv", "eprt", "size", "mdtm", "rest"])";
constexpr char kLittle[] = R"(["size"])";

INSTANTIATE_TEST_SUITE_P(Servers, SingleLines,
                         testing::Values(Setting{"First", "first", kEverything, true},
                                         Setting{"FirstActive", "first", kEverything, false},
                                         Setting{"FirstOld", "first", kLittle, true},
                                         Setting{"Refuse", "refuse", kEverything, true},
                                         Setting{"RefuseActive", "refuse", kEverything, false},
                                         Setting{"RefuseOld", "refuse", kLittle, true}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
