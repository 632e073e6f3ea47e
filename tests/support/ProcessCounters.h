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

// Of this process, now.
ProcessCounters processCounters();
// Descriptors or handles that a program started by this one would inherit.
int inheritableHandles();

}  // namespace testing_support
