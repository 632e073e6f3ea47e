// SPDX-License-Identifier: MIT
// What the test program itself holds of the system; leak tests compare before and after.
#pragma once

#include <cstdint>

namespace testing_support {

struct ProcessCounters {
  int threads = 0;
  // Descriptors on Linux, handles on Windows; sockets are among them on both.
  int handles = 0;
  std::uint64_t residentBytes = 0;
};

// A lock of the MinGW library makes an event when two threads meet at it for the first time, and keeps it.
// There are a few locks for the whole process; what each round loses is more than that after some rounds.
#ifdef _WIN32
inline constexpr int kLockHandles = 4;
#else
inline constexpr int kLockHandles = 0;
#endif

// Of this process, now.
ProcessCounters processCounters();
// Descriptors or handles that a program started by this one would inherit.
int inheritableHandles();

}  // namespace testing_support
