// SPDX-License-Identifier: MIT
#include "tests/storm/Health.h"

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/storm/Build.h"

namespace storm {

namespace {

using testing_support::kLockHandles;
using testing_support::ProcessCounters;
using testing_support::processCounters;

constexpr std::chrono::seconds kSettleLimit{30};

// The system takes a thread off its list a moment after the thread's end can be seen.
ProcessCounters settledCounters(const ProcessCounters& wanted) {
  const auto end = std::chrono::steady_clock::now() + kSettleLimit;
  ProcessCounters now = processCounters();
  while ((now.threads > wanted.threads || now.handles > wanted.handles + kLockHandles) &&
         std::chrono::steady_clock::now() < end) {
    std::this_thread::yield();
    now = processCounters();
  }
  return now;
}

void print(const char* when, const ProcessCounters& counters) {
  std::cout << when << counters.threads << " threads, " << counters.handles << " handles, "
            << counters.residentBytes / 1024 << " KB";
}

void allocateAndThrow(unsigned seed) {
  std::vector<std::string> kept(64);
  for (int i = 0; i < 4000; ++i) {
    seed = seed * 1103515245U + 12345U;
    kept[seed >> 16 & 63U].assign(seed >> 8 & 4095U, 'x');
    if (i % 100 != 0) continue;
    try {
      throw std::runtime_error(kept.front());
    } catch (const std::runtime_error&) {
    }
  }
}

}  // namespace

void Health::expectBack(std::uint64_t memorySlack) const {
  const ProcessCounters after = settledCounters(m_before);
  print("before: ", m_before);
  print("; after: ", after);
  std::cout << '\n';
  EXPECT_LE(after.threads, m_before.threads);
  EXPECT_LE(after.handles, m_before.handles + kLockHandles);
  if (!kSanitized) {
    EXPECT_LE(after.residentBytes, m_before.residentBytes + memorySlack);
  }
}

void useHeap() {
  std::vector<std::thread> threads;
  for (unsigned i = 1; i <= 4; ++i) threads.emplace_back(&allocateAndThrow, i);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace storm
