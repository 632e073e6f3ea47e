// SPDX-License-Identifier: MIT
#include "tests/support/ProcessCounters.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

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

}  // namespace testing_support
