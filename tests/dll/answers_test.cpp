// SPDX-License-Identifier: MIT
// What docs/guide.md says that an answer of 1 can hide, and how a host sees it. Each test is named after the
// operation of its line there; check_documents.py compares.
#include <gmock/gmock.h>

#include <array>
#include <fstream>

#include "QXHooks.h"
#include "tests/dll/library.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace {

using testing::Each;

constexpr char kAnswersScript[] = R"({"tree": {"/pub/a.txt": "hello", "/pub/empty": "", "/pub/sub/": {}},
  "rules": [{"on": "STOR", "argument": "/pub/refused", "do": [{"reply": "553 No"}]},
            {"on": "STOR", "argument": "/pub/a.txt", "after": 1, "do": [{"reply": "553 No"}]}]})";

class Answers : public ClientTest {
 protected:
  Answers() {
    client->FTPSetLogin("127.0.0.1", "me", "secret", server.port(), 1);
    std::ofstream(path, std::ios::binary) << "content";
  }

  // The record of the operation before tells that it has found nothing, and of no failure.
  void expectAReportWithoutNumber() {
    EXPECT_EQ(error.bSet, 1U);
    EXPECT_EQ(error.nError, 0U);
  }

  std::uint32_t sizeOf(const char* remote) { return client->FTPFileSize(remote, 0, 0, 0); }

  QXBool copy(const std::string& source, const std::string& target, QXProgress progress = nullptr,
              std::uint32_t retries = 0) {
    return client->FTPCpyFile(source.c_str(), target.c_str(), progress, retries, 0, 0);
  }

  fixture::ScriptedFtp server{kAnswersScript};
  testing_support::ScratchFolder scratch;
  const std::string path = scratch.file("local");
  const std::string local = testing_support::localName(path);
  std::uint32_t count = 7;
};

QXBool QX_CALL stopCopy(const char*, std::uint32_t, std::uint32_t) { return 1; }

TEST_F(Answers, FTPSetLoginOfATextThatIsTooLong) {
  EXPECT_EQ(client->FTPSetLogin("127.0.0.1", std::string(256, 'u').c_str(), "p", server.port(), 1), 1);
  EXPECT_EQ(client->FTPGetDirectory("/pub", nullptr, &count, "*", 0), 0);
  EXPECT_EQ(error.nError, 87U);
}

TEST_F(Answers, FTPDisconnectKeepsTheConnection) {
  ASSERT_EQ(client->FTPConnect("127.0.0.1", "me", "secret", server.port(), 1, 0, nullptr), 1);
  EXPECT_EQ(client->FTPDisconnect(), 1);
  EXPECT_NE(client->m_pFtpConnection, nullptr);
  EXPECT_TRUE(server.connections().front().open);
}

TEST_F(Answers, FTPReConnectDoesNothing) {
  EXPECT_EQ(client->FTPReConnect(0, 0), 1);
  EXPECT_TRUE(server.connections().empty());
}

TEST_F(Answers, FTPGetDirectoryOfNoDirectory) {
  EXPECT_EQ(client->FTPGetDirectory("/none", nullptr, &count, "*", 0), 1);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(client->FTPDirExist("/none", 0, 0, 0), 0);
}

TEST_F(Answers, FTPCountFolderItemsOfNoDirectory) {
  std::uint32_t directories = 7;
  EXPECT_EQ(client->FTPCountFolderItems("/none", &count, &directories, 0), 1);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(directories, 0U);
}

TEST_F(Answers, FTPDownloadFileOfNoFileOrAnEmptyOneOverALocalFile) {
  for (const char* remote : {"/pub/none", "/pub/empty"}) {
    EXPECT_EQ(client->FTPDownloadFile(remote, path.c_str(), 0), 1) << remote;
    EXPECT_EQ(std::filesystem::file_size(path), 7U) << remote;
  }
  EXPECT_EQ(client->FTPFileExists("/pub/none", 0, 0, 0), 0);
  EXPECT_EQ(client->FTPDownloadFile("/pub/none", scratch.file("free").c_str(), 0), 0);
  EXPECT_EQ(client->FTPDownloadFile("/pub/empty", scratch.file("free").c_str(), 0), 1);
}

TEST_F(Answers, FTPUploadFileThatIsRefused) {
  EXPECT_EQ(client->FTPUploadFile("/pub/refused", path.c_str(), 0), 1);
  EXPECT_EQ(sizeOf("/pub/refused"), 0U);
}

TEST_F(Answers, FTPCpyFileThatIsRefused) {
  EXPECT_EQ(copy(local, "/pub/refused"), 1);
  EXPECT_EQ(sizeOf("/pub/refused"), 0U);
}

TEST_F(Answers, FTPCpyFileThatItsProgressFunctionHasStopped) {
  EXPECT_EQ(copy(local, "/pub/stopped", &stopCopy), 1);
  EXPECT_FALSE(server.exists("/pub/stopped"));
}

TEST_F(Answers, FTPCpyFileOfTwoLocalPaths) {
  EXPECT_EQ(copy(local, testing_support::localName(scratch.file("other"))), 1);
  EXPECT_FALSE(std::filesystem::exists(scratch.file("other")));
}

TEST_F(Answers, FTPMovFileThatKeepsItsSource) {
  EXPECT_EQ(client->FTPMovFile(local.c_str(), "/pub/refused", nullptr, 0, 0, 0), 1);
  EXPECT_TRUE(std::filesystem::exists(path)) << "the upload was refused";
  EXPECT_EQ(client->FTPMovFile("/pub/empty", "/pub/./empty", nullptr, 0, 0, 0), 1);
  EXPECT_EQ(client->FTPFileExists("/pub/empty", 0, 0, 0), 1) << "both paths may name one file";
}

TEST_F(Answers, FTPRmvFileWithWipePasses) {
  EXPECT_EQ(client->FTPRmvFile("/pub/empty", 3, 0, 0, 0), 1);
  EXPECT_EQ(server.commandCount("STOR"), 0);
}

TEST_F(Answers, FTPDestroyFileContentTouchesNothing) {
  EXPECT_EQ(client->FTPDestroyFileContent("/pub/a.txt", 3, 0, 0, 0), 1);
  EXPECT_TRUE(server.connections().empty());
}

TEST_F(Answers, WipeTouchesNothing) {
  EXPECT_EQ(client->Wipe(local.c_str()), 1);
  EXPECT_EQ(std::filesystem::file_size(path), 7U);
}

TEST_F(Answers, WipeWithTouchesNothing) {
  EXPECT_EQ(client->WipeWith(local.c_str(), 1, 0), 1);
  EXPECT_EQ(std::filesystem::file_size(path), 7U);
}

TEST_F(Answers, FillWipePatternWithoutAnArray) {
  ASSERT_EQ(client->m_pWipePattern, nullptr);
  EXPECT_EQ(client->FillWipePattern(9, 3), 1);
  std::array<std::uint32_t, 3> pattern{};
  client->m_pWipePattern = pattern.data();
  EXPECT_EQ(client->FillWipePattern(9, 3), 1);
  EXPECT_THAT(pattern, Each(9U));
}

TEST_F(Answers, FTPRmvDirOfAFile) {
  EXPECT_EQ(client->FTPRmvDir("/pub/a.txt", 0, 0, 0), 1);
  expectAReportWithoutNumber();
  EXPECT_TRUE(server.exists("/pub/a.txt"));
}

TEST_F(Answers, FTPRmvDirWhereNobodyListens) {
  const fixture::RefusedPort nobody;
  client->FTPSetLogin("127.0.0.1", "me", "secret", nobody.port(), 1);
  EXPECT_EQ(client->FTPRmvDir("/pub/sub", 0, 0, 0), 1);
  EXPECT_EQ(error.nError, 12029U);
}

TEST_F(Answers, FTPCreateDirOfADirectory) {
  EXPECT_EQ(client->FTPCreateDir("/pub/sub", 0, 0, 0), 1);
  EXPECT_EQ(server.commandCount("MKD"), 0);
}

TEST_F(Answers, FTPWriteFileWhoseAppendIsRefused) {
  EXPECT_EQ(client->FTPWriteFile("/pub/a.txt", "more", 4, 1, 0, 0, 0, 0), 1);
  EXPECT_EQ(sizeOf("/pub/a.txt"), 5U);
}

TEST_F(Answers, FTPReadFileOfNoFile) {
  void* data = nullptr;
  EXPECT_EQ(client->FTPReadFile("/pub/none", &data, &count, 0, 0, 0, 0), 1);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(error.bSet, 1U);
  client->FTPFreeFileAPI(data);
}

TEST_F(Answers, FreeQXIPIFInstanceWhileReferencesAreLeft) {
  client->AddRef();
  EXPECT_EQ(library().free(client.get()), 1);
  EXPECT_EQ(client->m_nRefCount, 1U);
}

// The other way round: a question that could not be asked is answered like "no".
TEST_F(Answers, QuestionsThatCannotBeAsked) {
  EXPECT_EQ(client->FTPFileExists("/pub/none", 0, 0, 0), 0);
  expectAReportWithoutNumber();
  const fixture::RefusedPort nobody;
  client->FTPSetLogin("127.0.0.1", "me", "secret", nobody.port(), 1);
  for (const auto question :
       {&TQXIPIFInt::FTPFileExists, &TQXIPIFInt::FTPDirExist, &TQXIPIFInt::FTPIsDirectory}) {
    error = {};
    EXPECT_EQ((client.get()->*question)("/pub/sub", 0, 0, 0), 0);
    EXPECT_EQ(error.nError, 12029U);
  }
  EXPECT_EQ(sizeOf("/pub/a.txt"), 0U);
  EXPECT_EQ(client->FTPHasSubDir("/", 0), 0);
  EXPECT_EQ(error.nError, 12029U);
}

QXBool QX_CALL cancelAnswer(TQXIPIFInt*, QXHostValue, QXHostValue, QXHostValue, QXBool*) { return 1; }

TEST_F(Answers, OfACancelledCopyAreThoseOfAFailureWithoutANumber) {
  QXClientHooks hooks(client.get());
  hooks->OnPoll = &cancelAnswer;
  EXPECT_EQ(copy("/pub/a.txt", local), 0);
  expectAReportWithoutNumber();
}

QXBool QX_CALL refuseToReconnect(TQXIPIFInt*, std::uint32_t, QXHostValue) { return 0; }

// With a host's 0 from FTPReConnect a broken connection takes the host's own retries with it.
TEST_F(Answers, OfFTPReConnectDecideAboutRetries) {
  server.reconfigure(R"({"rules": [{"on": "RETR", "do": ["close"]}]})");
  ASSERT_EQ(client->FTPConnect("127.0.0.1", "me", "secret", server.port(), 1, 0, nullptr), 1);
  EXPECT_EQ(copy("/pub/a.txt", local, nullptr, 1), 0);
  EXPECT_EQ(error.nError, 12030U);
  EXPECT_EQ(server.commandCount("RETR"), 1 + 1 + 3)
      << "the first, the host's own, and those that are granted";
  QXClientHooks hooks(client.get());
  hooks->FTPReConnect = &refuseToReconnect;
  EXPECT_EQ(copy("/pub/a.txt", local, nullptr, 1), 0);
  EXPECT_EQ(server.commandCount("RETR"), 5 + 1);
}

TEST_F(Answers, OfAWebDownloadCountTheBeginningOfALongObject) {
  const fixture::ScriptedHttp web(R"({"answers": [{"body": {"text": "page"}}]})");
  const std::string object = "/" + std::string(300, 'o');
  EXPECT_EQ(client->HTTPDownloadFile("127.0.0.1", object.c_str(), web.port(), scratch.file("page").c_str(),
                                     nullptr, 0, 0),
            1U);
  EXPECT_THAT(web.requests().front(), testing::StartsWith("GET " + object.substr(0, 255) + " "));
}

}  // namespace
