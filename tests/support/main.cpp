// SPDX-License-Identifier: MIT
// The main program of every test program.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "framework/platform/code_page.h"
#include "framework/platform/turns.h"
#include "tests/support/AllStacks.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Watchdog.h"

namespace {

// What ctest takes for neither passed nor failed (cmake/Testing.cmake).
constexpr int kSomeSkipped = 77;

// Callers that wait spin as the product does only in programs that look at that (SPINS of qx_test).
void letTurnsSleep() {
  if (std::getenv("QX_SPINS") == nullptr) platform::sleepInTurnsForTesting(std::chrono::milliseconds(1));
}

// A Windows has the code page that it has. Where the program wants another one it tries nothing.
bool lacksCodePage() {
  const char* const wanted = std::getenv("QX_CODE_PAGE");
  const std::string here = std::to_string(platform::narrowCodePage());
  if (wanted == nullptr || wanted == here) return false;
  std::fprintf(stderr, "needs code page %s, and this system gives it %s\n", wanted, here.c_str());
  return true;
}

int runAll() {
  if (lacksCodePage()) return kSomeSkipped;
  // A name has one temporary copy at a time in all processes, and programs that run side by side copy files
  // of the same names.
  std::optional<testing_support::TemporaryFolder> own;
  if (std::getenv("QX_FIXTURE_DIR") != nullptr) own.emplace();
  const int result = RUN_ALL_TESTS();
  if (result != 0 || GTEST_FLAG_GET(list_tests)) return result;

  // Neither is a pass: a filter that matches nothing, and a test that was skipped.
  const testing::UnitTest& run = *testing::UnitTest::GetInstance();
  if (run.test_to_run_count() > 0 && run.skipped_test_count() == 0) return 0;
  std::fprintf(stderr, "%d tests ran, %d of them were skipped\n", run.test_to_run_count(),
               run.skipped_test_count());
  return run.test_to_run_count() == 0 ? 1 : kSomeSkipped;
}

}  // namespace

int main(int argc, char** argv) {
  testing_support::disableErrorBoxes();
  testing::InitGoogleTest(&argc, argv);
  testing_support::watchAllTests();
  letTurnsSleep();
  // On Windows GoogleTest starts a thread at its first trace or failure; now, it is in no test's count of
  // threads.
  { SCOPED_TRACE("first"); }
  return testing_support::leaveMain(runAll());
}
