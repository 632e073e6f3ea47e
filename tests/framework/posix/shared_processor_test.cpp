// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>

#include <atomic>
#include <thread>

#include "framework/platform/native_thread.h"
#include "framework/platform/turns.h"

namespace {

using namespace std::chrono_literals;

constexpr int kMostTurns = 20'000;

void stayOn(int processor) {
  cpu_set_t only;
  CPU_ZERO(&only);
  CPU_SET(static_cast<std::size_t>(processor), &only);
  ASSERT_EQ(sched_setaffinity(0, sizeof only, &only), 0);
}

// A thread that serves another one's data: it computes for a moment and waits for a moment, on and on.
class Server {
 public:
  explicit Server(int processor) : thread_([this, processor] { run(processor); }) {}
  ~Server() {
    over_ = true;
    thread_.join();
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

 private:
  void run(int processor) {
    stayOn(processor);
    while (!over_) {
      const auto end = std::chrono::steady_clock::now() + 100us;
      while (std::chrono::steady_clock::now() < end) continue;
      platform::nap(50us);
    }
  }

  std::atomic<bool> over_{false};
  std::thread thread_;
};

long sleeps() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nvcsw;
}

TEST(SharedProcessor, IsToldOf) {
  std::thread([] {
    const int processor = sched_getcpu();
    stayOn(processor);
    const Server server(processor);
    const std::uint64_t before = platform::timesTaken();
    int turns = 0;
    while (platform::timesTaken() == before && ++turns < kMostTurns) platform::yieldOnce();
    EXPECT_LT(turns, kMostTurns);
  }).join();
}

// A caller that waited for its worker took half of a processor from the server that the worker waited for.
TEST(SharedProcessor, IsLeftToShortTasksOfOthers) {
  std::thread([] {
    const int processor = sched_getcpu();
    stayOn(processor);
    const Server server(processor);
    const long before = sleeps();
    int turns = 0;
    while (sleeps() == before && ++turns < kMostTurns) static_cast<void>(platform::messageAfterTurn());
    EXPECT_LT(turns, kMostTurns);
  }).join();
}

}  // namespace
