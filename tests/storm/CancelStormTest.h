// SPDX-License-Identifier: MIT
// Cancels in a row through OnPoll: the caller is free at once each time, and nothing of the workers is left.
#pragma once

#include <algorithm>
#include <functional>
#include <iostream>
#include <vector>

#include "tests/storm/Build.h"
#include "tests/storm/Health.h"
#include "tests/storm/RunnerTest.h"
#include "tests/support/Fixture.h"
#include "tests/support/Median.h"
#include "tests/support/Watchdog.h"

namespace storm {

using namespace std::chrono_literals;

class CancelStormTest : public RunnerTest {
 protected:
  using Clock = std::chrono::steady_clock;

  static constexpr int kWarmUp = 20;
  static constexpr std::chrono::seconds kMostOfARound{240};
  static constexpr std::uint64_t kMemorySlack = 1U << 20;

  void SetUp() override {
    script.onPoll = [this](QXBool&) { return PollToCancel(); };
  }

  // What is cancelled; answers whether it succeeded.
  virtual bool Operate() = 0;
  virtual void BeforeRound() {}
  virtual void AfterRound() {}
  virtual void ExpectNormalWork() = 0;

  void LogInTo(const fixture::Server& target) {
    client->FTPSetLogin(target.host().c_str(), "u", "p", target.port(), 1);
  }

  // Cancels up to sixteen steps after the worker has gone into its stuck place.
  bool PollToCancel() {
    if (!entered) return false;
    if (enteredAt == Clock::time_point{}) {
      if (untilStuck) untilStuck();
      enteredAt = Clock::now();
    }
    cancelledAt = Clock::now();
    return cancelledAt - enteredAt >= (started % 16) * step;
  }

  void Cancel(int count) {
    for (int round = 0; round < count; ++round) {
      SCOPED_TRACE(round);
      // On a busy machine a storm takes as long as it takes; a round that does not end hangs.
      const testing_support::TimeLimit ofTheRound(kMostOfARound);
      ++started;
      entered = false;
      enteredAt = {};
      BeforeRound();
      ASSERT_FALSE(Operate());
      latencies.push_back(Clock::now() - cancelledAt);
      ASSERT_NO_FATAL_FAILURE(AfterRound());
    }
  }

  void Storm(int rounds, Clock::duration judgedMedian) {
    ASSERT_NO_FATAL_FAILURE(Cancel(kWarmUp));
    latencies.clear();
    const Health health;
    ASSERT_NO_FATAL_FAILURE(Cancel(rounds));
    health.expectBack(kMemorySlack);
    JudgeLatencies(judgedMedian);
    useHeap();
    script.onPoll = nullptr;
    ExpectNormalWork();
  }

  void JudgeLatencies(Clock::duration judgedMedian) {
    const auto milliseconds = [](Clock::duration time) {
      return std::chrono::duration<double, std::milli>(time).count();
    };
    const auto median = testing_support::median(latencies);
    std::cout << latencies.size() << " cancels, ms until the return: median " << milliseconds(median)
              << ", longest " << milliseconds(*std::max_element(latencies.begin(), latencies.end())) << '\n';
    EXPECT_LE(testing_support::leastDisturbedMedian(latencies), judgedMedian);
  }

  Clock::duration step = 125us;
  int started = 0;  // rounds, counted from 1
  std::function<void()> untilStuck;
  Clock::time_point enteredAt;
  Clock::time_point cancelledAt;
  std::vector<Clock::duration> latencies;
};

}  // namespace storm
