// SPDX-License-Identifier: MIT
// What files add on POSIX: drive prefixes, modes, descriptors and full disks.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "framework/platform/file.h"
#include "framework/platform/last_error.h"
#include "framework/posix/local_path.h"
#include "tests/client/posix/FileSizeLimit.h"
#include "tests/support/ScratchFolder.h"

namespace {

using platform::File;
using platform::FileAccess;
using platform::FileCreation;
using platform::lastError;
using platform::LocalPath;

TEST(LocalPaths, LoseTheirDriveAndTheirBackslashes) {
  EXPECT_STREQ(LocalPath("Z:/home/me/f").text(), "/home/me/f");
  EXPECT_STREQ(LocalPath("a:\\home\\me\\f").text(), "/home/me/f");
  EXPECT_STREQ(LocalPath("/home/me/f").text(), "/home/me/f");
  EXPECT_STREQ(LocalPath("Z:/").text(), "/");
  EXPECT_STREQ(LocalPath("C:\\").text(), "/");
  EXPECT_STREQ(LocalPath("sub\\f").text(), "sub/f");
}

TEST(LocalPaths, KeepWhatOnlyLooksLikeADrive) {
  for (const char* const name : {"Z:f", "Z:", "1:/f", "ab:/f", ":/f", "/Z:/f"}) {
    EXPECT_TRUE(LocalPath(name).valid());
    EXPECT_STREQ(LocalPath(name).text(), name);
  }
}

TEST(LocalPaths, EndWhereTheSystemsDo) {
  const std::string longest(PATH_MAX - 1, 'x');
  EXPECT_EQ(LocalPath(longest.c_str()).text(), longest);
  EXPECT_TRUE(LocalPath(("Z:/" + longest.substr(1)).c_str()).valid());
  EXPECT_FALSE(LocalPath((longest + "x").c_str()).valid());
  EXPECT_EQ(lastError(), platform::kErrorNameTooLong);
  File file;
  EXPECT_FALSE(file.open(longest.c_str(), FileAccess::read, FileCreation::openExisting));
  EXPECT_EQ(lastError(), platform::kErrorNameTooLong);
}

class PosixFiles : public testing::Test {
 protected:
  testing_support::ScratchFolder folder;
  const std::string path = folder.file("file.bin");

  mode_t mode() const {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }
  void create(FileCreation creation, std::uint32_t attributes) const {
    File file;
    EXPECT_TRUE(file.open(path.c_str(), FileAccess::write, creation, attributes));
  }
};

TEST_F(PosixFiles, AreFoundBehindADrivePrefix) {
  File file;
  ASSERT_TRUE(file.open(("Z:" + path).c_str(), FileAccess::write, FileCreation::createNew));
  ASSERT_TRUE(file.close());
  std::string windowsName = "q:" + path;
  for (char& c : windowsName)
    if (c == '/') c = '\\';
  EXPECT_TRUE(platform::setFileAttributes(windowsName.c_str(), platform::kFileAttributeNormal));
  EXPECT_TRUE(platform::deleteFile(windowsName.c_str()));
  EXPECT_NE(::access(path.c_str(), F_OK), 0);
  EXPECT_TRUE(platform::createOwnDirectory(windowsName.c_str()));
  EXPECT_EQ(::access(path.c_str(), F_OK), 0);
}

TEST_F(PosixFiles, HonourReadOnlyAndNothingElse) {
  const mode_t usual = ::umask(022);
  create(FileCreation::createNew, platform::kFileAttributeArchive);
  EXPECT_EQ(mode(), 0644u);
  create(FileCreation::createAlways, platform::kFileAttributeReadOnly);
  EXPECT_EQ(mode(), 0444u);
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeArchive));
  EXPECT_EQ(mode(), 0644u);
  ASSERT_TRUE(platform::deleteFile(path.c_str()));
  create(FileCreation::createNew, platform::kFileAttributeReadOnly);
  EXPECT_EQ(mode(), 0444u);
  ::umask(usual);
}

TEST_F(PosixFiles, AreNotInheritedByTheHostsPrograms) {
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::write, FileCreation::createNew));
  EXPECT_NE(::fcntl(static_cast<int>(file.nativeHandle()), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(PosixFiles, AFullDiskFailsTheWrite) {
  File file;
  ASSERT_TRUE(file.open("/dev/full", FileAccess::write, FileCreation::openExisting));
  EXPECT_FALSE(file.write("x", 1));
  EXPECT_EQ(lastError(), platform::kErrorDiskFull);
  EXPECT_TRUE(file.close());
}

// The signal that comes with the failure ended hosts.
TEST_F(PosixFiles, TheLimitOnFileSizesFailsTheWriteAndIsNoSignalToTheHost) {
  static volatile std::sig_atomic_t signals;
  signals = 0;
  const FileSizeLimit limit(1000);
  std::signal(SIGXFSZ, [](int) { signals = signals + 1; });
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::write, FileCreation::createNew));
  EXPECT_FALSE(file.write(std::string(1001, 'x').data(), 1001));
  EXPECT_EQ(lastError(), 223u);
  EXPECT_EQ(signals, 0);
  EXPECT_EQ(file.size(), 1000);
  std::raise(SIGXFSZ);
  EXPECT_EQ(signals, 1) << "of its own the host gets it";
}

TEST_F(PosixFiles, AFailedCloseIsToldOnce) {
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::write, FileCreation::createNew));
  ::close(static_cast<int>(file.nativeHandle()));
  EXPECT_FALSE(file.close());
  EXPECT_EQ(lastError(), platform::kErrorInvalidHandle);
  EXPECT_FALSE(file.isOpen());
  EXPECT_TRUE(file.close());
}

TEST_F(PosixFiles, AFailedCloseAtTheirEndLeavesTheLastErrorAlone) {
  {
    File file;
    ASSERT_TRUE(file.open(path.c_str(), FileAccess::write, FileCreation::createNew));
    ::close(static_cast<int>(file.nativeHandle()));
    platform::setLastError(77);
  }
  EXPECT_EQ(lastError(), 77u);
}

TEST_F(PosixFiles, AFileInTheWayIsAMissingPath) {
  create(FileCreation::createNew, platform::kFileAttributeNormal);
  File file;
  EXPECT_FALSE(file.open((path + "/below").c_str(), FileAccess::read, FileCreation::openExisting));
  EXPECT_EQ(lastError(), platform::kErrorPathNotFound);
}

TEST(PosixTemporaryFolder, IsTheEnvironmentsOrTheUsersOwn) {
  const char* const before = ::getenv("TMPDIR");
  const std::string kept = before != nullptr ? before : "";
  char buffer[64];
  const std::string own = "/tmp/zrm-qxkt-" + std::to_string(::geteuid()) + "/";
  for (const auto& [given, expected] :
       {std::pair("/var/tmp", std::string("/var/tmp/")), std::pair("/var/tmp/", std::string("/var/tmp/")),
        std::pair("", own)}) {
    ::setenv("TMPDIR", given, 1);
    EXPECT_EQ(platform::temporaryFolder(buffer, sizeof buffer), expected.size());
    EXPECT_EQ(buffer, expected);
  }
  ::unsetenv("TMPDIR");
  EXPECT_EQ(platform::temporaryFolder(buffer, sizeof buffer), own.size());
  EXPECT_EQ(buffer, own);
  if (before != nullptr) ::setenv("TMPDIR", kept.c_str(), 1);
}

}  // namespace
