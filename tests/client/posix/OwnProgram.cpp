// SPDX-License-Identifier: MIT
#include "tests/client/OwnProgram.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace testing_support {

bool passesInAnotherProcess(const std::string& filter) {
  std::string program = "/proc/self/exe";
  std::string selection = "--gtest_filter=" + filter;
  std::string all = "--gtest_also_run_disabled_tests";
  char* const arguments[] = {program.data(), selection.data(), all.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0) return false;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace testing_support
