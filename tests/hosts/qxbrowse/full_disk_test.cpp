// SPDX-License-Identifier: MIT
// The queue on a disk that has no room for a file; a limit of the process stands for it, which Windows lacks.
#include <sys/resource.h>

#include <csignal>

#include "tests/hosts/qxbrowse/TransferQueueTest.h"

namespace browse {
namespace {

// No file gets larger while it lives.
class DiskLimit {
 public:
  explicit DiskLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    m_signal = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~DiskLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_signal);
  }
  DiskLimit(const DiskLimit&) = delete;
  DiskLimit& operator=(const DiskLimit&) = delete;

 private:
  rlimit m_before{};
  void (*m_signal)(int) = nullptr;
};

using testing::StartsWith;

// A part that could not be written failed each entry in turn.
TEST_F(TheTransferQueue, StopsBeforeAFullDiskFailsAll) {
  std::optional<DiskLimit> limit(200000);
  queue->add({download("large", 700000), download("a.txt"), download("b.txt")});
  runAll();
  EXPECT_EQ(state(0), TransferState::failed);
  EXPECT_THAT(textOf(0), StartsWith("the disk is full; "));
  EXPECT_EQ(queue->list().count(TransferState::waiting), 2U);
  EXPECT_TRUE(queue->isPaused());
  EXPECT_EQ(pauses, 1);
  EXPECT_EQ(localCount(), 0U) << "a part is left";
  limit.reset();
  queue->retry(queue->list().ended());
  runAll();
  EXPECT_EQ(queue->list().count(TransferState::done), 3U);
}

}  // namespace
}  // namespace browse
