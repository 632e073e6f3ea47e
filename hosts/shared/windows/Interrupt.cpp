// SPDX-License-Identifier: MIT
#include "hosts/shared/Interrupt.h"

#include "hosts/shared/windows/System.h"

namespace hosts {

// The handler runs on a thread of the system's. Of the other events, such as the closing of the window, the
// system ends the process by itself.
void catchInterrupts() {
  const auto handle = [](DWORD event) -> BOOL {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    interrupt();
    return TRUE;
  };
  SetConsoleCtrlHandler(handle, TRUE);
}

}  // namespace hosts
