// SPDX-License-Identifier: MIT
#include "bench/Usage.h"

#include <sys/resource.h>

#include <fstream>
#include <string>

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

double processorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// getrusage's figure begins with what the program had that started this one.
std::uint64_t peakMemory() {
  std::ifstream status("/proc/self/status");
  std::uint64_t kibibytes = 0;
  for (std::string word; status >> word;) {
    if (word == "VmHWM:") status >> kibibytes;
  }
  return kibibytes * 1024;
}

bool forgetPeakMemory() {
  return static_cast<bool>(std::ofstream("/proc/self/clear_refs") << 5 << std::flush);
}
