// SPDX-License-Identifier: MIT
#include "tests/support/ProcessCounters.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace testing_support {
namespace {

int entryCount(const char* directory) {
  return static_cast<int>(std::distance(std::filesystem::directory_iterator(directory), {}));
}

}  // namespace

ProcessCounters processCounters() {
  std::uint64_t total = 0;
  std::uint64_t resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  // The listing of the descriptors holds one itself.
  return {entryCount("/proc/self/task"), entryCount("/proc/self/fd") - 1,
          resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))};
}

int inheritableHandles() {
  int inheritable = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int flags = ::fcntl(std::stoi(entry.path().filename().string()), F_GETFD);
    inheritable += flags >= 0 && (flags & FD_CLOEXEC) == 0 ? 1 : 0;
  }
  return inheritable;
}

}  // namespace testing_support
