// SPDX-License-Identifier: MIT
#include "tests/support/Watchdog.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "tests/support/AllStacks.h"

namespace testing_support {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kUsualLimit(240);

class Watchdog {
 public:
  static Watchdog& instance() {
    static auto* watchdog = new Watchdog;  // Its thread runs until the process ends.
    return *watchdog;
  }

  void arm(std::string test, std::chrono::seconds limit) {
    const std::lock_guard lock(mutex_);
    test_ = std::move(test);
    limit_ = limit;
    deadline_ = Clock::now() + limit;
    changed_.notify_one();
  }

  void rearm(std::chrono::seconds limit) { arm(name(), limit); }

  void disarm() {
    const std::lock_guard lock(mutex_);
    deadline_.reset();
    changed_.notify_one();
  }

 private:
  Watchdog() {
    std::thread([this] { watch(); }).detach();
  }

  std::string name() {
    const std::lock_guard lock(mutex_);
    return test_;
  }

  [[noreturn]] void watch() {
    std::unique_lock lock(mutex_);
    for (;;) {
      if (!deadline_) {
        changed_.wait(lock);
      } else if (Clock::now() >= *deadline_) {
        bark();
      } else {
        changed_.wait_until(lock, *deadline_);
      }
    }
  }

  [[noreturn]] void bark() const {
    std::fflush(stdout);
    std::fprintf(stderr, "HANG: %s ran longer than %lld s\n", test_.c_str(),
                 static_cast<long long>(limit_.count()));
    printAllStacks();
    std::fflush(stderr);
    endProcess(kHangExitCode);
  }

  std::mutex mutex_;
  // Guarded by mutex_.
  std::condition_variable changed_;
  std::string test_;
  std::chrono::seconds limit_{};
  std::optional<Clock::time_point> deadline_;
};

std::chrono::seconds usualLimit() {
  const char* given = std::getenv("QX_TEST_LIMIT");
  return given == nullptr ? kUsualLimit : std::chrono::seconds(std::strtol(given, nullptr, 10));
}

class EachTest : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    Watchdog::instance().arm(std::string(test.test_suite_name()) + '.' + test.name(), usualLimit());
  }
  void OnTestEnd(const testing::TestInfo&) override { Watchdog::instance().disarm(); }
};

}  // namespace

TimeLimit::TimeLimit(std::chrono::seconds limit) { Watchdog::instance().rearm(limit); }

void watchAllTests() {
  prepareStackPrinting();
  testing::UnitTest::GetInstance()->listeners().Append(new EachTest);
}

}  // namespace testing_support
