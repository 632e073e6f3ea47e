// SPDX-License-Identifier: MIT
#include "framework/platform/file.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "framework/platform/last_error.h"
#include "tests/support/ScratchFolder.h"

namespace {

using platform::File;
using platform::FileAccess;
using platform::FileCreation;
using platform::lastError;

class Files : public testing::Test {
 protected:
  testing_support::ScratchFolder folder;
  const std::string path = folder.file("file.bin");

  void write(const std::string& text) const {
    File file;
    ASSERT_TRUE(file.open(path.c_str(), FileAccess::write, FileCreation::createAlways));
    ASSERT_TRUE(file.write(text.data(), text.size()));
    ASSERT_TRUE(file.close());
  }
  std::string content() const {
    File file;
    char buffer[64];
    if (!file.open(path.c_str(), FileAccess::read, FileCreation::openExisting)) return "(cannot be opened)";
    const std::int64_t size = file.read(buffer, sizeof buffer);
    return size < 0 ? "(cannot be read)" : std::string(buffer, static_cast<std::size_t>(size));
  }
  // The last error of an attempt to open.
  static std::uint32_t refusal(const char* name, FileAccess access, FileCreation creation) {
    File file;
    platform::setLastError(77);
    if (file.open(name, access, creation)) return 0;
    EXPECT_FALSE(file.isOpen());
    return lastError();
  }
};

TEST_F(Files, AreWrittenAndReadBack) {
  write("hello");
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::readWrite, FileCreation::openExisting));
  EXPECT_TRUE(file.isOpen());
  EXPECT_EQ(file.size(), 5);
  char buffer[16];
  EXPECT_EQ(file.read(buffer, 3), 3);
  EXPECT_EQ(std::string(buffer, 3), "hel");
  EXPECT_EQ(file.read(buffer, sizeof buffer), 2);
  EXPECT_EQ(file.read(buffer, sizeof buffer), 0);
  EXPECT_EQ(file.seekToEnd(), 5);
  EXPECT_TRUE(file.write(" you", 4));
  EXPECT_TRUE(file.write("", 0));
  EXPECT_TRUE(file.write(nullptr, 0));
  EXPECT_EQ(file.size(), 9);
  EXPECT_TRUE(file.close());
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(content(), "hello you");
}

TEST_F(Files, KeepEveryByteOfLargeBlocks) {
  std::vector<char> data(3'000'017);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 131 >> 7);
  write(std::string(data.begin(), data.end()));
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::read, FileCreation::openExisting));
  std::vector<char> back(data.size());
  std::size_t done = 0;
  while (done < back.size()) {
    const std::int64_t got = file.read(back.data() + done, back.size() - done);
    ASSERT_GT(got, 0);
    done += static_cast<std::size_t>(got);
  }
  EXPECT_EQ(back, data);
}

TEST_F(Files, CreateAlwaysEmptiesWhatIsThere) {
  write("a longer text");
  write("short");
  EXPECT_EQ(content(), "short");
}

TEST_F(Files, OpenExistingKeepsWhatIsThere) {
  write("hello");
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::write, FileCreation::openExisting));
  ASSERT_TRUE(file.write("J", 1));
  file.close();
  EXPECT_EQ(content(), "Jello");
}

TEST_F(Files, CreateNewRefusesWhatIsThere) {
  EXPECT_EQ(refusal(path.c_str(), FileAccess::write, FileCreation::createNew), 0u);
  EXPECT_EQ(refusal(path.c_str(), FileAccess::write, FileCreation::createNew), platform::kErrorFileExists);
}

TEST_F(Files, TellWhatIsMissing) {
  const std::string below = folder.file("no folder") + "/file";
  for (const FileAccess access : {FileAccess::read, FileAccess::write, FileAccess::readWrite}) {
    EXPECT_EQ(refusal(path.c_str(), access, FileCreation::openExisting), platform::kErrorFileNotFound);
    EXPECT_EQ(refusal(below.c_str(), access, FileCreation::openExisting), platform::kErrorPathNotFound);
    EXPECT_EQ(refusal(below.c_str(), access, FileCreation::createAlways), platform::kErrorPathNotFound);
  }
  EXPECT_EQ(refusal("qx no such file", FileAccess::read, FileCreation::openExisting),
            platform::kErrorFileNotFound);
}

TEST_F(Files, NullAndEmptyPathsAreMissingPaths) {
  for (const char* const none : {static_cast<const char*>(nullptr), ""}) {
    for (const FileCreation creation :
         {FileCreation::openExisting, FileCreation::createNew, FileCreation::createAlways})
      EXPECT_EQ(refusal(none, FileAccess::write, creation), platform::kErrorPathNotFound);
    EXPECT_FALSE(platform::deleteFile(none));
    EXPECT_EQ(lastError(), platform::kErrorPathNotFound);
    EXPECT_FALSE(platform::createOwnDirectory(none));
    EXPECT_EQ(lastError(), platform::kErrorPathNotFound);
    EXPECT_FALSE(platform::setFileAttributes(none, platform::kFileAttributeArchive));
    EXPECT_EQ(lastError(), platform::kErrorPathNotFound);
  }
}

TEST_F(Files, FoldersAreNone) {
  const std::string name = folder.path().string();
  for (const FileAccess access : {FileAccess::read, FileAccess::write, FileAccess::readWrite})
    EXPECT_EQ(refusal(name.c_str(), access, FileCreation::openExisting), platform::kErrorAccessDenied);
  EXPECT_FALSE(platform::deleteFile(name.c_str()));
  EXPECT_EQ(lastError(), platform::kErrorAccessDenied);
}

TEST_F(Files, RefuseTheOtherAccess) {
  write("hello");
  char byte = 'x';
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::write, FileCreation::openExisting));
  EXPECT_EQ(file.read(&byte, 1), -1);
  EXPECT_EQ(lastError(), platform::kErrorAccessDenied);
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::read, FileCreation::openExisting));
  EXPECT_FALSE(file.write(&byte, 1));
  EXPECT_EQ(lastError(), platform::kErrorAccessDenied);
}

TEST_F(Files, ClosedOnesRefuseEverythingButClosing) {
  File file;
  char byte = 'x';
  EXPECT_FALSE(file.isOpen());
  EXPECT_TRUE(file.close());
  platform::setLastError(77);
  EXPECT_EQ(file.read(&byte, 1), -1);
  EXPECT_EQ(lastError(), platform::kErrorInvalidHandle);
  platform::setLastError(77);
  EXPECT_FALSE(file.write(&byte, 1));
  EXPECT_EQ(lastError(), platform::kErrorInvalidHandle);
  platform::setLastError(77);
  EXPECT_EQ(file.size(), -1);
  EXPECT_EQ(lastError(), platform::kErrorInvalidHandle);
  platform::setLastError(77);
  EXPECT_EQ(file.seekToEnd(), -1);
  EXPECT_EQ(lastError(), platform::kErrorInvalidHandle);
}

TEST_F(Files, MoveWithTheirHandle) {
  write("hello");
  File first;
  ASSERT_TRUE(first.open(path.c_str(), FileAccess::read, FileCreation::openExisting));
  File second(std::move(first));
  EXPECT_FALSE(first.isOpen());
  EXPECT_EQ(second.size(), 5);
  File& alias = second;
  second = std::move(alias);
  EXPECT_EQ(second.size(), 5);
  first = std::move(second);
  EXPECT_EQ(first.size(), 5);
  EXPECT_FALSE(second.isOpen());
}

TEST_F(Files, OpeningClosesWhatWasOpen) {
  write("hello");
  File file;
  ASSERT_TRUE(file.open(path.c_str(), FileAccess::read, FileCreation::openExisting));
  EXPECT_FALSE(file.open("", FileAccess::read, FileCreation::openExisting));
  EXPECT_FALSE(file.isOpen());
}

TEST_F(Files, TheirEndLeavesTheLastErrorAlone) {
  write("hello");
  {
    File file;
    ASSERT_TRUE(file.open(path.c_str(), FileAccess::read, FileCreation::openExisting));
    platform::setLastError(77);
  }
  EXPECT_EQ(lastError(), 77u);
}

TEST_F(Files, OthersReadAndWriteMeanwhile) {
  File writer;
  ASSERT_TRUE(writer.open(path.c_str(), FileAccess::write, FileCreation::createAlways));
  ASSERT_TRUE(writer.write("hello", 5));
  EXPECT_EQ(content(), "hello");
  EXPECT_EQ(refusal(path.c_str(), FileAccess::readWrite, FileCreation::openExisting), 0u);
}

TEST_F(Files, AreDeleted) {
  write("hello");
  EXPECT_TRUE(platform::deleteFile(path.c_str()));
  EXPECT_FALSE(platform::deleteFile(path.c_str()));
  EXPECT_EQ(lastError(), platform::kErrorFileNotFound);
  EXPECT_FALSE(platform::deleteFile((folder.file("no folder") + "/file").c_str()));
  EXPECT_EQ(lastError(), platform::kErrorPathNotFound);
}

TEST_F(Files, FoldersAreMadeOneLevelAtATime) {
  const std::string name = folder.file("sub");
  EXPECT_TRUE(platform::createOwnDirectory(name.c_str()));
  EXPECT_TRUE(platform::createOwnDirectory(name.c_str())) << "it is there";
  EXPECT_FALSE(platform::createOwnDirectory((folder.file("no folder") + "/sub").c_str()));
  EXPECT_EQ(lastError(), platform::kErrorPathNotFound);
  EXPECT_TRUE(platform::createOwnDirectory((name + "/below").c_str()));
}

// The way in which temporary names are built: a doubled separator of either kind.
TEST_F(Files, TakeEitherSeparatorAndRunsOfThem) {
  EXPECT_TRUE(platform::createOwnDirectory((folder.path().string() + "/\\FTP").c_str()));
  File file;
  EXPECT_TRUE(file.open((folder.path().string() + "/\\FTP\\name").c_str(), FileAccess::write,
                        FileCreation::createNew));
  file.close();
  EXPECT_EQ(
      refusal((folder.path().string() + "/FTP/name").c_str(), FileAccess::read, FileCreation::openExisting),
      0u);
}

TEST_F(Files, ReadOnlyIsSetAndCleared) {
  File file;
  ASSERT_TRUE(
      file.open(path.c_str(), FileAccess::write, FileCreation::createNew, platform::kFileAttributeReadOnly));
  EXPECT_TRUE(file.write("hello", 5));
  file.close();
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeArchive));
  EXPECT_EQ(refusal(path.c_str(), FileAccess::write, FileCreation::openExisting), 0u);
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeReadOnly));
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeNormal));
  EXPECT_TRUE(platform::setFileAttributes(path.c_str(), platform::kFileAttributeNormal));
  EXPECT_EQ(refusal(path.c_str(), FileAccess::write, FileCreation::openExisting), 0u);
  EXPECT_FALSE(platform::setFileAttributes(folder.file("none").c_str(), platform::kFileAttributeNormal));
  EXPECT_EQ(lastError(), platform::kErrorFileNotFound);
}

TEST_F(Files, AFolderTakesAttributesAndStaysUsable) {
  const std::string name = folder.path().string();
  EXPECT_TRUE(platform::setFileAttributes(name.c_str(), platform::kFileAttributeReadOnly));
  write("hello");
  EXPECT_TRUE(platform::setFileAttributes(name.c_str(), platform::kFileAttributeNormal));
}

TEST(TemporaryFolder, EndsWithASeparatorAndFitsOrFails) {
  char buffer[512];
  const std::size_t length = platform::temporaryFolder(buffer, sizeof buffer);
  ASSERT_GT(length, 0u);
  EXPECT_EQ(std::string(buffer).size(), length);
  EXPECT_TRUE(buffer[length - 1] == '/' || buffer[length - 1] == '\\');
  EXPECT_EQ(platform::temporaryFolder(buffer, length + 1), length);
  platform::setLastError(77);
  EXPECT_EQ(platform::temporaryFolder(buffer, length), 0u);
  EXPECT_EQ(lastError(), platform::kErrorInsufficientBuffer);
  EXPECT_EQ(platform::temporaryFolder(buffer, 1), 0u);
  EXPECT_EQ(platform::temporaryFolder(nullptr, 0), 0u);
}

}  // namespace
