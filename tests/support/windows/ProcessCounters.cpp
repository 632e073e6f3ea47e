// SPDX-License-Identifier: MIT
#include "tests/support/ProcessCounters.h"

#include "tests/support/windows/Threads.h"
// After windows.h only.
#include <psapi.h>

namespace testing_support {

ProcessCounters processCounters() {
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
  return {static_cast<int>(threadIds().size()), static_cast<int>(handles), memory.WorkingSetSize};
}

}  // namespace testing_support
