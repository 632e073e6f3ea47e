// SPDX-License-Identifier: MIT
// The library in a process whose code page is 1252, at real servers: files that are named with each of its
// characters outside ASCII. A second client, curl, finds them under their right names.
#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "framework/windows/windows_api.h"
#include "tests/dll/library.h"
#include "tests/support/CurlClient.h"
#include "tests/support/ScratchFolder.h"

namespace {

using Names = std::set<std::string>;

// What 0x80 to 0x9F are in 1252; 0 = nothing. From 0xA0 on a byte is the character of that number.
constexpr std::array<unsigned, 32> kSpecial{0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                            0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::string utf8Of(unsigned character) {
  const auto last = static_cast<char>(0x80 | (character & 0x3F));
  if (character < 0x800) return {static_cast<char>(0xC0 | (character >> 6)), last};
  return {static_cast<char>(0xE0 | (character >> 12)), static_cast<char>(0x80 | ((character >> 6) & 0x3F)),
          last};
}

// The same characters in the host's form and in the server's.
struct Name {
  std::string host;
  std::string server;
};

// All characters, a few to a name: each operation takes a login of its own.
std::vector<Name> namesOfAllCharacters() {
  constexpr std::size_t kEach = 5;
  std::vector<Name> names;
  for (unsigned byte = 0x80; byte <= 0xFF; ++byte) {
    const unsigned character = byte < 0xA0 ? kSpecial[byte - 0x80] : byte;
    if (character == 0) continue;
    if (names.empty() || names.back().host.size() == kEach) names.emplace_back();
    names.back().host += static_cast<char>(byte);
    names.back().server += utf8Of(character);
  }
  return names;
}

class RealNames : public ClientTest, public testing::WithParamInterface<const char*> {
 protected:
  RealNames() {
    client->FTPSetLogin(server.host().c_str(), server.user().c_str(), server.password().c_str(),
                        server.port(), 1);
  }
  void SetUp() override { ASSERT_EQ(GetACP(), 1252U) << "the locale that Wine is started with"; }

  [[nodiscard]] std::string at(const std::string& name) const { return server.folder() + "/" + name; }

  QXBool upload(const std::string& name, const std::string& content) {
    std::ofstream(local, std::ios::binary) << content;
    return client->FTPUploadFile(at(name).c_str(), local.c_str(), 0);
  }
  // The content, or the failure.
  std::string download(const std::string& name) {
    std::filesystem::remove(local);
    if (client->FTPDownloadFile(at(name).c_str(), local.c_str(), 0) == 0) return "failed";
    std::ifstream file(local, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  Names listed() {
    std::uint32_t count = 0;
    EXPECT_EQ(client->FTPGetDirectory(server.folder().c_str(), nullptr, &count, "*.*", 0), 1);
    std::vector<QXDirEntry> entries(count);
    EXPECT_EQ(client->FTPGetDirectory(server.folder().c_str(), entries.data(), &count, "*.*", 0), 1);
    Names names;
    for (const QXDirEntry& entry : entries) names.insert(entry.szName);
    return names;
  }
  // As the other client sees them.
  Names listedByCurl() {
    Names names;
    std::istringstream lines(server.byCurl(server.folder() + "/").value_or(""));
    for (std::string line; std::getline(lines, line);) {
      if (line.ends_with('\r')) line.pop_back();
      names.insert(line);
    }
    return names;
  }

  const fixture::CurledServer server{GetParam()};
  const testing_support::ScratchFolder scratch;
  const std::string local = scratch.file("local");
  const std::vector<Name> allNames = namesOfAllCharacters();
};

INSTANTIATE_TEST_SUITE_P(Servers, RealNames, testing::Values("vsftpd", "proftpd", "pyftpdlib"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST_P(RealNames, OfEveryCharacterAreRightForEveryClient) {
  ASSERT_EQ(allNames.size(), 25U) << "123 characters";
  Names ours;
  Names theirs;
  for (const auto& [host, utf8] : allNames) {
    EXPECT_EQ(upload("a" + host + ".txt", "of " + utf8), 1) << utf8;
    EXPECT_EQ(server.byCurl(at("a" + utf8 + ".txt")), "of " + utf8);
    ours.insert("a" + host + ".txt");
    theirs.insert("a" + utf8 + ".txt");
  }
  EXPECT_EQ(listed(), ours);
  EXPECT_EQ(listedByCurl(), theirs);
  theirs.clear();
  for (const auto& [host, utf8] : allNames) {
    const std::string old = "a" + host + ".txt";
    EXPECT_EQ(download(old), "of " + utf8);
    EXPECT_EQ(client->FTPFileExists(at(old).c_str(), 0, 0, 0), 1) << utf8;
    EXPECT_EQ(client->FTPRenameFile(at(old).c_str(), at(host).c_str(), 0), 1) << utf8;
    theirs.insert(utf8);
  }
  EXPECT_EQ(listedByCurl(), theirs);
  for (const auto& [host, utf8] : allNames) {
    EXPECT_EQ(client->FTPRmvFile(at(host).c_str(), 0, 0, 0, 0), 1) << utf8;
  }
  EXPECT_EQ(listedByCurl(), Names());
}

TEST_P(RealNames, ThatTheCodePageLacksAreListedDownloadedAndRemoved) {
  const std::string name =
      "\xC5\x81\xC3\xB3"
      "d\xC5\xBA \xE2\x98\x83.txt";
  server.putText(at(name), "there");
  server.putText(at("L\xC3\xB3"
                    "dz.txt"),
                 "another");
  EXPECT_EQ(listed(), (Names{name,
                             "L\xF3"
                             "dz.txt"}));
  EXPECT_EQ(download(name), "there");
  EXPECT_EQ(client->FTPFileSize(at(name).c_str(), 0, 0, 0), 5U);
  EXPECT_EQ(client->FTPRmvFile(at(name).c_str(), 0, 0, 0, 0), 1);
  EXPECT_EQ(listedByCurl(), Names{"L\xC3\xB3"
                                  "dz.txt"});
}

}  // namespace
