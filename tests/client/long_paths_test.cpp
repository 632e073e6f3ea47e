// SPDX-License-Identifier: MIT
// Paths of up to 4,095 bytes, remote and local. Those of 256 and more were refused.
#include <filesystem>
#include <string>
#include <vector>

#include "framework/platform/file.h"
#include "tests/client/ContentTest.h"
#include "tests/client/OperationTour.h"

namespace {

constexpr std::size_t kDeep = 3'900;
constexpr std::size_t kLongest = 4'095;

// The folders of a branch of `size` bytes below `top`, from the uppermost on.
std::vector<std::string> branch(const std::string& top, std::size_t size, char separator = '/') {
  constexpr std::size_t kComponent = 200;
  std::vector<std::string> folders{top};
  while (folders.back().size() < size) {
    const std::size_t left = size - folders.back().size();
    // No component of nothing at the end.
    const std::size_t step = left > kComponent + 2 ? kComponent : left;
    folders.push_back(folders.back() + separator + std::string(step - 1, 'd'));
  }
  return folders;
}

// A branch of folders on this machine.
class DeepFolder {
 public:
  explicit DeepFolder(const std::filesystem::path& top)
      : folders_(branch(top.string(), kDeep, static_cast<char>(std::filesystem::path::preferred_separator))) {
    for (std::size_t at = 1; at < folders_.size(); ++at) {
      EXPECT_TRUE(platform::createOwnDirectory(folders_[at].c_str())) << folders_[at].size();
    }
  }
  ~DeepFolder() {
    std::error_code ignored;
    for (std::size_t at = folders_.size(); at-- > 1;) {
      for (const auto& file : std::filesystem::directory_iterator(atAnyLength(folders_[at]), ignored)) {
        std::filesystem::remove(file, ignored);
      }
      std::filesystem::remove(atAnyLength(folders_[at]), ignored);
    }
  }
  DeepFolder(const DeepFolder&) = delete;
  DeepFolder& operator=(const DeepFolder&) = delete;

  [[nodiscard]] const std::string& path() const { return folders_.back(); }

 private:
  static std::filesystem::path atAnyLength(const std::string& path) {
    constexpr bool kWindows = std::filesystem::path::preferred_separator == '\\';
    return kWindows ? "\\\\?\\" + path : path;
  }

  const std::vector<std::string> folders_;
};

class LongPaths : public ContentTest {
 protected:
  static std::string treeOf(const std::string& folder) { return R"({"tree": {")" + folder + R"(/": {}}})"; }
};

TEST_F(LongPaths, EveryOperationWorksInATree3900BytesDeep) {
  const std::string remote = branch("/pub", kDeep).back();
  const fixture::ScriptedFtp server(treeOf(remote));
  const DeepFolder deep{folder.path()};
  loginAt(server);
  operation_tour::run(client, {remote, deep.path()});
}

TEST_F(LongPaths, ATree3900BytesDeepIsMadeWalkedAndRemoved) {
  const auto folders = branch("/pub", kDeep);
  const std::string& deepest = folders.back();
  const fixture::ScriptedFtp server(treeOf("/pub"));
  loginAt(server);
  EXPECT_EQ(client.FTPCreateDir(deepest.c_str(), 0, 0, 0), 1);
  EXPECT_EQ(client.FTPWriteFile((deepest + "/f").c_str(), "x", 1, 0, 0, 0, 0, 0), 1);
  for (const std::string& each : folders) {
    const bool isDeepest = each == deepest;
    EXPECT_EQ(client.FTPHasSubDir(each.c_str(), 0), isDeepest ? 0 : 1) << each.size();
    std::uint32_t files = 9;
    EXPECT_EQ(client.FTPCountFolderItems(each.c_str(), &files, nullptr, 0), 1) << each.size();
    EXPECT_EQ(files, isDeepest ? 1u : 0u) << each.size();
  }
  EXPECT_EQ(client.FTPRmvFile((deepest + "/f").c_str(), 0, 0, 0, 0), 1);
  for (std::size_t at = folders.size(); at-- > 1;) {
    EXPECT_EQ(client.FTPRmvDir(folders[at].c_str(), 0, 0, 0), 1) << folders[at].size();
  }
  EXPECT_EQ(server.names("/pub"), Names{});
}

TEST_F(LongPaths, ARealServersTreeIsMadeAndRemoved) {
  const fixture::RealServer server("pyftpdlib");
  client.FTPSetLogin(server.host().c_str(), server.user().c_str(), server.password().c_str(), server.port(),
                     1);
  // The server's own limit for a command line is 2,048 bytes.
  const std::string remote = branch("/pub", 1'900).back();
  EXPECT_EQ(client.FTPCreateDir(remote.c_str(), 0, 0, 0), 1);
  EXPECT_EQ(client.FTPWriteFile((remote + "/f").c_str(), "x", 1, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(client.FTPDownloadFile((remote + "/f").c_str(), local.c_str(), 0), 1);
  std::uint32_t files = 0;
  EXPECT_EQ(client.FTPCountFolderItems(remote.c_str(), &files, nullptr, 0), 1);
  EXPECT_EQ(files, 1u);
  EXPECT_EQ(client.FTPRmvFile((remote + "/f").c_str(), 0, 0, 0, 0), 1);
  EXPECT_EQ(client.FTPRmvDir(remote.c_str(), 0, 0, 0), 1);
  EXPECT_FALSE(server.exists(remote));
}

TEST_F(LongPaths, TheLongestIsTakenAndOneByteMoreIsNot) {
  const auto folders = branch("/pub", kLongest);
  const fixture::ScriptedFtp server(treeOf(folders[folders.size() - 2]));
  loginAt(server);
  const std::string& longest = folders.back();
  EXPECT_EQ(client.FTPWriteFile(longest.c_str(), "four", 4, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(client.FTPFileSize(longest.c_str(), 0, 0, 0), 4u);
  const std::size_t connections = server.connections().size();
  record = {};
  EXPECT_EQ(client.FTPWriteFile((longest + "x").c_str(), "four", 4, 0, 0, 0, 0, 0), 0);
  EXPECT_THAT(record, ShowsError(87));
  EXPECT_EQ(server.connections().size(), connections);
}

TEST_F(LongPaths, ANewDirectoryMustFitWhereTheHostWantsIt) {
  const auto folders = branch("/pub", 250);
  const fixture::ScriptedFtp server(treeOf(folders.back()));
  loginAt(server);
  char created[256] = "";
  EXPECT_EQ(client.FTPCreateNewDir(folders.back().c_str(), created, "New", 0), 1);
  EXPECT_EQ(created, folders.back() + "/New");
  record = {};
  EXPECT_EQ(client.FTPCreateNewDir(folders.back().c_str(), created, "Newer", 0), 0);
  EXPECT_THAT(record, ShowsError(87));
}

TEST_F(LongPaths, AMessageOfTwoEndsWithAWholeCharacterInItsBuffer) {
  // Of two bytes each, so that a cut falls into one in either of two lengths.
  for (const char* start : {"/", "//"}) {
    std::string path(start);
    while (path.size() + 2 <= kLongest) path += "\xC3\xBC";
    client.FTPRenameFile(path.c_str(), path.c_str(), 0);
    const std::string message(client.m_szMessage);
    EXPECT_LT(message.size(), sizeof client.m_szMessage);
    EXPECT_GE(message.size(), sizeof client.m_szMessage - 2);
    EXPECT_TRUE(message.ends_with("\xC3\xBC"));
  }
}

}  // namespace
