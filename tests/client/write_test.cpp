// SPDX-License-Identifier: MIT
// FTPWriteFile that replaces a remote file: what arrives, how it is paced, and what the transfer block shows.
#include <chrono>

#include "tests/client/ContentTest.h"
#include "tests/unit/WorkerMessage.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kBlock = 4096;
constexpr milliseconds kBlockPause{20};  // before each chunk

std::size_t chunksOf(std::size_t size) { return (size + kBlock - 1) / kBlock; }

// After the last chunk the block shows that chunk's size where others went before it.
Progress lastProgress(std::size_t size) {
  const std::size_t rest = size % kBlock;
  return {1, rest == 0 ? std::min(size, kBlock) : rest, size};
}

// All that OnPoll may see while `size` bytes are written, after `before`: the block as each chunk leaves it,
// and, where OnPoll is looking just then, the total or the total and the count of the next chunk already.
std::set<Progress> progressOf(std::size_t size, const Progress& before = {}) {
  std::set<Progress> all{before};
  Progress last = before;
  for (std::size_t done = 0; done < size;) {
    done = std::min(done + kBlock, size);
    const Progress next = done < size ? Progress{1, done, size} : lastProgress(size);
    all.insert({last.valid, last.transferred, next.total});
    all.insert({last.valid, next.transferred, next.total});
    all.insert(next);
    last = next;
  }
  return all;
}

class Write : public ContentTest {
 protected:
  const std::string failedLine = "TQXIP::FTPWriteFile '/a' failed!";

  QXBool store(const std::string& data, const std::string& remote = "/a", std::uint32_t retries = 0) {
    return client.FTPWriteFile(remote.c_str(), data.data(), static_cast<std::uint32_t>(data.size()), 0, 0,
                               retries, 0, 0);
  }
  void expectOnly(const std::set<Progress>& allowed) {
    EXPECT_FALSE(seen.empty());
    for (const Progress& progress : seen) EXPECT_TRUE(allowed.contains(progress)) << progress;
  }
};

class WriteSizes : public Write, public testing::WithParamInterface<std::tuple<std::size_t, bool>> {};

TEST_P(WriteSizes, SendsEveryByteAtItsPace) {
  const auto [size, passive] = GetParam();
  const fixture::ScriptedFtp server;
  loginAt(server, passive);
  watchProgress();
  const auto start = steady_clock::now();
  EXPECT_EQ(store(patternText(size)), 1);
  EXPECT_GE(steady_clock::now() - start, kBlockPause * chunksOf(size));
  EXPECT_EQ(server.content("/a"), patternText(size));
  EXPECT_EQ(progressIn(client.m_Transfer), lastProgress(size));
  expectOnly(progressOf(size));
  EXPECT_EQ(client.m_szMessage, failedLine);
  EXPECT_TRUE(IsBlank(record));
  EXPECT_EQ(server.dataConnections().at(0).mode, passive ? "passive" : "active");
  expectAttempts(server, 1);
  expectQuit(server, 1);
}

INSTANTIATE_TEST_SUITE_P(Sizes, WriteSizes,
                         testing::Combine(testing::Values(1u, 4095u, 4096u, 4097u, 8192u, 10000u),
                                          testing::Bool()),
                         [](const auto& instance) {
                           return std::to_string(std::get<0>(instance.param)) +
                                  (std::get<1>(instance.param) ? "Passive" : "Active");
                         });

TEST_F(Write, AMebibyteArrivesWhole) {
  constexpr std::size_t kSize = 1 << 20;
  const fixture::ScriptedFtp server;
  loginAt(server);
  watchProgress();
  const auto start = steady_clock::now();
  EXPECT_EQ(store(patternText(kSize)), 1);
  EXPECT_GE(steady_clock::now() - start, kBlockPause * chunksOf(kSize));
  EXPECT_TRUE(server.matches("/a", 7, kSize));
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, kBlock, kSize}));
  expectOnly(progressOf(kSize));
}

TEST_F(Write, TheBlockOfOneWriteIsNeverMixedWithThatOfTheNext) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(store(patternText(10'000)), 1);
  const Progress before = progressIn(client.m_Transfer);
  watchProgress();
  EXPECT_EQ(store(patternText(20'000)), 1);
  expectOnly(progressOf(20'000, before));
}

TEST_F(Write, TheBlockKeepsTheLastValues) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "STOR", "nth": 2, "do": [{"reply": "553 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(store("four"), 1);
  EXPECT_EQ(store("three"), 0);
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, 4, 4}));
}

TEST_F(Write, ReplacesALongerFile) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "a longer old content"}})");
  loginAt(server);
  EXPECT_EQ(store("new"), 1);
  EXPECT_EQ(server.content("/a"), "new");
}

TEST_F(Write, SendsBytesOfEveryValueUnchanged) {
  std::string data;
  for (int value = 0; value < 512; ++value) data.push_back(static_cast<char>(value));
  data += "\r\n\n\r\x1a";
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(store(data), 1);
  EXPECT_EQ(server.content("/a"), data);
}

TEST_F(Write, NormalisesThePathTwice) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/": {}}})");
  loginAt(server);
  for (const char* path : {"\\pub\\a", "///pub/b", "/pub/c/", "pub/d"})
    EXPECT_EQ(store("x", path), 1) << path;
  EXPECT_EQ(server.names("/pub"), (Names{"a", "b", "c", "d"}));
}

TEST_F(Write, OddNamesAreNamesLikeOthers) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/": {}}})");
  loginAt(server);
  for (const std::string& name : kOddNames) {
    EXPECT_EQ(store("of " + name, "/d/" + name), 1) << name;
    ASSERT_TRUE(server.exists("/d/" + name)) << name;
    EXPECT_EQ(server.content("/d/" + name), "of " + name);
  }
}

TEST_F(Write, ARelativeNameThatBeginsWithAHyphenIsNoOption) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(store("x", "-l"), 1);
  EXPECT_EQ(server.names("/"), Names{"-l"});
}

TEST_F(Write, APathOf255CharactersIsWritten) {
  const std::string path = "/" + std::string(254, 'n');
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(store("x", path), 1);
  EXPECT_TRUE(server.exists(path));
}

TEST_F(Write, TheWorkersEntryLineNamesThePath) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(store("x"), 1);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPWriteFileThr - IN: '/a'");
}

TEST_F(Write, TheWorkerDispatchesItsOwnMessagesBetweenChunks) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  WorkerMessage message;
  client.connected = [&] { message.post(); };
  client.disconnected = [&] { message.takeBack(); };
  EXPECT_EQ(store(patternText(10'000)), 1);
  message.expectDispatched();
}

TEST_F(Write, NeverUsesTheConnectionOfFTPConnect) {
  const fixture::ScriptedFtp server;
  ASSERT_EQ(connectTo(server), 1);
  EXPECT_EQ(store("x"), 1);
  EXPECT_EQ(server.connections().size(), 2u);
  EXPECT_EQ(server.dataConnections().at(0).connection, 2);
  EXPECT_NE(client.m_pFtpConnection, nullptr);
}

TEST_F(Write, OnPollGetsTheCallersValuesAndTheTransferBlock) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  std::set<std::tuple<QXHostValue, QXHostValue, QXHostValue>> asked;
  client.poll = [&](QXHostValue first, QXHostValue second, QXHostValue transfer, QXBool*) -> QXBool {
    asked.insert({first, second, transfer});
    return 0;
  };
  EXPECT_EQ(client.FTPWriteFile("/a", "x", 1, 0, 0, 0, 11, 22), 1);
  const auto block = reinterpret_cast<QXHostValue>(&client.m_Transfer);
  EXPECT_EQ(asked, (std::set<std::tuple<QXHostValue, QXHostValue, QXHostValue>>{{11, 22, block}}));
}

TEST_F(Write, WithoutAnErrorRecordItWorksTheSame) {
  const fixture::ScriptedFtp server;
  RecordingClient silent;
  silent.FTPSetLogin("127.0.0.1", "u", "p", server.port(), 1);
  EXPECT_EQ(silent.FTPWriteFile("/a", "x", 1, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(server.content("/a"), "x");
  EXPECT_EQ(silent.FTPWriteFile("/none/a", "x", 1, 0, 0, 0, 0, 0), 0);
  EXPECT_STREQ(silent.m_szMessage, "TQXIP::FTPWriteFile '/none/a' failed!");
}

}  // namespace
