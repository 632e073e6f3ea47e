// SPDX-License-Identifier: MIT
// FTPReadFile: a whole remote file in a block of its own; FTPFreeFileAPI takes it back.
#include <algorithm>
#include <chrono>

#include "tests/client/ContentTest.h"
#include "tests/client/SlotHost.h"
#include "tests/unit/WorkerMessage.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kChunk = 4096;
constexpr milliseconds kPause{20};  // before each chunk

class Read : public ContentTest {
 protected:
  const std::string failedLine = "TQXIP::FTPReadFile '/a' failed!";
  void* data = &data;
  std::uint32_t size = 99;

  QXBool fetch(const std::string& remote = "/a", std::uint32_t retries = 0) {
    return client.FTPReadFile(remote.c_str(), &data, &size, 0, retries, 0, 0);
  }
  // The block's content, which goes back to the client.
  std::string taken() {
    const std::string text(static_cast<const char*>(data), size);
    EXPECT_EQ(client.FTPFreeFileAPI(data), 1);
    return text;
  }
  void expectEmptyBlock() {
    EXPECT_EQ(size, 0u);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(*static_cast<const char*>(data), 0);
    EXPECT_EQ(client.FTPFreeFileAPI(data), 1);
  }
};

std::string serving(std::size_t size) {
  return "{\"tree\": {\"/a\": {\"size\": " + std::to_string(size) + ", \"seed\": 7}}}";
}

// What OnPoll may see while `size` bytes are read: counts up to the size, and the total from the first chunk
// on.
void expectOnlyReadingOf(std::size_t size, const std::set<Progress>& seen) {
  for (const Progress& progress : seen) {
    EXPECT_TRUE(progress.transferred % kChunk == 0 || progress.transferred == size) << progress;
    EXPECT_LE(progress.transferred, progress.total) << progress;
    EXPECT_TRUE(progress.total == size || progress == Progress{}) << progress;
  }
}

class ReadSizes : public Read, public testing::WithParamInterface<std::tuple<std::size_t, bool>> {};

TEST_P(ReadSizes, BringsEveryByteAtItsPace) {
  const auto [length, passive] = GetParam();
  const fixture::ScriptedFtp server(serving(length));
  loginAt(server, passive);
  watchProgress();
  const auto start = steady_clock::now();
  EXPECT_EQ(fetch(), 1);
  EXPECT_GE(steady_clock::now() - start, kPause * ((length + kChunk - 1) / kChunk));
  EXPECT_EQ(size, length);
  EXPECT_EQ(taken(), patternText(length));
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, length, length}));
  expectOnlyReadingOf(length, seen);
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_TRUE(IsBlank(record));
  EXPECT_EQ(server.dataConnections().at(0).mode, passive ? "passive" : "active");
  expectAttempts(server, 2);
  for (const int connection : {1, 2}) expectQuit(server, connection);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ReadSizes,
                         testing::Combine(testing::Values(1u, 4095u, 4096u, 4097u, 8192u, 10000u),
                                          testing::Bool()),
                         [](const auto& instance) {
                           return std::to_string(std::get<0>(instance.param)) +
                                  (std::get<1>(instance.param) ? "Passive" : "Active");
                         });

TEST_F(Read, AMebibyteComesWhole) {
  constexpr std::size_t kSize = 1 << 20;
  const fixture::ScriptedFtp server(serving(kSize));
  loginAt(server);
  watchProgress();
  const auto start = steady_clock::now();
  EXPECT_EQ(fetch(), 1);
  EXPECT_GE(steady_clock::now() - start, kPause * (kSize / kChunk));
  EXPECT_EQ(taken(), patternText(kSize));
  expectOnlyReadingOf(kSize, seen);
  EXPECT_GT(seen.size(), 2u) << "the host sees the transfer go on";
}

TEST_F(Read, AChunkIsFilledHoweverSlowlyItsBytesCome) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 5000, "seed": 7}},
          "rules": [{"on": "RETR", "do": [{"normal": {"pace": {"bytes": 100, "ms": 1}}}]}]})");
  loginAt(server);
  EXPECT_EQ(fetch(), 1);
  EXPECT_EQ(taken(), patternText(5000));
}

TEST_F(Read, OnPollSeesWhatHasComeSoFar) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 20000, "seed": 7}},
          "rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 9000, "gate": "more"}}]}]})");
  loginAt(server);
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue transfer, QXBool*) -> QXBool {
    const Progress now = progressIn(*reinterpret_cast<QXTransfer*>(transfer));
    if (now == Progress{1, 8192, 20'000} && seen.insert(now).second) server.release("more");
    return 0;
  };
  EXPECT_EQ(fetch(), 1);
  EXPECT_EQ(seen.size(), 1u);
  EXPECT_EQ(taken(), patternText(20'000));
}

TEST_F(Read, AnEmptyFileIsABlockOfOneZero) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": ""}})");
  loginAt(server);
  EXPECT_EQ(fetch(), 1);
  expectEmptyBlock();
  EXPECT_EQ(server.commandCount("RETR"), 0);
  EXPECT_EQ(progressIn(client.m_Transfer), Progress{});
}

TEST_F(Read, AFileThatCannotBeMeasuredIsABlockOfOneZero) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": "content"},
          "rules": [{"on": ["MLST", "MLSD", "SIZE", "LIST", "NLST"], "do": [{"reply": "550 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(fetch(), 1);
  expectEmptyBlock();
  EXPECT_EQ(server.commandCount("RETR"), 0);
}

TEST_F(Read, AMissingFileIsABlockOfOneZero) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(fetch("/none"), 1);
  expectEmptyBlock();
}

TEST_F(Read, TheSizeIsAskedForBeforeTheTransferOnAConnectionOfItsOwn) {
  const fixture::ScriptedFtp server(serving(10));
  loginAt(server);
  EXPECT_EQ(fetch(), 1);
  EXPECT_EQ(taken().size(), 10u);
  server.waitUntilAllClosed();
  EXPECT_EQ(server.dataConnections().back().connection, 1);
  const Names all = server.commands();
  const auto asked = std::find(all.begin(), all.end(), "MLST /a");
  ASSERT_NE(asked, all.end());
  EXPECT_NE(std::find(asked, all.end(), "RETR /a"), all.end());
  const Names second = server.commands(2);
  EXPECT_NE(std::find(second.begin(), second.end(), "MLST /a"), second.end());
}

TEST_F(Read, TheSizeIsAskedForThroughTheSlotWithThePathAsGivenAndTheRetryCount) {
  const fixture::ScriptedFtp server(serving(10));
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  EXPECT_EQ(host.FTPReadFile("\\a", &data, &size, 5, 3, 11, 22), 1);
  EXPECT_EQ(taken(), patternText(10));
  EXPECT_EQ(host.calls(), (Names{"FTPReadFile \\a 5 3 11 22", "FTPFileSize \\a 3 0 0"}));
}

TEST_F(Read, EachAttemptAsksForTheSizeWithTheRetriesThatAreLeft) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "RETR", "do": [{"reply": "550 No"}]}]})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.size = [] { return 10u; };
  EXPECT_EQ(host.FTPReadFile("/a", &data, &size, 0, 2, 0, 0), 0);
  EXPECT_EQ(host.calls(), (Names{"FTPReadFile /a 0 2 0 0", "FTPFileSize /a 2 0 0", "FTPFileSize /a 1 0 0",
                                 "FTPFileSize /a 0 0 0"}));
}

TEST_F(Read, AFileThatIsShorterThanItsSizeIsAFailure) {
  const fixture::ScriptedFtp server(serving(5000));
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  host.size = [] { return 5001u; };
  EXPECT_EQ(host.FTPReadFile("/a", &data, &size, 0, 0, 0, 0), 0);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(size, 0u);
  EXPECT_THAT(record, ShowsError(12030));
}

TEST_F(Read, AFileThatHasGrownSinceItWasMeasuredGivesItsFirstBytes) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 5000, "seed": 7}},
          "rules": [{"on": "RETR", "do": [{"normal": {"extra_bytes": 3000000, "opening": "150 Opening"}}]}]})");
  loginAt(server);
  EXPECT_EQ(fetch(), 1);
  EXPECT_EQ(taken(), patternText(5000));
}

TEST_F(Read, NormalisesThePathTwice) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one"}})");
  loginAt(server);
  for (const char* path : {"\\pub\\a", "///pub/a", "/pub/a/", "pub/a"}) {
    EXPECT_EQ(fetch(path), 1) << path;
    EXPECT_EQ(taken(), "one") << path;
  }
}

TEST_F(Read, OddNamesAreNamesLikeOthers) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/": {}}})");
  loginAt(server);
  for (const std::string& name : kOddNames) {
    server.putText("/d/" + name, "of " + name);
    EXPECT_EQ(fetch("/d/" + name), 1) << name;
    EXPECT_EQ(taken(), "of " + name);
  }
}

TEST_F(Read, TheWorkersEntryLineNamesThePath) {
  const fixture::ScriptedFtp server(serving(10));
  loginAt(server);
  EXPECT_EQ(fetch(), 1);
  taken();
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPReadFileThr - IN: '/a'");
}

// As a host's own function in a slot may open windows on the thread that it runs on.
TEST_F(Read, TheWorkerDispatchesItsOwnMessagesBetweenChunks) {
  const fixture::ScriptedFtp server(serving(10'000));
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  WorkerMessage message;
  host.size = [&] {
    message.post();
    return 10'000u;
  };
  host.disconnected = [&] { message.takeBack(); };
  EXPECT_EQ(host.FTPReadFile("/a", &data, &size, 0, 0, 0, 0), 1);
  EXPECT_EQ(taken(), patternText(10'000));
  message.expectDispatched();
}

TEST_F(Read, TheBlockIsTheHostsUntilItGivesItBack) {
  const fixture::ScriptedFtp server(serving(5000));
  loginAt(server);
  EXPECT_EQ(fetch(), 1);
  void* const first = data;
  EXPECT_EQ(fetch(), 1);
  EXPECT_NE(data, first);
  EXPECT_TRUE(testing_support::Pattern(7).matches(0, first, 5000));
  EXPECT_EQ(taken(), patternText(5000));
  static_cast<char*>(first)[5000] = 'x';  // one byte more than the file has
  EXPECT_EQ(client.FTPFreeFileAPI(first), 1);
}

}  // namespace
