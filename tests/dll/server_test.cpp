// SPDX-License-Identifier: MIT
// A host at work: the loaded library against a server.
#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

#include "QXHooks.h"
#include "tests/dll/library.h"
#include "tests/support/Fixture.h"
#include "tests/support/Pattern.h"
#include "tests/support/ScratchFolder.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

constexpr char kScript[] = R"({"user": "me", "password": "secret", "tree": {
  "/pub/a.txt": "hello", "/pub/large": {"size": 700000, "seed": 5}, "/pub/sub/": {}, "/pub/.hidden": "x"}})";

class AtServer : public ClientTest {
 protected:
  AtServer() { client->FTPSetLogin("127.0.0.1", "me", "secret", server.port(), 1); }

  QXBool connect(const char* password = "secret") {
    return library().connect(client.get(), "ftp://127.0.0.1", "me", password, server.port(), 1, 0, nullptr);
  }

  // Every entry is 580 bytes; hosts of other languages read them by offset.
  std::vector<std::string> list(const char* path) {
    constexpr std::size_t kEntry = 580;
    std::uint32_t count = 0;
    EXPECT_EQ(client->FTPGetDirectory(path, nullptr, &count, "*.*", 0), 1);
    std::vector<char> bytes((count + 1) * kEntry);
    void* const entries = bytes.data();
    EXPECT_EQ(client->FTPGetDirectory(path, static_cast<QXDirEntry*>(entries), &count, "*.*", 0), 1);
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < count; ++i) lines.push_back(line(&bytes[i * kEntry]));
    return lines;
  }

  static std::string line(const char* entry) {
    std::uint32_t attributes = 0;
    std::uint32_t size = 0;
    std::memcpy(&attributes, entry + 260, sizeof attributes);
    std::memcpy(&size, entry + 292, sizeof size);
    const bool isDirectory = entry[0] != 0;
    EXPECT_EQ((attributes & 0x10) != 0, isDirectory);
    return std::string(entry + 1) + (isDirectory ? " d " : " - ") + std::to_string(size) + " " +
           (entry + 304);
  }

  fixture::ScriptedFtp server{kScript};
  testing_support::ScratchFolder scratch;
};

TEST_F(AtServer, ListsADirectoryIntoTheHostsArray) {
  EXPECT_THAT(list("/pub"),
              testing::UnorderedElementsAre("/pub - 5 a.txt", "/pub - 700000 large", "/pub d 0 sub"));
}

TEST_F(AtServer, CopiesAListingOutOnce) {
  std::uint32_t count = 0;
  ASSERT_EQ(client->FTPGetDirectory("/pub", nullptr, &count, "*.*", 0), 1);
  ASSERT_EQ(count, 3U);
  EXPECT_NE(client->m_pFileBuffer, nullptr);
  std::vector<QXDirEntry> entries(count);
  EXPECT_EQ(client->FTPGetDirectory("/pub", entries.data(), &count, "*.*", 0), 1);
  EXPECT_EQ(client->m_pFileBuffer, nullptr);
  EXPECT_EQ(client->FTPGetDirectory("/pub", entries.data(), &count, "*.*", 0), 0);
}

TEST_F(AtServer, TellsWhatExists) {
  EXPECT_EQ(client->FTPFileExists("/pub/a.txt", 0, 0, 0), 1);
  EXPECT_EQ(client->FTPDirExist("/pub/sub", 0, 0, 0), 1);
  EXPECT_EQ(error.bSet, 0U);
  EXPECT_EQ(client->FTPFileExists("/pub/none", 0, 0, 0), 0);
  EXPECT_EQ(error.bSet, 1U);
  EXPECT_THAT(error.szText, StartsWith("TQXIP::FTPFileExists '/pub/none' failed! "));
}

TEST_F(AtServer, TellsSizesAndCounts) {
  std::uint32_t files = 0;
  std::uint32_t directories = 0;
  EXPECT_EQ(client->FTPFileSize("/pub/large", 0, 0, 0), 700000U);
  EXPECT_EQ(client->FTPCountFolderItems("/pub", &files, &directories, 0), 1);
  EXPECT_EQ(files, 2U);
  EXPECT_EQ(directories, 1U);
  EXPECT_EQ(client->FTPHasSubDir("/pub", 0), 1);
}

TEST_F(AtServer, Downloads) {
  const std::string local = scratch.file("large");
  EXPECT_EQ(client->FTPDownloadFile("/pub/large", local.c_str(), 0), 1) << error.szText;
  EXPECT_TRUE(testing_support::Pattern(5).matchesFile(local, 700000));
}

TEST_F(AtServer, Uploads) {
  const std::string local = scratch.file("mine");
  testing_support::Pattern(9).writeFile(local, 300000);
  EXPECT_EQ(client->FTPUploadFile("/pub/sub/mine", local.c_str(), 0), 1) << error.szText;
  EXPECT_TRUE(server.matches("/pub/sub/mine", 9, 300000));
}

TEST_F(AtServer, DownloadsOverHttp) {
  const fixture::ScriptedHttp web(R"({"answers": [{"body": {"size": 50000, "seed": 7}}]})");
  const std::string local = scratch.file("page");
  EXPECT_EQ(client->HTTPDownloadFile("127.0.0.1", "/page", web.port(), local.c_str(), nullptr, 0, 0), 1U);
  EXPECT_TRUE(testing_support::Pattern(7).matchesFile(local, 50000));
  EXPECT_EQ(error.bSet, 0U);
}

TEST_F(AtServer, TheFileExceptionOfAnHttpDownloadReachesTheHost) {
  const fixture::ScriptedHttp web(std::string_view("{}"));
  const std::string missing = scratch.file("no") + "/such/folder";
  // The library's own class, which no host can name, by pointer; whoever caught it would have to delete it.
  static const void* caught = nullptr;
  try {
    client->HTTPDownloadFile("127.0.0.1", "/", web.port(), missing.c_str(), nullptr, 0, 0);
  } catch (void* exception) {
    caught = exception;
  }
  EXPECT_NE(caught, nullptr);
  web.waitFor(R"({"closed": 1})");
}

TEST_F(AtServer, ConnectsAndMakesTheFinders) {
  ASSERT_EQ(connect(), 1) << error.szText;
  EXPECT_EQ(client->m_bConnected, 1);
  EXPECT_STREQ(client->m_RemoteSystem, "127.0.0.1");
  EXPECT_STREQ(client->m_szMessage, "TQXIP::FTPConnect - OUT: OK!");
  EXPECT_NE(client->m_pFtpConnection, nullptr);
  EXPECT_NE(client->GetFinder(0, "M_pftpdirFIND"), nullptr);
  EXPECT_EQ(client->FTPDirExist("/pub/sub", 0, 0, 0), 1);
  EXPECT_EQ(server.connections().size(), 1U) << "the query uses the object's finder";
}

TEST_F(AtServer, KeepAliveEndsWhenTheServerCloses) {
  ASSERT_EQ(connect(), 1) << error.szText;
  std::thread waiting([this] { client->FTPKeepAlive(); });
  server.disconnect();
  waiting.join();
  EXPECT_EQ(client->m_bConnected, 0);
}

TEST_F(AtServer, RefusedLoginFillsTheRecordWithTheInternetError) {
  EXPECT_EQ(connect("wrong"), 0);
  EXPECT_STREQ(client->m_szMessage, "TQXIP::FTPConnect - OUT: Failed!");
  EXPECT_EQ(error.bSet, 1U);
  EXPECT_EQ(error.nCode, 1000U);
  EXPECT_EQ(error.nError, 12014U);
  EXPECT_EQ(client->m_pFtpConnection, nullptr);
}

TEST_F(AtServer, RefusedConnectionFillsTheRecordWithTheInternetError) {
  const fixture::RefusedPort closed;
  EXPECT_EQ(library().connect(client.get(), "127.0.0.1", "me", "secret", closed.port(), 1, 0, nullptr), 0);
  EXPECT_EQ(error.nError, 12029U);
}

// What the hooks saw.
std::vector<std::string> g_seen;

void noteEntry(TQXIPIFInt*, QXHostValue entry) {
  g_seen.emplace_back(reinterpret_cast<const QXDirEntry*>(entry)->szName);
}

void noteError(TQXIPIFInt*, std::uint32_t number, const char* text, std::uint32_t* retries) {
  g_seen.push_back(std::to_string(number) + (retries == nullptr ? " once: " : " again: ") + text);
}

QXBool cancelAtOnce(TQXIPIFInt*, QXHostValue, QXHostValue, QXHostValue, QXBool*) {
  g_seen.emplace_back("asked");
  return 1;
}

class HooksAtServer : public AtServer {
 protected:
  HooksAtServer() { g_seen.clear(); }
};

TEST_F(HooksAtServer, EachListedFileGoesToSlot18) {
  QXClientHooks hooks(client.get());
  hooks->OnNotify = &noteEntry;
  std::uint32_t count = 0;
  ASSERT_EQ(client->FTPGetDirectory("/pub", nullptr, &count, "*.*", 0), 1);
  EXPECT_EQ(count, 3U);
  EXPECT_THAT(g_seen, testing::UnorderedElementsAre("a.txt", "large"));
}

TEST_F(HooksAtServer, AFailedConnectGoesToSlot8WithoutRetryCount) {
  QXClientHooks hooks(client.get());
  hooks->OnIPError = &noteError;
  EXPECT_EQ(connect("wrong"), 0);
  EXPECT_THAT(g_seen, ElementsAre("12014 once: The password was not allowed"));
}

TEST_F(HooksAtServer, QueriesDoNotAskWhetherToCancel) {
  QXClientHooks hooks(client.get());
  hooks->OnPoll = &cancelAtOnce;
  EXPECT_EQ(client->FTPFileExists("/pub/a.txt", 0, 0, 0), 1);
  EXPECT_EQ(client->FTPDirExist("/pub/sub", 0, 0, 0), 1);
  EXPECT_EQ(client->FTPFileSize("/pub/large", 0, 0, 0), 700000U);
  EXPECT_THAT(g_seen, ElementsAre());
}

}  // namespace
