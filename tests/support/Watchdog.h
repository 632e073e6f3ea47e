// SPDX-License-Identifier: MIT
// Ends a hanging test: prints its name and the stacks of all threads, then exits with code 42.
// main() arms it for each test with 240 s, or with QX_TEST_LIMIT seconds from the environment.
#pragma once

#include <chrono>

namespace testing_support {

inline constexpr int kHangExitCode = 42;

// In a test's body: gives this test another limit, counted from now. Ends with the test, not with the object.
class TimeLimit {
 public:
  explicit TimeLimit(std::chrono::seconds limit);
};

// Arms the watchdog for every test that RUN_ALL_TESTS() will run. Call once, after InitGoogleTest.
void watchAllTests();

}  // namespace testing_support
