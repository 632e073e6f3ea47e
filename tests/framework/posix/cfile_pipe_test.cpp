// SPDX-License-Identifier: MIT
// A file that gives its bytes in pieces, and a full disk.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <latch>
#include <string>
#include <thread>

#include "framework/File.h"
#include "framework/platform/file.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"
#include "tests/support/ScratchFolder.h"

namespace {

using platform::File;

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

// A write to one whose reader has gone brought a signal that ends hosts.
TEST(CFilePipe, AWriteThatNobodyReadsAnyMoreIsAFailureAndNoSignalToTheHost) {
  static volatile std::sig_atomic_t signals;
  signals = 0;
  const auto handler = std::signal(SIGPIPE, [](int) { signals = signals + 1; });
  const testing_support::ScratchFolder folder;
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  File file;
  ASSERT_TRUE(file.open(pipe.c_str(), platform::FileAccess::write, platform::FileCreation::createAlways));
  EXPECT_TRUE(file.write("x", 1));
  ::close(reader);
  EXPECT_FALSE(file.write("x", 1));
  EXPECT_EQ(platform::lastError(), 109U);
  EXPECT_EQ(signals, 0);
  std::signal(SIGPIPE, handler);
}

// What a worker does with a pipe until somebody stops it: it answers what the last call did, before which it
// tells that the time to stop has come.
struct PipeWait {
  const char* name;
  bool (*work)(File& file, const std::string& pipe, std::latch& last);
};

bool openToWrite(File& file, const std::string& pipe) {
  return file.open(pipe.c_str(), platform::FileAccess::write, platform::FileCreation::createAlways);
}

bool openToRead(File& file, const std::string& pipe) {
  return file.open(pipe.c_str(), platform::FileAccess::read, platform::FileCreation::openExisting);
}

const PipeWait kPipeWaits[] = {
    {"ForAReader",
     [](File& file, const std::string& pipe, std::latch& last) {
       last.count_down();
       return openToWrite(file, pipe);
     }},
    {"ForAWriter",
     [](File& file, const std::string& pipe, std::latch& last) {
       last.count_down();
       return openToRead(file, pipe);
     }},
    {"ForRoom",
     [](File& file, const std::string& pipe, std::latch& last) {
       const std::string much(1 << 20, 'x');
       EXPECT_TRUE(openToWrite(file, pipe));
       last.count_down();
       return file.write(much.data(), much.size());
     }},
    {"ForMore",
     [](File& file, const std::string& pipe, std::latch& last) {
       char byte = 0;
       EXPECT_TRUE(openToRead(file, pipe));
       EXPECT_EQ(file.read(&byte, 1), 1);
       last.count_down();
       return file.read(&byte, 1) >= 0;
     }},
};

class CFilePipeWait : public testing::TestWithParam<PipeWait> {
 protected:
  // The other end, for the waits that come later than the opening: it does nothing.
  [[nodiscard]] int otherEnd(const std::string& pipe) const {
    const std::string name = GetParam().name;
    if (name == "ForRoom") return ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (name != "ForMore") return -1;
    const int end = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(::write(end, "x", 1), 1);
    return end;
  }
};

// The thread waited for ever, and who had stopped it waited for the thread.
TEST_P(CFilePipeWait, EndsWhenTheThreadHasToStop) {
  const testing_support::ScratchFolder folder;
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const int end = otherEnd(pipe);
  platform::StopToken token;
  std::latch last(1);
  std::thread worker([&] {
    const platform::StopToken::Scope scope(&token);
    File file;
    EXPECT_FALSE(GetParam().work(file, pipe, last));
    EXPECT_EQ(platform::lastError(), 995U);
  });
  last.wait();
  token.raise();
  worker.join();
  if (end >= 0) ::close(end);
}

INSTANTIATE_TEST_SUITE_P(Waits, CFilePipeWait, testing::ValuesIn(kPipeWaits),
                         [](const auto& instance) { return std::string(instance.param.name); });

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
