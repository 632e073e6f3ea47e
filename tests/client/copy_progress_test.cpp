// SPDX-License-Identifier: MIT
// The progress callback of FTPCpyFile: its arguments, its figures, and how it stops a copy.
#include <algorithm>

#include "tests/client/ContentTest.h"
#include "tests/client/ProgressLog.h"
#include "tests/client/SlotHost.h"

namespace {

using Percentages = std::vector<std::uint32_t>;

constexpr std::uint64_t kChunk = 4096;

class CopyProgress : public ContentTest {
 protected:
  const ProgressLog progress;
  const std::string target = localName(local);

  QXBool copy(const std::string& from, const std::string& to, std::uint32_t retries = 0) {
    return client.FTPCpyFile(from.c_str(), to.c_str(), &ProgressLog::note, retries, 0, 0);
  }
};

std::string serving(std::uint64_t size) {
  return "{\"tree\": {\"/a\": {\"size\": " + std::to_string(size) + ", \"zeros\": true}}}";
}

// A figure per chunk; a file that ends with a whole chunk needs one more read to see its end.
Percentages percentagesOf(std::uint64_t size) {
  Percentages all;
  for (std::uint64_t done = 0; done < size;) {
    done = std::min(done + kChunk, size);
    all.push_back(static_cast<std::uint32_t>(done * 100) / static_cast<std::uint32_t>(size));
  }
  if (size % kChunk == 0) all.push_back(size == 0 ? 0 : all.back());
  return all;
}

// What the callback was told of stood in the library's memory, and not in the file.
TEST_F(CopyProgress, WhatTheCallbackIsToldOfIsInTheFile) {
  constexpr std::uint64_t kSize = 3 * kChunk + 5;
  const fixture::ScriptedFtp server(serving(kSize));
  loginAt(server);
  std::vector<std::uint64_t> sizes;
  ProgressLog::stop() = [&]() -> QXBool {
    sizes.push_back(std::filesystem::file_size(local));
    return 0;
  };
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_EQ(sizes, (std::vector<std::uint64_t>{kChunk, 2 * kChunk, 3 * kChunk, kSize}));
}

class CopyProgressSizes : public CopyProgress, public testing::WithParamInterface<std::size_t> {};

TEST_P(CopyProgressSizes, ShowAPercentagePerChunk) {
  const fixture::ScriptedFtp server(serving(GetParam()));
  loginAt(server);
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_EQ(progress.percentages(), percentagesOf(GetParam()));
  ProgressLog::calls().clear();
  EXPECT_EQ(copy("/a", "/b"), 1);
  EXPECT_EQ(progress.percentages(), percentagesOf(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Sizes, CopyProgressSizes,
                         testing::Values(0u, 1u, 4095u, 4096u, 4097u, 8192u, 40000u),
                         testing::PrintToStringParamName());

TEST_F(CopyProgress, ThreeChunksAreThreeFigures) {
  const fixture::ScriptedFtp server(serving(10'000));
  loginAt(server);
  EXPECT_EQ(copy("\\a", target), 1);
  using Call = ProgressLog::Call;
  EXPECT_EQ(ProgressLog::calls(), (std::vector<Call>{{"/a", 40, 0}, {"/a", 81, 0}, {"/a", 100, 0}}));
}

TEST_F(CopyProgress, ACopyOnTheServerNamesTheNormalisedSource) {
  const fixture::ScriptedFtp server(serving(10));
  loginAt(server);
  EXPECT_EQ(copy("\\a", "/b"), 1);
  EXPECT_EQ(ProgressLog::calls(), (std::vector<ProgressLog::Call>{{"/a", 100, 0}}));
}

TEST_F(CopyProgress, AnUploadCallsOnceBeforehandWithThePathAsGiven) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  testing_support::Pattern(7).writeFile(local, 10'000);
  EXPECT_EQ(copy(target, "/b"), 1);
  EXPECT_EQ(ProgressLog::calls(), (std::vector<ProgressLog::Call>{{target, 0, 0}}));
  EXPECT_TRUE(server.matches("/b", 7, 10'000));
}

TEST_F(CopyProgress, BetweenTwoLocalPathsNothingIsCalled) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(copy(target, localName(folder.file("other"))), 1);
  EXPECT_TRUE(ProgressLog::calls().empty());
}

TEST_F(CopyProgress, ASourceThatCannotBeMeasuredShowsZeros) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 9000, "seed": 7}},
          "rules": [{"on": ["MLST", "MLSD", "SIZE", "LIST", "NLST"], "do": [{"reply": "550 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_EQ(progress.percentages(), (Percentages{0, 0, 0}));
  EXPECT_TRUE(testing_support::Pattern(7).matchesFile(local, 9000));
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, 9000, 0}));
  EXPECT_EQ(copy("/a", "/b"), 1);
  EXPECT_TRUE(server.matches("/b", 7, 9000));
}

TEST_F(CopyProgress, ThePercentageWrapsOnceMoreThan42949672BytesAreCopied) {
  constexpr std::uint64_t kSize = 60'000'000;
  const fixture::ScriptedFtp server(serving(kSize));
  loginAt(server);
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_EQ(std::filesystem::file_size(local), kSize);
  const Percentages shown = progress.percentages();
  EXPECT_TRUE(shown == percentagesOf(kSize)) << shown.size() << " figures";
  EXPECT_EQ(*std::max_element(shown.begin(), shown.end()), 71u);
  EXPECT_EQ(shown.back(), 28u);  // (6,000,000,000 mod 2^32) / 60,000,000
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, kSize, kSize}));
}

TEST_F(CopyProgress, StoppingADownloadAtItsFirstCallIsASuccessOfOneChunk) {
  const fixture::ScriptedFtp server(serving(100'000));
  loginAt(server);
  ProgressLog::stop() = [] { return QXBool{1}; };
  EXPECT_EQ(copy("/a", target, 3), 1);
  EXPECT_EQ(ProgressLog::calls().size(), 1u);
  EXPECT_EQ(server.commandCount("RETR"), 1);
  EXPECT_EQ(std::filesystem::file_size(local), kChunk);
  EXPECT_EQ(progressIn(client.m_Transfer), (Progress{1, kChunk, 100'000}));
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(CopyProgress, StoppingInTheMiddleKeepsWhatHasCome) {
  const fixture::ScriptedFtp server(serving(100'000));
  loginAt(server);
  ProgressLog::stop() = [] { return ProgressLog::calls().size() == 5 ? QXBool{0xff} : QXBool{0}; };
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_EQ(std::filesystem::file_size(local), 5 * kChunk);
}

// What the server says of a transfer that was broken off, if it says anything, is no part of the copy.
TEST_F(CopyProgress, StoppingIsASuccessThoughTheServerHangsUp) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 40000, "seed": 7}},
          "rules": [{"on": "RETR", "do": [{"normal": {"final": null}}, "close"]}]})");
  loginAt(server);
  ProgressLog::stop() = [] { return QXBool{1}; };
  for (const std::string& to : {target, std::string("/b")}) {
    EXPECT_EQ(copy("/a", to), 1) << to;
    EXPECT_TRUE(IsBlank(record)) << record.szText;
  }
  EXPECT_EQ(std::filesystem::file_size(local), kChunk);
  EXPECT_FALSE(server.exists("/b"));
}

TEST_F(CopyProgress, StoppingACopyOnTheServerUploadsNothingAndLeavesNoTemporaryFile) {
  const fixture::ScriptedFtp server(serving(100'000));
  loginAt(server);
  ProgressLog::stop() = [] { return QXBool{1}; };
  EXPECT_EQ(copy("/a", "/b", 3), 1);
  EXPECT_EQ(server.commandCount("STOR"), 0);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_EQ(leftInTemporary(), Names{});
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(CopyProgress, StoppingAtTheLastChunkUploadsNothingEither) {
  const fixture::ScriptedFtp server(serving(10));
  loginAt(server);
  ProgressLog::stop() = [] { return QXBool{1}; };
  EXPECT_EQ(copy("/a", "/b"), 1);
  EXPECT_FALSE(server.exists("/b"));
}

TEST_F(CopyProgress, StoppingAnUploadSendsNothing) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("mine");
  ProgressLog::stop() = [] { return QXBool{1}; };
  EXPECT_EQ(copy(target, "/b", 3), 1);
  EXPECT_EQ(server.commandCount("STOR"), 0);
  EXPECT_EQ(ProgressLog::calls().size(), 1u);
}

TEST_F(CopyProgress, EveryAttemptCallsAnew) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 10000}},
          "rules": [{"on": "RETR", "nth": 1,
                     "do": [{"normal": {"stall_after": 5000, "gate": "called", "close_after": 5000,
                                        "final": "451 No"}}]}]})");
  loginAt(server);
  ProgressLog::stop() = [&] {
    server.release("called");
    return QXBool{0};
  };
  EXPECT_EQ(copy("/a", target, 1), 1);
  EXPECT_EQ(progress.percentages(), (Percentages{40, 40, 81, 100}));
}

TEST_F(CopyProgress, AReconnectHandsTheCallbackOn) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": {"size": 10}},
          "rules": [{"on": "RETR", "nth": 1, "do": [{"gate": "opening"}, {"reply": "550 No"}]}]})");
  loginAt(server);
  atGate(server, "opening", reconnects);
  EXPECT_EQ(copy("/a", target), 0);
  EXPECT_EQ(progress.percentages(), Percentages{100});
}

TEST_F(CopyProgress, TheTransferBlockGoesUpChunkByChunk) {
  constexpr std::uint64_t kSize = 1 << 20;
  const fixture::ScriptedFtp server(serving(kSize));
  loginAt(server);
  watchProgress();
  EXPECT_EQ(copy("/a", target), 1);
  for (const Progress& look : seen) {
    EXPECT_EQ(look.transferred % kChunk, 0u) << look;
    EXPECT_TRUE(look.total == kSize || look == Progress{}) << look;
  }
}

// The callback runs while the copy goes on: what it sees of the block is the chunk before its own.
TEST_F(CopyProgress, TheCallbackComesBeforeTheBlock) {
  const fixture::ScriptedFtp server(serving(10'000));
  loginAt(server);
  std::vector<Progress> blocks;
  ProgressLog::stop() = [&] {
    blocks.push_back(progressIn(client.m_Transfer));
    return QXBool{0};
  };
  EXPECT_EQ(copy("/a", target), 1);
  EXPECT_EQ(blocks, (std::vector<Progress>{{}, {1, 4096, 10'000}, {1, 8192, 10'000}}));
}

}  // namespace
