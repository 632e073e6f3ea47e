// SPDX-License-Identifier: MIT
// Starting and killing over and over leaves no thread, no handle and no memory behind, and takes no time.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "framework/platform/worker_thread.h"
#include "tests/support/Median.h"
#include "tests/support/ProcessCounters.h"

namespace {

using platform::WorkerThread;
using std::chrono::microseconds;
using std::chrono::steady_clock;
using testing_support::ProcessCounters;
using testing_support::processCounters;

constexpr int kWarmUps = 100;  // until the run time's own pools are filled
constexpr std::uint64_t kMemorySlack = std::uint64_t{QX_MEMORY_SLACK_MIB} << 20;

// Waited for asleep: a caller that spins would keep a busy worker from its turn. No std::atomic::wait: where
// it is no system call of its own, it was seen to miss the notice.
class Start {
 public:
  void tell() {
    const std::lock_guard lock(mutex_);
    told_ = true;
    changed_.notify_one();
  }
  void await() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return told_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool told_ = false;
};

void tellStarted(void* started) { static_cast<Start*>(started)->tell(); }

void sleeping(void* started) {
  tellStarted(started);
  platform::stoppableSleep(std::chrono::hours(1));
}

void polling(void* started) {
  tellStarted(started);
  while (!platform::stopRequested()) platform::yieldProcessor();
}

// Most of the time within the heap, where a thread must never be ended by force.
void allocating(void* started) {
  tellStarted(started);
  std::map<int, std::string> heap;
  for (int i = 0;; ++i) {
    platform::throwIfStopped();
    if (i % 64 == 63) platform::yieldProcessor();  // for the caller, where others keep the processors busy
    heap[i % 16] = std::string(static_cast<std::size_t>(i % 500), 'x');
  }
}

// One cycle; every second one kills the thread before it is known to run.
microseconds cycle(WorkerThread::Entry entry, bool awaitStart) {
  Start started;
  WorkerThread thread;
  EXPECT_TRUE(thread.start(entry, &started));
  if (awaitStart) started.await();
  const auto start = steady_clock::now();
  EXPECT_TRUE(thread.kill(std::chrono::minutes(1)));
  const auto took = std::chrono::duration_cast<microseconds>(steady_clock::now() - start);
  thread.close();
  return took;
}

// The system forgets an ended thread a moment after it lets others know of the end.
ProcessCounters settledCounters(int threads) {
  ProcessCounters now = processCounters();
  while (now.threads > threads) {
    platform::yieldProcessor();
    now = processCounters();
  }
  return now;
}

void expectNothingBehind(WorkerThread::Entry entry) {
  for (int i = 0; i < kWarmUps; ++i) cycle(entry, i % 2 == 0);
  const ProcessCounters before = processCounters();
  std::vector<microseconds> awaited;
  for (int i = 0; i < QX_STORM_CYCLES; ++i) {
    const microseconds took = cycle(entry, i % 2 == 0);
    if (i % 2 == 0) awaited.push_back(took);
  }
  const ProcessCounters after = settledCounters(before.threads);
  EXPECT_EQ(after.handles, before.handles);
  EXPECT_LT(after.residentBytes, before.residentBytes + kMemorySlack);
  const microseconds median = testing_support::leastDisturbedMedian(awaited);
  EXPECT_LT(median, std::chrono::milliseconds(QX_KILL_MEDIAN_MS));
  std::printf("%d cycles, median kill %lld us\n", QX_STORM_CYCLES, static_cast<long long>(median.count()));
}

TEST(WorkerStorm, OfSleepersLeavesNothingBehind) { expectNothingBehind(&sleeping); }

TEST(WorkerStorm, OfPollersLeavesNothingBehind) { expectNothingBehind(&polling); }

TEST(WorkerStorm, OfHeapUsersLeavesNothingBehind) { expectNothingBehind(&allocating); }

}  // namespace
