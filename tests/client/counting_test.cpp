// SPDX-License-Identifier: MIT
// FTPHasSubDir and FTPCountFolderItems, which ask through FTPGetDirectory.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"

namespace {

using Names = std::vector<std::string>;

class Counting : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};
  ScriptedFinder finder;
  std::uint32_t files = 77;
  std::uint32_t directories = 77;

  void SetUp() override { client.finder = &finder; }

  QXBool countItems(const char* path, std::uint32_t retries = 0) {
    return client.FTPCountFolderItems(path, &files, &directories, retries);
  }
  void hasFilesOnly() { finder.answersWith({{.name = "a"}, {.name = "b"}}); }
  void hasBoth() {
    finder.answersWith({{.name = "a"},
                        {.name = "d", .isDirectory = true},
                        {.name = ".hidden", .isDirectory = true},
                        {.name = "e", .isDirectory = true},
                        {.name = "b"},
                        {.name = "c"}});
  }
};

using HasSubDir = Counting;
using CountFolderItems = Counting;

TEST_F(HasSubDir, IsTrueForADirectoryWithASubdirectory) {
  hasBoth();
  EXPECT_EQ(client.FTPHasSubDir("/pub", 0), 1);
  EXPECT_EQ(finder.patterns, Names{"/pub/*.*"});
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(HasSubDir, AsksForTheNormalisedPath) {
  EXPECT_EQ(client.FTPHasSubDir("\\pub\\", 0), 0);
  EXPECT_EQ(client.FTPHasSubDir("//", 0), 0);
  EXPECT_EQ(finder.patterns, (Names{"/pub/*.*", "/*.*"}));
}

TEST_F(HasSubDir, ADirectoryOfFilesOnlyHasNoneWithoutAFailure) {
  hasFilesOnly();
  EXPECT_EQ(client.FTPHasSubDir("/pub", 3), 0);
  EXPECT_EQ(finder.patterns.size(), 1u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPHasSubDir '/pub' failed!");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(HasSubDir, SubdirectoriesThatBeginWithADotDoNotCount) {
  finder.answersWith({{.name = ".", .isDirectory = true}, {.name = ".git", .isDirectory = true}});
  EXPECT_EQ(client.FTPHasSubDir("/pub", 0), 0);
}

TEST_F(HasSubDir, AnEmptyDirectoryHasNone) {
  EXPECT_EQ(client.FTPHasSubDir("/pub", 0), 0);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(HasSubDir, LeavesNoListingPending) {
  hasBoth();
  EXPECT_EQ(client.FTPHasSubDir("/pub", 0), 1);
  EXPECT_EQ(client.m_pFileBuffer, nullptr);
}

TEST_F(HasSubDir, ANullOrEmptyPathFailsAndReports) {
  for (const char* path : {static_cast<const char*>(nullptr), ""}) {
    record = {};
    EXPECT_EQ(client.FTPHasSubDir(path, 0), 0);
    const std::string title =
        std::string("TQXIP::FTPHasSubDir '") + (path != nullptr ? path : "(null)") + "' failed!";
    EXPECT_EQ(client.m_szMessage, title);
    EXPECT_THAT(record, ReportsLastError(title, 87u, 4112));
  }
  EXPECT_TRUE(client.calls().empty());
}

TEST_F(HasSubDir, EachOfItsRunsListsWithTheRetriesThatAreLeft) {
  finder.throwsAtFirst(12031, 1000);
  EXPECT_EQ(client.FTPHasSubDir("/pub", 2), 0);
  EXPECT_EQ(finder.patterns.size(), 3u + 2u + 1u);
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPHasSubDir '/pub' failed!");
}

TEST_F(HasSubDir, ARetryThatSucceedsGivesItsAnswer) {
  hasBoth();
  finder.throwsAtFirst(12031, 2);
  EXPECT_EQ(client.FTPHasSubDir("/pub", 1), 1);
  EXPECT_EQ(finder.patterns.size(), 3u);
}

TEST_F(HasSubDir, WorksOnAClientThatIsNotInitialised) {
  client.m_bInitialized = 0;
  hasBoth();
  EXPECT_EQ(client.FTPHasSubDir("/pub", 0), 1);
  client.m_bInitialized = 1;
}

TEST_F(CountFolderItems, CountsFilesAndSubdirectoriesApart) {
  hasBoth();
  EXPECT_EQ(countItems("/pub"), 1);
  EXPECT_EQ(files, 3u);
  EXPECT_EQ(directories, 2u);
  EXPECT_EQ(finder.patterns, Names{"/pub/*.*"});
  EXPECT_STREQ(client.m_szMessage, "TQXIP::FTPCountFolderItems '/pub' failed!");
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(CountFolderItems, AnEmptyDirectoryCountsNothing) {
  EXPECT_EQ(countItems("/pub"), 1);
  EXPECT_EQ(files, 0u);
  EXPECT_EQ(directories, 0u);
}

TEST_F(CountFolderItems, EitherOrBothPointersMayBeNull) {
  hasBoth();
  EXPECT_EQ(client.FTPCountFolderItems("/pub", nullptr, nullptr, 0), 1);
  EXPECT_EQ(client.FTPCountFolderItems("/pub", &files, nullptr, 0), 1);
  EXPECT_EQ(files, 3u);
  EXPECT_EQ(client.FTPCountFolderItems("/pub", nullptr, &directories, 0), 1);
  EXPECT_EQ(directories, 2u);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(CountFolderItems, ANullOrEmptyPathFailsAndReports) {
  for (const char* path : {static_cast<const char*>(nullptr), ""}) {
    record = {};
    EXPECT_EQ(countItems(path), 0);
    const std::string title =
        std::string("TQXIP::FTPCountFolderItems '") + (path != nullptr ? path : "(null)") + "' failed!";
    EXPECT_EQ(client.m_szMessage, title);
    EXPECT_THAT(record, ReportsLastError(title, 87u, 4237));
  }
}

TEST_F(CountFolderItems, EachOfItsRunsListsWithTheRetriesThatAreLeft) {
  finder.throwsAtFirst(12031, 1000);
  EXPECT_EQ(countItems("/pub", 3), 0);
  EXPECT_EQ(finder.patterns.size(), 4u + 3u + 2u + 1u);
  EXPECT_THAT(record, ReportsIPError("FTP-Error!", 12031));
}

TEST_F(CountFolderItems, ARetryThatSucceedsCounts) {
  hasBoth();
  finder.throwsAtFirst(12031, 2);
  EXPECT_EQ(countItems("/pub", 1), 1);
  EXPECT_EQ(finder.patterns.size(), 3u);
  EXPECT_EQ(files, 3u);
  EXPECT_EQ(directories, 2u);
}

}  // namespace
