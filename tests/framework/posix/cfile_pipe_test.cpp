// SPDX-License-Identifier: MIT
// A file that gives its bytes in pieces, and a full disk.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "framework/File.h"
#include "framework/platform/last_error.h"
#include "tests/support/ScratchFolder.h"

namespace {

// Each piece is written when the reader has taken the one before it.
void writeInPieces(const std::string& pipe) {
  const int writer = ::open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
  for (const char* const piece : {"one ", "two ", "three"}) {
    for (int waiting = 1; waiting != 0;) ASSERT_EQ(::ioctl(writer, FIONREAD, &waiting), 0);
    ASSERT_GT(::write(writer, piece, std::string(piece).size()), 0);
  }
  ::close(writer);
}

TEST(CFilePipe, AReadGoesOnUntilItsSizeOrTheEnd) {
  const testing_support::ScratchFolder folder;
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&pipe] { writeInPieces(pipe); });
  CFile file(pipe.c_str(), CFile::modeRead);
  char buffer[32];
  EXPECT_EQ(file.Read(buffer, 6), 6u);
  EXPECT_EQ(std::string(buffer, 6), "one tw");
  EXPECT_EQ(file.Read(buffer, sizeof buffer), 7u);
  EXPECT_EQ(std::string(buffer, 7), "o three");
  EXPECT_EQ(file.Read(buffer, sizeof buffer), 0u);
  writer.join();
}

TEST(CFileFullDisk, ThrowsTheNumber) {
  CFile file("/dev/full", CFile::modeWrite);
  try {
    file.Write("x", 1);
    ADD_FAILURE() << "wrote to a full disk";
  } catch (CFileException* exception) {
    EXPECT_EQ(exception->m_lOsError, platform::kErrorDiskFull);
    exception->Delete();
  }
}

}  // namespace
