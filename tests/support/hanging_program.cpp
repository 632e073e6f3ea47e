// SPDX-License-Identifier: MIT
// Tests that hang or vanish on purpose; check_watchdog.py runs them one by one.
#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "tests/support/Fixture.h"
#include "tests/support/Watchdog.h"

namespace {

// Not inlined, so that a stack shows it.
[[gnu::noinline]] void waitForEver() {
  std::mutex mutex;
  std::condition_variable never;
  std::unique_lock lock(mutex);
  never.wait(lock, [] { return false; });
}

TEST(Hanging, InTheMainThread) { waitForEver(); }

TEST(Hanging, InAnotherThread) {
  std::thread other(waitForEver);
  other.join();
}

TEST(Hanging, WithALimitOfItsOwn) {
  const testing_support::TimeLimit limit(std::chrono::seconds(1));
  waitForEver();
}

TEST(Ending, Passes) {}

TEST(Ending, IsSkipped) { GTEST_SKIP(); }

class LackingRights : public testing::Test {
 protected:
  const fixture::RealServer server{"vsftpd"};
};

TEST_F(LackingRights, SkipsInAConstructor) { FAIL(); }

TEST(Ending, LacksRights) {
  const fixture::RealServer server("vsftpd");
  FAIL();
}

TEST(Ending, Crashes) {
  // Volatile, so that neither the compiler nor its checks see it coming.
  volatile std::uintptr_t nowhere = 64;
  [[maybe_unused]] const int value = *reinterpret_cast<volatile int*>(nowhere);
}

}  // namespace
