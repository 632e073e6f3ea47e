// SPDX-License-Identifier: MIT
// A temporary folder in which others have been before: copies used to follow their links and to overwrite
// what those led to.
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "tests/client/ContentTest.h"

namespace {

constexpr std::uint32_t kAccessDenied = 5;

class HostileTemporary : public ContentTest {
 protected:
  // The opening of an append keeps the content here.
  const fixture::ScriptedFtp server{
      R"({"tree": {"/a": "one", "/pub/b": "old"},
          "rules": [{"on": "STOR", "argument": "/pub/b", "do": [{"reply": "553 No"}]}]})"};
  const std::filesystem::path ftp = temporary.path() / "FTP";

  void SetUp() override { loginAt(server); }
  QXBool copy() { return client.FTPCpyFile("/a", "/b", nullptr, 1, 0, 0); }

  static mode_t modeOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  }
  void expectRefused() {
    EXPECT_EQ(copy(), 0);
    EXPECT_THAT(record, ShowsError(kAccessDenied));
    EXPECT_FALSE(server.exists("/b"));
  }
};

TEST_F(HostileTemporary, ALinkInPlaceOfTheFolderIsNotFollowed) {
  const auto elsewhere = folder.path() / "elsewhere";
  std::filesystem::create_directory(elsewhere);
  std::ofstream(elsewhere / "b") << "mine";
  std::filesystem::create_directory_symlink(elsewhere, ftp);
  expectRefused();
  std::ifstream file(elsewhere / "b");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "mine");
}

TEST_F(HostileTemporary, AFileInPlaceOfTheFolderStays) {
  std::ofstream(ftp) << "mine";
  expectRefused();
  EXPECT_EQ(std::filesystem::file_size(ftp), 4u);
}

TEST_F(HostileTemporary, AnotherUsersFolderIsNotUsed) {
  if (::geteuid() != 0) {
    // A user's own program cannot give a folder away: the system's own folder stands for it.
    testing_support::setTemporaryVariable("/proc/1");
    EXPECT_EQ(copy(), 0);
    EXPECT_FALSE(server.exists("/b"));
    return;
  }
  std::filesystem::create_directory(ftp);
  ASSERT_EQ(::chown(ftp.c_str(), 54321, 54321), 0);
  ::chmod(ftp.c_str(), 0777);
  expectRefused();
  EXPECT_TRUE(std::filesystem::is_empty(ftp));
}

TEST_F(HostileTemporary, ALinkInPlaceOfTheCopyIsReplaced) {
  std::filesystem::create_directory(ftp);
  std::ofstream(folder.path() / "victim") << "mine";
  std::filesystem::create_symlink(folder.path() / "victim", ftp / "b");
  EXPECT_EQ(copy(), 1);
  EXPECT_EQ(server.content("/b"), "one");
  std::ifstream file(folder.path() / "victim");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "mine");
  EXPECT_EQ(leftInTemporary(), Names{});
}

TEST_F(HostileTemporary, AHardLinkInPlaceOfTheCopyIsReplaced) {
  std::filesystem::create_directory(ftp);
  std::ofstream(temporary.path() / "victim") << "mine";
  std::filesystem::create_hard_link(temporary.path() / "victim", ftp / "b");
  EXPECT_EQ(copy(), 1);
  EXPECT_EQ(server.content("/b"), "one");
  EXPECT_EQ(std::filesystem::file_size(temporary.path() / "victim"), 4u);
}

TEST_F(HostileTemporary, ACopyIsForTheUserAlone) {
  const mode_t usual = ::umask(0);
  std::filesystem::create_directory(ftp);
  mode_t folderMode = 0;
  mode_t fileMode = 0;
  const auto look = [&](const char*, std::uint32_t, std::uint32_t) {
    folderMode = modeOf(ftp);
    fileMode = modeOf(ftp / "b");
  };
  static std::function<void(const char*, std::uint32_t, std::uint32_t)> progress;
  progress = look;
  EXPECT_EQ(client.FTPCpyFile(
                "/a", "/b",
                [](const char* path, std::uint32_t percent, std::uint32_t none) -> QXBool {
                  progress(path, percent, none);
                  return 0;
                },
                0, 0, 0),
            1);
  progress = nullptr;
  ::umask(usual);
  EXPECT_EQ(folderMode, 0700u);
  EXPECT_EQ(fileMode, 0600u);
}

TEST_F(HostileTemporary, WithoutAVariableTheFolderIsTheUsersOwn) {
  testing_support::setTemporaryVariable(std::nullopt);
  char start[256] = "";
  ASSERT_NE(platform::temporaryFolder(start, sizeof start), 0u);
  EXPECT_EQ(std::string(start), "/tmp/zrm-qxkt-" + std::to_string(::geteuid()) + "/");
  EXPECT_EQ(modeOf(std::string(start, std::string(start).size() - 1)), 0700u);
  const std::string name = folder.path().filename().string();  // nobody else's
  EXPECT_EQ(client.FTPCpyFile("/a", ("/" + name).c_str(), nullptr, 0, 0, 0), 1);
  EXPECT_EQ(server.content("/" + name), "one");
  EXPECT_EQ(modeOf(std::string(start) + "FTP"), 0700u);
}

}  // namespace
