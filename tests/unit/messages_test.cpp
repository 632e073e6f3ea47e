// SPDX-License-Identifier: MIT
#include "support/Messages.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "tests/unit/TestQueue.h"

namespace {

using Numbers = std::vector<unsigned>;

class Messages : public testing::Test {
 protected:
  // What the test does with a message besides noting it.
  std::function<void(unsigned)> react = [](unsigned) {};
  Numbers seen;
  TestQueue queue{[this](unsigned number) {
    seen.push_back(number);
    react(number);
  }};

  void TearDown() override { PumpMessages(nullptr, 0, 0); }
};

// A worker that runs until its gate opens.
class GatedWorker {
 public:
  GatedWorker() { EXPECT_TRUE(thread.start(&wait, this)); }
  ~GatedWorker() {
    release();
    while (!thread.ended(std::chrono::seconds(1))) {
    }
  }
  GatedWorker(const GatedWorker&) = delete;
  GatedWorker& operator=(const GatedWorker&) = delete;

  void release() {
    const std::lock_guard lock(m_mutex);
    m_open = true;
    m_opened.notify_all();
  }

  platform::WorkerThread thread;

 private:
  static void wait(void* argument) {
    auto& self = *static_cast<GatedWorker*>(argument);
    std::unique_lock lock(self.m_mutex);
    self.m_opened.wait(lock, [&] { return self.m_open; });
  }

  std::mutex m_mutex;
  std::condition_variable m_opened;
  bool m_open = false;
};

void setFlag(std::uint8_t& flag, std::uint8_t value) { std::atomic_ref<std::uint8_t>(flag).store(value); }

TEST_F(Messages, PumpReturnsTrueAtOnceWhenNothingWaits) {
  EXPECT_TRUE(PumpMessages(nullptr, 0, 0));
  EXPECT_EQ(seen, Numbers{});
}

TEST_F(Messages, PumpDispatchesEverythingThatWaitsInOrder) {
  for (const unsigned number : {1u, 2u, 3u}) queue.post(number);
  EXPECT_TRUE(PumpMessages(nullptr, 0, 0));
  EXPECT_EQ(seen, (Numbers{1, 2, 3}));
}

TEST_F(Messages, PumpAlsoDispatchesWhatAHandlerPosts) {
  react = [this](unsigned number) {
    if (number < 3) queue.post(number + 1);
  };
  queue.post(1);
  EXPECT_TRUE(PumpMessages(nullptr, 0, 0));
  EXPECT_EQ(seen, (Numbers{1, 2, 3}));
}

TEST_F(Messages, SomethingThatIsNoWindowPumpsTheWholeQueue) {
  queue.post(1);
  int notAWindow = 0;
  EXPECT_TRUE(PumpMessages(&notAWindow, 5, 5));
  EXPECT_EQ(seen, (Numbers{1}));
}

TEST_F(Messages, WaitWithoutAFlagIsFalse) {
  EXPECT_FALSE(WaitWithMessages(nullptr, nullptr));
  GatedWorker worker;
  EXPECT_FALSE(WaitWithMessages(&worker.thread, nullptr));
}

TEST_F(Messages, WaitReturnsAtOnceWhenTheFlagIsDown) {
  const std::uint8_t keepWaiting = 0;
  GatedWorker worker;
  EXPECT_TRUE(WaitWithMessages(nullptr, &keepWaiting));
  EXPECT_TRUE(WaitWithMessages(&worker.thread, &keepWaiting));
  EXPECT_FALSE(worker.thread.ended());
}

TEST_F(Messages, WaitDispatchesMessagesUntilOneOfThemLowersTheFlag) {
  std::uint8_t keepWaiting = 1;
  react = [&](unsigned number) {
    if (number == 2) setFlag(keepWaiting, 0);
  };
  queue.post(1);
  queue.post(2);
  EXPECT_TRUE(WaitWithMessages(nullptr, &keepWaiting));
  EXPECT_EQ(seen, (Numbers{1, 2}));
}

TEST_F(Messages, AnyNonZeroFlagKeepsWaiting) {
  std::uint8_t keepWaiting = 0x80;
  react = [&](unsigned) { setFlag(keepWaiting, 0); };
  queue.post(1);
  EXPECT_TRUE(WaitWithMessages(nullptr, &keepWaiting));
  EXPECT_EQ(seen, (Numbers{1}));
}

TEST_F(Messages, WaitEndsWhenAnotherThreadLowersTheFlag) {
  std::uint8_t keepWaiting = 1;
  std::thread other([&] { setFlag(keepWaiting, 0); });
  EXPECT_TRUE(WaitWithMessages(nullptr, &keepWaiting));
  other.join();
}

TEST_F(Messages, WaitEndsWithItsThreadThoughTheFlagIsUp) {
  const std::uint8_t keepWaiting = 1;
  GatedWorker worker;
  react = [&](unsigned) { worker.release(); };
  queue.post(1);
  EXPECT_TRUE(WaitWithMessages(&worker.thread, &keepWaiting));
  EXPECT_TRUE(worker.thread.ended());
  EXPECT_EQ(seen, (Numbers{1}));
}

TEST_F(Messages, WaitForAThreadEndsWhenTheFlagIsLoweredThoughTheThreadRunsOn) {
  std::uint8_t keepWaiting = 1;
  GatedWorker worker;
  react = [&](unsigned) { setFlag(keepWaiting, 0); };
  queue.post(1);
  EXPECT_TRUE(WaitWithMessages(&worker.thread, &keepWaiting));
  EXPECT_FALSE(worker.thread.ended());
}

}  // namespace
