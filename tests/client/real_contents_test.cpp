// SPDX-License-Identifier: MIT
// Contents to, from and between files of real servers, compared byte by byte.
#include <fstream>

#include "tests/client/ContentTest.h"
#include "tests/client/RealChangesTest.h"

namespace {

// Of the seed that patternText takes.
constexpr std::uint32_t kSeed = 7;

std::string patternFile(std::size_t size) {
  return R"({"size": )" + std::to_string(size) + R"(, "seed": )" + std::to_string(kSeed) + "}";
}

class RealContents : public RealChangesTest {
 protected:
  using Sizes = std::vector<std::size_t>;

  const std::string localPath = localName(local);
  // The operations work in blocks of 4096 bytes, in both modes alike.
  const Sizes written = passive ? Sizes{1, 4095, 4096, 4097, 20'000} : Sizes{1, 20'000};
  const Sizes read = passive ? Sizes{0, 1, 4095, 4096, 4097, 20'000} : Sizes{0, 20'000};
  const Sizes copied = passive ? Sizes{0, 1, 4096, 4097, 1 << 20} : Sizes{0, 4097, 1 << 20};

  [[nodiscard]] bool arrivedAt(const std::string& path, std::size_t size) const {
    return server.matches(own + path, kSeed, size);
  }
  [[nodiscard]] bool arrivedHere(std::size_t size) const {
    return testing_support::Pattern(kSeed).matchesFile(local, size);
  }
};

TEST_P(RealContents, WriteFilesOfAllSizes) {
  for (const std::size_t size : written) {
    EXPECT_EQ(writeFile("/written", patternText(size)), 1) << size;
    EXPECT_TRUE(arrivedAt("/written", size)) << size;
  }
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealContents, WriteNothingWhenNothingIsGiven) {
  EXPECT_EQ(writeFile("/written", ""), 0);
  expectReport("a write of no bytes");
  EXPECT_FALSE(isThere("/written"));
}

TEST_P(RealContents, ReadFilesOfAllSizes) {
  for (const std::size_t size : read) {
    make("/file", patternFile(size));
    std::string content = "not read";
    EXPECT_EQ(readFile("/file", content), 1) << size;
    EXPECT_EQ(content, patternText(size)) << size;
  }
  EXPECT_TRUE(IsBlank(record));
}

// All these servers emptied the file when it was opened for writing before an append.
TEST_P(RealContents, AppendToFilesOfAllSizes) {
  for (const std::size_t before : written) {
    for (const std::size_t added : written) {
      if (passive && before != 4097 && added != 4097) continue;  // one of the two varies
      make("/file", patternFile(before));
      EXPECT_EQ(writeFile("/file", patternText(added), true), 1) << added << " to " << before;
      EXPECT_EQ(server.content(own + "/file"), patternText(before) + patternText(added));
    }
  }
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealContents, AppendNothingToAFileThatIsMissingOrEmpty) {
  EXPECT_EQ(writeFile("/missing", "new", true), 0);
  expectReport("an append to a missing file");
  make("/file", R"("")");
  EXPECT_EQ(writeFile("/file", "new", true), 0);
  expectReport("an append to an empty file");
  EXPECT_EQ(server.content(own + "/file"), "");
}

TEST_P(RealContents, CopyWithinTheServer) {
  for (const std::size_t size : copied) {
    make("/source", patternFile(size));
    EXPECT_EQ(copyFile(own + "/source", own + "/copy"), 1) << size;
    EXPECT_TRUE(arrivedAt("/copy", size)) << size;
    EXPECT_TRUE(arrivedAt("/source", size)) << size;
  }
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealContents, CopyFromTheServer) {
  for (const std::size_t size : copied) {
    make("/source", patternFile(size));
    EXPECT_EQ(copyFile(own + "/source", localPath), 1) << size;
    EXPECT_TRUE(arrivedHere(size)) << size;
  }
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealContents, CopyToTheServer) {
  for (const std::size_t size : copied) {
    testing_support::Pattern(kSeed).writeFile(local, size);
    EXPECT_EQ(copyFile(localPath, own + "/copy"), 1) << size;
    EXPECT_TRUE(arrivedAt("/copy", size)) << size;
  }
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealContents, CopyNothingBetweenTwoLocalPaths) {
  write("content");
  const std::string other = folder.file("other");
  EXPECT_EQ(copyFile(localPath, localName(other)), 1);
  EXPECT_FALSE(std::filesystem::exists(other));
  EXPECT_EQ(content(), "content");
}

TEST_P(RealContents, MoveInAllDirections) {
  make("/a", patternFile(5000));
  EXPECT_EQ(moveFile(own + "/a", own + "/b"), 1);
  EXPECT_FALSE(isThere("/a"));
  EXPECT_TRUE(arrivedAt("/b", 5000));

  EXPECT_EQ(moveFile(own + "/b", localPath), 1);
  EXPECT_FALSE(isThere("/b"));
  EXPECT_TRUE(arrivedHere(5000));

  EXPECT_EQ(moveFile(localPath, own + "/c"), 1);
  EXPECT_FALSE(exists());
  EXPECT_TRUE(arrivedAt("/c", 5000));
  EXPECT_TRUE(IsBlank(record));
}

INSTANTIATE_TEST_SUITE_P(Kinds, RealContents, inBothModes(), serverAndModeName);

// Long enough to take many rounds through every buffer.
class RealBigFile : public RealContents {};

TEST_P(RealBigFile, GoesAllWaysByteByByte) {
  constexpr std::uint32_t kBytes = 300u << 20;
  make("/big", patternFile(kBytes));
  ASSERT_EQ(download((own + "/big").c_str()), 1);
  EXPECT_TRUE(arrivedHere(kBytes));
  ASSERT_EQ(upload((own + "/up").c_str()), 1);
  EXPECT_TRUE(arrivedAt("/up", kBytes));
  std::filesystem::remove(local);
  ASSERT_EQ(copyFile(own + "/up", localPath), 1);
  EXPECT_TRUE(arrivedHere(kBytes));
  EXPECT_TRUE(IsBlank(record));
}

INSTANTIATE_TEST_SUITE_P(One, RealBigFile, testing::Values(ServerAndMode("vsftpd", true)), serverAndModeName);

}  // namespace
