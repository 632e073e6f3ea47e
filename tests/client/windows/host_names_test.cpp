// SPDX-License-Identifier: MIT
// Operations with names outside ASCII from a host whose code page is not UTF-8. FTPUploadFile of such a name
// made a file of another name, FTPFileSize of one that was there failed, and a listing showed "grÃ¶ÃŸe".
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "framework/platform/code_page.h"
#include "tests/client/TransferTest.h"

namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

struct Host {
  std::uint32_t codePage;
  const char* name;     // in that code page
  const char* server;   // the same in UTF-8
  const char* foreign;  // in UTF-8: the code page lacks it
};

// Each is tested by the program whose code page it is.
constexpr Host kHosts[] = {
    {1252,
     "gr\xF6\xDF"
     "e \x80",
     "gr\xC3\xB6\xC3\x9F"
     "e \xE2\x82\xAC",
     "\xC5\x81\xC3\xB3"
     "d\xC5\xBA"},
    // Second bytes that look like a backslash and a bar.
    {932, "\x95\x5C\x83\x7C", "\xE8\xA1\xA8\xE3\x83\x9D",
     "gr\xC3\xB6\xC3\x9F"
     "e"},
};

const Host& thisHost() {
  for (const Host& host : kHosts) {
    if (host.codePage == platform::narrowCodePage()) return host;
  }
  return kHosts[0];  // whose tests fail with another code page, if they run at all
}

const std::string kName = thisHost().name;
const std::string kServer = thisHost().server;
const std::string kForeign = thisHost().foreign;

// By the features of the server.
class HostNames : public TransferTest, public testing::WithParamInterface<const char*> {
 protected:
  HostNames() { loginAt(server); }

  void put(const std::string& path, const std::string& text = "12345") {
    server.put(json{{path, text}}.dump());
  }
  void makeFolder(const std::string& path) { server.put(json{{path + "/", json::object()}}.dump()); }

  std::vector<QXDirEntry> list(const std::string& path, const char* pattern = "*.*") {
    std::uint32_t count = 0;
    EXPECT_EQ(client.FTPGetDirectory(path.c_str(), nullptr, &count, pattern, 0), 1);
    std::vector<QXDirEntry> entries(count);
    EXPECT_EQ(client.FTPGetDirectory(path.c_str(), entries.data(), &count, pattern, 0), 1);
    return entries;
  }
  Names namesIn(const std::string& path, const char* pattern = "*.*") {
    Names names;
    for (const QXDirEntry& entry : list(path, pattern)) names.emplace_back(entry.szName);
    return names;
  }

  const fixture::ScriptedFtp server{json{{"features", json::parse(GetParam())}}};
};

INSTANTIATE_TEST_SUITE_P(Features, HostNames,
                         testing::Values(R"(["mlst", "size", "epsv", "utf8"])",
                                         R"(["size", "epsv", "utf8"])"),
                         [](const auto& instance) { return instance.index == 0 ? "Mlst" : "List"; });

TEST_P(HostNames, AreListedInTheCodePageWhereItHasThem) {
  put("/" + kServer + "/" + kServer + ".txt");
  put("/" + kServer + "/" + kForeign + ".txt");
  EXPECT_THAT(namesIn("/" + kName), UnorderedElementsAre(kName + ".txt", kForeign + ".txt"));
  for (const QXDirEntry& entry : list("/" + kName)) EXPECT_EQ(entry.szPath, "/" + kName);
  EXPECT_THAT(namesIn("/" + kName, (kName + "*").c_str()), UnorderedElementsAre(kName + ".txt"));
}

TEST_P(HostNames, AreAskedForAsTheyAreListed) {
  for (const std::string& name : {kName, kServer, kForeign}) {
    const std::string below = name == kForeign ? kForeign : kServer;
    put("/" + kServer + "/" + below + ".txt");
    makeFolder("/" + kServer + "/" + below);
    const std::string path = "/" + kName + "/" + name;
    EXPECT_EQ(client.FTPFileExists((path + ".txt").c_str(), 0, 0, 0), 1) << name;
    EXPECT_EQ(client.FTPFileSize((path + ".txt").c_str(), 0, 0, 0), 5U) << name;
    EXPECT_EQ(client.FTPDirExist(path.c_str(), 0, 0, 0), 1) << name;
    EXPECT_EQ(client.FTPIsDirectory(path.c_str(), 0, 0, 0), 1) << name;
    EXPECT_EQ(client.FTPFileExists(path.c_str(), 0, 0, 0), 0) << name;
    EXPECT_EQ(client.FTPDirExist((path + ".txt").c_str(), 0, 0, 0), 0) << name;
  }
}

TEST_P(HostNames, GoUpAndComeDown) {
  write("content");
  EXPECT_EQ(upload(("/" + kName).c_str()), 1);
  EXPECT_EQ(server.names("/"), Names{kServer});
  std::filesystem::remove(local);
  EXPECT_EQ(download(("/" + kName).c_str()), 1);
  EXPECT_EQ(content(), "content");
  std::filesystem::remove(local);
  put("/" + kForeign);
  EXPECT_EQ(download(("/" + kForeign).c_str()), 1);
  EXPECT_EQ(content(), "12345");
}

TEST_P(HostNames, AreWrittenAndRead) {
  EXPECT_EQ(client.FTPWriteFile(("/" + kName).c_str(), "text", 4, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(server.names("/"), Names{kServer});
  void* block = nullptr;
  std::uint32_t size = 0;
  ASSERT_EQ(client.FTPReadFile(("/" + kName).c_str(), &block, &size, 0, 0, 0, 0), 1);
  EXPECT_EQ(std::string(static_cast<const char*>(block), size), "text");
  client.FTPFreeFileAPI(block);
}

TEST_P(HostNames, AreGivenAndTaken) {
  put("/a");
  EXPECT_EQ(client.FTPRenameFile("/a", ("/" + kName).c_str(), 0), 1);
  EXPECT_EQ(server.names("/"), Names{kServer});
  EXPECT_EQ(client.FTPRenameFile(("/" + kName).c_str(), ("/" + kForeign).c_str(), 0), 1);
  EXPECT_EQ(server.names("/"), Names{kForeign});
  EXPECT_EQ(client.FTPRmvFile(("/" + kForeign).c_str(), 0, 0, 0, 0), 1);
  EXPECT_EQ(server.names("/"), Names());
}

TEST_P(HostNames, AreOfDirectoriesThatComeAndGo) {
  const std::string path = "/" + kName + "/" + kForeign + "/" + kName;
  EXPECT_EQ(client.FTPCreateDir(path.c_str(), 0, 0, 0), 1);
  EXPECT_TRUE(server.exists("/" + kServer + "/" + kForeign + "/" + kServer));
  char created[256] = "";
  EXPECT_EQ(client.FTPCreateNewDir(("/" + kName + "/" + kForeign).c_str(), created, kName.c_str(), 0), 1);
  EXPECT_EQ(created, path + " (1)");
  EXPECT_TRUE(server.exists("/" + kServer + "/" + kForeign + "/" + kServer + " (1)"));
  EXPECT_EQ(client.FTPRmvDir(path.c_str(), 0, 0, 0), 1);
  EXPECT_FALSE(server.exists("/" + kServer + "/" + kForeign + "/" + kServer));
}

TEST_P(HostNames, AreCopiedAndMoved) {
  put("/" + kServer);
  EXPECT_EQ(client.FTPCpyFile(("/" + kName).c_str(), ("/2. " + kName).c_str(), nullptr, 0, 0, 0), 1);
  EXPECT_EQ(server.content("/2. " + kServer), "12345");
  makeFolder("/" + kForeign);
  EXPECT_EQ(
      client.FTPMovFile(("/2. " + kName).c_str(), ("/" + kForeign + "/" + kName).c_str(), nullptr, 0, 0, 0),
      1);
  EXPECT_EQ(server.content("/" + kForeign + "/" + kServer), "12345");
  EXPECT_FALSE(server.exists("/2. " + kServer));
}

TEST_P(HostNames, AreReportedAsTheHostWritesThem) {
  server.reconfigure(
      json{{"rules", {{{"on", "RETR"}, {"do", {{{"reply", "550 " + kServer + " is held"}}}}}}}}.dump());
  put("/" + kServer);
  void* block = nullptr;
  std::uint32_t size = 0;
  EXPECT_EQ(client.FTPReadFile(("/" + kName).c_str(), &block, &size, 0, 0, 0, 0), 0);
  EXPECT_THAT(client.calls(), Contains(HasSubstr("550 " + kName + " is held")));
}

}  // namespace
