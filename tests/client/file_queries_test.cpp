// SPDX-License-Identifier: MIT
// FTPFileExists and FTPFileSize: the first entry for the path itself, and what a failure leaves behind.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"

namespace {

using Names = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

class FileQuery : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};
  ScriptedFinder finder;

  void SetUp() override { client.finder = &finder; }
  void TearDown() override { client.m_bConnected = 0; }
};

// The two existence queries repeat a failed attempt at once, the size query waits 10 ms: with as many retries
// it takes many times as long.
TEST_F(FileQuery, TheExistenceQueriesRetryWithoutAPause) {
  constexpr std::uint32_t kRetries = 100;
  const auto took = [&](const auto& query) {
    finder.throwsAtFirst(12031, kRetries + 1);
    finder.patterns.clear();
    const auto start = Clock::now();
    query();
    const auto end = Clock::now();
    EXPECT_EQ(finder.patterns.size(), kRetries + 1);
    return end - start;
  };
  const auto size = took([&] { client.FTPFileSize("/x", kRetries, 0, 0); });
  EXPECT_GE(size, kRetries * std::chrono::milliseconds(10));
  EXPECT_LT(took([&] { client.FTPDirExist("/a/x", kRetries, 0, 0); }), size / 2);
  EXPECT_LT(took([&] { client.FTPFileExists("/x", kRetries, 0, 0); }), size / 2);
}

class FileExists : public FileQuery {
 protected:
  static constexpr int kLine = 5232;
  QXBool exists(const char* path, std::uint32_t retries = 0) {
    return client.FTPFileExists(path, retries, 0, 0);
  }
};

TEST_F(FileExists, AsksForThePathItselfAnew) {
  finder.answersWith({Found::file("x")});
  EXPECT_EQ(exists("/a/x"), 1);
  EXPECT_EQ(finder.patterns, Names{"/a/x"});
  EXPECT_EQ(finder.flags, std::vector<std::uint32_t>{0x80000000u});
  EXPECT_EQ(client.calls(), Names{"GetFinder m_pFTPFileFind"});
}

TEST_F(FileExists, EverySpellingOfAPathNamesTheSameFile) {
  finder.answersWith({Found::file("x")});
  for (const char* path : {"/a/x", "\\a\\x", "/a/x/", "//a/x"}) EXPECT_EQ(exists(path), 1) << path;
  EXPECT_EQ(finder.patterns, Names(4, "/a/x"));
}

TEST_F(FileExists, ADirectoryIsNoFile) {
  finder.answersWith({Found::directory("x")});
  EXPECT_EQ(exists("/a/x"), 0);
}

TEST_F(FileExists, NamesAreComparedWithoutRegardToCase) {
  finder.answersWith({Found::file("ReadMe.TXT")});
  EXPECT_EQ(exists("/README.txt"), 1);
}

TEST_F(FileExists, OnlyTheLastComponentOfTheServersNameCounts) {
  finder.answersWith({Found::file("/elsewhere/x")});
  EXPECT_EQ(exists("/a/x"), 1);
}

TEST_F(FileExists, AnotherNameIsNotTheFile) {
  finder.answersWith({Found::file("y")});
  EXPECT_EQ(exists("/a/x"), 0);
}

TEST_F(FileExists, OnlyTheFirstEntryIsExamined) {
  finder.answersWith({Found::file("y"), Found::file("x")});
  EXPECT_EQ(exists("/a/x"), 0);
  EXPECT_EQ(finder.walked, 1);
}

TEST_F(FileExists, AMissingFileIsReportedByTheOperationAlone) {
  EXPECT_EQ(exists("/a/x", 3), 0);
  EXPECT_EQ(finder.patterns.size(), 1u);
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_GE(finder.closed, 1);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPFileExists '/a/x' failed!");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPFileExists '/a/x' failed!", kLine));
}

TEST_F(FileExists, ASuccessWritesTheFailedLineButNoReport) {
  finder.answersWith({Found::file("x")});
  EXPECT_EQ(exists("/x"), 1);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPFileExists '/x' failed!");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(FileExists, ANullPathStartsNoWorker) {
  EXPECT_EQ(exists(nullptr, 3), 0);
  EXPECT_TRUE(client.calls().empty());
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPFileExists '(null)' failed!");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPFileExists '(null)' failed!", kLine));
}

TEST_F(FileExists, AnEmptyPathStartsAWorkerThatFails) {
  EXPECT_EQ(exists("", 1), 0);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 1"), 1u);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 0"), 1u);
  EXPECT_EQ(finder.patterns, Names{});
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 87));
}

TEST_F(FileExists, AClientThatIsNotInitialisedStartsNothing) {
  client.m_bInitialized = 0;
  EXPECT_EQ(exists("/x"), 0);
  EXPECT_TRUE(client.calls().empty());
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPFileExists '/x' failed!", kLine));
  client.m_bInitialized = 1;
}

TEST_F(FileExists, AnInternetExceptionGoesToOnIPErrorAndIsRetriedWhileTheCountLasts) {
  finder.answersWith({Found::file("x")});
  finder.throwsAtFirst(12031, 4);
  EXPECT_EQ(exists("/x", 3), 0);
  EXPECT_EQ(finder.patterns.size(), 4u);
  EXPECT_EQ(client.count("OnIPError 12031"), 4u);
  EXPECT_EQ(record.nError, 12031u);
}

TEST_F(FileExists, ARetryThatSucceedsAnswersOne) {
  finder.answersWith({Found::file("x")});
  finder.throwsAtFirst(12031, 2);
  EXPECT_EQ(exists("/x", 2), 1);
  EXPECT_EQ(finder.patterns.size(), 3u);
}

TEST_F(FileExists, AnAbortedConnectionOfAConnectedClientArmsTheCounter) {
  client.m_bConnected = 1;
  finder.answersWith({Found::file("x")});
  finder.throwsAtFirst(12030, 1);
  EXPECT_EQ(exists("/x", 0), 1);
}

class FileSize : public FileQuery {
 protected:
  std::uint32_t size(const char* path, std::uint32_t retries = 0) {
    return client.FTPFileSize(path, retries, 0, 0);
  }
};

TEST_F(FileSize, IsThatOfTheFirstEntryForThePath) {
  finder.answersWith({Found::file("x", 4711), Found::file("x", 1)});
  EXPECT_EQ(size("/a/x"), 4711u);
  EXPECT_EQ(finder.patterns, Names{"/a/x"});
  EXPECT_EQ(finder.flags, std::vector<std::uint32_t>{0x80000000u});
  EXPECT_EQ(client.calls(), Names{"GetFinder m_pFTPFileSize"});
  EXPECT_EQ(finder.walked, 1);
}

TEST_F(FileSize, IsTheSizeModuloTwoToThe32) {
  finder.answersWith({Found::file("x", 5'000'000'000)});
  EXPECT_EQ(size("/x"), 705'032'704u);
  finder.answersWith({Found::file("x", 0xFFFFFFFF)});
  EXPECT_EQ(size("/x"), 0xFFFFFFFFu);
  finder.answersWith({Found::file("x", 0x1'0000'0000)});
  EXPECT_EQ(size("/x"), 0u);
}

TEST_F(FileSize, NeitherTheNameNorTheKindOfTheEntryIsChecked) {
  finder.answersWith({{.name = "other", .isDirectory = true, .length = 12}});
  EXPECT_EQ(size("/x"), 12u);
}

TEST_F(FileSize, ASuccessWritesNothing) {
  finder.answersWith({Found::file("x", 1)});
  EXPECT_EQ(size("/x"), 1u);
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(FileSize, AMissingFileIsAFailureOfTheWorker) {
  EXPECT_EQ(size("/x"), 0u);
  EXPECT_EQ(client.calls(), (Names{"GetFinder m_pFTPFileSize", "OnIPError 18 FTP-Error! retries 0"}));
  EXPECT_STREQ(client.m_szMessage, "TQXIP::OnIPError: 'FTP-Error!' (18)");
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 18));
}

TEST_F(FileSize, AMissingFileIsAskedForAgainTenMillisecondsApart) {
  const auto start = Clock::now();
  EXPECT_EQ(size("/x", 3), 0u);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(30));
  EXPECT_EQ(finder.patterns.size(), 4u);
}

TEST_F(FileSize, ARetryThatSucceedsGivesTheSize) {
  finder.answersWith({Found::file("x", 9)});
  finder.throwsAtFirst(12031, 1);
  EXPECT_EQ(size("/x", 1), 9u);
}

TEST_F(FileSize, AnInternetExceptionGoesToOnIPErrorOnce) {
  finder.throwsAtFirst(12031, 1);
  EXPECT_EQ(size("/x"), 0u);
  EXPECT_EQ(client.count("OnIPError 12031"), 1u);
  EXPECT_EQ(client.count("OnIPError"), 1u);
}

TEST_F(FileSize, ATimeOutOfAConnectedClientArmsTheCounter) {
  client.m_bConnected = 1;
  finder.answersWith({Found::file("x", 9)});
  finder.throwsAtFirst(12002, 1);
  EXPECT_EQ(size("/x", 0), 9u);
}

TEST_F(FileSize, ANullOrEmptyPathOrAClientThatIsNotInitialisedAnswersZeroAtOnceAndSilently) {
  EXPECT_EQ(size(nullptr, 3), 0u);
  EXPECT_EQ(size("", 3), 0u);
  client.m_bInitialized = 0;
  EXPECT_EQ(size("/x", 3), 0u);
  client.m_bInitialized = 1;
  EXPECT_TRUE(client.calls().empty());
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
}

// Paths that may not go to a server.
class BadFilePath : public FileQuery, public testing::WithParamInterface<std::string> {};

TEST_P(BadFilePath, FailsBothQueriesBeforeAnythingIsAsked) {
  EXPECT_EQ(client.FTPFileExists(GetParam().c_str(), 0, 0, 0), 0);
  EXPECT_EQ(client.FTPFileSize(GetParam().c_str(), 0, 0, 0), 0u);
  EXPECT_EQ(client.calls(), Names(2, "OnIPError 87 FTP-Error! retries 0"));
  EXPECT_EQ(finder.patterns, Names{});
}

INSTANTIATE_TEST_SUITE_P(Paths, BadFilePath,
                         testing::Values("/" + std::string(4095, 'a'), std::string(5'000, 'a'),
                                         "/a\r\nDELE b", "/a\nb", "/a\x7f", "/\x1f"));

TEST_F(FileQuery, APathOf4095CharactersIsAskedFor) {
  const std::string name(4094, 'a');
  finder.answersWith({Found::file(name, 3)});
  EXPECT_EQ(client.FTPFileExists(("/" + name).c_str(), 0, 0, 0), 1);
  EXPECT_EQ(client.FTPFileSize(("/" + name).c_str(), 0, 0, 0), 3u);
}

}  // namespace
