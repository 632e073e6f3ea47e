// SPDX-License-Identifier: MIT
// What is the user's alone on a machine of many users: folders, files, and links that nobody follows.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "framework/File.h"
#include "framework/platform/file.h"
#include "framework/platform/last_error.h"
#include "framework/platform/lock_file.h"
#include "tests/support/ScratchFolder.h"

namespace {

class OwnFiles : public testing::Test {
 protected:
  static mode_t modeOf(const std::string& name) {
    struct stat status {};
    EXPECT_EQ(::lstat(name.c_str(), &status), 0);
    return status.st_mode & 07777;
  }
  void expectRefused(const std::string& name) const {
    platform::setLastError(0);
    EXPECT_FALSE(platform::createOwnDirectory(name.c_str()));
    EXPECT_EQ(platform::lastError(), platform::kErrorAccessDenied);
  }

  const testing_support::ScratchFolder folder;
  const std::string path = folder.file("name");
};

TEST_F(OwnFiles, AFolderIsForTheUserAlone) {
  const mode_t usual = ::umask(0);
  EXPECT_TRUE(platform::createOwnDirectory(path.c_str()));
  ::umask(usual);
  EXPECT_EQ(modeOf(path), 0700u);
  EXPECT_TRUE(platform::createOwnDirectory(path.c_str())) << "it is there";
}

TEST_F(OwnFiles, AFolderThatIsThereIsShutToOthers) {
  std::filesystem::create_directory(path);
  ::chmod(path.c_str(), 0777);
  EXPECT_TRUE(platform::createOwnDirectory(path.c_str()));
  EXPECT_EQ(modeOf(path), 0700u);
}

TEST_F(OwnFiles, ALinkIsNoFolderOfTheUsers) {
  const std::string target = folder.file("target");
  std::filesystem::create_directory(target);
  ::chmod(target.c_str(), 0755);
  std::filesystem::create_symlink(target, path);
  expectRefused(path);
  EXPECT_EQ(modeOf(target), 0755u);
  std::filesystem::remove(target);
  expectRefused(path);
}

TEST_F(OwnFiles, AFileIsNoFolderOfTheUsers) {
  std::ofstream(path) << "mine";
  expectRefused(path);
}

TEST_F(OwnFiles, AnotherUsersFolderIsRefused) {
  std::string others = "/";  // root's
  if (::geteuid() == 0) {
    others = path;
    std::filesystem::create_directory(others);
    ASSERT_EQ(::chown(others.c_str(), 54321, 54321), 0);
  }
  const mode_t before = modeOf(others);
  expectRefused(others);
  EXPECT_EQ(modeOf(others), before);
}

TEST_F(OwnFiles, AttributesAreNotThoseOfALinksTarget) {
  const std::string target = folder.file("target");
  std::ofstream(target) << "mine";
  ::chmod(target.c_str(), 0444);
  std::filesystem::create_symlink(target, path);
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeArchive));
  EXPECT_EQ(modeOf(target), 0444u);
  EXPECT_TRUE(platform::deleteFile(path.c_str()));
  EXPECT_TRUE(std::filesystem::exists(target));
}

// Read-only files of which nothing else is allowed have to be deleted, too. A pipe's attributes are changed
// without waiting for somebody at its other end.
TEST_F(OwnFiles, AttributesNeedNoRightToReadOrWrite) {
  std::ofstream(path) << "mine";
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& name : {path, pipe}) {
    ::chmod(name.c_str(), 0);
    EXPECT_TRUE(platform::setFileAttributes(name.c_str(), platform::kFileAttributeArchive));
    EXPECT_EQ(modeOf(name), 0200u);
    EXPECT_TRUE(platform::setFileAttributes(name.c_str(), platform::kFileAttributeReadOnly));
    EXPECT_EQ(modeOf(name), 0u);
  }
}

TEST_F(OwnFiles, ALockIsNoLink) {
  const std::string target = folder.file("target");
  std::filesystem::create_symlink(target, path);
  EXPECT_FALSE(platform::LockFile().take(path.c_str()));
  EXPECT_FALSE(std::filesystem::exists(target));
  EXPECT_TRUE(std::filesystem::is_symlink(path));
}

TEST_F(OwnFiles, ALockIsForTheUserAlone) {
  const mode_t usual = ::umask(0);
  platform::LockFile lock;
  EXPECT_TRUE(lock.take(path.c_str()));
  ::umask(usual);
  EXPECT_EQ(modeOf(path), 0600u);
}

TEST_F(OwnFiles, AFileMayBeForItsOwnerAlone) {
  const mode_t usual = ::umask(0);
  EXPECT_TRUE(CFile().Open(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::ownerOnly));
  ::umask(usual);
  EXPECT_EQ(modeOf(path), 0600u);
}

}  // namespace
