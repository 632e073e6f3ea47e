// SPDX-License-Identifier: MIT
#include "tests/support/windows/Threads.h"

#include <tlhelp32.h>

namespace testing_support {

std::vector<DWORD> threadIds() {
  std::vector<DWORD> ids;
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ids.push_back(entry.th32ThreadID);
  CloseHandle(snapshot);
  return ids;
}

}  // namespace testing_support
