// SPDX-License-Identifier: MIT
#include "tests/support/ProcessCounters.h"

#include <cstdint>

#include "tests/support/windows/Threads.h"
// After windows.h only.
#include <psapi.h>

namespace testing_support {
namespace {

// Those with one of the flags; all with none asked for. Asks for each: Wine has a list of all handles of the
// system, but its server dies of making it while a process ends: it runs past the end of an empty table.
int handlesAskedFor(DWORD anyOf) {
  constexpr std::uintptr_t kStep = 4;
  constexpr std::uintptr_t kMost = 4096;  // the lowest free one is given first
  int open = 0;
  for (std::uintptr_t number = 1; number <= kMost; ++number) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(number * kStep), &flags) == FALSE) continue;
    open += anyOf == 0 || (flags & anyOf) != 0 ? 1 : 0;
  }
  return open;
}

int handleCount() {
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  // Wine has no answer there, and in its list of processes it tells the room of the table in place of the
  // count.
  return handles != 0 ? static_cast<int>(handles) : handlesAskedFor(0);
}

}  // namespace

ProcessCounters processCounters() {
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
  return {static_cast<int>(threadIds().size()), handleCount(), memory.WorkingSetSize};
}

int inheritableHandles() { return handlesAskedFor(HANDLE_FLAG_INHERIT); }

}  // namespace testing_support
