// SPDX-License-Identifier: MIT
// FTPCpyFile: bad arguments, places that cannot be written, sources that are not there.
#include <chrono>
#include <fstream>

#include "tests/client/ContentTest.h"
#include "tests/client/SlotHost.h"
#include "tests/support/UnixDevices.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class CopyFailure : public ContentTest {
 protected:
  const std::string target = localName(local);

  QXBool copy(const char* from, const char* to, std::uint32_t retries = 0) {
    return client.FTPCpyFile(from, to, nullptr, retries, 0, 0);
  }
  static std::string lineOf(const std::string& name, const std::string& from, const std::string& to) {
    return "TQXIP::" + name + " from '" + from + "' to '" + to + "' failed!";
  }
};

TEST_F(CopyFailure, NullPathsStartNoWorker) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(copy(nullptr, "/b", 3), 0);
  EXPECT_EQ(client.m_szMessage, lineOf("FTPCpyFile", "(null)", "/b"));
  EXPECT_THAT(record, ReportsFrom(lineOf("FTPCpyFile", "(null)", "/b"), 6259));
  EXPECT_EQ(copy("/a", nullptr, 3), 0);
  EXPECT_EQ(client.m_szMessage, lineOf("FTPCpyFile", "/a", "(null)"));
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_TRUE(client.calls().empty());
}

TEST_F(CopyFailure, EmptyPathsFailInTheWorkerOnceMoreThanTheRetriesSay) {
  for (const std::uint32_t retries : {0u, 1u, 3u}) {
    const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
    loginAt(server);
    const auto start = steady_clock::now();
    EXPECT_EQ(copy("", "/b", retries), 0);
    EXPECT_EQ(copy("/a", "", retries), 0);
    EXPECT_GE(steady_clock::now() - start, milliseconds(20) * retries);
    expectAttempts(server, 2 * (retries + 1));
    EXPECT_EQ(server.commandCount("RETR"), 0);
  }
  EXPECT_THAT(record, ReportsLastError(lineOf("FTPCpyFileThr", "", "/b"), 87u, 6082));
}

TEST_F(CopyFailure, PathsThatMayNotGoToAServerDoNot) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  write("mine");
  for (const std::string& path : kBadPaths) {
    record = {};
    EXPECT_EQ(copy(path.c_str(), "/b", 1), 0);
    EXPECT_EQ(copy(path.c_str(), target.c_str(), 1), 0);
    EXPECT_EQ(copy("/a", path.c_str(), 1), 0);
    EXPECT_EQ(copy(target.c_str(), path.c_str(), 1), 0);
    EXPECT_THAT(std::string(record.szText), testing::EndsWith("[87 QXIP 6082]"));
  }
  EXPECT_EQ(server.connections().size(), 0u);
  EXPECT_EQ(content(), "mine");
}

TEST_F(CopyFailure, AnOverLongLocalPathIsAFailure) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  const std::string path = "Z:/" + std::string(4093, 'a');
  EXPECT_EQ(copy(path.c_str(), "/b"), 0);
  EXPECT_EQ(copy("/a", path.c_str()), 0);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_THAT(record, ShowsError(87));
}

TEST_F(CopyFailure, AMissingRemoteSourceFailsInEveryDirection) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(copy("/none", target.c_str(), 1), 0);
  EXPECT_FALSE(exists());
  EXPECT_EQ(copy("/none", "/b", 1), 0);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_EQ(server.commandCount("STOR"), 0);
  EXPECT_EQ(server.commandCount("RETR"), 4);
  EXPECT_EQ(record.nError, 12003u);
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(CopyFailure, ARefusedDownloadLeavesAnExistingLocalFileAsItIs) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  write("mine");
  EXPECT_EQ(copy("/none", target.c_str(), 1), 0);
  EXPECT_EQ(content(), "mine");
}

TEST_F(CopyFailure, AMissingLocalSourceIsAFailureThatTheUploadReportsFirst) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(copy(target.c_str(), "/b"), 0);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_THAT(record,
              ReportsLastError("TQXIP::FTPUploadFile from '" + target + "'to '/b' failed!", 2u, 4004));
  EXPECT_EQ(client.m_szMessage, lineOf("FTPCpyFile", target, "/b"));
}

TEST_F(CopyFailure, ARefusedUploadOfContentIsTheRequiredSuccess) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": "one"}, "rules": [{"on": "STOR", "do": [{"reply": "553 No"}]}]})");
  loginAt(server);
  write("mine");
  EXPECT_EQ(copy(target.c_str(), "/b", 3), 1);
  EXPECT_EQ(copy("/a", "/b", 3), 1);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_EQ(server.commandCount("STOR"), 2);
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(CopyFailure, ARefusedUploadOfAnEmptyFileIsTheRequiredFailure) {
  const fixture::ScriptedFtp server(
      R"({"tree": {"/a": ""}, "rules": [{"on": "STOR", "do": [{"reply": "553 No"}]}]})");
  loginAt(server);
  EXPECT_EQ(copy("/a", "/b", 1), 0);
  EXPECT_EQ(server.commandCount("STOR"), 3) << "two by the first attempt's upload, one by the second's";
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(CopyFailure, IntoAFolderThatIsNotThereFailsAfterTheTransferWasOpened) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  const std::string nowhere = localName(folder.file("none")) + "/x";
  EXPECT_EQ(copy("/a", nowhere.c_str(), 1), 0);
  EXPECT_EQ(server.commandCount("RETR"), 2);
  EXPECT_EQ(client.count("OnIPError"), 0u);
  EXPECT_THAT(record, ReportsLastError(lineOf("FTPCpyFileThr", "/a", nowhere), 3u, 6082));
  server.waitUntilAllClosed();
}

// A host whose hook uses the system, which leaves a last error of its own.
class HostWithALastError final : public TQXIP {
 public:
  using TQXIP::TQXIP;
  ~HostWithALastError() = default;
  QXBool OnAfterDisconnect() override {
    platform::setLastError(6);
    return 1;
  }
};

TEST_F(CopyFailure, TheReportHasTheNumberOfTheCopyNotOfTheHookBehindIt) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  HostWithALastError host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  const std::string nowhere = localName(folder.file("none")) + "/x";
  EXPECT_EQ(host.FTPCpyFile("/a", nowhere.c_str(), nullptr, 0, 0, 0), 0);
  EXPECT_THAT(record, ReportsLastError(lineOf("FTPCpyFileThr", "/a", nowhere), 3u, 6082));
}

// The lines of a failed attempt come behind those of the retries, whatever they have left as last error.
TEST_F(CopyFailure, AnAttemptWhoseRetrySucceedsReportsItsOwnNumber) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  const std::string later = folder.file("later");
  host.size = [&, attempts = 0]() mutable {
    if (++attempts == 2) std::filesystem::create_directory(later);
    return 3u;
  };
  host.disconnected = [] { platform::setLastError(6); };
  const std::string inside = localName(later) + "/x";
  EXPECT_EQ(host.FTPCpyFile("/a", inside.c_str(), nullptr, 1, 0, 0), 1);
  EXPECT_THAT(record, ReportsLastError(lineOf("FTPCpyFileThr", "/a", inside), 3u, 6082));
}

// A host that shows each error as it comes, and takes it out of the record.
class HostThatTakesErrors final : public TQXIP {
 public:
  using TQXIP::TQXIP;
  ~HostThatTakesErrors() = default;
  void OnIPError(std::uint32_t error, const char* text, std::uint32_t* retries) override {
    TQXIP::OnIPError(error, text, retries);
    *m_pErrorInfo = {};
  }
};

TEST_F(CopyFailure, TheReportBehindOnIPErrorHasTheSameNumber) {
  const fixture::ScriptedFtp server;
  HostThatTakesErrors host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  EXPECT_EQ(host.FTPCpyFile("/none", target.c_str(), nullptr, 0, 0, 0), 0);
  EXPECT_THAT(std::string(record.szText), testing::EndsWith("[12003 QXIP 6082]"));
}

TEST_F(CopyFailure, ADiskWithoutRoomFailsWithTheSystemsError) {
  if (!testing_support::hasUnixDevices()) GTEST_SKIP() << "this system has no full disk at hand";
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(copy("/a", "Z:/dev/full", 1), 0);
  EXPECT_EQ(client.count("OnIPError 112 "), 2u);
  EXPECT_EQ(record.nError, 112u);
  EXPECT_THAT(std::string(record.szText), testing::HasSubstr(SystemText(112)));
}

TEST_F(CopyFailure, ATargetThatCannotBeWrittenFailsWithTheSystemsError) {
  if (!testing_support::hasUnixDevices()) GTEST_SKIP() << "this system has no such file at hand";
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  // Root and everybody else may open it, but it takes numbers only.
  EXPECT_EQ(copy("/a", "Z:/proc/self/coredump_filter"), 0);
  EXPECT_EQ(record.bSet, 1u);
  EXPECT_NE(record.nError, 0u);
  EXPECT_THAT(std::string(record.szText), testing::HasSubstr(SystemText(record.nError)));
}

// A retry ends, lines and reports included, inside the attempt that it repeats.
TEST_F(CopyFailure, TheInnermostAttemptReportsFirst) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  SlotHost host(&record);
  host.FTPSetLogin("127.0.0.1", "user", "secret", server.port(), 1);
  const std::string native = folder.file("none") + "/x";
  host.size = [attempts = 0, native]() mutable {
    if (++attempts == 2) std::filesystem::create_directories(native);
    return 3u;
  };
  EXPECT_EQ(host.FTPCpyFile("/a", localName(native).c_str(), nullptr, 1, 0, 0), 0);
  EXPECT_THAT(record, ReportsLastError(lineOf("FTPCpyFileThr", "/a", localName(native)), 5u, 6082))
      << "first the folder was missing (3), then it was one itself (5)";
}

TEST_F(CopyFailure, OntoAFolderFails) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  std::filesystem::create_directory(local);
  EXPECT_EQ(copy("/a", target.c_str()), 0);
  EXPECT_TRUE(std::filesystem::is_directory(local));
  EXPECT_THAT(record, ReportsLastError(lineOf("FTPCpyFileThr", "/a", target), 5u, 6082));
}

TEST_F(CopyFailure, WithoutATemporaryFolderACopyOnTheServerFails) {
  testing_support::setTemporaryVariable((temporary.path() / "none").string());
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(copy("/a", "/b"), 0);
  EXPECT_FALSE(server.exists("/b"));
  EXPECT_THAT(record, ReportsFrom(lineOf("FTPCpyFileThr", "/a", "/b"), 6082));
  EXPECT_EQ(copy("/a", target.c_str()), 1) << "needs none";
}

// A copy whose source could not be opened deleted the temporary file of another that was still using it.
TEST_F(CopyFailure, WithoutASourceNothingLocalIsTouched) {
  const fixture::ScriptedFtp server;
  loginAt(server);
  EXPECT_EQ(copy("/none", "/b"), 0);
  EXPECT_FALSE(std::filesystem::exists(temporary.path() / "FTP"));
  std::filesystem::create_directory(temporary.path() / "FTP");
  std::ofstream(temporaryFile("b")) << "of another copy";
  EXPECT_EQ(copy("/none", "/b", 2), 0);
  EXPECT_EQ(std::filesystem::file_size(temporaryFile("b")), 15u);
  write("mine");
  EXPECT_EQ(copy("/none", target.c_str(), 2), 0);
  EXPECT_EQ(content(), "mine");
}

TEST_F(CopyFailure, ATargetWithoutANameFailsAndDeletesNothing) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  std::filesystem::create_directory(temporary.path() / "FTP");
  std::ofstream(temporaryFile("other")) << "mine";
  EXPECT_EQ(copy("/a", "/"), 0);
  EXPECT_EQ(copy("/a", "/pub/.."), 0);
  EXPECT_EQ(copy("/a", "/pub/b/"), 0);
  EXPECT_EQ(leftInTemporary(), Names{"other"});
}

TEST_F(CopyFailure, TheWorkersEntryLineNamesBothPaths) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(copy("/a", "/b"), 1);
  EXPECT_EQ(client.messageAt("OnConnect"), "TQXIP::FTPCpyFileThr - IN: From '/a' to '/b'");
}

TEST_F(CopyFailure, NormalisesBothPathsOnce) {
  const fixture::ScriptedFtp server(R"({"tree": {"/pub/a": "one"}})");
  loginAt(server);
  EXPECT_EQ(copy("\\pub\\a", "\\pub\\b"), 1);
  EXPECT_EQ(copy("//pub/a", "//pub/c"), 1);
  EXPECT_EQ(copy("pub/a", "pub/d"), 1);
  EXPECT_EQ(server.names("/pub"), (Names{"a", "b", "c", "d"}));
}

TEST_F(CopyFailure, OddNamesAreNamesLikeOthers) {
  const fixture::ScriptedFtp server(R"({"tree": {"/d/": {}, "/a": "one"}})");
  loginAt(server);
  for (const std::string& name : kOddNames) {
    // The copy on the disk has the target's name, so the disk has to take that.
    const bool possible = std::ofstream(folder.file(name)).good();
    const std::string path = "/d/" + name;
    EXPECT_EQ(copy("/a", path.c_str()), possible ? 1 : 0) << name;
    EXPECT_EQ(server.exists(path), possible) << name;
    if (!possible) continue;
    EXPECT_EQ(copy(path.c_str(), target.c_str()), 1) << name;
    EXPECT_EQ(content(), "one");
    std::filesystem::remove(local);
  }
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(CopyFailure, APathOf255CharactersIsCopiedFrom) {
  const std::string path = "/" + std::string(254, 'n');
  const fixture::ScriptedFtp server;
  loginAt(server);
  server.put("{\"" + path + "\": \"one\"}");
  EXPECT_EQ(copy(path.c_str(), target.c_str()), 1);
  EXPECT_EQ(content(), "one");
}

}  // namespace
