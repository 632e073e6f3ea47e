// SPDX-License-Identifier: MIT
// FTPDirExist and FTPIsDirectory: the walk over the parent's entries, and what a failure leaves behind.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"

namespace {

constexpr int kLine = 4746;
using Names = std::vector<std::string>;

class DirExist : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};
  ScriptedFinder finder;

  void SetUp() override { client.finder = &finder; }
  void TearDown() override { client.m_bConnected = 0; }
  QXBool exists(const char* path, std::uint32_t retries = 0) {
    return client.FTPDirExist(path, retries, 0, 0);
  }
};

TEST_F(DirExist, TheRootIsThereInEverySpellingWithoutAListing) {
  for (const char* root : {"/", "\\", "//"}) EXPECT_EQ(exists(root), 1) << root;
  EXPECT_EQ(finder.patterns, Names{});
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(DirExist, AsksTheParentForItsEntriesAnew) {
  finder.answersWith({Found::directory("data")});
  EXPECT_EQ(exists("/pub/data"), 1);
  EXPECT_EQ(finder.patterns, Names{"/pub"});
  EXPECT_EQ(finder.flags, std::vector<std::uint32_t>{0x80000000u});
}

TEST_F(DirExist, TheParentOfATopLevelDirectoryIsTheRoot) {
  finder.answersWith({Found::directory("data")});
  EXPECT_EQ(exists("/data"), 1);
  EXPECT_EQ(finder.patterns, Names{"/"});
}

TEST_F(DirExist, TheParentIsNormalisedToo) {
  finder.answersWith({Found::directory("data")});
  EXPECT_EQ(exists("/pub//data"), 1);
  EXPECT_EQ(finder.patterns, Names{"/pub"});
}

TEST_F(DirExist, UsesTheDirectoryFinderOfTheObject) {
  finder.answersWith({Found::directory("data")});
  EXPECT_EQ(exists("/data"), 1);
  EXPECT_EQ(client.calls(), Names{"GetFinder m_pFTPDirFind"});
  EXPECT_GE(finder.closed, 1);
}

TEST_F(DirExist, EverySpellingOfAPathNamesTheSameDirectory) {
  finder.answersWith({Found::directory("pub")});
  for (const char* path : {"/pub", "/pub/", "\\pub", "\\pub\\", "//pub"}) EXPECT_EQ(exists(path), 1) << path;
  EXPECT_EQ(finder.patterns, Names(5, "/"));
}

TEST_F(DirExist, NamesAreComparedWithoutRegardToCase) {
  finder.answersWith({Found::directory("pub")});
  EXPECT_EQ(exists("/PUB"), 1);
  finder.answersWith({Found::directory("DaTa")});
  EXPECT_EQ(exists("/dAtA"), 1);
}

TEST_F(DirExist, AServersNameWithATrailingSlashMatchesToo) {
  finder.answersWith({Found::directory("data/")});
  EXPECT_EQ(exists("/data"), 1);
}

TEST_F(DirExist, APlainFileOfThatNameDoesNotCount) {
  finder.answersWith({Found::file("x")});
  EXPECT_EQ(exists("/a/x"), 0);
}

TEST_F(DirExist, TheWalkGoesOnBehindAPlainFileOfThatName) {
  finder.answersWith({Found::file("x"), Found::file("y"), Found::directory("X")});
  EXPECT_EQ(exists("/a/x"), 1);
}

TEST_F(DirExist, TheWalkEndsAtTheFirstMatch) {
  finder.answersWith({Found::directory("a"), Found::directory("x"), Found::directory("y")});
  EXPECT_EQ(exists("/x"), 1);
  EXPECT_EQ(finder.walked, 2);
}

TEST_F(DirExist, TheLastEntryIsExamined) {
  finder.answersWith({Found::file("a"), Found::file("b"), Found::directory("x")});
  EXPECT_EQ(exists("/x"), 1);
}

TEST_F(DirExist, OtherNamesAreNotThere) {
  finder.answersWith(
      {Found::directory("x1"), Found::directory("1x"), Found::directory("."), Found::directory("..")});
  EXPECT_EQ(exists("/x"), 0);
}

TEST_F(DirExist, AnEntryThatComesTwiceInARowEndsTheWalk) {
  finder.answersWith({Found::file("a"), Found::file("A"), Found::directory("x")});
  EXPECT_EQ(exists("/x"), 0);
  EXPECT_EQ(finder.walked, 2);
}

TEST_F(DirExist, AServerThatRepeatsOneEntryForEverEndsTheWalkAtItsSecondSight) {
  finder.answersWith({Found::file("a")});
  finder.repeatsTheLastEntry = true;
  EXPECT_EQ(exists("/x"), 0);
  EXPECT_EQ(finder.walked, 2);
}

TEST_F(DirExist, NamesLongerThanAnyPathArePassedOver) {
  finder.answersWith({Found::directory(std::string(5'000, 'n')), Found::directory("x")});
  EXPECT_EQ(exists("/x"), 1);
}

TEST_F(DirExist, AMissingDirectoryIsReportedByTheOperationAlone) {
  finder.answersWith({Found::directory("other")});
  EXPECT_EQ(exists("/x"), 0);
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDirExist '/x' failed!");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPDirExist '/x' failed!", kLine));
}

TEST_F(DirExist, AMissingParentIsNoFailureOfTheWorkerAndNotRetried) {
  EXPECT_EQ(exists("/none/x", 3), 0);
  EXPECT_EQ(finder.patterns, Names{"/none"});
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_GE(finder.closed, 1);
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPDirExist '/none/x' failed!", kLine));
}

TEST_F(DirExist, ASuccessWritesTheFailedLineButNoReport) {
  finder.answersWith({Found::directory("x")});
  EXPECT_EQ(exists("/x"), 1);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDirExist '/x' failed!");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(DirExist, TheLinesNameThePathAsItWasGiven) {
  EXPECT_EQ(exists("\\a\\x\\"), 0);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDirExist '\\a\\x\\' failed!");
}

TEST_F(DirExist, WithoutAnErrorRecordAMissingDirectoryChangesTheMessageAlone) {
  RecordingClient silent;
  silent.finder = &finder;
  EXPECT_EQ(silent.FTPDirExist("/x", 0, 0, 0), 0);
  EXPECT_STREQ(silent.m_szMessage, "TQXIP::FTPDirExist '/x' failed!");
}

TEST_F(DirExist, ANullPathFailsInTheWorker) {
  EXPECT_EQ(exists(nullptr), 0);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 0"), 1u);
  EXPECT_EQ(finder.patterns, Names{});
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDirExist '(null)' failed!");
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 87));
}

TEST_F(DirExist, AnEmptyPathFailsInTheWorkerAndIsRetried) {
  EXPECT_EQ(exists("", 2), 0);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 2"), 1u);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 1"), 1u);
  EXPECT_EQ(client.count("OnIPError 87 FTP-Error! retries 0"), 1u);
  EXPECT_EQ(client.count("OnIPError"), 3u);
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 87));
}

TEST_F(DirExist, AClientThatIsNotInitialisedStartsNothing) {
  client.m_bInitialized = 0;
  EXPECT_EQ(exists("/x", 3), 0);
  EXPECT_TRUE(client.calls().empty());
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDirExist '/x' failed!");
  EXPECT_THAT(record, ReportsFrom("TQXIP::FTPDirExist '/x' failed!", kLine));
  client.m_bInitialized = 1;
}

TEST_F(DirExist, AnInternetExceptionGoesToOnIPErrorWithTheCounter) {
  finder.throwsAtFirst(12031, 1);
  EXPECT_EQ(exists("/x"), 0);
  EXPECT_EQ(client.count("OnIPError 12031"), 1u);
  EXPECT_EQ(client.count("OnIPError"), 1u);
  EXPECT_TRUE(client.calls().back().ends_with(" retries 0"));
  EXPECT_EQ(record.nError, 12031u);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[12031 QXIP 1187]"));
}

TEST_F(DirExist, AnInternetExceptionIsRetriedWhileTheCountLasts) {
  finder.answersWith({Found::directory("x")});
  finder.throwsAtFirst(12031, 3);
  EXPECT_EQ(exists("/x", 2), 0);
  EXPECT_EQ(finder.patterns.size(), 3u);
}

TEST_F(DirExist, ARetryThatSucceedsAnswersOneAndLeavesTheReportOfTheFirstAttempt) {
  finder.answersWith({Found::directory("x")});
  finder.throwsAtFirst(12031, 1);
  EXPECT_EQ(exists("/x", 1), 1);
  EXPECT_EQ(finder.patterns.size(), 2u);
  EXPECT_EQ(record.nError, 12031u);
}

TEST_F(DirExist, ATimeOutOfAConnectedClientArmsTheCounter) {
  for (const std::uint32_t error : {12002u, 12030u}) {
    client.m_bConnected = 1;
    finder.answersWith({Found::directory("x")});
    finder.throwsAtFirst(error, 1);
    EXPECT_EQ(exists("/x", 0), 1) << error;
  }
}

TEST_F(DirExist, ATimeOutOfAClientThatIsNotConnectedDoesNot) {
  for (const std::uint32_t error : {12002u, 12030u}) {
    finder.answersWith({Found::directory("x")});
    finder.throwsAtFirst(error, 1);
    EXPECT_EQ(exists("/x", 0), 0) << error;
  }
}

// Paths that may not go to a server.
class BadPath : public DirExist, public testing::WithParamInterface<std::string> {};

TEST_P(BadPath, FailsBeforeAnythingIsAsked) {
  EXPECT_EQ(exists(GetParam().c_str()), 0);
  EXPECT_EQ(client.calls(), Names{"OnIPError 87 FTP-Error! retries 0"});
  EXPECT_EQ(finder.patterns, Names{});
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 87));
}

INSTANTIATE_TEST_SUITE_P(Paths, BadPath,
                         testing::Values("/" + std::string(4095, 'a'), std::string(5'000, 'a'),
                                         std::string(100000, 'a'), "/a\r\nDELE b", "/a\nb", "/a\x7f",
                                         "/\x01"));

TEST_F(DirExist, APathOf255CharactersIsAskedFor) {
  const std::string name(254, 'a');
  finder.answersWith({Found::directory(name)});
  EXPECT_EQ(exists(("/" + name).c_str()), 1);
}

class IsDirectory : public DirExist {};

TEST_F(IsDirectory, AnswersWhatDirExistAnswers) {
  finder.answersWith({Found::directory("x"), Found::file("y")});
  EXPECT_EQ(client.FTPIsDirectory("/x", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPIsDirectory("/y", 0, 0, 0), 0);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPDirExist '/y' failed!");
}

TEST_F(IsDirectory, ANullOrEmptyPathOrAClientThatIsNotInitialisedAnswersZeroAtOnceAndSilently) {
  EXPECT_EQ(client.FTPIsDirectory(nullptr, 3, 0, 0), 0);
  EXPECT_EQ(client.FTPIsDirectory("", 3, 0, 0), 0);
  client.m_bInitialized = 0;
  EXPECT_EQ(client.FTPIsDirectory("/x", 3, 0, 0), 0);
  client.m_bInitialized = 1;
  EXPECT_TRUE(client.calls().empty());
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_TRUE(IsBlank(record));
}

// A host that has put its own function into the slot of FTPDirExist.
class OwnDirExist final : public TQXIP {
 public:
  using TQXIP::TQXIP;
  ~OwnDirExist() = default;
  std::string asked;

  QXBool FTPDirExist(const char* path, std::uint32_t retries, QXHostValue first,
                     QXHostValue second) override {
    asked = std::string(path) + " " + std::to_string(retries) + " " + std::to_string(first) + " " +
            std::to_string(second);
    return 1;
  }
};

TEST(IsDirectoryThroughTheSlot, HandsItsArgumentsToTheHostsOwnDirExist) {
  OwnDirExist host(nullptr);
  EXPECT_EQ(host.FTPIsDirectory("/x", 4, 11, 22), 1);
  EXPECT_EQ(host.asked, "/x 4 11 22");
}

}  // namespace
