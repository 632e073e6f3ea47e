// SPDX-License-Identifier: MIT
#include "framework/platform/turns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using platform::Crowding;

class CrowdingTest : public testing::Test {
 protected:
  void YieldFor(Crowding::Clock::duration time) { crowding.yielded(start, start + time); }
  bool KnownAt(Crowding::Clock::duration time) const { return crowding.known(start + time); }

  const Crowding::Clock::time_point start = Crowding::Clock::now();
  Crowding crowding;
};

TEST_F(CrowdingTest, IsNotKnownBeforeAYield) { EXPECT_FALSE(KnownAt(0ms)); }

TEST_F(CrowdingTest, IsNotKnownAfterAYieldThatCostNoSlice) {
  YieldFor(999us);
  EXPECT_FALSE(KnownAt(1ms));
}

TEST_F(CrowdingTest, IsKnownForTenTimesAsLongAsAYieldHasCost) {
  YieldFor(4ms);
  EXPECT_TRUE(KnownAt(4ms));
  EXPECT_TRUE(KnownAt(43ms));
  EXPECT_FALSE(KnownAt(44ms));
}

TEST_F(CrowdingTest, IsKnownForAMomentAfterTheProcessorWasShared) {
  crowding.shared(start);
  EXPECT_TRUE(KnownAt(19ms));
  EXPECT_FALSE(KnownAt(20ms));
}

// Threads that compute, many more than processors.
class Crowd {
 public:
  Crowd() {
    for (unsigned i = 0; i < 24 * std::max(1U, std::thread::hardware_concurrency()); ++i)
      threads_.emplace_back([this] {
        while (!over_.load(std::memory_order_relaxed)) {
        }
      });
  }
  ~Crowd() {
    over_ = true;
    for (std::thread& thread : threads_) thread.join();
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

 private:
  std::atomic<bool> over_{false};
  std::vector<std::thread> threads_;
};

// With a yield each, these turns would take a minute and more: longer than the test may last.
TEST(Turns, ComeFastOnACrowdedMachine) {
  const Crowd crowd;
  for (int turn = 0; turn < 500; ++turn) platform::yieldProcessor();
  for (int turn = 0; turn < 500; ++turn) static_cast<void>(platform::messageAfterTurn());
}

TEST(Turns, SleepWhereTestsLetThem) {
  platform::sleepInTurnsForTesting(20ms);
  const auto before = Crowding::Clock::now();
  platform::yieldProcessor();
  static_cast<void>(platform::messageAfterTurn());
  EXPECT_GE(Crowding::Clock::now() - before, 20ms);  // a sleep on Windows may end a tick too soon
  platform::sleepInTurnsForTesting(0ms);
}

}  // namespace
