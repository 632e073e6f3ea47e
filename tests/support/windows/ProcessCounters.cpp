// SPDX-License-Identifier: MIT
#include "tests/support/ProcessCounters.h"

#include <algorithm>
#include <vector>

#include "tests/support/windows/Threads.h"
// After windows.h only.
#include <psapi.h>
#include <winternl.h>

namespace testing_support {
namespace {

// From the list of all handles of the system.
int listedHandles() {
  std::vector<ULONG_PTR> buffer(1 << 13);
  const auto query = [&buffer] {
    const auto bytes = static_cast<ULONG>(buffer.size() * sizeof buffer[0]);
    return NtQuerySystemInformation(SystemHandleInformation, buffer.data(), bytes, nullptr);
  };
  while (query() != 0) buffer.resize(buffer.size() * 2);
  const auto* list = reinterpret_cast<const SYSTEM_HANDLE_INFORMATION*>(buffer.data());
  const auto ours = [](const SYSTEM_HANDLE_ENTRY& entry) { return entry.OwnerPid == GetCurrentProcessId(); };
  return static_cast<int>(std::count_if(list->Handle, list->Handle + list->Count, ours));
}

int handleCount() {
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  // Wine has no answer there, and in its list of processes it tells the room of the table in place of the
  // count.
  return handles != 0 ? static_cast<int>(handles) : listedHandles();
}

}  // namespace

ProcessCounters processCounters() {
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
  return {static_cast<int>(threadIds().size()), handleCount(), memory.WorkingSetSize};
}

}  // namespace testing_support
