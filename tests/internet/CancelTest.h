// SPDX-License-Identifier: MIT
// What the tests of stopped workers share: how long a blocked worker takes to come back, and a lookup to
// block in.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <future>
#include <iostream>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

#include "framework/internet/net/NameLookup.h"
#include "framework/platform/stop_token.h"
#include "tests/internet/FtpTest.h"
#include "tests/support/Median.h"

namespace internet_tests {

// Wine passes every wait through its server.
inline constexpr bool kWindows = std::filesystem::path::preferred_separator == '\\';
inline constexpr double kMostMs = kWindows ? 50 : 10;
inline constexpr int kRuns = 7;
inline constexpr int kMostAttempts = 5;
inline constexpr double kTurns = 4;  // of threads, in a cancel

// Something that one thread tells another.
class Signal {
 public:
  void give() { promise_.set_value(); }
  void await() { promise_.get_future().wait(); }

 private:
  std::promise<void> promise_;
};

// Whether a session has heard that a connection was closed (50, 51, 70).
inline bool toldOfAnEnd(const std::vector<std::uint32_t>& statuses) {
  return std::any_of(statuses.begin(), statuses.end(), [](std::uint32_t status) {
    return status == internet::kStatusClosing || status == internet::kStatusClosed ||
           status == internet::kStatusHandleClosing;
  });
}

// Runs `work` on a thread with a stop token that is raised once `blocked` has returned.
template <class Work, class Blocked>
double latencyMs(Work work, Blocked blocked) {
  using Clock = std::chrono::steady_clock;
  using Milliseconds = std::chrono::duration<double, std::milli>;
  platform::StopToken token;
  Clock::time_point ended;
  bool stopped = false;
  std::thread worker([&] {
    const platform::StopToken::Scope scope(&token);
    try {
      work();
    } catch (const platform::OperationStopped&) {
      stopped = true;
    }
    ended = Clock::now();
  });
  blocked();
  const auto raised = Clock::now();
  token.raise();
  worker.join();
  EXPECT_TRUE(stopped) << "the call came back by itself";
  return Milliseconds(ended - raised).count();
}

// What the machine takes to let a waiting thread go on.
inline double wakeMs() {
  using Clock = std::chrono::steady_clock;
  Signal ready;
  Signal go;
  Clock::time_point awake;
  std::thread sleeper([&] {
    ready.give();
    go.await();
    awake = Clock::now();
  });
  ready.await();
  const auto called = Clock::now();
  go.give();
  sleeper.join();
  return std::chrono::duration<double, std::milli>(awake - called).count();
}

template <class Once>
double medianOf(Once once) {
  std::vector<double> times;
  for (int i = 0; i < kRuns; ++i) times.push_back(once());
  return testing_support::median(times);
}

// The median over some runs of `once`, which returns the latency of one. Other programs on the machine delay
// everybody: the least disturbed of a few attempts is judged, beside what its threads' turns took at that
// time.
template <class Once>
void expectPrompt(const char* place, Once once) {
  double middle = std::numeric_limits<double>::max();
  for (int attempt = 0; attempt < kMostAttempts && middle > kMostMs; ++attempt)
    middle = std::min(middle, medianOf(once) - kTurns * medianOf(&wakeMs));
  std::cout << "[ latency  ] " << place << ": " << middle << " ms\n";
  EXPECT_LE(middle, kMostMs) << place;
}

// Stops `connect(session)` once it waits for its connection.
template <class Connect>
void expectPromptInConnecting(Connect connect) {
  expectPrompt("connect", [&] {
    Signal connecting;
    return latencyMs(
        [&] {
          RecordingSession own;
          own.onStatus = [&](std::uint32_t status) {
            if (status == internet::kStatusConnecting) connecting.give();
          };
          connect(own);
        },
        [&] { connecting.await(); });
  });
}

// A lookup that takes as long as the test wants.
struct SlowLookup {
  SlowLookup() {
    finished = false;
    internet::setResolverForTesting(&resolve);
  }
  ~SlowLookup() {
    internet::setResolverForTesting(nullptr);
    std::unique_lock lock(mutex);
    finished = true;
    changed.notify_all();
    changed.wait(lock, [] { return running == 0; });
  }
  static std::vector<platform::SocketAddress> resolve(const std::string&, std::uint16_t) {
    std::unique_lock lock(mutex);
    ++running;
    changed.notify_all();
    changed.wait(lock, [] { return finished; });
    --running;
    changed.notify_all();
    return {};
  }
  static void awaitRunning(int count) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [count] { return running == count; });
  }

  static inline std::mutex mutex;
  static inline std::condition_variable changed;
  static inline int running = 0;
  static inline bool finished = false;
};

}  // namespace internet_tests
