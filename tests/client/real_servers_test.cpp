// SPDX-License-Identifier: MIT
// The whole of the client at real servers, in passive and in active mode.
#include <algorithm>

#include "tests/client/RealServersTest.h"

namespace {

class RealServers : public RealServersTest {
 protected:
  void SetUp() override {
    RealServersTest::SetUp();
    put("/x/a.txt", R"("four")");
    put("/x/.hidden", R"("dot")");
    put("/x/empty", R"("")");
    put("/x/sub/b", R"("inside")");
    put("/x/With Blank", R"({"size": 100000, "seed": 3})");
  }
  QXBool connect() {
    return client.FTPConnect(host.c_str(), server.user().c_str(), server.password().c_str(), server.port(),
                             passive ? 1 : 0, 0, nullptr);
  }
  bool dirExists(const std::string& path) { return client.FTPDirExist(at(path).c_str(), 0, 0, 0) != 0; }
  bool fileExists(const std::string& path) { return client.FTPFileExists(at(path).c_str(), 0, 0, 0) != 0; }
  std::uint32_t size(const std::string& path) { return client.FTPFileSize(at(path).c_str(), 0, 0, 0); }

  void expectAnswers() {
    EXPECT_TRUE(dirExists("/x"));
    EXPECT_TRUE(dirExists("/x/SUB/"));
    EXPECT_FALSE(dirExists("/x/a.txt"));
    EXPECT_FALSE(dirExists("/none"));
    EXPECT_FALSE(dirExists("/none/x"));
    EXPECT_TRUE(fileExists("/x/a.txt"));
    EXPECT_TRUE(fileExists("/x/empty"));
    EXPECT_TRUE(fileExists("/x/With Blank"));
    EXPECT_FALSE(fileExists("/x/sub"));
    EXPECT_FALSE(fileExists("/x/none"));
    EXPECT_EQ(client.count("OnIPError"), 0u);
    EXPECT_EQ(size("/x/a.txt"), 4u);
    EXPECT_EQ(size("/x/With Blank"), 100'000u);
    EXPECT_EQ(size("/x/empty"), 0u);
    EXPECT_EQ(size("/x/none"), 0u);
  }
};

TEST_P(RealServers, AnswerQueriesOverConnectionsOfTheirOwn) { expectAnswers(); }

TEST_P(RealServers, AnswerQueriesWithTheObjectsFinders) {
  const int before = server.connectionCount();
  ASSERT_EQ(connect(), 1);
  expectAnswers();
  EXPECT_EQ(server.connectionCount(), before + 1);
}

TEST_P(RealServers, List) {
  std::uint32_t count = 0;
  ASSERT_EQ(client.FTPGetDirectory(at("/x").c_str(), nullptr, &count, "*.*", 0), 1);
  std::vector<QXDirEntry> entries(count);
  ASSERT_EQ(client.FTPGetDirectory(at("/x").c_str(), entries.data(), &count, "*.*", 0), 1);
  Names seen;
  for (const QXDirEntry& entry : entries) {
    seen.push_back(std::string(entry.szName) + (entry.bIsDirectory != 0 ? "/" : "") + " " +
                   std::to_string(entry.nFileSizeLow));
    EXPECT_EQ(entry.szPath, at("/x"));
  }
  std::sort(seen.begin(), seen.end());
  EXPECT_EQ(seen, (Names{"With Blank 100000", "a.txt 4", "empty 0", "sub/ 0"}));
}

TEST_P(RealServers, Count) {
  std::uint32_t files = 0;
  std::uint32_t directories = 0;
  EXPECT_EQ(client.FTPCountFolderItems(at("/x").c_str(), &files, &directories, 0), 1);
  EXPECT_EQ(files, 3u);
  EXPECT_EQ(directories, 1u);
  EXPECT_EQ(client.FTPHasSubDir(at("/x").c_str(), 0), 1);
  EXPECT_EQ(client.FTPHasSubDir(at("/x/sub").c_str(), 0), 0);
}

TEST_P(RealServers, ListManyEntries) {
  server.put("{\"" + at("/many/") + R"(": {"many": {"count": 600, "size": 3}}})");
  std::uint32_t files = 0;
  std::uint32_t directories = 77;
  EXPECT_EQ(client.FTPCountFolderItems(at("/many").c_str(), &files, &directories, 0), 1);
  EXPECT_EQ(files, 600u);
  EXPECT_EQ(directories, 0u);
}

TEST_P(RealServers, BringAndTakeFilesByteByByte) {
  for (const std::uint64_t bytes : {0u, 4097u, 1u << 20}) {
    testing_support::Pattern(8).writeFile(local, bytes);
    ASSERT_EQ(upload(at("/up").c_str()), 1) << bytes;
    EXPECT_TRUE(server.matches(at("/up"), 8, bytes)) << bytes;
    std::filesystem::remove(local);
    ASSERT_EQ(download(at("/up").c_str()), 1) << bytes;
    EXPECT_TRUE(testing_support::Pattern(8).matchesFile(local, bytes)) << bytes;
  }
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealServers, GiveNoFileForAMissingOne) {
  EXPECT_EQ(download(at("/x/none").c_str(), 1), 0);
  EXPECT_FALSE(exists());
  EXPECT_EQ(record.bSet, 1u);
}

TEST_P(RealServers, RefuseAnUploadIntoAMissingFolder) {
  write("content");
  EXPECT_EQ(upload(at("/none/up").c_str()), 1);  // the required answer for a file with content
  EXPECT_FALSE(server.exists(at("/none")));
}

INSTANTIATE_TEST_SUITE_P(Kinds, RealServers, inBothModes(), serverAndModeName);

}  // namespace
