// SPDX-License-Identifier: MIT
// The reports of the operations and of their workers, which show where a host's own OnIPError files none.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Src/QXIP.h"
#include "framework/internet/InternetException.h"
#include "framework/internet/net/NameLookup.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/ScriptedFinder.h"

namespace {

// A host that keeps internet errors to itself.
class QuietHost final : public TQXIP {
 public:
  explicit QuietHost(QXErrorInfo* pErrorInfo) : TQXIP(pErrorInfo) {}
  ~QuietHost() = default;

  ScriptedFinder finder;
  bool hasFinder = true;
  void OnIPError(std::uint32_t, const char*, std::uint32_t*) override {}
  CFtpFileFind* GetFinder(QXHostValue, const char*) override { return hasFinder ? &finder : nullptr; }
};

class OwnReports : public testing::Test {
 protected:
  QXErrorInfo record{};
  QuietHost host{&record};
  std::uint32_t count = 0;

  // Each attempt fails with the next of these numbers.
  void failsWith(std::vector<std::uint32_t> errors) {
    host.finder.answer = [errors, next = std::size_t{0}](const std::string&) mutable -> std::vector<Found> {
      AfxThrowInternetException(errors.at(next++));
    };
  }
};

// A worker's report stores the number of its attempt.
MATCHER_P3(ReportsAttempt, title, error, line, "") {
  const std::string text = arg.szText;
  const std::string end = " [" + std::to_string(error) + " QXIP " + std::to_string(line) + "]";
  *result_listener << "code " << arg.nCode << ", error " << arg.nError << ", text '" << text << "'";
  return arg.bSet == 1 && arg.nCode == 1000 && arg.nError == static_cast<std::uint32_t>(error) &&
         text.starts_with(std::string(title) + " ") && text.ends_with(end);
}

TEST_F(OwnReports, TheWorkerOfDirExistNamesTheOperation) {
  EXPECT_EQ(host.FTPDirExist("", 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPDirExist '' failed!", 87, 4589));
}

TEST_F(OwnReports, TheWorkerOfFileExistsNamesItself) {
  EXPECT_EQ(host.FTPFileExists("", 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPFileExistsThr '' failed!", 87, 5063));
}

TEST_F(OwnReports, TheWorkerOfFileSizeFilesNone) {
  EXPECT_EQ(host.FTPFileSize("/none", 0, 0, 0), 0u);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(OwnReports, GetDirectoryReportsTheLastError) {
  EXPECT_EQ(host.FTPGetDirectory("", nullptr, &count, "*.*", 0), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPGetDirectory '' failed!", 87u, 3669));
}

TEST_F(OwnReports, AnInternetErrorIsTheNumberOfTheWorkersReport) {
  failsWith({12031});
  EXPECT_EQ(host.FTPDirExist("/x", 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPDirExist '/x' failed!", 12031, 4589));
}

// Connections that cannot be made: their host has no address.
class NoConnection : public OwnReports {
 protected:
  NoConnection() {
    host.hasFinder = false;
    host.FTPSetLogin("nowhere.test", "user", "secret", 21, 1);
    internet::setResolverForTesting(
        [](const std::string&, std::uint16_t) { return std::vector<platform::SocketAddress>{}; });
  }
  ~NoConnection() override { internet::setResolverForTesting(nullptr); }
};

TEST_F(NoConnection, IsTheReportOfTheWorkerOfDirExist) {
  EXPECT_EQ(host.FTPDirExist("/x", 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPDirExist '/x' failed!", 12007, 4589));
}

TEST_F(NoConnection, IsTheReportOfTheWorkerOfFileExists) {
  EXPECT_EQ(host.FTPFileExists("/x", 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPFileExistsThr '/x' failed!", 12007, 5063));
}

TEST_F(NoConnection, IsNotReportedByFileSize) {
  EXPECT_EQ(host.FTPFileSize("/x", 0, 0, 0), 0u);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(NoConnection, IsTheReportOfAListing) {
  EXPECT_EQ(host.FTPGetDirectory("/x", nullptr, &count, "*.*", 0), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPGetDirectory '/x' failed!", 12007u, 3669));
}

TEST_F(NoConnection, IsTheReportOfATransfer) {
  EXPECT_EQ(host.FTPDownloadFile("/x", "local", 0), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPDownloadFile from '/x'to 'local' failed!", 12007u, 3841));
  record = {};
  EXPECT_EQ(host.FTPUploadFile("/x", "local", 0), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPUploadFile from 'local'to '/x' failed!", 12007u, 4004));
}

TEST_F(NoConnection, IsTheReportOfConnect) {
  EXPECT_EQ(host.FTPConnect("nowhere.test", "user", "secret", 21, 1, 0, nullptr), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPConnect to 'nowhere.test:21' failed!", 12007u, 2817));
}

TEST_F(OwnReports, ANullPathIsReportedByTheWorkerOfDirExist) {
  EXPECT_EQ(host.FTPDirExist(nullptr, 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPDirExist '(null)' failed!", 87, 4589));
}

TEST_F(OwnReports, OfAWorkersAttemptsTheLastOneReportsFirst) {
  failsWith({12031, 12029, 12007});
  EXPECT_EQ(host.FTPFileExists("/x", 2, 0, 0), 0);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPFileExistsThr '/x' failed!", 12007, 5063));
}

TEST_F(OwnReports, AWorkersFailedAttemptReportsThoughItsRetrySucceeds) {
  host.finder.answersWith({{.name = "x"}});
  host.finder.throwsAtFirst(12031, 1);
  EXPECT_EQ(host.FTPFileExists("/x", 1, 0, 0), 1);
  EXPECT_THAT(record, ReportsAttempt("TQXIP::FTPFileExistsThr '/x' failed!", 12031, 5063));
}

TEST_F(OwnReports, OfTheRunsOfAListingTheLastOneReportsFirst) {
  failsWith({12031, 12029});
  EXPECT_EQ(host.FTPGetDirectory("/x", nullptr, &count, "*.*", 1), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPGetDirectory '/x' failed!", 12029u, 3669));
}

TEST_F(OwnReports, AListingWhoseRetrySucceedsReportsNothing) {
  host.finder.answersWith({{.name = "x"}});
  host.finder.throwsAtFirst(12031, 1);
  EXPECT_EQ(host.FTPGetDirectory("/x", nullptr, &count, "*.*", 1), 1);
  EXPECT_TRUE(IsBlank(record));
}

TEST_F(OwnReports, TheListingsReportComesBeforeThatOfItsUser) {
  failsWith({12031, 12031});
  EXPECT_EQ(host.FTPHasSubDir("/x", 0), 0);
  EXPECT_THAT(record, ReportsLastError("TQXIP::FTPGetDirectory '/x' failed!", 12031u, 3669));
}

}  // namespace
