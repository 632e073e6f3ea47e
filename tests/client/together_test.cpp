// SPDX-License-Identifier: MIT
// Copies of one file name at the same time. Their temporary copies have one name, and each used to upload
// what the other had fetched.
#include <atomic>
#include <thread>

#include "tests/client/ContentTest.h"
#include "tests/client/OwnProgram.h"

namespace {

constexpr int kRounds = 50;
constexpr std::uint32_t kRetries = 20;

// What one client did at a server of its own.
struct Tally {
  int copied = 0;
  int wrong = 0;  // answers 1 with another content than the source's
};

std::string fileOf(std::uint32_t seed, std::uint64_t size) {
  return "{\"/src\": {\"size\": " + std::to_string(size) + ", \"seed\": " + std::to_string(seed) + "}}";
}

// Copies a file that is another one in each round to a name that is the same for all.
Tally copyRounds(std::uint32_t firstSeed) {
  const fixture::ScriptedFtp server;
  RecordingClient client;
  client.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  Tally tally;
  for (std::uint32_t round = 0; round < kRounds; ++round) {
    const std::uint32_t seed = firstSeed + round;
    const std::uint64_t size = 30'000 + 1'000 * (seed % 7);
    server.put(fileOf(seed, size));
    if (client.FTPCpyFile("/src", "/the same name", nullptr, kRetries, 0, 0) == 0) continue;
    ++tally.copied;
    if (!server.matches("/the same name", seed, size)) ++tally.wrong;
  }
  return tally;
}

class Together : public ContentTest {
 protected:
  // Both have to come through for the most part, and never with another's content.
  static void expectOwnContents(const Tally& tally) {
    EXPECT_EQ(tally.wrong, 0);
    EXPECT_GT(tally.copied, kRounds / 2);
  }
};

TEST_F(Together, TwoThreadsCopyTheirOwnFiles) {
  Tally other;
  std::thread thread([&] { other = copyRounds(1'000); });
  const Tally own = copyRounds(1);
  thread.join();
  expectOwnContents(own);
  expectOwnContents(other);
}

TEST_F(Together, TwoProcessesCopyTheirOwnFiles) {
  std::atomic<bool> passed = false;
  std::thread other([&] { passed = testing_support::passesInAnotherProcess("TogetherChild.*"); });
  expectOwnContents(copyRounds(1));
  other.join();
  EXPECT_TRUE(passed);
}

// Of the process beside it; the temporary folder is that of its parent.
TEST(TogetherChild, DISABLED_CopiesItsOwnFiles) {
  const Tally tally = copyRounds(2'000);
  EXPECT_EQ(tally.wrong, 0);
  EXPECT_GT(tally.copied, kRounds / 2);
}

class HeldCopy : public ContentTest {
 protected:
  const fixture::ScriptedFtp server{
      R"({"tree": {"/a": "one", "/pub/b": "old"},
          "rules": [{"on": "STOR", "connection": 3, "do": [{"gate": "storing"}, "normal"]}]})"};

  void SetUp() override { loginAt(server); }

  [[nodiscard]] std::uintmax_t sizeOfCopy() const {
    std::error_code missing;
    return std::filesystem::file_size(temporaryFile("b"), missing);
  }
  // Runs `work` while a copy to "b" is between its download and the end of its upload.
  template <typename Work>
  void whileACopyIsUploading(Work&& work) {
    RecordingClient first;
    first.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
    QXBool copied = 0;
    std::thread copying([&] { copied = first.FTPCpyFile("/a", "/b", nullptr, 0, 0, 0); });
    server.waitAtGate("storing");
    work();
    server.release("storing");
    copying.join();
    EXPECT_EQ(copied, 1);
    EXPECT_EQ(server.content("/b"), "one");
    EXPECT_EQ(leftInTemporary(), Names{});
  }
};

TEST_F(HeldCopy, ASecondCopyOfItsNameFailsAndTouchesNothing) {
  whileACopyIsUploading([&] {
    EXPECT_EQ(client.FTPCpyFile("/pub/b", "/c/b", nullptr, 2, 0, 0), 0);
    EXPECT_THAT(record, ReportsFrom("TQXIP::FTPCpyFileThr from '/pub/b' to '/c/b' failed!", 6082));
    EXPECT_THAT(record, ShowsError(32));
    EXPECT_EQ(sizeOfCopy(), 3u);
  });
}

TEST_F(HeldCopy, AnAppendOfItsNameFailsAndTouchesNothing) {
  whileACopyIsUploading([&] {
    EXPECT_EQ(client.FTPWriteFile("/pub/b", "new", 3, 1, 0, 2, 0, 0), 0);
    EXPECT_THAT(record, ShowsError(32));
    EXPECT_EQ(sizeOfCopy(), 3u);
  });
}

TEST_F(HeldCopy, ACopyOfAnotherNameGoesOn) {
  whileACopyIsUploading([&] {
    EXPECT_EQ(client.FTPCpyFile("/pub/b", "/c", nullptr, 0, 0, 0), 1);
    EXPECT_EQ(server.content("/c"), "old");
  });
}

// An append to an empty file used to take it for the download, and to send it.
TEST_F(ContentTest, ALeftOverCopyIsNotAppendedTo) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a.txt": ""}})");
  loginAt(server);
  std::filesystem::create_directory(temporary.path() / "FTP");
  std::ofstream(temporaryFile("a.txt")) << "stale";
  EXPECT_EQ(client.FTPWriteFile("/a.txt", "new", 3, 1, 0, 0, 0, 0), 0);
  EXPECT_THAT(record, ShowsError(80));
  EXPECT_EQ(server.content("/a.txt"), "");
  EXPECT_EQ(leftInTemporary(), Names{});
}

}  // namespace
