// SPDX-License-Identifier: MIT
#include "tests/client/OwnProgram.h"

#include <process.h>

#include "framework/windows/windows_api.h"

namespace testing_support {

bool passesInAnotherProcess(const std::string& filter) {
  char program[MAX_PATH] = "";
  ::GetModuleFileNameA(nullptr, program, sizeof program);
  const std::string selection = "--gtest_filter=" + filter;
  // The first argument is the program's own name; its path may have blanks, which would make it several.
  return ::_spawnl(_P_WAIT, program, "again", selection.c_str(), "--gtest_also_run_disabled_tests",
                   nullptr) == 0;
}

}  // namespace testing_support
