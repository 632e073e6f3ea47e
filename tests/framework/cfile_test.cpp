// SPDX-License-Identifier: MIT
#include "framework/File.h"

#include <gtest/gtest.h>

#include <string>

#include "framework/platform/last_error.h"
#include "tests/support/ScratchFolder.h"

namespace {

class CFileTest : public testing::Test {
 protected:
  testing_support::ScratchFolder folder;
  const std::string path = folder.file("file.bin");

  void create(const std::string& text) const {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
    file.Write(text.data(), static_cast<std::uint32_t>(text.size()));
    file.Close();
  }
};

// The number of the exception that `work` throws; 0 when it throws none.
template <class Work>
std::uint32_t thrownBy(Work work) {
  try {
    work();
  } catch (CFileException* exception) {
    const std::uint32_t error = exception->m_lOsError;
    exception->Delete();
    return error;
  }
  return 0;
}

TEST_F(CFileTest, WritesReadsAndAppends) {
  create("hello");
  CFile file;
  ASSERT_TRUE(file.Open(path.c_str(), CFile::modeReadWrite));
  EXPECT_EQ(file.GetLength(), 5u);
  char buffer[16];
  EXPECT_EQ(file.Read(buffer, 2), 2u);
  EXPECT_EQ(file.Read(buffer, sizeof buffer), 3u);
  EXPECT_EQ(std::string(buffer, 3), "llo");
  EXPECT_EQ(file.Read(buffer, sizeof buffer), 0u);
  EXPECT_EQ(file.SeekToEnd(), 5u);
  file.Write(" you", 4);
  file.Write(nullptr, 0);
  EXPECT_EQ(file.GetLength(), 9u);
  file.Close();
  file.Close();
}

TEST_F(CFileTest, CreatesOnlyWhenAskedTo) {
  CFile file;
  EXPECT_FALSE(file.Open(path.c_str(), CFile::modeWrite));
  EXPECT_EQ(platform::lastError(), platform::kErrorFileNotFound);
  EXPECT_TRUE(file.Open(path.c_str(), CFile::modeCreate | CFile::modeReadWrite));
  file.Write("hello", 5);
  EXPECT_TRUE(file.Open(path.c_str(), CFile::modeWrite));
  EXPECT_EQ(file.GetLength(), 5u);
  EXPECT_TRUE(file.Open(path.c_str(), CFile::modeCreate | CFile::modeWrite));
  EXPECT_EQ(file.GetLength(), 0u);
}

TEST_F(CFileTest, ItsModesAreKept) {
  create("hello");
  char byte = 'x';
  CFile reader(path.c_str(), CFile::modeRead);
  EXPECT_EQ(thrownBy([&] { reader.Write(&byte, 1); }), platform::kErrorAccessDenied);
  CFile writer(path.c_str(), CFile::modeWrite);
  EXPECT_EQ(thrownBy([&] { static_cast<void>(writer.Read(&byte, 1)); }), platform::kErrorAccessDenied);
}

TEST_F(CFileTest, ThrowsTheSystemsNumber) {
  EXPECT_EQ(thrownBy([&] { const CFile file(path.c_str(), CFile::modeRead); }), platform::kErrorFileNotFound);
  EXPECT_EQ(thrownBy([] { const CFile file(nullptr, CFile::modeRead); }), platform::kErrorPathNotFound);
  CFile closed;
  char byte = 'x';
  EXPECT_EQ(thrownBy([&] { static_cast<void>(closed.Read(&byte, 1)); }), platform::kErrorInvalidHandle);
  EXPECT_EQ(thrownBy([&] { closed.Write(&byte, 1); }), platform::kErrorInvalidHandle);
  EXPECT_EQ(thrownBy([&] { static_cast<void>(closed.GetLength()); }), platform::kErrorInvalidHandle);
  EXPECT_EQ(thrownBy([&] { static_cast<void>(closed.SeekToEnd()); }), platform::kErrorInvalidHandle);
  EXPECT_EQ(thrownBy([&] { closed.Close(); }), 0u);
}

TEST(CFileExceptionTest, TextsAreTheSystemsWithoutLineEnd) {
  const CFileException exception(platform::kErrorDiskFull);
  std::string expected = platform::systemErrorText(platform::kErrorDiskFull);
  expected.resize(expected.size() - 2);
  char buffer[256];
  EXPECT_TRUE(exception.GetErrorMessage(buffer, sizeof buffer));
  EXPECT_EQ(buffer, expected);
  EXPECT_TRUE(exception.GetErrorMessage(buffer, 5));
  EXPECT_EQ(buffer, expected.substr(0, 4));
  EXPECT_TRUE(exception.GetErrorMessage(buffer, 1));
  EXPECT_STREQ(buffer, "");
}

TEST(CFileExceptionTest, WithoutATextThereIsNone) {
  char buffer[8] = "before";
  EXPECT_FALSE(CFileException(12002).GetErrorMessage(buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "");
  EXPECT_FALSE(CFileException(2).GetErrorMessage(nullptr, 8));
  EXPECT_FALSE(CFileException(2).GetErrorMessage(buffer, 0));
}

}  // namespace
