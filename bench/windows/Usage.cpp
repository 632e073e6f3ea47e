// SPDX-License-Identifier: MIT
#include "bench/Usage.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#define PSAPI_VERSION 2
#include <psapi.h>

namespace {

// Of a time in 100 ns.
double seconds(const FILETIME& time) {
  const auto units = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
  return static_cast<double>(units) / 1e7;
}

}  // namespace

double processorSeconds() {
  FILETIME begin{}, end{}, system{}, user{};
  GetProcessTimes(GetCurrentProcess(), &begin, &end, &system, &user);
  return seconds(system) + seconds(user);
}

std::uint64_t peakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PeakWorkingSetSize;
}

bool forgetPeakMemory() { return false; }
